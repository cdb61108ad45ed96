// sub_picture_test.cpp: what a public decoder shows of the sub-pictures in authored menu VOBs is what was drawn.

#include "tests/readers/menu_vob.h"

#include <gtest/gtest.h>

// The first and the last two lines of a picture are not shown.
static ByteImage shown(ByteImage image)
{
    image.fill(0, 0, image.width, 2, 0);
    image.fill(0, image.height - 2, image.width, 2, 0);
    return image;
}

/** Tells the first pixels that differ, and how many do. */
static void expectPicture(const ByteImage& found, const ByteImage& drawn)
{
    uint64_t wrong = 0;
    for (uint64_t line = 0; line < drawn.height; line++) {
        for (uint64_t x = 0; x < drawn.width; x++) {
            if (found.at(x, line) == drawn.at(x, line)) continue;
            if (wrong++ < 5) {
                ADD_FAILURE() << "column " << x << ", line " << line << " is " << int(found.at(x, line))
                              << ", should be " << int(drawn.at(x, line));
            }
        }
    }
    EXPECT_EQ(wrong, 0u) << "pixels";
}

/** Something in every line but the outermost, in runs of all lengths. */
static ByteImage busyPicture(Standard standard)
{
    ByteImage image(pictureLines(standard));
    for (uint64_t line = 2; line < image.height; line++) {
        uint64_t x = line % 7, run = 1 + line % 5;
        while (x + run < image.width) {
            image.fill(x, line, run, 1, uint8_t((x + line) % 4));
            x += run;
            run = run * 2 % 301 + 1;
        }
    }
    return image;
}

static std::string codesKey(const char* key, const ByteImage& image)
{
    return std::string(key) + "=" + shelve(bmpFile(image)).string() + "\n";
}

class SubPictures : public testing::TestWithParam<Standard> {};
static std::string standardName(const testing::TestParamInfo<Standard>& info)
{
    return info.param == PAL ? "Pal" : "Ntsc";
}
INSTANTIATE_TEST_SUITE_P(Standards, SubPictures, testing::Values(PAL, NTSC), standardName);

TEST_P(SubPictures, PixelCodesAreShownAsDrawn)
{
    const Standard standard = GetParam();
    const std::vector<ButtonPlan> grid = buttonGrid(6, 6, "BTN_ACTION_JUMP_TT(1,0,0)");
    const std::vector<ButtonPlan> few = buttonGrid(2, 3, "BTN_ACTION_JUMP_TT(1,0,0)");
    const ByteImage busy = busyPicture(standard);
    const Disc disc(standard, { { .keys = "menus=1\n" } },
                    menuPage("VMG_MENU1", standard, realStill(standard, 0), grid) +
                        menuPage("VMG_MENU2", standard, realAnimation(standard, 1, 2), few, "type=animated\nloop=1\n") +
                        menuPage("VTS_1_MENU1", standard, realStill(standard, 2), few, codesKey("subpicture", busy)),
                    "menus=2\n");
    ASSERT_EQ(disc.result, 0u);
    expectPicture(decodeSubPicture(disc.file("VIDEO_TS.VOB"), standard, 1, 0), frames(standard, grid));
    expectPicture(decodeSubPicture(disc.file("VIDEO_TS.VOB"), standard, 2, 0), frames(standard, few));
    expectPicture(decodeSubPicture(disc.file("VTS_01_0.VOB"), standard, 1, 0), shown(busy));
}

TEST_P(SubPictures, LetterboxHasItsOwn)
{
    const Standard standard = GetParam();
    const std::vector<ButtonPlan> buttons = buttonGrid(3, 3, "BTN_ACTION_JUMP_TT(1,0,0)");
    ByteImage squeezed(pictureLines(standard));
    squeezed.fill(100, 100, 300, 40, 3);
    squeezed.fill(200, 300, 55, 7, 1);
    const std::string keys = codesKey("spuletterbox", squeezed);
    const Disc disc(
        standard, { {} },
        "[VMG_MENU]\nvideomode=16:9\n" + menuPage("VMG_MENU1", standard, realStill(standard, 0), buttons, keys) +
            menuPage("VMG_MENU2", standard, realAnimation(standard, 0, 2), buttons, keys + "type=animated\nloop=1\n"),
        "menus=2\n");
    ASSERT_EQ(disc.result, 0u);
    for (const uint32_t page : { 1u, 2u }) {
        SCOPED_TRACE("page " + std::to_string(page));
        expectPicture(decodeSubPicture(disc.file("VIDEO_TS.VOB"), standard, page, 0), frames(standard, buttons));
        expectPicture(decodeSubPicture(disc.file("VIDEO_TS.VOB"), standard, page, 1), squeezed);
    }
}

