#include "base/result.h"
#include "project/audio_reader.h"
#include "project/channel_assignment.h"
#include "tests/project/audio_project.h"

#include <iterator>

namespace {

const std::string GOOD = "format=LPCM\nassign=1\nsamplesize=16\nsamplerate=48000\nplaytime=90000\n";
const std::string TAIL(60, '~');   // behind a fault, so that the first half of a log entry shows the whole message
const std::u16string WIDE_TAIL(60, u'~');

// A title set of a project.
struct Read {
    explicit Read(const std::string& text, uint64_t number = 1)
        : project(text), titleSet(*addTitleSet(owner.get(), number))
    {
        result = orvReadAudioTitleSet(&project.run, project.file, number, &titleSet);
    }

    ProjectFile project;
    AudioContextPtr owner = makeAudioContext(project);
    AudioTitleSetDesc& titleSet;
    uint64_t result;
};

// One track of these lines; a key that stands in them wins over that of GOOD.
std::string track(const std::string& lines)
{
    return "[ATS_01]\ntracks=1\n[TRACK_01_01]\n" + lines + GOOD;
}

struct ReadTrack : Read {
    explicit ReadTrack(const std::string& lines) : Read(track(lines)) {}

    const AudioTrackDesc& desc = titleSet.tracks[0];
};

// One key of a track and what the reader gives for it.
struct ResultCase {
    std::string line;
    uint64_t result;
};

void expectResults(const std::vector<ResultCase>& cases)
{
    for (const ResultCase& c : cases) {
        const ReadTrack read(c.line);
        EXPECT_EQ(read.result, c.result) << c.line;
        EXPECT_TRUE(read.project.logged({})) << c.line;
    }
}

std::string numbered(const std::string& name, int number)
{
    return name + (number < 10 ? "0" : "") + std::to_string(number);
}

}   // namespace

TEST(AudioTitleSet, NoKeys)
{
    for (const char* text : { "", "[ATS_01]\n", "[ATS_01]\ntracks=0\n[TRACK_01_01]\nformat=x\n", "[ATS_01]\ntracks=x\n",
                              "[ATS_1]\nalbum=a\nartist=b\ntracks=1\n" }) {
        const Read read(text);
        EXPECT_EQ(read.result, 0u) << text;
        EXPECT_EQ(read.titleSet.album[0], 0) << text;
        EXPECT_EQ(read.titleSet.artist[0], 0) << text;
        EXPECT_EQ(read.titleSet.trackCount, 0u) << text;
        EXPECT_EQ(read.titleSet.isNfo, 0u) << text;
        EXPECT_TRUE(read.project.logged({})) << text;
    }
}

// No tokens: any text is welcome, up to 127 characters.
TEST(AudioTitleSet, Texts)
{
    const std::string full(127, 'x');
    const struct {
        std::string value;
        std::u16string text;
    } cases[] = {
        { "", u"" },
        { "Night Music", u"Night Music" },
        { ",first: (a), .b", u",first: (a), .b" },
        { "a\tb", u"a\tb" },
        { "a\x01"
          "b",
          u"a\x01"
          u"b" },
        { "\" blanks \"", u" blanks " },
        { "\xC3\x84 \xE4\xB8\xAD", u"\u00C4 \u4E2D" },
        { full, toWide(full) },
        { full + "y", toWide(full) },
        { full + std::string(5000, 'z'), toWide(full) },
    };
    for (const auto& c : cases) {
        const Read read("[ATS_01]\nalbum=" + c.value + "\nartist=" + c.value +
                        "\ntracks=1\n[TRACK_01_01]\ntitle=" + c.value + "\n" + GOOD);
        EXPECT_EQ(read.result, 0u) << c.value;
        EXPECT_EQ(std::u16string(read.titleSet.album), c.text) << c.value;
        EXPECT_EQ(std::u16string(read.titleSet.artist), c.text) << c.value;
        EXPECT_EQ(std::u16string(read.titleSet.tracks[0].title), c.text) << c.value;
        EXPECT_TRUE(read.project.logged({})) << c.value;
    }
}

TEST(AudioTitleSet, MenusHaveNoEffect)
{
    for (const char* value : { "1", "100", "4294967295", "x" }) {
        const Read read("[ATS_01]\nmenus=" + std::string(value) + "\n");
        EXPECT_EQ(read.result, 0u) << value;
    }
}

