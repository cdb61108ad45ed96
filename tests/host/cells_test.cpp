// cells_test.cpp: times and lists of cells as people write them.
#include "host/cells.h"

#include <gtest/gtest.h>

namespace {

struct TimeCase {
    const char* text;
    bool valid;
    uint64_t ticks;
};

TEST(Cells, Times)
{
    const TimeCase cases[] = {
        { "0", true, 0 },
        { "1", true, 90000 },
        { "0.5", true, 45000 },
        { "90.5", true, 8145000 },
        { "0.00001", true, 1 },    // 0.9 ticks
        { "0.000005", true, 0 },   // 0.45 ticks
        { "0.333333333", true, 30000 },
        { "1:30", true, 8100000 },
        { "90:00", true, 486000000 },
        { "0:01:30.5", true, 8145000 },
        { "10:00:00", true, 3240000000 },
        { "999999999", true, 89999999910000 },
        { "", false, 0 },
        { "1:60", false, 0 },
        { "1:60:00", false, 0 },
        { "1:2:3:4", false, 0 },
        { "1:", false, 0 },
        { ":30", false, 0 },
        { "1.", false, 0 },
        { ".5", false, 0 },
        { "-1", false, 0 },
        { "+1", false, 0 },
        { "1e3", false, 0 },
        { "0x10", false, 0 },
        { "1 2", false, 0 },
        { "1,5", false, 0 },
        { "1000000000", false, 0 },
        { "0.1234567890", false, 0 },
    };
    for (const TimeCase& time : cases) {
        SCOPED_TRACE(time.text);
        uint64_t ticks = 7;
        EXPECT_EQ(parseTime(time.text, &ticks), time.valid);
        EXPECT_EQ(ticks, time.valid ? time.ticks : 7);
    }
}

TEST(Cells, TextOfATime)
{
    EXPECT_EQ(timeText(0), "0:00:00.000");
    EXPECT_EQ(timeText(8145000), "0:01:30.500");
    EXPECT_EQ(timeText(3240000000 + 90 * 59999), "10:00:59.999");
    EXPECT_EQ(timeText(0xFFFFFFFFFFFFFFFF), "56934395289:13:37.240");   // nothing overflows
}

struct ListCase {
    const char* what;
    std::string text;
    std::vector<uint64_t> starts;
    uint64_t line;
    const char* why;
};

TEST(Cells, Lists)
{
    std::string most, tooMany;
    for (int i = 1; i <= 254; i++) most += std::to_string(i) + "\n";
    tooMany = most + "255\n";
    std::vector<uint64_t> mostStarts;
    for (uint64_t i = 0; i <= 254; i++) mostStarts.push_back(i * 90000);
    const ListCase cases[] = {
        { "one", "10", { 0, 900000 }, 0, "" },
        { "0 given", "0\n10\n", { 0, 900000 }, 0, "" },
        { "0 alone", "0:00\n", { 0 }, 0, "" },
        { "comments, blanks, marks",
          "\xEF\xBB\xBF# cells\r\n\r\n \t5 # five\r\n1:00\t\r\n#",
          { 0, 450000, 5400000 },
          0,
          "" },
        { "254 and the first", most, mostStarts, 0, "" },
        { "256", tooMany, {}, 255, "a title has at most 255 cells, and here the 256th begins" },
        { "falling", "1:00\n\n30\n", {}, 3, "0:00:30.000 does not lie behind 0:01:00.000; the starts have to rise" },
        { "twice", "5\n5\n", {}, 2, "0:00:05.000 does not lie behind 0:00:05.000; the starts have to rise" },
        { "0 twice", "0\n0\n", {}, 2, "0:00:00.000 does not lie behind 0:00:00.000; the starts have to rise" },
        { "no time", "5\nsoon\x1B\n", {}, 2, "soon? is no time; write seconds (90.5) or minutes and seconds (1:30.5)" },
        { "nothing", " \n# nothing\n", {}, 0, "it names no time" },
    };
    for (const ListCase& list : cases) {
        SCOPED_TRACE(list.what);
        std::vector<uint64_t> starts;
        uint64_t line = 77;
        EXPECT_EQ(parseCells(list.text, &starts, &line), list.why);
        EXPECT_EQ(line, list.line);
        if (!*list.why) {
            EXPECT_EQ(starts, list.starts);
        }
    }
}

// The list of the library names the last tick of each cell; entry 0 stands for nothing.
TEST(Cells, ByList)
{
    const CellPlan plan = { .starts = { 0, 900000, 1350000 } };
    EXPECT_EQ(cellList(plan), (std::vector<uint64_t>{ 0, 899999, 1349999 }));
    EXPECT_EQ(cellOf(plan, 0), 1u);
    EXPECT_EQ(cellOf(plan, 899999), 1u);
    EXPECT_EQ(cellOf(plan, 900000), 2u);
    EXPECT_EQ(cellOf(plan, 1349999), 2u);
    EXPECT_EQ(cellOf(plan, 1350000), 3u);
    EXPECT_EQ(cellOf(plan, 0xFFFFFFFF), 3u);
    EXPECT_EQ(startOf(plan, 3), 1350000u);
    EXPECT_EQ(cellList({}), (std::vector<uint64_t>{ 0 }));
    EXPECT_EQ(cellOf({}, 0xFFFFFFFF), 1u);
}

TEST(Cells, ByInterval)
{
    const CellPlan plan = { .interval = 900000 };
    EXPECT_TRUE(cellList(plan).empty());
    EXPECT_EQ(cellOf(plan, 899999), 1u);
    EXPECT_EQ(cellOf(plan, 900000), 2u);
    EXPECT_EQ(startOf(plan, 3), 1800000u);
}

}   // namespace
