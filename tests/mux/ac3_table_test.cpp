// AC-3 in chunks of any kind: the table of its frames, missing frames, either byte order.
#include "mux/ring.h"
#include "mux/unit_table.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t WRONG_RATE = 0x84100BBA, ENDED = 0x84000C1B, OVERFLOWED = 0x84000BC9, NO_VIDEO = 0x84000BC5;

typedef std::vector<uint64_t> Positions;

// Bytes between frames; they hold no sync.
Bytes gap(uint64_t bytes)
{
    return filler(bytes, 77);
}

// A frame whose bytes are exchanged in pairs. Byte 4 as it comes is the size code.
Bytes swappedFrame(uint8_t sizeCode, uint64_t bytes)
{
    Bytes frame = fromHex("77 0B 90 91") + Bytes{ sizeCode, 0x92 };
    return frame + filler(bytes - 6);
}

TEST(Ac3Table, SetUp)
{
    const Handler handler(ORV_MUX_AC3_ANY);
    const MuxStream* stream = handler.stream;
    EXPECT_EQ(stream->kind, 13u);
    EXPECT_EQ(stream->streamId, 0xBDu);
    EXPECT_EQ(stream->subStreamId, 0x80u);
    EXPECT_EQ(stream->stdSize, 4096u);
    EXPECT_EQ(stream->stdScale, 1u);
    EXPECT_EQ(stream->stdBound, 58u);
    EXPECT_EQ(stream->unitTicks, 2880u);
    EXPECT_EQ(stream->ring->watermark, 0x4000u);
    EXPECT_NE(stream->unitTable, nullptr);
    EXPECT_NE(stream->parseTimed, nullptr);
    EXPECT_EQ(stream->nextUnitAt, nullptr);
}

TEST(Ac3Table, OneRecordAFrame)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frames(0, 4)), 0u);
    EXPECT_EQ(positionsOf(handler), (Positions{ 0, 128, 256, 384 }));
    EXPECT_EQ(handler.stream->unitCount, 4u);
    EXPECT_EQ(handler.stream->picturesSeen, 4u);
    EXPECT_EQ(handler.stream->unitBytes, 128u);
    EXPECT_EQ(handler.stream->bitRate, 32768u);
    EXPECT_EQ(handler.stream->byteSwapped, 0u);
    for (const MuxUnit& unit : unitsOf(handler)) {
        EXPECT_EQ(unit.codingType, 0u);
        EXPECT_EQ(unit.group, 0u);
    }
}

const uint64_t KBITS[] = { 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 448, 512, 576, 640 };

TEST(Ac3Table, FrameSizes)
{
    for (uint64_t code = 0; code < 256; code++) {
        Handler handler(ORV_MUX_AC3_ANY);
        const Bytes chunk = { 0x0B, 0x77, 0x12, 0x34, uint8_t(code), 0x40 };
        EXPECT_EQ(parseChunk(handler, chunk), code > 63 ? WRONG_RATE : 0) << code;
        EXPECT_EQ(handler.stream->unitBytes, code < 38 ? KBITS[code / 2] * 4 : 0) << code;
        EXPECT_EQ(handler.stream->bitRate, code < 38 ? KBITS[code / 2] * 1024 : 0) << code;
        EXPECT_EQ(handler.stream->unitCount, code > 63 ? 0u : 1u) << code;
    }
}

TEST(Ac3Table, HostGetsNoWordOfAWrongRate)
{
    Handler handler(ORV_MUX_AC3_ANY);
    const Bytes chunk = fromHex("0B 77 00 00 40 40 A5");
    EXPECT_EQ(MuxDataEx(handler.handle, handler.stream, chunk.data(), chunk.size(), 0, NONE), 0u);
    EXPECT_EQ(MuxData(handler.handle, handler.stream, chunk.data(), chunk.size(), nullptr, 0), 0u);
    EXPECT_EQ(handler.stream->bytesIn, 0u);
    EXPECT_EQ(handler.stream->ring->fill, 0u);
}

