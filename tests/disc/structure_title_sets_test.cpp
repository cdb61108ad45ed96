// Sector numbers of a finished disc: what a title set gets, and where the next one begins.
#include "tests/disc/disc_rig.h"

#include "base/wide.h"

#include <gtest/gtest.h>

#include <orven/disc.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace {

// The manager has two sectors and no backup, so title set 1 begins at sector 4.
constexpr uint64_t FIRST_START_AT = 2048 + 16, SECOND_START_AT = 2048 + 28;

Files withManager(Files files, const char* secondStart)
{
    set(files, "disc/VIDEO_TS.IFO", 0x0C, "00 00 00 03");
    set(files, "disc/VIDEO_TS.IFO", 0x1C, "00 00 00 01");
    set(files, "disc/VIDEO_TS.IFO", 0xC0, "00 00 00 02");
    set(files, "disc/VIDEO_TS.IFO", FIRST_START_AT, "00 00 00 04");
    if (secondStart) set(files, "disc/VIDEO_TS.IFO", SECOND_START_AT, secondStart);
    files["disc/VIDEO_TS.BUP"] = files["disc/VIDEO_TS.IFO"];
    return files;
}

struct TitleSetFields {
    const char *last, *lastOfIfo, *menuVob, *titleVobs;   // 0x0C, 0x1C, 0xC0, 0xC4
};
// Of a title set of an IFO of one sector and nothing else: two sectors long
const TitleSetFields SMALL = { "00 00 00 01", "00 00 00 00", "00 00 00 01", "00 00 00 01" };

void setTitleSet(Files& files, const std::string& name, const TitleSetFields& fields)
{
    set(files, "disc/" + name + ".IFO", 0x0C, fields.last);
    set(files, "disc/" + name + ".IFO", 0x1C, fields.lastOfIfo);
    set(files, "disc/" + name + ".IFO", 0xC0, fields.menuVob);
    set(files, "disc/" + name + ".IFO", 0xC4, fields.titleVobs);
    files["disc/" + name + ".BUP"] = files["disc/" + name + ".IFO"];
}

typedef std::vector<std::pair<const char*, uint64_t>> Sizes;

struct TitleSetCase {
    const char* what;
    uint64_t ifo;
    Sizes files;   // bytes
    TitleSetFields fields;
    const char* secondStart;
};

const TitleSetCase CASES[] = {
    { "an IFO alone", 2048, {}, SMALL, "00 00 00 06" },
    { "no menu VOB: both VOBs begin at one place",
      2 * 2048,
      { { "VTS_01_1.VOB", 3 * 2048 } },
      { "00 00 00 06", "00 00 00 01", "00 00 00 02", "00 00 00 02" },
      "00 00 00 0B" },
    { "an empty menu VOB",
      2 * 2048,
      { { "VTS_01_0.VOB", 0 }, { "VTS_01_1.VOB", 3 * 2048 } },
      { "00 00 00 06", "00 00 00 01", "00 00 00 02", "00 00 00 02" },
      "00 00 00 0B" },
    { "a menu VOB alone",
      2 * 2048,
      { { "VTS_01_0.VOB", 6 * 2048 } },
      { "00 00 00 09", "00 00 00 01", "00 00 00 02", "00 00 00 08" },
      "00 00 00 0E" },
    // 3000 + 2 x 3900 = 10800 bytes are 5 sectors, 3000 + 3900 = 6900 bytes are 3; cut one by one they would be 3
    // and 2.
    { "sizes of menu VOB and IFO are added, then cut",
      3900,
      { { "VTS_01_0.VOB", 3000 } },
      { "00 00 00 04", "00 00 00 00", "00 00 00 01", "00 00 00 03" },
      "00 00 00 09" },
    // 1000 + 2 x 2600 = 6200 bytes: 3 sectors; 1000 + 2600 = 3600 bytes: 1 sector
    { "a menu VOB of less than a sector",
      2600,
      { { "VTS_01_0.VOB", 1000 }, { "VTS_01_1.VOB", 2048 } },
      { "00 00 00 03", "00 00 00 00", "00 00 00 01", "00 00 00 01" },
      "00 00 00 08" },
    { "sizes of title VOBs are cut, then added",
      2048,
      { { "VTS_01_1.VOB", 2047 }, { "VTS_01_2.VOB", 4095 }, { "VTS_01_3.VOB", 2049 } },
      { "00 00 00 03", "00 00 00 00", "00 00 00 01", "00 00 00 01" },
      "00 00 00 08" },
    { "nine title VOBs: 1 + 2 + 4 + ... + 256 = 511 sectors",
      2048,
      { { "VTS_01_1.VOB", 1 * 2048 },
        { "VTS_01_2.VOB", 2 * 2048 },
        { "VTS_01_3.VOB", 4 * 2048 },
        { "VTS_01_4.VOB", 8 * 2048 },
        { "VTS_01_5.VOB", 16 * 2048 },
        { "VTS_01_6.VOB", 32 * 2048 },
        { "VTS_01_7.VOB", 64 * 2048 },
        { "VTS_01_8.VOB", 128 * 2048 },
        { "VTS_01_9.VOB", 256 * 2048 } },
      { "00 00 02 00", "00 00 00 00", "00 00 00 01", "00 00 00 01" },
      "00 00 02 05" },
    { "gaps",
      2048,
      { { "VTS_01_2.VOB", 2 * 2048 }, { "VTS_01_5.VOB", 16 * 2048 }, { "VTS_01_9.VOB", 256 * 2048 } },
      { "00 00 01 13", "00 00 00 00", "00 00 00 01", "00 00 00 01" },
      "00 00 01 18" },
    { "numbers behind 9 and other names",
      2048,
      { { "VTS_01_10.VOB", 2048 },
        { "VTS_01_11.VOB", 2048 },
        { "VTS_01_01.VOB", 2048 },
        { "VTS_1_1.VOB", 2048 },
        { "VTS_001_1.VOB", 2048 },
        { "VTS_01_1.AOB", 2048 } },
      SMALL,
      "00 00 00 06" },
};

