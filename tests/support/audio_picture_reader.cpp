// audio_picture_reader.cpp: stills and menus of a DVD-Audio disc, against their tables.
#include "tests/support/audio_disc_view.h"
#include "tests/support/sub_picture_decoder.h"

#include <algorithm>

namespace {

void takeSubPicture(const View& vob, const Octets& unit, uint64_t height, const std::string& whose)
{
    const DecodedSubPicture picture = decodeSubPicture(unit, height);
    for (const std::string& fault : picture.faults) vob.fault("sub-picture of ", whose, ": ", fault);
    for (const uint8_t contrast : picture.contrasts) {
        if (contrast) vob.fault("sub-picture of ", whose, " shows by itself");
    }
}

// Stream id and payload of a pack's packet; what follows it has to be padding up to the pack's end.
struct Packet {
    uint64_t id = 0, flags = 0;
    uint64_t pts = 0, dts = 0;
    uint64_t from = 0, end = 0;   // offsets of the payload
};

uint64_t stamp(const View& vob, uint64_t at)
{
    const uint64_t bits = vob.get(at, 5);
    return (bits >> 33 & 7) << 30 | (bits >> 17 & 0x7FFF) << 15 | (bits >> 1 & 0x7FFF);
}

Packet packetOf(const View& vob, uint64_t start)
{
    Packet packet;
    if (vob.get(start, 4) != 0x1BA) vob.fault("no pack at ", start);
    if (vob.get(start + 14, 3) != 1) vob.fault("no packet at ", start);
    packet.id = vob.get(start + 17, 1);
    packet.flags = vob.get(start + 21, 1) >> 6;
    packet.from = start + 23 + vob.get(start + 22, 1);
    packet.end = start + 20 + vob.get(start + 18, 2);
    if (packet.flags >= 2) packet.pts = stamp(vob, start + 23);
    if (packet.flags == 3) packet.dts = stamp(vob, start + 28);
    const uint64_t stop = start + SECTOR;
    if (packet.end > stop || packet.from > packet.end) {
        vob.fault("a packet leaves its pack, offset ", start);
        packet.from = packet.end = stop;
    } else if (packet.end < stop) {
        vob.expect(packet.end, 4, 0x1BE, "padding");
        vob.expect(packet.end + 4, 2, stop - packet.end - 6, "length of the padding");
    }
    return packet;
}

// ---- stills ---------------------------------------------------------------------------------------------------------

bool beginsStill(const View& vob, uint64_t start)
{
    return vob.get(start, 4) == 0x1BA && vob.get(start + 14, 4) == 0x1BB;
}

void checkStillNav(const View& vob, uint64_t start, bool hasSubPicture)
{
    vob.expect(start + 18, 2, 15, "length of the system header");
    vob.expect(start + 35, 4, 0x1BF, "packet of a still");
    vob.expect(start + 39, 2, 745, "length of the packet of a still");
    vob.expect(start + 41, 1, 2, "kind of the packet of a still");
    vob.expect(start + 43, 1, hasSubPicture, "highlight of a still");
    vob.expect(start + 44, 4, 36000, "start of a highlight");
    vob.expect(start + 786, 4, 0x1BE, "padding of a still");
    vob.expect(start + 790, 2, 1256, "length of the padding of a still");
}

// The packs of one still behind its first, from sector on: sub-picture, video, an end. Gives the sector behind them.
uint64_t readStill(const View& vob, uint64_t sector, uint64_t frameTicks, uint64_t height, AudioDiscReport& report)
{
    const uint64_t nav = sector++ * SECTOR, sectors = vob.bytes->size() / SECTOR;
    Octets unit;
    uint64_t video = 0;
    for (; sector < sectors && vob.get(sector * SECTOR, 4) != 0x1B9; sector++) {
        const Packet packet = packetOf(vob, sector * SECTOR);
        const bool isVideo = packet.id == 0xE0;
        const bool first = isVideo ? video == 0 : unit.empty();
        if (!isVideo && packet.id != 0xBD) vob.fault("a stream of nobody, sector ", sector);
        if (!isVideo && video) vob.fault("a sub-picture behind the video, sector ", sector);
        if (packet.flags != (first ? isVideo ? 3u : 2u : 0u)) vob.fault("time stamps of sector ", sector);
        if (first && packet.pts != 18000) vob.fault("time stamp of sector ", sector, " is ", packet.pts);
        if (first && isVideo && packet.dts != 18000 - frameTicks) vob.fault("decoding time of sector ", sector);
        if (isVideo) {
            video++;
            continue;
        }
        vob.expect(packet.from, 1, 0x20, "sub-picture stream");
        unit.insert(unit.end(), vob.bytes->begin() + std::ptrdiff_t(packet.from + 1),
                    vob.bytes->begin() + std::ptrdiff_t(packet.end));
    }
    if (!video) vob.fault("a still without video at ", nav);
    checkStillNav(vob, nav, !unit.empty());
    report.stills++;
    if (!unit.empty()) {
        report.stillSubPictures++;
        takeSubPicture(vob, unit, height, "the still at " + std::to_string(nav));
    }
    if (sector >= sectors) {
        vob.fault("a still without end");
        return sector;
    }
    for (uint64_t i = 4; i < SECTOR; i++) vob.expect(sector * SECTOR + i, 1, 0xFF, "end of a still");
    return sector + 1;
}

}   // namespace

