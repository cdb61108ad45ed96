// title_set_driver.cpp: authors one title set: makes its menus, scans its sources, fills their navigation packs, writes
// IFO and backup.

#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "project/progress.h"
#include "video/driver_progress.h"
#include "video/drivers.h"
#include "video/menu_stage.h"
#include "video/movie_scan.h"
#include "video/nav_setup.h"
#include "video/vts_ifo.h"

// What a title set's stages hand on.
struct TitleSetRun {
    DiscContext* context;
    TitleSetDesc* titleSet;
    uint64_t number;
    const char16_t* targetPath;
    uint64_t menuSectors, titleSectors;
    VobuRecord* menuList;   // owned, as the next
    VobuRecord* titleList;
};

static uint64_t report(const TitleSetRun* run, uint32_t kind)
{
    return orvReportProgress(run->context, kind, PROGRESS_WHOLE, run->number) ? ORV_CANCELED : 0;
}

static const MenuStageTexts MENU_TEXTS = {
    u"Failed to open file in <CreateVideoTitleset>: %s",
    ORV_VTSM_VOB_NOT_OPENED,
    nullptr,
    u"Video is not animated in <CreateVideoTitleSet>, file: %s",
    u"Failed to open file in <CreateVideoTitleSet>: %s",
    u"Failed to open file in <CreateVideoTitleSet>: %s",
    ORV_MENU_VIDEO_NOT_OPENED,
};

static uint64_t makeMenuVob(TitleSetRun* run, char16_t* vobPath)
{
    MenuStage stage = {};
    stage.context = run->context;
    stage.texts = &MENU_TEXTS;
    stage.menus = run->titleSet->menus;
    stage.menuCount = run->titleSet->menuCount;
    stage.audioStreamCount = run->titleSet->menuAttributes.audioStreamCount;
    stage.progressKind = PROGRESS_TITLE_SET_MENUS;
    stage.titleSetNumber = run->number;
    stage.vobPath = vobPath;
    stage.skipMenu = run->titleSet->skipMenu != 0;
    if (uint64_t error = osAllocMem(0, &run->menuList)) return error;
    if (uint64_t error = orvMakeMenuVob(&stage, &run->menuList)) return error;
    char16_t* const sources[MAX_SOURCES] = { vobPath };
    return orvCountFilePacks(&run->context->head, sources, &run->menuSectors);
}

static uint64_t makeMenus(TitleSetRun* run)
{
    if (run->titleSet->menuCount == 0) return 0;
    char16_t* vobPath = nullptr;
    uint64_t result = osFormPath(&vobPath, u"%sVTS_%.2d_0.VOB", run->targetPath, run->number);
    // A target whose files would have too long a name holds none.
    if (result == OS_INVALID_ARGUMENT) return orvMenuVobNotOpened(run->context, &MENU_TEXTS, run->targetPath);
    if (!result) result = makeMenuVob(run, vobPath);
    (void)osStrFree(&vobPath);
    return result;
}

static bool onOpticalMedia(const TitleSetRun* run)
{
    uint64_t type = OS_DRIVE_UNKNOWN;
    return !osGetDriveType(run->titleSet->sources[0], &type) && type == OS_DRIVE_OPTICAL;
}

static uint64_t scanAndSetup(TitleSetRun* run, StreamPackRecord** streamPacks)
{
    char16_t* const* sources = run->titleSet->sources;
    if (uint64_t error = orvGetMovieInfo(&run->context->head, run->titleSet, sources, run->number, &run->titleList,
                                         streamPacks, orvScanProgress, run->number, false)) {
        return error;
    }
    if (onOpticalMedia(run)) return 0;   // its packs can't be filled
    return orvSetupMovieA(&run->context->head, run->context->head.videoStandard,
                          run->titleSet->titleAttributes.audioStreamCount, sources, run->titleList, *streamPacks,
                          orvSetupProgress, run->number);
}

static uint64_t prepareMovie(TitleSetRun* run)
{
    if (run->titleSet->streamScanFile) {
        // The host has prepared the stream: it is neither scanned nor touched.
        (void)osFreeMem(&run->titleList);
        return orvReadStreamScanFile(run->titleSet->streamScanFile, &run->titleList, &run->titleSectors);
    }
    StreamPackRecord* streamPacks = nullptr;
    uint64_t result = osAllocMem(0, &streamPacks);
    if (!result) result = scanAndSetup(run, &streamPacks);
    (void)osFreeMem(&streamPacks);
    if (result) return result;
    return orvCountFilePacks(&run->context->head, run->titleSet->sources, &run->titleSectors);
}

static uint64_t writeTables(const TitleSetRun* run, const char16_t* ifoPath, const char16_t* backupPath)
{
    if (uint64_t error = orvWriteVtsIfo(run->context, run->number, ifoPath, run->menuSectors, run->titleSectors,
                                        run->menuList, run->titleList)) {
        return error;
    }
    if (uint64_t error = report(run, PROGRESS_TITLE_SET_IFO)) return error;
    // Meant: a backup that can't be written does not fail the run. Test: Target.WhatCannotBeWritten
    (void)osCopyFile(ifoPath, backupPath, false);
    return report(run, PROGRESS_TITLE_SET_BACKUP);
}

static uint64_t writeFiles(const TitleSetRun* run)
{
    char16_t* ifoPath = nullptr;
    char16_t* backupPath = nullptr;
    // A target whose files would have too long a name holds none.
    uint64_t result = osFormPath(&ifoPath, u"%sVTS_%.2d_0.IFO", run->targetPath, run->number);
    if (!result) result = osFormPath(&backupPath, u"%sVTS_%.2d_0.BUP", run->targetPath, run->number);
    if (result == OS_INVALID_ARGUMENT) result = ORV_VTS_IFO_NOT_OPENED;
    if (!result) result = writeTables(run, ifoPath, backupPath);
    (void)osStrFree(&ifoPath);
    (void)osStrFree(&backupPath);
    return result;
}

static uint64_t authorTitleSet(TitleSetRun* run)
{
    if (uint64_t error = makeMenus(run)) return error;
    if (uint64_t error = report(run, PROGRESS_TITLE_SET_MENUS)) return error;
    if (uint64_t error = osAllocMem(0, &run->titleList)) return error;
    if (uint64_t error = prepareMovie(run)) return error;
    if (uint64_t error = report(run, PROGRESS_TITLE_SET_MOVIE)) return error;
    return writeFiles(run);
}

uint64_t CreateVideoTitleSet(DiscContext* context, uint64_t titleSetNumber, const char16_t* targetPath)
{
    if (titleSetNumber < 1 || titleSetNumber > MAX_TITLE_SETS) return ORV_WRONG_TITLE_SET_COUNT;
    TitleSetRun run = {};
    run.context = context;
    run.titleSet = context->titleSets[titleSetNumber - 1];
    run.number = titleSetNumber;
    run.targetPath = targetPath;
    if (!run.titleSet) return 0;   // skipped: nothing is written and nothing is checked
    const uint64_t result = authorTitleSet(&run);
    (void)osFreeMem(&run.menuList);
    (void)osFreeMem(&run.titleList);
    return result;
}
