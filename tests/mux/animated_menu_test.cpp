// Animated menus: where the sub-picture enters a program stream, and what becomes of the stream's clocks.
#include "tests/mux/animated_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

TEST(AnimatedMenu, EntersTheFirstUnit)
{
    const Bytes video = animation(FOUR_UNITS);
    const MuxRun run = animatedMenu(menuWith(1, 18000), withVideo(video, 2016 + 2024 + 10));
    EXPECT_EQ(run.result, 0u);
    const Bytes expected = packsOf(video, 0, 2) + packOf(PACK_2 SUB_30000 "20", part(SUB, 0, 2016)) +
                           packOf(PACK_3 SUB_NEXT "20", part(SUB, 2016, 2024)) +
                           packOf(PACK_4 "00 00 01 BD 00 0E 81 00 00 20", part(SUB, 4040, 10), "00 00 01 BE 07 D8") +
                           shiftedPacks(packsOf(video, 2), 438);
    EXPECT_EQ(differences(run.output, expected), "");
}

TEST(AnimatedMenu, EmptySubPicture)
{
    const Bytes video = animation(FOUR_UNITS);
    const MuxRun run = animatedMenu(menuWith(1, 0), withVideo(video, 0));
    EXPECT_EQ(run.result, 0u);
    const Bytes expected =
        packsOf(video, 0, 2) +
        packOf(PACK_2 "00 00 01 BD 00 0C 81 81 08 21 00 01 EA 61 1E 60 3A 20", {}, "00 00 01 BE 07 DA") +
        shiftedPacks(packsOf(video, 2), 146);
    EXPECT_EQ(differences(run.output, expected), "");
}

// Packs of every kind are shifted in the clock of their header, by 146 ticks for each pack put in; nothing else
// changes.
TEST(AnimatedMenu, ShiftsTheClocksOfTheRest)
{
    // clang-format off
    const struct { const char* what; const char* before; const char* after; } rows[] = {
        { "0",                              "44 00 04 00 04 01", "44 00 04 0D B4 01" },
        { "292, extension 171",             "44 00 04 09 25 57", "44 00 04 16 D5 57" },
        { "2^31 - 1",                       "4F FF FF FF FC 01", "54 00 04 0D AC 01" },
        { "2^32 - 1, extension 299",        "5F FF FF FF FE 57", "44 00 04 0D AE 57" },
        { "2^32 - 438",                     "5F FF FF F2 54 01", "44 00 04 00 04 01" },
        { "bit 32 is dropped",              "64 00 04 00 04 01", "44 00 04 0D B4 01" },
        { "any extension",                  "44 00 04 00 07 FF", "44 00 04 0D B7 FF" },
    };
    // clang-format on
    const Bytes kinds[] = { unitPacks({ .scr = 9000, .packs = 0 }, 50),
                            videoPack(Bytes(2020, 7), { .clock = {}, .pts = 33600 }),
                            privatePack(0x80, { .clock = {}, .pts = 30000 }),
                            streamPack(0xC0, 0),
                            paddingPack(),
                            assetBytes(PACK_BYTES, 8) };
    Bytes video = animation({ { .packs = 1 } }), expected;
    for (const auto& row : rows) {
        for (const Bytes& kind : kinds) {
            Bytes pack = kind;
            const Bytes before = fromHex(row.before), after = fromHex(row.after);
            std::copy(before.begin(), before.end(), pack.begin() + 4);
            video += pack;
            std::copy(after.begin(), after.end(), pack.begin() + 4);
            expected += pack;
        }
    }
    const MuxRun run = animatedMenu(menuWith(1, 0), withVideo(video, 2016 + 2024 + 2024));
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(differences(packsOf(run.output, 0, 2), packsOf(video, 0, 2)), "");
    EXPECT_EQ(differences(packsOf(run.output, 5), expected), "");
}

namespace {

struct LoopCase {
    const char* what;
    uint64_t loopMode, loopValue;
    uint64_t sector;     // of the unit that the sub-picture enters
    const char* stamp;   // its time
};

// The second unit is a navigation pack alone. What stands behind it is the next unit's, of which the system header is
// read as a time: C4 at 21 for flags, then 00 E1 7F B9 E0.
#define SYSTEM_HEADER "21 E1 7F B9 E1"

// clang-format off
const LoopCase LOOP_CASES[] = {
    { "no loop",                          0, 18000,     0, "21 00 01 EA 61" },
    { "the whole animation",              1, 18000,     0, "21 00 01 EA 61" },
    { "no such mode",                     3, 18000,     0, "21 00 01 EA 61" },
    { "no such mode either",              5, 18000,     0, "21 00 01 EA 61" },
    { "from the start",                   2, 0,         0, "21 00 01 EA 61" },
    { "just behind the first unit",         2, 1,         3, SYSTEM_HEADER },
    { "on the second unit",               2, 9000,      3, SYSTEM_HEADER },
    { "just behind the second unit",      2, 9001,      4, "21 00 03 77 01" },
    { "just before the third unit",       2, 17999,     4, "21 00 03 77 01" },
    { "on the third unit",                2, 18000,     4, "21 00 03 77 01" },
    { "delayed, from the start",          4, 0,         0, "21 00 01 EA 61" },
    { "delayed, behind the second unit",  4, 9001,      4, "21 00 03 77 01" },
    { "delayed, on the third unit",       4, 18000,     4, "21 00 03 77 01" },
};
// clang-format on

}   // namespace

