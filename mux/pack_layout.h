// pack_layout.h: where the clocks and packets of a program stream pack stand. Offsets from the first byte of the pack,
// one sector; multi-byte values are big-endian.
#pragma once

#include "base/bytes.h"
#include "project/model.h"

#include <cstdint>

inline constexpr uint8_t STREAM_SYSTEM_HEADER = 0xBB;
inline constexpr uint8_t STREAM_PRIVATE_2 = 0xBF;   // navigation packets
inline constexpr uint8_t STREAM_VIDEO = 0xE0;

// clang-format off
//                                              at  size  published name
inline constexpr DiscField PACK_SCR           = {  4,  6, "system_clock_reference" };
inline constexpr DiscField PACK_PACKET_PREFIX = { 16,  1, "packet_start_code_prefix" };   // its last byte, 1
inline constexpr DiscField PACK_STREAM_ID     = { 17,  1, "stream_id" };
inline constexpr DiscField PACK_PES_LENGTH    = { 18,  2, "PES_packet_length" };          // bytes behind this field
inline constexpr DiscField PACK_PES_FLAGS     = { 21,  1, "PES_header_flags" };
inline constexpr DiscField PACK_PES_HEADER    = { 22,  1, "PES_header_data_length" };     // bytes behind this field
inline constexpr DiscField PACK_PES_PTS       = { 23,  5, "PTS" };
inline constexpr DiscField PACK_FIELDS[]      = { PACK_SCR, PACK_PACKET_PREFIX, PACK_STREAM_ID, PACK_PES_LENGTH,
                                                  PACK_PES_FLAGS, PACK_PES_HEADER, PACK_PES_PTS };
// clang-format on
static_assert(orvFieldsFit(PACK_FIELDS, SECTOR_BYTES));

inline constexpr uint8_t PES_HAS_PTS = 0x80;     // in PES_header_flags
inline constexpr uint64_t PES_DATA = 23;         // a payload begins here plus PES_header_data_length
inline constexpr uint64_t PES_LENGTH_BASE = 3;   // bytes of PES_packet_length that are neither header data nor payload
