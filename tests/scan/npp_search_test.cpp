// The search pointers of a scanned stream, worked out by hand on short lists: a distance counts the packs from one
// navigation pack to the other, and a pointer of time is due one tick behind its time.
#include "base/result.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

// Words as they stand in the pack, those of an array from first to last.
struct Search {
    std::string_view nextVideo, forward, nextVobu, prevVobu, backward, prevVideo;
};

void expectSearch(const ScanHost& host, uint64_t unit, const Search& expected)
{
    SCOPED_TRACE("unit " + std::to_string(unit));
    ASSERT_LT(unit, host.units.size());
    const Bytes& pack = host.units[unit];
    EXPECT_EQ(wordsAt(pack, 1265, 1), expected.nextVideo);
    EXPECT_EQ(wordsAt(pack, 1269, 19), expected.forward);
    EXPECT_EQ(wordsAt(pack, 1345, 1), expected.nextVobu);
    EXPECT_EQ(wordsAt(pack, 1349, 1), expected.prevVobu);
    EXPECT_EQ(wordsAt(pack, 1353, 19), expected.backward);
    EXPECT_EQ(wordsAt(pack, 1429, 1), expected.prevVideo);
}

constexpr std::string_view NO_VIDEO = "BFFFFFFF", NO = "3FFFFFFF", NO_19 = "3FFFFFFF*19";

/** Scans units of 1, 2, 4, 8, ... packs, so that every sum is another. */
void scanDoubling(ScanHost& host, const std::vector<uint64_t>& starts)
{
    std::vector<ScanUnit> units;
    for (const uint64_t start : starts) units.push_back({ .start = start, .packs = uint64_t(1) << units.size() });
    ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf(units)));
    ASSERT_EQ(host.units.size(), starts.size());
}

TEST(NppSearch, TwoUnits)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(
        runScan(host, streamOf({ { .start = 28800, .packs = 3 }, { .start = 74800, .packs = 2 } })));
    expectSearch(host, 0, { "80000003", "3FFFFFFF*18 80000003", "80000003", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1, { NO_VIDEO, NO_19, NO, "80000003", "80000003 3FFFFFFF*18", "80000003" });
}

// The bytes themselves, from next_video to prev_video.
TEST(NppSearch, TheirPlaces)
{
    ScanHost host;
    std::vector<ScanUnit> units = { { .start = 0, .packs = 5 }, { .start = 46000, .packs = 2 } };
    units.push_back({ .start = 92000 });
    const Bytes stream = streamOf(units);
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream));
    ASSERT_EQ(host.units.size(), 3u);
    std::string expected = "80 00 00 02 ";                            // 1265
    for (int i = 0; i < 18; i++) expected += "3F FF FF FF ";          // 1269
    expected += "80 00 00 02 80 00 00 02 80 00 00 05 80 00 00 05 ";   // 1341, 1345, 1349, 1353
    for (int i = 0; i < 18; i++) expected += "3F FF FF FF ";          // 1357
    expected += "80 00 00 05";                                        // 1429
    EXPECT_EQ(hexAt(host.units[1], 1265, 168), expected);
    EXPECT_EQ(hexAt(host.units[1], 1433, 615), hexAt(stream, 5 * PACK_BYTES + 1433, 615));
}

// At exactly its distance a unit is not far enough: the slot is kept for the next one, and no pointer leads forward.
TEST(NppSearch, ExactlyAtTheDistance)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(scanDoubling(host, { 0, 45000, 90000 }));
    expectSearch(host, 0, { "80000001", "3FFFFFFF*18 80000003", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1, { "80000002", NO_19, "80000002", "80000001", "80000001 3FFFFFFF*18", "80000001" });
    expectSearch(host, 2, { NO_VIDEO, NO_19, NO, "80000002", "80000003 3FFFFFFF*18", "80000002" });
}

