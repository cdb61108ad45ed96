// sub_picture_rig.cpp: bitmaps by the fields of their headers, and runs of the encoder.
#include "tests/menu/sub_picture_rig.h"

#include "base/memory.h"
#include "menu/sub_picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

uint64_t linesOf(int64_t standard)
{
    return standard == STANDARD_PAL ? LINES_OF_PAL : LINES_OF_NTSC;
}

static void put(Bytes& file, uint64_t at, uint64_t value, uint64_t bytes)
{
    for (uint64_t i = 0; i < bytes; i++) file.at(at + i) = uint8_t(value >> (8 * i));
}

Bytes rawBmp(const RawBmp& form)
{
    Bytes file(std::max<uint64_t>(form.dataOffset, 54));
    file[0] = 'B';
    file[1] = 'M';
    put(file, 10, form.dataOffset, 4);
    put(file, 14, form.headerBytes, 4);
    const bool core = form.headerBytes == 12;
    const uint64_t sizeBytes = core ? 2 : 4;
    put(file, 18, uint64_t(form.width), sizeBytes);
    put(file, 18 + sizeBytes, uint64_t(form.height), sizeBytes);
    put(file, 18 + 2 * sizeBytes, 1, 2);
    put(file, 20 + 2 * sizeBytes, form.bits, 2);
    file.insert(file.end(), form.pixels.begin(), form.pixels.end());
    put(file, 2, form.fileBytes < 0 ? file.size() : uint64_t(form.fileBytes), 4);
    return file;
}

Bytes takeBlock(uint8_t* block)
{
    Bytes bytes;
    if (block) bytes.assign(block, block + osMemSize(block));
    (void)osFreeMem(&block);
    return bytes;
}

Bytes storedRows(const ByteImage& image)
{
    Bytes rows;
    for (uint64_t line = image.height; line-- > 0;) {
        const auto first = image.pixels.begin() + std::ptrdiff_t(line * image.width);
        rows.insert(rows.end(), first, first + std::ptrdiff_t(image.width));
    }
    return rows;
}

ByteImage randomCodes(uint64_t lines, uint64_t longest, uint32_t seed)
{
    std::mt19937 random(seed);
    ByteImage image(lines);
    uint64_t left = 0;
    uint8_t code = 0;
    for (uint8_t& pixel : image.pixels) {
        if (left == 0) {
            left = 1 + random() % longest;
            code = uint8_t(random() % 4);
        }
        pixel = code;
        left--;
    }
    return image;
}

std::string firstDifference(const ByteImage& expected, const ByteImage& given)
{
    if (given.width != expected.width || given.height != expected.height) return "another size";
    for (uint64_t line = 0; line < given.height; line++) {
        for (uint64_t x = 0; x < given.width; x++) {
            if (given.at(x, line) == expected.at(x, line)) continue;
            return "code " + std::to_string(given.at(x, line)) + " at " + std::to_string(x) + ", " +
                   std::to_string(line) + ", should be " + std::to_string(expected.at(x, line));
        }
    }
    return "";
}

ByteImage shownOf(const ByteImage& image)
{
    ByteImage shown = image;
    shown.fill(0, 0, shown.width, 2, SPU_NOTHING);
    shown.fill(0, shown.height - 2, shown.width, 2, SPU_NOTHING);
    return shown;
}

void setPalette(MenuDesc& menu, uint64_t entry, Rgba color)
{
    const uint8_t bytes[4] = { color.alpha, color.red, color.green, color.blue };
    std::memcpy(&menu.palette[entry], bytes, 4);
}

UnitRun encodeFiles(const MenuDesc* menu, int64_t standard, const std::u16string& bitmap, const std::u16string& alpha)
{
    uint8_t* unit = nullptr;
    const uint64_t result = orvEncodeSubPicture(menu, bitmap.empty() ? nullptr : bitmap.c_str(),
                                                alpha.empty() ? nullptr : alpha.c_str(), standard, &unit);
    EXPECT_EQ(unit == nullptr, result != 0);
    return { result, takeBlock(unit) };
}

Bytes encodeCodes(const ByteImage& codes)
{
    const TempDir dir;
    writeFile(dir / u"codes.bmp", bmpFile(codes));
    const int64_t standard = codes.height == LINES_OF_PAL ? STANDARD_PAL : STANDARD_NTSC;
    const UnitRun run = encodeFiles(nullptr, standard, dir / u"codes.bmp");
    EXPECT_EQ(run.result, 0u);
    return run.unit;
}

MenuBitmaps::MenuBitmaps(int64_t videoStandard)
    : standard(videoStandard), collision(linesOf(videoStandard)), alpha(linesOf(videoStandard))
{
    menu.hasSubPicture32 = 1;
}

UnitRun MenuBitmaps::encode() const
{
    const TempDir dir;
    writeFile(dir / u"collision.bmp", bmpFile(collision));
    writeFile(dir / u"alpha.bmp", bmpFile(alpha));
    return encodeFiles(&menu, standard, dir / u"collision.bmp", dir / u"alpha.bmp");
}

ByteImage MenuBitmaps::shown() const
{
    const UnitRun run = encode();
    EXPECT_EQ(run.result, 0u);
    const DecodedSubPicture unit = decodeSubPicture(run.unit, linesOf(standard));
    EXPECT_EQ(unit.faults, std::vector<std::string>());
    return unit.plane;
}
