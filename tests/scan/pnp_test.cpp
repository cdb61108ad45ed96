// The sink for packs: which packs make a batch, and the skeleton that its first pack gets.
#include "base/result.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

// A host that keeps its batches and returns what nobody looks at.
struct Sink {
    explicit Sink(uint64_t rate = 1)
    {
        EXPECT_EQ(pnpCreatePrepare(take, reinterpret_cast<uint64_t>(this), rate, &handle), 0u);
        EXPECT_NE(handle, nullptr);
    }
    ~Sink()
    {
        EXPECT_EQ(pnpFreePrepare(handle), 0u);
    }
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;

    uint64_t give(const Bytes& pack)
    {
        const std::unique_ptr<uint8_t[]> exact = std::make_unique<uint8_t[]>(pack.size());
        std::copy(pack.begin(), pack.end(), exact.get());
        return pnpProvideData(handle, exact.get(), pack.size());
    }
    /** Pack by pack. */
    void giveAll(const Bytes& packs)
    {
        for (uint64_t at = 0; at < packs.size(); at += PACK_BYTES) ASSERT_EQ(give(slice(packs, at, PACK_BYTES)), 0u);
    }
    static uint64_t take(const uint8_t* data, uint64_t bytes, uint64_t user)
    {
        Sink* const sink = reinterpret_cast<Sink*>(user);
        sink->batches.emplace_back(data, data + bytes);
        return sink->answer;
    }

    PnpPrepare* handle = nullptr;
    std::vector<Bytes> batches;
    uint64_t answer = 0;
};

/** What the skeleton makes of a pack. */
Bytes withSkeleton(Bytes pack, std::string_view oneFrame = "00 00 00 41")
{
    pack.resize(38);
    pack += fromHex("00 00 01 BF 03 D4 00") + Bytes(979, 0);              // to 1024
    pack += fromHex("00 00 01 BF 03 FA 01") + Bytes(24, 0);               // to 1055
    pack += fromHex("00 01 00 01") + fromHex(oneFrame) + Bytes(202, 0);   // to 1265
    pack += fromHex("BF FF FF FF");
    for (int i = 0; i < 40; i++) pack += fromHex("3F FF FF FF");   // 1269, 1345, 1349, 1353
    pack += fromHex("BF FF FF FF") + Bytes(615, 0);                // 1429
    return pack;
}

TEST(Pnp, TwoNavigationPacksMakeABatch)
{
    Sink sink;
    const Bytes first = dirtyNavPack({ .scr = 0x12345 }), second = dirtyNavPack({ .scr = 0x23456 }, 0x77);
    sink.giveAll(first + plainPack(1) + plainPack(2));
    EXPECT_TRUE(sink.batches.empty());
    sink.giveAll(second);
    ASSERT_EQ(sink.batches.size(), 1u);
    ASSERT_EQ(withSkeleton(first).size(), PACK_BYTES);
    EXPECT_EQ(firstDifferences(sink.batches[0], withSkeleton(first) + plainPack(1) + plainPack(2) + second), "");
}

// Fields by their places, without the helper above.
TEST(Pnp, TheSkeleton)
{
    Sink sink;
    const Bytes first = dirtyNavPack({ .scr = 1 }, 0x99);
    sink.giveAll(first + navPack({ .scr = 2 }));
    ASSERT_EQ(sink.batches.size(), 1u);
    const Bytes& pack = sink.batches[0];
    EXPECT_EQ(hexAt(pack, 0, 38), hexAt(first, 0, 38));
    EXPECT_EQ(hexAt(pack, 38, 7), "00 00 01 BF 03 D4 00");
    EXPECT_EQ(wordsAt(pack, 44, 245), "00000000*245");   // to 1023
    EXPECT_EQ(hexAt(pack, 1024, 7), "00 00 01 BF 03 FA 01");
    EXPECT_EQ(wordsAt(pack, 1031, 6), "00000000*6");   // to 1054
    EXPECT_EQ(hexAt(pack, 1055, 8), "00 01 00 01 00 00 00 41");
    EXPECT_EQ(hexAt(pack, 1063, 2), "00 00");
    EXPECT_EQ(wordsAt(pack, 1065, 50), "00000000*50");   // to 1264
    EXPECT_EQ(wordsAt(pack, 1265, 42), "BFFFFFFF 3FFFFFFF*40 BFFFFFFF");
    EXPECT_EQ(wordsAt(pack, 1433, 153), "00000000*153");   // to 2044
    EXPECT_EQ(hexAt(pack, 2045, 3), "00 00 00");
}

// A packet head that is not the one of the skeleton is replaced too.
TEST(Pnp, TheSkeletonReplacesPacketHeads)
{
    Sink sink;
    const Bytes first = plainPack(1);
    sink.giveAll(first + navPack({}) + navPack({}));   // the first batch begins with a plain pack
    ASSERT_EQ(sink.batches.size(), 1u);
    EXPECT_EQ(firstDifferences(slice(sink.batches[0], 0, PACK_BYTES), withSkeleton(first)), "");
}

