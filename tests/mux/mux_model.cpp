// The model of the multiplexer: registering, parsing and feeding.
#include "tests/mux/mux_model.h"

#include "base/result.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr uint64_t HEADER_ALONE = 0x84000C1A, END_SEEN = 0x84000C1B;
constexpr uint64_t WARNING = 0x00100000;
constexpr uint64_t MOST_HELD = 0x200000;

uint8_t byteOf(const Bytes& bytes, uint64_t at)
{
    return at < bytes.size() ? bytes[at] : 0;
}

bool beginsWith(const Bytes& bytes, std::string_view text, uint64_t at = 0)
{
    for (uint64_t i = 0; i < text.size(); ++i)
        if (byteOf(bytes, at + i) != uint8_t(text[i])) return false;
    return true;
}

/** Start code at this place: 00 00 01 and the byte behind, or -1. */
int startCode(const Bytes& bytes, uint64_t at)
{
    if (at + 4 > bytes.size() || bytes[at] != 0 || bytes[at + 1] != 0 || bytes[at + 2] != 1) return -1;
    return bytes[at + 3];
}

bool readRate(ModelStream& stream, uint8_t code)
{
    if (code != 3 && code != 4) return false;
    stream.unitTicks = code == 3 ? 3600 : 3003;
    return true;
}

uint64_t ac3Bytes(uint8_t code)
{
    static const uint64_t kbits[] = { 32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                      192, 224, 256, 320, 384, 448, 512, 576, 640 };
    return code / 2 < 19 ? kbits[code / 2] * 4 : 0;
}

// ---- video ------------------------------------------------------------------------------------------------------

uint64_t parseUnits(ModelStream& stream, const Bytes& chunk)
{
    stream.begun = true;
    const int code = startCode(chunk, 0);
    if (code == 0x00) {
        const uint64_t ref = uint64_t(byteOf(chunk, 4)) << 2 | byteOf(chunk, 5) >> 6;
        ModelUnit unit;
        unit.group = stream.groups;
        unit.position = stream.groupPending ? stream.groupStart : stream.bytesIn;
        stream.groupPending = false;
        unit.type = byteOf(chunk, 5) >> 3 & 7;
        unit.pts = (ref + stream.groupBase) * stream.unitTicks;
        unit.dts = stream.units.size() * stream.unitTicks;
        unit.groupTime = stream.groupBase * stream.unitTicks;
        stream.units.push_back(unit);
    } else if (code == 0xB3) {
        stream.groupStart = stream.bytesIn;
        stream.groups++;
        stream.groupPending = true;
        if (!readRate(stream, byteOf(chunk, 7) & 15)) return ORV_VIDEO_NOT_PAL_OR_NTSC | WARNING;
        stream.groupBase = stream.groups == 1 ? 1 : stream.units.size() + 1;
    } else if (code == 0xB7) {
        stream.ended = true;
    }
    return 0;
}

uint64_t scanPicture(ModelStream& stream, const uint8_t* code, uint64_t position, uint64_t time)
{
    const uint64_t ticks = stream.unitTicks;
    ModelUnit unit;
    unit.position = stream.groupPending ? stream.groupStart : position;
    stream.groupPending = false;
    unit.group = stream.groups;
    unit.type = code[5] >> 3 & 7;
    if (unit.type == 1) stream.intraBase = stream.units.size() + 1;
    const uint64_t ref = uint64_t(code[4]) << 2 | code[5] >> 6;
    unit.pts = (stream.intraBase + ref) * ticks;
    unit.dts = stream.units.size() * ticks;
    unit.groupTime = stream.groupBase * ticks;
    if (time != MODEL_NONE) {
        const int64_t ahead = int64_t(time - (stream.gopBase + ref) * ticks) / int64_t(ticks);
        const int64_t more = ahead - int64_t(stream.gap);
        if (more >= 17 && more <= 63) {
            stream.gap = uint64_t(ahead);
            for (int64_t i = 0; i < more; ++i) {
                if (uint64_t error = modelStore(stream, Bytes(1024))) return error;
                stream.units.push_back(unit);
                unit.pts += ticks;
                unit.dts += ticks;
                stream.bytesIn += 1024;
            }
        }
    }
    stream.pictures++;
    stream.units.push_back(unit);
    return 0;
}

