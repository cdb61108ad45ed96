// Buttons that lie over one another: their boxes hold pixels of more than two owners, nobody being one of them.
#include "base/result.h"
#include "menu/menu_colors.h"
#include "tests/menu/menu_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t FURTHEST = 0xFFFFFFFF;

// Columns 100 to 198 of the lines 50 to 78 are looked at.
constexpr Box BOX = { 100, 200, 50, 80 };
constexpr Area INSIDE = { 100, 50, 99, 29 };

struct Owned {
    uint8_t button;
    Area area;
};

const struct {
    const char* what;
    std::vector<Owned> owned;   // the later over the earlier
    std::vector<Box> boxes;
    std::vector<uint64_t> overlapButtons;   // of each box
} CASES[] = {
    { "nobody", {}, { BOX }, { 0 } },
    { "its own and nobody's", { { 1, { 110, 60, 10, 10 } } }, { BOX }, { 0 } },
    { "its own alone", { { 1, INSIDE } }, { BOX }, { 0 } },
    { "another's and nobody's", { { 2, { 110, 60, 10, 10 } } }, { BOX }, { 0 } },
    { "its own and another's, none is nobody's", { { 1, INSIDE }, { 2, { 110, 60, 10, 10 } } }, { BOX }, { 0 } },
    { "its own, another's, nobody's", { { 1, { 110, 60, 10, 10 } }, { 2, { 130, 60, 10, 10 } } }, { BOX }, { 2 } },
    { "one pixel is enough", { { 1, { 110, 60, 10, 10 } }, { 2, { 130, 60, 1, 1 } } }, { BOX }, { 2 } },
    { "two others and nobody's", { { 3, { 110, 60, 10, 10 } }, { 2, { 130, 60, 10, 10 } } }, { BOX }, { 3 } },
    { "three others, none is nobody's",
      { { 2, INSIDE }, { 3, { 110, 60, 10, 10 } }, { 4, { 110, 50, 10, 10 } } },
      { BOX },
      { 2 } },
    // The first from the bottom, and from the left on a line.
    { "three is lower", { { 2, { 110, 60, 10, 10 } }, { 3, { 110, 70, 10, 5 } } }, { BOX }, { 3 } },
    { "two is lower", { { 3, { 110, 60, 10, 10 } }, { 2, { 110, 70, 10, 5 } } }, { BOX }, { 2 } },
    { "three begins higher and ends lower", { { 3, { 110, 60, 5, 12 } }, { 2, { 120, 62, 5, 9 } } }, { BOX }, { 3 } },
    { "two is to the left", { { 2, { 110, 60, 5, 10 } }, { 3, { 120, 60, 5, 10 } } }, { BOX }, { 2 } },
    { "three is to the left", { { 3, { 110, 60, 5, 10 } }, { 2, { 120, 60, 5, 10 } } }, { BOX }, { 3 } },
    { "its own is the lowest", { { 1, { 110, 75, 5, 2 } }, { 4, { 120, 60, 5, 10 } } }, { BOX }, { 4 } },
    { "a number that no button has", { { 1, { 110, 60, 5, 5 } }, { 255, { 120, 60, 5, 5 } } }, { BOX }, { 255 } },
    // The box's borders.
    { "line 49", { { 1, { 110, 60, 5, 5 } }, { 2, { 110, 49, 5, 1 } } }, { BOX }, { 0 } },
    { "line 50", { { 1, { 110, 60, 5, 5 } }, { 2, { 110, 50, 5, 1 } } }, { BOX }, { 2 } },
    { "line 78", { { 1, { 110, 60, 5, 5 } }, { 2, { 110, 78, 5, 1 } } }, { BOX }, { 2 } },
    { "line 79", { { 1, { 110, 60, 5, 5 } }, { 2, { 110, 79, 5, 1 } } }, { BOX }, { 0 } },
    { "column 99", { { 1, { 110, 60, 5, 5 } }, { 2, { 99, 60, 1, 5 } } }, { BOX }, { 0 } },
    { "column 100", { { 1, { 110, 60, 5, 5 } }, { 2, { 100, 60, 1, 5 } } }, { BOX }, { 2 } },
    { "column 198", { { 1, { 110, 60, 5, 5 } }, { 2, { 198, 60, 1, 5 } } }, { BOX }, { 2 } },
    { "column 199", { { 1, { 110, 60, 5, 5 } }, { 2, { 199, 60, 1, 5 } } }, { BOX }, { 0 } },
    // Boxes without columns or lines.
    { "no lines", { { 1, { 90, 40, 60, 20 } }, { 2, { 90, 60, 60, 20 } } }, { { 100, 200, 50, 51 } }, { 0 } },
    { "no columns", { { 1, { 90, 40, 60, 20 } }, { 2, { 90, 60, 60, 20 } } }, { { 100, 101, 50, 80 } }, { 0 } },
    { "upside down", { { 1, { 110, 60, 5, 5 } }, { 2, { 120, 60, 5, 5 } } }, { { 100, 200, 80, 50 } }, { 0 } },
    { "right to left", { { 1, { 110, 60, 5, 5 } }, { 2, { 120, 60, 5, 5 } } }, { { 200, 100, 50, 80 } }, { 0 } },
    // What lies outside the picture is nobody's.
    { "outside", { { 1, { 700, 470, 20, 10 } }, { 2, { 690, 460, 5, 5 } } }, { { 800, 900, 500, 600 } }, { 0 } },
    { "two owners, and beyond the right edge",
      { { 1, { 700, 100, 10, 20 } }, { 2, { 710, 100, 10, 20 } } },
      { { 700, 722, 100, 121 } },   // columns 700 to 720
      { 2 } },
    { "two owners up to the right edge",
      { { 1, { 700, 100, 10, 20 } }, { 2, { 710, 100, 10, 20 } } },
      { { 700, 721, 100, 121 } },
      { 0 } },
    { "two owners, and below the bottom edge",
      { { 1, { 100, 470, 10, 5 } }, { 2, { 100, 475, 10, 5 } } },
      { { 100, 111, 470, 482 } },   // lines 470 to 480
      { 2 } },
    { "two owners up to the bottom edge",
      { { 1, { 100, 470, 10, 5 } }, { 2, { 100, 475, 10, 5 } } },
      { { 100, 111, 470, 481 } },
      { 0 } },
    { "as large as can be",
      { { 1, { 0, 0, 720, 240 } }, { 2, { 0, 240, 720, 240 } } },
      { { 0, FURTHEST, 0, FURTHEST } },
      { 2 } },
    // More than one button.
    { "two that see each other",
      { { 1, { 110, 60, 10, 10 } }, { 2, { 130, 60, 10, 10 } } },
      { BOX, { 105, 150, 55, 75 } },
      { 2, 1 } },
    { "two, one of which sees the other",
      { { 1, { 110, 60, 10, 10 } }, { 2, { 130, 60, 10, 10 } } },
      { BOX, { 125, 150, 55, 75 } },
      { 2, 0 } },
    { "three in one box",
      { { 1, { 110, 60, 10, 10 } }, { 2, { 130, 62, 10, 10 } }, { 3, { 150, 64, 10, 10 } } },
      { BOX, BOX, BOX },
      { 3, 3, 2 } },
    { "three, the last by itself",
      { { 1, { 110, 60, 10, 10 } }, { 2, { 130, 62, 10, 10 } }, { 3, { 300, 64, 10, 10 } } },
      { BOX, BOX, { 295, 315, 60, 80 } },
      { 2, 1, 0 } },
    { "no button", { { 1, { 110, 60, 10, 10 } }, { 2, { 130, 60, 10, 10 } } }, {}, {} },
};

