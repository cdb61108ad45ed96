// ats_ifo.cpp: the tables of an audio title set. One title; each track is one program of it, one cell and one run of
// sectors.

#include "audio/audio_ifo.h"
#include "audio/audio_ifo_layout.h"
#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"

constexpr uint32_t TITLE_CATEGORY = 0x81000000;
constexpr uint64_t ASSIGNMENT_BITS = 0x1F;

// ---- the tracks -----------------------------------------------------------------------------------------------------

// Where the parts of a title's table begin, in bytes from its start.
struct TrackTable {
    uint64_t records, sectors, stills, end;
};

static TrackTable trackTable(uint64_t tracks, bool hasStills)
{
    TrackTable table = {};
    table.records = TRACKS_HEAD_BYTES;
    table.sectors = table.records + tracks * TRACK_BYTES;
    table.end = table.sectors + tracks * SECTORS_BYTES;
    if (hasStills) {
        table.stills = table.end;
        table.end += tracks * (STILL_LIST_BYTES + STILL_BYTES);
    }
    return table;
}

static void putTrack(uint8_t* to, const AudioTrackDesc* track, uint64_t index)
{
    constexpr uint8_t FIRST_OF_TITLE = 0xC0, ONE_CELL = 0x10;
    orvPut(to, TRACK_FLAGS, index == 0 ? FIRST_OF_TITLE : 0);
    orvPut(to, TRACK_CELLS, ONE_CELL);
    orvPut(to, TRACK_NUMBER, index + 1);
    orvPut(to, TRACK_FIRST_PTS, track->firstCellPts);
    orvPut(to, TRACK_TIME, track->playTime);
}

static void putSectors(uint8_t* to, const AudioTrackDesc* track)
{
    orvPut(to, SECTORS_TYPE, 1);
    orvPut(to, SECTORS_FIRST, track->blockStart);
    orvPut(to, SECTORS_LAST, track->blockStart + track->blockSize - 1);
}

/** Each track has a list of one still, that of its own number. */
static void putStills(uint8_t* to, uint64_t tracks)
{
    uint8_t* still = to + tracks * STILL_LIST_BYTES;
    for (uint64_t i = 0; i < tracks; i++, to += STILL_LIST_BYTES, still += STILL_BYTES) {
        const uint64_t at = tracks * STILL_LIST_BYTES + i * STILL_BYTES;
        orvPut(to, STILL_LIST_COUNT, 1);
        orvPut(to, STILL_LIST_FIRST, at);
        orvPut(to, STILL_LIST_LAST, at + STILL_BYTES - 1);
        orvPut(still, STILL_NUMBER, i + 1);
        orvPut(still, STILL_NUMBER_AGAIN, i + 1);
    }
}

uint64_t orvBuildAtsTrackTable(const AudioDiscContext* context, const AudioTitleSetDesc* titleSet, uint8_t** block)
{
    const uint64_t tracks = titleSet->trackCount;
    const TrackTable table = trackTable(tracks, context->hasAsvs != 0);
    if (uint64_t error = osAllocMem(table.end, block)) return error;
    uint8_t* to = *block;
    orvPut(to, TRACKS_PROGRAMS, tracks & 0x7F);
    orvPut(to, TRACKS_CELLS, tracks);
    orvPut(to, TRACKS_TIME, orvTotalPlayTime(titleSet));
    orvPut(to, TRACKS_RECORDS_AT, table.records);
    orvPut(to, TRACKS_SECTORS_AT, table.sectors);
    orvPut(to, TRACKS_STILLS_AT, table.stills);
    for (uint64_t i = 0; i < tracks; i++) {
        putTrack(to + table.records + i * TRACK_BYTES, titleSet->tracks + i, i);
        putSectors(to + table.sectors + i * SECTORS_BYTES, titleSet->tracks + i);
    }
    if (table.stills) putStills(to + table.stills, tracks);
    return 0;
}

// ---- the file -------------------------------------------------------------------------------------------------------

