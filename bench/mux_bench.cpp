// mux_bench.cpp: bytes a second of the multiplexer, beside a plain copy of the same bytes in the same run.
//
// The streams are made here: video whose groups, pictures and slices have the sizes and start codes of a movie, its
// data random as entropy-coded data are, and AC-3 or LPCM beside it. What comes out is counted and thrown away.
#include <orven/orven.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

typedef std::vector<uint8_t> Bytes;

static constexpr uint64_t CHUNK_BYTES = 32768, RING_BYTES = 2 << 20;

// ---- material -----------------------------------------------------------------------------------------------------

struct VideoShape {
    uint64_t intra, predicted, between;   // bytes of an I, P and B picture
};

static constexpr VideoShape MOVIE = { 60000, 34000, 18000 };   // about 5 Mbit/s
static constexpr VideoShape THIN = { 6000, 400, 200 };         // a still scene: many pictures in few bytes

/** Random bytes in which no start code can be found. */
static void putCoded(Bytes* to, uint64_t count, std::mt19937* random)
{
    for (uint64_t i = 0; i < count; i++) {
        const uint8_t byte = uint8_t((*random)());
        const size_t size = to->size();
        const bool zeros = size >= 2 && (*to)[size - 1] == 0 && (*to)[size - 2] == 0;
        to->push_back(zeros && byte <= 1 ? 0x5A : byte);
    }
    to->push_back(0x80);
}

static void put(Bytes* to, std::initializer_list<uint8_t> bytes)
{
    to->insert(to->end(), bytes);
}

static void putPicture(Bytes* to, uint64_t temporal, uint8_t type, uint64_t bytes, std::mt19937* random)
{
    constexpr uint8_t SLICES = 36;
    put(to, { 0, 0, 1, 0, uint8_t(temporal >> 2), uint8_t(temporal << 6 | uint64_t(type) << 3 | 7), 0xFF, 0xF8 });
    put(to, { 0, 0, 1, 0xB5, 0x8F, 0xFF, 0xF3, 0x80, 0x00 });
    for (uint8_t slice = 1; slice <= SLICES; slice++) {
        put(to, { 0, 0, 1, slice });
        putCoded(to, bytes / SLICES, random);
    }
}

/** Groups I BB P BB P BB P BB of PAL, half a second less a little each. */
static Bytes makeVideo(uint64_t groups, const VideoShape& shape)
{
    Bytes video;
    std::mt19937 random(1);
    for (uint64_t group = 0; group < groups; group++) {
        put(&video, { 0, 0, 1, 0xB3, 0x2D, 0x02, 0x40, 0x23, 0x24, 0x9F, 0x23, 0x80 });
        put(&video, { 0, 0, 1, 0xB8, 0x00, 0x08, 0x00, 0x40 });
        putPicture(&video, 0, 1, shape.intra, &random);
        for (uint64_t picture = 3; picture <= 9; picture += 3) {
            putPicture(&video, picture, 2, shape.predicted, &random);
            putPicture(&video, picture - 2, 3, shape.between, &random);
            putPicture(&video, picture - 1, 3, shape.between, &random);
        }
    }
    return video;
}

static constexpr uint64_t GROUP_PICTURES = 10, PICTURES_A_SECOND = 25;

static Bytes makeAc3(uint64_t seconds)
{
    constexpr uint64_t FRAME_BYTES = 1792, FRAMES_A_MINUTE = 1875;   // 448 kbit/s
    Bytes sound;
    std::mt19937 random(2);
    for (uint64_t frame = 0; frame < seconds * FRAMES_A_MINUTE / 60; frame++) {
        put(&sound, { 0x0B, 0x77, 0x12, 0x34, 0x1E, 0x40 });
        putCoded(&sound, FRAME_BYTES - 7, &random);
    }
    return sound;
}

static Bytes makeLpcm(uint64_t seconds)
{
    Bytes sound;
    std::mt19937 random(3);
    putCoded(&sound, seconds * 192000 - 1, &random);
    return sound;
}

// ---- multiplexing -------------------------------------------------------------------------------------------------

struct Input {
    uint64_t flags;
    Bytes bytes;
};

static uint64_t countSectors(uint64_t user, const uint8_t*, uint64_t bytes)
{
    *reinterpret_cast<uint64_t*>(user) += bytes;
    return 0;
}

static void announce(MuxContext* handle, MuxStream* stream)
{
    static const uint8_t format[18] = { 1, 0, 2, 0, 0x80, 0xBB, 0, 0, 0, 0xEE, 2, 0, 4, 0, 16, 0, 0, 0 };
    (void)MuxData(handle, stream, format, sizeof format, nullptr, ORV_MUX_WAVEFORMAT);
}

