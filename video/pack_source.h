// pack_source.h: the source files of a movie as one stream of packs, read in large pieces.
#pragma once

#include "base/files.h"
#include "project/model.h"

#include <cstdint>

struct PackSource {
    const RunHead* run;
    char16_t* const* sources;   // MAX_SOURCES entries; the stream ends at the first null
    uint64_t index;             // of the open file
    OSFILE file;
    uint8_t* buffer;     // owned
    uint64_t at, have;   // bytes of the buffer that are passed, and that are filled
    bool ended;
};

/** Opens the first source. Whatever the result, orvClosePackSource releases the record.
    @return 0; ORV_MOVIE_NOT_READ, logged; a platform's number */
[[nodiscard]] uint64_t orvOpenPackSource(PackSource* source, const RunHead* run, char16_t* const* sources);
/** Gives the next pack, valid until the next call; null behind the last whole one.
    @return 0; ORV_MOVIE_NOT_READ, logged */
[[nodiscard]] uint64_t orvNextPack(PackSource* source, const uint8_t** pack);
void orvClosePackSource(PackSource* source);
