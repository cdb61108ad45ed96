// The PES header of the scheduler's packs: stamps, extension, stuffing, sub-stream headers.
#include "mux/pes_write.h"

#include "tests/mux/mux_rig.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr uint8_t JUNK = 0xCC;

MuxStream video()
{
    MuxStream stream = {};
    stream.kind = KIND_VIDEO;
    stream.streamId = 0xE0;
    stream.stdScale = 1;
    stream.stdBound = 232;
    return stream;
}

MuxStream mpegAudio()
{
    MuxStream stream = {};
    stream.kind = KIND_MPEG_AUDIO;
    stream.streamId = 0xC1;
    stream.stdBound = 32;
    stream.unitBytes = 672;
    return stream;
}

MuxStream ac3(uint64_t unitBytes, uint64_t bytesPacked, uint64_t kind = KIND_AC3)
{
    MuxStream stream = {};
    stream.kind = kind;
    stream.streamId = 0xBD;
    stream.subStreamId = 0x82;
    stream.stdScale = 1;
    stream.stdBound = 58;
    stream.unitBytes = unitBytes;
    stream.bytesPacked = bytesPacked;
    return stream;
}

struct Lpcm {
    uint64_t format, channels, bits, rate, bytesPacked;
};

MuxStream lpcm(const Lpcm& wave)
{
    MuxStream stream = {};
    stream.kind = KIND_LPCM;
    stream.streamId = 0xBD;
    stream.subStreamId = 0xA1;
    stream.stdScale = 1;
    stream.stdBound = 58;
    stream.lpcmFormat = wave.format;
    stream.channels = wave.channels;
    stream.sampleBits = wave.bits;
    stream.sampleRate = wave.rate;
    stream.unitBytes = wave.rate / 600 * wave.bits / 8 * wave.channels;
    stream.bytesPacked = wave.bytesPacked;
    return stream;
}

/** Header of a pack of junk, which must be all that is written, from offset 14 on. */
std::string headerOf(const MuxStream& stream, uint64_t flags, uint64_t pts, uint64_t dts, uint64_t padding)
{
    Bytes pack(PACK_BYTES, JUNK);
    const uint64_t end = orvWritePesHeader(pack.data(), &stream, flags, pts, dts, padding);
    if (end < 23 || end > 60) return "payload at " + std::to_string(end);
    EXPECT_EQ(std::count(pack.begin(), pack.begin() + 14, JUNK), 14);
    EXPECT_EQ(std::count(pack.begin() + std::ptrdiff_t(end), pack.end(), JUNK), std::ptrdiff_t(PACK_BYTES - end));
    return toHex(pack.data() + 14, end - 14);
}

struct PesCase {
    const char* what;
    uint64_t flags, pts, dts, padding;
    const char* bytes;
};

// Stamp: lead and SCR 31..30, 29..22, 21..15 and a marker, 14..7, 6..0 and a marker.
// clang-format off
const PesCase VIDEO_CASES[] = {
    // what                              flags  pts         dts    padding  start, id, length,  flags,   stamps, extension, stuffing
    { "nothing",                          0x00, 90000,      90000, 0, "00 00 01 E0 07 EC 81 00 00" },
    { "PTS",                              0x80, 18000,      90000, 0, "00 00 01 E0 07 EC 81 80 05 21 00 01 8C A1" },
    { "PTS and DTS",                      0xC0, 18000,      14400, 0, "00 00 01 E0 07 EC 81 C0 0A 31 00 01 8C A1 11 00 01 70 81" },
    { "both and the extension",           0xC1, 18000,      14400, 0, "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8" },
    { "PTS and the extension",            0x81, 18000,      0,     0, "00 00 01 E0 07 EC 81 81 08 21 00 01 8C A1 1E 60 E8" },
    { "all bits of 32",                   0xC0, 0xFFFFFFFF, 0x80000000, 0, "00 00 01 E0 07 EC 81 C0 0A 37 FF FF FF FF 15 00 01 00 01" },
    { "bit 32 is not stored",             0x80, 0x1000003E8, 0,    0, "00 00 01 E0 07 EC 81 80 05 21 00 01 07 D1" },
    { "1 byte of stuffing",               0x00, 0,          0,     1, "00 00 01 E0 07 EC 81 00 01 FF" },
    { "7 bytes of stuffing",              0x80, 0,          0,     7, "00 00 01 E0 07 EC 81 80 0C 21 00 01 00 01 FF FF FF FF FF FF FF" },
    { "stuffing behind the extension",    0xC1, 18000,      14400, 3, "00 00 01 E0 07 EC 81 C1 10 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF FF FF" },
    { "8 bytes for a padding packet",     0x80, 0,          0,     8, "00 00 01 E0 07 E4 81 80 05 21 00 01 00 01" },
    { "1908 bytes for a padding packet",  0xC1, 18000,      14400, 1908, "00 00 01 E0 00 78 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8" },
};
// clang-format on

