// Holes in the time of AC-3 in chunks of any kind: each missing frame is put in as a record and zero bytes.
#include "mux/ring.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t OVERFLOWED = 0x84000BC9;

typedef std::vector<uint64_t> Positions;

// Bytes between frames; they hold no sync.
Bytes gap(uint64_t bytes)
{
    return filler(bytes, 77);
}

struct HoleCase {
    const char* what;
    uint64_t before;   // frames delivered before, without time
    uint64_t time;
    uint64_t missing;
};

// clang-format off
const HoleCase HOLES[] = {
    { "in time",            0,              0,    0 },
    { "no time",            0,           NONE,    0 },
    { "a tick below 1",     0,       2880 - 1,    0 },
    { "1 frame",            0,           2880,    1 },
    { "a tick below 2",     0,   2 * 2880 - 1,    1 },
    { "16 frames",          0,      16 * 2880,   16 },
    { "200 frames",         0,     200 * 2880,  200 },
    { "in time behind 3",   3,       3 * 2880,    0 },
    { "2 behind 3",         3,       5 * 2880,    2 },
    { "a frame early",      3,       2 * 2880,    0 },
    { "a tick early",       3,   3 * 2880 - 1,    0 },
    { "far too early",      3,              0,    0 },
};
// clang-format on

// Each missing frame is a frame of zeros, with its record where it lies; the chunk's frame follows them.
TEST(Ac3Holes, HolesAreFilledByTime)
{
    for (const HoleCase& row : HOLES) {
        Handler handler(ORV_MUX_AC3_ANY);
        if (row.before) {
            EXPECT_EQ(feedChunk(handler, ac3Frames(0, row.before)), 0u);
            (void)drainRing(handler);
        }
        const Bytes frame = ac3Frame(0);
        EXPECT_EQ(feedChunk(handler, frame, row.time), 0u) << row.what;
        Positions expected;
        for (uint64_t i = 0; i <= row.before + row.missing; i++) expected.push_back(i * 128);
        EXPECT_EQ(positionsOf(handler), expected) << row.what;
        const std::vector<MuxUnit> units = unitsOf(handler);
        for (uint64_t i = row.before; i < row.before + row.missing; i++) {
            EXPECT_EQ(units[i + 1].pts - units[i].pts, 2880u) << row.what;
            EXPECT_EQ(units[i + 1].dts - units[i].dts, 2880u) << row.what;
        }
        EXPECT_EQ(handler.stream->unitCount, row.before + row.missing + 1) << row.what;
        EXPECT_EQ(handler.stream->picturesSeen, row.before + 1) << row.what;
        EXPECT_EQ(handler.stream->gapUnits, row.missing) << row.what;
        EXPECT_EQ(handler.stream->bytesIn, expected.size() * 128) << row.what;
        EXPECT_EQ(drainRing(handler), Bytes(row.missing * 128, 0) + frame) << row.what;
    }
}

TEST(Ac3Holes, FramesBehindAHoleCountItsBytes)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frames(0, 3), 2 * 2880), 0u);
    EXPECT_EQ(positionsOf(handler), (Positions{ 0, 128, 256, 384, 512 }));
    EXPECT_EQ(handler.stream->picturesSeen, 3u);
}

// Frames count by what came in, a hole by all that is missing: each frame of it is put in once.
TEST(Ac3Holes, HoleIsFilledOnce)
{
    Handler handler(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0), 3 * 2880), 0u);
    EXPECT_EQ(handler.stream->unitCount, 4u);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0), 4 * 2880), 0u);   // 3 of 1 seen: nothing new
    EXPECT_EQ(handler.stream->unitCount, 5u);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0), 7 * 2880), 0u);   // 5 of 2 seen: 2 more
    EXPECT_EQ(handler.stream->unitCount, 8u);
    EXPECT_EQ(handler.stream->gapUnits, 5u);
    // Back to one frame, and that is kept in mind: then four are new once more.
    EXPECT_EQ(feedChunk(handler, ac3Frame(0), 4 * 2880), 0u);
    EXPECT_EQ(handler.stream->unitCount, 9u);
    EXPECT_EQ(handler.stream->gapUnits, 1u);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0), 4 * 2880), 0u);   // none: nothing is kept
    EXPECT_EQ(handler.stream->gapUnits, 1u);
    EXPECT_EQ(feedChunk(handler, ac3Frame(0), 10 * 2880), 0u);
    EXPECT_EQ(handler.stream->unitCount, 10u + 4 + 1);
    EXPECT_EQ(handler.stream->bytesIn, 15u * 128);
}

TEST(Ac3Holes, TimeBelongsToTheFirstSyncOfAChunk)
{
    Handler handler(ORV_MUX_AC3_ANY);
    // In time for the fourth frame: were it the second's, two would be missing.
    EXPECT_EQ(feedChunk(handler, ac3Frames(0, 3)), 0u);
    EXPECT_EQ(feedChunk(handler, ac3Frames(0, 3), 3 * 2880), 0u);
    EXPECT_EQ(handler.stream->unitCount, 6u);
    EXPECT_EQ(handler.stream->timeUsed, 1u);
}

