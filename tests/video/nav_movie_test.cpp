// Navigation packs of a title: every field. Files, search and sync entries have tests of their own beside this one.
#include "base/time_code.h"
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

// ---- fields ------------------------------------------------------------------------------------------------------

TEST(NavMovie, EveryFieldOfTheFirstPack)
{
    const NavRun run = setupTitle(threeUnits());
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(
        differencesIn(run, 0,
                      {
                          { 23, "0A" },   // two streams; the low two bits stay
                          { 38, "00 00 01 BF 03 D4 00" },
                          { 45, "00 00 00 00" },   // nv_pck_lbn
                          { 57, "00 00 70 80" },   // vobu_s_ptm 28800
                          { 61, "00 01 19 40" },   // vobu_e_ptm 28800 + 12 x 3600
                          { 65, "00 00 00 00" },   // vobu_se_e_ptm
                          { 69, "00 00 00 40" },   // e_eltm
                          { 1024, "00 00 01 BF 03 FA 01" },
                          { 1031, "00 00 00 00" },   // nv_pck_scr
                          { 1035, "00 00 00 00" },   // nv_pck_lbn
                          { 1039, "00 00 00 02" },   // vobu_ea
                          { 1043, "00 00 00 01  00 00 00 02  00 00 00 00" },
                          { 1055, "00 01 00 01" },                                     // VOB, a byte of nothing, cell
                          { 1059, "00 00 00 40" },                                     // c_eltm
                          { 1075, "00 00 8C A0" },                                     // vob_v_s_s_ptm 36000
                          { 1079, "00 02 4E A0" },                                     // vob_v_e_e_ptm 151200
                          { 1265, "80 00 00 03" },                                     // next video VOBU
                          { 1269, NONE_16 "3F FF FF FF  80 00 00 03  80 00 00 03" },   // 1 s, 0.5 s: at 118800, 73800
                          { 1345, "80 00 00 03  3F FF FF FF" },                        // next, previous
                          { 1353, NONE_16 "3F FF FF FF  3F FF FF FF  3F FF FF FF" },
                          { 1429, "BF FF FF FF" },    // previous video VOBU
                          { 1433, "00 02  00 00" },   // AC-3 at 2; LPCM does not begin before 28800
                      }),
        "");
}

TEST(NavMovie, EveryFieldOfAMiddlePack)
{
    const NavRun run = setupTitle(threeUnits());
    EXPECT_EQ(
        differencesIn(run, 3,
                      {
                          { 23, "0A" },
                          { 38, "00 00 01 BF 03 D4 00" },
                          { 45, "00 00 00 03" },
                          { 57, "00 01 19 40" },   // 72000
                          { 61, "00 01 EC 30" },   // 72000 + 15 x 3600
                          { 69, "00 00 00 52" },   // 12 frames
                          { 1024, "00 00 01 BF 03 FA 01" },
                          { 1031, "00 00 A8 C0" },
                          { 1035, "00 00 00 03" },
                          { 1039, "00 00 00 03" },
                          { 1043, "00 00 00 02  00 00 00 03  00 00 00 03" },
                          { 1055, "00 01 00 01" },
                          { 1059, "00 00 00 52" },
                          { 1075, "00 00 8C A0" },
                          { 1079, "00 02 4E A0" },
                          { 1265, "80 00 00 04" },
                          { 1269, NONE_16 "3F FF FF FF  3F FF FF FF  3F FF FF FF" },
                          { 1345, "80 00 00 04  80 00 00 03" },
                          { 1353, NONE_16 "3F FF FF FF  3F FF FF FF  3F FF FF FF" },   // 27000 lies before the first
                          { 1429, "80 00 00 03" },
                          { 1433, "00 02  00 00" },   // AC-3 at 5; LPCM lasts from 30000 to 72000, without it
                      }),
        "");
}

TEST(NavMovie, EveryFieldOfTheLastPack)
{
    const NavRun run = setupTitle(threeUnits());
    EXPECT_EQ(differencesIn(run, 7,
                            {
                                { 23, "0A" },
                                { 38, "00 00 01 BF 03 D4 00" },
                                { 45, "00 00 00 07" },
                                { 57, "00 01 EC 30" },   // 126000
                                { 61, "00 02 94 F0" },   // five pictures are declared twelve frames long
                                { 65, "00 02 4E A0" },   // 133200 + 5 x 3600
                                { 69, "00 00 01 42" },   // 27 frames
                                { 1024, "00 00 01 BF 03 FA 01" },
                                { 1031, "00 01 7B B0" },
                                { 1035, "00 00 00 07" },
                                { 1039, "00 00 00 01" },
                                { 1043, "00 00 00 00  00 00 00 00  00 00 00 00" },
                                { 1055, "00 01 00 01" },
                                { 1059, "00 00 01 42" },
                                { 1075, "00 00 8C A0" },
                                { 1079, "00 02 4E A0" },
                                { 1265, "BF FF FF FF" },
                                { 1269, NONE_16 "3F FF FF FF  3F FF FF FF  3F FF FF FF" },
                                { 1345, "3F FF FF FF  80 00 00 04" },
                                // 81000 in the second unit, 36000 in the first.
                                { 1353, "80 00 00 04  80 00 00 07  3F FF FF FF  " NONE_16 },
                                { 1429, "80 00 00 04" },
                                { 1433, "00 01  00 00" },
                            }),
              "");
}

