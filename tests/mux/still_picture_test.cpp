// Stills of a DVD-Audio disc: their navigation packet and their packs.
#include "mux/asset_drivers.h"
#include "tests/mux/mux_rig.h"
#include "tests/support/write_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

constexpr uint64_t PAL = 3600, NTSC = 3003;
constexpr uint64_t VOB_NOT_WRITTEN = 0x8400178A, COMMAND_NOT_SUPPORTED = 0x840007DD;
constexpr uint64_t BLOCK_AT = 41, BLOCK_BYTES = 695, PACKET_END = 786;

MuxRun stillPicture(StillDesc& still, const MuxAssets& assets, uint64_t subPictureSectors = 0,
                    uint64_t frameTicks = PAL)
{
    return runDriver(assets, [&](const MuxFiles& files) {
        return orvMuxStillPicture(&still, files.output, files.video, files.subPicture, subPictureSectors, frameTicks);
    });
}

StillDesc stillWith(uint64_t hasSubPicture, const std::vector<ButtonDesc>& buttons = {})
{
    StillDesc still = {};
    still.hasSubPicture = hasSubPicture;
    still.buttonCount = buttons.size();
    std::copy(buttons.begin(), buttons.end(), still.buttons);
    return still;
}

// The packet of a still: its header, then the block with these bytes in it.
struct BlockBytes {
    uint64_t at;   // within the block
    Bytes bytes;
};

Bytes navBlock(const std::vector<BlockBytes>& filled)
{
    Bytes block(BLOCK_BYTES, 0);
    for (const BlockBytes& row : filled) {
        std::copy(row.bytes.begin(), row.bytes.end(), block.begin() + std::ptrdiff_t(row.at));
    }
    return block;
}

#define BLOCK_START "02 00 00 00 00 8C A0 FF FF FF FF FF FF FF FF"
#define BLOCK_START_HIGHLIGHT "02 00 01 00 00 8C A0 FF FF FF FF FF FF FF FF"

// A button of which every field differs from every other.
ButtonDesc someButton()
{
    ButtonDesc button = {};
    button.xStart = 0x123, button.xEnd = 0x2CD, button.yStart = 0x145, button.yEnd = 0x1EF;
    button.color = 2;
    button.upLink = 0x11, button.downLink = 0x12, button.leftLink = 0x13, button.rightLink = 0x14;
    button.command = 24, button.param1 = 1, button.param2 = 0x1234, button.param3 = 5;
    return button;
}
#define SOME_BUTTON "92 32 CD 14 51 EF 11 12 13 14 00 A1 00 01 12 34 00 05"

struct ButtonCase {
    const char* what;
    ButtonDesc button;
    const char* bytes;
};

ButtonDesc plainButton(void (*change)(ButtonDesc& button))
{
    ButtonDesc button = {};
    change(button);
    return button;
}

