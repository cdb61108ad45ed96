// scan_stream.h: multiplexed streams with filled navigation packs, as the commands around the stream scan take them.
#pragma once

#include "tests/support/files.h"
#include "tests/support/packs.h"

#include <optional>

// One unit: a navigation pack and filled video packs. It follows the one before in time; what is given here replaces
// what follows from that.
struct ScanUnit {
    uint64_t pictures = 12;
    uint64_t ticks = 3600;   // of a picture
    uint64_t sectors = 3;
    std::optional<uint64_t> start = {};        // ticks
    std::optional<uint64_t> elapsed = {};      // pictures
    std::optional<uint64_t> lastSector = {};   // told by the navigation pack
    bool ends = false;                         // its sequence ends here
};

/** The clock and the display run together; display begins at 9000. The last unit ends its sequence. */
Bytes scanStream(const std::vector<ScanUnit>& units);

std::vector<ScanUnit> scanUnits(uint64_t count, const ScanUnit& each = {});

/** Puts bytes of hex text at an offset. */
void patch(Bytes& bytes, uint64_t at, std::string_view hex);
