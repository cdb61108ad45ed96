// What a host gets of a project's menus before a disc is made.
#include "tests/run/menu_project.h"

#include <orven/preview.h>

#include <cmath>

namespace {

// A record of the preview with all that it points to.
struct SeenMenu {
    OrvMenuPreview head;
    Bytes codes;
    std::vector<OrvPreviewButton> buttons;
};

struct Preview {
    uint64_t result = 0;
    std::vector<SeenMenu> menus;
    size_t cancelAt = 0;   // the menu of this number, from 1
};

uint32_t takeMenu(const OrvMenuPreview* menu, uint64_t user)
{
    auto* preview = reinterpret_cast<Preview*>(user);
    SeenMenu seen = { *menu, Bytes(menu->codes, menu->codes + uint64_t(menu->width) * menu->height), {} };
    seen.buttons.assign(menu->buttons, menu->buttons + menu->buttonCount);
    preview->menus.push_back(seen);
    return preview->menus.size() == preview->cancelAt ? 7 : 0;
}

Preview previewOf(const DiscRun& run, const std::string& project, size_t cancelAt = 0)
{
    writeFile(run.project, project);
    Preview preview;
    preview.cancelAt = cancelAt;
    preview.result = PreviewMenus(toUtf8(run.project).c_str(), takeMenu, uint64_t(&preview), toUtf8(run.log).c_str());
    return preview;
}

uint8_t codeAt(const SeenMenu& menu, uint64_t x, uint64_t line)
{
    return menu.codes.at(line * menu.head.width + x);
}

void expectColor(int red, int green, int blue, int contrast, const OrvPreviewColor& color, const char* what)
{
    // The way over luminance and chrominance, cut to eight bits and a narrower range, and back costs 1.16 steps of
    // luminance and 1.6 of the red or 2.0 of the blue part of chrominance.
    EXPECT_LE(std::abs(red - color.red), 3) << what;
    EXPECT_LE(std::abs(green - color.green), 3) << what;
    EXPECT_LE(std::abs(blue - color.blue), 3) << what;
    EXPECT_EQ(contrast, color.contrast) << what;
}

const char COLOR_TABLE[] = "colortable1=10,20,30\ncolortable2=255,0,0\ncolortable3=0,255,0\ncolortable4=0,0,255\n"
                           "colortable16=200,180,160\n";

}   // namespace

TEST(Preview, EachMenuInItsOrder)
{
    DiscRun run;
    MenuSpec letterbox;
    letterbox.letterbox = bmpFile(ByteImage(576));
    MenuDisc disc;
    disc.titleSet = { {}, letterbox };
    disc.manager = { {} };
    const Preview preview = previewOf(run, menuProject(run, disc));
    ASSERT_EQ(0u, preview.result);
    const uint32_t expected[][3] = { { 1, 1, 0 }, { 1, 2, 0 }, { 1, 2, 1 }, { 0, 1, 0 } };
    ASSERT_EQ(std::size(expected), preview.menus.size());
    for (size_t i = 0; i < std::size(expected); i++) {
        const OrvMenuPreview& head = preview.menus[i].head;
        EXPECT_EQ(expected[i][0], head.titleSet) << i;
        EXPECT_EQ(expected[i][1], head.menu) << i;
        EXPECT_EQ(expected[i][2], head.letterbox) << i;
        EXPECT_EQ(720u, head.width);
        EXPECT_EQ(576u, head.height);
    }
}

TEST(Preview, WritesNothing)
{
    DiscRun run;
    MenuDisc disc;
    disc.titleSet = { {} };
    disc.manager = { {} };
    const std::string project = menuProject(run, disc);
    writeFile(run.project, project);
    const Snapshot before = takeSnapshot(run.folder.root);
    EXPECT_EQ(2u, previewOf(run, project).menus.size());
    EXPECT_EQ(before, takeSnapshot(run.folder.root));
}

