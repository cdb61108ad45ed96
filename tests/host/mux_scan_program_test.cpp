// mux_scan_program_test.cpp: `orven mux --scan-file`, by running it: multiplexing and the second pass in one go.
#include "tests/host/process.h"
#include "tests/support/elementary.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

void expectNothingMade(const TempDir& folder)
{
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
    EXPECT_FALSE(fs::exists(folder.root / "out.scan"));
}

struct MuxCase {
    const char* what;
    std::vector<std::string> cells;   // options of both commands
    uint64_t rateCode;
    uint64_t frames;   // of sound, 32 ms each
};

// The multiplexer's stream, scanned as it comes or from its file, is the same to the byte.
TEST(MuxScan, IsMultiplexingThenScanning)
{
    const MuxCase cases[] = {
        { "one cell", {}, RATE_CODE_PAL, 0 },
        { "interval", { "--interval", "1.5" }, RATE_CODE_PAL, 120 },
        { "list", { "--cells", "cells" }, RATE_CODE_PAL, 120 },
        { "NTSC", { "--interval", "1.5" }, RATE_CODE_NTSC, 120 },
        { "sound outlasts the pictures", {}, RATE_CODE_PAL, 400 },
    };
    for (const MuxCase& test : cases) {
        SCOPED_TRACE(test.what);
        const TempDir folder;
        const uint64_t height = test.rateCode == RATE_CODE_PAL ? 576 : 480;
        writeFile(folder / u"v.m2v", makeVideo(gops(9, { .rateCode = test.rateCode, .height = height })).bytes);
        writeFile(folder / u"a.ac3", ac3Frames(0x14, test.frames ? test.frames : 1));
        writeFile(folder / u"cells", std::string_view("1\n2.5\n"));
        std::vector<std::string> mux = { "mux", "-q", "-o", "plain.vob", "-v", "v.m2v", "-a", "a.ac3" },
                                 scan = { "scan", "-q", "plain.vob", "-o", "two.vob", "--scan-file", "two.scan" };
        EXPECT_EQ(runOrven(mux, folder.root).exitCode, 0);
        mux[3] = "out.vob";
        mux.insert(mux.end(), { "--scan-file", "out.scan" });
        mux.insert(mux.end(), test.cells.begin(), test.cells.end());
        scan.insert(scan.end(), test.cells.begin(), test.cells.end());
        const ProcessResult once = runOrven(mux, folder.root), twice = runOrven(scan, folder.root);
        EXPECT_EQ(once.exitCode, 0) << once.err;
        EXPECT_EQ(twice.exitCode, 0) << twice.err;
        EXPECT_EQ(holds(once.err, "warning: out.vob: the scan counts 25 pictures a second of a stream that has 29.97"),
                  test.rateCode == RATE_CODE_NTSC);
        const Bytes plain = readFile(folder / u"plain.vob"), out = readFile(folder / u"out.vob");
        EXPECT_TRUE(out == readFile(folder / u"two.vob"));
        EXPECT_TRUE(readFile(folder / u"out.scan") == readFile(folder / u"two.scan"));
        EXPECT_EQ(out.size(), plain.size());
        EXPECT_FALSE(out == plain);
    }
}

TEST(MuxScan, SaysWhatItHasMade)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(9)).bytes);
    const ProcessResult result = runOrven(
        { "mux", "-o", "out.vob", "-v", "v.m2v", "--scan-file", "out.scan", "--interval", "1.5" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const uint64_t bytes = readFile(folder / u"out.vob").size();
    EXPECT_EQ(result.out, "video: v.m2v, PAL video, 720 x 576\nmovie written to out.vob, " + std::to_string(bytes) +
                              " bytes\nscan file written to out.scan: " + std::to_string(bytes / 2048) +
                              " sectors, 9 units, 3 cells\n");
    EXPECT_EQ(readFile(folder / u"out.scan").size(), 8u + 9 * 96);
}

TEST(MuxScan, FailureLeavesNeitherFile)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(20, { .bytes = { 10000, 2500 } })).bytes);
    writeFile(folder / u"a", ac3Frames(0x14, 200) + ac3Frames(0x16, 20));
    const std::vector<std::string> mux = { "mux", "-q", "-o", "out.vob", "-v", "v.m2v", "--scan-file", "out.scan" };
    std::vector<std::string> torn = mux, divided = mux;
    torn.insert(torn.end(), { "-a", "a" });
    const ProcessResult sound = runOrven(torn, folder.root);
    EXPECT_EQ(sound.exitCode, 1);
    EXPECT_TRUE(sound.err.starts_with("error: a: at byte 153600 a frame of 768 bytes should begin")) << sound.err;
    expectNothingMade(folder);

    divided.insert(divided.end(), { "--interval", "0.2" });
    const ProcessResult cells = runOrven(divided, folder.root);
    EXPECT_EQ(cells.exitCode, 1);
    EXPECT_TRUE(cells.err.starts_with("error: out.vob: no unit begins in cell ")) << cells.err;
    expectNothingMade(folder);
}

// A failure at the start leaves earlier files alone.
TEST(MuxScan, FailureAtTheStartKeepsEarlierFiles)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(2)).bytes);
    writeFile(folder / u"a", waveHeader({ .rate = 44100, .dataBytes = 4000 }) + filler(4000));
    writeFile(folder / u"out.vob", std::string_view("earlier"));
    writeFile(folder / u"out.scan", std::string_view("before"));
    EXPECT_EQ(
        runOrven({ "mux", "-o", "out.vob", "-v", "v.m2v", "-a", "a", "--scan-file", "out.scan" }, folder.root).exitCode,
        1);
    EXPECT_EQ(readFile(folder / u"out.vob").size(), 7u);
    EXPECT_EQ(readFile(folder / u"out.scan").size(), 6u);
}

// By then the movie is made: cells that it is too short for are told and left out.
TEST(MuxScan, CellsBehindTheMovie)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(4)).bytes);
    writeFile(folder / u"cells", std::string_view("1\n1:00\n"));
    const ProcessResult result = runOrven(
        { "mux", "-q", "-o", "out.vob", "-v", "v.m2v", "--scan-file", "out.scan", "--cells", "cells" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(
        result.err.starts_with("warning: out.vob: cell 3 is to begin at 0:01:00.000, but the last unit begins at "
                               "0:00:01."))
        << result.err;
    EXPECT_EQ(readFile(folder / u"out.scan").size(), 8u + 4 * 96);
}

}   // namespace
