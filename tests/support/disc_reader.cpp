#include "tests/support/disc_reader.h"

#include "tests/support/disc_view.h"
#include "tests/support/menu_reader.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <tuple>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t NOWHERE = 0x3FFFFFFF;   // low 30 bits of a pointer that leads nowhere

// Jump lengths of the search pointers in half seconds, the nearest first.
constexpr uint64_t HALF_SECONDS[19] = { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 20, 60, 120, 240 };

bool load(const fs::path& path, Octets& bytes)
{
    std::ifstream in(path, std::ios::binary);
    if (!in.good()) return false;
    bytes.resize(fs::file_size(path));
    in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(bytes.size()));
    return in.good();
}

uint64_t navAt(const Vob& vob, uint64_t sector)   // index, or the count if none begins there
{
    const auto at = std::lower_bound(vob.navs.begin(), vob.navs.end(), sector,
                                     [](const Nav& nav, uint64_t wanted) { return nav.sector < wanted; });
    if (at == vob.navs.end() || at->sector != sector) return vob.navs.size();
    return uint64_t(at - vob.navs.begin());
}

bool sameCell(const Nav& a, const Nav& b)
{
    return a.vob == b.vob && a.cell == b.cell;
}

bool isNavPack(const View& vob, uint64_t at)
{
    return vob.get(at + 14, 4) == 0x1BB && vob.get(at + 38, 4) == 0x1BF && vob.get(at + 1024, 4) == 0x1BF &&
           vob.get(at + 44, 1) == 0 && vob.get(at + 1030, 1) == 1;
}

void findNavs(const View& view, Vob& vob)
{
    for (uint64_t sector = 0; sector < vob.sectors; sector++) {
        const uint64_t at = sector * SECTOR;
        if (view.get(at, 4) != 0x1BA) view.fault("no pack at sector ", sector);
        if (!isNavPack(view, at)) continue;
        vob.navs.push_back(
            { sector, view.get(at + 1055, 2), view.get(at + 1058, 1), view.get(at + 57, 4), view.get(at + 61, 4) });
    }
    if (!vob.sectors) view.fault("is empty");
    if (vob.sectors && (vob.navs.empty() || vob.navs[0].sector != 0))
        view.fault("does not begin with a navigation pack");
}

}   // namespace

std::vector<Cell> cellsOf(const Vob& vob)
{
    std::vector<Cell> cells;
    for (uint64_t i = 0; i < vob.navs.size(); i++) {
        const uint64_t last = vob.behind(i) - 1;
        if (i == 0 || !sameCell(vob.navs[i - 1], vob.navs[i])) {
            cells.push_back({ vob.navs[i].vob, vob.navs[i].cell, vob.navs[i].sector, last });
        }
        cells.back().last = last;
    }
    return cells;
}