// Frames may change their size from one to the next.
TEST(Ac3Table, SizeOfEachFrame)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0) + ac3Frame(4) + ac3Frame(0)), 0u);   // 128, 192, 128
    EXPECT_EQ(positionsOf(handler), (Positions{ 0, 128, 320 }));
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 0), 128u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 1), 192u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 2), 0u);   // the last one's is not known
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 3), 0u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, NONE), 0u);
}

// ---- borders ----------------------------------------------------------------------------------------------------

TEST(Ac3Table, BorderAtEachOffset)
{
    const Bytes frames = ac3Frames(0, 3);
    for (uint64_t border = 6; border <= 378; border++) {
        Handler handler(ORV_MUX_AC3_ANY);
        for (const Bytes& chunk : cut(frames, { border, 384 })) EXPECT_EQ(feedChunk(handler, chunk), 0u);
        EXPECT_EQ(positionsOf(handler), (Positions{ 0, 128, 256 })) << border;
    }
}

TEST(Ac3Table, ManySmallChunks)
{
    for (uint64_t bytes = 6; bytes <= 40; bytes++) {
        Handler handler(ORV_MUX_AC3_ANY);
        for (const Bytes& chunk : cut(ac3Frames(0, 3), { bytes })) EXPECT_EQ(feedChunk(handler, chunk), 0u);
        EXPECT_EQ(positionsOf(handler), (Positions{ 0, 128, 256 })) << bytes;
    }
}

// The last five bytes wait for a chunk of six.
TEST(Ac3Table, LastFiveBytesWait)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0) + fromHex("0B 77 90 91 00")), 0u);
    EXPECT_EQ(handler.stream->unitCount, 1u);
    EXPECT_EQ(toHex(handler.stream->lookBack, 5), "0B 77 90 91 00");
    EXPECT_EQ(feedChunk(handler, gap(6)), 0u);
    EXPECT_EQ(positionsOf(handler), (Positions{ 0, 128 }));
}

TEST(Ac3Table, ChunkOfFiveBytesIsStoredButNotScanned)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0)), 0u);
    const std::string kept = toHex(handler.stream->lookBack, 5);
    EXPECT_EQ(feedChunk(handler, fromHex("0B 77 90 91 00")), 0u);
    EXPECT_EQ(feedChunk(handler, {}), 0u);
    EXPECT_EQ(handler.stream->bytesIn, 133u);
    EXPECT_EQ(handler.stream->unitCount, 1u);
    EXPECT_EQ(toHex(handler.stream->lookBack, 5), kept);
    EXPECT_EQ(feedChunk(handler, gap(20)), 0u);
    EXPECT_EQ(handler.stream->unitCount, 1u);
}

TEST(Ac3Table, NothingInFrontOfTheFirstChunk)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, fromHex("77 90 91 00 40 90 91 92")), 0u);
    EXPECT_EQ(handler.stream->unitCount, 0u);
    EXPECT_EQ(handler.stream->bytesIn, 8u);   // stored: only video waits for its first header
}

// ---- byte order -------------------------------------------------------------------------------------------------

TEST(Ac3Table, FirstSyncTellsTheByteOrder)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(handler.stream->byteSwapped, 0u);
    EXPECT_EQ(feedChunk(handler, gap(10)), 0u);
    EXPECT_EQ(handler.stream->byteSwapped, NONE);   // not known yet
    EXPECT_EQ(feedChunk(handler, swappedFrame(0, 128)), 0u);
    EXPECT_EQ(handler.stream->byteSwapped, 1u);
    EXPECT_EQ(positionsOf(handler), (Positions{ 10 }));
}

