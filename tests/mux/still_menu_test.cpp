// Still menus: which packs, in which order, with which clocks and times.
#include "mux/asset_drivers.h"
#include "tests/mux/mux_rig.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr uint64_t PAL = 3600, NTSC = 3003;

MuxRun stillMenu(const MuxAssets& assets, uint64_t frameTicks = PAL)
{
    return runDriver(assets, [&](const MuxFiles& files) {
        return orvMuxStillMenu(files.output, files.video, files.subPicture, frameTicks);
    });
}

MuxRun stillMenuPair(const MuxAssets& assets, uint64_t frameTicks = PAL)
{
    return runDriver(assets, [&](const MuxFiles& files) {
        return orvMuxStillMenuPair(files.output, files.video, files.subPicture, files.letterbox, frameTicks);
    });
}

// Pack headers of the first sectors.
#define PACK_0 "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 "
#define PACK_1 "00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8 "
#define PACK_2 "00 00 01 BA 44 00 04 09 25 57 01 89 C3 F8 "
#define PACK_3 "00 00 01 BA 44 00 04 0D B6 03 01 89 C3 F8 "
#define PACK_4 "00 00 01 BA 44 00 04 12 4C 55 01 89 C3 F8 "
#define PACK_5 "00 00 01 BA 44 00 04 16 DD 01 01 89 C3 F8 "
#define PACK_6 "00 00 01 BA 44 00 04 1B 6D AD 01 89 C3 F8 "
#define PACK_7 "00 00 01 BA 44 00 04 20 04 01 01 89 C3 F8 "

// PES headers of full packs.
#define VIDEO_PAL "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 "
#define VIDEO_NTSC "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 75 2B 1E 60 E8 "
#define VIDEO_NEXT "00 00 01 E0 07 EC 81 00 00 "
#define SUB_FIRST "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A "   // the id follows
#define SUB_NEXT "00 00 01 BD 07 EC 81 00 00 "

Bytes placeholder()
{
    return packOf(PACK_0 "00 00 01 BB 00 12 80 C4 E1 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02", {},
                  "00 00 01 BE 07 D4");
}

// Bytes with a value of their own.
const Bytes VIDEO = assetBytes(20000, 1), SUB = assetBytes(20000, 2), LETTERBOX = assetBytes(20000, 3);

MuxAssets assetsOf(uint64_t video, uint64_t subPicture)
{
    return { .video = part(VIDEO, 0, video), .subPicture = part(SUB, 0, subPicture) };
}

MuxAssets assetsOf(uint64_t video, uint64_t subPicture, uint64_t letterbox)
{
    MuxAssets assets = assetsOf(video, subPicture);
    assets.letterbox = part(LETTERBOX, 0, letterbox);
    return assets;
}

}   // namespace

TEST(StillMenu, OneVideoPackThenTheSubPictureThenTheRest)
{
    const MuxRun run = stillMenu(assetsOf(2012 + 2025 + 100, 2016 + 2024 + 50));
    EXPECT_EQ(run.result, 0u);
    const Bytes expected = placeholder() +                                         //
                           packOf(PACK_1 VIDEO_PAL, part(VIDEO, 0, 2012)) +        //
                           packOf(PACK_2 SUB_FIRST "20", part(SUB, 0, 2016)) +     //
                           packOf(PACK_3 SUB_NEXT "20", part(SUB, 2016, 2024)) +   //
                           packOf(PACK_4 "00 00 01 BD 00 36 81 00 00 20", part(SUB, 4040, 50), "00 00 01 BE 07 B0") +
                           packOf(PACK_5 VIDEO_NEXT, part(VIDEO, 2012, 2025)) +   //
                           packOf(PACK_6 "00 00 01 E0 00 67 81 00 00", part(VIDEO, 4037, 100), "00 00 01 BE 07 7F");
    EXPECT_EQ(differences(run.output, expected), "");
}

