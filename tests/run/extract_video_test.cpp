// From samples to samples by way of a DVD-Video disc: video and LPCM multiplexed, the disc authored, its chapters
// extracted.
#include "base/wide.h"
#include "tests/run/disc_run.h"
#include "tests/support/elementary.h"

#include <orven/extract.h>
#include <orven/mux.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

uint64_t keepSectors(uint64_t user, const uint8_t* sectors, uint64_t bytes)
{
    Bytes* program = reinterpret_cast<Bytes*>(uintptr_t(user));
    program->insert(program->end(), sectors, sectors + bytes);
    return 0;
}

void feed(MuxContext* handle, MuxStream* stream, const Bytes& chunk, uint64_t flags = 0)
{
    ASSERT_EQ(MuxData(handle, stream, chunk.data(), chunk.size(), nullptr, flags), 0u);
}

/** Little-endian samples of two channels and 16 bits, no two neighbours alike. */
Bytes stereoSamples(uint64_t count)
{
    Bytes bytes;
    for (uint64_t i = 0; i < count; i++) {
        const uint64_t value = (i + 1) * 0x9E3779B97F4A7C15;
        for (const uint64_t bits : { 32u, 40u, 48u, 56u }) bytes.push_back(uint8_t(value >> bits));
    }
    return bytes;
}

// Groups of 12 pictures, 0.48 seconds each, and the samples that go with them.
Bytes program(uint64_t groups, uint64_t rate, const Bytes& samples)
{
    Bytes sectors;
    MuxContext* handle = nullptr;
    EXPECT_EQ(InitMuxer(&handle, keepSectors, uint64_t(reinterpret_cast<uintptr_t>(&sectors))), 0u);
    MuxStream *video = nullptr, *sound = nullptr;
    EXPECT_EQ(AddStream(handle, 0, ORV_MUX_VIDEO_UNITS, &video), 0u);
    EXPECT_EQ(AddStream(handle, 0, ORV_MUX_LPCM, &sound), 0u);
    feed(handle, sound, waveFormat({ .rate = rate }), ORV_MUX_WAVEFORMAT);
    const std::vector<Bytes> units = makeVideo(gops(groups)).units();
    for (uint64_t i = 0; i < units.size(); i++) {
        feed(handle, video, units[i]);
        const uint64_t from = samples.size() * i / units.size(), to = samples.size() * (i + 1) / units.size();
        feed(handle, sound, Bytes(samples.begin() + std::ptrdiff_t(from), samples.begin() + std::ptrdiff_t(to)));
    }
    feed(handle, sound, endMark());
    EXPECT_EQ(ExitMuxer(handle), 0u);
    return sectors;
}

struct VideoCase {
    const char* what;
    uint64_t groups, rate;
    uint64_t moreSamples;   // than the pictures last
    uint64_t chapters;
    uint32_t foundRate;   // what the disc's tables say of it
};

// clang-format off
const VideoCase CASES[] = {
    { "packs that all are full", 6, 48000, 312, 1, 48000 },   // (6 * 23040 + 312) / 502 = 276
    { "one chapter", 6, 48000, 0, 1, 48000 },
    { "chapters", 10, 48000, 0, 4, 48000 },
    { "a last sample that is no whole unit", 5, 48000, 1, 2, 48000 },
    { "sound that outlasts the video", 5, 48000, 10003, 2, 48000 },
    { "96 kHz, which no field of a track tells", 5, 96000, 3, 2, 0 },
};
// clang-format on

/** The samples as they come back. A last pack that is not full has its samples at an odd place, behind a header whose
    last byte is 80, where the multiplexer exchanges bytes in pairs of even places: 80 s0, s1 s2, ... become s0 80,
    s2 s1, ..., which read in pairs from 80 on are 80 s2, s1 s4, ... and at last sn-3 sn-1, high byte first. */
Bytes comingBack(const Bytes& samples)
{
    constexpr uint64_t PACK_PAYLOAD = 2008;
    const uint64_t last = samples.size() % PACK_PAYLOAD, from = samples.size() - last;
    Bytes back = samples;
    for (uint64_t i = 0; i < last; i += 2) {
        back[from + i] = samples[from + std::min(i + 2, last - 1)];
        back[from + i + 1] = i == 0 ? 0x80 : samples[from + i - 1];
    }
    return back;
}

std::string projectOf(const DiscRun& run, const VideoCase& row)
{
    std::string keys = "audio=PCM\nsamplerate=" + std::to_string(row.rate / 1000) +
                       "\nchapters=" + std::to_string(row.chapters) + "\n";
    for (uint64_t i = 1; i < row.chapters; i++) {
        keys += "chapter" + std::to_string(i + 1) + "=" + std::to_string(i * 90000) + "\n";
    }
    return plainProject(run, 1, "PAL", keys);
}

void countTracks(const ExtractTrack* track, uint64_t index, uint64_t user)
{
    std::vector<ExtractTrack>* tracks = reinterpret_cast<std::vector<ExtractTrack>*>(uintptr_t(user));
    EXPECT_EQ(index, tracks->size());
    tracks->push_back(*track);
}

