// write_limit.cpp: a disk that is full, by the limit that the system has for the size of files.
#include "tests/support/write_limit.h"

#ifndef _WIN32
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

WriteLimit::WriteLimit(uint64_t bytes)
{
    rlimit limit = {};
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    before = limit.rlim_cur;
    handler = std::signal(SIGXFSZ, SIG_IGN);
    limit.rlim_cur = bytes;
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

WriteLimit::~WriteLimit()
{
    rlimit limit = {};
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = before;
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, handler);
}
#endif
