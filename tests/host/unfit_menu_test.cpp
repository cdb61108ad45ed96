// unfit_menu_test.cpp: which bitmap, button, movie or VOB of a menu explains a failed run, and when nothing is said.
#include "host/codes.h"
#include "host/project_fault.h"
#include "host/text.h"
#include "tests/support/bitmaps.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

// A title set with a menu, then one with a menu and a scan file, then the manager's menu. Line 1 is "[COMMON]".
struct Keys {
    std::string first = "subpicture=good.bmp", second = "subpicture=good.bmp", manager = "subpicture=good.bmp";
    std::string scan = "good.scan", mode = "PAL";
    bool menusOnly = false;
};

constexpr uint64_t FIRST_LINE = 17, SECOND_LINE = 21, MANAGER_LINE = 25, SCAN_LINE = 14;   // FIRST_LINE: its subpicture

// Keys name files of the folder without their folder; here they get it.
std::string projectText(const TempDir& folder, const Keys& keys)
{
    const std::string lines = "[COMMON]\nversion=1.0\nmode=" + keys.mode +
                              "\n[VMG]\ntitlesets=2\nmenus=1\n[VTS_1]\nsource=a\nmenus=1\n[VTS_2]\nsource=a\n;\n"
                              "menus=1\nstreamscanfile=" +
                              keys.scan + "\n[VTS_1_MENU1]\nbackground=good.mpg\n" + keys.first +
                              "\n;\n[VTS_2_MENU1]\nbackground=good.mpg\n" + keys.second +
                              "\n;\n[VMG_MENU1]\nbackground=good.mpg\n" + keys.manager + "\n";
    std::string text;
    for (size_t at = 0; at < lines.size(); at++) {
        text += lines[at];
        const bool file = lines[at] == '=' && lines.find('.', at) < lines.find('\n', at) && lines[at + 1] >= 'a';
        if (file) text += toUtf8(folder.prefix());
    }
    return text;
}

void writeFiles(const TempDir& folder)
{
    const Bytes good = bmpFile(ByteImage(576)), alpha = bmpFile(AlphaImage(576));
    writeFile(folder / u"good.bmp", good);
    writeFile(folder / u"cut.bmp", Bytes(good.begin(), good.end() - 1));
    writeFile(folder / u"text.bmp", std::string(60, 'x'));
    writeFile(folder / u"ntsc.bmp", bmpFile(ByteImage(480)));
    writeFile(folder / u"alpha.bmp", alpha);
    writeFile(folder / u"good.mpg", fromHex("00 00 01 B3"));
    writeFile(folder / u"good.scan", fromHex("01 00 00 00 00 00 00 00"));
    writeFile(folder / u"short.scan", fromHex("01 00 00 00 00 00 00"));
    writeFile(folder / u"odd.scan", fromHex("02 00 00 00 00 00 00 00"));
}

struct UnfitCase {
    const char* what;
    uint64_t code;
    Keys keys;
    uint64_t line;     // 0: nothing is said
    const char* why;   // the end of it
};

const char ALPHA_KEYS[] = "subpicture=good.bmp\nsubpicture32=alpha.bmp";
const char NO_BITMAP[] = "the file is no BMP bitmap";