/** One place of a chunk. It takes the time, which is then gone, if a picture is there. */
uint64_t scanPlace(ModelStream& stream, const Bytes& bytes, uint64_t at, uint64_t position, uint64_t* time)
{
    switch (startCode(bytes, at)) {
    case 0x00: {
        const uint64_t given = *time;
        *time = MODEL_NONE;
        return scanPicture(stream, bytes.data() + at, position, given);
    }
    case 0xB3:
        stream.sequencePending = true;
        stream.groupStart = position;
        return readRate(stream, bytes[at + 7] & 15) ? 0 : ORV_VIDEO_NOT_PAL_OR_NTSC | WARNING;
    case 0xB7: stream.ended = true; return 0;
    case 0xB8:
        stream.groups++;
        stream.groupPending = true;
        if (!stream.sequencePending) stream.groupStart = position;
        stream.sequencePending = false;
        if (stream.groups == 1) {
            stream.intraBase = stream.groupBase = stream.gopBase = 1;
        } else {
            stream.groupBase = stream.units.size() + 1;
            stream.gopBase = stream.pictures + 1;
        }
        return 0;
    default: return 0;
    }
}

uint64_t parseVideo(ModelStream& stream, const Bytes& chunk, uint64_t time)
{
    stream.begun = true;
    if (chunk.size() < 8) return 0;
    Bytes joined = stream.tail;
    joined.insert(joined.end(), chunk.begin(), chunk.begin() + 8);
    for (uint64_t at = 0; at < 8; ++at) {
        uint64_t left = stream.tailTimeUsed ? MODEL_NONE : stream.tailTime;
        const bool picture = startCode(joined, at) == 0;
        const uint64_t error = scanPlace(stream, joined, at, stream.bytesIn - 8 + at, &left);
        if (picture) stream.tailTimeUsed = true;
        if (error) return error;
    }
    uint64_t left = time;
    bool taken = false;
    for (uint64_t at = 0; at + 9 <= chunk.size(); ++at) {
        if (startCode(chunk, at) == 0) taken = true;
        if (uint64_t error = scanPlace(stream, chunk, at, stream.bytesIn + at, &left)) return error;
    }
    stream.tail.assign(chunk.end() - 8, chunk.end());
    stream.tailTime = time;
    stream.tailTimeUsed = taken;
    return stream.groups == 0 ? HEADER_ALONE : 0;
}

// ---- audio ------------------------------------------------------------------------------------------------------

uint64_t parseLpcm(ModelStream& stream, const Bytes& chunk)
{
    if (chunk.size() >= 4 && beginsWith(chunk, "END ")) {
        stream.ended = true;
        return END_SEEN;
    }
    if (!beginsWith(chunk, "RIFF")) return 0;
    if (!beginsWith(chunk, "WAVEfmt ", 8)) return ORV_LPCM_NOT_RIFF;
    if (byteOf(chunk, 20) != 1 || byteOf(chunk, 21) != 0) return ORV_RIFF_NOT_LPCM;
    const auto number = [&chunk](uint64_t at, uint64_t count) {
        uint64_t value = 0;
        for (uint64_t i = count; i-- > 0;) value = value << 8 | byteOf(chunk, at + i);
        return value;
    };
    stream.channels = number(22, 2);
    stream.sampleRate = number(24, 4);
    stream.sampleBits = number(34, 2);
    if (stream.sampleRate != 48000 && stream.sampleRate != 96000) return ORV_AUDIO_RATE_NOT_DVD;
    const uint64_t key = stream.channels * 100 + stream.sampleBits;
    uint64_t format = 0;
    for (const uint64_t known : { 216u, 224u, 616u, 116u, 124u }) {
        ++format;
        if (known != key) continue;
        stream.lpcmFormat = format;
        stream.unitBytes = (stream.sampleRate / 600) * (stream.sampleBits / 8) * stream.channels;
        return HEADER_ALONE;
    }
    return ORV_UNSUPPORTED_LPCM;
}

void countFrames(ModelStream& stream, uint64_t bytes)
{
    if (stream.unitBytes == 0) return;
    stream.frameRest += bytes;
    stream.frames += stream.frameRest / stream.unitBytes;
    stream.frameRest %= stream.unitBytes;
}

