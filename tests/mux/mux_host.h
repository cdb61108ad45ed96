// mux_host.h: a host of the multiplexer for tests: it collects what the write callback gets and releases the handle.
#pragma once

#include "mux/mux_types.h"
#include "tests/support/elementary.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct MuxHost {
    MuxHost();
    /** Releases the handle if no exit has done so, whatever state it is in. */
    ~MuxHost();
    MuxHost(const MuxHost&) = delete;
    MuxHost& operator=(const MuxHost&) = delete;

    MuxContext* handle = nullptr;
    std::vector<Bytes> calls;                        // of the write callback
    std::function<uint64_t(const Bytes&)> onWrite;   // its result; 0 without one

    MuxStream* add(uint64_t flags);   // fails the test if the result is not 0
    uint64_t feed(MuxStream* stream, const Bytes& chunk, uint64_t flags = 0);
    uint64_t feedAt(MuxStream* stream, const Bytes& chunk, uint64_t time, uint64_t flags = 0);
    uint64_t feedSequence(MuxStream* stream, const Bytes& chunk);
    uint64_t exit();

    uint64_t used = 0;   // as the last feed or feedSequence left it

    /** All that was written. */
    Bytes output() const;
    uint64_t sectors() const;
    /** A sector of it; empty if there is none. */
    Bytes pack(uint64_t sector) const;
    std::string hexAt(uint64_t sector, uint64_t at, uint64_t count) const;
};

/** Feeds each unit of the video by itself; fails the test where one is not accepted. */
void feedUnits(MuxHost& host, MuxStream* stream, const VideoStream& video);

/** Letters of the packs written: N navigation, v video, the digit of its sub-stream or stream for audio. */
std::string packLetters(const MuxHost& host);

/** Times that packs carry, read from their bytes. */
uint64_t scrOf(const Bytes& pack);
uint64_t scrExtensionOf(const Bytes& pack);
uint64_t ptsOf(const Bytes& pack);
uint64_t dtsOf(const Bytes& pack);
/** Number at a place, first byte highest. */
uint64_t numberAt(const Bytes& pack, uint64_t at, uint64_t bytes);
bool isNavPack(const Bytes& pack);
/** Bytes of the packet's payload behind all headers; of a padding packet behind it nothing. */
Bytes payloadOf(const Bytes& pack);
