// lpcm.cpp: LPCM from RIFF/WAVE.

#include "mux/lpcm.h"

#include "base/bytes.h"
#include "base/result.h"
#include "mux/audio_units.h"
#include "mux/ring.h"
#include "mux/start_codes.h"

constexpr uint64_t UNIT_TICKS = 150;   // 1/600 second
constexpr uint64_t UNIT_SAMPLES_48 = 80, UNIT_SAMPLES_96 = 160;

// Formats 1 to 5.
struct LpcmFormat {
    uint64_t channels, bits;
    AudioRoom room;
};

// clang-format off
constexpr LpcmFormat FORMATS[] = {
    { 2, 16, { 2008, 2008,  2,  5 } },
    { 2, 24, { 2004, 2004,  6,  9 } },
    { 6, 16, { 1992, 1992, 18, 21 } },
    { 1, 16, { 2008, 2008,  2,  5 } },
    { 1, 24, { 2010, 2010,  0,  3 } },
};
// clang-format on

static const LpcmFormat* formatOf(const MuxStream* stream)
{
    const uint64_t number = stream->lpcmFormat;
    return number >= 1 && number <= sizeof FORMATS / sizeof FORMATS[0] ? FORMATS + (number - 1) : nullptr;
}

uint64_t orvLpcmCapacity(const MuxStream* stream)
{
    const LpcmFormat* format = formatOf(stream);
    return format ? format->room.later : 0;
}

static MuxPlan planPack(const MuxStream* stream)
{
    const LpcmFormat* format = formatOf(stream);
    return format ? orvPlanAudio(stream, &format->room) : MuxPlan{};
}

// ---- header -------------------------------------------------------------------------------------------------------

// Offsets within a RIFF/WAVE header; its numbers are little-endian.
constexpr uint64_t AT_WAVE = 8, AT_FORMAT_CHUNK = 12, AT_TAG = 20, AT_CHANNELS = 22, AT_RATE = 24, AT_BITS = 34;
constexpr uint32_t MARK_RIFF = 0x52494646, MARK_WAVE = 0x57415645, MARK_FORMAT = 0x666D7420;   // "fmt "
constexpr uint64_t TAG_PCM = 1;

static uint64_t little16(const uint8_t* chunk, uint64_t size, uint64_t at)
{
    return orvSwap16(orvWordAt(chunk, size, at) >> 16);
}

static uint64_t readHeader(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    if (orvWordAt(chunk, size, AT_WAVE) != MARK_WAVE) return ORV_LPCM_NOT_RIFF;
    if (orvWordAt(chunk, size, AT_FORMAT_CHUNK) != MARK_FORMAT) return ORV_LPCM_NOT_RIFF;
    if (little16(chunk, size, AT_TAG) != TAG_PCM) return ORV_RIFF_NOT_LPCM;
    stream->channels = little16(chunk, size, AT_CHANNELS);
    stream->sampleRate = orvSwap32(orvWordAt(chunk, size, AT_RATE));
    stream->sampleBits = little16(chunk, size, AT_BITS);
    if (stream->sampleRate != 48000 && stream->sampleRate != 96000) return ORV_AUDIO_RATE_NOT_DVD;
    for (uint64_t i = 0; i < sizeof FORMATS / sizeof FORMATS[0]; i++) {
        if (FORMATS[i].channels != stream->channels || FORMATS[i].bits != stream->sampleBits) continue;
        const uint64_t samples = stream->sampleRate == 48000 ? UNIT_SAMPLES_48 : UNIT_SAMPLES_96;
        stream->lpcmFormat = i + 1;
        stream->unitBytes = samples * (stream->sampleBits / 8) * stream->channels;
        return RESULT_NO_DATA;
    }
    return ORV_UNSUPPORTED_LPCM;
}

static uint64_t parse(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    if (orvWordAt(chunk, size, 0) == MARK_RIFF) return readHeader(stream, chunk, size);
    if (!orvIsEndMark(chunk, size)) return 0;
    orvRingEnd(stream->ring);
    return RESULT_END;
}

uint64_t orvSetupLpcm(MuxStream* stream)
{
    if (uint64_t error = orvCheckPrivateId(stream)) return error;
    orvSetupAudio(stream, UNIT_TICKS);
    stream->planPack = planPack;
    stream->parse = parse;
    return 0;
}

// ---- order of bytes -----------------------------------------------------------------------------------------------

/** Sample pairs of 16 bits: the bytes of each are exchanged. */
static void exchangePairs(uint8_t* pack, uint64_t offset, uint64_t size)
{
    // Meant: behind headers of an odd length the pairs are shifted by one byte, and the last header byte takes part.
    // Test: Lpcm.OddOffsetShiftsThePairs
    for (uint64_t i = 0; i < size; i += 2) {
        const uint64_t at = (offset + i) & ~uint64_t(1);
        if (at + 1 >= SECTOR_BYTES) return;
        const uint8_t first = pack[at];
        pack[at] = pack[at + 1];
        pack[at + 1] = first;
    }
}

/** Bytes of a pack; behind its end they read as 0, and what is written there is dropped. */
static uint8_t getByte(const uint8_t* pack, uint64_t at)
{
    return orvByteAt(pack, SECTOR_BYTES, at);
}

static void putByte(uint8_t* pack, uint64_t at, uint8_t value)
{
    if (at < SECTOR_BYTES) pack[at] = value;
}

static void copyWord(uint8_t* pack, uint64_t to, uint64_t from)
{
    const uint8_t first = getByte(pack, from & ~uint64_t(1)), second = getByte(pack, from | 1);
    putByte(pack, to & ~uint64_t(1), first);
    putByte(pack, to | 1, second);
}

/** Groups of four samples of 24 bits: their upper words first, their lowest bytes behind. */
static void regroup(uint8_t* pack, uint64_t offset, uint64_t size)
{
    constexpr uint64_t GROUP_BYTES = 12;
    if (size == 0) return;
    const uint64_t groups = (size - 1) / GROUP_BYTES + 1;
    for (uint64_t j = 0; j < groups; j++) {
        const uint64_t r = offset + j * GROUP_BYTES + 5;
        const uint8_t lowest[] = { getByte(pack, r + 6), getByte(pack, r + 3), getByte(pack, r), getByte(pack, r - 3) };
        const uint64_t to = (r + 3) & ~uint64_t(3);
        for (uint64_t i = 0; i < sizeof lowest; i++) putByte(pack, to + i, lowest[i]);
        copyWord(pack, r - 3, r - 2);
        copyWord(pack, r - 1, r + 1);
        copyWord(pack, r + 1, r + 4);
    }
}

uint64_t orvSwizzleLpcm(const MuxStream* stream, uint8_t* pack, uint64_t offset, uint64_t size)
{
    switch (stream->lpcmFormat) {
    case 1:
    case 3:
    case 4: exchangePairs(pack, offset, size); return 0;
    case 2:
    case 5: regroup(pack, offset, size); return 0;
    default: return ORV_UNSUPPORTED_LPCM;
    }
}
