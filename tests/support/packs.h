// packs.h: packs and whole program streams, made by tests from records, and source files of a title.
//
// Everything here is built from the published layout of a program stream, by code that shares nothing with the engine.
// One line makes a movie, as in twenty units of 12 pictures, PAL, with one AC-3 stream:
//
//     const Movie movie = makeMovie({ .vobus = vobus(20), .streams = { ac3Stream() } });
#pragma once

#include "tests/support/files.h"
#include "video/vobu_record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

inline constexpr uint64_t PACK_BYTES = 2048;
inline constexpr uint8_t FILLER = 0xA5;   // payload that holds no start code

// ---- single packs -----------------------------------------------------------------------------------------------

struct PackClock {
    uint64_t scr = 0;         // 90 kHz ticks; bits 32..0 are stored
    uint64_t extension = 0;   // 0..299
};

/** A pack header, 14 bytes: `00 00 01 BA`, the clock, a rate of 25200 units, no stuffing. */
Bytes packHeader(PackClock clock);

/** A navigation pack as a multiplexer leaves it: pack header, system header (audio bound 0), the two private packets
    with the search fields at their end-of-cell marks and sector and clock filled in. 2048 bytes. */
Bytes navPack(PackClock clock, uint64_t sector = 0);
/** The same with every byte behind offset 43 but those of the DSI packet's head set to junk, for writers that are to
    clear what they do not fill. */
Bytes dirtyNavPack(PackClock clock, uint8_t junk = 0xEE);

struct PesSpec {
    PackClock clock;
    std::optional<uint64_t> pts = {};           // bits 32..0 are stored
    std::optional<uint64_t> dts = {};           // only together with a PTS
    uint64_t stuffing = 0;                      // further 0xFF bytes in the PES header
    std::optional<uint64_t> lyingLength = {};   // written as PES packet length in place of the true one
    std::optional<uint8_t> lyingHeader = {};    // written as PES header data length in place of the true one
};

/** One pack with one PES packet. A payload shorter than the pack is followed by header stuffing (up to 7 bytes) or by a
    padding packet, so that the payload of the packet is exactly what was given. Throws if it does not fit. */
Bytes pesPack(uint8_t streamId, const Bytes& payload, const PesSpec& recipe = {});
/** Bytes of payload that such a pack holds: 2025 without a PTS, 2020 with one, 2015 with PTS and DTS. */
uint64_t pesCapacity(const PesSpec& recipe = {});

/** Video, stream id 0xE0. */
Bytes videoPack(const Bytes& payload, const PesSpec& recipe = {});
/** Private stream 1: payload behind a sub-stream header of the kind's length (1 byte of sub-picture, 4 of AC-3, DTS and
    SDDS, 7 of LPCM, 1 of anything else). An empty payload fills the pack. */
Bytes privatePack(uint8_t subStreamId, const PesSpec& recipe = {}, const Bytes& payload = {});
/** Any audio or sub-picture pack, filled: subStreamId counts only for stream id 0xBD. */
Bytes streamPack(uint8_t streamId, uint8_t subStreamId, const PesSpec& recipe = {});
/** Pack header and a padding packet of 2034 bytes. */
Bytes paddingPack(PackClock clock = {});

/** Picture header: 00 00 01 00, temporal reference (10 bits), type (1 I, 2 P, 3 B), six bytes in all. */
Bytes pictureHeader(uint64_t temporalRef, uint64_t type);
/** A picture of so many bytes, at least 6: its header, then filler. */
Bytes picture(uint64_t bytes, uint64_t temporalRef, uint64_t type);

Bytes& operator+=(Bytes& to, const Bytes& from);
Bytes operator+(Bytes first, const Bytes& second);

// ---- movies -----------------------------------------------------------------------------------------------------

// An audio or sub-picture pack.
struct StreamPackSpec {
    uint8_t streamId = 0xBD;
    uint8_t subStreamId = 0x80;
    std::optional<uint64_t> pts = {};   // none: the packet has no PTS
};

// An audio or sub-picture stream that runs through a whole movie. Its packs have PTS that divide the unit's display
// time evenly; the first is that of the unit's own display start.
struct StreamSpec {
    uint8_t streamId = 0xBD;
    uint8_t subStreamId = 0x80;
    uint64_t packsPerVobu = 1;
};

