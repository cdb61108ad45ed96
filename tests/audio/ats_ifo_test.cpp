// ATS_nn_0.IFO, byte for byte.
#include "audio/audio_ifo.h"
#include "base/result.h"
#include "tests/audio/table_run.h"
#include "tests/support/write_limit.h"

namespace fs = std::filesystem;

namespace {

uint64_t write(TableRun& run, uint64_t number = 1)
{
    return orvWriteAtsIfo(run.context.get(), number, (run.folder / u"ATS.IFO").c_str());
}

Bytes written(TableRun& run, uint64_t number = 1)
{
    EXPECT_EQ(0u, write(run, number));
    EXPECT_FALSE(fileExists(run.logPath));
    EXPECT_TRUE(run.calls.empty());   // the stage reports, not the table
    return readFile(run.folder / u"ATS.IFO");
}

Bytes trackTable(TableRun& run)
{
    uint8_t* block = nullptr;
    EXPECT_EQ(0u, orvBuildAtsTrackTable(run.context.get(), run.context->audioTitleSets[0], &block));
    return takeBlock(block);
}

// So many tracks of 10 packs each.
TableRun& runOf(std::unique_ptr<TableRun>& owner, uint64_t tracks, bool stills)
{
    std::vector<TableTrack> list;
    for (uint64_t i = 0; i < tracks; i++) {
        list.push_back({ .playTime = 1000, .firstPts = i, .blockStart = 10 * i, .blockSize = 10 });
    }
    owner = std::make_unique<TableRun>(STANDARD_PAL, std::vector<std::vector<TableTrack>>{ list });
    owner->context->hasAsvs = stills;
    return *owner;
}

}   // namespace

TEST(AtsIfo, OneTrackWholeFile)
{
    TableRun run(STANDARD_PAL, { { { .playTime = 0x01020304, .firstPts = 0x0A0B0C0D, .blockSize = 0x123456 } } });
    expectSameBytes(layout(2 * 2048,
                           {
                               { 0, "44 56 44 41 55 44 49 4F 2D 41 54 53" },   // DVDAUDIO-ATS
                               { 12, "00 12 34 59" },                          // 2 x 2 - 1 + 0x123456
                               { 28, "00 00 00 01" },
                               { 33, "12" },
                               { 128, "00 00 07 FF" },
                               { 192, "00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 01" },
                               { 256, "00 00 0F 0F 01" },   // 16 bits, 48 kHz, no group 2; stereo
                               { 2048, "00 01 00 00 00 00 00 3F 81 00 00 00 00 00 00 10" },   // 15 + 48
                               { 2064, "00 00 01 01 01 02 03 04 00 00 00 10 00 24 00 00" },
                               { 2080, "C0 10 00 00 01 00 0A 0B 0C 0D 01 02 03 04 00 00 00 00 00 00" },
                               { 2100, "01 00 00 00 00 00 00 00 00 12 34 55" },
                           }),
                    written(run), "ATS_01_0.IFO");
    EXPECT_EQ(2u, run.titleSet(1).ifoSectors);
}

TEST(AtsIfo, ThreeTracksWithStillsWholeFile)
{
    TableRun run(
        STANDARD_PAL,
        { {
            { .playTime = 900000,
              .firstPts = 0,
              .blockStart = 0,
              .blockSize = 0x400,
              .assign = 20,
              .bits = 24,
              .rate = 96000 },
            { .playTime = 0x10, .firstPts = 0xDBBA0, .blockStart = 0x400, .blockSize = 0x1F, .assign = 1, .bits = 16 },
            { .playTime = 0xFFF00000, .firstPts = 0xFFFFFFFF, .blockStart = 0x41F, .blockSize = 1, .assign = 3 },
        } });
    run.context->hasAsvs = 1;
    expectSameBytes(layout(2 * 2048,
                           {
                               { 0, "44 56 44 41 55 44 49 4F 2D 41 54 53" },
                               { 12, "00 00 04 23" },   // 3 + 0x400 + 0x1F + 1
                               { 28, "00 00 00 01" },
                               { 33, "12" },
                               { 128, "00 00 07 FF" },
                               { 196, "00 00 00 02" },
                               { 204, "00 00 00 01" },
                               { 258, "22 11 14" },   // the first track: 24 bits, 96 kHz, both groups; 20
                               { 2048, "00 01 00 00 00 00 00 AF 81 00 00 00 00 00 00 10" },   // 15 + 16 + 3 x 48 = 175
                               // 900000 + 0x10 + 0xFFF00000 = 0xDBBA0 + 0xFFF00010 = 0xFFFDBBB0
                               { 2064, "00 00 03 03 FF FD BB B0 00 00 00 10 00 4C 00 70" },   // 16, 76, 112
                               { 2080, "C0 10 00 00 01 00 00 00 00 00 00 0D BB A0 00 00 00 00 00 00" },
                               { 2100, "00 10 00 00 02 00 00 0D BB A0 00 00 00 10 00 00 00 00 00 00" },
                               { 2120, "00 10 00 00 03 00 FF FF FF FF FF F0 00 00 00 00 00 00 00 00" },
                               { 2140, "01 00 00 00 00 00 00 00 00 00 03 FF" },
                               { 2152, "01 00 00 00 00 00 04 00 00 00 04 1E" },
                               { 2164, "01 00 00 00 00 00 04 1F 00 00 04 1F" },
                               // lists: 18, 28, 38 and the last byte of each
                               { 2176, "01 00 00 12 00 1B 01 00 00 1C 00 25 01 00 00 26 00 2F" },
                               { 2194, "01 00 00 01 00 00 00 00 00 00" },
                               { 2204, "02 00 00 02 00 00 00 00 00 00" },
                               { 2214, "03 00 00 03 00 00 00 00 00 00" },
                           }),
                    written(run), "ATS_01_0.IFO");
}

