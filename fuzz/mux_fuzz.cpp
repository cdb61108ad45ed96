// mux_fuzz.cpp: any bytes as the life of a multiplexer: its streams, then calls with chunks and times; or, with the top
// bit of the first byte, as a video file of the replay.
//   0       bit 7: replay, bits 0 and 1 its variant, byte 1 its block, the video from byte 2; otherwise bits 0 and 1:
//           streams less one, bit 6: the host refuses output now and then
//   1 on    a kind each, of KINDS
//   then    calls, each: stream (bits 0 and 1) and CALL (bits 2 to 4); how often; the chunk's size, two bytes, low byte
//           first; the time, five bytes, low byte first; the chunk

#include "fuzz/fuzz.h"

#include "base/files.h"
#include "mux/mux_types.h"
#include "tests/support/elementary.h"
#include "tests/support/packs.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

constexpr uint64_t KINDS[] = { ORV_MUX_VIDEO, ORV_MUX_VIDEO_UNITS, ORV_MUX_LPCM,       ORV_MUX_MPEG_AUDIO,
                               ORV_MUX_AC3,   ORV_MUX_AC3_ANY,     ORV_MUX_SUBPICTURE, 0 };
constexpr uint64_t FILE_STREAM = 7;   // the kind without a flag: AC-3 from a file that holds the whole input

enum Call : uint8_t { DATA, TIMED, SEQUENCE, WAVE_FORMAT, END, FLAGGED_SEQUENCE, UNKNOWN_TIME, PULL };

constexpr size_t CALL_HEAD = 9;
constexpr uint64_t MOST_FED = 0x600000;   // bytes of one input, so that each comes to its end soon
constexpr uint64_t REFUSED = 0x4711;

struct Host {
    bool refuses;
    uint64_t outputs;
    uint64_t sectors;
};

// Units of whole packs. A navigation pack is the first of its unit, which has none where no group has begun yet.
static uint64_t take(uint64_t user, const uint8_t* sectors, uint64_t bytes)
{
    Host* const host = reinterpret_cast<Host*>(user);
    if (!bytes || bytes % PACK_BYTES || bytes > MUX_BUFFER_SECTORS * PACK_BYTES) abort();
    for (uint64_t at = 0; at < bytes; at += PACK_BYTES) {
        if (memcmp(sectors + at, "\x00\x00\x01\xBA\x44", 4)) abort();
        const bool navigation = !memcmp(sectors + at + 14, "\x00\x00\x01\xBB", 4);
        if (navigation && at > 0) abort();
    }
    host->sectors += bytes / PACK_BYTES;
    return host->refuses && ++host->outputs % 3 == 0 ? REFUSED : 0;
}

struct Input {
    const uint8_t* data;
    size_t size, at;

    bool has(size_t bytes) const
    {
        return size - at >= bytes;
    }
    uint64_t number(size_t bytes)
    {
        uint64_t value = 0;
        for (size_t i = 0; i < bytes; i++) value |= uint64_t(data[at++]) << (8 * i);
        return value;
    }
    Bytes bytes(size_t count)
    {
        count = std::min(count, size - at);
        at += count;
        return { data + at - count, data + at };
    }
};

static uint64_t feed(Call call, MuxContext* handle, MuxStream* stream, const Bytes& chunk, uint64_t time)
{
    static const uint8_t EMPTY[1] = {};
    const uint8_t* const data = chunk.empty() ? EMPTY : chunk.data();
    uint64_t used = 0, result = 0;
    switch (call) {
    case DATA:
    case PULL: result = MuxData(handle, stream, data, chunk.size(), &used, 0); break;
    case TIMED: result = MuxDataEx(handle, stream, data, chunk.size(), 0, time); break;
    case UNKNOWN_TIME: result = MuxDataEx(handle, stream, data, chunk.size(), 0, NONE); break;
    case WAVE_FORMAT: result = MuxData(handle, stream, data, chunk.size(), &used, ORV_MUX_WAVEFORMAT); break;
    case END: result = MuxData(handle, stream, reinterpret_cast<const uint8_t*>("END "), 4, &used, 0); break;
    case SEQUENCE: return MuxVideoSeq(handle, stream, data, chunk.size(), &used);
    case FLAGGED_SEQUENCE: return MuxData(handle, stream, data, chunk.size(), &used, ORV_MUX_SEQUENCE);
    }
    // Warnings and chunks passed over are no failures to a host.
    if (result >> 20 == 0x841 || result == 0x84000C1A) abort();
    return result;
}

static void finish(MuxContext* handle)
{
    if (!ExitMuxer(handle)) return;
    // What could not be finished can still be given up: a video stream without data ends without a scheduler.
    for (MuxStream* stream = handle->owned; stream; stream = stream->nextOwned) stream->bytesIn = 0;
    if (ExitMuxer(handle)) abort();
}

