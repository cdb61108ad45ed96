// button.cpp: reads the values of the keys `button` and `colorset`, which menus of DVD-Video, menus of DVD-Audio and
// stills have in common.
#include "base/log.h"
#include "base/result.h"
#include "project/reader.h"
#include "project/slots.h"
#include "project/values.h"

#include <iterator>

namespace {

// The pair of numbers in each of a colour set's first four bytes, by their order in the key.
// clang-format off
enum ColorSetNumber { COLOR_BG, COLOR_P, COLOR_E1, COLOR_E2, CONTRAST_BG, CONTRAST_P, CONTRAST_E1, CONTRAST_E2 };
constexpr struct { ColorSetNumber high, low; } COLOR_SET_LAYOUT[] = {
    { COLOR_E2,    COLOR_E1    },
    { COLOR_P,     COLOR_BG    },
    { CONTRAST_E2, CONTRAST_E1 },
    { CONTRAST_P,  CONTRAST_BG },
};
// clang-format on
constexpr uint64_t COLOR_SET_HALF = COLOR_SET_BYTES / 2;   // selected in front, activated behind
static_assert(std::size(COLOR_SET_LAYOUT) == COLOR_SET_HALF);

uint64_t readColorSet(const Section& section, const char16_t* key, uint8_t colorSet[COLOR_SET_BYTES])
{
    char16_t value[32];
    if (!orvReadBounded(section, key, value)) return 0;
    uint64_t numbers[8] = {};
    const NumberSlot slots[] = {
        { u"color bg", &numbers[COLOR_BG] },           { u"color p", &numbers[COLOR_P] },
        { u"color e1", &numbers[COLOR_E1] },           { u"color e2", &numbers[COLOR_E2] },
        { u"transparency bg", &numbers[CONTRAST_BG] }, { u"transparency p", &numbers[CONTRAST_P] },
        { u"transparency e1", &numbers[CONTRAST_E1] }, { u"transparency e2", &numbers[CONTRAST_E2] },
    };
    const char16_t* cursor = value;
    if (const uint64_t error = orvReadNumbers(section.run, &cursor, u"colorset", slots)) return error;
    for (uint64_t i = 0; i < COLOR_SET_HALF; i++) {
        const uint64_t high = numbers[COLOR_SET_LAYOUT[i].high] & 0x0F, low = numbers[COLOR_SET_LAYOUT[i].low] & 0x0F;
        // Meant: the key has one set of colours, a button looks the same selected and activated. Test: Menu.ColorSets
        colorSet[i] = colorSet[COLOR_SET_HALF + i] = uint8_t(high << 4 | low);
    }
    return 0;
}

}   // namespace

uint64_t orvReadColorSets(const RunHead* run, const OsProfile* file, const char16_t* section,
                          uint8_t colorSets[COLOR_SETS][COLOR_SET_BYTES])
{
    for (uint64_t k = 0; k < COLOR_SETS; k++) {
        const NumberedName key = orvNumberedName(u"colorset%ld", k + 1);
        if (const uint64_t error = readColorSet({ run, file, section }, key.text, colorSets[k])) return error;
    }
    return 0;
}

uint64_t orvReadButton(const RunHead* run, const char16_t* value, ButtonDesc* button)
{
    const char16_t* const place = u"button";
    const NumberSlot slots[] = {
        { u"xstart", &button->xStart },     { u"xend", &button->xEnd },           { u"ystart", &button->yStart },
        { u"yend", &button->yEnd },         { u"uplink", &button->upLink },       { u"downlink", &button->downLink },
        { u"leftlink", &button->leftLink }, { u"rightlink", &button->rightLink }, { u"color", &button->color },
    };
    const char16_t* cursor = value;
    if (const uint64_t error = orvReadNumbers(run, &cursor, place, slots)) return error;
    if (const uint64_t error = orvReadSeparator(run, &cursor, TOKEN_COMMA, { u"color", place })) return error;
    const CommandSlots command = { &button->command, &button->param1, &button->param2, &button->param3 };
    if (const uint64_t error = orvReadCommand(run, &cursor, place, command)) return error;

    button->autoAction = 0;
    Token token;
    if (const uint64_t error = orvNextToken(run, &cursor, TOKEN_COMMA, &token)) return error;
    if (token.kind != TOKEN_COMMA) return 0;
    if (const uint64_t error = orvReadNumber(run, &cursor, { u"fAutoAction", place }, &button->autoAction)) {
        return error;
    }
    if (button->autoAction > 1) {
        // Meant: a warning in the log, with the code of an error; the value stays and the project goes on.
        // Test: Button.AutoActionWarning
        orvLogError(ORV_STRING_EXPECTED, run->logFilePath,
                    u"Wrong value for <fAutoAction>, expected 0 (FALSE) or 1 (TRUE) in string: %s", cursor);
    }
    return 0;
}

uint64_t orvReadButtons(const RunHead* run, const OsProfile* file, const char16_t* section,
                        ButtonDesc buttons[MAX_BUTTONS], uint64_t* buttonCount)
{
    const Section at = { run, file, section };
    const uint64_t count = orvReadInt(at, u"buttons");
    if (count > MAX_BUTTONS) return ORV_WRONG_BUTTON_COUNT;
    *buttonCount = 0;
    for (uint64_t i = 1; i <= count; i++) {
        ButtonDesc* const button = &buttons[(*buttonCount)++];
        char16_t value[128];
        // Meant: a button without a key counts and stays all zero. Test: Menu.MissingButtonCounts
        if (!orvReadBounded(at, orvNumberedName(u"button%ld", i).text, value)) continue;
        if (const uint64_t error = orvReadButton(run, value, button)) return error;
    }
    return 0;
}
