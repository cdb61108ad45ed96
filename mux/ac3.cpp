// ac3.cpp: AC-3 whose frames come in order, and AC-3 in chunks of any kind with a table of its frames.

#include "base/memory.h"
#include "base/result.h"
#include "mux/audio_units.h"
#include "mux/ring.h"
#include "mux/start_codes.h"
#include "mux/unit_table.h"

#include <cstring>

constexpr uint64_t FRAME_TICKS = 2880;   // 1536 samples of 48 kHz
constexpr uint64_t SYNC_SIZE_CODE = 4;   // offset of the frame size code
constexpr uint8_t SYNC_FIRST = 0x0B, SYNC_SECOND = 0x77;

static MuxPlan planPack(const MuxStream* stream)
{
    constexpr AudioRoom ROOM = { 2013, 2016, 0, 0 };
    return orvPlanAudio(stream, &ROOM);
}

// ---- frames in order ----------------------------------------------------------------------------------------------

static uint64_t readFirst(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    if (orvByteAt(chunk, size, 0) != SYNC_FIRST || orvByteAt(chunk, size, 1) != SYNC_SECOND) {
        return ORV_NO_AC3_SYNC | RESULT_WARNING_BIT;
    }
    if (!orvReadAc3Size(stream, orvByteAt(chunk, size, SYNC_SIZE_CODE))) return ORV_AUDIO_RATE_NOT_DVD;
    stream->unitTicks = FRAME_TICKS;
    stream->headerSeen = 1;
    return 0;
}

static uint64_t parse(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    if (!stream->headerSeen) {
        if (uint64_t error = readFirst(stream, chunk, size)) return error;
    }
    if (!orvIsEndMark(chunk, size)) return 0;
    orvRingEnd(stream->ring);
    return RESULT_END;
}

uint64_t orvSetupAc3(MuxStream* stream)
{
    if (uint64_t error = orvCheckPrivateId(stream)) return error;
    orvSetupAudio(stream, FRAME_TICKS);
    stream->planPack = planPack;
    stream->parse = parse;
    return osAllocMem(MUX_READ_BYTES, &stream->readScratch);
}

// ---- frames of a table --------------------------------------------------------------------------------------------

constexpr uint64_t KEPT_BYTES = 5;   // of the end of a chunk, in which a sync may begin
constexpr uint64_t LEAST_CHUNK = 6;

static uint64_t tableBytesAt(const MuxStream* stream, uint64_t unit)
{
    if (unit + 1 >= stream->unitCount) return 0;
    return orvUnitRecord(stream, unit + 1).position - orvUnitRecord(stream, unit).position;
}

static uint64_t tableUnitAt(const MuxStream* stream, MuxUnitPlace* place)
{
    const uint64_t found = orvCurrentUnit(stream);
    const uint64_t unit = found == NONE ? 0 : found;
    const MuxUnit record = orvUnitRecord(stream, unit);
    *place = { record.position, record.codingType, record.group, unit };
    return 0;
}

/** Enters the frames between the last of the table and a sync, from the sync backwards. */
static uint64_t enterMissing(MuxStream* stream, uint64_t position)
{
    const uint64_t last = stream->unitTable[orvUnitRecords(stream) - 1].position;
    MuxUnit unit = {};
    unit.position = position;
    while (unit.position - last > stream->unitBytes) {
        // Meant: the later ones come first. Test: Ac3Table.MissingFramesAreEnteredBackwards
        unit.position -= stream->unitBytes;
        if (uint64_t error = orvAddUnit(stream, unit)) return error;
        stream->unitCount++;
        stream->picturesSeen++;
    }
    return 0;
}

/** Puts zero frames into the stream where the host's time says that some are missing. */
static uint64_t fillGap(MuxStream* stream, MuxUnit* unit, uint64_t time)
{
    const int64_t ticks = int64_t(time - stream->picturesSeen * stream->unitTicks);
    const int64_t gap = ticks / int64_t(stream->unitTicks);
    if (gap <= 0) return 0;
    const int64_t missing = gap - int64_t(stream->gapUnits);
    stream->gapUnits = uint64_t(gap);
    if (stream->unitBytes == 0 || missing <= 0) return 0;
    static constexpr uint8_t ZEROS[2560] = {};   // the largest frame: 640 kbit/s
    for (int64_t i = 0; i < missing; i++) {
        if (uint64_t error = orvRingWrite(stream->ring, ZEROS, stream->unitBytes, nullptr)) return error;
        if (uint64_t error = orvAddUnit(stream, *unit)) return error;
        stream->bytesIn += stream->unitBytes;
        stream->unitCount++;
        unit->position += stream->unitBytes;
        unit->pts += stream->unitTicks;
        unit->dts += stream->unitTicks;
    }
    return 0;
}

