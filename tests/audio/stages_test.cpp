// The stages of a DVD-Audio run one by one: the files that each leaves, the numbers that it hands on, what its host is
// told.
#include "audio/stages.h"

#include "tests/audio/table_run.h"
#include "tests/support/elementary.h"
#include "tests/support/log.h"
#include "tests/support/packs.h"

namespace fs = std::filesystem;

namespace {

typedef std::vector<StageCall> Calls;

std::vector<std::string> filesOf(const TempDir& folder)
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.root)) {
        names.push_back(toUtf8(entry.path().filename().u16string()));
    }
    std::sort(names.begin(), names.end());
    return names;
}

typedef std::vector<std::string> Names;

uint64_t authorTitleSet(TableRun& run, uint64_t number = 1)
{
    return CreateAudioTitleSet(run.context.get(), number, run.folder.prefix().c_str());
}

// Title sets whose sound is finished; their information files, ATS_nn.nfo, lie in the folder.
void finish(TableRun& run, uint64_t number, const std::string& info)
{
    const std::u16string path = run.folder / toWide((number < 10 ? "ATS_0" : "ATS_") + std::to_string(number) + ".nfo");
    if (!info.empty()) writeFile(path, info);
    AudioTitleSetDesc& set = run.titleSet(number);
    set.isNfo = 1;
    for (uint64_t i = 1; i <= set.trackCount; i++) run.setChannel(number, i, path);
}

// A track of a few stereo samples, in a file that one pack holds.
void putWave(TableRun& run, uint64_t number, uint64_t track)
{
    const std::u16string path = run.folder / u"sound.wav";
    writeFile(path, waveHeader({ .dataBytes = 400 }) + filler(400));
    run.setChannel(number, track, path);
    AudioTrackDesc& desc = run.titleSet(number).tracks[track - 1];
    desc.channelCount = desc.channels1 = 2;
    desc.endSample = 99;
}

}   // namespace

// ---- title sets ---------------------------------------------------------------------------------------------------

TEST(TitleSetStage, NumberOutOfRange)
{
    for (const uint64_t number : { uint64_t(0), uint64_t(100), uint64_t(101), ~uint64_t(0) }) {
        TableRun run(STANDARD_PAL, { { {} } });
        EXPECT_EQ(0x84001776u, authorTitleSet(run, number)) << number;
        EXPECT_EQ(Names(), filesOf(run.folder));
        EXPECT_EQ(Calls(), run.calls);
    }
}

TEST(TitleSetStage, FinishedSound)
{
    TableRun run(STANDARD_PAL, { { { .playTime = 1000 }, { .playTime = 200 }, { .playTime = 30 } } });
    finish(run, 1,
           "[TRACKINFO_01]\nTrackBlockSize=100\nTrackFirstCellPts=0\n[TRACKINFO_02]\nTrackBlockSize=17\n"
           "TrackFirstCellPts=5000\n[TRACKINFO_03]\nTrackBlockSize=3\nTrackFirstCellPts=70000\n");
    run.track(1).blockStart = run.track(2).blockStart = 999;
    ASSERT_EQ(0u, authorTitleSet(run));
    EXPECT_EQ((Calls{ { 127, 113, 2 }, { 127, 114, 3 } }), run.calls);
    // No AOB is made: it is there already, or elsewhere.
    EXPECT_EQ((Names{ "ATS_01.nfo", "ATS_01_0.BUP", "ATS_01_0.IFO" }), filesOf(run.folder));
    EXPECT_EQ(2u, run.titleSet(1).ifoSectors);
    const struct {
        uint64_t firstPts, start, size;
    } tracks[] = { { 0, 0, 100 }, { 5000, 100, 17 }, { 70000, 117, 3 } };
    for (uint64_t i = 0; i < 3; i++) {
        EXPECT_EQ(tracks[i].firstPts, run.track(i + 1).firstCellPts);
        EXPECT_EQ(tracks[i].start, run.track(i + 1).blockStart);
        EXPECT_EQ(tracks[i].size, run.track(i + 1).blockSize);
    }
    const Bytes ifo = readFile(run.folder / u"ATS_01_0.IFO");
    expectAt(ifo, 12, "00 00 00 7B", "last sector");   // 3 + 120
    expectAt(ifo, 2080 + 6, "00 00 00 00 00 00 03 E8", "track 1");
    expectAt(ifo, 2080 + 26, "00 00 13 88 00 00 00 C8", "track 2");
    expectAt(ifo, 2080 + 46, "00 01 11 70 00 00 00 1E", "track 3");
    expectAt(ifo, 2140 + 4, "00 00 00 00 00 00 00 63", "sectors 1");
    expectAt(ifo, 2140 + 16, "00 00 00 64 00 00 00 74", "sectors 2");
    expectAt(ifo, 2140 + 28, "00 00 00 75 00 00 00 77", "sectors 3");
    EXPECT_EQ(ifo, readFile(run.folder / u"ATS_01_0.BUP"));
    EXPECT_FALSE(fileExists(run.logPath));
}

