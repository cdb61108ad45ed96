// author.cpp: the command `author`: one authoring run, its progress, and what there is to say when it fails.
#include "author.h"

#include "audio_project.h"
#include "cli.h"
#include "codes.h"
#include "interrupt.h"
#include "platform.h"
#include "progress.h"
#include "report.h"
#include "run_log.h"
#include "text.h"

namespace fs = std::filesystem;

static int checkUsage(const AuthorOptions& options)
{
    std::error_code error;
    if (const int refused = checkProject(options.project)) return refused;
    if (fs::exists(options.target, error) && !fs::is_directory(options.target, error)) {
        return refuse("the target " + printablePath(options.target) + " is a file; the disc needs a folder");
    }
    if (!options.previous.empty() && !fs::is_directory(options.previous, error)) {
        return refuse("there is no previous folder " + printablePath(options.previous));
    }
    return checkLog(options.log);
}

static int checkAudio(const AuthorOptions& options, const ProjectFile& project)
{
    if (!isAudioProject(project)) return EXIT_DONE;
    if (!options.previous.empty()) return refuse("a DVD-Audio disc is authored as a whole, without a previous folder");
    for (const std::string& warning : audioWarnings(project, options.target)) {
        platformPrintError("warning: " + warning + "\n");
    }
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
    return isInterrupted() ? 1 : 0;
}

static int reportFailure(const AuthorOptions& options, const ProjectFile& project, const RunOutcome& outcome)
{
    const bool canceled = outcome.code == CODE_CANCELED && isInterrupted();
    std::string text = failureText(options.project, project, outcome);
    text += canceled ? "  the disc in " + printablePath(options.target) + " is not finished\n" : moreLine(outcome.code);
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
    display.isAudio = isAudioProject(project);
    display.titleSets = display.isAudio ? plannedAudioTitleSets(project) : plannedTitleSets(project);
    display.managerMenus = managerHasMenus(project);
    return display;
}

static int runWithLog(const AuthorOptions& options, const ProjectFile& project, const fs::path& log)
{
    ProgressDisplay display = displayFor(options, project);
    const RunRequest request = { fs::absolute(options.project),
                                 withSeparator(options.target),
                                 withSeparator(options.previous),
                                 log,
                                 onProgress,
                                 reinterpret_cast<uint64_t>(&display),
                                 display.isAudio };
    const uint64_t before = logBytes(log);
    const uint64_t code = platformAuthor(request);
    platformPrintError(progressEnd(&display));
    const RunOutcome outcome = { .code = code,
                                 .log = readLog(log, before),
                                 .target = options.target,
                                 .previous = options.previous,
                                 .isAudio = display.isAudio };
    if (code) return reportFailure(options, project, outcome);
    reportSuccess(options, outcome);
    return EXIT_DONE;
}

int runAuthor(const AuthorOptions& options)
{
    watchForInterrupt();
    if (const int refused = checkUsage(options)) return refused;
    const ProjectFile project = readProject(options.project);
    if (const int refused = checkAudio(options, project)) return refused;
    if (const int failed = makeFolder(options.target)) return failed;
    return withLog(options.log, [&](const fs::path& log) { return runWithLog(options, project, log); });
}
