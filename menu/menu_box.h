// menu_box.h: the box of a button, and the part of it that lies in the picture.
#pragma once

#include "project/model.h"

#include <cstdint>

// The box of a button: `xEnd` and `yEnd` lie beyond it. Both sizes are 0 where the end isn't above the start.
[[nodiscard]] inline uint64_t orvInnerWidth(const ButtonDesc* button)
{
    return button->xEnd > button->xStart ? button->xEnd - button->xStart - 1 : 0;
}
[[nodiscard]] inline uint64_t orvInnerHeight(const ButtonDesc* button)
{
    return button->yEnd > button->yStart ? button->yEnd - button->yStart - 1 : 0;
}

// Lines count from the picture's top. Empty boxes have a width and a height of 0.
struct MenuBox {
    uint64_t x, line, width, height;
    bool leavesPicture;   // part of the button's box lies outside
};

/** The box of a button: from its start, as large as its inner width and height. */
[[nodiscard]] MenuBox orvButtonBox(const ButtonDesc* button, int64_t videoStandard);
/** The same one line lower. */
[[nodiscard]] MenuBox orvLowerButtonBox(const ButtonDesc* button, int64_t videoStandard);

/** Position of a line's first pixel in a bitmap that is stored bottom line first. */
[[nodiscard]] uint64_t orvStoredLine(uint64_t line, int64_t videoStandard);
