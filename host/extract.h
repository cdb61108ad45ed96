// extract.h: the command `extract`: the tracks of a disc become WAVE files.
#pragma once

#include <cstdint>
#include <filesystem>

struct ExtractOptions {
    std::filesystem::path disc, out;
    uint32_t track = 0;   // from 1; 0: all
    bool mono = false;    // a file for each channel
    bool force = false;   // files that are there are replaced
    bool quiet = false;
};

/** @return the program's exit code */
int runExtract(const ExtractOptions& options);