TEST(AnimatedMenu, EntersTheFirstUnitAtOrBehindTheLoopPoint)
{
    const Bytes video = animation(FOUR_UNITS);
    for (const LoopCase& row : LOOP_CASES) {
        SCOPED_TRACE(row.what);
        const MenuDesc menu = menuWith(row.loopMode, row.loopValue);
        const std::string head = PACK_2 "00 00 01 BD 07 EC 81 81 08 " + std::string(row.stamp) + " 1E 60 3A 20";
        const Bytes subPicture = packOf(head, part(SUB, 0, 2016));
        const Bytes expected =
            packsOf(video, 0, row.sector + 2) + subPicture + shiftedPacks(packsOf(video, row.sector + 2), 146);
        const MuxRun run = animatedMenu(menu, withVideo(video));
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(differences(run.output, expected), "");
    }
}

TEST(AnimatedMenu, EntersTheLastUnit)
{
    const Bytes video = animation(FOUR_UNITS);
    const MuxRun run = animatedMenu(menuWith(2, 27000), withVideo(video, 100));
    EXPECT_EQ(run.result, 0u);
    const Bytes expected = video + packOf(PACK_2 "00 00 01 BD 00 70 81 81 08 21 00 03 BD 51 1E 60 3A 20",
                                          part(SUB, 0, 100), "00 00 01 BE 07 76");
    EXPECT_EQ(differences(run.output, expected), "");
}

// The clock of the search is that of the navigation pack's data, 32 bits without a sign, not that of its pack header.
TEST(AnimatedMenu, TheClockOfTheLoopPoint)
{
    const Bytes fooled = animation({ { .scr = 100, .packs = 1, .clock = PackClock{ 90000, 0 } },
                                     { .scr = 50000, .packs = 1, .pts = 48000, .clock = PackClock{ 0, 0 } } });
    EXPECT_EQ(differences(animatedMenu(menuWith(2, 50000), withVideo(fooled)).output, fooled + fullPack(48000)), "");

    const Bytes late = animation({ { .scr = 0x80000001, .packs = 1 },
                                   { .scr = 0x80000002, .packs = 1, .pts = 48000 },
                                   { .scr = 0xFFFFFFFF, .packs = 1 } });
    const Bytes expected = packsOf(late, 0, 4) + fullPack(48000) + shiftedPacks(packsOf(late, 4), 146);
    EXPECT_EQ(differences(animatedMenu(menuWith(2, 0x80000002), withVideo(late)).output, expected), "");
    EXPECT_EQ(differences(animatedMenu(menuWith(2, 0xFFFFFFFF), withVideo(late)).output, late + fullPack(30000)), "");
    EXPECT_EQ(animatedMenu(menuWith(2, 0x100000000), withVideo(late)).result, 0x840007E6u);

    // A unit ahead of the loop point ends the search whatever follows.
    const Bytes back = animation({ { .scr = 20000, .packs = 1, .end = 0xFFFFFFFF }, { .scr = 5, .packs = 1 } });
    const Bytes first = packsOf(back, 0, 2) + fullPack(30000) + shiftedPacks(packsOf(back, 2), 146);
    EXPECT_EQ(differences(animatedMenu(menuWith(2, 20000), withVideo(back)).output, first), "");
}

// A unit's length is what its navigation pack says, whatever stands there.
TEST(AnimatedMenu, UnitsAreCountedByTheirData)
{
    const Bytes video = animation({ { .scr = 0, .packs = 1, .end = 3 },
                                    { .scr = 90000, .packs = 1 },
                                    { .scr = 45000, .packs = 2, .pts = 48000 } });
    const Bytes expected = packsOf(video, 0, 6) + fullPack(48000) + shiftedPacks(packsOf(video, 6), 146);
    EXPECT_EQ(differences(animatedMenu(menuWith(2, 1), withVideo(video)).output, expected), "");
}

