// amg_menus.cpp: the menu table of the audio manager: one language, a program chain for each menu.

#include "audio/audio_ifo.h"
#include "audio/audio_ifo_layout.h"
#include "base/memory.h"
#include "base/time_code.h"
#include "video/pgc_layout.h"

// Parts of a chain, behind its head.
constexpr uint64_t COMMANDS_BYTES = COMMANDS_HEADER_BYTES + 16;   // two commands
constexpr uint64_t PROGRAM_MAP_BYTES = 2;                         // one program, and a byte that fills
constexpr uint64_t COMMANDS_AT = PGC_BYTES;
constexpr uint64_t PROGRAM_MAP_AT = COMMANDS_AT + COMMANDS_BYTES;
constexpr uint64_t PLAYBACK_AT = PROGRAM_MAP_AT + PROGRAM_MAP_BYTES;
constexpr uint64_t POSITION_AT = PLAYBACK_AT + CELL_PLAYBACK_BYTES;
constexpr uint64_t MENU_PGC_BYTES = POSITION_AT + CELL_POSITION_BYTES;

static DvdTimeCode playingTime(int64_t videoStandard, const VobuRecord* menuCells, uint64_t menuIndex)
{
    constexpr uint64_t FRAMES_OF_A_STILL = 12;
    uint64_t frames = 0;
    for (uint64_t i = 0; i < osListCount(menuCells); i++) {
        if (menuCells[i].vobId == menuIndex + 1) frames += menuCells[i].pictureCount;
    }
    return orvFramesToTime(videoStandard, frames == 1 ? FRAMES_OF_A_STILL : frames);
}

/** Two commands that do nothing, one before and one behind the menu. */
static void putCommands(uint8_t* to)
{
    orvPut(to, COMMANDS_PRE, 1);
    orvPut(to, COMMANDS_POST, 1);
    orvPut(to, COMMANDS_CELL, 0);
    orvPut(to, COMMANDS_LAST_BYTE, COMMANDS_BYTES - 1);
}

static void putCell(uint8_t* pgc, const MenuDesc* menu, const VobuRecord* cell, DvdTimeCode time)
{
    constexpr uint8_t CELL_TYPE = 2, STILL_FOR_EVER = 255;
    uint8_t* playback = pgc + PLAYBACK_AT;
    orvPut(playback, CELL_FLAGS, CELL_TYPE);
    orvPut(playback, CELL_STILL_TIME, menu->loopMode == LOOP_ALWAYS ? 0 : STILL_FOR_EVER);
    orvPutTime(playback + CELL_TIME.at, time);
    orvPut(playback, CELL_FIRST_SECTOR, cell->sector);
    orvPut(playback, CELL_LAST_VOBU, cell->sector);
    orvPut(playback, CELL_LAST_SECTOR, cell->lastSector);
    orvPut(pgc + POSITION_AT, POSITION_VOB_ID, cell->vobId);
    orvPut(pgc + POSITION_AT, POSITION_CELL, cell->cellId);
}

uint64_t orvBuildAmgMenuPgc(const AudioDiscContext* context, uint64_t menuIndex, const VobuRecord* menuCells,
                            uint8_t** block)
{
    uint8_t pgc[MENU_PGC_BYTES] = {};
    const DvdTimeCode time = playingTime(context->head.videoStandard, menuCells, menuIndex);
    orvPut(pgc, PGC_PROGRAMS, 1);
    orvPut(pgc, PGC_CELLS, 1);
    orvPutTime(pgc + PGC_PLAYBACK_TIME.at, time);
    pgc[PGC_SUBP_CONTROL.at] = CONTROL_STREAM_EXISTS;
    orvPutPalette(pgc + PGC_PALETTE.at, context->amgAttributes.colorTable);
    orvPut(pgc, PGC_COMMANDS, COMMANDS_AT);
    orvPut(pgc, PGC_PROGRAM_MAP, PROGRAM_MAP_AT);
    orvPut(pgc, PGC_CELL_PLAYBACK, PLAYBACK_AT);
    orvPut(pgc, PGC_CELL_POSITION, POSITION_AT);
    putCommands(pgc + COMMANDS_AT);
    pgc[PROGRAM_MAP_AT] = 1;   // the one program begins with cell 1
    // Meant: the cell of menu i is the i-th unit of the VOB, whatever VOB that is of. Test: AmgMenus.RecordIForMenuI
    const VobuRecord none = {};
    const VobuRecord* cell = menuIndex < osListCount(menuCells) ? menuCells + menuIndex : &none;
    putCell(pgc, context->amgMenus + menuIndex, cell, time);
    return osInsertMem(block, OS_BLOCK_END, pgc, sizeof(pgc));
}

static uint64_t countMenus(const AudioDiscContext* context, uint64_t group)
{
    uint64_t count = 0;
    for (uint64_t i = 0; i < context->amgMenuCount; i++) count += context->amgMenus[i].menuExtra == group;
    return count;
}

static uint64_t appendMenus(const AudioDiscContext* context, uint64_t group, const VobuRecord* menuCells,
                            uint8_t** unit)
{
    constexpr uint8_t PGC_CATEGORY = 0x82;
    uint64_t entry = MENUS_HEAD_BYTES;
    for (uint64_t i = 0; i < context->amgMenuCount; i++) {
        if (context->amgMenus[i].menuExtra != group) continue;
        orvPut(*unit + entry, MENU_PGC_TYPE, PGC_CATEGORY);
        orvPut(*unit + entry, MENU_ENTRY_AT, osMemSize(*unit));
        entry += MENU_ENTRY_BYTES;
        if (uint64_t error = orvBuildAmgMenuPgc(context, i, menuCells, unit)) return error;
    }
    return 0;
}

uint64_t orvBuildAmgLanguageUnit(const AudioDiscContext* context, uint64_t group, const VobuRecord* menuCells,
                                 uint8_t** block)
{
    const uint64_t count = countMenus(context, group);
    if (uint64_t error = osAllocMem(MENUS_HEAD_BYTES + count * MENU_ENTRY_BYTES, block)) return error;
    if (uint64_t error = appendMenus(context, group, menuCells, block)) return error;
    orvPut(*block, MENUS_COUNT, count);
    orvPut(*block, MENUS_LAST_BYTE, osMemSize(*block) - 1);
    return 0;
}

uint64_t orvBuildAmgMenuTable(const AudioDiscContext* context, const VobuRecord* menuCells, uint8_t** block)
{
    constexpr uint8_t EXISTS = 0x80;
    constexpr uint64_t UNIT_AT = MENUS_HEAD_BYTES + MENU_ENTRY_BYTES;
    constexpr uint64_t ONLY_GROUP = 0;
    uint8_t* unit = nullptr;
    uint64_t result = orvBuildAmgLanguageUnit(context, ONLY_GROUP, menuCells, &unit);
    if (!result) result = osAllocMem(UNIT_AT, block);
    if (!result) {
        uint8_t* entry = *block + MENUS_HEAD_BYTES;
        orvPut(*block, MENUS_COUNT, 1);
        orvPut(*block, MENUS_LAST_BYTE, UNIT_AT + osMemSize(unit) - 1);
        osCopyMem(entry + MENU_LANGUAGE.at, "en", MENU_LANGUAGE.size);
        orvPut(entry, MENU_EXISTS, EXISTS);
        orvPut(entry, MENU_ENTRY_AT, UNIT_AT);
        result = osInsertMem(block, OS_BLOCK_END, unit, osMemSize(unit));
    }
    (void)osFreeMem(&unit);
    return result;
}
