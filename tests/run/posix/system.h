// system.h: a system that answers as a test wants: media that can't be written, files that are gone, that can't be read
// or that may not grow.
#pragma once

#include <cstdint>
#include <string>

struct SystemAnswers {
    bool readOnlyMedia = false;     // of every path
    std::string vanishing = {};     // end of a path that is gone ...
    bool vanishingUnits = false;    // or the units of sub-pictures are ...
    bool unreadableUnits = false;   // or they open and fail to be read ...
    uint64_t opensBeforeIt = 0;     // ... after so many opens that make no file
};
extern SystemAnswers systemAnswers;

// Files of this process grow to no more than so many bytes, as long as the record lives.
struct FileLimit {
    explicit FileLimit(uint64_t bytes);
    ~FileLimit();
    FileLimit(const FileLimit&) = delete;
    FileLimit& operator=(const FileLimit&) = delete;

    uint64_t before;
    void (*handler)(int);
};
