// The run-length code of a field, byte by byte.
#include "menu/sub_picture.h"

#include "base/memory.h"
#include "base/result.h"
#include "tests/menu/sub_picture_rig.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

struct Run {
    uint64_t count;
    uint8_t code;
};
typedef std::vector<Run> Line;   // from the left

Bytes pixelsOf(const Line& line)
{
    Bytes pixels;
    for (const Run& run : line) pixels.insert(pixels.end(), run.count, run.code);
    return pixels;
}

struct FieldRun {
    uint64_t result;
    Bytes bytes;   // what was appended
};

// The lines of the picture from the top; all are as wide as the first.
FieldRun encodeField(const std::vector<Bytes>& lines, uint64_t field)
{
    const Bytes start = fromHex("A1 B2 C3");
    uint8_t* unit = nullptr;
    EXPECT_EQ(osAllocMemCopy(start.data(), 0, start.size(), &unit), 0u);
    Bytes plane;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line)
        plane.insert(plane.end(), line->begin(), line->end());
    const uint64_t width = lines.empty() ? 720 : lines[0].size();
    EXPECT_EQ(plane.size(), width * lines.size());
    // Exactly as large as the plane, so that the sanitizers see each step beside it.
    const std::vector<uint8_t> exact(plane);
    FieldRun run = { orvRleEncodeField(&unit, exact.data(), width, lines.size(), field), takeBlock(unit) };
    EXPECT_GE(run.bytes.size(), start.size());
    EXPECT_TRUE(std::equal(start.begin(), start.end(), run.bytes.begin()));
    run.bytes.erase(run.bytes.begin(), run.bytes.begin() + std::ptrdiff_t(start.size()));
    return run;
}

// One line in field 0 of a picture of two.
std::string codeOf(const Line& line)
{
    const Bytes pixels = pixelsOf(line);
    const FieldRun run = encodeField({ pixels, Bytes(pixels.size(), 3) }, 0);
    EXPECT_EQ(run.result, 0u);
    return toHex(run.bytes);
}

// 720 pixels of which none is like the next: 719 codes of 4 bits and one of 16, 362 bytes.
Bytes noiseLine()
{
    Bytes line(720);
    for (uint64_t x = 0; x < 720; x++) line[x] = uint8_t((x + 1) % 4);
    return line;
}

// Lines of a picture whose field 0 takes 181 x 362 + blanks x 2 + rest bytes; field 1 is blank.
std::vector<Bytes> tallPicture(uint64_t noise, uint64_t blanks, const Line& last)
{
    std::vector<Bytes> lines;
    const auto add = [&](const Bytes& line) {
        lines.push_back(line);
        lines.push_back(Bytes(720));
    };
    for (uint64_t i = 0; i < noise; i++) add(noiseLine());
    for (uint64_t i = 0; i < blanks; i++) add(Bytes(720));
    if (!last.empty()) add(pixelsOf(last));
    return lines;
}

}   // namespace

