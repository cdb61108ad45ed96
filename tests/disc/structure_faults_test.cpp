// Sector numbers of a disc that is not as it should be: which result, and what is done all the same.
#include "tests/disc/disc_rig.h"

#include "base/result.h"
#include "base/wide.h"

#include <gtest/gtest.h>

#include <orven/disc.h>

#include <filesystem>
#include <string>

namespace {

// Title sets of an IFO of one sector, two sectors long each, behind a manager of two sectors without a backup.
void putSmallDisc(DiscRig& rig, uint16_t titleSets)
{
    rig.put("disc/VIDEO_TS.IFO", makeManager(4096, titleSets, 1));
    for (uint16_t n = 1; n <= titleSets; n++) {
        rig.put("disc/VTS_0" + std::to_string(n) + "_0.IFO", makeIfo(2048, uint8_t(n)));
    }
}

void fixTitleSet(Files& files, const std::string& name)
{
    set(files, name + ".IFO", 0x0C, "00 00 00 01");
    set(files, name + ".IFO", 0x1C, "00 00 00 00");
    set(files, name + ".IFO", 0xC0, "00 00 00 01");
    set(files, name + ".IFO", 0xC4, "00 00 00 01");
    files[name + ".BUP"] = files[name + ".IFO"];
}

}   // namespace

TEST(StructureCheck, NoManager)
{
    DiscRig rig;
    rig.put("disc/VTS_01_0.IFO", makeIfo(2048, 1));
    rig.put("disc/VIDEO_TS.BUP", makeManager(4096, 1, 1));
    EXPECT_EQ(rig.check(), 0x840007D5u);
    EXPECT_EQ(rig.differences(rig.before), "");
    rig.putFolder("disc/VIDEO_TS.IFO/");
    EXPECT_EQ(rig.check(), 0x840007D5u);
    EXPECT_EQ(rig.check(rig.path("none/"), rig.path("previous/")), 0x840007D5u);
    EXPECT_EQ(rig.differences(rig.before), "");
}

TEST(StructureCheck, AManagerTooShort)
{
    const struct {
        uint64_t bytes;
        uint32_t tableSector;
    } cases[] = {
        { 0, 0 },
        { 1, 0 },
        { 0x3F, 0 },
        { 2047, 0 },
        { 2048, 1 },            // no table
        { 4095, 1 },            // a byte too few
        { 6144, 3 },            // at the end
        { 6144, 0x00200001 },   // 4 GiB behind a place that is there
        { 6144, 0x00400001 },   //
        { 6144, 0x80000001 },   //
        { 6144, 0xFFFFFFFF },   // the last sector that has a number
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.bytes) + " bytes, table at " + std::to_string(c.tableSector));
        DiscRig rig;
        rig.put("disc/VIDEO_TS.IFO", makeManager(c.bytes, 1, c.tableSector));
        rig.put("disc/VTS_01_0.IFO", makeIfo(2048, 1));
        EXPECT_EQ(rig.check(), 0x840007E9u);
        EXPECT_EQ(rig.differences(rig.before), "");   // the title set neither
    }
}

// The number of title sets may say anything. Those before the one that is not there are fixed, the manager is not.
TEST(StructureCheck, MoreTitleSetsThanThereAre)
{
    for (const uint64_t count : { 3u, 4u, 0x0100u, 0x0300u, 0xFFFFu }) {
        SCOPED_TRACE(count);
        DiscRig rig;
        putSmallDisc(rig, 2);
        rig.put("disc/VIDEO_TS.IFO", makeManager(4096, uint16_t(count), 1));
        rig.put("disc/VIDEO_TS.BUP", makeIfo(4096, 9));
        rig.put("disc/VTS_04_0.IFO", makeIfo(2048, 4));
        EXPECT_EQ(rig.check(), FILE_MISSING);
        Files expected = rig.before;
        fixTitleSet(expected, "disc/VTS_01_0");
        fixTitleSet(expected, "disc/VTS_02_0");
        EXPECT_EQ(rig.differences(expected), "");
    }
}

