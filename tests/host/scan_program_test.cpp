// scan_program_test.cpp: `orven scan` and `orven mux --scan-file`, by running them: what they refuse, and the bytes
// that they make.
#include "tests/host/process.h"
#include "tests/host/scan_stream.h"
#include "tests/host/usage.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

Bytes little(uint64_t value, uint64_t width)
{
    Bytes bytes;
    for (uint64_t i = 0; i < width; i++) bytes.push_back(uint8_t(value >> (8 * i)));
    return bytes;
}

// A record of a scan file, as far as it is not 0.
struct Record {
    uint64_t sector, lastSector, start, pictures, cell;
};

Bytes scanFile(uint64_t packs, const std::vector<Record>& records)
{
    Bytes bytes = little(1, 4) + little(packs, 4);
    for (const Record& record : records) {
        for (const uint64_t value : { record.sector, record.lastSector, uint64_t(0), record.start, record.pictures,
                                      uint64_t(1), record.cell }) {
            bytes += little(value, 8);
        }
        bytes += Bytes(40, 0);
    }
    return bytes;
}

ProcessResult scan(const TempDir& folder, const std::vector<std::string>& more = {})
{
    std::vector<std::string> arguments = { "scan", "in.vob", "--out", "out.vob", "--scan-file", "out.scan", "--quiet" };
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runOrven(arguments, folder.root);
}

void expectNothingMade(const TempDir& folder)
{
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
    EXPECT_FALSE(fs::exists(folder.root / "out.scan"));
}

// ---- usage --------------------------------------------------------------------------------------------------------

TEST(ScanProgram, WrongUsageIsExitCode2)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", scanStream(scanUnits(3)));
    writeFile(folder / u"v.m2v", makeVideo(gops(2)).bytes);
    writeFile(folder / u"cells", std::string_view("0\n1:00\n0:59\n"));
    fs::create_directory(folder.root / "dir");
    const std::vector<std::string> scan = { "scan", "in.vob", "-o", "out.vob", "--scan-file" },
                                   mux = { "mux", "-o", "out.vob", "-v", "v.m2v" };
    const auto with = [](std::vector<std::string> arguments, const std::vector<std::string>& more) {
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    };
    const UsageCase cases[] = {
        { "no input", { "scan", "-o", "out.vob", "--scan-file", "out.scan" }, "IN" },
        { "no output", { "scan", "in.vob", "--scan-file", "out.scan" }, "--out" },
        { "no scan file", { "scan", "in.vob", "-o", "out.vob" }, "--scan-file" },
        { "input is missing",
          { "scan", "no.vob", "-o", "out.vob", "--scan-file", "out.scan" },
          "error: no.vob: there is no such file" },
        { "input is a folder",
          { "scan", "dir", "-o", "out.vob", "--scan-file", "out.scan" },
          "error: dir: that is a folder\n" },
        { "output is a folder",
          { "scan", "in.vob", "-o", "dir", "--scan-file", "out.scan" },
          "error: the output dir is there and is no plain file\n" },
        { "output is the input",
          { "scan", "in.vob", "-o", "dir/../in.vob", "--scan-file", "out.scan" },
          " is one of the inputs\n" },
        { "scan file is the input", with(scan, { "in.vob" }), "error: the scan file in.vob is one of the inputs\n" },
        { "scan file is the output", with(scan, { "./out.vob" }),
          "error: the scan file ./out.vob is the output too\n" },
        { "scan file is the list of cells", with(scan, { "cells", "--cells", "cells" }),
          "error: the scan file cells is one of the inputs\n" },
        { "output is the list of cells",
          { "scan", "in.vob", "-o", "cells", "--scan-file", "out.scan", "--cells", "cells" },
          "error: the output cells is one of the inputs\n" },
        { "scan file is a folder", with(scan, { "dir" }), "error: the scan file dir is there and is no plain file\n" },
        { "no folder for the scan file", with(scan, { "no/out.scan" }), "out.scan: there is no such folder\n" },
        { "interval of 0", with(scan, { "out.scan", "--interval", "0" }),
          "error: --interval 0 is no length of time; write seconds (600, 0.5)\n" },
        { "negative interval", with(scan, { "out.scan", "--interval", "-5" }), "--interval" },
        { "interval of a word", with(scan, { "out.scan", "--interval", "ten" }),
          "error: --interval ten is no length of time; write seconds (600, 0.5)\n" },
        { "interval and cells", with(scan, { "out.scan", "--interval", "5", "--cells", "cells" }),
          "error: --interval and --cells exclude each other\n" },
        { "no such list", with(scan, { "out.scan", "--cells", "none" }), "error: none: there is no such file" },
        { "list with a fault", with(scan, { "out.scan", "--cells", "cells" }),
          "error: cells:3: 0:00:59.000 does not lie behind 0:01:00.000; the starts have to rise\n" },
        { "mux: interval without scan file", with(mux, { "--interval", "5" }),
          "error: --interval and --cells divide a stream for its scan file: name that by --scan-file\n" },
        { "mux: cells without scan file", with(mux, { "--cells", "cells" }), "name that by --scan-file\n" },
        { "mux: scan file is the output", with(mux, { "--scan-file", "out.vob" }),
          "error: the scan file out.vob is the output too\n" },
        { "mux: scan file is the video", with(mux, { "--scan-file", "v.m2v" }),
          "error: the scan file v.m2v is one of the inputs\n" },
        { "mux: list with a fault", with(mux, { "--scan-file", "out.scan", "--cells", "cells" }), "error: cells:3: " },
    };
    for (const UsageCase& usage : cases) {
        SCOPED_TRACE(usage.what);
        expectRefused(usage, folder.root);
        expectNothingMade(folder);
    }
    EXPECT_TRUE(readFile(folder / u"in.vob") == scanStream(scanUnits(3)));
    EXPECT_TRUE(readFile(folder / u"v.m2v") == makeVideo(gops(2)).bytes);
    EXPECT_EQ(readFile(folder / u"cells").size(), 12u);
}

