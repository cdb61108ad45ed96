// picture.cpp: an RGB picture in memory and the strokes that the previews of menus are drawn with.
#include "picture.h"

#include <algorithm>
#include <cstdlib>
#include <string>

static constexpr int64_t PIXEL_BYTES = 3;
static constexpr int64_t CELL = 2, DIGIT_COLUMNS = 5, DIGIT_ROWS = 7, MARGIN = 2;   // cells and margins in pixels
static constexpr int64_t DIGIT_STEP = CELL * (DIGIT_COLUMNS + 1);

// One byte a row from the top, the leftmost column in bit 4.
static const uint8_t DIGITS[10][DIGIT_ROWS] = {
    { 0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E },   // 0
    { 0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E },   // 1
    { 0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F },   // 2
    { 0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E },   // 3
    { 0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02 },   // 4
    { 0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E },   // 5
    { 0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E },   // 6
    { 0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08 },   // 7
    { 0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E },   // 8
    { 0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C },   // 9
};

Picture plainPicture(int64_t width, int64_t height, Rgb color)
{
    Picture picture = { width, height, std::vector<uint8_t>(size_t(width * height * PIXEL_BYTES)) };
    fillBox(&picture, { 0, 0, width - 1, height - 1 }, color);
    return picture;
}

bool contains(const Box& box, Point point)
{
    return point.x >= box.left && point.x <= box.right && point.y >= box.top && point.y <= box.bottom;
}

bool isEmpty(const Box& box)
{
    return box.right < box.left || box.bottom < box.top;
}

Box clipped(const Box& box, const Picture& picture)
{
    return { std::max<int64_t>(box.left, 0), std::max<int64_t>(box.top, 0), std::min(box.right, picture.width - 1),
             std::min(box.bottom, picture.height - 1) };
}

static bool isInside(const Picture& picture, Point point)
{
    return contains({ 0, 0, picture.width - 1, picture.height - 1 }, point);
}

static size_t byteOf(const Picture& picture, Point point)
{
    return size_t((point.y * picture.width + point.x) * PIXEL_BYTES);
}

Rgb pixelAt(const Picture& picture, Point point)
{
    const uint8_t* at = &picture.rgb[byteOf(picture, point)];
    return { at[0], at[1], at[2] };
}

void setPixel(Picture* picture, Point point, Rgb color)
{
    if (!isInside(*picture, point)) return;
    uint8_t* at = &picture->rgb[byteOf(*picture, point)];
    at[0] = color.red;
    at[1] = color.green;
    at[2] = color.blue;
}

static uint8_t mixed(uint32_t below, uint32_t above, uint32_t contrast)
{
    return uint8_t((below * (FULL_CONTRAST - contrast) + above * contrast + FULL_CONTRAST / 2) / FULL_CONTRAST);
}

void blendPixel(Picture* picture, Point point, Rgb color, uint32_t contrast)
{
    if (!isInside(*picture, point)) return;
    const Rgb below = pixelAt(*picture, point);
    const uint32_t share = std::min(contrast, FULL_CONTRAST);
    setPixel(picture, point,
             { mixed(below.red, color.red, share), mixed(below.green, color.green, share),
               mixed(below.blue, color.blue, share) });
}

void fillBox(Picture* picture, const Box& box, Rgb color)
{
    const Box inside = clipped(box, *picture);
    for (int64_t y = inside.top; y <= inside.bottom; y++) {
        for (int64_t x = inside.left; x <= inside.right; x++) setPixel(picture, { x, y }, color);
    }
}

static void drawBorder(Picture* picture, const Box& box, Rgb color)
{
    if (isEmpty(box)) return;
    fillBox(picture, { box.left, box.top, box.right, box.top }, color);
    fillBox(picture, { box.left, box.bottom, box.right, box.bottom }, color);
    fillBox(picture, { box.left, box.top, box.left, box.bottom }, color);
    fillBox(picture, { box.right, box.top, box.right, box.bottom }, color);
}

void drawFrame(Picture* picture, const Box& box, Rgb color)
{
    if (isEmpty(box)) return;
    drawBorder(picture, { box.left - 1, box.top - 1, box.right + 1, box.bottom + 1 }, OUTLINE);
    drawBorder(picture, { box.left + 1, box.top + 1, box.right - 1, box.bottom - 1 }, OUTLINE);
    drawBorder(picture, box, color);
}

// Calls stroke for each pixel of a line.
template <class Stroke> static void walkLine(Point from, Point to, Stroke stroke)
{
    const int64_t dx = std::abs(to.x - from.x), dy = std::abs(to.y - from.y);
    const int64_t stepX = from.x < to.x ? 1 : -1, stepY = from.y < to.y ? 1 : -1;
    int64_t error = dx - dy;
    for (Point at = from;;) {
        stroke(at);
        if (at == to) return;
        const int64_t doubled = 2 * error;
        if (doubled >= -dy) {
            error -= dy;
            at.x += stepX;
        }
        if (doubled <= dx) {
            error += dx;
            at.y += stepY;
        }
    }
}

void drawLine(Picture* picture, Point from, Point to, Rgb color)
{
    walkLine(from, to, [&](Point at) { setPixel(picture, at, color); });
}

void drawLineGround(Picture* picture, Point from, Point to)
{
    walkLine(from, to, [&](Point at) { fillBox(picture, { at.x - 1, at.y - 1, at.x + 1, at.y + 1 }, OUTLINE); });
}

Box numberPlate(Point corner, uint32_t number)
{
    const int64_t digits = int64_t(std::to_string(number).size());
    const int64_t width = digits * DIGIT_STEP - CELL + 2 * MARGIN, height = CELL * DIGIT_ROWS + 2 * MARGIN;
    return { corner.x, corner.y, corner.x + width - 1, corner.y + height - 1 };
}

static void drawDigit(Picture* picture, Point corner, const uint8_t* rows, Rgb color)
{
    for (int64_t row = 0; row < DIGIT_ROWS; row++) {
        for (int64_t column = 0; column < DIGIT_COLUMNS; column++) {
            if (!(rows[row] >> (DIGIT_COLUMNS - 1 - column) & 1)) continue;
            const int64_t x = corner.x + CELL * column, y = corner.y + CELL * row;
            fillBox(picture, { x, y, x + CELL - 1, y + CELL - 1 }, color);
        }
    }
}

void drawNumber(Picture* picture, Point corner, uint32_t number, Rgb color)
{
    fillBox(picture, numberPlate(corner, number), OUTLINE);
    Point at = { corner.x + MARGIN, corner.y + MARGIN };
    for (const char digit : std::to_string(number)) {
        drawDigit(picture, at, DIGITS[digit - '0'], color);
        at.x += DIGIT_STEP;
    }
}