TEST(Ac3Table, SyncsOfTheOtherOrderAreIgnored)
{
    Handler swapped(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(swapped, swappedFrame(0, 128) + ac3Frame(0) + swappedFrame(0, 128) + gap(8)), 0u);
    EXPECT_EQ(positionsOf(swapped), (Positions{ 0, 128, 256 }));   // 128 as a missing frame
    EXPECT_EQ(swapped.stream->unitCount, 3u);
    Handler normal(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(normal, ac3Frame(0) + swappedFrame(0, 128)), 0u);
    EXPECT_EQ(positionsOf(normal), (Positions{ 0 }));
    EXPECT_EQ(normal.stream->byteSwapped, 0u);
}

// Byte 4 is the size code in both orders, though of exchanged bytes it is another field of the frame.
TEST(Ac3Table, SizeCodeInEitherOrder)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, fromHex("77 0B 90 91 08 3F 92 93")), 0u);
    EXPECT_EQ(handler.stream->unitBytes, 256u);   // code 8, not 63
    Handler normal(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(normal, fromHex("0B 77 90 91 08 3F 92 93")), 0u);
    EXPECT_EQ(normal.stream->unitBytes, 256u);
    // A real frame has 0x40 there.
    Handler real(ORV_MUX_AC3_ANY);
    EXPECT_EQ(parseChunk(real, swappedPairs(ac3Frame(8))), WRONG_RATE);
    EXPECT_EQ(real.stream->byteSwapped, 1u);
    EXPECT_EQ(real.stream->unitCount, 0u);
}

// ---- frames -----------------------------------------------------------------------------------------------------

TEST(Ac3Table, SyncWithinAFrameIsIgnored)
{
    Handler handler(ORV_MUX_AC3_ANY);
    // Syncs at 6 and 122 of the first frame's 128 bytes.
    EXPECT_EQ(feedChunk(handler, fromHex("0B 77 90 91 00 40 0B 77 90 91 00 40") + gap(110) +
                                     fromHex("0B 77 90 91 1E 40") + ac3Frame(0)),
              0u);
    EXPECT_EQ(positionsOf(handler), (Positions{ 0, 128 }));
    EXPECT_EQ(handler.stream->unitBytes, 128u);
}

struct MissingCase {
    uint64_t gapBytes;
    Positions positions;
};

// A frame of 128 bytes, then some bytes, then the next: what is missing is entered from its end.
TEST(Ac3Table, MissingFramesAreEnteredBackwards)
{
    const MissingCase rows[] = {
        { 0, { 0, 128 } },
        { 1, { 0, 1, 129 } },   // 129 - 128, above 0
        { 100, { 0, 100, 228 } },
        { 128, { 0, 128, 256 } },
        { 172, { 0, 172, 44, 300 } },
        { 384, { 0, 384, 256, 128, 512 } },
        { 385, { 0, 385, 257, 129, 1, 513 } },
    };
    for (const MissingCase& row : rows) {
        Handler handler(ORV_MUX_AC3_ANY);
        EXPECT_EQ(feedChunk(handler, ac3Frame(0) + gap(row.gapBytes) + ac3Frame(0)), 0u);
        EXPECT_EQ(positionsOf(handler), row.positions) << row.gapBytes;
        EXPECT_EQ(handler.stream->unitCount, row.positions.size()) << row.gapBytes;
        EXPECT_EQ(handler.stream->picturesSeen, row.positions.size()) << row.gapBytes;
    }
}

// They have the size of the frame before them, the walk stops at its place, and the next frame follows the last
// entered.
TEST(Ac3Table, MissingFramesBehindALaterFrame)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0) + ac3Frame(4) + gap(192) + ac3Frame(0) + ac3Frame(0)), 0u);
    // 128 and 192 bytes; a frame at 512: 320 is missing; then one at 640.
    EXPECT_EQ(positionsOf(handler), (Positions{ 0, 128, 320, 512, 640 }));
}

// The frame in front of the table's first sync is none: nothing is missing there.
TEST(Ac3Table, BytesInFrontOfTheFirstFrame)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, gap(1000) + ac3Frame(0)), 0u);
    EXPECT_EQ(positionsOf(handler), (Positions{ 1000 }));
}

