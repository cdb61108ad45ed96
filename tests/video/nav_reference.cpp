// The rules of navigation packs, word for word and without any thought of cost, for the tests that compare at random.
#include "tests/video/nav_rig.h"

#include <algorithm>

namespace {

constexpr uint64_t DISTANCES[19] = { 45000,  90000,  135000, 180000, 225000, 270000, 315000,  360000,  405000,  450000,
                                     495000, 540000, 585000, 630000, 675000, 900000, 2700000, 5400000, 10800000 };

void put(Bytes& pack, uint64_t at, uint64_t value, uint64_t width)
{
    for (uint64_t i = 0; i < width; i++) pack[at + i] = uint8_t(value >> (8 * (width - 1 - i)));
}

struct Rules {
    const NavSpec& given;
    bool isMenu;
    uint64_t index;
    const std::vector<VobuRecord>& list;
    const VobuRecord& record;
    uint64_t ticks;

    Rules(const NavSpec& s, bool menu, uint64_t i)
        : given(s), isMenu(menu), index(i), list(s.vobus), record(s.vobus[i]), ticks(s.standard == 1 ? 3600 : 3003)
    {
    }

    uint64_t start(const VobuRecord& r) const
    {
        return r.firstPts - r.temporalRef * ticks;
    }
    uint64_t end(const VobuRecord& r) const
    {
        return r.firstPts + r.pictureCount * ticks;
    }

    uint64_t vobEnd() const
    {
        uint64_t found = 0;
        for (const VobuRecord& r : list) {
            if (r.vobId == record.vobId) found = end(r);
        }
        return found;
    }

    uint64_t movieEnd() const
    {
        return end(list.back());
    }

    bool sameCell(const VobuRecord& r) const
    {
        return r.vobId == record.vobId && r.cellId == record.cellId;
    }

    void putElapsed(Bytes& pack, uint64_t at) const
    {
        uint64_t frames = 0;
        for (uint64_t i = index; i > 0; i--) {
            if (list[i - 1].cellId != record.cellId) break;
            if (isMenu && list[i - 1].vobId != record.vobId) break;
            frames += list[i - 1].pictureCount;
        }
        if (given.standard != 1 && given.standard != 2) return;   // no rate, no time
        const uint64_t rate = given.standard == 1 ? 25 : 30;
        const auto bcd = [](uint64_t n) { return n / 10 * 16 + n % 10; };
        const uint64_t seconds = frames / rate;
        put(pack, at, bcd(seconds / 3600), 1);
        put(pack, at + 1, bcd(seconds / 60 % 60), 1);
        put(pack, at + 2, bcd(seconds % 60), 1);
        put(pack, at + 3, bcd(frames % rate) | (rate == 25 ? 0x40u : 0xC0u), 1);
    }

    void putPci(Bytes& pack) const
    {
        put(pack, 38, 0x000001BF, 4);
        put(pack, 42, 0x03D4, 2);
        put(pack, 45, record.sector, 4);
        put(pack, 57, start(record), 4);
        put(pack, 61, start(record) + (record.pictureCount < 10 ? 12 * ticks : record.pictureCount * ticks), 4);
        const bool last = index + 1 == list.size();
        if (!isMenu && last) put(pack, 65, movieEnd(), 4);
        if (isMenu && (last || list[index + 1].vobId != record.vobId)) put(pack, 65, vobEnd(), 4);
        putElapsed(pack, 69);
    }

    void putDsi(Bytes& pack) const
    {
        put(pack, 1024, 0x000001BF, 4);
        put(pack, 1028, 0x03FA, 2);
        put(pack, 1030, 1, 1);
        put(pack, 1031, record.scr, 4);
        put(pack, 1035, record.sector, 4);
        const uint64_t next = index + 1 < list.size() ? list[index + 1].sector : sectorsOf(given);
        const uint64_t size = next - record.sector - 1;
        put(pack, 1039, size, 4);
        put(pack, 1043, isMenu && record.firstRefEnd == 0 ? size : record.firstRefEnd, 4);
        put(pack, 1047, record.secondRefEnd, 4);
        put(pack, 1051, record.thirdRefEnd, 4);
        put(pack, 1055, record.vobId, 2);
        put(pack, 1058, record.cellId, 1);
        putElapsed(pack, 1059);
        const uint64_t first = list[0].firstPts;
        put(pack, 1075, first, 4);
        const uint64_t frames = (vobEnd() - first) / ticks;
        put(pack, 1079, isMenu ? first + (frames < 10 ? 12 : frames) * ticks : movieEnd(), 4);
    }

