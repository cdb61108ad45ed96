// The pixel codes of a menu with a 32-bit form: by its buttons where they overlap, by each pixel alone where not.
#include "menu/sub_picture.h"

#include "base/result.h"
#include "tests/base/platform_numbers.h"
#include "tests/menu/sub_picture_rig.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr Rgba SOLID = { 200, 100, 50, 255 };

// The codes that an alpha bitmap is mapped to, one test pixel a column of the line that is stored at the bottom.
Bytes mapPixels(const MenuDesc& menu, const std::vector<Rgba>& pixels)
{
    AlphaImage image(LINES_OF_NTSC);
    for (uint64_t x = 0; x < pixels.size(); x++) image.at(x, LINES_OF_NTSC - 1) = pixels[x];
    const TempDir dir;
    writeFile(dir / u"alpha.bmp", bmpFile(image));
    Bytes plane(NTSC_PLANE);
    EXPECT_EQ(orvMapAlphaToIndex(STANDARD_NTSC, &menu, (dir / u"alpha.bmp").c_str(), plane.data()), 0u);
    EXPECT_TRUE(
        std::all_of(plane.begin() + std::ptrdiff_t(pixels.size()), plane.end(), [](uint8_t c) { return c == 0; }));
    plane.resize(pixels.size());
    return plane;
}

MenuDesc paletteMenu(Rgba first, Rgba second, Rgba third)
{
    MenuDesc menu = {};
    menu.hasSubPicture32 = menu.manyColors = 1;
    setPalette(menu, 1, first);
    setPalette(menu, 2, second);
    setPalette(menu, 3, third);
    return menu;
}

}   // namespace

// ---- overlapping buttons -------------------------------------------------------------------------------

// Columns of the collision map, and what comes of them where the alpha bitmap is visible.
TEST(SubPicture, OverlappingButtonsHaveTheirColor)
{
    MenuBitmaps files(STANDARD_PAL);
    files.menu.buttonsOverlap = 1;
    files.menu.buttonCount = 35;
    for (auto& set : files.menu.colorSets) std::fill(std::begin(set), std::end(set), uint8_t(0xAB));   // no button's
    const struct {
        uint8_t collision;
        uint64_t color;
        uint8_t code;
    } cases[] = {
        { 0, 0, 0 },   // no button
        { 1, 1, 1 },  { 2, 2, 2 },   { 3, 3, 3 },     { 4, 0, 0 },
        { 5, 4, 0 },   // colours above 3: the low two bits
        { 6, 5, 1 },  { 7, 7, 3 },   { 8, 0x102, 2 }, { 9, 0xFFFFFFFFFFFFFFFF, 3 },
        { 35, 2, 2 },   // the last one
        { 36, 3, 0 },   // the menu has no such button
        { 37, 0, 0 }, { 100, 0, 0 }, { 255, 0, 0 },
    };
    ByteImage expected(LINES_OF_PAL);
    uint64_t x = 0;
    for (const auto& given : cases) {
        files.collision.fill(x, 0, 20, 576, given.collision);
        files.alpha.fill(x, 100, 20, 300, SOLID);
        expected.fill(x, 100, 20, 300, given.code);
        if (given.collision > 0 && given.collision <= 36) files.menu.buttons[given.collision - 1].color = given.color;
        x += 40;
    }
    EXPECT_EQ(firstDifference(shownOf(expected), files.shown()), "");
}

TEST(SubPicture, ButtonsOfAMenuWithoutButtonsAreBlank)
{
    MenuBitmaps files(STANDARD_NTSC);
    files.menu.buttonsOverlap = 1;
    files.menu.buttons[0].color = 3;
    files.collision.fill(0, 0, 720, 480, 1);
    files.alpha.fill(0, 0, 720, 480, SOLID);
    const UnitRun run = files.encode();
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.unit.size(), 988u);
}

