// The scheduler where it can not go on: units that come late, pictures without a plan, refused output, units too large.
#include "base/result.h"
#include "mux/scheduler.h"
#include "tests/mux/mux_host.h"
#include "tests/mux/mux_rig.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

namespace {

TEST(Scheduler, UnitThatIsNotThereInTime)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    // A picture larger than the model's buffer can never be in it.
    const VideoStream video =
        makeVideo({ { .types = "IPPP", .bytes = { 20000, 20000, 20000, 240000 } }, { .bytes = { 15000 } } });
    uint64_t result = 0;
    for (const Bytes& unit : video.units())
        if ((result = host.feed(stream, unit)) != 0) break;
    EXPECT_EQ(result, 0x84000BC0u);   // 3008
    EXPECT_EQ(host.calls.size(), 0u);
    // The third begins at 40020: a delay of 24 x 43886 / 300 = 3510. The fourth is due at 14310, in pack 98.
    EXPECT_EQ(host.handle->outPending, 98u);
    EXPECT_EQ(stream->unitsDecoded, 3u);
}

TEST(Scheduler, UnitIsDueAtTheVeryTick)
{
    // Pack 7 is made at 7 x 146.2857 = 1024. Packs 1 to 6 have 2012 + 5 x 2025 = 12137 bytes.
    for (const uint64_t bytes : { 12137u, 12138u }) {
        MuxHost host;
        MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
        host.handle->started = 1;
        host.handle->videoDelay = 1024;
        host.handle->audioDelay = 4624;
        const VideoStream video = makeVideo({ { .types = "IPPP", .bytes = { bytes - 20, 3000, 3000, 150000 } } });
        uint64_t result = 0;
        for (const Bytes& unit : video.units())
            if (result == 0) result = host.feed(stream, unit);
        EXPECT_EQ(result, bytes == 12137 ? 0u : 0x84000BC0u);
        EXPECT_EQ(host.handle->packCount == 7, bytes == 12138);
    }
}

TEST(Scheduler, UnitThatIsNotThereOnceEnded)
{
    // The third picture is due at 7200 + 877, in pack 55. There is no more to wait for: no underrun, all goes out. 2012
    // bytes, 2015 with the start of the second picture, 199993 in packs of 2025.
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    feedUnits(host, stream, makeVideo({ { .types = "IPP", .bytes = { 2000, 2000, 200000 } } }));
    ASSERT_EQ(host.exit(), 0u);
    EXPECT_EQ(packLetters(host), "N" + std::string(101, 'v'));
}

TEST(Scheduler, PassesThatPackNothing)
{
    // Bytes that belong to no picture. The first pass leaps to 14400, each later one a frame on: 4096 passes and no
    // more.
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    ASSERT_EQ(host.feed(stream, filler(10)), 0u);
    EXPECT_EQ(host.exit(), 0x84000BC0u);
    EXPECT_EQ(host.handle->clock, (14400 + 3600 * 4096) * uint64_t(3000000) + 438857143);
    EXPECT_EQ(host.handle->packCount, 0u);
}

TEST(Scheduler, PictureThatCanNotBePacked)
{
    // A coding type without a plan: time goes on, and no byte is packed. The call ends.
    for (const uint64_t flags : { 0x08u, 0x400u }) {
        MuxHost host;
        MuxStream* stream = host.add(flags);
        const VideoStream video = makeVideo({ { .types = "DP", .bytes = { 3000, 150000 } } });
        uint64_t result = 0;
        for (const Bytes& chunk : flags == 0x08 ? video.units() : cut(video.bytes, { 5000 }))
            if (result == 0) result = host.feed(stream, chunk);
        EXPECT_EQ(result, 0x84000BC0u) << flags;
        EXPECT_EQ(stream->bytesPacked, 0u) << flags;
        EXPECT_EQ(host.handle->packCount, 1u) << flags;
        EXPECT_EQ(host.handle->navJustWritten, 1u) << flags;
    }
}

