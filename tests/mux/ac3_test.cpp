// AC-3 in chunks of whole frames: the sync, the frame sizes, the end mark, the plan of a pack.
#include "mux/audio_units.h"
#include "mux/pes_write.h"
#include "mux/ring.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t NO_SYNC = 0x84100BBD, WRONG_RATE = 0x84000BBA, ENDED = 0x84000C1B, UNKNOWN_STREAM = 0x84000BC1,
                   NO_VIDEO = 0x84000BC5, BAD_ID = 0x84000BBF;

TEST(Ac3, SetUp)
{
    const Handler handler(ORV_MUX_AC3);
    const MuxStream* stream = handler.stream;
    EXPECT_EQ(stream->kind, 10u);
    EXPECT_EQ(stream->streamId, 0xBDu);
    EXPECT_EQ(stream->subStreamId, 0x80u);
    EXPECT_EQ(stream->stdSize, 4096u);
    EXPECT_EQ(stream->stdScale, 1u);
    EXPECT_EQ(stream->stdBound, 58u);
    EXPECT_EQ(stream->unitTicks, 2880u);
    EXPECT_EQ(stream->ring->watermark, 0x4000u);
    EXPECT_NE(stream->readScratch, nullptr);
    EXPECT_EQ(stream->parseTimed, nullptr);
    EXPECT_EQ(stream->nextUnitAt, nullptr);
}

TEST(Ac3, PrivateStreamsHaveTheirId)
{
    Handler handler(ORV_MUX_AC3);
    EXPECT_EQ(orvCheckPrivateId(handler.stream), 0u);
    for (const uint64_t id : std::vector<uint64_t>{ 0, 0xBE, 0xC0, 0x1BD }) {
        handler.stream->streamId = id;
        EXPECT_EQ(orvCheckPrivateId(handler.stream), BAD_ID) << id;
    }
}

// kbit/s of each pair of codes; a frame has 4 bytes of each.
const uint64_t KBITS[] = { 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 448, 512, 576, 640 };

TEST(Ac3, FrameSizes)
{
    for (uint64_t code = 0; code < 256; code++) {
        Handler handler(ORV_MUX_AC3);
        const uint64_t result = parseChunk(handler, Bytes{ 0x0B, 0x77, 0x12, 0x34, uint8_t(code), 0x40 });
        EXPECT_EQ(result, code > 63 ? WRONG_RATE : 0) << code;
        EXPECT_EQ(handler.stream->unitBytes, code < 38 ? KBITS[code / 2] * 4 : 0) << code;
        EXPECT_EQ(handler.stream->bitRate, code < 38 ? KBITS[code / 2] * 1024 : 0) << code;
        EXPECT_EQ(handler.stream->headerSeen, code > 63 ? 0u : 1u) << code;
    }
}

TEST(Ac3, FramesOf448KbitHave1792Bytes)
{
    Handler handler(ORV_MUX_AC3);
    EXPECT_EQ(parseChunk(handler, fromHex("0B 77 00 00 1E 40")), 0u);
    EXPECT_EQ(handler.stream->unitBytes, 1792u);
    EXPECT_EQ(handler.stream->bitRate, 458752u);
}

struct SyncCase {
    const char* bytes;
    uint64_t result;
};

TEST(Ac3, FirstChunkBeginsWithTheSync)
{
    const SyncCase rows[] = {
        { "", NO_SYNC },
        { "0B", NO_SYNC },
        { "0B 78 00 00 00", NO_SYNC },
        { "77 0B 00 00 00", NO_SYNC },
        { "00 0B 77 00 00 00", NO_SYNC },
        { "45 4E 44 20", NO_SYNC },   // the end mark, in front of all data
        { "0B 77", 0 },               // what is missing is 0: the code of 32 kbit/s
        { "0B 77 FF FF 02", 0 },
    };
    for (const SyncCase& row : rows) {
        Handler handler(ORV_MUX_AC3);
        EXPECT_EQ(parseChunk(handler, fromHex(row.bytes)), row.result) << row.bytes;
        EXPECT_EQ(handler.stream->headerSeen, row.result ? 0u : 1u) << row.bytes;
        EXPECT_EQ(handler.stream->ring->ended, 0u) << row.bytes;
    }
}

TEST(Ac3, ChunkWithoutSyncIsDroppedAndTheNextIsTried)
{
    Handler handler(ORV_MUX_AC3);
    EXPECT_EQ(feedChunk(handler, filler(500)), NO_SYNC);
    EXPECT_EQ(feedChunk(handler, fromHex("0B 77 00 00 80")), WRONG_RATE);
    EXPECT_EQ(handler.stream->bytesIn, 0u);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0)), 0u);
    EXPECT_EQ(feedChunk(handler, filler(10)), 0u);   // no longer looked at
    EXPECT_EQ(handler.stream->bytesIn, 138u);
    EXPECT_EQ(handler.stream->unitBytes, 128u);
    uint64_t used = 0;
    const Bytes junk = filler(100);
    Handler other(ORV_MUX_AC3);
    EXPECT_EQ(MuxData(other.handle, other.stream, junk.data(), junk.size(), &used, 0), 0u);
    EXPECT_EQ(used, 100u);
    EXPECT_EQ(other.stream->ring->fill, 0u);
}