void checkStills(const View& ifo, const View& vob, bool pal)
{
    AudioDiscReport& report = *static_cast<AudioDiscReport*>(ifo.report);
    const uint64_t sectors = vob.bytes->size() / SECTOR;
    if (vob.bytes->size() % SECTOR) vob.fault("has no whole sectors");
    std::vector<uint64_t> starts;
    for (uint64_t sector = 0; sector < sectors;) {
        if (!beginsStill(vob, sector * SECTOR)) return vob.fault("no still at sector ", sector);
        starts.push_back(sector);
        sector = readStill(vob, sector, pal ? 3600 : 3003, pal ? 576 : 480, report);
    }
    if (ifo.bytes->size() != 2 * SECTOR) return ifo.fault("is of ", ifo.bytes->size(), " bytes");
    const std::string mark = "DVDAUDIOASVS";
    for (uint64_t i = 0; i < mark.size(); i++) ifo.expect(i, 1, uint8_t(mark[i]), "mark");
    ifo.expect(12, 2, 1, "units");
    ifo.expect(14, 2, 0x12, "version");
    ifo.expect(16, 4, 2, "first sector of the VOB");
    ifo.expect(20, 4, (sectors - 1) & 0xFFFFFFFF, "last sector of the VOB");
    for (uint64_t i = 0; i < 16; i++) ifo.expect(32 + 4 * i, 1, 0, "palette");
    ifo.expect(96, 2, starts.size() << 8, "stills");
    ifo.expect(98, 2, 1, "first still");
    if (!ifo.allZero(100, 888)) ifo.fault("middle of the table");
    for (uint64_t i = 0; i < starts.size(); i++) {
        ifo.expect(888 + 2 * i, 2, starts[i] & 0xFFF, "start of a still");
    }
    if (!ifo.allZero(888 + 2 * starts.size(), 2 * SECTOR)) ifo.fault("what lies behind the stills");
}

// ---- menus ----------------------------------------------------------------------------------------------------------

