// source_track_test.cpp: RIFF/WAVE files as tracks of DVD-Audio: their names, their samples pack by pack, and which
// rates are taken.
#include "host/codes.h"
#include "host/source_track.h"
#include "tests/host/process.h"
#include "tests/support/aob_reader.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

SourceTrack trackOf(const std::vector<fs::path>& files)
{
    SourceTrack track;
    for (const fs::path& file : files) track.files.push_back({ file });
    return track;
}

// ---- names --------------------------------------------------------------------------------------------------------

struct NameCase {
    const char* joined;
    std::vector<const char*> names;
};

TEST(SourceTrack, NamesJoinedByPlus)
{
    const TempDir folder;
    for (const char* name : { "a", "b", "a+b+c", "x+y", "Q" })
        writeFile((folder.root / name).u16string(), std::string_view("-"));
    const NameCase cases[] = {
        { "a", { "a" } },
        { "a+b", { "a", "b" } },
        { "a+b+c", { "a+b+c" } },         // one file of this name is there
        { "a+b+Q", { "a", "b", "Q" } },   // and none of this
        { "x+y+a", { "x+y", "a" } },      // a plus sign within the first name
        { "a+x+y", { "a", "x+y" } },      // and within the last
        { "x+z", { "x", "z" } },          // neither is there
        { "a+", { "a", "" } },
        { "+", { "", "" } },
        { "", { "" } },
    };
    const fs::path before = fs::current_path();
    fs::current_path(folder.root);
    for (const NameCase& names : cases) {
        SCOPED_TRACE(names.joined);
        std::vector<std::string> found;
        for (const fs::path& path : trackFiles(names.joined)) found.push_back(path.string());
        EXPECT_EQ(found, std::vector<std::string>(names.names.begin(), names.names.end()));
    }
    fs::current_path(before);
}

// ---- samples ------------------------------------------------------------------------------------------------------

// Three samples of 24 bits and two channels: the fourth is silence, since packs hold them by twos.
TEST(SourceTrack, SamplesPackByPack)
{
    const TempDir folder;
    const Channels channels = { { 0x010203, 0x111213, 0x212223 }, { 0x313233, 0x414243, 0x515253 } };
    writeFile(folder / u"a.wav", waveFile(channels, 24, 96000));
    std::vector<SourceTrack> tracks = { trackOf({ folder.root / "a.wav" }) };
    ASSERT_FALSE(readSourceTrack(&tracks[0])) << readSourceTrack(&tracks[0]).fault.why;
    EXPECT_EQ(tracks[0].sourceSamples, 3u);
    EXPECT_EQ(tracks[0].samples, 4u);
    EXPECT_EQ(trackTicks(tracks[0]), 4u);   // 3.75
    EXPECT_EQ(bytesOfTracks(tracks), 24u);

    SourceFeed feed = { .tracks = &tracks };
    uint8_t buffer[12] = {};
    uint64_t given = 0;
    EXPECT_EQ(giveSamples(&feed, 0, buffer, 2, 0, &given), uint64_t(ORV_AOB_MORE));
    EXPECT_EQ(given, 2u);
    EXPECT_EQ(toHex(buffer, 6), "03 02 01 13 12 11");
    EXPECT_EQ(giveSamples(&feed, 0, buffer, 2, 1, &given), uint64_t(ORV_AOB_MORE));
    EXPECT_EQ(toHex(buffer, 6), "33 32 31 43 42 41");
    EXPECT_EQ(feed.delivered, 12u);
    EXPECT_EQ(giveSamples(&feed, 0, buffer, 4, 0, &given), uint64_t(ORV_AOB_END));
    EXPECT_EQ(given, 2u);
    EXPECT_EQ(toHex(buffer, 6), "23 22 21 00 00 00");
    EXPECT_EQ(giveSamples(&feed, 0, buffer, 2, 1, &given), uint64_t(ORV_AOB_END));
    EXPECT_EQ(given, 2u);
    EXPECT_EQ(toHex(buffer, 6), "53 52 51 00 00 00");
    EXPECT_EQ(feed.delivered, 24u);
}

