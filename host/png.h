// png.h: a picture as the bytes of a PNG file, by the system's own means. posix/ and win32/.
#pragma once

#include "picture.h"

/** @return the file's bytes; none if the system can't make them */
std::vector<uint8_t> encodePng(const Picture& picture);
