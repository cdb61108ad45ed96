// sub_picture_rig.h: bitmaps with headers of any content, and runs of the sub-picture encoder over files that a test
// makes.
#pragma once

#include "base/time_code.h"
#include "project/model.h"
#include "tests/support/bitmaps.h"
#include "tests/support/files.h"
#include "tests/support/sub_picture_decoder.h"

#include <cstdint>
#include <string>

inline constexpr uint64_t WIDTH = 720, LINES_OF_NTSC = 480, LINES_OF_PAL = 576;
inline constexpr uint64_t NTSC_PLANE = 345600, PAL_PLANE = 414720;   // bytes of an index plane

uint64_t linesOf(int64_t standard);

// A bitmap by the fields of its headers, whether they fit each other or not.
struct RawBmp {
    uint32_t headerBytes = 40;   // 12: the old form, of 16-bit fields
    int64_t width = 720, height = 480;
    uint16_t bits = 8;
    uint32_t dataOffset = 54;   // where the pixels are put as well, or behind the 54 bytes of headers if it is less
    int64_t fileBytes = -1;     // -1: as the file is
    Bytes pixels = Bytes(NTSC_PLANE);
};
Bytes rawBmp(const RawBmp& form);

/** The bytes of a block, which is freed; a null block gives none. */
Bytes takeBlock(uint8_t* block);
/** The rows of a picture as a bitmap and an index plane hold them, bottom line first. */
Bytes storedRows(const ByteImage& image);
/** A pixel code at random, the same on each machine: runs of 1 to longest. */
ByteImage randomCodes(uint64_t lines, uint64_t longest, uint32_t seed);
/** "code 2 at 17, 4, should be 1", the first of them, or nothing if the two are alike. */
std::string firstDifference(const ByteImage& expected, const ByteImage& given);
/** What a unit of a picture shows: all but two lines at the top and at the bottom. */
ByteImage shownOf(const ByteImage& image);

void setPalette(MenuDesc& menu, uint64_t entry, Rgba color);

struct UnitRun {
    uint64_t result;
    Bytes unit;
};
/** An empty path is given as null. */
UnitRun encodeFiles(const MenuDesc* menu, int64_t standard, const std::u16string& bitmap,
                    const std::u16string& alpha = u"");
/** The unit of a picture of pixel codes, which has to come out well. */
Bytes encodeCodes(const ByteImage& codes);

// The two bitmaps of a menu in files, and its unit.
struct MenuBitmaps {
    explicit MenuBitmaps(int64_t standard);
    UnitRun encode() const;
    /** Fails the test unless the encoder succeeds and its unit keeps to the format. */
    ByteImage shown() const;

    int64_t standard;
    ByteImage collision;
    AlphaImage alpha;
    MenuDesc menu = {};   // with a 32-bit form
};
