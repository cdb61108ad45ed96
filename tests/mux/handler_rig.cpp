#include "tests/mux/handler_rig.h"

#include "mux/unit_table.h"

#include "base/memory.h"
#include "mux/ring.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <ostream>
#include <stdexcept>

static uint64_t refuseNothing(uint64_t, const uint8_t*, uint64_t)
{
    return 0;
}

Handler::Handler(uint64_t flags)
{
    if (InitMuxer(&handle, refuseNothing, 0)) throw std::runtime_error("no handle");
    if (AddStream(handle, 0, flags, &stream)) throw std::runtime_error("no stream");
}

// A video stream that took no more than four bytes ends without the scheduler.
Handler::~Handler()
{
    stream->bytesIn = 0;
    EXPECT_EQ(ExitMuxer(handle), 0u);
}

static std::unique_ptr<uint8_t[]> exactCopy(const Bytes& bytes)
{
    auto copy = std::make_unique<uint8_t[]>(bytes.size());
    if (!bytes.empty()) memcpy(copy.get(), bytes.data(), bytes.size());
    return copy;
}

uint64_t parseChunk(Handler& handler, const Bytes& chunk)
{
    return handler.stream->parse(handler.stream, exactCopy(chunk).get(), chunk.size());
}

uint64_t parseChunk(Handler& handler, const Bytes& chunk, uint64_t time)
{
    return handler.stream->parseTimed(handler.stream, exactCopy(chunk).get(), chunk.size(), time);
}

static uint64_t store(Handler& handler, uint64_t result, const Bytes& chunk)
{
    if (result) return result;
    const uint64_t stored = orvRingWrite(handler.stream->ring, exactCopy(chunk).get(), chunk.size(), nullptr);
    if (!stored) handler.stream->bytesIn += chunk.size();
    return stored;
}

uint64_t feedChunk(Handler& handler, const Bytes& chunk)
{
    return store(handler, parseChunk(handler, chunk), chunk);
}

uint64_t feedChunk(Handler& handler, const Bytes& chunk, uint64_t time)
{
    return store(handler, parseChunk(handler, chunk, time), chunk);
}

Bytes drainRing(Handler& handler)
{
    Bytes bytes(handler.stream->ring->fill);
    if (bytes.empty()) return bytes;
    uint64_t got = 0;
    EXPECT_EQ(orvRingRead(handler.stream->ring, bytes.data(), bytes.size(), &got), 0u);
    EXPECT_EQ(got, bytes.size());
    return bytes;
}

void endRingAt(Handler& handler, uint64_t fill)
{
    handler.stream->ring->fill = fill;
    handler.stream->ring->ended = 1;
}

std::vector<MuxUnit> unitsOf(const Handler& handler)
{
    const uint64_t count = osListCount(handler.stream->unitTable);
    return { handler.stream->unitTable, handler.stream->unitTable + count };
}

std::vector<uint64_t> positionsOf(const Handler& handler)
{
    std::vector<uint64_t> positions;
    for (const MuxUnit& unit : unitsOf(handler)) positions.push_back(unit.position);
    return positions;
}

void setUnits(Handler& handler, const std::vector<MuxUnit>& units)
{
    EXPECT_EQ(osFreeMem(&handler.stream->unitTable), 0u);
    EXPECT_EQ(osAllocMem(0, &handler.stream->unitTable), 0u);
    handler.stream->orderCount = 0;
    for (const MuxUnit& unit : units) EXPECT_EQ(orvAddUnit(handler.stream, unit), 0u);
    handler.stream->unitCount = units.size();
}

bool operator==(const MuxUnit& left, const MuxUnit& right)
{
    return left.position == right.position && left.group == right.group && left.codingType == right.codingType &&
           left.pts == right.pts && left.dts == right.dts && left.groupTime == right.groupTime;
}

void PrintTo(const MuxUnit& unit, std::ostream* out)
{
    *out << "{ at " << unit.position << ", group " << unit.group << ", type " << unit.codingType << ", pts " << unit.pts
         << ", dts " << unit.dts << ", group time " << unit.groupTime << " }";
}

std::string planText(const Handler& handler)
{
    const MuxPlan plan = handler.stream->planPack(handler.stream);
    char text[120];
    snprintf(text, sizeof(text), "payload %lld, padding %lld, flags %02llX, unit %lld",
             static_cast<long long>(plan.payload), static_cast<long long>(plan.padding),
             static_cast<unsigned long long>(plan.flags), static_cast<long long>(plan.unit));
    return text;
}
