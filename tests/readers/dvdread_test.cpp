// dvdread_test.cpp: libdvdread opens every IFO and backup of authored discs and parses every navigation pack; what the
// tables say is held against what the files hold.

#include "tests/readers/material.h"
#include "tests/readers/mux_rig.h"

#include <gtest/gtest.h>

#include <dvdread/dvd_reader.h>
#include <dvdread/ifo_read.h>
#include <dvdread/nav_read.h>

#include <fstream>
#include <map>

namespace fs = std::filesystem;

constexpr uint64_t SECTOR = 2048;
constexpr uint32_t NO_POINTER = 0x3FFFFFFF;

struct NavPack {
    pci_t pci;
    dsi_t dsi;
};

// A title set's title VOBs as the reader gives them: navigation packs by sector.
struct TitleVobs {
    uint64_t sectors;
    std::map<uint32_t, NavPack> navs;
};

static void readVobs(dvd_reader_t* reader, int titleSet, TitleVobs* vobs)
{
    dvd_file_t* file = DVDOpenFile(reader, titleSet, DVD_READ_TITLE_VOBS);
    ASSERT_NE(file, nullptr);
    vobs->sectors = uint64_t(DVDFileSize(file));
    for (uint32_t sector = 0; sector < vobs->sectors; sector++) {
        unsigned char pack[SECTOR];
        ASSERT_EQ(DVDReadBlocks(file, int(sector), 1, pack), 1) << sector;
        if (pack[16] != 0x01 || pack[17] != 0xBB || pack[1027] != 0xBF) continue;
        NavPack& nav = vobs->navs[sector];
        navRead_PCI(&nav.pci, pack + 45);
        navRead_DSI(&nav.dsi, pack + DSI_START_BYTE);
    }
    DVDCloseFile(file);
}

/** A search pointer leads to a navigation pack, or says that there is none. */
static void expectPointer(const TitleVobs& vobs, uint32_t from, uint32_t pointer, int direction, const char* name)
{
    const uint32_t distance = pointer & NO_POINTER;
    if (distance == NO_POINTER) return;
    const int64_t to = int64_t(from) + direction * int64_t(distance);
    EXPECT_EQ(vobs.navs.count(uint32_t(to)), 1u) << name << " of the unit at " << from << " leads to " << to;
}

static void expectNavPacks(const TitleVobs& vobs)
{
    for (auto at = vobs.navs.begin(); at != vobs.navs.end(); ++at) {
        const uint32_t sector = at->first;
        const dsi_t& dsi = at->second.dsi;
        const auto next = std::next(at);
        const uint64_t end = next == vobs.navs.end() ? vobs.sectors : next->first;
        EXPECT_EQ(at->second.pci.pci_gi.nv_pck_lbn, sector);
        EXPECT_EQ(dsi.dsi_gi.nv_pck_lbn, sector);
        EXPECT_EQ(sector + dsi.dsi_gi.vobu_ea + 1, end);
        EXPECT_LT(at->second.pci.pci_gi.vobu_s_ptm, at->second.pci.pci_gi.vobu_e_ptm);
        EXPECT_GT(dsi.dsi_gi.vobu_1stref_ea, 0u);
        EXPECT_LE(dsi.dsi_gi.vobu_1stref_ea, dsi.dsi_gi.vobu_ea);

        const vobu_sri_t& search = dsi.vobu_sri;
        expectPointer(vobs, sector, search.next_video, 1, "next_video");
        expectPointer(vobs, sector, search.next_vobu, 1, "next_vobu");
        expectPointer(vobs, sector, search.prev_vobu, -1, "prev_vobu");
        expectPointer(vobs, sector, search.prev_video, -1, "prev_video");
        for (int k = 0; k < 19; k++) {
            expectPointer(vobs, sector, search.fwda[k], 1, "fwda");
            expectPointer(vobs, sector, search.bwda[k], -1, "bwda");
        }
        const bool sameCell = next != vobs.navs.end() && next->second.dsi.dsi_gi.vobu_c_idn == dsi.dsi_gi.vobu_c_idn;
        EXPECT_EQ((search.next_vobu & NO_POINTER) != NO_POINTER, sameCell) << sector;
    }
}

static void expectMaps(const ifo_handle_t* vts, const TitleVobs& vobs)
{
    const vobu_admap_t* map = vts->vts_vobu_admap;
    ASSERT_NE(map, nullptr);
    std::vector<uint32_t> told(map->vobu_start_sectors, map->vobu_start_sectors + (map->last_byte + 1 - 4) / 4);
    std::vector<uint32_t> found;
    for (const auto& nav : vobs.navs) found.push_back(nav.first);
    EXPECT_EQ(told, found);

    const vts_tmap_t& times = vts->vts_tmapt->tmap[0];
    EXPECT_EQ(times.tmu, 5);
    for (int i = 0; i < times.nr_of_entries; i++) {
        EXPECT_EQ(vobs.navs.count(times.map_ent[i] & 0x7FFFFFFF), 1u) << "time map entry " << i;
    }
}

