// vmg_ifo.cpp: VIDEO_TS.IFO, written last of all: of the title sets it knows what their finished files say.

#include "video/vmg_ifo.h"

#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "project/commands.h"
#include "video/ifo_layout.h"
#include "video/ifo_tables.h"
#include "video/menu_units.h"
#include "video/pgc.h"
#include "video/pgc_layout.h"

constexpr uint8_t ENTRY_TITLE_MENU = 0x82;   // entry chain of the title menu
constexpr uint8_t EXISTS_MENU = 0x80;
constexpr uint8_t TITLE_TYPE_SEQUENTIAL = 0x0C;
constexpr uint64_t FIRST_PLAY_AT = 1024;
constexpr uint64_t OFFSET_BYTES = 4;   // of an entry of VTS_ATRT
constexpr uint64_t ROOT_TITLE = 1;
constexpr char PROVIDER[] = "ORVEN";

// A file under construction: what is known, and what the header needs.
struct VmgIfo {
    DiscContext* context;
    const char16_t* targetPath;
    const char16_t* previousPath;
    uint64_t vobBytes;
    const VobuRecord* list;
    uint8_t* block;     // owned
    uint64_t sectors;   // of the block
};

/** One chain of the manager's menus, for the language unit. */
static uint64_t buildMenuChain(const void* owner, uint64_t menuIndex, uint8_t* entryId, uint8_t** pgc)
{
    const VmgIfo* ifo = static_cast<const VmgIfo*>(owner);
    *entryId = menuIndex == 0 ? ENTRY_TITLE_MENU : 0;
    return orvBuildManagerMenuPgc(&ifo->context->vmg, ifo->context->head.videoStandard, menuIndex,
                                  ifo->context->head.titleSetCount, ifo->list, pgc);
}

/** Chapters of a title set: the entries of its cell address table, found through its header. */
static uint64_t countChapters(const uint8_t* image, uint64_t* chapters)
{
    const uint64_t size = osMemSize(image);
    if (size < SECTOR_BYTES) return ORV_PREVIOUS_VTS_IFO_NOT_READ;
    const uint64_t at = uint64_t(orvGet(image, VTS_C_ADT_AT)) << SECTOR_SHIFT;
    if (at > size || size - at < TABLE_HEADER_BYTES) return ORV_PREVIOUS_VTS_IFO_NOT_READ;
    *chapters = (orvGet(image + at, TABLE_LAST_BYTE) - (TABLE_HEADER_BYTES - 1)) / ADT_BYTES;
    return 0;
}

static uint64_t putTitle(const VmgIfo* ifo, uint64_t number, uint8_t* entry)
{
    uint8_t* image = nullptr;
    if (uint64_t error =
            orvReadVTSInfo(ifo->context, ifo->targetPath, number, &image, nullptr, nullptr, ifo->previousPath)) {
        return error;
    }
    uint64_t chapters = 0;
    const uint64_t result = countChapters(image, &chapters);
    orvPut(entry, TITLE_TYPE, TITLE_TYPE_SEQUENTIAL);
    orvPut(entry, TITLE_ANGLES, 1);
    orvPut(entry, TITLE_CHAPTERS, chapters);
    orvPut(entry, TITLE_SET, number);
    orvPut(entry, TITLE_IN_SET, 1);   // one title a title set
    (void)osFreeMem(&image);
    return result;
}

/** TT_SRPT; the start sectors are stored when the size of this file is known. */
static uint64_t buildTitleTable(const VmgIfo* ifo, uint8_t** table)
{
    const uint64_t titles = ifo->context->head.titleSetCount;
    const uint64_t bytes = TABLE_HEADER_BYTES + titles * TITLE_BYTES;
    uint64_t result = osAllocMem(bytes, table);
    if (result) return result;
    orvPut(*table, TABLE_COUNT, titles);
    orvPut(*table, TABLE_LAST_BYTE, bytes - 1);
    for (uint64_t i = 0; i < titles && !result; i++) {
        result = putTitle(ifo, i + 1, *table + TABLE_HEADER_BYTES + i * TITLE_BYTES);
    }
    if (result) (void)osFreeMem(table);
    return result;
}

static uint64_t putAttributes(const VmgIfo* ifo, uint64_t number, uint8_t* entry)
{
    uint8_t* image = nullptr;
    if (uint64_t error =
            orvReadVTSInfo(ifo->context, ifo->targetPath, number, &image, nullptr, nullptr, ifo->previousPath)) {
        return error;
    }
    uint64_t result = ORV_PREVIOUS_VTS_IFO_NOT_READ;
    if (osMemSize(image) >= SECTOR_BYTES) {
        orvPut(entry, ATRT_LAST_BYTE, ATRT_BYTES - 1);
        orvPut(entry, ATRT_CATEGORY, orvGet(image, VTS_CATEGORY));
        osCopyMem(entry + ATRT_ATTRIBUTES.at, image + VTS_ATTRIBUTES_AT, ATRT_ATTRIBUTES.size);
        result = 0;
    }
    (void)osFreeMem(&image);
    return result;
}

