// audio_pp.cpp: AUDIO_PP.IFO, the table for players of sound alone. It has the tracks of the first title set.

#include "audio/audio_ifo.h"
#include "audio/audio_ifo_layout.h"
#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"

static void putTrack(uint8_t* to, const AudioTrackDesc* track, uint64_t index, uint64_t base)
{
    constexpr uint8_t FIRST_TRACK = 0xC8, OTHER_TRACK = 0x08;
    constexpr uint64_t ASSIGNMENT_BITS = 0x1F;
    orvPut(to, SAMG_TRACK_SET, 1);
    orvPut(to, SAMG_TRACK_NUMBER, index + 1);
    orvPut(to, SAMG_FIRST_PTS, track->firstCellPts);
    orvPut(to, SAMG_TIME, track->playTime);
    orvPut(to, SAMG_FLAG, track->trackFlag);
    orvPut(to, SAMG_ATTRIBUTES, index == 0 ? FIRST_TRACK : OTHER_TRACK);
    orvPut(to, SAMG_SIZE_CODES, orvTrackSizeCodes(track));
    orvPut(to, SAMG_RATE_CODES, orvTrackRateCodes(track));
    orvPut(to, SAMG_ASSIGNMENT, track->assign & ASSIGNMENT_BITS);
    orvPut(to, SAMG_FIRST_SECTOR, base + track->blockStart);
    orvPut(to, SAMG_START_SECTOR, base + track->blockStart);
    orvPut(to, SAMG_LAST_SECTOR, base + track->blockStart + track->blockSize - 1);
}

static void fillTable(uint8_t* table, const AudioDiscContext* context)
{
    const AudioTitleSetDesc* titleSet = context->audioTitleSets[0];
    // Meant: AUDIO_TS.VOB does not count: with menus the sectors are short of its size. Test: AudioPp.MenusDoNotCount
    const uint64_t own = SAMG_BYTES * SAMG_COPIES >> SECTOR_SHIFT;
    const uint64_t base = context->amgSectors + own + titleSet->ifoSectors;
    osCopyMem(table + SAMG_IDENTIFIER.at, "DVDAUDIOSAPP", IFO_TEXT_BYTES);
    orvPut(table, SAMG_TRACKS, titleSet->trackCount);
    orvPut(table, SAMG_VERSION, AUDIO_VERSION);
    for (uint64_t i = 0; i < titleSet->trackCount; i++) {
        putTrack(table + SAMG_HEAD_BYTES + i * SAMG_TRACK_BYTES, titleSet->tracks + i, i, base);
    }
}

uint64_t orvWriteAudioPp(const AudioDiscContext* context, const char16_t* path)
{
    static_assert(SAMG_HEAD_BYTES + MAX_AUDIO_TRACKS * SAMG_TRACK_BYTES <= SAMG_BYTES);
    OSFILE file = 0;
    if (osOpenFile(path, OS_CREATE, &file)) return ORV_SAMG_NOT_CREATED;
    uint8_t table[SAMG_BYTES] = {};
    fillTable(table, context);
    uint64_t result = 0;
    for (uint64_t copy = 0; copy < SAMG_COPIES && !result; copy++) {
        if (osWriteFile(file, table, sizeof(table))) result = ORV_SAMG_NOT_WRITTEN;
    }
    if (osCloseFile(&file) && !result) result = ORV_SAMG_NOT_WRITTEN;
    return result;
}
