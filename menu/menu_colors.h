// menu_colors.h: works out of a menu's two bitmaps what its project does not say: exact button rectangles, overlapping
// buttons, the palette, the colour sets and each button's colour set.
//
// Every step reads the bitmaps afresh, the collision map first. A step's failure is ORV_COLLISION_BITMAP_NOT_8BIT,
// ORV_ALPHA_BITMAP_NOT_32BIT or what orvReadBitmap returns; the menu may be half-changed then. Pixels of a button's
// rectangle that lie outside the picture are transparent and belong to no button.
#pragma once

#include "menu/color_census.h"
#include "project/model.h"

#include <cstdint>

/** All steps, for a menu with a 32-bit form. Goes before the menu's sub-picture is encoded. */
[[nodiscard]] uint64_t orvPrepareMenuColors(int64_t videoStandard, MenuDesc* menu);

/** Tightens each button's rectangle around its visible pixels. */
[[nodiscard]] uint64_t orvTightenButtonRects(int64_t videoStandard, MenuDesc* menu);

/** Sets `overlapButton` of buttons whose box holds pixels of another one, and `buttonsOverlap` of the menu.
    @param any  gets 1 if some do, else 0 */
[[nodiscard]] uint64_t orvFindButtonOverlap(int64_t videoStandard, MenuDesc* menu, uint64_t* any);

/** Census of the alpha bitmap's colours over the pixels of all buttons, of transparent and black ones too.
    @param filterColor  0, or the colour set whose buttons alone are counted
    @param count        gets the number of entries; may be null
    @param list         gets a block that the caller owns */
[[nodiscard]] uint64_t orvCensusButtonColors(int64_t videoStandard, const MenuDesc* menu, uint64_t filterColor,
                                             uint64_t* count, ColorCount** list);

/** The alpha that most pixels of a colour have; 0 for a colour that no pixel has.
    @param distinct  gets the number of different ones */
[[nodiscard]] uint64_t orvMostCommonAlpha(int64_t videoStandard, const MenuDesc* menu, uint64_t color,
                                          uint64_t* distinct, uint64_t* alpha);

/** Position in a census of the colour at the first pixel of the button's box that belongs to a button, from the top.
    width and height are those of the picture.
    @param index  is not written if the census has no such colour
    @return ORV_BUTTON_RECT_EMPTY besides the failures of a step, if the box has no such pixel */
[[nodiscard]] uint64_t orvFindButtonColor(const ColorCount* colorList, const uint8_t* alphaPixels,
                                          int64_t videoStandard, const MenuDesc* menu, uint64_t buttonIndex,
                                          uint64_t width, uint64_t height, uint64_t* index);
