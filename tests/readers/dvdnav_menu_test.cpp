// dvdnav_menu_test.cpp: libdvdnav walks the menus of authored discs: every button leads where its project says, the
// menu key leads from a chapter to its page and button, animated pages repeat as they should.

#include "tests/readers/menu_pages.h"
#include "tests/readers/player.h"

#include <gtest/gtest.h>

constexpr const char* THREE_CHAPTERS = "chapters=3\nchapter1=0\nchapter2=200000\nchapter3=450000\n";

// Two movies and pages of every kind: still and animated, of the manager and of both title sets.
static Disc discOfMenus(Standard standard)
{
    std::vector<ButtonPlan> title = buttonGrid(2, 3, "");
    title[0].command = "BTN_ACTION_JUMP_TT(1,0,0)";
    title[1].command = "BTN_ACTION_JUMP_TT(2,0,0)";
    title[2].command = "BTN_ACTION_JUMP_VTSM(1,1,0)";
    title[3].command = "BTN_ACTION_JUMP_VTSM(2,1,0)";
    title[4].command = "BTN_ACTION_LINKPGCN(2,0,0)";
    title[5].command = "BTN_ACTION_LINKCN(1,3,0)";
    std::vector<ButtonPlan> more = buttonGrid(2, 1, "");
    more[0].command = "BTN_ACTION_LINKPGCN(1,0,0)";
    more[1].command = "BTN_ACTION_JUMP_TT(2,0,0)";

    std::vector<ButtonPlan> chapters = buttonGrid(2, 2, "");
    chapters[0].command = "BTN_ACTION_JUMP_VTSPTT(1,1,0)";
    chapters[1].command = "BTN_ACTION_JUMP_VTSPTT(1,3,0)";
    chapters[2].command = "BTN_ACTION_LINKPGCN(2,0,0)";
    chapters[3].command = "BTN_ACTION_JUMP_VMGM(0,0,0)";
    std::vector<ButtonPlan> last = buttonGrid(1, 2, "");
    last[0].command = "BTN_ACTION_JUMP_VTSPTT(1,2,0)";
    last[1].command = "BTN_ACTION_LINKPGCN(1,0,0)";
    std::vector<ButtonPlan> second = buttonGrid(1, 2, "");
    second[0].command = "BTN_ACTION_JUMP_VTSPTT(1,1,0)";
    second[1].command = "BTN_ACTION_JUMP_VMGM(0,0,0)";

    const std::string pages =
        menuPage("VMG_MENU1", standard, realStill(standard, 0), title) +
        menuPage("VMG_MENU2", standard, realAnimation(standard, 1, 2), more, "type=animated\nloop=1\n") +
        menuPage("VTS_1_MENU1", standard, realAnimation(standard, 2, 2), chapters,
                 "type=animated\nloop=1\nmenutype=root\n") +
        menuPage("VTS_1_MENU2", standard, realStill(standard, 1), last) +
        menuPage("VTS_2_MENU1", standard, realStill(standard, 2), second);
    const std::string keyed = "chapters=3\nchapter1=0,1,2\nchapter2=200000,2,1\nchapter3=450000,1,4\nmenus=2\n";
    return Disc(standard,
                { { .keys = keyed }, { .pattern = 1, .keys = "chapters=1\nchapter1=0,1,2\nmenus=1\npostcmd=title\n" } },
                "[FIRSTPLAY]\ncmd=BTN_ACTION_JUMP_VMGM(0,0,0)\n" + pages, "menus=2\n");
}

static void expectButtons(const pci_t& pci, const std::vector<ButtonPlan>& buttons)
{
    ASSERT_EQ(pci.hli.hl_gi.btn_ns, buttons.size());
    EXPECT_EQ(pci.hli.hl_gi.nsl_btn_ns, buttons.size());
    for (size_t i = 0; i < buttons.size(); i++) {
        const btni_t& told = pci.hli.btnit[i];
        EXPECT_EQ(told.x_start, buttons[i].xStart) << i;
        EXPECT_EQ(told.x_end, buttons[i].xEnd) << i;
        EXPECT_EQ(told.y_start, buttons[i].yStart) << i;
        EXPECT_EQ(told.y_end, buttons[i].yEnd) << i;
        EXPECT_EQ(told.btn_coln, buttons[i].color) << i;
        EXPECT_EQ(told.up, buttons[i].up) << i;
        EXPECT_EQ(told.down, buttons[i].down) << i;
        EXPECT_EQ(told.left, buttons[i].left) << i;
        EXPECT_EQ(told.right, buttons[i].right) << i;
        EXPECT_EQ(told.auto_action_mode, buttons[i].autoAction) << i;
    }
}