// Where buttons are seen, all red, and what becomes of them in the whole pipeline. A button's box is tightened from
// WIDE to what is seen of it; from it the last column and the last line are missing then, and a line above is in it.
constexpr Box WIDE = { 100, 400, 50, 110 };

const struct {
    const char* what;
    std::vector<Owned> shown;
    std::vector<uint64_t> overlapButtons, colors;
} SETTLED[] = {
    { "each sees the other",
      { { 1, { 110, 60, 5, 5 } }, { 1, { 150, 80, 5, 5 } }, { 2, { 120, 62, 5, 5 } }, { 2, { 160, 90, 5, 5 } } },
      { 2, 1 },
      { 2, 1 } },
    { "the first alone sees the other",
      { { 1, { 110, 60, 5, 5 } }, { 1, { 150, 80, 5, 5 } }, { 2, { 120, 62, 5, 5 } } },
      { 2, 0 },
      { 2, 1 } },
    { "the second alone sees the other",
      { { 2, { 110, 60, 5, 5 } }, { 2, { 150, 80, 5, 5 } }, { 1, { 120, 62, 5, 5 } } },
      { 0, 1 },
      { 1, 1 } },
    { "three, one within the other",
      { { 1, { 110, 60, 5, 5 } },
        { 1, { 150, 90, 5, 5 } },
        { 2, { 120, 65, 5, 5 } },
        { 2, { 130, 75, 5, 5 } },
        { 3, { 125, 70, 3, 3 } } },
      { 2, 3, 0 },
      { 2, 2, 1 } },
    { "three, the last sees the first, the second is elsewhere",
      { { 3, { 110, 60, 5, 5 } }, { 3, { 150, 90, 5, 5 } }, { 1, { 120, 65, 5, 5 } }, { 2, { 300, 60, 5, 5 } } },
      { 0, 0, 1 },
      { 1, 1, 1 } },
    { "a number that no button has",
      { { 1, { 110, 60, 5, 5 } }, { 1, { 150, 80, 5, 5 } }, { 200, { 120, 62, 5, 5 } } },
      { 200 },
      { 2 } },
};

