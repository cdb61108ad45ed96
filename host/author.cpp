// author.cpp: the command `author`: one authoring run, its progress, and what there is to say when it fails.
#include "author.h"

#include "cli.h"
#include "codes.h"
#include "explain.h"
#include "platform.h"
#include "progress.h"
#include "project_fault.h"
#include "run_log.h"
#include "text.h"

#include <atomic>
#include <csignal>
#include <fstream>

namespace fs = std::filesystem;

static constexpr size_t SHOWN_LOG_ENTRIES = 5;

static std::atomic<bool> interrupted{ false };

// The first Ctrl-C lets the run end by itself; a second one ends the program at once.
extern "C" void onInterrupt(int)
{
    interrupted = true;
    std::signal(SIGINT, SIG_DFL);
}

static int refuse(const std::string& sentence)
{
    platformPrintError("error: " + sentence + "\n");
    return EXIT_USAGE;
}

static int checkUsage(const AuthorOptions& options)
{
    std::error_code error;
    if (!fs::exists(options.project, error))
        return refuse("there is no project file " + printablePath(options.project));
    if (fs::is_directory(options.project, error)) {
        return refuse(printablePath(options.project) + " is a folder; the project is a file");
    }
    if (fs::is_fifo(options.project, error))
        return refuse("the project " + printablePath(options.project) + " is a pipe");
    if (!std::ifstream(options.project))
        return refuse("the project file " + printablePath(options.project) + " can't be read");
    if (fs::exists(options.target, error) && !fs::is_directory(options.target, error)) {
        return refuse("the target " + printablePath(options.target) + " is a file; the disc needs a folder");
    }
    if (!options.previous.empty() && !fs::is_directory(options.previous, error)) {
        return refuse("there is no previous folder " + printablePath(options.previous));
    }
    if (options.log.empty()) return EXIT_DONE;
    if (fs::is_directory(options.log, error)) return refuse("the log " + printablePath(options.log) + " is a folder");
    if (fs::is_fifo(options.log, error)) return refuse("the log " + printablePath(options.log) + " is a pipe");
    if (!std::ofstream(options.log, std::ios::app))
        return refuse("the log " + printablePath(options.log) + " can't be written");
    return EXIT_DONE;
}

// The library puts folders before file names as they stand.
static fs::path withSeparator(fs::path folder)
{
    if (folder.empty()) return folder;
    folder.make_preferred();
    return folder / "";
}

static uint32_t onProgress(uint32_t total, uint32_t done, uint32_t kind, uint64_t user)
{
    ProgressDisplay* display = reinterpret_cast<ProgressDisplay*>(user);
    const uint64_t columns = display->mode == PROGRESS_BAR ? platformTerminalColumns() : 0;
    const std::string text = progressStep(display, total, done, kind, columns);
    if (!text.empty()) platformPrintError(text);
    return interrupted ? 1 : 0;
}

static std::string logLines(const std::vector<std::u16string>& entries)
{
    std::string lines;
    const size_t first = entries.size() > SHOWN_LOG_ENTRIES ? entries.size() - SHOWN_LOG_ENTRIES : 0;
    for (size_t i = first; i < entries.size(); i++) lines += "  log: " + printable(entries[i]) + "...\n";
    return lines;
}

static std::string faultLines(const AuthorOptions& options, const ProjectFile& project, const RunOutcome& outcome)
{
    ProjectFault fault;
    if (!findProjectFault(project, outcome, &fault)) return "";
    const std::string because = fault.why.empty() ? "" : "    " + fault.why + "\n";
    if (fault.key) {
        return "  " + printablePath(options.project) + ":" + std::to_string(fault.key->line) + ": " +
               printable(fault.key->text) + "\n" + because;
    }
    const ProjectSection* section = findSection(project, fault.section);
    const std::string place = section
                                  ? ":" + std::to_string(section->line) + ": [" + printable(fault.section) + "] has no "
                                  : ": there is no section [" + printable(fault.section) + "] with a key ";
    return "  " + printablePath(options.project) + place + "`" + printable(fault.name) + "`\n" + because;
}

static int reportFailure(const AuthorOptions& options, const ProjectFile& project, const RunOutcome& outcome)
{
    const bool canceled = outcome.code == CODE_CANCELED && interrupted;
    std::string text = "error: " + resultLine(outcome.code, platformResultText(outcome.code)) + "\n";
    text += faultLines(options, project, outcome) + logLines(outcome.log);
    text += canceled ? "  the disc in " + printablePath(options.target) + " is not finished\n"
                     : "  more: orven explain " + shortCode(outcome.code) + "\n";
    platformPrintError(text);
    return canceled ? EXIT_INTERRUPTED : EXIT_RUN_FAILED;
}

static void reportSuccess(const AuthorOptions& options, const RunOutcome& outcome)
{
    if (!outcome.log.empty())
        platformPrintError("warning: the disc is written, but the library has logged:\n" + logLines(outcome.log));
    if (!options.quiet) platformPrint("disc written to " + printablePath(options.target) + "\n");
}

static ProgressDisplay displayFor(const AuthorOptions& options, const ProjectFile& project)
{
    ProgressDisplay display;
    display.mode = options.quiet ? PROGRESS_NONE : platformHasTerminal() ? PROGRESS_BAR : PROGRESS_LINES;
    display.titleSets = plannedTitleSets(project);
    display.managerMenus = managerHasMenus(project);
    return display;
}

static int runWithLog(const AuthorOptions& options, const fs::path& log)
{
    const ProjectFile project = readProject(options.project);
    ProgressDisplay display = displayFor(options, project);
    const RunRequest request = { fs::absolute(options.project),
                                 withSeparator(options.target),
                                 withSeparator(options.previous),
                                 log,
                                 onProgress,
                                 reinterpret_cast<uint64_t>(&display) };
    const uint64_t before = logBytes(log);
    const uint64_t code = platformAuthor(request);
    platformPrintError(progressEnd(&display));
    const RunOutcome outcome = { code, readLog(log, before), options.target, options.previous };
    if (code) return reportFailure(options, project, outcome);
    reportSuccess(options, outcome);
    return EXIT_DONE;
}

int runAuthor(const AuthorOptions& options)
{
    std::signal(SIGINT, onInterrupt);
    if (const int refused = checkUsage(options)) return refused;
    std::error_code error;
    fs::create_directories(options.target, error);
    if (!fs::is_directory(options.target)) {
        platformPrintError("error: the folder " + printablePath(options.target) + " can't be made: " + error.message() +
                           "\n");
        return EXIT_RUN_FAILED;
    }
    if (!options.log.empty()) return runWithLog(options, fs::absolute(options.log));
    // The library tells more in its log than by its code. Without a temporary file the run goes on with less to tell.
    const fs::path temporary = platformTemporaryFile();
    const int result = runWithLog(options, temporary);
    fs::remove(temporary, error);
    return result;
}
