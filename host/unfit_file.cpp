// unfit_file.cpp: a file named in a project that explains why a run failed. Everything said here is looked up.
#include "project_fault.h"

#include "codes.h"
#include "named_file.h"
#include "text.h"

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

static constexpr uint64_t MANAGER = 0, MAX_TITLE_SETS = 99, MAX_SOURCES = 32, SECTOR_BYTES = 2048;

// Why a file does not do, or an empty text.
typedef std::string (*FileTest)(const fs::path& path);

static std::string notPatchableWhy(const fs::path& path)
{
    if (std::string why = notReadableWhy(path); !why.empty()) return why;
    const std::string why = notWritableWhy(path);
    return why.empty() ? "" : why + "; a run fills the movies in place";
}

static std::string noSectorWhy(const fs::path& path)
{
    std::error_code error;
    const uint64_t bytes = fs::file_size(path, error);
    return error || bytes >= SECTOR_BYTES ? ""
                                          : "the file holds " + bytesText(bytes) + ", less than one sector of 2048";
}

static bool unfit(const ProjectFile& file, const std::u16string& section, const std::u16string& name, FileTest test,
                  ProjectFault* fault)
{
    fs::path path;
    const ProjectKey* key = findKey(file, section, name);
    if (!isFilled(key) || !pathOf(*key, &path)) return false;
    const std::string why = test(path);
    if (why.empty()) return false;
    *fault = { key, section, name, why };
    return true;
}

static bool unfitSource(const ProjectFile& file, uint64_t number, FileTest test, ProjectFault* fault)
{
    const std::u16string section = titleSetSection(file, number);
    if (isFilled(findKey(file, section, u"streamscanfile"))) return false;   // the movie itself is not opened then
    if (unfit(file, section, u"source", test, fault)) return true;
    for (uint64_t i = 1; i < MAX_SOURCES; i++) {
        if (unfit(file, section, numbered(u"source", i), test, fault)) return true;
    }
    return false;
}

static bool unfitMovie(const ProjectFile& file, FileTest test, ProjectFault* fault)
{
    for (const PlannedTitleSet& planned : plannedTitleSets(file)) {
        if (unfitSource(file, planned.number, test, fault)) return true;
    }
    return false;
}

static bool unfitBackground(const ProjectFile& file, uint64_t titleSet, FileTest test, ProjectFault* fault)
{
    for (const std::u16string& section : menuSections(file, titleSet)) {
        if (unfit(file, section, u"background", test, fault)) return true;
    }
    return false;
}

static bool unfitAsset(const ProjectFile& file, FileTest test, ProjectFault* fault)
{
    for (const PlannedTitleSet& planned : plannedTitleSets(file)) {
        if (unfitBackground(file, planned.number, test, fault)) return true;
    }
    return unfitBackground(file, MANAGER, test, fault);
}

// A skipped title set of which no earlier run has left an IFO.
static bool missingEarlierTitleSet(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    const uint64_t count = std::min(integerOf(findKey(file, u"VMG", u"titlesets")), MAX_TITLE_SETS);
    for (uint64_t number = 1; number <= count; number++) {
        const std::u16string section = titleSetSection(file, number);
        const ProjectKey* skip = findKey(file, section, u"skipvts");
        if (!integerOf(skip)) continue;
        const std::string name = "VTS_" + std::string(number < 10 ? "0" : "") + std::to_string(number) + "_0.IFO";
        std::error_code error;
        const bool earlier = !outcome.previous.empty() && fs::exists(outcome.previous / name, error);
        if (earlier || fs::exists(outcome.target / name, error)) continue;
        *fault = { skip, section, u"skipvts",
                   "no earlier run has left " + name + " in the " +
                       (outcome.previous.empty() ? "target" : "previous or the target") + " folder" };
        return true;
    }
    return false;
}

bool findUnfitFile(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    switch (outcome.code) {
    case CODE_READ_FAILED:
    case CODE_WRITE_FAILED: return unfitMovie(file, notPatchableWhy, fault);
    case CODE_NOTHING_SCANNED: return unfitMovie(file, noSectorWhy, fault);
    case CODE_NOT_MPEG: return unfitAsset(file, notMpegWhy, fault);
    // The manager alone is told that a background can't be opened; a title set takes it for one that is no MPEG.
    case CODE_MENU_ASSET: return unfitBackground(file, MANAGER, notReadableWhy, fault);
    case CODE_OLD_IFO: return missingEarlierTitleSet(file, outcome, fault);
    default: return findUnfitMenu(file, outcome, fault);
    }
}
