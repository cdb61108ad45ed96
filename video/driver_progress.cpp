// driver_progress.cpp: the first half of a movie's fraction belongs to the scan, the second to the navigation packs; of
// a domain's menus the first half belongs to the multiplexing, the second to the scan.

#include "video/driver_progress.h"

#include "project/progress.h"

#include <cstddef>

// The head is the first thing in the root of a DVD-Video run.
static const DiscContext* rootOf(const RunHead* run)
{
    static_assert(offsetof(DiscContext, head) == 0);
    return reinterpret_cast<const DiscContext*>(run);
}

uint64_t orvScanProgress(const RunHead* run, uint64_t total, uint64_t done, uint64_t user)
{
    const uint64_t value = total ? done * PROGRESS_HALF / total : PROGRESS_HALF;
    return orvReportProgress(rootOf(run), PROGRESS_TITLE_SET_MOVIE, value, user) == 0;
}

static uint64_t reportSecondHalf(const RunHead* run, uint32_t kind, uint64_t total, uint64_t done, uint64_t user)
{
    const uint64_t value = total ? done * PROGRESS_HALF / total + PROGRESS_HALF : PROGRESS_WHOLE;
    return orvReportProgress(rootOf(run), kind, value, user) == 0;
}

uint64_t orvSetupProgress(const RunHead* run, uint64_t total, uint64_t done, uint64_t user)
{
    return reportSecondHalf(run, PROGRESS_TITLE_SET_MOVIE, total, done, user);
}

uint64_t orvMenuProgress(const RunHead* run, uint64_t total, uint64_t done, uint64_t user)
{
    return reportSecondHalf(run, user ? PROGRESS_TITLE_SET_MENUS : PROGRESS_MANAGER_MENUS, total, done, user);
}
