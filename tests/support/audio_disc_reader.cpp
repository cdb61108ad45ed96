// audio_disc_reader.cpp: manager, title sets and AUDIO_PP.IFO; the sound is in audio_sound_reader.cpp, stills
// and menus are in audio_picture_reader.cpp.
#include "tests/support/audio_disc_reader.h"

#include "tests/support/audio_disc_view.h"

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

namespace {

bool load(const fs::path& path, Octets& bytes)
{
    std::ifstream in(path, std::ios::binary);
    if (!in.good()) return false;
    bytes.resize(fs::file_size(path));
    in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(bytes.size()));
    return in.good() || bytes.empty();
}

// A file of the folder; its absence is a fault.
struct File {
    File(const fs::path& folder, const std::string& name, AudioDiscReport& report)
        : there(load(folder / name, bytes)), view{ &bytes, name, &report }
    {
        if (!there) view.fault("is missing");
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    Octets bytes;
    bool there;
    View view;

    uint64_t sectors() const
    {
        return bytes.size() / SECTOR;
    }
};

void expectText(const View& view, uint64_t at, const std::string& text)
{
    for (uint64_t i = 0; i < text.size(); i++) view.expect(at + i, 1, uint8_t(text[i]), "mark");
}

void expectBackup(const fs::path& folder, const File& ifo, const std::string& name, AudioDiscReport& report)
{
    const File backup(folder, name, report);
    if (backup.there && backup.bytes != ifo.bytes) backup.view.fault("is no copy");
}

// Header and sectors that every IFO of the disc has.
bool isIfo(const File& ifo, const char* mark)
{
    if (!ifo.there) return false;
    if (ifo.bytes.size() < 2 * SECTOR || ifo.bytes.size() % SECTOR) {
        ifo.view.fault("has no whole sectors");
        return false;
    }
    expectText(ifo.view, 0, mark);
    ifo.view.expect(28, 4, ifo.sectors() - 1, "last sector of the IFO");
    ifo.view.expect(33, 1, 0x12, "version");
    ifo.view.expect(128, 4, 2047, "last byte of the header");
    return true;
}

std::string setName(uint64_t number, const char* ending)
{
    return (number < 10 ? "ATS_0" : "ATS_") + std::to_string(number) + ending;
}

// ---- a title set ----------------------------------------------------------------------------------------------------

struct TitleSet {
    std::vector<SoundTrack> tracks;
    std::vector<uint64_t> playTimes;   // as the table has them
    uint64_t ifoSectors = 0;
};

void checkTrackRecords(const View& ifo, uint64_t at, TitleSet& set)
{
    const uint64_t records = at + ifo.get(at + 10, 2), sectors = at + ifo.get(at + 12, 2);
    uint64_t sum = 0;
    for (uint64_t i = 0; i < set.tracks.size(); i++) {
        const SoundTrack& track = set.tracks[i];
        const uint64_t record = records + 20 * i, place = sectors + 12 * i;
        ifo.expect(record, 4, i ? 0x00100000 : 0xC0100000, "kind of a track");
        ifo.expect(record + 4, 2, (i + 1) << 8, "number of a track");
        ifo.expect(record + 6, 4, track.firstPts, "first time stamp of a track");
        // Units of two sample times drop an odd one; a pack may hold nothing but headers.
        const uint64_t time = ifo.get(record + 10, 4), found = track.ticks();
        if (time < found || time > found + 2 * 90000 / track.rate() + 1) {
            ifo.fault("play time of track ", i + 1, " is ", time, ", its samples last ", found);
        }
        set.playTimes.push_back(time);
        sum += time;
        if (!ifo.allZero(record + 14, record + 20)) ifo.fault("rest of track ", i + 1);
        ifo.expect(place, 4, 0x01000000, "kind of a track's sectors");
        ifo.expect(place + 4, 4, track.first, "first sector of a track");
        ifo.expect(place + 8, 4, track.first + track.packs - 1, "last sector of a track");
    }
    ifo.expect(at + 4, 4, sum, "play time of the title");
}

void checkStillRecords(const View& ifo, uint64_t at, uint64_t tracks)
{
    const uint64_t lists = at + ifo.get(at + 14, 2);
    for (uint64_t i = 0; i < tracks; i++) {
        const uint64_t first = ifo.get(lists + 6 * i + 2, 2), last = ifo.get(lists + 6 * i + 4, 2);
        ifo.expect(lists + 6 * i, 2, 0x0100, "stills of a track");
        if (first != 6 * tracks + 10 * i || last != first + 9) ifo.fault("place of the still of track ", i + 1);
        ifo.expect(lists + first, 4, (i + 1) << 24 | (i + 1), "still of a track");
        if (!ifo.allZero(lists + first + 4, lists + last + 1)) ifo.fault("rest of the still of track ", i + 1);
    }
}

void checkTrackTable(const View& ifo, TitleSet& set, bool stills)
{
    const uint64_t table = SECTOR * ifo.get(204, 4), at = table + 16, n = set.tracks.size();
    ifo.expect(table, 4, 0x00010000, "titles");
    ifo.expect(table + 4, 4, 16 + 16 + (stills ? 48 : 32) * n - 1, "last byte of the table");
    ifo.expect(table + 8, 4, 0x81000000, "kind of the title");
    ifo.expect(table + 12, 4, 16, "place of the title");
    ifo.expect(at, 2, 0, "head of the title");
    ifo.expect(at + 2, 2, n << 8 | n, "tracks of the title");
    ifo.expect(at + 8, 2, 0, "head of the title");
    ifo.expect(at + 10, 2, 16, "place of the tracks");
    ifo.expect(at + 12, 2, 16 + 20 * n, "place of the sectors");
    ifo.expect(at + 14, 2, stills ? 16 + 32 * n : 0, "place of the stills");
    checkTrackRecords(ifo, at, set);
    if (stills) checkStillRecords(ifo, at, n);
    const uint64_t end = at + 16 + (stills ? 48 : 32) * n;
    if (end > ifo.bytes->size() || !ifo.allZero(end, ifo.bytes->size())) ifo.fault("what lies behind the table");
}

TitleSet readTitleSet(const fs::path& folder, uint64_t number, bool stills, AudioDiscReport& report)
{
    TitleSet set;
    const File ifo(folder, setName(number, "_0.IFO"), report), aob(folder, setName(number, "_1.AOB"), report);
    if (!isIfo(ifo, "DVDAUDIO-ATS") || !aob.there) return set;
    set.ifoSectors = ifo.sectors();
    set.tracks = readSound(aob.view);
    for (const SoundTrack& track : set.tracks) {
        report.soundPacks += track.packs;
        report.sampleBytes += track.bytes;
    }
    report.tracks += set.tracks.size();
    report.titleSets++;
    expectBackup(folder, ifo, setName(number, "_0.BUP"), report);
    ifo.view.expect(12, 4, 2 * ifo.sectors() - 1 + aob.sectors(), "last sector");
    ifo.view.expect(192, 4, 0, "menus");
    ifo.view.expect(196, 4, ifo.sectors(), "first sector of the sound");
    ifo.view.expect(204, 4, 1, "sector of the table");
    if (!set.tracks.empty()) {
        ifo.view.expect(258, 1, set.tracks[0].sizes, "sample sizes");
        ifo.view.expect(259, 1, set.tracks[0].rates, "sample rates");
        ifo.view.expect(260, 1, set.tracks[0].assign, "channel assignment");
    }
    checkTrackTable(ifo.view, set, stills);
    return set;
}

// ---- the manager ----------------------------------------------------------------------------------------------------

void checkTitleTable(const View& ifo, uint64_t sector, const TitleSet& first)
{
    const uint64_t at = sector * SECTOR;
    uint64_t time = 0;
    for (const uint64_t one : first.playTimes) time += one;
    ifo.expect(at, 4, 0x00010011, "head of the titles");
    ifo.expect(at + 4, 4, 0x81000000 | first.tracks.size() << 16, "tracks of the title");
    ifo.expect(at + 8, 4, time, "play time of the title");
    ifo.expect(at + 12, 2, 0x0101, "number of the title");
    ifo.expect(at + 14, 4, 6, "sector of the title");
    if (!ifo.allZero(at + 18, at + SECTOR)) ifo.fault("what lies behind the titles");
}

void checkManager(const File& ifo, uint64_t menuSectors, bool stills, const TitleSet& first)
{
    const View& view = ifo.view;
    view.expect(12, 4, menuSectors + 2 * ifo.sectors() - 1, "last sector");
    view.expect(38, 2, 1, "volumes");
    view.expect(40, 2, 1, "volume");
    view.expect(42, 1, 1, "side");
    view.expect(47, 1, 1, "start");
    view.expect(48, 4, stills ? menuSectors + 2 * ifo.sectors() : 0, "first sector of the stills");
    view.expect(63, 1, 1, "title sets");
    view.expect(192, 4, menuSectors ? ifo.sectors() : 0, "first sector of the menus");
    view.expect(196, 4, 1, "sector of the titles");
    view.expect(200, 4, 2, "sector of the second titles");
    view.expect(204, 4, menuSectors ? 3 : 0, "sector of the menu table");
    view.expect(212, 4, 0, "sector of nothing");
    if ((view.get(256, 1) & 0x03) != 3) view.fault("display modes of the menus");
    checkTitleTable(view, 1, first);
    checkTitleTable(view, 2, first);
}

void checkAudioPp(const fs::path& folder, uint64_t managerSectors, const TitleSet& first, AudioDiscReport& report)
{
    constexpr uint64_t COPY = 16384;
    const File pp(folder, "AUDIO_PP.IFO", report);
    if (!pp.there) return;
    if (pp.bytes.size() != 8 * COPY) return pp.view.fault("is of ", pp.bytes.size(), " bytes");
    for (uint64_t i = COPY; i < pp.bytes.size(); i++) {
        if (pp.bytes[i] == pp.bytes[i % COPY]) continue;
        return pp.view.fault("copies differ at ", i);
    }
    expectText(pp.view, 0, "DVDAUDIOSAPP");
    pp.view.expect(12, 2, first.tracks.size(), "tracks");
    pp.view.expect(14, 2, 0x12, "version");
    pp.view.expect(16, 2, 0, "head");
    const uint64_t base = 2 * managerSectors + 8 * COPY / SECTOR + first.ifoSectors;
    for (uint64_t i = 0; i < first.tracks.size(); i++) {
        const SoundTrack& track = first.tracks[i];
        const uint64_t at = 18 + 52 * i, sector = base + track.first;
        pp.view.expect(at, 2, 0x0100 | (i + 1), "number of a track");
        pp.view.expect(at + 2, 4, track.firstPts, "first time stamp of a track");
        if (i < first.playTimes.size()) pp.view.expect(at + 6, 4, first.playTimes[i], "play time of a track");
        pp.view.expect(at + 10, 4, 0, "flag of a track");
        pp.view.expect(at + 14, 1, i ? 0x08 : 0xC8, "kind of a track");
        pp.view.expect(at + 15, 1, track.sizes, "sample sizes of a track");
        pp.view.expect(at + 16, 1, track.rates, "sample rates of a track");
        pp.view.expect(at + 17, 1, track.assign, "channel assignment of a track");
        if (!pp.view.allZero(at + 18, at + 38)) pp.view.fault("middle of track ", i + 1);
        pp.view.expect(at + 38, 4, sector, "first sector of a track");
        pp.view.expect(at + 42, 4, sector, "start sector of a track");
        pp.view.expect(at + 46, 4, sector + track.packs - 1, "last sector of a track");
        pp.view.expect(at + 50, 2, 0, "end of a track");
    }
    if (!pp.view.allZero(18 + 52 * first.tracks.size(), COPY)) pp.view.fault("what lies behind the tracks");
}

}   // namespace

