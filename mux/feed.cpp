// feed.cpp: the feeding calls: a stream's parser sees the chunk, the ring takes it, the scheduler runs.

#include "base/memory.h"
#include "base/result.h"
#include "mux/mux_types.h"
#include "mux/ring.h"
#include "mux/scheduler.h"
#include "mux/start_codes.h"

#include <utility>

constexpr uint64_t END_MARK_BYTES = 4;

struct Chunk {
    const uint8_t* data;
    uint64_t size;
};

/** Stores a chunk that the parser has accepted, and multiplexes. */
static uint64_t store(MuxContext* handle, MuxStream* stream, Chunk chunk)
{
    if (uint64_t error = orvRingWrite(stream->ring, chunk.data, chunk.size, nullptr)) return error;
    stream->bytesIn += chunk.size;
    return orvMuxRun(handle);
}

/** What a chunk that is not stored comes back with: warnings and headers are no failures. */
static uint64_t resultOfDropped(uint64_t result)
{
    return result == RESULT_NO_DATA || (result & RESULT_WARNING_BIT) != 0 ? 0 : result;
}

// ---- file sources -------------------------------------------------------------------------------------------------

static void exchangePairs(uint8_t* data, uint64_t size)
{
    for (uint64_t i = 0; i + 1 < size; i += 2) std::swap(data[i], data[i + 1]);
}

/** Reads the next chunk of a stream's file; an empty one if the ring is full enough, or at the end, which ends the
 * ring.
 */
static uint64_t readChunk(MuxStream* stream, Chunk* chunk)
{
    *chunk = {};
    if (!stream->readScratch) return ORV_UNKNOWN_STREAM;   // a kind that is not fed from files
    const int64_t room = int64_t(2 * stream->ring->watermark) - int64_t(stream->ring->fill);
    uint64_t count = room < 0 ? 0 : uint64_t(room) < MUX_READ_BYTES ? uint64_t(room) : MUX_READ_BYTES;
    if (stream->byteSwapped && count % 2 != 0) count--;
    if (count == 0) return 0;
    if (uint64_t error = osSeekFile(stream->file, int64_t(stream->filePosition), OS_FROM_START)) return error;
    uint64_t got = 0;
    if (uint64_t error = osReadFileSome(stream->file, stream->readScratch, count, &got)) return error;
    if (got == 0) orvRingEnd(stream->ring);
    if (stream->byteSwapped) exchangePairs(stream->readScratch, got);
    stream->filePosition += got;
    *chunk = { stream->readScratch, got };
    return 0;
}

// ---- LPCM without a RIFF file -------------------------------------------------------------------------------------

constexpr uint64_t RIFF_WAVE = 8, RIFF_FORMAT = 12, RIFF_FORMAT_DATA = 20;   // offsets within a RIFF header
constexpr uint64_t WAVEFORMAT_BYTES = 18;
constexpr uint64_t RIFF_HEAD_BYTES = RIFF_FORMAT_DATA + WAVEFORMAT_BYTES;

/** A RIFF header with the host's format in it, in a block of size bytes: at least as many as the header has, at most as
 * many as a ring takes.
 */
static uint64_t wrapFormat(const uint8_t* format, uint64_t size, uint8_t** header)
{
    constexpr uint8_t RIFF[] = { 'R', 'I', 'F', 'F' }, WAVE[] = { 'W', 'A', 'V', 'E' },
                      FORMAT[] = { 'f', 'm', 't', ' ' };
    const uint64_t most = size < RING_BYTES ? size : RING_BYTES;
    const uint64_t bytes = most > RIFF_HEAD_BYTES ? most : RIFF_HEAD_BYTES;
    if (uint64_t error = osAllocMem(bytes, header)) return error;
    osCopyMem(*header, RIFF, sizeof RIFF);
    osCopyMem(*header + RIFF_WAVE, WAVE, sizeof WAVE);
    osCopyMem(*header + RIFF_FORMAT, FORMAT, sizeof FORMAT);
    osCopyMem(*header + RIFF_FORMAT_DATA, format, size < WAVEFORMAT_BYTES ? size : WAVEFORMAT_BYTES);
    return 0;
}

// ---- the calls ----------------------------------------------------------------------------------------------------

