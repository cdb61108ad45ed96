// The command tables of program chains: menus of a title set, menus of the manager, titles.
#include "base/time_code.h"
#include "tests/video/table_bytes.h"
#include "video/pgc.h"

#include <memory>

namespace {

// Instructions as they stand on the disc.
const std::string GOTO_5_UNLESS_HIGHLIGHT = "00 A1 00 04 00 00 00 05";
const std::string HIGHLIGHT_FROM_GPRM4 = "46 00 00 00 00 04 00 00";
const std::string CLEAR_GPRM4 = "71 00 00 04 00 00 00 00";
const std::string BREAK = "00 02 00 00 00 00 00 00";
const std::string HIGHLIGHT_1 = "56 00 00 00 04 00 00 00";
const std::string BREAK_UNLESS_FROM_TITLE = "00 B2 00 03 00 01 00 00";
const std::string CLEAR_GPRM3 = "71 00 00 03 00 00 00 00";
const std::string GET_CHAPTER = "61 00 00 02 00 87 00 00";
const std::string LINK_CELL_1 = "20 07 00 00 00 00 00 01";
const std::string LINK_CELL_2 = "20 07 00 00 00 00 00 02";
const std::string TITLE_MENU = "30 06 00 00 00 42 00 00";
const std::string CALL_TITLE_MENU = "30 08 00 00 01 42 00 00";

const std::string LATER_MENU = GOTO_5_UNLESS_HIGHLIGHT + HIGHLIGHT_FROM_GPRM4 + CLEAR_GPRM4 + BREAK + HIGHLIGHT_1;
const std::string FIRST_MENU = LATER_MENU + BREAK_UNLESS_FROM_TITLE + CLEAR_GPRM3 + GET_CHAPTER;

// The command table of a chain, by its own last byte; nothing if the chain has none.
Bytes commandTable(const Bytes& pgc)
{
    const uint64_t at = numberAt(pgc, 228, 2);
    if (!at) return {};
    return slice(pgc, at, numberAt(pgc, at + 6, 2) + 1);
}

void expectCommands(const Bytes& pgc, const std::string& hex, const std::string& what)
{
    expectAt(pgc, 228, "00 EC", what + ": place of the table");
    EXPECT_EQ(toHex(fromHex(hex)), toHex(commandTable(pgc))) << what;
}

// Menus of six sectors each; menu n is VOB n with one cell.
std::vector<Vobu> menus(const std::vector<uint64_t>& pictures)
{
    std::vector<Vobu> units;
    for (uint64_t i = 0; i < pictures.size(); i++) {
        units.push_back({ .sector = 6 * i, .lastSector = 6 * i + 5, .pictures = pictures[i], .vob = i + 1 });
    }
    return units;
}

struct MenuCase {
    const char* what;
    uint64_t pictures;
    uint64_t loopMode;
    uint64_t audioMark;
    std::string head;       // counts and last byte
    std::string commands;   // behind the pre commands
    const char* cell;       // still time and command of the one cell
};

Bytes menuPgc(TitleSetDesc* titleSet, uint64_t index, const std::vector<Vobu>& units, int64_t standard = STANDARD_PAL)
{
    const VobuBlock block(units);
    uint8_t* pgc = nullptr;
    EXPECT_EQ(0u, orvBuildMenuPgc(titleSet, standard, index, block.list, &pgc));
    return takeBlock(pgc);
}

Bytes managerPgc(TitleSetDesc* manager, uint64_t index, uint64_t titleSets, const std::vector<Vobu>& units)
{
    const VobuBlock block(units);
    uint8_t* pgc = nullptr;
    EXPECT_EQ(0u, orvBuildManagerMenuPgc(manager, STANDARD_PAL, index, titleSets, block.list, &pgc));
    return takeBlock(pgc);
}

Bytes titlePgc(TitleSetDesc* titleSet, uint64_t number, const std::vector<Vobu>& units, int64_t standard = STANDARD_PAL)
{
    const VobuBlock block(units);
    uint8_t* pgc = nullptr;
    EXPECT_EQ(0u, orvBuildTitlePgc(titleSet, number, standard, block.list, &pgc));
    return takeBlock(pgc);
}

std::unique_ptr<TitleSetDesc> newTitleSet()
{
    return std::make_unique<TitleSetDesc>();
}

}   // namespace