// Black is transparent at each alpha where buttons overlap.
TEST(SubPicture, BlackIsNoPartOfAButton)
{
    MenuBitmaps files(STANDARD_NTSC);
    files.menu.buttonsOverlap = 1;
    files.menu.buttonCount = 1;
    files.menu.buttons[0].color = 2;
    files.collision.fill(0, 0, 720, 480, 1);
    const struct {
        Rgba pixel;
        uint8_t code;
    } cases[] = {
        { { 0, 0, 0, 255 }, 0 }, { { 0, 0, 0, 32 }, 0 },  { { 0, 0, 0, 0 }, 0 },       { { 1, 0, 0, 255 }, 2 },
        { { 0, 1, 0, 255 }, 2 }, { { 0, 0, 1, 255 }, 2 }, { { 0, 0, 1, 32 }, 2 },      { { 0, 0, 1, 31 }, 0 },
        { { 9, 8, 7, 31 }, 0 },  { { 9, 8, 7, 32 }, 2 },  { { 255, 255, 255, 0 }, 0 },
    };
    ByteImage expected(LINES_OF_NTSC);
    uint64_t x = 0;
    for (const auto& given : cases) {
        files.alpha.fill(x, 2, 30, 476, given.pixel);
        expected.fill(x, 2, 30, 476, given.code);
        x += 50;
    }
    EXPECT_EQ(firstDifference(shownOf(expected), files.shown()), "");
}

TEST(SubPicture, ManyColorsMakeNoDifferenceWhereButtonsOverlap)
{
    MenuBitmaps files(STANDARD_NTSC);
    files.menu.buttonsOverlap = files.menu.manyColors = 1;
    files.menu.buttonCount = 1;
    files.menu.buttons[0].color = 1;
    setPalette(files.menu, 3, SOLID);
    files.collision.fill(100, 100, 50, 50, 1);
    files.alpha.fill(120, 120, 300, 300, SOLID);
    ByteImage expected(LINES_OF_NTSC);
    expected.fill(120, 120, 30, 30, 1);
    EXPECT_EQ(firstDifference(shownOf(expected), files.shown()), "");
}

// ---- each pixel by itself -------------------------------------------------------------------------------

// Black at full alpha is a code like others where no buttons overlap.
TEST(SubPicture, BlackCountsWithoutOverlap)
{
    MenuBitmaps files(STANDARD_NTSC);
    files.alpha.fill(10, 10, 20, 20, { 0, 0, 0, 255 });
    files.alpha.fill(40, 10, 20, 20, { 0, 0, 0, 32 });
    files.alpha.fill(70, 10, 20, 20, { 0, 0, 0, 31 });
    ByteImage expected(LINES_OF_NTSC);
    expected.fill(10, 10, 20, 20, 3);
    expected.fill(40, 10, 20, 20, 1);
    EXPECT_EQ(firstDifference(shownOf(expected), files.shown()), "");

    files.menu.manyColors = 1;
    setPalette(files.menu, 1, { 255, 255, 255, 0 });
    setPalette(files.menu, 2, { 10, 10, 10, 0 });
    setPalette(files.menu, 3, { 128, 0, 0, 0 });
    expected.fill(10, 10, 20, 20, 2);
    expected.fill(40, 10, 20, 20, 2);
    EXPECT_EQ(firstDifference(shownOf(expected), files.shown()), "");
}

TEST(SubPicture, CodesByAlpha)
{
    MenuDesc menu = {};
    menu.hasSubPicture32 = 1;
    setPalette(menu, 3, { 1, 2, 3, 0 });   // not looked at
    std::vector<Rgba> pixels;
    for (int alpha = 0; alpha < 256; alpha++) pixels.push_back({ 1, 2, 3, uint8_t(alpha) });
    const Bytes codes = mapPixels(menu, pixels);
    for (uint64_t alpha = 0; alpha < 256; alpha++) {
        const uint8_t code = alpha <= 31 ? 0 : alpha <= 106 ? 1 : alpha <= 181 ? 2 : 3;
        EXPECT_EQ(codes[alpha], code) << alpha;
    }
    // The same through the whole of it, with no collision map at all.
    const TempDir dir;
    AlphaImage image(LINES_OF_PAL);
    ByteImage expected(LINES_OF_PAL);
    for (uint64_t alpha = 0; alpha < 256; alpha++) {
        image.fill(100 + 2 * alpha, 300, 2, 7, { 0, 0, 0, uint8_t(alpha) });
        expected.fill(100 + 2 * alpha, 300, 2, 7, codes[alpha]);
    }
    writeFile(dir / u"alpha.bmp", bmpFile(image));
    const UnitRun run = encodeFiles(&menu, STANDARD_PAL, dir / u"none.bmp", dir / u"alpha.bmp");
    ASSERT_EQ(run.result, 0u);
    EXPECT_EQ(firstDifference(shownOf(expected), decodeSubPicture(run.unit, LINES_OF_PAL).plane), "");
}

