// The scheduler: delays, clock, decoder model, choice of the stream, units, waits. Streams are small enough that their
// packs can be worked out by hand: a pack lasts 438857143 clock units, 146.2857 ticks.
#include "mux/scheduler.h"

#include "base/memory.h"
#include "base/result.h"
#include "mux/ring.h"
#include "tests/mux/mux_host.h"
#include "tests/mux/mux_rig.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr uint64_t PACK_UNITS = 438857143;

std::vector<uint64_t> navSectors(const MuxHost& host)
{
    std::vector<uint64_t> sectors;
    for (uint64_t i = 0; i < host.sectors(); ++i)
        if (isNavPack(host.pack(i))) sectors.push_back(i);
    return sectors;
}

// ---- one still, byte by byte ------------------------------------------------------------------------------------

const char* const STILL_NAV_HEAD = "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 "
                                   "00 00 01 BB 00 12 80 C4 E1 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02 "
                                   "00 00 01 BF 03 D4 00 00 00 00 00";

TEST(Scheduler, OneStill)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    const Bytes still = makeVideo({ { .types = "I", .bytes = { 80 }, .end = true } }).bytes;   // 12 + 8 + 80 + 4
    ASSERT_EQ(host.feedSequence(stream, still), 0u);
    EXPECT_EQ(host.calls.size(), 0u);   // a unit goes out when it has closed
    ASSERT_EQ(host.exit(), 0u);
    ASSERT_EQ(host.calls.size(), 1u);
    ASSERT_EQ(host.sectors(), 2u);

    // Fewer than three pictures: a delay of 14400. The picture is shown one frame later, at 18000 = 0x4650.
    Bytes nav(PACK_BYTES);
    const auto put = [&nav](uint64_t at, const char* hex) {
        const Bytes bytes = fromHex(hex);
        std::copy(bytes.begin(), bytes.end(), nav.begin() + std::ptrdiff_t(at));
    };
    put(0, STILL_NAV_HEAD);
    put(57, "00 00 46 50 00 00 46 50 00 00 46 50 00 00 00 40");   // the last unit lacks a picture, here its only one
    put(142, "01 00 00 00 00 FF FF FF FF FF FF FF FF 10");
    put(161, "01");
    put(1024, "00 00 01 BF 03 FA 01 00 00 00 00 00 00 00 00 00 00 00 01");
    put(1055, "00 01 00 01 00 00 00 40");
    put(1265, "BF FF FF FF");
    for (uint64_t at = 1269; at < 1429; at += 4) put(at, "3F FF FF FF");
    put(1429, "BF FF FF FF");
    EXPECT_EQ(differences(host.pack(0), nav), "");

    // SCR 146 and 85 / 300; PTS 18000, DTS 14400, extension, 104 bytes, padding to the end: 1908 = 6 + 0x76E.
    EXPECT_EQ(differences(host.pack(1), packOf("00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8 "
                                               "00 00 01 E0 00 78 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8",
                                               still, "00 00 01 BE 07 6E")),
              "");
}

// ---- delays -----------------------------------------------------------------------------------------------------

