// Sources that are missing, empty, cut, or no program streams: results, log and what is left.
#include "tests/run/disc_run.h"
#include "tests/video/table_bytes.h"

namespace fs = std::filesystem;

namespace {

struct SourceRun : DiscRun {
    /** A project of one title set with these files of the target as sources. */
    uint64_t authorSources(const std::vector<std::string>& names)
    {
        std::string text = "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\n";
        for (uint64_t i = 0; i < names.size(); i++) {
            text += "source" + (i ? std::to_string(i) : "") + "=" + this->text(names[i]) + "\n";
        }
        return author(text);
    }
    std::u16string failure(const std::u16string& what, const std::string& name) const
    {
        return u"Failed to " + what + u": " + inTarget(name);
    }
    void expectNothingWritten() const
    {
        for (const std::string& name : WRITTEN) EXPECT_FALSE(has(name)) << name;
    }
};

Bytes sectors(const Movie& movie, uint64_t from, uint64_t to)
{
    return Bytes(movie.bytes.begin() + std::ptrdiff_t(from * 2048), movie.bytes.begin() + std::ptrdiff_t(to * 2048));
}

}   // namespace

TEST(Source, Missing)
{
    SourceRun run;
    EXPECT_EQ(0x84000FB4u, run.authorSources({ "1.vob" }));
    EXPECT_TRUE(logHolds(run.log, { { 0x84000FB4, run.failure(u"open file in <orvCountFilePacks>", "1.vob") },
                                    { 0x84000FB4, run.failure(u"open file in <orvGetMovieInfo>", "1.vob") } }));
    run.expectNothingWritten();
}

// The log grows from run to run. Each text leaves its first half: of both headers the same nine characters.
TEST(Source, MissingByteForByteInTheLog)
{
    SourceRun run;
    run.log = run.folder / u"new.log";
    writeFile(run.log, fromHex("55 55"));
    writeFile(run.project, "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nsource=missing\n");
    EXPECT_EQ(0x84000FB4u, run.author());
    const std::string header = "45 00 72 00 72 00 6F 00 72 00 3A 00 20 00 38 00 34 00";   // "Error: 84"
    EXPECT_EQ(toHex(fromHex("55 55" + header +
                            // "Failed to open file in <orvCountFilePacks>: missing" is 51 characters: 25 and a half
                            "46 00 61 00 69 00 6C 00 65 00 64 00 20 00 74 00 6F 00 20 00 6F 00 70 00 65 00 6E 00 20 00"
                            "66 00 69 00 6C 00 65 00 20 00 69 00 6E 00 20 00 3C 00 6F 00 72"
                            "0D 00 0A 00" +
                            header +
                            // "Failed to open file in <orvGetMovieInfo>: missing" is 49 characters: 24 and a half
                            "46 00 61 00 69 00 6C 00 65 00 64 00 20 00 74 00 6F 00 20 00 6F 00 70 00 65 00 6E 00 20 00"
                            "66 00 69 00 6C 00 65 00 20 00 69 00 6E 00 20 00 3C 00 6F"
                            "0D 00 0A 00")),
              toHex(readFile(run.log)));
}

// The file that could not be opened is named first; the second entry names the first source.
TEST(Source, MissingLaterOne)
{
    SourceRun run;
    run.put("1.vob", fourUnits().bytes);
    EXPECT_EQ(0x84000FB4u, run.authorSources({ "1.vob", "2.vob" }));
    EXPECT_TRUE(logHolds(run.log, { { 0x84000FB4, run.failure(u"open file in <orvCountFilePacks>", "2.vob") },
                                    { 0x84000FB4, run.failure(u"open file in <orvGetMovieInfo>", "1.vob") } }));
    EXPECT_EQ(fourUnits().bytes, run.get("1.vob"));
    run.expectNothingWritten();
}

TEST(Source, Folder)
{
    SourceRun run;
    fs::create_directory(fs::path(run.inTarget("1.vob")));
    EXPECT_EQ(0x84000FB4u, run.authorSources({ "1.vob" }));
    EXPECT_TRUE(logHolds(run.log, { { 0x84000FB4, run.failure(u"open file in <orvCountFilePacks>", "1.vob") },
                                    { 0x84000FB4, run.failure(u"open file in <orvGetMovieInfo>", "1.vob") } }));
    run.expectNothingWritten();
}

