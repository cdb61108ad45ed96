// Streams that the multiplexer reads from a file: how much a call takes, byte order, the end.
#include "base/result.h"
#include "mux/ring.h"
#include "tests/mux/mux_host.h"
#include "tests/mux/mux_rig.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

constexpr uint64_t UNTOUCHED = 0xEEEEEEEE;

// An audio stream from a file, beside a video stream that holds back the scheduler.
struct Source : MuxHost {
    Source(const Bytes& content, uint64_t flags)
    {
        writeFile(folder / u"audio", content);
        video = add(ORV_MUX_VIDEO_UNITS);
        const std::u16string path = folder / u"audio";
        const std::basic_string<OrvWChar> wide(path.begin(), path.end());
        EXPECT_EQ(AddFileStream(handle, wide.c_str(), flags, &stream), 0u);
    }
    ~Source()
    {
        // The file is closed before its folder goes.
        if (handle) (void)osCloseFile(&stream->file);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    uint64_t pull()
    {
        return feed(stream, { 0 });
    }
    Bytes held() const
    {
        const uint8_t* from = stream->ring->data + stream->ring->readIndex;
        return Bytes(from, from + stream->ring->fill);
    }

    TempDir folder;
    MuxStream* video = nullptr;
    MuxStream* stream = nullptr;
};

TEST(FileSource, ReadsUntilTwiceTheWatermark)
{
    const Bytes frames = ac3Frames(28, 30);   // 46080 bytes
    Source host(frames, ORV_MUX_AC3);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, 16384u);
    EXPECT_EQ(host.stream->filePosition, 16384u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, 16384u);
    EXPECT_EQ(host.stream->ring->fill, 32768u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, UNTOUCHED);   // full enough
    EXPECT_EQ(host.stream->bytesIn, 32768u);
    EXPECT_EQ(host.held(), part(frames, 0, 32768));

    Bytes taken(12000);
    uint64_t read = 0;
    ASSERT_EQ(orvRingRead(host.stream->ring, taken.data(), 12000, &read), 0u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, 12000u);
    EXPECT_EQ(host.stream->filePosition, 44768u);
    EXPECT_EQ(host.held(), part(frames, 12000, 32768));
}

TEST(FileSource, DataMustBeGivenButIsNotRead)
{
    Source host(ac3Frames(20, 2), ORV_MUX_AC3);
    EXPECT_EQ(MuxData(host.handle, host.stream, nullptr, 0, nullptr, 0), 0x84000057u);
    const uint8_t byte = 0;
    EXPECT_EQ(MuxData(host.handle, host.stream, &byte, ~uint64_t(0), nullptr, 0), 0u);
    EXPECT_EQ(host.held(), ac3Frames(20, 2));
}

TEST(FileSource, EndOfFileEndsTheRing)
{
    Source host(ac3Frames(20, 2), ORV_MUX_AC3);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, 1536u);
    EXPECT_EQ(host.stream->ring->ended, 0u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, UNTOUCHED);
    EXPECT_EQ(host.stream->ring->ended, 1u);
    EXPECT_EQ(host.stream->bytesIn, 1536u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.stream->bytesIn, 1536u);
}

TEST(FileSource, EmptyFile)
{
    Source host({}, ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.stream->ring->ended, 1u);
    EXPECT_EQ(host.stream->bytesIn, 0u);
}

TEST(FileSource, SwappedBytesAreExchanged)
{
    const Bytes frames = ac3Frames(28, 15);   // 23040 bytes
    Source host(swappedPairs(frames), ORV_MUX_AC3);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.stream->unitBytes, 1536u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, 6656u);
    EXPECT_EQ(host.held(), frames);
}

TEST(FileSource, OddTailStaysInPlace)
{
    const Bytes frame = ac3Frame(20);
    Bytes file = swappedPairs(frame);
    file.push_back(0xA1);
    Source host(file, ORV_MUX_AC3);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, 769u);
    Bytes expected = frame;
    expected.push_back(0xA1);
    EXPECT_EQ(host.held(), expected);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.stream->ring->ended, 1u);
}

TEST(FileSource, OddRoomIsRoundedDownForSwappedBytes)
{
    for (const bool swapped : { false, true }) {
        SCOPED_TRACE(swapped);
        const Bytes frames = ac3Frames(36, 20);
        Source host(swapped ? swappedPairs(frames) : frames, ORV_MUX_AC3);
        ASSERT_EQ(orvRingWrite(host.stream->ring, Bytes(16385).data(), 16385, nullptr), 0u);
        EXPECT_EQ(host.pull(), 0u);
        EXPECT_EQ(host.used, swapped ? 16382u : 16383u);
        EXPECT_EQ(part(host.held(), 16385, 16382), part(frames, 0, 16382));
        // One byte of room: none of a pair.
        EXPECT_EQ(host.stream->ring->fill, swapped ? 32767u : 32768u);
        EXPECT_EQ(host.pull(), 0u);
        EXPECT_EQ(host.used, UNTOUCHED);
        EXPECT_EQ(host.stream->filePosition, swapped ? 16382u : 16383u);
    }
}

