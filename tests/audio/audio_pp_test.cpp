// AUDIO_PP.IFO, byte for byte.
#include "audio/audio_ifo.h"
#include "tests/audio/table_run.h"
#include "tests/support/write_limit.h"

namespace fs = std::filesystem;

namespace {

constexpr uint64_t COPY = 16384;

uint64_t write(TableRun& run)
{
    return orvWriteAudioPp(run.context.get(), (run.folder / u"AUDIO_PP.IFO").c_str());
}

// One of its eight copies, all of which are the same.
Bytes writtenCopy(TableRun& run)
{
    EXPECT_EQ(0u, write(run));
    const Bytes file = readFile(run.folder / u"AUDIO_PP.IFO");
    EXPECT_EQ(8 * COPY, file.size());
    const Bytes first = slice(file, 0, COPY);
    for (uint64_t i = 1; i < 8; i++) EXPECT_EQ(first, slice(file, i * COPY, COPY)) << i;
    EXPECT_FALSE(fileExists(run.logPath));
    EXPECT_TRUE(run.calls.empty());
    return first;
}

// A disc whose stages have left these numbers.
void stagesWere(TableRun& run, uint64_t amgSectors, uint64_t atsSectors)
{
    run.context->amgSectors = amgSectors;
    run.titleSet(1).ifoSectors = atsSectors;
}

}   // namespace

TEST(AudioPp, TwoTracksWholeFile)
{
    TableRun run(STANDARD_PAL, { { { .playTime = 0x01020304, .firstPts = 0x0A0B0C0D, .blockSize = 0x1000 },
                                   { .playTime = 0x05060708,
                                     .firstPts = 0xFEDCBA98,
                                     .blockStart = 0x1000,
                                     .blockSize = 3,
                                     .assign = 20,
                                     .bits = 24,
                                     .rate = 88200 } } });
    stagesWere(run, 6, 2);   // base: 6 + 64 + 2 = 0x48
    run.track(2).trackFlag = 0x11223344;
    const Bytes expected =
        layout(COPY, {
                         { 0, "44 56 44 41 55 44 49 4F 53 41 50 50 00 02 00 12 00 00" },   // DVDAUDIOSAPP
                         { 18, "01 01 0A 0B 0C 0D 01 02 03 04 00 00 00 00 C8 0F 0F 01" },
                         { 18 + 38, "00 00 00 48 00 00 00 48 00 00 10 47 00 00" },
                         { 70, "01 02 FE DC BA 98 05 06 07 08 11 22 33 44 08 22 99 14" },
                         { 70 + 38, "00 00 10 48 00 00 10 48 00 00 10 4A 00 00" },
                     });
    expectSameBytes(expected, writtenCopy(run), "AUDIO_PP.IFO");
}

TEST(AudioPp, CodesOfEveryTrack)
{
    const struct {
        TableTrack track;
        const char* bytes;   // sizes, rates, assignment
    } cases[] = {
        { { .assign = 0, .bits = 16, .rate = 48000 }, "0F 0F 00" },
        { { .assign = 1, .bits = 20, .rate = 96000 }, "1F 1F 01" },
        { { .assign = 1, .bits = 24, .rate = 192000 }, "2F 2F 01" },
        { { .assign = 2, .bits = 16, .rate = 44100 }, "00 88 02" },
        { { .assign = 19, .bits = 20, .rate = 88200 }, "11 99 13" },
        { { .assign = 20, .bits = 24, .rate = 176400 }, "22 AA 14" },
        { { .assign = 0x29, .bits = 12, .rate = 8000 }, "FF FF 09" },
    };
    std::vector<TableTrack> tracks;
    for (const auto& c : cases) tracks.push_back(c.track);
    TableRun run(STANDARD_PAL, { tracks });
    const Bytes copy = writtenCopy(run);
    for (uint64_t i = 0; i < tracks.size(); i++) {
        expectAt(copy, 18 + 52 * i + 14, i ? "08" : "C8", "attributes");
        expectAt(copy, 18 + 52 * i + 15, cases[i].bytes, "codes");
        expectZeros(copy, 18 + 52 * i + 18, 18 + 52 * i + 38, "behind them");
    }
}

TEST(AudioPp, WithoutTracks)
{
    TableRun run;
    stagesWere(run, 6, 2);
    expectSameBytes(layout(COPY, { { 0, "44 56 44 41 55 44 49 4F 53 41 50 50 00 00 00 12 00 00" } }), writtenCopy(run),
                    "AUDIO_PP.IFO");
}