namespace {

Vob readMenuVob(const View& view)
{
    Vob vob;
    vob.sectors = view.bytes->size() / SECTOR;
    if (view.bytes->size() % SECTOR) view.fault("has no whole sectors");
    for (uint64_t sector = 0; sector < vob.sectors; sector++) {
        const uint64_t at = sector * SECTOR;
        if (view.get(at, 4) != 0x1BA) view.fault("no pack at sector ", sector);
        if (view.get(at + 14, 4) != 0x1BB) continue;
        vob.navs.push_back(
            { sector, view.get(at + 1055, 2), view.get(at + 1058, 1), view.get(at + 57, 4), view.get(at + 61, 4) });
    }
    if (vob.navs.empty() || vob.navs[0].sector) view.fault("does not begin with a navigation pack");
    return vob;
}

// A navigation pack in itself: its sector, the end of its unit, no streams of sound.
void checkMenuNav(const View& view, const Vob& vob, uint64_t i, AudioDiscReport& report)
{
    const uint64_t at = vob.navs[i].sector * SECTOR;
    view.expect(at + 23, 1, 0, "sound streams");
    view.expect(at + 38, 4, 0x1BF, "PCI");
    view.expect(at + 45, 4, vob.navs[i].sector, "sector of the PCI");
    view.expect(at + 1024, 4, 0x1BF, "DSI");
    view.expect(at + 1035, 4, vob.navs[i].sector, "sector of the DSI");
    view.expect(at + 1039, 4, vob.behind(i) - vob.navs[i].sector - 1, "end of the unit");
    view.expect(at + 1059, 4, view.get(at + 69, 4), "elapsed time");
    view.expect(at + 158, 2, view.get(at + 158, 1) * 0x101, "buttons");
    if (!view.allZero(at + 1449, at + 1449 + 128)) view.fault("pointers to sub-pictures, sector ", at / SECTOR);
    report.navPacks++;
    report.buttons += view.get(at + 158, 1);
}

// The sub-picture of one menu, from a navigation pack to the one of the next menu.
void checkMenuUnit(const View& view, uint64_t from, uint64_t to, uint64_t height, uint64_t number)
{
    Octets unit;
    for (uint64_t sector = from; sector < to; sector++) {
        if (view.get(sector * SECTOR + 14, 4) != 0x1BD) continue;
        const Packet packet = packetOf(view, sector * SECTOR);
        view.expect(packet.from, 1, 0x20, "sub-picture stream");
        unit.insert(unit.end(), view.bytes->begin() + std::ptrdiff_t(packet.from + 1),
                    view.bytes->begin() + std::ptrdiff_t(packet.end));
    }
    takeSubPicture(view, unit, height, "menu " + std::to_string(number));
    view.report->subPictures++;
}

uint64_t timeCode(uint64_t frames, bool pal)
{
    const uint64_t rate = pal ? 25 : 30, seconds = frames / rate;
    const auto bcd = [](uint64_t n) { return n / 10 << 4 | n % 10; };
    return bcd(seconds / 3600) << 24 | bcd(seconds / 60 % 60) << 16 | bcd(seconds % 60) << 8 | bcd(frames % rate) |
           (pal ? 0x40 : 0xC0);
}

// The chain of menu `number`: the time of its VOB, the place of the unit of its own index.
void checkMenuChain(const View& ifo, uint64_t at, const Vob& vob, uint64_t number, bool pal)
{
    uint64_t frames = 0;
    for (const Nav& nav : vob.navs) {
        if (nav.vob == number) frames += (nav.end - nav.start) / (pal ? 3600 : 3003);
    }
    const uint64_t time = timeCode(frames, pal), cell = at + ifo.get(at + 232, 2), place = at + ifo.get(at + 234, 2);
    ifo.expect(at, 4, 0x0101, "programs and cells of a menu");
    ifo.expect(at + 4, 4, time, "play time of a menu");
    ifo.expect(at + 28, 4, 0x80000000, "sub-picture of a menu");
    ifo.expect(at + 228, 2, 236, "commands of a menu");
    ifo.expect(at + 236, 4, 0x00010001, "commands of a menu");
    ifo.expect(at + 240, 4, 0x00000017, "commands of a menu");
    if (!ifo.allZero(at + 244, at + 260)) ifo.fault("commands of menu ", number);
    ifo.expect(at + ifo.get(at + 230, 2), 2, 0x0100, "program map of a menu");
    ifo.expect(cell, 4, 0x0200FF00, "kind of a menu's cell");
    ifo.expect(cell + 4, 4, time, "play time of a menu's cell");
    if (number > vob.navs.size()) return ifo.fault("menu ", number, " has no unit");
    const Nav& nav = vob.navs[number - 1];
    ifo.expect(cell + 8, 4, nav.sector, "first sector of a menu");
    ifo.expect(cell + 12, 4, 0, "middle of a menu's cell");
    ifo.expect(cell + 16, 4, nav.sector, "last unit of a menu");
    ifo.expect(cell + 20, 4, vob.behind(number - 1) - 1, "last sector of a menu");
    ifo.expect(place, 4, nav.vob << 16 | nav.cell, "numbers of a menu's cell");
}

}   // namespace

void checkAudioMenus(const View& ifo, const View& view, bool pal)
{
    AudioDiscReport& report = *static_cast<AudioDiscReport*>(ifo.report);
    const Vob vob = readMenuVob(view);
    uint64_t count = 0, from = 0;
    for (uint64_t i = 0; i < vob.navs.size(); i++) {
        checkMenuNav(view, vob, i, report);
        const bool last = i + 1 == vob.navs.size();
        if (vob.navs[i].vob != count) {
            if (vob.navs[i].vob != ++count) return view.fault("VOB numbers of sector ", vob.navs[i].sector);
            from = vob.navs[i].sector;
        }
        if (last || vob.navs[i + 1].vob != count) checkMenuUnit(view, from, vob.behind(i), pal ? 576 : 480, count);
    }
    const uint64_t table = SECTOR * ifo.get(204, 4), unit = table + ifo.get(table + 12, 4);
    ifo.expect(table, 4, 0x00010000, "languages");
    ifo.expect(table + 4, 4, 16 + 8 + 298 * count - 1, "last byte of the menus");
    ifo.expect(table + 8, 4, 0x656E0080, "language");
    ifo.expect(unit, 4, count << 16, "menus");
    ifo.expect(unit + 4, 4, 8 + 298 * count - 1, "last byte of the language unit");
    for (uint64_t i = 0; i < count; i++) {
        const uint64_t at = unit + ifo.get(unit + 12 + 8 * i, 4);
        ifo.expect(unit + 8 + 8 * i, 4, 0x82000000, "kind of a menu");
        if (at + 290 > ifo.bytes->size()) {
            report.cut++;   // the file is cut behind whole sectors
            continue;
        }
        checkMenuChain(ifo, at, vob, i + 1, pal);
        report.menus++;
    }
}
