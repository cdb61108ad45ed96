// progress.h: the progress of a run for the eyes: a bar on a terminal, one line a stage elsewhere.
#pragma once

#include "project_file.h"

#include <cstdint>
#include <string>
#include <vector>

enum ProgressMode { PROGRESS_NONE, PROGRESS_LINES, PROGRESS_BAR };

struct ProgressDisplay {
    ProgressMode mode = PROGRESS_NONE;
    std::vector<PlannedTitleSet> titleSets;   // those that the run writes, in order
    bool managerMenus = false;
    bool isAudio = false;   // a run of DVD-Audio, whose stages are others
    size_t titleSetsDone = 0;
    std::string shown;   // the line that stands on the terminal, or the stage of the last line
};

/** Name of a stage, "title set 2: movie"; empty for a stage that has nothing to do in this project. kind is the one of
    the library's progress callback. */
std::string stageName(const ProgressDisplay& display, uint32_t kind);

/** A line of at most columns characters: name, bar, percent. */
std::string progressLine(const std::string& name, uint32_t done, uint32_t total, uint64_t columns);

/** Takes a report of the library.
 *  @return what is to be written now; empty if nothing has changed */
std::string progressStep(ProgressDisplay* display, uint32_t total, uint32_t done, uint32_t kind, uint64_t columns);

/** The same for work of a single stage: a bar on a terminal, elsewhere a line at each tenth. */
std::string progressWork(ProgressDisplay* display, const std::string& name, uint32_t total, uint32_t done,
                         uint64_t columns);

/** @return what ends the display, so that the next output starts on a line of its own */
std::string progressEnd(ProgressDisplay* display);
