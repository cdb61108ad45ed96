// menu.cpp: reads the section of one menu page into its record. The keys are taken in a fixed order, which decides
// which of several faults is told.
#include "base/result.h"
#include "base/time_code.h"
#include "project/commands.h"
#include "project/reader.h"
#include "project/slots.h"
#include "project/values.h"

#include <algorithm>

namespace {

constexpr uint64_t DEFAULT_PLAY_FRAMES = 11;
constexpr uint64_t MAX_BLINK_COUNT = 16;
constexpr uint64_t MAX_BLINK_DELAY = 100;
constexpr uint64_t LONG_BLINK_COUNT = 100;

constexpr int64_t TYPE_STILL = 0, TYPE_ANIMATED = 1;
constexpr Word TYPES[] = { { u"still", TYPE_STILL }, { u"animated", TYPE_ANIMATED } };
constexpr WordSet TYPE_WORDS = { TYPES, true, ORV_WRONG_MENU_TYPE };

// The bit by which a domain's menus are known to exist.
constexpr int64_t MENU_ROOT = 0x80, MENU_SUBPICTURE = 0x40, MENU_AUDIO = 0x20, MENU_ANGLE = 0x10, MENU_CHAPTER = 0x08;
constexpr Word MENU_TYPES[] = {
    { u"title", MENU_ROOT },  { u"root", MENU_ROOT },   { u"subpic", MENU_SUBPICTURE },
    { u"audio", MENU_AUDIO }, { u"angle", MENU_ANGLE }, { u"chapter", MENU_CHAPTER },
};
constexpr WordSet MENU_TYPE_WORDS = { MENU_TYPES, true, ORV_WRONG_MENU_EXISTENCE_TYPE };

uint64_t readMenuFiles(const Section& section, MenuDesc* menu)
{
    menu->menuExtra = 0;
    if (const uint64_t error = orvReadPath(section, u"background", &menu->background)) return error;
    if (!menu->background) return ORV_NO_BACKGROUND;
    if (const uint64_t error = orvReadPath(section, u"subpicture", &menu->subPicture)) return error;
    if (!menu->subPicture) return ORV_NO_SUBPICTURE;
    if (const uint64_t error = orvReadPath(section, u"spuletterbox", &menu->spuLetterbox)) return error;
    menu->hasLetterbox = menu->spuLetterbox != nullptr;
    if (const uint64_t error = orvReadPath(section, u"subpicture32", &menu->subPicture32)) return error;
    menu->hasSubPicture32 = menu->subPicture32 != nullptr;
    if (!menu->hasLetterbox || !menu->hasSubPicture32) return 0;
    // Meant: a letterbox menu with one of the two 32-bit forms alone takes its finished sub-pictures.
    // Test: Menu.Letterbox
    if (const uint64_t error = orvReadPath(section, u"spuletterbox32", &menu->spuLetterbox32)) return error;
    menu->hasSubPicture32 = menu->spuLetterbox32 != nullptr;
    return 0;
}

// Still or animated, and how an animated menu repeats: `loop` and `delay` are asked for with animated menus only.
uint64_t readLoop(const Section& section, MenuDesc* menu)
{
    int64_t type = TYPE_STILL;
    if (const uint64_t error = orvReadWord(section, u"type", TYPE_WORDS, &type)) return error;
    if (type != TYPE_ANIMATED) return 0;
    const uint64_t loop = orvReadInt(section, u"loop");
    if (loop == 1) {
        menu->loopMode = LOOP_ALWAYS;
        return 0;
    }
    if (loop) {
        menu->loopMode = LOOP_FROM;
        menu->loopValue = loop;
        return 0;
    }
    menu->loopMode = LOOP_NONE;
    const uint64_t delay = orvReadInt(section, u"delay");
    if (!delay) return 0;
    menu->loopMode = LOOP_DELAY;
    menu->loopValue = delay;
    return 0;
}

// A project counts audio streams from 1, the command from 0; and a menu that does not loop is left by its chain's tail.
void finishAudioButton(MenuDesc* menu, uint64_t buttons, ButtonDesc* button)
{
    menu->audioButtonMark = AUDIO_BUTTON_MARK;
    if (button->param1) button->param1--;
    if (!button->param2) button->param2 = buttons;
    button->param3 = menu->loopMode == LOOP_NONE;
}

uint64_t readMenuButtons(const Section& section, MenuDesc* menu)
{
    if (const uint64_t error =
            orvReadButtons(section.run, section.file, section.name, menu->buttons, &menu->buttonCount)) {
        return error;
    }
    for (uint64_t i = 0; i < menu->buttonCount; i++) {
        ButtonDesc* const button = &menu->buttons[i];
        if (button->command == VM_SET_AUDIO) finishAudioButton(menu, menu->buttonCount, button);
    }
    return 0;
}

uint64_t readPlayTime(const Section& section, int64_t standard, MenuDesc* menu)
{
    menu->playFrames = DEFAULT_PLAY_FRAMES;
    char16_t value[32];
    if (!orvReadBounded(section, u"playtime", value)) return 0;
    const RunHead* const run = section.run;
    const Slot hourSlot = { u"hour", u"playtime" }, minuteSlot = { u"minute", u"playtime" };
    const Slot secondSlot = { u"second", u"playtime" }, frameSlot = { u"frame", u"playtime" };
    const char16_t* cursor = value;
    uint64_t hour = 0, minute = 0, second = 0, frame = 0;
    if (const uint64_t error = orvReadNumber(run, &cursor, hourSlot, &hour)) return error;
    if (const uint64_t error = orvReadSeparator(run, &cursor, TOKEN_COLON, hourSlot)) return error;
    if (const uint64_t error = orvReadNumber(run, &cursor, minuteSlot, &minute)) return error;
    if (const uint64_t error = orvReadSeparator(run, &cursor, TOKEN_COLON, minuteSlot)) return error;
    if (const uint64_t error = orvReadNumber(run, &cursor, secondSlot, &second)) return error;
    if (const uint64_t error = orvReadSeparator(run, &cursor, TOKEN_DOT, secondSlot)) return error;
    if (const uint64_t error = orvReadNumber(run, &cursor, frameSlot, &frame)) return error;
    const uint64_t rate = standard == STANDARD_PAL ? FRAMES_PAL : FRAMES_NTSC;
    menu->playFrames = ((hour * 60 + minute) * 60 + second) * rate + frame;
    return 0;
}

uint64_t readBlink(const Section& section, MenuDesc* menu)
{
    menu->blinkCount = 0;
    menu->blinkDelay = 0;
    char16_t value[64];
    if (!orvReadBounded(section, u"blink", value)) return 0;
    const char16_t* cursor = value;
    uint64_t count = 0;
    if (const uint64_t error = orvReadNumberOr(section.run, &cursor, u"No blink count in string: %s", &count)) {
        return error;
    }
    menu->blinkCount = std::min(count, MAX_BLINK_COUNT);
    Token token;
    if (orvNextToken(section.run, &cursor, TOKEN_COMMA, &token) || token.kind != TOKEN_COMMA) return 0;
    if (const uint64_t error =
            orvReadNumberOr(section.run, &cursor, u"No blink delay found in string: %s", &menu->blinkDelay)) {
        return error;
    }
    // Meant: a long delay raises the count past its own limit and stays as written. Test: Menu.Blink
    if (menu->blinkDelay > MAX_BLINK_DELAY) menu->blinkCount = LONG_BLINK_COUNT;
    return 0;
}

}   // namespace

uint64_t orvReadMenu(const RunHead* run, const OsProfile* file, const char16_t* section, int64_t standard,
                     MenuDesc* menu)
{
    const Section at = { run, file, section };
    if (const uint64_t error = readMenuFiles(at, menu)) return error;
    if (const uint64_t error = readLoop(at, menu)) return error;
    int64_t menuType = MENU_ROOT;
    if (const uint64_t error = orvReadWord(at, u"menutype", MENU_TYPE_WORDS, &menuType)) return error;
    menu->menuType = uint64_t(menuType);
    if (const uint64_t error = orvReadColorSets(run, file, section, menu->colorSets)) return error;
    if (const uint64_t error = readMenuButtons(at, menu)) return error;
    if (const uint64_t error = readPlayTime(at, standard, menu)) return error;
    return readBlink(at, menu);
}
