// amg_menu.cpp: reads the section of one menu page of a DVD-Audio manager. Such a menu is a still menu of eleven
// frames.
#include "base/result.h"
#include "project/audio_reader.h"
#include "project/reader.h"
#include "project/values.h"

namespace {

constexpr uint64_t PLAY_FRAMES = 11;

// Meant: any `type`, `still` too, is a wrong one: a menu of this kind has no such key. Test: AmgMenu.AnyTypeIsWrong
uint64_t refuseType(const Section& section)
{
    StringValue value;
    if (const uint64_t error = orvReadString(section, u"type", &value)) return error;
    return value.length ? ORV_WRONG_MENU_TYPE : 0;
}

}   // namespace

uint64_t orvReadAmgMenu(const RunHead* run, const OsProfile* file, const char16_t* section, MenuDesc* menu)
{
    const Section at = { run, file, section };
    menu->menuExtra = 0;
    if (const uint64_t error = orvReadPath(at, u"background", &menu->background)) return error;
    if (!menu->background) return ORV_NO_BACKGROUND;
    if (const uint64_t error = orvReadPath(at, u"subpicture", &menu->subPicture)) return error;
    if (!menu->subPicture) return ORV_NO_SUBPICTURE;
    if (const uint64_t error = refuseType(at)) return error;
    if (const uint64_t error = orvReadColorSets(run, file, section, menu->colorSets)) return error;
    if (const uint64_t error = orvReadButtons(run, file, section, menu->buttons, &menu->buttonCount)) return error;
    menu->playFrames = PLAY_FRAMES;
    return 0;
}
