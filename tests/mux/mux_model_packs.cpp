// The model of the multiplexer: plans, packs, decoder and schedule.
#include "tests/mux/mux_model.h"

#include "base/result.h"

#include <algorithm>

namespace {

constexpr uint64_t PACK = 2048;
constexpr uint64_t PACK_TIME = 438857143, TICK = 3000000;

struct Plan {
    uint64_t payload = 0, padding = 0, unit = 0;
    uint64_t pts = 0, dts = 0, extension = 0;   // 1: the pack has it
};

ModelUnit unitOf(const ModelStream& stream, uint64_t index)
{
    return index < stream.units.size() ? stream.units[index] : ModelUnit();
}

uint64_t level(const ModelStream& stream)
{
    return stream.ended ? stream.held() : 0x7FFFFFFF;
}

void cutToLevel(Plan& plan, const ModelStream& stream)
{
    const uint64_t there = level(stream);
    if (plan.payload <= there) return;
    plan.padding += plan.payload - there;
    plan.payload = there;
}

// ---- plans ------------------------------------------------------------------------------------------------------

Plan startOf(uint64_t type, uint64_t unit)
{
    switch (type) {
    case 1: return { .payload = 2012, .unit = unit, .pts = 1, .dts = 1, .extension = 1 };
    case 2: return { .payload = 2015, .unit = unit, .pts = 1, .dts = 1 };
    case 3: return { .payload = 2020, .unit = unit, .pts = 1 };
    default: return { .unit = unit };
    }
}

Plan planVideoFreely(const ModelStream& stream)
{
    const uint64_t c = modelCurrentUnit(stream), packed = stream.packed;
    const bool scanned = stream.kind == 4;
    const ModelUnit unit = unitOf(stream, c);
    ModelUnit next = { .position = packed + level(stream), .group = MODEL_NONE, .type = MODEL_NONE };
    if (c + 1 < stream.units.size()) next = stream.units[c + 1];
    const uint64_t n = c + 1;

    if (unit.position == packed) {
        Plan plan = startOf(unit.type, c);
        if (scanned && unit.type == 1 && packed != 0) plan = startOf(2, c);
        if (next.position < packed + plan.payload && unit.group != next.group) {
            plan.padding = plan.payload - (next.position - unit.position);
            plan.payload = next.position - unit.position;
        }
        return plan;
    }
    if (next.position >= packed + 2025) return { .payload = 2025, .unit = c };
    const uint64_t left = next.position - packed;
    if (next.type >= 1 && next.type <= 3) {
        Plan plan = startOf(next.type, n);
        if (left >= plan.payload || unit.group != next.group)
            return { .payload = left, .padding = 2025 - left, .unit = c };
        if (next.type != 3) return plan;
        for (uint64_t w = c + 2; w < stream.units.size(); ++w) {
            if (stream.units[w].group == next.group) continue;
            const uint64_t end = stream.units[w].position - packed;
            if (end < 2020) {
                plan.payload = end;
                plan.padding = 2020 - end;
                plan.unit = scanned ? n : c;
            }
            break;
        }
        return plan;
    }
    if (next.type == MODEL_NONE) return { .payload = left, .padding = 2025 - left, .unit = c };
    if (scanned) return { .payload = left ? left : 1024, .unit = c };
    return { .payload = left, .unit = n };
}

Plan planAudio(const ModelStream& stream)
{
    // By format of LPCM: payload, padding of the first pack; later packs have three bytes more of padding.
    static const uint64_t lpcm[][2] = { { 0, 0 }, { 2008, 2 }, { 2004, 6 }, { 1992, 18 }, { 2008, 2 }, { 2010, 0 } };
    if (stream.unitBytes == 0) return {};
    const bool first = stream.packed == 0;
    Plan plan = { .pts = 1, .extension = first ? 1u : 0u };
    switch (stream.kind) {
    case 8:
        plan.payload = lpcm[stream.lpcmFormat][0];
        plan.padding = lpcm[stream.lpcmFormat][1] + (first ? 0 : 3);
        break;
    case 9: plan.payload = first ? 2017 : 2020; break;
    default: plan.payload = first ? 2013 : 2016;
    }
    if (stream.kind == 13) {
        plan.unit = modelCurrentUnit(stream);
        if (unitOf(stream, plan.unit).position != stream.packed) plan.unit++;
    } else {
        plan.unit = (stream.packed + stream.unitBytes - 1) / stream.unitBytes;
    }
    return plan;
}

Plan planPack(const ModelStream& stream)
{
    Plan plan = stream.isVideo() ? planVideoFreely(stream) : planAudio(stream);
    cutToLevel(plan, stream);
    return plan;
}

// ---- packs ------------------------------------------------------------------------------------------------------

void put(Bytes& to, uint64_t value, int bytes)
{
    for (int i = bytes; i-- > 0;) to.push_back(uint8_t(value >> (8 * i)));
}

void putAt(Bytes& pack, uint64_t at, uint64_t value, int bytes)
{
    for (int i = bytes; i-- > 0;) pack[at++] = uint8_t(value >> (8 * i));
}

/** Pack header from its 112 bits, in two halves. */
Bytes packHead(uint64_t scr, uint64_t extension)
{
    Bytes head;
    put(head, 0x1BA, 4);
    const uint64_t top = scr >> 30 & 3, middle = scr >> 15 & 0x7FFF, low = scr & 0x7FFF;
    put(head,
        1ull << 46 | top << 43 | 1ull << 42 | middle << 27 | 1ull << 26 | low << 11 | 1ull << 10 | extension << 1 | 1,
        6);
    put(head, 25200 << 2 | 3, 3);
    put(head, 0xF8, 1);
    return head;
}

void putStamp(Bytes& to, uint64_t lead, uint64_t ticks)
{
    const uint64_t top = ticks >> 30 & 3, middle = ticks >> 15 & 0x7FFF, low = ticks & 0x7FFF;
    put(to, lead << 36 | top << 33 | 1ull << 32 | middle << 17 | 1ull << 16 | low << 1 | 1, 5);
}

void putSubHead(Bytes& pack, const ModelStream& stream)
{
    const uint64_t u = stream.unitBytes, b = stream.packed;
    if (stream.subStreamId == 0) return;
    uint64_t room = 2044 - pack.size();
    if (stream.kind == 8)
        room = stream.lpcmFormat == 5 ? 2010 : stream.lpcmFormat == 2 ? 2004 : stream.lpcmFormat == 3 ? 1992 : 2008;
    const uint64_t begun = (b + u - 1) / u;   // first unit that begins at b or behind
    put(pack, stream.subStreamId, 1);
    put(pack, (b + room) / u - b / u + (b % u == 0), 1);
    put(pack, begun * u - b + (stream.kind == 8 ? 4u : 1u), 2);
    if (stream.kind != 8) return;
    put(pack, begun % 20, 1);
    put(pack, (stream.channels - 1) | (stream.sampleRate != 48000) << 4 | (stream.sampleBits != 16) << 7, 1);
    put(pack, 0x80, 1);
}

uint8_t at(const Bytes& pack, uint64_t place)
{
    return place < pack.size() ? pack[place] : 0;
}

void setAt(Bytes& pack, uint64_t place, uint8_t byte)
{
    if (place < pack.size()) pack[place] = byte;
}

void exchangeLpcm(Bytes& pack, uint64_t format, uint64_t from, uint64_t size)
{
    if (format == 1 || format == 3 || format == 4) {
        for (uint64_t i = 0; i < size; i += 2) {
            const uint64_t word = (from + i) / 2 * 2;
            const uint8_t low = at(pack, word), high = at(pack, word + 1);
            setAt(pack, word, high);
            setAt(pack, word + 1, low);
        }
        return;
    }
    const auto copyWord = [&pack](uint64_t source, uint64_t target) {
        const uint8_t low = at(pack, source / 2 * 2), high = at(pack, source / 2 * 2 + 1);
        setAt(pack, target / 2 * 2, low);
        setAt(pack, target / 2 * 2 + 1, high);
    };
    for (uint64_t group = 0; group < (size + 11) / 12; ++group) {
        const uint64_t r = from + 12 * group + 5;
        const uint8_t lows[4] = { at(pack, r + 6), at(pack, r + 3), at(pack, r), at(pack, r - 3) };
        for (uint64_t i = 0; i < 4; ++i) setAt(pack, (r + 3) / 4 * 4 + i, lows[i]);
        copyWord(r - 2, r - 3);
        copyWord(r + 1, r - 1);
        copyWord(r + 4, r + 1);
    }
}

struct Times {
    uint64_t pts = 0, dts = 0;
};

Times timesOf(const MuxModel& model, const ModelStream& stream, uint64_t index)
{
    if (!stream.isVideo()) {
        const uint64_t time = stream.unitTicks * index + model.audioDelay;
        return { time, time };
    }
    if (index >= stream.units.size()) return {};
    const ModelUnit unit = unitOf(stream, index);
    return { unit.pts + model.videoDelay, unit.dts + model.videoDelay };
}

/** One pack of a stream, which loses the payload. */
Bytes takePack(const MuxModel& model, ModelStream& stream, const Plan& plan, uint64_t scr, uint64_t extension)
{
    Bytes pack = packHead(scr, extension);
    const Times times = timesOf(model, stream, plan.unit);
    const uint64_t stuffing = plan.padding < 8 ? plan.padding : 0;
    const uint64_t fields = plan.pts * 5 + plan.dts * 5 + plan.extension * 3;
    put(pack, 0x100 | stream.streamId, 4);
    put(pack, plan.padding < 8 ? 2028 : 2028 - plan.padding, 2);
    put(pack, 0x81, 1);
    put(pack, plan.pts << 7 | plan.dts << 6 | plan.extension, 1);
    put(pack, fields + stuffing, 1);
    if (plan.pts) putStamp(pack, plan.dts ? 3 : 2, times.pts);
    if (plan.dts) putStamp(pack, 1, times.dts);
    if (plan.extension) {
        put(pack, 0x1E, 1);
        put(pack, 0x4000 | stream.stdScale << 13 | stream.stdBound, 2);
    }
    pack.insert(pack.end(), stuffing, 0xFF);
    putSubHead(pack, stream);

    const uint64_t from = pack.size();
    const auto payload = stream.fed.begin() + std::ptrdiff_t(stream.packed);
    pack.insert(pack.end(), payload, payload + std::ptrdiff_t(plan.payload));
    const uint64_t behind = pack.size();
    pack.resize(PACK);
    if (stream.kind == 8) exchangeLpcm(pack, stream.lpcmFormat, from, plan.payload);
    if (plan.padding > 7) {
        pack.resize(behind);
        put(pack, 0x1BE, 4);
        put(pack, plan.padding - 6, 2);
        pack.resize(pack.size() + plan.padding - 6, 0xFF);
    }
    pack.resize(PACK);
    stream.packed += plan.payload;
    stream.stdFill += plan.payload;
    return pack;
}

Bytes navSkeleton(uint64_t scr, uint64_t extension)
{
    Bytes pack = packHead(scr, extension);
    const Bytes system = fromHex("00 00 01 BB 00 12 80 C4 E1 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02");
    pack.insert(pack.end(), system.begin(), system.end());
    pack.resize(PACK);
    return pack;
}

uint64_t bcd(uint64_t value)
{
    return value / 10 << 4 | value % 10;
}

// ---- schedule ---------------------------------------------------------------------------------------------------

std::vector<ModelStream*> streamsOf(const MuxModel& model)
{
    std::vector<ModelStream*> list;
    for (ModelStream* stream : model.slots)
        if (stream) list.push_back(stream);
    return list;
}

void setDelays(MuxModel& model)
{
    model.started = true;
    const ModelStream& video = *model.slots[0];
    const uint64_t bytes = unitOf(video, 2).position + (model.streamCount - 1) * 4096;
    const uint64_t packs = (bytes + 2019) / 2020;
    model.videoDelay = packs == 0 ? 14400 : (packs + 4) * 43886 / 300;
    model.audioDelay = model.videoDelay + video.unitTicks;
    model.clock = 0;
    model.currentGroup = 0;
}

uint64_t unitSize(const ModelStream& stream, uint64_t index)
{
    if (!stream.isVideo() && stream.kind != 13) return stream.unitBytes;
    if (index + 1 < stream.units.size()) return stream.units[index + 1].position - stream.units[index].position;
    if (stream.isVideo() && stream.ended && index + 1 == stream.units.size())
        return stream.fed.size() - stream.units[index].position;
    return 0;
}

uint64_t decode(MuxModel& model, uint64_t scr)
{
    for (ModelStream* stream : streamsOf(model)) {
        if (stream->kind == 20) continue;
        const uint64_t size = unitSize(*stream, stream->decoded);
        stream->nextDecode = timesOf(model, *stream, stream->decoded).dts;
        if (stream->nextDecode > scr) continue;
        if (size <= stream->stdFill) {
            stream->stdFill -= size;
            stream->decoded++;
        } else if (!stream->ended) {
            return ORV_MUX_UNDERRUN;
        }
    }
    return 0;
}

bool unitIsOver(const MuxModel& model, uint64_t current)
{
    const ModelStream& video = *model.slots[0];
    int64_t longest = 0;
    for (const ModelStream* stream : streamsOf(model))
        longest = std::max(longest, int64_t(stream->nextDecode - stream->vobuDecode));
    if (longest > 45000 && video.ended && video.stdFill == 0) return true;
    return current != MODEL_NONE && model.currentGroup != unitOf(video, current).group;
}

/** Null if nobody may be served. */
ModelStream* choose(const MuxModel& model, uint64_t scr)
{
    ModelStream* best = nullptr;
    uint64_t bestRatio = 0xF801;
    for (ModelStream* stream : streamsOf(model)) {
        if (stream->kind == 20 || stream->stdFill > stream->stdSize) continue;
        const uint64_t ratio = (stream->stdFill << 16) / stream->stdSize;
        const Plan plan = planPack(*stream);
        const bool isFirst = stream == model.slots[0];
        if (ratio > 0xF800 || plan.payload == 0 || plan.payload + stream->stdFill > stream->stdSize) continue;
        if (isFirst && plan.unit > stream->decoded + 15) continue;
        if (stream->unitTicks * plan.unit + model.audioDelay > scr + 80000) continue;
        const bool anyway = !isFirst && (!best || best == model.slots[0]);
        if (!anyway && ratio >= bestRatio) continue;
        best = stream;
        bestRatio = ratio;
    }
    return best;
}

uint64_t serve(MuxModel& model, ModelStream& stream, uint64_t current, uint64_t scr, uint64_t extension)
{
    if (model.pending.size() == 1024) return ORV_MUX_OVERFLOW;
    const Plan plan = planPack(stream);
    const uint64_t type = unitOf(stream, current).type;
    if (stream.isVideo() && model.referenceEnds.size() < 3 && plan.unit != current && (type == 1 || type == 2))
        model.referenceEnds.push_back(model.packCount - model.vobuSector);
    model.pending.push_back(takePack(model, stream, plan, scr, extension));
    model.packCount++;
    model.clock += PACK_TIME;
    return 0;
}

uint64_t openUnit(MuxModel& model, uint64_t current, uint64_t scr, uint64_t extension)
{
    const ModelUnit unit = unitOf(*model.slots[0], current);
    if (model.packCount != 0) {
        model.vobuPictures = current - model.vobuFirstUnit;
        modelFillNav(model, false);
    }
    model.vobuSector = model.packCount;
    model.vobuScr = scr;
    model.vobuFirstUnit = current;
    model.vobuStart = unit.groupTime + model.videoDelay;
    for (ModelStream* stream : streamsOf(model)) stream->vobuDecode = stream->nextDecode;
    model.currentGroup = unit.group;
    if (model.packCount != 0) {
        Bytes sectors;
        for (const Bytes& pack : model.pending) sectors.insert(sectors.end(), pack.begin(), pack.end());
        if (uint64_t error = model.write(sectors)) return error;
        model.pending.clear();
    }
    model.pending.push_back(navSkeleton(scr, extension));
    model.packCount++;
    model.clock += PACK_TIME;
    return 0;
}

bool wait(MuxModel& model)
{
    constexpr uint64_t FOREVER = 0x7FFFFFFFFFFFFFFF;
    uint64_t shortest = FOREVER;
    for (const ModelStream* stream : streamsOf(model)) {
        const uint64_t delay = stream->isVideo() ? model.videoDelay : model.audioDelay;
        shortest = std::min(shortest, (stream->decoded * stream->unitTicks + delay) * TICK - model.clock);
    }
    if (shortest == FOREVER) return false;
    model.clock += shortest + PACK_TIME;
    return true;
}

}   // namespace

