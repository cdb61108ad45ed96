// mux.h: the command `mux`: elementary streams become one program stream.
#pragma once

#include <filesystem>
#include <vector>

struct MuxOptions {
    std::filesystem::path out, video, scanFile;   // scanFile may be empty
    std::vector<std::filesystem::path> sounds;
    bool pal = false, ntsc = false;   // at most one
    bool quiet = false;
};

/** @return the program's exit code */
int runMux(const MuxOptions& options);