TEST(StructureCheck, AFolderInThePlaceOfATitleSet)
{
    DiscRig rig;
    putSmallDisc(rig, 1);
    rig.put("disc/VIDEO_TS.IFO", makeManager(4096, 3, 1));
    rig.putFolder("disc/VTS_02_0.IFO/");
    rig.put("disc/VTS_03_0.IFO", makeIfo(2048, 3));
    EXPECT_EQ(rig.check(), IS_A_FOLDER);
    Files expected = rig.before;
    fixTitleSet(expected, "disc/VTS_01_0");
    EXPECT_EQ(rig.differences(expected), "");
}

TEST(StructureCheck, ATitleSetTooShort)
{
    for (const uint64_t bytes : { 0u, 1u, 200u, 2047u }) {
        for (const bool skipped : { false, true }) {
            SCOPED_TRACE(std::to_string(bytes) + (skipped ? " skipped" : ""));
            DiscRig rig;
            putSmallDisc(rig, 3);
            if (skipped) rig.put("project.ini", "[VTS_2]\nskipvts=1\n");
            rig.put(skipped ? "previous/VTS_02_0.IFO" : "disc/VTS_02_0.IFO", makeIfo(bytes, 2));
            rig.put("previous/VTS_02_9.VOB", Bytes(2048));
            EXPECT_EQ(rig.check(), 0x840007EBu);
            Files expected = rig.before;
            fixTitleSet(expected, "disc/VTS_01_0");
            EXPECT_EQ(rig.differences(expected), "");
        }
    }
}

TEST(StructureCheck, ASkippedTitleSetThatIsNotThere)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    rig.put("project.ini", "[VTS_2]\nskipvts=1\n");
    rig.put("previous/VTS_02_9.VOB", Bytes(2048));
    Files expected = rig.before;
    fixTitleSet(expected, "disc/VTS_01_0");
    EXPECT_EQ(rig.check(), FILE_MISSING);
    EXPECT_EQ(rig.check(rig.path("disc/"), rig.path("none/")), FOLDER_MISSING);
    EXPECT_EQ(rig.differences(expected), "");

    // What counts is why the ninth VOB did not open.
    DiscRig folder;
    putSmallDisc(folder, 2);
    folder.put("project.ini", "[VTS_2]\nskipvts=1\n");
    folder.put("previous/VTS_02_0.IFO", makeIfo(2048, 7));
    folder.putFolder("previous/VTS_02_9.VOB/");
    EXPECT_EQ(folder.check(), IS_A_FOLDER);
    expected = folder.before;
    fixTitleSet(expected, "disc/VTS_01_0");
    EXPECT_EQ(folder.differences(expected), "");
}

// Names have at most 1023 characters. A longer one, cut, would lead to another file, and so leads to none.
TEST(StructureCheck, PathsOfAnyLength)
{
    DiscRig rig;
    putSmallDisc(rig, 1);
    rig.put("project.ini", "[VTS_1]\nskipvts=1\n");
    const std::u16string project = rig.path("project.ini"), disc = rig.path("disc/");
    const std::string narrowProject = toUtf8(project), narrowDisc = toUtf8(disc);
    for (const uint64_t length : { 900u, 1011u, 1012u, 1013u, 1023u, 1024u, 1025u, 2000u, 4096u, 5000u, 70000u }) {
        SCOPED_TRACE(length);
        std::u16string path = rig.path("none/");
        while (path.size() < length) path += path.size() % 50 ? u'n' : u'/';
        const std::string narrow = toUtf8(path);
        const OrvWChar *wide = orvHostText(path.c_str()), *none = orvHostText(u"");
        EXPECT_EQ(CheckDVDStructureW(orvHostText(project.c_str()), wide, none), 0x840007D5u);
        EXPECT_EQ(CheckDVDStructure(narrowProject.c_str(), narrow.c_str(), ""), 0x840007D5u);
        const uint64_t noEarlierRun = CheckDVDStructureW(orvHostText(project.c_str()), orvHostText(disc.c_str()), wide);
        EXPECT_EQ(CheckDVDStructure(narrowProject.c_str(), narrowDisc.c_str(), narrow.c_str()), noEarlierRun);
        EXPECT_EQ(noEarlierRun, length <= 1011 ? FOLDER_MISSING : OS_INVALID_ARGUMENT);
        EXPECT_EQ(rig.differences(rig.before), "");
    }
}

