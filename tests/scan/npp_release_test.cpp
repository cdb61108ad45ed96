// When units leave the scan, in which order, what stops them, and how many bytes wait.
#include "base/result.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

/** Feeds units one by one; what has come out after each. */
std::vector<uint64_t> countsAfterEach(ScanHost& host, const std::vector<ScanUnit>& units)
{
    std::vector<uint64_t> counts;
    uint64_t pack = 0;
    for (const ScanUnit& unit : units) {
        EXPECT_EQ(host.feed(unitBytes(unit, pack)), 0u);
        counts.push_back(host.units.size());
        pack += unit.packs;
    }
    return counts;
}

/** That the units that came out are these, whole and in order. */
void expectUnits(const ScanHost& host, const std::vector<ScanUnit>& units)
{
    ASSERT_EQ(host.units.size(), units.size());
    uint64_t pack = 0;
    for (uint64_t i = 0; i < units.size(); i++) {
        const Bytes expected = unitBytes(units[i], pack);
        ASSERT_EQ(host.units[i].size(), expected.size()) << "unit " << i;
        EXPECT_EQ(hexAt(host.units[i], 0, 69), hexAt(expected, 0, 69)) << "unit " << i;
        EXPECT_EQ(firstDifferences(slice(host.units[i], PACK_BYTES, expected.size()),
                                   slice(expected, PACK_BYTES, expected.size())),
                  "")
            << "unit " << i;
        pack += units[i].packs;
    }
}

// A unit leaves when the first one that lies more than two minutes behind has closed.
TEST(NppRelease, TwoMinutesAreHeld)
{
    const struct {
        uint64_t ticks, needed;
    } cases[] = { { 45001, 240 }, { 45000, 241 } };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.ticks);
        ScanHost host;
        const std::vector<ScanUnit> units = evenUnits(each.needed + 4, each.ticks);
        const std::vector<uint64_t> counts = countsAfterEach(host, units);
        for (uint64_t i = 0; i <= each.needed; i++) EXPECT_EQ(counts[i], 0u) << i;
        EXPECT_EQ(counts[each.needed + 1], 1u);   // the next one closes it
        EXPECT_EQ(counts[each.needed + 2], 2u);
        EXPECT_EQ(counts[each.needed + 3], 3u);
        EXPECT_EQ(host.end(), 0u);
        expectUnits(host, units);
    }
}

TEST(NppRelease, AtACellChangeOneUnitLeavesAStep)
{
    std::vector<ScanUnit> units;
    for (uint64_t i = 0; i < 4; i++) units.push_back({ .start = i, .packs = i + 1 });
    for (uint64_t i = 0; i < 7; i++) units.push_back({ .start = 1000 + i, .packs = i % 3 + 1 });
    ScanHost host(cellsEvery(1000));
    // The first unit of the new cell has to close before the old one's leave; those of the new cell stay.
    EXPECT_EQ(countsAfterEach(host, units), (std::vector<uint64_t>{ 0, 0, 0, 0, 0, 1, 2, 3, 4, 4, 4 }));
    EXPECT_EQ(host.end(), 0u);
    expectUnits(host, units);
}

TEST(NppRelease, AVobChangeIsLikeACellChange)
{
    ScanHost host;
    const std::vector<ScanUnit> units = { { .vob = 1 }, { .vob = 1 }, { .vob = 2 }, { .vob = 2 },
                                          { .vob = 3 }, { .vob = 3 }, { .vob = 3 }, { .vob = 3 } };
    EXPECT_EQ(countsAfterEach(host, units), (std::vector<uint64_t>{ 0, 0, 0, 1, 2, 3, 4, 4 }));
    EXPECT_EQ(host.end(), 0u);
    expectUnits(host, units);
}

// Units that are ready together still leave one by one: the rest stays behind until the end.
TEST(NppRelease, ABacklogStays)
{
    ScanHost host;
    std::vector<ScanUnit> units(5);
    for (uint64_t i = 1; i <= 4; i++) units.push_back({ .start = 11000000 * i, .packs = 2 });
    EXPECT_EQ(countsAfterEach(host, units), (std::vector<uint64_t>{ 0, 0, 0, 0, 0, 0, 1, 2, 3 }));
    EXPECT_EQ(host.end(), 0u);
    expectUnits(host, units);
}

// Units of the first cell still wait when that cell comes again; those of the cell in between, which could go, do not
// overtake them, and none is lost.
TEST(NppRelease, NothingOvertakes)
{
    std::vector<ScanUnit> units;
    for (uint64_t i = 0; i < 6; i++) units.push_back({ .start = i, .packs = i + 1 });
    for (uint64_t i = 0; i < 3; i++) units.push_back({ .start = 1000 + i });   // the second cell
    for (uint64_t i = 0; i < 6; i++) units.push_back({ .start = 10 + i });     // the first again
    units.push_back({ .start = 2000 });
    units.push_back({ .start = 2001 });
    ScanHost host(cellsEvery(1000));
    // Two leave as the second cell's units close, a third with the last of them; then the first cell's rest waits.
    EXPECT_EQ(countsAfterEach(host, units),
              (std::vector<uint64_t>{ 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 3, 3, 3, 3, 3, 3, 4 }));
    EXPECT_EQ(host.end(), 0u);
    expectUnits(host, units);
}

