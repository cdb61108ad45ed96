// time_map.cpp: the time map of a title.

#include "video/time_map.h"

#include "base/memory.h"
#include "base/time_code.h"
#include "video/ifo_layout.h"

constexpr uint64_t MAP_SECONDS = 5;
constexpr uint64_t MAP_TICKS = MAP_SECONDS * TICKS_PER_SECOND;
constexpr uint32_t ENTRY_NEW_CELL = 0x80000000;
constexpr uint64_t MAP_ENTRY_BYTES = 4;

static uint64_t appendEntries(uint64_t ticksPerFrame, const VobuRecord* list, uint8_t** table)
{
    const uint64_t count = osListCount(list);
    if (count == 0) return 0;
    uint64_t cell = list[0].cellId;
    uint64_t target = orvVobuStartPts(list, ticksPerFrame) + MAP_TICKS;   // no entry stands for the time 0
    for (uint64_t i = 1; i < count; i++) {
        const uint64_t start = orvVobuStartPts(list + i, ticksPerFrame);
        if (start > target || target >= start + list[i].pictureCount * ticksPerFrame) continue;
        // Meant: one entry a record. A target that a long unit leaves behind it is held by no later one, and the map
        // ends there. Test: TimeMap.Rules
        target += MAP_TICKS;
        uint8_t entry[MAP_ENTRY_BYTES];
        orvPut32(entry, list[i].sector | (list[i].cellId != cell ? ENTRY_NEW_CELL : 0));
        cell = list[i].cellId;
        if (uint64_t error = osInsertMem(table, OS_BLOCK_END, entry, MAP_ENTRY_BYTES)) return error;
    }
    return 0;
}

uint64_t orvBuildTimeMap(uint64_t ticksPerFrame, const VobuRecord* vobuList, uint8_t** result)
{
    constexpr uint64_t HEAD = TABLE_FIRST_BYTES + TIME_MAP_HEADER_BYTES;
    if (uint64_t error = osAllocMem(HEAD, result)) return error;
    if (uint64_t error = appendEntries(ticksPerFrame, vobuList, result)) {
        (void)osFreeMem(result);
        return error;
    }
    uint8_t* table = *result;
    const uint64_t bytes = osMemSize(table);
    orvPut(table, TABLE_COUNT, 1);
    orvPut(table, TABLE_LAST_BYTE, bytes - 1);
    orvPut(table, TABLE_FIRST_OFFSET, TABLE_FIRST_BYTES);
    orvPut(table + TABLE_FIRST_BYTES, TIME_MAP_UNIT, MAP_SECONDS);
    orvPut(table + TABLE_FIRST_BYTES, TIME_MAP_ENTRIES, (bytes - HEAD) / MAP_ENTRY_BYTES);
    return 0;
}