TEST(SourceTrack, MonoGivesBothChannels)
{
    const TempDir folder;
    writeFile(folder / u"a.wav", waveFile(Channels{ { 0x0102, 0x0304, 0x0506 } }, 16, 44100));
    std::vector<SourceTrack> tracks = { trackOf({ folder.root / "a.wav" }) };
    ASSERT_FALSE(readSourceTrack(&tracks[0]));
    EXPECT_EQ(tracks[0].channels, 2u);
    EXPECT_EQ(tracks[0].samples, 3u);   // packs of stereo with 16 bits take any number
    SourceFeed feed = { .tracks = &tracks };
    for (uint64_t channel = 0; channel < 2; channel++) {
        uint8_t buffer[8] = {};
        uint64_t given = 0;
        EXPECT_EQ(giveSamples(&feed, 0, buffer, 4, channel, &given), uint64_t(ORV_AOB_END));
        EXPECT_EQ(given, 3u);
        EXPECT_EQ(toHex(buffer, 8), "02 01 04 03 06 05 00 00");
    }
}

TEST(SourceTrack, FileThatBecomesShorter)
{
    const TempDir folder;
    for (const char16_t* name : { u"l.wav", u"r.wav" })
        writeFile(folder / name, waveFile(makeChannels(1, 16, 1000, 1), 16, 48000));
    std::vector<SourceTrack> tracks = { trackOf({ folder.root / "l.wav", folder.root / "r.wav" }) };
    ASSERT_FALSE(readSourceTrack(&tracks[0]));
    fs::resize_file(folder.root / "r.wav", 44 + 1000);   // half of its samples
    SourceFeed feed = { .tracks = &tracks };
    uint8_t buffer[800];
    uint64_t given = 0;
    EXPECT_EQ(giveSamples(&feed, 0, buffer, 400, 0, &given), uint64_t(ORV_AOB_MORE));
    EXPECT_EQ(giveSamples(&feed, 0, buffer, 400, 1, &given), uint64_t(ORV_AOB_MORE));
    EXPECT_EQ(giveSamples(&feed, 0, buffer, 400, 0, &given), uint64_t(CODE_READ_FAILED));
    EXPECT_EQ(feed.fault.path, folder.root / "r.wav");
    EXPECT_EQ(feed.fault.fault.code, CODE_READ_FAILED);
}

// ---- time ---------------------------------------------------------------------------------------------------------

TEST(SourceTrack, TicksAreRoundedUp)
{
    struct Length {
        uint64_t samples, rate, ticks;
    };
    for (const Length& length : { Length{ 1, 192000, 1 },
                                  { 1, 48000, 2 },
                                  { 8, 48000, 15 },
                                  { 1, 44100, 3 },
                                  { 49, 44100, 100 },
                                  { 50, 44100, 103 },
                                  { 44100 * 3600ULL, 44100, 324000000 } }) {
        SourceTrack track;
        track.samples = length.samples;
        track.rate = length.rate;
        EXPECT_EQ(trackTicks(track), length.ticks) << length.samples << " " << length.rate;
    }
}

// 2147483648 ticks would not go into the list of the tracks: 23860.93 seconds, by the last millisecond.
TEST(SourceTrack, LongestTitleSet)
{
    std::vector<SourceTrack> tracks(2);
    for (SourceTrack& track : tracks) {
        track.files = { { "x.wav" } };
        track.channels = 2;
        track.bits = 16;
        track.rate = 48000;
        track.samples = 8 * 71582788ULL;   // 15 ticks each: 1073741820
    }
    size_t number = 0;
    EXPECT_FALSE(checkTitleSet(tracks, &number));   // 2147483640
    tracks[1].samples += 4;                         // 7.5 more
    const TrackFault long8 = checkTitleSet(tracks, &number);
    EXPECT_TRUE(long8);
    EXPECT_EQ(number, 2u);
    EXPECT_EQ(long8.fault.why, "with it the title set lasts longer than 6 hours and 37 minutes, the most that it can; "
                               "divide the tracks among several discs");
    tracks[1].samples--;
    EXPECT_FALSE(checkTitleSet(tracks, &number));   // 6.5 rounded up to 7, 2147483647
}

// ---- rates --------------------------------------------------------------------------------------------------------

// Which of the six rates each format holds at most, by 9.6 Mbit/s: channels x bits x rate.
struct RateCase {
    uint64_t channels, bits;
    std::vector<uint64_t> taken, refused;
    const char* firstRefused;   // its rate as it is told
};