// What is missing is entered before the rate is looked at.
TEST(Ac3Table, MissingFramesInFrontOfAWrongRate)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0)), 0u);
    EXPECT_EQ(parseChunk(handler, gap(256) + fromHex("0B 77 90 91 80 40") + gap(20)), WRONG_RATE);
    EXPECT_EQ(positionsOf(handler), (Positions{ 0, 256, 128 }));
    EXPECT_EQ(handler.stream->unitCount, 3u);
    EXPECT_EQ(handler.stream->unitBytes, 128u);
}

// ---- end, units, plan -------------------------------------------------------------------------------------------

TEST(Ac3Table, EndMark)
{
    Handler first(ORV_MUX_AC3_ANY);
    EXPECT_EQ(parseChunk(first, endMark()), ENDED);
    EXPECT_EQ(first.stream->ring->ended, 1u);
    EXPECT_EQ(first.stream->headerSeen, 0u);   // looked for in front of everything
    Handler timed(ORV_MUX_AC3_ANY);
    const Bytes mark = endMark();
    EXPECT_EQ(MuxDataEx(timed.handle, timed.stream, mark.data(), mark.size(), 0, 0), ENDED);
    EXPECT_EQ(timed.stream->ring->ended, 1u);
    Handler plain(ORV_MUX_AC3_ANY);
    EXPECT_EQ(MuxData(plain.handle, plain.stream, mark.data(), mark.size(), nullptr, 0), NO_VIDEO);   // stored: 0 bytes
    EXPECT_EQ(plain.stream->ring->ended, 1u);
    EXPECT_EQ(plain.stream->bytesIn, 0u);
    Handler shorter(ORV_MUX_AC3_ANY);
    EXPECT_EQ(parseChunk(shorter, fromHex("45 4E 44")), 0u);
    EXPECT_EQ(shorter.stream->ring->ended, 0u);
}

std::string currentText(const Handler& handler)
{
    MuxUnitPlace place = {};
    EXPECT_EQ(handler.stream->unitAt(handler.stream, &place), 0u);
    return std::to_string(place.index) + " at " + std::to_string(place.position);
}

TEST(Ac3Table, CurrentUnit)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(currentText(handler), "0 at 0");
    EXPECT_EQ(feedChunk(handler, ac3Frame(0) + gap(384) + ac3Frame(0)), 0u);   // 0, 384, 256, 128, 512
    const struct {
        uint64_t packed;
        const char* current;
    } rows[] = { { 0, "0 at 0" },     { 200, "0 at 0" },   { 383, "0 at 0" },
                 { 384, "3 at 128" }, { 511, "3 at 128" }, { 512, "4 at 512" } };
    for (const auto& row : rows) {
        handler.stream->bytesPacked = row.packed;
        EXPECT_EQ(currentText(handler), row.current) << row.packed;
    }
}

TEST(Ac3Table, TimesWithTheDelayOfAudio)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frames(0, 2)), 0u);
    handler.handle->audioDelay = 18000;
    uint64_t pts = 0, dts = 0;
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 1, &pts, &dts), 0u);
    EXPECT_EQ(pts, 20880u);
    EXPECT_EQ(dts, 20880u);
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 50, nullptr, &dts),
              0u);   // behind the table too
    EXPECT_EQ(dts, 162000u);
}

struct PlanCase {
    const char* what;
    uint64_t packed, level;   // NONE: open
    const char* plan;
};

// clang-format off
const PlanCase PLANS[] = {
    { "first",                 0, NONE, "payload 2013, padding 0, flags 81, unit 0" },
    { "first, one short",      0, 2012, "payload 2012, padding 1, flags 81, unit 0" },
    { "second",             2013, NONE, "payload 2016, padding 0, flags 80, unit 2" },
    { "at a frame's start", 1536, NONE, "payload 2016, padding 0, flags 80, unit 1" },
    { "a byte behind it",   1537, NONE, "payload 2016, padding 0, flags 80, unit 2" },
    { "in the last one",    5000,  300, "payload 300, padding 1716, flags 80, unit 4" },
    { "nothing left",       6144,    0, "payload 0, padding 2016, flags 80, unit 4" },
};
// clang-format on

