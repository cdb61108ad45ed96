// time_code_test.cpp: BCD time codes and palette colours.
#include "base/time_code.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

static std::string hexOf(DvdTimeCode time)
{
    return toHex(time.bytes, 4);
}

static DvdTimeCode timeOf(const char* hex)
{
    DvdTimeCode time = {};
    const Bytes bytes = fromHex(hex);
    std::copy(bytes.begin(), bytes.end(), time.bytes);
    return time;
}

TEST(TimeCode, FramesToTime)
{
    struct {
        int64_t standard;
        uint64_t frames;
        const char* bytes;
    } const cases[] = {
        { 1, 0, "00 00 00 40" },       { 2, 0, "00 00 00 C0" },     { 0, 0, "00 00 00 00" },
        { 0, 90000, "00 00 00 00" },   { 3, 90000, "00 00 00 00" }, { -1, 90000, "00 00 00 00" },
        { 1, 24, "00 00 00 64" },      { 1, 25, "00 00 01 40" },    { 2, 29, "00 00 00 E9" },
        { 2, 30, "00 00 01 C0" },      { 1, 90000, "01 00 00 40" }, { 2, 108000, "01 00 00 C0" },
        { 1, 1499, "00 00 59 64" },      // 59 s and 24 frames
        { 2, 1799, "00 00 59 E9" },      // 59 s and 29 frames
        { 1, 93784, "01 02 31 49" },     // 3600 + 151 s, 9 frames
        { 1, 8999999, "99 59 59 64" },   // one frame below 100 hours
    };
    for (const auto& row : cases) {
        EXPECT_EQ(hexOf(orvFramesToTime(row.standard, row.frames)), row.bytes) << row.standard << ' ' << row.frames;
    }
}

TEST(TimeCode, HoursAreNotLimited)
{
    EXPECT_EQ(hexOf(orvFramesToTime(1, 9000000)), "A0 00 00 40");    // 100 hours: tens digit 10
    EXPECT_EQ(hexOf(orvFramesToTime(1, 14310000)), "F9 00 00 40");   // 159 hours
    EXPECT_EQ(hexOf(orvFramesToTime(2, 17820000)), "05 00 00 C0");   // 165 hours: 16 falls off
}

TEST(TimeCode, TimeToFrames)
{
    struct {
        const char* bytes;
        uint64_t frames, seconds;
    } const cases[] = {
        { "00 00 00 40", 0, 0 },         { "00 00 00 E9", 29, 0 },           { "01 00 00 40", 90000, 3600 },
        { "01 00 00 C0", 108000, 3600 }, { "99 59 59 64", 8999999, 359999 }, { "01 02 31 49", 93784, 3751 },
        { "01 02 31 09", 0, 3751 },   // no rate: no frames, but seconds
        { "01 02 31 89", 0, 3751 },      { "A0 00 00 40", 9000000, 360000 },
    };
    for (const auto& row : cases) {
        EXPECT_EQ(orvTimeToFrames(timeOf(row.bytes)), row.frames) << row.bytes;
        EXPECT_EQ(orvTimeToSeconds(timeOf(row.bytes)), row.seconds) << row.bytes;
    }
}

TEST(TimeCode, ThereAndBack)
{
    for (uint64_t frames = 0; frames < 9000000; frames += 997) {
        ASSERT_EQ(orvTimeToFrames(orvFramesToTime(1, frames)), frames);
        ASSERT_EQ(orvTimeToFrames(orvFramesToTime(2, frames)), frames);
    }
}

TEST(TimeCode, PutIsInDiscOrder)
{
    uint8_t bytes[6] = { 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE };
    orvPutTime(bytes + 1, timeOf("01 02 31 49"));
    EXPECT_EQ(toHex(bytes, 6), "EE 01 02 31 49 EE");
}

TEST(TimeCode, FrameTicks)
{
    EXPECT_EQ(orvFrameTicks(1), 3600u);
    EXPECT_EQ(orvFrameTicks(2), 3003u);
    EXPECT_EQ(orvFrameTicks(0), 3003u);
}

TEST(Color, Pack)
{
    EXPECT_EQ(orvPackColor(0x51, 0xF0, 0x5B), 0x5BF05100u);
}

TEST(Color, RgbToYCrCb)
{
    struct {
        uint64_t red, green, blue;
        uint32_t y, cr, cb;
    } const cases[] = {
        { 0, 0, 0, 16, 128, 128 },
        { 255, 255, 255, 235, 128, 128 },
        { 255, 0, 0, 81, 240, 91 },
        { 0, 255, 0, 144, 35, 54 },
        { 0, 0, 255, 40, 110, 240 },
        { 1, 0, 0, 16, 128, 128 },   // every fraction is cut towards the offset
        // y 140.75 x 219/255 = 120.8; cr -29.05 x 224/255 = -25.5; cb 33.45 x 224/255 = 29.3
        { 100, 150, 200, 136, 103, 157 },
        // y 159.25 x 219/255 = 136.7; cr 29.05 x 224/255 = 25.5; cb -33.45 x 224/255 = -29.3
        { 200, 150, 100, 152, 153, 99 },
        // y 105.315 x 219/255 = 90.4; cr 106.845 x 224/255 = 93.8; cb 84.405 x 224/255 = 74.1
        { 255, 0, 255, 106, 221, 202 },
        { 256, 0, 9999999999, 106, 221, 202 },   // no component is above 255
    };
    for (const auto& row : cases) {
        const uint32_t color = orvRgbToYCrCb(row.red, row.green, row.blue);
        EXPECT_EQ(color & 0xFF, row.y) << row.red << ' ' << row.green << ' ' << row.blue;
        EXPECT_EQ(color >> 8 & 0xFF, row.cr) << row.red << ' ' << row.green << ' ' << row.blue;
        EXPECT_EQ(color >> 16 & 0xFF, row.cb) << row.red << ' ' << row.green << ' ' << row.blue;
        EXPECT_EQ(color >> 24, 0u);
    }
}
