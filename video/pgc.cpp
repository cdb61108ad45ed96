// pgc.cpp: the block of a program chain, from a VOB of the VOBU list and a command table.

#include "video/pgc.h"

#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "mux/pack_layout.h"
#include "video/pgc_layout.h"
#include "video/vobu_queries.h"

constexpr uint8_t CELL_STC_DISCONTINUITY = 0x02;
constexpr uint8_t CELL_SEAMLESS = 0x08;
constexpr uint8_t STILL_FOREVER = 0xFF;
constexpr uint64_t STILL_PICTURES = 1;
constexpr uint64_t STILL_FRAMES = 12;    // for which a single picture is declared
constexpr uint64_t SUBP_LETTERBOX = 2;   // byte of a sub-picture control entry
constexpr uint8_t LETTERBOX_STREAM = 1;

static DvdTimeCode playbackTime(int64_t videoStandard, uint64_t pictures)
{
    return orvFramesToTime(videoStandard, pictures == STILL_PICTURES ? STILL_FRAMES : pictures);
}

static void putStreamControl(uint8_t* pgc, const AttributeSet* attributes, bool hasLetterbox)
{
    for (uint64_t i = 0; i < attributes->audioStreamCount && i < MAX_AUDIO_STREAMS; i++) {
        const AudioStreamDesc* stream = attributes->audio + i;
        const uint64_t id = stream->streamId == STREAM_PRIVATE_1 ? stream->subStreamId : stream->streamId;
        pgc[PGC_AUDIO_CONTROL.at + i * AUDIO_CONTROL_BYTES] = uint8_t(CONTROL_STREAM_EXISTS | (id & 7));
    }
    if (attributes->attributeHead == 0) return;
    pgc[PGC_SUBP_CONTROL.at] = CONTROL_STREAM_EXISTS;   // stream 0 in every display mode
    if (hasLetterbox) pgc[PGC_SUBP_CONTROL.at + SUBP_LETTERBOX] = LETTERBOX_STREAM;
}

uint32_t orvPaletteColor(const AttributeSet* attributes, const MenuDesc* menu, uint64_t entry)
{
    if (!menu || !menu->hasSubPicture32) return attributes->colorTable[entry];
    const uint32_t argb = menu->palette[entry];   // alpha in the low byte, then red, green, blue
    return orvRgbToYCrCb(argb >> 8 & 0xFF, argb >> 16 & 0xFF, argb >> 24);
}

static void putPalette(uint8_t* pgc, const AttributeSet* attributes, const MenuDesc* menu)
{
    for (uint64_t i = 0; i < PALETTE_ENTRIES; i++) {
        const uint32_t color = orvPaletteColor(attributes, menu, i);
        const uint32_t entry = orvPackColor(uint8_t(color), uint8_t(color >> 8), uint8_t(color >> 16));
        uint8_t* to = pgc + PGC_PALETTE.at + i * PALETTE_BYTES;
        for (uint64_t b = 0; b < PALETTE_BYTES; b++) to[b] = uint8_t(entry >> (8 * b));
    }
}

// How a cell ends.
struct CellEnd {
    uint8_t stillTime, command;
};

static CellEnd cellEnd(uint64_t cellMode, bool lastCell)
{
    const uint8_t last = lastCell ? 1 : 0;
    switch (cellMode) {
    case LOOP_NONE: return { STILL_FOREVER, 0 };
    case LOOP_ALWAYS: return { 0, 1 };
    case LOOP_FROM: return { 0, last };
    case LOOP_DELAY: return { uint8_t(lastCell ? STILL_FOREVER : 0), last };
    default: return { 0, 0 };   // CELLS_OF_TITLE among them
    }
}

static void putCell(uint8_t* to, int64_t videoStandard, uint64_t cell, bool lastCell, uint64_t cellMode,
                    const CellExtent* extent)
{
    const VobuRecord none = {};   // a cell number that no record has: sectors 0
    const VobuRecord* first = extent->first ? extent->first : &none;
    const VobuRecord* last = extent->last ? extent->last : &none;
    const CellEnd end = cellEnd(cellMode, lastCell);
    orvPut(to, CELL_FLAGS, cell == 1 ? CELL_STC_DISCONTINUITY : CELL_SEAMLESS);
    orvPut(to, CELL_STILL_TIME, end.stillTime);
    orvPut(to, CELL_COMMAND, end.command);
    orvPutTime(to + CELL_TIME.at, playbackTime(videoStandard, extent->pictures));
    orvPut(to, CELL_FIRST_SECTOR, first->sector);
    orvPut(to, CELL_LAST_VOBU, last->sector);
    orvPut(to, CELL_LAST_SECTOR, last->lastSector);
}

