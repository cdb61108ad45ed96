// start_codes.h: finds and reads start codes of MPEG video. Bytes behind the end of what there is read as 0.
#pragma once

#include <cstdint>

// Fourth byte of the start codes that a group or a unit begins with.
inline constexpr uint8_t CODE_PICTURE = 0x00, CODE_SEQUENCE = 0xB3, CODE_SEQUENCE_END = 0xB7, CODE_GOP = 0xB8;

/** Byte at an offset, 0 behind the end. */
[[nodiscard]] inline uint8_t orvByteAt(const uint8_t* data, uint64_t size, uint64_t at)
{
    return at < size ? data[at] : 0;
}

/** Four bytes from an offset as a big-endian number. */
[[nodiscard]] inline uint32_t orvWordAt(const uint8_t* data, uint64_t size, uint64_t at)
{
    return uint32_t(orvByteAt(data, size, at)) << 24 | uint32_t(orvByteAt(data, size, at + 1)) << 16 |
           uint32_t(orvByteAt(data, size, at + 2)) << 8 | orvByteAt(data, size, at + 3);
}

/** Start code word of a fourth byte: 00 00 01 xx. */
[[nodiscard]] constexpr uint32_t orvStartCode(uint8_t code)
{
    return 0x00000100 | uint32_t(code);
}

/** Offset of the first `00 00 01` at or behind from that ends in front of limit, or limit. */
[[nodiscard]] uint64_t orvFindStartCode(const uint8_t* data, uint64_t from, uint64_t limit);
