// extract_program_test.cpp: `orven extract`, by running it on discs made by the library: what comes out, what it says
// of discs and tracks that can't be extracted, and what it leaves alone.
#include "tests/host/audio_disc.h"
#include "tests/host/process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t SECTOR = 2048;
constexpr uint64_t TABLE_TRACK = 18, TABLE_TRACK_BYTES = 52;   // records of AUDIO_PP.IFO

// 3000 samples at 48 kHz are 62.5 ms.
const AudioTrackSpec STEREO = { .assign = 1, .channels = 2 };
const AudioTrackSpec FOUR = { .assign = 3, .channels = 4, .bits = 24, .rate = 96000, .samples = 4800 };
const AudioTrackSpec FIVE = { .assign = 19, .channels = 5, .bits = 16, .rate = 44100, .samples = 4410 };
const AudioTrackSpec SIX = { .assign = 20, .channels = 6, .bits = 24, .rate = 48000, .samples = 2400 };

/** The program's words with `/` for the system's separator. */
std::string slashed(std::string text)
{
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

ProcessResult extract(const TempDir& folder, const std::vector<std::string>& more, const std::string& disc = "disc",
                      const std::string& out = "out")
{
    std::vector<std::string> arguments = { "extract", disc, "--out", out };
    arguments.insert(arguments.end(), more.begin(), more.end());
    ProcessResult result = runOrven(arguments, folder.root);
    result.out = slashed(result.out);
    result.err = slashed(result.err);
    return result;
}

/** Everything below a folder: names with bytes; of folders, names alone. */
std::map<std::string, Bytes> contentOf(const fs::path& folder)
{
    std::map<std::string, Bytes> files;
    if (!fs::exists(folder)) return files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = toUtf8(fs::relative(entry.path(), folder).generic_u16string());
        files[name] = entry.is_regular_file() ? discFile(entry.path()) : Bytes();
    }
    return files;
}

std::vector<std::string> namesIn(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& [name, bytes] : contentOf(folder)) names.push_back(name);
    return names;
}

typedef std::vector<std::string> Names;

fs::path audioTs(const TempDir& folder)
{
    return folder.root / "disc" / "AUDIO_TS";
}

/** Something of another's. */
Bytes filled(uint8_t with)
{
    return Bytes(100, with);
}

/** Changes bytes of a file of the disc. */
void patch(const fs::path& path, uint64_t at, const Bytes& bytes)
{
    Bytes all = discFile(path);
    ASSERT_LE(at + bytes.size(), all.size());
    std::copy(bytes.begin(), bytes.end(), all.begin() + std::ptrdiff_t(at));
    writeDiscFile(path, all);
}

void cutFile(const fs::path& path, uint64_t bytes)
{
    fs::resize_file(path, bytes);
}

// ---- usage --------------------------------------------------------------------------------------------------------

