// audio_units.cpp: what the audio kinds have in common.

#include "mux/audio_units.h"

#include "base/memory.h"
#include "base/result.h"
#include "mux/ring.h"
#include "mux/start_codes.h"
#include "project/model.h"

#include <iterator>

constexpr uint64_t AUDIO_STD_BYTES = 4096, PRIVATE_STD_SCALE = 1, PRIVATE_STD_BOUND = 58;

static uint64_t unitBytesAt(const MuxStream* stream, uint64_t)
{
    return stream->unitBytes;
}

static uint64_t unitAt(const MuxStream* stream, MuxUnitPlace* place)
{
    *place = {};
    if (stream->unitBytes == 0) return stream->kind == KIND_LPCM ? 0 : ORV_UNKNOWN_STREAM;
    place->index = stream->bytesPacked / stream->unitBytes;
    place->position = place->index * stream->unitBytes;
    return 0;
}

static uint64_t unitTimes(const MuxStream* stream, const MuxContext* handle, uint64_t unit, uint64_t* pts,
                          uint64_t* dts)
{
    const uint64_t time = stream->unitTicks * unit + handle->audioDelay;
    if (pts) *pts = time;
    if (dts) *dts = time;
    return 0;
}

void orvSetupAudio(MuxStream* stream, uint64_t unitTicks)
{
    stream->stdSize = AUDIO_STD_BYTES;
    stream->stdScale = PRIVATE_STD_SCALE;
    stream->stdBound = PRIVATE_STD_BOUND;
    stream->unitTicks = unitTicks;
    stream->unitBytesAt = unitBytesAt;
    stream->unitAt = unitAt;
    stream->unitTimes = unitTimes;
}

MuxPlan orvPlanAudio(const MuxStream* stream, const AudioRoom* room)
{
    MuxPlan plan = {};
    MuxUnitPlace place = {};
    if (stream->unitBytes == 0 || stream->unitAt(stream, &place)) return plan;
    const bool first = stream->bytesPacked == 0;
    plan.payload = first ? room->first : room->later;
    plan.padding = first ? room->firstPadding : room->laterPadding;
    plan.flags = first ? PACK_HAS_PTS | PACK_HAS_EXTENSION : PACK_HAS_PTS;
    // The times are those of the first unit that begins in the pack.
    plan.unit = stream->bytesPacked == place.position ? place.index : place.index + 1;
    const uint64_t level = orvRingLevel(stream->ring);
    if (plan.payload > level) {
        plan.padding += plan.payload - level;
        plan.payload = level;
    }
    return plan;
}

bool orvIsEndMark(const uint8_t* chunk, uint64_t size)
{
    constexpr uint32_t END_MARK = 0x454E4420;   // "END "
    return orvWordAt(chunk, size, 0) == END_MARK;
}

bool orvReadAc3Size(MuxStream* stream, uint8_t sizeCode)
{
    // kbit/s of each pair of frame size codes.
    constexpr uint16_t RATES[] = { 32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                   192, 224, 256, 320, 384, 448, 512, 576, 640 };
    constexpr uint8_t MOST_AT_48_KHZ = 63;         // above: another sampling rate
    constexpr uint64_t FRAME_BYTES_PER_KBIT = 4;   // 1536 samples of 48 kHz are 32 ms
    if (sizeCode > MOST_AT_48_KHZ) return false;
    const uint64_t pair = sizeCode / 2;
    const uint64_t rate = pair < std::size(RATES) ? RATES[pair] : 0;
    stream->unitBytes = rate * FRAME_BYTES_PER_KBIT;
    stream->bitRate = rate << 10;
    return true;
}

uint64_t orvCheckPrivateId(const MuxStream* stream)
{
    return stream->streamId == STREAM_PRIVATE_1 ? 0 : ORV_BAD_STREAM_ID;
}