    uint64_t lastSectorValue() const
    {
        const uint64_t cellId = isMenu ? list[0].cellId : record.cellId;
        uint64_t sector = 0;
        for (const VobuRecord& r : list) {
            if (r.cellId > cellId) break;
            if (r.cellId == cellId) sector = r.sector;
        }
        return sector;
    }

    uint64_t firstSectorValue() const
    {
        if (isMenu || record.cellId == list[0].cellId) return 0;
        for (const VobuRecord& r : list) {
            if (r.cellId == record.cellId) return r.sector;
        }
        return 0;
    }

    // Display spans of the list; those of another cell or VOB are empty. (Made once for the 38 walks: this file is also
    // run without optimisation.)
    struct Span {
        uint64_t start, end;
    };
    std::vector<Span> spans() const
    {
        std::vector<Span> all;
        all.reserve(list.size());
        for (const VobuRecord& r : list) {
            all.push_back(sameCell(r) ? Span{ start(r), start(r) + r.pictureCount * ticks } : Span{ 0, 0 });
        }
        return all;
    }

    void putSearch(Bytes& pack) const
    {
        const auto link = [](uint64_t delta) { return (delta & 0x3FFFFFFF) | 0x80000000; };
        const bool next = index + 1 < list.size() && sameCell(list[index + 1]);
        const bool previous = index > 0 && sameCell(list[index - 1]);
        put(pack, 1265, next ? link(list[index + 1].sector - record.sector) : 0xBFFFFFFF, 4);
        put(pack, 1345, next ? link(list[index + 1].sector - record.sector) : 0x3FFFFFFF, 4);
        put(pack, 1349, previous ? link(record.sector - list[index - 1].sector) : 0x3FFFFFFF, 4);
        put(pack, 1429, previous ? link(record.sector - list[index - 1].sector) : 0xBFFFFFFF, 4);
        uint64_t forward[20], backward[20];
        for (uint64_t k = 0; k < 20; k++) forward[k] = backward[k] = 0x3FFFFFFF;
        const uint64_t lastSector = lastSectorValue(), firstSector = firstSectorValue();
        const std::vector<Span> all = spans();
        const Span* const span = all.data();
        for (uint64_t k = 0; k < 19; k++) {
            const uint64_t flags = k < 15 ? 0x80000000 : 0xC0000000;
            const uint64_t ahead = start(record) + DISTANCES[k], behind = start(record) - DISTANCES[k];
            for (uint64_t j = list.size() - 1; j > index; j--) {
                if (!(span[j].start <= ahead && ahead < span[j].end)) continue;
                const uint64_t delta = list[j].sector - record.sector;
                forward[k] = (delta & 0x3FFFFFFF) | flags;
                if (k >= 14 && k <= 17 && lastSector - record.sector != delta) forward[k + 1] = 0x7FFFFFFF;
            }
            for (uint64_t j = 0; j < index; j++) {
                if (!(span[j].start <= behind && behind < span[j].end)) continue;
                const uint64_t delta = record.sector - list[j].sector;
                backward[k] = (delta & 0x3FFFFFFF) | flags;
                if (k >= 14 && k <= 17 && record.sector - delta != firstSector) backward[k + 1] = 0x7FFFFFFF;
            }
        }
        for (uint64_t k = 0; k < 19; k++) {
            put(pack, 1269 + 4 * (18 - k), forward[k], 4);
            put(pack, 1353 + 4 * k, backward[k], 4);
        }
    }

    uint64_t audioEntry(uint64_t stream) const
    {
        const uint64_t t = start(record);
        for (uint64_t i = 0; i + 1 < given.packs.size(); i++) {
            const StreamPackRecord& p = given.packs[i];
            if (p.vobId != record.vobId || p.streamIndex != stream || p.kind < 8 || p.kind > 12) continue;
            if (p.pts > t || t >= given.packs[i + 1].pts) continue;
            const int64_t d = int64_t(p.sector - record.sector);
            if (d >= 32768) return 0x7FFF;
            if (d < -32767) return 0xFFFF;
            return d >= 0 ? uint64_t(d) : 0x8000 | (uint64_t(-d) & 0x7FFF);
        }
        return 0;
    }