void putSmallDisc(DiscRig& rig, uint16_t titleSets)
{
    rig.put("disc/VIDEO_TS.IFO", makeManager(4096, titleSets, 1));
    for (uint16_t n = 1; n <= titleSets; n++) {
        rig.put("disc/VTS_0" + std::to_string(n) + "_0.IFO", makeIfo(2048, uint8_t(n)));
    }
}

}   // namespace

TEST(StructureCheck, TitleSets)
{
    for (const TitleSetCase& c : CASES) {
        SCOPED_TRACE(c.what);
        DiscRig rig;
        putSmallDisc(rig, 2);
        rig.put("disc/VTS_01_0.IFO", makeIfo(c.ifo, 1));
        for (const auto& [name, bytes] : c.files) rig.put(std::string("disc/") + name, Bytes(bytes, 0x66));
        EXPECT_EQ(rig.check(), 0u);
        Files expected = withManager(rig.before, c.secondStart);
        setTitleSet(expected, "VTS_01_0", c.fields);
        setTitleSet(expected, "VTS_02_0", SMALL);
        EXPECT_EQ(rig.differences(expected), "");
    }
}

// A backup is written over whatever it was, and its size counts nothing.
TEST(StructureCheck, BackupsOfTitleSets)
{
    for (const uint64_t bytes : { 0u, 1u, 2048u, 90000u }) {
        SCOPED_TRACE(bytes);
        DiscRig rig;
        putSmallDisc(rig, 2);
        rig.put("disc/VTS_01_0.BUP", Bytes(bytes, 0x12));
        EXPECT_EQ(rig.check(), 0u);
        Files expected = withManager(rig.before, "00 00 00 06");
        setTitleSet(expected, "VTS_01_0", SMALL);
        setTitleSet(expected, "VTS_02_0", SMALL);
        EXPECT_EQ(rig.differences(expected), "");
    }
}

TEST(StructureCheck, NobodyLooksWhetherATitleSetHasItsBackup)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    rig.putFolder("disc/VTS_01_0.BUP/");
    EXPECT_EQ(rig.check(), 0u);
    Files expected = withManager(rig.before, "00 00 00 06");
    setTitleSet(expected, "VTS_01_0", SMALL);
    setTitleSet(expected, "VTS_02_0", SMALL);
    expected.erase("disc/VTS_01_0.BUP");
    EXPECT_EQ(rig.differences(expected), "");
}

