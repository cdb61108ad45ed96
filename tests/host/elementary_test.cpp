// elementary_test.cpp: what a file is by its bytes: streams that a movie can have, and what is said of others.
#include "host/codes.h"
#include "host/elementary.h"
#include "host/video_watch.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

FileFault recognise(const Bytes& bytes, StreamFormat* format)
{
    std::istringstream in(std::string(bytes.begin(), bytes.end()));
    return recogniseStream(in, bytes.size(), format);
}

// ---- kinds --------------------------------------------------------------------------------------------------------

struct KnownCase {
    const char* start;   // the rest of 64 bytes is 0
    const char* text;
    uint64_t unitTicks, unitBytes;
};

TEST(MuxRecognise, KindsByTheirFirstBytes)
{
    const KnownCase cases[] = {
        // 720 = 2D0, 576 = 240; 4:3 and 25 a second
        { "00 00 01 B3 2D 02 40 23", "PAL video, 720 x 576", 3600, 0 },
        { "00 00 01 B3 16 01 20 33", "PAL video, 352 x 288", 3600, 0 },
        { "00 00 01 B3 2C 01 E0 34", "NTSC video, 704 x 480", 3003, 0 },
        { "0B 77 12 34 14 40", "AC-3, 192 kbit/s", 2880, 768 },
        { "0B 77 12 34 1F 40", "AC-3, 448 kbit/s", 2880, 1792 },
        { "0B 77 12 34 00 40", "AC-3, 32 kbit/s", 2880, 128 },
        { "77 0B 34 12 40 14", "AC-3, 192 kbit/s", 2880, 768 },
        { "FF FD B4 00", "MPEG audio of layer 2, 224 kbit/s", 2160, 672 },
        { "FF FC E4 00", "MPEG audio of layer 2, 384 kbit/s", 2160, 1152 },
    };
    for (const KnownCase& known : cases) {
        SCOPED_TRACE(known.start);
        Bytes bytes = fromHex(known.start);
        bytes.resize(64);
        StreamFormat format;
        const FileFault fault = recognise(bytes, &format);
        EXPECT_EQ(fault.why, "");
        EXPECT_EQ(streamText(format), known.text);
        EXPECT_EQ(format.unitTicks, known.unitTicks);
        EXPECT_EQ(format.unitBytes, known.unitBytes);
        EXPECT_EQ(format.from, 0u);
        EXPECT_EQ(format.bytes, 64u);
        EXPECT_EQ(format.exchanged, bytes[0] == 0x77);
    }
}

struct RefusedCase {
    const char* start;
    uint64_t code;
    const char* why;   // part of it
};