// The table of the tracks by itself: what the file holds behind its 16 bytes.
TEST(AtsIfo, TrackTableIsABlockOfItsOwn)
{
    std::unique_ptr<TableRun> owner;
    for (const bool stills : { false, true }) {
        for (const uint64_t tracks : { 0u, 1u, 2u, 42u, 99u, 100u }) {
            TableRun& run = runOf(owner, tracks, stills);
            const Bytes block = trackTable(run);
            EXPECT_EQ(16 + tracks * (stills ? 48 : 32), block.size()) << tracks;
            EXPECT_EQ(block, slice(written(run), 2048 + 16, block.size())) << tracks;
        }
    }
}

// Stills belong to the disc: every title set has their records.
TEST(AtsIfo, StillsOfEveryTitleSet)
{
    TableRun run(STANDARD_PAL, { { {} }, { {}, {} } });
    run.context->hasAsvs = 1;
    expectAt(written(run, 1), 2064 + 12, "00 24 00 30", "places of sectors and stills");
    expectAt(written(run, 2), 2064 + 12, "00 38 00 50", "places of sectors and stills");
    run.context->hasAsvs = 0;
    expectAt(written(run, 2), 2064 + 12, "00 38 00 00", "places of sectors and stills");
}

TEST(AtsIfo, TitleSetOfItsNumber)
{
    TableRun run(STANDARD_PAL, { { { .playTime = 1, .blockSize = 7 } },
                                 { { .playTime = 2, .blockSize = 8, .assign = 19, .bits = 24, .rate = 44100 },
                                   { .playTime = 4, .blockStart = 8, .blockSize = 9 } } });
    const Bytes second = written(run, 2);
    expectAt(second, 12, "00 00 00 14", "last sector");   // 3 + 17
    expectAt(second, 258, "22 88 13", "attributes");
    expectAt(second, 2064, "00 00 02 02 00 00 00 06", "tracks");
    EXPECT_EQ(0u, run.titleSet(1).ifoSectors);
    EXPECT_EQ(2u, run.titleSet(2).ifoSectors);
    expectAt(written(run, 1), 2064, "00 00 01 01 00 00 00 01", "tracks");
    EXPECT_EQ(2u, run.titleSet(1).ifoSectors);
}

TEST(AtsIfo, AttributesOfTheFirstTrack)
{
    const struct {
        TableTrack track;
        const char* bytes;   // from 256 on
    } cases[] = {
        { { .assign = 0, .bits = 16, .rate = 48000 }, "00 00 0F 0F 00" },
        { { .assign = 1, .bits = 20, .rate = 96000 }, "00 00 1F 1F 01" },
        { { .assign = 1, .bits = 24, .rate = 192000 }, "00 00 2F 2F 01" },
        { { .assign = 2, .bits = 16, .rate = 44100 }, "00 00 00 88 02" },
        { { .assign = 3, .bits = 20, .rate = 88200 }, "00 00 11 99 03" },
        { { .assign = 17, .bits = 24, .rate = 176400 }, "00 00 22 AA 11" },
        { { .assign = 20, .bits = 24, .rate = 48000 }, "00 00 22 00 14" },
        { { .assign = 0x3F, .bits = 16, .rate = 48000 }, "00 00 00 00 1F" },   // five bits
        { { .assign = 0x20, .bits = 16, .rate = 48000 }, "00 00 00 00 00" },
        { { .assign = 1, .bits = 8, .rate = 32000 }, "00 00 FF FF 01" },
    };
    for (const auto& c : cases) {
        TableRun run(STANDARD_PAL, { { c.track, { .assign = 5, .bits = 24, .rate = 88200 } } });
        expectAt(written(run), 256, c.bytes, "attributes");
    }
}

