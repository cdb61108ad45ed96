// chapters.cpp: the command `chapters`: the library renumbers the cells of navigation packs, and the host walks them.
// The whole walk is made once before anything is written.
#include "chapters.h"

#include "cli.h"
#include "codes.h"
#include "explain.h"
#include "interrupt.h"
#include "named_file.h"
#include "nav_pack.h"
#include "outputs.h"
#include "platform.h"
#include "progress.h"
#include "report.h"
#include "text.h"
#include "vob_files.h"

namespace fs = std::filesystem;

struct ChaptersRun {
    const ChaptersCommand* command = nullptr;
    fs::path project;   // absolute
    VobFiles vobs;
    ProgressDisplay display;
    // What the walk has found.
    uint64_t packs = 0;
    std::vector<uint64_t> changed;   // sectors, as they are to be written
    uint64_t firstCell = 0, lastCell = 0;
    bool goesOn = false;   // the last unit reaches behind the end
};

// ---- before the run -----------------------------------------------------------------------------------------------

static int checkChapters(const ChaptersCommand& command)
{
    const ProjectFile project = readProject(command.project);
    const std::u16string section = numbered(u"VTS_", command.titleSet), padded = numbered(u"VTS_0", command.titleSet);
    if (integerOf(findKey(project, section, u"chapters"))) return EXIT_DONE;
    const bool other = findSection(project, padded) != nullptr;
    return refuse("the project " + printablePath(command.project) + " has no `chapters` in section [" +
                  printable(section) + "]" +
                  (other ? "; its section [" + printable(padded) + "] is not looked at by this command" : ""));
}

static int checkVobs(const ChaptersCommand& command, VobFiles* vobs)
{
    for (const fs::path& vob : command.vobs) {
        if (const std::string why = notReadableWhy(vob); !why.empty()) return refuse(printablePath(vob) + ": " + why);
        if (const std::string why = notWritableWhy(vob); !why.empty()) return refuse(printablePath(vob) + ": " + why);
        for (const fs::path& other : command.vobs) {
            if (&other != &vob && sameFile(vob, other)) return refuse(printablePath(vob) + " is named twice");
        }
    }
    const std::string why = measureVobs(command.vobs, vobs);
    return why.empty() ? EXIT_DONE : refuse(why);
}

static int checkUsage(ChaptersRun* run)
{
    const ChaptersCommand& command = *run->command;
    if (const int refused = checkProject(command.project)) return refused;
    run->project = fs::absolute(command.project);
    if (!platformLibraryTakes(run->project))
        return refuse("the project " + printablePath(run->project) + " has a name that the library does not take");
    if (const int refused = checkChapters(command)) return refused;
    return checkVobs(command, &run->vobs);
}

// ---- the walk -----------------------------------------------------------------------------------------------------

static int fault(ChaptersRun* run, uint64_t sector, uint64_t code, const std::string& why)
{
    const std::string place = placeText(run->vobs, sector) + ": " + why;
    platformPrintError(progressEnd(&run->display));
    if (code == 0) {
        platformPrintError("error: " + place + "\n");
    } else {
        platformPrintError("error: " + resultLine(code, platformResultText(code)) + "\n  " + place + "\n" +
                           moreLine(code));
    }
    return EXIT_RUN_FAILED;
}

static int unreadable(ChaptersRun* run, uint64_t sector)
{
    return fault(run, sector, CODE_READ_FAILED, "the file can't be read");
}

/** Looks for the next navigation pack from a sector on. *found gets the end of the files if there is none. */
static int findNavPack(ChaptersRun* run, uint64_t from, uint64_t* found)
{
    uint8_t sector[SECTOR_BYTES];
    for (*found = from; *found < run->vobs.sectors; ++*found) {
        if (!readSector(&run->vobs, *found, sector)) return unreadable(run, *found);
        if (isNavPack(sector)) break;
    }
    return EXIT_DONE;
}

static void note(ChaptersRun* run, uint64_t at, const uint8_t* sector, bool changed)
{
    const uint64_t cell = navFields(sector).cell;
    if (run->packs == 0) run->firstCell = cell;
    run->lastCell = cell;
    run->packs++;
    if (changed) run->changed.push_back(at);
}

/** Treats the navigation pack at a sector, to which another one (from) leads. *next gets the sector of the next one, or
 *  the end of the files. */
static int stepOn(ChaptersRun* run, uint64_t from, uint64_t at, uint64_t* next)
{
    constexpr uint64_t UNTOUCHED = uint64_t(ORV_LAST_VOBU) + 1;
    uint8_t sector[SECTOR_BYTES];
    uint64_t nextVobu = UNTOUCHED, changed = 0;
    if (!readSector(&run->vobs, at, sector)) return unreadable(run, at);
    const uint64_t code = platformSetChapter(sector, run->project, run->command->titleSet, &nextVobu, &changed);
    if (code == CODE_NO_NAV_PACK || code == CODE_BAD_SECTOR) {
        return fault(run, at, code,
                     "a navigation pack should be here, since the one in " + placeText(run->vobs, from) + " tells so");
    }
    if (code) return fault(run, at, code, "the library goes no further");
    if (nextVobu == UNTOUCHED) return fault(run, at, 0, "the library finds no chapters in the project");
    if (isBlank(navFields(sector))) {
        return fault(run, at, 0,
                     "the navigation pack is empty; an authoring run that names the movie as `source` fills it");
    }
    note(run, at, sector, changed != 0);
    if (nextVobu == ORV_LAST_VOBU) return findNavPack(run, at + 1, next);
    *next = at + nextVobu + 1;
    if (*next <= run->vobs.sectors) return EXIT_DONE;   // authored movies have no mark at their end
    if (const int failed = findNavPack(run, at + 1, next)) return failed;
    run->goesOn = *next == run->vobs.sectors;
    if (run->goesOn) return EXIT_DONE;
    return fault(run, at, 0,
                 "its unit would reach behind the end, but " + placeText(run->vobs, *next) +
                     " holds a further navigation pack");
}

