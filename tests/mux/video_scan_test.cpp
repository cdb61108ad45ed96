// MPEG video in chunks of any kind: start codes across the borders of chunks, dropped chunks, bad rates.
#include "mux/ring.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t DROPPED = 0x84000C1A, NOT_PAL_OR_NTSC = 0x84100BC2, OVERFLOWED = 0x84000BC9;
constexpr uint64_t NO_TIME = NONE;

// First chunk of most tests: a sequence and its group, 28 bytes, none of the codes among the last eight.
Bytes opening()
{
    return sequenceHeader() + gopHeader() + filler(8);
}

TEST(VideoScan, SetUp)
{
    const Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(handler.stream->kind, 4u);
    EXPECT_EQ(handler.stream->streamId, 0xE0u);
    EXPECT_EQ(handler.stream->stdSize, 237568u);
    EXPECT_EQ(handler.stream->stdScale, 1u);
    EXPECT_EQ(handler.stream->stdBound, 232u);
    EXPECT_EQ(handler.stream->unitTicks, 3600u);
    EXPECT_EQ(toHex(handler.stream->lookBack, 8), "FF FF FF FF FF FF FF FF");
    EXPECT_NE(handler.stream->parseTimed, nullptr);
    EXPECT_NE(handler.stream->nextUnitAt, nullptr);
}

TEST(VideoScan, GroupsAreGops)
{
    Handler handler(ORV_MUX_VIDEO);
    const Bytes stream = sequenceHeader() + gopHeader() +                                      // 0, 12
                         videoPicture(100, 2, 'I') +                                           // 20
                         videoPicture(60, 0, 'B') +                                            // 120
                         videoPicture(50, 1, 'B') +                                            // 180
                         videoPicture(40, 3, 'P') +                                            // 230
                         gopHeader() + videoPicture(30, 0, 'I') + videoPicture(20, 1, 'P') +   // 270, 278, 308
                         sequenceHeader() + gopHeader() +                                      // 328, 340
                         videoPicture(40, 0, 'I') + filler(8);                                 // 348
    EXPECT_EQ(feedChunk(handler, stream), 0u);
    // A reference picture of type I counts on from its own number plus 1: 1, 5, 7. So do the groups.
    const std::vector<MuxUnit> expected = {
        { 0, 1, 1, 10800, 0, 3600 },        { 120, 1, 3, 3600, 3600, 3600 },    { 180, 1, 3, 7200, 7200, 3600 },
        { 230, 1, 2, 14400, 10800, 3600 },  { 270, 2, 1, 18000, 14400, 18000 }, { 308, 2, 2, 21600, 18000, 18000 },
        { 328, 3, 1, 25200, 21600, 25200 },
    };
    EXPECT_EQ(unitsOf(handler), expected);
    EXPECT_EQ(handler.stream->groupCount, 3u);
    EXPECT_EQ(handler.stream->unitCount, 7u);
    EXPECT_EQ(handler.stream->picturesSeen, 7u);
    EXPECT_EQ(handler.stream->gopBase, 7u);
    EXPECT_EQ(handler.stream->seqPending, 0u);
    EXPECT_EQ(handler.stream->groupPending, 0u);
    EXPECT_EQ(handler.stream->bytesIn, 396u);
}

// A second intra picture within a group counts on from its own number, and its references from there.
TEST(VideoScan, IntraPictureWithinAGroup)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + videoPicture(20, 0, 'I') + videoPicture(20, 1, 'P') +
                                     videoPicture(20, 2, 'I') + videoPicture(20, 3, 'P') + filler(8)),
              0u);
    const std::vector<MuxUnit> expected = { { 0, 1, 1, 3600, 0, 3600 },
                                            { 48, 1, 2, 7200, 3600, 3600 },
                                            { 68, 1, 1, (3 + 2) * 3600, 7200, 3600 },
                                            { 88, 1, 2, (3 + 3) * 3600, 10800, 3600 } };
    EXPECT_EQ(unitsOf(handler), expected);
}

TEST(VideoScan, NtscPicturesLast3003Ticks)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, sequenceHeader(RATE_CODE_NTSC, 704, 480) + gopHeader() + videoPicture(20, 1, 'I') +
                                     videoPicture(20, 0, 'B') + filler(8)),
              0u);
    EXPECT_EQ(unitsOf(handler), (std::vector<MuxUnit>{ { 0, 1, 1, 6006, 0, 3003 }, { 40, 1, 3, 3003, 3003, 3003 } }));
    EXPECT_EQ(handler.stream->width, 704u);
    EXPECT_EQ(handler.stream->height, 480u);
}