static void multiplex(Input input)
{
    const uint64_t head = input.number(1), count = (head & 3) + 1;
    Host host = { (head & 0x40) != 0, 0, 0 };
    MuxContext* handle = nullptr;
    if (InitMuxer(&handle, take, reinterpret_cast<uint64_t>(&host))) abort();
    std::vector<MuxStream*> streams;
    for (uint64_t i = 0; i < count && input.has(1); i++) {
        const uint64_t kind = input.number(1) & 7;
        MuxStream* stream = nullptr;
        if (kind == FILE_STREAM) {
            const TempDir folder;
            writeFile(folder / u"audio", Bytes(input.data, input.data + input.size));
            const std::u16string path = folder / u"audio";
            const std::basic_string<OrvWChar> name(path.begin(), path.end());
            (void)AddFileStream(handle, name.c_str(), ORV_MUX_AC3, &stream);
        } else {
            (void)AddStream(handle, 0, KINDS[kind], &stream);
        }
        if (stream) streams.push_back(stream);
    }
    uint64_t fed = 0;
    while (!streams.empty() && input.has(CALL_HEAD)) {
        const uint64_t what = input.number(1), times = input.number(1) + 1, size = input.number(2);
        const uint64_t time = input.number(5);
        MuxStream* const stream = streams[(what & 3) % streams.size()];
        const Bytes chunk = input.bytes(size);
        for (uint64_t i = 0; i < times && fed < MOST_FED; i++, fed += chunk.size() + 64) {
            (void)feed(Call(what >> 2 & 7), handle, stream, chunk, time * (i + 1));
        }
    }
    finish(handle);
}

static uint64_t countUnit(const uint8_t* data, uint64_t bytes, uint64_t user)
{
    if (data && (!bytes || bytes > 0x80000)) abort();
    uint64_t sum = 0;
    for (uint64_t i = 0; i < bytes; i++) sum += data[i];   // every byte can be read
    *reinterpret_cast<uint64_t*>(user) += sum + 1;
    return 0;
}

static void replay(Input input)
{
    const uint64_t variant = input.number(1) & 3, block = (input.number(1) + 1) * 64;
    const TempDir folder;
    writeFile(folder / u"video", input.bytes(input.size));
    writeFile(folder / u"audio", Bytes(input.data, input.data + input.size));
    OSFILE video = 0, audio = 0;
    if (osOpenFile((folder / u"video").c_str(), OS_READ, &video)) abort();
    if (osOpenFile((folder / u"audio").c_str(), OS_READ, &audio)) abort();
    uint64_t sum = 0;
    const uint64_t user = reinterpret_cast<uint64_t>(&sum);
    uint64_t result = 0;
    switch (variant) {
    case 0: result = muxEmulateLigos(video, countUnit, user); break;
    case 1: result = muxEmulateLigosPCM(video, audio, countUnit, countUnit, block, user); break;
    case 2: result = muxEmulateLigosLayer(video, audio, countUnit, countUnit, block, user); break;
    default: result = muxEmulateLigosAC3(video, countUnit, countUnit, user); break;
    }
    if (result) abort();
    (void)osCloseFile(&video);
    (void)osCloseFile(&audio);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2) return 0;
    const Input input = { data, size, 0 };
    if (data[0] & 0x80)
        replay(input);
    else
        multiplex(input);
    return 0;
}

// ---- seeds ------------------------------------------------------------------------------------------------------

static Bytes callOf(Call call, uint8_t stream, const Bytes& chunk, uint8_t times = 1, uint64_t time = 0)
{
    Bytes bytes = { uint8_t(call << 2 | stream), uint8_t(times - 1), uint8_t(chunk.size()),
                    uint8_t(chunk.size() >> 8) };
    for (int i = 0; i < 5; i++) bytes.push_back(uint8_t(time >> (8 * i)));
    return bytes + chunk;
}

static Bytes group(uint64_t pictureBytes)
{
    return makeVideo({ { .bytes = { pictureBytes } } }).bytes;
}

// In turn, so that neither ring runs dry.
static Bytes inTurn(const Bytes& first, const Bytes& second, uint64_t times)
{
    Bytes calls;
    for (uint64_t i = 0; i < times; i++) calls += first + second;
    return calls;
}

std::vector<Bytes> fuzzSeeds()
{
    const Bytes video = group(700);
    Bytes units;
    for (const Bytes& unit : makeVideo(gops(2, { .bytes = { 3000 } })).units()) units += callOf(DATA, 0, unit, 6);
    const Bytes still = sequenceHeader() + gopHeader() + videoPicture(9000, 0, 'I') + sequenceEnd();
    return {
        Bytes{ 0x00, 0 } + callOf(DATA, 0, video, 60) + callOf(DATA, 0, sequenceEnd() + filler(8)),
        Bytes{ 0x01, 0, 4 } + inTurn(callOf(DATA, 0, video, 16), callOf(DATA, 1, ac3Frame(20), 15), 5) +
            callOf(END, 1, {}),
        Bytes{ 0x01, 1, 3 } + units + callOf(TIMED, 1, layer2Frames(11, 4), 20, 4 * 2160) + units,
        Bytes{ 0x02, 0, 2, 5 } + callOf(DATA, 1, waveHeader()) + callOf(WAVE_FORMAT, 1, waveFormat()) +
            inTurn(callOf(DATA, 0, video, 16), callOf(DATA, 1, filler(4000), 23), 3) +
            inTurn(callOf(TIMED, 2, ac3Frames(4, 3), 40, 3 * 2880), callOf(DATA, 1, filler(4000), 23), 2),
        Bytes{ 0x41, 0, 6 } + callOf(TIMED, 0, video, 80, 12 * 3600) + callOf(DATA, 1, filler(100)),
        Bytes{ 0x00, 1 } + callOf(SEQUENCE, 0, still, 30) + callOf(FLAGGED_SEQUENCE, 0, still, 20),
        Bytes{ 0x01, 0, 7 } + inTurn(callOf(DATA, 0, video, 10), callOf(PULL, 1, { 0 }, 4), 3) + ac3Frames(10, 12),
        Bytes{ 0x80, 3 } + video + video + sequenceEnd(),
        Bytes{ 0x81, 3 } + video + sequenceEnd() + video + sequenceEnd(),
        Bytes{ 0x82, 9 } + filler(50) + video + sequenceEnd(),
        Bytes{ 0x83, 0 } + video,
    };
}
