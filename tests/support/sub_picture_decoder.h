// sub_picture_decoder.h: what a player makes of a sub-picture unit, told from the format alone: the pixel codes it
// shows and where, colours, contrasts and the sequences of commands. It knows nothing of the encoder.
#pragma once

#include "tests/support/bitmaps.h"
#include "tests/support/files.h"

#include <cstdint>
#include <string>
#include <vector>

inline constexpr uint8_t SPU_NOTHING = 0xFF;   // in a plane: the unit shows nothing here

struct DecodedSpuCommand {
    uint8_t number;
    Bytes params;   // as they stand in the unit
};

struct DecodedSpuSequence {
    uint64_t offset, delay, next;              // from the unit's start; 1024 / 90000 s; its own offset marks the last
    std::vector<DecodedSpuCommand> commands;   // without the end of commands
};

struct DecodedSubPicture {
    /** Each breach of the format, "12: what is wrong" with its offset; empty for a unit in order. Whatever the bytes,
        nothing outside them is read. */
    std::vector<std::string> faults = {};

    uint64_t size = 0, controlOffset = 0;   // as the unit's head says
    std::vector<DecodedSpuSequence> sequences = {};

    // What the last command of each kind has set.
    bool forced = false, started = false, stopped = false;
    uint8_t colors[4] = {}, contrasts[4] = {};           // by pixel code: background, pattern, emphasis 1, emphasis 2
    uint64_t left = 0, right = 0, top = 0, bottom = 0;   // display area; all four belong to it
    uint64_t fieldOffset[2] = {};                        // where the pixels of the area's first and second line lie
    uint64_t fieldEnd[2] = {};                           // behind the last byte that the area's lines take

    /** 720 x height pixel codes 0..3, SPU_NOTHING outside the display area. Contrast is not applied: a highlight has
        contrasts of its own. */
    ByteImage plane = ByteImage(0);
};

/** Takes a whole unit apart, as it is shown in a picture of this many lines. */
DecodedSubPicture decodeSubPicture(const Bytes& unit, uint64_t height);

/** Lines of run-length coded pixels from offset at on, none of whose bytes lies at limit or behind; each line has width
    codes, SPU_NOTHING where a fault left none. *end, if not null, gets the offset behind the last line. */
std::vector<Bytes> decodeSpuLines(const Bytes& bytes, uint64_t at, uint64_t limit, uint64_t width, uint64_t lines,
                                  std::vector<std::string>* faults, uint64_t* end = nullptr);