const RateCase RATES[] = {
    { 2, 16, { 44100, 48000, 88200, 96000, 176400, 192000 }, {}, "" },
    { 2, 24, { 44100, 48000, 88200, 96000, 176400, 192000 }, {}, "" },   // 9.216 Mbit/s
    { 4, 16, { 44100, 48000, 88200, 96000 }, { 176400, 192000 }, "11.3 Mbit/s" },
    { 4, 24, { 44100, 48000, 88200, 96000 }, { 176400, 192000 }, "16.9 Mbit/s" },
    { 5, 16, { 44100, 48000, 88200, 96000 }, { 176400, 192000 }, "14.1 Mbit/s" },
    { 5, 24, { 44100, 48000 }, { 88200, 96000, 176400, 192000 }, "10.6 Mbit/s" },
    { 6, 16, { 44100, 48000, 88200, 96000 }, { 176400, 192000 }, "16.9 Mbit/s" },
    { 6, 24, { 44100, 48000 }, { 88200, 96000, 176400, 192000 }, "12.7 Mbit/s" },
};

// One track: a stereo file, or a mono file for each channel.
std::string writeTrack(const TempDir& folder, const std::string& name, const Channels& channels, uint64_t bits,
                       uint64_t rate)
{
    if (channels.size() == 2) {
        writeFile((folder.root / (name + ".wav")).u16string(), waveFile(channels, bits, rate));
        return name + ".wav";
    }
    std::string joined;
    for (size_t c = 0; c < channels.size(); c++) {
        const std::string file = name + std::to_string(c) + ".wav";
        writeFile((folder.root / file).u16string(), waveFile(Channels{ channels[c] }, bits, rate));
        joined += (c ? "+" : "") + file;
    }
    return joined;
}

// The lengths change between many packs, a single sample and two packs, of which the second is nearly empty: where a
// decoder that gets too little would run dry, the library would refuse to go on.
TEST(SourceTrack, EveryRateThatIsTakenPlays)
{
    for (const RateCase& format : RATES) {
        for (const uint64_t rate : format.taken) {
            SCOPED_TRACE(std::to_string(format.channels) + " " + std::to_string(format.bits) + " " +
                         std::to_string(rate));
            const TempDir folder;
            std::vector<std::string> arguments = { "aob", "-q", "-t", "t" };
            std::vector<Channels> sources;
            const uint64_t pack =
                aobRow(format.channels, format.bits)->firstPayload / format.channels / format.bits * 8;
            for (const uint64_t samples :
                 { rate / 5, uint64_t(1), pack + 2, pack + 2, pack + 2, uint64_t(2), pack, 2 * pack, rate / 20 + 1 }) {
                sources.push_back(makeChannels(format.channels, format.bits, samples, uint32_t(samples)));
                const std::string name = "t" + std::to_string(sources.size()) + "-";
                arguments.push_back(writeTrack(folder, name, sources.back(), format.bits, rate));
            }
            const ProcessResult result = runOrven(arguments, folder.root);
            ASSERT_EQ(result.exitCode, 0) << result.err;
            const AobFile aob = readAob(readFile(folder / u"t/ATS_01_1.AOB"));
            EXPECT_EQ(describeFaults(aob), "");
            ASSERT_EQ(aob.tracks.size(), sources.size());
            for (size_t i = 0; i < sources.size(); i++) {
                const bool paired = format.channels > 2 || format.bits == 24;
                Channels expected = sources[i];
                for (std::vector<int32_t>& channel : expected) {
                    if (paired && channel.size() % 2) channel.push_back(0);
                }
                EXPECT_TRUE(aob.tracks[i].samples == expected) << "track " << i + 1;
                EXPECT_EQ(aob.tracks[i].rate, rate);
                EXPECT_FALSE(aob.tracks[i].packs.back().blank) << "track " << i + 1;
            }
        }
    }
}

TEST(SourceTrack, RatesThatAreTooHigh)
{
    for (const RateCase& format : RATES) {
        for (const uint64_t rate : format.refused) {
            const TempDir folder;
            const std::string track =
                writeTrack(folder, "a", makeChannels(format.channels, format.bits, 10, 1), format.bits, rate);
            const ProcessResult result = runOrven({ "aob", "-q", "-t", "t", track }, folder.root);
            const std::string first = rate == format.refused[0] ? format.firstRefused : "";
            EXPECT_EQ(result.exitCode, 1);
            EXPECT_TRUE(result.err.starts_with("error: the decoder would run dry (0x84000C1E)\n  a0.wav: track 1: it "
                                               "has " +
                                               std::to_string(format.channels) + " channels, " +
                                               std::to_string(format.bits) + " bits, " + std::to_string(rate) +
                                               " Hz, which is " + first))
                << result.err;
            EXPECT_TRUE(result.err.ends_with("; DVD-Audio without packing holds at most 9.6 Mbit/s\n"
                                             "  more: orven explain 3102\n"))
                << result.err;
            EXPECT_FALSE(fs::exists(folder.root / "t"));
        }
    }
}

}   // namespace
