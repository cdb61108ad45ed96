// audio_fault_test.cpp: which line of a refused DVD-Audio project the host names, and what it says before a run.
#include "host/audio_project.h"
#include "host/codes.h"
#include "host/project_fault.h"
#include "host/run_log.h"
#include "host/text.h"
#include "tests/support/bitmaps.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

// A project of one track, one still and one menu page, whose other lines are those of the case. A text of the case
// stands in the place of the usual one. Line 1 is "[COMMON]".
struct Lines {
    std::string common = "version=1.0", manager = "titlesets=1", stills = "stills=1", attributes = "mpegtype=mpeg2",
                still = "background=a", menus = "videomode=4:3", menu = "background=a", titleSet = "tracks=1",
                format = "format=LPCM", channels = "assign=1", samples = "samplesize=16", rate = "samplerate=48000",
                time = "playtime=1", channel = "channel1=a.aob";
};

std::string projectText(const Lines& lines)
{
    return "[COMMON]\n" + lines.common + "\n[AMG]\nmenus=1\n" + lines.manager + "\n[ASVS]\nattributes=1\n" +
           lines.stills + "\n[ASVU_ATTRIBUTE1]\n" + lines.attributes + "\n[ASV01]\n" + lines.still + "\n[AMG_MENU]\n" +
           lines.menus + "\n[AMG_MENU1]\nsubpicture=a\n" + lines.menu + "\n[ATS_01]\n" + lines.titleSet +
           "\n[TRACK_01_01]\n" + lines.format + "\n" + lines.channels + "\n" + lines.samples + "\n" + lines.rate +
           "\n" + lines.time + "\n" + lines.channel + "\n";
}

constexpr uint64_t COMMON_LINE = 2, MANAGER_LINE = 5, STILLS_LINE = 8, ATTRIBUTES_LINE = 10, STILL_LINE = 12,
                   MENUS_LINE = 14, MENU_LINE = 17, TITLE_SET_LINE = 19, FORMAT_LINE = 21, CHANNELS_LINE = 22,
                   SAMPLES_LINE = 23, RATE_LINE = 24, TIME_LINE = 25, CHANNEL_LINE = 26;

struct RefusedCase {
    const char* what;
    Lines lines;
    uint64_t code;
    uint64_t line;
    const char* log = "";   // whole text that the library logs; empty: none
};

