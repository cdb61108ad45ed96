// Cells of a movie that is multiplexed already: which cell a navigation pack gets, where the next one lies, and what
// stays as it was.
#include "base/result.h"
#include "base/wide.h"
#include "tests/disc/raw_chapters_rig.h"

#include <gtest/gtest.h>

#include <orven/disc.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

struct CellCase {
    const char* what;
    const char* keys;   // of section VTS_1
    uint32_t position;
    const char* cell;
};

const CellCase CELL_CASES[] = {
    { "one before the chapter", "chapters=1\nchapter1=1000\n", 999, "01" },
    { "at the chapter", "chapters=1\nchapter1=1000\n", 1000, "02" },
    { "entry 1 at 0, before entry 2", "chapters=2\nchapter1=0\nchapter2=1000\n", 999, "02" },
    { "entry 1 at 0, at entry 2", "chapters=2\nchapter1=0\nchapter2=1000\n", 1000, "03" },
    { "entry 1 counts from 0 on", "chapters=2\nchapter1=0\nchapter2=1000\n", 0, "02" },
    { "entry 1 missing is 0", "chapters=2\nchapter2=1000\n", 0, "02" },
    { "the first entries all 0", "chapters=3\nchapter3=1\n", 0, "03" },
    { "not in order, before all", "chapters=4\nchapter1=3000\nchapter2=1000\nchapter3=4000\nchapter4=2000\n", 999,
      "01" },
    { "not in order, two", "chapters=4\nchapter1=3000\nchapter2=1000\nchapter3=4000\nchapter4=2000\n", 2999, "03" },
    { "not in order, three", "chapters=4\nchapter1=3000\nchapter2=1000\nchapter3=4000\nchapter4=2000\n", 3000, "04" },
    { "not in order, all", "chapters=4\nchapter1=3000\nchapter2=1000\nchapter3=4000\nchapter4=2000\n", 4000, "05" },
    { "equal entries count each", "chapters=2\nchapter1=500\nchapter2=500\n", 500, "03" },
    { "0 takes the one before", "chapters=3\nchapter1=500\nchapter2=0\nchapter3=700\n", 500, "03" },
    { "0 is not position 0", "chapters=3\nchapter1=500\nchapter2=0\nchapter3=700\n", 499, "01" },
    { "behind a 0", "chapters=3\nchapter1=500\nchapter2=0\nchapter3=700\n", 700, "04" },
    { "a missing key takes the one before", "chapters=3\nchapter1=500\nchapter3=700\n", 500, "03" },
    { "an empty value takes the one before", "chapters=2\nchapter1=500\nchapter2=\n", 500, "03" },
    { "a row of zeros", "chapters=4\nchapter1=500\n", 500, "05" },
    { "the one before in the list, not in time", "chapters=3\nchapter1=900\nchapter2=100\nchapter3=0\n", 899, "03" },
    { "with page and highlight, before", "chapters=1\nchapter1=900000,1,2\n", 899999, "01" },
    { "with page and highlight, at", "chapters=1\nchapter1=900000,1,2\n", 900000, "02" },
    { "with blanks before the comma", "chapters=1\nchapter1=900000 , 1, 2\n", 900000, "02" },
    { "letters behind the number, before", "chapters=2\nchapter1=5\nchapter2=12x\n", 11, "02" },
    { "letters behind the number, at", "chapters=2\nchapter1=5\nchapter2=12x\n", 12, "03" },
    { "no number takes the one before", "chapters=2\nchapter1=5\nchapter2=x12\n", 5, "03" },
    { "in quotes", "chapters=1\nchapter1=\"900\"\n", 900, "02" },
    { "keys behind the count", "chapters=1\nchapter1=10\nchapter2=20\n", 100, "02" },
    { "key 0 is none", "chapters=1\nchapter0=10\nchapter1=20\n", 19, "01" },
    { "keys have no leading zero", "chapters=1\nchapter01=10\nchapter1=20\n", 19, "01" },
    { "keys of two digits", "chapters=10\nchapter1=7\nchapter9=8\nchapter10=9\n", 8, "0A" },
    { "key 10", "chapters=10\nchapter1=7\nchapter9=8\nchapter10=9\n", 9, "0B" },
    { "positions are unsigned, before", "chapters=1\nchapter1=2147483648\n", 0x7FFFFFFF, "01" },
    { "positions are unsigned, at", "chapters=1\nchapter1=2147483648\n", 0x80000000, "02" },
    { "an early chapter, a late pack", "chapters=1\nchapter1=1\n", 0xFFFFFFFF, "02" },
    { "a late chapter, an early pack", "chapters=1\nchapter1=4294967295\n", 0, "01" },
    { "before the last position", "chapters=1\nchapter1=4294967295\n", 0xFFFFFFFE, "01" },
    { "at the last position", "chapters=1\nchapter1=4294967295\n", 0xFFFFFFFF, "02" },
    { "all four bytes of the position count", "chapters=1\nchapter1=16909060\n", 0x01020304, "02" },
    { "in this order", "chapters=1\nchapter1=16909060\n", 0x01020303, "01" },
};

