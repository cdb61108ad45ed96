// Samples go into an AOB and come back, read by code that knows the published layout alone.
#include "tests/audio/aob_rig.h"
#include "tests/support/aob_reader.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

struct Format {
    uint64_t channels, assignment, bits;
};
constexpr Format FORMATS[] = { { 2, 1, 16 },  { 2, 1, 24 },  { 4, 3, 16 },  { 4, 3, 24 },
                               { 5, 19, 16 }, { 5, 19, 24 }, { 6, 20, 16 }, { 6, 20, 24 } };
constexpr uint64_t RATES[] = { 44100, 48000, 88200, 96000, 176400, 192000 };

// Samples of a channel that fill the packs of one kind.
uint64_t firstSamples(const Format& format)
{
    return aobRow(format.channels, format.bits)->firstPayload / (format.channels * format.bits / 8);
}
uint64_t nextSamples(const Format& format)
{
    return aobRow(format.channels, format.bits)->nextPayload / (format.channels * format.bits / 8);
}

// Whether a decoder's buffer of 8192 bytes is fed fast enough by packs at 10.08 Mbit/s: packs until it runs dry,
// 0 if it never does.
uint64_t packsUntilDry(const Format& format, uint64_t rate)
{
    static const std::map<std::pair<uint64_t, uint64_t>, std::array<uint64_t, 4>> DRY = {
        // channels, bits; at 88200, 96000, 176400, 192000 Hz
        { { 2, 16 }, { 0, 0, 0, 0 } }, { { 2, 24 }, { 0, 0, 0, 0 } }, { { 4, 16 }, { 0, 0, 10, 7 } },
        { { 4, 24 }, { 0, 0, 4, 4 } }, { { 5, 16 }, { 0, 0, 4, 4 } }, { { 5, 24 }, { 15, 9, 3, 3 } },
        { { 6, 16 }, { 0, 0, 4, 4 } }, { { 6, 24 }, { 5, 5, 3, 3 } },
    };
    const size_t column = rate == 88200 ? 0 : rate == 96000 ? 1 : rate == 176400 ? 2 : rate == 192000 ? 3 : 4;
    return column == 4 ? 0 : DRY.at({ format.channels, format.bits })[column];
}

// What a reader has to find: the samples, odd ones dropped where a unit has two, and zeros behind them only in a last
// pack without samples.
void expectSound(const AobTrack& track, const AobSound& sound)
{
    EXPECT_EQ(track.channels, sound.track.channelCount);
    EXPECT_EQ(track.assignment, sound.track.assignment);
    EXPECT_EQ(track.bits, sound.track.sampleSize);
    EXPECT_EQ(track.rate, sound.track.sampleRate);
    ASSERT_EQ(track.samples.size(), sound.channels.size());
    const uint64_t times = aobLayout(sound.track.assignment, sound.track.sampleSize)->times;
    const uint64_t kept = sound.channels[0].size() / times * times;
    for (size_t channel = 0; channel < track.samples.size(); channel++) {
        std::vector<int32_t> should = sound.channels[channel];
        should.resize(kept);
        if (track.packs.back().blank) should.resize(track.samples[channel].size());
        EXPECT_TRUE(track.samples[channel] == should) << "channel " << channel;
    }
}

}   // namespace

TEST(AobRoundTrip, EverySampleAtEveryRate)
{
    uint64_t packs = 0;
    for (const Format& format : FORMATS) {
        for (const uint64_t rate : RATES) {
            SCOPED_TRACE(testing::Message() << format.channels << " channels, " << format.bits << " bits, " << rate);
            const uint64_t dry = packsUntilDry(format, rate);
            const uint64_t whole = dry ? dry - 1 : 41;   // packs
            const uint64_t samples = firstSamples(format) + (whole - 1) * nextSamples(format) - 7;
            const AobSound sound = aobSound(format.channels, format.assignment, format.bits, rate, samples);
            const AobRun run = runAob({ sound });
            ASSERT_EQ(run.result, 0u);
            const AobFile file = readAob(run.aob);
            EXPECT_EQ(describeFaults(file), "");
            ASSERT_EQ(file.tracks.size(), 1u);
            EXPECT_EQ(file.tracks[0].packs.size(), whole);
            EXPECT_EQ(run.nfo.at("TRACKINFO_01.TrackBlockSize"), std::to_string(whole));
            expectSound(file.tracks[0], sound);
            packs += whole;
        }
    }
    EXPECT_EQ(packs, 1383u);
}

