// Work on a finished disc where the system or the memory fails.
#include "base/result.h"
#include "base/wide.h"
#include "tests/base/posix/failing_memory.h"
#include "tests/disc/disc_rig.h"
#include "tests/disc/posix/system.h"
#include "tests/disc/raw_chapters_rig.h"

#include <gtest/gtest.h>

#include <orven/disc.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

// A manager of two sectors without a backup, then title sets of nine, two (skipped) and two sectors.
void putDisc(DiscRig& rig)
{
    rig.put("disc/VIDEO_TS.IFO", makeManager(4096, 3, 1));
    rig.put("disc/VIDEO_TS.VOB", Bytes(2048, 0x11));
    rig.put("disc/VTS_01_0.IFO", makeIfo(2048, 1));
    rig.put("disc/VTS_01_0.VOB", Bytes(3 * 2048, 0x22));
    rig.put("disc/VTS_01_5.VOB", Bytes(4 * 2048, 0x33));
    rig.put("disc/VTS_02_0.IFO", makeIfo(2048, 2));
    rig.put("disc/VTS_03_0.IFO", makeIfo(2048, 3));
    rig.put("previous/VTS_02_0.IFO", makeIfo(2048, 4));
    rig.put("previous/VTS_02_9.VOB", "");
    rig.put("project.ini", "[VTS_2]\nskipvts=1\n");
}

void fixFirst(Files& files)
{
    set(files, "disc/VTS_01_0.IFO", 0x0C, "00 00 00 08");
    set(files, "disc/VTS_01_0.IFO", 0x1C, "00 00 00 00");
    set(files, "disc/VTS_01_0.IFO", 0xC0, "00 00 00 01");
    set(files, "disc/VTS_01_0.IFO", 0xC4, "00 00 00 04");
    files["disc/VTS_01_0.BUP"] = files["disc/VTS_01_0.IFO"];
}

void fixTitleSets(Files& files)
{
    fixFirst(files);
    set(files, "disc/VTS_03_0.IFO", 0x0C, "00 00 00 01");
    set(files, "disc/VTS_03_0.IFO", 0x1C, "00 00 00 00");
    set(files, "disc/VTS_03_0.IFO", 0xC0, "00 00 00 01");
    set(files, "disc/VTS_03_0.IFO", 0xC4, "00 00 00 01");
    files["disc/VTS_03_0.BUP"] = files["disc/VTS_03_0.IFO"];
}

void fixFirstSector(Files& files)
{
    set(files, "disc/VIDEO_TS.IFO", 0x0C, "00 00 00 03");
    set(files, "disc/VIDEO_TS.IFO", 0x1C, "00 00 00 01");
    set(files, "disc/VIDEO_TS.IFO", 0xC0, "00 00 00 02");
}

void fixManager(Files& files)
{
    fixFirstSector(files);
    set(files, "disc/VIDEO_TS.IFO", 2048 + 16, "00 00 00 04");
    set(files, "disc/VIDEO_TS.IFO", 2048 + 28, "00 00 00 0D");
    set(files, "disc/VIDEO_TS.IFO", 2048 + 40, "00 00 00 0F");
    files["disc/VIDEO_TS.BUP"] = files["disc/VIDEO_TS.IFO"];
}

// Leaves in systemCalls what was opened, and how many calls there were.
uint64_t checkWith(const DiscRig& rig, const SystemCalls& calls)
{
    const std::u16string project = rig.path("project.ini"), disc = rig.path("disc/"), previous = rig.path("previous/");
    const uint64_t open = openFiles();
    systemCalls = calls;
    systemCalls.watched = true;
    const uint64_t result =
        CheckDVDStructureW(orvHostText(project.c_str()), orvHostText(disc.c_str()), orvHostText(previous.c_str()));
    systemCalls.watched = false;
    EXPECT_EQ(openFiles(), open);
    return result;
}

struct FaultCase {
    const char* what;
    SystemCalls calls;
    uint64_t result;
    void (*change)(Files& files);   // what is done all the same
};

void fixAll(Files& files)
{
    fixTitleSets(files);
    fixManager(files);
}

