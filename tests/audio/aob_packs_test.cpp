// Time stamps, pointers and the clock of AOB packs, worked out by hand, and the modelled decoder.
#include "base/result.h"
#include "tests/audio/aob_rig.h"
#include "tests/support/packs.h"
#include "tests/support/write_limit.h"

#include <gtest/gtest.h>

namespace {

const AudioTrackDesc STEREO = trackRecord(2, 1, 16, 48000);   // frames of 160 bytes, 75 ticks

// Where fields lie in both kinds of packs.
constexpr uint64_t FIRST_PTS = 41, FIRST_POINTER = 53, NEXT_PTS = 23, NEXT_POINTER = 32;

// A decoder that is so far ahead that it takes nothing.
AobState farAhead(uint64_t clock)
{
    return { .clock = clock, .framesDecoded = 100'000'000 };
}

}   // namespace

// ---- the clock --------------------------------------------------------------------------------------------------

TEST(Aob, PackHeaderOfAClock)
{
    constexpr uint64_t TICK = 3'000'000;
    static const struct {
        uint64_t clock;
        const char* header;
    } CASES[] = {
        { 0, "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8" },
        { 9'999, "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8" },
        { 10'000, "00 00 01 BA 44 00 04 00 04 03 01 89 C3 F8" },
        { TICK - 1, "00 00 01 BA 44 00 04 00 06 57 01 89 C3 F8" },   // extension 299
        { TICK, "00 00 01 BA 44 00 04 00 0C 01 01 89 C3 F8" },
        { 438'857'143, "00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8" },
        { 877'714'286, "00 00 01 BA 44 00 04 09 25 57 01 89 C3 F8" },
        { 0x12345678 * TICK + 2'999'999, "00 00 01 BA 45 23 46 B3 C6 57 01 89 C3 F8" },
        { 0x40000000 * TICK, "00 00 01 BA 4C 00 04 00 04 01 01 89 C3 F8" },
        { 0x80000000 * TICK, "00 00 01 BA 54 00 04 00 04 01 01 89 C3 F8" },
        { 0xFFFFFFFF * TICK, "00 00 01 BA 5F FF FF FF FC 01 01 89 C3 F8" },
        { 0x100000000 * TICK, "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8" },   // bit 32 is not stored
    };
    for (const auto& each : CASES) {
        const PackRun run = layPacks(STEREO, { { 4, true } }, farAhead(each.clock));
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(packHex(run.aob, 0, 0, 14), each.header) << each.clock;
        EXPECT_EQ(run.clock.clock, each.clock) << "the advance comes behind the end of the track";
    }
}

TEST(Aob, ClockOfPacksInARow)
{
    const PackRun run =
        layPacks(trackRecord(2, 1, 24, 192000), { { 1980, false }, { 2004, false }, { 2004, false }, { 12, true } });
    ASSERT_EQ(run.aob.size(), 4 * PACK_BYTES);
    EXPECT_EQ(packHex(run.aob, 0, 4, 6), "44 00 04 00 04 01");   // 0 ticks
    EXPECT_EQ(packHex(run.aob, 1, 4, 6), "44 00 04 04 94 AB");   // 146 and 85 of 300
    EXPECT_EQ(packHex(run.aob, 2, 4, 6), "44 00 04 09 25 57");   // 292 and 171
    EXPECT_EQ(packHex(run.aob, 3, 4, 6), "44 00 04 0D B6 03");   // 438 and 257
    EXPECT_EQ(run.clock.clock, 3 * 438'857'143u);
}

// ---- time stamps ------------------------------------------------------------------------------------------------

TEST(Aob, TimeOfTheNextFrame)
{
    static const struct {
        uint64_t channels, assignment, bits, rate, bytesMuxed, pts;
        const char* field;
    } CASES[] = {
        { 2, 1, 16, 48000, 0, 0, "21 00 01 00 01" },
        { 2, 1, 16, 48000, 1, 75, "21 00 01 00 97" },
        { 2, 1, 16, 48000, 160, 75, "21 00 01 00 97" },
        { 2, 1, 16, 48000, 161, 150, "21 00 01 01 2D" },
        { 2, 1, 16, 44100, 160, 81, "21 00 01 00 A3" },    // 81.63
        { 2, 1, 16, 44100, 320, 163, "21 00 01 01 47" },   // 163.27
        { 2, 1, 16, 44100, 480, 244, "21 00 01 01 E9" },   // 244.90
        { 2, 1, 16, 44100, 441 * 160, 36000, "21 00 03 19 41" },
        { 6, 20, 24, 96000, 1441, 150, "21 00 01 01 2D" },   // frames of 1440
        { 6, 20, 24, 88200, 1441, 163, "21 00 01 01 47" },
        { 5, 19, 24, 192000, 2401, 150, "21 00 01 01 2D" },   // frames of 2400
        { 4, 3, 24, 176400, 1920, 81, "21 00 01 00 A3" },     // frames of 1920
        { 2, 1, 16, 48000, uint64_t(14316558) * 160, 0x4000001A, "23 00 01 00 35" },
        { 2, 1, 16, 48000, uint64_t(28633116) * 160, 0x80000034, "25 00 01 00 69" },
        { 2, 1, 16, 48000, uint64_t(57266231) * 160, 0x10000001D, "21 00 01 00 3B" },   // bit 32 is not stored
    };
    for (const auto& each : CASES) {
        const AudioTrackDesc track = trackRecord(each.channels, each.assignment, each.bits, each.rate);
        const PackRun run = layPacks(track, { { 0, true } }, { .bytesMuxed = each.bytesMuxed });
        EXPECT_EQ(packHex(run.aob, 0, FIRST_PTS, 5), each.field) << each.rate << ", " << each.bytesMuxed;
        EXPECT_EQ(run.track.firstCellPts, each.pts);
    }
}

// The first pack of a track tells of no distance, whatever part of a frame the tracks before it left over.
TEST(Aob, FirstAccess)
{
    for (const uint64_t bytesMuxed : { 0u, 1u, 100u, 159u, 160u }) {
        const PackRun run = layPacks(STEREO, { { 1984, false }, { 4, true } }, { .bytesMuxed = bytesMuxed });
        EXPECT_EQ(packHex(run.aob, 0, FIRST_POINTER, 2), "00 0A") << bytesMuxed;
    }
    static const struct {
        uint64_t bytesMuxed;   // before the first pack
        const char* pointer;   // of the next: to where a multiple of 160 is, and 15 bytes of header
    } NEXT[] = {
        { 0, "00 6F" },     // 1984 + 96 is 13 frames
        { 1, "00 6E" },     // 1985 + 95
        { 95, "00 10" },    // 2079 + 1
        { 96, "00 0F" },    // 2080 + 0
        { 97, "00 AE" },    // 2081 + 159
        { 160, "00 6F" },   // 2144 + 96
    };
    for (const auto& each : NEXT) {
        const PackRun run = layPacks(STEREO, { { 1984, false }, { 4, true } }, { .bytesMuxed = each.bytesMuxed });
        EXPECT_EQ(packHex(run.aob, 1, NEXT_POINTER, 2), each.pointer) << each.bytesMuxed;
    }
    // Frames of 2880 bytes lie further away than a byte can tell: 1980 + 900 is one, and 9 bytes of header.
    const PackRun run = layPacks(trackRecord(6, 20, 24, 192000), { { 1980, false }, { 36, true } });
    EXPECT_EQ(packHex(run.aob, 1, NEXT_POINTER, 2), "03 8D");
}

// ---- tracks that follow -----------------------------------------------------------------------------------------

TEST(Aob, SecondTrackGoesOn)
{
    // 1984 bytes and 4: 1988 of 160 are 12.4 frames, so the second track begins at the 13th, at 975 ticks.
    const AobRun run = runAob({ aobSound(2, 1, 16, 48000, 497), aobSound(2, 1, 16, 48000, 600) });
    ASSERT_EQ(run.result, 0u);
    ASSERT_EQ(run.packs(), 4u);
    EXPECT_EQ(run.hexAt(1, 4, 6), "44 00 04 04 94 AB");
    // The clock did not move on behind the last pack; the headers are those of a first pack.
    EXPECT_EQ(run.hexAt(2, 0, 64), "00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8 "
                                   "00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A "
                                   "00 00 01 BD 07 DA 81 81 08 21 00 01 07 9F 1E 60 0A "
                                   "A0 00 00 0B 00 0A 10 0F 0F 00 01 80 00 00 00");
    // 3972 bytes are 24.8 frames: 25, at 1875 ticks; 28 bytes and 15
    EXPECT_EQ(run.hexAt(3, 4, 6), "44 00 04 09 25 57");
    EXPECT_EQ(run.hexAt(3, NEXT_PTS, 5), "21 00 01 0E A7");
    EXPECT_EQ(run.hexAt(3, NEXT_POINTER, 2), "00 2B");
    const std::map<std::string, std::string> nfo = { { "TRACKINFO_01.TrackBlockSize", "2" },
                                                     { "TRACKINFO_01.TrackFirstCellPts", "0" },
                                                     { "TRACKINFO_02.TrackBlockSize", "2" },
                                                     { "TRACKINFO_02.TrackFirstCellPts", "975" } };
    EXPECT_EQ(run.nfo, nfo);
}

TEST(Aob, ClockAcrossTracks)
{
    PackRun run = layPacks(STEREO, { { 1984, false }, { 2000, false }, { 8, true } });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.track.blockSize, 3u);
    EXPECT_EQ(run.track.firstCellPts, 0u);
    EXPECT_EQ(run.clock.clock, 877'714'286u);   // two packs behind 0
    EXPECT_EQ(run.clock.bytesMuxed, 3992u);
    // One frame was due at 146 ticks, two more at 292: (292 - 75) / 75
    EXPECT_EQ(run.clock.framesDecoded, 3u);
    EXPECT_EQ(run.clock.bufferFill, 3992u - 3 * 160);

    // Another format goes on from these numbers: 3992 bytes are 16.63 frames of 240, the 17th at 1275 ticks.
    run = layPacks(trackRecord(2, 1, 24, 48000), { { 1980, true } }, run.clock);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.track.blockSize, 1u);
    EXPECT_EQ(run.track.firstCellPts, 1275u);
    EXPECT_EQ(packHex(run.aob, 0, 4, 6), "44 00 04 09 25 57");
    EXPECT_EQ(run.clock.clock, 877'714'286u);
    EXPECT_EQ(run.clock.bytesMuxed, 5972u);
    EXPECT_EQ(run.clock.framesDecoded, 3u);   // 292 - 225 ticks are less than a frame
}

