// progress.cpp: sizes the work of a run in units of its input, and reports what is done to the host.
#include "project/progress.h"

#include "base/files.h"

namespace {

constexpr uint64_t UNIT_SHIFT = 12;            // a unit is 4 KiB
constexpr uint64_t UNIT_ROUNDING = 16383;      // three to four units more, so that a tiny file still moves the bar
constexpr uint64_t IFO_AND_BACKUP_UNITS = 2;   // of a title set and of the manager
constexpr uint64_t PROGRESS_SHIFT = 16;        // value is a fraction of PROGRESS_WHOLE

// Meant: a file that is not there costs no units and is no fault here; it fails when it is opened.
// Test: Progress.UnitsOfFiles
uint64_t fileUnits(const char16_t* path)
{
    uint64_t size = 0;
    if (!path || osGetFileInfo(path, &size, nullptr)) return 0;
    return (size + UNIT_ROUNDING) >> UNIT_SHIFT;
}

uint64_t sourceUnits(const TitleSetDesc* titleSet)
{
    uint64_t units = 0;
    for (const char16_t* const source : titleSet->sources) units += fileUnits(source);
    return units;
}

uint64_t menuUnits(const TitleSetDesc* domain)
{
    uint64_t units = 0;
    for (uint64_t m = 0; m < domain->menuCount; m++) units += fileUnits(domain->menus[m].background);
    return units;
}

uint64_t titleSetDone(const TitleSetDesc* titleSet, uint32_t kind, uint64_t value)
{
    if (!titleSet) return 0;
    const uint64_t menusEnd = titleSet->startUnits + titleSet->menuUnits;
    const uint64_t titleEnd = menusEnd + titleSet->titleUnits;
    switch (kind) {
    case PROGRESS_TITLE_SET_MENUS: return ((titleSet->menuUnits * value) >> PROGRESS_SHIFT) + titleSet->startUnits;
    case PROGRESS_TITLE_SET_MOVIE: return ((titleSet->titleUnits * value) >> PROGRESS_SHIFT) + menusEnd;
    case PROGRESS_TITLE_SET_IFO: return titleEnd + (value >> PROGRESS_SHIFT);
    default: return titleEnd + 1 + (value >> PROGRESS_SHIFT);
    }
}

uint64_t unitsDone(const DiscContext* context, uint32_t kind, uint64_t value, uint64_t titleSetNumber)
{
    const uint64_t managerUnits = context->vmg.menuUnits;
    const uint64_t menusEnd = context->titleSetsUnits + managerUnits;
    switch (kind) {
    case PROGRESS_TITLE_SET_MENUS:
    case PROGRESS_TITLE_SET_MOVIE:
    case PROGRESS_TITLE_SET_IFO:
    case PROGRESS_TITLE_SET_BACKUP:
        if (titleSetNumber < 1 || titleSetNumber > MAX_TITLE_SETS) return 0;
        return titleSetDone(context->titleSets[titleSetNumber - 1], kind, value);
    case PROGRESS_MANAGER_MENUS: return ((managerUnits * value) >> PROGRESS_SHIFT) + context->titleSetsUnits;
    case PROGRESS_MANAGER_IFO: return menusEnd + (value >> PROGRESS_SHIFT);
    case PROGRESS_MANAGER_BACKUP: return menusEnd + 1 + (value >> PROGRESS_SHIFT);
    default: return 0;
    }
}

}   // namespace

void orvPrepareUnits(DiscContext* context)
{
    uint64_t running = 0;
    for (TitleSetDesc* const titleSet : context->titleSets) {
        if (!titleSet) continue;
        titleSet->startUnits = running;
        titleSet->titleUnits = sourceUnits(titleSet);
        titleSet->menuUnits = menuUnits(titleSet);
        running += IFO_AND_BACKUP_UNITS + titleSet->titleUnits + titleSet->menuUnits;
    }
    context->vmg.titleUnits = 0;
    context->vmg.startUnits = 0;
    context->vmg.menuUnits = menuUnits(&context->vmg);
    context->titleSetsUnits = running;
    context->progressTotal = running + IFO_AND_BACKUP_UNITS + context->vmg.menuUnits;
}

uint32_t orvReportProgress(const DiscContext* context, uint32_t kind, uint64_t value, uint64_t titleSetNumber)
{
    if (!context->head.progressCallback) return 0;
    const uint64_t done = unitsDone(context, kind, value, titleSetNumber);
    return context->head.progressCallback(uint32_t(context->progressTotal), uint32_t(done), kind,
                                          context->head.progressUser);
}
