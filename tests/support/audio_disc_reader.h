// audio_disc_reader.h: reads an authored DVD-Audio folder by the format alone, with code that shares nothing with the
// engine, and lists what does not agree: tables with the sound, with the stills, with the menus, with each other.
#pragma once

#include "tests/support/disc_reader.h"

// What was found, and how much there was to look at: a check of nothing is no check.
struct AudioDiscReport : DiscReport {
    uint64_t tracks = 0;        // of all title sets
    uint64_t soundPacks = 0;    // of all AOBs
    uint64_t sampleBytes = 0;   // in them
    uint64_t cut = 0;           // chains of menus that the end of the table's file cuts
    uint64_t stills = 0;
    uint64_t stillSubPictures = 0;   // with a unit, all of them decoded
};

/** Reads the whole folder: AUDIO_TS, AUDIO_PP, ATS_01 and on, AUDIO_SV where the manager has stills. Menus are taken to
    have units of one picture, or of ten and more; every pack of an AOB is taken to have samples. Stops at a file that
    is missing, and says so. */
AudioDiscReport readAudioDisc(const std::filesystem::path& folder);