TEST(AobRoundTrip, WhereTheDecoderRunsDry)
{
    for (const Format& format : FORMATS) {
        for (const uint64_t rate : RATES) {
            SCOPED_TRACE(testing::Message() << format.channels << " channels, " << format.bits << " bits, " << rate);
            const AobSound sound = aobSound(format.channels, format.assignment, format.bits, rate, 20000);
            const AobRun run = runAob({ sound });
            const uint64_t dry = packsUntilDry(format, rate);
            EXPECT_EQ(run.result, dry ? 0x84000C1E : 0u);
            if (!dry) continue;
            EXPECT_EQ(run.packs(), dry);
            // What was written by then is sound.
            const AobFile file = readAob(run.aob);
            EXPECT_EQ(describeFaults(file), "");
            ASSERT_EQ(file.tracks.size(), 1u);
            for (size_t channel = 0; channel < format.channels; channel++) {
                std::vector<int32_t> should = sound.channels[channel];
                ASSERT_LT(file.tracks[0].samples[channel].size(), should.size());
                should.resize(file.tracks[0].samples[channel].size());
                EXPECT_EQ(file.tracks[0].samples[channel], should);
            }
        }
    }
}

// Lengths that end on the ends of packs, before and behind them, told in the three ways that a host has.
TEST(AobRoundTrip, LengthsAroundTheEndsOfPacks)
{
    for (const Format& format : FORMATS) {
        const uint64_t first = firstSamples(format), next = nextSamples(format);
        const uint64_t times = aobLayout(format.assignment, format.bits)->times;
        for (const uint64_t packs : { 0u, 1u, 2u, 3u }) {
            const uint64_t edge = packs ? first + (packs - 1) * next : 0;
            for (const int64_t off : { -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5 }) {
                if (int64_t(edge) + off < 0) continue;
                const uint64_t samples = uint64_t(int64_t(edge) + off);
                for (const TrackEnd end : { TrackEnd::WITH_LAST, TrackEnd::BEHIND, TrackEnd::SHORT }) {
                    SCOPED_TRACE(testing::Message() << format.channels << " channels, " << format.bits << " bits, "
                                                    << samples << " samples, end " << int(end));
                    const AobSound sound =
                        aobSound(format.channels, format.assignment, format.bits, 44100, samples, end);
                    const AobRun run = runAob({ sound });
                    ASSERT_EQ(run.result, 0u);
                    const AobFile file = readAob(run.aob);
                    EXPECT_EQ(describeFaults(file), "");
                    ASSERT_EQ(file.tracks.size(), 1u);
                    expectSound(file.tracks[0], sound);
                    // An end on a pack's end that comes one call later costs a pack of headers; so does a lone sample
                    // of a unit of two.
                    const bool behind = off > 0 || (off == 0 && (end != TrackEnd::WITH_LAST || packs == 0));
                    EXPECT_EQ(file.tracks[0].packs.size(), packs + behind);
                    const bool blank = (off == 0 && behind) || (off == 1 && times == 2);
                    EXPECT_EQ(file.tracks[0].packs.back().blank, blank);
                }
            }
        }
    }
}