TEST(Pnp, RatesOfTheTimeCode)
{
    const struct {
        uint64_t rate;
        std::string_view oneFrame;
    } cases[] = { { 1, "00 00 00 41" }, { 2, "00 00 00 C1" },  { 0, "00 00 00 00" },
                  { 3, "00 00 00 00" }, { 25, "00 00 00 00" }, { (uint64_t(1) << 32) + 1, "00 00 00 00" } };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.rate);
        Sink sink(each.rate);
        const Bytes pack = navPack({ .scr = 1 });
        sink.giveAll(pack + pack);
        ASSERT_EQ(sink.batches.size(), 1u);
        EXPECT_EQ(firstDifferences(slice(sink.batches[0], 0, PACK_BYTES), withSkeleton(pack, each.oneFrame)), "");
    }
}

TEST(Pnp, OneNavigationPackMakesNone)
{
    Sink sink;
    sink.giveAll(plainPack(1) + navPack({}) + plainPack(2) + plainPack(3));
    EXPECT_TRUE(sink.batches.empty());
}

// Only the first batch begins with a navigation pack. In each later one the skeleton falls on whatever came behind the
// navigation pack before, and destroys it.
TEST(Pnp, LaterBatchesGetTheSkeletonOnTheirFirstPack)
{
    Sink sink;
    const Bytes nav[] = { navPack({ .scr = 1 }), navPack({ .scr = 2 }), navPack({ .scr = 3 }), navPack({ .scr = 4 }) };
    sink.giveAll(nav[0] + plainPack(1) + nav[1] + plainPack(2) + plainPack(3) + nav[2] + nav[3] + plainPack(4));
    ASSERT_EQ(sink.batches.size(), 3u);
    EXPECT_EQ(firstDifferences(sink.batches[0], withSkeleton(nav[0]) + plainPack(1) + nav[1]), "");
    EXPECT_EQ(firstDifferences(sink.batches[1], withSkeleton(plainPack(2)) + plainPack(3) + nav[2]), "");
    EXPECT_EQ(firstDifferences(sink.batches[2], withSkeleton(nav[3])), "");   // first and last in one
}

TEST(Pnp, PacksBeforeTheFirstNavigationBelongToTheFirstBatch)
{
    Sink sink;
    const Bytes nav[] = { navPack({ .scr = 1 }), navPack({ .scr = 2 }) };
    sink.giveAll(plainPack(1) + plainPack(2) + nav[0] + plainPack(3) + nav[1]);
    ASSERT_EQ(sink.batches.size(), 1u);
    EXPECT_EQ(
        firstDifferences(sink.batches[0], withSkeleton(plainPack(1)) + plainPack(2) + nav[0] + plainPack(3) + nav[1]),
        "");
}

// Three bytes make a navigation pack here: 16, 17 and 40.
TEST(Pnp, WhatANavigationPackIs)
{
    for (const uint64_t at : std::vector<uint64_t>{ 16, 17, 40 }) {
        SCOPED_TRACE(at);
        Sink sink;
        Bytes pack = navPack({});
        pack[at] ^= 0x02;
        sink.giveAll(navPack({}) + pack);
        EXPECT_TRUE(sink.batches.empty());
    }
    Bytes bare(PACK_BYTES, 0xFF);   // nothing else is looked at, a start code neither
    bare[16] = 0x01;
    bare[17] = 0xBB;
    bare[40] = 0x01;
    Sink sink;
    sink.giveAll(bare + plainPack(1) + bare);
    ASSERT_EQ(sink.batches.size(), 1u);
    EXPECT_EQ(firstDifferences(sink.batches[0], withSkeleton(bare) + plainPack(1) + bare), "");
}

TEST(Pnp, TheHostsAnswerIsNotLookedAt)
{
    Sink sink;
    sink.answer = 0x84000BC9;
    const Bytes pack = navPack({});
    EXPECT_EQ(sink.give(pack), 0u);
    EXPECT_EQ(sink.give(pack), 0u);
    EXPECT_EQ(sink.give(pack), 0u);
    EXPECT_EQ(sink.batches.size(), 2u);
}

TEST(Pnp, Room)
{
    for (const bool opened : { false, true }) {
        SCOPED_TRACE(opened);
        Sink sink;
        if (opened) sink.giveAll(navPack({ .scr = 1 }) + navPack({ .scr = 2 }));   // a batch before does not count
        for (uint64_t i = 0; i < 615; i++) ASSERT_EQ(sink.give(plainPack(i)), 0u) << i;
        EXPECT_EQ(sink.give(plainPack(615)), 0x84000BC9u);
        EXPECT_EQ(sink.give(navPack({ .scr = 3 })), 0x84000BC9u);
        EXPECT_EQ(sink.batches.size(), opened ? 1u : 0u);
    }
}

