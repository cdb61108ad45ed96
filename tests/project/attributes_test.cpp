#include "base/result.h"
#include "project/reader.h"
#include "tests/project/project_file.h"

namespace {

constexpr int64_t PAL = 1, NTSC = 2;

// Attributes of the section [X] with these lines.
struct Read {
    explicit Read(const std::string& lines, int64_t standard = PAL) : project("[X]\n" + lines)
    {
        result = orvReadAttributes(&project.run, project.file, u"X", standard, &attributes);
    }

    ProjectFile project;
    AttributeSet attributes = {};
    uint64_t result;
};

struct FieldCase {
    std::string line;
    uint64_t result, value;
};

void expectField(uint64_t AttributeSet::*field, const std::vector<FieldCase>& cases, int64_t standard = PAL)
{
    for (const FieldCase& c : cases) {
        const Read read(c.line, standard);
        EXPECT_EQ(read.result, c.result) << c.line;
        if (!c.result) {
            EXPECT_EQ(read.attributes.*field, c.value) << c.line;
        }
        EXPECT_TRUE(read.project.logged({})) << c.line;
    }
}

void expectAudioField(uint64_t AudioStreamDesc::*field, const std::vector<FieldCase>& cases)
{
    for (const FieldCase& c : cases) {
        const Read read("audio=AC3\n" + c.line);
        EXPECT_EQ(read.result, c.result) << c.line;
        if (!c.result) {
            EXPECT_EQ(read.attributes.audio[0].*field, c.value) << c.line;
        }
        EXPECT_TRUE(read.project.logged({})) << c.line;
    }
}

}   // namespace

TEST(Attributes, NoKeys)
{
    const Read read("");
    EXPECT_EQ(read.result, 0u);
    const AttributeSet& a = read.attributes;
    EXPECT_EQ(a.aspectRatio, 0u);
    EXPECT_EQ(a.resolution, 0u);
    EXPECT_EQ(a.bitrateMode, 0u);
    EXPECT_EQ(a.mpegVersion, 1u);
    EXPECT_EQ(a.isPal, 1u);
    EXPECT_EQ(a.playTime, 1u);
    EXPECT_EQ(a.audioStreamCount, 0u);
    EXPECT_EQ(a.audioIdCounter, 0u);
    EXPECT_EQ(a.audio[0].audioFormat, -1);
    EXPECT_EQ(a.audio[0].channelCount, 0u);
    EXPECT_EQ(a.audio[0].languageCode, 0u);
    for (int k = 1; k < 8; k++) EXPECT_EQ(a.audio[k].audioFormat, 0) << k;
    for (const uint32_t color : a.colorTable) EXPECT_EQ(color & 0xFFFFFF, 0x808010u);   // Cb 128, Cr 128, Y 16
    EXPECT_TRUE(read.project.logged({}));
}

TEST(Attributes, NtscIsNotPal)
{
    EXPECT_EQ(Read("", NTSC).attributes.isPal, 0u);
}

TEST(Attributes, PlayTime)
{
    expectField(&AttributeSet::playTime, { { "playtime=0\n", 0, 1 },
                                           { "playtime=1\n", 0, 1 },
                                           { "playtime=5400\n", 0, 5400 },
                                           { "playtime=4294967295\n", 0, 4294967295 },
                                           { "playtime=x\n", 0, 1 } });
}

TEST(Attributes, VideoMode)
{
    expectField(&AttributeSet::aspectRatio, { { "videomode=4:3\n", 0, 0 },
                                              { "videomode=16:9\n", 0, 3 },
                                              { "videomode=16:9 \n", 0, 3 },
                                              { "videomode=\n", 0, 0 },
                                              { "videomode=16 : 9\n", 0x840003F5, 0 },
                                              { "videomode=\" 16:9\"\n", 0x840003F5, 0 },
                                              { "videomode=16:10\n", 0x840003F5, 0 },
                                              { "videomode=wide\n", 0x840003F5, 0 },
                                              { "videomode=,16:9\n", 0x840003EC, 0 } });
}

