// What the host of a DVD-Audio run is told, call by call, and how it cancels.
#include "tests/run/audio_project.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

namespace {

typedef std::vector<std::string> Names;

// Three stills, one with a sub-picture; a title set of two WAVE files, one whose sound is finished, one without tracks;
// three menus, one of them animated.
AudioDisc threeTitleSets()
{
    AudioDisc disc;
    disc.titleSets = { { .tracks = { {}, {} }, .sound = Sound::WAVES }, {}, { .tracks = {} } };
    disc.menus = { {}, { .units = 2 }, { .stillBytes = 3000 } };
    disc.stills = { {}, { .hasSubPicture = true }, {} };
    return disc;
}

// Total: 3 x 102 + 25
const std::vector<ProgressCall> CALLS = {
    { 331, 0, 4 },      // 1 first still: 0
    { 331, 3, 4 },      // 2 second: 33 percent
    { 331, 6, 4 },      // 3 third: 66
    { 331, 10, 4 },     // 4 the stills are done
    { 331, 11, 5 },     // 5 their IFO
    { 331, 12, 6 },     // 6 backup
    { 331, 62, 1 },     // 7 first WAVE file: 50 - 90 + 102
    { 331, 112, 1 },    // 8 second
    { 331, 112, 1 },    // 9 the sound is done
    { 331, 113, 2 },    // 10 IFO of title set 1
    { 331, 114, 3 },    // 11 backup
    { 331, 215, 2 },    // 12 title set 2
    { 331, 216, 3 },    // 13
    { 331, 316, 1 },    // 14 title set 3: no sound
    { 331, 317, 2 },    // 15
    { 331, 318, 3 },    // 16
    { 331, 318, 7 },    // 17 manager, first menu
    { 331, 321, 7 },    // 18 second: 33 percent
    { 331, 324, 7 },    // 19 third
    { 331, 328, 7 },    // 20 the menus are done
    { 331, 329, 8 },    // 21 IFO
    { 331, 330, 9 },    // 22 backup
    { 331, 331, 10 },   // 23 AUDIO_PP.IFO
};

}   // namespace

TEST(AudioProgress, EveryCall)
{
    AudioRun run;
    ASSERT_EQ(0u, run.author(audioProject(run, threeTitleSets())));
    EXPECT_EQ(CALLS, run.calls);
    EXPECT_EQ(CALLS, audioCalls(threeTitleSets()));
    EXPECT_FALSE(fileExists(run.log));
}

TEST(AudioProgress, SameCallsThroughTheNarrowForm)
{
    AudioRun run;
    run.narrow = true;
    ASSERT_EQ(0u, run.author(audioProject(run, threeTitleSets())));
    EXPECT_EQ(CALLS, run.calls);
}

TEST(AudioProgress, NoCallback)
{
    AudioRun with, without;
    without.nullProgress = true;
    ASSERT_EQ(0u, with.author(audioProject(with, threeTitleSets())));
    ASSERT_EQ(0u, without.author(audioProject(without, threeTitleSets())));
    EXPECT_EQ(takeSnapshot(with.folder.root / "target"), takeSnapshot(without.folder.root / "target"));
    EXPECT_TRUE(without.calls.empty());
}

TEST(AudioProgress, ElevenStillsAndMenus)
{
    AudioRun run;
    AudioDisc disc = { .menus = std::vector<AudioMenu>(11), .stills = std::vector<AudioStill>(11) };
    ASSERT_EQ(0u, run.author(audioProject(run, disc)));
    // 100 x index / 11 is 0, 9, 18, 27, 36, 45, 54, 63, 72, 81, 90: tenths
    const uint32_t tenths[] = { 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 };
    std::vector<ProgressCall> expected;
    for (const uint32_t tenth : tenths) expected.push_back({ 127, tenth, 4 });
    expected.insert(expected.end(), { { 127, 11, 5 }, { 127, 12, 6 }, { 127, 113, 2 }, { 127, 114, 3 } });
    for (const uint32_t tenth : tenths) expected.push_back({ 127, 114 + tenth, 7 });
    expected.insert(expected.end(), { { 127, 125, 8 }, { 127, 126, 9 }, { 127, 127, 10 } });
    EXPECT_EQ(expected, run.calls);
}