// The run of interest first, then the code that ends the line: 14 bits 0 and the last pixel's code.
TEST(SubPictureRle, RunsThatEndBeforeTheLineDoes)
{
    const struct {
        Line line;
        const char* bytes;
    } cases[] = {
        // n in 2 bits
        { { { 1, 1 }, { 1, 0 } }, "50 00 00" },
        { { { 2, 1 }, { 1, 0 } }, "90 00 00" },
        { { { 3, 1 }, { 1, 0 } }, "D0 00 00" },
        { { { 1, 0 }, { 1, 3 } }, "40 00 30" },
        { { { 2, 2 }, { 1, 3 } }, "A0 00 30" },
        { { { 3, 3 }, { 1, 2 } }, "F0 00 20" },
        // 00, n in 4 bits
        { { { 4, 0 }, { 1, 3 } }, "10 00 03" },
        { { { 4, 3 }, { 1, 0 } }, "13 00 00" },
        { { { 9, 2 }, { 1, 1 } }, "26 00 01" },
        { { { 15, 1 }, { 1, 0 } }, "3D 00 00" },
        // 0000, n in 6 bits
        { { { 16, 2 }, { 1, 0 } }, "04 20 00 00" },
        { { { 16, 0 }, { 1, 1 } }, "04 00 00 10" },
        { { { 42, 1 }, { 1, 0 } }, "0A 90 00 00" },
        { { { 63, 3 }, { 1, 1 } }, "0F F0 00 10" },
        // 000000, n in 8 bits
        { { { 64, 0 }, { 1, 1 } }, "01 00 00 01" },
        { { { 64, 3 }, { 1, 0 } }, "01 03 00 00" },
        { { { 170, 2 }, { 1, 0 } }, "02 AA 00 00" },
        { { { 254, 1 }, { 1, 0 } }, "03 F9 00 00" },
        // 255, and what is left anew
        { { { 255, 2 }, { 1, 0 } }, "03 FE 00 00" },
        { { { 255, 0 }, { 1, 1 } }, "03 FC 00 01" },
        { { { 256, 3 }, { 1, 0 } }, "03 FF 70 00 00" },
        { { { 258, 1 }, { 1, 2 } }, "03 FD D0 00 20" },
        { { { 259, 2 }, { 1, 0 } }, "03 FE 12 00 00" },
        { { { 300, 1 }, { 1, 0 } }, "03 FD 0B 50 00 00" },
        { { { 509, 1 }, { 1, 0 } }, "03 FD 03 F9 00 00" },
        { { { 510, 1 }, { 1, 0 } }, "03 FD 03 FD 00 00" },
        { { { 511, 0 }, { 1, 2 } }, "03 FC 03 FC 40 00 20" },
        { { { 719, 2 }, { 1, 0 } }, "03 FE 03 FE 03 46 00 00" },
        { { { 719, 0 }, { 1, 3 } }, "03 FC 03 FC 03 44 00 03" },
    };
    for (const auto& given : cases) {
        EXPECT_EQ(codeOf(given.line), given.bytes) << given.line[0].count << " of " << int(given.line[0].code);
    }
}

TEST(SubPictureRle, RunsThatReachTheLinesEnd)
{
    for (const uint64_t count :
         std::vector<uint64_t>{ 1, 2, 3, 4, 15, 16, 63, 64, 254, 255, 256, 300, 510, 719, 720 }) {
        EXPECT_EQ(codeOf({ { count, 0 } }), "00 00") << count;
        EXPECT_EQ(codeOf({ { count, 1 } }), "00 01") << count;
        EXPECT_EQ(codeOf({ { count, 2 } }), "00 02") << count;
        EXPECT_EQ(codeOf({ { count, 3 } }), "00 03") << count;
        EXPECT_EQ(codeOf({ { 1, 1 }, { count, 2 } }), "50 00 20") << count;
        EXPECT_EQ(codeOf({ { 5, 1 }, { count, 0 } }), "15 00 00") << count;
    }
}

TEST(SubPictureRle, SeveralRunsInALine)
{
    const struct {
        const char* what;
        Line line;
        const char* bytes;
    } cases[] = {
        { "stripes of one pixel", { { 1, 1 }, { 1, 0 }, { 1, 1 }, { 1, 0 } }, "54 50 00 00" },
        { "one more", { { 1, 1 }, { 1, 0 }, { 1, 1 }, { 1, 0 }, { 1, 1 } }, "54 54 00 01" },
        { "a code of each length", { { 3, 3 }, { 4, 2 }, { 16, 1 }, { 64, 0 }, { 1, 3 } }, "F1 20 41 01 00 00 03" },
        { "255 twice of two codes", { { 255, 1 }, { 255, 2 }, { 210, 3 } }, "03 FD 03 FE 00 03" },
        { "255 across half bytes", { { 1, 3 }, { 255, 1 }, { 255, 2 }, { 209, 3 } }, "70 3F D0 3F E0 00 30" },
        { "300 behind 255 of another", { { 255, 1 }, { 300, 0 }, { 165, 2 } }, "03 FD 03 FC 0B 40 00 20" },
    };
    for (const auto& given : cases) EXPECT_EQ(codeOf(given.line), given.bytes) << given.what;
}