// ---- menus of a title set -----------------------------------------------------------------------------------------

TEST(MenuPgc, LaterStillMenuWholeBlock)
{
    const auto titleSet = newTitleSet();
    const Bytes pgc = menuPgc(titleSet.get(), 1, menus({ 1, 1 }));
    expectSameBytes(layout(314,
                           {
                               { 2, "01 01 00 00 00 52" },           // one picture: twelve frames
                               { 8, "00 08 03 00" },                 // prohibited operations of a menu
                               { 28, "80 00 00 00" },                // one sub-picture stream
                               { 228, "00 EC 01 1C 01 1E 01 36" },   // 236, 284, 286, 310
                               { 236, "00 05 00 00 00 00 00 2F" + LATER_MENU },
                               { 284, "01 00" },
                               { 286, "02 00 FF 00 00 00 00 52 00 00 00 06 00 00 00 00 00 00 00 06 00 00 00 0B" },
                               { 310, "00 02 00 01" },
                           }),
                    pgc, "second menu");
    EXPECT_EQ(1u, titleSet->menuAttributes.attributeHead);
}

TEST(MenuPgc, FirstMenuWithoutChapters)
{
    const auto titleSet = newTitleSet();
    const Bytes pgc = menuPgc(titleSet.get(), 0, menus({ 1, 1 }));
    expectCommands(pgc, "00 08 00 00 00 00 00 47" + FIRST_MENU, "first menu");
    expectAt(pgc, 8, "00 08 03 00", "prohibited operations");
    EXPECT_EQ(236u + 72 + 2 + 24 + 4, pgc.size());
}

TEST(MenuPgc, FirstMenuWithChapters)
{
    const auto titleSet = newTitleSet();
    titleSet->chapterCount = 3;
    titleSet->chapters[0] = { .startFrame = 0, .menuPage = 1, .highlightButton = 2 };
    titleSet->chapters[1] = { .startFrame = 90000, .menuPage = 300, .highlightButton = 36 };
    titleSet->chapters[2] = { .startFrame = 180000, .menuPage = 0, .highlightButton = 0 };
    expectCommands(menuPgc(titleSet.get(), 0, menus({ 1 })),
                   "00 0E 00 00 00 00 00 77" + FIRST_MENU +
                       "71 A0 02 04 08 00 00 01  20 A4 00 02 00 01 00 01"    // chapter 1: button 2, page 1
                       "71 A0 02 04 90 00 00 02  20 A4 00 02 00 02 01 2C"    // chapter 2: button 36, page 300
                       "71 A0 02 04 00 00 00 03  20 A4 00 02 00 03 00 00",   // chapter 3: nothing
                   "three chapters");
}

// Page and button are cut to what the instructions hold: 15 bits of program chain, 16 bits of register.
TEST(MenuPgc, ChapterValuesAreCut)
{
    const auto titleSet = newTitleSet();
    titleSet->chapterCount = 1;
    titleSet->chapters[0] = { .startFrame = 0, .menuPage = 0x18001, .highlightButton = 65 };
    expectCommands(menuPgc(titleSet.get(), 0, menus({ 1 })),
                   "00 0A 00 00 00 00 00 57" + FIRST_MENU + "71 A0 02 04 04 00 00 01  20 A4 00 02 00 01 00 01",
                   "page 0x18001 and button 65");
}

TEST(MenuPgc, ChaptersStandInTheFirstMenuAlone)
{
    const auto titleSet = newTitleSet();
    titleSet->chapterCount = 3;
    expectCommands(menuPgc(titleSet.get(), 1, menus({ 1, 1 })), "00 05 00 00 00 00 00 2F" + LATER_MENU, "menu 2");
    expectCommands(menuPgc(titleSet.get(), 2, menus({ 1, 1, 1 })), "00 05 00 00 00 00 00 2F" + LATER_MENU, "menu 3");
}

