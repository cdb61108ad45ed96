// sub_picture_read.h: reads a sub-picture unit back, as a player does.
#pragma once

#include <cstdint>

/** Decodes a unit's first control sequence into a plane of width x height pixel codes, top line first, which the caller
    has cleared. Pixels outside the display area stay as they are. Whatever the unit says, only its own bytes are read;
    data that end early leave the rest of the plane.
    @return 0; ORV_INVALID_ARGUMENT if the unit has no display area or no pixel data */
[[nodiscard]] uint64_t orvDecodeSubPicture(const uint8_t* unit, uint64_t unitBytes, uint64_t width, uint64_t height,
                                           uint8_t* plane);
