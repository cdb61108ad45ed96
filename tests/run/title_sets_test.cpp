// Title sets that a run does not scan: skipped ones, and those that come with a scan file.
#include "tests/run/disc_run.h"
#include "tests/video/table_bytes.h"

namespace fs = std::filesystem;

// ---- skipped title sets -------------------------------------------------------------------------------------------

namespace {

Bytes scanFile(const Movie& movie)
{
    Bytes file = fromHex("01 00 00 00");
    for (int shift = 0; shift < 32; shift += 8) file.push_back(uint8_t(movie.sectors() >> shift));
    const uint8_t* const records = reinterpret_cast<const uint8_t*>(movie.vobus.data());
    file.insert(file.end(), records, records + movie.vobus.size() * sizeof(VobuRecord));
    return file;
}

// Three title sets of 20 sectors, the second skipped.
struct SkippedRun : DiscRun {
    SkippedRun()
    {
        for (const char* vob : { "VTS_01_1.VOB", "VTS_03_1.VOB" }) put(vob, fourUnits().bytes);
        text3 = plainProject(*this, 3);
        text3.replace(text3.find("[VTS_2]\nsource="), 15, "[VTS_2]\nskipvts=1\nnosource=");
    }
    std::string text3;
};

// Another disc of one title set 2 with so many chapters, authored beforehand.
void authorSecond(DiscRun& run, uint64_t chapters)
{
    run.put("VTS_02_1.VOB", fourUnits().bytes);
    std::string project = plainProject(run, 2);
    project.replace(project.find("[VTS_1]\nsource="), 15, "[VTS_1]\nskipvts=1\nnosource=");
    project += "chapters=" + std::to_string(chapters) + "\n";
    for (uint64_t i = 2; i <= chapters; i++) {
        project += "chapter" + std::to_string(i) + "=" + std::to_string((i - 1) * 43200) + "\n";
    }
    ASSERT_EQ(0x840007E4u, run.author(project));   // there is no title set 1, but title set 2 is written
}

}   // namespace

TEST(Skipvts, FromTheTarget)
{
    SkippedRun run;
    authorSecond(run, 4);
    fs::remove(fs::path(run.log));
    const Bytes ifo = run.get("VTS_02_0.IFO"), vob = run.get("VTS_02_1.VOB");
    ASSERT_EQ(0u, run.author(run.text3));
    EXPECT_EQ(ifo, run.get("VTS_02_0.IFO"));
    EXPECT_EQ(vob, run.get("VTS_02_1.VOB"));
    expectAt(run.get("VIDEO_TS.IFO"), 2048 + 20 + 2, "00 04", "chapters of title 2");
    expectSoundDisc(run);
    EXPECT_FALSE(fileExists(run.log));
}

TEST(Skipvts, FromTheEarlierRun)
{
    SkippedRun run;
    DiscRun earlier;
    authorSecond(earlier, 3);
    run.previous = earlier.target;
    const Snapshot before = takeSnapshot(earlier.folder.root);
    ASSERT_EQ(0u, run.author(run.text3));
    EXPECT_EQ(before, takeSnapshot(earlier.folder.root));
    EXPECT_FALSE(run.has("VTS_02_0.IFO"));
    EXPECT_FALSE(run.has("VTS_02_1.VOB"));
    expectAt(run.get("VIDEO_TS.IFO"), 2048 + 20 + 2, "00 03", "chapters of title 2");
    // Put together, the two folders are a disc.
    for (const char* file : { "VTS_02_0.IFO", "VTS_02_0.BUP", "VTS_02_1.VOB" }) run.put(file, earlier.get(file));
    expectSoundDisc(run);
}

TEST(Skipvts, TheEarlierRunComesFirst)
{
    SkippedRun run;
    authorSecond(run, 4);
    DiscRun earlier;
    authorSecond(earlier, 2);
    run.previous = earlier.target;
    ASSERT_EQ(0u, run.author(run.text3));
    expectAt(run.get("VIDEO_TS.IFO"), 2048 + 20 + 2, "00 02", "chapters of title 2");
    run.previous.clear();
    run.nullPrevious = false;   // an empty path is none
    ASSERT_EQ(0u, run.author(run.text3));
    expectAt(run.get("VIDEO_TS.IFO"), 2048 + 20 + 2, "00 04", "chapters of title 2");
}

// A title set that this run writes is read from the earlier run all the same, if that has one.
TEST(Skipvts, OlderFilesWinOverThoseOfThisRun)
{
    DiscRun run, earlier;
    authorSecond(earlier, 3);
    run.previous = earlier.target;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    run.put("VTS_02_1.VOB", smallMovie({ 30 }).bytes);
    ASSERT_EQ(0u, run.author(plainProject(run, 2)));
    expectAt(run.get("VIDEO_TS.IFO"), 2048 + 8 + 2, "00 01", "chapters of title 1");
    expectAt(run.get("VIDEO_TS.IFO"), 2048 + 20 + 2, "00 03", "chapters of title 2, not those of its own file");
    expectAt(run.get("VTS_02_0.IFO"), 2048 + 4, "00 00 00 0F", "which has one");
}

