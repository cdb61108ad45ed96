// video_scan.cpp: MPEG video in chunks that are cut anywhere. A GOP header opens a group; holes in the host's time are
// filled.

#include "base/memory.h"
#include "base/result.h"
#include "mux/ring.h"
#include "mux/start_codes.h"
#include "mux/unit_table.h"
#include "mux/video_units.h"

constexpr uint64_t KEPT_BYTES = 8;   // of the end of a chunk, in which a code may begin that the next one ends
static_assert(2 * KEPT_BYTES == sizeof(MuxStream::lookBack));

// A gap of so many frames is filled; a smaller or a larger one is passed over.
constexpr uint64_t LEAST_GAP = 17, MOST_GAP = 63;

// Bytes to scan, and what is known of them.
struct CodeScan {
    const uint8_t* data;
    uint64_t size;
    uint64_t lead;   // bytes of data that lie in front of the input's end
    uint64_t time;   // of the first picture, NONE for the later ones
    bool timeTaken;
};

/** Puts zero units into the stream where the host's time says that pictures are missing. */
static uint64_t fillGap(MuxStream* stream, MuxUnit* unit, uint64_t temporalReference, uint64_t time)
{
    const uint64_t gap = (time - (stream->gopBase + temporalReference) * stream->unitTicks) / stream->unitTicks;
    const uint64_t missing = gap - stream->gapUnits;
    if (missing < LEAST_GAP || missing > MOST_GAP) return 0;
    static constexpr uint8_t ZEROS[FILLED_UNIT_BYTES] = {};
    stream->gapUnits = gap;
    for (uint64_t i = 0; i < missing; i++) {
        if (uint64_t error = orvRingWrite(stream->ring, ZEROS, FILLED_UNIT_BYTES, nullptr)) return error;
        if (uint64_t error = orvAddUnit(stream, *unit)) return error;
        unit->pts += stream->unitTicks;
        unit->dts += stream->unitTicks;
        stream->bytesIn += FILLED_UNIT_BYTES;
        stream->unitCount++;
    }
    return 0;
}

static uint64_t addPicture(MuxStream* stream, CodeScan* scan, uint64_t at, uint64_t position)
{
    const PictureHead head = orvReadPictureHead(scan->data, scan->size, at);
    const uint64_t time = scan->time;
    scan->time = NONE;
    scan->timeTaken = true;

    MuxUnit unit = {};
    unit.position = stream->groupPending ? stream->groupStart : position;
    stream->groupPending = 0;
    unit.group = uint32_t(stream->groupCount);
    unit.codingType = head.codingType;
    if (head.codingType == CODING_I) stream->intraBase = stream->unitCount + 1;
    unit.pts = (stream->intraBase + head.temporalReference) * stream->unitTicks;
    unit.dts = stream->unitCount * stream->unitTicks;
    unit.groupTime = stream->groupBase * stream->unitTicks;
    if (time != NONE) {
        if (uint64_t error = fillGap(stream, &unit, head.temporalReference, time)) return error;
    }
    stream->picturesSeen++;
    stream->unitCount++;
    return orvAddUnit(stream, unit);
}

static void openGroup(MuxStream* stream, uint64_t position)
{
    stream->groupCount++;
    stream->groupPending = 1;
    if (!stream->seqPending) stream->groupStart = position;
    stream->seqPending = 0;
    if (stream->groupCount == 1) {
        stream->intraBase = stream->groupBase = stream->gopBase = 1;
    } else {
        stream->groupBase = stream->unitCount + 1;
        stream->gopBase = stream->picturesSeen + 1;
    }
}

static uint64_t openSequence(MuxStream* stream, const CodeScan* scan, uint64_t at, uint64_t position)
{
    stream->seqPending = 1;
    stream->groupStart = position;
    return orvReadSequenceHeader(stream, scan->data, scan->size, at);
}

/** Start codes that begin at the first so many offsets. */
static uint64_t scanCodes(MuxStream* stream, CodeScan* scan, uint64_t offsets)
{
    // A code that begins at the last offset ends two bytes behind it; the prefix is looked for up to there.
    const uint64_t limit = offsets + 2;
    for (uint64_t at = orvFindStartCode(scan->data, 0, limit); at < offsets;
         at = orvFindStartCode(scan->data, at + 1, limit)) {
        // Bytes put in for a gap have moved the input's end by now.
        const uint64_t position = stream->bytesIn - scan->lead + at;
        uint64_t result = 0;
        switch (scan->data[at + 3]) {
        case CODE_PICTURE: result = addPicture(stream, scan, at, position); break;
        case CODE_SEQUENCE: result = openSequence(stream, scan, at, position); break;
        case CODE_SEQUENCE_END: orvRingEnd(stream->ring); break;
        case CODE_GOP: openGroup(stream, position); break;
        default: break;
        }
        if (result) return result;
    }
    return 0;
}

static uint64_t parseTimed(MuxStream* stream, const uint8_t* chunk, uint64_t size, uint64_t time)
{
    orvBeginVideo(stream);
    if (size < KEPT_BYTES) return 0;   // stored, and not looked at

    osCopyMem(stream->lookBack + KEPT_BYTES, chunk, KEPT_BYTES);
    CodeScan border = { stream->lookBack, 2 * KEPT_BYTES, KEPT_BYTES, stream->timeUsed ? NONE : stream->lookBackTime,
                        false };
    const uint64_t borderResult = scanCodes(stream, &border, KEPT_BYTES);
    if (border.timeTaken) stream->timeUsed = 1;
    if (borderResult) return borderResult;

    CodeScan inside = { chunk, size, 0, time, false };
    if (uint64_t error = scanCodes(stream, &inside, size - KEPT_BYTES)) return error;

    osCopyMem(stream->lookBack, chunk + size - KEPT_BYTES, KEPT_BYTES);
    stream->lookBackTime = time;
    stream->timeUsed = inside.timeTaken ? 1 : 0;
    return stream->groupCount == 0 ? RESULT_NO_DATA : 0;
}

static uint64_t parse(MuxStream* stream, const uint8_t* chunk, uint64_t size)
{
    return parseTimed(stream, chunk, size, NONE);
}

uint64_t orvSetupVideoScan(MuxStream* stream)
{
    orvSetupVideo(stream);
    // Nothing in front of the first chunk is part of a start code.
    osFillMem(stream->lookBack, KEPT_BYTES, 0xFF);
    stream->parse = parse;
    stream->parseTimed = parseTimed;
    return 0;
}
