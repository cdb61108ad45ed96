// preview_test.cpp: the command `preview`, by running it: its files, its pictures, its failures.
#include "tests/host/png_decode.h"
#include "tests/host/process.h"
#include "tests/support/bitmaps.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

// What a project begins with. Neither movies nor backgrounds are there.
const char HEAD[] = "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n";

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

// The path of a written file as the program prints it.
std::string shown(const std::string& folder, const std::string& name)
{
    return "  " + (fs::path(folder) / name).string() + "\n";
}

// Plain areas of the codes 1, 2 and 3, one below the other.
Bytes codesBitmap(uint64_t lines = 576)
{
    ByteImage image(lines);
    image.fill(100, 100, 200, 20, 1);
    image.fill(100, 200, 200, 20, 2);
    image.fill(100, 300, 200, 20, 3);
    return bmpFile(image);
}

const char BUTTONS[] = "buttons=2\nbutton1=90,310,90,130,2,2,0,0,1,BTN_ACTION_LINKPGCN(1,0,0)\n"
                       "button2=90,310,190,230,1,1,0,0,2,BTN_ACTION_LINKPGCN(1,0,0)\n";
// background, pattern, emphasis 1 and 2 of the highlight, then their contrasts
const char COLORS[] = "colorset1=0,4,5,6,0,15,15,15\ncolorset2=0,4,5,6,0,15,5,15\n";
const char PALETTE[] = "colortable1=0,0,0\ncolortable2=200,0,0\ncolortable3=0,200,0\ncolortable4=0,0,200\n"
                       "colortable5=250,250,250\ncolortable6=250,250,0\ncolortable7=0,250,250\n";

// One menu of the manager, and one of the title set with a letterbox form.
std::string twoMenus(const TempDir& folder)
{
    writeFile(folder / u"a.bmp", codesBitmap());
    writeFile(folder / u"b.bmp", codesBitmap());
    return "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\nmenus=1\n[VTS_1]\nsource=none.vob\nmenus=1\n[VMG_MENU]\n" +
           std::string(PALETTE) + "[VMG_MENU1]\nbackground=none.mpg\nsubpicture=a.bmp\n" + COLORS + BUTTONS +
           "[VTS_1_MENU]\n" + PALETTE + "[VTS_1_MENU1]\nbackground=none.mpg\nsubpicture=a.bmp\nspuletterbox=b.bmp\n" +
           COLORS + BUTTONS;
}

Picture pictureIn(const TempDir& folder, const std::string& name)
{
    return decodePng(readFile((folder.root / name).u16string()));
}

// A disc's palette holds luminance and chrominance, so that colours come back a little changed.
void expectNear(const Picture& picture, Point point, Rgb color)
{
    const Rgb there = pixelAt(picture, point);
    EXPECT_NEAR(there.red, color.red, 3) << point.x << "," << point.y;
    EXPECT_NEAR(there.green, color.green, 3) << point.x << "," << point.y;
    EXPECT_NEAR(there.blue, color.blue, 3) << point.x << "," << point.y;
}

// ---- usage ----------------------------------------------------------------------------------------------------------

struct UsageCase {
    const char* what;
    std::vector<std::string> arguments;
    const char* err;   // part of what it says
};

TEST(PreviewCommand, WrongUsageIsExitCode2)
{
    const TempDir folder;
    writeFile(folder / u"file", std::string_view("x"));
    fs::create_directory(folder.root / "dir");
    const UsageCase cases[] = {
        { "no project", { "preview", "--out", "o" }, "PROJECT" },
        { "no folder", { "preview", "file" }, "--out" },
        { "project is missing", { "preview", "none.ini", "--out", "o" }, "error: there is no project file none.ini\n" },
        { "project is a folder", { "preview", "dir", "--out", "o" }, "error: dir is a folder" },
        { "out is a file",
          { "preview", "file", "--out", "file" },
          "error: file is a file; the pictures need a folder\n" },
        { "button 0", { "preview", "file", "--out", "o", "--button", "0" }, "--button" },
        { "button 37", { "preview", "file", "--out", "o", "--button", "37" }, "--button" },
        { "button of letters", { "preview", "file", "--out", "o", "--button", "two" }, "--button" },
        { "log is a folder", { "preview", "file", "--out", "o", "--log", "dir" }, "error: the log dir is a folder\n" },
        { "target belongs to author", { "preview", "file", "--out", "o", "--target", "t" }, "--target" },
    };
    for (const UsageCase& usage : cases) {
        SCOPED_TRACE(usage.what);
        const ProcessResult result = runOrven(usage.arguments, folder.root);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(holds(result.err, usage.err)) << result.err;
    }
    EXPECT_FALSE(fs::exists(folder.root / "o"));   // a refused call leaves no folder behind
}

