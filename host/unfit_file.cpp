// unfit_file.cpp: a file named in a project that explains why a run failed. Everything said here is looked up.
#include "project_fault.h"

#include "codes.h"
#include "text.h"
#include "value_check.h"

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

static constexpr uint64_t MAX_SOURCES = 32, SECTOR_BYTES = 2048;

// Why a file does not do, or an empty text.
typedef std::string (*FileTest)(const fs::path& path);

static std::u16string numbered(const std::u16string& name, uint64_t number)
{
    return name + wideOf(std::to_string(number));
}

static bool pathOf(const ProjectKey& key, fs::path* path)
{
    std::u16string text;
    if (checkText(key.value, &text).code) return false;
    // A name that was not UTF-8 can't be looked up by what is left of it.
    if (text.empty() || text.find(u'\xFFFD') != text.npos) return false;
    if (fs::path::preferred_separator == '/') {
        for (char16_t& unit : text) {
            if (unit == u'\\') unit = u'/';   // the library takes both
        }
    }
    *path = fs::path(text);
    return true;
}

static std::string missingWhy(const fs::path& path)
{
    std::error_code error;
    if (fs::is_directory(path, error)) return "that is a folder";
    if (fs::is_fifo(path, error)) return "that is a pipe, not a file";   // opening it would wait
    if (fs::exists(path, error)) return "";
    if (path.is_absolute()) return "there is no such file";
    return "there is no such file, seen from " + printablePath(fs::current_path(error));
}

static std::string notReadableWhy(const fs::path& path)
{
    if (std::string why = missingWhy(path); !why.empty()) return why;
    return std::ifstream(path, std::ios::binary) ? "" : "the file can't be opened for reading";
}

static std::string notPatchableWhy(const fs::path& path)
{
    if (std::string why = notReadableWhy(path); !why.empty()) return why;
    const std::ios::openmode inPlace = std::ios::binary | std::ios::in | std::ios::out;
    return std::fstream(path, inPlace) ? "" : "the file can't be opened for writing; a run fills the movies in place";
}

static std::string notMpegWhy(const fs::path& path)
{
    if (std::string why = notReadableWhy(path); !why.empty()) return why;
    char head[4] = {};
    std::ifstream(path, std::ios::binary).read(head, sizeof head);
    const std::string_view start(head, sizeof head), sequence("\0\0\1\xB3", 4), pack("\0\0\1\xBA", 4);
    return start == sequence || start == pack ? "" : "the file begins neither with a sequence header nor with a pack";
}

static std::string noSectorWhy(const fs::path& path)
{
    std::error_code error;
    const uint64_t bytes = fs::file_size(path, error);
    return error || bytes >= SECTOR_BYTES
               ? ""
               : "the file holds " + std::to_string(bytes) + " bytes, less than one sector of 2048";
}

static bool unfit(const ProjectFile& file, const std::u16string& section, const std::u16string& name, FileTest test,
                  ProjectFault* fault)
{
    fs::path path;
    const ProjectKey* key = findKey(file, section, name);
    if (!key || key->value.empty() || !pathOf(*key, &path)) return false;
    const std::string why = test(path);
    if (why.empty()) return false;
    *fault = { key, section, name, why };
    return true;
}

static bool unfitSource(const ProjectFile& file, uint64_t number, FileTest test, ProjectFault* fault)
{
    const std::u16string section = titleSetSection(file, number);
    const ProjectKey* scan = findKey(file, section, u"streamscanfile");
    if (scan && !scan->value.empty()) return false;   // the movie itself is not opened then
    if (unfit(file, section, u"source", test, fault)) return true;
    for (uint64_t i = 1; i < MAX_SOURCES; i++) {
        if (unfit(file, section, numbered(u"source", i), test, fault)) return true;
    }
    return false;
}

static bool unfitMenuFile(const ProjectFile& file, const std::u16string& countSection, const std::u16string& pages,
                          const std::vector<std::u16string>& names, FileTest test, ProjectFault* fault)
{
    const uint64_t menus = std::min<uint64_t>(integerOf(findKey(file, countSection, u"menus")), 99);
    for (uint64_t i = 1; i <= menus; i++) {
        for (const std::u16string& name : names) {
            if (unfit(file, numbered(pages, i), name, test, fault)) return true;
        }
    }
    return false;
}

static bool unfitAsset(const ProjectFile& file, const std::vector<std::u16string>& names, FileTest test,
                       ProjectFault* fault)
{
    for (const PlannedTitleSet& planned : plannedTitleSets(file)) {
        const std::u16string section = titleSetSection(file, planned.number);
        const std::u16string pages = numbered(u"VTS_", planned.number) + u"_MENU";
        if (planned.hasMenus && unfitMenuFile(file, section, pages, names, test, fault)) return true;
        for (const std::u16string& name : names) {
            if (name == u"streamscanfile" && unfit(file, section, name, test, fault)) return true;
        }
    }
    return unfitMenuFile(file, u"VMG", u"VMG_MENU", names, test, fault);
}

static bool unfitMovie(const ProjectFile& file, FileTest test, ProjectFault* fault)
{
    for (const PlannedTitleSet& planned : plannedTitleSets(file)) {
        if (unfitSource(file, planned.number, test, fault)) return true;
    }
    return false;
}

// A skipped title set of which no earlier run has left an IFO.
static bool missingEarlierTitleSet(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    const uint64_t count = std::min<uint64_t>(integerOf(findKey(file, u"VMG", u"titlesets")), 99);
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

// Menus are read and checked, but not made yet: the first title set that has some ends the run.
static bool unmadeMenus(const ProjectFile& file, ProjectFault* fault)
{
    std::u16string section = u"VMG";
    const std::vector<PlannedTitleSet> planned = plannedTitleSets(file);
    const auto withMenus =
        std::find_if(planned.begin(), planned.end(), [](const PlannedTitleSet& set) { return set.hasMenus; });
    if (withMenus != planned.end()) section = titleSetSection(file, withMenus->number);
    const ProjectKey* menus = findKey(file, section, u"menus");
    if (integerOf(menus) == 0) return false;
    *fault = { menus, section, u"menus", "menus are not made yet" };
    return true;
}

bool findUnfitFile(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    switch (outcome.code) {
    case CODE_READ_FAILED:
    case CODE_WRITE_FAILED: return unfitMovie(file, notPatchableWhy, fault);
    case CODE_NOTHING_SCANNED: return unfitMovie(file, noSectorWhy, fault);
    case CODE_NOT_MPEG: return unfitAsset(file, { u"background" }, notMpegWhy, fault);
    case CODE_MENU_ASSET: return unfitAsset(file, { u"background" }, notReadableWhy, fault);
    case CODE_NOT_SUPPORTED: return unmadeMenus(file, fault);
    case CODE_OLD_IFO: return missingEarlierTitleSet(file, outcome, fault);
    case CODE_FILE_NOT_FOUND:
    case CODE_PATH_NOT_FOUND:
        return unfitAsset(file,
                          { u"streamscanfile", u"subpicture", u"spuletterbox", u"subpicture32", u"spuletterbox32" },
                          missingWhy, fault);
    default: return false;
    }
}