uint64_t parseLayer2(ModelStream& stream, const Bytes& chunk, uint64_t time)
{
    static const uint64_t kbits[] = { 0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0 };
    if (!stream.begun && byteOf(chunk, 0) == 0xFF && byteOf(chunk, 1) >> 4 == 0xF) {
        if ((byteOf(chunk, 1) >> 1 & 3) != 2) return ORV_NOT_LAYER_2 | WARNING;
        if ((byteOf(chunk, 2) >> 2 & 3) != 1) return ORV_AUDIO_RATE_NOT_DVD;
        stream.unitBytes = 3 * kbits[byteOf(chunk, 2) >> 4];
        stream.begun = true;
    }
    if (time != MODEL_NONE) {
        const int64_t missing = int64_t(time / 2160) - int64_t(stream.frames);
        if (missing >= 5 && missing <= 15) {
            const uint64_t bytes = uint64_t(missing) * stream.unitBytes;
            if (uint64_t error = modelStore(stream, Bytes(bytes))) return error;
            stream.bytesIn += bytes;
            countFrames(stream, bytes);
        }
    }
    countFrames(stream, chunk.size());
    return 0;
}

uint64_t parseAc3(ModelStream& stream, const Bytes& chunk)
{
    if (!stream.begun) {
        if (byteOf(chunk, 0) != 0x0B || byteOf(chunk, 1) != 0x77) return ORV_NO_AC3_SYNC | WARNING;
        if (byteOf(chunk, 4) > 63) return ORV_AUDIO_RATE_NOT_DVD;
        stream.unitBytes = ac3Bytes(byteOf(chunk, 4));
        stream.begun = true;
    }
    if (!beginsWith(chunk, "END ")) return 0;
    stream.ended = true;
    return END_SEEN;
}

uint64_t handleSync(ModelStream& stream, const uint8_t* sync, uint64_t position, uint64_t time)
{
    const int order = sync[0] == 0x0B ? 0 : 1;
    if (stream.order < 0) stream.order = order;
    if (stream.order != order) return 0;
    const uint64_t size = stream.unitBytes;
    if (!stream.units.empty()) {
        const uint64_t last = stream.units.back().position;
        if (position < last + size) return 0;
        if (position > last + size && size > 0) {
            for (int64_t at = int64_t(position - size); at > int64_t(last); at -= int64_t(size)) {
                stream.units.push_back({ .position = uint64_t(at) });
                stream.pictures++;
            }
        }
    }
    if (sync[4] > 63) return ORV_AUDIO_RATE_NOT_DVD | WARNING;
    stream.unitBytes = ac3Bytes(sync[4]);
    ModelUnit unit = { .position = position };
    if (time != MODEL_NONE) {
        const int64_t ahead = int64_t(time - stream.pictures * 2880) / 2880;
        if (ahead > 0) {
            const int64_t before = int64_t(stream.gap);
            stream.gap = uint64_t(ahead);
            for (int64_t i = before; i < ahead; ++i) {
                if (uint64_t error = modelStore(stream, Bytes(stream.unitBytes))) return error;
                stream.units.push_back(unit);
                stream.bytesIn += stream.unitBytes;
                unit.position += stream.unitBytes;
            }
        }
    }
    stream.pictures++;
    stream.units.push_back(unit);
    return 0;
}

bool isSync(const Bytes& bytes, uint64_t at)
{
    return (bytes[at] == 0x0B && bytes[at + 1] == 0x77) || (bytes[at] == 0x77 && bytes[at + 1] == 0x0B);
}

uint64_t parseAc3Table(ModelStream& stream, const Bytes& chunk, uint64_t time)
{
    if (chunk.size() >= 4 && beginsWith(chunk, "END ")) {
        stream.ended = true;
        return END_SEEN;
    }
    stream.begun = true;
    if (chunk.size() < 6) return 0;
    Bytes joined = stream.tail;
    joined.insert(joined.end(), chunk.begin(), chunk.begin() + 5);
    for (uint64_t at = 0; at < 5; ++at) {
        if (!isSync(joined, at)) continue;
        const uint64_t given = stream.tailTimeUsed ? MODEL_NONE : stream.tailTime;
        stream.tailTimeUsed = true;
        if (uint64_t error = handleSync(stream, joined.data() + at, stream.bytesIn - 5 + at, given)) return error;
    }
    bool taken = false;
    for (uint64_t at = 0; at + 6 <= chunk.size(); ++at) {
        if (!isSync(chunk, at)) continue;
        const uint64_t given = taken ? MODEL_NONE : time;
        taken = true;
        if (uint64_t error = handleSync(stream, chunk.data() + at, stream.bytesIn + at, given)) return error;
    }
    stream.tail.assign(chunk.end() - 5, chunk.end());
    stream.tailTime = time;
    stream.tailTimeUsed = taken;
    return 0;
}

