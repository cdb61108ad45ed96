#include "tests/disc/extract_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace fs = std::filesystem;

void put(Bytes& bytes, uint64_t at, uint64_t width, uint64_t value)
{
    for (uint64_t i = 0; i < width; i++) bytes.at(at + i) = uint8_t(value >> 8 * (width - 1 - i));
}

static void putText(Bytes& bytes, uint64_t at, std::string_view text)
{
    for (const char c : text) bytes.at(at++) = uint8_t(c);
}

// ---- DVD-Audio --------------------------------------------------------------------------------------------------

Bytes samgIfo(const std::vector<SamgTrack>& tracks, std::optional<uint16_t> lyingCount)
{
    Bytes ifo(16384);
    putText(ifo, 0, "DVDAUDIOSAPP");
    put(ifo, 12, 2, lyingCount.value_or(uint16_t(tracks.size())));
    put(ifo, 15, 1, 0x12);
    for (uint64_t i = 0; i < tracks.size(); i++) {
        const SamgTrack& track = tracks[i];
        const uint64_t at = 18 + 52 * i;
        put(ifo, at, 2, 0x0100 + i + 1);
        put(ifo, at + 6, 4, track.playTime);
        put(ifo, at + 14, 1, track.attributes);
        put(ifo, at + 15, 1, track.sizeCodes);
        put(ifo, at + 16, 1, track.rateCodes);
        put(ifo, at + 17, 1, track.assign);
        put(ifo, at + 38, 4, track.first);
        put(ifo, at + 42, 4, track.first);
        put(ifo, at + 46, 4, track.last);
    }
    return ifo;
}

Bytes aobPack(const Bytes& samples, const AobPackSpec& recipe)
{
    Bytes pack = fromHex("00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8");
    pack[13] |= uint8_t(recipe.stuffing);
    pack.resize(pack.size() + recipe.stuffing, 0xFF);
    if (recipe.system) {
        pack += fromHex("00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A");
        pack[pack.size() - 13] = recipe.systemLength;
    }
    pack += { 0, 0, 1, recipe.streamId, 0, 0, 0x81, 0x80, recipe.pesHeaderLength.value_or(uint8_t(recipe.pesHeader)) };
    const uint64_t lengthAt = pack.size() - 5;
    pack += Bytes(recipe.pesHeader, 0x21);
    pack += { recipe.subStream, 0, 0, recipe.privateLength.value_or(uint8_t(recipe.privateHeader)) };
    pack += Bytes(recipe.privateHeader, 0x10);
    pack += samples;
    put(pack, lengthAt, 2, recipe.pesLength.value_or(uint16_t(pack.size() - lengthAt - 2)));
    if (pack.size() > PACK_BYTES) throw std::invalid_argument("samples of a pack");
    const uint64_t gap = PACK_BYTES - pack.size();
    if (gap >= 8) {
        pack += { 0, 0, 1, 0xBE, 0, 0 };
        put(pack, pack.size() - 2, 2, gap - 6);
    }
    pack.resize(PACK_BYTES, 0xEE);
    return pack;
}

// ---- DVD-Video --------------------------------------------------------------------------------------------------

Bytes managerIfo(const VideoIfoSpec& recipe)
{
    Bytes ifo(recipe.managerSectors * 2048);
    putText(ifo, 0, "DVDVIDEO-VMG");
    put(ifo, 196, 4, 1);   // title search table
    put(ifo, 208, 4, 2);   // title set attributes
    put(ifo, 2048, 2, 1);
    put(ifo, 2048 + 4, 4, 19);
    put(ifo, 2048 + 8, 2, 0x0C01);
    put(ifo, 2048 + 10, 2, recipe.chapters.value_or(uint16_t(recipe.cells.size())));
    put(ifo, 2048 + 14, 2, 0x0101);
    put(ifo, 4096, 2, 1);
    put(ifo, 4096 + 4, 4, 12 + 776 - 1);
    put(ifo, 4096 + 8, 4, 12);   // the entry's offset
    put(ifo, 4096 + 12, 4, 775);
    put(ifo, 4096 + 12 + 266, 2, 1);   // audio streams of the title
    put(ifo, 4096 + 12 + 268, 1, recipe.audio0);
    put(ifo, 4096 + 12 + 269, 1, recipe.audio1);
    return ifo;
}

