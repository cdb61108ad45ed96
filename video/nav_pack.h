// nav_pack.h: what a navigation pack says of its unit, gathered from the lists, and its bytes.
#pragma once

#include "base/time_code.h"
#include "video/vobu_record.h"

#include <cstdint>

struct NavPackValues {
    const VobuRecord* record;
    uint64_t audioStreamCount;
    uint64_t startPts;   // ticks; display of the unit
    uint64_t endPts;
    uint64_t sequenceEndPts;   // 0 but in the last unit of a title or of a menu
    DvdTimeCode cellElapsed;
    uint64_t vobuEnd;   // last sector of the unit, from its navigation pack
    uint64_t firstRefEnd;
    uint64_t vobStartPts, vobEndPts;
};

/** Times of a unit: startPts and endPts of values. */
void orvSetUnitTimes(NavPackValues* values, const VobuRecord* record, uint64_t ticksPerFrame);
/** Presentation time at which the last picture of a unit ends. */
[[nodiscard]] uint64_t orvVobuVideoEnd(const VobuRecord* record, uint64_t ticksPerFrame);
/** Clears a pack behind its headers and fills the fields that titles and menus have in common. */
void orvPutNavPack(uint8_t* pack, const NavPackValues* values);
