// preview_draw.cpp: the pictures of a menu's preview.
#include "preview_draw.h"

#include "preview_links.h"

#include <algorithm>

static constexpr Rgb FRAME = { 255, 255, 255 };
static constexpr uint32_t CODE_MASK = 3, COLOR_SETS = 3;

static Picture grayOf(const OrvMenuPreview& menu)
{
    return plainPicture(menu.width, menu.height, NEUTRAL_GRAY);
}

static uint32_t codeAt(const OrvMenuPreview& menu, Point point)
{
    return menu.codes[point.y * int64_t(menu.width) + point.x] & CODE_MASK;
}

static Rgb colorOf(const OrvPreviewColor& color)
{
    return { color.red, color.green, color.blue };
}

static void paintSubPicture(Picture* picture, const OrvMenuPreview& menu)
{
    for (int64_t y = 0; y < picture->height; y++) {
        for (int64_t x = 0; x < picture->width; x++) {
            const uint32_t code = codeAt(menu, { x, y });
            if (code) setPixel(picture, { x, y }, colorOf(menu.palette[code]));
        }
    }
}

// The number stands within the button's corner; at the border of the picture it moves inwards to be seen.
static Point numberCorner(const OrvPreviewButton& button, uint32_t number, const Picture& picture)
{
    const Box box = buttonBox(button);
    const Box plate = numberPlate({ box.left + 2, box.top + 2 }, number);
    const int64_t width = plate.right - plate.left + 1, height = plate.bottom - plate.top + 1;
    return { std::clamp<int64_t>(plate.left, 0, std::max<int64_t>(picture.width - width, 0)),
             std::clamp<int64_t>(plate.top, 0, std::max<int64_t>(picture.height - height, 0)) };
}

Picture drawMenuMap(const OrvMenuPreview& menu)
{
    Picture picture = grayOf(menu);
    paintSubPicture(&picture, menu);
    for (uint32_t i = 0; i < menu.buttonCount; i++) drawFrame(&picture, buttonBox(menu.buttons[i]), FRAME);
    drawLinks(&picture, menu);
    for (uint32_t i = 0; i < menu.buttonCount; i++) {
        drawNumber(&picture, numberCorner(menu.buttons[i], i + 1, picture), i + 1, FRAME);
    }
    return picture;
}

static void paintHighlight(Picture* picture, const OrvMenuPreview& menu, const OrvPreviewButton& button,
                           ButtonState state)
{
    if (button.colorSet == 0 || button.colorSet > COLOR_SETS) return;
    const OrvPreviewColor* colors = menu.colors[button.colorSet - 1][state];
    const Box box = clipped(buttonBox(button), *picture);
    for (int64_t y = box.top; y <= box.bottom; y++) {
        for (int64_t x = box.left; x <= box.right; x++) {
            const OrvPreviewColor& color = colors[codeAt(menu, { x, y })];
            blendPixel(picture, { x, y }, colorOf(color), color.contrast);
        }
    }
}

Picture drawHighlight(const OrvMenuPreview& menu, ButtonState state, uint32_t onlyButton)
{
    Picture picture = grayOf(menu);
    for (uint32_t i = 0; i < menu.buttonCount; i++) {
        if (onlyButton && onlyButton != i + 1) continue;
        paintHighlight(&picture, menu, menu.buttons[i], state);
    }
    return picture;
}