TEST(SubPictureRle, NoiseTakesFourBitsAPixel)
{
    // 1 2 3 0 1 2 3 0 ...: 719 half bytes, the last pixel (of code 0) by the line's end code, half a byte of 0.
    std::string expected;
    for (int i = 0; i < 179; i++) expected += "56 74 ";
    expected += "56 70 00 00";
    const FieldRun run = encodeField({ noiseLine(), noiseLine() }, 0);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.bytes.size(), 362u);
    EXPECT_EQ(toHex(run.bytes), expected);
}

TEST(SubPictureRle, VerticalStripesOfEightPixels)
{
    // 89 stripes in 8 bits each and the 90th, odd ones of 1, even ones of 2.
    Line line;
    std::string expected;
    for (int i = 0; i < 90; i++) {
        line.push_back({ 8, uint8_t(1 + i % 2) });
        if (i < 89) expected += i % 2 ? "22 " : "21 ";
    }
    EXPECT_EQ(codeOf(line), expected + "00 02");
}

TEST(SubPictureRle, ALineBeginsOnAByte)
{
    const Bytes odd1 = pixelsOf({ { 1, 1 }, { 1, 0 } }), odd2 = pixelsOf({ { 1, 2 }, { 1, 0 } });
    EXPECT_EQ(toHex(encodeField({ odd1, odd2, odd2, odd1 }, 0).bytes), "50 00 00 60 00 00");
    EXPECT_EQ(toHex(encodeField({ odd1, odd2, odd2, odd1 }, 1).bytes), "60 00 00 50 00 00");
    const Bytes even = pixelsOf({ { 2, 3 } });
    EXPECT_EQ(toHex(encodeField({ odd1, even, even, even, odd2, even }, 0).bytes), "50 00 00 00 03 60 00 00");
}

TEST(SubPictureRle, CodesAbove3AreCutBeforeRunsAreMeasured)
{
    const struct {
        const char* pixels;
        const char* bytes;
    } cases[] = {
        { "05 01 FD 02", "D0 00 20" },   // three of 1
        { "04 08 00 FC", "00 00" },      // 0 to the end
        { "07 FF 03 0B 04", "13 00 00" }, { "02 06 01 05", "A0 00 10" }, { "80 40 20 10 01", "10 00 01" },
    };
    for (const auto& given : cases) {
        const Bytes line = fromHex(given.pixels);
        const FieldRun run = encodeField({ line, Bytes(line.size()) }, 0);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(toHex(run.bytes), given.bytes) << given.pixels;
    }
    // 720 different bytes of one code.
    Bytes line(720);
    for (uint64_t x = 0; x < 720; x++) line[x] = uint8_t(4 * x + 3);
    EXPECT_EQ(toHex(encodeField({ line, line }, 1).bytes), "00 03");
}

// Line i from the top in a colour of its own.
TEST(SubPictureRle, FieldsTakeEveryOtherLineFromTheTop)
{
    std::vector<Bytes> lines;
    for (const uint8_t code : fromHex("01 02 03 00 02 01")) lines.push_back(Bytes(720, code));
    EXPECT_EQ(toHex(encodeField(lines, 0).bytes), "00 01 00 03 00 02");
    EXPECT_EQ(toHex(encodeField(lines, 1).bytes), "00 02 00 00 00 01");
    lines.pop_back();   // of an odd number of lines the last one is in neither field
    EXPECT_EQ(toHex(encodeField(lines, 0).bytes), "00 01 00 03");
    EXPECT_EQ(toHex(encodeField(lines, 1).bytes), "00 02 00 00");
    lines.resize(3);
    EXPECT_EQ(toHex(encodeField(lines, 0).bytes), "00 01");
    EXPECT_EQ(toHex(encodeField(lines, 1).bytes), "00 02");
    lines.resize(2);
    EXPECT_EQ(toHex(encodeField(lines, 0).bytes), "00 01");
    EXPECT_EQ(toHex(encodeField(lines, 1).bytes), "00 02");
}

