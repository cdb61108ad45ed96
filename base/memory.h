// memory.h: growable memory blocks, the only lists and buffers that the library allocates.
//
// A block is a pointer to its first data byte, 16-byte aligned and zero filled, with a header in front. A resize may
// move it, so nobody keeps a pointer into a block over an insertion.
#pragma once

#include <cstdint>

inline constexpr uint64_t OS_BLOCK_END = ~uint64_t(0);   // position of osInsertMem: behind the last byte

/** Bytes that a new block of this size takes from the platform, or 0 when that number does not fit 64 bits. */
[[nodiscard]] uint64_t osBlockCapacity(uint64_t size);

/** Allocates a zero-filled block; the caller owns it. On failure the block is null and the result the platform's. */
[[nodiscard]] uint64_t osAllocBlock(uint64_t size, void** block);
/** Allocates a block and fills it from source + offset. A size of 0 is OS_INVALID_ARGUMENT. */
[[nodiscard]] uint64_t osAllocBlockCopy(const void* source, uint64_t offset, uint64_t size, void** block);
/** Makes a block larger or smaller; a null block stays null and is a success. New bytes are 0. */
[[nodiscard]] uint64_t osResizeBlock(void** block, uint64_t size);
/** Opens a gap of count bytes at position and fills it from source; a null source leaves in the gap what lay there.
    OS_BLOCK_END appends; a position past the end is OS_INVALID_ARGUMENT; source does not point into the block. */
[[nodiscard]] uint64_t osInsertBlock(void** block, uint64_t position, const void* source, uint64_t count);
/** Frees a block and nulls the pointer; harmless on a null block. */
uint64_t osFreeBlock(void** block);
/** Size in bytes as asked for, all ones for a null block. */
[[nodiscard]] uint64_t osMemSize(const void* block);

/** Copies; the two places may overlap. */
void osCopyMem(void* destination, const void* source, uint64_t count);
void osFillMem(void* destination, uint64_t count, uint8_t byte);
void osZeroMem(void* destination, uint64_t count);

// The same functions for typed block pointers. A null argument is OS_INVALID_ARGUMENT.

template <class T> [[nodiscard]] uint64_t osAllocMem(uint64_t size, T** out)
{
    if (!out) return osAllocBlock(size, nullptr);
    void* block = nullptr;
    const uint64_t result = osAllocBlock(size, &block);
    *out = static_cast<T*>(block);
    return result;
}

template <class T> [[nodiscard]] uint64_t osAllocMemCopy(const void* source, uint64_t offset, uint64_t size, T** out)
{
    if (!out) return osAllocBlockCopy(source, offset, size, nullptr);
    void* block = nullptr;
    const uint64_t result = osAllocBlockCopy(source, offset, size, &block);
    *out = static_cast<T*>(block);
    return result;
}

template <class T> [[nodiscard]] uint64_t osResizeMem(T** pointer, uint64_t size)
{
    if (!pointer) return osResizeBlock(nullptr, size);
    void* block = *pointer;
    const uint64_t result = osResizeBlock(&block, size);
    *pointer = static_cast<T*>(block);
    return result;
}

template <class T>
[[nodiscard]] uint64_t osInsertMem(T** pointer, uint64_t position, const void* source, uint64_t count)
{
    if (!pointer) return osInsertBlock(nullptr, position, source, count);
    void* block = *pointer;
    const uint64_t result = osInsertBlock(&block, position, source, count);
    *pointer = static_cast<T*>(block);
    return result;
}

template <class T> uint64_t osFreeMem(T** pointer)
{
    if (!pointer) return osFreeBlock(nullptr);
    void* block = *pointer;
    *pointer = nullptr;
    return osFreeBlock(&block);
}

/** Records in a list; 0 for a null list. An incomplete last record does not count. */
template <class T> [[nodiscard]] uint64_t osListCount(const T* list)
{
    return list ? osMemSize(list) / sizeof(T) : 0;
}

/** Appends one record to a list. */
template <class T> [[nodiscard]] uint64_t osListAppend(T** list, const T& record)
{
    return osInsertMem(list, OS_BLOCK_END, &record, sizeof(T));
}
