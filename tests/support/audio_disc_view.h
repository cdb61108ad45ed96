// audio_disc_view.h: what the parts of the reader of DVD-Audio discs share.
#pragma once

#include "tests/support/audio_disc_reader.h"
#include "tests/support/disc_view.h"

#include <cstdint>
#include <vector>

// A track as the packs of an AOB tell it.
struct SoundTrack {
    uint64_t first = 0, packs = 0;               // sectors, from the AOB's start
    uint64_t bytes = 0;                          // of samples
    uint64_t firstPts = 0;                       // ticks, of its first pack
    uint64_t sizes = 0, rates = 0, assign = 0;   // codes, as the packs have them

    uint64_t channels() const;
    uint64_t bits() const;
    uint64_t rate() const;
    uint64_t frameSamples() const;   // of a channel: 40 at 44.1 or 48 kHz, more at more
    uint64_t frameBytes() const;
    uint64_t ticks() const;   // that its samples last
};

/** The tracks of an AOB: each begins with a pack that has a system header. Clocks, time stamps, pointers and lengths of
    the packs are checked. */
std::vector<SoundTrack> readSound(const View& aob);

/** AUDIO_SV.IFO against AUDIO_SV.VOB; an empty one is none. */
void checkStills(const View& ifo, const View& vob, bool pal);
/** The menu table of AUDIO_TS.IFO against AUDIO_TS.VOB, and its navigation packs. */
void checkAudioMenus(const View& ifo, const View& vob, bool pal);
