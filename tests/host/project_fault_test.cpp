// project_fault_test.cpp: which line of a refused project the host names, and when it rather says nothing.
#include "host/codes.h"
#include "host/project_fault.h"
#include "host/run_log.h"
#include "host/text.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace {

// A project of one title set with one menu, whose other lines are those of the case. Line 1 is "[COMMON]".
struct Lines {
    std::string common = "version=1.0";
    std::string firstPlay = {};
    std::string manager = "titlesets=1";
    std::string titleSet = {}, menus = {}, menu = {};
};

std::string projectText(const Lines& lines)
{
    return "[COMMON]\n" + lines.common + "\n[FIRSTPLAY]\n" + lines.firstPlay + "\n[VMG]\n" + lines.manager +
           "\n[VTS_1]\n" + lines.titleSet + "\nmenus=1\nsource=a.vob\n[VTS_1_MENU]\n" + lines.menus +
           "\n[VTS_1_MENU1]\n" + "background=a.mpg\nsubpicture=a.bmp\n" + lines.menu + "\n";
}

constexpr uint64_t COMMON_LINE = 2, FIRST_PLAY_LINE = 4, MANAGER_LINE = 6, TITLE_SET_LINE = 8, MENUS_LINE = 12,
                   MENU_LINE = 16;

struct RefusedCase {
    const char* what;
    Lines lines;
    uint64_t code;
    uint64_t line;
    const char* log;   // whole text that the library logs; empty: none
};

