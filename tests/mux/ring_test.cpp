// The ring between a host and the scheduler: what goes in, what comes out, how full it is.
#include "mux/ring.h"

#include "base/memory.h"
#include "base/result.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

namespace {

struct Ring {
    explicit Ring(uint64_t watermark = 0x4000)
    {
        EXPECT_EQ(orvRingCreate(&ring, watermark), 0u);
    }
    ~Ring()
    {
        orvRingFree(&ring);
    }
    Ring(const Ring&) = delete;
    Ring& operator=(const Ring&) = delete;

    uint64_t write(const Bytes& bytes)
    {
        return orvRingWrite(ring, bytes.data(), bytes.size(), nullptr);
    }
    Bytes take(uint64_t size)
    {
        Bytes bytes(size, 0xEE);
        uint64_t read = 77;
        EXPECT_EQ(orvRingRead(ring, bytes.data(), size, &read), 0u);
        EXPECT_LE(read, size);
        bytes.resize(read);
        return bytes;
    }

    MuxRing* ring = nullptr;
};

TEST(Ring, IsMadeEmpty)
{
    const Ring ring(0x20000);
    EXPECT_EQ(osMemSize(ring.ring->data), 0x200000u);
    EXPECT_EQ(ring.ring->capacity, 0x200000u);
    EXPECT_EQ(ring.ring->fill, 0u);
    EXPECT_EQ(ring.ring->readIndex, 0u);
    EXPECT_EQ(ring.ring->writeIndex, 0u);
    EXPECT_EQ(ring.ring->ended, 0u);
    EXPECT_EQ(ring.ring->watermark, 0x20000u);
}

TEST(Ring, GivesBackWhatItWasGiven)
{
    Ring ring;
    uint64_t written = 0;
    EXPECT_EQ(orvRingWrite(ring.ring, fromHex("01 02 03 04 05").data(), 5, &written), 0u);
    EXPECT_EQ(written, 5u);
    EXPECT_EQ(ring.ring->fill, 5u);
    EXPECT_EQ(ring.ring->writeIndex, 5u);
    EXPECT_EQ(toHex(ring.take(2)), "01 02");
    EXPECT_EQ(ring.ring->readIndex, 2u);
    EXPECT_EQ(ring.write(fromHex("06")), 0u);
    EXPECT_EQ(toHex(ring.take(100)), "03 04 05 06");
    EXPECT_EQ(ring.ring->fill, 0u);
    EXPECT_EQ(ring.ring->readIndex, 6u);
}

TEST(Ring, NullRing)
{
    const uint8_t byte = 1;
    EXPECT_EQ(orvRingWrite(nullptr, &byte, 1, nullptr), 0x84000057u);
}

TEST(Ring, ChunkOfAllFreeRoomAndOneByteMore)
{
    Ring ring;
    ASSERT_EQ(ring.write(filler(0x1FFFF0)), 0u);
    const Bytes seventeen = filler(17, 5);
    EXPECT_EQ(ring.write(seventeen), 0x84000BC9u);   // 3017
    EXPECT_EQ(ring.ring->fill, 0x1FFFF0u);
    EXPECT_EQ(ring.ring->writeIndex, 0x1FFFF0u);
    EXPECT_EQ(ring.ring->data[0x1FFFF0], 0);

    EXPECT_EQ(ring.write(filler(16, 6)), 0u);
    EXPECT_EQ(ring.ring->fill, 0x200000u);
    EXPECT_EQ(ring.ring->writeIndex, 0u);   // a copy that ends at the end
    EXPECT_EQ(ring.write({ 1 }), 0x84000BC9u);
    EXPECT_EQ(ring.write({}), 0u);
    EXPECT_EQ(ring.take(0x1FFFF0), filler(0x1FFFF0));
    EXPECT_EQ(ring.take(16), filler(16, 6));
    EXPECT_EQ(ring.ring->readIndex, 0u);
}

TEST(Ring, HugeSizesDoNotFit)
{
    Ring ring;
    ASSERT_EQ(ring.write({ 1, 2, 3 }), 0u);
    const uint8_t byte = 9;
    for (const uint64_t size : { ~uint64_t(0), ~uint64_t(0) - 2, uint64_t(1) << 63, uint64_t(0x200000) }) {
        EXPECT_EQ(orvRingWrite(ring.ring, &byte, size, nullptr), ORV_MUX_OVERFLOW) << size;
        EXPECT_EQ(ring.ring->fill, 3u) << size;
    }
}

TEST(Ring, WrapsInBothDirections)
{
    Ring ring;
    ASSERT_EQ(ring.write(Bytes(0x1FFFFD)), 0u);
    ASSERT_EQ(ring.take(0x1FFFFD).size(), 0x1FFFFDu);
    ASSERT_EQ(ring.write(fromHex("A1 A2 A3 A4 A5")), 0u);
    EXPECT_EQ(ring.ring->writeIndex, 2u);
    EXPECT_EQ(toHex(ring.ring->data + 0x1FFFFD, 3), "A1 A2 A3");
    EXPECT_EQ(toHex(ring.ring->data, 2), "A4 A5");
    EXPECT_EQ(toHex(ring.take(4)), "A1 A2 A3 A4");
    EXPECT_EQ(ring.ring->readIndex, 1u);
    EXPECT_EQ(toHex(ring.take(4)), "A5");
}

TEST(Ring, EmptyRingGivesTheCodeOfAFullOne)
{
    Ring ring;
    uint8_t byte = 0xEE;
    uint64_t read = 77;
    EXPECT_EQ(orvRingRead(ring.ring, &byte, 1, &read), ORV_MUX_OVERFLOW);
    EXPECT_EQ(read, 0u);
    EXPECT_EQ(byte, 0xEE);
    EXPECT_EQ(orvRingRead(ring.ring, &byte, 1, nullptr), ORV_MUX_OVERFLOW);
}

TEST(Ring, SizeToReadHasThirtyTwoBitsAndASign)
{
    Ring ring;
    ASSERT_EQ(ring.write(fromHex("01 02 03 04 05 06")), 0u);
    uint8_t bytes[8] = {};
    uint64_t read = 77;
    EXPECT_EQ(orvRingRead(ring.ring, bytes, 0x100000002, &read), 0u);
    EXPECT_EQ(read, 2u);
    EXPECT_EQ(toHex(bytes, 4), "01 02 00 00");
    // Less than nothing is nothing.
    for (const uint64_t size : { uint64_t(0xFFFFFFFF), uint64_t(0x80000000), ~uint64_t(0), uint64_t(0) }) {
        (void)orvRingRead(ring.ring, bytes, size, &read);
        EXPECT_EQ(read, 0u) << size;
        EXPECT_EQ(ring.ring->fill, 4u) << size;
        EXPECT_EQ(ring.ring->readIndex, 2u) << size;
        EXPECT_EQ(toHex(bytes, 4), "01 02 00 00") << size;
    }
}

TEST(Ring, ReadyFromTheWatermarkOnOrOnceEnded)
{
    Ring ring(0x4000);
    EXPECT_FALSE(orvRingReady(ring.ring));
    ASSERT_EQ(ring.write(Bytes(0x3FFF)), 0u);
    EXPECT_FALSE(orvRingReady(ring.ring));
    ASSERT_EQ(ring.write(Bytes(1)), 0u);
    EXPECT_TRUE(orvRingReady(ring.ring));
    ASSERT_EQ(ring.take(0x4000).size(), 0x4000u);
    EXPECT_FALSE(orvRingReady(ring.ring));
    orvRingEnd(ring.ring);
    EXPECT_TRUE(orvRingReady(ring.ring));
}

TEST(Ring, LevelIsUnlimitedUntilTheEnd)
{
    Ring ring;
    EXPECT_EQ(orvRingLevel(ring.ring), 0x7FFFFFFFu);
    ASSERT_EQ(ring.write(Bytes(5)), 0u);
    EXPECT_EQ(orvRingLevel(ring.ring), 0x7FFFFFFFu);
    orvRingEnd(ring.ring);
    EXPECT_EQ(ring.ring->ended, 1u);
    EXPECT_EQ(orvRingLevel(ring.ring), 5u);
    ASSERT_EQ(ring.write(Bytes(2)), 0u);   // an ended ring can be written
    EXPECT_EQ(orvRingLevel(ring.ring), 7u);
    ASSERT_EQ(ring.take(7).size(), 7u);
    EXPECT_EQ(orvRingLevel(ring.ring), 0u);
}

TEST(Ring, RewindTakesBackWhatWasRead)
{
    Ring ring;
    ASSERT_EQ(ring.write(fromHex("01 02 03 04")), 0u);
    ASSERT_EQ(ring.take(3).size(), 3u);
    orvRingRewind(ring.ring);
    EXPECT_EQ(ring.ring->fill, 4u);
    EXPECT_EQ(ring.ring->readIndex, 0u);
    EXPECT_EQ(ring.ring->writeIndex, 4u);
    EXPECT_EQ(toHex(ring.take(9)), "01 02 03 04");
}

TEST(Ring, FreedRingIsNull)
{
    MuxRing* ring = nullptr;
    ASSERT_EQ(orvRingCreate(&ring, 0x4000), 0u);
    orvRingFree(&ring);
    EXPECT_EQ(ring, nullptr);
    orvRingFree(&ring);
    EXPECT_EQ(ring, nullptr);
}

}   // namespace