namespace {

// ---- navigation packs ---------------------------------------------------------------------------------------------

// A pointer to the neighbour: there if and only if the neighbour is of the same cell, and then exactly there.
void checkNeighbour(const View& view, const Vob& vob, uint64_t i, uint64_t at, bool next, const char* what)
{
    const Nav& nav = vob.navs[i];
    const uint64_t word = view.get(nav.sector * SECTOR + at, 4);
    const bool edge = next ? i + 1 == vob.navs.size() : i == 0;
    const Nav* neighbour = edge ? nullptr : &vob.navs[next ? i + 1 : i - 1];
    if (neighbour && !sameCell(nav, *neighbour)) neighbour = nullptr;
    if (!neighbour) {
        if ((word & NOWHERE) != NOWHERE) view.fault(what, " of sector ", nav.sector, " leaves its cell");
        return;
    }
    const uint64_t distance = next ? neighbour->sector - nav.sector : nav.sector - neighbour->sector;
    if (word != (0x80000000 | distance)) view.fault(what, " of sector ", nav.sector, " is ", word);
    view.report->searchPointers++;
}

void checkSearch(const View& view, const Vob& vob, uint64_t i, uint64_t k, bool forward)
{
    const Nav& nav = vob.navs[i];
    const uint64_t at = forward ? 1269 + 4 * (18 - k) : 1353 + 4 * k;
    const uint64_t word = view.get(nav.sector * SECTOR + at, 4);
    const uint64_t jump = HALF_SECONDS[k] * 45000;
    const char* const way = forward ? "forward" : "backward";
    if (!forward && jump > nav.start) {
        if ((word & NOWHERE) != NOWHERE) view.fault("pointer back before the start, sector ", nav.sector);
        return;
    }
    const uint64_t time = forward ? nav.start + jump : nav.start - jump;
    if ((word & NOWHERE) == NOWHERE) {
        if (word != 0x3FFFFFFF && word != 0x7FFFFFFF) view.fault("bits of an empty pointer, sector ", nav.sector);
        // None of the later or earlier units of the cell may hold the time. Units are in order of display.
        // Where a unit's display ends, the next one of its VOB begins; that of the VOB's last one is not looked at.
        for (uint64_t j = i + 1; forward && j + 1 < vob.navs.size() && sameCell(vob.navs[j], nav); j++) {
            if (vob.navs[j].start > time || vob.navs[j + 1].vob != nav.vob) break;
            if (time < vob.navs[j + 1].start) view.fault("pointer ", k, " misses on from sector ", nav.sector);
        }
        for (uint64_t j = i; !forward && j > 0 && sameCell(vob.navs[j - 1], nav); j--) {
            if (vob.navs[j].start <= time) break;
            if (vob.navs[j - 1].start <= time) view.fault("pointer ", k, " misses back from sector ", nav.sector);
        }
        return;
    }
    view.report->searchPointers++;
    const uint64_t distance = word & NOWHERE;
    const uint64_t target = navAt(vob, forward ? nav.sector + distance : nav.sector - distance);
    if (distance == 0 || target == vob.navs.size()) {
        view.fault(way, " pointer ", k, " of sector ", nav.sector, " leads to no navigation pack");
        return;
    }
    const Nav& found = vob.navs[target];
    if (!sameCell(nav, found)) view.fault(way, " pointer ", k, " of sector ", nav.sector, " leaves its cell");
    if (time < found.start || time >= found.end) view.fault(way, " pointer ", k, " of sector ", nav.sector, " misses");
    if ((word >> 30) != (k < 15 ? 2u : 3u)) view.fault(way, " pointer ", k, " of sector ", nav.sector, ": top bits");
}

// Low 32 bits of a clock whose groups of 3, 15 and 15 bits begin at these bits.
uint64_t clockOf(uint64_t bits, int high, int middle, int low)
{
    return ((bits >> high & 7) << 30 | (bits >> middle & 0x7FFF) << 15 | (bits >> low & 0x7FFF)) & 0xFFFFFFFF;
}

void checkAudioSync(const View& view, const Vob& vob, const Nav& nav, uint64_t streams)
{
    for (uint64_t a = 0; a < 8; a++) {
        const uint64_t word = view.get(nav.sector * SECTOR + 1433 + 2 * a, 2);
        if (a >= streams && word) view.fault("sync of audio ", a, ", sector ", nav.sector);
        if (word == 0 || word == 0x7FFF || word == 0xFFFF) continue;
        const uint64_t distance = word & 0x7FFF;
        const uint64_t sector = word & 0x8000 ? nav.sector - distance : nav.sector + distance;
        if (sector >= vob.sectors) {
            view.fault("sync of audio ", a, " leads out of the file, sector ", nav.sector);
            continue;
        }
        const uint64_t at = sector * SECTOR, id = view.get(at + 17, 1);
        const uint64_t number = id == 0xBD ? view.get(at + 23 + view.get(at + 22, 1), 1) : id;
        const bool audio = id == 0xBD ? number >= 0x80 && number < 0xA8 : id >= 0xC0 && id < 0xC8;
        if (!audio || (number & 7) != a) view.fault("sync of audio ", a, " leads to no such pack, sector ", nav.sector);
        const bool stamped = view.get(at + 21, 1) & 0x80;
        if (stamped && clockOf(view.get(at + 23, 5), 33, 17, 1) > nav.start) {
            view.fault("sync of audio ", a, " leads to a later time, sector ", nav.sector);
        }
        view.report->audioPointers++;
    }
}

}   // namespace

