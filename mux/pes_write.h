// pes_write.h: the PES header of a pack that the scheduler fills.
#pragma once

#include "mux/mux_types.h"

/** Writes the packet's header from offset 14 on, through the sub-stream header.
    @param flags    PACK_HAS_...
    @param padding  bytes of the pack that the payload leaves: up to 7 become stuffing of the header, more are left to a
                    padding packet that the caller writes
    @return offset at which the payload begins */
[[nodiscard]] uint64_t orvWritePesHeader(uint8_t* pack, const MuxStream* stream, uint64_t flags, uint64_t pts,
                                         uint64_t dts, uint64_t padding);