TEST(SubPicture, NearestColors)
{
    const struct {
        const char* what;
        Rgba palette[3];
        Rgba pixel;
        uint8_t code;
    } cases[] = {
        { "the first itself", { { 9, 9, 9, 0 }, { 50, 0, 0, 0 }, { 0, 50, 0, 0 } }, { 9, 9, 9, 255 }, 1 },
        { "the second itself", { { 9, 9, 9, 0 }, { 50, 0, 0, 0 }, { 0, 50, 0, 0 } }, { 50, 0, 0, 255 }, 2 },
        { "the third itself", { { 9, 9, 9, 0 }, { 50, 0, 0, 0 }, { 0, 50, 0, 0 } }, { 0, 50, 0, 255 }, 3 },
        { "alpha 31", { { 9, 9, 9, 0 }, { 50, 0, 0, 0 }, { 0, 50, 0, 0 } }, { 9, 9, 9, 31 }, 0 },
        { "alpha 32", { { 9, 9, 9, 0 }, { 50, 0, 0, 0 }, { 0, 50, 0, 0 } }, { 0, 50, 0, 32 }, 3 },
        { "all equally far", { { 255, 0, 0, 0 }, { 0, 255, 0, 0 }, { 0, 0, 255, 0 } }, { 100, 100, 100, 255 }, 1 },
        { "second and third equally far",
          { { 255, 0, 0, 0 }, { 0, 255, 0, 0 }, { 0, 0, 255, 0 } },
          { 0, 200, 200, 255 },
          2 },
        { "first and third equally far",
          { { 255, 0, 0, 0 }, { 0, 255, 0, 0 }, { 0, 0, 255, 0 } },
          { 200, 0, 200, 255 },
          1 },
        { "all alike", { { 7, 7, 7, 0 }, { 7, 7, 7, 0 }, { 7, 7, 7, 0 } }, { 7, 7, 7, 255 }, 1 },
        { "second and third alike", { { 0, 0, 0, 0 }, { 7, 7, 7, 0 }, { 7, 7, 7, 0 } }, { 7, 7, 6, 255 }, 2 },
        // 3 x 10 x 10 = 300 against 20 x 20 = 400
        { "squares, not differences", { { 10, 10, 10, 0 }, { 0, 0, 20, 0 }, { 99, 99, 99, 0 } }, { 0, 0, 0, 255 }, 1 },
        // 195075 against 65025
        { "sums above 16 bits", { { 255, 255, 255, 0 }, { 0, 0, 255, 0 }, { 255, 255, 0, 0 } }, { 0, 0, 0, 255 }, 2 },
        { "differences below 0",
          { { 0, 0, 0, 0 }, { 140, 140, 140, 0 }, { 255, 255, 255, 0 } },
          { 199, 199, 199, 255 },
          3 },
        { "by red", { { 100, 0, 0, 0 }, { 0, 100, 0, 0 }, { 0, 0, 100, 0 } }, { 60, 10, 10, 255 }, 1 },
        { "by green", { { 100, 0, 0, 0 }, { 0, 100, 0, 0 }, { 0, 0, 100, 0 } }, { 10, 60, 10, 255 }, 2 },
        { "by blue", { { 100, 0, 0, 0 }, { 0, 100, 0, 0 }, { 0, 0, 100, 0 } }, { 10, 10, 60, 255 }, 3 },
        { "alpha of the palette is no part of it",
          { { 8, 8, 8, 255 }, { 9, 9, 9, 0 }, { 0, 0, 0, 32 } },
          { 8, 8, 8, 32 },
          1 },
    };
    for (const auto& given : cases) {
        const MenuDesc menu = paletteMenu(given.palette[0], given.palette[1], given.palette[2]);
        EXPECT_EQ(mapPixels(menu, { given.pixel })[0], given.code) << given.what;
    }
}

TEST(SubPicture, TheBackgroundIsNoNearestColor)
{
    MenuDesc menu = paletteMenu({ 255, 255, 255, 0 }, { 250, 250, 250, 0 }, { 240, 240, 240, 0 });
    setPalette(menu, 0, { 1, 2, 3, 255 });
    setPalette(menu, 4, { 1, 2, 3, 255 });
    EXPECT_EQ(toHex(mapPixels(menu, { { 1, 2, 3, 255 }, { 253, 253, 253, 255 }, { 252, 252, 252, 255 } })), "03 01 02");
}

// ---- failures ------------------------------------------------------------------------------------------------------

