// d2wOpenDisc: it finds a disc of either kind and makes its tracks available.
#include "tests/disc/extract_rig.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

// A disc of two tracks: stereo of 16 bits in sectors 0 and 1, 5.1 of 24 bits in sector 2.
Bytes twoTracks()
{
    return aobPack(counting(16)) + aobPack(counting(4, 0x40)) + aobPack(counting(36));
}

const std::vector<SamgTrack> TWO_TRACKS = { { 500, 501 }, { 502, 502, 20, 0x22, 0x11 } };

void expectTwoTracks(Extraction& run)
{
    EXPECT_EQ(run.count, 2u);
    ASSERT_EQ(run.infos.size(), 2u);
    EXPECT_EQ(textOf(run.infos[0].track), "0 1 90000 1 0 16 76 48000 0");
    EXPECT_EQ(textOf(run.infos[1].track), "2 2 90000 20 0 24 24 96000 96000");
    EXPECT_EQ(run.extract(0, 0), 0u);
    EXPECT_EQ(run.extract(1, 1), 0u);
    EXPECT_EQ(run.outputs(), "track001_lf.wav track001_rf.wav "
                             "track002_c_lfe.wav track002_lrf.wav track002_lrs.wav");
    EXPECT_EQ(run.output("track001_lf.wav"), waveFile(48000, 16, 1, fromHex("01 00 05 04 09 08 0D 0C 41 40")));
    EXPECT_EQ(run.output("track001_rf.wav"), waveFile(48000, 16, 1, fromHex("03 02 07 06 0B 0A 0F 0E 43 42")));
    EXPECT_EQ(run.output("track002_lrs.wav"), waveFile(96000, 24, 2, fromHex("1E 11 10 1F 13 12 22 19 18 23 1B 1A")));
}

TEST(ExtractOpen, Audio)
{
    for (const bool narrow : { false, true }) {
        for (const bool separator : { false, true }) {
            Extraction run;
            run.narrow = narrow;
            run.putAudio(TWO_TRACKS, twoTracks());
            if (!separator) run.disc.pop_back(), run.out.pop_back();
            EXPECT_EQ(run.open(), 0u);
            if (!separator) run.disc = run.folder / u"disc/", run.out = run.folder / u"out/";
            expectTwoTracks(run);
        }
    }
}

// The tables of both kinds: the sound disc is the one that is opened.
TEST(ExtractOpen, AudioGoesBeforeVideo)
{
    Extraction run;
    run.putVideo({ .cells = { { 0, 0 } } }, privatePack(0xA0, {}, counting(8)));
    run.putAudio(TWO_TRACKS, twoTracks());
    EXPECT_EQ(run.open(), 0u);
    EXPECT_EQ(run.context->sourceKind, SOURCE_AUDIO);
    expectTwoTracks(run);
}

TEST(ExtractOpen, AudioInSeveralFiles)
{
    Extraction run;
    const Bytes sound = twoTracks();
    run.putAudio(TWO_TRACKS, Bytes(sound.begin(), sound.begin() + 2048));
    run.put("ATS_01_2.AOB", Bytes(sound.begin() + 2048, sound.end()));
    EXPECT_EQ(run.open(), 0u);
    expectTwoTracks(run);
}

const VideoIfoSpec TWO_CELLS = { .cells = { { 0, 2 }, { 3, 4, "00 01 00 40" } } };

Bytes twoCells()
{
    return navPack({}) + privatePack(0xA0, { .clock = {}, .pts = 9 }, counting(16)) + videoPack(Bytes(50, 0x55)) +
           navPack({}) + privatePack(0xA0, { .clock = {}, .pts = 9 }, counting(12, 0x40));
}

void expectTwoCells(Extraction& run)
{
    EXPECT_EQ(run.context->sourceKind, SOURCE_VIDEO);
    EXPECT_EQ(run.count, 2u);
    ASSERT_EQ(run.infos.size(), 2u);
    EXPECT_EQ(textOf(run.infos[0].track), "0 2 90000 1 0 16 0 48000 0");
    EXPECT_EQ(textOf(run.infos[1].track), "3 4 5400000 1 0 16 0 48000 0");
    EXPECT_EQ(run.extract(0, 0), 0u);
    EXPECT_EQ(run.extract(1, 1), 0u);
    EXPECT_EQ(run.output("track001_rf.wav"), waveFile(48000, 16, 1, fromHex("03 02 07 06 0B 0A 0F 0E")));
    // Three samples: the last is no whole unit, and kept.
    EXPECT_EQ(run.output("track002_lrf.wav"), waveFile(48000, 16, 2, fromHex("41 40 43 42 45 44 47 46 49 48 4B 4A")));
}

