// wave_file.cpp: RIFF/WAVE files, chunk by chunk, up to their samples.
#include "wave_file.h"

#include "codes.h"

#include <algorithm>
#include <cstring>

static constexpr uint64_t RIFF_HEAD_BYTES = 12, CHUNK_HEAD_BYTES = 8;
static constexpr uint64_t LEAST_FORMAT_BYTES = 16, EXTENSIBLE_BYTES = 40;
static constexpr uint64_t AT_CHANNELS = 2, AT_RATE = 4, AT_BLOCK = 12, AT_BITS = 14, AT_SUB_FORMAT = 24;
static constexpr uint64_t TAG_PCM = 1, TAG_EXTENSIBLE = 0xFFFE;
static constexpr uint64_t UNITS_A_SECOND = 600;

// Every sub-format that stands for a tag ends like this.
static constexpr uint8_t SUB_FORMAT_TAIL[14] = { 0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71 };

static uint64_t little(const uint8_t* at, uint64_t bytes)
{
    uint64_t value = 0;
    for (uint64_t i = bytes; i-- > 0;) value = value << 8 | at[i];
    return value;
}

// Plain PCM is told in the long form too, as soon as it has more than two channels or 16 bits.
static void makePlain(uint8_t* chunk, uint64_t bytes)
{
    const bool tagged = bytes >= EXTENSIBLE_BYTES &&
                        std::memcmp(chunk + AT_SUB_FORMAT + 2, SUB_FORMAT_TAIL, sizeof SUB_FORMAT_TAIL) == 0;
    if (little(chunk, 2) != TAG_EXTENSIBLE || !tagged) return;
    chunk[0] = chunk[AT_SUB_FORMAT];
    chunk[1] = chunk[AT_SUB_FORMAT + 1];
}

/** Bytes of one sample of all channels. */
static uint64_t blockOf(const StreamFormat& format)
{
    return format.channels * ((format.bits + 7) / 8);
}

static FileFault readFormat(std::istream& in, uint64_t size, StreamFormat* format)
{
    uint8_t chunk[EXTENSIBLE_BYTES] = {};
    if (size < LEAST_FORMAT_BYTES) return { 0, "its `fmt ` chunk is too short" };
    const uint64_t bytes = std::min(size, EXTENSIBLE_BYTES);
    in.read(reinterpret_cast<char*>(chunk), std::streamsize(bytes));
    makePlain(chunk, bytes);
    std::copy(chunk, chunk + LEAST_FORMAT_BYTES, format->wave.begin());
    format->channels = little(chunk + AT_CHANNELS, 2);
    format->rate = little(chunk + AT_RATE, 4);
    format->bits = little(chunk + AT_BITS, 2);
    const uint64_t sample = blockOf(*format);
    if (little(chunk, 2) == TAG_PCM && little(chunk + AT_BLOCK, 2) != sample) {
        return { 0, "its `fmt ` chunk contradicts itself: channels and bits do not make the block size" };
    }
    format->unitTicks = TICKS_A_SECOND / UNITS_A_SECOND;
    format->unitBytes = sample * (format->rate / UNITS_A_SECOND);
    return {};
}

// What the library itself refuses is left to it: its codes say more.
static FileFault checkSamples(StreamFormat* format)
{
    const uint64_t block = blockOf(*format);
    if (little(format->wave.data(), 2) != TAG_PCM) return {};
    if (block == 0 || format->unitBytes == 0) return { CODE_LPCM_FORMAT, "its `fmt ` chunk tells of no samples" };
    format->bytes -= format->bytes % block;
    const bool packed = format->bits == 24 && (format->channels == 1 || format->channels == 2);
    if (packed || (format->bits == 16 && format->channels == 6)) {
        // Meant: the multiplexer takes them, but what a player makes of them is noise.
        // Test: MuxRecognise.SoundThatWouldBecomeNoise
        return { 0, "players would not find its samples of " + std::to_string(format->bits) + " bits in " +
                        std::to_string(format->channels) +
                        " channels where the multiplexer stores them; use 16 bits in one or two channels, or AC-3" };
    }
    return {};
}

/** A program that writes into a pipe knows no sizes, and leaves the largest number or 0 in all of them; one that was
 *  stopped leaves a RIFF size that ends where the samples begin, at from. */
static bool isUnknown(uint64_t size, uint64_t riffSize, uint64_t from)
{
    return size == UINT32_MAX || (size == 0 && riffSize + CHUNK_HEAD_BYTES <= from);
}

static bool readAt(std::istream& in, uint64_t at, uint8_t* to, uint64_t bytes)
{
    in.clear();
    in.seekg(std::streamoff(at));
    return bool(in.read(reinterpret_cast<char*>(to), std::streamsize(bytes)));
}

FileFault findWaveSamples(std::istream& in, uint64_t bytes, WaveSamples* samples)
{
    constexpr int MOST_CHUNKS = 10000;
    uint8_t riff[RIFF_HEAD_BYTES] = {}, head[CHUNK_HEAD_BYTES] = {};
    StreamFormat* format = &samples->format;
    format->kind = STREAM_LPCM;
    bool formatSeen = false;
    if (!readAt(in, 0, riff, sizeof riff)) return { CODE_READ_FAILED, "the file can't be read" };
    uint64_t at = RIFF_HEAD_BYTES;
    for (int chunk = 0; chunk < MOST_CHUNKS && readAt(in, at, head, sizeof head); chunk++) {
        const uint64_t size = little(head + 4, 4), left = bytes - at - CHUNK_HEAD_BYTES;
        if (std::memcmp(head, "data", 4) == 0) {
            if (!formatSeen) return { 0, "there is no `fmt ` chunk in front of its samples" };
            format->from = at + CHUNK_HEAD_BYTES;
            format->bytes = isUnknown(size, little(riff + 4, 4), format->from) ? left : std::min(size, left);
            samples->told = size;
            samples->isPlain = little(format->wave.data(), 2) == TAG_PCM;
            return {};
        }
        if (std::memcmp(head, "fmt ", 4) == 0) {
            if (FileFault fault = readFormat(in, std::min(size, left), format)) return fault;
            formatSeen = true;
        }
        at += CHUNK_HEAD_BYTES + size + size % 2;
    }
    return { 0, "there is no `data` chunk in it" };
}

FileFault readWave(std::istream& in, uint64_t bytes, StreamFormat* format)
{
    WaveSamples samples = { *format };
    FileFault fault = findWaveSamples(in, bytes, &samples);
    *format = samples.format;
    return fault ? fault : checkSamples(format);
}