const RefusedCase REFUSED[] = {
    { "version", { .common = "version=2.0" }, CODE_AUDIO_VERSION, COMMON_LINE },
    { "version, no dot",
      { .common = "version=1" },
      CODE_DOT_EXPECTED,
      COMMON_LINE,
      "No dot found after <major version> in <common> in string: " },
    { "mode", { .common = "version=1.0\nmode=SECAM" }, CODE_AUDIO_MODE, COMMON_LINE + 1 },
    { "no title sets", { .manager = "titlesets=none" }, CODE_NO_AUDIO_TITLE_SETS, MANAGER_LINE },
    { "a hundred title sets", { .manager = "titlesets=100" }, CODE_AUDIO_TITLE_SETS, MANAGER_LINE },
    { "a hundred stills", { .stills = "stills=100" }, CODE_STILLS, STILLS_LINE },
    { "still colour", { .stills = "colortable1=1,2,256" }, CODE_COLOR, STILLS_LINE },
    { "still attributes", { .attributes = "mpegtype=mpeg4" }, CODE_MPEG_TYPE, ATTRIBUTES_LINE },
    { "still aspect", { .attributes = "videomode=wide" }, CODE_ASPECT, ATTRIBUTES_LINE },
    { "still, sub-picture", { .still = "background=a\nsubpicture=.a" }, CODE_STRING_EXPECTED, STILL_LINE + 1 },
    { "still, buttons", { .still = "background=a\nbuttons=37" }, CODE_BUTTONS, STILL_LINE + 1 },
    { "menu attributes", { .menus = "videomode=wide" }, CODE_ASPECT, MENUS_LINE },
    { "menu resolution",
      { .menus = "resolution=720x480" },
      CODE_RESOLUTION,
      MENUS_LINE,
      "Unknown Resolution, found: 720x480" },
    { "menu with a type", { .menu = "background=a\ntype=still" }, CODE_MENU_TYPE, MENU_LINE + 1 },
    { "colour set",
      { .menu = "background=a\ncolorset3=1,2,3,4,5,6,7" },
      CODE_COMMA_EXPECTED,
      MENU_LINE + 1,
      "No comma found after <transparency e1> in <colorset> in string: " },
    { "tracks", { .titleSet = "tracks=101" }, CODE_TOO_MANY_TRACKS, TITLE_SET_LINE },
    { "format", { .format = "format=PCM" }, CODE_AUDIO_FORMAT, FORMAT_LINE },
    { "long format", { .format = "format=LPCM2" }, CODE_AUDIO_FORMAT, FORMAT_LINE },
    { "assign", { .channels = "assign=21" }, CODE_ASSIGNMENT, CHANNELS_LINE },
    { "channels", { .channels = "channels=5" }, CODE_CHANNEL_COUNT, CHANNELS_LINE },
    { "samplesize", { .samples = "samplesize=28" }, CODE_SAMPLE_SIZE, SAMPLES_LINE },
    { "samplerate", { .rate = "samplerate=48" }, CODE_SAMPLE_RATE, RATE_LINE },
    { "playtime", { .time = "playtime=none" }, CODE_NO_PLAY_TIME, TIME_LINE },
    { "channel", { .channel = "channel1=./a.aob" }, CODE_STRING_EXPECTED, CHANNEL_LINE },
    { "second channel",
      { .channel = "channel2=a\x01" },
      CODE_WRONG_CHAR,
      CHANNEL_LINE,
      "Wrong ASCII character during parsing: a\x01" },
};

RunOutcome outcomeOf(uint64_t code, const std::u16string& log = {})
{
    RunOutcome outcome = { .code = code, .log = {}, .target = {}, .previous = {}, .isAudio = true };
    if (!log.empty()) outcome.log.push_back(keptByLog(log));
    return outcome;
}

TEST(AudioFault, NamesTheLine)
{
    for (const RefusedCase& refused : REFUSED) {
        SCOPED_TRACE(refused.what);
        const ProjectFile file = parseProject(projectText(refused.lines));
        ProjectFault fault;
        ASSERT_TRUE(findProjectFault(file, outcomeOf(refused.code, wideOf(refused.log)), &fault));
        ASSERT_TRUE(fault.key);
        EXPECT_EQ(fault.key->line, refused.line);
        EXPECT_EQ(fault.why, "");
    }
}

TEST(AudioFault, AcceptsWhatTheLibraryAccepts)
{
    const Lines accepted[] = {
        {},
        { .common = "version=1.5\nmode=ntsc", .menus = "resolution=352x240" },
        { .attributes = "mpegtype=MPEG1\nvideomode=16:9\nresolution=whatever" },
        { .manager = "titlesets=1", .stills = "attributes=5" },   // the first of two counts
        { .titleSet = "tracks=0", .format = "format=MP3" },
        { .format = "format=WAVE" },
        { .format = "format=1\t 4" },   // any four characters
        { .channels = "assign=20" },
        { .channels = "channels=6" },
        { .time = "endsample=1" },
        { .channel = "channel3=./a" },   // stereo has no third
    };
    for (const Lines& lines : accepted) {
        SCOPED_TRACE(projectText(lines));
        uint64_t code = 0;
        std::u16string logText;
        ProjectFault fault;
        const ProjectFile file = parseProject(projectText(lines));
        EXPECT_FALSE(findRefusedAudioKey(file, &code, &logText, &fault)) << hexCode(code);
    }
}

