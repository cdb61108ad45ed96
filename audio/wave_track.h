// wave_track.h: the direct way into an AOB: a track whose sources are the WAVE files of the project.
#pragma once

#include "audio/aob_packs.h"
#include "base/files.h"
#include "project/audio_model.h"

#include <cstdint>

/** Lays the first pack of a track into an open AOB and reports PROGRESS_AOB.
    @param trackIndex  from 0
    @return 0; ORV_WRONG_AOB_FILE if aob is not open; ORV_WRONG_WAVE; ORV_CANCELED; the failures of orvMuxAobPacks; the
            platform's number if a source can't be opened */
[[nodiscard]] uint64_t orvMuxWaveTrack(const AudioDiscContext* context, OSFILE aob, AudioTitleSetDesc* titleSet,
                                       uint64_t trackIndex, uint64_t atsNumber, AobClock* clock);
