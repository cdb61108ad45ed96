#include "base/result.h"
#include "project/reader.h"
#include "tests/project/project_file.h"

namespace {

constexpr int64_t PAL = 1;

// Title set 1 of a project with this text.
struct Read {
    explicit Read(const std::string& text, uint64_t number = 1) : project(text)
    {
        result = orvReadTitleSet(&project.run, project.file, number, PAL, titleSet.get());
    }

    ProjectFile project;
    TitleSetPtr titleSet = makeTitleSet();
    uint64_t result;
};

const std::string MENU = "background=bg.mpg\nsubpicture=sp.bmp\n";

std::string withLines(const std::string& lines)
{
    return "[VTS_1]\nsource=m.vob\n" + lines;
}

LogEntry missingSource(const ProjectFile& project, const std::u16string& section)
{
    return { 0x84000409,
             u"Got 0 chars from inifile: " + project.path + u" section: " + section + u" valuename: source" };
}

}   // namespace

TEST(TitleSet, Defaults)
{
    const Read read(withLines(""));
    EXPECT_EQ(read.result, 0u);
    const TitleSetDesc& t = *read.titleSet;
    EXPECT_EQ(textOf(t.sources[0]), u"m.vob");
    for (int k = 1; k < 32; k++) EXPECT_EQ(t.sources[k], nullptr) << k;
    EXPECT_EQ(t.streamScanFile, nullptr);
    EXPECT_EQ(t.chapterCount, 0u);
    EXPECT_EQ(t.restricted, 0u);
    EXPECT_EQ(t.postCommand, 0u);
    EXPECT_EQ(t.menuCount, 0u);
    EXPECT_EQ(t.skipMenu, 0u);
    EXPECT_EQ(t.titleAttributes.mpegVersion, 1u);
    EXPECT_EQ(t.titleAttributes.isPal, 1u);
    EXPECT_EQ(t.menuAttributes.mpegVersion, 1u);
    EXPECT_TRUE(read.project.logged({}));
}

TEST(TitleSet, SectionName)
{
    const struct {
        std::string text;
        uint64_t number;
        std::u16string source;
    } cases[] = {
        { "[VTS_1]\nsource=one\n", 1, u"one" },
        { "[VTS_01]\nsource=two\n", 1, u"two" },
        { "[VTS_1]\nsource=one\n[VTS_01]\nsource=two\n", 1, u"two" },
        { "[vts_01]\nsource=two\n[VTS_1]\nsource=one\n", 1, u"two" },
        { "[VTS_010]\nsource=x\n[VTS_1]\nsource=one\n", 1, u"one" },
        { "[VTS_12]\nsource=twelve\n", 12, u"twelve" },
        { "[VTS_99]\nsource=last\n", 99, u"last" },
    };
    for (const auto& c : cases) {
        const Read read(c.text, c.number);
        EXPECT_EQ(read.result, 0u) << c.text;
        EXPECT_EQ(textOf(read.titleSet->sources[0]), c.source) << c.text;
    }
}

// A project with title set 1 under both names, whose list of sections has this many characters with their terminators.
static std::string projectWithSectionList(size_t characters)
{
    const std::string tail = "[VTS_1]\nsource=one\n[VTS_01]\nsource=two\n";   // 6 and 7 characters of the list
    std::string text;
    size_t left = characters - 13;
    for (char name = 'a'; left > 100; name++, left -= 50) text += "[" + std::string(49, name) + "]\n";
    return text + "[" + std::string(left - 1, 'Z') + "]\n" + tail;
}

// The list has room for 1024 characters with the zero behind it. One that does not fit is not searched, and one of
// exactly 1022 characters counts as one that does not fit.
TEST(TitleSet, CutSectionList)
{
    EXPECT_EQ(textOf(Read(projectWithSectionList(1021)).titleSet->sources[0]), u"two");
    EXPECT_EQ(textOf(Read(projectWithSectionList(1022)).titleSet->sources[0]), u"one");
    EXPECT_EQ(textOf(Read(projectWithSectionList(1024)).titleSet->sources[0]), u"one");
    EXPECT_EQ(textOf(Read(projectWithSectionList(1500)).titleSet->sources[0]), u"one");
#ifndef _WIN32   // Windows has its own idea of a list that just fits
    EXPECT_EQ(textOf(Read(projectWithSectionList(1023)).titleSet->sources[0]), u"two");
#endif
}

