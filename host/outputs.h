// outputs.h: files that a command makes: never one that the user has not named as an output.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct Output {
    std::string role;   // "the output"
    std::filesystem::path path;
};

/** Whether two names lead to one file, which need not be there yet. */
bool sameFile(const std::filesystem::path& a, const std::filesystem::path& b);

/** Refuses outputs that are inputs, or each other, or something else than plain files.
 *  @return EXIT_DONE, or EXIT_USAGE and it has said why */
int checkOutputs(const std::vector<Output>& outputs, const std::vector<std::filesystem::path>& inputs);