struct UsageCase {
    const char* what;
    std::vector<std::string> arguments;
    const char* err;   // part of what it says
};

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
    for (const UsageCase& usage : cases) {
        SCOPED_TRACE(usage.what);
        const ProcessResult result = runOrven(usage.arguments, folder.root);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(usage.err), std::string::npos) << result.err;
    }
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
    const ProcessResult result = extract(folder, {});
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
    const ProcessResult result = extract(folder, { "--mono", "--quiet" });
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
    const ProcessResult result = extract(folder, { "--track", "2" });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("\ntrack 3: "), std::string::npos) << result.out;   // all are listed
    EXPECT_TRUE(result.err.ends_with("100%  extracting track 2\n")) << result.err;
    EXPECT_EQ(namesIn(folder.root / "out"), (Names{ "track002_lrf.wav", "track002_lrs.wav" }));
    EXPECT_TRUE(discFile(folder.root / "out" / "track002_lrs.wav") == pairWave(FOUR, 1, 2, 3));

    const ProcessResult last = extract(folder, { "-t", "3", "-m", "-q" });
    EXPECT_EQ(last.exitCode, 0);
    EXPECT_TRUE(discFile(folder.root / "out" / "track003_rf.wav") == monoWave(STEREO, 2, 1));

    const ProcessResult none = extract(folder, { "--track", "4", "-q" }, "disc", "none");
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
    EXPECT_EQ(extract(folder, { "-q" }).exitCode, 0);
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
    EXPECT_EQ(extract(folder, { "-q" }).exitCode, 0);
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
    EXPECT_EQ(extract(folder, { "-q" }).exitCode, 0);
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
    EXPECT_EQ(extract(folder, { "-q" }).exitCode, 0);
    EXPECT_TRUE(discFile(folder.root / "out" / "track002_lrf.wav") == pairWave(STEREO, 1, 0, 1));
    EXPECT_TRUE(discFile(folder.root / "out" / "track003_lrf.wav") == pairWave(STEREO, 2, 0, 1));

    fs::remove(audioTs(folder) / "ATS_01_2.AOB");
    const ProcessResult gap = extract(folder, { "-q", "--force" });
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
        const ProcessResult result = extract(folder, { "--force" }, disc);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_TRUE(discFile(folder.root / "out" / "track001_lrf.wav") == pairWave(STEREO, 0, 0, 1));
        fs::remove_all(folder.root / "out");
    }
    EXPECT_EQ(extract(folder, { "-q" }, "disc", "new/deep/out").exitCode, 0);
    EXPECT_EQ(namesIn(folder.root / "new" / "deep" / "out"), Names{ "track001_lrf.wav" });
    // An empty AUDIO_TS is on most discs of DVD-Video.
    for (const fs::directory_entry& entry : fs::directory_iterator(audioTs(folder))) fs::remove(entry.path());
    EXPECT_NE(extract(folder, { "-q" }).err.find("disc/VIDEO_TS"), std::string::npos);
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
    const ProcessResult refused = extract(folder, {});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.err, "error: out/track002_lrs.wav is there already; --force replaces it\n");
    EXPECT_TRUE(contentOf(out) == before);

    EXPECT_EQ(extract(folder, { "-q", "--track", "1" }).exitCode, 0);   // of the other track no file is there
    EXPECT_EQ(extract(folder, { "-q", "--mono", "--track", "2" }).exitCode, 0);
    EXPECT_EQ(extract(folder, { "-q", "--force" }).exitCode, 0);
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
    const ProcessResult result = extract(folder, { "--force", "-q" });
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "error: out/track001_lrf.wav is there and is no plain file\n");
    EXPECT_EQ(namesIn(folder.root / "out"), Names{ "track001_lrf.wav" });
}

TEST(ExtractProgram, PathsInAnyLanguage)
{
    const TempDir folder;
    const std::u16string name = u"Диск \u00E4 \u65E5\u672C";
    makeAudioDisc(folder.root / name / "AUDIO_TS", { STEREO });
    const ProcessResult result = extract(folder, {}, toUtf8(name), toUtf8(u"Звук"));
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find(toUtf8(u"Звук") + "/track001_lrf.wav, 12046 bytes\n"), std::string::npos) << result.out;
    EXPECT_TRUE(discFile(folder.root / u"Звук" / "track001_lrf.wav") == pairWave(STEREO, 0, 0, 1));
}

// ---- tracks that can't be extracted -------------------------------------------------------------------------------

TEST(ExtractProgram, TracksOfOtherFormsAreRefused)
{
    const TempDir folder;
    AudioTrackSpec twenty = STEREO, three = { .assign = 2, .channels = 4 };
    twenty.tableBits = 20;
    three.samples = 500;
    makeAudioDisc(audioTs(folder), { STEREO, twenty, three, STEREO });
    const ProcessResult result = extract(folder, {});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "disc/AUDIO_TS: DVD-Audio, 4 tracks\n"
                          "track 1: 00:00.063, 48000 Hz, 16 bits, 2 channels\n"
                          "track 2: 00:00.063, 48000 Hz, 20 bits, 2 channels\n"
                          "  can't be extracted: its samples have 20 bits, not 16 or 24\n"
                          "track 3: 00:00.010, 48000 Hz, 16 bits, 3 channels\n"
                          "  can't be extracted: its channel assignment is 2, not 1, 3, 19 or 20\n"
                          "track 4: 00:00.063, 48000 Hz, 16 bits, 2 channels\n"
                          "out/track001_lrf.wav, 12046 bytes\n"
                          "out/track004_lrf.wav, 12046 bytes\n");
    EXPECT_TRUE(result.err.starts_with(
        "error: disc/AUDIO_TS/AUDIO_PP.IFO: track 2: its samples have 20 bits, not 16 or 24\n"
        "error: error + 7011: channel assignment not supported (0x84001B63)\n"
        "  disc/AUDIO_TS/AUDIO_PP.IFO: track 3: its channel assignment is 2, not 1, 3, 19 or 20\n"
        "  more: orven explain 7011\n"
        "  0%  extracting track 1\n"))
        << result.err;
    EXPECT_TRUE(result.err.ends_with("error: 2 of 4 tracks are extracted\n")) << result.err;
    EXPECT_TRUE(discFile(folder.root / "out" / "track004_lrf.wav") == pairWave(STEREO, 3, 0, 1));
    for (const char* track : { "2", "3" }) {
        const ProcessResult one = extract(folder, { "--track", track, "-q" }, "disc", "none");
        EXPECT_EQ(one.exitCode, 1);
        EXPECT_NE(one.err.find("track " + std::string(track) + ": its "), std::string::npos) << one.err;
    }
    EXPECT_FALSE(fs::exists(folder.root / "none"));
}