std::string section(const std::string& name, const std::string& keys)
{
    return "[" + name + "]\n" + keys;
}

std::string manyChapters(uint64_t chapters)
{
    std::string keys = "chapters=" + std::to_string(chapters) + "\n";
    for (uint64_t i = 1; i <= 300; i++) keys += "chapter" + std::to_string(i) + "=" + std::to_string(i * 10) + "\n";
    return keys;
}

void expectUntouched(const Answer& answer, const Bytes& sector)
{
    EXPECT_EQ(answer.nextVobu, UNTOUCHED);
    EXPECT_EQ(answer.changed, UNTOUCHED);
    EXPECT_EQ(toHex(answer.sector), toHex(sector));
}

}   // namespace

TEST(RawChapters, CellOfAPosition)
{
    for (const CellCase& c : CELL_CASES) {
        SCOPED_TRACE(c.what);
        const ChapterProject project(section("VTS_1", c.keys));
        const std::string position = hexOf(c.position);
        const Bytes before = makeNavPack({ .position = position.c_str(), .cell = "EE" });
        Bytes after = before;   // byte 1058 alone changes
        setBytes(after, 1058, c.cell);
        const Answer answer = project.ask(before);
        EXPECT_EQ(answer.result, 0u);
        EXPECT_EQ(toHex(answer.sector), toHex(after));
        EXPECT_EQ(answer.changed, 1u);
        EXPECT_EQ(answer.nextVobu, 7u);
    }
}

TEST(RawChapters, ACorrectSectorStays)
{
    for (const CellCase& c : CELL_CASES) {
        SCOPED_TRACE(c.what);
        const ChapterProject project(section("VTS_1", c.keys));
        const std::string position = hexOf(c.position);
        const Bytes before = makeNavPack({ .position = position.c_str(), .cell = c.cell });
        const Answer answer = project.ask(before);
        EXPECT_EQ(answer.result, 0u);
        EXPECT_EQ(toHex(answer.sector), toHex(before));
        EXPECT_EQ(answer.changed, 0u);
        EXPECT_EQ(answer.nextVobu, 7u);
    }
}

TEST(RawChapters, TheLastCellThatAByteHolds)
{
    const ChapterProject project(section("VTS_1", manyChapters(254)));
    const struct {
        uint32_t position;
        const char* cell;
    } cases[] = { { 9, "01" }, { 2529, "FD" }, { 2530, "FE" }, { 2539, "FE" }, { 2540, "FF" }, { 3000, "FF" } };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.position);
        const std::string position = hexOf(c.position);
        const Bytes before = makeNavPack({ .position = position.c_str(), .cell = "00" });
        Bytes after = before;
        setBytes(after, 1058, c.cell);
        const Answer answer = project.ask(before);
        EXPECT_EQ(answer.result, 0u);
        EXPECT_EQ(toHex(answer.sector), toHex(after));
        EXPECT_EQ(answer.changed, 1u);
        // In a sector that has it the last one is no change.
        EXPECT_EQ(project.ask(after).changed, 0u);
    }
}

