// sample_codes.h: how packs and tables of DVD-Audio write sample sizes and rates.
#pragma once

#include <cstdint>

inline constexpr uint8_t CODE_NONE = 15;   // of a group that is not there, too

[[nodiscard]] constexpr uint8_t orvSampleSizeCode(uint64_t bits)
{
    switch (bits) {
    case 16: return 0;
    case 20: return 1;
    case 24: return 2;
    default: return CODE_NONE;
    }
}

[[nodiscard]] constexpr uint8_t orvSampleRateCode(uint64_t rate)
{
    switch (rate) {
    case 48000: return 0;
    case 96000: return 1;
    case 192000: return 2;
    case 44100: return 8;
    case 88200: return 9;
    case 176400: return 10;
    default: return CODE_NONE;
    }
}

/** Two codes in one byte, group 1 in the high half. */
[[nodiscard]] constexpr uint8_t orvGroupCodes(uint8_t first, uint8_t second)
{
    return uint8_t(first << 4 | second);
}

/** Samples of one channel in a frame; 0 for a rate that DVD-Audio has not. */
[[nodiscard]] constexpr uint64_t orvFrameSamples(uint64_t rate)
{
    if (rate == 44100 || rate == 48000) return 40;
    if (rate == 88200 || rate == 96000) return 80;
    if (rate == 176400 || rate == 192000) return 160;
    return 0;
}