// ---- borders ----------------------------------------------------------------------------------------------------

// 160 bytes behind the opening: pictures at 48, 88 and 136, the last of a GOP at 128.
Bytes threePictures()
{
    return filler(20) + videoPicture(40, 0, 'I') + videoPicture(40, 1, 'P') + gopHeader() + videoPicture(40, 0, 'I') +
           filler(12);
}

const std::vector<MuxUnit> THREE_UNITS = { { 0, 1, 1, 3600, 0, 3600 },
                                           { 88, 1, 2, 7200, 3600, 3600 },
                                           { 128, 2, 1, 10800, 7200, 10800 } };

// Every place of a border within each of the codes, in front of them and behind.
TEST(VideoScan, BorderAtEachOffset)
{
    const Bytes rest = threePictures();
    ASSERT_EQ(rest.size(), 160u);
    for (uint64_t border = 8; border <= 152; border++) {
        Handler handler(ORV_MUX_VIDEO);
        EXPECT_EQ(feedChunk(handler, opening()), 0u);
        for (const Bytes& chunk : cut(rest, { border, 160 })) EXPECT_EQ(feedChunk(handler, chunk), 0u);
        EXPECT_EQ(unitsOf(handler), THREE_UNITS) << border;
    }
}

TEST(VideoScan, ManySmallChunks)
{
    for (uint64_t bytes = 8; bytes <= 40; bytes++) {
        Handler handler(ORV_MUX_VIDEO);
        EXPECT_EQ(feedChunk(handler, opening()), 0u);
        for (const Bytes& chunk : cut(threePictures(), { bytes })) EXPECT_EQ(feedChunk(handler, chunk), 0u);
        EXPECT_EQ(unitsOf(handler), THREE_UNITS) << bytes;
    }
}

TEST(VideoScan, SequenceHeaderAtEachBorder)
{
    const Bytes rest = filler(20) + sequenceHeader(RATE_CODE_NTSC, 0x2C1, 0x1E3) + filler(20, 7);
    for (uint64_t border = 8; border <= 44; border++) {
        Handler handler(ORV_MUX_VIDEO);
        EXPECT_EQ(feedChunk(handler, opening()), 0u);
        for (const Bytes& chunk : cut(rest, { border, 52 })) EXPECT_EQ(feedChunk(handler, chunk), 0u);
        EXPECT_EQ(handler.stream->groupStart, 48u) << border;
        EXPECT_EQ(handler.stream->seqPending, 1u) << border;
        EXPECT_EQ(handler.stream->width, 0x2C1u) << border;
        EXPECT_EQ(handler.stream->height, 0x1E3u) << border;
        EXPECT_EQ(handler.stream->unitTicks, 3003u) << border;
    }
}

TEST(VideoScan, EndCodeAtEachBorder)
{
    const Bytes rest = filler(20) + sequenceEnd() + filler(20, 7);
    for (uint64_t border = 8; border <= 36; border++) {
        Handler handler(ORV_MUX_VIDEO);
        EXPECT_EQ(feedChunk(handler, opening()), 0u);
        for (const Bytes& chunk : cut(rest, { border, 44 })) EXPECT_EQ(feedChunk(handler, chunk), 0u);
        EXPECT_EQ(handler.stream->ring->ended, 1u) << border;
    }
}

// The last eight bytes are looked at together with the next chunk, if one of eight bytes comes.
TEST(VideoScan, LastEightBytesWait)
{
    for (uint64_t behind = 4; behind <= 5; behind++) {
        Handler handler(ORV_MUX_VIDEO);
        EXPECT_EQ(feedChunk(handler, opening()), 0u);
        EXPECT_EQ(feedChunk(handler, filler(20) + sequenceEnd() + filler(behind)), 0u);
        EXPECT_EQ(handler.stream->ring->ended, behind == 4 ? 0u : 1u);
        EXPECT_EQ(feedChunk(handler, filler(7)), 0u);
        EXPECT_EQ(handler.stream->ring->ended, behind == 4 ? 0u : 1u);
        EXPECT_EQ(feedChunk(handler, filler(8)), 0u);
        EXPECT_EQ(handler.stream->ring->ended, 1u);
    }
}

