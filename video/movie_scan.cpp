// movie_scan.cpp: finds the navigation packs, pictures and stream packs of finished program streams, for the lists from
// which tables and navigation packs are made.

#include "video/movie_scan.h"

#include "base/files.h"
#include "base/log.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "mux/nav_layout.h"
#include "mux/pack_layout.h"
#include "mux/pack_read.h"
#include "video/pack_source.h"

#include <cstring>

// The last payload bytes of a video pack. A picture start code that begins in them is looked for when the next pack
// is at hand, since the code and the header behind it may lie across both.
constexpr uint64_t CARRY_BYTES = 6;
constexpr uint64_t PICTURE_HEADER_END = 6;   // start code 00 00 01 00 and two header bytes

constexpr uint64_t START_CODE_BYTES = 4;
constexpr uint8_t MPEG_AUDIO_STREAMS = 8;
constexpr uint64_t PICTURE_I = 1, PICTURE_P = 2;
constexpr uint64_t MAX_REFERENCES = 3;

struct MovieScan {
    const TitleSetDesc* titleSet;   // null for a menu VOB
    uint64_t chapterLimit;
    uint64_t frameTicks;
    VobuRecord** vobuList;
    StreamPackRecord** streamPackList;

    uint64_t sector;   // of the pack at hand
    uint64_t chapter;
    uint64_t vobId;
    VobuRecord record;       // under construction
    uint64_t previousType;   // coding type of the picture before, within the unit; 0 at its start
    uint64_t references;     // reference ends stored in the unit
    uint8_t carry[CARRY_BYTES];
    uint64_t previousVideoSector;
};

uint64_t orvCountFilePacks(const RunHead* run, char16_t* const* sources, uint64_t* sectors)
{
    if (!sectors) return 0;
    uint64_t bytes = 0;
    for (uint64_t i = 0; i < MAX_SOURCES; i++) {
        if (!sources[i]) continue;
        OSFILE file = 0;
        uint64_t size = 0;
        uint64_t result = osOpenFile(sources[i], OS_READ, &file);
        if (!result) result = osFileSize(file, &size);
        (void)osCloseFile(&file);   // nothing was written
        if (result) {
            orvLogError(ORV_MOVIE_NOT_READ, run->logFilePath, u"Failed to open file in <orvCountFilePacks>: %s",
                        sources[i]);
            return ORV_MOVIE_NOT_READ;
        }
        bytes += size;
    }
    *sectors = bytes >> SECTOR_SHIFT;
    return 0;
}

/** Closes the record of the unit that ends before the pack at hand, and appends it. */
static uint64_t endVobu(MovieScan* scan)
{
    VobuRecord* record = &scan->record;
    record->lastSector = scan->sector - 1;
    const uint64_t stored = osListCount(*scan->vobuList);
    if (record->pictureCount == 0 && stored > 0) {
        // No picture starts in the unit: it lasts as long as its clock says.
        const VobuRecord* last = *scan->vobuList + (stored - 1);
        const uint64_t ticks = record->scr - last->scr;
        record->pictureCount = ticks / scan->frameTicks;
        record->firstPts = ticks + last->firstPts;
    }
    const uint64_t result = osListAppend(scan->vobuList, *record);
    *record = {};
    return result;
}

static uint64_t scanNavPack(MovieScan* scan, const uint8_t* pack)
{
    const uint64_t scr = orvReadScr(pack, nullptr);
    scan->previousType = 0;
    scan->references = 0;
    if (scr == 0) scan->vobId++;
    // Meant: a first navigation pack that stands behind other packs leaves one record of zeros with only lastSector
    // set. Test: MovieScan.PacksBeforeTheFirstNavigationPackMakeALeadingRecord
    if (scan->sector != 0) {
        if (uint64_t error = endVobu(scan)) return error;
    }
    scan->record.sector = scan->sector;
    scan->record.scr = scr;
    // Meant: the first chapter's position is never looked at, a cell starts at the start; at most one step a pack.
    // Test: MovieScan.ChaptersMakeCells
    if (scan->chapter < scan->chapterLimit && scr >= uint64_t(scan->titleSet->chapters[scan->chapter].startFrame)) {
        scan->chapter++;
    }
    scan->record.vobId = scan->vobId;
    scan->record.cellId = scan->chapter;
    return 0;
}

