// scan_files_test.cpp: the commands around the stream scan under Ctrl-C, on a full disk, on files that may not be
// written, with links and pipes, and with names that are not text. POSIX only.
#include "running.h"

#include "tests/host/scan_stream.h"
#include "tests/support/elementary.h"

#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> SCAN = { "scan", "in.vob", "-o", "out.vob", "--scan-file", "out.scan" },
                               CHAPTERS = { "chapters", "m.vob", "-p", "p.ini", "-n", "1" };

// ---- Ctrl-C -------------------------------------------------------------------------------------------------------

bool catchesInterrupts(pid_t child)
{
    std::ifstream status("/proc/" + std::to_string(child) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("SigCgt:")) return std::stoull(line.substr(7), nullptr, 16) >> (SIGINT - 1) & 1;
    }
    return false;
}

/** Lets a program write so many bytes of its progress and no more, interrupts it where it stands then, and lets it go
 *  on. arrived tells that it is there. */
Ended interrupt(const std::vector<std::string>& arguments, const TempDir& folder, size_t room,
                const std::function<bool()>& arrived)
{
    const Running run = startOrven(arguments, folder.root, room);
    for (int waited = 0; waited < PATIENCE_MS && !(catchesInterrupts(run.child) && arrived()); waited++) usleep(1000);
    EXPECT_TRUE(arrived());
    EXPECT_EQ(kill(run.child, SIGINT), 0);
    return finish(run);
}

// Five pieces of a megabyte.
Bytes longStream()
{
    return scanStream(scanUnits(50, { .sectors = 50 }));
}

TEST(ScanProcess, CtrlCWhileChecking)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", longStream());
    const Ended ended = interrupt(SCAN, folder, 0, [] { return true; });
    EXPECT_EQ(ended.exitCode, 130);
    EXPECT_TRUE(ended.err.ends_with("error: interrupted; out.vob is not made\n")) << ended.err;
    EXPECT_EQ(ended.err.find("scanning"), std::string::npos) << ended.err;
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
    EXPECT_FALSE(fs::exists(folder.root / "out.scan"));
}

TEST(ScanProcess, CtrlCWhileScanning)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", longStream());
    // " 20%  checking", " 40%", ... of 15 bytes each; the first line of the scan has no room.
    const Ended ended = interrupt(SCAN, folder, 5 * 15, [&] {
        std::error_code error;
        return fs::exists(folder.root / "out.vob") && fs::file_size(folder.root / "out.scan", error) > 8;
    });
    EXPECT_EQ(ended.exitCode, 130);
    EXPECT_TRUE(ended.err.ends_with(" 20%  scanning\nerror: interrupted; out.vob is not made\n")) << ended.err;
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
    EXPECT_FALSE(fs::exists(folder.root / "out.scan"));
}

void writeMovie(const TempDir& folder)
{
    writeFile(folder / u"m.vob", scanStream(scanUnits(30)));
    writeFile(folder / u"p.ini", std::string_view("[VTS_1]\nchapters=1\nchapter1=43200\n"));
}

TEST(ChaptersProcess, CtrlCWhileLooking)
{
    const TempDir folder;
    writeMovie(folder);
    const Ended ended = interrupt(CHAPTERS, folder, 0, [] { return true; });
    EXPECT_EQ(ended.exitCode, 130);
    EXPECT_TRUE(ended.err.ends_with("error: interrupted; nothing is changed\n")) << ended.err;
    EXPECT_TRUE(readFile(folder / u"m.vob") == scanStream(scanUnits(30)));
}

TEST(ChaptersProcess, CtrlCWhileWriting)
{
    const TempDir folder;
    writeMovie(folder);
    // "  0%  looking at packs", " 10%", ... of 23 bytes each.
    const Ended ended =
        interrupt(CHAPTERS, folder, 11 * 23, [&] { return readFile(folder / u"m.vob")[3 * 2048 + 1058] == 2; });
    EXPECT_EQ(ended.exitCode, 130);
    EXPECT_TRUE(
        ended.err.ends_with("  0%  writing packs\nerror: interrupted; 1 of 29 packs are changed. Run the command "
                            "again for the rest\n"))
        << ended.err;
    const ProcessResult rest = runOrven(CHAPTERS, folder.root);
    EXPECT_EQ(rest.out, "30 navigation packs looked at, 28 changed; cells 1 to 2\n");
}

