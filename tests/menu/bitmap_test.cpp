// Bitmap files: which are taken, what comes of them, and what stands in files that lie.
#include "menu/bitmap.h"

#include "base/result.h"
#include "tests/base/platform_numbers.h"
#include "tests/menu/sub_picture_rig.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr uint64_t NO_BITS = 999;

struct ReadRun {
    uint64_t result;
    uint64_t bits = NO_BITS;
    Bytes pixels = {};
};

typedef uint64_t (*MapReader)(const char16_t* path, int64_t videoStandard, uint8_t** pixels);

ReadRun readPath(const std::u16string& path, int64_t standard)
{
    ReadRun run = {};
    run.bits = NO_BITS;
    uint8_t* pixels = nullptr;
    run.result = orvReadBitmap(path.c_str(), standard, &run.bits, &pixels);
    EXPECT_EQ(pixels == nullptr, run.result != 0);
    run.pixels = takeBlock(pixels);
    return run;
}

ReadRun readBytes(const Bytes& file, int64_t standard = STANDARD_NTSC)
{
    const TempDir dir;
    writeFile(dir / u"picture.bmp", file);
    return readPath(dir / u"picture.bmp", standard);
}

uint64_t readMap(MapReader reader, const Bytes& file, Bytes* pixels = nullptr)
{
    const TempDir dir;
    writeFile(dir / u"picture.bmp", file);
    uint8_t* block = nullptr;
    const uint64_t result = reader((dir / u"picture.bmp").c_str(), STANDARD_NTSC, &block);
    EXPECT_EQ(block == nullptr, result != 0);
    const Bytes bytes = takeBlock(block);
    if (pixels) *pixels = bytes;
    return result;
}

Bytes counted(uint64_t count)
{
    Bytes bytes(count);
    for (uint64_t i = 0; i < count; i++) bytes[i] = uint8_t(i * 7 + i / 256);
    return bytes;
}

Bytes cutTo(Bytes file, uint64_t count)
{
    file.resize(count);
    return file;
}

Bytes withMark(const char* mark)
{
    Bytes file = rawBmp({});
    file[0] = uint8_t(mark[0]);
    file[1] = uint8_t(mark[1]);
    return file;
}

}   // namespace

TEST(Bitmap, HeightOfAPicture)
{
    EXPECT_EQ(orvPictureHeight(1), 576u);
    for (const int64_t other : { -1, 0, 2, 3, 576 }) EXPECT_EQ(orvPictureHeight(other), 480u) << other;
}

TEST(Bitmap, RowsComeAsTheyStandInTheFile)
{
    ByteImage image(LINES_OF_PAL);
    image.at(0, 575) = 11;   // the bottom line is the first in the file
    image.at(719, 575) = 22;
    image.at(0, 0) = 33;
    image.at(719, 0) = 44;
    const ReadRun run = readBytes(bmpFile(image), STANDARD_PAL);
    ASSERT_EQ(run.result, 0u);
    EXPECT_EQ(run.bits, 8u);
    ASSERT_EQ(run.pixels.size(), PAL_PLANE);
    EXPECT_EQ(run.pixels[0], 11);
    EXPECT_EQ(run.pixels[719], 22);
    EXPECT_EQ(run.pixels[PAL_PLANE - 720], 33);
    EXPECT_EQ(run.pixels[PAL_PLANE - 1], 44);
}

TEST(Bitmap, PixelsOf32BitsAreBlueGreenRedAlpha)
{
    AlphaImage image(LINES_OF_NTSC);
    image.at(1, 479) = { .red = 1, .green = 2, .blue = 3, .alpha = 4 };
    const ReadRun run = readBytes(bmpFile(image));
    ASSERT_EQ(run.result, 0u);
    EXPECT_EQ(run.bits, 32u);
    ASSERT_EQ(run.pixels.size(), 1382400u);
    EXPECT_EQ(toHex(run.pixels.data(), 8), "00 00 00 00 03 02 01 04");
}

