// Censuses of regions, the index over a census under way, and the order that a census is brought into.
#include "menu/color_census.h"

#include "base/memory.h"
#include "base/result.h"
#include "tests/menu/menu_reference.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <random>
#include <sstream>

namespace {

constexpr uint64_t PIXELS_OF_PAL = 720 * 576;
// A release build takes a few hundredths of a second; the rest is for sanitizers and busy machines.
#ifdef NDEBUG
constexpr double LIMIT_SECONDS = 2;
#else
constexpr double LIMIT_SECONDS = 20;
#endif

// "3x1 2xFF0000": counts and values.
std::string text(const ColorCount* list, uint64_t entries)
{
    std::ostringstream all;
    for (uint64_t i = 0; i < entries; i++) {
        all << (i ? " " : "") << std::dec << list[i].count << "x" << std::hex << std::uppercase << list[i].value;
    }
    return all.str();
}

struct Region {
    uint64_t x, storedRow, width, height, rowGap;
};

// Census of a region as text.
std::string census(const Bytes& pixels, uint64_t bits, const Region& r)
{
    ColorCount* list = nullptr;
    const uint64_t result =
        orvCountBitmapColors(pixels.data(), bits, r.x, r.storedRow, r.width, r.height, r.rowGap, &list);
    if (result) return "fault";
    const std::string found = text(list, osListCount(list));
    osFreeMem(&list);
    return found;
}

const char BYTES[] = "00 01 02 03 04 05"   // the bottom line
                     "06 06 07 07 08 08"
                     "01 01 01 02 02 09"
                     "09 09 09 09 09 09";   // the top line
// clang-format off
const struct {
    const char* what;
    Region region;
    const char* found;
} BYTE_REGIONS[] = {
    // what                         x row  w  h gap
    { "one pixel",                { 3, 1,  1, 1, 5 }, "1x7" },
    { "one row",                  { 0, 0,  6, 1, 0 }, "1x0 1x1 1x2 1x3 1x4 1x5" },
    { "lower row first",          { 1, 1,  3, 2, 3 }, "1x6 2x7 2x1 1x2" },   // 06 07 07, 01 01 02
    { "up to the last pixel",     { 4, 2,  2, 2, 4 }, "1x2 3x9" },           // 02 09, 09 09
    { "a column",                 { 5, 0,  1, 4, 5 }, "1x5 1x8 2x9" },
    { "all",                      { 0, 0,  6, 4, 0 }, "1x0 4x1 3x2 1x3 1x4 1x5 2x6 2x7 2x8 7x9" },
    { "no columns",               { 2, 1,  0, 2, 6 }, "" },
    { "no rows",                  { 2, 1,  3, 0, 3 }, "" },
};
// clang-format on

// Blue, green, red, alpha.
const char COLORS[] = "01 02 03 FF  01 02 03 20  00 00 00 FF"    // 030201 twice, opaque black
                      "09 00 00 1F  00 00 00 00  00 00 00 20"    // two transparent ones, black that can just be seen
                      "FF 00 00 FF  00 FF 00 1F  00 00 FF 80"    // 0000FF, a transparent one, FF0000
                      "00 00 00 1F  01 02 03 00  07 07 07 1F";   // all transparent
// clang-format off
const struct {
    const char* what;
    Region region;
    const char* found;
} PIXEL_REGIONS[] = {
    // what                           x row  w  h gap
    { "alpha of a colour is alike", { 0, 0,  2, 1, 1 }, "0x0 2x30201" },
    { "nothing is transparent",     { 0, 0,  3, 1, 0 }, "0x0 2x30201 1x0" },
    { "black is counted apart",     { 1, 1,  2, 1, 1 }, "1x0 1x0" },
    { "transparent alone",          { 0, 3,  3, 1, 0 }, "3x0" },
    { "lower row first",            { 0, 1,  3, 2, 0 }, "3x0 1x0 1xFF 1xFF0000" },
    { "a column",                   { 2, 0,  1, 4, 2 }, "1x0 2x0 1xFF0000" },
    { "all",                        { 0, 0,  3, 4, 0 }, "6x0 2x30201 2x0 1xFF 1xFF0000" },
    { "no columns",                 { 1, 1,  0, 2, 3 }, "0x0" },
    { "no rows",                    { 0, 1,  3, 0, 0 }, "0x0" },
};
// clang-format on

// A census under way that counts these values, once each; its list as text.
std::string counted(const std::vector<ColorCount>& values)
{
    Census census = {};
    EXPECT_EQ(orvBeginCensus(&census), 0u);
    for (const ColorCount& entry : values) EXPECT_EQ(orvCountValue(&census, entry.value, entry.count), 0u);
    ColorCount* list = nullptr;
    EXPECT_EQ(orvEndCensus(&census, &list), 0u);
    const std::string found = text(list, osListCount(list));
    osFreeMem(&list);
    return found;
}

const struct {
    const char* what;
    std::vector<ColorCount> values;
    const char* found;
} COUNTED[] = {
    { "nothing", {}, "" },
    { "a count of 0 makes an entry", { { 0, 0 } }, "0x0" },
    { "and the next adds to it", { { 0, 0 }, { 5, 0 }, { 0, 0 } }, "5x0" },
    { "first come, first listed", { { 1, 7 }, { 2, 3 }, { 4, 7 }, { 1, 1 }, { 1, 3 } }, "5x7 3x3 1x1" },
    { "large counts", { { 0xFFFFFFFF, 1 }, { 1, 1 } }, "4294967296x1" },
};

double secondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Entries with these counts, each with its place as value.
Counts entriesOf(const std::vector<uint64_t>& counts)
{
    Counts list;
    for (const uint64_t count : counts) list.push_back({ count, list.size() });
    return list;
}

// The letters of the entries in their order: those of the list given were a, b, c and so on.
std::string lettersOf(const Counts& list)
{
    std::string letters;
    for (const ColorCount& entry : list) letters += char('a' + entry.value);
    return letters;
}

const struct {
    const char* what;
    std::vector<uint64_t> counts;   // of a, b, c, ...
    uint64_t first, last;
    const char* order;
} SORTED[] = {
    { "one", { 5 }, 0, 0, "a" },
    { "two", { 1, 2 }, 0, 1, "ba" },
    { "two in order", { 2, 1 }, 0, 1, "ab" },
    { "three", { 5, 3, 9 }, 0, 2, "cab" },
    { "rising", { 1, 2, 3, 4, 5 }, 0, 4, "edcba" },
    { "falling", { 5, 4, 3, 2, 1 }, 0, 4, "abcde" },
    // The pivot a goes to the end, d comes to the front; then d is the pivot of d b c, and c of c b.
    { "two equal", { 4, 4 }, 0, 1, "ba" },
    { "three equal", { 4, 4, 4 }, 0, 2, "bca" },
    { "four equal", { 4, 4, 4, 4 }, 0, 3, "bcda" },
    // a stops at c; then b and a change places, and behind them d and c.
    { "pairs in order", { 3, 3, 2, 2, 1 }, 0, 4, "badce" },
    // Pivot a: d and f change places, then a and e. Before a: pivot e of e b c f, e and b change; then c and f.
    { "mixed", { 2, 3, 2, 1, 3, 2 }, 0, 5, "befcad" },
    // Nothing is below a, so a and c change places; then b and c, which are equal.
    { "the smallest in front", { 3, 5, 5 }, 0, 2, "bca" },
    { "a part of a list", { 1, 2, 3, 4, 0 }, 1, 3, "adcbe" },
    { "the end of a list", { 1, 2, 2, 2 }, 2, 3, "abdc" },
    { "first is last", { 1, 2, 3 }, 1, 1, "abc" },
    { "first behind last", { 1, 2, 3 }, 2, 0, "abc" },
};

typedef uint64_t (*CountAt)(uint64_t i, uint64_t n);   // count of entry i of a list of n

// Lists of which a plain quicksort makes hard work.
const struct {
    const char* what;
    CountAt count;
} SHAPES[] = {
    { "all equal", [](uint64_t, uint64_t) { return uint64_t(1); } },
    { "rising", [](uint64_t i, uint64_t) { return i; } },
    { "falling", [](uint64_t i, uint64_t n) { return n - i; } },
    { "two by turns, the larger first", [](uint64_t i, uint64_t) { return 2 - i % 2; } },
    { "two by turns, the smaller first", [](uint64_t i, uint64_t) { return 1 + i % 2; } },
    { "rising in pairs", [](uint64_t i, uint64_t) { return i / 2; } },
    { "falling in pairs", [](uint64_t i, uint64_t n) { return (n - i) / 2; } },
    { "rising, then falling", [](uint64_t i, uint64_t n) { return std::min(i, n - i); } },
    { "a saw", [](uint64_t i, uint64_t) { return i % 640; } },
    { "stairs", [](uint64_t i, uint64_t n) { return i * 640 / n; } },
    { "ones, a few larger", [](uint64_t i, uint64_t) { return i % 1000 ? uint64_t(1) : i; } },
};

// The hardest ones that a picture can have: its counts add up to its pixels, so no more than 910 of them differ
// (1 + 2 + ... + 910 is 414505), and a list is long only if most of them are small.
constexpr uint64_t STEPS = 526;
const struct LargeShape {
    const char* what;
    uint64_t entries;
    CountAt count;
} LARGE_SHAPES[] = {
    { "all equal", PIXELS_OF_PAL, [](uint64_t, uint64_t) { return uint64_t(1); } },
    { "two by turns, the larger first", 276000, [](uint64_t i, uint64_t) { return 2 - i % 2; } },
    { "two by turns, the smaller first", 276000, [](uint64_t i, uint64_t) { return 1 + i % 2; } },
    { "twenty by turns", 39000, [](uint64_t i, uint64_t) { return 1 + i % 20; } },
    { "rising", 910, [](uint64_t i, uint64_t) { return 1 + i; } },
    { "falling", 910, [](uint64_t i, uint64_t) { return 910 - i; } },
    { "rising in steps of a hundred", 9000, [](uint64_t i, uint64_t) { return 1 + i / 100; } },
    { "falling in steps of a hundred", 9000, [](uint64_t i, uint64_t) { return 90 - i / 100; } },
    { "ones, then rising", 276000, [](uint64_t i, uint64_t n) { return i + STEPS < n ? 1 : i + STEPS + 1 - n; } },
    { "ones, then falling", 276000, [](uint64_t i, uint64_t n) { return i + STEPS < n ? 1 : n - i; } },
    { "rising, then ones", 276000, [](uint64_t i, uint64_t) { return i < STEPS ? i + 1 : 1; } },
    { "falling, then ones", 276000, [](uint64_t i, uint64_t) { return i < STEPS ? STEPS - i : 1; } },
};

Counts listOf(CountAt count, uint64_t n)
{
    Counts list;
    for (uint64_t i = 0; i < n; i++) list.push_back({ count(i, n), i });
    return list;
}

bool falls(const Counts& list)
{
    return std::is_sorted(list.begin(), list.end(),
                          [](const ColorCount& a, const ColorCount& b) { return a.count > b.count; });
}

// Whether the list holds each entry of a shape once.
bool hasAllOf(const Counts& list, CountAt count)
{
    std::vector<bool> seen(list.size());
    for (const ColorCount& entry : list) {
        if (entry.value >= list.size() || seen[entry.value]) return false;
        if (entry.count != count(entry.value, list.size())) return false;
        seen[entry.value] = true;
    }
    return true;
}

}   // namespace