TEST(Ac3Table, Plans)
{
    for (const PlanCase& row : PLANS) {
        Handler handler(ORV_MUX_AC3_ANY);
        EXPECT_EQ(parseChunk(handler, ac3Frames(28, 4)), 0u);   // 0, 1536, 3072, 4608
        handler.stream->bytesPacked = row.packed;
        if (row.level != NONE) endRingAt(handler, row.level);
        EXPECT_EQ(planText(handler), row.plan) << row.what;
    }
    const Handler empty(ORV_MUX_AC3_ANY);
    EXPECT_EQ(empty.stream->planPack(empty.stream).payload, 0u);
}

// ---- hostile input ----------------------------------------------------------------------------------------------

// Every second byte pair is a sync. 0x0B as a size code is 320 bytes, so all but one of 160 lie within a frame.
TEST(Ac3Table, SyncsEverywhere)
{
    for (const std::vector<uint64_t>& sizes : std::vector<std::vector<uint64_t>>{ { 65536 }, { 7 }, { 6, 11, 333 } }) {
        Bytes syncs;
        for (uint64_t i = 0; i < 32768; i++) syncs += fromHex("0B 77");
        Handler handler(ORV_MUX_AC3_ANY);
        for (const Bytes& chunk : cut(syncs, sizes)) EXPECT_EQ(feedChunk(handler, chunk), 0u);
        EXPECT_EQ(handler.stream->unitBytes, 320u);
        EXPECT_EQ(handler.stream->unitCount, 205u);   // the last at 204 x 320 = 65280
        EXPECT_EQ(positionsOf(handler).back(), 65280u);
    }
}

// A frame size of 0 can't tell how many are missing.
TEST(Ac3Table, FramesOfNoSizeComeToAnEnd)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, fromHex("0B 77 90 91 26 40") + gap(200) + fromHex("0B 77 90 91 26 40") + gap(8)), 0u);
    EXPECT_EQ(positionsOf(handler), (Positions{ 0, 206 }));
    EXPECT_EQ(feedChunk(handler, fromHex("0B 77 90 91 26 40") + gap(8), 1000000 * uint64_t(2880)), 0u);
    EXPECT_LE(handler.stream->unitCount, 4u);
}

// A sync among the last bytes of a chunk that the ring refused lies in front of byte 0, modulo 2^64.
TEST(Ac3Table, PositionsInFrontOfTheStreamComeToAnEnd)
{
    Handler handler(ORV_MUX_AC3_ANY);
    const Bytes refused = ac3Frame(0) + gap(RING_BYTES) + fromHex("0B 77 90 91 00");
    EXPECT_EQ(MuxData(handler.handle, handler.stream, refused.data(), refused.size(), nullptr, 0), OVERFLOWED);
    EXPECT_EQ(positionsOf(handler), (Positions{ 0 }));
    EXPECT_EQ(handler.stream->bytesIn, 0u);
    EXPECT_EQ(parseChunk(handler, gap(200)), 0u);
    EXPECT_LE(handler.stream->unitCount, RING_BYTES / 128 + 4);
}

// The same with many frames already in the table.
TEST(Ac3Table, ChunkRefusedByTheRing)
{
    Handler handler(ORV_MUX_AC3_ANY);
    const Bytes refused = ac3Frames(36, RING_BYTES / 2560 + 2);
    EXPECT_EQ(MuxData(handler.handle, handler.stream, refused.data(), refused.size(), nullptr, 0), OVERFLOWED);
    EXPECT_EQ(handler.stream->unitCount, 821u);
    const Bytes next = ac3Frames(36, 3);
    // The positions begin again below those of the table: they lie within its last frame.
    EXPECT_EQ(parseChunk(handler, next), 0u);
    EXPECT_EQ(handler.stream->unitCount, 821u);
}

}   // namespace
