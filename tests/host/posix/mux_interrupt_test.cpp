// mux_interrupt_test.cpp: `orven mux` under Ctrl-C, on a full disk, and with names that are not text. POSIX only.
#include "running.h"

#include "tests/support/elementary.h"
#include "tests/support/files.h"

#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> MUX = { "mux", "-o", "out.vob", "-v", "v.m2v" };

TEST(MuxProcess, CtrlCLeavesNoMovie)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(40)).bytes);
    const Running run = startOrven(
        MUX, folder.root, 0, [] {}, "out");
    // What it says of its streams tells that it listens for signals by now.
    std::error_code error;
    for (int waited = 0; waited < PATIENCE_MS; waited++) {
        const uintmax_t said = fs::file_size(folder.root / "out", error);
        if (!error && said > 0) break;
        usleep(1000);
    }
    EXPECT_EQ(kill(run.child, SIGINT), 0);
    const auto [exitCode, text] = finish(run);
    EXPECT_TRUE(text.ends_with("error: interrupted; out.vob is not made\n")) << text;
    EXPECT_EQ(text.find("100%"), text.npos) << text;
    EXPECT_EQ(exitCode, 130);
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
}

TEST(MuxProcess, FullDiskLeavesNoMovie)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(40)).bytes);
    const auto [exitCode, text] = runPrepared(MUX, folder.root, limitFiles(1 << 20));
    EXPECT_TRUE(text.ends_with("error: Error 4019: write file to destination failed (0x84000FB3)\n"
                               "  out.vob: the file can't be written\n  more: orven explain 4019\n"))
        << text;
    EXPECT_EQ(exitCode, 1);
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
}

// A file's name is any bytes on these systems. The library takes names as UTF-8 alone, and reads layer 2 by itself.
TEST(MuxProcess, NamesThatAreNotText)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(2)).bytes);
    writeFile(folder / u"a.mp2", layer2Frames(4, 20));
    writeFile(folder / u"a.ac3", ac3Frames(6, 20));
    fs::rename(folder.root / "a.mp2", folder.root / "\xFF.mp2");
    fs::rename(folder.root / "a.ac3", folder.root / "\xFF.ac3");
    const ProcessResult layer2 =
        runOrven({ "mux", "-q", "-o", "out.vob", "-v", "v.m2v", "-a", "\xFF.mp2" }, folder.root);
    EXPECT_EQ(layer2.exitCode, 1);
    EXPECT_NE(layer2.err.find("\n  \xEF\xBF\xBD.mp2: it is MPEG audio of layer 2, 64 kbit/s\n"), std::string::npos)
        << layer2.err;
    const ProcessResult ac3 = runOrven({ "mux", "-q", "-o", "\xFE.vob", "-v", "v.m2v", "-a", "\xFF.ac3" }, folder.root);
    EXPECT_EQ(ac3.exitCode, 0) << ac3.err;
    EXPECT_TRUE(fs::exists(folder.root / "\xFE.vob"));
}

}   // namespace
