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

uint64_t orvCurrentUnit(const MuxStream* stream)
{
    const uint64_t count = orvUnitRecords(stream);
    if (stream->unitCount < 2 || stream->bytesPacked < orvUnitRecord(stream, 1).position) return 0;
    // From the end: the units of the ring alone lie behind what is packed.
    for (uint64_t i = count; i-- > 1;) {
        if (stream->unitTable[i].position <= stream->bytesPacked) return i;
    }
    return NONE;
}