// A sync that counts for nothing takes the time with it.
TEST(Ac3Holes, IgnoredSyncTakesTheTime)
{
    Handler other(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(other, ac3Frame(0)), 0u);
    EXPECT_EQ(feedChunk(other, fromHex("77 0B 90 91 00 40") + ac3Frame(0), 9 * 2880), 0u);
    EXPECT_EQ(positionsOf(other), (Positions{ 0, 6, 134 }));   // no hole; the six bytes lack a frame
    Handler within(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(within, cut(ac3Frame(0), { 100 })[0]), 0u);
    EXPECT_EQ(feedChunk(within, gap(10) + fromHex("0B 77 90 91 00 40") + gap(12) + ac3Frame(0), 9 * 2880), 0u);
    EXPECT_EQ(positionsOf(within), (Positions{ 0, 128 }));
}

TEST(Ac3Holes, SyncAcrossABorderHasTheEarlierTime)
{
    const std::vector<Bytes> parts = cut(ac3Frame(0) + ac3Frame(0), { 130, 126 });
    Handler handler(ORV_MUX_AC3_ANY);
    // The first frame takes the time of its chunk, so there is none for the second.
    EXPECT_EQ(feedChunk(handler, parts[0], 0), 0u);
    EXPECT_EQ(feedChunk(handler, parts[1], 9 * 2880), 0u);
    EXPECT_EQ(handler.stream->unitCount, 2u);
    // Here the sync stands alone among the last five bytes.
    Handler waiting(ORV_MUX_AC3_ANY);
    EXPECT_EQ(feedChunk(waiting, gap(20) + fromHex("0B 77 90"), 2 * 2880), 0u);
    EXPECT_EQ(waiting.stream->unitCount, 0u);
    EXPECT_EQ(waiting.stream->timeUsed, 0u);
    EXPECT_EQ(feedChunk(waiting, fromHex("91 00 40") + gap(122), 50 * 2880), 0u);
    EXPECT_EQ(positionsOf(waiting), (Positions{ 20, 148, 276 }));
    EXPECT_EQ(waiting.stream->bytesIn, 23u + 2 * 128 + 125);
}

// A chunk that begins with a frame has that frame's time, in either byte order.
TEST(Ac3Holes, SyncAtTheStartOfAChunkHasItsOwnTime)
{
    for (const char* const frame : { "0B 77 90 91 00 40", "77 0B 90 91 00 40" }) {
        Handler handler(ORV_MUX_AC3_ANY);
        EXPECT_EQ(feedChunk(handler, gap(20), 50 * 2880), 0u);
        EXPECT_EQ(feedChunk(handler, fromHex(frame) + gap(122), 0), 0u);
        EXPECT_EQ(positionsOf(handler), (Positions{ 20 })) << frame;
        EXPECT_EQ(handler.stream->timeUsed, 1u);
    }
}

// Six bytes from the end a sync belongs to its chunk, five from the end to the next.
TEST(Ac3Holes, LastSyncOfAChunk)
{
    for (const char* const sync : { "0B 77 90 91 00", "77 0B 90 91 00" }) {
        Handler seen(ORV_MUX_AC3_ANY);
        EXPECT_EQ(feedChunk(seen, gap(20) + fromHex(sync) + gap(1), 0), 0u);
        EXPECT_EQ(positionsOf(seen), (Positions{ 20 })) << sync;
        EXPECT_EQ(seen.stream->timeUsed, 1u);
        Handler waits(ORV_MUX_AC3_ANY);
        EXPECT_EQ(feedChunk(waits, gap(20) + fromHex(sync), 0), 0u);
        EXPECT_EQ(positionsOf(waits), Positions{}) << sync;
        EXPECT_EQ(waits.stream->timeUsed, 0u);
    }
}

TEST(Ac3Holes, HoleThatDoesNotFitTheRing)
{
    Handler handler(ORV_MUX_AC3_ANY);
    handler.stream->ring->fill = RING_BYTES - 3 * 128;
    EXPECT_EQ(parseChunk(handler, ac3Frame(0), 100 * 2880), OVERFLOWED);
    EXPECT_EQ(handler.stream->ring->fill, RING_BYTES);
    EXPECT_EQ(handler.stream->bytesIn, 3u * 128);
}

TEST(Ac3Holes, TimesFarAwayComeToAnEnd)
{
    for (const uint64_t time : std::vector<uint64_t>{ NONE - 1, uint64_t(1) << 62, uint64_t(1) << 63, 1u << 31 }) {
        for (const char* const frame : { "0B 77 90 91 00 40", "0B 77 90 91 26 40" }) {
            Handler handler(ORV_MUX_AC3_ANY);
            const uint64_t result = feedChunk(handler, fromHex(frame) + gap(200), time);
            EXPECT_TRUE(result == 0 || result == OVERFLOWED) << std::hex << result;
            EXPECT_LE(handler.stream->ring->fill, RING_BYTES);
            EXPECT_LE(handler.stream->unitCount, RING_BYTES / 128 + 2);
        }
    }
}

}   // namespace
