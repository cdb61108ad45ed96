// Navigation packs of menus: the fields that differ from a title's, and the highlight.
#include "base/result.h"
#include "base/time_code.h"
#include "project/commands.h"
#include "tests/support/log.h"
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

// A button of which every field differs from every other.
ButtonDesc someButton()
{
    ButtonDesc button = {};
    button.xStart = 0x123;
    button.xEnd = 0x2CD;
    button.yStart = 90;
    button.yEnd = 495;
    button.autoAction = 1;
    button.color = 2;
    button.upLink = 0x11;
    button.downLink = 0x12;
    button.leftLink = 0x13;
    button.rightLink = 0x14;
    button.command = VM_LINK_PGCN;
    button.param1 = 7;
    return button;
}

#define SOME_BUTTON "92 32 CD 45 A1 EF 11 12 13 14 20 04 00 00 00 00 00 07"

MenuDesc menuOf(uint64_t buttonCount, const ButtonDesc& button = someButton())
{
    MenuDesc menu = {};
    menu.buttonCount = buttonCount;
    for (uint64_t i = 0; i < buttonCount; i++) menu.buttons[i] = button;
    for (uint64_t i = 0; i < 24; i++) menu.colorSets[i / 8][i % 8] = uint8_t(0xC0 + i);
    return menu;
}

#define COLOR_BYTES "C0 C1 C2 C3 C4 C5 C6 C7 C8 C9 CA CB CC CD CE CF D0 D1 D2 D3 D4 D5 D6 D7"

// An animated menu of two units at 0 and 4, and a still at 7; ten packs.
NavSpec twoMenus()
{
    NavSpec spec;
    spec.audioCount = 1;
    spec.subPictureCount = 1;
    spec.vobus = unitRecords({
        { .sector = 0, .scr = 0, .firstPts = 36000, .vobId = 1, .secondRefEnd = 2, .temporalRef = 2 },
        { .sector = 4,
          .scr = 43200,
          .firstPts = 79200,
          .vobId = 1,
          .firstRefEnd = 2,
          .secondRefEnd = 2,
          .thirdRefEnd = 2,
          .temporalRef = 2 },
        { .sector = 7, .scr = 0, .firstPts = 36000, .pictureCount = 1, .vobId = 2, .firstRefEnd = 1 },
    });
    spec.packs = {
        { 1, 28800, PACK_AC3, 0, 0, 1 }, { 2, 36000, PACK_SUBPICTURE, 0, 0, 1 }, { 5, 72000, PACK_AC3, 0, 0, 1 },
        { 6, 73000, PACK_AC3, 0, 0, 1 }, { 8, 36000, PACK_SUBPICTURE, 0, 7, 2 },
    };
    spec.menus = { menuOf(1), menuOf(2) };
    spec.menus[1].colorSets[0][0] = 0x77;
    spec.sectors = 10;
    return spec;
}

// One unit of a menu.
NavSpec oneMenu(const MenuDesc& menu, int64_t standard = STANDARD_PAL)
{
    NavSpec spec;
    spec.standard = standard;
    spec.vobus = unitRecords({ { .sector = 0, .firstPts = 36000 } });
    spec.menus = { menu };
    return spec;
}

#define NONE_4 "3F FF FF FF  3F FF FF FF  3F FF FF FF  3F FF FF FF  "
#define NONE_16 NONE_4 NONE_4 NONE_4 NONE_4
#define NONE_18 NONE_16 "3F FF FF FF  3F FF FF FF  "

std::string differencesIn(const NavRun& run, uint64_t sector, const std::vector<PackBytes>& named)
{
    const Bytes before(run.before.begin() + std::ptrdiff_t(sector * PACK_BYTES), run.before.end());
    return differences(run.packAt(sector), packOf(before, named));
}

// Highlight status and start of a unit.
std::string highlight(const NavRun& run, uint64_t sector)
{
    return run.hexAt(sector, 141, 2) + ", " + run.hexAt(sector, 143, 4);
}

}   // namespace

// ---- fields ------------------------------------------------------------------------------------------------------

