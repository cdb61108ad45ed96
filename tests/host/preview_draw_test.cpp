// preview_draw_test.cpp: the pictures of a menu's preview: highlight, map and links.
#include "host/preview_draw.h"
#include "host/preview_links.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace {

constexpr OrvPreviewColor WHITE = { 255, 255, 255, 15 }, CLEAR = { 255, 255, 255, 0 };

// A menu whose pixel codes are given line by line. Its highlights are clear until a test sets them.
struct TestMenu {
    TestMenu(const std::vector<std::string>& lines, std::vector<OrvPreviewButton> those) : buttons(std::move(those))
    {
        for (const std::string& line : lines) {
            for (const char code : line) codes.push_back(uint8_t(code == '.' ? 0 : code - '0'));
        }
        menu.width = uint32_t(lines[0].size());
        menu.height = uint32_t(lines.size());
        take();
    }
    TestMenu(uint32_t width, uint32_t height, std::vector<OrvPreviewButton> those)
        : codes(size_t(width) * height), buttons(std::move(those))
    {
        menu.width = width;
        menu.height = height;
        take();
    }
    TestMenu(const TestMenu&) = delete;
    TestMenu& operator=(const TestMenu&) = delete;
    void take()
    {
        menu.codes = codes.data();
        menu.buttons = buttons.data();
        menu.buttonCount = uint32_t(buttons.size());
        for (auto& set : menu.colors) {
            for (auto& state : set) std::fill(std::begin(state), std::end(state), CLEAR);
        }
    }

    std::vector<uint8_t> codes;
    std::vector<OrvPreviewButton> buttons;
    OrvMenuPreview menu = {};
};

OrvPreviewButton button(uint32_t xStart, uint32_t xEnd, uint32_t yStart, uint32_t yEnd, uint32_t colorSet = 1)
{
    OrvPreviewButton made = {};
    made.xStart = xStart;
    made.xEnd = xEnd;
    made.yStart = yStart;
    made.yEnd = yEnd;
    made.colorSet = colorSet;
    return made;
}

// A letter for each red value that occurs in a test, '.' for grey.
std::string drawing(const Picture& picture, const std::string& letters, const std::vector<int>& reds)
{
    std::string text;
    for (int64_t y = 0; y < picture.height; y++) {
        for (int64_t x = 0; x < picture.width; x++) {
            const int red = pixelAt(picture, { x, y }).red;
            const auto at = std::find(reds.begin(), reds.end(), red);
            text += red == 128 ? '.' : at == reds.end() ? '?' : letters[size_t(at - reds.begin())];
        }
        text += '\n';
    }
    return text;
}

// ---- highlight ----------------------------------------------------------------------------------------------------

TEST(PreviewDraw, HighlightHasBothCornersOfTheRectangle)
{
    TestMenu test({ "11111111", "11111111", "11111111", "11111111" }, { button(2, 5, 1, 2) });
    test.menu.colors[0][0][1] = WHITE;
    EXPECT_EQ(drawing(drawHighlight(test.menu, BUTTON_SELECTED, 0), "#", { 255 }), "........\n"
                                                                                   "..####..\n"
                                                                                   "..####..\n"
                                                                                   "........\n");
}

// Each code, also 0, by its own colour and contrast: 128 + (red - 128) * contrast / 15.
TEST(PreviewDraw, HighlightTakesTheCodesColours)
{
    TestMenu test({ "01230123", "01230123" }, { button(0, 3, 0, 1, 2) });
    test.menu.colors[1][0][0] = { 248, 0, 0, 1 };    // 136
    test.menu.colors[1][0][1] = { 8, 0, 0, 15 };     // 8
    test.menu.colors[1][0][2] = { 203, 0, 0, 5 };    // 153
    test.menu.colors[1][0][3] = { 255, 0, 0, 0 };    // nothing
    test.menu.colors[1][1][3] = { 250, 0, 0, 15 };   // activated
    test.menu.colors[0][0][3] = { 240, 0, 0, 15 };   // another set
    const std::vector<int> reds = { 136, 8, 153, 250 };
    EXPECT_EQ(drawing(drawHighlight(test.menu, BUTTON_SELECTED, 0), "abcd", reds), "abc.....\nabc.....\n");
    EXPECT_EQ(drawing(drawHighlight(test.menu, BUTTON_ACTIVATED, 0), "abcd", reds), "...d....\n...d....\n");
}

