// chapters_program_test.cpp: `orven chapters`, by running it: what it refuses, where it stops, and the bytes that it
// changes.
#include "tests/host/process.h"
#include "tests/host/scan_stream.h"
#include "tests/host/usage.h"

#include <fstream>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t CELL_AT = 1058;

// Clocks of the units of scanStream: 0, 43200, 86400, ...
const char PROJECT[] = "[VTS_1]\nchapters=2\nchapter1=43200\nchapter2=129600,1,2\n";

ProcessResult chapters(const TempDir& folder, const std::vector<std::string>& vobs = { "m.vob" },
                       const std::vector<std::string>& more = { "--quiet" })
{
    std::vector<std::string> arguments = { "chapters", "--project", "p.ini", "--title-set", "1" };
    arguments.insert(arguments.end(), vobs.begin(), vobs.end());
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runOrven(arguments, folder.root);
}

// ---- usage --------------------------------------------------------------------------------------------------------

TEST(ChaptersProgram, WrongUsageIsExitCode2)
{
    const TempDir folder;
    const Bytes stream = scanStream(scanUnits(4));
    writeFile(folder / u"m.vob", stream);
    writeFile(folder / u"p.ini", std::string_view(PROJECT));
    writeFile(folder / u"padded.ini", std::string_view("[VTS_01]\nchapters=2\nchapter1=43200\n"));
    writeFile(folder / u"none.ini", std::string_view("[VTS_1]\nchapter1=43200\nchapters=many\n"));
    writeFile(folder / u"short.vob", Bytes(2047));
    writeFile(folder / u"torn.vob", Bytes(4095));
    fs::create_directory(folder.root / "dir");
    const UsageCase cases[] = {
        { "no movie", { "chapters", "-p", "p.ini", "-n", "1" }, "VOB" },
        { "no project", { "chapters", "m.vob", "-n", "1" }, "--project" },
        { "no title set", { "chapters", "m.vob", "-p", "p.ini" }, "--title-set" },
        { "title set 0", { "chapters", "m.vob", "-p", "p.ini", "-n", "0" }, "--title-set" },
        { "title set 100", { "chapters", "m.vob", "-p", "p.ini", "-n", "100" }, "--title-set" },
        { "movie is missing",
          { "chapters", "no.vob", "-p", "p.ini", "-n", "1" },
          "error: no.vob: there is no such file" },
        { "movie is a folder", { "chapters", "dir", "-p", "p.ini", "-n", "1" }, "error: dir: that is a folder\n" },
        { "movie twice",
          { "chapters", "m.vob", "./m.vob", "-p", "p.ini", "-n", "1" },
          "error: m.vob is named twice\n" },
        { "short movie",
          { "chapters", "short.vob", "-p", "p.ini", "-n", "1" },
          "error: short.vob holds 2047 bytes, less than one pack of 2048\n" },
        { "torn movie that goes on",
          { "chapters", "torn.vob", "m.vob", "-p", "p.ini", "-n", "1" },
          "error: torn.vob ends within a pack, so that no further file can continue it\n" },
        { "project is missing",
          { "chapters", "m.vob", "-p", "no.ini", "-n", "1" },
          "error: there is no project file no.ini\n" },
        { "no chapters in that title set",
          { "chapters", "m.vob", "-p", "p.ini", "-n", "2" },
          "error: the project p.ini has no `chapters` in section [VTS_2]\n" },
        { "chapters of no number",
          { "chapters", "m.vob", "-p", "none.ini", "-n", "1" },
          "error: the project none.ini has no `chapters` in section [VTS_1]\n" },
        { "section with a zero",
          { "chapters", "m.vob", "-p", "padded.ini", "-n", "1" },
          "error: the project padded.ini has no `chapters` in section [VTS_1]; its section [VTS_01] is not looked at "
          "by "
          "this command\n" },
    };
    for (const UsageCase& usage : cases) {
        SCOPED_TRACE(usage.what);
        expectRefused(usage, folder.root);
        EXPECT_TRUE(readFile(folder / u"m.vob") == stream);
    }
}