TEST(SubPicture, FaultsOfTheBitmaps)
{
    const TempDir dir;
    const auto path = [&](const char* name) { return dir / toWide(name); };
    writeFile(path("8"), bmpFile(ByteImage(LINES_OF_NTSC)));
    writeFile(path("8pal"), bmpFile(ByteImage(LINES_OF_PAL)));
    writeFile(path("24"), rawBmp({ .bits = 24, .pixels = Bytes(2160 * 480) }));
    writeFile(path("32"), bmpFile(AlphaImage(LINES_OF_NTSC)));
    writeFile(path("32pal"), bmpFile(AlphaImage(LINES_OF_PAL)));
    Bytes cut = rawBmp({});
    cut.resize(500);
    writeFile(path("cut"), cut);
    const auto overlap = [](MenuDesc menu) {
        menu.buttonsOverlap = 1;
        return menu;
    };
    MenuDesc plain = {}, single = {};
    single.hasSubPicture32 = 1;
    const MenuDesc overlapping = overlap(single);
    const struct {
        const char* what;
        const MenuDesc* menu;
        const char *bitmap, *alpha;
        uint64_t result;
    } cases[] = {
        { "plain: no file", nullptr, "none", "32", FILE_NOT_FOUND },
        { "plain: another standard's", &plain, "8pal", "32", ORV_INVALID_ARGUMENT },
        { "plain: cut", &plain, "cut", "32", OS_SHORT_READ },
        { "overlap: both wrong, collision map first", &overlapping, "24", "8", ORV_COLLISION_BITMAP_NOT_8BIT },
        { "overlap: exchanged", &overlapping, "32", "8", ORV_COLLISION_BITMAP_NOT_8BIT },
        { "overlap: collision map before a missing alpha bitmap", &overlapping, "24", "none",
          ORV_COLLISION_BITMAP_NOT_8BIT },
        { "overlap: alpha bitmap", &overlapping, "8", "24", ORV_ALPHA_BITMAP_NOT_32BIT },
        { "overlap: alpha bitmap of 8 bits", &overlapping, "8", "8", ORV_ALPHA_BITMAP_NOT_32BIT },
        { "overlap: no collision map", &overlapping, "none", "24", FILE_NOT_FOUND },
        { "overlap: no alpha bitmap", &overlapping, "8", "none", FILE_NOT_FOUND },
        { "overlap: cut collision map", &overlapping, "cut", "24", OS_SHORT_READ },
        { "overlap: cut alpha bitmap", &overlapping, "8", "cut", OS_SHORT_READ },
        { "overlap: collision map of another standard", &overlapping, "8pal", "32", ORV_INVALID_ARGUMENT },
        { "overlap: alpha bitmap of another standard", &overlapping, "8", "32pal", ORV_INVALID_ARGUMENT },
        { "overlap: in order", &overlapping, "8", "32", 0 },
        { "single: alpha bitmap of 8 bits", &single, "8", "8", ORV_ALPHA_BITMAP_NOT_32BIT },
        { "single: of 24 bits", &single, "8", "24", ORV_ALPHA_BITMAP_NOT_32BIT },
        { "single: none", &single, "8", "none", FILE_NOT_FOUND },
        { "single: cut", &single, "8", "cut", OS_SHORT_READ },
        { "single: another standard's", &single, "8", "32pal", ORV_INVALID_ARGUMENT },
        { "single: the collision map is not asked for", &single, "24", "32", 0 },
    };
    for (const auto& given : cases) {
        const UnitRun run = encodeFiles(given.menu, STANDARD_NTSC, path(given.bitmap), path(given.alpha));
        EXPECT_EQ(run.result, given.result) << given.what;
    }
    // Without a path.
    EXPECT_EQ(encodeFiles(nullptr, STANDARD_NTSC, u"").result, OS_INVALID_ARGUMENT);
    EXPECT_EQ(encodeFiles(&single, STANDARD_NTSC, path("8"), u"").result, OS_INVALID_ARGUMENT);
    EXPECT_EQ(encodeFiles(&overlapping, STANDARD_NTSC, path("8"), u"").result, OS_INVALID_ARGUMENT);
    Bytes plane(NTSC_PLANE);
    EXPECT_EQ(orvMapAlphaToIndex(STANDARD_NTSC, &single, path("24").c_str(), plane.data()), ORV_ALPHA_BITMAP_NOT_32BIT);
    EXPECT_EQ(orvMapAlphaToIndex(STANDARD_NTSC, &single, path("32pal").c_str(), plane.data()), ORV_INVALID_ARGUMENT);
}