static void expectCells(const ifo_handle_t* vts, const TitleVobs& vobs)
{
    const c_adt_t* cells = vts->vts_c_adt;
    ASSERT_NE(cells, nullptr);
    const uint64_t count = (cells->last_byte + 1 - 8) / 12;
    uint64_t covered = 0;
    for (uint64_t i = 0; i < count; i++) {
        const cell_adr_t& cell = cells->cell_adr_table[i];
        ASSERT_EQ(vobs.navs.count(cell.start_sector), 1u);
        for (const auto& [sector, nav] : vobs.navs) {
            if (sector < cell.start_sector || sector > cell.last_sector) continue;
            EXPECT_EQ(nav.dsi.dsi_gi.vobu_vob_idn, cell.vob_id) << sector;
            EXPECT_EQ(nav.dsi.dsi_gi.vobu_c_idn, cell.cell_id) << sector;
            covered++;
        }
    }
    EXPECT_EQ(covered, vobs.navs.size());
    const pgc_t* pgc = vts->vts_pgcit->pgci_srp[0].pgc;
    ASSERT_EQ(pgc->nr_of_cells, count);
    for (uint64_t i = 0; i < count; i++) {
        EXPECT_EQ(pgc->cell_playback[i].first_sector, cells->cell_adr_table[i].start_sector);
        EXPECT_EQ(pgc->cell_playback[i].last_sector, cells->cell_adr_table[i].last_sector);
        EXPECT_EQ(pgc->cell_position[i].cell_nr, cells->cell_adr_table[i].cell_id);
        EXPECT_EQ(pgc->cell_position[i].vob_id_nr, cells->cell_adr_table[i].vob_id);
    }
}

static uint64_t fileSectors(const Disc& disc, const std::string& name)
{
    std::error_code missing;
    const uint64_t bytes = fs::file_size(disc.file(name), missing);
    return missing ? 0 : bytes / SECTOR;
}

static std::string vtsName(int titleSet, const std::string& rest)
{
    return (titleSet < 10 ? "VTS_0" : "VTS_") + std::to_string(titleSet) + rest;
}

static uint64_t vobSectors(const Disc& disc, int titleSet)
{
    uint64_t bytes = 0;
    for (int part = 1; part < 10; part++) {
        std::error_code missing;
        const uint64_t size = fs::file_size(disc.file(vtsName(titleSet, "_" + std::to_string(part) + ".VOB")), missing);
        if (!missing) bytes += size;
    }
    return bytes / SECTOR;
}

/** All checks of a disc. evenVobs tells that source files end on sectors, so that sums over files are exact. */
static void expectDisc(const Disc& disc, int titleSets, const std::vector<uint64_t>& chapters, bool evenVobs)
{
    ASSERT_EQ(disc.result, 0u);
    dvd_reader_t* reader = DVDOpen(disc.root.c_str());
    ASSERT_NE(reader, nullptr);
    ifo_handle_t* vmg = ifoOpen(reader, 0);
    ASSERT_NE(vmg, nullptr);
    ASSERT_EQ(vmg->tt_srpt->nr_of_srpts, titleSets);
    EXPECT_EQ(vmg->vmgi_mat->vmgi_last_sector + 1, fileSectors(disc, "VIDEO_TS.IFO"));
    EXPECT_EQ(vmg->vmgi_mat->vmg_last_sector + 1, 2 * fileSectors(disc, "VIDEO_TS.IFO"));
    EXPECT_EQ(vmg->vts_atrt->nr_of_vtss, titleSets);

    uint64_t start = 2 * fileSectors(disc, "VIDEO_TS.IFO");
    for (int i = 1; i <= titleSets; i++) {
        SCOPED_TRACE("title set " + std::to_string(i));
        const title_info_t& title = vmg->tt_srpt->title[i - 1];
        EXPECT_EQ(title.title_set_nr, i);
        EXPECT_EQ(title.nr_of_ptts, chapters[size_t(i - 1)]);
        ifo_handle_t* vts = ifoOpen(reader, i);
        ASSERT_NE(vts, nullptr);
        const uint64_t ifo = fileSectors(disc, vtsName(i, "_0.IFO"));
        EXPECT_EQ(vts->vtsi_mat->vtsi_last_sector + 1, ifo);
        EXPECT_EQ(vts->vtsi_mat->vts_last_sector + 1, 2 * ifo + vobSectors(disc, i));
        EXPECT_EQ(vts->vtsi_mat->vtstt_vobs, ifo);
        EXPECT_EQ(vts->vts_ptt_srpt->title[0].nr_of_ptts, chapters[size_t(i - 1)]);
        if (evenVobs) {
            EXPECT_EQ(title.title_set_sector, start);
            TitleVobs vobs;
            readVobs(reader, i, &vobs);
            EXPECT_EQ(vobs.sectors, vobSectors(disc, i));
            expectNavPacks(vobs);
            expectMaps(vts, vobs);
            expectCells(vts, vobs);
        }
        start += 2 * ifo + vobSectors(disc, i);
        ifoClose(vts);
    }
    ifoClose(vmg);
    DVDClose(reader);
}

