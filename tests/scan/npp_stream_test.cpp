// What goes through a scan and how: packs in pieces of any size, what a navigation pack is, what changes in it.
#include "base/result.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// All 42 words of an empty search table, from next_video to prev_video.
const char* const NO_SEARCH = "BFFFFFFF 3FFFFFFF*40 BFFFFFFF";

TEST(NppStream, OneUnitLeavesAtTheEnd)
{
    ScanHost host;
    const Bytes stream = streamOf({ { .start = 28800, .packs = 4 } });
    EXPECT_EQ(host.feed(stream), 0u);
    EXPECT_TRUE(host.units.empty());
    EXPECT_EQ(host.end(), 0u);
    ASSERT_EQ(host.units.size(), 1u);
    EXPECT_EQ(wordsAt(host.units[0], 1265, 42), NO_SEARCH);
    EXPECT_EQ(firstDifferences(host.units[0], stream), "");   // empty already; its cell is 1, its time 0
    EXPECT_EQ(toHex(host.file()), "01 00 00 00 04 00 00 00 "
                                  "00 00 00 00 00 00 00 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                  "80 70 00 00 00 00 00 00 0C 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 "
                                  "01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                  "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

// A navigation pack of junk keeps it all but for cell number, both times and the search pointers.
TEST(NppStream, OnlyTheNamedFieldsChange)
{
    Bytes first = dirtyNavPack({ .scr = 5 }, 0xEE);
    overwrite(first, 57, "00 00 00 64");
    overwrite(first, 69, "00 00 02 45");   // 55 pictures
    const Bytes second = dirtyNavPack({ .scr = 5 }, 0xDD);
    Bytes expected = first;
    overwrite(expected, 69, "00 00 00 40");
    expected[1058] = 3;
    overwrite(expected, 1059, "00 00 00 40");
    overwrite(expected, 1265, "BF FF FF FF");
    for (uint64_t at = 1269; at < 1429; at += 4) overwrite(expected, at, "3F FF FF FF");
    overwrite(expected, 1429, "BF FF FF FF");

    ScanHost host(cellsEvery(40));   // ticks 80 to 119 are cell 3
    const Bytes stream = first + plainPack(1) + plainPack(2) + second + plainPack(4);
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream));
    ASSERT_EQ(host.units.size(), 2u);
    EXPECT_EQ(firstDifferences(host.units[0], expected + plainPack(1) + plainPack(2)), "");
    EXPECT_EQ(host.units[1].size(), 2 * PACK_BYTES);
    EXPECT_EQ(firstDifferences(slice(host.units[1], PACK_BYTES, PACK_BYTES), plainPack(4)), "");
    EXPECT_EQ(firstDifferences(slice(host.units[1], 0, 57), slice(second, 0, 57)), "");
}

TEST(NppStream, AnyPiecesGiveTheSame)
{
    std::vector<ScanUnit> units;
    for (uint64_t i = 0; i < 30; i++) {
        units.push_back(
            { .start = i * 46000, .packs = 1 + i * i % 4, .elapsed = i < 15 ? "00 00 00 41" : "00 00 05 43" });
    }
    const Bytes stream = streamOf(units) + Bytes(700, 0x11);   // and a piece of a pack
    ScanHost whole(cellsEvery(900000));
    ASSERT_NO_FATAL_FAILURE(runScan(whole, stream));
    ASSERT_EQ(whole.units.size(), 30u);
    for (const uint64_t chunk :
         std::vector<uint64_t>{ 1, 2, 13, 700, 2047, 2048, 2049, 4095, 4096, 4097, 5000, 20480, 100000 }) {
        SCOPED_TRACE(chunk);
        ScanHost host(cellsEvery(900000));
        ASSERT_NO_FATAL_FAILURE(runScan(host, stream, chunk));
        ASSERT_EQ(host.units.size(), whole.units.size());
        for (uint64_t i = 0; i < whole.units.size(); i++)
            EXPECT_EQ(firstDifferences(host.units[i], whole.units[i]), "") << "unit " << i;
        EXPECT_EQ(toHex(host.file()), toHex(whole.file()));
    }
}