const RefusedCase REFUSED[] = {
    { "major version", { .common = "version=2.0" }, CODE_WRONG_VERSION, COMMON_LINE, "" },
    { "version, no dot",
      { .common = "version=1" },
      CODE_DOT_EXPECTED,
      COMMON_LINE,
      "No dot found after <major version> in <common> in string: " },
    { "version, no minor",
      { .common = "version=1." },
      CODE_NUMBER_EXPECTED,
      COMMON_LINE,
      "No integer token for <minor version> found in <common> in string: " },
    { "version, letters", { .common = "version=1.x" }, CODE_NUMBER_EXPECTED, COMMON_LINE, "" },
    { "mode", { .common = "version=1.0\nmode=SECAM" }, CODE_VIDEO_MODE, COMMON_LINE + 1, "" },
    { "mode, no text", { .common = "version=1.0\nmode=,x" }, CODE_STRING_EXPECTED, COMMON_LINE + 1, "" },
    { "first play, name",
      { .firstPlay = "cmd=(1,2,3)" },
      CODE_STRING_EXPECTED,
      FIRST_PLAY_LINE,
      "No integer token for <command> found in <firstplay> in string: 1,2,3)" },
    { "first play, bracket",
      { .firstPlay = "cmd=BTN_ACTION_JUMP_TT 1,2,3" },
      CODE_OPENING_EXPECTED,
      FIRST_PLAY_LINE,
      "No opening bracket found after <command> in <firstplay> in string: ,2,3" },
    { "no title sets", { .manager = "titlesets=none" }, CODE_NO_TITLE_SETS, MANAGER_LINE, "" },
    { "too many title sets", { .manager = "titlesets=100" }, CODE_TITLE_SETS, MANAGER_LINE, "" },
    { "manager's menus", { .manager = "titlesets=1\nmenus=100" }, CODE_MENUS, MANAGER_LINE + 1, "" },
    { "videomode", { .titleSet = "videomode=16x9" }, CODE_ASPECT, TITLE_SET_LINE, "" },
    { "resolution",
      { .titleSet = "resolution=720x480" },
      CODE_RESOLUTION,
      TITLE_SET_LINE,
      "Unknown Resolution, found: 720x480" },
    { "bitrate", { .titleSet = "bitrate=fast" }, CODE_BITRATE, TITLE_SET_LINE, "" },
    { "mpegtype", { .titleSet = "mpegtype=mpeg4" }, CODE_MPEG_TYPE, TITLE_SET_LINE, "" },
    { "audio", { .titleSet = "audio=MP3" }, CODE_AUDIO_TYPE, TITLE_SET_LINE, "" },
    { "channel", { .titleSet = "audio=AC3\nchannel=7" }, CODE_AUDIO_CHANNELS, TITLE_SET_LINE + 1, "" },
    { "samplerate", { .titleSet = "audio=AC3\nsamplerate=44" }, CODE_AUDIO_RATE, TITLE_SET_LINE + 1, "" },
    { "samplesize", { .titleSet = "audio=AC3\nsamplesize=8" }, CODE_AUDIO_SIZE, TITLE_SET_LINE + 1, "" },
    { "language", { .titleSet = "audio=AC3\nlanguage=deu" }, CODE_LANGUAGE, TITLE_SET_LINE + 1, "" },
    { "astreams", { .titleSet = "astreams=9" }, CODE_AUDIO_STREAMS, TITLE_SET_LINE, "" },
    { "audio3 by the switch", { .titleSet = "astreams=2\naudio3=MP3" }, CODE_AUDIO_TYPE, TITLE_SET_LINE + 1, "" },
    { "colour", { .titleSet = "colortable1=256,0,0" }, CODE_COLOR, TITLE_SET_LINE, "" },
    { "colour, one number",
      { .titleSet = "colortable16=255" },
      CODE_COMMA_EXPECTED,
      TITLE_SET_LINE,
      "No comma found after <red> in <colortable> in string: " },
    { "too many chapters", { .titleSet = "chapters=256" }, CODE_CHAPTERS, TITLE_SET_LINE, "" },
    { "chapter, two numbers",
      { .titleSet = "chapters=1\nchapter1=100,2" },
      CODE_COMMA_EXPECTED,
      TITLE_SET_LINE + 1,
      "No comma found after <MenuPage> in <chapter> in string: " },
    { "postcmd", { .titleSet = "postcmd=again" }, CODE_POST_COMMAND, TITLE_SET_LINE, "" },
    { "menu domain", { .menus = "videomode=wide" }, CODE_ASPECT, MENUS_LINE, "" },
    { "menu, type", { .menu = "type=moving" }, CODE_MENU_TYPE, MENU_LINE, "" },
    { "menu, menutype", { .menu = "menutype=main" }, CODE_MENU_EXISTENCE, MENU_LINE, "" },
    { "menu, buttons", { .menu = "buttons=37" }, CODE_BUTTONS, MENU_LINE, "" },
    { "colour set",
      { .menu = "colorset2=1,2,3,4,5,6,7" },
      CODE_COMMA_EXPECTED,
      MENU_LINE,
      "No comma found after <transparency e1> in <colorset> in string: " },
    { "button, a number",
      { .menu = "buttons=1\nbutton1=1,2,,4,5,6,7,8,1,BTN_ACTION_LINKPGCN(1,0,0)" },
      CODE_COMMA_EXPECTED,
      MENU_LINE + 1,
      "No comma found after <ystart> in <button> in string: ,5,6,7,8,1,BTN_ACTION_LINKPGCN(1,0,0)" },
    { "button, bracket",
      { .menu = "buttons=1\nbutton1=1,2,3,4,5,6,7,8,1,BTN_ACTION_LINKPGCN(1,0,0" },
      CODE_CLOSING_EXPECTED,
      MENU_LINE + 1,
      "No closing bracket found after <command> in <button> in string: " },
    { "menu, playtime",
      { .menu = "playtime=0.5" },
      CODE_COLON_EXPECTED,
      MENU_LINE,
      "No colon found after <hour> in <playtime> in string: 5" },
    { "menu, blink", { .menu = "blink=3,)" }, CODE_NUMBER_EXPECTED, MENU_LINE, "No blink delay found in string: " },
    { "control character",
      { .menu = "blink=3\x01" },
      CODE_WRONG_CHAR,
      MENU_LINE,
      "Wrong ASCII character during parsing: 3\x01" },
};

RunOutcome outcomeOf(uint64_t code, const std::u16string& log)
{
    RunOutcome outcome = { .code = code, .log = {}, .target = {}, .previous = {} };
    if (!log.empty()) outcome.log.push_back(keptByLog(log));
    return outcome;
}

TEST(ProjectFault, NamesTheLine)
{
    for (const RefusedCase& refused : REFUSED) {
        SCOPED_TRACE(refused.what);
        const ProjectFile file = parseProject(projectText(refused.lines));
        const std::u16string log = wideOf(refused.log);
        uint64_t code = 0;
        std::u16string logText;
        ProjectFault fault;
        EXPECT_TRUE(findRefusedKey(file, &code, &logText, &fault));
        EXPECT_EQ(hexCode(code), hexCode(refused.code));
        EXPECT_EQ(utf8Of(logText), refused.log);
        ASSERT_TRUE(findProjectFault(file, outcomeOf(refused.code, log), &fault));
        ASSERT_TRUE(fault.key);
        EXPECT_EQ(fault.key->line, refused.line);
    }
}