TEST(AudioFault, NamesTheSectionOfAMissingKey)
{
    struct MissingCase {
        const char* text;
        uint64_t code;
        const char16_t *section, *name;
    };
    const std::string head = "[COMMON]\nversion=1.0\n[AMG]\ntitlesets=1\n";
    const MissingCase cases[] = {
        { "[AMG]\n", CODE_AUDIO_NO_VERSION, u"COMMON", u"version" },
        { "[COMMON]\nversion=1.0\n[AMG]\n", CODE_NO_AUDIO_TITLE_SETS, u"AMG", u"titlesets" },
        { "[ASVS]\nstills=2\n[ASV01]\nbackground=a\n", CODE_NO_BACKGROUND, u"ASV02", u"background" },
        { "[ATS_01]\ntracks=1\n", CODE_AUDIO_FORMAT, u"TRACK_01_01", u"format" },
        { "[ATS_01]\ntracks=1\n[TRACK_01_01]\nformat=LPCM\n", CODE_CHANNEL_COUNT, u"TRACK_01_01", u"channels" },
    };
    for (const MissingCase& missing : cases) {
        SCOPED_TRACE(missing.text);
        const bool whole = std::string_view(missing.text).find("AMG") != std::string_view::npos;
        const ProjectFile file = parseProject((whole ? "" : head) + missing.text);
        ProjectFault fault;
        ASSERT_TRUE(findProjectFault(file, outcomeOf(missing.code), &fault));
        EXPECT_EQ(fault.key, nullptr);
        EXPECT_EQ(utf8Of(fault.section), utf8Of(missing.section));
        EXPECT_EQ(utf8Of(fault.name), utf8Of(missing.name));
    }
}

TEST(AudioFault, TellsTheKindsOfProjectsApart)
{
    EXPECT_TRUE(isAudioProject(parseProject("[COMMON]\n[amg]\ntitlesets=1\n")));
    EXPECT_FALSE(isAudioProject(parseProject("[COMMON]\n[VMG]\ntitlesets=1\n")));
    EXPECT_FALSE(isAudioProject(parseProject("[AMG]\ntitlesets=1\n[VMG]\ntitlesets=1\n")));
    EXPECT_FALSE(isAudioProject(parseProject("")));
}

// ---- files --------------------------------------------------------------------------------------------------------

struct UnfitCase {
    const char* what;
    Lines lines;   // a path is that of a file in the folder
    uint64_t code, line;
    const char* why;
};

const UnfitCase UNFIT[] = {
    { "missing still", { .still = "background=none" }, CODE_MENU_ASSET, STILL_LINE, "there is no such file" },
    { "missing menu", { .menu = "background=none" }, CODE_MENU_ASSET, MENU_LINE, "there is no such file" },
    { "menu that is no MPEG",
      { .menu = "background=text" },
      CODE_NOT_MPEG,
      MENU_LINE,
      "the file begins neither with a sequence header nor with a pack" },
    { "missing bitmap of a still",
      { .still = "subpicture=none" },
      CODE_FILE_NOT_FOUND,
      STILL_LINE,
      "there is no such file" },
    { "bitmap that is none",
      { .still = "subpicture=text" },
      CODE_INVALID_ARGUMENT,
      STILL_LINE,
      "the file is no BMP bitmap" },
    { "missing WAVE file", { .channel = "channel1=none" }, CODE_FILE_NOT_FOUND, CHANNEL_LINE, "there is no such file" },
    { "missing second file",
      { .channel = "channel1=wave\nchannel2=none" },
      CODE_FILE_NOT_FOUND,
      CHANNEL_LINE + 1,
      "there is no such file" },
    { "no WAVE file", { .channel = "channel1=text" }, CODE_WRONG_WAVE, CHANNEL_LINE, "the file is no RIFF/WAVE file" },
    { "WAVE file with another first chunk",
      { .channel = "channel1=list" },
      CODE_WRONG_WAVE,
      CHANNEL_LINE,
      "the first chunk of the file is not its format" },
    { "WAVE file without samples",
      { .channel = "channel1=head" },
      CODE_WRONG_WAVE,
      CHANNEL_LINE,
      "the file does not do: there is no `data` chunk in it" },
    { "20 bits",
      { .samples = "samplesize=20", .channel = "channel1=wave" },
      CODE_20_BITS,
      SAMPLES_LINE,
      "packs have 2, 4, 5 or 6 channels of 16 or 24 bits" },
    { "mono",
      { .channels = "channels=1", .channel = "channel1=wave" },
      CODE_20_BITS,
      CHANNELS_LINE,
      "packs have 2, 4, 5 or 6 channels of 16 or 24 bits" },
};