// Pieces of changing sizes: a rest is completed by a byte, by many packs, or not at all.
TEST(NppStream, RestsAreKept)
{
    const Bytes stream =
        streamOf({ { .start = 0, .packs = 5 }, { .start = 1, .packs = 7 }, { .start = 2, .packs = 4 } });
    ScanHost whole, host;
    ASSERT_NO_FATAL_FAILURE(runScan(whole, stream));
    uint64_t at = 0;
    const auto feed = [&](uint64_t count) {
        ASSERT_EQ(host.feed(slice(stream, at, count)), 0u);
        at += count;
    };
    feed(2047);
    feed(1);      // exactly whole
    feed(2048);   // a whole pack and nothing else
    feed(1000);
    feed(1047);   // still one byte short
    feed(4097);   // that byte and two packs
    feed(1);
    feed(6143);   // completes three, no rest
    feed(3000);
    feed(stream.size() - at);
    EXPECT_EQ(host.end(), 0u);
    EXPECT_EQ(firstDifferences(host.output(), whole.output()), "");
    EXPECT_EQ(host.units.size(), 3u);
    EXPECT_EQ(toHex(host.file()), toHex(whole.file()));
}

// A pack is looked at when its last byte has come, not before and not later.
TEST(NppStream, APackCountsWithItsLastByte)
{
    const Bytes stream = streamOf({ { .start = 0 }, { .start = 11000000 }, { .start = 22000000 } });
    ScanHost host;
    EXPECT_EQ(host.feed(slice(stream, 0, 3 * PACK_BYTES - 1)), 0u);
    EXPECT_EQ(host.units.size(), 0u);
    EXPECT_EQ(host.feed(slice(stream, 3 * PACK_BYTES - 1, 1)), 0u);
    EXPECT_EQ(host.units.size(), 1u);   // two minutes behind the first
    EXPECT_EQ(host.end(), 0u);
    EXPECT_EQ(host.units.size(), 3u);
}

TEST(NppStream, AnIncompletePackIsDropped)
{
    for (const uint64_t rest : std::vector<uint64_t>{ 1, 4, 2047 }) {
        SCOPED_TRACE(rest);
        ScanHost host;
        const Bytes stream = streamOf({ { .packs = 2 } });
        EXPECT_EQ(host.feed(stream), 0u);
        EXPECT_EQ(host.feed(slice(plainPack(2), 0, rest)), 0u);
        EXPECT_EQ(host.end(), 0u);
        EXPECT_EQ(host.output().size(), stream.size());
        EXPECT_EQ(toHex(slice(host.file(), 0, 8)), "01 00 00 00 02 00 00 00");
    }
    ScanHost host;   // and where nothing is before it
    EXPECT_EQ(host.feed(Bytes(2047, 0x55)), 0u);
    EXPECT_EQ(host.end(), 0u);
    EXPECT_TRUE(host.units.empty());
    EXPECT_EQ(toHex(host.file()), "01 00 00 00 00 00 00 00");
}

// Twelve bytes make a navigation pack, each of them; the four that introduce the two packets' codes do not matter.
TEST(NppStream, WhatANavigationPackIs)
{
    for (const uint64_t at : std::vector<uint64_t>{ 14, 15, 16, 17, 40, 41, 42, 43, 1026, 1027, 1028, 1029 }) {
        SCOPED_TRACE(at);
        Bytes pack = unitBytes({ .start = 1 }, 1);
        pack[at] ^= 0x80;
        ScanHost host;
        ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf({ { .start = 0 } }) + pack));
        ASSERT_EQ(host.units.size(), 1u);
        EXPECT_EQ(firstDifferences(slice(host.units[0], PACK_BYTES, PACK_BYTES), pack), "");
        EXPECT_EQ(host.file().size(), 8u + 96);
    }
    for (const uint64_t at : std::vector<uint64_t>{ 4, 13, 18, 23, 37, 38, 39, 44, 1024, 1025, 1030 }) {
        SCOPED_TRACE(at);
        Bytes pack = unitBytes({ .start = 1 }, 1);
        pack[at] ^= 0x80;
        ScanHost host;
        ASSERT_NO_FATAL_FAILURE(runScan(host, streamOf({ { .start = 0 } }) + pack));
        EXPECT_EQ(host.units.size(), 2u);
        EXPECT_EQ(host.file().size(), 8u + 2 * 96);
    }
}