/** A sync word at an input position. swapped says in which order its bytes came. */
static uint64_t addFrame(MuxStream* stream, bool swapped, uint8_t sizeCode, uint64_t position, uint64_t time)
{
    if (stream->byteSwapped == SWAP_UNKNOWN) stream->byteSwapped = swapped ? 1 : 0;
    if ((stream->byteSwapped != 0) != swapped) return 0;
    const uint64_t count = orvUnitRecords(stream);
    if (count > 0) {
        const uint64_t expected = stream->unitTable[count - 1].position + stream->unitBytes;
        // Within a frame; or in front of the stream, where chunks were refused.
        if (int64_t(position) < int64_t(expected)) return 0;
        if (position > expected && stream->unitBytes > 0) {
            if (uint64_t error = enterMissing(stream, position)) return error;
        }
    }
    // Meant: the byte behind the sync and the checksum in either byte order. Test: Ac3Table.SizeCodeInEitherOrder
    if (!orvReadAc3Size(stream, sizeCode)) return ORV_AUDIO_RATE_NOT_DVD | RESULT_WARNING_BIT;
    MuxUnit unit = {};
    unit.position = position;
    if (time != NONE) {
        if (uint64_t error = fillGap(stream, &unit, time)) return error;
    }
    stream->unitCount++;
    stream->picturesSeen++;
    return orvAddUnit(stream, unit);
}

// Bytes to scan, and what is known of them.
struct SyncScan {
    const uint8_t* data;
    uint64_t lead;   // bytes of data that lie in front of the input's end
    uint64_t time;   // of the first sync, NONE for the later ones
    bool timeTaken;
};

static uint64_t takeSync(MuxStream* stream, SyncScan* scan, uint64_t at)
{
    const uint64_t time = scan->time;
    scan->time = NONE;
    scan->timeTaken = true;
    // Bytes put in for a gap have moved the input's end by now.
    const uint64_t position = stream->bytesIn - scan->lead + at;
    return addFrame(stream, scan->data[at] != SYNC_FIRST, scan->data[at + SYNC_SIZE_CODE], position, time);
}

/** Sync words of either order that begin at the first so many offsets. */
static uint64_t scanSyncs(MuxStream* stream, SyncScan* scan, uint64_t offsets)
{
    const uint8_t* data = scan->data;
    // Both orders have the rare byte 77; it is the first or the second of a word.
    for (uint64_t at = 0; at <= offsets; at++) {
        const void* found = std::memchr(data + at, SYNC_SECOND, offsets + 1 - at);
        if (!found) return 0;
        at = uint64_t(static_cast<const uint8_t*>(found) - data);
        if (at > 0 && data[at - 1] == SYNC_FIRST) {
            if (uint64_t error = takeSync(stream, scan, at - 1)) return error;
        }
        if (at < offsets && data[at + 1] == SYNC_FIRST) {
            if (uint64_t error = takeSync(stream, scan, at)) return error;
        }
    }
    return 0;
}

static uint64_t parseTable(MuxStream* stream, const uint8_t* chunk, uint64_t size, uint64_t time)
{
    if (orvIsEndMark(chunk, size)) {
        orvRingEnd(stream->ring);
        return RESULT_END;
    }
    if (!stream->headerSeen) {
        stream->headerSeen = 1;
        stream->unitTicks = FRAME_TICKS;
        stream->byteSwapped = SWAP_UNKNOWN;
    }
    if (size < LEAST_CHUNK) return 0;

    osCopyMem(stream->lookBack + KEPT_BYTES, chunk, KEPT_BYTES);
    SyncScan border = { stream->lookBack, KEPT_BYTES, stream->timeUsed ? NONE : stream->lookBackTime, false };
    const uint64_t borderResult = scanSyncs(stream, &border, KEPT_BYTES);
    if (border.timeTaken) stream->timeUsed = 1;
    if (borderResult) return borderResult;

    SyncScan inside = { chunk, 0, time, false };
    if (uint64_t error = scanSyncs(stream, &inside, size - KEPT_BYTES)) return error;

    osCopyMem(stream->lookBack, chunk + size - KEPT_BYTES, KEPT_BYTES);
    stream->lookBackTime = time;
    stream->timeUsed = inside.timeTaken ? 1 : 0;
    return 0;
}

static uint64_t parseTableUntimed(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    return parseTable(stream, chunk, size, NONE);
}

uint64_t orvSetupAc3Table(MuxStream* stream)
{
    if (uint64_t error = orvCheckPrivateId(stream)) return error;
    orvSetupAudio(stream, FRAME_TICKS);
    stream->planPack = planPack;
    stream->unitBytesAt = tableBytesAt;
    stream->unitAt = tableUnitAt;
    stream->parse = parseTableUntimed;
    stream->parseTimed = parseTable;
    return osAllocMem(0, &stream->unitTable);
}
