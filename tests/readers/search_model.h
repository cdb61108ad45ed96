// search_model.h: what a second pass has to find out about a stream, counted out for each unit by looking at all
// others.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

// A video object unit as it was multiplexed.
struct ScanUnit {
    uint64_t sector, sectors;
    uint64_t start, end;   // of its display, ticks
    uint64_t elapsed;      // frames of 25 a second from the start of the stream
};

// How a stream is divided. A list counts if it holds anything.
struct CellRule {
    uint64_t interval = 0;        // ticks
    std::vector<uint64_t> list;   // ticks
};

typedef std::array<uint32_t, 19> Pointers;

struct ExpectedNav {
    uint64_t cell;
    uint64_t elapsed;   // frames of 25 a second from the start of the cell
    uint32_t nextVideo, nextUnit, previousUnit, previousVideo;
    Pointers forward;    // far end first
    Pointers backward;   // near end first
    uint64_t left;       // units that have been handed out before this one is linked
    bool cut;            // one of those is missed by the pointers back
};

std::vector<ExpectedNav> expectedNavs(const std::vector<ScanUnit>& units, const CellRule& rule);
