// extract_fuzz.cpp: any bytes as the tables and the sound of a disc, whose tracks are extracted.
//   0       bit 0: DVD-Video; bit 1: pairs; bit 2: the tables as short as they are
//   1 - 4   sizes of the first and the second table, little-endian; the second is of DVD-Video alone
//   5 on    the tables and the sound

#include "fuzz/fuzz.h"

#include "disc/extract_types.h"
#include "tests/support/packs.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace fs = std::filesystem;

constexpr size_t HEAD_BYTES = 5;
constexpr uint64_t AUDIO_TABLE = 16384, VIDEO_TABLE = 6144;   // bytes that short tables are filled up to

static const OrvWChar* wide(const std::u16string& text)
{
    return reinterpret_cast<const OrvWChar*>(text.c_str());
}

/** Takes so many bytes from the front of the input. */
static Bytes take(const uint8_t** data, size_t* size, size_t count)
{
    const size_t taken = std::min(count, *size);
    const Bytes bytes(*data, *data + taken);
    *data += taken;
    *size -= taken;
    return bytes;
}

// A complete file has its own size in its header; one that is not begins with zeros.
static void checkWave(const fs::path& path, uint64_t result, uint64_t soundBytes)
{
    const Bytes wave = readFile(path.u16string());
    if (wave.size() < WAVE_HEADER_BYTES || wave.size() > WAVE_HEADER_BYTES + 2 * soundBytes) abort();
    if (result) {
        if (std::any_of(wave.begin(), wave.begin() + WAVE_HEADER_BYTES, [](uint8_t byte) { return byte != 0; }))
            abort();
    } else {
        if (memcmp(wave.data(), "RIFF", 4) != 0) abort();
        if (orvGetLittle32(wave.data() + 4) != wave.size() - 8) abort();
        if (orvGetLittle32(wave.data() + 42) != wave.size() - WAVE_HEADER_BYTES) abort();
    }
}

static void extractTracks(ExtractContext* context, uint64_t count, bool pairs, const fs::path& out, uint64_t soundBytes)
{
    for (uint64_t track = 0; track <= count + 1; track++) {
        if (track > 6 && track + 2 < count) continue;
        const uint64_t result = d2wExtractTrack(context, track, pairs, nullptr, 0);
        if (track > count && result == 0) abort();
        for (const fs::directory_entry& entry : fs::directory_iterator(out)) {
            checkWave(entry.path(), result, soundBytes);
            fs::remove(entry.path());
        }
    }
}

/** Every sector as a context of either kind reads it: the samples lie within the pack. */
static void readSectors(ExtractContext* context, uint64_t soundBytes)
{
    uint8_t buffer[SECTOR_BYTES];
    for (const bool opened : { true, false }) {
        context->opened = opened;
        for (uint64_t sector = 0; sector <= soundBytes / SECTOR_BYTES; sector++) {
            const uint8_t* data = nullptr;
            uint64_t length = 0;
            if (orvReadExtractPack(context, sector, buffer, &data, &length) || length == 0) continue;
            if (data < buffer || data + length > buffer + SECTOR_BYTES) abort();
        }
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < HEAD_BYTES) return 0;
    const bool video = data[0] & 1, pairs = data[0] & 2, fill = !(data[0] & 4);
    const size_t sizes[] = { orvGetLittle16(data + 1), orvGetLittle16(data + 3) };
    data += HEAD_BYTES;
    size -= HEAD_BYTES;
    const TempDir dir;
    const std::u16string out = dir / u"out";
    fs::create_directory(fs::path(out));
    for (uint64_t i = 0; i < (video ? 2u : 1u); i++) {
        Bytes table = take(&data, &size, sizes[i]);
        if (fill) table.resize(std::max<uint64_t>(table.size(), video ? VIDEO_TABLE : AUDIO_TABLE));
        writeFile(dir / (!video ? u"AUDIO_PP.IFO" : i == 0 ? u"VIDEO_TS.IFO" : u"VTS_01_0.IFO"), table);
    }
    // Two parts, the second beginning wherever the middle is.
    const uint64_t soundBytes = size;
    const Bytes first = take(&data, &size, size / 2), second = take(&data, &size, size);
    writeFile(dir / (video ? u"VTS_01_1.VOB" : u"ATS_01_1.AOB"), first);
    writeFile(dir / (video ? u"VTS_01_2.VOB" : u"ATS_01_2.AOB"), second);

    ExtractContext* context = nullptr;
    const std::u16string source = dir.prefix();
    if (d2wCreateContextW(wide(source), wide(out), &context)) abort();
    uint64_t count = 0;
    const uint64_t result = d2wOpenDisc(context, &count, nullptr, 0);
    if (count > MAX_EXTRACT_TRACKS) abort();
    if (!result) {
        extractTracks(context, count, pairs, out, soundBytes);
        readSectors(context, soundBytes);
    }
    if (d2wReleaseContext(context)) abort();
    return 0;
}

