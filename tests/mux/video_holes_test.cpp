// Holes in the time of MPEG video of any chunks: 17 to 63 missing pictures are put in as records and zero bytes.
#include "mux/ring.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t OVERFLOWED = 0x84000BC9;
constexpr uint64_t NO_TIME = NONE;
constexpr uint64_t HOLE_BYTES = 1024;   // of each picture that a hole lacks

// A sequence and its group, 28 bytes, none of the codes among the last eight.
Bytes opening()
{
    return sequenceHeader() + gopHeader() + filler(8);
}

struct HoleCase {
    const char* what;
    uint64_t rateCode, temporalRef, time, missing;
};

// The time that a picture should have is (reference + 1) x its ticks. Only whole pictures count.
// clang-format off
const HoleCase HOLES[] = {
    { "in time",                      3,  0,          3600,  0 },
    { "no time",                      3,  0,       NO_TIME,  0 },
    { "too early",                    3,  0,             0,  0 },
    { "far too early",                3, 40,          3600,  0 },
    { "1 picture",                    3,  0,      2 * 3600,  0 },
    { "16 pictures",                  3,  0,     17 * 3600,  0 },
    { "a tick below 17",              3,  0, 18 * 3600 - 1,  0 },
    { "17 pictures",                  3,  0,     18 * 3600, 17 },
    { "a tick below 18",              3,  0, 19 * 3600 - 1, 17 },
    { "17 behind reference 5",        3,  5,     23 * 3600, 17 },
    { "16 behind reference 5",        3,  5,     22 * 3600,  0 },
    { "63 pictures",                  3,  0,     64 * 3600, 63 },
    { "a tick below 64",              3,  0, 65 * 3600 - 1, 63 },
    { "64 pictures",                  3,  0,     65 * 3600,  0 },
    { "1000 pictures",                3,  0,   1001 * 3600,  0 },
    { "as late as can be",            3,  0,   NO_TIME - 1,  0 },
    { "16 pictures, NTSC",            4,  0,     17 * 3003,  0 },
    { "17 pictures, NTSC",            4,  0,     18 * 3003, 17 },
    { "63 pictures, NTSC",            4,  0,     64 * 3003, 63 },
    { "64 pictures, NTSC",            4,  0,     65 * 3003,  0 },
};
// clang-format on

TEST(VideoHoles, HolesOf17To63PicturesAreFilled)
{
    for (const HoleCase& row : HOLES) {
        Handler handler(ORV_MUX_VIDEO);
        const Bytes chunk =
            sequenceHeader(row.rateCode) + gopHeader() + videoPicture(40, row.temporalRef, 'I') + filler(8);
        EXPECT_EQ(feedChunk(handler, chunk, row.time), 0u) << row.what;
        const uint64_t ticks = row.rateCode == 3 ? 3600 : 3003;
        std::vector<MuxUnit> expected;
        for (uint64_t i = 0; i <= row.missing; i++) {
            expected.push_back({ 0, 1, 1, (1 + row.temporalRef + i) * ticks, i * ticks, ticks });
        }
        EXPECT_EQ(unitsOf(handler), expected) << row.what;
        EXPECT_EQ(handler.stream->unitCount, row.missing + 1) << row.what;
        EXPECT_EQ(handler.stream->picturesSeen, 1u) << row.what;
        EXPECT_EQ(handler.stream->gapUnits, row.missing) << row.what;
        EXPECT_EQ(handler.stream->bytesIn, row.missing * HOLE_BYTES + 68) << row.what;
        EXPECT_EQ(drainRing(handler), Bytes(row.missing * HOLE_BYTES, 0) + chunk) << row.what;
    }
}

TEST(VideoHoles, SeventeenPicturesAre17408Bytes)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(parseChunk(handler, opening() + videoPicture(40, 0, 'I'), 18 * 3600), 0u);
    EXPECT_EQ(handler.stream->bytesIn, 17408u);
    EXPECT_EQ(handler.stream->ring->fill, 17408u);
}

