// stream_kinds.h: the kinds of stream, by the flags that ask for them.
#pragma once

#include "mux/mux_types.h"

enum MuxFamily : uint64_t { FAMILY_VIDEO, FAMILY_AUDIO, FAMILY_SUB_PICTURE };

struct MuxKind {
    uint64_t kind;
    MuxFamily family;
    uint8_t streamId;      // plus the stream's index where the next is 0
    uint8_t subStreamId;   // of private stream 1, plus the stream's index; 0: no sub-stream
    uint64_t (*setup)(MuxStream*);
};

/** The row of a kind, null for one that the multiplexer does not know. */
[[nodiscard]] const MuxKind* orvMuxKind(uint64_t kind);
/** Kind that flags of AddStream ask for, 0 if none, and the watermark of its ring. */
[[nodiscard]] uint64_t orvKindOfFlags(uint64_t flags, uint64_t* watermark);

[[nodiscard]] uint64_t orvSetupSubPicture(MuxStream* stream);
