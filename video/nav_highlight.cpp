// nav_highlight.cpp: highlight data of menus.

#include "video/nav_highlight.h"

#include "base/memory.h"
#include "base/time_code.h"
#include "mux/button_entry.h"
#include "mux/nav_layout.h"

constexpr uint64_t HLI_NONE = 0, HLI_NEW = 1, HLI_AS_BEFORE = 2;
constexpr uint64_t NEVER = 0xFFFFFFFF;

// Button groups and their display types.
constexpr uint64_t ONE_GROUP = 0x1000;            // type 0: normal
constexpr uint64_t WIDE_AND_LETTERBOX = 0x2120;   // two groups: type 1 wide, type 2 letterbox

constexpr uint64_t BAR_LINES_PAL = 72, BAR_LINES_NTSC = 60;   // black above the letterbox picture

// A menu for VOBs that no menu of the project describes: without buttons.
static const MenuDesc NO_MENU = {};

void orvBeginHighlight(Highlight* highlight, const MenuDesc* menus, uint64_t menuCount, int64_t videoStandard,
                       const VobuRecord* list)
{
    *highlight = {};
    highlight->menus = menus;
    highlight->menuCount = menuCount < MAX_MENUS ? menuCount : MAX_MENUS;
    highlight->videoStandard = videoStandard;
    highlight->ticksPerFrame = orvFrameTicks(videoStandard);
    highlight->first = true;
    if (highlight->menuCount > 0 && menus[0].loopMode == LOOP_FROM) {
        highlight->loops = true;
        highlight->loopValue = menus[0].loopValue;
    }
    if (osListCount(list) > 0) highlight->startPts = list[0].firstPts;
}

static void putButton(uint8_t* to, const ButtonDesc* button, uint64_t yStart, uint64_t yEnd)
{
    // Meant: an unknown command leaves eight zero bytes, and VM_MULTIPLY_REG reaches the disc in spite of its result.
    // Test: NavMenu.CommandOfAButton
    (void)orvPutButton(to, button, button->autoAction, yStart, yEnd);
}

uint64_t orvLetterboxLine(uint64_t line, int64_t videoStandard)
{
    return (line * 3 >> 2) + (videoStandard == STANDARD_PAL ? BAR_LINES_PAL : BAR_LINES_NTSC);
}

static void putButtons(uint8_t* pack, const MenuDesc* menu, int64_t videoStandard)
{
    uint8_t* table = pack + PCI_BTNIT.at;
    const uint64_t most = menu->hasLetterbox ? BUTTON_GROUP : MAX_BUTTONS;
    for (uint64_t i = 0; i < menu->buttonCount && i < most; i++) {
        const ButtonDesc* button = menu->buttons + i;
        putButton(table + i * BUTTON_BYTES, button, button->yStart, button->yEnd);
        if (!menu->hasLetterbox) continue;
        // The second group starts at its own place, however few buttons the first holds.
        putButton(table + (BUTTON_GROUP + i) * BUTTON_BYTES, button, orvLetterboxLine(button->yStart, videoStandard),
                  orvLetterboxLine(button->yEnd, videoStandard));
    }
}

void orvFillHighlight(Highlight* highlight, const VobuRecord* record, uint8_t* pack)
{
    const bool opensVob = highlight->first || record->vobId != highlight->previousVobId;
    highlight->first = false;
    highlight->previousVobId = record->vobId;

    uint64_t status = opensVob ? HLI_NEW : HLI_AS_BEFORE;
    if (highlight->loops) {
        // Meant: the first menu's value splits the whole file, all menus alike. Test: NavMenu.NoHighlightBeforeTheLoop
        if (record->scr < highlight->loopValue) {
            orvPut(pack, PCI_HLI_SS, HLI_NONE);
            return;
        }
        status = highlight->begun ? HLI_AS_BEFORE : HLI_NEW;
        if (!highlight->begun) highlight->startPts = orvVobuStartPts(record, highlight->ticksPerFrame);
    }
    highlight->begun = true;

    const bool named = record->vobId >= 1 && record->vobId <= highlight->menuCount;
    const MenuDesc* menu = named ? highlight->menus + (record->vobId - 1) : &NO_MENU;
    orvPut(pack, PCI_HLI_SS, status);
    orvPut(pack, PCI_HLI_S_PTM, highlight->startPts);
    orvPut(pack, PCI_HLI_E_PTM, NEVER);
    orvPut(pack, PCI_BTN_SE_E_PTM, NEVER);
    orvPut(pack, PCI_BTN_MD, menu->hasLetterbox ? WIDE_AND_LETTERBOX : ONE_GROUP);
    // Meant: the count is that of the project also where two groups hold only eighteen buttons each.
    // Test: NavMenu.LetterboxTakesEighteenButtons
    orvPut(pack, PCI_BTN_NS, menu->buttonCount);
    orvPut(pack, PCI_NSL_BTN_NS, menu->buttonCount);
    osCopyMem(pack + PCI_BTN_COLIT.at, menu->colorSets, PCI_BTN_COLIT.size);
    putButtons(pack, menu, highlight->videoStandard);
}