TEST(NppSearch, OneTickMoreThanTheDistance)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(scanDoubling(host, { 0, 45001, 90002 }));
    expectSearch(host, 0, { "80000001", "3FFFFFFF*17 80000003 80000001", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1,
                 { "80000002", "3FFFFFFF*18 80000002", "80000002", "80000001", "80000001 3FFFFFFF*18", "80000001" });
    expectSearch(host, 2, { NO_VIDEO, NO_19, NO, "80000002", "80000002 80000003 3FFFFFFF*17", "80000002" });
}

// Forward, a wide gap fills all pointers whose time lies in it; backward, each unit takes one slot at most.
TEST(NppSearch, WideGaps)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(scanDoubling(host, { 0, 100000, 200000, 300000 }));
    expectSearch(host, 0,
                 { "80000001", "3FFFFFFF*13 80000007*2 80000003*2 80000001*2", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1,
                 { "80000002", "3FFFFFFF*15 80000006*2 80000002*2", "80000002", "80000001", "80000001 3FFFFFFF*18",
                   "80000001" });
    expectSearch(
        host, 2,
        { "80000004", "3FFFFFFF*17 80000004*2", "80000004", "80000002", "80000002 80000003 3FFFFFFF*17", "80000002" });
    expectSearch(host, 3, { NO_VIDEO, NO_19, NO, "80000004", "80000004 80000006 80000007 3FFFFFFF*16", "80000004" });
}

// Units of a fifth of a second and packs 1 to 7: a slot is overwritten until a unit lies behind its time, and keeps the
// last where none does.
TEST(NppSearch, BackwardPointersEndBeyondTheirDistance)
{
    std::vector<ScanUnit> units;
    for (uint64_t i = 0; i < 7; i++) units.push_back({ .start = 500 + 20000 * i, .packs = i + 1 });
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf(units)));
    ASSERT_EQ(host.units.size(), 7u);
    expectSearch(host, 0, { "80000001", "3FFFFFFF*17 8000000F 80000006", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(
        host, 1,
        { "80000002", "3FFFFFFF*17 80000014 80000009", "80000002", "80000001", "80000001 3FFFFFFF*18", "80000001" });
    expectSearch(host, 2,
                 { "80000003", "3FFFFFFF*18 8000000C", "80000003", "80000002", "80000003 3FFFFFFF*18", "80000002" });
    expectSearch(host, 3,
                 { "80000004", "3FFFFFFF*18 8000000F", "80000004", "80000003", "80000006 3FFFFFFF*18", "80000003" });
    expectSearch(host, 4, { "80000005", NO_19, "80000005", "80000004", "80000009 8000000A 3FFFFFFF*17", "80000004" });
    expectSearch(host, 6, { NO_VIDEO, NO_19, NO, "80000006", "8000000F 80000014 80000015 3FFFFFFF*16", "80000006" });
}

// Units of 45001 ticks and one pack: half seconds are as many units, 10 s are 20, 30 s 60, one minute 120, two 240.
TEST(NppSearch, AllDistances)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf(evenUnits(250, 45001))));
    ASSERT_EQ(host.units.size(), 250u);
    const std::string_view forward = "800000F0 80000078 8000003C 80000014 8000000F 8000000E 8000000D 8000000C 8000000B "
                                     "8000000A 80000009 80000008 80000007 80000006 80000005 80000004 80000003 80000002 "
                                     "80000001";
    const std::string_view backward =
        "80000001 80000002 80000003 80000004 80000005 80000006 80000007 80000008 80000009 "
        "8000000A 8000000B 8000000C 8000000D 8000000E 8000000F 80000014 8000003C 80000078 "
        "800000F0";
    expectSearch(host, 0, { "80000001", forward, "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 9,
                 { "80000001", forward, "80000001", "80000001",
                   "80000001 80000002 80000003 80000004 80000005 80000006 80000007 80000008 80000009 "
                   "3FFFFFFF*10",
                   "80000001" });
    // A hundred units back are more than half a minute and less than a whole one.
    expectSearch(host, 100,
                 { "80000001",
                   "3FFFFFFF 80000078 8000003C 80000014 8000000F 8000000E 8000000D 8000000C 8000000B 8000000A "
                   "80000009 80000008 80000007 80000006 80000005 80000004 80000003 80000002 80000001",
                   "80000001", "80000001",
                   "80000001 80000002 80000003 80000004 80000005 80000006 80000007 80000008 80000009 "
                   "8000000A 8000000B 8000000C 8000000D 8000000E 8000000F 80000014 8000003C 80000064 3FFFFFFF",
                   "80000001" });
    expectSearch(host, 240,
                 { "80000001",
                   "3FFFFFFF*10 80000009 80000008 80000007 80000006 80000005 80000004 80000003 80000002 "
                   "80000001",
                   "80000001", "80000001", backward, "80000001" });
    expectSearch(host, 249, { NO_VIDEO, NO_19, NO, "80000001", backward, "80000001" });
}