TEST(RawChapters, TooManyChapters)
{
    for (const uint64_t chapters : { 255ull, 256ull, 300ull, 65535ull, 2147483648ull, 4294967295ull }) {
        SCOPED_TRACE(chapters);
        const ChapterProject project(section("VTS_1", manyChapters(chapters)));
        // The count is judged before the sector is.
        for (const Bytes& sector : { makeNavPack(), Bytes(2048, 0xEE) }) {
            const Answer answer = project.ask(sector);
            EXPECT_EQ(answer.result, 0x840007E0u);
            expectUntouched(answer, sector);
        }
    }
}

TEST(RawChapters, NoChapters)
{
    const char* const projects[] = {
        "",
        "[COMMON]\nchapters=5\n",
        "[VTS_1]\nchapter1=5\n",
        "[VTS_1]\nchapters=0\nchapter1=5\n",
        "[VTS_1]\nchapters=\nchapter1=5\n",
        "[VTS_1]\nchapters=many\nchapter1=5\n",
        "[VTS_2]\nchapters=1\nchapter1=5\n",
        "[VTS_1_MENU]\nchapters=1\nchapter1=5\n",
        "[VTS_11]\nchapters=1\nchapter1=5\n",
    };
    for (const char* text : projects) {
        SCOPED_TRACE(text);
        const ChapterProject project(text);
        // A sector that is no navigation pack is not refused either.
        for (const Bytes& sector : { makeNavPack({ .cell = "EE" }), Bytes(2048, 0xEE) }) {
            const Answer answer = project.ask(sector);
            EXPECT_EQ(answer.result, 0u);
            expectUntouched(answer, sector);
        }
    }
    const ChapterProject missing;
    const Answer answer = missing.ask(Bytes(2048, 0xEE));
    EXPECT_EQ(answer.result, 0u);
    expectUntouched(answer, Bytes(2048, 0xEE));
    EXPECT_FALSE(fileExists(missing.path));
}

// A title run reads VTS_01 first where both are there.
TEST(RawChapters, SectionWithoutZero)
{
    const Bytes before = makeNavPack({ .position = "00 00 03 E8", .cell = "EE" });   // 1000
    const std::string oneChapter = "chapters=1\nchapter1=5\n";
    const std::string twoChapters = "chapters=2\nchapter1=5\nchapter2=6\n";

    const ChapterProject withZero(section("VTS_01", oneChapter));
    const Answer untouched = withZero.ask(before);
    EXPECT_EQ(untouched.result, 0u);
    expectUntouched(untouched, before);

    const ChapterProject both(section("VTS_01", oneChapter) + section("VTS_1", twoChapters));
    EXPECT_EQ(both.ask(before).sector[1058], 3);
}

TEST(RawChapters, SectionOfTheTitleSet)
{
    const ChapterProject project(
        section("VTS_0", "chapters=1\nchapter1=5\n") + section("vts_1", "chapters=2\nchapter1=5\n") +
        section("VTS_10", "chapters=3\nchapter1=5\n") + section("VTS_99", "chapters=4\nchapter1=5\n") +
        section("VTS_100", "chapters=5\nchapter1=5\n"));
    const struct {
        uint64_t titleSet;
        uint8_t cell;
    } cases[] = { { 0, 2 }, { 1, 3 }, { 10, 4 }, { 99, 5 }, { 100, 6 } };
    const Bytes before = makeNavPack({ .position = "00 00 03 E8", .cell = "EE" });
    for (const auto& c : cases) {
        SCOPED_TRACE(c.titleSet);
        const Answer answer = project.ask(before, c.titleSet);
        EXPECT_EQ(answer.result, 0u);
        EXPECT_EQ(answer.sector[1058], c.cell);
    }
    expectUntouched(project.ask(before, 2), before);
}