TEST(Scheduler, DelaysFollowFromTheThirdUnit)
{
    struct Case {
        const char* what;
        uint64_t third;   // position of the third picture
        uint64_t audioStreams, rateCode, videoDelay, audioDelay;
    };
    // clang-format off
    const Case cases[] = {
        // (third + 4096 a further stream + 2019) / 2020 packs, (packs + 4) x 43886 / 300
        { "50 packs",        100000, 0, RATE_CODE_PAL,  7899,  11499 },
        { "50 packs, NTSC",  100000, 0, RATE_CODE_NTSC, 7899,  10902 },
        { "52 packs",        100000, 1, RATE_CODE_PAL,  8192,  11792 },
        { "53 packs",        100945, 1, RATE_CODE_PAL,  8338,  11938 },   // by one byte
        { "66 packs",        100000, 8, RATE_CODE_PAL,  10240, 13840 },
        { "1 pack",          2020,   0, RATE_CODE_PAL,  731,   4331  },
        { "2 packs",         2021,   0, RATE_CODE_PAL,  877,   4477  },
        { "two pictures",    0,      0, RATE_CODE_PAL,  14400, 18000 },
        { "two and audio",   0,      1, RATE_CODE_PAL,  1024,  4624  },
    };
    // clang-format on
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        MuxHost host;
        MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
        GopSpec gop = { .types = "IPP", .bytes = { each.third - 20 - 500, 500, 200000 }, .rateCode = each.rateCode };
        if (each.third == 0) gop = { .types = "IP", .bytes = { 1000, 200000 }, .rateCode = each.rateCode };
        for (uint64_t i = 0; i < each.audioStreams; ++i)
            EXPECT_EQ(host.feed(host.add(ORV_MUX_AC3), ac3Frames(20, 30)), 0u);
        feedUnits(host, stream, makeVideo({ gop }));
        EXPECT_EQ(host.handle->started, 1u);
        EXPECT_EQ(host.handle->videoDelay, each.videoDelay);
        EXPECT_EQ(host.handle->audioDelay, each.audioDelay);
    }
}

TEST(Scheduler, DelaysStay)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    feedUnits(host, stream, makeVideo(gops(2)));
    ASSERT_EQ(host.handle->started, 1u);
    const uint64_t delay = host.handle->videoDelay, audio = host.handle->audioDelay;
    host.add(ORV_MUX_AC3);   // a stream may still come
    EXPECT_EQ(host.exit(), 0u);
    EXPECT_EQ(ptsOf(host.pack(1)), 3600 * 3 + delay);   // the I picture of IBBP has temporal reference 2
    EXPECT_EQ(audio, delay + 3600);
}

// ---- the clock --------------------------------------------------------------------------------------------------

// Video whose every pack is a picture: 2012 bytes with headers, then 2015 each. The third begins at 4027: 2 packs, and
// a delay of 6 x 43886 / 300 = 877.
VideoStream pictureAPack(uint64_t pictures)
{
    std::string types(pictures, 'P');
    types[0] = 'I';
    return makeVideo({ { .types = types, .bytes = { 1992, 2015 } } });
}

TEST(Scheduler, ClockOfEachPack)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    feedUnits(host, stream, pictureAPack(30));
    ASSERT_EQ(host.exit(), 0u);
    ASSERT_EQ(host.sectors(), 31u);
    // Picture 0 is decoded at 877: on pack 6, at 6 x 146.2857. The video may run 15 units ahead, so picture 16 is the
    // last that goes out at once.
    for (uint64_t i = 0; i < 18; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(scrOf(host.pack(i)), i * PACK_UNITS / 3000000);
        EXPECT_EQ(scrExtensionOf(host.pack(i)), i * PACK_UNITS % 3000000 / 10000);
    }
    // From there on the clock leaps to a pack behind each decode time: 877 + 3600, 877 + 7200, ...
    for (uint64_t i = 18; i < 31; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(scrOf(host.pack(i)), 877 + 3600 * (i - 17) + 146);
        EXPECT_EQ(scrExtensionOf(host.pack(i)), 85u);
    }
    for (uint64_t i = 1; i < 31; ++i) {
        EXPECT_EQ(ptsOf(host.pack(i)), 877 + 3600 * i) << i;
        EXPECT_EQ(dtsOf(host.pack(i)), 877 + 3600 * (i - 1)) << i;
    }
    EXPECT_EQ(toHex(host.pack(1).data() + 4, 6), "44 00 04 04 94 AB");   // 146 and 85
}