TEST(ExtractProgram, LosslessPackingIsSaid)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, STEREO });
    const fs::path table = audioTs(folder) / "AUDIO_PP.IFO";
    patch(table, TABLE_TRACK + TABLE_TRACK_BYTES + 14, { 0x18 });
    const ProcessResult result = extract(folder, {});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "error: error + 7006: MLP is not supported (0x84001B5E)\n"
                          "  disc/AUDIO_TS/AUDIO_PP.IFO: track 2 is packed losslessly (MLP), which this program can't "
                          "unpack; so no track of the disc is extracted\n"
                          "  more: orven explain 7006\n");
    EXPECT_FALSE(fs::exists(folder.root / "out"));
    fs::create_directory(folder.root / "disc" / "VIDEO_TS");
    writeFile((folder.root / "disc" / "VIDEO_TS" / "VIDEO_TS.IFO").u16string(), std::string_view("x"));
    EXPECT_NE(extract(folder, {}).err.find("extracted. The VIDEO_TS folder beside it may hold the sound as LPCM\n"),
              std::string::npos);
}

// Three tracks; the second loses its end.
TEST(ExtractProgram, CutSoundSaysWhatCameOut)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, FOUR, STEREO });
    const std::vector<uint64_t> sectors = trackSectors(audioTs(folder));
    ASSERT_EQ(sectors.size(), 3u);
    const uint64_t left = sectors[0] + sectors[1] - 1, end = sectors[0] + sectors[1] + sectors[2] - 1;
    cutFile(audioTs(folder) / "ATS_01_1.AOB", left * SECTOR + 100);
    const std::string where = "  disc/AUDIO_TS/ATS_01_1.AOB: it is cut: track ",
                      head = "error: error + 7007: cannot read from AOB (0x84001B5F)\n",
                      more = "  more: orven explain 7007\n",
                      has = ", and the sound has " + std::to_string(left) + " sectors\n";
    const ProcessResult result = extract(folder, { "-q" });
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, head + where + "2 goes from sector " + std::to_string(sectors[0]) + " to " +
                              std::to_string(left) + has + more + head + where + "3 goes from sector " +
                              std::to_string(left + 1) + " to " + std::to_string(end) + has + more +
                              "error: 1 of 3 tracks is extracted\n");
    EXPECT_EQ(namesIn(folder.root / "out"), Names{ "track001_lrf.wav" });
    EXPECT_TRUE(discFile(folder.root / "out" / "track001_lrf.wav") == pairWave(STEREO, 0, 0, 1));

    const ProcessResult loud = extract(folder, {}, "disc", "loud");
    EXPECT_TRUE(loud.out.ends_with("loud/track001_lrf.wav, 12046 bytes\n")) << loud.out;
}

TEST(ExtractProgram, SeveralFilesThatAreCutAreWarnedOf)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO });
    const Bytes aob = discFile(audioTs(folder) / "ATS_01_1.AOB");
    writeDiscFile(audioTs(folder) / "ATS_01_1.AOB", Bytes(aob.begin(), aob.begin() + 2 * SECTOR));
    writeDiscFile(audioTs(folder) / "ATS_01_2.AOB", Bytes(aob.begin() + 2 * SECTOR, aob.end() - SECTOR));
    const ProcessResult result = extract(folder, { "-q" });
    EXPECT_TRUE(result.err.starts_with("warning: 1 sector of the sound are missing. If it is not the last file that is "
                                       "cut, tracks come out wrong\n"))
        << result.err;
    EXPECT_EQ(result.exitCode, 1);
}

