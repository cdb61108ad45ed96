// handler_rig.h: one stream of a multiplexer whose handler is called without the scheduler, and its table of units.
#pragma once

#include "mux/mux_types.h"
#include "tests/support/elementary.h"
#include "tests/support/packs.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

// A handle with one stream, released at the end whatever state the test leaves it in.
struct Handler {
    explicit Handler(uint64_t flags);
    ~Handler();
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;

    MuxContext* handle = nullptr;
    MuxStream* stream = nullptr;
};

/** Hands a chunk to the stream's parser, in memory of exactly its size. */
uint64_t parseChunk(Handler& handler, const Bytes& chunk);
uint64_t parseChunk(Handler& handler, const Bytes& chunk, uint64_t time);
/** The same; a chunk that is accepted goes into the ring, as a feeding call puts it there, without a scheduler. */
uint64_t feedChunk(Handler& handler, const Bytes& chunk);
uint64_t feedChunk(Handler& handler, const Bytes& chunk, uint64_t time);
/** Takes all that the ring holds. */
Bytes drainRing(Handler& handler);
/** Lets the ring hold so many bytes, with no more to come. */
void endRingAt(Handler& handler, uint64_t fill);

/** The stream's table of units. */
std::vector<MuxUnit> unitsOf(const Handler& handler);
/** Positions alone. */
std::vector<uint64_t> positionsOf(const Handler& handler);
/** Puts a table in place of the stream's; unitCount follows. */
void setUnits(Handler& handler, const std::vector<MuxUnit>& units);

bool operator==(const MuxUnit& left, const MuxUnit& right);
void PrintTo(const MuxUnit& unit, std::ostream* out);

/** A plan as text: "payload 2012, padding 0, flags C1, unit 3". */
std::string planText(const Handler& handler);
