// What the AOB multiplexer asks its host for, what it makes of the answers, and tracks that packs do not carry.
#include "base/result.h"
#include "tests/audio/aob_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

static const AobTrackDesc STEREO = aobTrack(2, 1, 16, 48000);

// ---- the callback -----------------------------------------------------------------------------------------------

TEST(AobMuxer, WhatTheCallbackIsAskedFor)
{
    typedef std::vector<SampleCall> Calls;
    EXPECT_EQ(runAob({ aobSound(2, 1, 16, 48000, 1600) }).calls, (Calls{ { 0, 0, 496 },
                                                                         { 0, 1, 496 },
                                                                         { 0, 0, 500 },
                                                                         { 0, 1, 500 },
                                                                         { 0, 0, 500 },
                                                                         { 0, 1, 500 },
                                                                         { 0, 0, 500 },
                                                                         { 0, 1, 104 } }));
    EXPECT_EQ(runAob({ aobSound(6, 20, 24, 48000, 100), aobSound(5, 19, 16, 48000, 300) }).calls,
              (Calls{ { 0, 0, 110 },
                      { 0, 1, 100 },
                      { 0, 2, 100 },
                      { 0, 3, 100 },
                      { 0, 4, 100 },
                      { 0, 5, 100 },
                      { 1, 0, 198 },
                      { 1, 1, 198 },
                      { 1, 2, 198 },
                      { 1, 3, 198 },
                      { 1, 4, 198 },
                      { 1, 0, 200 },
                      { 1, 1, 102 },
                      { 1, 2, 102 },
                      { 1, 3, 102 },
                      { 1, 4, 102 } }));
    static const struct {
        uint64_t channels, assignment, bits, first, next;
    } ROOM[] = {
        { 2, 1, 16, 496, 500 },  { 2, 1, 24, 330, 334 },  { 4, 3, 16, 248, 250 },  { 4, 3, 24, 164, 166 },
        { 5, 19, 16, 198, 200 }, { 5, 19, 24, 132, 132 }, { 6, 20, 16, 164, 166 }, { 6, 20, 24, 110, 110 },
    };
    for (const auto& each : ROOM) {
        const AobRun run = runAob({ aobSound(each.channels, each.assignment, each.bits, 44100, each.first + 1) });
        ASSERT_EQ(run.calls.size(), 2 * each.channels);
        EXPECT_EQ(run.calls[0], (SampleCall{ 0, 0, each.first }));
        EXPECT_EQ(run.calls[each.channels], (SampleCall{ 0, 0, each.next }));
    }
}

TEST(AobMuxer, UserValueIsPassedOn)
{
    const TempDir folder;
    static uint64_t seen;
    seen = 0;
    const auto note = [](uint64_t, uint8_t*, uint64_t, uint64_t, uint64_t* outCount, uint64_t user) -> uint64_t {
        seen = user;
        *outCount = 0;
        return ORV_AOB_END;
    };
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxer(folder.root.string().c_str(), 1, 1, &STEREO, note, 0xFEDCBA9876543210, &muxer), 0u);
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(seen, 0xFEDCBA9876543210u);
}

namespace {

// Each pack in full, but for one call that is answered otherwise.
struct Exception {
    uint64_t pack, channel;
    SampleAnswer answer;
};

AobRun runWith(const AobTrackDesc& track, const Exception& exception)
{
    std::vector<uint64_t> packs(6);
    return runAob({ track }, [&](const SampleCall& call) {
        const uint64_t pack = packs.at(call.channel)++;
        if (pack > exception.pack + 3) return SampleAnswer{ ORV_AOB_END };   // should never be reached
        if (pack == exception.pack && call.channel == exception.channel) return exception.answer;
        const Bytes bytes(call.asked * track.sampleSize / 8, uint8_t(0x10 + call.channel));
        return SampleAnswer{ ORV_AOB_MORE, call.asked, bytes };
    });
}

}   // namespace

