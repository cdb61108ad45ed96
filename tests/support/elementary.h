// elementary.h: elementary streams made by tests from records: MPEG video, AC-3, MPEG audio layer 2, LPCM.
//
// Headers are those of the published formats; everything else is filler in which no header can be found. One line makes
// a stream, as in four GOPs of 12 pictures, PAL:
//
//     const VideoStream video = makeVideo(gops(4));
#pragma once

#include "tests/support/files.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/** Bytes of 0x80..0xDF: they hold no start code, sync word or mark. */
Bytes filler(uint64_t count, uint32_t seed = 1);

// ---- video ------------------------------------------------------------------------------------------------------

inline constexpr uint64_t RATE_CODE_23976 = 1, RATE_CODE_24 = 2, RATE_CODE_PAL = 3, RATE_CODE_NTSC = 4;

/** 12 bytes. */
Bytes sequenceHeader(uint64_t rateCode = RATE_CODE_PAL, uint64_t width = 720, uint64_t height = 576);
/** 8 bytes. */
Bytes gopHeader();
/** 4 bytes. */
Bytes sequenceEnd();
/** A picture of so many bytes, at least 8: header, then filler. type: I, P, B; D is coding type 4, 0 coding type 0. */
Bytes videoPicture(uint64_t bytes, uint64_t temporalRef, char type, uint32_t seed = 1);

// One group: sequence header, GOP header, pictures in stream order.
struct GopSpec {
    std::string types = "IBBPBBPBBPBB";
    std::vector<uint64_t> bytes = { 8000 };    // of the pictures with their own header; the last one goes on
    std::vector<uint64_t> temporalRefs = {};   // missing ones follow from the types, so that the first shown has 0
    bool sequence = true;                      // sequence header in front
    bool gop = true;                           // GOP header in front
    uint64_t rateCode = RATE_CODE_PAL;         // of the sequence header
    uint64_t width = 720, height = 576;
    bool end = false;   // sequence end code behind
};

/** count equal groups. */
std::vector<GopSpec> gops(uint64_t count, const GopSpec& each = {});

struct VideoPictureAt {
    uint64_t at;       // of the picture's start code
    uint64_t unitAt;   // of the first header in front of it, in its group
    uint64_t group;    // from 1
    char type;
    uint64_t temporalRef;
};

struct VideoStream {
    Bytes bytes;
    std::vector<VideoPictureAt> pictures;
    std::vector<uint64_t> codes;   // positions of all start codes

    /** The stream cut in front of each start code. */
    std::vector<Bytes> units() const;
};

VideoStream makeVideo(const std::vector<GopSpec>& groups, uint32_t seed = 1);

/** Temporal references of pictures in stream order: a reference is shown behind the B pictures that follow it. */
std::vector<uint64_t> temporalRefsOf(std::string_view types);

/** Any bytes cut into pieces of so many bytes, the last size again and again. */
std::vector<Bytes> cut(const Bytes& bytes, const std::vector<uint64_t>& sizes);

// ---- audio ------------------------------------------------------------------------------------------------------

/** Bytes of a 48 kHz AC-3 frame by its size code: 128 for 0 and 1, ... 2560 for 36 and 37. */
uint64_t ac3FrameBytes(uint64_t sizeCode);
/** A 48 kHz AC-3 frame: 0B 77, checksum, size code, 0x40, filler. */
Bytes ac3Frame(uint64_t sizeCode, uint32_t seed = 1);
/** Such frames with running filler. */
Bytes ac3Frames(uint64_t sizeCode, uint64_t count, uint32_t seed = 1);
/** The bytes exchanged in pairs; an odd last byte stays. */
Bytes swappedPairs(Bytes bytes);

/** Bytes of a 48 kHz layer 2 frame without padding by its bit rate index, 1..14. */
uint64_t layer2FrameBytes(uint64_t rateIndex);
/** A 48 kHz layer 2 frame: FF FD, index and sampling rate, stereo, filler. */
Bytes layer2Frame(uint64_t rateIndex, uint32_t seed = 1);
Bytes layer2Frames(uint64_t rateIndex, uint64_t count, uint32_t seed = 1);

struct WaveSpec {
    uint64_t channels = 2, rate = 48000, bits = 16;
    uint64_t tag = 1;
    uint64_t dataBytes = 0;   // written into the sizes of RIFF and data chunk
};

/** RIFF header of 44 bytes: fmt chunk of 16 bytes, head of the data chunk. */
Bytes waveHeader(const WaveSpec& wave = {});
/** WAVEFORMATEX, 18 bytes. */
Bytes waveFormat(const WaveSpec& wave = {});
/** The four bytes "END ". */
Bytes endMark();
