// LPCM from RIFF/WAVE: what the header says and refuses, the plan of a pack, the exchange of its bytes.
#include "mux/lpcm.h"
#include "mux/pes_write.h"
#include "mux/ring.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace {

constexpr uint64_t WRONG_RATE = 0x84000BBA, UNSUPPORTED = 0x84000BBE, NOT_RIFF = 0x84000BC6, NOT_PCM = 0x84000BC7,
                   HEADER_ONLY = 0x84000C1A, ENDED = 0x84000C1B, NO_VIDEO = 0x84000BC5;

TEST(Lpcm, SetUp)
{
    for (const uint64_t flag : std::vector<uint64_t>{ 0x10, 0x20 }) {
        const Handler handler(flag);
        const MuxStream* stream = handler.stream;
        EXPECT_EQ(stream->kind, 8u);
        EXPECT_EQ(stream->streamId, 0xBDu);
        EXPECT_EQ(stream->subStreamId, 0xA0u);
        EXPECT_EQ(stream->stdSize, 4096u);
        EXPECT_EQ(stream->stdScale, 1u);
        EXPECT_EQ(stream->stdBound, 58u);
        EXPECT_EQ(stream->unitTicks, 150u);
        EXPECT_EQ(stream->lpcmFormat, 0u);
        EXPECT_EQ(stream->ring->watermark, 0x20000u);
        EXPECT_EQ(stream->parseTimed, nullptr);
        EXPECT_EQ(stream->nextUnitAt, nullptr);
    }
}

struct FormatCase {
    uint64_t channels, bits, format;
    uint64_t unitBytes;   // at 48 kHz: 80 samples
    uint64_t capacity, firstPadding, laterPadding;
};

const FormatCase FORMATS[] = {
    { 2, 16, 1, 320, 2008, 2, 5 }, { 2, 24, 2, 480, 2004, 6, 9 }, { 6, 16, 3, 960, 1992, 18, 21 },
    { 1, 16, 4, 160, 2008, 2, 5 }, { 1, 24, 5, 240, 2010, 0, 3 },
};

TEST(Lpcm, Formats)
{
    for (uint64_t channels = 0; channels <= 9; channels++) {
        for (const uint64_t bits : std::vector<uint64_t>{ 0, 8, 16, 20, 24, 32 }) {
            const FormatCase* row = std::find_if(std::begin(FORMATS), std::end(FORMATS), [&](const FormatCase& format) {
                return format.channels == channels && format.bits == bits;
            });
            const bool known = row != std::end(FORMATS);
            for (const uint64_t rate : std::vector<uint64_t>{ 48000, 96000 }) {
                Handler handler(ORV_MUX_LPCM);
                const MuxStream* stream = handler.stream;
                const Bytes header = waveHeader({ .channels = channels, .rate = rate, .bits = bits });
                EXPECT_EQ(parseChunk(handler, header), known ? HEADER_ONLY : UNSUPPORTED) << channels << ", " << bits;
                EXPECT_EQ(stream->lpcmFormat, known ? row->format : 0) << channels << ", " << bits;
                EXPECT_EQ(stream->unitBytes, known ? row->unitBytes * (rate / 48000) : 0) << channels << ", " << bits;
                EXPECT_EQ(orvLpcmCapacity(stream), known ? row->capacity : 0);
                EXPECT_EQ(stream->channels, channels);
                EXPECT_EQ(stream->sampleRate, rate);
                EXPECT_EQ(stream->sampleBits, bits);
            }
        }
    }
}

struct HeaderCase {
    const char* what;
    std::function<void(Bytes& header)> change;
    uint64_t result;
};

