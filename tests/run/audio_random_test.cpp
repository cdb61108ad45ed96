// DVD-Audio discs of seeded random projects, held against the plain model of their tables. A failure prints its seed.
#include "tests/run/audio_project.h"
#include "tests/support/environment.h"

#include <random>

namespace {

constexpr uint64_t SEEDS = 60;

struct Dice {
    std::mt19937_64 engine;
    uint64_t upTo(uint64_t most)
    {
        return engine() % (most + 1);
    }
    uint64_t between(uint64_t least, uint64_t most)
    {
        return least + upTo(most - least);
    }
    bool oneIn(uint64_t n)
    {
        return engine() % n == 0;
    }
};

AudioTrack randomTrack(Dice& dice)
{
    const uint64_t sizes[] = { 16, 20, 24 }, rates[] = { 44100, 48000, 88200, 96000, 176400, 192000 };
    AudioTrack track = { .playTime = dice.between(1, 0xFFFFFFFF), .firstPts = dice.upTo(0xFFFFFFFF) };
    track.packs = dice.oneIn(10) ? 0 : dice.between(1, 100000);
    track.assign = dice.upTo(20);
    track.bits = sizes[dice.upTo(2)];
    track.rate = rates[dice.upTo(5)];
    return track;
}

AudioSet randomSet(Dice& dice)
{
    AudioSet set = { .tracks = {} };
    if (dice.oneIn(5)) return { .tracks = { { .playTime = dice.between(1, 90000) } }, .sound = Sound::WAVES };
    if (dice.oneIn(6)) set.sound = Sound::UNKNOWN;
    const uint64_t tracks = dice.oneIn(12) ? dice.between(40, 100) : dice.upTo(8);
    for (uint64_t i = 0; i < tracks; i++) set.tracks.push_back(randomTrack(dice));
    return set;
}

std::vector<Color> randomColors(Dice& dice)
{
    std::vector<Color> colors;
    for (uint64_t count = dice.oneIn(3) ? 16 : dice.upTo(5); colors.size() < count;)
        colors.push_back(Color(dice.upTo(4)));
    return colors;
}

AudioAttributes randomAttributes(Dice& dice)
{
    return { .mpeg1 = dice.oneIn(3), .wide = dice.oneIn(2), .resolution = dice.upTo(3) };
}

AudioDisc randomDisc(Dice& dice)
{
    AudioDisc disc = { .mode = dice.oneIn(2) ? "PAL" : "NTSC", .titleSets = {} };
    for (uint64_t i = dice.between(1, dice.oneIn(10) ? 20 : 4); i > 0; i--) disc.titleSets.push_back(randomSet(dice));
    disc.menuAttributes = randomAttributes(dice);
    disc.menuColors = randomColors(dice);
    for (uint64_t i = dice.oneIn(3) ? 0 : dice.between(1, 16); i > 0; i--) {
        AudioMenu menu = { .units = dice.oneIn(4) ? dice.between(1, 5) : 0, .stillBytes = dice.between(100, 9000) };
        if (dice.oneIn(2)) menu.moreBytes = 2 * dice.upTo(5000);
        if (dice.oneIn(2)) menu.keys = buttonKeys(dice.upTo(dice.oneIn(6) ? 36 : 3));
        disc.menus.push_back(menu);
    }
    disc.asvs = dice.oneIn(3);
    for (uint64_t i = dice.oneIn(2) ? 0 : dice.upTo(20); i > 0; i--) {
        AudioStill still = { .bytes = dice.between(100, 9000), .hasSubPicture = dice.oneIn(2) };
        if (dice.oneIn(2)) still.moreBytes = 2 * dice.upTo(5000);
        if (dice.oneIn(2)) still.keys = buttonKeys(dice.upTo(dice.oneIn(6) ? 36 : 3));
        disc.stills.push_back(still);
    }
    if (disc.asvs) {
        for (uint64_t i = dice.upTo(4); i > 0; i--) disc.attributes.push_back(randomAttributes(dice));
        disc.stillColors = randomColors(dice);
    }
    return disc;
}

// Some call of the callback cancels; the run behind it makes the whole disc again.
void expectSameAfterCancel(AudioRun& run, Dice& dice)
{
    const Snapshot whole = takeSnapshot(run.folder.root / "target");
    const std::vector<ProgressCall> calls = run.calls;
    run.cancelAt = dice.between(1, calls.size());
    EXPECT_EQ(0x8400040Au, run.author());
    EXPECT_EQ(run.cancelAt, run.calls.size());
    run.cancelAt = 0;
    EXPECT_EQ(0u, run.author());
    EXPECT_EQ(calls, run.calls);
    EXPECT_EQ(whole, takeSnapshot(run.folder.root / "target"));
}

}   // namespace

TEST(AudioRandom, TablesAreThoseOfTheModel)
{
    uint64_t stills = 0, menus = 0, tracks = 0, cut = 0;
    for (uint64_t seed = 1; seed <= SEEDS; seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const TempFolder temporary;
        Dice dice = { std::mt19937_64(seed) };
        const AudioDisc disc = randomDisc(dice);
        AudioRun run;
        run.narrow = seed % 2;
        run.nullPrevious = seed % 3 != 0;
        expectAudioDisc(run, disc);
        EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles());
        if (testing::Test::HasFailure()) break;

        if (seed % 4 == 0) expectSameAfterCancel(run, dice);
        EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles());
        stills += disc.stills.size();
        menus += disc.menus.size();
        cut += !disc.menus.empty() && (23 + 298 * disc.menus.size()) % 2048 < 256;
        for (const AudioSet& set : disc.titleSets) tracks += set.tracks.size();
        if (testing::Test::HasFailure()) break;
    }
    // The material has what is to be checked.
    EXPECT_LT(100u, stills);
    EXPECT_LT(200u, menus);
    EXPECT_LT(1000u, tracks);
    EXPECT_LT(2u, cut);
}
