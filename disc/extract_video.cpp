// extract_video.cpp: the chapters of a DVD-Video title with LPCM sound, from the tables of the manager and the first
// title set.

#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "disc/extract_types.h"
#include "video/ifo_layout.h"
#include "video/pgc_layout.h"

#include <cstring>

constexpr uint64_t LARGEST_IFO = 16 * 1024 * 1024;   // far above what the format allows
constexpr uint64_t IDENTIFIER_BYTES = 12;
constexpr uint64_t ATTRIBUTES_AUDIO_AT = 268;   // of the first audio stream, in an entry of the attribute table

// An IFO in memory.
struct Ifo {
    uint8_t* block;   // owned
    uint64_t bytes;
};

/** Whether some bytes lie within it. */
static bool holds(const Ifo* ifo, uint64_t at, uint64_t count)
{
    return at <= ifo->bytes && count <= ifo->bytes - at;
}

static uint64_t readIfo(OSFILE file, uint64_t bytes, Ifo* ifo)
{
    if (bytes > LARGEST_IFO) return ORV_INVALID_ARGUMENT;
    if (uint64_t error = osAllocMem(bytes, &ifo->block)) return error;
    ifo->bytes = bytes;
    return osReadFile(file, ifo->block, bytes);
}

static bool begins(const Ifo* ifo, const char* mark)
{
    return holds(ifo, 0, SECTOR_BYTES) && std::memcmp(ifo->block, mark, IDENTIFIER_BYTES) == 0;
}

// What the tables say of the title, in bytes from the start of their IFOs.
struct TitleTables {
    const uint8_t* audio;   // attribute of the first audio stream
    uint64_t tracks;
    uint64_t cellAddresses, cellPlayback;
};

static uint64_t readVmg(const Ifo* vmg, TitleTables* tables)
{
    constexpr uint8_t CODING = 0xE0, CODING_LPCM = 0x80;
    const uint64_t titles = uint64_t(orvGet(vmg->block, VMG_TT_SRPT_AT)) << SECTOR_SHIFT;
    const uint64_t sets = uint64_t(orvGet(vmg->block, VMG_VTS_ATRT_AT)) << SECTOR_SHIFT;
    if (!holds(vmg, titles, TABLE_HEADER_BYTES + TITLE_BYTES)) return ORV_EXTRACT_NO_VMG;
    if (!holds(vmg, sets, TABLE_HEADER_BYTES + 4)) return ORV_EXTRACT_NO_VMG;
    const uint64_t entry = sets + orvGet32(vmg->block + sets + TABLE_HEADER_BYTES);
    if (!holds(vmg, entry, ATTRIBUTES_AUDIO_AT + 2)) return ORV_EXTRACT_NO_VMG;
    tables->audio = vmg->block + entry + ATTRIBUTES_AUDIO_AT;
    if ((tables->audio[0] & CODING) != CODING_LPCM) return ORV_EXTRACT_NO_LPCM;
    tables->tracks = orvGet(vmg->block + titles + TABLE_HEADER_BYTES, TITLE_CHAPTERS);
    return tables->tracks > MAX_EXTRACT_TRACKS ? ORV_EXTRACT_NO_VMG : 0;
}

static uint64_t readVts(const Ifo* vts, TitleTables* tables)
{
    constexpr uint64_t FIRST_PGC_AT = 12;   // in the PGC table
    const uint64_t chains = uint64_t(orvGet(vts->block, VTS_PGCIT_AT)) << SECTOR_SHIFT;
    tables->cellAddresses = uint64_t(orvGet(vts->block, VTS_C_ADT_AT)) << SECTOR_SHIFT;
    if (!holds(vts, chains, FIRST_PGC_AT + 4)) return ORV_EXTRACT_NO_VTS;
    const uint64_t chain = chains + orvGet32(vts->block + chains + FIRST_PGC_AT);
    if (!holds(vts, chain, PGC_BYTES)) return ORV_EXTRACT_NO_VTS;
    tables->cellPlayback = chain + orvGet(vts->block + chain, PGC_CELL_PLAYBACK);
    const bool whole = holds(vts, tables->cellAddresses, TABLE_HEADER_BYTES + tables->tracks * ADT_BYTES) &&
                       holds(vts, tables->cellPlayback, tables->tracks * CELL_PLAYBACK_BYTES);
    return whole ? 0 : ORV_EXTRACT_NO_VTS;
}

