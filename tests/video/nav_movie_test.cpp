// Navigation packs of a title: every field, and every way of a pack into its file. Search and sync entries have tests
// of their own beside this one.
#include "base/result.h"
#include "base/time_code.h"
#include "tests/support/log.h"
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

// Three units at 0, 3 and 7 of nine packs. Display starts at 28800, 72000 and 126000; the last picture ends at 151200.
NavSpec threeUnits()
{
    NavSpec spec;
    spec.audioCount = 2;
    spec.vobus = unitRecords({
        { .sector = 0,
          .scr = 0,
          .firstPts = 36000,
          .pictureCount = 12,
          .firstRefEnd = 1,
          .secondRefEnd = 2,
          .temporalRef = 2 },
        { .sector = 3,
          .scr = 43200,
          .firstPts = 79200,
          .pictureCount = 15,
          .firstRefEnd = 2,
          .secondRefEnd = 3,
          .thirdRefEnd = 3,
          .temporalRef = 2 },
        { .sector = 7, .scr = 97200, .firstPts = 133200, .pictureCount = 5, .temporalRef = 2 },
    });
    spec.packs = {
        { 2, 28800, PACK_AC3, 0, 0, 1 },  { 2, 30000, PACK_LPCM, 1, 0, 1 }, { 5, 72000, PACK_AC3, 0, 0, 1 },
        { 8, 126000, PACK_AC3, 0, 0, 1 }, { 8, 160000, PACK_AC3, 0, 0, 1 },
    };
    spec.sectors = 9;
    return spec;
}

#define NONE_4 "3F FF FF FF  3F FF FF FF  3F FF FF FF  3F FF FF FF  "
#define NONE_16 NONE_4 NONE_4 NONE_4 NONE_4

std::string differencesIn(const NavRun& run, uint64_t sector, const std::vector<PackBytes>& named)
{
    const Bytes before(run.before.begin() + std::ptrdiff_t(sector * PACK_BYTES), run.before.end());
    return differences(run.packAt(sector), packOf(before, named));
}

}   // namespace

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
    const NavSpec spec = threeUnits();
    EXPECT_EQ(strayChanges(spec, setupTitle(spec)), "");
}

TEST(NavMovie, OneUnit)
{
    NavSpec spec;
    spec.vobus = unitRecords({ { .sector = 0, .firstPts = 28800 } });
    spec.sectors = 30;
    const NavRun run = setupTitle(spec);
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
    NavSpec spec;
    spec.vobus = unitRecords({ { .sector = 1,
                                 .scr = 0xFFFFFFFF80000001,
                                 .firstPts = 0x189ABCDEF,
                                 .pictureCount = 0,
                                 .vobId = 0x12345,
                                 .cellId = 0x1FE,
                                 .firstRefEnd = 0x112345678,
                                 .secondRefEnd = 0x9ABCDEF0,
                                 .thirdRefEnd = 0x87654321,
                                 .temporalRef = 1023 } });
    const NavRun run = setupTitle(spec);
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
        NavSpec spec;
        spec.standard = row.standard;
        spec.vobus = unitRecords({ { .firstPts = 0, .pictureCount = row.pictures } });
        EXPECT_EQ(setupTitle(spec).hexAt(0, 61, 4), row.end);
    }
}

TEST(NavMovie, NtscCountsNominalFramesAndRealTicks)
{
    NavSpec spec;
    spec.standard = STANDARD_NTSC;
    spec.vobus = unitRecords({ { .sector = 0, .firstPts = 6006, .pictureCount = 18, .temporalRef = 2 },
                               { .sector = 1, .firstPts = 60060, .pictureCount = 15, .temporalRef = 2 },
                               { .sector = 2, .firstPts = 105105, .pictureCount = 15, .temporalRef = 2 } });
    const NavRun run = setupTitle(spec);
    EXPECT_EQ(run.hexAt(0, 57, 8), "00 00 00 00 00 00 D3 26");   // 0, 54054
    EXPECT_EQ(run.hexAt(1, 57, 8), "00 00 D3 26 00 01 83 1B");   // 54054, 99099
    EXPECT_EQ(run.hexAt(0, 69, 4), "00 00 00 C0");
    EXPECT_EQ(run.hexAt(1, 69, 4), "00 00 00 D8");   // 18
    EXPECT_EQ(run.hexAt(2, 69, 4), "00 00 01 C3");   // 33
    EXPECT_EQ(run.hexAt(2, 65, 4), "00 02 4A 86");   // 105105 + 45045
}