    uint64_t subPictureEntry(uint64_t stream) const
    {
        int64_t d = 0;
        for (const StreamPackRecord& p : given.packs) {
            if (p.vobId == record.vobId && p.streamIndex == stream && p.kind == 20) {
                d = int64_t(p.vobuSector - record.sector);
            }
            if (p.vobuSector > record.sector) break;
        }
        return d < 0 ? (uint64_t(-d) & 0x7FFFFFFF) | 0x80000000 : 0x7FFFFFFF;
    }

    void putSync(Bytes& pack) const
    {
        for (uint64_t a = 0; a < given.audioCount; a++) put(pack, 1433 + 2 * a, audioEntry(a), 2);
        const uint64_t subPictures = isMenu ? given.subPictureCount : 0;
        for (uint64_t s = 0; s < subPictures; s++) put(pack, 1449 + 4 * s, subPictureEntry(s), 4);
    }

    void putButton(Bytes& pack, uint64_t entry, const ButtonDesc& b, uint64_t yStart, uint64_t yEnd) const
    {
        const uint64_t at = 187 + 18 * entry;
        put(pack, at, (b.color & 3) << 6 | (b.xStart >> 4 & 0x3F), 1);
        put(pack, at + 1, (b.xStart & 15) << 4 | (b.xEnd >> 8 & 3), 1);
        put(pack, at + 2, b.xEnd, 1);
        put(pack, at + 3, (b.autoAction & 3) << 6 | (yStart >> 4 & 0x3F), 1);
        put(pack, at + 4, (yStart & 15) << 4 | (yEnd >> 8 & 3), 1);
        put(pack, at + 5, yEnd, 1);
        put(pack, at + 6, b.upLink, 1);
        put(pack, at + 7, b.downLink, 1);
        put(pack, at + 8, b.leftLink, 1);
        put(pack, at + 9, b.rightLink, 1);
        if (b.command == 10) {   // the one command of the random menus; the others are no commands
            put(pack, at + 10, 0x2004, 2);
            put(pack, at + 17, b.param1, 1);
        }
    }

    void putHighlight(Bytes& pack) const
    {
        const bool loops = !given.menus.empty() && given.menus[0].loopMode == 2;
        if (loops) {
            const uint64_t from = given.menus[0].loopValue;
            if (record.scr < from) return;
            uint64_t first = 0;
            while (list[first].scr < from) first++;
            put(pack, 141, first == index ? 1 : 2, 2);
            put(pack, 143, start(list[first]), 4);
        } else {
            put(pack, 141, index == 0 || list[index - 1].vobId != record.vobId ? 1 : 2, 2);
            put(pack, 143, list[0].firstPts, 4);
        }
        put(pack, 147, 0xFFFFFFFF, 4);
        put(pack, 151, 0xFFFFFFFF, 4);
        const bool named = record.vobId >= 1 && record.vobId <= given.menus.size();
        const MenuDesc menu = named ? given.menus[record.vobId - 1] : MenuDesc{};
        put(pack, 155, menu.hasLetterbox ? 0x2120 : 0x1000, 2);
        put(pack, 158, menu.buttonCount, 1);
        put(pack, 159, menu.buttonCount, 1);
        for (uint64_t i = 0; i < 24; i++) pack[163 + i] = menu.colorSets[i / 8][i % 8];
        for (uint64_t i = 0; i < menu.buttonCount; i++) {
            const ButtonDesc& b = menu.buttons[i];
            if (menu.hasLetterbox && i >= 18) break;
            putButton(pack, i, b, b.yStart, b.yEnd);
            const uint64_t down = given.standard == 1 ? 72 : 60;
            if (menu.hasLetterbox) putButton(pack, i + 18, b, (b.yStart * 3 >> 2) + down, (b.yEnd * 3 >> 2) + down);
        }
    }

    Bytes pack(const Bytes& before) const
    {
        Bytes result(PACK_BYTES, 0);
        std::copy(before.begin(), before.begin() + 38, result.begin());
        result[23] = uint8_t((before[23] & 3) | given.audioCount << 2);
        putPci(result);
        putDsi(result);
        putSearch(result);
        putSync(result);
        if (isMenu) putHighlight(result);
        return result;
    }
};

}   // namespace

Bytes referenceTitlePack(const NavSpec& given, uint64_t index, const Bytes& before)
{
    return Rules(given, false, index).pack(before);
}

Bytes referenceMenuPack(const NavSpec& given, uint64_t index, const Bytes& before)
{
    return Rules(given, true, index).pack(before);
}
