// Animated menus whose files are short, can't be read or can't be written.
#include "tests/mux/animated_rig.h"
#include "tests/support/write_limit.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t VIDEO_NOT_READ = 0x840007E6, SUB_NOT_READ = 0x840007E7, VOB_NOT_WRITTEN = 0x840007E8;

void expectFailure(const MenuDesc& menu, MuxAssets assets, uint64_t result, const Bytes& output)
{
    MuxRun run = animatedMenu(menu, assets);
    EXPECT_EQ(run.result, result);
    EXPECT_EQ(differences(run.output, output), "");
    if (!assets.letterbox) assets.letterbox = Bytes{};
    run = animatedMenuPair(menu, assets);
    EXPECT_EQ(run.result, result);
    EXPECT_EQ(differences(run.output, output), "");
}

}   // namespace

TEST(AnimatedMenu, AnAssetThatIsTooShort)
{
    const Bytes video = animation(FOUR_UNITS);
    for (const uint64_t loopMode : { 1u, 2u, 4u }) {
        for (const uint64_t bytes : { 0u, 1u, 2047u }) {
            SCOPED_TRACE(testing::Message() << loopMode << ", " << bytes);
            expectFailure(menuWith(loopMode, 0), withVideo(part(video, 0, bytes)), VIDEO_NOT_READ, {});
        }
        for (const uint64_t bytes : { 2048u, 2049u, 4095u }) {
            SCOPED_TRACE(testing::Message() << loopMode << ", " << bytes);
            expectFailure(menuWith(loopMode, 0), withVideo(part(video, 0, bytes)), VIDEO_NOT_READ,
                          packsOf(video, 0, 1));
        }
    }
    // The unit of the loop point lacks its second pack.
    expectFailure(menuWith(2, 27000), withVideo(packsOf(video, 0, 10)), VIDEO_NOT_READ, packsOf(video, 0, 10));
}

TEST(AnimatedMenu, ALoopPointThatIsNotThere)
{
    const Bytes video = animation(FOUR_UNITS);
    for (const uint64_t loopMode : { 2u, 4u }) {
        for (const uint64_t loopValue : { uint64_t(27001), uint64_t(0xFFFFFFFF), ~uint64_t(0) }) {
            SCOPED_TRACE(testing::Message() << loopMode << ", " << loopValue);
            expectFailure(menuWith(loopMode, loopValue), withVideo(video), VIDEO_NOT_READ, {});
        }
    }
}

// The first unit says that the next one lies at the end of the file, or behind it.
TEST(AnimatedMenu, UnitsThatLeadPastTheEnd)
{
    for (const uint64_t end : { 4u, 5u, 0xFFFFu, 0x1FFFFFu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu }) {
        SCOPED_TRACE(end);
        const Bytes video = animation({ { .packs = 1, .end = end }, { .scr = 9000, .packs = 2 } });
        EXPECT_EQ(video.size(), 5 * PACK_BYTES);
        expectFailure(menuWith(2, 9000), withVideo(video), VIDEO_NOT_READ, {});
        expectFailure(menuWith(4, 9000), withVideo(video + Bytes(2047, 0xFF)), VIDEO_NOT_READ, {});
    }
}

TEST(AnimatedMenu, FilesThatCannotBeRead)
{
    const Bytes video = animation(FOUR_UNITS);
    const MenuDesc menu = menuWith(1, 0), looped = menuWith(2, 18000);
    MuxAssets assets = withVideo(video);
    assets.videoMode = OS_APPEND;
    expectFailure(menu, assets, VIDEO_NOT_READ, {});
    expectFailure(looped, assets, VIDEO_NOT_READ, {});
    const MuxAssets noVideo = { .subPicture = part(SUB, 0, 2016) };
    expectFailure(menu, noVideo, VIDEO_NOT_READ, {});
    expectFailure(looped, noVideo, VIDEO_NOT_READ, {});

    MuxAssets unreadable = withVideo(video);
    unreadable.subPictureMode = OS_APPEND;
    expectFailure(menu, unreadable, SUB_NOT_READ, packsOf(video, 0, 2));
    expectFailure(looped, unreadable, SUB_NOT_READ, packsOf(video, 0, 6));
}

TEST(AnimatedMenu, ALetterboxFormThatCannotBeRead)
{
    const Bytes video = animation(FOUR_UNITS);
    MuxAssets assets = withVideo(video);
    assets.letterbox = part(LETTERBOX, 0, 500);
    assets.letterboxMode = OS_APPEND;
    const MuxRun run = animatedMenuPair(menuWith(1, 0), assets);
    EXPECT_EQ(run.result, SUB_NOT_READ);
    EXPECT_EQ(differences(run.output, packsOf(video, 0, 2) + fullPack(30000)), "");
}

