// mux_rig.h: elementary streams by a public encoder, multiplexed through the library, and what its packs hold.
#pragma once

#include "tests/readers/material.h"

#include <orven/orven.h>

#include <cstdint>
#include <string>
#include <vector>

typedef std::vector<uint8_t> Bytes;

/** An MPEG-2 elementary stream, made once for all tests of the program. */
const std::filesystem::path& realVideo(Standard standard, int seconds);
/** Sound of one encoding, as the encoder's options name it: "-c:a ac3 -b:a 192k -ac 2"; ending tells the form. */
const std::filesystem::path& realSound(const std::string& options, const std::string& ending, int seconds);

// A stream to be multiplexed.
struct MuxInput {
    uint64_t flags;   // of AddStream
    Bytes bytes;
    Bytes waveFormat = {};   // LPCM: announces it
    bool endMark = false;    // "END " ends it
};

/** Multiplexes streams, interleaved by equal shares; the first is the video. Fails the running test on any result but
    0. */
Bytes multiplex(const std::vector<MuxInput>& inputs);

struct PesPack {
    uint64_t streamId, subStreamId;   // subStreamId 0 without private stream 1
    bool hasPts;
    uint64_t pts;
    uint64_t at;     // of the payload in its pack, behind all headers
    Bytes payload;   // to the end of the packet
};

/** The packs of one stream, in order. subStreamId as in PesPack. */
std::vector<PesPack> packsOf(const Bytes& program, uint64_t streamId, uint64_t subStreamId);

/** Delay of the first picture's decoding: from the position of the third picture, and the streams. */
uint64_t videoDelayOf(const Bytes& video, uint64_t streams);
