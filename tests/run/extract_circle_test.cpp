// Full circle: samples laid into an AOB, the disc's tables made by a run, the tracks extracted: every sample comes
// back.
//
// What a WAVE file has to hold is worked out here from the samples and the sizes of the packs, not read from the disc.
#include "base/wide.h"
#include "tests/support/files.h"
#include "tests/support/log.h"

#include <orven/aob.h>
#include <orven/authoring.h>
#include <orven/extract.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

// One of the eight ways to lay samples into packs.
struct Layout {
    uint32_t channels, bits, assign;
    uint64_t times;         // sample times of a unit
    uint64_t first, next;   // bytes of samples in a track's first pack, in the others
    std::vector<std::string> singles, pairs;

    uint64_t frame() const
    {
        return channels * bits / 8;
    }
};

// clang-format off
const std::vector<std::string> STEREO = { "lf", "rf" }, QUAD = { "lf", "rf", "ls", "rs" },
                               FIVE = { "lf", "rf", "ls", "rs", "c" }, SIX = { "lf", "rf", "ls", "rs", "c", "lfe" };
const Layout LAYOUTS[] = {
    // channels, bits, assignment, times, first, next
    { 2, 16,  1, 1, 1984, 2000, STEREO, { "lrf" }                 },
    { 2, 24,  1, 2, 1980, 2004, STEREO, { "lrf" }                 },
    { 4, 16,  3, 2, 1984, 2000, QUAD,   { "lrf", "lrs" }          },
    { 4, 24,  3, 2, 1968, 1992, QUAD,   { "lrf", "lrs" }          },
    { 5, 16, 19, 2, 1980, 2000, FIVE,   { "lrf", "lrs", "c" }     },
    { 5, 24, 19, 2, 1980, 1980, FIVE,   { "lrf", "lrs", "c" }     },
    { 6, 16, 20, 2, 1968, 1992, SIX,    { "lrf", "lrs", "c_lfe" } },
    { 6, 24, 20, 2, 1980, 1980, SIX,    { "lrf", "lrs", "c_lfe" } },
};
// clang-format on

struct Track {
    const Layout* layout;
    uint32_t rate;
    uint64_t samples;   // of each channel
    bool ownEnd;        // the end comes by a call of its own, where the last pack is full
};

/** A sample of a track, 24 bits of which a 16-bit track has the low two bytes: no two neighbours are alike. */
uint32_t sampleOf(uint64_t track, uint64_t channel, uint64_t index)
{
    uint64_t value = (track + 1) * 0x9E3779B97F4A7C15 + channel * 0xD1B54A32D192ED03 + index;
    value = (value ^ value >> 31) * 0xBF58476D1CE4E5B9;
    return uint32_t(value >> 40);
}

// ---- a source for the multiplexer -------------------------------------------------------------------------------

struct Source {
    std::vector<Track> tracks;
    std::vector<std::vector<uint64_t>> given;   // samples so far, by track and channel
};

uint64_t giveSamples(uint64_t track, uint8_t* buffer, uint64_t count, uint64_t channel, uint64_t* given, uint64_t user)
{
    Source* source = reinterpret_cast<Source*>(uintptr_t(user));
    const Track& from = source->tracks.at(track);
    uint64_t& at = source->given.at(track).at(channel);
    const uint64_t bytes = from.layout->bits / 8;
    *given = std::min(count, from.samples - at);
    for (uint64_t i = 0; i < *given; i++, at++) {
        const uint32_t sample = sampleOf(track, channel, at);
        for (uint64_t k = 0; k < bytes; k++) *buffer++ = uint8_t(sample >> 8 * k);
    }
    const bool nothingLeft = at == from.samples && (!from.ownEnd || *given == 0);
    return nothingLeft ? ORV_AOB_END : ORV_AOB_MORE;
}

// ---- what has to come back --------------------------------------------------------------------------------------

struct Expected {
    uint64_t samples;   // of the source
    uint64_t silence;   // behind them
};

