// pgc_commands.cpp: the program chains of titles and menus with their commands: the navigation protocol of a disc.
//
// A title sets GPRM3 when it starts. At its end it may leave the number of the title set that is to follow in GPRM1 and
// call the manager's first menu, which clears the register and jumps there. The menu key leads into the title set's
// first menu with GPRM3 still set: there the current chapter becomes a menu page and, through GPRM4, a highlighted
// button.

#include "base/memory.h"
#include "base/result.h"
#include "project/commands.h"
#include "video/pgc.h"
#include "video/pgc_layout.h"
#include "video/vobu_queries.h"

constexpr uint8_t REG_TITLE_SET = 1;   // title set that a title's post command asks for
constexpr uint8_t REG_SCRATCH = 2;
constexpr uint8_t REG_IN_TITLE = 3;    // 1 after a title has started
constexpr uint8_t REG_HIGHLIGHT = 4;   // button x 1024 that the next menu is to restore
constexpr uint64_t SYSTEM_REG_CHAPTER = 7;
constexpr uint64_t HIGHLIGHT_SHIFT = 10;
constexpr uint64_t MENU_ROOT = 3;

constexpr uint64_t TITLE_OPS = 0x20000, TITLE_OPS_RESTRICTED = 0x3FA4;
constexpr uint64_t MENU_OPS = 0x80300, MANAGER_MENU_OPS = 0x80303;

enum CommandPlace { PRE, POST, CELL };

// A command table under construction. After a failure nothing more is appended.
struct CommandTable {
    uint8_t* block;   // owned until it is handed to the chain
    uint64_t counts[3];
    uint8_t last[VM_COMMAND_BYTES];   // bytes of the command encoded last
    uint64_t error;
};

static void beginCommands(CommandTable* table)
{
    *table = {};
    table->error = osAllocMem(COMMANDS_HEADER_BYTES, &table->block);
}

/** Appends the bytes of the command encoded last. */
static void appendLast(CommandTable* table, CommandPlace place)
{
    if (table->error) return;
    table->error = osInsertMem(&table->block, OS_BLOCK_END, table->last, VM_COMMAND_BYTES);
    table->counts[place]++;
}

static void append(CommandTable* table, CommandPlace place, uint64_t number, uint8_t p1 = 0, uint64_t p2 = 0,
                   uint64_t p3 = 0, uint64_t p4 = 0)
{
    if (table->error) return;
    table->error = orvEncodeCommand(table->last, number, p1, p2, p3, p4);
    appendLast(table, place);
}

/** Fills the head and gives the block away. */
static uint64_t endCommands(CommandTable* table, uint8_t** block)
{
    if (table->error) {
        (void)osFreeMem(&table->block);
        return table->error;
    }
    orvPut(table->block, COMMANDS_PRE, table->counts[PRE]);
    orvPut(table->block, COMMANDS_POST, table->counts[POST]);
    orvPut(table->block, COMMANDS_CELL, table->counts[CELL]);
    orvPut(table->block, COMMANDS_LAST_BYTE, osMemSize(table->block) - 1);
    *block = table->block;
    return 0;
}

/** The cell command of a menu that is no still: back to the cell from which it loops. */
static void appendLoop(CommandTable* table, uint64_t loopMode)
{
    if (loopMode == LOOP_ALWAYS || loopMode == LOOP_FROM) {
        append(table, CELL, VM_LINK_CN, uint8_t(loopMode == LOOP_ALWAYS ? 1 : 2));
        return;
    }
    // Meant: without a loop the last pre command stands a second time, as the cell command. Test:
    // MenuPgc.RepeatedCommandOfAnAnimatedFirstMenu
    appendLast(table, CELL);
}

/** From the movie's current chapter to the page and button that the project names for it. */
static void appendReturnFromMovie(CommandTable* table, const TitleSetDesc* titleSet)
{
    append(table, PRE, VM_BREAK_IF_NOT_EQUAL, REG_IN_TITLE, 1);
    append(table, PRE, VM_SET_REG, REG_IN_TITLE, 0);
    append(table, PRE, VM_GET_SYSTEM_REG, REG_SCRATCH, SYSTEM_REG_CHAPTER);
    for (uint64_t c = 1; c <= titleSet->chapterCount; c++) {
        const ChapterDesc* chapter = titleSet->chapters + (c - 1);
        append(table, PRE, VM_SET_REG_IF_EQUAL, REG_SCRATCH, c, REG_HIGHLIGHT,
               uint64_t(chapter->highlightButton) << HIGHLIGHT_SHIFT);
        append(table, PRE, VM_LINK_PGCN_IF_EQUAL, REG_SCRATCH, c, uint64_t(chapter->menuPage));
    }
}

