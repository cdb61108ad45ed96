// The movie scan's way through its source files, and all that can be wrong with them.
#include "base/result.h"
#include "tests/support/log.h"
#include "tests/video/nav_support.h"

#include <gtest/gtest.h>

namespace {

struct CountCase {
    std::vector<uint64_t> sizes;
    uint64_t sectors;
};

uint64_t countOf(const std::vector<uint64_t>& sizes)
{
    const TempDir folder;
    const RunRoot run(1);
    Sources sources;
    for (uint64_t i = 0; i < sizes.size(); i++) {
        sources.add(folder / toWide("part" + std::to_string(i)));
        writeFile(sources.paths.back(), Bytes(sizes[i], 1));
    }
    uint64_t sectors = 999;
    EXPECT_EQ(orvCountFilePacks(&run.context->head, sources.slots, &sectors), 0u);
    return sectors;
}

Movie smallMovie()
{
    return makeMovie(
        { .vobus = vobus(3, { .pictures = 3, .pictureBytes = { 2500, 900 } }), .streams = { ac3Stream() } });
}

// A scan that fails, and the log that it leaves.
struct Failure {
    TempDir folder;
    RunRoot run{ 1, folder / u"run.log" };
    Sources sources;
    ProgressLog progress;
    List<VobuRecord> list;

    uint64_t scan()
    {
        return orvGetMovieInfo(&run.context->head, nullptr, sources.slots, 0, &list.block, nullptr, recordProgress,
                               progress.user(), false);
    }
    testing::AssertionResult logged(const std::vector<std::u16string>& texts) const
    {
        std::vector<LogEntry> entries;
        for (const std::u16string& text : texts) entries.push_back({ 0x84000FB4, text });
        return logHolds(run.logPath, entries);
    }
};

}   // namespace

// ---- counting ----------------------------------------------------------------------------------------------------

TEST(CountFilePacks, SumThenDivision)
{
    const CountCase rows[] = {
        { {}, 0 },          { { 0 }, 0 },          { { 2047 }, 0 },       { { 2048 }, 1 },
        { { 4095 }, 1 },    { { 3000, 1096 }, 2 }, { { 1024, 1023 }, 0 }, { { 1024, 1024, 1 }, 1 },
        { { 0, 6144 }, 3 },
    };
    for (const CountCase& row : rows) EXPECT_EQ(countOf(row.sizes), row.sectors) << ::testing::PrintToString(row.sizes);
    EXPECT_EQ(countOf(std::vector<uint64_t>(32, 1024)), 16u);   // all slots
}

TEST(CountFilePacks, EmptySlotsArePassedOver)
{
    const TempDir folder;
    const RunRoot run(1);
    std::u16string path = folder / u"a.vob";
    writeFile(path, Bytes(4096, 1));
    for (const std::vector<uint64_t>& filled : { std::vector<uint64_t>{ 31 }, { 0, 2 }, { 5, 17, 31 } }) {
        char16_t* slots[32] = {};
        for (const uint64_t slot : filled) slots[slot] = path.data();
        uint64_t sectors = 0;
        EXPECT_EQ(orvCountFilePacks(&run.context->head, slots, &sectors), 0u);
        EXPECT_EQ(sectors, 2 * filled.size());
    }
}

TEST(CountFilePacks, NullCountDoesNothing)
{
    const TempDir folder;
    const RunRoot run(1, folder / u"run.log");
    Sources sources;
    sources.add(folder / u"missing.vob");
    EXPECT_EQ(orvCountFilePacks(&run.context->head, sources.slots, nullptr), 0u);
    EXPECT_FALSE(fileExists(run.logPath));
}

TEST(CountFilePacks, MissingFile)
{
    const TempDir folder;
    const RunRoot run(1, folder / u"run.log");
    Sources sources;
    sources.add(folder / u"there.vob");
    sources.add(folder / u"missing.vob");
    writeFile(sources.paths[0], Bytes(4096, 1));
    uint64_t sectors = 0;
    EXPECT_EQ(orvCountFilePacks(&run.context->head, sources.slots, &sectors), ORV_MOVIE_NOT_READ);
    EXPECT_TRUE(
        logHolds(run.logPath, { { 0x84000FB4, u"Failed to open file in <orvCountFilePacks>: " + sources.paths[1] } }));
}

// ---- one stream in several files ---------------------------------------------------------------------------------

TEST(MovieScanFiles, PackSplitOverTwoFiles)
{
    const Movie movie = smallMovie();
    for (uint64_t cut = 1; cut < movie.bytes.size(); cut += cut % 2048 < 60 ? 1u : 331u) {
        SCOPED_TRACE(cut);
        const Scan scan = scanBytes(movie.bytes, { .cuts = { cut } });
        EXPECT_EQ(scan.result, 0u);
        EXPECT_EQ(describeAll(scan.vobus), describeAll(movie.vobus));
        EXPECT_EQ(describeAll(scan.packs), describeAll(movie.packs));
    }
}

