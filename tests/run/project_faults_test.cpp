// Faults of the project file, each met by a whole run: its result, its entry in the log, and that nothing was written.
#include "base/result.h"
#include "tests/run/disc_run.h"

#include <set>

namespace {

struct FaultCase {
    const char* what;
    uint64_t result;
    std::u16string logged = u"";   // text of the one entry; none if empty
    std::string common = "version=1.0";
    std::string firstPlay = "";
    std::string vmg = "titlesets=1";
    std::string vts = "";       // behind the source
    std::string others = "";    // further sections
    std::string source = "@";   // @: a good source
};

const std::string MENU = "[VTS_1_MENU1]\nbackground=a\nsubpicture=b\n";

// The section of a menu with these keys.
std::string menu(const std::string& keys)
{
    return MENU + keys + "\n";
}

const std::string BUTTON = "buttons=1\nbutton1=1,2,3,4,1,1,1,1,1,";

const FaultCase FAULTS[] = {
    // COMMON
    { .what = "no version", .result = ORV_NO_VERSION, .common = "" },
    { .what = "empty version", .result = ORV_NO_VERSION, .common = "version=" },
    { .what = "wrong major", .result = ORV_WRONG_VERSION, .common = "version=2.0" },
    { .what = "no dot",
      .result = ORV_DOT_EXPECTED,
      .logged = u"No dot found after <major version> in <common> in string: ",
      .common = "version=1" },
    { .what = "no minor",
      .result = ORV_NUMBER_EXPECTED,
      .logged = u"No integer token for <minor version> found in <common> in string: ",
      .common = "version=1." },
    { .what = "dot in place of the major",
      .result = ORV_NUMBER_EXPECTED,
      .logged = u"No integer token for <major version> found in <common> in string: 5",
      .common = "version=.5" },
    { .what = "letters in a number are not logged", .result = ORV_NUMBER_EXPECTED, .common = "version=1.x" },
    { .what = "eleven digits are not logged", .result = ORV_NUMBER_EXPECTED, .common = "version=12345678901.0" },
    { .what = "control character at a token's start",
      .result = ORV_UNKNOWN_CHAR,
      .logged = u"Unknown ASCII character in this string: \x02.0",
      .common = "version=1.\x02.0" },
    { .what = "control character within a token",
      .result = ORV_WRONG_CHAR_IN_NUMBER,
      .logged = u"Wrong ASCII character during parsing: 1\x02.0",
      .common = "version=1\x02.0" },
    { .what = "unknown mode", .result = ORV_UNKNOWN_VIDEO_MODE, .common = "version=1.0\nmode=SECAM" },
    { .what = "mode begins with a comma", .result = ORV_STRING_EXPECTED, .common = "version=1.0\nmode=,x" },
    // FIRSTPLAY
    { .what = "no command",
      .result = ORV_STRING_EXPECTED,
      .logged = u"No integer token for <command> found in <firstplay> in string: 1,2,3)",
      .firstPlay = "cmd=(1,2,3)" },
    { .what = "no opening bracket",
      .result = ORV_OPENING_BRACKET_EXPECTED,
      .logged = u"No opening bracket found after <command> in <firstplay> in string: 2,3)",
      .firstPlay = "cmd=BTN_ACTION_JUMP_TT,2,3)" },
    { .what = "no comma",
      .result = ORV_COMMA_EXPECTED,
      .logged = u"No comma found after <param1> in <firstplay> in string: ,3)",
      .firstPlay = "cmd=BTN_ACTION_JUMP_TT(1 2,3)" },
    { .what = "no third parameter",
      .result = ORV_NUMBER_EXPECTED,
      .logged = u"No integer token for <param3> found in <firstplay> in string: ",
      .firstPlay = "cmd=BTN_ACTION_JUMP_TT(1,2,)" },
    { .what = "no closing bracket",
      .result = ORV_CLOSING_BRACKET_EXPECTED,
      .logged = u"No closing bracket found after <command> in <firstplay> in string: ",
      .firstPlay = "cmd=BTN_ACTION_JUMP_TT(1,2,3" },
    // VMG
    { .what = "no title sets", .result = ORV_NO_TITLE_SETS, .vmg = "" },
    { .what = "0 title sets", .result = ORV_NO_TITLE_SETS, .vmg = "titlesets=0" },
    { .what = "100 title sets", .result = ORV_WRONG_TITLE_SET_COUNT, .vmg = "titlesets=100" },
    { .what = "100 menus of the manager", .result = ORV_MENUS_OUT_OF_RANGE, .vmg = "titlesets=1\nmenus=100" },
    { .what = "attributes of the manager", .result = ORV_WRONG_ASPECT, .others = "[VMG_MENU]\nvideomode=1:1\n" },
    { .what = "menu of the manager", .result = ORV_NO_BACKGROUND, .vmg = "titlesets=1\nmenus=1" },
    // title sets
    { .what = "no source",
      .result = ORV_MISSING_SOURCE,
      .logged = u"Got 0 chars from inifile: # section: VTS_1 valuename: source",
      .source = "" },
    { .what = "empty source",
      .result = ORV_MISSING_SOURCE,
      .logged = u"Got 0 chars from inifile: # section: VTS_1 valuename: source",
      .source = "source=" },
    { .what = "source begins with a comma", .result = ORV_STRING_EXPECTED, .source = "source=,x" },
    { .what = "second title set",
      .result = ORV_MISSING_SOURCE,
      .logged = u"Got 0 chars from inifile: # section: VTS_2 valuename: source",
      .vmg = "titlesets=2" },
    { .what = "256 chapters", .result = ORV_TOO_MANY_CHAPTERS, .vts = "chapters=256" },
    { .what = "chapter with a page alone",
      .result = ORV_COMMA_EXPECTED,
      .logged = u"No comma found after <MenuPage> in <chapter> in string: ",
      .vts = "chapters=1\nchapter1=0,2" },
    { .what = "chapter without a page",
      .result = ORV_NUMBER_EXPECTED,
      .logged = u"No integer token for <MenuPage> found in <chapter> in string: 5",
      .vts = "chapters=1\nchapter1=0,(5" },
    { .what = "chapter without a button",
      .result = ORV_NUMBER_EXPECTED,
      .logged = u"No integer token for <HighlightButton> found in <chapter> in string: ",
      .vts = "chapters=1\nchapter1=0,1," },
    { .what = "post command", .result = ORV_WRONG_POST_COMMAND, .vts = "postcmd=never" },
    { .what = "100 menus of a title set", .result = ORV_MENUS_OUT_OF_RANGE, .vts = "menus=100" },
    // attributes
    { .what = "aspect", .result = ORV_WRONG_ASPECT, .vts = "videomode=2.21" },
    { .what = "size of the other standard",
      .result = ORV_WRONG_RESOLUTION,
      .logged = u"Unknown Resolution, found: 720x480",
      .vts = "resolution=720x480" },
    { .what = "bit rate", .result = ORV_WRONG_BITRATE_MODE, .vts = "bitrate=abr" },
    { .what = "MPEG type", .result = ORV_WRONG_MPEG_TYPE, .vts = "mpegtype=mpeg4" },
    { .what = "audio", .result = ORV_WRONG_AUDIO_TYPE, .vts = "audio=mp3" },
    { .what = "seven channels", .result = ORV_WRONG_AUDIO_CHANNELS, .vts = "audio=AC3\nchannel=7" },
    { .what = "44 kHz", .result = ORV_WRONG_AUDIO_SAMPLE_RATE, .vts = "audio=AC3\nsamplerate=44" },
    { .what = "8 bits", .result = ORV_WRONG_AUDIO_SAMPLE_SIZE, .vts = "audio=AC3\nsamplesize=8" },
    { .what = "language", .result = ORV_WRONG_LANGUAGE, .vts = "audio=AC3\nlanguage=deu" },
    { .what = "nine audio streams", .result = ORV_TOO_MANY_AUDIO_STREAMS, .vts = "astreams=9" },
    { .what = "third audio stream", .result = ORV_WRONG_AUDIO_TYPE, .vts = "astreams=2\naudio3=x" },
    { .what = "colour", .result = ORV_COLOR_OUT_OF_RANGE, .vts = "colortable16=0,0,256" },
    { .what = "colour of one part",
      .result = ORV_COMMA_EXPECTED,
      .logged = u"No comma found after <red> in <colortable> in string: ",
      .vts = "colortable1=255" },
    { .what = "attributes of menus", .result = ORV_WRONG_ASPECT, .others = "[VTS_1_MENU]\nvideomode=x\n" },
    // menus
    { .what = "no background", .result = ORV_NO_BACKGROUND, .vts = "menus=1" },
    { .what = "no sub-picture",
      .result = ORV_NO_SUBPICTURE,
      .vts = "menus=1",
      .others = "[VTS_1_MENU1]\nbackground=a\n" },
    { .what = "type", .result = ORV_WRONG_MENU_TYPE, .vts = "menus=1", .others = menu("type=moving") },
    { .what = "existence",
      .result = ORV_WRONG_MENU_EXISTENCE_TYPE,
      .vts = "menus=1",
      .others = menu("menutype=setup") },
    { .what = "37 buttons", .result = ORV_WRONG_BUTTON_COUNT, .vts = "menus=1", .others = menu("buttons=37") },
    { .what = "colour set",
      .result = ORV_COMMA_EXPECTED,
      .logged = u"No comma found after <transparency e1> in <colorset> in string: ",
      .vts = "menus=1",
      .others = menu("colorset3=1,2,3,4,5,6,7") },
    { .what = "button without a command",
      .result = ORV_STRING_EXPECTED,
      .logged = u"No integer token for <command> found in <button> in string: ",
      .vts = "menus=1",
      .others = menu(BUTTON) },
    { .what = "button without a bracket",
      .result = ORV_OPENING_BRACKET_EXPECTED,
      .logged = u"No opening bracket found after <command> in <button> in string: ",
      .vts = "menus=1",
      .others = menu(BUTTON + "BTN_ACTION_JUMP_TT") },
    { .what = "button without a closing bracket",
      .result = ORV_CLOSING_BRACKET_EXPECTED,
      .logged = u"No closing bracket found after <command> in <button> in string: 1",
      .vts = "menus=1",
      .others = menu(BUTTON + "BTN_ACTION_JUMP_TT(1,0,0,1") },
    { .what = "play time without a colon",
      .result = ORV_COLON_EXPECTED,
      .logged = u"No colon found after <hour> in <playtime> in string: 5",
      .vts = "menus=1",
      .others = menu("playtime=1.5") },
    { .what = "play time without a dot",
      .result = ORV_DOT_EXPECTED,
      .logged = u"No dot found after <second> in <playtime> in string: ",
      .vts = "menus=1",
      .others = menu("playtime=1:2:3") },
    { .what = "blink",
      .result = ORV_NUMBER_EXPECTED,
      .logged = u"No blink count in string: 5)",
      .vts = "menus=1",
      .others = menu("blink=(5)") },
};

std::string projectOf(const DiscRun& run, const FaultCase& c)
{
    const std::string source = c.source == "@" ? "source=" + run.text("VTS_01_1.VOB") : c.source;
    return "[COMMON]\n" + c.common + "\n[FIRSTPLAY]\n" + c.firstPlay + "\n[VMG]\n" + c.vmg + "\n[VTS_1]\n" + source +
           "\n" + c.vts + "\n" + c.others;
}

// A text in which # stands for the path of the project file.
std::u16string withPath(std::u16string text, const DiscRun& run)
{
    const size_t at = text.find(u'#');
    if (at != std::u16string::npos) text.replace(at, 1, run.project);
    return text;
}

}   // namespace