TEST(Scheduler, NotReadyStopsWithoutAPackAndGoesOn)
{
    MuxHost whole, parted;
    const VideoStream video = makeVideo(gops(6));
    feedUnits(whole, whole.add(ORV_MUX_VIDEO_UNITS), video);
    ASSERT_EQ(whole.exit(), 0u);

    MuxStream* stream = parted.add(ORV_MUX_VIDEO_UNITS);
    uint64_t packs = 0;
    for (const Bytes& unit : video.units()) {
        ASSERT_EQ(parted.feed(stream, unit), 0u);
        // What is below the watermark stays, and no pack leaves it more than a pack below.
        if (parted.handle->packCount > packs) {
            EXPECT_LT(stream->ring->fill, 0x20000u);
            EXPECT_GE(stream->ring->fill, 0x20000u - 2025);
        }
        packs = parted.handle->packCount;
        const uint64_t clock = parted.handle->clock;
        EXPECT_EQ(orvMuxRun(parted.handle), 0u);
        EXPECT_EQ(parted.handle->packCount, packs);
        EXPECT_EQ(parted.handle->clock, clock);
    }
    EXPECT_GT(packs, 200u);
    ASSERT_EQ(parted.exit(), 0u);
    EXPECT_EQ(differences(parted.output(), whole.output()), "");
    EXPECT_EQ(parted.calls.size(), whole.calls.size());
}

TEST(Scheduler, AnyStreamHoldsBackAll)
{
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    MuxStream* audio = host.add(ORV_MUX_AC3);
    ASSERT_EQ(host.feed(audio, ac3Frames(20, 21)), 0u);   // 16128 bytes, 256 less than the watermark
    feedUnits(host, video, makeVideo(gops(3)));
    EXPECT_EQ(host.handle->packCount, 0u);
    EXPECT_EQ(host.handle->started, 0u);
    ASSERT_EQ(host.feed(audio, filler(255)), 0u);
    EXPECT_EQ(host.handle->packCount, 0u);
    ASSERT_EQ(host.feed(audio, filler(1)), 0u);
    // A navigation pack, and one of audio, which leaves too little.
    EXPECT_EQ(host.handle->packCount, 2u);
    EXPECT_EQ(host.handle->navJustWritten, 0u);
    EXPECT_EQ(audio->bytesPacked, 2013u);
}

TEST(Scheduler, NothingLeftChangesNothing)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    ASSERT_EQ(host.feedSequence(stream, makeVideo({ { .types = "I", .bytes = { 80 }, .end = true } }).bytes), 0u);
    ASSERT_EQ(stream->ring->ended, 1u);
    ASSERT_EQ(stream->ring->fill, 0u);
    const MuxContext before = *host.handle;
    const Bytes record(reinterpret_cast<const uint8_t*>(stream), reinterpret_cast<const uint8_t*>(stream + 1));
    EXPECT_EQ(orvMuxRun(host.handle), 0u);
    EXPECT_EQ(before.clock, host.handle->clock);
    EXPECT_EQ(before.packCount, host.handle->packCount);
    EXPECT_EQ(before.outPending, host.handle->outPending);
    EXPECT_EQ(record, Bytes(reinterpret_cast<const uint8_t*>(stream), reinterpret_cast<const uint8_t*>(stream + 1)));
}

TEST(Scheduler, NoVideoStream)
{
    MuxHost host;
    EXPECT_EQ(orvMuxRun(host.handle), 0x84000BC5u);   // 3013
    MuxStream* audio = host.add(ORV_MUX_AC3);
    EXPECT_EQ(host.feed(audio, ac3Frame(20)), 0x84000BC5u);
    EXPECT_EQ(audio->bytesIn, 768u);
    EXPECT_EQ(host.handle->started, 0u);
    EXPECT_EQ(host.handle->packCount, 0u);
}

// ---- choice of the stream ---------------------------------------------------------------------------------------

TEST(Scheduler, AudioComesFirstAndTheEmptiestOfIt)
{
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    MuxStream* first = host.add(ORV_MUX_AC3);
    MuxStream* second = host.add(ORV_MUX_MPEG_AUDIO);
    ASSERT_EQ(host.feed(first, ac3Frames(20, 20)), 0u);
    ASSERT_EQ(host.feed(second, layer2Frames(11, 20)), 0u);
    feedUnits(host, video, makeVideo(gops(1, { .bytes = { 4000 } })));
    ASSERT_EQ(host.exit(), 0u);
    // Both empty: the earlier slot. Then 2013 against 0, 2013 against 2017, 4029 against 2017. A third pack of either
    // does not fit 4096 bytes: video, as long as no frame has been decoded.
    EXPECT_EQ(packLetters(host).substr(0, 7), "N0101vv");
}

