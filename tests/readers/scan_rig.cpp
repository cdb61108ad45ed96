#include "tests/readers/scan_rig.h"

#include <dvdread/nav_read.h>

#include <algorithm>
#include <map>
#include <utility>

namespace fs = std::filesystem;

// ---- material -----------------------------------------------------------------------------------------------------

constexpr uint64_t SECTOR = 2048;

/** NTSC: groups of 15 pictures. PAL: groups of 15 and of 10, 80 seconds each by turns; behind the first half minute
   some are cut short, so that units lie apart by any number of pictures, just as far as a pointer asks and just
   farther. */
static std::string picture(Standard standard)
{
    if (standard == NTSC) return "testsrc2=s=352x240:r=30000/1001 -frames:v 2250 -g 15";
    return "testsrc2=s=352x288:r=25 -frames:v 7500 -g 15 -force_key_frames"
           " 'expr:eq(mod(n,10),0)*mod(floor(n/2000),2)+gte(n,800)*eq(mod(n,122),0)'";
}

const LongStream& longStream(Standard standard)
{
    static std::map<Standard, LongStream> made;
    LongStream& stream = made[standard];
    if (stream.program.empty()) {
        stream.video = shelve({});
        stream.pictures = standard == PAL ? 7500 : 2250;
        runEncoder("-f lavfi -i " + picture(standard) +
                   " -c:v mpeg2video -b:v 300k -maxrate 2000k -bufsize 1835k -bf 2 -f mpeg2video " +
                   stream.video.string());
        stream.sound = realSound("-c:a ac3 -b:a 96k -ac 2", "ac3", standard == PAL ? 300 : 75);
        stream.program =
            multiplex({ { ORV_MUX_VIDEO, bytesOf(stream.video) }, { ORV_MUX_AC3, bytesOf(stream.sound), {}, true } });
        stream.movie = shelve(stream.program);
    }
    return stream;
}

// ---- navigation packs ---------------------------------------------------------------------------------------------

std::vector<HeadPack> navsOf(const Bytes& program)
{
    constexpr uint8_t SYSTEM[] = { 0, 0, 1, 0xBB }, PCI[] = { 0, 0, 1, 0xBF, 3, 0xD4 },
                      DSI[] = { 0, 0, 1, 0xBF, 3, 0xFA };
    std::vector<HeadPack> navs;
    for (uint64_t at = 0; at + SECTOR <= program.size(); at += SECTOR) {
        const uint8_t* pack = program.data() + at;
        if (!std::equal(SYSTEM, SYSTEM + 4, pack + 14) || !std::equal(PCI, PCI + 6, pack + 38) ||
            !std::equal(DSI, DSI + 6, pack + 1024)) {
            continue;
        }
        unsigned char bytes[SECTOR];
        std::copy_n(pack, SECTOR, bytes);
        // Multiplexed packs announce a highlight of no buttons, which the reader would complain of.
        std::fill(bytes + 141, bytes + 1024, uint8_t(0));
        HeadPack& nav = navs.emplace_back();
        nav.sector = at / SECTOR;
        navRead_PCI(&nav.pci, bytes + 45);
        navRead_DSI(&nav.dsi, bytes + DSI_START_BYTE);
    }
    return navs;
}

static uint64_t twoDigits(uint8_t packed)
{
    return uint64_t(packed >> 4) * 10 + (packed & 15);
}

/** Frames of a time code of 25 a second. */
static uint64_t framesOf(const dvd_time_t& time)
{
    EXPECT_EQ(time.frame_u >> 6, 1);
    const uint64_t seconds = twoDigits(time.hour) * 3600 + twoDigits(time.minute) * 60 + twoDigits(time.second);
    return seconds * 25 + twoDigits(time.frame_u & 0x3F);
}

std::vector<ScanUnit> unitsOf(const Bytes& program)
{
    const std::vector<HeadPack> navs = navsOf(program);
    std::vector<ScanUnit> units;
    for (size_t i = 0; i < navs.size(); i++) {
        const uint64_t end = i + 1 < navs.size() ? navs[i + 1].sector : program.size() / SECTOR;
        const pci_gi_t& pci = navs[i].pci.pci_gi;
        units.push_back({ navs[i].sector, end - navs[i].sector, pci.vobu_s_ptm, pci.vobu_e_ptm, framesOf(pci.e_eltm) });
    }
    return units;
}