// A chunk of seven bytes leaves no trace but its bytes: what was kept joins the chunk behind it.
TEST(VideoScan, ShortChunkIsStoredButNotScanned)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + filler(9) + fromHex("00 00 01")), 0u);   // 40 bytes
    EXPECT_EQ(feedChunk(handler, fromHex("00 00 01 00 00 08 A5")), 0u);
    EXPECT_EQ(handler.stream->unitCount, 0u);
    EXPECT_EQ(handler.stream->bytesIn, 47u);
    EXPECT_EQ(handler.stream->ring->fill, 47u);
    handler.stream->groupPending = 0;   // so that the picture's own place is seen
    EXPECT_EQ(feedChunk(handler, fromHex("00 00 D0 A5 A5 A5 A5 A5 A5 A5")), 0u);
    // Three bytes in front of 47: reference 3, type 2.
    EXPECT_EQ(unitsOf(handler), (std::vector<MuxUnit>{ { 44, 1, 2, (1 + 3) * 3600, 0, 3600 } }));
}

TEST(VideoScan, ChunksShorterThanEightBytes)
{
    Handler handler(ORV_MUX_VIDEO);
    for (uint64_t size = 0; size < 8; size++) {
        Bytes chunk = fromHex("00 00 01 B8 00 00 01");
        chunk.resize(size);
        EXPECT_EQ(parseChunk(handler, chunk), 0u) << size;   // not dropped, though no group has begun
    }
    EXPECT_EQ(handler.stream->headerSeen, 1u);
    EXPECT_EQ(handler.stream->groupCount, 0u);
    EXPECT_EQ(toHex(handler.stream->lookBack, 8), "FF FF FF FF FF FF FF FF");
}

// The bytes in front of the first chunk are none of a code.
TEST(VideoScan, NothingInFrontOfTheFirstChunk)
{
    for (const char* const start : { "01 B8", "00 01 B8", "B8", "00 B8", "00 01 00 01 B3" }) {
        Handler handler(ORV_MUX_VIDEO);
        EXPECT_EQ(feedChunk(handler, fromHex(start) + filler(20)), DROPPED);
        EXPECT_EQ(handler.stream->groupCount, 0u);
        EXPECT_EQ(handler.stream->seqPending, 0u);
    }
}

TEST(VideoScan, KeepsTheLastEightBytes)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + fromHex("01 02 03 04 05 06 07 08 09"), 4711), 0u);
    EXPECT_EQ(toHex(handler.stream->lookBack, 8), "02 03 04 05 06 07 08 09");
    EXPECT_EQ(handler.stream->lookBackTime, 4711u);
    EXPECT_EQ(handler.stream->timeUsed, 0u);
    EXPECT_EQ(feedChunk(handler, fromHex("11 12 13 14 15 16 17 18"), 4712), 0u);
    EXPECT_EQ(toHex(handler.stream->lookBack, 8), "11 12 13 14 15 16 17 18");
    EXPECT_EQ(handler.stream->lookBackTime, 4712u);
    EXPECT_EQ(feedChunk(handler, filler(20) + videoPicture(20, 0, 'I'), 4713), 0u);
    EXPECT_EQ(handler.stream->timeUsed, 1u);
    EXPECT_EQ(feedChunk(handler, filler(20)), 0u);
    EXPECT_EQ(handler.stream->timeUsed, 0u);
    EXPECT_EQ(handler.stream->lookBackTime, NO_TIME);
}

// ---- groups -----------------------------------------------------------------------------------------------------

TEST(VideoScan, SequenceHeaderBeginsTheGroupOfTheNextGop)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + videoPicture(40, 0, 'I') + sequenceHeader() + filler(10) + gopHeader() +
                                     filler(5) + videoPicture(40, 0, 'I') + filler(8)),
              0u);
    EXPECT_EQ(positionsOf(handler), (std::vector<uint64_t>{ 0, 68 }));
}

// A picture between the headers is one of the group before, and the header still counts.
TEST(VideoScan, PictureBetweenSequenceAndGop)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + videoPicture(40, 0, 'I') + sequenceHeader() + videoPicture(20, 1, 'P') +
                                     gopHeader() + videoPicture(40, 0, 'I') + filler(8)),
              0u);
    const std::vector<MuxUnit> expected = { { 0, 1, 1, 3600, 0, 3600 },
                                            { 80, 1, 2, 7200, 3600, 3600 },
                                            { 68, 2, 1, 10800, 7200, 10800 } };
    EXPECT_EQ(unitsOf(handler), expected);
}

TEST(VideoScan, TwoGopsWithoutAPictureBetween)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening() + gopHeader() + videoPicture(40, 0, 'I') + filler(8)), 0u);
    // The second one has no sequence header, so it begins the group itself; its base is 0 pictures plus 1.
    EXPECT_EQ(unitsOf(handler), (std::vector<MuxUnit>{ { 28, 2, 1, 3600, 0, 3600 } }));
}

