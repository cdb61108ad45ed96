// fix_program_test.cpp: `orven fix`, by running it on discs made of little more than their headers.
#include "tests/host/process.h"
#include "tests/host/scan_stream.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

Bytes table(const char* mark, uint64_t sectors)
{
    Bytes bytes(sectors * 2048, 0xEE);   // what is not rewritten stays
    std::copy(mark, mark + 12, bytes.begin());
    return bytes;
}

/** VIDEO_TS.IFO of two sectors, whose second one is the title search table. */
Bytes manager(uint8_t titleSets)
{
    Bytes bytes = table("DVDVIDEO-VMG", 2);
    bytes[0x3E] = 0;
    bytes[0x3F] = titleSets;
    patch(bytes, 0xC4, "00 00 00 01");
    return bytes;
}

void write(const TempDir& folder, const std::string& name, const Bytes& bytes)
{
    writeFile((folder.root / name).u16string(), bytes);
}

Bytes read(const TempDir& folder, const std::string& name)
{
    return readFile((folder.root / name).u16string());
}

const char PROJECT[] = "[VTS_1]\nsource=a\n[VTS_02]\nskipvts=1\n";

/** A disc of two title sets: the first with a menu of 4 sectors and movies of 5 and 6, the second with one of 7. */
void makeDisc(const TempDir& folder, uint64_t managerVob = 3)
{
    fs::create_directories(folder.root / "disc" / "VIDEO_TS");
    writeFile(folder / u"p.ini", std::string_view(PROJECT));
    const std::string disc = "disc/VIDEO_TS/";
    write(folder, disc + "VIDEO_TS.IFO", manager(2));
    write(folder, disc + "VIDEO_TS.VOB", Bytes(managerVob * 2048));
    write(folder, disc + "VIDEO_TS.BUP", Bytes(2 * 2048));
    write(folder, disc + "VTS_01_0.IFO", table("DVDVIDEO-VTS", 2));
    write(folder, disc + "VTS_01_0.VOB", Bytes(4 * 2048));
    write(folder, disc + "VTS_01_0.BUP", Bytes(10));
    write(folder, disc + "VTS_01_1.VOB", Bytes(5 * 2048));
    write(folder, disc + "VTS_01_2.VOB", Bytes(6 * 2048 + 100));
    write(folder, disc + "VTS_02_0.IFO", table("DVDVIDEO-VTS", 1));
    write(folder, disc + "VTS_02_1.VOB", Bytes(7 * 2048));
}

/** The manager counts 2 sectors of IFO twice and 2 of backup. Title set 1 has 2 + 4 + 11 + 2 sectors, title set 2 has
 *  1 + 7 + 1. */
Bytes fixedManager()
{
    Bytes bytes = manager(2);
    patch(bytes, 0x0C, "00 00 00 05");
    patch(bytes, 0x1C, "00 00 00 01");
    patch(bytes, 0xC0, "00 00 00 02");
    patch(bytes, 2048 + 16, "00 00 00 06");
    patch(bytes, 2048 + 28, "00 00 00 19");
    return bytes;
}

Bytes fixedTitleSet1()
{
    Bytes bytes = table("DVDVIDEO-VTS", 2);
    patch(bytes, 0x0C, "00 00 00 12");
    patch(bytes, 0x1C, "00 00 00 01");
    patch(bytes, 0xC0, "00 00 00 02 00 00 00 06");
    return bytes;
}

Bytes fixedTitleSet2()
{
    Bytes bytes = table("DVDVIDEO-VTS", 1);
    patch(bytes, 0x0C, "00 00 00 08");
    patch(bytes, 0x1C, "00 00 00 00");
    patch(bytes, 0xC0, "00 00 00 01 00 00 00 01");
    return bytes;
}