TEST_P(SubPictures, AlphaBecomesThreeLevels)
{
    const Standard standard = GetParam();
    const uint64_t lines = pictureLines(standard);
    ByteImage map(lines), levels(lines);
    AlphaImage alpha(lines);
    map.fill(100, 100, 256, 64, 1);
    for (uint64_t a = 0; a < 256; a++) {
        alpha.fill(100 + a, 100, 1, 64, { .red = 250, .green = 200, .blue = 10, .alpha = uint8_t(a) });
        levels.fill(100 + a, 100, 1, 64, a < 32 ? 0 : a < 107 ? 1 : a < 182 ? 2 : 3);
    }
    const std::vector<ButtonPlan> buttons = { { 90, 400, 90, 180, "BTN_ACTION_JUMP_TT(1,0,0)" } };
    const Disc disc(standard, { {} },
                    menuPage("VMG_MENU1", standard, realStill(standard, 0), buttons, alphaKeys(map, alpha)),
                    "menus=1\n");
    ASSERT_EQ(disc.result, 0u);
    expectPicture(decodeSubPicture(disc.file("VIDEO_TS.VOB"), standard, 1, 0), levels);
}

TEST_P(SubPictures, OverlappingButtonsShareOnePicture)
{
    // Button 2 lies over a corner of button 1. The lower number is drawn in code 2, the higher in code 1.
    const Standard standard = GetParam();
    const uint64_t lines = pictureLines(standard);
    ByteImage map(lines), codes(lines);
    AlphaImage alpha(lines);
    map.fill(100, 100, 100, 100, 1);
    map.fill(150, 150, 100, 100, 2);
    alpha.fill(100, 100, 150, 150, { .red = 255, .green = 255, .blue = 255, .alpha = 255 });
    alpha.fill(120, 120, 10, 10, { .alpha = 255 });   // black never shows here
    codes.fill(100, 100, 100, 100, 2);
    codes.fill(120, 120, 10, 10, 0);
    codes.fill(150, 150, 100, 100, 1);
    const std::vector<ButtonPlan> buttons = { { 90, 210, 90, 210, "BTN_ACTION_JUMP_TT(1,0,0)" },
                                              { 140, 260, 140, 260, "BTN_ACTION_JUMP_TT(1,0,0)" } };
    const Disc disc(standard, { {} },
                    menuPage("VMG_MENU1", standard, realStill(standard, 0), buttons, alphaKeys(map, alpha)),
                    "menus=1\n");
    ASSERT_EQ(disc.result, 0u);
    expectPicture(decodeSubPicture(disc.file("VIDEO_TS.VOB"), standard, 1, 0), codes);
}

TEST_P(SubPictures, ManyColoursAreReducedToThree)
{
    // Four colours: the three that buttons have most of stay, the fourth is shown by the nearest of them.
    const Standard standard = GetParam();
    const uint64_t lines = pictureLines(standard);
    ByteImage map(lines), codes(lines);
    AlphaImage alpha(lines);
    const Rgba colours[] = { { 255, 0, 0, 255 }, { 0, 255, 0, 160 }, { 0, 0, 255, 96 }, { 10, 10, 200, 255 } };
    const uint8_t expected[] = { 1, 2, 3, 3 };
    for (uint64_t i = 0; i < 4; i++) {
        map.fill(100, 100 + 50 * i, 300 - 50 * i, 30, uint8_t(i + 1));
        alpha.fill(100, 100 + 50 * i, 300 - 50 * i, 30, colours[i]);
        codes.fill(100, 100 + 50 * i, 300 - 50 * i, 30, expected[i]);
    }
    std::vector<ButtonPlan> buttons;
    for (uint32_t i = 0; i < 4; i++) {
        buttons.push_back({ 90, 410, 90 + 50 * i, 140 + 50 * i, "BTN_ACTION_JUMP_TT(1,0,0)" });
    }
    const Disc disc(standard, { {} },
                    menuPage("VMG_MENU1", standard, realStill(standard, 0), buttons, alphaKeys(map, alpha)),
                    "menus=1\n");
    ASSERT_EQ(disc.result, 0u);
    expectPicture(decodeSubPicture(disc.file("VIDEO_TS.VOB"), standard, 1, 0), codes);
}
