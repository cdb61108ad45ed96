// dvdread_menu_test.cpp: libdvdread opens the menu domains of authored discs; what their tables say is held against the
// menu VOBs, and the highlights of their navigation packs against the project.

#include "tests/readers/menu_vob.h"

#include <gtest/gtest.h>

#include <dvdread/dvd_reader.h>
#include <dvdread/ifo_read.h>
#include <dvdread/nav_read.h>

#include <cstring>
#include <map>

struct NavPack {
    pci_t pci;
    dsi_t dsi;
};

// A menu domain as the reader gives it, closed with the record.
struct MenuDomain {
    MenuDomain(const Disc& disc, int titleSet)
    {
        EXPECT_EQ(disc.result, 0u);
        reader = DVDOpen(disc.root.c_str());
        if (reader) ifo = ifoOpen(reader, titleSet);
        EXPECT_NE(ifo, nullptr);
        dvd_file_t* file = reader ? DVDOpenFile(reader, titleSet, DVD_READ_MENU_VOBS) : nullptr;
        EXPECT_NE(file, nullptr);
        if (!file) return;
        sectors = uint32_t(DVDFileSize(file));
        for (uint32_t sector = 0; sector < sectors; sector++) {
            unsigned char pack[2048];
            EXPECT_EQ(DVDReadBlocks(file, int(sector), 1, pack), 1) << sector;
            if (pack[17] != 0xBB) continue;
            navRead_PCI(&navs[sector].pci, pack + 45);
            navRead_DSI(&navs[sector].dsi, pack + DSI_START_BYTE);
        }
        DVDCloseFile(file);
    }
    ~MenuDomain()
    {
        if (ifo) ifoClose(ifo);
        if (reader) DVDClose(reader);
    }
    MenuDomain(const MenuDomain&) = delete;
    MenuDomain& operator=(const MenuDomain&) = delete;

    const pgci_srp_t& entry(uint32_t page) const
    {
        return ifo->pgci_ut->lu[0].pgcit->pgci_srp[page - 1];
    }
    const hli_t& highlight(uint32_t page) const
    {
        static const hli_t NONE = {};
        for (const auto& nav : navs) {
            if (nav.second.dsi.dsi_gi.vobu_vob_idn == page) return nav.second.pci.hli;
        }
        ADD_FAILURE() << "no navigation pack of page " << page;
        return NONE;
    }

    dvd_reader_t* reader = nullptr;
    ifo_handle_t* ifo = nullptr;
    uint32_t sectors = 0;
    std::map<uint32_t, NavPack> navs;   // by sector
};

static void expectNavPacks(const MenuDomain& domain)
{
    uint32_t page = 0;
    for (auto at = domain.navs.begin(); at != domain.navs.end(); ++at) {
        SCOPED_TRACE("sector " + std::to_string(at->first));
        const dsi_gi_t& dsi = at->second.dsi.dsi_gi;
        const auto next = std::next(at);
        const uint32_t end = next == domain.navs.end() ? domain.sectors : next->first;
        EXPECT_EQ(at->second.pci.pci_gi.nv_pck_lbn, at->first);
        EXPECT_EQ(dsi.nv_pck_lbn, at->first);
        EXPECT_EQ(at->first + dsi.vobu_ea + 1, end);
        EXPECT_GT(dsi.vobu_1stref_ea, 0u);
        EXPECT_LE(dsi.vobu_1stref_ea, dsi.vobu_ea);
        EXPECT_LT(at->second.pci.pci_gi.vobu_s_ptm, at->second.pci.pci_gi.vobu_e_ptm);
        EXPECT_EQ(at->second.pci.hli.hl_gi.hli_ss, dsi.vobu_vob_idn == page ? 2 : 1) << "new buttons, or as before";
        page = dsi.vobu_vob_idn;
    }
}

