// process.h: the built program as a process: what it writes and how it ends.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct ProcessResult {
    int exitCode;   // -1 if a signal ended it
    std::string out, err;
};

/** Runs `orven` with arguments in UTF-8, in a folder, with standard output and standard error in files. */
ProcessResult runOrven(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

/** Path of the built program. */
std::filesystem::path orvenProgram();