TEST(NavMovie, ElapsedTimeBeginsWithTheCellAlone)
{
    NavSpec spec;
    spec.vobus = unitRecords({
        { .sector = 0, .vobId = 1, .cellId = 1 },
        { .sector = 1, .pictureCount = 15, .vobId = 1, .cellId = 1 },
        { .sector = 2, .pictureCount = 0, .vobId = 2, .cellId = 1 },   // a new VOB, the same cell
        { .sector = 3, .pictureCount = 3, .vobId = 2, .cellId = 1 },
        { .sector = 4, .vobId = 2, .cellId = 2 },
        { .sector = 5, .pictureCount = 1500, .vobId = 2, .cellId = 2 },
        { .sector = 6, .vobId = 2, .cellId = 2 },
        { .sector = 7, .vobId = 3, .cellId = 3 },
    });
    const NavRun run = setupTitle(spec);
    const char* const times[] = { "00 00 00 40", "00 00 00 52", "00 00 01 42", "00 00 01 42",
                                  "00 00 00 40", "00 00 00 52", "00 01 00 52", "00 00 00 40" };
    for (uint64_t i = 0; i < 8; i++) {
        EXPECT_EQ(run.hexAt(i, 69, 4), times[i]) << i;
        EXPECT_EQ(run.hexAt(i, 1059, 4), times[i]) << i;
    }
}

TEST(NavMovie, NoStandardNoTimeCode)
{
    NavSpec spec;
    spec.standard = 3;
    spec.vobus = evenUnits(3, 0);
    const NavRun run = setupTitle(spec);
    for (uint64_t i = 0; i < 3; i++) EXPECT_EQ(run.hexAt(i, 69, 4), "00 00 00 00");
}

TEST(NavMovie, AudioBoundKeepsTheBitsBesideIt)
{
    const struct {
        uint64_t audioCount;
        const char* bound;
    } rows[] = { { 0, "02" }, { 1, "06" }, { 8, "22" } };   // 0xFE stood there
    for (const auto& row : rows) {
        NavSpec spec;
        spec.audioCount = row.audioCount;
        spec.vobus = evenUnits(1, 0);
        EXPECT_EQ(setupTitle(spec).hexAt(0, 23, 1), row.bound);
    }
}

TEST(NavMovie, LeadingRecordIsFilledToo)
{
    // Packs before the first navigation pack: their record stands for a pack that is none.
    NavSpec spec;
    spec.vobus = unitRecords(
        { { .sector = 0, .pictureCount = 0, .vobId = 0, .cellId = 0 }, { .sector = 3, .firstPts = 28800 } });
    spec.sectors = 5;
    const NavRun run = setupTitle(spec);
    EXPECT_EQ(run.hexAt(0, 38, 11), "00 00 01 BF 03 D4 00 00 00 00 00");
    EXPECT_EQ(run.hexAt(0, 1024, 19), "00 00 01 BF 03 FA 01 00 00 00 00 00 00 00 00 00 00 00 02");
    EXPECT_EQ(run.hexAt(0, 1265, 4), "BF FF FF FF");   // another VOB follows
    EXPECT_EQ(run.hexAt(3, 1349, 4), "3F FF FF FF");
    EXPECT_EQ(run.hexAt(3, 1075, 4), "00 00 00 00");   // of the first record
}

TEST(NavMovie, EmptyListsChangeNothing)
{
    NavSpec spec;
    spec.sectors = 4;
    const NavRun run = setupTitle(spec);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.before, run.after);

    // No list of stream packs at all: no sync.
    const TempDir folder;
    const RunRoot root(1);
    spec.vobus = evenUnits(4, 0);
    Sources sources;
    writeSources(sources, folder, navStream(spec));
    const List<VobuRecord> vobus(spec.vobus);
    EXPECT_EQ(orvSetupMovieA(root.context.get(), 1, 2, sources.slots, vobus.block, nullptr, nullptr, 0), 0u);
    const Bytes after = sources.read();
    EXPECT_EQ(toHex(after.data() + 1433, 4), "00 00 00 00");
    EXPECT_EQ(toHex(after.data() + 57, 8), "00 00 00 00 00 00 A8 C0");
}

