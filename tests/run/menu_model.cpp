#include "tests/run/menu_model.h"

#include "tests/support/files.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <map>

namespace {

uint32_t valueOf(const Rgba& pixel)
{
    return uint32_t(pixel.red) << 16 | uint32_t(pixel.green) << 8 | pixel.blue;
}

bool visible(const Rgba& pixel)
{
    return pixel.alpha >= 32 && valueOf(pixel) != 0;
}

bool inside(const AlphaImage& picture, int64_t x, int64_t y)
{
    return x >= 0 && x < int64_t(picture.width) && y >= 0 && y < int64_t(picture.height);
}

// Values in the order in which they are met, with their counts.
struct Tally {
    std::vector<std::pair<uint32_t, uint64_t>> entries;

    void add(uint32_t value, uint64_t count = 1)
    {
        for (auto& entry : entries) {
            if (entry.first == value) {
                entry.second += count;
                return;
            }
        }
        entries.push_back({ value, count });
    }
    // The most frequent first; which of equal ones is first follows from the way of sorting.
    void sort(int64_t first, int64_t last)
    {
        if (first >= last) return;
        const uint64_t pivot = entries[size_t(first)].second;
        int64_t i = first, j = last;
        while (i < j) {
            while (i < last && entries[size_t(i)].second >= pivot) i++;
            while (j > first && entries[size_t(j)].second < pivot) j--;
            if (i < j) std::swap(entries[size_t(i)], entries[size_t(j)]);
        }
        std::swap(entries[size_t(first)], entries[size_t(j)]);
        sort(first, j - 1);
        sort(j + 1, last);
    }
    void sort()
    {
        sort(0, int64_t(entries.size()) - 1);
    }
};

int64_t innerWidth(const ModelButton& button)
{
    return std::max<int64_t>(button.xEnd - button.xStart - 1, 0);
}

int64_t innerHeight(const ModelButton& button)
{
    return std::max<int64_t>(button.yEnd - button.yStart - 1, 0);
}

// Calls what with each pixel of a button's box, bottom line first.
template <class What> void forBox(const ModelButton& button, const AlphaImage& picture, const What& what)
{
    for (int64_t y = button.yStart + innerHeight(button) - 1; y >= button.yStart; y--) {
        for (int64_t x = button.xStart; x < button.xStart + innerWidth(button); x++) {
            if (inside(picture, x, y)) what(uint64_t(x), uint64_t(y));
        }
    }
}

void tighten(ModelButton& button, uint64_t number, const ByteImage& map, const AlphaImage& picture)
{
    if (innerHeight(button) == 0) return;
    int64_t left = INT64_MAX, right = INT64_MIN, top = INT64_MAX, bottom = INT64_MIN;
    for (int64_t y = button.yStart + 1; y <= button.yEnd - 1; y++) {
        for (int64_t x = button.xStart; x < button.xStart + innerWidth(button); x++) {
            if (!inside(picture, x, y)) continue;
            if (map.at(uint64_t(x), uint64_t(y)) != number || !visible(picture.at(uint64_t(x), uint64_t(y)))) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    if (left > right) return;
    // An edge that lies in the first column, or in the lowest line, is taken for none.
    const ModelButton old = button;
    if (right != old.xStart) button.xEnd = right + 1;
    button.xStart = left;
    if (top != old.yEnd - 1) button.yStart = top - 1;
    button.yEnd = bottom + 1;
}

void takeSets(MenuModel& model, const std::vector<std::string>& words)
{
    for (const std::string& word : words) model.sets.push_back(toHex(fromHex(word)));
}

// The census index of the colour in which a button is met from the top; 0 if nothing of any button lies in its box.
bool firstColor(const ModelButton& button, const ByteImage& map, const AlphaImage& picture, uint32_t* color)
{
    for (int64_t y = button.yStart; y < button.yStart + innerHeight(button); y++) {
        for (int64_t x = button.xStart; x < button.xStart + innerWidth(button); x++) {
            if (!inside(picture, x, y) || map.at(uint64_t(x), uint64_t(y)) == 0) continue;
            *color = valueOf(picture.at(uint64_t(x), uint64_t(y)));
            return true;
        }
    }
    return false;
}

uint8_t commonAlpha(const AlphaImage& picture, uint32_t color)
{
    Tally alphas;
    for (int64_t y = int64_t(picture.height) - 1; y >= 0; y--) {
        for (uint64_t x = 0; x < picture.width; x++) {
            const Rgba& pixel = picture.at(x, uint64_t(y));
            if (valueOf(pixel) == color) alphas.add(pixel.alpha);
        }
    }
    alphas.sort();
    return alphas.entries.empty() ? 0 : uint8_t(alphas.entries[0].first);
}

Rgba colorOf(uint32_t value, uint8_t alpha)
{
    return { uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value), alpha };
}

void pickColors(MenuModel& model, const ByteImage& map, const AlphaImage& picture)
{
    Tally total;
    for (uint64_t i = 0; i < model.buttons.size(); i++) {
        Tally own;
        forBox(model.buttons[i], picture, [&](uint64_t x, uint64_t y) {
            if (map.at(x, y) == i + 1) own.add(valueOf(picture.at(x, y)));
        });
        for (const auto& entry : own.entries) total.add(entry.first, entry.second);
    }
    total.sort();
    uint64_t at = 0;
    for (uint64_t k = 0; k < std::min<uint64_t>(total.entries.size(), 3); k++, at++) {
        if (at < total.entries.size() && total.entries[at].first == 0) at++;
        if (at >= total.entries.size()) break;
        const uint32_t color = total.entries[at].first;
        model.palette[k] = colorOf(color, commonAlpha(picture, color));
    }
}

}   // namespace

void MenuModel::prepare(const ByteImage& map, const AlphaImage& picture)
{
    palette.assign(3, Rgba());
    for (uint64_t i = 0; i < buttons.size(); i++) tighten(buttons[i], i + 1, map, picture);
    for (uint64_t i = 0; i < buttons.size(); i++) {
        Tally owners;
        forBox(buttons[i], picture, [&](uint64_t x, uint64_t y) { owners.add(map.at(x, y)); });
        if (owners.entries.size() <= 2) continue;
        overlap = true;
        for (const auto& entry : owners.entries) {
            if (entry.first == 0 || entry.first == i + 1) continue;
            buttons[i].overlap = entry.first;
            break;
        }
    }
    Tally colors;
    uint64_t transparent = 0;
    for (int64_t y = int64_t(picture.height) - 1; y >= 0; y--) {
        for (uint64_t x = 0; x < picture.width; x++) {
            const Rgba& pixel = picture.at(x, uint64_t(y));
            if (pixel.alpha < 32) {
                transparent++;
            } else {
                colors.add(valueOf(pixel));
            }
        }
    }
    colors.entries.insert(colors.entries.begin(), { 0, transparent });
    const uint64_t n = colors.entries.size();
    manyColors = n > 4;
    if (manyColors) {
        pickColors(*this, map, picture);
    } else {
        for (uint64_t i = 1; i < n; i++) palette[i - 1] = colorOf(colors.entries[i].first, 0);
    }
    if (overlap) {
        takeSets(*this, { "11 10 00 F0", "22 20 0F 00", "33 30 F0 00" });
        for (uint64_t i = 0; i < buttons.size(); i++) {
            buttons[i].color = buttons[i].overlap != 0 && i + 1 < buttons[i].overlap ? 2 : 1;
        }
        return;
    }
    if (n >= 3 && n <= 4) {
        takeSets(*this, { "11 10 FA 50", "22 20 FA 50", "33 30 FA 50" });
        uint64_t last = 0;
        for (ModelButton& button : buttons) {
            uint32_t color = 0;
            if (!firstColor(button, map, picture, &color)) {
                emptyButton = true;
                return;
            }
            for (uint64_t i = 0; i < n; i++) {
                if (colors.entries[i].first == color) last = i;
            }
            button.color = last;
        }
        return;
    }
    for (ModelButton& button : buttons) button.color = 1;
    const uint8_t contrasts[] = { uint8_t((palette[2].alpha & 0xF0) | palette[1].alpha >> 4),
                                  uint8_t(palette[0].alpha & 0xF0) };
    const std::string word = n < 3 ? "11 10 FA 50" : "32 10 " + toHex(contrasts, 2);
    takeSets(*this, { word, word, word });
}

ByteImage MenuModel::codes(const ByteImage& map, const AlphaImage& picture) const
{
    const auto distance = [](const Rgba& a, const Rgba& b) {
        const int red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
        return red * red + green * green + blue * blue;
    };
    ByteImage codes(picture.height);
    for (uint64_t y = 0; y < picture.height; y++) {
        for (uint64_t x = 0; x < picture.width; x++) {
            const Rgba& pixel = picture.at(x, y);
            uint8_t& code = codes.at(x, y);
            if (overlap) {
                const uint64_t owner = map.at(x, y);
                if (owner >= 1 && owner <= buttons.size() && visible(pixel)) code = uint8_t(buttons[owner - 1].color);
            } else if (pixel.alpha < 32) {
                code = 0;
            } else if (!manyColors) {
                code = pixel.alpha < 107 ? 1 : pixel.alpha < 182 ? 2 : 3;
            } else {
                const int far[] = { distance(pixel, palette[0]), distance(pixel, palette[1]),
                                    distance(pixel, palette[2]) };
                code = uint8_t(1 + (std::min_element(std::begin(far), std::end(far)) - std::begin(far)));
            }
        }
    }
    return codes;
}