TEST(ExtractOpen, Video)
{
    for (const bool narrow : { false, true }) {
        Extraction run;
        run.narrow = narrow;
        run.putVideo(TWO_CELLS, twoCells());
        EXPECT_EQ(run.open(), 0u);
        expectTwoCells(run);
    }
}

// The two IFO files have whatever sizes they need; each is read as a whole.
TEST(ExtractOpen, VideoWithALargeManager)
{
    Extraction run;
    VideoIfoSpec recipe = TWO_CELLS;
    recipe.managerSectors = 12;
    run.putVideo(recipe, twoCells());
    EXPECT_EQ(run.open(), 0u);
    expectTwoCells(run);
    VideoIfoSpec other = TWO_CELLS;
    other.titleSetSectors = 12;
    Extraction again;
    again.putVideo(other, twoCells());
    Bytes titleSet = titleSetIfo(other);
    std::copy(titleSet.begin() + 4096, titleSet.begin() + 6144, titleSet.begin() + 11 * 2048);
    put(titleSet, 224, 4, 11);   // cell addresses behind what the manager has
    std::fill(titleSet.begin() + 4096, titleSet.begin() + 6144, uint8_t(0));
    again.put("VTS_01_0.IFO", titleSet);
    EXPECT_EQ(again.open(), 0u);
    expectTwoCells(again);
}

TEST(ExtractOpen, VideoInSeveralFiles)
{
    Extraction run;
    const Bytes sound = twoCells();
    run.putVideo(TWO_CELLS, Bytes(sound.begin(), sound.begin() + 4 * 2048));
    run.put("VTS_01_0.VOB", navPack({}));   // of the menus
    run.put("VTS_01_2.VOB", Bytes(sound.begin() + 4 * 2048, sound.end()));
    EXPECT_EQ(run.open(), 0u);
    expectTwoCells(run);
}

TEST(ExtractOpen, NullOutputs)
{
    Extraction run;
    run.putAudio(TWO_TRACKS, twoTracks());
    run.create();
    EXPECT_EQ(d2wOpenDisc(run.context, nullptr, nullptr, 0), 0u);
    EXPECT_EQ(run.extract(1, 1), 0u);
}

TEST(ExtractOpen, OnceForAContext)
{
    Extraction run;
    run.putAudio(TWO_TRACKS, twoTracks());
    EXPECT_EQ(run.open(), 0u);
    run.count = NOT_WRITTEN;
    EXPECT_EQ(run.open(), NULL_ARGUMENT);
    EXPECT_EQ(run.count, NOT_WRITTEN);
    EXPECT_EQ(run.infos.size(), 2u);   // of the first
    run.count = 2;
    expectTwoTracks(run);   // it stays open
}

TEST(ExtractOpen, IndexesAsEver)
{
    Extraction run;
    run.putAudio(TWO_TRACKS, twoTracks());
    EXPECT_EQ(run.open(), 0u);
    EXPECT_EQ(run.extract(2, 0), WRONG_ASSIGNMENT);
    EXPECT_EQ(run.extract(3, 0), NO_TRACKS);
    EXPECT_EQ(run.extract(UINT64_MAX, 0), NO_TRACKS);
}

// ---- discs that can't be opened ---------------------------------------------------------------------------------

struct OpenCase {
    const char* what;
    std::vector<const char*> files;
    uint64_t result;
};

// clang-format off
const OpenCase INCOMPLETE[] = {
    { "an empty folder",           {},                                                   NO_SAMG      },
    { "sound alone",               { "ATS_01_1.AOB", "VTS_01_1.VOB" },                   NO_SAMG      },
    { "a manager alone",           { "VIDEO_TS.IFO" },                                   NO_SAMG      },
    { "a title set alone",         { "VTS_01_0.IFO" },                                   NO_SAMG      },
    { "a title set and its sound", { "VTS_01_0.IFO", "VTS_01_1.VOB" },                   NO_SAMG      },
    { "video without its sound",   { "VIDEO_TS.IFO", "VTS_01_0.IFO" },                   AOB_NOT_READ },
    { "audio without its sound",   { "AUDIO_PP.IFO" },                                   AOB_NOT_READ },
    { "audio, its first file missing", { "AUDIO_PP.IFO", "ATS_01_2.AOB" },               AOB_NOT_READ },
    { "sound of menus",            { "VIDEO_TS.IFO", "VTS_01_0.IFO", "VTS_01_0.VOB" },   AOB_NOT_READ },
    { "video complete",            { "VIDEO_TS.IFO", "VTS_01_0.IFO", "VTS_01_1.VOB" },   0            },
    { "audio complete",            { "AUDIO_PP.IFO", "ATS_01_1.AOB" },                   0            },
    { "audio without its sound, video complete",
      { "AUDIO_PP.IFO", "VIDEO_TS.IFO", "VTS_01_0.IFO", "VTS_01_1.VOB" },                0            },
};
// clang-format on

