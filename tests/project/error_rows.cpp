#include "tests/project/error_rows.h"

#include <gtest/gtest.h>
#include <orven/results.h>

#include <cstdint>
#include <regex>

unsigned expectErrorRows(const std::string& text)
{
    constexpr uint64_t WITHOUT_TEXT[] = { 1035, 3100 };
    const std::regex row("\\| (\\d{4}) \\| (0x[0-9A-F]{8}) \\| (none|\"[^\"]*\") \\|");
    unsigned rows = 0;
    uint64_t before = 0;
    for (std::sregex_iterator at(text.begin(), text.end(), row), end; at != end; at++, rows++) {
        const uint64_t number = std::stoull((*at)[1]), code = std::stoull((*at)[2], nullptr, 16);
        EXPECT_GT(number, before);
        EXPECT_EQ(code, 0x84000000 + number);
        char message[256] = "";
        EXPECT_EQ(ErrorToString(code, message, sizeof message), 0u);
        const bool silent = number == WITHOUT_TEXT[0] || number == WITHOUT_TEXT[1];
        EXPECT_EQ((*at)[3], silent ? "none" : '"' + std::string(message) + '"') << number;
        before = number;
    }
    return rows;
}