/** What the packs hold: samples in whole units, and silence where a pack goes without any. */
Expected expectedOf(const Track& track)
{
    const Layout& layout = *track.layout;
    const uint64_t first = layout.first / layout.frame(), next = layout.next / layout.frame();
    uint64_t room = first, left = track.samples;
    while (left > room || (left == room && track.ownEnd)) {   // full packs with more to come, or so it seems
        left -= room;
        room = next;
    }
    const uint64_t kept = left - left % layout.times;   // an odd sample of two is dropped
    return { track.samples - (left - kept), kept == 0 ? room : 0 };
}

Bytes channelsOf(const Track& track, uint64_t number, const std::vector<uint64_t>& channels, const Expected& expected)
{
    constexpr uint64_t SILENT = 9;
    Bytes data;
    for (uint64_t i = 0; i < expected.samples + expected.silence; i++) {
        for (const uint64_t channel : channels) {
            const bool sounds = channel != SILENT && i < expected.samples;
            const uint32_t sample = sounds ? sampleOf(number, channel, i) : 0;
            for (uint64_t k = 0; k < track.layout->bits / 8; k++) data.push_back(uint8_t(sample >> 8 * k));
        }
    }
    return data;
}

std::vector<uint64_t> channelsIn(const std::string& suffix, bool pairs)
{
    if (suffix == "lf") return { 0 };
    if (suffix == "rf") return { 1 };
    if (suffix == "ls") return { 2 };
    if (suffix == "rs") return { 3 };
    if (suffix == "c") return pairs ? std::vector<uint64_t>{ 4, 9 } : std::vector<uint64_t>{ 4 };
    if (suffix == "lfe") return { 5 };
    if (suffix == "lrf") return { 0, 1 };
    if (suffix == "lrs") return { 2, 3 };
    return { 4, 5 };
}

void addLittle(Bytes& bytes, uint64_t width, uint64_t value)
{
    for (uint64_t i = 0; i < width; i++) bytes.push_back(uint8_t(value >> 8 * i));
}

Bytes waveOf(const Track& track, uint64_t number, const std::string& suffix, bool pairs)
{
    const std::vector<uint64_t> channels = channelsIn(suffix, pairs);
    const Bytes data = channelsOf(track, number, channels, expectedOf(track));
    const uint64_t frame = channels.size() * track.layout->bits / 8;
    Bytes wave = { 'R', 'I', 'F', 'F' };
    addLittle(wave, 4, data.size() + 38);
    const Bytes format = { 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 18, 0, 0, 0, 1, 0 };
    wave.insert(wave.end(), format.begin(), format.end());
    addLittle(wave, 2, channels.size());
    addLittle(wave, 4, track.rate);
    addLittle(wave, 4, frame * track.rate);
    addLittle(wave, 2, frame);
    addLittle(wave, 4, track.layout->bits);   // and two bytes of nothing
    for (const char c : std::string("data")) wave.push_back(uint8_t(c));
    addLittle(wave, 4, data.size());
    wave.insert(wave.end(), data.begin(), data.end());
    return wave;
}

// ---- the way there and back -------------------------------------------------------------------------------------

struct Circle {
    explicit Circle(const std::vector<Track>& given) : tracks(given)
    {
        fs::create_directory(folder.root / "disc");
        fs::create_directory(folder.root / "out");
        disc = (folder.root / "disc" / "").u16string();
        out = (folder.root / "out" / "").u16string();
    }
    Circle(const Circle&) = delete;
    Circle& operator=(const Circle&) = delete;