TEST(ChaptersProgram, MovieThatCannotBeWritten)
{
    const TempDir folder;
    const fs::path movie = folder.root / "m.vob";
    writeFile(movie.u16string(), scanStream(scanUnits(4)));
    writeFile(folder / u"p.ini", std::string_view(PROJECT));
    fs::permissions(movie, fs::perms::owner_read);
    if (std::fstream(movie, std::ios::in | std::ios::out | std::ios::binary)) {
        fs::permissions(movie, fs::perms::owner_all);
        GTEST_SKIP() << "nothing is refused to this user";
    }
    const ProcessResult result = chapters(folder);
    fs::permissions(movie, fs::perms::owner_all);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "error: m.vob: the file can't be opened for writing\n");
}

TEST(ChaptersProgram, HelpTeaches)
{
    const TempDir folder;
    const ProcessResult help = runOrven({ "chapters", "--help" }, folder.root);
    EXPECT_EQ(help.exitCode, 0);
    for (const char* part : { "VOB", "--project", "--title-set", "--quiet",
                              "orven chapters VTS_01_1.VOB VTS_01_2.VOB --project project.ini --title-set 1" }) {
        EXPECT_NE(help.out.find(part), std::string::npos) << part;
    }
    EXPECT_NE(runOrven({ "--help" }, folder.root).out.find("Renumber the cells of a movie"), std::string::npos);
    for (const char* code : { "4015", "9001" }) {
        const ProcessResult result = runOrven({ "explain", code }, folder.root);
        EXPECT_GT(result.out.size() - result.out.find("\n\n"), 80u) << result.out;
    }
}

// ---- movies -------------------------------------------------------------------------------------------------------

// Units at 0, 43200, 86400 and 129600: the chapters at 43200 and 129600 open cells 2 and 3.
TEST(ChaptersProgram, RenumbersCells)
{
    const TempDir folder;
    const Bytes stream = scanStream(scanUnits(4));
    Bytes expected = stream;
    expected[3 * 2048 + CELL_AT] = 2;
    expected[6 * 2048 + CELL_AT] = 2;
    expected[9 * 2048 + CELL_AT] = 3;
    writeFile(folder / u"m.vob", stream);
    writeFile(folder / u"p.ini", std::string_view(PROJECT));
    const ProcessResult first = chapters(folder, { "m.vob" }, {});
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(first.out, "4 navigation packs looked at, 3 changed; cells 1 to 3\n");
    EXPECT_TRUE(first.err.ends_with("100%  looking at packs\n 30%  writing packs\n 60%  writing packs\n"
                                    "100%  writing packs\n"))
        << first.err;
    EXPECT_EQ(toHex(readFile(folder / u"m.vob")), toHex(expected));
    // Once more there is nothing to change, and the file is not touched.
    const fs::file_time_type time = fs::last_write_time(folder.root / "m.vob");
    const ProcessResult second = chapters(folder, { "m.vob" }, {});
    EXPECT_EQ(second.out, "4 navigation packs looked at, 0 changed; cells 1 to 3\n");
    EXPECT_EQ(fs::last_write_time(folder.root / "m.vob"), time);
    const ProcessResult quiet = chapters(folder);
    EXPECT_EQ(quiet.exitCode, 0);
    EXPECT_EQ(quiet.out + quiet.err, "");
}

TEST(ChaptersProgram, ChapterAtTheStartIsTold)
{
    const TempDir folder;
    writeFile(folder / u"m.vob", scanStream(scanUnits(4)));
    writeFile(folder / u"p.ini", std::string_view("[VTS_1]\nchapters=2\nchapter1=0\nchapter2=86400\n"));
    const ProcessResult result = chapters(folder, { "m.vob" }, { "-q" });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err,
              "warning: the first unit is in cell 2, since a chapter lies at its clock or before it; the tables of a "
              "disc begin with cell 1. Write `chapter1=4294967295`: authoring does not look at it\n");
    const Bytes movie = readFile(folder / u"m.vob");
    for (uint64_t unit = 0; unit < 4; unit++) EXPECT_EQ(movie[unit * 3 * 2048 + CELL_AT], unit < 2 ? 2 : 3) << unit;
}

