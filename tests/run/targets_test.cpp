// Targets that cannot be written.
#include "tests/run/disc_run.h"

namespace fs = std::filesystem;

// ---- targets ------------------------------------------------------------------------------------------------------

TEST(Target, WhatCannotBeWritten)
{
    const struct {
        const char* what;
        const char* inTheWay;   // a folder of this name in the target
        uint64_t result;
    } cases[] = {
        { "nothing", "other", 0 },
        { "title set IFO", "VTS_01_0.IFO", 0x840007DB },
        { "manager IFO", "VIDEO_TS.IFO", 0x840007D5 },
        // The results of the copies are not looked at.
        { "title set backup", "VTS_01_0.BUP", 0 },
        { "manager backup", "VIDEO_TS.BUP", 0 },
        // Nobody opens the menu VOBs of a disc without menus.
        { "title set menus", "VTS_01_0.VOB", 0 },
        { "manager menus", "VIDEO_TS.VOB", 0 },
    };
    for (const auto& c : cases) {
        DiscRun run;
        run.put("VTS_01_1.VOB", fourUnits().bytes);
        fs::create_directory(fs::path(run.inTarget(c.inTheWay)));
        EXPECT_EQ(c.result, run.author(plainProject(run, 1))) << c.what;
        EXPECT_FALSE(fileExists(run.log)) << c.what;
        EXPECT_TRUE(fs::is_directory(fs::path(run.inTarget(c.inTheWay)))) << c.what;
        EXPECT_TRUE(fs::is_empty(fs::path(run.inTarget(c.inTheWay)))) << c.what;
    }
}

TEST(Target, MissingFolderIsNotMade)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    const std::string project = plainProject(run, 1);
    const std::u16string missing = (run.folder.root / "missing" / "").u16string();
    run.target = missing;
    EXPECT_EQ(0x840007DBu, run.author(project));
    EXPECT_FALSE(fileExists(missing));
}

TEST(Target, AFileInPlaceOfTheFolder)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    const std::string project = plainProject(run, 1);
    writeFile(run.folder / u"file", fromHex("01"));
    run.target = (run.folder.root / "file" / "").u16string();
    EXPECT_EQ(0x840007DBu, run.author(project));
    EXPECT_EQ(fromHex("01"), readFile(run.folder / u"file"));
}

TEST(Target, NameBeyondAscii)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    const std::string project = plainProject(run, 1);
    const std::u16string folder = run.folder / u"\u00DCbersicht \u0434\u0438\u0441\u043A";
    fs::create_directory(fs::path(folder));
    run.target = (fs::path(folder) / "").u16string();
    run.log = run.folder / u"Protokoll \u00FC.log";
    ASSERT_EQ(0u, run.author(project));
    for (const std::string& name : WRITTEN) EXPECT_TRUE(run.has(name)) << name;
    fs::remove(fs::path(run.inTarget("VTS_01_0.IFO")));
    EXPECT_EQ(0x84000FB4u, run.author(project + "source1=missing\n"));
    EXPECT_TRUE(fileExists(run.log));
}

// The path is put before the names as it stands.
TEST(Target, WithoutTrailingSeparator)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    const std::string project = plainProject(run, 1);
    run.target.pop_back();
    ASSERT_EQ(0u, run.author(project));
    for (const std::string& name : WRITTEN) EXPECT_TRUE(fileExists(run.folder / toWide("target" + name))) << name;
    EXPECT_EQ(1u, takeSnapshot(run.folder.root / "target").size());
}
