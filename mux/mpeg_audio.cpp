// mpeg_audio.cpp: MPEG audio layer 2 in chunks of any kind; short holes in the host's time are filled.

#include "base/memory.h"
#include "base/result.h"
#include "mux/audio_units.h"
#include "mux/ring.h"
#include "mux/start_codes.h"

constexpr uint64_t FRAME_TICKS = 2160;   // 1152 samples of 48 kHz
constexpr uint64_t MPEG_STD_SCALE = 0, MPEG_STD_BOUND = 32;
constexpr uint64_t LEAST_GAP = 5, MOST_GAP = 15;   // frames; a smaller or a larger hole is passed over

/** Takes the parameters from a frame header, if the chunk begins with one. */
static uint64_t readHeader(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    constexpr uint16_t RATES[16] = { 0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0 };   // kbit/s
    constexpr uint64_t FRAME_BYTES_PER_KBIT = 3;   // 1152 samples of 48 kHz are 24 ms
    constexpr uint8_t LAYER_2 = 2, RATE_48_KHZ = 1;
    const uint8_t second = orvByteAt(chunk, size, 1), third = orvByteAt(chunk, size, 2);
    if (orvByteAt(chunk, size, 0) != 0xFF || (second & 0xF0) != 0xF0) return 0;
    if ((second >> 1 & 0x03) != LAYER_2) return ORV_NOT_LAYER_2 | RESULT_WARNING_BIT;
    if ((third >> 2 & 0x03) != RATE_48_KHZ) return ORV_AUDIO_RATE_NOT_DVD;
    const uint64_t rate = RATES[third >> 4];
    stream->unitBytes = rate * FRAME_BYTES_PER_KBIT;
    stream->bitRate = rate << 10;
    stream->headerSeen = 1;
    return 0;
}

/** Counts the whole frames that so many bytes more give. */
static void countFrames(MuxStream* stream, uint64_t bytes)
{
    if (stream->unitBytes == 0) return;
    stream->groupBase += bytes;
    stream->unitCount += stream->groupBase / stream->unitBytes;
    stream->groupBase %= stream->unitBytes;
}

/** Puts zeros into the stream where the host's time says that frames are missing. */
static uint64_t fillGap(MuxStream* stream, uint64_t time)
{
    const uint64_t missing = time / stream->unitTicks - stream->unitCount;
    if (missing < LEAST_GAP || missing > MOST_GAP) return 0;
    uint8_t* zeros = nullptr;
    const uint64_t bytes = missing * stream->unitBytes;
    if (uint64_t error = osAllocMem(bytes, &zeros)) return error;
    const uint64_t result = orvRingWrite(stream->ring, zeros, bytes, nullptr);
    (void)osFreeMem(&zeros);
    if (result) return result;
    stream->bytesIn += bytes;
    countFrames(stream, bytes);
    return 0;
}

static uint64_t parseTimed(MuxStream* stream, const uint8_t* chunk, uint64_t size, uint64_t time)
{
    if (!stream->headerSeen) {
        if (uint64_t error = readHeader(stream, chunk, size)) return error;
    }
    if (time != NONE) {
        if (uint64_t error = fillGap(stream, time)) return error;
    }
    countFrames(stream, size);
    return 0;
}

static uint64_t parse(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    return parseTimed(stream, chunk, size, NONE);
}

static MuxPlan planPack(const MuxStream* stream)
{
    constexpr AudioRoom ROOM = { 2017, 2020, 0, 0 };
    return orvPlanAudio(stream, &ROOM);
}

uint64_t orvSetupMpegAudio(MuxStream* stream)
{
    orvSetupAudio(stream, FRAME_TICKS);
    stream->stdScale = MPEG_STD_SCALE;
    stream->stdBound = MPEG_STD_BOUND;
    stream->sampleRate = 48000;
    stream->sampleBits = 16;
    stream->planPack = planPack;
    stream->parse = parse;
    stream->parseTimed = parseTimed;
    return osAllocMem(MUX_READ_BYTES, &stream->readScratch);
}