namespace {

struct TimeCase {
    const char* what;
    std::optional<uint64_t> pts;
    const char* head;   // of the sub-picture's first pack, from offset 14 on
};

// clang-format off
const TimeCase TIME_CASES[] = {
    { "30000",      30000,       "00 00 01 BD 07 EC 81 81 08 21 00 01 EA 61 1E 60 3A 20" },
    { "1",          1,           "00 00 01 BD 07 EC 81 81 08 21 00 01 00 03 1E 60 3A 20" },
    { "2^31",       0x80000000,  "00 00 01 BD 07 EC 81 81 08 25 00 01 00 01 1E 60 3A 20" },
    { "2^32 - 1",   0xFFFFFFFF,  "00 00 01 BD 07 EC 81 81 08 27 FF FF FF FF 1E 60 3A 20" },
    { "bit 32 is not read", 0x100007530, "00 00 01 BD 07 EC 81 81 08 21 00 01 EA 61 1E 60 3A 20" },
    { "bit 32 alone is no time", 0x100000000, "00 00 01 BD 07 EC 81 00 00 20" },
    { "0 is no time", 0,         "00 00 01 BD 07 EC 81 00 00 20" },
    { "none",       {},          "00 00 01 BD 07 EC 81 00 00 20" },
};
// clang-format on

}   // namespace

TEST(AnimatedMenu, TheSubPictureHasTheTimeOfThePackBehindTheNavigationPack)
{
    for (const TimeCase& row : TIME_CASES) {
        SCOPED_TRACE(row.what);
        const Bytes video = animation({ { .packs = 2, .pts = row.pts }, { .scr = 9000, .packs = 1, .pts = 48000 } });
        const Bytes head = fromHex(PACK_2 + std::string(row.head));
        const uint64_t room = PACK_BYTES - head.size();
        const Bytes expected = packsOf(video, 0, 2) + head + part(SUB, 0, room) +
                               packOf(PACK_3 SUB_NEXT "20", part(SUB, room, 2024)) +
                               shiftedPacks(packsOf(video, 2), 292);
        const MuxRun run = animatedMenu(menuWith(1, 0), withVideo(video, room + 2024));
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(differences(run.output, expected), "");
    }
}

TEST(AnimatedMenu, TheEndOfTheAssetEndsTheMenu)
{
    const Bytes video = animation(FOUR_UNITS);
    const Bytes whole = animatedMenu(menuWith(1, 0), withVideo(video)).output;
    EXPECT_EQ(whole.size(), video.size() + PACK_BYTES);
    for (const uint64_t more : { 1u, 100u, 2047u }) {
        const MuxRun run = animatedMenu(menuWith(1, 0), withVideo(video + Bytes(more, 0)));
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(differences(run.output, whole), "") << more;
    }
    const MuxRun shortest = animatedMenu(menuWith(1, 0), withVideo(packsOf(video, 0, 2)));
    EXPECT_EQ(shortest.result, 0u);
    EXPECT_EQ(differences(shortest.output, packsOf(whole, 0, 3)), "");
}

TEST(AnimatedMenu, APairHasBothAtSectorTwo)
{
    const Bytes video = animation(FOUR_UNITS);
    MuxAssets assets = withVideo(video, 2016 + 2024);
    assets.letterbox = part(LETTERBOX, 0, 2016 + 2024 + 2017);
    const MuxRun run = animatedMenuPair(menuWith(2, 18000), assets);
    EXPECT_EQ(run.result, 0u);
    const Bytes expected =
        packsOf(video, 0, 6) +                                        //
        packOf(PACK_2 SUB_48000 "20", part(SUB, 0, 2016)) +           //
        packOf(PACK_3 SUB_NEXT "20", part(SUB, 2016, 2024)) +         //
        packOf(PACK_2 SUB_48000 "21", part(LETTERBOX, 0, 2016)) +     //
        packOf(PACK_4 SUB_NEXT "21", part(LETTERBOX, 2016, 2024)) +   //
        packOf(PACK_5 "00 00 01 BD 07 EC 81 00 07 FF FF FF FF FF FF FF 21", part(LETTERBOX, 4040, 2017)) +
        shiftedPacks(packsOf(video, 6), 584);   // the next free sector is 6: four packs of 146
    EXPECT_EQ(differences(run.output, expected), "");
}