const HeaderCase HEADERS[] = {
    { "as it is", [](Bytes&) {}, HEADER_ONLY },
    { "no WAVE", [](Bytes& header) { header[11] = 'F'; }, NOT_RIFF },
    { "no fmt", [](Bytes& header) { header[15] = '_'; }, NOT_RIFF },
    { "another chunk first", [](Bytes& header) { header[12] = 'L'; }, NOT_RIFF },
    { "no WAVE, and not PCM", [](Bytes& header) { header[8] = 'w', header[20] = 3; }, NOT_RIFF },
    { "float", [](Bytes& header) { header[20] = 3; }, NOT_PCM },
    { "extensible", [](Bytes& header) { header[20] = 0xFE, header[21] = 0xFF; }, NOT_PCM },
    { "0x0101", [](Bytes& header) { header[21] = 1; }, NOT_PCM },
    { "tag 0", [](Bytes& header) { header[20] = 0; }, NOT_PCM },
    { "44.1 kHz", [](Bytes& header) { header[24] = 0x44, header[25] = 0xAC; }, WRONG_RATE },
    { "192 kHz", [](Bytes& header) { header[24] = 0x00, header[25] = 0xEE, header[26] = 0x02; }, WRONG_RATE },
    { "48000 in its low half", [](Bytes& header) { header[27] = 1; }, WRONG_RATE },
    { "44.1 kHz of five channels", [](Bytes& header) { header[24] = 0x44, header[22] = 5; }, WRONG_RATE },
    { "five channels", [](Bytes& header) { header[22] = 5; }, UNSUPPORTED },
    { "258 channels", [](Bytes& header) { header[23] = 1; }, UNSUPPORTED },
    { "eight bits", [](Bytes& header) { header[34] = 8; }, UNSUPPORTED },
    { "272 bits", [](Bytes& header) { header[35] = 1; }, UNSUPPORTED },
    { "other sizes do not matter", [](Bytes& header) { header[4] = 0xFF, header[16] = 40, header[32] = 99; },
      HEADER_ONLY },
    { "nothing behind the bits", [](Bytes& header) { header.resize(36); }, HEADER_ONLY },
    { "half of the bits", [](Bytes& header) { header.resize(35); }, HEADER_ONLY },
    { "no bits", [](Bytes& header) { header.resize(34); }, UNSUPPORTED },
    { "no rate", [](Bytes& header) { header.resize(24); }, WRONG_RATE },
    { "no tag", [](Bytes& header) { header.resize(20); }, NOT_PCM },
    { "half of fmt", [](Bytes& header) { header.resize(14); }, NOT_RIFF },
    { "RIFF alone", [](Bytes& header) { header.resize(4); }, NOT_RIFF },
    { "half of RIFF", [](Bytes& header) { header.resize(3); }, 0 },
    { "RIFX", [](Bytes& header) { header[3] = 'X'; }, 0 },
    { "a byte in front", [](Bytes& header) { header.insert(header.begin(), 0); }, 0 },
    { "samples behind it", [](Bytes& header) { header.resize(5000); }, HEADER_ONLY },
};

TEST(Lpcm, Headers)
{
    for (const HeaderCase& row : HEADERS) {
        Handler handler(ORV_MUX_LPCM);
        Bytes header = waveHeader();
        row.change(header);
        EXPECT_EQ(parseChunk(handler, header), row.result) << row.what;
        EXPECT_EQ(handler.stream->lpcmFormat, row.result == HEADER_ONLY ? 1u : 0u) << row.what;
    }
}

// The chunk of a header is not stored; any other chunk is, in front of it and behind.
TEST(Lpcm, HeaderIsDroppedSamplesAreStored)
{
    Handler handler(ORV_MUX_LPCM);
    EXPECT_EQ(feedChunk(handler, filler(10)), 0u);
    EXPECT_EQ(feedChunk(handler, waveHeader() + filler(500)), HEADER_ONLY);
    EXPECT_EQ(feedChunk(handler, filler(20)), 0u);
    EXPECT_EQ(feedChunk(handler, {}), 0u);
    EXPECT_EQ(handler.stream->bytesIn, 30u);
    // A header that comes again counts again, and one that is refused keeps what was told before.
    EXPECT_EQ(feedChunk(handler, waveHeader({ .channels = 6 })), HEADER_ONLY);
    EXPECT_EQ(handler.stream->lpcmFormat, 3u);
    EXPECT_EQ(feedChunk(handler, waveHeader({ .channels = 5 })), UNSUPPORTED);
    EXPECT_EQ(handler.stream->lpcmFormat, 3u);
    EXPECT_EQ(handler.stream->unitBytes, 960u);
}

