// time_code.h: BCD time codes of the disc's tables, and palette colours.
#pragma once

#include <cstdint>

inline constexpr int64_t STANDARD_PAL = 1;    // 25 frames per second, a frame is 3600 ticks
inline constexpr int64_t STANDARD_NTSC = 2;   // 30 nominal frames per second, a frame is 3003 ticks
inline constexpr uint64_t TICKS_PER_SECOND = 90000;
inline constexpr uint64_t FRAMES_PAL = 25, FRAMES_NTSC = 30;   // nominal frames of a second

// Four BCD bytes in disc order: hours, minutes, seconds, frames. Bits 7..6 of the frames byte are the rate flag: 01 for
// 25, 11 for 30 frames per second. Stored on disc as they stand, never swapped.
struct DvdTimeCode {
    uint8_t bytes[4];
};

/** Ticks of the 90 kHz clock that one frame lasts: 3600 for PAL, 3003 for any other standard. */
[[nodiscard]] constexpr uint64_t orvFrameTicks(int64_t videoStandard)
{
    return videoStandard == STANDARD_PAL ? 3600 : 3003;
}

/** Time code of a count of nominal frames. A standard that is neither PAL nor NTSC gives four zero bytes. */
[[nodiscard]] DvdTimeCode orvFramesToTime(int64_t videoStandard, uint64_t frames);
/** Standard of a time code by its rate flag; 0 if the flag names no rate. */
[[nodiscard]] int64_t orvTimeStandard(DvdTimeCode time);
/** Frames of a time code by its rate flag; 0 if the flag names no rate. */
[[nodiscard]] uint64_t orvTimeToFrames(DvdTimeCode time);
/** Whole seconds of a time code. */
[[nodiscard]] uint64_t orvTimeToSeconds(DvdTimeCode time);
/** Stores a time code at its place. */
void orvPutTime(uint8_t* to, DvdTimeCode time);

/** Palette entry in memory order 0, a, b, c. */
[[nodiscard]] constexpr uint32_t orvPackColor(uint8_t a, uint8_t b, uint8_t c)
{
    return uint32_t(a) << 8 | uint32_t(b) << 16 | uint32_t(c) << 24;
}

/** Luminance (lowest byte), Cr, Cb of a colour; the top byte is 0. Each component is 0..255. */
[[nodiscard]] uint32_t orvRgbToYCrCb(uint64_t red, uint64_t green, uint64_t blue);
