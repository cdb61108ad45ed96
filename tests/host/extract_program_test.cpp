// extract_program_test.cpp: `orven extract`, by running it on discs made by the library: what comes out, and what it
// leaves alone.
#include "tests/host/extract_rig.h"
#include "tests/host/usage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace {

/** Something of another's. */
Bytes filled(uint8_t with)
{
    return Bytes(100, with);
}

// ---- usage --------------------------------------------------------------------------------------------------------

TEST(ExtractProgram, WrongUsageIsExitCode2)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO });
    writeFile(folder / u"file", std::string_view("x"));
    const UsageCase cases[] = {
        { "no disc", { "extract", "--out", "out" }, "DISC" },
        { "no output", { "extract", "disc" }, "--out" },
        { "two discs", { "extract", "disc", "disc", "--out", "out" }, "disc" },
        { "track 0", { "extract", "disc", "--out", "out", "--track", "0" }, "--track" },
        { "track 100", { "extract", "disc", "--out", "out", "--track", "100" }, "--track" },
        { "track without a number", { "extract", "disc", "--out", "out", "--track", "x" }, "--track" },
        { "disc is missing", { "extract", "none", "--out", "out" }, "error: there is no disc folder none\n" },
        { "disc is a file", { "extract", "file", "--out", "out" }, "error: file is a file; the disc is a folder\n" },
        { "output is a file",
          { "extract", "disc", "--out", "file" },
          "error: file is a file; the tracks need a folder\n" },
    };
    const auto before = contentOf(folder.root);
    for (const UsageCase& usage : cases) expectRefused(usage, folder.root);
    EXPECT_TRUE(contentOf(folder.root) == before);
}

TEST(ExtractProgram, HelpTeaches)
{
    const TempDir folder;
    const ProcessResult help = runOrven({ "extract", "--help" }, folder.root);
    EXPECT_EQ(help.exitCode, 0);
    for (const char* part :
         { "DISC", "--out", "--track", "--mono", "--force", "--quiet", "track002_lrf.wav", "LPCM" }) {
        EXPECT_NE(help.out.find(part), std::string::npos) << part;
    }
    EXPECT_NE(runOrven({ "--help" }, folder.root).out.find("Make WAVE files of a disc's tracks"), std::string::npos);
}

TEST(ExtractProgram, EveryFailureOfAnExtractionIsExplained)
{
    const TempDir folder;
    for (int code = 7001; code <= 7017; code++) {
        const ProcessResult result = runOrven({ "explain", std::to_string(code) }, folder.root);
        EXPECT_EQ(result.out.find("a result without a text"), std::string::npos) << result.out;
        EXPECT_EQ(result.out.find("A result of the extraction"), std::string::npos) << result.out;
        EXPECT_GT(result.out.size() - result.out.find("\n\n"), 40u) << result.out;
    }
}

// ---- tracks -------------------------------------------------------------------------------------------------------

