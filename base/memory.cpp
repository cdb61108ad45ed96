// memory.cpp: memory blocks over the language's own heap. A header of 32 bytes stands in front of the data; what lies
// behind the data up to the capacity is undefined and is cleared when the block grows over it.
#include "base/memory.h"

#include "base/platform.h"
#include "base/result.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif

namespace {

struct BlockHeader {
    uint64_t capacity;   // bytes taken from the heap, header included
    uint64_t usedSize;   // bytes that the caller asked for
    uint64_t reservedWord;
    uint64_t headerShift;   // 0: the heap's own alignment serves
};
static_assert(sizeof(BlockHeader) == 32);
static_assert(alignof(std::max_align_t) >= 16);   // header and data are aligned as the heap gives them

constexpr uint64_t PAGE_BYTES = 4096;
constexpr uint64_t OVERHEAD_BYTES = 48;                   // the header, 15 bytes of alignment, one to spare
constexpr uint64_t LARGE_BLOCK_BYTES = 16 * PAGE_BYTES;   // from here on blocks grow by half of what they hold

BlockHeader* headerOf(void* block)
{
    return static_cast<BlockHeader*>(block) - 1;
}

const BlockHeader* headerOf(const void* block)
{
    return static_cast<const BlockHeader*>(block) - 1;
}

// Under the address sanitizer the room behind the data is closed, so that nobody reads or writes past a block's size.
#ifdef __SANITIZE_ADDRESS__
void openRoom(const BlockHeader* header, uint64_t from, uint64_t to)
{
    __asan_unpoison_memory_region(reinterpret_cast<const uint8_t*>(header + 1) + from, to - from);
}

void closeRoom(const BlockHeader* header, uint64_t from, uint64_t to)
{
    __asan_poison_memory_region(reinterpret_cast<const uint8_t*>(header + 1) + from, to - from);
}
#else
void openRoom(const BlockHeader*, uint64_t, uint64_t) {}
void closeRoom(const BlockHeader*, uint64_t, uint64_t) {}
#endif

uint64_t roomOf(const BlockHeader* header)
{
    return header->capacity - sizeof(BlockHeader);
}

bool fits(uint64_t capacity)
{
    return capacity != 0 && capacity <= uint64_t(PTRDIFF_MAX);
}

// Capacity for a block that outgrows what it has. Pages alone would copy a long list once every few dozen records.
uint64_t grownCapacity(uint64_t capacity, uint64_t size)
{
    const uint64_t needed = osBlockCapacity(size);
    if (needed < LARGE_BLOCK_BYTES || needed <= capacity) return needed;
    const uint64_t ample = osBlockCapacity(capacity + capacity / 2);
    return ample > needed && fits(ample) ? ample : needed;
}

// Gives a block the capacity for a size; its used size stays.
uint64_t moveBlock(void** block, uint64_t size)
{
    const uint64_t old = headerOf(*block)->usedSize;
    uint64_t capacity = grownCapacity(headerOf(*block)->capacity, size);
    openRoom(headerOf(*block), old, roomOf(headerOf(*block)));
    void* memory = std::realloc(headerOf(*block), capacity);
    if (!memory) {
        capacity = osBlockCapacity(size);
        memory = std::realloc(headerOf(*block), capacity);
    }
    if (!memory) {
        closeRoom(headerOf(*block), old, roomOf(headerOf(*block)));   // it is where it was
        return osMemoryError();
    }
    auto* header = static_cast<BlockHeader*>(memory);
    header->capacity = capacity;
    closeRoom(header, std::min(old, size), roomOf(header));
    *block = header + 1;
    return 0;
}

}   // namespace

uint64_t osBlockCapacity(uint64_t size)
{
    // Meant: a size whose overhead ends exactly on a page takes one more page. Test: Memory.Capacity
    if (size > ~uint64_t(0) - (OVERHEAD_BYTES + PAGE_BYTES)) return 0;
    return (size + OVERHEAD_BYTES + PAGE_BYTES) & ~(PAGE_BYTES - 1);
}

uint64_t osAllocBlock(uint64_t size, void** block)
{
    if (!block) return OS_INVALID_ARGUMENT;
    *block = nullptr;
    const uint64_t capacity = osBlockCapacity(size);
    if (!fits(capacity)) return osMemoryError();
    void* memory = std::calloc(1, capacity);
    if (!memory) return osMemoryError();
    auto* header = static_cast<BlockHeader*>(memory);
    header->capacity = capacity;
    header->usedSize = size;
    closeRoom(header, size, roomOf(header));
    *block = header + 1;
    return 0;
}

uint64_t osAllocBlockCopy(const void* source, uint64_t offset, uint64_t size, void** block)
{
    if (!block) return OS_INVALID_ARGUMENT;
    *block = nullptr;
    if (!source || size == 0) return OS_INVALID_ARGUMENT;
    if (uint64_t error = osAllocBlock(size, block)) return error;
    osCopyMem(*block, static_cast<const uint8_t*>(source) + offset, size);
    return 0;
}

uint64_t osResizeBlock(void** block, uint64_t size)
{
    if (!block) return OS_INVALID_ARGUMENT;
    if (!*block) return 0;
    const uint64_t needed = osBlockCapacity(size);
    if (!fits(needed)) return osMemoryError();
    // A block that shrinks keeps its room until half of it is idle, so that no list moves to and fro over one border.
    const uint64_t capacity = headerOf(*block)->capacity;
    if (needed > capacity || needed < capacity / 2) {
        if (uint64_t error = moveBlock(block, size)) return error;
    }
    BlockHeader* header = headerOf(*block);
    const uint64_t old = header->usedSize;
    header->usedSize = size;
    if (size > old) {
        openRoom(header, old, size);
        osZeroMem(static_cast<uint8_t*>(*block) + old, size - old);
    } else {
        closeRoom(header, size, std::min(old, roomOf(header)));
    }
    return 0;
}

uint64_t osInsertBlock(void** block, uint64_t position, const void* source, uint64_t count)
{
    if (!block) return OS_INVALID_ARGUMENT;
    if (count == 0) return 0;
    if (!*block) return OS_INVALID_ARGUMENT;
    const uint64_t used = headerOf(*block)->usedSize;
    if (position == OS_BLOCK_END) position = used;
    if (position > used) return OS_INVALID_ARGUMENT;
    if (count > ~uint64_t(0) - used) return osMemoryError();
    if (uint64_t error = osResizeBlock(block, used + count)) return error;
    uint8_t* gap = static_cast<uint8_t*>(*block) + position;
    osCopyMem(gap + count, gap, used - position);
    if (source) osCopyMem(gap, source, count);
    return 0;
}

uint64_t osFreeBlock(void** block)
{
    if (!block) return OS_INVALID_ARGUMENT;
    if (*block) {
        openRoom(headerOf(*block), headerOf(*block)->usedSize, roomOf(headerOf(*block)));
        std::free(headerOf(*block));
    }
    *block = nullptr;
    return 0;
}

uint64_t osMemSize(const void* block)
{
    return block ? headerOf(block)->usedSize : ~uint64_t(0);
}

void osCopyMem(void* destination, const void* source, uint64_t count)
{
    if (count) std::memmove(destination, source, count);
}

void osFillMem(void* destination, uint64_t count, uint8_t byte)
{
    if (count) std::memset(destination, byte, count);
}

void osZeroMem(void* destination, uint64_t count)
{
    osFillMem(destination, count, 0);
}
