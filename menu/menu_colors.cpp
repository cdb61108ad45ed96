// menu_colors.cpp: works out a menu's palette, its colour sets and each button's colour set from its two bitmaps.

#include "menu/menu_colors.h"

#include "base/memory.h"
#include "base/result.h"
#include "menu/bitmap.h"
#include "menu/menu_bitmaps.h"
#include "menu/menu_box.h"

// ---- censuses -----------------------------------------------------------------------------------------------------

static uint64_t countButton(const MenuBitmaps* bitmaps, const ButtonDesc* button, uint64_t number, Census* census)
{
    const MenuBox box = orvButtonBox(button, bitmaps->videoStandard);
    for (uint64_t line = box.line + box.height; line-- > box.line;) {   // as stored, bottom line first
        const uint64_t stored = orvStoredLine(line, bitmaps->videoStandard);
        for (uint64_t at = stored + box.x; at < stored + box.x + box.width; at++) {
            if (bitmaps->collision[at] != number) continue;
            const uint32_t color = orvPixelColor(bitmaps->alpha + at * ALPHA_PIXEL_BYTES);
            if (uint64_t error = orvCountValue(census, color, 1)) return error;
        }
    }
    return 0;
}

static uint64_t countButtons(const MenuBitmaps* bitmaps, const MenuDesc* menu, uint64_t filterColor, Census* census)
{
    for (uint64_t i = 0; i < menu->buttonCount && i < MAX_BUTTONS; i++) {
        if (filterColor != 0 && menu->buttons[i].color != filterColor) continue;
        if (uint64_t error = countButton(bitmaps, menu->buttons + i, i + 1, census)) return error;
    }
    return 0;
}

uint64_t orvCensusButtonColors(int64_t videoStandard, const MenuDesc* menu, uint64_t filterColor, uint64_t* count,
                               ColorCount** list)
{
    *list = nullptr;
    MenuBitmaps bitmaps;
    Census census;
    if (uint64_t error = orvReadMenuBitmaps(videoStandard, menu, &bitmaps)) return error;
    uint64_t result = orvBeginCensus(&census);
    if (!result) result = countButtons(&bitmaps, menu, filterColor, &census);
    if (!result) result = orvEndCensus(&census, list);
    orvDropCensus(&census);
    orvFreeMenuBitmaps(&bitmaps);
    if (count) *count = osListCount(*list);
    return result;
}

static uint64_t countAlphas(const uint8_t* pixels, uint64_t count, uint64_t color, Census* census)
{
    for (uint64_t i = 0; i < count; i++) {
        const uint8_t* pixel = pixels + i * ALPHA_PIXEL_BYTES;
        if (orvPixelColor(pixel) != color) continue;
        if (uint64_t error = orvCountValue(census, pixel[3], 1)) return error;
    }
    return 0;
}

uint64_t orvMostCommonAlpha(int64_t videoStandard, const MenuDesc* menu, uint64_t color, uint64_t* distinct,
                            uint64_t* alpha)
{
    uint8_t* pixels = nullptr;
    if (uint64_t error = orvReadAlphaBitmap(menu->subPicture32, videoStandard, &pixels)) return error;
    Census census;
    ColorCount* list = nullptr;
    uint64_t result = orvBeginCensus(&census);
    if (!result) {
        result = countAlphas(pixels, PICTURE_WIDTH * orvPictureHeight(videoStandard), color, &census);
    }
    if (!result) result = orvEndCensus(&census, &list);
    orvDropCensus(&census);
    (void)osFreeMem(&pixels);
    if (result) return result;
    const uint64_t found = osListCount(list);
    if (found > 0) orvSortCountList(list, 0, found - 1);
    *distinct = found;
    *alpha = found > 0 ? list[0].value : 0;
    return osFreeMem(&list);
}

// ---- colour of a button -------------------------------------------------------------------------------------------

/** Stored position of the first pixel, from the top, that belongs to a button. */
static bool findOwnedPixel(const uint8_t* collision, const MenuBox& box, uint64_t width, uint64_t height, uint64_t* at)
{
    for (uint64_t line = box.line; line < box.line + box.height; line++) {
        for (uint64_t x = box.x; x < box.x + box.width; x++) {
            *at = (height - 1 - line) * width + x;
            if (collision[*at] != 0) return true;
        }
    }
    return false;
}