TEST(Scheduler, TieGoesToTheEarlierSlot)
{
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    for (uint64_t i = 0; i < 3; ++i) ASSERT_EQ(host.feed(host.add(ORV_MUX_AC3), ac3Frames(20, 20)), 0u);
    feedUnits(host, video, makeVideo(gops(1, { .bytes = { 4000 } })));
    ASSERT_EQ(host.exit(), 0u);
    EXPECT_EQ(packLetters(host).substr(0, 9), "N012012vv");
}

TEST(Scheduler, VideoRunsFifteenUnitsAhead)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    host.handle->started = 1;   // delays of the test's own
    host.handle->videoDelay = 20000;
    host.handle->audioDelay = 1000;
    feedUnits(host, stream, pictureAPack(30));
    ASSERT_EQ(host.exit(), 0u);
    // No picture has been decoded: 0 to 15. Then the clock leaps to the decode time of picture 0.
    EXPECT_EQ(scrOf(host.pack(16)), 16 * PACK_UNITS / 3000000);
    EXPECT_EQ(scrOf(host.pack(17)), 20000u + 146);
    EXPECT_EQ(scrOf(host.pack(18)), 23600u + 146);
}

TEST(Scheduler, TimeAheadByAudioDelay)
{
    // 3600 u + audioDelay may not exceed the SCR + 80000. Picture 9, in pack 10, at 1462: 32400 + 49062 is the most.
    // The picture's own time, 9 x 3600 + 14400, would do in any case.
    for (const uint64_t audioDelay : { 49062u, 49063u }) {
        MuxHost host;
        MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
        host.handle->started = 1;
        host.handle->videoDelay = 14400;
        host.handle->audioDelay = audioDelay;
        feedUnits(host, stream, pictureAPack(30));
        ASSERT_EQ(host.exit(), 0u);
        EXPECT_EQ(scrOf(host.pack(9)), 1316u);
        EXPECT_EQ(scrOf(host.pack(10)), audioDelay == 49062 ? 1462 : 14400u + 146);
        EXPECT_EQ(scrOf(host.pack(11)), audioDelay == 49062 ? 14400u + 146 : 14400u + 292);
    }
}

TEST(Scheduler, AudioMayRunMoreUnitsAhead)
{
    // The second pack begins with frame 16 of 128 bytes.
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    ASSERT_EQ(host.feed(host.add(ORV_MUX_AC3), ac3Frames(0, 60)), 0u);
    feedUnits(host, video, makeVideo(gops(1, { .bytes = { 4000 } })));
    ASSERT_EQ(host.exit(), 0u);
    EXPECT_EQ(packLetters(host).substr(0, 4), "N00v");
    EXPECT_EQ(ptsOf(host.pack(2)) - ptsOf(host.pack(1)), 16u * 2880);
}

TEST(Scheduler, ModelBufferHoldsBackTheVideo)
{
    // 0xF800 of 0x10000 of 237568 bytes are 230144; the next payload may not pass them by more than the pack at hand.
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    const VideoStream video = makeVideo({ { .types = "IPPPP", .bytes = { 80000, 80000, 80000, 80000, 80000 } } });
    host.handle->started = 1;
    host.handle->videoDelay = 60000;
    host.handle->audioDelay = 63600;
    feedUnits(host, stream, video);
    ASSERT_EQ(host.exit(), 0u);
    uint64_t bytes = 0, pack = 1;
    while (bytes <= 230144) bytes += payloadOf(host.pack(pack++)).size();
    EXPECT_EQ(scrOf(host.pack(pack - 1)), (pack - 1) * PACK_UNITS / 3000000);
    EXPECT_EQ(scrOf(host.pack(pack)), 60000u + 146);   // once picture 0 has left
}

// ---- units ------------------------------------------------------------------------------------------------------

