#include "tests/scan/npp_rig.h"

#include "tests/support/packs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>

// ---- streams ----------------------------------------------------------------------------------------------------

namespace {

std::string hexWord(uint64_t value)
{
    char text[16] = {};
    snprintf(text, sizeof(text), "%08lX", static_cast<unsigned long>(value & 0xFFFFFFFF));
    return text;
}

}   // namespace

Bytes plainPack(uint64_t number)
{
    Bytes pack = packHeader({ .scr = number * 7 }) + fromHex("00 00 01 E0 07 EC 81 00 00");
    uint64_t at = pack.size(), value = number * 0x9E3779B97F4A7C15 + 1;
    pack.resize(PACK_BYTES, 0x5A);
    for (; at + 4 <= PACK_BYTES; at += 4) {
        value = value * 6364136223846793005 + 1442695040888963407;
        const uint32_t four = uint32_t(value >> 32);
        memcpy(pack.data() + at, &four, 4);
    }
    return pack;
}

Bytes unitBytes(const ScanUnit& unit, uint64_t firstPack)
{
    Bytes bytes = navPack({ .scr = unit.start & 0xFFFFFFFF }, firstPack);
    overwrite(bytes, 57, hexWord(unit.start));
    overwrite(bytes, 61, hexWord(unit.start + unit.length));
    overwrite(bytes, 69, unit.elapsed);
    overwrite(bytes, 1039, hexWord(unit.declaredEnd.value_or(unit.packs - 1)));
    overwrite(bytes, 1055, hexWord(unit.vob).substr(4));
    overwrite(bytes, 1059, unit.elapsedDsi.value_or(unit.elapsed));
    for (uint64_t i = 1; i < unit.packs; i++) bytes += plainPack(firstPack + i);
    return bytes;
}

Bytes streamOf(const std::vector<ScanUnit>& units)
{
    Bytes bytes;
    for (const ScanUnit& unit : units) bytes += unitBytes(unit, bytes.size() / PACK_BYTES);
    return bytes;
}

std::vector<ScanUnit> evenUnits(uint64_t count, uint64_t ticks)
{
    std::vector<ScanUnit> units;
    for (uint64_t i = 0; i < count; i++) units.push_back({ .start = i * ticks });
    return units;
}

// ---- bytes ------------------------------------------------------------------------------------------------------

Bytes slice(const Bytes& bytes, uint64_t from, uint64_t count)
{
    from = std::min<uint64_t>(from, bytes.size());
    count = std::min<uint64_t>(count, bytes.size() - from);
    return { bytes.begin() + std::ptrdiff_t(from), bytes.begin() + std::ptrdiff_t(from + count) };
}

void overwrite(Bytes& bytes, uint64_t at, std::string_view hex)
{
    const Bytes value = fromHex(hex);
    std::copy(value.begin(), value.end(), bytes.begin() + std::ptrdiff_t(at));
}

std::string hexAt(const Bytes& bytes, uint64_t at, uint64_t count)
{
    return toHex(slice(bytes, at, count));
}

std::string wordsAt(const Bytes& bytes, uint64_t at, uint64_t count)
{
    std::string text;
    for (uint64_t i = 0; i < count;) {
        const Bytes word = slice(bytes, at + 4 * i, 4);
        uint64_t equal = 1;
        while (i + equal < count && slice(bytes, at + 4 * (i + equal), 4) == word) equal++;
        std::string digits = toHex(word);
        digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
        text += (i ? " " : "") + digits + (equal > 1 ? "*" + std::to_string(equal) : "");
        i += equal;
    }
    return text;
}

std::string firstDifferences(const Bytes& got, const Bytes& expected)
{
    if (got == expected) return "";
    std::string text;
    if (got.size() != expected.size())
        text = std::to_string(got.size()) + " bytes, should be " + std::to_string(expected.size()) + "\n";
    uint64_t found = 0;
    for (uint64_t i = 0; i < std::min(got.size(), expected.size()) && found < 8; i++) {
        if (got[i] == expected[i]) continue;
        text += "pack " + std::to_string(i / PACK_BYTES) + " at " + std::to_string(i % PACK_BYTES) + " is " +
                hexAt(got, i, 4) + ", should be " + hexAt(expected, i, 4) + "\n";
        found++;
        i += 3;
    }
    return text;
}