// Bits and channels may change from track to track, and rates whose frames last as long: the decoder's time is counted
// in frames of the track at hand.
TEST(AobRoundTrip, TracksOfOtherFormats)
{
    for (const std::vector<uint64_t>& rates : { std::vector<uint64_t>{ 44100, 88200 }, { 48000, 96000 } }) {
        std::vector<AobSound> sounds;
        for (const Format& format : FORMATS) {
            for (const uint64_t rate : rates) {
                if (packsUntilDry(format, rate)) continue;
                const uint64_t samples = 3 + 397 * (sounds.size() % 5);
                sounds.push_back(aobSound(format.channels, format.assignment, format.bits, rate, samples,
                                          sounds.size() % 2 ? TrackEnd::WITH_LAST : TrackEnd::SHORT));
            }
        }
        ASSERT_EQ(sounds.size(), 14u);
        const AobRun run = runAob(sounds);
        ASSERT_EQ(run.result, 0u);
        const AobFile file = readAob(run.aob);
        EXPECT_EQ(describeFaults(file), "");
        ASSERT_EQ(file.tracks.size(), sounds.size());
        EXPECT_EQ(run.nfo.size(), 2 * sounds.size());
        for (size_t i = 0; i < sounds.size(); i++) {
            SCOPED_TRACE(i);
            expectSound(file.tracks[i], sounds[i]);
            const std::string section = "TRACKINFO_" + std::string(i < 9 ? "0" : "") + std::to_string(i + 1);
            EXPECT_EQ(run.nfo.at(section + ".TrackBlockSize"), std::to_string(file.tracks[i].packs.size()));
            EXPECT_EQ(run.nfo.at(section + ".TrackFirstCellPts"), std::to_string(file.tracks[i].packs[0].pts));
        }
    }
}

// A pack goes out before its first frame is due, but not earlier than the decoder's buffer of 8192 bytes lasts.
TEST(AobRoundTrip, ClockOfALongTrack)
{
    for (const Format& format : FORMATS) {
        SCOPED_TRACE(testing::Message() << format.channels << " channels, " << format.bits << " bits");
        const AobRun run = runAob({ aobSound(format.channels, format.assignment, format.bits, 48000, 48000),
                                    aobSound(format.channels, format.assignment, format.bits, 48000, 4800) });
        ASSERT_EQ(run.result, 0u);
        const AobFile file = readAob(run.aob);
        EXPECT_EQ(describeFaults(file), "");
        ASSERT_EQ(file.tracks.size(), 2u);
        const uint64_t bytesPerSecond = format.channels * format.bits / 8 * 48000;
        uint64_t last = 0;
        for (const AobTrack& track : file.tracks) {
            for (const AobPack& pack : track.packs) {
                ASSERT_GE(pack.scr, last);
                ASSERT_LE(pack.scr, pack.pts);
                ASSERT_LE(pack.pts - pack.scr, 8192 * 90000 / bytesPerSecond + 75);
                last = pack.scr;
            }
        }
        // 48000 + 4800 samples last 99000 ticks.
        EXPECT_GT(last, 99000 - 8192 * 90000 / bytesPerSecond - 75);
    }
}

// The reader itself sees faults: each of these bytes of a sound file is one.
TEST(AobRoundTrip, ReaderSeesFaults)
{
    const AobRun run = runAob({ aobSound(4, 3, 24, 48000, 400), aobSound(2, 1, 16, 48000, 700) });
    ASSERT_EQ(describeFaults(readAob(run.aob)), "");
    ASSERT_EQ(run.packs(), 5u);
    uint64_t seen = 0;
    for (const uint64_t pack : { 0u, 1u, 2u, 3u, 4u }) {
        const bool first = pack == 0 || pack == 3, four = pack < 3;
        const uint64_t header = first ? (four ? 63 : 64) : (four ? 42 : 48);
        for (uint64_t at = 0; at < header; at++) {
            if (at >= 4 && at < 10) continue;   // of the clock only the marker bits are known
            Bytes faulty = run.aob;
            faulty[pack * PACK_BYTES + at] ^= 0x40;
            EXPECT_FALSE(readAob(faulty).faults.empty()) << pack << " at " << at;
            seen++;
        }
    }
    EXPECT_EQ(seen, 63u + 42 + 42 + 64 + 48 - 5 * 6);
    for (const uint64_t at : { 2031u, 2036u, 2037u, 2047u }) {   // padding packet
        Bytes faulty = run.aob;
        faulty[at] ^= 1;
        EXPECT_FALSE(readAob(faulty).faults.empty()) << at;
    }
}
