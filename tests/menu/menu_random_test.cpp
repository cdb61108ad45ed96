// Random menus, small pictures with all kinds of buttons over them: the engine against the plain writing of the rules.
#include "base/memory.h"
#include "base/result.h"
#include "menu/menu_colors.h"
#include "tests/menu/menu_reference.h"
#include "tests/menu/menu_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace {

constexpr int PICTURES = 40, LAYOUTS = 12;

struct Dice {
    std::mt19937_64 engine;

    explicit Dice(uint64_t seed) : engine(seed) {}
    uint64_t below(uint64_t n)
    {
        return engine() % n;
    }
    bool oneIn(uint64_t n)
    {
        return below(n) == 0;
    }
    template <class T> const T& of(const std::vector<T>& list)
    {
        return list[below(list.size())];
    }
};

uint8_t visibleAlpha(Dice& dice)
{
    static const std::vector<uint8_t> borders = { 32, 33, 106, 107, 181, 182, 255 };
    return dice.oneIn(2) ? dice.of(borders) : uint8_t(32 + dice.below(224));
}

uint8_t transparentAlpha(Dice& dice)
{
    static const std::vector<uint8_t> borders = { 0, 1, 30, 31 };
    return dice.of(borders);
}

// Colours that a picture is painted in; the last of them look like the first, but are transparent.
std::vector<Rgba> randomColors(Dice& dice)
{
    static const std::vector<uint64_t> numbers = { 0, 1, 1, 2, 2, 2, 3, 3, 3, 4, 5, 6, 12 };
    std::vector<Rgba> colors;
    const uint64_t number = dice.of(numbers);
    for (uint64_t i = 0; i < number; i++) {
        const Rgba color = { uint8_t(dice.below(256)), uint8_t(dice.below(256)), uint8_t(dice.below(256)),
                             visibleAlpha(dice) };
        colors.push_back(dice.oneIn(6) ? withAlpha(BLACK, color.alpha) : color);
    }
    if (number > 1 && dice.oneIn(3)) colors.push_back(withAlpha(colors[0], visibleAlpha(dice)));
    if (number > 1 && dice.oneIn(3)) colors.push_back(withAlpha(colors[1], transparentAlpha(dice)));
    colors.push_back({ uint8_t(dice.below(256)), 1, 2, transparentAlpha(dice) });
    colors.push_back(CLEAR);
    return colors;
}

struct RandomPicture {
    MenuPicture picture;
    std::vector<Area> areas;   // where the buttons are
};

Rgba randomPixel(Dice& dice)
{
    return { uint8_t(dice.below(256)), uint8_t(dice.below(256)), uint8_t(dice.below(256)), uint8_t(dice.below(256)) };
}

/** Fills a button's area with one colour, two by lines or by columns, all of them, or with a colour for each pixel. */
void paintButton(Dice& dice, MenuPicture& picture, uint8_t number, const Area& area, const std::vector<Rgba>& colors)
{
    const uint64_t pattern = dice.below(colors.size() > 6 ? 6 : 5), holes = dice.oneIn(3) ? 5 : 100000;
    const Rgba first = dice.of(colors), second = dice.of(colors);
    for (uint64_t line = area.line; line < area.line + area.height; line++) {
        for (uint64_t x = area.x; x < area.x + area.width; x++) {
            Rgba pixel = first;
            if (pattern == 1 && line % 2) pixel = second;
            if (pattern == 2 && (x - area.x) * 3 > area.width) pixel = second;
            if (pattern >= 3) pixel = dice.of(colors);
            if (pattern == 5) pixel = randomPixel(dice);
            if (!dice.oneIn(holes)) picture.collision.at(x, line) = number;
            picture.alpha.at(x, line) = pixel;
        }
    }
    // A line or a column that belongs to the button and can't be seen.
    const Rgba ghost = colors[colors.size() - 2];
    if (dice.oneIn(3)) picture.paint(ghost, { area.x, area.line, area.width, 1 });
    if (dice.oneIn(5)) picture.paint(ghost, { area.x, area.line, 1, area.height });
}

