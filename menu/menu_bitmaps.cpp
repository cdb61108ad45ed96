// menu_bitmaps.cpp: reads the two bitmaps of a menu.

#include "menu/menu_bitmaps.h"

#include "base/memory.h"
#include "menu/bitmap.h"

uint64_t orvReadMenuBitmaps(int64_t videoStandard, const MenuDesc* menu, MenuBitmaps* bitmaps)
{
    *bitmaps = { videoStandard, nullptr, nullptr };
    uint64_t result = orvReadCollisionMap(menu->subPicture, videoStandard, &bitmaps->collision);
    if (!result) result = orvReadAlphaBitmap(menu->subPicture32, videoStandard, &bitmaps->alpha);
    if (result) orvFreeMenuBitmaps(bitmaps);
    return result;
}

void orvFreeMenuBitmaps(MenuBitmaps* bitmaps)
{
    (void)osFreeMem(&bitmaps->collision);
    (void)osFreeMem(&bitmaps->alpha);
}