static void showProgress(ChaptersRun* run, const char* name, uint64_t done, uint64_t total)
{
    const uint64_t columns = run->display.mode == PROGRESS_BAR ? platformTerminalColumns() : 0;
    const std::string text = progressWork(&run->display, name, uint32_t(total), uint32_t(done), columns);
    if (!text.empty()) platformPrintError(text);
}

static int walkPacks(ChaptersRun* run)
{
    uint64_t from = 0, at = 0, next = 0;
    if (const int failed = findNavPack(run, 0, &at)) return failed;
    if (at == run->vobs.sectors)
        return reportFault(run->vobs.files[0].path, { 0, "it has no navigation packs, as the movies of a DVD have" });
    for (; at < run->vobs.sectors; from = at, at = next) {
        if (isInterrupted()) {
            platformPrintError(progressEnd(&run->display) + "error: interrupted; nothing is changed\n");
            return EXIT_INTERRUPTED;
        }
        if (const int failed = stepOn(run, from, at, &next)) return failed;
        showProgress(run, "looking at packs", next, run->vobs.sectors);
    }
    return EXIT_DONE;
}

// ---- writing ------------------------------------------------------------------------------------------------------

static bool rewrite(ChaptersRun* run, uint64_t at)
{
    uint8_t sector[SECTOR_BYTES];
    if (!readSector(&run->vobs, at, sector)) return false;
    if (platformSetChapter(sector, run->project, run->command->titleSet, nullptr, nullptr)) return false;
    return writeSector(&run->vobs, at, sector);
}

static int stopped(ChaptersRun* run, size_t written)
{
    platformPrintError(progressEnd(&run->display) + "error: interrupted; " + std::to_string(written) + " of " +
                       std::to_string(run->changed.size()) +
                       " packs are changed. Run the command again for the rest\n");
    return EXIT_INTERRUPTED;
}

static int writePacks(ChaptersRun* run)
{
    if (!openVobs(&run->vobs, true)) return fault(run, 0, CODE_WRITE_FAILED, "the movie can't be opened for writing");
    for (size_t i = 0; i < run->changed.size(); i++) {
        if (isInterrupted()) return stopped(run, i);
        if (!rewrite(run, run->changed[i])) {
            return fault(run, run->changed[i], CODE_WRITE_FAILED,
                         "the pack can't be written; " + std::to_string(i) + " of " +
                             std::to_string(run->changed.size()) + " are changed");
        }
        showProgress(run, "writing packs", i + 1, run->changed.size());
    }
    if (closeVobs(&run->vobs)) return EXIT_DONE;
    return fault(run, 0, CODE_WRITE_FAILED, "the movie can't be written");
}

// ---- what there is to say -----------------------------------------------------------------------------------------

static void printWarnings(const ChaptersRun& run)
{
    const std::string name = printablePath(run.vobs.files.back().path);
    if (run.firstCell != 1) {
        platformPrintError("warning: the first unit is in cell " + std::to_string(run.firstCell) +
                           ", since a chapter lies at its clock or before it; the tables of a disc begin with cell 1. "
                           "Write `chapter1=4294967295`: authoring does not look at it\n");
    }
    if (run.goesOn) {
        platformPrintError("warning: the last unit goes on behind the end of " + name +
                           ": name the further files of the movie too, behind the first\n");
    }
}

static std::string packsText(uint64_t packs)
{
    return std::to_string(packs) + (packs == 1 ? " navigation pack" : " navigation packs");
}

static void printSuccess(const ChaptersRun& run)
{
    printWarnings(run);
    if (run.command->quiet) return;
    const std::string cells = run.firstCell == run.lastCell
                                  ? "cell " + std::to_string(run.firstCell)
                                  : "cells " + std::to_string(run.firstCell) + " to " + std::to_string(run.lastCell);
    platformPrint(packsText(run.packs) + " looked at, " + std::to_string(run.changed.size()) + " changed; " + cells +
                  "\n");
}

int runChapters(const ChaptersCommand& command)
{
    watchForInterrupt();
    ChaptersRun run;
    run.command = &command;
    run.display.mode = command.quiet ? PROGRESS_NONE : platformHasTerminal() ? PROGRESS_BAR : PROGRESS_LINES;
    if (const int refused = checkUsage(&run)) return refused;
    if (!openVobs(&run.vobs, false)) return unreadable(&run, 0);
    if (const int failed = walkPacks(&run)) return failed;
    platformPrintError(progressEnd(&run.display));
    (void)closeVobs(&run.vobs);   // only read
    if (!run.changed.empty()) {
        if (const int failed = writePacks(&run)) return failed;
        platformPrintError(progressEnd(&run.display));
    }
    printSuccess(run);
    return EXIT_DONE;
}
