// menu_rects.cpp: tightens button rectangles and finds buttons that overlap, from a menu's two bitmaps.

#include "base/memory.h"
#include "menu/bitmap.h"
#include "menu/menu_bitmaps.h"
#include "menu/menu_box.h"
#include "menu/menu_colors.h"

// ---- rectangles ---------------------------------------------------------------------------------------------------

constexpr uint64_t NOT_SET = 0xFFFFFFFF;

// Where a button's visible pixels lie in its box. Columns count from the left, rows from the box's lowest line.
struct Hits {
    uint64_t leastColumn, mostColumn, leastRow, mostRow;
};

static void addHit(Hits* hits, uint64_t column, uint64_t row)
{
    if (column < hits->leastColumn) hits->leastColumn = column;
    if (column > hits->mostColumn) hits->mostColumn = column;
    if (row < hits->leastRow) hits->leastRow = row;
    if (row > hits->mostRow) hits->mostRow = row;
}

/** Meant: the scan is one line lower than the box of all later steps. Test: MenuRects.ScanIsOneLineLowerThanTheBox */
static Hits findHits(const MenuBitmaps* bitmaps, const ButtonDesc* button, uint64_t number)
{
    Hits hits = { NOT_SET, 0, NOT_SET, 0 };
    const MenuBox box = orvLowerButtonBox(button, bitmaps->videoStandard);
    for (uint64_t line = box.line; line < box.line + box.height; line++) {
        const uint64_t stored = orvStoredLine(line, bitmaps->videoStandard);
        for (uint64_t x = box.x; x < box.x + box.width; x++) {
            if (bitmaps->collision[stored + x] != number) continue;
            if (!orvPixelVisible(bitmaps->alpha + (stored + x) * ALPHA_PIXEL_BYTES)) continue;
            addHit(&hits, x - button->xStart, button->yEnd - 1 - line);
        }
    }
    return hits;
}

static void tighten(const MenuBitmaps* bitmaps, ButtonDesc* button, uint64_t number)
{
    const uint64_t width = orvInnerWidth(button), height = orvInnerHeight(button);
    if (height == 0) return;
    const Hits hits = findHits(bitmaps, button, number);
    const ButtonDesc old = *button;
    // Meant: a largest column or row of 0 counts as none, so that a button whose hits all lie in the box's first column
    // keeps its end. Test: MenuRects.FirstColumnKeepsTheEnd
    if (hits.mostColumn != 0) button->xEnd = old.xEnd - width + hits.mostColumn;
    if (hits.leastColumn != NOT_SET) button->xStart = old.xStart + hits.leastColumn;
    if (hits.mostRow != 0) button->yStart = old.yStart - hits.mostRow - 1 + height;
    if (hits.leastRow != NOT_SET) button->yEnd = old.yEnd - hits.leastRow;
}

uint64_t orvTightenButtonRects(int64_t videoStandard, MenuDesc* menu)
{
    MenuBitmaps bitmaps;
    if (uint64_t error = orvReadMenuBitmaps(videoStandard, menu, &bitmaps)) return error;
    for (uint64_t i = 0; i < menu->buttonCount && i < MAX_BUTTONS; i++) tighten(&bitmaps, menu->buttons + i, i + 1);
    orvFreeMenuBitmaps(&bitmaps);
    return 0;
}

// ---- overlap ------------------------------------------------------------------------------------------------------

constexpr uint64_t MOST_OF_ONE_BUTTON = 2;   // values in the box of a button that is alone there: its own and none

static uint64_t checkOverlap(const uint8_t* collision, int64_t videoStandard, ButtonDesc* button, uint64_t number,
                             uint64_t* any)
{
    const MenuBox box = orvButtonBox(button, videoStandard);
    ColorCount* list = nullptr;
    const uint64_t lowestRow = orvPictureHeight(videoStandard) - box.line - box.height;
    if (uint64_t error = orvCountBitmapColors(collision, COLLISION_BITS, box.x, lowestRow, box.width, box.height,
                                              PICTURE_WIDTH - box.width, &list)) {
        return error;
    }
    uint64_t values = osListCount(list), other = 0;
    bool nobodys = false;
    for (uint64_t i = osListCount(list); i-- > 0;) {   // backwards, so that the first of the others stays
        if (list[i].value == 0) nobodys = true;
        if (list[i].value != 0 && list[i].value != number) other = list[i].value;
    }
    if (box.leavesPicture && !nobodys) values++;   // out there no button owns a pixel
    if (values > MOST_OF_ONE_BUTTON) {
        button->overlapButton = other;
        *any = 1;
    }
    return osFreeMem(&list);
}

uint64_t orvFindButtonOverlap(int64_t videoStandard, MenuDesc* menu, uint64_t* any)
{
    *any = 0;
    uint8_t* collision = nullptr;
    if (uint64_t error = orvReadCollisionMap(menu->subPicture, videoStandard, &collision)) return error;
    uint64_t result = 0;
    for (uint64_t i = 0; i < menu->buttonCount && i < MAX_BUTTONS && !result; i++) {
        result = checkOverlap(collision, videoStandard, menu->buttons + i, i + 1, any);
    }
    if (*any) menu->buttonsOverlap = 1;
    (void)osFreeMem(&collision);
    return result;
}
