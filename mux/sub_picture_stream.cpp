// sub_picture_stream.cpp: reserves a sub-picture stream of a multiplexer. Such a stream is never fed, and holds up the
// scheduler until the end: menus get their sub-pictures from the asset drivers.

#include "mux/ring.h"
#include "mux/stream_kinds.h"

constexpr uint64_t SUB_PICTURE_STD_BYTES = 53248, STD_SCALE = 1, STD_BOUND = 58;

uint64_t orvSetupSubPicture(MuxStream* stream)
{
    stream->stdSize = SUB_PICTURE_STD_BYTES;
    stream->stdScale = STD_SCALE;
    stream->stdBound = STD_BOUND;
    orvRingRewind(stream->ring);
    return 0;
}