const FaultCase FAULTS[] = {
    { "nothing fails", {}, 0, fixAll },
    { "the manager can't be opened to be written",
      { .failingOpen = "VIDEO_TS.IFO", .error = EACCES },
      0x840007D5,
      [](Files&) {} },
    { "the manager can't be read", { .failingRead = "VIDEO_TS.IFO" }, 0x840007E9, [](Files&) {} },
    { "the search table can't be read", { .failingRead = "VIDEO_TS.IFO", .passes = 1 }, 0x840007E9, [](Files&) {} },
    { "the manager can't be written", { .failingWrite = "VIDEO_TS.IFO", .error = ENOSPC }, 0x840007E9, fixTitleSets },
    { "the search table can't be written",
      { .failingWrite = "VIDEO_TS.IFO", .passes = 1, .error = ENOSPC },
      0x840007E9,
      [](Files& files) {
          fixTitleSets(files);
          fixFirstSector(files);
      } },
    { "the backup can't be made",
      { .failingOpen = "VIDEO_TS.BUP", .passes = 1, .error = EACCES },
      0x840007EA,
      [](Files& files) {
          fixAll(files);
          files.erase("disc/VIDEO_TS.BUP");
      } },
    { "the backup can't be written",
      { .failingWrite = "VIDEO_TS.BUP", .error = ENOSPC },
      0x840007EA,
      [](Files& files) {
          fixAll(files);
          files["disc/VIDEO_TS.BUP"] = {};
      } },
    { "a title set can't be opened to be written",
      { .failingOpen = "VTS_03_0.IFO", .error = EACCES },
      EACCES,
      fixFirst },
    { "a title set can't be read", { .failingRead = "VTS_03_0.IFO" }, 0x840007EB, fixFirst },
    { "a skipped title set can't be opened", { .failingOpen = "VTS_02_0.IFO", .error = EACCES }, EACCES, fixFirst },
    { "a skipped title set can't be read", { .failingRead = "VTS_02_0.IFO" }, 0x840007EB, fixFirst },
    { "a skipped title set's ninth VOB can't be opened",
      { .failingOpen = "VTS_02_9.VOB", .error = EACCES },
      EACCES,
      fixFirst },
    { "a menu VOB can't be opened",
      { .failingOpen = "VTS_01_0.VOB", .error = EACCES },
      0,
      [](Files& files) {
          fixAll(files);
          set(files, "disc/VTS_01_0.IFO", 0x0C, "00 00 00 05");
          set(files, "disc/VTS_01_0.IFO", 0xC4, "00 00 00 01");
          files["disc/VTS_01_0.BUP"] = files["disc/VTS_01_0.IFO"];
          set(files, "disc/VIDEO_TS.IFO", 2048 + 28, "00 00 00 0A");
          set(files, "disc/VIDEO_TS.IFO", 2048 + 40, "00 00 00 0C");
          files["disc/VIDEO_TS.BUP"] = files["disc/VIDEO_TS.IFO"];
      } },
    { "a title VOB can't be opened",
      { .failingOpen = "VTS_01_5.VOB", .error = EACCES },
      0,
      [](Files& files) {
          fixAll(files);
          set(files, "disc/VTS_01_0.IFO", 0x0C, "00 00 00 04");
          files["disc/VTS_01_0.BUP"] = files["disc/VTS_01_0.IFO"];
          set(files, "disc/VIDEO_TS.IFO", 2048 + 28, "00 00 00 09");
          set(files, "disc/VIDEO_TS.IFO", 2048 + 40, "00 00 00 0B");
          files["disc/VIDEO_TS.BUP"] = files["disc/VIDEO_TS.IFO"];
      } },
    // Its backup is made all the same, of what the IFO is.
    { "a title set can't be written",
      { .failingWrite = "VTS_03_0.IFO", .error = ENOSPC },
      ENOSPC,
      [](Files& files) {
          fixFirst(files);
          files["disc/VTS_03_0.BUP"] = files["disc/VTS_03_0.IFO"];
      } },
    { "a title set's backup can't be made",
      { .failingOpen = "VTS_03_0.BUP", .error = EACCES },
      0,
      [](Files& files) {
          fixAll(files);
          files.erase("disc/VTS_03_0.BUP");
      } },
    { "a title set's backup can't be written",
      { .failingWrite = "VTS_03_0.BUP", .error = ENOSPC },
      0,
      [](Files& files) {
          fixAll(files);
          files["disc/VTS_03_0.BUP"] = {};
      } },
};

