// What the tables ask of a VOBU list.
#include "base/memory.h"
#include "tests/video/nav_support.h"
#include "video/vobu_queries.h"

#include <gtest/gtest.h>

namespace {

VobuRecord unit(uint64_t sector, uint64_t vobId, uint64_t cellId, uint64_t pictureCount)
{
    VobuRecord record = {};
    record.sector = sector;
    record.lastSector = sector + 4;
    record.vobId = vobId;
    record.cellId = cellId;
    record.pictureCount = pictureCount;
    return record;
}

// Two VOBs that take turns, cells that come back.
const std::vector<VobuRecord> LIST = {
    unit(0, 0, 0, 100),   // in front of the first VOB
    unit(5, 1, 1, 1),   unit(10, 1, 1, 2),  unit(15, 1, 2, 4),  unit(20, 2, 2, 8),
    unit(25, 2, 3, 0),  unit(30, 1, 2, 16), unit(35, 1, 1, 32), unit(40, 2, 3, 64),
};

CellExtent extentOf(const VobuRecord* list, uint64_t vobId, uint64_t cellId)
{
    CellExtent* extents = nullptr;
    EXPECT_EQ(orvListCells(list, vobId, 3, &extents), 0u);
    const CellExtent extent = extents[cellId - 1];
    osFreeMem(&extents);
    return extent;
}

}   // namespace

TEST(VobuQueries, NothingAnswersNothing)
{
    const List<VobuRecord> empty;
    for (const VobuRecord* list :
         { static_cast<const VobuRecord*>(nullptr), static_cast<const VobuRecord*>(empty.block) }) {
        EXPECT_EQ(orvCountCells(list, 1), 0u);
        EXPECT_EQ(orvCountPictures(list, 1), 0u);
        EXPECT_EQ(extentOf(list, 1, 1).pictures, 0u);
        EXPECT_EQ(extentOf(list, 1, 1).first, nullptr);
        EXPECT_EQ(extentOf(list, 1, 1).last, nullptr);
    }
}

TEST(VobuQueries, CellsAreChangesOfTheNumber)
{
    const List<VobuRecord> list(LIST);
    EXPECT_EQ(orvCountCells(list.block, 1), 3u);   // 1 1 2 2 1
    EXPECT_EQ(orvCountCells(list.block, 2), 2u);   // 2 3 3
    EXPECT_EQ(orvCountCells(list.block, 0), 0u);   // 0, and the first comparison is with 0
    EXPECT_EQ(orvCountCells(list.block, 3), 0u);
}

TEST(VobuQueries, PicturesOfAVob)
{
    const List<VobuRecord> list(LIST);
    EXPECT_EQ(orvCountPictures(list.block, 0), 100u);
    EXPECT_EQ(orvCountPictures(list.block, 1), 55u);   // 1 + 2 + 4 + 16 + 32
    EXPECT_EQ(orvCountPictures(list.block, 2), 72u);   // 8 + 0 + 64
    EXPECT_EQ(orvCountPictures(list.block, 3), 0u);
}

TEST(VobuQueries, PicturesOfACell)
{
    const List<VobuRecord> list(LIST);
    EXPECT_EQ(extentOf(list.block, 1, 1).pictures, 35u);   // 1 + 2 + 32
    EXPECT_EQ(extentOf(list.block, 1, 2).pictures, 20u);   // 4 + 16
    EXPECT_EQ(extentOf(list.block, 2, 2).pictures, 8u);
    EXPECT_EQ(extentOf(list.block, 2, 3).pictures, 64u);
    EXPECT_EQ(extentOf(list.block, 1, 3).pictures, 0u);
}

TEST(VobuQueries, EndsOfACell)
{
    const List<VobuRecord> list(LIST);
    const struct {
        uint64_t vobId, cellId, first, last;   // sectors
    } cells[] = { { 1, 1, 5, 35 }, { 1, 2, 15, 30 }, { 2, 2, 20, 20 }, { 2, 3, 25, 40 } };
    for (const auto& cell : cells) {
        SCOPED_TRACE(std::to_string(cell.vobId) + "/" + std::to_string(cell.cellId));
        const CellExtent extent = extentOf(list.block, cell.vobId, cell.cellId);
        ASSERT_NE(extent.first, nullptr);
        ASSERT_NE(extent.last, nullptr);
        EXPECT_EQ(extent.first->sector, cell.first);
        EXPECT_EQ(extent.last->sector, cell.last);
        EXPECT_EQ(extent.last->lastSector, cell.last + 4);
    }
    EXPECT_EQ(extentOf(list.block, 1, 3).first, nullptr);
    EXPECT_EQ(extentOf(list.block, 3, 1).last, nullptr);
}

// A cell number past those asked for, and a list of very many cells, cost neither room nor time.
TEST(VobuQueries, ManyCells)
{
    std::vector<VobuRecord> many;
    for (uint64_t i = 0; i < 200000; i++) many.push_back(unit(i, 1, i + 1, 1));
    const List<VobuRecord> list(many);
    EXPECT_EQ(orvCountCells(list.block, 1), 200000u);
    CellExtent* extents = nullptr;
    ASSERT_EQ(orvListCells(list.block, 1, 199999, &extents), 0u);
    EXPECT_EQ(osListCount(extents), 199999u);
    EXPECT_EQ(extents[199998].last->sector, 199998u);
    osFreeMem(&extents);
}