class DvdNavMenus : public testing::TestWithParam<Standard> {};
static std::string standardName(const testing::TestParamInfo<Standard>& info)
{
    return info.param == PAL ? "Pal" : "Ntsc";
}
INSTANTIATE_TEST_SUITE_P(Standards, DvdNavMenus, testing::Values(PAL, NTSC), standardName);

TEST_P(DvdNavMenus, FirstPlayShowsTheManagersMenu)
{
    const Disc disc = discOfMenus(GetParam());
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    EXPECT_EQ(player.button(), 1);
    expectButtons(player.pci(), buttonGrid(2, 3, ""));
    EXPECT_EQ(player.next(), "still");
    EXPECT_EQ(player.next(), "still");
}

TEST_P(DvdNavMenus, EveryButtonLeadsWhereItsProjectSays)
{
    struct Walk {
        std::vector<int> presses;
        const char* place;
        int button;   // selected there; 0: not looked at
    };
    const Walk WALKS[] = {
        { { 1 }, "title 1 chapter 1", 0 },
        { { 2 }, "title 2 chapter 1", 0 },
        { { 3 }, "title set 1 page 1", 1 },
        { { 4 }, "title set 2 page 1", 1 },
        { { 5 }, "manager page 2", 1 },
        { { 6 }, "manager page 1", 3 },
        { { 5, 1 }, "manager page 1", 1 },
        { { 5, 2 }, "title 2 chapter 1", 0 },
        { { 3, 1 }, "title 1 chapter 1", 0 },
        { { 3, 2 }, "title 1 chapter 3", 0 },
        { { 3, 3 }, "title set 1 page 2", 1 },
        { { 3, 4 }, "manager page 1", 1 },
        { { 3, 3, 1 }, "title 1 chapter 2", 0 },
        { { 3, 3, 2 }, "title set 1 page 1", 1 },
        { { 4, 1 }, "title 2 chapter 1", 0 },
        { { 4, 2 }, "manager page 1", 1 },
        { { 4, 2, 3, 3, 2, 4, 5, 2 }, "title 2 chapter 1", 0 },
    };
    const Disc disc = discOfMenus(GetParam());
    for (const Walk& walk : WALKS) {
        Player player(disc);
        std::string place = player.next(), way;
        for (const int button : walk.presses) {
            way += " " + std::to_string(button);
            place = player.press(button);
        }
        EXPECT_EQ(place, walk.place) << "by the buttons" << way;
        if (walk.button) {
            EXPECT_EQ(player.button(), walk.button) << "by the buttons" << way;
        }
    }
}

TEST_P(DvdNavMenus, MenuKeyLeadsToThePageAndButtonOfTheChapter)
{
    struct Key {
        int title, chapter;
        const char* place;
        int button;
    };
    const Key KEYS[] = {
        { 1, 1, "title set 1 page 1", 2 },
        { 1, 2, "title set 1 page 2", 1 },
        { 1, 3, "title set 1 page 1", 4 },
        { 2, 1, "title set 2 page 1", 2 },
    };
    const Disc disc = discOfMenus(GetParam());
    for (const Key& key : KEYS) {
        SCOPED_TRACE("chapter " + std::to_string(key.chapter) + " of title " + std::to_string(key.title));
        Player player(disc);
        ASSERT_EQ(player.next(), "manager page 1");
        ASSERT_EQ(dvdnav_part_play(player.nav, key.title, key.chapter), DVDNAV_STATUS_OK);
        const std::string chapter = "title " + std::to_string(key.title) + " chapter " + std::to_string(key.chapter);
        ASSERT_EQ(player.next(), chapter);
        EXPECT_EQ(player.call(DVD_MENU_Root), key.place);
        EXPECT_EQ(player.button(), key.button);
        // Back in the movie, and to the menu by the title key.
        EXPECT_EQ(player.call(DVD_MENU_Escape), chapter);
        EXPECT_EQ(player.call(DVD_MENU_Title), "manager page 1");
        EXPECT_EQ(player.button(), 1);
    }
}