TEST(AudioTitleSet, MostTracks)
{
    std::string text = "[ATS_12]\ntracks=100\n";
    for (int i = 1; i <= 100; i++)
        text += "[" + numbered("TRACK_12_", i) + "]\ntitle=" + std::to_string(i) + "\n" + GOOD;
    const Read read(text, 12);
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.titleSet.trackCount, 100u);
    for (int i = 1; i <= 100; i++) {
        EXPECT_EQ(std::u16string(read.titleSet.tracks[i - 1].title), toWide(std::to_string(i)));
        EXPECT_EQ(read.titleSet.tracks[i - 1].playTime, 90000u) << i;
    }
}

// Told as soon as the number is read: no track is looked at.
TEST(AudioTitleSet, TooManyTracks)
{
    for (const char* value : { "101", "4294967295" }) {
        const Read read("[ATS_01]\nalbum=a\ntracks=" + std::string(value) + "\n[TRACK_01_01]\ntitle=b\nformat=x\n");
        EXPECT_EQ(read.result, 0x84000C1Cu) << value;
        EXPECT_EQ(std::u16string(read.titleSet.album), u"a") << value;
        EXPECT_EQ(read.titleSet.tracks[0].title[0], 0) << value;
        EXPECT_TRUE(read.project.logged({})) << value;
    }
}

TEST(AudioTitleSet, SectionNames)
{
    const std::string first = "[ATS_03]\nalbum=third\ntracks=2\n", one = "[TRACK_03_01]\ntitle=one\n" + GOOD;
    const Read read(first + one + "[TRACK_03_02]\ntitle=two\n" + GOOD + "[ATS_01]\nalbum=first\n", 3);
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(std::u16string(read.titleSet.album), u"third");
    EXPECT_EQ(std::u16string(read.titleSet.tracks[0].title), u"one");
    EXPECT_EQ(std::u16string(read.titleSet.tracks[1].title), u"two");
    // A track whose section is not there lacks its format; other forms of the name are other sections.
    EXPECT_EQ(Read(first + one, 3).result, 0x8400177Bu);
    EXPECT_EQ(Read(first + one + "[TRACK_03_2]\n" + GOOD, 3).result, 0x8400177Bu);
    EXPECT_EQ(Read(first + one + "[TRACK_3_02]\n" + GOOD, 3).result, 0x8400177Bu);
    EXPECT_EQ(Read("[ats_99]\nTracks=1\n[track_99_01]\n" + GOOD, 99).result, 0u);
}

TEST(AudioTitleSet, TrackDefaults)
{
    const ReadTrack read("");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.titleSet.trackCount, 1u);
    EXPECT_EQ(read.titleSet.isNfo, 0u);
    EXPECT_EQ(read.desc.assign, 1u);
    EXPECT_EQ(read.desc.playTime, 90000u);
    EXPECT_EQ(read.desc.trackFlag, 0u);
    EXPECT_EQ(read.desc.channelCount, 2u);
    EXPECT_EQ(read.desc.channels1, 2u);
    EXPECT_EQ(read.desc.channels2, 0u);
    EXPECT_EQ(read.desc.sampleSize1, 16u);
    EXPECT_EQ(read.desc.sampleRate1, 48000u);
    EXPECT_EQ(read.desc.sampleSize2, 0u);
    EXPECT_EQ(read.desc.sampleRate2, 0u);
    EXPECT_EQ(read.desc.startSample, 0u);
    EXPECT_EQ(read.desc.endSample, 0u);
    EXPECT_EQ(read.desc.multiFile, 0u);
    EXPECT_EQ(read.desc.title[0], 0);
    for (const char16_t* path : read.desc.channelPaths) EXPECT_EQ(path, nullptr);
    EXPECT_EQ(read.desc.firstCellPts, 0u);
    EXPECT_EQ(read.desc.blockStart, 0u);
    EXPECT_EQ(read.desc.blockSize, 0u);
    EXPECT_EQ(read.desc.sourceSize, 0u);
}

