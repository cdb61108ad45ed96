// The pack in which a track ends: without samples, with fewer than fit, and with all that fit.
#include "base/result.h"
#include "tests/audio/aob_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const AudioTrackDesc STEREO = trackRecord(2, 1, 16, 48000);
constexpr uint64_t FIRST_HEADER = 64, NEXT_HEADER = 48;   // bytes of a stereo track in 16 bits
constexpr uint64_t FIRST_ROOM = 1984, NEXT_ROOM = 2000;

Bytes packOf(const PackRun& run, uint64_t pack)
{
    const auto from = run.aob.begin() + int64_t(pack * PACK_BYTES);
    return Bytes(from, from + int64_t(PACK_BYTES));
}

Bytes part(const Bytes& bytes, uint64_t from, uint64_t to)
{
    return Bytes(bytes.begin() + int64_t(from), bytes.begin() + int64_t(to));
}

// A last pack of either kind with a gap of so many bytes, as the only difference to a full one.
Bytes lastPack(bool first, uint64_t gap)
{
    std::vector<AobFill> fills = { { FIRST_ROOM - gap, true } };
    if (!first) fills = { { FIRST_ROOM, false }, { NEXT_ROOM - gap, true } };
    const PackRun run = layPacks(STEREO, fills);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.track.blockSize, fills.size());
    EXPECT_EQ(run.aob.size(), fills.size() * PACK_BYTES);
    EXPECT_EQ(run.clock.bytesMuxed, (first ? 0 : FIRST_ROOM) + fills.back().bytes);
    return packOf(run, fills.size() - 1);
}

}   // namespace

// Gaps of which no packet can be made go into the pack header.
TEST(Aob, GapOfSevenIsPackStuffing)
{
    for (const bool first : { true, false }) {
        const Bytes full = lastPack(first, 0);
        const uint64_t header = first ? FIRST_HEADER : NEXT_HEADER;
        EXPECT_EQ(full[13], 0xF8);
        EXPECT_EQ(part(full, header, PACK_BYTES), Bytes(PACK_BYTES - header, PACKED));
        for (uint8_t gap = 1; gap <= 7; gap++) {
            const Bytes pack = lastPack(first, gap);
            EXPECT_EQ(part(pack, 0, 13), part(full, 0, 13));
            EXPECT_EQ(pack[13], 0xF8 | gap);
            EXPECT_EQ(part(pack, 14, 14 + gap), Bytes(gap, 0xFF));
            // All that follows is as it was, the packet's length too: 2010 or 2028.
            EXPECT_EQ(part(pack, 14 + gap, header + gap), part(full, 14, header));
            EXPECT_EQ(part(pack, header + gap, PACK_BYTES), Bytes(PACK_BYTES - header - gap, PACKED));
        }
    }
    EXPECT_EQ(toHex(part(lastPack(true, 7), 12, 27)), "C3 FF FF FF FF FF FF FF FF 00 00 01 BB 00 0C");
    EXPECT_EQ(toHex(part(lastPack(false, 7), 12, 27)), "C3 FF FF FF FF FF FF FF FF 00 00 01 BD 07 EC");
}

// From eight bytes on a padding packet fills the gap, and the packet before it ends where it begins.
TEST(Aob, GapOfEightIsAPacket)
{
    static const struct {
        bool first;
        uint64_t gap;
        const char* length;    // of the packet: 2010 or 2028 less the gap
        const char* padding;   // start code and length, gap - 6
    } CASES[] = {
        { true, 8, "07 D2", "00 00 01 BE 00 02" },    { true, 9, "07 D1", "00 00 01 BE 00 03" },
        { true, 14, "07 CC", "00 00 01 BE 00 08" },   { true, 1000, "03 F2", "00 00 01 BE 03 E2" },
        { true, 1983, "00 1B", "00 00 01 BE 07 B9" }, { false, 8, "07 E4", "00 00 01 BE 00 02" },
        { false, 300, "06 C0", "00 00 01 BE 01 26" }, { false, 1999, "00 1D", "00 00 01 BE 07 C9" },
    };
    for (const auto& each : CASES) {
        SCOPED_TRACE(testing::Message() << each.gap);
        const Bytes full = lastPack(each.first, 0);
        const Bytes pack = lastPack(each.first, each.gap);
        const uint64_t header = each.first ? FIRST_HEADER : NEXT_HEADER, length = each.first ? 36 : 18;
        EXPECT_EQ(part(pack, 0, length), part(full, 0, length));   // no stuffing either
        EXPECT_EQ(toHex(part(pack, length, length + 2)), each.length);
        EXPECT_EQ(part(pack, length + 2, header), part(full, length + 2, header));
        const uint64_t end = PACK_BYTES - each.gap;
        EXPECT_EQ(part(pack, header, end), Bytes(end - header, PACKED));
        EXPECT_EQ(toHex(part(pack, end, end + 6)), each.padding);
        EXPECT_EQ(part(pack, end + 6, PACK_BYTES), Bytes(each.gap - 6, 0xFF));
    }
}