uint64_t parse(ModelStream& stream, const Bytes& chunk, uint64_t time)
{
    switch (stream.kind) {
    case 2: return parseUnits(stream, chunk);
    case 4: return parseVideo(stream, chunk, time);
    case 8: return parseLpcm(stream, chunk);
    case 9: return parseLayer2(stream, chunk, time);
    case 10: return parseAc3(stream, chunk);
    case 13: return parseAc3Table(stream, chunk, time);
    default: return ORV_UNKNOWN_STREAM;
    }
}

uint64_t accept(MuxModel& model, ModelStream& stream, const Bytes& chunk)
{
    if (uint64_t error = modelStore(stream, chunk)) return error;
    stream.bytesIn += chunk.size();
    return modelRun(model);
}

/** The next chunk of a file; false: there is none, which is no failure. */
bool readSource(ModelStream& stream, Bytes* chunk)
{
    int64_t count = std::min<int64_t>(int64_t(2 * stream.watermark) - int64_t(stream.held()), 16384);
    if (stream.swapped && count % 2 != 0) count--;
    if (count <= 0) return false;
    const uint64_t end = std::min<uint64_t>(stream.filePosition + uint64_t(count), stream.file.size());
    chunk->assign(stream.file.begin() + std::ptrdiff_t(stream.filePosition), stream.file.begin() + std::ptrdiff_t(end));
    if (chunk->empty()) {
        stream.ended = true;
        return false;
    }
    stream.filePosition = end;
    if (stream.swapped)
        for (uint64_t i = 0; i + 1 < chunk->size(); i += 2) std::swap((*chunk)[i], (*chunk)[i + 1]);
    return true;
}

}   // namespace

uint64_t modelStore(ModelStream& stream, const Bytes& bytes)
{
    if (stream.held() + bytes.size() > MOST_HELD) return ORV_MUX_OVERFLOW;
    stream.fed.insert(stream.fed.end(), bytes.begin(), bytes.end());
    return 0;
}

// ---- calls of the host ------------------------------------------------------------------------------------------

static uint64_t registerStream(MuxModel& model, std::unique_ptr<ModelStream> made)
{
    ModelStream& stream = *made;
    const uint64_t n = model.audios;
    stream.stdSize = 4096;
    stream.stdScale = 1;
    stream.stdBound = 58;
    stream.streamId = 0xBD;
    switch (stream.kind) {
    case 2:
    case 4:
        if (model.videos == 1) return ORV_SECOND_VIDEO_STREAM;
        model.videos++;
        stream.streamId = 0xE0;
        stream.stdSize = 237568;
        stream.stdBound = 232;
        stream.unitTicks = 3600;
        stream.tail = Bytes(8, 0xFF);
        model.slots[0] = made.get();
        model.streamCount++;
        model.all.push_back(std::move(made));
        return 0;
    case 8:
        stream.subStreamId = uint8_t(0xA0 + n);
        stream.unitTicks = 150;
        break;
    case 9:
        stream.streamId = uint8_t(0xC0 + n);
        stream.stdScale = 0;
        stream.stdBound = 32;
        stream.unitTicks = 2160;
        break;
    case 10:
    case 13:
        stream.subStreamId = uint8_t(0x80 + n);
        stream.unitTicks = 2880;
        stream.tail = Bytes(5);
        break;
    case 20:
        if (model.subPictures == 32) return ORV_TOO_MANY_STREAMS;
        stream.subStreamId = uint8_t(0x20 + model.subPictures);
        stream.stdSize = 53248;
        break;
    default: return ORV_UNKNOWN_STREAM;
    }
    if (stream.kind != 20 && model.audios == 8) return ORV_TOO_MANY_STREAMS;
    (stream.kind == 20 ? model.subPictures : model.audios)++;
    model.slots[model.streamCount == 0 ? 1 : model.streamCount] = made.get();
    model.streamCount++;
    model.all.push_back(std::move(made));
    return 0;
}

