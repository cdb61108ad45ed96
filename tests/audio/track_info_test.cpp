// ATS_nn.nfo: what a track leaves in it, and what is read back of it.
#include "audio/track_info.h"
#include "tests/audio/table_run.h"

#include <map>

namespace {

typedef std::map<std::string, std::map<std::string, std::string>> Sections;

// A text of sections and keys, by a reader of its own.
Sections sectionsOf(const std::u16string& path)
{
    Sections sections;
    std::string line, section;
    const Bytes bytes = readFile(path);
    std::string text(bytes.begin(), bytes.end());
    text += '\n';
    for (const char c : text) {
        if (c == '\r') continue;
        if (c != '\n') {
            line += c;
            continue;
        }
        const size_t equals = line.find('=');
        if (!line.empty() && line[0] == '[') {
            section = line.substr(1, line.find(']') - 1);
        } else if (equals != std::string::npos) {
            EXPECT_EQ(0u, sections[section].count(line.substr(0, equals))) << line;
            sections[section][line.substr(0, equals)] = line.substr(equals + 1);
        }
        line.clear();
    }
    return sections;
}

void writeInfo(const std::u16string& path, uint64_t number, uint64_t firstPts, uint64_t packs)
{
    AudioTrackDesc track = {};
    track.firstCellPts = firstPts;
    track.blockSize = packs;
    EXPECT_EQ(0u, orvWriteTrackInfo(path.c_str(), number, &track));
}

typedef std::pair<uint64_t, uint64_t> Info;   // firstCellPts, blockSize

Info readInfo(const std::u16string& path, uint64_t number)
{
    AudioTrackDesc track = {};
    track.firstCellPts = track.blockSize = 77;   // what was there before does not stay
    track.playTime = track.blockStart = 88;
    EXPECT_EQ(0u, orvReadTrackInfo(path.c_str(), number, &track));
    EXPECT_EQ(88u, track.playTime);
    EXPECT_EQ(88u, track.blockStart);
    return { track.firstCellPts, track.blockSize };
}

}   // namespace

TEST(TrackInfo, ASectionForEachTrack)
{
    const TempDir folder;
    const std::u16string path = folder / u"ATS_07.nfo";
    writeInfo(path, 1, 0, 4711);
    writeInfo(path, 2, 900000, 1);
    writeInfo(path, 10, 2147483647, 0);
    writeInfo(path, 99, 5, 6);
    const Sections expected = {
        { "TRACKINFO_01", { { "TrackBlockSize", "4711" }, { "TrackFirstCellPts", "0" } } },
        { "TRACKINFO_02", { { "TrackBlockSize", "1" }, { "TrackFirstCellPts", "900000" } } },
        { "TRACKINFO_10", { { "TrackBlockSize", "0" }, { "TrackFirstCellPts", "2147483647" } } },
        { "TRACKINFO_99", { { "TrackBlockSize", "6" }, { "TrackFirstCellPts", "5" } } },
    };
    EXPECT_EQ(expected, sectionsOf(path));
    EXPECT_EQ(Info(0, 4711), readInfo(path, 1));
    EXPECT_EQ(Info(900000, 1), readInfo(path, 2));
    EXPECT_EQ(Info(0, 0), readInfo(path, 3));
    EXPECT_EQ(Info(2147483647, 0), readInfo(path, 10));
    EXPECT_EQ(Info(5, 6), readInfo(path, 99));
}

// Written as signed numbers of 32 bits
TEST(TrackInfo, LargeNumbers)
{
    const TempDir folder;
    const std::u16string path = folder / u"a.nfo";
    writeInfo(path, 1, 0x80000000, 0x1'0000'0005);
    const Sections expected = { { "TRACKINFO_01",
                                  { { "TrackFirstCellPts", "-2147483648" }, { "TrackBlockSize", "5" } } } };
    EXPECT_EQ(expected, sectionsOf(path));
}