TEST(MenuPgc, TwoHundredAndFiftyFiveChapters)
{
    const auto titleSet = newTitleSet();
    titleSet->chapterCount = 255;
    for (int64_t i = 0; i < 255; i++)
        titleSet->chapters[i] = { .startFrame = i, .menuPage = i + 1, .highlightButton = 1 };
    const Bytes table = commandTable(menuPgc(titleSet.get(), 0, menus({ 1 })));
    // 8 + 2 x 255 = 518 commands behind a header of 8 bytes: 4152 bytes
    ASSERT_EQ(4152u, table.size());
    expectAt(table, 0, "02 06 00 00 00 00 10 37", "counts");
    expectAt(table, 4136, "71 A0 02 04 04 00 00 FF 20 A4 00 02 00 FF 00 FF", "chapter 255");
}

TEST(MenuPgc, WhatFollowsThePreCommands)
{
    const MenuCase cases[] = {
        { "still, no loop", 1, LOOP_NONE, 0, "00 05 00 00 00 00 00 2F", "", "FF 00" },
        { "still, loop: no cell command, though the cell names one", 1, LOOP_ALWAYS, 0, "00 05 00 00 00 00 00 2F", "",
          "00 01" },
        { "still, loop from a time", 1, LOOP_FROM, 0, "00 05 00 00 00 00 00 2F", "", "00 01" },
        { "still, delay", 1, LOOP_DELAY, 0, "00 05 00 00 00 00 00 2F", "", "FF 01" },
        { "animated, loop", 50, LOOP_ALWAYS, 0, "00 05 00 00 00 01 00 37", LINK_CELL_1, "00 01" },
        { "animated, loop from a time", 50, LOOP_FROM, 0, "00 05 00 00 00 01 00 37", LINK_CELL_2, "00 01" },
        { "animated, no loop: the last pre command once more", 50, LOOP_NONE, 0, "00 05 00 00 00 01 00 37", HIGHLIGHT_1,
          "FF 00" },
        { "animated, delay: the last pre command once more", 50, LOOP_DELAY, 0, "00 05 00 00 00 01 00 37", HIGHLIGHT_1,
          "FF 01" },
        { "two pictures are animated", 2, LOOP_ALWAYS, 0, "00 05 00 00 00 01 00 37", LINK_CELL_1, "00 01" },
        { "no picture is animated", 0, LOOP_ALWAYS, 0, "00 05 00 00 00 01 00 37", LINK_CELL_1, "00 01" },
        { "still with an audio button: post command", 1, LOOP_NONE, 3, "00 05 00 01 00 00 00 37", TITLE_MENU, "FF 00" },
        { "animated with an audio button: the post command stands behind the cell command", 50, LOOP_NONE, 3,
          "00 05 00 01 00 01 00 3F", HIGHLIGHT_1 + TITLE_MENU, "FF 00" },
        { "animated and looping with an audio button: no post command", 50, LOOP_ALWAYS, 3, "00 05 00 00 00 01 00 37",
          LINK_CELL_1, "00 01" },
        { "delay with an audio button: no post command", 1, LOOP_DELAY, 3, "00 05 00 00 00 00 00 2F", "", "FF 01" },
        { "a mark other than 3 is none", 1, LOOP_NONE, 1, "00 05 00 00 00 00 00 2F", "", "FF 00" },
    };
    for (const MenuCase& c : cases) {
        const auto titleSet = newTitleSet();
        titleSet->menus[1].loopMode = c.loopMode;
        titleSet->menus[1].audioButtonMark = c.audioMark;
        const Bytes pgc = menuPgc(titleSet.get(), 1, menus({ 1, c.pictures }));
        expectCommands(pgc, c.head + LATER_MENU + c.commands, c.what);
        const uint64_t cell = numberAt(pgc, 232, 2);
        expectAt(pgc, cell + 2, c.cell, std::string(c.what) + ", cell");
    }
}

