// png_test.cpp: pictures as PNG files, and back.
#include "host/png.h"
#include "tests/host/png_decode.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace {

// No two lines and no two channels alike.
Picture colourful(int64_t width, int64_t height)
{
    Picture picture = plainPicture(width, height, {});
    for (int64_t y = 0; y < height; y++) {
        for (int64_t x = 0; x < width; x++) {
            setPixel(&picture, { x, y }, { uint8_t(x), uint8_t(y), uint8_t(x * y + 7) });
        }
    }
    return picture;
}

TEST(Png, ComesBackAsItWas)
{
    for (const auto& [width, height] : { std::pair<int64_t, int64_t>{ 720, 576 }, { 720, 480 }, { 1, 1 }, { 5, 3 } }) {
        SCOPED_TRACE(width);
        const Picture picture = colourful(width, height);
        const Picture back = decodePng(encodePng(picture));
        EXPECT_EQ(back.width, width);
        EXPECT_EQ(back.height, height);
        EXPECT_EQ(back.rgb, picture.rgb);
    }
}

TEST(Png, SaysItsSizeAndForm)
{
    const std::vector<uint8_t> png = encodePng(colourful(720, 576));
    ASSERT_GE(png.size(), 29u);
    EXPECT_EQ(toHex(Bytes(png.begin(), png.begin() + 8)), "89 50 4E 47 0D 0A 1A 0A");
    // header chunk: 13 bytes, IHDR; 720 x 576, 8 bits a channel, RGB, the one compression and filter, not interlaced
    EXPECT_EQ(toHex(Bytes(png.begin() + 8, png.begin() + 29)),
              "00 00 00 0D 49 48 44 52 00 00 02 D0 00 00 02 40 08 02 00 00 00");
}

}   // namespace
