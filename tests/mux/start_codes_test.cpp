// Start codes and the bytes behind the end of what there is.
#include "mux/start_codes.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace {

TEST(StartCodes, BytesBehindTheEndAreZero)
{
    const Bytes data = fromHex("11 22 33");
    EXPECT_EQ(orvByteAt(data.data(), 3, 0), 0x11);
    EXPECT_EQ(orvByteAt(data.data(), 3, 2), 0x33);
    EXPECT_EQ(orvByteAt(data.data(), 3, 3), 0);
    EXPECT_EQ(orvByteAt(data.data(), 3, ~uint64_t(0)), 0);
    EXPECT_EQ(orvByteAt(data.data(), 0, 0), 0);
}

TEST(StartCodes, WordsAreBigEndian)
{
    const Bytes data = fromHex("00 00 01 B3 F4");
    EXPECT_EQ(orvWordAt(data.data(), 5, 0), 0x000001B3u);
    EXPECT_EQ(orvWordAt(data.data(), 5, 1), 0x0001B3F4u);
    EXPECT_EQ(orvWordAt(data.data(), 5, 2), 0x01B3F400u);
    EXPECT_EQ(orvWordAt(data.data(), 5, 4), 0xF4000000u);
    EXPECT_EQ(orvWordAt(data.data(), 5, 5), 0u);
    EXPECT_EQ(orvWordAt(data.data(), 3, 0), 0x00000100u);   // the size counts, not what lies behind it
}

TEST(StartCodes, Words)
{
    EXPECT_EQ(orvStartCode(CODE_PICTURE), 0x00000100u);
    EXPECT_EQ(orvStartCode(CODE_SEQUENCE), 0x000001B3u);
    EXPECT_EQ(orvStartCode(CODE_SEQUENCE_END), 0x000001B7u);
    EXPECT_EQ(orvStartCode(CODE_GOP), 0x000001B8u);
    EXPECT_EQ(orvStartCode(0xFF), 0x000001FFu);
}

struct FindCase {
    const char* what;
    const char* bytes;
    uint64_t from, limit, found;
};

// clang-format off
const FindCase FINDS[] = {
    // what                            bytes                               from limit found
    { "at the start",                  "00 00 01 B3",                         0,  4,  0 },
    { "ends at the limit",             "A5 00 00 01",                         0,  4,  1 },
    { "would end behind the limit",    "A5 A5 00 00 01",                      0,  4,  4 },
    { "behind further zeros",          "00 00 00 00 01",                      0,  5,  2 },
    { "at from itself",                "00 00 01 00 00 01 A5",                3,  7,  3 },
    { "behind from",                   "00 00 01 00 00 01 A5",                1,  7,  3 },
    { "02 is no start code",           "00 00 02 00 00 01",                   0,  6,  3 },
    { "one zero is none",              "FF 00 01 FF 00 01",                   0,  6,  6 },
    { "zero, mark, zero, zero, mark",  "00 01 00 00 01",                      0,  5,  2 },
    { "two ones",                      "00 01 01 00 00 01",                   0,  6,  3 },
    { "nothing there",                 "",                                    0,  0,  0 },
    { "two bytes",                     "00 00",                               0,  2,  2 },
};
// clang-format on

TEST(StartCodes, FindsThePrefix)
{
    for (const FindCase& row : FINDS) {
        Bytes data = fromHex(row.bytes);
        data.resize(row.limit);   // what lies behind the limit is not there
        data.shrink_to_fit();
        EXPECT_EQ(orvFindStartCode(data.data(), row.from, row.limit), row.found) << row.what;
    }
}

TEST(StartCodes, FromBehindTheLimitFindsNothing)
{
    const Bytes data = fromHex("00 00 01 B3");
    EXPECT_EQ(orvFindStartCode(data.data(), 4, 4), 4u);
    EXPECT_EQ(orvFindStartCode(data.data(), 3, 4), 4u);
    EXPECT_EQ(orvFindStartCode(data.data(), 2, 4), 4u);
}

}   // namespace