TEST(Lpcm, EndMark)
{
    Handler handler(ORV_MUX_LPCM);
    EXPECT_EQ(parseChunk(handler, fromHex("45 4E 44")), 0u);
    EXPECT_EQ(parseChunk(handler, fromHex("00 45 4E 44 20")), 0u);
    EXPECT_EQ(handler.stream->ring->ended, 0u);
    EXPECT_EQ(parseChunk(handler, endMark()), ENDED);
    EXPECT_EQ(handler.stream->ring->ended, 1u);
    Handler fed(ORV_MUX_LPCM);
    const Bytes mark = endMark();
    EXPECT_EQ(MuxData(fed.handle, fed.stream, mark.data(), mark.size(), nullptr, 0), NO_VIDEO);   // 0 bytes stored
    EXPECT_EQ(fed.stream->ring->ended, 1u);
    EXPECT_EQ(fed.stream->bytesIn, 0u);
}

TEST(Lpcm, WaveFormatInPlaceOfTheHeader)
{
    const Bytes format = waveFormat({ .channels = 1, .rate = 96000, .bits = 24 });
    ASSERT_EQ(format.size(), 18u);
    Handler handler(ORV_MUX_LPCM);
    uint64_t used = 0;
    EXPECT_EQ(MuxData(handler.handle, handler.stream, format.data(), format.size(), &used, ORV_MUX_WAVEFORMAT), 0u);
    EXPECT_EQ(used, 18u);
    EXPECT_EQ(handler.stream->lpcmFormat, 5u);
    EXPECT_EQ(handler.stream->unitBytes, 480u);
    EXPECT_EQ(handler.stream->bytesIn, 0u);
    Handler wrong(ORV_MUX_LPCM);
    const Bytes other = waveFormat({ .rate = 44100 });
    EXPECT_EQ(MuxData(wrong.handle, wrong.stream, other.data(), other.size(), nullptr, ORV_MUX_WAVEFORMAT), WRONG_RATE);
}

// Bytes that the host did not give read as 0; none is read from behind them.
TEST(Lpcm, ShortWaveFormat)
{
    for (uint64_t size = 0; size < 18; size++) {
        const Bytes whole = waveFormat();
        const auto format = std::make_unique<uint8_t[]>(size);
        std::copy(whole.begin(), whole.begin() + int64_t(size), format.get());
        Handler handler(ORV_MUX_LPCM);
        // Tag at 0, rate at 4 (0x0000BB80), bits at 14.
        const uint64_t expected = size < 1 ? NOT_PCM : size < 6 ? WRONG_RATE : size < 15 ? UNSUPPORTED : 0;
        EXPECT_EQ(MuxData(handler.handle, handler.stream, format.get(), size, nullptr, ORV_MUX_WAVEFORMAT), expected)
            << size;
    }
}

// ---- plan -------------------------------------------------------------------------------------------------------

std::string planOf(uint64_t payload, uint64_t padding, const char* flags, uint64_t unit)
{
    return "payload " + std::to_string(payload) + ", padding " + std::to_string(padding) + ", flags " + flags +
           ", unit " + std::to_string(unit);
}