// A sector that can't be read as a pack takes its own track with it and no other.
TEST(ExtractProgram, DamagedTrackLeavesNoFile)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, STEREO, STEREO });
    const std::vector<uint64_t> sectors = trackSectors(audioTs(folder));
    const uint64_t at = (sectors[0] + 3) * SECTOR;
    patch(audioTs(folder) / "ATS_01_1.AOB", at, { 0xFF });
    const ProcessResult result = extract(folder, { "-q" });
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "error: error + 7008: wrong pack structure in AOB (0x84001B60)\n"
                          "  disc/AUDIO_TS/ATS_01_1.AOB: a sector of track 2 is no pack of a program stream, at byte " +
                              std::to_string(at) + " or behind\n  more: orven explain 7008\n" +
                              "error: 2 of 3 tracks are extracted\n");
    EXPECT_EQ(namesIn(folder.root / "out"), (Names{ "track001_lrf.wav", "track003_lrf.wav" }));
    EXPECT_TRUE(discFile(folder.root / "out" / "track003_lrf.wav") == pairWave(STEREO, 2, 0, 1));

    const ProcessResult one = extract(folder, { "-q", "--track", "2" }, "disc", "one");
    EXPECT_EQ(one.exitCode, 1);
    EXPECT_TRUE(one.err.ends_with("  more: orven explain 7008\n")) << one.err;   // nothing to count
    EXPECT_EQ(namesIn(folder.root / "one"), Names{});
}

// An earlier file is replaced by a whole track alone.
TEST(ExtractProgram, DamagedTrackLeavesAnEarlierFile)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { FOUR });
    EXPECT_EQ(extract(folder, { "-q" }).exitCode, 0);
    const auto before = contentOf(folder.root / "out");
    const uint64_t last = trackSectors(audioTs(folder))[0] - 1;
    patch(audioTs(folder) / "ATS_01_1.AOB", last * SECTOR, { 0xFF });
    EXPECT_EQ(extract(folder, { "-q", "--force" }).exitCode, 1);
    EXPECT_TRUE(contentOf(folder.root / "out") == before);
}

TEST(ExtractProgram, TrackWithoutSamplesIsWarnedOf)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO });
    Bytes aob = discFile(audioTs(folder) / "ATS_01_1.AOB");
    for (size_t sector = 0; sector < aob.size(); sector += SECTOR) {
        aob[sector + (sector ? 17 : 35)] = 0xBE;   // the stream's number: padding; the first pack has a system header
    }
    writeDiscFile(audioTs(folder) / "ATS_01_1.AOB", aob);
    const ProcessResult result = extract(folder, { "-q" });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "warning: track 1 has no samples: its packs hold no LPCM\n");
    EXPECT_EQ(discFile(folder.root / "out" / "track001_lrf.wav").size(), 46u);
}

// ---- discs that can't be opened -----------------------------------------------------------------------------------

struct OpenCase {
    const char* what;
    std::map<std::string, Bytes> files;   // by name in the folder
    const char* code;
    const char* file;   // that it is about
    const char* why;
};

Bytes text(std::string_view mark, size_t bytes)
{
    Bytes all(bytes);
    std::copy(mark.begin(), mark.end(), all.begin());
    return all;
}

/** VIDEO_TS.IFO whose tables lie in the sector behind the first. coding: of the first sound */
Bytes managerTable(uint8_t coding)
{
    Bytes ifo = text("DVDVIDEO-VMG", 2 * SECTOR);
    ifo[199] = ifo[211] = 1;   // table of titles, of attributes: sectors
    ifo[SECTOR + 11] = 16;     // in both tables: first entry, at byte 16
    ifo[SECTOR + 16 + 268] = coding;
    return ifo;
}

