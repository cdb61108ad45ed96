// manager_driver.cpp: authors the video manager, menus and tables, the last stage of a DVD-Video run.

#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "project/progress.h"
#include "video/drivers.h"
#include "video/menu_stage.h"
#include "video/vmg_ifo.h"

static uint64_t report(const DiscContext* context, uint32_t kind)
{
    return orvReportProgress(context, kind, PROGRESS_WHOLE, 0) ? ORV_CANCELED : 0;
}

static const MenuStageTexts MENU_TEXTS = {
    u"Failed to open file in <CreateVideoManager>: %s",
    ORV_VOB_NOT_OPENED,
    u"Failed to open file in <CreateVideoManager>: %s",
    u"Video is not animated in <CreateVideoManager>, file: %s",
    u"Failed to create file in <CreateVideoManager>: %s",
    u"Failed to open file in <CreateVideoManager>: %s",
    ORV_TEMP_SUBPICTURE_NOT_OPENED,
};

// What the manager's stages hand on.
struct ManagerRun {
    DiscContext* context;
    const char16_t* targetPath;
    const char16_t* previousPath;
    uint64_t vobBytes;      // of the menus
    VobuRecord* menuList;   // owned; null without menus
};

static uint64_t makeMenuVob(ManagerRun* run, const char16_t* vobPath)
{
    MenuStage stage = {};
    stage.context = run->context;
    stage.texts = &MENU_TEXTS;
    stage.menus = run->context->vmg.menus;
    stage.menuCount = run->context->vmg.menuCount;
    stage.audioStreamCount = run->context->vmg.menuAttributes.audioStreamCount;
    stage.progressKind = PROGRESS_MANAGER_MENUS;
    stage.vobPath = vobPath;
    if (uint64_t error = osAllocMem(0, &run->menuList)) return error;
    const uint64_t result = orvMakeMenuVob(&stage, &run->menuList);
    run->vobBytes = stage.vobBytes;
    return result;
}

static uint64_t makeMenus(ManagerRun* run)
{
    if (run->context->vmg.menuCount == 0) return 0;
    char16_t* vobPath = nullptr;
    uint64_t result = osFormPath(&vobPath, u"%sVIDEO_TS.VOB", run->targetPath);
    if (result == OS_INVALID_ARGUMENT) return orvMenuVobNotOpened(run->context, &MENU_TEXTS, run->targetPath);
    if (!result) result = makeMenuVob(run, vobPath);
    (void)osStrFree(&vobPath);
    return result;
}

static uint64_t writeTables(const ManagerRun* run, const char16_t* ifoPath, const char16_t* backupPath)
{
    if (uint64_t error =
            orvWriteVmgIfo(run->context, ifoPath, run->targetPath, run->previousPath, run->vobBytes, run->menuList)) {
        return error;
    }
    if (uint64_t error = report(run->context, PROGRESS_MANAGER_IFO)) return error;
    // Meant: a backup that can't be written does not fail the run. Test: Target.WhatCannotBeWritten
    (void)osCopyFile(ifoPath, backupPath, false);
    return report(run->context, PROGRESS_MANAGER_BACKUP);
}

static uint64_t writeFiles(const ManagerRun* run)
{
    char16_t* ifoPath = nullptr;
    char16_t* backupPath = nullptr;
    uint64_t result = osFormPath(&ifoPath, u"%sVIDEO_TS.IFO", run->targetPath);
    if (!result) result = osFormPath(&backupPath, u"%sVIDEO_TS.BUP", run->targetPath);
    if (result == OS_INVALID_ARGUMENT) result = ORV_VMG_IFO_NOT_OPENED;
    if (!result) result = writeTables(run, ifoPath, backupPath);
    (void)osStrFree(&ifoPath);
    (void)osStrFree(&backupPath);
    return result;
}

static uint64_t authorManager(ManagerRun* run)
{
    if (uint64_t error = makeMenus(run)) return error;
    if (uint64_t error = report(run->context, PROGRESS_MANAGER_MENUS)) return error;
    return writeFiles(run);
}

uint64_t CreateVideoManager(DiscContext* context, const char16_t* targetPath, const char16_t* previousPath)
{
    ManagerRun run = { context, targetPath, previousPath, 0, nullptr };
    const uint64_t result = authorManager(&run);
    (void)osFreeMem(&run.menuList);
    return result;
}
