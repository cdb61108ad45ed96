// What a host is told during a run, call by call, and how it cancels.
#include "tests/run/disc_run.h"

namespace {

// Two title sets. Set 1 has one source of 10 sectors, 8 units: (20480 + 16383) / 4096; set 2 has sources of 4 and of 2
// sectors, 5 + 4 units. With an IFO and a backup each: 8 + 2 + 9 + 2 = 21 units, and 2 of the manager.
std::string twoTitleSets(const DiscRun& run)
{
    const Movie second = smallMovie({ 4, 2 });
    run.put("VTS_01_1.VOB", smallMovie({ 5, 5 }).bytes);
    run.put("VTS_02_1.VOB", Bytes(second.bytes.begin(), second.bytes.begin() + 4 * 2048));
    run.put("VTS_02_2.VOB", Bytes(second.bytes.begin() + 4 * 2048, second.bytes.end()));
    return plainProject(run, 2) + "source1=" + run.text("VTS_02_2.VOB") + "\n";
}

const std::vector<ProgressCall> CALLS = {
    { 23, 0, 1 },    // 1 menus of set 1, of which there are none
    { 23, 0, 2 },    // 2 scan: sector 0 of 10
    { 23, 2, 2 },    // 3       sector 5: 5 x 32768 / 10 = 16384; 8 x 16384 / 65536
    { 23, 4, 2 },    // 4 navigation packs: unit 0 of 2: 32768
    { 23, 6, 2 },    // 5                   unit 1: 49152
    { 23, 8, 2 },    // 6 the movie is done
    { 23, 9, 3 },    // 7 IFO
    { 23, 10, 4 },   // 8 backup
    { 23, 10, 1 },   // 9 set 2 begins at 10
    { 23, 10, 2 },   // 10 scan: sector 0 of 6
    { 23, 12, 2 },   // 11       sector 4: 4 x 32768 / 6 = 21845; 9 x 21845 / 65536 = 2.99
    { 23, 14, 2 },   // 12 navigation packs: 9 x 32768 / 65536 = 4.5
    { 23, 16, 2 },   // 13                   9 x 49152 / 65536 = 6.75
    { 23, 19, 2 },   // 14
    { 23, 20, 3 },   // 15
    { 23, 21, 4 },   // 16
    { 23, 21, 5 },   // 17 menus of the manager, of which there are none
    { 23, 22, 6 },   // 18
    { 23, 23, 7 },   // 19
};

}   // namespace

TEST(Progress, EveryCallOfASmallDisc)
{
    DiscRun run;
    ASSERT_EQ(0u, run.author(twoTitleSets(run)));
    EXPECT_EQ(CALLS, run.calls);
}

TEST(Progress, SameCallsThroughTheNarrowForm)
{
    DiscRun run;
    run.narrow = true;
    ASSERT_EQ(0u, run.author(twoTitleSets(run)));
    EXPECT_EQ(CALLS, run.calls);
}

TEST(Progress, SkippedAndScannedTitleSets)
{
    DiscRun run;
    const std::string project = twoTitleSets(run);
    ASSERT_EQ(0u, run.author(project));
    // Set 1 is skipped and adds nothing; set 2 takes its list from a scan file, but its sources count all the same.
    run.put("two.scan", fromHex("01 00 00 00 06 00 00 00"));
    ASSERT_EQ(0u, run.author(project + "streamscanfile=" + run.text("two.scan") + "\n"));
    EXPECT_EQ(std::vector<ProgressCall>(CALLS.begin(), CALLS.begin() + 9),
              std::vector<ProgressCall>(run.calls.begin(), run.calls.begin() + 9));
    const std::vector<ProgressCall> second = { { 23, 10, 1 }, { 23, 19, 2 }, { 23, 20, 3 }, { 23, 21, 4 },
                                               { 23, 21, 5 }, { 23, 22, 6 }, { 23, 23, 7 } };
    EXPECT_EQ(second, std::vector<ProgressCall>(run.calls.begin() + 8, run.calls.end()));

    std::string skipped = project;
    skipped.replace(skipped.find("[VTS_1]\n"), 8, "[VTS_1]\nskipvts=1\n");
    ASSERT_EQ(0u, run.author(skipped + "streamscanfile=" + run.text("two.scan") + "\n"));
    EXPECT_EQ(
        (std::vector<ProgressCall>{
            { 13, 0, 1 }, { 13, 9, 2 }, { 13, 10, 3 }, { 13, 11, 4 }, { 13, 11, 5 }, { 13, 12, 6 }, { 13, 13, 7 } }),
        run.calls);
}

