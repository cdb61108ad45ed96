// The headers of both kinds of packs, for each row of sizes, byte by byte.
#include "tests/audio/aob_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

struct HeaderCase {
    uint64_t channels, assignment, bits, rate;
    uint64_t firstSamples, nextSamples;   // of a channel
    const char* first;                    // behind pack and system header
    const char* next;                     // behind the pack header
    uint64_t firstPadding, nextPadding;   // length of the padding packet; 0: none
};

// Second packs: PTS is the ticks of so many whole frames as begin at or behind the samples of the first pack.
// clang-format off
const HeaderCase HEADERS[] = {
    // 1984 bytes are 12.4 frames of 160: the 13th ends at 2080, at 975 ticks; pointer 96 + 15
    { 2, 1, 16, 48000, 496, 500,
      "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0B 00 0A 10 0F 0F 00 01 80 00 00 00",
      "00 00 01 BD 07 EC 81 80 05 21 00 01 07 9F A0 01 00 10 00 6F 10 0F 0F 00 01 80 00 00 00 00 00 00 00 00", 0, 0 },
    // 1980 bytes are 8.25 frames of 240: 9, at 734.69 ticks; 180 + 11
    { 2, 1, 24, 44100, 330, 334,
      "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0F 00 0E 10 2F 8F 00 01 80 00 00 00 00 00 00 00",
      "00 00 01 BD 07 EC 81 80 05 21 00 01 05 BD A0 01 00 0C 00 BF 10 2F 8F 00 01 80 00 00 00 00", 0, 0 },
    // 1984 bytes are 3.1 frames of 640: 4, at 326.53 ticks; 576 + 15
    { 4, 3, 16, 88200, 248, 250,
      "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0B 00 0A 10 00 99 00 03 80 00 00 00",
      "00 00 01 BD 07 EC 81 80 05 21 00 01 02 8D A0 01 00 10 02 4F 10 00 99 00 03 80 00 00 00 00 00 00 00 00", 0, 0 },
    // 1968 bytes are 4.1 frames of 480: 5, at 375 ticks; 432 + 9
    { 4, 3, 24, 48000, 164, 166,
      "00 00 01 BD 07 C9 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0A 00 09 10 22 00 00 03 80 00 00",
      "00 00 01 BD 07 DE 81 80 05 21 00 01 02 EF A0 01 00 0A 01 B9 10 22 00 00 03 80 00 00", 11, 8 },
    // 1980 bytes are 4.95 frames of 400: 5, at 408.16 ticks; 20 + 15
    { 5, 19, 16, 44100, 198, 200,
      "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0F 00 0E 10 00 88 00 13 80 00 00 00 00 00 00 00",
      "00 00 01 BD 07 EC 81 80 05 21 00 01 03 31 A0 01 00 10 00 23 10 00 88 00 13 80 00 00 00 00 00 00 00 00", 0, 0 },
    // 1980 bytes are 1.65 frames of 1200: 2, at 150 ticks; 420 + 9
    { 5, 19, 24, 96000, 132, 132,
      "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0F 00 0E 10 22 11 00 13 80 00 00 00 00 00 00 00",
      "00 00 01 BD 07 D2 81 80 05 21 00 01 01 2D A0 01 00 0A 01 AD 10 22 11 00 13 80 00 00", 0, 20 },
    // 1968 bytes are 2.05 frames of 960: 3, at 225 ticks; 912 + 9
    { 6, 20, 16, 96000, 164, 166,
      "00 00 01 BD 07 C9 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0A 00 09 30 00 11 00 14 80 00 00",
      "00 00 01 BD 07 DE 81 80 05 21 00 01 01 C3 A0 01 00 0A 03 99 30 00 11 00 14 80 00 00", 11, 8 },
    // 1980 bytes are 2.75 frames of 720: 3, at 225 ticks; 180 + 9
    { 6, 20, 24, 48000, 110, 110,
      "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0F 00 0E 30 22 00 00 14 80 00 00 00 00 00 00 00",
      "00 00 01 BD 07 D2 81 80 05 21 00 01 01 C3 A0 01 00 0A 00 BD 30 22 00 00 14 80 00 00", 0, 20 },
    // 1984 bytes are 3.1 frames of 640: 4, at 300 and at 326.53 ticks; 576 + 15
    { 2, 1, 16, 192000, 496, 500,
      "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0B 00 0A 10 0F 2F 00 01 80 00 00 00",
      "00 00 01 BD 07 EC 81 80 05 21 00 01 02 59 A0 01 00 10 02 4F 10 0F 2F 00 01 80 00 00 00 00 00 00 00 00", 0, 0 },
    { 2, 1, 16, 176400, 496, 500,
      "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A A0 00 00 0B 00 0A 10 0F AF 00 01 80 00 00 00",
      "00 00 01 BD 07 EC 81 80 05 21 00 01 02 8D A0 01 00 10 02 4F 10 0F AF 00 01 80 00 00 00 00 00 00 00 00", 0, 0 },
};
// clang-format on

const char FIRST_PACK_HEADER[] = "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 "
                                 "00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A ";
// One pack of 2048 bytes at 10.08 Mbit/s later: 146.2857 ticks, 146 and 85 of 300.
const char SECOND_PACK_HEADER[] = "00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8 ";

