// usage.cpp: calls the program as it must not be called.
#include "usage.h"

#include "process.h"

#include <gtest/gtest.h>

void expectRefused(const UsageCase& usage, const std::filesystem::path& folder)
{
    SCOPED_TRACE(usage.what);
    const ProcessResult result = runOrven(usage.arguments, folder);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(usage.err), std::string::npos) << result.err;
}
