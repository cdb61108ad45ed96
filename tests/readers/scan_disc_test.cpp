// scan_disc_test.cpp: discs authored from streams that have passed the second pass, and from its scan files: the run
// leaves the stream alone, and standard readers find each chapter where the pass has put it.
#include "tests/readers/menu_pages.h"
#include "tests/readers/player.h"
#include "tests/readers/scan_rig.h"

#include <gtest/gtest.h>

#include <dvdread/dvd_reader.h>
#include <dvdread/ifo_read.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t SECTOR = 2048;

// ---- discs --------------------------------------------------------------------------------------------------------

/** As many chapters as there are cells. Positions are those at which a scan of the movie would divide it. */
std::string chapterKeys(const Journey& journey)
{
    const std::vector<HeadPack> navs = navsOf(journey.scanned.program);
    std::string keys = "chapters=" + std::to_string(journey.firsts.size()) + "\n";
    for (size_t i = 0; i < journey.firsts.size(); i++) {
        const uint64_t clock = navs[journey.firsts[i]].dsi.dsi_gi.nv_pck_scr;
        keys += "chapter" + std::to_string(i + 1) + "=" + std::to_string(clock) + "\n";
    }
    return keys;
}

std::string resolution(Standard standard)
{
    return standard == PAL ? "resolution=352x288\n" : "resolution=352x240\n";
}

std::string scanFileKey(const Journey& journey)
{
    return "streamscanfile=" + journey.scanned.file.string() + "\n";
}

/** A disc of one title, from what has passed. Made once for all tests of the program. */
const Disc& discOf(Standard standard, Division division)
{
    static std::map<std::pair<Standard, Division>, std::unique_ptr<Disc>> made;
    std::unique_ptr<Disc>& disc = made[{ standard, division }];
    if (!disc) {
        const Journey& it = journey(standard, division);
        const std::string keys = resolution(standard) + scanFileKey(it) + chapterKeys(it);
        disc = std::make_unique<Disc>(standard, std::vector<TitleSetPlan>{ { .keys = keys, .movie = it.movie } });
    }
    return *disc;
}

class ScanDisc : public JourneyTest {};
INSTANTIATE_TEST_SUITE_P(Journeys, ScanDisc, ScanDisc::all(), ScanDisc::name);

TEST_P(ScanDisc, AuthoringLeavesTheMovieAlone)
{
    const Disc& disc = discOf(standard(), division());
    ASSERT_EQ(disc.result, 0u);
    EXPECT_TRUE(bytesOf(disc.file("VTS_01_1.VOB")) == it().scanned.program);
}

// Without the scan file the run fills the navigation packs by itself.
TEST(ScanDiscs, AuthoringWithoutTheScanFileChangesTheMovie)
{
    const Journey& ntsc = journey(NTSC, BY_LIST);
    const Disc disc(NTSC, { { .keys = resolution(NTSC) + chapterKeys(ntsc), .movie = ntsc.movie } });
    ASSERT_EQ(disc.result, 0u);
    EXPECT_FALSE(bytesOf(disc.file("VTS_01_1.VOB")) == ntsc.scanned.program);
}

// ---- libdvdread ---------------------------------------------------------------------------------------------------

/** Time code of so many frames, as text; a second has as many as the standard says. */
std::string timeText(uint64_t frames, Standard standard)
{
    const uint64_t rate = standard == PAL ? 25 : 30, seconds = frames / rate;
    char text[48];
    snprintf(text, sizeof(text), "%02u:%02u:%02u.%02u of %u", unsigned(seconds / 3600), unsigned(seconds / 60 % 60),
             unsigned(seconds % 60), unsigned(frames % rate), unsigned(rate));
    return text;
}

std::string timeText(const dvd_time_t& time)
{
    char text[48];
    snprintf(text, sizeof(text), "%02x:%02x:%02x.%02x of %u", time.hour, time.minute, time.second, time.frame_u & 0x3F,
             time.frame_u >> 6 == 1   ? 25u
             : time.frame_u >> 6 == 3 ? 30u
                                      : 0u);
    return text;
}

/** Pictures of units, as the scan file tells them: what 25 frames a second have room for, also where there are 30. */
uint64_t picturesOf(const Journey& journey, size_t from, size_t to)
{
    uint64_t pictures = 0;
    for (size_t i = from; i < to; i++) pictures += (journey.units[i].end - journey.units[i].start) / 3600;
    return pictures;
}