TEST(AnimatedMenu, ASubPictureThatIsNotOpen)
{
    const Bytes video = animation(FOUR_UNITS);
    const MuxAssets noSub = { .video = video };
    expectFailure(menuWith(1, 0), noSub, SUB_NOT_READ, packsOf(video, 0, 2));
    const MuxAssets noLetterbox = withVideo(video);
    const MenuDesc menu = menuWith(1, 0);
    const MuxRun run = animatedMenuPair(menu, noLetterbox);
    EXPECT_EQ(run.result, SUB_NOT_READ);
    EXPECT_EQ(differences(run.output, packsOf(video, 0, 2) + fullPack(30000)), "");

    uint64_t sector = 3;
    const MuxRun packs = runDriver({}, [&](const MuxFiles& files) {
        return orvMuxSubPicturePacks(files.output, files.subPicture, 18000, 0x20, &sector);
    });
    EXPECT_EQ(packs.result, SUB_NOT_READ);
    EXPECT_EQ(packs.output.size(), 0u);
}

// A pack without payload is read for like any other.
TEST(AnimatedMenu, AnEmptySubPictureThatCannotBeRead)
{
    const Bytes video = animation(FOUR_UNITS);
    MuxAssets assets = withVideo(video, 0);
    assets.subPictureMode = OS_APPEND;
    expectFailure(menuWith(1, 0), assets, SUB_NOT_READ, packsOf(video, 0, 2));
}

// A sub-picture that gives less than its size does not keep the driver for ever.
TEST(AnimatedMenu, ASubPictureThatStandsAtItsEnd)
{
    const Bytes video = animation(FOUR_UNITS);
    const TempDir folder;
    const OpenFile output(folder, u"menu.vob", {}, OS_CREATE), open(folder, u"video", video),
        sub(folder, u"sub", part(SUB, 0, 9000));
    ASSERT_EQ(osSeekFile(sub.file, 9000, OS_FROM_START), 0u);
    const MenuDesc menu = menuWith(1, 0);
    const uint64_t result = orvMuxAnimatedMenu(&menu, output.file, open.file, sub.file);
    EXPECT_TRUE(result == 0 || result == SUB_NOT_READ) << result;
    uint64_t size = 0;
    ASSERT_EQ(osFileSize(output.file, &size), 0u);
    EXPECT_LE(size, video.size() + 5 * PACK_BYTES);   // five packs hold 9000 bytes
}

TEST(AnimatedMenu, AnOutputThatTakesNothing)
{
    MuxAssets assets = withVideo(animation(FOUR_UNITS));
    assets.before = assetBytes(3000, 9);
    assets.outputMode = OS_READ;
    expectFailure(menuWith(1, 0), assets, VOB_NOT_WRITTEN, assets.before);
    expectFailure(menuWith(2, 18000), assets, VOB_NOT_WRITTEN, assets.before);
    expectFailure(menuWith(2, 27001), assets, VIDEO_NOT_READ, assets.before);
    assets.video = Bytes(2047, 0);
    expectFailure(menuWith(1, 0), assets, VIDEO_NOT_READ, assets.before);
}

#ifndef _WIN32

// Each write in turn: leading units, the navigation and the second pack, the sub-pictures, the rest.
TEST(AnimatedMenu, EveryWriteThatFails)
{
    const Bytes video = animation(FOUR_UNITS);
    MuxAssets assets = withVideo(video, 2016 + 2024 + 2024);
    assets.letterbox = part(LETTERBOX, 0, 2016 + 1);
    const MenuDesc menu = menuWith(2, 9000);
    for (const bool pair : { false, true }) {
        const auto once = [&](uint64_t limit) {
            return runDriver(assets, [&](const MuxFiles& files) {
                const WriteLimit full(limit);
                return pair
                           ? orvMuxAnimatedMenuPair(&menu, files.output, files.video, files.subPicture, files.letterbox)
                           : orvMuxAnimatedMenu(&menu, files.output, files.video, files.subPicture);
            });
        };
        const MuxRun whole = once(uint64_t(1) << 30);
        EXPECT_EQ(whole.result, 0u);
        ASSERT_EQ(whole.sectors(), pair ? 16u : 14u);
        for (uint64_t sectors = 0; sectors < whole.sectors(); sectors++) {
            const MuxRun run = once(sectors * PACK_BYTES);
            EXPECT_EQ(run.result, VOB_NOT_WRITTEN) << sectors;
            EXPECT_EQ(differences(run.output, packsOf(whole.output, 0, sectors)), "") << sectors;
        }
        EXPECT_EQ(once(whole.output.size()).result, 0u);
    }
}

#endif