TEST(ExtractProgram, DiscsThatCannotBeOpened)
{
    const Bytes audio = text("DVDAUDIOSAPP", 16384), some = text("", 2 * SECTOR);
    Bytes many = audio;
    many[13] = 100;
    const OpenCase cases[] = {
        { "nothing",
          {},
          "7003",
          "disc",
          "there is neither AUDIO_PP.IFO, of DVD-Audio, nor VIDEO_TS.IFO with "
          "VTS_01_0.IFO, of DVD-Video" },
        { "manager alone", { { "VIDEO_TS.IFO", managerTable(0x80) } }, "7003", "disc", "there is neither " },
        { "short table",
          { { "AUDIO_PP.IFO", text("DVDAUDIOSAPP", 16383) }, { "ATS_01_1.AOB", some } },
          "7004",
          "disc/AUDIO_PP.IFO",
          "it has 16383 bytes, fewer than its table needs" },
        { "empty table",
          { { "AUDIO_PP.IFO", {} }, { "ATS_01_1.AOB", some } },
          "7004",
          "disc/AUDIO_PP.IFO",
          "it has 0 bytes, " },
        { "other table",
          { { "AUDIO_PP.IFO", text("DVDAUDIO-ATS", 16384) }, { "ATS_01_1.AOB", some } },
          "7005",
          "disc/AUDIO_PP.IFO",
          "it does not begin with DVDAUDIOSAPP, or it has more than 99 tracks" },
        { "100 tracks",
          { { "AUDIO_PP.IFO", many }, { "ATS_01_1.AOB", some } },
          "7005",
          "disc/AUDIO_PP.IFO",
          "it does not begin" },
        { "no sound", { { "AUDIO_PP.IFO", audio } }, "7007", "disc/ATS_01_1.AOB", "there is no such file" },
        { "no video sound",
          { { "VIDEO_TS.IFO", managerTable(0x80) }, { "VTS_01_0.IFO", text("DVDVIDEO-VTS", 8192) } },
          "7007",
          "disc/VTS_01_1.VOB",
          "there is no such file" },
        { "empty manager",
          { { "VIDEO_TS.IFO", {} }, { "VTS_01_0.IFO", some } },
          "7014",
          "disc/VIDEO_TS.IFO",
          "it is no table of a DVD-Video's manager, or damaged" },
        { "no manager",
          { { "VIDEO_TS.IFO", some }, { "VTS_01_0.IFO", some } },
          "7014",
          "disc/VIDEO_TS.IFO",
          "it is no table of a DVD-Video's manager" },
        { "no title set",
          { { "VIDEO_TS.IFO", managerTable(0x80) }, { "VTS_01_0.IFO", some } },
          "7015",
          "disc/VTS_01_0.IFO",
          "it is no table of a title set, or damaged" },
        { "AC-3",
          { { "VIDEO_TS.IFO", managerTable(0x00) }, { "VTS_01_0.IFO", text("DVDVIDEO-VTS", 8192) } },
          "7016",
          "disc/VIDEO_TS.IFO",
          "the first sound of title set 1 is not LPCM" },
    };
    for (const OpenCase& disc : cases) {
        SCOPED_TRACE(disc.what);
        const TempDir folder;
        fs::create_directory(folder.root / "disc");
        for (const auto& [name, bytes] : disc.files) writeDiscFile(folder.root / "disc" / name, bytes);
        const ProcessResult result = extract(folder, {});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find("\n  " + std::string(disc.file) + ": " + disc.why), std::string::npos) << result.err;
        EXPECT_TRUE(result.err.ends_with("\n  more: orven explain " + std::string(disc.code) + "\n")) << result.err;
        EXPECT_FALSE(fs::exists(folder.root / "out"));
    }
}

TEST(ExtractProgram, DiscWithoutTracks)
{
    const TempDir folder;
    fs::create_directory(folder.root / "disc");
    writeDiscFile(folder.root / "disc" / "AUDIO_PP.IFO", text("DVDAUDIOSAPP", 16384));
    writeDiscFile(folder.root / "disc" / "ATS_01_1.AOB", Bytes(SECTOR));
    const ProcessResult result = extract(folder, {});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "disc: DVD-Audio, 0 tracks\n");
    EXPECT_EQ(result.err, "error: disc/AUDIO_PP.IFO: the disc has no tracks\n");
}

// ---- bad input ----------------------------------------------------------------------------------------------------

// Whatever the table and the packs say, the program ends by itself, makes files of tracks alone, and leaves the disc.
TEST(ExtractProgram, SpoiledDiscs)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, FOUR, SIX });
    const Bytes table = discFile(audioTs(folder) / "AUDIO_PP.IFO"), aob = discFile(audioTs(folder) / "ATS_01_1.AOB");
    std::mt19937 chance(7);
    int failures = 0;
    for (int run = 0; run < 60; run++) {
        SCOPED_TRACE(run);
        Bytes badTable = table, badAob = aob;
        for (int i = 0; i < 3; i++) {
            badTable[TABLE_TRACK + chance() % (3 * TABLE_TRACK_BYTES)] = uint8_t(chance());
            badAob[chance() % (aob.size() / SECTOR) * SECTOR + chance() % 60] = uint8_t(chance());
        }
        if (run % 2) badTable = table;
        writeDiscFile(audioTs(folder) / "AUDIO_PP.IFO", badTable);
        writeDiscFile(audioTs(folder) / "ATS_01_1.AOB", badAob);
        const ProcessResult result = extract(folder, {});
        EXPECT_TRUE(result.exitCode == 0 || result.exitCode == 1) << result.exitCode;
        failures += result.exitCode;
        for (const std::string& name : namesIn(folder.root / "out"))
            EXPECT_TRUE(name.starts_with("track00") && name.ends_with(".wav")) << name;
        EXPECT_TRUE(discFile(audioTs(folder) / "ATS_01_1.AOB") == badAob);
        EXPECT_EQ(namesIn(folder.root / "disc").size(), namesIn(audioTs(folder)).size() + 1);
        fs::remove_all(folder.root / "out");
    }
    EXPECT_GT(failures, 5);
    EXPECT_LT(failures, 60);
}

}   // namespace
