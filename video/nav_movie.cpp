// nav_movie.cpp: fills the navigation packs of a title in its source files.

#include "base/files.h"
#include "base/log.h"
#include "base/memory.h"
#include "base/result.h"
#include "mux/nav_layout.h"
#include "video/nav_pack.h"
#include "video/nav_search.h"
#include "video/nav_setup.h"
#include "video/nav_sync.h"

// The source files while packs are taken out and put back. Packs come in the order of the list, so that of a file
// that is passed nothing is needed again but the share of a split pack. Only the packs themselves are read: all that
// lies between them stays untouched.
struct MovieFiles {
    const RunHead* run;
    char16_t* const* sources;
    uint64_t index;   // of the open file
    OSFILE file;
    uint64_t passed;       // bytes of the files before it
    uint64_t position;     // of the pack at hand in the file in which it begins
    uint64_t firstShare;   // bytes of it in that file, if it is the one before the open file; else 0
};

static uint64_t fail(const MovieFiles* files, uint64_t index, uint64_t code, const char16_t* text)
{
    orvLogError(code, files->run->logFilePath, text, files->sources[index]);
    return code;
}

static uint64_t openMovieFile(MovieFiles* files)
{
    if (osOpenFile(files->sources[files->index], OS_FIX, &files->file)) {
        return fail(files, files->index, ORV_MOVIE_NOT_READ, u"Failed to open file in <orvSetupMovieA>: %s");
    }
    return 0;
}

static uint64_t readUpTo(OSFILE file, uint64_t position, uint8_t* buffer, uint64_t count, uint64_t* got)
{
    *got = 0;
    if (uint64_t error = osSeekFile(file, int64_t(position), OS_FROM_START)) return error;
    while (*got < count) {
        uint64_t some = 0;
        if (uint64_t error = osReadFileSome(file, buffer + *got, count - *got, &some)) return error;
        if (some == 0) break;
        *got += some;
    }
    return 0;
}

/** Goes on in the next file with a pack of which the open file has given got bytes. */
static uint64_t readRest(MovieFiles* files, uint64_t sector, uint8_t* pack, uint64_t got, bool* ended)
{
    uint64_t size = 0;
    if (osFileSize(files->file, &size)) {
        return fail(files, files->index, ORV_MOVIE_NOT_READ, u"Failed to read file in <orvSetupMovieA>: %s");
    }
    files->passed += size;
    if (osCloseFile(&files->file)) {
        return fail(files, files->index, ORV_MOVIE_NOT_WRITTEN, u"Failed to write DSI pack in <orvSetupMovieA>: %s");
    }
    if (files->index + 1 >= MAX_SOURCES || !files->sources[files->index + 1]) {
        *ended = true;   // Meant: the packs that are left stay as they are. Test: NavMovie.ListEndsBeforeTheStream
        return 0;
    }
    files->index++;
    if (uint64_t error = openMovieFile(files)) return error;

    files->firstShare = got;
    if (got == 0) files->position = sector * SECTOR_BYTES - files->passed;
    uint64_t rest = 0;
    // Meant: one step a pack. A file in which no pack begins can't be stepped over. Test:
    // NavMovie.OneStepToTheNextFileForAPack
    if (readUpTo(files->file, got ? 0 : files->position, pack + got, SECTOR_BYTES - got, &rest) ||
        rest < SECTOR_BYTES - got) {
        return fail(files, files->index, ORV_MOVIE_NOT_READ, u"Failed to read rest of pack in <orvSetupMovieA>: %s");
    }
    return 0;
}

static uint64_t readNavPack(MovieFiles* files, uint64_t sector, uint8_t* pack, bool* ended)
{
    uint64_t got = 0;
    files->firstShare = 0;
    files->position = sector * SECTOR_BYTES - files->passed;
    if (readUpTo(files->file, files->position, pack, SECTOR_BYTES, &got)) {
        return fail(files, files->index, ORV_MOVIE_NOT_READ, u"Failed to read file in <orvSetupMovieA>: %s");
    }
    return got < SECTOR_BYTES ? readRest(files, sector, pack, got, ended) : 0;
}

static uint64_t writeAt(OSFILE file, uint64_t position, const uint8_t* bytes, uint64_t count)
{
    if (uint64_t error = osSeekFile(file, int64_t(position), OS_FROM_START)) return error;
    return osWriteFile(file, bytes, count);
}

/** Puts the first share of a split pack back into the file before the open one. */
static uint64_t writeFirstShare(const MovieFiles* files, const uint8_t* pack)
{
    const uint64_t before = files->index - 1;
    OSFILE file = 0;
    if (osOpenFile(files->sources[before], OS_FIX, &file)) {
        return fail(files, before, ORV_MOVIE_NOT_WRITTEN, u"Failed to open file in <orvSetupMovieA>: %s");
    }
    uint64_t result = writeAt(file, files->position, pack, files->firstShare);
    const uint64_t closed = osCloseFile(&file);
    if (!result) result = closed;
    if (result) return fail(files, before, ORV_MOVIE_NOT_WRITTEN, u"Failed to write DSI pack in <orvSetupMovieA>: %s");
    return 0;
}