// ---- files -------------------------------------------------------------------------------------------------------

TEST(NavMovie, PacksSplitOverTwoFiles)
{
    NavSpec spec = threeUnits();
    const Bytes whole = setupTitle(spec).after;
    std::vector<uint64_t> cuts;
    for (const uint64_t sector : { 0u, 3u, 7u }) {
        for (const uint64_t byte : { 1u, 23u, 24u, 37u, 45u, 1023u, 1024u, 2047u })
            cuts.push_back(sector * 2048 + byte);
    }
    for (const uint64_t byte : { 2048u, 6144u, 8192u, 14336u, 16384u, 3001u, 9999u, 17000u }) cuts.push_back(byte);
    for (const uint64_t cut : cuts) {
        SCOPED_TRACE(cut);
        spec.cuts = { cut };
        const NavRun run = setupTitle(spec);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(strayChanges(spec, run), "");
        EXPECT_TRUE(run.after == whole);
    }
}

TEST(NavMovie, ManyFiles)
{
    NavSpec spec;
    spec.audioCount = 1;
    std::vector<Unit> units;
    for (uint64_t i = 0; i < 40; i++)
        units.push_back({ .sector = 3 * i, .scr = 43200 * i, .firstPts = 28800 + 43200 * i });
    spec.vobus = unitRecords(units);
    spec.sectors = 121;
    const Bytes whole = setupTitle(spec).after;
    // Thirty-two files, some cut in navigation packs, each with a navigation pack that begins in it.
    for (uint64_t i = 1; i < 32; i++) spec.cuts.push_back(i * 3 * 2048 + i * 197);
    const NavRun run = setupTitle(spec);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(strayChanges(spec, run), "");
    EXPECT_TRUE(run.after == whole);
}

TEST(NavMovie, OneStepToTheNextFileForAPack)
{
    // The second file holds nothing but the head of the third navigation pack: its rest is asked of this file alone.
    NavSpec spec = threeUnits();
    spec.cuts = { 6 * 2048, 7 * 2048 + 626 };
    const NavRun run = setupTitle(spec);
    EXPECT_EQ(run.result, 0x84000FB4u);
    EXPECT_EQ(run.bytesAt(7, 0, 2048), Bytes(run.before.begin() + 7 * 2048, run.before.begin() + 8 * 2048));
}

TEST(NavMovie, EmptyFirstFile)
{
    NavSpec spec = threeUnits();
    const Bytes whole = setupTitle(spec).after;
    for (const std::vector<uint64_t>& cuts : { std::vector<uint64_t>{ 0 }, { 0, 6144 + 7 } }) {
        spec.cuts = cuts;
        const NavRun run = setupTitle(spec);
        EXPECT_EQ(run.result, 0u);
        EXPECT_TRUE(run.after == whole);
    }
}

TEST(NavMovie, ListEndsBeforeTheStream)
{
    // The stream ends inside the third navigation pack, or before it, and no file follows.
    NavSpec spec = threeUnits();
    const NavRun whole = setupTitle(spec);
    for (const uint64_t size : { 7 * 2048 + 1000u, 7 * 2048u, 5 * 2048 + 3u }) {
        SCOPED_TRACE(size);
        const TempDir folder;
        const RunRoot root(1, folder / u"run.log");
        Sources sources;
        Bytes stream = whole.before;
        stream.resize(size);
        writeSources(sources, folder, stream, { 3 * 2048 + 500 });
        const List<VobuRecord> vobus(spec.vobus);
        const List<StreamPackRecord> packs(spec.packs);
        ProgressLog progress;
        EXPECT_EQ(orvSetupMovieA(root.context.get(), 1, 2, sources.slots, vobus.block, packs.block, recordProgress,
                                 progress.user()),
                  0u);
        const Bytes after = sources.read();
        ASSERT_EQ(after.size(), size);
        for (const uint64_t sector : { 0u, 3u }) {
            const Bytes pack(whole.packAt(sector), whole.packAt(sector + 1));
            EXPECT_EQ(differences(after.data() + sector * 2048, pack), "");
        }
        EXPECT_TRUE(std::equal(after.begin() + 4 * 2048, after.end(), stream.begin() + 4 * 2048));
        EXPECT_TRUE(std::equal(after.begin() + 2048, after.begin() + 3 * 2048, stream.begin() + 2048));
        EXPECT_EQ(progress.calls.size(), 3u);
        EXPECT_FALSE(fileExists(root.logPath));
    }
}

