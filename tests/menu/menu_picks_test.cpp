// The three colours that a menu of many keeps: the most used within its buttons, each with its most common alpha.
#include "base/result.h"
#include "menu/menu_colors.h"
#include "tests/menu/menu_rig.h"

#include <gtest/gtest.h>

namespace {

const std::string NONE = "00 00 00 00", IS_RED = "FF E0 10 20", IS_GREEN = "FF 11 D0 22", IS_BLUE = "FF 12 23 C0",
                  IS_YELLOW = "FF F1 F2 13";

// A button for menus of many colours, whose pixels are counted one by one. Its right column and its lowest line, of a
// colour of their own, keep the rectangle; the columns 110 to 150 of the lines up to 90 are counted.
const Rgba FRAME = { 0x77, 0x78, 0x79, 0xFF };
constexpr uint64_t COUNTED_COLUMNS = 41, COUNTED_BOTTOM = 90;
constexpr Box COUNTED_BOX = { 100, 200, 50, 100 };

struct Some {
    Rgba pixel;
    uint64_t count;
};

/** Fills the button and the picture's lowest lines in the order in which a census meets them. */
MenuPicture countedPicture(const std::vector<Some>& inButton, const std::vector<Some>& elsewhere, Rgba ground = CLEAR)
{
    MenuPicture picture;
    picture.paint(ground, { 0, 0, 720, NTSC_LINES });
    picture.show(1, FRAME, { 151, 60, 1, 32 }).show(1, FRAME, { 110, 91, 42, 1 });
    uint64_t at = 0;
    for (const Some& some : inButton) {
        for (uint64_t i = 0; i < some.count; i++, at++) {
            picture.show(1, some.pixel, { 110 + at % COUNTED_COLUMNS, COUNTED_BOTTOM - at / COUNTED_COLUMNS, 1, 1 });
        }
    }
    at = 0;
    for (const Some& some : elsewhere) {
        for (uint64_t i = 0; i < some.count; i++, at++) picture.paint(some.pixel, { at % 720, 479 - at / 720, 1, 1 });
    }
    return picture;
}

const std::vector<Some> REST = { { RED, 9 }, { GREEN, 9 }, { BLUE, 9 }, { YELLOW, 9 } };

const struct {
    const char* what;
    std::vector<Some> inButton, elsewhere;
    Texts picks;             // palette entries 1 to 3
    const char* selection;   // alphas of the picks 3, 2 and 1, four bits each
} PICKS[] = {
    { "the three most used of four, with their alphas",
      { { RED, 10 }, { GREEN, 40 }, { withAlpha(BLUE, 0x80), 30 }, { withAlpha(YELLOW, 0x45), 20 } },
      {},
      { IS_GREEN, "80 12 23 C0", "45 F1 F2 13" },
      "32 10 48 F0" },
    { "what lies outside the button does not count",
      { { RED, 10 }, { GREEN, 40 }, { BLUE, 30 }, { YELLOW, 20 } },
      { { RED, 5000 } },
      { IS_GREEN, IS_BLUE, IS_YELLOW },
      "32 10 FF F0" },
    { "one colour", { { RED, 5 } }, REST, { IS_RED, NONE, NONE }, "32 10 00 F0" },
    { "two colours", { { RED, 5 }, { GREEN, 6 } }, REST, { IS_GREEN, IS_RED, NONE }, "32 10 0F F0" },
    { "three colours", { { RED, 5 }, { GREEN, 6 }, { BLUE, 4 } }, REST, { IS_GREEN, IS_RED, IS_BLUE }, "32 10 FF F0" },
    { "none", {}, REST, { NONE, NONE, NONE }, "32 10 00 00" },
    // Transparent pixels count as well.
    { "a colour that is transparent",
      { { withAlpha(RED, 0x15), 50 }, { GREEN, 40 }, { BLUE, 30 }, { YELLOW, 20 } },
      {},
      { "15 E0 10 20", IS_GREEN, IS_BLUE },
      "32 10 FF 10" },
    // The alpha that most pixels of the whole picture have, transparent ones too.
    { "alpha of most pixels",
      { { withAlpha(RED, 0x70), 10 }, { withAlpha(RED, 0x90), 11 }, { withAlpha(RED, 0x50), 9 } },
      { { GREEN, 1 }, { BLUE, 1 }, { YELLOW, 1 } },
      { "90 E0 10 20", NONE, NONE },
      "32 10 00 90" },
    { "alpha of pixels elsewhere",
      { { RED, 50 } },
      { { withAlpha(RED, 0x5F), 60 }, { GREEN, 1 }, { BLUE, 1 } },
      { "5F E0 10 20", NONE, NONE },
      "32 10 00 50" },
    { "alpha of transparent pixels elsewhere",
      { { RED, 50 } },
      { { withAlpha(RED, 0x1F), 60 }, { GREEN, 1 }, { BLUE, 1 } },
      { "1F E0 10 20", NONE, NONE },
      "32 10 00 10" },
    { "of two equally common alphas the second that is met",
      { { withAlpha(RED, 0x40), 10 }, { withAlpha(RED, 0x60), 10 } },
      { { GREEN, 1 }, { BLUE, 1 }, { YELLOW, 1 } },
      { "60 E0 10 20", NONE, NONE },
      "32 10 00 60" },
    // Equal counts, in the order of the quicksort.
    { "four equal: the first goes to the end",
      { { RED, 30 }, { GREEN, 30 }, { BLUE, 30 }, { withAlpha(YELLOW, 0xE0), 30 } },
      {},
      { IS_GREEN, IS_BLUE, "E0 F1 F2 13" },
      "32 10 EF F0" },
    { "two equal, then the most used",
      { { RED, 10 }, { GREEN, 10 }, { BLUE, 20 } },
      { { YELLOW, 1 } },
      { IS_BLUE, IS_GREEN, IS_RED },
      "32 10 FF F0" },
};

const struct {
    const char* what;
    std::vector<Some> inButton;
    Texts picks;
    const char* selection;
} BLACK_PICKS[] = {
    { "black is the most used",
      { { BLACK, 300 }, { RED, 200 }, { GREEN, 100 }, { BLUE, 50 } },
      { IS_RED, IS_GREEN, IS_BLUE },
      "32 10 FF F0" },
    { "the second",
      { { BLACK, 200 }, { RED, 300 }, { GREEN, 100 }, { BLUE, 50 } },
      { IS_RED, IS_GREEN, IS_BLUE },
      "32 10 FF F0" },
    { "the third",
      { { BLACK, 100 }, { RED, 300 }, { GREEN, 200 }, { BLUE, 50 } },
      { IS_RED, IS_GREEN, IS_BLUE },
      "32 10 FF F0" },
    { "the fourth",
      { { BLACK, 20 }, { RED, 300 }, { GREEN, 200 }, { BLUE, 50 } },
      { IS_RED, IS_GREEN, IS_BLUE },
      "32 10 FF F0" },
    { "with a fourth colour",
      { { BLACK, 300 }, { RED, 200 }, { GREEN, 100 }, { BLUE, 50 }, { YELLOW, 150 } },
      { IS_RED, IS_YELLOW, IS_GREEN },
      "32 10 FF F0" },
    // Opaque black and transparent black are one colour here: stepped over once, both are passed.
    { "opaque and transparent",
      { { BLACK, 100 }, { CLEAR, 150 }, { RED, 200 }, { GREEN, 90 }, { BLUE, 50 } },
      { IS_RED, IS_GREEN, IS_BLUE },
      "32 10 FF F0" },
    // Where it is the last of the list, the list has ended: black is never picked, not with its alpha either.
    { "the last of three",
      { { BLACK, 100 }, { RED, 300 }, { GREEN, 200 } },
      { IS_RED, IS_GREEN, NONE },
      "32 10 0F F0" },
    { "the first of three",
      { { BLACK, 400 }, { RED, 300 }, { GREEN, 200 } },
      { IS_RED, IS_GREEN, NONE },
      "32 10 0F F0" },
    { "the last of two", { { BLACK, 100 }, { RED, 300 } }, { IS_RED, NONE, NONE }, "32 10 00 F0" },
    { "the first of two", { { BLACK, 400 }, { RED, 300 } }, { IS_RED, NONE, NONE }, "32 10 00 F0" },
    { "alone", { { BLACK, 100 } }, { NONE, NONE, NONE }, "32 10 00 00" },
};

void expectPicks(const MenuPicture& picture, const Texts& picks, const std::string& selection, const char* what)
{
    MenuRig rig(picture, { COUNTED_BOX });
    ASSERT_EQ(orvPrepareMenuColors(rig.standard, &rig.menu), 0u) << what;
    EXPECT_EQ(boxOf(rig.menu.buttons[0]), (Box{ 110, 152, 59, 92 })) << what;
    EXPECT_EQ(rig.menu.manyColors, 1u) << what;
    EXPECT_EQ(paletteOf(rig.menu), (Texts{ NONE, picks[0], picks[1], picks[2] })) << what;
    EXPECT_EQ(selectionsOf(rig.menu), (Texts{ selection, selection, selection })) << what;
    EXPECT_EQ(rig.menu.buttons[0].color, 1u) << what;
}

}   // namespace

TEST(MenuColors, PicksTheMostUsed)
{
    for (const auto& c : PICKS) expectPicks(countedPicture(c.inButton, c.elsewhere), c.picks, c.selection, c.what);
}

TEST(MenuColors, BlackIsSteppedOverOnce)
{
    // The ground is opaque black, so that an entry made of black would have its alpha.
    for (const auto& c : BLACK_PICKS) {
        expectPicks(countedPicture(c.inButton, REST, BLACK), c.picks, c.selection, c.what);
    }
}