// ---- the decoder ------------------------------------------------------------------------------------------------

// Four packs of 48 kHz stereo fill the buffer; then the decoder has to take frames of 160 bytes, 75 ticks each, until
// 8192 bytes less the fill are more than 2000 again. Behind a wait the clock is the decoder's time and one pack.
TEST(Aob, FullBufferWaits)
{
    const AobRun run = runAob({ aobSound(2, 1, 16, 48000, 496 + 7 * 500) });
    ASSERT_EQ(run.result, 0u);
    ASSERT_EQ(run.packs(), 8u);
    static const char* const CLOCKS[] = {
        "44 00 04 00 04 01",   // 0: 1984
        "44 00 04 04 94 AB",   // 146 and 85: one frame taken, 3824
        "44 00 04 09 25 57",   // 292 and 171: two more, 5504
        "44 00 04 0D B6 03",   // 438 and 257: two more, 7184; then seven frames are awaited, to 6064
        "44 00 04 1E 5C AB",   // 825 + 146 = 971, and 85
        "44 00 04 3A 7C AB",   // twelve frames later: 1725 + 146 = 1871, and 85
        "44 00 04 58 F4 AB",   // thirteen frames later: 2700 + 146 = 2846, and 85
        "44 00 04 75 14 AB",   // twelve frames later: 3600 + 146 = 3746, and 85
    };
    for (uint64_t pack = 0; pack < 8; pack++) EXPECT_EQ(run.hexAt(pack, 4, 6), CLOCKS[pack]) << pack;
    // 1984 + 3 x 2000 bytes are 49.9 frames: 50, at 3750 ticks; 16 bytes and 15
    EXPECT_EQ(run.hexAt(4, NEXT_PTS, 5), "21 00 01 1D 4D");
    EXPECT_EQ(run.hexAt(4, NEXT_POINTER, 2), "00 1F");
}