uint64_t orvFindButtonColor(const ColorCount* colorList, const uint8_t* alphaPixels, int64_t videoStandard,
                            const MenuDesc* menu, uint64_t buttonIndex, uint64_t width, uint64_t height,
                            uint64_t* index)
{
    uint8_t* collision = nullptr;
    if (uint64_t error = orvReadCollisionMap(menu->subPicture, videoStandard, &collision)) return error;
    uint64_t at = 0;
    const MenuBox box = orvButtonBox(menu->buttons + buttonIndex, videoStandard);
    const bool found = findOwnedPixel(collision, box, width, height, &at);
    (void)osFreeMem(&collision);
    if (!found) return ORV_BUTTON_RECT_EMPTY;
    const uint32_t color = orvPixelColor(alphaPixels + at * ALPHA_PIXEL_BYTES);
    // The last entry of a value: opaque black stands behind the transparent pixels, which have its value too.
    for (uint64_t i = 0; i < osListCount(colorList); i++) {
        if (colorList[i].value == color) *index = i;
    }
    return 0;
}

// ---- palette ------------------------------------------------------------------------------------------------------

constexpr uint64_t PICKED_COLORS = 3;
constexpr uint64_t ONE_COLOR_CENSUS = 2;   // entries of a census of one colour, and the transparent
constexpr uint64_t FULL_CENSUS = 4;   // entries of a census whose colours fit the palette: three, and the transparent

/** A palette word: bytes alpha, red, green, blue. */
static uint32_t paletteWord(uint64_t color, uint64_t alpha)
{
    return uint32_t(alpha & 0xFF) | uint32_t(color >> 16 & 0xFF) << 8 | uint32_t(color >> 8 & 0xFF) << 16 |
           uint32_t(color & 0xFF) << 24;
}

static void pickColors(int64_t videoStandard, MenuDesc* menu, const ColorCount* list)
{
    const uint64_t count = osListCount(list);
    const uint64_t picks = count < PICKED_COLORS ? count : PICKED_COLORS;
    uint64_t alpha = 0, distinct = 0, at = 0;
    for (uint64_t i = 1; i <= picks; i++) {
        // Meant: black is stepped over once a pick, and what follows it is taken as it is.
        // Test: MenuColors.BlackIsSteppedOverOnce
        if (at < count && list[at].value == 0) at++;
        if (at >= count) return;
        const uint64_t color = list[at++].value;
        // A colour whose alpha can't be found out takes the one before.
        (void)orvMostCommonAlpha(videoStandard, menu, color, &distinct, &alpha);
        menu->palette[i] = paletteWord(color, alpha);
    }
}

/** More colours than the palette holds: those that most pixels of buttons have. */
static uint64_t reduceColors(int64_t videoStandard, MenuDesc* menu)
{
    menu->manyColors = 1;
    ColorCount* list = nullptr;
    uint64_t count = 0;
    if (uint64_t error = orvCensusButtonColors(videoStandard, menu, 0, &count, &list)) return error;
    if (count > 0) orvSortCountList(list, 0, count - 1);
    menu->palette[0] = 0;
    pickColors(videoStandard, menu, list);
    return osFreeMem(&list);
}

static uint64_t makePalette(int64_t videoStandard, MenuDesc* menu, const ColorCount* census)
{
    const uint64_t count = osListCount(census);
    if (count > FULL_CENSUS) return reduceColors(videoStandard, menu);
    for (uint64_t i = 0; i < count; i++) menu->palette[i] = paletteWord(census[i].value, 0);
    return 0;
}

// ---- colour sets --------------------------------------------------------------------------------------------------

// Selection word of a colour set: the colours of emphasis 2 and 1, of pattern and background, then their contrasts.
constexpr uint64_t SELECTION_BYTES = 4;

/** Meant: the activation word stays what the project says. Test: MenuColors.OnlyTheSelectionWordChanges */
static void setSelection(MenuDesc* menu, uint64_t set, const uint8_t (&word)[SELECTION_BYTES])
{
    osCopyMem(menu->colorSets[set], word, SELECTION_BYTES);
}

// Buttons that overlap: a set shows one pixel code alone, so that the code tells the buttons apart.
static void setOverlapColors(MenuDesc* menu)
{
    setSelection(menu, 0, { 0x11, 0x10, 0x00, 0xF0 });
    setSelection(menu, 1, { 0x22, 0x20, 0x0F, 0x00 });
    setSelection(menu, 2, { 0x33, 0x30, 0xF0, 0x00 });
    menu->palette[0] = menu->palette[2] = menu->palette[1];
    for (uint64_t i = 0; i < menu->buttonCount && i < MAX_BUTTONS; i++) {
        ButtonDesc* button = menu->buttons + i;
        // An overlapButton of 0 is below every number.
        button->color = i + 1 < button->overlapButton ? 2 : 1;
    }
}

