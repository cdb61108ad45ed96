// aob_packs.cpp: the packs of an AOB, and the clock by which they follow each other.

#include "audio/aob_packs.h"

#include "audio/aob_layout.h"
#include "audio/sample_codes.h"
#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "mux/pack_layout.h"
#include "mux/pack_write.h"

#include <algorithm>

constexpr uint64_t DECODER_BUFFER = 8192;   // bytes

// A track on its way into the AOB.
struct TrackMux {
    const AobSource* source;
    OSFILE aob;
    AudioTrackDesc* track;
    AobClock* clock;
    const AobSizeRow* sizes;
    uint64_t frameSamples;
    uint64_t frameBytes;   // of all channels
    uint64_t packs;        // written
};

static bool isFirst(const TrackMux* mux)
{
    return mux->packs == 0;
}

static const AobPackSizes& sizesOf(const TrackMux* mux)
{
    return isFirst(mux) ? mux->sizes->first : mux->sizes->next;
}

static uint64_t frameTime(const TrackMux* mux, uint64_t frames)
{
    return frames * mux->frameSamples * TICKS_PER_SECOND / mux->track->sampleRate1;
}

// ---- a pack
// ----------------------------------------------------------------------------------------------------------

// The audio and private streams with their buffers, at the rate bound of all program streams of the system.
constexpr uint8_t SYSTEM_HEADER[AOB_SYSTEM_HEADER_BYTES] = { 0x00, 0x00, 0x01, 0xBB, 0x00, 0x0C, 0x80, 0xC4, 0xE1,
                                                             0x04, 0xA0, 0x7F, 0xB8, 0xC0, 0x40, 0xBD, 0xE0, 0x0A };

static void putPesHeader(uint8_t* pes, const AobPackSizes& sizes, bool first, uint64_t pts)
{
    constexpr uint16_t FLAGS_PTS = 0x8180, FLAGS_PTS_EXTENSION = 0x8181;
    constexpr uint8_t BUFFER_SIZE[] = { 0x1E, 0x60, 0x0A };
    orvPut(pes, AOB_PES_START, 0x00000100 | uint32_t(STREAM_PRIVATE_1));
    orvPut(pes, AOB_PES_LENGTH, sizes.pesLength);
    orvPut(pes, AOB_PES_FLAGS, first ? FLAGS_PTS_EXTENSION : FLAGS_PTS);
    orvPut(pes, AOB_PES_HEADER_LENGTH, sizes.pesHeaderLength);
    orvPutTimeStamp(pes + AOB_PES_PTS.at, LEAD_PTS, pts);
    if (first) osCopyMem(pes + AOB_PES_EXTENSION.at, BUFFER_SIZE, sizeof(BUFFER_SIZE));
}

static void putPrivateHeader(uint8_t* header, const TrackMux* mux, uint64_t firstAccess)
{
    constexpr uint8_t EMPHASIS_SIX = 0x30, EMPHASIS_OTHER = 0x10, NO_DYNAMIC_RANGE = 0x80, ASSIGNMENT_BITS = 0x1F;
    const AudioTrackDesc* track = mux->track;
    orvPut(header, AOB_SUB_STREAM, AOB_SUB_STREAM_LPCM);
    orvPut(header, AOB_COUNTER, mux->packs % AOB_COUNTER_END);
    orvPut(header, AOB_HEADER_LENGTH, sizesOf(mux).headerLength);
    orvPut(header, AOB_FIRST_ACCESS, firstAccess);
    orvPut(header, AOB_EMPHASIS, track->channelCount == MAX_CHANNELS ? EMPHASIS_SIX : EMPHASIS_OTHER);
    orvPut(header, AOB_SIZE_CODES,
           orvGroupCodes(orvSampleSizeCode(track->sampleSize1), orvSampleSizeCode(track->sampleSize2)));
    orvPut(header, AOB_RATE_CODES,
           orvGroupCodes(orvSampleRateCode(track->sampleRate1), orvSampleRateCode(track->sampleRate2)));
    orvPut(header, AOB_ASSIGNMENT, track->assign & ASSIGNMENT_BITS);
    orvPut(header, AOB_DYNAMIC_RANGE, NO_DYNAMIC_RANGE);
}

/** Headers of the next pack. @return the place of its samples */
static uint64_t beginPack(TrackMux* mux, uint8_t* pack, uint64_t* pesAt)
{
    const bool first = isFirst(mux);
    const AobPackSizes& sizes = sizesOf(mux);
    const uint64_t bytesMuxed = mux->clock->bytesMuxed;
    const uint64_t frame = (bytesMuxed + mux->frameBytes - 1) / mux->frameBytes;   // the first that begins in the pack
    const uint64_t pts = frameTime(mux, frame);
    // Meant: in a track's first pack the pointer is that of its first sample, in whatever frame. Test: Aob.FirstAccess
    uint64_t firstAccess = sizes.headerLength - uint64_t(1);
    if (!first) firstAccess += frame * mux->frameBytes - bytesMuxed;

    const uint64_t clock = mux->clock->clock;
    orvPackHeader(pack, clock / CLOCK_PER_TICK, clock % CLOCK_PER_TICK / CLOCK_PER_EXTENSION, MUX_RATE);
    *pesAt = PACK_HEADER_BYTES;
    if (first) {
        mux->track->firstCellPts = pts;
        osCopyMem(pack + PACK_HEADER_BYTES, SYSTEM_HEADER, sizeof(SYSTEM_HEADER));
        *pesAt += sizeof(SYSTEM_HEADER);
    }
    putPesHeader(pack + *pesAt, sizes, first, pts);
    putPrivateHeader(pack + *pesAt + AOB_PES_BYTES + sizes.pesHeaderLength, mux, firstAccess);
    return orvAobHeaderBytes(sizes, first);
}