static uint64_t writeNavPack(MovieFiles* files, const uint8_t* pack)
{
    if (files->firstShare == 0) {
        if (writeAt(files->file, files->position, pack, SECTOR_BYTES)) {
            return fail(files, files->index, ORV_MOVIE_NOT_WRITTEN,
                        u"Failed to write DSI pack in <orvSetupMovieA>: %s");
        }
        return 0;
    }
    if (uint64_t error = writeFirstShare(files, pack)) return error;
    if (writeAt(files->file, 0, pack + files->firstShare, SECTOR_BYTES - files->firstShare)) {
        return fail(files, files->index, ORV_MOVIE_NOT_WRITTEN,
                    u"Failed to write rest of pack in <orvSetupMovieA>: %s");
    }
    return 0;
}

// What is carried from one unit of a title to the next.
struct TitleWalk {
    const VobuRecord* list;
    uint64_t count;
    int64_t videoStandard;
    uint64_t ticksPerFrame;
    uint64_t audioStreamCount;
    uint64_t totalSectors;
    uint64_t cellFrames;   // pictures of the cell before the unit at hand
    VobuSearch search;
    SyncIndex sync;
};

static void fillTitlePack(TitleWalk* walk, uint64_t i, uint8_t* pack)
{
    const VobuRecord* record = walk->list + i;
    const VobuRecord* last = walk->list + (walk->count - 1);
    const bool cellBegins = i == 0 || record->cellId != record[-1].cellId;
    if (cellBegins) {
        walk->cellFrames = 0;
        walk->search.firstSector = i == 0 ? 0 : record->sector;
        walk->search.lastSector = orvLastSectorOfCell(walk->list, record->cellId);
    }
    NavPackValues values = {};
    values.record = record;
    values.audioStreamCount = walk->audioStreamCount;
    orvSetUnitTimes(&values, record, walk->ticksPerFrame);
    const uint64_t movieEnd = orvVobuVideoEnd(last, walk->ticksPerFrame);
    values.sequenceEndPts = record == last ? movieEnd : 0;
    values.cellElapsed = orvFramesToTime(walk->videoStandard, walk->cellFrames);
    values.vobuEnd = (record == last ? walk->totalSectors : record[1].sector) - record->sector - 1;
    values.firstRefEnd = record->firstRefEnd;
    values.vobStartPts = walk->list[0].firstPts;
    values.vobEndPts = movieEnd;

    orvPutNavPack(pack, &values);
    orvStepSearch(&walk->search, i);
    orvFillSearch(&walk->search, pack);
    orvFillSync(&walk->sync, record, walk->ticksPerFrame, pack);
    walk->cellFrames += record->pictureCount;
}

static uint64_t setupPacks(MovieFiles* files, TitleWalk* walk, PassProgress progress, uint64_t progressUser)
{
    if (uint64_t error = openMovieFile(files)) return error;
    for (uint64_t i = 0; i < walk->count; i++) {
        uint8_t pack[SECTOR_BYTES];
        bool ended = false;
        if (progress && !progress(files->run, walk->count, i, progressUser)) return ORV_CANCELED;
        if (uint64_t error = readNavPack(files, walk->list[i].sector, pack, &ended)) return error;
        if (ended) return 0;
        fillTitlePack(walk, i, pack);
        if (uint64_t error = writeNavPack(files, pack)) return error;
    }
    return 0;
}

uint64_t orvSetupMovieA(const RunHead* run, int64_t videoStandard, uint64_t audioStreamCount, char16_t* const* sources,
                        const VobuRecord* vobuList, const StreamPackRecord* streamPackList, PassProgress progress,
                        uint64_t progressUser)
{
    MovieFiles files = {};
    files.run = run;
    files.sources = sources;

    TitleWalk walk = {};
    walk.list = vobuList;
    walk.count = osListCount(vobuList);
    walk.videoStandard = videoStandard;
    walk.ticksPerFrame = orvFrameTicks(videoStandard);
    walk.audioStreamCount = audioStreamCount;
    // Meant: a failed count is logged and the work goes on; the last unit then ends nowhere.
    // Test: NavMovie.FailedCountIsLoggedAndTheWorkGoesOn
    if (orvCountFilePacks(run, sources, &walk.totalSectors)) {
        (void)fail(&files, 0, ORV_MOVIE_NOT_READ, u"Failed to open file in <orvSetupMovieA>: %s");
    }
    orvBeginSearch(&walk.search, vobuList, walk.ticksPerFrame);
    // A title has no sub-pictures: their entries stay 0.
    uint64_t result = orvBuildSyncIndex(&walk.sync, streamPackList, audioStreamCount, 0);
    if (!result) result = setupPacks(&files, &walk, progress, progressUser);
    const uint64_t closed = osCloseFile(&files.file);
    if (!result && closed) {
        result = fail(&files, files.index, ORV_MOVIE_NOT_WRITTEN, u"Failed to write DSI pack in <orvSetupMovieA>: %s");
    }
    orvFreeSyncIndex(&walk.sync);
    return result;
}