// The block is what lies between the data offset and the size that the header tells.
TEST(Bitmap, PixelsLieWhereTheHeaderSays)
{
    const Bytes pixels = counted(NTSC_PLANE);
    const struct {
        const char* what;
        RawBmp form;
    } cases[] = {
        { "right behind the headers", { .pixels = pixels } },
        { "behind a palette", { .dataOffset = 54 + 1024, .pixels = pixels } },
        { "at an odd place", { .dataOffset = 70001, .pixels = pixels } },
        { "core form", { .headerBytes = 12, .pixels = pixels } },
        { "core form, behind a palette", { .headerBytes = 12, .dataOffset = 26 + 768, .pixels = pixels } },
        { "headers of other forms", { .headerBytes = 108, .dataOffset = 122, .pixels = pixels } },
        { "of other forms", { .headerBytes = 124, .dataOffset = 138, .pixels = pixels } },
        { "a header size that says nothing", { .headerBytes = 0, .pixels = pixels } },
        { "a header size beyond all", { .headerBytes = 0xFFFFFFFF, .pixels = pixels } },
    };
    for (const auto& given : cases) {
        const ReadRun run = readBytes(rawBmp(given.form));
        EXPECT_EQ(run.result, 0u) << given.what;
        EXPECT_EQ(run.bits, 8u) << given.what;
        EXPECT_TRUE(run.pixels == pixels) << given.what;
    }
}

TEST(Bitmap, PixelsThatLieWithinTheHeadersAreRead)
{
    // A core form whose pixels follow its 26 bytes at once: the bytes read as a longer header are the first pixels.
    Bytes file = rawBmp({ .headerBytes = 12, .dataOffset = 26, .fileBytes = 26 + NTSC_PLANE, .pixels = {} });
    file.resize(26);
    const Bytes pixels = counted(NTSC_PLANE);
    file.insert(file.end(), pixels.begin(), pixels.end());
    const ReadRun run = readBytes(file);
    EXPECT_EQ(run.result, 0u);
    EXPECT_TRUE(run.pixels == pixels);
}

TEST(Bitmap, BytesBehindThePicture)
{
    const Bytes pixels = counted(NTSC_PLANE + 10);
    const Bytes picture(pixels.begin(), pixels.begin() + NTSC_PLANE);
    // Counted by the header or not, the block begins with the picture.
    for (const int64_t fileBytes : { int64_t(54 + NTSC_PLANE), int64_t(54 + NTSC_PLANE + 10) }) {
        ReadRun run = readBytes(rawBmp({ .fileBytes = fileBytes, .pixels = pixels }));
        EXPECT_EQ(run.result, 0u);
        ASSERT_GE(run.pixels.size(), NTSC_PLANE);
        run.pixels.resize(NTSC_PLANE);
        EXPECT_TRUE(run.pixels == picture);
    }
}