TEST(ScanProgram, OutputsAreNoOtherNamesOfTheInput)
{
    const TempDir folder;
    const Bytes stream = scanStream(scanUnits(3));
    writeFile(folder / u"in.vob", stream);
    fs::create_hard_link(folder.root / "in.vob", folder.root / "other");
    for (const auto& [out, scanned] : { std::pair("other", "out.scan"), std::pair("out.vob", "other") }) {
        const ProcessResult result = runOrven({ "scan", "in.vob", "-o", out, "--scan-file", scanned }, folder.root);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_TRUE(result.err.ends_with(" other is one of the inputs\n")) << result.err;
    }
    writeFile(folder / u"out.vob", std::string_view("earlier"));
    fs::create_hard_link(folder.root / "out.vob", folder.root / "out.scan");
    const ProcessResult result = scan(folder);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "error: the scan file out.scan is the output too\n");
    EXPECT_TRUE(readFile(folder / u"in.vob") == stream);
    EXPECT_EQ(readFile(folder / u"out.vob").size(), 7u);
}

// Where capitals make no other name, that shows as soon as the first of the two is made.
TEST(ScanProgram, OutputsThatDifferInCapitals)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", scanStream(scanUnits(3)));
    const bool alike = fs::exists(folder.root / "IN.VOB");
    const ProcessResult result =
        runOrven({ "scan", "-q", "in.vob", "-o", "out.vob", "--scan-file", "OUT.VOB" }, folder.root);
    EXPECT_EQ(result.exitCode, alike ? 1 : 0);
    EXPECT_EQ(result.err, alike ? "error: OUT.VOB: the scan file is the output too\n" : "");
    EXPECT_EQ(fs::exists(folder.root / "out.vob"), !alike);
    EXPECT_EQ(fs::exists(folder.root / "OUT.VOB"), !alike);
}

