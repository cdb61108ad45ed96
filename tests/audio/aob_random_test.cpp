// The engine against the model of both drivers: seeded tracks, hosts and files; every byte, code and call.
#include "tests/audio/aob_model.h"
#include "tests/audio/wave_rig.h"
#include "tests/support/aob_reader.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

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

// Mostly tracks that packs can carry.
ModelTrack randomTrack(Dice& dice)
{
    static const ModelTrack FORMATS[] = { { 2, 1, 16, 0 },  { 2, 1, 24, 0 },  { 4, 3, 16, 0 },  { 4, 3, 24, 0 },
                                          { 5, 19, 16, 0 }, { 5, 19, 24, 0 }, { 6, 20, 16, 0 }, { 6, 20, 24, 0 } };
    ModelTrack track = FORMATS[dice.below(8)];
    track.rate = dice.oneIn(4) ? dice.from({ 88200, 96000, 176400, 192000 }) : dice.from({ 44100, 48000, 96000 });
    if (dice.oneIn(25)) track.assignment = dice.below(24);
    // A unit never needs more channels than there are.
    const AobLayout* const layout = aobLayout(track.assignment, track.bits);
    if (layout && layout->channels > track.channels) track.assignment = 1;
    if (dice.oneIn(60)) track.bits = dice.from({ 8, 20, 32 });
    if (dice.oneIn(60)) track.rate = dice.from({ 0, 22050, 47999 });
    if (dice.oneIn(60)) track.channels = dice.from({ 0, 1, 3, 7 });
    return track;
}

// A host that draws its answers: most give all that is asked for, until the track has had its packs.
SampleHost randomHost(uint32_t seed, const std::vector<ModelTrack>& tracks, uint64_t calls)
{
    Dice dice = { std::mt19937(seed) };
    uint64_t left = calls;
    return [dice, left, tracks, calls](const SampleCall& call) mutable {
        SampleAnswer answer = { ORV_AOB_MORE, call.asked };
        if (left == 0 || dice.oneIn(3 * calls)) {
            answer.result = dice.oneIn(3) ? uint64_t(ORV_AOB_MORE) : uint64_t(ORV_AOB_END);
            answer.count = dice.oneIn(3) ? 0 : dice.oneIn(4) ? call.asked : dice.below(call.asked + 1);
            left = calls;
        } else {
            left--;
        }
        if (dice.oneIn(400)) answer.result = dice.from({ 1, 2, 4, 99, 0x8400040A, 0xFFFFFFFF00000009 });
        if (dice.oneIn(400)) answer.count = dice.from({ call.asked + 1, call.asked + 1000, ~uint64_t(0) });
        if (answer.count > call.asked) return answer;
        answer.bytes.resize(answer.count * tracks.at(call.track).bits / 8);
        for (uint8_t& byte : answer.bytes) byte = uint8_t(dice.source());
        return answer;
    };
}

void compareMuxer(uint32_t seed, std::map<uint64_t, uint64_t>& results)
{
    Dice dice = { std::mt19937(seed) };
    std::vector<ModelTrack> tracks(1 + dice.below(5));
    for (ModelTrack& track : tracks) track = randomTrack(dice);
    const uint64_t calls = dice.oneIn(6) ? 300 : 1 + dice.below(60);
    std::vector<AobTrackDesc> records;
    for (const ModelTrack& track : tracks)
        records.push_back(aobTrack(track.channels, track.assignment, track.bits, track.rate));

    const AobRun is = runAob(records, randomHost(seed, tracks, calls));
    const ModelRun should = modelMuxer(tracks, randomHost(seed, tracks, calls));
    EXPECT_EQ(is.result, should.result);
    EXPECT_EQ(firstDifference(is.aob, should.aob), "");
    EXPECT_EQ(is.calls, should.calls);
    EXPECT_EQ(is.nfo, should.nfo);
    results[is.result]++;
    results[~uint64_t(0)] += is.packs();

    const AobFile file = readAob(is.aob);
    for (const ModelTrack& track : tracks)
        if (!aobLayout(track.assignment, track.bits) ||
            aobLayout(track.assignment, track.bits)->channels != track.channels)
            return;   // the reader takes channels from the assignment
    EXPECT_EQ(describeFaults(file), "");
}

