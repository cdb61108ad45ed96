// mux_rig.h: runs an asset driver over files that a test makes from bytes, and says where packs differ.
#pragma once

#include "base/files.h"
#include "tests/support/files.h"
#include "tests/support/packs.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// ---- files ------------------------------------------------------------------------------------------------------

// A file with this content, open as long as this lives. OS_APPEND keeps the content and refuses to be read.
struct OpenFile {
    OpenFile(const TempDir& folder, std::u16string_view name, const Bytes& content, uint64_t mode = OS_READ);
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    std::u16string path;
    OSFILE file = 0;
};

// What a driver works on. A file without content is handed in as 0, not open.
struct MuxAssets {
    std::optional<Bytes> video = {};
    std::optional<Bytes> subPicture = {};
    std::optional<Bytes> letterbox = {};
    uint64_t videoMode = OS_READ;
    uint64_t subPictureMode = OS_READ;
    uint64_t letterboxMode = OS_READ;
    Bytes before = {};   // what the output holds
    uint64_t outputMode = OS_APPEND;
};

struct MuxFiles {
    OSFILE output, video, subPicture, letterbox;
};

struct MuxRun {
    uint64_t result;
    Bytes output;   // all of it, with what it held before

    uint64_t sectors() const
    {
        return output.size() / PACK_BYTES;
    }
    /** Bytes of a sector as hex text; empty if the output does not reach so far. */
    std::string hexAt(uint64_t sector, uint64_t at, uint64_t count) const;
};

/** Opens the files, calls the driver, closes them. */
MuxRun runDriver(const MuxAssets& assets, const std::function<uint64_t(const MuxFiles&)>& driver);

// ---- bytes ------------------------------------------------------------------------------------------------------

/** An asset of so many bytes that look like no others. */
Bytes assetBytes(uint64_t count, uint32_t seed);
/** Bytes from an offset on, fewer at the end. */
Bytes part(const Bytes& bytes, uint64_t from, uint64_t count);
/** A pack: a head and a payload, then, if the tail has any text, the tail and 0xFF to the pack's end. Throws if that is
    not 2048 bytes. */
Bytes packOf(std::string_view head, const Bytes& payload = {}, std::string_view tail = "");
/** Where bytes differ from others, by sector and offset: the first few places, and sizes. Empty if nowhere. */
std::string differences(const Bytes& got, const Bytes& expected);

// ---- packs told a second time -----------------------------------------------------------------------------------

// The next packs of a stream. Clocks are those of whole numbers: below sector 189 the engine's doubles agree.
struct PacksSpec {
    uint8_t streamId = 0xE0;
    std::optional<uint8_t> subStreamId = {};   // of one byte: a sub-picture
    uint64_t pts = 0, dts = 0;                 // of the first pack
};

/** One pack, built from its end: what the payload leaves over is stuffing or padding. */
Bytes referencePack(uint64_t sector, const PacksSpec& recipe, const Bytes& payload);
/** Payload bytes that such a pack has room for. */
uint64_t referenceRoom(const PacksSpec& recipe);
/** Cuts a stream into packs, at least one, the first with the time stamps. sectorOf gives the sector number of pack 0,
    1, ... */
Bytes referencePacks(const PacksSpec& recipe, const Bytes& stream, const std::function<uint64_t(uint64_t)>& sectorOf);
/** Sub-picture packs: the first at sector 2, the others from *sector on, which rises by them. */
Bytes referenceSubPicture(const Bytes& stream, uint8_t subStreamId, uint64_t pts, uint64_t* sector);
/** The same stream packs with clocks this much later, their extensions kept. */
Bytes shiftedPacks(const Bytes& packs, uint64_t ticks);