TEST(TitleSet, Skipped)
{
    for (const std::string value : { "1", "2", "4294967295" }) {
        const Read read("[VTS_1]\nskipvts=" + value + "\nvideomode=x\nchapters=256\npostcmd=x\n");
        EXPECT_EQ(read.result, 0x8400044Bu) << value;
        EXPECT_TRUE(read.project.logged({})) << value;
    }
    for (const std::string value : { "0", "yes", "" }) {
        EXPECT_EQ(Read(withLines("skipvts=" + value + "\n")).result, 0u) << value;
    }
}

TEST(TitleSet, Restricted)
{
    const struct {
        std::string value;
        uint64_t restricted;
    } cases[] = { { "yes", 1 }, { "YES", 1 }, { "Yes", 1 },  { "no", 0 },      { "1", 0 },
                  { "", 0 },    { "y", 0 },   { "yess", 0 }, { "\"yes\"", 1 }, { "yes, please", 0 } };
    for (const auto& c : cases) {
        const Read read(withLines("restricted=" + c.value + "\n"));
        EXPECT_EQ(read.result, 0u) << c.value;
        EXPECT_EQ(read.titleSet->restricted, c.restricted) << c.value;
    }
}

TEST(TitleSet, PostCommand)
{
    const struct {
        std::string value;
        uint64_t result, postCommand;
    } cases[] = {
        { "none", 0, 0 },       { "title", 0, 1 },
        { "root", 0, 2 },       { "loop", 0, 3 },
        { "LOOP", 0, 3 },       { "next", 0, 4 },
        { "", 0, 0 },           { "previous", 0, 5 },
        { "first", 0, 6 },      { "last", 0, 7 },
        { "Last", 0, 7 },       { "stop", 0x84000408, 0 },
        { ",", 0x840003EC, 0 }, { "loop 2", 0x84000408, 0 },
    };
    for (const auto& c : cases) {
        const Read read(withLines("postcmd=" + c.value + "\n"));
        EXPECT_EQ(read.result, c.result) << c.value;
        EXPECT_EQ(read.titleSet->postCommand, c.postCommand) << c.value;
        EXPECT_TRUE(read.project.logged({})) << c.value;
    }
}

TEST(TitleSet, Chapters)
{
    const std::u16string f(30, u'~');
    const std::string t(30, '~');
    const struct {
        std::string value;   // of chapter2; chapter1 is 500
        uint64_t result;
        int64_t startFrame, menuPage, highlightButton;
        std::vector<LogEntry> log;
    } cases[] = {
        { "900", 0, 900, 0, 0, {} },
        { "900,3,4", 0, 900, 3, 4, {} },
        { " 900 , 3 , 4 , 5", 0, 900, 3, 4, {} },
        { "9999999999,1,1", 0, 9999999999, 1, 1, {} },
        { "", 0, 500, 0, 0, {} },
        { "0", 0, 500, 0, 0, {} },
        { "0,3,4", 0, 500, 3, 4, {} },
        { "12x", 0, 500, 0, 0, {} },
        { "12x,3,4", 0, 500, 3, 4, {} },
        { "99999999999", 0, 500, 0, 0, {} },
        { "900 3 4", 0, 900, 0, 0, {} },
        { "900.3", 0, 900, 0, 0, {} },
        { "900\t,3,4", 0, 900, 0, 0, {} },
        { "(900", 0, 500, 0, 0, {} },
        { "(,3,4", 0, 500, 3, 4, {} },
        { ",3,4", 0, 500, 0, 0, {} },   // the first comma is the position, and 3 no comma
        { ",,3,4", 0, 500, 3, 4, {} },
        { "\"\t900\"", 0, 500, 0, 0, {} },
        { "900,,,4", 0, 900, 0, 4, {} },
        { "900,,,,", 0, 900, 0, 0, {} },
        { "100,2",
          0x840003ED,
          100,
          0,
          0,
          { { 0x840003ED, u"No comma found after <MenuPage> in <chapter> in string: " } } },
        { "100,2." + t,
          0x840003ED,
          100,
          0,
          0,
          { { 0x840003ED, u"No comma found after <MenuPage> in <chapter> in string: " + f } } },
        { "100,(" + t,
          0x840003EB,
          100,
          0,
          0,
          { { 0x840003EB, u"No integer token for <MenuPage> found in <chapter> in string: " + f } } },
        { "100,2,:" + t,
          0x840003EB,
          100,
          0,
          0,
          { { 0x840003EB, u"No integer token for <HighlightButton> found in <chapter> in string: " + f } } },
        { "100,x,2", 0x840003EB, 100, 0, 0, {} },
        { "100,2,x", 0x840003EB, 100, 0, 0, {} },
        { "100,2\x01", 0x840003E9, 100, 0, 0, { { 0x840003E9, u"Wrong ASCII character during parsing: 2\x01" } } },
        // A bad unit at the position is passed over: the next token is tried, meets it again, and ends the entry.
        { "\x01,2,3",
          0,
          500,
          0,
          0,
          { { 0x840003E8, u"Unknown ASCII character in this string: \x01,2,3" },
            { 0x840003E8, u"Unknown ASCII character in this string: \x01,2,3" } } },
        { "9\x01,2,3",
          0,
          500,
          0,
          0,
          { { 0x840003E9, u"Wrong ASCII character during parsing: 9\x01,2,3" },
            { 0x840003E8, u"Unknown ASCII character in this string: \x01,2,3" } } },
        { "900 \x01", 0, 900, 0, 0, { { 0x840003E8, u"Unknown ASCII character in this string:  \x01" } } },
        { "900,1," + std::string(54, ' ') + "12", 0, 900, 1, 12, {} },
        { "900,1," + std::string(54, ' ') + "123", 0, 900, 1, 12, {} },   // the 63rd character is cut off
    };
    for (const auto& c : cases) {
        const Read read(withLines("chapters=2\nchapter1=500\nchapter2=" + c.value + "\n"));
        EXPECT_EQ(read.result, c.result) << c.value;
        const ChapterDesc& chapter = read.titleSet->chapters[1];
        EXPECT_EQ(chapter.startFrame, c.startFrame) << c.value;
        EXPECT_EQ(chapter.menuPage, c.menuPage) << c.value;
        EXPECT_EQ(chapter.highlightButton, c.highlightButton) << c.value;
        EXPECT_EQ(read.titleSet->chapterCount, c.result ? 0u : 2u) << c.value;
        EXPECT_TRUE(read.project.logged(c.log)) << c.value;
    }
}

