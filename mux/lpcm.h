// lpcm.h: LPCM from RIFF/WAVE: its formats, and the exchange of its bytes in a pack.
#pragma once

#include "mux/mux_types.h"

/** Payload bytes of a pack of a stream's format, a multiple of its sample group; 0 without a format. */
[[nodiscard]] uint64_t orvLpcmCapacity(const MuxStream* stream);

/** Brings size payload bytes of a pack into the order of the disc. Positions are rounded down to words.
    @return 0; ORV_UNSUPPORTED_LPCM without a format */
[[nodiscard]] uint64_t orvSwizzleLpcm(const MuxStream* stream, uint8_t* pack, uint64_t offset, uint64_t size);
