// program_test.cpp: the command line of `orven`, by running it: usage, help, failures with their lines, whole runs.
#include "tests/host/process.h"
#include "tests/support/files.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>
#include <sstream>

namespace fs = std::filesystem;

namespace {

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

// ---- usage ------------------------------------------------------------------------------------------------------

struct UsageCase {
    const char* what;
    std::vector<std::string> arguments;
    const char* err;   // part of what it says
};

TEST(Program, WrongUsageIsExitCode2)
{
    const TempDir folder;
    writeFile(folder / u"file", std::string_view("x"));
    fs::create_directory(folder.root / "dir");
    const UsageCase cases[] = {
        { "nothing", {}, "Usage: orven" },
        { "unknown command", { "burn" }, "error: there is no command burn; see orven --help\n" },
        { "empty command", { "" }, "error: there is no command " },
        { "unknown option", { "author", "file", "--target", "t", "--fast" }, "--fast" },
        { "no project", { "author", "--target", "t" }, "PROJECT" },
        { "no target", { "author", "file" }, "--target" },
        { "two projects", { "author", "file", "file", "--target", "t" }, "file" },
        { "project is missing",
          { "author", "none.ini", "--target", "t" },
          "error: there is no project file none.ini\n" },
        { "project is a folder", { "author", "dir", "--target", "t" }, "error: dir is a folder" },
        { "target is a file", { "author", "file", "--target", "file" }, "error: the target file is a file" },
        { "previous is missing",
          { "author", "file", "--target", "t", "--previous", "none" },
          "error: there is no previous folder none\n" },
        { "log is a folder",
          { "author", "file", "--target", "t", "--log", "dir" },
          "error: the log dir is a folder\n" },
        { "log can't be made",
          { "author", "file", "--target", "t", "--log", "no/such/run.log" },
          "can't be written\n" },
        { "no code", { "explain" }, "CODE" },
        { "not a code", { "explain", "twelve" }, "error: twelve is no result code" },
    };
    for (const UsageCase& usage : cases) {
        SCOPED_TRACE(usage.what);
        const ProcessResult result = runOrven(usage.arguments, folder.root);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(holds(result.err, usage.err)) << result.err;
    }
    EXPECT_FALSE(fs::exists(folder.root / "t"));   // a refused call leaves no folder behind
}

TEST(Program, HelpTeaches)
{
    const TempDir folder;
    const ProcessResult help = runOrven({ "--help" }, folder.root);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.err, "");
    for (const char* part :
         { "Usage: orven", "author", "explain", "Examples:", "--previous disc/VIDEO_TS", "Exit codes: 0 done" }) {
        EXPECT_TRUE(holds(help.out, part)) << part;
    }
    const ProcessResult author = runOrven({ "author", "--help" }, folder.root);
    EXPECT_EQ(author.exitCode, 0);
    for (const char* part :
         { "PROJECT", "--target", "--previous", "--log", "--quiet", "VTS_01_1.VOB", "A small project:" }) {
        EXPECT_TRUE(holds(author.out, part)) << part;
    }
}

