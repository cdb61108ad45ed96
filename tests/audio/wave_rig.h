// wave_rig.h: the tracks of one title set through the direct driver, from files that the test makes.
#pragma once

#include "tests/audio/aob_model.h"

#include <cstdint>
#include <string>
#include <vector>

struct WaveRun {
    uint64_t result = 0;
    Bytes aob;
    std::vector<ModelWaveResult> tracks;   // those that did not fail
    std::vector<ProgressCall> progress;
    AobState clock = {};

    uint64_t packs() const;
    std::string hexAt(uint64_t pack, uint64_t at, uint64_t count) const;
};

struct WaveOptions {
    uint64_t atsNumber = 1, titleSets = 1;
    uint64_t cancelAt = 0;   // the report of progress, from 1, that is answered with a cancel; 0: none
    AobState clock = {};
    bool noFile = false;       // the AOB is not open
    bool readOnly = false;     // the AOB can't be written
    bool noCallback = false;   // nobody asks for progress
};

/** Tracks one by one, until a failure. */
WaveRun runWaves(const std::vector<ModelWave>& tracks, const WaveOptions& options = {});

/** A track of these sounds: one file for two channels, or one each. */
ModelWave waveOf(const ModelTrack& track, const Channels& channels, bool oneFile);