// Byte 0: colour group, left 9..4. 1: left 3..0, 00, right 9..8. 2: right 7..0. 3: 00, top 9..4. 4: top 3..0, 00,
// bottom 9..8. 5: bottom 7..0. 6 to 9: up, down, left, right. 10 to 17: the command.
// clang-format off
const ButtonCase BUTTONS[] = {
    { "nothing",         {},           "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "every field",     someButton(), SOME_BUTTON },
    { "left",            plainButton([](ButtonDesc& b) { b.xStart = 0x3FF; }),
      "3F F0 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "right",           plainButton([](ButtonDesc& b) { b.xEnd = 0x3FF; }),
      "00 03 FF 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "top",             plainButton([](ButtonDesc& b) { b.yStart = 0x3FF; }),
      "00 00 00 3F F0 00 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "bottom",          plainButton([](ButtonDesc& b) { b.yEnd = 0x3FF; }),
      "00 00 00 00 03 FF 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "colour group 1",  plainButton([](ButtonDesc& b) { b.color = 1; }),
      "40 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "colour group 3",  plainButton([](ButtonDesc& b) { b.color = 3; }),
      "C0 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "an automatic action has no place", plainButton([](ButtonDesc& b) { b.autoAction = 1; }),
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "nor has an overlap", plainButton([](ButtonDesc& b) { b.overlapButton = 7; }),
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" },
    { "bits that have no place are dropped", plainButton([](ButtonDesc& b) {
          b.xStart = 0xFFFFFFFFFFFFFC0F, b.xEnd = 0xFD00, b.yStart = 0xFFFFFC10, b.yEnd = 0x7FF;
          b.color = 0xFD;
          b.upLink = 0x101, b.downLink = 0x1FF, b.leftLink = 0x100, b.rightLink = 0x124;
      }),
      "40 F1 00 01 03 FF 01 FF 00 24 00 00 00 00 00 00 00 00" },
    { "another command", plainButton([](ButtonDesc& b) { b.command = 103, b.param1 = 3, b.param2 = 0x85; }),
      "00 00 00 00 00 00 00 00 00 00 20 03 00 00 00 00 0C 05" },
    { "the first parameter is a byte", plainButton([](ButtonDesc& b) { b.command = 4, b.param1 = 0x107; }),
      "00 00 00 00 00 00 00 00 00 00 30 02 00 00 00 07 00 00" },
    { "the fourth parameter is 0", plainButton([](ButtonDesc& b) {
          b.command = 29, b.param1 = 0x11, b.param2 = 0x1122, b.param3 = 0x13;
      }),
      "00 00 00 00 00 00 00 00 00 00 71 A0 01 03 00 00 11 22" },
};
// clang-format on

}   // namespace

TEST(StillNav, WithoutButtons)
{
    for (const uint64_t hasSubPicture : { 0u, 1u, 2u, 0x100u }) {
        const StillDesc still = stillWith(hasSubPicture);
        Bytes pack(PACK_BYTES, 0);
        EXPECT_EQ(orvWriteStillNav(pack.data(), &still), 0u);
        const char* const start = hasSubPicture ? BLOCK_START_HIGHLIGHT : BLOCK_START;
        const Bytes expected = Bytes(35, 0) + fromHex("00 00 01 BF 02 E9") + navBlock({ { 0, fromHex(start) } }) +
                               Bytes(PACK_BYTES - BLOCK_AT - BLOCK_BYTES, 0);
        EXPECT_EQ(differences(pack, expected), "") << hasSubPicture;
    }
}

TEST(StillNav, FieldsOfAButton)
{
    for (const ButtonCase& row : BUTTONS) {
        SCOPED_TRACE(row.what);
        const StillDesc still = stillWith(1, { row.button });
        Bytes pack(PACK_BYTES, 0);
        EXPECT_EQ(orvWriteStillNav(pack.data(), &still), 0u);
        EXPECT_EQ(toHex(pack.data() + 41 + 47, 18), row.bytes);
        EXPECT_EQ(toHex(pack.data() + 41, 15), BLOCK_START_HIGHLIGHT);
        EXPECT_EQ(part(pack, 41 + 47 + 18, PACK_BYTES), Bytes(PACK_BYTES - 106, 0));
    }
}

TEST(StillNav, ButtonsOfAStill)
{
    std::vector<ButtonDesc> buttons(36, someButton());
    for (uint64_t i = 0; i < buttons.size(); i++) buttons[i].upLink = i + 1;
    for (uint64_t count = 0; count <= 36; count++) {
        StillDesc still = stillWith(0, buttons);
        still.buttonCount = count;   // those behind have no place
        std::vector<BlockBytes> filled = { { 0, fromHex(BLOCK_START) } };
        for (uint64_t i = 0; i < count; i++) {
            filled.push_back({ 47 + 18 * i, fromHex(SOME_BUTTON) });
            filled.back().bytes[6] = uint8_t(i + 1);
        }
        Bytes pack(PACK_BYTES, 0);
        EXPECT_EQ(orvWriteStillNav(pack.data(), &still), 0u);
        EXPECT_EQ(differences(part(pack, 41, 695), navBlock(filled)), "") << count;
        EXPECT_EQ(part(pack, 736, PACK_BYTES), Bytes(PACK_BYTES - 736, 0));
    }
}

// Colours of the still are not part of the packet; the block is copied whole, over what stood there.
TEST(StillNav, TheBlockIsWhole)
{
    StillDesc still = stillWith(1, { someButton() });
    for (auto& set : still.colorSets) std::fill(std::begin(set), std::end(set), uint8_t(0xC1));
    Bytes pack(PACK_BYTES, 0xEE);
    EXPECT_EQ(orvWriteStillNav(pack.data(), &still), 0u);
    const Bytes block = navBlock({ { 0, fromHex(BLOCK_START_HIGHLIGHT) }, { 47, fromHex(SOME_BUTTON) } });
    EXPECT_EQ(differences(part(pack, 0, 736), Bytes(35, 0xEE) + fromHex("00 00 01 BF 02 E9") + block), "");
    EXPECT_EQ(part(pack, PACKET_END, PACK_BYTES), Bytes(PACK_BYTES - PACKET_END, 0xEE));
}

TEST(StillNav, ACommandThatCannotBeEncoded)
{
    for (const uint64_t command : { uint64_t(31), uint64_t(6), uint64_t(34), uint64_t(105), ~uint64_t(0) }) {
        for (const uint64_t at : { 0u, 1u, 2u }) {
            StillDesc still = stillWith(1, { someButton(), someButton(), someButton() });
            still.buttons[at].command = command;
            Bytes pack(PACK_BYTES, 0xEE);
            EXPECT_EQ(orvWriteStillNav(pack.data(), &still), COMMAND_NOT_SUPPORTED) << command;
            EXPECT_EQ(part(pack, BLOCK_AT, PACK_BYTES), Bytes(PACK_BYTES - BLOCK_AT, 0xEE)) << command;
            EXPECT_EQ(part(pack, 0, 35), Bytes(35, 0xEE));
        }
    }
    // Behind the last button nothing is looked at.
    StillDesc still = stillWith(1, { someButton(), someButton() });
    still.buttonCount = 1;
    still.buttons[1].command = 31;
    Bytes pack(PACK_BYTES, 0);
    EXPECT_EQ(orvWriteStillNav(pack.data(), &still), 0u);
}

// ---- the packs of a still ---------------------------------------------------------------------------------------

namespace {

#define PACK_0 "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 "
#define PACK_1 "00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8 "
#define PACK_2 "00 00 01 BA 44 00 04 09 25 57 01 89 C3 F8 "
#define PACK_3 "00 00 01 BA 44 00 04 0D B6 03 01 89 C3 F8 "
#define PACK_4 "00 00 01 BA 44 00 04 12 4C 55 01 89 C3 F8 "
#define PACK_5 "00 00 01 BA 44 00 04 16 DD 01 01 89 C3 F8 "
#define VIDEO_PAL "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 "
#define VIDEO_NTSC "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 75 2B 1E 60 E8 "
#define VIDEO_NEXT "00 00 01 E0 07 EC 81 00 00 "
#define SUB_FIRST "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A 20 "
#define SUB_NEXT "00 00 01 BD 07 EC 81 00 00 20 "

Bytes navPackOf(const std::vector<BlockBytes>& filled)
{
    return packOf(PACK_0 "00 00 01 BB 00 0F 80 C4 E1 00 61 7F B9 E0 E8 BD E0 34 BF E0 01 00 00 01 BF 02 E9",
                  navBlock(filled) + Bytes(50, 0), "00 00 01 BE 04 E8");
}

Bytes endSector()
{
    return fromHex("00 00 01 B9") + Bytes(2044, 0xFF);
}

const Bytes VIDEO = assetBytes(20000, 1), SUB = assetBytes(20000, 2);

}   // namespace

TEST(StillPicture, SubPictureThenVideo)
{
    StillDesc still = stillWith(1, { someButton(), someButton() });
    const MuxAssets assets = { .video = part(VIDEO, 0, 2012 + 2025 + 100), .subPicture = part(SUB, 0, 2016 + 2017) };
    const MuxRun run = stillPicture(still, assets, 7);
    EXPECT_EQ(run.result, 0u);
    const Bytes expected =
        navPackOf(
            { { 0, fromHex(BLOCK_START_HIGHLIGHT) }, { 47, fromHex(SOME_BUTTON) }, { 65, fromHex(SOME_BUTTON) } }) +
        packOf(PACK_1 SUB_FIRST, part(SUB, 0, 2016)) +
        packOf(PACK_2 "00 00 01 BD 07 EC 81 00 07 FF FF FF FF FF FF FF 20", part(SUB, 2016, 2017)) +
        packOf(PACK_3 VIDEO_PAL, part(VIDEO, 0, 2012)) +       //
        packOf(PACK_4 VIDEO_NEXT, part(VIDEO, 2012, 2025)) +   //
        packOf(PACK_5 "00 00 01 E0 00 67 81 00 00", part(VIDEO, 4037, 100), "00 00 01 BE 07 7F") + endSector();
    EXPECT_EQ(differences(run.output, expected), "");
    EXPECT_EQ(still.subPictureSectors, 7u);
}

TEST(StillPicture, WithoutASubPicture)
{
    StillDesc still = stillWith(0);
    still.subPictureSectors = 99;
    const MuxRun run = stillPicture(still, { .video = part(VIDEO, 0, 2012 + 2025) }, 0, NTSC);
    EXPECT_EQ(run.result, 0u);
    const Bytes expected = navPackOf({ { 0, fromHex(BLOCK_START) } }) +
                           packOf(PACK_1 VIDEO_NTSC, part(VIDEO, 0, 2012)) +
                           packOf(PACK_2 VIDEO_NEXT, part(VIDEO, 2012, 2025)) + endSector();
    EXPECT_EQ(differences(run.output, expected), "");
    EXPECT_EQ(still.subPictureSectors, 0u);
}

// The file says whether there is a sub-picture, the record whether there is a highlight.
TEST(StillPicture, TheFileAndTheRecordMayDiffer)
{
    StillDesc still = stillWith(1);
    MuxRun run = stillPicture(still, { .video = part(VIDEO, 0, 2012) }, 3);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(differences(run.output, navPackOf({ { 0, fromHex(BLOCK_START_HIGHLIGHT) } }) +
                                          packOf(PACK_1 VIDEO_PAL, part(VIDEO, 0, 2012)) + endSector()),
              "");
    EXPECT_EQ(still.subPictureSectors, 3u);

    still = stillWith(0);
    run = stillPicture(still, { .video = part(VIDEO, 0, 2012), .subPicture = part(SUB, 0, 2016 + 2024) }, 2);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(differences(run.output, navPackOf({ { 0, fromHex(BLOCK_START) } }) +
                                          packOf(PACK_1 SUB_FIRST, part(SUB, 0, 2016)) +
                                          packOf(PACK_2 SUB_NEXT, part(SUB, 2016, 2024)) +
                                          packOf(PACK_3 VIDEO_PAL, part(VIDEO, 0, 2012)) + endSector()),
              "");
}

TEST(StillPicture, EmptyFiles)
{
    StillDesc still = stillWith(1);
    const MuxRun run = stillPicture(still, { .video = Bytes{}, .subPicture = Bytes{} }, 1);
    EXPECT_EQ(run.result, 0u);
    const Bytes expected =
        navPackOf({ { 0, fromHex(BLOCK_START_HIGHLIGHT) } }) +
        packOf(PACK_1 "00 00 01 BD 00 0C 81 81 08 21 00 01 8C A1 1E 60 3A 20", {}, "00 00 01 BE 07 DA") +
        packOf(PACK_2 "00 00 01 E0 00 10 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", {}, "00 00 01 BE 07 D6") +
        endSector();
    EXPECT_EQ(differences(run.output, expected), "");
}

// Nothing is written of a still whose navigation packet can't be made, but its record is filled.
TEST(StillPicture, ACommandThatCannotBeEncoded)
{
    StillDesc still = stillWith(1, { someButton(), someButton() });
    still.buttons[1].command = 31;
    const MuxRun run = stillPicture(still, { .video = part(VIDEO, 0, 2012), .subPicture = part(SUB, 0, 10) }, 5);
    EXPECT_EQ(run.result, COMMAND_NOT_SUPPORTED);
    EXPECT_EQ(run.output.size(), 0u);
    EXPECT_EQ(still.subPictureSectors, 5u);
}

TEST(StillPicture, AnOutputThatTakesNothing)
{
    StillDesc still = stillWith(1);
    const MuxAssets assets = { .video = part(VIDEO, 0, 5000),
                               .subPicture = part(SUB, 0, 5000),
                               .before = assetBytes(3000, 9),
                               .outputMode = OS_READ };
    const MuxRun run = stillPicture(still, assets, 3);
    EXPECT_EQ(run.result, VOB_NOT_WRITTEN);
    EXPECT_EQ(run.output, assets.before);
    EXPECT_EQ(still.subPictureSectors, 3u);
}

// An asset that can't be read, or gives less than its size, ends the still and not in "can't be written".
TEST(StillPicture, FilesThatCannotBeRead)
{
    const MuxAssets sound = { .video = part(VIDEO, 0, 9000), .subPicture = part(SUB, 0, 9000) };
    for (const bool video : { false, true }) {
        StillDesc still = stillWith(1);
        MuxAssets assets = sound;
        (video ? assets.videoMode : assets.subPictureMode) = OS_APPEND;
        MuxRun run = stillPicture(still, assets, 5);
        EXPECT_NE(run.result, 0u);
        EXPECT_NE(run.result, VOB_NOT_WRITTEN);
        EXPECT_EQ(run.sectors(), video ? 1 + 5u : 1u);
    }
    const TempDir folder;
    const OpenFile output(folder, u"sv.vob", {}, OS_CREATE), video(folder, u"video", *sound.video),
        sub(folder, u"sub", *sound.subPicture);
    ASSERT_EQ(osSeekFile(video.file, 8999, OS_FROM_START), 0u);
    ASSERT_EQ(osSeekFile(sub.file, 9000, OS_FROM_START), 0u);
    StillDesc still = stillWith(1);
    EXPECT_NE(orvMuxStillPicture(&still, output.file, video.file, sub.file, 5, PAL), VOB_NOT_WRITTEN);
    uint64_t size = 0;
    ASSERT_EQ(osFileSize(output.file, &size), 0u);
    EXPECT_LE(size, (1 + 5 + 5 + 1) * PACK_BYTES);   // five packs hold 9000 bytes
}

TEST(StillPicture, StillsFollowEachOther)
{
    StillDesc still = stillWith(1);
    MuxAssets assets = { .video = part(VIDEO, 0, 2500), .subPicture = part(SUB, 0, 10) };
    const Bytes first = stillPicture(still, assets, 1).output;
    EXPECT_EQ(first.size(), 5 * PACK_BYTES);
    assets.before = first;
    EXPECT_EQ(differences(stillPicture(still, assets, 1).output, first + first), "");
}

#ifndef _WIN32

TEST(StillPicture, EveryWriteThatFails)
{
    const MuxAssets assets = { .video = part(VIDEO, 0, 2012 + 2025), .subPicture = part(SUB, 0, 2016 + 2024 + 1) };
    const auto once = [&](uint64_t limit) {
        return runDriver(assets, [&](const MuxFiles& files) {
            StillDesc still = stillWith(1);
            const WriteLimit full(limit);
            return orvMuxStillPicture(&still, files.output, files.video, files.subPicture, 3, PAL);
        });
    };
    const MuxRun whole = once(uint64_t(1) << 30);
    EXPECT_EQ(whole.result, 0u);
    ASSERT_EQ(whole.sectors(), 1 + 3 + 2 + 1u);
    for (uint64_t sectors = 0; sectors < whole.sectors(); sectors++) {
        const MuxRun run = once(sectors * PACK_BYTES);
        EXPECT_EQ(run.result, VOB_NOT_WRITTEN) << sectors;
        EXPECT_EQ(differences(run.output, part(whole.output, 0, sectors * PACK_BYTES)), "") << sectors;
    }
    EXPECT_EQ(once(whole.output.size()).result, 0u);
}

#endif

TEST(StillPicture, AnySizes)
{
    std::mt19937_64 random(75);
    const auto below = [&](uint64_t count) { return uint64_t(random() % count); };
    const auto anySize = [&](uint64_t first, uint64_t next) {
        const uint64_t packs = below(4);
        return packs == 0 ? below(first + 12) : first + (packs - 1) * next + below(24) - 12;
    };
    for (uint64_t round = 0; round < 200; round++) {
        SCOPED_TRACE(round);
        const uint64_t frameTicks = below(2) ? PAL : NTSC;
        MuxAssets assets = { .video = part(VIDEO, below(9000), anySize(2012, 2025)) };
        if (below(4)) assets.subPicture = part(SUB, below(9000), anySize(2016, 2024));
        StillDesc still = stillWith(below(2));
        uint64_t sector = 1;
        const auto next = [&](uint64_t) { return sector++; };
        Bytes expected = navPackOf({ { 0, fromHex(still.hasSubPicture ? BLOCK_START_HIGHLIGHT : BLOCK_START) } });
        if (assets.subPicture) {
            expected +=
                referencePacks({ .streamId = 0xBD, .subStreamId = 0x20, .pts = 18000 }, *assets.subPicture, next);
        }
        expected += referencePacks({ .pts = 18000, .dts = 18000 - frameTicks }, *assets.video, next);
        expected += endSector();
        const MuxRun run = stillPicture(still, assets, round, frameTicks);
        ASSERT_EQ(run.result, 0u);
        ASSERT_EQ(differences(run.output, expected), "");
        ASSERT_EQ(still.subPictureSectors, round);
    }
}
