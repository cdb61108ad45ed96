// aob_process_test.cpp: `orven aob` under Ctrl-C, on a full disk, and with names that a project can't hold. POSIX only.
#include "running.h"

#include "tests/support/files.h"
#include "tests/support/wave.h"

#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> AOB = { "aob", "-t", "a/b", "--project", "p.ini", "s.wav" };

void writeSound(const TempDir& folder)
{
    writeFile(folder / u"s.wav", waveFile(makeChannels(2, 16, 1000000, 1), 16, 48000));
}

TEST(AobProcess, CtrlCLeavesNothing)
{
    const TempDir folder;
    writeSound(folder);
    const Running run = startOrven(AOB, folder.root, 0);
    // The first line on standard error belongs to the first pack: by now the files are there.
    const fs::path made = folder.root / "a" / "b" / "ATS_01_1.AOB";
    std::error_code error;
    for (int waited = 0; waited < PATIENCE_MS && !fs::exists(made, error); waited++) usleep(1000);
    EXPECT_TRUE(fs::exists(folder.root / "p.ini"));
    EXPECT_EQ(kill(run.child, SIGINT), 0);
    const auto [exitCode, text] = finish(run);
    EXPECT_TRUE(text.ends_with("/a/b/ATS_01_1.AOB is not made\n")) << text;
    EXPECT_NE(text.find("error: interrupted; "), text.npos) << text;
    EXPECT_EQ(text.find("100%"), text.npos) << text;
    EXPECT_EQ(exitCode, 130);
    EXPECT_FALSE(fs::exists(folder.root / "a"));
    EXPECT_FALSE(fs::exists(folder.root / "p.ini"));
    EXPECT_TRUE(fs::exists(folder.root / "s.wav"));
}

TEST(AobProcess, FullDiskLeavesNothing)
{
    const TempDir folder;
    writeSound(folder);
    const auto [exitCode, text] = runPrepared(AOB, folder.root, limitFiles(1 << 20));
    EXPECT_NE(text.find("error: error 6021: cannot write into AOB file (0x84001785)\n  "), text.npos) << text;
    EXPECT_TRUE(text.ends_with("/a/b/ATS_01_1.AOB: the file can't be written\n  more: orven explain 6021\n")) << text;
    EXPECT_EQ(exitCode, 1);
    EXPECT_FALSE(fs::exists(folder.root / "a"));
    EXPECT_FALSE(fs::exists(folder.root / "p.ini"));
}

// A folder that was there stays, with all that is not of this run.
TEST(AobProcess, FailureLeavesTheFolderOfTheUser)
{
    const TempDir folder;
    writeSound(folder);
    fs::create_directories(folder.root / "a" / "b");
    writeFile(folder / u"a/b/ATS_02_1.AOB", std::string_view("mine"));
    EXPECT_EQ(runPrepared(AOB, folder.root, limitFiles(1 << 20)).exitCode, 1);
    EXPECT_EQ(readFile(folder / u"a/b/ATS_02_1.AOB").size(), 4u);
    EXPECT_FALSE(fs::exists(folder.root / "a" / "b" / "ATS_01_1.AOB"));
    EXPECT_FALSE(fs::exists(folder.root / "a" / "b" / "ATS_01.nfo"));
}

TEST(AobProcess, LinksAreNotFollowed)
{
    const TempDir folder;
    writeSound(folder);
    writeFile(folder / u"precious", std::string_view("mine"));
    fs::create_directories(folder.root / "t");
    fs::create_symlink("../precious", folder.root / "t" / "ATS_01.nfo");
    const ProcessResult result = runOrven({ "aob", "-t", "t", "s.wav" }, folder.root);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_TRUE(result.err.ends_with("ATS_01.nfo is there and is no plain file\n")) << result.err;
    fs::create_symlink("nowhere", folder.root / "p.ini");
    EXPECT_EQ(runOrven({ "aob", "-t", "u", "--project", "p.ini", "s.wav" }, folder.root).exitCode, 2);
    EXPECT_EQ(readFile(folder / u"precious").size(), 4u);
    EXPECT_FALSE(fs::exists(folder.root / "u"));
}

// The library takes a backslash for a separator, and names as UTF-8 alone: it would write elsewhere.
TEST(AobProcess, FoldersThatTheLibraryCannotName)
{
    const TempDir folder;
    writeSound(folder);
    for (const char* name : { "a\\b", "\xFF", "a\tb" }) {
        const ProcessResult result = runOrven({ "aob", "-t", name, "s.wav" }, folder.root);
        EXPECT_EQ(result.exitCode, 2) << name;
        EXPECT_TRUE(result.err.ends_with("has a name that a project can't hold\n")) << result.err;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.root), fs::directory_iterator()), 1);
    // A sound's own name may be any bytes.
    fs::rename(folder.root / "s.wav", folder.root / "\xFF.wav");
    const ProcessResult result = runOrven({ "aob", "-q", "-t", "t", "\xFF.wav" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
}

}   // namespace
