// menu_reader.cpp: menu VOBs, by the published format.
#include "tests/support/menu_reader.h"

#include "tests/support/sub_picture_decoder.h"

#include <array>
#include <map>

namespace {

constexpr uint64_t SUB_PICTURES = 2, NO_EARLIER_UNIT = 0x7FFFFFFF;
constexpr uint64_t BUTTON_BYTES = 18, MOST_BUTTONS = 36, GROUP_BUTTONS = 18;

// One menu: the units of its VOB, from first on, and what lies in them.
struct Menu {
    uint64_t vob, first, behind;                 // indexes of navigation packs
    std::array<Octets, SUB_PICTURES> unit;       // bytes of its sub-pictures
    std::array<uint64_t, SUB_PICTURES> unitAt;   // the navigation pack whose unit holds the first pack
    std::array<bool, SUB_PICTURES> has = {};
};

uint64_t chainOf(const MenuChains& chains, uint64_t number)   // from 1; offset in the IFO
{
    return chains.unit + chains.ifo.get(chains.unit + 8 + 8 * (number - 1) + 4, 4);
}

bool isLetterbox(const MenuChains& chains, uint64_t number)
{
    return chains.ifo.get(chainOf(chains, number) + 30, 1) == 1;
}

// ---- sub-pictures -------------------------------------------------------------------------------------------------

void takePack(const View& view, uint64_t at, uint64_t nav, Menu& menu)
{
    const uint64_t header = 9 + view.get(at + 22, 1), end = at + 20 + view.get(at + 18, 2);
    const uint64_t id = view.get(at + 14 + header, 1);
    if (id < 0x20 || id > 0x3F) return;
    const uint64_t stream = id - 0x20, from = at + 14 + header + 1;
    if (stream >= SUB_PICTURES) return view.fault("sub-picture stream ", stream, ", offset ", at);
    if (end > at + SECTOR || from >= end) return view.fault("a packet leaves its pack, offset ", at);
    if (!menu.has[stream]) {
        menu.has[stream] = true;
        menu.unitAt[stream] = nav;
    } else if (view.get(at + 21, 1) & 0x80) {
        view.fault("a later sub-picture pack has a time stamp, offset ", at);
    }
    if (menu.unitAt[stream] != nav) view.fault("a sub-picture goes on in another unit, offset ", at);
    const auto bytes = view.bytes->begin();
    menu.unit[stream].insert(menu.unit[stream].end(), bytes + std::ptrdiff_t(from), bytes + std::ptrdiff_t(end));
}

void checkSubPictures(const View& view, const Menu& menu, const MenuChains& chains)
{
    if (!menu.has[0]) view.fault("menu ", menu.vob, " has no sub-picture");
    if (menu.has[1] != isLetterbox(chains, menu.vob)) view.fault("letterbox sub-picture of menu ", menu.vob);
    for (uint64_t stream = 0; stream < SUB_PICTURES; stream++) {
        if (!menu.has[stream]) continue;
        const DecodedSubPicture picture = decodeSubPicture(menu.unit[stream], chains.height);
        for (const std::string& fault : picture.faults) {
            view.fault("sub-picture ", stream, " of menu ", menu.vob, ": ", fault);
        }
        // A menu's sub-picture is shown by its highlight alone, from line 2 to the third last.
        for (const uint8_t contrast : picture.contrasts) {
            if (contrast) view.fault("sub-picture ", stream, " of menu ", menu.vob, " shows by itself");
        }
        if (picture.left != 0 || picture.right != 719 || picture.top != 2 || picture.bottom != chains.height - 3) {
            view.fault("sub-picture ", stream, " of menu ", menu.vob, " leaves a part of its picture out");
        }
        view.report->subPictures++;
    }
}

// The pointer of each unit to the one with the sub-picture that is shown in it.
void checkPointers(const View& view, const Vob& vob, const Menu& menu)
{
    for (uint64_t i = menu.first; i < menu.behind; i++) {
        const uint64_t at = vob.navs[i].sector * SECTOR;
        for (uint64_t stream = 0; stream < 32; stream++) {
            const uint64_t word = view.get(at + 1449 + 4 * stream, 4);
            if (word == 0) continue;   // a stream that the domain does not count
            const bool here = stream < SUB_PICTURES && menu.has[stream];
            const bool earlier = here && menu.unitAt[stream] < i;
            const uint64_t expected =
                earlier ? 0x80000000 | (vob.navs[i].sector - vob.navs[menu.unitAt[stream]].sector) : NO_EARLIER_UNIT;
            if (word != expected) view.fault("pointer to sub-picture ", stream, ", offset ", at, ", is ", word);
            view.report->subPicturePointers++;
        }
    }
}

// A stream has a pointer in all units of a file or in none.
void checkPointerStreams(const View& view, const Vob& vob)
{
    for (uint64_t stream = 0; stream < 32; stream++) {
        uint64_t told = 0;
        for (const Nav& nav : vob.navs) told += view.get(nav.sector * SECTOR + 1449 + 4 * stream, 4) != 0;
        if (told && told != vob.navs.size()) view.fault("sub-picture ", stream, " is told in ", told, " units");
        if (stream == 0 && !told) view.fault("no unit tells where the sub-picture is");
    }
}

// ---- highlight ----------------------------------------------------------------------------------------------------

// Group 2 of a letterbox menu: the same buttons, three quarters as high and further down.
void checkLetterboxButton(const View& view, uint64_t entry, uint64_t twin, uint64_t height)
{
    const auto line = [&](uint64_t at) { return std::pair(view.get(at, 2) >> 4 & 0x3FF, view.get(at + 1, 2) & 0x3FF); };
    const auto [first, last] = line(entry + 3);
    const auto [twinFirst, twinLast] = line(twin + 3);
    const uint64_t down = height == 576 ? 72 : 60;
    bool same = twinFirst == first * 3 / 4 + down && twinLast == last * 3 / 4 + down;
    for (uint64_t i = 0; i < BUTTON_BYTES; i++) {
        const uint64_t mask = i < 3 || i > 5 ? 0xFF : i == 3 ? 0xC0 : 0;
        same = same && (view.get(entry + i, 1) & mask) == (view.get(twin + i, 1) & mask);
    }
    if (!same) view.fault("letterbox button at ", twin, " is another one than that at ", entry);
}

void checkButtons(const View& view, uint64_t at, bool letterbox, uint64_t height)
{
    const uint64_t count = view.get(at + 158, 1), table = at + 187;
    view.expect(at + 155, 2, letterbox ? 0x2120 : 0x1000, "button groups");
    view.expect(at + 159, 1, count, "buttons to be selected by number");
    if (count > MOST_BUTTONS) return view.fault("too many buttons at ", at);
    const uint64_t room = letterbox ? GROUP_BUTTONS : MOST_BUTTONS, listed = count < room ? count : room;
    for (uint64_t i = 0; i < listed; i++) {
        const uint64_t entry = table + BUTTON_BYTES * i;
        if ((view.get(entry, 2) >> 4 & 0x3FF) > (view.get(entry + 1, 2) & 0x3FF)) view.fault("columns at ", entry);
        if ((view.get(entry + 3, 2) >> 4 & 0x3FF) > (view.get(entry + 4, 2) & 0x3FF)) view.fault("lines at ", entry);
        if (letterbox) checkLetterboxButton(view, entry, entry + BUTTON_BYTES * GROUP_BUTTONS, height);
        view.report->buttons++;
    }
    if (!view.allZero(table + BUTTON_BYTES * listed, table + BUTTON_BYTES * room)) view.fault("more buttons at ", at);
    if (letterbox &&
        !view.allZero(table + BUTTON_BYTES * (GROUP_BUTTONS + listed), table + BUTTON_BYTES * MOST_BUTTONS))
        view.fault("more letterbox buttons at ", at);
}

// Status of the highlight: none, then new, then as before; only the first loop point of a file makes it new.
void checkHighlight(const View& view, const Vob& vob, const Menu& menu, const MenuChains& chains, bool& begun)
{
    bool begunHere = false;
    for (uint64_t i = menu.first; i < menu.behind; i++) {
        const uint64_t at = vob.navs[i].sector * SECTOR, status = view.get(at + 141, 2);
        if (status == 0) {
            if (begunHere) view.fault("the highlight ends at ", at);
            if (!view.allZero(at + 143, at + 1024)) view.fault("highlight data without a highlight at ", at);
            continue;
        }
        if (status > 2) view.fault("highlight status ", status, " at ", at);
        if (status == 1 && begunHere) view.fault("the highlight begins again at ", at);
        if (status == 2 && !begun) view.fault("a highlight goes on that has not begun, at ", at);
        begun = begunHere = true;
        view.expect(at + 147, 4, 0xFFFFFFFF, "end of the highlight");
        view.expect(at + 151, 4, 0xFFFFFFFF, "end of the selection");
        checkButtons(view, at, isLetterbox(chains, menu.vob), chains.height);
    }
}

// ---- chains -------------------------------------------------------------------------------------------------------

void checkChain(const MenuChains& chains, uint64_t number, const std::vector<Cell>& cells)
{
    const View& ifo = chains.ifo;
    const uint64_t pgc = chainOf(chains, number), count = ifo.get(pgc + 3, 1);
    std::vector<Cell> own;
    for (const Cell& cell : cells) {
        if (cell.vob == number) own.push_back(cell);
    }
    if (count != own.size()) return ifo.fault("menu ", number, " has ", count, " cells, its VOB ", own.size());
    for (uint64_t i = 0; i < count; i++) {
        const uint64_t at = pgc + ifo.get(pgc + 234, 2) + 4 * i;
        if (ifo.get(at, 2) != number || ifo.get(at + 3, 1) != own[i].cell) ifo.fault("cell ", i + 1, ", menu ", number);
    }
    ifo.expect(pgc + 28, 4, isLetterbox(chains, number) ? 0x80000100 : 0x80000000, "sub-picture streams of a menu");
    if (!ifo.allZero(pgc + 32, pgc + 156)) ifo.fault("more sub-picture streams of menu ", number);
}

std::vector<Menu> menusOf(const View& view, const Vob& vob)
{
    std::vector<Menu> menus;
    for (uint64_t i = 0; i < vob.navs.size(); i++) {
        const Nav& nav = vob.navs[i];
        const bool starts = packClock(view, nav.sector * SECTOR) == 0;
        if (starts != (menus.empty() || nav.vob != menus.back().vob)) view.fault("clock at sector ", nav.sector);
        if (menus.empty() || nav.vob != menus.back().vob) {
            if (nav.vob != menus.size() + 1) view.fault("VOB ", nav.vob, " at sector ", nav.sector);
            menus.push_back({ nav.vob, i, i, {}, {} });
        }
        menus.back().behind = i + 1;
        for (uint64_t sector = nav.sector + 1; sector < vob.behind(i); sector++) {
            if (view.get(sector * SECTOR + 14, 4) == 0x1BD) takePack(view, sector * SECTOR, i, menus.back());
        }
    }
    return menus;
}

}   // namespace

void checkMenuVob(const View& view, const Vob& vob, const MenuChains& chains)
{
    const std::vector<Menu> menus = menusOf(view, vob);
    if (menus.size() != chains.count) {
        return chains.ifo.fault(chains.count, " menus, but the VOB has ", menus.size());
    }
    chains.ifo.expect(340, 2, 1, "sub-picture streams");
    const std::vector<Cell> cells = cellsOf(vob);
    bool begun = false;
    for (const Menu& menu : menus) {
        if (menu.vob < 1 || menu.vob > chains.count) continue;   // told already
        checkChain(chains, menu.vob, cells);
        checkSubPictures(view, menu, chains);
        checkPointers(view, vob, menu);
        checkHighlight(view, vob, menu, chains, begun);
        view.report->menus++;
    }
    // A menu may lie before the loop point as a whole, but not all of them.
    if (!begun) view.fault("no menu has a highlight");
    checkPointerStreams(view, vob);
}
