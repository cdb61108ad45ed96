// extract_audio.cpp: the tracks of a DVD-Audio disc, from AUDIO_PP.IFO.

#include "audio/audio_ifo_layout.h"
#include "audio/sample_codes.h"
#include "base/memory.h"
#include "base/result.h"
#include "disc/extract_types.h"

#include <cstring>

static uint32_t sampleSizeOf(uint8_t code)
{
    return code * 4u + 16;
}

static uint32_t sampleRateOf(uint8_t code)
{
    constexpr uint32_t RATES[] = { 48000, 96000, 192000, 44100, 88200, 176400 };
    for (const uint32_t rate : RATES) {
        if (orvSampleRateCode(rate) == code) return rate;
    }
    return 0;
}

/** A sector of a record, counted from the first track's start. */
static uint32_t sectorOf(const ExtractContext* context, const uint8_t* at, uint32_t base)
{
    if (context->opened) return orvGet32(at) - base;
    // Meant: the subtraction comes before the exchange of bytes. Test: ExtractAudio.SubtractsBeforeTheSwap
    return orvSwap32(orvGetLittle32(at) - base);
}

static void readTrack(const ExtractContext* context, const uint8_t* record, uint32_t base, ExtractTrack* track)
{
    constexpr uint8_t ASSIGNMENT_BITS = 0x1F;
    const uint8_t sizes = record[SAMG_SIZE_CODES.at], rates = record[SAMG_RATE_CODES.at];
    track->firstSector = sectorOf(context, record + SAMG_FIRST_SECTOR.at, base);
    track->lastSector = sectorOf(context, record + SAMG_LAST_SECTOR.at, base);
    track->playTime = orvGet(record, SAMG_TIME);
    track->assign = record[SAMG_ASSIGNMENT.at] & ASSIGNMENT_BITS;
    track->sampleSize1 = sampleSizeOf(sizes >> 4);
    track->sampleSize2 = sampleSizeOf(sizes & 0x0F);
    track->sampleRate1 = sampleRateOf(rates >> 4);
    track->sampleRate2 = sampleRateOf(rates & 0x0F);
}

static uint64_t readTracks(ExtractContext* context, const uint8_t* table, OrvTrackInfo info, uint64_t user)
{
    constexpr uint8_t PACKED_LOSSLESSLY = 0x10;
    const uint64_t count = orvGet(table, SAMG_TRACKS);
    if (count > MAX_EXTRACT_TRACKS) return ORV_INVALID_SAMG;
    context->trackCount = count;
    const uint32_t base = orvGet(table + SAMG_HEAD_BYTES, SAMG_FIRST_SECTOR);
    for (uint64_t i = 0; i < count; i++) {
        const uint8_t* record = table + SAMG_HEAD_BYTES + i * SAMG_TRACK_BYTES;
        if (record[SAMG_ATTRIBUTES.at] & PACKED_LOSSLESSLY) return ORV_MLP_UNSUPPORTED;
        readTrack(context, record, base, &context->tracks[i]);
        if (info) info(&context->tracks[i], i, user);
        if (context->released) return ORV_CANCELED;
    }
    return 0;
}

uint64_t orvReadAudioTables(ExtractContext* context, OSFILE file, OrvTrackInfo info, uint64_t user)
{
    static_assert(SAMG_HEAD_BYTES + MAX_EXTRACT_TRACKS * SAMG_TRACK_BYTES <= SAMG_BYTES);
    // Meant: the kind is set before anything is read, so that an extraction after a failed read goes on to the channel
    // assignment. Test: ExtractInit.AfterAFailedReadNoAssignmentIsKnown
    context->sourceKind = SOURCE_AUDIO;
    uint8_t table[SAMG_BYTES];
    if (osReadFile(file, table, sizeof(table))) return ORV_SAMG_NOT_READ;
    if (std::memcmp(table, "DVDAUDIOSAPP", IFO_TEXT_BYTES) != 0) return ORV_INVALID_SAMG;
    if (uint64_t error = readTracks(context, table, info, user)) return error;
    return orvOpenExtractFiles(context, u"%sATS_01_%.1d.AOB");
}