void expectPack(const AobRun& run, uint64_t pack, const std::string& header, uint64_t sampleBytes, uint64_t padding)
{
    const Bytes head = fromHex(header);
    EXPECT_EQ(run.hexAt(pack, 0, head.size()), toHex(head));
    const uint64_t at = head.size() + sampleBytes;
    EXPECT_EQ(at + (padding ? padding + 6 : 0), PACK_BYTES);
    if (!padding) return;
    const Bytes packet = fromHex("00 00 01 BE 00") + Bytes{ uint8_t(padding) } + Bytes(padding, 0xFF);
    EXPECT_EQ(run.hexAt(pack, at, packet.size()), toHex(packet));
}

}   // namespace

TEST(AobHeaders, BothKindsOfEachRow)
{
    for (const HeaderCase& each : HEADERS) {
        SCOPED_TRACE(testing::Message() << each.channels << " channels, " << each.bits << " bits, " << each.rate);
        const AobRun run = runAob({ aobSound(each.channels, each.assignment, each.bits, each.rate,
                                             each.firstSamples + 2 * each.nextSamples) });
        ASSERT_EQ(run.result, 0u);
        ASSERT_EQ(run.packs(), 3u);
        const uint64_t sampleBytes = each.channels * each.bits / 8;
        expectPack(run, 0, FIRST_PACK_HEADER + std::string(each.first), each.firstSamples * sampleBytes,
                   each.firstPadding);
        expectPack(run, 1, SECOND_PACK_HEADER + std::string(each.next), each.nextSamples * sampleBytes,
                   each.nextPadding);
    }
}

// A whole pack by hand: four samples of two channels, then the packet that fills it.
TEST(AobHeaders, AWholePack)
{
    AobSound sound = { .track = aobTrack(2, 1, 16, 44100) };
    sound.channels = { { 0x0102, 0x0506, -1, 0x7FFF }, { 0x0304, 0x0708, -32768, 1 } };
    const AobRun run = runAob({ sound });
    ASSERT_EQ(run.result, 0u);
    ASSERT_EQ(run.packs(), 1u);
    // 1968 bytes are missing: the packet has 2010 - 1968 = 42, the padding 1962
    const Bytes should = fromHex("00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8"
                                 "00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A"
                                 "00 00 01 BD 00 2A 81 81 08 21 00 01 00 01 1E 60 0A"
                                 "A0 00 00 0B 00 0A 10 0F 8F 00 01 80 00 00 00"
                                 "01 02 03 04 05 06 07 08 FF FF 80 00 7F FF 00 01"
                                 "00 00 01 BE 07 AA") +
                         Bytes(1962, 0xFF);
    EXPECT_EQ(firstDifference(run.aob, should), "");
}

// Sizes and rates of group 2 repeat group 1, where the assignment has a group 2 at all.
TEST(AobHeaders, CodesOfGroups)
{
    static const struct {
        uint64_t assignment, bits, rate;
        const char* codes;   // bytes 7 to 10 of the private header
    } CASES[] = {
        { 0, 16, 48000, "0F 0F 00 00" },  { 1, 16, 96000, "0F 1F 00 01" },  { 1, 24, 192000, "2F 2F 00 01" },
        { 1, 16, 44100, "0F 8F 00 01" },  { 1, 24, 88200, "2F 9F 00 01" },  { 1, 16, 176400, "0F AF 00 01" },
        { 2, 16, 48000, "00 00 00 02" },  { 2, 24, 96000, "22 11 00 02" },  { 12, 24, 192000, "22 22 00 0C" },
        { 13, 16, 44100, "00 88 00 0D" }, { 18, 24, 88200, "22 99 00 12" }, { 20, 16, 176400, "00 AA 00 14" },
    };
    for (const auto& each : CASES) {
        const PackRun run = layPacks(trackRecord(2, each.assignment, each.bits, each.rate), { { 4, true } });
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(packHex(run.aob, 0, 49 + 7, 4), each.codes)
            << each.assignment << ' ' << each.bits << ' ' << each.rate;
    }
}

// Byte 6 goes by the channels, not by the assignment.
TEST(AobHeaders, SixChannelsAreMarked)
{
    for (const uint64_t channels : { 2u, 4u, 5u, 6u }) {
        const PackRun run = layPacks(trackRecord(channels, 20, 24, 48000), { { 12, true } });
        EXPECT_EQ(packHex(run.aob, 0, 49 + 6, 1), channels == 6 ? "30" : "10") << channels;
    }
}

TEST(AobHeaders, CounterCountsTo31)
{
    const AobRun run = runAob({ aobSound(2, 1, 16, 48000, 496 + 69 * 500), aobSound(2, 1, 16, 48000, 600) });
    ASSERT_EQ(run.result, 0u);
    ASSERT_EQ(run.packs(), 72u);
    EXPECT_EQ(run.hexAt(0, 50, 1), "00");
    for (uint64_t pack = 1; pack < 70; pack++) EXPECT_EQ(run.hexAt(pack, 29, 1), toHex({ uint8_t(pack % 32) })) << pack;
    EXPECT_EQ(run.hexAt(31, 28, 2), "A0 1F");
    EXPECT_EQ(run.hexAt(32, 28, 2), "A0 00");
    EXPECT_EQ(run.hexAt(64, 28, 2), "A0 00");
    EXPECT_EQ(run.hexAt(69, 28, 2), "A0 05");
    EXPECT_EQ(run.hexAt(70, 49, 2), "A0 00");   // the next track's first pack
    EXPECT_EQ(run.hexAt(71, 28, 2), "A0 01");
}
