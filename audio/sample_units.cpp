// sample_units.cpp: packs samples into the units of AOB packs.

#include "audio/sample_units.h"

#include <algorithm>
#include <utility>

typedef void (*PackUnits)(const uint8_t* const* channels, uint64_t units, uint8_t* to);

// One byte move for each byte of a unit, from where its layout says.
template <const UnitLayout& LAYOUT, uint64_t... INDEX>
static void packUnits(const uint8_t* const* channels, uint64_t units, uint8_t* to, std::index_sequence<INDEX...>)
{
    constexpr uint64_t STEP = LAYOUT.times * LAYOUT.sampleBytes;
    for (uint64_t unit = 0; unit < units; unit++) {
        const uint64_t at = unit * STEP;
        ((to[INDEX] = channels[LAYOUT.at[INDEX].channel][at + LAYOUT.at[INDEX].at]), ...);
        to += LAYOUT.bytes;
    }
}

template <const UnitLayout& LAYOUT> static void packLayout(const uint8_t* const* channels, uint64_t units, uint8_t* to)
{
    packUnits<LAYOUT>(channels, units, to, std::make_index_sequence<LAYOUT.bytes>());
}

struct LayoutPacker {
    const UnitLayout* layout;
    PackUnits pack;
};

static constexpr LayoutPacker PACKERS[] = {
    { &UNIT_STEREO_16, packLayout<UNIT_STEREO_16> }, { &UNIT_STEREO_24, packLayout<UNIT_STEREO_24> },
    { &UNIT_QUADRO_16, packLayout<UNIT_QUADRO_16> }, { &UNIT_QUADRO_24, packLayout<UNIT_QUADRO_24> },
    { &UNIT_FIVE_16, packLayout<UNIT_FIVE_16> },     { &UNIT_FIVE_24, packLayout<UNIT_FIVE_24> },
    { &UNIT_SIX_16, packLayout<UNIT_SIX_16> },       { &UNIT_SIX_24, packLayout<UNIT_SIX_24> },
};

uint64_t orvPackSamples(uint64_t assign, uint64_t bits, const uint8_t* const* channels, uint64_t samples, uint8_t* to,
                        uint64_t room)
{
    const UnitLayout* layout = orvUnitLayout(assign, bits);
    if (!layout) return 0;
    const uint64_t units = std::min(samples / layout->times, room / layout->bytes);
    for (const LayoutPacker& packer : PACKERS) {
        if (packer.layout == layout) packer.pack(channels, units, to);
    }
    return units * layout->bytes;
}
