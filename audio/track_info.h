// track_info.h: the information file ATS_nn.nfo beside a finished AOB: one section a track, with the numbers that the
// tables of the disc need.
#pragma once

#include "project/audio_model.h"

#include <cstdint>

/** Writes the section of a track (number from 1); what else the file has stays. */
[[nodiscard]] uint64_t orvWriteTrackInfo(const char16_t* path, uint64_t number, const AudioTrackDesc* track);
/** Reads firstCellPts and blockSize of a track (number from 1); 0 for what is not there. */
[[nodiscard]] uint64_t orvReadTrackInfo(const char16_t* path, uint64_t number, AudioTrackDesc* track);
