// extract_rig.h: discs with sound, made by tests from records, and extractions that note all that a host is told.
//
// The bytes follow the published layouts and share nothing with the engine.
#pragma once

#include "disc/extract_types.h"
#include "tests/support/files.h"
#include "tests/support/packs.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

inline constexpr uint64_t NO_SAMG = 0x84001B5B, SAMG_NOT_READ = 0x84001B5C, INVALID_SAMG = 0x84001B5D,
                          MLP_FOUND = 0x84001B5E, AOB_NOT_READ = 0x84001B5F, WRONG_PACK = 0x84001B60,
                          NO_OUTPUT = 0x84001B61, NO_TRACKS = 0x84001B62, WRONG_ASSIGNMENT = 0x84001B63,
                          VMG_NOT_READ = 0x84001B64, VTS_NOT_READ = 0x84001B65, NO_VMG = 0x84001B66,
                          NO_VTS = 0x84001B67, NO_LPCM = 0x84001B68, NO_SOURCE = 0x84001B69, NULL_ARGUMENT = 0x84000057;

inline constexpr uint64_t NOT_WRITTEN = 0xEEEEEEEEEEEEEEEE;

// ---- DVD-Audio --------------------------------------------------------------------------------------------------

// One record of AUDIO_PP.IFO, as it is stored.
struct SamgTrack {
    uint32_t first, last;   // sectors on the disc
    uint8_t assign = 1;
    uint8_t sizeCodes = 0x0F, rateCodes = 0x0F;
    uint32_t playTime = 90000;
    uint8_t attributes = 0x08;
};
/** One of the eight blocks of AUDIO_PP.IFO, 16384 bytes. */
Bytes samgIfo(const std::vector<SamgTrack>& tracks, std::optional<uint16_t> lyingCount = {});

struct AobPackSpec {
    bool system = false;         // with a system header
    uint8_t systemLength = 12;   // as it is told; the header has 18 bytes in any case
    uint64_t stuffing = 0;       // bytes of pack stuffing, up to 7
    uint8_t streamId = 0xBD;
    uint8_t subStream = 0xA0;
    uint64_t pesHeader = 5;                   // PES header data length
    uint64_t privateHeader = 16;              // bytes behind the length byte of the private header
    std::optional<uint16_t> pesLength = {};   // in place of the true ones
    std::optional<uint8_t> pesHeaderLength = {}, privateLength = {};
};
/** A pack of an AOB with these samples; what is left of it is 0xEE, or, from eight bytes on, a padding packet. */
Bytes aobPack(const Bytes& samples, const AobPackSpec& recipe = {});

// ---- DVD-Video --------------------------------------------------------------------------------------------------

struct VideoCell {
    uint32_t first, last;
    const char* time = "00 00 01 40";   // BCD, as it is stored
};

struct VideoIfoSpec {
    std::vector<VideoCell> cells;
    uint8_t audio0 = 0x80, audio1 = 0x01;   // the title's audio attributes: LPCM, 16 bits, 48 kHz, stereo
    uint64_t managerSectors = 3;            // at least 3
    uint64_t titleSetSectors = 3;           // at least 3
    std::optional<uint16_t> chapters = {};
};
/** VIDEO_TS.IFO: header, title search table, title set attributes. */
Bytes managerIfo(const VideoIfoSpec& recipe);
/** VTS_01_0.IFO: header, PGC table, cell addresses. */
Bytes titleSetIfo(const VideoIfoSpec& recipe);

// ---- samples ----------------------------------------------------------------------------------------------------

/** Bytes 0, 1, 2, ... */
Bytes counting(uint64_t count, uint8_t from = 0);
Bytes repeated(const Bytes& bytes, uint64_t times);
/** A WAVE file: 46 bytes of header, worked out from these numbers, and the data. */
Bytes waveFile(uint32_t rate, uint16_t bits, uint16_t channels, const Bytes& data);
void put(Bytes& bytes, uint64_t at, uint64_t width, uint64_t value);   // big-endian

// ---- an extraction ----------------------------------------------------------------------------------------------

struct InfoCall {
    ExtractTrack track;
    uint64_t index;
};
std::string textOf(const ExtractTrack& track);   // the nine numbers, decimal

struct ExtractProgressCall {
    uint64_t track, total, done;
    std::string text;
    bool operator==(const ExtractProgressCall&) const = default;
};
void PrintTo(const ExtractProgressCall& call, std::ostream* out);

// A folder with a disc and one for the WAVE files, and a context between them.
struct Extraction {
    Extraction();
    ~Extraction();
    Extraction(const Extraction&) = delete;
    Extraction& operator=(const Extraction&) = delete;

    void put(const std::string& name, const Bytes& bytes) const;   // a file of the disc
    /** AUDIO_PP.IFO and ATS_01_1.AOB. */
    void putAudio(const std::vector<SamgTrack>& tracks, const Bytes& aob) const;
    /** VIDEO_TS.IFO, VTS_01_0.IFO and VTS_01_1.VOB. */
    void putVideo(const VideoIfoSpec& recipe, const Bytes& vob) const;

    /** The context, in place of one before, whose files are closed. Fails the test on any result but 0. */
    void create();
    uint64_t init();
    uint64_t open();
    uint64_t extract(uint64_t track, uint64_t stereoPairs);
    void release();

    /** Opens a file of the disc for reading, until the next context or the record's end. */
    OSFILE file(const std::string& name);
    /** Stands in for an initialisation: this file of the disc alone, open, with its tracks. */
    void lend(uint64_t sourceKind, const std::string& name, const std::vector<ExtractTrack>& tracks, bool opened);

    /** Names of the files in the folder for WAVE files, with blanks between them. */
    std::string outputs() const;
    Bytes output(const std::string& name) const;
    std::string hexOf(const std::string& name) const;   // without the 46 bytes of its header
    void clearOutputs() const;

    TempDir folder;
    std::u16string disc, out;   // with their separators
    ExtractContext* context = nullptr;
    bool narrow = false;
    bool nullCallbacks = false;
    uint64_t count = NOT_WRITTEN;
    std::vector<InfoCall> infos;
    std::vector<ExtractProgressCall> progress;
    std::vector<OSFILE> files;
};

OrvTrackInfo noteInfo();   // notes in the record that is handed as user value

/** A pointer as the user value of a callback. */
uint64_t userOf(const void* record);

/** UTF-16 text as the exported functions take it. */
const OrvWChar* wide(const std::u16string& text);
