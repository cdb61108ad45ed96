// Search pointers of the navigation packs: jumps by time, over units laid out by hand.
#include "base/time_code.h"
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t FORWARD = 1269, BACKWARD = 1353;

// A still menu's worth of nothing: one menu a VOB, without buttons.
std::vector<MenuDesc> plainMenus(uint64_t count)
{
    return std::vector<MenuDesc>(count, MenuDesc{});
}

// Entry for a jump of table index k.
std::string forward(const NavRun& run, uint64_t sector, uint64_t k)
{
    return run.words(sector, FORWARD + 4 * (18 - k), 1);
}

std::string backward(const NavRun& run, uint64_t sector, uint64_t k)
{
    return run.words(sector, BACKWARD + 4 * k, 1);
}

}   // namespace

// ---- distances ---------------------------------------------------------------------------------------------------

TEST(NavSearch, AllDistancesForward)
{
    // Units of 43200 ticks, a pack each. 45000 ticks are 1.04 units, 675000 are 15.6, 900000 are 20.8, 2700000
    // are 62.5, 5400000 are 125 to the tick, 10800000 are 250.
    NavSpec given;
    given.vobus = evenUnits(300, 28800);
    const NavRun run = setupTitle(given);
    const std::string expected =
        "C00000FA C000007D C000003E C0000014 8000000F 8000000E 8000000D 8000000C 8000000B 8000000A "
        "80000009 80000008 80000007 80000006 80000005 80000004 80000003 80000002 80000001";
    EXPECT_EQ(run.words(0, FORWARD), expected);
    EXPECT_EQ(run.words(49, FORWARD), expected);
}

TEST(NavSearch, AllDistancesBackward)
{
    NavSpec given;
    given.vobus = evenUnits(300, 28800);
    const NavRun run = setupTitle(given);
    const std::string expected =
        "80000002 80000003 80000004 80000005 80000006 80000007 80000008 80000009 8000000A 8000000B "
        "8000000C 8000000D 8000000E 8000000F 80000010 C0000015 C000003F C000007D C00000FA";
    EXPECT_EQ(run.words(299, BACKWARD), expected);
    EXPECT_EQ(run.words(250, BACKWARD), expected);   // 120 s back lies the first unit, to the tick
}

TEST(NavSearch, SectorsNotUnitsAreCounted)
{
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 3, .firstPts = 28800 },
                                { .sector = 10, .firstPts = 72000 },
                                { .sector = 50, .firstPts = 115200 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(forward(run, 3, 0), "80000007");     // 73800
    EXPECT_EQ(forward(run, 3, 1), "8000002F");     // 118800
    EXPECT_EQ(backward(run, 50, 0), "8000002F");   // 70200
    EXPECT_EQ(backward(run, 50, 1), "3FFFFFFF");   // 25200
    EXPECT_EQ(run.words(10, 1345, 2), "80000028 80000007");
    EXPECT_EQ(run.words(10, 1265, 1), "80000028");
    EXPECT_EQ(run.words(10, 1429, 1), "80000007");
}

TEST(NavSearch, SpanIncludesItsStartAndNotItsEnd)
{
    // The second unit of ten frames begins exactly 0.5 s behind the first, and the third exactly 1 s.
    const auto second = [](uint64_t start, uint64_t pictures) {
        NavSpec given;
        given.vobus = unitRecords({ { .sector = 0, .firstPts = 100000 },
                                    { .sector = 1, .firstPts = start, .pictureCount = pictures },
                                    { .sector = 2, .firstPts = 900000 } });
        return forward(setupTitle(given), 0, 0);
    };
    EXPECT_EQ(second(145000, 1), "80000001");
    EXPECT_EQ(second(145001, 1), "3FFFFFFF");
    EXPECT_EQ(second(145000 - 3599, 1), "80000001");
    EXPECT_EQ(second(145000 - 3600, 1), "3FFFFFFF");
    EXPECT_EQ(second(145000 - 3600, 2), "80000001");
    EXPECT_EQ(second(145000, 0), "3FFFFFFF");   // no picture, no span
}

