// vts_ifo.cpp: VTS_nn_0.IFO, built in one block from the VOBU lists and the model, and written in one go.

#include "video/vts_ifo.h"

#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "video/ifo_layout.h"
#include "video/ifo_tables.h"
#include "video/menu_units.h"
#include "video/pgc.h"
#include "video/time_map.h"
#include "video/vobu_queries.h"

constexpr uint8_t ENTRY_TITLE_1 = 0x81;   // entry chain of title 1
constexpr uint8_t ENTRY_ROOT = 0x83;      // entry chain of the root menu
constexpr uint8_t ENTRY_AUDIO = 0x85;     // entry chain of the audio menu
constexpr uint8_t EXISTS_AUDIO = 0x20;

// A file under construction: what is known, and what the header needs.
struct VtsIfo {
    const DiscContext* context;
    TitleSetDesc* titleSet;
    uint64_t titleSetNumber;
    uint64_t menuSectors, titleSectors;
    const VobuRecord* menuList;
    const VobuRecord* titleList;
    uint8_t* block;     // owned
    uint64_t sectors;   // of the block
};

static uint64_t buildChapterTable(uint64_t cells, uint8_t** table)
{
    const uint64_t bytes = TABLE_FIRST_BYTES + cells * PTT_BYTES;
    if (uint64_t error = osAllocMem(bytes, table)) return error;
    orvPut(*table, TABLE_COUNT, 1);
    orvPut(*table, TABLE_LAST_BYTE, bytes - 1);
    orvPut(*table, TABLE_FIRST_OFFSET, TABLE_FIRST_BYTES);
    for (uint64_t i = 0; i < cells; i++) {
        uint8_t* entry = *table + TABLE_FIRST_BYTES + i * PTT_BYTES;
        orvPut(entry, PTT_PGC, 1);
        orvPut(entry, PTT_PROGRAM, i + 1);   // every cell is a chapter
    }
    return 0;
}

static uint64_t buildTitleChains(const VtsIfo* ifo, uint8_t** table)
{
    constexpr uint64_t HEAD = TABLE_HEADER_BYTES + PGCI_ENTRY_BYTES;
    uint8_t* pgc = nullptr;
    if (uint64_t error = orvBuildTitlePgc(ifo->titleSet, ifo->titleSetNumber, ifo->context->head.videoStandard,
                                          ifo->titleList, &pgc)) {
        return error;
    }
    const uint64_t bytes = osMemSize(pgc);
    uint64_t result = osAllocMem(HEAD + bytes, table);
    if (!result) {
        orvPut(*table, TABLE_COUNT, 1);
        orvPut(*table, TABLE_LAST_BYTE, HEAD + bytes - 1);
        orvPut(*table + TABLE_HEADER_BYTES, PGCI_ENTRY_ID, ENTRY_TITLE_1);
        orvPut(*table + TABLE_HEADER_BYTES, PGCI_ENTRY_OFFSET, HEAD);
        osCopyMem(*table + HEAD, pgc, bytes);
    }
    (void)osFreeMem(&pgc);
    return result;
}

/** One chain of the title set's menus, for the language unit. */
static uint64_t buildMenuChain(const void* owner, uint64_t menuIndex, uint8_t* entryId, uint8_t** pgc)
{
    const VtsIfo* ifo = static_cast<const VtsIfo*>(owner);
    const bool isAudio = ifo->titleSet->menus[menuIndex].audioButtonMark == AUDIO_BUTTON_MARK;
    *entryId = isAudio ? ENTRY_AUDIO : menuIndex == 0 ? ENTRY_ROOT : 0;
    return orvBuildMenuPgc(ifo->titleSet, ifo->context->head.videoStandard, menuIndex, ifo->menuList, pgc);
}

static uint8_t menuExistence(const TitleSetDesc* titleSet)
{
    uint64_t exists = 0;
    for (uint64_t i = 0; i < titleSet->menuCount && i < MAX_MENUS; i++) {
        exists |= titleSet->menus[i].menuType;
        if (titleSet->menus[i].audioButtonMark == AUDIO_BUTTON_MARK) exists |= EXISTS_AUDIO;
    }
    return uint8_t(exists);
}

/** Appends a table, which is freed, and stores its sector in the header. */
static uint64_t appendTable(VtsIfo* ifo, const DiscField& sectorField, uint8_t** table, uint64_t lastByte)
{
    orvPut(ifo->block, sectorField, ifo->sectors);
    return orvAppendTable(&ifo->block, table, lastByte, &ifo->sectors);
}

static uint64_t appendCounted(VtsIfo* ifo, const DiscField& sectorField, uint64_t built, uint8_t** table)
{
    return built ? built : appendTable(ifo, sectorField, table, orvGet(*table, TABLE_LAST_BYTE));
}

