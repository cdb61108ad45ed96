// memory_test.cpp: memory blocks.
#include "base/memory.h"

#include "base/result.h"
#include "tests/base/platform_numbers.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

static std::string textOf(const char* block)
{
    return std::string(block, osMemSize(block));
}

static char* blockOf(const std::string& text)
{
    char* block = nullptr;
    EXPECT_EQ(osAllocMem(text.size(), &block), 0u);
    osCopyMem(block, text.data(), text.size());
    return block;
}

TEST(Memory, Capacity)
{
    struct {
        uint64_t size, capacity;
    } const cases[] = {
        { 0, 4096 },
        { 1, 4096 },
        { 4047, 4096 },
        { 4048, 8192 },
        { 8143, 8192 },
        { 8144, 12288 },
        { 50000000, 50003968 },
        { 0xFFFFFFFFFFFFEFCF, 0xFFFFFFFFFFFFF000 },
        { 0xFFFFFFFFFFFFEFD0, 0 },
        { ~uint64_t(0), 0 },
    };
    for (const auto& row : cases) EXPECT_EQ(osBlockCapacity(row.size), row.capacity) << row.size;
}

TEST(Memory, EmptyBlockIsABlock)
{
    uint8_t* block = nullptr;
    ASSERT_EQ(osAllocMem(0, &block), 0u);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(osMemSize(block), 0u);
    EXPECT_EQ(osMemSize(nullptr), 0xFFFFFFFFFFFFFFFFu);
    EXPECT_EQ(osFreeMem(&block), 0u);
}

TEST(Memory, BlocksAreZeroAndAligned)
{
    for (const uint64_t size : { 1u, 15u, 16u, 17u, 4047u, 4048u, 70000u }) {
        uint8_t* block = nullptr;
        ASSERT_EQ(osAllocMem(size, &block), 0u);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 16, 0u) << size;
        EXPECT_EQ(osMemSize(block), size);
        for (uint64_t i = 0; i < size; i++) ASSERT_EQ(block[i], 0) << i << " of " << size;
        osFillMem(block, size, 0xAA);   // the next of this size may get the same memory
        EXPECT_EQ(osFreeMem(&block), 0u);
    }
}

TEST(Memory, FreeTwiceIsHarmless)
{
    uint8_t* block = nullptr;
    ASSERT_EQ(osAllocMem(10, &block), 0u);
    EXPECT_EQ(osFreeMem(&block), 0u);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(osFreeMem(&block), 0u);
    EXPECT_EQ(osFreeMem<uint8_t>(nullptr), OS_INVALID_ARGUMENT);
}

TEST(Memory, NullArguments)
{
    EXPECT_EQ(osAllocMem<uint8_t>(10, nullptr), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osAllocMemCopy<uint8_t>("abc", 0, 3, nullptr), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osResizeMem<uint8_t>(nullptr, 10), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osInsertMem<uint8_t>(nullptr, 0, "abc", 3), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osAllocBlock(10, nullptr), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osFreeBlock(nullptr), OS_INVALID_ARGUMENT);
    uint8_t* none = nullptr;
    EXPECT_EQ(osResizeMem(&none, 10), 0u);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(osInsertMem(&none, OS_BLOCK_END, "abc", 3), OS_INVALID_ARGUMENT);
    EXPECT_EQ(none, nullptr);
}

TEST(Memory, AllocCopy)
{
    char* block = nullptr;
    ASSERT_EQ(osAllocMemCopy("abcdef", 2, 3, &block), 0u);
    EXPECT_EQ(textOf(block), "cde");
    (void)osFreeMem(&block);
    EXPECT_EQ(osAllocMemCopy("abcdef", 2, 0, &block), OS_INVALID_ARGUMENT);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(osAllocMemCopy(nullptr, 0, 3, &block), OS_INVALID_ARGUMENT);
    EXPECT_EQ(block, nullptr);
}

TEST(Memory, MoreThanThereIs)
{
    for (const uint64_t size : { ~uint64_t(0), uint64_t(0xFFFFFFFFFFFFEFCF), uint64_t(1) << 63 }) {
        char other = 0;
        char* block = &other;
        EXPECT_EQ(osAllocMem(size, &block), NO_MEMORY) << size;
        EXPECT_EQ(block, nullptr);
    }
    char* block = blockOf("abc");
    for (const uint64_t size : { ~uint64_t(0), uint64_t(0xFFFFFFFFFFFFEFCF), uint64_t(1) << 63 }) {
        EXPECT_EQ(osResizeMem(&block, size), NO_MEMORY) << size;
        EXPECT_EQ(osInsertMem(&block, 1, nullptr, size), NO_MEMORY) << size;
        EXPECT_EQ(osInsertMem(&block, 1, nullptr, size - 2), NO_MEMORY) << size;   // the sum is what wraps
    }
    EXPECT_EQ(textOf(block), "abc");
    (void)osFreeMem(&block);
}

TEST(Memory, Resize)
{
    char* block = blockOf("abcdef");
    ASSERT_EQ(osResizeMem(&block, 3), 0u);
    EXPECT_EQ(textOf(block), "abc");
    ASSERT_EQ(osResizeMem(&block, 8), 0u);
    EXPECT_EQ(textOf(block), std::string("abc\0\0\0\0\0", 8));   // new bytes are 0, also where old ones lay
    ASSERT_EQ(osResizeMem(&block, 200000), 0u);
    EXPECT_EQ(textOf(block), "abc" + std::string(199997, '\0'));
    block[199999] = 'z';
    ASSERT_EQ(osResizeMem(&block, 2), 0u);
    EXPECT_EQ(textOf(block), "ab");
    ASSERT_EQ(osResizeMem(&block, 200000), 0u);
    EXPECT_EQ(textOf(block), "ab" + std::string(199998, '\0'));
    ASSERT_EQ(osResizeMem(&block, 0), 0u);
    EXPECT_EQ(osMemSize(block), 0u);
    ASSERT_NE(block, nullptr);
    (void)osFreeMem(&block);
}