TEST(NavMenu, EveryFieldOfTheFirstPack)
{
    const NavRun run = setupMenu(twoMenus());
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(differencesIn(run, 0,
                            {
                                { 23, "06" },   // one stream; the low two bits stay
                                { 38, "00 00 01 BF 03 D4 00" },
                                { 57, "00 00 70 80" },   // 28800
                                { 61, "00 01 19 40" },   // 72000
                                { 69, "00 00 00 40" },
                                { 141, "00 01" },         // a new highlight
                                { 143, "00 00 8C A0" },   // from 36000
                                { 147, "FF FF FF FF  FF FF FF FF" },
                                { 155, "10 00  00  01 01  00 00 00" },
                                { 163, COLOR_BYTES },
                                { 187, SOME_BUTTON },
                                { 1024, "00 00 01 BF 03 FA 01" },
                                { 1039, "00 00 00 03" },
                                { 1043, "00 00 00 03" },   // unknown: the unit's size
                                { 1047, "00 00 00 02" },
                                { 1055, "00 01 00 01" },
                                { 1059, "00 00 00 40" },
                                { 1075, "00 00 8C A0" },
                                { 1079, "00 01 DE 20" },   // 36000 + 24 x 3600
                                { 1265, "80 00 00 04" },
                                { 1269, NONE_18 "80 00 00 04" },   // 73800
                                { 1345, "80 00 00 04  3F FF FF FF" },
                                { 1353, NONE_18 "3F FF FF FF" },
                                { 1429, "BF FF FF FF" },
                                { 1433, "00 01" },
                                { 1449, "7F FF FF FF" },
                            }),
              "");
}

TEST(NavMenu, EveryFieldOfTheLastPackOfAVob)
{
    const NavRun run = setupMenu(twoMenus());
    EXPECT_EQ(differencesIn(run, 4,
                            {
                                { 23, "06" },
                                { 38, "00 00 01 BF 03 D4 00  00 00 00 04" },
                                { 57, "00 01 19 40" },   // 72000
                                { 61, "00 01 C2 00" },   // 115200
                                { 65, "00 01 DE 20" },   // 79200 + 12 x 3600
                                { 69, "00 00 00 52" },
                                { 141, "00 02" },   // the highlight as before
                                { 143, "00 00 8C A0" },
                                { 147, "FF FF FF FF  FF FF FF FF" },
                                { 155, "10 00  00  01 01  00 00 00" },
                                { 163, COLOR_BYTES },
                                { 187, SOME_BUTTON },
                                { 1024, "00 00 01 BF 03 FA 01  00 00 A8 C0  00 00 00 04  00 00 00 02" },
                                { 1043, "00 00 00 02  00 00 00 02  00 00 00 02" },
                                { 1055, "00 01 00 01" },
                                { 1059, "00 00 00 52" },
                                { 1075, "00 00 8C A0  00 01 DE 20" },
                                { 1265, "BF FF FF FF" },
                                { 1269, NONE_18 "3F FF FF FF" },
                                { 1345, "3F FF FF FF  80 00 00 04" },
                                { 1353, NONE_18 "3F FF FF FF" },   // 27000 lies before the first
                                { 1429, "80 00 00 04" },
                                { 1433, "00 01" },
                                { 1449, "80 00 00 04" },   // the sub-picture began four packs before
                            }),
              "");
}

TEST(NavMenu, EveryFieldOfAStill)
{
    const NavRun run = setupMenu(twoMenus());
    EXPECT_EQ(differencesIn(run, 7,
                            {
                                { 23, "06" },
                                { 38, "00 00 01 BF 03 D4 00  00 00 00 07" },
                                { 57, "00 00 8C A0" },   // 36000
                                { 61, "00 01 35 60" },   // one picture is declared twelve frames long
                                { 65, "00 00 9A B0" },   // 36000 + 3600
                                { 69, "00 00 00 40" },
                                { 141, "00 01" },
                                { 143, "00 00 8C A0" },
                                { 147, "FF FF FF FF  FF FF FF FF" },
                                { 155, "10 00  00  02 02  00 00 00" },
                                { 163, COLOR_BYTES },
                                { 163, "77" },
                                { 187, SOME_BUTTON SOME_BUTTON },
                                { 1024, "00 00 01 BF 03 FA 01  00 00 00 00  00 00 00 07  00 00 00 02  00 00 00 01" },
                                { 1055, "00 02 00 01" },
                                { 1059, "00 00 00 40" },
                                { 1075, "00 00 8C A0  00 01 35 60" },   // and so the VOB
                                { 1265, "BF FF FF FF" },
                                { 1269, NONE_18 "3F FF FF FF" },
                                { 1345, "3F FF FF FF  3F FF FF FF" },
                                { 1353, NONE_18 "3F FF FF FF" },
                                { 1429, "BF FF FF FF" },
                                { 1449, "7F FF FF FF" },
                            }),
              "");
}