TEST(ColorCensus, BytesOfARegion)
{
    const Bytes pixels = fromHex(BYTES);
    for (const auto& c : BYTE_REGIONS) EXPECT_EQ(census(pixels, 8, c.region), c.found) << c.what;
}

TEST(ColorCensus, ColorsOfARegion)
{
    const Bytes pixels = fromHex(COLORS);
    for (const auto& c : PIXEL_REGIONS) EXPECT_EQ(census(pixels, 32, c.region), c.found) << c.what;
}

TEST(ColorCensus, OtherDepthsAreRefused)
{
    const Bytes pixels(64);
    for (const uint64_t bits : std::vector<uint64_t>{ 0, 1, 4, 7, 16, 24, 33, 64 }) {
        ColorCount* list = nullptr;
        EXPECT_EQ(orvCountBitmapColors(pixels.data(), bits, 0, 0, 1, 1, 0, &list), ORV_INVALID_ARGUMENT) << bits;
        EXPECT_EQ(list, nullptr) << bits;
    }
}

TEST(ColorCensus, CountsAreAddedByValue)
{
    for (const auto& c : COUNTED) EXPECT_EQ(counted(c.values), c.found) << c.what;
}

TEST(ColorCensus, ManyValuesKeepTheirOrder)
{
    // Neighbours, values whose low or high bits are alike, and values that look like none other: an odd step meets each
    // value of 24 bits once.
    constexpr uint64_t MASK = 0xFFFFFF;
    const uint64_t steps[] = { 1, 0x101, 0x1001, 0x10001, 0x9E3779B1 };
    for (const uint64_t step : steps) {
        Census census = {};
        ASSERT_EQ(orvBeginCensus(&census), 0u);
        const double seconds = secondsOf([&] {
            for (uint64_t round = 0; round < 2; round++) {
                for (uint64_t i = 0; i < PIXELS_OF_PAL; i++)
                    ASSERT_EQ(orvCountValue(&census, i * step & MASK, i + round), 0u);
            }
        });
        EXPECT_LT(seconds, LIMIT_SECONDS) << step;
        ColorCount* list = nullptr;
        ASSERT_EQ(orvEndCensus(&census, &list), 0u);
        ASSERT_EQ(osMemSize(list), PIXELS_OF_PAL * sizeof(ColorCount)) << step;
        uint64_t wrong = 0;
        for (uint64_t i = 0; i < PIXELS_OF_PAL; i++)
            wrong += list[i].value != (i * step & MASK) || list[i].count != 2 * i + 1;
        EXPECT_EQ(wrong, 0u) << step;
        osFreeMem(&list);
    }
}