static void expectMaps(const MenuDomain& domain, const c_adt_t* cells, const vobu_admap_t* map)
{
    ASSERT_NE(cells, nullptr);
    ASSERT_NE(map, nullptr);
    std::vector<uint32_t> told(map->vobu_start_sectors, map->vobu_start_sectors + (map->last_byte + 1 - 4) / 4), found;
    for (const auto& nav : domain.navs) found.push_back(nav.first);
    EXPECT_EQ(told, found);

    const uint32_t count = (cells->last_byte + 1 - 8) / 12;
    uint32_t start = 0;
    for (uint32_t i = 0; i < count; i++) {
        const cell_adr_t& cell = cells->cell_adr_table[i];
        EXPECT_EQ(cell.start_sector, start) << i;
        start = cell.last_sector + 1;
        for (const auto& [sector, nav] : domain.navs) {
            if (sector < cell.start_sector || sector > cell.last_sector) continue;
            EXPECT_EQ(nav.dsi.dsi_gi.vobu_vob_idn, cell.vob_id) << sector;
            EXPECT_EQ(nav.dsi.dsi_gi.vobu_c_idn, cell.cell_id) << sector;
        }
    }
    EXPECT_EQ(start, domain.sectors);
}

// What the chain of a page says besides where its cells lie.
struct PageFacts {
    uint8_t entryId;
    uint16_t cells;
    uint8_t stillTime;   // of its last cell
    uint8_t cellCommand;
    uint32_t subPicture;
};

static void expectPages(const MenuDomain& domain, const std::vector<PageFacts>& pages)
{
    ASSERT_EQ(domain.ifo->pgci_ut->nr_of_lus, 1);
    ASSERT_EQ(domain.ifo->pgci_ut->lu[0].pgcit->nr_of_pgci_srp, pages.size());
    for (uint32_t page = 1; page <= pages.size(); page++) {
        SCOPED_TRACE("page " + std::to_string(page));
        const PageFacts& facts = pages[page - 1];
        EXPECT_EQ(domain.entry(page).entry_id, facts.entryId);
        const pgc_t& chain = *domain.entry(page).pgc;
        ASSERT_EQ(chain.nr_of_cells, facts.cells);
        EXPECT_EQ(chain.subp_control[0], facts.subPicture);
        for (uint32_t cell = 0; cell < facts.cells; cell++) {
            EXPECT_EQ(chain.cell_position[cell].vob_id_nr, page);
            EXPECT_EQ(chain.cell_position[cell].cell_nr, cell + 1);
            uint32_t first = 0, lastUnit = 0, last = 0, units = 0;
            for (const auto& [sector, nav] : domain.navs) {
                const dsi_gi_t& dsi = nav.dsi.dsi_gi;
                if (dsi.vobu_vob_idn != page || dsi.vobu_c_idn != cell + 1) continue;
                if (units++ == 0) first = sector;
                lastUnit = sector;
                last = sector + dsi.vobu_ea;
            }
            EXPECT_GT(units, 0u);
            EXPECT_EQ(chain.cell_playback[cell].first_sector, first);
            EXPECT_EQ(chain.cell_playback[cell].last_vobu_start_sector, lastUnit);
            EXPECT_EQ(chain.cell_playback[cell].last_sector, last);
        }
        EXPECT_EQ(chain.cell_playback[facts.cells - 1].still_time, facts.stillTime);
        EXPECT_EQ(chain.cell_playback[facts.cells - 1].cell_cmd_nr, facts.cellCommand);
    }
}

constexpr const char* SQUEEZED = "videomode=16:9\n";
constexpr uint32_t ONE_FORM = 0x80000000, TWO_FORMS = 0x80000100;   // 4:3 and wide stream 0, letterbox 0 or 1

class DvdReadMenus : public testing::TestWithParam<Standard> {};
static std::string standardName(const testing::TestParamInfo<Standard>& info)
{
    return info.param == PAL ? "Pal" : "Ntsc";
}
INSTANTIATE_TEST_SUITE_P(Standards, DvdReadMenus, testing::Values(PAL, NTSC), standardName);