TEST(ProjectFault, ResultAndLog)
{
    for (const FaultCase& c : FAULTS) {
        SCOPED_TRACE(c.what);
        DiscRun run;
        run.put("VTS_01_1.VOB", fourUnits().bytes);
        const Snapshot before = takeSnapshot(run.folder.root / "target");
        EXPECT_EQ(c.result, run.author(projectOf(run, c)));
        std::vector<LogEntry> entries;
        if (!c.logged.empty()) entries.push_back({ c.result, withPath(c.logged, run) });
        EXPECT_TRUE(logHolds(run.log, entries));
        EXPECT_EQ(before, takeSnapshot(run.folder.root / "target"));   // all is read before anything is written
        EXPECT_TRUE(run.calls.empty());
    }
}

TEST(ProjectFault, SameThroughTheNarrowForm)
{
    for (const FaultCase& c : FAULTS) {
        SCOPED_TRACE(c.what);
        DiscRun run;
        run.narrow = true;
        EXPECT_EQ(c.result, run.author(projectOf(run, c)));
        std::vector<LogEntry> entries;
        if (!c.logged.empty()) entries.push_back({ c.result, withPath(c.logged, run) });
        EXPECT_TRUE(logHolds(run.log, entries));
    }
}

// Every code that a video project can give has its case; the others have no use or belong to other runs.
TEST(ProjectFault, EveryCodeIsMet)
{
    std::set<uint64_t> met;
    for (const FaultCase& c : FAULTS) met.insert(c.result);
    for (uint64_t id = 1000; id <= 1033; id++) {
        // 1002, 1021 and 1028 are in the message table alone.
        const bool unused = id == 1002 || id == 1021 || id == 1028;
        EXPECT_EQ(unused ? 0u : 1u, met.count(0x84000000 + id)) << id;
    }
}