TEST(TrackInfo, KeysAreReplacedNothingIsLost)
{
    const TempDir folder;
    const std::u16string path = folder / u"a.nfo";
    writeFile(path, "[OTHER]\r\nTrackBlockSize=9\r\n[trackinfo_02]\r\nArtist=Nobody\r\nTRACKBLOCKSIZE=1\r\n"
                    "TrackFirstCellPts=2\r\nYear=1999\r\n[LAST]\r\nx=y\r\n");
    writeInfo(path, 2, 30, 40);
    writeInfo(path, 1, 50, 60);
    Sections sections = sectionsOf(path);
    EXPECT_EQ((std::map<std::string, std::string>{ { "TrackBlockSize", "9" } }), sections["OTHER"]);
    EXPECT_EQ((std::map<std::string, std::string>{ { "x", "y" } }), sections["LAST"]);
    EXPECT_EQ("Nobody", sections["trackinfo_02"]["Artist"]);
    EXPECT_EQ("1999", sections["trackinfo_02"]["Year"]);
    EXPECT_EQ(Info(30, 40), readInfo(path, 2));
    EXPECT_EQ(Info(50, 60), readInfo(path, 1));
}

TEST(TrackInfo, WhatIsRead)
{
    const struct {
        const char* text;
        Info info;   // of track 1
    } cases[] = {
        { "", { 0, 0 } },
        { "[TRACKINFO_01]\n", { 0, 0 } },
        { "[TRACKINFO_01]\nTrackBlockSize=12\n", { 0, 12 } },
        { "[TRACKINFO_01]\nTrackFirstCellPts=12\n", { 12, 0 } },
        { "[TRACKINFO_01]\nTrackFirstCellPts=1\nTrackBlockSize=2\n", { 1, 2 } },
        { "[TRACKINFO_01]\r\nTrackBlockSize=2\r\nTrackFirstCellPts=1", { 1, 2 } },
        { "[trackinfo_01]\ntrackfirstcellpts=1\nTRACKBLOCKSIZE=2\n", { 1, 2 } },
        { "[TRACKINFO_01]\n TrackFirstCellPts = 1\nTrackBlockSize=\"2\"\n", { 1, 2 } },
        { "[TRACKINFO_1]\nTrackFirstCellPts=1\nTrackBlockSize=2\n", { 0, 0 } },
        { "[TRACKINFO_02]\nTrackFirstCellPts=1\nTrackBlockSize=2\n", { 0, 0 } },
        { "[TRACKINFO_01]\nTrackFirstCellPts=4294967295\nTrackBlockSize=2147483648\n", { 4294967295, 2147483648 } },
        { "[TRACKINFO_01]\nTrackFirstCellPts=none\nTrackBlockSize=\n", { 0, 0 } },
        { "[TRACKINFO_01]\nTrackFirstCellPts=5 ticks\nTrackBlockSize=7x\n", { 5, 7 } },
        { "TrackFirstCellPts=1\nTrackBlockSize=2\n", { 0, 0 } },
    };
    for (const auto& c : cases) {
        const TempDir folder;
        const std::u16string path = folder / u"a.nfo";
        writeFile(path, c.text);
        EXPECT_EQ(c.info, readInfo(path, 1)) << c.text;
        const Bytes left = readFile(path);   // untouched
        EXPECT_EQ(c.text, std::string(left.begin(), left.end()));
    }
}

TEST(TrackInfo, FileThatIsNotThere)
{
    const TempDir folder;
    const std::u16string path = folder / u"a.nfo";
    EXPECT_EQ(Info(0, 0), readInfo(path, 1));
    EXPECT_FALSE(fileExists(path));
    std::filesystem::create_directory(std::filesystem::path(path));
    EXPECT_EQ(Info(0, 0), readInfo(path, 1));
}

TEST(TrackInfo, FileThatCannotBeMade)
{
    const TempDir folder;
    AudioTrackDesc track = {};
    const std::u16string path = (folder.root / "missing" / "a.nfo").u16string();
    EXPECT_NE(0u, orvWriteTrackInfo(path.c_str(), 1, &track));
    EXPECT_FALSE(fileExists(folder / u"missing"));
}