TEST(Program, Version)
{
    const TempDir folder;
    const ProcessResult result = runOrven({ "--version" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "orven " ORVEN_VERSION "\n");
    EXPECT_EQ(result.err, "");
}

TEST(Program, Explain)
{
    const TempDir folder;
    for (const char* code : { "1012", "0x840003F4", "2214593524" }) {
        const ProcessResult result = runOrven({ "explain", code }, folder.root);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_TRUE(
            result.out.starts_with("Error 1012: no titlesets defined (0x840003F4)\n\n`titlesets` in section [VMG]"))
            << result.out;
    }
    const ProcessResult nothing = runOrven({ "explain", "-3" }, folder.root);
    EXPECT_TRUE(
        nothing.out.starts_with("the sources of a title hold no whole sector of 2048 bytes (0xFFFFFFFFFFFFFFFD)\n"))
        << nothing.out;
    const ProcessResult unknown = runOrven({ "explain", "0x84001388" }, folder.root);
    EXPECT_EQ(
        unknown.out,
        "error: there is no VIDEO_TS.IFO file (0x84001388)\n\nA result of the functions that read finished discs.\n");
    const ProcessResult own = runOrven({ "explain", "0x8400040B" }, folder.root);
    EXPECT_TRUE(own.out.starts_with("more than 8 audio streams (0x8400040B)\n")) << own.out;
}

// ---- failing runs -----------------------------------------------------------------------------------------------

struct FailureCase {
    const char* what;
    const char* project;
    const char* err;   // all that it says
};

const char HEAD[] = "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n";

TEST(Program, FailureNamesCodeLineAndLog)
{
    const FailureCase cases[] = {
        { "empty project", "",
          "error: Error 1009: no version number found (0x840003F1)\n"
          "  p.ini: there is no section [COMMON] with a key `version`\n"
          "  more: orven explain 1009\n" },
        { "video mode", "[COMMON]\nversion=1.0\nmode=SECAM\n",
          "error: Error 1011: unknown video mode found (0x840003F3)\n"
          "  p.ini:3: mode=SECAM\n"
          "  more: orven explain 1011\n" },
        { "no title sets", "[COMMON]\nversion=1.0\n[VMG]\nmenus=0\n",
          "error: Error 1012: no titlesets defined (0x840003F4)\n"
          "  p.ini:3: [VMG] has no `titlesets`\n"
          "  more: orven explain 1012\n" },
        { "too many title sets", "[COMMON]\nversion=1.0\n[VMG]\ntitlesets = 100\n",
          "error: Error 2007: wrong number of titlesets (max. 99) (0x840007D7)\n"
          "  p.ini:4: titlesets = 100\n"
          "  more: orven explain 2007\n" },
        { "resolution", "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nresolution=720x480\n",
          "error: Error 1016: wrong resolution (0x840003F8)\n"
          "  p.ini:6: resolution=720x480\n"
          "  log: Unknown Resolutio...\n"
          "  more: orven explain 1016\n" },
        { "colour", "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\ncolortable3=1,2\n",
          "error: Error 1005: comma expected (0x840003ED)\n"
          "  p.ini:6: colortable3=1,2\n"
          "  log: No comma found after <green>...\n"
          "  more: orven explain 1005\n" },
        { "eight streams", "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nastreams=9\n",
          "error: more than 8 audio streams (0x8400040B)\n"
          "  p.ini:6: astreams=9\n"
          "  more: orven explain 1035\n" },
        { "text that would steer a terminal", "[COMMON]\nversion=1.0\nmode=\x1B[2J\n",
          "error: Error 1000: unknown char in ini file (0x840003E8)\n"
          "  p.ini:3: mode=?[2J\n"
          "  log: Unknown ASCII characte...\n"
          "  more: orven explain 1000\n" },
    };
    for (const FailureCase& failure : cases) {
        SCOPED_TRACE(failure.what);
        const TempDir folder;
        writeFile(folder / u"p.ini", std::string_view(failure.project));
        const ProcessResult result = runOrven({ "author", "p.ini", "--target", "t" }, folder.root);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, failure.err);
    }
}

TEST(Program, FailureNamesTheMissingMovie)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", std::string(HEAD) + "[VTS_1]\nsource=" + toUtf8(folder / u"none.vob") + "\n");
    const ProcessResult result = runOrven({ "author", "p.ini", "--target", "t" }, folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(
        result.err.starts_with("error: Error 4020: read file from source failed (0x84000FB4)\n  p.ini:6: source="))
        << result.err;
    EXPECT_TRUE(holds(result.err, "\n    there is no such file\n  log: Failed to open file in <orv")) << result.err;
}

TEST(Program, FailureOfAnEmptyMovie)
{
    const TempDir folder;
    writeFile(folder / u"empty.vob", Bytes());
    writeFile(folder / u"p.ini", std::string(HEAD) + "[VTS_1]\nsource=" + toUtf8(folder / u"empty.vob") + "\n");
    const ProcessResult result = runOrven({ "author", "p.ini", "--quiet", "--target", "t" }, folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.err.starts_with(
        "error: the sources of a title hold no whole sector of 2048 bytes (0xFFFFFFFFFFFFFFFD)\n  p.ini:6: source="))
        << result.err;
    EXPECT_TRUE(
        holds(result.err,
              "\n    the file holds 0 bytes, less than one sector of 2048\n  more: orven explain 0xFFFFFFFFFFFFFFFD\n"))
        << result.err;
}

// The user's log is appended to and stays; what stood in it before is not shown again.
TEST(Program, LogOfTheUser)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", std::string(HEAD) + "[VTS_1]\nresolution=1x1\n");
    const std::vector<std::string> arguments = { "author", "p.ini", "--target", "t", "--log", "run.log" };
    const ProcessResult first = runOrven(arguments, folder.root);
    const Bytes once = readFile(folder / u"run.log");
    const ProcessResult second = runOrven(arguments, folder.root);
    EXPECT_EQ(first.exitCode, 1);
    EXPECT_EQ(first.err, second.err);
    EXPECT_TRUE(holds(first.err, "  log: Unknown Resolut...\n")) << first.err;
    // "Error: 84", then 15 of the 30 characters of the text; CR LF
    EXPECT_EQ(once.size(), 18u + 30u + 4u);
    EXPECT_EQ(readFile(folder / u"run.log").size(), 2 * once.size());
}

// ---- whole runs -------------------------------------------------------------------------------------------------