TEST(ProjectFault, AcceptsWhatTheLibraryAccepts)
{
    const Lines accepted[] = {
        {},
        { .common = "version=1.42\nmode=pal" },
        { .common = "VERSION = \"1.7.3\"\nmode=NTSC", .titleSet = "resolution=352x240" },
        { .firstPlay = "cmd=unknown(,,,,1)" },
        { .titleSet = "chapters=3\nchapter1=abc\nchapter2=12x\nchapter3=5,1,2" },
        { .titleSet = "audio=none\nchannel=9\nlanguage=deu" },
        { .menu = "buttons=1\nbutton1=1,2,3,4,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0),7" },
        { .menu = "blink=20,101" },
        { .menus = "skipmenu=1\nvideomode=wide" },
    };
    for (const Lines& lines : accepted) {
        SCOPED_TRACE(projectText(lines));
        uint64_t code = 0;
        std::u16string logText;
        ProjectFault fault;
        const ProjectFile file = parseProject(projectText(lines));
        EXPECT_FALSE(findRefusedKey(file, &code, &logText, &fault));
    }
}

// The run stops at the first fault, so only that one explains its code.
TEST(ProjectFault, FirstInTheOrderOfReading)
{
    const ProjectFile file =
        parseProject(projectText({ .titleSet = "audio=MP3\nvideomode=wide", .menu = "buttons=37" }));
    ProjectFault fault;
    ASSERT_TRUE(findProjectFault(file, outcomeOf(CODE_ASPECT, u""), &fault));
    EXPECT_EQ(fault.key->line, TITLE_SET_LINE + 1);
    EXPECT_FALSE(findProjectFault(file, outcomeOf(CODE_AUDIO_TYPE, u""), &fault));
    EXPECT_FALSE(findProjectFault(file, outcomeOf(CODE_BUTTONS, u""), &fault));
}

TEST(ProjectFault, SaysNothingWhereTheLogDisagrees)
{
    const ProjectFile file = parseProject(projectText({ .titleSet = "resolution=720x480" }));
    ProjectFault fault;
    EXPECT_FALSE(
        findProjectFault(file, outcomeOf(CODE_RESOLUTION, u"Unknown Resolution, found: a much longer one"), &fault));
    EXPECT_FALSE(findProjectFault(file, outcomeOf(CODE_RESOLUTION, u""), &fault));
    EXPECT_TRUE(findProjectFault(file, outcomeOf(CODE_RESOLUTION, u"Unknown Resolution, found: 720x480"), &fault));
}

TEST(ProjectFault, NamesTheSectionOfAMissingKey)
{
    struct MissingCase {
        const char* text;
        uint64_t code;
        const char16_t *section, *name;
    };
    const MissingCase cases[] = {
        { "", CODE_NO_VERSION, u"COMMON", u"version" },
        { "[COMMON]\nversion=1.0\n", CODE_NO_TITLE_SETS, u"VMG", u"titlesets" },
        { "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n", CODE_NO_SOURCE, u"VTS_1", u"source" },
        { "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_01]\n", CODE_NO_SOURCE, u"VTS_01", u"source" },
        { "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nmenus=2\n[VTS_1_MENU1]\nbackground=a\nsubpicture=b\n",
          CODE_NO_BACKGROUND, u"VTS_1_MENU2", u"background" },
        { "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\nmenus=1\n[VTS_1]\nsource=a\n[VMG_MENU1]\nbackground=a\n",
          CODE_NO_SUBPICTURE, u"VMG_MENU1", u"subpicture" },
    };
    for (const MissingCase& missing : cases) {
        SCOPED_TRACE(missing.text);
        const ProjectFile file = parseProject(missing.text);
        ProjectFault fault;
        ASSERT_TRUE(findProjectFault(file, outcomeOf(missing.code, u""), &fault));
        EXPECT_EQ(fault.key, nullptr);
        EXPECT_EQ(utf8Of(fault.section), utf8Of(missing.section));
        EXPECT_EQ(utf8Of(fault.name), utf8Of(missing.name));
    }
}