TEST(Scheduler, UnitBeginsWhereItsGroupBegins)
{
    for (const uint64_t flags : { 0x08u, 0x400u }) {
        MuxHost host;
        MuxStream* stream = host.add(flags);
        const VideoStream video = makeVideo(
            { { .bytes = { 3001 } }, { .types = "IPPP", .bytes = { 2000, 900, 1 + 8, 4000 } }, { .types = "I" }, {} });
        for (const Bytes& chunk : flags == 0x08 ? video.units() : cut(video.bytes, { 5000 }))
            ASSERT_EQ(host.feed(stream, chunk), 0u);
        ASSERT_EQ(host.exit(), 0u);
        ASSERT_EQ(host.calls.size(), 4u);
        size_t picture = 0;
        for (uint64_t group = 0; group < 4; ++group) {
            // Each call is a unit, and holds the bytes of its group alone.
            Bytes bytes;
            for (uint64_t at = PACK_BYTES; at < host.calls[group].size(); at += PACK_BYTES) {
                const Bytes payload = payloadOf(part(host.calls[group], at, PACK_BYTES));
                bytes.insert(bytes.end(), payload.begin(), payload.end());
            }
            ASSERT_TRUE(isNavPack(part(host.calls[group], 0, PACK_BYTES)));
            const uint64_t from = video.pictures[picture].unitAt;
            while (picture < video.pictures.size() && video.pictures[picture].group == group + 1) ++picture;
            const uint64_t end = picture < video.pictures.size() ? video.pictures[picture].unitAt : video.bytes.size();
            EXPECT_EQ(bytes, part(video.bytes, from, end - from)) << group;
        }
    }
}

TEST(Scheduler, NavigationPacksOfTwoUnits)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    // Every pack one picture: unit 1 is packs 0..3, unit 2 packs 4..6.
    const VideoStream video =
        makeVideo({ { .types = "IPP", .bytes = { 1992, 2015, 2015 } }, { .types = "IP", .bytes = { 1992, 2015 } } });
    feedUnits(host, stream, video);
    ASSERT_EQ(host.exit(), 0u);
    ASSERT_EQ(packLetters(host), "NvvvNvv");
    ASSERT_EQ(host.calls.size(), 2u);
    EXPECT_EQ(host.calls[0].size(), 4 * PACK_BYTES);
    // Start 877 + 3600 = 0x117D, 3 pictures: 0x3BAD in the PCI of the first; 4 x 3600 + 877 = 0x3BAD again for the
    // second, whose last picture is not counted: + 3600 = 0x49BD.
    EXPECT_EQ(host.hexAt(0, 45, 4), "00 00 00 00");
    EXPECT_EQ(host.hexAt(0, 57, 16), "00 00 11 7D 00 00 3B AD 00 00 00 00 00 00 00 40");
    EXPECT_EQ(host.hexAt(4, 45, 4), "00 00 00 04");
    EXPECT_EQ(host.hexAt(4, 57, 16), "00 00 3B AD 00 00 49 BD 00 00 49 BD 00 00 00 43");
    // SCR 0 and 4 x 146.2857 = 585 = 0x249; end 3 and 2 packs on.
    EXPECT_EQ(host.hexAt(0, 1031, 12), "00 00 00 00 00 00 00 00 00 00 00 03");
    EXPECT_EQ(host.hexAt(4, 1031, 12), "00 00 02 49 00 00 00 04 00 00 00 02");
}

TEST(Scheduler, ReferenceEndsAreThoseOfTheFirstUnits)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    // Pictures of 5000 bytes: packs end at 2012, 4037, then one in which picture 1 begins (6052), 8077, 10092 with
    // picture 2, 12117, 14142, 16157 with picture 3, 18182 and the end of the group. The second unit has others.
    const VideoStream video =
        makeVideo({ { .types = "IPPP", .bytes = { 4980, 5000 } }, { .types = "IPPP", .bytes = { 1000 } } });
    feedUnits(host, stream, video);
    ASSERT_EQ(host.exit(), 0u);
    ASSERT_EQ(packLetters(host).substr(0, 12), "NvvvvvvvvvvN");
    EXPECT_EQ(host.hexAt(0, 1043, 12), "00 00 00 03 00 00 00 05 00 00 00 08");
    EXPECT_EQ(host.hexAt(11, 1043, 12), "00 00 00 03 00 00 00 05 00 00 00 08");
}