TEST(TitleSet, ChapterPositionsRepeat)
{
    const Read read(withLines("chapters=6\nchapter1=0\nchapter3=500\nchapter6=,\nchapter7=9\n"));
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.titleSet->chapterCount, 6u);
    const int64_t positions[] = { 0, 0, 500, 500, 500, 500, 0 };
    for (int i = 0; i < 7; i++) EXPECT_EQ(read.titleSet->chapters[i].startFrame, positions[i]) << i;
}

TEST(TitleSet, ChapterCount)
{
    const Read most(withLines("chapters=255\nchapter255=7\n"));
    EXPECT_EQ(most.result, 0u);
    EXPECT_EQ(most.titleSet->chapterCount, 255u);
    EXPECT_EQ(most.titleSet->chapters[254].startFrame, 7);
    for (const std::string count : { "256", "4294967295" }) {
        const Read more(withLines("chapters=" + count + "\nchapter1=1,x\n"));
        EXPECT_EQ(more.result, 0x840007E0u) << count;
        EXPECT_EQ(more.titleSet->chapterCount, 0u) << count;
        EXPECT_TRUE(more.project.logged({})) << count;
    }
}

TEST(TitleSet, Sources)
{
    std::string lines;
    for (int k = 1; k <= 32; k++) {
        if (k != 1 && k != 7) lines += "source" + std::to_string(k) + "=s" + std::to_string(k) + "\n";
    }
    const Read read(withLines(lines + "streamscanfile=scan.bin\n"));
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(textOf(read.titleSet->sources[0]), u"m.vob");
    for (int k = 1; k < 32; k++) {
        const std::u16string path = k == 1 || k == 7 ? u"(null)" : u"s" + toWide(std::to_string(k));
        EXPECT_EQ(textOf(read.titleSet->sources[k]), path) << k;
    }
    EXPECT_EQ(textOf(read.titleSet->streamScanFile), u"scan.bin");
}

TEST(TitleSet, MissingSource)
{
    const struct {
        std::string text;
        std::u16string section;
    } cases[] = {
        { "", u"VTS_1" },
        { "[VTS_1]\nsource=\nsource1=m.vob\n", u"VTS_1" },
        { "[VTS_01]\nsource1=m.vob\n", u"VTS_01" },
    };
    for (const auto& c : cases) {
        const Read read(c.text);
        EXPECT_EQ(read.result, 0x84000409u) << c.text;
        EXPECT_TRUE(read.project.logged({ missingSource(read.project, c.section) })) << c.text;
    }
}