TEST(PreviewCommand, HelpTeaches)
{
    const TempDir folder;
    const ProcessResult help = runOrven({ "preview", "--help" }, folder.root);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.err, "");
    for (const char* part : { "PROJECT", "-o,--out DIR", "-b,--button N", "-l,--log FILE", "-q,--quiet",
                              "vts01-menu2-selected.png", "vts01-menu2-letterbox", "vts01-menu2-button3-selected.png",
                              "A viewer sees one button highlighted at a time.", "up is yellow" }) {
        EXPECT_TRUE(holds(help.out, part)) << part;
    }
    EXPECT_TRUE(holds(runOrven({ "--help" }, folder.root).out, "orven preview project.ini --out pictures"));
}

// ---- pictures -------------------------------------------------------------------------------------------------------

TEST(PreviewCommand, WritesThreePicturesOfEachForm)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", twoMenus(folder));
    const ProcessResult result = runOrven({ "preview", "p.ini", "--out", "new/pictures" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    std::string expected;
    for (const auto& [line, name] : { std::pair<std::string, std::string>{ "title set 1, menu 1", "vts01-menu1" },
                                      { "title set 1, menu 1, letterbox", "vts01-menu1-letterbox" },
                                      { "manager, menu 1", "vmg-menu1" } }) {
        expected += line + ": 2 buttons\n";
        for (const char* form : { ".png", "-selected.png", "-activated.png" }) {
            expected += shown("new/pictures", name + form);
            const Picture picture = pictureIn(folder, "new/pictures/" + name + form);
            EXPECT_EQ(picture.width, 720) << name << form;
            EXPECT_EQ(picture.height, 576) << name << form;
        }
    }
    EXPECT_EQ(result.out, expected);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.root / "new/pictures"), {}), 9);
}

TEST(PreviewCommand, PicturesShowSubPictureAndHighlight)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", twoMenus(folder));
    ASSERT_EQ(runOrven({ "preview", "p.ini", "--out", "o", "--quiet" }, folder.root).exitCode, 0);
    const Picture map = pictureIn(folder, "o/vmg-menu1.png");
    expectNear(map, { 250, 110 }, { 200, 0, 0 });
    expectNear(map, { 250, 210 }, { 0, 200, 0 });
    expectNear(map, { 250, 310 }, { 0, 0, 200 });
    EXPECT_EQ(pixelAt(map, { 50, 110 }), NEUTRAL_GRAY);
    EXPECT_EQ(pixelAt(map, { 310, 100 }), (Rgb{ 255, 255, 255 }));   // the frame of button 1
    EXPECT_EQ(pixelAt(map, { 310, 230 }), (Rgb{ 255, 255, 255 }));   // corner of button 2
    const Picture selected = pictureIn(folder, "o/vmg-menu1-selected.png");
    expectNear(selected, { 250, 110 }, { 250, 250, 250 });      // pattern of set 1
    expectNear(selected, { 250, 210 }, { 169, 169, 85 });       // emphasis 1 of set 2 at 5/15 over 128
    EXPECT_EQ(pixelAt(selected, { 250, 310 }), NEUTRAL_GRAY);   // no button there
    EXPECT_EQ(pixelAt(selected, { 310, 100 }), NEUTRAL_GRAY);
    EXPECT_EQ(pictureIn(folder, "o/vmg-menu1-activated.png").rgb, selected.rgb);   // a project has one set for both
    // The letterbox form has button 2 from line 190 * 3 / 4 + 72 = 214 to 244.
    const Picture letterbox = pictureIn(folder, "o/vts01-menu1-letterbox-selected.png");
    EXPECT_EQ(pixelAt(letterbox, { 250, 213 }), NEUTRAL_GRAY);
    expectNear(letterbox, { 250, 214 }, { 169, 169, 85 });
}

