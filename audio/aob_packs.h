// aob_packs.h: lays the samples of one track into the packs of an AOB, in step with a model of the decoder's buffer.
// Both drivers, the one that asks the host and the one that reads WAVE files, are sources of this loop.
#pragma once

#include "base/files.h"
#include "project/audio_model.h"

#include <cstdint>

// Runs on across the tracks of a title set; zero at its start.
struct AobClock {
    uint64_t clock;           // system clock, in 1/270,000,000,000 second
    uint64_t bytesMuxed;      // all samples so far
    uint64_t bufferFill;      // bytes in the modelled decoder buffer
    uint64_t framesDecoded;   // by the modelled decoder
};

inline constexpr uint64_t CLOCK_PER_TICK = 3'000'000;     // clock units of a 90 kHz tick
inline constexpr uint64_t CLOCK_PER_PACK = 438'857'143;   // of 2048 bytes at 10.08 Mbit/s
inline constexpr uint64_t CLOCK_PER_EXTENSION = 10'000;   // of a 27 MHz tick

// Samples of one pack, as a source gave them.
struct AobFill {
    uint64_t bytes;   // whole units
    bool ended;       // the track ends with this pack
};

// What differs between the drivers.
struct AobSource {
    void* from;
    /** Fills up to room bytes. A failure ends the track without another pack. */
    uint64_t (*fill)(void* from, uint8_t* to, uint64_t room, AobFill* fill);
    /** Called behind each pack; null: nobody asks. */
    uint64_t (*packWritten)(void* from);
    bool underrunFails;   // false: a decoder that would run dry waits
    /** The clock of the next round where the decoder's buffer is too full; decoded: the decoder's time in ticks. */
    uint64_t (*waitUntil)(uint64_t clock, uint64_t decoded);
};

/** Lays one track into an open AOB. firstCellPts and blockSize of the track are its results.
    @return 0; ORV_WRONG_SAMPLE_RATE; ORV_SAMPLE_SIZE_20_UNSUPPORTED; ORV_AOB_NOT_WRITTEN; ORV_AOB_UNDERRUN; the
            failures of the source */
[[nodiscard]] uint64_t orvMuxAobPacks(const AobSource* source, OSFILE aob, AudioTrackDesc* track, AobClock* clock);