// Without the information file there are no packs, and no failure.
TEST(TitleSetStage, InformationThatIsNotThere)
{
    for (const char* info : { "", "[TRACKINFO_01]\n", "[TRACKINFO_03]\nTrackBlockSize=8\n" }) {
        TableRun run(STANDARD_PAL, { { { .playTime = 5 }, { .playTime = 6 } } });
        finish(run, 1, info);
        ASSERT_EQ(0u, authorTitleSet(run)) << info;
        const Bytes ifo = readFile(run.folder / u"ATS_01_0.IFO");
        expectAt(ifo, 12, "00 00 00 03", "last sector");
        expectAt(ifo, 2080 + 6, "00 00 00 00 00 00 00 05", "track 1");
        expectAt(ifo, 2120, "01 00 00 00 00 00 00 00 FF FF FF FF", "its sectors");
        expectAt(ifo, 2132, "01 00 00 00 00 00 00 00 FF FF FF FF", "those of track 2");
    }
}

// Each title set counts its packs from 0 and asks its own file.
TEST(TitleSetStage, SecondOfTwo)
{
    TableRun run(STANDARD_PAL, { { {} }, { {}, {} } });
    finish(run, 1, "[TRACKINFO_01]\nTrackBlockSize=1000\n");
    finish(run, 2, "[TRACKINFO_01]\nTrackBlockSize=5\n[TRACKINFO_02]\nTrackBlockSize=6\n");
    ASSERT_EQ(0u, authorTitleSet(run, 2));
    EXPECT_EQ((Calls{ { 229, 215, 2 }, { 229, 216, 3 } }), run.calls);
    EXPECT_EQ((Names{ "ATS_01.nfo", "ATS_02.nfo", "ATS_02_0.BUP", "ATS_02_0.IFO" }), filesOf(run.folder));
    expectAt(readFile(run.folder / u"ATS_02_0.IFO"), 2120, "01 00 00 00 00 00 00 00 00 00 00 04", "sectors");
    expectAt(readFile(run.folder / u"ATS_02_0.IFO"), 2132, "01 00 00 00 00 00 00 05 00 00 00 0A", "sectors");
    EXPECT_EQ(0u, run.titleSet(1).ifoSectors);
    EXPECT_EQ(2u, run.titleSet(2).ifoSectors);
}

TEST(TitleSetStage, NumberNinetyNine)
{
    TableRun run(STANDARD_PAL, std::vector<std::vector<TableTrack>>(99));
    finish(run, 99, "");
    ASSERT_EQ(0u, authorTitleSet(run, 99));
    EXPECT_EQ((Calls{ { 10123, 10109, 2 }, { 10123, 10110, 3 } }), run.calls);   // 99 x 102 + 25; 99 x 102 + 11
    EXPECT_EQ((Names{ "ATS_99_0.BUP", "ATS_99_0.IFO" }), filesOf(run.folder));
}

TEST(TitleSetStage, WaveFiles)
{
    TableRun run(STANDARD_PAL, { { {}, {} } });
    putWave(run, 1, 1);
    putWave(run, 1, 2);
    ASSERT_EQ(0u, authorTitleSet(run));
    // Half of the tracks, all of them, then the stage itself
    EXPECT_EQ((Calls{ { 127, 62, 1 }, { 127, 112, 1 }, { 127, 112, 1 }, { 127, 113, 2 }, { 127, 114, 3 } }), run.calls);
    EXPECT_EQ((Names{ "ATS_01_0.BUP", "ATS_01_0.IFO", "ATS_01_1.AOB", "sound.wav" }), filesOf(run.folder));
    EXPECT_EQ(2u * 2048, readFile(run.folder / u"ATS_01_1.AOB").size());
    const Bytes ifo = readFile(run.folder / u"ATS_01_0.IFO");
    expectAt(ifo, 12, "00 00 00 05", "last sector");
    expectAt(ifo, 2120, "01 00 00 00 00 00 00 00 00 00 00 00", "sectors");
    expectAt(ifo, 2132, "01 00 00 00 00 00 00 01 00 00 00 01", "sectors");
}