// Groups that differ; this engine's projects never have them, the table can say it.
TEST(AtsIfo, GroupsThatDiffer)
{
    TableRun run(STANDARD_PAL, { { { .assign = 3 } } });
    run.track(1).sampleSize1 = 24;
    run.track(1).sampleSize2 = 16;
    run.track(1).sampleRate1 = 96000;
    run.track(1).sampleRate2 = 48000;
    expectAt(written(run), 258, "20 10 03", "attributes");
}

// No tracks: the table is there, and says so.
TEST(AtsIfo, WithoutTracks)
{
    TableRun run;
    Bytes ifo = written(run);
    expectAt(ifo, 12, "00 00 00 03", "last sector");
    expectAt(ifo, 204, "00 00 00 01", "place of the table");
    expectAt(ifo, 256, "00 00 FF FF 00", "attributes of no track");
    expectAt(ifo, 2048, "00 01 00 00 00 00 00 1F 81 00 00 00 00 00 00 10", "table");
    expectAt(ifo, 2064, "00 00 00 00 00 00 00 00 00 00 00 10 00 10 00 00", "tracks");
    expectZeros(ifo, 2080, 4096, "behind the table");
    run.context->hasAsvs = 1;
    ifo = written(run);
    expectAt(ifo, 2048 + 7, "1F", "last byte");
    expectAt(ifo, 2064, "00 00 00 00 00 00 00 00 00 00 00 10 00 10 00 10", "tracks");
}

// A track without packs ends before it begins.
TEST(AtsIfo, TrackWithoutPacks)
{
    TableRun run(STANDARD_PAL, { { {}, { .blockSize = 5 }, { .blockStart = 5 } } });
    const Bytes ifo = written(run);
    expectAt(ifo, 12, "00 00 00 08", "last sector");
    expectAt(ifo, 2080 + 60, "01 00 00 00 00 00 00 00 FF FF FF FF", "sectors of track 1");
    expectAt(ifo, 2080 + 72, "01 00 00 00 00 00 00 00 00 00 00 04", "sectors of track 2");
    expectAt(ifo, 2080 + 84, "01 00 00 00 00 00 00 05 00 00 00 04", "sectors of track 3");
}

