// Navigation packs of menus: the fields that differ from a title's, and the file. nav_highlight_test.cpp has the
// highlight.
#include "base/result.h"
#include "tests/support/log.h"
#include "tests/support/write_limit.h"
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

namespace {

// An animated menu of two units at 0 and 4, and a still at 7; ten packs.
NavSpec twoMenus()
{
    NavSpec given;
    given.audioCount = 1;
    given.subPictureCount = 1;
    given.vobus = unitRecords({
        { .sector = 0, .scr = 0, .firstPts = 36000, .vobId = 1, .secondRefEnd = 2, .temporalRef = 2 },
        { .sector = 4,
          .scr = 43200,
          .firstPts = 79200,
          .vobId = 1,
          .firstRefEnd = 2,
          .secondRefEnd = 2,
          .thirdRefEnd = 2,
          .temporalRef = 2 },
        { .sector = 7, .scr = 0, .firstPts = 36000, .pictureCount = 1, .vobId = 2, .firstRefEnd = 1 },
    });
    given.packs = {
        { 1, 28800, PACK_AC3, 0, 0, 1 }, { 2, 36000, PACK_SUBPICTURE, 0, 0, 1 }, { 5, 72000, PACK_AC3, 0, 0, 1 },
        { 6, 73000, PACK_AC3, 0, 0, 1 }, { 8, 36000, PACK_SUBPICTURE, 0, 7, 2 },
    };
    given.menus = { menuOf(1), menuOf(2) };
    given.menus[1].colorSets[0][0] = 0x77;
    given.sectors = 10;
    return given;
}

}   // namespace

// ---- fields ------------------------------------------------------------------------------------------------------

TEST(NavMenu, EveryFieldOfTheFirstPack)
{
    const NavRun run = setupMenu(twoMenus());
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(differencesIn(run, 0,
                            {
                                { 23, "06" },   // one stream; the low two bits stay
                                { 38, "00 00 01 BF 03 D4 00" },
                                { 57, "00 00 70 80" },   // 28800
                                { 61, "00 01 19 40" },   // 72000
                                { 69, "00 00 00 40" },
                                { 141, "00 01" },         // a new highlight
                                { 143, "00 00 8C A0" },   // from 36000
                                { 147, "FF FF FF FF  FF FF FF FF" },
                                { 155, "10 00  00  01 01  00 00 00" },
                                { 163, COLOR_BYTES },
                                { 187, SOME_BUTTON },
                                { 1024, "00 00 01 BF 03 FA 01" },
                                { 1039, "00 00 00 03" },
                                { 1043, "00 00 00 03" },   // unknown: the unit's size
                                { 1047, "00 00 00 02" },
                                { 1055, "00 01 00 01" },
                                { 1059, "00 00 00 40" },
                                { 1075, "00 00 8C A0" },
                                { 1079, "00 01 DE 20" },   // 36000 + 24 x 3600
                                { 1265, "80 00 00 04" },
                                { 1269, NONE_18 "80 00 00 04" },   // 73800
                                { 1345, "80 00 00 04  3F FF FF FF" },
                                { 1353, NONE_18 "3F FF FF FF" },
                                { 1429, "BF FF FF FF" },
                                { 1433, "00 01" },
                                { 1449, "7F FF FF FF" },
                            }),
              "");
}

TEST(NavMenu, EveryFieldOfTheLastPackOfAVob)
{
    const NavRun run = setupMenu(twoMenus());
    EXPECT_EQ(differencesIn(run, 4,
                            {
                                { 23, "06" },
                                { 38, "00 00 01 BF 03 D4 00  00 00 00 04" },
                                { 57, "00 01 19 40" },   // 72000
                                { 61, "00 01 C2 00" },   // 115200
                                { 65, "00 01 DE 20" },   // 79200 + 12 x 3600
                                { 69, "00 00 00 52" },
                                { 141, "00 02" },   // the highlight as before
                                { 143, "00 00 8C A0" },
                                { 147, "FF FF FF FF  FF FF FF FF" },
                                { 155, "10 00  00  01 01  00 00 00" },
                                { 163, COLOR_BYTES },
                                { 187, SOME_BUTTON },
                                { 1024, "00 00 01 BF 03 FA 01  00 00 A8 C0  00 00 00 04  00 00 00 02" },
                                { 1043, "00 00 00 02  00 00 00 02  00 00 00 02" },
                                { 1055, "00 01 00 01" },
                                { 1059, "00 00 00 52" },
                                { 1075, "00 00 8C A0  00 01 DE 20" },
                                { 1265, "BF FF FF FF" },
                                { 1269, NONE_18 "3F FF FF FF" },
                                { 1345, "3F FF FF FF  80 00 00 04" },
                                { 1353, NONE_18 "3F FF FF FF" },   // 27000 lies before the first
                                { 1429, "80 00 00 04" },
                                { 1433, "00 01" },
                                { 1449, "80 00 00 04" },   // the sub-picture began four packs before
                            }),
              "");
}

