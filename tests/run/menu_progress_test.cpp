// What a host is told while menus are made, call by call, and how it cancels then.
#include "tests/run/menu_project.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

namespace {

// A title of 20 sectors, 13 units: (40960 + 16383) / 4096.
// Title set: a still of 40000 bytes, 13 units, in a VOB of 1 + 20 + 1 sectors; an animated menu of three units and 6
// sectors, 6 units, in 7 sectors. 19 units; with the title, IFO and backup 34.
// Manager: an animated pair of two units and 4 sectors, 5 units, in 6 sectors; a still of 100 bytes, 4 units, in 3; a
// still pair of 5000 bytes, 5 units, in 1 + 3 + 2. 14 units; with IFO and backup 50 of the whole run.
MenuDisc fiveMenus()
{
    MenuDisc disc;
    disc.titleSet = { { .background = stillAsset(40000) },
                      { .background = shortUnits(3).bytes, .keys = "type=animated\n" } };
    disc.manager = {
        { .background = shortUnits(2).bytes, .letterbox = bmpFile(ByteImage(576)), .keys = "type=animated\nloop=1\n" },
        {},
        { .background = stillAsset(5000), .letterbox = bmpFile(ByteImage(576)) }
    };
    return disc;
}

const std::vector<ProgressCall> CALLS = {
    { 50, 0, 1 },    // 1 first menu: 0
    { 50, 4, 1 },    // 2 second menu: 1 x 32768 / 2; 19 x 16384 / 65536 = 4.75
    { 50, 9, 1 },    // 3 scan: sector 0 of 29: 32768; 9.5
    { 50, 16, 1 },   // 4       sector 22: 22 x 32768 / 29 + 32768 = 57626; 16.7
    { 50, 17, 1 },   // 5       sector 25: 61016; 17.7
    { 50, 18, 1 },   // 6       sector 27: 63276; 18.3
    { 50, 19, 1 },   // 7 the menus are done
    { 50, 19, 2 },   // 8 the title
    { 50, 20, 2 },   // 9
    { 50, 22, 2 },   // 10
    { 50, 23, 2 },   // 11
    { 50, 25, 2 },   // 12
    { 50, 27, 2 },   // 13
    { 50, 28, 2 },   // 14
    { 50, 30, 2 },   // 15
    { 50, 32, 2 },   // 16
    { 50, 33, 3 },   // 17 IFO
    { 50, 34, 4 },   // 18 backup
    { 50, 34, 5 },   // 19 manager, first menu: 0
    { 50, 36, 5 },   // 20 second: 32768 / 3 = 10922; 14 x 10922 / 65536 = 2.3
    { 50, 38, 5 },   // 21 third: 21845; 4.7
    { 50, 41, 5 },   // 22 scan: sector 0 of 15: 32768; 7
    { 50, 42, 5 },   // 23       sector 4: 8738 + 32768; 8.9
    { 50, 43, 5 },   // 24       sector 6: 13107 + 32768; 9.8
    { 50, 45, 5 },   // 25       sector 9: 19660 + 32768; 11.2
    { 50, 48, 5 },   // 26 the menus are done
    { 50, 49, 6 },   // 27 IFO
    { 50, 50, 7 },   // 28 backup
};

}   // namespace

TEST(MenuProgress, EveryCallOfADiscWithMenus)
{
    DiscRun run;
    ASSERT_EQ(0u, run.author(menuProject(run, fiveMenus())));
    EXPECT_EQ(CALLS, run.calls);
    expectSoundDisc(run);
}

TEST(MenuProgress, SameCallsThroughTheNarrowForm)
{
    DiscRun run;
    run.narrow = true;
    ASSERT_EQ(0u, run.author(menuProject(run, fiveMenus())));
    EXPECT_EQ(CALLS, run.calls);
}

TEST(MenuProgress, NoCallback)
{
    DiscRun with, without;
    without.nullProgress = true;
    ASSERT_EQ(0u, with.author(menuProject(with, fiveMenus())));
    ASSERT_EQ(0u, without.author(menuProject(without, fiveMenus())));
    EXPECT_EQ(takeSnapshot(with.folder.root / "target"), takeSnapshot(without.folder.root / "target"));
}

