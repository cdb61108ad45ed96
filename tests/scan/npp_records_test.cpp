// The scan file: its head and the twelve numbers of each unit.
#include "base/result.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

// Three units of 3, 2 and 4 packs, in cells 1, 1 and 2, the last of another VOB and with an end that reaches behind it.
TEST(NppRecords, TwelveNumbersEach)
{
    ScanHost host(cellsEvery(100000));
    const Bytes stream = streamOf({ { .start = 0x7080, .packs = 3, .length = 43200 },
                                    { .start = 0x11940, .packs = 2, .length = 36000, .elapsed = "00 00 00 52" },
                                    { .start = 0x18704,
                                      .packs = 4,
                                      .length = 30030,
                                      .elapsed = "00 00 00 E2",
                                      .vob = 0x1234,
                                      .declaredEnd = 0x102 } });
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream));
    EXPECT_EQ(toHex(host.file()),
              "01 00 00 00 09 00 00 00 "
              "00 00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "   // sector, last, scr
              "80 70 00 00 00 00 00 00 0C 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 "   // PTS, pictures, VOB
              "01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "   // cell, five of 0
              "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
              "03 00 00 00 00 00 00 00 04 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
              "40 19 01 00 00 00 00 00 0A 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 "
              "01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
              "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
              "05 00 00 00 00 00 00 00 07 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
              "04 87 01 00 00 00 00 00 0A 00 00 00 00 00 00 00 34 12 00 00 00 00 00 00 "
              "02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
              "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

// The clock of the pack header, the reference ends and the pack's own number of itself have no part in it.
TEST(NppRecords, OtherFieldsOfThePackHaveNoPart)
{
    Bytes stream = streamOf({ { .start = 0, .packs = 2 }, { .start = 50000, .packs = 2 } });
    ScanHost plain;
    ASSERT_NO_FATAL_FAILURE(runScan(plain, stream));
    for (const uint64_t pack : std::vector<uint64_t>{ 0, 2 }) {
        overwrite(stream, pack * PACK_BYTES + 4, "5F FF FF FF FF");   // SCR
        overwrite(stream, pack * PACK_BYTES + 45, "12 34 56 78");     // NV_PCK_LBN
        overwrite(stream, pack * PACK_BYTES + 65, "12 34 56 78");     // VOBU_SE_E_PTM
        overwrite(stream, pack * PACK_BYTES + 1031, "12 34 56 78 12 34 56 78");
        overwrite(stream, pack * PACK_BYTES + 1043, "01 01 01 01 02 02 02 02 03 03 03 03");
    }
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream));
    EXPECT_EQ(toHex(host.file()), toHex(plain.file()));
}

TEST(NppRecords, NumbersOf64BitsWithoutASign)
{
    ScanHost host;
    const Bytes stream = streamOf({ { .start = 0xFFFFFFF0, .length = 15, .vob = 0xFFFF, .declaredEnd = 0xFFFFFFFF },
                                    { .start = 0x80000000, .length = 0x7FFFFFFF, .declaredEnd = 0xFFFFFFFF } });
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream));
    EXPECT_EQ(hexAt(host.record(0), 0, 56), "00 00 00 00 00 00 00 00 FF FF FF FF 00 00 00 00 00 00 00 00 00 00 00 00 "
                                            "F0 FF FF FF 00 00 00 00 00 00 00 00 00 00 00 00 FF FF 00 00 00 00 00 00 "
                                            "01 00 00 00 00 00 00 00");
    EXPECT_EQ(host.recordField(1, 0), 1u);
    EXPECT_EQ(host.recordField(1, 1), 0x100000000u);   // behind its own number, not cut to 32 bits
    EXPECT_EQ(host.recordField(1, 3), 0x80000000u);
    EXPECT_EQ(host.recordField(1, 4), 596523u);   // 2147483647 / 3600
}

// A display that ends before it begins: 2^64 - 360000 ticks.
TEST(NppRecords, DisplaysThatEndBeforeTheyBegin)
{
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf({ { .start = 1000000, .length = uint64_t(0) - 360000 } })));
    EXPECT_EQ(host.recordField(0, 4), 5124095576030331u);
}

// Packs are counted through the whole stream, also those before the first record and behind the last.
TEST(NppRecords, SectorsCountFromTheStreamsStart)
{
    Bytes stream;
    for (uint64_t i = 0; i < 5; i++) stream += plainPack(i);
    stream += unitBytes({ .start = 0, .packs = 300 }, 5);
    stream += unitBytes({ .start = 1, .packs = 3 }, 305);
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream, 10000));
    EXPECT_EQ(toHex(slice(host.file(), 0, 8)), "01 00 00 00 34 01 00 00");   // 308
    EXPECT_EQ(host.file().size(), 8u + 2 * 96);
    EXPECT_EQ(host.recordField(0, 0), 5u);
    EXPECT_EQ(host.recordField(0, 1), 304u);
    EXPECT_EQ(host.recordField(1, 0), 305u);
    EXPECT_EQ(host.recordField(1, 1), 307u);
}

}   // namespace
