// audio_sound_reader.cpp: the packs of an AOB, one by one.
#include "tests/support/audio_disc_view.h"

#include <algorithm>

uint64_t SoundTrack::channels() const
{
    switch (assign) {
    case 0: return 1;
    case 1: return 2;
    case 2:
    case 4:
    case 7: return 3;
    case 3:
    case 5:
    case 8:
    case 10:
    case 13:
    case 15: return 4;
    case 12:
    case 17:
    case 20: return 6;
    default: return 5;
    }
}

uint64_t SoundTrack::bits() const
{
    return 16 + 4 * (sizes >> 4);
}

uint64_t SoundTrack::rate() const
{
    const uint64_t code = rates >> 4;
    return (code < 8 ? 48000u : 44100u) << (code & 3);
}

uint64_t SoundTrack::frameSamples() const
{
    return uint64_t(40) << (rates >> 4 & 3);
}

uint64_t SoundTrack::frameBytes() const
{
    return frameSamples() * channels() * bits() / 8;
}

uint64_t SoundTrack::ticks() const
{
    return bytes / (channels() * bits() / 8) * 90000 / rate();
}

namespace {

// What the packs before have left.
struct State {
    uint64_t clock = 0;        // 27 MHz, of this pack
    uint64_t bytes = 0;        // of samples in the AOB so far
    uint64_t trackPacks = 0;   // of the track
};

uint64_t clockOf(const View& aob, uint64_t at)   // of a pack, 27 MHz
{
    const uint64_t bits = aob.get(at + 4, 6);
    if ((bits & 0xC40004000401) != 0x440004000401) aob.fault("marker bits of the pack at ", at);
    const uint64_t base = (bits >> 43 & 7) << 30 | (bits >> 27 & 0x7FFF) << 15 | (bits >> 11 & 0x7FFF);
    return base * 300 + (bits >> 1 & 0x1FF);
}

uint64_t timeStamp(const View& aob, uint64_t at)   // five bytes
{
    const uint64_t bits = aob.get(at, 5);
    if ((bits & 0xF100010001) != 0x2100010001) aob.fault("marker bits of the time stamp at ", at);
    return (bits >> 33 & 7) << 30 | (bits >> 17 & 0x7FFF) << 15 | (bits >> 1 & 0x7FFF);
}

// The time stamp is that of the next frame that begins, counted over all tracks; the pointer leads to it from behind
// itself. That of a track's first pack leads to its first sample.
void checkNextFrame(const View& aob, uint64_t at, uint64_t pts, const SoundTrack& track, const State& state)
{
    const uint64_t frame = (state.bytes + track.frameBytes() - 1) / track.frameBytes();
    const uint64_t time = frame * track.frameSamples() * 90000 / track.rate();
    if (pts != time) aob.fault("time stamp of the pack at ", at, " is ", pts, ", should be ", time);
    if (pts < state.clock / 300) aob.fault("the pack at ", at, " comes too late");
    const uint64_t distance = state.trackPacks ? frame * track.frameBytes() - state.bytes : 0;
    aob.expect(at + 4, 2, aob.get(at + 3, 1) - 1 + distance, "first access unit");
}

// The private header and the samples of a pack, from offset at on to end.
void readPrivate(const View& aob, uint64_t at, uint64_t end, uint64_t pts, std::vector<SoundTrack>& tracks,
                 State& state)
{
    const uint64_t header = aob.get(at + 3, 1), samples = at + 4 + header;
    const uint64_t sizes = aob.get(at + 7, 1), rates = aob.get(at + 8, 1), assign = aob.get(at + 10, 1);
    SoundTrack& track = tracks.back();
    aob.expect(at, 1, 0xA0, "sub-stream");
    aob.expect(at + 1, 1, state.trackPacks % 32, "counter");
    aob.expect(at + 2, 1, 0, "private header");
    if (state.trackPacks == 0) {
        track.sizes = sizes;
        track.rates = rates;
        track.assign = assign;
        track.firstPts = pts;
    } else if (track.sizes != sizes || track.rates != rates || track.assign != assign) {
        aob.fault("attributes change within a track, offset ", at);
    }
    checkNextFrame(aob, at, pts, track, state);
    aob.expect(at + 6, 1, track.channels() == 6 ? 0x30 : 0x10, "down mix");
    if (track.assign < 2 && ((sizes & 15) != 15 || (rates & 15) != 15)) aob.fault("a group that is not there, ", at);
    if (track.assign >= 2 && ((sizes & 15) != sizes >> 4 || (rates & 15) != rates >> 4)) aob.fault("groups at ", at);
    aob.expect(at + 11, 1, 0x80, "dynamic range");
    if (!aob.allZero(at + 12, samples)) aob.fault("rest of the private header at ", at);
    if (samples > end) return aob.fault("headers leave their pack, offset ", at);
    track.packs++;
    state.trackPacks++;
    track.bytes += end - samples;
    state.bytes += end - samples;
}

void readSoundPack(const View& aob, uint64_t sector, std::vector<SoundTrack>& tracks, State& state)
{
    const uint64_t start = sector * SECTOR, stop = start + SECTOR;
    if (aob.get(start, 4) != 0x1BA) return aob.fault("no pack at sector ", sector);
    const uint64_t clock = clockOf(aob, start), before = state.clock;
    state.clock = clock;
    aob.expect(start + 10, 3, 0x0189C3, "rate");
    uint64_t at = start + 14 + (aob.get(start + 13, 1) & 7);   // stuffing
    if (aob.get(at, 4) == 0x1BB) {
        aob.expect(at + 4, 2, 12, "length of the system header");
        tracks.push_back({ .first = sector });
        state.trackPacks = 0;
        at += 18;
    }
    // A track begins at the clock that the one before ended at.
    if (sector && (state.trackPacks ? clock <= before : clock < before)) aob.fault("clock of sector ", sector);
    if (tracks.empty()) return aob.fault("does not begin with a track");
    if (aob.get(at, 4) != 0x1BD) return aob.fault("no sound at sector ", sector);
    // In a pack with stuffing the length still is that of one without.
    const uint64_t length = aob.get(at + 4, 2), header = aob.get(at + 8, 1), end = std::min(at + 6 + length, stop);
    if (at + 6 + length > stop + 7) aob.fault("a packet leaves its pack, sector ", sector);
    const uint64_t pts = timeStamp(aob, at + 9);
    if (end < stop) {
        aob.expect(end, 4, 0x1BE, "padding");
        aob.expect(end + 4, 2, stop - end - 6, "length of the padding");
    }
    readPrivate(aob, at + 9 + header, end, pts, tracks, state);
}

}   // namespace

std::vector<SoundTrack> readSound(const View& aob)
{
    std::vector<SoundTrack> tracks;
    State state;
    if (aob.bytes->size() % SECTOR) aob.fault("has no whole sectors");
    for (uint64_t sector = 0; sector < aob.bytes->size() / SECTOR; sector++) {
        readSoundPack(aob, sector, tracks, state);
        if (aob.report->faults.size() > 100) break;
    }
    return tracks;
}
