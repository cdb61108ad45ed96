// audio_disc.h: small discs of DVD-Audio, made through the library as a host makes them, and what their tracks hold.
#pragma once

#include "tests/support/files.h"

#include <cstdint>
#include <vector>

// A track of noise that is its own: no two channels and no two tracks are alike.
struct AudioTrackSpec {
    uint32_t assign = 1, channels = 2;
    uint32_t bits = 16, rate = 48000;
    uint64_t samples = 3000;    // of each channel; even, for 24 bits or more than two channels
    uint32_t tableAssign = 0;   // what the project says, if not 0, in the place of what the packs hold
    uint32_t tableBits = 0;
    bool endsLate = false;   // its end is told when nothing is left, in place of with its last samples
    uint64_t playTime = 0;   // ticks; 0: those of the samples
};

/** Makes ATS_01_1.AOB and all tables. The multiplexer has one clock for all tracks: those of a low rate go first.
    folder: AUDIO_TS, which is made */
void makeAudioDisc(const std::filesystem::path& folder, const std::vector<AudioTrackSpec>& tracks);

/** Samples of one channel, from 0, of one track, from 0; low byte first. */
Bytes channelSamples(const AudioTrackSpec& track, uint64_t index, uint64_t channel);

/** The WAVE file that holds one channel, or two of them in turns. A channel of -1 is silent. */
Bytes monoWave(const AudioTrackSpec& track, uint64_t index, int channel);
Bytes pairWave(const AudioTrackSpec& track, uint64_t index, int left, int right);

/** A file of the disc. */
Bytes discFile(const std::filesystem::path& path);
void writeDiscFile(const std::filesystem::path& path, const Bytes& bytes);

/** Sectors of the tracks' packs, as the information file beside the AOB tells them. */
std::vector<uint64_t> trackSectors(const std::filesystem::path& folder);
