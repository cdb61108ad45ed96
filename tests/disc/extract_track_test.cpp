// d2wExtractTrack: the files that it makes, what it tells meanwhile, and what it leaves where it fails.
#include "tests/disc/extract_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

ExtractTrack trackOf(uint32_t assign, uint32_t bits, uint32_t first, uint32_t last)
{
    return { .firstSector = first,
             .lastSector = last,
             .playTime = 90000,
             .assign = assign,
             .reserved = 0,
             .sampleSize1 = bits,
             .sampleSize2 = bits,
             .sampleRate1 = 96000,
             .sampleRate2 = 96000 };
}

// ---- names, files, progress -------------------------------------------------------------------------------------

struct FilesCase {
    uint32_t assign, unitBytes;   // of 16 bits
    const char* text;
    std::vector<std::string> pairs, singles;
};

const FilesCase FILES[] = {
    { 1, 8, "extract 2.0 track", { "lrf" }, { "lf", "rf" } },
    { 3, 16, "extract 4.0 track", { "lrf", "lrs" }, { "lf", "ls", "rf", "rs" } },
    { 19, 20, "extract 5.0 track", { "c", "lrf", "lrs" }, { "c", "lf", "ls", "rf", "rs" } },
    { 20, 24, "extract 5.1 track", { "c_lfe", "lrf", "lrs" }, { "c", "lf", "lfe", "ls", "rf", "rs" } },
};

std::string namesOf(const std::string& number, const std::vector<std::string>& suffixes)
{
    std::string names;
    for (const std::string& suffix : suffixes) {
        names += (names.empty() ? "" : " ") + ("track" + number + "_" + suffix) + ".wav";
    }
    return names;
}

// Sectors 0 to 4 of a disc: two units, video, three units, no samples, one unit.
Bytes fiveSectors(uint64_t unitBytes)
{
    const Bytes unit = counting(unitBytes);
    return aobPack(repeated(unit, 2)) + aobPack(unit, { .streamId = 0xE0 }) + aobPack(repeated(unit, 3)) + aobPack({}) +
           aobPack(unit);
}

TEST(ExtractTrack, FilesAndProgress)
{
    for (const FilesCase& row : FILES) {
        for (const bool narrow : { false, true }) {
            for (const bool pairs : { false, true }) {
                SCOPED_TRACE(row.text + std::string(pairs ? ", pairs" : ""));
                Extraction run;
                run.narrow = narrow;
                run.put("sound", fiveSectors(row.unitBytes));
                run.lend(SOURCE_AUDIO, "sound", std::vector<ExtractTrack>(12, trackOf(row.assign, 16, 0, 4)), true);
                EXPECT_EQ(run.extract(11, pairs ? 7 : 0), 0u);
                EXPECT_EQ(run.outputs(), namesOf("012", pairs ? row.pairs : row.singles));
                // Six units of two samples for each channel.
                for (const std::string& suffix : pairs ? row.pairs : row.singles) {
                    const Bytes wave = run.output("track012_" + suffix + ".wav");
                    const Bytes data(wave.begin() + 46, wave.end());
                    EXPECT_EQ(data.size(), pairs ? 48u : 24u) << suffix;
                    EXPECT_EQ(wave, waveFile(96000, 16, pairs ? 2 : 1, data)) << suffix;
                }
                // A call for each sector with samples, by its index, and one for the end.
                const std::vector<ExtractProgressCall> calls = { { 11, 5, 0, row.text },
                                                                 { 11, 5, 2, row.text },
                                                                 { 11, 5, 4, row.text },
                                                                 { 11, 5, 5, "setup wave header" } };
                EXPECT_EQ(run.progress, calls);
            }
        }
    }
}

