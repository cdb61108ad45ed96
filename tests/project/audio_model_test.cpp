#include "project/audio_model.h"

#include "project/channel_assignment.h"
#include "tests/project/audio_project.h"

#include <algorithm>
#include <iterator>

namespace {

bool isZero(const void* record, size_t bytes)
{
    const auto* const at = static_cast<const uint8_t*>(record);
    return std::all_of(at, at + bytes, [](uint8_t byte) { return byte == 0; });
}

uint32_t goOn(uint32_t, uint32_t, uint32_t, uint64_t)
{
    return 0;
}

void set(char16_t** path)
{
    ASSERT_EQ(osStrDup(u"path", path), 0u);
}

// A title set with so many tracks, each with a path a channel.
void fillTitleSet(AudioTitleSetDesc* titleSet, uint64_t tracks)
{
    titleSet->trackCount = tracks;
    for (uint64_t t = 0; t < tracks; t++) {
        titleSet->tracks[t].channelCount = MAX_CHANNELS;
        for (char16_t*& path : titleSet->tracks[t].channelPaths) set(&path);
    }
}

}   // namespace

TEST(AudioModel, Limits)
{
    static_assert(sizeof(AudioDiscContext::amgMenus) == 99 * sizeof(MenuDesc));
    static_assert(sizeof(AudioDiscContext::audioTitleSets) == 99 * sizeof(AudioTitleSetDesc*));
    static_assert(sizeof(AsvsDesc::attributes) == 4 * 6 * 8);
    static_assert(sizeof(AsvsDesc::colorTable) == 16 * 4);
    static_assert(sizeof(AsvsDesc::stills) == 99 * sizeof(StillDesc*));
    static_assert(sizeof(AudioTitleSetDesc::tracks) == 100 * sizeof(AudioTrackDesc));
    static_assert(sizeof(AudioTitleSetDesc::album) == 256 && sizeof(AudioTitleSetDesc::artist) == 256);
    static_assert(sizeof(AudioTrackDesc::title) == 256);
    static_assert(sizeof(AudioTrackDesc::channelPaths) == 6 * sizeof(char16_t*));
    EXPECT_EQ(std::size(CHANNEL_GROUPS), 21u);
}

TEST(AudioModel, RootIsPalAndElseZero)
{
    const std::u16string path = u"errors.log";
    AudioDiscContext* context = nullptr;
    ASSERT_EQ(orvCreateAudioContext(path.c_str(), goOn, 0x123456789ABCDEF0, &context), 0u);
    EXPECT_EQ(context->head.videoStandard, 1);
    EXPECT_EQ(context->head.frameTicks, 3600u);
    EXPECT_NE(context->head.logFilePath, path.c_str());
    EXPECT_EQ(textOf(context->head.logFilePath), path);
    EXPECT_EQ(context->head.progressCallback, &goOn);
    EXPECT_EQ(context->head.progressUser, 0x123456789ABCDEF0u);
    RunHead head = context->head;
    context->head = {};
    EXPECT_TRUE(isZero(context, sizeof *context));
    context->head = head;
    orvFreeAudioContext(&context);
    EXPECT_EQ(context, nullptr);
}

TEST(AudioModel, LogAndCallbackMayBeNull)
{
    AudioDiscContext* context = nullptr;
    ASSERT_EQ(orvCreateAudioContext(nullptr, nullptr, 0, &context), 0u);
    EXPECT_EQ(context->head.logFilePath, nullptr);
    EXPECT_EQ(context->head.progressCallback, nullptr);
    orvFreeAudioContext(&context);
    EXPECT_EQ(context, nullptr);
}

TEST(AudioModel, FreeingNothingIsHarmless)
{
    AudioDiscContext* context = nullptr;
    orvFreeAudioContext(&context);
    orvFreeAudioContext(&context);
    EXPECT_EQ(context, nullptr);
}

// Every string of the model, freed: the sanitizer's leak check would show one left over. Title sets, stills and paths
// may be missing anywhere.
TEST(AudioModel, FreesAllThatHangsFromTheRoot)
{
    AudioDiscContext* context = nullptr;
    ASSERT_EQ(orvCreateAudioContext(u"errors.log", goOn, 0, &context), 0u);
    context->amgMenuCount = MAX_MENUS;
    for (MenuDesc& menu : context->amgMenus) {
        set(&menu.background);
        set(&menu.subPicture);
    }
    fillTitleSet(addTitleSet(context, 1), MAX_AUDIO_TRACKS);
    fillTitleSet(addTitleSet(context, 2), 0);
    fillTitleSet(addTitleSet(context, 99), 1);
    (void)osStrFree(&context->audioTitleSets[98]->tracks[0].channelPaths[0]);
    context->asvs.stillCount = MAX_STILLS;
    for (const size_t n : { size_t(0), size_t(1), size_t(98) }) {
        ASSERT_EQ(osAllocMem(sizeof(StillDesc), &context->asvs.stills[n]), 0u);
        set(&context->asvs.stills[n]->background);
        if (n > 0) set(&context->asvs.stills[n]->subPicture);
    }
    orvFreeAudioContext(&context);
    EXPECT_EQ(context, nullptr);
}

// A run that failed in the middle has menus and title sets beyond its counts.
TEST(AudioModel, FreesWhatNoCountTellsOf)
{
    AudioDiscContext* context = nullptr;
    ASSERT_EQ(orvCreateAudioContext(nullptr, nullptr, 0, &context), 0u);
    set(&context->amgMenus[98].background);
    fillTitleSet(addTitleSet(context, 50), 3);
    ASSERT_EQ(osAllocMem(sizeof(StillDesc), &context->asvs.stills[7]), 0u);
    set(&context->asvs.stills[7]->background);
    orvFreeAudioContext(&context);
    EXPECT_EQ(context, nullptr);
}
