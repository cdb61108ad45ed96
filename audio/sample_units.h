// sample_units.h: the order of bytes in which linear PCM lies in the packs of an AOB. Samples of all channels, at one
// or two times, make a unit; the channels beyond the first group come first.
#pragma once

#include "project/channel_assignment.h"

#include <cstdint>

inline constexpr uint64_t MOST_UNIT_BYTES = 36;
inline constexpr uint64_t MOST_UNIT_TIMES = 2;

// Where a byte of a unit comes from: from little-endian samples of one channel, at offset `at` from the unit's time.
struct UnitByte {
    uint8_t channel, at;
};

struct UnitLayout {
    uint64_t assign;        // channel assignment
    uint64_t sampleBytes;   // of one sample: 2 or 3
    uint64_t times;         // sample times of a unit
    uint64_t channels;
    uint64_t bytes;   // of a unit
    UnitByte at[MOST_UNIT_BYTES];
};

// ---- how the layouts are written down
// ---------------------------------------------------------------------------------

struct UnitWriter {
    UnitLayout layout;

    constexpr void put(uint64_t channel, uint64_t time, uint64_t byte)
    {
        layout.at[layout.bytes++] = { uint8_t(channel), uint8_t(time * layout.sampleBytes + byte) };
    }
};

constexpr void putSample16(UnitWriter* to, uint64_t channel, uint64_t time)   // big-endian
{
    to->put(channel, time, 1);
    to->put(channel, time, 0);
}

constexpr void putHighMiddle(UnitWriter* to, uint64_t channel, uint64_t time)   // of 24 bits
{
    to->put(channel, time, 2);
    to->put(channel, time, 1);
}

constexpr void putLow(UnitWriter* to, uint64_t channel, uint64_t time)
{
    to->put(channel, time, 0);
}

// `count` channels from `first` on at both times: 16 bits as they come; of 24 bits the upper two bytes of all, then the
// lowest bytes of all.
constexpr void putChannels(UnitWriter* to, uint64_t first, uint64_t count)
{
    if (to->layout.sampleBytes == 2) {
        for (uint64_t time = 0; time < to->layout.times; time++)
            for (uint64_t c = first; c < first + count; c++) putSample16(to, c, time);
        return;
    }
    for (uint64_t time = 0; time < to->layout.times; time++)
        for (uint64_t c = first; c < first + count; c++) putHighMiddle(to, c, time);
    for (uint64_t time = 0; time < to->layout.times; time++)
        for (uint64_t c = first; c < first + count; c++) putLow(to, c, time);
}

// Group 2, of `second` channels behind the `first` channels of group 1, goes first.
constexpr UnitLayout unitLayout(uint64_t assign, uint64_t sampleBytes, uint64_t times, uint64_t first, uint64_t second)
{
    UnitWriter to = { { assign, sampleBytes, times, first + second, 0, {} } };
    putChannels(&to, first, second);
    putChannels(&to, 0, first);
    return to.layout;
}

// ---- the layouts
// ------------------------------------------------------------------------------------------------------

inline constexpr UnitLayout UNIT_STEREO_16 = unitLayout(ASSIGN_STEREO, 2, 1, 2, 0);   // alone of one sample time
inline constexpr UnitLayout UNIT_STEREO_24 = unitLayout(ASSIGN_STEREO, 3, 2, 2, 0);
inline constexpr UnitLayout UNIT_QUADRO_16 = unitLayout(ASSIGN_QUADRO, 2, 2, 2, 2);
inline constexpr UnitLayout UNIT_QUADRO_24 = unitLayout(ASSIGN_QUADRO, 3, 2, 2, 2);
inline constexpr UnitLayout UNIT_FIVE_16 = unitLayout(ASSIGN_FIVE, 2, 2, 4, 1);
inline constexpr UnitLayout UNIT_FIVE_24 = unitLayout(ASSIGN_FIVE, 3, 2, 4, 1);
inline constexpr UnitLayout UNIT_SIX_16 = unitLayout(ASSIGN_SIX, 2, 2, 4, 2);
inline constexpr UnitLayout UNIT_SIX_24 = unitLayout(ASSIGN_SIX, 3, 2, 4, 2);
static_assert(UNIT_STEREO_16.bytes == 4 && UNIT_STEREO_24.bytes == 12 && UNIT_QUADRO_16.bytes == 16);
static_assert(UNIT_QUADRO_24.bytes == 24 && UNIT_FIVE_16.bytes == 20 && UNIT_FIVE_24.bytes == 30);
static_assert(UNIT_SIX_16.bytes == 24 && UNIT_SIX_24.bytes == MOST_UNIT_BYTES);

inline constexpr const UnitLayout* UNIT_LAYOUTS[] = { &UNIT_STEREO_16, &UNIT_STEREO_24, &UNIT_QUADRO_16,
                                                      &UNIT_QUADRO_24, &UNIT_FIVE_16,   &UNIT_FIVE_24,
                                                      &UNIT_SIX_16,    &UNIT_SIX_24 };

/** The layout of an assignment and a sample size in bits; null if the packs know none. */
[[nodiscard]] constexpr const UnitLayout* orvUnitLayout(uint64_t assign, uint64_t bits)
{
    for (const UnitLayout* layout : UNIT_LAYOUTS) {
        if (layout->assign == assign && layout->sampleBytes * 8 == bits) return layout;
    }
    return nullptr;
}

/** Packs samples of all channels into units. An odd last sample of a unit of two times is dropped, and so is what does
    not fit.
    @param channels  little-endian samples of each channel
    @return bytes written to `to`, at most room; 0 for an assignment and size that packs do not know */
[[nodiscard]] uint64_t orvPackSamples(uint64_t assign, uint64_t bits, const uint8_t* const* channels, uint64_t samples,
                                      uint8_t* to, uint64_t room);