// ---- progress ----------------------------------------------------------------------------------------------------

namespace {

// A filling that may fail, with its log and its progress.
struct Filling {
    NavSpec spec;
    TempDir folder;
    RunRoot run{ 1, folder / u"run.log" };
    Sources sources;
    ProgressLog progress;

    explicit Filling(const NavSpec& s) : spec(s) {}

    void write(const std::vector<uint64_t>& cuts)
    {
        writeSources(sources, folder, navStream(spec), cuts);
    }

    uint64_t fill()
    {
        const List<VobuRecord> vobus(spec.vobus);
        const List<StreamPackRecord> packs(spec.packs);
        return orvSetupMovieA(run.context.get(), spec.standard, spec.audioCount, sources.slots, vobus.block,
                              packs.block, recordProgress, progress.user());
    }

    testing::AssertionResult logged(uint64_t code, const std::vector<std::u16string>& texts) const
    {
        std::vector<LogEntry> entries;
        for (const std::u16string& text : texts) entries.push_back({ code, text });
        return logHolds(run.logPath, entries);
    }
};

}   // namespace

TEST(NavMovie, ProgressBeforeEachUnit)
{
    Filling filling(threeUnits());
    filling.write({});
    EXPECT_EQ(filling.fill(), 0u);
    EXPECT_EQ(filling.progress.calls, (std::vector<std::pair<uint64_t, uint64_t>>{ { 3, 0 }, { 3, 1 }, { 3, 2 } }));
    EXPECT_EQ(filling.progress.context, filling.run.context.get());
}

TEST(NavMovie, CancelAtTheNthCall)
{
    const NavRun whole = setupTitle(threeUnits());
    const uint64_t sectors[] = { 0, 3, 7 };
    for (uint64_t n = 1; n <= 3; n++) {
        SCOPED_TRACE(n);
        Filling filling(threeUnits());
        filling.write({ 5000 });
        filling.progress.cancelAt = n;
        EXPECT_EQ(filling.fill(), ORV_CANCELED);
        EXPECT_EQ(filling.progress.calls.size(), n);
        EXPECT_FALSE(fileExists(filling.run.logPath));
        const Bytes after = filling.sources.read();
        Bytes expected = whole.before;   // with the packs of the units before the call
        for (uint64_t i = 0; i + 1 < n; i++) {
            std::copy(whole.packAt(sectors[i]), whole.packAt(sectors[i] + 1),
                      expected.begin() + std::ptrdiff_t(sectors[i] * 2048));
        }
        EXPECT_TRUE(after == expected);
    }
}

// ---- failures ----------------------------------------------------------------------------------------------------

TEST(NavMovie, MissingSource)
{
    Filling filling(threeUnits());
    filling.sources.add(filling.folder / u"missing.vob");
    EXPECT_EQ(filling.fill(), 0x84000FB4u);
    const std::u16string path = filling.sources.paths[0];
    EXPECT_TRUE(filling.logged(0x84000FB4, { u"Failed to open file in <orvCountFilePacks>: " + path,
                                             u"Failed to open file in <orvSetupMovieA>: " + path,
                                             u"Failed to open file in <orvSetupMovieA>: " + path }));
    EXPECT_FALSE(fileExists(path));
}