TEST(NavMenu, NothingElseChanges)
{
    const NavSpec spec = twoMenus();
    EXPECT_EQ(strayChanges(spec, setupMenu(spec)), "");
}

TEST(NavMenu, EndOfTheVob)
{
    // VOB of so many pictures at so many ticks behind the first record's PTS: 36000 + frames x 3600.
    const struct {
        uint64_t pts, pictures;
        const char* end;
    } rows[] = {
        { 36000, 1, "00 01 35 60" },                                                // below ten frames: twelve
        { 36000, 9, "00 01 35 60" },         { 36000, 10, "00 01 19 40" },          // 72000
        { 36000, 25, "00 01 EC 30" },                                               // 126000
        { 39599, 9, "00 01 35 60" },                                                // 9.99 frames
        { 36001, 10, "00 01 19 40" },                                               // the rest of a frame is dropped
        { 36000 + 3599, 10, "00 01 19 40" }, { 36000 + 3600, 10, "00 01 27 50" },   // 75600
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.pts) + "/" + std::to_string(row.pictures));
        NavSpec spec;
        spec.vobus = unitRecords({ { .sector = 0, .firstPts = 36000, .vobId = 1 },
                                   { .sector = 1, .firstPts = row.pts, .pictureCount = row.pictures, .vobId = 2 } });
        spec.menus = { menuOf(0), menuOf(0) };
        EXPECT_EQ(setupMenu(spec).hexAt(1, 1079, 4), row.end);
    }
}

TEST(NavMenu, VobThatEndsBeforeTheFirstRecordBegins)
{
    // The count of frames is unsigned: (2^64 - 6000) / 3600, and 36000 + that x 3600 is 28784 in 32 bits.
    NavSpec spec;
    spec.vobus = unitRecords({ { .sector = 0, .firstPts = 36000, .vobId = 1 },
                               { .sector = 1, .firstPts = 26400, .pictureCount = 1, .vobId = 2 } });
    spec.menus = { menuOf(0), menuOf(0) };
    EXPECT_EQ(setupMenu(spec).hexAt(1, 1079, 4), "00 00 70 70");
}

TEST(NavMenu, ElapsedTimeBeginsWithTheVobOrTheCell)
{
    NavSpec spec;
    spec.vobus = unitRecords({
        { .sector = 0, .vobId = 1, .cellId = 1 },
        { .sector = 1, .vobId = 1, .cellId = 1 },
        { .sector = 2, .vobId = 1, .cellId = 2 },
        { .sector = 3, .vobId = 1, .cellId = 2 },
        { .sector = 4, .vobId = 2, .cellId = 2 },
        { .sector = 5, .vobId = 2, .cellId = 2 },
        { .sector = 6, .vobId = 2, .cellId = 2 },
        { .sector = 7, .vobId = 3, .cellId = 1 },
    });
    spec.menus = { menuOf(0), menuOf(0), menuOf(0) };
    const NavRun run = setupMenu(spec);
    const char* const times[] = { "00 00 00 40", "00 00 00 52", "00 00 00 40", "00 00 00 52",
                                  "00 00 00 40", "00 00 00 52", "00 00 00 64", "00 00 00 40" };
    for (uint64_t i = 0; i < 8; i++) {
        EXPECT_EQ(run.hexAt(i, 69, 4), times[i]) << i;
        EXPECT_EQ(run.hexAt(i, 1059, 4), times[i]) << i;
    }
}

TEST(NavMenu, EndOfPresentationInTheLastUnitOfEachVob)
{
    NavSpec spec;
    spec.vobus = unitRecords({
        { .sector = 0, .firstPts = 1000, .vobId = 1 },
        { .sector = 1, .firstPts = 2000, .vobId = 1 },
        { .sector = 2, .firstPts = 3000, .vobId = 2 },
        { .sector = 3, .firstPts = 4000, .vobId = 3 },
        { .sector = 4, .firstPts = 5000, .vobId = 3 },
    });
    spec.menus = { menuOf(0), menuOf(0), menuOf(0) };
    const NavRun run = setupMenu(spec);
    EXPECT_EQ(run.hexAt(0, 65, 4), "00 00 00 00");
    EXPECT_EQ(run.hexAt(1, 65, 4), "00 00 B0 90");   // 2000 + 43200
    EXPECT_EQ(run.hexAt(2, 65, 4), "00 00 B4 78");   // 46200
    EXPECT_EQ(run.hexAt(3, 65, 4), "00 00 00 00");
    EXPECT_EQ(run.hexAt(4, 65, 4), "00 00 BC 48");   // 48200
}

