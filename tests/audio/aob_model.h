// aob_model.h: both drivers of the AOB multiplexer once more, as plainly as they can be told: bytes by appending, one
// loop, tables by hand. Tests compare the engine with it over many seeds.
#pragma once

#include "tests/audio/aob_rig.h"
#include "tests/support/files.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct ModelTrack {
    uint64_t channels = 2, assignment = 1, bits = 16, rate = 48000;
};

// ---- the exported functions --------------------------------------------------------------------------------------

struct ModelRun {
    uint64_t result = 0;
    Bytes aob;
    std::vector<SampleCall> calls;
    std::map<std::string, std::string> nfo;
};

/** What aobStartMuxing does with these tracks and this host. */
ModelRun modelMuxer(const std::vector<ModelTrack>& tracks, const SampleHost& host);

// ---- the direct driver -------------------------------------------------------------------------------------------

struct ModelWave {
    ModelTrack track = {};
    uint64_t startSample = 0, endSample = 0, multiFile = 0;
    std::vector<Bytes> files = {};   // one of both channels, or one a channel
};

struct ModelWaveResult {
    uint64_t firstCellPts = 0, blockSize = 0, sourceSize = 0;

    bool operator==(const ModelWaveResult&) const = default;
};

// Arguments of the progress callback.
struct ProgressCall {
    uint32_t total, done, kind;

    bool operator==(const ProgressCall&) const = default;
};

struct ModelWaveRun {
    uint64_t result = 0;
    Bytes aob;
    std::vector<ModelWaveResult> tracks;   // those that did not fail
    std::vector<ProgressCall> progress;
};

/** What orvMuxWaveTrack does with the tracks of one title set, one by one until a failure. The n-th report of progress
    (from 1) is answered with a cancel; 0: none is. */
ModelWaveRun modelWaves(const std::vector<ModelWave>& tracks, uint64_t atsNumber, uint64_t titleSets,
                        uint64_t cancelAt = 0);
