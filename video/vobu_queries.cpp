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

uint64_t orvCountCellPictures(const VobuRecord* list, uint64_t vobId, uint64_t cellId)
{
    uint64_t pictures = 0;
    for (uint64_t i = 0; i < osListCount(list); i++) {
        if (list[i].vobId == vobId && list[i].cellId == cellId) pictures += list[i].pictureCount;
    }
    return pictures;
}

const VobuRecord* orvFirstVobuOfCell(const VobuRecord* list, uint64_t vobId, uint64_t cellId)
{
    for (uint64_t i = 0; i < osListCount(list); i++) {
        if (list[i].vobId == vobId && list[i].cellId == cellId) return list + i;
    }
    return nullptr;
}

const VobuRecord* orvLastVobuOfCell(const VobuRecord* list, uint64_t vobId, uint64_t cellId)
{
    for (uint64_t i = osListCount(list); i > 0; i--) {
        if (list[i - 1].vobId == vobId && list[i - 1].cellId == cellId) return list + (i - 1);
    }
    return nullptr;
}