TEST(MuxRecognise, OthersAreExplained)
{
    const RefusedCase cases[] = {
        { "00 00 01 B3 2D 02 40 21", CODE_VIDEO_STANDARD, "it has 23.976 pictures a second; PAL has 25" },
        { "00 00 01 B3 2D 01 E0 26", CODE_VIDEO_STANDARD, "it has 50 pictures a second" },
        { "00 00 01 B3 2D 02 40 20", CODE_VIDEO_STANDARD, "an unknown number of pictures" },
        { "00 00 01 B3 50 02 D0 33", 0, "its pictures are 1280 x 720 at 25 a second; PAL has 720 x 576" },
        { "00 00 01 B3 2D 02 40 34", 0, "its pictures are 720 x 576 at 29.97 a second; NTSC has 720 x 480" },
        { "0B 77 12 34 54 40", CODE_SOUND_RATE, "it has not 48000 samples a second" },
        { "77 0B 34 12 40 94", CODE_SOUND_RATE, "it has not 48000 samples a second" },
        { "0B 77 12 34 26 40", 0, "its first AC-3 frame is damaged" },
        { "0B 77 02 FF 3F 87", 0, "it is Enhanced AC-3" },
        { "FF FB 94 00", CODE_SOUND_LAYER, "it is MPEG audio of layer 3" },
        { "FF FF 94 00", CODE_SOUND_LAYER, "it is MPEG audio of layer 1" },
        { "FF FD B0 00", CODE_SOUND_RATE, "it has not 48000 samples a second" },
        { "FF F5 B4 00", CODE_SOUND_RATE, "it has not 48000 samples a second" },   // the half rates
        { "FF FD 04 00", 0, "its bit rate is none of the fixed ones" },
        { "FF FD F4 00", 0, "its bit rate is none of the fixed ones" },
        { "FF F1 50 80", 0, "it begins neither as MPEG-2 video" },   // AAC in its own frames
        { "00 00 01 BA 44", 0, "it is a program stream" },
        { "00 00 00 01 67 42", 0, "it is video of another coding" },
        { "7F FE 80 01", 0, "it is DTS" },
        { "49 44 33 04", 0, "it begins with a tag" },
        { "52 49 46 46 00 00 00 00 41 56 49 20", 0, "it is a RIFF file, but no WAVE" },
        { "52 46 36 34", 0, "it is a WAVE file of 64 bits" },
        { "00 00 00 20 66 74 79 70", 0, "it is an MP4 or QuickTime file" },
        { "1A 45 DF A3", 0, "it is a Matroska file" },
        { "4F 67 67 53", 0, "it is an Ogg file" },
        { "66 4C 61 43", 0, "it is FLAC" },
        { "", 0, "it begins neither as MPEG-2 video (00 00 01 B3) nor as AC-3 (0B 77)" },
    };
    for (const RefusedCase& refused : cases) {
        SCOPED_TRACE(refused.start);
        Bytes bytes = fromHex(refused.start);
        bytes.resize(64);
        StreamFormat format;
        const FileFault fault = recognise(bytes, &format);
        EXPECT_NE(fault.why.find(refused.why), std::string::npos) << fault.why;
        EXPECT_EQ(fault.code, refused.code);
    }
    StreamFormat format;
    EXPECT_EQ(recognise({}, &format).why, "it is too short to hold a stream");
    EXPECT_EQ(recognise(Bytes(15, 0x0B), &format).why, "it is too short to hold a stream");
}

TEST(MuxRecognise, FramesOfAStream)
{
    StreamFormat ac3, exchanged, layer2;
    ASSERT_FALSE(recognise(ac3Frame(0x14), &ac3));
    ASSERT_FALSE(recognise(swappedPairs(ac3Frame(0x14)), &exchanged));
    ASSERT_FALSE(recognise(layer2Frame(11), &layer2));
    EXPECT_TRUE(isFrameOf(ac3, ac3Frame(0x14, 7).data()));
    EXPECT_TRUE(isFrameOf(ac3, ac3Frame(0x15).data()));   // both codes of a pair have one size
    EXPECT_FALSE(isFrameOf(ac3, ac3Frame(0x16).data()));
    EXPECT_FALSE(isFrameOf(ac3, swappedPairs(ac3Frame(0x14)).data()));
    EXPECT_FALSE(isFrameOf(ac3, filler(8).data()));
    EXPECT_TRUE(isFrameOf(exchanged, swappedPairs(ac3Frame(0x14)).data()));
    EXPECT_FALSE(isFrameOf(exchanged, ac3Frame(0x14).data()));
    EXPECT_TRUE(isFrameOf(layer2, layer2Frame(11, 7).data()));
    EXPECT_FALSE(isFrameOf(layer2, layer2Frame(12).data()));
    EXPECT_FALSE(isFrameOf(layer2, ac3Frame(0x14).data()));
}

// ---- RIFF/WAVE ----------------------------------------------------------------------------------------------------

