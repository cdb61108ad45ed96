// nav_search.cpp: search pointers of navigation packs.

#include "video/nav_search.h"

#include "base/memory.h"
#include "base/time_code.h"
#include "mux/nav_layout.h"

constexpr uint32_t POINTER_VALID_FAR = 0xC0000000;   // a unit with video, and units passed over on the way
constexpr uint32_t POINTER_PASSED = 0x7FFFFFFF;      // no unit there, and the step before did not reach the cell's end

constexpr uint64_t FIRST_FAR = 15;                          // from this distance on pointers are of the far form
constexpr uint64_t FIRST_MARKING = 14, LAST_MARKING = 17;   // distances whose hit marks the next distance as passed
constexpr uint64_t LONGEST = SEARCH_TICKS[SEARCH_DISTANCES - 1];

static bool sameCell(const VobuRecord* a, const VobuRecord* b)
{
    return a->vobId == b->vobId && a->cellId == b->cellId;
}

uint64_t orvLastSectorOfCell(const VobuRecord* list, uint64_t cellId)
{
    uint64_t sector = 0;
    for (uint64_t i = 0; i < osListCount(list) && list[i].cellId <= cellId; i++) sector = list[i].sector;
    return sector;
}

static uint64_t startOf(const VobuSearch* search, uint64_t index)
{
    return orvVobuStartPts(search->list + index, search->ticksPerFrame);
}

static uint64_t endOf(const VobuSearch* search, uint64_t index)
{
    return startOf(search, index) + search->list[index].pictureCount * search->ticksPerFrame;
}

void orvBeginSearch(VobuSearch* search, const VobuRecord* list, uint64_t ticksPerFrame)
{
    *search = {};
    search->list = list;
    search->count = osListCount(list);
    search->ticksPerFrame = ticksPerFrame;
    search->sorted = true;
    for (uint64_t i = 1; i < search->count; i++) {
        const VobuRecord* before = list + (i - 1);
        const bool vobRises = list[i].vobId > before->vobId;
        const bool cellRises = list[i].vobId == before->vobId && list[i].cellId >= before->cellId;
        if (!vobRises && !cellRises) search->sorted = false;
    }
}

/** Finds the records of the cell that begins at index, and whether their start times rise without a wrap. */
static void beginRun(VobuSearch* search, uint64_t index)
{
    search->runBegin = search->sorted ? index : 0;
    search->runEnd = search->sorted ? index : search->count;
    search->rising = search->sorted;
    while (search->runEnd < search->count && sameCell(search->list + search->runEnd, search->list + search->runBegin)) {
        const uint64_t start = startOf(search, search->runEnd);
        const bool wraps = int64_t(start) < 0 || int64_t(endOf(search, search->runEnd)) < int64_t(start);
        const bool falls = search->runEnd > search->runBegin && start < startOf(search, search->runEnd - 1);
        if (wraps || falls) search->rising = false;
        search->runEnd++;
    }
}

void orvStepSearch(VobuSearch* search, uint64_t index)
{
    search->index = index;
    if (index >= search->runEnd) {
        beginRun(search, index);
        search->low = search->runBegin;
        search->high = search->rising ? index : search->runEnd - 1;
    }
    if (!search->rising) return;
    // Where start times rise, both ends of the window only move forward.
    const uint64_t start = startOf(search, index);
    while (search->high + 1 < search->runEnd && startOf(search, search->high + 1) <= start + LONGEST) search->high++;
    while (search->low < index && start >= LONGEST && endOf(search, search->low) <= start - LONGEST) search->low++;
}

/** Whether the display span of a record holds a time. Times are unsigned: one before 0 wraps and is held by none. */
static bool holds(const VobuSearch* search, uint64_t index, uint64_t time)
{
    return sameCell(search->list + index, search->list + search->index) && startOf(search, index) <= time &&
           time < endOf(search, index);
}

/** Stores the pointer of a hit at distance k, and marks the next distance as passed unless the hit ends the cell. */
static void putHit(uint32_t pointers[SEARCH_DISTANCES], uint64_t k, uint64_t sectors, bool endsCell)
{
    pointers[k] = (uint32_t(sectors) & POINTER_DISTANCE) | (k < FIRST_FAR ? POINTER_VALID : POINTER_VALID_FAR);
    if (k >= FIRST_MARKING && k <= LAST_MARKING && !endsCell) pointers[k + 1] = POINTER_PASSED;
}

void orvFillForwardSearch(const VobuSearch* search, uint8_t* pack)
{
    uint32_t pointers[SEARCH_DISTANCES];
    for (uint32_t& pointer : pointers) pointer = POINTER_NONE;
    const uint64_t sector = search->list[search->index].sector;
    const uint64_t start = startOf(search, search->index);
    for (uint64_t k = 0; k < SEARCH_DISTANCES; k++) {
        // From the far end: of several hits the nearest stays.
        for (uint64_t i = search->high; i > search->index; i--) {
            if (!holds(search, i, start + SEARCH_TICKS[k])) continue;
            const uint64_t sectors = search->list[i].sector - sector;
            putHit(pointers, k, sectors, sectors == search->lastSector - sector);
        }
    }
    // Stored from the far end backwards.
    for (uint64_t k = 0; k < SEARCH_DISTANCES; k++) {
        orvPut32(pack + DSI_FWDA.at + (SEARCH_DISTANCES - 1 - k) * SEARCH_BYTES, pointers[k]);
    }
}

void orvFillBackwardSearch(const VobuSearch* search, uint8_t* pack)
{
    uint32_t pointers[SEARCH_DISTANCES];
    for (uint32_t& pointer : pointers) pointer = POINTER_NONE;
    const uint64_t sector = search->list[search->index].sector;
    const uint64_t start = startOf(search, search->index);
    for (uint64_t k = 0; k < SEARCH_DISTANCES; k++) {
        for (uint64_t i = search->low; i < search->index; i++) {
            if (!holds(search, i, start - SEARCH_TICKS[k])) continue;
            const uint64_t sectors = sector - search->list[i].sector;
            putHit(pointers, k, sectors, sector - sectors == search->firstSector);
        }
    }
    for (uint64_t k = 0; k < SEARCH_DISTANCES; k++) {
        orvPut32(pack + DSI_BWDA.at + k * SEARCH_BYTES, pointers[k]);
    }
}

static uint32_t neighbour(uint64_t sectors)
{
    return (uint32_t(sectors) & POINTER_DISTANCE) | POINTER_VALID;
}

void orvFillSearch(const VobuSearch* search, uint8_t* pack)
{
    const VobuRecord* record = search->list + search->index;
    const bool hasNext = search->index + 1 < search->count && sameCell(record, record + 1);
    const bool hasPrevious = search->index > 0 && sameCell(record, record - 1);
    const uint32_t next = hasNext ? neighbour(record[1].sector - record->sector) : POINTER_NONE;
    const uint32_t previous = hasPrevious ? neighbour(record->sector - record[-1].sector) : POINTER_NONE;

    orvPut(pack, DSI_NEXT_VIDEO, hasNext ? next : POINTER_NONE_VIDEO);
    orvPut(pack, DSI_NEXT_VOBU, next);
    orvPut(pack, DSI_PREV_VOBU, previous);
    orvPut(pack, DSI_PREV_VIDEO, hasPrevious ? previous : POINTER_NONE_VIDEO);
    orvFillForwardSearch(search, pack);
    orvFillBackwardSearch(search, pack);
}