TEST(Lpcm, Plans)
{
    for (const FormatCase& row : FORMATS) {
        Handler handler(ORV_MUX_LPCM);
        EXPECT_EQ(parseChunk(handler, waveHeader({ .channels = row.channels, .bits = row.bits })), HEADER_ONLY);
        MuxStream* stream = handler.stream;
        EXPECT_EQ(planText(handler), planOf(row.capacity, row.firstPadding, "81", 0));
        stream->bytesPacked = row.unitBytes;
        EXPECT_EQ(planText(handler), planOf(row.capacity, row.laterPadding, "80", 1));
        stream->bytesPacked = row.unitBytes + 1;
        EXPECT_EQ(planText(handler), planOf(row.capacity, row.laterPadding, "80", 2));
        stream->bytesPacked = 10 * row.unitBytes - 1;
        EXPECT_EQ(planText(handler), planOf(row.capacity, row.laterPadding, "80", 10));
        endRingAt(handler, row.capacity);
        EXPECT_EQ(planText(handler), planOf(row.capacity, row.laterPadding, "80", 10));
        endRingAt(handler, row.capacity - 1);
        EXPECT_EQ(planText(handler), planOf(row.capacity - 1, row.laterPadding + 1, "80", 10));
        endRingAt(handler, 100);
        EXPECT_EQ(planText(handler), planOf(100, row.laterPadding + row.capacity - 100, "80", 10));
        stream->bytesPacked = 0;
        EXPECT_EQ(planText(handler), planOf(100, row.firstPadding + row.capacity - 100, "81", 0));
    }
}

TEST(Lpcm, NoFormatNoPack)
{
    Handler handler(ORV_MUX_LPCM);
    EXPECT_EQ(handler.stream->planPack(handler.stream).payload, 0u);
    MuxUnitPlace place = { 9, 9, 9, 9 };
    EXPECT_EQ(handler.stream->unitAt(handler.stream, &place), 0u);
    EXPECT_EQ(place.index, 0u);
    EXPECT_EQ(place.position, 0u);
    EXPECT_EQ(orvLpcmCapacity(handler.stream), 0u);
}

TEST(Lpcm, UnitsAndTimes)
{
    Handler handler(ORV_MUX_LPCM);
    EXPECT_EQ(parseChunk(handler, waveHeader()), HEADER_ONLY);
    handler.stream->bytesPacked = 2008;
    MuxUnitPlace place = {};
    EXPECT_EQ(handler.stream->unitAt(handler.stream, &place), 0u);
    EXPECT_EQ(place.index, 6u);
    EXPECT_EQ(place.position, 1920u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 12345), 320u);
    handler.handle->audioDelay = 18000;
    uint64_t pts = 0, dts = 0;
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 7, &pts, &dts), 0u);
    EXPECT_EQ(pts, 19050u);
    EXPECT_EQ(dts, 19050u);
}

struct HeadCase {
    uint64_t packed, flags, padding, end;
    const char* bytes;   // id, frames, pointer, number modulo 20, sample, 80
};

// Stereo of 16 bits: frames of 320 bytes, packs of 2008.
TEST(Lpcm, SubStreamHeader)
{
    const HeadCase rows[] = {
        { 0, 0x81, 2, 40, "A0 07 00 04 00 01 80" },      // frames 0 to 6
        { 2008, 0x80, 5, 40, "A0 06 00 EC 07 01 80" },   // 7 to 12, the first 232 bytes on
        { 8032, 0x80, 5, 40, "A0 06 01 24 06 01 80" },   // 26 to 31, 288 bytes on
        { 6400, 0x80, 5, 40, "A0 07 00 04 00 01 80" },   // 20 to 26
    };
    for (const HeadCase& row : rows) {
        Handler handler(ORV_MUX_LPCM);
        EXPECT_EQ(parseChunk(handler, waveHeader()), HEADER_ONLY);
        handler.stream->bytesPacked = row.packed;
        Bytes pack(PACK_BYTES, 0);
        EXPECT_EQ(orvWritePesHeader(pack.data(), handler.stream, row.flags, 0, 0, row.padding), row.end);
        EXPECT_EQ(toHex(pack.data() + row.end - 7, 7), row.bytes) << row.packed;
    }
}

// ---- exchange of bytes ------------------------------------------------------------------------------------------

// A pack of which bytes 0x00, 0x01, ... stand around an offset: 0x40 at the offset itself. Everything else is 0xEE.
struct Swizzle {
    uint64_t result;
    Bytes pack;
    uint64_t offset;

    /** Bytes from a distance to the offset. */
    std::string at(int64_t from, uint64_t count) const
    {
        return toHex(pack.data() + int64_t(offset) + from, count);
    }
};

