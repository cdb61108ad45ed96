// fix.h: the command `fix`: the tables of a finished disc are brought into line with the sizes of its files.
#pragma once

#include <filesystem>

struct FixCommand {
    std::filesystem::path disc, project, previous;   // previous may be empty
    bool quiet = false;
};

/** @return the program's exit code */
int runFix(const FixCommand& command);