TEST(NavMenu, EveryFieldOfAStill)
{
    const NavRun run = setupMenu(twoMenus());
    EXPECT_EQ(differencesIn(run, 7,
                            {
                                { 23, "06" },
                                { 38, "00 00 01 BF 03 D4 00  00 00 00 07" },
                                { 57, "00 00 8C A0" },   // 36000
                                { 61, "00 01 35 60" },   // one picture is declared twelve frames long
                                { 65, "00 00 9A B0" },   // 36000 + 3600
                                { 69, "00 00 00 40" },
                                { 141, "00 01" },
                                { 143, "00 00 8C A0" },
                                { 147, "FF FF FF FF  FF FF FF FF" },
                                { 155, "10 00  00  02 02  00 00 00" },
                                { 163, COLOR_BYTES },
                                { 163, "77" },
                                { 187, SOME_BUTTON SOME_BUTTON },
                                { 1024, "00 00 01 BF 03 FA 01  00 00 00 00  00 00 00 07  00 00 00 02  00 00 00 01" },
                                { 1055, "00 02 00 01" },
                                { 1059, "00 00 00 40" },
                                { 1075, "00 00 8C A0  00 01 35 60" },   // and so the VOB
                                { 1265, "BF FF FF FF" },
                                { 1269, NONE_18 "3F FF FF FF" },
                                { 1345, "3F FF FF FF  3F FF FF FF" },
                                { 1353, NONE_18 "3F FF FF FF" },
                                { 1429, "BF FF FF FF" },
                                { 1449, "7F FF FF FF" },
                            }),
              "");
}

TEST(NavMenu, NothingElseChanges)
{
    const NavSpec given = twoMenus();
    EXPECT_EQ(strayChanges(given, setupMenu(given)), "");
}

TEST(NavMenu, EndOfTheVob)
{
    // VOB of so many pictures at so many ticks behind the first record's PTS: 36000 + frames x 3600.
    const struct {
        uint64_t pts, pictures;
        const char* end;
    } rows[] = {
        { 36000, 1, "00 01 35 60" },                                                // below ten frames: twelve
        { 36000, 9, "00 01 35 60" },         { 36000, 10, "00 01 19 40" },          // 72000
        { 36000, 25, "00 01 EC 30" },                                               // 126000
        { 39599, 9, "00 01 35 60" },                                                // 9.99 frames
        { 36001, 10, "00 01 19 40" },                                               // the rest of a frame is dropped
        { 36000 + 3599, 10, "00 01 19 40" }, { 36000 + 3600, 10, "00 01 27 50" },   // 75600
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.pts) + "/" + std::to_string(row.pictures));
        NavSpec given;
        given.vobus = unitRecords({ { .sector = 0, .firstPts = 36000, .vobId = 1 },
                                    { .sector = 1, .firstPts = row.pts, .pictureCount = row.pictures, .vobId = 2 } });
        given.menus = { menuOf(0), menuOf(0) };
        EXPECT_EQ(setupMenu(given).hexAt(1, 1079, 4), row.end);
    }
}

TEST(NavMenu, VobThatEndsBeforeTheFirstRecordBegins)
{
    // The count of frames is unsigned: (2^64 - 6000) / 3600, and 36000 + that x 3600 is 28784 in 32 bits.
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 36000, .vobId = 1 },
                                { .sector = 1, .firstPts = 26400, .pictureCount = 1, .vobId = 2 } });
    given.menus = { menuOf(0), menuOf(0) };
    EXPECT_EQ(setupMenu(given).hexAt(1, 1079, 4), "00 00 70 70");
}

TEST(NavMenu, ElapsedTimeBeginsWithTheVobOrTheCell)
{
    NavSpec given;
    given.vobus = unitRecords({
        { .sector = 0, .vobId = 1, .cellId = 1 },
        { .sector = 1, .vobId = 1, .cellId = 1 },
        { .sector = 2, .vobId = 1, .cellId = 2 },
        { .sector = 3, .vobId = 1, .cellId = 2 },
        { .sector = 4, .vobId = 2, .cellId = 2 },
        { .sector = 5, .vobId = 2, .cellId = 2 },
        { .sector = 6, .vobId = 2, .cellId = 2 },
        { .sector = 7, .vobId = 3, .cellId = 1 },
    });
    given.menus = { menuOf(0), menuOf(0), menuOf(0) };
    const NavRun run = setupMenu(given);
    const char* const times[] = { "00 00 00 40", "00 00 00 52", "00 00 00 40", "00 00 00 52",
                                  "00 00 00 40", "00 00 00 52", "00 00 00 64", "00 00 00 40" };
    for (uint64_t i = 0; i < 8; i++) {
        EXPECT_EQ(run.hexAt(i, 69, 4), times[i]) << i;
        EXPECT_EQ(run.hexAt(i, 1059, 4), times[i]) << i;
    }
}