TEST(ExtractProgram, AllTracksInPairs)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { SIX, FIVE, STEREO, FOUR });
    const auto disc = contentOf(audioTs(folder));
    const ProcessResult result = runExtraction(folder, {});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "disc/AUDIO_TS: DVD-Audio, 4 tracks\n"
                          "track 1: 00:00.050, 48000 Hz, 24 bits, 6 channels\n"
                          "track 2: 00:00.100, 44100 Hz, 16 bits, 5 channels\n"
                          "track 3: 00:00.063, 48000 Hz, 16 bits, 2 channels\n"
                          "track 4: 00:00.050, 96000 Hz, 24 bits, 4 channels\n"
                          "out/track001_lrf.wav, 14446 bytes\n"   // 46 + 2400 * 6
                          "out/track001_lrs.wav, 14446 bytes\n"
                          "out/track001_c_lfe.wav, 14446 bytes\n"
                          "out/track002_lrf.wav, 17686 bytes\n"   // 46 + 4410 * 4
                          "out/track002_lrs.wav, 17686 bytes\n"
                          "out/track002_c.wav, 17686 bytes\n"
                          "out/track003_lrf.wav, 12046 bytes\n"   // 46 + 3000 * 4
                          "out/track004_lrf.wav, 28846 bytes\n"   // 46 + 4800 * 6
                          "out/track004_lrs.wav, 28846 bytes\n");
    EXPECT_TRUE(result.err.starts_with("  0%  extracting track 1\n")) << result.err;
    EXPECT_TRUE(result.err.ends_with("100%  extracting track 4\n")) << result.err;

    const std::map<std::string, Bytes> expected = {
        { "track001_lrf.wav", pairWave(SIX, 0, 0, 1) },    { "track001_lrs.wav", pairWave(SIX, 0, 2, 3) },
        { "track001_c_lfe.wav", pairWave(SIX, 0, 4, 5) },  { "track002_lrf.wav", pairWave(FIVE, 1, 0, 1) },
        { "track002_lrs.wav", pairWave(FIVE, 1, 2, 3) },   { "track002_c.wav", pairWave(FIVE, 1, 4, -1) },
        { "track003_lrf.wav", pairWave(STEREO, 2, 0, 1) }, { "track004_lrf.wav", pairWave(FOUR, 3, 0, 1) },
        { "track004_lrs.wav", pairWave(FOUR, 3, 2, 3) },
    };
    EXPECT_TRUE(contentOf(folder.root / "out") == expected);
    EXPECT_TRUE(contentOf(audioTs(folder)) == disc);
}

TEST(ExtractProgram, AFileForEachChannel)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { SIX, FIVE, STEREO });
    const ProcessResult result = runExtraction(folder, { "--mono", "--quiet" });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    std::map<std::string, Bytes> expected;
    const char* const suffixes[] = { "lf", "rf", "ls", "rs", "c", "lfe" };
    for (int c = 0; c < 6; c++) expected["track001_" + std::string(suffixes[c]) + ".wav"] = monoWave(SIX, 0, c);
    for (int c = 0; c < 5; c++) expected["track002_" + std::string(suffixes[c]) + ".wav"] = monoWave(FIVE, 1, c);
    for (int c = 0; c < 2; c++) expected["track003_" + std::string(suffixes[c]) + ".wav"] = monoWave(STEREO, 2, c);
    EXPECT_TRUE(contentOf(folder.root / "out") == expected);
}

TEST(ExtractProgram, OneTrack)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, FOUR, STEREO });
    const ProcessResult result = runExtraction(folder, { "--track", "2" });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("\ntrack 3: "), std::string::npos) << result.out;   // all are listed
    EXPECT_TRUE(result.err.ends_with("100%  extracting track 2\n")) << result.err;
    EXPECT_EQ(namesIn(folder.root / "out"), (Names{ "track002_lrf.wav", "track002_lrs.wav" }));
    EXPECT_TRUE(discFile(folder.root / "out" / "track002_lrs.wav") == pairWave(FOUR, 1, 2, 3));

    const ProcessResult last = runExtraction(folder, { "-t", "3", "-m", "-q" });
    EXPECT_EQ(last.exitCode, 0);
    EXPECT_TRUE(discFile(folder.root / "out" / "track003_rf.wav") == monoWave(STEREO, 2, 1));

    const ProcessResult none = runExtraction(folder, { "--track", "4", "-q" }, "disc", "none");
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.err, "error: error + 7010: no tracks available for extract (0x84001B62)\n"
                        "  disc/AUDIO_TS/AUDIO_PP.IFO: there is no track 4; the disc has 3 tracks\n"
                        "  more: orven explain 7010\n");
    EXPECT_FALSE(fs::exists(folder.root / "none"));
}