Bytes samplesOf(const std::u16string& path, uint64_t channels, uint32_t rate)
{
    const Bytes wave = readFile(path);
    EXPECT_GE(wave.size(), 46u);
    if (wave.size() < 46) return {};
    EXPECT_EQ(wave[22], channels);
    EXPECT_EQ(uint32_t(wave[24]) | uint32_t(wave[25]) << 8 | uint32_t(wave[26]) << 16, rate);
    return Bytes(wave.begin() + 46, wave.end());
}

TEST(ExtractVideoCircle, SamplesAsTheyWentIn)
{
    for (const VideoCase& row : CASES) {
        SCOPED_TRACE(row.what);
        DiscRun run;
        const uint64_t count = row.groups * row.rate * 48 / 100 + row.moreSamples;
        const Bytes samples = stereoSamples(count);
        const Bytes vob = program(row.groups, row.rate, samples);
        run.put("VTS_01_1.VOB", vob);
        ASSERT_EQ(run.author(projectOf(run, row)), 0u);
        const std::u16string out = (run.folder.root / "").u16string();

        ExtractContext* context = nullptr;
        ASSERT_EQ(d2wCreateContextW(orvHostText(run.target.c_str()), orvHostText(out.c_str()), &context), 0u);
        std::vector<ExtractTrack> tracks;
        uint64_t found = 0;
        EXPECT_EQ(d2wOpenDisc(context, &found, countTracks, uint64_t(reinterpret_cast<uintptr_t>(&tracks))), 0u);
        ASSERT_EQ(found, row.chapters);
        ASSERT_EQ(tracks.size(), row.chapters);
        Bytes both, left, right;
        uint64_t sector = 0, time = 0;
        for (uint64_t i = 0; i < found; i++) {
            EXPECT_EQ(tracks[i].firstSector, sector);
            EXPECT_EQ(tracks[i].assign, 1u);
            EXPECT_EQ(tracks[i].sampleSize1, 16u);
            EXPECT_EQ(tracks[i].sampleRate1, row.foundRate);
            sector = tracks[i].lastSector + uint64_t(1);
            time += tracks[i].playTime;
            const std::u16string name = out + toWide("track00" + std::to_string(i + 1));
            EXPECT_EQ(d2wExtractTrack(context, i, 1, nullptr, 0), 0u);
            EXPECT_EQ(d2wExtractTrack(context, i, 0, nullptr, 0), 0u);
            const Bytes pair = samplesOf(name + u"_lrf.wav", 2, row.foundRate);
            EXPECT_FALSE(pair.empty()) << i;
            both += pair;
            left += samplesOf(name + u"_lf.wav", 1, row.foundRate);
            right += samplesOf(name + u"_rf.wav", 1, row.foundRate);
        }
        EXPECT_EQ(d2wReleaseContext(context), 0u);
        EXPECT_EQ(sector * 2048, vob.size());
        EXPECT_GE(time, 90000u);
        const Bytes expected = comingBack(samples);
        EXPECT_EQ(expected == samples, row.moreSamples == 312);
        EXPECT_EQ(both.size(), expected.size());
        EXPECT_TRUE(both == expected);
        Bytes lefts, rights;
        for (uint64_t i = 0; i < expected.size(); i += 4) {
            lefts += { expected[i], expected[i + 1] };
            rights += { expected[i + 2], expected[i + 3] };
        }
        EXPECT_TRUE(left == lefts);
        EXPECT_TRUE(right == rights);
    }
}

// Sound of one channel is told but not extracted.
TEST(ExtractVideoCircle, MonoIsToldAlone)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", program(2, 48000, stereoSamples(46080)));
    ASSERT_EQ(run.author(plainProject(run, 1, "PAL", "audio=PCM\nchannel=1\n")), 0u);
    ExtractContext* context = nullptr;
    const std::u16string out = (run.folder.root / "").u16string();
    ASSERT_EQ(d2wCreateContextW(orvHostText(run.target.c_str()), orvHostText(out.c_str()), &context), 0u);
    std::vector<ExtractTrack> tracks;
    EXPECT_EQ(d2wOpenDisc(context, nullptr, countTracks, uint64_t(reinterpret_cast<uintptr_t>(&tracks))), 0u);
    ASSERT_EQ(tracks.size(), 1u);
    EXPECT_EQ(tracks[0].assign, 0u);
    EXPECT_EQ(d2wExtractTrack(context, 0, 1, nullptr, 0), 0x84001B63u);
    EXPECT_EQ(readFile(out + u"track001_lrf.wav"), Bytes(46));
    EXPECT_EQ(d2wReleaseContext(context), 0u);
}

TEST(ExtractVideoCircle, OtherSoundIsNone)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    ASSERT_EQ(run.author(plainProject(run, 1, "PAL", "audio=AC3\n")), 0u);
    ExtractContext* context = nullptr;
    ASSERT_EQ(d2wCreateContextW(orvHostText(run.target.c_str()), orvHostText(run.target.c_str()), &context), 0u);
    EXPECT_EQ(d2wOpenDisc(context, nullptr, nullptr, 0), 0x84001B68u);
    EXPECT_EQ(d2wExtractTrack(context, 0, 1, nullptr, 0), 0x84001B69u);
    EXPECT_EQ(d2wReleaseContext(context), 0u);
}

}   // namespace
