// The current unit of tables whose positions run back and forth, held against the plain walk from their end.
#include "mux/unit_table.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/** The current unit as it is told: the first from the end that does not begin behind what is packed. */
uint64_t walk(const Handler& handler)
{
    const std::vector<MuxUnit> units = unitsOf(handler);
    const uint64_t packed = handler.stream->bytesPacked;
    if (units.size() < 2 || packed < units[1].position) return 0;
    for (uint64_t i = units.size() - 1; i > 0; i--) {
        if (units[i].position <= packed) return i;
    }
    return NONE;
}

/** Compares at each position of the table, around it, and at some others. */
void compareEverywhere(Handler& handler, std::mt19937_64& random)
{
    std::vector<uint64_t> places = { 0, 1, NONE };
    for (const uint64_t position : positionsOf(handler)) {
        for (uint64_t near = 0; near < 3; near++) places.push_back(position + near - 1);
    }
    for (uint64_t i = 0; i < 20; i++) places.push_back(random() % (handler.stream->bytesIn + 100));
    for (const uint64_t place : places) {
        handler.stream->bytesPacked = place;
        ASSERT_EQ(orvCurrentUnit(handler.stream), walk(handler)) << place;
    }
}

// Frames are missing here and there: what is missing stands in the table backwards.
TEST(UnitTable, FramesThatWereMissing)
{
    std::mt19937_64 random(7);
    for (uint64_t round = 0; round < 30; round++) {
        Handler handler(ORV_MUX_AC3_ANY);
        for (uint64_t i = 0; i < 20; i++) {
            const Bytes chunk = ac3Frame(random() % 4) + filler(random() % 3 ? 0 : random() % 1500);
            ASSERT_EQ(feedChunk(handler, chunk), 0u);
            compareEverywhere(handler, random);
        }
        EXPECT_GT(handler.stream->unitCount, 20u);
    }
}

// The input begins again further in front, as it does behind chunks that the ring refused.
TEST(UnitTable, PicturesOfRefusedChunks)
{
    std::mt19937_64 random(8);
    for (uint64_t round = 0; round < 30; round++) {
        Handler handler(ORV_MUX_VIDEO);
        ASSERT_EQ(feedChunk(handler, sequenceHeader() + gopHeader() + filler(8)), 0u);
        for (uint64_t i = 0; i < 20; i++) {
            Bytes chunk = random() % 4 ? Bytes{} : gopHeader();
            for (uint64_t pictures = 1 + random() % 4; pictures > 0; pictures--) {
                chunk += videoPicture(8 + random() % 60, pictures, 'P');
            }
            const uint64_t time = random() % 5 ? NONE : (i + 40) * 3600;
            ASSERT_EQ(parseChunk(handler, chunk + filler(8), time), 0u);
            if (random() % 3) handler.stream->bytesIn += chunk.size() + 8;
            compareEverywhere(handler, random);
        }
    }
}

TEST(UnitTable, TablesWrittenWhole)
{
    std::mt19937_64 random(9);
    for (uint64_t round = 0; round < 200; round++) {
        Handler handler(ORV_MUX_VIDEO);
        std::vector<MuxUnit> units;
        for (uint64_t i = random() % 12; i > 0; i--) units.push_back({ random() % 50, 1, 2, 0, 0, 0 });
        setUnits(handler, units);
        compareEverywhere(handler, random);
    }
}

}   // namespace