// At 45000 ticks each every distance is met exactly, and passed by one unit more.
TEST(NppSearch, AllDistancesExactly)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf(evenUnits(250, 45000))));
    ASSERT_EQ(host.units.size(), 250u);
    expectSearch(host, 0,
                 { "80000001",
                   "800000F1 80000079 8000003D 80000015 80000010 8000000F 8000000E 8000000D 8000000C 8000000B "
                   "8000000A 80000009 80000008 80000007 80000006 80000005 80000004 80000003 80000002",
                   "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 249,
                 { NO_VIDEO, NO_19, NO, "80000001",
                   "80000002 80000003 80000004 80000005 80000006 80000007 80000008 80000009 8000000A 8000000B "
                   "8000000C 8000000D 8000000E 8000000F 80000010 80000015 8000003D 80000079 800000F1",
                   "80000001" });
}

// Thirty units of no time, all of them more than two minutes back: nineteen fill the slots, and the others leave the
// word behind the last slot alone.
TEST(NppSearch, NoTwentiethPointer)
{
    std::vector<ScanUnit> units(30);
    units[29].packs = 2;
    units.push_back({ .start = 11000000 });
    const Bytes stream = streamOf(units);
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream));
    ASSERT_EQ(host.units.size(), 31u);
    expectSearch(host, 30,
                 { NO_VIDEO, NO_19, NO, "80000002",
                   "80000002 80000003 80000004 80000005 80000006 80000007 80000008 80000009 8000000A 8000000B "
                   "8000000C 8000000D 8000000E 8000000F 80000010 80000011 80000012 80000013 80000014",
                   "80000002" });
    EXPECT_EQ(hexAt(host.units[30], 1433, 615), hexAt(stream, 31 * PACK_BYTES + 1433, 615));
    expectSearch(host, 0, { "80000001", "8000001F*19", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 29, { "80000002", "80000002*19", "80000002", "80000001", "8000001D 3FFFFFFF*18", "80000001" });
}

// No pointer crosses from a cell into another.
TEST(NppSearch, CellsEndTheWalk)
{
    ScanHost host(cellsEvery(100000));
    ASSERT_NO_FATAL_FAILURE(scanDoubling(host, { 0, 50000, 100000, 150001 }));
    expectSearch(host, 0, { "80000001", "3FFFFFFF*18 80000001", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1, { NO_VIDEO, NO_19, NO, "80000001", "80000001 3FFFFFFF*18", "80000001" });
    expectSearch(host, 2, { "80000004", "3FFFFFFF*18 80000004", "80000004", NO, NO_19, NO_VIDEO });
    expectSearch(host, 3, { NO_VIDEO, NO_19, NO, "80000004", "80000004 3FFFFFFF*18", "80000004" });
}

// Nor from a VOB into another, whichever byte of its number differs.
TEST(NppSearch, VobsEndTheWalk)
{
    for (const uint64_t other : std::vector<uint64_t>{ 0x0002, 0x0101 }) {
        SCOPED_TRACE(other);
        ScanHost host;
        ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf({ { .start = 0, .packs = 2 },
                                                         { .start = 50000, .packs = 3 },
                                                         { .start = 100000, .packs = 4, .vob = other },
                                                         { .start = 150000, .packs = 5, .vob = other } })));
        ASSERT_EQ(host.units.size(), 4u);
        expectSearch(host, 0, { "80000002", "3FFFFFFF*18 80000002", "80000002", NO, NO_19, NO_VIDEO });
        expectSearch(host, 1, { NO_VIDEO, NO_19, NO, "80000002", "80000002 3FFFFFFF*18", "80000002" });
        expectSearch(host, 2, { "80000004", "3FFFFFFF*18 80000004", "80000004", NO, NO_19, NO_VIDEO });
        expectSearch(host, 3, { NO_VIDEO, NO_19, NO, "80000004", "80000004 3FFFFFFF*18", "80000004" });
    }
}

