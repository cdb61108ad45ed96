// audio_program_test.cpp: `orven author` with projects of DVD-Audio: two commands make a disc, and failures name their
// lines.
#include "tests/host/process.h"
#include "tests/support/audio_disc_reader.h"
#include "tests/support/packs.h"
#include "tests/support/wave.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

void writeSound(const TempDir& folder, const char16_t* name, uint64_t samples, uint32_t seed)
{
    writeFile(folder / name, waveFile(makeChannels(2, 24, samples, seed), 24, 96000));
}

Bytes slice(const Bytes& bytes, size_t from, size_t count)
{
    return Bytes(bytes.begin() + std::ptrdiff_t(from), bytes.begin() + std::ptrdiff_t(from + count));
}

// Two tracks of 24 bits and 96 kHz. Of the first, 330 samples in its first pack and 334 in each other one.
const uint64_t FIRST_SAMPLES = 330 + 4 * 334 + 2, SECOND_SAMPLES = 96000;

void makeSound(const TempDir& folder)
{
    writeSound(folder, u"one.wav", FIRST_SAMPLES, 1);
    writeSound(folder, u"two.wav", SECOND_SAMPLES, 2);
    const ProcessResult result = runOrven(
        { "aob", "-q", "--target", "disc/AUDIO_TS", "--project", "disc.ini", "one.wav", "two.wav" }, folder.root);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    ASSERT_EQ(result.out + result.err, "");
}