// A pack without samples stays as its headers were written: full length, zeros behind them, no padding packet.
TEST(Aob, EmptyLastPack)
{
    static const struct {
        uint64_t channels, assignment, bits, samples;   // samples that fill the packs before
        uint64_t packs;
        const char* header;   // of the last one
    } CASES[] = {
        { 2, 1, 16, 0, 1,
          "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A "
          "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0B 00 0A 10 0F 0F 00 01 80 00 00 00" },
        { 2, 1, 16, 496, 2,
          "00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8 00 00 01 BD 07 EC 81 80 05 21 00 01 07 9F "
          "A0 01 00 10 00 6F 10 0F 0F 00 01 80 00 00 00 00 00 00 00 00" },
        { 4, 3, 24, 0, 1,
          "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A "
          "00 00 01 BD 07 C9 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0A 00 09 10 22 00 00 03 80 00 00" },
        { 6, 20, 24, 110, 2,
          "00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8 00 00 01 BD 07 D2 81 80 05 21 00 01 01 C3 "
          "A0 01 00 0A 00 BD 30 22 00 00 14 80 00 00" },
    };
    for (const auto& each : CASES) {
        SCOPED_TRACE(testing::Message() << each.channels << " channels, " << each.samples << " samples");
        for (const TrackEnd end : { TrackEnd::BEHIND, TrackEnd::SHORT }) {
            const AobRun run =
                runAob({ aobSound(each.channels, each.assignment, each.bits, 48000, each.samples, end) });
            ASSERT_EQ(run.result, 0u);
            ASSERT_EQ(run.packs(), each.packs);
            Bytes should = fromHex(each.header);
            should.resize(PACK_BYTES);
            const Bytes last(run.aob.end() - int64_t(PACK_BYTES), run.aob.end());
            EXPECT_EQ(firstDifference(last, should), "");
            EXPECT_EQ(run.nfo.at("TRACKINFO_01.TrackBlockSize"), std::to_string(each.packs));
        }
    }
    // It counts for nothing: the next track begins where the samples ended, 1984 bytes on, at the 13th frame.
    const AobRun run = runAob({ aobSound(2, 1, 16, 48000, 496, TrackEnd::BEHIND), aobSound(2, 1, 16, 48000, 10) });
    ASSERT_EQ(run.packs(), 3u);
    EXPECT_EQ(run.hexAt(2, 41, 5), "21 00 01 07 9F");
}

// Where a full pack has a padding packet of its own, the gap is counted from the samples on.
TEST(Aob, GapBesideTheTablesPadding)
{
    static const struct {
        uint64_t channels, assignment, bits, bytes;   // of the first pack: 1968 fit, behind 63 bytes of header
        const char* length;
        uint64_t paddingAt;
        const char* padding;
    } CASES[] = {
        { 4, 3, 24, 1968, "07 C9", 2031, "00 00 01 BE 00 0B" },   // full: 1993 + 17 - 17
        { 4, 3, 24, 1944, "07 B1", 2007, "00 00 01 BE 00 23" },   // one unit less: 1993 + 17 - 41
        { 4, 3, 24, 1967, "07 C8", 2030, "00 00 01 BE 00 0C" }, { 6, 20, 16, 1944, "07 B1", 2007, "00 00 01 BE 00 23" },
        { 6, 20, 16, 24, "00 31", 87, "00 00 01 BE 07 A3" },   // 1993 + 17 - 1961
    };
    for (const auto& each : CASES) {
        SCOPED_TRACE(testing::Message() << each.channels << " channels, " << each.bytes << " bytes");
        const PackRun run =
            layPacks(trackRecord(each.channels, each.assignment, each.bits, 48000), { { each.bytes, true } });
        ASSERT_EQ(run.aob.size(), PACK_BYTES);
        EXPECT_EQ(run.aob[13], 0xF8);
        EXPECT_EQ(packHex(run.aob, 0, 36, 2), each.length);
        const Bytes samples(each.bytes, PACKED);
        EXPECT_EQ(packHex(run.aob, 0, 63, each.bytes), toHex(samples));
        EXPECT_EQ(packHex(run.aob, 0, each.paddingAt, 6), each.padding);
        const Bytes filler(PACK_BYTES - each.paddingAt - 6, 0xFF);
        EXPECT_EQ(packHex(run.aob, 0, each.paddingAt + 6, filler.size()), toHex(filler));
    }
    // Next packs: 1992 of 42 + 1992 + 14 bytes, and 1980 of 42 + 1980 + 26.
    PackRun run = layPacks(trackRecord(4, 3, 24, 48000), { { 1968, false }, { 1968, true } });
    EXPECT_EQ(packHex(run.aob, 1, 18, 2), "07 C6");   // 2014 + 14 - 38
    EXPECT_EQ(packHex(run.aob, 1, 2010, 8), "00 00 01 BE 00 20 FF FF");
    run = layPacks(trackRecord(5, 19, 24, 48000), { { 1980, false }, { 1980, true } });
    EXPECT_EQ(packHex(run.aob, 1, 18, 2), "07 D2");   // 2002 + 26 - 26
    EXPECT_EQ(packHex(run.aob, 1, 2022, 8), "00 00 01 BE 00 14 FF FF");
    run = layPacks(trackRecord(5, 19, 24, 48000), { { 1980, false }, { 1950, true } });
    EXPECT_EQ(packHex(run.aob, 1, 18, 2), "07 B4");   // 2002 + 26 - 56
    EXPECT_EQ(packHex(run.aob, 1, 1992, 8), "00 00 01 BE 00 32 FF FF");
}

// Fewer bytes than fit end a track, whatever the source says; all of them do not.
TEST(Aob, ShortPackEndsTheTrack)
{
    PackRun run = layPacks(STEREO, { { 1980, false }, { 2000, false }, { 4, true } });
    EXPECT_EQ(run.track.blockSize, 1u);
    EXPECT_EQ(run.aob[13], 0xF8 | 4);
    run = layPacks(STEREO, { { 1984, false }, { 1984, false }, { 4, true } });
    EXPECT_EQ(run.track.blockSize, 2u);
    run = layPacks(STEREO, { { 1984, false }, { 2000, false }, { 4, true } });
    EXPECT_EQ(run.track.blockSize, 3u);
    run = layPacks(STEREO, { { 1984, true }, { 2000, false }, { 4, true } });
    EXPECT_EQ(run.track.blockSize, 1u);
    EXPECT_EQ(run.asked, 1984u);
}
