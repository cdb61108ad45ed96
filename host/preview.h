// preview.h: the command `preview`: pictures of a project's menus, before a disc is made.
#pragma once

#include <cstdint>
#include <filesystem>

struct PreviewOptions {
    std::filesystem::path project, folder, log;   // log may be empty
    uint32_t button = 0;                          // the one that is highlighted alone; 0: all are
    bool quiet = false;
};

/** @return the program's exit code */
int runPreview(const PreviewOptions& options);