uint64_t orvBuildMenuPgc(TitleSetDesc* titleSet, int64_t videoStandard, uint64_t menuIndex, const VobuRecord* vobuList,
                         uint8_t** result)
{
    const MenuDesc* menu = titleSet->menus + menuIndex;
    CommandTable table;
    beginCommands(&table);
    append(&table, PRE, VM_GOTO_IF_EQUAL, REG_HIGHLIGHT, 0, 5);
    append(&table, PRE, VM_SET_HIGHLIGHT_REG, REG_HIGHLIGHT);
    append(&table, PRE, VM_SET_REG, REG_HIGHLIGHT, 0);
    append(&table, PRE, VM_BREAK);
    append(&table, PRE, VM_SET_HIGHLIGHT, 1);
    if (menuIndex == 0) appendReturnFromMovie(&table, titleSet);
    if (orvCountPictures(vobuList, menuIndex + 1) != 1) appendLoop(&table, menu->loopMode);
    // Meant: behind the cell command, although the head counts post commands before cell commands.
    // Test: MenuPgc.WhatFollowsThePreCommands
    if (menu->audioButtonMark == AUDIO_BUTTON_MARK && menu->loopMode == LOOP_NONE) append(&table, POST, VM_JUMP_VMGM);

    uint8_t* commands = nullptr;
    if (uint64_t error = endCommands(&table, &commands)) return error;
    titleSet->menuAttributes.attributeHead = 1;
    return orvBuildPgc(titleSet->menus, &titleSet->menuAttributes, videoStandard, MENU_OPS, menu->loopMode, commands,
                       menuIndex + 1, vobuList, result);
}

/** The manager's first menu passes a title set's wish on, and otherwise shows itself. */
static void appendDispatch(CommandTable* table, uint64_t titleSetCount)
{
    append(table, PRE, VM_SET_REG, REG_IN_TITLE, 0);
    append(table, PRE, VM_COPY_REG, REG_SCRATCH, REG_TITLE_SET);
    append(table, PRE, VM_SET_REG, REG_TITLE_SET, 0);
    for (uint64_t i = 1; i <= titleSetCount; i++) {
        append(table, PRE, VM_GOTO_IF_EQUAL, REG_SCRATCH, i, titleSetCount + 5 + i);
    }
    append(table, PRE, VM_SET_HIGHLIGHT, 1);
    append(table, PRE, VM_BREAK);
    for (uint64_t i = 1; i <= titleSetCount; i++) append(table, PRE, VM_JUMP_TT, uint8_t(i));
}

uint64_t orvBuildManagerMenuPgc(TitleSetDesc* manager, int64_t videoStandard, uint64_t menuIndex,
                                uint64_t titleSetCount, const VobuRecord* vobuList, uint8_t** result)
{
    const MenuDesc* menu = manager->menus + menuIndex;
    CommandTable table;
    beginCommands(&table);
    if (menuIndex == 0) {
        appendDispatch(&table, titleSetCount);
    } else {
        append(&table, PRE, VM_SET_HIGHLIGHT, 1);
    }
    // Meant: a chain without cells counts as animated too. Test: ManagerMenuPgc.WithoutAVobuList
    if (orvCountPictures(vobuList, menuIndex + 1) != 1) appendLoop(&table, menu->loopMode);

    uint8_t* commands = nullptr;
    if (uint64_t error = endCommands(&table, &commands)) return error;
    if (vobuList) manager->menuAttributes.attributeHead = 1;
    return orvBuildPgc(manager->menus, &manager->menuAttributes, videoStandard, MANAGER_MENU_OPS, menu->loopMode,
                       commands, menuIndex + 1, vobuList, result);
}

static void appendPostCommand(CommandTable* table, uint64_t postCommand, uint64_t titleSetNumber)
{
    uint64_t wanted = 0;
    switch (postCommand) {
    case POST_TITLE: append(table, POST, VM_CALL_VMGM, 1); return;
    case POST_ROOT: append(table, POST, VM_CALL_VTSM, 1, MENU_ROOT); return;
    case POST_LOOP: append(table, POST, VM_JUMP_VTS_TT, 1); return;
    case POST_NEXT: wanted = titleSetNumber + 1; break;
    case POST_PREVIOUS: wanted = titleSetNumber - 1; break;   // 0 from the first: no wish
    case POST_FIRST: wanted = 1; break;
    default: return;   // POST_NONE. Meant: POST_LAST too ends playback. Test: TitlePgc.PostCommands
    }
    append(table, POST, VM_SET_REG, REG_TITLE_SET, wanted);
    append(table, POST, VM_CALL_VMGM, 1);
}

uint64_t orvBuildTitlePgc(TitleSetDesc* titleSet, uint64_t titleSetNumber, int64_t videoStandard,
                          const VobuRecord* vobuList, uint8_t** result)
{
    CommandTable table;
    beginCommands(&table);
    append(&table, PRE, VM_SET_REG, REG_IN_TITLE, 1);
    appendPostCommand(&table, titleSet->postCommand, titleSetNumber);
    uint8_t* commands = nullptr;
    if (uint64_t error = endCommands(&table, &commands)) return error;
    titleSet->titleAttributes.attributeHead = 0;
    // Meant: the palette of a title is chosen by the title set's first menu. Test: TitlePgc.PaletteOfTheFirstMenu
    return orvBuildPgc(titleSet->menus, &titleSet->titleAttributes, videoStandard,
                       titleSet->restricted ? TITLE_OPS_RESTRICTED : TITLE_OPS, CELLS_OF_TITLE, commands, TITLE_VOB,
                       vobuList, result);
}
