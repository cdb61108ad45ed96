#include "tests/video/nav_rig.h"

#include "project/commands.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>

std::vector<VobuRecord> unitRecords(const std::vector<Unit>& units)
{
    std::vector<VobuRecord> records;
    for (const Unit& unit : units) {
        VobuRecord record = {};
        record.sector = record.lastSector = unit.sector;
        record.scr = unit.scr;
        record.firstPts = unit.firstPts;
        record.pictureCount = unit.pictureCount;
        record.vobId = unit.vobId;
        record.cellId = unit.cellId;
        record.firstRefEnd = unit.firstRefEnd;
        record.secondRefEnd = unit.secondRefEnd;
        record.thirdRefEnd = unit.thirdRefEnd;
        record.temporalRef = unit.temporalRef;
        if (!records.empty()) records.back().lastSector = unit.sector - 1;
        records.push_back(record);
    }
    return records;
}

std::vector<VobuRecord> evenUnits(uint64_t count, uint64_t firstPts, uint64_t frameTicks)
{
    std::vector<Unit> units;
    for (uint64_t i = 0; i < count; i++) {
        units.push_back({ .sector = i, .scr = i * 12 * frameTicks, .firstPts = firstPts + i * 12 * frameTicks });
    }
    return unitRecords(units);
}

Bytes NavRun::bytesAt(uint64_t sector, uint64_t at, uint64_t count) const
{
    const uint8_t* from = packAt(sector) + at;
    return Bytes(from, from + count);
}

std::string NavRun::words(uint64_t sector, uint64_t at, uint64_t count) const
{
    std::string text;
    for (uint64_t i = 0; i < count; i++) {
        const Bytes word = bytesAt(sector, at + 4 * i, 4);
        char digits[9];
        std::snprintf(digits, sizeof digits, "%02X%02X%02X%02X", word[0], word[1], word[2], word[3]);
        text += (i ? " " : "") + std::string(digits);
    }
    return text;
}

uint64_t sectorsOf(const NavSpec& given)
{
    if (given.sectors) return given.sectors;
    return given.vobus.empty() ? 0 : given.vobus.back().sector + 1;
}

Bytes navStream(const NavSpec& given)
{
    Bytes stream(sectorsOf(given) * PACK_BYTES);
    for (uint64_t at = 0; at < stream.size(); at += PACK_BYTES) {
        std::memset(&stream[at], int(0x11 + at / PACK_BYTES * 7 % 200), PACK_BYTES);
    }
    for (const VobuRecord& record : given.vobus) {
        if ((record.sector + 1) * PACK_BYTES > stream.size()) continue;
        Bytes pack = dirtyNavPack({ record.scr, 0 }, uint8_t(0x80 | record.sector));
        pack[23] = 0xFE;   // audio bound 63, and two bits that are not its own
        std::copy(pack.begin(), pack.end(), stream.begin() + std::ptrdiff_t(record.sector * PACK_BYTES));
    }
    return stream;
}

NavRun setupTitle(const NavSpec& given)
{
    const TempDir folder;
    const RunRoot run(given.standard);
    Sources sources;
    const Bytes before = navStream(given);
    writeSources(sources, folder, before, given.cuts);
    const List<VobuRecord> vobus(given.vobus);
    const List<StreamPackRecord> packs(given.packs);
    const uint64_t result = orvSetupMovieA(&run.context->head, given.standard, given.audioCount, sources.slots,
                                           vobus.block, packs.block, nullptr, 0);
    uint64_t from = 0;
    for (uint64_t i = 0; i <= given.cuts.size(); i++) {
        const uint64_t to = i < given.cuts.size() ? given.cuts[i] : before.size();
        EXPECT_EQ(readFile(sources.paths[i]).size(), to - from) << "file " << i;
        from = to;
    }
    return { result, before, sources.read() };
}

