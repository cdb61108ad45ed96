// scheduler.h: the heart of the multiplexer: makes packs as long as every stream has enough input.
#pragma once

#include "mux/mux_types.h"

/** Runs until some ring holds too little, or all of them have ended and are empty.
    @return 0; ORV_NO_VIDEO_STREAM; ORV_MUX_UNDERRUN; ORV_MUX_OVERFLOW; what the write callback returned */
[[nodiscard]] uint64_t orvMuxRun(MuxContext* handle);

/** Hands out the packs that are pending. @return what the write callback returned; they stay then */
[[nodiscard]] uint64_t orvDeliver(MuxContext* handle);
