// video_watch.h: counts the pictures of MPEG video while it passes, and finds what the multiplexer can't time.
#pragma once

#include "elementary.h"

#include <vector>

struct VideoWatch {
    uint64_t pictures = 0;
    uint64_t bytes = 0;   // seen so far
    FileFault fault = {};
    // Within.
    uint64_t rateCode = 0;            // of the first sequence header
    bool groupOpens = false;          // a group header, and no picture since
    bool ended = false;               // a sequence end code has passed
    std::vector<uint8_t> kept = {};   // the last bytes, in which a header may begin, and what follows them
};

/** Takes the next bytes of the stream. The first fault stays. */
void watchVideo(VideoWatch* watch, const uint8_t* data, uint64_t size);