TEST(ScanProgram, HelpTeaches)
{
    const TempDir folder;
    const ProcessResult help = runOrven({ "scan", "--help" }, folder.root);
    EXPECT_EQ(help.exitCode, 0);
    for (const char* part : { "--out", "--scan-file", "--interval", "--cells", "--quiet", "streamscanfile", "[H:]MM:SS",
                              "orven scan film.vob -o disc/VIDEO_TS/VTS_01_1.VOB --scan-file film.scan" }) {
        EXPECT_TRUE(holds(help.out, part)) << part;
    }
    EXPECT_TRUE(holds(runOrven({ "--help" }, folder.root).out, "Complete a movie's navigation data"));
    EXPECT_TRUE(holds(runOrven({ "explain", "9002" }, folder.root).out,
                      "a pack does not begin with the pack start code (0x8400232A)\n\n"));
}

// ---- streams that do not fit --------------------------------------------------------------------------------------

struct FaultCase {
    const char* what;
    Bytes stream;
    const char* err;   // all that it says
};

TEST(ScanProgram, FaultsAreFoundBeforeAnythingIsWritten)
{
    Bytes noPack = scanStream(scanUnits(4)), blank = noPack;
    patch(noPack, 5 * 2048, "00 00 01 B9");
    for (const uint64_t sector : { 0u, 3u, 6u, 9u }) patch(blank, sector * 2048 + 57, "00 00 00 00 00 00 00 00");
    const FaultCase cases[] = {
        { "empty", {}, "error: in.vob: it holds 0 bytes, less than one pack of 2048\n" },
        { "short", Bytes(2047), "error: in.vob: it holds 2047 bytes, less than one pack of 2048\n" },
        { "elementary", makeVideo(gops(2)).bytes,
          "error: a pack does not begin with the pack start code (0x8400232A)\n  in.vob: at sector 0 no pack begins "
          "(00 "
          "00 01 BA)\n  more: orven explain 9002\n" },
        { "no pack", noPack,
          "error: a pack does not begin with the pack start code (0x8400232A)\n  in.vob: at sector 5 no pack begins "
          "(00 "
          "00 01 BA)\n  more: orven explain 9002\n" },
        { "no navigation packs", videoPack(Bytes(10)) + videoPack(Bytes(10)),
          "error: in.vob: its first pack is no navigation pack: the stream is not made for a DVD, or begins within a "
          "unit. `orven mux` makes one of the video and the sounds\n" },
        { "blank", blank,
          "error: in.vob: at sector 0 a navigation pack is empty: the stream carries no navigation data, as those that "
          "ffmpeg makes. `orven mux` makes one that does, of the video and the sounds\n" },
        { "falling time", scanStream({ {}, {}, { .start = 9000 }, {} }),
          "error: in.vob: at sector 6 the stream's time falls from 0:00:00.580 to 0:00:00.100: here begins another "
          "one. "
          "Scan each by itself\n" },
        { "unit of too many packs", scanStream({ { .sectors = 769 } }),
          "error: Error 3017: overflow of audio or video input during muxing - data rate too large (0x84000BC9)\n  "
          "in.vob: the unit at sector 0 has more than 768 packs\n  more: orven explain 3017\n" },
    };
    for (const FaultCase& fault : cases) {
        SCOPED_TRACE(fault.what);
        const TempDir folder;
        writeFile(folder / u"in.vob", fault.stream);
        const ProcessResult fresh = scan(folder);
        EXPECT_EQ(fresh.exitCode, 1);
        EXPECT_EQ(fresh.out, "");
        EXPECT_EQ(fresh.err, fault.err);
        expectNothingMade(folder);
        writeFile(folder / u"out.vob", std::string_view("earlier"));
        writeFile(folder / u"out.scan", std::string_view("before"));
        EXPECT_EQ(scan(folder).exitCode, 1);
        EXPECT_EQ(readFile(folder / u"out.vob").size(), 7u);
        EXPECT_EQ(readFile(folder / u"out.scan").size(), 6u);
        EXPECT_TRUE(readFile(folder / u"in.vob") == fault.stream);
    }
}