// A run cancelled at its n-th call makes no further one; the units of its menus are gone, what it has written stays.
TEST(MenuProgress, CancelAtEveryCall)
{
    const TempFolder temporary;
    DiscRun whole;
    ASSERT_EQ(0u, whole.author(menuProject(whole, fiveMenus())));
    EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles());
    const struct {
        const char* file;
        uint64_t opened;   // the first call at which it is there
        uint64_t done;     // the first call at which it is as it stays
    } files[] = {
        { "VTS_01_0.VOB", 1, 7 },   { "VTS_01_0.IFO", 17, 17 }, { "VTS_01_0.BUP", 18, 18 },
        { "VIDEO_TS.VOB", 19, 26 }, { "VIDEO_TS.IFO", 27, 27 }, { "VIDEO_TS.BUP", 28, 28 },
    };
    for (uint64_t n = 1; n <= CALLS.size(); n++) {
        SCOPED_TRACE("call " + std::to_string(n));
        DiscRun run;
        run.cancelAt = n;
        run.cancelWith = n % 2 ? 1 : 0x80000000;
        EXPECT_EQ(0x8400040Au, run.author(menuProject(run, fiveMenus())));
        EXPECT_EQ(std::vector<ProgressCall>(CALLS.begin(), CALLS.begin() + std::ptrdiff_t(n)), run.calls);
        EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles());
        EXPECT_FALSE(fileExists(run.log));   // a cancel is not logged
        for (const auto& file : files) {
            EXPECT_EQ(n >= file.opened, run.has(file.file)) << file.file;
            if (n < file.opened || !run.has(file.file)) continue;
            EXPECT_EQ(n >= file.done, whole.get(file.file) == run.get(file.file)) << file.file;
        }
    }
}

// What stands in the VOB when a menu has been laid into it: its packs, behind those of the menus before, with
// placeholders where navigation packs will be.
TEST(MenuProgress, VobOfACancelledRun)
{
    const struct {
        uint64_t call;
        const char* vob;
        uint64_t sectors;
    } cases[] = { { 1, "VTS_01_0.VOB", 22 },  { 2, "VTS_01_0.VOB", 29 }, { 3, "VTS_01_0.VOB", 29 },
                  { 6, "VTS_01_0.VOB", 29 },  { 19, "VIDEO_TS.VOB", 6 }, { 20, "VIDEO_TS.VOB", 9 },
                  { 21, "VIDEO_TS.VOB", 15 }, { 25, "VIDEO_TS.VOB", 15 } };
    for (const auto& c : cases) {
        DiscRun run;
        run.cancelAt = c.call;
        EXPECT_EQ(0x8400040Au, run.author(menuProject(run, fiveMenus())));
        const Bytes vob = run.get(c.vob);
        EXPECT_EQ(c.sectors * 2048, vob.size()) << c.call;
        // A padding packet of 2004 bytes in a still's first sector
        const uint64_t still = std::string(c.vob) == "VTS_01_0.VOB" ? 0 : 6 * 2048;
        if (vob.size() > still) {
            expectAt(vob, still + 14, "00 00 01 BB 00 12", "system header");
            expectAt(vob, still + 38, "00 00 01 BE 07 D4", "padding");
            EXPECT_EQ(Bytes(2004, 0xFF), slice(vob, still + 44, 2004)) << c.call;
        }
    }
}

TEST(MenuProgress, RunAfterACancelledOneIsWhole)
{
    DiscRun whole, run;
    ASSERT_EQ(0u, whole.author(menuProject(whole, fiveMenus())));
    const std::string project = menuProject(run, fiveMenus());
    for (const uint64_t n : { 1u, 2u, 5u, 20u, 24u }) {
        run.cancelAt = n;
        EXPECT_EQ(0x8400040Au, run.author(project));
    }
    run.cancelAt = 0;
    ASSERT_EQ(0u, run.author(project));
    EXPECT_EQ(takeSnapshot(whole.folder.root / "target"), takeSnapshot(run.folder.root / "target"));
}

// The menu VOB is not among what is measured beforehand: a missing background costs nothing.
TEST(MenuProgress, BackgroundThatIsNotThereCostsNothing)
{
    DiscRun run;
    const std::string project = menuProject(run, discOf(MENU_DOMAINS[1], { {} }));
    std::filesystem::remove(std::filesystem::path(assetPath(run, "VMG_MENU1", ".mpg")));
    EXPECT_NE(0u, run.author(project));
    ASSERT_FALSE(run.calls.empty());
    EXPECT_EQ(17u, run.calls[0].total);                         // 13 + 2 + 2
    EXPECT_EQ((ProgressCall{ 17, 15, 4 }), run.calls.back());   // the title set's last
}