// In a first menu the last pre command is the last link of the chapters, or the reading of the chapter.
TEST(MenuPgc, RepeatedCommandOfAnAnimatedFirstMenu)
{
    const auto titleSet = newTitleSet();
    expectCommands(menuPgc(titleSet.get(), 0, menus({ 50 })), "00 08 00 00 00 01 00 4F" + FIRST_MENU + GET_CHAPTER,
                   "no chapters");
    titleSet->chapterCount = 1;
    titleSet->chapters[0] = { .startFrame = 0, .menuPage = 2, .highlightButton = 3 };
    const std::string chapter = "71 A0 02 04 0C 00 00 01 20 A4 00 02 00 01 00 02";
    expectCommands(menuPgc(titleSet.get(), 0, menus({ 50 })),
                   "00 0A 00 00 00 01 00 5F" + FIRST_MENU + chapter + "20 A4 00 02 00 01 00 02", "one chapter");
    titleSet->menus[0].audioButtonMark = 3;
    expectCommands(menuPgc(titleSet.get(), 0, menus({ 50 })),
                   "00 0A 00 01 00 01 00 67" + FIRST_MENU + chapter + "20 A4 00 02 00 01 00 02" + TITLE_MENU,
                   "one chapter and an audio button");
}

TEST(MenuPgc, LoopModeOfTheMenuItselfCounts)
{
    const auto titleSet = newTitleSet();
    titleSet->menus[0].loopMode = LOOP_ALWAYS;
    const Bytes pgc = menuPgc(titleSet.get(), 1, menus({ 1, 50 }));
    expectCommands(pgc, "00 05 00 00 00 01 00 37" + LATER_MENU + HIGHLIGHT_1, "menu 2 does not loop");
    expectAt(pgc, numberAt(pgc, 232, 2) + 2, "FF 00", "its cell");
}

TEST(MenuPgc, LoopFromATimeHasTwoCells)
{
    const auto titleSet = newTitleSet();
    titleSet->menus[0].loopMode = LOOP_FROM;
    const Bytes pgc = menuPgc(titleSet.get(), 0,
                              { { .sector = 0, .lastSector = 9, .pictures = 12, .cell = 1 },
                                { .sector = 10, .lastSector = 19, .pictures = 13, .cell = 2 } });
    expectCommands(pgc, "00 08 00 00 00 01 00 4F" + FIRST_MENU + LINK_CELL_2, "the second cell returns");
    ASSERT_EQ(236u + 80 + 2 + 48 + 8, pgc.size());
    expectAt(pgc, 318, "02 00 00 00 00 00 00 52 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 09", "cell 1");
    expectAt(pgc, 342, "08 00 00 01 00 00 00 53 00 00 00 0A 00 00 00 00 00 00 00 0A 00 00 00 13", "cell 2");
}

TEST(MenuPgc, AttributesOfTheMenus)
{
    const auto titleSet = newTitleSet();
    titleSet->menuAttributes.audioStreamCount = 1;
    titleSet->menuAttributes.audio[0] = audioStream(AUDIO_PCM, 0xBD, 0xA0);
    titleSet->menuAttributes.colorTable[0] = 0x005BF051;
    titleSet->titleAttributes.audioStreamCount = 8;
    titleSet->titleAttributes.colorTable[0] = 0x00112233;
    titleSet->menus[0].hasLetterbox = 1;
    const Bytes pgc = menuPgc(titleSet.get(), 0, menus({ 1 }), STANDARD_NTSC);
    expectAt(pgc, 4, "00 00 00 D2", "NTSC");
    expectAt(pgc, 12, "80 00 00 00", "audio of the menus");
    expectAt(pgc, 28, "80 00 01 00", "letterbox stream");
    expectAt(pgc, 164, "00 51 F0 5B", "colours of the menus");
}

// ---- menus of the manager -----------------------------------------------------------------------------------------

TEST(ManagerMenuPgc, FirstMenuOfThreeTitleSets)
{
    const auto manager = newTitleSet();
    const Bytes pgc = managerPgc(manager.get(), 0, 3, menus({ 1 }));
    expectCommands(pgc,
                   "00 0B 00 00 00 00 00 5F"
                   "71 00 00 03 00 00 00 00"    // 1 GPRM3 = 0
                   "61 00 00 02 00 01 00 00"    // 2 GPRM2 = GPRM1
                   "71 00 00 01 00 00 00 00"    // 3 GPRM1 = 0
                   "00 A1 00 02 00 01 00 09"    // 4 if GPRM2 == 1 goto 9
                   "00 A1 00 02 00 02 00 0A"    // 5
                   "00 A1 00 02 00 03 00 0B"    // 6
                   "56 00 00 00 04 00 00 00"    // 7 button 1
                   "00 02 00 00 00 00 00 00"    // 8 break
                   "30 02 00 00 00 01 00 00"    // 9 title 1
                   "30 02 00 00 00 02 00 00"    // 10
                   "30 02 00 00 00 03 00 00",   // 11
                   "three title sets");
    expectAt(pgc, 8, "00 08 03 03", "prohibited operations");
    expectAt(pgc, 28, "80 00 00 00", "one sub-picture stream");
    EXPECT_EQ(1u, manager->menuAttributes.attributeHead);
}