static uint64_t appendAddressTables(VtsIfo* ifo, const DiscField& cellField, const DiscField& vobuField,
                                    const VobuRecord* list)
{
    uint8_t* table = nullptr;
    if (uint64_t error = appendCounted(ifo, cellField, orvBuildCellAddressTable(list, &table), &table)) return error;
    if (uint64_t error = orvBuildVobuMap(list, &table)) return error;
    return appendTable(ifo, vobuField, &table, orvGet(table, VOBU_MAP_LAST_BYTE));
}

static uint64_t appendTables(VtsIfo* ifo)
{
    uint8_t* table = nullptr;
    const uint64_t cells = orvCountCells(ifo->titleList, TITLE_VOB);
    if (uint64_t error = appendCounted(ifo, VTS_PTT_SRPT_AT, buildChapterTable(cells, &table), &table)) return error;
    if (uint64_t error = appendCounted(ifo, VTS_PGCIT_AT, buildTitleChains(ifo, &table), &table)) return error;
    if (ifo->menuSectors) {
        const uint64_t built =
            orvBuildMenuUnits(ifo->titleSet->menuCount, menuExistence(ifo->titleSet), buildMenuChain, ifo, &table);
        if (uint64_t error = appendCounted(ifo, VTSM_PGCI_UT_AT, built, &table)) return error;
    }
    const uint64_t built = orvBuildTimeMap(ifo->context->head.frameTicks, ifo->titleList, &table);
    if (uint64_t error = appendCounted(ifo, VTS_TMAPTI_AT, built, &table)) return error;
    if (ifo->menuSectors) {
        if (uint64_t error = appendAddressTables(ifo, VTSM_C_ADT_AT, VTSM_VOBU_ADMAP_AT, ifo->menuList)) return error;
    }
    return appendAddressTables(ifo, VTS_C_ADT_AT, VTS_VOBU_ADMAP_AT, ifo->titleList);
}

static void fillHeader(const VtsIfo* ifo)
{
    uint8_t* header = ifo->block;
    osCopyMem(header + VTS_IDENTIFIER.at, VTS_MARK, IFO_MARK_BYTES);
    // IFO and backup are of one size.
    orvPut(header, VTS_LAST_SECTOR, 2 * ifo->sectors + ifo->menuSectors + ifo->titleSectors - 1);
    orvPut(header, VTSI_LAST_SECTOR, ifo->sectors - 1);
    orvPut(header, VTS_VERSION, IFO_VERSION);
    orvPut(header, VTSI_LAST_BYTE, SECTOR_BYTES - 1);
    orvPut(header, VTSTT_VOBS, ifo->sectors + ifo->menuSectors);
    if (ifo->menuSectors) {
        const AttributeSet* menu = &ifo->titleSet->menuAttributes;
        orvPut(header, VTSM_VOBS, ifo->sectors);
        orvPutVideoAttributes(header + VTSM_VIDEO_ATTR.at, menu, true);
        orvPut(header, VTSM_AUDIO_STREAMS, menu->audioStreamCount);
        orvPutAudioAttributes(header + VTSM_AUDIO_ATTR.at, menu);
        orvPut(header, VTSM_SUBP_STREAMS, 1);
    }
    const AttributeSet* title = &ifo->titleSet->titleAttributes;
    orvPutVideoAttributes(header + VTS_VIDEO_ATTR.at, title, false);
    orvPut(header, VTS_AUDIO_STREAMS, title->audioStreamCount);
    orvPutAudioAttributes(header + VTS_AUDIO_ATTR.at, title);
}

static uint64_t writeIfo(VtsIfo* ifo, OSFILE file)
{
    uint64_t result = osAllocMem(SECTOR_BYTES, &ifo->block);
    ifo->sectors = 1;
    if (!result) result = appendTables(ifo);
    if (!result) {
        fillHeader(ifo);
        // Meant: the result of the write is not looked at. The manager, which reads the file back, refuses one that is
        // cut before its cell address table. Test: VmgIfoFailure.BadImages
        (void)osWriteFile(file, ifo->block, osMemSize(ifo->block));
    }
    (void)osFreeMem(&ifo->block);
    return result;
}

uint64_t orvWriteVtsIfo(const DiscContext* context, uint64_t titleSetNumber, const char16_t* ifoPath,
                        uint64_t menuSectors, uint64_t titleSectors, const VobuRecord* menuVobuList,
                        const VobuRecord* titleVobuList)
{
    VtsIfo ifo = {};
    ifo.context = context;
    ifo.titleSet = context->titleSets[titleSetNumber - 1];
    ifo.titleSetNumber = titleSetNumber;
    ifo.menuSectors = menuSectors;
    ifo.titleSectors = titleSectors;
    ifo.menuList = menuVobuList;
    ifo.titleList = titleVobuList;

    OSFILE file = 0;
    if (osOpenFile(ifoPath, OS_CREATE, &file)) return ORV_VTS_IFO_NOT_OPENED;
    const uint64_t result = writeIfo(&ifo, file);
    (void)osCloseFile(&file);   // as the write
    return result;
}