TEST(AobMuxer, MoreThanAskedFor)
{
    for (const uint64_t channel : { 0u, 1u, 4u, 5u }) {
        for (const uint64_t pack : { 0u, 1u, 3u }) {
            for (const uint64_t result : { uint64_t(ORV_AOB_MORE), uint64_t(ORV_AOB_END) }) {
                for (const uint64_t count : { pack ? uint64_t(167) : uint64_t(165), uint64_t(1) << 32, ~uint64_t(0) }) {
                    const AobRun run = runWith(aobTrack(6, 20, 16, 48000), { pack, channel, { result, count } });
                    EXPECT_EQ(run.result, 1001u) << channel << ' ' << pack << ' ' << count;
                    EXPECT_EQ(run.packs(), pack);
                    EXPECT_EQ(run.calls.size(), pack * 6 + channel + 1);
                    EXPECT_TRUE(run.nfo.empty());
                }
            }
        }
    }
    // Against what the channel before gave, not against the pack's room.
    const AobTrackDesc track = aobTrack(2, 1, 16, 48000);
    const AobRun run = runAob({ track }, [](const SampleCall& call) {
        return call.channel == 0 ? SampleAnswer{ ORV_AOB_MORE, 10, Bytes(20) } : SampleAnswer{ ORV_AOB_END, 11 };
    });
    EXPECT_EQ(run.result, 1001u);
    EXPECT_EQ(run.packs(), 0u);
}

TEST(AobMuxer, AbortValueIsCutTo32Bits)
{
    static const struct {
        uint64_t value, result;
    } CASES[] = {
        { 1, 1 },
        { 2, 2 },
        { 4, 4 },
        { 0x8400040A, 0x8400040A },
        { 0xFFFFFFFF, 0xFFFFFFFF },
        { 0x100000005, 5 },
        { 0xFFFFFFFF00000007, 7 },
        { 0xFFFFFFFFFFFFFFFD, 0xFFFFFFFD },
    };
    for (const auto& each : CASES) {
        for (const uint64_t channel : { 0u, 1u }) {
            const AobRun run = runWith(STEREO, { 2, channel, { each.value } });
            EXPECT_EQ(run.result, each.result) << each.value;
            EXPECT_EQ(run.packs(), 2u);
            EXPECT_EQ(run.calls.size(), 4 + channel + 1);
            EXPECT_TRUE(run.nfo.empty());
        }
    }
}

// Result 3 from any channel ends the track, with all that the pack got.
TEST(AobMuxer, AnyChannelEndsTheTrack)
{
    for (uint64_t channel = 0; channel < 4; channel++) {
        const Bytes bytes(500, uint8_t(0x10 + channel));
        const AobRun run = runWith(aobTrack(4, 3, 16, 48000), { 1, channel, { ORV_AOB_END, 250, bytes } });
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(run.packs(), 2u);
        EXPECT_EQ(run.calls.size(), 8u);
        EXPECT_EQ(run.hexAt(1, 13, 7), "F8 00 00 01 BD 07 EC");
        EXPECT_EQ(run.hexAt(1, 48, 16), "12 12 13 13 12 12 13 13 10 10 11 11 10 10 11 11");
        EXPECT_EQ(run.hexAt(1, 2032, 16), "12 12 13 13 12 12 13 13 10 10 11 11 10 10 11 11");
    }
}

// The last channel's count is the pack's; the samples that the others gave above it are gone.
TEST(AobMuxer, ShorterChannelSetsTheCount)
{
    for (uint64_t channel = 0; channel < 4; channel++) {
        const Bytes bytes(80, uint8_t(0x10 + channel));
        const AobRun run = runWith(aobTrack(4, 3, 16, 48000), { 1, channel, { ORV_AOB_MORE, 40, bytes } });
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(run.packs(), 2u);
        ASSERT_EQ(run.calls.size(), 8u);
        for (uint64_t other = 0; other < 4; other++)
            EXPECT_EQ(run.calls[4 + other], (SampleCall{ 0, other, other > channel ? 40u : 250u }));
        // 20 units of 16 bytes: 320 behind 48 of headers, a gap of 1680
        EXPECT_EQ(run.hexAt(1, 14, 6), "00 00 01 BD 01 5C");
        EXPECT_EQ(run.hexAt(1, 48, 16), "12 12 13 13 12 12 13 13 10 10 11 11 10 10 11 11");
        EXPECT_EQ(run.hexAt(1, 352, 16), "12 12 13 13 12 12 13 13 10 10 11 11 10 10 11 11");
        EXPECT_EQ(run.hexAt(1, 368, 7), "00 00 01 BE 06 8A FF");
    }
    // A channel that has nothing leaves the pack empty.
    const AobRun run = runWith(STEREO, { 1, 1, { ORV_AOB_MORE, 0 } });
    EXPECT_EQ(run.packs(), 2u);
    EXPECT_EQ(run.hexAt(1, 14, 6), "00 00 01 BD 07 EC");
    EXPECT_EQ(run.hexAt(1, 48, 8), "00 00 00 00 00 00 00 00");
}