// A first chapter at a clock that no movie reaches: the cells are those that authoring makes of the same project.
TEST(ChaptersProgram, OneProjectServesAuthoringToo)
{
    const TempDir folder;
    writeFile(folder / u"m.vob", makeMovie({ .vobus = vobus(20), .streams = { ac3Stream() } }).bytes);
    writeFile(folder / u"p.ini",
              std::string_view("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nsource=m.vob\nchapters=3\n"
                               "chapter1=4294967295\nchapter2=200000\nchapter3=600000\n"));
    EXPECT_EQ(runOrven({ "author", "-q", "p.ini", "-t", "disc" }, folder.root).exitCode, 0);
    const Bytes authored = readFile(folder / u"m.vob");
    const ProcessResult result = chapters(folder, { "m.vob" }, {});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "20 navigation packs looked at, 0 changed; cells 1 to 3\n");
    EXPECT_TRUE(readFile(folder / u"m.vob") == authored);
    // Units of 43200 ticks: those at 216000 and 604800 are the first to have reached 200000 and 600000.
    uint64_t unit = 0;
    for (uint64_t at = 0; at < authored.size(); at += PACK_BYTES) {
        if (authored[at + 17] != 0xBB) continue;
        EXPECT_EQ(authored[at + CELL_AT], unit < 5 ? 1 : unit < 14 ? 2 : 3) << unit;
        unit++;
    }
    EXPECT_EQ(unit, 20u);
}

// Behind the end of a sequence the next navigation pack is looked for, also behind packs of no unit; packs in front of
// the first one are passed over.
TEST(ChaptersProgram, SequencesOneBehindTheOther)
{
    const TempDir folder;
    const Bytes lead = videoPack(Bytes(pesCapacity(), 1));
    const Bytes stream =
        lead + scanStream({ {}, { .ends = true }, {}, {} }) + lead + lead + scanStream(scanUnits(2)) + Bytes(77, 0);
    Bytes expected = stream;
    for (const uint64_t sector : { 4u, 7u, 18u }) expected[sector * 2048 + CELL_AT] = 2;
    expected[10 * 2048 + CELL_AT] = 3;
    writeFile(folder / u"m.vob", stream);
    writeFile(folder / u"p.ini", std::string_view(PROJECT));
    const ProcessResult result = chapters(folder, { "m.vob" }, {});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "6 navigation packs looked at, 4 changed; cells 1 to 2\n");
    EXPECT_EQ(toHex(readFile(folder / u"m.vob")), toHex(expected));
}

// A movie of several files, cut within a unit.
TEST(ChaptersProgram, MovieOfSeveralFiles)
{
    const TempDir folder;
    const Bytes stream = scanStream(scanUnits(6));
    writeFile(folder / u"p.ini", std::string_view(PROJECT));
    writeFile(folder / u"one.vob", stream);
    EXPECT_EQ(chapters(folder, { "one.vob" }).exitCode, 0);
    const Bytes expected = readFile(folder / u"one.vob");
    writeFile(folder / u"1.vob", Bytes(stream.begin(), stream.begin() + 4 * 2048));
    writeFile(folder / u"2.vob", Bytes(stream.begin() + 4 * 2048, stream.begin() + 6 * 2048));
    writeFile(folder / u"3.vob", Bytes(stream.begin() + 6 * 2048, stream.end()));
    const ProcessResult all = chapters(folder, { "1.vob", "2.vob", "3.vob" }, {});
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_EQ(all.out, "6 navigation packs looked at, 5 changed; cells 1 to 3\n");
    EXPECT_TRUE(readFile(folder / u"1.vob") + readFile(folder / u"2.vob") + readFile(folder / u"3.vob") == expected);

    const ProcessResult alone = chapters(folder, { "1.vob" });
    EXPECT_EQ(alone.exitCode, 0);
    EXPECT_EQ(alone.err, "warning: the last unit goes on behind the end of 1.vob: name the further files of the movie "
                         "too, behind the first\n");
}

// An authoring run leaves no mark at the end of a movie: its last unit leads just there.
TEST(ChaptersProgram, MovieWithoutAMarkAtItsEnd)
{
    const TempDir folder;
    Bytes stream = scanStream(scanUnits(4));
    patch(stream, 9 * 2048 + 65, "00 00 00 01");
    writeFile(folder / u"m.vob", stream);
    writeFile(folder / u"p.ini", std::string_view(PROJECT));
    const ProcessResult result = chapters(folder);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(readFile(folder / u"m.vob")[9 * 2048 + CELL_AT], 3);
}

// ---- walks that lead astray ---------------------------------------------------------------------------------------

struct FaultCase {
    const char* what;
    Bytes stream;
    const char* project;
    const char* err;   // all that it says
};

