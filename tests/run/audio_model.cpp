// audio_model.cpp: the tables and calls of a DVD-Audio disc, worked out from its records alone.
#include "tests/run/audio_project.h"

namespace {

// A structure that grows by big-endian numbers.
struct Writer {
    Bytes bytes = {};

    Writer& put(uint64_t width, uint64_t value)
    {
        for (uint64_t i = width; i-- > 0;) bytes.push_back(uint8_t(value >> 8 * i));
        return *this;
    }
    Writer& text(const char* letters)
    {
        while (*letters) bytes.push_back(uint8_t(*letters++));
        return *this;
    }
    Writer& to(uint64_t offset)   // zeros up to an offset
    {
        if (bytes.size() > offset) throw std::length_error("a structure of the model overlaps");
        bytes.resize(offset, 0);
        return *this;
    }
};

uint64_t sizeCode(uint64_t bits)
{
    return bits == 16 ? 0 : bits == 20 ? 1 : 2;
}

uint64_t rateCode(uint64_t rate)
{
    const bool family48 = rate % 48000 == 0;
    const uint64_t step = rate / (family48 ? 48000 : 44100);
    return (family48 ? 0u : 8u) + (step == 1 ? 0u : step == 2 ? 1u : 2u);
}

uint64_t bothGroups(const AudioTrack& track, uint64_t code)
{
    return code << 4 | (track.assign < 2 ? 15 : code);
}

// What the stage knows of a track.
uint64_t packsOf(const AudioSet& set, uint64_t i)
{
    if (set.sound == Sound::UNKNOWN) return 0;
    return set.sound == Sound::WAVES ? 1 : set.tracks[i].packs;
}

uint64_t firstPtsOf(const AudioSet& set, uint64_t i)
{
    return set.sound == Sound::FINISHED ? set.tracks[i].firstPts : 0;
}

uint64_t startOf(const AudioSet& set, uint64_t i)
{
    uint64_t start = 0;
    for (uint64_t before = 0; before < i; before++) start += packsOf(set, before);
    return start;
}

uint64_t timeOf(const AudioSet& set)
{
    uint64_t time = 0;
    for (const AudioTrack& track : set.tracks) time += track.playTime;
    return time;
}

uint64_t atsSectors(const AudioDisc& disc, const AudioSet& set)
{
    const uint64_t table = 32 + (disc.hasAsvs() ? 48 : 32) * set.tracks.size();
    return 1 + (table + 2047) / 2048;   // tables of one byte more than whole sectors there are none
}

Bytes atsIfo(const AudioDisc& disc, const AudioSet& set)
{
    const uint64_t n = set.tracks.size(), sectors = atsSectors(disc, set), each = disc.hasAsvs() ? 48 : 32;
    Writer out;
    out.text("DVDAUDIO-ATS").put(4, 2 * sectors - 1 + startOf(set, n)).to(28).put(4, sectors - 1).to(33).put(1, 0x12);
    out.to(128).put(4, 2047).to(196).put(4, sectors).to(204).put(4, 1).to(258);
    if (n) {
        out.put(1, bothGroups(set.tracks[0], sizeCode(set.tracks[0].bits)));
        out.put(1, bothGroups(set.tracks[0], rateCode(set.tracks[0].rate))).put(1, set.tracks[0].assign);
    } else {
        out.put(2, 0xFFFF);
    }
    out.to(2048).put(4, 0x00010000).put(4, 31 + each * n).put(4, 0x81000000).put(4, 16);
    out.put(2, 0).put(1, n).put(1, n).put(4, timeOf(set)).put(2, 0).put(2, 16).put(2, 16 + 20 * n);
    out.put(2, disc.hasAsvs() ? 16 + 32 * n : 0);
    for (uint64_t i = 0; i < n; i++) {
        out.put(2, i ? 0x0010 : 0xC010).put(2, 0).put(1, i + 1).put(1, 0).put(4, firstPtsOf(set, i));
        out.put(4, set.tracks[i].playTime).put(6, 0);
    }
    for (uint64_t i = 0; i < n; i++) {
        out.put(4, 0x01000000).put(4, startOf(set, i)).put(4, startOf(set, i) + packsOf(set, i) - 1);
    }
    for (uint64_t i = 0; disc.hasAsvs() && i < n; i++)
        out.put(2, 0x0100).put(2, 6 * n + 10 * i).put(2, 6 * n + 10 * i + 9);
    for (uint64_t i = 0; disc.hasAsvs() && i < n; i++) out.put(1, i + 1).put(2, 0).put(1, i + 1).put(6, 0);
    out.to(2048 * sectors);
    return out.bytes;
}

// ---- pictures -------------------------------------------------------------------------------------------------------

uint64_t unitSectors(const AudioDisc& disc, uint64_t moreBytes)
{
    const uint64_t bytes = 28 + 2 * (disc.pal() ? 576 : 480) + moreBytes;
    return bytes <= FIRST_SPU_BYTES ? 1 : 1 + (bytes - FIRST_SPU_BYTES + LATER_SPU_BYTES - 1) / LATER_SPU_BYTES;
}

uint64_t videoSectors(uint64_t bytes)
{
    return bytes <= FIRST_VIDEO_BYTES ? 1 : 1 + (bytes - FIRST_VIDEO_BYTES + LATER_VIDEO_BYTES - 1) / LATER_VIDEO_BYTES;
}

uint64_t stillSectors(const AudioDisc& disc, const AudioStill& still)
{
    return 1 + (still.hasSubPicture ? unitSectors(disc, still.moreBytes) : 0) + videoSectors(still.bytes) + 1;
}

// A unit of AUDIO_TS.VOB.
struct MenuUnit {
    uint64_t first, last, pictures, vob;
};

std::vector<MenuUnit> menuUnits(const AudioDisc& disc)
{
    std::vector<MenuUnit> units;
    uint64_t sector = 0;
    for (uint64_t i = 0; i < disc.menus.size(); i++) {
        const AudioMenu& menu = disc.menus[i];
        const uint64_t subPicture = unitSectors(disc, menu.moreBytes);
        for (uint64_t k = 0; k < (menu.units ? menu.units : 1); k++) {
            const uint64_t video = menu.units ? 1 : videoSectors(menu.stillBytes);
            const uint64_t sectors = 1 + video + (k ? 0 : subPicture);
            units.push_back({ sector, sector + sectors - 1, menu.units ? 12u : 1u, i + 1 });
            sector += sectors;
        }
    }
    return units;
}

void putColors(Writer& out, const std::vector<Color>& colors)
{
    const uint64_t values[] = { 0x00108080, 0x00EB8080, 0x0051F05B, 0x00902336, 0x00286EF0 };
    for (uint64_t i = 0; i < 16; i++) out.put(4, values[i < colors.size() ? size_t(colors[i]) : 0]);
}

uint64_t timeCode(const AudioDisc& disc, uint64_t frames)
{
    const uint64_t rate = disc.pal() ? 25 : 30, seconds = frames / rate;
    const auto bcd = [](uint64_t n) { return n / 10 * 16 + n % 10; };
    return bcd(seconds / 3600) << 24 | bcd(seconds / 60 % 60) << 16 | bcd(seconds % 60) << 8 |
           (bcd(frames % rate) + (disc.pal() ? 0x40 : 0xC0));
}

void putMenuChain(Writer& out, const AudioDisc& disc, const std::vector<MenuUnit>& units, uint64_t i)
{
    const uint64_t start = out.bytes.size(), frames = disc.menus[i].units ? 12 * disc.menus[i].units : 12;
    const MenuUnit& unit = units[i];   // that of its index, whatever menu it is of
    out.put(4, 0x00000101).put(4, timeCode(disc, frames)).to(start + 28).put(1, 0x80).to(start + 164);
    putColors(out, disc.menuColors);
    out.put(2, 236).put(2, 260).put(2, 262).put(2, 286);
    out.put(2, 1).put(2, 1).put(2, 0).put(2, 23).put(8, 0).put(8, 0).put(2, 0x0100);
    out.put(4, 0x0200FF00).put(4, timeCode(disc, frames)).put(4, unit.first).put(4, 0).put(4, unit.first);
    out.put(4, unit.last).put(2, unit.vob).put(1, 0).put(1, 1);
}

Bytes menuTable(const AudioDisc& disc)
{
    const uint64_t n = disc.menus.size(), last = 23 + 298 * n;
    const std::vector<MenuUnit> units = menuUnits(disc);
    Writer out;
    out.put(4, 0x00010000).put(4, last).text("en").put(2, 0x0080).put(4, 16);
    out.put(2, n).put(2, 0).put(4, last - 16);
    for (uint64_t i = 0; i < n; i++) out.put(4, 0x82000000).put(4, 8 + 8 * n + 290 * i);
    for (uint64_t i = 0; i < n; i++) putMenuChain(out, disc, units, i);
    out.bytes.resize((last / 256 * 256 + 2047) / 2048 * 2048, 0);   // what the last 256 bytes add is cut
    return out.bytes;
}

Bytes amgIfo(const AudioDisc& disc)
{
    const Bytes menus = disc.menus.empty() ? Bytes() : menuTable(disc);
    const uint64_t sectors = 3 + menus.size() / 2048, vob = menuVobSectors(disc);
    const AudioAttributes& attributes = disc.menuAttributes;
    Writer out;
    out.text("DVDAUDIO-AMG").put(4, vob + 2 * sectors - 1).to(28).put(4, sectors - 1).to(33).put(1, 0x12);
    out.to(38).put(2, 1).put(2, 1).put(1, 1).to(47).put(1, 1).put(4, disc.hasAsvs() ? vob + 2 * sectors : 0);
    out.to(63).put(1, 1).to(128).put(4, 2047).to(192).put(4, menus.empty() ? 0 : sectors).put(4, 1).put(4, 2);
    out.put(4, menus.empty() ? 0 : 3).to(256);
    out.put(1, 3u + (attributes.wide ? 0x0Cu : 0u) + (disc.pal() ? 0x10u : 0u) + (attributes.mpeg1 ? 0u : 0x40u));
    const AudioSet& first = disc.titleSets[0];
    for (uint64_t table = 1; table <= 2; table++) {
        out.to(2048 * table).put(2, 1).put(2, 17).put(1, 0x81).put(1, first.tracks.size()).put(2, 0);
        out.put(4, timeOf(first)).put(2, 0x0101).put(4, 6);
    }
    out.to(3 * 2048);
    return out.bytes + menus;
}

Bytes audioPp(const AudioDisc& disc, uint64_t amgSectors)
{
    const AudioSet& set = disc.titleSets[0];
    const uint64_t base = 2 * amgSectors + 64 + atsSectors(disc, set);
    Writer out;
    for (uint64_t copy = 0; copy < 8; copy++) {
        out.to(16384 * copy).text("DVDAUDIOSAPP").put(2, set.tracks.size()).put(2, 0x12).put(2, 0);
        for (uint64_t i = 0; i < set.tracks.size(); i++) {
            const AudioTrack& track = set.tracks[i];
            const uint64_t end = out.bytes.size() + 52, first = base + startOf(set, i);
            out.put(1, 1).put(1, i + 1).put(4, firstPtsOf(set, i)).put(4, track.playTime).put(4, 0);
            out.put(1, i ? 8 : 0xC8).put(1, bothGroups(track, sizeCode(track.bits)));
            out.put(1, bothGroups(track, rateCode(track.rate))).put(1, track.assign).to(end - 14);
            out.put(4, first).put(4, first).put(4, first + packsOf(set, i) - 1).put(2, 0);
        }
    }
    out.to(8 * 16384);
    return out.bytes;
}

Bytes asvsIfo(const AudioDisc& disc)
{
    Writer out;
    out.text("DVDAUDIOASVS").put(2, 1).put(2, 0x12).put(4, 2).put(4, stillVobSectors(disc) - 1);
    std::vector<AudioAttributes> attributes = disc.attributes;
    if (attributes.empty()) attributes.push_back({});
    for (const AudioAttributes& a : attributes) {
        out.put(1, (a.mpeg1 ? 0u : 0x40u) + (disc.pal() ? 0x10u : 0u) + (a.wide ? 0x0Cu : 0u) + 3u);
        out.put(1, a.resolution * 8 + 3);
    }
    out.to(32);
    putColors(out, disc.stillColors);
    out.put(1, disc.stills.size()).put(1, 0).put(2, 1).to(888);
    uint64_t sector = 0;
    for (const AudioStill& still : disc.stills) {
        out.put(2, sector % 4096);
        sector += stillSectors(disc, still);
    }
    out.to(4096);
    return out.bytes;
}

}   // namespace

