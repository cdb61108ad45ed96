// The whole pipeline: palette, colour sets and each button's colour set, by the number of colours that a menu has.
#include "menu/menu_colors.h"

#include "base/result.h"
#include "tests/menu/menu_rig.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

const std::string PLAIN = "11 10 FA 50", NONE = "00 00 00 00";
const Texts ALL_PLAIN = { PLAIN, PLAIN, PLAIN }, BY_COLOR = { "11 10 FA 50", "22 20 FA 50", "33 30 FA 50" };

Texts three(const std::string& text)
{
    return { text, text, text };
}

std::vector<uint64_t> colorsOf(const MenuDesc& menu)
{
    std::vector<uint64_t> colors;
    for (uint64_t i = 0; i < menu.buttonCount; i++) colors.push_back(menu.buttons[i].color);
    return colors;
}

/** A few pixels of each of these colours, the first the lowest. */
void paintSamples(MenuPicture& picture, const std::vector<Rgba>& samples)
{
    const uint64_t bottom = picture.alpha.height - 1;
    for (uint64_t i = 0; i < samples.size(); i++) picture.paint(samples[i], { 50 * i, bottom - i, 10, 1 });
}

// Two buttons that lie apart, in two colours. The first is tightened to 110-130 x 59-70, where 19 x 9 of its pixels
// lie within columns and lines, the second to 210-220 x 59-70, with 9 x 9.
const std::vector<Box> APART = { { 100, 140, 50, 80 }, { 200, 240, 50, 80 } };
const std::vector<Box> APART_TIGHTENED = { { 110, 130, 59, 70 }, { 210, 220, 59, 70 } };

MenuPicture pictureApart(const std::vector<Rgba>& samples, Rgba first, Rgba second, uint64_t lines = NTSC_LINES)
{
    MenuPicture picture(lines);
    picture.show(1, first, { 110, 60, 20, 10 }).show(2, second, { 210, 60, 10, 10 });
    paintSamples(picture, samples);
    return picture;
}

const struct {
    const char* what;
    std::vector<Rgba> samples;   // all colours of the picture, from the bottom line on; N is one more if all are seen
    Rgba first, second;          // of the two buttons
    Texts palette, selections;
    std::vector<uint64_t> colors;
    uint64_t manyColors;
} BY_NUMBER[] = {
    { "only transparent, N = 1",
      {},
      CLEAR,
      CLEAR,
      { "00 00 00 00", "00 00 00 00", "00 00 00 00", "00 00 00 00" },
      ALL_PLAIN,
      { 1, 1 },
      0 },
    { "transparent in colours, N = 1",
      { withAlpha(RED, 31) },
      withAlpha(GREEN, 1),
      withAlpha(BLUE, 31),
      { "00 00 00 00", "00 00 00 00", "00 00 00 00", "00 00 00 00" },
      ALL_PLAIN,
      { 1, 1 },
      0 },
    { "black alone, N = 2",
      { BLACK },
      BLACK,
      CLEAR,
      { "00 00 00 00", "00 00 00 00", "00 00 00 00", "00 00 00 00" },
      ALL_PLAIN,
      { 1, 1 },
      0 },
    { "one colour, N = 2",
      { RED },
      RED,
      RED,
      { "00 00 00 00", "00 E0 10 20", "00 00 00 00", "00 00 00 00" },
      ALL_PLAIN,
      { 1, 1 },
      0 },
    { "one colour of many alphas, N = 2",
      { withAlpha(RED, 32), withAlpha(RED, 106), withAlpha(RED, 107), withAlpha(RED, 182) },
      RED,
      withAlpha(RED, 150),
      { "00 00 00 00", "00 E0 10 20", "00 00 00 00", "00 00 00 00" },
      ALL_PLAIN,
      { 1, 1 },
      0 },
    { "two colours, N = 3",
      { RED, GREEN },
      GREEN,
      RED,
      { "00 00 00 00", "00 E0 10 20", "00 11 D0 22", "00 00 00 00" },
      BY_COLOR,
      { 2, 1 },
      0 },
    { "a colour and black, N = 3",
      { BLACK, RED },
      RED,
      RED,
      { "00 00 00 00", "00 00 00 00", "00 E0 10 20", "00 00 00 00" },
      BY_COLOR,
      { 2, 2 },
      0 },
    { "three colours, N = 4",
      { RED, GREEN, BLUE },
      BLUE,
      RED,
      { "00 00 00 00", "00 E0 10 20", "00 11 D0 22", "00 12 23 C0" },
      BY_COLOR,
      { 3, 1 },
      0 },
    { "three colours, another order",
      { BLUE, GREEN, RED },
      BLUE,
      RED,
      { "00 00 00 00", "00 12 23 C0", "00 11 D0 22", "00 E0 10 20" },
      BY_COLOR,
      { 1, 3 },
      0 },
    { "two colours and black, N = 4",
      { RED, BLACK, GREEN },
      RED,
      GREEN,
      { "00 00 00 00", "00 E0 10 20", "00 00 00 00", "00 11 D0 22" },
      BY_COLOR,
      { 1, 3 },
      0 },
    { "black first in a button takes the entry of black",
      { RED, GREEN, BLACK },
      BLACK,
      GREEN,
      { "00 00 00 00", "00 E0 10 20", "00 11 D0 22", "00 00 00 00" },
      BY_COLOR,
      { 3, 2 },
      0 },
    // The palette has the two colours of the buttons: 171 pixels of the first, 81 of the second.
    { "three colours and black, N = 5",
      { BLACK, RED, GREEN, BLUE },
      RED,
      GREEN,
      { "00 00 00 00", "FF E0 10 20", "FF 11 D0 22", "00 00 00 00" },
      three("32 10 0F F0"),
      { 1, 1 },
      1 },
    { "four colours, N = 5",
      { RED, GREEN, BLUE, YELLOW },
      GREEN,
      YELLOW,
      { "00 00 00 00", "FF 11 D0 22", "FF F1 F2 13", "00 00 00 00" },
      three("32 10 0F F0"),
      { 1, 1 },
      1 },
    { "five colours and black, N = 7",
      { RED, GREEN, BLUE, YELLOW, BLACK, { 1, 2, 3, 255 } },
      BLUE,
      RED,
      { "00 00 00 00", "FF 12 23 C0", "FF E0 10 20", "00 00 00 00" },
      three("32 10 0F F0"),
      { 1, 1 },
      1 },
};

