// Highlight of menus in their navigation packs: when it begins, its colours, its buttons.
#include "base/time_code.h"
#include "project/commands.h"
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

namespace {

// Highlight status and start of a unit.
std::string highlight(const NavRun& run, uint64_t sector)
{
    return run.hexAt(sector, 141, 2) + ", " + run.hexAt(sector, 143, 4);
}

}   // namespace

// ---- highlight ---------------------------------------------------------------------------------------------------

TEST(NavMenu, HighlightBeginsWithEachVob)
{
    for (const uint64_t loopMode : { LOOP_NONE, LOOP_ALWAYS, LOOP_DELAY }) {
        SCOPED_TRACE(loopMode);
        NavSpec given;
        given.vobus = unitRecords({
            { .sector = 0, .scr = 0, .firstPts = 36000, .vobId = 1 },
            { .sector = 1, .scr = 43200, .firstPts = 79200, .vobId = 1 },
            { .sector = 2, .scr = 0, .firstPts = 50000, .vobId = 2 },
            { .sector = 3, .scr = 43200, .firstPts = 93200, .vobId = 2 },
            { .sector = 4, .scr = 86400, .firstPts = 93200, .vobId = 2, .cellId = 2 },
        });
        given.menus = { menuOf(1), menuOf(1) };
        given.menus[0].loopMode = loopMode;
        given.menus[0].loopValue = 43200;
        given.menus[1].loopMode = LOOP_FROM;   // the first menu alone counts
        given.menus[1].loopValue = 43200;
        const NavRun run = setupMenu(given);
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
    NavSpec given;
    given.vobus = unitRecords({
        { .sector = 0, .scr = 0, .firstPts = 36000, .vobId = 1, .temporalRef = 2 },
        { .sector = 1, .scr = 43200, .firstPts = 79200, .vobId = 1, .cellId = 2, .temporalRef = 2 },
        { .sector = 2, .scr = 86400, .firstPts = 122400, .vobId = 1, .cellId = 2, .temporalRef = 2 },
        { .sector = 3, .scr = 0, .firstPts = 36000, .vobId = 2, .temporalRef = 2 },
        { .sector = 4, .scr = 43200, .firstPts = 79200, .vobId = 2, .cellId = 2, .temporalRef = 2 },
    });
    given.menus = { menuOf(1), menuOf(1) };
    given.menus[0].loopMode = LOOP_FROM;
    given.menus[0].loopValue = loopValue;
    return given;
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
    NavSpec given = oneMenu(menuOf(1));
    given.vobus[0].scr = 0xFFFFFFFF80000000;
    given.menus[0].loopMode = LOOP_FROM;
    given.menus[0].loopValue = 1000;
    EXPECT_EQ(setupMenu(given).hexAt(0, 141, 2), "00 01");
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
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 36000, .vobId = 0 },
                                { .sector = 1, .vobId = 1 },
                                { .sector = 2, .vobId = 2 },
                                { .sector = 3, .vobId = 100 },
                                { .sector = 4, .vobId = ~uint64_t(0) } });
    given.menus = { menuOf(1) };
    given.menus[0].hasLetterbox = 1;
    const NavRun run = setupMenu(given);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.hexAt(1, 155, 8), "21 20 00 01 01 00 00 00");
    for (const uint64_t sector : { 0u, 2u, 3u, 4u }) {
        SCOPED_TRACE(sector);
        EXPECT_EQ(run.hexAt(sector, 141, 14), "00 01 00 00 8C A0 FF FF FF FF FF FF FF FF");
        EXPECT_EQ(run.hexAt(sector, 155, 680), none);
    }

    given.menus.clear();   // and no menus at all
    const NavRun without = setupMenu(given);
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
