// wave_file.h: RIFF/WAVE files: the format and the place of the samples.
#pragma once

#include "elementary.h"

// The samples of a file as they lie in it, fit for whatever or not.
struct WaveSamples {
    StreamFormat format = {};   // from, bytes: all that is there of them, also a last one that is not whole
    uint64_t told = 0;          // bytes that the file says it has of them; 0 or UINT32_MAX: it does not know
    bool isPlain = false;       // whole numbers, not floating point nor any coding
};

/** Reads the chunks of a RIFF/WAVE file up to its samples. */
FileFault findWaveSamples(std::istream& in, uint64_t bytes, WaveSamples* samples);

/** The same, as the multiplexer for movies takes them. */
FileFault readWave(std::istream& in, uint64_t bytes, StreamFormat* format);