uint64_t menuVobSectors(const AudioDisc& disc)
{
    return disc.menus.empty() ? 0 : menuUnits(disc).back().last + 1;
}

uint64_t stillVobSectors(const AudioDisc& disc)
{
    uint64_t sectors = 0;
    for (const AudioStill& still : disc.stills) sectors += stillSectors(disc, still);
    return sectors;
}

Snapshot audioTables(const AudioDisc& disc)
{
    Snapshot files;
    files["AUDIO_TS.IFO"] = files["AUDIO_TS.BUP"] = amgIfo(disc);
    files["AUDIO_PP.IFO"] = audioPp(disc, files["AUDIO_TS.IFO"].size() / 2048);
    if (disc.hasAsvs()) files["AUDIO_SV.IFO"] = files["AUDIO_SV.BUP"] = asvsIfo(disc);
    for (uint64_t i = 1; i <= disc.titleSets.size(); i++) {
        files[atsName(i) + "_0.IFO"] = files[atsName(i) + "_0.BUP"] = atsIfo(disc, disc.titleSets[i - 1]);
    }
    return files;
}

std::vector<ProgressCall> audioCalls(const AudioDisc& disc)
{
    const uint32_t sets = uint32_t(disc.titleSets.size()), total = 102 * sets + 25;
    std::vector<ProgressCall> calls;
    const uint32_t stills = uint32_t(disc.stills.size()), menus = uint32_t(disc.menus.size());
    if (disc.hasAsvs()) {
        for (uint32_t i = 0; i < stills; i++) calls.push_back({ total, 100 * i / stills / 10, 4 });
        calls.insert(calls.end(), { { total, 10, 4 }, { total, 11, 5 }, { total, 12, 6 } });
    }
    for (uint32_t i = 0; i < sets; i++) {
        const AudioSet& set = disc.titleSets[i];
        const uint32_t end = 12 + 102 * (i + 1), tracks = uint32_t(set.tracks.size());
        if (set.sound == Sound::WAVES || !tracks) {
            for (uint32_t t = 1; t <= tracks; t++) calls.push_back({ total, 12 + 102 * i + 100 * t / tracks, 1 });
            calls.push_back({ total, end - 2, 1 });
        }
        calls.insert(calls.end(), { { total, end - 1, 2 }, { total, end, 3 } });
    }
    for (uint32_t i = 0; i < menus; i++) calls.push_back({ total, 100 * i / menus / 10 + total - 13, 7 });
    calls.insert(calls.end(), { { total, total - 3, 7 }, { total, total - 2, 8 }, { total, total - 1, 9 } });
    calls.push_back({ total, total, 10 });
    return calls;
}