TEST(PesWrite, VideoHeaders)
{
    for (const PesCase& each : VIDEO_CASES)
        EXPECT_EQ(headerOf(video(), each.flags, each.pts, each.dts, each.padding), each.bytes) << each.what;
}

TEST(PesWrite, MpegAudioHasTheSmallScale)
{
    EXPECT_EQ(headerOf(mpegAudio(), 0x81, 18000, 18000, 0), "00 00 01 C1 07 EC 81 81 08 21 00 01 8C A1 1E 40 20");
    EXPECT_EQ(headerOf(mpegAudio(), 0x80, 18000, 18000, 0), "00 00 01 C1 07 EC 81 80 05 21 00 01 8C A1");
}

TEST(PesWrite, BoundOfThirteenBits)
{
    MuxStream stream = video();
    stream.stdBound = 0x3FFF;   // bit 13 is not stored
    EXPECT_EQ(headerOf(stream, 0x01, 0, 0, 0), "00 00 01 E0 07 EC 81 01 03 1E 7F FF");
}

struct SubCase {
    const char* what;
    MuxStream stream;
    uint64_t flags, padding;
    const char* bytes;   // behind the PES header's length byte
};

TEST(PesWrite, Ac3SubStreamHeaders)
{
    // Room of a pack with PTS: 2048 - 28 - 4 = 2016; with the extension 2013. Frame count: frames whose first byte
    // lies in the pack; pointer: 1 more than the distance to the first of them.
    const SubCase cases[] = {
        { "first pack: frames at 0, 1536", ac3(1536, 0), 0x81, 0, "08 21 00 01 00 01 1E 60 3A 82 02 00 01" },
        { "frame at 1536 of 1000..3015", ac3(1536, 1000), 0x80, 0, "05 21 00 01 00 01 82 01 02 19" },
        { "frame right at the start", ac3(1536, 3072), 0x80, 0, "05 21 00 01 00 01 82 02 00 01" },
        // 128 to 2144 exclusive: 128, 256, ... 2048: 16 frames begin.
        { "small frames", ac3(128, 128), 0x80, 0, "05 21 00 01 00 01 82 10 00 01" },
        // 129 to 2145: 256 ... 2048: 15 frames; the first after 127 bytes.
        { "small frames, off", ac3(128, 129), 0x80, 0, "05 21 00 01 00 01 82 0F 00 80" },
        // 2560: no frame of 2560 begins in 1 .. 2016; next after 2559 bytes.
        { "no frame begins", ac3(2560, 1), 0x80, 0, "05 21 00 01 00 01 82 00 0A 00" },
        // Stuffing takes room: 544 + 2013 = 2557, which a frame at 2558 would just miss and 2556 not.
        { "stuffing counts as header", ac3(2557, 544), 0x80, 3, "08 21 00 01 00 01 FF FF FF 82 01 07 DE" },
        { "and takes the frame away", ac3(2558, 544), 0x80, 3, "08 21 00 01 00 01 FF FF FF 82 00 07 DF" },
        // A padding packet does not: as if the pack were full.
        { "a padding packet does not", ac3(1536, 1000), 0x80, 500, "05 21 00 01 00 01 82 01 02 19" },
        { "frames of a table", ac3(1536, 1000, KIND_AC3_TABLE), 0x80, 0, "05 21 00 01 00 01 82 01 02 19" },
    };
    for (const SubCase& each : cases) {
        const std::string header = headerOf(each.stream, each.flags, 0, 0, each.padding);
        ASSERT_GT(header.size(), 24u) << each.what;
        EXPECT_EQ(header.substr(24), each.bytes) << each.what;
    }
}

