// extract_files_test.cpp: `orven extract` under Ctrl-C, on a full disk, among links and pipes, and with names that are
// not text. POSIX only.
#include "running.h"

#include "tests/host/extract_rig.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const AudioTrackSpec SHORT = { .samples = 3000 }, LONG = { .samples = 60000 };

// ---- processes ----------------------------------------------------------------------------------------------------

const std::vector<std::string> EXTRACT = { "extract", "disc", "-o", "out", "--force" };

void waitFor(const fs::path& file)
{
    for (int waited = 0; waited < PATIENCE_MS && !fs::exists(file); waited++) usleep(1000);
    EXPECT_TRUE(fs::exists(file));
}

// Room for three lines of progress: the first track of few sectors has two at most, so the run stands in the second.
TEST(ExtractProcess, CtrlCLeavesWholeTracksAlone)
{
    const TempDir folder;
    makeAudioDisc(folder.root / "disc" / "AUDIO_TS", { SHORT, LONG, SHORT });
    fs::create_directory(folder.root / "out");
    writeFile((folder.root / "out" / "track002_lrf.wav").u16string(), std::string_view("earlier"));
    const Running run = startOrven(EXTRACT, folder.root, 80);
    waitFor(folder.root / "out" / "track001_lrf.wav");
    EXPECT_EQ(kill(run.child, SIGINT), 0);
    const auto [exitCode, text] = finish(run);
    EXPECT_TRUE(text.ends_with("error: interrupted; track 2 is not made\nerror: 1 of 3 tracks is extracted\n")) << text;
    EXPECT_EQ(text.find("100%"), text.npos) << text;
    EXPECT_EQ(exitCode, 130);
    EXPECT_EQ(namesIn(folder.root / "out"), (Names{ "track001_lrf.wav", "track002_lrf.wav" }));
    EXPECT_TRUE(discFile(folder.root / "out" / "track001_lrf.wav") == pairWave(SHORT, 0, 0, 1));
    EXPECT_EQ(discFile(folder.root / "out" / "track002_lrf.wav").size(), 7u);
}

// The counterpart: without a signal the same run ends well.
TEST(ExtractProcess, StalledRunGoesOn)
{
    const TempDir folder;
    makeAudioDisc(folder.root / "disc" / "AUDIO_TS", { SHORT, LONG, SHORT });
    const Running run = startOrven(EXTRACT, folder.root, 80);
    waitFor(folder.root / "out" / "track001_lrf.wav");
    const auto [exitCode, text] = finish(run);
    EXPECT_TRUE(text.ends_with("100%  extracting track 3\n")) << text;
    EXPECT_EQ(exitCode, 0);
    EXPECT_TRUE(discFile(folder.root / "out" / "track002_lrf.wav") == pairWave(LONG, 1, 0, 1));
}

// A file may have 20,000 bytes: the first track fits, the second does not, the third is not tried.
TEST(ExtractProcess, FullDiskLeavesWholeTracksAlone)
{
    const TempDir folder;
    makeAudioDisc(folder.root / "disc" / "AUDIO_TS", { SHORT, LONG, SHORT });
    const auto [exitCode, text] = runPrepared(EXTRACT, folder.root, limitFiles(20000));
    EXPECT_TRUE(text.ends_with("error: File too large (system error 27)\n  out: track 2 can't be written\n"
                               "  more: orven explain 27\nerror: 1 of 3 tracks is extracted\n"))
        << text;
    EXPECT_EQ(exitCode, 1);
    EXPECT_EQ(namesIn(folder.root / "out"), Names{ "track001_lrf.wav" });
}

// ---- links and pipes ----------------------------------------------------------------------------------------------

struct LinkedFolder {
    LinkedFolder()
    {
        makeAudioDisc(folder.root / "disc", { SHORT });
        writeFile(folder / u"precious", std::string_view("precious"));
        fs::create_directory(folder.root / "out");
    }
    ProcessResult extract() const
    {
        return runOrven({ "extract", "disc", "-o", "out", "--force", "-q" }, folder.root);
    }
    TempDir folder;
};

TEST(ExtractFiles, LinksAreLeftAlone)
{
    const LinkedFolder linked;
    const fs::path wave = linked.folder.root / "out" / "track001_lrf.wav";
    for (const char* target : { "precious", "nowhere" }) {
        fs::create_symlink(linked.folder.root / target, wave);
        const ProcessResult result = linked.extract();
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.err, "error: out/track001_lrf.wav is there and is no plain file\n");
        EXPECT_TRUE(fs::is_symlink(wave));
        fs::remove(wave);
    }
    EXPECT_FALSE(fs::exists(linked.folder.root / "nowhere"));
    EXPECT_EQ(readFile(linked.folder / u"precious").size(), 8u);
}

