// aob_rig.cpp: hosts and sources of the AOB multiplexer, played by tests.
#include "tests/audio/aob_rig.h"

#include "tests/support/packs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>

std::string packHex(const Bytes& aob, uint64_t pack, uint64_t at, uint64_t count)
{
    const uint64_t from = pack * PACK_BYTES + at;
    return from + count <= aob.size() ? toHex(aob.data() + from, count) : "";
}

std::string firstDifference(const Bytes& is, const Bytes& should)
{
    std::ostringstream text;
    const size_t common = std::min(is.size(), should.size());
    const size_t at =
        size_t(std::mismatch(is.begin(), is.begin() + int64_t(common), should.begin()).first - is.begin());
    if (at < common) {
        const size_t count = std::min<size_t>(16, common - at);
        text << "pack " << at / PACK_BYTES << " at " << at % PACK_BYTES << " is " << toHex(is.data() + at, count)
             << ", should be " << toHex(should.data() + at, count);
    } else if (is.size() != should.size()) {
        text << is.size() << " bytes, should be " << should.size();
    }
    return text.str();
}

// ---- the exported functions --------------------------------------------------------------------------------------

AobTrackDesc aobTrack(uint64_t channels, uint64_t assignment, uint64_t bits, uint64_t rate)
{
    // The two fields that nobody reads hold junk.
    return { uint32_t(channels), uint32_t(assignment), 0xABAD1DEA, uint32_t(bits), uint32_t(rate), 0xABAD1DEA };
}

void PrintTo(const SampleCall& call, std::ostream* out)
{
    *out << "{ " << call.track << ", " << call.channel << ", " << call.asked << " }";
}

AobSound aobSound(uint64_t channels, uint64_t assignment, uint64_t bits, uint64_t rate, uint64_t samples, TrackEnd end)
{
    return { aobTrack(channels, assignment, bits, rate),
             makeChannels(channels, bits, samples, uint32_t(channels * 1000 + bits + samples)), end };
}

SampleHost playing(const std::vector<AobSound>& sounds)
{
    std::vector<std::vector<uint64_t>> places;
    for (const AobSound& sound : sounds) places.emplace_back(sound.channels.size());
    return [sounds, places](const SampleCall& call) mutable {
        const AobSound& sound = sounds.at(call.track);
        const std::vector<int32_t>& channel = sound.channels.at(call.channel);
        uint64_t& place = places[call.track][call.channel];
        const uint64_t count = std::min(call.asked, channel.size() - place);
        const auto from = channel.begin() + int64_t(place);
        const Bytes bytes = pcmBytes(std::vector<int32_t>(from, from + int64_t(count)), sound.track.sampleSize);
        place += count;
        const bool over = sound.end == TrackEnd::BEHIND ? count == 0 : place == channel.size();
        const bool told = over && sound.end != TrackEnd::SHORT;
        return SampleAnswer{ told ? uint64_t(ORV_AOB_END) : uint64_t(ORV_AOB_MORE), count, bytes };
    };
}

std::vector<AobTrackDesc> tracksOf(const std::vector<AobSound>& sounds)
{
    std::vector<AobTrackDesc> tracks;
    for (const AobSound& sound : sounds) tracks.push_back(sound.track);
    return tracks;
}

namespace {

struct Listener {
    const SampleHost* host;
    std::vector<SampleCall>* calls;
};

}   // namespace

static uint64_t answer(uint64_t track, uint8_t* buffer, uint64_t asked, uint64_t channel, uint64_t* outCount,
                       uint64_t user)
{
    const Listener* const listener = reinterpret_cast<const Listener*>(user);
    listener->calls->push_back({ track, channel, asked });
    const SampleAnswer given = (*listener->host)(listener->calls->back());
    if (!given.bytes.empty()) memcpy(buffer, given.bytes.data(), given.bytes.size());
    *outCount = given.count;
    return given.result;
}

uint64_t AobRun::packs() const
{
    return aob.size() / PACK_BYTES;
}

std::string AobRun::hexAt(uint64_t pack, uint64_t at, uint64_t count) const
{
    return packHex(aob, pack, at, count);
}

