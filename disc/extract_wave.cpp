// extract_wave.cpp: samples of packs as WAVE files.

#include "audio/sample_units.h"
#include "base/memory.h"
#include "disc/extract_types.h"

#include <algorithm>

constexpr uint64_t CHANNELS = 6;
constexpr uint64_t PAIR_BYTES = 2 * SECTOR_BYTES;   // samples of one pack in a file of two channels, one of them silent

constexpr uint8_t LF = 0, RF = 1, LS = 2, RS = 3, C = 4, LFE = 5;
constexpr ExtractOutput FRONT_PAIR = { u"lrf", { LF, RF } }, SURROUND_PAIR = { u"lrs", { LS, RS } };
constexpr ExtractOutput FRONT_LEFT = { u"lf", { LF, NO_CHANNEL } }, FRONT_RIGHT = { u"rf", { RF, NO_CHANNEL } };
constexpr ExtractOutput SURROUND_LEFT = { u"ls", { LS, NO_CHANNEL } }, SURROUND_RIGHT = { u"rs", { RS, NO_CHANNEL } };
constexpr ExtractOutput CENTRE = { u"c", { C, NO_CHANNEL } }, LOW = { u"lfe", { LFE, NO_CHANNEL } };
constexpr ExtractOutput CENTRE_PAIR = { u"c_lfe", { C, LFE } };

static constexpr ExtractLayout LAYOUTS[] = {
    { 1, u"extract 2.0 track", 1, 2, { FRONT_PAIR }, { FRONT_LEFT, FRONT_RIGHT } },
    { 3,
      u"extract 4.0 track",
      2,
      4,
      { FRONT_PAIR, SURROUND_PAIR },
      { FRONT_LEFT, FRONT_RIGHT, SURROUND_LEFT, SURROUND_RIGHT } },
    { 19,
      u"extract 5.0 track",
      3,
      5,
      { FRONT_PAIR, SURROUND_PAIR, CENTRE },
      { FRONT_LEFT, FRONT_RIGHT, SURROUND_LEFT, SURROUND_RIGHT, CENTRE } },
    { 20,
      u"extract 5.1 track",
      3,
      6,
      { FRONT_PAIR, SURROUND_PAIR, CENTRE_PAIR },
      { FRONT_LEFT, FRONT_RIGHT, SURROUND_LEFT, SURROUND_RIGHT, CENTRE, LOW } },
};

const ExtractLayout* orvExtractLayout(uint64_t assign, bool* known)
{
    *known = true;
    for (const ExtractLayout& layout : LAYOUTS) {
        if (layout.assign == assign) return &layout;
    }
    *known = false;
    return &LAYOUTS[0];
}

// Samples of one pack, by channel.
struct PackSamples {
    uint64_t count, bytes;   // samples of each channel; bytes of a sample
    uint8_t channels[CHANNELS][SECTOR_BYTES];
};

static void takeApart(const UnitLayout* layout, const uint8_t* data, uint64_t units, PackSamples* samples)
{
    for (uint64_t unit = 0; unit < units; unit++) {
        const uint64_t at = unit * layout->times * layout->sampleBytes;
        for (uint64_t i = 0; i < layout->bytes; i++) {
            samples->channels[layout->at[i].channel][at + layout->at[i].at] = *data++;
        }
    }
    samples->count = units * layout->times;
    samples->bytes = layout->sampleBytes;
}

/** Whole units of a pack. A stereo sample of 16 bits is a unit by itself on an opened disc, otherwise each two are. */
static uint64_t wholeUnits(const ExtractContext* context, const UnitLayout* layout, uint64_t length)
{
    const uint64_t units = length / layout->bytes;
    const bool pairwise = layout->times == 1 && !context->opened;
    return pairwise ? units & ~uint64_t(1) : units;
}

static uint64_t writeSingle(const PackSamples* samples, uint8_t channel, OSFILE file)
{
    return osWriteFile(file, samples->channels[channel], samples->count * samples->bytes);
}

static uint64_t writePair(const PackSamples* samples, const uint8_t channels[2], OSFILE file)
{
    uint8_t both[PAIR_BYTES] = {};   // a channel that is not there is silent
    for (uint64_t side = 0; side < 2; side++) {
        if (channels[side] == NO_CHANNEL) continue;
        const uint8_t* from = samples->channels[channels[side]];
        uint8_t* to = both + side * samples->bytes;
        for (uint64_t i = 0; i < samples->count; i++, from += samples->bytes, to += 2 * samples->bytes) {
            osCopyMem(to, from, samples->bytes);
        }
    }
    return osWriteFile(file, both, samples->count * samples->bytes * 2);
}

uint64_t orvDeinterleave(const ExtractContext* context, const ExtractTrack* track, const ExtractOutput* outputs,
                         const OSFILE* files, uint64_t count, bool pairs, const uint8_t* data, uint64_t length)
{
    const UnitLayout* layout = orvUnitLayout(track->assign, track->sampleSize1);
    if (!layout) return 0;
    if (layout->channels > 2 && track->sampleSize2 != track->sampleSize1) return 0;
    const uint64_t units = wholeUnits(context, layout, std::min(length, SECTOR_BYTES));
    if (units == 0) return 0;
    PackSamples samples;
    takeApart(layout, data, units, &samples);
    for (uint64_t i = 0; i < count; i++) {
        const uint8_t* channels = outputs[i].channels;
        const uint64_t error =
            pairs ? writePair(&samples, channels, files[i]) : writeSingle(&samples, channels[0], files[i]);
        if (error) return error;
    }
    return 0;
}

// ---- header
// ----------------------------------------------------------------------------------------------------------

static uint8_t* put16(uint8_t* to, uint64_t value)
{
    to[0] = uint8_t(value);
    to[1] = uint8_t(value >> 8);
    return to + 2;
}

static uint8_t* put32(uint8_t* to, uint64_t value)
{
    orvPutLittle32(to, uint32_t(value));
    return to + 4;
}

static uint8_t* putText(uint8_t* to, const char* text)
{
    osCopyMem(to, text, 4);
    return to + 4;
}

uint64_t orvWriteWaveHeader(const ExtractTrack* track, OSFILE file, bool stereoPairs)
{
    constexpr uint64_t FORMAT_BYTES = 18, FORMAT_PCM = 1, RIFF_HEAD = 8;
    uint64_t bytes = 0;
    if (uint64_t error = osFileSize(file, &bytes)) return error;
    const uint64_t channels = stereoPairs ? 2 : 1;
    const uint64_t frame = track->sampleSize1 * channels / 8;
    uint8_t header[WAVE_HEADER_BYTES];
    uint8_t* to = putText(header, "RIFF");
    to = put32(to, bytes - RIFF_HEAD);
    to = putText(to, "WAVE");
    to = putText(to, "fmt ");
    to = put32(to, FORMAT_BYTES);
    to = put16(to, FORMAT_PCM);
    to = put16(to, channels);
    to = put32(to, track->sampleRate1);
    to = put32(to, frame * track->sampleRate1);
    to = put16(to, frame);
    to = put16(to, track->sampleSize1);
    to = put16(to, 0);
    to = putText(to, "data");
    (void)put32(to, bytes - WAVE_HEADER_BYTES);
    if (uint64_t error = osSeekFile(file, 0, OS_FROM_START)) return error;
    return osWriteFile(file, header, sizeof(header));
}