const char WAVE[] = "52 49 46 46 2C 00 00 00 57 41 56 45 66 6D 74 20 10 00 00 00 01 00 02 00 44 AC 00 00 10 B1 02 00 "
                    "04 00 10 00 64 61 74 61 08 00 00 00 00 00 00 00 00 00 00 00";

void writeAssets(const TempDir& folder)
{
    const Bytes wave = fromHex(WAVE);
    Bytes list = wave;
    std::copy_n("LIST", 4, list.begin() + 12);
    writeFile(folder / u"wave", wave);
    writeFile(folder / u"list", list);
    writeFile(folder / u"head", Bytes(wave.begin(), wave.begin() + 36));
    writeFile(folder / u"text", std::string(60, 'x'));
    writeFile(folder / u"mpeg", fromHex("00 00 01 B3 00"));
    writeFile(folder / u"bitmap", bmpFile(ByteImage(576)));
}

/** Puts the folder in front of what a line names. */
std::string inFolder(const TempDir& folder, const std::string& line)
{
    std::string out, rest = line;
    for (size_t end; !rest.empty(); rest.erase(0, end + 1)) {
        end = std::min(rest.find('\n'), rest.size());
        const std::string one = rest.substr(0, end);
        const size_t equals = one.find('=') + 1;
        out += (out.empty() ? "" : "\n") + one.substr(0, equals) + toUtf8(folder / toWide(one.substr(equals)));
        if (end == rest.size()) break;
    }
    return out;
}

TEST(AudioFault, NamesAnUnfitFile)
{
    const TempDir folder;
    writeAssets(folder);
    for (const UnfitCase& unfit : UNFIT) {
        SCOPED_TRACE(unfit.what);
        Lines lines = unfit.lines;
        if (lines.still == "background=a") lines.still = "background=mpeg";
        if (lines.menu == "background=a") lines.menu = "background=mpeg";
        for (std::string* line : { &lines.still, &lines.menu, &lines.channel }) *line = inFolder(folder, *line);
        std::string text = projectText(lines);
        text.replace(text.find("subpicture=a\n"), 12, "subpicture=" + toUtf8(folder / u"bitmap"));
        const ProjectFile file = parseProject(text);
        ProjectFault fault;
        ASSERT_TRUE(findProjectFault(file, outcomeOf(unfit.code), &fault)) << text;
        ASSERT_TRUE(fault.key);
        EXPECT_EQ(fault.key->line, unfit.line);
        EXPECT_EQ(fault.why, unfit.why);
        EXPECT_FALSE(findProjectFault(file, outcomeOf(CODE_AUDIO_MENUS), &fault));   // a code that it does not explain
    }
}

TEST(AudioFault, NamesAVobAndAnAobThatCannotBeMade)
{
    const TempDir folder;
    RunOutcome outcome = outcomeOf(CODE_MANAGER_VOB);
    outcome.target = folder.root;
    const ProjectFile file = parseProject(projectText({ .channel = "channel1=a.wav" }));
    ProjectFault fault;
    EXPECT_FALSE(findProjectFault(file, outcome, &fault));   // nothing is in the way
    for (const char* name : { "AUDIO_TS.VOB", "AUDIO_SV.VOB", "ATS_01_1.AOB" }) {
        fs::create_directory(folder.root / name);
        outcome.code = name[1] == 'U' ? CODE_MANAGER_VOB : CODE_NO_AOB;
        ASSERT_TRUE(findProjectFault(file, outcome, &fault)) << name;
        EXPECT_TRUE(fault.why.starts_with(name)) << fault.why;   // the stills come before the menus
        EXPECT_TRUE(fault.why.ends_with(": that is a folder")) << fault.why;
    }
    EXPECT_EQ(fault.key->line, TITLE_SET_LINE);
}