// The numbers behind the names, as a host sees them.
TEST(ProjectFault, Numbers)
{
    EXPECT_EQ(0x840003F1u, ORV_NO_VERSION);
    EXPECT_EQ(0x840003F4u, ORV_NO_TITLE_SETS);
    EXPECT_EQ(0x84000409u, ORV_MISSING_SOURCE);
    EXPECT_EQ(0x8400040Bu, ORV_TOO_MANY_AUDIO_STREAMS);
    EXPECT_EQ(0x840007D7u, ORV_WRONG_TITLE_SET_COUNT);
    EXPECT_EQ(0x840007E0u, ORV_TOO_MANY_CHAPTERS);
}

TEST(ProjectFault, MissingProjectFile)
{
    DiscRun run;
    EXPECT_EQ(0x840003F1u, run.author());   // it is like an empty one
    EXPECT_FALSE(fileExists(run.project));
    EXPECT_FALSE(fileExists(run.log));
}

// The fault met first in the order of reading wins.
TEST(ProjectFault, FirstOfSeveral)
{
    DiscRun run;
    EXPECT_EQ(ORV_NO_VERSION, run.author("[COMMON]\nmode=SECAM\n[VMG]\ntitlesets=0\n"));
    EXPECT_EQ(ORV_UNKNOWN_VIDEO_MODE, run.author("[COMMON]\nversion=1.0\nmode=SECAM\n[VMG]\ntitlesets=0\n"));
    EXPECT_EQ(ORV_NO_TITLE_SETS, run.author("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=0\n[VTS_1]\nvideomode=x\n"));
    EXPECT_EQ(ORV_WRONG_ASPECT, run.author("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nvideomode=x\n"));
}