TEST(Skipvts, FoundNowhere)
{
    SkippedRun run;
    EXPECT_EQ(0x840007E4u, run.author(run.text3));
    EXPECT_TRUE(logHolds(run.log, { { 0x840007E4, u"Failed to open file for read in <orvReadVTSInfo>: " +
                                                      run.inTarget("VTS_02_0.IFO") } }));
    for (const char* file : { "VTS_01_0.IFO", "VTS_01_0.BUP", "VTS_03_0.IFO", "VTS_03_0.BUP" }) {
        EXPECT_TRUE(run.has(file)) << file;   // the other title sets are written before
    }
    EXPECT_EQ(0u, run.get("VIDEO_TS.IFO").size());
    EXPECT_FALSE(run.has("VIDEO_TS.BUP"));
}

TEST(Skipvts, DamagedFile)
{
    SkippedRun run;
    run.put("VTS_02_0.IFO", Bytes(4096, 0xEE));
    EXPECT_EQ(0x840007E5u, run.author(run.text3));
    EXPECT_FALSE(fileExists(run.log));
}

// ---- scan files ---------------------------------------------------------------------------------------------------

TEST(ScanFileRun, GivesTheTablesOfAScan)
{
    MovieSpec units = { .vobus = vobus(30), .streams = { ac3Stream() } };
    const Movie movie = makeMovie(units);
    DiscRun scanned, loaded;
    for (DiscRun* run : { &scanned, &loaded }) run->put("VTS_01_1.VOB", movie.bytes);
    ASSERT_EQ(0u, scanned.author(plainProject(scanned, 1)));
    loaded.put("movie.scan", scanFile(movie));
    ASSERT_EQ(0u, loaded.author(plainProject(loaded, 1) + "streamscanfile=" + loaded.text("movie.scan") + "\n"));
    for (const std::string& name : WRITTEN) expectSameBytes(scanned.get(name), loaded.get(name), name);
    EXPECT_EQ(movie.bytes, loaded.get("VTS_01_1.VOB"));   // no navigation pack is touched
    EXPECT_NE(movie.bytes, scanned.get("VTS_01_1.VOB"));
}

TEST(ScanFileRun, SourcesAreNeverOpened)
{
    DiscRun run;
    const Movie movie = fourUnits();
    run.put("movie.scan", scanFile(movie));
    ASSERT_EQ(0u, run.author(plainProject(run, 1) + "streamscanfile=" + run.text("movie.scan") + "\n"));
    EXPECT_FALSE(fileExists(run.log));
    expectAt(run.get("VTS_01_0.IFO"), 12, "00 00 00 1F", "sectors are those of the file: 12 + 20 - 1");
    expectAt(run.get("VTS_01_0.IFO"), 10240, "00 00 00 13 00 00 00 00 00 00 00 05 00 00 00 0A 00 00 00 0F",
             "its units");
}

TEST(ScanFileRun, SectorsOfTheFileCountNotThoseOfTheRecords)
{
    DiscRun run;
    Bytes scan = scanFile(fourUnits());
    scan[4] = 200;
    run.put("movie.scan", scan);
    ASSERT_EQ(0u, run.author(plainProject(run, 1) + "streamscanfile=" + run.text("movie.scan") + "\n"));
    expectAt(run.get("VTS_01_0.IFO"), 12, "00 00 00 D3", "12 + 200 - 1");
}

TEST(ScanFileRun, BadFiles)
{
    const struct {
        const char* what;
        Bytes bytes;
    } cases[] = {
        { "empty", {} },
        { "seven bytes", fromHex("01 00 00 00 0A 00 00") },
        { "another first word", fromHex("02 00 00 00 0A 00 00 00") },
    };
    for (const auto& c : cases) {
        DiscRun run;
        run.put("VTS_01_1.VOB", fourUnits().bytes);
        run.put("movie.scan", c.bytes);
        EXPECT_EQ(0x84000057u, run.author(plainProject(run, 1) + "streamscanfile=" + run.text("movie.scan") + "\n"))
            << c.what;
        EXPECT_FALSE(run.has("VTS_01_0.IFO")) << c.what;
        EXPECT_FALSE(fileExists(run.log)) << c.what;
    }
    DiscRun run;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    EXPECT_EQ(2u, run.author(plainProject(run, 1) + "streamscanfile=" + run.text("missing.scan") + "\n"));
    EXPECT_EQ(fourUnits().bytes, run.get("VTS_01_1.VOB"));   // it is not scanned instead
}

TEST(ScanFileRun, NoRecords)
{
    DiscRun run;
    run.put("movie.scan", fromHex("01 00 00 00 0A 00 00 00"));
    ASSERT_EQ(0u, run.author(plainProject(run, 1) + "streamscanfile=" + run.text("movie.scan") + "\n"));
    expectAt(run.get("VTS_01_0.IFO"), 2048, "00 01 00 00 00 00 00 0B 00 00 00 0C 00 00", "no chapters");
    expectAt(run.get("VTS_01_0.IFO"), 10240, "00 00 00 03", "no units");
    EXPECT_EQ(run.get("VTS_01_0.IFO"), run.get("VTS_01_0.BUP"));
}
