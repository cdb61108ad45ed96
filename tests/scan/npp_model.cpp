#include "tests/scan/npp_model.h"

#include <algorithm>

namespace {

constexpr uint64_t PACK = 2048, MOST_PACKS = 768, PLACES = 1024;
constexpr uint64_t NOT_A_PACK = 0x8400232A, OVERFLOW_RESULT = 0x84000BC9;

// Half seconds to 7.5, then 10, 30, 60 and 120 seconds.
uint64_t distanceTicks(uint64_t i)
{
    const uint64_t far[] = { 10, 30, 60, 120 };
    return i < 15 ? (i + 1) * 45000 : far[i - 15] * 90000;
}

uint64_t big(const Bytes& bytes, uint64_t at, uint64_t width)
{
    uint64_t value = 0;
    for (uint64_t i = 0; i < width; i++) value = value * 256 + bytes[at + i];
    return value;
}

void putBig(Bytes& bytes, uint64_t at, uint64_t value)
{
    for (uint64_t i = 0; i < 4; i++) bytes[at + i] = uint8_t(value >> (24 - 8 * i));
}

bool holds(const Bytes& bytes, uint64_t at, const Bytes& expected)
{
    return std::equal(expected.begin(), expected.end(), bytes.begin() + std::ptrdiff_t(at));
}

bool isNavigation(const Bytes& pack)
{
    return holds(pack, 14, { 0, 0, 1, 0xBB }) && holds(pack, 40, { 1, 0xBF, 3, 0xD4 }) &&
           holds(pack, 1026, { 1, 0xBF, 3, 0xFA });
}

// ---- time codes -------------------------------------------------------------------------------------------------

uint64_t twoDigits(uint64_t byte)
{
    return byte / 16 * 10 + byte % 16;
}

uint64_t framesOf(const Bytes& pack)
{
    const uint64_t last = pack[72], flag = last / 64;
    if (flag % 2 == 0) return 0;
    const uint64_t seconds = twoDigits(pack[69]) * 3600 + twoDigits(pack[70]) * 60 + twoDigits(pack[71]);
    return seconds * (flag == 1 ? 25 : 30) + twoDigits(last % 64);
}

Bytes timeOf(bool pal, uint64_t frames)
{
    const uint64_t rate = pal ? 25 : 30, seconds = frames / rate;
    Bytes code;
    for (const uint64_t part : { seconds / 3600, seconds / 60 % 60, seconds % 60, frames % rate })
        code.push_back(uint8_t(part / 10 * 16 + part % 10));
    code[3] = uint8_t(code[3] | (pal ? 0x40 : 0xC0));
    return code;
}

// ---- navigation packs -------------------------------------------------------------------------------------------

uint64_t cellOf(const NppModel& model, uint64_t start)
{
    if (model.cellMode == 0) return start / model.cellInterval + 1;
    for (uint64_t i = 1; i < model.cellList.size(); i++)
        if (model.cellList[i] >= start) return i;
    return std::max<uint64_t>(model.cellList.size(), 1);
}

void treatNavigation(NppModel& model, Bytes& pack)
{
    const uint64_t start = big(pack, 57, 4), cell = cellOf(model, start), frames = framesOf(pack);
    if (cell != model.lastCell) model.cellStart = frames;
    model.lastCell = cell;
    const bool pal = pack[72] / 64 == 1;
    const Bytes elapsed = timeOf(pal, frames - model.cellStart);
    pack[1058] = uint8_t(cell);
    std::copy(elapsed.begin(), elapsed.end(), pack.begin() + 69);
    std::copy(elapsed.begin(), elapsed.end(), pack.begin() + 1059);
    const uint64_t pictures = (big(pack, 61, 4) - start) / (pal ? 3600 : 3003);
    model.records.push_back({ model.packCount, model.packCount + big(pack, 1039, 4), 0, start, pictures,
                              big(pack, 1055, 2), cell, 0, 0, 0, 0, 0 });
}

// ---- units ------------------------------------------------------------------------------------------------------

bool sameCell(const ModelUnit& a, const ModelUnit& b)
{
    return a.vob == b.vob && a.cell == b.cell;
}

uint64_t word(const std::optional<uint64_t>& packs, uint64_t empty)
{
    return packs ? 0x80000000 | (*packs & 0x3FFFFFFF) : empty;
}

Bytes finished(const ModelUnit& unit)
{
    Bytes bytes = unit.bytes;
    putBig(bytes, 1265, word(unit.next, 0xBFFFFFFF));
    for (uint64_t i = 0; i < 19; i++) {
        putBig(bytes, 1269 + 4 * (18 - i), word(unit.forward[i], 0x3FFFFFFF));
        putBig(bytes, 1353 + 4 * i, word(unit.backward[i], 0x3FFFFFFF));
    }
    putBig(bytes, 1345, word(unit.next, 0x3FFFFFFF));
    putBig(bytes, 1349, word(unit.previous, 0x3FFFFFFF));
    putBig(bytes, 1429, word(unit.previous, 0xBFFFFFFF));
    return bytes;
}

// The units before the open one that are of its cell, the nearest first.
std::vector<ModelUnit*> cellBefore(NppModel& model)
{
    std::vector<ModelUnit*> units;
    for (uint64_t n = model.number; n > model.oldest; n--) {
        const auto found = model.held.find(n - 1);
        if (found == model.held.end() || !sameCell(found->second, model.open)) break;
        units.push_back(&found->second);
    }
    return units;
}

void link(NppModel& model)
{
    ModelUnit& current = model.open;
    current.next = current.previous = std::nullopt;
    current.forward = current.backward = {};
    uint64_t packs = 0, slot = 0;
    for (ModelUnit* const unit : cellBefore(model)) {
        packs += unit->packs();
        const uint64_t ticks = current.start - unit->start;
        if (!current.previous) {
            current.previous = packs;
            unit->next = packs;
        }
        if (slot < 19) {
            current.backward[slot] = packs;
            if (ticks > distanceTicks(slot)) slot++;
        }
        for (uint64_t i = 0; i < 19; i++)
            if (ticks > distanceTicks(i) && !unit->forward[i]) unit->forward[i] = packs;
    }
}

bool placeTaken(const NppModel& model, uint64_t number)
{
    return model.held.contains(number) || (number >= PLACES && model.held.contains(number - PLACES));
}

uint64_t release(NppModel& model, bool atEnd)
{
    bool one = true;
    for (uint64_t n = model.oldest; n <= model.number; n++) {
        const auto found = model.held.find(n);
        if (found == model.held.end()) continue;
        const bool ready = !sameCell(found->second, model.open) || found->second.complete();
        if (!atEnd && (!one || !ready)) break;   // none overtakes another
        if (const uint64_t result = model.output(finished(found->second))) return result;
        one = false;
        model.held.erase(found);
        model.oldest++;
    }
    return 0;
}

uint64_t closeUnit(NppModel& model, bool atEnd)
{
    if (model.open.bytes.empty()) return 0;
    link(model);
    if (placeTaken(model, model.number)) return OVERFLOW_RESULT;
    model.held[model.number] = model.open;
    if (const uint64_t result = release(model, atEnd)) return result;
    model.open = {};
    model.number++;
    return 0;
}

uint64_t treatPack(NppModel& model, Bytes pack)
{
    if (!holds(pack, 0, { 0, 0, 1, 0xBA })) return NOT_A_PACK;
    const bool closes = isNavigation(pack) && model.packCount > 0;
    if (isNavigation(pack)) treatNavigation(model, pack);
    model.packCount++;
    if (!closes && model.open.packs() == MOST_PACKS) return OVERFLOW_RESULT;
    if (closes)
        if (const uint64_t result = closeUnit(model, false)) return result;
    if (model.open.bytes.empty()) {
        model.open.start = big(pack, 57, 4);
        model.open.vob = big(pack, 1055, 2);
        model.open.cell = pack[1058];
    }
    model.open.bytes.insert(model.open.bytes.end(), pack.begin(), pack.end());
    return 0;
}

}   // namespace

