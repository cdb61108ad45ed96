// menu_model.h: what a menu's sub-pictures have to show, worked out from its pictures alone: which code each pixel has,
// and the colour set of each button. Pictures are kept top line first, and nothing is shared with the engine.
#pragma once

#include "tests/support/bitmaps.h"

#include <cstdint>
#include <string>
#include <vector>

// A button as a project places it, and what becomes of it.
struct ModelButton {
    int64_t xStart, xEnd, yStart, yEnd;
    uint64_t color = 1;   // as the project says, then of the picture
    uint64_t overlap = 0;
};

struct MenuModel {
    std::vector<ModelButton> buttons;
    bool overlap = false, manyColors = false, emptyButton = false;
    std::vector<Rgba> palette;       // entries 1 to 3, red, green, blue; alpha as highlighted
    std::vector<std::string> sets;   // words of selected buttons, as hex text

    /** Works everything out but the codes. */
    void prepare(const ByteImage& map, const AlphaImage& picture);
    /** Codes of a picture, which may be the letterbox form of the one that everything was worked out from. */
    ByteImage codes(const ByteImage& map, const AlphaImage& picture) const;
};