    uint64_t multiplex() const
    {
        Source source = { tracks, {} };
        std::vector<AobTrackDesc> descs;
        for (const Track& track : tracks) {
            source.given.push_back(std::vector<uint64_t>(6));
            descs.push_back({ .channelCount = track.layout->channels,
                              .assignment = track.layout->assign,
                              .reserved1 = 0,
                              .sampleSize = track.layout->bits,
                              .sampleRate = track.rate,
                              .reserved2 = 0 });
        }
        AobMuxer* handle = nullptr;
        EXPECT_EQ(aobCreateMuxerW(orvHostText(disc.c_str()), 1, descs.size(), descs.data(), giveSamples,
                                  uint64_t(reinterpret_cast<uintptr_t>(&source)), &handle),
                  0u);
        const uint64_t result = aobStartMuxing(handle);
        EXPECT_EQ(aobReleaseMuxer(handle), 0u);
        return result;
    }

    uint64_t author() const
    {
        std::string text =
            "[COMMON]\nversion=1.0\nmode=PAL\n[AMG]\ntitlesets=1\n[ATS_01]\ntracks=" + std::to_string(tracks.size()) +
            "\n";
        for (uint64_t i = 0; i < tracks.size(); i++) {
            const std::string number = (i < 9 ? "0" : "") + std::to_string(i + 1);
            text += "[TRACK_01_" + number + "]\nformat=LPCM\nassign=" + std::to_string(tracks[i].layout->assign) +
                    "\nsamplesize=" + std::to_string(tracks[i].layout->bits) +
                    "\nsamplerate=" + std::to_string(tracks[i].rate) + "\nplaytime=" + std::to_string(90000 + i) +
                    "\nchannel1=" + toUtf8(disc) + "ATS_01_1.AOB\n";
        }
        writeFile(folder / u"disc.ini", text);
        const std::u16string project = folder / u"disc.ini", log = folder / u"run.log";
        return ParseAudioDescW(orvHostText(project.c_str()), orvHostText(disc.c_str()), nullptr, nullptr, 0,
                               orvHostText(log.c_str()));
    }

    void expectFiles(uint64_t number, bool pairs) const
    {
        const Track& track = tracks[number];
        const std::vector<std::string>& suffixes = pairs ? track.layout->pairs : track.layout->singles;
        uint64_t files = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(out))) files += entry.exists();
        EXPECT_EQ(files, suffixes.size());
        for (const std::string& suffix : suffixes) {
            char name[40];
            (void)snprintf(name, sizeof(name), "track%03u_%s.wav", unsigned(number + 1), suffix.c_str());
            const Bytes found = readFile(out + toWide(name)), expected = waveOf(track, number, suffix, pairs);
            const auto [at, other] = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
            EXPECT_TRUE(found == expected) << name << ": " << found.size() << " bytes, should be " << expected.size()
                                           << "; they differ at " << at - found.begin();
        }
        fs::remove_all(fs::path(out));
        fs::create_directory(fs::path(out));
    }

    void run() const
    {
        ASSERT_EQ(multiplex(), 0u);
        ASSERT_EQ(author(), 0u);
        ExtractContext* context = nullptr;
        ASSERT_EQ(d2wCreateContextW(orvHostText(disc.c_str()), orvHostText(out.c_str()), &context), 0u);
        uint64_t count = 0;
        EXPECT_EQ(d2wOpenDisc(context, &count, expectInfo, uint64_t(reinterpret_cast<uintptr_t>(this))), 0u);
        EXPECT_EQ(count, tracks.size());
        for (uint64_t i = 0; i < tracks.size(); i++) {
            const Layout& layout = *tracks[i].layout;
            SCOPED_TRACE("track " + std::to_string(i + 1) + ": " + std::to_string(layout.channels) + " channels of " +
                         std::to_string(layout.bits) + " bits, " + std::to_string(tracks[i].rate) + " Hz, " +
                         std::to_string(tracks[i].samples) + " samples");
            for (const bool pairs : { false, true }) {
                EXPECT_EQ(d2wExtractTrackW(context, i, pairs, nullptr, 0), 0u);
                expectFiles(i, pairs);
            }
        }
        EXPECT_EQ(d2wReleaseContext(context), 0u);
    }

    static void expectInfo(const ExtractTrack* found, uint64_t index, uint64_t user)
    {
        const Track& track = reinterpret_cast<const Circle*>(uintptr_t(user))->tracks.at(index);
        EXPECT_EQ(found->playTime, 90000 + index);
        EXPECT_EQ(found->assign, track.layout->assign);
        EXPECT_EQ(found->sampleSize1, track.layout->bits);
        EXPECT_EQ(found->sampleRate1, track.rate);
        EXPECT_EQ(found->sampleRate2, track.layout->assign == 1 ? 0 : track.rate);
    }

    TempDir folder;
    std::u16string disc, out;
    std::vector<Track> tracks;
};