TEST(AudioProgram, TwoCommandsMakeADisc)
{
    const TempDir folder;
    ASSERT_NO_FATAL_FAILURE(makeSound(folder));
    const Bytes sound = readFile(folder / u"disc/AUDIO_TS/ATS_01_1.AOB");
    const ProcessResult result = runOrven({ "author", "disc.ini", "-t", "disc/AUDIO_TS" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, " 88%  title set 1: tables\n"
                          " 89%  title set 1: backup\n"
                          " 98%  disc manager: tables\n"
                          " 99%  disc manager: backup\n"
                          "100%  disc manager: player table\n");
    EXPECT_TRUE(result.out.starts_with("disc written to disc")) << result.out;
    EXPECT_TRUE(readFile(folder / u"disc/AUDIO_TS/ATS_01_1.AOB") == sound);
    const AudioDiscReport report = readAudioDisc(folder.root / "disc" / "AUDIO_TS");
    EXPECT_EQ(describeFaults(report), "");
    EXPECT_EQ(report.tracks, 2u);
    EXPECT_EQ(report.sampleBytes, 6 * (FIRST_SAMPLES + SECOND_SAMPLES));

    const Bytes ifo = readFile(folder / u"disc/AUDIO_TS/ATS_01_0.IFO");
    EXPECT_EQ(toHex(slice(ifo, 0, 12)), "44 56 44 41 55 44 49 4F 2D 41 54 53");
    EXPECT_EQ(toHex(slice(ifo, 258, 3)), "2F 1F 01");   // 24 bits, 96 kHz, stereo, no second group
    const size_t records = 2048 + 16 + 16, sectors = records + 40;
    EXPECT_EQ(toHex(slice(ifo, 2048 + 16 + 2, 2)), "02 02");
    // 1668 samples are 1563.75 ticks, so 1564; they are 20.85 frames of 80 samples, 75 ticks each.
    EXPECT_EQ(toHex(slice(ifo, records, 20)), "C0 10 00 00 01 00 00 00 00 00 00 00 06 1C 00 00 00 00 00 00");
    EXPECT_EQ(toHex(slice(ifo, records + 20, 20)), "00 10 00 00 02 00 00 00 06 27 00 01 5F 90 00 00 00 00 00 00");
    EXPECT_EQ(toHex(slice(ifo, sectors, 12)), "01 00 00 00 00 00 00 00 00 00 00 05");
    // 576000 bytes are 1980, 286 times 2004, 876: 288 packs.
    EXPECT_EQ(toHex(slice(ifo, sectors + 12, 12)), "01 00 00 00 00 00 00 06 00 00 01 25");
}

TEST(AudioProgram, QuietRunSaysNothing)
{
    const TempDir folder;
    ASSERT_NO_FATAL_FAILURE(makeSound(folder));
    const ProcessResult result = runOrven({ "author", "-q", "disc.ini", "-t", "disc/AUDIO_TS" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_TRUE(fs::exists(folder.root / "disc" / "AUDIO_TS" / "AUDIO_PP.IFO"));
}

// Paths in a language of its own, from the samples to the tables.
TEST(AudioProgram, PathsInAnyLanguage)
{
    const TempDir folder;
    const fs::path inner = folder.root / u"Музыка \u00E4 \u65E5\u672C";
    fs::create_directory(inner);
    writeFile((inner / u"звук.wav").u16string(), waveFile(makeChannels(2, 16, 2000, 5), 16, 96000));
    const std::string name = toUtf8(u"Музыка \u00E4 \u65E5\u672C/"), project = name + toUtf8(u"диск.ini");
    ASSERT_EQ(runOrven({ "aob", "-q", "-t", name + "AUDIO_TS", "--project", project, name + toUtf8(u"звук.wav") },
                       folder.root)
                  .exitCode,
              0);
    const ProcessResult result = runOrven({ "author", "-q", project, "-t", name + "AUDIO_TS" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const AudioDiscReport report = readAudioDisc(inner / "AUDIO_TS");
    EXPECT_EQ(describeFaults(report), "");
    EXPECT_EQ(report.sampleBytes, 8000u);
}

TEST(AudioProgram, WaveFilesAreWarnedOf)
{
    const TempDir folder;
    writeSound(folder, u"one.wav", 5000, 1);
    writeFile(folder / u"p.ini", "[COMMON]\nversion=1.0\n[AMG]\ntitlesets=1\n[ATS_01]\ntracks=1\n[TRACK_01_01]\n"
                                 "format=LPCM\nassign=1\nsamplesize=24\nsamplerate=96000\nendsample=4999\nchannel1=" +
                                     toUtf8(folder / u"one.wav") + "\n");
    const ProcessResult result = runOrven({ "author", "p.ini", "-t", "t" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(result.err.starts_with("warning: title set 1 names WAVE files: of each track only the first pack is "
                                       "laid, about a hundredth of a second. Make its sound with `orven aob`, and name "
                                       "the AOB\n"))
        << result.err;
    EXPECT_TRUE(holds(result.err, "%  title set 1: sound\n")) << result.err;
    EXPECT_EQ(readFile(folder / u"t/ATS_01_1.AOB").size(), 2048u);
}

TEST(AudioProgram, PreviousFolderIsRefused)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", std::string_view("[COMMON]\nversion=1.0\n[AMG]\ntitlesets=1\n"));
    fs::create_directory(folder.root / "old");
    const ProcessResult result = runOrven({ "author", "p.ini", "-t", "t", "-p", "old" }, folder.root);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "error: a DVD-Audio disc is authored as a whole, without a previous folder\n");
    EXPECT_FALSE(fs::exists(folder.root / "t"));
}

struct FailureCase {
    const char* what;
    const char* project;
    const char* err;   // the end of what it says
};

TEST(AudioProgram, FailureNamesCodeAndLine)
{
    const FailureCase cases[] = {
        { "no title sets", "[COMMON]\nversion=1.0\n[AMG]\nmenus=1\n",
          "error: error 6005: no audio title set specified (0x84001775)\n"
          "  p.ini:3: [AMG] has no `titlesets`\n"
          "  more: orven explain 6005\n" },
        { "mode", "[COMMON]\nversion=1.0\nmode=SECAM\n[AMG]\ntitlesets=1\n",
          "error: error 6004: wrong video mode for DVD audio (0x84001774)\n"
          "  p.ini:3: mode=SECAM\n"
          "  more: orven explain 6004\n" },
        { "too many tracks", "[COMMON]\nversion=1.0\n[AMG]\ntitlesets=1\n[ATS_01]\ntracks=101\n",
          "error: too many tracks (0x84000C1C)\n"
          "  p.ini:6: tracks=101\n"
          "  more: orven explain 3100\n" },
        { "format", "[COMMON]\nversion=1.0\n[AMG]\ntitlesets=1\n[ATS_01]\ntracks=1\n[TRACK_01_01]\nformat=MP3\n",
          "error: error 6011: wrong audio source format (0x8400177B)\n"
          "  p.ini:8: format=MP3\n"
          "  more: orven explain 6011\n" },
        { "menu with a type",
          "[COMMON]\nversion=1.0\n[AMG]\ntitlesets=1\nmenus=1\n[AMG_MENU1]\nbackground=a\nsubpicture=b\ntype=still\n",
          "error: Error 1020: wrong menu type (0x840003FC)\n"
          "  p.ini:9: type=still\n"
          "  more: orven explain 1020\n" },
    };
    for (const FailureCase& failure : cases) {
        SCOPED_TRACE(failure.what);
        const TempDir folder;
        writeFile(folder / u"p.ini", std::string_view(failure.project));
        const ProcessResult result = runOrven({ "author", "p.ini", "-q", "-t", "t" }, folder.root);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(result.err.ends_with(failure.err)) << result.err;
    }
}

TEST(AudioProgram, FailureNamesTheMissingWaveFile)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", "[COMMON]\nversion=1.0\n[AMG]\ntitlesets=1\n[ATS_01]\ntracks=1\n[TRACK_01_01]\n"
                                 "format=LPCM\nassign=1\nsamplesize=24\nsamplerate=96000\nendsample=4999\nchannel1=" +
                                     toUtf8(folder / u"none.wav") + "\n");
    const ProcessResult result = runOrven({ "author", "p.ini", "-q", "-t", "t" }, folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(holds(result.err, " (system error 2)\n  p.ini:13: channel1=")) << result.err;
    EXPECT_TRUE(result.err.ends_with("\n    there is no such file\n  more: orven explain 2\n")) << result.err;
}

}   // namespace
