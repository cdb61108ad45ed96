// audio_ifo.cpp: what the tables of DVD-Audio have in common.

#include "audio/audio_ifo.h"

#include "audio/sample_codes.h"
#include "base/time_code.h"

void orvPutPalette(uint8_t* to, const uint32_t colorTable[PALETTE_ENTRIES])
{
    for (uint64_t i = 0; i < PALETTE_ENTRIES; i++) {
        const uint32_t color = colorTable[i];
        const uint32_t entry = orvPackColor(uint8_t(color), uint8_t(color >> 8), uint8_t(color >> 16));
        for (uint64_t b = 0; b < 4; b++) *to++ = uint8_t(entry >> 8 * b);
    }
}

uint64_t orvTotalPlayTime(const AudioTitleSetDesc* titleSet)
{
    uint64_t ticks = 0;
    for (uint64_t i = 0; i < titleSet->trackCount; i++) ticks += titleSet->tracks[i].playTime;
    return ticks;
}

uint8_t orvTrackSizeCodes(const AudioTrackDesc* track)
{
    return orvGroupCodes(orvSampleSizeCode(track->sampleSize1), orvSampleSizeCode(track->sampleSize2));
}

uint8_t orvTrackRateCodes(const AudioTrackDesc* track)
{
    return orvGroupCodes(orvSampleRateCode(track->sampleRate1), orvSampleRateCode(track->sampleRate2));
}
