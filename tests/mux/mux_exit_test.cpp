// The end of a run: what is still packed and handed out, and what is released.
#include "base/result.h"
#include "mux/ring.h"
#include "tests/mux/mux_host.h"
#include "tests/mux/mux_rig.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

namespace {

TEST(Exit, NullHandle)
{
    EXPECT_EQ(ExitMuxer(nullptr), 0x84000057u);
}

TEST(Exit, NothingRegisteredOrFed)
{
    MuxHost empty;
    EXPECT_EQ(empty.exit(), 0u);
    EXPECT_EQ(empty.calls.size(), 0u);
    MuxHost host;
    host.add(ORV_MUX_VIDEO);
    host.add(ORV_MUX_AC3);
    EXPECT_EQ(host.exit(), 0u);
    EXPECT_EQ(host.calls.size(), 0u);
}

TEST(Exit, WithoutAVideoStream)
{
    MuxHost host;
    MuxStream* audio = host.add(ORV_MUX_AC3);
    EXPECT_EQ(host.feed(audio, ac3Frames(20, 50)), 0x84000BC5u);
    EXPECT_EQ(host.exit(), 0u);
    EXPECT_EQ(host.calls.size(), 0u);
}

TEST(Exit, VideoOfFourBytesIsNotRun)
{
    for (const uint64_t bytes : { 1u, 4u, 5u }) {
        MuxHost host;
        MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
        MuxStream* audio = host.add(ORV_MUX_AC3);
        EXPECT_EQ(host.feed(audio, ac3Frames(20, 50)), 0u);
        EXPECT_EQ(host.feed(video, filler(bytes)), 0u);
        ASSERT_EQ(video->bytesIn, bytes);
        const uint64_t result = host.exit();
        if (bytes <= 4) {
            EXPECT_EQ(result, 0u);
            EXPECT_EQ(host.calls.size(), 0u);
        } else {
            // Bytes that are no picture can never be packed; the audio is, and then the run is given up.
            EXPECT_EQ(result, 0x84000BC0u);
            EXPECT_EQ(audio->bytesPacked, 50u * 768);
        }
    }
}

TEST(Exit, FourBytesWithWhatIsPending)
{
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    feedUnits(host, video, makeVideo(gops(2)));
    ASSERT_GT(host.handle->outPending, 0u);
    const uint64_t pending = host.handle->outPending;
    const size_t calls = host.calls.size();
    video->bytesIn = 4;
    EXPECT_EQ(host.exit(), 0u);
    ASSERT_EQ(host.calls.size(), calls + 1);
    EXPECT_EQ(host.calls.back().size(), pending * PACK_BYTES);
}

TEST(Exit, PacksAllThatIsLeft)
{
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    MuxStream* audio = host.add(ORV_MUX_MPEG_AUDIO);
    const VideoStream stream = makeVideo({ { .bytes = { 1500 } } });
    feedUnits(host, video, stream);
    EXPECT_EQ(host.feed(audio, layer2Frames(11, 20)), 0u);
    EXPECT_EQ(host.handle->packCount, 0u);
    ASSERT_EQ(host.exit(), 0u);
    ASSERT_EQ(host.calls.size(), 1u);
    Bytes videoBytes, audioBytes;
    for (uint64_t i = 1; i < host.sectors(); ++i) {
        const Bytes payload = payloadOf(host.pack(i));
        Bytes& to = host.pack(i)[17] == 0xE0 ? videoBytes : audioBytes;
        to.insert(to.end(), payload.begin(), payload.end());
    }
    EXPECT_EQ(videoBytes, stream.bytes);
    EXPECT_EQ(audioBytes, layer2Frames(11, 20));
}

TEST(Exit, LastUnitLacksAPicture)
{
    MuxHost host;
    feedUnits(host, host.add(ORV_MUX_VIDEO_UNITS), makeVideo(gops(2)));
    ASSERT_EQ(host.exit(), 0u);
    ASSERT_EQ(host.calls.size(), 2u);
    const Bytes &first = host.calls[0], &last = host.calls[1];
    // Of 12 pictures: all in a unit that another closes, 11 in the last.
    EXPECT_EQ(numberAt(first, 61, 4) - numberAt(first, 57, 4), 12u * 3600);
    EXPECT_EQ(numberAt(first, 65, 4), 0u);
    EXPECT_EQ(numberAt(last, 61, 4) - numberAt(last, 57, 4), 11u * 3600);
    EXPECT_EQ(numberAt(last, 65, 4), numberAt(last, 61, 4));
    EXPECT_EQ(numberAt(last, 57, 4), numberAt(first, 61, 4));
}

TEST(Exit, RefusedLastUnitIsNoFailure)
{
    MuxHost host;
    host.onWrite = [](const Bytes&) { return 9u; };
    feedUnits(host, host.add(ORV_MUX_VIDEO_UNITS), makeVideo(gops(1)));
    EXPECT_EQ(host.exit(), 0u);
    EXPECT_EQ(host.calls.size(), 1u);
}

TEST(Exit, FailureOfTheRunKeepsTheHandle)
{
    MuxHost host;
    uint64_t refusals = 1;
    host.onWrite = [&refusals](const Bytes&) { return refusals > 0 && refusals-- ? 9u : 0u; };
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    feedUnits(host, stream, makeVideo(gops(3, { .bytes = { 1000 } })));
    EXPECT_EQ(host.exit(), 9u);
    ASSERT_NE(host.handle, nullptr);
    EXPECT_EQ(stream->ring->ended, 1u);
    EXPECT_EQ(host.calls.size(), 1u);
    EXPECT_EQ(host.handle->outPending * PACK_BYTES, host.calls[0].size());
    EXPECT_EQ(host.exit(), 0u);   // goes on where it stopped
    EXPECT_EQ(host.calls.size(), 3u);
}

TEST(Exit, StreamsThatNeverBeganTakeNoPart)
{
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO);
    for (const uint64_t flags : { 0x10u, 0x40u, 0x80u, 0x800u }) host.add(flags);
    MuxStream* lpcm = host.add(ORV_MUX_LPCM);
    MuxStream* ac3 = host.add(ORV_MUX_AC3);
    EXPECT_EQ(host.feed(ac3, filler(3000)), 0u);   // dropped
    EXPECT_EQ(host.feed(lpcm, waveHeader()), 0u);
    EXPECT_EQ(host.feed(video, makeVideo(gops(1)).bytes), 0u);
    ASSERT_EQ(host.exit(), 0u);
    for (uint64_t i = 1; i < host.sectors(); ++i) EXPECT_EQ(host.pack(i)[17], 0xE0) << i;
}