TEST(StillMenu, OnePackOfEach)
{
    const MuxRun run = stillMenu(assetsOf(2012, 2016), NTSC);
    EXPECT_EQ(run.result, 0u);
    const Bytes expected = placeholder() + packOf(PACK_1 VIDEO_NTSC, part(VIDEO, 0, 2012)) +
                           packOf(PACK_2 SUB_FIRST "20", part(SUB, 0, 2016));
    EXPECT_EQ(differences(run.output, expected), "");
}

TEST(StillMenu, EmptySubPicture)
{
    const MuxRun run = stillMenu(assetsOf(2012 + 2025, 0));
    EXPECT_EQ(run.result, 0u);
    const Bytes expected =
        placeholder() + packOf(PACK_1 VIDEO_PAL, part(VIDEO, 0, 2012)) +
        packOf(PACK_2 "00 00 01 BD 00 0C 81 81 08 21 00 01 8C A1 1E 60 3A 20", {}, "00 00 01 BE 07 DA") +
        packOf(PACK_3 VIDEO_NEXT, part(VIDEO, 2012, 2025));
    EXPECT_EQ(differences(run.output, expected), "");
}

TEST(StillMenu, EmptyFiles)
{
    const MuxRun run = stillMenu(assetsOf(0, 0));
    EXPECT_EQ(run.result, 0u);
    const Bytes expected =
        placeholder() +
        packOf(PACK_1 "00 00 01 E0 00 10 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", {}, "00 00 01 BE 07 D6") +
        packOf(PACK_2 "00 00 01 BD 00 0C 81 81 08 21 00 01 8C A1 1E 60 3A 20", {}, "00 00 01 BE 07 DA");
    EXPECT_EQ(differences(run.output, expected), "");
}

namespace {

// The last pack of a stream, by what it has to carry.
struct LastPackCase {
    uint64_t bytes;
    const char* head;   // from offset 14 on
    const char* tail;   // behind the payload; empty: none
};

// clang-format off
const LastPackCase FIRST_VIDEO[] = {
    { 2012, "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", "" },
    { 2011, "00 00 01 E0 07 EC 81 C1 0E 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF", "" },
    { 2010, "00 00 01 E0 07 EC 81 C1 0F 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF FF", "" },
    { 2009, "00 00 01 E0 07 EC 81 C1 10 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF FF FF", "" },
    { 2008, "00 00 01 E0 07 EC 81 C1 11 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF FF FF FF", "" },
    { 2007, "00 00 01 E0 07 EC 81 C1 12 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF FF FF FF FF", "" },
    { 2006, "00 00 01 E0 07 EC 81 C1 13 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF FF FF FF FF FF", "" },
    { 2005, "00 00 01 E0 07 EC 81 C1 14 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF FF FF FF FF FF FF", "" },
    { 2004, "00 00 01 E0 07 E4 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", "00 00 01 BE 00 02 FF FF" },
    { 2003, "00 00 01 E0 07 E3 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", "00 00 01 BE 00 03" },
    { 1000, "00 00 01 E0 03 F8 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", "00 00 01 BE 03 EE" },
    { 1,    "00 00 01 E0 00 11 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", "00 00 01 BE 07 D5" },
};

const LastPackCase NEXT_VIDEO[] = {
    { 2025, "00 00 01 E0 07 EC 81 00 00", "" },
    { 2024, "00 00 01 E0 07 EC 81 00 01 FF", "" },
    { 2018, "00 00 01 E0 07 EC 81 00 07 FF FF FF FF FF FF FF", "" },
    { 2017, "00 00 01 E0 07 E4 81 00 00", "00 00 01 BE 00 02 FF FF" },
    { 2016, "00 00 01 E0 07 E3 81 00 00", "00 00 01 BE 00 03" },
    { 1,    "00 00 01 E0 00 04 81 00 00", "00 00 01 BE 07 E2" },
};

const LastPackCase FIRST_SUB[] = {
    { 2016, "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A 20", "" },
    { 2015, "00 00 01 BD 07 EC 81 81 09 21 00 01 8C A1 1E 60 3A FF 20", "" },
    { 2014, "00 00 01 BD 07 EC 81 81 0A 21 00 01 8C A1 1E 60 3A FF FF 20", "" },
    { 2013, "00 00 01 BD 07 EC 81 81 0B 21 00 01 8C A1 1E 60 3A FF FF FF 20", "" },
    { 2012, "00 00 01 BD 07 EC 81 81 0C 21 00 01 8C A1 1E 60 3A FF FF FF FF 20", "" },
    { 2011, "00 00 01 BD 07 EC 81 81 0D 21 00 01 8C A1 1E 60 3A FF FF FF FF FF 20", "" },
    { 2010, "00 00 01 BD 07 EC 81 81 0E 21 00 01 8C A1 1E 60 3A FF FF FF FF FF FF 20", "" },
    { 2009, "00 00 01 BD 07 EC 81 81 0F 21 00 01 8C A1 1E 60 3A FF FF FF FF FF FF FF 20", "" },
    { 2008, "00 00 01 BD 07 E4 81 81 08 21 00 01 8C A1 1E 60 3A 20", "00 00 01 BE 00 02 FF FF" },
    { 1,    "00 00 01 BD 00 0D 81 81 08 21 00 01 8C A1 1E 60 3A 20", "00 00 01 BE 07 D9" },
};

const LastPackCase NEXT_SUB[] = {
    { 2024, "00 00 01 BD 07 EC 81 00 00 20", "" },
    { 2023, "00 00 01 BD 07 EC 81 00 01 FF 20", "" },
    { 2017, "00 00 01 BD 07 EC 81 00 07 FF FF FF FF FF FF FF 20", "" },
    { 2016, "00 00 01 BD 07 E4 81 00 00 20", "00 00 01 BE 00 02 FF FF" },
    { 1,    "00 00 01 BD 00 05 81 00 00 20", "00 00 01 BE 07 E1" },
};
// clang-format on

}   // namespace

