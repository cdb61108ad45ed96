// Which cell a unit is in, by interval and by list, in its pack and in its record.
#include "base/result.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

struct CellCase {
    uint64_t start;   // ticks
    uint64_t cell;    // of the record
    uint64_t byte;    // of the pack
};

void expectCells(const Cells& cells, const std::vector<CellCase>& cases)
{
    std::vector<ScanUnit> units;
    for (const CellCase& each : cases) units.push_back({ .start = each.start });
    ScanHost host(cells);
    ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf(units)));
    const Bytes output = host.output();
    ASSERT_EQ(output.size(), cases.size() * PACK_BYTES);
    for (uint64_t i = 0; i < cases.size(); i++) {
        EXPECT_EQ(host.recordField(i, 6), cases[i].cell) << "start " << cases[i].start;
        EXPECT_EQ(output[i * PACK_BYTES + 1058], cases[i].byte) << "start " << cases[i].start;
        EXPECT_EQ(output[i * PACK_BYTES + 1057], 0) << "start " << cases[i].start;
    }
}

TEST(NppCells, ByInterval)
{
    expectCells(cellsEvery(900000), {
                                        { 0, 1, 0x01 },
                                        { 1, 1, 0x01 },
                                        { 899999, 1, 0x01 },
                                        { 900000, 2, 0x02 },
                                        { 1799999, 2, 0x02 },
                                        { 1800000, 3, 0x03 },
                                        { 0xFFFFFFFF, 4773, 0xA5 },   // 4294967295 / 900000 is 4772
                                    });
}

TEST(NppCells, IntervalsAreOf64Bits)
{
    expectCells(cellsEvery(0x100000001), { { 5, 1, 1 }, { 0xFFFFFFFF, 1, 1 } });
}

// The low byte goes into the pack, the whole number into the record.
TEST(NppCells, NumbersAbove255)
{
    expectCells(cellsEvery(10), {
                                    { 2540, 255, 0xFF },
                                    { 2549, 255, 0xFF },
                                    { 2550, 256, 0x00 },
                                    { 2560, 257, 0x01 },
                                    { 6553500, 655351, 0xF7 },   // 655351 is 0x9FFF7
                                });
    std::vector<uint64_t> list;
    for (uint64_t i = 0; i < 300; i++) list.push_back(10 * i);
    expectCells(cellsUpTo(list), {
                                     { 2550, 255, 0xFF },
                                     { 2551, 256, 0x00 },
                                     { 2560, 256, 0x00 },
                                     { 2561, 257, 0x01 },
                                     { 2990, 299, 0x2B },
                                     { 2991, 300, 0x2C },
                                     { 9999, 300, 0x2C },
                                 });
}

// An entry is the last tick of its cell; the cell of the count takes the rest.
TEST(NppCells, ByList)
{
    expectCells(cellsUpTo({ 0, 100, 200, 300 }), {
                                                     { 0, 1, 1 },
                                                     { 99, 1, 1 },
                                                     { 100, 1, 1 },
                                                     { 101, 2, 2 },
                                                     { 200, 2, 2 },
                                                     { 201, 3, 3 },
                                                     { 300, 3, 3 },
                                                     { 301, 4, 4 },
                                                     { 0xFFFFFFFF, 4, 4 },
                                                 });
}

TEST(NppCells, EntryZeroIsNotCompared)
{
    expectCells(cellsUpTo({ 500, 100, 200 }), { { 50, 1, 1 }, { 150, 2, 2 }, { 300, 3, 3 }, { 501, 3, 3 } });
    expectCells(cellsUpTo({ 500 }), { { 0, 1, 1 }, { 500, 1, 1 }, { 501, 1, 1 } });
    expectCells(cellsUpTo({ 500, 500 }), { { 500, 1, 1 }, { 501, 2, 2 } });
}

// The first that is not less, not the nearest.
TEST(NppCells, FallingLists)
{
    expectCells(cellsUpTo({ 0, 300, 100, 400 }),
                { { 50, 1, 1 }, { 200, 1, 1 }, { 300, 1, 1 }, { 301, 3, 3 }, { 400, 3, 3 }, { 401, 4, 4 } });
}

TEST(NppCells, EqualEntriesLeaveACellOut)
{
    expectCells(cellsUpTo({ 0, 100, 100, 200 }), { { 100, 1, 1 }, { 101, 3, 3 }, { 201, 4, 4 } });
}

TEST(NppCells, EntriesAreOf64Bits)
{
    expectCells(cellsUpTo({ 0, 0x100000000, 5 }), { { 6, 1, 1 }, { 0xFFFFFFFF, 1, 1 } });
}

TEST(NppCells, AnEmptyListIsOneCell)
{
    expectCells(cellsUpTo({}), { { 0, 1, 1 }, { 5000000, 1, 1 } });
}

TEST(NppCells, AnyOtherModeIsByList)
{
    for (const uint64_t mode : { uint64_t(2), uint64_t(1) << 32, ~uint64_t(0) }) {
        SCOPED_TRACE(mode);
        expectCells({ .mode = mode, .interval = 1, .list = { 0, 100, 200 } },
                    { { 100, 1, 1 }, { 101, 2, 2 }, { 201, 3, 3 } });
    }
}

TEST(NppCells, TheListIsCopied)
{
    const TempDir folder;
    const std::basic_string<OrvWChar> name = wideName(folder / u"scan");
    std::vector<uint64_t> list = { 0, 100, 200 };
    const auto take = [](const uint8_t* data, uint64_t, uint64_t user) -> uint64_t {
        reinterpret_cast<Bytes*>(user)->push_back(data[1058]);
        return 0;
    };
    Bytes cells;
    NppScan* scan = nullptr;
    {
        NppScanDescW desc = {};
        desc.path = name.c_str();
        desc.cellMode = ORV_NPP_CELLS_BY_LIST;
        desc.cellList = list.data();
        desc.cellListCount = list.size();
        ASSERT_EQ(nppBeginStreamScanW(&desc, take, reinterpret_cast<uint64_t>(&cells), &scan), 0u);
        desc = {};
    }
    list.assign(3, 0xFFFFFFFF);
    const Bytes stream = streamOf({ { .start = 100 }, { .start = 200 }, { .start = 201 } });
    EXPECT_EQ(nppScanBuffer(scan, stream.data(), stream.size()), 0u);
    EXPECT_EQ(nppEndStreamScan(scan), 0u);
    EXPECT_EQ(toHex(cells), "01 02 03");
}

}   // namespace