Bytes patched(Bytes bytes, uint64_t at, std::string_view hex)
{
    patch(bytes, at, hex);
    return bytes;
}

std::string project(uint64_t count)
{
    return "[VTS_1]\nchapters=" + std::to_string(count) + "\nchapter1=43200\n";
}

TEST(ChaptersProgram, FaultsLeaveTheMovieAlone)
{
    const Bytes sound = scanStream(scanUnits(4));
    const FaultCase cases[] = {
        { "no stream", Bytes(5000, 'x'), PROJECT,
          "error: m.vob: it has no navigation packs, as the movies of a DVD have\n" },
        { "pack that leads to none", scanStream({ {}, {}, { .lastSector = 1 }, {} }), PROJECT,
          "error: Error 9001: current block is not a NavPack (0x84002329)\n  m.vob, sector 8: a navigation pack should "
          "be here, since the one in m.vob, sector 6 tells so\n  more: orven explain 9001\n" },
        { "pack that leads to itself", scanStream({ {}, {}, { .lastSector = 0 }, {} }), PROJECT,
          "error: Error 9001: current block is not a NavPack (0x84002329)\n  m.vob, sector 7: a navigation pack should "
          "be here, since the one in m.vob, sector 6 tells so\n  more: orven explain 9001\n" },
        { "pack that leads to what is no pack", patched(sound, 9 * 2048, "00 00 02"), PROJECT,
          "error: Error 4015: bad sector structure (0x84000FAF)\n  m.vob, sector 9: a navigation pack should be here, "
          "since the one in m.vob, sector 6 tells so\n  more: orven explain 4015\n" },
        { "pack that leads behind the end", scanStream({ {}, { .lastSector = 0xFFFFFFF0 }, {}, {} }), PROJECT,
          "error: m.vob, sector 3: its unit would reach behind the end, but m.vob, sector 6 holds a further navigation "
          "pack\n" },
        { "empty pack", patched(sound, 9 * 2048 + 57, "00 00 00 00 00 00 00 00"), PROJECT,
          "error: m.vob, sector 9: the navigation pack is empty; an authoring run that names the movie as `source` "
          "fills it\n" },
        { "too many chapters", sound, "[VTS_1]\nchapters=255\nchapter1=43200\n",
          "error: Error 2016: maximum chapter count (255) exhausted (0x840007E0)\n  m.vob, sector 0: the library goes "
          "no further\n  more: orven explain 2016\n" },
    };
    for (const FaultCase& test : cases) {
        SCOPED_TRACE(test.what);
        const TempDir folder;
        writeFile(folder / u"m.vob", test.stream);
        writeFile(folder / u"p.ini", std::string_view(test.project));
        const ProcessResult result = chapters(folder);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, test.err);
        EXPECT_TRUE(readFile(folder / u"m.vob") == test.stream);
    }
}

// Units of one pack: each leads to the next sector, with 0 to go, up to the end.
TEST(ChaptersProgram, UnitsOfOnePack)
{
    const TempDir folder;
    writeFile(folder / u"m.vob", scanStream(scanUnits(300, { .sectors = 1 })));
    writeFile(folder / u"p.ini", project(254));
    const ProcessResult result = chapters(folder, { "m.vob" }, {});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    // A chapter without a position has that of the one before: 254 of them lie at 43200.
    EXPECT_EQ(result.out, "300 navigation packs looked at, 299 changed; cells 1 to 255\n");
    const Bytes movie = readFile(folder / u"m.vob");
    EXPECT_EQ(movie[CELL_AT], 1);
    EXPECT_EQ(movie[299 * 2048 + CELL_AT], 255);
}

TEST(ChaptersProgram, PathsInAnyLanguage)
{
    const TempDir folder;
    const fs::path inner = folder.root / u"Проект \u00E4 \u65E5\u672C";
    fs::create_directory(inner);
    writeFile((inner / u"кино.vob").u16string(), scanStream(scanUnits(4)));
    writeFile((inner / u"проект.ini").u16string(), std::string_view(PROJECT));
    const std::string name = toUtf8(u"Проект \u00E4 \u65E5\u672C/");
    const ProcessResult result = runOrven(
        { "chapters", name + toUtf8(u"кино.vob"), "-p", name + toUtf8(u"проект.ini"), "-n", "1" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "4 navigation packs looked at, 3 changed; cells 1 to 3\n");
}

}   // namespace