uint64_t packClock(const View& view, uint64_t at)
{
    return clockOf(view.get(at + 4, 6), 43, 27, 11);
}

namespace {

void checkNav(const View& view, const Vob& vob, uint64_t i, uint64_t audioStreams)
{
    const Nav& nav = vob.navs[i];
    const uint64_t at = nav.sector * SECTOR;
    const uint64_t behind = vob.behind(i);
    view.expect(at + 45, 4, nav.sector, "PCI sector");
    view.expect(at + 1035, 4, nav.sector, "DSI sector");
    view.expect(at + 1031, 4, packClock(view, at), "DSI clock");
    view.expect(at + 1039, 4, behind - nav.sector - 1, "end of the unit");
    view.expect(at + 1059, 4, view.get(at + 69, 4), "elapsed time");
    if ((view.get(at + 23, 1) >> 2) != audioStreams) view.fault("audio bound of sector ", nav.sector);
    uint64_t before = 0;
    for (uint64_t field = 1043; field <= 1051; field += 4) {
        const uint64_t end = view.get(at + field, 4);
        if (end > behind - nav.sector - 1) view.fault("a reference ends behind its unit, sector ", nav.sector);
        if (end && end < before) view.fault("reference ends descend, sector ", nav.sector);
        before = end;
    }
    if (nav.start >= nav.end) view.fault("no display time, sector ", nav.sector);
    // The last unit of a title, and of each menu, tells where all of it ends.
    const bool last = i + 1 == vob.navs.size() || (vob.isMenu && vob.navs[i + 1].vob != nav.vob);
    if ((view.get(at + 65, 4) != 0) != last) view.fault("end of display, sector ", nav.sector);
    const uint64_t length = nav.end - nav.start;
    if (length % 3600 && length % 3003) view.fault("display of no whole frames, sector ", nav.sector);
    // Display goes on where it ends, but a unit of fewer than ten pictures is declared twelve frames long.
    const bool goesOn = i + 1 < vob.navs.size() && vob.navs[i + 1].vob == nav.vob;
    if (goesOn && nav.end != vob.navs[i + 1].start && length != 12 * 3600 && length != 12 * 3003) {
        view.fault("display ends at another time than the next one begins, sector ", nav.sector);
    }
    const bool first = i == 0 || !sameCell(vob.navs[i - 1], nav);
    // Meant: the elapsed time of a title goes on where a new VOB keeps the number of the cell.
    const bool newCount = i == 0 || vob.navs[i - 1].cell != nav.cell || (vob.isMenu && first);
    if (newCount && (view.get(at + 69, 4) & 0xFFFFFF3F))
        view.fault("first of its cell has elapsed time, sector ", nav.sector);
    if (!first && vob.navs[i - 1].start >= nav.start) view.fault("display goes back at sector ", nav.sector);
    checkNeighbour(view, vob, i, 1345, true, "next unit");
    checkNeighbour(view, vob, i, 1265, true, "next video unit");
    checkNeighbour(view, vob, i, 1349, false, "previous unit");
    checkNeighbour(view, vob, i, 1429, false, "previous video unit");
    for (uint64_t k = 0; k < 19; k++) {
        checkSearch(view, vob, i, k, true);
        checkSearch(view, vob, i, k, false);
    }
    checkAudioSync(view, vob, nav, audioStreams);
}

// Files prefix + first..last, as far as they go.
Vob loadVob(const fs::path& folder, const std::string& prefix, uint64_t first, uint64_t last, uint64_t audioStreams,
            DiscReport& report)
{
    Vob vob;
    for (uint64_t i = first; i <= last; i++) {
        Octets part;
        const std::string name = prefix + (last > first ? std::to_string(i) : "") + ".VOB";
        if (!load(folder / name, part)) break;
        if (part.size() % SECTOR) View{ &part, name, &report }.fault("is not made of whole sectors");
        vob.bytes.insert(vob.bytes.end(), part.begin(), part.end());
    }
    vob.sectors = vob.bytes.size() / SECTOR;
    vob.isMenu = first == last;
    const View view = { &vob.bytes, prefix + "*.VOB", &report };
    findNavs(view, vob);
    for (uint64_t i = 0; i < vob.navs.size(); i++) checkNav(view, vob, i, audioStreams);
    report.navPacks += vob.navs.size();
    return vob;
}

// ---- tables -------------------------------------------------------------------------------------------------------

// The tables of an IFO: present ones inside the file, in the order of their header fields, none over another.
void checkTables(const View& ifo, const std::vector<uint64_t>& fields)
{
    uint64_t behind = 1;   // the header is one sector
    for (const uint64_t field : fields) {
        const uint64_t sector = ifo.get(field, 4);
        if (!sector) continue;
        if (sector < behind) ifo.fault("table of field ", field, " begins within the one before");
        // An address map has its last byte in front, any other table behind four bytes.
        const bool map = field == fields.back() || field == 220;
        const uint64_t last = ifo.get(sector * SECTOR + (map ? 0 : 4), 4);
        behind = sector + last / SECTOR + 1;
        if (behind * SECTOR > ifo.bytes->size()) ifo.fault("table of field ", field, " reaches behind the file");
    }
    if (behind * SECTOR != ifo.bytes->size()) ifo.fault("the file is longer than its tables");
}

void checkCellTable(const View& ifo, uint64_t at, const Vob& vob)
{
    const uint64_t entries = (ifo.get(at + 4, 4) - 7) / 12;
    std::vector<Cell> found;
    for (uint64_t i = 0; i < entries && i < 10000; i++) {
        const uint64_t entry = at + 8 + 12 * i;
        found.push_back({ ifo.get(entry, 2), ifo.get(entry + 2, 1), ifo.get(entry + 4, 4), ifo.get(entry + 8, 4) });
    }
    const std::vector<Cell> cells = cellsOf(vob);
    if (found != cells) ifo.fault("cell address table has ", entries, " entries, the VOB ", cells.size(), " cells");
    std::set<uint64_t> vobs;
    for (const Cell& cell : cells) vobs.insert(cell.vob);
    ifo.expect(at, 2, vobs.size(), "count of VOBs");
    ifo.report->cells += entries;
}

void checkVobuMap(const View& ifo, uint64_t at, const Vob& vob)
{
    ifo.expect(at, 4, 4 * vob.navs.size() + 3, "last byte of the VOBU map");
    for (uint64_t i = 0; i < vob.navs.size(); i++) ifo.expect(at + 4 + 4 * i, 4, vob.navs[i].sector, "VOBU map");
}

uint64_t frames(uint64_t time)   // of a BCD time code
{
    const auto digits = [&](uint64_t shift) { return (time >> (shift + 4) & 15) * 10 + (time >> shift & 15); };
    const uint64_t rate = (time >> 6 & 3) == 1 ? 25 : 30;
    return (digits(24) * 3600 + digits(16) * 60 + digits(8)) * rate + (time >> 4 & 3) * 10 + (time & 15);
}

void checkCells(const View& ifo, uint64_t pgc, uint64_t count, const Vob& vob)
{
    const std::vector<Cell> cells = cellsOf(vob);
    const uint64_t playback = pgc + ifo.get(pgc + 232, 2), position = pgc + ifo.get(pgc + 234, 2);
    uint64_t sum = 0;
    for (uint64_t i = 0; i < count; i++) {
        const uint64_t at = playback + 24 * i;
        const Cell cell = { ifo.get(position + 4 * i, 2), ifo.get(position + 4 * i + 3, 1), ifo.get(at + 8, 4),
                            ifo.get(at + 20, 4) };
        if (std::find(cells.begin(), cells.end(), cell) == cells.end()) ifo.fault("cell ", i + 1, " is not in the VOB");
        const uint64_t last = navAt(vob, ifo.get(at + 16, 4));
        const bool ends = last < vob.navs.size() && vob.navs[last].vob == cell.vob &&
                          vob.navs[last].cell == cell.cell &&
                          (last + 1 == vob.navs.size() || vob.navs[last + 1].sector == cell.last + 1);
        if (!ends) ifo.fault("last unit of cell ", i + 1);
        sum += frames(ifo.get(at + 4, 4));
        const uint64_t commands = ifo.get(pgc + 228, 2);
        if (ifo.get(at + 3, 1) > (commands ? ifo.get(pgc + commands + 4, 2) : 0)) ifo.fault("command of cell ", i + 1);
    }
    if (sum != frames(ifo.get(pgc + 4, 4))) ifo.fault("cells play ", sum, " frames, their chain another number");
}

// A chain: its parts inside, its map and cells in agreement with the VOB.
void checkPgc(const View& ifo, uint64_t pgc, uint64_t room, const Vob& vob)
{
    const uint64_t programs = ifo.get(pgc + 2, 1), cells = ifo.get(pgc + 3, 1);
    const uint64_t commands = ifo.get(pgc + 228, 2), map = ifo.get(pgc + 230, 2);
    const auto inside = [&](uint64_t from, uint64_t bytes, const char* what) {
        if (from && (from < 236 || from + bytes > room)) ifo.fault(what, " leaves its chain");
    };
    if (commands) {
        const uint64_t last = ifo.get(pgc + commands + 6, 2);
        uint64_t count = 0;
        for (uint64_t i = 0; i < 6; i += 2) count += ifo.get(pgc + commands + i, 2);
        if (last + 1 != 8 + 8 * count) ifo.fault("commands do not fill their table");
        inside(commands, last + 1, "command table");
    }
    inside(map, programs, "program map");
    inside(ifo.get(pgc + 232, 2), 24 * cells, "cell playback");
    inside(ifo.get(pgc + 234, 2), 4 * cells, "cell position");
    for (uint64_t i = 0; i < programs; i++) {
        const uint64_t entry = ifo.get(pgc + map + i, 1);
        if (entry < 1 || entry > cells) ifo.fault("program ", i + 1, " enters cell ", entry);
    }
    if (cells) checkCells(ifo, pgc, cells, vob);
}

// Language units of menus, and the chains in them. name is that of the domain's VOB.
void checkMenus(const View& ifo, uint64_t at, const Vob& vob, const std::string& name)
{
    const uint64_t unit = at + ifo.get(at + 12, 4), size = ifo.get(unit + 4, 4) + 1;
    ifo.expect(at, 2, 1, "language units");
    if (unit - at + size != ifo.get(at + 4, 4) + 1) ifo.fault("the language unit does not end with its table");
    const uint64_t count = ifo.get(unit, 2);
    for (uint64_t i = 0; i < count; i++) {
        const uint64_t from = ifo.get(unit + 12 + 8 * i, 4);
        const uint64_t to = i + 1 < count ? ifo.get(unit + 20 + 8 * i, 4) : size;
        if (from < 8 + 8 * count || to > size || from >= to) ifo.fault("menu ", i + 1, " leaves its unit");
        checkPgc(ifo, unit + from, to - from, vob);
    }
    if (!vob.sectors) return;
    const uint64_t height = ifo.get(256, 1) & 0x10 ? 576 : 480;
    checkMenuVob({ &vob.bytes, name, ifo.report }, vob, { ifo, unit, count, height });
}

void checkTitle(const View& ifo, const Vob& vob)
{
    const uint64_t ptt = ifo.get(200, 4) * SECTOR, pgcs = ifo.get(204, 4) * SECTOR;
    ifo.expect(ptt, 2, 1, "titles");
    ifo.expect(pgcs, 2, 1, "chains");
    const uint64_t pgc = pgcs + ifo.get(pgcs + 12, 4);
    checkPgc(ifo, pgc, pgcs + ifo.get(pgcs + 4, 4) + 1 - pgc, vob);

    const std::vector<Cell> cells = cellsOf(vob);
    const auto ofFirstVob = std::count_if(cells.begin(), cells.end(), [](const Cell& cell) { return cell.vob == 1; });
    ifo.expect(pgc + 3, 1, uint64_t(ofFirstVob), "cells of the chain");
    const uint64_t chapters = (ifo.get(ptt + 4, 4) + 1 - ifo.get(ptt + 8, 4)) / 4;
    ifo.expect(pgc + 2, 1, chapters, "chapters against programs");
    for (uint64_t i = 0; i < chapters && i < 10000; i++) {
        ifo.expect(ptt + 12 + 4 * i, 4, 0x10000 + i + 1, "chapter");
    }
    ifo.report->chapters += chapters;
}

void checkTimeMap(const View& ifo, const Vob& vob)
{
    const uint64_t table = ifo.get(212, 4) * SECTOR, map = table + ifo.get(table + 8, 4);
    ifo.expect(table, 2, 1, "time maps");
    ifo.expect(map, 1, 5, "time unit");
    const uint64_t entries = ifo.get(map + 2, 2);
    ifo.expect(table + 4, 4, map - table + 4 + 4 * entries - 1, "last byte of the time map");
    for (uint64_t i = 0; i < entries; i++) {
        const uint64_t at = navAt(vob, ifo.get(map + 4 + 4 * i, 4) & 0x7FFFFFFF);
        if (at == vob.navs.size()) {
            ifo.fault("time ", i + 1, " leads to no navigation pack");
            continue;
        }
        const uint64_t time = vob.navs[0].start + (i + 1) * 450000;
        if (time < vob.navs[at].start || time >= vob.navs[at].end) ifo.fault("time ", i + 1, " is not in its unit");
    }
    ifo.report->timeMapEntries += entries;
}

// ---- files --------------------------------------------------------------------------------------------------------

// What a title set's files tell the manager.
struct TitleSetFiles {
    Octets ifo;
    uint64_t sectors = 0;   // of all its files
    uint64_t cells = 0;
};

bool loadIfo(const fs::path& folder, const std::string& stem, const std::string& mark, Octets& ifo, DiscReport& report)
{
    const View view = { &ifo, stem + ".IFO", &report };
    Octets backup;
    if (!load(folder / (stem + ".IFO"), ifo)) view.fault("is missing");
    if (!load(folder / (stem + ".BUP"), backup)) view.fault("has no backup");
    if (backup != ifo) view.fault("differs from its backup");
    if (ifo.size() % SECTOR || ifo.size() < 2 * SECTOR) {
        view.fault("is not made of whole sectors");
        return false;
    }
    if (!std::equal(mark.begin(), mark.end(), ifo.begin())) view.fault("bears the wrong mark");
    view.expect(28, 4, ifo.size() / SECTOR - 1, "last sector of the IFO");
    return true;
}

TitleSetFiles checkTitleSet(const fs::path& folder, uint64_t number, DiscReport& report)
{
    TitleSetFiles files;
    const std::string prefix = std::string("VTS_") + (number < 10 ? "0" : "") + std::to_string(number) + "_";
    const View ifo = { &files.ifo, prefix + "0.IFO", &report };
    if (!loadIfo(folder, prefix + "0", "DVDVIDEO-VTS", files.ifo, report)) return files;
    const uint64_t ifoSectors = files.ifo.size() / SECTOR;

    Vob menu;
    if (ifo.get(192, 4)) {
        menu = loadVob(folder, prefix + "0", 0, 0, ifo.get(258, 2), report);
        checkMenus(ifo, ifo.get(208, 4) * SECTOR, menu, prefix + "0.VOB");
        checkCellTable(ifo, ifo.get(216, 4) * SECTOR, menu);
        checkVobuMap(ifo, ifo.get(220, 4) * SECTOR, menu);
    }
    const Vob title = loadVob(folder, prefix, 1, 9, ifo.get(514, 2), report);
    files.sectors = 2 * ifoSectors + menu.sectors + title.sectors;
    files.cells = cellsOf(title).size();

    checkTables(ifo, { 200, 204, 208, 212, 216, 220, 224, 228 });
    ifo.expect(12, 4, files.sectors - 1, "last sector of the title set");
    ifo.expect(192, 4, menu.sectors ? ifoSectors : 0, "start of the menus");
    ifo.expect(196, 4, ifoSectors + menu.sectors, "start of the title");
    checkTitle(ifo, title);
    checkTimeMap(ifo, title);
    checkCellTable(ifo, ifo.get(224, 4) * SECTOR, title);
    checkVobuMap(ifo, ifo.get(228, 4) * SECTOR, title);
    return files;
}

void checkAttributes(const View& ifo, uint64_t at, uint64_t i, const TitleSetFiles& files)
{
    const uint64_t entry = at + ifo.get(at + 8 + 4 * i, 4);
    ifo.expect(entry, 4, 775, "end of an attribute entry");
    const View titleSet = { &files.ifo, "attributes of title set " + std::to_string(i + 1), ifo.report };
    ifo.expect(entry + 4, 4, titleSet.get(34, 4), "category");
    for (uint64_t byte = 0; byte < 768; byte += 4) {
        ifo.expect(entry + 8 + byte, 4, titleSet.get(256 + byte, 4), "attributes");
    }
}

}   // namespace