// ---- dropped chunks ---------------------------------------------------------------------------------------------

TEST(VideoScan, ChunksInFrontOfTheFirstGopAreDropped)
{
    Handler handler(ORV_MUX_VIDEO);
    const Bytes early = sequenceHeader(RATE_CODE_NTSC, 352, 240) + filler(20);
    uint64_t used = 0;
    EXPECT_EQ(MuxData(handler.handle, handler.stream, early.data(), early.size(), &used, 0), 0u);
    EXPECT_EQ(used, 32u);
    EXPECT_EQ(handler.stream->bytesIn, 0u);
    EXPECT_EQ(handler.stream->ring->fill, 0u);
    // Its fields stay: size, rate, and that it opens a group, at its own place.
    EXPECT_EQ(handler.stream->width, 352u);
    EXPECT_EQ(handler.stream->height, 240u);
    EXPECT_EQ(handler.stream->unitTicks, 3003u);
    EXPECT_EQ(handler.stream->seqPending, 1u);
    EXPECT_EQ(feedChunk(handler, filler(10) + gopHeader() + videoPicture(30, 0, 'I') + filler(8)), 0u);
    EXPECT_EQ(unitsOf(handler), (std::vector<MuxUnit>{ { 0, 1, 1, 3003, 0, 3003 } }));
    EXPECT_EQ(handler.stream->bytesIn, 56u);   // the chunk with the GOP header is stored whole
}

// The records of group 0 stay in the table.
TEST(VideoScan, PicturesOfDroppedChunksLeaveRecords)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, sequenceHeader() + videoPicture(30, 0, 'I') + videoPicture(20, 1, 'P') + filler(8)),
              DROPPED);
    EXPECT_EQ(feedChunk(handler, gopHeader() + videoPicture(30, 0, 'I') + filler(8)), 0u);
    const std::vector<MuxUnit> expected = { { 12, 0, 1, 3600, 0, 0 },
                                            { 42, 0, 2, 7200, 3600, 0 },
                                            { 0, 1, 1, 10800, 7200, 3600 } };
    EXPECT_EQ(unitsOf(handler), expected);
    EXPECT_EQ(handler.stream->unitCount, 3u);
    EXPECT_EQ(handler.stream->gopBase, 1u);   // of the first GOP whatever came in front
}

// A GOP header whose first half went with a dropped chunk lies in front of byte 0: four bytes, modulo 2^64.
TEST(VideoScan, PositionsInFrontOfTheStreamWrap)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, filler(20) + fromHex("00 00 01 B8")), DROPPED);
    EXPECT_EQ(
        feedChunk(handler, fromHex("00 08 00 40") + videoPicture(36, 0, 'I') + videoPicture(40, 1, 'P') + filler(8)),
        0u);
    EXPECT_EQ(unitsOf(handler),
              (std::vector<MuxUnit>{ { 0xFFFFFFFFFFFFFFFC, 1, 1, 3600, 0, 3600 }, { 40, 1, 2, 7200, 3600, 3600 } }));
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 0), 44u);
}

TEST(VideoScan, WrappedPositionsComeToAnEnd)
{
    Handler handler(ORV_MUX_VIDEO);
    const Bytes early = filler(20) + fromHex("00 00 01 B8");
    Bytes late = fromHex("00 08 00 40");
    for (uint64_t i = 0; i < 20; i++) late += videoPicture(9000, i, i ? 'P' : 'I');
    EXPECT_EQ(MuxData(handler.handle, handler.stream, early.data(), early.size(), nullptr, 0), 0u);
    (void)MuxData(handler.handle, handler.stream, late.data(), late.size(), nullptr, 0);
    EXPECT_EQ(handler.stream->bytesIn, 180004u);
    EXPECT_EQ(handler.stream->bytesPacked + handler.stream->ring->fill, 180004u);
}

// ---- bad rates --------------------------------------------------------------------------------------------------

TEST(VideoScan, RateCodes)
{
    for (uint64_t code = 0; code < 16; code++) {
        Handler handler(ORV_MUX_VIDEO);
        const bool good = code == 3 || code == 4;
        EXPECT_EQ(parseChunk(handler, gopHeader() + sequenceHeader(code) + filler(8)), good ? 0 : NOT_PAL_OR_NTSC);
        EXPECT_EQ(handler.stream->unitTicks, code == 4 ? 3003u : 3600u) << code;
    }
}