TEST(PreviewDraw, OneButtonAlone)
{
    TestMenu test({ "11111111" }, { button(0, 2, 0, 0, 1), button(2, 4, 0, 0, 2), button(6, 7, 0, 0, 3) });
    test.menu.colors[0][0][1] = { 10, 0, 0, 15 };
    test.menu.colors[1][0][1] = { 20, 0, 0, 15 };
    test.menu.colors[2][0][1] = { 30, 0, 0, 15 };
    const auto shown = [&](uint32_t only) {
        return drawing(drawHighlight(test.menu, BUTTON_SELECTED, only), "123", { 10, 20, 30 });
    };
    EXPECT_EQ(shown(0), "11222.33\n");
    EXPECT_EQ(shown(1), "111.....\n");
    EXPECT_EQ(shown(2), "..222...\n");
    EXPECT_EQ(shown(3), "......33\n");
    EXPECT_EQ(shown(4), "........\n");
}

// Of overlapping buttons the later one lies over the earlier.
TEST(PreviewDraw, OverlappingHighlightsMix)
{
    TestMenu test({ "111" }, { button(0, 1, 0, 0, 1), button(1, 2, 0, 0, 2) });
    test.menu.colors[0][0][1] = { 255, 0, 0, 8 };   // 128 + 127 * 8 / 15 = 195.7
    test.menu.colors[1][0][1] = { 0, 0, 0, 5 };     // 128 * 10 / 15 = 85.3; 196 * 10 / 15 = 130.7
    EXPECT_EQ(drawing(drawHighlight(test.menu, BUTTON_SELECTED, 0), "abc", { 196, 131, 85 }), "abc\n");
}

TEST(PreviewDraw, ShowsNothingOfOddButtons)
{
    TestMenu test({ "1111", "1111" }, { button(1, 2, 0, 1, 0), button(1, 2, 0, 1, 4), button(2, 1, 0, 1, 1),
                                        button(1, 2, 1, 0, 1), button(900, 1000, 0, 1, 1) });
    for (auto& set : test.menu.colors) set[0][1] = WHITE;
    EXPECT_EQ(drawing(drawHighlight(test.menu, BUTTON_SELECTED, 0), "#", { 255 }), "....\n....\n");
    TestMenu wide({ "1111", "1111" }, { button(3, 0xFFFFFFFF, 1, 0xFFFFFFFF, 1) });
    wide.menu.colors[0][0][1] = WHITE;
    EXPECT_EQ(drawing(drawHighlight(wide.menu, BUTTON_SELECTED, 0), "#", { 255 }), "....\n...#\n");
}

// ---- map ----------------------------------------------------------------------------------------------------------

TEST(PreviewDraw, MapShowsTheSubPictureOpaque)
{
    TestMenu test({ ".123", "321." }, {});
    test.menu.palette[0] = { 1, 1, 1, 0 };
    test.menu.palette[1] = { 10, 0, 0, 0 };   // contrast 0: it is what the viewer would not see
    test.menu.palette[2] = { 20, 0, 0, 0 };
    test.menu.palette[3] = { 30, 0, 0, 0 };
    EXPECT_EQ(drawing(drawMenuMap(test.menu), "123", { 10, 20, 30 }), ".123\n321.\n");
}

TEST(PreviewDraw, MapHasFrameAndNumberOfEachButton)
{
    const TestMenu test(100, 60, { button(10, 49, 5, 44), button(60, 89, 10, 49) });
    const Picture map = drawMenuMap(test.menu);
    Picture expected = plainPicture(100, 60, NEUTRAL_GRAY);
    drawFrame(&expected, { 10, 5, 49, 44 }, { 255, 255, 255 });
    drawFrame(&expected, { 60, 10, 89, 49 }, { 255, 255, 255 });
    drawNumber(&expected, { 12, 7 }, 1, { 255, 255, 255 });
    drawNumber(&expected, { 62, 12 }, 2, { 255, 255, 255 });
    EXPECT_EQ(map.rgb, expected.rgb);
}