NavRun setupMenu(const NavSpec& given)
{
    const TempDir folder;
    const RunRoot run(given.standard);
    const std::u16string path = folder / u"VTS_01_0.VOB";
    const Bytes before = navStream(given);
    writeFile(path, before);
    const List<VobuRecord> vobus(given.vobus);
    const List<StreamPackRecord> packs(given.packs);
    const uint64_t result = orvSetupMenu(&run.context->head, given.audioCount, given.subPictureCount,
                                         given.menus.empty() ? nullptr : given.menus.data(), given.menus.size(),
                                         given.standard, path.c_str(), vobus.block, packs.block);
    return { result, before, readFile(path) };
}

std::string strayChanges(const NavSpec& given, const NavRun& run)
{
    if (run.before.size() != run.after.size()) return "the size changed";
    std::set<uint64_t> navSectors;
    for (const VobuRecord& record : given.vobus) navSectors.insert(record.sector);
    std::string text;
    for (uint64_t at = 0; at < run.before.size() && text.size() < 100; at += PACK_BYTES) {
        const uint64_t end = std::min<uint64_t>(at + PACK_BYTES, run.before.size());
        if (navSectors.count(at / PACK_BYTES) || std::memcmp(&run.before[at], &run.after[at], end - at) == 0) continue;
        for (uint64_t byte = at; byte < end; byte++) {
            if (run.before[byte] != run.after[byte]) text += std::to_string(byte) + " ";
        }
    }
    return text;
}

// ---- lists that several tests fill --------------------------------------------------------------------------------

NavSpec threeUnits()
{
    NavSpec given;
    given.audioCount = 2;
    given.vobus = unitRecords({
        { .sector = 0,
          .scr = 0,
          .firstPts = 36000,
          .pictureCount = 12,
          .firstRefEnd = 1,
          .secondRefEnd = 2,
          .temporalRef = 2 },
        { .sector = 3,
          .scr = 43200,
          .firstPts = 79200,
          .pictureCount = 15,
          .firstRefEnd = 2,
          .secondRefEnd = 3,
          .thirdRefEnd = 3,
          .temporalRef = 2 },
        { .sector = 7, .scr = 97200, .firstPts = 133200, .pictureCount = 5, .temporalRef = 2 },
    });
    given.packs = {
        { 2, 28800, PACK_AC3, 0, 0, 1 },  { 2, 30000, PACK_LPCM, 1, 0, 1 }, { 5, 72000, PACK_AC3, 0, 0, 1 },
        { 8, 126000, PACK_AC3, 0, 0, 1 }, { 8, 160000, PACK_AC3, 0, 0, 1 },
    };
    given.sectors = 9;
    return given;
}

NavSpec oneMenu(const MenuDesc& menu, int64_t standard)
{
    NavSpec given;
    given.standard = standard;
    given.vobus = unitRecords({ { .sector = 0, .firstPts = 36000 } });
    given.menus = { menu };
    return given;
}

ButtonDesc someButton()
{
    ButtonDesc button = {};
    button.xStart = 0x123;
    button.xEnd = 0x2CD;
    button.yStart = 90;
    button.yEnd = 495;
    button.autoAction = 1;
    button.color = 2;
    button.upLink = 0x11;
    button.downLink = 0x12;
    button.leftLink = 0x13;
    button.rightLink = 0x14;
    button.command = VM_LINK_PGCN;
    button.param1 = 7;
    return button;
}

MenuDesc menuOf(uint64_t buttonCount, const ButtonDesc& button)
{
    MenuDesc menu = {};
    menu.buttonCount = buttonCount;
    for (uint64_t i = 0; i < buttonCount; i++) menu.buttons[i] = button;
    for (uint64_t i = 0; i < 24; i++) menu.colorSets[i / 8][i % 8] = uint8_t(0xC0 + i);
    return menu;
}

std::string differencesIn(const NavRun& run, uint64_t sector, const std::vector<PackBytes>& named)
{
    const Bytes before(run.before.begin() + std::ptrdiff_t(sector * PACK_BYTES), run.before.end());
    return differences(run.packAt(sector), packOf(before, named));
}