uint64_t ModelUnit::packs() const
{
    return bytes.size() / PACK;
}

bool ModelUnit::complete() const
{
    return std::all_of(forward.begin(), forward.end(), [](const auto& pointer) { return pointer.has_value(); });
}

uint64_t modelFeed(NppModel& model, const Bytes& bytes)
{
    model.part.insert(model.part.end(), bytes.begin(), bytes.end());
    uint64_t at = 0, result = 0;
    for (; result == 0 && model.part.size() - at >= PACK; at += PACK) {
        const auto pack = model.part.begin() + std::ptrdiff_t(at);
        result = treatPack(model, Bytes(pack, pack + PACK));
    }
    model.part.erase(model.part.begin(), model.part.begin() + std::ptrdiff_t(at));
    return result;
}

uint64_t modelEnd(NppModel& model)
{
    if (const uint64_t result = closeUnit(model, true)) return result;
    model.recordedPacks = model.packCount & 0xFFFFFFFF;
    return 0;
}

uint64_t modelHeld(const NppModel& model)
{
    uint64_t sum = model.open.bytes.size();
    for (uint64_t n = model.oldest; n <= model.number; n++) {
        auto found = model.held.find(n);
        if (found == model.held.end() && n >= PLACES) found = model.held.find(n - PLACES);   // in the same place
        sum += found == model.held.end() ? ~uint64_t(0) : found->second.bytes.size();
    }
    return sum;
}

Bytes modelFile(const NppModel& model)
{
    Bytes bytes;
    const auto put = [&bytes](uint64_t value, uint64_t width) {
        for (uint64_t i = 0; i < width; i++) bytes.push_back(uint8_t(value >> (8 * i)));
    };
    put(1, 4);
    put(model.recordedPacks, 4);
    for (const std::array<uint64_t, 12>& record : model.records)
        for (const uint64_t field : record) put(field, 8);
    return bytes;
}