// Kinds of private stream 1, by ranges of sub-stream ids.
struct SubStreamRange {
    uint8_t first, last;
    StreamPackKind kind;
};
constexpr SubStreamRange SUB_STREAMS[] = {
    { 0x20, 0x3F, PACK_SUBPICTURE }, { 0x80, 0x87, PACK_AC3 },  { 0x88, 0x8F, PACK_DTS },
    { 0x90, 0x97, PACK_SDDS },       { 0xA0, 0xA7, PACK_LPCM },
};

static bool isStreamPack(const uint8_t* pack)
{
    const uint8_t id = pack[PACK_STREAM_ID.at];
    // Meant: 0xC8 is listed, as a pack of no known kind. Test: MovieScan.KindsByEveryEdgeOfTheIds
    return id == STREAM_PRIVATE_1 || (id >= STREAM_AUDIO && id <= STREAM_AUDIO + MPEG_AUDIO_STREAMS);
}

static uint64_t scanStreamPack(MovieScan* scan, const uint8_t* pack)
{
    StreamPackRecord found = {};
    found.sector = scan->sector;
    found.pts = orvReadPts(pack);
    found.vobId = scan->vobId;
    const uint8_t id = pack[PACK_STREAM_ID.at];
    if (id == STREAM_PRIVATE_1) {
        const uint8_t subId = pack[PES_DATA + pack[PACK_PES_HEADER.at]];
        for (const SubStreamRange& range : SUB_STREAMS) {
            if (subId < range.first || subId > range.last) continue;
            found.kind = range.kind;
            found.streamIndex = uint64_t(subId - range.first);
        }
        if (found.kind == PACK_SUBPICTURE) found.vobuSector = scan->record.sector;
    } else if (id < STREAM_AUDIO + MPEG_AUDIO_STREAMS) {
        found.kind = PACK_MPEG_AUDIO;
        found.streamIndex = uint64_t(id - STREAM_AUDIO);
    }
    return osListAppend(scan->streamPackList, found);
}

/** Takes a picture start code into the record. header points to the two bytes behind the code. */
static void scanPicture(MovieScan* scan, const uint8_t* header, uint64_t endSector)
{
    VobuRecord* record = &scan->record;
    record->pictureCount++;
    if ((scan->previousType == PICTURE_I || scan->previousType == PICTURE_P) && scan->references < MAX_REFERENCES) {
        uint64_t* const ends[MAX_REFERENCES] = { &record->firstRefEnd, &record->secondRefEnd, &record->thirdRefEnd };
        *ends[scan->references++] = endSector - record->sector;
    }
    // Temporal reference, 10 bits, then the coding type, 3 bits.
    scan->previousType = header[1] >> 3 & 7;
    if (record->pictureCount == 1) record->temporalRef = uint64_t(header[0]) * 4 + (header[1] >> 6);
}

static bool isPictureStart(const uint8_t* at)
{
    return at[0] == 0 && at[1] == 0 && at[2] == 1 && at[3] == 0;
}

/** Pictures whose start code begins in the last bytes of the video pack before. */
static void scanCarry(MovieScan* scan, const uint8_t* payload, uint64_t length)
{
    uint8_t joint[CARRY_BYTES + PICTURE_HEADER_END] = {};
    const uint64_t taken = length < PICTURE_HEADER_END ? length : PICTURE_HEADER_END;
    memcpy(joint, scan->carry, CARRY_BYTES);
    memcpy(joint + CARRY_BYTES, payload, taken);
    // A payload shorter than the carry leaves the rest of it for the next pack, so that no code is seen twice.
    for (uint64_t i = 0; i < taken; i++) {
        if (isPictureStart(joint + i)) scanPicture(scan, joint + i + START_CODE_BYTES, scan->previousVideoSector);
    }
    memcpy(scan->carry, joint + taken, CARRY_BYTES);
}

