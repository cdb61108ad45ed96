// AUDIO_TS.IFO, byte for byte, its header and its tables of titles; how the menu table is cut.
#include "audio/audio_ifo.h"
#include "tests/audio/table_run.h"
#include "tests/support/write_limit.h"

#include <cerrno>

namespace fs = std::filesystem;

namespace {

uint64_t write(TableRun& run, uint64_t vobBytes = 0, const VobuRecord* cells = nullptr)
{
    return orvWriteAmgIfo(run.context.get(), (run.folder / u"AUDIO_TS.IFO").c_str(), vobBytes, cells);
}

Bytes written(TableRun& run, uint64_t vobBytes = 0, const VobuRecord* cells = nullptr)
{
    EXPECT_EQ(0u, write(run, vobBytes, cells));
    EXPECT_FALSE(fileExists(run.logPath));
    EXPECT_TRUE(run.calls.empty());
    return readFile(run.folder / u"AUDIO_TS.IFO");
}

// Stills of three sectors each, a menu each.
std::vector<Vobu> stillMenus(uint64_t count)
{
    std::vector<Vobu> units;
    for (uint64_t i = 0; i < count; i++) {
        units.push_back({ .sector = 3 * i, .lastSector = 3 * i + 2, .pictures = 1, .vob = i + 1 });
    }
    return units;
}

// As a project without a section AMG_MENU leaves them.
void presetAttributes(TableRun& run)
{
    run.context->amgAttributes.mpegVersion = 1;
    run.context->amgAttributes.isPal = run.context->head.videoStandard == STANDARD_PAL;
}

}   // namespace

TEST(AmgIfo, WithoutMenusWholeFile)
{
    TableRun run(STANDARD_PAL,
                 { { { .playTime = 900000, .blockSize = 100 }, { .playTime = 0x01000000, .blockSize = 50 } } });
    presetAttributes(run);
    expectSameBytes(layout(3 * 2048,
                           {
                               { 0, "44 56 44 41 55 44 49 4F 2D 41 4D 47" },   // DVDAUDIO-AMG
                               { 12, "00 00 00 05" },                          // 0 + 2 x 3 - 1
                               { 28, "00 00 00 02" },
                               { 33, "12" },
                               { 38, "00 01 00 01 01" },
                               { 47, "01 00 00 00 00" },
                               { 63, "01" },
                               { 128, "00 00 07 FF" },
                               { 192, "00 00 00 00 00 00 00 01 00 00 00 02 00 00 00 00" },
                               { 212, "00 00 00 00" },
                               { 256, "53" },
                               { 2048, "00 01 00 11 81 02 00 00 01 0D BB A0 01 01 00 00 00 06" },
                               { 4096, "00 01 00 11 81 02 00 00 01 0D BB A0 01 01 00 00 00 06" },
                           }),
                    written(run), "AUDIO_TS.IFO");
    EXPECT_EQ(6u, run.context->amgSectors);
}

TEST(AmgIfo, WithMenusAndStillsWholeFile)
{
    TableRun run(STANDARD_NTSC, { { { .playTime = 1 }, { .playTime = 2 }, { .playTime = 4 } } });
    AudioDiscContext& disc = *run.context;
    disc.hasAsvs = 1;
    disc.amgMenuCount = 2;
    disc.amgAttributes.mpegVersion = 1;
    disc.amgAttributes.aspectRatio = 3;
    disc.amgAttributes.colorTable[0] = 0x00807F10;
    disc.amgAttributes.colorTable[15] = 0x005BF051;   // pure red: Y 81, Cr 240, Cb 91
    const VobuBlock cells({ { .sector = 0, .lastSector = 4, .pictures = 1, .vob = 1, .cell = 1 },
                            { .sector = 5, .lastSector = 0x11, .pictures = 45, .vob = 2, .cell = 1 } });
    expectSameBytes(
        layout(4 * 2048,
               {
                   { 0, "44 56 44 41 55 44 49 4F 2D 41 4D 47" },
                   { 12, "00 00 00 19" },   // 18 + 2 x 4 - 1
                   { 28, "00 00 00 03" },
                   { 33, "12" },
                   { 38, "00 01 00 01 01" },
                   { 47, "01 00 00 00 1A" },   // stills: 18 + 8
                   { 63, "01" },
                   { 128, "00 00 07 FF" },
                   { 192, "00 00 00 04 00 00 00 01 00 00 00 02 00 00 00 03" },
                   { 256, "4F" },
                   { 2048, "00 01 00 11 81 03 00 00 00 00 00 07 01 01 00 00 00 06" },
                   { 4096, "00 01 00 11 81 03 00 00 00 00 00 07 01 01 00 00 00 06" },
                   // menu table: 16 + 8 + 2 x 8 + 2 x 290 = 620
                   { 6144, "00 01 00 00 00 00 02 6B 65 6E 00 80 00 00 00 10" },
                   { 6160, "00 02 00 00 00 00 02 5B 82 00 00 00 00 00 00 18 82 00 00 00 00 00 01 3A" },
                   // chain of menu 1: twelve frames
                   { 6184, "00 00 01 01 00 00 00 D2" },
                   { 6184 + 28, "80" },
                   { 6184 + 164, "00 10 7F 80" },
                   { 6184 + 224, "00 51 F0 5B 00 EC 01 04 01 06 01 1E" },
                   { 6184 + 236, "00 01 00 01 00 00 00 17" },
                   { 6184 + 260, "01 00 02 00 FF 00 00 00 00 D2 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 04" },
                   { 6184 + 286, "00 01 00 01" },
                   // chain of menu 2: a second and 15 frames
                   { 6474, "00 00 01 01 00 00 01 D5" },
                   { 6474 + 28, "80" },
                   { 6474 + 164, "00 10 7F 80" },
                   { 6474 + 224, "00 51 F0 5B 00 EC 01 04 01 06 01 1E" },
                   { 6474 + 236, "00 01 00 01 00 00 00 17" },
                   { 6474 + 260, "01 00 02 00 FF 00 00 00 01 D5 00 00 00 05 00 00 00 00 00 00 00 05 00 00 00 11" },
                   { 6474 + 286, "00 02 00 01" },
               }),
        written(run, 18 * 2048, cells.list), "AUDIO_TS.IFO");
    EXPECT_EQ(8u, disc.amgSectors);   // without the menus
}