TEST(RawChapters, SectorsThatAreNone)
{
    const ChapterProject project(section("VTS_1", "chapters=1\nchapter1=5\n"));
    const struct {
        uint64_t at;
        const char* hex;
        uint64_t result;
    } cases[] = {
        { 0, "01", 0x84000FAF },          { 1, "01", 0x84000FAF },
        { 2, "00", 0x84000FAF },          { 3, "BB", 0x84000FAF },
        { 16, "00", 0x84002329 },         { 17, "BE", 0x84002329 },
        { 40, "00", 0x84002329 },         { 41, "BE", 0x84002329 },
        { 0, "BA 01 00 00", 0x84000FAF }, { 16, "BB 01", 0x84002329 },
        { 40, "BF 01", 0x84002329 },      { 14, "00 00 01 BB", 0 },
        { 38, "00 00 01 BF", 0 },         { 1024, "FF FF FF FF FF FF FF", 0 },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.hex) + " at " + std::to_string(c.at));
        Bytes sector = makeNavPack({ .cell = "EE" });
        setBytes(sector, c.at, c.hex);
        const Answer answer = project.ask(sector);
        EXPECT_EQ(answer.result, c.result);
        if (c.result) expectUntouched(answer, sector);
        EXPECT_EQ(answer.changed, c.result ? UNTOUCHED : 1u);
    }
    // A pack start that is wrong is told before a system header that is.
    Bytes neither = makeNavPack();
    neither[3] = neither[17] = neither[41] = 0;
    EXPECT_EQ(project.ask(neither).result, 0x84000FAFu);
}

TEST(RawChapters, WhereTheNextUnitLies)
{
    const ChapterProject project(section("VTS_1", "chapters=1\nchapter1=5\n"));
    const struct {
        const char* what;
        PackFields fields;
        uint64_t next;
    } cases[] = {
        { "all four bytes, in this order", { .unitEnd = "01 02 03 04" }, 0x01020304 },
        { "a unit of one sector", { .unitEnd = "00 00 00 00" }, 0 },
        { "not extended by its sign", { .unitEnd = "80 00 00 01" }, 0x80000001 },
        { "end of the sequence", { .videoEnd = "11 22 33 44", .movieEnd = "11 22 33 44" }, 0xFFFFFFFF },
        { "both ends 0", { .videoEnd = "00 00 00 00", .movieEnd = "00 00 00 00" }, 0xFFFFFFFF },
        { "first byte differs", { .videoEnd = "11 22 33 44", .movieEnd = "10 22 33 44" }, 7 },
        { "second byte differs", { .videoEnd = "11 22 33 44", .movieEnd = "11 20 33 44" }, 7 },
        { "third byte differs", { .videoEnd = "11 22 33 44", .movieEnd = "11 22 30 44" }, 7 },
        { "fourth byte differs", { .videoEnd = "11 22 33 44", .movieEnd = "11 22 33 40" }, 7 },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        PackFields fields = c.fields;
        for (const char* cell : { "01", "EE" }) {   // changed or not
            fields.cell = cell;
            const Answer answer = project.ask(makeNavPack(fields));
            EXPECT_EQ(answer.result, 0u);
            EXPECT_EQ(answer.nextVobu, c.next);
            EXPECT_EQ(answer.changed, std::string(cell) == "EE" ? 1u : 0u);
        }
    }
    static_assert(ORV_LAST_VOBU == 0xFFFFFFFF);
}