// ---- full disks ---------------------------------------------------------------------------------------------------

TEST(ScanProcess, NoRoomForTheMovie)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", longStream());
    const Ended ended = runPrepared(SCAN, folder.root, limitFiles(1 << 20));
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_TRUE(ended.err.ends_with("error: Error 4019: write file to destination failed (0x84000FB3)\n"
                                    "  out.vob: the file can't be written\n  more: orven explain 4019\n"))
        << ended.err;
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
    EXPECT_FALSE(fs::exists(folder.root / "out.scan"));
}

// The scan file has 96 bytes for each unit, and no unit of the first two minutes has left the scan by then.
TEST(ScanProcess, NoRoomForTheScanFile)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", scanStream(scanUnits(200, { .sectors = 1 })));
    for (const uint64_t room : { 0u, 10000u }) {
        writeFile(folder / u"out.scan", std::string_view("before"));
        const Ended ended = runPrepared(SCAN, folder.root, limitFiles(room));
        EXPECT_EQ(ended.exitCode, 1);
        EXPECT_TRUE(ended.err.ends_with("error: File too large (system error 27)\n  out.scan: the scan file can't be "
                                        "written\n  more: orven explain 27\n"))
            << ended.err;
        EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
        EXPECT_FALSE(fs::exists(folder.root / "out.scan"));
    }
}

TEST(ScanProcess, NoRoomWhileMultiplexing)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(40)).bytes);
    const Ended ended = runPrepared({ "mux", "-q", "-o", "out.vob", "-v", "v.m2v", "--scan-file", "out.scan" },
                                    folder.root, limitFiles(1 << 20));
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_EQ(ended.err, "error: Error 4019: write file to destination failed (0x84000FB3)\n"
                         "  out.vob: the file can't be written\n  more: orven explain 4019\n");
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
    EXPECT_FALSE(fs::exists(folder.root / "out.scan"));
}

TEST(ChaptersProcess, PackThatCannotBeWritten)
{
    const TempDir folder;
    writeMovie(folder);
    const Ended ended = runPrepared(CHAPTERS, folder.root, limitFiles(30 * 2048));
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_TRUE(ended.err.ends_with("error: Error 4019: write file to destination failed (0x84000FB3)\n  m.vob, sector "
                                    "30: the pack can't be written; 9 of 29 are changed\n  more: orven explain 4019\n"))
        << ended.err;
}

// ---- who may write ------------------------------------------------------------------------------------------------

TEST(ChaptersProcess, MovieThatMayNotBeWritten)
{
    const TempDir folder;
    writeMovie(folder);
    fs::permissions(folder.root / "m.vob", fs::perms(0444));
    const Ended ended = runPrepared(CHAPTERS, folder.root, obeyPermissions);
    EXPECT_EQ(ended.exitCode, 2);
    EXPECT_EQ(ended.err, "error: m.vob: the file can't be opened for writing\n");
}

TEST(ScanProcess, ScanFileThatMayNotBeWritten)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", scanStream(scanUnits(3)));
    writeFile(folder / u"out.scan", std::string_view("before"));
    fs::permissions(folder.root / "out.scan", fs::perms(0444));
    const Ended ended = runPrepared(SCAN, folder.root, obeyPermissions);
    EXPECT_EQ(ended.exitCode, 2);
    EXPECT_EQ(ended.err, "error: the scan file out.scan: the file can't be opened for writing\n");
    EXPECT_EQ(readFile(folder / u"out.scan").size(), 6u);
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
}

// ---- links, pipes, names ------------------------------------------------------------------------------------------