TEST(PesWrite, LpcmSubStreamHeaders)
{
    // Count: (b + room) / u - b / u, and 1 if b / u leaves nothing; pointer: 4 more than the distance to the next unit;
    // its number modulo 20; channels less 1, 0x10 above 48 kHz, 0x80 above 16 bits; 0x80.
    const SubCase cases[] = {
        // u = 320, room 2008: 6 - 0 + 1 = 7 units.
        { "stereo, first pack", lpcm({ 1, 2, 16, 48000, 0 }), 0x81, 2,
          "0A 21 00 01 00 01 1E 60 3A FF FF A1 07 00 04 00 01 80" },
        // b = 2008: 4016 / 320 = 12, less 6; next unit 7 at 2240, 232 on.
        { "stereo, second pack", lpcm({ 1, 2, 16, 48000, 2008 }), 0x80, 5,
          "0A 21 00 01 00 01 FF FF FF FF FF A1 06 00 EC 07 01 80" },
        // b = 6400: unit 20, which is 0 again; (8408 / 320 = 26) - 20 + 1.
        { "number modulo 20", lpcm({ 1, 2, 16, 48000, 6400 }), 0x80, 0, "05 21 00 01 00 01 A1 07 00 04 00 01 80" },
        // b = 6401: next unit 21, at 6720, 319 on; (8409 / 320 = 26) - 20.
        { "number modulo 20, off", lpcm({ 1, 2, 16, 48000, 6401 }), 0x80, 0, "05 21 00 01 00 01 A1 06 01 43 01 01 80" },
        // u = 480, room 2004: 4 - 0 + 1.
        { "stereo of 24 bits", lpcm({ 2, 2, 24, 48000, 0 }), 0x80, 0, "05 21 00 01 00 01 A1 05 00 04 00 81 80" },
        // u = 960, room 1992: 2 + 1. 18 bytes go to a padding packet.
        { "six channels", lpcm({ 3, 6, 16, 48000, 0 }), 0x81, 18, "08 21 00 01 00 01 1E 60 3A A1 03 00 04 00 05 80" },
        // u = 160, room 2008: 12 + 1.
        { "mono", lpcm({ 4, 1, 16, 48000, 0 }), 0x80, 0, "05 21 00 01 00 01 A1 0D 00 04 00 00 80" },
        // u = 240, room 2010: b = 2010: 4020 / 240 = 16, less 8; unit 9 at 2160, 150 on.
        { "mono of 24 bits", lpcm({ 5, 1, 24, 48000, 2010 }), 0x80, 0, "05 21 00 01 00 01 A1 08 00 9A 09 80 80" },
        // u = 640, room 2008: 3 + 1.
        { "96 kHz", lpcm({ 1, 2, 16, 96000, 0 }), 0x80, 0, "05 21 00 01 00 01 A1 04 00 04 00 11 80" },
    };
    for (const SubCase& each : cases) {
        const std::string header = headerOf(each.stream, each.flags, 0, 0, each.padding);
        ASSERT_GT(header.size(), 24u) << each.what;
        EXPECT_EQ(header.substr(24), each.bytes) << each.what;
    }
}

TEST(PesWrite, LengthOfALpcmPackWithPadding)
{
    // 2028 - 21 = 2007.
    EXPECT_EQ(headerOf(lpcm({ 3, 6, 16, 48000, 1992 }), 0x80, 0, 0, 21).substr(0, 17), "00 00 01 BD 07 D7");
}

TEST(PesWrite, UnitsOfNoSizeDivideNothing)
{
    // Such a stream is never served; the writer by itself must survive it.
    EXPECT_EQ(headerOf(ac3(0, 100), 0x80, 0, 0, 0).substr(0, 11), "00 00 01 BD");
    EXPECT_EQ(headerOf(lpcm({ 0, 0, 0, 0, 100 }), 0x80, 0, 0, 0).substr(0, 11), "00 00 01 BD");
}

}   // namespace