TEST(ExtractOpen, IncompleteDiscs)
{
    for (const OpenCase& row : INCOMPLETE) {
        Extraction run;
        for (const std::string name : row.files) {
            const bool audio = name == "AUDIO_PP.IFO", manager = name == "VIDEO_TS.IFO", set = name == "VTS_01_0.IFO";
            const VideoIfoSpec recipe = { .cells = { { 0, 0 } } };
            run.put(name, audio     ? samgIfo({ { 100, 100 } })
                          : manager ? managerIfo(recipe)
                          : set     ? titleSetIfo(recipe)
                                    : privatePack(0xA0, {}, counting(8)));
        }
        EXPECT_EQ(run.open(), row.result) << row.what;
        if (row.result) {
            EXPECT_EQ(run.extract(0, 0), NO_SOURCE) << row.what;
            EXPECT_EQ(run.outputs(), "") << row.what;
        } else {
            EXPECT_EQ(run.count, 1u) << row.what;
            EXPECT_EQ(run.extract(0, 0), 0u) << row.what;
        }
    }
}

TEST(ExtractOpen, BadTables)
{
    struct Case {
        const char* what;
        bool audio;
        std::string file;
        Bytes bytes;
        uint64_t result;
    };
    const VideoIfoSpec ac3 = { .cells = { { 0, 0 } }, .audio0 = 0 };
    const Case cases[] = {
        { "a short AUDIO_PP.IFO", true, "AUDIO_PP.IFO", Bytes(16383), SAMG_NOT_READ },
        { "an empty one", true, "AUDIO_PP.IFO", {}, SAMG_NOT_READ },
        { "a foreign one", true, "AUDIO_PP.IFO", Bytes(16384), INVALID_SAMG },
        { "100 tracks", true, "AUDIO_PP.IFO", samgIfo({}, uint16_t(100)), INVALID_SAMG },
        { "an empty manager", false, "VIDEO_TS.IFO", {}, NO_VMG },
        { "a foreign manager", false, "VIDEO_TS.IFO", Bytes(6144), NO_VMG },
        { "an empty title set", false, "VTS_01_0.IFO", {}, NO_VTS },
        { "a foreign title set", false, "VTS_01_0.IFO", Bytes(6144), NO_VTS },
        { "no LPCM", false, "VIDEO_TS.IFO", managerIfo(ac3), NO_LPCM },
    };
    for (const Case& row : cases) {
        Extraction run;
        if (row.audio) run.putAudio(TWO_TRACKS, twoTracks());
        if (!row.audio) run.putVideo(TWO_CELLS, twoCells());
        run.put(row.file, row.bytes);
        EXPECT_EQ(run.open(), row.result) << row.what;
        EXPECT_EQ(run.infos.size(), 0u) << row.what;
        EXPECT_EQ(run.extract(0, 0), NO_SOURCE) << row.what;
        EXPECT_EQ(run.outputs(), "") << row.what;
    }
}

TEST(ExtractOpen, LosslessTrack)
{
    Extraction run;
    std::vector<SamgTrack> tracks = TWO_TRACKS;
    tracks[1].attributes = 0x18;
    run.putAudio(tracks, twoTracks());
    EXPECT_EQ(run.open(), MLP_FOUND);
    ASSERT_EQ(run.infos.size(), 1u);
    EXPECT_EQ(textOf(run.infos[0].track), "0 1 90000 1 0 16 76 48000 0");
    EXPECT_EQ(run.extract(0, 0), NO_SOURCE);
    EXPECT_EQ(run.outputs(), "");
}

