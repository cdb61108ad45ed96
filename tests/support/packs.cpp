#include "tests/support/packs.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

constexpr uint64_t PES_AT = 14;
constexpr uint64_t PES_HEADER_BYTES = 9;   // start code, id, length, two flag bytes, header data length
constexpr uint64_t CLOCK_MASK = 0x1FFFFFFFF;

void put(Bytes& pack, uint64_t at, const Bytes& bytes)
{
    std::copy(bytes.begin(), bytes.end(), pack.begin() + std::ptrdiff_t(at));
}

Bytes big(uint64_t value, uint64_t width)
{
    Bytes bytes;
    for (uint64_t i = width; i-- > 0;) bytes.push_back(uint8_t(value >> (8 * i)));
    return bytes;
}

// Five bytes of a time stamp: four bits of lead, 33 bits of value in groups of 3, 15 and 15, a marker behind each.
Bytes timeStamp(uint64_t lead, uint64_t value)
{
    value &= CLOCK_MASK;
    const uint64_t bits = lead << 36 | (value >> 30) << 33 | uint64_t(1) << 32 | ((value >> 15) & 0x7FFF) << 17 |
                          uint64_t(1) << 16 | (value & 0x7FFF) << 1 | 1;
    return big(bits, 5);
}

uint64_t subStreamHeaderBytes(uint8_t subStreamId)
{
    if (subStreamId >= 0x80 && subStreamId <= 0x97) return 4;
    if (subStreamId >= 0xA0 && subStreamId <= 0xA7) return 7;
    return 1;
}

uint64_t stampBytes(const PesSpec& recipe)
{
    return (recipe.pts ? 5u : 0u) + (recipe.pts && recipe.dts ? 5u : 0u);
}

}   // namespace

// ---- single packs -----------------------------------------------------------------------------------------------

Bytes packHeader(PackClock clock)
{
    const uint64_t scr = clock.scr & CLOCK_MASK;
    // 01, SCR 32..30, marker, SCR 29..15, marker, SCR 14..0, marker, extension (9), marker: 48 bits
    const uint64_t bits = uint64_t(1) << 46 | (scr >> 30) << 43 | uint64_t(1) << 42 | ((scr >> 15) & 0x7FFF) << 27 |
                          uint64_t(1) << 26 | (scr & 0x7FFF) << 11 | uint64_t(1) << 10 |
                          (clock.extension & 0x1FF) << 1 | 1;
    return fromHex("00 00 01 BA") + big(bits, 6) + fromHex("01 89 C3 F8");
}

Bytes navPack(PackClock clock, uint64_t sector)
{
    Bytes pack(PACK_BYTES, 0);
    put(pack, 0, packHeader(clock));
    put(pack, 14, fromHex("00 00 01 BB 00 12 80 C4 E1 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02"));
    put(pack, 38, fromHex("00 00 01 BF 03 D4 00"));
    put(pack, 45, big(sector, 4));
    pack[142] = 1;
    put(pack, 147, fromHex("FF FF FF FF FF FF FF FF 10"));
    pack[161] = 1;
    put(pack, 1024, fromHex("00 00 01 BF 03 FA 01"));
    put(pack, 1031, big(clock.scr, 4));
    put(pack, 1035, big(sector, 4));
    put(pack, 1055, fromHex("00 01 00 01"));
    put(pack, 1265, fromHex("BF FF FF FF"));
    for (uint64_t at = 1269; at < 1429; at += 4) put(pack, at, fromHex("3F FF FF FF"));
    put(pack, 1429, fromHex("BF FF FF FF"));
    return pack;
}

Bytes dirtyNavPack(PackClock clock, uint8_t junk)
{
    Bytes pack = navPack(clock);
    std::fill(pack.begin() + 44, pack.begin() + 1024, junk);
    std::fill(pack.begin() + 1030, pack.end(), junk);
    return pack;
}

uint64_t pesCapacity(const PesSpec& recipe)
{
    return PACK_BYTES - PES_AT - PES_HEADER_BYTES - stampBytes(recipe) - recipe.stuffing;
}

