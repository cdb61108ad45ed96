// nav_pack.h: packs of a program stream and what the host itself reads of their navigation packs: enough to tell a user
// beforehand why a stream does not fit.
#pragma once

#include <cstdint>
#include <string>

inline constexpr uint64_t SECTOR_BYTES = 2048;   // of a pack too

// Times are ticks of the 90 kHz clock.
struct NavFields {
    uint32_t start, end;   // of the unit's display
    uint32_t
        elapsed;   // hours, minutes, seconds, frames, in decimal digits; a mark of the rate in the top bits of the last
    uint32_t lastSector;   // of the unit, counted from this pack
    uint8_t cell;
};

bool isPack(const uint8_t* sector);

/** Whether the library's scan takes a sector as a navigation pack. */
bool isNavPack(const uint8_t* sector);

NavFields navFields(const uint8_t* sector);

/** A pack that was never filled: some encoders leave their navigation packs so. */
bool isBlank(const NavFields& nav);

/** Whether an elapsed time says that it counts 25 frames a second. */
bool countsTwentyFive(const NavFields& nav);

/** An elapsed time without its mark, which rises with the time. */
uint32_t elapsedDigits(const NavFields& nav);

/** "12 sectors". */
std::string sectorsText(uint64_t sectors);