// What could not be opened leaves the context as it was: it opens the disc once that is whole.
TEST(ExtractOpen, AfterAFailure)
{
    Extraction run;
    EXPECT_EQ(run.open(), NO_SAMG);
    EXPECT_EQ(run.extract(0, 0), NO_SOURCE);
    run.putVideo({ .cells = { { 0, 0 } }, .audio0 = 0 }, twoCells());
    EXPECT_EQ(run.open(), NO_LPCM);
    std::vector<SamgTrack> lossless(5, { 500, 501 });
    lossless[4].attributes = 0x18;
    run.putAudio(lossless, twoTracks());
    EXPECT_EQ(run.open(), MLP_FOUND);
    EXPECT_EQ(run.extract(0, 0), NO_SOURCE);
    run.putAudio(TWO_TRACKS, twoTracks());
    run.infos.clear();
    EXPECT_EQ(run.open(), 0u);
    expectTwoTracks(run);
    EXPECT_EQ(run.extract(2, 0), WRONG_ASSIGNMENT);   // of the tracks before none is left
    EXPECT_EQ(run.extract(3, 0), NO_TRACKS);
}

// The older way in takes no context that has its disc.
TEST(ExtractOpen, InitLeavesAnOpenDisc)
{
    for (const bool audio : { false, true }) {
        Extraction run;
        if (audio) run.putAudio(TWO_TRACKS, twoTracks());
        if (!audio) run.putVideo(TWO_CELLS, twoCells());
        EXPECT_EQ(run.open(), 0u);
        const uint64_t count = run.count;
        run.count = NOT_WRITTEN;
        EXPECT_EQ(run.init(), NULL_ARGUMENT);
        EXPECT_EQ(run.count, NOT_WRITTEN);
        run.count = count;
        if (audio) expectTwoTracks(run);
        if (!audio) expectTwoCells(run);
    }
}

// ---- discs that break off ---------------------------------------------------------------------------------------

TEST(ExtractOpen, TruncatedAob)
{
    const Bytes sound = twoTracks();
    for (const uint64_t size : std::vector<uint64_t>{ 0, 1, 2047, 2048, 4095, 4096, 6143 }) {
        Extraction run;
        run.putAudio(TWO_TRACKS, Bytes(sound.begin(), sound.begin() + std::ptrdiff_t(size)));
        ASSERT_EQ(run.open(), 0u) << size;
        EXPECT_EQ(run.extract(0, 0), size < 4096 ? AOB_NOT_READ : 0) << size;
        EXPECT_EQ(run.extract(1, 0), AOB_NOT_READ) << size;
        run.release();
        for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(run.out))) {
            const std::string name = entry.path().filename().string();
            const Bytes wave = run.output(name);
            ASSERT_GE(wave.size(), 46u) << name;
            const bool complete = size >= 4096 && name.starts_with("track001");
            EXPECT_EQ(Bytes(wave.begin(), wave.begin() + 46) == Bytes(46), !complete) << size << ": " << name;
        }
    }
}

TEST(ExtractOpen, ForeignPack)
{
    Extraction run;
    Bytes sound = twoTracks();
    sound[2048 + 3] = 0xBB;
    run.putAudio(TWO_TRACKS, sound);
    ASSERT_EQ(run.open(), 0u);
    EXPECT_EQ(run.extract(0, 1), WRONG_PACK);
    EXPECT_EQ(run.extract(1, 1), 0u);
    run.release();
    const Bytes wave = run.output("track001_lrf.wav");
    EXPECT_EQ(wave, Bytes(46) + fromHex("01 00 03 02 05 04 07 06 09 08 0B 0A 0D 0C 0F 0E"));
}

// A track whose tables lead in front of the first, or far behind the last.
TEST(ExtractOpen, SectorsOutside)
{
    Extraction run;
    run.putAudio({ { 500, 502 }, { 499, 500 }, { 0xFFFFFFFF, 0xFFFFFFFF }, { 502, 501 }, { 500, 0xFFFFFFFF } },
                 twoTracks());
    ASSERT_EQ(run.open(), 0u);
    EXPECT_EQ(run.extract(0, 1), 0u);
    // A first sector in front of the disc's first wraps far behind its last, and behind the track's own last too.
    EXPECT_EQ(run.extract(1, 1), 0u);
    EXPECT_EQ(run.progress, (std::vector<ExtractProgressCall>{ { 1, 0, 0, "setup wave header" } }));
    EXPECT_EQ(run.extract(2, 1), AOB_NOT_READ);
    EXPECT_EQ(run.extract(3, 1), 0u);
    EXPECT_EQ(run.output("track004_lrf.wav"), waveFile(48000, 16, 2, {}));
    EXPECT_EQ(run.extract(4, 1), AOB_NOT_READ);
    EXPECT_EQ(run.progress.size(), 3u);   // the three sectors that are there
}

}   // namespace