// A callback that leaves the count alone gave nothing.
TEST(AobMuxer, CountThatIsNotSet)
{
    const TempDir folder;
    const auto silent = [](uint64_t, uint8_t*, uint64_t, uint64_t, uint64_t*, uint64_t) -> uint64_t {
        return ORV_AOB_MORE;
    };
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxer(folder.root.string().c_str(), 1, 1, &STEREO, silent, 0, &muxer), 0u);
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(readFile(folder / u"ATS_01_1.AOB").size(), PACK_BYTES);
}

// ---- tracks that packs do not carry -----------------------------------------------------------------------------

TEST(AobMuxer, CodesOfBadTracks)
{
    constexpr uint64_t RATE = 0x84001779, SIZE = 0x84001781, ASSIGNMENT = 0x84001786;
    static const struct {
        uint64_t channels, assignment, bits, rate, result;
    } CASES[] = {
        { 2, 21, 16, 48000, ASSIGNMENT },
        { 2, 0xFFFFFFFF, 16, 48000, ASSIGNMENT },
        { 2, 33, 16, 48000, ASSIGNMENT },   // 1 in the five bits that a pack stores
        { 2, 1, 16, 0, RATE },
        { 2, 1, 16, 32000, RATE },
        { 2, 1, 16, 48001, RATE },
        { 2, 1, 16, 384000, RATE },
        { 2, 1, 20, 48000, SIZE },
        { 2, 1, 0, 48000, SIZE },
        { 2, 1, 8, 48000, SIZE },
        { 2, 1, 32, 48000, SIZE },
        { 4, 3, 20, 48000, SIZE },
        { 5, 19, 20, 48000, SIZE },
        { 6, 20, 20, 48000, SIZE },
        { 0, 1, 16, 48000, SIZE },
        { 1, 0, 16, 48000, SIZE },   // mono
        { 1, 0, 24, 48000, SIZE },
        { 3, 2, 16, 48000, SIZE },
        { 3, 2, 24, 48000, SIZE },
        { 7, 20, 16, 48000, SIZE },
        { 0x80000002, 1, 16, 48000, SIZE },
        { 3, 21, 20, 1, ASSIGNMENT },   // of several faults
        { 2, 21, 16, 1, ASSIGNMENT },
        { 2, 21, 20, 48000, ASSIGNMENT },
        { 3, 1, 20, 1, RATE },
        { 2, 1, 20, 47999, RATE },
    };
    for (const auto& each : CASES) {
        SCOPED_TRACE(testing::Message() << each.channels << ' ' << each.assignment << ' ' << each.bits << ' '
                                        << each.rate);
        const AobRun run = runAob({ aobTrack(each.channels, each.assignment, each.bits, each.rate) },
                                  [](const SampleCall&) { return SampleAnswer{ ORV_AOB_END }; });
        EXPECT_EQ(run.result, each.result);
        EXPECT_EQ(run.aob, Bytes());
        EXPECT_TRUE(run.calls.empty());
        EXPECT_TRUE(run.nfo.empty());
    }
    EXPECT_EQ(RATE, ORV_WRONG_SAMPLE_RATE);
    EXPECT_EQ(SIZE, ORV_SAMPLE_SIZE_20_UNSUPPORTED);
    EXPECT_EQ(ASSIGNMENT, ORV_INVALID_ASSIGNMENT);
}