TEST(DvdNavMenu, OnlyTheMovieLeadsToTheChaptersButton)
{
    // From the manager's menu the title set's first page comes with its first button, from the movie with the
    // chapter's, and from the manager again with the first.
    const Disc disc = discOfMenus(PAL);
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    EXPECT_EQ(player.press(3), "title set 1 page 1");
    EXPECT_EQ(player.button(), 1);
    EXPECT_EQ(player.press(2), "title 1 chapter 3");
    EXPECT_EQ(player.call(DVD_MENU_Root), "title set 1 page 1");
    EXPECT_EQ(player.button(), 4);
    EXPECT_EQ(player.press(4), "manager page 1");
    EXPECT_EQ(player.press(3), "title set 1 page 1");
    EXPECT_EQ(player.button(), 1);
}

TEST(DvdNavMenu, ThePostCommandLeadsToTheManagersMenu)
{
    const Disc disc = discOfMenus(PAL);
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    std::string place = player.press(2);
    for (int units = 0; place == "title 2 chapter 1" && units < 100; units++) place = player.next();
    EXPECT_EQ(place, "manager page 1");
}

TEST(DvdNavMenu, CursorKeysWalkThirtySixButtons)
{
    const std::vector<ButtonPlan> buttons = buttonGrid(6, 6, "BTN_ACTION_JUMP_TT(1,0,0)");
    const Disc disc(PAL, { {} }, menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons), "menus=1\n");
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    expectButtons(player.pci(), buttons);
    pci_t* pci = dvdnav_get_current_nav_pci(player.nav);
    for (int row = 0; row < 6; row++) {
        for (int column = 0; column < 6; column++) {
            EXPECT_EQ(player.button(), row * 6 + column + 1);
            dvdnav_right_button_select(player.nav, pci);
        }
        dvdnav_lower_button_select(player.nav, pci);
    }
    EXPECT_EQ(player.button(), 1);
    dvdnav_upper_button_select(player.nav, pci);
    dvdnav_left_button_select(player.nav, pci);
    EXPECT_EQ(player.button(), 36);
    EXPECT_EQ(player.press(36), "title 1 chapter 1");
}

TEST(DvdNavMenu, PointerFindsTheButtonUnderIt)
{
    const std::vector<ButtonPlan> buttons = buttonGrid(6, 6, "BTN_ACTION_JUMP_TT(1,0,0)");
    const Disc disc(NTSC, { {} }, menuPage("VMG_MENU1", NTSC, realStill(NTSC, 0), buttons), "menus=1\n");
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    pci_t* pci = dvdnav_get_current_nav_pci(player.nav);
    for (int n = 36; n > 0; n--) {
        const ButtonPlan& b = buttons[size_t(n - 1)];
        EXPECT_EQ(dvdnav_mouse_select(player.nav, pci, int((b.xStart + b.xEnd) / 2), int((b.yStart + b.yEnd) / 2)),
                  DVDNAV_STATUS_OK);
        EXPECT_EQ(player.button(), n);
    }
}

TEST(DvdNavMenu, AutoActionActsWhenItsButtonIsSelected)
{
    std::vector<ButtonPlan> buttons = buttonGrid(3, 1, "BTN_ACTION_JUMP_TT(1,0,0)");
    buttons[2].command = "BTN_ACTION_JUMP_TT(2,0,0)";
    buttons[2].autoAction = 1;
    const Disc disc(PAL, { {}, { .pattern = 1 } }, menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons), "menus=1\n");
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    dvdnav_right_button_select(player.nav, dvdnav_get_current_nav_pci(player.nav));
    EXPECT_EQ(player.button(), 2);
    dvdnav_right_button_select(player.nav, dvdnav_get_current_nav_pci(player.nav));
    EXPECT_EQ(player.next(), "title 2 chapter 1");
}

TEST(DvdNavMenu, HighlightsHaveTheColoursOfTheirSet)
{
    // Pixel code 3 is the second emphasis, code 0 the background: colours 3, 2, 1, 0, contrasts 15, 10, 5, 0 and so on.
    const std::string keys =
        "colorset1=0,1,2,3,0,5,10,15\ncolorset2=4,5,6,7,15,14,13,12\ncolorset3=15,14,1,0,1,2,3,4\n";
    const std::vector<ButtonPlan> buttons = buttonGrid(3, 1, "BTN_ACTION_JUMP_TT(1,0,0)");
    const Disc disc(PAL, { {} }, menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons, keys), "menus=1\n");
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    const uint32_t words[] = { 0x3210FA50, 0x7654CDEF, 0x01EF4321 };
    for (int n = 1; n <= 3; n++) {
        for (const int activated : { 0, 1 }) {
            dvdnav_highlight_area_t area = {};
            ASSERT_EQ(dvdnav_get_highlight_area(dvdnav_get_current_nav_pci(player.nav), n, activated, &area),
                      DVDNAV_STATUS_OK);
            EXPECT_EQ(area.palette, words[n - 1]) << n;
            EXPECT_EQ(area.sx, buttons[size_t(n - 1)].xStart);
            EXPECT_EQ(area.ey, buttons[size_t(n - 1)].yEnd);
        }
    }
}