TEST(NavMenu, SubPictureStreamsOfALetterboxMenu)
{
    NavSpec spec = twoMenus();
    spec.subPictureCount = 2;
    const NavRun run = setupMenu(spec);
    // The second stream has no packs: distance 0.
    EXPECT_EQ(run.words(0, 1449, 4), "7FFFFFFF 7FFFFFFF 00000000 00000000");
    EXPECT_EQ(run.words(4, 1449, 4), "80000004 7FFFFFFF 00000000 00000000");
    spec.subPictureCount = 0;
    EXPECT_EQ(setupMenu(spec).words(4, 1449, 32).find_first_not_of("0 "), std::string::npos);
}

// ---- highlight ---------------------------------------------------------------------------------------------------

TEST(NavMenu, HighlightBeginsWithEachVob)
{
    for (const uint64_t loopMode : { LOOP_NONE, LOOP_ALWAYS, LOOP_DELAY }) {
        SCOPED_TRACE(loopMode);
        NavSpec spec;
        spec.vobus = unitRecords({
            { .sector = 0, .scr = 0, .firstPts = 36000, .vobId = 1 },
            { .sector = 1, .scr = 43200, .firstPts = 79200, .vobId = 1 },
            { .sector = 2, .scr = 0, .firstPts = 50000, .vobId = 2 },
            { .sector = 3, .scr = 43200, .firstPts = 93200, .vobId = 2 },
            { .sector = 4, .scr = 86400, .firstPts = 93200, .vobId = 2, .cellId = 2 },
        });
        spec.menus = { menuOf(1), menuOf(1) };
        spec.menus[0].loopMode = loopMode;
        spec.menus[0].loopValue = 43200;
        spec.menus[1].loopMode = LOOP_FROM;   // the first menu alone counts
        spec.menus[1].loopValue = 43200;
        const NavRun run = setupMenu(spec);
        // 36000, the PTS of the first record, for all VOBs.
        EXPECT_EQ(highlight(run, 0), "00 01, 00 00 8C A0");
        EXPECT_EQ(highlight(run, 1), "00 02, 00 00 8C A0");
        EXPECT_EQ(highlight(run, 2), "00 01, 00 00 8C A0");
        EXPECT_EQ(highlight(run, 3), "00 02, 00 00 8C A0");
        EXPECT_EQ(highlight(run, 4), "00 02, 00 00 8C A0");
    }
}

namespace {

// Two menus of three units; the loop of the first begins at 43200.
NavSpec loopingMenus(uint64_t loopValue)
{
    NavSpec spec;
    spec.vobus = unitRecords({
        { .sector = 0, .scr = 0, .firstPts = 36000, .vobId = 1, .temporalRef = 2 },
        { .sector = 1, .scr = 43200, .firstPts = 79200, .vobId = 1, .cellId = 2, .temporalRef = 2 },
        { .sector = 2, .scr = 86400, .firstPts = 122400, .vobId = 1, .cellId = 2, .temporalRef = 2 },
        { .sector = 3, .scr = 0, .firstPts = 36000, .vobId = 2, .temporalRef = 2 },
        { .sector = 4, .scr = 43200, .firstPts = 79200, .vobId = 2, .cellId = 2, .temporalRef = 2 },
    });
    spec.menus = { menuOf(1), menuOf(1) };
    spec.menus[0].loopMode = LOOP_FROM;
    spec.menus[0].loopValue = loopValue;
    return spec;
}

}   // namespace