Bytes titleSetIfo(const VideoIfoSpec& recipe)
{
    Bytes ifo(recipe.titleSetSectors * 2048);
    const uint64_t pgcit = 2048, addresses = 4096, cells = recipe.cells.size();
    putText(ifo, 0, "DVDVIDEO-VTS");
    put(ifo, 204, 4, 1);   // PGC table
    put(ifo, 224, 4, 2);   // cell addresses
    put(ifo, pgcit, 2, 1);
    put(ifo, pgcit + 8, 1, 0x81);
    put(ifo, pgcit + 12, 4, 16);   // the first chain's offset
    const uint64_t pgc = pgcit + 16;
    put(ifo, pgc + 2, 2, cells << 8 | cells);
    put(ifo, pgc + 232, 2, 240);   // the cell playback records' offset
    put(ifo, addresses, 2, 1);
    put(ifo, addresses + 4, 4, 12 * cells + 7);
    for (uint64_t i = 0; i < cells; i++) {
        const VideoCell& cell = recipe.cells[i];
        const Bytes time = fromHex(cell.time);
        const uint64_t record = pgc + 240 + 24 * i, entry = addresses + 8 + 12 * i;
        for (uint64_t k = 0; k < 4; k++) put(ifo, record + 4 + k, 1, time.at(k));
        put(ifo, record + 8, 4, cell.first);
        put(ifo, record + 20, 4, cell.last);
        put(ifo, entry, 4, 0x00010000 | (i + 1) << 8);
        put(ifo, entry + 4, 4, cell.first);
        put(ifo, entry + 8, 4, cell.last);
    }
    return ifo;
}

// ---- samples ----------------------------------------------------------------------------------------------------

Bytes counting(uint64_t count, uint8_t from)
{
    Bytes bytes(count);
    for (uint64_t i = 0; i < count; i++) bytes[i] = uint8_t(from + i);
    return bytes;
}

Bytes repeated(const Bytes& bytes, uint64_t times)
{
    Bytes all;
    for (uint64_t i = 0; i < times; i++) all += bytes;
    return all;
}

static void addLittle(Bytes& bytes, uint64_t width, uint64_t value)
{
    for (uint64_t i = 0; i < width; i++) bytes.push_back(uint8_t(value >> 8 * i));
}

Bytes waveFile(uint32_t rate, uint16_t bits, uint16_t channels, const Bytes& data)
{
    Bytes wave = { 'R', 'I', 'F', 'F' };
    addLittle(wave, 4, data.size() + 38);
    wave += { 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 18, 0, 0, 0, 1, 0 };
    addLittle(wave, 2, channels);
    addLittle(wave, 4, rate);
    const uint64_t frame = uint64_t(channels) * bits / 8;
    addLittle(wave, 4, rate * frame);
    addLittle(wave, 2, frame);
    addLittle(wave, 2, bits);
    wave += { 0, 0, 'd', 'a', 't', 'a' };
    addLittle(wave, 4, data.size());
    return wave + data;
}

// ---- an extraction ----------------------------------------------------------------------------------------------

uint64_t userOf(const void* record)
{
    return uint64_t(reinterpret_cast<uintptr_t>(record));
}

const OrvWChar* wide(const std::u16string& text)
{
    return reinterpret_cast<const OrvWChar*>(text.c_str());
}

static Extraction* extractionOf(uint64_t user)
{
    return reinterpret_cast<Extraction*>(uintptr_t(user));
}

std::string textOf(const ExtractTrack& track)
{
    std::string text;
    for (const uint32_t value : { track.firstSector, track.lastSector, track.playTime, track.assign, track.reserved,
                                  track.sampleSize1, track.sampleSize2, track.sampleRate1, track.sampleRate2 }) {
        text += (text.empty() ? "" : " ") + std::to_string(value);
    }
    return text;
}

void PrintTo(const ExtractProgressCall& call, std::ostream* out)
{
    *out << "{ track " << call.track << ", " << call.total << ", " << call.done << ", " << call.text << " }";
}

static void noteTrack(const ExtractTrack* track, uint64_t index, uint64_t user)
{
    extractionOf(user)->infos.push_back({ *track, index });
}

OrvTrackInfo noteInfo()
{
    return noteTrack;
}

static void noteProgress(uint64_t track, uint64_t total, uint64_t done, const char* text, uint64_t user)
{
    extractionOf(user)->progress.push_back({ track, total, done, text });
}