TEST(NavSearch, DisplayStartCountsNotThePts)
{
    NavSpec given;
    given.standard = STANDARD_NTSC;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 100000 + 2 * 3003, .temporalRef = 2 },
                                { .sector = 1, .firstPts = 145000 + 5 * 3003, .pictureCount = 1, .temporalRef = 5 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(forward(run, 0, 0), "80000001");
    EXPECT_EQ(backward(run, 1, 0), "80000001");
}

TEST(NavSearch, OwnUnitIsNoTarget)
{
    // A long unit: half a second on it still shows, and the next one is not reached.
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 0, .pictureCount = 30 },
                                { .sector = 1, .firstPts = 108000, .pictureCount = 30 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(forward(run, 0, 0), "3FFFFFFF");   // 45000
    EXPECT_EQ(forward(run, 0, 1), "3FFFFFFF");   // 90000
    EXPECT_EQ(forward(run, 0, 2), "80000001");   // 135000
    EXPECT_EQ(backward(run, 1, 0), "80000001");
}

// ---- hits that compete -------------------------------------------------------------------------------------------

TEST(NavSearch, FirstOfSeveralForwardLastOfSeveralBackward)
{
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 1000000 },
                                { .sector = 1, .firstPts = 1030000, .pictureCount = 20 },
                                { .sector = 2, .firstPts = 1040000, .pictureCount = 20 },
                                { .sector = 3, .firstPts = 1035000, .pictureCount = 20 },
                                { .sector = 4, .firstPts = 1095000, .pictureCount = 20 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(forward(run, 0, 0), "80000001");    // 1045000 lies in 1, 2 and 3
    EXPECT_EQ(forward(run, 0, 1), "80000001");    // 1090000 too
    EXPECT_EQ(backward(run, 4, 0), "80000001");   // 1050000: the nearest of the three
    EXPECT_EQ(backward(run, 4, 1), "80000004");   // 1005000
}

TEST(NavSearch, StartTimesThatFallBack)
{
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 500000 },
                                { .sector = 1, .firstPts = 100000 },
                                { .sector = 2, .firstPts = 540000 },
                                { .sector = 3, .firstPts = 140000 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(forward(run, 0, 0), "80000002");    // 545000
    EXPECT_EQ(forward(run, 1, 0), "80000002");    // 145000
    EXPECT_EQ(backward(run, 2, 0), "3FFFFFFF");   // 495000
    EXPECT_EQ(backward(run, 3, 0), "3FFFFFFF");   // 95000
}

TEST(NavSearch, TargetBelowZeroMatchesNothing)
{
    // The first unit's own start lies below 0, so that its span begins near 2^64 and ends at 36000.
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 3600, .temporalRef = 3 },
                                { .sector = 1, .firstPts = 36000 },
                                { .sector = 2, .firstPts = 79200 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.hexAt(0, 57, 8), "FF FF E3 E0 00 00 8C A0");   // -7200, 36000
    for (uint64_t k = 0; k < 19; k++) EXPECT_EQ(backward(run, 1, k), "3FFFFFFF") << k;
    EXPECT_EQ(backward(run, 2, 0), "3FFFFFFF");   // 34200 lies in a span that wraps: no number is in it
    EXPECT_EQ(backward(run, 2, 1), "3FFFFFFF");
    EXPECT_EQ(forward(run, 0, 0), "80000001");   // -7200 + 45000
}

// ---- cells and VOBs ----------------------------------------------------------------------------------------------

TEST(NavSearch, NothingLeavesTheCellOrTheVob)
{
    NavSpec given;
    given.vobus = evenUnits(9, 28800);
    for (uint64_t i = 0; i < 9; i++) {
        given.vobus[i].cellId = i < 3 ? 1 : 2;
        given.vobus[i].vobId = i < 6 ? 1 : 2;
    }
    const NavRun run = setupTitle(given);
    // Cells: 0 1 2, 3 4 5 in the first VOB, 6 7 8 in the second.
    for (uint64_t i = 0; i < 9; i++) {
        SCOPED_TRACE(i);
        const bool last = i % 3 == 2, first = i % 3 == 0;
        EXPECT_EQ(run.words(i, 1265, 1), last ? "BFFFFFFF" : "80000001");
        EXPECT_EQ(run.words(i, 1345, 1), last ? "3FFFFFFF" : "80000001");
        EXPECT_EQ(run.words(i, 1349, 1), first ? "3FFFFFFF" : "80000001");
        EXPECT_EQ(run.words(i, 1429, 1), first ? "BFFFFFFF" : "80000001");
        EXPECT_EQ(forward(run, i, 0), last ? "3FFFFFFF" : "80000001");
        EXPECT_EQ(forward(run, i, 1), first ? "80000002" : "3FFFFFFF");
        EXPECT_EQ(backward(run, i, 0), last ? "80000002" : "3FFFFFFF");
        EXPECT_EQ(backward(run, i, 1), "3FFFFFFF");
    }
}