/** VTS_ATRT: the attributes of all title sets, as their own files hold them. */
static uint64_t buildAttributeTable(const VmgIfo* ifo, uint8_t** table)
{
    const uint64_t titleSets = ifo->context->head.titleSetCount;
    const uint64_t head = TABLE_HEADER_BYTES + OFFSET_BYTES * titleSets;
    const uint64_t bytes = head + titleSets * ATRT_BYTES;
    uint64_t result = osAllocMem(bytes, table);
    if (result) return result;
    orvPut(*table, TABLE_COUNT, titleSets);
    orvPut(*table, TABLE_LAST_BYTE, bytes - 1);
    for (uint64_t i = 0; i < titleSets && !result; i++) {
        const uint64_t at = head + i * ATRT_BYTES;
        orvPut32(*table + TABLE_HEADER_BYTES + OFFSET_BYTES * i, at);
        result = putAttributes(ifo, i + 1, *table + at);
    }
    if (result) (void)osFreeMem(table);
    return result;
}

/** Appends a table, which is freed, and stores its sector in the header. */
static uint64_t appendTable(VmgIfo* ifo, const DiscField& sectorField, uint8_t** table, uint64_t lastByte)
{
    orvPut(ifo->block, sectorField, ifo->sectors);
    return orvAppendTable(&ifo->block, table, lastByte, &ifo->sectors);
}

// The tables of the file while they are built; all are owned.
struct VmgTables {
    uint8_t* cells;
    uint8_t* vobus;
    uint8_t* menus;
    uint8_t* titles;
    uint8_t* attributes;
};

static uint64_t buildTables(const VmgIfo* ifo, VmgTables* tables)
{
    if (ifo->vobBytes) {
        if (uint64_t error = orvBuildCellAddressTable(ifo->list, &tables->cells)) return error;
        if (uint64_t error = orvBuildVobuMap(ifo->list, &tables->vobus)) return error;
    }
    // A manager without menus still gets one chain without cells: the titles' post commands call it.
    const uint64_t menuCount = ifo->context->vmg.menuCount;
    if (uint64_t error =
            orvBuildMenuUnits(menuCount ? menuCount : 1, EXISTS_MENU, buildMenuChain, ifo, &tables->menus)) {
        return error;
    }
    if (uint64_t error = buildTitleTable(ifo, &tables->titles)) return error;
    return buildAttributeTable(ifo, &tables->attributes);
}

static uint64_t appendCounted(VmgIfo* ifo, const DiscField& sectorField, uint8_t** table)
{
    return appendTable(ifo, sectorField, table, orvGet(*table, TABLE_LAST_BYTE));
}

static uint64_t appendTables(VmgIfo* ifo, VmgTables* tables)
{
    if (uint64_t error = appendCounted(ifo, VMG_TT_SRPT_AT, &tables->titles)) return error;
    if (uint64_t error = appendCounted(ifo, VMGM_PGCI_UT_AT, &tables->menus)) return error;
    if (uint64_t error = appendCounted(ifo, VMG_VTS_ATRT_AT, &tables->attributes)) return error;
    if (!tables->cells) return 0;
    if (uint64_t error = appendCounted(ifo, VMGM_C_ADT_AT, &tables->cells)) return error;
    return appendTable(ifo, VMGM_VOBU_ADMAP_AT, &tables->vobus, orvGet(tables->vobus, VOBU_MAP_LAST_BYTE));
}

static void freeTables(VmgTables* tables)
{
    (void)osFreeMem(&tables->cells);
    (void)osFreeMem(&tables->vobus);
    (void)osFreeMem(&tables->menus);
    (void)osFreeMem(&tables->titles);
    (void)osFreeMem(&tables->attributes);
}

/** What a player does first: the project's wish, else the manager's menu, else title set 1's menu, else title 1. */
static uint64_t putFirstPlayCommand(const VmgIfo* ifo, uint8_t* to)
{
    const DiscContext* context = ifo->context;
    if (context->firstPlayCommand) {
        return orvEncodeCommand(to, context->firstPlayCommand, uint8_t(context->firstPlayParam1),
                                context->firstPlayParam2, context->firstPlayParam3, 0);
    }
    if (ifo->vobBytes) return orvEncodeCommand(to, VM_JUMP_VMGM, 0, 0, 0, 0);
    const TitleSetDesc* first = context->titleSets[0];
    if (first && first->menuCount) return orvEncodeCommand(to, VM_JUMP_VTSM, 1, ROOT_TITLE, 0, 0);
    return orvEncodeCommand(to, VM_JUMP_TT, 1, 0, 0, 0);
}

static uint64_t putFirstPlay(const VmgIfo* ifo, uint8_t* pgc)
{
    uint8_t* commands = pgc + PGC_BYTES;
    orvPutTime(pgc + PGC_PLAYBACK_TIME.at, orvFramesToTime(ifo->context->head.videoStandard, 0));
    orvPut(pgc, PGC_COMMANDS, PGC_BYTES);
    // Meant: a post command. The chain has nothing to play, so that a player goes straight to it.
    // Test: VmgIfo.FirstPlay
    orvPut(commands, COMMANDS_POST, 1);
    orvPut(commands, COMMANDS_LAST_BYTE, COMMANDS_HEADER_BYTES + VM_COMMAND_BYTES - 1);
    return putFirstPlayCommand(ifo, commands + COMMANDS_HEADER_BYTES);
}

