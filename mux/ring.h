// ring.h: the byte ring between a host and the scheduler.
#pragma once

#include "mux/mux_types.h"

inline constexpr uint64_t RING_BYTES = 0x200000;
inline constexpr uint64_t LEVEL_UNLIMITED = 0x7FFFFFFF;

/** Makes an empty ring, which the caller owns. */
[[nodiscard]] uint64_t orvRingCreate(MuxRing** ring, uint64_t watermark);
void orvRingFree(MuxRing** ring);
/** Stores all bytes or none. written may be null. @return 0; ORV_MUX_OVERFLOW; ORV_INVALID_ARGUMENT for a null ring */
[[nodiscard]] uint64_t orvRingWrite(MuxRing* ring, const uint8_t* data, uint64_t size, uint64_t* written);
/** Takes up to size bytes, a signed number of 32 bits. read may be null. @return 0; ORV_MUX_OVERFLOW if the ring is
    empty, the same code */
[[nodiscard]] uint64_t orvRingRead(MuxRing* ring, uint8_t* destination, uint64_t size, uint64_t* read);
/** Whether the ring holds enough for the scheduler to go on: its watermark, or the end of the stream. */
[[nodiscard]] bool orvRingReady(const MuxRing* ring);
void orvRingEnd(MuxRing* ring);
/** Bytes that a pack may count on: those held once the stream has ended, LEVEL_UNLIMITED as long as more can come. */
[[nodiscard]] uint64_t orvRingLevel(const MuxRing* ring);
/** Takes back everything that was read since the ring's start. */
void orvRingRewind(MuxRing* ring);