// Sectors count from the track's first in what is told, from the disc's first in what is read.
TEST(ExtractTrack, SectorsOfTheTrackAlone)
{
    Extraction run;
    Bytes sound;
    for (uint8_t i = 0; i < 6; i++) sound += aobPack(counting(8, uint8_t(0x10 * i)));
    run.put("sound", sound);
    run.lend(SOURCE_AUDIO, "sound", { trackOf(1, 16, 2, 3), trackOf(1, 16, 5, 5) }, true);
    EXPECT_EQ(run.extract(0, 0), 0u);
    EXPECT_EQ(run.hexOf("track001_lf.wav"), "21 20 25 24 31 30 35 34");
    EXPECT_EQ(run.hexOf("track001_rf.wav"), "23 22 27 26 33 32 37 36");
    const std::string text = "extract 2.0 track";
    EXPECT_EQ(run.progress, (std::vector<ExtractProgressCall>{
                                { 0, 2, 0, text }, { 0, 2, 1, text }, { 0, 2, 2, "setup wave header" } }));
    EXPECT_EQ(run.extract(1, 1), 0u);
    EXPECT_EQ(run.hexOf("track002_lrf.wav"), "51 50 53 52 55 54 57 56");
    EXPECT_EQ(run.progress, (std::vector<ExtractProgressCall>{ { 1, 1, 0, text }, { 1, 1, 1, "setup wave header" } }));
}

TEST(ExtractTrack, SoundOfAVob)
{
    for (const bool opened : { false, true }) {
        Extraction run;
        run.put("sound", navPack({}) + privatePack(0xA0, { .clock = {}, .pts = 9 }, counting(12)) +
                             videoPack(Bytes(100, 0x55)) + privatePack(0xA1, {}, counting(12)) +
                             privatePack(0xA0, {}, counting(24, 0x40)));
        run.lend(SOURCE_VIDEO, "sound", { trackOf(1, 24, 0, 4) }, opened);
        EXPECT_EQ(run.extract(0, 0), 0u);
        EXPECT_EQ(run.hexOf("track001_lf.wav"), "08 01 00 0A 05 04 48 41 40 4A 45 44 54 4D 4C 56 51 50");
        EXPECT_EQ(run.hexOf("track001_rf.wav"), "09 03 02 0B 07 06 49 43 42 4B 47 46 55 4F 4E 57 53 52");
        ASSERT_EQ(run.progress.size(), 3u);
        EXPECT_EQ(run.progress[0].done, 1u);
        EXPECT_EQ(run.progress[1].done, 4u);
    }
}

TEST(ExtractTrack, NoCallback)
{
    for (const bool narrow : { false, true }) {
        Extraction run;
        run.narrow = narrow;
        run.nullCallbacks = true;
        run.put("sound", aobPack(counting(8)));
        run.lend(SOURCE_AUDIO, "sound", { trackOf(1, 16, 0, 0) }, true);
        EXPECT_EQ(run.extract(0, 0), 0u);
        EXPECT_EQ(run.hexOf("track001_lf.wav"), "01 00 05 04");
    }
}

// A last sector in front of the first is a track without sectors.
TEST(ExtractTrack, NoSectors)
{
    Extraction run;
    run.put("sound", aobPack(counting(8)));
    run.lend(SOURCE_AUDIO, "sound", { trackOf(3, 24, 1, 0), trackOf(1, 16, 0xFFFFFFFF, 0) }, true);
    for (uint64_t track = 0; track < 2; track++) {
        EXPECT_EQ(run.extract(track, 1), 0u);
        EXPECT_EQ(run.progress, (std::vector<ExtractProgressCall>{ { track, 0, 0, "setup wave header" } }));
    }
    EXPECT_EQ(run.outputs(), "track001_lrf.wav track001_lrs.wav track002_lrf.wav");
    EXPECT_EQ(run.output("track001_lrs.wav"), waveFile(96000, 24, 2, {}));
    EXPECT_EQ(run.output("track002_lrf.wav"), waveFile(96000, 16, 2, {}));
}

// Sizes that nothing is taken from: the files are complete and empty, and the sectors count as seen.
TEST(ExtractTrack, OtherSizesGiveEmptyFiles)
{
    Extraction run;
    run.put("sound", aobPack(counting(80)));
    run.lend(SOURCE_AUDIO, "sound", { trackOf(1, 20, 0, 0) }, true);
    EXPECT_EQ(run.extract(0, 0), 0u);
    EXPECT_EQ(run.output("track001_lf.wav"), waveFile(96000, 20, 1, {}));
    EXPECT_EQ(run.progress.back(), (ExtractProgressCall{ 0, 1, 1, "setup wave header" }));
}

