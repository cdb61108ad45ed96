// menu_stage.cpp: makes the menu VOB of a domain.

#include "video/menu_stage.h"

#include "base/files.h"
#include "base/log.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "menu/menu_colors.h"
#include "menu/sub_picture.h"
#include "mux/asset_drivers.h"
#include "project/progress.h"
#include "video/driver_progress.h"
#include "video/movie_scan.h"
#include "video/nav_setup.h"

// Sub-picture units of a menu in temporary files, in the order of their streams.
struct MenuUnits {
    char16_t* paths[2];   // owned; the files are removed with them
    OSFILE files[2];
    uint64_t count;
};

static uint64_t fail(const MenuStage* stage, uint64_t code, const char16_t* text, const char16_t* path)
{
    orvLogError(code, stage->context->head.logFilePath, text, path);
    return code;
}

uint64_t orvMenuVobNotOpened(const DiscContext* context, const MenuStageTexts* texts, const char16_t* path)
{
    orvLogError(texts->vobNotOpenedCode, context->head.logFilePath, texts->vobNotOpened, path);
    return texts->vobNotOpenedCode;
}

static void dropUnits(MenuUnits* units)
{
    for (uint64_t i = 0; i < units->count; i++) {
        (void)osCloseFile(&units->files[i]);
        if (units->paths[i]) (void)osDeleteFile(units->paths[i]);
        (void)osStrFree(&units->paths[i]);
    }
}

static uint64_t encodeUnits(const MenuStage* stage, const MenuDesc* menu, MenuUnits* units)
{
    // The normal display's unit first; that of the letterbox display is the second stream.
    const char16_t* const bitmaps[] = { menu->subPicture, menu->spuLetterbox };
    const char16_t* const alphas[] = { menu->subPicture32, menu->spuLetterbox32 };
    for (uint64_t i = 0; i < units->count; i++) {
        if (uint64_t error = orvEncodeSubPictureFile(stage->context->head.videoStandard, menu, menu->blinkCount,
                                                     menu->blinkDelay, bitmaps[i], alphas[i], &units->paths[i])) {
            return error;
        }
    }
    return 0;
}

static uint64_t openUnits(const MenuStage* stage, MenuUnits* units)
{
    const MenuStageTexts* texts = stage->texts;
    for (uint64_t i = 0; i < units->count; i++) {
        if (osOpenFile(units->paths[i], OS_READ, &units->files[i])) {
            const char16_t* text = units->count > 1 ? texts->unitOfPairNotOpened : texts->unitNotOpened;
            return fail(stage, texts->unitNotOpenedCode, text, units->paths[i]);
        }
    }
    return 0;
}

static uint64_t multiplex(const MenuStage* stage, const MenuDesc* menu, uint64_t asset, OSFILE output, OSFILE video,
                          const OSFILE* units)
{
    const uint64_t frameTicks = stage->context->head.frameTicks;
    if (asset == ASSET_ANIMATED) {
        return menu->hasLetterbox ? orvMuxAnimatedMenuPair(menu, output, video, units[0], units[1])
                                  : orvMuxAnimatedMenu(menu, output, video, units[0]);
    }
    return menu->hasLetterbox ? orvMuxStillMenuPair(output, video, units[0], units[1], frameTicks)
                              : orvMuxStillMenu(output, video, units[0], frameTicks);
}

static uint64_t layAssets(const MenuStage* stage, const MenuDesc* menu, OSFILE output, OSFILE video, MenuUnits* units)
{
    const uint64_t asset = orvProbeAsset(video);
    if (asset == ASSET_UNKNOWN) return fail(stage, ORV_ASSET_NOT_MPEG, stage->texts->assetNotMpeg, menu->background);
    if (uint64_t error = osSeekFile(video, 0, OS_FROM_START)) return error;
    if (uint64_t error = openUnits(stage, units)) return error;
    return multiplex(stage, menu, asset, output, video, units->files);
}

static uint64_t layMenu(const MenuStage* stage, const MenuDesc* menu, OSFILE output, MenuUnits* units)
{
    OSFILE video = 0;
    if (osOpenFile(menu->background, OS_READ, &video) && stage->texts->backgroundNotOpened) {
        return fail(stage, ORV_MENU_VIDEO_NOT_OPENED, stage->texts->backgroundNotOpened, menu->background);
    }
    // Meant: where opening is not checked, a background that is not there is one that is no MPEG.
    // Test: MenuFaults.BackgroundThatIsNotThere
    const uint64_t result = layAssets(stage, menu, output, video, units);
    (void)osCloseFile(&video);
    return result;
}