// The picture that told of the hole keeps its place; what is behind it in the chunk counts the bytes put in.
TEST(VideoHoles, CodesBehindAHoleCountItsBytes)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening(), NO_TIME), 0u);
    EXPECT_EQ(feedChunk(handler, videoPicture(40, 0, 'I') + filler(8), 3600), 0u);   // 28
    EXPECT_EQ(feedChunk(handler,
                        videoPicture(40, 1, 'P') + videoPicture(60, 2, 'P') + gopHeader() + videoPicture(40, 0, 'I') +
                            filler(8),
                        (2 + 17) * 3600),
              0u);
    const std::vector<MuxUnit> units = unitsOf(handler);
    ASSERT_EQ(units.size(), 1u + 17 + 3);
    // Picture 1 lies at 76; the hole's copies too, each a picture later than the one before.
    for (uint64_t i = 0; i <= 17; i++) {
        EXPECT_EQ(units[1 + i], (MuxUnit{ 76, 1, 2, (2 + i) * 3600, (1 + i) * 3600, 3600 })) << i;
    }
    // 76 + 40 + 17408. The references count from the intra picture, the decode times from all records.
    EXPECT_EQ(units[19], (MuxUnit{ 17524, 1, 2, 3 * 3600, 19 * 3600, 3600 }));
    EXPECT_EQ(units[20], (MuxUnit{ 17584, 2, 1, 21 * 3600, 20 * 3600, 21 * 3600 }));
}

TEST(VideoHoles, SameHoleIsFilledOnce)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + videoPicture(40, 0, 'I') + filler(8), 18 * 3600), 0u);
    EXPECT_EQ(feedChunk(handler, videoPicture(40, 1, 'P') + filler(8), 19 * 3600), 0u);
    EXPECT_EQ(handler.stream->unitCount, 19u);
    // One picture late is not enough, sixteen neither; 17 more are.
    EXPECT_EQ(feedChunk(handler, videoPicture(40, 2, 'P') + filler(8), (3 + 17 + 1) * 3600), 0u);
    EXPECT_EQ(feedChunk(handler, videoPicture(40, 3, 'P') + filler(8), (4 + 17 + 16) * 3600), 0u);
    EXPECT_EQ(handler.stream->unitCount, 21u);
    EXPECT_EQ(handler.stream->gapUnits, 17u);
    EXPECT_EQ(feedChunk(handler, videoPicture(40, 4, 'P') + filler(8), (5 + 17 + 17) * 3600), 0u);
    EXPECT_EQ(handler.stream->unitCount, 22u + 17);
    EXPECT_EQ(handler.stream->gapUnits, 34u);
    // Back in time: nothing, and nothing is forgotten.
    EXPECT_EQ(feedChunk(handler, videoPicture(40, 5, 'P') + filler(8), 6 * 3600), 0u);
    EXPECT_EQ(handler.stream->unitCount, 40u);
    EXPECT_EQ(handler.stream->gapUnits, 34u);
}

// Times count from the pictures that came in, not from those put in.
TEST(VideoHoles, LaterGroupsCountSeenPictures)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + videoPicture(40, 0, 'I') + filler(8), 18 * 3600), 0u);
    EXPECT_EQ(feedChunk(handler, gopHeader() + videoPicture(40, 0, 'I') + filler(8), (2 + 17) * 3600), 0u);
    EXPECT_EQ(handler.stream->gopBase, 2u);
    EXPECT_EQ(handler.stream->unitCount, 19u);
    EXPECT_EQ(unitsOf(handler).back(), (MuxUnit{ 17408 + 76, 2, 1, 19 * 3600, 18 * 3600, 19 * 3600 }));
}

TEST(VideoHoles, TimeBelongsToTheFirstPictureOfAChunk)
{
    // In time for reference 20; reference 0 would lack 20 pictures.
    const uint64_t time = 21 * 3600;
    Handler second(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(second, opening() + videoPicture(40, 20, 'I') + videoPicture(40, 0, 'B') + filler(8), time),
              0u);
    EXPECT_EQ(second.stream->unitCount, 2u);
    Handler first(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(first, opening() + videoPicture(40, 0, 'I') + videoPicture(40, 20, 'P') + filler(8), time), 0u);
    EXPECT_EQ(first.stream->unitCount, 22u);
}