TEST(Scheduler, ReferenceEndsAreCollectedOverUnits)
{
    MuxHost host;
    MuxStream* stream = host.add(ORV_MUX_VIDEO_UNITS);
    const GopSpec gop = { .types = "IBB", .bytes = { 4980, 5000, 2000 } };   // one reference a unit: its pack 3
    feedUnits(host, stream, makeVideo(gops(4, gop)));
    ASSERT_EQ(host.exit(), 0u);
    const std::vector<uint64_t> navs = navSectors(host);
    ASSERT_EQ(navs.size(), 4u);
    EXPECT_EQ(host.hexAt(navs[0], 1043, 12), "00 00 00 03 00 00 00 00 00 00 00 00");
    EXPECT_EQ(host.hexAt(navs[1], 1043, 12), "00 00 00 03 00 00 00 03 00 00 00 00");
    EXPECT_EQ(host.hexAt(navs[2], 1043, 12), "00 00 00 03 00 00 00 03 00 00 00 03");
    EXPECT_EQ(host.hexAt(navs[3], 1043, 12), "00 00 00 03 00 00 00 03 00 00 00 03");
}

TEST(Scheduler, UnitsBehindTheVideoPassHalfASecond)
{
    // LPCM of 150 ticks: 300 of them are 45000, which is not above; 301 are. The last of the 3017 units' bytes go out
    // when 3005 have been decoded: behind the video, units begin with LPCM unit 301, 602, ... 2709.
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    MuxStream* audio = host.add(ORV_MUX_LPCM);
    ASSERT_EQ(host.feed(audio, waveHeader()), 0u);
    ASSERT_EQ(host.feed(audio, filler(3017 * 320)), 0u);
    ASSERT_EQ(host.feedSequence(video, makeVideo({ { .types = "I", .bytes = { 300 }, .end = true } }).bytes), 0u);
    ASSERT_EQ(host.exit(), 0u);
    EXPECT_EQ(navSectors(host).size(), 10u);
}

TEST(Scheduler, AudioThatOutlastsTheVideo)
{
    MuxHost host;
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    MuxStream* audio = host.add(ORV_MUX_AC3);
    ASSERT_EQ(host.feed(audio, ac3Frames(20, 200)), 0u);
    ASSERT_EQ(host.feed(audio, endMark()), 0u);
    ASSERT_EQ(host.feedSequence(video, makeVideo({ { .types = "I", .bytes = { 300 }, .end = true } }).bytes), 0u);
    ASSERT_EQ(host.exit(), 0u);
    // Two streams and no third picture: 3 packs, videoDelay 1024, audioDelay 4624. A frame lasts 2880; 16 of them are
    // the first that pass 45000. 200 frames: a unit every 16 frames, from frame 16 to frame 192.
    const std::vector<uint64_t> navs = navSectors(host);
    ASSERT_EQ(navs.size(), 13u);
    EXPECT_EQ(host.calls.size(), 13u);
    for (uint64_t i = 1; i < 13; ++i) {
        // In the pass behind the one that decodes frame 16 i - 1, or in the one that leaps to frame 16 i, one pack on.
        const uint64_t scr = scrOf(host.pack(navs[i]));
        EXPECT_GE(scr, 4624 + 2880 * (16 * i - 1) + 146) << i;
        EXPECT_LE(scr, 4624 + 2880 * 16 * i + 146) << i;
        EXPECT_EQ(host.hexAt(navs[i], 57, 4), "00 00 12 10") << i;   // the still's own start, 3600 + 1024
    }
    Bytes bytes;
    for (uint64_t i = 0; i < host.sectors(); ++i) {
        if (isNavPack(host.pack(i)) || host.pack(i)[17] != 0xBD) continue;
        const Bytes payload = payloadOf(host.pack(i));
        bytes.insert(bytes.end(), payload.begin(), payload.end());
    }
    EXPECT_EQ(bytes, ac3Frames(20, 200));
}

}   // namespace