Bytes pesPack(uint8_t streamId, const Bytes& payload, const PesSpec& recipe)
{
    const uint64_t capacity = pesCapacity(recipe);
    if (payload.size() > capacity) throw std::length_error("payload larger than the pack");
    const uint64_t left = capacity - payload.size();
    const uint64_t padding = left >= 8 ? left : 0;
    const uint64_t headerData = stampBytes(recipe) + recipe.stuffing + (left - padding);
    const uint64_t length = 3 + headerData + payload.size();

    Bytes pack = packHeader(recipe.clock);
    pack += fromHex("00 00 01");
    pack.push_back(streamId);
    pack += big(recipe.lyingLength.value_or(length), 2);
    pack.push_back(0x81);
    pack.push_back(recipe.pts && recipe.dts ? 0xC0 : recipe.pts ? 0x80 : 0x00);
    pack.push_back(recipe.lyingHeader.value_or(uint8_t(headerData)));
    if (recipe.pts) pack += timeStamp(recipe.dts ? 3 : 2, *recipe.pts);
    if (recipe.pts && recipe.dts) pack += timeStamp(1, *recipe.dts);
    pack += Bytes(recipe.stuffing + (left - padding), 0xFF);
    pack += payload;
    if (padding) pack += fromHex("00 00 01 BE") + big(padding - 6, 2) + Bytes(padding - 6, 0xFF);
    return pack;
}

Bytes videoPack(const Bytes& payload, const PesSpec& recipe)
{
    return pesPack(0xE0, payload, recipe);
}

Bytes privatePack(uint8_t subStreamId, const PesSpec& recipe, const Bytes& payload)
{
    Bytes all(subStreamHeaderBytes(subStreamId), 0);
    all[0] = subStreamId;
    if (all.size() > 1) all[1] = 1;                         // one frame begins,
    if (all.size() > 3) all[3] = all.size() == 7 ? 4 : 1;   // right behind the header
    if (all.size() == 7) put(all, 5, fromHex("01 80"));     // 16 bits, 48 kHz, two channels
    all += payload.empty() ? Bytes(pesCapacity(recipe) - all.size(), FILLER) : payload;
    return pesPack(0xBD, all, recipe);
}

Bytes streamPack(uint8_t streamId, uint8_t subStreamId, const PesSpec& recipe)
{
    if (streamId == 0xBD) return privatePack(subStreamId, recipe);
    return pesPack(streamId, Bytes(pesCapacity(recipe), FILLER), recipe);
}

Bytes paddingPack(PackClock clock)
{
    return packHeader(clock) + fromHex("00 00 01 BE 07 EC") + Bytes(2028, 0xFF);
}

Bytes pictureHeader(uint64_t temporalRef, uint64_t type)
{
    return fromHex("00 00 01 00") + big((temporalRef & 0x3FF) << 6 | (type & 7) << 3 | 7, 2);
}

Bytes picture(uint64_t bytes, uint64_t temporalRef, uint64_t type)
{
    if (bytes < 6) throw std::length_error("picture smaller than its header");
    return pictureHeader(temporalRef, type) + Bytes(bytes - 6, FILLER);
}

Bytes& operator+=(Bytes& to, const Bytes& from)
{
    to.insert(to.end(), from.begin(), from.end());
    return to;
}

Bytes operator+(Bytes first, const Bytes& second)
{
    first += second;
    return first;
}

// ---- movies -----------------------------------------------------------------------------------------------------

StreamSpec ac3Stream(uint64_t index)
{
    return { .subStreamId = uint8_t(0x80 + index) };
}

StreamSpec dtsStream(uint64_t index)
{
    return { .subStreamId = uint8_t(0x88 + index) };
}

StreamSpec sddsStream(uint64_t index)
{
    return { .subStreamId = uint8_t(0x90 + index) };
}

StreamSpec lpcmStream(uint64_t index)
{
    return { .subStreamId = uint8_t(0xA0 + index) };
}

StreamSpec mpegAudioStream(uint64_t index)
{
    return { .streamId = uint8_t(0xC0 + index), .subStreamId = 0 };
}

StreamSpec subPictureStream(uint64_t index)
{
    return { .subStreamId = uint8_t(0x20 + index) };
}

std::vector<VobuSpec> vobus(uint64_t count, const VobuSpec& each)
{
    return std::vector<VobuSpec>(count, each);
}

