// channel_assignment.h: the channel assignments of DVD-Audio: how many channels each has in its two groups.
#pragma once

#include <cstdint>

inline constexpr uint64_t CHANNEL_ASSIGNMENTS = 21;
inline constexpr uint64_t ASSIGN_MONO = 0, ASSIGN_STEREO = 1, ASSIGN_QUADRO = 3, ASSIGN_FIVE = 19, ASSIGN_SIX = 20;
inline constexpr uint64_t FIRST_ASSIGN_OF_TWO_GROUPS = 2;

struct ChannelGroups {
    uint8_t first, second;
};

// Entry i is assignment i.
inline constexpr ChannelGroups CHANNEL_GROUPS[CHANNEL_ASSIGNMENTS] = {
    { 1, 0 }, { 2, 0 }, { 2, 1 }, { 2, 2 }, { 2, 1 }, { 2, 2 }, { 2, 3 }, { 2, 1 }, { 2, 2 }, { 2, 3 }, { 2, 2 },
    { 2, 3 }, { 2, 4 }, { 3, 1 }, { 3, 2 }, { 3, 1 }, { 3, 2 }, { 3, 3 }, { 4, 1 }, { 4, 1 }, { 4, 2 },
};
