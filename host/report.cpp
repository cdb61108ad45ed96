// report.cpp: what the commands that run the library have in common.
#include "report.h"

#include "cli.h"
#include "explain.h"
#include "platform.h"
#include "text.h"

#include <fstream>

namespace fs = std::filesystem;

static constexpr size_t SHOWN_LOG_ENTRIES = 5;

int refuse(const std::string& sentence)
{
    platformPrintError("error: " + sentence + "\n");
    return EXIT_USAGE;
}

int reportFault(const fs::path& path, const FileFault& fault)
{
    const std::string name = printablePath(path);
    if (fault.code) {
        platformPrintError("error: " + resultLine(fault.code, platformResultText(fault.code)) + "\n  " + name + ": " +
                           fault.why + "\n" + moreLine(fault.code));
    } else {
        platformPrintError("error: " + name + ": " + fault.why + "\n");
    }
    return EXIT_RUN_FAILED;
}

int checkProject(const fs::path& project)
{
    std::error_code error;
    const std::string name = printablePath(project);
    if (!fs::exists(project, error)) return refuse("there is no project file " + name);
    if (fs::is_directory(project, error)) return refuse(name + " is a folder; the project is a file");
    if (fs::is_fifo(project, error)) return refuse("the project " + name + " is a pipe");
    if (!std::ifstream(project)) return refuse("the project file " + name + " can't be read");
    return EXIT_DONE;
}

int checkLog(const fs::path& log)
{
    std::error_code error;
    const std::string name = printablePath(log);
    if (log.empty()) return EXIT_DONE;
    if (fs::is_directory(log, error)) return refuse("the log " + name + " is a folder");
    if (fs::is_fifo(log, error)) return refuse("the log " + name + " is a pipe");
    if (!std::ofstream(log, std::ios::app)) return refuse("the log " + name + " can't be written");
    return EXIT_DONE;
}

int makeFolder(const fs::path& folder)
{
    std::error_code error, ignored;
    fs::create_directories(folder, error);
    if (fs::is_directory(folder, ignored)) return EXIT_DONE;
    platformPrintError("error: the folder " + printablePath(folder) + " can't be made: " + error.message() + "\n");
    return EXIT_RUN_FAILED;
}

int withLog(const fs::path& log, const std::function<int(const fs::path& log)>& run)
{
    if (!log.empty()) return run(fs::absolute(log));
    // The library tells more in its log than by its code. Without a temporary file the run goes on with less to tell.
    const fs::path temporary = platformTemporaryFile();
    const int result = run(temporary);
    std::error_code error;
    fs::remove(temporary, error);
    return result;
}

std::string logLines(const std::vector<std::u16string>& entries)
{
    std::string lines;
    const size_t first = entries.size() > SHOWN_LOG_ENTRIES ? entries.size() - SHOWN_LOG_ENTRIES : 0;
    for (size_t i = first; i < entries.size(); i++) lines += "  log: " + printable(entries[i]) + "...\n";
    return lines;
}

static std::string faultLines(const fs::path& projectPath, const ProjectFile& project, const RunOutcome& outcome)
{
    ProjectFault fault;
    if (!findProjectFault(project, outcome, &fault)) return "";
    const std::string because = fault.why.empty() ? "" : "    " + fault.why + "\n";
    if (fault.key) {
        return "  " + printablePath(projectPath) + ":" + std::to_string(fault.key->line) + ": " +
               printable(fault.key->text) + "\n" + because;
    }
    const ProjectSection* section = findSection(project, fault.section);
    const std::string place = section
                                  ? ":" + std::to_string(section->line) + ": [" + printable(fault.section) + "] has no "
                                  : ": there is no section [" + printable(fault.section) + "] with a key ";
    return "  " + printablePath(projectPath) + place + "`" + printable(fault.name) + "`\n" + because;
}

std::string failureText(const fs::path& projectPath, const ProjectFile& project, const RunOutcome& outcome)
{
    return "error: " + resultLine(outcome.code, platformResultText(outcome.code)) + "\n" +
           faultLines(projectPath, project, outcome) + logLines(outcome.log);
}

std::string moreLine(uint64_t code)
{
    return "  more: orven explain " + shortCode(code) + "\n";
}