TEST_P(DvdReadMenus, TablesAndNavigationPacksAgree)
{
    const Standard standard = GetParam();
    const std::vector<ButtonPlan> buttons = buttonGrid(3, 2, "BTN_ACTION_JUMP_VMGM(0,0,0)");
    const ByteImage letterbox = frames(standard, buttons);
    const std::string pair = "spuletterbox=" + shelve(bmpFile(letterbox)).string() + "\n";
    const std::filesystem::path &still = realStill(standard, 0), &moving = realAnimation(standard, 1, 3);
    const Disc disc(standard, { { .keys = "menus=3\n" }, { .pattern = 1, .keys = "menus=1\n" } },
                    menuPage("VMG_MENU1", standard, still, buttons) +
                        menuPage("VMG_MENU2", standard, moving, buttons, "type=animated\nloop=1\n") +
                        menuPage("VMG_MENU3", standard, moving, buttons, "type=animated\n") + "[VTS_1_MENU]\n" +
                        SQUEEZED +
                        menuPage("VTS_1_MENU1", standard, moving, buttons, pair + "type=animated\nloop=1\n") +
                        menuPage("VTS_1_MENU2", standard, still, buttons, pair) +
                        menuPage("VTS_1_MENU3", standard, moving, buttons, pair + "type=animated\nloop=1\n") +
                        menuPage("VTS_2_MENU1", standard, moving, buttons, "type=animated\nloop=90000\n"),
                    "menus=3\n");

    const MenuDomain manager(disc, 0), first(disc, 1), second(disc, 2);
    ASSERT_TRUE(manager.ifo && first.ifo && second.ifo);
    expectNavPacks(manager);
    expectMaps(manager, manager.ifo->menu_c_adt, manager.ifo->menu_vobu_admap);
    expectPages(manager, { { 0x82, 1, 0xFF, 0, ONE_FORM }, { 0, 1, 0, 1, ONE_FORM }, { 0, 1, 0xFF, 0, ONE_FORM } });
    EXPECT_EQ(manager.ifo->vmgi_mat->nr_of_vmgm_subp_streams, 1);
    expectNavPacks(first);
    expectMaps(first, first.ifo->menu_c_adt, first.ifo->menu_vobu_admap);
    expectPages(first, { { 0x83, 1, 0, 1, TWO_FORMS }, { 0, 1, 0xFF, 0, TWO_FORMS }, { 0, 1, 0, 1, TWO_FORMS } });
    EXPECT_EQ(first.ifo->vtsi_mat->vtsm_video_attr.display_aspect_ratio, 3);
    // A page with a loop point has its buttons in its second cell alone.
    expectMaps(second, second.ifo->menu_c_adt, second.ifo->menu_vobu_admap);
    expectPages(second, { { 0x83, 2, 0, 1, ONE_FORM } });
    for (const auto& [sector, nav] : second.navs) {
        EXPECT_EQ(nav.dsi.dsi_gi.nv_pck_scr >= 90000, nav.dsi.dsi_gi.vobu_c_idn == 2) << sector;
        EXPECT_EQ(nav.pci.hli.hl_gi.btn_ns, nav.dsi.dsi_gi.vobu_c_idn == 2 ? 6 : 0) << sector;
    }
}

TEST_P(DvdReadMenus, ClocksRiseThroughAPage)
{
    // One form alone: of a pair, both sub-pictures begin with the same clock.
    const Standard standard = GetParam();
    const std::vector<ButtonPlan> buttons = buttonGrid(3, 2, "BTN_ACTION_JUMP_TT(1,0,0)");
    const Disc disc(
        standard, { {} },
        menuPage("VMG_MENU1", standard, realStill(standard, 0), buttons) +
            menuPage("VMG_MENU2", standard, realAnimation(standard, 1, 3), buttons, "type=animated\nloop=1\n"),
        "menus=2\n");
    const std::vector<MenuPack> packs = menuPacks(bytesOf(disc.file("VIDEO_TS.VOB")));
    ASSERT_GT(packs.size(), 100u);
    for (size_t i = 1; i < packs.size(); i++) {
        if (packs[i].page != packs[i - 1].page) continue;
        EXPECT_GT(packs[i].clock, packs[i - 1].clock) << "pack " << i << " of page " << packs[i].page;
    }
    EXPECT_EQ(packs.back().page, 2u);
}

