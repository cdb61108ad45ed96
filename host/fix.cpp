// fix.cpp: the command `fix`. The disc is looked at before the library changes anything.
#include "fix.h"

#include "cli.h"
#include "codes.h"
#include "disc_files.h"
#include "platform.h"
#include "report.h"
#include "text.h"

#include <algorithm>

namespace fs = std::filesystem;

static int reportDisc(const DiscFault& fault)
{
    return reportFault(fault.path, fault.fault);
}

// ---- before the run -----------------------------------------------------------------------------------------------

static int checkNames(const FixCommand& command, const DiscFiles& disc)
{
    for (const fs::path& path : { fs::absolute(command.project), disc.folder, disc.previous }) {
        if (!platformLibraryTakes(path))
            return refuse(printablePath(path) + " is a name that the library does not take");
    }
    return EXIT_DONE;
}

static int checkUsage(const FixCommand& command, DiscFiles* disc)
{
    std::error_code error;
    if (const int refused = checkProject(command.project)) return refused;
    disc->folder = videoFolder(command.disc);
    if (disc->folder.empty()) {
        const std::string name = printablePath(command.disc);
        return refuse("there is no VIDEO_TS.IFO in " + name + ", nor in a folder VIDEO_TS there");
    }
    if (!command.previous.empty() && !fs::is_directory(command.previous, error))
        return refuse("there is no previous folder " + printablePath(command.previous));
    // The library puts this folder before file names as it stands.
    if (!command.previous.empty()) disc->previous = fs::path(command.previous).make_preferred() / "";
    return checkNames(command, *disc);
}

static int checkSkipped(const FixCommand& command, const DiscFiles& disc)
{
    const auto skipped = std::find(disc.skipped.begin(), disc.skipped.end(), true);
    if (skipped == disc.skipped.end() || !command.previous.empty()) return EXIT_DONE;
    return refuse("the project skips title set " + std::to_string(skipped - disc.skipped.begin() + 1) +
                  "; name the folder in which it lies by --previous");
}

// ---- the run ------------------------------------------------------------------------------------------------------

// Something that looking beforehand has not shown.
static int reportFailure(const DiscFiles& disc, uint64_t code)
{
    if (DiscFault fault = findDiscFault(disc)) {
        if (fault.fault.code == 0) fault.fault.code = code;
        return reportDisc(fault);
    }
    const fs::path manager = disc.folder / "VIDEO_TS.IFO";
    if (code == CODE_MANAGER_IFO) return reportFault(manager, { code, "the file can't be opened" });
    if (code == CODE_MANAGER_READ) return reportFault(manager, { code, "the file can't be read or written" });
    return reportFault(disc.folder, { code, "the IFO of a title set can't be read or written" });
}

static int fixDisc(const FixCommand& command, const DiscFiles& disc)
{
    const uint64_t code = platformCheckStructure(fs::absolute(command.project), disc.folder, disc.previous);
    // The library holds the backup open while it copies, which Windows does not allow: all else is done by then.
    if (code == CODE_MANAGER_BACKUP) {
        if (DiscFault fault = copyManagerBackup(disc)) return reportDisc(fault);
    } else if (code) {
        return reportFailure(disc, code);
    }
    if (DiscFault fault = findBackupFault(disc)) return reportDisc(fault);
    return EXIT_DONE;
}

static std::string summary(const DiscFiles& disc)
{
    const auto skipped = std::count(disc.skipped.begin(), disc.skipped.end(), true);
    const size_t count = disc.skipped.size();
    std::string text = "tables in " + printablePath(disc.folder) + " brought into line, with " + std::to_string(count) +
                       (count == 1 ? " title set" : " title sets");
    if (skipped) text += ", of which " + std::to_string(skipped) + " skipped";
    return text + "\n";
}

int runFix(const FixCommand& command)
{
    DiscFiles disc;
    if (const int refused = checkUsage(command, &disc)) return refused;
    if (DiscFault fault = planTitleSets(readProject(command.project), &disc)) return reportDisc(fault);
    if (const int refused = checkSkipped(command, disc)) return refused;
    if (DiscFault fault = findDiscFault(disc)) return reportDisc(fault);
    if (const int failed = fixDisc(command, disc)) return failed;
    if (const std::string warning = firstSectorWarning(disc); !warning.empty())
        platformPrintError("warning: " + warning + "\n");
    if (!command.quiet) platformPrint(summary(disc));
    return EXIT_DONE;
}
