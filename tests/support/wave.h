// wave.h: WAVE files, made by tests from samples, sound or with a fault of the test's choice.
#pragma once

#include "tests/support/files.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Samples of each channel, signed, in time.
typedef std::vector<std::vector<int32_t>> Channels;

/** Samples of all bit patterns, the same for the same seed: no two channels, times or bytes are alike for long. */
Channels makeChannels(uint64_t channels, uint64_t bits, uint64_t samples, uint32_t seed);
/** Little-endian samples of one channel. */
Bytes pcmBytes(const std::vector<int32_t>& samples, uint64_t bits);
/** Little-endian samples of all channels, time by time, as a WAVE file has them. */
Bytes pcmBytes(const Channels& channels, uint64_t bits);

struct WaveChunk {
    std::string id;   // four characters
    Bytes data = {};
    std::optional<uint32_t> size = {};   // written in place of the true one
};

struct WaveFileSpec {
    uint64_t channels = 2, bits = 16, rate = 48000;
    Bytes samples = {};
    Bytes formatExtra = {};               // behind the sixteen bytes of the format
    std::vector<WaveChunk> before = {};   // between format and data
    std::vector<WaveChunk> behind = {};   // behind the data
};

/** A file: RIFF, WAVE, format, chunks, data, chunks. */
Bytes waveFile(const WaveFileSpec& recipe);
/** One of these channels, without further chunks. */
Bytes waveFile(const Channels& channels, uint64_t bits, uint64_t rate = 48000);