void expectCells(const ifo_handle_t* vts, const Journey& it, Standard standard)
{
    const pgc_t* pgc = vts->vts_pgcit->pgci_srp[0].pgc;
    const c_adt_t* table = vts->vts_c_adt;
    const size_t cells = it.firsts.size();
    ASSERT_EQ(pgc->nr_of_programs, cells);
    ASSERT_EQ(pgc->nr_of_cells, cells);
    ASSERT_EQ(table->last_byte + 1, 8 + 12 * cells);
    EXPECT_EQ(timeText(pgc->playback_time), timeText(picturesOf(it, 0, it.units.size()), standard));
    for (size_t i = 0; i < cells; i++) {
        SCOPED_TRACE("cell " + std::to_string(i + 1));
        const ScanUnit &first = it.units[it.firsts[i]], &last = it.units[it.behind(i) - 1];
        const uint64_t lastSector = last.sector + last.sectors - 1;
        EXPECT_EQ(pgc->program_map[i], i + 1);
        EXPECT_EQ(pgc->cell_playback[i].first_sector, first.sector);
        EXPECT_EQ(pgc->cell_playback[i].last_vobu_start_sector, last.sector);
        EXPECT_EQ(pgc->cell_playback[i].last_sector, lastSector);
        EXPECT_EQ(timeText(pgc->cell_playback[i].playback_time),
                  timeText(picturesOf(it, it.firsts[i], it.behind(i)), standard));
        EXPECT_EQ(pgc->cell_position[i].vob_id_nr, 1);
        EXPECT_EQ(pgc->cell_position[i].cell_nr, i + 1);
        EXPECT_EQ(table->cell_adr_table[i].vob_id, 1);
        EXPECT_EQ(table->cell_adr_table[i].cell_id, i + 1);
        EXPECT_EQ(table->cell_adr_table[i].start_sector, first.sector);
        EXPECT_EQ(table->cell_adr_table[i].last_sector, lastSector);
    }
}

void expectChapters(const ifo_handle_t* vmg, const ifo_handle_t* vts, const Journey& it)
{
    const size_t cells = it.firsts.size();
    ASSERT_EQ(vmg->tt_srpt->nr_of_srpts, 1);
    EXPECT_EQ(vmg->tt_srpt->title[0].nr_of_ptts, cells);   // what listings of discs count
    const ttu_t& title = vts->vts_ptt_srpt->title[0];
    ASSERT_EQ(title.nr_of_ptts, cells);
    for (size_t i = 0; i < cells; i++) {
        EXPECT_EQ(title.ptt[i].pgcn, 1);
        EXPECT_EQ(title.ptt[i].pgn, i + 1);
    }
}

void expectUnits(const ifo_handle_t* vts, const Journey& it)
{
    const vobu_admap_t* map = vts->vts_vobu_admap;
    const std::vector<uint32_t> told(map->vobu_start_sectors, map->vobu_start_sectors + (map->last_byte + 1 - 4) / 4);
    std::vector<uint32_t> expected;
    for (const ScanUnit& unit : it.units) expected.push_back(uint32_t(unit.sector));
    EXPECT_EQ(told, expected);
    EXPECT_EQ(vts->vtsi_mat->vts_last_sector + 1,
              2 * (vts->vtsi_mat->vtsi_last_sector + 1) + it.scanned.program.size() / SECTOR);
}

/** For every five seconds the unit that shows pictures then; the first one of another cell is marked.
    PAL: 59 marks within 300 seconds. NTSC: the first unit has 13 pictures, each other one 15, which are 12 in the scan
    file and 36036 of its 45045 ticks. So the first mark, 450000 ticks on, lies 5556 ticks behind the start of a unit,
    each other one 450 less: 156 for the thirteenth, 44751 for the next, where no unit has a picture. There it ends. */
void expectTimes(const ifo_handle_t* vts, const Journey& it, Standard standard)
{
    const uint64_t frame = standard == PAL ? 3600 : 3003;
    std::vector<uint32_t> expected;
    uint64_t cell = 0;
    for (size_t i = 0; i < it.units.size(); i++) {
        const uint64_t mark = it.units[0].start + 450000 * (expected.size() + 1);
        if (it.units[i].start > mark || it.units[i].start + frame * picturesOf(it, i, i + 1) <= mark) continue;
        const uint64_t now = uint64_t(std::upper_bound(it.firsts.begin(), it.firsts.end(), i) - it.firsts.begin()) - 1;
        expected.push_back(uint32_t(it.units[i].sector) | (now != cell ? 0x80000000 : 0));
        cell = now;
    }
    EXPECT_EQ(expected.size(), standard == PAL ? 59u : 13u);
    const vts_tmap_t& times = vts->vts_tmapt->tmap[0];
    EXPECT_EQ(times.tmu, 5);
    EXPECT_EQ(std::vector<uint32_t>(times.map_ent, times.map_ent + times.nr_of_entries), expected);
}

