// audio_disc.cpp: small discs of DVD-Audio, made through the library as a host makes them.
#include "audio_disc.h"

#include "base/wide.h"

#include <gtest/gtest.h>
#include <orven/orven.h>

#include <algorithm>
#include <string>

namespace fs = std::filesystem;

// ---- samples ------------------------------------------------------------------------------------------------------

Bytes channelSamples(const AudioTrackSpec& track, uint64_t index, uint64_t channel)
{
    Bytes bytes(track.samples * track.bits / 8);
    uint32_t noise = uint32_t(index * 1000 + channel * 7 + 1);
    for (uint8_t& byte : bytes) {
        noise = noise * 1664525 + 1013904223;
        byte = uint8_t(noise >> 24);
    }
    return bytes;
}

// What the library asks samples of.
struct DiscSource {
    const std::vector<AudioTrackSpec>* tracks;
    std::vector<std::vector<Bytes>> channels;   // of each track
    std::vector<std::vector<uint64_t>> given;   // bytes
};

static uint64_t giveSamples(uint64_t track, uint8_t* buffer, uint64_t count, uint64_t channel, uint64_t* out,
                            uint64_t user)
{
    DiscSource* source = reinterpret_cast<DiscSource*>(user);
    const Bytes& bytes = source->channels[track][channel];
    uint64_t& given = source->given[track][channel];
    const uint64_t sample = (*source->tracks)[track].bits / 8, now = std::min(count * sample, bytes.size() - given);
    std::copy_n(bytes.begin() + std::ptrdiff_t(given), now, buffer);
    given += now;
    *out = now / sample;
    const bool ended = given == bytes.size() && !((*source->tracks)[track].endsLate && now > 0);
    return ended ? ORV_AOB_END : ORV_AOB_MORE;
}

static DiscSource sourceOf(const std::vector<AudioTrackSpec>& tracks)
{
    DiscSource source = { &tracks, {}, {} };
    for (uint64_t i = 0; i < tracks.size(); i++) {
        std::vector<Bytes> channels;
        for (uint64_t c = 0; c < tracks[i].channels; c++) channels.push_back(channelSamples(tracks[i], i, c));
        source.given.emplace_back(channels.size());
        source.channels.push_back(channels);
    }
    return source;
}

// ---- the disc -----------------------------------------------------------------------------------------------------

static void makeAob(const fs::path& folder, const std::vector<AudioTrackSpec>& tracks)
{
    std::vector<AobTrackDesc> descs;
    for (const AudioTrackSpec& track : tracks)
        descs.push_back({ track.channels, track.assign, 0, track.bits, track.rate, 0 });
    DiscSource source = sourceOf(tracks);
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxerW(orvHostText(folder.u16string().c_str()), 1, descs.size(), descs.data(), giveSamples,
                              reinterpret_cast<uint64_t>(&source), &muxer),
              0u);
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
}

static std::string projectOf(const fs::path& folder, const std::vector<AudioTrackSpec>& tracks)
{
    std::string text =
        "[COMMON]\nversion=1.0\nmode=PAL\n[AMG]\ntitlesets=1\n[ATS_01]\ntracks=" + std::to_string(tracks.size()) + "\n";
    for (uint64_t i = 0; i < tracks.size(); i++) {
        const AudioTrackSpec& track = tracks[i];
        const std::string number = std::to_string(i + 1);
        const uint64_t time = track.playTime ? track.playTime : track.samples * 90000 / track.rate;
        text += "[TRACK_01_" + std::string(number.size() < 2 ? "0" : "") + number +
                "]\nformat=LPCM\nassign=" + std::to_string(track.tableAssign ? track.tableAssign : track.assign) +
                "\nsamplesize=" + std::to_string(track.tableBits ? track.tableBits : track.bits) +
                "\nsamplerate=" + std::to_string(track.rate) + "\nplaytime=" + std::to_string(time) +
                "\nchannel1=" + toUtf8((folder / "ATS_01_1.AOB").u16string()) + "\n";
    }
    return text;
}

/** UTF-16 with its mark, the only form in which Windows takes paths of any language. */
static Bytes wideText(const std::string& text)
{
    Bytes bytes = { 0xFF, 0xFE };
    for (const char16_t unit : toWide(text)) bytes.insert(bytes.end(), { uint8_t(unit), uint8_t(unit >> 8) });
    return bytes;
}

void makeAudioDisc(const fs::path& folder, const std::vector<AudioTrackSpec>& tracks)
{
    fs::create_directories(folder);
    ASSERT_NO_FATAL_FAILURE(makeAob(folder, tracks));
    const TempDir work;
    writeFile(work / u"p.ini", wideText(projectOf(folder, tracks)));
    const std::u16string target = (folder / "").u16string(), project = work / u"p.ini", log = work / u"log";
    ASSERT_EQ(ParseAudioDescW(orvHostText(project.c_str()), orvHostText(target.c_str()), nullptr, nullptr, 0,
                              orvHostText(log.c_str())),
              0u);
}

Bytes discFile(const fs::path& path)
{
    return readFile(path.u16string());
}

void writeDiscFile(const fs::path& path, const Bytes& bytes)
{
    writeFile(path.u16string(), bytes);
}

std::vector<uint64_t> trackSectors(const fs::path& folder)
{
    const Bytes bytes = discFile(folder / "ATS_01.nfo");
    const std::string text(bytes.begin(), bytes.end()), key = "TrackBlockSize=";
    std::vector<uint64_t> sectors;
    for (size_t at = text.find(key); at != text.npos; at = text.find(key, at + 1))
        sectors.push_back(std::stoull(text.substr(at + key.size())));
    return sectors;
}

// ---- WAVE files ---------------------------------------------------------------------------------------------------

static void put(Bytes* bytes, uint64_t value, uint64_t count)
{
    for (uint64_t i = 0; i < count; i++) bytes->push_back(uint8_t(value >> 8 * i));
}

static void putText(Bytes* bytes, const char* text)
{
    bytes->insert(bytes->end(), text, text + 4);
}

static Bytes waveOf(const AudioTrackSpec& track, const std::vector<Bytes>& channels)
{
    const uint64_t sample = track.bits / 8, frame = sample * channels.size(), data = track.samples * frame;
    Bytes wave;
    putText(&wave, "RIFF");
    put(&wave, 38 + data, 4);
    putText(&wave, "WAVE");
    putText(&wave, "fmt ");
    put(&wave, 18, 4);
    put(&wave, 1, 2);
    put(&wave, channels.size(), 2);
    put(&wave, track.rate, 4);
    put(&wave, track.rate * frame, 4);
    put(&wave, frame, 2);
    put(&wave, track.bits, 2);
    put(&wave, 0, 2);
    putText(&wave, "data");
    put(&wave, data, 4);
    for (uint64_t at = 0; at < track.samples * sample; at += sample) {
        for (const Bytes& channel : channels)
            wave.insert(wave.end(), channel.begin() + std::ptrdiff_t(at),
                        channel.begin() + std::ptrdiff_t(at + sample));
    }
    return wave;
}

static Bytes channelOf(const AudioTrackSpec& track, uint64_t index, int channel)
{
    return channel < 0 ? Bytes(track.samples * track.bits / 8) : channelSamples(track, index, uint64_t(channel));
}

Bytes monoWave(const AudioTrackSpec& track, uint64_t index, int channel)
{
    return waveOf(track, { channelOf(track, index, channel) });
}

Bytes pairWave(const AudioTrackSpec& track, uint64_t index, int left, int right)
{
    return waveOf(track, { channelOf(track, index, left), channelOf(track, index, right) });
}
