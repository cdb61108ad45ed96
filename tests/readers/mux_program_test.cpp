// mux_program_test.cpp: `orven mux` on real streams: what ffmpeg finds in its movies, whatever the lengths and rates of
// the streams, and that a disc made of one plays.
#include "tests/readers/mux_rig.h"
#include "tests/readers/player.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace fs = std::filesystem;

#ifdef ORVEN_PROGRAM

namespace {

/** Multiplexes by the program. @return its exit code */
int runMux(const fs::path& out, const fs::path& video, const std::vector<fs::path>& sounds)
{
    std::string command =
        std::string(ORVEN_PROGRAM) + " mux --quiet --out " + out.string() + " --video " + video.string();
    for (const fs::path& sound : sounds) command += " --audio " + sound.string();
    const int status = std::system(command.c_str());
    return status == 0 ? 0 : 1;
}

/** One stream of a movie, as ffmpeg takes it out of its packs. */
Bytes demuxed(const fs::path& movie, const std::string& stream, const std::string& form)
{
    const fs::path out = shelve({});
    runEncoder("-i " + movie.string() + " -map 0:" + stream + " " + form + " " + out.string());
    return bytesOf(out);
}

const char AC3[] = "-c:a ac3 -b:a 64k -ac 2", LAYER2[] = "-c:a mp2 -b:a 384k -ac 2", WAVE[] = "-c:a pcm_s16le -ac 2",
           PCM[] = "-c:a pcm_s16le -f s16le";

/** Samples of a WAVE file, as ffmpeg reads it. */
Bytes samplesOf(const fs::path& wave)
{
    return demuxed(wave, "a", PCM);
}

/** The first bytes of one are all bytes of the other, and what follows is silence of less than a pack. */
void expectWithSilence(const Bytes& got, const Bytes& expected)
{
    ASSERT_GE(got.size(), expected.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), got.begin()));
    EXPECT_LT(got.size() - expected.size(), 2008u);
    for (size_t i = expected.size(); i < got.size(); i++) ASSERT_EQ(got[i], 0) << i;
}

struct LengthCase {
    const char* what;
    int video, ac3, layer2, wave;   // seconds
};

// A stream that has ended must not hold up those that go on: 12 seconds of LPCM are more than a ring holds.
TEST(MuxProgram, StreamsOfAnyLength)
{
    const LengthCase cases[] = {
        { "all alike", 3, 3, 3, 3 },
        { "pictures end first", 1, 12, 12, 12 },
        { "pictures outlast all", 9, 1, 1, 1 },
        { "LPCM outlasts all", 2, 1, 3, 12 },
        { "layer 2 outlasts all", 2, 1, 12, 3 },
    };
    for (const LengthCase& lengths : cases) {
        SCOPED_TRACE(lengths.what);
        const fs::path video = realVideo(PAL, lengths.video), ac3 = realSound(AC3, "ac3", lengths.ac3),
                       layer2 = realSound(LAYER2, "mp2", lengths.layer2), wave = realSound(WAVE, "wav", lengths.wave),
                       out = shelve({});
        ASSERT_EQ(runMux(out, video, { layer2, ac3, wave }), 0);
        EXPECT_TRUE(demuxed(out, "v", "-c copy -f mpeg2video") == bytesOf(video));
        EXPECT_TRUE(demuxed(out, "i:0x1c0", "-c copy -f mp2") == bytesOf(layer2));
        EXPECT_TRUE(demuxed(out, "i:0x81", "-c copy -f ac3") == bytesOf(ac3));
        expectWithSilence(demuxed(out, "i:0xa2", PCM), samplesOf(wave));
    }
}

/** Video of a rate that the encoder is told. */
fs::path videoOf(const std::string& picture, const std::string& rate, int seconds)
{
    const fs::path out = shelve({});
    runEncoder("-f lavfi -i " + picture + " -t " + std::to_string(seconds) + " -c:v mpeg2video " + rate +
               " -bf 2 -g 12 -f mpeg2video " + out.string());
    return out;
}

// Black pictures: what the multiplexer wants to have ahead of them lasts for seconds, in which LPCM must not overflow.
TEST(MuxProgram, VideoOfVeryFewBytes)
{
    const fs::path video = videoOf("color=black:s=720x576:r=25", "-b:v 300k", 15), wave = realSound(WAVE, "wav", 15),
                   out = shelve({});
    ASSERT_LT(bytesOf(video).size(), 400000u);
    ASSERT_EQ(runMux(out, video, { wave }), 0);
    EXPECT_TRUE(demuxed(out, "v", "-c copy -f mpeg2video") == bytesOf(video));
    expectWithSilence(demuxed(out, "i:0xa0", PCM), samplesOf(wave));
}

// And what it wants of a sound of few bytes lasts for two seconds, in which video must not overflow.
TEST(MuxProgram, VideoOfVeryManyBytes)
{
    const fs::path video = videoOf("testsrc2=s=720x576:r=25,noise=alls=20:allf=t",
                                   "-b:v 8000k -minrate 8000k -maxrate 8000k -bufsize 1835k", 6),
                   ac3 = realSound(AC3, "ac3", 6), out = shelve({});
    ASSERT_GT(bytesOf(video).size(), 4500000u);
    ASSERT_EQ(runMux(out, video, { ac3 }), 0);
    EXPECT_TRUE(demuxed(out, "v", "-c copy -f mpeg2video") == bytesOf(video));
    EXPECT_TRUE(demuxed(out, "i:0x80", "-c copy -f ac3") == bytesOf(ac3));
}

// AC-3 whose bytes are exchanged in pairs, as some recorders write it, comes out in order.
TEST(MuxProgram, Ac3InTheOtherByteOrder)
{
    const Bytes sound = bytesOf(realSound("-c:a ac3 -b:a 448k -ac 6", "ac3", 3));
    Bytes exchanged = sound;
    for (size_t i = 0; i + 1 < exchanged.size(); i += 2) std::swap(exchanged[i], exchanged[i + 1]);
    const fs::path out = shelve({});
    ASSERT_EQ(runMux(out, realVideo(NTSC, 3), { shelve(exchanged) }), 0);
    EXPECT_TRUE(demuxed(out, "i:0x80", "-c copy -f ac3") == sound);
}

TEST(MuxProgram, DiscOfItsMoviePlays)
{
    const fs::path out = shelve({});
    ASSERT_EQ(runMux(out, realVideo(PAL, 9), { realSound(AC3, "ac3", 9), realSound(LAYER2, "mp2", 9) }), 0);
    const Disc disc(PAL, { { .keys = "audio2=layer2\nchapters=2\nchapter2=450000\n", .movie = out } });
    Player player(disc);
    std::vector<std::string> places;
    for (int units = 0; units < 100 && (places.empty() || places.back() != "stop"); units++) {
        const std::string place = player.next();
        if (places.empty() || place != places.back()) places.push_back(place);
    }
    EXPECT_EQ(places, (std::vector<std::string>{ "title 1 chapter 1", "title 1 chapter 2", "stop" }));
}

}   // namespace

#endif