TEST(NavMenu, NoHighlightBeforeTheLoop)
{
    const NavRun run = setupMenu(loopingMenus(43200));
    for (const uint64_t sector : { 0u, 3u }) {
        EXPECT_EQ(run.hexAt(sector, 141, 2), "00 00");
        EXPECT_EQ(run.hexAt(sector, 143, 692), toHex(Bytes(692, 0)));   // up to 834
    }
    for (const uint64_t sector : { 1u, 2u, 4u }) {
        EXPECT_EQ(run.hexAt(sector, 147, 8), "FF FF FF FF FF FF FF FF");
        EXPECT_EQ(run.hexAt(sector, 155, 8), "10 00 00 01 01 00 00 00");
        EXPECT_EQ(run.hexAt(sector, 163, 24), COLOR_BYTES);
        EXPECT_EQ(run.hexAt(sector, 187, 18), SOME_BUTTON);
    }
}

TEST(NavMenu, HighlightBeginsOnceWithTheLoop)
{
    const NavRun run = setupMenu(loopingMenus(43200));
    EXPECT_EQ(highlight(run, 1), "00 01, 00 01 19 40");   // 72000, the display start
    EXPECT_EQ(run.hexAt(2, 141, 2), "00 02");
    EXPECT_EQ(run.hexAt(4, 141, 2), "00 02");   // the list of the whole file has one first
    // One tick later the loop begins a unit later, in both menus.
    const NavRun later = setupMenu(loopingMenus(43201));
    EXPECT_EQ(highlight(later, 1), "00 00, 00 00 00 00");
    EXPECT_EQ(highlight(later, 2), "00 01, 00 01 C2 00");   // 115200
    EXPECT_EQ(highlight(later, 4), "00 00, 00 00 00 00");
    const NavRun never = setupMenu(loopingMenus(86401));
    for (uint64_t i = 0; i < 5; i++) EXPECT_EQ(highlight(never, i), "00 00, 00 00 00 00");
}

TEST(NavMenu, LaterUnitsOfTheLoopNameItsBeginning)
{
    const NavRun run = setupMenu(loopingMenus(43200));
    EXPECT_EQ(highlight(run, 2), "00 02, 00 01 19 40");
    EXPECT_EQ(highlight(run, 4), "00 02, 00 01 19 40");
}

TEST(NavMenu, LoopComparisonIsUnsigned)
{
    NavSpec spec = oneMenu(menuOf(1));
    spec.vobus[0].scr = 0xFFFFFFFF80000000;
    spec.menus[0].loopMode = LOOP_FROM;
    spec.menus[0].loopValue = 1000;
    EXPECT_EQ(setupMenu(spec).hexAt(0, 141, 2), "00 01");
}

TEST(NavMenu, MenuWithoutButtons)
{
    MenuDesc menu = menuOf(0);
    EXPECT_EQ(setupMenu(oneMenu(menu)).hexAt(0, 141, 46),
              "00 01 00 00 8C A0 FF FF FF FF FF FF FF FF 10 00 00 00 00 00 00 00 " COLOR_BYTES);
    menu.hasLetterbox = 1;
    const NavRun run = setupMenu(oneMenu(menu));
    EXPECT_EQ(run.hexAt(0, 155, 8), "21 20 00 00 00 00 00 00");
    EXPECT_EQ(run.hexAt(0, 187, 648), toHex(Bytes(648, 0)));
}

TEST(NavMenu, VobThatNamesNoMenu)
{
    // A menu without buttons: highlight status and times as ever, one group, no button, no colour.
    const std::string none = "10 00 00 00 00 00 00 00 " + toHex(Bytes(24 + 648, 0));
    NavSpec spec;
    spec.vobus = unitRecords({ { .sector = 0, .firstPts = 36000, .vobId = 0 },
                               { .sector = 1, .vobId = 1 },
                               { .sector = 2, .vobId = 2 },
                               { .sector = 3, .vobId = 100 },
                               { .sector = 4, .vobId = ~uint64_t(0) } });
    spec.menus = { menuOf(1) };
    spec.menus[0].hasLetterbox = 1;
    const NavRun run = setupMenu(spec);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.hexAt(1, 155, 8), "21 20 00 01 01 00 00 00");
    for (const uint64_t sector : { 0u, 2u, 3u, 4u }) {
        SCOPED_TRACE(sector);
        EXPECT_EQ(run.hexAt(sector, 141, 14), "00 01 00 00 8C A0 FF FF FF FF FF FF FF FF");
        EXPECT_EQ(run.hexAt(sector, 155, 680), none);
    }

    spec.menus.clear();   // and no menus at all
    const NavRun without = setupMenu(spec);
    EXPECT_EQ(without.result, 0u);
    for (uint64_t sector = 0; sector < 5; sector++) EXPECT_EQ(without.hexAt(sector, 155, 680), none);
}

