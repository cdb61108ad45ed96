// chapters.h: the command `chapters`: the cells of a multiplexed movie are renumbered by the chapters of a project.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

struct ChaptersCommand {
    std::vector<std::filesystem::path> vobs;   // that continue each other
    std::filesystem::path project;
    uint64_t titleSet = 0;
    bool quiet = false;
};

/** @return the program's exit code */
int runChapters(const ChaptersCommand& command);
