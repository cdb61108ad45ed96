// audio_progress.h: one number pair for the host out of the stages of a DVD-Audio run. The units are a fixed plan: 102
// a title set, 25 for the rest.
#pragma once

#include "project/audio_model.h"

#include <cstdint>

// The stages of a DVD-Audio run, as the host's callback gets them.
enum AudioProgressKind : uint32_t {
    PROGRESS_AOB = 1,
    PROGRESS_ATS_IFO = 2,
    PROGRESS_ATS_BACKUP = 3,
    PROGRESS_STILLS = 4,
    PROGRESS_ASVS_IFO = 5,
    PROGRESS_ASVS_BACKUP = 6,
    PROGRESS_AMG_MENUS = 7,
    PROGRESS_AMG_IFO = 8,
    PROGRESS_AMG_BACKUP = 9,
    PROGRESS_AUDIO_PP = 10,
};

inline constexpr uint64_t PROGRESS_ALL = 100;   // value is percent of the stage

/** Reports value, percent of the stage, to the host. index is the title set of kinds 1 to 3, from 1.
    @return the callback's result: 0 to go on, anything else to cancel */
[[nodiscard]] uint32_t orvReportAudioProgress(const AudioDiscContext* context, uint32_t kind, uint64_t value,
                                              uint64_t index);
