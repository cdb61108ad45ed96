// mux.h: the command `mux`: elementary streams become one program stream.
#pragma once

#include "stream_scan.h"

#include <filesystem>
#include <vector>

struct MuxOptions {
    std::filesystem::path out, video;
    std::vector<std::filesystem::path> sounds;
    ScanOptions scan;
    bool pal = false, ntsc = false;   // at most one
    bool quiet = false;
};

/** @return the program's exit code */
int runMux(const MuxOptions& options);
