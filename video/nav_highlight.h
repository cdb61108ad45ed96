// nav_highlight.h: the highlight data of a menu's navigation pack: buttons, their colours and how long they stand.
#pragma once

#include "project/model.h"
#include "video/vobu_record.h"

#include <cstdint>

// Highlight of a menu VOB, from its first unit to its last.
struct Highlight {
    const MenuDesc* menus;
    uint64_t menuCount;
    int64_t videoStandard;
    uint64_t ticksPerFrame;
    bool loops;               // the first menu plays an introduction before its highlight begins
    uint64_t loopValue;       // SCR ticks from which the highlight stands
    uint64_t startPts;        // of the highlight
    bool begun;               // a unit with highlight has been filled
    uint64_t previousVobId;   // of the unit before
    bool first;               // no unit has been filled yet
};

/** list is the VOBU list of the menu VOB; menus holds menuCount entries. */
void orvBeginHighlight(Highlight* highlight, const MenuDesc* menus, uint64_t menuCount, int64_t videoStandard,
                       const VobuRecord* list);
/** The highlight data of a unit; called for all units in list order. */
void orvFillHighlight(Highlight* highlight, const VobuRecord* record, uint8_t* pack);

/** Line of the screen on which letterbox display shows a line of the picture, which it squeezes to three quarters and
    centres. */
[[nodiscard]] uint64_t orvLetterboxLine(uint64_t line, int64_t videoStandard);