TEST(ExtractTrack, OldFilesAreWrittenOver)
{
    Extraction run;
    writeFile(run.out + u"track001_lrf.wav", Bytes(5000, 0x99));
    writeFile(run.out + u"track001_lf.wav", Bytes(10, 0x99));
    run.put("sound", aobPack(counting(8)));
    run.lend(SOURCE_AUDIO, "sound", { trackOf(1, 16, 0, 0) }, true);
    for (int times = 0; times < 2; times++) {
        EXPECT_EQ(run.extract(0, 1), 0u);
        EXPECT_EQ(run.output("track001_lrf.wav"), waveFile(96000, 16, 2, fromHex("01 00 03 02 05 04 07 06")));
    }
    EXPECT_EQ(run.output("track001_lf.wav"), Bytes(10, 0x99));   // another mode's
}

// ---- indexes and assignments ------------------------------------------------------------------------------------

// The record behind the last track is asked for, and has no assignment.
TEST(ExtractTrack, IndexBehindTheLastPasses)
{
    for (const uint64_t count : std::vector<uint64_t>{ 0, 1, 3, 98, 99 }) {
        Extraction run;
        run.put("sound", aobPack(counting(8)));
        run.lend(SOURCE_AUDIO, "sound", std::vector<ExtractTrack>(count, trackOf(1, 16, 0, 0)), true);
        for (uint64_t track = 0; track < count; track++) EXPECT_EQ(run.extract(track, 1), 0u) << track;
        run.clearOutputs();
        EXPECT_EQ(run.extract(count, 1), WRONG_ASSIGNMENT) << count;
        char name[40];
        (void)snprintf(name, sizeof(name), "track%03u_lrf.wav", unsigned(count + 1));
        EXPECT_EQ(run.outputs(), name);
        EXPECT_EQ(run.output(name), Bytes(46));
        run.clearOutputs();
        for (const uint64_t track : { count + 1, count + 2, uint64_t(1000), UINT64_MAX - 1, UINT64_MAX }) {
            EXPECT_EQ(run.extract(track, 1), NO_TRACKS) << count << ", " << track;
        }
        EXPECT_EQ(run.outputs(), "");
        EXPECT_EQ(run.progress.size(), 0u);
    }
}

TEST(ExtractTrack, UnknownAssignmentLeavesFrontFiles)
{
    for (uint32_t assign = 0; assign < 32; assign++) {
        if (assign == 1 || assign == 3 || assign == 19 || assign == 20) continue;
        Extraction run;
        run.put("sound", aobPack(counting(80)));
        run.lend(SOURCE_AUDIO, "sound", { trackOf(assign, 16, 0, 0) }, true);
        EXPECT_EQ(run.extract(0, 0), WRONG_ASSIGNMENT) << assign;
        EXPECT_EQ(run.outputs(), "track001_lf.wav track001_rf.wav");
        EXPECT_EQ(run.extract(0, 1), WRONG_ASSIGNMENT) << assign;
        EXPECT_EQ(run.outputs(), "track001_lf.wav track001_lrf.wav track001_rf.wav");
        EXPECT_EQ(run.progress.size(), 0u);
        run.release();
        for (const char* name : { "track001_lf.wav", "track001_rf.wav", "track001_lrf.wav" }) {
            EXPECT_EQ(run.output(name), Bytes(46)) << assign;
        }
    }
}

TEST(ExtractTrack, NoSource)
{
    for (const bool narrow : { false, true }) {
        Extraction run;
        run.narrow = narrow;
        run.put("sound", aobPack(counting(80)));
        run.lend(SOURCE_NONE, "sound", { trackOf(1, 16, 0, 0) }, true);
        EXPECT_EQ(run.extract(0, 0), NO_SOURCE);
        EXPECT_EQ(run.extract(7, 0), NO_SOURCE);
        EXPECT_EQ(run.outputs(), "");
    }
}

// ---- failures ---------------------------------------------------------------------------------------------------

