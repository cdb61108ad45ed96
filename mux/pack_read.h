// pack_read.h: reads the clocks of a pack, one sector of a program stream.
#pragma once

#include <cstdint>

/** SCR base of the pack header: 90 kHz ticks, low 32 of 33 bits, sign-extended. extension may be null and gets the 27
    MHz part, nine bits: 0..299 in a sound pack. */
[[nodiscard]] uint64_t orvReadScr(const uint8_t* pack, uint64_t* extension);
/** Rewrites the SCR of the pack header; bit 32 is not stored. */
void orvSetScr(uint8_t* pack, uint64_t scr, uint64_t extension);
/** PTS of the PES packet behind the pack header, as orvReadScr gives its clock; 0 if the packet has none. */
[[nodiscard]] uint64_t orvReadPts(const uint8_t* pack);
/** A packet behind the system header, where other packs with a system header have none. Looks at bytes 16, 17, 40. */
[[nodiscard]] bool orvIsNavPack(const uint8_t* pack);