// ---- buttons -----------------------------------------------------------------------------------------------------

TEST(NavMenu, BitsOfAButton)
{
    struct Row {
        const char* what;
        ButtonDesc button;
        const char* entry;
    };
    const auto with = [](uint64_t ButtonDesc::*field, uint64_t value) {
        ButtonDesc button = {};
        button.*field = value;
        return button;
    };
    const Row rows[] = {
        { "nothing", {}, "00 00 00 00 00 00 00 00 00 00" },
        { "colour 1", with(&ButtonDesc::color, 1), "40 00 00 00 00 00 00 00 00 00" },
        { "colour 3", with(&ButtonDesc::color, 3), "C0 00 00 00 00 00 00 00 00 00" },
        { "colour 4: the low two bits", with(&ButtonDesc::color, 4), "00 00 00 00 00 00 00 00 00 00" },
        { "colour 6: the low two bits", with(&ButtonDesc::color, 6), "80 00 00 00 00 00 00 00 00 00" },
        { "left 0x3FF", with(&ButtonDesc::xStart, 0x3FF), "3F F0 00 00 00 00 00 00 00 00" },
        { "left above 10 bits", with(&ButtonDesc::xStart, 0xFC10), "01 00 00 00 00 00 00 00 00 00" },
        { "right 0x3FF", with(&ButtonDesc::xEnd, 0x3FF), "00 03 FF 00 00 00 00 00 00 00" },
        { "right above 10 bits", with(&ButtonDesc::xEnd, 0xFC01), "00 00 01 00 00 00 00 00 00 00" },
        { "automatic", with(&ButtonDesc::autoAction, 1), "00 00 00 40 00 00 00 00 00 00" },
        { "automatic 7: the low two bits", with(&ButtonDesc::autoAction, 7), "00 00 00 C0 00 00 00 00 00 00" },
        { "top 0x3FF", with(&ButtonDesc::yStart, 0x3FF), "00 00 00 3F F0 00 00 00 00 00" },
        { "top above 10 bits", with(&ButtonDesc::yStart, 0xFC10), "00 00 00 01 00 00 00 00 00 00" },
        { "bottom 0x3FF", with(&ButtonDesc::yEnd, 0x3FF), "00 00 00 00 03 FF 00 00 00 00" },
        { "bottom above 10 bits", with(&ButtonDesc::yEnd, 0xFC01), "00 00 00 00 00 01 00 00 00 00" },
        { "up", with(&ButtonDesc::upLink, 0x124), "00 00 00 00 00 00 24 00 00 00" },
        { "down", with(&ButtonDesc::downLink, 0x124), "00 00 00 00 00 00 00 24 00 00" },
        { "left link", with(&ButtonDesc::leftLink, 0x124), "00 00 00 00 00 00 00 00 24 00" },
        { "right link", with(&ButtonDesc::rightLink, 0x124), "00 00 00 00 00 00 00 00 00 24" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const NavRun run = setupMenu(oneMenu(menuOf(1, row.button)));
        EXPECT_EQ(run.hexAt(0, 187, 18), row.entry + std::string(" 00 00 00 00 00 00 00 00"));
        EXPECT_EQ(run.hexAt(0, 205, 630), toHex(Bytes(630, 0)));
    }
}

TEST(NavMenu, CommandOfAButton)
{
    const struct {
        const char* what;
        uint64_t command, p1, p2, p3;
        const char* bytes;
    } rows[] = {
        { "none", VM_NOP, 1, 2, 3, "00 00 00 00 00 00 00 00" },
        { "jump to a title set's menu", VM_JUMP_VTSM, 7, 3, 0, "30 06 00 02 07 83 00 00" },
        { "jump to a chapter", VM_JUMP_VTSPTT, 1, 0x123, 0, "30 05 01 23 00 01 00 00" },
        { "link to a program chain", VM_LINK_PGCN, 0x107, 0, 0, "20 04 00 00 00 00 00 07" },
        { "link to a cell", VM_LINK_CN, 4, 5, 0, "20 07 00 00 00 00 14 04" },
        { "set the audio stream and stay", VM_SET_AUDIO, 9, 3, 0, "51 01 00 81 00 00 0C 01" },
        { "set the audio stream and leave", VM_SET_AUDIO, 2, 3, 1, "51 01 00 82 00 00 0C 0D" },
        { "three parameters", VM_LINK_PGCN_IF_EQUAL, 3, 0x1234, 0xFF05, "20 A4 00 03 12 34 7F 05" },
        { "a fourth that is 0", VM_SET_REG_IF_EQUAL, 3, 0x1234, 2, "71 A0 03 02 00 00 12 34" },
        { "refused, but written", VM_MULTIPLY_REG, 2, 0x1234, 0, "75 00 00 02 12 34 00 00" },
        { "unknown", 6, 1, 2, 3, "00 00 00 00 00 00 00 00" },
        { "unknown and large", 105, 1, 2, 3, "00 00 00 00 00 00 00 00" },
        { "far too large", 0x10000000A, 1, 2, 3, "00 00 00 00 00 00 00 00" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ButtonDesc button = {};
        button.command = row.command;
        button.param1 = row.p1;
        button.param2 = row.p2;
        button.param3 = row.p3;
        const NavRun run = setupMenu(oneMenu(menuOf(1, button)));
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(run.hexAt(0, 197, 8), row.bytes);
    }
}

TEST(NavMenu, ThirtySixButtons)
{
    MenuDesc menu = menuOf(36);
    for (uint64_t i = 0; i < 36; i++) menu.buttons[i].rightLink = i + 1;
    const NavRun run = setupMenu(oneMenu(menu));
    EXPECT_EQ(run.hexAt(0, 155, 8), "10 00 00 24 24 00 00 00");
    for (uint64_t i = 0; i < 36; i++) {
        Bytes entry = fromHex(SOME_BUTTON);
        entry[9] = uint8_t(i + 1);
        EXPECT_EQ(run.hexAt(0, 187 + 18 * i, 18), toHex(entry)) << i;
    }
    EXPECT_EQ(run.hexAt(0, 835, 189), toHex(Bytes(189, 0)));
}

TEST(NavMenu, LetterboxHasTwoGroups)
{
    MenuDesc menu = menuOf(3);
    menu.hasLetterbox = 1;
    for (uint64_t i = 0; i < 3; i++) menu.buttons[i].rightLink = i + 1;
    // 90 x 3 / 4 = 67, 495 x 3 / 4 = 371: 139 and 443 in PAL, 127 and 431 otherwise.
    const struct {
        int64_t standard;
        const char* rows;   // bytes 3 to 5 of an entry
    } standards[] = { { STANDARD_PAL, "48 B1 BB" }, { STANDARD_NTSC, "47 F1 AF" }, { 0, "47 F1 AF" } };
    for (const auto& row : standards) {
        SCOPED_TRACE(row.standard);
        const NavRun run = setupMenu(oneMenu(menu, row.standard));
        EXPECT_EQ(run.hexAt(0, 155, 8), "21 20 00 03 03 00 00 00");
        for (uint64_t i = 0; i < 3; i++) {
            Bytes entry = fromHex(SOME_BUTTON);
            entry[9] = uint8_t(i + 1);
            EXPECT_EQ(run.hexAt(0, 187 + 18 * i, 18), toHex(entry)) << i;
            const Bytes lines = fromHex(row.rows);
            std::copy(lines.begin(), lines.end(), entry.begin() + 3);
            EXPECT_EQ(run.hexAt(0, 187 + 18 * (18 + i), 18), toHex(entry)) << i;   // from entry 18, however few
        }
        EXPECT_EQ(run.hexAt(0, 241, 270), toHex(Bytes(270, 0)));
        EXPECT_EQ(run.hexAt(0, 565, 459), toHex(Bytes(459, 0)));
    }
}

TEST(NavMenu, LetterboxTakesEighteenButtons)
{
    for (const uint64_t count : { 18u, 20u, 36u }) {
        SCOPED_TRACE(count);
        MenuDesc menu = menuOf(count);
        menu.hasLetterbox = 1;
        for (uint64_t i = 0; i < count; i++) menu.buttons[i].rightLink = i + 1;
        const NavRun run = setupMenu(oneMenu(menu));
        const Bytes said = { uint8_t(count), uint8_t(count) };
        EXPECT_EQ(run.hexAt(0, 158, 2), toHex(said));
        for (uint64_t i = 0; i < 36; i++) {
            Bytes entry = fromHex(i < 18 ? SOME_BUTTON : "92 32 CD 48 B1 BB 11 12 13 14 20 04 00 00 00 00 00 07");
            entry[9] = uint8_t(i % 18 + 1);
            EXPECT_EQ(run.hexAt(0, 187 + 18 * i, 18), toHex(entry)) << i;
        }
        EXPECT_EQ(run.hexAt(0, 835, 189), toHex(Bytes(189, 0)));
    }
}

// ---- the file ----------------------------------------------------------------------------------------------------

namespace {

struct MenuFile {
    TempDir folder;
    RunRoot run{ 1, folder / u"run.log" };
    std::u16string path = folder / u"VIDEO_TS.VOB";

    uint64_t fill(const NavSpec& spec)
    {
        const List<VobuRecord> vobus(spec.vobus);
        const List<StreamPackRecord> packs(spec.packs);
        return orvSetupMenu(run.context.get(), spec.audioCount, spec.subPictureCount, spec.menus.data(),
                            spec.menus.size(), spec.standard, path.c_str(), vobus.block, packs.block);
    }
};

}   // namespace

TEST(NavMenu, EmptyListChangesNothing)
{
    MenuFile file;
    const Bytes bytes(3 * 2048 + 5, 0x33);
    writeFile(file.path, bytes);
    NavSpec spec;
    spec.menus = { menuOf(1) };
    EXPECT_EQ(file.fill(spec), 0u);
    EXPECT_TRUE(readFile(file.path) == bytes);
}

TEST(NavMenu, SizeInWholeSectors)
{
    // The last unit reaches to the end of the last whole sector.
    MenuFile file;
    NavSpec spec = twoMenus();
    writeFile(file.path, navStream(spec) + Bytes(2047, 1));
    EXPECT_EQ(file.fill(spec), 0u);
    const Bytes after = readFile(file.path);
    EXPECT_EQ(after.size(), 10 * 2048 + 2047u);
    EXPECT_EQ(toHex(after.data() + 7 * 2048 + 1039, 4), "00 00 00 02");
}

TEST(NavMenu, PackThatCantBeRead)
{
    const NavSpec spec = twoMenus();
    for (const uint64_t size : { 7 * 2048u, 8 * 2048 - 1u }) {
        SCOPED_TRACE(size);
        MenuFile file;
        Bytes stream = navStream(spec);
        stream.resize(size);
        writeFile(file.path, stream);
        EXPECT_EQ(file.fill(spec), 0x84000FB4u);
        EXPECT_TRUE(
            logHolds(file.run.logPath, { { 0x84000FB4, u"Failed to read pack in <orvSetupMenu>: " + file.path } }));
        // Those before it are filled.
        const Bytes after = readFile(file.path);
        EXPECT_EQ(after.size(), size);
        EXPECT_EQ(toHex(after.data() + 57, 4), "00 00 70 80");
        EXPECT_EQ(toHex(after.data() + 4 * 2048 + 57, 4), "00 01 19 40");
    }
}

TEST(NavMenu, MissingFileIsOpenedEmpty)
{
    MenuFile file;
    EXPECT_EQ(file.fill(twoMenus()), 0x84000FB4u);
    EXPECT_TRUE(logHolds(file.run.logPath, { { 0x84000FB4, u"Failed to read pack in <orvSetupMenu>: " + file.path } }));
    EXPECT_TRUE(fileExists(file.path));
    EXPECT_TRUE(readFile(file.path).empty());
}

TEST(NavMenu, FileThatCantBeOpened)
{
    MenuFile file;
    file.path = file.folder / u"no folder/VIDEO_TS.VOB";
    EXPECT_NE(file.fill(twoMenus()), 0u);
}

#ifndef _WIN32

TEST(NavMenu, PackThatCantBeWritten)
{
    MenuFile file;
    const NavSpec spec = twoMenus();
    writeFile(file.path, navStream(spec));
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = { 4096, before.rlim_max };
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const uint64_t result = file.fill(spec);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(result, 0x84000FB3u);
    EXPECT_TRUE(
        logHolds(file.run.logPath, { { 0x84000FB3, u"Failed to write pack in <orvSetupMenu>: " + file.path } }));
}

#endif
