// menu_project.h: discs with menus: assets made by tests, the project sections that name them, and the packs that a
// menu VOB has to hold, laid out from the format alone.
#pragma once

#include "tests/run/disc_run.h"
#include "tests/support/bitmaps.h"

#include <optional>

// ---- assets -------------------------------------------------------------------------------------------------------

/** An elementary still: a sequence header, the header of one I picture right behind it, filler up to bytes (100 at
    least). */
Bytes stillAsset(uint64_t bytes = 100);

/** A program stream as an animated menu brings it: a movie whose navigation packs tell the ends of their units. */
Movie animatedAsset(const MovieSpec& recipe);
/** Units of two sectors and 12 pictures each; their first packs have SCR 0, 43200, 86400 ... in PAL. */
Movie shortUnits(uint64_t count, int64_t standard = 1);

// A line of a picture that begins with pairs of pixels of code 1 and code 2, transparent behind them. Coded it takes
// one byte a pair, 0x56, and two zeros.
struct Comb {
    uint64_t line;    // 2 to height - 3
    uint64_t pairs;   // 1 to 350
};

/** A picture that holds nothing but combs. */
ByteImage combImage(uint64_t height, const std::vector<Comb>& combs);
/** The unit that such a picture makes: 4 + 2 x height + 24 bytes, and one more for each pair; even. */
Bytes combUnit(uint64_t height, const std::vector<Comb>& combs);
/** Combs that make a unit exactly so many bytes larger than an empty one; even. */
std::vector<Comb> combsFor(uint64_t moreBytes);

// ---- projects -----------------------------------------------------------------------------------------------------

// A menu: its files and the other keys of its section. Missing files have no key.
struct MenuSpec {
    Bytes background = stillAsset();
    Bytes subPicture = bmpFile(ByteImage(576));
    std::optional<Bytes> letterbox = {};
    std::optional<Bytes> subPicture32 = {};
    std::optional<Bytes> letterbox32 = {};
    std::string keys = {};
};

struct MenuDisc {
    std::string mode = "PAL";
    std::vector<MenuSpec> titleSet = {};   // menus of title set 1
    std::vector<MenuSpec> manager = {};
    std::string titleSetKeys = {};   // of VTS_1_MENU
    std::string managerKeys = {};    // of VMG_MENU
};

/** Writes the files of a menu into the run's folder and gives the section that names them. */
std::string menuSection(const DiscRun& run, const std::string& section, const MenuSpec& menu);
/** Writes all files of a disc, its title of four units and 20 sectors too, and gives the project. */
std::string menuProject(const DiscRun& run, const MenuDisc& disc);
/** A file of a menu by its ending: ".mpg", ".bmp", "_l.bmp", "_32.bmp", "_l32.bmp". */
std::u16string assetPath(const DiscRun& run, const std::string& section, const std::string& ending);

/** "buttons=n" and the keys of n buttons, small boxes side by side from the top left, linked in a ring. */
std::string buttonKeys(uint64_t count);

// The two domains of menus, by what tells them apart.
struct MenuDomain {
    const char* name;
    bool manager;
    const char* section;   // of the first menu
    const char* vob;
    const char* ifo;
    uint32_t kind;   // of its progress calls
};
inline constexpr MenuDomain MENU_DOMAINS[] = {
    { "title set", false, "VTS_1_MENU1", "VTS_01_0.VOB", "VTS_01_0.IFO", 1 },
    { "manager", true, "VMG_MENU1", "VIDEO_TS.VOB", "VIDEO_TS.IFO", 5 },
};
/** A disc with these menus in one domain alone. */
MenuDisc discOf(const MenuDomain& domain, const std::vector<MenuSpec>& menus, const std::string& mode = "PAL");

// ---- packs --------------------------------------------------------------------------------------------------------

// PES headers of the packs of a menu, from offset 14: with the time stamps 18000 and, for video, 18000 less a frame.
inline const char* const FIRST_VIDEO_PAL = "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8";
inline const char* const FIRST_VIDEO_NTSC = "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 75 2B 1E 60 E8";
inline const char* const LATER_VIDEO = "00 00 01 E0 07 EC 81 00 00";
inline const char* const FIRST_SPU = "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A";
inline const char* const LATER_SPU = "00 00 01 BD 07 EC 81 00 00";
inline constexpr uint64_t FIRST_VIDEO_BYTES = 2012, LATER_VIDEO_BYTES = 2025;   // payload of a full pack
inline constexpr uint64_t FIRST_SPU_BYTES = 2016, LATER_SPU_BYTES = 2024;

/** Clock of a pack by its sector number, at 25200 units of 50 bytes a second. */
PackClock menuClock(uint64_t sector);
/** A pack of this sector number: header, PES header, sub-stream id (0: none), payload, filled up to 2048 bytes. */
Bytes menuPack(uint64_t sector, const std::string& pesHeader, uint8_t subStreamId, const Bytes& payload);
/** The packs of a sub-picture: the first at sector number 2, the others from sector on, which rises. firstHeader is the
    PES header of the first. */
Bytes spuPacks(const Bytes& unit, uint8_t subStreamId, uint64_t& sector, const std::string& firstHeader = FIRST_SPU);
/** The packs of a still's video behind its first, from sector on. */
Bytes laterVideoPacks(const Bytes& video, uint64_t sector);
/** A pack whose clock is later by so many ticks. */
Bytes shiftedPack(const Bytes& pack, uint64_t ticks);
