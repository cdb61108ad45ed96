// aob_reader.h: reads an AOB by the published layout of its packs alone, with code that shares nothing with the engine:
// it tests every field of every header, and gives back the samples of each channel.
#pragma once

#include "tests/support/files.h"
#include "tests/support/wave.h"

#include <cstdint>
#include <string>
#include <vector>

// Where the bytes of a unit of samples come from, by words such as "4b2": channel 4, second time, byte 2 of the
// little-endian sample.
struct AobLayout {
    uint64_t assignment, bits, channels, times;
    const char* bytes;

    uint64_t unitBytes() const;
};

/** The layout of an assignment and a sample size; null if packs have none. */
const AobLayout* aobLayout(uint64_t assignment, uint64_t bits);

// What a pack has room for.
struct AobRow {
    uint64_t channels, bits;
    uint64_t firstPayload, nextPayload;   // bytes of samples in a track's first pack, in the others
};
/** The row of a track; null if packs have none. */
const AobRow* aobRow(uint64_t channels, uint64_t bits);

/** Samples of one channel in a frame of this rate; 0 for other rates than the six. */
uint64_t aobFrameSamples(uint64_t rate);

// One pack, as its headers tell of it.
struct AobPack {
    bool first = false;                // of its track
    uint64_t scr = 0, extension = 0;   // ticks of 90 kHz; rest in ticks of 27 MHz
    uint64_t pts = 0;
    uint64_t counter = 0;
    uint64_t firstAccess = 0;
    uint64_t stuffing = 0;   // bytes of stuffing in the pack header
    uint64_t samplesAt = 0, sampleBytes = 0;
    bool blank = false;   // nothing but zeros behind the headers: a last pack without samples, or silence
};

struct AobTrack {
    uint64_t channels = 0, assignment = 0, bits = 0, rate = 0;
    std::vector<AobPack> packs;
    // Empty for an assignment whose units are not known. Of a last pack without samples as many zeros as it has room
    // for.
    Channels samples;
};

struct AobFile {
    std::vector<AobTrack> tracks;
    std::vector<std::string> faults;   // "pack 3: ...", one each; none for a sound file
};

/** Reads a whole file. Time stamps, counters and pointers are tested against the samples that lie before them; the
    clock is left to those who know what they expect. */
AobFile readAob(const Bytes& file);

/** The faults, a line each, at most twenty. */
std::string describeFaults(const AobFile& file);