// A unit of another VOB in between ends the walk, also where the first VOB goes on behind it.
TEST(NppSearch, NoWalkPassesAnotherVob)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(
        host,
        streamOf({ { .start = 0 }, { .start = 10 }, { .start = 20, .vob = 2 }, { .start = 11000000, .vob = 1 } })));
    ASSERT_EQ(host.units.size(), 4u);
    expectSearch(host, 1, { NO_VIDEO, NO_19, NO, "80000001", "80000001 3FFFFFFF*18", "80000001" });
    expectSearch(host, 2, { NO_VIDEO, NO_19, NO, NO, NO_19, NO_VIDEO });
    expectSearch(host, 3, { NO_VIDEO, NO_19, NO, NO, NO_19, NO_VIDEO });
}

// What counts is the number that stands in the pack, of which a cell has one byte.
TEST(NppSearch, CellsOfOneByteAreOne)
{
    ScanHost host(cellsEvery(200));
    ASSERT_NO_FATAL_FAILURE(scanDoubling(host, { 0, 51200 }));   // cells 1 and 257
    EXPECT_EQ(host.recordField(1, 6), 257u);
    expectSearch(host, 0, { "80000001", "3FFFFFFF*18 80000001", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1, { NO_VIDEO, NO_19, NO, "80000001", "80000001 3FFFFFFF*18", "80000001" });
}

// A start before that of an earlier unit of the cell: without a sign the difference is beyond all distances.
TEST(NppSearch, StartsThatFall)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(scanDoubling(host, { 100000, 99999, 150000 }));
    expectSearch(host, 0, { "80000001", "80000001*19", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1,
                 { "80000002", "3FFFFFFF*18 80000002", "80000002", "80000001", "80000001 3FFFFFFF*18", "80000001" });
    // The first unit left when the second was linked, so the walk of the third ends before it.
    expectSearch(host, 2, { NO_VIDEO, NO_19, NO, "80000002", "80000002 3FFFFFFF*18", "80000002" });
}

// A clock that wraps is one that falls: no distance is reckoned modulo 2^32.
TEST(NppSearch, StartsThatWrap)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(scanDoubling(host, { 0xFFFFFFF0, 0x00000010 }));
    expectSearch(host, 0, { "80000001", "80000001*19", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1, { NO_VIDEO, NO_19, NO, "80000001", "80000001 3FFFFFFF*18", "80000001" });
}

// Starts above half of 32 bits are times like others.
TEST(NppSearch, HighStarts)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(scanDoubling(host, { 0x7FFFFFFF, 0x80000000, 0x8000AFC8 }));
    expectSearch(host, 0, { "80000001", "3FFFFFFF*18 80000003", "80000001", NO, NO_19, NO_VIDEO });
    expectSearch(host, 1, { "80000002", NO_19, "80000002", "80000001", "80000001 3FFFFFFF*18", "80000001" });
    expectSearch(host, 2, { NO_VIDEO, NO_19, NO, "80000002", "80000003 3FFFFFFF*18", "80000002" });
}

}   // namespace