TEST_P(DvdReadMenus, SubPictureEntersBehindTheDelay)
{
    const Standard standard = GetParam();
    const std::vector<ButtonPlan> buttons = buttonGrid(3, 2, "BTN_ACTION_JUMP_TT(1,0,0)");
    for (const char* keys : { "type=animated\ndelay=90000\n", "type=animated\nloop=90000\n" }) {
        SCOPED_TRACE(keys);
        const Disc disc(standard, { {} }, menuPage("VMG_MENU1", standard, realAnimation(standard, 1, 3), buttons, keys),
                        "menus=1\n");
        uint32_t unit = 0, before = 0;   // clocks of the unit at hand and of the one before
        bool found = false;
        for (const MenuPack& pack : menuPacks(bytesOf(disc.file("VIDEO_TS.VOB")))) {
            if (pack.stream == 0xBB) {
                before = unit;
                unit = pack.clock;
            }
            if (pack.stream != 0xBD) continue;
            found = true;
            EXPECT_GE(unit, 90000u);
            EXPECT_LT(before, 90000u);
        }
        EXPECT_TRUE(found);
    }
}

TEST(DvdReadMenu, ThirtySixButtonsWithTheirCommands)
{
    std::vector<ButtonPlan> buttons = buttonGrid(6, 6, "BTN_ACTION_JUMP_TT(1,0,0)");
    buttons[7].command = "BTN_ACTION_LINKPGCN(300,0,0)";
    buttons[8].command = "BTN_ACTION_LINKCN(1,5,0)";
    buttons[9].command = "BTN_ACTION_JUMP_VTSM(1,1,0)";
    buttons[35].command = "BTN_ACTION_JUMP_VMGM(0,0,0)";
    const Disc disc(PAL, { {} }, menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons), "menus=1\n");
    const MenuDomain manager(disc, 0);
    const hli_t& highlight = manager.highlight(1);
    EXPECT_EQ(highlight.hl_gi.btn_ns, 36);
    EXPECT_EQ(highlight.hl_gi.btngr_ns, 1);
    EXPECT_EQ(highlight.hl_gi.btngr1_dsp_ty, 0);
    const uint8_t JUMP_TT_1[8] = { 0x30, 0x02, 0, 0, 0, 1, 0, 0 };
    const uint8_t LINK_PGC_300[8] = { 0x20, 0x04, 0, 0, 0, 0, 0, 44 };   // the low byte of 300
    const uint8_t LINK_CELL_1[8] = { 0x20, 0x07, 0, 0, 0, 0, 5 << 2, 1 };
    const uint8_t JUMP_VTSM_1[8] = { 0x30, 0x06, 0, 1, 1, 0x83, 0, 0 };
    const uint8_t JUMP_VMGM[8] = { 0x30, 0x06, 0, 0, 0, 0x42, 0, 0 };
    for (int n = 0; n < 36; n++) {
        const uint8_t* expected = n == 7    ? LINK_PGC_300
                                  : n == 8  ? LINK_CELL_1
                                  : n == 9  ? JUMP_VTSM_1
                                  : n == 35 ? JUMP_VMGM
                                            : JUMP_TT_1;
        EXPECT_EQ(memcmp(highlight.btnit[n].cmd.bytes, expected, 8), 0) << n + 1;
        EXPECT_EQ(highlight.btnit[n].y_end, buttons[size_t(n)].yEnd) << n + 1;
    }
}

TEST_P(DvdReadMenus, LetterboxGroupsHoldEighteenButtons)
{
    const Standard standard = GetParam();
    const std::vector<ButtonPlan> buttons = buttonGrid(5, 4, "BTN_ACTION_JUMP_TT(1,0,0)");
    const std::string keys = "spuletterbox=" + shelve(bmpFile(frames(standard, {}))).string() + "\n";
    const Disc disc(standard, { {} },
                    std::string("[VMG_MENU]\n") + SQUEEZED +
                        menuPage("VMG_MENU1", standard, realStill(standard, 0), buttons, keys),
                    "menus=1\n");
    const MenuDomain manager(disc, 0);
    const hli_t& highlight = manager.highlight(1);
    EXPECT_EQ(highlight.hl_gi.btngr_ns, 2);
    EXPECT_EQ(highlight.hl_gi.btngr1_dsp_ty, 1);
    EXPECT_EQ(highlight.hl_gi.btngr2_dsp_ty, 2);
    EXPECT_EQ(highlight.hl_gi.btn_ns, 20);   // as in the project
    const uint32_t bar = standard == PAL ? 72 : 60;
    for (size_t n = 0; n < 18; n++) {
        const btni_t &wide = highlight.btnit[n], &squeezed = highlight.btnit[n + 18];
        EXPECT_EQ(wide.x_start, buttons[n].xStart) << n;
        EXPECT_EQ(wide.y_start, buttons[n].yStart) << n;
        EXPECT_EQ(wide.y_end, buttons[n].yEnd) << n;
        EXPECT_EQ(squeezed.x_start, buttons[n].xStart) << n;
        EXPECT_EQ(squeezed.x_end, buttons[n].xEnd) << n;
        EXPECT_EQ(squeezed.y_start, buttons[n].yStart * 3 / 4 + bar) << n;
        EXPECT_EQ(squeezed.y_end, buttons[n].yEnd * 3 / 4 + bar) << n;
    }
}

