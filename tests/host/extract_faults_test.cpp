// extract_faults_test.cpp: `orven extract`, by running it: what it says of discs and tracks that can't be extracted,
// and that bad input does no harm.
#include "tests/host/extract_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t TABLE_TRACK = 18, TABLE_TRACK_BYTES = 52;   // records of AUDIO_PP.IFO

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

// ---- tracks that can't be extracted -------------------------------------------------------------------------------

TEST(ExtractFaults, TracksOfOtherFormsAreRefused)
{
    const TempDir folder;
    AudioTrackSpec twenty = STEREO, three = { .assign = 2, .channels = 4 };
    twenty.tableBits = 20;
    three.samples = 500;
    makeAudioDisc(audioTs(folder), { STEREO, twenty, three, STEREO });
    const ProcessResult result = runExtraction(folder, {});
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
        const ProcessResult one = runExtraction(folder, { "--track", track, "-q" }, "disc", "none");
        EXPECT_EQ(one.exitCode, 1);
        EXPECT_NE(one.err.find("track " + std::string(track) + ": its "), std::string::npos) << one.err;
    }
    EXPECT_FALSE(fs::exists(folder.root / "none"));
}

TEST(ExtractFaults, LosslessPackingIsSaid)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, STEREO });
    const fs::path table = audioTs(folder) / "AUDIO_PP.IFO";
    patch(table, TABLE_TRACK + TABLE_TRACK_BYTES + 14, { 0x18 });
    const ProcessResult result = runExtraction(folder, {});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "error: error + 7006: MLP is not supported (0x84001B5E)\n"
                          "  disc/AUDIO_TS/AUDIO_PP.IFO: track 2 is packed losslessly (MLP), which this program can't "
                          "unpack; so no track of the disc is extracted\n"
                          "  more: orven explain 7006\n");
    EXPECT_FALSE(fs::exists(folder.root / "out"));
    fs::create_directory(folder.root / "disc" / "VIDEO_TS");
    writeFile((folder.root / "disc" / "VIDEO_TS" / "VIDEO_TS.IFO").u16string(), std::string_view("x"));
    EXPECT_NE(
        runExtraction(folder, {}).err.find("extracted. The VIDEO_TS folder beside it may hold the sound as LPCM\n"),
        std::string::npos);
}

// Three tracks; the second loses its end.
TEST(ExtractFaults, CutSoundSaysWhatCameOut)
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
    const ProcessResult result = runExtraction(folder, { "-q" });
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, head + where + "2 goes from sector " + std::to_string(sectors[0]) + " to " +
                              std::to_string(left) + has + more + head + where + "3 goes from sector " +
                              std::to_string(left + 1) + " to " + std::to_string(end) + has + more +
                              "error: 1 of 3 tracks is extracted\n");
    EXPECT_EQ(namesIn(folder.root / "out"), Names{ "track001_lrf.wav" });
    EXPECT_TRUE(discFile(folder.root / "out" / "track001_lrf.wav") == pairWave(STEREO, 0, 0, 1));

    const ProcessResult loud = runExtraction(folder, {}, "disc", "loud");
    EXPECT_TRUE(loud.out.ends_with("loud/track001_lrf.wav, 12046 bytes\n")) << loud.out;
}

TEST(ExtractFaults, SeveralFilesThatAreCutAreWarnedOf)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO });
    const Bytes aob = discFile(audioTs(folder) / "ATS_01_1.AOB");
    writeDiscFile(audioTs(folder) / "ATS_01_1.AOB", Bytes(aob.begin(), aob.begin() + 2 * SECTOR));
    writeDiscFile(audioTs(folder) / "ATS_01_2.AOB", Bytes(aob.begin() + 2 * SECTOR, aob.end() - SECTOR));
    const ProcessResult result = runExtraction(folder, { "-q" });
    EXPECT_TRUE(result.err.starts_with("warning: 1 sector of the sound are missing. If it is not the last file that is "
                                       "cut, tracks come out wrong\n"))
        << result.err;
    EXPECT_EQ(result.exitCode, 1);
}

