// aob_model.cpp: packs, the loop, and the two ways to the samples.
#include "tests/audio/aob_model.h"

#include "tests/support/aob_reader.h"
#include "tests/support/packs.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace {

constexpr uint64_t PACK_CLOCK = 438857143, TICK_CLOCK = 3000000;
constexpr uint64_t UNDERRUN = 0x84000C1E, BAD_RATE = 0x84001779, BAD_SIZE = 0x84001781, BAD_WAVE = 0x84001783,
                   BAD_ASSIGNMENT = 0x84001786, CANCELED = 0x8400040A;

struct Clock {
    uint64_t clock = 0, bytesMuxed = 0, bufferFill = 0, framesDecoded = 0;
};

// A row of the table of sizes, once for each kind.
struct Sizes {
    uint64_t payload, packetLength, headerLength, padding;
};

const std::map<std::pair<uint64_t, uint64_t>, std::array<Sizes, 2>> SIZES = {
    { { 2, 16 }, { Sizes{ 1984, 2010, 11, 0 }, Sizes{ 2000, 2028, 16, 0 } } },
    { { 2, 24 }, { Sizes{ 1980, 2010, 15, 0 }, Sizes{ 2004, 2028, 12, 0 } } },
    { { 4, 16 }, { Sizes{ 1984, 2010, 11, 0 }, Sizes{ 2000, 2028, 16, 0 } } },
    { { 4, 24 }, { Sizes{ 1968, 1993, 10, 11 }, Sizes{ 1992, 2014, 10, 8 } } },
    { { 5, 16 }, { Sizes{ 1980, 2010, 15, 0 }, Sizes{ 2000, 2028, 16, 0 } } },
    { { 5, 24 }, { Sizes{ 1980, 2010, 15, 0 }, Sizes{ 1980, 2002, 10, 20 } } },
    { { 6, 16 }, { Sizes{ 1968, 1993, 10, 11 }, Sizes{ 1992, 2014, 10, 8 } } },
    { { 6, 24 }, { Sizes{ 1980, 2010, 15, 0 }, Sizes{ 1980, 2002, 10, 20 } } },
};

const std::map<uint64_t, uint8_t> RATE_CODES = { { 48000, 0 }, { 96000, 1 }, { 192000, 2 },
                                                 { 44100, 8 }, { 88200, 9 }, { 176400, 10 } };

// What a driver puts into a pack.
struct Fill {
    uint64_t failure = 0;
    Bytes samples = {};
    bool ended = false;
};

struct Driver {
    std::function<Fill(uint64_t room)> fill;
    std::function<uint64_t()> packWritten;
    bool direct;
};

struct TrackResult {
    uint64_t result = 0, firstCellPts = 0, blockSize = 0;
};

}   // namespace

static Bytes big(uint64_t value, uint64_t bytes)
{
    Bytes out;
    while (bytes > 0) out.push_back(uint8_t(value >> (8 * --bytes)));
    return out;
}

// Bits by their letters, as the drawings of the format have them.
static Bytes packHead(uint64_t clock)
{
    const uint64_t base = clock / TICK_CLOCK & 0xFFFFFFFF, extension = clock % TICK_CLOCK / 10000;
    uint64_t bits = 1;               // 01
    bits = bits << 3 | base >> 30;   // the highest of the three is never set
    bits = bits << 1 | 1;
    bits = bits << 15 | (base >> 15 & 0x7FFF);
    bits = bits << 1 | 1;
    bits = bits << 15 | (base & 0x7FFF);
    bits = bits << 1 | 1;
    bits = bits << 9 | extension;
    bits = bits << 1 | 1;
    return big(0x1BA, 4) + big(bits, 6) + fromHex("01 89 C3 F8");
}