const struct {
    const char* what;
    std::vector<Rgba> samples;
    Texts palette, selections;
} WITHOUT_BUTTONS[] = {
    { "N = 1", {}, { NONE, NONE, NONE, NONE }, ALL_PLAIN },
    { "N = 2", { RED }, { NONE, "00 E0 10 20", NONE, NONE }, ALL_PLAIN },
    { "N = 3", { RED, BLUE }, { NONE, "00 E0 10 20", "00 12 23 C0", NONE }, BY_COLOR },
    { "N = 4", { RED, BLUE, GREEN }, { NONE, "00 E0 10 20", "00 12 23 C0", "00 11 D0 22" }, BY_COLOR },
    { "N = 5", { RED, BLUE, GREEN, YELLOW }, { NONE, NONE, NONE, NONE }, three("32 10 00 00") },
};

// Boxes in which no button has a pixel, besides the two of APART.
const struct {
    const char* what;
    Box box;
} EMPTY_BOXES[] = {
    { "nobody's pixels", { 400, 500, 100, 200 } },      { "no lines", { 400, 500, 100, 101 } },
    { "ends where it starts", { 400, 500, 100, 100 } }, { "upside down", { 400, 500, 200, 100 } },
    { "no columns", { 400, 401, 100, 200 } },           { "right to left", { 500, 400, 100, 200 } },
    { "outside the picture", { 720, 800, 0, 400 } },
};

}   // namespace

TEST(MenuColors, ByTheNumberOfColors)
{
    for (const auto& c : BY_NUMBER) {
        MenuRig rig(pictureApart(c.samples, c.first, c.second), APART);
        ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u) << c.what;
        EXPECT_EQ(paletteOf(rig.menu), c.palette) << c.what;
        EXPECT_EQ(selectionsOf(rig.menu), c.selections) << c.what;
        EXPECT_EQ(colorsOf(rig.menu), c.colors) << c.what;
        EXPECT_EQ(rig.menu.manyColors, c.manyColors) << c.what;
        EXPECT_EQ(rig.menu.buttonsOverlap, 0u) << c.what;
    }
}

