// color_census.cpp: counts what values a region of a bitmap holds.

#include "menu/color_census.h"

#include "base/memory.h"
#include "base/result.h"
#include "menu/bitmap.h"

#include <utility>

constexpr uint64_t FIRST_ROOM = 128;   // entries of a new list
constexpr uint64_t PAGE_ENTRIES = 4096;
constexpr uint64_t PAGE_SHIFT = 12;

uint64_t orvBeginCensus(Census* census)
{
    *census = {};
    census->room = FIRST_ROOM;
    uint64_t result = osAllocMem(census->room * sizeof(ColorCount), &census->list);
    if (!result) result = osAllocMem(CENSUS_PAGES * sizeof(uint32_t*), &census->pages);
    if (result) orvDropCensus(census);
    return result;
}

static uint64_t addEntry(Census* census, uint64_t value, uint64_t count)
{
    if (census->used == census->room) {
        if (uint64_t error = osResizeMem(&census->list, 2 * census->room * sizeof(ColorCount))) return error;
        census->room *= 2;
    }
    census->list[census->used++] = { count, value };
    return 0;
}

uint64_t orvCountValue(Census* census, uint64_t value, uint64_t count)
{
    if (value >= CENSUS_PAGES * PAGE_ENTRIES) return ORV_INVALID_ARGUMENT;
    uint32_t** page = census->pages + (value >> PAGE_SHIFT);
    if (!*page) {
        if (uint64_t error = osAllocMem(PAGE_ENTRIES * sizeof(uint32_t), page)) return error;
    }
    uint32_t* position = *page + value % PAGE_ENTRIES;
    if (*position != 0) {
        census->list[*position - 1].count += count;
        return 0;
    }
    if (uint64_t error = addEntry(census, value, count)) return error;
    *position = uint32_t(census->used);
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
    for (uint64_t i = 0; census->pages && i < CENSUS_PAGES; i++) (void)osFreeMem(&census->pages[i]);
    (void)osFreeMem(&census->pages);
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