// A title set without tracks has an AOB without packs.
TEST(TitleSetStage, WithoutTracks)
{
    TableRun run;
    ASSERT_EQ(0u, authorTitleSet(run));
    EXPECT_EQ((Calls{ { 127, 112, 1 }, { 127, 113, 2 }, { 127, 114, 3 } }), run.calls);
    EXPECT_EQ((Names{ "ATS_01_0.BUP", "ATS_01_0.IFO", "ATS_01_1.AOB" }), filesOf(run.folder));
    EXPECT_EQ(Bytes(), readFile(run.folder / u"ATS_01_1.AOB"));
}

TEST(TitleSetStage, CancelAtEveryCall)
{
    const struct {
        bool finished;
        uint64_t call;
        Names files;
    } cases[] = {
        { true, 1, { "ATS_01.nfo", "ATS_01_0.IFO" } },
        { true, 2, { "ATS_01.nfo", "ATS_01_0.BUP", "ATS_01_0.IFO" } },
        { false, 1, { "ATS_01_1.AOB", "sound.wav" } },   // of the track
        { false, 2, { "ATS_01_1.AOB", "sound.wav" } },   // of the stage
        { false, 3, { "ATS_01_0.IFO", "ATS_01_1.AOB", "sound.wav" } },
        { false, 4, { "ATS_01_0.BUP", "ATS_01_0.IFO", "ATS_01_1.AOB", "sound.wav" } },
    };
    for (const auto& c : cases) {
        TableRun run(STANDARD_PAL, { { {} } });
        if (c.finished) {
            finish(run, 1, "[TRACKINFO_01]\n");
        } else {
            putWave(run, 1, 1);
        }
        run.cancelAt = c.call;
        EXPECT_EQ(0x8400040Au, authorTitleSet(run)) << c.call;
        EXPECT_EQ(c.call, run.calls.size());
        EXPECT_EQ(c.files, filesOf(run.folder)) << c.call;
    }
}

TEST(TitleSetStage, WithoutCallback)
{
    TableRun run(STANDARD_PAL, { { {} } });
    run.context->head.progressCallback = nullptr;
    putWave(run, 1, 1);
    EXPECT_EQ(0u, authorTitleSet(run));
    EXPECT_EQ((Names{ "ATS_01_0.BUP", "ATS_01_0.IFO", "ATS_01_1.AOB", "sound.wav" }), filesOf(run.folder));
}

TEST(TitleSetStage, WhatCannotBeMade)
{
    const struct {
        const char* inTheWay;   // a folder of this name
        bool finished;
        uint64_t result;
        Calls calls;
        Names files;
    } cases[] = {
        { "ATS_01_1.AOB", false, 0x84001784, {}, { "ATS_01_1.AOB", "sound.wav" } },
        { "ATS_01_1.AOB",
          true,
          0,
          { { 127, 113, 2 }, { 127, 114, 3 } },
          { "ATS_01.nfo", "ATS_01_0.BUP", "ATS_01_0.IFO", "ATS_01_1.AOB" } },
        { "ATS_01_0.IFO", true, 0x8400177F, {}, { "ATS_01.nfo", "ATS_01_0.IFO" } },
        { "ATS_01_0.BUP",
          true,
          0,
          { { 127, 113, 2 }, { 127, 114, 3 } },
          { "ATS_01.nfo", "ATS_01_0.BUP", "ATS_01_0.IFO" } },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.inTheWay);
        TableRun run(STANDARD_PAL, { { {} } });
        fs::create_directory(fs::path(run.folder / toWide(c.inTheWay)));
        if (c.finished) {
            finish(run, 1, "[TRACKINFO_01]\n");
        } else {
            putWave(run, 1, 1);
        }
        EXPECT_EQ(c.result, authorTitleSet(run));
        EXPECT_EQ(c.calls, run.calls);
        EXPECT_EQ(c.files, filesOf(run.folder));
        EXPECT_TRUE(fs::is_empty(fs::path(run.folder / toWide(c.inTheWay))));
        EXPECT_FALSE(fileExists(run.logPath));
    }
}

// ---- stills, manager, AUDIO_PP.IFO ----------------------------------------------------------------------------------

TEST(StillStage, WithoutStills)
{
    TableRun run;
    run.context->hasAsvs = 1;
    ASSERT_EQ(0u, CreateStillManager(run.context.get(), run.folder.prefix().c_str()));
    EXPECT_EQ((Calls{ { 127, 10, 4 }, { 127, 11, 5 }, { 127, 12, 6 } }), run.calls);
    EXPECT_EQ((Names{ "AUDIO_SV.BUP", "AUDIO_SV.IFO" }), filesOf(run.folder));
    const Bytes ifo = readFile(run.folder / u"AUDIO_SV.IFO");
    expectAt(ifo, 16, "00 00 00 02 FF FF FF FF", "VOB");
    EXPECT_EQ(ifo, readFile(run.folder / u"AUDIO_SV.BUP"));
}

