// bitmap_fuzz.cpp: any bytes as the bitmaps of a menu: read, worked out and encoded, as a finished sub-picture and as a
// collision map with its picture.
//
// A whole bitmap is a megabyte; so that inputs stay short, pixels are a pattern that is repeated:
//   0        flags: FLAG_...
//   1        buttons, modulo 37
//   2 - 17   rectangle of the first button, four numbers of 32 bits; the others have it moved on
//   18 - 71  headers of the collision map, 72 - 125 those of the picture
//   126 on   the pattern
// With FLAG_RAW both files are the bytes from 2 on, as they stand.

#include "fuzz/fuzz.h"

#include "base/memory.h"
#include "menu/bitmap.h"
#include "menu/menu_colors.h"
#include "menu/sub_picture.h"
#include "tests/support/bitmaps.h"
#include "tests/support/packs.h"

#include <cstdlib>
#include <cstring>

constexpr uint8_t FLAG_NTSC = 1, FLAG_RAW = 2, FLAG_CUT = 4, FLAG_LONG = 8, FLAG_CALM = 16;
constexpr size_t RECTANGLE_AT = 2, MAP_AT = 18, PICTURE_AT = 72, PATTERN_AT = 126, HEADER_BYTES = 54;

static uint32_t number(const Bytes& input, size_t at)
{
    uint32_t value = 0;
    if (at + 4 <= input.size()) memcpy(&value, input.data() + at, 4);
    return value;
}

static Bytes bitmapOf(const Bytes& input, size_t headerAt, uint64_t pixelBytes)
{
    if (input[0] & FLAG_RAW) return Bytes(input.begin() + 2, input.end());
    if (input[0] & FLAG_CUT) pixelBytes -= 1000;
    if (input[0] & FLAG_LONG) pixelBytes += 1000;
    Bytes file(HEADER_BYTES + pixelBytes, 0);
    for (size_t i = 0; i < HEADER_BYTES && headerAt + i < input.size(); i++) file[i] = input[headerAt + i];
    const size_t pattern = input.size() > PATTERN_AT ? input.size() - PATTERN_AT : 0;
    for (size_t i = 0; pattern && i < pixelBytes; i++) file[HEADER_BYTES + i] = input[PATTERN_AT + i % pattern];
    return file;
}

static void placeButtons(const Bytes& input, MenuDesc* menu)
{
    menu->buttonCount = input[1] % (MAX_BUTTONS + 1);
    for (uint64_t i = 0; i < menu->buttonCount; i++) {
        ButtonDesc* const button = &menu->buttons[i];
        button->xStart = number(input, RECTANGLE_AT) + i * 10;
        button->xEnd = number(input, RECTANGLE_AT + 4) + i * 10;
        button->yStart = number(input, RECTANGLE_AT + 8);
        button->yEnd = number(input, RECTANGLE_AT + 12);
        button->color = i;
    }
}

static void encode(const MenuDesc* menu, const std::u16string& map, const std::u16string& picture, int64_t standard)
{
    uint8_t* unit = nullptr;
    if (orvEncodeSubPicture(menu, map.c_str(), picture.c_str(), standard, &unit)) {
        if (unit) abort();
        return;
    }
    // The size that the unit tells is its own, as far as two bytes can tell it.
    const uint64_t size = osMemSize(unit);
    if (size % 2 || uint64_t(unit[0] << 8 | unit[1]) != (size & 0xFFFF)) abort();
    osFreeMem(&unit);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2) return 0;
    const Bytes input(data, data + size);
    const int64_t standard = input[0] & FLAG_NTSC ? 2 : 1;
    const uint64_t pixels = PICTURE_WIDTH * orvPictureHeight(standard);
    const TempDir dir;
    const std::u16string map = dir / u"map.bmp", picture = dir / u"picture.bmp";
    writeFile(map, bitmapOf(input, MAP_AT, pixels));
    writeFile(picture, bitmapOf(input, PICTURE_AT, pixels * (input[0] & FLAG_CALM ? 1 : ALPHA_PIXEL_BYTES)));

    encode(nullptr, map, picture, standard);
    MenuDesc menu = {};
    std::u16string mapName = map, pictureName = picture;
    menu.subPicture = mapName.data();
    menu.subPicture32 = pictureName.data();
    menu.hasSubPicture32 = 1;
    placeButtons(input, &menu);
    (void)orvPrepareMenuColors(standard, &menu);
    encode(&menu, map, picture, standard);
    return 0;
}

static Bytes seedOf(uint8_t flags, const Bytes& pattern)
{
    const uint64_t lines = flags & FLAG_NTSC ? 480 : 576;
    Bytes seed = { flags, 3 };
    for (const uint32_t edge : { 100u, 160u, 100u, 130u }) {
        for (uint32_t i = 0; i < 4; i++) seed.push_back(uint8_t(edge >> (8 * i)));
    }
    for (const Bytes& file : { bmpFile(ByteImage(lines)), bmpFile(AlphaImage(lines)) }) {
        seed.insert(seed.end(), file.begin(), file.begin() + HEADER_BYTES);
    }
    seed.insert(seed.end(), pattern.begin(), pattern.end());
    return seed;
}

std::vector<Bytes> fuzzSeeds()
{
    const Bytes whole = bmpFile(ByteImage(576));
    return { seedOf(0, { 1, 0, 0, 255, 2, 2, 2, 128, 1, 1, 1, 0 }),
             seedOf(FLAG_NTSC, { 1, 2, 3, 200, 3, 2, 1, 100, 0, 1, 0, 90, 9, 9, 9, 32, 7, 7, 7, 33 }),
             seedOf(FLAG_CALM, { 1, 1, 1, 1, 2, 2, 2, 2 }),
             Bytes{ FLAG_RAW, 0 } + Bytes(whole.begin(), whole.begin() + 60) };
}