TEST(StillMenu, LastPackOfTheVideo)
{
    for (const LastPackCase& row : FIRST_VIDEO) {
        SCOPED_TRACE(row.bytes);
        const MuxRun run = stillMenu(assetsOf(row.bytes, 2016));
        const Bytes expected = placeholder() +
                               packOf(PACK_1 + std::string(row.head), part(VIDEO, 0, row.bytes), row.tail) +
                               packOf(PACK_2 SUB_FIRST "20", part(SUB, 0, 2016));
        EXPECT_EQ(differences(run.output, expected), "");
    }
    for (const LastPackCase& row : NEXT_VIDEO) {
        SCOPED_TRACE(row.bytes);
        const MuxRun run = stillMenu(assetsOf(2012 + row.bytes, 2016));
        const Bytes expected = placeholder() + packOf(PACK_1 VIDEO_PAL, part(VIDEO, 0, 2012)) +
                               packOf(PACK_2 SUB_FIRST "20", part(SUB, 0, 2016)) +
                               packOf(PACK_3 + std::string(row.head), part(VIDEO, 2012, row.bytes), row.tail);
        EXPECT_EQ(differences(run.output, expected), "");
    }
}

TEST(StillMenu, LastPackOfTheSubPicture)
{
    for (const LastPackCase& row : FIRST_SUB) {
        SCOPED_TRACE(row.bytes);
        const MuxRun run = stillMenu(assetsOf(2012, row.bytes));
        const Bytes expected = placeholder() + packOf(PACK_1 VIDEO_PAL, part(VIDEO, 0, 2012)) +
                               packOf(PACK_2 + std::string(row.head), part(SUB, 0, row.bytes), row.tail);
        EXPECT_EQ(differences(run.output, expected), "");
    }
    for (const LastPackCase& row : NEXT_SUB) {
        SCOPED_TRACE(row.bytes);
        const MuxRun run = stillMenu(assetsOf(2012, 2016 + row.bytes));
        const Bytes expected = placeholder() + packOf(PACK_1 VIDEO_PAL, part(VIDEO, 0, 2012)) +
                               packOf(PACK_2 SUB_FIRST "20", part(SUB, 0, 2016)) +
                               packOf(PACK_3 + std::string(row.head), part(SUB, 2016, row.bytes), row.tail);
        EXPECT_EQ(differences(run.output, expected), "");
    }
}

