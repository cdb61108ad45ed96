// mux_feed.h: elementary stream files on their way into the multiplexer, which takes them in step: none of its rings
// may overflow or run dry.
#pragma once

#include "elementary.h"
#include "video_watch.h"

#include <orven/orven.h>

#include <filesystem>
#include <fstream>
#include <vector>

struct MuxSource {
    std::filesystem::path path;
    StreamFormat format = {};
    std::ifstream in = {};
    MuxStream* stream = nullptr;
    uint64_t delivered = 0;   // bytes of the stream
    bool ended = false;
    bool full = false;                           // takes nothing until another stream has gone on
    uint64_t leftOver = 0;                       // bytes behind the last whole frame, which are not delivered
    VideoWatch watch = {};                       // video
    std::vector<uint64_t> picturesBefore = {};   // video: pictures that begin in front of each piece
};

/** Opens a file and tells what it holds. */
FileFault openSource(MuxSource* source);

/** Registers the stream of a source. LPCM tells its format at once. @return a result of the library */
uint64_t addSource(MuxContext* handle, MuxSource* source);

/** Seconds of the movie that a source's delivered bytes make. */
double deliveredSeconds(const MuxSource& source);

/** The source whose turn it is; null if all have ended. */
MuxSource* nextSource(std::vector<MuxSource>* sources);

/** Delivers the next chunk of a source. */
FileFault deliverNext(MuxContext* handle, std::vector<MuxSource>* sources, MuxSource* source);
