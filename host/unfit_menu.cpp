// unfit_menu.cpp: a menu's bitmap, movie, button or VOB that explains why a run failed. Everything said here is looked
// up, in the order in which a run meets it: the menus of each title set, its scan file, the manager's menus.
#include "project_fault.h"

#include "codes.h"
#include "menu_bitmap.h"
#include "named_file.h"
#include "text.h"
#include "value_check.h"

#include <fstream>

namespace fs = std::filesystem;

static constexpr uint64_t MANAGER = 0, MAX_BUTTONS = 36;
static constexpr uint64_t SECTOR_BYTES = 2048, AT_CLOCK = 1031, AT_LAST_SECTOR = 1039;   // of a navigation pack
static constexpr uint64_t SCAN_FILE_HEAD = 8;

typedef const std::u16string& Name;

struct MenuSearch {
    const ProjectFile* file;
    const RunOutcome* outcome;
    uint64_t code = 0;   // of the fault
    ProjectFault fault = {};
};

static bool found(MenuSearch* search, Name section, Name name, uint64_t code, const std::string& why)
{
    search->code = code;
    search->fault = { findKey(*search->file, section, name), section, name, why };
    return true;
}

static uint64_t linesOf(const ProjectFile& file)
{
    const ProjectKey* mode = findKey(file, u"COMMON", u"mode");
    return mode && sameName(mode->value, u"NTSC") ? NTSC_LINES : PAL_LINES;
}

static bool namesFile(const ProjectFile& file, Name section, const char16_t* name, fs::path* path)
{
    const ProjectKey* key = findKey(file, section, name);
    return isFilled(key) && pathOf(*key, path);
}

// ---- bitmaps and scan files -----------------------------------------------------------------------------------------

// Which of a menu's bitmaps are looked at. Whether that of a letterbox's button numbers is read, its pixels decide.
enum Certainty { SURELY_READ, PERHAPS_READ };

static bool hasAlpha(const ProjectFile& file, Name section)
{
    const bool letterbox = isFilled(findKey(file, section, u"spuletterbox"));
    return isFilled(findKey(file, section, u"subpicture32")) &&
           (!letterbox || isFilled(findKey(file, section, u"spuletterbox32")));
}

static bool unfitBitmap(MenuSearch* search, Name section, const char16_t* name, uint64_t bits)
{
    fs::path path;
    if (!namesFile(*search->file, section, name, &path)) return false;
    const BitmapFault fault = checkBitmap(path, linesOf(*search->file), bits);
    return fault.code && found(search, section, name, fault.code, fault.why);
}

static bool unfitBitmaps(MenuSearch* search, Name section, Certainty certainty)
{
    if (!hasAlpha(*search->file, section)) {
        return unfitBitmap(search, section, u"subpicture", ANY_DEPTH) ||
               unfitBitmap(search, section, u"spuletterbox", ANY_DEPTH);
    }
    if (unfitBitmap(search, section, u"subpicture", COLLISION_DEPTH) ||
        unfitBitmap(search, section, u"subpicture32", ALPHA_DEPTH)) {
        return true;
    }
    if (!isFilled(findKey(*search->file, section, u"spuletterbox"))) return false;
    return (certainty == PERHAPS_READ && unfitBitmap(search, section, u"spuletterbox", COLLISION_DEPTH)) ||
           unfitBitmap(search, section, u"spuletterbox32", ALPHA_DEPTH);
}

static bool unfitScanFile(MenuSearch* search, uint64_t titleSet)
{
    fs::path path;
    const std::u16string section = titleSetSection(*search->file, titleSet), name = u"streamscanfile";
    if (search->outcome->menusOnly || !namesFile(*search->file, section, u"streamscanfile", &path)) return false;
    if (const std::string why = notReadableWhy(path); !why.empty()) {
        return found(search, section, name, CODE_FILE_NOT_FOUND, why);
    }
    char head[SCAN_FILE_HEAD] = {};
    std::ifstream in(path, std::ios::binary);
    in.read(head, sizeof head);
    if (in && std::string_view(head, 4) == std::string_view("\1\0\0\0", 4)) return false;
    return found(search, section, name, CODE_INVALID_ARGUMENT, "the file is no stream scan file");
}

static bool unfitMenus(MenuSearch* search, uint64_t titleSet, Certainty certainty)
{
    for (const std::u16string& section : menuSections(*search->file, titleSet)) {
        if (unfitBitmaps(search, section, certainty)) return true;
    }
    return false;
}

// The first fault of all, whatever its code.
static bool unfitInput(MenuSearch* search, Certainty certainty)
{
    for (const PlannedTitleSet& planned : plannedTitleSets(*search->file)) {
        if (unfitMenus(search, planned.number, certainty) || unfitScanFile(search, planned.number)) return true;
    }
    return unfitMenus(search, MANAGER, certainty);
}

static bool explainsInput(MenuSearch* search, Certainty certainty)
{
    if (!unfitInput(search, certainty)) return false;
    return search->code == CODE_FILE_NOT_FOUND ? isUnreadableFile(search->outcome->code)
                                               : search->code == search->outcome->code;
}

// ---- buttons --------------------------------------------------------------------------------------------------------

static std::string emptyWhy(const ButtonCorners& corners, const std::vector<uint8_t>& map, uint64_t lines)
{
    const bool area = corners.xEnd > corners.xStart + 1 && corners.yEnd > corners.yStart + 1;
    if (!area) return "the rectangle has no inside: its ends must lie two or more behind its starts";
    for (uint64_t y = corners.yStart; y < corners.yEnd && y < lines; y++) {
        const uint8_t* row = map.data() + (lines - 1 - y) * BITMAP_COLUMNS;
        for (uint64_t x = corners.xStart; x < corners.xEnd && x < BITMAP_COLUMNS; x++) {
            if (row[x]) return "";
        }
    }
    return "the `subpicture` has no button number within this rectangle";
}