TEST(AmgIfo, MenuVideoAttributes)
{
    const struct {
        uint64_t mpegVersion, isPal, aspectRatio;
        const char* byte;
    } cases[] = {
        { 1, 1, 0, "53" }, { 1, 0, 0, "43" }, { 1, 1, 3, "5F" }, { 1, 0, 3, "4F" },
        { 0, 1, 0, "13" }, { 0, 0, 0, "03" }, { 0, 1, 3, "1F" }, { 0, 0, 1, "0F" },
    };
    for (const auto& c : cases) {
        TableRun run(STANDARD_PAL, { { {} } });
        run.context->amgAttributes.mpegVersion = c.mpegVersion;
        run.context->amgAttributes.isPal = c.isPal;
        run.context->amgAttributes.aspectRatio = c.aspectRatio;
        // What no byte has room for
        run.context->amgAttributes.resolution = 3;
        run.context->amgAttributes.bitrateMode = 1;
        run.context->amgAttributes.audioStreamCount = 2;
        const Bytes ifo = written(run);
        expectAt(ifo, 256, c.byte, "video attributes");
        expectZeros(ifo, 257, 2048, "behind the attributes");
    }
}

TEST(AmgIfo, StillsBehindTheManager)
{
    const struct {
        uint64_t menus, vobSectors;
        bool stills;
        const char* last;   // sector
        const char* at;     // of the stills
        const char* vob;
        const char* menuTable;
    } cases[] = {
        { 0, 0, false, "00 00 00 05", "00 00 00 00", "00 00 00 00", "00 00 00 00" },
        { 0, 0, true, "00 00 00 05", "00 00 00 06", "00 00 00 00", "00 00 00 00" },
        { 1, 3, false, "00 00 00 0A", "00 00 00 00", "00 00 00 04", "00 00 00 03" },
        { 1, 3, true, "00 00 00 0A", "00 00 00 0B", "00 00 00 04", "00 00 00 03" },
        { 8, 0x12345, true, "00 01 23 4E", "00 01 23 4F", "00 00 00 05", "00 00 00 03" },   // + 2 x 5 - 1
    };
    for (const auto& c : cases) {
        TableRun run(STANDARD_PAL, { { {} } });
        run.context->amgMenuCount = c.menus;
        run.context->hasAsvs = c.stills;
        const VobuBlock cells(stillMenus(c.menus));
        const Bytes ifo = written(run, c.vobSectors * 2048, cells.list);
        expectAt(ifo, 12, c.last, "last sector");
        expectAt(ifo, 48, c.at, "stills");
        expectAt(ifo, 192, c.vob, "menu VOB");
        expectAt(ifo, 204, c.menuTable, "menu table");
    }
}

// The tables of titles tell of the first title set alone.
TEST(AmgIfo, OnlyTheFirstTitleSet)
{
    TableRun one(STANDARD_PAL, { { { .playTime = 70 }, { .playTime = 7 } } });
    TableRun three(STANDARD_PAL, { { { .playTime = 70 }, { .playTime = 7 } },
                                   { { .playTime = 0xABCDEF, .blockSize = 77 }, {}, {} },
                                   { { .playTime = 5 } } });
    const Bytes ifo = written(three);
    EXPECT_EQ(written(one), ifo);
    expectAt(ifo, 63, "01", "title sets");
    expectAt(ifo, 2048, "00 01 00 11 81 02 00 00 00 00 00 4D", "titles");
}