TEST(ManagerMenuPgc, LaterMenuWholeBlock)
{
    const auto manager = newTitleSet();
    manager->menus[1].hasLetterbox = 1;
    expectSameBytes(layout(282,
                           {
                               { 2, "01 01 00 00 00 52" },
                               { 8, "00 08 03 03" },
                               { 28, "80 00 01 00" },
                               { 228, "00 EC 00 FC 00 FE 01 16" },   // 236, 252, 254, 278
                               { 236, "00 01 00 00 00 00 00 0F" + HIGHLIGHT_1 },
                               { 252, "01 00" },
                               { 254, "02 00 FF 00 00 00 00 52 00 00 00 06 00 00 00 00 00 00 00 06 00 00 00 0B" },
                               { 278, "00 02 00 01" },
                           }),
                    managerPgc(manager.get(), 1, 3, menus({ 1, 1 })), "second menu");
}

TEST(ManagerMenuPgc, CellCommand)
{
    const struct {
        const char* what;
        uint64_t pictures, loopMode, audioMark;
        std::string table;
    } cases[] = {
        { "animated, loop", 50, LOOP_ALWAYS, 0, "00 01 00 00 00 01 00 17" + HIGHLIGHT_1 + LINK_CELL_1 },
        { "animated, loop from a time", 50, LOOP_FROM, 0, "00 01 00 00 00 01 00 17" + HIGHLIGHT_1 + LINK_CELL_2 },
        { "animated, no loop", 50, LOOP_NONE, 0, "00 01 00 00 00 01 00 17" + HIGHLIGHT_1 + HIGHLIGHT_1 },
        { "animated, delay", 50, LOOP_DELAY, 0, "00 01 00 00 00 01 00 17" + HIGHLIGHT_1 + HIGHLIGHT_1 },
        { "still, loop", 1, LOOP_ALWAYS, 0, "00 01 00 00 00 00 00 0F" + HIGHLIGHT_1 },
        { "still with an audio button: no post command here", 1, LOOP_NONE, 3,
          "00 01 00 00 00 00 00 0F" + HIGHLIGHT_1 },
    };
    for (const auto& c : cases) {
        const auto manager = newTitleSet();
        manager->menus[1].loopMode = c.loopMode;
        manager->menus[1].audioButtonMark = c.audioMark;
        expectCommands(managerPgc(manager.get(), 1, 2, menus({ 1, c.pictures })), c.table, c.what);
    }
}

TEST(ManagerMenuPgc, AnimatedFirstMenuRepeatsTheLastJump)
{
    const auto manager = newTitleSet();
    expectCommands(managerPgc(manager.get(), 0, 1, menus({ 50 })),
                   "00 07 00 00 00 01 00 47 71 00 00 03 00 00 00 00 61 00 00 02 00 01 00 00 71 00 00 01 00 00 00 00"
                   "00 A1 00 02 00 01 00 07 56 00 00 00 04 00 00 00 00 02 00 00 00 00 00 00 30 02 00 00 00 01 00 00"
                   "30 02 00 00 00 01 00 00",
                   "one title set");
}