TEST(Exit, DataWithoutAUnitSize)
{
    // LPCM samples whose header never came, MPEG audio whose rate has no size: they can't be packed, and nobody waits
    // for them.
    for (const bool lpcm : { true, false }) {
        MuxHost host;
        MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
        MuxStream* audio = host.add(lpcm ? ORV_MUX_LPCM : ORV_MUX_MPEG_AUDIO);
        EXPECT_EQ(host.feed(audio, lpcm ? filler(5000) : fromHex("FF FD F4 00") + filler(5000)), 0u);
        feedUnits(host, video, makeVideo(gops(1, { .bytes = { 500 } })));
        ASSERT_EQ(audio->bytesIn, lpcm ? 5000u : 5004u);
        EXPECT_EQ(host.exit(), 0u);
        // 12 pictures of 500 bytes and two headers.
        EXPECT_EQ(packLetters(host), "Nvvv");
    }
}

TEST(Exit, ReleasesEveryKindInEveryState)
{
    // What is not released shows in the leak check.
    TempDir folder;
    writeFile(folder / u"a", ac3Frames(20, 4));
    const std::u16string path = folder / u"a";
    const std::basic_string<OrvWChar> wide(path.begin(), path.end());
    MuxHost host;
    host.add(ORV_MUX_AC3);
    host.add(ORV_MUX_AC3_ANY);   // takes its slot
    MuxStream* video = host.add(ORV_MUX_VIDEO);
    MuxStream* file = nullptr;
    ASSERT_EQ(AddFileStream(host.handle, wide.c_str(), ORV_MUX_AC3, &file), 0u);
    host.add(ORV_MUX_LPCM);
    host.add(ORV_MUX_MPEG_AUDIO);
    host.add(ORV_MUX_SUBPICTURE);
    EXPECT_EQ(AddStream(host.handle, 0, ORV_MUX_VIDEO, nullptr), ORV_SECOND_VIDEO_STREAM);
    EXPECT_EQ(host.feed(video, makeVideo(gops(1)).bytes), 0u);
    EXPECT_EQ(host.feed(file, { 0 }), 0u);
    EXPECT_EQ(host.exit(), 0u);
    EXPECT_EQ(host.calls.size(), 1u);
}

}   // namespace
