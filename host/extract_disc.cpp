// extract_disc.cpp: the folder of a disc whose tracks are to be extracted: its files, and what a failure says of them.
#include "extract_disc.h"

#include "codes.h"
#include "named_file.h"
#include "text.h"

#include <algorithm>
#include <numeric>

namespace fs = std::filesystem;

static constexpr uint64_t SECTOR_BYTES = 2048, MOST_PARTS = 9;
static const char* const TABLES[] = { "AUDIO_PP.IFO", "VIDEO_TS.IFO", "VTS_01_0.IFO" };

static bool isThere(const fs::path& path)
{
    std::error_code error;
    return fs::exists(path, error);
}

static std::string partName(DiscKind kind, uint64_t number)
{
    return kind == DISC_AUDIO ? "ATS_01_" + std::to_string(number) + ".AOB"
                              : "VTS_01_" + std::to_string(number) + ".VOB";
}

// ---- finding it ---------------------------------------------------------------------------------------------------

static fs::path folderOf(const fs::path& disc)
{
    if (isThere(disc / "AUDIO_PP.IFO") || isThere(disc / "VIDEO_TS.IFO")) return disc;
    if (isThere(disc / "AUDIO_TS" / "AUDIO_PP.IFO")) return disc / "AUDIO_TS";
    if (isThere(disc / "VIDEO_TS" / "VIDEO_TS.IFO")) return disc / "VIDEO_TS";
    return disc;
}

// As the library decides: without the sound of DVD-Audio it takes the tables of DVD-Video.
static DiscKind kindOf(const fs::path& folder)
{
    const bool audio = isThere(folder / "AUDIO_PP.IFO") && isThere(folder / partName(DISC_AUDIO, 1));
    const bool video = isThere(folder / "VIDEO_TS.IFO") && isThere(folder / "VTS_01_0.IFO");
    return !audio && video ? DISC_VIDEO : DISC_AUDIO;
}

DiscFolder findDisc(const fs::path& disc)
{
    DiscFolder found = { .folder = folderOf(disc) };
    found.kind = kindOf(found.folder);
    for (uint64_t number = 1; number <= MOST_PARTS; number++) {
        const fs::path part = found.folder / partName(found.kind, number);
        if (!isThere(part)) continue;
        found.parts.push_back(part);
        found.partBytes.push_back(fileBytes(part));
    }
    return found;
}

static bool isPlainOrMissing(const fs::path& path)
{
    std::error_code error;
    const fs::file_status there = fs::status(path, error);
    return !fs::exists(there) || fs::is_regular_file(there);
}

FileFault folderFault(const DiscFolder& disc, fs::path* file)
{
    std::vector<std::string> names(std::begin(TABLES), std::end(TABLES));
    for (const DiscKind kind : { DISC_AUDIO, DISC_VIDEO }) {
        for (uint64_t number = 1; number <= MOST_PARTS; number++) names.push_back(partName(kind, number));
    }
    for (const std::string& name : names) {
        *file = disc.folder / name;
        if (!isPlainOrMissing(*file)) return { 0, "it is no plain file" };   // opening a pipe would wait
    }
    for (uint64_t number = 1; number <= disc.parts.size(); number++) {
        *file = disc.folder / partName(disc.kind, number);
        if (disc.parts[number - 1] != *file) return { 0, "there is no such file, but the one behind it" };
    }
    return {};
}

// ---- failures -----------------------------------------------------------------------------------------------------

static std::string smallWhy(const fs::path& file, uint64_t least)
{
    if (const std::string why = notReadableWhy(file); !why.empty()) return why;
    const uint64_t bytes = fileBytes(file);
    return bytes < least ? "it has " + bytesText(bytes) + ", fewer than its table needs" : "it can't be read";
}

static FileFault losslessFault(const DiscFolder& disc, uint64_t tracks)
{
    const bool video = isThere(disc.folder / ".." / "VIDEO_TS" / "VIDEO_TS.IFO");
    return { CODE_EXTRACT_MLP,
             "track " + std::to_string(tracks + 1) +
                 " is packed losslessly (MLP), which this program can't unpack; so no track of the disc is extracted" +
                 (video ? ". The VIDEO_TS folder beside it may hold the sound as LPCM" : "") };
}