TEST(RawChapters, AnswersThatNobodyWants)
{
    const ChapterProject project(section("VTS_1", "chapters=1\nchapter1=5\n"));
    const OrvWChar* path = orvHostText(project.path.c_str());
    const Bytes before = makeNavPack({ .cell = "EE" });
    Bytes after = before;
    after[1058] = 1;
    uint64_t next = UNTOUCHED, changed = UNTOUCHED;

    Bytes sector = before;
    EXPECT_EQ(SetRawChapterW(sector.data(), path, 1, nullptr, &changed), 0u);
    EXPECT_EQ(toHex(sector), toHex(after));
    EXPECT_EQ(changed, 1u);

    sector = before;
    EXPECT_EQ(SetRawChapterW(sector.data(), path, 1, &next, nullptr), 0u);
    EXPECT_EQ(toHex(sector), toHex(after));
    EXPECT_EQ(next, 7u);

    sector = before;
    EXPECT_EQ(SetRawChapterW(sector.data(), path, 1, nullptr, nullptr), 0u);
    EXPECT_EQ(toHex(sector), toHex(after));
}

TEST(RawChapters, NullArguments)
{
    const ChapterProject project(section("VTS_1", "chapters=1\nchapter1=5\n"));
    const ChapterProject empty("");
    uint64_t next = UNTOUCHED, changed = UNTOUCHED;
    Bytes sector = makeNavPack({ .cell = "EE" });
    for (const ChapterProject* p : { &project, &empty }) {
        const std::string narrow = std::filesystem::path(p->path).string();
        EXPECT_EQ(SetRawChapterW(nullptr, orvHostText(p->path.c_str()), 1, &next, &changed), 0x84000057u);
        EXPECT_EQ(SetRawChapter(nullptr, narrow.c_str(), 1, &next, &changed), 0x84000057u);
    }
    EXPECT_EQ(SetRawChapterW(sector.data(), nullptr, 1, &next, &changed), 0x84000057u);
    EXPECT_EQ(SetRawChapter(sector.data(), nullptr, 1, &next, &changed), 0x84000057u);
    EXPECT_EQ(SetRawChapter(nullptr, nullptr, 1, nullptr, nullptr), 0x84000057u);
    expectUntouched({ 0, next, changed, sector }, makeNavPack({ .cell = "EE" }));
}

TEST(RawChapters, NarrowForm)
{
    const ChapterProject project(section("VTS_1", "chapters=3\nchapter1=5\nchapter2=0\nchapter3=900\n") +
                                 section("VTS_2", manyChapters(255)));
    const Bytes before = makeNavPack({ .position = "00 00 03 83", .cell = "EE" });   // 899
    Bytes after = before;
    after[1058] = 3;
    const Answer answer = project.askNarrow(before);
    EXPECT_EQ(answer.result, 0u);
    EXPECT_EQ(toHex(answer.sector), toHex(after));
    EXPECT_EQ(answer.nextVobu, 7u);
    EXPECT_EQ(answer.changed, 1u);

    EXPECT_EQ(project.askNarrow(Bytes(2048, 0)).result, 0x84000FAFu);
    EXPECT_EQ(project.askNarrow(before, 2).result, 0x840007E0u);
    const Answer none = project.askNarrow(before, 3);
    EXPECT_EQ(none.result, 0u);
    expectUntouched(none, before);
    EXPECT_EQ(SetRawChapter(after.data(), std::filesystem::path(project.path).string().c_str(), 1, nullptr, nullptr),
              0u);
}

TEST(RawChapters, NamesThatAreNoText)
{
    // Bytes that no code page or UTF-8 knows lead to no file, and so to no chapters.
    Bytes sector = makeNavPack({ .cell = "EE" });
    uint64_t next = UNTOUCHED, changed = UNTOUCHED;
    EXPECT_EQ(SetRawChapter(sector.data(), "orven-none/\xFF\xFE\x81.ini", 1, &next, &changed), 0u);
    expectUntouched({ 0, next, changed, sector }, makeNavPack({ .cell = "EE" }));

    ChapterProject project;
    project.path = project.dir / u"Kapitel \u00E4\u4E2D.ini";
    writeFile(project.path, section("VTS_1", "chapters=1\nchapter1=5\n"));
    EXPECT_EQ(project.ask(sector).sector[1058], 1);
#ifndef _WIN32
    EXPECT_EQ(project.askNarrow(sector).sector[1058], 1);
#endif
}