TEST(DvdRead, PalDiscOfTwoTitleSets)
{
    const Disc disc(PAL, { { .pattern = 0, .keys = "chapters=3\nchapter1=0\nchapter2=200000\nchapter3=450000\n" },
                           { .pattern = 1, .keys = "postcmd=first\n" } });
    expectDisc(disc, 2, { 3, 1 }, true);
}

TEST(DvdRead, NtscDisc)
{
    const Disc disc(NTSC, { { .pattern = 2, .seconds = 12, .keys = "chapters=2\nchapter2=500000\n" } });
    expectDisc(disc, 1, { 2 }, true);
}

TEST(DvdRead, SeveralSourcesCutOnSectors)
{
    const Disc disc(PAL, { { .keys = "chapters=2\nchapter2=300000\n", .cuts = { 100 * SECTOR, 501 * SECTOR } } });
    expectDisc(disc, 1, { 2 }, true);
}

TEST(DvdRead, SourceCutAtAnOddByteGivesTheSameDisc)
{
    const std::string keys = "chapters=2\nchapter2=300000\n";
    const Disc whole(PAL, { { .keys = keys } });
    // 162 sectors in lies the second navigation pack: the cut goes through it.
    dvd_reader_t* reader = DVDOpen(whole.root.c_str());
    ASSERT_NE(reader, nullptr);
    TitleVobs vobs;
    readVobs(reader, 1, &vobs);
    DVDClose(reader);
    const uint64_t secondNav = std::next(vobs.navs.begin())->first;
    const Disc cut(PAL, { { .keys = keys, .cuts = { secondNav * SECTOR + 777, 901 * SECTOR + 1 } } });
    expectDisc(cut, 1, { 2 }, false);

    // Put together again, the movie is the one of the whole disc, navigation packs and all.
    std::string joined;
    for (const char* name : { "VTS_01_1.VOB", "VTS_01_2.VOB", "VTS_01_3.VOB" }) {
        std::ifstream in(cut.file(name), std::ios::binary);
        joined.append(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    std::ifstream in(whole.file("VTS_01_1.VOB"), std::ios::binary);
    const std::string movie((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_TRUE(joined == movie);
    for (const char* name : { "VTS_01_0.IFO", "VTS_01_0.BUP" }) {
        std::ifstream a(whole.file(name), std::ios::binary), b(cut.file(name), std::ios::binary);
        EXPECT_TRUE(std::equal(std::istreambuf_iterator<char>(a), {}, std::istreambuf_iterator<char>(b), {})) << name;
    }
}

TEST(DvdRead, MultiplexedMovie)
{
    for (const Standard standard : { PAL, NTSC }) {
        SCOPED_TRACE(standard);
        const Bytes sound = bytesOf(realSound("-c:a ac3 -b:a 192k -ac 2", "ac3", 3));
        const Bytes movie =
            multiplex({ { ORV_MUX_VIDEO, bytesOf(realVideo(standard, 3)) }, { ORV_MUX_AC3, sound, {}, true } });
        const Disc disc(standard, { { .keys = "chapters=2\nchapter2=120000\n", .movie = shelve(movie) } });
        expectDisc(disc, 1, { 2 }, true);
    }
}

// The reader takes the backups where the IFOs are gone.
TEST(DvdRead, Backups)
{
    const Disc disc(PAL, { {}, { .pattern = 1 } });
    ASSERT_EQ(disc.result, 0u);
    for (const char* name : { "VIDEO_TS.IFO", "VTS_01_0.IFO", "VTS_02_0.IFO" }) fs::remove(disc.file(name));
    dvd_reader_t* reader = DVDOpen(disc.root.c_str());
    ASSERT_NE(reader, nullptr);
    for (int i = 0; i <= 2; i++) {
        ifo_handle_t* ifo = ifoOpen(reader, i);
        EXPECT_NE(ifo, nullptr) << i;
        if (ifo) ifoClose(ifo);
    }
    DVDClose(reader);
}