/** Buttons in the cells of a grid, two of which touch the picture's edges; then, in some, disorder. */
RandomPicture randomPicture(Dice& dice, uint64_t lines)
{
    RandomPicture made = { MenuPicture(lines), {} };
    const std::vector<Rgba> colors = randomColors(dice);
    if (dice.oneIn(3)) made.picture.paint(colors[colors.size() - 2], { 0, 0, 720, lines });
    const uint64_t buttons = 1 + dice.below(6);
    for (uint64_t i = 0; i < buttons; i++) {
        Area area = { i % 3 * 230 + 40 + dice.below(80), i / 3 * 220 + 40 + dice.below(60), 1 + dice.below(40),
                      1 + dice.below(30) };
        if (i == 0 && dice.oneIn(3)) area.x = area.line = 0;
        if (i == 5 && dice.oneIn(2)) area.x = 720 - area.width, area.line = lines - area.height;
        const uint8_t number = uint8_t(dice.oneIn(10) ? dice.below(256) : i + 1);
        paintButton(dice, made.picture, number, area, colors);
        made.areas.push_back(area);
    }
    const uint64_t disorder = dice.oneIn(3) ? 1 + dice.below(6) : 0;
    for (uint64_t i = 0; i < disorder; i++) {
        const Area& over = dice.of(made.areas);
        const Area area = { over.x + dice.below(20), over.line + dice.below(20), 1 + dice.below(20),
                            1 + dice.below(20) };
        const Area inside = { std::min<uint64_t>(area.x, 699), std::min<uint64_t>(area.line, lines - 20), area.width,
                              area.height };
        paintButton(dice, made.picture, uint8_t(1 + dice.below(7)), inside, colors);
    }
    for (uint64_t i = 0; i < colors.size(); i++) {
        if (dice.oneIn(3)) made.picture.paint(colors[i], { dice.below(700), dice.below(lines), 1 + dice.below(20), 1 });
    }
    return made;
}

uint64_t lessOrNone(uint64_t value, uint64_t by)
{
    return value > by ? value - by : 0;
}

/** A box around an area; wild ones are anything. */
Box randomBox(Dice& dice, const Area& area, bool wild)
{
    const uint64_t left = dice.below(6), right = dice.below(6), above = dice.below(6), below = dice.below(6);
    Box box = { lessOrNone(area.x, left), area.x + area.width + right, lessOrNone(area.line, above),
                area.line + area.height + below };
    if (!wild) return box;
    switch (dice.below(14)) {
    case 0: std::swap(box.xStart, box.xEnd); break;
    case 1: std::swap(box.yStart, box.yEnd); break;
    case 2: box.xEnd = box.xStart + dice.below(3); break;
    case 3: box.yEnd = box.yStart + dice.below(3); break;
    case 4: return { 0, 720, 0, 576 };
    case 5: box.xStart = 0, box.xEnd = 720 + dice.below(3); break;
    case 6: box.yStart = 0, box.yEnd = 480 + dice.below(200); break;
    case 7: return { 710, 740, 470, 600 };
    case 8: return { 720 + dice.below(100), 900, 100, 200 };
    case 9: return { area.x, 0xFFFFFFFF, area.line, 0xFFFFFFFF };
    case 10: return { 0xFFFFFFF0 + dice.below(16), dice.below(720), 0xFFFFFFF0, 0xFFFFFFFF };
    case 11: box.xStart = area.x + dice.below(area.width), box.yStart = area.line + dice.below(area.height); break;
    case 12: box.xEnd += 230, box.yEnd += dice.below(2) * 220; break;
    default: return { dice.below(730), dice.below(730), dice.below(580), dice.below(580) };
    }
    return box;
}

std::vector<Box> randomBoxes(Dice& dice, const std::vector<Area>& areas)
{
    std::vector<Box> boxes;
    const bool wild = dice.oneIn(2);
    const uint64_t count = dice.oneIn(4) ? dice.below(9) : areas.size();
    for (uint64_t i = 0; i < count; i++) {
        const Area& area = i < areas.size() ? areas[i] : dice.of(areas);
        boxes.push_back(randomBox(dice, area, wild && dice.oneIn(3)));
    }
    return boxes;
}