// A sector that can't be read as a pack takes its own track with it and no other.
TEST(ExtractFaults, DamagedTrackLeavesNoFile)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO, STEREO, STEREO });
    const std::vector<uint64_t> sectors = trackSectors(audioTs(folder));
    const uint64_t at = (sectors[0] + 3) * SECTOR;
    patch(audioTs(folder) / "ATS_01_1.AOB", at, { 0xFF });
    const ProcessResult result = runExtraction(folder, { "-q" });
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "error: error + 7008: wrong pack structure in AOB (0x84001B60)\n"
                          "  disc/AUDIO_TS/ATS_01_1.AOB: a sector of track 2 is no pack of a program stream, at byte " +
                              std::to_string(at) + " or behind\n  more: orven explain 7008\n" +
                              "error: 2 of 3 tracks are extracted\n");
    EXPECT_EQ(namesIn(folder.root / "out"), (Names{ "track001_lrf.wav", "track003_lrf.wav" }));
    EXPECT_TRUE(discFile(folder.root / "out" / "track003_lrf.wav") == pairWave(STEREO, 2, 0, 1));

    const ProcessResult one = runExtraction(folder, { "-q", "--track", "2" }, "disc", "one");
    EXPECT_EQ(one.exitCode, 1);
    EXPECT_TRUE(one.err.ends_with("  more: orven explain 7008\n")) << one.err;   // nothing to count
    EXPECT_EQ(namesIn(folder.root / "one"), Names{});
}

// An earlier file is replaced by a whole track alone.
TEST(ExtractFaults, DamagedTrackLeavesAnEarlierFile)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { FOUR });
    EXPECT_EQ(runExtraction(folder, { "-q" }).exitCode, 0);
    const auto before = contentOf(folder.root / "out");
    const uint64_t last = trackSectors(audioTs(folder))[0] - 1;
    patch(audioTs(folder) / "ATS_01_1.AOB", last * SECTOR, { 0xFF });
    EXPECT_EQ(runExtraction(folder, { "-q", "--force" }).exitCode, 1);
    EXPECT_TRUE(contentOf(folder.root / "out") == before);
}

TEST(ExtractFaults, TrackWithoutSamplesIsWarnedOf)
{
    const TempDir folder;
    makeAudioDisc(audioTs(folder), { STEREO });
    Bytes aob = discFile(audioTs(folder) / "ATS_01_1.AOB");
    for (size_t sector = 0; sector < aob.size(); sector += SECTOR) {
        aob[sector + (sector ? 17 : 35)] = 0xBE;   // the stream's number: padding; the first pack has a system header
    }
    writeDiscFile(audioTs(folder) / "ATS_01_1.AOB", aob);
    const ProcessResult result = runExtraction(folder, { "-q" });
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

TEST(ExtractFaults, DiscsThatCannotBeOpened)
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
        const ProcessResult result = runExtraction(folder, {});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find("\n  " + std::string(disc.file) + ": " + disc.why), std::string::npos) << result.err;
        EXPECT_TRUE(result.err.ends_with("\n  more: orven explain " + std::string(disc.code) + "\n")) << result.err;
        EXPECT_FALSE(fs::exists(folder.root / "out"));
    }
}

TEST(ExtractFaults, DiscWithoutTracks)
{
    const TempDir folder;
    fs::create_directory(folder.root / "disc");
    writeDiscFile(folder.root / "disc" / "AUDIO_PP.IFO", text("DVDAUDIOSAPP", 16384));
    writeDiscFile(folder.root / "disc" / "ATS_01_1.AOB", Bytes(SECTOR));
    const ProcessResult result = runExtraction(folder, {});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "disc: DVD-Audio, 0 tracks\n");
    EXPECT_EQ(result.err, "error: disc/AUDIO_PP.IFO: the disc has no tracks\n");
}

// ---- bad input ----------------------------------------------------------------------------------------------------

// Whatever the table and the packs say, the program ends by itself, makes files of tracks alone, and leaves the disc.
TEST(ExtractFaults, SpoiledDiscs)
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
        const ProcessResult result = runExtraction(folder, {});
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
