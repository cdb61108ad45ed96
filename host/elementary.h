// elementary.h: files that hold one elementary stream: what it is, told by its bytes and not by its name.
#pragma once

#include "file_fault.h"

#include <array>
#include <cstdint>
#include <istream>
#include <string>

enum StreamKind { STREAM_VIDEO, STREAM_AC3, STREAM_LAYER2, STREAM_LPCM };

inline constexpr uint64_t TICKS_A_SECOND = 90000;
inline constexpr uint64_t PAL_PICTURE_TICKS = 3600, NTSC_PICTURE_TICKS = 3003;
inline constexpr uint64_t WAVE_FORMAT_BYTES = 18;   // of a WAVEFORMATEX

struct StreamFormat {
    StreamKind kind = STREAM_VIDEO;
    uint64_t from = 0, bytes = 0;      // the part of the file that is the stream
    uint64_t unitTicks = 0;            // of a picture, a frame, or 1/600 second of LPCM
    uint64_t unitBytes = 0;            // 0 for video, whose pictures have no common size
    uint64_t width = 0, height = 0;    // video
    uint64_t kbits = 0;                // AC-3 and layer 2, a second
    bool exchanged = false;            // AC-3 whose bytes are exchanged in pairs
    uint64_t channels = 0, bits = 0;   // LPCM, with its rate in Hz
    uint64_t rate = 0;
    std::array<uint8_t, WAVE_FORMAT_BYTES> wave = {};   // LPCM: a WAVEFORMATEX of plain PCM
};

/** Tells what a file of so many bytes holds. */
FileFault recogniseStream(std::istream& in, uint64_t bytes, StreamFormat* format);

/** "AC-3, 192 kbit/s". */
std::string streamText(const StreamFormat& format);

/** Whether a frame of AC-3 or layer 2 begins like those of the stream: head holds its first six bytes. */
bool isFrameOf(const StreamFormat& format, const uint8_t* head);
