// npp_fuzz.cpp: any bytes as a stream and as the host that has it scanned. Whatever the stream: the packs come out as
// they went in but for the fields that a scan fills, whole units in order, none twice; and a whole scan leaves out
// none.
//   0       bit 0: cells by list; bit 1: the host refuses a unit
//   1       cells: entries of the list, or bytes of the interval less one
//   2       the unit that is refused
//   3, 4    the pieces: their largest size less one, low byte first
//   5 on    the list, four bytes an entry; or the interval
//   then    packs, each: what (PACKS, bits 0 and 1) and bit 2, the packs are repeated by the byte that follows; then
//           what the kind of pack says

#include "fuzz/fuzz.h"

#include "tests/support/packs.h"

#include <orven/scan.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

// The navigation pack has start, length, elapsed time, four bytes each and high byte first, step of four bytes from one
// to the next, VOB and cell of a byte each; the plain pack a byte to fill it; the dirty one and the bad one 30 bytes,
// spread over the pack. The bad pack has no start code.
enum Packs : uint8_t { NAVIGATION, PLAIN, DIRTY, BAD };

constexpr uint64_t HEAD_BYTES = 5, SPREAD_BYTES = 30;
constexpr uint64_t MOST_PACKS = 3000;   // of one input, so that each comes to its end soon
constexpr uint64_t MOST_KEPT = 40;      // scans of one run that could not be ended: nothing releases them
constexpr uint64_t REFUSED = 0x4711;
constexpr uint64_t NOT_A_PACK = 0x8400232A, OVERFLOW_RESULT = 0x84000BC9;
constexpr uint64_t MOST_HELD = 1024, MOST_UNIT = 768;

struct Input {
    const uint8_t* data;
    size_t size, at;

    uint64_t number(size_t bytes)   // high byte first; missing bytes are 0
    {
        uint64_t value = 0;
        for (size_t i = 0; i < bytes; i++) value = value << 8 | (at < size ? data[at++] : 0u);
        return value;
    }
};

// A host, and the stream that it gives.
struct Host {
    std::vector<Bytes> packs;
    std::vector<uint64_t> starts;   // packs that begin a unit
    uint64_t units, packsOut;
    uint64_t refused;   // number of the unit, all ones for none
    bool cut;           // the scan failed: the unit that was under way is not whole
};

static std::vector<NppScan*>& keptScans()
{
    static std::vector<NppScan*>* const kept = new std::vector<NppScan*>;
    return *kept;
}

static bool isNavigation(const Bytes& pack)
{
    return !memcmp(pack.data() + 14, "\x00\x00\x01\xBB", 4) && !memcmp(pack.data() + 40, "\x01\xBF\x03\xD4", 4) &&
           !memcmp(pack.data() + 1026, "\x01\xBF\x03\xFA", 4);
}

static bool isFilled(uint64_t at)
{
    return (at >= 69 && at < 73) || (at >= 1058 && at < 1063) || (at >= 1265 && at < 1433);
}

static uint64_t take(const uint8_t* data, uint64_t bytes, uint64_t user)
{
    Host* const host = reinterpret_cast<Host*>(user);
    if (host->units >= host->starts.size() || host->units > host->refused) abort();   // none behind a refused one
    const uint64_t first = host->starts[host->units];
    const uint64_t end = host->units + 1 < host->starts.size() ? host->starts[host->units + 1] : host->packs.size();
    const uint64_t count = bytes / PACK_BYTES;
    if (!bytes || bytes % PACK_BYTES || count > MOST_UNIT || first != host->packsOut) abort();
    if (count > end - first || (count < end - first && !host->cut)) abort();
    for (uint64_t i = 0; i < count; i++) {
        const uint8_t* const got = data + i * PACK_BYTES;
        const Bytes& given = host->packs[first + i];
        if (!memcmp(got, given.data(), PACK_BYTES)) continue;
        for (uint64_t at = 0; at < PACK_BYTES; at++)
            if (got[at] != given[at] && (i > 0 || !isFilled(at))) abort();
    }
    host->packsOut += count;
    return host->units++ == host->refused ? REFUSED : 0;
}

// ---- the stream -------------------------------------------------------------------------------------------------

static void putBig(Bytes& pack, size_t at, uint64_t value)
{
    for (size_t i = 0; i < 4; i++) pack[at + i] = uint8_t(value >> (24 - 8 * i));
}