TEST(ScanProgram, CellsThatTheStreamHasNot)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", scanStream(scanUnits(4)));
    writeFile(folder / u"cells", std::string_view("0.5\n10\n"));
    const ProcessResult behind = scan(folder, { "--cells", "cells" });
    EXPECT_EQ(behind.exitCode, 1);
    EXPECT_EQ(behind.err,
              "error: in.vob: cell 3 is to begin at 0:00:10.000, but the last unit begins at 0:00:01.540\n");
    expectNothingMade(folder);
    const ProcessResult between = scan(folder, { "--interval", "0.2" });
    EXPECT_EQ(between.exitCode, 1);
    EXPECT_EQ(between.err,
              "error: in.vob: no unit begins in cell 2, which is to begin at 0:00:00.200; the unit at sector "
              "3 is in cell 3 already. Cells consist of whole units, of about half a second\n");
    expectNothingMade(folder);
}

TEST(ScanProgram, OutputThatCannotBeMade)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", scanStream(scanUnits(3)));
    const ProcessResult result =
        runOrven({ "scan", "-q", "in.vob", "-o", "no/out.vob", "--scan-file", "out.scan" }, folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.err.starts_with("error: Error 4019: write file to destination failed (0x84000FB3)\n"))
        << result.err;
    EXPECT_TRUE(result.err.ends_with("out.vob: the file can't be written\n  more: orven explain 4019\n")) << result.err;
    EXPECT_FALSE(fs::exists(folder.root / "out.scan"));
}

// As many units as the scan holds, and one more.
TEST(ScanProgram, MostUnits)
{
    const TempDir folder;
    const ScanUnit shortUnit = { .pictures = 1, .sectors = 1 };
    writeFile(folder / u"in.vob", scanStream(scanUnits(1025, shortUnit)));
    const ProcessResult more = scan(folder);
    EXPECT_EQ(more.exitCode, 1);
    EXPECT_TRUE(holds(more.err, "  in.vob: at sector 1024 the scan would have to hold more than 1023 units"))
        << more.err;
    expectNothingMade(folder);
    writeFile(folder / u"in.vob", scanStream(scanUnits(1024, shortUnit)));
    EXPECT_EQ(scan(folder).exitCode, 0);
    EXPECT_EQ(readFile(folder / u"out.vob").size(), 1024 * 2048u);
    writeFile(folder / u"in.vob", scanStream(scanUnits(3000, { .sectors = 2 })));
    EXPECT_EQ(scan(folder).exitCode, 0);
    EXPECT_EQ(readFile(folder / u"out.scan").size(), 8u + 3000 * 96);
    writeFile(folder / u"in.vob", scanStream({ {}, { .sectors = 768 }, {} }));
    EXPECT_EQ(scan(folder).exitCode, 0);
}

// ---- what comes out -----------------------------------------------------------------------------------------------