TEST(NavMovie, NothingElseChanges)
{
    const NavSpec given = threeUnits();
    EXPECT_EQ(strayChanges(given, setupTitle(given)), "");
}

TEST(NavMovie, OneUnit)
{
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 28800 } });
    given.sectors = 30;
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.hexAt(0, 1039, 4), "00 00 00 1D");
    EXPECT_EQ(run.hexAt(0, 1265, 4), "BF FF FF FF");
    for (uint64_t at = 1269; at < 1429; at += 4) EXPECT_EQ(run.hexAt(0, at, 4), "3F FF FF FF") << at;
    EXPECT_EQ(run.hexAt(0, 1429, 4), "BF FF FF FF");
    EXPECT_EQ(run.hexAt(0, 65, 4), "00 01 19 40");   // 28800 + 12 x 3600
    EXPECT_EQ(run.hexAt(0, 1433, 144), toHex(Bytes(144, 0)));
    EXPECT_EQ(run.hexAt(0, 141, 694), toHex(Bytes(694, 0)));   // no highlight
}

TEST(NavMovie, FieldsKeepTheirLowBytes)
{
    NavSpec given;
    given.vobus = unitRecords({ { .sector = 1,
                                  .scr = 0xFFFFFFFF80000001,
                                  .firstPts = 0x189ABCDEF,
                                  .pictureCount = 0,
                                  .vobId = 0x12345,
                                  .cellId = 0x1FE,
                                  .firstRefEnd = 0x112345678,
                                  .secondRefEnd = 0x9ABCDEF0,
                                  .thirdRefEnd = 0x87654321,
                                  .temporalRef = 1023 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.hexAt(1, 45, 4), "00 00 00 01");
    EXPECT_EQ(run.hexAt(1, 57, 4), "89 73 9B FF");   // 89ABCDEF - 1023 x 3600
    EXPECT_EQ(run.hexAt(1, 61, 4), "89 74 44 BF");   // no picture: twelve frames all the same
    EXPECT_EQ(run.hexAt(1, 65, 4), "89 AB CD EF");
    EXPECT_EQ(run.hexAt(1, 1031, 4), "80 00 00 01");
    EXPECT_EQ(run.hexAt(1, 1043, 12), "12 34 56 78 9A BC DE F0 87 65 43 21");
    EXPECT_EQ(run.hexAt(1, 1055, 4), "23 45 00 FE");
    EXPECT_EQ(run.hexAt(1, 1075, 8), "89 AB CD EF 89 AB CD EF");
}

TEST(NavMovie, LengthOfAUnit)
{
    const struct {
        int64_t standard;
        uint64_t pictures;
        const char* end;
    } rows[] = {
        { STANDARD_PAL, 0, "00 00 A8 C0" },
        { STANDARD_PAL, 1, "00 00 A8 C0" },
        { STANDARD_PAL, 9, "00 00 A8 C0" },
        { STANDARD_PAL, 10, "00 00 8C A0" },
        { STANDARD_PAL, 11, "00 00 9A B0" },
        { STANDARD_PAL, 12, "00 00 A8 C0" },
        { STANDARD_PAL, 13, "00 00 B6 D0" },
        { STANDARD_NTSC, 9, "00 00 8C C4" },
        { STANDARD_NTSC, 10, "00 00 75 4E" },
        { STANDARD_NTSC, 18, "00 00 D3 26" },
        { 0, 12, "00 00 8C C4" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.standard) + "/" + std::to_string(row.pictures));
        NavSpec given;
        given.standard = row.standard;
        given.vobus = unitRecords({ { .firstPts = 0, .pictureCount = row.pictures } });
        EXPECT_EQ(setupTitle(given).hexAt(0, 61, 4), row.end);
    }
}

TEST(NavMovie, NtscCountsNominalFramesAndRealTicks)
{
    NavSpec given;
    given.standard = STANDARD_NTSC;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 6006, .pictureCount = 18, .temporalRef = 2 },
                                { .sector = 1, .firstPts = 60060, .pictureCount = 15, .temporalRef = 2 },
                                { .sector = 2, .firstPts = 105105, .pictureCount = 15, .temporalRef = 2 } });
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.hexAt(0, 57, 8), "00 00 00 00 00 00 D3 26");   // 0, 54054
    EXPECT_EQ(run.hexAt(1, 57, 8), "00 00 D3 26 00 01 83 1B");   // 54054, 99099
    EXPECT_EQ(run.hexAt(0, 69, 4), "00 00 00 C0");
    EXPECT_EQ(run.hexAt(1, 69, 4), "00 00 00 D8");   // 18
    EXPECT_EQ(run.hexAt(2, 69, 4), "00 00 01 C3");   // 33
    EXPECT_EQ(run.hexAt(2, 65, 4), "00 02 4A 86");   // 105105 + 45045
}

