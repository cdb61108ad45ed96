// Sub-picture units from bitmaps: the three ways to the pixel codes, and the unit around them.
#include "menu/sub_picture.h"

#include "base/result.h"
#include "tests/base/platform_numbers.h"
#include "tests/menu/sub_picture_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

constexpr Rgba SOLID = { 200, 100, 50, 255 };

// "head, `blank` bytes of 0, tail"
Bytes blankUnit(const char* head, uint64_t blank, const char* tail)
{
    Bytes unit = fromHex(head);
    unit.resize(unit.size() + blank);
    const Bytes end = fromHex(tail);
    unit.insert(unit.end(), end.begin(), end.end());
    return unit;
}

// Four bits a pixel: 362 bytes a line.
void drawNoise(ByteImage& image, uint64_t firstLine, uint64_t lines)
{
    for (uint64_t line = firstLine; line < firstLine + lines; line++) {
        for (uint64_t x = 0; x < image.width; x++) image.at(x, line) = uint8_t((x + line) % 4);
    }
}

void drawLine(ByteImage& image, uint64_t line, const std::vector<std::pair<uint64_t, uint8_t>>& runs)
{
    uint64_t x = 0;
    for (const auto& [count, code] : runs) {
        image.fill(x, line, count, 1, code);
        x += count;
    }
    ASSERT_EQ(x, image.width);
}

void expectShown(const ByteImage& image, const char* what)
{
    const DecodedSubPicture unit = decodeSubPicture(encodeCodes(image), image.height);
    EXPECT_EQ(unit.faults, std::vector<std::string>()) << what;
    EXPECT_EQ(firstDifference(shownOf(image), unit.plane), "") << what;
    // The fields follow each other without a gap; each ends with a line that is not shown.
    EXPECT_EQ(unit.fieldOffset[0], 6u) << what;
    EXPECT_LT(unit.fieldEnd[0], unit.fieldOffset[1] - 2) << what;
    EXPECT_LT(unit.fieldEnd[1], unit.controlOffset) << what;
}

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

// ---- the unit ------------------------------------------------------------------------------------------------------

TEST(SubPicture, BlankPictureByteByByte)
{
    EXPECT_EQ(toHex(encodeCodes(ByteImage(LINES_OF_NTSC))),
              toHex(blankUnit("03 DC 03 C4", 960,
                              "00 00 03 C4 00 03 32 10 04 00 00 05 00 02 CF 00 21 DD 06 00 06 01 E6 FF")));
    EXPECT_EQ(toHex(encodeCodes(ByteImage(LINES_OF_PAL))),
              toHex(blankUnit("04 9C 04 84", 1152,
                              "00 00 04 84 00 03 32 10 04 00 00 05 00 02 CF 00 22 3D 06 00 06 02 46 FF")));
    EXPECT_EQ(encodeCodes(ByteImage(LINES_OF_NTSC)).size(), 988u);
    EXPECT_EQ(encodeCodes(ByteImage(LINES_OF_PAL)).size(), 1180u);
}

TEST(SubPicture, AnyOtherStandardIsNtsc)
{
    const TempDir dir;
    writeFile(dir / u"codes.bmp", bmpFile(ByteImage(LINES_OF_NTSC)));
    const Bytes unit = encodeFiles(nullptr, STANDARD_NTSC, dir / u"codes.bmp").unit;
    EXPECT_EQ(unit.size(), 988u);
    for (const int64_t standard : { -1, 0, 3 })
        EXPECT_TRUE(encodeFiles(nullptr, standard, dir / u"codes.bmp").unit == unit);
}

TEST(SubPicture, AnOddUnitIsFilledUp)
{
    ByteImage image(LINES_OF_NTSC);
    drawLine(image, 2, { { 1, 1 }, { 719, 0 } });   // 50 00 00: a byte more than a blank line, in the upper field
    EXPECT_EQ(toHex(encodeCodes(image)),
              toHex(blankUnit("03 DE 03 C5 00 00 50", 958,
                              "00 00 03 C5 00 03 32 10 04 00 00 05 00 02 CF 00 21 DD 06 00 06 01 E7 FF FF")));
    drawLine(image, 3, { { 1, 2 }, { 719, 0 } });   // and in the lower one: even again
    const Bytes even = encodeCodes(image);
    EXPECT_EQ(even.size(), 990u);
    EXPECT_EQ(toHex(even.data(), 4), "03 DE 03 C6");
    EXPECT_EQ(toHex(even.data() + 966 - 1, 6), "00 00 00 03 C6 00");
    EXPECT_EQ(toHex(even.data() + 990 - 5, 5), "00 06 01 E7 FF");
}

