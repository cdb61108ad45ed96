// DVD-Audio runs on a system that refuses: units that can't be opened again, files that can't grow, a VOB that is gone.
#include "tests/run/audio_project.h"
#include "tests/run/posix/system.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

#include <cerrno>

namespace {

const std::vector<std::string> NONE = {};

struct Stage {
    const char* vob;
    AudioDisc disc;   // two pictures, the second with a unit of more than a sector
};
const Stage STAGES[] = {
    { "AUDIO_SV.VOB", { .stills = { { .hasSubPicture = true }, { .hasSubPicture = true, .moreBytes = 4000 } } } },
    { "AUDIO_TS.VOB", { .menus = { {}, { .units = 2, .moreBytes = 4000 } } } },
};

uint64_t authorLimited(AudioRun& run, const AudioDisc& disc, uint64_t bytes)
{
    writeFile(run.project, audioProject(run, disc));
    const FileLimit limit(bytes);
    return run.author();
}

}   // namespace

TEST(AudioSystem, UnitThatCannotBeOpened)
{
    for (const Stage& stage : STAGES) {
        for (const uint64_t opens : { 0u, 1u }) {
            const TempFolder temporary;
            AudioRun run;
            const std::string project = audioProject(run, stage.disc);
            systemAnswers.vanishingUnits = true;
            systemAnswers.opensBeforeIt = opens;
            const uint64_t result = run.author(project);
            systemAnswers = {};
            EXPECT_EQ(0x840007D1u, result) << stage.vob << opens;
            EXPECT_FALSE(fileExists(run.log)) << stage.vob;   // this one is not logged
            EXPECT_EQ(NONE, temporary.unitFiles()) << stage.vob;
        }
    }
}

// A unit of 1180 bytes where files may have 1000
TEST(AudioSystem, UnitThatCannotBeWritten)
{
    const TempFolder temporary;
    AudioRun run;
    EXPECT_EQ(0x840007EEu, authorLimited(run, STAGES[0].disc, 1000));
    EXPECT_FALSE(fileExists(run.log));
    EXPECT_EQ(NONE, temporary.unitFiles());
}

TEST(AudioSystem, StillsThatCannotBeWritten)
{
    // 4 sectors, then 1 + 3 + 1 + 1; each may be the one that has no room. The unit of the second has 5180 bytes.
    for (uint64_t sectors = 0; sectors < 10; sectors++) {
        const TempFolder temporary;
        AudioRun run;
        AudioDisc disc = STAGES[0].disc;
        if (sectors < 3) disc.stills = { { .bytes = 30000 } };
        EXPECT_EQ(0x8400178Au, authorLimited(run, disc, sectors * 2048 + 7)) << sectors;
        EXPECT_FALSE(fileExists(run.log)) << sectors;
        EXPECT_EQ(NONE, temporary.unitFiles()) << sectors;
        EXPECT_FALSE(run.has("AUDIO_SV.IFO")) << sectors;
    }
    AudioRun run;
    EXPECT_EQ(0x8400177Eu, authorLimited(run, STAGES[0].disc, 10 * 2048));   // enough, but not for AUDIO_PP.IFO
}

// A still before, three sectors; then an animated menu of 4 and 3 sectors of sub-picture
TEST(AudioSystem, MenusThatCannotBeWritten)
{
    for (uint64_t sectors = 3; sectors < 10; sectors++) {
        const TempFolder temporary;
        AudioRun run;
        EXPECT_EQ(0x840007E8u, authorLimited(run, STAGES[1].disc, sectors * 2048 + 7)) << sectors;
        EXPECT_FALSE(fileExists(run.log)) << sectors;
        EXPECT_EQ(NONE, temporary.unitFiles()) << sectors;
        EXPECT_FALSE(run.has("AUDIO_TS.IFO")) << sectors;
    }
}

// The table of each stage where the tables before have just enough room
TEST(AudioSystem, TablesThatCannotBeWritten)
{
    AudioDisc many;
    many.titleSets[0].tracks.resize(100);   // a table of two sectors
    AudioDisc waves;
    waves.titleSets[0].sound = Sound::WAVES;
    const struct {
        const char* what;
        AudioDisc disc;
        uint64_t bytes;
        uint64_t result;
        const char* last;   // the file that had no room
        const char* next;   // the one that was not begun
    } cases[] = {
        { "pack", waves, 2047, 0x84001785, "ATS_01_1.AOB", "ATS_01_0.IFO" },
        { "stills", { .asvs = true }, 4095, EFBIG, "AUDIO_SV.IFO", "AUDIO_SV.BUP" },
        { "title set", {}, 4095, 0x84001780, "ATS_01_0.IFO", "ATS_01_0.BUP" },
        { "title set of many tracks", many, 6143, 0x84001780, "ATS_01_0.IFO", "ATS_01_0.BUP" },
        { "manager", {}, 6143, EFBIG, "AUDIO_TS.IFO", "AUDIO_TS.BUP" },
        { "manager with menus", { .menus = { {} } }, 8191, EFBIG, "AUDIO_TS.IFO", "AUDIO_TS.BUP" },
        { "first copy", {}, 16383, 0x8400177E, "AUDIO_PP.IFO", nullptr },
        { "last copy", {}, 131071, 0x8400177E, "AUDIO_PP.IFO", nullptr },
    };
    for (const auto& c : cases) {
        AudioRun run;
        EXPECT_EQ(c.result, authorLimited(run, c.disc, c.bytes)) << c.what;
        EXPECT_FALSE(fileExists(run.log)) << c.what;
        EXPECT_TRUE(run.has(c.last)) << c.what;
        EXPECT_FALSE(c.next && run.has(c.next)) << c.what;
        EXPECT_NE(10u, run.calls.empty() ? 0 : run.calls.back().kind) << c.what;
    }
    AudioRun run;
    EXPECT_EQ(0u, authorLimited(run, {}, 131072));
}

// The VOB of the menus is opened again for its size, then for the scan.
TEST(AudioSystem, MenuVobThatVanishes)
{
    const std::u16string count = u"Failed to open file in <orvCountFilePacks>: ";
    const std::u16string scan = u"Failed to open file in <orvGetMovieInfo>: ";
    const std::vector<std::u16string> texts[] = { { count, scan }, { scan } };
    for (uint64_t opens = 0; opens < 2; opens++) {
        AudioRun run;
        const std::string project = audioProject(run, { .menus = { {} } });
        systemAnswers.vanishing = "AUDIO_TS.VOB";
        systemAnswers.opensBeforeIt = opens;
        const uint64_t result = run.author(project);
        systemAnswers = {};
        EXPECT_EQ(0x84000FB4u, result) << opens;
        std::vector<LogEntry> entries;
        for (const std::u16string& text : texts[opens])
            entries.push_back({ 0x84000FB4, text + run.inTarget("AUDIO_TS.VOB") });
        EXPECT_TRUE(logHolds(run.log, entries));
        EXPECT_FALSE(run.has("AUDIO_TS.IFO"));
    }
}