DiscReport readDisc(const fs::path& folder)
{
    DiscReport report;
    Octets bytes;
    const View ifo = { &bytes, "VIDEO_TS.IFO", &report };
    if (!loadIfo(folder, "VIDEO_TS", "DVDVIDEO-VMG", bytes, report)) return report;
    const uint64_t ifoSectors = bytes.size() / SECTOR;

    Vob menu;
    const bool hasMenus = fs::exists(folder / "VIDEO_TS.VOB");
    if (hasMenus) {
        menu = loadVob(folder, "VIDEO_TS", 0, 0, ifo.get(258, 2), report);
        checkCellTable(ifo, ifo.get(216, 4) * SECTOR, menu);
        checkVobuMap(ifo, ifo.get(220, 4) * SECTOR, menu);
    }
    checkTables(ifo, { 196, 200, 208, 216, 220 });
    checkMenus(ifo, ifo.get(200, 4) * SECTOR, menu, "VIDEO_TS.VOB");
    ifo.expect(12, 4, 2 * ifoSectors + menu.sectors - 1, "last sector of the manager");
    ifo.expect(192, 4, ifoSectors, "start of the menus");
    const uint64_t firstPlay = ifo.get(132, 4);
    ifo.expect(128, 4, firstPlay + 251, "last byte of the header");
    checkPgc(ifo, firstPlay, 252, menu);

    report.titleSets = ifo.get(62, 2);
    const uint64_t titles = ifo.get(196, 4) * SECTOR, attributes = ifo.get(208, 4) * SECTOR;
    ifo.expect(titles, 2, report.titleSets, "titles");
    ifo.expect(titles + 4, 4, 12 * report.titleSets + 7, "last byte of the titles");
    ifo.expect(attributes, 2, report.titleSets, "attributes of title sets");
    uint64_t start = 2 * ifoSectors + menu.sectors;
    for (uint64_t i = 0; i < report.titleSets && i < 99; i++) {
        const TitleSetFiles files = checkTitleSet(folder, i + 1, report);
        ifo.expect(titles + 8 + 12 * i + 2, 2, files.cells, "chapters of a title");
        ifo.expect(titles + 8 + 12 * i + 6, 1, i + 1, "title set of a title");
        ifo.expect(titles + 8 + 12 * i + 7, 1, 1, "title in its set");
        ifo.expect(titles + 8 + 12 * i + 8, 4, start, "start sector of a title set");
        checkAttributes(ifo, attributes, i, files);
        start += files.sectors;
    }
    return report;
}

std::string describeFaults(const DiscReport& report)
{
    std::string text;
    for (uint64_t i = 0; i < report.faults.size() && i < 20; i++) text += report.faults[i] + "\n";
    return text;
}