TEST(Pnp, AFullBatch)
{
    Sink sink;
    ASSERT_EQ(sink.give(navPack({})), 0u);
    Bytes expected = withSkeleton(navPack({}));
    for (uint64_t i = 1; i < 614; i++) {
        ASSERT_EQ(sink.give(plainPack(i)), 0u);
        expected += plainPack(i);
    }
    ASSERT_EQ(sink.give(navPack({})), 0u);
    ASSERT_EQ(sink.batches.size(), 1u);
    EXPECT_EQ(sink.batches[0].size(), 615 * PACK_BYTES);
    EXPECT_EQ(firstDifferences(sink.batches[0], expected + navPack({})), "");
    ASSERT_NO_FATAL_FAILURE(sink.giveAll(plainPack(1)));   // room again
}

// Bytes, not packs, are what the buffer has room for.
TEST(Pnp, TheLastBytes)
{
    Sink sink;
    for (uint64_t i = 0; i < 615; i++) ASSERT_EQ(sink.give(plainPack(i)), 0u);
    EXPECT_EQ(sink.give(Bytes(480, 0)), 0u);   // 615 packs and 480 bytes are 1,260,000
    EXPECT_EQ(sink.give(Bytes(1, 0)), 0x84000BC9u);

    Sink exact, over;
    EXPECT_EQ(exact.give(Bytes(1260000, 0)), 0u);
    EXPECT_EQ(over.give(Bytes(1260001, 0)), 0x84000BC9u);
    EXPECT_EQ(sink.give(Bytes(2048, 0)), 0x84000BC9u);
}

// Of a piece that ends before the mark, the missing bytes are 0; the skeleton is written in whole all the same.
TEST(Pnp, ShortPieces)
{
    Sink sink;
    const Bytes nav = navPack({ .scr = 0x1234 });
    EXPECT_EQ(sink.give(slice(nav, 0, 100)), 0u);
    EXPECT_EQ(sink.give(slice(nav, 0, 40)), 0u);   // ends before byte 40
    EXPECT_EQ(sink.give(slice(nav, 0, 17)), 0u);
    EXPECT_EQ(sink.give(slice(nav, 0, 1)), 0u);
    EXPECT_TRUE(sink.batches.empty());
    EXPECT_EQ(sink.give(slice(nav, 0, 41)), 0u);
    ASSERT_EQ(sink.batches.size(), 1u);
    EXPECT_EQ(firstDifferences(sink.batches[0], slice(nav, 0, 38) + fromHex("00 00 01 BF 03 D4") + Bytes(155, 0)), "");
}

// A piece of several packs is judged by its first.
TEST(Pnp, LongPieces)
{
    Sink sink;
    const Bytes nav = navPack({ .scr = 0x1234 });
    EXPECT_EQ(sink.give(plainPack(1) + nav), 0u);
    EXPECT_EQ(sink.give(nav + plainPack(2)), 0u);
    EXPECT_TRUE(sink.batches.empty());
    EXPECT_EQ(sink.give(nav + plainPack(3)), 0u);
    ASSERT_EQ(sink.batches.size(), 1u);
    EXPECT_EQ(
        firstDifferences(sink.batches[0], withSkeleton(plainPack(1)) + nav + nav + plainPack(2) + nav + plainPack(3)),
        "");
}

TEST(Pnp, NullArgumentsAreRefused)
{
    PnpPrepare* handle = nullptr;
    EXPECT_EQ(pnpCreatePrepare(nullptr, 0, 1, &handle), 0x84000057u);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(pnpCreatePrepare(Sink::take, 0, 1, nullptr), 0x84000057u);
    const Bytes pack = navPack({});
    EXPECT_EQ(pnpProvideData(nullptr, pack.data(), pack.size()), 0x84000057u);
    EXPECT_EQ(pnpFreePrepare(nullptr), 0x84000057u);
    Sink sink;
    EXPECT_EQ(pnpProvideData(sink.handle, nullptr, 2048), 0x84000057u);
    EXPECT_EQ(pnpProvideData(sink.handle, nullptr, 0), 0u);   // no bytes need no place
}

// Two sinks have nothing in common, nor have a sink and the one before it.
TEST(Pnp, SinksAreTheirOwn)
{
    Sink first(1), second(2);
    first.giveAll(navPack({ .scr = 1 }) + plainPack(1));
    second.giveAll(navPack({ .scr = 2 }) + plainPack(2));
    second.giveAll(navPack({ .scr = 3 }));
    EXPECT_TRUE(first.batches.empty());
    ASSERT_EQ(second.batches.size(), 1u);
    EXPECT_EQ(firstDifferences(second.batches[0], withSkeleton(navPack({ .scr = 2 }), "00 00 00 C1") + plainPack(2) +
                                                      navPack({ .scr = 3 })),
              "");
    first.giveAll(navPack({ .scr = 4 }));
    ASSERT_EQ(first.batches.size(), 1u);
    EXPECT_EQ(
        firstDifferences(first.batches[0], withSkeleton(navPack({ .scr = 1 })) + plainPack(1) + navPack({ .scr = 4 })),
        "");
}

}   // namespace
