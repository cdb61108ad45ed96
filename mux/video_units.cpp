// video_units.cpp: what both kinds of video stream have in common.

#include "mux/video_units.h"

#include "base/result.h"
#include "mux/ring.h"
#include "mux/start_codes.h"
#include "mux/unit_table.h"

constexpr uint64_t VIDEO_STD_BYTES = 0x3A000, VIDEO_STD_SCALE = 1, VIDEO_STD_BOUND = 232;

// Payload of a pack by what its PES header holds.
constexpr uint64_t ROOM_PLAIN = 2025, ROOM_PTS = 2020, ROOM_PTS_DTS = 2015, ROOM_PTS_DTS_EXTENSION = 2012;

// ---- pictures -----------------------------------------------------------------------------------------------------

void orvBeginVideo(MuxStream* stream)
{
    if (stream->headerSeen) return;
    stream->headerSeen = 1;
    stream->groupCount = stream->unitCount = stream->picturesSeen = stream->bitRate = 0;
    stream->unitTicks = TICKS_PAL;
}

uint64_t orvReadSequenceHeader(MuxStream* stream, const uint8_t* data, uint64_t size, uint64_t at)
{
    constexpr uint8_t RATE_25 = 3, RATE_29_97 = 4;
    const uint32_t both = orvWordAt(data, size, at + 4) >> 8;
    stream->width = both >> 12;
    stream->height = both & 0x0FFF;
    const uint8_t rate = orvByteAt(data, size, at + 7) & 0x0F;
    if (rate != RATE_25 && rate != RATE_29_97) return ORV_VIDEO_NOT_PAL_OR_NTSC | RESULT_WARNING_BIT;
    stream->unitTicks = rate == RATE_25 ? TICKS_PAL : TICKS_NTSC;
    return 0;
}

PictureHead orvReadPictureHead(const uint8_t* data, uint64_t size, uint64_t at)
{
    const uint8_t high = orvByteAt(data, size, at + 4), low = orvByteAt(data, size, at + 5);
    return { uint64_t(high) << 2 | low >> 6, uint32_t(low >> 3 & 0x07) };
}

// ---- operations ---------------------------------------------------------------------------------------------------

static uint64_t unitBytesAt(const MuxStream* stream, uint64_t unit)
{
    const uint64_t position = orvUnitRecord(stream, unit).position;
    if (unit < stream->unitCount && unit + 1 < stream->unitCount)
        return orvUnitRecord(stream, unit + 1).position - position;
    // The last unit is known once the stream has ended: it is all that is left.
    if (unit + 1 == stream->unitCount && stream->ring->ended) {
        return stream->bytesPacked + stream->ring->fill - position;
    }
    return 0;
}

static uint64_t unitTimes(const MuxStream* stream, const MuxContext* handle, uint64_t unit, uint64_t* pts,
                          uint64_t* dts)
{
    if (pts) *pts = 0;
    if (dts) *dts = 0;
    if (unit >= stream->unitCount) return 0;
    const MuxUnit record = orvUnitRecord(stream, unit);
    if (pts) *pts = record.pts + handle->videoDelay;
    if (dts) *dts = record.dts + handle->videoDelay;
    return 0;
}

static MuxUnitPlace placeOf(const MuxStream* stream, uint64_t unit)
{
    const MuxUnit record = orvUnitRecord(stream, unit);
    return { record.position, record.codingType, record.group, unit };
}

static uint64_t unitAt(const MuxStream* stream, MuxUnitPlace* place)
{
    const uint64_t unit = orvCurrentUnit(stream);
    if (unit == NONE) return ORV_END_OF_MUX_DATA;
    *place = placeOf(stream, unit);
    return 0;
}

/** The unit behind the current one. At the end of the table: no unit, at the end of what the ring holds. */
static MuxUnitPlace nextPlace(const MuxStream* stream, uint64_t current)
{
    if (current != NONE && current + 1 < stream->unitCount) return placeOf(stream, current + 1);
    return { stream->bytesPacked + orvRingLevel(stream->ring), NONE, NONE, NONE };
}

static uint64_t nextUnitAt(const MuxStream* stream, MuxUnitPlace* place)
{
    *place = nextPlace(stream, orvCurrentUnit(stream));
    return 0;
}

// ---- plan of a pack -----------------------------------------------------------------------------------------------

// What a pack at the start of a picture holds.
struct StartRow {
    uint64_t payload, flags;
};