TEST(SubPicture, OneSequenceOfFiveCommands)
{
    const DecodedSubPicture unit = decodeSubPicture(encodeCodes(ByteImage(LINES_OF_PAL, 1)), LINES_OF_PAL);
    EXPECT_EQ(unit.faults, std::vector<std::string>());
    ASSERT_EQ(unit.sequences.size(), 1u);
    EXPECT_EQ(unit.sequences[0].delay, 0u);
    EXPECT_EQ(unit.sequences[0].next, unit.controlOffset);
    Bytes numbers;
    for (const DecodedSpuCommand& command : unit.sequences[0].commands) numbers.push_back(command.number);
    EXPECT_EQ(toHex(numbers), "00 03 04 05 06");
    EXPECT_EQ(toHex(unit.colors, 4), "00 01 02 03");
    EXPECT_TRUE(unit.forced && !unit.started && !unit.stopped);
}

// Contrast 0 throughout: the highlight of a button is what makes its pixels visible.
TEST(SubPicture, ShowsNothingByItself)
{
    for (const uint8_t code : fromHex("00 01 02 03")) {
        const DecodedSubPicture unit = decodeSubPicture(encodeCodes(ByteImage(LINES_OF_NTSC, code)), LINES_OF_NTSC);
        EXPECT_EQ(unit.faults, std::vector<std::string>());
        EXPECT_EQ(toHex(unit.contrasts, 4), "00 00 00 00");
        EXPECT_EQ(unit.plane.at(360, 240), code);
    }
}

TEST(SubPicture, SkipsTheFirstLineOfAField)
{
    for (const uint64_t lines : { LINES_OF_NTSC, LINES_OF_PAL }) {
        ByteImage image(lines);
        for (uint64_t line = 0; line < lines; line++) image.fill(0, line, 720, 1, uint8_t((line / 2 + line) % 4));
        const Bytes bytes = encodeCodes(image);
        const DecodedSubPicture unit = decodeSubPicture(bytes, lines);
        EXPECT_EQ(unit.faults, std::vector<std::string>());
        EXPECT_EQ(toHex(bytes.data() + 4, 6), "00 00 00 03 00 02");   // lines 0, 2 and 4
        EXPECT_EQ(unit.fieldOffset[0], 6u);
        EXPECT_EQ(unit.fieldOffset[1], 4 + lines + 2);
        EXPECT_EQ(std::vector<uint64_t>({ unit.left, unit.right, unit.top, unit.bottom }),
                  std::vector<uint64_t>({ 0, 719, 2, lines - 3 }));
        EXPECT_EQ(firstDifference(shownOf(image), unit.plane), "");
    }
}

// A first line of four bytes: what is left of it is shown as the field's first line, and all others one line lower.
TEST(SubPicture, AFirstLineOfMoreThanTwoBytesMovesItsField)
{
    ByteImage image(LINES_OF_NTSC);
    for (uint64_t line = 0; line < LINES_OF_NTSC; line++) image.fill(0, line, 720, 1, uint8_t(line / 2 % 4));
    drawLine(image, 0, { { 4, 1 }, { 4, 0 }, { 712, 2 } });   // 11 10 00 02
    const Bytes bytes = encodeCodes(image);
    EXPECT_EQ(toHex(bytes.data() + 4, 6), "11 10 00 02 00 01");
    const DecodedSubPicture unit = decodeSubPicture(bytes, LINES_OF_NTSC);
    EXPECT_EQ(unit.faults, std::vector<std::string>());
    EXPECT_EQ(unit.fieldOffset[0], 6u);
    EXPECT_EQ(unit.fieldOffset[1], 4u + 482 + 2);

    ByteImage expected = image;
    expected.fill(0, 2, 720, 1, 2);
    for (uint64_t line = 4; line < 478; line += 2) expected.fill(0, line, 720, 1, image.at(0, line - 2));
    EXPECT_EQ(firstDifference(shownOf(expected), unit.plane), "");
}

