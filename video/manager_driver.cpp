// manager_driver.cpp: authors the video manager, the last stage of a DVD-Video run.

#include "base/files.h"
#include "base/result.h"
#include "base/strings.h"
#include "project/progress.h"
#include "video/drivers.h"
#include "video/vmg_ifo.h"

static uint64_t report(const DiscContext* context, uint32_t kind)
{
    return orvReportProgress(context, kind, PROGRESS_WHOLE, 0) ? ORV_CANCELED : 0;
}

static uint64_t writeTables(DiscContext* context, const char16_t* ifoPath, const char16_t* backupPath,
                            const char16_t* targetPath, const char16_t* previousPath)
{
    if (uint64_t error = orvWriteVmgIfo(context, ifoPath, targetPath, previousPath, 0, nullptr)) return error;
    if (uint64_t error = report(context, PROGRESS_MANAGER_IFO)) return error;
    // Meant: a backup that can't be written does not fail the run. Test: Target.WhatCannotBeWritten
    (void)osCopyFile(ifoPath, backupPath, false);
    return report(context, PROGRESS_MANAGER_BACKUP);
}

uint64_t CreateVideoManager(DiscContext* context, const char16_t* targetPath, const char16_t* previousPath)
{
    // Menus are read, checked and described, but their VOBs can't be made yet.
    if (context->vmg.menuCount) return ORV_COMMAND_NOT_SUPPORTED;
    if (uint64_t error = report(context, PROGRESS_MANAGER_MENUS)) return error;

    char16_t* ifoPath = nullptr;
    char16_t* backupPath = nullptr;
    uint64_t result = osFormPath(&ifoPath, u"%sVIDEO_TS.IFO", targetPath);
    if (!result) result = osFormPath(&backupPath, u"%sVIDEO_TS.BUP", targetPath);
    if (result == OS_INVALID_ARGUMENT) result = ORV_VMG_IFO_NOT_OPENED;
    if (!result) result = writeTables(context, ifoPath, backupPath, targetPath, previousPath);
    (void)osStrFree(&ifoPath);
    (void)osStrFree(&backupPath);
    return result;
}