// Samples that end at every place in and around the first and second pack. A long track goes before each, so that the
// decoder of the model has something to play meanwhile.
void runLengths(const Layout& layout, bool ownEnd)
{
    const uint64_t first = layout.first / layout.frame(), next = layout.next / layout.frame();
    std::vector<Track> tracks;
    for (const uint64_t samples :
         { uint64_t(0), uint64_t(1), uint64_t(2), uint64_t(3), first - 3, first - 2, first - 1, first, first + 1,
           first + 2, first + next - 2, first + next - 1, first + next, first + next + 1, first + 3 * next + 7 }) {
        tracks.push_back({ &layout, 48000, first + 8 * next + 5, false });
        tracks.push_back({ &layout, 48000, samples, ownEnd });
    }
    const Circle circle(tracks);
    ASSERT_NO_FATAL_FAILURE(circle.run());
}

TEST(ExtractCircle, EveryLengthInOneCall)
{
    for (const Layout& layout : LAYOUTS) ASSERT_NO_FATAL_FAILURE(runLengths(layout, false));
}

// A track whose last pack was full ends with a pack without samples: its zeros are silence.
TEST(ExtractCircle, EndByACallOfItsOwn)
{
    for (const Layout& layout : LAYOUTS) ASSERT_NO_FATAL_FAILURE(runLengths(layout, true));
}

// The eight layouts at the rates that the format has room for: not more than the 10.08 Mbit/s of a disc, less the
// headers.
TEST(ExtractCircle, EveryRate)
{
    uint64_t discs = 0;
    for (const uint32_t rate : { 44100u, 48000u, 88200u, 96000u, 176400u, 192000u }) {
        for (const Layout& layout : LAYOUTS) {
            if (layout.frame() * 8 * rate * 2048 > 10080000ull * layout.next) continue;
            const uint64_t first = layout.first / layout.frame(), next = layout.next / layout.frame();
            const Circle circle({ { &layout, rate, first + 30 * next + 2, false },
                                  { &layout, rate, first + 9 * next, true },
                                  { &layout, rate, 1000, false } });
            SCOPED_TRACE(std::to_string(rate) + ", " + std::to_string(layout.channels) + " channels of " +
                         std::to_string(layout.bits) + " bits");
            ASSERT_NO_FATAL_FAILURE(circle.run());
            discs++;
        }
    }
    // Stereo at all six rates; four channels up to 96 kHz; five of 16 bits too, of 24 up to 48 kHz; six the same.
    EXPECT_EQ(discs, 2u * 6 + 2 * 4 + 4 + 2 + 4 + 2);
}

// Tracks of all layouts and of several rates on one disc. Rates of one family have frames of one length.
TEST(ExtractCircle, TracksOfDifferentLayouts)
{
    std::vector<Track> tracks;
    for (const uint32_t rate : { 48000u, 96000u }) {
        for (const Layout& layout : LAYOUTS) {
            if (layout.channels * layout.bits * uint64_t(rate) > 9600000) continue;
            tracks.push_back({ &layout, rate, 2000 + 37 * tracks.size(), tracks.size() % 2 == 0 });
        }
    }
    EXPECT_EQ(tracks.size(), 8u + 6);
    const Circle circle(tracks);
    ASSERT_NO_FATAL_FAILURE(circle.run());
}

}   // namespace