// ---- the pass -----------------------------------------------------------------------------------------------------

static uint64_t keepUnit(const uint8_t* data, uint64_t bytes, uint64_t user)
{
    Scanned* scanned = reinterpret_cast<Scanned*>(user);
    scanned->program.insert(scanned->program.end(), data, data + bytes);
    scanned->calls.push_back(bytes);
    return 0;
}

static void scanAll(NppScan* handle, const Bytes& program, const std::vector<uint64_t>& pieces, Scanned* scanned)
{
    uint64_t fed = 0;
    for (size_t i = 0; fed < program.size(); i++) {
        const uint64_t size = std::min<uint64_t>(pieces[i % pieces.size()], program.size() - fed);
        // A piece of its own: what lies behind its end is nobody's.
        const Bytes piece(program.begin() + std::ptrdiff_t(fed), program.begin() + std::ptrdiff_t(fed + size));
        ASSERT_EQ(nppScanBuffer(handle, piece.data(), piece.size()), 0u) << fed;
        fed += size;
        uint64_t held = 0;
        ASSERT_EQ(nppGetBuffer(handle, &held), 0u);
        scanned->steps.push_back({ fed, scanned->program.size(), scanned->calls.size(), held });
    }
}

Scanned scan(const Bytes& program, const CellRule& rule, const std::vector<uint64_t>& pieces)
{
    Scanned scanned;
    scanned.file = shelve({});
    const std::string path = scanned.file.string();
    std::vector<uint64_t> list = rule.list;
    NppScanDesc desc = {};
    desc.path = path.c_str();
    desc.cellMode = list.empty() ? ORV_NPP_CELLS_BY_INTERVAL : ORV_NPP_CELLS_BY_LIST;
    desc.cellInterval = rule.interval;
    desc.cellList = list.data();
    desc.cellListCount = list.size();
    NppScan* handle = nullptr;
    EXPECT_EQ(nppBeginStreamScan(&desc, keepUnit, reinterpret_cast<uint64_t>(&scanned), &handle), 0u);
    list.assign(list.size(), 0);   // it was copied
    desc = {};
    if (handle) {
        scanAll(handle, program, pieces, &scanned);
        EXPECT_EQ(nppEndStreamScan(handle), 0u);
    }
    return scanned;
}

// ---- journeys -----------------------------------------------------------------------------------------------------

/** First unit that begins so many ticks after the first one, or later. */
static size_t unitAt(const std::vector<ScanUnit>& units, uint64_t ticks)
{
    size_t i = 0;
    while (i < units.size() && units[i].start < units[0].start + ticks) i++;
    return i;
}

/** Four cells: a long one, one of 25 units, one of a single unit, and the rest. An entry is the last tick of its cell.
 */
static void divideByList(Journey* journey, uint64_t longTicks)
{
    const std::vector<ScanUnit>& units = journey->units;
    const size_t second = unitAt(units, longTicks), third = second + 25;
    ASSERT_LT(third + 2, units.size());
    journey->firsts = { 0, second, third, third + 1 };
    constexpr uint64_t NOT_LOOKED_AT = UINT64_MAX;
    journey->rule.list = { NOT_LOOKED_AT, units[second - 1].start, units[third].start - 1, units[third].start };
}

static void divideByInterval(Journey* journey, uint64_t interval)
{
    const std::vector<ScanUnit>& units = journey->units;
    journey->rule.interval = interval;
    journey->firsts = { 0 };
    for (uint64_t border = interval; border <= units.back().start; border += interval) {
        size_t i = journey->firsts.back();
        while (units[i].start < border) i++;
        journey->firsts.push_back(i);
    }
}

const Journey& journey(Standard standard, Division division)
{
    static std::map<std::pair<Standard, Division>, Journey> made;
    Journey& journey = made[{ standard, division }];
    if (!journey.stream) {
        constexpr uint64_t SECOND = 90000;
        journey.stream = &longStream(standard);
        journey.units = unitsOf(journey.stream->program);
        if (division == BY_LIST) {
            divideByList(&journey, (standard == PAL ? 250 : 40) * SECOND);
        } else {
            divideByInterval(&journey, (standard == PAL ? 140 : 20) * SECOND);
        }
        journey.scanned = scan(journey.stream->program, journey.rule, { 1, 2047, 2049, 777, 65537, 6144, 100003, 19 });
        journey.movie = shelve(journey.scanned.program);
    }
    return journey;
}
