// pack_source.cpp: reads the source files of a movie one behind the other; a pack may begin in one and end in the next.

#include "video/pack_source.h"

#include "base/bytes.h"
#include "base/log.h"
#include "base/memory.h"
#include "base/result.h"

constexpr uint64_t READ_BYTES = 512 * SECTOR_BYTES;   // 1 MiB a read

static uint64_t fail(const PackSource* source, const char16_t* text)
{
    orvLogError(ORV_MOVIE_NOT_READ, source->run->logFilePath, text, source->sources[source->index]);
    return ORV_MOVIE_NOT_READ;
}

static uint64_t openSource(PackSource* source)
{
    if (osOpenFile(source->sources[source->index], OS_READ, &source->file)) {
        return fail(source, u"Failed to open file in <orvGetMovieInfo>: %s");
    }
    return 0;
}

uint64_t orvOpenPackSource(PackSource* source, const RunHead* run, char16_t* const* sources)
{
    *source = {};
    source->run = run;
    source->sources = sources;
    if (uint64_t error = osAllocMem(READ_BYTES, &source->buffer)) return error;
    return openSource(source);
}

/** Reads until the buffer holds a pack or the open file ends. */
static uint64_t refill(PackSource* source)
{
    const uint64_t rest = source->have - source->at;
    osCopyMem(source->buffer, source->buffer + source->at, rest);
    source->at = 0;
    source->have = rest;
    while (source->have < SECTOR_BYTES) {
        uint64_t got = 0;
        const uint64_t room = READ_BYTES - source->have;
        const uint64_t error = osReadFileSome(source->file, source->buffer + source->have, room, &got);
        source->have += got;
        // What was read before a fault is scanned first, as if each pack were read alone.
        if (error) return source->have < SECTOR_BYTES ? error : 0;
        if (got == 0) break;
    }
    return 0;
}

/** The open file ends within a pack, or where one would begin. Goes on in the next. */
static uint64_t nextSource(PackSource* source)
{
    (void)osCloseFile(&source->file);   // nothing was written
    if (source->index + 1 >= MAX_SOURCES || !source->sources[source->index + 1]) {
        source->ended = true;   // the bytes of an incomplete last pack are dropped
        return 0;
    }
    source->index++;
    if (uint64_t error = openSource(source)) return error;
    // Meant: one step a pack. A file that can't give what the pack still lacks fails the run. Test:
    // MovieScanFiles.LaterFileWithoutTheRestOfThePack
    if (refill(source) || source->have < SECTOR_BYTES) {
        return fail(source, u"Failed to read pack in <orvGetMovieInfo>: %s");
    }
    return 0;
}

uint64_t orvNextPack(PackSource* source, const uint8_t** pack)
{
    *pack = nullptr;
    if (source->have - source->at < SECTOR_BYTES) {
        if (refill(source)) return fail(source, u"Failed to read sector in <orvGetMovieInfo>: %s");
        if (source->have < SECTOR_BYTES) {
            if (uint64_t error = nextSource(source)) return error;
            if (source->ended) return 0;
        }
    }
    *pack = source->buffer + source->at;
    source->at += SECTOR_BYTES;
    return 0;
}

void orvClosePackSource(PackSource* source)
{
    (void)osCloseFile(&source->file);   // nothing was written
    (void)osFreeMem(&source->buffer);
}
