// menu_reference.h: the menu pipeline once more, as plainly as its rules are told, for tests to compare the engine
// with. It works on whole pictures in memory, pixel by pixel, and knows nothing of blocks, files or speed.
#pragma once

#include "menu/color_census.h"
#include "project/model.h"
#include "tests/support/bitmaps.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

typedef std::vector<ColorCount> Counts;

// Which ways through the rules were gone, and how often.
typedef std::map<std::string, uint64_t> WaysGone;

// The two pictures of a menu, with what all menus that use them have in common.
struct ReferencePicture {
    ReferencePicture(const ByteImage& collisionMap, const AlphaImage& alphaBitmap);

    const ByteImage& collision;
    const AlphaImage& alpha;
    Counts census;   // of the whole alpha bitmap
};

/** The quicksort that orders a census, on the entries first to last. */
void referenceSort(Counts& list, int64_t first, int64_t last);
Counts referenceSorted(Counts list);

/** Census of the colours of the buttons' pixels; filter 0 takes all buttons. */
Counts referenceButtonColors(const ReferencePicture& picture, const MenuDesc& menu, uint64_t filter);
/** Sorted census of the alphas that the pixels of a colour have. */
Counts referenceAlphas(const ReferencePicture& picture, uint64_t color);

void referenceTighten(const ReferencePicture& picture, MenuDesc* menu);
uint64_t referenceOverlap(const ReferencePicture& picture, MenuDesc* menu);
/** The whole pipeline; 0, or the code of a button whose box is empty. */
uint64_t referencePrepare(const ReferencePicture& picture, MenuDesc* menu, WaysGone* ways);
