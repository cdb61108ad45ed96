// unit_table.cpp: the table of a stream's access units.

#include "mux/unit_table.h"

#include "base/memory.h"

uint64_t orvUnitRecords(const MuxStream* stream)
{
    return osListCount(stream->unitTable);
}

MuxUnit orvUnitRecord(const MuxStream* stream, uint64_t unit)
{
    return unit < orvUnitRecords(stream) ? stream->unitTable[unit] : MuxUnit{};
}

/** Notes a unit's place in the order: units that begin where it does or behind are never the last that fits again. */
static uint64_t order(MuxStream* stream, uint64_t unit)
{
    const uint64_t position = stream->unitTable[unit].position;
    while (stream->orderCount > 0 &&
           stream->unitTable[stream->unitOrder[stream->orderCount - 1]].position >= position) {
        stream->orderCount--;
    }
    if (!stream->unitOrder) {
        if (uint64_t error = osAllocMem(0, &stream->unitOrder)) return error;
    }
    if (stream->orderCount == osListCount(stream->unitOrder)) {
        if (uint64_t error = osListAppend(&stream->unitOrder, unit)) return error;
    }
    stream->unitOrder[stream->orderCount++] = unit;
    return 0;
}

uint64_t orvAddUnit(MuxStream* stream, const MuxUnit& unit)
{
    const uint64_t index = orvUnitRecords(stream);
    if (uint64_t error = osListAppend(&stream->unitTable, unit)) return error;
    return index == 0 ? 0 : order(stream, index);   // the first unit is current by another rule
}

uint64_t orvCurrentUnit(const MuxStream* stream)
{
    if (stream->unitCount < 2 || stream->bytesPacked < orvUnitRecord(stream, 1).position) return 0;
    // The last unit of the order that does not begin behind what is packed.
    uint64_t first = 0, end = stream->orderCount;
    while (first < end) {
        const uint64_t middle = first + (end - first) / 2;
        if (stream->unitTable[stream->unitOrder[middle]].position <= stream->bytesPacked) {
            first = middle + 1;
        } else {
            end = middle;
        }
    }
    return first == 0 ? NONE : stream->unitOrder[first - 1];
}