TEST(PreviewCommand, OneButtonAlone)
{
    const TempDir folder;
    std::string project = twoMenus(folder) + "[VMG_MENU2]\nbackground=b\nsubpicture=a.bmp\nbuttons=1\n";
    project.replace(project.find("menus=1"), 7, "menus=2");
    project.replace(project.find("menus=1"), 7, "menus=0");
    writeFile(folder / u"p.ini", project);
    const ProcessResult result = runOrven({ "preview", "p.ini", "--out", "o", "--button", "2" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "manager, menu 1: 2 buttons\n" + shown("o", "vmg-menu1.png") +
                              shown("o", "vmg-menu1-button2-selected.png") +
                              shown("o", "vmg-menu1-button2-activated.png") +
                              "manager, menu 2: 1 button, so none is number 2\n" + shown("o", "vmg-menu2.png"));
    const Picture selected = pictureIn(folder, "o/vmg-menu1-button2-selected.png");
    EXPECT_EQ(pixelAt(selected, { 250, 110 }), NEUTRAL_GRAY);
    expectNear(selected, { 250, 210 }, { 169, 169, 85 });
    const ProcessResult none = runOrven({ "preview", "p.ini", "--out", "o", "--button", "3", "-q" }, folder.root);
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.err, "error: no menu has a button 3\n");
    EXPECT_EQ(none.out, "");
}

TEST(PreviewCommand, ProjectWithoutMenus)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", std::string(HEAD) + "[VTS_1]\nsource=none.vob\n");
    const ProcessResult result = runOrven({ "preview", "p.ini", "--out", "o" }, folder.root);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "the project has no menus to show\n");
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(fs::is_empty(folder.root / "o"));
    EXPECT_EQ(runOrven({ "preview", "p.ini", "--out", "o", "--quiet" }, folder.root).out, "");
}

TEST(PreviewCommand, OverwritesItsOwnAndNothingElse)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", twoMenus(folder));
    fs::create_directory(folder.root / "o");
    writeFile(folder / u"o/vmg-menu1.png", std::string_view("old"));
    writeFile(folder / u"o/mine.png", std::string_view("mine"));
    EXPECT_EQ(runOrven({ "preview", "p.ini", "--out", "o", "--quiet" }, folder.root).out, "");
    EXPECT_EQ(pictureIn(folder, "o/vmg-menu1.png").width, 720);
    EXPECT_EQ(readFile(folder / u"o/mine.png").size(), 4u);
}

TEST(PreviewCommand, SaysWhenAPictureHasNoPlace)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", twoMenus(folder));
    fs::create_directories(folder.root / "o/vts01-menu1-selected.png");
    const ProcessResult result = runOrven({ "preview", "p.ini", "--out", "o" }, folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err,
              "error: " + (fs::path("o") / "vts01-menu1-selected.png").string() + " is there and is no plain file\n");
    EXPECT_EQ(result.out, "title set 1, menu 1: 2 buttons\n" + shown("o", "vts01-menu1.png"));
    EXPECT_FALSE(fs::exists(folder.root / "o/vmg-menu1.png"));
}

// ---- failures -------------------------------------------------------------------------------------------------------

TEST(PreviewCommand, FailureNamesTheRefusedKeyAndTheLog)
{
    const TempDir folder;
    writeFile(folder / u"p.ini", std::string(HEAD) + "[VTS_1]\nresolution=720x480\n");
    const std::vector<std::string> arguments = { "preview", "p.ini", "--out", "o", "--log", "run.log" };
    const ProcessResult result = runOrven(arguments, folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "error: Error 1016: wrong resolution (0x840003F8)\n"
                          "  p.ini:6: resolution=720x480\n"
                          "  log: Unknown Resolutio...\n"
                          "  more: orven explain 1016\n");
    EXPECT_GT(readFile(folder / u"run.log").size(), 0u);
}