static StartRow startRow(uint64_t codingType)
{
    switch (codingType) {
    case CODING_I: return { ROOM_PTS_DTS_EXTENSION, PACK_HAS_PTS | PACK_HAS_DTS | PACK_HAS_EXTENSION };
    case CODING_P: return { ROOM_PTS_DTS, PACK_HAS_PTS | PACK_HAS_DTS };
    case CODING_B: return { ROOM_PTS, PACK_HAS_PTS };
    default: return { 0, 0 };
    }
}

/** The pack begins with a unit. */
static MuxPlan planAtStart(const MuxStream* stream, const MuxUnitPlace* current, const MuxUnitPlace* next)
{
    StartRow row = startRow(current->codingType);
    // Meant: video in chunks of any kind has the extension once in its stream, the other kind at each I picture.
    // Test: VideoPlan.ExtensionOnceOrAtEachIntraPicture
    if (stream->kind == KIND_VIDEO && current->codingType == CODING_I && stream->bytesPacked != 0) {
        row = startRow(CODING_P);
    }
    MuxPlan plan = { row.payload, 0, row.flags, current->index };
    const uint64_t left = next->position - current->position;
    if (next->position < stream->bytesPacked + row.payload && next->group != current->group) {
        plan.padding = row.payload - left;   // the group ends in this pack
        plan.payload = left;
    }
    return plan;
}

/** The next unit begins in the pack and its header fits: the pack carries that unit's times. */
static MuxPlan planWithNext(const MuxStream* stream, const MuxUnitPlace* current, const MuxUnitPlace* next)
{
    const StartRow row = startRow(next->codingType);
    const MuxPlan plan = { row.payload, 0, row.flags, next->index };
    if (next->codingType != CODING_B) return plan;
    // Behind a B picture the group may end in the same pack, which then ends there.
    for (uint64_t unit = current->index + 2; unit < stream->unitCount; unit++) {
        const MuxUnit record = orvUnitRecord(stream, unit);
        if (record.group == next->group) continue;
        const uint64_t left = record.position - stream->bytesPacked;
        if (left >= ROOM_PTS) break;
        // Meant: in chunks that begin at start codes the times are those of the unit in front.
        // Test: VideoPlan.GroupThatEndsBehindABPicture
        return { left, ROOM_PTS - left, row.flags, stream->kind == KIND_VIDEO ? next->index : current->index };
    }
    return plan;
}

/** The next unit begins in the pack, which ends in front of it. */
static MuxPlan planUpToNext(const MuxStream* stream, const MuxUnitPlace* current, const MuxUnitPlace* next)
{
    const uint64_t left = next->position - stream->bytesPacked;
    const bool picture = next->codingType >= CODING_I && next->codingType <= CODING_B;
    if (picture || next->codingType == NONE) return { left, ROOM_PLAIN - left, 0, current->index };
    // Meant: in front of a unit of another type the pack is not padded. Test: VideoPlan.UnitOfAnotherType
    if (stream->kind == KIND_VIDEO) return { left ? left : FILLED_UNIT_BYTES, 0, 0, current->index };
    return { left, 0, 0, next->index };
}

static MuxPlan planInside(const MuxStream* stream, const MuxUnitPlace* current, const MuxUnitPlace* next)
{
    const uint64_t at = stream->bytesPacked;
    if (next->position >= at + ROOM_PLAIN) return { ROOM_PLAIN, 0, 0, current->index };
    const uint64_t room = startRow(next->codingType).payload;   // 0 for other types
    if (next->position < at + room && current->group == next->group) return planWithNext(stream, current, next);
    return planUpToNext(stream, current, next);
}

static MuxPlan planPack(const MuxStream* stream)
{
    const uint64_t unit = orvCurrentUnit(stream);
    const MuxUnitPlace current = placeOf(stream, unit), next = nextPlace(stream, unit);
    MuxPlan plan = current.position == stream->bytesPacked ? planAtStart(stream, &current, &next)
                                                           : planInside(stream, &current, &next);
    const uint64_t level = orvRingLevel(stream->ring);
    if (plan.payload > level) {
        plan.padding += plan.payload - level;
        plan.payload = level;
    }
    return plan;
}

void orvSetupVideo(MuxStream* stream)
{
    stream->stdSize = VIDEO_STD_BYTES;
    stream->stdScale = VIDEO_STD_SCALE;
    stream->stdBound = VIDEO_STD_BOUND;
    stream->unitTicks = TICKS_PAL;
    stream->planPack = planPack;
    stream->unitBytesAt = unitBytesAt;
    stream->unitAt = unitAt;
    stream->unitTimes = unitTimes;
    stream->nextUnitAt = nextUnitAt;
    orvRingRewind(stream->ring);
}