TEST(FileSource, LastByteByItself)
{
    // 16384 bytes, then one that is left: a read of one byte, which stays as it is.
    Bytes file = swappedPairs(ac3Frames(30, 8));   // 14336
    file.resize(16384, 0x81);
    file.push_back(0xA7);
    Source host(file, ORV_MUX_AC3);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.used, 1u);
    EXPECT_EQ(toHex(part(host.held(), 16384, 9)), "A7");
    EXPECT_EQ(host.stream->ring->ended, 0u);
}

TEST(FileSource, DroppedChunkIsNotReadAgain)
{
    Bytes file = filler(16384);
    const Bytes frames = ac3Frames(20, 2);
    file.insert(file.end(), frames.begin(), frames.end());
    Source host(file, ORV_MUX_AC3);
    EXPECT_EQ(host.pull(), 0u);   // no sync
    EXPECT_EQ(host.used, 16384u);
    EXPECT_EQ(host.stream->bytesIn, 0u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.held(), frames);
}

TEST(FileSource, ErrorOfTheParser)
{
    Bytes file = ac3Frame(20);
    file[4] = 0x54;   // 44.1 kHz
    Source host(file, ORV_MUX_AC3);
    EXPECT_EQ(host.pull(), 0x84000BBAu);
    EXPECT_EQ(host.stream->filePosition, 768u);
}

TEST(FileSource, CallWithATimeTakesItsOwnData)
{
    Source host(layer2Frames(11, 4), ORV_MUX_MPEG_AUDIO);
    const Bytes frame = layer2Frame(11, 99);
    EXPECT_EQ(host.feedAt(host.stream, frame, 0), 0u);
    EXPECT_EQ(host.held(), frame);
    EXPECT_EQ(host.stream->filePosition, 0u);
    // AC-3 in order has no times: the call is one of MuxData, the file is read.
    Source other(ac3Frames(20, 2), ORV_MUX_AC3);
    EXPECT_EQ(other.feedAt(other.stream, { 0 }, 0), 0u);
    EXPECT_EQ(other.held(), ac3Frames(20, 2));
}

TEST(FileSource, SequenceFlagComesFirst)
{
    Source host(ac3Frames(20, 2), ORV_MUX_AC3);
    EXPECT_EQ(host.feed(host.stream, { 0 }, ORV_MUX_SEQUENCE), 0x84000BC1u);
    EXPECT_EQ(host.stream->filePosition, 0u);
}

TEST(FileSource, OverfullRing)
{
    // More in the ring than a file may bring: nothing is read, whatever the sign of the room.
    Source host(layer2Frames(11, 100), ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(host.feedAt(host.stream, Bytes(100000), NONE), 0u);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.stream->ring->fill, 100000u);
    EXPECT_EQ(host.stream->filePosition, 0u);
}

TEST(FileSource, KindsThatHaveNoRoomToRead)
{
    for (const int kind : { ORV_MUX_LPCM, ORV_MUX_AC3_ANY }) {
        const uint64_t flags = uint64_t(kind);
        for (const Bytes& content : { ac3Frames(20, 30), swappedPairs(ac3Frames(20, 30)), Bytes(), Bytes(1) }) {
            Source host(content, flags);
            for (int i = 0; i < 3; ++i) EXPECT_NE(host.pull(), 0u) << flags;
            EXPECT_EQ(host.stream->ring->fill, 0u);
        }
    }
    TempDir folder;
    writeFile(folder / u"video", makeVideo(gops(1)).bytes);
    const std::u16string path = folder / u"video";
    for (const int kind : { ORV_MUX_VIDEO, ORV_MUX_VIDEO_UNITS }) {
        const uint64_t flags = uint64_t(kind);
        MuxHost host;
        MuxStream* stream = nullptr;
        const std::basic_string<OrvWChar> wide(path.begin(), path.end());
        ASSERT_EQ(AddFileStream(host.handle, wide.c_str(), flags, &stream), 0u);
        EXPECT_NE(host.feed(stream, { 0 }), 0u);
        EXPECT_EQ(stream->ring->fill, 0u);
    }
    Source subPicture(Bytes(100), ORV_MUX_SUBPICTURE);
    EXPECT_EQ(subPicture.pull(), 0x84000BC1u);
}

TEST(FileSource, FileThatCanNotBeRead)
{
    Source host(ac3Frames(20, 2), ORV_MUX_AC3);
    ASSERT_EQ(osCloseFile(&host.stream->file), 0u);
    EXPECT_NE(host.pull(), 0u);
    EXPECT_EQ(host.stream->ring->fill, 0u);
    EXPECT_EQ(host.stream->ring->ended, 0u);
}

TEST(FileSource, IsClosedByTheExit)
{
    Source host(ac3Frames(20, 2), ORV_MUX_AC3);
    EXPECT_EQ(host.pull(), 0u);
    EXPECT_EQ(host.exit(), 0u);
    // An open file could not be removed where that matters.
    EXPECT_TRUE(std::filesystem::remove(host.folder.root / "audio"));
}

}   // namespace