Swizzle swizzle(uint64_t format, uint64_t offset, uint64_t size)
{
    MuxStream stream = {};
    stream.kind = KIND_LPCM;
    stream.lpcmFormat = format;
    const auto pack = std::make_unique<uint8_t[]>(PACK_BYTES);
    std::fill(pack.get(), pack.get() + PACK_BYTES, uint8_t(0xEE));
    for (int64_t i = -0x40; i < 0x80; i++) {
        const int64_t at = int64_t(offset) + i;
        if (at >= 0 && at < int64_t(PACK_BYTES)) pack[uint64_t(at)] = uint8_t(0x40 + i);
    }
    const uint64_t result = orvSwizzleLpcm(&stream, pack.get(), offset, size);
    return { result, Bytes(pack.get(), pack.get() + PACK_BYTES), offset };
}

/** Whether a pack is as it was but for count bytes from a distance to the offset. */
void expectRestUntouched(const Swizzle& swizzled, int64_t from, uint64_t count)
{
    const Swizzle before = swizzle(99, swizzled.offset, 0);
    Bytes got = swizzled.pack, expected = before.pack;
    for (uint64_t i = 0; i < count; i++) {
        const uint64_t at = uint64_t(int64_t(swizzled.offset) + from + int64_t(i));
        if (at < PACK_BYTES) got[at] = expected[at] = 0;
    }
    EXPECT_EQ(got == expected, true) << "offset " << swizzled.offset;
}

TEST(Lpcm, SixteenBitsAreExchangedInPairs)
{
    for (const uint64_t format : std::vector<uint64_t>{ 1, 3, 4 }) {
        const Swizzle swizzled = swizzle(format, 40, 12);
        EXPECT_EQ(swizzled.result, 0u);
        EXPECT_EQ(swizzled.at(-2, 16), "3E 3F 41 40 43 42 45 44 47 46 49 48 4B 4A 4C 4D");
        expectRestUntouched(swizzled, 0, 12);
    }
}

// A size that is odd takes the byte behind it into the last pair.
TEST(Lpcm, OddSizes)
{
    EXPECT_EQ(swizzle(1, 40, 5).at(-2, 10), "3E 3F 41 40 43 42 45 44 46 47");
    EXPECT_EQ(swizzle(1, 40, 1).at(-2, 6), "3E 3F 41 40 42 43");
    EXPECT_EQ(swizzle(1, 40, 0).at(-2, 6), "3E 3F 40 41 42 43");
}

// Positions are rounded down: behind 35 bytes of headers the last of them is exchanged with the first sample's byte.
TEST(Lpcm, OddOffsetShiftsThePairs)
{
    for (const uint64_t format : std::vector<uint64_t>{ 1, 3, 4 }) {
        const Swizzle swizzled = swizzle(format, 35, 12);
        EXPECT_EQ(swizzled.at(-3, 16), "3D 3E 40 3F 42 41 44 43 46 45 48 47 4A 49 4B 4C");
        expectRestUntouched(swizzled, -1, 12);
    }
}

struct GroupCase {
    uint64_t offset;
    const char* bytes;   // from three bytes in front of the group to two behind it
};

// The four high bytes, 42 45 48 4B, lie last first on a word of four bytes; then three words of two are copied, each
// place rounded down. What comes out depends on where in a word the group begins.
const GroupCase GROUPS[] = {
    //        in front   0  1  2  3  4  5  6  7  8  9  A  B  behind
    { 44, "3D 3E 3F 40 41 42 43 46 47 4B 48 4B 48 45 42 4C 4D" },
    { 45, "3D 3E 3F 40 43 44 45 46 45 42 4B 48 45 42 4B 4C 4D" },
    { 46, "3D 3E 3F 40 41 42 43 4B 48 45 42 45 42 4A 4B 4C 4D" },
    { 35, "3D 3E 3F 40 43 44 4B 48 49 4A 45 42 49 4A 4B 4C 4D" },
};

