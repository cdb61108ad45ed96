// The engine against the model of the multiplexer: seeded streams in seeded chunks, every result, callback and byte.
#include "base/result.h"
#include "tests/mux/mux_host.h"
#include "tests/mux/mux_model.h"
#include "tests/mux/mux_rig.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

struct Dice {
    std::mt19937 source;

    uint64_t below(uint64_t limit)
    {
        return source() % limit;
    }
    bool oneIn(uint64_t count)
    {
        return below(count) == 0;
    }
    uint64_t from(const std::vector<uint64_t>& values)
    {
        return values[below(values.size())];
    }
};

// A chunk and how it is handed over.
struct Feed {
    enum Way { PLAIN, TIMED, SEQUENCE } way = PLAIN;
    Bytes chunk;
    uint64_t flags = 0, time = MODEL_NONE;
};

// A stream of both multiplexers, and what is to come.
struct Pair {
    MuxStream* engine = nullptr;
    ModelStream* model = nullptr;
    std::vector<Feed> feeds;
    size_t next = 0;
    bool fromFile = false;
};

std::vector<Bytes> pieces(Dice& dice, const Bytes& bytes)
{
    std::vector<uint64_t> sizes;
    const uint64_t habit = dice.below(4);
    for (uint64_t sum = 0; sum < bytes.size(); sum += sizes.back()) {
        switch (habit) {
        case 0: sizes.push_back(1 + dice.below(300) + (dice.oneIn(8) ? 0 : 4000)); break;
        case 1: sizes.push_back(1 + dice.below(10000)); break;
        case 2: sizes.push_back(30000 + dice.below(60000)); break;
        default: sizes.push_back(dice.oneIn(3) ? 1 + dice.below(20) : 2000 + dice.below(9000));
        }
    }
    return sizes.empty() ? std::vector<Bytes>() : cut(bytes, sizes);
}

std::vector<Feed> plainly(const std::vector<Bytes>& chunks)
{
    std::vector<Feed> feeds;
    for (const Bytes& chunk : chunks) feeds.push_back({ .chunk = chunk });
    return feeds;
}

struct Shape {
    uint64_t ticks = 3600, pictures = 0;   // of the video
    bool rough = false;                    // faults and oddities may occur
};

std::vector<GopSpec> randomGroups(Dice& dice, Shape& shape, bool scanned)
{
    static const char* const TYPES[] = { "IBBPBBPBBPBB", "IPPPPPPPPPPP", "I", "IBBPBB", "IIII",
                                         "IB",           "IBBBBBBBBBBB", "IP" };
    static const char* const ODD[] = { "IDP", "I0BB", "BBP", "PPPB", "ID" };
    const uint64_t rate = dice.oneIn(2) ? RATE_CODE_PAL : RATE_CODE_NTSC;
    shape.ticks = rate == RATE_CODE_PAL ? 3600 : 3003;
    const uint64_t mean = dice.from({ 500, 1800, 2030, 4000, 9000, 15000, 26000, 33000 });
    const uint64_t wanted = std::max<uint64_t>(150000 + dice.below(700000), 20 * mean);
    std::vector<GopSpec> groups;
    for (uint64_t bytes = 0; bytes < wanted;) {
        GopSpec gop;
        gop.types = TYPES[dice.below(std::size(TYPES))];
        if (shape.rough && dice.oneIn(20)) gop.types = ODD[dice.below(std::size(ODD))];
        gop.rateCode = rate;
        gop.bytes.clear();
        for (const char type : gop.types) {
            uint64_t size = 8 + dice.below(2 * mean);
            if (type == 'I') size = 8 + mean + dice.below(2 * mean);
            if (dice.oneIn(12)) size = 8 + dice.below(60);
            gop.bytes.push_back(size);
            bytes += size;
        }
        gop.sequence = groups.empty() || dice.oneIn(2);
        gop.gop = scanned || dice.oneIn(2);
        gop.end = shape.rough && dice.oneIn(30);
        if (shape.rough && !groups.empty() && dice.oneIn(30)) gop.gop = false;
        if (shape.rough && dice.oneIn(40)) gop.rateCode = dice.from({ 1, 2, 5, 8, 0 });
        if (shape.rough && dice.oneIn(30)) gop.temporalRefs = { dice.below(1024), dice.below(1024) };
        shape.pictures += gop.types.size();
        groups.push_back(gop);
    }
    groups.back().end = dice.oneIn(2);
    return groups;
}