TEST(Aob, RoomMustBeMoreThanAPack)
{
    // 8192 - 6207 is one byte more than 1984: a pack at once. With 6208 the first round waits, and the second, at 146
    // ticks, waits too, since a frame is taken only behind the question; the third finds 6048.
    PackRun run = layPacks(STEREO, { { 1984, true } }, { .bufferFill = 6207 });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(packHex(run.aob, 0, 4, 6), "44 00 04 00 04 01");
    run = layPacks(STEREO, { { 1984, true } }, { .bufferFill = 6208 });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.aob.size(), PACK_BYTES);
    EXPECT_EQ(packHex(run.aob, 0, 4, 6), "44 00 04 09 25 57");
    EXPECT_EQ(run.track.blockSize, 1u);
    // Of a next pack the question goes by its own payload, 2000: 8192 - 1984 - 4208 is that, and so it waits.
    run = layPacks(STEREO, { { 1984, false }, { 4, true } }, { .bufferFill = 4207 });
    EXPECT_EQ(packHex(run.aob, 1, 4, 6), "44 00 04 04 94 AB");
    run = layPacks(STEREO, { { 1984, false }, { 4, true } }, { .bufferFill = 4208 });
    EXPECT_EQ(packHex(run.aob, 1, 4, 6), "44 00 04 09 25 57");
}

