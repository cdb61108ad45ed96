// Sector numbers of a finished disc: what the manager gets, its search table, its backup, and the paths.
#include "base/wide.h"
#include "tests/disc/disc_rig.h"

#include <gtest/gtest.h>

#include <orven/disc.h>

#include <filesystem>
#include <string>

namespace {

// A manager of 3 sectors without a backup, and two title sets.
void putDisc(DiscRig& rig)
{
    rig.put("disc/VIDEO_TS.IFO", makeManager(3 * 2048, 2, 1));
    rig.put("disc/VIDEO_TS.VOB", Bytes(10 * 2048, 0x11));
    rig.put("disc/VTS_01_0.IFO", makeIfo(2 * 2048, 1));
    rig.put("disc/VTS_01_0.BUP", makeIfo(2 * 2048, 2));
    rig.put("disc/VTS_01_0.VOB", Bytes(5 * 2048, 0x22));
    rig.put("disc/VTS_01_1.VOB", Bytes(7 * 2048, 0x33));
    rig.put("disc/VTS_01_2.VOB", Bytes(4 * 2048, 0x44));
    rig.put("disc/VTS_02_0.IFO", makeIfo(4 * 2048, 3));
    rig.put("disc/VTS_02_1.VOB", Bytes(300 * 2048, 0x55));
}

// The manager is 6 sectors long, so title set 1 begins at 6; it has 20 and title set 2 begins at 26.
Files fixedDisc(const DiscRig& rig)
{
    Files files = rig.before;
    set(files, "disc/VIDEO_TS.IFO", 0x0C, "00 00 00 05");
    set(files, "disc/VIDEO_TS.IFO", 0x1C, "00 00 00 02");
    set(files, "disc/VIDEO_TS.IFO", 0xC0, "00 00 00 03");
    set(files, "disc/VIDEO_TS.IFO", 2048 + 16, "00 00 00 06");
    set(files, "disc/VIDEO_TS.IFO", 2048 + 28, "00 00 00 1A");
    files["disc/VIDEO_TS.BUP"] = files["disc/VIDEO_TS.IFO"];
    set(files, "disc/VTS_01_0.IFO", 0x0C, "00 00 00 13");
    set(files, "disc/VTS_01_0.IFO", 0x1C, "00 00 00 01");
    set(files, "disc/VTS_01_0.IFO", 0xC0, "00 00 00 02");
    set(files, "disc/VTS_01_0.IFO", 0xC4, "00 00 00 07");
    files["disc/VTS_01_0.BUP"] = files["disc/VTS_01_0.IFO"];
    set(files, "disc/VTS_02_0.IFO", 0x0C, "00 00 01 33");
    set(files, "disc/VTS_02_0.IFO", 0x1C, "00 00 00 03");
    set(files, "disc/VTS_02_0.IFO", 0xC0, "00 00 00 04");
    set(files, "disc/VTS_02_0.IFO", 0xC4, "00 00 00 04");
    files["disc/VTS_02_0.BUP"] = files["disc/VTS_02_0.IFO"];
    return files;
}

}   // namespace

TEST(StructureCheck, AWholeDisc)
{
    DiscRig rig;
    putDisc(rig);
    EXPECT_EQ(rig.check(), 0u);
    EXPECT_EQ(rig.differences(fixedDisc(rig)), "");
}

TEST(StructureCheck, NarrowForm)
{
    DiscRig rig;
    putDisc(rig);
    EXPECT_EQ(rig.checkNarrow(), 0u);
    EXPECT_EQ(rig.differences(fixedDisc(rig)), "");

    DiscRig empty;
    EXPECT_EQ(empty.checkNarrow(), 0x840007D5u);
    EXPECT_EQ(empty.differences(empty.before), "");
}

