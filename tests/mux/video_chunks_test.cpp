// MPEG video in chunks that begin at start codes: what each chunk leaves in the stream and in its table of pictures.
#include "mux/ring.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t NOT_PAL_OR_NTSC = 0x84100BC2;

// Bytes 4 to 7 of these: width and height, 12 bits each; aspect ratio and rate code.
const char* const SEQUENCE_PAL = "00 00 01 B3 2D 02 40 23 18 6A 43 38";    // 720 x 576, rate 3
const char* const SEQUENCE_NTSC = "00 00 01 B3 2D 01 E0 34 18 6A 43 38";   // 720 x 480, rate 4

TEST(VideoChunks, SetUp)
{
    const Handler handler(ORV_MUX_VIDEO_UNITS);
    EXPECT_EQ(handler.stream->kind, 2u);
    EXPECT_EQ(handler.stream->streamId, 0xE0u);
    EXPECT_EQ(handler.stream->subStreamId, 0u);
    EXPECT_EQ(handler.stream->stdSize, 237568u);
    EXPECT_EQ(handler.stream->stdScale, 1u);
    EXPECT_EQ(handler.stream->stdBound, 232u);
    EXPECT_EQ(handler.stream->unitTicks, 3600u);
    EXPECT_EQ(handler.stream->headerSeen, 0u);
    EXPECT_NE(handler.stream->unitTable, nullptr);
    EXPECT_EQ(handler.stream->parseTimed, nullptr);
    EXPECT_NE(handler.stream->nextUnitAt, nullptr);
}

struct HeadCase {
    const char* what;
    const char* bytes;
    uint64_t pts;   // (temporal reference + 0) x 3600
    uint32_t type;
};

// The temporal reference is byte 4 and the top two bits of byte 5, the type bits 5 to 3 of byte 5.
// clang-format off
const HeadCase HEADS[] = {
    { "first, I",               "00 00 01 00 00 08 FF", 0,           1 },
    { "first, P",               "00 00 01 00 00 10 FF", 0,           2 },
    { "first, B",               "00 00 01 00 00 18 FF", 0,           3 },
    { "first, D",               "00 00 01 00 00 20 FF", 0,           4 },
    { "type 0",                 "00 00 01 00 00 C7 FF", 3 * 3600,    0 },
    { "type 7",                 "00 00 01 00 00 3F FF", 0,           7 },
    { "reference 1",            "00 00 01 00 00 50 FF", 1 * 3600,    2 },
    { "reference 3",            "00 00 01 00 00 D8 FF", 3 * 3600,    3 },
    { "reference 4",            "00 00 01 00 01 08 FF", 4 * 3600,    1 },
    { "reference 1023",         "00 00 01 00 FF CF FF", 1023 * 3600, 1 },
    { "byte 5 is missing",      "00 00 01 00 01",       4 * 3600,    0 },
    { "both are missing",       "00 00 01 00",          0,           0 },
};
// clang-format on

TEST(VideoChunks, PictureHeads)
{
    for (const HeadCase& row : HEADS) {
        Handler handler(ORV_MUX_VIDEO_UNITS);
        EXPECT_EQ(parseChunk(handler, fromHex(row.bytes)), 0u) << row.what;
        // In front of the first sequence header: group 0, which began at 0.
        EXPECT_EQ(unitsOf(handler), (std::vector<MuxUnit>{ { 0, 0, row.type, row.pts, 0, 0 } })) << row.what;
        EXPECT_EQ(handler.stream->unitCount, 1u) << row.what;
        EXPECT_EQ(handler.stream->headerSeen, 1u) << row.what;
    }
}

TEST(VideoChunks, GroupsAreSequences)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    const Bytes chunks[] = {
        fromHex(SEQUENCE_PAL),
        gopHeader(),                 // 0, 12
        videoPicture(100, 0, 'I'),   // 20
        videoPicture(60, 3, 'P'),    // 120
        videoPicture(50, 1, 'B'),    // 180
        videoPicture(40, 2, 'B'),    // 230
        fromHex(SEQUENCE_PAL),
        gopHeader(),                // 270, 282
        videoPicture(30, 0, 'I'),   // 290
        videoPicture(20, 1, 'P'),   // 320
        gopHeader(),
        videoPicture(9, 0, 'I'),   // 340, 348: a GOP opens nothing
    };
    for (const Bytes& chunk : chunks) EXPECT_EQ(feedChunk(handler, chunk), 0u);
    // A group's base is 1, then the number of its first picture plus 1: 5.
    const std::vector<MuxUnit> expected = {
        { 0, 1, 1, 3600, 0, 3600 },         { 120, 1, 2, 14400, 3600, 3600 },   { 180, 1, 3, 7200, 7200, 3600 },
        { 230, 1, 3, 10800, 10800, 3600 },  { 270, 2, 1, 18000, 14400, 18000 }, { 320, 2, 2, 21600, 18000, 18000 },
        { 348, 2, 1, 18000, 21600, 18000 },
    };
    EXPECT_EQ(unitsOf(handler), expected);
    EXPECT_EQ(handler.stream->groupCount, 2u);
    EXPECT_EQ(handler.stream->unitCount, 7u);
    EXPECT_EQ(handler.stream->bytesIn, 357u);
}