AobRun runAob(const std::vector<AobTrackDesc>& tracks, const SampleHost& host)
{
    const TempDir folder;
    AobRun run;
    const Listener listener = { &host, &run.calls };
    AobMuxer* muxer = nullptr;
    const std::u16string path = folder.prefix();
    const std::basic_string<OrvWChar> wide(path.begin(), path.end());
    run.created = aobCreateMuxerW(wide.c_str(), 1, tracks.size(), tracks.data(), answer,
                                  reinterpret_cast<uint64_t>(&listener), &muxer);
    EXPECT_EQ(run.created, 0u);
    if (run.created) return run;
    run.result = aobStartMuxing(muxer);
    run.released = aobReleaseMuxer(muxer);
    EXPECT_EQ(run.released, 0u);
    run.aob = readFile(folder / u"ATS_01_1.AOB");
    EXPECT_EQ(run.aob.size() % PACK_BYTES, 0u);
    run.nfo = readNfo(folder / u"ATS_01.nfo");
    return run;
}

AobRun runAob(const std::vector<AobSound>& sounds)
{
    return runAob(tracksOf(sounds), playing(sounds));
}

static std::string trimmed(const std::string& text)
{
    const size_t from = text.find_first_not_of(" \t\r"), to = text.find_last_not_of(" \t\r");
    return from == std::string::npos ? "" : text.substr(from, to + 1 - from);
}

std::map<std::string, std::string> readNfo(const std::u16string& path)
{
    std::map<std::string, std::string> values;
    if (!fileExists(path)) return values;
    const Bytes bytes = readFile(path);
    std::istringstream lines(std::string(bytes.begin(), bytes.end()));
    std::string section;
    for (std::string line; std::getline(lines, line);) {
        line = trimmed(line);
        const size_t sign = line.find('=');
        if (!line.empty() && line[0] == '[') {
            section = line.substr(1, line.find(']') - 1);
        } else if (sign != std::string::npos) {
            const bool fresh =
                values.emplace(section + "." + trimmed(line.substr(0, sign)), trimmed(line.substr(sign + 1))).second;
            EXPECT_TRUE(fresh) << line << " stands there twice";
        }
    }
    return values;
}

// ---- the loop behind them ----------------------------------------------------------------------------------------

AudioTrackDesc trackRecord(uint64_t channels, uint64_t assignment, uint64_t bits, uint64_t rate)
{
    static const uint64_t SECOND[] = { 0, 0, 1, 2, 1, 2, 3, 1, 2, 3, 2, 3, 4, 1, 2, 1, 2, 3, 1, 1, 2 };
    AudioTrackDesc track = {};
    track.assign = assignment;
    track.channelCount = channels;
    track.channels2 = SECOND[assignment];
    track.channels1 = channels - track.channels2;
    track.sampleSize1 = bits;
    track.sampleRate1 = rate;
    track.sampleSize2 = assignment < 2 ? 0 : bits;
    track.sampleRate2 = assignment < 2 ? 0 : rate;
    return track;
}

namespace {

struct Feeder {
    std::vector<AobFill> fills;
    size_t next;
    uint64_t asked;
};

}   // namespace

static uint64_t feed(void* from, uint8_t* to, uint64_t room, AobFill* fill)
{
    Feeder* const feeder = static_cast<Feeder*>(from);
    feeder->asked = room;
    *fill = feeder->next < feeder->fills.size() ? feeder->fills[feeder->next++] : AobFill{ 0, true };
    EXPECT_LE(fill->bytes, room);
    memset(to, PACKED, std::min(fill->bytes, room));
    return 0;
}

AobClock clockOf(const AobState& state)
{
    return { state.clock, state.bytesMuxed, state.bufferFill, state.framesDecoded };
}

AobState stateOf(const AobClock& clock)
{
    return { clock.clock, clock.bytesMuxed, clock.bufferFill, clock.framesDecoded };
}

static uint64_t waitAPack(uint64_t clock, uint64_t)
{
    return clock + CLOCK_PER_PACK;
}

PackRun layPacks(const AudioTrackDesc& track, const std::vector<AobFill>& fills, const AobState& before)
{
    const TempDir folder;
    PackRun run;
    run.track = track;
    AobClock clock = clockOf(before);
    Feeder feeder = { fills, 0, 0 };
    const AobSource source = { &feeder, feed, nullptr, true, waitAPack };
    OSFILE file = 0;
    EXPECT_EQ(osOpenFile((folder / u"packs").c_str(), OS_CREATE, &file), 0u);
    run.result = orvMuxAobPacks(&source, file, &run.track, &clock);
    run.clock = stateOf(clock);
    EXPECT_EQ(osCloseFile(&file), 0u);
    run.aob = readFile(folder / u"packs");
    run.asked = feeder.asked;
    return run;
}
