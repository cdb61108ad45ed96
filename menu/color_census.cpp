// color_census.cpp: counts what values a region of a bitmap holds.

#include "menu/color_census.h"

#include "base/memory.h"
#include "base/result.h"
#include "menu/bitmap.h"

#include <utility>

constexpr uint64_t FIRST_SLOTS = 256;   // a power of two, as every slot count

uint64_t orvBeginCensus(Census* census)
{
    *census = {};
    census->slotCount = FIRST_SLOTS;
    census->room = FIRST_SLOTS / 2;
    uint64_t result = osAllocMem(census->room * sizeof(ColorCount), &census->list);
    if (!result) result = osAllocMem(census->slotCount * sizeof(uint32_t), &census->slots);
    if (result) orvDropCensus(census);
    return result;
}

/** The slot of a value: the one that holds it, or the empty one in which it is to be put. */
static uint32_t* findSlot(const Census* census, uint64_t value)
{
    constexpr uint64_t SPREAD = 0x9E3779B97F4A7C15;   // 2^64 divided by the golden ratio: neighbours land far apart
    const uint64_t mask = census->slotCount - 1;
    uint64_t at = (value * SPREAD >> 32) & mask;
    while (census->slots[at] != 0 && census->list[census->slots[at] - 1].value != value) at = (at + 1) & mask;
    return census->slots + at;
}

/** Makes room for twice as many entries. */
static uint64_t growCensus(Census* census)
{
    uint32_t* slots = nullptr;
    if (uint64_t error = osAllocMem(2 * census->slotCount * sizeof(uint32_t), &slots)) return error;
    (void)osFreeMem(&census->slots);
    census->slots = slots;
    census->slotCount *= 2;
    census->room *= 2;
    if (uint64_t error = osResizeMem(&census->list, census->room * sizeof(ColorCount))) return error;
    for (uint64_t i = 0; i < census->used; i++) *findSlot(census, census->list[i].value) = uint32_t(i + 1);
    return 0;
}

uint64_t orvCountValue(Census* census, uint64_t value, uint64_t count)
{
    uint32_t* slot = findSlot(census, value);
    if (*slot != 0) {
        census->list[*slot - 1].count += count;
        return 0;
    }
    if (census->used == census->room) {
        if (uint64_t error = growCensus(census)) return error;
        slot = findSlot(census, value);
    }
    census->list[census->used++] = { count, value };
    *slot = uint32_t(census->used);
    return 0;
}

uint64_t orvEndCensus(Census* census, ColorCount** list)
{
    *list = nullptr;
    uint64_t result = osResizeMem(&census->list, census->used * sizeof(ColorCount));
    if (!result) std::swap(*list, census->list);
    orvDropCensus(census);
    return result;
}

void orvDropCensus(Census* census)
{
    (void)osFreeMem(&census->list);
    (void)osFreeMem(&census->slots);
    *census = {};
}

static uint64_t countBytes(Census* census, const uint8_t* row, uint64_t width)
{
    for (uint64_t i = 0; i < width; i++) {
        if (uint64_t error = orvCountValue(census, row[i], 1)) return error;
    }
    return 0;
}

static uint64_t countColors(Census* census, const uint8_t* row, uint64_t width, uint64_t* transparent)
{
    for (uint64_t i = 0; i < width; i++) {
        const uint8_t* pixel = row + i * ALPHA_PIXEL_BYTES;
        if (pixel[3] < VISIBLE_ALPHA) {
            (*transparent)++;
        } else if (uint64_t error = orvCountValue(census, orvPixelColor(pixel), 1)) {
            return error;
        }
    }
    return 0;
}

uint64_t orvCountBitmapColors(const uint8_t* pixels, uint64_t bitsPerPixel, uint64_t x, uint64_t storedRow,
                              uint64_t width, uint64_t height, uint64_t rowGap, ColorCount** list)
{
    *list = nullptr;
    if (bitsPerPixel != COLLISION_BITS && bitsPerPixel != ALPHA_BITS) return ORV_INVALID_ARGUMENT;
    const bool colors = bitsPerPixel == ALPHA_BITS;
    Census census;
    if (uint64_t error = orvBeginCensus(&census)) return error;
    uint64_t result = 0, transparent = 0;
    for (uint64_t i = 0; i < height && !result; i++) {
        const uint64_t first = (storedRow + i) * (width + rowGap) + x;
        result = colors ? countColors(&census, pixels + first * ALPHA_PIXEL_BYTES, width, &transparent)
                        : countBytes(&census, pixels + first, width);
    }
    if (!result) result = orvEndCensus(&census, list);
    orvDropCensus(&census);
    if (result || !colors) return result;
    // The transparent pixels lead, also if there are none.
    const ColorCount lead = { transparent, 0 };
    result = osInsertMem(list, 0, &lead, sizeof lead);
    if (result) (void)osFreeMem(list);
    return result;
}

// ---- order --------------------------------------------------------------------------------------------------------

static uint64_t leastCount(const ColorCount* list, uint64_t first, uint64_t last)
{
    uint64_t least = list[first].count;
    for (uint64_t i = first + 1; i <= last; i++) {
        if (list[i].count < least) least = list[i].count;
    }
    return least;
}

/** Divides a range by its first entry. @return where that entry stands now: none in front is below it, none behind is
    not */
static uint64_t divide(ColorCount* list, uint64_t first, uint64_t last)
{
    const uint64_t pivot = list[first].count;
    uint64_t i = first, j = last;
    while (true) {
        while (i < last && list[i].count >= pivot) i++;
        while (j > first && list[j].count < pivot) j--;
        if (i >= j) break;
        std::swap(list[i], list[j]);
    }
    std::swap(list[first], list[j]);
    return j;
}

void orvSortCountList(ColorCount* list, uint64_t first, uint64_t last)
{
    // The sides of a divided range don't touch each other, so the order in which they are sorted is free: the smaller
    // one goes first, which keeps the stack low.
    while (first < last) {
        // As long as the pivot is the least of the range, dividing it does nothing but bring the pivot to the end.
        const uint64_t least = leastCount(list, first, last);
        while (first < last && list[first].count == least) std::swap(list[first], list[last--]);
        if (first >= last) return;
        const uint64_t middle = divide(list, first, last);
        if (middle - first < last - middle) {
            if (middle > first) orvSortCountList(list, first, middle - 1);
            first = middle + 1;
        } else {
            orvSortCountList(list, middle + 1, last);
            if (middle == first) return;
            last = middle - 1;
        }
    }
}
