// menu_units.cpp: the one language unit that serves every player language.

#include "video/menu_units.h"

#include "base/memory.h"
#include "video/ifo_layout.h"

constexpr uint64_t UNIT_AT = TABLE_HEADER_BYTES + PGCI_ENTRY_BYTES;

static uint64_t appendChains(uint64_t menuCount, MenuChainBuilder build, const void* owner, uint8_t** table)
{
    for (uint64_t i = 0; i < menuCount; i++) {
        uint8_t entryId = 0;
        uint8_t* pgc = nullptr;
        if (uint64_t error = build(owner, i, &entryId, &pgc)) return error;
        uint8_t* entry = *table + UNIT_AT + TABLE_HEADER_BYTES + i * PGCI_ENTRY_BYTES;
        orvPut(entry, PGCI_ENTRY_ID, entryId);
        orvPut(entry, PGCI_ENTRY_OFFSET, osMemSize(*table) - UNIT_AT);
        const uint64_t result = osInsertMem(table, OS_BLOCK_END, pgc, osMemSize(pgc));
        (void)osFreeMem(&pgc);
        if (result) return result;
    }
    return 0;
}

uint64_t orvBuildMenuUnits(uint64_t menuCount, uint8_t exists, MenuChainBuilder build, const void* owner,
                           uint8_t** result)
{
    const uint64_t head = UNIT_AT + TABLE_HEADER_BYTES + menuCount * PGCI_ENTRY_BYTES;
    if (uint64_t error = osAllocMem(head, result)) return error;
    if (uint64_t error = appendChains(menuCount, build, owner, result)) {
        (void)osFreeMem(result);
        return error;
    }
    uint8_t* table = *result;
    const uint64_t bytes = osMemSize(table);
    orvPut(table, TABLE_COUNT, 1);
    orvPut(table, TABLE_LAST_BYTE, bytes - 1);
    orvPut(table + TABLE_HEADER_BYTES, UNIT_EXISTS, exists);
    orvPut(table + TABLE_HEADER_BYTES, UNIT_OFFSET, UNIT_AT);
    orvPut(table + UNIT_AT, TABLE_COUNT, menuCount);
    orvPut(table + UNIT_AT, TABLE_LAST_BYTE, bytes - UNIT_AT - 1);
    return 0;
}