const UnfitCase CASES[] = {
    { "all is well", CODE_INVALID_ARGUMENT, {}, 0, "" },
    { "first title set", CODE_INVALID_ARGUMENT, { .first = "subpicture=text.bmp" }, FIRST_LINE, NO_BITMAP },
    { "second title set", CODE_INVALID_ARGUMENT, { .second = "subpicture=text.bmp" }, SECOND_LINE, NO_BITMAP },
    { "manager", CODE_INVALID_ARGUMENT, { .manager = "subpicture=text.bmp" }, MANAGER_LINE, NO_BITMAP },
    { "the manager comes last",
      CODE_INVALID_ARGUMENT,
      { .second = "subpicture=text.bmp", .manager = "subpicture=text.bmp" },
      SECOND_LINE,
      NO_BITMAP },
    { "the run stopped before the later fault",
      CODE_INVALID_ARGUMENT,
      { .first = "subpicture=cut.bmp", .second = "subpicture=text.bmp" },
      0,
      "" },
    { "cut",
      CODE_SHORT_READ,
      { .first = "subpicture=cut.bmp", .second = "subpicture=text.bmp" },
      FIRST_LINE,
      "the file holds 414773 bytes, its own header says 414774" },
    { "NTSC",
      CODE_INVALID_ARGUMENT,
      { .first = "subpicture=ntsc.bmp", .mode = "NTSC" },
      SECOND_LINE,
      "the bitmap has 720 x 576 pixels, a menu has 720 x 480 (NTSC)" },
    { "missing", 2, { .second = "subpicture=none.bmp" }, SECOND_LINE, "there is no such file" },
    { "missing, on Windows", 3, { .second = "subpicture=none.bmp" }, SECOND_LINE, "there is no such file" },
    { "missing, but the disc is full", 28, { .second = "subpicture=none.bmp" }, 0, "" },
    { "depth of a bitmap without alpha is free", CODE_NOT_8BIT, { .first = "subpicture=alpha.bmp" }, 0, "" },
    { "depth of a collision map",
      CODE_NOT_8BIT,
      { .first = "subpicture=alpha.bmp\nsubpicture32=alpha.bmp" },
      FIRST_LINE,
      "the bitmap has 32 bits a pixel, not 8" },
    { "depth of alpha",
      CODE_NOT_32BIT,
      { .first = "subpicture=good.bmp\nsubpicture32=good.bmp" },
      FIRST_LINE + 1,
      "the bitmap has 8 bits a pixel, not 32" },
    { "letterbox without alpha of its own takes the plain ones",
      CODE_NOT_32BIT,
      { .first = "subpicture=good.bmp\nsubpicture32=good.bmp\nspuletterbox=good.bmp" },
      0,
      "" },
    { "letterbox, plain",
      CODE_INVALID_ARGUMENT,
      { .first = "subpicture=good.bmp\nspuletterbox=text.bmp" },
      FIRST_LINE + 1,
      NO_BITMAP },
    { "letterbox, alpha",
      CODE_INVALID_ARGUMENT,
      { .first = std::string(ALPHA_KEYS) + "\nspuletterbox=good.bmp\nspuletterbox32=text.bmp" },
      FIRST_LINE + 3,
      NO_BITMAP },
    { "letterbox, numbers, where nothing surer explains it",
      CODE_NOT_8BIT,
      { .first = std::string(ALPHA_KEYS) + "\nspuletterbox=alpha.bmp\nspuletterbox32=alpha.bmp" },
      FIRST_LINE + 2,
      "the bitmap has 32 bits a pixel, not 8" },
    { "letterbox, numbers, perhaps not read",
      CODE_INVALID_ARGUMENT,
      { .first = std::string(ALPHA_KEYS) + "\nspuletterbox=text.bmp\nspuletterbox32=alpha.bmp",
        .manager = "subpicture=text.bmp" },
      MANAGER_LINE + 3,
      NO_BITMAP },
    { "scan file",
      CODE_INVALID_ARGUMENT,
      { .manager = "subpicture=text.bmp", .scan = "odd.scan" },
      SCAN_LINE,
      "the file is no stream scan file" },
    { "short scan file",
      CODE_INVALID_ARGUMENT,
      { .scan = "short.scan" },
      SCAN_LINE,
      "the file is no stream scan file" },
    { "missing scan file", 2, { .scan = "none.scan" }, SCAN_LINE, "there is no such file" },
    { "a menu comes before its title set's scan file",
      CODE_INVALID_ARGUMENT,
      { .second = "subpicture=text.bmp", .scan = "odd.scan" },
      SECOND_LINE,
      NO_BITMAP },
    { "a preview opens no scan file",
      CODE_INVALID_ARGUMENT,
      { .manager = "subpicture=text.bmp", .scan = "odd.scan", .menusOnly = true },
      MANAGER_LINE,
      NO_BITMAP },
};

RunOutcome outcomeOf(uint64_t code)
{
    return { .code = code, .log = {}, .target = {}, .previous = {} };
}

