// Button rectangles, tightened around what of a button can be seen.
#include "base/result.h"
#include "menu/menu_colors.h"
#include "tests/menu/menu_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t FURTHEST = 0xFFFFFFFF;   // the largest number that a project can say

// Columns 100 to 198 of the lines 51 to 79 are looked at.
constexpr Box BOX = { 100, 200, 50, 80 };

const struct {
    const char* what;
    Box box;
    Area shown;   // red, button 1
    Box tightened;
} CASES[] = {
    // The box begins with the first column and the line above the first one, and ends behind the last column and on
    // the line behind the last one.
    { "inside", BOX, { 110, 60, 40, 10 }, { 110, 150, 59, 70 } },
    { "one pixel", BOX, { 130, 65, 1, 1 }, { 130, 131, 64, 66 } },
    { "larger than the box", BOX, { 90, 40, 120, 50 }, { 100, 199, 50, 80 } },
    { "all that is looked at", BOX, { 100, 51, 99, 29 }, { 100, 199, 50, 80 } },
    { "corner at the top", BOX, { 100, 51, 2, 2 }, { 100, 102, 50, 53 } },
    { "corner at the bottom", BOX, { 197, 78, 2, 2 }, { 197, 199, 77, 80 } },
    // Right of the last column that is looked at, left of the first, above and below.
    { "column 199", BOX, { 199, 60, 5, 5 }, BOX },
    { "column 198", BOX, { 198, 60, 5, 5 }, { 198, 199, 59, 65 } },
    { "column 99", BOX, { 95, 60, 5, 5 }, BOX },
    { "line 50", BOX, { 110, 46, 5, 5 }, BOX },
    { "line 51", BOX, { 110, 47, 5, 5 }, { 110, 115, 50, 52 } },
    { "line 79", BOX, { 110, 79, 5, 5 }, { 110, 115, 50, 80 } },
    { "line 80", BOX, { 110, 80, 5, 5 }, BOX },
    { "nowhere", BOX, { 300, 300, 5, 5 }, BOX },
    // No lines, or no columns.
    { "ends where it starts", { 100, 200, 50, 50 }, { 90, 40, 120, 50 }, { 100, 200, 50, 50 } },
    { "one line", { 100, 200, 50, 51 }, { 90, 40, 120, 50 }, { 100, 200, 50, 51 } },
    { "two lines", { 100, 200, 50, 52 }, { 90, 40, 120, 50 }, { 100, 199, 50, 52 } },
    { "upside down", { 100, 200, 80, 50 }, { 90, 40, 120, 50 }, { 100, 200, 80, 50 } },
    { "right to left", { 200, 100, 50, 80 }, { 90, 40, 120, 50 }, { 200, 100, 50, 80 } },
    { "one column", { 100, 101, 50, 80 }, { 90, 40, 120, 50 }, { 100, 101, 50, 80 } },
    { "all zero", { 0, 0, 0, 0 }, { 0, 0, 50, 50 }, { 0, 0, 0, 0 } },
    // The picture's edges.
    { "the whole picture", { 0, 720, 0, 480 }, { 0, 0, 720, 480 }, { 0, 719, 0, 480 } },
    { "beyond the picture", { 0, 900, 0, 600 }, { 300, 200, 50, 50 }, { 300, 350, 199, 250 } },
    { "right and below", { 700, 800, 470, 500 }, { 710, 475, 10, 5 }, { 710, 720, 474, 480 } },
    { "ends with the picture", { 710, 721, 470, 481 }, { 710, 470, 10, 10 }, { 710, 720, 470, 480 } },
    { "outside", { 800, 900, 500, 600 }, { 700, 470, 20, 10 }, { 800, 900, 500, 600 } },
    { "right of the picture", { 720, 800, 0, 480 }, { 0, 0, 720, 480 }, { 720, 800, 0, 480 } },
    { "below the picture", { 0, 720, 479, 600 }, { 0, 0, 720, 480 }, { 0, 720, 479, 600 } },
    { "as large as can be", { 0, FURTHEST, 0, FURTHEST }, { 300, 200, 50, 50 }, { 300, 350, 199, 250 } },
    { "far away",
      { FURTHEST - 100, FURTHEST, FURTHEST - 100, FURTHEST },
      { 0, 0, 720, 480 },
      { FURTHEST - 100, FURTHEST, FURTHEST - 100, FURTHEST } },
    { "far and upside down", { FURTHEST, 0, FURTHEST, 0 }, { 0, 0, 720, 480 }, { FURTHEST, 0, FURTHEST, 0 } },
};

const struct {
    const char* what;
    Rgba pixel;
    bool visible;
} PIXELS[] = {
    { "opaque", { 0xE0, 0x10, 0x20, 0xFF }, true },
    { "alpha 32", { 0xE0, 0x10, 0x20, 0x20 }, true },
    { "alpha 31", { 0xE0, 0x10, 0x20, 0x1F }, false },
    { "alpha 0", { 0xE0, 0x10, 0x20, 0x00 }, false },
    { "black", { 0, 0, 0, 0xFF }, false },
    { "nearly black, blue", { 0, 0, 1, 0xFF }, true },
    { "nearly black, green", { 0, 1, 0, 0xFF }, true },
    { "nearly black, red", { 1, 0, 0, 0x20 }, true },
};