TEST(MenuColors, PalHasMoreLines)
{
    MenuRig rig(pictureApart({ RED, GREEN }, GREEN, RED, PAL_LINES), APART);
    ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u);
    EXPECT_EQ(paletteOf(rig.menu), (Texts{ NONE, "00 E0 10 20", "00 11 D0 22", NONE }));
    EXPECT_EQ(colorsOf(rig.menu), (std::vector<uint64_t>{ 2, 1 }));
}

TEST(MenuColors, PicksAreCountedOverAllButtons)
{
    // 171 pixels of the first button and 81 of the second are counted.
    MenuPicture picture = pictureApart({ GREEN, YELLOW }, RED, BLUE);
    picture.paint(GREEN, { 110, 60, 20, 5 });    // 95 of the first; 76 stay red
    picture.paint(GREEN, { 210, 66, 10, 1 });    // 9 of the second; 72 stay blue
    picture.paint(YELLOW, { 210, 67, 10, 2 });   // 18 of the second; 54 stay blue
    MenuRig rig(picture, APART);
    ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u);
    EXPECT_EQ(paletteOf(rig.menu),
              (Texts{ NONE, "FF 11 D0 22", "FF E0 10 20", "FF 12 23 C0" }));   // 104, 76, 54, and 18 yellow ones
}

TEST(MenuColors, OnlyTheSelectionWordChanges)
{
    const struct {
        const char* what;
        std::vector<Rgba> samples;
        Rgba first, second;
        Texts sets;
        std::vector<uint64_t> colors;
        std::vector<std::pair<uint64_t, const char*>> palette;   // entries that aren't 0
    } rows[] = {
        { "N = 2",
          { RED },
          RED,
          RED,
          { "11 10 FA 50 A4 A5 A6 A7", "11 10 FA 50 B4 B5 B6 B7", "11 10 FA 50 C4 C5 C6 C7" },
          { 1, 1 },
          { { 1, "00 E0 10 20" } } },
        { "N = 3",
          { RED, GREEN },
          RED,
          GREEN,
          { "11 10 FA 50 A4 A5 A6 A7", "22 20 FA 50 B4 B5 B6 B7", "33 30 FA 50 C4 C5 C6 C7" },
          { 1, 2 },
          { { 1, "00 E0 10 20" }, { 2, "00 11 D0 22" } } },
        { "N = 5",
          { RED, GREEN, BLUE, YELLOW },
          RED,
          GREEN,
          { "32 10 0F F0 A4 A5 A6 A7", "32 10 0F F0 B4 B5 B6 B7", "32 10 0F F0 C4 C5 C6 C7" },
          { 1, 1 },
          { { 1, "FF E0 10 20" }, { 2, "FF 11 D0 22" } } },
    };
    for (const auto& c : rows) {
        MenuRig rig(pictureApart(c.samples, c.first, c.second), APART);
        MenuDesc expected = rig.menu;
        for (uint64_t i = 0; i < COLOR_SETS; i++) {
            std::memcpy(expected.colorSets[i], fromHex(c.sets[i]).data(), COLOR_SET_BYTES);
        }
        for (uint32_t& word : expected.palette) word = 0;
        for (const auto& [entry, bytes] : c.palette) std::memcpy(&expected.palette[entry], fromHex(bytes).data(), 4);
        if (c.samples.size() > 3) expected.manyColors = 1;
        for (uint64_t i = 0; i < 2; i++) {
            expected.buttons[i].xStart = APART_TIGHTENED[i].xStart;
            expected.buttons[i].xEnd = APART_TIGHTENED[i].xEnd;
            expected.buttons[i].yStart = APART_TIGHTENED[i].yStart;
            expected.buttons[i].yEnd = APART_TIGHTENED[i].yEnd;
            expected.buttons[i].color = c.colors[i];
        }
        ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u) << c.what;
        EXPECT_EQ(describe(rig.menu), describe(expected)) << c.what;
    }
}

TEST(MenuColors, MenusWithoutButtons)
{
    for (const auto& c : WITHOUT_BUTTONS) {
        MenuPicture picture;
        picture.own(1, { 110, 60, 20, 10 }).own(2, { 130, 60, 20, 10 });
        paintSamples(picture, c.samples);
        MenuRig rig(picture, {});
        const MenuDesc before = rig.menu;
        ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u) << c.what;
        EXPECT_EQ(paletteOf(rig.menu), c.palette) << c.what;
        EXPECT_EQ(selectionsOf(rig.menu), c.selections) << c.what;
        EXPECT_EQ(rig.menu.manyColors, c.samples.size() > 3 ? 1u : 0u) << c.what;
        EXPECT_EQ(rig.menu.buttonsOverlap, 0u) << c.what;
        EXPECT_EQ(std::memcmp(rig.menu.buttons, before.buttons, sizeof(before.buttons)), 0) << c.what;
    }
}