TEST(VideoChunks, NtscPicturesLast3003Ticks)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    for (const Bytes& chunk : { fromHex(SEQUENCE_NTSC), videoPicture(50, 2, 'I'), videoPicture(50, 0, 'B') }) {
        EXPECT_EQ(feedChunk(handler, chunk), 0u);
    }
    EXPECT_EQ(handler.stream->unitTicks, 3003u);
    EXPECT_EQ(handler.stream->width, 720u);
    EXPECT_EQ(handler.stream->height, 480u);
    EXPECT_EQ(unitsOf(handler),
              (std::vector<MuxUnit>{ { 0, 1, 1, 3 * 3003, 0, 3003 }, { 62, 1, 3, 3003, 3003, 3003 } }));
}

TEST(VideoChunks, RateCodes)
{
    for (uint64_t code = 0; code < 16; code++) {
        Handler handler(ORV_MUX_VIDEO_UNITS);
        const uint64_t result = parseChunk(handler, sequenceHeader(code));
        EXPECT_EQ(result, code == 3 || code == 4 ? 0 : NOT_PAL_OR_NTSC) << code;
        EXPECT_EQ(handler.stream->unitTicks, code == 4 ? 3003u : 3600u) << code;
    }
}

// The warning comes behind the size, and in front of the group's base.
TEST(VideoChunks, BadRateLeavesWhatWasSet)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    EXPECT_EQ(feedChunk(handler, fromHex(SEQUENCE_NTSC)), 0u);
    EXPECT_EQ(feedChunk(handler, videoPicture(50, 0, 'I')), 0u);
    EXPECT_EQ(feedChunk(handler, fromHex("00 00 01 B3 16 01 20 11 A5 A5 A5 A5")), NOT_PAL_OR_NTSC);
    EXPECT_EQ(handler.stream->bytesIn, 62u);
    EXPECT_EQ(handler.stream->groupStart, 62u);
    EXPECT_EQ(handler.stream->groupCount, 2u);
    EXPECT_EQ(handler.stream->groupPending, 1u);
    EXPECT_EQ(handler.stream->width, 352u);
    EXPECT_EQ(handler.stream->height, 288u);
    EXPECT_EQ(handler.stream->groupBase, 1u);
    EXPECT_EQ(handler.stream->unitTicks, 3003u);
}

TEST(VideoChunks, WholeRangeOfSizes)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    EXPECT_EQ(parseChunk(handler, fromHex("00 00 01 B3 FF FF FF F3")), 0u);
    EXPECT_EQ(handler.stream->width, 4095u);
    EXPECT_EQ(handler.stream->height, 4095u);
    EXPECT_EQ(parseChunk(handler, fromHex("00 00 01 B3 12 34 56 03")), 0u);
    EXPECT_EQ(handler.stream->width, 0x123u);
    EXPECT_EQ(handler.stream->height, 0x456u);
}

TEST(VideoChunks, ShortSequenceHeaderReadsZeros)
{
    for (uint64_t size = 4; size < 8; size++) {
        Handler handler(ORV_MUX_VIDEO_UNITS);
        Bytes chunk = fromHex("00 00 01 B3 2D 02 40 23");
        chunk.resize(size);
        EXPECT_EQ(parseChunk(handler, chunk), NOT_PAL_OR_NTSC) << size;
        EXPECT_EQ(handler.stream->width, size == 4 ? 0u : 720u) << size;
        EXPECT_EQ(handler.stream->height, size < 6 ? 0u : size == 6 ? 0x200u : 576u) << size;
    }
}

TEST(VideoChunks, EndCodeEndsTheRing)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    EXPECT_EQ(feedChunk(handler, sequenceEnd()), 0u);
    EXPECT_EQ(handler.stream->ring->ended, 1u);
    EXPECT_EQ(handler.stream->ring->fill, 4u);   // it is stored like any other chunk
    EXPECT_EQ(handler.stream->unitCount, 0u);
}

