// vobu_queries.cpp: counts of cells and pictures, and the ends of cells, in a VOBU list.

#include "video/vobu_queries.h"

#include "base/memory.h"

uint64_t orvCountCells(const VobuRecord* list, uint64_t vobId)
{
    uint64_t cells = 0;
    uint64_t lastCell = 0;
    for (uint64_t i = 0; i < osListCount(list); i++) {
        if (list[i].vobId != vobId || list[i].cellId == lastCell) continue;
        lastCell = list[i].cellId;
        cells++;
    }
    return cells;
}

uint64_t orvCountPictures(const VobuRecord* list, uint64_t vobId)
{
    uint64_t pictures = 0;
    for (uint64_t i = 0; i < osListCount(list); i++) {
        if (list[i].vobId == vobId) pictures += list[i].pictureCount;
    }
    return pictures;
}

uint64_t orvListCells(const VobuRecord* list, uint64_t vobId, uint64_t count, CellExtent** extents)
{
    if (uint64_t error = osAllocMem(count * sizeof(CellExtent), extents)) return error;
    for (uint64_t i = 0; i < osListCount(list); i++) {
        const VobuRecord* record = list + i;
        if (record->vobId != vobId || record->cellId < 1 || record->cellId > count) continue;
        CellExtent* extent = *extents + (record->cellId - 1);
        if (!extent->first) extent->first = record;
        extent->last = record;
        extent->pictures += record->pictureCount;
    }
    return 0;
}