uint64_t modelCurrentUnit(const ModelStream& stream)
{
    const std::vector<ModelUnit>& units = stream.units;
    if (units.size() < 2 || stream.packed < units[1].position) return 0;
    uint64_t index = units.size() - 1;
    while (units[index].position > stream.packed) --index;
    return index;
}

void modelFillNav(MuxModel& model, bool last)
{
    Bytes& pack = model.pending.front();
    const uint64_t end = model.vobuPictures * model.slots[0]->unitTicks + model.vobuStart;
    const uint64_t seconds = model.vobuFirstUnit / 25;
    const uint64_t elapsed = (bcd(seconds / 3600) & 0xFF) << 24 | bcd(seconds / 60 % 60) << 16 |
                             bcd(seconds % 60) << 8 | bcd(model.vobuFirstUnit % 25) | 0x40;
    std::vector<uint64_t> ends = model.referenceEnds;
    ends.resize(3);

    putAt(pack, 38, 0x000001BF03D4, 6);
    putAt(pack, 44, 0, 1);
    putAt(pack, 45, model.vobuSector, 4);
    putAt(pack, 57, model.vobuStart, 4);
    putAt(pack, 61, end, 4);
    putAt(pack, 65, last ? end : 0, 4);
    putAt(pack, 69, elapsed, 4);
    putAt(pack, 142, 1, 1);
    putAt(pack, 143, 0, 4);
    putAt(pack, 147, 0xFFFFFFFF, 4);
    putAt(pack, 151, 0xFFFFFFFF, 4);
    putAt(pack, 155, 0x10, 1);
    putAt(pack, 161, 1, 1);
    putAt(pack, 1024, 0x000001BF03FA, 6);
    putAt(pack, 1030, 1, 1);
    putAt(pack, 1031, model.vobuScr, 4);
    putAt(pack, 1035, model.vobuSector, 4);
    putAt(pack, 1039, model.packCount - model.vobuSector - 1, 4);
    for (uint64_t i = 0; i < 3; ++i) putAt(pack, 1043 + 4 * i, ends[i], 4);
    putAt(pack, 1055, 1, 2);
    putAt(pack, 1058, 1, 1);
    putAt(pack, 1059, elapsed, 4);
    putAt(pack, 1075, 0, 8);
    putAt(pack, 1265, 0xBFFFFFFF, 4);
    for (uint64_t i = 0; i < 40; ++i)   // 19 ahead, next, previous, 19 back
        putAt(pack, 1269 + 4 * i, 0x3FFFFFFF, 4);
    putAt(pack, 1429, 0xBFFFFFFF, 4);
}