void expectFixed(const TempDir& folder)
{
    for (const char* extension : { "IFO", "BUP" }) {
        const std::string disc = "disc/VIDEO_TS/";
        EXPECT_EQ(toHex(read(folder, disc + "VIDEO_TS." + extension)), toHex(fixedManager())) << extension;
        EXPECT_EQ(toHex(read(folder, disc + "VTS_01_0." + extension)), toHex(fixedTitleSet1())) << extension;
        EXPECT_EQ(toHex(read(folder, disc + "VTS_02_0." + extension)), toHex(fixedTitleSet2())) << extension;
    }
}

// Every file of the disc with its bytes.
std::vector<std::pair<std::string, Bytes>> contentOf(const TempDir& folder)
{
    std::vector<std::pair<std::string, Bytes>> content;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder.root)) {
        if (entry.is_regular_file()) content.emplace_back(entry.path().string(), readFile(entry.path().u16string()));
    }
    std::sort(content.begin(), content.end());
    return content;
}

// ---- discs that are fixed -----------------------------------------------------------------------------------------

const char WARNING[] =
    "warning: the tables let the first title set begin at sector 6, and behind VIDEO_TS.IFO, VIDEO_TS.VOB and "
    "VIDEO_TS.BUP it lies at 7; players that go by file names don't mind, and `orven author` writes exact tables\n";

TEST(FixProgram, BringsTablesIntoLine)
{
    for (const char* disc : { "disc/VIDEO_TS", "disc", "disc/" }) {
        SCOPED_TRACE(disc);
        const TempDir folder;
        makeDisc(folder);
        const ProcessResult result = runOrven({ "fix", disc, "--project", "p.ini" }, folder.root);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, WARNING);
        EXPECT_TRUE(result.out.ends_with("VIDEO_TS brought into line, with 2 title sets\n")) << result.out;
        expectFixed(folder);
    }
}