static void addNavigation(Host& host, Input& input, uint64_t times)
{
    const Bytes blank = navPack({ .scr = 0 });
    uint64_t start = input.number(4);
    const uint64_t length = input.number(4), elapsed = input.number(4), step = input.number(4);
    const uint64_t vob = input.number(1), cell = input.number(1);
    for (; times > 0; times--, start += step) {
        Bytes pack = blank;
        putBig(pack, 57, start);
        putBig(pack, 61, start + length);
        putBig(pack, 69, elapsed);
        pack[1056] = uint8_t(vob);
        pack[1058] = uint8_t(cell);
        host.packs.push_back(pack);
    }
}

static void addSpread(Host& host, Input& input, uint64_t times, bool bad)
{
    Bytes pack = bad ? Bytes(PACK_BYTES, 0) : navPack({ .scr = 0 });
    // The places that a scan looks at, and some that it does not.
    static const size_t PLACES[SPREAD_BYTES] = { 4,    14,   17,  40,  43,   57,   58,   60,   61,   64,
                                                 69,   70,   71,  72,  1026, 1029, 1039, 1042, 1055, 1056,
                                                 1058, 1059, 500, 700, 1265, 1269, 1345, 1349, 1429, 2047 };
    for (const size_t place : PLACES) pack[place] ^= uint8_t(input.number(1));
    host.packs.insert(host.packs.end(), times, pack);
}

static void makeStream(Host& host, Input& input)
{
    while (input.at < input.size && host.packs.size() < MOST_PACKS) {
        const uint64_t what = input.number(1), times = what & 4 ? input.number(1) + 1 : 1;
        switch (Packs(what & 3)) {
        case NAVIGATION: addNavigation(host, input, times); break;
        case PLAIN: {
            Bytes pack(PACK_BYTES, uint8_t(input.number(1)));
            const Bytes start = fromHex("00 00 01 BA 44");
            std::copy(start.begin(), start.end(), pack.begin());
            host.packs.insert(host.packs.end(), times, pack);
            break;
        }
        case DIRTY: addSpread(host, input, times, false); break;
        case BAD: addSpread(host, input, 1, true); break;
        }
    }
    for (uint64_t i = 0; i < host.packs.size(); i++)
        if (i == 0 || isNavigation(host.packs[i])) host.starts.push_back(i);
}

// ---- the scan ---------------------------------------------------------------------------------------------------

/** Whether a scan may fail so at the packs that it has seen. */
static bool mayFail(const Host& host, uint64_t result, uint64_t packs)
{
    if (result == REFUSED) return host.units == host.refused + 1;
    const Bytes& last = host.packs[packs - 1];
    if (result == NOT_A_PACK) return memcmp(last.data(), "\x00\x00\x01\xBA", 4) != 0;
    if (result != OVERFLOW_RESULT) return false;
    const auto behind = std::upper_bound(host.starts.begin(), host.starts.end(), packs - 1);
    const uint64_t units = uint64_t(behind - host.starts.begin());
    return packs - host.starts[units - 1] > MOST_UNIT || units - host.units > MOST_HELD;
}

static void checkHeld(NppScan* scan, const Host& host, uint64_t packs)
{
    uint64_t held = 0;
    if (nppGetBuffer(scan, &held)) abort();
    const uint64_t units =
        uint64_t(std::lower_bound(host.starts.begin(), host.starts.end(), packs) - host.starts.begin());
    if (units - host.units <= MOST_HELD && held != (packs - host.packsOut) * PACK_BYTES - 1) abort();
}

/** Feeds all in pieces. @return the first failure */
static uint64_t feed(NppScan* scan, const Host& host, uint64_t largest)
{
    Bytes stream;
    for (const Bytes& pack : host.packs) stream += pack;
    uint64_t random = largest;
    for (uint64_t at = 0, size = 0; at < stream.size(); at += size) {
        random = random * 6364136223846793005 + 1442695040888963407;
        size = std::min<uint64_t>(1 + (random >> 33) % largest, stream.size() - at);
        const std::unique_ptr<uint8_t[]> exact = std::make_unique<uint8_t[]>(size);
        memcpy(exact.get(), stream.data() + at, size);
        const uint64_t result = nppScanBuffer(scan, exact.get(), size);
        if (!result) {
            checkHeld(scan, host, (at + size) / PACK_BYTES);
            continue;
        }
        bool possible = false;   // at one of the packs that this piece completed
        for (uint64_t pack = at / PACK_BYTES; pack < (at + size) / PACK_BYTES; pack++)
            possible = possible || mayFail(host, result, pack + 1);
        if (!possible) abort();
        return result;
    }
    return 0;
}

static void checkFile(const std::u16string& path, const Host& host)
{
    const Bytes file = readFile(path);
    uint64_t navigation = 0;
    for (const Bytes& pack : host.packs) navigation += isNavigation(pack);
    const uint64_t count = host.packs.size();
    const uint8_t head[8] = { 1, 0, 0, 0, uint8_t(count), uint8_t(count >> 8), 0, 0 };
    if (file.size() != 8 + 96 * navigation || memcmp(file.data(), head, 8)) abort();
}

