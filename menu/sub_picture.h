// sub_picture.h: turns a bitmap into one sub-picture unit, which shows nothing by itself: buttons make it visible by
// the colours of their highlight.
//
// A unit: size (2 bytes), offset of the control sequence (2), the run-length coded field of the even picture lines,
// that of the odd lines, the control sequence, a byte 0xFF if the size were odd otherwise. Numbers are big-endian.
//
// An index plane is a memory block of PICTURE_WIDTH x height bytes, one pixel code 0..3 a byte, bottom line first.
#pragma once

#include "project/model.h"

#include <cstdint>

inline constexpr uint64_t SPU_SCRATCH_BYTES = 65536;   // a field, and the control area, have to fit

// Commands of a control sequence, by their numbers in the unit.
enum SpuCommandNumber : uint8_t {
    SPU_FORCED_START = 0,   // starts display also where sub-pictures are off
    SPU_START = 1,
    SPU_STOP = 2,
    SPU_SET_COLOR = 3,             // params: emphasis 2, emphasis 1, pattern, background; 0..15
    SPU_SET_CONTRAST = 4,          // the same
    SPU_SET_DISPLAY_AREA = 5,      // params: first and last column, first and last line; 12 bits each
    SPU_SET_PIXEL_ADDRESSES = 6,   // no params: the addresses are those of the unit at hand
    SPU_CHANGE_COLORS = 7,         // no params
};

struct SpuCommand {
    uint8_t number;   // SPU_...
    uint16_t params[4];
};

struct SpuSequence {
    uint16_t delay;      // until its commands are carried out, 1024 / 90000 second
    uint16_t distance;   // bytes from this sequence to the next; 0 marks the last
    const SpuCommand* commands;
    uint64_t commandCount;
};

/** Encodes a bitmap into a temporary file, whose path is returned in *tempPath: the caller deletes the file and frees
    the string. On failure there is no file and *tempPath is null.
    @param menu             null for a sub-picture that stands in bitmapPath as it is
    @param blinkCount, blinkDelay  not used: a unit carries no blink sequence
    @param alphaBitmapPath  may be null if the menu has no 32-bit form
    @return 0; ORV_NO_TEMP_FILE_FOR_SPU; ORV_TEMP_SPU_NOT_WRITTEN; what orvEncodeSubPicture returns */
[[nodiscard]] uint64_t orvEncodeSubPictureFile(int64_t videoStandard, const MenuDesc* menu, uint64_t blinkCount,
                                               uint64_t blinkDelay, const char16_t* bitmapPath,
                                               const char16_t* alphaBitmapPath, char16_t** tempPath);

/** Encodes a bitmap into a block that the caller owns; null on failure.
    @return 0; what orvReadBitmap returns; ORV_COLLISION_BITMAP_NOT_8BIT; ORV_ALPHA_BITMAP_NOT_32BIT;
            ORV_SUBPICTURE_TOO_LARGE if a field outgrows SPU_SCRATCH_BYTES */
[[nodiscard]] uint64_t orvEncodeSubPicture(const MenuDesc* menu, const char16_t* bitmapPath,
                                           const char16_t* alphaBitmapPath, int64_t videoStandard, uint8_t** unit);

/** Fills an index plane from the alpha bitmap of a menu without overlapping buttons: by alpha, or, if the menu has many
    colours, by the nearest of its palette's entries 1 to 3. */
[[nodiscard]] uint64_t orvMapAlphaToIndex(int64_t videoStandard, const MenuDesc* menu, const char16_t* alphaBitmapPath,
                                          uint8_t* indexPlane);

/** Appends one field to a unit: field 0 holds the picture lines 0, 2, 4 ..., field 1 the others, each from the top.
    Pixel codes count by their low two bits.
    @return 0; ORV_SUBPICTURE_TOO_LARGE; a platform's number */
[[nodiscard]] uint64_t orvRleEncodeField(uint8_t** unit, const uint8_t* indexPlane, uint64_t width, uint64_t height,
                                         uint64_t field);

/** Appends the control area to a unit. The offsets count from the unit's start. videoStandard is not used: the lines
    of a display area are parameters of its command. */
[[nodiscard]] uint64_t orvWriteSpuControl(uint8_t** unit, int64_t videoStandard, const SpuSequence* sequences,
                                          uint64_t count, uint64_t controlOffset, uint64_t topFieldOffset,
                                          uint64_t bottomFieldOffset);
