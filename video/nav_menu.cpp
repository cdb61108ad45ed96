// nav_menu.cpp: fills the navigation packs of a menu VOB, one file that holds all menus of a domain.

#include "base/files.h"
#include "base/log.h"
#include "base/memory.h"
#include "base/result.h"
#include "mux/nav_layout.h"
#include "video/nav_highlight.h"
#include "video/nav_pack.h"
#include "video/nav_search.h"
#include "video/nav_setup.h"
#include "video/nav_sync.h"

constexpr uint64_t SHORT_VOB_FRAMES = 10;
constexpr uint64_t SHORT_VOB_DECLARED = 12;

// What is carried from one unit of a menu VOB to the next.
struct MenuWalk {
    const VobuRecord* list;
    uint64_t count;
    int64_t videoStandard;
    uint64_t ticksPerFrame;
    uint64_t audioStreamCount;
    uint64_t totalSectors;
    uint64_t cellFrames;           // pictures of the cell before the unit at hand
    const VobuRecord* lastOfVob;   // last unit of the VOB at hand
    VobuSearch search;
    SyncIndex sync;
    Highlight highlight;
};

static const VobuRecord* lastOfVob(const MenuWalk* walk, uint64_t vobId)
{
    const VobuRecord* last = walk->list;
    for (uint64_t i = 0; i < walk->count; i++) {
        if (walk->list[i].vobId == vobId) last = walk->list + i;
    }
    return last;
}

/** Time at which video of the menu ends as declared: counted from the first unit of the file, in whole frames. */
static uint64_t declaredEnd(const MenuWalk* walk, uint64_t vobEnd)
{
    const uint64_t begin = walk->list[0].firstPts;
    const uint64_t frames = (vobEnd - begin) / walk->ticksPerFrame;
    return begin + (frames < SHORT_VOB_FRAMES ? SHORT_VOB_DECLARED : frames) * walk->ticksPerFrame;
}

static void fillMenuPack(MenuWalk* walk, uint64_t i, uint8_t* pack)
{
    const VobuRecord* record = walk->list + i;
    const bool vobBegins = i == 0 || record->vobId != record[-1].vobId;
    if (vobBegins) walk->lastOfVob = lastOfVob(walk, record->vobId);
    if (vobBegins || record->cellId != record[-1].cellId) walk->cellFrames = 0;

    const uint64_t vobEnd = orvVobuVideoEnd(walk->lastOfVob, walk->ticksPerFrame);
    const bool isLast = i + 1 == walk->count;
    NavPackValues values = {};
    values.record = record;
    values.audioStreamCount = walk->audioStreamCount;
    orvSetUnitTimes(&values, record, walk->ticksPerFrame);
    values.sequenceEndPts = record == walk->lastOfVob ? vobEnd : 0;
    values.cellElapsed = orvFramesToTime(walk->videoStandard, walk->cellFrames);
    values.vobuEnd = (isLast ? walk->totalSectors : record[1].sector) - record->sector - 1;
    values.firstRefEnd = record->firstRefEnd ? record->firstRefEnd : values.vobuEnd;
    values.vobStartPts = walk->list[0].firstPts;
    values.vobEndPts = declaredEnd(walk, vobEnd);

    orvPutNavPack(pack, &values);
    orvStepSearch(&walk->search, i);
    orvFillSearch(&walk->search, pack);
    orvFillSync(&walk->sync, record, walk->ticksPerFrame, pack);
    orvFillHighlight(&walk->highlight, record, pack);
    walk->cellFrames += record->pictureCount;
}

static uint64_t fail(const RunHead* run, const char16_t* path, uint64_t code, const char16_t* text)
{
    orvLogError(code, run->logFilePath, text, path);
    return code;
}

static uint64_t setupPacks(const RunHead* run, const char16_t* path, OSFILE file, MenuWalk* walk)
{
    uint64_t size = 0;
    if (uint64_t error = osFileSize(file, &size)) return error;
    walk->totalSectors = size >> SECTOR_SHIFT;
    for (uint64_t i = 0; i < walk->count; i++) {
        uint8_t pack[SECTOR_BYTES];
        const int64_t position = int64_t(walk->list[i].sector * SECTOR_BYTES);
        if (osSeekFile(file, position, OS_FROM_START) || osReadFile(file, pack, SECTOR_BYTES)) {
            return fail(run, path, ORV_MOVIE_NOT_READ, u"Failed to read pack in <orvSetupMenu>: %s");
        }
        fillMenuPack(walk, i, pack);
        if (osSeekFile(file, position, OS_FROM_START) || osWriteFile(file, pack, SECTOR_BYTES)) {
            return fail(run, path, ORV_MOVIE_NOT_WRITTEN, u"Failed to write pack in <orvSetupMenu>: %s");
        }
    }
    return 0;
}

uint64_t orvSetupMenu(const RunHead* run, uint64_t audioStreamCount, uint64_t subPictureCount, const MenuDesc* menus,
                      uint64_t menuCount, int64_t videoStandard, const char16_t* path, const VobuRecord* vobuList,
                      const StreamPackRecord* streamPackList)
{
    MenuWalk walk = {};
    walk.list = vobuList;
    walk.count = osListCount(vobuList);
    walk.videoStandard = videoStandard;
    walk.ticksPerFrame = orvFrameTicks(videoStandard);
    walk.audioStreamCount = audioStreamCount;
    orvBeginSearch(&walk.search, vobuList, walk.ticksPerFrame);
    // Meant: one pair for the whole file, the last unit of the first record's cell number and 0.
    // Test: NavSearch.EndsInAMenuAreThoseOfTheFile
    if (walk.count > 0) walk.search.lastSector = orvLastSectorOfCell(vobuList, vobuList[0].cellId);
    walk.search.firstSector = 0;
    orvBeginHighlight(&walk.highlight, menus, menuCount, videoStandard, vobuList);

    OSFILE file = 0;
    if (uint64_t error = osOpenFile(path, OS_EXTEND, &file)) return error;
    uint64_t result = orvBuildSyncIndex(&walk.sync, streamPackList, audioStreamCount, subPictureCount);
    if (!result) result = setupPacks(run, path, file, &walk);
    orvFreeSyncIndex(&walk.sync);
    if (osCloseFile(&file) && !result) {
        result = fail(run, path, ORV_MOVIE_NOT_WRITTEN, u"Failed to write pack in <orvSetupMenu>: %s");
    }
    return result;
}
