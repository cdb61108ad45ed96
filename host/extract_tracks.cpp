// extract_tracks.cpp: what `orven extract` says of a disc's tracks, and the names of their files.
#include "extract_tracks.h"

#include "codes.h"

#include <cstdio>
#include <iterator>

// Channels of DVD-Audio's assignments. From 2 on they are of two groups, each with bits and a rate of its own.
static constexpr uint32_t CHANNELS[] = { 1, 2, 3, 4, 3, 4, 5, 3, 4, 5, 4, 5, 6, 4, 5, 4, 5, 6, 5, 5, 6 };
static constexpr uint32_t FIRST_OF_TWO_GROUPS = 2;

struct WaveLayout {
    uint32_t assign;
    std::vector<const char*> pairs, singles;
};

static const WaveLayout LAYOUTS[] = {
    { 1, { "lrf" }, { "lf", "rf" } },
    { 3, { "lrf", "lrs" }, { "lf", "rf", "ls", "rs" } },
    { 19, { "lrf", "lrs", "c" }, { "lf", "rf", "ls", "rs", "c" } },
    { 20, { "lrf", "lrs", "c_lfe" }, { "lf", "rf", "ls", "rs", "c", "lfe" } },
};

static const WaveLayout* layoutOf(const ExtractTrack& track)
{
    for (const WaveLayout& layout : LAYOUTS) {
        if (layout.assign == track.assign) return &layout;
    }
    return nullptr;
}

std::string lengthText(uint32_t ticks)
{
    constexpr uint64_t TICKS_A_MILLISECOND = 90;
    const uint64_t milliseconds = (ticks + TICKS_A_MILLISECOND / 2) / TICKS_A_MILLISECOND;
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u.%03u", unsigned(milliseconds / 60000),
                  unsigned(milliseconds / 1000 % 60), unsigned(milliseconds % 1000));
    return text;
}

static bool hasTwoGroups(DiscKind kind, const ExtractTrack& track)
{
    return kind == DISC_AUDIO && track.assign >= FIRST_OF_TWO_GROUPS;
}

static std::string channelsText(DiscKind kind, const ExtractTrack& track)
{
    if (kind == DISC_VIDEO && track.assign == 0) return "not 2 channels";   // how many is not told
    if (track.assign >= std::size(CHANNELS)) return "an unknown number of channels";
    const uint32_t channels = CHANNELS[track.assign];
    return std::to_string(channels) + (channels == 1 ? " channel" : " channels");
}

// "48000", "96000 + 48000" where the groups differ
static std::string ofGroups(uint32_t first, uint32_t second, bool two)
{
    return std::to_string(first) + (two && second != first ? " + " + std::to_string(second) : "");
}

std::string trackText(DiscKind kind, const ExtractTrack& track)
{
    const bool two = hasTwoGroups(kind, track);
    const std::string rate =
        track.sampleRate1 ? ofGroups(track.sampleRate1, track.sampleRate2, two) + " Hz" : "an unknown sample rate";
    return lengthText(track.playTime) + ", " + rate + ", " + ofGroups(track.sampleSize1, track.sampleSize2, two) +
           " bits, " + channelsText(kind, track);
}

FileFault trackFault(DiscKind kind, const ExtractTrack& track)
{
    const bool two = hasTwoGroups(kind, track);
    if (!layoutOf(track)) {
        const std::string assign = std::to_string(track.assign);
        return { CODE_EXTRACT_ASSIGNMENT, kind == DISC_VIDEO
                                              ? "it has not two channels"
                                              : "its channel assignment is " + assign + ", not 1, 3, 19 or 20" };
    }
    if (track.sampleSize1 != 16 && track.sampleSize1 != 24)
        return { 0, "its samples have " + std::to_string(track.sampleSize1) + " bits, not 16 or 24" };
    if (track.sampleRate1 == 0) return { 0, "its sample rate is not known" };
    if (two && track.sampleSize2 != track.sampleSize1) return { 0, "its channels have not all the same bits" };
    if (two && track.sampleRate2 != track.sampleRate1) return { 0, "its channels have not all the same sample rate" };
    if (track.lastSector < track.firstSector) return { 0, "its last sector lies before its first" };
    return {};
}

std::vector<std::string> waveNames(const ExtractTrack& track, uint64_t number, bool mono)
{
    std::vector<std::string> names;
    const WaveLayout* layout = layoutOf(track);
    if (!layout) return names;
    for (const char* suffix : mono ? layout->singles : layout->pairs) {
        char name[32];
        std::snprintf(name, sizeof name, "track%03u_%s.wav", unsigned(number), suffix);
        names.push_back(name);
    }
    return names;
}