TEST(Attributes, Resolution)
{
    expectField(&AttributeSet::resolution, { { "resolution=720x576\n", 0, 0 },
                                             { "resolution=704x576\n", 0, 1 },
                                             { "resolution=352x576\n", 0, 2 },
                                             { "resolution=352x288\n", 0, 3 },
                                             { "resolution=\n", 0, 0 },
                                             { "resolution=:\n", 0x840003EC, 0 } });
    expectField(&AttributeSet::resolution,
                { { "resolution=720x480\n", 0, 0 },
                  { "resolution=704x480\n", 0, 1 },
                  { "resolution=352x480\n", 0, 2 },
                  { "resolution=352x240\n", 0, 3 } },
                NTSC);
}

TEST(Attributes, UnknownResolutionIsLogged)
{
    const struct {
        std::string value;
        int64_t standard;
    } cases[] = {
        { "720x480", PAL },   // a size of the other standard
        { "352x240", PAL },   { "720x576", NTSC },
        { "352x288", NTSC },  { "720X576", PAL },
        { "720 x 576", PAL }, { "1920x1080, as it is, with text enough for the half that the log keeps", PAL },
    };
    for (const auto& c : cases) {
        const Read read("resolution=" + c.value + "\n", c.standard);
        EXPECT_EQ(read.result, 0x840003F8u) << c.value;
        EXPECT_TRUE(read.project.logged({ { 0x840003F8, u"Unknown Resolution, found: " + toWide(c.value) } }))
            << c.value;
    }
}

TEST(Attributes, Bitrate)
{
    expectField(&AttributeSet::bitrateMode, { { "bitrate=vbr\n", 0, 0 },
                                              { "bitrate=cbr\n", 0, 1 },
                                              { "bitrate=CBR\n", 0, 1 },
                                              { "bitrate=VBR\n", 0, 0 },
                                              { "bitrate=\n", 0, 0 },
                                              { "bitrate=abr\n", 0x840003FE, 0 },
                                              { "bitrate=.cbr\n", 0x840003EC, 0 } });
}

TEST(Attributes, MpegType)
{
    expectField(&AttributeSet::mpegVersion, { { "mpegtype=mpeg1\n", 0, 0 },
                                              { "mpegtype=mpeg2\n", 0, 1 },
                                              { "mpegtype=MPEG1\n", 0, 0 },
                                              { "mpegtype=\n", 0, 1 },
                                              { "mpegtype=mpeg4\n", 0x840003FF, 0 },
                                              { "mpegtype=,\n", 0x840003EC, 0 } });
}

TEST(Attributes, AudioFormats)
{
    const struct {
        std::string value;
        uint64_t result;
        int64_t format;
        uint64_t streams, streamId, subStreamId;
    } cases[] = {
        { "none", 0, -1, 0, 0, 0 },       { "NONE", 0, -1, 0, 0, 0 },         { "", 0, -1, 0, 0, 0 },
        { "AC3", 0, 0, 1, 0xBD, 0x80 },   { "ac3", 0, 0, 1, 0xBD, 0x80 },     { "layer2", 0, 2, 1, 0xC0, 0 },
        { "LAYER2", 0, 2, 1, 0xC0, 0 },   { "PCM", 0, 4, 1, 0xBD, 0xA0 },     { "DTS", 0, 6, 1, 0xBD, 0x88 },
        { "SDDS", 0, 7, 1, 0xBD, 0x90 },  { "MP3", 0x84000400, -1, 0, 0, 0 }, { "AC 3", 0x84000400, -1, 0, 0, 0 },
        { ",", 0x840003EC, -1, 0, 0, 0 },
    };
    for (const auto& c : cases) {
        const Read read("audio=" + c.value + "\n");
        EXPECT_EQ(read.result, c.result) << c.value;
        EXPECT_EQ(read.attributes.audio[0].audioFormat, c.format) << c.value;
        EXPECT_EQ(read.attributes.audioStreamCount, c.streams) << c.value;
        EXPECT_EQ(read.attributes.audio[0].streamId, c.streamId) << c.value;
        EXPECT_EQ(read.attributes.audio[0].subStreamId, c.subStreamId) << c.value;
        EXPECT_TRUE(read.project.logged({})) << c.value;
    }
}