// What a link leads to is not the user's output.
TEST(ScanProcess, LinksAndPipesAreLeftAlone)
{
    const TempDir folder;
    writeFile(folder / u"real.vob", scanStream(scanUnits(3)));
    writeFile(folder / u"precious", std::string_view("precious"));
    fs::create_symlink("real.vob", folder.root / "in.vob");
    for (const char* name : { "out.vob", "out.scan" }) {
        const std::string role = name == std::string("out.vob") ? "the output " : "the scan file ";
        fs::create_symlink("precious", folder.root / name);
        const ProcessResult link = runOrven(SCAN, folder.root);
        EXPECT_EQ(link.exitCode, 2);
        EXPECT_EQ(link.err, "error: " + role + name + " is there and is no plain file\n");
        fs::remove(folder.root / name);
        fs::create_symlink("nowhere", folder.root / name);
        EXPECT_EQ(runOrven(SCAN, folder.root).err, link.err);
        fs::remove(folder.root / name);
        fs::create_symlink("real.vob", folder.root / name);
        EXPECT_EQ(runOrven(SCAN, folder.root).err, "error: " + role + name + " is one of the inputs\n");
        fs::remove(folder.root / name);
        ASSERT_EQ(mkfifo((folder.root / name).c_str(), 0600), 0);
        EXPECT_EQ(runOrven(SCAN, folder.root).err, link.err);
        fs::remove(folder.root / name);
    }
    EXPECT_EQ(readFile(folder / u"precious").size(), 8u);
    EXPECT_FALSE(fs::exists(folder.root / "nowhere"));
    EXPECT_EQ(runOrven(SCAN, folder.root).exitCode, 0);   // an input may be a link
}

