// A whole DVD-Audio disc in the two steps of a host: the multiplexer makes the sound, a run makes the tables. A reader
// of the finished folder finds that they agree.
#include "tests/run/audio_sound.h"
#include "tests/support/audio_disc_reader.h"
#include "tests/video/table_bytes.h"

namespace {

struct WholeDisc {
    std::vector<std::vector<SoundSpec>> sound;
    AudioDisc pictures = {};
};

// Makes the disc and has it read.
AudioDiscReport makeDisc(AudioRun& run, const WholeDisc& whole)
{
    AudioDisc disc = whole.pictures;
    disc.titleSets.clear();
    for (uint64_t i = 0; i < whole.sound.size(); i++) {
        EXPECT_EQ(0u, makeSound(run, i + 1, whole.sound[i]));
        disc.titleSets.push_back(setOf(whole.sound[i]));
    }
    EXPECT_EQ(0u, run.author(audioProject(run, disc)));
    EXPECT_EQ(audioCalls(disc), run.calls);
    const AudioDiscReport report = readAudioDisc(run.folder.root / "target");
    EXPECT_EQ("", describeFaults(report));
    return report;
}

uint64_t bytesOf(const std::vector<SoundSpec>& tracks)
{
    uint64_t bytes = 0;
    for (const SoundSpec& track : tracks) bytes += track.samples * track.channels * track.bits / 8;
    return bytes;
}

}   // namespace

TEST(AudioWholeDisc, OneTrack)
{
    AudioRun run;
    const AudioDiscReport report = makeDisc(run, { .sound = { { {} } } });
    EXPECT_EQ(1u, report.titleSets);
    EXPECT_EQ(1u, report.tracks);
    EXPECT_EQ(192000u, report.sampleBytes);
    // 1984 bytes in the first pack, 2000 in each other: 95.008, so 96 more
    EXPECT_EQ(97u, report.soundPacks);
    const Bytes ats = run.get("ATS_01_0.IFO");
    expectAt(ats, 12, "00 00 00 64", "last sector");   // 3 + 97
    expectAt(ats, 2080, "C0 10 00 00 01 00 00 00 00 00 00 01 5F 90", "track");
    expectAt(ats, 2100, "01 00 00 00 00 00 00 00 00 00 00 60", "its sectors");
    expectAt(run.get("AUDIO_PP.IFO"), 56, "00 00 00 48 00 00 00 48 00 00 00 A8", "its sectors on the disc");
}

// The second track begins behind the first, in sectors and in time.
TEST(AudioWholeDisc, TwoTracks)
{
    AudioRun run;
    makeDisc(run, { .sound = { { { .samples = 1000 }, { .samples = 24000 } } } });
    // 4000 bytes: packs of 1984, 2000 and 16 bytes. 96000 bytes: 1984, 47 x 2000, 16
    const Bytes ats = run.get("ATS_01_0.IFO");
    expectAt(ats, 2100 + 6, "00 00 07 53 00 00 AF C8", "time stamps of track 2");   // frame 25 of 75 ticks
    expectAt(ats, 2120, "01 00 00 00 00 00 00 00 00 00 00 02", "sectors of track 1");
    expectAt(ats, 2132, "01 00 00 00 00 00 00 03 00 00 00 33", "sectors of track 2");
    const Bytes info = run.get("ATS_01.nfo");
    const std::string text(info.begin(), info.end());
    EXPECT_NE(std::string::npos, text.find("TrackFirstCellPts=1875"));
}

TEST(AudioWholeDisc, EveryFormat)
{
    for (const uint32_t channels : { 2u, 4u, 5u, 6u }) {
        for (const uint32_t bits : { 16u, 24u }) {
            for (const uint32_t rate : { 44100u, 48000u, 88200u, 96000u, 176400u, 192000u }) {
                // More than the 10 Mbit/s of the packs can carry
                if (channels * bits * rate > 9'600'000) continue;
                SCOPED_TRACE(std::to_string(channels) + " x " + std::to_string(bits) + ", " + std::to_string(rate));
                AudioRun run;
                const SoundSpec sound = { channels, bits, rate, rate / 5 };
                const AudioDiscReport report = makeDisc(run, { .sound = { { sound, sound, sound } } });
                EXPECT_EQ(3u, report.tracks);
                EXPECT_EQ(bytesOf({ sound, sound, sound }), report.sampleBytes);
            }
        }
    }
}

TEST(AudioWholeDisc, ThreeTitleSetsWithPictures)
{
    for (const char* mode : { "PAL", "NTSC" }) {
        SCOPED_TRACE(mode);
        AudioRun run;
        const WholeDisc whole = { .sound = { { { .samples = 96000 }, { .samples = 500 }, { .samples = 30000 } },
                                             { { 6, 24, 48000, 48000 }, { 6, 24, 48000, 4800 } },
                                             { { 4, 16, 44100, 44100 } } },
                                  .pictures = {
                                      .mode = mode,
                                      .menus = { { .keys = buttonKeys(4) },
                                                 { .units = 3, .moreBytes = 2500 },
                                                 { .stillBytes = 20000 } },
                                      .menuAttributes = { .wide = true },
                                      .stills = { {},
                                                  { .bytes = 5000, .hasSubPicture = true, .keys = buttonKeys(3) },
                                                  { .hasSubPicture = true, .moreBytes = 6000 } } } };
        const AudioDiscReport report = makeDisc(run, whole);
        EXPECT_EQ(3u, report.titleSets);
        EXPECT_EQ(6u, report.tracks);
        EXPECT_EQ(bytesOf(whole.sound[0]) + bytesOf(whole.sound[1]) + bytesOf(whole.sound[2]), report.sampleBytes);
        EXPECT_EQ(3u, report.stills);
        EXPECT_EQ(2u, report.stillSubPictures);
        EXPECT_EQ(3u, report.menus);
        EXPECT_EQ(3u, report.subPictures);
        EXPECT_EQ(5u, report.navPacks);
        EXPECT_EQ(4u, report.buttons);
        EXPECT_EQ(0u, report.cut);
    }
}

// The chain of the seventh menu is cut by the end of the table.
TEST(AudioWholeDisc, SevenMenus)
{
    AudioRun run;
    const AudioDiscReport report =
        makeDisc(run, { .sound = { { { .samples = 100 } } }, .pictures = { .menus = std::vector<AudioMenu>(7) } });
    EXPECT_EQ(6u, report.menus);
    EXPECT_EQ(1u, report.cut);
}

// A disc of WAVE files is no whole disc: each track has its first pack alone. The tables tell of what is there. What is
// left of the file counts behind the samples that the project asks for: 100 samples, and 100 again.
TEST(AudioWholeDisc, WaveFiles)
{
    AudioRun run;
    const AudioDisc disc = { .titleSets = { { .tracks = { { .playTime = 375 } }, .sound = Sound::WAVES } } };
    ASSERT_EQ(0u, run.author(audioProject(run, disc)));
    const AudioDiscReport report = readAudioDisc(run.folder.root / "target");
    EXPECT_EQ("", describeFaults(report));
    EXPECT_EQ(1u, report.tracks);
    EXPECT_EQ(1u, report.soundPacks);
    EXPECT_EQ(800u, report.sampleBytes);
}
