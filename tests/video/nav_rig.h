// nav_rig.h: runs the filling of navigation packs over files and lists that a test makes from a few numbers, and holds
// the packs against a second, plain writing of the rules.
#pragma once

#include "tests/video/nav_support.h"
#include "video/nav_setup.h"

#include <cstdint>
#include <string>
#include <vector>

// A VobuRecord with what tests mostly leave alone filled in.
struct Unit {
    uint64_t sector = 0;
    uint64_t scr = 0;
    uint64_t firstPts = 0;
    uint64_t pictureCount = 12;
    uint64_t vobId = 1;
    uint64_t cellId = 1;
    uint64_t firstRefEnd = 0, secondRefEnd = 0, thirdRefEnd = 0;
    uint64_t temporalRef = 0;
};
/** Records of these units; the last sector of each lies before the next one's first. */
std::vector<VobuRecord> unitRecords(const std::vector<Unit>& units);
/** count units of 12 pictures, one pack each, from sector and time on. */
std::vector<VobuRecord> evenUnits(uint64_t count, uint64_t firstPts, uint64_t frameTicks = 3600);

struct NavSpec {
    int64_t standard = 1;
    uint64_t audioCount = 0;
    uint64_t subPictureCount = 0;   // menus only
    std::vector<VobuRecord> vobus = {};
    std::vector<StreamPackRecord> packs = {};
    std::vector<MenuDesc> menus = {};   // menus only
    uint64_t sectors = 0;               // of the stream; 0: it ends with the last navigation pack
    std::vector<uint64_t> cuts = {};    // titles only: offsets at which the stream is cut into files
};

// What stood in the files before and after.
struct NavRun {
    uint64_t result;
    Bytes before, after;

    const uint8_t* packAt(uint64_t sector) const
    {
        return after.data() + sector * PACK_BYTES;
    }
    Bytes bytesAt(uint64_t sector, uint64_t at, uint64_t count) const;
    std::string hexAt(uint64_t sector, uint64_t at, uint64_t count) const
    {
        return toHex(bytesAt(sector, at, count));
    }
    /** The 19 words from an offset on, `80000001 3FFFFFFF ...`. */
    std::string words(uint64_t sector, uint64_t at, uint64_t count = 19) const;
};

/** Packs of the stream. */
uint64_t sectorsOf(const NavSpec& given);
/** The stream that these lists describe: navigation packs full of junk behind their headers, other packs full of other
 * junk.
 */
Bytes navStream(const NavSpec& given);
/** Fills the packs of a title, or of a menu VOB, in files of their own. */
NavRun setupTitle(const NavSpec& given);
NavRun setupMenu(const NavSpec& given);
/** Offsets at which bytes changed that belong to no navigation pack of the lists, or a changed size; empty if
    all is well. */
std::string strayChanges(const NavSpec& given, const NavRun& run);

/** The pack of record `index` as the rules have it, told without any thought of cost. */
Bytes referenceTitlePack(const NavSpec& given, uint64_t index, const Bytes& before);
Bytes referenceMenuPack(const NavSpec& given, uint64_t index, const Bytes& before);

// ---- lists that several tests fill --------------------------------------------------------------------------------

/** A title of three units at 0, 3 and 7 of nine packs. Display starts at 28800, 72000 and 126000; the last picture ends
    at 151200. */
NavSpec threeUnits();
/** A menu of one unit that displays from 36000 on. */
NavSpec oneMenu(const MenuDesc& menu, int64_t standard = 1);
/** A button of which every field differs from every other, and its entry in the pack. */
ButtonDesc someButton();
#define SOME_BUTTON "92 32 CD 45 A1 EF 11 12 13 14 20 04 00 00 00 00 00 07"
/** A menu of so many equal buttons, with these colour sets. */
MenuDesc menuOf(uint64_t buttonCount, const ButtonDesc& button = someButton());
#define COLOR_BYTES "C0 C1 C2 C3 C4 C5 C6 C7 C8 C9 CA CB CC CD CE CF D0 D1 D2 D3 D4 D5 D6 D7"

// Search entries that point nowhere.
#define NONE_4 "3F FF FF FF  3F FF FF FF  3F FF FF FF  3F FF FF FF  "
#define NONE_16 NONE_4 NONE_4 NONE_4 NONE_4
#define NONE_18 NONE_16 "3F FF FF FF  3F FF FF FF  "

/** What differs between a pack as it was left and one of these bytes; empty if nothing does. */
std::string differencesIn(const NavRun& run, uint64_t sector, const std::vector<PackBytes>& named);