// Three units of 12 pictures, three packs each, in one cell. Neighbours are three packs away. From the third unit to
// the first it is 86400 ticks, farther than half a second and not yet a second, and six packs.
TEST(ScanProgram, OneCell)
{
    const TempDir folder;
    const Bytes stream = scanStream(scanUnits(3));
    Bytes expected = stream;
    const uint64_t second = 3 * 2048, third = 6 * 2048;
    patch(expected, 1265, "80 00 00 03");            // next unit with video
    patch(expected, 1269 + 18 * 4, "80 00 00 06");   // half a second on
    patch(expected, 1345, "80 00 00 03");            // next unit
    patch(expected, second + 1265, "80 00 00 03");
    patch(expected, second + 1345, "80 00 00 03");
    patch(expected, second + 1349, "80 00 00 03");   // unit before
    patch(expected, second + 1353, "80 00 00 03");   // half a second back: as far as the cell goes
    patch(expected, second + 1429, "80 00 00 03");   // unit before with video
    patch(expected, third + 1349, "80 00 00 03");
    patch(expected, third + 1353, "80 00 00 06");
    patch(expected, third + 1429, "80 00 00 03");
    writeFile(folder / u"in.vob", stream);
    const ProcessResult result =
        runOrven({ "scan", "in.vob", "-o", "out.vob", "--scan-file", "out.scan" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "movie written to out.vob, 18432 bytes\n"
                          "scan file written to out.scan: 9 sectors, 3 units, 1 cell\n");
    EXPECT_EQ(result.err, "100%  checking\n100%  scanning\n");
    EXPECT_EQ(toHex(readFile(folder / u"out.vob")), toHex(expected));
    EXPECT_EQ(toHex(readFile(folder / u"out.scan")),
              toHex(scanFile(9, { { 0, 2, 9000, 12, 1 }, { 3, 5, 52200, 12, 1 }, { 6, 8, 95400, 12, 1 } })));
    EXPECT_TRUE(readFile(folder / u"in.vob") == stream);
}

// The second unit begins at 52200 ticks, 0.58 s, the third at 95400, 1.06 s. No pointer leads out of a cell, and the
// elapsed times begin anew; within cell 2 it is 12 pictures to the fourth unit.
Bytes dividedStream(const Bytes& stream)
{
    Bytes expected = stream;
    const uint64_t second = 3 * 2048, third = 6 * 2048, fourth = 9 * 2048;
    for (const uint64_t unit : { second, third }) {
        patch(expected, unit + 69, "00 00 00 40");
        patch(expected, unit + 1059, "00 00 00 40");
    }
    patch(expected, second + 1058, "02");
    patch(expected, third + 1058, "03");
    patch(expected, fourth + 1058, "03");
    patch(expected, fourth + 69, "00 00 00 52");
    patch(expected, fourth + 1059, "00 00 00 52");
    patch(expected, third + 1265, "80 00 00 03");
    patch(expected, third + 1345, "80 00 00 03");
    patch(expected, fourth + 1349, "80 00 00 03");
    patch(expected, fourth + 1353, "80 00 00 03");
    patch(expected, fourth + 1429, "80 00 00 03");
    return expected;
}

TEST(ScanProgram, CellsByList)
{
    const TempDir folder;
    const Bytes stream = scanStream(scanUnits(4));
    writeFile(folder / u"in.vob", stream);
    writeFile(folder / u"cells",
              std::string_view("# start, then two\r\n0\r\n0.58\r\n\r\n0:01.06 # the third unit\r\n"));
    const ProcessResult result = scan(folder, { "--cells", "cells" });
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(toHex(readFile(folder / u"out.vob")), toHex(dividedStream(stream)));
    EXPECT_EQ(
        toHex(readFile(folder / u"out.scan")),
        toHex(scanFile(
            12, { { 0, 2, 9000, 12, 1 }, { 3, 5, 52200, 12, 2 }, { 6, 8, 95400, 12, 3 }, { 9, 11, 138600, 12, 3 } })));
}

// A start one tick later puts a unit into the cell before. 1.060012 s is 95401.08 ticks.
TEST(ScanProgram, CellsByListToTheTick)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", scanStream(scanUnits(4)));
    writeFile(folder / u"cells", std::string_view("0.58\n1.060012\n"));
    EXPECT_EQ(scan(folder, { "--cells", "cells" }).exitCode, 0);
    EXPECT_EQ(
        toHex(readFile(folder / u"out.scan")),
        toHex(scanFile(
            12, { { 0, 2, 9000, 12, 1 }, { 3, 5, 52200, 12, 2 }, { 6, 8, 95400, 12, 2 }, { 9, 11, 138600, 12, 3 } })));
}

