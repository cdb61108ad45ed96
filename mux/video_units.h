// video_units.h: what both kinds of video stream have in common: the records of their pictures and the plan of a pack.
#pragma once

#include "mux/mux_types.h"

inline constexpr uint64_t TICKS_PAL = 3600, TICKS_NTSC = 3003;        // of a picture
inline constexpr uint64_t CODING_I = 1, CODING_P = 2, CODING_B = 3;   // of a picture header
inline constexpr uint64_t FILLED_UNIT_BYTES = 1024;                   // zeros in the place of a missing picture

/** Writes what a video kind's set-up has in common into a stream. */
void orvSetupVideo(MuxStream* stream);
/** Set-up of MPEG video in chunks that begin at start codes, and in chunks of any kind. */
[[nodiscard]] uint64_t orvSetupVideoUnits(MuxStream* stream);
[[nodiscard]] uint64_t orvSetupVideoScan(MuxStream* stream);

/** Takes size and frame rate from a sequence header. @return 0; ORV_VIDEO_NOT_PAL_OR_NTSC as a warning, the size being
   taken all the same */
[[nodiscard]] uint64_t orvReadSequenceHeader(MuxStream* stream, const uint8_t* data, uint64_t size, uint64_t at);
/** Starts the counts of a stream with its first chunk. */
void orvBeginVideo(MuxStream* stream);

// Temporal reference and coding type of a picture header.
struct PictureHead {
    uint64_t temporalReference;
    uint32_t codingType;
};
[[nodiscard]] PictureHead orvReadPictureHead(const uint8_t* data, uint64_t size, uint64_t at);
