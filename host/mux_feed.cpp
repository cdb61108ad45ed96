// mux_feed.cpp: elementary stream files on their way into the multiplexer, in step.
#include "mux_feed.h"

#include "codes.h"
#include "named_file.h"
#include "platform.h"

#include <algorithm>
#include <cstring>

static constexpr uint64_t PIECE_BYTES = 32768;   // of video and LPCM
static constexpr uint64_t FRAMES_BYTES = 8192;   // about, of whole AC-3 frames
static constexpr uint64_t HEADER_ROOM = 8;       // the least chunk of video whose headers are seen
static constexpr uint64_t FRAME_HEAD_BYTES = 6;
// The first chunk of video holds the start of the first group and the pictures whose size sets the delays.
static constexpr uint64_t FIRST_PICTURES = 4, MOST_FIRST_BYTES = 1 << 20;
// Bytes that the multiplexer wants to have ahead of a stream's packs. Video gets twice its part, since a picture can be
// as large.
static constexpr uint64_t AHEAD_VIDEO = 262144, AHEAD_LPCM = 131072, AHEAD_FRAMES = 16384;

static FileFault unreadable()
{
    return { CODE_READ_FAILED, "the file can't be read" };
}

FileFault openSource(MuxSource* source)
{
    source->in.open(source->path, std::ios::binary);
    if (!source->in) return unreadable();
    if (FileFault fault = recogniseStream(source->in, fileBytes(source->path), &source->format)) return fault;
    source->in.clear();
    source->in.seekg(std::streamoff(source->format.from));
    return {};
}

uint64_t addSource(MuxContext* handle, MuxSource* source)
{
    switch (source->format.kind) {
    case STREAM_VIDEO: return AddStream(handle, 0, ORV_MUX_VIDEO, &source->stream);
    case STREAM_AC3: return AddStream(handle, 0, ORV_MUX_AC3, &source->stream);
    // Only a stream that the multiplexer reads by itself can end before the others do.
    case STREAM_LAYER2: return platformAddFileStream(handle, source->path, ORV_MUX_MPEG_AUDIO, &source->stream);
    default: break;
    }
    if (uint64_t error = AddStream(handle, 0, ORV_MUX_LPCM, &source->stream)) return error;
    const std::array<uint8_t, WAVE_FORMAT_BYTES>& wave = source->format.wave;
    return MuxData(handle, source->stream, wave.data(), wave.size(), nullptr, ORV_MUX_WAVEFORMAT);
}

// ---- whose turn it is ---------------------------------------------------------------------------------------------

static uint64_t aheadOf(StreamKind kind)
{
    return kind == STREAM_VIDEO ? AHEAD_VIDEO : kind == STREAM_LPCM ? AHEAD_LPCM : AHEAD_FRAMES;
}

/** Up to which time a stream can be packed if all others can, in ticks; -1 before it can begin. What the multiplexer
    wants to have ahead does not count: where a second has few bytes, that may be many seconds. */
static int64_t packableTicks(const MuxSource& source)
{
    const uint64_t ahead = aheadOf(source.format.kind);
    if (source.delivered < ahead) return -1;
    const uint64_t bytes = source.delivered - ahead;
    const uint64_t units = source.format.kind == STREAM_VIDEO ? source.picturesBefore[bytes / PIECE_BYTES]
                                                              : bytes / source.format.unitBytes;
    return int64_t(units * source.format.unitTicks);
}

double deliveredSeconds(const MuxSource& source)
{
    const bool video = source.format.kind == STREAM_VIDEO;
    const uint64_t units = video ? source.watch.pictures : source.delivered / source.format.unitBytes;
    return double(units * source.format.unitTicks) / double(TICKS_A_SECOND);
}

MuxSource* nextSource(std::vector<MuxSource>* sources)
{
    MuxSource* next = nullptr;
    for (MuxSource& source : *sources) {
        if (source.ended || source.full) continue;
        if (!next || packableTicks(source) < packableTicks(*next)) next = &source;
    }
    return next;
}

// ---- chunks -------------------------------------------------------------------------------------------------------