TEST(Attributes, AudioDefaults)
{
    const Read read("audio=AC3\n");
    EXPECT_EQ(read.result, 0u);
    const AudioStreamDesc& stream = read.attributes.audio[0];
    EXPECT_EQ(stream.channelCount, 2u);
    EXPECT_EQ(stream.sampleRateCode, 0u);
    EXPECT_EQ(stream.quantization, 0u);
    EXPECT_EQ(stream.languageCode, 25956u);
}

TEST(Attributes, Channels)
{
    expectAudioField(&AudioStreamDesc::channelCount, { { "channel=0\n", 0, 2 },
                                                       { "channel=1\n", 0, 1 },
                                                       { "channel=6\n", 0, 6 },
                                                       { "channel=two\n", 0, 2 },
                                                       { "channel=7\n", 0x84000401, 0 },
                                                       { "channel=4294967295\n", 0x84000401, 0 } });
}

TEST(Attributes, SampleRates)
{
    expectAudioField(&AudioStreamDesc::sampleRateCode, { { "samplerate=0\n", 0, 0 },
                                                         { "samplerate=48\n", 0, 0 },
                                                         { "samplerate=96\n", 0, 1 },
                                                         { "samplerate=96kHz\n", 0, 1 },
                                                         { "samplerate=44\n", 0x84000402, 0 },
                                                         { "samplerate=48000\n", 0x84000402, 0 } });
}

TEST(Attributes, SampleSizes)
{
    expectAudioField(&AudioStreamDesc::quantization, { { "samplesize=0\n", 0, 0 },
                                                       { "samplesize=16\n", 0, 0 },
                                                       { "samplesize=20\n", 0, 1 },
                                                       { "samplesize=24\n", 0, 2 },
                                                       { "samplesize=8\n", 0x84000403, 0 },
                                                       { "samplesize=32\n", 0x84000403, 0 } });
}

TEST(Attributes, Language)
{
    expectAudioField(&AudioStreamDesc::languageCode, { { "language=en\n", 0, 0x6E65 },
                                                       { "language=DE\n", 0, 0x4544 },
                                                       { "language=\n", 0, 0x6564 },
                                                       { "language=f\t\n", 0x84000406, 0 },
                                                       { "language=fr\trench\n", 0, 0x7266 },
                                                       { "language=d\n", 0x84000406, 0 },
                                                       { "language=deu\n", 0x84000406, 0 },
                                                       { "language=\"(1\"\n", 0, 0x3128 },
                                                       { "language=:d\n", 0x840003EC, 0 } });
    const Read wide("audio=AC3\nlanguage=\xC4\x80\xC3\xBC\n");   // U+0100, U+00FC: their low bytes
    EXPECT_EQ(wide.result, 0u);
    EXPECT_EQ(wide.attributes.audio[0].languageCode, 0xFC00u);
}