// What stands in front of it stays recorded; what is behind it, and the chunk's end, is not looked at.
TEST(VideoScan, BadRateEndsTheScanOfItsChunk)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening(), 500), 0u);
    const std::string kept = toHex(handler.stream->lookBack, 8);
    EXPECT_EQ(feedChunk(handler,
                        filler(10) + videoPicture(20, 0, 'I') + sequenceHeader(RATE_CODE_23976, 352, 288) +
                            gopHeader() + videoPicture(20, 0, 'I') + filler(10, 9),
                        600),
              NOT_PAL_OR_NTSC);
    EXPECT_EQ(unitsOf(handler), (std::vector<MuxUnit>{ { 0, 1, 1, 3600, 0, 3600 } }));
    EXPECT_EQ(handler.stream->groupCount, 1u);
    EXPECT_EQ(handler.stream->seqPending, 1u);
    EXPECT_EQ(handler.stream->groupStart, 58u);
    EXPECT_EQ(handler.stream->width, 352u);
    EXPECT_EQ(handler.stream->bytesIn, 28u);
    EXPECT_EQ(toHex(handler.stream->lookBack, 8), kept);
    EXPECT_EQ(handler.stream->lookBackTime, 500u);
    // The next GOP takes the place of the header whose chunk is gone.
    EXPECT_EQ(feedChunk(handler, filler(10) + gopHeader() + videoPicture(20, 0, 'I') + filler(8)), 0u);
    EXPECT_EQ(positionsOf(handler), (std::vector<uint64_t>{ 0, 58 }));
}

TEST(VideoScan, BadRateAcrossABorder)
{
    Handler handler(ORV_MUX_VIDEO);
    const std::vector<Bytes> halves = cut(sequenceHeader(RATE_CODE_24), { 5, 7 });
    EXPECT_EQ(feedChunk(handler, opening() + halves[0]), 0u);
    const std::string kept = toHex(handler.stream->lookBack, 8);
    EXPECT_EQ(feedChunk(handler, halves[1] + videoPicture(20, 0, 'I') + filler(8)), NOT_PAL_OR_NTSC);
    EXPECT_EQ(handler.stream->unitCount, 0u);
    EXPECT_EQ(handler.stream->bytesIn, 33u);
    EXPECT_EQ(toHex(handler.stream->lookBack, 8), kept);
}

// ---- hostile input ----------------------------------------------------------------------------------------------

TEST(VideoScan, PicturesEverywhere)
{
    Handler handler(ORV_MUX_VIDEO);
    EXPECT_EQ(feedChunk(handler, opening()), 0u);
    Bytes pictures;
    for (uint64_t i = 0; i < 4096; i++) pictures += fromHex("00 00 01 00");
    for (const Bytes& chunk : cut(pictures, { 9, 8, 13, 1000, 17, 4096 })) {
        EXPECT_EQ(feedChunk(handler, chunk, 18 * 3600), 0u);
    }
    // All but those of the last eight bytes.
    EXPECT_EQ(handler.stream->picturesSeen, 4094u);
    EXPECT_EQ(positionsOf(handler).back(), handler.stream->bytesIn - 12);
}

// Pictures of no type can't be packed: the run gives up, and does not wait for ever.
TEST(VideoScan, PicturesOfNoTypeEndTheRun)
{
    Handler handler(ORV_MUX_VIDEO);
    Bytes chunk = opening();
    while (chunk.size() < 0x20000) chunk += videoPicture(4000, 0, '0');
    EXPECT_EQ(MuxData(handler.handle, handler.stream, chunk.data(), chunk.size(), nullptr, 0), 0x84000BC0u);
    EXPECT_EQ(handler.stream->bytesPacked, 0u);
}

// The parser has seen a chunk that the ring refuses; the next one is taken as it comes.
TEST(VideoScan, ChunkRefusedByTheRing)
{
    Handler handler(ORV_MUX_VIDEO);
    Bytes large = opening();
    while (large.size() <= RING_BYTES) large += videoPicture(50000, 0, 'I');
    EXPECT_EQ(MuxData(handler.handle, handler.stream, large.data(), large.size(), nullptr, 0), OVERFLOWED);
    EXPECT_EQ(handler.stream->bytesIn, 0u);
    EXPECT_EQ(handler.stream->unitCount, 42u);
    const Bytes next = videoPicture(50, 0, 'I') + filler(8);
    EXPECT_EQ(MuxData(handler.handle, handler.stream, next.data(), next.size(), nullptr, 0), 0u);
    EXPECT_EQ(handler.stream->unitCount, 43u);
    EXPECT_EQ(unitsOf(handler).back().position, 0u);
    EXPECT_EQ(handler.stream->bytesIn, 58u);
}

}   // namespace