struct BitmapCase {
    const char* what;
    const char* menu;   // its keys from line 10 on
    const char* code;   // the first line of what it says
    const char* err;    // the others but the last
};

const char SHORT[] = "error: a file is shorter than it should be (0x88010102)\n";
const char INVALID[] = "error: a file has not the form that it should have, or an argument was invalid (0x84000057)\n";
const char NOT_8BIT[] = "error: Error 2033: collision bmp color depth must be 8bit (0x840007F1)\n";
const char NOT_32BIT[] = "error: Error 2034: spu alpha bmp color depth must be 32bit (0x840007F2)\n";
const char EMPTY_BUTTON[] = "error: Error 2037: btn rect in collision bmp is empty (0x840007F5)\n";

const BitmapCase BITMAP_CASES[] = {
    { "empty", "subpicture=empty.bmp\n", SHORT,
      "  p.ini:10: subpicture=empty.bmp\n    the file holds 0 bytes, less than a bitmap's headers\n" },
    { "cut in its headers", "subpicture=head.bmp\n", SHORT,
      "  p.ini:10: subpicture=head.bmp\n    the file holds 53 bytes, less than a bitmap's headers\n" },
    { "cut in its pixels", "subpicture=cut.bmp\n", SHORT,
      "  p.ini:10: subpicture=cut.bmp\n    the file holds 414000 bytes, its own header says 414774\n" },
    { "no bitmap", "subpicture=text.bmp\n", INVALID,
      "  p.ini:10: subpicture=text.bmp\n    the file is no BMP bitmap\n" },
    { "another standard", "subpicture=ntsc.bmp\n", INVALID,
      "  p.ini:10: subpicture=ntsc.bmp\n    the bitmap has 720 x 480 pixels, a menu has 720 x 576 (PAL)\n" },
    { "top line first", "subpicture=top.bmp\n", INVALID,
      "  p.ini:10: subpicture=top.bmp\n    the bitmap's first line is the top one (its height is -576); save it with "
      "the bottom line first\n" },
    { "old header", "subpicture=core.bmp\n", INVALID,
      "  p.ini:10: subpicture=core.bmp\n    the bitmap has 720 x 480 pixels, a menu has 720 x 576 (PAL)\n" },
    { "more bits than pixels", "subpicture=deep.bmp\n", INVALID,
      "  p.ini:10: subpicture=deep.bmp\n    the bitmap's header says 414720 bytes of pixels, fewer than 1658880\n" },
    { "letterbox", "subpicture=good.bmp\nspuletterbox=text.bmp\n", INVALID,
      "  p.ini:11: spuletterbox=text.bmp\n    the file is no BMP bitmap\n" },
    { "collision map of 32 bits", "subpicture=alpha.bmp\nsubpicture32=alpha.bmp\n", NOT_8BIT,
      "  p.ini:10: subpicture=alpha.bmp\n    the bitmap has 32 bits a pixel, not 8\n" },
    { "alpha of 8 bits", "subpicture=good.bmp\nsubpicture32=good.bmp\n", NOT_32BIT,
      "  p.ini:11: subpicture32=good.bmp\n    the bitmap has 8 bits a pixel, not 32\n" },
    { "alpha of a letterbox",
      "subpicture=good.bmp\nsubpicture32=alpha.bmp\nspuletterbox=good.bmp\n"
      "spuletterbox32=good.bmp\n",
      NOT_32BIT, "  p.ini:13: spuletterbox32=good.bmp\n    the bitmap has 8 bits a pixel, not 32\n" },
    { "button without a key", "subpicture=good.bmp\nsubpicture32=alpha.bmp\nbuttons=1\n", EMPTY_BUTTON,
      "  p.ini:8: [VTS_1_MENU1] has no `button1`\n    a button without a key has no rectangle\n" },
    { "button without an inside",
      "subpicture=good.bmp\nsubpicture32=alpha.bmp\nbuttons=1\n"
      "button1=5,6,7,99,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0)\n",
      EMPTY_BUTTON,
      "  p.ini:13: button1=5,6,7,99,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0)\n"
      "    the rectangle has no inside: its ends must lie two or more behind its starts\n" },
    { "button beside its pixels",
      "subpicture=good.bmp\nsubpicture32=alpha.bmp\nbuttons=1\n"
      "button1=400,500,100,200,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0)\n",
      EMPTY_BUTTON,
      "  p.ini:13: button1=400,500,100,200,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0)\n"
      "    the `subpicture` has no button number within this rectangle\n" },
};