StreamSpec ac3Stream(uint64_t index = 0);
StreamSpec dtsStream(uint64_t index = 0);
StreamSpec sddsStream(uint64_t index = 0);
StreamSpec lpcmStream(uint64_t index = 0);
StreamSpec mpegAudioStream(uint64_t index = 0);
StreamSpec subPictureStream(uint64_t index = 0);

// One unit. Its packs: navigation pack; the first video pack; the packs of the movie's streams, stream by stream; the
// unit's own `packs`; the other video packs; `padding` padding packs. A unit without video has the rest in this order.
struct VobuSpec {
    uint64_t pictures = 12;
    // One letter a picture, in stream order: I, P, B. Shorter text goes on with its part behind the first letter.
    std::string types = "IBBPBBPBBPBB";
    // In stream order; missing ones follow from the types, so that the first picture displayed has 0.
    std::vector<uint64_t> temporalRefs = {};
    uint64_t packsPerPicture = 1;   // each picture begins at the start of a pack
    std::vector<uint64_t>
        pictureBytes = {};      // in place of that: pictures of these sizes (the last one repeated), end to end
    uint64_t fillerPacks = 0;   // video packs without a start code, behind the pictures
    std::vector<StreamPackSpec> packs = {};   // further audio and sub-picture packs
    uint64_t padding = 0;
    bool newVob = false;                     // both clocks start again: SCR 0
    std::optional<uint64_t> scr = {};        // of the navigation pack; by default the time displayed before this unit
    std::optional<uint64_t> pts = {};        // of the first video pack; by default display time of its picture
    bool noPts = false;                      // no video pack of the unit has a PTS
    std::optional<uint64_t> duration = {};   // ticks until the next unit; by default those of the pictures
};

/** count equal units. */
std::vector<VobuSpec> vobus(uint64_t count, const VobuSpec& each = {});
/** Lists one behind the other. */
std::vector<VobuSpec> operator+(std::vector<VobuSpec> first, const std::vector<VobuSpec>& second);

struct MovieSpec {
    int64_t standard = 1;   // STANDARD_PAL or STANDARD_NTSC
    std::vector<VobuSpec> vobus = {};
    std::vector<StreamSpec> streams = {};
    uint64_t firstDisplay = 28800;   // display start of a VOB's first unit, ticks
    uint64_t scrStep = 0;            // ticks from pack to pack; 0: the packs of a unit share its duration evenly
    uint64_t leadingPadding = 0;     // packs before the first navigation pack
};

// A stream and what was put into it.
struct Movie {
    Bytes bytes;
    // What a scan without chapters has to find: cellId is 1 throughout. Reference ends are those of the first three
    // references whose successor begins in the same unit. A unit without pictures has pictureCount and firstPts as they
    // stand in the stream, without a scan's correction.
    std::vector<VobuRecord> vobus;
    std::vector<StreamPackRecord> packs;

    uint64_t sectors() const
    {
        return bytes.size() / PACK_BYTES;
    }
    uint8_t* pack(uint64_t sector)
    {
        return bytes.data() + sector * PACK_BYTES;
    }
    const uint8_t* pack(uint64_t sector) const
    {
        return bytes.data() + sector * PACK_BYTES;
    }
};

Movie makeMovie(const MovieSpec& recipe);

// ---- source files -----------------------------------------------------------------------------------------------

// Files of a title as the engine takes them: 32 slots, null where there is none.
struct Sources {
    std::vector<std::u16string> paths;
    char16_t* slots[32] = {};

    Sources() = default;
    Sources(const Sources&) = delete;
    Sources& operator=(const Sources&) = delete;

    /** Puts a path behind the last. */
    void add(const std::u16string& path);
    /** All files one behind the other. */
    Bytes read() const;
};

/** Writes bytes into files title1.vob, title2.vob, ... of the folder, cut at these offsets (ascending; equal ones give
    empty files), and lists them. */
void writeSources(Sources& sources, const TempDir& folder, const Bytes& bytes, const std::vector<uint64_t>& cuts = {});