TEST(Preview, CodesAreThoseThatAreShown)
{
    DiscRun run;
    ByteImage image(576);
    image.fill(100, 200, 50, 20, 1);
    image.fill(300, 201, 3, 1, 2);
    image.fill(719, 573, 1, 1, 3);   // the last line that a sub-picture shows
    image.fill(0, 574, 720, 2, 3);   // behind it
    MenuSpec menu;
    menu.subPicture = bmpFile(image);
    MenuDisc disc;
    disc.manager = { menu };
    const Preview preview = previewOf(run, menuProject(run, disc));
    ASSERT_EQ(0u, preview.result);
    ASSERT_EQ(1u, preview.menus.size());
    image.fill(0, 574, 720, 2, 0);
    EXPECT_EQ(Bytes(image.pixels), preview.menus[0].codes);
}

TEST(Preview, FirstLinesAreTakenAsTwoBytes)
{
    // A first line of more than two bytes moves all lines of its field: the user sees it as a player shows it. The
    // line is coded 1 x 1, to the end 0: 5 0 0 0 0 and a pad nibble, three bytes, of which one is left for line 2:
    // 00 in front of that line's own 00 00, so line 2 ends there too, with its last byte left for line 4.
    DiscRun run;
    ByteImage image(576);
    image.at(0, 0) = 1;
    image.fill(0, 4, 720, 1, 2);
    MenuSpec menu;
    menu.subPicture = bmpFile(image);
    MenuDisc disc;
    disc.manager = { menu };
    const Preview preview = previewOf(run, menuProject(run, disc));
    ASSERT_EQ(1u, preview.menus.size());
    // From line 2 on the field's data are 00 00 00 00 02 00 00 ...: line 2 takes 00 00, line 4 00 00, line 6 02 00 ...
    const SeenMenu& seen = preview.menus[0];
    EXPECT_EQ(0, codeAt(seen, 0, 2));
    EXPECT_EQ(0, codeAt(seen, 0, 4));   // where the picture has 2
}

TEST(Preview, ButtonsAsTheyAreStored)
{
    DiscRun run;
    MenuSpec menu;
    menu.keys = "buttons=2\n"
                "button1=1034,300,40,81,2,2,258,1,7,BTN_ACTION_JUMP_TT(1,0,0),1\n"
                "button2=10,20,30,40,1,1,1,1,1,BTN_ACTION_JUMP_TT(1,0,0)\n";
    MenuDisc disc;
    disc.manager = { menu };
    const Preview preview = previewOf(run, menuProject(run, disc));
    ASSERT_EQ(0u, preview.result);
    ASSERT_EQ(2u, preview.menus.at(0).buttons.size());
    const OrvPreviewButton& button = preview.menus[0].buttons[0];
    EXPECT_EQ(10u, button.xStart);   // ten bits of 1034
    EXPECT_EQ(300u, button.xEnd);
    EXPECT_EQ(40u, button.yStart);
    EXPECT_EQ(81u, button.yEnd);
    EXPECT_EQ(2u, button.upLink);
    EXPECT_EQ(2u, button.downLink);
    EXPECT_EQ(2u, button.leftLink);   // eight bits of 258
    EXPECT_EQ(1u, button.rightLink);
    EXPECT_EQ(3u, button.colorSet);   // two bits of 7
    EXPECT_EQ(1u, button.autoAction);
    EXPECT_EQ(0u, preview.menus[0].buttons[1].autoAction);
}