/** What all tracks have in common: the attribute of the title's sound. */
static void readAudio(const uint8_t* audio, ExtractTrack* track)
{
    constexpr uint8_t CHANNELS = 0x07, TWO_CHANNELS = 1, RATE = 0x30;
    track->assign = (audio[1] & CHANNELS) == TWO_CHANNELS ? 1 : 0;
    track->sampleSize1 = (audio[1] >> 6) * 4u + 16;
    track->sampleRate1 = (audio[1] & RATE) == 0 ? 48000 : 0;
}

static uint64_t readTracks(ExtractContext* context, const Ifo* vts, const TitleTables* tables, OrvTrackInfo info,
                           uint64_t user)
{
    context->trackCount = tables->tracks;
    for (uint64_t i = 0; i < tables->tracks; i++) {
        ExtractTrack* track = &context->tracks[i];
        const uint8_t* address = vts->block + tables->cellAddresses + TABLE_HEADER_BYTES + i * ADT_BYTES;
        const uint8_t* playback = vts->block + tables->cellPlayback + i * CELL_PLAYBACK_BYTES;
        DvdTimeCode time = {};
        osCopyMem(time.bytes, playback + CELL_TIME.at, sizeof(time.bytes));
        readAudio(tables->audio, track);
        track->firstSector = orvGet(address, ADT_START);
        track->lastSector = orvGet(address, ADT_LAST);
        track->playTime = uint32_t(orvTimeToSeconds(time) * TICKS_PER_SECOND);
        if (info) info(track, i, user);
        if (context->released) return ORV_CANCELED;
    }
    return 0;
}

static uint64_t readTables(ExtractContext* context, const Ifo* vmg, const Ifo* vts, OrvTrackInfo info, uint64_t user)
{
    if (!begins(vmg, "DVDVIDEO-VMG")) return ORV_EXTRACT_NO_VMG;
    if (!begins(vts, "DVDVIDEO-VTS")) return ORV_EXTRACT_NO_VTS;
    TitleTables tables = {};
    if (uint64_t error = readVmg(vmg, &tables)) return error;
    if (uint64_t error = readVts(vts, &tables)) return error;
    if (uint64_t error = readTracks(context, vts, &tables, info, user)) return error;
    return orvOpenExtractFiles(context, u"%sVTS_01_%.1d.VOB");
}

uint64_t orvReadVideoTables(ExtractContext* context, OSFILE vmgFile, OSFILE vtsFile, OrvTrackInfo info, uint64_t user)
{
    context->sourceKind = SOURCE_VIDEO;
    Ifo vmg = {}, vts = {};
    uint64_t vmgBytes = 0, vtsBytes = 0, result = 0;
    if (osFileSize(vmgFile, &vmgBytes) || readIfo(vmgFile, vmgBytes, &vmg)) result = ORV_EXTRACT_VMG_NOT_READ;
    // Meant: the title set's IFO is read with the manager's size; a smaller one fails, except on an opened disc.
    // Test: ExtractVideo.TitleSetIsReadWithTheManagersSize
    vtsBytes = vmgBytes;
    if (!result && context->opened && osFileSize(vtsFile, &vtsBytes)) result = ORV_EXTRACT_VTS_NOT_READ;
    if (!result && readIfo(vtsFile, vtsBytes, &vts)) result = ORV_EXTRACT_VTS_NOT_READ;
    if (!result) result = readTables(context, &vmg, &vts, info, user);
    (void)osFreeMem(&vmg.block);
    (void)osFreeMem(&vts.block);
    return result;
}
