// cells.cpp: how a user wants a stream divided into cells.
#include "cells.h"

#include "elementary.h"
#include "text.h"

#include <algorithm>
#include <cstdio>

static constexpr size_t MOST_DIGITS = 9;   // of a number in a time; more are no time of a stream

/** Takes a run of digits from the front. @return whether there is one that is short enough */
static bool takeNumber(std::string_view* text, uint64_t* number, uint64_t* scale)
{
    size_t digits = 0;
    *number = 0;
    *scale = 1;
    for (; digits < text->size() && (*text)[digits] >= '0' && (*text)[digits] <= '9'; digits++) {
        if (digits == MOST_DIGITS) return false;
        *number = *number * 10 + uint64_t((*text)[digits] - '0');
        *scale *= 10;
    }
    text->remove_prefix(digits);
    return digits != 0;
}

static bool takeSign(std::string_view* text, char sign)
{
    if (!text->starts_with(sign)) return false;
    text->remove_prefix(1);
    return true;
}

bool parseTime(std::string_view text, uint64_t* ticks)
{
    constexpr uint64_t SIXTY = 60;
    uint64_t seconds = 0, fraction = 0, scale = 1, number, unused;
    if (!takeNumber(&text, &seconds, &unused)) return false;
    for (int parts = 1; takeSign(&text, ':'); parts++) {
        if (parts == 3 || !takeNumber(&text, &number, &unused) || number >= SIXTY) return false;
        seconds = seconds * SIXTY + number;
    }
    if (takeSign(&text, '.') && !takeNumber(&text, &fraction, &scale)) return false;
    if (!text.empty()) return false;
    *ticks = seconds * TICKS_A_SECOND + (fraction * TICKS_A_SECOND + scale / 2) / scale;
    return true;
}

std::string timeText(uint64_t ticks)
{
    constexpr uint64_t TICKS_A_MILLISECOND = TICKS_A_SECOND / 1000;
    const uint64_t milliseconds = ticks / TICKS_A_MILLISECOND;
    const uint64_t seconds = milliseconds / 1000;
    char text[48];
    std::snprintf(text, sizeof text, "%llu:%02llu:%02llu.%03llu", static_cast<unsigned long long>(seconds / 3600),
                  static_cast<unsigned long long>(seconds / 60 % 60), static_cast<unsigned long long>(seconds % 60),
                  static_cast<unsigned long long>(milliseconds % 1000));
    return text;
}

static std::string_view trimmed(std::string_view line)
{
    constexpr std::string_view BLANKS = " \t\r";
    line = line.substr(0, line.find('#'));
    const size_t first = line.find_first_not_of(BLANKS);
    return first == line.npos ? std::string_view() : line.substr(first, line.find_last_not_of(BLANKS) - first + 1);
}

static std::string takeStart(std::string_view line, bool first, std::vector<uint64_t>* starts)
{
    uint64_t start = 0;
    if (!parseTime(line, &start)) {
        return printable(wideOf(line)) + " is no time; write seconds (90.5) or minutes and seconds (1:30.5)";
    }
    if (first && start == 0) return "";   // implied
    if (start <= starts->back())
        return timeText(start) + " does not lie behind " + timeText(starts->back()) + "; the starts have to rise";
    if (starts->size() == MOST_CELLS) return "a title has at most 255 cells, and here the 256th begins";
    starts->push_back(start);
    return "";
}

std::string parseCells(std::string_view text, std::vector<uint64_t>* starts, uint64_t* line)
{
    constexpr std::string_view MARK = "\xEF\xBB\xBF";
    if (text.starts_with(MARK)) text.remove_prefix(MARK.size());
    *starts = { 0 };
    bool first = true;
    for (*line = 1; !text.empty(); ++*line) {
        const size_t end = text.find('\n');
        const std::string_view start = trimmed(text.substr(0, end));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
        if (start.empty()) continue;
        if (std::string why = takeStart(start, first, starts); !why.empty()) return why;
        first = false;
    }
    *line = 0;
    return first ? "it names no time" : "";
}

uint64_t cellOf(const CellPlan& plan, uint64_t time)
{
    if (plan.interval) return time / plan.interval + 1;
    if (plan.starts.empty()) return 1;
    const auto behind = std::upper_bound(plan.starts.begin(), plan.starts.end(), time);
    return uint64_t(behind - plan.starts.begin());
}

uint64_t startOf(const CellPlan& plan, uint64_t cell)
{
    if (cell == 0) return 0;
    if (plan.interval) return (cell - 1) * plan.interval;
    return cell <= plan.starts.size() ? plan.starts[cell - 1] : 0;
}

std::vector<uint64_t> cellList(const CellPlan& plan)
{
    std::vector<uint64_t> list;
    if (plan.interval) return list;
    for (const uint64_t start : plan.starts) list.push_back(start ? start - 1 : 0);
    if (list.empty()) list.push_back(0);
    return list;
}