TEST(Preview, LetterboxHasItsOwnLinesAndEighteenButtons)
{
    for (const bool pal : { true, false }) {
        DiscRun run;
        const uint64_t lines = pal ? 576 : 480;
        ByteImage wide(lines), narrow(lines);
        wide.fill(10, 100, 30, 4, 1);
        narrow.fill(10, 150, 30, 4, 2);
        MenuSpec menu;
        menu.background = stillAsset();
        menu.subPicture = bmpFile(wide);
        menu.letterbox = bmpFile(narrow);
        menu.keys = buttonKeys(20);
        MenuDisc disc;
        disc.mode = pal ? "PAL" : "NTSC";
        disc.manager = { menu };
        const Preview preview = previewOf(run, menuProject(run, disc));
        ASSERT_EQ(2u, preview.menus.size());
        EXPECT_EQ(1, codeAt(preview.menus[0], 10, 100));
        EXPECT_EQ(0, codeAt(preview.menus[0], 10, 150));
        EXPECT_EQ(0, codeAt(preview.menus[1], 10, 100));
        EXPECT_EQ(2, codeAt(preview.menus[1], 10, 150));
        ASSERT_EQ(18u, preview.menus[0].buttons.size());
        ASSERT_EQ(18u, preview.menus[1].buttons.size());
        for (size_t i = 0; i < 18; i++) {
            const OrvPreviewButton& a = preview.menus[0].buttons[i];
            const OrvPreviewButton& b = preview.menus[1].buttons[i];
            EXPECT_EQ(a.xStart, b.xStart);
            // Three quarters of the line below a bar of 72 or 60 lines.
            EXPECT_EQ(a.yStart * 3 / 4 + (pal ? 72 : 60), b.yStart) << i;
            EXPECT_EQ(a.yEnd * 3 / 4 + (pal ? 72 : 60), b.yEnd) << i;
        }
    }
}

TEST(Preview, ColorsOfTheProject)
{
    DiscRun run;
    MenuSpec menu;
    menu.keys = "colorset1=0,1,2,3,0,5,10,15\ncolorset3=15,0,0,0,7,0,0,0\n";
    MenuDisc disc;
    disc.titleSet = { menu };
    disc.titleSetKeys = COLOR_TABLE;
    const Preview preview = previewOf(run, menuProject(run, disc));
    ASSERT_EQ(1u, preview.menus.size());
    const OrvMenuPreview& head = preview.menus[0].head;
    expectColor(10, 20, 30, 0, head.palette[0], "code 0");
    expectColor(255, 0, 0, 0, head.palette[1], "code 1");
    expectColor(0, 255, 0, 0, head.palette[2], "code 2");
    expectColor(0, 0, 255, 0, head.palette[3], "code 3");
    for (const int state : { 0, 1 }) {   // a project has the same colours for both
        expectColor(10, 20, 30, 0, head.colors[0][state][0], "background");
        expectColor(255, 0, 0, 5, head.colors[0][state][1], "pattern");
        expectColor(0, 255, 0, 10, head.colors[0][state][2], "emphasis 1");
        expectColor(0, 0, 255, 15, head.colors[0][state][3], "emphasis 2");
        expectColor(200, 180, 160, 7, head.colors[2][state][0], "entry 16");
        expectColor(10, 20, 30, 0, head.colors[1][state][3], "a colour set that the project leaves out");
    }
}

TEST(Preview, ColorsOfThePipeline)
{
    // One colour, opaque: code 3 everywhere, sets 11 10 FA 50, the palette's entry 1 is the colour.
    DiscRun run;
    ByteImage collision(576);
    AlphaImage alpha(576);
    collision.fill(100, 100, 40, 20, 1);
    alpha.fill(100, 100, 40, 20, { 240, 120, 60, 255 });
    MenuSpec menu;
    menu.subPicture = bmpFile(collision);
    menu.subPicture32 = bmpFile(alpha);
    menu.keys = "buttons=1\nbutton1=90,200,90,200,1,1,1,1,3,BTN_ACTION_JUMP_TT(1,0,0)\n";
    MenuDisc disc;
    disc.titleSet = { menu };
    const Preview preview = previewOf(run, menuProject(run, disc));
    ASSERT_EQ(0u, preview.result);
    ASSERT_EQ(1u, preview.menus.size());
    const SeenMenu& seen = preview.menus[0];
    EXPECT_EQ(3, codeAt(seen, 100, 100));
    EXPECT_EQ(0, codeAt(seen, 99, 100));
    EXPECT_EQ(1u, seen.buttons.at(0).colorSet);
    EXPECT_EQ(100u, seen.buttons[0].xStart);
    expectColor(240, 120, 60, 15, seen.head.colors[0][0][3], "selected");
    expectColor(240, 120, 60, 10, seen.head.colors[0][0][2], "selected, code 2");
    expectColor(240, 120, 60, 5, seen.head.colors[0][0][1], "selected, code 1");
    expectColor(0, 0, 0, 0, seen.head.colors[0][0][0], "selected, code 0");
    expectColor(0, 0, 0, 0, seen.head.colors[0][1][3], "activated: the project has no colour set");
}