TEST(UnfitMenu, NamesTheFileThatTheRunStoppedAt)
{
    const TempDir folder;
    writeFiles(folder);
    for (const UnfitCase& unfit : CASES) {
        SCOPED_TRACE(unfit.what);
        const ProjectFile file = parseProject(projectText(folder, unfit.keys));
        RunOutcome outcome = outcomeOf(unfit.code);
        outcome.menusOnly = unfit.keys.menusOnly;
        ProjectFault fault;
        ASSERT_EQ(findProjectFault(file, outcome, &fault), unfit.line != 0) << fault.why;
        if (unfit.line == 0) continue;
        ASSERT_TRUE(fault.key);
        EXPECT_EQ(fault.key->line, unfit.line);
        EXPECT_EQ(fault.why, unfit.why);
    }
}

// ---- buttons --------------------------------------------------------------------------------------------------------

TEST(UnfitMenu, NamesAButtonWithoutPixels)
{
    const TempDir folder;
    ByteImage map(576);
    map.fill(100, 50, 1, 1, 2);   // one pixel, on line 50 from the top
    writeFile(folder / u"good.bmp", bmpFile(map));
    writeFile(folder / u"alpha.bmp", bmpFile(AlphaImage(576)));
    writeFile(folder / u"good.scan", fromHex("01 00 00 00 00 00 00 00"));
    struct {
        const char* corners;
        const char* why;   // null: the button has a pixel
    } const cases[] = {
        { "90,110,40,60", nullptr },
        { "100,102,50,52", nullptr },
        { "98,101,49,51", nullptr },
        { "101,110,40,60", "the `subpicture` has no button number within this rectangle" },
        { "90,100,40,60", "the `subpicture` has no button number within this rectangle" },
        { "90,110,51,60", "the `subpicture` has no button number within this rectangle" },
        { "90,110,40,50", "the `subpicture` has no button number within this rectangle" },
        { "4000000000,4294967295,4000000000,4294967295",
          "the `subpicture` has no button number within this rectangle" },
        { "100,101,40,60", "the rectangle has no inside: its ends must lie two or more behind its starts" },
        { "90,110,60,40", "the rectangle has no inside: its ends must lie two or more behind its starts" },
    };
    for (const auto& button : cases) {
        SCOPED_TRACE(button.corners);
        const std::string keys = std::string(ALPHA_KEYS) + "\nbuttons=1\nbutton1=" + button.corners +
                                 ",0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0)";
        const ProjectFile file = parseProject(projectText(folder, { .second = keys }));
        ProjectFault fault;
        ASSERT_EQ(findProjectFault(file, outcomeOf(CODE_EMPTY_BUTTON), &fault), button.why != nullptr) << fault.why;
        if (!button.why) continue;
        EXPECT_EQ(fault.key->line, SECOND_LINE + 3);
        EXPECT_EQ(fault.why, button.why);
    }
}

// ---- movies of menus ------------------------------------------------------------------------------------------------

// Packs of which those at the given sectors are navigation packs; each clock is 1000 times its sector.
Bytes movie(uint64_t sectors, const std::vector<uint64_t>& navigation)
{
    Bytes bytes(sectors * 2048);
    for (uint64_t i = 0; i < navigation.size(); i++) {
        uint8_t* pack = &bytes[navigation[i] * 2048];
        const uint64_t next = i + 1 < navigation.size() ? navigation[i + 1] : sectors;
        const uint64_t clock = 1000 * navigation[i], last = next - navigation[i] - 1;
        const uint8_t start[] = { 0, 0, 1, 0xBA };
        std::copy(std::begin(start), std::end(start), pack);
        for (uint64_t byte = 0; byte < 4; byte++) {
            pack[1031 + byte] = uint8_t(clock >> (24 - 8 * byte));
            pack[1039 + byte] = uint8_t(last >> (24 - 8 * byte));
        }
    }
    return bytes;
}