static bool emptyButton(MenuSearch* search, Name section)
{
    fs::path path;
    if (!hasAlpha(*search->file, section) || !namesFile(*search->file, section, u"subpicture", &path)) return false;
    const uint64_t lines = linesOf(*search->file);
    const std::vector<uint8_t> map = readCollisionMap(path, lines);
    if (map.empty()) return false;
    const uint64_t buttons = integerOf(findKey(*search->file, section, u"buttons"));
    for (uint64_t i = 1; i <= buttons && i <= MAX_BUTTONS; i++) {
        const std::u16string name = numbered(u"button", i);
        const ProjectKey* key = findKey(*search->file, section, name);
        ButtonCorners corners = {};
        if (key) (void)checkButtonCorners(key->value, &corners);
        const std::string why = key ? emptyWhy(corners, map, lines) : "a button without a key has no rectangle";
        if (!why.empty()) return found(search, section, name, CODE_EMPTY_BUTTON, why);
    }
    return false;
}

// ---- movies ---------------------------------------------------------------------------------------------------------

static uint64_t wordAt(const std::string& pack, size_t at)
{
    uint64_t word = 0;
    for (size_t i = 0; i < 4; i++) word = word << 8 | uint8_t(pack[at + i]);
    return word;
}

// Clock from which the sub-picture shows: 0, or that of the key in *name.
static uint64_t loopStart(const ProjectFile& file, Name section, std::u16string* name)
{
    const ProjectKey* type = findKey(file, section, u"type");
    std::u16string word;
    if (!isFilled(type) || checkText(type->value, &word).code || !sameName(word, u"animated")) return 0;
    const uint64_t loop = integerOf(findKey(file, section, u"loop"));
    *name = loop ? u"loop" : u"delay";
    return loop == 1 ? 0 : integerOf(findKey(file, section, *name));
}

// Position of the first navigation pack at or after a clock, by the chain of the packs; none: the file's size.
static uint64_t loopPack(std::ifstream* in, uint64_t bytes, uint64_t clock)
{
    std::string pack(SECTOR_BYTES, '\0');
    for (uint64_t at = 0; bytes - at >= SECTOR_BYTES;) {
        in->seekg(std::streamoff(at));
        if (!in->read(pack.data(), SECTOR_BYTES)) break;
        if (wordAt(pack, AT_CLOCK) >= clock) return at;
        const uint64_t step = (wordAt(pack, AT_LAST_SECTOR) + 1) * SECTOR_BYTES;
        if (step > bytes - at) break;
        at += step;
    }
    return bytes;
}

static bool endingMovie(MenuSearch* search, Name section)
{
    fs::path path;
    if (!namesFile(*search->file, section, u"background", &path) || !notReadableWhy(path).empty()) return false;
    std::ifstream in(path, std::ios::binary);
    char start[4] = {};
    if (!in.read(start, sizeof start) || std::string_view(start, sizeof start) != std::string_view("\0\0\1\xBA", 4)) {
        return false;   // a still is read to whatever end it has
    }
    const uint64_t bytes = fileBytes(path);
    if (bytes < 2 * SECTOR_BYTES) {
        return found(search, section, u"background", CODE_MENU_MOVIE_ENDS,
                     "the file holds " + bytesText(bytes) + ", less than two packs of 2048");
    }
    std::u16string name;
    const uint64_t clock = loopStart(*search->file, section, &name);
    if (clock == 0 || bytes - loopPack(&in, bytes, clock) >= 2 * SECTOR_BYTES) return false;
    return found(search, section, name, CODE_MENU_MOVIE_ENDS, "the `background` ends before this time, in 1/90000 s");
}

// ---- the whole
// --------------------------------------------------------------------------------------------------------

static bool anyMenu(MenuSearch* search, bool (*test)(MenuSearch* search, Name section))
{
    std::vector<uint64_t> domains;
    for (const PlannedTitleSet& planned : plannedTitleSets(*search->file)) domains.push_back(planned.number);
    domains.push_back(MANAGER);
    for (const uint64_t domain : domains) {
        for (const std::u16string& section : menuSections(*search->file, domain)) {
            if (test(search, section)) return true;
        }
    }
    return false;
}

static bool unwritableVob(MenuSearch* search, Name section, const std::string& vob)
{
    const std::string why = notWritableWhy(search->outcome->target / vob);
    return !why.empty() && found(search, section, u"menus", search->outcome->code,
                                 vob + " in the target folder holds these menus: " + why);
}

static bool unwritableMenus(MenuSearch* search)
{
    for (const PlannedTitleSet& planned : plannedTitleSets(*search->file)) {
        const std::string number = std::to_string(planned.number);
        const std::string vob = "VTS_" + std::string(planned.number < 10 ? "0" : "") + number + "_0.VOB";
        if (planned.hasMenus && unwritableVob(search, titleSetSection(*search->file, planned.number), vob)) return true;
    }
    return false;
}

static bool explains(MenuSearch* search)
{
    switch (search->outcome->code) {
    case CODE_MENU_VOB: return unwritableMenus(search);
    case CODE_MANAGER_VOB: return unwritableVob(search, u"VMG", "VIDEO_TS.VOB");
    case CODE_MENU_MOVIE_ENDS: return anyMenu(search, endingMovie);
    case CODE_EMPTY_BUTTON: return anyMenu(search, emptyButton);
    default: return explainsInput(search, SURELY_READ) || explainsInput(search, PERHAPS_READ);
    }
}

bool findUnfitMenu(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    MenuSearch search = { &file, &outcome };
    if (!explains(&search)) return false;
    *fault = search.fault;
    return true;
}
