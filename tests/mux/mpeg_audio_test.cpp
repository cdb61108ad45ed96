// MPEG audio layer 2: what its header says, the count of frames, holes filled by time, the plan of a pack.
#include "mux/audio_units.h"
#include "mux/ring.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t NOT_LAYER_2 = 0x84100BB9, WRONG_RATE = 0x84000BBA, UNKNOWN_STREAM = 0x84000BC1,
                   OVERFLOWED = 0x84000BC9;
constexpr uint64_t FRAME_224 = 672;   // bytes at 224 kbit/s, rate index 11

TEST(MpegAudio, SetUp)
{
    const Handler handler(ORV_MUX_MPEG_AUDIO);
    const MuxStream* stream = handler.stream;
    EXPECT_EQ(stream->kind, 9u);
    EXPECT_EQ(stream->streamId, 0xC0u);
    EXPECT_EQ(stream->subStreamId, 0u);
    EXPECT_EQ(stream->stdSize, 4096u);
    EXPECT_EQ(stream->stdScale, 0u);
    EXPECT_EQ(stream->stdBound, 32u);
    EXPECT_EQ(stream->unitTicks, 2160u);
    EXPECT_EQ(stream->sampleRate, 48000u);
    EXPECT_EQ(stream->sampleBits, 16u);
    EXPECT_EQ(stream->ring->watermark, 0x4000u);
    EXPECT_NE(stream->readScratch, nullptr);
    EXPECT_EQ(stream->nextUnitAt, nullptr);
    EXPECT_NE(stream->parseTimed, nullptr);
}

struct RateCase {
    uint64_t index, kbits, bytes;
};

const RateCase RATES[] = {
    { 0, 0, 0 },      { 1, 32, 96 },    { 2, 48, 144 },    { 3, 56, 168 },  { 4, 64, 192 },   { 5, 80, 240 },
    { 6, 96, 288 },   { 7, 112, 336 },  { 8, 128, 384 },   { 9, 160, 480 }, { 10, 192, 576 }, { 11, 224, 672 },
    { 12, 256, 768 }, { 13, 320, 960 }, { 14, 384, 1152 }, { 15, 0, 0 },
};

TEST(MpegAudio, BitRates)
{
    for (const RateCase& row : RATES) {
        // The padding bit, 2 of byte 2, plays no part.
        for (uint8_t low = 4; low <= 7; low++) {
            Handler handler(ORV_MUX_MPEG_AUDIO);
            EXPECT_EQ(parseChunk(handler, Bytes{ 0xFF, 0xFD, uint8_t(row.index << 4 | low), 0x00 }), 0u);
            EXPECT_EQ(handler.stream->unitBytes, row.bytes) << row.index;
            EXPECT_EQ(handler.stream->bitRate, row.kbits * 1024) << row.index;
            EXPECT_EQ(handler.stream->headerSeen, 1u);
        }
    }
}

struct HeaderCase {
    const char* what;
    const char* bytes;
    uint64_t result;
    uint64_t headerSeen;
};

// clang-format off
const HeaderCase HEADERS[] = {
    { "layer 2",                   "FF FD B4 00", 0,           1 },
    { "with a checksum",           "FF FC B4 00", 0,           1 },
    { "version bit clear",         "FF F5 B4 00", 0,           1 },
    { "layer 3",                   "FF FB B4 00", NOT_LAYER_2, 0 },
    { "layer 1",                   "FF FF B4 00", NOT_LAYER_2, 0 },
    { "layer of no number",        "FF F9 B4 00", NOT_LAYER_2, 0 },
    { "44.1 kHz",                  "FF FD B0 00", WRONG_RATE,  0 },
    { "32 kHz",                    "FF FD B8 00", WRONG_RATE,  0 },
    { "rate of no number",         "FF FD BC 00", WRONG_RATE,  0 },
    { "layer 3 at 44.1 kHz",       "FF FB B0 00", NOT_LAYER_2, 0 },   // the layer is looked at first
    { "sync of 11 bits",           "FF ED B4 00", 0,           0 },
    { "no sync",                   "00 FD B4 00", 0,           0 },
    { "a byte in front",           "A5 FF FD B4", 0,           0 },
    { "first byte alone",          "FF",          0,           0 },
    { "byte 2 is missing",         "FF FD",       WRONG_RATE,  0 },
    { "nothing",                   "",            0,           0 },
    { "the end mark of others",    "45 4E 44 20", 0,           0 },
};
// clang-format on

TEST(MpegAudio, Headers)
{
    for (const HeaderCase& row : HEADERS) {
        Handler handler(ORV_MUX_MPEG_AUDIO);
        EXPECT_EQ(parseChunk(handler, fromHex(row.bytes)), row.result) << row.what;
        EXPECT_EQ(handler.stream->headerSeen, row.headerSeen) << row.what;
        EXPECT_EQ(handler.stream->unitBytes, row.headerSeen ? FRAME_224 : 0u) << row.what;
        EXPECT_EQ(handler.stream->ring->ended, 0u) << row.what;
    }
}