// Whatever the four characters are.
TEST(AudioTitleSet, FormatIsFourCharacters)
{
    expectResults({
        { "format=LPCM\n", 0 },
        { "format=lpcm\n", 0 },
        { "format=WAVE\n", 0 },
        { "format=a b,\n", 0 },
        { "format=.:()\n", 0 },
        { "format=\" xy \"\n", 0 },
        { "format=W\x01V\x02\n", 0 },
        { "format=\"\tWAV\"\n", 0 },
        { "format=\xC3\x84\xC3\x96\xC3\x9C\xE4\xB8\xAD\n", 0 },   // four, in ten bytes
        { "format=\n", 0x8400177B },
        { "format=\"\"\n", 0x8400177B },
        { "format=PCM\n", 0x8400177B },
        { "format=LPCM5\n", 0x8400177B },
        { "format=LP CM\n", 0x8400177B },
        { "format=LPCM\tx\n", 0x8400177B },
        { "format=x\n", 0x8400177B },
        { "format=" + std::string(63, 'x') + "\n", 0x8400177B },
        { "format=" + std::string(200, 'x') + "\n", 0x8400177B },
    });
    EXPECT_EQ(Read("[ATS_01]\ntracks=1\n[TRACK_01_01]\nassign=1\n").result, 0x8400177Bu);
}

// The 21 assignments: channels of group 1, of group 2.
TEST(AudioTitleSet, Assignments)
{
    const struct {
        uint64_t first, second;
    } groups[] = { { 1, 0 }, { 2, 0 }, { 2, 1 }, { 2, 2 }, { 2, 1 }, { 2, 2 }, { 2, 3 },
                   { 2, 1 }, { 2, 2 }, { 2, 3 }, { 2, 2 }, { 2, 3 }, { 2, 4 }, { 3, 1 },
                   { 3, 2 }, { 3, 1 }, { 3, 2 }, { 3, 3 }, { 4, 1 }, { 4, 1 }, { 4, 2 } };
    ASSERT_EQ(std::size(groups), 21u);
    for (uint64_t assign = 0; assign <= 20; assign++) {
        // 0 as written is a missing key: mono is asked for by its channels.
        const std::string line = assign ? "" : "channels=1\n";
        const ReadTrack read("samplesize=24\nsamplerate=96000\n" + line + "assign=" + std::to_string(assign) + "\n");
        EXPECT_EQ(read.result, 0u) << assign;
        EXPECT_EQ(read.desc.assign, assign);
        EXPECT_EQ(read.desc.channels1, groups[assign].first) << assign;
        EXPECT_EQ(read.desc.channels2, groups[assign].second) << assign;
        EXPECT_EQ(read.desc.channelCount, groups[assign].first + groups[assign].second) << assign;
        EXPECT_EQ(read.desc.sampleSize1, 24u) << assign;
        EXPECT_EQ(read.desc.sampleRate1, 96000u) << assign;
        EXPECT_EQ(read.desc.sampleSize2, assign < 2 ? 0u : 24u) << assign;
        EXPECT_EQ(read.desc.sampleRate2, assign < 2 ? 0u : 96000u) << assign;

        AudioTrackDesc track = {};
        EXPECT_EQ(orvSetChannels(&track, assign), 0u);
        EXPECT_EQ(track.assign, assign);
        EXPECT_EQ(track.channels1, groups[assign].first) << assign;
        EXPECT_EQ(track.channels2, groups[assign].second) << assign;
        EXPECT_EQ(track.channelCount, groups[assign].first + groups[assign].second) << assign;
        orvSetSampling(&track, 16, 44100);
        EXPECT_EQ(track.sampleSize1, 16u);
        EXPECT_EQ(track.sampleRate1, 44100u);
        EXPECT_EQ(track.sampleSize2, assign < 2 ? 0u : 16u) << assign;
        EXPECT_EQ(track.sampleRate2, assign < 2 ? 0u : 44100u) << assign;
    }
    AudioTrackDesc track = {};
    for (const uint64_t assign : { uint64_t(21), uint64_t(255), uint64_t(256), uint64_t(0x100000001), ~uint64_t(0) }) {
        EXPECT_EQ(orvSetChannels(&track, assign), 0x84001786u) << assign;
    }
    expectResults({ { "assign=21\n", 0x84001786 },
                    { "assign=22\n", 0x84001786 },
                    { "assign=256\n", 0x84001786 },
                    { "assign=4294967295\n", 0x84001786 },
                    { "assign=4294967297\n", 0 },   // modulo 2^32
                    { "assign=20x\n", 0 } });
}