// Whether a file changed only where the call may change it.
bool mayBe(const std::string& name, const Bytes& now, const Bytes& before)
{
    if (name.ends_with(".BUP")) return true;   // judged by the cases above
    if (now.size() != before.size()) return false;
    const bool titleSet = name.starts_with("disc/VTS_") && name.ends_with("_0.IFO");
    for (uint64_t i = 0; i < now.size(); i++) {
        if (now[i] == before[i]) continue;
        const uint64_t field = i & ~uint64_t(3);
        const bool header = field == 0x0C || field == 0x1C || field == 0xC0;
        const bool start = field == 2048 + 16 || field == 2048 + 28 || field == 2048 + 40;
        if (titleSet && (header || field == 0xC4)) continue;
        if (name == "disc/VIDEO_TS.IFO" && (header || start)) continue;
        return false;
    }
    return true;
}

}   // namespace

TEST(StructureCheck, WhereTheSystemFails)
{
    for (const FaultCase& c : FAULTS) {
        SCOPED_TRACE(c.what);
        DiscRig rig;
        putDisc(rig);
        EXPECT_EQ(checkWith(rig, c.calls), c.result);
        Files expected = rig.before;
        c.change(expected);
        EXPECT_EQ(rig.differences(expected), "");
    }
}

// A backup that is there and can't be read counts no bytes, and is written over.
TEST(StructureCheck, ABackupThatCannotBeRead)
{
    DiscRig rig;
    putDisc(rig);
    rig.put("disc/VIDEO_TS.BUP", makeIfo(20000, 8));
    EXPECT_EQ(checkWith(rig, { .failingOpen = "VIDEO_TS.BUP", .failures = 1, .error = EACCES }), 0u);
    Files expected = rig.before;
    fixAll(expected);
    EXPECT_EQ(rig.differences(expected), "");
}