TEST(StillMenu, BothOfAPairBeginAtSectorTwo)
{
    const MuxRun run = stillMenuPair(assetsOf(2012 + 2025 + 2025, 2016 + 2024, 2016 + 2024 + 2024), NTSC);
    EXPECT_EQ(run.result, 0u);
    const Bytes expected = placeholder() +                                               //
                           packOf(PACK_1 VIDEO_NTSC, part(VIDEO, 0, 2012)) +             //
                           packOf(PACK_2 SUB_FIRST "20", part(SUB, 0, 2016)) +           //
                           packOf(PACK_3 SUB_NEXT "20", part(SUB, 2016, 2024)) +         //
                           packOf(PACK_2 SUB_FIRST "21", part(LETTERBOX, 0, 2016)) +     //
                           packOf(PACK_4 SUB_NEXT "21", part(LETTERBOX, 2016, 2024)) +   //
                           packOf(PACK_5 SUB_NEXT "21", part(LETTERBOX, 4040, 2024)) +   //
                           packOf(PACK_6 VIDEO_NEXT, part(VIDEO, 2012, 2025)) +          //
                           packOf(PACK_7 VIDEO_NEXT, part(VIDEO, 4037, 2025));
    EXPECT_EQ(differences(run.output, expected), "");
}

TEST(StillMenu, APairOfOnePackEach)
{
    const MuxRun run = stillMenuPair(assetsOf(2012 + 1, 2016, 2009));
    EXPECT_EQ(run.result, 0u);
    const Bytes expected = placeholder() + packOf(PACK_1 VIDEO_PAL, part(VIDEO, 0, 2012)) +
                           packOf(PACK_2 SUB_FIRST "20", part(SUB, 0, 2016)) +
                           packOf(PACK_2 "00 00 01 BD 07 EC 81 81 0F 21 00 01 8C A1 1E 60 3A FF FF FF FF FF FF FF 21",
                                  part(LETTERBOX, 0, 2009)) +
                           packOf(PACK_3 "00 00 01 E0 00 04 81 00 00", part(VIDEO, 2012, 1), "00 00 01 BE 07 E2");
    EXPECT_EQ(differences(run.output, expected), "");
}

TEST(StillMenu, APairOfEmptySubPictures)
{
    const MuxRun run = stillMenuPair(assetsOf(2012, 0, 0));
    EXPECT_EQ(run.result, 0u);
    const Bytes expected =
        placeholder() + packOf(PACK_1 VIDEO_PAL, part(VIDEO, 0, 2012)) +
        packOf(PACK_2 "00 00 01 BD 00 0C 81 81 08 21 00 01 8C A1 1E 60 3A 20", {}, "00 00 01 BE 07 DA") +
        packOf(PACK_2 "00 00 01 BD 00 0C 81 81 08 21 00 01 8C A1 1E 60 3A 21", {}, "00 00 01 BE 07 DA");
    EXPECT_EQ(differences(run.output, expected), "");
}

// Menus of one VOB follow each other; the clock of each begins at 0.
TEST(StillMenu, MenusFollowEachOther)
{
    MuxAssets assets = assetsOf(2012 + 5, 30);
    const Bytes menu = stillMenu(assets).output;
    EXPECT_EQ(menu.size(), 4 * PACK_BYTES);
    assets.before = menu;
    EXPECT_EQ(differences(stillMenu(assets).output, menu + menu), "");
    assets.letterbox = part(LETTERBOX, 0, 10);
    const MuxRun run = stillMenuPair(assets);
    EXPECT_EQ(run.sectors(), 4 + 5u);
    EXPECT_EQ(differences(part(run.output, 0, 5 * PACK_BYTES), menu + placeholder()), "");
}