/** The first file of the disc that is there and can't be read. @return why; empty if there is none */
static std::string unreadableWhy(const DiscFolder& disc, fs::path* file)
{
    std::vector<fs::path> files;
    for (const char* table : TABLES) files.push_back(disc.folder / table);
    files.insert(files.end(), disc.parts.begin(), disc.parts.end());
    for (const fs::path& each : files) {
        const std::string why = isThere(each) ? notReadableWhy(each) : "";
        if (why.empty()) continue;
        *file = each;
        return why;
    }
    return "";
}

FileFault openFault(const DiscFolder& disc, uint64_t code, uint64_t tracks, fs::path* file)
{
    constexpr uint64_t AUDIO_TABLE_BYTES = 16384;
    const fs::path audio = disc.folder / TABLES[0], manager = disc.folder / TABLES[1],
                   titleSet = disc.folder / TABLES[2];
    const std::string why = unreadableWhy(disc, file);
    if (!why.empty()) return { code, why };
    switch (code) {
    case CODE_EXTRACT_NO_DISC:
        *file = disc.folder;
        return { code,
                 "there is neither AUDIO_PP.IFO, of DVD-Audio, nor VIDEO_TS.IFO with VTS_01_0.IFO, of DVD-Video" };
    case CODE_EXTRACT_NO_TABLE: *file = audio; return { code, smallWhy(audio, AUDIO_TABLE_BYTES) };
    case CODE_EXTRACT_TABLE:
        *file = audio;
        return { code, "it does not begin with DVDAUDIOSAPP, or it has more than 99 tracks" };
    case CODE_EXTRACT_MLP: *file = audio; return losslessFault(disc, tracks);
    case CODE_EXTRACT_UNREAD: *file = disc.folder / partName(disc.kind, 1); return { code, smallWhy(*file, 1) };
    case CODE_EXTRACT_MANAGER_UNREAD: *file = manager; return { code, smallWhy(manager, 1) };
    case CODE_EXTRACT_TITLE_SET_UNREAD: *file = titleSet; return { code, smallWhy(titleSet, 1) };
    case CODE_EXTRACT_MANAGER: *file = manager; return { code, "it is no table of a DVD-Video's manager, or damaged" };
    case CODE_EXTRACT_TITLE_SET: *file = titleSet; return { code, "it is no table of a title set, or damaged" };
    case CODE_EXTRACT_NO_LPCM: *file = manager; return { code, "the first sound of title set 1 is not LPCM" };
    default: *file = disc.folder; return { code, "it can't be opened as a disc" };
    }
}

static uint64_t sectorsOf(const DiscFolder& disc)
{
    return std::accumulate(disc.partBytes.begin(), disc.partBytes.end(), uint64_t(0)) / SECTOR_BYTES;
}

/** The part that holds a sector, and the sector's place in it. */
static fs::path partOf(const DiscFolder& disc, uint64_t sector, uint64_t* at)
{
    *at = sector * SECTOR_BYTES;
    for (size_t i = 0; i < disc.parts.size(); i++) {
        if (*at < disc.partBytes[i]) return disc.parts[i];
        *at -= disc.partBytes[i];
    }
    return disc.folder;
}

FileFault readFault(const DiscFolder& disc, uint64_t code, const ExtractTrack& track, uint64_t number, uint64_t sector,
                    fs::path* file)
{
    const uint64_t sectors = sectorsOf(disc);
    const std::string name = "track " + std::to_string(number);
    if (code == CODE_EXTRACT_UNREAD && track.lastSector >= sectors) {
        *file = disc.parts.empty() ? disc.folder : disc.parts.back();
        return { code, "it is cut: " + name + " goes from sector " + std::to_string(track.firstSector) + " to " +
                           std::to_string(track.lastSector) + ", and the sound has " + std::to_string(sectors) +
                           (sectors == 1 ? " sector" : " sectors") };
    }
    uint64_t at = 0;
    *file = partOf(disc, sector, &at);
    const std::string where = ", at byte " + std::to_string(at) + " or behind";
    if (code == CODE_EXTRACT_UNREAD) return { code, "a sector of " + name + " can't be read" + where };
    return { code, "a sector of " + name + " is no pack of a program stream" + where };
}

uint64_t missingSectors(const DiscFolder& disc, const std::vector<ExtractTrack>& tracks)
{
    uint64_t named = 0;
    for (const ExtractTrack& track : tracks) named = std::max(named, uint64_t(track.lastSector) + 1);
    const uint64_t sectors = sectorsOf(disc);
    return named > sectors ? named - sectors : 0;
}