// A pack that closes nothing lets nothing out.
TEST(NppRelease, OnlyAClosingUnitLetsOthersOut)
{
    ScanHost host;
    std::vector<ScanUnit> units(3);
    units.push_back({ .start = 11000000 });
    units.push_back({ .start = 22000000 });
    EXPECT_EQ(host.feed(streamOf(units)), 0u);
    EXPECT_EQ(host.units.size(), 1u);
    for (uint64_t i = 5; i < 20; i++) EXPECT_EQ(host.feed(plainPack(i)), 0u);
    EXPECT_EQ(host.units.size(), 1u);
    EXPECT_EQ(host.end(), 0u);
    EXPECT_EQ(host.units.size(), 5u);
}

// ---- a host that refuses ----------------------------------------------------------------------------------------

constexpr uint64_t REFUSED = 0x4711;

std::function<uint64_t(const Bytes&)> refuse(const ScanHost& host, uint64_t unit, uint64_t result = REFUSED)
{
    return [&host, unit, result](const Bytes&) { return host.units.size() == unit + 1 ? result : 0; };
}

// What was refused can't be had again: the end fails and nothing more comes out.
TEST(NppRelease, ARefusedUnitEndsAll)
{
    std::vector<ScanUnit> units;
    for (uint64_t i = 0; i < 8; i++) units.push_back({ .start = i * 11000000, .packs = 2 });
    for (const uint64_t refused : std::vector<uint64_t>{ 0, 1, 3 }) {
        SCOPED_TRACE(refused);
        ScanHost host;
        host.onUnit = refuse(host, refused);
        EXPECT_EQ(host.feed(streamOf(units)), REFUSED);
        EXPECT_EQ(host.units.size(), refused + 1);
        host.onUnit = nullptr;
        EXPECT_EQ(host.end(), 0x84000BC9u);
        EXPECT_EQ(host.end(), 0x84000BC9u);
        EXPECT_EQ(host.units.size(), refused + 1);
        ASSERT_NE(host.handle, nullptr);
    }
}

TEST(NppRelease, RefusedAtTheEnd)
{
    std::vector<ScanUnit> units;
    for (uint64_t i = 0; i < 6; i++) units.push_back({ .start = i, .packs = i + 1 });
    for (const uint64_t refused : std::vector<uint64_t>{ 0, 2, 5 }) {
        SCOPED_TRACE(refused);
        ScanHost host;
        host.onUnit = refuse(host, refused);
        EXPECT_EQ(host.feed(streamOf(units)), 0u);
        EXPECT_TRUE(host.units.empty());
        EXPECT_EQ(host.end(), REFUSED);
        EXPECT_EQ(host.units.size(), refused + 1);
        host.onUnit = nullptr;
        EXPECT_EQ(host.end(), 0x84000BC9u);
        EXPECT_EQ(host.units.size(), refused + 1);
    }
}

TEST(NppRelease, TheHostsResultComesBackWhole)
{
    for (const uint64_t result : { uint64_t(1), uint64_t(0x84000BBE), uint64_t(5) << 32, ~uint64_t(0) }) {
        ScanHost host;
        host.onUnit = refuse(host, 0, result);
        EXPECT_EQ(host.feed(streamOf({ {} })), 0u);
        EXPECT_EQ(host.end(), result);
    }
}

// ---- limits -----------------------------------------------------------------------------------------------------

TEST(NppRelease, AUnitOf768Packs)
{
    const std::vector<ScanUnit> units = { { .start = 0, .packs = 768 }, { .start = 1, .packs = 768 } };
    ScanHost host;
    EXPECT_EQ(host.feed(streamOf(units), 1 << 20), 0u);
    EXPECT_EQ(host.held(), 2 * 768 * PACK_BYTES - 1);
    EXPECT_EQ(host.end(), 0u);
    expectUnits(host, units);
    EXPECT_EQ(wordsAt(host.units[0], 1345, 1), "80000300");
}

// The pack that does not fit is counted but comes out nowhere.
TEST(NppRelease, AUnitOf769Packs)
{
    for (const bool second : { false, true }) {
        SCOPED_TRACE(second);
        ScanHost host;
        const Bytes stream = second ? streamOf({ { .packs = 3 }, { .packs = 768 } }) : streamOf({ { .packs = 768 } });
        EXPECT_EQ(host.feed(stream), 0u);
        EXPECT_EQ(host.feed(plainPack(0)), 0x84000BC9u);
        EXPECT_EQ(host.end(), 0u);
        EXPECT_EQ(host.units.size(), second ? 2u : 1u);
        EXPECT_EQ(host.output().size(), stream.size());
        EXPECT_EQ(toHex(slice(host.file(), 0, 8)), second ? "01 00 00 00 04 03 00 00" : "01 00 00 00 01 03 00 00");
    }
}