// A button outside the picture, or without an inside, still has its number where it can be seen.
TEST(PreviewDraw, NumbersStayInThePicture)
{
    const TestMenu test(40, 30, { button(500, 600, 500, 600) });
    Picture expected = plainPicture(40, 30, NEUTRAL_GRAY);
    drawNumber(&expected, { 26, 12 }, 1, { 255, 255, 255 });   // 14 x 18 pixels in the corner
    EXPECT_EQ(drawMenuMap(test.menu).rgb, expected.rgb);
    const TestMenu tiny(4, 4, { button(0, 0, 0, 0) });
    EXPECT_EQ(drawMenuMap(tiny.menu).width, 4);
}

// ---- links --------------------------------------------------------------------------------------------------------

// Two buttons beside each other: 40 pixels lie between them, and their centres are on line 30.
std::vector<OrvPreviewButton> pair()
{
    return { button(10, 50, 10, 50), button(91, 131, 10, 50) };
}

Picture linksOf(const std::vector<OrvPreviewButton>& buttons, uint32_t width = 160, uint32_t height = 120)
{
    const TestMenu test(width, height, buttons);
    Picture picture = plainPicture(width, height, NEUTRAL_GRAY);
    drawLinks(&picture, test.menu);
    return picture;
}

uint64_t countOf(const Picture& picture, Rgb color, Box box = { 0, 0, 1000, 1000 })
{
    uint64_t count = 0;
    const Box inside = clipped(box, picture);
    for (int64_t y = inside.top; y <= inside.bottom; y++) {
        for (int64_t x = inside.left; x <= inside.right; x++) count += pixelAt(picture, { x, y }) == color;
    }
    return count;
}

TEST(PreviewLinks, AnArrowFromEdgeToEdge)
{
    std::vector<OrvPreviewButton> buttons = pair();
    buttons[0].rightLink = 2;
    const Picture picture = linksOf(buttons);
    for (int64_t x = 51; x <= 90; x++) EXPECT_EQ(pixelAt(picture, { x, 30 }), LINK_RIGHT) << x;
    EXPECT_EQ(countOf(picture, LINK_RIGHT, { 0, 0, 50, 119 }), 0u);
    EXPECT_EQ(countOf(picture, LINK_RIGHT, { 91, 0, 159, 119 }), 0u);
    // the head ends 8 pixels behind the tip, 4 above and below; a dark line lies beside the light one
    EXPECT_EQ(pixelAt(picture, { 82, 26 }), LINK_RIGHT);
    EXPECT_EQ(pixelAt(picture, { 82, 34 }), LINK_RIGHT);
    EXPECT_EQ(pixelAt(picture, { 70, 29 }), OUTLINE);
    EXPECT_EQ(pixelAt(picture, { 70, 31 }), OUTLINE);
    EXPECT_EQ(pixelAt(picture, { 70, 28 }), NEUTRAL_GRAY);
    EXPECT_EQ(pixelAt(picture, { 59, 26 }), NEUTRAL_GRAY);   // no head where it begins
}

TEST(PreviewLinks, EachKeyHasItsTint)
{
    for (const auto& [link, tint] : { std::pair{ &OrvPreviewButton::upLink, LINK_UP },
                                      { &OrvPreviewButton::downLink, LINK_DOWN },
                                      { &OrvPreviewButton::leftLink, LINK_LEFT },
                                      { &OrvPreviewButton::rightLink, LINK_RIGHT } }) {
        std::vector<OrvPreviewButton> buttons = pair();
        buttons[1].*link = 1;
        const Picture picture = linksOf(buttons);
        for (int64_t x = 51; x <= 90; x++) EXPECT_EQ(pixelAt(picture, { x, 30 }), tint) << x;
        EXPECT_EQ(pixelAt(picture, { 59, 26 }), tint);   // the head points to button 1
        EXPECT_EQ(pixelAt(picture, { 82, 26 }), NEUTRAL_GRAY);
    }
}

TEST(PreviewLinks, ThereAndBackIsOneArrowWithTwoHeads)
{
    std::vector<OrvPreviewButton> buttons = pair();
    buttons[0].rightLink = 2;
    buttons[1].leftLink = 1;
    const Picture picture = linksOf(buttons);
    EXPECT_EQ(pixelAt(picture, { 55, 30 }), LINK_RIGHT);   // by button 1 the tint of its own key
    EXPECT_EQ(pixelAt(picture, { 86, 30 }), LINK_LEFT);
    EXPECT_EQ(pixelAt(picture, { 59, 26 }), LINK_RIGHT);
    EXPECT_EQ(pixelAt(picture, { 82, 26 }), LINK_LEFT);
    EXPECT_EQ(countOf(picture, LINK_RIGHT, { 51, 20, 90, 40 }) + countOf(picture, LINK_LEFT, { 51, 20, 90, 40 }),
              40u + 4 * 8u);   // the line and four strokes of 8 more pixels each
}