// A page whose button chooses the second sound track.
static std::string soundPage(const std::filesystem::path& background, const std::string& keys)
{
    std::vector<ButtonPlan> buttons = buttonGrid(3, 1, "BTN_ACTION_JUMP_VTSPTT(1,1,0)");
    buttons[1].command = "BTN_ACTION_SETAUDIO(2,3,0)";
    return menuPage("VTS_1_MENU1", PAL, background, buttons, "menutype=audio\n" + keys);
}

TEST(DvdNavMenu, SoundTrackIsChosen)
{
    const std::vector<ButtonPlan> ways = buttonGrid(2, 1, "BTN_ACTION_JUMP_AMENU(1,1,0)");
    const std::string title =
        "[FIRSTPLAY]\ncmd=BTN_ACTION_JUMP_VMGM(0,0,0)\n" + menuPage("VMG_MENU1", PAL, realStill(PAL, 0), ways);
    const TitleSetPlan plan = { .keys = "astreams=2\naudio2=AC3\nmenus=1\n" };
    const Disc still(PAL, { plan }, title + soundPage(realStill(PAL, 1), {}), "menus=1\n");
    Player player(still);
    ASSERT_EQ(player.next(), "manager page 1");
    EXPECT_EQ(player.press(1), "title set 1 page 1");
    EXPECT_EQ(player.press(2), "manager page 1") << "a page that does not repeat goes on to the manager's menu";
    EXPECT_EQ(player.press(1), "title set 1 page 1");
    EXPECT_EQ(player.press(1), "title 1 chapter 1");
    EXPECT_EQ(dvdnav_get_active_audio_stream(player.nav), 1);

    const Disc loop(PAL, { plan }, title + soundPage(realAnimation(PAL, 1, 2), "type=animated\nloop=1\n"), "menus=1\n");
    Player again(loop);
    ASSERT_EQ(again.next(), "manager page 1");
    EXPECT_EQ(again.press(1), "title set 1 page 1");
    EXPECT_EQ(again.press(2), "title set 1 page 1") << "a page that repeats starts again";
    EXPECT_EQ(again.button(), 3);
    EXPECT_EQ(again.press(1), "title 1 chapter 1");
    EXPECT_EQ(dvdnav_get_active_audio_stream(again.nav), 1);
}

// What a page of three seconds shows: sectors of its navigation packs in the order of playing, "still" last if it
// stays.
struct Unit {
    uint32_t sector, clock, buttons, cell;
};
struct Playing {
    std::vector<Unit> units;
    bool stays = false;
};
static Playing playPage(const std::string& keys)
{
    const std::vector<ButtonPlan> buttons = buttonGrid(2, 1, "BTN_ACTION_JUMP_TT(1,0,0)");
    const Disc disc(PAL, { {} }, menuPage("VMG_MENU1", PAL, realAnimation(PAL, 0, 3), buttons, keys), "menus=1\n");
    Player player(disc);
    Playing playing;
    for (int i = 0; i < 40; i++) {
        const std::string place = player.next();
        if (place == "still") {
            playing.stays = true;
            break;
        }
        EXPECT_EQ(place, "manager page 1");
        if (place != "manager page 1") break;
        playing.units.push_back({ player.dsi().dsi_gi.nv_pck_lbn, player.dsi().dsi_gi.nv_pck_scr,
                                  player.pci().hli.hl_gi.btn_ns, player.dsi().dsi_gi.vobu_c_idn });
    }
    return playing;
}

/** Units until the first that does not lie behind the one before. */
static size_t firstRound(const Playing& playing)
{
    size_t count = 1;
    while (count < playing.units.size() && playing.units[count].sector > playing.units[count - 1].sector) count++;
    return count;
}