TEST(ColorCensus, ADroppedCensusLeavesNothing)
{
    Census census = {};
    ASSERT_EQ(orvBeginCensus(&census), 0u);
    for (uint64_t i = 0; i < 5000; i++) ASSERT_EQ(orvCountValue(&census, i, 1), 0u);
    orvDropCensus(&census);
    EXPECT_EQ(census.list, nullptr);
    EXPECT_EQ(census.pages, nullptr);
}

TEST(ColorCensus, ValuesHaveTwentyFourBits)
{
    EXPECT_EQ(counted({ { 2, 0xFFFFFF }, { 3, 0 } }), "2xFFFFFF 3x0");
    Census census = {};
    ASSERT_EQ(orvBeginCensus(&census), 0u);
    EXPECT_EQ(orvCountValue(&census, 0x1000000, 1), ORV_INVALID_ARGUMENT);
    EXPECT_EQ(orvCountValue(&census, ~uint64_t(0), 1), ORV_INVALID_ARGUMENT);
    orvDropCensus(&census);
}

TEST(ColorCensus, PictureOfManyColors)
{
    // Each pixel of a PAL picture has a colour of its own; the numbers go to red first.
    const uint64_t count = 720 * 576;
    Bytes pixels(count * 4);
    for (uint64_t i = 0; i < count; i++) {
        pixels[4 * i] = uint8_t(i >> 16);
        pixels[4 * i + 1] = uint8_t(i >> 8);
        pixels[4 * i + 2] = uint8_t(i);
        pixels[4 * i + 3] = 32;
    }
    ColorCount* list = nullptr;
    const double seconds =
        secondsOf([&] { ASSERT_EQ(orvCountBitmapColors(pixels.data(), 32, 0, 0, 720, 576, 0, &list), 0u); });
    EXPECT_LT(seconds, LIMIT_SECONDS);
    ASSERT_EQ(osListCount(list), count + 1);
    EXPECT_EQ(text(list, 4), "0x0 1x0 1x10000 1x20000");
    EXPECT_EQ(text(list + count, 1), "1xFF5306");   // 414719 = 0x0653FF
    osFreeMem(&list);
}

