// amg_ifo.cpp: the tables of the audio manager, AUDIO_TS.IFO. They know the tracks of the first title set alone.

#include "audio/audio_ifo.h"
#include "audio/audio_ifo_layout.h"
#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"

// The file being built, and where its tables begin in sectors; 0: there is none.
struct AmgIfo {
    uint8_t* block;
    uint64_t titles, audioTitles, menus;
};

static uint64_t wholeSectors(uint64_t bytes)
{
    return (bytes + SECTOR_BYTES - 1) & ~(SECTOR_BYTES - 1);
}

/** Appends a table, grown or cut to this many bytes. */
static uint64_t appendTable(AmgIfo* ifo, const uint8_t* table, uint64_t tableBytes, uint64_t bytes, uint64_t* sector)
{
    const uint64_t at = osMemSize(ifo->block);
    *sector = at >> SECTOR_SHIFT;
    if (uint64_t error = osResizeMem(&ifo->block, at + bytes)) return error;
    osCopyMem(ifo->block + at, table, tableBytes < bytes ? tableBytes : bytes);
    return 0;
}

/** The list of audio titles, which stands there twice, for two kinds of player. */
static uint64_t appendTitles(AmgIfo* ifo, const AudioTitleSetDesc* titleSet, uint64_t* sector)
{
    constexpr uint8_t TITLE_TYPE_AUDIO = 0x81;
    constexpr uint64_t TITLE_SET_START = 6;
    uint8_t table[AUDIO_TITLES_BYTES] = {};
    orvPut(table, AUDIO_TITLES_COUNT, 1);
    orvPut(table, AUDIO_TITLES_LAST, sizeof(table) - 1);
    orvPut(table, AUDIO_TITLE_TYPE, TITLE_TYPE_AUDIO);
    orvPut(table, AUDIO_TITLE_TRACKS, titleSet->trackCount);
    orvPut(table, AUDIO_TITLE_TIME, orvTotalPlayTime(titleSet));
    orvPut(table, AUDIO_TITLE_SET, 1);
    orvPut(table, AUDIO_TITLE_IN_SET, 1);
    orvPut(table, AUDIO_TITLE_START, TITLE_SET_START);
    return appendTable(ifo, table, sizeof(table), wholeSectors(sizeof(table) - 1), sector);
}

static uint64_t appendMenuTable(AmgIfo* ifo, const AudioDiscContext* context, const VobuRecord* menuCells)
{
    if (context->amgMenuCount == 0) return 0;
    uint8_t* table = nullptr;
    uint64_t result = orvBuildAmgMenuTable(context, menuCells, &table);
    if (!result) {
        // Meant: the low 8 bits of the last byte are dropped before it is rounded, so that a table that ends just
        // behind a sector's border loses its tail. Test: AmgIfo.MenuTableLosesItsTail
        constexpr uint64_t LAST_BYTE_BITS = ~uint64_t(0xFF);
        const uint64_t bytes = wholeSectors(orvGet(table, MENUS_LAST_BYTE) & LAST_BYTE_BITS);
        result = appendTable(ifo, table, osMemSize(table), bytes, &ifo->menus);
    }
    (void)osFreeMem(&table);
    return result;
}

static uint8_t menuVideoAttributes(const AttributeSet* attributes)
{
    constexpr uint8_t DISPLAY_MODE = 3, WIDE = 3 << 2, PAL = 1 << 4, MPEG2 = 1 << 6;
    uint8_t bits = DISPLAY_MODE;
    if (attributes->aspectRatio > 0) bits |= WIDE;
    if (attributes->isPal) bits |= PAL;
    if (attributes->mpegVersion == 1) bits |= MPEG2;
    return bits;
}

static void fillHeader(const AmgIfo* ifo, const AudioDiscContext* context, uint64_t menuVobBytes)
{
    uint8_t* header = ifo->block;
    const uint64_t sectors = osMemSize(ifo->block) >> SECTOR_SHIFT;
    const uint64_t managerSectors = (menuVobBytes >> SECTOR_SHIFT) + 2 * sectors;
    osCopyMem(header + AMG_IDENTIFIER.at, "DVDAUDIO-AMG", IFO_TEXT_BYTES);
    orvPut(header, AMG_LAST_SECTOR, managerSectors - 1);
    orvPut(header, AMGI_LAST_SECTOR, sectors - 1);
    orvPut(header, AMG_VERSION, AUDIO_VERSION);
    orvPut(header, AMG_VOLUMES, 1);
    orvPut(header, AMG_THIS_VOLUME, 1);
    orvPut(header, AMG_DISC_SIDE, 1);
    orvPut(header, AMG_AUTOPLAY, 1);
    orvPut(header, AMG_ASVS, context->hasAsvs ? managerSectors : 0);
    orvPut(header, AMG_TITLE_SETS, 1);   // whatever the project has: the tables know the first alone
    orvPut(header, AMGI_LAST_BYTE, SECTOR_BYTES - 1);
    orvPut(header, AMGM_VOBS, menuVobBytes ? sectors : 0);
    orvPut(header, AMG_TITLES_AT, ifo->titles);
    orvPut(header, AMG_AUDIO_TITLES_AT, ifo->audioTitles);
    orvPut(header, AMGM_PGCI_UT_AT, ifo->menus);
    orvPut(header, AMGM_VIDEO_ATTR, menuVideoAttributes(&context->amgAttributes));
}

static uint64_t buildIfo(AmgIfo* ifo, AudioDiscContext* context, uint64_t menuVobBytes, const VobuRecord* menuCells)
{
    const AudioTitleSetDesc* titleSet = context->audioTitleSets[0];
    if (uint64_t error = osAllocMem(SECTOR_BYTES, &ifo->block)) return error;
    if (uint64_t error = appendTitles(ifo, titleSet, &ifo->titles)) return error;
    if (uint64_t error = appendTitles(ifo, titleSet, &ifo->audioTitles)) return error;
    if (uint64_t error = appendMenuTable(ifo, context, menuCells)) return error;
    fillHeader(ifo, context, menuVobBytes);
    context->amgSectors = 2 * (osMemSize(ifo->block) >> SECTOR_SHIFT);
    return 0;
}

uint64_t orvWriteAmgIfo(AudioDiscContext* context, const char16_t* path, uint64_t menuVobBytes,
                        const VobuRecord* menuCells)
{
    OSFILE file = 0;
    if (osOpenFile(path, OS_CREATE, &file)) return ORV_VMG_IFO_NOT_OPENED;
    AmgIfo ifo = {};
    uint64_t result = buildIfo(&ifo, context, menuVobBytes, menuCells);
    if (!result) result = osWriteFile(file, ifo.block, osMemSize(ifo.block));
    const uint64_t closed = osCloseFile(&file);
    (void)osFreeMem(&ifo.block);
    return result ? result : closed;
}
