// png_decode.h: PNG files back into pictures, by the component of the system that has made them.
#pragma once

#include "host/picture.h"

/** Fails the running test and gives an empty picture if the bytes are no PNG file. */
Picture decodePng(const std::vector<uint8_t>& png);