TEST(ColorSort, OrdersOfEqualCounts)
{
    for (const auto& c : SORTED) {
        Counts list = entriesOf(c.counts);
        orvSortCountList(list.data(), c.first, c.last);
        EXPECT_EQ(lettersOf(list), c.order) << c.what;
        for (const ColorCount& entry : list) EXPECT_EQ(entry.count, c.counts[entry.value]) << c.what;
    }
}

TEST(ColorSort, AsTheQuicksortDoes)
{
    std::mt19937_64 dice(20260);
    for (int round = 0; round < 3000; round++) {
        std::vector<uint64_t> counts(1 + dice() % (round % 100 ? 40 : 1500));
        const uint64_t different = 1 + dice() % (2 * counts.size());
        for (uint64_t& count : counts) count = dice() % different;
        if (round % 7 == 0) std::sort(counts.begin(), counts.end());
        if (round % 11 == 0) std::sort(counts.rbegin(), counts.rend());
        const uint64_t a = dice() % counts.size(), b = dice() % counts.size();
        const uint64_t first = round % 3 ? 0 : std::min(a, b), last = round % 3 ? counts.size() - 1 : std::max(a, b);
        Counts list = entriesOf(counts), expected = list;
        orvSortCountList(list.data(), first, last);
        referenceSort(expected, int64_t(first), int64_t(last));
        ASSERT_EQ(text(list.data(), list.size()), text(expected.data(), expected.size())) << "round " << round;
    }
}

