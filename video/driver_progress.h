// driver_progress.h: adapters between the passes over a movie and the run's progress.
#pragma once

#include "project/model.h"

#include <cstdint>

// PassProgress callbacks of a DVD-Video run; user is the title set's number. 0 cancels.
[[nodiscard]] uint64_t orvScanProgress(const RunHead* run, uint64_t total, uint64_t done, uint64_t user);
[[nodiscard]] uint64_t orvSetupProgress(const RunHead* run, uint64_t total, uint64_t done, uint64_t user);
/** The scan of a menu VOB; a user of 0 is the manager. */
[[nodiscard]] uint64_t orvMenuProgress(const RunHead* run, uint64_t total, uint64_t done, uint64_t user);
