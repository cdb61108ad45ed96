#include "tests/readers/menu_pages.h"

namespace fs = std::filesystem;

std::vector<ButtonPlan> buttonGrid(uint32_t columns, uint32_t rows, const std::string& command)
{
    std::vector<ButtonPlan> buttons;
    const uint32_t count = columns * rows;
    for (uint32_t n = 0; n < count; n++) {
        const uint32_t x = 40 + n % columns * 110, y = 40 + n / columns * 65;
        const uint32_t row = n - n % columns;
        buttons.push_back({ .xStart = x,
                            .xEnd = x + 59,
                            .yStart = y,
                            .yEnd = y + 39,
                            .command = command,
                            .color = 1 + n % 3,
                            .up = (n + count - columns) % count + 1,
                            .down = (n + columns) % count + 1,
                            .left = row + (n + columns - 1) % columns + 1,
                            .right = row + (n + 1) % columns + 1 });
    }
    return buttons;
}

ByteImage frames(Standard standard, const std::vector<ButtonPlan>& buttons)
{
    ByteImage image(pictureLines(standard));
    uint8_t code = 0;
    for (const ButtonPlan& button : buttons) {
        const uint32_t width = button.xEnd - button.xStart + 1, height = button.yEnd - button.yStart + 1;
        code = uint8_t(code % 3 + 1);
        image.fill(button.xStart, button.yStart, width, height, code);
        image.fill(button.xStart + 2, button.yStart + 2, width - 4, height - 4, 0);
    }
    return image;
}

static std::string buttonKeys(const std::vector<ButtonPlan>& buttons)
{
    std::string keys = "buttons=" + std::to_string(buttons.size()) + "\n";
    uint64_t number = 1;
    for (const ButtonPlan& b : buttons) {
        keys += "button" + std::to_string(number++) + "=";
        for (const uint32_t value : { b.xStart, b.xEnd, b.yStart, b.yEnd, b.up, b.down, b.left, b.right, b.color }) {
            keys += std::to_string(value) + ",";
        }
        keys += b.command + "," + std::to_string(b.autoAction) + "\n";
    }
    return keys;
}

std::string menuPage(const std::string& section, Standard standard, const fs::path& background,
                     const std::vector<ButtonPlan>& buttons, const std::string& keys)
{
    std::string text = "[" + section + "]\nbackground=" + background.string() + "\n" + buttonKeys(buttons) + keys;
    if (keys.find("subpicture=") == keys.npos) {
        text += "subpicture=" + shelve(bmpFile(frames(standard, buttons))).string() + "\n";
    }
    return text;
}

std::string alphaKeys(const ByteImage& map, const AlphaImage& alpha, bool letterbox)
{
    const std::string mapPath = shelve(bmpFile(map)).string(), alphaPath = shelve(bmpFile(alpha)).string();
    const std::string names = letterbox ? "spuletterbox" : "subpicture";
    return names + "=" + mapPath + "\n" + names + "32=" + alphaPath + "\n";
}
