// manager_stage.cpp: makes the audio manager: its menus in AUDIO_TS.VOB, AUDIO_TS.IFO, and AUDIO_PP.IFO.

#include "audio/audio_ifo.h"
#include "audio/stage_files.h"
#include "audio/stages.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "mux/asset_drivers.h"
#include "project/audio_progress.h"
#include "video/menu_stage.h"

static constexpr const char16_t* NOT_OPENED = u"Failed to open file in <CreateAudioManager>: %s";
static constexpr const char16_t* NOT_MPEG = u"Video is not animated in <CreateAudioManager>, file: %s";

struct ManagerRun {
    AudioDiscContext* context;
    uint64_t menuVobBytes;
    VobuRecord* menuCells;   // owned; null without menus
};

static uint64_t layAssets(const ManagerRun* run, const MenuDesc* menu, OSFILE vob, OSFILE video, OSFILE subPicture)
{
    const uint64_t asset = orvProbeAsset(video);
    if (asset == ASSET_UNKNOWN) return orvLogged(run->context, ORV_ASSET_NOT_MPEG, NOT_MPEG, menu->background);
    if (uint64_t error = osSeekFile(video, 0, OS_FROM_START)) return error;
    if (asset == ASSET_ANIMATED) return orvMuxAnimatedMenu(menu, vob, video, subPicture);
    return orvMuxStillMenu(vob, video, subPicture, run->context->head.frameTicks);
}

static uint64_t layMenu(const ManagerRun* run, const MenuDesc* menu, OSFILE vob, OSFILE subPicture)
{
    OSFILE video = 0;
    if (osOpenFile(menu->background, OS_READ, &video)) {
        return orvLogged(run->context, ORV_MENU_VIDEO_NOT_OPENED, NOT_OPENED, menu->background);
    }
    const uint64_t result = layAssets(run, menu, vob, video, subPicture);
    (void)osCloseFile(&video);
    return result;
}

static uint64_t appendMenu(const ManagerRun* run, const MenuDesc* menu, OSFILE vob)
{
    SubPictureFile subPicture = {};
    uint64_t result = orvOpenSubPicture(run->context, menu->subPicture, &subPicture);
    if (!result) result = layMenu(run, menu, vob, subPicture.file);
    orvDropSubPicture(&subPicture);
    return result;
}

static uint64_t appendMenus(const ManagerRun* run, OSFILE vob)
{
    const AudioDiscContext* context = run->context;
    for (uint64_t i = 0; i < context->amgMenuCount; i++) {
        if (uint64_t error = appendMenu(run, context->amgMenus + i, vob)) return error;
        const uint64_t percent = PROGRESS_ALL * i / context->amgMenuCount;
        if (uint64_t error = orvReportStage(context, PROGRESS_AMG_MENUS, percent, 0)) return error;
    }
    return 0;
}

static uint64_t writeVob(ManagerRun* run, const char16_t* path)
{
    OSFILE vob = 0;
    if (osOpenFile(path, OS_CREATE_READ, &vob)) {
        return orvLogged(run->context, ORV_VOB_NOT_OPENED, NOT_OPENED, path);
    }
    uint64_t result = appendMenus(run, vob);
    if (!result) result = osFileSize(vob, &run->menuVobBytes);
    if (osCloseFile(&vob) && !result) result = ORV_MENU_VOB_NOT_WRITTEN;
    return result;
}

static uint64_t scanVob(ManagerRun* run, char16_t* path)
{
    const AudioDiscContext* context = run->context;
    char16_t* const sources[MAX_SOURCES] = { path };
    if (uint64_t error = osAllocMem(0, &run->menuCells)) return error;
    return orvScanAndSetupMenu(&context->head, 0, 0, context->amgMenus, context->amgMenuCount, 0,
                               context->head.videoStandard, sources, 0, true, &run->menuCells);
}

static uint64_t makeVob(ManagerRun* run, const char16_t* targetPath)
{
    if (run->context->amgMenuCount == 0) return 0;
    char16_t* path = nullptr;
    uint64_t result = osFormPath(&path, u"%sAUDIO_TS.VOB", targetPath);
    if (result == OS_INVALID_ARGUMENT) return orvLogged(run->context, ORV_VOB_NOT_OPENED, NOT_OPENED, targetPath);
    if (!result) result = writeVob(run, path);
    if (!result) result = scanVob(run, path);
    (void)osStrFree(&path);
    return result;
}

static uint64_t writeIfo(void* from, const char16_t* path)
{
    const ManagerRun* run = static_cast<ManagerRun*>(from);
    return orvWriteAmgIfo(run->context, path, run->menuVobBytes, run->menuCells);
}

static uint64_t makeManager(ManagerRun* run, const char16_t* targetPath)
{
    if (uint64_t error = makeVob(run, targetPath)) return error;
    if (uint64_t error = orvReportStage(run->context, PROGRESS_AMG_MENUS, PROGRESS_ALL, 0)) return error;
    const IfoFiles files = { u"%sAUDIO_TS.IFO",      u"%sAUDIO_TS.BUP", 0,
                             ORV_VMG_IFO_NOT_OPENED, PROGRESS_AMG_IFO,  PROGRESS_AMG_BACKUP };
    return orvWriteIfoAndBackup(run->context, targetPath, &files, run, writeIfo);
}

uint64_t CreateAudioManager(AudioDiscContext* context, const char16_t* targetPath)
{
    ManagerRun run = { context, 0, nullptr };
    const uint64_t result = makeManager(&run, targetPath);
    (void)osFreeMem(&run.menuCells);
    return result;
}

uint64_t orvCreateAudioPp(AudioDiscContext* context, const char16_t* targetPath)
{
    char16_t* path = nullptr;
    uint64_t result = osFormPath(&path, u"%sAUDIO_PP.IFO", targetPath);
    if (result == OS_INVALID_ARGUMENT) result = ORV_SAMG_NOT_CREATED;
    if (!result) result = orvWriteAudioPp(context, path);
    (void)osStrFree(&path);
    return result ? result : orvReportStage(context, PROGRESS_AUDIO_PP, PROGRESS_ALL, 0);
}