// A picture among the last eight bytes has the time of the chunk that it begins in.
TEST(VideoHoles, PictureAcrossABorderHasTheEarlierTime)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + fromHex("00 00 01 00 00 08"), 18 * 3600), 0u);   // at 28 of 34
    EXPECT_EQ(handler.stream->unitCount, 0u);
    handler.stream->groupPending = 0;
    EXPECT_EQ(feedChunk(handler, filler(20), 3600), 0u);
    EXPECT_EQ(handler.stream->unitCount, 18u);
    EXPECT_EQ(unitsOf(handler).front(), (MuxUnit{ 28, 1, 1, 3600, 0, 3600 }));
    EXPECT_EQ(unitsOf(handler).back(), (MuxUnit{ 28, 1, 1, 18 * 3600, 17 * 3600, 3600 }));
    // The time of this chunk is still there for a picture among its own last bytes.
    EXPECT_EQ(handler.stream->timeUsed, 0u);
    EXPECT_EQ(handler.stream->lookBackTime, 3600u);
}

// Unless another picture of that chunk took it.
TEST(VideoHoles, TimeIsTakenOnce)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + videoPicture(40, 20, 'I') + fromHex("00 00 01 00 00 18"), 21 * 3600), 0u);
    EXPECT_EQ(handler.stream->timeUsed, 1u);
    EXPECT_EQ(feedChunk(handler, filler(20)), 0u);
    EXPECT_EQ(handler.stream->unitCount, 2u);
}

// A picture across the border does not take the later chunk's time from that chunk's own first picture.
TEST(VideoHoles, LaterTimeStaysForTheChunksOwnPicture)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + fromHex("00 00 01 00 00 08"), 3600), 0u);
    EXPECT_EQ(feedChunk(handler, filler(20) + videoPicture(40, 1, 'P'), (2 + 20) * 3600), 0u);
    EXPECT_EQ(handler.stream->unitCount, 2u + 20);
}

// A chunk that begins with a picture has that picture's time.
TEST(VideoHoles, PictureAtTheStartOfAChunkHasItsOwnTime)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening(), 18 * 3600), 0u);
    EXPECT_EQ(feedChunk(handler, videoPicture(40, 0, 'I'), 3600), 0u);
    EXPECT_EQ(handler.stream->unitCount, 1u);
    EXPECT_EQ(handler.stream->timeUsed, 1u);
}

// Nine bytes from the end a picture belongs to its chunk, eight from the end to the next.
TEST(VideoHoles, LastPictureOfAChunk)
{
    for (uint64_t bytes = 8; bytes <= 9; bytes++) {
        Handler handler(ORV_MUX_VIDEO);
        EXPECT_EQ(feedChunk(handler, opening() + videoPicture(bytes, 0, 'I'), 3600), 0u);
        EXPECT_EQ(handler.stream->unitCount, bytes == 9 ? 1u : 0u);
        EXPECT_EQ(handler.stream->timeUsed, bytes == 9 ? 1u : 0u);
        EXPECT_EQ(feedChunk(handler, filler(8)), 0u);
        EXPECT_EQ(handler.stream->unitCount, 1u);
    }
}

TEST(VideoHoles, HoleThatDoesNotFitTheRing)
{
    Handler handler(ORV_MUX_VIDEO);
    handler.stream->ring->fill = RING_BYTES - 3 * HOLE_BYTES - 100;
    EXPECT_EQ(parseChunk(handler, opening() + videoPicture(40, 0, 'I'), 18 * 3600), OVERFLOWED);
    EXPECT_EQ(handler.stream->ring->fill, RING_BYTES - 100);
    EXPECT_EQ(handler.stream->bytesIn, 3 * HOLE_BYTES);
    EXPECT_EQ(parseChunk(handler, filler(20)), 0u);
}

}   // namespace