static uint64_t fillHeader(const VmgIfo* ifo)
{
    uint8_t* header = ifo->block;
    const uint64_t vobSectors = ifo->vobBytes >> SECTOR_SHIFT;
    osCopyMem(header + VMG_IDENTIFIER.at, VMG_MARK, IFO_MARK_BYTES);
    orvPut(header, VMG_LAST_SECTOR, 2 * ifo->sectors + vobSectors - 1);
    orvPut(header, VMGI_LAST_SECTOR, ifo->sectors - 1);
    orvPut(header, VMG_VERSION, IFO_VERSION);
    orvPut(header, VMG_VOLUMES, 1);
    orvPut(header, VMG_THIS_VOLUME, 1);
    orvPut(header, VMG_DISC_SIDE, 1);
    orvPut(header, VMG_TITLE_SETS, ifo->context->head.titleSetCount);
    osCopyMem(header + VMG_PROVIDER.at, PROVIDER, sizeof(PROVIDER) - 1);
    orvPut(header, VMGI_LAST_BYTE, FIRST_PLAY_AT - 1 + VMG_FIRST_PLAY.size);
    orvPut(header, VMG_FIRST_PLAY_AT, FIRST_PLAY_AT);
    // Meant: also where VIDEO_TS.VOB is empty. Test: VmgIfo.WithoutMenusWholeFile
    orvPut(header, VMGM_VOBS, ifo->sectors);
    if (ifo->context->vmg.menuCount) {
        const AttributeSet* menu = &ifo->context->vmg.menuAttributes;
        orvPutVideoAttributes(header + VMGM_VIDEO_ATTR.at, menu, true);
        orvPut(header, VMGM_AUDIO_STREAMS, menu->audioStreamCount);
        orvPutAudioAttributes(header + VMGM_AUDIO_ATTR.at, menu);
        orvPut(header, VMGM_SUBP_STREAMS, 1);
    }
    return putFirstPlay(ifo, header + VMG_FIRST_PLAY.at);
}

/** Stores the start sectors of the title sets, which lie on the disc behind the manager in the order of their numbers.
 */
static uint64_t correctTitleTable(const VmgIfo* ifo)
{
    uint8_t* table = ifo->block + (uint64_t(orvGet(ifo->block, VMG_TT_SRPT_AT)) << SECTOR_SHIFT);
    uint64_t start = 2 * ifo->sectors + (ifo->vobBytes >> SECTOR_SHIFT);
    for (uint64_t i = 0; i < ifo->context->head.titleSetCount; i++) {
        orvPut(table + TABLE_HEADER_BYTES + i * TITLE_BYTES, TITLE_START, start);
        uint64_t ifoSectors = 0;
        uint64_t vobSectors = 0;
        const uint64_t result =
            orvReadVTSInfo(ifo->context, ifo->targetPath, i + 1, nullptr, &ifoSectors, &vobSectors, ifo->previousPath);
        if (result == ORV_PREVIOUS_VTS_IFO_NOT_OPENED) return ORV_VMG_IFO_NOT_CORRECTED;
        if (result) return result;
        start += 2 * ifoSectors + vobSectors;   // IFO and backup are of one size
    }
    return 0;
}

static uint64_t writeIfo(VmgIfo* ifo, OSFILE file)
{
    VmgTables tables = {};
    uint64_t result = buildTables(ifo, &tables);
    if (!result) result = osAllocMem(SECTOR_BYTES, &ifo->block);
    ifo->sectors = 1;
    if (!result) result = appendTables(ifo, &tables);
    if (!result) result = fillHeader(ifo);
    if (!result) result = correctTitleTable(ifo);
    if (!result) result = osWriteFile(file, ifo->block, osMemSize(ifo->block));
    freeTables(&tables);
    (void)osFreeMem(&ifo->block);
    return result;
}

uint64_t orvWriteVmgIfo(DiscContext* context, const char16_t* ifoPath, const char16_t* targetPath,
                        const char16_t* previousPath, uint64_t vobBytes, const VobuRecord* vobuList)
{
    if (context->head.titleSetCount < 1 || context->head.titleSetCount > MAX_TITLE_SETS) {
        return ORV_WRONG_TITLE_SET_COUNT;
    }
    VmgIfo ifo = {};
    ifo.context = context;
    ifo.targetPath = targetPath;
    ifo.previousPath = previousPath;
    ifo.vobBytes = vobBytes;
    ifo.list = vobuList;

    OSFILE file = 0;
    if (osOpenFile(ifoPath, OS_CREATE, &file)) return ORV_VMG_IFO_NOT_OPENED;
    const uint64_t result = writeIfo(&ifo, file);
    const uint64_t closed = osCloseFile(&file);
    return result ? result : closed;
}
