// color_census.h: counts what values a region of a bitmap holds.
#pragma once

#include <cstdint>

// Entry of a census, kept in a memory block in order of first appearance.
struct ColorCount {
    uint64_t count;
    uint64_t value;   // red << 16 | green << 8 | blue, a collision byte, or an alpha
};

inline constexpr uint64_t CENSUS_PAGES = 4096;   // of the table of values, 4096 entries each: 24 bits in all

// A census under way. Its table of values makes it linear in what is counted, whatever values come.
struct Census {
    ColorCount* list;   // a memory block; whoever ends the census owns it
    uint32_t** pages;   // CENSUS_PAGES of them, null until they are needed: positions in the list, from 1
    uint64_t room;      // entries that the list's block has bytes for while the census goes on
    uint64_t used;
};

[[nodiscard]] uint64_t orvBeginCensus(Census* census);
/** Adds count to the entry of a value, a new one behind the others if it has none. A value of more than 24 bits is
    ORV_INVALID_ARGUMENT. */
[[nodiscard]] uint64_t orvCountValue(Census* census, uint64_t value, uint64_t count);
/** Ends a census and hands its list out, trimmed; the caller owns it. */
[[nodiscard]] uint64_t orvEndCensus(Census* census, ColorCount** list);
/** Drops a census. */
void orvDropCensus(Census* census);

/** Census of a region, which has to lie within the bitmap. In a 32-bit bitmap pixels below VISIBLE_ALPHA are not
    listed: they are counted in a leading entry of value 0, which is there also with a count of 0.
    @param bitsPerPixel  8 or 32, any other is ORV_INVALID_ARGUMENT
    @param storedRow     lowest row of the region, counted from the bitmap's bottom line
    @param rowGap        pixels from the end of a region's row to the start of the next
    @param list          gets a block that the caller owns */
[[nodiscard]] uint64_t orvCountBitmapColors(const uint8_t* pixels, uint64_t bitsPerPixel, uint64_t x,
                                            uint64_t storedRow, uint64_t width, uint64_t height, uint64_t rowGap,
                                            ColorCount** list);

/** Sorts the entries first to last by count, the largest first, in place. The order of equal counts is that of a
    quicksort whose pivot is the first entry of a range. Nothing is done unless first is below last. */
void orvSortCountList(ColorCount* list, uint64_t first, uint64_t last);