TEST(NavMenu, EndOfPresentationInTheLastUnitOfEachVob)
{
    NavSpec given;
    given.vobus = unitRecords({
        { .sector = 0, .firstPts = 1000, .vobId = 1 },
        { .sector = 1, .firstPts = 2000, .vobId = 1 },
        { .sector = 2, .firstPts = 3000, .vobId = 2 },
        { .sector = 3, .firstPts = 4000, .vobId = 3 },
        { .sector = 4, .firstPts = 5000, .vobId = 3 },
    });
    given.menus = { menuOf(0), menuOf(0), menuOf(0) };
    const NavRun run = setupMenu(given);
    EXPECT_EQ(run.hexAt(0, 65, 4), "00 00 00 00");
    EXPECT_EQ(run.hexAt(1, 65, 4), "00 00 B0 90");   // 2000 + 43200
    EXPECT_EQ(run.hexAt(2, 65, 4), "00 00 B4 78");   // 46200
    EXPECT_EQ(run.hexAt(3, 65, 4), "00 00 00 00");
    EXPECT_EQ(run.hexAt(4, 65, 4), "00 00 BC 48");   // 48200
}

TEST(NavMenu, SubPictureStreamsOfALetterboxMenu)
{
    NavSpec given = twoMenus();
    given.subPictureCount = 2;
    const NavRun run = setupMenu(given);
    // The second stream has no packs: distance 0.
    EXPECT_EQ(run.words(0, 1449, 4), "7FFFFFFF 7FFFFFFF 00000000 00000000");
    EXPECT_EQ(run.words(4, 1449, 4), "80000004 7FFFFFFF 00000000 00000000");
    given.subPictureCount = 0;
    EXPECT_EQ(setupMenu(given).words(4, 1449, 32).find_first_not_of("0 "), std::string::npos);
}

// ---- the file ----------------------------------------------------------------------------------------------------

namespace {

struct MenuFile {
    TempDir folder;
    RunRoot run{ 1, folder / u"run.log" };
    std::u16string path = folder / u"VIDEO_TS.VOB";

    uint64_t fill(const NavSpec& given)
    {
        const List<VobuRecord> vobus(given.vobus);
        const List<StreamPackRecord> packs(given.packs);
        return orvSetupMenu(&run.context->head, given.audioCount, given.subPictureCount, given.menus.data(),
                            given.menus.size(), given.standard, path.c_str(), vobus.block, packs.block);
    }
};

}   // namespace

TEST(NavMenu, EmptyListChangesNothing)
{
    MenuFile file;
    const Bytes bytes(3 * 2048 + 5, 0x33);
    writeFile(file.path, bytes);
    NavSpec given;
    given.menus = { menuOf(1) };
    EXPECT_EQ(file.fill(given), 0u);
    EXPECT_TRUE(readFile(file.path) == bytes);
}

TEST(NavMenu, SizeInWholeSectors)
{
    // The last unit reaches to the end of the last whole sector.
    MenuFile file;
    NavSpec given = twoMenus();
    writeFile(file.path, navStream(given) + Bytes(2047, 1));
    EXPECT_EQ(file.fill(given), 0u);
    const Bytes after = readFile(file.path);
    EXPECT_EQ(after.size(), 10 * 2048 + 2047u);
    EXPECT_EQ(toHex(after.data() + 7 * 2048 + 1039, 4), "00 00 00 02");
}

TEST(NavMenu, PackThatCantBeRead)
{
    const NavSpec given = twoMenus();
    for (const uint64_t size : { 7 * 2048u, 8 * 2048 - 1u }) {
        SCOPED_TRACE(size);
        MenuFile file;
        Bytes stream = navStream(given);
        stream.resize(size);
        writeFile(file.path, stream);
        EXPECT_EQ(file.fill(given), 0x84000FB4u);
        EXPECT_TRUE(
            logHolds(file.run.logPath, { { 0x84000FB4, u"Failed to read pack in <orvSetupMenu>: " + file.path } }));
        // Those before it are filled.
        const Bytes after = readFile(file.path);
        EXPECT_EQ(after.size(), size);
        EXPECT_EQ(toHex(after.data() + 57, 4), "00 00 70 80");
        EXPECT_EQ(toHex(after.data() + 4 * 2048 + 57, 4), "00 01 19 40");
    }
}

TEST(NavMenu, MissingFileIsOpenedEmpty)
{
    MenuFile file;
    EXPECT_EQ(file.fill(twoMenus()), 0x84000FB4u);
    EXPECT_TRUE(logHolds(file.run.logPath, { { 0x84000FB4, u"Failed to read pack in <orvSetupMenu>: " + file.path } }));
    EXPECT_TRUE(fileExists(file.path));
    EXPECT_TRUE(readFile(file.path).empty());
}

TEST(NavMenu, FileThatCantBeOpened)
{
    MenuFile file;
    file.path = file.folder / u"no folder/VIDEO_TS.VOB";
    EXPECT_NE(file.fill(twoMenus()), 0u);
}

#ifndef _WIN32

TEST(NavMenu, PackThatCantBeWritten)
{
    MenuFile file;
    const NavSpec given = twoMenus();
    writeFile(file.path, navStream(given));
    {
        const WriteLimit limit(4096);
        EXPECT_EQ(file.fill(given), 0x84000FB3u);
    }
    EXPECT_TRUE(
        logHolds(file.run.logPath, { { 0x84000FB3, u"Failed to write pack in <orvSetupMenu>: " + file.path } }));
}

#endif
