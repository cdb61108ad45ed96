// The steps of the menu pipeline that count and look up colours, each by itself; and what each says to bad bitmaps.
#include "base/memory.h"
#include "base/result.h"
#include "menu/menu_colors.h"
#include "tests/menu/menu_reference.h"
#include "tests/menu/menu_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t UNTOUCHED = 77;

// "25xE01020 16x11D022".
std::string text(const ColorCount* list)
{
    std::string all;
    for (uint64_t i = 0; i < osListCount(list); i++) {
        const uint8_t value[3] = { uint8_t(list[i].value >> 16), uint8_t(list[i].value >> 8), uint8_t(list[i].value) };
        all += (i ? " " : "") + std::to_string(list[i].count) + "x" + toHex(value, 3);
    }
    return all;
}

std::string buttonColors(MenuRig& rig, uint64_t filter)
{
    uint64_t count = UNTOUCHED;
    ColorCount* list = nullptr;
    EXPECT_EQ(orvCensusButtonColors(rig.standard, &rig.menu, filter, &count, &list), 0u);
    EXPECT_EQ(count, osListCount(list));
    const std::string found = text(list);
    osFreeMem(&list);
    return found;
}

// Boxes are taken as they are: the columns 100 to 118 of the lines 50 to 68; the same 100 columns further.
constexpr Box LEFT = { 100, 120, 50, 70 }, RIGHT = { 200, 220, 50, 70 };

const struct {
    const char* what;
    std::vector<std::pair<uint8_t, Area>> owned;
    std::vector<std::pair<Rgba, Area>> painted;
    std::vector<Box> boxes;
    std::vector<uint64_t> sets;   // colour sets of the buttons
    uint64_t filter;
    const char* found;
} BUTTON_COLORS[] = {
    { "its own pixels",
      { { 1, { 100, 50, 5, 2 } }, { 2, { 105, 50, 5, 2 } } },
      { { RED, { 100, 50, 4, 2 } }, { GREEN, { 104, 50, 6, 2 } } },
      { LEFT },
      { 1 },
      0,
      "8xE0 10 20 2x11 D0 22" },
    { "lower lines first",
      { { 1, { 100, 50, 5, 2 } } },
      { { RED, { 100, 50, 5, 1 } }, { GREEN, { 100, 51, 5, 1 } } },
      { LEFT },
      { 1 },
      0,
      "5x11 D0 22 5xE0 10 20" },
    { "transparent and black ones too",
      { { 1, { 100, 50, 4, 1 } } },
      { { CLEAR, { 100, 50, 1, 1 } },
        { withAlpha(RED, 3), { 101, 50, 1, 1 } },
        { BLACK, { 102, 50, 1, 1 } },
        { RED, { 103, 50, 1, 1 } } },
      { LEFT },
      { 1 },
      0,
      "2x00 00 00 2xE0 10 20" },
    { "within the box alone",   // 19 x 19 of them
      { { 1, { 90, 40, 50, 50 } } },
      { { RED, { 90, 40, 50, 50 } } },
      { LEFT },
      { 1 },
      0,
      "361xE0 10 20" },
    { "none", { { 2, { 90, 40, 50, 50 } } }, { { RED, { 90, 40, 50, 50 } } }, { LEFT }, { 1 }, 0, "" },
    { "no button", { { 1, { 90, 40, 50, 50 } } }, { { RED, { 90, 40, 50, 50 } } }, {}, {}, 0, "" },
    { "an empty box", { { 1, { 90, 40, 50, 50 } } }, {}, { { 100, 120, 50, 51 } }, { 1 }, 0, "" },
    { "no columns", { { 1, { 90, 40, 50, 50 } } }, {}, { { 120, 100, 50, 70 } }, { 1 }, 0, "" },
    { "two buttons, in their order",
      { { 1, { 100, 50, 5, 1 } }, { 2, { 200, 60, 5, 1 } } },
      { { RED, { 100, 50, 3, 1 } },
        { GREEN, { 103, 50, 2, 1 } },
        { BLUE, { 200, 60, 1, 1 } },
        { GREEN, { 201, 60, 4, 1 } } },
      { LEFT, RIGHT },
      { 1, 1 },
      0,
      "3xE0 10 20 6x11 D0 22 1x12 23 C0" },
    { "two in one box",
      { { 1, { 100, 50, 5, 1 } }, { 2, { 100, 60, 5, 1 } } },
      { { RED, { 100, 50, 5, 1 } }, { GREEN, { 100, 60, 5, 1 } } },
      { LEFT, LEFT },
      { 1, 1 },
      0,
      "5xE0 10 20 5x11 D0 22" },
    { "of set 1",
      { { 1, { 100, 50, 5, 1 } }, { 2, { 200, 60, 5, 1 } }, { 3, { 100, 60, 7, 1 } } },
      { { RED, { 100, 50, 5, 1 } }, { GREEN, { 200, 60, 5, 1 } }, { RED, { 100, 60, 7, 1 } } },
      { LEFT, RIGHT, LEFT },
      { 1, 2, 1 },
      1,
      "12xE0 10 20" },
    { "of set 2",
      { { 1, { 100, 50, 5, 1 } }, { 2, { 200, 60, 5, 1 } }, { 3, { 100, 60, 7, 1 } } },
      { { RED, { 100, 50, 5, 1 } }, { GREEN, { 200, 60, 5, 1 } }, { RED, { 100, 60, 7, 1 } } },
      { LEFT, RIGHT, LEFT },
      { 1, 2, 1 },
      2,
      "5x11 D0 22" },
    { "of set 3, that no button has",
      { { 1, { 100, 50, 5, 1 } } },
      { { RED, { 100, 50, 5, 1 } } },
      { LEFT },
      { 1 },
      3,
      "" },
    { "partly outside",
      { { 1, { 700, 470, 20, 10 } } },
      { { RED, { 700, 470, 20, 10 } } },
      { { 710, 800, 475, 500 } },   // 10 x 5 of them
      { 1 },
      0,
      "50xE0 10 20" },
};

