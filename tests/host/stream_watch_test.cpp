// stream_watch_test.cpp: streams of which the library's scan would make no movie, told beforehand.
#include "host/codes.h"
#include "host/stream_watch.h"
#include "tests/host/scan_stream.h"

#include <gtest/gtest.h>

namespace {

FileFault watch(StreamWatch* watch, const Bytes& stream)
{
    for (uint64_t at = 0; at + PACK_BYTES <= stream.size(); at += PACK_BYTES) {
        if (FileFault fault = watchPack(watch, stream.data() + at)) return fault;
    }
    return watchEnd(*watch);
}

TEST(StreamWatch, SoundStream)
{
    StreamWatch seen = { .cells = { .starts = { 0, 50000, 90001 } } };
    EXPECT_FALSE(watch(&seen, scanStream(scanUnits(3))));
    EXPECT_EQ(seen.sectors, 9u);
    EXPECT_EQ(seen.units, 3u);
    EXPECT_EQ(seen.cell, 3u);
    EXPECT_EQ(missingCells(seen), "");
    EXPECT_FALSE(countsWrongRate(seen));
}

// Units that sound alone makes have the time of the last pictures.
TEST(StreamWatch, EqualTimesAreFine)
{
    std::vector<ScanUnit> units = scanUnits(3);
    units.push_back({ .pictures = 0, .start = 95400 });
    units.push_back({ .pictures = 0, .start = 95400 });
    StreamWatch seen;
    EXPECT_FALSE(watch(&seen, scanStream(units)));
    EXPECT_EQ(seen.units, 5u);
}

struct FaultCase {
    const char* what;
    Bytes stream;
    CellPlan cells;
    uint64_t code;
    const char* why;
};

Bytes patched(Bytes bytes, uint64_t at, std::string_view hex)
{
    patch(bytes, at, hex);
    return bytes;
}

Bytes shortened(Bytes bytes, uint64_t sectors)
{
    bytes.resize(bytes.size() - sectors * PACK_BYTES);
    return bytes;
}

TEST(StreamWatch, Faults)
{
    const Bytes sound = scanStream(scanUnits(4));
    const FaultCase cases[] = {
        { "no pack",
          patched(sound, 5 * 2048, "00 00 01 BB"),
          {},
          CODE_NO_PACK,
          "at sector 5 no pack begins (00 00 01 BA)" },
        { "no pack at all", Bytes(4096, 'x'), {}, CODE_NO_PACK, "at sector 0 no pack begins (00 00 01 BA)" },
        { "no navigation pack",
          videoPack(Bytes(100)),
          {},
          0,
          "its first pack is no navigation pack: the stream is not made for a DVD, or begins within a unit. `orven "
          "mux` makes one of the video and the sounds" },
        { "navigation packs of another length",
          patched(sound, 1028, "03 FB"),
          {},
          0,
          "its first pack is no navigation pack: the stream is not made for a DVD, or begins within a unit. `orven "
          "mux` makes one of the video and the sounds" },
        { "blank",
          patched(sound, 57, "00 00 00 00 00 00 00 00"),
          {},
          0,
          "at sector 0 a navigation pack is empty: the stream carries no navigation data, as those that ffmpeg makes. "
          "`orven mux` makes one that does, of the video and the sounds" },
        { "blank later on",
          patched(sound, 3 * 2048 + 57, "00 00 00 00 00 00 00 00"),
          {},
          0,
          "at sector 3 a navigation pack is empty: the stream carries no navigation data, as those that ffmpeg makes. "
          "`orven mux` makes one that does, of the video and the sounds" },
        { "falling time",
          scanStream({ {}, {}, { .start = 52199 } }),
          {},
          0,
          "at sector 6 the stream's time falls from 0:00:00.580 to 0:00:00.579: here begins another one. Scan each by "
          "itself" },
        { "shorter unit",
          shortened(sound, 1),
          {},
          0,
          "the unit at sector 9 should have 3 sectors by its navigation pack, and has 2: the stream is cut" },
        { "shorter unit within",
          scanStream({ {}, { .lastSector = 3 }, {} }),
          {},
          0,
          "the unit at sector 3 should have 4 sectors by its navigation pack, and has 3: the stream is cut" },
        { "longer unit",
          scanStream({ {}, { .lastSector = 0 }, {} }),
          {},
          0,
          "the unit at sector 3 should have 1 sector by its navigation pack, and has 3" },
        { "endless unit",
          scanStream({ { .lastSector = 0xFFFFFFFF }, {} }),
          {},
          0,
          "the unit at sector 0 should have 4294967296 sectors by its navigation pack, and has 3: the stream is cut" },
        { "divided before",
          scanStream({ {}, {}, { .elapsed = 0 }, {} }),
          {},
          0,
          "at sector 6 the elapsed time begins anew, within a cell: the stream was divided in other places before. "
          "Multiplex it again" },
        { "first cell without a unit",
          sound,
          { .starts = { 0, 9000 } },
          0,
          "no unit begins in cell 1, which is to begin at 0:00:00.000; the unit at sector 0 is in cell 2 already. "
          "Cells "
          "consist of whole units, of about half a second" },
        { "cell without a unit",
          sound,
          { .starts = { 0, 52201, 60000 } },
          0,
          "no unit begins in cell 2, which is to begin at 0:00:00.580; the unit at sector 6 is in cell 3 already. "
          "Cells "
          "consist of whole units, of about half a second" },
        { "interval shorter than a unit",
          sound,
          { .interval = 20000 },
          0,
          "no unit begins in cell 2, which is to begin at 0:00:00.222; the unit at sector 3 is in cell 3 already. "
          "Cells "
          "consist of whole units, of about half a second" },
        { "too many cells",
          scanStream(scanUnits(256, { .sectors = 1 })),
          { .interval = 43200 },
          0,
          "at sector 255 cell 256 would begin; a title has at most 255" },
    };
    for (const FaultCase& test : cases) {
        SCOPED_TRACE(test.what);
        StreamWatch seen = { .cells = test.cells };
        const FileFault fault = watch(&seen, test.stream);
        EXPECT_EQ(fault.code, test.code);
        EXPECT_EQ(fault.why, test.why);
    }
}

// Divided in the places in which it was before, a stream can be scanned once more.
TEST(StreamWatch, DividedBeforeInTheSamePlaces)
{
    StreamWatch seen = { .cells = { .starts = { 0, 90000 } } };
    EXPECT_FALSE(watch(&seen, scanStream({ {}, {}, { .elapsed = 0 }, { .elapsed = 12 } })));
}

TEST(StreamWatch, MostPacksOfAUnit)
{
    StreamWatch seen;
    EXPECT_FALSE(watch(&seen, scanStream({ {}, { .sectors = 768 }, {} })));
    StreamWatch more;
    const FileFault fault = watch(&more, scanStream({ {}, { .sectors = 769 }, {} }));
    EXPECT_EQ(fault.code, CODE_MUX_OVERFLOW);
    EXPECT_EQ(fault.why, "the unit at sector 3 has more than 768 packs");
}

// Units of one picture, 0.04 s: two minutes are 3000 of them. A new cell lets those of the old one go, one for one.
TEST(StreamWatch, MostUnitsHeld)
{
    const ScanUnit shortUnit = { .pictures = 1, .sectors = 1 };
    StreamWatch most;
    EXPECT_FALSE(watch(&most, scanStream(scanUnits(1024, shortUnit))));
    StreamWatch more;
    const FileFault fault = watch(&more, scanStream(scanUnits(1025, shortUnit)));
    EXPECT_EQ(fault.code, CODE_MUX_OVERFLOW);
    EXPECT_EQ(fault.why,
              "at sector 1024 the scan would have to hold more than 1023 units, whose pointers lead up to two "
              "minutes ahead");
    // Unit 501 is the first of cell 2: from then on none is held longer than 1000 units.
    StreamWatch cells = { .cells = { .interval = 9000 + 500 * 3600 } };
    EXPECT_FALSE(watch(&cells, scanStream(scanUnits(1500, shortUnit))));
    // Units of 0.48 s: 250 of them are two minutes, and one that lies farther back goes.
    StreamWatch usual;
    EXPECT_FALSE(watch(&usual, scanStream(scanUnits(3000, { .sectors = 1 }))));
    EXPECT_EQ(usual.held.size(), 251u);
}

TEST(StreamWatch, CellsBehindTheStream)
{
    StreamWatch seen = { .cells = { .starts = { 0, 52200, 900000, 9000000 } } };
    EXPECT_FALSE(watch(&seen, scanStream(scanUnits(3))));
    EXPECT_EQ(missingCells(seen), "cell 3 is to begin at 0:00:10.000, but the last unit begins at 0:00:01.060");
}

TEST(StreamWatch, RateOfTheElapsedTimes)
{
    StreamWatch ntsc;
    EXPECT_FALSE(watch(&ntsc, scanStream(scanUnits(4, { .pictures = 15, .ticks = 3003 }))));
    EXPECT_TRUE(countsWrongRate(ntsc));
    Bytes thirty = scanStream(scanUnits(1, { .pictures = 15, .ticks = 3003 }));
    patch(thirty, 72, "C0");
    StreamWatch right;
    EXPECT_FALSE(watch(&right, thirty));
    EXPECT_FALSE(countsWrongRate(right));
}

TEST(StreamWatch, Losses)
{
    EXPECT_FALSE(lossFault(12, 12));
    EXPECT_EQ(lossFault(12, 9).why, "12 sectors went into the scan, and 9 came out of it");
}

}   // namespace