TEST(PreviewLinks, NoArrowToItselfOrToNoButton)
{
    std::vector<OrvPreviewButton> buttons = pair();
    buttons[0].upLink = 1;
    buttons[0].downLink = 3;
    buttons[1].leftLink = 0;
    buttons[1].rightLink = 0xFFFFFFFF;
    EXPECT_EQ(linksOf(buttons).rgb, plainPicture(160, 120, NEUTRAL_GRAY).rgb);
    // nor from or to a button that is not in the picture
    buttons = { button(10, 50, 10, 50), button(500, 600, 10, 50), button(60, 50, 80, 90) };
    buttons[0].rightLink = 2;
    buttons[1].leftLink = 1;
    buttons[2].upLink = 1;
    EXPECT_EQ(linksOf(buttons).rgb, plainPicture(160, 120, NEUTRAL_GRAY).rgb);
}

// Further arrows of a pair lie beside the first.
TEST(PreviewLinks, ArrowsOfOnePairLieApart)
{
    std::vector<OrvPreviewButton> buttons = pair();
    buttons[0].rightLink = 2;
    buttons[0].upLink = 2;
    const Picture picture = linksOf(buttons);
    EXPECT_GE(countOf(picture, LINK_UP), 30u);
    EXPECT_GE(countOf(picture, LINK_RIGHT), 30u);
    EXPECT_EQ(countOf(picture, LINK_RIGHT, { 60, 27, 80, 33 }), 0u);   // up came first and took the straight way
    EXPECT_EQ(countOf(picture, LINK_UP, { 60, 27, 80, 33 }), 21u);
}

// The way round from the last button of a row to the first leads past those between.
TEST(PreviewLinks, ArrowsBendAroundOtherButtons)
{
    std::vector<OrvPreviewButton> buttons = { button(10, 50, 50, 70), button(70, 110, 50, 70),
                                              button(130, 149, 50, 70) };
    buttons[2].rightLink = 1;
    const Picture picture = linksOf(buttons);
    EXPECT_EQ(countOf(picture, LINK_RIGHT, { 67, 47, 113, 73 }), 0u);
    EXPECT_GE(countOf(picture, LINK_RIGHT), 80u);
}

// Buttons that touch leave no room between them, so the arrow reaches into both.
TEST(PreviewLinks, ArrowsOfTouchingButtonsAreSeen)
{
    std::vector<OrvPreviewButton> buttons = { button(10, 50, 10, 50), button(51, 91, 10, 50) };
    buttons[0].rightLink = 2;
    EXPECT_GE(countOf(linksOf(buttons), LINK_RIGHT), 24u);
    buttons = { button(10, 90, 10, 50), button(30, 120, 10, 50) };   // each covers the other's middle
    buttons[0].rightLink = 2;
    EXPECT_GE(countOf(linksOf(buttons), LINK_RIGHT), 24u);
    buttons = { button(10, 90, 10, 50), button(30, 70, 20, 40) };   // one in the middle of the other
    buttons[0].rightLink = 2;
    EXPECT_EQ(countOf(linksOf(buttons), LINK_RIGHT), 0u);
}

// 36 buttons, all linked with each other: nothing is drawn outside, and it comes to an end.
TEST(PreviewLinks, CrowdedMenus)
{
    std::vector<OrvPreviewButton> buttons;
    for (uint32_t i = 0; i < 36; i++) {
        OrvPreviewButton made = button(i * 20, i * 20 + 19, i * 16, i * 16 + 15);
        made.upLink = (i + 7) % 36 + 1;
        made.downLink = (i + 19) % 36 + 1;
        made.leftLink = (i + 31) % 36 + 1;
        made.rightLink = (i + 1) % 36 + 1;
        buttons.push_back(made);
    }
    const Picture picture = linksOf(buttons, 720, 576);
    for (const Rgb tint : { LINK_UP, LINK_DOWN, LINK_LEFT, LINK_RIGHT }) EXPECT_GT(countOf(picture, tint), 100u);
}

}   // namespace