std::vector<Feed> videoInUnits(Dice& dice, Shape& shape)
{
    if (shape.rough && dice.oneIn(6)) {
        // Stills, each a sequence of its own.
        std::vector<Feed> feeds;
        const uint64_t count = 5 + dice.below(60), size = 8 + dice.below(30000);
        for (uint64_t i = 0; i < count; ++i) {
            const VideoStream still =
                makeVideo({ { .types = "I", .bytes = { size }, .end = !dice.oneIn(30) } }, uint32_t(i));
            feeds.push_back({ .way = Feed::SEQUENCE, .chunk = still.bytes });
            if (dice.oneIn(2)) feeds.back() = { .chunk = still.bytes, .flags = ORV_MUX_SEQUENCE };
        }
        shape.pictures = count;
        return feeds;
    }
    std::vector<Bytes> chunks;
    for (const Bytes& unit : makeVideo(randomGroups(dice, shape, false), uint32_t(dice.below(1000))).units()) {
        if (unit.size() > 20 && dice.oneIn(10)) {
            const uint64_t first = 9 + dice.below(unit.size() - 9);
            for (const Bytes& piece : cut(unit, { first, 5000 })) chunks.push_back(piece);
        } else {
            chunks.push_back(unit);
        }
    }
    return plainly(chunks);
}

std::vector<Feed> videoInPieces(Dice& dice, Shape& shape)
{
    const VideoStream video = makeVideo(randomGroups(dice, shape, true), uint32_t(dice.below(1000)));
    std::vector<Feed> feeds;
    if (!dice.oneIn(3)) {
        Bytes bytes = video.bytes;
        if (dice.oneIn(4)) {
            const Bytes junk = filler(1 + dice.below(9000));
            bytes.insert(bytes.begin(), junk.begin(), junk.end());
        }
        feeds = plainly(pieces(dice, bytes));
        for (Feed& feed : feeds)
            if (dice.oneIn(5)) feed.way = Feed::TIMED;
        return feeds;
    }
    // Pictures with their times, now and then behind a hole.
    uint64_t late = 0;
    for (size_t i = 0; i < video.pictures.size(); ++i) {
        const VideoPictureAt& picture = video.pictures[i];
        const uint64_t end = i + 1 < video.pictures.size() ? video.pictures[i + 1].unitAt : video.bytes.size();
        size_t first = i;   // picture that opened the group
        while (first > 0 && video.pictures[first - 1].group == picture.group) --first;
        if (dice.oneIn(40)) late += dice.from({ 1, 16, 17, 18, 40, 63, 64, 100 });
        if (dice.oneIn(60)) late = 0;
        feeds.push_back({ .way = Feed::TIMED,
                          .chunk = Bytes(video.bytes.begin() + std::ptrdiff_t(picture.unitAt),
                                         video.bytes.begin() + std::ptrdiff_t(end)),
                          .time = (first + 1 + picture.temporalRef + late) * shape.ticks + dice.below(3) });
        if (dice.oneIn(9)) feeds.back().time = MODEL_NONE;
    }
    return feeds;
}