// A refused chunk leaves no trace; the next is tried again. Once there was a header, no chunk is looked at.
TEST(MpegAudio, HeaderIsReadOnce)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(feedChunk(handler, filler(100)), 0u);   // taken as it is
    EXPECT_EQ(handler.stream->unitCount, 0u);
    EXPECT_EQ(handler.stream->groupBase, 0u);
    EXPECT_EQ(feedChunk(handler, fromHex("FF FB B4 00")), NOT_LAYER_2);
    EXPECT_EQ(feedChunk(handler, layer2Frame(11)), 0u);
    EXPECT_EQ(handler.stream->bytesIn, 772u);
    EXPECT_EQ(feedChunk(handler, fromHex("FF FB 10 00")), 0u);
    EXPECT_EQ(handler.stream->unitBytes, FRAME_224);
    EXPECT_EQ(handler.stream->bytesIn, 776u);
}

TEST(MpegAudio, CountsWholeFrames)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    const Bytes frames = layer2Frames(11, 5);   // 3360 bytes
    const struct {
        uint64_t bytes, count, rest;
    } rows[] = { { 1000, 1, 328 }, { 1016, 3, 0 }, { 671, 3, 671 }, { 1, 4, 0 }, { 0, 4, 0 }, { 672, 5, 0 } };
    uint64_t at = 0;
    for (const auto& row : rows) {
        EXPECT_EQ(feedChunk(handler, Bytes(frames.begin() + int64_t(at), frames.begin() + int64_t(at + row.bytes))),
                  0u);
        at += row.bytes;
        EXPECT_EQ(handler.stream->unitCount, row.count) << at;
        EXPECT_EQ(handler.stream->groupBase, row.rest) << at;
    }
}

struct HoleCase {
    const char* what;
    uint64_t before;   // frames delivered before
    uint64_t time;
    uint64_t missing;
};

// clang-format off
const HoleCase HOLES[] = {
    { "in time",              0,              0,  0 },
    { "no time",              0,           NONE,  0 },
    { "4 frames",             0,       4 * 2160,  0 },
    { "a tick below 5",       0,   5 * 2160 - 1,  0 },
    { "5 frames",             0,       5 * 2160,  5 },
    { "10 frames",            0,      10 * 2160, 10 },
    { "15 frames",            0,      15 * 2160, 15 },
    { "a tick below 16",      0,  16 * 2160 - 1, 15 },
    { "16 frames",            0,      16 * 2160,  0 },
    { "1000 frames",          0,    1000 * 2160,  0 },
    { "as late as can be",    0,       NONE - 1,  0 },
    { "4 behind 3",           3,       7 * 2160,  0 },
    { "5 behind 3",           3,       8 * 2160,  5 },
    { "15 behind 3",          3,      18 * 2160, 15 },
    { "16 behind 3",          3,      19 * 2160,  0 },
    { "a frame too early",    3,       2 * 2160,  0 },
    { "10 frames too early", 20,      10 * 2160,  0 },
};
// clang-format on

TEST(MpegAudio, HolesOf5To15FramesAreFilled)
{
    for (const HoleCase& row : HOLES) {
        Handler handler(ORV_MUX_MPEG_AUDIO);
        if (row.before) {
            EXPECT_EQ(feedChunk(handler, layer2Frames(11, row.before)), 0u) << row.what;
            (void)drainRing(handler);
        }
        const Bytes frame = layer2Frame(11);
        EXPECT_EQ(feedChunk(handler, frame, row.time), 0u) << row.what;
        EXPECT_EQ(handler.stream->unitCount, row.before + row.missing + 1) << row.what;
        EXPECT_EQ(handler.stream->bytesIn, (row.before + row.missing + 1) * FRAME_224) << row.what;
        EXPECT_EQ(handler.stream->gapUnits, 0u) << row.what;
        EXPECT_EQ(drainRing(handler), Bytes(row.missing * FRAME_224, 0) + frame) << row.what;
    }
}

// 1000 bytes are one frame and 328 bytes; the hole's bytes are counted behind them.
TEST(MpegAudio, HoleWithinAFrame)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(feedChunk(handler, layer2Frame(11) + filler(328)), 0u);
    EXPECT_EQ(feedChunk(handler, filler(10), 6 * 2160), 0u);
    EXPECT_EQ(handler.stream->unitCount, 6u);
    EXPECT_EQ(handler.stream->groupBase, 338u);
    EXPECT_EQ(handler.stream->bytesIn, 1000u + 5 * 672 + 10);
}

// Holes are told by the frames that came and those put in, so each is filled once.
TEST(MpegAudio, HoleIsFilledOnce)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(feedChunk(handler, layer2Frame(11), 10 * 2160), 0u);
    EXPECT_EQ(handler.stream->unitCount, 11u);
    EXPECT_EQ(feedChunk(handler, layer2Frame(11), 11 * 2160), 0u);
    EXPECT_EQ(handler.stream->unitCount, 12u);
    EXPECT_EQ(feedChunk(handler, layer2Frame(11), 18 * 2160), 0u);
    EXPECT_EQ(handler.stream->unitCount, 19u);
}