TEST(NavSearch, MarkBehindTheLastHit)
{
    // One cell of n units: which entries of 7.5, 10, 30, 60 and 120 s stand where.
    const struct {
        uint64_t units;
        const char* far;   // k 18, 17, 16, 15, 14 of the first unit
    } rows[] = {
        { 15, "3FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF" },
        { 16, "3FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF 8000000F" },   // the hit is the cell's last
        { 17, "3FFFFFFF 3FFFFFFF 3FFFFFFF 7FFFFFFF 8000000F" },
        { 20, "3FFFFFFF 3FFFFFFF 3FFFFFFF 7FFFFFFF 8000000F" },
        { 21, "3FFFFFFF 3FFFFFFF 3FFFFFFF C0000014 8000000F" },
        { 22, "3FFFFFFF 3FFFFFFF 7FFFFFFF C0000014 8000000F" },
        { 63, "3FFFFFFF 3FFFFFFF C000003E C0000014 8000000F" },
        { 64, "3FFFFFFF 7FFFFFFF C000003E C0000014 8000000F" },
        { 126, "3FFFFFFF C000007D C000003E C0000014 8000000F" },
        { 127, "7FFFFFFF C000007D C000003E C0000014 8000000F" },
        { 250, "7FFFFFFF C000007D C000003E C0000014 8000000F" },
        { 251, "C00000FA C000007D C000003E C0000014 8000000F" },
        { 252, "C00000FA C000007D C000003E C0000014 8000000F" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.units);
        NavSpec given;
        given.vobus = evenUnits(row.units, 28800);
        EXPECT_EQ(setupTitle(given).words(0, FORWARD, 5), row.far);
    }
}

TEST(NavSearch, MarkBehindTheLastHitBackward)
{
    const struct {
        uint64_t index;
        const char* far;   // k 14 to 18 of that unit
    } rows[] = {
        { 15, "3FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF" },
        { 16, "80000010 3FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF" },   // the hit is the first pack
        { 17, "80000010 7FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF" },
        { 21, "80000010 C0000015 3FFFFFFF 3FFFFFFF 3FFFFFFF" },
        { 22, "80000010 C0000015 7FFFFFFF 3FFFFFFF 3FFFFFFF" },
        { 63, "80000010 C0000015 C000003F 3FFFFFFF 3FFFFFFF" },
        { 64, "80000010 C0000015 C000003F 7FFFFFFF 3FFFFFFF" },
        { 125, "80000010 C0000015 C000003F C000007D 3FFFFFFF" },
        { 126, "80000010 C0000015 C000003F C000007D 7FFFFFFF" },
        { 250, "80000010 C0000015 C000003F C000007D C00000FA" },
    };
    NavSpec given;
    given.vobus = evenUnits(251, 28800);
    const NavRun run = setupTitle(given);
    for (const auto& row : rows) EXPECT_EQ(run.words(row.index, BACKWARD + 4 * 14, 5), row.far) << row.index;
}

TEST(NavSearch, HoleBehindAHit)
{
    // 7.5 s on lies a unit, 10 s on a hole, 30 s on a unit again: the mark stands in the hole's entry alone.
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 0 },
                                { .sector = 1, .firstPts = 650000 },
                                { .sector = 2, .firstPts = 2690000 },
                                { .sector = 3, .firstPts = 9000000 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.words(0, FORWARD, 6), "3FFFFFFF 7FFFFFFF C0000002 7FFFFFFF 80000001 3FFFFFFF");
    // 120 s on ends the table: a hit there marks nothing.
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 0 },
                                { .sector = 1, .firstPts = 10790000 },
                                { .sector = 2, .firstPts = 90000000 } });
    EXPECT_EQ(setupTitle(given).words(0, FORWARD, 6), "C0000001 3FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF 3FFFFFFF");
}