// ---- the host ---------------------------------------------------------------------------------------------------

namespace {

// Scans that refused to end. Memory that can still be found when the program ends is none that was lost.
std::vector<NppScan*>& keptScans()
{
    static std::vector<NppScan*>* const kept = new std::vector<NppScan*>;
    return *kept;
}

uint64_t takeUnit(const uint8_t* data, uint64_t bytes, uint64_t user)
{
    ScanHost* const host = reinterpret_cast<ScanHost*>(user);
    EXPECT_NE(data, nullptr);
    EXPECT_GT(bytes, 0u);
    EXPECT_EQ(bytes % PACK_BYTES, 0u);
    host->units.emplace_back(data, data + bytes);
    return host->onUnit ? host->onUnit(host->units.back()) : 0;
}

}   // namespace

Cells cellsEvery(uint64_t ticks)
{
    return { .interval = ticks };
}

Cells cellsUpTo(const std::vector<uint64_t>& list)
{
    return { .mode = ORV_NPP_CELLS_BY_LIST, .interval = 0, .list = list };
}

std::basic_string<OrvWChar> wideName(const std::u16string& path)
{
    return { path.begin(), path.end() };
}

ScanHost::ScanHost(const Cells& cells) : path(folder / u"movie.scan")
{
    const std::basic_string<OrvWChar> name = wideName(path);
    NppScanDescW desc = {};
    desc.path = name.c_str();
    desc.cellMode = cells.mode;
    desc.cellInterval = cells.interval;
    desc.cellList = cells.list.data();
    desc.cellListCount = cells.list.size();
    EXPECT_EQ(nppBeginStreamScanW(&desc, takeUnit, reinterpret_cast<uint64_t>(this), &handle), 0u);
    EXPECT_NE(handle, nullptr);
}

ScanHost::~ScanHost()
{
    onUnit = nullptr;
    if (handle && nppEndStreamScan(handle) != 0) keptScans().push_back(handle);
}

uint64_t ScanHost::feed(const Bytes& bytes, uint64_t chunk)
{
    if (chunk == 0) chunk = bytes.size();
    for (uint64_t at = 0; at < bytes.size(); at += chunk) {
        // Memory of exactly the size, so that a read past it is seen.
        const uint64_t size = std::min<uint64_t>(chunk, bytes.size() - at);
        const std::unique_ptr<uint8_t[]> exact = std::make_unique<uint8_t[]>(size);
        std::copy_n(bytes.begin() + std::ptrdiff_t(at), size, exact.get());
        if (const uint64_t result = nppScanBuffer(handle, exact.get(), size)) return result;
    }
    return 0;
}

uint64_t ScanHost::end()
{
    const uint64_t result = nppEndStreamScan(handle);
    if (result == 0) handle = nullptr;
    return result;
}

uint64_t ScanHost::held() const
{
    uint64_t bytes = 0x1111;
    EXPECT_EQ(nppGetBuffer(handle, &bytes), 0u);
    return bytes;
}

Bytes ScanHost::file() const
{
    return readFile(path);
}

Bytes ScanHost::record(uint64_t index) const
{
    return slice(file(), 8 + 96 * index, 96);
}

uint64_t ScanHost::recordField(uint64_t index, uint64_t field) const
{
    const Bytes bytes = slice(record(index), 8 * field, 8);
    EXPECT_EQ(bytes.size(), 8u);
    uint64_t value = 0;
    for (uint64_t i = bytes.size(); i-- > 0;) value = value << 8 | bytes[i];
    return value;
}

Bytes ScanHost::output() const
{
    Bytes all;
    for (const Bytes& unit : units) all += unit;
    return all;
}

void runScan(ScanHost& host, const Bytes& stream, uint64_t chunk)
{
    ASSERT_EQ(host.feed(stream, chunk), 0u);
    ASSERT_EQ(host.end(), 0u);
}
