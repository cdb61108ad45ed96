// picture_test.cpp: the strokes of the previews, pixel by pixel.
#include "host/picture.h"

#include <gtest/gtest.h>
#include <string>

namespace {

constexpr Rgb LIGHT = { 255, 255, 255 };

// '#' light, 'o' dark, '.' anything else.
std::string drawing(const Picture& picture)
{
    std::string text;
    for (int64_t y = 0; y < picture.height; y++) {
        for (int64_t x = 0; x < picture.width; x++) {
            const Rgb color = pixelAt(picture, { x, y });
            text += color == LIGHT ? '#' : color == OUTLINE ? 'o' : '.';
        }
        text += '\n';
    }
    return text;
}

TEST(Picture, FillsABoxWithBothCorners)
{
    Picture picture = plainPicture(6, 4, NEUTRAL_GRAY);
    fillBox(&picture, { 1, 1, 3, 2 }, LIGHT);
    EXPECT_EQ(drawing(picture), "......\n"
                                ".###..\n"
                                ".###..\n"
                                "......\n");
}

TEST(Picture, LeavesOutWhatLiesOutside)
{
    Picture picture = plainPicture(4, 3, NEUTRAL_GRAY);
    fillBox(&picture, { -5, 2, 0, 9 }, LIGHT);
    fillBox(&picture, { 3, -1, int64_t(UINT32_MAX), 0 }, LIGHT);
    fillBox(&picture, { 2, 2, 1, 1 }, LIGHT);   // empty
    setPixel(&picture, { 4, 1 }, LIGHT);
    setPixel(&picture, { -1, 1 }, LIGHT);
    setPixel(&picture, { 1, 3 }, LIGHT);
    blendPixel(&picture, { 1, -1 }, LIGHT, 15);
    EXPECT_EQ(drawing(picture), "...#\n"
                                "....\n"
                                "#...\n");
}

TEST(Picture, FrameStandsOnTheBoxsBorder)
{
    Picture picture = plainPicture(11, 8, NEUTRAL_GRAY);
    drawFrame(&picture, { 2, 2, 8, 6 }, LIGHT);
    EXPECT_EQ(drawing(picture), "...........\n"
                                ".ooooooooo.\n"
                                ".o#######o.\n"
                                ".o#ooooo#o.\n"
                                ".o#o...o#o.\n"
                                ".o#ooooo#o.\n"
                                ".o#######o.\n"
                                ".ooooooooo.\n");
}

TEST(Picture, FrameOfNoBoxIsNone)
{
    Picture picture = plainPicture(6, 6, NEUTRAL_GRAY);
    drawFrame(&picture, { 3, 1, 2, 4 }, LIGHT);
    EXPECT_EQ(picture.rgb, plainPicture(6, 6, NEUTRAL_GRAY).rgb);
    drawFrame(&picture, { 2, 2, 2, 2 }, LIGHT);   // one pixel
    EXPECT_EQ(drawing(picture), "......\n"
                                ".ooo..\n"
                                ".o#o..\n"
                                ".ooo..\n"
                                "......\n"
                                "......\n");
}

TEST(Picture, LinesHoldBothEnds)
{
    Picture picture = plainPicture(9, 5, NEUTRAL_GRAY);
    drawLine(&picture, { 1, 3 }, { 7, 1 }, LIGHT);
    EXPECT_EQ(drawing(picture), ".........\n"
                                "......##.\n"
                                "...###...\n"
                                ".##......\n"
                                ".........\n");
    drawLineGround(&picture, { 0, 0 }, { 0, 4 });
    EXPECT_EQ(pixelAt(picture, { 1, 3 }), OUTLINE);
    EXPECT_EQ(pixelAt(picture, { 2, 3 }), LIGHT);
}

struct BlendCase {
    uint8_t below, above;
    uint32_t contrast;
    uint8_t mixed;   // below + (above - below) * contrast / 15, to the nearest
};

TEST(Picture, BlendsInFifteenths)
{
    const BlendCase cases[] = {
        { 128, 255, 0, 128 },  { 128, 255, 1, 136 }, { 128, 255, 5, 170 },  { 128, 255, 10, 213 },
        { 128, 255, 15, 255 }, { 128, 0, 7, 68 },    { 128, 0, 14, 9 },     { 128, 0, 15, 0 },
        { 0, 255, 8, 136 },    { 255, 0, 8, 119 },   { 128, 255, 99, 255 },
    };
    for (const BlendCase& blend : cases) {
        Picture picture = plainPicture(1, 1, { blend.below, 0, 7 });
        blendPixel(&picture, { 0, 0 }, { blend.above, 0, 7 }, blend.contrast);
        EXPECT_EQ(int(pixelAt(picture, { 0, 0 }).red), int(blend.mixed)) << blend.contrast;
        EXPECT_EQ(int(pixelAt(picture, { 0, 0 }).blue), 7);
    }
}

struct DigitCase {
    uint32_t number;
    const char* rows[7];
};

const DigitCase DIGIT_CASES[] = {
    { 0, { ".###.", "#...#", "#..##", "#.#.#", "##..#", "#...#", ".###." } },
    { 1, { "..#..", ".##..", "..#..", "..#..", "..#..", "..#..", ".###." } },
    { 2, { ".###.", "#...#", "....#", "...#.", "..#..", ".#...", "#####" } },
    { 3, { "#####", "...#.", "..#..", "...#.", "....#", "#...#", ".###." } },
    { 4, { "...#.", "..##.", ".#.#.", "#..#.", "#####", "...#.", "...#." } },
    { 5, { "#####", "#....", "####.", "....#", "....#", "#...#", ".###." } },
    { 6, { "..##.", ".#...", "#....", "####.", "#...#", "#...#", ".###." } },
    { 7, { "#####", "....#", "...#.", "..#..", ".#...", ".#...", ".#..." } },
    { 8, { ".###.", "#...#", "#...#", ".###.", "#...#", "#...#", ".###." } },
    { 9, { ".###.", "#...#", "#...#", ".####", "....#", "...#.", ".##.." } },
    { 36, { "#####...##.", "...#...#...", "..#...#....", "...#..####.", "....#.#...#", "#...#.#...#", ".###...###." } },
};

TEST(Picture, NumbersAreExactCells)
{
    for (const DigitCase& digit : DIGIT_CASES) {
        SCOPED_TRACE(digit.number);
        const size_t columns = std::string(digit.rows[0]).size();
        const int64_t width = int64_t(columns) * 2 + 4, height = 18;
        const Box plate = numberPlate({ 3, 2 }, digit.number);
        EXPECT_EQ(plate.right - plate.left + 1, width);
        EXPECT_EQ(plate.bottom - plate.top + 1, height);
        std::string expected;
        const std::string wide(size_t(width + 6), '.');
        for (int64_t y = 0; y < height + 4; y++) {
            std::string line = wide;
            for (int64_t x = 0; x < width && y >= 2 && y < 2 + height; x++) line[size_t(3 + x)] = 'o';
            const int64_t row = (y - 4) / 2;
            for (size_t x = 0; x < 2 * columns && y >= 4 && row < 7; x++) {
                if (digit.rows[row][x / 2] == '#') line[5 + x] = '#';
            }
            expected += line + "\n";
        }
        Picture picture = plainPicture(width + 6, height + 4, NEUTRAL_GRAY);
        drawNumber(&picture, { 3, 2 }, digit.number, LIGHT);
        EXPECT_EQ(drawing(picture), expected);
    }
}

}   // namespace
