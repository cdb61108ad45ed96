// system.h: the system's calls for files as a test wants them: which of them fail, and what was opened how.
#pragma once

#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

struct SystemCalls {
    bool watched = false;   // without it every call goes through
    // Calls for a file of this name fail ...
    std::string failingOpen = {}, failingRead = {}, failingWrite = {};
    uint64_t passes = 0;              // ... after so many that pass
    uint64_t failures = UINT64_MAX;   // ... so many times
    int error = EIO;
    uint64_t failingCall = 0;   // the n-th call of any kind and file fails; 0: none
    uint64_t calls = 0;         // so far, while failingCall counts
    // Names of the files that were asked for, each with a mark: "r " or "w " if it may be written.
    std::vector<std::string> opened = {};
};
extern SystemCalls systemCalls;