static Bytes timeStamp(uint64_t ticks)
{
    const uint64_t base = ticks & 0xFFFFFFFF;
    uint64_t bits = 2;   // 0010
    bits = bits << 3 | base >> 30;
    bits = bits << 1 | 1;
    bits = bits << 15 | (base >> 15 & 0x7FFF);
    bits = bits << 1 | 1;
    bits = bits << 15 | (base & 0x7FFF);
    bits = bits << 1 | 1;
    return big(bits, 5);
}

static Bytes privateHeader(const ModelTrack& track, uint64_t counter, const Sizes& sizes, uint64_t pointer)
{
    const uint64_t size = track.bits == 16 ? 0 : 2, rate = RATE_CODES.at(track.rate);
    const bool second = track.assignment >= 2;
    Bytes out = { 0xA0, uint8_t(counter % 32), 0, uint8_t(sizes.headerLength) };
    out += big(pointer, 2);
    out += Bytes{ uint8_t(track.channels == 6 ? 0x30 : 0x10),
                  uint8_t(size << 4 | (second ? size : 15)),
                  uint8_t(rate << 4 | (second ? rate : 15)),
                  0,
                  uint8_t(track.assignment & 31),
                  0x80,
                  0,
                  0 };
    return out + Bytes(sizes.headerLength - 10);
}

// Headers with a packet length of the last pack's choice.
static Bytes headers(bool first, uint64_t clock, uint64_t pts, uint64_t packetLength, const Bytes& privateBytes,
                     uint64_t stuffing)
{
    Bytes out = packHead(clock);
    out.back() = uint8_t(out.back() | stuffing);
    out += Bytes(stuffing, 0xFF);
    if (first) out += fromHex("00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A");
    out += big(0x1BD, 4) + big(packetLength, 2) + fromHex(first ? "81 81 08" : "81 80 05") + timeStamp(pts);
    if (first) out += fromHex("1E 60 0A");
    return out + privateBytes;
}

static Bytes padding(uint64_t length)
{
    return big(0x1BE, 4) + big(length, 2) + Bytes(length, 0xFF);
}

// A pack with its samples and what stands in the place of those that are missing.
static Bytes closedPack(const Sizes& sizes, const Bytes& samples, bool ended,
                        const std::function<Bytes(uint64_t length, uint64_t stuffing)>& headersOf)
{
    const Bytes full = headersOf(sizes.packetLength, 0);
    const uint64_t gap = PACK_BYTES - samples.size() - full.size();
    if (samples.empty()) return full + Bytes(gap);
    if (!ended) return full + samples + (sizes.padding ? padding(sizes.padding) : Bytes());
    if (gap < 8) return headersOf(sizes.packetLength, gap) + samples;
    const uint64_t length = sizes.packetLength + (sizes.padding ? sizes.padding + 6 : 0) - gap;
    return headersOf(length, 0) + samples + padding(gap - 6);
}