// Two buttons in three colours. From the bottom they are met in the order green, blue, red; in the boxes of the
// buttons are 25 red pixels, 16 green ones (columns 150 to 153, lines 80 to 83), 12 blue ones (120 to 123, 62 to 64).
MenuPicture threeColors()
{
    MenuPicture picture;
    picture.show(1, withAlpha(RED, 0x80), { 110, 60, 5, 5 });
    picture.show(1, withAlpha(GREEN, 0x90), { 150, 80, 5, 5 });
    picture.show(2, withAlpha(BLUE, 0x70), { 120, 62, 5, 4 });
    return picture;
}

void expectOverlapSets(const MenuDesc& menu)
{
    EXPECT_EQ(toHex(menu.colorSets[0], COLOR_SET_BYTES), "11 10 00 F0 A4 A5 A6 A7");
    EXPECT_EQ(toHex(menu.colorSets[1], COLOR_SET_BYTES), "22 20 0F 00 B4 B5 B6 B7");
    EXPECT_EQ(toHex(menu.colorSets[2], COLOR_SET_BYTES), "33 30 F0 00 C4 C5 C6 C7");
}

}   // namespace

TEST(MenuOverlap, IsFound)
{
    for (const auto& c : CASES) {
        MenuPicture picture;
        for (const Owned& owned : c.owned) picture.own(owned.button, owned.area);
        MenuRig rig(picture, c.boxes);
        MenuRig expected(picture, c.boxes);
        uint64_t anyExpected = 0;
        for (uint64_t i = 0; i < c.boxes.size(); i++) {
            expected.menu.buttons[i].overlapButton = c.overlapButtons[i];
            if (c.overlapButtons[i]) anyExpected = expected.menu.buttonsOverlap = 1;
        }
        expected.menu.subPicture = rig.menu.subPicture;
        expected.menu.subPicture32 = rig.menu.subPicture32;
        uint64_t any = 99;
        ASSERT_EQ(orvFindButtonOverlap(rig.standard, &rig.menu, &any), 0u) << c.what;
        EXPECT_EQ(any, anyExpected) << c.what;
        EXPECT_EQ(describe(rig.menu), describe(expected.menu)) << c.what;
    }
}

TEST(MenuOverlap, LowerNumberTakesSetTwo)
{
    for (const auto& c : SETTLED) {
        MenuPicture picture;
        for (const Owned& owned : c.shown) picture.show(owned.button, RED, owned.area);
        MenuRig rig(picture, std::vector<Box>(c.colors.size(), WIDE));
        ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u) << c.what;
        EXPECT_EQ(rig.menu.buttonsOverlap, 1u) << c.what;
        for (uint64_t i = 0; i < c.colors.size(); i++) {
            EXPECT_EQ(rig.menu.buttons[i].overlapButton, c.overlapButtons[i]) << c.what << ", button " << i + 1;
            EXPECT_EQ(rig.menu.buttons[i].color, c.colors[i]) << c.what << ", button " << i + 1;
        }
        expectOverlapSets(rig.menu);
    }
}

TEST(MenuOverlap, PaletteBecomesTheFirstColor)
{
    MenuRig rig(threeColors(), { WIDE, WIDE });
    ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u);
    expectOverlapSets(rig.menu);
    EXPECT_EQ(rig.menu.manyColors, 0u);
    for (const uint64_t entry : { uint64_t(0), uint64_t(1), uint64_t(2) }) {
        EXPECT_EQ(paletteBytes(rig.menu, entry), "00 11 D0 22") << entry;   // green
    }
    EXPECT_EQ(paletteBytes(rig.menu, 3), "00 E0 10 20");   // red, the third from the bottom
}

TEST(MenuOverlap, PaletteBecomesTheMostUsedOfManyColors)
{
    MenuPicture picture = threeColors();
    picture.paint(YELLOW, { 500, 400, 50, 20 });   // the fourth, of no button
    MenuRig rig(picture, { WIDE, WIDE });
    ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u);
    expectOverlapSets(rig.menu);
    EXPECT_EQ(rig.menu.manyColors, 1u);
    for (const uint64_t entry : { uint64_t(0), uint64_t(1), uint64_t(2) }) {
        EXPECT_EQ(paletteBytes(rig.menu, entry), "80 E0 10 20") << entry;   // red
    }
    EXPECT_EQ(paletteBytes(rig.menu, 3), "70 12 23 C0");   // blue, the third
}

TEST(MenuOverlap, ABoxMayBeEmpty)
{
    // Three colours ask for a pixel in each button's box; the boxes of overlapping ones aren't looked at for it.
    MenuRig rig(threeColors(), { WIDE, WIDE, { 600, 700, 300, 301 } });
    ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u);
    expectOverlapSets(rig.menu);
    EXPECT_EQ(rig.menu.buttons[2].color, 1u);
}