TEST(ProjectFile, ReadsAsTheLibraryDoes)
{
    const ProjectFile file =
        parseProject("key=before any section\n[ A ]trailing\r\n; note=1\n no equals\n"
                     "\tName \t= ' quoted value ' \r\nname=second\n[a]\nother=1\n[B]\nnumber=12x\nbig=4294967297\n");
    ASSERT_TRUE(findKey(file, u"A", u"NAME"));
    EXPECT_EQ(utf8Of(findKey(file, u"A", u"NAME")->value), " quoted value ");
    EXPECT_EQ(findKey(file, u"A", u"name")->line, 5u);
    EXPECT_EQ(findKey(file, u"A", u"other"), nullptr);   // of two sections of one name the first counts
    EXPECT_EQ(findKey(file, u"A", u"key"), nullptr);
    EXPECT_EQ(integerOf(findKey(file, u"B", u"number")), 12u);
    EXPECT_EQ(integerOf(findKey(file, u"B", u"big")), 1u);
    EXPECT_EQ(integerOf(nullptr), 0u);
}

TEST(ProjectFile, ReadsItsEncodings)
{
    const std::string plain = "[A]\nk=\xC3\xA4\xE6\x97\xA5\xF0\x9F\x8E\xAC\n";
    const std::string wide("\xFF\xFE[\0A\0]\0\n\0k\0=\0\xE4\0\xE5\x65\x3C\xD8\xAC\xDF\n\0", 24);
    for (const std::string& bytes : { plain, "\xEF\xBB\xBF" + plain, wide }) {
        const ProjectFile file = parseProject(bytes);
        ASSERT_TRUE(findKey(file, u"A", u"k")) << bytes;
        EXPECT_EQ(findKey(file, u"A", u"k")->value, u"\u00E4\u65E5\U0001F3AC");
    }
}

// Files that do not fit, looked up in a real folder.
struct UnfitCase {
    const char* what;
    uint64_t code;
    const char* sourceBytes;   // null: the file is missing
    const char* why;           // null: nothing is said
};

TEST(ProjectFault, NamesAnUnfitFile)
{
    const UnfitCase cases[] = {
        { "missing source", CODE_READ_FAILED, nullptr, "there is no such file" },
        { "source is there", CODE_READ_FAILED, "x", nullptr },
        { "short source", CODE_NOTHING_SCANNED, "abc", "the file holds 3 bytes, less than one sector of 2048" },
        { "another code", CODE_NO_TITLE_SETS, nullptr, nullptr },
    };
    for (const UnfitCase& unfit : cases) {
        SCOPED_TRACE(unfit.what);
        const TempDir folder;
        const std::u16string source = folder / u"a.vob";
        if (unfit.sourceBytes) writeFile(source, std::string_view(unfit.sourceBytes));
        const ProjectFile file =
            parseProject("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nsource=" + utf8Of(source) + "\n");
        ProjectFault fault;
        ASSERT_EQ(findProjectFault(file, outcomeOf(unfit.code, u""), &fault), unfit.why != nullptr);
        if (!unfit.why) continue;
        EXPECT_EQ(fault.key->line, 6u);
        EXPECT_EQ(fault.why, unfit.why);
    }
}

TEST(ProjectFault, NamesAMenuFileThatIsNoMpeg)
{
    const TempDir folder;
    writeFile(folder / u"good.mpg", fromHex("00 00 01 B3 00"));
    writeFile(folder / u"bad.mpg", fromHex("00 00 01 B9 00"));
    const std::string menu = "subpicture=a.bmp\nbackground=";
    const ProjectFile file =
        parseProject("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\nmenus=2\n[VTS_1]\nsource=a\n[VMG_MENU1]\n" + menu +
                     utf8Of(folder / u"good.mpg") + "\n[VMG_MENU2]\n" + menu + utf8Of(folder / u"bad.mpg") + "\n");
    ProjectFault fault;
    ASSERT_TRUE(findProjectFault(file, outcomeOf(CODE_NOT_MPEG, u""), &fault));
    EXPECT_EQ(fault.key->line, 13u);
    EXPECT_EQ(fault.why, "the file begins neither with a sequence header nor with a pack");
}

TEST(ProjectFault, NamesASkippedTitleSetThatNobodyAuthored)
{
    const TempDir folder;
    const ProjectFile file =
        parseProject("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=2\n[VTS_1]\nsource=a\n[VTS_2]\nskipvts=1\n");
    RunOutcome outcome = { .code = CODE_OLD_IFO, .log = {}, .target = folder.root, .previous = {} };
    ProjectFault fault;
    ASSERT_TRUE(findProjectFault(file, outcome, &fault));
    EXPECT_EQ(fault.key->line, 8u);
    EXPECT_EQ(fault.why, "no earlier run has left VTS_02_0.IFO in the target folder");
    writeFile(folder / u"VTS_02_0.IFO", std::string_view("x"));
    EXPECT_FALSE(findProjectFault(file, outcome, &fault));
}

}   // namespace
