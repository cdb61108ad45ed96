// vobu_queries.h: questions that the tables ask of a VOBU list. A null or empty list answers 0.
#pragma once

#include "video/vobu_record.h"

#include <cstdint>

/** How often the cell number changes among the records of a VOB. */
[[nodiscard]] uint64_t orvCountCells(const VobuRecord* list, uint64_t vobId);
/** Pictures of a VOB. */
[[nodiscard]] uint64_t orvCountPictures(const VobuRecord* list, uint64_t vobId);

// What the records of one cell have together.
struct CellExtent {
    const VobuRecord* first;   // in list order; null if the cell has no record
    const VobuRecord* last;
    uint64_t pictures;
};

/** The extents of cells 1 to count of a VOB, in a new block, the caller's; found in one walk over the list. */
[[nodiscard]] uint64_t orvListCells(const VobuRecord* list, uint64_t vobId, uint64_t count, CellExtent** extents);