/** Feeds whole streams, each chunk to the one of which the smallest part has gone. @return a result of the library */
static uint64_t feed(MuxContext* handle, const std::vector<Input>& inputs)
{
    std::vector<MuxStream*> streams(inputs.size());
    std::vector<uint64_t> fed(inputs.size());
    for (size_t i = 0; i < inputs.size(); i++) {
        if (uint64_t error = AddStream(handle, 0, inputs[i].flags, &streams[i])) return error;
        if (inputs[i].flags == ORV_MUX_LPCM) announce(handle, streams[i]);
    }
    const auto part = [&](size_t i) { return double(fed[i]) / double(inputs[i].bytes.size()); };
    for (;;) {
        size_t next = 0;
        for (size_t i = 1; i < inputs.size(); i++) next = part(i) < part(next) ? i : next;
        const Bytes& bytes = inputs[next].bytes;
        const uint64_t count = std::min<uint64_t>(CHUNK_BYTES, bytes.size() - fed[next]);
        if (count == 0) return 0;
        if (uint64_t error = MuxData(handle, streams[next], bytes.data() + fed[next], count, nullptr, 0)) return error;
        fed[next] += count;
    }
}

static uint64_t bytesOf(const std::vector<Input>& inputs)
{
    uint64_t bytes = 0;
    for (const Input& input : inputs) bytes += input.bytes.size();
    return bytes;
}

static void multiplex(benchmark::State& state, const std::vector<Input>& inputs)
{
    for (auto _ : state) {
        MuxContext* handle = nullptr;
        uint64_t written = 0;
        uint64_t error = InitMuxer(&handle, countSectors, reinterpret_cast<uint64_t>(&written));
        if (!error) error = feed(handle, inputs);
        if (!error) error = ExitMuxer(handle);
        if (error || written < bytesOf(inputs)) state.SkipWithError("the multiplexer has failed");
    }
    state.SetBytesProcessed(int64_t(uint64_t(state.iterations()) * bytesOf(inputs)));
}

/** The least that a multiplexer does: each byte into a ring, from there into packs. */
static void copy(benchmark::State& state, const std::vector<Input>& inputs, int times)
{
    const std::unique_ptr<uint8_t[]> ring(new uint8_t[RING_BYTES]()), packs(new uint8_t[RING_BYTES]());
    for (auto _ : state) {
        uint64_t at = 0;
        for (const Input& input : inputs) {
            for (uint64_t from = 0; from + CHUNK_BYTES <= input.bytes.size(); from += CHUNK_BYTES) {
                std::memcpy(ring.get() + at, input.bytes.data() + from, CHUNK_BYTES);
                if (times > 1) std::memcpy(packs.get() + at, ring.get() + at, CHUNK_BYTES);
                benchmark::DoNotOptimize(ring.get());
                benchmark::DoNotOptimize(packs.get());
                benchmark::ClobberMemory();
                at = (at + CHUNK_BYTES) % RING_BYTES;
            }
        }
    }
    state.SetBytesProcessed(int64_t(uint64_t(state.iterations()) * bytesOf(inputs)));
}

// ---- runs ---------------------------------------------------------------------------------------------------------

static constexpr uint64_t GROUPS = 50, SECONDS = GROUPS * GROUP_PICTURES / PICTURES_A_SECOND;

static const std::vector<Input>& movieAndAc3()
{
    static const std::vector<Input> inputs = { { ORV_MUX_VIDEO, makeVideo(GROUPS, MOVIE) },
                                               { ORV_MUX_AC3, makeAc3(SECONDS) } };
    return inputs;
}

static const std::vector<Input>& movieAndLpcm()
{
    static const std::vector<Input> inputs = { { ORV_MUX_VIDEO, makeVideo(GROUPS, MOVIE) },
                                               { ORV_MUX_LPCM, makeLpcm(SECONDS) } };
    return inputs;
}

static const std::vector<Input>& movieAndAnyAc3()
{
    static const std::vector<Input> inputs = { { ORV_MUX_VIDEO, makeVideo(GROUPS, MOVIE) },
                                               { ORV_MUX_AC3_ANY, makeAc3(SECONDS) } };
    return inputs;
}

// 40 minutes, so that what grows with the length of a movie is seen.
static const std::vector<Input>& longAndThin()
{
    static const std::vector<Input> inputs = { { ORV_MUX_VIDEO, makeVideo(100 * GROUPS, THIN) } };
    return inputs;
}

BENCHMARK_CAPTURE(copy, once_movie_and_ac3, movieAndAc3(), 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(copy, twice_movie_and_ac3, movieAndAc3(), 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(multiplex, movie_and_ac3, movieAndAc3())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(multiplex, movie_and_ac3_in_any_chunks, movieAndAnyAc3())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(multiplex, movie_and_lpcm, movieAndLpcm())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(copy, once_long_and_thin, longAndThin(), 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(multiplex, long_and_thin, longAndThin())->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
