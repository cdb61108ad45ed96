// The calls that feed the multiplexer: what becomes of a chunk, by the result of its parser.
#include "base/result.h"
#include "mux/ring.h"
#include "mux/video_units.h"
#include "tests/mux/mux_host.h"
#include "tests/mux/mux_rig.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace {

/** What the stream's ring holds, oldest byte first, as long as it has not wrapped. */
Bytes held(const MuxStream* stream)
{
    const uint8_t* from = stream->ring->data + stream->ring->readIndex;
    return Bytes(from, from + stream->ring->fill);
}

// A video stream that is not ready, so that nothing is packed, and another stream.
struct Pair : MuxHost {
    explicit Pair(uint64_t flags)
    {
        video = add(ORV_MUX_VIDEO_UNITS);
        stream = add(flags);
    }

    MuxStream* video = nullptr;
    MuxStream* stream = nullptr;
};

TEST(Feed, NullArguments)
{
    Pair host(ORV_MUX_AC3);
    const uint8_t byte = 0;
    uint64_t used = 0;
    EXPECT_EQ(MuxData(nullptr, host.stream, &byte, 1, &used, 0), 0x84000057u);
    EXPECT_EQ(MuxData(host.handle, nullptr, &byte, 1, &used, 0), 0x84000057u);
    EXPECT_EQ(MuxData(host.handle, host.stream, nullptr, 1, &used, 0), 0x84000057u);
    EXPECT_EQ(MuxData(host.handle, host.stream, nullptr, 1, &used, ORV_MUX_SEQUENCE), 0x84000057u);
    EXPECT_EQ(MuxVideoSeq(nullptr, host.video, &byte, 1, &used), 0x84000057u);
    EXPECT_EQ(MuxVideoSeq(host.handle, nullptr, &byte, 1, &used), 0x84000057u);
    EXPECT_EQ(MuxVideoSeq(host.handle, host.video, nullptr, 1, &used), 0x84000057u);
    EXPECT_EQ(MuxDataEx(host.handle, nullptr, &byte, 1, 0, 0), 0x84000057u);
    for (MuxStream* stream : { host.video, host.stream }) {
        EXPECT_EQ(MuxDataEx(nullptr, stream, &byte, 1, 0, 0), 0x84000057u);
        EXPECT_EQ(MuxDataEx(host.handle, stream, nullptr, 1, 0, 0), 0x84000057u);
    }
    Pair timed(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(MuxDataEx(timed.handle, timed.stream, nullptr, 1, 0, 0), 0x84000057u);
    EXPECT_EQ(timed.stream->bytesIn, 0u);
}

TEST(Feed, ChunkIsStoredAndCounted)
{
    Pair host(ORV_MUX_AC3);
    const Bytes frame = ac3Frame(20);
    EXPECT_EQ(host.feed(host.stream, frame), 0u);
    EXPECT_EQ(host.used, 768u);
    EXPECT_EQ(host.stream->bytesIn, 768u);
    EXPECT_EQ(held(host.stream), frame);
    EXPECT_EQ(host.feed(host.stream, filler(10)), 0u);   // later chunks are not looked at
    EXPECT_EQ(host.used, 10u);
    EXPECT_EQ(host.stream->bytesIn, 778u);
    EXPECT_EQ(MuxData(host.handle, host.stream, frame.data(), 3, nullptr, 0), 0u);
    EXPECT_EQ(host.stream->ring->fill, 781u);
    EXPECT_EQ(host.handle->started, 0u);
}

TEST(Feed, FlagsThatAreNotLookedAt)
{
    Pair host(ORV_MUX_AC3);
    EXPECT_EQ(host.feed(host.stream, ac3Frame(20), ~uint64_t(0x210)), 0u);
    EXPECT_EQ(host.stream->bytesIn, 768u);
}

TEST(Feed, HeaderAloneIsDropped)
{
    Pair host(ORV_MUX_LPCM);
    EXPECT_EQ(host.feed(host.stream, waveHeader()), 0u);
    EXPECT_EQ(host.used, 44u);
    EXPECT_EQ(host.stream->lpcmFormat, 1u);
    EXPECT_EQ(host.stream->bytesIn, 0u);
    EXPECT_EQ(host.stream->ring->fill, 0u);

    MuxHost other;   // what comes in front of the first GOP
    MuxStream* video = other.add(ORV_MUX_VIDEO);
    EXPECT_EQ(other.feed(video, sequenceHeader() + filler(20)), 0u);
    EXPECT_EQ(other.feedAt(video, filler(20), 3600), 0u);
    EXPECT_EQ(video->bytesIn, 0u);
    EXPECT_EQ(video->ring->fill, 0u);
}

TEST(Feed, WarningDropsTheChunkWithoutAWord)
{
    Pair host(ORV_MUX_AC3);
    EXPECT_EQ(host.feed(host.stream, filler(100)), 0u);   // no sync
    EXPECT_EQ(host.used, 100u);
    EXPECT_EQ(host.stream->bytesIn, 0u);
    EXPECT_EQ(host.feedAt(host.stream, filler(100), 0), 0u);
    EXPECT_EQ(host.feed(host.video, sequenceHeader(RATE_CODE_24)), 0u);
    EXPECT_EQ(host.video->bytesIn, 0u);
    EXPECT_EQ(host.feed(host.stream, ac3Frame(20)), 0u);   // the next chunk is tested again
    EXPECT_EQ(host.stream->bytesIn, 768u);

    Pair timed(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(timed.feedAt(timed.stream, fromHex("FF FB 44 00"), 0), 0u);   // layer 3
    EXPECT_EQ(timed.stream->bytesIn, 0u);
}

TEST(Feed, ErrorsAreReturned)
{
    Pair host(ORV_MUX_MPEG_AUDIO);
    const Bytes frame = fromHex("FF FD 40 00");   // 44.1 kHz
    EXPECT_EQ(host.feed(host.stream, frame), 0x84000BBAu);
    EXPECT_EQ(host.used, 4u);
    EXPECT_EQ(host.feedAt(host.stream, frame, 0), 0x84000BBAu);
    EXPECT_EQ(host.stream->bytesIn, 0u);
    Pair lpcm(ORV_MUX_LPCM);
    EXPECT_EQ(lpcm.feed(lpcm.stream, waveHeader({ .channels = 5 })), 0x84000BBEu);
    EXPECT_EQ(lpcm.feedAt(lpcm.stream, waveHeader({ .rate = 44100 }), 0), 0x84000BBAu);
    EXPECT_EQ(lpcm.stream->ring->fill, 0u);
}

// ---- the end mark -----------------------------------------------------------------------------------------------

TEST(Feed, EndMarkStoresNothingAndEnds)
{
    for (const int kind : { ORV_MUX_AC3, ORV_MUX_AC3_ANY, ORV_MUX_LPCM }) {
        const uint64_t flags = uint64_t(kind);
        SCOPED_TRACE(flags);
        Pair host(flags);
        ASSERT_EQ(host.feed(host.stream, flags == ORV_MUX_LPCM ? filler(768) : ac3Frame(20)), 0u);
        EXPECT_EQ(host.feed(host.stream, endMark()), 0u);
        EXPECT_EQ(host.used, 4u);
        EXPECT_EQ(host.stream->ring->ended, 1u);
        EXPECT_EQ(host.stream->bytesIn, 768u);
        EXPECT_EQ(host.stream->ring->fill, 768u);
    }
}

TEST(Feed, EndMarkInALongerChunkCostsItsLastFourBytes)
{
    Pair host(ORV_MUX_LPCM);
    EXPECT_EQ(host.feed(host.stream, endMark() + fromHex("A1 A2 A3 A4 A5 A6")), 0u);
    EXPECT_EQ(host.used, 10u);
    EXPECT_EQ(host.stream->ring->ended, 1u);
    EXPECT_EQ(host.stream->bytesIn, 6u);
    EXPECT_EQ(toHex(held(host.stream)), "45 4E 44 20 A1 A2");
}

TEST(Feed, EndMarkAsFirstChunkOfAc3)
{
    Pair host(ORV_MUX_AC3);
    EXPECT_EQ(host.feed(host.stream, endMark()), 0u);   // no sync
    EXPECT_EQ(host.stream->ring->ended, 0u);
    EXPECT_EQ(host.stream->bytesIn, 0u);
}

TEST(Feed, MpegAudioHasNoEndMark)
{
    Pair host(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(host.feed(host.stream, endMark()), 0u);
    EXPECT_EQ(host.feedAt(host.stream, endMark(), 0), 0u);
    EXPECT_EQ(host.stream->ring->ended, 0u);
    EXPECT_EQ(host.stream->bytesIn, 8u);
}

TEST(Feed, EndMarkWithATime)
{
    Pair host(ORV_MUX_AC3_ANY);
    EXPECT_EQ(host.feedAt(host.stream, ac3Frame(20), 0), 0u);
    EXPECT_EQ(host.feedAt(host.stream, endMark(), 2880), 0x84000C1Bu);
    EXPECT_EQ(host.stream->ring->ended, 1u);
    EXPECT_EQ(host.stream->bytesIn, 768u);
    EXPECT_EQ(host.stream->ring->fill, 768u);
    // A kind without times goes the way of MuxData.
    Pair other(ORV_MUX_LPCM);
    EXPECT_EQ(other.feedAt(other.stream, endMark(), 0), 0u);
    EXPECT_EQ(other.stream->ring->ended, 1u);
}

// ---- bare formats -----------------------------------------------------------------------------------------------

TEST(Feed, BareWaveFormat)
{
    Pair host(ORV_MUX_LPCM);
    const Bytes format = waveFormat({ .channels = 6, .bits = 16 });
    EXPECT_EQ(host.feed(host.stream, format, ORV_MUX_WAVEFORMAT), 0u);
    EXPECT_EQ(host.used, 18u);
    EXPECT_EQ(host.stream->lpcmFormat, 3u);
    EXPECT_EQ(host.stream->channels, 6u);
    EXPECT_EQ(host.stream->sampleRate, 48000u);
    EXPECT_EQ(host.stream->sampleBits, 16u);
    EXPECT_EQ(host.stream->unitBytes, 960u);
    EXPECT_EQ(host.stream->bytesIn, 0u);
    EXPECT_EQ(host.feedAt(host.stream, waveFormat({ .tag = 3 }), 0, ORV_MUX_WAVEFORMAT), 0x84000BC7u);   // 3015
    EXPECT_EQ(host.feed(host.stream, waveFormat({ .rate = 32000 }), ORV_MUX_WAVEFORMAT), 0x84000BBAu);
}

/** Hands bytes over in memory of exactly their number, which are said to be more. */
uint64_t feedClaiming(MuxHost& host, MuxStream* stream, const Bytes& bytes, uint64_t size)
{
    const auto exact = std::make_unique<uint8_t[]>(bytes.size());
    std::memcpy(exact.get(), bytes.data(), bytes.size());
    return MuxData(host.handle, stream, exact.get(), size, nullptr, ORV_MUX_WAVEFORMAT);
}

TEST(Feed, WaveFormatReadsEighteenBytesWhateverTheSize)
{
    for (const uint64_t size : { uint64_t(18), uint64_t(19), uint64_t(38), uint64_t(39), uint64_t(0x200000),
                                 uint64_t(0x200001), uint64_t(1) << 32, uint64_t(1) << 63, ~uint64_t(0) }) {
        SCOPED_TRACE(size);
        Pair host(ORV_MUX_LPCM);
        EXPECT_EQ(feedClaiming(host, host.stream, waveFormat({ .bits = 24 }), size), 0u);
        EXPECT_EQ(host.stream->lpcmFormat, 2u);
        EXPECT_EQ(host.stream->ring->fill, 0u);
    }
}

TEST(Feed, WaveFormatForOtherKindsStaysInItsBounds)
{
    // No host does this; nothing may be read but the 18 bytes. What is stored has 0 behind them.
    for (const int kind : { ORV_MUX_MPEG_AUDIO, ORV_MUX_AC3, ORV_MUX_AC3_ANY, ORV_MUX_VIDEO }) {
        const uint64_t flags = uint64_t(kind);
        for (const uint64_t size :
             { uint64_t(18), uint64_t(4000), uint64_t(0x200000), uint64_t(1) << 40, ~uint64_t(0) }) {
            SCOPED_TRACE(std::to_string(flags) + ", " + std::to_string(size));
            MuxHost host;
            MuxStream* video = host.add(ORV_MUX_VIDEO);
            MuxStream* stream = flags == ORV_MUX_VIDEO ? video : host.add(flags);
            EXPECT_EQ(host.feed(stream, flags == ORV_MUX_VIDEO ? gopHeader() + filler(4) : ac3Frame(20)), 0u);
            const uint64_t before = stream->ring->fill;
            const uint64_t result = feedClaiming(host, stream, waveFormat(), size);
            EXPECT_EQ(result, size > 0x200000 - before ? 0x84000BC9u : 0u);
            EXPECT_EQ(stream->ring->fill, result ? before : before + size);
            EXPECT_EQ(stream->ring->fill, stream->bytesIn);
            if (result || size <= 38) continue;
            EXPECT_EQ(toHex(part(held(stream), before, 38)),
                      "52 49 46 46 00 00 00 00 57 41 56 45 66 6D 74 20 00 00 00 00 01 00 02 00 80 BB 00 00 00 EE 02 00 "
                      "04 00 10 00 00 00");
            EXPECT_EQ(part(held(stream), before + 38, size), Bytes(size - 38));
        }
    }
}

TEST(Feed, ShortWaveFormat)
{
    // Bytes that are not there are 0.
    Pair host(ORV_MUX_LPCM);
    const Bytes format = waveFormat();
    EXPECT_EQ(feedClaiming(host, host.stream, part(format, 0, 6), 6), 0x84000BBEu);   // 48 kHz, 0 bits
    EXPECT_EQ(feedClaiming(host, host.stream, part(format, 0, 5), 5), 0x84000BBAu);   // 128 Hz
    EXPECT_EQ(feedClaiming(host, host.stream, part(format, 0, 1), 1), 0x84000BBAu);   // 0 Hz
    EXPECT_EQ(feedClaiming(host, host.stream, part(format, 0, 1), 0), 0x84000BC7u);   // tag 0
    EXPECT_EQ(host.stream->ring->fill, 0u);
}

// ---- overflow ---------------------------------------------------------------------------------------------------

TEST(Feed, ChunkThatDoesNotFit)
{
    Pair host(ORV_MUX_AC3);
    EXPECT_EQ(host.feed(host.stream, ac3Frame(20) + Bytes(0x1FFD00 - 768)), 0u);
    EXPECT_EQ(host.feed(host.stream, Bytes(0x301)), 0x84000BC9u);   // 3017
    EXPECT_EQ(host.used, 0x301u);
    EXPECT_EQ(host.stream->bytesIn, 0x1FFD00u);
    EXPECT_EQ(host.feedAt(host.stream, Bytes(0x301), 0), 0x84000BC9u);
    EXPECT_EQ(host.feed(host.stream, Bytes(0x300)), 0u);
    EXPECT_EQ(host.stream->ring->fill, 0x200000u);
    EXPECT_EQ(host.stream->bytesIn, 0x200000u);
}

TEST(Feed, TableIsAheadOfARingThatIsFull)
{
    Pair host(ORV_MUX_AC3);   // which holds back the scheduler
    EXPECT_EQ(host.feed(host.video, sequenceHeader()), 0u);
    EXPECT_EQ(host.feed(host.video, videoPicture(0x1FFFE8, 0, 'I')), 0u);
    EXPECT_EQ(host.feed(host.video, videoPicture(13, 1, 'P')), 0x84000BC9u);
    EXPECT_EQ(host.video->unitCount, 2u);
    EXPECT_EQ(host.video->bytesIn, 0x1FFFF4u);
    EXPECT_EQ(host.feed(host.video, filler(12)), 0u);
    EXPECT_EQ(host.video->ring->fill, 0x200000u);
}

// ---- whole sequences --------------------------------------------------------------------------------------------

TEST(Feed, SequenceThatIsNone)
{
    const Bytes head = sequenceHeader(), picture = videoPicture(50, 0, 'I'), end = sequenceEnd();
    struct Case {
        const char* what;
        Bytes chunk;
    };
    const Case cases[] = {
        { "begins with a GOP", gopHeader() + picture + end },
        { "begins one byte late", Bytes(1) + head + picture + end },
        { "no picture", head + gopHeader() + filler(30) + end },
        { "no end", head + picture },
        { "end in front of the picture", head + end + picture },
        { "a byte behind the end", head + picture + end + Bytes(1) },
        { "two ends", head + picture + end + end },
        { "a sequence behind it", head + picture + end + head + picture + end },
        { "end cut short", head + picture + fromHex("00 00 01") },
        { "three bytes", fromHex("00 00 01") },
        { "four bytes", fromHex("00 00 01 B3") },
        { "one byte", Bytes(1) },
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        MuxHost host;
        MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
        EXPECT_EQ(host.feedSequence(video, each.chunk), 0x84000BC1u);   // 3009
        EXPECT_EQ(host.used, each.chunk.size());
        EXPECT_EQ(host.feed(video, each.chunk, ORV_MUX_SEQUENCE), 0x84000BC1u);
        EXPECT_EQ(host.used, each.chunk.size());
        EXPECT_EQ(host.feedAt(video, each.chunk, 0, ORV_MUX_SEQUENCE), 0x84000BC1u);
        EXPECT_EQ(MuxVideoSeq(host.handle, video, each.chunk.data(), each.chunk.size(), nullptr), 0x84000BC1u);
        EXPECT_EQ(video->bytesIn, 0u);
        EXPECT_EQ(video->groupCount, 0u);
    }
}

TEST(Feed, SequenceIsThreeChunks)
{
    for (const bool byFlag : { false, true }) {
        Pair host(ORV_MUX_AC3);
        const Bytes sequence =
            sequenceHeader(RATE_CODE_NTSC, 352, 480) + gopHeader() + videoPicture(60, 1, 'I') + sequenceEnd();
        EXPECT_EQ(byFlag ? host.feed(host.video, sequence, ORV_MUX_SEQUENCE | ORV_MUX_WAVEFORMAT)
                         : host.feedSequence(host.video, sequence),
                  0u);
        EXPECT_EQ(host.used, 84u);
        EXPECT_EQ(host.video->bytesIn, 84u);
        EXPECT_EQ(held(host.video), sequence);
        EXPECT_EQ(host.video->groupCount, 1u);
        ASSERT_EQ(host.video->unitCount, 1u);
        EXPECT_EQ(host.video->unitTable[0].position, 0u);
        EXPECT_EQ(host.video->unitTable[0].pts, 2u * 3003);
        EXPECT_EQ(host.video->width, 352u);
        EXPECT_EQ(host.video->height, 480u);
        EXPECT_EQ(host.video->ring->ended, 1u);
    }
}

TEST(Feed, FurtherPicturesOfASequenceHaveNoRecord)
{
    Pair host(ORV_MUX_AC3);
    const Bytes sequence = sequenceHeader() + videoPicture(60, 0, 'I') + videoPicture(40, 1, 'P') + sequenceEnd();
    EXPECT_EQ(host.feedSequence(host.video, sequence), 0u);
    EXPECT_EQ(host.video->unitCount, 1u);
    EXPECT_EQ(held(host.video), sequence);
}

TEST(Feed, SequenceReportsWhatMuxDataPassesOver)
{
    const Bytes picture = videoPicture(60, 0, 'I');
    Pair host(ORV_MUX_AC3);
    EXPECT_EQ(host.feedSequence(host.video, sequenceHeader(RATE_CODE_23976) + picture + sequenceEnd()), 0x84100BC2u);
    EXPECT_EQ(host.video->bytesIn, 0u);
    MuxHost other;   // a header in front of the first GOP
    MuxStream* video = other.add(ORV_MUX_VIDEO);
    EXPECT_EQ(other.feedSequence(video, sequenceHeader() + picture + sequenceEnd()), 0x84000C1Au);
    EXPECT_EQ(video->bytesIn, 0u);
    // Both pieces of a sequence with a GOP, and the end code of four bytes, which is too short to be scanned.
    MuxHost third;
    video = third.add(ORV_MUX_VIDEO);
    EXPECT_EQ(third.feedSequence(video, sequenceHeader() + gopHeader() + filler(9) + picture + sequenceEnd()), 0u);
    EXPECT_EQ(video->bytesIn, 12u + 8 + 9 + 60 + 4);
    EXPECT_EQ(video->unitCount, 1u);
    EXPECT_EQ(video->ring->ended, 0u);
}

TEST(Feed, SequenceStopsAtTheFirstFailure)
{
    Pair host(ORV_MUX_AC3);
    EXPECT_EQ(host.feed(host.video, sequenceHeader() + Bytes(0x200000 - 12 - 40)), 0u);
    const Bytes sequence = sequenceHeader() + videoPicture(60, 0, 'I') + sequenceEnd();
    EXPECT_EQ(host.feedSequence(host.video, sequence), 0x84000BC9u);
    EXPECT_EQ(host.video->bytesIn, 0x200000u - 40 + 12);   // the header has gone in
    EXPECT_EQ(host.video->ring->ended, 0u);
}

// ---- times ------------------------------------------------------------------------------------------------------

TEST(Feed, TimeCountsForTheKindsThatTakeIt)
{
    // Ten frames of 672 bytes ahead.
    Pair host(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(host.feedAt(host.stream, layer2Frame(11), 0), 0u);
    EXPECT_EQ(host.feedAt(host.stream, layer2Frame(11), 11 * 2160), 0u);
    EXPECT_EQ(host.stream->bytesIn, 672u * 12);
    EXPECT_EQ(host.stream->ring->fill, 672u * 12);
    // Flags are not looked at then.
    EXPECT_EQ(host.feedAt(host.stream, layer2Frame(11), NONE, ORV_MUX_SEQUENCE | ORV_MUX_WAVEFORMAT), 0u);
    EXPECT_EQ(host.stream->bytesIn, 672u * 13);

    Pair other(ORV_MUX_AC3);   // drops it
    EXPECT_EQ(other.feedAt(other.stream, ac3Frame(20), 100 * 2880), 0u);
    EXPECT_EQ(other.stream->bytesIn, 768u);
}

TEST(Feed, HugeTimesEnd)
{
    for (const int kind : { ORV_MUX_MPEG_AUDIO, ORV_MUX_AC3_ANY, ORV_MUX_VIDEO }) {
        const uint64_t flags = uint64_t(kind);
        for (const uint64_t time : { ~uint64_t(1), uint64_t(1) << 63, (uint64_t(1) << 63) - 1, uint64_t(1) << 40 }) {
            for (const int sizeCode : { 20, 38, 63 }) {   // 38 and 63 have no size
                MuxHost host;
                MuxStream* video = host.add(ORV_MUX_VIDEO);
                MuxStream* stream = flags == ORV_MUX_VIDEO ? video : host.add(flags);
                Bytes chunk = flags == ORV_MUX_VIDEO        ? makeVideo(gops(1)).bytes
                              : flags == ORV_MUX_MPEG_AUDIO ? layer2Frame(11)
                                                            : ac3Frame(20);
                if (flags == ORV_MUX_AC3_ANY) chunk[4] = uint8_t(sizeCode);
                for (int i = 0; i < 3; ++i) (void)host.feedAt(stream, chunk, time);
                EXPECT_LE(stream->ring->fill, RING_BYTES);
            }
        }
    }
}

// ---- sub-pictures -----------------------------------------------------------------------------------------------

TEST(Feed, SubPictureCanNotBeFed)
{
    Pair host(ORV_MUX_SUBPICTURE);
    EXPECT_EQ(host.feed(host.stream, filler(100)), 0x84000BC1u);
    EXPECT_EQ(host.feedAt(host.stream, filler(100), 0), 0x84000BC1u);
    EXPECT_EQ(host.feedSequence(host.stream, makeVideo({ { .types = "I", .end = true } }).bytes), 0x84000BC1u);
    EXPECT_EQ(host.feed(host.stream, waveFormat(), ORV_MUX_WAVEFORMAT), 0x84000BC1u);
    EXPECT_EQ(host.stream->ring->fill, 0u);
    EXPECT_EQ(host.stream->bytesIn, 0u);
}

TEST(Feed, SubPictureHoldsBackTheScheduler)
{
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    host.add(ORV_MUX_SUBPICTURE);
    for (const Bytes& unit : makeVideo(gops(4, { .end = true })).units()) EXPECT_EQ(host.feed(video, unit), 0u);
    EXPECT_EQ(host.handle->packCount, 0u);
    EXPECT_EQ(host.exit(), 0u);   // ends the ring of both
    EXPECT_EQ(host.calls.size(), 4u);
    EXPECT_GT(host.sectors(), 180u);
}

}   // namespace
