#include "tests/host/scan_stream.h"

#include <algorithm>

namespace {

void putBig(Bytes& bytes, uint64_t at, uint64_t value)
{
    for (uint64_t i = 0; i < 4; i++) bytes.at(at + i) = uint8_t(value >> (24 - 8 * i));
}

uint8_t decimal(uint64_t number)
{
    return uint8_t(number / 10 * 16 + number % 10);
}

/** Time code of a count of pictures, 25 a second. */
uint64_t timeCode(uint64_t pictures)
{
    const uint64_t seconds = pictures / 25;
    return uint64_t(decimal(seconds / 3600)) << 24 | uint64_t(decimal(seconds / 60 % 60)) << 16 |
           uint64_t(decimal(seconds % 60)) << 8 | 0x40 | decimal(pictures % 25);
}

}   // namespace

Bytes scanStream(const std::vector<ScanUnit>& units)
{
    Bytes stream;
    uint64_t start = 9000, elapsed = 0;
    for (const ScanUnit& unit : units) {
        const bool last = &unit == &units.back();
        start = unit.start.value_or(start);
        const uint64_t end = start + unit.pictures * unit.ticks;
        Bytes nav = navPack({ .scr = start - std::min<uint64_t>(start, 9000) }, stream.size() / PACK_BYTES);
        putBig(nav, 57, start);
        putBig(nav, 61, end);
        putBig(nav, 65, last || unit.ends ? end : 0);
        putBig(nav, 69, timeCode(unit.elapsed.value_or(elapsed)));
        putBig(nav, 1039, unit.lastSector.value_or(unit.sectors - 1));
        putBig(nav, 1059, timeCode(unit.elapsed.value_or(elapsed)));
        stream += nav;
        for (uint64_t i = 1; i < unit.sectors; i++) stream += videoPack(Bytes(pesCapacity(), uint8_t(i)));
        start = end;
        elapsed += unit.pictures;
    }
    return stream;
}

std::vector<ScanUnit> scanUnits(uint64_t count, const ScanUnit& each)
{
    return std::vector<ScanUnit>(count, each);
}

void patch(Bytes& bytes, uint64_t at, std::string_view hex)
{
    const Bytes with = fromHex(hex);
    std::copy(with.begin(), with.end(), bytes.begin() + std::ptrdiff_t(at));
}