TEST(MenuColors, ButtonTakesThePreviousIndex)
{
    // Above what is seen of a button lies a line of pixels of its own that are transparent. Where their colour is not
    // in the census, the button takes what the one before it has.
    const Rgba unknown = { 0x44, 0x55, 0x66, 31 };
    const struct {
        Rgba seen, above;
        uint64_t color;
    } buttons[] = {
        { BLUE, unknown, 0 },              // the first one has none before it
        { RED, GREEN, 2 },                 // the line above is looked at first
        { RED, unknown, 2 },               //
        { BLUE, withAlpha(RED, 10), 1 },   // transparent, of a colour that is known
        { BLUE, unknown, 1 },              //
        { GREEN, CLEAR, 0 },               // transparent black is entry 0
        { GREEN, unknown, 0 },             //
        { BLUE, withAlpha(BLUE, 31), 3 },
    };
    MenuPicture picture;
    paintSamples(picture, { RED, GREEN, BLUE });
    std::vector<Box> boxes;
    std::vector<uint64_t> colors;
    for (const auto& button : buttons) {
        const uint64_t x = 80 * boxes.size();
        const uint8_t number = uint8_t(boxes.size() + 1);
        const bool hidden = button.above.alpha < 32;
        picture.show(number, button.seen, { x, 60, 20, 10 })
            .show(number, button.above, { x, hidden ? 59u : 60u, 20, 1 });
        boxes.push_back({ x, x + 40, 50, 80 });
        colors.push_back(button.color);
    }
    MenuRig rig(picture, boxes);
    ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u);
    EXPECT_EQ(colorsOf(rig.menu), colors);
}

TEST(MenuColors, EmptyBoxesFailMenusOfTwoOrThreeColors)
{
    const std::vector<Rgba> all = { RED, GREEN, BLUE, YELLOW };
    for (const auto& c : EMPTY_BOXES) {
        for (uint64_t colors = 1; colors <= 4; colors++) {
            const std::vector<Rgba> samples(all.begin(), all.begin() + int64_t(colors));
            MenuRig rig(pictureApart(samples, RED, RED), { APART[0], APART[1], c.box });
            const uint64_t expected = colors == 2 || colors == 3 ? ORV_BUTTON_RECT_EMPTY : 0;
            EXPECT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), expected)
                << c.what << ", " << colors << " colours";
            if (expected) continue;
            EXPECT_EQ(colorsOf(rig.menu), (std::vector<uint64_t>{ 1, 1, 1 })) << c.what;
        }
    }
}

TEST(MenuColors, ATightenedBoxMayBeEmpty)
{
    // What is seen is one column wide: 130-131, a box without columns. In the first column of the box it stays wide.
    MenuPicture picture;
    picture.show(1, GREEN, { 130, 60, 1, 10 });
    paintSamples(picture, { RED });
    MenuRig rig(picture, { { 100, 200, 50, 80 } });
    EXPECT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), ORV_BUTTON_RECT_EMPTY);
    rig.setBoxes({ { 130, 200, 50, 80 } });
    EXPECT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u);
    EXPECT_EQ(boxOf(rig.menu.buttons[0]), (Box{ 130, 200, 59, 70 }));
    EXPECT_EQ(rig.menu.buttons[0].color, 2u);
}

TEST(MenuColors, ABoxPartlyOutsideThePicture)
{
    MenuPicture picture;
    picture.show(1, GREEN, { 700, 465, 20, 15 });
    paintSamples(picture, { RED });
    MenuRig rig(picture, { { 690, 900, 450, 600 } });
    ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u);
    EXPECT_EQ(boxOf(rig.menu.buttons[0]), (Box{ 700, 720, 464, 480 }));
    // The lowest line is red from 0 to 9, green from 700 to 719.
    EXPECT_EQ(paletteOf(rig.menu), (Texts{ NONE, "00 E0 10 20", "00 11 D0 22", NONE }));
    EXPECT_EQ(rig.menu.buttons[0].color, 2u);
}
