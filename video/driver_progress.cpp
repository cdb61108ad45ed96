// driver_progress.cpp: the first half of a movie's fraction belongs to the scan, the second to the navigation packs; of
// a domain's menus the first half belongs to the multiplexing, the second to the scan.

#include "video/driver_progress.h"

#include "project/progress.h"

uint64_t orvScanProgress(const DiscContext* context, uint64_t total, uint64_t done, uint64_t user)
{
    const uint64_t value = total ? done * PROGRESS_HALF / total : PROGRESS_HALF;
    return orvReportProgress(context, PROGRESS_TITLE_SET_MOVIE, value, user) == 0;
}

static uint64_t reportSecondHalf(const DiscContext* context, uint32_t kind, uint64_t total, uint64_t done,
                                 uint64_t user)
{
    const uint64_t value = total ? done * PROGRESS_HALF / total + PROGRESS_HALF : PROGRESS_WHOLE;
    return orvReportProgress(context, kind, value, user) == 0;
}

uint64_t orvSetupProgress(const DiscContext* context, uint64_t total, uint64_t done, uint64_t user)
{
    return reportSecondHalf(context, PROGRESS_TITLE_SET_MOVIE, total, done, user);
}

uint64_t orvMenuProgress(const DiscContext* context, uint64_t total, uint64_t done, uint64_t user)
{
    return reportSecondHalf(context, user ? PROGRESS_TITLE_SET_MENUS : PROGRESS_MANAGER_MENUS, total, done, user);
}