TEST(ExtractTrack, OutputsThatCannotBeMade)
{
    for (const FilesCase& row : FILES) {
        for (const bool pairs : { false, true }) {
            const std::vector<std::string>& suffixes = pairs ? row.pairs : row.singles;
            for (const std::string& suffix : suffixes) {
                Extraction run;
                run.put("sound", aobPack(counting(80)));
                run.lend(SOURCE_AUDIO, "sound", { trackOf(row.assign, 16, 0, 0) }, true);
                const std::string taken = "track001_" + suffix + ".wav";
                fs::create_directory(fs::path(run.out) / taken);
                EXPECT_EQ(run.extract(0, pairs), NO_OUTPUT) << taken;
                EXPECT_EQ(run.progress.size(), 0u);
                // What was made before it is left as it was made.
                const std::string names = " " + run.outputs() + " ";
                for (const std::string& other : suffixes) {
                    const std::string name = "track001_" + other + ".wav";
                    if (other != suffix && names.find(" " + name + " ") != std::string::npos) {
                        EXPECT_EQ(run.output(name), Bytes(46)) << name;
                    }
                }
                // Once the name is free the track can be had.
                fs::remove(fs::path(run.out) / taken);
                EXPECT_EQ(run.extract(0, pairs), 0u);
                EXPECT_EQ(run.outputs(), namesOf("001", suffixes));
            }
        }
    }
    Extraction run;
    run.put("sound", aobPack(counting(80)));
    run.out = (run.folder.root / "nowhere" / "").u16string();
    run.lend(SOURCE_AUDIO, "sound", { trackOf(1, 16, 0, 0) }, true);
    EXPECT_EQ(run.extract(0, 0), NO_OUTPUT);
    EXPECT_FALSE(fileExists(run.folder / u"nowhere"));   // folders are not made
}

struct FaultCase {
    const char* what;
    Bytes third;   // in place of the third sector of four
    uint64_t result;
};

// What was extracted before the fault stands behind 46 zero bytes, so that no file looks complete.
TEST(ExtractTrack, FaultsLeaveUnfinishedFiles)
{
    Bytes foreign = aobPack(counting(8));
    foreign[2] = 0;
    const FaultCase cases[] = { { "a foreign sector", foreign, WRONG_PACK },
                                { "zeros", Bytes(2048), WRONG_PACK },
                                { "an end within the sector", Bytes(2047), AOB_NOT_READ },
                                { "an end before it", {}, AOB_NOT_READ } };
    for (const FaultCase& row : cases) {
        for (const bool pairs : { false, true }) {
            Extraction run;
            Bytes sound = aobPack(counting(8)) + aobPack(counting(8, 0x20)) + row.third;
            if (row.result == WRONG_PACK) sound += aobPack(counting(8, 0x40));
            run.put("sound", sound);
            run.lend(SOURCE_AUDIO, "sound", { trackOf(1, 16, 0, 3), trackOf(1, 16, 0, 1) }, true);
            EXPECT_EQ(run.extract(0, pairs), row.result) << row.what;
            ASSERT_EQ(run.progress.size(), 2u) << row.what;
            EXPECT_EQ(run.progress.back(), (ExtractProgressCall{ 0, 4, 1, "extract 2.0 track" }));
            EXPECT_EQ(run.extract(1, pairs), 0u) << row.what;   // others can be had still
            run.release();
            if (pairs) {
                EXPECT_EQ(run.output("track001_lrf.wav"),
                          Bytes(46) + fromHex("01 00 03 02 05 04 07 06 21 20 23 22 25 24 27 26"));
            } else {
                EXPECT_EQ(run.output("track001_lf.wav"), Bytes(46) + fromHex("01 00 05 04 21 20 25 24"));
                EXPECT_EQ(run.output("track001_rf.wav"), Bytes(46) + fromHex("03 02 07 06 23 22 27 26"));
            }
        }
    }
}

// The disc is only read.
TEST(ExtractTrack, LeavesTheDiscAlone)
{
    Extraction run;
    const Bytes sound = fiveSectors(8);
    run.put("sound", sound);
    run.lend(SOURCE_AUDIO, "sound", { trackOf(1, 16, 0, 4), trackOf(1, 16, 3, 9) }, true);
    EXPECT_EQ(run.extract(0, 0), 0u);
    EXPECT_EQ(run.extract(1, 0), AOB_NOT_READ);
    run.release();
    EXPECT_EQ(readFile(run.disc + u"sound"), sound);
    uint64_t files = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(run.disc))) files += entry.exists();
    EXPECT_EQ(files, 1u);
}

}   // namespace
