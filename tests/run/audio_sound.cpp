#include "tests/run/audio_sound.h"

#include <orven/aob.h>

#include <algorithm>

namespace {

struct Source {
    const std::vector<SoundSpec>* tracks;
    std::vector<std::vector<uint64_t>> given;   // samples by track and channel
};

uint64_t giveSamples(uint64_t track, uint8_t* buffer, uint64_t count, uint64_t channel, uint64_t* outCount,
                     uint64_t user)
{
    Source& source = *reinterpret_cast<Source*>(uintptr_t(user));
    const SoundSpec& sound = (*source.tracks)[track];
    uint64_t& given = source.given[track][channel];
    const uint64_t left = sound.samples - given, bytes = sound.bits / 8;
    const uint64_t now = std::min(left, count);
    for (uint64_t i = 0; i < now * bytes; i++) buffer[i] = uint8_t(given + i + 31 * channel);
    given += now;
    *outCount = now;
    return given == sound.samples ? ORV_AOB_END : ORV_AOB_MORE;
}

}   // namespace

uint64_t assignmentOf(uint64_t channels)
{
    return channels == 2 ? 1 : channels == 4 ? 3 : channels == 5 ? 19 : 20;
}

uint64_t playTimeOf(const SoundSpec& sound)
{
    return sound.samples * 90000 / sound.rate;
}

uint64_t makeSound(const DiscRun& run, uint64_t titleSet, const std::vector<SoundSpec>& tracks)
{
    Source source = { &tracks, {} };
    std::vector<AobTrackDesc> descs;
    for (const SoundSpec& track : tracks) {
        source.given.push_back(std::vector<uint64_t>(track.channels, 0));
        descs.push_back({ track.channels, uint32_t(assignmentOf(track.channels)), 0, track.bits, track.rate, 0 });
    }
    AobMuxer* muxer = nullptr;
    const uint64_t user = uint64_t(reinterpret_cast<uintptr_t>(&source));
    const std::u16string& target = run.target;
    uint64_t result = aobCreateMuxerW(reinterpret_cast<const OrvWChar*>(target.c_str()), titleSet, tracks.size(),
                                      descs.data(), giveSamples, user, &muxer);
    if (result) return result;
    result = aobStartMuxing(muxer);
    const uint64_t released = aobReleaseMuxer(muxer);
    return result ? result : released;
}

AudioSet setOf(const std::vector<SoundSpec>& tracks)
{
    AudioSet set = { .tracks = {}, .sound = Sound::UNKNOWN };   // the information is there already
    for (const SoundSpec& track : tracks) {
        set.tracks.push_back({ .playTime = playTimeOf(track),
                               .assign = assignmentOf(track.channels),
                               .bits = track.bits,
                               .rate = track.rate });
    }
    return set;
}
