// drivers.h: the two stages of a DVD-Video run that make files.
#pragma once

#include "project/model.h"

#include <cstdint>

/** Writes VTS_nn_0.VOB if the title set has menus, VTS_nn_0.IFO and its backup, and fills the navigation packs of the
   sources. A skipped title set is a success. targetPath ends in a separator. */
[[nodiscard]] uint64_t CreateVideoTitleSet(DiscContext* context, uint64_t titleSetNumber, const char16_t* targetPath);
/** Writes VIDEO_TS.VOB if the manager has menus, VIDEO_TS.IFO and its backup. previousPath may be null or empty. */
[[nodiscard]] uint64_t CreateVideoManager(DiscContext* context, const char16_t* targetPath,
                                          const char16_t* previousPath);