// Behind sector 188 a clock of doubles is not that of whole numbers.
TEST(StillMenu, ALongMenu)
{
    const Bytes video = assetBytes(2012 + 216 * 2025, 4);
    const MuxRun run = stillMenu({ .video = video, .subPicture = Bytes{} });
    EXPECT_EQ(run.result, 0u);
    ASSERT_EQ(run.sectors(), 3 + 216u);
    EXPECT_EQ(run.hexAt(188, 4, 6), "44 00 07 5B 6D AD");   // 27501, 214
    EXPECT_EQ(run.hexAt(189, 4, 6), "44 00 07 5F FE 57");   // 27647, 299
    EXPECT_EQ(run.hexAt(217, 4, 6), "44 00 07 DF FC 01");   // 31743, 0
    EXPECT_EQ(run.hexAt(218, 4, 6), "44 00 07 E4 94 AB");   // 31890, 85
    for (uint64_t sector = 3; sector < run.sectors(); sector++) {
        const Bytes payload = part(video, 2012 + (sector - 3) * 2025, 2025);
        ASSERT_EQ(differences(part(run.output, sector * PACK_BYTES + 23, 2025), payload), "") << sector;
    }
}

// Whatever happens to a file, the menu is a success, and it ends.
TEST(StillMenu, FailuresAreNotLookedAt)
{
    const MuxAssets sound = assetsOf(2012 + 2025 + 2025, 2016 + 2024 + 2024, 2016 + 2024 + 2024);
    const uint64_t single = stillMenu(sound).sectors(), pair = stillMenuPair(sound).sectors();
    EXPECT_EQ(single, 1 + 3 + 3u);
    EXPECT_EQ(pair, 1 + 3 + 3 + 3u);
    std::vector<MuxAssets> cases(7, sound);
    cases[0].videoMode = OS_APPEND;
    cases[1].subPictureMode = OS_APPEND;
    cases[2].letterboxMode = OS_APPEND;
    cases[3].video.reset();
    cases[4].subPicture.reset();
    cases[5].letterbox.reset();
    cases[6].videoMode = cases[6].subPictureMode = cases[6].letterboxMode = OS_APPEND;
    for (uint64_t i = 0; i < cases.size(); i++) {
        SCOPED_TRACE(i);
        MuxRun run = stillMenu(cases[i]);
        EXPECT_EQ(run.result, 0u);
        EXPECT_LE(run.sectors(), single);
        EXPECT_EQ(differences(part(run.output, 0, PACK_BYTES), placeholder()), "");
        EXPECT_EQ(run.hexAt(1, 0, 18), toHex(fromHex(PACK_1 "00 00 01 E0")));
        EXPECT_EQ(run.hexAt(2, 0, 18), toHex(fromHex(PACK_2 "00 00 01 BD")));
        run = stillMenuPair(cases[i]);
        EXPECT_EQ(run.result, 0u);
        EXPECT_LE(run.sectors(), pair);
        EXPECT_EQ(differences(part(run.output, 0, PACK_BYTES), placeholder()), "");
    }
}