// What stands before the first navigation pack is a unit too, without a record. Its first pack gets the pointers.
TEST(NppStream, TheFirstPackNeedNotBeNavigation)
{
    const Bytes before = plainPack(0) + plainPack(1);
    ScanHost host;
    ASSERT_NO_FATAL_FAILURE(runScan(host, before + unitBytes({ .start = 77, .packs = 2 }, 2)));
    ASSERT_EQ(host.units.size(), 2u);
    Bytes expected = before;
    overwrite(expected, 1265, "BF FF FF FF");
    for (uint64_t at = 1269; at < 1429; at += 4) overwrite(expected, at, "3F FF FF FF");
    overwrite(expected, 1429, "BF FF FF FF");
    EXPECT_EQ(firstDifferences(host.units[0], expected), "");
    EXPECT_EQ(wordsAt(host.units[1], 1265, 42), NO_SEARCH);   // its numbers are other than those of that first pack
    EXPECT_EQ(host.file().size(), 8u + 96);
    EXPECT_EQ(toHex(slice(host.file(), 0, 8)), "01 00 00 00 04 00 00 00");
    EXPECT_EQ(host.recordField(0, 0), 2u);
    EXPECT_EQ(host.recordField(0, 1), 3u);
}

TEST(NppStream, AStreamWithoutNavigationIsOneUnit)
{
    ScanHost host;
    const Bytes stream = plainPack(0) + plainPack(1) + plainPack(2);
    ASSERT_NO_FATAL_FAILURE(runScan(host, stream));
    ASSERT_EQ(host.units.size(), 1u);
    EXPECT_EQ(
        firstDifferences(slice(host.units[0], PACK_BYTES, 2 * PACK_BYTES), slice(stream, PACK_BYTES, 2 * PACK_BYTES)),
        "");
    EXPECT_EQ(toHex(host.file()), "01 00 00 00 03 00 00 00");
}

TEST(NppStream, AFirstPackWithoutItsStartCode)
{
    for (const uint64_t at : std::vector<uint64_t>{ 0, 1, 2, 3 }) {
        SCOPED_TRACE(at);
        Bytes stream = streamOf({ { .packs = 2 } });
        stream[at] ^= 0x04;
        ScanHost host;
        EXPECT_EQ(host.feed(stream), 0x8400232Au);
        EXPECT_EQ(host.end(), 0u);
        EXPECT_TRUE(host.units.empty());
        EXPECT_EQ(toHex(host.file()), "01 00 00 00 00 00 00 00");
    }
}

// What came before it is handed out when the scan ends.
TEST(NppStream, ALaterPackWithoutItsStartCode)
{
    for (const uint64_t chunk : std::vector<uint64_t>{ 0, 1, 2048, 3000 }) {
        SCOPED_TRACE(chunk);
        const Bytes good =
            streamOf({ { .start = 0, .packs = 2 }, { .start = 11000000, .packs = 3 }, { .start = 22000000 } });
        ScanHost host;
        EXPECT_EQ(host.feed(good + Bytes(PACK_BYTES, 0x00) + plainPack(8), chunk), 0x8400232Au);
        EXPECT_EQ(host.units.size(), 1u);
        EXPECT_EQ(host.end(), 0u);
        ASSERT_EQ(host.units.size(), 3u);
        EXPECT_EQ(host.output().size(), good.size());
        EXPECT_EQ(firstDifferences(slice(host.units[1], PACK_BYTES, 2 * PACK_BYTES), plainPack(3) + plainPack(4)), "");
        EXPECT_EQ(toHex(slice(host.file(), 0, 8)), "01 00 00 00 06 00 00 00");
        EXPECT_EQ(host.file().size(), 8u + 3 * 96);
    }
}

}   // namespace