TEST(Aob, FramesThatAreDue)
{
    constexpr uint64_t TICK = 3'000'000;
    static const struct {
        uint64_t rate, ticks, decoded, due;
    } CASES[] = {
        { 48000, 0, 0, 0 },    { 48000, 74, 0, 0 },  { 48000, 75, 0, 1 },   { 48000, 149, 0, 1 },  { 48000, 150, 0, 2 },
        { 48000, 150, 1, 1 },  { 48000, 150, 2, 0 }, { 48000, 150, 3, 0 },  { 44100, 81, 0, 0 },   { 44100, 82, 0, 1 },
        { 44100, 163, 0, 1 },  { 44100, 164, 0, 2 }, { 192000, 74, 0, 0 },  { 192000, 75, 0, 1 },  { 96000, 749, 0, 9 },
        { 88200, 817, 0, 10 }, { 88200, 816, 0, 9 }, { 176400, 816, 1, 9 }, { 176400, 815, 1, 8 },   // 81 + 735
    };
    for (const auto& each : CASES) {
        const AudioTrackDesc track = trackRecord(2, 1, 16, each.rate);
        const uint64_t frameBytes = each.rate >= 176400 ? 640 : each.rate >= 88200 ? 320 : 160;
        const AobState before = { .clock = each.ticks * TICK, .bufferFill = 6000, .framesDecoded = each.decoded };
        const PackRun run = layPacks(track, { { 100, true } }, before);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(run.clock.framesDecoded, each.decoded + each.due) << each.rate << ", " << each.ticks;
        EXPECT_EQ(run.clock.bufferFill, 6100 - each.due * frameBytes);
    }
}

TEST(Aob, DecoderRunsDry)
{
    // One frame of 160 bytes is due at 146 ticks. The pack that came too late is written, but the track is not ended.
    PackRun run = layPacks(STEREO, { { 156, true } }, { .clock = 438'857'143 });
    EXPECT_EQ(run.result, ORV_AOB_UNDERRUN);
    EXPECT_EQ(run.result, 0x84000C1Eu);
    EXPECT_EQ(run.aob.size(), PACK_BYTES);
    EXPECT_EQ(run.track.blockSize, 0u);
    run = layPacks(STEREO, { { 160, true } }, { .clock = 438'857'143 });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.track.blockSize, 1u);
    EXPECT_EQ(run.clock.bufferFill, 0u);
    EXPECT_EQ(run.clock.framesDecoded, 1u);
}

// Six channels of 24 bits at 192 kHz need 2880 bytes in 75 ticks. At 146 ticks one frame is taken from 3960 bytes, at
// 292 two more would be from 1080 + 1980.
TEST(Aob, TooMuchForTheDecoder)
{
    EXPECT_EQ(runAob({ aobSound(6, 20, 24, 192000, 220) }).result, 0u);
    for (const uint64_t samples : { 221u, 222u, 330u, 5000u }) {   // the third pack is the last one, or it is not
        const AobRun run = runAob({ aobSound(6, 20, 24, 192000, samples) });
        EXPECT_EQ(run.result, 0x84000C1Eu) << samples;
        EXPECT_EQ(run.packs(), 3u) << samples;
        EXPECT_TRUE(run.nfo.empty()) << samples;
    }
}

// ---- a file that can't be written -------------------------------------------------------------------------------

TEST(Aob, FileThatCantBeWritten)
{
    const TempDir folder;
    writeFile(folder / u"packs", "kept");
    OSFILE file = 0;
    ASSERT_EQ(osOpenFile((folder / u"packs").c_str(), OS_READ, &file), 0u);
    AudioTrackDesc track = STEREO;
    AobClock clock = {};
    const auto nothing = [](void*, uint8_t*, uint64_t, AobFill* fill) -> uint64_t {
        *fill = { 0, true };
        return 0;
    };
    const auto wait = [](uint64_t at, uint64_t) -> uint64_t { return at + CLOCK_PER_PACK; };
    const AobSource source = { nullptr, nothing, nullptr, true, wait };
    EXPECT_EQ(orvMuxAobPacks(&source, file, &track, &clock), 0x84001785u);
    EXPECT_EQ(osCloseFile(&file), 0u);
    EXPECT_EQ(readFile(folder / u"packs").size(), 4u);
    EXPECT_EQ(ORV_AOB_NOT_WRITTEN, 0x84001785u);
}

#ifndef _WIN32
TEST(Aob, FullDisk)
{
    const std::vector<AobSound> sounds = { aobSound(2, 1, 16, 48000, 496), aobSound(2, 1, 16, 48000, 3000) };
    AobRun run;
    {
        const WriteLimit limit(3 * PACK_BYTES);
        run = runAob(sounds);
    }
    EXPECT_EQ(run.result, ORV_AOB_NOT_WRITTEN);
    EXPECT_EQ(run.packs(), 3u);
    EXPECT_EQ(run.nfo.at("TRACKINFO_01.TrackBlockSize"), "1");
    EXPECT_EQ(run.nfo.count("TRACKINFO_02.TrackBlockSize"), 0u);
}
#endif