// A pack whose payload can't be had is written all the same, with zeros in the place of what is missing.
TEST(StillMenu, WhatIsNotReadIsZero)
{
    MuxAssets assets = assetsOf(2012, 2016);
    assets.videoMode = OS_APPEND;
    MuxRun run = stillMenu(assets);
    EXPECT_EQ(differences(part(run.output, PACK_BYTES, PACK_BYTES), packOf(PACK_1 VIDEO_PAL, Bytes(2012, 0))), "");
    assets.videoMode = OS_READ;
    assets.subPictureMode = OS_APPEND;
    run = stillMenu(assets);
    EXPECT_EQ(differences(part(run.output, 2 * PACK_BYTES, PACK_BYTES), packOf(PACK_2 SUB_FIRST "20", Bytes(2016, 0))),
              "");

    // A file of 3000 bytes that stands at 2000.
    const TempDir folder;
    {
        const OpenFile output(folder, u"menu.vob", {}, OS_CREATE), video(folder, u"video", part(VIDEO, 0, 3000)),
            sub(folder, u"sub", part(SUB, 0, 2016));
        ASSERT_EQ(osSeekFile(video.file, 2000, OS_FROM_START), 0u);
        EXPECT_EQ(orvMuxStillMenu(output.file, video.file, sub.file, PAL), 0u);
    }
    const Bytes expected = placeholder() + packOf(PACK_1 VIDEO_PAL, part(VIDEO, 2000, 1000) + Bytes(1012, 0)) +
                           packOf(PACK_2 SUB_FIRST "20", part(SUB, 0, 2016));
    EXPECT_EQ(differences(part(readFile(folder / u"menu.vob"), 0, 3 * PACK_BYTES), expected), "");
}

TEST(StillMenu, AnOutputThatTakesNothing)
{
    MuxAssets assets = assetsOf(5000, 5000, 5000);
    assets.before = assetBytes(3000, 9);
    assets.outputMode = OS_READ;
    MuxRun run = stillMenu(assets);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.output, assets.before);
    run = stillMenuPair(assets);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.output, assets.before);

    const TempDir folder;
    const OpenFile video(folder, u"video", *assets.video), sub(folder, u"sub", *assets.subPicture);
    EXPECT_EQ(orvMuxStillMenu(0, video.file, sub.file, PAL), 0u);
}

// Files that give less than their size: one that stands behind its start, and one that is asked a second time.
TEST(StillMenu, FilesThatGiveLessThanTheirSize)
{
    const TempDir folder;
    const OpenFile output(folder, u"menu.vob", {}, OS_CREATE);
    const OpenFile video(folder, u"video", part(VIDEO, 0, 9000)), sub(folder, u"sub", part(SUB, 0, 9000));
    ASSERT_EQ(osSeekFile(video.file, 5000, OS_FROM_START), 0u);
    ASSERT_EQ(osSeekFile(sub.file, 9000, OS_FROM_START), 0u);
    EXPECT_EQ(orvMuxStillMenu(output.file, video.file, sub.file, PAL), 0u);
    ASSERT_EQ(osSeekFile(video.file, 0, OS_FROM_START), 0u);
    ASSERT_EQ(osSeekFile(sub.file, 0, OS_FROM_START), 0u);
    EXPECT_EQ(orvMuxStillMenuPair(output.file, video.file, sub.file, sub.file, PAL), 0u);
    uint64_t size = 0;
    ASSERT_EQ(osFileSize(output.file, &size), 0u);
    EXPECT_LE(size, 2 * (1 + 3 * 5) * PACK_BYTES);   // five packs hold 9000 bytes
}