static void scanVideoPack(MovieScan* scan, const uint8_t* pack)
{
    if (scan->record.firstPts == 0) scan->record.firstPts = orvReadPts(pack);
    const uint64_t headerData = pack[PACK_PES_HEADER.at];
    const uint8_t* payload = pack + PES_DATA + headerData;
    const uint64_t told = orvGet(pack, PACK_PES_LENGTH);
    if (told <= PES_LENGTH_BASE + headerData) return;
    const uint64_t room = SECTOR_BYTES - PES_DATA - headerData;
    uint64_t length = told - PES_LENGTH_BASE - headerData;
    if (length > room) length = room;

    scanCarry(scan, payload, length);
    if (length >= CARRY_BYTES) {
        // Looks for the third byte of the code, which is rarer in picture data than the zeros before it.
        const uint8_t* const end = payload + (length - CARRY_BYTES);   // no code that begins here or later is taken
        const uint8_t* at = payload;
        while (at < end) {
            const void* one = memchr(at + 2, 0x01, uint64_t(end - at));
            if (!one) break;
            at = static_cast<const uint8_t*>(one) - 2;
            if (isPictureStart(at)) {
                const bool endsBefore = at == payload && scan->previousVideoSector != 0;
                scanPicture(scan, at + START_CODE_BYTES, endsBefore ? scan->previousVideoSector : scan->sector);
            }
            at++;
        }
        memcpy(scan->carry, payload + (length - CARRY_BYTES), CARRY_BYTES);
    }
    scan->previousVideoSector = scan->sector;
}

static uint64_t scanPack(MovieScan* scan, const uint8_t* pack)
{
    if (pack[PACK_PACKET_PREFIX.at] != START_CODE_PREFIX) return 0;
    if (scan->streamPackList && isStreamPack(pack)) {
        if (uint64_t error = scanStreamPack(scan, pack)) return error;
    }
    if (pack[PACK_STREAM_ID.at] == STREAM_VIDEO) scanVideoPack(scan, pack);
    return 0;
}

uint64_t orvGetMovieInfo(const RunHead* run, const TitleSetDesc* titleSet, char16_t* const* sources,
                         uint64_t titleSetNumber, VobuRecord** vobuList, StreamPackRecord** streamPackList,
                         PassProgress progress, uint64_t progressUser, bool noProgress)
{
    uint64_t total = 0;
    if (orvCountFilePacks(run, sources, &total)) {
        orvLogError(ORV_MOVIE_NOT_READ, run->logFilePath, u"Failed to open file in <orvGetMovieInfo>: %s", sources[0]);
        return ORV_MOVIE_NOT_READ;
    }
    MovieScan scan = {};
    scan.titleSet = titleSet;
    scan.chapterLimit = titleSetNumber && titleSet ? titleSet->chapterCount : 0;
    scan.frameTicks = orvFrameTicks(run->videoStandard);
    scan.vobuList = vobuList;
    scan.streamPackList = streamPackList;
    scan.chapter = 1;
    osFillMem(scan.carry, CARRY_BYTES, 0xFF);

    PackSource source = {};
    uint64_t result = orvOpenPackSource(&source, run, sources);
    while (!result) {
        const uint8_t* pack = nullptr;
        result = orvNextPack(&source, &pack);
        if (result || !pack) break;
        if (orvIsNavPack(pack)) {
            if (progress && !noProgress && !progress(run, total, scan.sector, progressUser)) result = ORV_CANCELED;
            if (!result) result = scanNavPack(&scan, pack);
        } else {
            result = scanPack(&scan, pack);
        }
        scan.sector++;
    }
    orvClosePackSource(&source);
    if (result) return result;

    if (scan.sector != 0) {
        // The last unit is taken as it stands, also one in which no picture starts.
        scan.record.lastSector = scan.sector - 1;
        if (uint64_t error = osListAppend(vobuList, scan.record)) return error;
    }
    return osListCount(*vobuList) ? 0 : ORV_NOTHING_SCANNED;
}