std::vector<Feed> withTimes(Dice& dice, std::vector<Feed> feeds, uint64_t frameBytes, uint64_t ticks)
{
    if (frameBytes == 0 || !dice.oneIn(2)) return feeds;
    uint64_t bytes = 0, late = 0;
    for (Feed& feed : feeds) {
        if (dice.oneIn(30)) late += dice.from({ 1, 4, 5, 6, 10, 15, 16, 20 });
        feed.way = Feed::TIMED;
        feed.time = (bytes / frameBytes + late) * ticks + dice.below(50);
        if (dice.oneIn(7)) feed.time = MODEL_NONE;
        bytes += feed.chunk.size();
    }
    return feeds;
}

std::vector<Feed> randomAudio(Dice& dice, const Shape& shape, uint64_t flags, Bytes* file)
{
    const uint64_t time = shape.pictures * shape.ticks * dice.from({ 5, 9, 10, 11, 15 }) / 10;
    const uint32_t seed = uint32_t(dice.below(1000));
    std::vector<Feed> feeds;
    if (flags == ORV_MUX_LPCM) {
        const WaveSpec waves[] = {
            {}, { .bits = 24 }, { .channels = 6 }, { .channels = 1 }, { .channels = 1, .bits = 24 }, { .rate = 96000 }
        };
        const WaveSpec wave = waves[dice.below(std::size(waves))];
        if (shape.rough && dice.oneIn(4)) feeds.push_back({ .chunk = waveHeader({ .rate = 44100 }) });
        if (dice.oneIn(2))
            feeds.push_back({ .chunk = waveHeader(wave) });
        else
            feeds.push_back({ .chunk = waveFormat(wave), .flags = ORV_MUX_WAVEFORMAT });
        const uint64_t bytes = time / 150 * (wave.rate / 600 * wave.bits / 8 * wave.channels);
        for (const Feed& feed : plainly(pieces(dice, filler(bytes, seed)))) feeds.push_back(feed);
    } else if (flags == ORV_MUX_MPEG_AUDIO) {
        const uint64_t index = 1 + dice.below(14);
        Bytes bytes = layer2Frames(index, time / 2160, seed);
        if (shape.rough && dice.oneIn(6) && bytes.size() > 4) bytes[dice.below(3)] ^= uint8_t(dice.below(256));
        *file = bytes;
        feeds = withTimes(dice, plainly(pieces(dice, bytes)), layer2FrameBytes(index), 2160);
    } else {
        const uint64_t code = dice.below(38);
        Bytes bytes = ac3Frames(code, time / 2880, seed);
        const bool swapped = flags == ORV_MUX_AC3_ANY ? dice.oneIn(5) : false;
        if (shape.rough && dice.oneIn(6) && bytes.size() > 9000)
            bytes.erase(bytes.begin() + 3000, bytes.begin() + 3000 + std::ptrdiff_t(dice.below(5000)));
        if (shape.rough && dice.oneIn(6) && bytes.size() > 5) bytes[dice.below(5)] = uint8_t(dice.below(70));
        if (swapped) {
            for (uint64_t at = 5; at < bytes.size(); at += ac3FrameBytes(code)) bytes[at] = uint8_t(code);
            bytes = swappedPairs(bytes);
        }
        *file = bytes;
        feeds = plainly(pieces(dice, bytes));
        if (flags == ORV_MUX_AC3_ANY) feeds = withTimes(dice, feeds, ac3FrameBytes(code), 2880);
    }
    if (dice.oneIn(2)) feeds.push_back({ .way = dice.oneIn(2) ? Feed::TIMED : Feed::PLAIN, .chunk = endMark() });
    if (shape.rough && dice.oneIn(8)) feeds.push_back({ .chunk = filler(700) });
    return feeds;
}

struct Race {
    MuxHost engine;
    MuxModel model;
    std::vector<Bytes> modelCalls;
    std::vector<std::unique_ptr<Pair>> pairs;
    TempDir folder;
    uint64_t feeds = 0, packs = 0;
};

