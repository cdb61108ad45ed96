// cells.h: how a user wants a stream divided into cells, and in which cell a time lies.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

inline constexpr uint64_t MOST_CELLS = 255;   // that a title can have

// Times are ticks of the 90 kHz clock.
struct CellPlan {
    uint64_t interval = 0;               // length of all cells, or 0
    std::vector<uint64_t> starts = {};   // else the starts of the cells, rising, the first at 0; none: one cell
};

/** Reads a time as people write it: seconds (90, 90.5) or [hours:]minutes:seconds (1:30, 0:01:30.5), rounded to ticks.
 *  @return whether it is one */
bool parseTime(std::string_view text, uint64_t* ticks);

/** "0:01:30.500"; hours of any number. */
std::string timeText(uint64_t ticks);

/** Reads a list of starts, one a line; blank lines and what stands behind a # are passed over. Time 0 is the first
 *  start, whether it stands there or not.
 *  @param line  gets the number of the line that is wrong, from 1; 0 if it is none of them
 *  @return why it is wrong, or an empty text */
std::string parseCells(std::string_view text, std::vector<uint64_t>* starts, uint64_t* line);

/** The cell of a unit that starts at a time, from 1. */
uint64_t cellOf(const CellPlan& plan, uint64_t time);

/** Where a cell begins; 0 for one that the plan has not. */
uint64_t startOf(const CellPlan& plan, uint64_t cell);

/** The list that the library's scan takes: entry i is the last tick of cell i, and entry 0 is not looked at. Empty for
 *  a plan by interval. */
std::vector<uint64_t> cellList(const CellPlan& plan);
