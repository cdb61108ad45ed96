// value_check.h: whether the library refuses the value of a project key, with which code, and what it logs about it.
//
// The library tells only code and half a log text. The host reads a refused project once more by the same rules to find
// the line; it shows a line only where code and log agree with what the library said.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct Refusal {
    uint64_t code = 0;        // 0: the value is accepted
    std::u16string logText;   // whole text of the log entry; empty: none
};

/** A text: a path, a keyword. *text receives what the library takes of it. */
Refusal checkText(std::u16string_view value, std::u16string* text);
Refusal checkVersion(std::u16string_view value);
Refusal checkFirstPlay(std::u16string_view value);
Refusal checkChapter(std::u16string_view value);
Refusal checkColorSet(std::u16string_view value);
Refusal checkColorTable(std::u16string_view value);
Refusal checkButton(std::u16string_view value);

// A button's rectangle as its key gives it.
struct ButtonCorners {
    uint64_t xStart, xEnd, yStart, yEnd;
};

/** The same of a button, with its rectangle; corners is all 0 unless the value is accepted. */
Refusal checkButtonCorners(std::u16string_view value, ButtonCorners* corners);
Refusal checkMenuPlayTime(std::u16string_view value);
Refusal checkBlink(std::u16string_view value);
