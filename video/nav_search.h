// nav_search.h: the search pointers of a navigation pack: to the neighbours, and to the units at nineteen distances of
// time before and behind.
#pragma once

#include "video/vobu_record.h"

#include <cstdint>

// A walk over a VOBU list from its first record to its last, with the part of the list in which pointers of the current
// record can lead.
struct VobuSearch {
    const VobuRecord* list;
    uint64_t count;
    uint64_t ticksPerFrame;
    uint64_t index;         // the current record
    uint64_t lastSector;    // the unit that is the last of its cell, for the pointers forward
    uint64_t firstSector;   // the unit that is the first of its cell, for the pointers back

    bool sorted;                 // the records of a cell stand together
    bool rising;                 // in the cell at hand start times rise
    uint64_t runBegin, runEnd;   // records of the cell at hand; all of the list if it is not sorted
    uint64_t low, high;          // first and last record to which a pointer of the current one can lead
};

/** Starts a walk, before its first record. */
void orvBeginSearch(VobuSearch* search, const VobuRecord* list, uint64_t ticksPerFrame);
/** Makes index the current record; called with 0, 1, 2 ... in order. */
void orvStepSearch(VobuSearch* search, uint64_t index);

/** Sector of the last record before the first whose cell number is larger. */
[[nodiscard]] uint64_t orvLastSectorOfCell(const VobuRecord* list, uint64_t cellId);

/** All search pointers of the current record. */
void orvFillSearch(const VobuSearch* search, uint8_t* pack);
/** The nineteen pointers forward, and the nineteen back, of the current record. */
void orvFillForwardSearch(const VobuSearch* search, uint8_t* pack);
void orvFillBackwardSearch(const VobuSearch* search, uint8_t* pack);
