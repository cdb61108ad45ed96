// extract_pack.cpp: the files that hold the sound of a disc, and the samples in one of their packs.

#include "audio/aob_layout.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "disc/extract_types.h"
#include "mux/pack_layout.h"

#include <algorithm>

// ---- files -------------------------------------------------------------------------------------------------------

/** *file stays 0 for a part that is missing. One that is there but can't be opened counts as missing too, but for an
    opened disc, where the parts behind it would be taken for it. */
static uint64_t openPart(const ExtractContext* context, const char16_t* format, uint64_t number, OSFILE* file)
{
    char16_t* path = nullptr;
    uint64_t result = osFormPath(&path, format, context->sourcePath, number);
    const bool formed = !result;
    if (formed) result = osOpenFile(path, OS_READ, file);
    const bool there = formed && context->opened && osGetFileInfo(path, nullptr, nullptr) == 0;
    (void)osStrFree(&path);
    return there || result == OS_OUT_OF_MEMORY ? result : 0;
}

uint64_t orvOpenExtractFiles(ExtractContext* context, const char16_t* format)
{
    uint64_t bytes = 0;
    bool ended = false;   // an opened disc has no part behind one that is missing
    for (uint64_t part = 0; part < MAX_EXTRACT_FILES; part++) {
        OSFILE* file = &context->files[part];
        context->fileFirstSector[part] = bytes >> SECTOR_SHIFT;
        if (ended) continue;
        if (uint64_t error = openPart(context, format, part + 1, file)) return error;
        ended = context->opened && !*file;
        if (!*file) continue;
        context->fileCount++;
        uint64_t size = 0;
        if (uint64_t error = osFileSize(*file, &size)) return error;
        bytes += size;
        // Meant: unless the disc was opened to be read, a file is closed again, and no sector can be read from it.
        // Test: ExtractPack.FilesOfAnInitialisedContextCannotBeRead
        if (!context->opened) (void)osCloseFile(file);
    }
    return 0;
}

static uint64_t readSector(const ExtractContext* context, uint64_t sector, uint8_t* buffer)
{
    constexpr uint32_t PACK_START_CODE = 0x00000100 | PACK_START;
    uint64_t part = 0;
    while (part + 1 < MAX_EXTRACT_FILES && part < context->fileCount && sector >= context->fileFirstSector[part + 1]) {
        part++;
    }
    const int64_t offset = int64_t((sector - context->fileFirstSector[part]) << SECTOR_SHIFT);
    if (!context->files[part]) return ORV_AOB_NOT_READ;
    if (osSeekFile(context->files[part], offset, OS_FROM_START)) return ORV_AOB_NOT_READ;
    if (osReadFile(context->files[part], buffer, SECTOR_BYTES)) return ORV_AOB_NOT_READ;
    return orvGet32(buffer) == PACK_START_CODE ? 0 : ORV_WRONG_AOB_PACK;
}

// ---- samples -----------------------------------------------------------------------------------------------------

// A piece of a pack. A length that wrapped or leads outside the pack is cut at the pack's end.
struct PackPiece {
    uint64_t at;
    int64_t length;
};

static uint8_t byteAt(const uint8_t* pack, uint64_t at)
{
    return at < SECTOR_BYTES ? pack[at] : 0;
}

static uint32_t wordAt(const uint8_t* pack, uint64_t at)
{
    return uint32_t(byteAt(pack, at)) << 8 | byteAt(pack, at + 1);
}

/** Bytes of stuffing behind the pack header; the last pack of a track may have some. Only an opened disc is read so. */
static uint64_t stuffingOf(const ExtractContext* context, const uint8_t* pack)
{
    constexpr uint8_t STUFFING_BITS = 0x07;
    return context->opened ? pack[PACK_STUFFING.at] & STUFFING_BITS : 0;
}

static PackPiece audioPiece(const ExtractContext* context, const uint8_t* pack)
{
    constexpr uint64_t STREAM_ID_AT = 3;   // in a packet
    const uint64_t begin = PACK_HEADER_BYTES + stuffingOf(context, pack);
    uint64_t at = begin;
    if (byteAt(pack, at + STREAM_ID_AT) == STREAM_SYSTEM_HEADER) {
        at += wordAt(pack, begin + AOB_PES_LENGTH.at) + PACKET_HEAD_BYTES;
    }
    if (byteAt(pack, at + STREAM_ID_AT) != STREAM_PRIVATE_1) return { 0, 0 };
    const uint64_t headerData = byteAt(pack, at + AOB_PES_HEADER_LENGTH.at);
    PackPiece piece = { at + AOB_PES_BYTES + headerData,
                        int64_t(wordAt(pack, at + AOB_PES_LENGTH.at)) - int64_t(headerData) - 3 };
    if (byteAt(pack, piece.at) == AOB_SUB_STREAM_LPCM) {
        const uint64_t header = byteAt(pack, piece.at + AOB_HEADER_LENGTH.at) + AOB_HEADER_BASE;
        piece.at += header;
        piece.length -= int64_t(header);
    }
    return piece;
}

static PackPiece videoPiece(const ExtractContext* context, const uint8_t* pack)
{
    constexpr uint64_t LPCM_HEADER = 7;   // sub-stream header in front of the samples
    const uint64_t moved = stuffingOf(context, pack);
    if (pack[moved + PACK_PACKET_PREFIX.at] != START_CODE_PREFIX ||
        pack[moved + PACK_STREAM_ID.at] != STREAM_PRIVATE_1) {
        return { 0, 0 };
    }
    const uint64_t headerData = pack[moved + PACK_PES_HEADER.at];
    const uint64_t at = moved + headerData + PES_DATA;
    if (byteAt(pack, at) != SUB_STREAM_LPCM) return { 0, 0 };
    return { at + LPCM_HEADER, int64_t(orvGet(pack + moved, PACK_PES_LENGTH)) - int64_t(headerData) - 10 };
}

uint64_t orvReadExtractPack(const ExtractContext* context, uint64_t sector, uint8_t* buffer, const uint8_t** data,
                            uint64_t* length)
{
    *data = buffer;
    *length = 0;
    if (uint64_t error = readSector(context, sector, buffer)) return error;
    const PackPiece piece =
        context->sourceKind == SOURCE_AUDIO ? audioPiece(context, buffer) : videoPiece(context, buffer);
    if (piece.length <= 0 || piece.at >= SECTOR_BYTES) return 0;
    *data = buffer + piece.at;
    *length = std::min(uint64_t(piece.length), SECTOR_BYTES - piece.at);
    return 0;
}