TEST(TitleSet, BadPaths)
{
    for (const std::string lines :
         { "[VTS_1]\nsource=,\n", "[VTS_1]\nsource=a\nsource31=.\n", "[VTS_1]\nsource=a\nstreamscanfile=:\n" }) {
        const Read read(lines);
        EXPECT_EQ(read.result, 0x840003ECu) << lines;
        EXPECT_TRUE(read.project.logged({})) << lines;
    }
}

TEST(TitleSet, SourceEndsAtATab)
{
    const Read read("[VTS_1]\nsource=D:\\Film (1), Teil 2.vob\tcomment\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(textOf(read.titleSet->sources[0]), u"D:\\Film (1), Teil 2.vob");
}

TEST(TitleSet, MenuSections)
{
    const Read read("[VTS_01]\nsource=m.vob\nmenus=2\nvideomode=16:9\n"
                    "[VTS_1_MENU]\nvideomode=4:3\nbitrate=cbr\nmenus=7\n[VTS_01_MENU]\nbitrate=x\n"
                    "[VTS_1_MENU1]\nbackground=one\nsubpicture=s\n[VTS_1_MENU2]\nbackground=two\nsubpicture=s\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.titleSet->menuCount, 2u);
    EXPECT_EQ(textOf(read.titleSet->menus[0].background), u"one");
    EXPECT_EQ(textOf(read.titleSet->menus[1].background), u"two");
    EXPECT_EQ(read.titleSet->titleAttributes.aspectRatio, 3u);
    EXPECT_EQ(read.titleSet->menuAttributes.aspectRatio, 0u);
    EXPECT_EQ(read.titleSet->menuAttributes.bitrateMode, 1u);
}

TEST(TitleSet, FailingMenuIsCounted)
{
    const Read read(withLines("menus=3\n[VTS_1_MENU1]\n" + MENU + "[VTS_1_MENU2]\nbackground=bg\n"));
    EXPECT_EQ(read.result, 0x840003F7u);
    EXPECT_EQ(read.titleSet->menuCount, 2u);
}

TEST(TitleSet, MenuCount)
{
    std::string text = withLines("menus=99\n");
    for (int m = 1; m <= 99; m++) text += "[VTS_1_MENU" + std::to_string(m) + "]\n" + MENU;
    const Read most(text);
    EXPECT_EQ(most.result, 0u);
    EXPECT_EQ(most.titleSet->menuCount, 99u);
    EXPECT_EQ(textOf(most.titleSet->menus[98].background), u"bg.mpg");
    for (const std::string count : { "100", "4294967295" }) {
        const Read more(withLines("menus=" + count + "\n"));
        EXPECT_EQ(more.result, 0x840003FAu) << count;
        EXPECT_EQ(more.titleSet->menuCount, 0u) << count;
        EXPECT_TRUE(more.project.logged({})) << count;
    }
}

TEST(TitleSet, SkipMenu)
{
    const Read read(withLines("menus=100\n[VTS_1_MENU]\nskipmenu=5\nvideomode=x\n"));
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.titleSet->skipMenu, 5u);
    EXPECT_EQ(read.titleSet->menuCount, 0u);
    EXPECT_EQ(read.titleSet->menuAttributes.mpegVersion, 0u);   // not read
    EXPECT_EQ(textOf(read.titleSet->sources[0]), u"m.vob");
}

// Of several faults the one that is read first is told.
TEST(TitleSet, Order)
{
    const struct {
        std::string line;
        uint64_t result;
    } faults[] = {
        { "videomode=x\n", 0x840003F5 }, { "chapters=256\n", 0x840007E0 }, { "postcmd=x\n", 0x84000408 },
        { "menus=100\n", 0x840003FA },   { "source=,\n", 0x840003EC },
    };
    std::string lines = "[VTS_1]\n";
    for (size_t i = std::size(faults); i-- > 0;) {
        lines += faults[i].line;
        EXPECT_EQ(Read(lines).result, faults[i].result) << lines;
    }
    EXPECT_EQ(Read("[VTS_1]\nmenus=100\n[VTS_1_MENU]\nmpegtype=x\n").result, 0x840003FFu);
}