TEST(NavMovie, ElapsedTimeBeginsWithTheCellAlone)
{
    NavSpec given;
    given.vobus = unitRecords({
        { .sector = 0, .vobId = 1, .cellId = 1 },
        { .sector = 1, .pictureCount = 15, .vobId = 1, .cellId = 1 },
        { .sector = 2, .pictureCount = 0, .vobId = 2, .cellId = 1 },   // a new VOB, the same cell
        { .sector = 3, .pictureCount = 3, .vobId = 2, .cellId = 1 },
        { .sector = 4, .vobId = 2, .cellId = 2 },
        { .sector = 5, .pictureCount = 1500, .vobId = 2, .cellId = 2 },
        { .sector = 6, .vobId = 2, .cellId = 2 },
        { .sector = 7, .vobId = 3, .cellId = 3 },
    });
    const NavRun run = setupTitle(given);
    const char* const times[] = { "00 00 00 40", "00 00 00 52", "00 00 01 42", "00 00 01 42",
                                  "00 00 00 40", "00 00 00 52", "00 01 00 52", "00 00 00 40" };
    for (uint64_t i = 0; i < 8; i++) {
        EXPECT_EQ(run.hexAt(i, 69, 4), times[i]) << i;
        EXPECT_EQ(run.hexAt(i, 1059, 4), times[i]) << i;
    }
}

TEST(NavMovie, NoStandardNoTimeCode)
{
    NavSpec given;
    given.standard = 3;
    given.vobus = evenUnits(3, 0);
    const NavRun run = setupTitle(given);
    for (uint64_t i = 0; i < 3; i++) EXPECT_EQ(run.hexAt(i, 69, 4), "00 00 00 00");
}

TEST(NavMovie, AudioBoundKeepsTheBitsBesideIt)
{
    const struct {
        uint64_t audioCount;
        const char* bound;
    } rows[] = { { 0, "02" }, { 1, "06" }, { 8, "22" } };   // 0xFE stood there
    for (const auto& row : rows) {
        NavSpec given;
        given.audioCount = row.audioCount;
        given.vobus = evenUnits(1, 0);
        EXPECT_EQ(setupTitle(given).hexAt(0, 23, 1), row.bound);
    }
}

TEST(NavMovie, LeadingRecordIsFilledToo)
{
    // Packs before the first navigation pack: their record stands for a pack that is none.
    NavSpec given;
    given.vobus = unitRecords(
        { { .sector = 0, .pictureCount = 0, .vobId = 0, .cellId = 0 }, { .sector = 3, .firstPts = 28800 } });
    given.sectors = 5;
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.hexAt(0, 38, 11), "00 00 01 BF 03 D4 00 00 00 00 00");
    EXPECT_EQ(run.hexAt(0, 1024, 19), "00 00 01 BF 03 FA 01 00 00 00 00 00 00 00 00 00 00 00 02");
    EXPECT_EQ(run.hexAt(0, 1265, 4), "BF FF FF FF");   // another VOB follows
    EXPECT_EQ(run.hexAt(3, 1349, 4), "3F FF FF FF");
    EXPECT_EQ(run.hexAt(3, 1075, 4), "00 00 00 00");   // of the first record
}

TEST(NavMovie, EmptyListsChangeNothing)
{
    NavSpec given;
    given.sectors = 4;
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.before, run.after);

    // No list of stream packs at all: no sync.
    const TempDir folder;
    const RunRoot root(1);
    given.vobus = evenUnits(4, 0);
    Sources sources;
    writeSources(sources, folder, navStream(given));
    const List<VobuRecord> vobus(given.vobus);
    EXPECT_EQ(orvSetupMovieA(&root.context->head, 1, 2, sources.slots, vobus.block, nullptr, nullptr, 0), 0u);
    const Bytes after = sources.read();
    EXPECT_EQ(toHex(after.data() + 1433, 4), "00 00 00 00");
    EXPECT_EQ(toHex(after.data() + 57, 8), "00 00 00 00 00 00 A8 C0");
}