TEST(AnimatedMenu, APairOfOnePackEach)
{
    const Bytes video = animation(FOUR_UNITS);
    MuxAssets assets = withVideo(video);
    assets.letterbox = Bytes{};
    for (const uint64_t loopMode : { 0u, 1u, 2u, 3u, 4u, 5u }) {
        const MuxRun run = animatedMenuPair(menuWith(loopMode, 9001), assets);
        EXPECT_EQ(run.result, 0u);
        const bool later = loopMode == 2 || loopMode == 4;
        const uint64_t sector = later ? 4 : 0;
        const Bytes expected = packsOf(video, 0, sector + 2) + fullPack(later ? 48000 : 30000) +
                               packOf(later ? PACK_2 "00 00 01 BD 00 0C 81 81 08 21 00 03 77 01 1E 60 3A 21"
                                            : PACK_2 "00 00 01 BD 00 0C 81 81 08 21 00 01 EA 61 1E 60 3A 21",
                                      {}, "00 00 01 BE 07 DA") +
                               shiftedPacks(packsOf(video, sector + 2), 146);   // neither raised the sector from 3
        EXPECT_EQ(differences(run.output, expected), "") << loopMode;
    }
}

TEST(AnimatedMenu, APairWithoutATime)
{
    const Bytes video = animation({ { .packs = 2, .pts = {} } });
    MuxAssets assets = withVideo(video, 2024);
    assets.letterbox = part(LETTERBOX, 0, 2024);
    const Bytes expected = packsOf(video, 0, 2) + packOf(PACK_2 SUB_NEXT "20", part(SUB, 0, 2024)) +
                           packOf(PACK_2 SUB_NEXT "21", part(LETTERBOX, 0, 2024)) +
                           shiftedPacks(packsOf(video, 2), 146);
    EXPECT_EQ(differences(animatedMenuPair(menuWith(1, 0), assets).output, expected), "");
}

TEST(AnimatedMenu, FollowsWhatTheOutputHolds)
{
    const Bytes video = animation(FOUR_UNITS);
    MuxAssets assets = withVideo(video);
    const Bytes menu = animatedMenu(menuWith(2, 9000), assets).output;
    assets.before = assetBytes(3 * PACK_BYTES, 4);
    EXPECT_EQ(differences(animatedMenu(menuWith(2, 9000), assets).output, assets.before + menu), "");
}

TEST(AnimatedMenu, AnyMenu)
{
    std::mt19937_64 random(38);
    const auto below = [&](uint64_t count) { return uint64_t(random() % count); };
    const auto anySize = [&] {
        const uint64_t packs = below(5);
        return packs == 0 ? below(2030) : 2016 + (packs - 1) * 2024 + below(24) - 12;
    };
    uint64_t failures = 0;
    for (uint64_t round = 0; round < 300; round++) {
        SCOPED_TRACE(round);
        std::vector<UnitSpec> units(1 + below(6));
        uint64_t scr = below(2) ? 0 : below(100000);
        for (UnitSpec& unit : units) {
            unit = { .scr = scr, .packs = 1 + below(5) };
            unit.pts = below(4) ? std::optional<uint64_t>(random()) : std::nullopt;
            unit.clock = PackClock{ random(), below(300) };
            scr += 1 + below(50000);
        }
        const Bytes video = animation(units) + Bytes(below(3) ? 0 : below(2048), 0x77);
        MuxAssets assets = withVideo(video, anySize());
        assets.letterbox = part(LETTERBOX, 0, anySize());
        const MenuDesc menu = menuWith(below(6), units[below(units.size())].scr + below(3) - 1);
        const bool pair = below(2) == 1;

        // The unit that the sub-picture enters.
        uint64_t entry = 0, at = 0;
        if (menu.loopMode == 2 || menu.loopMode == 4) {
            while (entry < units.size() && units[entry].scr < menu.loopValue) at += 1 + units[entry++].packs;
        }
        const MuxRun run = pair ? animatedMenuPair(menu, assets) : animatedMenu(menu, assets);
        if (entry == units.size()) {
            ASSERT_EQ(run.result, 0x840007E6u);
            ASSERT_EQ(run.output.size(), 0u);
            failures++;
            continue;
        }
        const uint64_t pts = units[entry].pts.value_or(0) & 0xFFFFFFFF;
        uint64_t sector = 3;
        Bytes subPictures = referenceSubPicture(*assets.subPicture, 0x20, pts, &sector);
        if (pair) subPictures += referenceSubPicture(*assets.letterbox, 0x21, pts, &sector);
        const Bytes expected = packsOf(video, 0, at + 2) + subPictures +
                               shiftedPacks(part(video, (at + 2) * PACK_BYTES, video.size()), (sector - 2) * 146);
        ASSERT_EQ(run.result, 0u);
        ASSERT_EQ(differences(run.output, expected), "");
    }
    EXPECT_GT(failures, 5u);
    EXPECT_LT(failures, 150u);
}