const struct {
    const char* what;
    std::vector<std::pair<uint8_t, uint64_t>> red;   // alphas from the bottom on, and how many pixels have each
    uint64_t distinct, alpha;
} ALPHAS[] = {
    { "none", {}, 0, 0 },
    { "one", { { 200, 1 } }, 1, 200 },
    { "transparent", { { 31, 5 } }, 1, 31 },
    { "alpha 0", { { 0, 5 } }, 1, 0 },
    { "the most common", { { 200, 10 }, { 100, 11 }, { 50, 9 } }, 3, 100 },
    { "transparent, the most common", { { 200, 10 }, { 0, 11 } }, 2, 0 },
    { "an alpha met again", { { 200, 6 }, { 100, 10 }, { 200, 6 } }, 2, 200 },
    // Equally common ones, in the order of the quicksort.
    { "two alike", { { 200, 10 }, { 100, 10 } }, 2, 100 },
    { "three alike", { { 200, 10 }, { 100, 10 }, { 50, 10 } }, 3, 100 },
    { "two alike behind a rare one", { { 60, 1 }, { 200, 10 }, { 100, 10 } }, 3, 200 },   // first 100, 200, 60
    { "two alike before a rare one", { { 200, 10 }, { 100, 10 }, { 60, 1 } }, 3, 100 },
};

const Rgba PALE = { 0x66, 0x55, 0x44, 0xFF };

// Entries of a census, by their values.
const std::vector<uint64_t> LIST = { 0, colorValue(RED), colorValue(GREEN), colorValue(BLUE) };

