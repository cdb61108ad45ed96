// cli.h: the command line of `orven`, and the exit codes that scripts rely on.
#pragma once

#include <string>
#include <vector>

inline constexpr int EXIT_DONE = 0, EXIT_RUN_FAILED = 1, EXIT_USAGE = 2, EXIT_INTERRUPTED = 130;

/** Runs the program with its arguments in UTF-8, without the program's own name. @return the exit code */
int runCommandLine(const std::vector<std::string>& arguments);