// Without an assignment, or with 0, the number of channels decides; with one nobody looks at it.
TEST(AudioTitleSet, AssignOrChannels)
{
    const struct {
        std::string lines;
        uint64_t result, assign, channels1, channels2;
    } cases[] = {
        { "assign=\nchannels=1\n", 0, 0, 1, 0 },
        { "assign=0\nchannels=1\n", 0, 0, 1, 0 },
        { "assign=x\nchannels=2\n", 0, 1, 2, 0 },
        { "assign=0\nchannels=6\n", 0, 20, 4, 2 },
        { "assign=4294967296\nchannels=6\n", 0, 20, 4, 2 },
        { "assign=3\nchannels=6\n", 0, 3, 2, 2 },
        { "assign=2\nchannels=5\n", 0, 2, 2, 1 },
        { "assign=0\n", 0x8400177A, 0, 0, 0 },
        { "assign=0\nchannels=0\n", 0x8400177A, 0, 0, 0 },
        { "assign=0\nchannels=3\n", 0x8400177A, 0, 0, 0 },
        { "assign=0\nchannels=4\n", 0x8400177A, 0, 0, 0 },
        { "assign=0\nchannels=5\n", 0x8400177A, 0, 0, 0 },
        { "assign=0\nchannels=7\n", 0x8400177A, 0, 0, 0 },
        { "assign=0\nchannels=x\n", 0x8400177A, 0, 0, 0 },
    };
    for (const auto& c : cases) {
        const ReadTrack read(c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        if (c.result) continue;
        EXPECT_EQ(read.desc.assign, c.assign) << c.lines;
        EXPECT_EQ(read.desc.channels1, c.channels1) << c.lines;
        EXPECT_EQ(read.desc.channels2, c.channels2) << c.lines;
        EXPECT_EQ(read.desc.channelCount, c.channels1 + c.channels2) << c.lines;
        EXPECT_EQ(read.desc.sampleSize2, c.assign < 2 ? 0u : 16u) << c.lines;
    }
}

TEST(AudioTitleSet, SampleSizesAndRates)
{
    for (const unsigned size : { 16u, 20u, 24u }) {
        for (const unsigned rate : { 44100u, 48000u, 88200u, 96000u, 176400u, 192000u }) {
            const ReadTrack read("assign=20\nsamplesize=" + std::to_string(size) +
                                 "\nsamplerate=" + std::to_string(rate) + "\nsamplesize2=99\nsamplerate2=1\n");
            EXPECT_EQ(read.result, 0u) << size << " " << rate;
            EXPECT_EQ(read.desc.sampleSize1, size);
            EXPECT_EQ(read.desc.sampleSize2, size);
            EXPECT_EQ(read.desc.sampleRate1, rate);
            EXPECT_EQ(read.desc.sampleRate2, rate);
        }
    }
    expectResults({
        { "samplesize=\n", 0x84001778 },
        { "samplesize=0\n", 0x84001778 },
        { "samplesize=8\n", 0x84001778 },
        { "samplesize=18\n", 0x84001778 },
        { "samplesize=28\n", 0x84001778 },
        { "samplesize=32\n", 0x84001778 },
        { "samplesize=x\n", 0x84001778 },
        { "samplesize=16 bits\n", 0 },
        { "samplerate=\n", 0x84001779 },
        { "samplerate=0\n", 0x84001779 },
        { "samplerate=48\n", 0x84001779 },
        { "samplerate=32000\n", 0x84001779 },
        { "samplerate=64000\n", 0x84001779 },
        { "samplerate=192001\n", 0x84001779 },
        { "samplerate=384000\n", 0x84001779 },
        { "samplerate=4294967295\n", 0x84001779 },
        { "samplesize2=x\nsamplerate2=x\n", 0 },
    });
}

// Ticks as written, else from the samples: signed, 64 bits wide, cut towards zero.
TEST(AudioTitleSet, PlayTime)
{
    const struct {
        std::string lines;
        uint64_t result;
        int64_t playTime;
        uint64_t start, end;
    } cases[] = {
        { "playtime=1\n", 0, 1, 0, 0 },
        { "playtime=4294967295\n", 0, 4294967295, 0, 0 },
        { "playtime=7\nstartsample=5\nendsample=48000\n", 0, 7, 5, 48000 },
        { "playtime=0\nstartsample=0\nendsample=48000\n", 0, 90000, 0, 48000 },
        { "playtime=\nendsample=48000\n", 0, 90000, 0, 48000 },
        { "playtime=x\nendsample=1\n", 0, 1, 0, 1 },   // 1.875
        { "playtime=0\nstartsample=24000\nendsample=48000\n", 0, 45000, 24000, 48000 },
        { "playtime=0\nstartsample=48000\nendsample=48000\n", 0, 0, 48000, 48000 },
        { "playtime=0\nstartsample=48000\nendsample=1\n", 0, -89998, 48000, 1 },   // -89998.125
        { "playtime=0\nstartsample=2\nendsample=1\n", 0, -1, 2, 1 },               // -1.875
        { "playtime=0\nendsample=44100\nsamplerate=44100\n", 0, 90000, 0, 44100 },
        { "playtime=0\nendsample=192000\nsamplerate=192000\n", 0, 90000, 0, 192000 },
        // 4294967295 x 90000 / 44100 = 8765239377.55
        { "playtime=0\nendsample=4294967295\nsamplerate=44100\n", 0, 8765239377, 0, 4294967295 },
        // -4294967294 x 90000 / 44100 = -8765239375.51
        { "playtime=0\nstartsample=4294967295\nendsample=1\nsamplerate=44100\n", 0, -8765239375, 4294967295, 1 },
        { "playtime=0\n", 0x8400177C, 0, 0, 0 },
        { "playtime=0\nendsample=0\nstartsample=9\n", 0x8400177C, 0, 9, 0 },
        { "playtime=4294967296\nendsample=x\n", 0x8400177C, 0, 0, 0 },
    };
    for (const auto& c : cases) {
        const ReadTrack read(c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        EXPECT_EQ(read.desc.startSample, c.start) << c.lines;
        EXPECT_EQ(read.desc.endSample, c.end) << c.lines;
        if (!c.result) {
            EXPECT_EQ(int64_t(read.desc.playTime), c.playTime) << c.lines;
        }
        EXPECT_EQ(read.desc.trackFlag, 0u) << c.lines;
        EXPECT_TRUE(read.project.logged({})) << c.lines;
    }
}

TEST(AudioTitleSet, ChannelPaths)
{
    const ReadTrack six("assign=20\nchannel1=a.wav\nchannel2=(b), c.wav\nchannel4=\xC3\xA9.wav\tx\nchannel5=\n"
                        "channel6=\" f\"\nchannel7=,\n");
    EXPECT_EQ(six.result, 0u);
    const std::u16string paths[] = { u"a.wav", u"(b), c.wav", u"(null)", u"\u00E9.wav", u"(null)", u" f" };
    for (int c = 0; c < 6; c++) EXPECT_EQ(textOf(six.desc.channelPaths[c]), paths[c]) << c;
    EXPECT_EQ(six.desc.multiFile, 0u);

    // As many as the track has channels; what stands in further keys is not looked at.
    const ReadTrack two("channel1=a\nchannel2=b\nchannel3=,\nchannel4=x\x01\n");
    EXPECT_EQ(two.result, 0u);
    EXPECT_EQ(textOf(two.desc.channelPaths[1]), u"b");
    EXPECT_EQ(two.desc.channelPaths[2], nullptr);
    EXPECT_TRUE(two.project.logged({}));

    const ReadTrack longest("channel1=" + std::string(4096, 'x') + "\n");
    EXPECT_EQ(longest.result, 0u);
    EXPECT_EQ(textOf(longest.desc.channelPaths[0]), std::u16string(4095, u'x'));
}

TEST(AudioTitleSet, ChannelFaults)
{
    const std::vector<FaultCase> cases = {
        { "channel1=,a.wav\n", 0x840003EC, {} },
        { "channel1=a\nchannel2=.\\b.wav\n", 0x840003EC, {} },
        { "assign=20\nchannel6=:\n", 0x840003EC, {} },
        { "channel1=\"\ta\"\n", 0x840003EC, {} },
        { "channel1=a\x01" + TAIL + "\n",
          0x840003E9,
          { { 0x840003E9, u"Wrong ASCII character during parsing: a\x01" + WIDE_TAIL } } },
        { "assign=20\nchannel3=\"\x02" + TAIL + "\"\n",
          0x840003E8,
          { { 0x840003E8, u"Unknown ASCII character in this string: \x02" + WIDE_TAIL } } },
    };
    for (const FaultCase& c : cases) {
        const ReadTrack read(c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        EXPECT_TRUE(read.project.logged(c.log)) << c.lines;
    }
}

// A first channel that ends in AOB: its file name becomes that of the information file beside it.
TEST(AudioTitleSet, FinishedAob)
{
    const std::string folder(4080, 'd');
    const struct {
        uint64_t number;
        std::string path;
        std::u16string result;
        uint64_t isNfo;
    } cases[] = {
        { 3, "D:\\X\\ATS_03_1.AOB", u"D:\\X\\ATS_03.nfo", 1 },
        { 1, "D:\\X\\ATS_03_1.AOB", u"D:\\X\\ATS_01.nfo", 1 },   // the number is the title set's
        { 99, "D:\\X\\a.aob", u"D:\\X\\ATS_99.nfo", 1 },
        { 1, "D:\\X\\a.aOb", u"D:\\X\\ATS_01.nfo", 1 },
        { 1, "/discs/a b/ATS_01_1.AOB", u"/discs/a b/ATS_01.nfo", 1 },
        { 1, "a/b\\c.AOB", u"a/b\\ATS_01.nfo", 1 },
        { 1, "a\\b/c.AOB", u"a\\b/ATS_01.nfo", 1 },
        { 1, "/a.AOB", u"/ATS_01.nfo", 1 },
        { 1, "\\AOB", u"\\ATS_01.nfo", 1 },        // a name shorter than the new one
        { 1, "x\\fooAOB", u"x\\ATS_01.nfo", 1 },   // no dot is asked for
        { 1, "x\\.aob", u"x\\ATS_01.nfo", 1 },
        { 1, "D:\\\xC3\x84\\\xE4\xB8\xAD.AOB", u"D:\\\u00C4\\ATS_01.nfo", 1 },
        { 1, "D:\\X\\a.AOB\tbehind a TAB", u"D:\\X\\ATS_01.nfo", 1 },
        // Without a separator the whole path is the file name.
        { 1, "ATS_01_1.AOB", u"ATS_01.nfo", 1 },
        { 7, "aob", u"ATS_07.nfo", 1 },
        // Paths of 4095 characters, of which the second grows.
        { 1, folder + "\\xxxxxxxxxxxAOB", toWide(folder) + u"\\ATS_01.nfo", 1 },
        { 1, folder + "xxxxxxxxxxx/AOB", toWide(folder) + u"xxxxxxxxxxx/ATS_01.nfo", 1 },
        { 1, "D:\\X\\a.wav", u"D:\\X\\a.wav", 0 },
        { 1, "D:\\X\\a.AOB.wav", u"D:\\X\\a.AOB.wav", 0 },
        { 1, "D:\\X.AOB\\a", u"D:\\X.AOB\\a", 0 },
        { 1, "D:\\X.AOB\\", u"D:\\X.AOB\\", 0 },
        { 1, "\"D:\\X\\a.AOB \"", u"D:\\X\\a.AOB ", 0 },
        { 1, "OB", u"OB", 0 },
        { 1, "B", u"B", 0 },
        { 1, "", u"(null)", 0 },
    };
    for (const auto& c : cases) {
        const std::string ats = numbered("[ATS_", int(c.number)), tracks = numbered("[TRACK_", int(c.number));
        const Read read(ats + "]\ntracks=1\n" + tracks + "_01]\nchannel1=" + c.path + "\n" + GOOD, c.number);
        EXPECT_EQ(read.result, 0u) << c.path;
        EXPECT_EQ(textOf(read.titleSet.tracks[0].channelPaths[0]), c.result) << c.path;
        EXPECT_EQ(read.titleSet.isNfo, c.isNfo) << c.path;
        EXPECT_EQ(read.titleSet.tracks[0].multiFile, 0u) << c.path;
        EXPECT_TRUE(read.project.logged({})) << c.path;
    }
}

TEST(AudioTitleSet, OnlyTheFirstChannelNamesAnAob)
{
    const ReadTrack read("channel1=D:\\a.wav\nchannel2=D:\\ATS_01_1.AOB\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(textOf(read.desc.channelPaths[1]), u"D:\\ATS_01_1.AOB");
    EXPECT_EQ(read.titleSet.isNfo, 0u);
}

TEST(AudioTitleSet, LastTrackDecidesIsNfo)
{
    const std::string aob = "channel1=D:\\ATS_01_1.AOB\n" + GOOD, wave = "channel1=D:\\a.wav\n" + GOOD;
    const struct {
        std::string first, second, third;
        uint64_t isNfo;
    } cases[] = {
        { aob, aob, aob, 1 }, { wave, wave, aob, 1 }, { aob, aob, wave, 0 }, { aob, aob, GOOD, 0 },   // no path at all
    };
    for (const auto& c : cases) {
        const Read read("[ATS_01]\ntracks=3\n[TRACK_01_01]\n" + c.first + "[TRACK_01_02]\n" + c.second +
                        "[TRACK_01_03]\n" + c.third);
        EXPECT_EQ(read.result, 0u);
        EXPECT_EQ(read.titleSet.isNfo, c.isNfo) << c.first << c.third;
        EXPECT_EQ(textOf(read.titleSet.tracks[0].channelPaths[0]), c.first == aob ? u"D:\\ATS_01.nfo" : u"D:\\a.wav");
    }
}

TEST(AudioTitleSet, MultiFile)
{
    const struct {
        std::string lines;
        uint64_t multiFile;
    } cases[] = {
        { "assign=0\nchannels=2\nchannel1=a.wav\nchannel2=b.wav\n", 1 },
        { "assign=1\nchannel1=a.wav\nchannel2=b.wav\n", 1 },
        { "channel1=D:\\x\\a.wav\nchannel2=d:\\X\\A.WAV\n", 0 },
        { "channel1=a.wav\nchannel2=a.wav\n", 0 },
        { "channel1=a.wav\nchannel2=a.wav2\n", 1 },
        { "channel1=a.wav\n", 0 },
        { "channel1=a.wav\nchannel2=\n", 0 },
        { "channel2=b.wav\n", 1 },   // what is there differs from what is not
        { "assign=3\nchannel1=a.wav\nchannel2=b.wav\n", 0 },
        { "assign=20\nchannel1=a.wav\nchannel2=b.wav\n", 0 },
        { "assign=0\nchannels=1\nchannel1=a.wav\nchannel2=b.wav\n", 0 },
        // Compared once the first names the information file.
        { "channel1=D:\\ATS_01_1.AOB\nchannel2=D:\\ATS_01_1.AOB\n", 1 },
        { "channel1=D:\\ATS_01_1.AOB\nchannel2=d:\\ats_01.NFO\n", 0 },
    };
    for (const auto& c : cases) {
        const ReadTrack read(c.lines);
        EXPECT_EQ(read.result, 0u) << c.lines;
        EXPECT_EQ(read.desc.multiFile, c.multiFile) << c.lines;
    }
}

// Of several faults the one that is read first is told.
TEST(AudioTitleSet, Order)
{
    const struct {
        std::string line;
        uint64_t result;
    } faults[] = {
        { "format=PCM\n", 0x8400177B },     { "assign=21\n", 0x84001786 },  { "samplesize=28\n", 0x84001778 },
        { "samplerate=1\n", 0x84001779 },   { "playtime=0\n", 0x8400177C }, { "channel1=,\n", 0x840003EC },
        { "channel2=a\x01\n", 0x840003E9 },
    };
    std::string lines;
    for (size_t i = std::size(faults); i-- > 0;) {
        lines += faults[i].line;
        EXPECT_EQ(ReadTrack(lines).result, faults[i].result) << lines;
    }
    EXPECT_EQ(ReadTrack("samplesize=28\nassign=0\n").result, 0x8400177Au);
    // A track is read whole before the next begins.
    EXPECT_EQ(Read("[ATS_01]\ntracks=2\n[TRACK_01_02]\nformat=x\n[TRACK_01_01]\nchannel1=,\n" + GOOD).result,
              0x840003ECu);
}

// What was read before a fault hangs from the root and is freed with it.
TEST(AudioTitleSet, FaultInALaterTrack)
{
    const Read read("[ATS_01]\ntracks=3\n[TRACK_01_01]\nchannel1=a\nchannel2=b\n" + GOOD +
                    "[TRACK_01_02]\nchannel1=D:\\x.AOB\nchannel2=,\n" + GOOD);
    EXPECT_EQ(read.result, 0x840003ECu);
    EXPECT_EQ(textOf(read.titleSet.tracks[0].channelPaths[1]), u"b");
    EXPECT_EQ(textOf(read.titleSet.tracks[1].channelPaths[0]), u"D:\\x.AOB");   // not yet replaced
    EXPECT_EQ(read.titleSet.tracks[2].channelCount, 0u);
}
