// aob_layout.h: the packs of an AOB. Offsets from the start of each structure; values big-endian.
#pragma once

#include "base/bytes.h"
#include "mux/pack_layout.h"

#include <cstdint>

inline constexpr uint64_t AOB_SYSTEM_HEADER_BYTES = 18;   // behind the pack header of a track's first pack
inline constexpr uint64_t AOB_PES_BYTES = 9;              // of a PES header, before its header data
inline constexpr uint64_t AOB_PADDING_HEAD = 6;           // start code and length of a padding packet

// clang-format off
// PES header of private stream 1.
//                                                 at  size  published name
inline constexpr DiscField AOB_PES_START         = { 0,   4, "packet_start_code"       };
inline constexpr DiscField AOB_PES_LENGTH        = { 4,   2, "PES_packet_length"       };
inline constexpr DiscField AOB_PES_FLAGS         = { 6,   2, "PES flags"               };
inline constexpr DiscField AOB_PES_HEADER_LENGTH = { 8,   1, "PES_header_data_length"  };
inline constexpr DiscField AOB_PES_PTS           = { 9,   5, "PTS"                     };
inline constexpr DiscField AOB_PES_EXTENSION     = {14,   3, "PES extension"           };  // of the first kind: buffer size

// Private header, behind the PES header. The samples begin AOB_HEADER_BASE + headerLength bytes from its start.
inline constexpr DiscField AOB_SUB_STREAM        = { 0,   1, "sub_stream_id"           };
inline constexpr DiscField AOB_COUNTER           = { 1,   1, "ISRC/counter"            };  // packs of the track, modulo 32
inline constexpr DiscField AOB_HEADER_LENGTH     = { 3,   1, "private header length"   };  // bytes behind this one
inline constexpr DiscField AOB_FIRST_ACCESS      = { 4,   2, "first access unit pointer" };
inline constexpr DiscField AOB_EMPHASIS          = { 6,   1, "emphasis, downmix"       };  // 0x30 for six channels, else 0x10
inline constexpr DiscField AOB_SIZE_CODES        = { 7,   1, "quantization"            };  // group 1 in the high half
inline constexpr DiscField AOB_RATE_CODES        = { 8,   1, "sampling frequency"      };  // group 1 in the high half
inline constexpr DiscField AOB_ASSIGNMENT        = {10,   1, "channel assignment"      };  // low five bits
inline constexpr DiscField AOB_DYNAMIC_RANGE     = {11,   1, "dynamic range control"   };  // 0x80: none
inline constexpr DiscField AOB_FIELDS[] = { AOB_SUB_STREAM, AOB_COUNTER,    AOB_HEADER_LENGTH, AOB_FIRST_ACCESS,
                                            AOB_EMPHASIS,   AOB_SIZE_CODES, AOB_RATE_CODES,    AOB_ASSIGNMENT,
                                            AOB_DYNAMIC_RANGE };
// clang-format on
inline constexpr uint64_t AOB_HEADER_BASE = 4;   // bytes of the private header that its length does not count
static_assert(orvFieldsFit(AOB_FIELDS, AOB_HEADER_BASE + 10));

inline constexpr uint8_t AOB_SUB_STREAM_LPCM = 0xA0;
inline constexpr uint64_t AOB_COUNTER_END = 32;

// What a pack has room for. Each payload is a whole number of sample units; that is why the private header varies.
struct AobPackSizes {
    uint16_t payload;
    uint16_t pesLength;        // PES_packet_length
    uint8_t pesHeaderLength;   // PES_header_data_length
    uint8_t headerLength;      // of the private header
    uint8_t padding;           // length of the padding packet; 0: none
};

struct AobSizeRow {
    uint64_t channels, bits;
    AobPackSizes first, next;   // of a track's first pack, of the others
};

// clang-format off
inline constexpr AobSizeRow AOB_SIZES[] = {
    { 2, 16, { 1984, 2010, 8, 11,  0 }, { 2000, 2028, 5, 16,  0 } },
    { 2, 24, { 1980, 2010, 8, 15,  0 }, { 2004, 2028, 5, 12,  0 } },
    { 4, 16, { 1984, 2010, 8, 11,  0 }, { 2000, 2028, 5, 16,  0 } },
    { 4, 24, { 1968, 1993, 8, 10, 11 }, { 1992, 2014, 5, 10,  8 } },
    { 5, 16, { 1980, 2010, 8, 15,  0 }, { 2000, 2028, 5, 16,  0 } },
    { 5, 24, { 1980, 2010, 8, 15,  0 }, { 1980, 2002, 5, 10, 20 } },
    { 6, 16, { 1968, 1993, 8, 10, 11 }, { 1992, 2014, 5, 10,  8 } },
    { 6, 24, { 1980, 2010, 8, 15,  0 }, { 1980, 2002, 5, 10, 20 } },
};
// clang-format on

/** The row of a track; null for channels and bits that no pack carries. */
[[nodiscard]] constexpr const AobSizeRow* orvAobSizes(uint64_t channels, uint64_t bits)
{
    for (const AobSizeRow& row : AOB_SIZES) {
        if (row.channels == channels && row.bits == bits) return &row;
    }
    return nullptr;
}

/** Bytes in front of the samples. */
[[nodiscard]] constexpr uint64_t orvAobHeaderBytes(const AobPackSizes& sizes, bool first)
{
    return PACK_HEADER_BYTES + (first ? AOB_SYSTEM_HEADER_BYTES : 0) + AOB_PES_BYTES + sizes.pesHeaderLength +
           AOB_HEADER_BASE + sizes.headerLength;
}

[[nodiscard]] constexpr bool orvAobSizesFillPack(const AobPackSizes& sizes, bool first)
{
    const uint64_t padding = sizes.padding ? sizes.padding + AOB_PADDING_HEAD : 0;
    return orvAobHeaderBytes(sizes, first) + sizes.payload + padding == SECTOR_BYTES;
}

// Headers, samples and padding fill each pack.
[[nodiscard]] constexpr bool orvAobSizesFillPacks()
{
    for (const AobSizeRow& row : AOB_SIZES) {
        if (!orvAobSizesFillPack(row.first, true) || !orvAobSizesFillPack(row.next, false)) return false;
    }
    return true;
}
static_assert(orvAobSizesFillPacks());
