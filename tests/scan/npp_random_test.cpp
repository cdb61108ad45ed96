// The engine against the model of the scan: seeded streams in seeded pieces; every result, callback and byte.
#include "base/result.h"
#include "tests/scan/npp_model.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

#include <random>

namespace {

struct Dice {
    std::mt19937_64 source;

    uint64_t below(uint64_t limit)
    {
        return source() % limit;
    }
    bool oneIn(uint64_t count)
    {
        return below(count) == 0;
    }
    uint64_t from(const std::vector<uint64_t>& values)
    {
        return values[below(values.size())];
    }
};

// How the start times of a stream go on.
struct Steps {
    uint64_t ticks;       // from unit to unit
    uint64_t jitter;      // added, below this
    uint64_t jumpOneIn;   // 0: never
    bool falls;           // now and then back, and another VOB where it does
};

Steps randomSteps(Dice& dice)
{
    Steps steps = {};
    steps.ticks = dice.from({ 0, 1, 9009, 22500, 43200, 45000, 45001, 45045, 100000, 900000, 3000000, 10800001 });
    steps.jitter = dice.oneIn(2) ? 0 : 1 + dice.below(50000);
    steps.jumpOneIn = dice.oneIn(2) ? 0 : 5 + dice.below(30);
    steps.falls = dice.oneIn(4);
    return steps;
}

uint64_t randomPacks(Dice& dice, uint64_t habit)
{
    if (habit == 0) return 1;
    if (habit == 1) return 1 + dice.below(5);
    return dice.oneIn(15) ? 760 + dice.below(10) : 1 + dice.below(40);   // one of them does not fit
}

std::string randomElapsed(Dice& dice, uint64_t habit, uint64_t frames)
{
    if (habit == 0) {
        // Rising picture counts, as a multiplexer writes them.
        const uint64_t seconds = frames / 25, rest = frames % 25;
        const auto digits = [](uint64_t n) { return uint8_t(n / 10 * 16 + n % 10); };
        return toHex({ digits(seconds / 3600 % 100), digits(seconds / 60 % 60), digits(seconds % 60),
                       uint8_t(0x40 | digits(rest)) });
    }
    Bytes word;
    for (int i = 0; i < 4; i++) word.push_back(uint8_t(dice.below(256)));
    if (habit == 1) word[3] = uint8_t(0x40 | (word[3] & 0x3F));
    return toHex(word);
}

Bytes randomStream(Dice& dice, uint64_t units)
{
    const Steps steps = randomSteps(dice);
    const uint64_t sizes = units > 200 ? dice.below(2) : dice.from({ 0, 1, 1, 1, 1, 2 });
    const uint64_t times = dice.below(3);
    Bytes stream;
    if (dice.oneIn(6))
        for (uint64_t i = 1 + dice.below(3); i > 0; i--) stream += plainPack(dice.below(100));
    uint64_t start = dice.from({ 0, 28800, 0x7FF00000, 0xFFF00000 }), vob = 1, frames = 0;
    for (uint64_t i = 0; i < units; i++) {
        const std::string elapsed = randomElapsed(dice, times, frames);
        const uint64_t length = dice.oneIn(20) ? dice.source() : steps.ticks + dice.below(4000);
        const ScanUnit unit = { .start = start,
                                .packs = randomPacks(dice, sizes),
                                .length = length,
                                .elapsed = elapsed,
                                .vob = vob,
                                .declaredEnd = dice.oneIn(20) ? std::optional(dice.source()) : std::nullopt };
        stream += unitBytes(unit, stream.size() / PACK_BYTES);
        frames += dice.below(30);
        start += steps.ticks + (steps.jitter ? dice.below(steps.jitter) : 0);
        if (steps.jumpOneIn && dice.oneIn(steps.jumpOneIn)) start += dice.from({ 45000, 1000000, 5400001, 11000000 });
        if (steps.falls && dice.oneIn(12)) start = dice.oneIn(2) ? 0 : start - dice.below(100000);
        if (dice.oneIn(steps.falls ? 12 : 60)) vob = dice.from({ 1, 2, 3, 257 });
    }
    return stream;
}

void damage(Dice& dice, Bytes& stream)
{
    if (dice.oneIn(8)) stream.resize(stream.size() - dice.below(stream.size()));
    if (stream.empty()) return;
    const uint64_t pack = dice.below(stream.size()) / PACK_BYTES * PACK_BYTES;
    if (dice.oneIn(8)) stream[pack + dice.below(4)] ^= 0x20;   // a start code
    const uint64_t mark = pack + dice.from({ 14, 17, 40, 43, 1026, 1029 });
    if (dice.oneIn(4) && mark < stream.size()) stream[mark] ^= 0x01;   // a navigation pack becomes none
}

Cells randomCells(Dice& dice)
{
    if (dice.oneIn(2)) return cellsEvery(dice.from({ 1, 1000, 200000, 900000, 4000000, uint64_t(1) << 33 }));
    Cells cells = { .mode = dice.from({ 1, 1, 1, 2, uint64_t(1) << 40 }), .interval = 0, .list = {} };
    const uint64_t entries = dice.from({ 0, 1, 2, 5, 20, 400 }), step = dice.from({ 1000, 100000, 1000000 });
    for (uint64_t i = 0; i < entries; i++) cells.list.push_back(i * step + dice.below(step));
    if (entries > 1 && dice.oneIn(3)) std::swap(cells.list[dice.below(entries)], cells.list[dice.below(entries)]);
    return cells;
}

struct Tally {
    std::map<uint64_t, uint64_t> results;
    uint64_t units = 0, pointers = 0, early = 0;
};

// The engine and the model side by side.
struct Race {
    Race(Dice& dice, const Cells& cells) : host(cells)
    {
        model.cellMode = cells.mode;
        model.cellInterval = cells.interval;
        model.cellList = cells.list;
        const uint64_t refused = dice.oneIn(8) ? 1 + dice.below(20) : 0;
        host.onUnit = [this, refused](const Bytes&) { return host.units.size() == refused ? uint64_t(0x1234) : 0; };
        model.output = [this, refused](const Bytes& unit) {
            modelUnits.push_back(unit);
            return modelUnits.size() == refused ? uint64_t(0x1234) : 0;
        };
    }

