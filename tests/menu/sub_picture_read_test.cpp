// Reading a unit back, from units written by hand.
#include "base/result.h"
#include "menu/sub_picture_read.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace {

// A plane of 8 x 6, so small that the expected codes can be drawn.
constexpr uint64_t WIDTH = 8, HEIGHT = 6;

uint64_t decode(const Bytes& unit, Bytes* plane)
{
    plane->assign(WIDTH * HEIGHT, 0);
    const Bytes exact(unit);   // its own block, so that a read past its end is seen
    return orvDecodeSubPicture(exact.data(), exact.size(), WIDTH, HEIGHT, plane->data());
}

std::string drawn(const Bytes& plane)
{
    std::string text;
    for (uint64_t i = 0; i < plane.size(); i++) {
        text += char('0' + plane[i]);
        if (i % WIDTH == WIDTH - 1) text += '\n';
    }
    return text;
}

// Columns 1 to 6 of lines 1 to 4. Field 0 (lines 1 and 3) at 4, field 1 (lines 2 and 4) at 9, control area at 12.
//   line 1: 2 x 1, the rest 2        1001 0000 0000 0000 0010 and half a byte of nothing: 90 00 20
//   line 3: to the end 3             00 03
//   line 2: to the end 0             00 00
//   line 4: 4 x 1 (00 0100 01), 2    0001 0001 .. then 0000 0000 0000 0010: 11 00 02
const char SMALL[] = "00 26 00 0E  90 00 20 00 03  00 00 11 00 02"
                     " 00 00 00 0E  00  03 32 10  04 00 00  05 00 10 06 00 10 04  06 00 04 00 09  FF";

}   // namespace

TEST(SubPictureRead, ReadsLinesOfBothFields)
{
    Bytes plane;
    ASSERT_EQ(0u, decode(fromHex(SMALL), &plane));
    EXPECT_EQ("00000000\n"
              "01122220\n"
              "00000000\n"
              "03333330\n"
              "01111220\n"
              "00000000\n",
              drawn(plane));
}

TEST(SubPictureRead, RunsOfEachLength)
{
    // One line of 800 pixels in each field: 3 x 1 (1101), 15 x 2 (00 1111 10), 63 x 3 (0000 111111 11),
    // 255 x 1 (000000 11111111 01), then to the end 2.
    const Bytes unit = fromHex("00 23 00 12  D3 E0 FF 03 FD 00 02  00 01 00 00 00 00 00"
                               " 00 00 00 12  05 00 03 1F 00 00 01  06 00 04 00 0B  FF");
    std::vector<uint8_t> plane(800 * 2);
    ASSERT_EQ(0u, orvDecodeSubPicture(unit.data(), unit.size(), 800, 2, plane.data()));
    const struct {
        uint64_t first, last;
        int code;
    } runs[] = { { 0, 2, 1 }, { 3, 17, 2 }, { 18, 80, 3 }, { 81, 335, 1 }, { 336, 799, 2 }, { 800, 1599, 1 } };
    for (const auto& run : runs) {
        for (uint64_t x = run.first; x <= run.last; x++) ASSERT_EQ(run.code, plane[x]) << x;
    }
}

TEST(SubPictureRead, CommandsInFrontAreSteppedOver)
{
    // A change of colours with six bytes of its own, start and stop.
    const Bytes unit = fromHex("00 25 00 06  00 02"
                               " 00 00 00 06  01 02 07 00 06 AA BB CC DD  05 00 00 07 00 00 00  06 00 04 00 04  FF");
    Bytes plane;
    ASSERT_EQ(0u, decode(unit, &plane));
    EXPECT_EQ("22222222\n00000000\n00000000\n00000000\n00000000\n00000000\n", drawn(plane));
}

TEST(SubPictureRead, UnitsThatLackSomething)
{
    const struct {
        const char* what;
        const char* unit;
    } cases[] = {
        { "nothing at all", "" },
        { "no control offset", "00 04 00" },
        { "control area behind the end", "00 04 FF FF" },
        { "no display area", "00 0F 00 04  00 00 00 04  06 00 04 00 04  FF" },
        { "no pixel data", "00 11 00 04  00 00 00 04  05 00 00 07 00 00 05  FF" },
        { "cut in the display area", "00 0C 00 04  00 00 00 04  06 00 04 00 04  05 00 00" },
        { "a change of colours larger than the unit",
          "00 16 00 04  00 00 00 04  07 FF FF  05 00 00 07 00 00 05  06 00 04 00 04  FF" },
    };
    for (const auto& c : cases) {
        Bytes plane;
        EXPECT_EQ(ORV_INVALID_ARGUMENT, decode(fromHex(c.unit), &plane)) << c.what;
        EXPECT_EQ(Bytes(WIDTH * HEIGHT), plane) << c.what;
    }
}

TEST(SubPictureRead, DataThatEndEarlyLeaveTheRest)
{
    Bytes unit = fromHex(SMALL);
    unit[36] = 0xFF;   // the second field's address lies behind the unit
    unit[37] = 0x00;
    Bytes plane;
    ASSERT_EQ(0u, decode(unit, &plane));
    EXPECT_EQ("00000000\n01122220\n00000000\n03333330\n00000000\n00000000\n", drawn(plane));
}

TEST(SubPictureRead, AreasThatLeaveThePlane)
{
    // Columns 6 to 4095 and lines 4 to 4095: two columns and two lines of it are there.
    const Bytes unit = fromHex("00 16 00 06  00 03  00 00 00 06  05 00 6F FF 00 4F FF  06 00 04 00 04  FF");
    Bytes plane;
    ASSERT_EQ(0u, decode(unit, &plane));
    EXPECT_EQ("00000000\n00000000\n00000000\n00000000\n00000033\n00000033\n", drawn(plane));
    // The first column behind the last: no pixel.
    const Bytes reversed = fromHex("00 16 00 06  00 03  00 00 00 06  05 00 60 02 00 00 05  06 00 04 00 04  FF");
    ASSERT_EQ(0u, decode(reversed, &plane));
    EXPECT_EQ(Bytes(WIDTH * HEIGHT), plane);
}

TEST(SubPictureRead, RunsLongerThanTheLineEndWithIt)
{
    // 63 x 1 in a line of eight, then the next line of the field begins behind the pad nibble: 0000 1111 1101 + 0000.
    const Bytes unit = fromHex("00 1B 00 0A  0F D0 00 02 00 03"
                               " 00 00 00 0A  05 00 00 07 00 00 03  06 00 04 00 08  FF");
    Bytes plane;
    ASSERT_EQ(0u, decode(unit, &plane));
    EXPECT_EQ("11111111\n33333333\n22222222\n", drawn(plane).substr(0, 27));
}
