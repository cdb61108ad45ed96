// menu_box.cpp: cuts a button's box to the picture.

#include "menu/menu_box.h"

#include "menu/bitmap.h"

// A stretch of pixels along one axis.
struct Stretch {
    uint64_t start, length;
};

/** Cuts a stretch to an axis of this size; what lies outside alone is empty. */
static Stretch cut(Stretch stretch, uint64_t size)
{
    if (stretch.start >= size) return { 0, 0 };
    const uint64_t room = size - stretch.start;
    return { stretch.start, stretch.length < room ? stretch.length : room };
}

static MenuBox boxFrom(const ButtonDesc* button, uint64_t firstLine, int64_t videoStandard)
{
    const uint64_t width = orvInnerWidth(button), height = orvInnerHeight(button);
    const Stretch columns = cut({ button->xStart, width }, PICTURE_WIDTH);
    const Stretch lines = cut({ firstLine, height }, orvPictureHeight(videoStandard));
    MenuBox box = { columns.start, lines.start, columns.length, lines.length, false };
    box.leavesPicture = width > 0 && height > 0 && (box.width < width || box.height < height);
    if (box.width == 0 || box.height == 0) box.width = box.height = 0;
    return box;
}

MenuBox orvButtonBox(const ButtonDesc* button, int64_t videoStandard)
{
    return boxFrom(button, button->yStart, videoStandard);
}

MenuBox orvLowerButtonBox(const ButtonDesc* button, int64_t videoStandard)
{
    return boxFrom(button, button->yStart + 1, videoStandard);
}

uint64_t orvStoredLine(uint64_t line, int64_t videoStandard)
{
    return (orvPictureHeight(videoStandard) - 1 - line) * PICTURE_WIDTH;
}
