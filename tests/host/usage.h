// usage.h: calls of the program that are refused before anything is done.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct UsageCase {
    const char* what;
    std::vector<std::string> arguments;
    const char* err;   // part of what it says
};

/** Runs it in a folder, and expects exit code 2 with that on standard error and nothing on standard output. */
void expectRefused(const UsageCase& usage, const std::filesystem::path& folder);