static TrackResult muxTrack(const ModelTrack& track, Clock& now, const Driver& driver, Bytes& aob)
{
    TrackResult out;
    const uint64_t frameSamples = aobFrameSamples(track.rate);
    if (!frameSamples) return { BAD_RATE };
    const auto row = SIZES.find({ track.channels, track.bits });
    if (row == SIZES.end()) return { BAD_SIZE };
    const uint64_t frameBytes = frameSamples * track.channels * track.bits / 8;
    for (uint64_t packs = 0;;) {
        const uint64_t base = now.clock / TICK_CLOCK;
        const bool first = packs == 0;
        const Sizes& sizes = row->second[first ? 0 : 1];
        const bool room = 8192 - now.bufferFill > sizes.payload;
        bool ended = false;
        if (room) {
            const uint64_t next = (now.bytesMuxed + frameBytes - 1) / frameBytes;
            const uint64_t pts = next * frameSamples * 90000 / track.rate;
            if (first) out.firstCellPts = pts;
            const uint64_t distance = first ? 0 : next * frameBytes - now.bytesMuxed;
            const Bytes own = privateHeader(track, packs, sizes, distance + sizes.headerLength - 1);
            const Fill fill = driver.fill(sizes.payload);
            if (fill.failure) {
                out.result = fill.failure;
                return out;
            }
            const uint64_t count = fill.samples.size();
            ended = fill.ended || count < sizes.payload;
            aob += closedPack(sizes, fill.samples, ended, [&](uint64_t length, uint64_t stuffing) {
                return headers(first, now.clock, pts, length, own, stuffing);
            });
            now.bytesMuxed += count;
            now.bufferFill += count;
            packs++;
            if (const uint64_t failure = driver.packWritten ? driver.packWritten() : 0) {
                out.result = failure;
                return out;
            }
        }
        const uint64_t decoded = now.framesDecoded * frameSamples * 90000 / track.rate;
        if (decoded < base) {
            const uint64_t due = (base - decoded) * track.rate / (frameSamples * 90000);
            if (now.bufferFill >= due * frameBytes) {
                now.framesDecoded += due;
                now.bufferFill -= due * frameBytes;
            } else if (!driver.direct) {
                out.result = UNDERRUN;
                return out;
            }
        }
        if (ended) {
            out.blockSize = packs;
            return out;
        }
        if (room) {
            now.clock += PACK_CLOCK;
        } else if (!driver.direct) {
            now.clock = decoded * TICK_CLOCK + PACK_CLOCK;
        } else {
            const uint64_t ahead = decoded * TICK_CLOCK - now.clock;
            now.clock += PACK_CLOCK + std::min<uint64_t>(ahead, 0x7FFFFFFFFFFFFFFF);
        }
    }
}

// Whole units of so many samples, from little-endian bytes of each channel.
static Bytes unitsOf(uint64_t assignment, uint64_t bits, uint64_t samples, const std::vector<Bytes>& channels)
{
    Bytes out;
    const AobLayout* const layout = aobLayout(assignment, bits);
    if (!layout) return out;
    for (uint64_t time = 0; time + layout->times <= samples; time += layout->times) {
        for (const char* word = layout->bytes;; word += 4) {
            const uint64_t at = (time + uint64_t(word[1] - 'a')) * (bits / 8) + uint64_t(word[2] - '0');
            out.push_back(channels.at(uint64_t(word[0] - '0')).at(at));
            if (word[3] == 0) break;
        }
    }
    return out;
}

// ---- the exported functions --------------------------------------------------------------------------------------

static Fill askHost(const ModelTrack& track, uint64_t index, uint64_t room, const SampleHost& host, ModelRun& run)
{
    Fill fill;
    uint64_t count = room / (track.bits / 8 * track.channels);
    std::vector<Bytes> channels;
    for (uint64_t channel = 0; channel < track.channels; channel++) {
        run.calls.push_back({ index, channel, count });
        const SampleAnswer answer = host(run.calls.back());
        if (answer.result != 0 && answer.result != 3) return { answer.result & 0xFFFFFFFF };
        if (answer.count > count) return { 1001 };
        if (answer.result == 3) fill.ended = true;
        count = answer.count;
        channels.push_back(answer.bytes);
        channels.back().resize(1024);
    }
    fill.samples = unitsOf(track.assignment, track.bits, count, channels);
    return fill;
}

ModelRun modelMuxer(const std::vector<ModelTrack>& tracks, const SampleHost& host)
{
    ModelRun run;
    Clock clock;
    for (uint64_t index = 0; index < tracks.size(); index++) {
        const ModelTrack& track = tracks[index];
        if (track.assignment > 20) {
            run.result = BAD_ASSIGNMENT;
            return run;
        }
        const Driver driver = { [&](uint64_t room) { return askHost(track, index, room, host, run); }, nullptr, false };
        const TrackResult done = muxTrack(track, clock, driver, run.aob);
        run.result = done.result;
        if (run.result) return run;
        const std::string section = "TRACKINFO_" + std::string(index < 9 ? "0" : "") + std::to_string(index + 1);
        run.nfo[section + ".TrackBlockSize"] = std::to_string(int32_t(done.blockSize));
        run.nfo[section + ".TrackFirstCellPts"] = std::to_string(int32_t(done.firstCellPts));
    }
    return run;
}