// The other name of a file that is replaced keeps what it has.
TEST(ExtractFiles, HardLinksKeepTheirContent)
{
    const LinkedFolder linked;
    const fs::path wave = linked.folder.root / "out" / "track001_lrf.wav";
    fs::create_hard_link(linked.folder.root / "precious", wave);
    EXPECT_EQ(linked.extract().exitCode, 0);
    EXPECT_TRUE(discFile(wave) == pairWave(SHORT, 0, 0, 1));
    EXPECT_EQ(readFile(linked.folder / u"precious").size(), 8u);
}

// Opening a pipe would wait for somebody who writes into it.
TEST(ExtractFiles, PipesDoNotStopTheProgram)
{
    const LinkedFolder linked;
    for (const char* name : { "AUDIO_PP.IFO", "VIDEO_TS.IFO", "ATS_01_1.AOB", "ATS_01_9.AOB", "VTS_01_1.VOB" }) {
        SCOPED_TRACE(name);
        const fs::path file = linked.folder.root / "disc" / name, kept = linked.folder.root / "kept";
        if (fs::exists(file)) fs::rename(file, kept);
        ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
        const ProcessResult result = linked.extract();
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.err, "error: disc/" + std::string(name) + ": it is no plain file\n");
        fs::remove(file);
        if (fs::exists(kept)) fs::rename(kept, file);
    }
    const fs::path wave = linked.folder.root / "out" / "track001_lrf.wav";
    ASSERT_EQ(mkfifo(wave.c_str(), 0600), 0);
    EXPECT_EQ(linked.extract().exitCode, 2);
}

// The superuser may read everything, so the program runs as somebody else.
TEST(ExtractFiles, FilesThatCannotBeRead)
{
    const TempDir folder;
    makeAudioDisc(folder.root / "disc", { SHORT });
    const struct {
        const char* name;
        const char* code;
    } cases[] = { { "AUDIO_PP.IFO", "error + 7003" }, { "ATS_01_1.AOB", "error + 7007" }, { "ATS_01_2.AOB", "" } };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        const fs::path file = folder.root / "disc" / expected.name;
        if (!fs::exists(file)) writeFile(file.u16string(), std::string_view("x"));
        fs::permissions(file, fs::perms::none);
        const auto [exitCode, text] = runPrepared(EXTRACT, folder.root, obeyPermissions);
        EXPECT_EQ(exitCode, 1);
        EXPECT_TRUE(text.starts_with("error: " + std::string(expected.code))) << text;
        EXPECT_NE(text.find("\n  disc/" + std::string(expected.name) + ": the file can't be opened for reading\n"),
                  text.npos)
            << text;
        fs::permissions(file, fs::perms(0644));
    }
    EXPECT_FALSE(fs::exists(folder.root / "out"));
}

TEST(ExtractFiles, OutputFolderThatCannotBeMade)
{
    const LinkedFolder linked;
    const ProcessResult result = runOrven({ "extract", "disc", "-o", "precious/out", "-q" }, linked.folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "error: the folder precious/out can't be made: Not a directory\n");
}

// A file's name is any bytes on these systems. The library takes names as UTF-8 alone, and a backslash as a slash.
TEST(ExtractFiles, NamesThatAreNotText)
{
    const LinkedFolder linked;
    fs::create_directories(linked.folder.root / "a" / "b");
    fs::create_directory(linked.folder.root / "a\\b");
    fs::rename(linked.folder.root / "disc", linked.folder.root / "\xFF");
    const std::string why = ": the library can't take the name of it or of the output\n";
    const ProcessResult disc = runOrven({ "extract", "\xFF", "-o", "out", "-q" }, linked.folder.root);
    EXPECT_EQ(disc.exitCode, 1);
    EXPECT_NE(disc.err.find("\n  \xEF\xBF\xBD" + why), std::string::npos) << disc.err;
    fs::rename(linked.folder.root / "\xFF", linked.folder.root / "disc");
    for (const char* out : { "\xFE", "a\\b" }) {
        const ProcessResult result = runOrven({ "extract", "disc", "-o", out, "-q" }, linked.folder.root);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_NE(result.err.find("\n  disc" + why), std::string::npos) << result.err;
    }
    EXPECT_FALSE(fs::exists(linked.folder.root / "\xFE"));
    EXPECT_TRUE(fs::is_empty(linked.folder.root / "a" / "b"));
}

}   // namespace