// Samples end anywhere in a pack: at its end, few bytes before it, and in a pack of their own. 16-bit stereo has 496
// samples in a track's first pack and 500 in each other.
TEST(ExtractProgram, TracksOfEveryLength)
{
    const TempDir folder;
    std::vector<AudioTrackSpec> tracks;
    for (const int samples : { 996, 995, 994, 997, 2, 1, 496, 497 })
        tracks.push_back({ .assign = 1, .channels = 2, .samples = uint64_t(samples) });
    makeAudioDisc(audioTs(folder), tracks);
    EXPECT_EQ(runExtraction(folder, { "-q" }).exitCode, 0);
    for (uint64_t i = 0; i < tracks.size(); i++) {
        SCOPED_TRACE(tracks[i].samples);
        EXPECT_TRUE(discFile(folder.root / "out" / ("track00" + std::to_string(i + 1) + "_lrf.wav")) ==
                    pairWave(tracks[i], i, 0, 1));
    }
}

// Behind a full pack the multiplexer makes one without samples for a host that tells the end too late: silence of a
// whole pack, 500 samples.
TEST(ExtractProgram, EndThatIsToldLateIsSilence)
{
    const TempDir folder;
    const AudioTrackSpec late = { .samples = 996, .endsLate = true };
    makeAudioDisc(audioTs(folder), { late });
    EXPECT_EQ(runExtraction(folder, { "-q" }).exitCode, 0);
    const Bytes wave = discFile(folder.root / "out" / "track001_lrf.wav"), given = pairWave(late, 0, 0, 1);
    ASSERT_EQ(wave.size(), 46u + 1496 * 4);
    EXPECT_TRUE(std::equal(given.begin() + 46, given.end(), wave.begin() + 46));
    EXPECT_TRUE(Bytes(wave.begin() + 46 + 996 * 4, wave.end()) == Bytes(2000));
}

// Of other forms than 16-bit stereo a unit holds two samples, so a last one alone is lost when the track is made.
TEST(ExtractProgram, OddNumberOfSamples)
{
    const TempDir folder;
    const AudioTrackSpec odd = { .bits = 24, .samples = 1001 };
    makeAudioDisc(audioTs(folder), { odd });
    EXPECT_EQ(runExtraction(folder, { "-q" }).exitCode, 0);
    const Bytes wave = discFile(folder.root / "out" / "track001_lrf.wav"), given = pairWave(odd, 0, 0, 1);
    ASSERT_EQ(wave.size(), 46u + 1000 * 6);
    EXPECT_TRUE(std::equal(wave.begin() + 46, wave.end(), given.begin() + 46));
}

TEST(ExtractProgram, SoundInSeveralFiles)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, STEREO, STEREO });
    const Bytes aob = discFile(audioTs(folder) / "ATS_01_1.AOB");
    const std::ptrdiff_t first = 9 * SECTOR, second = 15 * SECTOR;
    writeDiscFile(audioTs(folder) / "ATS_01_1.AOB", Bytes(aob.begin(), aob.begin() + first));
    writeDiscFile(audioTs(folder) / "ATS_01_2.AOB", Bytes(aob.begin() + first, aob.begin() + second));
    writeDiscFile(audioTs(folder) / "ATS_01_3.AOB", Bytes(aob.begin() + second, aob.end()));
    EXPECT_EQ(runExtraction(folder, { "-q" }).exitCode, 0);
    EXPECT_TRUE(discFile(folder.root / "out" / "track002_lrf.wav") == pairWave(STEREO, 1, 0, 1));
    EXPECT_TRUE(discFile(folder.root / "out" / "track003_lrf.wav") == pairWave(STEREO, 2, 0, 1));

    fs::remove(audioTs(folder) / "ATS_01_2.AOB");
    const ProcessResult gap = runExtraction(folder, { "-q", "--force" });
    EXPECT_EQ(gap.exitCode, 1);
    EXPECT_EQ(gap.err, "error: disc/AUDIO_TS/ATS_01_2.AOB: there is no such file, but the one behind it\n");
}