// A source that is missing costs nothing in the sum; the run fails where it is opened.
TEST(Progress, MissingSource)
{
    DiscRun run;
    EXPECT_EQ(0x84000FB4u, run.author(plainProject(run, 1)));
    EXPECT_EQ((std::vector<ProgressCall>{ { 4, 0, 1 } }), run.calls);
}

TEST(Progress, TinySourceCostsAtLeastThreeUnits)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", smallMovie({ 2 }).bytes);   // (4096 + 16383) / 4096 = 4
    ASSERT_EQ(0u, run.author(plainProject(run, 1)));
    ASSERT_FALSE(run.calls.empty());
    EXPECT_EQ(8u, run.calls[0].total);
    EXPECT_EQ((ProgressCall{ 8, 8, 7 }), run.calls.back());
}

TEST(Progress, NoCallback)
{
    DiscRun with, without;
    without.nullProgress = true;
    ASSERT_EQ(0u, with.author(twoTitleSets(with)));
    ASSERT_EQ(0u, without.author(twoTitleSets(without)));
    EXPECT_TRUE(without.calls.empty());
    EXPECT_EQ(takeSnapshot(with.folder.root / "target"), takeSnapshot(without.folder.root / "target"));
}

// A run cancelled at its n-th call makes no further one, and leaves what the steps before it have written.
TEST(Progress, CancelAtEveryCall)
{
    DiscRun whole;
    ASSERT_EQ(0u, whole.author(twoTitleSets(whole)));
    const struct {
        const char* file;
        uint64_t from;   // the first call at which it stands
    } files[] = {
        { "VTS_01_0.IFO", 7 },  { "VTS_01_0.BUP", 8 },  { "VTS_02_0.IFO", 15 },
        { "VTS_02_0.BUP", 16 }, { "VIDEO_TS.IFO", 18 }, { "VIDEO_TS.BUP", 19 },
    };
    for (uint64_t n = 1; n <= CALLS.size(); n++) {
        SCOPED_TRACE("call " + std::to_string(n));
        DiscRun run;
        const std::string project = twoTitleSets(run);
        const Bytes before1 = run.get("VTS_01_1.VOB"), before2 = run.get("VTS_02_1.VOB");
        run.cancelAt = n;
        run.cancelWith = n % 2 ? 1 : 0xFFFFFFFF;
        EXPECT_EQ(0x8400040Au, run.author(project));
        EXPECT_EQ(std::vector<ProgressCall>(CALLS.begin(), CALLS.begin() + std::ptrdiff_t(n)), run.calls);
        for (const auto& file : files) {
            EXPECT_EQ(n >= file.from, run.has(file.file)) << file.file;
            if (n >= file.from && run.has(file.file)) {
                EXPECT_EQ(whole.get(file.file), run.get(file.file)) << file.file;
            }
        }
        EXPECT_FALSE(run.has("VTS_01_0.VOB"));
        EXPECT_FALSE(run.has("VIDEO_TS.VOB"));
        // The first navigation pack of a set is filled behind call 4, or 12, of the second pass.
        EXPECT_EQ(n <= 4, before1 == run.get("VTS_01_1.VOB"));
        EXPECT_EQ(n <= 12, before2 == run.get("VTS_02_1.VOB"));
        EXPECT_FALSE(fileExists(run.log));   // a cancel is not logged
    }
}

TEST(Progress, RunAfterACancelledOneIsWhole)
{
    DiscRun whole, run;
    ASSERT_EQ(0u, whole.author(twoTitleSets(whole)));
    const std::string project = twoTitleSets(run);
    for (const uint64_t n : { uint64_t(5), uint64_t(13), uint64_t(18) }) {
        run.cancelAt = n;
        EXPECT_EQ(0x8400040Au, run.author(project));
    }
    run.cancelAt = 0;
    ASSERT_EQ(0u, run.author(project));
    EXPECT_EQ(takeSnapshot(whole.folder.root / "target"), takeSnapshot(run.folder.root / "target"));
}

// The user value comes back with all its bits.
static uint64_t userSeen;
static uint32_t noteUser(uint32_t, uint32_t, uint32_t, uint64_t user)
{
    userSeen = user;
    return 1;
}

TEST(Progress, UserValue)
{
    DiscRun run;
    writeFile(run.project, twoTitleSets(run));
    userSeen = 0;
    EXPECT_EQ(0x8400040Au, ParseDVDDesc(toUtf8(run.project).c_str(), toUtf8(run.target).c_str(), "", noteUser,
                                        0xFEDCBA9876543210, toUtf8(run.log).c_str()));
    EXPECT_EQ(0xFEDCBA9876543210u, userSeen);
}