// A player's buffer holds 53248 bytes. Sizes and offsets above 16 bits are cut to them.
TEST(SubPicture, SizeAboveTheFormatIsNotChecked)
{
    ByteImage image(LINES_OF_NTSC);
    drawNoise(image, 4, 150);   // 75 lines of 362 bytes and 165 of 2 a field: 27480
    const Bytes above = encodeCodes(image);
    ASSERT_EQ(above.size(), 54988u);
    EXPECT_EQ(toHex(above.data(), 4), "D6 CC D6 B4");
    EXPECT_EQ(toHex(above.data() + 54964, 24),
              "00 00 D6 B4 00 03 32 10 04 00 00 05 00 02 CF 00 21 DD 06 00 06 6B 5E FF");
    const DecodedSubPicture unit = decodeSubPicture(above, LINES_OF_NTSC);
    EXPECT_EQ(unit.faults, std::vector<std::string>{ "0: larger than a player's buffer" });
    EXPECT_EQ(firstDifference(shownOf(image), unit.plane), "");

    drawNoise(image, 4, 200);   // 100 lines of 362 bytes and 140 of 2 a field: 36480
    const Bytes cut = encodeCodes(image);
    ASSERT_EQ(cut.size(), 72988u);   // 0x11D1C, the control area at 0x11D04
    EXPECT_EQ(toHex(cut.data(), 4), "1D 1C 1D 04");
    EXPECT_EQ(toHex(cut.data() + 72964, 24), "00 00 1D 04 00 03 32 10 04 00 00 05 00 02 CF 00 21 DD 06 00 06 8E 86 FF");
}

TEST(SubPicture, AFieldAboveTheScratchFails)
{
    const TempDir dir;
    for (const uint64_t parity : std::vector<uint64_t>{ 0, 1, 2 }) {   // the upper field, the lower one, both
        ByteImage image(LINES_OF_PAL);
        for (uint64_t line = 2; line < 574; line++) {
            if (parity == 2 || line % 2 == parity) drawNoise(image, line, 1);
        }
        writeFile(dir / u"noise.bmp", bmpFile(image));
        EXPECT_EQ(encodeFiles(nullptr, STANDARD_PAL, dir / u"noise.bmp").result, ORV_SUBPICTURE_TOO_LARGE) << parity;
    }
}

// ---- first way: the bitmap's bytes are the codes -------------------------------------------------------------------

TEST(SubPicture, RandomPlanesComeBack)
{
    for (uint32_t seed = 1; seed <= 6; seed++) {
        for (const uint64_t lines : { LINES_OF_NTSC, LINES_OF_PAL }) {
            ByteImage image = randomCodes(lines, seed * seed * 20, seed);
            image.fill(0, 0, 720, 1, uint8_t(seed % 4));
            image.fill(0, 1, 720, 1, uint8_t(seed / 2 % 4));
            expectShown(image, ("seed " + std::to_string(seed)).c_str());
        }
    }
}

TEST(SubPicture, NoiseComesBack)
{
    ByteImage image(LINES_OF_NTSC);
    drawNoise(image, 2, 70);
    drawNoise(image, 408, 70);
    expectShown(image, "whole lines");

    ByteImage block(LINES_OF_PAL);
    const ByteImage noise = randomCodes(LINES_OF_PAL, 1, 77);
    for (uint64_t line = 200; line < 400; line++) {
        for (uint64_t x = 100; x < 400; x++) block.at(x, line) = noise.at(x, line);
    }
    expectShown(block, "a block");
}

TEST(SubPicture, StripesComeBack)
{
    for (const uint64_t wide : std::vector<uint64_t>{ 8, 9, 63, 64, 255, 256, 719 }) {
        ByteImage image(LINES_OF_NTSC);
        for (uint64_t line = 2; line < LINES_OF_NTSC; line++) {
            for (uint64_t x = 0; x < 720; x++) image.at(x, line) = uint8_t(x / wide % 4);
        }
        expectShown(image, ("upright, " + std::to_string(wide)).c_str());
    }
    for (const uint64_t high : std::vector<uint64_t>{ 1, 2, 3, 7 }) {
        ByteImage image(LINES_OF_PAL);
        for (uint64_t line = 0; line < LINES_OF_PAL; line++) image.fill(0, line, 720, 1, uint8_t(line / high % 4));
        expectShown(image, ("level, " + std::to_string(high)).c_str());
    }
}

TEST(SubPicture, CodesOfAPlainBitmapCountByTheirLowTwoBits)
{
    ByteImage image(LINES_OF_NTSC), low(LINES_OF_NTSC);
    for (uint64_t line = 2; line < 478; line++) {
        for (uint64_t x = 0; x < 720; x++) {
            image.at(x, line) = uint8_t(x / 20 + 4 * (x % 50) + line);
            low.at(x, line) = uint8_t((x / 20 + line) % 4);
        }
    }
    EXPECT_TRUE(encodeCodes(image) == encodeCodes(low));
}