std::vector<std::pair<uint64_t, uint64_t>> pairs(const ColorCount* list, uint64_t count)
{
    std::vector<std::pair<uint64_t, uint64_t>> entries;
    for (uint64_t i = 0; i < count; i++) entries.push_back({ list[i].count, list[i].value });
    return entries;
}

void compareCensus(const MenuRig& rig, const ReferencePicture& picture)
{
    const Bytes pixels = storedPixels(picture.alpha);
    ColorCount* list = nullptr;
    ASSERT_EQ(orvCountBitmapColors(pixels.data(), 32, 0, 0, 720, picture.alpha.height, 0, &list), 0u);
    EXPECT_EQ(pairs(list, osListCount(list)), pairs(picture.census.data(), picture.census.size()));
    osFreeMem(&list);
    const uint64_t color = picture.census.back().value;
    const Counts alphas = referenceAlphas(picture, color);
    uint64_t distinct = 0, alpha = 0;
    ASSERT_EQ(orvMostCommonAlpha(rig.standard, &rig.menu, color, &distinct, &alpha), 0u);
    EXPECT_EQ(distinct, alphas.size());
    EXPECT_EQ(alpha, alphas.empty() ? 0 : alphas[0].value);
}

void compareButtonColors(Dice& dice, MenuRig& rig, const ReferencePicture& picture)
{
    for (ButtonDesc& button : rig.menu.buttons) button.color = dice.below(4);
    const uint64_t filter = dice.below(4);
    uint64_t count = 0;
    ColorCount* list = nullptr;
    ASSERT_EQ(orvCensusButtonColors(rig.standard, &rig.menu, filter, &count, &list), 0u);
    const Counts expected = referenceButtonColors(picture, rig.menu, filter);
    EXPECT_EQ(pairs(list, count), pairs(expected.data(), expected.size()));
    osFreeMem(&list);
}

std::string textOf(const std::vector<Box>& boxes)
{
    std::ostringstream text;
    for (const Box& box : boxes) text << box << "; ";
    return text.str();
}

/** One menu; whether the engine makes of it what the rules do. */
bool sameMenu(MenuRig& rig, const std::vector<Box>& boxes, const ReferencePicture& picture, WaysGone* ways)
{
    rig.setBoxes(boxes);
    MenuDesc expected = rig.menu;
    const uint64_t result = referencePrepare(picture, &expected, ways);
    EXPECT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), result) << textOf(boxes);
    // Where a run fails, the menu may be half done.
    if (!result) {
        EXPECT_EQ(describe(rig.menu), describe(expected)) << textOf(boxes);
    }
    return !testing::Test::HasFailure();
}

}   // namespace

TEST(MenuRandom, WholeMenus)
{
    WaysGone ways;
    for (int i = 0; i < PICTURES; i++) {
        SCOPED_TRACE("picture " + std::to_string(i));
        Dice dice(7000 + uint64_t(i));
        const RandomPicture made = randomPicture(dice, i % 8 == 7 ? PAL_LINES : NTSC_LINES);
        const ReferencePicture picture(made.picture.collision, made.picture.alpha);
        MenuRig rig(made.picture, {});
        compareCensus(rig, picture);
        for (int layout = 0; layout < LAYOUTS; layout++) {
            const std::vector<Box> boxes = randomBoxes(dice, made.areas);
            ASSERT_TRUE(sameMenu(rig, boxes, picture, &ways)) << "layout " << layout;
            compareButtonColors(dice, rig, picture);
        }
    }
    // Each way through the rules was gone a few times.
    const char* const ALL[] = {
        "overlap",
        "overlap, many colours",
        "set two",
        "census of 1",
        "census of 2",
        "census of 3",
        "census of 4",
        "census of 5",
        "three colours settled",
        "empty box",
        "previous index kept",
        "last of two entries",
        "black stepped over",
        "black at the list's end",
        "fewer than three picks",
        "colour of several alphas",
        "colours equally common",
    };
    for (const char* way : ALL) EXPECT_GE(ways[way], 3u) << way;
}