TEST(MpegAudio, NoFrameSizeNoHole)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(feedChunk(handler, filler(50), 10 * 2160), 0u);
    EXPECT_EQ(handler.stream->bytesIn, 50u);
    EXPECT_EQ(feedChunk(handler, fromHex("FF FD 04 00"), 10 * 2160), 0u);   // index 0
    EXPECT_EQ(handler.stream->bytesIn, 54u);
    EXPECT_EQ(handler.stream->unitCount, 0u);
    EXPECT_EQ(handler.stream->headerSeen, 1u);
}

TEST(MpegAudio, HoleThatDoesNotFitTheRing)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    handler.stream->ring->fill = RING_BYTES - 5 * FRAME_224 + 1;
    EXPECT_EQ(parseChunk(handler, layer2Frame(11), 5 * 2160), OVERFLOWED);
    EXPECT_EQ(handler.stream->ring->fill, RING_BYTES - 5 * FRAME_224 + 1);
    EXPECT_EQ(handler.stream->bytesIn, 0u);
}

TEST(MpegAudio, UnitsFollowFromTheSize)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    MuxUnitPlace place = {};
    EXPECT_EQ(handler.stream->unitAt(handler.stream, &place), UNKNOWN_STREAM);
    EXPECT_EQ(parseChunk(handler, layer2Frame(11)), 0u);
    const struct {
        uint64_t packed, index, position;
    } rows[] = { { 0, 0, 0 }, { 671, 0, 0 }, { 672, 1, 672 }, { 2000, 2, 1344 }, { 672000, 1000, 672000 } };
    for (const auto& row : rows) {
        handler.stream->bytesPacked = row.packed;
        EXPECT_EQ(handler.stream->unitAt(handler.stream, &place), 0u);
        EXPECT_EQ(place.index, row.index) << row.packed;
        EXPECT_EQ(place.position, row.position) << row.packed;
        EXPECT_EQ(place.codingType, 0u);
        EXPECT_EQ(place.group, 0u);
    }
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 0), FRAME_224);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, NONE), FRAME_224);
}

TEST(MpegAudio, TimesWithTheDelayOfAudio)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    handler.handle->videoDelay = 999;
    handler.handle->audioDelay = 18000;
    uint64_t pts = 0, dts = 0;
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 7, &pts, &dts), 0u);
    EXPECT_EQ(pts, 18000u + 7 * 2160);
    EXPECT_EQ(dts, 18000u + 7 * 2160);
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 0, &pts, nullptr), 0u);
    EXPECT_EQ(pts, 18000u);
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 1, nullptr, &dts), 0u);
    EXPECT_EQ(dts, 20160u);
}

struct PlanCase {
    const char* what;
    uint64_t packed, level;   // NONE: open
    const char* plan;
};

// clang-format off
const PlanCase PLANS[] = {
    { "first",                    0,    NONE, "payload 2017, padding 0, flags 81, unit 0" },
    { "first, exactly",           0,    2017, "payload 2017, padding 0, flags 81, unit 0" },
    { "first, one short",         0,    2016, "payload 2016, padding 1, flags 81, unit 0" },
    { "second",                2017,    NONE, "payload 2020, padding 0, flags 80, unit 4" },
    { "at a frame's start",    2016,    NONE, "payload 2020, padding 0, flags 80, unit 3" },
    { "a byte behind it",      2689,    NONE, "payload 2020, padding 0, flags 80, unit 5" },
    { "later, exactly",        4037,    2020, "payload 2020, padding 0, flags 80, unit 7" },
    { "later, one short",      4037,    2019, "payload 2019, padding 1, flags 80, unit 7" },
    { "its last byte",         4037,       1, "payload 1, padding 2019, flags 80, unit 7" },
    { "nothing left",          4037,       0, "payload 0, padding 2020, flags 80, unit 7" },
};
// clang-format on

TEST(MpegAudio, Plans)
{
    for (const PlanCase& row : PLANS) {
        Handler handler(ORV_MUX_MPEG_AUDIO);
        EXPECT_EQ(parseChunk(handler, layer2Frame(11)), 0u);
        handler.stream->bytesPacked = row.packed;
        if (row.level != NONE) endRingAt(handler, row.level);
        EXPECT_EQ(planText(handler), row.plan) << row.what;
    }
}

TEST(MpegAudio, NoFrameSizeNoPack)
{
    Handler handler(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(handler.stream->planPack(handler.stream).payload, 0u);
    EXPECT_EQ(parseChunk(handler, fromHex("FF FD F4 00")), 0u);   // index 15
    EXPECT_EQ(handler.stream->planPack(handler.stream).payload, 0u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 0), 0u);
}

}   // namespace
