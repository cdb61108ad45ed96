// extract_rig.h: `orven extract` on the discs of audio_disc.h, and what lies in folders.
#pragma once

#include "tests/host/audio_disc.h"
#include "tests/host/process.h"

#include <map>

inline constexpr uint64_t SECTOR = 2048;

// 3000 samples at 48 kHz are 62.5 ms.
inline const AudioTrackSpec STEREO = { .assign = 1, .channels = 2 };
inline const AudioTrackSpec FOUR = { .assign = 3, .channels = 4, .bits = 24, .rate = 96000, .samples = 4800 };
inline const AudioTrackSpec FIVE = { .assign = 19, .channels = 5, .bits = 16, .rate = 44100, .samples = 4410 };
inline const AudioTrackSpec SIX = { .assign = 20, .channels = 6, .bits = 24, .rate = 48000, .samples = 2400 };

/** Runs `orven extract DISC --out OUT MORE...` in a folder. Its words have `/` for the system's separator. */
ProcessResult runExtraction(const TempDir& folder, const std::vector<std::string>& more,
                            const std::string& disc = "disc", const std::string& out = "out");

/** Everything below a folder: names with bytes; of folders, names alone. */
std::map<std::string, Bytes> contentOf(const std::filesystem::path& folder);

typedef std::vector<std::string> Names;
Names namesIn(const std::filesystem::path& folder);

/** "disc/AUDIO_TS" in a folder. */
std::filesystem::path audioTs(const TempDir& folder);