std::vector<Box> tightened(const MenuPicture& picture, const std::vector<Box>& boxes)
{
    MenuRig rig(picture, boxes);
    EXPECT_EQ(orvTightenButtonRects(rig.standard, &rig.menu), 0u);
    std::vector<Box> result;
    for (uint64_t i = 0; i < boxes.size(); i++) result.push_back(boxOf(rig.menu.buttons[i]));
    return result;
}

Box tightened(const MenuPicture& picture, const Box& box)
{
    return tightened(picture, std::vector<Box>{ box })[0];
}

}   // namespace

TEST(MenuRects, AreTightened)
{
    for (const auto& c : CASES) {
        MenuPicture picture;
        picture.show(1, RED, c.shown);
        EXPECT_EQ(tightened(picture, c.box), c.tightened) << c.what;
    }
}

TEST(MenuRects, FirstColumnKeepsTheEnd)
{
    // All that can be seen is in column 100: the largest column is 0.
    MenuPicture picture;
    picture.show(1, RED, { 100, 60, 1, 10 });
    EXPECT_EQ(tightened(picture, BOX), (Box{ 100, 200, 59, 70 }));
    // One column to the right it is 1.
    EXPECT_EQ(tightened(picture, { 99, 200, 50, 80 }), (Box{ 100, 101, 59, 70 }));
}

TEST(MenuRects, FirstRowKeepsTheStart)
{
    // All that can be seen is on line 79, the first that is looked at: the largest row is 0.
    MenuPicture picture;
    picture.show(1, RED, { 110, 79, 40, 1 });
    EXPECT_EQ(tightened(picture, BOX), (Box{ 110, 150, 50, 80 }));
    EXPECT_EQ(tightened(picture, { 100, 200, 50, 81 }), (Box{ 110, 150, 78, 80 }));
    // A single pixel at the first place changes nothing.
    MenuPicture corner;
    corner.show(1, RED, { 100, 79, 1, 1 });
    EXPECT_EQ(tightened(corner, BOX), BOX);
}

TEST(MenuRects, ScanIsOneLineLowerThanTheBox)
{
    // The later steps look at the lines 50 to 78 of the box; here it is 51 to 79.
    const struct {
        uint64_t line;
        Box tightened;
    } lines[] = {
        { 49, BOX },
        { 50, BOX },
        { 51, { 110, 150, 50, 52 } },
        { 78, { 110, 150, 77, 79 } },
        { 79, { 110, 150, 50, 80 } },
        { 80, BOX },
    };
    for (const auto& c : lines) {
        MenuPicture picture;
        picture.show(1, RED, { 110, c.line, 40, 1 });
        EXPECT_EQ(tightened(picture, BOX), c.tightened) << "line " << c.line;
    }
}

TEST(MenuRects, WhatIsVisible)
{
    for (const auto& c : PIXELS) {
        MenuPicture picture;
        picture.show(1, c.pixel, { 110, 60, 40, 10 });
        EXPECT_EQ(tightened(picture, BOX), c.visible ? (Box{ 110, 150, 59, 70 }) : BOX) << c.what;
    }
}

TEST(MenuRects, ColorAndOwnershipHaveToMeet)
{
    MenuPicture picture;
    picture.own(1, { 110, 60, 40, 10 }).paint(RED, { 120, 55, 60, 10 });
    EXPECT_EQ(tightened(picture, BOX), (Box{ 120, 150, 59, 65 }));   // columns 120 to 149, lines 60 to 64
}

TEST(MenuRects, ButtonsLookForTheirOwnNumber)
{
    MenuPicture picture;
    picture.show(1, RED, { 110, 55, 10, 5 }).show(2, RED, { 130, 60, 10, 5 }).show(200, RED, { 150, 65, 10, 5 });
    const std::vector<Box> boxes(3, BOX);
    const std::vector<Box> expected = { { 110, 120, 54, 60 }, { 130, 140, 59, 65 }, BOX };
    EXPECT_EQ(tightened(picture, boxes), expected);
}

TEST(MenuRects, TheLastOfThirtySixButtons)
{
    MenuPicture picture;
    picture.show(36, RED, { 110, 60, 40, 10 });
    std::vector<Box> expected(36, BOX);
    expected[35] = { 110, 150, 59, 70 };
    EXPECT_EQ(tightened(picture, std::vector<Box>(36, BOX)), expected);
}

TEST(MenuRects, PalHasMoreLines)
{
    MenuPicture picture(PAL_LINES);
    picture.show(1, RED, { 100, 570, 100, 6 });
    EXPECT_EQ(tightened(picture, { 0, 720, 560, 577 }), (Box{ 100, 200, 569, 576 }));
}

TEST(MenuRects, NothingElseChanges)
{
    MenuPicture picture;
    picture.show(1, RED, { 110, 60, 40, 10 }).show(2, RED, { 110, 60, 5, 10 });
    MenuRig rig(picture, { BOX });   // the second button does not count
    MenuRig untouched(picture, { { 115, 150, 59, 70 } });
    untouched.menu.subPicture = rig.menu.subPicture;
    untouched.menu.subPicture32 = rig.menu.subPicture32;
    rig.menu.buttons[1].xStart = untouched.menu.buttons[1].xStart = 100;
    rig.menu.buttons[1].yStart = untouched.menu.buttons[1].yStart = 50;
    ASSERT_EQ(orvTightenButtonRects(rig.standard, &rig.menu), 0u);
    EXPECT_EQ(describe(rig.menu), describe(untouched.menu));
}
