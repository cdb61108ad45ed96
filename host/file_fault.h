// file_fault.h: why a file, or something in it, is of no use to a command.
#pragma once

#include <cstdint>
#include <string>

struct FileFault {
    uint64_t code = 0;      // of the library; 0 if the library has none for it
    std::string why = {};   // empty: there is no fault

    explicit operator bool() const
    {
        return !why.empty();
    }
};