Bytes joined(const std::vector<Bytes>& parts)
{
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes textBytes(std::string_view text)
{
    return Bytes(text.begin(), text.end());
}

// The format chunk of 48 kHz stereo, 16 bits.
const char FORMAT[] = "66 6D 74 20 10 00 00 00 01 00 02 00 80 BB 00 00 00 EE 02 00 04 00 10 00";
const char RIFF[] = "52 49 46 46 00 10 00 00 57 41 56 45";

TEST(MuxRecognise, WaveFileOfChunks)
{
    // A chunk of three bytes takes four.
    const Bytes list = fromHex("4C 49 53 54 03 00 00 00 61 62 63 00"), data = fromHex("64 61 74 61 08 00 00 00");
    const Bytes wave = joined({ fromHex(RIFF), list, fromHex(FORMAT), list, data, filler(8), list });
    StreamFormat format;
    const FileFault fault = recognise(wave, &format);
    EXPECT_EQ(fault.why, "");
    EXPECT_EQ(format.kind, STREAM_LPCM);
    EXPECT_EQ(format.from, 12u + 12 + 24 + 12 + 8);
    EXPECT_EQ(format.bytes, 8u);
    EXPECT_EQ(streamText(format), "LPCM, 2 channels, 16 bits, 48000 Hz");
    EXPECT_EQ(format.unitTicks, 150u);
    EXPECT_EQ(format.unitBytes, 80u * 4);
    EXPECT_EQ(toHex(format.wave.data(), 18), "01 00 02 00 80 BB 00 00 00 EE 02 00 04 00 10 00 00 00");
}

// Six channels of 44.1 kHz: what the long form says is told in the short one; whether it fits is the library's to say.
TEST(MuxRecognise, WaveFileOfTheLongForm)
{
    const Bytes format40 =
        fromHex("66 6D 74 20 28 00 00 00 FE FF 05 00 44 AC 00 00 68 BB 06 00 0A 00 10 00 16 00 10 00 "
                "3F 00 00 00 01 00 00 00 00 00 10 00 80 00 00 AA 00 38 9B 71");
    const Bytes data = fromHex("64 61 74 61 FF FF FF FF");
    StreamFormat format;
    const FileFault fault = recognise(joined({ fromHex(RIFF), format40, data, filler(105) }), &format);
    EXPECT_EQ(fault.why, "");
    EXPECT_EQ(format.bytes, 100u);   // whole samples, up to the end of the file
    EXPECT_EQ(toHex(format.wave.data(), 18), "01 00 05 00 44 AC 00 00 68 BB 06 00 0A 00 10 00 00 00");
}

TEST(MuxRecognise, DamagedWaveFiles)
{
    const Bytes data = fromHex("64 61 74 61 08 00 00 00"), format = fromHex(FORMAT);
    Bytes noBlock = format, noBits = format, shortFormat = format;
    noBlock[20] = 6;
    noBits[22] = noBlock[20] = 0;
    shortFormat[4] = 8;
    const std::pair<Bytes, const char*> cases[] = {
        { joined({ fromHex(RIFF), format }), "there is no `data` chunk in it" },
        { joined({ fromHex(RIFF), data, filler(8) }), "there is no `fmt ` chunk in front of its samples" },
        { joined({ fromHex(RIFF), noBlock, data, filler(8) }), "its `fmt ` chunk contradicts itself" },
        { joined({ fromHex(RIFF), noBits, data, filler(8) }), "its `fmt ` chunk contradicts itself" },
        { joined({ fromHex(RIFF), shortFormat, data, filler(8) }), "its `fmt ` chunk is too short" },
        { joined({ fromHex(RIFF), Bytes(400000) }), "there is no `data` chunk in it" },
        { joined({ fromHex(RIFF), textBytes("LIST\xFF\xFF\xFF\xFF") }), "there is no `data` chunk in it" },
    };
    for (const auto& [wave, why] : cases) {
        StreamFormat found;
        const FileFault fault = recognise(wave, &found);
        EXPECT_NE(fault.why.find(why), std::string::npos) << why << ": " << fault.why;
    }
}

// The library takes these, but stores them where players do not look.
TEST(MuxRecognise, SoundThatWouldBecomeNoise)
{
    const WaveSpec cases[] = { { .channels = 2, .bits = 24, .dataBytes = 12 },
                               { .channels = 1, .bits = 24, .dataBytes = 12 },
                               { .channels = 6, .bits = 16, .dataBytes = 12 } };
    for (const WaveSpec& wave : cases) {
        StreamFormat format;
        const FileFault fault = recognise(joined({ waveHeader(wave), filler(12) }), &format);
        EXPECT_EQ(fault.code, 0u);
        EXPECT_TRUE(fault.why.starts_with("players would not find its samples of ")) << fault.why;
    }
}

// ---- video on its way ---------------------------------------------------------------------------------------------

VideoWatch watched(const Bytes& video, const std::vector<uint64_t>& sizes)
{
    VideoWatch watch;
    for (const Bytes& piece : cut(video, sizes)) watchVideo(&watch, piece.data(), piece.size());
    return watch;
}

TEST(MuxVideoWatch, CountsPicturesInAnyPieces)
{
    const VideoStream video = makeVideo(gops(3, { .bytes = { 300 }, .end = false }));
    for (const int size : { 1, 2, 3, 7, 8, 9, 64, 1000, 100000 }) {
        SCOPED_TRACE(size);
        const VideoWatch watch = watched(video.bytes, { uint64_t(size) });
        EXPECT_EQ(watch.pictures, 36u);
        EXPECT_EQ(watch.bytes, video.bytes.size());
        EXPECT_EQ(watch.fault.why, "");
    }
}

struct WatchCase {
    const char* what;
    Bytes video;
    const char* why;
};

TEST(MuxVideoWatch, FindsWhatCannotBeTimed)
{
    const GopSpec small = { .bytes = { 200 } };
    GopSpec ended = small, bare = small, other = small, twoIntra = small, film = small;
    ended.end = true;
    bare.gop = false;
    other.rateCode = RATE_CODE_NTSC;
    twoIntra.types = "IBBPBBIBBPBB";
    const Bytes good = makeVideo({ small }).bytes;
    // Picture coding extensions behind an I picture: a field; a frame that repeats one; a whole frame.
    const Bytes field = fromHex("00 00 01 B5 8F FF F1 80"), repeats = fromHex("00 00 01 B5 8F FF F3 82"),
                whole = fromHex("00 00 01 B5 8F FF F3 80");
    const WatchCase cases[] = {
        { "whole frames", joined({ good, whole, good, filler(8) }), "" },
        { "end code at the end", joined({ makeVideo({ ended }).bytes, Bytes(20) }), "" },
        { "no group header", makeVideo({ bare }).bytes, "no group header (00 00 01 B8) stands in front of its first" },
        { "no second group header", makeVideo({ small, bare }).bytes, "picture 13 is an I picture without a group" },
        { "two I pictures", makeVideo({ twoIntra }).bytes, "picture 7 is an I picture without a group header" },
        { "another rate", makeVideo({ small, other }).bytes,
          "behind picture 12 its number of pictures a second changes" },
        { "field", joined({ good, field, filler(8) }), "picture 12 is a single field" },
        { "repeated field", joined({ good, repeats, filler(8) }), "picture 12 repeats a field" },
        { "two sequences", makeVideo({ ended, small }).bytes, "it goes on behind a sequence end code" },
    };
    for (const WatchCase& known : cases) {
        SCOPED_TRACE(known.what);
        for (const int size : { 5, 100000 }) {
            const VideoWatch watch = watched(known.video, { uint64_t(size) });
            EXPECT_EQ(watch.fault.why.substr(0, std::string(known.why).size()), known.why);
            EXPECT_EQ(watch.fault.why.empty(), std::string(known.why).empty()) << watch.fault.why;
        }
    }
}

}   // namespace