TEST(NavMovie, FailedCountIsLoggedAndTheWorkGoesOn)
{
    // The first file holds all navigation packs; the second is missing, and only the last pack needs the count.
    const NavRun whole = setupTitle(threeUnits());
    Filling filling(threeUnits());
    filling.write({});
    filling.sources.add(filling.folder / u"title9.vob");
    EXPECT_EQ(filling.fill(), 0u);
    EXPECT_TRUE(
        filling.logged(0x84000FB4, { u"Failed to open file in <orvCountFilePacks>: " + filling.sources.paths[1],
                                     u"Failed to open file in <orvSetupMovieA>: " + filling.sources.paths[1] }));
    Bytes after = readFile(filling.sources.paths[0]);
    for (uint64_t at = 7 * 2048 + 1039; at < 7 * 2048 + 1043; at++) after[at] = whole.after[at];
    EXPECT_TRUE(after == whole.after);
}

TEST(NavMovie, NextSourceGoneWhenItsTurnComes)
{
    Filling filling(threeUnits());
    filling.write({ 5000 });
    filling.progress.deleteAtFirst = filling.sources.paths[1];
    EXPECT_EQ(filling.fill(), 0x84000FB4u);
    EXPECT_TRUE(
        filling.logged(0x84000FB4, { u"Failed to open file in <orvSetupMovieA>: " + filling.sources.paths[1] }));
    EXPECT_EQ(filling.progress.calls.size(), 2u);
}

TEST(NavMovie, SourceWithoutTheRestOfThePack)
{
    const struct {
        const char* what;
        std::vector<uint64_t> cuts;
        uint64_t failing;
    } rows[] = {
        { "a file in which no navigation pack begins lies between", { 2 * 2048, 3 * 2048 }, 1 },
        { "an empty file lies between", { 5000, 5000 }, 1 },
        { "the next file is shorter than the rest", { 3 * 2048 + 48, 4 * 2048 - 1 }, 1 },
        { "the next file is empty", { 3 * 2048 + 48, 3 * 2048 + 48 }, 1 },
        { "the third of three", { 5000, 5 * 2048, 6 * 2048 }, 2 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Filling filling(threeUnits());
        filling.write(row.cuts);
        EXPECT_EQ(filling.fill(), 0x84000FB4u);
        EXPECT_TRUE(filling.logged(
            0x84000FB4, { u"Failed to read rest of pack in <orvSetupMovieA>: " + filling.sources.paths[row.failing] }));
    }
}

TEST(NavMovie, UnreadableSource)
{
    const std::u16string path = u"/proc/self/mem";
    if (!fileExists(path)) GTEST_SKIP() << "no file here fails its reads";
    Filling first(threeUnits());
    first.sources.add(path);
    EXPECT_EQ(first.fill(), 0x84000FB4u);
    EXPECT_TRUE(first.logged(0x84000FB4, { u"Failed to read file in <orvSetupMovieA>: " + path }));

    Filling second(threeUnits());
    second.spec.sectors = 3;
    second.write({});
    second.sources.add(path);
    EXPECT_EQ(second.fill(), 0x84000FB4u);
    EXPECT_TRUE(second.logged(0x84000FB4, { u"Failed to read rest of pack in <orvSetupMovieA>: " + path }));
}

#ifndef _WIN32

namespace {

// While it lives, this process can't write behind the first `bytes` bytes of any file.
struct WriteLimit {
    explicit WriteLimit(rlim_t bytes)
    {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
        handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = { bytes, before.rlim_max };
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~WriteLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    rlimit before = {};
    void (*handler)(int) = nullptr;
};

}   // namespace

TEST(NavMovie, FailedWrites)
{
    const struct {
        const char* what;
        std::vector<uint64_t> cuts;
        uint64_t limit;
        const char16_t* text;
        uint64_t failing;
    } rows[] = {
        { "a whole pack", {}, 6000, u"Failed to write DSI pack in <orvSetupMovieA>: ", 0 },
        { "the first share of a pack", { 3 * 2048 + 5 }, 6000, u"Failed to write DSI pack in <orvSetupMovieA>: ", 0 },
        { "the rest of a pack", { 300 }, 400, u"Failed to write rest of pack in <orvSetupMovieA>: ", 1 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Filling filling(threeUnits());
        filling.write(row.cuts);
        {
            const WriteLimit limit(row.limit);
            EXPECT_EQ(filling.fill(), 0x84000FB3u);
        }
        EXPECT_TRUE(filling.logged(0x84000FB3, { row.text + filling.sources.paths[row.failing] }));
    }
}

#endif