// A run that is cancelled at its n-th call makes no further one; no temporary file is left, nothing is logged, what it
// has written stays.
TEST(AudioProgress, CancelAtEveryCall)
{
    const TempFolder temporary;
    AudioRun whole;
    ASSERT_EQ(0u, whole.author(audioProject(whole, threeTitleSets())));
    EXPECT_EQ(Names(), temporary.unitFiles());
    const struct {
        const char* file;
        uint64_t opened;   // the first call at which it is there
        uint64_t done;     // the first call at which it is as it stays
    } files[] = {
        { "AUDIO_SV.VOB", 1, 3 },   { "AUDIO_SV.IFO", 5, 5 },   { "AUDIO_SV.BUP", 6, 6 },   { "ATS_01_1.AOB", 7, 8 },
        { "ATS_01_0.IFO", 10, 10 }, { "ATS_01_0.BUP", 11, 11 }, { "ATS_02_0.IFO", 12, 12 }, { "ATS_02_0.BUP", 13, 13 },
        { "ATS_03_1.AOB", 14, 14 }, { "ATS_03_0.IFO", 15, 15 }, { "ATS_03_0.BUP", 16, 16 }, { "AUDIO_TS.VOB", 17, 20 },
        { "AUDIO_TS.IFO", 21, 21 }, { "AUDIO_TS.BUP", 22, 22 }, { "AUDIO_PP.IFO", 23, 23 },
    };
    for (uint64_t n = 1; n <= CALLS.size(); n++) {
        SCOPED_TRACE("call " + std::to_string(n));
        AudioRun run;
        run.cancelAt = n;
        run.cancelWith = n % 3 == 0 ? 1 : n % 3 == 1 ? 0x80000000 : 0x8400040A;
        EXPECT_EQ(0x8400040Au, run.author(audioProject(run, threeTitleSets())));
        EXPECT_EQ(std::vector<ProgressCall>(CALLS.begin(), CALLS.begin() + std::ptrdiff_t(n)), run.calls);
        EXPECT_EQ(Names(), temporary.unitFiles());
        EXPECT_FALSE(fileExists(run.log));
        for (const auto& file : files) {
            EXPECT_EQ(n >= file.opened, run.has(file.file)) << file.file;
            if (n < file.opened || !run.has(file.file)) continue;
            EXPECT_EQ(n >= file.done, whole.get(file.file) == run.get(file.file)) << file.file;
        }
    }
}

TEST(AudioProgress, CancelThroughTheNarrowForm)
{
    for (const uint64_t n : { 1u, 9u, 23u }) {
        AudioRun run;
        run.narrow = true;
        run.cancelAt = n;
        EXPECT_EQ(0x8400040Au, run.author(audioProject(run, threeTitleSets())));
        EXPECT_EQ(n, run.calls.size());
    }
}

// The VOBs grow picture by picture, and are whole sectors at each call.
TEST(AudioProgress, VobsOfACancelledRun)
{
    const struct {
        uint64_t call;
        const char* vob;
        uint64_t sectors;
    } cases[] = {
        { 1, "AUDIO_SV.VOB", 3 },  { 2, "AUDIO_SV.VOB", 7 },  { 3, "AUDIO_SV.VOB", 10 },  { 4, "AUDIO_SV.VOB", 10 },
        { 17, "AUDIO_TS.VOB", 3 }, { 18, "AUDIO_TS.VOB", 8 }, { 19, "AUDIO_TS.VOB", 12 }, { 20, "AUDIO_TS.VOB", 12 },
    };
    for (const auto& c : cases) {
        AudioRun run;
        run.cancelAt = c.call;
        EXPECT_EQ(0x8400040Au, run.author(audioProject(run, threeTitleSets())));
        EXPECT_EQ(c.sectors * 2048, run.get(c.vob).size()) << c.call;
    }
}

TEST(AudioProgress, RunAfterACancelledOneIsWhole)
{
    AudioRun whole, run;
    ASSERT_EQ(0u, whole.author(audioProject(whole, threeTitleSets())));
    const std::string project = audioProject(run, threeTitleSets());
    for (const uint64_t n : { 1u, 4u, 8u, 12u, 19u, 22u }) {
        run.cancelAt = n;
        EXPECT_EQ(0x8400040Au, run.author(project));
    }
    run.cancelAt = 0;
    ASSERT_EQ(0u, run.author(project));
    EXPECT_EQ(takeSnapshot(whole.folder.root / "target"), takeSnapshot(run.folder.root / "target"));
}