static bool readBytes(MuxSource* source, uint64_t count, std::vector<uint8_t>* bytes)
{
    const uint64_t before = bytes->size();
    bytes->resize(before + count);
    return bool(source->in.read(reinterpret_cast<char*>(bytes->data() + before), std::streamsize(count)));
}

static uint64_t leftOf(const MuxSource& source)
{
    return source.format.bytes - source.delivered;
}

static FileFault resultOf(uint64_t code)
{
    return code ? FileFault{ code, "the multiplexer goes no further" } : FileFault{};
}

static FileFault giveChunk(MuxContext* handle, MuxSource* source, const std::vector<uint8_t>& chunk)
{
    source->delivered += chunk.size();
    return resultOf(MuxData(handle, source->stream, chunk.data(), chunk.size(), nullptr, 0));
}

/** One piece of video, counted. The last one takes what would be too short for a chunk of its own. */
static FileFault readPiece(MuxSource* source, std::vector<uint8_t>* chunk)
{
    const uint64_t left = leftOf(*source) - chunk->size();
    const uint64_t count = left < PIECE_BYTES + HEADER_ROOM ? left : PIECE_BYTES, at = chunk->size();
    if (!readBytes(source, count, chunk)) return unreadable();
    source->picturesBefore.push_back(source->watch.pictures);
    watchVideo(&source->watch, chunk->data() + at, count);
    return source->watch.fault;
}

static FileFault deliverVideo(MuxContext* handle, MuxSource* source)
{
    std::vector<uint8_t> chunk;
    if (FileFault fault = readPiece(source, &chunk)) return fault;
    const bool first = source->delivered == 0;
    while (first && source->watch.pictures < FIRST_PICTURES && chunk.size() < leftOf(*source) &&
           chunk.size() < MOST_FIRST_BYTES) {
        if (FileFault fault = readPiece(source, &chunk)) return fault;
    }
    if (source->watch.pictures == 0) return { 0, "no picture begins in its first " + bytesText(chunk.size()) };
    return giveChunk(handle, source, chunk);
}

/** Ends the stream of video. A sequence end code does so, but only with eight bytes behind it; these are a sequence
    header of no standard, for which the multiplexer passes the chunk over: nothing of it comes into the stream. */
static uint64_t endVideo(MuxContext* handle, MuxSource* source)
{
    static const uint8_t end[] = { 0, 0, 1, 0xB7, 0, 0, 1, 0xB3, 0, 0, 0, 0, 0, 0, 0, 0 };
    return MuxData(handle, source->stream, end, sizeof end, nullptr, 0);
}

/** Fills the last pack of LPCM with silence: in a pack with room left, the multiplexer exchanges the bytes of the wrong
    pairs. */
static uint64_t fillPack(MuxContext* handle, MuxSource* source)
{
    constexpr uint64_t PACK_SAMPLES_BYTES = 2008;   // of 16 bits, one or two channels
    const std::vector<uint8_t> silence((PACK_SAMPLES_BYTES - source->delivered % PACK_SAMPLES_BYTES) %
                                       PACK_SAMPLES_BYTES);
    if (silence.empty()) return 0;
    return MuxData(handle, source->stream, silence.data(), silence.size(), nullptr, 0);
}

static uint64_t endSound(MuxContext* handle, MuxSource* source)
{
    if (source->format.kind == STREAM_LPCM) {
        if (uint64_t error = fillPack(handle, source)) return error;
    }
    static const uint8_t end[] = { 'E', 'N', 'D', ' ' };
    return MuxData(handle, source->stream, end, sizeof end, nullptr, 0);
}

/** Whether frames are as the first one is; they begin at multiples of its size. */
static FileFault checkFrames(const MuxSource& source, uint64_t at, const std::vector<uint8_t>& bytes)
{
    const uint64_t unit = source.format.unitBytes;
    for (uint64_t i = (unit - at % unit) % unit; i + FRAME_HEAD_BYTES <= bytes.size(); i += unit) {
        if (isFrameOf(source.format, bytes.data() + i)) continue;
        return { 0, "at byte " + std::to_string(at + i) + " a frame of " + bytesText(unit) +
                        " should begin as those in front of it do: the stream is damaged, or its bit rate changes" };
    }
    return {};
}

