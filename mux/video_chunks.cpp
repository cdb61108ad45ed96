// video_chunks.cpp: MPEG video in chunks that begin at start codes. A sequence header opens a group.

#include "base/memory.h"
#include "base/result.h"
#include "mux/ring.h"
#include "mux/start_codes.h"
#include "mux/unit_table.h"
#include "mux/video_units.h"

static uint64_t addPicture(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    const PictureHead head = orvReadPictureHead(chunk, size, 0);
    MuxUnit unit = {};
    unit.group = uint32_t(stream->groupCount);
    unit.position = stream->groupPending ? stream->groupStart : stream->bytesIn;
    unit.codingType = head.codingType;
    unit.pts = (head.temporalReference + stream->groupBase) * stream->unitTicks;
    unit.dts = stream->unitCount * stream->unitTicks;
    unit.groupTime = stream->groupBase * stream->unitTicks;
    stream->groupPending = 0;
    stream->unitCount++;
    return orvAddUnit(stream, unit);
}

static uint64_t openGroup(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    stream->groupStart = stream->bytesIn;
    stream->groupCount++;
    stream->groupPending = 1;
    if (uint64_t warning = orvReadSequenceHeader(stream, chunk, size, 0)) return warning;
    // One picture of delay: the first picture is displayed one frame after it is decoded.
    stream->groupBase = stream->groupCount == 1 ? 1 : stream->unitCount + 1;
    return 0;
}

static uint64_t parse(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    orvBeginVideo(stream);
    switch (orvWordAt(chunk, size, 0)) {
    case orvStartCode(CODE_PICTURE): return addPicture(stream, chunk, size);
    case orvStartCode(CODE_SEQUENCE): return openGroup(stream, chunk, size);
    case orvStartCode(CODE_SEQUENCE_END): orvRingEnd(stream->ring); return 0;
    default: return 0;   // belongs to the unit in front
    }
}

uint64_t orvSetupVideoUnits(MuxStream* stream)
{
    orvSetupVideo(stream);
    stream->parse = parse;
    return 0;
}
