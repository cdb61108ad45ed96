// write_limit.h: a disk that is full, on systems that can play one.
#pragma once

#include <cstdint>

#ifndef _WIN32
// While it lives, this process can't write behind the first `bytes` bytes of any file.
struct WriteLimit {
    explicit WriteLimit(uint64_t bytes);
    ~WriteLimit();
    WriteLimit(const WriteLimit&) = delete;
    WriteLimit& operator=(const WriteLimit&) = delete;

    uint64_t before = 0;
    void (*handler)(int) = nullptr;
};
#endif