// The library would make a file of another name.
TEST(ScanProcess, NamesThatTheLibraryDoesNotTake)
{
    const TempDir folder;
    writeFile(folder / u"in.vob", scanStream(scanUnits(3)));
    fs::rename(folder.root / "in.vob", folder.root / "\xFF.vob");
    fs::create_directory(folder.root / "a");
    for (const char* name : { "\xFE.scan", "a\\b.scan" }) {
        const ProcessResult result =
            runOrven({ "scan", "\xFF.vob", "-o", "out.vob", "--scan-file", name }, folder.root);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_TRUE(result.err.ends_with(".scan has a name that the library does not take\n")) << result.err;
        EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
    }
    EXPECT_TRUE(fs::is_empty(folder.root / "a"));
    // The other names are the host's own business.
    const ProcessResult result =
        runOrven({ "scan", "\xFF.vob", "-o", "\xFE.vob", "--scan-file", "out.scan" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(fs::exists(folder.root / "\xFE.vob"));
}

TEST(ChaptersProcess, NamesThatTheLibraryDoesNotTake)
{
    const TempDir folder;
    writeMovie(folder);
    fs::rename(folder.root / "m.vob", folder.root / "\xFF.vob");
    fs::copy_file(folder.root / "p.ini", folder.root / "a\\p.ini");
    const ProcessResult refused = runOrven({ "chapters", "\xFF.vob", "-p", "a\\p.ini", "-n", "1" }, folder.root);
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_TRUE(refused.err.ends_with("a\\p.ini has a name that the library does not take\n")) << refused.err;
    EXPECT_EQ(runOrven({ "chapters", "\xFF.vob", "-p", "p.ini", "-n", "1" }, folder.root).exitCode, 0);
}

// ---- discs --------------------------------------------------------------------------------------------------------

Bytes table(const char* mark)
{
    Bytes bytes(2048);
    std::copy(mark, mark + 12, bytes.begin());
    return bytes;
}

/** A disc of one title set, its tables one sector each; the title search table is the second of the manager's. */
void makeDisc(const TempDir& folder)
{
    Bytes manager = table("DVDVIDEO-VMG");
    manager[0x3F] = 1;
    manager[0xC7] = 1;
    fs::create_directory(folder.root / "disc");
    writeFile(folder / u"p.ini", std::string_view("[VTS_1]\nsource=a\n"));
    writeFile(folder / u"disc/VIDEO_TS.IFO", manager + Bytes(2048));
    writeFile(folder / u"disc/VTS_01_0.IFO", table("DVDVIDEO-VTS"));
}

const std::vector<std::string> FIX = { "fix", "-q", "disc", "-p", "p.ini" };

// Not seen beforehand, and the library tells no more than a number.
TEST(FixProcess, FullDisk)
{
    const TempDir folder;
    makeDisc(folder);
    const Ended titleSet = runPrepared(FIX, folder.root, limitFiles(0));
    EXPECT_EQ(titleSet.exitCode, 1);
    EXPECT_EQ(titleSet.err, "error: File too large (system error 27)\n  disc: the IFO of a title set can't be read or "
                            "written\n  more: orven explain 27\n");
    const Ended manager = runPrepared(FIX, folder.root, limitFiles(2048));
    EXPECT_EQ(manager.exitCode, 1);
    EXPECT_EQ(manager.err,
              "error: Error 2025: can't read from VMG IFO (0x840007E9)\n  disc/VIDEO_TS.IFO: the file can't "
              "be read or written\n  more: orven explain 2025\n");
    // With room again it is done.
    EXPECT_EQ(runOrven(FIX, folder.root).exitCode, 0);
}

TEST(FixProcess, DiscThatMayNotBeWritten)
{
    const TempDir folder;
    makeDisc(folder);
    fs::permissions(folder.root / "disc" / "VTS_01_0.IFO", fs::perms(0444));
    fs::permissions(folder.root / "disc" / "VIDEO_TS.IFO", fs::perms(0666));
    const Ended ended = runPrepared(FIX, folder.root, obeyPermissions);
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_EQ(ended.err, "error: disc/VTS_01_0.IFO: the file can't be opened for writing\n");
    // Where the tables may be written, but no new file be made.
    fs::permissions(folder.root / "disc" / "VTS_01_0.IFO", fs::perms(0666));
    fs::permissions(folder.root / "disc", fs::perms(0555));
    const Ended backup = runPrepared(FIX, folder.root, obeyPermissions);
    EXPECT_EQ(backup.exitCode, 1);
    EXPECT_EQ(backup.err,
              "error: Error 2026: can't write clone from VMG IFO (0x840007EA)\n  disc/VIDEO_TS.BUP: the file "
              "can't be written\n  more: orven explain 2026\n");
    fs::permissions(folder.root / "disc", fs::perms(0755));
    writeFile(folder / u"disc/VIDEO_TS.BUP", Bytes(10));
    fs::permissions(folder.root / "disc", fs::perms(0555));
    const Ended titleSet = runPrepared(FIX, folder.root, obeyPermissions);
    fs::permissions(folder.root / "disc", fs::perms(0755));
    EXPECT_EQ(titleSet.exitCode, 1);
    EXPECT_EQ(titleSet.err,
              "error: Error 2028: can't write clone from VTS IFO (0x840007EC)\n  disc/VTS_01_0.BUP: it can't be made a "
              "copy of its IFO, which is in line\n  more: orven explain 2028\n");
}

TEST(FixProcess, LinksAreLeftAlone)
{
    const TempDir folder;
    makeDisc(folder);
    writeFile(folder / u"elsewhere", table("DVDVIDEO-VTS"));
    fs::remove(folder.root / "disc" / "VTS_01_0.IFO");
    fs::create_symlink("../elsewhere", folder.root / "disc" / "VTS_01_0.IFO");
    const ProcessResult result = runOrven(FIX, folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "error: disc/VTS_01_0.IFO: it is no plain file\n");
    EXPECT_TRUE(readFile(folder / u"elsewhere") == table("DVDVIDEO-VTS"));
}

TEST(FixProcess, NamesThatTheLibraryDoesNotTake)
{
    const TempDir folder;
    makeDisc(folder);
    fs::create_directory(folder.root / "a");
    fs::copy(folder.root / "disc", folder.root / "a\\disc");
    fs::copy(folder.root / "disc", folder.root / "a" / "disc");
    const ProcessResult result = runOrven({ "fix", "-q", "a\\disc", "-p", "p.ini" }, folder.root);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "error: a\\disc is a name that the library does not take\n");
    EXPECT_TRUE(readFile(folder / u"a/disc/VTS_01_0.IFO") == table("DVDVIDEO-VTS"));
}

}   // namespace