uint64_t modelAdd(MuxModel& model, uint64_t flags, ModelStream** out)
{
    *out = nullptr;
    auto made = std::make_unique<ModelStream>();
    made->watermark = flags & 0x8C0 ? 0x4000 : 0x20000;
    if (flags & 0x30) made->kind = 8;
    if (flags & 0x40) made->kind = 9;
    if (flags & 0x80) made->kind = 10;
    if (flags & 0x800) made->kind = 13;
    if (flags & 0x02) made->kind = 20;
    if (flags & 0x08) made->kind = 2;
    if (flags & 0x400) made->kind = 4;
    if (uint64_t error = registerStream(model, std::move(made))) return error;
    uint64_t slot = model.streamCount - 1;
    if (model.streamCount == 1 && flags & 0x8F0) slot = 1;
    if (flags & 0x40C) slot = 0;
    *out = model.slots[slot];
    if (!*out) return ORV_UNKNOWN_STREAM;
    (*out)->fromFile = false;
    return 0;
}

uint64_t modelAddFile(MuxModel& model, const Bytes& file, uint64_t flags, ModelStream** out)
{
    if (uint64_t error = modelAdd(model, flags, out)) return error;
    (*out)->fromFile = true;
    (*out)->file = file;
    (*out)->swapped = file.size() >= 2 && file[0] == 0x77 && file[1] == 0x0B;
    return 0;
}

uint64_t modelData(MuxModel& model, ModelStream& stream, const Bytes& given, uint64_t* used, uint64_t flags)
{
    if (flags & 0x200) return modelVideoSeq(model, stream, given, used);
    Bytes chunk = given;
    if (stream.fromFile && !readSource(stream, &chunk)) return 0;
    *used = chunk.size();
    if (flags & 0x10) {
        Bytes riff = { 'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 0, 0, 0, 0 };
        riff.insert(riff.end(), chunk.begin(),
                    chunk.begin() + std::min<std::ptrdiff_t>(18, std::ptrdiff_t(chunk.size())));
        chunk = riff;
    }
    const uint64_t result = parse(stream, chunk, MODEL_NONE);
    if (result == HEADER_ALONE || result & WARNING) return 0;
    if (result == END_SEEN) chunk.resize(chunk.size() - 4);
    if (result != 0 && result != END_SEEN) return result;
    return accept(model, stream, chunk);
}

uint64_t modelDataEx(MuxModel& model, ModelStream& stream, const Bytes& chunk, uint64_t flags, uint64_t time)
{
    if (stream.kind != 4 && stream.kind != 9 && stream.kind != 13) {
        uint64_t used = 0;
        return modelData(model, stream, chunk, &used, flags);
    }
    const uint64_t result = parse(stream, chunk, time);
    if (result == HEADER_ALONE || result & WARNING) return 0;
    if (result) return result;
    return accept(model, stream, chunk);
}

uint64_t modelVideoSeq(MuxModel& model, ModelStream& stream, const Bytes& chunk, uint64_t* used)
{
    *used = chunk.size();
    const auto find = [&chunk](uint64_t from, int code) {
        while (from + 4 <= chunk.size() && startCode(chunk, from) != code) ++from;
        return from;
    };
    if (startCode(chunk, 0) != 0xB3) return ORV_UNKNOWN_STREAM;
    const uint64_t picture = find(1, 0x00);
    const uint64_t end = find(picture + 1, 0xB7);
    if (end + 4 != chunk.size()) return ORV_UNKNOWN_STREAM;
    const auto at = [&chunk](uint64_t offset) { return chunk.begin() + std::ptrdiff_t(offset); };
    for (const Bytes& piece : { Bytes(at(0), at(picture)), Bytes(at(picture), at(end)), Bytes(at(end), chunk.end()) }) {
        if (uint64_t error = parse(stream, piece, MODEL_NONE)) return error;
        if (uint64_t error = accept(model, stream, piece)) return error;
    }
    return 0;
}

uint64_t modelExit(MuxModel& model)
{
    for (ModelStream* stream : model.slots)
        if (stream) stream->ended = true;
    const ModelStream* video = model.slots[0];
    if (!video) return 0;
    if (video->bytesIn > 4)
        if (uint64_t error = modelRun(model)) return error;
    if (!model.pending.empty()) {
        model.vobuPictures = modelCurrentUnit(*video) - model.vobuFirstUnit;
        modelFillNav(model, true);
        Bytes sectors;
        for (const Bytes& pack : model.pending) sectors.insert(sectors.end(), pack.begin(), pack.end());
        (void)model.write(sectors);
        model.pending.clear();
    }
    return 0;
}
