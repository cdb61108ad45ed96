// menu_rig.h: menus for the tests of the menu pipeline: two pictures, drawn here, in files of their own, and buttons.
#pragma once

#include "project/model.h"
#include "tests/support/bitmaps.h"
#include "tests/support/files.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

inline constexpr uint64_t NTSC_LINES = 480, PAL_LINES = 576;

inline constexpr Rgba RED = { 0xE0, 0x10, 0x20, 0xFF }, GREEN = { 0x11, 0xD0, 0x22, 0xFF },
                      BLUE = { 0x12, 0x23, 0xC0, 0xFF }, YELLOW = { 0xF1, 0xF2, 0x13, 0xFF }, BLACK = { 0, 0, 0, 0xFF },
                      CLEAR = { 0, 0, 0, 0 };

/** A colour with another alpha. */
Rgba withAlpha(Rgba color, uint8_t alpha);
/** red << 16 | green << 8 | blue. */
uint64_t colorValue(Rgba color);

// A button's rectangle as the model has it.
struct Box {
    uint64_t xStart, xEnd, yStart, yEnd;
    bool operator==(const Box&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Box& box);
Box boxOf(const ButtonDesc& button);

// Some columns of some lines, the top line is 0.
struct Area {
    uint64_t x, line, width, height;
};

// Both pictures of a menu. They start without buttons, transparent.
struct MenuPicture {
    explicit MenuPicture(uint64_t lines = NTSC_LINES);

    /** Gives pixels to a button. */
    MenuPicture& own(uint8_t button, const Area& area);
    MenuPicture& paint(Rgba pixel, const Area& area);
    /** Both. */
    MenuPicture& show(uint8_t button, Rgba pixel, const Area& area);

    ByteImage collision;
    AlphaImage alpha;
};

/** The picture as the engine holds it once it is read. */
Bytes storedPixels(const AlphaImage& image);

// A menu with its bitmaps on disk. The fields that the pipeline leaves alone have values by which a change shows.
struct MenuRig {
    MenuRig(const MenuPicture& picture, const std::vector<Box>& boxes);
    void setBoxes(const std::vector<Box>& boxes);

    int64_t standard;
    TempDir dir;
    std::u16string collisionPath, alphaPath;
    MenuDesc menu;
};

typedef std::vector<std::string> Texts;

/** Every field of a menu, one a line, so that differences speak. */
Texts describe(const MenuDesc& menu);
/** A palette entry's bytes: "FF E0 10 20", alpha first. */
std::string paletteBytes(const MenuDesc& menu, uint64_t entry);
/** The entries 0 to 3, those that a menu fills. */
Texts paletteOf(const MenuDesc& menu);
/** Of each colour set the four bytes that tell of a selected button. */
Texts selectionsOf(const MenuDesc& menu);
