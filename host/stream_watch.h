// stream_watch.h: looks at the packs of a stream on their way into the library's scan, and tells why the scan would
// make something of them that is no movie.
#pragma once

#include "cells.h"
#include "elementary.h"
#include "nav_pack.h"

struct HeldUnit {
    uint32_t start;
    uint64_t cell;
};

struct StreamWatch {
    CellPlan cells = {};
    uint64_t sectors = 0;   // seen so far
    uint64_t units = 0;     // whose navigation packs have been seen
    uint64_t cell = 0;      // of the last unit: all cells up to it have units
    // Of the last unit.
    uint64_t unitSector = 0;
    NavFields nav = {};
    // Within.
    std::vector<HeldUnit> held = {};   // units that the scan can't hand out yet
    uint64_t otherRate = 0;            // units that count 25 frames a second and have 29.97
};

/** Takes the next pack. Behind a fault nothing more can be taken. */
FileFault watchPack(StreamWatch* watch, const uint8_t* pack);

/** To be asked behind the last pack. */
FileFault watchEnd(const StreamWatch& watch);

/** What is wrong if not all sectors have come out of the scan. */
FileFault lossFault(uint64_t sectorsIn, uint64_t sectorsOut);

/** Which cells of the plan lie behind the stream; empty if there is none. */
std::string missingCells(const StreamWatch& watch);

/** Whether the scan counts the stream's frames by a rate that is not theirs. */
bool countsWrongRate(const StreamWatch& watch);