std::vector<VobuSpec> operator+(std::vector<VobuSpec> first, const std::vector<VobuSpec>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

namespace {

struct Maker {
    const MovieSpec& recipe;
    uint64_t ticks;   // per frame
    Movie movie;
    uint64_t time;   // displayed before this unit, within its VOB
    uint64_t scr;    // of the next pack
    uint64_t vob;
};

// What the packs of a unit carry.
struct UnitPlan {
    std::vector<Bytes> video;                              // payloads
    std::vector<std::pair<uint64_t, uint64_t>> pictures;   // payload and position at which each begins
    std::string types;
    std::vector<uint64_t> temporalRefs;
    std::optional<uint64_t> pts;
    std::vector<StreamPackSpec> packs;
    uint64_t duration;
};

std::string pictureTypes(const VobuSpec& unit)
{
    std::string types;
    for (uint64_t i = 0; i < unit.pictures; i++) {
        const uint64_t n = unit.types.size();
        types += i < n ? unit.types[i] : n < 2 ? 'P' : unit.types[1 + (i - 1) % (n - 1)];
    }
    return types;
}

// A B picture is displayed as it comes, a reference when the next one comes.
std::vector<uint64_t> temporalReferences(const VobuSpec& unit, const std::string& types)
{
    std::vector<uint64_t> refs(types.size());
    std::optional<uint64_t> waiting;
    uint64_t displayed = 0;
    for (uint64_t i = 0; i < types.size(); i++) {
        if (types[i] == 'B') {
            refs[i] = displayed++;
        } else {
            if (waiting) refs[*waiting] = displayed++;
            waiting = i;
        }
    }
    if (waiting) refs[*waiting] = displayed;
    for (uint64_t i = 0; i < std::min(refs.size(), unit.temporalRefs.size()); i++) refs[i] = unit.temporalRefs[i];
    return refs;
}

uint64_t typeNumber(char type)
{
    return type == 'I' ? 1 : type == 'P' ? 2 : 3;
}

void planPictures(UnitPlan& plan, const VobuSpec& unit)
{
    const uint64_t first = pesCapacity({ .clock = {}, .pts = plan.pts }), later = pesCapacity();
    const auto room = [&] { return plan.video.size() == 1 ? first : later; };
    for (uint64_t i = 0; i < unit.pictures; i++) {
        const bool aligned = unit.pictureBytes.empty();
        uint64_t bytes = 0;
        if (aligned) {
            bytes = unit.packsPerPicture * later - (plan.video.empty() ? later - first : 0);
        } else {
            bytes = unit.pictureBytes[std::min<uint64_t>(i, unit.pictureBytes.size() - 1)];
        }
        const Bytes data = picture(bytes, plan.temporalRefs[i], typeNumber(plan.types[i]));
        uint64_t done = 0;
        while (done < data.size()) {
            if (plan.video.empty() || plan.video.back().size() == room()) plan.video.push_back({});
            Bytes& payload = plan.video.back();
            if (done == 0) plan.pictures.push_back({ plan.video.size() - 1, payload.size() });
            const uint64_t part = std::min(data.size() - done, room() - payload.size());
            payload.insert(payload.end(), data.begin() + std::ptrdiff_t(done),
                           data.begin() + std::ptrdiff_t(done + part));
            done += part;
        }
    }
    for (uint64_t i = 0; i < unit.fillerPacks; i++) {
        plan.video.push_back({});
        plan.video.back().assign(room(), FILLER);
    }
}

UnitPlan planUnit(const Maker& maker, const VobuSpec& unit)
{
    UnitPlan plan = {};
    plan.types = pictureTypes(unit);
    plan.temporalRefs = temporalReferences(unit, plan.types);
    plan.duration = unit.duration.value_or(unit.pictures * maker.ticks);
    const uint64_t display = maker.recipe.firstDisplay + maker.time;
    const uint64_t firstRef = plan.temporalRefs.empty() ? 0 : plan.temporalRefs[0];
    if (unit.pts) plan.pts = unit.pts;
    if (!unit.pts && !unit.noPts) plan.pts = display + firstRef * maker.ticks;
    planPictures(plan, unit);
    for (const StreamSpec& stream : maker.recipe.streams) {
        for (uint64_t i = 0; i < stream.packsPerVobu; i++) {
            plan.packs.push_back(
                { stream.streamId, stream.subStreamId, display + i * plan.duration / stream.packsPerVobu });
        }
    }
    plan.packs.insert(plan.packs.end(), unit.packs.begin(), unit.packs.end());
    return plan;
}

StreamPackRecord describePack(const StreamPackSpec& pack)
{
    StreamPackRecord record = {};
    record.pts = uint64_t(int64_t(int32_t(uint32_t(pack.pts.value_or(0)))));
    const uint64_t id = pack.streamId == 0xBD ? pack.subStreamId : pack.streamId;
    const struct {
        uint64_t first, last, kind;
        bool isPrivate;
    } kinds[] = { { 0xA0, 0xA7, PACK_LPCM, true }, { 0xC0, 0xC7, PACK_MPEG_AUDIO, false },
                  { 0x80, 0x87, PACK_AC3, true },  { 0x88, 0x8F, PACK_DTS, true },
                  { 0x90, 0x97, PACK_SDDS, true }, { 0x20, 0x3F, PACK_SUBPICTURE, true } };
    for (const auto& kind : kinds) {
        if (kind.isPrivate != (pack.streamId == 0xBD) || id < kind.first || id > kind.last) continue;
        record.kind = kind.kind;
        record.streamIndex = id - kind.first;
    }
    return record;
}

void emit(Maker& maker, const Bytes& pack)
{
    maker.movie.bytes += pack;
}

void addUnit(Maker& maker, const VobuSpec& unit)
{
    if (unit.newVob) maker.time = 0;
    const UnitPlan plan = planUnit(maker, unit);
    if (unit.scr) {
        maker.scr = *unit.scr;
    } else if (!maker.recipe.scrStep || unit.newVob) {
        maker.scr = maker.time;
    }
    const uint64_t packCount = 1 + plan.video.size() + plan.packs.size() + unit.padding;
    const uint64_t start = maker.scr;
    const uint64_t sector = maker.movie.sectors();
    uint64_t index = 0;
    const auto clock = [&] {
        const uint64_t step = maker.recipe.scrStep ? index * maker.recipe.scrStep : index * plan.duration / packCount;
        index++;
        return PackClock{ start + step, 0 };
    };
    VobuRecord record = {};
    record.sector = sector;
    record.scr = uint64_t(int64_t(int32_t(uint32_t(start))));
    if ((start & 0xFFFFFFFF) == 0) maker.vob++;
    record.vobId = maker.vob;
    record.cellId = 1;
    record.pictureCount = plan.pictures.size();
    if (!plan.temporalRefs.empty()) record.temporalRef = plan.temporalRefs[0];
    if (plan.pts && !plan.video.empty()) record.firstPts = uint64_t(int64_t(int32_t(uint32_t(*plan.pts))));

    emit(maker, navPack(clock(), sector));
    std::vector<uint64_t> videoSectors;
    const auto emitVideo = [&](uint64_t i) {
        const PesSpec pes = { .clock = clock(), .pts = i == 0 ? plan.pts : std::nullopt };
        videoSectors.push_back(maker.movie.sectors());
        emit(maker, videoPack(plan.video[i], pes));
    };
    if (!plan.video.empty()) emitVideo(0);
    for (const StreamPackSpec& pack : plan.packs) {
        StreamPackRecord found = describePack(pack);
        found.sector = maker.movie.sectors();
        found.vobId = maker.vob;
        if (found.kind == PACK_SUBPICTURE) found.vobuSector = sector;
        maker.movie.packs.push_back(found);
        emit(maker, streamPack(pack.streamId, pack.subStreamId, { .clock = clock(), .pts = pack.pts }));
    }
    for (uint64_t i = 1; i < plan.video.size(); i++) emitVideo(i);
    for (uint64_t i = 0; i < unit.padding; i++) emit(maker, paddingPack(clock()));

    // A reference ends in the pack that holds the byte before its successor.
    uint64_t* const ends[] = { &record.firstRefEnd, &record.secondRefEnd, &record.thirdRefEnd };
    uint64_t stored = 0;
    for (uint64_t i = 0; i + 1 < plan.pictures.size() && stored < 3; i++) {
        if (plan.types[i] == 'B') continue;
        const auto [payload, position] = plan.pictures[i + 1];
        *ends[stored++] = videoSectors[position ? payload : payload - 1] - sector;
    }
    record.lastSector = maker.movie.sectors() - 1;
    maker.movie.vobus.push_back(record);
    maker.scr = start + index * maker.recipe.scrStep;
    maker.time += plan.duration;
}

}   // namespace

Movie makeMovie(const MovieSpec& recipe)
{
    Maker maker = { recipe, recipe.standard == 1 ? uint64_t(3600) : uint64_t(3003), {}, 0, 0, 0 };
    for (uint64_t i = 0; i < recipe.leadingPadding; i++) emit(maker, paddingPack());
    for (const VobuSpec& unit : recipe.vobus) addUnit(maker, unit);
    return maker.movie;
}

// ---- source files -----------------------------------------------------------------------------------------------

void Sources::add(const std::u16string& path)
{
    if (paths.size() == std::size(slots)) throw std::length_error("more than 32 sources");
    paths.push_back(path);
    for (uint64_t i = 0; i < paths.size(); i++) slots[i] = paths[i].data();   // the strings may have moved
}

Bytes Sources::read() const
{
    Bytes all;
    for (const std::u16string& path : paths) all += readFile(path);
    return all;
}

void writeSources(Sources& sources, const TempDir& folder, const Bytes& bytes, const std::vector<uint64_t>& cuts)
{
    uint64_t from = 0;
    for (uint64_t i = 0; i <= cuts.size(); i++) {
        const uint64_t to = i < cuts.size() ? cuts[i] : bytes.size();
        const std::u16string path = folder / toWide("title" + std::to_string(i + 1) + ".vob");
        writeFile(path, Bytes(bytes.begin() + std::ptrdiff_t(from), bytes.begin() + std::ptrdiff_t(to)));
        sources.add(path);
        from = to;
    }
}
