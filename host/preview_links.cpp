// preview_links.cpp: the links between a menu's buttons, as arrows.
#include "preview_links.h"

#include <algorithm>
#include <cmath>

Box buttonBox(const OrvPreviewButton& button)
{
    return { button.xStart, button.yStart, button.xEnd, button.yEnd };
}

static constexpr int64_t PATH_STEPS = 512;   // short enough to meet an edge within two pixels
static constexpr double BEND = 24;           // by which the arrows of one pair lie apart, in pixels
static constexpr int BENDS = 10;
static constexpr int64_t CLEARANCE = 3;   // from other buttons, in pixels
static constexpr double LEAST_LENGTH = 24, HEAD = 8, HEAD_SLOPE = 0.5;
static constexpr double FAR = 1e9;   // more than any count of places in which an arrow is hidden

// An arrow between two buttons, the lower number first, as its path runs.
struct Arrow {
    uint32_t first, second;              // button numbers
    const Rgb *fromFirst, *fromSecond;   // tint of the key that leads away from there; null: none does
};

struct PlacedArrow {
    Arrow arrow;
    double bend;
};

typedef std::vector<Point> Path;

static const Rgb KEY_TINTS[] = { LINK_UP, LINK_DOWN, LINK_LEFT, LINK_RIGHT };

static uint32_t linkOf(const OrvPreviewButton& button, size_t key)
{
    const uint32_t links[] = { button.upLink, button.downLink, button.leftLink, button.rightLink };
    return links[key];
}

static size_t oppositeKey(size_t key)
{
    return key ^ 1;
}

static std::vector<Arrow> arrowsOf(const OrvMenuPreview& menu)
{
    std::vector<Arrow> arrows;
    for (uint32_t from = 1; from <= menu.buttonCount; from++) {
        for (size_t key = 0; key < std::size(KEY_TINTS); key++) {
            const uint32_t to = linkOf(menu.buttons[from - 1], key);
            if (to == 0 || to > menu.buttonCount || to == from) continue;
            const size_t back = oppositeKey(key);
            const bool mutual = linkOf(menu.buttons[to - 1], back) == from;
            if (mutual && to < from) continue;   // drawn from the other side
            const Rgb *there = &KEY_TINTS[key], *home = mutual ? &KEY_TINTS[back] : nullptr;
            if (from < to) {
                arrows.push_back({ from, to, there, home });
            } else {
                arrows.push_back({ to, from, home, there });
            }
        }
    }
    return arrows;
}

static Point centerOf(const Box& box)
{
    return { (box.left + box.right) / 2, (box.top + box.bottom) / 2 };
}

static double distance(Point a, Point b)
{
    const double x = double(b.x - a.x), y = double(b.y - a.y);
    return std::sqrt(x * x + y * y);
}

// From centre to centre; its middle lies bend pixels beside the straight line.
static Path bentPath(Point from, Point to, double bend)
{
    Path path;
    const double length = distance(from, to);
    const double sideX = -double(to.y - from.y) / length, sideY = double(to.x - from.x) / length;
    for (int64_t i = 0; i <= PATH_STEPS; i++) {
        const double t = double(i) / PATH_STEPS, side = 4 * t * (1 - t) * bend;
        const double x = double(from.x) + t * double(to.x - from.x) + side * sideX;
        const double y = double(from.y) + t * double(to.y - from.y) + side * sideY;
        path.push_back({ std::lround(x), std::lround(y) });
    }
    return path;
}

// The part of a path between two boxes. Of boxes that touch or overlap the arrow reaches into both, so as to be seen.
static Path betweenBoxes(const Path& path, const Box& from, const Box& to)
{
    const size_t last = path.size() - 1;
    size_t start = 0, end = last;
    while (start < last && contains(from, path[start])) start++;
    while (end > 0 && contains(to, path[end])) end--;
    if (start > end) std::swap(start, end);
    while (distance(path[start], path[end]) < LEAST_LENGTH && (start > 0 || end < last)) {
        if (start > 0) start--;
        if (end < last) end++;
    }
    return Path(path.begin() + int64_t(start), path.begin() + int64_t(end) + 1);
}