TEST_P(ScanDisc, ReaderFindsEveryChapter)
{
    const Disc& disc = discOf(standard(), division());
    ASSERT_EQ(disc.result, 0u);
    dvd_reader_t* reader = DVDOpen(disc.root.c_str());
    ASSERT_NE(reader, nullptr);
    ifo_handle_t *vmg = ifoOpen(reader, 0), *vts = ifoOpen(reader, 1);
    if (vmg && vts) {
        expectChapters(vmg, vts, it());
        expectCells(vts, it(), standard());
        expectUnits(vts, it());
        expectTimes(vts, it(), standard());
    } else {
        ADD_FAILURE() << "an IFO can't be read";
    }
    if (vts) ifoClose(vts);
    if (vmg) ifoClose(vmg);
    DVDClose(reader);
}

// ---- both roads ---------------------------------------------------------------------------------------------------

uint64_t big(const Bytes& bytes, uint64_t at, uint64_t width)
{
    uint64_t value = 0;
    for (uint64_t i = 0; i < width; i++) value = value << 8 | bytes.at(at + i);
    return value;
}

/** Where the playing times of the title and of its last cell stand in VTS_01_0.IFO. */
std::vector<uint64_t> lastTimes(const Bytes& ifo, uint64_t cells)
{
    const uint64_t chain = big(ifo, 204, 4) * SECTOR + 16;
    return { chain + 4, chain + big(ifo, chain + 232, 2) + 24 * (cells - 1) + 4 };
}

// A scan of the movie that divides it at the same units comes to the same tables, but for the last picture of all,
// which the multiplexer does not count.
TEST(ScanDiscs, ScanFileAndMovieScanGiveTheSameTables)
{
    for (const Division division : { BY_LIST, BY_INTERVAL }) {
        SCOPED_TRACE(division);
        const Journey& pal = journey(PAL, division);
        const Disc& passed = discOf(PAL, division);
        const Disc plain(PAL, { { .keys = resolution(PAL) + chapterKeys(pal), .movie = pal.stream->movie } });
        ASSERT_EQ(passed.result, 0u);
        ASSERT_EQ(plain.result, 0u);
        Bytes tables = bytesOf(passed.file("VTS_01_0.IFO"));
        const Bytes expected = bytesOf(plain.file("VTS_01_0.IFO"));
        // 7499 and 7500 frames.
        const uint64_t title = lastTimes(tables, pal.firsts.size())[0];
        EXPECT_EQ(big(tables, title, 4), 0x00045964u);
        EXPECT_EQ(big(expected, title, 4), 0x00050040u);
        for (const uint64_t at : lastTimes(tables, pal.firsts.size())) {
            EXPECT_NE(big(tables, at, 4), big(expected, at, 4));
            std::copy_n(expected.begin() + std::ptrdiff_t(at), 4, tables.begin() + std::ptrdiff_t(at));
        }
        EXPECT_TRUE(tables == expected);
        EXPECT_TRUE(bytesOf(passed.file("VTS_01_0.BUP")) == bytesOf(passed.file("VTS_01_0.IFO")));
        EXPECT_TRUE(bytesOf(passed.file("VIDEO_TS.IFO")) == bytesOf(plain.file("VIDEO_TS.IFO")));
    }
}

// ---- libdvdnav ----------------------------------------------------------------------------------------------------

// Keeps what the readers say as long as it lives: a line for each navigation pack, since multiplexed ones announce a
// highlight of no buttons. They must not complain of anything else. What the test says itself follows in the end.
struct Muffled {
    Muffled() : file(shelve({})), terminal(dup(1))
    {
        fflush(stdout);
        const int out = open(file.c_str(), O_WRONLY | O_APPEND);
        dup2(out, 1);
        close(out);
    }
    ~Muffled()
    {
        fflush(stdout);
        dup2(terminal, 1);
        close(terminal);
        std::ifstream text(file);
        for (std::string line; std::getline(text, line);) {
            if (line.find("CHECK_VALUE") == line.npos)
                puts(line.c_str());
            else
                EXPECT_NE(line.find("btn_ns != 0"), line.npos) << line;
        }
    }
    Muffled(const Muffled&) = delete;
    Muffled& operator=(const Muffled&) = delete;

    fs::path file;
    int terminal;
};

std::string chapterName(size_t cell)
{
    return "title 1 chapter " + std::to_string(cell + 1);
}

