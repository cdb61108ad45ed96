// aob.h: the command `aob`: RIFF/WAVE files become the sound of a DVD-Audio title set.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct AobOptions {
    std::filesystem::path target, project;   // project may be empty
    uint64_t titleSet = 1;                   // 1..99
    std::vector<std::string> tracks;         // files of each, joined by +, in UTF-8
    bool quiet = false;
};

/** @return the program's exit code */
int runAob(const AobOptions& options);