// The tables are right by chance where the manager's VOB is as long as its IFO.
TEST(FixProgram, QuietWithoutAWarning)
{
    const TempDir folder;
    makeDisc(folder, 2);
    const ProcessResult result = runOrven({ "fix", "-q", "disc", "-p", "p.ini" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    expectFixed(folder);
    EXPECT_EQ(runOrven({ "fix", "-q", "disc", "-p", "p.ini" }, folder.root).exitCode, 0);
    expectFixed(folder);
}

// Without a backup the manager is 2 x 2 sectors long.
TEST(FixProgram, MakesMissingBackups)
{
    const TempDir folder;
    makeDisc(folder, 0);
    for (const char* name : { "VIDEO_TS.BUP", "VIDEO_TS.VOB", "VTS_01_0.BUP" })
        fs::remove(folder.root / "disc" / "VIDEO_TS" / name);
    const ProcessResult result = runOrven({ "fix", "disc", "-p", "p.ini" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const Bytes ifo = read(folder, "disc/VIDEO_TS/VIDEO_TS.IFO");
    EXPECT_EQ(toHex(ifo.data() + 0x0C, 4), "00 00 00 03");
    EXPECT_EQ(toHex(ifo.data() + 2048 + 16, 4), "00 00 00 04");
    EXPECT_TRUE(read(folder, "disc/VIDEO_TS/VIDEO_TS.BUP") == ifo);
    EXPECT_TRUE(read(folder, "disc/VIDEO_TS/VTS_01_0.BUP") == fixedTitleSet1());
}

// Title set 1 is skipped: it counts with the files of the earlier folder, 1 + 3 + 1 sectors, and is not touched.
TEST(FixProgram, SkippedTitleSetWithANinthVob)
{
    const TempDir folder;
    makeDisc(folder);
    writeFile(folder / u"p.ini", std::string_view("[VTS_1]\nskipvts=1\n"));
    fs::create_directory(folder.root / "earlier");
    write(folder, "earlier/VTS_01_0.IFO", table("DVDVIDEO-VTS", 1));
    write(folder, "earlier/VTS_01_9.VOB", Bytes(3 * 2048));
    const ProcessResult result = runOrven({ "fix", "disc", "-p", "p.ini", "--previous", "earlier" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(result.out.ends_with("with 2 title sets, of which 1 skipped\n")) << result.out;
    const Bytes ifo = read(folder, "disc/VIDEO_TS/VIDEO_TS.IFO");
    EXPECT_EQ(toHex(ifo.data() + 2048 + 16, 4), "00 00 00 06");
    EXPECT_EQ(toHex(ifo.data() + 2048 + 28, 4), "00 00 00 0B");
    EXPECT_TRUE(read(folder, "disc/VIDEO_TS/VTS_01_0.IFO") == table("DVDVIDEO-VTS", 2));
    EXPECT_TRUE(read(folder, "earlier/VTS_01_0.IFO") == table("DVDVIDEO-VTS", 1));
    EXPECT_TRUE(read(folder, "disc/VIDEO_TS/VTS_02_0.IFO") == fixedTitleSet2());
}

TEST(FixProgram, PathsInAnyLanguage)
{
    const TempDir folder;
    makeDisc(folder);
    const fs::path name = u"Диск \u00E4 \u65E5\u672C";
    fs::rename(folder.root / "disc", folder.root / name);
    fs::rename(folder.root / "p.ini", folder.root / u"проект.ini");
    const ProcessResult result =
        runOrven({ "fix", toUtf8(name.u16string()), "-p", toUtf8(u"проект.ini") }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    fs::rename(folder.root / name, folder.root / "disc");
    expectFixed(folder);
}

TEST(FixProgram, HelpTeaches)
{
    const TempDir folder;
    const ProcessResult help = runOrven({ "fix", "--help" }, folder.root);
    EXPECT_EQ(help.exitCode, 0);
    for (const char* part : { "DISC", "--project", "--previous", "--quiet", "VTS_nn_9.VOB", "skipvts" }) {
        EXPECT_NE(help.out.find(part), std::string::npos) << part;
    }
    EXPECT_NE(runOrven({ "--help" }, folder.root).out.find("Bring a disc's tables into line with its files"),
              std::string::npos);
    for (const char* code : { "2005", "2025", "2026", "2027", "2028" }) {
        const ProcessResult result = runOrven({ "explain", code }, folder.root);
        EXPECT_GT(result.out.size() - result.out.find("\n\n"), 60u) << result.out;
    }
}

// ---- discs that can't be fixed ------------------------------------------------------------------------------------

struct FaultCase {
    const char* what;
    void (*spoil)(const TempDir& folder);
    std::vector<std::string> arguments;   // behind "fix"
    int exitCode;
    const char* err;   // the end of what it says
};

void skipSecond(const TempDir& folder)
{
    writeFile(folder / u"p.ini", std::string_view("[VTS_2]\nskipvts=1\n"));
    fs::create_directory(folder.root / "earlier");
}

const FaultCase FAULTS[] = {
    { "no disc", nullptr, { "-p", "p.ini" }, 2, "--help for more information.\n" },
    { "no project", nullptr, { "disc" }, 2, "--help for more information.\n" },
    { "project is missing", nullptr, { "disc", "-p", "no.ini" }, 2, "error: there is no project file no.ini\n" },
    { "disc is missing",
      nullptr,
      { "none", "-p", "p.ini" },
      2,
      "error: there is no VIDEO_TS.IFO in none, nor in a folder VIDEO_TS there\n" },
    { "previous is missing",
      nullptr,
      { "disc", "-p", "p.ini", "--previous", "none" },
      2,
      "error: there is no previous folder none\n" },
    { "skipped without previous",
      skipSecond,
      { "disc", "-p", "p.ini" },
      2,
      "error: the project skips title set 2; name the folder in which it lies by --previous\n" },
    { "skipped, and nowhere",
      skipSecond,
      { "disc", "-p", "p.ini", "--previous", "earlier" },
      1,
      "VTS_02_0.IFO: there is no such file, seen from " },
    { "skipped, without a ninth VOB",
      [](const TempDir& folder) {
          skipSecond(folder);
          write(folder, "earlier/VTS_02_0.IFO", table("DVDVIDEO-VTS", 1));
          write(folder, "earlier/VTS_02_1.VOB", Bytes(2048));
      },
      { "disc", "-p", "p.ini", "--previous", "earlier" },
      1,
      "VTS_02_9.VOB: there is no such file, and the library passes title set 2, which the project skips, only if it "
      "has "
      "a ninth VOB. Copy title set 2 into the disc's folder, and leave its `skipvts` out\n" },
    { "manager that is none",
      [](const TempDir& folder) { write(folder, "disc/VIDEO_TS/VIDEO_TS.IFO", table("DVDVIDEO-VTS", 2)); },
      { "disc", "-p", "p.ini" },
      1,
      "VIDEO_TS.IFO: it is no table of a disc: it does not begin with DVDVIDEO-VMG\n" },
    { "manager that is cut",
      [](const TempDir& folder) { write(folder, "disc/VIDEO_TS/VIDEO_TS.IFO", Bytes(2047)); },
      { "disc", "-p", "p.ini" },
      1,
      "VIDEO_TS.IFO: it holds 2047 bytes, less than one sector of 2048\n  more: orven explain 2025\n" },
    { "title search table behind the end",
      [](const TempDir& folder) {
          Bytes ifo = manager(2);
          patch(ifo, 0xC4, "FF FF FF FF");
          write(folder, "disc/VIDEO_TS/VIDEO_TS.IFO", ifo);
      },
      { "disc", "-p", "p.ini" },
      1,
      "VIDEO_TS.IFO: its title search table would lie behind its end\n  more: orven explain 2025\n" },
    { "backup that is a folder",
      [](const TempDir& folder) {
          fs::remove(folder.root / "disc/VIDEO_TS/VIDEO_TS.BUP");
          fs::create_directory(folder.root / "disc/VIDEO_TS/VIDEO_TS.BUP");
      },
      { "disc", "-p", "p.ini" },
      1,
      "VIDEO_TS.BUP: it is no plain file\n" },
    { "backup that is its IFO",
      [](const TempDir& folder) {
          fs::remove(folder.root / "disc/VIDEO_TS/VTS_01_0.BUP");
          fs::create_hard_link(folder.root / "disc/VIDEO_TS/VTS_01_0.IFO", folder.root / "disc/VIDEO_TS/VTS_01_0.BUP");
      },
      { "disc", "-p", "p.ini" },
      1,
      "VTS_01_0.BUP: it is the same file as its IFO\n" },
    { "title set is missing",
      [](const TempDir& folder) { fs::remove(folder.root / "disc/VIDEO_TS/VTS_02_0.IFO"); },
      { "disc", "-p", "p.ini" },
      1,
      "VTS_02_0.IFO: there is no such file, seen from " },
    { "title set that is cut",
      [](const TempDir& folder) { write(folder, "disc/VIDEO_TS/VTS_02_0.IFO", Bytes(100)); },
      { "disc", "-p", "p.ini" },
      1,
      "VTS_02_0.IFO: it holds 100 bytes, less than one sector of 2048\n  more: orven explain 2027\n" },
    { "title set that is none",
      [](const TempDir& folder) { write(folder, "disc/VIDEO_TS/VTS_02_0.IFO", Bytes(2048)); },
      { "disc", "-p", "p.ini" },
      1,
      "VTS_02_0.IFO: it is no table of a disc: it does not begin with DVDVIDEO-VTS\n" },
};

// A fault is seen before anything is changed, also one of the last title set.
TEST(FixProgram, FaultsLeaveTheDiscAlone)
{
    for (const FaultCase& test : FAULTS) {
        SCOPED_TRACE(test.what);
        const TempDir folder;
        makeDisc(folder);
        if (test.spoil) test.spoil(folder);
        const auto before = contentOf(folder);
        std::vector<std::string> arguments = { "fix" };
        arguments.insert(arguments.end(), test.arguments.begin(), test.arguments.end());
        const ProcessResult result = runOrven(arguments, folder.root);
        EXPECT_EQ(result.exitCode, test.exitCode);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(test.err), std::string::npos) << result.err;
        EXPECT_TRUE(contentOf(folder) == before);
    }
}

}   // namespace