static uint64_t appendMenu(MenuStage* stage, MenuDesc* menu, OSFILE output)
{
    if (menu->hasSubPicture32) {
        if (uint64_t error = orvPrepareMenuColors(stage->context->head.videoStandard, menu)) return error;
    }
    MenuUnits units = {};
    // Meant: the last menu's count stands for all menus of the domain. Test: Menus.LastMenuStandsForAll
    stage->subPictureCount = units.count = menu->hasLetterbox ? 2 : 1;
    uint64_t result = encodeUnits(stage, menu, &units);
    if (!result) result = layMenu(stage, menu, output, &units);
    dropUnits(&units);
    return result;
}

static uint64_t appendMenus(MenuStage* stage, OSFILE output)
{
    for (uint64_t i = 0; i < stage->menuCount; i++) {
        if (uint64_t error = appendMenu(stage, stage->menus + i, output)) return error;
        const uint64_t value = i * PROGRESS_HALF / stage->menuCount;
        if (orvReportProgress(stage->context, stage->progressKind, value, stage->titleSetNumber)) return ORV_CANCELED;
    }
    return 0;
}

static uint64_t writeVob(MenuStage* stage)
{
    OSFILE output = 0;
    if (osOpenFile(stage->vobPath, stage->skipMenu ? OS_EXTEND : OS_CREATE_READ, &output)) {
        return orvMenuVobNotOpened(stage->context, stage->texts, stage->vobPath);
    }
    uint64_t result = stage->skipMenu ? 0 : appendMenus(stage, output);
    if (!result) result = osFileSize(output, &stage->vobBytes);
    if (osCloseFile(&output) && !result) result = ORV_MENU_VOB_NOT_WRITTEN;
    return result;
}

uint64_t orvMakeMenuVob(MenuStage* stage, VobuRecord** vobuList)
{
    char16_t* sources[MAX_SOURCES] = {};
    if (uint64_t error = writeVob(stage)) return error;
    if (uint64_t error = osStrDup(stage->vobPath, &sources[0])) return error;
    const uint64_t result = orvScanAndSetupMenu(
        &stage->context->head, stage->audioStreamCount, stage->subPictureCount, stage->menus, stage->menuCount,
        stage->skipMenu, stage->context->head.videoStandard, sources, stage->titleSetNumber, false, vobuList);
    (void)osStrFree(&sources[0]);
    return result;
}

// ---- scan ---------------------------------------------------------------------------------------------------------

constexpr uint8_t LOOP_CELL = 2;

/** A menu that loops from a point on has two cells: the first plays once, the cell command returns to the second. */
static void splitAtLoopPoint(const MenuDesc* menu, VobuRecord* list)
{
    if (menu->loopMode != LOOP_FROM) return;
    // Meant: the first menu's loop point divides the whole file, all menus alike. Test: Menus.LoopOfTheFirstMenu
    for (uint64_t i = 0; i < osListCount(list); i++) {
        if (list[i].scr >= menu->loopValue) list[i].cellId = LOOP_CELL;
    }
}

uint64_t orvScanAndSetupMenu(const RunHead* run, uint64_t audioStreamCount, uint64_t subPictureCount,
                             const MenuDesc* menus, uint64_t menuCount, uint64_t skipSetup, int64_t videoStandard,
                             char16_t* const* sources, uint64_t progressUser, bool noProgress, VobuRecord** vobuList)
{
    StreamPackRecord* streamPacks = nullptr;
    if (uint64_t error = osAllocMem(0, &streamPacks)) return error;
    uint64_t result =
        orvGetMovieInfo(run, nullptr, sources, 0, vobuList, &streamPacks, orvMenuProgress, progressUser, noProgress);
    if (!result && menuCount > 0) splitAtLoopPoint(menus, *vobuList);
    if (!result && !skipSetup) {
        result = orvSetupMenu(run, audioStreamCount, subPictureCount, menus, menuCount, videoStandard, sources[0],
                              *vobuList, streamPacks);
    }
    (void)osFreeMem(&streamPacks);
    return result;
}
