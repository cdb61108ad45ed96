// audio_sound.h: DVD-Audio discs whose sound is made by the multiplexer, from samples that tests can tell apart.
#pragma once

#include "tests/run/audio_project.h"

// A track that the multiplexer asks for.
struct SoundSpec {
    uint32_t channels = 2, bits = 16, rate = 48000;
    uint64_t samples = 48000;   // of each channel
};

/** Channel assignment of so many channels: 1, 3, 19, 20. */
uint64_t assignmentOf(uint64_t channels);
/** Play time in ticks, cut. */
uint64_t playTimeOf(const SoundSpec& sound);
/** Makes ATS_nn_1.AOB and ATS_nn.nfo in the run's target; 0 or the multiplexer's result. */
uint64_t makeSound(const DiscRun& run, uint64_t titleSet, const std::vector<SoundSpec>& tracks);
/** The tracks as a project tells them. Packs and time stamps are the information file's. */
AudioSet setOf(const std::vector<SoundSpec>& tracks);
