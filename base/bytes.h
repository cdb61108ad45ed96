// bytes.h: big-endian fields of disc structures, and the rows by which they are named.
//
// A layout is a list of DiscField rows in disc order. Writers, readers and tests use the same rows, so that a width or
// an offset is told once. Several rows of a repeated entry count from the entry's own start.
#pragma once

#include <cstdint>

inline constexpr uint64_t SECTOR_BYTES = 2048;   // one sector, one pack
inline constexpr uint64_t SECTOR_SHIFT = 11;

struct DiscField {
    uint32_t at;        // bytes from the start of the structure
    uint32_t size;      // bytes; 1, 2 and 4 are numbers, any other width is a byte string or a repeated entry
    const char* name;   // published name
};

/** Whether rows ascend, none overlaps another and none leaves a structure of this many bytes. */
template <uint64_t N> [[nodiscard]] constexpr bool orvFieldsFit(const DiscField (&fields)[N], uint64_t bytes)
{
    uint64_t end = 0;
    for (const DiscField& field : fields) {
        if (field.at < end || field.size == 0) return false;
        end = uint64_t(field.at) + field.size;
    }
    return end <= bytes;
}

/** The low 16 bits of value with their two bytes exchanged. */
[[nodiscard]] constexpr uint16_t orvSwap16(uint64_t value)
{
    return uint16_t(((value & 0xFF) << 8) | ((value >> 8) & 0xFF));
}

/** The four bytes of value reversed. */
[[nodiscard]] constexpr uint32_t orvSwap32(uint32_t value)
{
    return (value << 24) | ((value & 0xFF00) << 8) | ((value >> 8) & 0xFF00) | (value >> 24);
}

inline void orvPut16(uint8_t* to, uint64_t value)
{
    to[0] = uint8_t(value >> 8);
    to[1] = uint8_t(value);
}

inline void orvPut32(uint8_t* to, uint64_t value)
{
    to[0] = uint8_t(value >> 24);
    to[1] = uint8_t(value >> 16);
    to[2] = uint8_t(value >> 8);
    to[3] = uint8_t(value);
}

[[nodiscard]] inline uint32_t orvGet16(const uint8_t* from)
{
    return uint32_t(from[0]) << 8 | from[1];
}

[[nodiscard]] inline uint32_t orvGet32(const uint8_t* from)
{
    return uint32_t(from[0]) << 24 | uint32_t(from[1]) << 16 | uint32_t(from[2]) << 8 | from[3];
}

// Little-endian numbers, as files that are no disc structures have them.
[[nodiscard]] inline uint32_t orvGetLittle16(const uint8_t* from)
{
    return uint32_t(from[1]) << 8 | from[0];
}

[[nodiscard]] inline uint32_t orvGetLittle32(const uint8_t* from)
{
    return orvGetLittle16(from + 2) << 16 | orvGetLittle16(from);
}

inline void orvPutLittle32(uint8_t* to, uint32_t value)
{
    for (uint32_t i = 0; i < 4; i++) to[i] = uint8_t(value >> 8 * i);
}

/** Stores value big-endian in a field of 1, 2 or 4 bytes; higher bits are dropped. */
inline void orvPut(uint8_t* structure, const DiscField& field, uint64_t value)
{
    uint8_t* to = structure + field.at;
    if (field.size == 4) orvPut32(to, value);
    if (field.size == 2) orvPut16(to, value);
    if (field.size == 1) *to = uint8_t(value);
}

/** Value of a field of 1, 2 or 4 bytes. */
[[nodiscard]] inline uint32_t orvGet(const uint8_t* structure, const DiscField& field)
{
    const uint8_t* from = structure + field.at;
    if (field.size == 4) return orvGet32(from);
    if (field.size == 2) return orvGet16(from);
    return *from;
}