TEST(Bitmap, OtherFilesAreRefused)
{
    const Bytes pal = Bytes(PAL_PLANE);
    const struct {
        const char* what;
        int64_t standard;
        Bytes file;
    } cases[] = {
        { "mark of another file", STANDARD_NTSC, withMark("BA") },
        { "mark the wrong way round", STANDARD_NTSC, withMark("MB") },
        { "mark in small letters", STANDARD_NTSC, withMark("bm") },
        { "wrong mark, and no more headers", STANDARD_NTSC, cutTo(withMark("XM"), 14) },
        { "PAL in an NTSC run", STANDARD_NTSC, rawBmp({ .height = 576, .pixels = pal }) },
        { "PAL in a run of neither standard", 0, rawBmp({ .height = 576, .pixels = pal }) },
        { "NTSC in a PAL run", STANDARD_PAL, rawBmp({ .pixels = pal }) },
        { "704 wide", STANDARD_NTSC, rawBmp({ .width = 704 }) },
        { "721 wide", STANDARD_NTSC, rawBmp({ .width = 721, .pixels = pal }) },
        { "0 wide", STANDARD_NTSC, rawBmp({ .width = 0 }) },
        { "720 wide in the low 16 bits alone", STANDARD_NTSC, rawBmp({ .width = 65536 + 720 }) },
        { "a negative width", STANDARD_NTSC, rawBmp({ .width = -720 }) },
        { "479 lines", STANDARD_NTSC, rawBmp({ .height = 479 }) },
        { "481 lines", STANDARD_NTSC, rawBmp({ .height = 481, .pixels = pal }) },
        { "480 lines in the low 16 bits alone", STANDARD_NTSC, rawBmp({ .height = 65536 + 480 }) },
        { "no lines", STANDARD_NTSC, rawBmp({ .height = 0 }) },
        { "core form, 704 wide", STANDARD_NTSC, rawBmp({ .headerBytes = 12, .width = 704 }) },
        { "core form, PAL in an NTSC run", STANDARD_NTSC, rawBmp({ .headerBytes = 12, .height = 576, .pixels = pal }) },
    };
    for (const auto& given : cases) {
        EXPECT_EQ(readBytes(given.file, given.standard).result, ORV_INVALID_ARGUMENT) << given.what;
    }
    Bytes mixed = bmpFile(ByteImage(480), { .coreHeader = true });
    mixed[14] = 40;   // 16-bit fields where 32 bits are read
    EXPECT_EQ(readBytes(mixed).result, ORV_INVALID_ARGUMENT);
}

// A negative height.
TEST(Bitmap, TopDown)
{
    EXPECT_EQ(readBytes(bmpFile(ByteImage(480), { .topDown = true })).result, ORV_INVALID_ARGUMENT);
    EXPECT_EQ(readBytes(bmpFile(ByteImage(576), { .topDown = true }), STANDARD_PAL).result, ORV_INVALID_ARGUMENT);
    EXPECT_EQ(readBytes(bmpFile(AlphaImage(480), { .topDown = true })).result, ORV_INVALID_ARGUMENT);
    EXPECT_EQ(readBytes(rawBmp({ .headerBytes = 12, .height = -480 })).result, ORV_INVALID_ARGUMENT);
}

TEST(Bitmap, CutFiles)
{
    const Bytes whole = rawBmp({});
    for (const uint64_t count : { uint64_t(0), uint64_t(1), uint64_t(13), uint64_t(14), uint64_t(53), uint64_t(54),
                                  uint64_t(55), whole.size() - 720, whole.size() - 1 }) {
        EXPECT_EQ(readBytes(cutTo(whole, count)).result, OS_SHORT_READ) << count;
    }
    EXPECT_EQ(readBytes(whole).result, 0u);
    // A core form has no 54 bytes of headers by itself, but so many are read.
    EXPECT_EQ(readBytes(cutTo(rawBmp({ .headerBytes = 12, .dataOffset = 26 }), 53)).result, OS_SHORT_READ);
}

TEST(Bitmap, HeadersThatLie)
{
    const struct {
        const char* what;
        RawBmp form;
        uint64_t result;
    } cases[] = {
        { "a file of no bytes", { .fileBytes = 0 }, ORV_INVALID_ARGUMENT },
        { "a file that ends before its pixels", { .fileBytes = 53 }, ORV_INVALID_ARGUMENT },
        { "a file that ends where its pixels begin", { .fileBytes = 54 }, ORV_INVALID_ARGUMENT },
        { "a data offset behind the file's end as told",
          { .dataOffset = 400000, .fileBytes = 399999 },
          ORV_INVALID_ARGUMENT },
        { "nearly 4 GiB", { .fileBytes = 0xFFFFFFFF }, OS_SHORT_READ },
        { "nearly 4 GiB and no pixels", { .fileBytes = 0xFFFFFFFF, .pixels = {} }, OS_SHORT_READ },
        { "2 GiB", { .fileBytes = 0x80000000, .pixels = {} }, OS_SHORT_READ },
        { "one byte more than there is", { .fileBytes = 54 + NTSC_PLANE + 1 }, OS_SHORT_READ },
        { "all that is needed and no pixels", { .fileBytes = 54 + NTSC_PLANE, .pixels = {} }, OS_SHORT_READ },
        { "one byte too few, and no pixels", { .fileBytes = 54 + NTSC_PLANE - 1, .pixels = {} }, ORV_INVALID_ARGUMENT },
    };
    for (const auto& given : cases) EXPECT_EQ(readBytes(rawBmp(given.form)).result, given.result) << given.what;
}

