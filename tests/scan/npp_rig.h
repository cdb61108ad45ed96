// npp_rig.h: streams for the scan, made from records, and a host that feeds them and keeps what comes out.
#pragma once

#include "tests/support/files.h"

#include <orven/scan.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// ---- streams ----------------------------------------------------------------------------------------------------

// A unit as a multiplexer leaves it: a navigation pack and packs behind it.
struct ScanUnit {
    uint64_t start = 0;                         // ticks, where its display begins
    uint64_t packs = 1;                         // with the navigation pack
    uint64_t length = 43200;                    // ticks of display
    std::string_view elapsed = "00 00 00 40";   // the word of elapsed time in both packets
    uint64_t vob = 1;                           // 16 bits
    std::optional<uint64_t> declaredEnd = {};   // last pack counted from the navigation pack, where it is no truth
    std::optional<std::string_view> elapsedDsi = {};   // of the second packet, where it is another
};

/** A pack that is none of navigation, unlike that of any other number. */
Bytes plainPack(uint64_t number);
Bytes unitBytes(const ScanUnit& unit, uint64_t firstPack);
Bytes streamOf(const std::vector<ScanUnit>& units);
/** count units of one pack each, this many ticks apart. */
std::vector<ScanUnit> evenUnits(uint64_t count, uint64_t ticks);

// ---- bytes ------------------------------------------------------------------------------------------------------

Bytes slice(const Bytes& bytes, uint64_t from, uint64_t count);
void overwrite(Bytes& bytes, uint64_t at, std::string_view hex);
std::string hexAt(const Bytes& bytes, uint64_t at, uint64_t count);
/** Big-endian words of four bytes as text; equal ones in a row as in "3FFFFFFF*18". */
std::string wordsAt(const Bytes& bytes, uint64_t at, uint64_t count);
/** The first few places at which bytes differ, by pack and offset; empty if nowhere. */
std::string firstDifferences(const Bytes& got, const Bytes& expected);

// ---- the host ---------------------------------------------------------------------------------------------------

struct Cells {
    uint64_t mode = ORV_NPP_CELLS_BY_INTERVAL;
    uint64_t interval = uint64_t(1) << 40;   // one cell
    std::vector<uint64_t> list = {};
};

Cells cellsEvery(uint64_t ticks);
Cells cellsUpTo(const std::vector<uint64_t>& list);

// Ends its scan when it goes. A scan that can't be ended is kept, since nothing releases it.
struct ScanHost {
    explicit ScanHost(const Cells& cells = {});
    ~ScanHost();
    ScanHost(const ScanHost&) = delete;
    ScanHost& operator=(const ScanHost&) = delete;

    /** Hands bytes over in pieces of this size, 0: in one; stops at the first result other than 0 and gives it. */
    uint64_t feed(const Bytes& bytes, uint64_t chunk = 0);
    uint64_t end();
    uint64_t held() const;   // what nppGetBuffer says
    Bytes file() const;      // of a scan that has ended
    Bytes record(uint64_t index) const;
    uint64_t recordField(uint64_t index, uint64_t field) const;
    Bytes output() const;   // all units

    TempDir folder;
    std::u16string path;
    NppScan* handle = nullptr;
    std::vector<Bytes> units;                                 // as they came out
    std::function<uint64_t(const Bytes&)> onUnit = nullptr;   // its value is the callback's
};

/** Feeds all and ends; both have to succeed. */
void runScan(ScanHost& host, const Bytes& stream, uint64_t chunk = 0);

/** A path as the wide functions take it. */
std::basic_string<OrvWChar> wideName(const std::u16string& path);