static void setButtonColors(MenuDesc* menu, uint64_t color)
{
    for (uint64_t i = 0; i < menu->buttonCount && i < MAX_BUTTONS; i++) menu->buttons[i].color = color;
}

// Contrasts of the three alpha levels that the codes 3, 2 and 1 stand for.
constexpr uint8_t LEVELS_HIGH = 0xFA, LEVELS_LOW = 0x50;

/** All codes have one colour of the palette, each its own contrast. */
static void setLevels(MenuDesc* menu, uint64_t set, uint8_t color)
{
    setSelection(menu, set, { uint8_t(color << 4 | color), uint8_t(color << 4), LEVELS_HIGH, LEVELS_LOW });
}

static uint64_t setColorPerButton(int64_t videoStandard, MenuDesc* menu, const ColorCount* census)
{
    for (uint8_t set = 0; set < COLOR_SETS; set++) setLevels(menu, set, uint8_t(set + 1));
    uint8_t* alpha = nullptr;
    if (uint64_t error = orvReadAlphaBitmap(menu->subPicture32, videoStandard, &alpha)) return error;
    uint64_t result = 0, index = 0;
    for (uint64_t i = 0; i < menu->buttonCount && i < MAX_BUTTONS && !result; i++) {
        // Meant: a button whose colour the census lacks takes over the index of the one before.
        // Test: MenuColors.ButtonTakesThePreviousIndex
        result = orvFindButtonColor(census, alpha, videoStandard, menu, i, PICTURE_WIDTH,
                                    orvPictureHeight(videoStandard), &index);
        if (!result) menu->buttons[i].color = index;
    }
    (void)osFreeMem(&alpha);
    return result;
}

/** Each code has a colour of its own, with that colour's alpha as contrast. */
static void setManyColors(MenuDesc* menu)
{
    const uint64_t first = menu->palette[1] & 0xF0, second = menu->palette[2] & 0xF0, third = menu->palette[3] & 0xF0;
    for (uint64_t set = 0; set < COLOR_SETS; set++) {
        setSelection(menu, set, { 0x32, 0x10, uint8_t(third | second >> 4), uint8_t(first) });
    }
    setButtonColors(menu, 1);
}

static uint64_t settleColors(int64_t videoStandard, MenuDesc* menu, bool overlap, const ColorCount* census)
{
    const uint64_t count = osListCount(census);
    if (overlap) {
        setOverlapColors(menu);
    } else if (count <= ONE_COLOR_CENSUS) {
        for (uint64_t set = 0; set < COLOR_SETS; set++) setLevels(menu, set, 1);
        setButtonColors(menu, 1);
    } else if (count <= FULL_CENSUS) {
        return setColorPerButton(videoStandard, menu, census);
    } else {
        setManyColors(menu);
    }
    return 0;
}

// ---- the whole ----------------------------------------------------------------------------------------------------

static uint64_t countPicture(int64_t videoStandard, const MenuDesc* menu, ColorCount** census)
{
    uint8_t* alpha = nullptr;
    if (uint64_t error = orvReadAlphaBitmap(menu->subPicture32, videoStandard, &alpha)) return error;
    const uint64_t result =
        orvCountBitmapColors(alpha, ALPHA_BITS, 0, 0, PICTURE_WIDTH, orvPictureHeight(videoStandard), 0, census);
    (void)osFreeMem(&alpha);
    return result;
}

uint64_t orvPrepareMenuColors(int64_t videoStandard, MenuDesc* menu)
{
    osZeroMem(menu->palette, sizeof menu->palette);
    uint64_t overlap = 0;
    ColorCount* census = nullptr;
    if (uint64_t error = orvTightenButtonRects(videoStandard, menu)) return error;
    if (uint64_t error = orvFindButtonOverlap(videoStandard, menu, &overlap)) return error;
    if (uint64_t error = countPicture(videoStandard, menu, &census)) return error;
    uint64_t result = makePalette(videoStandard, menu, census);
    if (!result) result = settleColors(videoStandard, menu, overlap != 0, census);
    (void)osFreeMem(&census);
    return result;
}