// ---- seeds ------------------------------------------------------------------------------------------------------

static Bytes inputOf(uint8_t flags, const std::vector<Bytes>& tables, const Bytes& sound)
{
    Bytes input = { flags, 0, 0, 0, 0 };
    for (uint64_t i = 0; i < tables.size(); i++) {
        input[1 + 2 * i] = uint8_t(tables[i].size());
        input[2 + 2 * i] = uint8_t(tables[i].size() >> 8);
    }
    for (const Bytes& table : tables) input += table;
    return input + sound;
}

static const char* const AOB_PACK =
    "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 00 00 01 BD 00 78 81 80 05 21 00 01 00 01 "
    "A0 00 00 0A 00 09 10 00 00 00 01 80 00 00";

// Four tracks, one of each assignment, in a sector each and one more.
static Bytes audioSeed(uint8_t flags)
{
    Bytes table = fromHex("44 56 44 41 55 44 49 4F 53 41 50 50 00 04 00 12 00 00"), sound;
    for (const uint8_t assign : std::vector<uint8_t>{ 1, 3, 19, 20 }) {
        Bytes record(52);
        record[15] = assign % 2 ? 0x00 : 0x22;
        record[17] = assign;
        const uint64_t sector = sound.size() / PACK_BYTES;
        record[41] = uint8_t(sector);
        record[49] = uint8_t(sector + 1);
        table += record;
        Bytes pack = fromHex(AOB_PACK);
        pack.resize(PACK_BYTES, 0x55);
        sound += pack;
    }
    Bytes stuffed = fromHex(AOB_PACK);
    stuffed[13] = 0xFC;
    stuffed.insert(stuffed.begin() + 14, 4, 0xFF);
    stuffed.resize(PACK_BYTES, 0x55);
    return inputOf(flags, { table }, sound + stuffed);
}

static void put32(Bytes& bytes, uint64_t at, uint32_t value)
{
    orvPut32(bytes.data() + at, value);
}

// Two chapters of LPCM, in two sectors each.
static Bytes videoSeed(uint8_t flags)
{
    Bytes manager(4500), titleSet(4500);
    memcpy(manager.data(), "DVDVIDEO-VMG", 12);
    memcpy(titleSet.data(), "DVDVIDEO-VTS", 12);
    put32(manager, 196, 1);
    put32(manager, 208, 2);
    put32(manager, 2048 + 8, 2);    // chapters, in its last two bytes
    put32(manager, 4096 + 8, 12);   // the entry
    put32(manager, 4096 + 12 + 268, 0x80010000);
    put32(titleSet, 204, 1);
    put32(titleSet, 224, 2);
    put32(titleSet, 2048 + 12, 16);
    put32(titleSet, 2048 + 16 + 230, 240);   // the cells' records, in its last two bytes
    put32(titleSet, 4096 + 12, 0);
    put32(titleSet, 4096 + 16, 1);
    put32(titleSet, 4096 + 24, 2);
    put32(titleSet, 4096 + 28, 3);
    const Bytes sound = privatePack(0xA0, {}, Bytes(500, 0x55));
    return inputOf(flags, { manager, titleSet }, navPack({}) + sound + sound + videoPack(Bytes(90, 0x55)));
}

std::vector<Bytes> fuzzSeeds()
{
    return { audioSeed(0), audioSeed(2), videoSeed(1), videoSeed(7) };
}