static uint64_t parseAndStore(MuxContext* handle, MuxStream* stream, Chunk chunk, uint64_t parseSize)
{
    if (!stream->parse) return ORV_UNKNOWN_STREAM;   // sub-pictures are not fed
    const uint64_t result = stream->parse(stream, chunk.data, parseSize);
    if (result == RESULT_END) {
        chunk.size -= chunk.size < END_MARK_BYTES ? chunk.size : END_MARK_BYTES;
    } else if (result) {
        return resultOfDropped(result);
    }
    return store(handle, stream, chunk);
}

static uint64_t feedFormat(MuxContext* handle, MuxStream* stream, Chunk format)
{
    uint8_t* header = nullptr;
    if (uint64_t error = wrapFormat(format.data, format.size, &header)) return error;
    // The parser of LPCM sees the whole header, however small a format the host has.
    const uint64_t blockSize = osMemSize(header);
    const uint64_t parseSize = stream->kind == KIND_LPCM || format.size > blockSize ? blockSize : format.size;
    const uint64_t result = parseAndStore(handle, stream, { header, format.size }, parseSize);
    (void)osFreeMem(&header);
    return result;
}

extern "C" uint64_t MuxData(MuxContext* handle, MuxStream* stream, const uint8_t* data, uint64_t size, uint64_t* used,
                            uint64_t flags)
{
    if (!handle || !stream || !data) return ORV_INVALID_ARGUMENT;
    if (flags & ORV_MUX_SEQUENCE) return MuxVideoSeq(handle, stream, data, size, used);
    Chunk chunk = { data, size };
    if (stream->sourceMode == SOURCE_FILE) {
        if (uint64_t error = readChunk(stream, &chunk)) return error;
        if (chunk.size == 0) return 0;
    }
    if (used) *used = chunk.size;
    if (flags & ORV_MUX_WAVEFORMAT) return feedFormat(handle, stream, chunk);
    return parseAndStore(handle, stream, chunk, chunk.size);
}

extern "C" uint64_t MuxDataEx(MuxContext* handle, MuxStream* stream, const uint8_t* data, uint64_t size, uint64_t flags,
                              uint64_t time)
{
    if (!handle || !stream || !data) return ORV_INVALID_ARGUMENT;
    if (!stream->parseTimed) return MuxData(handle, stream, data, size, nullptr, flags);
    // Meant: the end of a stream is reported here, and its chunk is not stored. Test: Feed.EndMarkWithATime
    if (uint64_t result = stream->parseTimed(stream, data, size, time)) return resultOfDropped(result);
    return store(handle, stream, { data, size });
}

// ---- whole sequences ----------------------------------------------------------------------------------------------

/** Offset of a start code behind another place, or size. */
static uint64_t findCode(const uint8_t* data, uint64_t size, uint64_t from, uint8_t code)
{
    if (size < 4) return size;
    const uint64_t limit = size - 1;   // the prefix ends in front of the last byte
    uint64_t at = orvFindStartCode(data, from, limit);
    while (at < limit && data[at + 3] != code) at = orvFindStartCode(data, at + 1, limit);
    return at < limit ? at : size;
}

static uint64_t feedPart(MuxContext* handle, MuxStream* stream, Chunk part)
{
    if (uint64_t result = stream->parse(stream, part.data, part.size)) return result;
    return store(handle, stream, part);
}

extern "C" uint64_t MuxVideoSeq(MuxContext* handle, MuxStream* stream, const uint8_t* data, uint64_t size,
                                uint64_t* used)
{
    if (used) *used = size;
    if (!handle || !stream || !data) return ORV_INVALID_ARGUMENT;
    if (!stream->parse || size < 4 || orvWordAt(data, size, 0) != orvStartCode(CODE_SEQUENCE))
        return ORV_UNKNOWN_STREAM;
    const uint64_t picture = findCode(data, size, 1, CODE_PICTURE);
    if (picture == size) return ORV_UNKNOWN_STREAM;
    const uint64_t end = findCode(data, size, picture + 1, CODE_SEQUENCE_END);
    if (end == size || end + 4 != size) return ORV_UNKNOWN_STREAM;
    const Chunk parts[] = { { data, picture }, { data + picture, end - picture }, { data + end, size - end } };
    for (const Chunk& part : parts) {
        if (uint64_t error = feedPart(handle, stream, part)) return error;
    }
    return 0;
}
