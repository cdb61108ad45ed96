// extract_tracks.h: what `orven extract` says of a disc's tracks, and the names of their files.
#pragma once

#include "file_fault.h"

#include <orven/extract.h>

#include <cstdint>
#include <string>
#include <vector>

enum DiscKind { DISC_AUDIO, DISC_VIDEO };

/** Minutes, seconds and thousandths of a time in ticks: "03:25.480". */
std::string lengthText(uint32_t ticks);

/** "03:25.480, 48000 Hz, 16 bits, 2 channels". */
std::string trackText(DiscKind kind, const ExtractTrack& track);

/** What keeps a track from becoming files that play. */
FileFault trackFault(DiscKind kind, const ExtractTrack& track);

/** Names of a track's files, for a track without a fault. number: from 1 */
std::vector<std::string> waveNames(const ExtractTrack& track, uint64_t number, bool mono);