AudioDiscReport readAudioDisc(const fs::path& folder)
{
    AudioDiscReport report;
    const File ifo(folder, "AUDIO_TS.IFO", report);
    if (!isIfo(ifo, "DVDAUDIO-AMG")) return report;
    expectBackup(folder, ifo, "AUDIO_TS.BUP", report);
    const bool stills = ifo.view.get(48, 4) != 0;
    const bool pal = (ifo.view.get(256, 1) & 0x10) != 0;

    TitleSet first;
    for (uint64_t number = 1; number == 1 || fs::exists(folder / setName(number, "_0.IFO")); number++) {
        const TitleSet set = readTitleSet(folder, number, stills, report);
        if (number == 1) first = set;
    }
    uint64_t menuSectors = 0;
    if (ifo.view.get(192, 4)) {
        const File vob(folder, "AUDIO_TS.VOB", report);
        menuSectors = vob.sectors();
        checkAudioMenus(ifo.view, vob.view, pal);
    } else if (fs::exists(folder / "AUDIO_TS.VOB")) {
        ifo.view.fault("knows of no menus, but AUDIO_TS.VOB is there");
    }
    checkManager(ifo, menuSectors, stills, first);
    checkAudioPp(folder, ifo.sectors(), first, report);

    if (stills) {
        const File table(folder, "AUDIO_SV.IFO", report);
        if (!table.there) return report;
        expectBackup(folder, table, "AUDIO_SV.BUP", report);
        Octets none;
        const bool has = fs::exists(folder / "AUDIO_SV.VOB");
        if (has) {
            const File vob(folder, "AUDIO_SV.VOB", report);
            checkStills(table.view, vob.view, pal);
        } else {
            checkStills(table.view, { &none, "AUDIO_SV.VOB", &report }, pal);
        }
    } else if (fs::exists(folder / "AUDIO_SV.IFO")) {
        ifo.view.fault("knows of no stills, but AUDIO_SV.IFO is there");
    }
    return report;
}