ModelWave randomWave(Dice& dice)
{
    ModelTrack format = randomTrack(dice);
    if (format.channels < 2) format.channels = 2;
    if (format.channels > 6) format.channels = 6;
    if (format.assignment > 20) format.assignment = 1;
    const AobLayout* const layout = aobLayout(format.assignment, format.bits);
    if (layout && layout->channels > format.channels) format.assignment = 1;
    if (format.channels > 2 && format.assignment == 1) format.assignment = 2;   // not a pair of files to be read

    const bool oneFile = format.channels == 2 && !dice.oneIn(3);
    const uint64_t samples = dice.oneIn(2) ? dice.below(300) : dice.below(1500);
    ModelWave wave = { .track = format, .multiFile = oneFile ? 0u : 1u };
    wave.startSample = dice.oneIn(2) ? 0 : dice.below(samples + 1);
    wave.endSample = dice.oneIn(5) ? 0xFFFFFFFF : dice.below(samples + 1);
    const uint64_t trailer = dice.oneIn(3) ? 2 * dice.below(20) : 0;
    const uint64_t extra = dice.from({ 0, 0, 2, 24 }), list = dice.below(40);
    for (uint64_t i = 0; i < (oneFile ? 1 : format.channels); i++) {
        WaveFileSpec recipe = { .samples = pcmBytes(makeChannels(oneFile ? 2 : 1, 24, samples, uint32_t(dice.source())),
                                                    format.bits) };
        recipe.formatExtra.resize(extra);
        if (list > 20) recipe.before.push_back({ "LIST", Bytes(list & ~uint64_t(1), 'x') });
        if (trailer) recipe.behind.push_back({ "LIST", Bytes(trailer, 'y') });
        wave.files.push_back(waveFile(recipe));
        if (dice.oneIn(60)) wave.files.back()[dice.below(48)] ^= 0x20;
    }
    // A change of a size may move the places apart, which tells nothing of which one the sum goes by.
    return wave;
}

void compareWaves(uint32_t seed, std::map<uint64_t, uint64_t>& results)
{
    Dice dice = { std::mt19937(seed) };
    std::vector<ModelWave> waves(1 + dice.below(9));
    for (ModelWave& wave : waves) wave = randomWave(dice);
    const uint64_t atsNumber = 1 + dice.below(99), titleSets = 1 + dice.below(99);
    const uint64_t cancelAt = dice.oneIn(8) ? 1 + dice.below(waves.size()) : 0;
    const WaveRun is = runWaves(waves, { .atsNumber = atsNumber, .titleSets = titleSets, .cancelAt = cancelAt });
    const ModelWaveRun should = modelWaves(waves, atsNumber, titleSets, cancelAt);
    EXPECT_EQ(is.result, should.result);
    EXPECT_EQ(firstDifference(is.aob, should.aob), "");
    EXPECT_EQ(is.tracks, should.tracks);
    EXPECT_EQ(is.progress, should.progress);
    results[is.result]++;
    results[~uint64_t(0)] += is.packs();
}

}   // namespace

TEST(AobRandom, CallbackDriver)
{
    std::map<uint64_t, uint64_t> results;
    for (uint32_t seed = 1; seed <= 400 && !HasFailure(); seed++) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        compareMuxer(seed, results);
    }
    // Each way to end was gone.
    for (const uint64_t result : { uint64_t(0), uint64_t(1001), uint64_t(0x84000C1E), uint64_t(0x84001779),
                                   uint64_t(0x84001781), uint64_t(0x84001786) })
        EXPECT_GE(results[result], 3u) << std::hex << result;
    EXPECT_GE(results[9] + results[99] + results[0x8400040A], 1u);
    EXPECT_GE(results[~uint64_t(0)], 4000u);   // packs
}

TEST(AobRandom, DirectDriver)
{
    std::map<uint64_t, uint64_t> results;
    for (uint32_t seed = 1; seed <= 400 && !HasFailure(); seed++) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        compareWaves(seed, results);
    }
    for (const uint64_t result :
         { uint64_t(0), uint64_t(0x8400040A), uint64_t(0x84001779), uint64_t(0x84001781), uint64_t(0x84001783) })
        EXPECT_GE(results[result], 3u) << std::hex << result;
    EXPECT_GE(results[~uint64_t(0)], 1000u);
}