void writeBitmaps(const TempDir& folder)
{
    const Bytes good = codesBitmap();
    Bytes deep = good;
    deep[28] = 32;   // bits a pixel
    writeFile(folder / u"good.bmp", good);
    writeFile(folder / u"deep.bmp", deep);
    writeFile(folder / u"empty.bmp", Bytes());
    writeFile(folder / u"head.bmp", Bytes(good.begin(), good.begin() + 53));
    writeFile(folder / u"cut.bmp", Bytes(good.begin(), good.begin() + 414000));
    writeFile(folder / u"text.bmp", std::string(60, 'x'));
    writeFile(folder / u"ntsc.bmp", codesBitmap(480));
    writeFile(folder / u"top.bmp", bmpFile(ByteImage(576), { .topDown = true }));
    writeFile(folder / u"core.bmp", bmpFile(ByteImage(480), { .coreHeader = true }));
    AlphaImage alpha(576);   // of two colours, so that each button's is looked for
    alpha.fill(100, 100, 200, 120, { 200, 30, 30, 255 });
    alpha.fill(100, 220, 200, 120, { 30, 200, 30, 255 });
    writeFile(folder / u"alpha.bmp", bmpFile(alpha));
}

TEST(PreviewCommand, FailureNamesTheBitmap)
{
    const TempDir folder;
    writeBitmaps(folder);
    for (const BitmapCase& bitmap : BITMAP_CASES) {
        SCOPED_TRACE(bitmap.what);
        writeFile(folder / u"p.ini", std::string(HEAD) + "[VTS_1]\nsource=none.vob\nmenus=1\n" +
                                         std::string("[VTS_1_MENU1]\nbackground=none.mpg\n") + bitmap.menu);
        const ProcessResult result = runOrven({ "preview", "p.ini", "--out", "o" }, folder.root);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(result.err.starts_with(std::string(bitmap.code) + bitmap.err + "  more: orven explain "))
            << result.err;
    }
}

TEST(PreviewCommand, FailureNamesTheMissingBitmap)
{
    const TempDir folder;
    writeBitmaps(folder);
    fs::create_directory(folder.root / "dir");
    // The title set's menus come before the manager's. A scan file that is missing is none of a preview's business.
    const std::string project = std::string(HEAD) + "menus=1\n[VTS_1]\nsource=a\nmenus=1\nstreamscanfile=none.scan\n"
                                                    "[VMG_MENU1]\nbackground=a\nsubpicture=none.bmp\n"
                                                    "[VTS_1_MENU1]\nbackground=a\nsubpicture=";
    writeFile(folder / u"p.ini", project + "good.bmp\n");
    const ProcessResult missing = runOrven({ "preview", "p.ini", "--out", "o" }, folder.root);
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(
        holds(missing.err, "(system error 2)\n  p.ini:12: subpicture=none.bmp\n    there is no such file, seen "))
        << missing.err;
    writeFile(folder / u"p.ini", project + "dir\n");
    const ProcessResult directory = runOrven({ "preview", "p.ini", "--out", "o" }, folder.root);
    EXPECT_EQ(directory.exitCode, 1);
    EXPECT_TRUE(holds(directory.err, ")\n  p.ini:15: subpicture=dir\n    that is a folder\n  more: ")) << directory.err;
}

}   // namespace