// ---- where the disc is, and where its tracks go -------------------------------------------------------------------

TEST(ExtractProgram, DiscIsAnyOfItsFolders)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO });
    fs::create_directory(folder.root / "disc" / "VIDEO_TS");
    writeFile((folder.root / "disc" / "VIDEO_TS" / "VIDEO_TS.IFO").u16string(), std::string_view("not looked at"));
    for (const char* disc : { "disc", "disc/", "disc/AUDIO_TS", "disc/AUDIO_TS/", "disc/VIDEO_TS/../AUDIO_TS" }) {
        SCOPED_TRACE(disc);
        const ProcessResult result = runExtraction(folder, { "--force" }, disc);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_TRUE(discFile(folder.root / "out" / "track001_lrf.wav") == pairWave(STEREO, 0, 0, 1));
        fs::remove_all(folder.root / "out");
    }
    EXPECT_EQ(runExtraction(folder, { "-q" }, "disc", "new/deep/out").exitCode, 0);
    EXPECT_EQ(namesIn(folder.root / "new" / "deep" / "out"), Names{ "track001_lrf.wav" });
    // An empty AUDIO_TS is on most discs of DVD-Video.
    for (const fs::directory_entry& entry : fs::directory_iterator(audioTs(folder))) fs::remove(entry.path());
    EXPECT_NE(runExtraction(folder, { "-q" }).err.find("disc/VIDEO_TS"), std::string::npos);
}

TEST(ExtractProgram, NothingIsOverwrittenUnasked)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, FOUR });
    const fs::path out = folder.root / "out";
    fs::create_directory(out);
    writeDiscFile(out / "track002_lrs.wav", filled(7));
    writeDiscFile(out / "track003_lrf.wav", filled(8));
    writeDiscFile(out / "orven-extract-1", filled(9));
    const auto before = contentOf(out);
    const ProcessResult refused = runExtraction(folder, {});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.err, "error: out/track002_lrs.wav is there already; --force replaces it\n");
    EXPECT_TRUE(contentOf(out) == before);

    EXPECT_EQ(runExtraction(folder, { "-q", "--track", "1" }).exitCode, 0);   // of the other track no file is there
    EXPECT_EQ(runExtraction(folder, { "-q", "--mono", "--track", "2" }).exitCode, 0);
    EXPECT_EQ(runExtraction(folder, { "-q", "--force" }).exitCode, 0);
    EXPECT_TRUE(discFile(out / "track002_lrs.wav") == pairWave(FOUR, 1, 2, 3));
    EXPECT_TRUE(discFile(out / "track003_lrf.wav") == filled(8));
    EXPECT_TRUE(discFile(out / "orven-extract-1") == filled(9));
    EXPECT_EQ(namesIn(out).size(), 9u);
}

TEST(ExtractProgram, FolderInThePlaceOfAFile)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO });
    fs::create_directories(folder.root / "out" / "track001_lrf.wav");
    const ProcessResult result = runExtraction(folder, { "--force", "-q" });
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "error: out/track001_lrf.wav is there and is no plain file\n");
    EXPECT_EQ(namesIn(folder.root / "out"), Names{ "track001_lrf.wav" });
}

TEST(ExtractProgram, PathsInAnyLanguage)
{
    const TempDir folder;
    const std::u16string name = u"Диск \u00E4 \u65E5\u672C";
    makeAudioDisc(folder.root / name / "AUDIO_TS", { STEREO });
    const ProcessResult result = runExtraction(folder, {}, toUtf8(name), toUtf8(u"Звук"));
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find(toUtf8(u"Звук") + "/track001_lrf.wav, 12046 bytes\n"), std::string::npos) << result.out;
    EXPECT_TRUE(discFile(folder.root / u"Звук" / "track001_lrf.wav") == pairWave(STEREO, 0, 0, 1));
}

}   // namespace