// The one result that fills all 64 bits.
TEST(Source, NoWholeSector)
{
    for (const uint64_t size : { uint64_t(0), uint64_t(1), uint64_t(2047) }) {
        SourceRun run;
        run.put("1.vob", slice(fourUnits().bytes, 0, size));
        EXPECT_EQ(0xFFFFFFFFFFFFFFFDu, run.authorSources({ "1.vob" })) << size;
        EXPECT_FALSE(fileExists(run.log)) << size;
        run.expectNothingWritten();
    }
}

TEST(Source, EmptyFirstOne)
{
    SourceRun run, plain;
    run.put("1.vob", {});
    run.put("2.vob", fourUnits().bytes);
    plain.put("1.vob", fourUnits().bytes);
    ASSERT_EQ(0u, run.authorSources({ "1.vob", "2.vob" }));
    ASSERT_EQ(0u, plain.authorSources({ "1.vob" }));
    EXPECT_EQ(plain.get("1.vob"), run.get("2.vob"));
    expectSameBytes(plain.get("VTS_01_0.IFO"), run.get("VTS_01_0.IFO"), "VTS_01_0.IFO");
}

// A source that ends on a pack's border is followed by the next one, which has to give a whole pack.
TEST(Source, EmptyOrShortLaterOne)
{
    for (const uint64_t size : { uint64_t(0), uint64_t(1), uint64_t(2047) }) {
        SourceRun run;
        run.put("1.vob", fourUnits().bytes);
        run.put("2.vob", slice(fourUnits().bytes, 0, size));
        EXPECT_EQ(0x84000FB4u, run.authorSources({ "1.vob", "2.vob" })) << size;
        EXPECT_TRUE(logHolds(run.log, { { 0x84000FB4, run.failure(u"read pack in <orvGetMovieInfo>", "2.vob") } }))
            << size;
        run.expectNothingWritten();
        EXPECT_EQ(fourUnits().bytes, run.get("1.vob")) << size;
    }
}

TEST(Source, IncompleteLastPackIsDropped)
{
    SourceRun run, plain;
    const Movie movie = fourUnits();
    run.put("VTS_01_1.VOB", slice(movie.bytes, 0, 18 * 2048 + 1000));
    plain.put("VTS_01_1.VOB", sectors(movie, 0, 18));
    ASSERT_EQ(0u, run.authorSources({ "VTS_01_1.VOB" }));
    ASSERT_EQ(0u, plain.authorSources({ "VTS_01_1.VOB" }));
    for (const std::string& name : WRITTEN) expectSameBytes(plain.get(name), run.get(name), name);
    const Bytes vob = run.get("VTS_01_1.VOB");
    EXPECT_EQ(plain.get("VTS_01_1.VOB"), slice(vob, 0, 18 * 2048));
    EXPECT_EQ(slice(movie.bytes, 18 * 2048, 1000), slice(vob, 18 * 2048, 2048));
    expectSoundDisc(plain);
}

// The list of sources ends for the scan at the first key that is missing; the sizes of all are counted.
TEST(Source, GapInTheKeys)
{
    DiscRun run;
    const Movie movie = fourUnits();
    run.put("1.vob", sectors(movie, 0, 10));
    run.put("3.vob", sectors(movie, 10, 20));
    const std::string project = "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nsource=" + run.text("1.vob") +
                                "\nsource2=" + run.text("3.vob") + "\n";
    ASSERT_EQ(0u, run.author(project));
    const Bytes ifo = run.get("VTS_01_0.IFO");
    expectAt(ifo, 10240, "00 00 00 0B 00 00 00 00 00 00 00 05 00 00 00 00", "units of the first file alone");
    expectAt(ifo, 8192 + 16, "00 00 00 09", "last sector of the cell");
    expectAt(ifo, 12, "00 00 00 1F", "last sector: 12 + 20 - 1");
    expectAt(run.get("1.vob"), 5 * 2048 + 1039, "00 00 00 0E", "end of the last unit: 20 - 5 - 1");
    EXPECT_EQ(slice(movie.bytes, 10 * 2048, 10 * 2048), run.get("3.vob"));
}

