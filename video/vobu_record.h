// vobu_record.h: what a scan of program streams finds. Lists of these records are memory blocks.
#pragma once

#include <cstdint>

// One navigation pack and its video object unit. An array of these records is also the body of a stream scan file, so
// that the order and the width of the fields are fixed.
struct VobuRecord {
    uint64_t sector;         // of the navigation pack, over all source files
    uint64_t lastSector;     // of the unit
    uint64_t scr;            // of the navigation pack; 90 kHz ticks, low 32 bits, sign-extended
    uint64_t firstPts;       // of the first video pack that has one; 90 kHz ticks
    uint64_t pictureCount;   // pictures that start in the unit
    uint64_t vobId;          // counts navigation packs whose SCR is 0
    uint64_t cellId;         // from 1
    uint64_t firstRefEnd;    // sector, relative to `sector`, in which the first reference picture ends; 0 if unknown
    uint64_t secondRefEnd;
    uint64_t thirdRefEnd;
    uint64_t temporalRef;   // of the first picture in stream order
    uint64_t spare;         // 0
};
static_assert(sizeof(VobuRecord) == 96);

// A stream scan file is two 32-bit little-endian words, then VobuRecords.
inline constexpr uint32_t SCAN_FILE_MARK = 1;     // the first word
inline constexpr uint64_t SCAN_FILE_PACKS = 4;    // offset of the second word: the stream's size in sectors
inline constexpr uint64_t SCAN_FILE_HEADER = 8;   // bytes

enum StreamPackKind : uint64_t {
    PACK_UNKNOWN = 0,
    PACK_LPCM = 8,
    PACK_MPEG_AUDIO = 9,
    PACK_AC3 = 10,
    PACK_DTS = 11,
    PACK_SDDS = 12,
    PACK_SUBPICTURE = 20,
};

// One audio or sub-picture pack.
struct StreamPackRecord {
    uint64_t sector;
    uint64_t pts;           // 90 kHz ticks, low 32 bits, sign-extended; 0 if the packet has none
    uint64_t kind;          // StreamPackKind
    uint64_t streamIndex;   // within its kind, from 0
    uint64_t vobuSector;    // of a sub-picture pack: `sector` of its unit; 0 for the others
    uint64_t vobId;
};

/** Time at which display of a unit begins, in 90 kHz ticks. Unsigned: a time before 0 wraps. */
[[nodiscard]] constexpr uint64_t orvVobuStartPts(const VobuRecord* record, uint64_t ticksPerFrame)
{
    return record->firstPts - record->temporalRef * ticksPerFrame;
}
