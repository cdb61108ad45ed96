// report.h: what the commands that run the library have in common: the checks before a run, the log, and what there is
// to say when it fails.
#pragma once

#include "file_fault.h"
#include "project_fault.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/** Says why the program was called wrongly. @return EXIT_USAGE */
int refuse(const std::string& sentence);

/** Says what is wrong with a file. @return EXIT_RUN_FAILED */
int reportFault(const std::filesystem::path& path, const FileFault& fault);

/** @return EXIT_DONE, or EXIT_USAGE if the file can't be one; then it has said why */
int checkProject(const std::filesystem::path& project);
/** The same of a log; an empty path is fine. */
int checkLog(const std::filesystem::path& log);

/** Makes a folder, with those above it, unless it is there. @return EXIT_DONE, or EXIT_RUN_FAILED and it has said why
 */
int makeFolder(const std::filesystem::path& folder);

/** Runs with the user's log, or with a temporary one if that is empty.
 *  @return what run returns */
int withLog(const std::filesystem::path& log, const std::function<int(const std::filesystem::path& log)>& run);

/** The last entries of a log, a line each. */
std::string logLines(const std::vector<std::u16string>& entries);

/** The failure with its code, the line of the project that it is about if that is found, and the log. */
std::string failureText(const std::filesystem::path& projectPath, const ProjectFile& project,
                        const RunOutcome& outcome);

/** The line that leads to the explanation of a code. */
std::string moreLine(uint64_t code);