// None of these leaves a record, however much of a code lies inside it.
TEST(VideoChunks, OtherChunksAreStoredWithoutARecord)
{
    const Bytes others[] = {
        {},
        fromHex("00"),
        fromHex("00 00"),
        fromHex("00 01"),
        fromHex("00 00 01 01 00 08"),
        fromHex("00 00 01 B2"),
        fromHex("00 00 01 B5 14 8A"),
        gopHeader(),
        fromHex("00 00 01 FF"),
        fromHex("00 00 00 01 00 00 08"),
        fromHex("A5 00 00 01 00 00 08 00 00 01 B3 2D 02 40 23 00 00 01 B7"),
        filler(3000),
    };
    Handler handler(ORV_MUX_VIDEO_UNITS);
    EXPECT_EQ(feedChunk(handler, fromHex(SEQUENCE_PAL)), 0u);
    EXPECT_EQ(feedChunk(handler, videoPicture(8, 0, 'I')), 0u);
    uint64_t bytes = 20;
    for (const Bytes& other : others) {
        EXPECT_EQ(feedChunk(handler, other), 0u);
        bytes += other.size();
        EXPECT_EQ(handler.stream->unitCount, 1u);
        EXPECT_EQ(handler.stream->groupCount, 1u);
        EXPECT_EQ(handler.stream->ring->ended, 0u);
        EXPECT_EQ(handler.stream->bytesIn, bytes);
        EXPECT_EQ(handler.stream->ring->fill, bytes);
    }
    EXPECT_EQ(positionsOf(handler), (std::vector<uint64_t>{ 0 }));
}

// What a chunk lacks reads as 0, the last byte of a picture code too.
TEST(VideoChunks, ThreeBytesReadAsAPictureCode)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    EXPECT_EQ(feedChunk(handler, fromHex("00 00 01")), 0u);
    EXPECT_EQ(unitsOf(handler), (std::vector<MuxUnit>{ { 0, 0, 0, 0, 0, 0 } }));
    EXPECT_EQ(handler.stream->bytesIn, 3u);
}

// Only the start of a chunk is looked at.
TEST(VideoChunks, OneRecordAChunk)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    EXPECT_EQ(feedChunk(handler, fromHex(SEQUENCE_PAL) + gopHeader() + videoPicture(20, 0, 'I')), 0u);
    EXPECT_EQ(handler.stream->unitCount, 0u);
    EXPECT_EQ(feedChunk(handler, videoPicture(20, 0, 'I') + videoPicture(20, 1, 'P')), 0u);
    EXPECT_EQ(positionsOf(handler), (std::vector<uint64_t>{ 0 }));
    EXPECT_EQ(feedChunk(handler, videoPicture(20, 2, 'P')), 0u);
    EXPECT_EQ(positionsOf(handler), (std::vector<uint64_t>{ 0, 80 }));
}

TEST(VideoChunks, TwoSequenceHeadersCountTwice)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    for (const Bytes& chunk : { fromHex(SEQUENCE_PAL), fromHex(SEQUENCE_PAL), videoPicture(20, 0, 'I') }) {
        EXPECT_EQ(feedChunk(handler, chunk), 0u);
    }
    // The second one has the base of a later group: no picture yet, plus 1.
    EXPECT_EQ(unitsOf(handler), (std::vector<MuxUnit>{ { 12, 2, 1, 3600, 0, 3600 } }));
}

TEST(VideoChunks, HostGetsNoWordOfTheWarning)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    const Bytes header = sequenceHeader(RATE_CODE_24);
    uint64_t used = 0;
    EXPECT_EQ(MuxData(handler.handle, handler.stream, header.data(), header.size(), &used, 0), 0u);
    EXPECT_EQ(used, 12u);
    EXPECT_EQ(handler.stream->bytesIn, 0u);
    EXPECT_EQ(handler.stream->ring->fill, 0u);
}

// Positions count modulo 2^64; nothing is read by them.
TEST(VideoChunks, PositionsWrap)
{
    Handler handler(ORV_MUX_VIDEO_UNITS);
    handler.stream->bytesIn = 0xFFFFFFFFFFFFFFF0;
    for (const Bytes& chunk : { videoPicture(20, 0, 'I'), videoPicture(20, 1, 'P') }) {
        EXPECT_EQ(feedChunk(handler, chunk), 0u);
    }
    EXPECT_EQ(positionsOf(handler), (std::vector<uint64_t>{ 0xFFFFFFFFFFFFFFF0, 4 }));
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 0), 20u);
}

}   // namespace