TEST_P(ScanDisc, PlayerLandsInEveryChapter)
{
    const Muffled readers;
    const Disc& disc = discOf(standard(), division());
    Player player(disc);
    ASSERT_EQ(player.next(), chapterName(0));
    int32_t chapters = 0;
    ASSERT_EQ(dvdnav_get_number_of_parts(player.nav, 1, &chapters), DVDNAV_STATUS_OK);
    ASSERT_EQ(size_t(chapters), it().firsts.size());
    for (size_t turn = 0; turn < 2 * it().firsts.size(); turn++) {
        const size_t cell = turn % 2 ? it().firsts.size() - 1 - turn / 2 : turn / 2;   // from both ends
        SCOPED_TRACE(chapterName(cell));
        ASSERT_EQ(dvdnav_part_play(player.nav, 1, int32_t(cell + 1)), DVDNAV_STATUS_OK);
        ASSERT_EQ(player.next(), chapterName(cell));
        EXPECT_EQ(player.dsi().dsi_gi.nv_pck_lbn, it().units[it().firsts[cell]].sector);
        EXPECT_EQ(player.dsi().dsi_gi.vobu_c_idn, cell + 1);
    }
}

// The player goes from unit to unit by their pointers.
TEST_P(ScanDisc, PlayerMeetsEveryUnit)
{
    const Muffled readers;
    const Disc& disc = discOf(standard(), division());
    Player player(disc);
    size_t cell = 0;
    for (size_t i = 0; i < it().units.size(); i++) {
        if (i == it().behind(cell)) cell++;
        ASSERT_EQ(player.next(), chapterName(cell)) << "unit " << i;
        ASSERT_EQ(player.dsi().dsi_gi.nv_pck_lbn, it().units[i].sector) << "unit " << i;
    }
    EXPECT_EQ(player.next(), "stop");
}

/** A movie whose navigation packs force no button: byte 161 of each is 0. */
fs::path withoutForcedButton(const Journey& journey)
{
    Bytes program = journey.scanned.program;
    for (const ScanUnit& unit : journey.units) {
        EXPECT_EQ(program.at(unit.sector * SECTOR + 161), 1);
        program.at(unit.sector * SECTOR + 161) = 0;
    }
    return shelve(program);
}

/** A title set with two pages, whose buttons lead to the four chapters. */
Disc discWithMenus(const Journey& journey, const fs::path& movie)
{
    std::vector<ButtonPlan> buttons = buttonGrid(2, 2, "");
    for (size_t i = 0; i < 4; i++) buttons[i].command = "BTN_ACTION_JUMP_VTSPTT(1," + std::to_string(i + 1) + ",0)";
    const std::string keys = "menus=2\nchapters=4\nchapter1=0,1,2\nchapter2=0,2,4\nchapter3=0,1,1\nchapter4=0,2,3\n";
    return Disc(PAL, { { .keys = resolution(PAL) + scanFileKey(journey) + keys, .movie = movie } },
                menuPage("VTS_1_MENU1", PAL, realStill(PAL, 0), buttons) +
                    menuPage("VTS_1_MENU2", PAL, realStill(PAL, 1), buttons));
}

// The positions of the chapters are not looked at: here they have none, and still the menu key knows them apart.
// Multiplexed packs force the first button, which the pass leaves as it is and this player takes over into the menu; so
// the chapter's button shows only where they do not.
TEST(ScanDiscs, MenuKeyLeadsToThePageAndButtonOfTheChapter)
{
    const Journey& pal = journey(PAL, BY_LIST);
    const std::string PAGES[4] = { "title set 1 page 1", "title set 1 page 2", "title set 1 page 1",
                                   "title set 1 page 2" };
    const int BUTTONS[4] = { 2, 4, 1, 3 };
    for (const bool forced : { true, false }) {
        SCOPED_TRACE(forced);
        const Disc disc = discWithMenus(pal, forced ? pal.movie : withoutForcedButton(pal));
        const Muffled readers;
        for (size_t cell = 0; cell < 4; cell++) {
            SCOPED_TRACE(chapterName(cell));
            Player player(disc);
            ASSERT_EQ(player.next(), PAGES[0]);
            ASSERT_EQ(player.press(int(cell + 1)), chapterName(cell));
            EXPECT_EQ(player.dsi().dsi_gi.nv_pck_lbn, pal.units[pal.firsts[cell]].sector);
            EXPECT_EQ(player.call(DVD_MENU_Root), PAGES[cell]);
            if (!forced) {
                EXPECT_EQ(player.button(), BUTTONS[cell]);
            }
            EXPECT_EQ(player.call(DVD_MENU_Escape), chapterName(cell));
        }
    }
}

}   // namespace
