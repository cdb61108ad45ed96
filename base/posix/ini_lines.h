// ini_lines.h: the lines of an INI text, for the reader and for the writer of single keys. Units are bytes of UTF-8 or
// units of UTF-16: all that has a meaning is ASCII.
#pragma once

#include <cstdint>
#include <string_view>

enum class IniLineKind { NOTHING, SECTION, KEY };

// Units of the whole text.
struct IniRange {
    uint64_t begin, end;
};

struct IniLine {
    IniLineKind kind;
    bool isBlank;
    bool isComment;
    uint64_t next;    // where the next line begins
    IniRange name;    // of the section or the key, without blanks around it; never empty for a key
    IniRange value;   // of the key, without blanks around it, with its quotes
};

template <class Unit> std::basic_string_view<Unit> osIniText(std::basic_string_view<Unit> text, IniRange range)
{
    return text.substr(range.begin, range.end - range.begin);
}

template <class Unit> IniRange osIniTrim(std::basic_string_view<Unit> text, IniRange range)
{
    const auto isBlank = [](Unit unit) { return unit == Unit(' ') || unit == Unit('\t'); };
    while (range.begin < range.end && isBlank(text[range.begin])) range.begin++;
    while (range.begin < range.end && isBlank(text[range.end - 1])) range.end--;
    return range;
}

/** Drops one pair of quotes around a value. */
template <class Unit> IniRange osIniUnquote(std::basic_string_view<Unit> text, IniRange range)
{
    if (range.end - range.begin < 2) return range;
    const Unit first = text[range.begin];
    if (first != text[range.end - 1] || (first != Unit('"') && first != Unit('\''))) return range;
    return { range.begin + 1, range.end - 1 };
}

/** The line that begins at a place before the text's end. */
template <class Unit> IniLine osIniLine(std::basic_string_view<Unit> text, uint64_t at)
{
    const uint64_t lineFeed = text.find(Unit('\n'), at);
    const bool isLast = lineFeed == text.npos;
    uint64_t end = isLast ? text.size() : lineFeed;
    IniLine line = { IniLineKind::NOTHING, false, false, isLast ? end : end + 1, {}, {} };
    if (end > at && text[end - 1] == Unit('\r')) end--;

    const IniRange all = osIniTrim(text, { at, end });
    line.isBlank = all.begin == all.end;
    line.isComment = !line.isBlank && text[all.begin] == Unit(';');
    if (line.isBlank || line.isComment) return line;
    const bool isSection = text[all.begin] == Unit('[');
    const uint64_t mark = osIniText(text, all).find(Unit(isSection ? ']' : '='));
    if (mark == text.npos) return line;
    if (isSection) {
        line.name = osIniTrim(text, { all.begin + 1, all.begin + mark });
        line.kind = IniLineKind::SECTION;
        return line;
    }
    line.name = osIniTrim(text, { all.begin, all.begin + mark });
    line.value = osIniTrim(text, { all.begin + mark + 1, all.end });
    if (line.name.begin < line.name.end) line.kind = IniLineKind::KEY;
    return line;
}

/** Order of two names without regard to the case of A to Z: below 0, 0 or above 0. */
template <class Unit> int osIniCompare(std::basic_string_view<Unit> a, std::basic_string_view<Unit> b)
{
    const auto fold = [](Unit unit) {
        return unit >= Unit('A') && unit <= Unit('Z') ? Unit(unit + ('a' - 'A')) : unit;
    };
    for (uint64_t i = 0; i < a.size() && i < b.size(); i++) {
        if (fold(a[i]) != fold(b[i])) return fold(a[i]) < fold(b[i]) ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}