TEST(MovieScanFiles, ManyFiles)
{
    const Movie movie = makeMovie({ .vobus = vobus(20), .streams = { ac3Stream() } });
    std::vector<uint64_t> cuts;
    for (uint64_t i = 1; i < 32; i++) cuts.push_back(i * 2048 * 8 + i * 37);
    ASSERT_LT(cuts.back(), movie.bytes.size());
    const Scan scan = scanBytes(movie.bytes, { .cuts = cuts });   // all 32 slots
    EXPECT_EQ(scan.result, 0u);
    EXPECT_EQ(describeAll(scan.vobus), describeAll(movie.vobus));
    EXPECT_EQ(describeAll(scan.packs), describeAll(movie.packs));
}

TEST(MovieScanFiles, CutOnAPacksBorder)
{
    const Movie movie = smallMovie();
    for (uint64_t pack = 1; pack < movie.sectors(); pack++) {
        SCOPED_TRACE(pack);
        const Scan scan = scanBytes(movie.bytes, { .cuts = { pack * 2048 } });
        EXPECT_EQ(scan.result, 0u);
        EXPECT_EQ(describeAll(scan.vobus), describeAll(movie.vobus));
    }
}

TEST(MovieScanFiles, AnyNumberOfPacks)
{
    // One unit a pack. 512 packs are a mebibyte, a likely size of a read.
    for (const uint64_t packs : { 1u, 2u, 511u, 512u, 513u, 1024u, 1025u }) {
        SCOPED_TRACE(packs);
        Bytes stream;
        for (uint64_t i = 0; i < packs; i++) stream += navPack({ i, 0 });
        for (const std::vector<uint64_t>& cuts : { std::vector<uint64_t>{}, { 1000 }, { stream.size() - 2047 } }) {
            const Scan scan = scanBytes(stream, { .cuts = cuts });
            EXPECT_EQ(scan.result, 0u);
            ASSERT_EQ(scan.vobus.size(), packs);
            for (uint64_t i = 0; i < packs; i++) ASSERT_EQ(scan.vobus[i].scr, i);
            EXPECT_EQ(scan.vobus.back().lastSector, packs - 1);
        }
    }
}

TEST(MovieScanFiles, LargeFilesCutAtOddBytes)
{
    const Movie movie = makeMovie({ .vobus = vobus(140), .streams = { ac3Stream() } });
    const uint64_t mebibyte = 1 << 20;
    ASSERT_GT(movie.bytes.size(), 3 * mebibyte);
    for (const std::vector<uint64_t>& cuts : { std::vector<uint64_t>{ 5 },
                                               { mebibyte - 1 },
                                               { mebibyte },
                                               { mebibyte + 1 },
                                               { mebibyte + 777, 2 * mebibyte + 3001 } }) {
        SCOPED_TRACE(::testing::PrintToString(cuts));
        const Scan scan = scanBytes(movie.bytes, { .cuts = cuts });
        EXPECT_EQ(scan.result, 0u);
        EXPECT_EQ(describeAll(scan.vobus), describeAll(movie.vobus));
        EXPECT_EQ(describeAll(scan.packs), describeAll(movie.packs));
    }
}

TEST(MovieScanFiles, ShortLastPackIsDropped)
{
    const Movie movie = smallMovie();
    for (const uint64_t rest : { 1u, 100u, 2047u }) {
        SCOPED_TRACE(rest);
        Bytes longer = movie.bytes + navPack({ 0, 0 });
        longer.resize(movie.bytes.size() + rest);
        for (const std::vector<uint64_t>& cuts : { std::vector<uint64_t>{}, { 5000 } }) {
            const Scan scan = scanBytes(longer, { .cuts = cuts });
            EXPECT_EQ(scan.result, 0u);
            EXPECT_EQ(describeAll(scan.vobus), describeAll(movie.vobus));
        }
    }
}

TEST(MovieScanFiles, EmptyFirstFile)
{
    const Movie movie = smallMovie();
    const Scan scan = scanBytes(movie.bytes, { .cuts = { 0 } });
    EXPECT_EQ(scan.result, 0u);
    EXPECT_EQ(describeAll(scan.vobus), describeAll(movie.vobus));
}

TEST(MovieScanFiles, NothingToScan)
{
    for (const uint64_t size : { 0u, 1u, 2047u }) {
        SCOPED_TRACE(size);
        const Scan scan = scanBytes(Bytes(size, 0));
        EXPECT_EQ(scan.result, 0xFFFFFFFFFFFFFFFDu);
        EXPECT_EQ(scan.result, ORV_NOTHING_SCANNED);
        EXPECT_TRUE(scan.vobus.empty());
    }
}

TEST(MovieScanFiles, ListEndsAtTheFirstEmptySlot)
{
    const TempDir folder;
    const RunRoot run(1);
    const Movie movie = smallMovie();
    Sources sources;
    writeSources(sources, folder, movie.bytes + movie.bytes, { movie.bytes.size() });
    std::swap(sources.slots[1], sources.slots[2]);
    List<VobuRecord> list;
    ProgressLog progress;
    EXPECT_EQ(orvGetMovieInfo(&run.context->head, nullptr, sources.slots, 0, &list.block, nullptr, recordProgress,
                              progress.user(), false),
              0u);
    EXPECT_EQ(describeAll(list.records()), describeAll(movie.vobus));
    ASSERT_EQ(progress.calls.size(), 3u);
    EXPECT_EQ(progress.calls[0].first, 2 * movie.sectors());   // the count goes over all slots
}