// ---- the direct driver -------------------------------------------------------------------------------------------

static uint64_t littleAt(const Bytes& file, uint64_t at, uint64_t bytes)
{
    uint64_t value = 0;
    for (uint64_t i = 0; i < bytes; i++) value |= uint64_t(at + i < file.size() ? file[at + i] : 0) << (8 * i);
    return value;
}

static bool nameAt(const Bytes& file, uint64_t at, const char* name)
{
    return at + 8 <= file.size() && memcmp(file.data() + at, name, 4) == 0;
}

// Place of the samples; none if the file is not one of WAVE.
static std::optional<uint64_t> samplesOf(const Bytes& file)
{
    if (!nameAt(file, 0, "RIFF") || !nameAt(file, 8, "WAVE") || !nameAt(file, 12, "fmt ")) return {};
    uint64_t at = 20 + littleAt(file, 16, 3);
    while (at + 8 <= file.size()) {
        if (nameAt(file, at, "data")) return at + 8;
        at += 8 + littleAt(file, at + 4, 4);
    }
    return {};
}

static Fill readWaves(const ModelWave& wave, const std::vector<uint64_t>& places, uint64_t room)
{
    const ModelTrack& track = wave.track;
    const bool stereo = places.size() == 1;
    const uint64_t block = track.bits / 8 * (stereo ? 2 : 1);
    uint64_t bytes = (wave.endSample + 1) * block + wave.files.back().size() - places[0];
    if (!stereo) bytes *= track.channels;
    bytes = std::min(bytes, room);
    const uint64_t samples = bytes / (track.bits / 8 * track.channels);
    std::vector<Bytes> channels(6);
    for (uint64_t channel = 0; channel < track.channels; channel++) {
        const Bytes& file = wave.files[stereo ? 0 : channel];
        const uint64_t from = places[stereo ? 0 : channel] + (stereo ? channel * track.bits / 8 : 0);
        for (uint64_t i = 0; i < samples; i++) {
            for (uint64_t byte = 0; byte < track.bits / 8; byte++)
                channels[channel].push_back(uint8_t(littleAt(file, from + i * block + byte, 1)));
        }
    }
    return { 0, unitsOf(track.channels == 2 ? 1 : track.assignment, track.bits, samples, channels), true };
}

ModelWaveRun modelWaves(const std::vector<ModelWave>& tracks, uint64_t atsNumber, uint64_t titleSets, uint64_t cancelAt)
{
    ModelWaveRun run;
    Clock clock;
    for (uint64_t index = 0; index < tracks.size(); index++) {
        const ModelWave& wave = tracks[index];
        std::vector<uint64_t> places;
        for (const Bytes& file : wave.files) {
            const std::optional<uint64_t> at = samplesOf(file);
            if (!at) {
                run.result = BAD_WAVE;
                return run;
            }
            const uint64_t block = wave.track.bits / 8 * (wave.files.size() == 1 ? 2 : 1);
            places.push_back(*at + wave.startSample * block);
        }
        const auto report = [&]() -> uint64_t {
            const uint64_t percent = 100 * (index + 1) / tracks.size();
            run.progress.push_back({ uint32_t(titleSets * 102 + 25), uint32_t(percent - 90 + atsNumber * 102), 1 });
            return run.progress.size() == cancelAt ? CANCELED : 0;
        };
        const Driver driver = { [&](uint64_t room) { return readWaves(wave, places, room); }, report, true };
        const TrackResult done = muxTrack(wave.track, clock, driver, run.aob);
        run.result = done.result;
        if (run.result) return run;
        run.tracks.push_back({ done.firstCellPts, done.blockSize, wave.files.back().size() });
    }
    return run;
}
