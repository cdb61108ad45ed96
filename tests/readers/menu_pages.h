// menu_pages.h: menu pages of discs that are to be authored: their buttons, bitmaps and sections.
#pragma once

#include "tests/readers/material.h"
#include "tests/support/bitmaps.h"

struct ButtonPlan {
    uint32_t xStart, xEnd, yStart, yEnd;
    std::string command;
    uint32_t color = 1;
    uint32_t up = 0, down = 0, left = 0, right = 0;
    int autoAction = 0;
};

inline uint64_t pictureLines(Standard standard)
{
    return standard == PAL ? 576 : 480;
}

/** So many buttons in columns beside and below each other, 60 x 40 pixels each, all with this command. The cursor keys
    lead to the neighbours, and around. */
std::vector<ButtonPlan> buttonGrid(uint32_t columns, uint32_t rows, const std::string& command);

/** A bitmap of pixel codes with a frame, two pixels wide, around each button just inside its rectangle. The frame of
    button n has code 1 + (n - 1) % 3. */
ByteImage frames(Standard standard, const std::vector<ButtonPlan>& buttons);

/** A section: the page's video, `subpicture` with the frames of its buttons, the button keys, and further lines. Lines
    that name `subpicture` themselves leave out the frames. */
std::string menuPage(const std::string& section, Standard standard, const std::filesystem::path& background,
                     const std::vector<ButtonPlan>& buttons, const std::string& keys = {});

/** Keys that name two bitmaps from which the engine is to find buttons and colours. */
std::string alphaKeys(const ByteImage& map, const AlphaImage& alpha, bool letterbox = false);
