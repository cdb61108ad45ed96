// menu_reference.cpp: the menu pipeline once more, plainly.
#include "tests/menu/menu_reference.h"

#include "base/result.h"

#include <algorithm>
#include <cstring>

namespace {

// A census under way.
struct Tally {
    Counts list;
    std::map<uint64_t, size_t> places;

    void add(uint64_t value, uint64_t count = 1)
    {
        const auto [place, isNew] = places.emplace(value, list.size());
        if (isNew) list.push_back({ 0, value });
        list[place->second].count += count;
    }
};

struct Place {
    uint64_t x, line;
};

struct Places {
    std::vector<Place> inside;   // bottom line first
    bool someOutside;
};

uint64_t innerSize(uint64_t start, uint64_t end)
{
    return end > start ? end - start - 1 : 0;
}

/** Pixels of a box that has a button's columns and these lines. */
Places placesOf(const ByteImage& picture, const ButtonDesc& button, uint64_t firstLine, uint64_t lines)
{
    const uint64_t width = innerSize(button.xStart, button.xEnd);
    Places places = {};
    for (uint64_t line = picture.height; line-- > 0;) {
        if (line < firstLine || line - firstLine >= lines) continue;
        for (uint64_t x = 0; x < picture.width; x++) {
            if (x >= button.xStart && x - button.xStart < width) places.inside.push_back({ x, line });
        }
    }
    places.someOutside = places.inside.size() != width * lines;   // coordinates below 2^32, so it fits
    return places;
}

/** The box that all steps but the first look at. */
Places innerPlaces(const ByteImage& picture, const ButtonDesc& button)
{
    return placesOf(picture, button, button.yStart, innerSize(button.yStart, button.yEnd));
}

uint64_t colorOf(const Rgba& pixel)
{
    return pixel.red * 65536u + pixel.green * 256u + pixel.blue;
}

uint32_t paletteWord(uint64_t color, uint64_t alpha)
{
    const uint8_t bytes[4] = { uint8_t(alpha), uint8_t(color / 65536), uint8_t(color / 256), uint8_t(color) };
    uint32_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

uint8_t alphaOf(uint32_t paletteEntry)
{
    uint8_t bytes[4];
    std::memcpy(bytes, &paletteEntry, sizeof(bytes));
    return bytes[0];
}

void setSelection(MenuDesc* menu, uint64_t set, int b0, int b1, int b2, int b3)
{
    menu->colorSets[set - 1][0] = uint8_t(b0);
    menu->colorSets[set - 1][1] = uint8_t(b1);
    menu->colorSets[set - 1][2] = uint8_t(b2);
    menu->colorSets[set - 1][3] = uint8_t(b3);
}

void pickColors(const ReferencePicture& picture, MenuDesc* menu, WaysGone* ways)
{
    menu->manyColors = 1;
    const Counts list = referenceSorted(referenceButtonColors(picture, *menu, 0));
    const size_t picks = std::min<size_t>(3, list.size());
    size_t cursor = 0;
    for (size_t pick = 1; pick <= picks; pick++) {
        if (cursor < list.size() && list[cursor].value == 0) {
            cursor++;
            ++(*ways)["black stepped over"];
        }
        if (cursor >= list.size()) {
            ++(*ways)["black at the list's end"];
            break;
        }
        const Counts alphas = referenceAlphas(picture, list[cursor].value);
        menu->palette[pick] = paletteWord(list[cursor].value, alphas.at(0).value);
        if (alphas.size() > 1) ++(*ways)["colour of several alphas"];
        if (alphas.size() > 1 && alphas[0].count == alphas[1].count) ++(*ways)["alphas equally common"];
        cursor++;
    }
    if (picks < 3) ++(*ways)["fewer than three picks"];
    for (size_t i = 1; i < std::min<size_t>(4, list.size()); i++) {
        if (list[i].count == list[i - 1].count) ++(*ways)["colours equally common"];
    }
}

uint64_t findButtonColor(const ReferencePicture& picture, const ButtonDesc& button, uint64_t* index, WaysGone* ways)
{
    const Places box = innerPlaces(picture.collision, button);
    const Place* first = nullptr;   // topmost, then leftmost
    for (const Place& place : box.inside) {
        if (picture.collision.at(place.x, place.line) == 0) continue;
        if (!first || place.line < first->line) first = &place;
    }
    if (!first) return ORV_BUTTON_RECT_EMPTY;
    const uint64_t color = colorOf(picture.alpha.at(first->x, first->line));
    bool found = false;
    for (size_t i = 0; i < picture.census.size(); i++) {
        if (picture.census[i].value != color) continue;
        if (found) ++(*ways)["last of two entries"];
        *index = i;
        found = true;
    }
    if (!found) ++(*ways)["previous index kept"];
    return 0;
}

uint64_t settleThreeColors(const ReferencePicture& picture, MenuDesc* menu, WaysGone* ways)
{
    for (int k = 1; k <= 3; k++) setSelection(menu, uint64_t(k), 0x11 * k, 0x10 * k, 0xFA, 0x50);
    uint64_t index = 0;
    for (uint64_t i = 0; i < menu->buttonCount; i++) {
        const uint64_t result = findButtonColor(picture, menu->buttons[i], &index, ways);
        if (result) return result;
        menu->buttons[i].color = index;
    }
    return 0;
}

void settleOverlap(MenuDesc* menu, WaysGone* ways)
{
    setSelection(menu, 1, 0x11, 0x10, 0x00, 0xF0);
    setSelection(menu, 2, 0x22, 0x20, 0x0F, 0x00);
    setSelection(menu, 3, 0x33, 0x30, 0xF0, 0x00);
    menu->palette[0] = menu->palette[1];
    menu->palette[2] = menu->palette[1];
    for (uint64_t i = 0; i < menu->buttonCount; i++) {
        ButtonDesc& button = menu->buttons[i];
        button.color = button.overlapButton != 0 && i + 1 < button.overlapButton ? 2 : 1;
        if (button.color == 2) ++(*ways)["set two"];
    }
}

}   // namespace

ReferencePicture::ReferencePicture(const ByteImage& collisionMap, const AlphaImage& alphaBitmap)
    : collision(collisionMap), alpha(alphaBitmap)
{
    Tally visible;
    uint64_t transparent = 0;
    for (uint64_t line = alpha.height; line-- > 0;) {
        for (uint64_t x = 0; x < alpha.width; x++) {
            const Rgba& pixel = alpha.at(x, line);
            if (pixel.alpha < 32) {
                transparent++;
            } else {
                visible.add(colorOf(pixel));
            }
        }
    }
    census = visible.list;
    census.insert(census.begin(), { transparent, 0 });
}

void referenceSort(Counts& list, int64_t first, int64_t last)
{
    if (first >= last) return;
    const uint64_t pivot = list[size_t(first)].count;
    int64_t i = first, j = last;
    while (true) {
        while (i <= last && list[size_t(i)].count >= pivot) i++;
        while (list[size_t(j)].count < pivot) j--;   // ends at the pivot itself
        if (i >= j) break;
        std::swap(list[size_t(i)], list[size_t(j)]);
    }
    std::swap(list[size_t(first)], list[size_t(j)]);
    referenceSort(list, first, j - 1);
    referenceSort(list, j + 1, last);
}

Counts referenceSorted(Counts list)
{
    referenceSort(list, 0, int64_t(list.size()) - 1);
    return list;
}

Counts referenceButtonColors(const ReferencePicture& picture, const MenuDesc& menu, uint64_t filter)
{
    Tally total;
    for (uint64_t i = 0; i < menu.buttonCount; i++) {
        if (filter && menu.buttons[i].color != filter) continue;
        Tally own;
        for (const Place& place : innerPlaces(picture.collision, menu.buttons[i]).inside) {
            if (picture.collision.at(place.x, place.line) == i + 1)
                own.add(colorOf(picture.alpha.at(place.x, place.line)));
        }
        for (const ColorCount& entry : own.list) total.add(entry.value, entry.count);
    }
    return total.list;
}

Counts referenceAlphas(const ReferencePicture& picture, uint64_t color)
{
    Tally alphas;
    for (uint64_t line = picture.alpha.height; line-- > 0;) {
        for (uint64_t x = 0; x < picture.alpha.width; x++) {
            const Rgba& pixel = picture.alpha.at(x, line);
            if (colorOf(pixel) == color) alphas.add(pixel.alpha);
        }
    }
    return referenceSorted(alphas.list);
}

void referenceTighten(const ReferencePicture& picture, MenuDesc* menu)
{
    for (uint64_t i = 0; i < menu->buttonCount; i++) {
        ButtonDesc& button = menu->buttons[i];
        const ButtonDesc old = button;
        const uint64_t w = innerSize(old.xStart, old.xEnd), h = innerSize(old.yStart, old.yEnd);
        if (h == 0) continue;
        uint64_t largestColumn = 0, largestRow = 0, smallestColumn = 0xFFFFFFFF, smallestRow = 0xFFFFFFFF;
        for (const Place& place : placesOf(picture.collision, old, old.yStart + 1, h).inside) {
            const Rgba& pixel = picture.alpha.at(place.x, place.line);
            if (pixel.alpha < 32 || colorOf(pixel) == 0) continue;
            if (picture.collision.at(place.x, place.line) != i + 1) continue;
            const uint64_t column = place.x - old.xStart, row = old.yEnd - 1 - place.line;
            largestColumn = std::max(largestColumn, column);
            smallestColumn = std::min(smallestColumn, column);
            largestRow = std::max(largestRow, row);
            smallestRow = std::min(smallestRow, row);
        }
        if (largestColumn != 0) button.xEnd = old.xEnd - w + largestColumn;
        if (smallestColumn != 0xFFFFFFFF) button.xStart = old.xStart + smallestColumn;
        if (largestRow != 0) button.yStart = old.yStart - largestRow - 1 + h;
        if (smallestRow != 0xFFFFFFFF) button.yEnd = old.yEnd - smallestRow;
    }
}

uint64_t referenceOverlap(const ReferencePicture& picture, MenuDesc* menu)
{
    uint64_t any = 0;
    for (uint64_t i = 0; i < menu->buttonCount; i++) {
        const Places box = innerPlaces(picture.collision, menu->buttons[i]);
        Tally values;
        for (const Place& place : box.inside) values.add(picture.collision.at(place.x, place.line));
        if (box.someOutside) values.add(0);   // nobody owns what lies outside
        if (values.list.size() <= 2) continue;
        any = menu->buttonsOverlap = 1;
        for (const ColorCount& entry : values.list) {
            if (entry.value == 0 || entry.value == i + 1) continue;
            menu->buttons[i].overlapButton = entry.value;
            break;
        }
    }
    return any;
}

uint64_t referencePrepare(const ReferencePicture& picture, MenuDesc* menu, WaysGone* ways)
{
    for (uint32_t& word : menu->palette) word = 0;
    referenceTighten(picture, menu);
    const uint64_t overlap = referenceOverlap(picture, menu);
    const size_t n = picture.census.size();
    if (n > 4) {
        pickColors(picture, menu, ways);
    } else {
        for (size_t i = 0; i < n; i++) menu->palette[i] = paletteWord(picture.census[i].value, 0);
    }
    ++(*ways)[overlap ? (n > 4 ? "overlap, many colours" : "overlap")
                      : "census of " + std::to_string(std::min<size_t>(n, 5))];
    if (overlap) {
        settleOverlap(menu, ways);
        return 0;
    }
    if (n >= 3 && n < 5) {
        const uint64_t result = settleThreeColors(picture, menu, ways);
        ++(*ways)[result ? "empty box" : "three colours settled"];
        return result;
    }
    const int low = alphaOf(menu->palette[1]) / 16, middle = alphaOf(menu->palette[2]) / 16,
              high = alphaOf(menu->palette[3]) / 16;
    for (uint64_t set = 1; set <= 3; set++) {
        if (n < 3) {
            setSelection(menu, set, 0x11, 0x10, 0xFA, 0x50);
        } else {
            setSelection(menu, set, 0x32, 0x10, high * 16 + middle, low * 16);
        }
    }
    for (uint64_t i = 0; i < menu->buttonCount; i++) menu->buttons[i].color = 1;
    return 0;
}