void add(Race& race, uint64_t flags, std::vector<Feed> feeds)
{
    auto pair = std::make_unique<Pair>();
    const uint64_t got = AddStream(race.engine.handle, 0, flags, &pair->engine);
    ASSERT_EQ(got, modelAdd(race.model, flags, &pair->model));
    ASSERT_EQ(pair->engine == nullptr, pair->model == nullptr);
    pair->feeds = std::move(feeds);
    if (pair->engine) race.pairs.push_back(std::move(pair));
}

void addFile(Race& race, uint64_t flags, const Bytes& content)
{
    auto pair = std::make_unique<Pair>();
    const std::u16string path = race.folder / (u"audio" + toWide(std::to_string(race.pairs.size())));
    writeFile(path, content);
    const std::basic_string<OrvWChar> wide(path.begin(), path.end());
    ASSERT_EQ(AddFileStream(race.engine.handle, wide.c_str(), flags, &pair->engine), 0u);
    ASSERT_EQ(modelAddFile(race.model, content, flags, &pair->model), 0u);
    pair->fromFile = true;
    pair->feeds.resize(content.size() / 4000 + 10, Feed{ .chunk = { 0 } });
    race.pairs.push_back(std::move(pair));
}

/** Hands a chunk to both. */
void feed(Race& race, Pair& pair, const Feed& feed, uint64_t* result)
{
    MuxHost& host = race.engine;
    uint64_t used = 0xEEEEEEEE;
    uint64_t expected = 0;
    if (feed.way == Feed::SEQUENCE) {
        *result = host.feedSequence(pair.engine, feed.chunk);
        expected = modelVideoSeq(race.model, *pair.model, feed.chunk, &used);
    } else if (feed.way == Feed::TIMED) {
        host.used = used;
        *result = host.feedAt(pair.engine, feed.chunk, feed.time, feed.flags);
        expected = modelDataEx(race.model, *pair.model, feed.chunk, feed.flags, feed.time);
    } else {
        *result = host.feed(pair.engine, feed.chunk, feed.flags);
        expected = modelData(race.model, *pair.model, feed.chunk, &used, feed.flags);
    }
    ASSERT_EQ(*result, expected) << "kind " << pair.model->kind << " chunk " << pair.next << " of "
                                 << feed.chunk.size();
    ASSERT_EQ(host.used, used);
    ASSERT_EQ(pair.engine->bytesIn, pair.model->bytesIn);
}

/** What the callbacks of both have got since the last time. */
void compareCalls(Race& race)
{
    ASSERT_EQ(race.engine.calls.size(), race.modelCalls.size());
    for (size_t i = 0; i < race.modelCalls.size(); ++i) {
        ASSERT_EQ(differences(race.engine.calls[i], race.modelCalls[i]), "") << "call " << i;
        race.packs += race.modelCalls[i].size() / 2048;
    }
    race.engine.calls.clear();
    race.modelCalls.clear();
}

