// Every way of a title's navigation packs into their files, progress, and all that can fail.
#include "base/result.h"
#include "tests/support/log.h"
#include "tests/support/write_limit.h"
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

// ---- files -------------------------------------------------------------------------------------------------------

TEST(NavMovie, PacksSplitOverTwoFiles)
{
    NavSpec given = threeUnits();
    const Bytes whole = setupTitle(given).after;
    std::vector<uint64_t> cuts;
    for (const uint64_t sector : { 0u, 3u, 7u }) {
        for (const uint64_t byte : { 1u, 23u, 24u, 37u, 45u, 1023u, 1024u, 2047u })
            cuts.push_back(sector * 2048 + byte);
    }
    for (const uint64_t byte : { 2048u, 6144u, 8192u, 14336u, 16384u, 3001u, 9999u, 17000u }) cuts.push_back(byte);
    for (const uint64_t cut : cuts) {
        SCOPED_TRACE(cut);
        given.cuts = { cut };
        const NavRun run = setupTitle(given);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(strayChanges(given, run), "");
        EXPECT_TRUE(run.after == whole);
    }
}

TEST(NavMovie, ManyFiles)
{
    NavSpec given;
    given.audioCount = 1;
    std::vector<Unit> units;
    for (uint64_t i = 0; i < 40; i++)
        units.push_back({ .sector = 3 * i, .scr = 43200 * i, .firstPts = 28800 + 43200 * i });
    given.vobus = unitRecords(units);
    given.sectors = 121;
    const Bytes whole = setupTitle(given).after;
    // Thirty-two files, some cut in navigation packs, each with a navigation pack that begins in it.
    for (uint64_t i = 1; i < 32; i++) given.cuts.push_back(i * 3 * 2048 + i * 197);
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(strayChanges(given, run), "");
    EXPECT_TRUE(run.after == whole);
}

TEST(NavMovie, OneStepToTheNextFileForAPack)
{
    // The second file holds nothing but the head of the third navigation pack: its rest is asked of this file alone.
    NavSpec given = threeUnits();
    given.cuts = { 6 * 2048, 7 * 2048 + 626 };
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.result, 0x84000FB4u);
    EXPECT_EQ(run.bytesAt(7, 0, 2048), Bytes(run.before.begin() + 7 * 2048, run.before.begin() + 8 * 2048));
}

TEST(NavMovie, EmptyFirstFile)
{
    NavSpec given = threeUnits();
    const Bytes whole = setupTitle(given).after;
    for (const std::vector<uint64_t>& cuts : { std::vector<uint64_t>{ 0 }, { 0, 6144 + 7 } }) {
        given.cuts = cuts;
        const NavRun run = setupTitle(given);
        EXPECT_EQ(run.result, 0u);
        EXPECT_TRUE(run.after == whole);
    }
}

TEST(NavMovie, ListEndsBeforeTheStream)
{
    // The stream ends inside the third navigation pack, or before it, and no file follows.
    NavSpec given = threeUnits();
    const NavRun whole = setupTitle(given);
    for (const uint64_t size : { 7 * 2048 + 1000u, 7 * 2048u, 5 * 2048 + 3u }) {
        SCOPED_TRACE(size);
        const TempDir folder;
        const RunRoot root(1, folder / u"run.log");
        Sources sources;
        Bytes stream = whole.before;
        stream.resize(size);
        writeSources(sources, folder, stream, { 3 * 2048 + 500 });
        const List<VobuRecord> vobus(given.vobus);
        const List<StreamPackRecord> packs(given.packs);
        ProgressLog progress;
        EXPECT_EQ(orvSetupMovieA(&root.context->head, 1, 2, sources.slots, vobus.block, packs.block, recordProgress,
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

TEST(NavMovie, AllSlotsEndBeforeTheStream)
{
    // Thirty-two files of a pack each, and a thirty-third unit behind them all.
    NavSpec given;
    given.vobus = evenUnits(33, 28800);
    given.sectors = 32;
    for (uint64_t i = 1; i < 32; i++) given.cuts.push_back(2048 * i);
    const NavRun run = setupTitle(given);
    EXPECT_EQ(run.result, 0u);
    for (uint64_t i = 0; i < 32; i++) {
        const Bytes before(run.before.begin() + std::ptrdiff_t(i * 2048),
                           run.before.begin() + std::ptrdiff_t(i * 2048 + 2048));
        EXPECT_EQ(differences(run.packAt(i), referenceTitlePack(given, i, before)), "") << i;
    }
}

// ---- progress ----------------------------------------------------------------------------------------------------

namespace {

// A filling that may fail, with its log and its progress.
struct Filling {
    NavSpec given;
    TempDir folder;
    RunRoot run{ 1, folder / u"run.log" };
    Sources sources;
    ProgressLog progress;

    explicit Filling(const NavSpec& s) : given(s) {}

    void write(const std::vector<uint64_t>& cuts)
    {
        writeSources(sources, folder, navStream(given), cuts);
    }

    uint64_t fill()
    {
        const List<VobuRecord> vobus(given.vobus);
        const List<StreamPackRecord> packs(given.packs);
        return orvSetupMovieA(&run.context->head, given.standard, given.audioCount, sources.slots, vobus.block,
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
    EXPECT_EQ(filling.progress.run, &filling.run.context->head);
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
    second.given.sectors = 3;
    second.write({});
    second.sources.add(path);
    EXPECT_EQ(second.fill(), 0x84000FB4u);
    EXPECT_TRUE(second.logged(0x84000FB4, { u"Failed to read rest of pack in <orvSetupMovieA>: " + path }));
}

#ifndef _WIN32

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
