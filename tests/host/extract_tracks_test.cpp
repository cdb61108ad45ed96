// extract_tracks_test.cpp: what is said of a disc's tracks, and the names of their files.
#include "host/codes.h"
#include "host/extract_tracks.h"

#include <gtest/gtest.h>

namespace {

TEST(ExtractTracks, LengthText)
{
    EXPECT_EQ(lengthText(0), "00:00.000");
    EXPECT_EQ(lengthText(44), "00:00.000");
    EXPECT_EQ(lengthText(45), "00:00.001");
    EXPECT_EQ(lengthText(90 * 61001), "01:01.001");
    EXPECT_EQ(lengthText(5399999), "01:00.000");
    EXPECT_EQ(lengthText(90000 * 3600), "60:00.000");
    EXPECT_EQ(lengthText(0xFFFFFFFF), "795:21.859");   // 4294967295 / 90 = 47721858.8
}

struct TrackCase {
    const char* what;
    DiscKind kind;
    ExtractTrack track;
    const char* text;
    uint64_t code;
    const char* why;   // empty: it can be extracted
};

TEST(ExtractTracks, TextsAndFaults)
{
    const TrackCase cases[] = {
        { "stereo",
          DISC_AUDIO,
          { 0, 9, 90000, 1, 0, 16, 76, 48000, 0 },
          "00:01.000, 48000 Hz, 16 bits, 2 channels",
          0,
          "" },
        { "one sector",
          DISC_AUDIO,
          { 9, 9, 0, 1, 0, 24, 0, 192000, 0 },
          "00:00.000, 192000 Hz, 24 bits, 2 channels",
          0,
          "" },
        { "5.1",
          DISC_AUDIO,
          { 0, 9, 0, 20, 0, 24, 24, 44100, 44100 },
          "00:00.000, 44100 Hz, 24 bits, 6 channels",
          0,
          "" },
        { "4.0",
          DISC_AUDIO,
          { 0, 9, 0, 3, 0, 16, 16, 96000, 96000 },
          "00:00.000, 96000 Hz, 16 bits, 4 channels",
          0,
          "" },
        { "5.0",
          DISC_AUDIO,
          { 0, 9, 0, 19, 0, 16, 16, 96000, 96000 },
          "00:00.000, 96000 Hz, 16 bits, 5 channels",
          0,
          "" },
        { "mono",
          DISC_AUDIO,
          { 0, 9, 0, 0, 0, 16, 0, 48000, 0 },
          "00:00.000, 48000 Hz, 16 bits, 1 channel",
          CODE_EXTRACT_ASSIGNMENT,
          "its channel assignment is 0, not 1, 3, 19 or 20" },
        { "three channels",
          DISC_AUDIO,
          { 0, 9, 0, 2, 0, 16, 16, 48000, 48000 },
          "00:00.000, 48000 Hz, 16 bits, 3 channels",
          CODE_EXTRACT_ASSIGNMENT,
          "its channel assignment is 2, not 1, 3, 19 or 20" },
        { "beyond all",
          DISC_AUDIO,
          { 0, 9, 0, 21, 0, 16, 16, 48000, 48000 },
          "00:00.000, 48000 Hz, 16 bits, an unknown number of channels",
          CODE_EXTRACT_ASSIGNMENT,
          "its channel assignment is 21, not 1, 3, 19 or 20" },
        { "20 bits",
          DISC_AUDIO,
          { 0, 9, 0, 1, 0, 20, 0, 48000, 0 },
          "00:00.000, 48000 Hz, 20 bits, 2 channels",
          0,
          "its samples have 20 bits, not 16 or 24" },
        { "unknown rate",
          DISC_AUDIO,
          { 0, 9, 0, 1, 0, 16, 0, 0, 0 },
          "00:00.000, an unknown sample rate, 16 bits, 2 channels",
          0,
          "its sample rate is not known" },
        { "groups of other bits",
          DISC_AUDIO,
          { 0, 9, 0, 20, 0, 24, 16, 48000, 48000 },
          "00:00.000, 48000 Hz, 24 + 16 bits, 6 channels",
          0,
          "its channels have not all the same bits" },
        { "groups of other rates",
          DISC_AUDIO,
          { 0, 9, 0, 20, 0, 24, 24, 96000, 48000 },
          "00:00.000, 96000 + 48000 Hz, 24 bits, 6 channels",
          0,
          "its channels have not all the same sample rate" },
        { "no sectors",
          DISC_AUDIO,
          { 9, 8, 0, 1, 0, 16, 0, 48000, 0 },
          "00:00.000, 48000 Hz, 16 bits, 2 channels",
          0,
          "its last sector lies before its first" },
        { "chapter",
          DISC_VIDEO,
          { 0, 9, 90000, 1, 0, 16, 0, 48000, 0 },
          "00:01.000, 48000 Hz, 16 bits, 2 channels",
          0,
          "" },
        { "chapter of other channels",
          DISC_VIDEO,
          { 0, 9, 90000, 0, 0, 16, 0, 48000, 0 },
          "00:01.000, 48000 Hz, 16 bits, not 2 channels",
          CODE_EXTRACT_ASSIGNMENT,
          "it has not two channels" },
        { "chapter of 96 kHz",
          DISC_VIDEO,
          { 0, 9, 90000, 1, 0, 24, 0, 0, 0 },
          "00:01.000, an unknown sample rate, 24 bits, 2 channels",
          0,
          "its sample rate is not known" },
    };
    for (const TrackCase& expected : cases) {
        SCOPED_TRACE(expected.what);
        EXPECT_EQ(trackText(expected.kind, expected.track), expected.text);
        const FileFault fault = trackFault(expected.kind, expected.track);
        EXPECT_EQ(fault.code, expected.code);
        EXPECT_EQ(fault.why, expected.why);
    }
}

ExtractTrack ofAssignment(uint32_t assign)
{
    ExtractTrack track = {};
    track.assign = assign;
    return track;
}

TEST(ExtractTracks, WaveNames)
{
    typedef std::vector<std::string> Names;
    const ExtractTrack stereo = ofAssignment(1), four = ofAssignment(3), five = ofAssignment(19),
                       six = ofAssignment(20), mono = ofAssignment(0);
    EXPECT_EQ(waveNames(stereo, 1, false), (Names{ "track001_lrf.wav" }));
    EXPECT_EQ(waveNames(stereo, 99, true), (Names{ "track099_lf.wav", "track099_rf.wav" }));
    EXPECT_EQ(waveNames(four, 2, false), (Names{ "track002_lrf.wav", "track002_lrs.wav" }));
    EXPECT_EQ(waveNames(four, 2, true).size(), 4u);
    EXPECT_EQ(waveNames(five, 2, false), (Names{ "track002_lrf.wav", "track002_lrs.wav", "track002_c.wav" }));
    EXPECT_EQ(waveNames(five, 2, true).back(), "track002_c.wav");
    EXPECT_EQ(waveNames(six, 10, false), (Names{ "track010_lrf.wav", "track010_lrs.wav", "track010_c_lfe.wav" }));
    EXPECT_EQ(waveNames(six, 10, true), (Names{ "track010_lf.wav", "track010_rf.wav", "track010_ls.wav",
                                                "track010_rs.wav", "track010_c.wav", "track010_lfe.wav" }));
    EXPECT_EQ(waveNames(mono, 1, true), Names{});
}

}   // namespace
