// picture.h: an RGB picture in memory and the strokes that the previews of menus are drawn with. Whatever lies outside
// a picture is left out.
#pragma once

#include <cstdint>
#include <vector>

struct Rgb {
    uint8_t red, green, blue;
    bool operator==(const Rgb&) const = default;
};

struct Point {
    int64_t x, y;
    bool operator==(const Point&) const = default;
};

// Both corners belong to it. It is empty where an end is below its start.
struct Box {
    int64_t left, top, right, bottom;
};

struct Picture {
    int64_t width, height;
    std::vector<uint8_t> rgb;   // three bytes a pixel, top line first
};

inline constexpr Rgb NEUTRAL_GRAY = { 128, 128, 128 }, OUTLINE = { 0, 0, 0 };
inline constexpr uint32_t FULL_CONTRAST = 15;

Picture plainPicture(int64_t width, int64_t height, Rgb color);

bool contains(const Box& box, Point point);
bool isEmpty(const Box& box);
/** The part of a box that lies in the picture. */
Box clipped(const Box& box, const Picture& picture);

/** The point has to lie in the picture. */
Rgb pixelAt(const Picture& picture, Point point);
void setPixel(Picture* picture, Point point, Rgb color);
/** Mixes a colour with what is there, in fifteenths. */
void blendPixel(Picture* picture, Point point, Rgb color, uint32_t contrast);

void fillBox(Picture* picture, const Box& box, Rgb color);
/** The pixels along the box's border, a dark line on both sides of them. */
void drawFrame(Picture* picture, const Box& box, Rgb color);
/** A line of one pixel, both ends included. */
void drawLine(Picture* picture, Point from, Point to, Rgb color);
/** A dark line of three pixels, as the ground of a light one. */
void drawLineGround(Picture* picture, Point from, Point to);

/** Box of a number's dark plate whose upper left corner is given. */
Box numberPlate(Point corner, uint32_t number);
/** A number on its plate, digits of 5 x 7 cells of 2 x 2 pixels, two pixels from each other and from the plate's
 * border.
 */
void drawNumber(Picture* picture, Point corner, uint32_t number, Rgb color);