    ScanHost host;
    NppModel model;
    std::vector<Bytes> modelUnits;
    size_t compared = 0;
};

void compareUnits(Race& race)
{
    ASSERT_EQ(race.host.units.size(), race.modelUnits.size());
    for (; race.compared < race.modelUnits.size(); race.compared++) {
        ASSERT_EQ(firstDifferences(race.host.units[race.compared], race.modelUnits[race.compared]), "")
            << "unit " << race.compared;
    }
}

void feedBoth(Race& race, const Bytes& chunk, uint64_t* result)
{
    *result = race.host.feed(chunk);
    ASSERT_EQ(*result, modelFeed(race.model, chunk));
    ASSERT_NO_FATAL_FAILURE(compareUnits(race));
}

void endBoth(Race& race, Tally& tally)
{
    tally.early += race.modelUnits.size();
    const uint64_t result = race.host.end();
    ASSERT_EQ(result, modelEnd(race.model));
    ASSERT_NO_FATAL_FAILURE(compareUnits(race));
    tally.results[result]++;
#ifdef _WIN32
    if (result != 0) return;   // the file is still open
#endif
    ASSERT_EQ(firstDifferences(race.host.file(), modelFile(race.model)), "");
}

void race(uint64_t seed, uint64_t units, Tally& tally)
{
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice{ std::mt19937_64(seed) };
    Bytes stream = randomStream(dice, units);
    if (dice.oneIn(3)) damage(dice, stream);
    const Cells cells = randomCells(dice);
    Race race(dice, cells);
    const uint64_t largest = dice.from({ units < 30 ? 100u : 3000u, 2048, 2049, 10000, 200000, 4000000 });
    for (uint64_t at = 0, size = 0; at < stream.size(); at += size) {
        size = dice.oneIn(3) ? largest : 1 + dice.below(largest);
        size = std::min<uint64_t>(size, stream.size() - at);
        uint64_t result = 0;
        ASSERT_NO_FATAL_FAILURE(feedBoth(race, slice(stream, at, size), &result));
        tally.results[result]++;
        if (result != 0) break;
        if (dice.oneIn(10)) {
            ASSERT_EQ(race.host.held(), modelHeld(race.model));
        }
    }
    ASSERT_NO_FATAL_FAILURE(endBoth(race, tally));
    tally.units += race.modelUnits.size();
    for (const Bytes& unit : race.modelUnits)
        for (uint64_t at = 1269; at < 1429; at += 4) tally.pointers += unit[at] == 0x80;
}

TEST(NppRandom, EngineAndModelAgree)
{
    Tally tally;
    for (uint64_t seed = 1; seed <= 400; seed++) {
        const uint64_t units = seed % 40 == 0 ? 1100 : seed % 10 == 0 ? 400 : 1 + seed % 61;
        ASSERT_NO_FATAL_FAILURE(race(seed, units, tally));
    }
    // The seeds are worth their time: units that leave early, pointers of all kinds, and each fault.
    EXPECT_GT(tally.units, 10000u);
    EXPECT_GT(tally.early, 5000u);
    EXPECT_GT(tally.pointers, 100000u);
    for (const uint64_t result : { uint64_t(0), ORV_NOT_A_PACK, ORV_MUX_OVERFLOW, uint64_t(0x1234) })
        EXPECT_GT(tally.results[result], 3u) << std::hex << result;
}

}   // namespace
