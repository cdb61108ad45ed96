// Elapsed time within the cell, both words of it, and the rate that its flag tells.
#include "base/result.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

struct TimeCase {
    uint64_t start;              // ticks
    std::string_view elapsed;    // as multiplexed
    std::string_view expected;   // as scanned
};

void expectTimes(const Cells& cells, const std::vector<TimeCase>& cases)
{
    std::vector<ScanUnit> units;
    for (const TimeCase& each : cases) units.push_back({ .start = each.start, .elapsed = each.elapsed });
    ScanHost host(cells);
    ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf(units)));
    const Bytes output = host.output();
    ASSERT_EQ(output.size(), cases.size() * PACK_BYTES);
    for (uint64_t i = 0; i < cases.size(); i++) {
        EXPECT_EQ(hexAt(output, i * PACK_BYTES + 69, 4), cases[i].expected) << "PCI of unit " << i;
        EXPECT_EQ(hexAt(output, i * PACK_BYTES + 1059, 4), cases[i].expected) << "DSI of unit " << i;
    }
}

TEST(NppTimes, CountFromTheCellsFirstUnit)
{
    expectTimes(cellsEvery(1000), {
                                      { 0, "00 00 10 45", "00 00 00 40" },      // 255 pictures
                                      { 1, "00 00 10 57", "00 00 00 52" },      // 267: 12
                                      { 2, "00 00 12 45", "00 00 02 40" },      // 305: 50
                                      { 3, "01 02 03 64", "01 01 53 59" },      // 3723 s and 24, less 10 s and 5
                                      { 1000, "01 02 03 64", "00 00 00 40" },   // the next cell
                                      { 1001, "01 02 04 40", "00 00 00 41" },
                                      { 5000, "23 59 59 40", "00 00 00 40" },
                                  });
    // A cell that comes again begins again.
    expectTimes(cellsEvery(1000), { { 0, "00 00 10 45", "00 00 00 40" },
                                    { 1000, "00 00 10 46", "00 00 00 40" },
                                    { 0, "00 00 10 50", "00 00 00 40" },
                                    { 1, "00 00 10 52", "00 00 00 42" } });
}

// The first word counts, whatever the second says.
TEST(NppTimes, TheSecondPacketFollowsTheFirst)
{
    ScanHost host;
    const Bytes stream = streamOf({ { .start = 0, .elapsed = "00 00 00 50", .elapsedDsi = "00 00 09 40" },
                                    { .start = 1, .elapsed = "00 00 00 62", .elapsedDsi = "00 00 00 C0" } });
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream));
    const Bytes output = host.output();
    EXPECT_EQ(hexAt(output, 69, 4), "00 00 00 40");
    EXPECT_EQ(hexAt(output, 1059, 4), "00 00 00 40");
    EXPECT_EQ(hexAt(output, PACK_BYTES + 69, 4), "00 00 00 52");   // 22 less 10
    EXPECT_EQ(hexAt(output, PACK_BYTES + 1059, 4), "00 00 00 52");
}

// A multiplexer writes the form of 25 pictures for 30 too, and so the scan reckons: 12 pictures of 3003 ticks are ten.
// Only the flag 11 makes it count by 30; the flags 00 and 10 have no pictures but are taken for 30 as well.
TEST(NppTimes, RateFlagDecidesAlone)
{
    expectTimes({}, { { 0, "00 00 00 40", "00 00 00 40" }, { 36036, "00 00 01 45", "00 00 01 45" } });   // 30 pictures
    expectTimes({}, { { 0, "00 00 10 C5", "00 00 00 C0" },                                               // 305
                      { 1, "00 00 10 D7", "00 00 00 D2" },                                               // 317
                      { 2, "00 00 11 C5", "00 00 01 C0" } });                                            // 335
    expectTimes({}, { { 0, "00 00 10 05", "00 00 00 C0" }, { 1, "00 00 10 17", "00 00 00 C0" } });
    expectTimes({}, { { 0, "00 00 10 85", "00 00 00 C0" }, { 1, "12 34 56 97", "00 00 00 C0" } });

    const struct {
        std::string_view elapsed;
        uint64_t length, pictures;
    } cases[] = {
        { "00 00 00 40", 36036, 10 }, { "00 00 00 C0", 36036, 12 }, { "00 00 00 00", 36036, 12 },
        { "00 00 00 80", 36036, 12 }, { "00 00 00 40", 43199, 11 }, { "00 00 00 40", 43200, 12 },
        { "00 00 00 C0", 36035, 11 }, { "00 00 00 40", 0, 0 },
    };
    for (const auto& each : cases) {
        ScanHost host;
        ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf({ { .length = each.length, .elapsed = each.elapsed } })));
        EXPECT_EQ(host.recordField(0, 4), each.pictures) << each.elapsed << " " << each.length;
    }
}

// Rates may change within a cell; the count at which the cell began stays.
TEST(NppTimes, EachUnitHasItsOwnRate)
{
    expectTimes({}, { { 0, "00 00 01 40", "00 00 00 40" },      // 25
                      { 1, "00 00 01 C5", "00 00 00 D0" },      // 35: 10
                      { 2, "00 00 02 45", "00 00 01 45" } });   // 55: 30
}

// Tens of the frames are of two bits; the other digits are taken as they stand.
TEST(NppTimes, DigitsAsTheyStand)
{
    expectTimes(cellsEvery(10), { { 0, "00 00 00 40", "00 00 00 40" },
                                  { 1, "00 00 00 7F", "00 00 01 60" },   // 3 tens and 15: 45
                                  { 2, "00 00 0F 40", "00 00 15 40" },
                                  { 3, "00 00 F0 40", "00 02 30 40" },   // 150 s
                                  { 4, "00 0A 00 40", "00 10 00 40" },
                                  { 5, "F0 00 00 40", "F0 00 00 40" },   // 150 h
                                  { 6, "99 59 59 64", "99 59 59 64" } });
}

// Counts that fall within a cell: the difference is one of 64 bits without a sign, of which the word keeps what fits.
// 2^64 - 10 pictures at 25 are 737869762948382064 s and 6; at 30, 614891469123651720 s and 6.
TEST(NppTimes, FallingCounts)
{
    expectTimes({}, { { 0, "00 00 01 40", "00 00 00 40" }, { 1, "00 00 00 55", "97 14 24 46" } });
    expectTimes({}, { { 0, "00 00 00 50", "00 00 00 40" }, { 1, "00 00 00 00", "01 02 00 C6" } });
}

// Cell numbers that share their low byte are still two cells to the clock.
TEST(NppTimes, TheWholeCellNumberStartsTheClock)
{
    expectTimes(cellsEvery(100), { { 0, "00 00 01 40", "00 00 00 40" },       // cell 1
                                   { 25600, "00 00 02 40", "00 00 00 40" },   // cell 257
                                   { 25601, "00 00 02 41", "00 00 00 41" } });
}

// The other VOB goes on with the time of the cell.
TEST(NppTimes, AnotherVobDoesNotStartTheClock)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(
        runScan(host, streamOf({ { .elapsed = "00 00 01 40", .vob = 1 }, { .elapsed = "00 00 01 42", .vob = 2 } })));
    EXPECT_EQ(hexAt(host.output(), PACK_BYTES + 69, 4), "00 00 00 42");
}

}   // namespace
