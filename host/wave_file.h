// wave_file.h: RIFF/WAVE files: the format and the place of the samples.
#pragma once

#include "elementary.h"

/** Reads the chunks of a RIFF/WAVE file up to its samples. */
StreamFault readWave(std::istream& in, uint64_t bytes, StreamFormat* format);
