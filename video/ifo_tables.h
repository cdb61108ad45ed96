// ifo_tables.h: what the IFO files of title sets and of the manager share: address tables, attributes, and the block to
// which padded tables are appended.
#pragma once

#include "project/model.h"
#include "video/vobu_record.h"

#include <cstdint>

/** Cell address table of a VOBU list, as a new block. */
[[nodiscard]] uint64_t orvBuildCellAddressTable(const VobuRecord* vobuList, uint8_t** result);
/** VOBU address map of a VOBU list, as a new block. */
[[nodiscard]] uint64_t orvBuildVobuMap(const VobuRecord* vobuList, uint8_t** result);

/** Appends a table to an IFO, padded to whole sectors by its own last byte; sectors grows by the table's. The table is
    freed. */
[[nodiscard]] uint64_t orvAppendTable(uint8_t** ifo, uint8_t** table, uint64_t lastByte, uint64_t* sectors);

/** Two bytes of video attributes; isMenu chooses the display modes of 16:9. */
void orvPutVideoAttributes(uint8_t* to, const AttributeSet* attributes, bool isMenu);
/** Eight bytes for each of audioStreamCount streams. */
void orvPutAudioAttributes(uint8_t* to, const AttributeSet* attributes);
