// registry.h: what the exported functions of the multiplexer share.
#pragma once

#include "mux/mux_types.h"

/** Releases a stream with all that it holds. */
void orvFreeMuxStream(MuxStream** stream);