TEST(SubPictureRle, APictureOfOneLineHasNoFields)
{
    for (const uint64_t field : std::vector<uint64_t>{ 0, 1 }) {
        for (const std::vector<Bytes>& lines : { std::vector<Bytes>(), { Bytes(720, 1) } }) {
            const FieldRun run = encodeField(lines, field);
            EXPECT_EQ(run.result, 0u);
            EXPECT_EQ(toHex(run.bytes), "");
        }
    }
}

TEST(SubPictureRle, ABlankPictureTakesTwoBytesALine)
{
    for (const uint64_t lines : { LINES_OF_NTSC, LINES_OF_PAL }) {
        for (const uint64_t field : std::vector<uint64_t>{ 0, 1 }) {
            const FieldRun run = encodeField(std::vector<Bytes>(lines, Bytes(720)), field);
            EXPECT_EQ(run.result, 0u);
            EXPECT_TRUE(run.bytes == Bytes(lines)) << lines << " " << field;
        }
    }
}

// 181 lines of 362 bytes are 65522 bytes.
TEST(SubPictureRle, AFieldHasToFitTheScratch)
{
    const FieldRun full = encodeField(tallPicture(181, 7, {}), 0);
    EXPECT_EQ(full.result, 0u);
    EXPECT_EQ(full.bytes.size(), 65536u);
    const FieldRun below = encodeField(tallPicture(181, 5, { { 1, 1 }, { 719, 0 } }), 0);
    EXPECT_EQ(below.result, 0u);
    EXPECT_EQ(below.bytes.size(), 65535u);

    EXPECT_EQ(encodeField(tallPicture(181, 8, {}), 0).result, ORV_SUBPICTURE_TOO_LARGE);
    EXPECT_EQ(encodeField(tallPicture(181, 6, { { 1, 1 }, { 719, 0 } }), 0).result, ORV_SUBPICTURE_TOO_LARGE);
    EXPECT_EQ(encodeField(tallPicture(182, 0, {}), 0).result, ORV_SUBPICTURE_TOO_LARGE);
    EXPECT_EQ(encodeField(tallPicture(288, 0, {}), 0).result, ORV_SUBPICTURE_TOO_LARGE);
    EXPECT_EQ(encodeField(tallPicture(288, 0, {}), 1).result, 0u);

    // By two bytes at a time.
    EXPECT_EQ(encodeField(std::vector<Bytes>(65536, Bytes(1)), 0).bytes.size(), 65536u);
    EXPECT_EQ(encodeField(std::vector<Bytes>(65538, Bytes(1)), 0).result, ORV_SUBPICTURE_TOO_LARGE);
}

TEST(SubPictureRle, APlayerReadsTheFieldsBack)
{
    for (uint32_t seed = 1; seed <= 12; seed++) {
        const uint64_t longest = 1 + seed * seed * 5;
        const ByteImage image = randomCodes(100, longest, seed);
        std::vector<Bytes> lines;
        for (uint64_t y = 0; y < image.height; y++) {
            const auto first = image.pixels.begin() + std::ptrdiff_t(y * 720);
            lines.emplace_back(first, first + 720);
        }
        for (const uint64_t field : std::vector<uint64_t>{ 0, 1 }) {
            const FieldRun run = encodeField(lines, field);
            ASSERT_EQ(run.result, 0u);
            std::vector<std::string> faults;
            uint64_t end = 0;
            const std::vector<Bytes> read = decodeSpuLines(run.bytes, 0, run.bytes.size(), 720, 50, &faults, &end);
            EXPECT_EQ(faults, std::vector<std::string>()) << seed;
            EXPECT_EQ(end, run.bytes.size()) << seed;
            for (uint64_t i = 0; i < 50; i++) {
                ASSERT_TRUE(read[i] == lines[2 * i + field]) << "seed " << seed << ", line " << 2 * i + field;
            }
        }
    }
}