TEST(DvdNavMenu, AnimationPlaysOnceAndStays)
{
    const Playing playing = playPage("type=animated\n");
    EXPECT_TRUE(playing.stays);
    ASSERT_GT(playing.units.size(), 3u);
    EXPECT_EQ(firstRound(playing), playing.units.size());
    for (const Unit& unit : playing.units) EXPECT_EQ(unit.buttons, 2u);
}

TEST(DvdNavMenu, AnimationRepeatsFromItsStart)
{
    const Playing playing = playPage("type=animated\nloop=1\n");
    EXPECT_FALSE(playing.stays);
    const size_t round = firstRound(playing);
    ASSERT_GT(round, 3u);
    ASSERT_LT(round * 3, playing.units.size());
    for (size_t i = round; i < playing.units.size(); i++) {
        EXPECT_EQ(playing.units[i].sector, playing.units[i - round].sector) << i;
    }
    for (const Unit& unit : playing.units) EXPECT_EQ(unit.buttons, 2u);
}

TEST(DvdNavMenu, AnimationRepeatsFromItsLoopPointWhereItsButtonsAppear)
{
    const Playing playing = playPage("type=animated\nloop=90000\n");
    EXPECT_FALSE(playing.stays);
    const size_t whole = firstRound(playing);
    size_t lead = 0;
    while (lead < whole && playing.units[lead].clock < 90000) lead++;
    ASSERT_GT(lead, 1u);
    ASSERT_LT(lead, whole);
    for (size_t i = 0; i < lead; i++) {
        EXPECT_EQ(playing.units[i].cell, 1u) << i;
        EXPECT_EQ(playing.units[i].buttons, 0u) << i;
    }
    const size_t round = whole - lead;
    ASSERT_LT(whole + 2 * round, playing.units.size());
    for (size_t i = lead; i < playing.units.size(); i++) {
        EXPECT_EQ(playing.units[i].cell, 2u) << i;
        EXPECT_EQ(playing.units[i].buttons, 2u) << i;
        if (i < whole) continue;
        EXPECT_EQ(playing.units[i].sector, playing.units[i - round].sector) << i;
    }
}

TEST(DvdNavMenu, AnimationWithADelayPlaysOnceAndStays)
{
    const Playing playing = playPage("type=animated\ndelay=90000\n");
    EXPECT_TRUE(playing.stays);
    EXPECT_EQ(firstRound(playing), playing.units.size());
    for (const Unit& unit : playing.units) EXPECT_EQ(unit.buttons, 2u);
}

TEST(DvdNavMenu, WideAndLetterboxDisplaysHaveTheirOwnSubPicture)
{
    const std::vector<ButtonPlan> buttons = buttonGrid(2, 2, "BTN_ACTION_JUMP_TT(1,0,0)");
    const ByteImage squeezed(576);
    const std::string keys = "spuletterbox=" + shelve(bmpFile(squeezed)).string() + "\n";
    const Disc disc(PAL, { {} },
                    "[VMG_MENU]\nvideomode=16:9\n" + menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons, keys),
                    "menus=1\n");
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    EXPECT_EQ(player.subPicture.physical_wide, 0);
    EXPECT_EQ(player.subPicture.physical_letterbox, 1);
    EXPECT_EQ(dvdnav_get_video_aspect(player.nav), 3);
    const hl_gi_t& group = player.pci().hli.hl_gi;
    EXPECT_EQ(group.btngr_ns, 2);
    EXPECT_EQ(group.btngr1_dsp_ty, 1);
    EXPECT_EQ(group.btngr2_dsp_ty, 2);
    EXPECT_EQ(player.press(4), "title 1 chapter 1");
}

TEST(DvdNavMenu, PaletteIsThatOfTheProject)
{
    // Black, white, pure red, mid grey, in luminance and colour differences of the studio range.
    const std::string colours = "[VMG_MENU]\ncolortable2=255,255,255\ncolortable3=255,0,0\ncolortable16=128,128,128\n";
    const std::vector<ButtonPlan> buttons = buttonGrid(1, 1, "BTN_ACTION_JUMP_TT(1,0,0)");
    const Disc disc(PAL, { {} }, colours + menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons), "menus=1\n");
    Player player(disc);
    ASSERT_EQ(player.next(), "manager page 1");
    ASSERT_EQ(player.palette.size(), 16u);
    EXPECT_EQ(player.palette[0], 0x00108080u);
    EXPECT_EQ(player.palette[1], 0x00EB8080u);
    EXPECT_EQ(player.palette[2], 0x0051F05Bu);
    EXPECT_EQ(player.palette[15], 0x007D8080u);
}