// A VOB that can't be opened is one that is not there.
TEST(StructureCheck, FoldersInThePlaceOfVobs)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    rig.putFolder("disc/VTS_01_0.VOB/");
    rig.putFolder("disc/VTS_01_1.VOB/");
    rig.put("disc/VTS_01_2.VOB", Bytes(2048));
    rig.putFolder("disc/VTS_01_9.VOB/");
    EXPECT_EQ(rig.check(), 0u);
    Files expected = withManager(rig.before, "00 00 00 07");
    setTitleSet(expected, "VTS_01_0", { "00 00 00 02", "00 00 00 00", "00 00 00 01", "00 00 00 01" });
    setTitleSet(expected, "VTS_02_0", SMALL);
    EXPECT_EQ(rig.differences(expected), "");
}

// Files with holes: a menu VOB of 4 GiB and 3 sectors, a title VOB of 5 GiB.
TEST(StructureCheck, FilesThatNeedMoreThan32Bits)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    const std::filesystem::path menu(rig.path("disc/VTS_01_0.VOB")), title(rig.path("disc/VTS_01_1.VOB"));
    writeFile(menu.u16string(), "");
    writeFile(title.u16string(), "");
    std::error_code full;
    std::filesystem::resize_file(menu, 0x100001800, full);
    if (!full) std::filesystem::resize_file(title, 0x140000000, full);
    if (full) GTEST_SKIP() << "no room for files with holes";
    EXPECT_EQ(rig.check(), 0u);
    Files expected = withManager(rig.before, "00 48 00 09");
    setTitleSet(expected, "VTS_01_0", { "00 48 00 04", "00 00 00 00", "00 00 00 01", "00 20 00 04" });
    std::filesystem::remove(menu);
    std::filesystem::remove(title);
    setTitleSet(expected, "VTS_02_0", SMALL);
    EXPECT_EQ(rig.differences(expected), "");
}

// A title set that is skipped passes only where a ninth title VOB closes the search. Its files are only read.
TEST(StructureCheck, SkippedTitleSetNeedsANinthVob)
{
    for (const bool ninth : { false, true }) {
        SCOPED_TRACE(ninth);
        DiscRig rig;
        putSmallDisc(rig, 3);
        rig.put("project.ini", "[VTS_1]\nskipvts=0\n[VTS_2]\nskipvts=1\n");
        rig.put("disc/VTS_02_1.VOB", Bytes(100 * 2048));   // not looked at, as all of title set 2
        rig.put("disc/VTS_02_9.VOB", Bytes(100 * 2048));
        rig.put("previous/VTS_02_0.IFO", makeIfo(3 * 2048, 7));
        rig.put("previous/VTS_02_0.VOB", Bytes(4 * 2048));
        rig.put("previous/VTS_02_1.VOB", Bytes(5 * 2048));
        rig.put("previous/VTS_02_8.VOB", Bytes(6 * 2048));
        if (ninth) rig.put("previous/VTS_02_9.VOB", "");   // an empty one does
        EXPECT_EQ(rig.check(), ninth ? 0u : FILE_MISSING);
        Files expected = rig.before;
        if (ninth) {
            expected = withManager(rig.before, "00 00 00 06");
            // 4 + 2 x 3 + 5 + 6 = 21 sectors behind sector 6
            set(expected, "disc/VIDEO_TS.IFO", 2048 + 40, "00 00 00 1B");
            expected["disc/VIDEO_TS.BUP"] = expected["disc/VIDEO_TS.IFO"];
            setTitleSet(expected, "VTS_03_0", SMALL);
        }
        setTitleSet(expected, "VTS_01_0", SMALL);   // fixed either way
        EXPECT_EQ(rig.differences(expected), "");
    }
}

// 2500 + 2 x 2500 = 7500 bytes are 3 sectors, 4095 bytes one, 2047 none.
TEST(StructureCheck, SizesOfASkippedTitleSet)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    rig.put("project.ini", "[VTS_1]\nskipvts=1\n");
    rig.put("previous/VTS_01_0.IFO", makeIfo(2500, 7));
    rig.put("previous/VTS_01_0.VOB", Bytes(2500));
    rig.put("previous/VTS_01_4.VOB", Bytes(4095));
    rig.put("previous/VTS_01_9.VOB", Bytes(2047));
    rig.put("previous/VTS_01_10.VOB", Bytes(2048));
    EXPECT_EQ(rig.check(), 0u);
    Files expected = withManager(rig.before, "00 00 00 08");
    setTitleSet(expected, "VTS_02_0", SMALL);
    EXPECT_EQ(rig.differences(expected), "");
}

