// ring.cpp: the byte ring between a host and the scheduler.

#include "mux/ring.h"

#include "base/memory.h"
#include "base/result.h"

uint64_t orvRingCreate(MuxRing** ring, uint64_t watermark)
{
    *ring = nullptr;
    MuxRing* made = nullptr;
    if (uint64_t error = osAllocMem(sizeof(MuxRing), &made)) return error;
    if (uint64_t error = osAllocMem(RING_BYTES, &made->data)) {
        (void)osFreeMem(&made);
        return error;
    }
    made->capacity = RING_BYTES;
    made->watermark = watermark;
    *ring = made;
    return 0;
}

void orvRingFree(MuxRing** ring)
{
    if (*ring) (void)osFreeMem(&(*ring)->data);
    (void)osFreeMem(ring);
}

static uint64_t least(uint64_t a, uint64_t b)
{
    return a < b ? a : b;
}

uint64_t orvRingWrite(MuxRing* ring, const uint8_t* data, uint64_t size, uint64_t* written)
{
    if (written) *written = 0;
    if (!ring) return ORV_INVALID_ARGUMENT;
    if (size > ring->capacity - ring->fill) return ORV_MUX_OVERFLOW;
    const uint64_t first = least(size, ring->capacity - ring->writeIndex);
    osCopyMem(ring->data + ring->writeIndex, data, first);
    osCopyMem(ring->data, data + first, size - first);
    ring->writeIndex = (ring->writeIndex + size) % ring->capacity;
    ring->fill += size;
    if (written) *written = size;
    return 0;
}

uint64_t orvRingRead(MuxRing* ring, uint8_t* destination, uint64_t size, uint64_t* read)
{
    if (read) *read = 0;
    if (ring->fill == 0) return ORV_MUX_OVERFLOW;
    const int32_t wanted = int32_t(uint32_t(size));
    const uint64_t count = wanted < 0 ? 0 : least(ring->fill, uint64_t(wanted));
    const uint64_t first = least(count, ring->capacity - ring->readIndex);
    osCopyMem(destination, ring->data + ring->readIndex, first);
    osCopyMem(destination + first, ring->data, count - first);
    ring->readIndex = (ring->readIndex + count) % ring->capacity;
    ring->fill -= count;
    if (read) *read = count;
    return 0;
}

bool orvRingReady(const MuxRing* ring)
{
    return ring->ended || ring->fill >= ring->watermark;
}

void orvRingEnd(MuxRing* ring)
{
    ring->ended = 1;
}

uint64_t orvRingLevel(const MuxRing* ring)
{
    return ring->ended ? ring->fill : LEVEL_UNLIMITED;
}

void orvRingRewind(MuxRing* ring)
{
    ring->fill += ring->readIndex;
    ring->readIndex = 0;
}