const char STAGES[] = "  title set 1: movie\n  title set 1: tables\n  title set 1: backup\n  title set 2: movie\n"
                      "  title set 2: tables\n  title set 2: backup\n  disc manager: tables\n  disc manager: backup\n";

// Lines without their percentages.
std::string stagesOf(const std::string& lines)
{
    std::string stages;
    std::istringstream rest(lines);
    for (std::string line; std::getline(rest, line);) {
        EXPECT_TRUE(line.size() > 6 && line.substr(3, 3) == "%  ") << line;
        stages += line.substr(std::min<size_t>(line.size(), 4)) + "\n";
    }
    return stages;
}

std::string twoTitleSets(const TempDir& folder)
{
    const Movie movie = makeMovie({ .vobus = vobus(20), .streams = { ac3Stream() } });
    fs::create_directory(folder.root / "movies");
    writeFile(folder / u"movies/1.vob", movie.bytes);
    writeFile(folder / u"movies/2.vob", movie.bytes);
    return "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=2\n[VTS_1]\naudio=AC3\nsource=movies/1.vob\n"
           "[VTS_2]\naudio=AC3\nsource=movies/2.vob\n";
}

TEST(Program, AuthorsADisc)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", twoTitleSets(folder));
    const ProcessResult result = runOrven({ "author", "p.ini", "--target", "a/b/VIDEO_TS" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(stagesOf(result.err), STAGES) << result.err;
    EXPECT_TRUE(result.err.ends_with("100%  disc manager: backup\n")) << result.err;
    EXPECT_TRUE(result.out.starts_with("disc written to a")) << result.out;
    const fs::path target = folder.root / "a" / "b" / "VIDEO_TS";
    for (const char* name :
         { "VIDEO_TS.IFO", "VIDEO_TS.BUP", "VTS_01_0.IFO", "VTS_01_0.BUP", "VTS_02_0.IFO", "VTS_02_0.BUP" }) {
        EXPECT_TRUE(fs::exists(target / name)) << name;
    }
    const Bytes manager = readFile((target / "VIDEO_TS.IFO").u16string());
    EXPECT_EQ(std::string(manager.begin(), manager.begin() + 12), "DVDVIDEO-VMG");
}

TEST(Program, QuietRunSaysNothing)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", twoTitleSets(folder));
    const ProcessResult result = runOrven({ "author", "-q", "p.ini", "-t", "t" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
}

TEST(Program, PathsInAnyLanguage)
{
    const TempDir folder;
    const fs::path inner = folder.root / u"Проект \u00E4 \u65E5\u672C";
    fs::create_directory(inner);
    writeFile((inner / u"проект.ini").u16string(), twoTitleSets(folder));
    const std::u8string name = u8"Проект \u00E4 \u65E5\u672C";
    const std::string path(name.begin(), name.end());
    const std::u8string file = u8"/проект.ini";
    const ProcessResult result =
        runOrven({ "author", path + std::string(file.begin(), file.end()), "--target", path + "/disc" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(fs::exists(inner / "disc" / "VIDEO_TS.IFO"));
    EXPECT_TRUE(holds(result.out, path)) << result.out;
}

TEST(Program, SkippedTitleSetComesFromThePreviousFolder)
{
    const TempDir folder;
    const std::string project = twoTitleSets(folder);
    writeFile(folder / u"p.ini", project);
    ASSERT_EQ(runOrven({ "author", "p.ini", "-t", "first" }, folder.root).exitCode, 0);
    writeFile(folder / u"q.ini", project + "skipvts=1\n");
    const ProcessResult refused = runOrven({ "author", "q.ini", "-t", "second" }, folder.root);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(holds(refused.err,
                      "error: Error 2020: can't open VTS-IFO previously authored (0x840007E4)\n  q.ini:11: skipvts=1\n"
                      "    no earlier run has left VTS_02_0.IFO in the target folder\n"))
        << refused.err;
    const ProcessResult result = runOrven({ "author", "q.ini", "-t", "second", "--previous", "first" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(readFile((folder.root / "first/VIDEO_TS.IFO").u16string()),
              readFile((folder.root / "second/VIDEO_TS.IFO").u16string()));
    EXPECT_FALSE(fs::exists(folder.root / "second/VTS_02_0.IFO"));
}

// A fault that the library logs but passes over does not fail a run, yet it is shown.
TEST(Program, SuccessShowsWhatWasLogged)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", twoTitleSets(folder) + "chapters=1\nchapter1=\x01\n");
    const ProcessResult result = runOrven({ "author", "-q", "p.ini", "-t", "t" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "warning: the disc is written, but the library has logged:\n"
                          "  log: Unknown ASCII charac...\n"
                          "  log: Unknown ASCII charac...\n");
}

}   // namespace
