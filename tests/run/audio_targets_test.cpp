// Targets of a DVD-Audio run that cannot be written.
#include "tests/run/audio_project.h"
#include "tests/video/table_bytes.h"

namespace fs = std::filesystem;

namespace {

AudioDisc discWithPictures()
{
    return { .titleSets = { { .sound = Sound::WAVES }, {} }, .menus = { {} }, .stills = { { .hasSubPicture = true } } };
}

// A folder of this name in the target, where a file has to be
void putInTheWay(const AudioRun& run, const char* name)
{
    fs::create_directory(fs::path(run.inTarget(name)));
}

bool stillInTheWay(const AudioRun& run, const char* name)
{
    const fs::path path(run.inTarget(name));
    return fs::is_directory(path) && fs::is_empty(path);
}

}   // namespace

TEST(AudioTarget, WhatCannotBeWritten)
{
    const struct {
        const char* inTheWay;
        uint64_t result;
        const char16_t* logged;   // of what goes to the log
        const char* lastWritten;
        const char* notWritten;
    } cases[] = {
        { "other", 0, nullptr, "AUDIO_PP.IFO", nullptr },
        { "AUDIO_SV.VOB", 0x840007D3, u"Failed to open file in <CreateStillManager>: ", nullptr, "AUDIO_SV.IFO" },
        { "AUDIO_SV.IFO", 0x8400178B, nullptr, "AUDIO_SV.VOB", "AUDIO_SV.BUP" },
        { "ATS_01_1.AOB", 0x84001784, nullptr, "AUDIO_SV.BUP", "ATS_01_0.IFO" },
        { "ATS_01_0.IFO", 0x8400177F, nullptr, "ATS_01_1.AOB", "ATS_01_0.BUP" },
        { "ATS_02_1.AOB", 0, nullptr, "AUDIO_PP.IFO", nullptr },   // finished: nobody makes it
        { "ATS_02_0.IFO", 0x8400177F, nullptr, "ATS_01_0.BUP", "ATS_02_0.BUP" },
        { "AUDIO_TS.VOB", 0x840007D3, u"Failed to open file in <CreateAudioManager>: ", "ATS_02_0.BUP",
          "AUDIO_TS.IFO" },
        { "AUDIO_TS.IFO", 0x840007D5, nullptr, "AUDIO_TS.VOB", "AUDIO_TS.BUP" },
        { "AUDIO_PP.IFO", 0x8400177D, nullptr, "AUDIO_TS.BUP", nullptr },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.inTheWay);
        AudioRun run;
        putInTheWay(run, c.inTheWay);
        EXPECT_EQ(c.result, run.author(audioProject(run, discWithPictures())));
        std::vector<LogEntry> log;
        if (c.logged) log.push_back({ c.result, c.logged + run.inTarget(c.inTheWay) });
        EXPECT_TRUE(logHolds(run.log, log));
        EXPECT_TRUE(!c.lastWritten || run.has(c.lastWritten));
        EXPECT_FALSE(c.notWritten && run.has(c.notWritten));
        EXPECT_TRUE(stillInTheWay(run, c.inTheWay));
        EXPECT_EQ(c.result == 0, !run.calls.empty() && run.calls.back().kind == 10);
    }
}

// The results of the copies are not looked at, and their calls are made.
TEST(AudioTarget, BackupThatCannotBeWritten)
{
    AudioRun whole;
    ASSERT_EQ(0u, whole.author(audioProject(whole, discWithPictures())));
    for (const char* const name : { "AUDIO_SV.BUP", "ATS_01_0.BUP", "ATS_02_0.BUP", "AUDIO_TS.BUP" }) {
        AudioRun run;
        putInTheWay(run, name);
        EXPECT_EQ(0u, run.author(audioProject(run, discWithPictures()))) << name;
        EXPECT_TRUE(stillInTheWay(run, name));
        EXPECT_EQ(whole.calls, run.calls) << name;
        EXPECT_FALSE(fileExists(run.log)) << name;
        Snapshot expected = takeSnapshot(whole.folder.root / "target"),
                 found = takeSnapshot(run.folder.root / "target");
        expected.erase(name);
        found.erase(std::string(name) + "/");
        EXPECT_EQ(expected, found) << name;
    }
}

// An AOB that can't be made is found by the first track; without tracks it is not found at all.
TEST(AudioTarget, AobThatCannotBeMade)
{
    for (const uint64_t tracks : { 0u, 1u, 3u }) {
        AudioRun run;
        putInTheWay(run, "ATS_01_1.AOB");
        const AudioDisc disc = { .titleSets = {
                                     { .tracks = std::vector<AudioTrack>(tracks), .sound = Sound::WAVES } } };
        EXPECT_EQ(tracks ? 0x84001784u : 0u, run.author(audioProject(run, disc))) << tracks;
        EXPECT_TRUE(stillInTheWay(run, "ATS_01_1.AOB"));
        EXPECT_FALSE(fileExists(run.log));
        EXPECT_EQ(tracks == 0, run.has("ATS_01_0.IFO"));
        EXPECT_EQ(tracks ? 0u : 7u, run.calls.size());
    }
}

TEST(AudioTarget, MissingFolderIsNotMade)
{
    const struct {
        AudioDisc disc;
        uint64_t result;
        const char* logged;   // the file that can't be opened
        const char16_t* text;
        uint64_t calls = 0;
    } cases[] = {
        { {}, 0x8400177F, nullptr, nullptr },
        { { .titleSets = { { .sound = Sound::WAVES } } }, 0x84001784, nullptr, nullptr },
        { { .asvs = true }, 0x8400178B, nullptr, nullptr, 1 },   // no stills are done
        { { .stills = { {} } }, 0x840007D3, "AUDIO_SV.VOB", u"Failed to open file in <CreateStillManager>: " },
    };
    for (const auto& c : cases) {
        AudioRun run;
        const std::string project = audioProject(run, c.disc);
        run.target = (run.folder.root / "missing" / "").u16string();
        EXPECT_EQ(c.result, run.author(project));
        std::vector<LogEntry> log;
        if (c.logged) log.push_back({ c.result, c.text + run.inTarget(c.logged) });
        EXPECT_TRUE(logHolds(run.log, log));
        EXPECT_FALSE(fileExists(run.target));
        EXPECT_EQ(c.calls, run.calls.size());
    }
}

TEST(AudioTarget, AFileInPlaceOfTheFolder)
{
    AudioRun run;
    const std::string project = audioProject(run, {});
    writeFile(run.folder / u"file", fromHex("01"));
    run.target = (run.folder.root / "file" / "").u16string();
    EXPECT_EQ(0x8400177Fu, run.author(project));
    EXPECT_EQ(fromHex("01"), readFile(run.folder / u"file"));
}