const struct {
    const char* what;
    std::vector<std::pair<uint8_t, Area>> owned;
    std::vector<std::pair<Rgba, Area>> painted;
    Box box;
    std::vector<uint64_t> list;
    uint64_t result, index;
} LOOKUPS[] = {
    { "a colour", { { 1, { 105, 55, 3, 3 } } }, { { GREEN, { 105, 55, 3, 3 } } }, LEFT, LIST, 0, 2 },
    { "the uppermost pixel",
      { { 1, { 105, 55, 3, 3 } } },
      { { GREEN, { 105, 55, 3, 1 } }, { RED, { 105, 56, 3, 2 } } },
      LEFT,
      LIST,
      0,
      2 },
    { "the leftmost of its line",
      { { 1, { 105, 55, 3, 3 } } },
      { { GREEN, { 105, 55, 3, 3 } }, { BLUE, { 105, 55, 1, 1 } } },
      LEFT,
      LIST,
      0,
      3 },
    { "a pixel of any owner",
      { { 1, { 105, 55, 3, 3 } }, { 200, { 110, 54, 1, 1 } } },
      { { GREEN, { 105, 55, 3, 3 } }, { BLUE, { 110, 54, 1, 1 } } },
      LEFT,
      LIST,
      0,
      3 },
    { "what nobody owns is passed",
      { { 1, { 105, 55, 3, 3 } } },
      { { BLUE, { 100, 50, 19, 19 } }, { RED, { 105, 55, 3, 3 } } },
      LEFT,
      LIST,
      0,
      1 },
    { "a transparent pixel's colour",
      { { 1, { 105, 55, 3, 3 } } },
      { { withAlpha(BLUE, 0), { 105, 55, 3, 3 } } },
      LEFT,
      LIST,
      0,
      3 },
    { "transparent black", { { 1, { 105, 55, 3, 3 } } }, {}, LEFT, LIST, 0, 0 },
    { "the last of several entries",
      { { 1, { 105, 55, 3, 3 } } },
      { { RED, { 105, 55, 3, 3 } } },
      LEFT,
      { 0, colorValue(RED), colorValue(RED), colorValue(BLUE) },
      0,
      2 },
    { "black is listed behind what is transparent",
      { { 1, { 105, 55, 3, 3 } } },
      { { BLACK, { 105, 55, 3, 3 } } },
      LEFT,
      { 0, colorValue(RED), 0, colorValue(BLUE) },
      0,
      2 },
    { "a colour that is not listed",
      { { 1, { 105, 55, 3, 3 } } },
      { { PALE, { 105, 55, 3, 3 } } },
      LEFT,
      LIST,
      0,
      UNTOUCHED },
    // Borders of the box: columns 100 to 118, lines 50 to 68.
    { "first corner", { { 1, { 100, 50, 1, 1 } } }, { { RED, { 100, 50, 1, 1 } } }, LEFT, LIST, 0, 1 },
    { "last corner", { { 1, { 118, 68, 1, 1 } } }, { { RED, { 118, 68, 1, 1 } } }, LEFT, LIST, 0, 1 },
    { "left of it", { { 1, { 99, 60, 1, 1 } } }, {}, LEFT, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    { "right of it", { { 1, { 119, 60, 1, 1 } } }, {}, LEFT, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    { "above it", { { 1, { 110, 49, 1, 1 } } }, {}, LEFT, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    { "below it", { { 1, { 110, 69, 1, 1 } } }, {}, LEFT, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    { "nobody's pixels", {}, {}, LEFT, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    // Boxes without lines or columns, in a picture that the button owns.
    { "no lines", { { 1, { 0, 0, 720, 480 } } }, {}, { 100, 120, 50, 51 }, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    { "end is start", { { 1, { 0, 0, 720, 480 } } }, {}, { 100, 120, 50, 50 }, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    { "upside down", { { 1, { 0, 0, 720, 480 } } }, {}, { 100, 120, 70, 50 }, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    { "no columns", { { 1, { 0, 0, 720, 480 } } }, {}, { 100, 101, 50, 70 }, LIST, ORV_BUTTON_RECT_EMPTY, UNTOUCHED },
    { "right to left",
      { { 1, { 0, 0, 720, 480 } } },
      {},
      { 120, 100, 50, 70 },
      LIST,
      ORV_BUTTON_RECT_EMPTY,
      UNTOUCHED },
    { "one pixel", { { 1, { 100, 50, 1, 1 } } }, { { RED, { 100, 50, 1, 1 } } }, { 100, 102, 50, 52 }, LIST, 0, 1 },
    // The picture's edges.
    { "right of the picture",
      { { 1, { 0, 0, 720, 480 } } },
      {},
      { 720, 800, 0, 480 },
      LIST,
      ORV_BUTTON_RECT_EMPTY,
      UNTOUCHED },
    { "below the picture",
      { { 1, { 0, 0, 720, 480 } } },
      {},
      { 0, 720, 480, 600 },
      LIST,
      ORV_BUTTON_RECT_EMPTY,
      UNTOUCHED },
    { "partly outside",
      { { 1, { 719, 479, 1, 1 } } },
      { { GREEN, { 719, 479, 1, 1 } } },
      { 700, 0xFFFFFFFF, 400, 0xFFFFFFFF },
      LIST,
      0,
      2 },
};

template <class Picture> MenuPicture drawn(const Picture& c)
{
    MenuPicture picture;
    for (const auto& [button, area] : c.owned) picture.own(button, area);
    for (const auto& [pixel, area] : c.painted) picture.paint(pixel, area);
    return picture;
}

// Steps by name; those that look at one bitmap alone do not mind the other.
enum Step { PREPARE, TIGHTEN, OVERLAP, CENSUS, ALPHA, LOOKUP };

uint64_t run(Step step, MenuRig& rig)
{
    uint64_t number = 0;
    ColorCount* list = nullptr;
    const uint64_t lines = rig.standard == 1 ? PAL_LINES : NTSC_LINES;
    const Bytes pixels(720 * lines * 4);
    uint64_t result = 0;
    switch (step) {
    case PREPARE: return orvPrepareMenuColors(rig.standard, &rig.menu);
    case TIGHTEN: return orvTightenButtonRects(rig.standard, &rig.menu);
    case OVERLAP: return orvFindButtonOverlap(rig.standard, &rig.menu, &number);
    case CENSUS:
        result = orvCensusButtonColors(rig.standard, &rig.menu, 0, &number, &list);
        osFreeMem(&list);
        return result;
    case ALPHA: return orvMostCommonAlpha(rig.standard, &rig.menu, colorValue(RED), &number, &number);
    case LOOKUP:
        EXPECT_EQ(osAllocMem(sizeof(ColorCount), &list), 0u);
        result = orvFindButtonColor(list, pixels.data(), rig.standard, &rig.menu, 0, 720, lines, &number);
        osFreeMem(&list);
        return result;
    }
    return 0;
}

enum Bitmap { GOOD, WRONG_DEPTH, WRONG_SIZE, NOT_THERE };

// clang-format off
const struct {
    Step step;
    Bitmap collision, alpha;
    uint64_t result;
} FAULTS[] = {
    // step      collision    alpha
    { PREPARE,  GOOD,        GOOD,        0 },
    { PREPARE,  WRONG_DEPTH, GOOD,        ORV_COLLISION_BITMAP_NOT_8BIT },
    { PREPARE,  GOOD,        WRONG_DEPTH, ORV_ALPHA_BITMAP_NOT_32BIT },
    { PREPARE,  WRONG_DEPTH, WRONG_DEPTH, ORV_COLLISION_BITMAP_NOT_8BIT },
    { PREPARE,  WRONG_DEPTH, WRONG_SIZE,  ORV_COLLISION_BITMAP_NOT_8BIT },
    { PREPARE,  WRONG_DEPTH, NOT_THERE,   ORV_COLLISION_BITMAP_NOT_8BIT },
    { PREPARE,  WRONG_SIZE,  WRONG_DEPTH, ORV_INVALID_ARGUMENT },
    { PREPARE,  GOOD,        WRONG_SIZE,  ORV_INVALID_ARGUMENT },
    { TIGHTEN,  WRONG_DEPTH, GOOD,        ORV_COLLISION_BITMAP_NOT_8BIT },
    { TIGHTEN,  GOOD,        WRONG_DEPTH, ORV_ALPHA_BITMAP_NOT_32BIT },
    { TIGHTEN,  WRONG_DEPTH, WRONG_DEPTH, ORV_COLLISION_BITMAP_NOT_8BIT },
    { TIGHTEN,  WRONG_DEPTH, NOT_THERE,   ORV_COLLISION_BITMAP_NOT_8BIT },
    { TIGHTEN,  WRONG_SIZE,  WRONG_DEPTH, ORV_INVALID_ARGUMENT },
    { OVERLAP,  WRONG_DEPTH, GOOD,        ORV_COLLISION_BITMAP_NOT_8BIT },
    { OVERLAP,  WRONG_SIZE,  GOOD,        ORV_INVALID_ARGUMENT },
    { OVERLAP,  GOOD,        WRONG_DEPTH, 0 },
    { OVERLAP,  GOOD,        NOT_THERE,   0 },
    { CENSUS,   WRONG_DEPTH, GOOD,        ORV_COLLISION_BITMAP_NOT_8BIT },
    { CENSUS,   GOOD,        WRONG_DEPTH, ORV_ALPHA_BITMAP_NOT_32BIT },
    { CENSUS,   WRONG_DEPTH, NOT_THERE,   ORV_COLLISION_BITMAP_NOT_8BIT },
    { CENSUS,   WRONG_SIZE,  WRONG_DEPTH, ORV_INVALID_ARGUMENT },
    { ALPHA,    GOOD,        WRONG_DEPTH, ORV_ALPHA_BITMAP_NOT_32BIT },
    { ALPHA,    GOOD,        WRONG_SIZE,  ORV_INVALID_ARGUMENT },
    { ALPHA,    WRONG_DEPTH, GOOD,        0 },
    { ALPHA,    NOT_THERE,   GOOD,        0 },
    { LOOKUP,   GOOD,        GOOD,        0 },
    { LOOKUP,   WRONG_DEPTH, GOOD,        ORV_COLLISION_BITMAP_NOT_8BIT },
    { LOOKUP,   WRONG_SIZE,  GOOD,        ORV_INVALID_ARGUMENT },
    { LOOKUP,   GOOD,        NOT_THERE,   0 },
};
// clang-format on

void spoil(MenuRig& rig, Bitmap collision, Bitmap alpha)
{
    if (collision == WRONG_DEPTH) writeFile(rig.collisionPath, bmpFile(AlphaImage(NTSC_LINES)));
    if (collision == WRONG_SIZE) writeFile(rig.collisionPath, bmpFile(ByteImage(PAL_LINES)));
    if (collision == NOT_THERE) rig.collisionPath.back() = u'x';
    if (alpha == WRONG_DEPTH) writeFile(rig.alphaPath, bmpFile(ByteImage(NTSC_LINES)));
    if (alpha == WRONG_SIZE) writeFile(rig.alphaPath, bmpFile(AlphaImage(PAL_LINES)));
    if (alpha == NOT_THERE) rig.alphaPath.back() = u'x';
}

}   // namespace

TEST(MenuSteps, ColorsOfButtons)
{
    for (const auto& c : BUTTON_COLORS) {
        MenuRig rig(drawn(c), c.boxes);
        for (uint64_t i = 0; i < c.sets.size(); i++) rig.menu.buttons[i].color = c.sets[i];
        EXPECT_EQ(buttonColors(rig, c.filter), c.found) << c.what;
    }
}

TEST(MenuSteps, TheNumberOfColorsIsNotAskedForAlways)
{
    MenuPicture picture;
    picture.show(1, RED, { 100, 50, 5, 1 });
    MenuRig rig(picture, { LEFT });
    ColorCount* list = nullptr;
    ASSERT_EQ(orvCensusButtonColors(rig.standard, &rig.menu, 0, nullptr, &list), 0u);
    EXPECT_EQ(text(list), "5xE0 10 20");
    osFreeMem(&list);
}

TEST(MenuSteps, AlphasOfAColor)
{
    for (const auto& c : ALPHAS) {
        MenuPicture picture;
        uint64_t line = NTSC_LINES;
        for (const auto& [alpha, count] : c.red) picture.paint(withAlpha(RED, alpha), { 0, --line, count, 1 });
        picture.paint(withAlpha(GREEN, 255), { 100, 100, 100, 100 });
        MenuRig rig(picture, {});
        uint64_t distinct = UNTOUCHED, alpha = UNTOUCHED;
        ASSERT_EQ(orvMostCommonAlpha(rig.standard, &rig.menu, colorValue(RED), &distinct, &alpha), 0u) << c.what;
        EXPECT_EQ(distinct, c.distinct) << c.what;
        EXPECT_EQ(alpha, c.alpha) << c.what;
    }
}

TEST(MenuSteps, AlphasOfBlack)
{
    MenuPicture picture;
    picture.paint(BLACK, { 0, 0, 720, 241 });   // more than half the picture; the rest is black of alpha 0
    MenuRig rig(picture, {});
    uint64_t distinct = UNTOUCHED, alpha = UNTOUCHED;
    ASSERT_EQ(orvMostCommonAlpha(rig.standard, &rig.menu, 0, &distinct, &alpha), 0u);
    EXPECT_EQ(distinct, 2u);
    EXPECT_EQ(alpha, 255u);
}

TEST(MenuSteps, LookUpAButtonsColor)
{
    for (const auto& c : LOOKUPS) {
        const MenuPicture picture = drawn(c);
        MenuRig rig(picture, { { 1, 2, 3, 4 }, c.box });   // the second button's
        Counts entries;
        for (const uint64_t value : c.list) entries.push_back({ 5, value });
        ColorCount* list = nullptr;
        ASSERT_EQ(osAllocMemCopy(entries.data(), 0, entries.size() * sizeof(ColorCount), &list), 0u);
        const Bytes pixels = storedPixels(picture.alpha);
        uint64_t index = UNTOUCHED;
        EXPECT_EQ(orvFindButtonColor(list, pixels.data(), rig.standard, &rig.menu, 1, 720, 480, &index), c.result)
            << c.what;
        EXPECT_EQ(index, c.index) << c.what;
        osFreeMem(&list);
    }
}

TEST(MenuSteps, BadBitmaps)
{
    for (const auto& c : FAULTS) {
        MenuPicture picture;
        picture.show(1, RED, { 105, 55, 5, 5 });
        MenuRig rig(picture, { LEFT });
        spoil(rig, c.collision, c.alpha);
        EXPECT_EQ(run(c.step, rig), c.result) << "step " << c.step << ", bitmaps " << c.collision << ", " << c.alpha;
    }
}

TEST(MenuSteps, BitmapsAreReadForMenusWithoutButtonsToo)
{
    for (const Step step : { PREPARE, TIGHTEN, OVERLAP, CENSUS }) {
        MenuRig rig(MenuPicture(), {});
        spoil(rig, WRONG_DEPTH, GOOD);
        EXPECT_EQ(run(step, rig), ORV_COLLISION_BITMAP_NOT_8BIT) << step;
    }
    for (const Step step : { PREPARE, TIGHTEN, CENSUS, ALPHA }) {
        MenuRig rig(MenuPicture(), {});
        spoil(rig, GOOD, WRONG_DEPTH);
        EXPECT_EQ(run(step, rig), ORV_ALPHA_BITMAP_NOT_32BIT) << step;
    }
}

TEST(MenuSteps, AMissingBitmapHasThePlatformsNumber)
{
    for (const Step step : { PREPARE, TIGHTEN, OVERLAP, CENSUS, LOOKUP }) {
        MenuRig rig(MenuPicture(), { LEFT });
        spoil(rig, NOT_THERE, WRONG_DEPTH);
        EXPECT_EQ(run(step, rig), 2u) << step;   // both platforms' number of a file that isn't there
    }
    for (const Step step : { PREPARE, TIGHTEN, CENSUS, ALPHA }) {
        MenuRig rig(MenuPicture(), { LEFT });
        spoil(rig, GOOD, NOT_THERE);
        EXPECT_EQ(run(step, rig), 2u) << step;
    }
}