// ---- failures ----------------------------------------------------------------------------------------------------

TEST(MovieScanFiles, MissingFileFailsTheCount)
{
    for (const uint64_t missing : { 0u, 1u }) {
        SCOPED_TRACE(missing);
        Failure failure;
        for (uint64_t i = 0; i < 2; i++) {
            failure.sources.add(failure.folder / (i == missing ? u"missing.vob" : u"there.vob"));
            if (i != missing) writeFile(failure.sources.paths[i], smallMovie().bytes);
        }
        EXPECT_EQ(failure.scan(), 0x84000FB4u);
        // The second entry names the first source, whichever was missing.
        EXPECT_TRUE(failure.logged({ u"Failed to open file in <orvCountFilePacks>: " + failure.sources.paths[missing],
                                     u"Failed to open file in <orvGetMovieInfo>: " + failure.sources.paths[0] }));
        EXPECT_TRUE(failure.progress.calls.empty());
        EXPECT_EQ(osListCount(failure.list.block), 0u);
    }
}

TEST(MovieScanFiles, NoFirstFile)
{
    Failure failure;
    failure.sources.add(failure.folder / u"there.vob");
    writeFile(failure.sources.paths[0], smallMovie().bytes);
    std::swap(failure.sources.slots[0], failure.sources.slots[1]);
    EXPECT_EQ(failure.scan(), ORV_MOVIE_NOT_READ);
    EXPECT_TRUE(failure.logged({ u"Failed to open file in <orvGetMovieInfo>: " }));
}

TEST(MovieScanFiles, NextFileGoneWhenItsTurnComes)
{
    Failure failure;
    const Movie movie = smallMovie();
    writeSources(failure.sources, failure.folder, movie.bytes, { 5000 });
    failure.progress.deleteAtFirst = failure.sources.paths[1];
    EXPECT_EQ(failure.scan(), ORV_MOVIE_NOT_READ);
    EXPECT_TRUE(failure.logged({ u"Failed to open file in <orvGetMovieInfo>: " + failure.sources.paths[1] }));
}

TEST(MovieScanFiles, LaterFileWithoutTheRestOfThePack)
{
    // A later file is opened as soon as a read comes short, and has to give all that is missing.
    const Movie movie = smallMovie();
    const struct {
        const char* what;
        std::vector<uint64_t> cuts;
        uint64_t failing;
    } rows[] = {
        { "empty last file behind a whole pack", { movie.bytes.size() }, 1 },
        { "empty file between, on a pack's border", { 4096, 4096 }, 1 },
        { "empty file between, in a pack", { 5000, 5000 }, 1 },
        { "file between too short for the rest of the pack", { 5000, 5500 }, 1 },
        { "file between of less than a pack, on the border", { 4096, 6143 }, 1 },
        { "empty second file behind an empty first", { 0, 0 }, 1 },
        { "the third of three", { 5000, 10000, 10001 }, 2 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Failure failure;
        writeSources(failure.sources, failure.folder, movie.bytes, row.cuts);
        EXPECT_EQ(failure.scan(), ORV_MOVIE_NOT_READ);
        EXPECT_TRUE(
            failure.logged({ u"Failed to read pack in <orvGetMovieInfo>: " + failure.sources.paths[row.failing] }));
    }
}

TEST(MovieScanFiles, UnreadableFile)
{
    // A file that opens and fails each read at its start: the own memory, on systems that show it as a file.
    const std::u16string path = u"/proc/self/mem";
    if (!fileExists(path)) GTEST_SKIP() << "no file here fails its reads";
    Failure failure;
    failure.sources.add(path);
    EXPECT_EQ(failure.scan(), ORV_MOVIE_NOT_READ);
    EXPECT_TRUE(failure.logged({ u"Failed to read sector in <orvGetMovieInfo>: " + path }));
}

TEST(MovieScanFiles, UnreadableNextFile)
{
    const std::u16string path = u"/proc/self/mem";
    if (!fileExists(path)) GTEST_SKIP() << "no file here fails its reads";
    Failure failure;
    failure.sources.add(failure.folder / u"first.vob");
    failure.sources.add(path);
    writeFile(failure.sources.paths[0], smallMovie().bytes);
    EXPECT_EQ(failure.scan(), ORV_MOVIE_NOT_READ);
    EXPECT_TRUE(failure.logged({ u"Failed to read pack in <orvGetMovieInfo>: " + path }));
}

TEST(MovieScanFiles, NoLogNoEntry)
{
    const TempDir folder;
    const RunRoot run(1);
    Sources sources;
    sources.add(folder / u"missing.vob");
    EXPECT_EQ(scanSources(run, sources).result, ORV_MOVIE_NOT_READ);
    EXPECT_TRUE(std::filesystem::is_empty(folder.root));
}