// Without a VOBU list the chain has no cells, counts as animated, and declares no sub-picture stream.
TEST(ManagerMenuPgc, WithoutAVobuList)
{
    const auto manager = newTitleSet();
    uint8_t* block = nullptr;
    ASSERT_EQ(0u, orvBuildManagerMenuPgc(manager.get(), STANDARD_NTSC, 0, 2, nullptr, &block));
    expectSameBytes(layout(324,
                           {
                               { 4, "00 00 00 C0" },
                               { 8, "00 08 03 03" },
                               { 228, "00 EC 00 00 00 00 00 00" },
                               { 236, "00 09 00 00 00 01 00 57" },
                               { 244, "71 00 00 03 00 00 00 00" },
                               { 252, "61 00 00 02 00 01 00 00" },
                               { 260, "71 00 00 01 00 00 00 00" },
                               { 268, "00 A1 00 02 00 01 00 08" },
                               { 276, "00 A1 00 02 00 02 00 09" },
                               { 284, "56 00 00 00 04 00 00 00" },
                               { 292, "00 02 00 00 00 00 00 00" },
                               { 300, "30 02 00 00 00 01 00 00" },
                               { 308, "30 02 00 00 00 02 00 00" },
                               { 316, "30 02 00 00 00 02 00 00" },   // the cell command
                           }),
                    takeBlock(block), "menu without a list");
    EXPECT_EQ(0u, manager->menuAttributes.attributeHead);
}

TEST(ManagerMenuPgc, NinetyNineTitleSets)
{
    const auto manager = newTitleSet();
    const Bytes table = commandTable(managerPgc(manager.get(), 0, 99, menus({ 1 })));
    // 5 + 2 x 99 = 203 commands
    ASSERT_EQ(8u + 203 * 8, table.size());
    expectAt(table, 0, "00 CB 00 00 00 00 06 5F", "counts");
    expectAt(table, 8 + 8 * 3, "00 A1 00 02 00 01 00 69", "line 4: title 1 at line 105");
    expectAt(table, 8 + 8 * 101, "00 A1 00 02 00 63 00 CB", "line 102: title 99 at line 203");
    expectAt(table, 8 + 8 * 102, HIGHLIGHT_1 + BREAK, "lines 103 and 104");
    expectAt(table, 8 + 8 * 104, "30 02 00 00 00 01 00 00", "line 105");
    expectAt(table, 8 + 8 * 202, "30 02 00 00 00 63 00 00", "line 203");
}

// ---- titles -------------------------------------------------------------------------------------------------------

TEST(TitlePgc, WholeBlock)
{
    const auto titleSet = newTitleSet();
    titleSet->titleAttributes.audioStreamCount = 1;
    titleSet->titleAttributes.audio[0] = audioStream(AUDIO_AC3, 0xBD, 0x80);
    titleSet->titleAttributes.colorTable[0] = 0x00808010;
    const Bytes pgc = titlePgc(titleSet.get(), 1,
                               { { .sector = 0, .lastSector = 9, .pictures = 12, .cell = 1 },
                                 { .sector = 10, .lastSector = 24, .pictures = 12, .cell = 2 },
                                 { .sector = 25, .lastSector = 29, .pictures = 12, .cell = 2 } });
    expectSameBytes(layout(310,
                           {
                               { 2, "02 02 00 00 01 51" },   // 36 pictures: 1 second and 11
                               { 8, "00 02 00 00" },
                               { 12, "80 00" },
                               { 164, "00 10 80 80" },
                               { 228, "00 EC 00 FC 00 FE 01 2E" },
                               { 236, "00 01 00 00 00 00 00 0F 71 00 00 03 00 01 00 00" },
                               { 252, "01 02" },
                               { 254, "02 00 00 00 00 00 00 52 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 09" },
                               { 278, "08 00 00 00 00 00 00 64 00 00 00 0A 00 00 00 00 00 00 00 19 00 00 00 1D" },
                               { 302, "00 01 00 01 00 01 00 02" },
                           }),
                    pgc, "title of two cells");
}