#ifndef _WIN32   // where a path may be longer than 260 characters without more ado

// A folder below the rig's root so deep that its path has so many characters, the trailing separator included.
static std::string deepFolder(DiscRig& rig, uint64_t length)
{
    std::string name;
    uint64_t left = length - rig.path("").size();
    while (left > 0) {
        // No part longer than 200, none that is empty
        const uint64_t part = left > 210 ? 200 : left;
        name += std::string(part - 1, 'd') + "/";
        rig.putFolder(name);
        left -= part;
    }
    EXPECT_EQ(rig.path(name).size(), length);
    return name;
}

static void fixManager(Files& files, const std::string& name)
{
    set(files, name + ".IFO", 0x0C, "00 00 00 03");
    set(files, name + ".IFO", 0x1C, "00 00 00 01");
    set(files, name + ".IFO", 0xC0, "00 00 00 02");
    set(files, name + ".IFO", 2048 + 16, "00 00 00 04");
    files[name + ".BUP"] = files[name + ".IFO"];
}

TEST(StructureCheck, TheLongestPath)
{
    for (const bool separator : { true, false }) {
        DiscRig rig;
        const std::string deep = deepFolder(rig, 1011);   // and 12 characters for VTS_01_0.IFO
        rig.put(deep + "VIDEO_TS.IFO", makeManager(4096, 1, 1));
        rig.put(deep + "VTS_01_0.IFO", makeIfo(2048, 1));
        EXPECT_EQ(rig.check(rig.path(deep.substr(0, deep.size() - (separator ? 0 : 1))), u""), 0u);
        Files expected = rig.before;
        fixManager(expected, deep + "VIDEO_TS");
        fixTitleSet(expected, deep + "VTS_01_0");
        EXPECT_EQ(rig.differences(expected), "");
    }
}

TEST(StructureCheck, APathTooLong)
{
    for (const uint64_t length : { 1012u, 1013u, 1016u, 1020u }) {
        SCOPED_TRACE(length);
        DiscRig rig;
        const std::string deep = deepFolder(rig, length);
        rig.put(deep + "VIDEO_TS.IFO", makeManager(4096, 1, 1));
        rig.put(deep + "VTS_01_0.IFO", makeIfo(2048, 1));
        // The name that a cut would leave
        if (length > 1012)
            rig.put(deep + std::string("VIDEO_TS.IFO").substr(0, 1024 - length), makeManager(4096, 0, 1));
        EXPECT_EQ(rig.check(rig.path(deep), u""), 0x840007D5u);
        EXPECT_EQ(rig.differences(rig.before), "");
    }
}

TEST(StructureCheck, APathOfTheEarlierRunTooLong)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    rig.put("project.ini", "[VTS_2]\nskipvts=1\n");
    const std::string deep = deepFolder(rig, 1013);
    for (const char* name : { "VTS_02_0.IF", "VTS_02_0.VO", "VTS_02_9.VO", "VTS_02_0.IFO", "VTS_02_9.VOB" }) {
        rig.put(deep + name, makeIfo(4096, 5));
    }
    EXPECT_EQ(rig.check(rig.path("disc/"), rig.path(deep)), OS_INVALID_ARGUMENT);
    Files expected = rig.before;
    fixTitleSet(expected, "disc/VTS_01_0");
    EXPECT_EQ(rig.differences(expected), "");
}

#endif