TEST(ColorSort, HardListsKeepTheQuicksortsOrder)
{
    for (const auto& shape : SHAPES) {
        for (const uint64_t n : std::vector<uint64_t>{ 2, 3, 7, 64, 640, 2501 }) {
            Counts list = listOf(shape.count, n);
            const Counts expected = referenceSorted(list);
            orvSortCountList(list.data(), 0, n - 1);
            EXPECT_EQ(text(list.data(), n), text(expected.data(), n)) << shape.what << ", " << n;
        }
    }
}

TEST(ColorSort, LargeListsEndSoon)
{
    for (const LargeShape& shape : LARGE_SHAPES) {
        Counts list = listOf(shape.count, shape.entries);
        uint64_t pixels = 0;
        for (const ColorCount& entry : list) pixels += entry.count;
        ASSERT_LE(pixels, PIXELS_OF_PAL) << shape.what << " is no list of a picture";
        EXPECT_LT(secondsOf([&] { orvSortCountList(list.data(), 0, list.size() - 1); }), LIMIT_SECONDS) << shape.what;
        EXPECT_TRUE(falls(list)) << shape.what;
        EXPECT_TRUE(hasAllOf(list, shape.count)) << shape.what;
    }
}

TEST(ColorSort, EqualCountsMoveTheFirstToTheEnd)
{
    Counts list = listOf(SHAPES[0].count, PIXELS_OF_PAL);
    orvSortCountList(list.data(), 0, PIXELS_OF_PAL - 1);
    uint64_t wrong = 0;
    for (uint64_t i = 0; i < PIXELS_OF_PAL; i++) wrong += list[i].value != (i + 1) % PIXELS_OF_PAL;
    EXPECT_EQ(wrong, 0u);
}