static void expectRect(const btni_t& button, uint32_t xStart, uint32_t xEnd, uint32_t yStart, uint32_t yEnd)
{
    EXPECT_EQ(button.x_start, xStart);
    EXPECT_EQ(button.x_end, xEnd);
    EXPECT_EQ(button.y_start, yStart);
    EXPECT_EQ(button.y_end, yEnd);
}

TEST(DvdReadMenu, OverlappingButtonsAreToldApartByTheirColourSets)
{
    ByteImage map(576);
    AlphaImage alpha(576);
    map.fill(100, 100, 100, 100, 1);
    map.fill(150, 150, 100, 100, 2);
    alpha.fill(100, 100, 150, 150, { .red = 255, .green = 255, .blue = 255, .alpha = 255 });
    const std::vector<ButtonPlan> buttons = { { 90, 210, 90, 210, "BTN_ACTION_JUMP_TT(1,0,0)" },
                                              { 140, 260, 140, 260, "BTN_ACTION_JUMP_TT(1,0,0)" } };
    const Disc disc(PAL, { {} }, menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons, alphaKeys(map, alpha)),
                    "menus=1\n");
    const MenuDomain manager(disc, 0);
    const hli_t& highlight = manager.highlight(1);
    EXPECT_EQ(highlight.btn_colit.btn_coli[0][0], 0x111000F0u);
    EXPECT_EQ(highlight.btn_colit.btn_coli[1][0], 0x22200F00u);
    EXPECT_EQ(highlight.btn_colit.btn_coli[2][0], 0x3330F000u);
    EXPECT_EQ(highlight.btnit[0].btn_coln, 2u);
    EXPECT_EQ(highlight.btnit[1].btn_coln, 1u);
    expectRect(highlight.btnit[0], 100, 200, 99, 200);
    expectRect(highlight.btnit[1], 150, 250, 149, 250);
    const pgc_t& chain = *manager.entry(1).pgc;
    for (int i = 0; i < 3; i++) EXPECT_EQ(chain.palette[i], 0x00EB8080u) << "white at " << i;
    EXPECT_EQ(chain.palette[3], 0x00108080u);
}

TEST(DvdReadMenu, EachButtonHasTheColourThatIsDrawn)
{
    // Colours are counted from the bottom line up: blue is the first, red the third.
    ByteImage map(576);
    AlphaImage alpha(576);
    const Rgba colours[] = { { 255, 0, 0, 255 }, { 0, 255, 0, 120 }, { 0, 0, 255, 255 } };
    std::vector<ButtonPlan> buttons;
    for (uint32_t i = 0; i < 3; i++) {
        map.fill(100, 100 + 100 * i, 200, 40, uint8_t(i + 1));
        alpha.fill(100, 100 + 100 * i, 200, 40, colours[i]);
        buttons.push_back({ 90, 310, 90 + 100 * i, 150 + 100 * i, "BTN_ACTION_JUMP_TT(1,0,0)" });
    }
    // The activated colours stay those of the project.
    const std::string keys = alphaKeys(map, alpha) + "colorset3=0,3,3,3,0,15,15,15\n";
    const Disc disc(PAL, { {} }, menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons, keys), "menus=1\n");
    const MenuDomain manager(disc, 0);
    const hli_t& highlight = manager.highlight(1);
    const uint32_t selected[] = { 0x1110FA50, 0x2220FA50, 0x3330FA50 }, activated[] = { 0, 0, 0x3330FFF0 };
    for (uint32_t i = 0; i < 3; i++) {
        EXPECT_EQ(highlight.btn_colit.btn_coli[i][0], selected[i]) << i;
        EXPECT_EQ(highlight.btn_colit.btn_coli[i][1], activated[i]) << i;
        EXPECT_EQ(highlight.btnit[i].btn_coln, 3 - i) << i;
        expectRect(highlight.btnit[i], 100, 300, 99 + 100 * i, 140 + 100 * i);
    }
    const pgc_t& chain = *manager.entry(1).pgc;
    EXPECT_EQ(chain.palette[1], 0x00286EF0u);
    EXPECT_EQ(chain.palette[2], 0x00902336u);
    EXPECT_EQ(chain.palette[3], 0x0051F05Bu);
}