TEST(Preview, SkippedMenusAreLeftOut)
{
    DiscRun run;
    MenuDisc disc;
    disc.titleSet = { {} };
    disc.manager = { {} };
    disc.titleSetKeys = "skipmenu=1\n";
    const Preview preview = previewOf(run, menuProject(run, disc));
    ASSERT_EQ(0u, preview.result);
    ASSERT_EQ(1u, preview.menus.size());
    EXPECT_EQ(0u, preview.menus[0].head.titleSet);
}

TEST(Preview, BackgroundsAndMoviesAreNotNeeded)
{
    DiscRun run;
    MenuDisc disc;
    disc.manager = { {} };
    const std::string project = menuProject(run, disc);
    std::filesystem::remove(std::filesystem::path(assetPath(run, "VMG_MENU1", ".mpg")));
    std::filesystem::remove(std::filesystem::path(run.inTarget("VTS_01_1.VOB")));
    EXPECT_EQ(1u, previewOf(run, project).menus.size());
}

TEST(Preview, TheHostEndsIt)
{
    DiscRun run;
    MenuDisc disc;
    disc.titleSet = { {}, {} };
    disc.manager = { {} };
    const Preview preview = previewOf(run, menuProject(run, disc), 2);
    EXPECT_EQ(0x8400040Au, preview.result);
    EXPECT_EQ(2u, preview.menus.size());
}

TEST(Preview, FailuresAreThoseOfARun)
{
    DiscRun run;
    MenuDisc disc;
    disc.titleSet = { {} };
    disc.titleSet[0].subPicture = bmpFile(ByteImage(480));   // a picture of the other standard
    Preview preview = previewOf(run, menuProject(run, disc));
    EXPECT_EQ(0x84000057u, preview.result);
    EXPECT_TRUE(preview.menus.empty());

    const std::string faulty = "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=0\n";
    EXPECT_EQ(run.author(faulty), previewOf(run, faulty).result);
    EXPECT_NE(0u, previewOf(run, faulty).result);

    preview = {};
    EXPECT_EQ(0x84000057u, PreviewMenus(nullptr, takeMenu, uint64_t(&preview), nullptr));
    EXPECT_EQ(0x84000057u, PreviewMenus("x.ini", nullptr, 0, nullptr));
    EXPECT_EQ(0x84000057u, PreviewMenusW(nullptr, takeMenu, uint64_t(&preview), nullptr));
    EXPECT_TRUE(preview.menus.empty());
}

// 340 lines of 360 pairs of single pixels take 360 bytes each, 61,200 in a field of 170; two fields are more than a
// unit's size word can say.
TEST(Preview, AUnitThatNoPlayerCanRead)
{
    DiscRun run;
    ByteImage image(576);
    for (uint64_t line = 100; line < 440; line++) {
        for (uint64_t x = 0; x < 720; x++) image.at(x, line) = x % 2 ? 1 : 2;
    }
    MenuSpec menu;
    menu.subPicture = bmpFile(image);
    MenuDisc disc;
    disc.manager = { menu };
    const std::string project = menuProject(run, disc);
    const Preview preview = previewOf(run, project);
    EXPECT_EQ(0x840007DAu, preview.result);
    EXPECT_TRUE(preview.menus.empty());
    EXPECT_EQ(0u, run.author(project));   // a run writes it all the same
}

TEST(Preview, WideAndNarrowAlike)
{
    DiscRun run;
    MenuDisc disc;
    disc.manager = { {} };
    const Preview narrow = previewOf(run, menuProject(run, disc));
    Preview wide;
    const std::basic_string<OrvWChar> path(run.project.begin(), run.project.end());
    wide.result = PreviewMenusW(path.c_str(), takeMenu, uint64_t(&wide), nullptr);
    EXPECT_EQ(0u, wide.result);
    ASSERT_EQ(1u, wide.menus.size());
    EXPECT_EQ(narrow.menus.at(0).codes, wide.menus[0].codes);
}