TEST(StructureCheck, WhichTitleSetsAreSkipped)
{
    const struct {
        const char* project;
        bool skipped;   // title set 1
    } cases[] = {
        { "[VTS_1]\nskipvts=1\n", true },
        { "[vts_1]\nSkipVTS = 2 ; \n", true },
        { "[VTS_1]\nskipvts=4294967295\n", true },
        { "[VTS_1]\nskipvts=\"1\"\n", true },
        { "[VTS_1]\nskipvts=0\n", false },
        { "[VTS_1]\nskipvts=\n", false },
        { "[VTS_1]\nskipvts=yes\n", false },
        { "[VTS_01]\nskipvts=1\n", false },
        { "[VTS_2]\nskipvts=0\n", false },
        { "[VTS_1_MENU]\nskipvts=1\n[VMG]\nskipvts=1\n[VTS_11]\nskipvts=1\nskipmenu=1\n", false },
        { "", false },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.project);
        DiscRig rig;
        putSmallDisc(rig, 2);
        rig.put("project.ini", c.project);
        rig.put("previous/VTS_01_0.IFO", makeIfo(5 * 2048, 7));
        rig.put("previous/VTS_01_9.VOB", Bytes(2048));
        EXPECT_EQ(rig.check(), 0u);
        Files expected = withManager(rig.before, c.skipped ? "00 00 00 0F" : "00 00 00 06");
        if (!c.skipped) setTitleSet(expected, "VTS_01_0", SMALL);
        setTitleSet(expected, "VTS_02_0", SMALL);
        EXPECT_EQ(rig.differences(expected), "");
    }
}

TEST(StructureCheck, SkippedTitleSetOfTwoDigits)
{
    DiscRig rig;
    putSmallDisc(rig, 9);
    rig.put("disc/VIDEO_TS.IFO", makeManager(4096, 10, 1));
    rig.put("project.ini", "[VTS_10]\nskipvts=1\n");
    rig.put("previous/VTS_10_0.IFO", makeIfo(2048, 7));
    EXPECT_EQ(rig.check(), FILE_MISSING);
    rig.put("previous/VTS_10_9.VOB", Bytes(2048));
    EXPECT_EQ(rig.check(), 0u);
    EXPECT_EQ(toHex(rig.now()["disc/VIDEO_TS.IFO"].data() + 2048 + 16 + 9 * 12, 4), "00 00 00 16");   // 4 + 9 x 2
}

// Separators are added to the disc's path alone: this one is the beginning of the names.
TEST(StructureCheck, PathOfTheEarlierRunIsTakenAsItStands)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    rig.put("project.ini", "[VTS_1]\nskipvts=1\n");
    rig.put("previousVTS_01_0.IFO", makeIfo(2 * 2048, 7));
    rig.put("previousVTS_01_9.VOB", Bytes(2048));
    EXPECT_EQ(rig.check(rig.path("disc/"), rig.path("previous")), 0u);
    Files expected = withManager(rig.before, "00 00 00 09");
    setTitleSet(expected, "VTS_02_0", SMALL);
    EXPECT_EQ(rig.differences(expected), "");
}

TEST(StructureCheck, EarlierRunInTheFolderOfTheDisc)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    rig.put("project.ini", "[VTS_1]\nskipvts=1\n");
    rig.put("disc/VTS_01_9.VOB", Bytes(2048));
    EXPECT_EQ(rig.check(rig.path("disc/"), rig.path("disc/")), 0u);
    Files expected = withManager(rig.before, "00 00 00 07");
    setTitleSet(expected, "VTS_02_0", SMALL);   // title set 1 is only read
    EXPECT_EQ(rig.differences(expected), "");
}

TEST(StructureCheck, SkippedTitleSetsMayBeReadOnly)
{
    DiscRig rig;
    putSmallDisc(rig, 2);
    rig.put("project.ini", "[VTS_1]\nskipvts=1\n");
    rig.put("previous/VTS_01_0.IFO", makeIfo(2048, 7));
    rig.put("previous/VTS_01_9.VOB", "");
    const std::filesystem::path ifo(rig.path("previous/VTS_01_0.IFO"));
    std::filesystem::permissions(ifo, std::filesystem::perms::owner_read);
    EXPECT_EQ(rig.check(), 0u);
    std::filesystem::permissions(ifo, std::filesystem::perms::owner_all);
    Files expected = withManager(rig.before, "00 00 00 06");
    setTitleSet(expected, "VTS_02_0", SMALL);
    EXPECT_EQ(rig.differences(expected), "");
}