TEST(DvdReadMenu, AButtonsColourIsThatOfTheMapsFirstPixelWhateverItsAlpha)
{
    // The maps of both buttons reach above their drawings. Around the first the drawing is transparent blue, around the
    // second transparent black: that button is never seen.
    ByteImage map(576);
    AlphaImage alpha(576);
    alpha.fill(90, 90, 220, 60, { .blue = 255 });
    alpha.fill(100, 100, 200, 40, { .blue = 255, .alpha = 255 });
    alpha.fill(100, 200, 200, 40, { .green = 255, .alpha = 255 });
    map.fill(90, 90, 220, 60, 1);
    map.fill(90, 190, 220, 60, 2);
    const std::vector<ButtonPlan> buttons = { { 80, 320, 80, 160, "BTN_ACTION_JUMP_TT(1,0,0)" },
                                              { 80, 320, 180, 260, "BTN_ACTION_JUMP_TT(1,0,0)" } };
    const Disc disc(PAL, { {} }, menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons, alphaKeys(map, alpha)),
                    "menus=1\n");
    const MenuDomain manager(disc, 0);
    const hli_t& highlight = manager.highlight(1);
    EXPECT_EQ(highlight.btnit[0].btn_coln, 2u);
    EXPECT_EQ(highlight.btnit[1].btn_coln, 0u);
    expectRect(highlight.btnit[0], 100, 300, 99, 140);
}

TEST(DvdReadMenu, ManyColoursHaveOneSetWithTheirContrasts)
{
    ByteImage map(576);
    AlphaImage alpha(576);
    const Rgba colours[] = { { 255, 0, 0, 255 }, { 0, 255, 0, 160 }, { 0, 0, 255, 96 }, { 10, 10, 200, 255 } };
    std::vector<ButtonPlan> buttons;
    for (uint32_t i = 0; i < 4; i++) {
        map.fill(100, 100 + 50 * i, 300 - 50 * i, 30, uint8_t(i + 1));
        alpha.fill(100, 100 + 50 * i, 300 - 50 * i, 30, colours[i]);
        buttons.push_back({ 90, 410, 90 + 50 * i, 140 + 50 * i, "BTN_ACTION_JUMP_TT(1,0,0)" });
    }
    const Disc disc(PAL, { {} }, menuPage("VMG_MENU1", PAL, realStill(PAL, 0), buttons, alphaKeys(map, alpha)),
                    "menus=1\n");
    const MenuDomain manager(disc, 0);
    const hli_t& highlight = manager.highlight(1);
    for (int i = 0; i < 3; i++) EXPECT_EQ(highlight.btn_colit.btn_coli[i][0], 0x32106AF0u) << i;
    for (uint32_t i = 0; i < 4; i++) {
        EXPECT_EQ(highlight.btnit[i].btn_coln, 1u) << i;
        expectRect(highlight.btnit[i], 100, 400 - 50 * i, 99 + 50 * i, 130 + 50 * i);
    }
    const pgc_t& chain = *manager.entry(1).pgc;
    EXPECT_EQ(chain.palette[1], 0x0051F05Bu);
    EXPECT_EQ(chain.palette[2], 0x00902336u);
    EXPECT_EQ(chain.palette[3], 0x00286EF0u);
}
