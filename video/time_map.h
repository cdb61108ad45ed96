// time_map.h: the time map of a title: the unit on display at each multiple of five seconds.
#pragma once

#include "video/vobu_record.h"

#include <cstdint>

/** VTS_TMAPTI of a VOBU list, as a new block. */
[[nodiscard]] uint64_t orvBuildTimeMap(uint64_t ticksPerFrame, const VobuRecord* vobuList, uint8_t** result);