TEST(UnfitMenu, NamesAMovieThatEndsTooEarly)
{
    struct {
        const char* what;
        uint64_t sectors;
        const char* keys;
        uint64_t line;   // behind the subpicture; 0: the background; none: nothing is said
    } const cases[] = {
        { "long enough", 8, ";", 9 },
        { "one pack", 1, ";", 0 },
        { "loop is met", 8, "type=animated\nloop=5000", 9 },
        { "loop lies between two packs", 8, "type=animated\nloop=2001", 9 },
        { "loop comes too late", 8, "type=animated\nloop=5001", 2 },
        { "loop is met by the last pack alone", 6, "type=animated\nloop=5000", 2 },
        { "delay comes too late", 8, "type=animated\nloop=0\ndelay=5001", 3 },
        { "loop 1 has no time", 8, "type=animated\nloop=1\ndelay=5001", 9 },
        { "a still has no loop", 8, "type=still\nloop=5001", 9 },
    };
    for (const auto& ending : cases) {
        SCOPED_TRACE(ending.what);
        const TempDir folder;
        writeFiles(folder);
        writeFile(folder / u"menu.mpg", ending.sectors == 1 ? movie(1, { 0 }) : movie(ending.sectors, { 0, 2, 5 }));
        std::string text = projectText(folder, { .second = std::string("subpicture=good.bmp\n") + ending.keys });
        const size_t second = text.find("good.mpg", text.find("[VTS_2_MENU1]"));
        const ProjectFile file = parseProject(text.replace(second, 4, "menu"));
        ProjectFault fault;
        ASSERT_EQ(findProjectFault(file, outcomeOf(CODE_MENU_MOVIE_ENDS), &fault), ending.line != 9) << fault.why;
        if (ending.line == 9) continue;
        EXPECT_EQ(fault.key->line, ending.line ? SECOND_LINE + ending.line : SECOND_LINE - 1);
        EXPECT_EQ(fault.why, ending.line ? "the `background` ends before this time, in 1/90000 s"
                                         : "the file holds 2048 bytes, less than two packs of 2048");
    }
}

// A pack that claims to be followed by itself, or by more than there is, ends the walk all the same.
TEST(UnfitMenu, WalksNoMovieForEver)
{
    const TempDir folder;
    writeFiles(folder);
    Bytes odd = movie(3, { 0, 1, 2 });
    std::fill(odd.begin() + 1039, odd.begin() + 1043, uint8_t(0xFF));
    writeFile(folder / u"good.mpg", odd);
    const ProjectFile file =
        parseProject(projectText(folder, { .first = "subpicture=good.bmp\ntype=animated\nloop=4294967295" }));
    ProjectFault fault;
    EXPECT_TRUE(findProjectFault(file, outcomeOf(CODE_MENU_MOVIE_ENDS), &fault));
    EXPECT_EQ(fault.key->line, FIRST_LINE + 2);
}

TEST(UnfitMenu, BackgroundsOfTheManagerAloneAreToldApart)
{
    const TempDir folder;
    writeFiles(folder);
    fs::remove(folder.root / "good.mpg");
    const ProjectFile file = parseProject(projectText(folder, {}));
    ProjectFault fault;
    ASSERT_TRUE(findProjectFault(file, outcomeOf(CODE_MENU_ASSET), &fault));
    EXPECT_EQ(fault.key->line, MANAGER_LINE - 1);
    ASSERT_TRUE(findProjectFault(file, outcomeOf(CODE_NOT_MPEG), &fault));
    EXPECT_EQ(fault.key->line, FIRST_LINE - 1);
}

// ---- VOBs -----------------------------------------------------------------------------------------------------------

TEST(UnfitMenu, NamesTheMenusWhoseVobHasNoPlace)
{
    const TempDir folder, target;
    writeFiles(folder);
    const ProjectFile file = parseProject(projectText(folder, {}));
    ProjectFault fault;
    RunOutcome outcome = outcomeOf(CODE_MENU_VOB);
    outcome.target = target.root;
    EXPECT_FALSE(findProjectFault(file, outcome, &fault));
    fs::create_directory(target.root / "VTS_02_0.VOB");
    ASSERT_TRUE(findProjectFault(file, outcome, &fault));
    EXPECT_EQ(fault.key->line, SCAN_LINE - 1);
    EXPECT_EQ(fault.why, "VTS_02_0.VOB in the target folder holds these menus: that is a folder");
    outcome.code = CODE_MANAGER_VOB;
    EXPECT_FALSE(findProjectFault(file, outcome, &fault));
    fs::create_directory(target.root / "VIDEO_TS.VOB");
    ASSERT_TRUE(findProjectFault(file, outcome, &fault));
    EXPECT_EQ(fault.key->line, 6u);
    EXPECT_EQ(fault.why, "VIDEO_TS.VOB in the target folder holds these menus: that is a folder");
}

}   // namespace
