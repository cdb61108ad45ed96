// video_units.h: what both kinds of video stream have in common: the records of their pictures and the plan of a pack.
#pragma once

#include "mux/mux_types.h"

inline constexpr uint64_t TICKS_PAL = 3600, TICKS_NTSC = 3003;   // of a picture

/** Writes what a video kind's set-up has in common into a stream. */
void orvSetupVideo(MuxStream* stream);
/** Set-up of MPEG video in chunks that begin at start codes, and in chunks of any kind. */
[[nodiscard]] uint64_t orvSetupVideoUnits(MuxStream* stream);
[[nodiscard]] uint64_t orvSetupVideoScan(MuxStream* stream);

/** Takes size and frame rate from a sequence header. @return 0; ORV_WARNING_VIDEO_RATE, the size being taken all the
    same */
[[nodiscard]] uint64_t orvReadSequenceHeader(MuxStream* stream, const uint8_t* data, uint64_t size, uint64_t at);
/** Starts the counts of a stream with its first chunk. */
void orvBeginVideo(MuxStream* stream);

// Temporal reference and coding type of a picture header.
struct PictureHead {
    uint64_t temporalReference;
    uint32_t codingType;
};
[[nodiscard]] PictureHead orvReadPictureHead(const uint8_t* data, uint64_t size, uint64_t at);

// Results of the parsers that are no failures.
inline constexpr uint64_t RESULT_NO_DATA = 0x84000C1A;   // the chunk is a header, or precedes the first group
inline constexpr uint64_t RESULT_END = 0x84000C1B;       // the chunk ends in "END "
inline constexpr uint64_t RESULT_WARNING_BIT = 0x00100000;