TEST(StillMenu, SubPicturePacksOfAPair)
{
    struct {
        const char* what;
        uint64_t bytes, pts, sector;
        uint8_t id;
        uint64_t sectorBehind;
        std::vector<const char*> heads;   // of each pack but the last
        const char* lastHead;
        const char* tail;
    } const rows[] = {
        { "one pack raises nothing", 2016, 18000, 3, 0x20, 3, {}, PACK_2 SUB_FIRST "20", "" },
        { "the first is at sector 2 in any case", 2016, 18000, 7, 0x21, 7, {}, PACK_2 SUB_FIRST "21", "" },
        { "three packs raise twice",
          2016 + 2024 + 2016,
          18000,
          5,
          0x21,
          7,
          { PACK_2 SUB_FIRST "21", PACK_5 SUB_NEXT "21" },
          PACK_6 "00 00 01 BD 07 E4 81 00 00 21",
          "00 00 01 BE 00 02" },
        { "any time",
          2016 + 2023,
          0x80000000,
          3,
          0x20,
          4,
          { PACK_2 "00 00 01 BD 07 EC 81 81 08 25 00 01 00 01 1E 60 3A 20" },
          PACK_3 "00 00 01 BD 07 EC 81 00 01 FF 20",
          "" },
        { "no time", 2024 + 2024, 0, 3, 0x20, 4, { PACK_2 SUB_NEXT "20" }, PACK_3 SUB_NEXT "20", "" },
        { "nothing",
          0,
          18000,
          3,
          0x20,
          3,
          {},
          PACK_2 "00 00 01 BD 00 0C 81 81 08 21 00 01 8C A1 1E 60 3A 20",
          "00 00 01 BE 07 DA" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        uint64_t sector = row.sector;
        const MuxRun run = runDriver({ .subPicture = part(SUB, 0, row.bytes) }, [&](const MuxFiles& files) {
            return orvMuxSubPicturePacks(files.output, files.subPicture, row.pts, row.id, &sector);
        });
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(sector, row.sectorBehind);
        Bytes expected;
        uint64_t done = 0;
        for (const char* head : row.heads) {
            const uint64_t room = PACK_BYTES - fromHex(head).size();
            expected += packOf(head, part(SUB, done, room));
            done += room;
        }
        expected += packOf(row.lastHead, part(SUB, done, row.bytes - done), row.tail);
        EXPECT_EQ(differences(run.output, expected), "");
    }
}

TEST(StillMenu, SubPicturePacksThatFail)
{
    uint64_t sector = 3;
    const auto driver = [&](const MuxFiles& files) {
        return orvMuxSubPicturePacks(files.output, files.subPicture, 18000, 0x20, &sector);
    };
    MuxAssets assets = assetsOf(0, 5000);
    assets.subPictureMode = OS_APPEND;
    const MuxRun run = runDriver(assets, driver);
    EXPECT_EQ(run.result, 0x840007E7u);
    EXPECT_EQ(run.output.size(), 0u);

    assets.subPictureMode = OS_READ;
    assets.outputMode = OS_READ;
    EXPECT_EQ(runDriver(assets, driver).result, 0x840007E8u);
}

// Menus of any sizes, near the borders of packs above all, against packs that are built another way.
TEST(StillMenu, AnySizes)
{
    std::mt19937_64 random(20);
    const auto below = [&](uint64_t count) { return uint64_t(random() % count); };
    const auto anySize = [&](uint64_t first, uint64_t next) {
        const uint64_t packs = below(4);
        if (packs == 0) return below(first + 12);
        return first + (packs - 1) * next + (below(2) ? below(12) : next - below(14));
    };
    for (uint64_t round = 0; round < 300; round++) {
        const bool pair = below(2) == 1;
        const uint64_t frameTicks = below(2) ? PAL : NTSC;
        const MuxAssets assets = { .video = assetBytes(anySize(2012, 2025), uint32_t(10 * round)),
                                   .subPicture = assetBytes(anySize(2016, 2024), uint32_t(10 * round + 1)),
                                   .letterbox = assetBytes(anySize(2016, 2024), uint32_t(10 * round + 2)) };
        SCOPED_TRACE(testing::Message() << "round " << round << ": " << assets.video->size() << ", "
                                        << assets.subPicture->size() << ", " << assets.letterbox->size());
        uint64_t sector = 3;
        Bytes subPictures = referenceSubPicture(*assets.subPicture, 0x20, 18000, &sector);
        if (pair) subPictures += referenceSubPicture(*assets.letterbox, 0x21, 18000, &sector);
        const Bytes video = referencePacks({ .pts = 18000, .dts = 18000 - frameTicks }, *assets.video,
                                           [&](uint64_t i) { return i == 0 ? 1 : sector++; });
        const Bytes expected =
            placeholder() + part(video, 0, PACK_BYTES) + subPictures + part(video, PACK_BYTES, video.size());
        const MuxRun run = pair ? stillMenuPair(assets, frameTicks) : stillMenu(assets, frameTicks);
        ASSERT_EQ(run.result, 0u);
        ASSERT_EQ(differences(run.output, expected), "");
    }
}