// In the second pass one step to the next file is made for a pack: files between two navigation packs are too many.
TEST(Source, FileWithoutANavigationPackBetweenTwo)
{
    SourceRun run;
    const Movie movie = fourUnits();
    run.put("1.vob", sectors(movie, 0, 7));
    run.put("2.vob", sectors(movie, 7, 9));
    run.put("3.vob", sectors(movie, 9, 20));
    EXPECT_EQ(0x84000FB4u, run.authorSources({ "1.vob", "2.vob", "3.vob" }));
    EXPECT_TRUE(logHolds(run.log, { { 0x84000FB4, run.failure(u"read rest of pack in <orvSetupMovieA>", "2.vob") } }));
    EXPECT_EQ(0u, changedOutsideNavPacks(slice(movie.bytes, 0, 7 * 2048), run.get("1.vob")));
    EXPECT_NE(slice(movie.bytes, 0, 7 * 2048), run.get("1.vob"));   // a failed run leaves the VOB partly filled
    EXPECT_EQ(slice(movie.bytes, 7 * 2048, 2 * 2048), run.get("2.vob"));
    EXPECT_EQ(slice(movie.bytes, 9 * 2048, 11 * 2048), run.get("3.vob"));
    run.expectNothingWritten();
}

// Packs before the first navigation pack are a record like any other: the first of them is filled as if it were one.
TEST(Source, PacksBeforeTheFirstNavigationPack)
{
    SourceRun run;
    MovieSpec leading = { .vobus = vobus(2, { .pictureBytes = { 100 }, .padding = 3 }), .leadingPadding = 3 };
    run.put("1.vob", makeMovie(leading).bytes);
    ASSERT_EQ(0u, run.authorSources({ "1.vob" }));
    const Bytes ifo = run.get("VTS_01_0.IFO");
    expectAt(ifo, 10240, "00 00 00 0F 00 00 00 00 00 00 00 03 00 00 00 08", "three units");
    expectAt(ifo, 8192,
             "00 03 00 00 00 00 00 2B 00 01 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02"
             "00 01 01 00 00 00 00 03 00 00 00 0C",
             "cells");
    expectAt(run.get("1.vob"), 38, "00 00 01 BF 03 D4 00 00 00 00 00", "sector 0");
    expectAt(run.get("1.vob"), 3 * 2048 + 38, "00 00 01 BF 03 D4 00 00 00 00 03", "sector 3");
}

TEST(Source, NoNavigationPacks)
{
    SourceRun run;
    Bytes stream;
    for (uint64_t i = 0; i < 4; i++) stream += videoPack(picture(100, 0, 1), { .clock = { 1000 * i, 0 } });
    run.put("1.vob", stream);
    ASSERT_EQ(0u, run.authorSources({ "1.vob" }));
    const Bytes ifo = run.get("VTS_01_0.IFO");
    expectAt(ifo, 2048, "00 01 00 00 00 00 00 0B 00 00 00 0C 00 00", "no chapters");
    expectAt(ifo, 10240, "00 00 00 07 00 00 00 00", "one unit");
    expectAt(ifo, 8192, "00 02 00 00 00 00 00 1F 00 01 01 00 00 00 00 00 00 00 00 00", "cells");
    expectAt(ifo, 8212, "00 00 00 00 00 00 00 00 00 00 00 03", "cells");
}

TEST(Source, NoProgramStreamAtAll)
{
    SourceRun run;
    run.put("1.vob", Bytes(5 * 2048, 0xEE));
    ASSERT_EQ(0u, run.authorSources({ "1.vob" }));
    expectAt(run.get("VTS_01_0.IFO"), 12, "00 00 00 10", "12 + 5 - 1");
}

// Thirty-two files, one unit each.
TEST(Source, AllThatFit)
{
    SourceRun run;
    const Movie movie = smallMovie(std::vector<uint64_t>(32, 2));
    std::vector<std::string> names;
    for (uint64_t i = 0; i < 32; i++) {
        names.push_back(std::to_string(i) + ".vob");
        run.put(names.back(), sectors(movie, 2 * i, 2 * i + 2));
    }
    ASSERT_EQ(0u, run.authorSources(names));
    SourceRun whole;
    whole.put("1.vob", movie.bytes);
    ASSERT_EQ(0u, whole.authorSources({ "1.vob" }));
    Bytes all;
    for (const std::string& name : names) all += run.get(name);
    EXPECT_EQ(whole.get("1.vob"), all);
    expectSameBytes(whole.get("VTS_01_0.IFO"), run.get("VTS_01_0.IFO"), "VTS_01_0.IFO");
}