/** Fills the gap behind the samples of a track's last pack. */
static void closeLastPack(uint8_t* pack, uint64_t pesAt, const AobPackSizes& sizes, uint64_t end)
{
    constexpr uint64_t LEAST_PADDING = 8;
    constexpr uint8_t STUFFING_BASE = 0xF8;
    const uint64_t gap = SECTOR_BYTES - end;
    if (gap >= LEAST_PADDING) {
        const uint64_t full = sizes.pesLength + (sizes.padding ? sizes.padding + AOB_PADDING_HEAD : 0);
        orvPut(pack + pesAt, AOB_PES_LENGTH, full - gap);
        orvPaddingPacket(pack + end, gap - AOB_PADDING_HEAD);
        return;
    }
    // Meant: the PES length stays that of a full pack. Test: Aob.GapOfSevenIsPackStuffing
    pack[PACK_STUFFING.at] = uint8_t(STUFFING_BASE | gap);
    std::copy_backward(pack + PACK_HEADER_BYTES, pack + end, pack + SECTOR_BYTES);
    osFillMem(pack + PACK_HEADER_BYTES, gap, 0xFF);
}

static uint64_t makePack(TrackMux* mux, bool* ended)
{
    const AobPackSizes& sizes = sizesOf(mux);
    uint8_t pack[SECTOR_BYTES] = {};
    uint64_t pesAt = 0;
    const uint64_t samplesAt = beginPack(mux, pack, &pesAt);
    AobFill fill = {};
    if (uint64_t error = mux->source->fill(mux->source->from, pack + samplesAt, sizes.payload, &fill)) return error;

    *ended = fill.ended || fill.bytes < sizes.payload;
    // Meant: a last pack without samples keeps its lengths, with zeros in the place of samples. Test: Aob.EmptyLastPack
    if (*ended && fill.bytes > 0) closeLastPack(pack, pesAt, sizes, samplesAt + fill.bytes);
    if (!*ended && sizes.padding) orvPaddingPacket(pack + samplesAt + sizes.payload, sizes.padding);
    mux->clock->bytesMuxed += fill.bytes;
    mux->clock->bufferFill += fill.bytes;
    if (osWriteFile(mux->aob, pack, SECTOR_BYTES)) return ORV_AOB_NOT_WRITTEN;
    mux->packs++;
    return mux->source->packWritten ? mux->source->packWritten(mux->source->from) : 0;
}

// ---- the clock
// -------------------------------------------------------------------------------------------------------

/** Lets the modelled decoder take the frames that are due. decoded: its time before it does. */
static uint64_t decodeFrames(TrackMux* mux, uint64_t scr, uint64_t decoded)
{
    if (decoded >= scr) return 0;
    AobClock* clock = mux->clock;
    const uint64_t frames = (scr - decoded) * mux->track->sampleRate1 / (mux->frameSamples * TICKS_PER_SECOND);
    const uint64_t bytes = frames * mux->frameBytes;
    if (clock->bufferFill < bytes) return mux->source->underrunFails ? ORV_AOB_UNDERRUN : 0;
    clock->framesDecoded += frames;
    clock->bufferFill -= bytes;
    return 0;
}

/** One round: a pack, if the decoder's buffer has room for it, and the time until the next. */
static uint64_t muxRound(TrackMux* mux, bool* ended)
{
    AobClock* clock = mux->clock;
    const uint64_t scr = clock->clock / CLOCK_PER_TICK;
    const bool hasRoom = DECODER_BUFFER - clock->bufferFill > sizesOf(mux).payload;
    if (hasRoom) {
        if (uint64_t error = makePack(mux, ended)) return error;
    }
    const uint64_t decoded = frameTime(mux, clock->framesDecoded);
    if (uint64_t error = decodeFrames(mux, scr, decoded)) return error;
    if (*ended) return 0;
    clock->clock = hasRoom ? clock->clock + CLOCK_PER_PACK : mux->source->waitUntil(clock->clock, decoded);
    return 0;
}

uint64_t orvMuxAobPacks(const AobSource* source, OSFILE aob, AudioTrackDesc* track, AobClock* clock)
{
    TrackMux mux = {};
    mux.source = source;
    mux.aob = aob;
    mux.track = track;
    mux.clock = clock;
    mux.frameSamples = orvFrameSamples(track->sampleRate1);
    if (mux.frameSamples == 0) return ORV_WRONG_SAMPLE_RATE;
    mux.sizes = orvAobSizes(track->channelCount, track->sampleSize1);
    if (!mux.sizes) return ORV_SAMPLE_SIZE_20_UNSUPPORTED;
    mux.frameBytes = mux.frameSamples * track->channelCount * track->sampleSize1 / 8;

    for (bool ended = false; !ended;) {
        if (uint64_t error = muxRound(&mux, &ended)) return error;
    }
    track->blockSize = mux.packs;
    return 0;
}
