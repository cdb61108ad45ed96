// progress.h: one number pair for the host out of the work of many stages, counted in units of 4 KiB of input.
#pragma once

#include "project/model.h"

#include <cstdint>

// The stages of a DVD-Video run, as the host's callback gets them.
enum ProgressKind : uint32_t {
    PROGRESS_TITLE_SET_MENUS = 1,
    PROGRESS_TITLE_SET_MOVIE = 2,
    PROGRESS_TITLE_SET_IFO = 3,
    PROGRESS_TITLE_SET_BACKUP = 4,
    PROGRESS_MANAGER_MENUS = 5,
    PROGRESS_MANAGER_IFO = 6,
    PROGRESS_MANAGER_BACKUP = 7,
};

inline constexpr uint64_t PROGRESS_WHOLE = 0x10000;   // the fraction 1.0 of a stage's work
inline constexpr uint64_t PROGRESS_HALF = 0x8000;

/** Sizes the units of a model that has been read whole: a file of the user's costs units, an IFO and a backup one each.
 */
void orvPrepareUnits(DiscContext* context);

/** Reports value, a fraction of the stage's work, to the host. titleSetNumber counts for kinds 1 to 4.
    @return the callback's result: 0 to go on, anything else to cancel */
[[nodiscard]] uint32_t orvReportProgress(const DiscContext* context, uint32_t kind, uint64_t value,
                                         uint64_t titleSetNumber);