TEST(Scheduler, OutputThatIsRefused)
{
    MuxHost host;
    uint64_t calls = 0;
    host.onWrite = [&calls](const Bytes&) { return ++calls == 2 ? 0x1122334455u : 0u; };
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    uint64_t failures = 0;
    for (const Bytes& unit : makeVideo(gops(6)).units()) {
        const uint64_t result = host.feed(stream, unit);
        if (result == 0) continue;
        EXPECT_EQ(result, 0x1122334455u);
        ++failures;
        EXPECT_EQ(host.handle->outPending * PACK_BYTES, host.calls[1].size());   // they stay
    }
    EXPECT_EQ(failures, 1u);
    ASSERT_EQ(host.exit(), 0u);
    // The run has gone on without a navigation pack: the third call has the second's packs and those of a unit more.
    ASSERT_EQ(host.calls.size(), 6u);
    EXPECT_GT(host.calls[2].size(), host.calls[1].size());
    const Bytes again = part(host.calls[2], PACK_BYTES, host.calls[1].size() - PACK_BYTES);
    EXPECT_EQ(differences(again, part(host.calls[1], PACK_BYTES, host.calls[1].size())), "");
    EXPECT_FALSE(isNavPack(part(host.calls[2], host.calls[1].size(), PACK_BYTES)));
    // It is that of the third unit: its first sector is numbered as if it had been written.
    EXPECT_EQ(numberAt(host.calls[2], 45, 4), (host.calls[0].size() + host.calls[1].size()) / PACK_BYTES);
}

TEST(Scheduler, NoCallback)
{
    MuxContext* handle = nullptr;
    ASSERT_EQ(InitMuxer(&handle, nullptr, 0), 0u);
    MuxStream* stream = nullptr;
    ASSERT_EQ(AddStream(handle, 0, ORV_MUX_VIDEO_UNITS, &stream), 0u);
    for (const Bytes& unit : makeVideo(gops(5)).units())
        EXPECT_EQ(MuxData(handle, stream, unit.data(), unit.size(), nullptr, 0), 0u);
    EXPECT_GT(handle->sectorsWritten, 100u);   // as if somebody had taken them
    EXPECT_EQ(ExitMuxer(handle), 0u);
}

/** A single group that never ends, until it is refused. */
uint64_t feedOneGroup(MuxHost& host, MuxStream* stream, uint64_t bytes)
{
    uint64_t result = host.feed(stream, sequenceHeader());
    for (uint64_t fed = 0; fed < bytes && result == 0; fed += 16000)
        result = host.feed(stream, videoPicture(16000, fed / 16000, fed == 0 ? 'I' : 'P'));
    return result;
}

TEST(Scheduler, UnitThatOutgrowsTheBuffer)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    EXPECT_EQ(feedOneGroup(host, stream, 4000000), 0x84000BC9u);   // 3017
    EXPECT_EQ(host.handle->outPending, 1024u);
    EXPECT_EQ(host.handle->packCount, 1024u);
    EXPECT_EQ(host.calls.size(), 0u);
    EXPECT_EQ(host.feed(stream, videoPicture(100, 0, 'P')), 0x84000BC9u);   // and again
    EXPECT_EQ(host.handle->outPending, 1024u);
}

TEST(Scheduler, UnitThatFillsTheBuffer)
{
    // 1023 packs of video: 2012 bytes, then 2025 or with the times of a P picture 2015.
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    std::string types(1023, 'P');
    types[0] = 'I';
    const VideoStream video =
        makeVideo({ { .types = types, .bytes = { 1992, 2015 } }, { .types = "I", .bytes = { 50 } } });
    feedUnits(host, stream, video);
    ASSERT_EQ(host.exit(), 0u);
    ASSERT_EQ(host.calls.size(), 2u);
    EXPECT_EQ(host.calls[0].size(), 1024 * PACK_BYTES);
    EXPECT_EQ(numberAt(host.calls[0], 1039, 4), 1023u);
}

TEST(Scheduler, RefusedUnitsOutgrowTheBufferToo)
{
    MuxHost host;
    host.onWrite = [](const Bytes&) { return 7u; };
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    uint64_t overflow = 0;
    for (const Bytes& unit : makeVideo(gops(30, { .bytes = { 9000 } })).units()) {
        const uint64_t result = host.feed(stream, unit);
        EXPECT_TRUE(result == 0 || result == 7 || result == ORV_MUX_OVERFLOW) << result;
        if (result == ORV_MUX_OVERFLOW) ++overflow;
        EXPECT_LE(host.handle->outPending, 1024u);
    }
    EXPECT_GT(overflow, 0u);
}

}   // namespace