// A menu without a 32-bit form; nobody asks for the other bitmap, nor for buttons.
TEST(SubPicture, MenusWithoutA32BitFormAreMadeFromThePlainBitmap)
{
    const TempDir dir;
    const ByteImage image = randomCodes(LINES_OF_NTSC, 100, 5);
    writeFile(dir / u"codes.bmp", bmpFile(image));
    const Bytes plain = encodeCodes(image);
    MenuDesc menu = {};
    menu.buttonsOverlap = menu.manyColors = 1;
    menu.buttonCount = 1;
    menu.buttons[0].color = 3;
    for (const std::u16string& alpha : { std::u16string(), dir / u"none.bmp" }) {
        for (const MenuDesc* given : { static_cast<const MenuDesc*>(nullptr), static_cast<const MenuDesc*>(&menu) }) {
            const UnitRun run = encodeFiles(given, STANDARD_NTSC, dir / u"codes.bmp", alpha);
            EXPECT_EQ(run.result, 0u);
            EXPECT_TRUE(run.unit == plain);
        }
    }
}

// Meant to be 8 bits deep, but not held to it: the first bytes of the pixel array are the codes.
TEST(SubPicture, PlainBitmapsOfOtherDepths)
{
    const TempDir dir;
    const ByteImage image = randomCodes(LINES_OF_NTSC, 100, 9);
    const Bytes plain = encodeCodes(image);
    const struct {
        uint16_t bits;
        uint64_t bytes;
        uint64_t result;
    } cases[] = {
        { 1, 92 * 480, ORV_INVALID_ARGUMENT },   // enough for one bit a pixel, too few for a plane
        { 4, 360 * 480, ORV_INVALID_ARGUMENT },
        { 4, NTSC_PLANE - 1, ORV_INVALID_ARGUMENT },
        { 4, NTSC_PLANE, 0 },
        { 1, NTSC_PLANE + 5, 0 },
        { 24, 2160 * 480, 0 },
        { 32, 2880 * 480, 0 },
        { 24, NTSC_PLANE, ORV_INVALID_ARGUMENT },   // enough for a plane, too few for 24 bits a pixel
    };
    for (const auto& given : cases) {
        Bytes pixels = storedRows(image);
        pixels.resize(given.bytes, 0xEE);
        writeFile(dir / u"deep.bmp", rawBmp({ .bits = given.bits, .pixels = pixels }));
        const UnitRun run = encodeFiles(nullptr, STANDARD_NTSC, dir / u"deep.bmp");
        EXPECT_EQ(run.result, given.result) << given.bits << " bits, " << given.bytes;
        EXPECT_TRUE(given.result || run.unit == plain) << given.bits << " bits, " << given.bytes;
    }
}

// ---- second way: overlapping buttons -------------------------------------------------------------------------------

// Columns of the collision map, and what comes of them where the alpha bitmap is visible.
TEST(SubPicture, OverlappingButtonsHaveTheirColor)
{
    MenuBitmaps files(STANDARD_PAL);
    files.menu.buttonsOverlap = 1;
    files.menu.buttonCount = 35;
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

// ---- third way: each pixel by itself -------------------------------------------------------------------------------

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

// ---- threads -------------------------------------------------------------------------------------------------------

TEST(SubPicture, TwoThreadsEncodeAtOnce)
{
    const TempDir dir;
    const std::u16string paths[2] = { dir / u"1.bmp", dir / u"2.bmp" };
    Bytes alone[2];
    for (uint32_t i = 0; i < 2; i++) {
        const ByteImage image = randomCodes(LINES_OF_NTSC, 12, i + 1);
        writeFile(paths[i], bmpFile(image));
        alone[i] = encodeCodes(image);
        ASSERT_GT(alone[i].size(), 20000u);
    }
    ASSERT_FALSE(alone[0] == alone[1]);
    uint64_t wrong[2] = {};
    const auto encodeOften = [&](uint64_t i) {
        for (int n = 0; n < 40; n++) {
            const UnitRun run = encodeFiles(nullptr, STANDARD_NTSC, paths[i]);
            if (run.result != 0 || run.unit != alone[i]) wrong[i]++;
        }
    };
    std::thread first(encodeOften, 0), second(encodeOften, 1);
    first.join();
    second.join();
    EXPECT_EQ(wrong[0], 0u);
    EXPECT_EQ(wrong[1], 0u);
}