TEST(TitlePgc, PostCommands)
{
    const struct {
        const char* what;
        uint64_t postCommand, number;
        std::string table;
    } cases[] = {
        { "none", POST_NONE, 1, "00 01 00 00 00 00 00 0F 71 00 00 03 00 01 00 00" },
        { "title", POST_TITLE, 1, "00 01 00 01 00 00 00 17 71 00 00 03 00 01 00 00" + CALL_TITLE_MENU },
        { "root", POST_ROOT, 1, "00 01 00 01 00 00 00 17 71 00 00 03 00 01 00 00 30 08 00 00 01 83 00 00" },
        { "loop", POST_LOOP, 7, "00 01 00 01 00 00 00 17 71 00 00 03 00 01 00 00 30 03 00 00 00 01 00 00" },
        { "next", POST_NEXT, 5,
          "00 01 00 02 00 00 00 1F 71 00 00 03 00 01 00 00 71 00 00 01 00 06 00 00" + CALL_TITLE_MENU },
        { "previous", POST_PREVIOUS, 5,
          "00 01 00 02 00 00 00 1F 71 00 00 03 00 01 00 00 71 00 00 01 00 04 00 00" + CALL_TITLE_MENU },
        { "previous of the first is no request", POST_PREVIOUS, 1,
          "00 01 00 02 00 00 00 1F 71 00 00 03 00 01 00 00 71 00 00 01 00 00 00 00" + CALL_TITLE_MENU },
        { "first", POST_FIRST, 9,
          "00 01 00 02 00 00 00 1F 71 00 00 03 00 01 00 00 71 00 00 01 00 01 00 00" + CALL_TITLE_MENU },
        { "last yields nothing", POST_LAST, 2, "00 01 00 00 00 00 00 0F 71 00 00 03 00 01 00 00" },
        { "next of the last is beyond the disc", POST_NEXT, 99,
          "00 01 00 02 00 00 00 1F 71 00 00 03 00 01 00 00 71 00 00 01 00 64 00 00" + CALL_TITLE_MENU },
    };
    for (const auto& c : cases) {
        const auto titleSet = newTitleSet();
        titleSet->postCommand = c.postCommand;
        expectCommands(titlePgc(titleSet.get(), c.number, { { .lastSector = 9 } }), c.table, c.what);
    }
}

TEST(TitlePgc, RestrictedTitle)
{
    const auto titleSet = newTitleSet();
    titleSet->restricted = 1;
    expectAt(titlePgc(titleSet.get(), 1, { { .lastSector = 9 } }), 8, "00 00 3F A4", "prohibited operations");
}

// A title shows no sub-picture, whatever stood in its attributes and whatever the first menu has.
TEST(TitlePgc, NoSubPicture)
{
    const auto titleSet = newTitleSet();
    titleSet->titleAttributes.attributeHead = 1;
    titleSet->menus[0].hasLetterbox = 1;
    const Bytes pgc = titlePgc(titleSet.get(), 1, { { .lastSector = 9 } });
    expectZeros(pgc, 28, 156, "sub-picture control");
    EXPECT_EQ(0u, titleSet->titleAttributes.attributeHead);
}

// The choice of palette is that of the title set's first menu.
TEST(TitlePgc, PaletteOfTheFirstMenu)
{
    const auto titleSet = newTitleSet();
    titleSet->titleAttributes.colorTable[0] = 0x00362390;
    expectAt(titlePgc(titleSet.get(), 1, { { .lastSector = 9 } }), 164, "00 90 23 36", "colours of the title");
    titleSet->menus[0].hasSubPicture32 = 1;
    titleSet->menus[0].palette[0] = 0x0000FF00;
    expectAt(titlePgc(titleSet.get(), 1, { { .lastSector = 9 } }), 164, "00 51 F0 5B", "colours of the first menu");
}

// Sources behind a clock that starts again are other VOBs: their cells do not reach the chain.
TEST(TitlePgc, OnlyVobOne)
{
    const auto titleSet = newTitleSet();
    const Bytes pgc = titlePgc(titleSet.get(), 1,
                               { { .sector = 0, .lastSector = 9, .pictures = 25, .vob = 1, .cell = 1 },
                                 { .sector = 10, .lastSector = 19, .pictures = 25, .vob = 2, .cell = 1 },
                                 { .sector = 20, .lastSector = 29, .pictures = 25, .vob = 2, .cell = 2 } },
                               STANDARD_NTSC);
    EXPECT_EQ(236u + 16 + 2 + 24 + 4, pgc.size());
    expectAt(pgc, 2, "01 01 00 00 00 E5", "one cell of 25 frames");
    expectAt(pgc, 254 + 20, "00 00 00 09 00 01 00 01", "last sector and place");
}