TEST(AudioPp, OneHundredTracks)
{
    std::vector<TableTrack> tracks;
    for (uint64_t i = 0; i < 100; i++) tracks.push_back({ .blockStart = 5 * i, .blockSize = 5 });
    TableRun run(STANDARD_PAL, { tracks });
    stagesWere(run, 0, 0);
    const Bytes copy = writtenCopy(run);
    expectAt(copy, 12, "00 64", "track count");
    for (uint64_t i = 0; i < 100; i++) {
        EXPECT_EQ(0x100 + i + 1, numberAt(copy, 18 + 52 * i, 2));
        EXPECT_EQ(64 + 5 * i, numberAt(copy, 18 + 52 * i + 38, 4));
        EXPECT_EQ(64 + 5 * i, numberAt(copy, 18 + 52 * i + 42, 4));
        EXPECT_EQ(64 + 5 * i + 4, numberAt(copy, 18 + 52 * i + 46, 4));
    }
    expectZeros(copy, 18 + 5200, COPY, "behind the tracks");
}

TEST(AudioPp, OnlyTheFirstTitleSet)
{
    TableRun one(STANDARD_PAL, { { { .playTime = 9, .blockSize = 3 } } });
    TableRun two(STANDARD_PAL, { { { .playTime = 9, .blockSize = 3 } }, { { .playTime = 8, .blockSize = 2 }, {} } });
    stagesWere(one, 8, 3);
    stagesWere(two, 8, 3);
    two.titleSet(2).ifoSectors = 77;
    EXPECT_EQ(writtenCopy(one), writtenCopy(two));
}

// AUDIO_TS.IFO and its backup, this file, the title set's IFO: the sectors of AUDIO_TS.VOB are left out.
TEST(AudioPp, MenusDoNotCount)
{
    TableRun run(STANDARD_PAL, { { { .blockSize = 10 } } });
    run.context->amgMenuCount = 1;
    const VobuBlock cells({ { .sector = 0, .lastSector = 999, .pictures = 1 } });
    ASSERT_EQ(0u, orvWriteAtsIfo(run.context.get(), 1, (run.folder / u"ATS_01_0.IFO").c_str()));
    ASSERT_EQ(0u, orvWriteAmgIfo(run.context.get(), (run.folder / u"AUDIO_TS.IFO").c_str(), 1000 * 2048, cells.list));
    expectAt(writtenCopy(run), 18 + 38, "00 00 00 4A 00 00 00 4A 00 00 00 53", "sectors");   // 2 x 4 + 64 + 2
}

// A track without packs ends before it begins, and numbers are cut to 32 bits.
TEST(AudioPp, OddNumbers)
{
    TableRun run(STANDARD_PAL,
                 { { { .playTime = uint64_t(-3), .firstPts = 0x1'2345'6789 }, { .playTime = 0x2'0000'0001 } } });
    stagesWere(run, 6, 2);
    const Bytes copy = writtenCopy(run);
    expectAt(copy, 18, "01 01 23 45 67 89 FF FF FF FD", "track 1");
    expectAt(copy, 18 + 38, "00 00 00 48 00 00 00 48 00 00 00 47", "its sectors");
    expectAt(copy, 70, "01 02 00 00 00 00 00 00 00 01", "track 2");
}

TEST(AudioPp, FileThatCannotBeCreated)
{
    TableRun run(STANDARD_PAL, { { {} } });
    fs::create_directory(fs::path(run.folder / u"AUDIO_PP.IFO"));
    EXPECT_EQ(0x8400177Du, write(run));
    EXPECT_FALSE(fileExists(run.logPath));
}

TEST(AudioPp, OlderFileIsReplaced)
{
    TableRun run(STANDARD_PAL, { { {} } });
    const Bytes fresh = writtenCopy(run);
    writeFile(run.folder / u"AUDIO_PP.IFO", Bytes(200000, 0xEE));
    EXPECT_EQ(fresh, writtenCopy(run));
}

#ifndef _WIN32
TEST(AudioPp, EachCopyMayFail)
{
    for (uint64_t copies = 0; copies < 8; copies++) {
        for (const uint64_t more : { 0u, 1u, 16383u }) {
            TableRun run(STANDARD_PAL, { { {} } });
            {
                const WriteLimit full(copies * COPY + more);
                EXPECT_EQ(0x8400177Eu, write(run)) << copies << ", " << more;
            }
            const uint64_t size = readFile(run.folder / u"AUDIO_PP.IFO").size();
            EXPECT_LE(copies * COPY, size);
            EXPECT_GT((copies + 1) * COPY, size);
        }
    }
    TableRun run(STANDARD_PAL, { { {} } });
    const WriteLimit enough(8 * COPY);
    EXPECT_EQ(0u, write(run));
}
#endif