TEST(Bitmap, DataOffsetPastTheEndOfTheFile)
{
    Bytes file = rawBmp({});
    const auto at = [&](uint32_t offset, uint32_t size) {
        for (uint64_t i = 0; i < 4; i++) file[10 + i] = uint8_t(offset >> (8 * i));
        for (uint64_t i = 0; i < 4; i++) file[2 + i] = uint8_t(size >> (8 * i));
        return readBytes(file).result;
    };
    EXPECT_EQ(at(5000000, 5000000 + NTSC_PLANE), OS_SHORT_READ);
    EXPECT_EQ(at(uint32_t(file.size()), uint32_t(file.size()) + NTSC_PLANE), OS_SHORT_READ);
    EXPECT_EQ(at(0xFFFFFFFF - NTSC_PLANE, 0xFFFFFFFF), OS_SHORT_READ);
    EXPECT_EQ(at(0xFFFFFFFF, 54 + NTSC_PLANE), ORV_INVALID_ARGUMENT);
    EXPECT_EQ(at(0xFFFFFFFF, 0), ORV_INVALID_ARGUMENT);
}

// Bytes of 480 rows, each padded to four bytes, at each depth; one byte less is refused before any pixel is read, so
// that it makes no difference that there are none.
TEST(Bitmap, PixelArrayIsHeldAgainstItsOwnDepth)
{
    const struct {
        uint16_t bits;
        uint64_t bytes;
    } cases[] = {
        { 1, 92 * 480 },    { 2, 180 * 480 },   { 4, 360 * 480 },   { 8, 720 * 480 },
        { 16, 1440 * 480 }, { 24, 2160 * 480 }, { 32, 2880 * 480 }, { 64, 5760 * 480 },
    };
    for (const auto& given : cases) {
        const Bytes pixels = counted(given.bytes);
        const ReadRun run = readBytes(rawBmp({ .bits = given.bits, .pixels = pixels }));
        EXPECT_EQ(run.result, 0u) << given.bits;
        EXPECT_EQ(run.bits, given.bits);
        // Of more than 32 bits a pixel no more is read than a picture of 32 has.
        const Bytes read(pixels.begin(), pixels.begin() + std::min<int64_t>(int64_t(given.bytes), 2880 * 480));
        EXPECT_TRUE(run.pixels == read) << given.bits;
        const RawBmp small = { .bits = given.bits, .fileBytes = int64_t(54 + given.bytes - 1), .pixels = {} };
        EXPECT_EQ(readBytes(rawBmp(small)).result, ORV_INVALID_ARGUMENT) << given.bits;
        const RawBmp empty = { .bits = given.bits, .fileBytes = int64_t(54 + given.bytes), .pixels = {} };
        EXPECT_EQ(readBytes(rawBmp(empty)).result, OS_SHORT_READ) << given.bits;
    }
    // 65535 bits a pixel: 5898152 bytes a row, 2831112960 in all.
    EXPECT_EQ(readBytes(rawBmp({ .bits = 65535 })).result, ORV_INVALID_ARGUMENT);
    EXPECT_EQ(readBytes(rawBmp({ .bits = 65535, .fileBytes = 54 + 2831112959 })).result, ORV_INVALID_ARGUMENT);
    EXPECT_EQ(readBytes(rawBmp({ .bits = 65535, .fileBytes = 54 + 2831112960 })).result, OS_SHORT_READ);
}

