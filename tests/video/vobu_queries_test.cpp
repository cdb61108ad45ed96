// What the tables ask of a VOBU list.
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

}   // namespace

TEST(VobuQueries, NothingAnswersNothing)
{
    const List<VobuRecord> empty;
    for (const VobuRecord* list :
         { static_cast<const VobuRecord*>(nullptr), static_cast<const VobuRecord*>(empty.block) }) {
        EXPECT_EQ(orvCountCells(list, 1), 0u);
        EXPECT_EQ(orvCountPictures(list, 1), 0u);
        EXPECT_EQ(orvCountCellPictures(list, 1, 1), 0u);
        EXPECT_EQ(orvFirstVobuOfCell(list, 1, 1), nullptr);
        EXPECT_EQ(orvLastVobuOfCell(list, 1, 1), nullptr);
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
    EXPECT_EQ(orvCountCellPictures(list.block, 1, 1), 35u);   // 1 + 2 + 32
    EXPECT_EQ(orvCountCellPictures(list.block, 1, 2), 20u);   // 4 + 16
    EXPECT_EQ(orvCountCellPictures(list.block, 2, 2), 8u);
    EXPECT_EQ(orvCountCellPictures(list.block, 2, 3), 64u);
    EXPECT_EQ(orvCountCellPictures(list.block, 1, 3), 0u);
    EXPECT_EQ(orvCountCellPictures(list.block, 0, 0), 100u);
}

TEST(VobuQueries, EndsOfACell)
{
    const List<VobuRecord> list(LIST);
    const struct {
        uint64_t vobId, cellId, first, last;   // sectors
    } cells[] = { { 1, 1, 5, 35 }, { 1, 2, 15, 30 }, { 2, 2, 20, 20 }, { 2, 3, 25, 40 }, { 0, 0, 0, 0 } };
    for (const auto& cell : cells) {
        SCOPED_TRACE(std::to_string(cell.vobId) + "/" + std::to_string(cell.cellId));
        const VobuRecord* first = orvFirstVobuOfCell(list.block, cell.vobId, cell.cellId);
        const VobuRecord* last = orvLastVobuOfCell(list.block, cell.vobId, cell.cellId);
        ASSERT_NE(first, nullptr);
        ASSERT_NE(last, nullptr);
        EXPECT_EQ(first->sector, cell.first);
        EXPECT_EQ(last->sector, cell.last);
        EXPECT_EQ(last->lastSector, cell.last + 4);
    }
    EXPECT_EQ(orvFirstVobuOfCell(list.block, 1, 3), nullptr);
    EXPECT_EQ(orvLastVobuOfCell(list.block, 3, 1), nullptr);
}