TEST(Attributes, StreamWithoutFormatReadsNothingElse)
{
    const Read read("audio=none\nchannel=9\nsamplerate=9\nsamplesize=9\nlanguage=123\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.attributes.audio[0].channelCount, 0u);
    EXPECT_EQ(read.attributes.audioIdCounter, 0u);
}

TEST(Attributes, StreamSwitch)
{
    const struct {
        std::string lines;
        uint64_t result;
        std::vector<int64_t> formats;
        uint64_t streams;
    } cases[] = {
        { "audio=AC3\naudio2=AC3\naudio3=AC3\nastreams=2\n", 0, { 0, 0, 0, -1, -1, -1, -1, -1 }, 3 },
        { "audio=PCM\naudio2=PCM\naudio8=DTS\nastreams=8\n", 0, { 4, 4, -1, -1, -1, -1, -1, 6 }, 3 },
        { "audio=PCM\naudio2=MP3\nastreams=1\n", 0, { 4, 0, 0, 0, 0, 0, 0, 0 }, 1 },
        { "audio=PCM\naudio2=PCM\n", 0, { 4, 0, 0, 0, 0, 0, 0, 0 }, 1 },
        { "audio=PCM\naudio2=PCM\nastreams=9\n", 0x8400040B, { 4, 0, 0, 0, 0, 0, 0, 0 }, 1 },
        { "audio8=MP3\nastreams=2\n", 0x84000400, { -1, -1, -1, -1, -1, -1, -1, -1 }, 0 },
    };
    for (const auto& c : cases) {
        const Read read(c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        for (size_t k = 0; k < 8; k++) EXPECT_EQ(read.attributes.audio[k].audioFormat, c.formats[k]) << c.lines << k;
        EXPECT_EQ(read.attributes.audioStreamCount, c.streams) << c.lines;
        EXPECT_TRUE(read.project.logged({})) << c.lines;
    }
}

TEST(Attributes, SuffixedKeys)
{
    const Read read("astreams=2\naudio2=PCM\nchannel2=1\nsamplerate2=96\nsamplesize2=24\nlanguage2=en\n"
                    "audio8=layer2\nchannel8=6\nsamplesize8=20\nchannel=5\n");
    EXPECT_EQ(read.result, 0u);
    const AudioStreamDesc& second = read.attributes.audio[1];
    EXPECT_EQ(second.audioFormat, 4);
    EXPECT_EQ(second.channelCount, 1u);
    EXPECT_EQ(second.sampleRateCode, 1u);
    EXPECT_EQ(second.quantization, 2u);
    EXPECT_EQ(second.languageCode, 0x6E65u);
    const AudioStreamDesc& eighth = read.attributes.audio[7];
    EXPECT_EQ(eighth.audioFormat, 2);
    EXPECT_EQ(eighth.channelCount, 6u);
    EXPECT_EQ(eighth.quantization, 1u);
    EXPECT_EQ(eighth.streamId, 0xC1u);
}

// The counter runs across formats, and entries are not packed.
TEST(Attributes, AudioIds)
{
    const struct {
        std::string lines;
        uint64_t streamIds[8], subStreamIds[8], streams;
    } cases[] = {
        { "audio=none\naudio2=AC3\n", { 0, 0xBD }, { 0, 0x80 }, 1 },
        { "audio=AC3\naudio2=PCM\n", { 0xBD, 0xBD }, { 0x80, 0xA1 }, 2 },
        { "audio=layer2\naudio2=DTS\naudio3=SDDS\naudio4=layer2\naudio5=none\naudio6=AC3\naudio7=PCM\naudio8=layer2\n",
          { 0xC0, 0xBD, 0xBD, 0xC3, 0, 0xBD, 0xBD, 0xC6 },
          { 0, 0x89, 0x92, 0, 0, 0x84, 0xA5, 0 },
          7 },
    };
    for (const auto& c : cases) {
        const Read read(c.lines + "astreams=2\n");
        EXPECT_EQ(read.result, 0u) << c.lines;
        for (int k = 0; k < 8; k++) {
            EXPECT_EQ(read.attributes.audio[k].streamId, c.streamIds[k]) << c.lines << k;
            EXPECT_EQ(read.attributes.audio[k].subStreamId, c.subStreamIds[k]) << c.lines << k;
        }
        EXPECT_EQ(read.attributes.audioStreamCount, c.streams) << c.lines;
        EXPECT_EQ(read.attributes.audioIdCounter, c.streams) << c.lines;
    }
}

TEST(Attributes, ColorTable)
{
    const std::u16string place = u"<colortable> in string: ";
    const struct {
        std::string value;
        uint64_t result, color;
        std::vector<LogEntry> log;
    } cases[] = {
        { "255,0,0", 0, 0x5BF051, {} },   // Y 81, Cr 240, Cb 91
        { "0,255,0", 0, 0x362390, {} },   // Y 144, Cr 35, Cb 54
        { "0,0,255", 0, 0xF06E28, {} },   // Y 40, Cr 110, Cb 240
        { "255,255,255", 0, 0x8080EB, {} },
        { " 255 , 0 , 0 , 1", 0, 0x5BF051, {} },
        { "255,,,0", 0, 0x5BF051, {} },
        { "0,0,0", 0, 0x808010, {} },
        { "256,0,0", 0x840003F9, 0, {} },
        { "0,256,0", 0x840003F9, 0, {} },
        { "0,0,256", 0x840003F9, 0, {} },
        { "9999999999,0,0", 0x840003F9, 0, {} },
        { "red,0,0", 0x840003EB, 0, {} },
        { "255", 0x840003ED, 0, { { 0x840003ED, u"No comma found after <red> in " + place } } },
        { "255;0;0", 0x840003EB, 0, {} },
        { "1,2)~~~~~~~~~~~~~~~~~~~~~~~~~~~",
          0x840003ED,
          0,
          { { 0x840003ED, u"No comma found after <green> in " + place + std::u16string(27, u'~') } } },
        { "(~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~",
          0x840003EB,
          0,
          { { 0x840003EB, u"No integer token for <red> found in " + place + std::u16string(30, u'~') } } },
        { "1,.~~~~~~~~~~~~~~~~~~~~~~~~~~~~",
          0x840003EB,
          0,
          { { 0x840003EB, u"No integer token for <green> found in " + place + std::u16string(28, u'~') } } },
        { "1,2,:~~~~~~~~~~~~~~~~~~~~~~~~~~",
          0x840003EB,
          0,
          { { 0x840003EB, u"No integer token for <blue> found in " + place + std::u16string(26, u'~') } } },
        { "1,2," + std::string(25, ' ') + "12", 0, 0x847F12, {} },    // 31 characters: Y 18, Cr 127, Cb 132
        { "1,2," + std::string(25, ' ') + "123", 0, 0x847F12, {} },   // the 32nd is cut off
    };
    for (const auto& c : cases) {
        const Read read("colortable16=" + c.value + "\n");
        EXPECT_EQ(read.result, c.result) << c.value;
        if (!c.result) {
            EXPECT_EQ(read.attributes.colorTable[15] & 0xFFFFFF, c.color) << c.value;
        }
        EXPECT_EQ(read.attributes.colorTable[0] & 0xFFFFFF, 0x808010u) << c.value;
        EXPECT_TRUE(read.project.logged(c.log)) << c.value;
    }
}

TEST(Attributes, ColorTableOrder)
{
    const Read read("colortable1=255,0,0\ncolortable2=0,255,0\n");
    EXPECT_EQ(read.attributes.colorTable[0] & 0xFFFFFF, 0x5BF051u);
    EXPECT_EQ(read.attributes.colorTable[1] & 0xFFFFFF, 0x362390u);
    EXPECT_EQ(read.attributes.colorTable[2] & 0xFFFFFF, 0x808010u);
}

// Of two faults the one that is read first is told.
TEST(Attributes, Order)
{
    const struct {
        std::string line;
        uint64_t result;
    } faults[] = {
        { "videomode=x\n", 0x840003F5 },   { "resolution=x\n", 0x840003F8 }, { "bitrate=x\n", 0x840003FE },
        { "mpegtype=x\n", 0x840003FF },    { "audio=x\n", 0x84000400 },      { "astreams=9\n", 0x8400040B },
        { "colortable1=x\n", 0x840003EB },
    };
    std::string lines;
    for (size_t i = std::size(faults); i-- > 0;) {
        lines += faults[i].line;
        EXPECT_EQ(Read(lines).result, faults[i].result) << lines;
    }
    const struct {
        std::string line;
        uint64_t result;
    } audioFaults[] = {
        { "channel=7\n", 0x84000401 },
        { "samplerate=7\n", 0x84000402 },
        { "samplesize=7\n", 0x84000403 },
        { "language=7\n", 0x84000406 },
    };
    lines = "audio=AC3\nastreams=9\n";
    for (size_t i = std::size(audioFaults); i-- > 0;) {
        lines += audioFaults[i].line;
        EXPECT_EQ(Read(lines).result, audioFaults[i].result) << lines;
    }
}

TEST(Attributes, StreamWithoutSuffix)
{
    const ProjectFile project("[X]\naudio=DTS\nchannel=5\n");
    AttributeSet attributes = {};
    attributes.audioIdCounter = 2;
    AudioStreamDesc stream = {};
    EXPECT_EQ(orvReadAudioStream(&project.run, &attributes, &stream, project.file, u"X", nullptr), 0u);
    EXPECT_EQ(stream.channelCount, 5u);
    EXPECT_EQ(stream.subStreamId, 0x8Au);
    EXPECT_EQ(attributes.audioIdCounter, 3u);
    EXPECT_EQ(attributes.audioStreamCount, 1u);
}