TEST(Lpcm, TwentyFourBitsByGroups)
{
    for (const uint64_t format : std::vector<uint64_t>{ 2, 5 }) {
        for (const GroupCase& row : GROUPS) {
            const Swizzle swizzled = swizzle(format, row.offset, 12);
            EXPECT_EQ(swizzled.result, 0u);
            EXPECT_EQ(swizzled.at(-3, 17), row.bytes) << row.offset;
            expectRestUntouched(swizzled, 0, 12);
        }
    }
}

// (size - 1) / 12 + 1 groups: the last one is taken whole.
TEST(Lpcm, GroupsOfASize)
{
    const char* const one = "40 41 42 43 46 47 4B 48 4B 48 45 42";
    const char* const second = "4C 4D 4E 4F 52 53 57 54 57 54 51 4E";
    const char* const plain = "4C 4D 4E 4F 50 51 52 53 54 55 56 57";
    for (const uint64_t size : std::vector<uint64_t>{ 1, 6, 11, 12 }) {
        const Swizzle swizzled = swizzle(2, 44, size);
        EXPECT_EQ(swizzled.at(0, 12), one) << size;
        EXPECT_EQ(swizzled.at(12, 12), plain) << size;
    }
    for (const uint64_t size : std::vector<uint64_t>{ 13, 18, 24 }) {
        const Swizzle swizzled = swizzle(5, 44, size);
        EXPECT_EQ(swizzled.at(0, 12), one) << size;
        EXPECT_EQ(swizzled.at(12, 12), second) << size;
        expectRestUntouched(swizzled, 0, 24);
    }
}

// A whole payload of format 5, from 38: 167 groups, and one that begins at 2042, six bytes before the pack's end. Its
// word of four would lie at 2048; its second copy brings what lies there, which reads as 0, to 2046.
TEST(Lpcm, GroupAtTheEndOfThePack)
{
    MuxStream stream = {};
    stream.lpcmFormat = 5;
    const auto pack = std::make_unique<uint8_t[]>(PACK_BYTES);
    for (uint64_t i = 0; i < PACK_BYTES; i++) pack[i] = uint8_t(0x80 | i % 12);
    EXPECT_EQ(orvSwizzleLpcm(&stream, pack.get(), 38, 2010), 0u);
    EXPECT_EQ(toHex(pack.get() + 2042, 6), "82 83 84 85 00 00");
    // The group in front of it, at 2030, which is 2 modulo 4: bytes 82 83 84 85 86 87 88 89 8A 8B 80 81 before.
    EXPECT_EQ(toHex(pack.get() + 2030, 12), "82 83 84 85 81 8A 87 84 87 84 80 81");
    EXPECT_EQ(toHex(pack.get() + 36, 2), "80 81");
}

TEST(Lpcm, NothingIsWrittenBehindThePack)
{
    for (uint64_t format = 1; format <= 5; format++) {
        for (uint64_t offset = 2020; offset <= 2060; offset++) {
            for (const uint64_t size : std::vector<uint64_t>{ 0, 1, 12, 500, 5000 }) {
                EXPECT_EQ(swizzle(format, offset, size).result, 0u);
            }
        }
    }
}

// The last pair of a pack, and one whose second byte would lie behind it.
TEST(Lpcm, PairsAtTheEndOfThePack)
{
    EXPECT_EQ(swizzle(1, 2044, 4).at(-2, 6), "3E 3F 41 40 43 42");
    EXPECT_EQ(swizzle(1, 2044, 100).at(-2, 6), "3E 3F 41 40 43 42");
    EXPECT_EQ(swizzle(1, 2045, 3).at(-3, 6), "3D 3E 40 3F 42 41");
}

TEST(Lpcm, NoExchangeWithoutAFormat)
{
    for (const uint64_t format : std::vector<uint64_t>{ 0, 6, NONE }) {
        const Swizzle swizzled = swizzle(format, 40, 2008);
        EXPECT_EQ(swizzled.result, UNSUPPORTED) << format;
        expectRestUntouched(swizzled, 0, 0);
    }
}

}   // namespace
