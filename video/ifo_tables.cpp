// ifo_tables.cpp: address tables, attributes and padding, shared by the IFO files of title sets and of the manager.

#include "video/ifo_tables.h"

#include "base/memory.h"
#include "video/ifo_layout.h"

// The walk over a VOBU list from which the cell address table is made.
struct CellWalk {
    uint8_t* table;           // grows; owned by the caller of the walk
    uint64_t vobId, cellId;   // of the cell at hand
    uint64_t vobCount;
    uint64_t start;   // sector at which it begins
};

static uint64_t endCell(CellWalk* walk, uint64_t vobId, uint64_t cellId, uint64_t lastSector)
{
    uint8_t entry[ADT_BYTES] = {};
    orvPut(entry, ADT_VOB_ID, vobId);
    orvPut(entry, ADT_CELL_ID, cellId);
    orvPut(entry, ADT_START, walk->start);
    orvPut(entry, ADT_LAST, lastSector);
    return osInsertMem(&walk->table, OS_BLOCK_END, entry, ADT_BYTES);
}

static uint64_t walkCells(CellWalk* walk, const VobuRecord* list)
{
    const uint64_t count = osListCount(list);
    for (uint64_t i = 0; i < count; i++) {
        const VobuRecord* record = list + i;
        if (record->cellId != walk->cellId || record->vobId != walk->vobId) {
            // Meant: a list that does not begin with cell 1 of VOB 1 gets an entry for that cell too, which ends at 0.
            // Test: CellAddressTable.Entries
            const uint64_t lastSector = i > 0 ? record[-1].lastSector : 0;
            if (uint64_t error = endCell(walk, walk->vobId, walk->cellId, lastSector)) return error;
            walk->start = record->sector;
            walk->cellId = record->cellId;
        }
        if (record->vobId != walk->vobId) walk->vobCount++;
        walk->vobId = record->vobId;
    }
    if (count == 0) return 0;
    const VobuRecord* last = list + (count - 1);
    return endCell(walk, last->vobId, last->cellId, last->lastSector);
}

uint64_t orvBuildCellAddressTable(const VobuRecord* vobuList, uint8_t** result)
{
    *result = nullptr;
    CellWalk walk = { nullptr, 1, 1, 1, 0 };
    uint64_t error = osAllocMem(TABLE_HEADER_BYTES, &walk.table);
    if (!error) error = walkCells(&walk, vobuList);
    if (error) {
        (void)osFreeMem(&walk.table);
        return error;
    }
    orvPut(walk.table, TABLE_COUNT, walk.vobCount);
    orvPut(walk.table, TABLE_LAST_BYTE, osMemSize(walk.table) - 1);
    *result = walk.table;
    return 0;
}

uint64_t orvBuildVobuMap(const VobuRecord* vobuList, uint8_t** result)
{
    const uint64_t count = osListCount(vobuList);
    const uint64_t bytes = VOBU_MAP_HEADER_BYTES + count * VOBU_MAP_ENTRY_BYTES;
    if (uint64_t error = osAllocMem(bytes, result)) return error;
    orvPut(*result, VOBU_MAP_LAST_BYTE, bytes - 1);
    uint8_t* entry = *result + VOBU_MAP_HEADER_BYTES;
    for (uint64_t i = 0; i < count; i++) orvPut32(entry + i * VOBU_MAP_ENTRY_BYTES, vobuList[i].sector);
    return 0;
}

uint64_t orvAppendTable(uint8_t** ifo, uint8_t** table, uint64_t lastByte, uint64_t* sectors)
{
    // Meant: the size is computed from the last byte, so that a table of 2048 n + 1 bytes loses that byte.
    // Test: AppendTable.PaddedSizes
    const uint64_t padded = (lastByte + SECTOR_BYTES - 1) & ~(SECTOR_BYTES - 1);
    const uint64_t size = osMemSize(*table);
    const uint64_t at = osMemSize(*ifo);
    uint64_t result = osInsertMem(ifo, OS_BLOCK_END, nullptr, padded);
    if (!result) {
        osZeroMem(*ifo + at, padded);
        osCopyMem(*ifo + at, *table, size < padded ? size : padded);
        *sectors += padded >> SECTOR_SHIFT;
    }
    (void)osFreeMem(table);
    return result;
}

void orvPutVideoAttributes(uint8_t* to, const AttributeSet* attributes, bool isMenu)
{
    // Permitted displays: 11 neither pan-scan nor letterbox, 00 both, 10 letterbox only. Meant: a menu in 16:9 differs
    // from a title. Test: VideoAttributes.EveryField
    const uint64_t display = attributes->aspectRatio == 0 ? 3 : isMenu ? 2 : 0;
    to[0] = uint8_t((attributes->mpegVersion & 3) << 6 | (attributes->isPal & 3) << 4 |
                    (attributes->aspectRatio & 3) << 2 | display);
    to[1] = uint8_t((attributes->bitrateMode & 1) << 4 | (attributes->resolution & 3) << 2);
}

void orvPutAudioAttributes(uint8_t* to, const AttributeSet* attributes)
{
    for (uint64_t i = 0; i < attributes->audioStreamCount && i < MAX_AUDIO_STREAMS; i++) {
        const AudioStreamDesc* stream = attributes->audio + i;
        uint8_t* entry = to + i * AUDIO_ATTR_BYTES;
        // Meant: the language is not stored, and a stream without format among the first gives E0 07.
        // Test: AudioAttributes.EveryField
        entry[0] = uint8_t((uint64_t(stream->audioFormat) & 7) << 5);
        entry[1] = uint8_t((stream->quantization & 3) << 6 | (stream->sampleRateCode & 3) << 4 |
                           ((stream->channelCount - 1) & 7));
    }
}