/** The table of titles, in whole sectors. */
static uint64_t buildTitles(const AudioDiscContext* context, const AudioTitleSetDesc* titleSet, uint8_t** block)
{
    uint8_t* tracks = nullptr;
    if (uint64_t error = orvBuildAtsTrackTable(context, titleSet, &tracks)) return error;
    constexpr uint64_t HEAD = TITLES_HEAD_BYTES + TITLES_ENTRY_BYTES;
    const uint64_t lastByte = HEAD - 1 + osMemSize(tracks);
    uint64_t result = osAllocMem(HEAD, block);
    if (!result) {
        orvPut(*block, TITLES_COUNT, 1);
        orvPut(*block, TITLES_LAST_BYTE, lastByte);
        orvPut(*block, TITLE_ENTRY_TYPE, TITLE_CATEGORY);
        orvPut(*block, TITLE_ENTRY_AT, HEAD);
        result = osInsertMem(block, OS_BLOCK_END, tracks, osMemSize(tracks));
    }
    (void)osFreeMem(&tracks);
    // Meant: the last byte is rounded, not the size: a table of one byte more than whole sectors would lose that
    // byte, which no count of tracks makes.
    // Test: AtsIfo.TableOfOneByteMoreThanASector
    const uint64_t bytes = (lastByte + SECTOR_BYTES - 1) & ~(SECTOR_BYTES - 1);
    return result ? result : osResizeMem(block, bytes);
}

static void fillHeader(uint8_t* header, const AudioTitleSetDesc* titleSet, uint64_t sectors, uint64_t tableBytes)
{
    const AudioTrackDesc* first = titleSet->tracks;
    uint64_t packs = 0;
    for (uint64_t i = 0; i < titleSet->trackCount; i++) packs += titleSet->tracks[i].blockSize;
    osCopyMem(header + ATS_IDENTIFIER.at, "DVDAUDIO-ATS", IFO_TEXT_BYTES);
    orvPut(header, ATS_LAST_SECTOR, 2 * sectors - 1 + packs);
    orvPut(header, ATSI_LAST_SECTOR, sectors - 1);
    orvPut(header, ATS_VERSION, AUDIO_VERSION);
    orvPut(header, ATSI_LAST_BYTE, SECTOR_BYTES - 1);
    orvPut(header, ATS_AOBS, sectors);
    orvPut(header, ATS_PGCIT_AT, tableBytes ? 1 : 0);
    orvPut(header, ATS_SIZE_CODES, orvTrackSizeCodes(first));
    orvPut(header, ATS_RATE_CODES, orvTrackRateCodes(first));
    orvPut(header, ATS_ASSIGNMENT, first->assign & ASSIGNMENT_BITS);
}

static uint64_t buildIfo(const AudioDiscContext* context, AudioTitleSetDesc* titleSet, uint8_t** ifo)
{
    uint8_t* titles = nullptr;
    uint64_t result = buildTitles(context, titleSet, &titles);
    if (!result) result = osAllocMem(SECTOR_BYTES, ifo);
    if (!result) result = osInsertMem(ifo, OS_BLOCK_END, titles, osMemSize(titles));
    if (!result) {
        titleSet->ifoSectors = osMemSize(*ifo) >> SECTOR_SHIFT;
        fillHeader(*ifo, titleSet, titleSet->ifoSectors, osMemSize(titles));
    }
    (void)osFreeMem(&titles);
    return result;
}

uint64_t orvWriteAtsIfo(const AudioDiscContext* context, uint64_t atsNumber, const char16_t* path)
{
    OSFILE file = 0;
    if (osOpenFile(path, OS_CREATE, &file)) return ORV_ATS_IFO_NOT_CREATED;
    uint8_t* ifo = nullptr;
    uint64_t result = buildIfo(context, context->audioTitleSets[atsNumber - 1], &ifo);
    if (!result && osWriteFile(file, ifo, osMemSize(ifo))) result = ORV_ATS_IFO_NOT_WRITTEN;
    if (osCloseFile(&file) && !result) result = ORV_ATS_IFO_NOT_WRITTEN;
    (void)osFreeMem(&ifo);
    return result;
}