// What is no fault: values behind the ones that are read, names that nobody asks for.
TEST(ProjectFault, WhatIsNone)
{
    const FaultCase fine[] = {
        { .what = "plain", .result = 0 },
        { .what = "more of a version", .result = 0, .common = "version=1.7.3\nsoftware=anything" },
        { .what = "unknown command name", .result = 0, .firstPlay = "cmd=btn_action_jump_tt(1,2,3)" },
        { .what = "no command name at all", .result = 0, .firstPlay = "cmd=,(1,2,3)" },
        { .what = "numbers left out", .result = 0, .firstPlay = "cmd=BTN_ACTION_JUMP_TT(,,,,,)" },
        { .what = "bad first number of a chapter", .result = 0, .vts = "chapters=2\nchapter1=12x\nchapter2=(" },
        { .what = "unknown keys and sections", .result = 0, .vts = "colour=red", .others = "[VTS_9]\nvideomode=x\n" },
        { .what = "255 chapters", .result = 0, .vts = "chapters=255" },
    };
    for (const FaultCase& c : fine) {
        SCOPED_TRACE(c.what);
        DiscRun run;
        run.put("VTS_01_1.VOB", fourUnits().bytes);
        EXPECT_EQ(0u, run.author(projectOf(run, c)));
        EXPECT_TRUE(logHolds(run.log, {}));
    }
}