static void noteProgressW(uint64_t track, uint64_t total, uint64_t done, const OrvWChar* text, uint64_t user)
{
    extractionOf(user)->progress.push_back({ track, total, done, toUtf8(reinterpret_cast<const char16_t*>(text)) });
}

Extraction::Extraction()
{
    fs::create_directory(folder.root / "disc");
    fs::create_directory(folder.root / "out");
    disc = (folder.root / "disc" / "").u16string();
    out = (folder.root / "out" / "").u16string();
}

Extraction::~Extraction()
{
    if (context) release();
    for (OSFILE& file : files) (void)osCloseFile(&file);
}

void Extraction::put(const std::string& name, const Bytes& bytes) const
{
    writeFile(disc + toWide(name), bytes);
}

void Extraction::putAudio(const std::vector<SamgTrack>& tracks, const Bytes& aob) const
{
    put("AUDIO_PP.IFO", repeated(samgIfo(tracks), 8));
    put("ATS_01_1.AOB", aob);
}

void Extraction::putVideo(const VideoIfoSpec& recipe, const Bytes& vob) const
{
    put("VIDEO_TS.IFO", managerIfo(recipe));
    put("VTS_01_0.IFO", titleSetIfo(recipe));
    put("VTS_01_1.VOB", vob);
}

void Extraction::create()
{
    if (context) release();
    for (OSFILE& file : files) (void)osCloseFile(&file);
    files.clear();
    const uint64_t result = narrow ? d2wCreateContext(toUtf8(disc).c_str(), toUtf8(out).c_str(), &context)
                                   : d2wCreateContextW(wide(disc), wide(out), &context);
    ASSERT_EQ(result, 0u);
    ASSERT_NE(context, nullptr);
}

uint64_t Extraction::init()
{
    if (!context) create();
    return d2wInitContext(context, &count, nullCallbacks ? nullptr : noteTrack, userOf(this));
}

uint64_t Extraction::open()
{
    if (!context) create();
    return d2wOpenDisc(context, &count, nullCallbacks ? nullptr : noteTrack, userOf(this));
}

uint64_t Extraction::extract(uint64_t track, uint64_t stereoPairs)
{
    progress.clear();
    if (narrow) {
        return d2wExtractTrack(context, track, stereoPairs, nullCallbacks ? nullptr : noteProgress, userOf(this));
    }
    return d2wExtractTrackW(context, track, stereoPairs, nullCallbacks ? nullptr : noteProgressW, userOf(this));
}

void Extraction::release()
{
    EXPECT_EQ(d2wReleaseContext(context), 0u);
    context = nullptr;
}

OSFILE Extraction::file(const std::string& name)
{
    OSFILE opened = 0;
    EXPECT_EQ(osOpenFile((disc + toWide(name)).c_str(), OS_READ, &opened), 0u) << name;
    files.push_back(opened);
    return opened;
}

void Extraction::lend(uint64_t sourceKind, const std::string& name, const std::vector<ExtractTrack>& tracks,
                      bool opened)
{
    if (!context) create();
    context->sourceKind = sourceKind;
    context->opened = opened;
    context->fileCount = 1;
    EXPECT_EQ(osOpenFile((disc + toWide(name)).c_str(), OS_READ, &context->files[0]), 0u) << name;
    uint64_t bytes = 0;
    EXPECT_EQ(osFileSize(context->files[0], &bytes), 0u);
    std::fill(context->fileFirstSector + 1, context->fileFirstSector + MAX_EXTRACT_FILES, bytes / SECTOR_BYTES);
    if (!opened) files.push_back(context->files[0]);   // such a context closes none
    context->trackCount = tracks.size();
    std::copy(tracks.begin(), tracks.end(), context->tracks);
}

std::string Extraction::outputs() const
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(out))) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
}

Bytes Extraction::output(const std::string& name) const
{
    return readFile(out + toWide(name));
}

std::string Extraction::hexOf(const std::string& name) const
{
    const Bytes bytes = output(name);
    EXPECT_GE(bytes.size(), WAVE_HEADER_BYTES) << name;
    if (bytes.size() < WAVE_HEADER_BYTES) return "";
    return toHex(bytes.data() + WAVE_HEADER_BYTES, bytes.size() - WAVE_HEADER_BYTES);
}

void Extraction::clearOutputs() const
{
    fs::remove_all(fs::path(out));
    fs::create_directory(fs::path(out));
}