// Of the 21 assignments packs know four. The others ask for samples, and end with a pack of headers.
TEST(AobMuxer, AssignmentsWithoutUnits)
{
    for (uint32_t assignment = 0; assignment <= 20; assignment++) {
        if (assignment == 1 || assignment == 3 || assignment == 19 || assignment == 20) continue;
        for (const uint64_t channels : { 2u, 4u, 5u, 6u }) {
            AobTrackDesc track = aobTrack(channels, assignment, 24, 96000);
            uint64_t calls = 0;
            const AobRun run = runAob({ track, STEREO }, [&](const SampleCall& call) {
                if (++calls > 20) return SampleAnswer{ 99 };
                return SampleAnswer{ ORV_AOB_MORE, call.track ? 0 : call.asked,
                                     Bytes(call.track ? 0 : call.asked * 3, 0x77) };
            });
            SCOPED_TRACE(testing::Message() << assignment << ", " << channels << " channels");
            EXPECT_EQ(run.result, 0u);
            EXPECT_EQ(run.packs(), 2u);
            EXPECT_EQ(calls, channels + 2);
            const uint64_t header = channels == 4 ? 63 : 68;
            EXPECT_EQ(run.hexAt(0, 36, 2), channels == 4 ? "07 C9" : "07 DA");
            EXPECT_EQ(run.hexAt(0, 49 + 7, 4),
                      (assignment < 2 ? "2F 1F 00 " : "22 11 00 ") + toHex({ uint8_t(assignment) }));
            EXPECT_EQ(run.hexAt(0, header, PACK_BYTES - header), toHex(Bytes(PACK_BYTES - header)));
            EXPECT_EQ(run.hexAt(1, 41, 5), "21 00 01 00 01");   // no sample went before the next track
            EXPECT_EQ(run.nfo.at("TRACKINFO_01.TrackBlockSize"), "1");
        }
    }
}

// The room in a pack goes by the channels that are told, the units by the assignment. Where the two differ, nothing
// is read or written past the channels' buffers, and a pack that is not filled ends its track.
TEST(AobMuxer, ChannelsThatDoNotMatch)
{
    for (const uint64_t channels : { 2u, 4u, 5u, 6u }) {
        for (const uint64_t assignment : { 1u, 3u, 19u, 20u }) {
            for (const uint64_t bits : { 16u, 24u }) {
                SCOPED_TRACE(testing::Message() << channels << " for " << assignment << ", " << bits << " bits");
                uint64_t calls = 0;
                const AobRun run = runAob({ aobTrack(channels, assignment, bits, 48000) }, [&](const SampleCall& call) {
                    const bool over = ++calls > 30;
                    const Bytes bytes(call.asked * bits / 8, uint8_t(0x10 + call.channel));
                    return SampleAnswer{ over ? uint64_t(ORV_AOB_END) : uint64_t(ORV_AOB_MORE), call.asked, bytes };
                });
                EXPECT_EQ(run.result, 0u);
                EXPECT_LE(run.calls.size(), 36u);
                for (const SampleCall& call : run.calls) EXPECT_LT(call.channel, channels);
                ASSERT_GE(run.packs(), 1u);
                const uint64_t stuffing = run.aob[13] & 7;
                EXPECT_EQ(run.hexAt(0, 49 + stuffing + 10, 1), toHex({ uint8_t(assignment) }));
            }
        }
    }
    // 110 samples of two channels are 55 units of 12 bytes, 660 of 1980: a gap of 1320
    const AobRun run = runWith(aobTrack(6, 1, 24, 48000), { 9, 0, {} });
    EXPECT_EQ(run.packs(), 1u);
    EXPECT_EQ(run.calls.size(), 6u);
    EXPECT_EQ(run.hexAt(0, 36, 2), "02 B2");
    EXPECT_EQ(run.hexAt(0, 68, 12), "10 10 11 11 10 10 11 11 10 11 10 11");
    EXPECT_EQ(run.hexAt(0, 728, 7), "00 00 01 BE 05 22 FF");
}