TEST(NppRelease, PacksBeforeTheFirstNavigationHaveTheLimitToo)
{
    ScanHost host;
    for (uint64_t i = 0; i < 768; i++) ASSERT_EQ(host.feed(plainPack(i)), 0u);
    EXPECT_EQ(host.feed(unitBytes({}, 768)), 0u);   // closes them
    EXPECT_EQ(host.end(), 0u);
    ASSERT_EQ(host.units.size(), 2u);
    EXPECT_EQ(host.units[0].size(), 768 * PACK_BYTES);

    ScanHost other;
    for (uint64_t i = 0; i < 768; i++) ASSERT_EQ(other.feed(plainPack(i)), 0u);
    EXPECT_EQ(other.feed(plainPack(768)), 0x84000BC9u);
}

TEST(NppRelease, ThousandAnd24UnitsAreHeld)
{
    ScanHost host;
    const std::vector<ScanUnit> units = evenUnits(1024, 1);
    EXPECT_EQ(host.feed(streamOf(units)), 0u);
    EXPECT_EQ(host.end(), 0u);
    expectUnits(host, units);
    EXPECT_EQ(wordsAt(host.units[1023], 1353, 1), "800003FF");   // the walk reached the first
}

TEST(NppRelease, OneUnitMoreIsTooMany)
{
    ScanHost atEnd;
    EXPECT_EQ(atEnd.feed(streamOf(evenUnits(1025, 1))), 0u);   // the last is not closed yet
    EXPECT_EQ(atEnd.end(), 0x84000BC9u);
    EXPECT_TRUE(atEnd.units.empty());

    ScanHost inside;
    const Bytes stream = streamOf(evenUnits(1026, 1));
    EXPECT_EQ(inside.feed(slice(stream, 0, 1025 * PACK_BYTES)), 0u);
    EXPECT_EQ(inside.feed(slice(stream, 1025 * PACK_BYTES, PACK_BYTES)), 0x84000BC9u);
    EXPECT_TRUE(inside.units.empty());
}

// Places in the ring come free again: many more units than 1024 pass.
TEST(NppRelease, TheRingGoesRound)
{
    ScanHost host;
    const std::vector<ScanUnit> units = evenUnits(2600, 108000);   // 101 are held
    ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf(units)));
    expectUnits(host, units);
    EXPECT_EQ(wordsAt(host.units[1500], 1269, 1), "80000065");
    EXPECT_EQ(wordsAt(host.units[1023], 1345, 2), "80000001*2");
    EXPECT_EQ(wordsAt(host.units[1024], 1345, 2), "80000001*2");
}

// ---- how much is held -------------------------------------------------------------------------------------------

// The block of the unit that is being collected is not there yet and counts as less than nothing.
TEST(NppBuffer, IsOneBelowWhatIsHeld)
{
    ScanHost host;
    EXPECT_EQ(host.held(), ~uint64_t(0));
    const Bytes first = unitBytes({ .start = 0, .packs = 2 }, 0);
    EXPECT_EQ(host.feed(slice(first, 0, 2047)), 0u);   // a part of a pack does not count
    EXPECT_EQ(host.held(), ~uint64_t(0));
    EXPECT_EQ(host.feed(slice(first, 2047, 1)), 0u);
    EXPECT_EQ(host.held(), 2047u);
    EXPECT_EQ(host.feed(slice(first, 2048, 2048)), 0u);
    EXPECT_EQ(host.held(), 4095u);
    EXPECT_EQ(host.feed(unitBytes({ .start = 11000000, .packs = 3 }, 2)), 0u);
    EXPECT_EQ(host.held(), 5 * 2048u - 1);
    EXPECT_EQ(host.feed(unitBytes({ .start = 22000000, .packs = 1 }, 5)), 0u);
    EXPECT_EQ(host.units.size(), 1u);
    EXPECT_EQ(host.held(), 4 * 2048u - 1);   // two packs have left
    EXPECT_EQ(host.feed(slice(plainPack(6), 0, 1000)), 0u);
    EXPECT_EQ(host.held(), 4 * 2048u - 1);
}

// A refused unit is still held.
TEST(NppBuffer, HoldsWhatWasRefused)
{
    ScanHost host(cellsEvery(1000));
    host.onUnit = refuse(host, 0);
    EXPECT_EQ(host.feed(unitBytes({ .start = 0, .packs = 2 }, 0) + unitBytes({ .start = 1000, .packs = 3 }, 2)), 0u);
    EXPECT_EQ(host.held(), 5 * 2048u - 1);
    EXPECT_EQ(host.feed(unitBytes({ .start = 1001 }, 5)), REFUSED);
    // Two packs and three in blocks; the three are in the collecting buffer too, and no block is missing.
    EXPECT_EQ(host.held(), 8 * 2048u);
}

}   // namespace