uint64_t modelRun(MuxModel& model)
{
    if (!model.slots[0]) return ORV_NO_VIDEO_STREAM;
    for (uint64_t idle = 0;;) {
        bool over = true;
        for (const ModelStream* stream : streamsOf(model)) {
            if (stream->held() < stream->watermark && !stream->ended) return 0;
            // Audio whose unit is not known takes no part.
            const bool apart = !stream->isVideo() && stream->unitBytes == 0;
            over = over && stream->ended && (stream->held() == 0 || apart);
        }
        if (over) return 0;
        if (!model.started) setDelays(model);
        const uint64_t scr = model.clock / TICK, extension = model.clock % TICK / 10000;
        if (uint64_t error = decode(model, scr)) return error;

        uint64_t current = 0;
        if (model.slots[0]->isVideo()) current = modelCurrentUnit(*model.slots[0]);
        if (unitIsOver(model, current)) {
            if (uint64_t error = openUnit(model, current, scr, extension)) return error;
        } else if (ModelStream* best = choose(model, scr)) {
            if (uint64_t error = serve(model, *best, current, scr, extension)) return error;
            idle = 0;
            continue;
        } else if (!wait(model)) {
            return ORV_MUX_UNDERRUN;
        }
        if (++idle >= 4096) return ORV_MUX_UNDERRUN;
    }
}