TEST(RawChapters, EveryCallReadsAnew)
{
    const ChapterProject project(section("VTS_1", "chapters=1\nchapter1=2000\n"));
    const Bytes sector = makeNavPack({ .position = "00 00 03 E8", .cell = "EE" });   // 1000
    EXPECT_EQ(project.ask(sector).sector[1058], 1);
    writeFile(project.path, section("VTS_1", "chapters=2\nchapter1=999\nchapter2=1000\n"));
    EXPECT_EQ(project.ask(sector).sector[1058], 3);
    std::filesystem::remove(project.path);
    expectUntouched(project.ask(sector), sector);
}

TEST(RawChapters, TheProjectStays)
{
    const std::string text = "; of mine\r\n[VTS_1]\r\n chapters = 2 \r\nchapter2 = 12x";
    const ChapterProject project(text);
    EXPECT_EQ(project.ask(makeNavPack({ .cell = "EE" })).sector[1058], 2);
    EXPECT_EQ(readFile(project.path), Bytes(text.begin(), text.end()));
    uint64_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(project.dir.root)) files += entry.exists() ? 1u : 0u;
    EXPECT_EQ(files, 1u);
}

// A host walks a movie from pack to pack and writes back those that changed.
TEST(RawChapters, AWalkThroughAMovie)
{
    const ChapterProject project(section("VTS_1", "chapters=3\nchapter1=0\nchapter2=90000,2,1\nchapter3=180000\n"));
    struct Unit {
        uint64_t at;   // sectors
        const char *position, *unitEnd, *cell, *newCell;
    };
    const Unit units[] = {
        { 0, "00 00 00 00", "00 00 00 04", "01", "02" },  { 5, "00 00 AF C8", "00 00 00 00", "02", "02" },   // 45000
        { 6, "00 01 5F 90", "00 00 00 02", "01", "03" },                                                     // 90000
        { 9, "00 02 BF 1F", "00 00 00 05", "04", "03" },                                                     // 179999
        { 15, "00 02 BF 20", "00 00 00 01", "04", "04" },
    };
    Bytes movie(17 * 2048, 0x77);
    Bytes expected = movie;
    for (const Unit& unit : units) {
        PackFields fields = { .position = unit.position, .unitEnd = unit.unitEnd, .cell = unit.cell };
        if (unit.at == 15) fields.movieEnd = fields.videoEnd;
        const Bytes pack = makeNavPack(fields);
        setBytes(movie, unit.at * 2048, toHex(pack));
        setBytes(expected, unit.at * 2048, toHex(pack));
        setBytes(expected, unit.at * 2048 + 1058, unit.newCell);
    }
    std::vector<uint64_t> visited, written;
    for (uint64_t at = 0; visited.size() < 10;) {
        visited.push_back(at);
        uint64_t next = UNTOUCHED, changed = UNTOUCHED;
        Bytes sector(movie.begin() + ptrdiff_t(at * 2048), movie.begin() + ptrdiff_t(at * 2048 + 2048));
        ASSERT_EQ(SetRawChapterW(sector.data(), orvHostText(project.path.c_str()), 1, &next, &changed), 0u);
        if (changed) written.push_back(at);
        if (changed) setBytes(movie, at * 2048, toHex(sector));
        if (next == ORV_LAST_VOBU) break;
        at += next + 1;
    }
    EXPECT_EQ(visited, (std::vector<uint64_t>{ 0, 5, 6, 9, 15 }));
    EXPECT_EQ(written, (std::vector<uint64_t>{ 0, 6, 9 }));
    EXPECT_EQ(movie == expected, true);
}