// Sizes are added in bytes, then cut to sectors.
TEST(StructureCheck, ManagerCountsItsIfoTwiceBesideTheBackup)
{
    const struct {
        const char* what;
        uint64_t ifo;
        int64_t backup;   // bytes; -1: none
        const char *lastSector, *lastOfIfo, *menuVob, *firstTitleSet;
    } cases[] = {
        { "no backup", 4096, -1, "00 00 00 03", "00 00 00 01", "00 00 00 02", "00 00 00 04" },
        { "an empty backup", 4096, 0, "00 00 00 03", "00 00 00 01", "00 00 00 02", "00 00 00 04" },
        { "a backup of the same size", 4096, 4096, "00 00 00 05", "00 00 00 01", "00 00 00 02", "00 00 00 06" },
        { "a shorter backup", 6144, 2048, "00 00 00 06", "00 00 00 02", "00 00 00 03", "00 00 00 07" },
        { "odd sizes, no backup", 5120, -1, "00 00 00 04", "00 00 00 01", "00 00 00 02", "00 00 00 05" },
        { "odd sizes, a byte too few", 5120, 2047, "00 00 00 04", "00 00 00 01", "00 00 00 02", "00 00 00 05" },
        { "odd sizes together whole", 5120, 2048, "00 00 00 05", "00 00 00 01", "00 00 00 02", "00 00 00 06" },
        { "a long backup", 4097, 100000, "00 00 00 33", "00 00 00 01", "00 00 00 02", "00 00 00 34" },
        { "300 sectors", 614400, 614400, "00 00 03 83", "00 00 01 2B", "00 00 01 2C", "00 00 03 84" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        DiscRig rig;
        rig.put("disc/VIDEO_TS.IFO", makeManager(c.ifo, 1, 1));
        if (c.backup >= 0) rig.put("disc/VIDEO_TS.BUP", makeIfo(uint64_t(c.backup), 9));
        rig.put("disc/VIDEO_TS.VOB", Bytes(50 * 2048));   // not looked at
        rig.put("disc/VTS_01_0.IFO", makeIfo(2048, 1));
        EXPECT_EQ(rig.check(), c.backup >= 0 ? OPEN_BACKUP_RESULT : 0u);
        Files files = rig.now();
        Files expected = rig.before;
        set(expected, "disc/VIDEO_TS.IFO", 0x0C, c.lastSector);
        set(expected, "disc/VIDEO_TS.IFO", 0x1C, c.lastOfIfo);
        set(expected, "disc/VIDEO_TS.IFO", 0xC0, c.menuVob);
        set(expected, "disc/VIDEO_TS.IFO", 2048 + 16, c.firstTitleSet);
        EXPECT_EQ(toHex(files["disc/VIDEO_TS.IFO"]), toHex(expected["disc/VIDEO_TS.IFO"]));
        EXPECT_EQ(toHex(files["disc/VIDEO_TS.VOB"]), toHex(expected["disc/VIDEO_TS.VOB"]));
    }
}

// The backup is open for reading while it is written over: Windows refuses that, other systems don't.
TEST(StructureCheck, BackupOfTheManager)
{
    for (const uint64_t bytes : { 0u, 100u, 6144u, 9000u }) {
        SCOPED_TRACE(bytes);
        DiscRig rig;
        putDisc(rig);
        rig.put("disc/VIDEO_TS.BUP", makeIfo(bytes, 9));
        EXPECT_EQ(rig.check(), OPEN_BACKUP_RESULT);
        Files expected = fixedDisc(rig);
        // 0, 0, 3 and 4 sectors more before the title sets
        const uint64_t more = bytes / 2048;
        set(expected, "disc/VIDEO_TS.IFO", 0x0C, hexOf32(5 + more));
        set(expected, "disc/VIDEO_TS.IFO", 2048 + 16, hexOf32(6 + more));
        set(expected, "disc/VIDEO_TS.IFO", 2048 + 28, hexOf32(26 + more));
        expected["disc/VIDEO_TS.BUP"] =
            OPEN_BACKUP_RESULT ? rig.before["disc/VIDEO_TS.BUP"] : expected["disc/VIDEO_TS.IFO"];
        EXPECT_EQ(rig.differences(expected), "");
    }
}

TEST(StructureCheck, ABackupThatCannotBeWritten)
{
    DiscRig rig;
    putDisc(rig);
    rig.putFolder("disc/VIDEO_TS.BUP/");
    EXPECT_EQ(rig.check(), 0x840007EAu);
    Files expected = fixedDisc(rig);   // all else is done; what can't be opened counts 0 bytes
    expected.erase("disc/VIDEO_TS.BUP");
    EXPECT_EQ(rig.differences(expected), "");
}

// The first call makes the backup, so that the second one counts it.
TEST(StructureCheck, ASecondCall)
{
    DiscRig rig;
    putDisc(rig);
    EXPECT_EQ(rig.check(), 0u);
    for (uint64_t i = 0; i < 2; i++) {
        EXPECT_EQ(rig.check(), OPEN_BACKUP_RESULT);
        Files expected = fixedDisc(rig);
        set(expected, "disc/VIDEO_TS.IFO", 0x0C, "00 00 00 08");
        set(expected, "disc/VIDEO_TS.IFO", 2048 + 16, "00 00 00 09");
        set(expected, "disc/VIDEO_TS.IFO", 2048 + 28, "00 00 00 1D");
        if (OPEN_BACKUP_RESULT == 0) expected["disc/VIDEO_TS.BUP"] = expected["disc/VIDEO_TS.IFO"];
        EXPECT_EQ(rig.differences(expected), "");
    }
}

TEST(StructureCheck, WithAndWithoutATrailingSeparator)
{
    for (const char16_t* ending : { u"", u"/", u"\\", u"//" }) {
        DiscRig rig;
        putDisc(rig);
        SCOPED_TRACE(toUtf8(ending));
        EXPECT_EQ(rig.check(rig.path("disc") + ending, rig.path("previous/")), 0u);
        EXPECT_EQ(rig.differences(fixedDisc(rig)), "");
    }
}

TEST(StructureCheck, AnEmptyPathIsTheCurrentFolder)
{
    DiscRig rig;
    putDisc(rig);
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(rig.root.root / "disc");
    const uint64_t result = rig.check(u"", u"");
    std::filesystem::current_path(here);
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(rig.differences(fixedDisc(rig)), "");
}

TEST(StructureCheck, NoTitleSets)
{
    DiscRig rig;
    rig.put("disc/VIDEO_TS.IFO", makeManager(4096, 0, 1));
    rig.put("disc/VTS_01_0.IFO", makeIfo(2048, 1));
    EXPECT_EQ(rig.check(), 0u);
    Files expected = rig.before;
    set(expected, "disc/VIDEO_TS.IFO", 0x0C, "00 00 00 03");
    set(expected, "disc/VIDEO_TS.IFO", 0x1C, "00 00 00 01");
    set(expected, "disc/VIDEO_TS.IFO", 0xC0, "00 00 00 02");
    expected["disc/VIDEO_TS.BUP"] = expected["disc/VIDEO_TS.IFO"];
    EXPECT_EQ(rig.differences(expected), "");
}

TEST(StructureCheck, WhereTheSearchTableLies)
{
    const struct {
        uint64_t bytes;
        uint32_t sector;
        const char *lastSector, *lastOfIfo, *menuVob, *start;
    } cases[] = {
        { 5 * 2048, 1, "00 00 00 09", "00 00 00 04", "00 00 00 05", "00 00 00 0A" },
        { 5 * 2048, 3, "00 00 00 09", "00 00 00 04", "00 00 00 05", "00 00 00 0A" },
        { 5 * 2048, 4, "00 00 00 09", "00 00 00 04", "00 00 00 05", "00 00 00 0A" },
        { 5 * 2048 + 2047, 4, "00 00 00 0A", "00 00 00 04", "00 00 00 05", "00 00 00 0B" },
        { 300 * 2048, 0x101, "00 00 02 57", "00 00 01 2B", "00 00 01 2C", "00 00 02 58" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sector);
        DiscRig rig;
        rig.put("disc/VIDEO_TS.IFO", makeManager(c.bytes, 1, c.sector));
        rig.put("disc/VTS_01_0.IFO", makeIfo(2048, 1));
        EXPECT_EQ(rig.check(), 0u);
        Files expected = rig.before;
        set(expected, "disc/VIDEO_TS.IFO", 0x0C, c.lastSector);
        set(expected, "disc/VIDEO_TS.IFO", 0x1C, c.lastOfIfo);
        set(expected, "disc/VIDEO_TS.IFO", 0xC0, c.menuVob);
        set(expected, "disc/VIDEO_TS.IFO", c.sector * 2048 + 16, c.start);
        Files files = rig.now();
        EXPECT_EQ(files["disc/VIDEO_TS.IFO"] == expected["disc/VIDEO_TS.IFO"], true);
        EXPECT_EQ(files["disc/VIDEO_TS.BUP"] == expected["disc/VIDEO_TS.IFO"], true);
    }
}

// The table, read as it was and written last, then stands where the new fields would.
TEST(StructureCheck, ASearchTableInTheFirstSector)
{
    DiscRig rig;
    rig.put("disc/VIDEO_TS.IFO", makeManager(2 * 2048, 3, 0));
    for (const char* name : { "disc/VTS_01_0.IFO", "disc/VTS_02_0.IFO", "disc/VTS_03_0.IFO" }) {
        rig.put(name, makeIfo(2048, 1));
    }
    EXPECT_EQ(rig.check(), 0u);
    Files expected = rig.before;
    set(expected, "disc/VIDEO_TS.IFO", 16, "00 00 00 04");
    set(expected, "disc/VIDEO_TS.IFO", 28, "00 00 00 06");   // 0x1C, as it happens
    set(expected, "disc/VIDEO_TS.IFO", 40, "00 00 00 08");
    Files files = rig.now();
    EXPECT_EQ(toHex(files["disc/VIDEO_TS.IFO"]), toHex(expected["disc/VIDEO_TS.IFO"]));
    EXPECT_EQ(toHex(files["disc/VIDEO_TS.BUP"]), toHex(expected["disc/VIDEO_TS.IFO"]));
}

// 170 entries of 12 bytes fill the table's sector behind its head of 8. The number of title sets is not held against
// it.
TEST(StructureCheck, MoreTitleSetsThanTheTableHolds)
{
    for (const uint64_t count : { 170u, 171u, 173u }) {
        SCOPED_TRACE(count);
        DiscRig rig;
        rig.put("disc/VIDEO_TS.IFO", makeManager(3 * 2048, uint16_t(count), 1));
        for (uint64_t n = 1; n <= count + 1; n++) {
            const std::string number = n < 10 ? "0" + std::to_string(n) : std::to_string(n);
            rig.put("disc/VTS_" + number + "_0.IFO", makeIfo(2048, uint8_t(n)));
        }
        EXPECT_EQ(rig.check(), 0u);
        Files expected = rig.before;
        set(expected, "disc/VIDEO_TS.IFO", 0x0C, "00 00 00 05");
        set(expected, "disc/VIDEO_TS.IFO", 0x1C, "00 00 00 02");
        set(expected, "disc/VIDEO_TS.IFO", 0xC0, "00 00 00 03");
        for (uint64_t k = 0; k < 170; k++) {
            set(expected, "disc/VIDEO_TS.IFO", 2048 + 16 + 12 * k, hexOf32(6 + 2 * k));   // two sectors each
        }
        set(expected, "disc/VIDEO_TS.IFO", 2 * 2048 - 4, "00 00 01 58");
        expected["disc/VIDEO_TS.BUP"] = expected["disc/VIDEO_TS.IFO"];
        for (uint64_t n = 1; n <= count; n++) {
            const std::string number = n < 10 ? "0" + std::to_string(n) : std::to_string(n);
            const std::string name = "disc/VTS_" + number + "_0.";
            set(expected, name + "IFO", 0x0C, "00 00 00 01");
            set(expected, name + "IFO", 0x1C, "00 00 00 00");
            set(expected, name + "IFO", 0xC0, "00 00 00 01");
            set(expected, name + "IFO", 0xC4, "00 00 00 01");
            expected[name + "BUP"] = expected[name + "IFO"];
        }
        EXPECT_EQ(rig.differences(expected), "");
    }
}

TEST(StructureCheck, NullArguments)
{
    DiscRig rig;
    putDisc(rig);
    const std::u16string project = rig.path("project.ini"), disc = rig.path("disc/"), previous = rig.path("previous/");
    const std::string narrowDisc = std::filesystem::path(disc).string();
    EXPECT_EQ(CheckDVDStructureW(orvHostText(project.c_str()), nullptr, orvHostText(previous.c_str())), 0x84000057u);
    EXPECT_EQ(CheckDVDStructureW(nullptr, nullptr, nullptr), 0x84000057u);
    EXPECT_EQ(CheckDVDStructure(nullptr, narrowDisc.c_str(), ""), 0x84000057u);
    EXPECT_EQ(CheckDVDStructure("none.ini", nullptr, ""), 0x84000057u);
    EXPECT_EQ(CheckDVDStructure("none.ini", narrowDisc.c_str(), nullptr), 0x84000057u);
    EXPECT_EQ(CheckDVDStructure(nullptr, nullptr, nullptr), 0x84000057u);
    EXPECT_EQ(rig.differences(rig.before), "");

    // Without a project no title set is skipped, and without a skipped one nobody asks for the earlier run.
    EXPECT_EQ(CheckDVDStructureW(nullptr, orvHostText(disc.c_str()), nullptr), 0u);
    EXPECT_EQ(rig.differences(fixedDisc(rig)), "");
}

TEST(StructureCheck, NoEarlierRunWhereATitleSetIsSkipped)
{
    DiscRig rig;
    putDisc(rig);
    rig.put("disc/VTS_02_9.VOB", Bytes(2048));
    rig.put("project.ini", "[VTS_2]\nskipvts=1\n");
    const std::u16string project = rig.path("project.ini"), disc = rig.path("disc/");
    EXPECT_EQ(CheckDVDStructureW(orvHostText(project.c_str()), orvHostText(disc.c_str()), nullptr), 0x84000057u);
    Files expected = rig.before;   // the title set before it is fixed already
    const Files fixed = fixedDisc(rig);
    for (const char* name : { "disc/VTS_01_0.IFO", "disc/VTS_01_0.BUP" }) expected[name] = fixed.at(name);
    EXPECT_EQ(rig.differences(expected), "");
}