TEST(AmgIfo, TracksOfTheFirstTitleSet)
{
    const struct {
        std::vector<TableTrack> tracks;
        const char* title;
    } cases[] = {
        { {}, "81 00 00 00 00 00 00 00 01 01 00 00 00 06" },
        { std::vector<TableTrack>(99, TableTrack{ .playTime = 0x10000 }), "81 63 00 00 00 63 00 00 01 01 00 00 00 06" },
        { std::vector<TableTrack>(100), "81 64 00 00 00 00 00 00 01 01 00 00 00 06" },
        { { { .playTime = 0xFFFFFFFF }, { .playTime = 0xFFFFFFFF } }, "81 02 00 00 FF FF FF FE 01 01 00 00 00 06" },
        { { { .playTime = uint64_t(-5) } }, "81 01 00 00 FF FF FF FB 01 01 00 00 00 06" },
    };
    for (const auto& c : cases) {
        TableRun run(STANDARD_PAL, { c.tracks });
        const Bytes ifo = written(run);
        for (const uint64_t at : { 2048u, 4096u }) {
            expectAt(ifo, at, std::string("00 01 00 11 ") + c.title, "titles");
            expectZeros(ifo, at + 18, at + 2048, "behind the titles");
        }
    }
}

// The sectors of the menu table come from its last byte without the low eight bits: one that ends in the first 256
// bytes of a sector gets no sector for them.
TEST(AmgIfo, MenuTableLosesItsTail)
{
    const struct {
        uint64_t menus;
        const char* last;   // 23 + 298 x menus
        uint64_t sectors;   // of the table
    } cases[] = {
        { 1, "00 00 01 41", 1 },  { 6, "00 00 07 13", 1 },   { 7, "00 00 08 3D", 1 },    // loses 62 bytes
        { 8, "00 00 09 67", 2 },  { 13, "00 00 0F 39", 2 },  { 14, "00 00 10 63", 2 },   // loses 100
        { 15, "00 00 11 8D", 3 }, { 21, "00 00 18 89", 3 },                              // loses 138
        { 22, "00 00 19 B3", 4 }, { 28, "00 00 20 AF", 4 },  { 29, "00 00 21 D9", 5 },
        { 35, "00 00 28 D5", 5 }, { 36, "00 00 29 FF", 6 },  { 42, "00 00 30 FB", 6 },   // loses 252
        { 43, "00 00 32 25", 7 }, { 99, "00 00 73 55", 15 },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.menus) + " menus");
        TableRun run(STANDARD_PAL, { { {} } });
        run.context->amgMenuCount = c.menus;
        const VobuBlock cells(stillMenus(c.menus));
        const Bytes ifo = written(run, 3 * c.menus * 2048, cells.list);
        EXPECT_EQ((3 + c.sectors) * 2048, ifo.size());
        EXPECT_EQ(2 * (3 + c.sectors), run.context->amgSectors);
        EXPECT_EQ(2 + c.sectors, numberAt(ifo, 28, 4));
        EXPECT_EQ(3 + c.sectors, numberAt(ifo, 192, 4));
        EXPECT_EQ(3 * c.menus + 2 * (3 + c.sectors) - 1, numberAt(ifo, 12, 4));
        expectAt(ifo, 6144 + 4, c.last, "last byte");

        uint8_t* block = nullptr;
        ASSERT_EQ(0u, orvBuildAmgMenuTable(run.context.get(), cells.list, &block));
        Bytes table = takeBlock(block);
        EXPECT_EQ(24 + 298 * c.menus, table.size());
        table.resize(c.sectors * 2048, 0);   // cut, or padded
        EXPECT_EQ(table, slice(ifo, 6144, table.size()));
    }
}

TEST(AmgIfo, OlderFileIsReplaced)
{
    TableRun run(STANDARD_PAL, { { {} } });
    const Bytes fresh = written(run);
    writeFile(run.folder / u"AUDIO_TS.IFO", Bytes(20000, 0xEE));
    EXPECT_EQ(fresh, written(run));
}

TEST(AmgIfo, FileThatCannotBeOpened)
{
    TableRun run(STANDARD_PAL, { { {} } });
    fs::create_directory(fs::path(run.folder / u"AUDIO_TS.IFO"));
    EXPECT_EQ(0x840007D5u, write(run));
    EXPECT_FALSE(fileExists(run.logPath));
}

#ifndef _WIN32
// The system's own code
TEST(AmgIfo, FileThatCannotBeWritten)
{
    for (const uint64_t bytes : { 0u, 2048u, 6143u }) {
        TableRun run(STANDARD_PAL, { { {} } });
        {
            const WriteLimit full(bytes);
            EXPECT_EQ(uint64_t(EFBIG), write(run)) << bytes;
        }
        const WriteLimit enough(6144);
        EXPECT_EQ(0u, write(run));
    }
}
#endif