static void finish(NppScan* scan, Host& host, const std::u16string& path, uint64_t result)
{
    host.cut = result != 0;
    const uint64_t end = nppEndStreamScan(scan);
    if (end) {
        // What was refused blocks the end, and so does the unit that is one too many.
        if (end != OVERFLOW_RESULT && end != REFUSED) abort();
        if (nppEndStreamScan(scan) != OVERFLOW_RESULT) abort();
        keptScans().push_back(scan);
        return;
    }
    if (result == REFUSED || host.units > host.refused) abort();
    if (result) return;   // a part came out, whole units as far as it went
    if (host.packsOut != host.packs.size() || host.units != host.starts.size()) abort();
    for (const Bytes& pack : host.packs)
        if (memcmp(pack.data(), "\x00\x00\x01\xBA", 4)) abort();
    checkFile(path, host);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < HEAD_BYTES) return 0;
    const bool room = keptScans().size() < MOST_KEPT;
    const uint64_t cells = data[1];
    const uint64_t largest = 1 + data[3] + 256u * data[4];
    Input input = { data, size, HEAD_BYTES };
    Host host = {};
    host.refused = data[0] & 2 && room ? data[2] : ~uint64_t(0);
    std::vector<uint64_t> list;
    NppScanDesc desc = {};
    if (data[0] & 1) {
        desc.cellMode = ORV_NPP_CELLS_BY_LIST;
        for (uint64_t i = 0; i < cells; i++) list.push_back(input.number(4));
        desc.cellList = list.data();
        desc.cellListCount = list.size();
    } else {
        desc.cellInterval = input.number(cells % 8 + 1);
    }
    makeStream(host, input);
    if (host.starts.size() > MOST_HELD && !room) return 0;

    const TempDir folder;
    const std::string path = toUtf8(folder / u"scan");
    desc.path = path.c_str();
    NppScan* scan = nullptr;
    const uint64_t begun = nppBeginStreamScan(&desc, take, reinterpret_cast<uint64_t>(&host), &scan);
    if ((begun != 0) != (desc.cellMode == 0 && desc.cellInterval == 0)) abort();
    if (begun) return 0;
    finish(scan, host, folder / u"scan", feed(scan, host, largest));
    return 0;
}

// ---- seeds ------------------------------------------------------------------------------------------------------

static Bytes number(uint64_t value)
{
    return { uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value) };
}

static Bytes units(uint8_t times, uint64_t start, uint64_t step, uint8_t vob = 1)
{
    return Bytes{ NAVIGATION | 4, uint8_t(times - 1) } + number(start) + number(43200) + fromHex("00 00 01 52") +
           number(step) + Bytes{ vob, 1 };
}

static Bytes unit(uint64_t start, uint8_t plainPacks)
{
    Bytes bytes = units(1, start, 0);
    if (plainPacks) bytes += Bytes{ PLAIN | 4, uint8_t(plainPacks - 1), 0xA5 };
    return bytes;
}

std::vector<Bytes> fuzzSeeds()
{
    const Bytes everySecond = Bytes{ 0, 3, 0, 0xFF, 0x1F } + number(90000);
    const Bytes oneCell = Bytes{ 0, 3, 0, 0xFF, 0xFF } + number(0xFFFFFFFF);
    const Bytes byList = Bytes{ 1, 4, 0, 0xFF, 0x07 } + number(0) + number(100000) + number(50000) + number(300000);
    const Bytes refused = Bytes{ 2, 3, 2, 0, 0x10 } + number(90000);
    const Bytes dirty = Bytes{ DIRTY } + Bytes(SPREAD_BYTES, 0), bad = Bytes{ BAD } + Bytes(SPREAD_BYTES, 0);
    Bytes mixed;
    for (uint8_t i = 0; i < 20; i++) mixed += unit(46000 * i, i % 5);
    return {
        everySecond + mixed + unit(0, 3) + mixed,
        oneCell + units(200, 0, 100000) + mixed,
        oneCell + Bytes{ PLAIN | 4, 2, 1 } + units(40, 0, 11000000),
        byList + mixed + units(9, 1000, 45001, 2) + dirty + mixed + dirty,
        refused + mixed,
        everySecond + mixed + bad + mixed,
        oneCell + unit(0, 255) + unit(1, 255) + Bytes{ PLAIN | 4, 255, 7, PLAIN | 4, 254, 7, PLAIN | 4, 255, 7 },
        oneCell + units(255, 0, 1) + units(255, 300, 1) + units(255, 600, 1) + units(255, 900, 1) + units(4, 1200, 1),
    };
}