static FileFault deliverAc3(MuxContext* handle, MuxSource* source)
{
    const uint64_t unit = source->format.unitBytes, most = std::max<uint64_t>(1, FRAMES_BYTES / unit) * unit;
    std::vector<uint8_t> chunk;
    const uint64_t whole = leftOf(*source) / unit * unit;
    if (!readBytes(source, std::min(most, whole), &chunk)) return unreadable();
    if (FileFault fault = checkFrames(*source, source->delivered, chunk)) return fault;
    for (uint64_t i = 0; source->format.exchanged && i + 1 < chunk.size(); i += 2) std::swap(chunk[i], chunk[i + 1]);
    return giveChunk(handle, source, chunk);
}

static FileFault deliverLpcm(MuxContext* handle, MuxSource* source)
{
    constexpr uint64_t MARK_BYTES = 4, PART_OF_A_MARK = 2;
    std::vector<uint8_t> chunk;
    if (!readBytes(source, std::min(PIECE_BYTES, leftOf(*source)), &chunk)) return unreadable();
    // Samples that look like one of the multiplexer's marks are cut within it.
    const bool mark = chunk.size() >= MARK_BYTES && (std::memcmp(chunk.data(), "RIFF", MARK_BYTES) == 0 ||
                                                     std::memcmp(chunk.data(), "END ", MARK_BYTES) == 0);
    if (mark) {
        const std::vector<uint8_t> start(chunk.begin(), chunk.begin() + PART_OF_A_MARK);
        if (FileFault fault = giveChunk(handle, source, start)) return fault;
        chunk.erase(chunk.begin(), chunk.begin() + PART_OF_A_MARK);
    }
    return giveChunk(handle, source, chunk);
}

/** The multiplexer reads as much as it has room for. */
static FileFault deliverFile(MuxContext* handle, MuxSource* source)
{
    const uint8_t none = 0;
    uint64_t used = 0;
    if (uint64_t error = MuxData(handle, source->stream, &none, 0, &used, 0)) return resultOf(error);
    const uint64_t at = source->delivered;
    source->delivered = std::min(at + used, source->format.bytes);
    source->full = used == 0 && leftOf(*source) > 0;
    source->ended = used == 0 && leftOf(*source) == 0;
    std::vector<uint8_t> bytes;
    if (!readBytes(source, source->delivered - at, &bytes)) return unreadable();
    return checkFrames(*source, at, bytes);
}

/** Bytes that are delivered of a source in the end. */
static bool isDelivered(const MuxSource& source)
{
    return source.format.kind == STREAM_AC3 ? leftOf(source) < source.format.unitBytes : leftOf(source) == 0;
}

static FileFault deliverChunk(MuxContext* handle, MuxSource* source)
{
    const StreamKind kind = source->format.kind;
    if (kind == STREAM_LAYER2) return deliverFile(handle, source);
    if (!isDelivered(*source)) {
        return kind == STREAM_VIDEO  ? deliverVideo(handle, source)
               : kind == STREAM_LPCM ? deliverLpcm(handle, source)
                                     : deliverAc3(handle, source);
    }
    source->ended = true;
    source->leftOver = kind == STREAM_AC3 ? leftOf(*source) : 0;
    return resultOf(kind == STREAM_VIDEO ? endVideo(handle, source) : endSound(handle, source));
}

FileFault deliverNext(MuxContext* handle, std::vector<MuxSource>* sources, MuxSource* source)
{
    if (FileFault fault = deliverChunk(handle, source)) return fault;
    if (source->full) return {};
    for (MuxSource& other : *sources) other.full = false;
    if (!source->ended) return {};
    // A stream that has ended no longer holds up the others: an empty chunk lets them go on.
    const uint8_t none = 0;
    return resultOf(MuxData(handle, sources->front().stream, &none, 0, nullptr, 0));
}