// What is only looked at is opened to be read, the manager's VOB not at all, and all nine title VOBs are asked for.
TEST(StructureCheck, WhatIsOpened)
{
    DiscRig rig;
    putDisc(rig);
    EXPECT_EQ(checkWith(rig, {}), 0u);
    std::vector<std::string> names;
    for (const std::string& name : systemCalls.opened) {
        if (name.find(".ini") == std::string::npos) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    const std::vector<std::string> expected = {
        // The copies read the IFOs too.
        "r VIDEO_TS.BUP", "r VIDEO_TS.IFO",                                                         //
        "r VTS_01_0.IFO", "r VTS_01_0.VOB", "r VTS_01_1.VOB", "r VTS_01_2.VOB", "r VTS_01_3.VOB",   //
        "r VTS_01_4.VOB", "r VTS_01_5.VOB", "r VTS_01_6.VOB", "r VTS_01_7.VOB", "r VTS_01_8.VOB",   //
        "r VTS_01_9.VOB",                                                                           //
        "r VTS_02_0.IFO", "r VTS_02_0.VOB", "r VTS_02_1.VOB", "r VTS_02_2.VOB", "r VTS_02_3.VOB",   //
        "r VTS_02_4.VOB", "r VTS_02_5.VOB", "r VTS_02_6.VOB", "r VTS_02_7.VOB", "r VTS_02_8.VOB",   //
        "r VTS_02_9.VOB",                                                                           //
        "r VTS_03_0.IFO", "r VTS_03_0.VOB", "r VTS_03_1.VOB", "r VTS_03_2.VOB", "r VTS_03_3.VOB",   //
        "r VTS_03_4.VOB", "r VTS_03_5.VOB", "r VTS_03_6.VOB", "r VTS_03_7.VOB", "r VTS_03_8.VOB",   //
        "r VTS_03_9.VOB",                                                                           //
        "w VIDEO_TS.BUP", "w VIDEO_TS.IFO", "w VTS_01_0.BUP", "w VTS_01_0.IFO", "w VTS_03_0.BUP", "w VTS_03_0.IFO",
    };
    EXPECT_EQ(names, expected);
}

// Whichever call fails: no file stays open, and no byte changes that the call has no business with.
TEST(StructureCheck, EveryCallOfTheSystemMayFail)
{
    std::map<uint64_t, uint64_t> results;
    uint64_t calls = 1;
    for (uint64_t n = 1; n <= calls; n++) {
        SCOPED_TRACE(n);
        DiscRig rig;
        putDisc(rig);
        const uint64_t result = checkWith(rig, { .failingCall = n });
        if (systemCalls.calls >= n) calls = n + 1;
        results[result]++;
        for (const auto& [name, bytes] : rig.now()) {
            const auto before = rig.before.find(name);
            if (before == rig.before.end())
                EXPECT_EQ(name.ends_with(".BUP"), true) << name;
            else
                EXPECT_TRUE(mayBe(name, bytes, before->second)) << name;
        }
    }
    EXPECT_GT(calls, 80u);
    for (const uint64_t result : { uint64_t(0x840007D5), uint64_t(0x840007E9), uint64_t(0x840007EA),
                                   uint64_t(0x840007EB), uint64_t(EIO), uint64_t(0) }) {
        EXPECT_GT(results[result], 0u) << result;
    }
}

TEST(StructureCheck, WithoutMemory)
{
    DiscRig rig;
    putDisc(rig);
    const std::string project = toUtf8(rig.path("project.ini")), disc = toUtf8(rig.path("disc/")),
                      previous = toUtf8(rig.path("previous/"));
    const uint64_t open = openFiles();
    const auto run = [&] {
        const uint64_t result = CheckDVDStructure(project.c_str(), disc.c_str(), previous.c_str());
        return result == ENOMEM ? OS_OUT_OF_MEMORY : result;   // of a block
    };
    const auto restore = [&] {
        EXPECT_EQ(openFiles(), open);
        for (const auto& [name, bytes] : rig.now()) {
            if (!rig.before.contains(name))
                EXPECT_TRUE(name.ends_with(".BUP")) << name;
            else
                EXPECT_TRUE(mayBe(name, bytes, rig.before[name])) << name;
        }
        for (const auto& [name, bytes] : Files(rig.before)) {
            if (!name.ends_with('/')) rig.put(name, bytes);
        }
        std::filesystem::remove(rig.path("disc/VIDEO_TS.BUP"));
    };
    // A success without the memory for the backup of a title set is one all the same, but never one of wrong numbers.
    const auto checkAll = [&] {
        Files expected = rig.before, files = rig.now();
        fixAll(expected);
        for (const char* name : { "disc/VIDEO_TS.IFO", "disc/VTS_01_0.IFO", "disc/VTS_03_0.IFO" }) {
            EXPECT_EQ(toHex(files[name]), toHex(expected[name])) << name;
        }
        restore();
    };
    EXPECT_GT(failEveryAllocation({ run, checkAll, restore }, OS_OUT_OF_MEMORY), 20u);
}

TEST(RawChapters, WithoutMemory)
{
    const ChapterProject project("[VTS_1]\nchapters=3\nchapter1=1\nchapter3=5\n");
    const std::string path = toUtf8(project.path);
    const Bytes before = makeNavPack({ .cell = "EE" });
    Bytes sector = before;
    uint64_t next = UNTOUCHED, changed = UNTOUCHED;
    const auto run = [&] {
        const uint64_t result = SetRawChapter(sector.data(), path.c_str(), 1, &next, &changed);
        return result == ENOMEM ? OS_OUT_OF_MEMORY : result;   // of a block
    };
    const auto undo = [&] {
        EXPECT_EQ(sector[1058], 1);
        sector = before;
        next = changed = UNTOUCHED;
    };
    const auto isUntouched = [&] {
        EXPECT_EQ(next, UNTOUCHED);
        EXPECT_EQ(changed, UNTOUCHED);
        EXPECT_EQ(toHex(sector), toHex(before));
    };
    EXPECT_GT(failEveryAllocation({ run, undo, isUntouched }, OS_OUT_OF_MEMORY), 5u);
}

TEST(RawChapters, NoFileIsOpenedButTheProject)
{
    const ChapterProject project("[VTS_1]\nchapters=2\nchapter1=1\nchapter2=5\n");
    const uint64_t open = openFiles();
    systemCalls = { .watched = true };
    EXPECT_EQ(project.ask(makeNavPack({ .cell = "EE" })).changed, 1u);
    EXPECT_EQ(openFiles(), open);
    const std::vector<std::string> opened = systemCalls.opened;
    systemCalls = {};
    EXPECT_GT(opened.size(), 0u);
    for (const std::string& name : opened) EXPECT_EQ(name, "r project.ini");
}
