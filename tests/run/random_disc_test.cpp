// Discs of seeded random projects, held against a reader of the published format. A failure prints its seed.
#include "tests/run/disc_run.h"
#include "tests/support/disc_reader.h"

#include <algorithm>
#include <random>

namespace {

constexpr uint64_t SEEDS = 40;

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

// A title of up to about a minute, in units of different shapes.
MovieSpec randomMovie(Dice& dice, int64_t standard, const std::vector<StreamSpec>& streams)
{
    const char* const types[] = { "IBBP", "IP", "IBP", "I" };
    MovieSpec movie = { .standard = standard, .streams = streams };
    const uint64_t units = dice.oneIn(5) ? 1 : dice.between(2, 120);
    const bool severalVobs = dice.oneIn(4);
    for (uint64_t i = 0; i < units; i++) {
        VobuSpec unit = { .pictures = dice.between(10, 18), .types = types[dice.upTo(3)] };
        if (dice.oneIn(2)) unit.pictureBytes = { dice.between(500, 4000), dice.between(6, 900) };
        if (dice.oneIn(6)) unit.pictures = dice.between(2, 9);   // declared longer than it is
        if (dice.oneIn(4)) unit.padding = dice.between(1, 5);
        unit.newVob = severalVobs && i > 0 && dice.oneIn(20);
        movie.vobus.push_back(unit);
    }
    if (dice.oneIn(3)) movie.firstDisplay = dice.between(0, 90000);
    return movie;
}

std::vector<StreamSpec> randomStreams(Dice& dice, std::string& keys)
{
    std::vector<StreamSpec> streams;
    const uint64_t count = dice.upTo(3);
    if (count > 1) keys += "astreams=" + std::to_string(count) + "\n";
    for (uint64_t i = 0; i < count; i++) {
        const struct {
            const char* name;
            StreamSpec stream;
        } kinds[] = {
            { "AC3", ac3Stream(i) }, { "PCM", lpcmStream(i) }, { "DTS", dtsStream(i) }, { "layer2", mpegAudioStream(i) }
        };
        const auto& kind = kinds[dice.upTo(3)];
        keys += "audio" + (i ? std::to_string(i + 1) : "") + "=" + kind.name + "\n";
        streams.push_back(kind.stream);
        streams.back().packsPerVobu = dice.between(1, 3);
    }
    return streams;
}

std::string randomChapters(Dice& dice, const Movie& movie)
{
    const uint64_t count = dice.upTo(12);
    std::string keys = "chapters=" + std::to_string(count) + "\n";
    std::vector<uint64_t> marks;
    for (uint64_t i = 0; i < count; i++) marks.push_back(dice.upTo(movie.vobus.back().scr + 90000));
    std::sort(marks.begin(), marks.end());
    for (uint64_t i = 0; i < count; i++)
        keys += "chapter" + std::to_string(i + 1) + "=" + std::to_string(marks[i]) + "\n";
    return keys;
}

// Files of whole sectors, cut in front of navigation packs so that each has one.
std::string randomSources(Dice& dice, const DiscRun& run, uint64_t set, const Movie& movie)
{
    std::vector<uint64_t> cuts = { 0 };
    for (const VobuRecord& unit : movie.vobus) {
        if (unit.sector && cuts.size() < 9 && dice.oneIn(30)) cuts.push_back(unit.sector - dice.upTo(1));
    }
    cuts.push_back(movie.sectors());
    std::string keys;
    for (uint64_t i = 0; i + 1 < cuts.size(); i++) {
        const std::string name = "VTS_0" + std::to_string(set) + "_" + std::to_string(i + 1) + ".VOB";
        run.put(name, Bytes(movie.bytes.begin() + std::ptrdiff_t(cuts[i] * 2048),
                            movie.bytes.begin() + std::ptrdiff_t(cuts[i + 1] * 2048)));
        keys += "source" + (i ? std::to_string(i) : "") + "=" + run.text(name) + "\n";
    }
    return keys;
}

struct Totals {
    uint64_t pointers = 0, audio = 0, times = 0, chapters = 0, cells = 0;
};

void authorRandomDisc(uint64_t seed, Totals& totals)
{
    Dice dice = { std::mt19937_64(seed) };
    DiscRun run;
    const bool pal = dice.oneIn(2);
    const uint64_t titleSets = dice.between(1, 3);
    std::string project = std::string("[COMMON]\nversion=1.0\nmode=") + (pal ? "PAL" : "NTSC") +
                          "\n[VMG]\ntitlesets=" + std::to_string(titleSets) + "\n";
    uint64_t units = 0;
    for (uint64_t set = 1; set <= titleSets; set++) {
        std::string keys;
        const std::vector<StreamSpec> streams = randomStreams(dice, keys);
        const Movie movie = makeMovie(randomMovie(dice, pal ? 1 : 2, streams));
        const char* const posts[] = { "none", "title", "root", "loop", "next", "previous", "first", "last" };
        keys += randomChapters(dice, movie) + randomSources(dice, run, set, movie) + "postcmd=" + posts[dice.upTo(7)] +
                "\nvideomode=" + (dice.oneIn(2) ? "4:3" : "16:9") + "\n";
        project += "[VTS_" + std::to_string(set) + "]\n" + keys;
        units += movie.vobus.size();
    }
    const Snapshot before = takeSnapshot(run.folder.root / "target");
    ASSERT_EQ(0u, run.author(project));
    EXPECT_FALSE(fileExists(run.log));

    const DiscReport report = readDisc(run.folder.root / "target");
    EXPECT_EQ("", describeFaults(report));
    EXPECT_EQ(titleSets, report.titleSets);
    EXPECT_EQ(units, report.navPacks);
    for (const auto& [name, bytes] : before) EXPECT_EQ(0u, changedOutsideNavPacks(bytes, run.get(name))) << name;
    totals.pointers += report.searchPointers;
    totals.audio += report.audioPointers;
    totals.times += report.timeMapEntries;
    totals.chapters += report.chapters;
    totals.cells += report.cells;

    // The second run, through the other form, finds the disc as it stands.
    const Snapshot first = takeSnapshot(run.folder.root / "target");
    run.narrow = true;
    ASSERT_EQ(0u, run.author(project));
    EXPECT_EQ(first, takeSnapshot(run.folder.root / "target"));
}

}   // namespace

TEST(RandomDisc, SizesTablesAndNavigationPacksAgree)
{
    Totals totals;
    for (uint64_t seed = 1; seed <= SEEDS; seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        authorRandomDisc(seed, totals);
        if (testing::Test::HasFailure()) break;
    }
    // The material has what is to be checked.
    EXPECT_LT(1000u, totals.pointers);
    EXPECT_LT(1000u, totals.audio);
    EXPECT_LT(100u, totals.times);
    EXPECT_LT(100u, totals.chapters);
    EXPECT_LE(totals.chapters, totals.cells);
}