TEST(ManagerStage, WithoutMenus)
{
    TableRun run(STANDARD_PAL, { { { .playTime = 3 } }, {}, {} });
    ASSERT_EQ(0u, CreateAudioManager(run.context.get(), run.folder.prefix().c_str()));
    EXPECT_EQ((Calls{ { 331, 328, 7 }, { 331, 329, 8 }, { 331, 330, 9 } }), run.calls);   // 3 x 102 + 22
    EXPECT_EQ((Names{ "AUDIO_TS.BUP", "AUDIO_TS.IFO" }), filesOf(run.folder));
    EXPECT_EQ(6u, run.context->amgSectors);
    const Bytes ifo = readFile(run.folder / u"AUDIO_TS.IFO");
    EXPECT_EQ(6144u, ifo.size());
    EXPECT_EQ(ifo, readFile(run.folder / u"AUDIO_TS.BUP"));
}

TEST(AudioPpStage, WritesAndReports)
{
    TableRun run(STANDARD_PAL, { { {} }, {} });
    ASSERT_EQ(0u, orvCreateAudioPp(run.context.get(), run.folder.prefix().c_str()));
    EXPECT_EQ((Calls{ { 229, 229, 10 } }), run.calls);
    EXPECT_EQ((Names{ "AUDIO_PP.IFO" }), filesOf(run.folder));
}

TEST(Stages, CancelAtEveryCall)
{
    struct Stage {
        const char* what;
        uint64_t (*author)(AudioDiscContext* context, const char16_t* targetPath);
        std::vector<Names> files;   // at each call
    };
    const Stage stages[] = {
        { "stills", CreateStillManager, { {}, { "AUDIO_SV.IFO" }, { "AUDIO_SV.BUP", "AUDIO_SV.IFO" } } },
        { "manager", CreateAudioManager, { {}, { "AUDIO_TS.IFO" }, { "AUDIO_TS.BUP", "AUDIO_TS.IFO" } } },
        { "AUDIO_PP.IFO", orvCreateAudioPp, { { "AUDIO_PP.IFO" } } },
    };
    for (const Stage& stage : stages) {
        for (uint64_t n = 1; n <= stage.files.size(); n++) {
            TableRun run(STANDARD_PAL, { { {} } });
            run.cancelAt = n;
            EXPECT_EQ(0x8400040Au, stage.author(run.context.get(), run.folder.prefix().c_str())) << stage.what;
            EXPECT_EQ(stage.files[n - 1], filesOf(run.folder)) << stage.what << n;
            EXPECT_EQ(n, run.calls.size()) << stage.what;
        }
    }
}

TEST(Stages, WhatCannotBeMade)
{
    struct Stage {
        const char* inTheWay;
        uint64_t (*author)(AudioDiscContext* context, const char16_t* targetPath);
        uint64_t result;
        uint64_t calls;
    };
    const Stage stages[] = {
        { "AUDIO_SV.IFO", CreateStillManager, 0x8400178B, 1 }, { "AUDIO_SV.BUP", CreateStillManager, 0, 3 },
        { "AUDIO_SV.VOB", CreateStillManager, 0, 3 },   // nobody makes it without stills
        { "AUDIO_TS.IFO", CreateAudioManager, 0x840007D5, 1 }, { "AUDIO_TS.BUP", CreateAudioManager, 0, 3 },
        { "AUDIO_TS.VOB", CreateAudioManager, 0, 3 },          { "AUDIO_PP.IFO", orvCreateAudioPp, 0x8400177D, 0 },
    };
    for (const Stage& stage : stages) {
        TableRun run(STANDARD_PAL, { { {} } });
        fs::create_directory(fs::path(run.folder / toWide(stage.inTheWay)));
        EXPECT_EQ(stage.result, stage.author(run.context.get(), run.folder.prefix().c_str())) << stage.inTheWay;
        EXPECT_EQ(stage.calls, run.calls.size()) << stage.inTheWay;
        EXPECT_FALSE(fileExists(run.logPath)) << stage.inTheWay;
    }
}

