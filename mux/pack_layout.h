// pack_layout.h: where the clocks and packets of a program stream pack stand. Offsets from the first byte of the pack,
// one sector; multi-byte values are big-endian.
#pragma once

#include "base/bytes.h"
#include "project/model.h"

#include <cstdint>

inline constexpr uint8_t START_CODE_PREFIX = 0x01;   // the last byte of 00 00 01
inline constexpr uint8_t PACK_START = 0xBA;          // last byte of a start code, as those of the streams
inline constexpr uint8_t PROGRAM_END = 0xB9;
inline constexpr uint8_t STREAM_SYSTEM_HEADER = 0xBB;
inline constexpr uint8_t STREAM_PADDING = 0xBE;
inline constexpr uint8_t STREAM_PRIVATE_2 = 0xBF;   // navigation packets
inline constexpr uint8_t STREAM_VIDEO = 0xE0;

// Sub-streams of private stream 1: the first of each kind.
inline constexpr uint8_t SUB_STREAM_SUB_PICTURE = 0x20, SUB_STREAM_AC3 = 0x80, SUB_STREAM_LPCM = 0xA0;

// clang-format off
//                                              at  size  published name
inline constexpr DiscField PACK_SCR           = {  4,  6, "system_clock_reference" };
inline constexpr DiscField PACK_MUX_RATE      = { 10,  3, "program_mux_rate" };           // 50 bytes a second; 22 bits
inline constexpr DiscField PACK_STUFFING      = { 13,  1, "pack_stuffing_length" };       // low three bits
inline constexpr DiscField PACK_PACKET_PREFIX = { 16,  1, "packet_start_code_prefix" };   // its last byte, 1
inline constexpr DiscField PACK_STREAM_ID     = { 17,  1, "stream_id" };
inline constexpr DiscField PACK_PES_LENGTH    = { 18,  2, "PES_packet_length" };          // bytes behind this field
inline constexpr DiscField PACK_PES_FLAGS     = { 21,  1, "PES_header_flags" };
inline constexpr DiscField PACK_PES_HEADER    = { 22,  1, "PES_header_data_length" };     // bytes behind this field
inline constexpr DiscField PACK_PES_PTS       = { 23,  5, "PTS" };
inline constexpr DiscField PACK_FIELDS[]      = { PACK_SCR,       PACK_MUX_RATE,   PACK_STUFFING,  PACK_PACKET_PREFIX,
                                                  PACK_STREAM_ID, PACK_PES_LENGTH, PACK_PES_FLAGS, PACK_PES_HEADER,
                                                  PACK_PES_PTS };
// clang-format on
static_assert(orvFieldsFit(PACK_FIELDS, SECTOR_BYTES));

inline constexpr uint8_t PES_HAS_PTS = 0x80;     // in PES_header_flags
inline constexpr uint8_t PES_MARK = 0x81;        // the byte in front of the flags
inline constexpr uint64_t PES_DATA = 23;         // a payload begins here plus PES_header_data_length
inline constexpr uint64_t PES_LENGTH_BASE = 3;   // bytes of PES_packet_length that are neither header data nor payload

inline constexpr uint64_t PACK_HEADER_BYTES = 14;     // a packet or the system header begins here
inline constexpr uint64_t PACKET_HEAD_BYTES = 6;      // start code and length of a packet
inline constexpr uint64_t TIME_STAMP_BYTES = 5;       // a PTS or a DTS
inline constexpr uint64_t PES_FULL_LENGTH = 2028;     // PES_packet_length of a packet that fills its pack
inline constexpr uint64_t LEAST_PADDING_PACKET = 8;   // a smaller gap is filled by stuffing in the PES header