// Numbers of 64 bits: their low 32 are stored, of the sum too.
TEST(AtsIfo, LongNumbersAreCut)
{
    TableRun run(STANDARD_PAL, { { { .playTime = 0x1'0000'0005, .firstPts = 0x7'8000'0001 },
                                   { .playTime = uint64_t(-90000), .firstPts = uint64_t(-1) },
                                   { .playTime = 0xFFFF'FFFF } } });
    const Bytes ifo = written(run);
    expectAt(ifo, 2064 + 4, "FF FE A0 74", "sum");   // 5 - 90000 - 1 = -89996 = -(0x15F8C)
    expectAt(ifo, 2080 + 6, "80 00 00 01 00 00 00 05", "track 1");
    expectAt(ifo, 2100 + 6, "FF FF FF FF FF FE A0 70", "track 2");   // -90000 = -(0x15F90)
    expectAt(ifo, 2120 + 6, "00 00 00 00 FF FF FF FF", "track 3");
}

// Sizes around the borders: 32 + 32 n bytes of table, with stills 32 + 48 n.
TEST(AtsIfo, SectorsOfManyTracks)
{
    const struct {
        uint64_t tracks;
        bool stills;
        uint64_t sectors;   // of the file
        const char* last;   // last byte of the table
    } cases[] = {
        { 1, false, 2, "00 00 00 3F" },  { 62, false, 2, "00 00 07 DF" }, { 63, false, 2, "00 00 07 FF" },
        { 64, false, 3, "00 00 08 1F" }, { 99, false, 3, "00 00 0C 7F" }, { 100, false, 3, "00 00 0C 9F" },
        { 1, true, 2, "00 00 00 4F" },   { 42, true, 2, "00 00 07 FF" },  { 43, true, 3, "00 00 08 2F" },
        { 84, true, 3, "00 00 0F DF" },  { 85, true, 4, "00 00 10 0F" },  { 100, true, 4, "00 00 12 DF" },
    };
    std::unique_ptr<TableRun> owner;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.tracks) + (c.stills ? " tracks with stills" : " tracks"));
        TableRun& run = runOf(owner, c.tracks, c.stills);
        const Bytes ifo = written(run);
        EXPECT_EQ(c.sectors * 2048, ifo.size());
        EXPECT_EQ(c.sectors, run.titleSet(1).ifoSectors);
        expectAt(ifo, 2048 + 4, c.last, "last byte");
        EXPECT_EQ(2 * c.sectors - 1 + 10 * c.tracks, numberAt(ifo, 12, 4));
        EXPECT_EQ(c.sectors - 1, numberAt(ifo, 28, 4));
        EXPECT_EQ(c.sectors, numberAt(ifo, 196, 4));
        EXPECT_EQ(c.tracks, numberAt(ifo, 2066, 1));
        EXPECT_EQ(c.tracks, numberAt(ifo, 2067, 1));
        const uint64_t n = c.tracks, sectorsAt = 16 + 20 * n, stillsAt = 16 + 32 * n;
        EXPECT_EQ(sectorsAt, numberAt(ifo, 2064 + 12, 2));
        EXPECT_EQ(c.stills ? stillsAt : 0, numberAt(ifo, 2064 + 14, 2));
        for (uint64_t i = 0; i < n; i++) {
            expectAt(ifo, 2064 + 16 + 20 * i, i ? "00 10 00 00" : "C0 10 00 00", "track");
            EXPECT_EQ(i + 1, numberAt(ifo, 2064 + 16 + 20 * i + 4, 1));
            EXPECT_EQ(10 * i, numberAt(ifo, 2064 + sectorsAt + 12 * i + 4, 4));
            EXPECT_EQ(10 * i + 9, numberAt(ifo, 2064 + sectorsAt + 12 * i + 8, 4));
            if (!c.stills) continue;
            const uint64_t list = 2064 + stillsAt + 6 * i, still = 2064 + stillsAt + 6 * n + 10 * i;
            EXPECT_EQ(0x0100u, numberAt(ifo, list, 2));
            EXPECT_EQ(6 * n + 10 * i, numberAt(ifo, list + 2, 2));
            EXPECT_EQ(6 * n + 10 * i + 9, numberAt(ifo, list + 4, 2));
            EXPECT_EQ((i + 1) << 24 | (i + 1), numberAt(ifo, still, 4));
            EXPECT_EQ(0u, numberAt(ifo, still + 4, 6));
        }
        expectZeros(ifo, 2064 + 16 + (c.stills ? 48 : 32) * n, ifo.size(), "behind the table");
    }
}

// Sectors come from the last byte plus 2047, rounded down: a table of one byte more than whole sectors would lose it.
// The tables grow in steps of 32 and 48 bytes from 32, so that none is of that size: whatever the count, all is there.
TEST(AtsIfo, TableOfOneByteMoreThanASector)
{
    std::unique_ptr<TableRun> owner;
    uint64_t whole = 0;
    for (const bool stills : { false, true }) {
        for (uint64_t tracks = 0; tracks <= 100; tracks++) {
            TableRun& run = runOf(owner, tracks, stills);
            const Bytes table = trackTable(run);
            const uint64_t last = 15 + table.size();
            ASSERT_NE(0u, last % 2048) << tracks;
            const Bytes ifo = written(run);
            EXPECT_EQ(last, numberAt(ifo, 2052, 4));
            EXPECT_EQ(2048 + (last + 2047) / 2048 * 2048, ifo.size()) << tracks;
            EXPECT_EQ(table, slice(ifo, 2064, table.size())) << tracks;
            whole += last % 2048 == 2047;
        }
    }
    EXPECT_EQ(2u, whole);   // 63 tracks, 42 tracks with stills
}

TEST(AtsIfo, OlderFileIsReplaced)
{
    TableRun run(STANDARD_PAL, { { {} } });
    const Bytes fresh = written(run);
    writeFile(run.folder / u"ATS.IFO", Bytes(10000, 0xEE));
    EXPECT_EQ(fresh, written(run));
}

TEST(AtsIfo, FileThatCannotBeCreated)
{
    TableRun run(STANDARD_PAL, { { {} } });
    fs::create_directory(fs::path(run.folder / u"ATS.IFO"));
    EXPECT_EQ(0x8400177Fu, write(run));
    EXPECT_EQ(0x8400177Fu, orvWriteAtsIfo(run.context.get(), 1, (run.folder / u"missing" + u"/ATS_01_0.IFO").c_str()));
    EXPECT_FALSE(fileExists(run.logPath));
    EXPECT_EQ(0u, run.titleSet(1).ifoSectors);
}

#ifndef _WIN32
TEST(AtsIfo, FileThatCannotBeWritten)
{
    for (const uint64_t bytes : { 0u, 1u, 2048u, 4095u }) {
        TableRun run(STANDARD_PAL, { { {} } });
        {
            const WriteLimit full(bytes);
            EXPECT_EQ(0x84001780u, write(run)) << bytes;
        }
        const WriteLimit enough(4096);
        EXPECT_EQ(0u, write(run));
    }
}
#endif