// The target is put before the names as it stands.
TEST(Stages, TargetIsAPrefix)
{
    TableRun run(STANDARD_PAL, { { {} } });
    finish(run, 1, "[TRACKINFO_01]\n");
    const std::u16string prefix = run.folder.prefix() + u"disc_";
    ASSERT_EQ(0u, CreateStillManager(run.context.get(), prefix.c_str()));
    ASSERT_EQ(0u, CreateAudioTitleSet(run.context.get(), 1, prefix.c_str()));
    ASSERT_EQ(0u, CreateAudioManager(run.context.get(), prefix.c_str()));
    ASSERT_EQ(0u, orvCreateAudioPp(run.context.get(), prefix.c_str()));
    EXPECT_EQ((Names{ "ATS_01.nfo", "disc_ATS_01_0.BUP", "disc_ATS_01_0.IFO", "disc_AUDIO_PP.IFO", "disc_AUDIO_SV.BUP",
                      "disc_AUDIO_SV.IFO", "disc_AUDIO_TS.BUP", "disc_AUDIO_TS.IFO" }),
              filesOf(run.folder));
}

// A name that the formatter would have to cut is no name: what can't be made is told as if it could not be opened. All
// names have twelve characters, of 1023 at most.
TEST(Stages, TargetThatIsTooLong)
{
    struct Stage {
        const char* what;
        uint64_t (*author)(TableRun& run, const char16_t* targetPath);
        uint64_t result;
        const char16_t* logged;
    };
    const auto stills = [](TableRun& run, const char16_t* target) {
        return CreateStillManager(run.context.get(), target);
    };
    const auto manager = [](TableRun& run, const char16_t* target) {
        return CreateAudioManager(run.context.get(), target);
    };
    const Stage stages[] = {
        { "a still",
          [](TableRun& run, const char16_t* target) {
              run.addStill();
              return CreateStillManager(run.context.get(), target);
          },
          0x840007D3, u"Failed to open file in <CreateStillManager>: " },
        { "no stills", stills, 0x8400178B, nullptr },
        { "sound",
          [](TableRun& run, const char16_t* target) { return CreateAudioTitleSet(run.context.get(), 1, target); },
          0x84001784, nullptr },
        { "finished sound",
          [](TableRun& run, const char16_t* target) {
              run.titleSet(1).isNfo = 1;
              return CreateAudioTitleSet(run.context.get(), 1, target);
          },
          0x8400177F, nullptr },
        { "a menu",
          [](TableRun& run, const char16_t* target) {
              run.context->amgMenuCount = 1;
              return CreateAudioManager(run.context.get(), target);
          },
          0x840007D3, u"Failed to open file in <CreateAudioManager>: " },
        { "no menus", manager, 0x840007D5, nullptr },
        { "AUDIO_PP.IFO",
          [](TableRun& run, const char16_t* target) { return orvCreateAudioPp(run.context.get(), target); }, 0x8400177D,
          nullptr },
    };
    for (const Stage& stage : stages) {
        for (const uint64_t characters : { 1012u, 1013u, 5000u }) {
            TableRun run(STANDARD_PAL, { { {} } });
            std::u16string target = run.folder.prefix();
            target.resize(characters, u'x');
            EXPECT_EQ(stage.result, stage.author(run, target.c_str())) << stage.what << ", " << characters;
            std::vector<LogEntry> log;
            if (stage.logged) log.push_back({ stage.result, stage.logged + target });
            EXPECT_TRUE(logHolds(run.logPath, log)) << stage.what << ", " << characters;
            EXPECT_EQ(stage.logged ? 1u : 0u, filesOf(run.folder).size()) << stage.what;
        }
    }
}

// The sectors of the tables before go into AUDIO_PP.IFO.
TEST(Stages, NumbersAreHandedOn)
{
    std::vector<TableTrack> many(70);
    TableRun run(STANDARD_PAL, { many });
    finish(run, 1, "[TRACKINFO_01]\nTrackBlockSize=4\n");
    ASSERT_EQ(0u, CreateAudioTitleSet(run.context.get(), 1, run.folder.prefix().c_str()));
    ASSERT_EQ(0u, CreateAudioManager(run.context.get(), run.folder.prefix().c_str()));
    ASSERT_EQ(0u, orvCreateAudioPp(run.context.get(), run.folder.prefix().c_str()));
    const Bytes pp = readFile(run.folder / u"AUDIO_PP.IFO");
    expectAt(pp, 18 + 38, "00 00 00 49 00 00 00 49 00 00 00 4C", "sectors of track 1");   // 6 + 64 + 3
    expectAt(pp, 70 + 38, "00 00 00 4D 00 00 00 4D 00 00 00 4C", "sectors of track 2");
}