// In how many places an arrow would cross buttons that it has nothing to do with, or leave the picture.
static double hiddenPlaces(const Path& path, const Picture& picture, const std::vector<Box>& boxes, const Arrow& arrow)
{
    const Box inside = { CLEARANCE, CLEARANCE, picture.width - 1 - CLEARANCE, picture.height - 1 - CLEARANCE };
    double places = 0;
    for (const Point point : path) {
        if (!contains(inside, point)) places++;
        for (size_t i = 0; i < boxes.size(); i++) {
            if (i + 1 == arrow.first || i + 1 == arrow.second || isEmpty(boxes[i])) continue;
            const Box& box = boxes[i];
            const Box wide = { box.left - CLEARANCE, box.top - CLEARANCE, box.right + CLEARANCE,
                               box.bottom + CLEARANCE };
            if (contains(wide, point)) places++;
        }
    }
    return places;
}

static bool isTaken(const std::vector<PlacedArrow>& placed, const Arrow& arrow, double bend)
{
    return std::any_of(placed.begin(), placed.end(), [&](const PlacedArrow& other) {
        return other.arrow.first == arrow.first && other.arrow.second == arrow.second &&
               std::abs(other.bend - bend) < BEND / 2;
    });
}

// The straightest way that no other arrow of the pair has taken and that crosses least.
static Path placeArrow(const Picture& picture, const std::vector<Box>& boxes, const Arrow& arrow,
                       std::vector<PlacedArrow>* placed)
{
    const Box &from = boxes[arrow.first - 1], &to = boxes[arrow.second - 1];
    Path best;
    double least = FAR, chosen = 0;
    for (int i = 0; i <= 2 * BENDS && least > 0; i++) {
        const int step = (i + 1) / 2;   // 0, then one side and the other, further and further
        const double bend = (i % 2 ? BEND : -BEND) * step;
        if (isTaken(*placed, arrow, bend)) continue;
        Path path = betweenBoxes(bentPath(centerOf(from), centerOf(to), bend), from, to);
        const double hidden = hiddenPlaces(path, picture, boxes, arrow);
        if (hidden >= least) continue;
        best = std::move(path);
        least = hidden;
        chosen = bend;
    }
    placed->push_back({ arrow, chosen });
    return best;
}

// The ends of a head's two strokes; tip is the end of the path, from which it comes.
static void headStrokes(const Path& path, bool atEnd, Point* left, Point* right)
{
    const size_t last = path.size() - 1;
    const Point tip = path[atEnd ? last : 0];
    Point behind = tip;
    for (size_t i = 0; i <= last && distance(tip, behind) < HEAD; i++) behind = path[atEnd ? last - i : i];
    const double length = std::max(distance(tip, behind), 1.0);
    const double x = double(behind.x - tip.x) / length * HEAD, y = double(behind.y - tip.y) / length * HEAD;
    *left = { tip.x + std::lround(x - y * HEAD_SLOPE), tip.y + std::lround(y + x * HEAD_SLOPE) };
    *right = { tip.x + std::lround(x + y * HEAD_SLOPE), tip.y + std::lround(y - x * HEAD_SLOPE) };
}

// stroke takes two points and the tint.
template <class Stroke> static void strokeArrow(const Path& path, const Arrow& arrow, Stroke stroke)
{
    const Rgb &first = arrow.fromFirst ? *arrow.fromFirst : *arrow.fromSecond,
              &second = arrow.fromSecond ? *arrow.fromSecond : *arrow.fromFirst;
    for (size_t i = 1; i < path.size(); i++) stroke(path[i - 1], path[i], i < path.size() / 2 ? first : second);
    Point left, right;
    if (arrow.fromFirst) {
        headStrokes(path, true, &left, &right);
        stroke(path.back(), left, second);
        stroke(path.back(), right, second);
    }
    if (arrow.fromSecond) {
        headStrokes(path, false, &left, &right);
        stroke(path.front(), left, first);
        stroke(path.front(), right, first);
    }
}

void drawLinks(Picture* picture, const OrvMenuPreview& menu)
{
    std::vector<Box> boxes;
    std::vector<PlacedArrow> placed;
    for (uint32_t i = 0; i < menu.buttonCount; i++) boxes.push_back(clipped(buttonBox(menu.buttons[i]), *picture));
    for (const Arrow& arrow : arrowsOf(menu)) {
        const Box &from = boxes[arrow.first - 1], &to = boxes[arrow.second - 1];
        if (isEmpty(from) || isEmpty(to) || centerOf(from) == centerOf(to)) continue;
        const Path path = placeArrow(*picture, boxes, arrow, &placed);
        if (path.empty()) continue;
        strokeArrow(path, arrow, [&](Point a, Point b, const Rgb&) { drawLineGround(picture, a, b); });
        strokeArrow(path, arrow, [&](Point a, Point b, const Rgb& tint) { drawLine(picture, a, b, tint); });
    }
}