TEST(Ac3, EndMark)
{
    const SyncCase rows[] = {
        { "45 4E 44 20", ENDED }, { "45 4E 44 20 0B 77", ENDED }, { "45 4E 44", 0 },
        { "45 4E 44 21", 0 },     { "00 45 4E 44 20", 0 },        { "65 6E 64 20", 0 },
    };
    for (const SyncCase& row : rows) {
        Handler handler(ORV_MUX_AC3);
        EXPECT_EQ(parseChunk(handler, ac3Frame(0)), 0u);
        EXPECT_EQ(parseChunk(handler, fromHex(row.bytes)), row.result) << row.bytes;
        EXPECT_EQ(handler.stream->ring->ended, row.result ? 1u : 0u) << row.bytes;
    }
}

// Nothing of the mark is stored; of a longer chunk its last four bytes are cut off, whatever they are.
TEST(Ac3, EndMarkStoresNothingOfItself)
{
    const struct {
        const char* bytes;
        const char* stored;
    } rows[] = { { "45 4E 44 20", "" }, { "45 4E 44 20 01 02 03 04 05 06", "45 4E 44 20 01 02" } };
    for (const auto& row : rows) {
        Handler handler(ORV_MUX_AC3);
        EXPECT_EQ(parseChunk(handler, ac3Frame(0)), 0u);
        const Bytes chunk = fromHex(row.bytes);
        // No scheduler without a video stream: what it returns shows that the chunk was stored.
        EXPECT_EQ(MuxData(handler.handle, handler.stream, chunk.data(), chunk.size(), nullptr, 0), NO_VIDEO);
        EXPECT_EQ(handler.stream->ring->ended, 1u);
        EXPECT_EQ(handler.stream->bytesIn, chunk.size() - 4);
        EXPECT_EQ(toHex(drainRing(handler)), row.stored);
    }
}

TEST(Ac3, UnitsFollowFromTheSize)
{
    Handler handler(ORV_MUX_AC3);
    MuxUnitPlace place = {};
    EXPECT_EQ(handler.stream->unitAt(handler.stream, &place), UNKNOWN_STREAM);
    EXPECT_EQ(handler.stream->planPack(handler.stream).payload, 0u);
    EXPECT_EQ(parseChunk(handler, ac3Frame(28)), 0u);   // 1536 bytes
    handler.stream->bytesPacked = 4000;
    EXPECT_EQ(handler.stream->unitAt(handler.stream, &place), 0u);
    EXPECT_EQ(place.index, 2u);
    EXPECT_EQ(place.position, 3072u);
    EXPECT_EQ(place.codingType, 0u);
    EXPECT_EQ(place.group, 0u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 99), 1536u);
    handler.handle->audioDelay = 18000;
    uint64_t pts = 0, dts = 0;
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 3, &pts, &dts), 0u);
    EXPECT_EQ(pts, 18000u + 3 * 2880);
    EXPECT_EQ(dts, 18000u + 3 * 2880);
}

struct PlanCase {
    const char* what;
    uint64_t packed, level;   // NONE: open
    const char* plan;
};

// clang-format off
const PlanCase PLANS[] = {
    { "first",                 0, NONE, "payload 2013, padding 0, flags 81, unit 0" },
    { "first, exactly",        0, 2013, "payload 2013, padding 0, flags 81, unit 0" },
    { "first, one short",      0, 2012, "payload 2012, padding 1, flags 81, unit 0" },
    { "second",             2013, NONE, "payload 2016, padding 0, flags 80, unit 2" },
    { "at a frame's start", 3072, NONE, "payload 2016, padding 0, flags 80, unit 2" },
    { "a byte behind it",   3073, NONE, "payload 2016, padding 0, flags 80, unit 3" },
    { "from 1000",          1000, NONE, "payload 2016, padding 0, flags 80, unit 1" },
    { "later, exactly",     3073, 2016, "payload 2016, padding 0, flags 80, unit 3" },
    { "later, one short",   3073, 2015, "payload 2015, padding 1, flags 80, unit 3" },
    { "a last frame",       4608, 1536, "payload 1536, padding 480, flags 80, unit 3" },
    { "nothing left",       4608,    0, "payload 0, padding 2016, flags 80, unit 3" },
};
// clang-format on

TEST(Ac3, Plans)
{
    for (const PlanCase& row : PLANS) {
        Handler handler(ORV_MUX_AC3);
        EXPECT_EQ(parseChunk(handler, ac3Frame(28)), 0u);
        handler.stream->bytesPacked = row.packed;
        if (row.level != NONE) endRingAt(handler, row.level);
        EXPECT_EQ(planText(handler), row.plan) << row.what;
    }
}

// 1536 bytes a frame, 1000 packed: one frame begins, 536 bytes on; the pointer counts from 1.
TEST(Ac3, SubStreamHeader)
{
    Handler handler(ORV_MUX_AC3);
    EXPECT_EQ(parseChunk(handler, ac3Frame(28)), 0u);
    handler.stream->bytesPacked = 1000;
    Bytes pack(PACK_BYTES, 0);
    EXPECT_EQ(orvWritePesHeader(pack.data(), handler.stream, 0x80, 0, 0, 0), 32u);
    EXPECT_EQ(toHex(pack.data() + 28, 4), "80 01 02 19");
}

TEST(Ac3, FramesOfNoSizeTakeNoPack)
{
    Handler handler(ORV_MUX_AC3);
    EXPECT_EQ(parseChunk(handler, fromHex("0B 77 00 00 26 40")), 0u);   // code 38
    EXPECT_EQ(handler.stream->planPack(handler.stream).payload, 0u);
    handler.stream->bytesPacked = 5000;
    EXPECT_EQ(handler.stream->planPack(handler.stream).payload, 0u);
}

}   // namespace
