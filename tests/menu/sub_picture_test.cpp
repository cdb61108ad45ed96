// Sub-picture units from plain bitmaps: the unit around the pixels, and what a player makes of it.
#include "menu/sub_picture.h"

#include "base/result.h"
#include "tests/base/platform_numbers.h"
#include "tests/menu/sub_picture_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

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

// ---- plain bitmaps: the bytes are the codes -------------------------------------------------------------------

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
