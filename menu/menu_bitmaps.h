// menu_bitmaps.h: the two bitmaps of a menu, as most steps of the pipeline need them.
#pragma once

#include "project/model.h"

#include <cstdint>

struct MenuBitmaps {
    int64_t videoStandard;
    uint8_t* collision;   // owned, as the next
    uint8_t* alpha;
};

/** Reads the collision map first. Nothing is left allocated on failure. */
[[nodiscard]] uint64_t orvReadMenuBitmaps(int64_t videoStandard, const MenuDesc* menu, MenuBitmaps* bitmaps);
void orvFreeMenuBitmaps(MenuBitmaps* bitmaps);