/** Appends count zero bytes to the chain and stores their offset in its header. */
static uint64_t appendRoom(uint8_t** pgc, const DiscField& offsetField, uint64_t count, uint8_t** room)
{
    const uint64_t at = osMemSize(*pgc);
    if (uint64_t error = osInsertMem(pgc, OS_BLOCK_END, nullptr, count)) return error;
    osZeroMem(*pgc + at, count);
    orvPut(*pgc, offsetField, at);
    *room = *pgc + at;
    return 0;
}

static uint64_t appendCells(uint8_t** pgc, int64_t videoStandard, uint64_t cells, uint64_t cellMode, uint64_t vobId,
                            const CellExtent* extents)
{
    uint8_t* room = nullptr;
    if (uint64_t error = appendRoom(pgc, PGC_PROGRAM_MAP, (cells + 1) & ~uint64_t(1), &room)) return error;
    for (uint64_t i = 0; i < cells; i++) room[i] = uint8_t(i + 1);

    if (uint64_t error = appendRoom(pgc, PGC_CELL_PLAYBACK, cells * CELL_PLAYBACK_BYTES, &room)) return error;
    for (uint64_t i = 0; i < cells; i++) {
        putCell(room + i * CELL_PLAYBACK_BYTES, videoStandard, i + 1, i + 1 == cells, cellMode, extents + i);
    }

    if (uint64_t error = appendRoom(pgc, PGC_CELL_POSITION, cells * CELL_POSITION_BYTES, &room)) return error;
    for (uint64_t i = 0; i < cells; i++) {
        orvPut(room + i * CELL_POSITION_BYTES, POSITION_VOB_ID, vobId);
        orvPut(room + i * CELL_POSITION_BYTES, POSITION_CELL, i + 1);
    }
    return 0;
}

static uint64_t appendTables(uint8_t** pgc, int64_t videoStandard, uint64_t cells, uint64_t cellMode,
                             const uint8_t* commandTable, uint64_t vobId, const VobuRecord* list)
{
    if (commandTable) {
        uint8_t* room = nullptr;
        const uint64_t bytes = osMemSize(commandTable);
        if (uint64_t error = appendRoom(pgc, PGC_COMMANDS, bytes, &room)) return error;
        osCopyMem(room, commandTable, bytes);
    }
    if (cells == 0) return 0;
    CellExtent* extents = nullptr;
    if (uint64_t error = orvListCells(list, vobId, cells, &extents)) return error;
    const uint64_t result = appendCells(pgc, videoStandard, cells, cellMode, vobId, extents);
    (void)osFreeMem(&extents);
    return result;
}

uint64_t orvBuildPgc(const MenuDesc* menus, const AttributeSet* attributes, int64_t videoStandard,
                     uint64_t prohibitedOps, uint64_t cellMode, uint8_t* commandTable, uint64_t vobId,
                     const VobuRecord* vobuList, uint8_t** result)
{
    const MenuDesc* menu = vobId >= 1 && vobId <= MAX_MENUS ? menus + (vobId - 1) : nullptr;
    const uint64_t cells = orvCountCells(vobuList, vobId);
    *result = nullptr;
    uint64_t error = osAllocMem(PGC_BYTES, result);
    if (!error) {
        uint8_t* pgc = *result;
        // Every program holds exactly one cell. Meant: counts and numbers of cells are cut to their byte, nothing
        // stands before them. Test: Pgc.TwoHundredAndFiftySixCells
        orvPut(pgc, PGC_PROGRAMS, cells);
        orvPut(pgc, PGC_CELLS, cells);
        orvPutTime(pgc + PGC_PLAYBACK_TIME.at, playbackTime(videoStandard, orvCountPictures(vobuList, vobId)));
        orvPut(pgc, PGC_PROHIBITED_OPS, prohibitedOps);
        putStreamControl(pgc, attributes, menu && menu->hasLetterbox);
        putPalette(pgc, attributes, menu);
        error = appendTables(result, videoStandard, cells, cellMode, commandTable, vobId, vobuList);
    }
    (void)osFreeMem(&commandTable);
    if (error) (void)osFreeMem(result);
    return error;
}