TEST(NavSearch, EndsOfALaterCellOfATitle)
{
    // Cells of 20 units from 0 and from 20. In the second, unit 36 finds the cell's first 7.5 s back, 37 the one behind
    // it; unit 24 finds the cell's last 7.5 s on, 23 the one before.
    NavSpec given;
    given.vobus = evenUnits(40, 28800);
    for (uint64_t i = 20; i < 40; i++) given.vobus[i].cellId = 2;
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.words(36, BACKWARD + 4 * 14, 2), "80000010 3FFFFFFF");
    EXPECT_EQ(run.words(37, BACKWARD + 4 * 14, 2), "80000010 7FFFFFFF");
    EXPECT_EQ(run.words(24, FORWARD + 4 * 3, 2), "3FFFFFFF 8000000F");
    EXPECT_EQ(run.words(23, FORWARD + 4 * 3, 2), "7FFFFFFF 8000000F");
    EXPECT_EQ(run.words(4, FORWARD + 4 * 3, 2), "3FFFFFFF 8000000F");   // and in the first
    EXPECT_EQ(run.words(3, FORWARD + 4 * 3, 2), "7FFFFFFF 8000000F");
    EXPECT_EQ(run.words(16, BACKWARD + 4 * 14, 2), "80000010 3FFFFFFF");
}

TEST(NavSearch, CellOverTwoVobsOfATitle)
{
    // The ends are the cell's, the hits the VOB's: the last unit of the first VOB is not the cell's last.
    NavSpec given;
    given.vobus = evenUnits(40, 28800);
    for (uint64_t i = 20; i < 40; i++) given.vobus[i].vobId = 2;
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.words(4, FORWARD + 4 * 3, 2), "7FFFFFFF 8000000F");
    EXPECT_EQ(run.words(24, FORWARD + 4 * 3, 2), "3FFFFFFF 8000000F");
    EXPECT_EQ(run.words(36, BACKWARD + 4 * 14, 2), "80000010 7FFFFFFF");
}

TEST(NavSearch, EndsInAMenuAreThoseOfTheFile)
{
    // Two VOBs of one cell number: the last-sector value is the file's last, the first-sector value 0.
    NavSpec given;
    given.vobus = evenUnits(40, 28800);
    for (uint64_t i = 20; i < 40; i++) given.vobus[i].vobId = 2;
    given.menus = plainMenus(2);
    const NavRun run = setupMenu(given);
    EXPECT_EQ(run.words(4, FORWARD + 4 * 3, 2), "7FFFFFFF 8000000F");   // last of its VOB, not of the file
    EXPECT_EQ(run.words(24, FORWARD + 4 * 3, 2), "3FFFFFFF 8000000F");
    EXPECT_EQ(run.words(16, BACKWARD + 4 * 14, 2), "80000010 3FFFFFFF");
    EXPECT_EQ(run.words(36, BACKWARD + 4 * 14, 2), "80000010 7FFFFFFF");   // first of its VOB, not sector 0
}

TEST(NavSearch, LastSectorOfALoopingMenuIsThatOfItsFirstPart)
{
    // Cells 1 of 20 units and 2 of 20 units: the value stays that of cell 1, 19, also for the units of cell 2.
    NavSpec given;
    given.vobus = evenUnits(40, 28800);
    for (uint64_t i = 20; i < 40; i++) given.vobus[i].cellId = 2;
    given.menus = plainMenus(1);
    const NavRun run = setupMenu(given);
    EXPECT_EQ(run.words(4, FORWARD + 4 * 3, 2), "3FFFFFFF 8000000F");
    EXPECT_EQ(run.words(3, FORWARD + 4 * 3, 2), "7FFFFFFF 8000000F");
    EXPECT_EQ(run.words(24, FORWARD + 4 * 3, 2), "7FFFFFFF 8000000F");   // the last of cell 2 is not unit 19
    EXPECT_EQ(run.words(36, BACKWARD + 4 * 14, 2), "80000010 7FFFFFFF");
}