TEST(AudioFault, NamesAnAobAmongWaveFiles)
{
    const TempDir folder;
    writeAssets(folder);
    const std::string track = "format=LPCM\nassign=1\nsamplesize=16\nsamplerate=44100\nplaytime=1\nchannel1=",
                      text = "[COMMON]\nversion=1.0\n[AMG]\ntitlesets=1\n[ATS_01]\ntracks=2\n[TRACK_01_01]\n" + track +
                             toUtf8(folder / u"ATS_01_1.aob") + "\n[TRACK_01_02]\n" + track + toUtf8(folder / u"wave") +
                             "\n";
    const ProjectFile file = parseProject(text);
    ProjectFault fault;
    for (const uint64_t code : { CODE_WRONG_WAVE, CODE_FILE_NOT_FOUND }) {
        ASSERT_TRUE(findProjectFault(file, outcomeOf(code), &fault));
        EXPECT_EQ(fault.key->line, 13u);
        EXPECT_EQ(fault.why, "the last track of the title set names a WAVE file, so that none may name an AOB");
    }
    EXPECT_FALSE(findProjectFault(file, outcomeOf(CODE_20_BITS), &fault));
}

// ---- before a run -------------------------------------------------------------------------------------------------

TEST(AudioProject, Warnings)
{
    const TempDir folder;
    const std::string target = toUtf8(folder / u"");
    const std::string text = "[COMMON]\nversion=1.0\n[AMG]\ntitlesets=4\n[ATS_01]\ntracks=1\n[TRACK_01_01]\nchannel1=" +
                             toUtf8(folder / u"ATS_01_1.AOB") +
                             "\n[ATS_02]\ntracks=2\n[TRACK_02_01]\nchannel1=a.wav\n[TRACK_02_02]\nchannel1=b.wav\n"
                             "[ATS_03]\nalbum=x\n[ATS_04]\ntracks=1\n[TRACK_04_01]\nchannel1=" +
                             toUtf8(folder / u"ATS_04_1.aob") + "\n";
    writeFile(folder / u"ATS_04.nfo", std::string_view("x"));
    writeFile(folder / u"ATS_03_1.AOB", std::string_view("x"));
    const ProjectFile file = parseProject(text);
    const std::vector<std::string> warnings = audioWarnings(file, folder.root);
    ASSERT_EQ(warnings.size(), 5u);
    EXPECT_TRUE(warnings[0].starts_with("there is no ")) << warnings[0];
    EXPECT_TRUE(
        warnings[0].ends_with("ATS_01.nfo, which `orven aob` leaves beside the sound: the tracks of title set 1 "
                              "will have no packs"))
        << warnings[0];
    EXPECT_EQ(warnings[1], "title set 2 names WAVE files: of each track only the first pack is laid, about a hundredth "
                           "of a second. Make its sound with `orven aob`, and name the AOB");
    EXPECT_EQ(warnings[2], "title set 3 has no tracks, and so no sound; ATS_03_1.AOB in the target folder is written "
                           "over");
    EXPECT_EQ(warnings[3], "there is no ATS_04_1.AOB in the target folder, where the disc needs it");
    EXPECT_EQ(warnings[4], "the disc's tables list the tracks of title set 1 alone: players do not find the others");
    writeFile(folder / u"ATS_01.nfo", std::string_view("x"));
    writeFile(folder / u"ATS_01_1.AOB", std::string_view("x"));
    writeFile(folder / u"ATS_04_1.AOB", std::string_view("x"));
    EXPECT_EQ(audioWarnings(file, folder.root).size(), 3u);
}

TEST(AudioProject, PathsThatAProjectCanHold)
{
    EXPECT_TRUE(isProjectPath(fs::path(u"a/ \u00E4\u65E5\U0001F3AC.AOB")));
    EXPECT_FALSE(isProjectPath(fs::path(u"a\tb")));
    EXPECT_FALSE(isProjectPath(fs::path(u"a\nb")));
    EXPECT_EQ(isProjectPath(fs::path(u"a\\b")), fs::path::preferred_separator == '\\');
}

}   // namespace