TEST(Bitmap, FilesThatAreNotThere)
{
    const TempDir dir;
    EXPECT_EQ(readPath(dir / u"none.bmp", STANDARD_PAL).result, FILE_NOT_FOUND);
    EXPECT_NE(readPath(dir.root.u16string(), STANDARD_PAL).result, 0u);
    uint8_t* pixels = nullptr;
    EXPECT_EQ(orvReadBitmap(nullptr, STANDARD_PAL, nullptr, &pixels), OS_INVALID_ARGUMENT);
    EXPECT_EQ(pixels, nullptr);
    EXPECT_EQ(orvReadCollisionMap((dir / u"none.bmp").c_str(), STANDARD_PAL, &pixels), FILE_NOT_FOUND);
    EXPECT_EQ(orvReadAlphaBitmap((dir / u"none.bmp").c_str(), STANDARD_PAL, &pixels), FILE_NOT_FOUND);
    EXPECT_EQ(pixels, nullptr);
}

TEST(Bitmap, WhatIsNotAskedForIsNotGiven)
{
    const TempDir dir;
    uint64_t bits = NO_BITS;
    EXPECT_EQ(orvReadBitmap((dir / u"none.bmp").c_str(), STANDARD_NTSC, &bits, nullptr), 0u);
    EXPECT_EQ(bits, NO_BITS);
    writeFile(dir / u"picture.bmp", rawBmp({ .pixels = counted(NTSC_PLANE) }));
    uint8_t* pixels = nullptr;
    EXPECT_EQ(orvReadBitmap((dir / u"picture.bmp").c_str(), STANDARD_NTSC, nullptr, &pixels), 0u);
    EXPECT_TRUE(takeBlock(pixels) == counted(NTSC_PLANE));
}

TEST(Bitmap, MapsOfAMenuHaveTheirDepth)
{
    for (const uint64_t bits : { 1u, 4u, 8u, 16u, 24u, 32u }) {
        const Bytes pixels = counted((720 * bits + 31) / 32 * 4 * 480);
        const Bytes file = rawBmp({ .bits = uint16_t(bits), .pixels = pixels });
        Bytes read;
        EXPECT_EQ(readMap(orvReadCollisionMap, file, &read), bits == 8 ? 0 : ORV_COLLISION_BITMAP_NOT_8BIT) << bits;
        EXPECT_TRUE(bits != 8 || read == pixels);
        EXPECT_EQ(readMap(orvReadAlphaBitmap, file, &read), bits == 32 ? 0 : ORV_ALPHA_BITMAP_NOT_32BIT) << bits;
        EXPECT_TRUE(bits != 32 || read == pixels);
    }
    // What makes it no picture at all is told first.
    for (const MapReader reader : { orvReadCollisionMap, orvReadAlphaBitmap }) {
        EXPECT_EQ(readMap(reader, rawBmp({ .width = 704, .bits = 24, .pixels = Bytes(2160 * 480) })),
                  ORV_INVALID_ARGUMENT);
        EXPECT_EQ(readMap(reader, rawBmp({ .bits = 24 })), ORV_INVALID_ARGUMENT);
        EXPECT_EQ(readMap(reader, rawBmp({ .bits = 24, .fileBytes = 54 + 2160 * 480 })), OS_SHORT_READ);
    }
}

TEST(Bitmap, ColorValueAndVisibilityOfAPixel)
{
    const struct {
        const char* pixel;   // blue, green, red, alpha
        uint32_t color;
        bool visible;
    } cases[] = {
        { "33 22 11 FF", 0x112233, true },  { "33 22 11 20", 0x112233, true },  { "33 22 11 1F", 0x112233, false },
        { "33 22 11 00", 0x112233, false }, { "00 00 00 FF", 0x000000, false }, { "00 00 00 20", 0x000000, false },
        { "01 00 00 20", 0x000001, true },  { "00 01 00 20", 0x000100, true },  { "00 00 01 20", 0x010000, true },
        { "FF FF FF FF", 0xFFFFFF, true },
    };
    for (const auto& given : cases) {
        const Bytes pixel = fromHex(given.pixel);
        EXPECT_EQ(orvPixelColor(pixel.data()), given.color) << given.pixel;
        EXPECT_EQ(orvPixelVisible(pixel.data()), given.visible) << given.pixel;
    }
}
