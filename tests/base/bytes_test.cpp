// bytes_test.cpp: big-endian fields.
#include "base/bytes.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

TEST(Bytes, Swap)
{
    EXPECT_EQ(orvSwap16(0x1234), 0x3412);
    EXPECT_EQ(orvSwap16(0xFFFF0001), 0x0100);   // the low 16 bits
    EXPECT_EQ(orvSwap16(0), 0);
    EXPECT_EQ(orvSwap32(0x12345678), 0x78563412u);
    EXPECT_EQ(orvSwap32(0x80000001), 0x01000080u);
}

TEST(Bytes, PutAndGet)
{
    uint8_t bytes[12] = {};
    orvPut16(bytes, 0xABCD1234);
    orvPut32(bytes + 2, 0xFF89ABCDEF);
    orvPut(bytes, { 6, 1, "one" }, 0x1EE);
    orvPut(bytes, { 7, 2, "two" }, 0x30102);
    orvPut(bytes, { 9, 3, "no number" }, 0xFFFFFF);
    EXPECT_EQ(toHex(bytes, 12), "12 34 89 AB CD EF EE 01 02 00 00 00");
    orvPut(bytes, { 8, 4, "four" }, 0x1DEADBEEF);
    EXPECT_EQ(toHex(bytes, 12), "12 34 89 AB CD EF EE 01 DE AD BE EF");
    EXPECT_EQ(orvGet16(bytes), 0x1234u);
    EXPECT_EQ(orvGet32(bytes + 2), 0x89ABCDEFu);
    EXPECT_EQ(orvGet(bytes, { 6, 1, "one" }), 0xEEu);
    EXPECT_EQ(orvGet(bytes, { 7, 2, "two" }), 0x01DEu);
    EXPECT_EQ(orvGet(bytes, { 8, 4, "four" }), 0xDEADBEEFu);
}

TEST(Bytes, FieldsFit)
{
    constexpr DiscField good[] = { { 0, 2, "a" }, { 2, 4, "b" }, { 8, 1, "c" } };
    EXPECT_TRUE(orvFieldsFit(good, 9));
    EXPECT_FALSE(orvFieldsFit(good, 8));
    constexpr DiscField overlap[] = { { 0, 2, "a" }, { 1, 4, "b" } };
    EXPECT_FALSE(orvFieldsFit(overlap, 100));
    constexpr DiscField disorder[] = { { 4, 2, "a" }, { 0, 2, "b" } };
    EXPECT_FALSE(orvFieldsFit(disorder, 100));
    constexpr DiscField empty[] = { { 4, 0, "a" } };
    EXPECT_FALSE(orvFieldsFit(empty, 100));
}