TEST(Memory, Insert)
{
    struct {
        const char* what;
        const char* block;
        uint64_t position;
        const char* source;
        uint64_t count, result;
        std::string after;
    } const cases[] = {
        { "at the end", "0123456789", OS_BLOCK_END, "abcde", 5, 0, "0123456789abcde" },
        { "at the end by number", "0123456789", 10, "ab", 2, 0, "0123456789ab" },
        { "at the start", "0123", 0, "ab", 2, 0, "ab0123" },
        { "within", "0123456789", 3, "ab", 2, 0, "012ab3456789" },
        { "into nothing", "", 0, "ab", 2, 0, "ab" },
        { "nothing", "0123", 2, "ab", 0, 0, "0123" },
        { "nothing past the end", "0123", 9, "ab", 0, 0, "0123" },
        { "past the end", "0123", 5, "ab", 2, OS_INVALID_ARGUMENT, "0123" },
        { "far past the end", "0123", OS_BLOCK_END - 1, "ab", 2, OS_INVALID_ARGUMENT, "0123" },
        { "a gap that keeps what lay there", "0123456789", 3, nullptr, 2, 0, "012343456789" },
        { "a gap longer than the tail", "01234", 3, nullptr, 4, 0, std::string("01234\0\00034", 9) },
        { "a gap at the end", "01", OS_BLOCK_END, nullptr, 2, 0, std::string("01\0\0", 4) },
    };
    for (const auto& row : cases) {
        char* block = blockOf(row.block);
        EXPECT_EQ(osInsertMem(&block, row.position, row.source, row.count), row.result) << row.what;
        EXPECT_EQ(textOf(block), row.after) << row.what;
        (void)osFreeMem(&block);
    }
}

// Every size on the way, against the same steps on a vector.
TEST(Memory, RandomStepsAgreeWithAVector)
{
    std::mt19937 random(20);
    for (int round = 0; round < 20; round++) {
        uint8_t* block = nullptr;
        ASSERT_EQ(osAllocMem(0, &block), 0u);
        std::vector<uint8_t> model;
        for (int step = 0; step < 300; step++) {
            const uint64_t reach = random() % 8 ? 300 : 30000;
            const uint64_t count = 1 + random() % reach;
            if (random() % 3) {
                std::vector<uint8_t> source(count);
                for (uint8_t& byte : source) byte = uint8_t(random());
                const uint64_t position = random() % (model.size() + 1);
                ASSERT_EQ(osInsertMem(&block, position, source.data(), count), 0u);
                model.insert(model.begin() + std::ptrdiff_t(position), source.begin(), source.end());
            } else {
                const uint64_t size = random() % (model.size() + reach);
                ASSERT_EQ(osResizeMem(&block, size), 0u);
                model.resize(size);
            }
            ASSERT_EQ(osMemSize(block), model.size());
            ASSERT_TRUE(std::equal(model.begin(), model.end(), block)) << round << '.' << step;
        }
        EXPECT_EQ(osFreeMem(&block), 0u);
    }
}

struct Record {
    uint64_t number, rest[5];
};
static_assert(sizeof(Record) == 48);

TEST(Memory, LongListsGrowInFewSteps)
{
    constexpr uint64_t RECORDS = 1100000;   // 52.8 MB
    Record* list = nullptr;
    ASSERT_EQ(osAllocMem(0, &list), 0u);
    uint64_t moves = 0;
    for (uint64_t i = 0; i < RECORDS; i++) {
        const Record* before = list;
        ASSERT_EQ(osListAppend(&list, { i, { 1, 2, 3, 4, ~i } }), 0u);
        if (list != before) moves++;
    }
    EXPECT_LT(moves, 64u);
    ASSERT_EQ(osListCount(list), RECORDS);
    for (uint64_t i = 0; i < RECORDS; i++) {
        ASSERT_EQ(list[i].number, i);
        ASSERT_EQ(list[i].rest[4], ~i);
    }
    (void)osFreeMem(&list);
}

TEST(Memory, ListCount)
{
    Record* list = nullptr;
    EXPECT_EQ(osListCount(list), 0u);
    ASSERT_EQ(osAllocMem(0, &list), 0u);
    EXPECT_EQ(osListCount(list), 0u);
    ASSERT_EQ(osListAppend(&list, Record{}), 0u);
    EXPECT_EQ(osListCount(list), 1u);
    ASSERT_EQ(osResizeMem(&list, 95), 0u);
    EXPECT_EQ(osListCount(list), 1u);   // an incomplete record does not count
    (void)osFreeMem(&list);
}

TEST(Memory, CopyFillZero)
{
    char text[] = "0123456789";
    osCopyMem(text + 2, text, 6);
    EXPECT_STREQ(text, "0101234589");
    osCopyMem(text, text + 2, 6);
    EXPECT_STREQ(text, "0123454589");
    osFillMem(text + 1, 3, 'x');
    EXPECT_STREQ(text, "0xxx454589");
    osZeroMem(text + 4, 2);
    EXPECT_EQ(std::string(text, 10), std::string("0xxx\0\0"
                                                 "4589",
                                                 10));
    osCopyMem(nullptr, nullptr, 0);
    osZeroMem(nullptr, 0);
}