// 0.53 s are 47700 ticks: units at 9000, 52200, 95400 and 138600 are in cells 1, 2, 3 and 3.
TEST(ScanProgram, CellsByInterval)
{
    const TempDir folder;
    const Bytes stream = scanStream(scanUnits(4));
    writeFile(folder / u"in.vob", stream);
    writeFile(folder / u"out.vob", Bytes(100000));
    writeFile(folder / u"out.scan", Bytes(100000));
    const ProcessResult result =
        runOrven({ "scan", "in.vob", "-o", "out.vob", "--scan-file", "out.scan", "--interval", "0.53" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(holds(result.out, "12 sectors, 4 units, 3 cells\n")) << result.out;
    EXPECT_EQ(toHex(readFile(folder / u"out.vob")), toHex(dividedStream(stream)));
    EXPECT_EQ(readFile(folder / u"out.scan").size(), 8u + 4 * 96);
}

uint64_t big(const Bytes& bytes, uint64_t at, uint64_t width)
{
    uint64_t value = 0;
    for (uint64_t i = 0; i < width; i++) value = value << 8 | bytes.at(at + i);
    return value;
}

// A project that names the scan file takes its cells, and neither reads nor changes the movie.
TEST(ScanProgram, CellsComeToTheDisc)
{
    const TempDir folder;
    fs::create_directory(folder.root / "disc");
    writeFile(folder / u"in.vob", scanStream(scanUnits(4)));
    writeFile(folder / u"p.ini",
              std::string_view("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nsource=disc/VTS_01_1.VOB\n"
                               "streamscanfile=film.scan\n"));
    EXPECT_EQ(runOrven({ "scan", "-q", "in.vob", "-o", "disc/VTS_01_1.VOB", "--scan-file", "film.scan", "--interval",
                         "0.53" },
                       folder.root)
                  .exitCode,
              0);
    const Bytes movie = readFile(folder / u"disc/VTS_01_1.VOB");
    const ProcessResult result = runOrven({ "author", "-q", "p.ini", "-t", "disc" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(readFile(folder / u"disc/VTS_01_1.VOB") == movie);

    const Bytes ifo = readFile(folder / u"disc/VTS_01_0.IFO");
    const uint64_t chains = big(ifo, 0xCC, 4) * 2048, chain = chains + big(ifo, chains + 12, 4);
    EXPECT_EQ(toHex(ifo.data() + chain + 2, 2), "03 03");   // programs and cells
    const uint64_t cells = chain + big(ifo, chain + 232, 2);
    const char* const extents[] = { "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02",
                                    "00 00 00 03 00 00 00 00 00 00 00 03 00 00 00 05",
                                    "00 00 00 06 00 00 00 00 00 00 00 09 00 00 00 0B" };
    for (uint64_t i = 0; i < 3; i++) EXPECT_EQ(toHex(ifo.data() + cells + 24 * i + 8, 16), extents[i]) << i;
}

TEST(ScanProgram, PieceOfAPackIsLeftOut)
{
    const TempDir folder;
    const Bytes stream = scanStream(scanUnits(3));
    writeFile(folder / u"in.vob", stream + Bytes(100, 0));
    const ProcessResult result = scan(folder);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "warning: in.vob ends within a pack; its last 100 bytes are left out\n");
    EXPECT_EQ(readFile(folder / u"out.vob").size(), stream.size());
    EXPECT_EQ(toHex(Bytes(readFile(folder / u"out.scan"))).substr(0, 23), "01 00 00 00 09 00 00 00");
}

TEST(ScanProgram, PathsInAnyLanguage)
{
    const TempDir folder;
    const fs::path inner = folder.root / u"Проект \u00E4 \u65E5\u672C";
    fs::create_directory(inner);
    writeFile((inner / u"кино.vob").u16string(), scanStream(scanUnits(3)));
    const std::string name = toUtf8(u"Проект \u00E4 \u65E5\u672C/");
    const ProcessResult result = runOrven({ "scan", "-q", name + toUtf8(u"кино.vob"), "-o", name + toUtf8(u"диск.vob"),
                                            "--scan-file", name + toUtf8(u"диск.scan") },
                                          folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(readFile((inner / u"диск.vob").u16string()).size(), 9 * 2048u);
    EXPECT_EQ(readFile((inner / u"диск.scan").u16string()).size(), 8u + 3 * 96);
}

}   // namespace
