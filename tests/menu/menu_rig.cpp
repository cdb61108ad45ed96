// menu_rig.cpp: menus for the tests of the menu pipeline.
#include "tests/menu/menu_rig.h"

#include <cstring>

Rgba withAlpha(Rgba color, uint8_t alpha)
{
    return { color.red, color.green, color.blue, alpha };
}

uint64_t colorValue(Rgba color)
{
    return uint64_t(color.red) << 16 | uint64_t(color.green) << 8 | color.blue;
}

std::ostream& operator<<(std::ostream& out, const Box& box)
{
    return out << box.xStart << "-" << box.xEnd << " x " << box.yStart << "-" << box.yEnd;
}

Box boxOf(const ButtonDesc& button)
{
    return { button.xStart, button.xEnd, button.yStart, button.yEnd };
}

MenuPicture::MenuPicture(uint64_t lines) : collision(lines), alpha(lines) {}

MenuPicture& MenuPicture::own(uint8_t button, const Area& area)
{
    collision.fill(area.x, area.line, area.width, area.height, button);
    return *this;
}

MenuPicture& MenuPicture::paint(Rgba pixel, const Area& area)
{
    alpha.fill(area.x, area.line, area.width, area.height, pixel);
    return *this;
}

MenuPicture& MenuPicture::show(uint8_t button, Rgba pixel, const Area& area)
{
    return own(button, area).paint(pixel, area);
}

Bytes storedPixels(const AlphaImage& image)
{
    const Bytes file = bmpFile(image);
    return Bytes(file.begin() + BmpSpec().dataOffset, file.end());
}

MenuRig::MenuRig(const MenuPicture& picture, const std::vector<Box>& boxes)
    : standard(picture.alpha.height == PAL_LINES ? 1 : 2), collisionPath(dir / u"collision.bmp"),
      alphaPath(dir / u"alpha.bmp")
{
    writeFile(collisionPath, bmpFile(picture.collision));
    writeFile(alphaPath, bmpFile(picture.alpha));
    setBoxes(boxes);
}

void MenuRig::setBoxes(const std::vector<Box>& boxes)
{
    menu = {};
    menu.subPicture = collisionPath.data();
    menu.subPicture32 = alphaPath.data();
    menu.hasSubPicture32 = 1;
    menu.audioButtonMark = 3;
    menu.playFrames = 101;
    menu.menuExtra = 102;
    menu.loopMode = 103;
    menu.loopValue = 104;
    menu.menuType = 0x40;
    menu.blinkCount = 105;
    menu.blinkDelay = 106;
    for (uint64_t set = 0; set < COLOR_SETS; set++) {
        for (uint64_t i = 0; i < COLOR_SET_BYTES; i++) menu.colorSets[set][i] = uint8_t(0xA0 + 16 * set + i);
    }
    for (uint32_t& word : menu.palette) word = 0xDEADBEEF;
    menu.buttonCount = boxes.size();
    for (uint64_t i = 0; i < MAX_BUTTONS; i++) {
        const uint64_t mark = 1000 * (i + 1);
        const Box box = i < boxes.size() ? boxes[i] : Box{ mark, mark + 50, mark + 100, mark + 150 };
        menu.buttons[i] = { .xStart = box.xStart,
                            .xEnd = box.xEnd,
                            .yStart = box.yStart,
                            .yEnd = box.yEnd,
                            .autoAction = mark + 1,
                            .color = mark + 2,
                            .upLink = mark + 3,
                            .downLink = mark + 4,
                            .leftLink = mark + 5,
                            .rightLink = mark + 6,
                            .command = mark + 7,
                            .param1 = mark + 8,
                            .param2 = mark + 9,
                            .param3 = mark + 10,
                            .overlapButton = 0 };
    }
}

std::string paletteBytes(const MenuDesc& menu, uint64_t entry)
{
    uint8_t bytes[4];
    std::memcpy(bytes, &menu.palette[entry], sizeof(bytes));
    return toHex(bytes, sizeof(bytes));
}

Texts paletteOf(const MenuDesc& menu)
{
    Texts entries;
    for (uint64_t i = 0; i < 4; i++) entries.push_back(paletteBytes(menu, i));
    return entries;
}

Texts selectionsOf(const MenuDesc& menu)
{
    Texts sets;
    for (const auto& set : menu.colorSets) sets.push_back(toHex(set, 4));
    return sets;
}

static std::string describeButton(const ButtonDesc& button)
{
    std::string text;
    const struct {
        const char* name;
        uint64_t value;
    } fields[] = {
        { "x", button.xStart },          { "-", button.xEnd },
        { " y ", button.yStart },        { "-", button.yEnd },
        { " color ", button.color },     { " overlapped by ", button.overlapButton },
        { " up ", button.upLink },       { " down ", button.downLink },
        { " left ", button.leftLink },   { " right ", button.rightLink },
        { " auto ", button.autoAction }, { " command ", button.command },
        { " ", button.param1 },          { " ", button.param2 },
        { " ", button.param3 },
    };
    for (const auto& field : fields) text += field.name + std::to_string(field.value);
    return text;
}

Texts describe(const MenuDesc& menu)
{
    Texts lines;
    const std::pair<const char*, const char16_t*> paths[] = {
        { "background ", menu.background },         { "subPicture ", menu.subPicture },
        { "spuLetterbox ", menu.spuLetterbox },     { "subPicture32 ", menu.subPicture32 },
        { "spuLetterbox32 ", menu.spuLetterbox32 },
    };
    for (const auto& [name, path] : paths) lines.push_back(name + (path ? toUtf8(path) : std::string("null")));
    const std::pair<const char*, uint64_t> numbers[] = {
        { "hasLetterbox ", menu.hasLetterbox },
        { "hasSubPicture32 ", menu.hasSubPicture32 },
        { "buttonsOverlap ", menu.buttonsOverlap },
        { "manyColors ", menu.manyColors },
        { "audioButtonMark ", menu.audioButtonMark },
        { "playFrames ", menu.playFrames },
        { "menuExtra ", menu.menuExtra },
        { "loopMode ", menu.loopMode },
        { "loopValue ", menu.loopValue },
        { "menuType ", menu.menuType },
        { "blinkCount ", menu.blinkCount },
        { "blinkDelay ", menu.blinkDelay },
        { "buttonCount ", menu.buttonCount },
    };
    for (const auto& [name, value] : numbers) lines.push_back(name + std::to_string(value));
    for (uint64_t i = 0; i < COLOR_SETS; i++) {
        lines.push_back("colour set " + std::to_string(i + 1) + ": " + toHex(menu.colorSets[i], COLOR_SET_BYTES));
    }
    for (uint64_t i = 0; i < PALETTE_ENTRIES; i++) {
        lines.push_back("palette " + std::to_string(i) + ": " + paletteBytes(menu, i));
    }
    for (uint64_t i = 0; i < MAX_BUTTONS; i++) {
        lines.push_back("button " + std::to_string(i + 1) + ": " + describeButton(menu.buttons[i]));
    }
    return lines;
}