void setUp(Race& race, Dice& dice)
{
    Shape shape;
    shape.rough = dice.oneIn(3);
    const bool scanned = dice.oneIn(2);
    const uint64_t videoFlags = scanned ? ORV_MUX_VIDEO : ORV_MUX_VIDEO_UNITS;
    std::vector<Feed> video = scanned ? videoInPieces(dice, shape) : videoInUnits(dice, shape);
    if (shape.rough && dice.oneIn(12)) {
        // Bytes without a picture; in small pieces both kinds store them.
        video = plainly(dice.oneIn(2) ? pieces(dice, filler(150000 + dice.below(50000)))
                                      : cut(filler(1 + dice.below(2000)), { 1 + dice.below(7) }));
    }
    const uint64_t audios = dice.from({ 0, 1, 1, 1, 2, 3 });
    const bool late = audios == 1 && dice.oneIn(4);
    if (!late) {
        ASSERT_NO_FATAL_FAILURE(add(race, videoFlags, video));
    }
    for (uint64_t i = 0; i < audios; ++i) {
        const uint64_t flags = dice.from({ ORV_MUX_LPCM, ORV_MUX_MPEG_AUDIO, ORV_MUX_AC3, ORV_MUX_AC3_ANY });
        Bytes file;
        const std::vector<Feed> feeds = randomAudio(dice, shape, flags, &file);
        const bool fromFile = (flags == ORV_MUX_MPEG_AUDIO || flags == ORV_MUX_AC3) && dice.oneIn(4);
        if (fromFile) {
            ASSERT_NO_FATAL_FAILURE(
                addFile(race, flags, flags == ORV_MUX_AC3 && dice.oneIn(2) ? swappedPairs(file) : file));
        } else {
            ASSERT_NO_FATAL_FAILURE(add(race, flags, feeds));
        }
    }
    if (late) {
        ASSERT_NO_FATAL_FAILURE(add(race, videoFlags, video));
    }
    if (shape.rough && dice.oneIn(10)) {
        ASSERT_NO_FATAL_FAILURE(add(race, ORV_MUX_SUBPICTURE, {}));
    }
    const uint64_t refused = dice.oneIn(10) ? 1 + dice.below(4) : 0;
    auto seen = std::make_shared<std::pair<uint64_t, uint64_t>>();
    race.engine.onWrite = [=](const Bytes&) { return ++seen->first == refused ? 0x1234u : 0u; };
    race.model.write = [=, &race](const Bytes& sectors) {
        race.modelCalls.push_back(sectors);
        return ++seen->second == refused ? 0x1234u : 0u;
    };
}

/** The stream that is least far, most of the time. */
Pair* pickNext(Race& race, Dice& dice, bool evenly)
{
    std::vector<Pair*> open;
    for (const auto& pair : race.pairs)
        if (pair->next < pair->feeds.size()) open.push_back(pair.get());
    if (open.empty()) return nullptr;
    if (!evenly && dice.oneIn(2)) return open[dice.below(open.size())];
    return *std::min_element(open.begin(), open.end(), [](const Pair* a, const Pair* b) {
        return a->next * b->feeds.size() < b->next * a->feeds.size();
    });
}

void race(uint64_t seed, std::vector<uint64_t>* results, uint64_t* packs)
{
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice{ std::mt19937(uint32_t(seed)) };
    Race race;
    ASSERT_NO_FATAL_FAILURE(setUp(race, dice));
    const bool evenly = !dice.oneIn(5);
    uint64_t faults = 0;
    while (Pair* pair = pickNext(race, dice, evenly)) {
        uint64_t result = 0;
        ASSERT_NO_FATAL_FAILURE(feed(race, *pair, pair->feeds[pair->next++], &result));
        ASSERT_NO_FATAL_FAILURE(compareCalls(race));
        results->push_back(result);
        if (result != 0 && ++faults == 4) break;
    }
    const uint64_t result = race.engine.exit();
    ASSERT_EQ(result, modelExit(race.model));
    ASSERT_NO_FATAL_FAILURE(compareCalls(race));
    results->push_back(result);
    *packs += race.packs;
}

TEST(MuxRandom, EngineAndModelAgree)
{
    std::vector<uint64_t> results;
    uint64_t packs = 0;
    for (uint64_t seed = 1; seed <= 300; ++seed) {
        ASSERT_NO_FATAL_FAILURE(race(seed, &results, &packs));
    }
    // The seeds are worth their time: whole streams, and each fault that a host can meet.
    const auto met = [&results](uint64_t result) { return std::count(results.begin(), results.end(), result); };
    EXPECT_GT(packs, 50000u);
    EXPECT_GT(met(0), 10000);
    for (const uint64_t result : { ORV_MUX_UNDERRUN, ORV_MUX_OVERFLOW, ORV_AUDIO_RATE_NOT_DVD, ORV_UNKNOWN_STREAM,
                                   uint64_t(0x84000C1B), uint64_t(0x1234) })
        EXPECT_GT(met(result), 0) << std::hex << result;
}

}   // namespace
