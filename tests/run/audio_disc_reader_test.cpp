// The reader of DVD-Audio discs sees what it is there to see: a sound disc, then one byte of it changed.
#include "tests/support/audio_disc_reader.h"

#include "tests/run/audio_sound.h"

namespace fs = std::filesystem;

namespace {

// Two title sets: tracks of 3 and 3 packs; of 5 packs of six channels. Two menus of three sectors, stills of 3 and 4.
void authorDisc(AudioRun& run)
{
    const std::vector<SoundSpec> first = { { .samples = 1000 }, { .samples = 1100 } };
    const std::vector<SoundSpec> second = { { 6, 16, 48000, 800 } };
    ASSERT_EQ(0u, makeSound(run, 1, first));
    ASSERT_EQ(0u, makeSound(run, 2, second));
    ASSERT_EQ(0u, run.author(audioProject(run, { .titleSets = { setOf(first), setOf(second) },
                                                 .menus = { {}, { .keys = buttonKeys(2) } },
                                                 .stills = { {}, { .hasSubPicture = true } } })));
}

struct Change {
    const char* what;
    const char* file;
    uint64_t at;
};

}   // namespace

TEST(AudioDiscReader, SoundDisc)
{
    AudioRun run;
    authorDisc(run);
    const AudioDiscReport report = readAudioDisc(run.folder.root / "target");
    EXPECT_EQ("", describeFaults(report));
    EXPECT_EQ(2u, report.titleSets);
    EXPECT_EQ(3u, report.tracks);
    EXPECT_EQ(3u + 3 + 5, report.soundPacks);
    EXPECT_EQ(8400u + 9600, report.sampleBytes);
    EXPECT_EQ(2u, report.menus);
    EXPECT_EQ(2u, report.buttons);
    EXPECT_EQ(2u, report.stills);
    EXPECT_EQ(1u, report.stillSubPictures);
}

TEST(AudioDiscReader, EveryFieldCounts)
{
    const char* const manager = "AUDIO_TS.IFO";
    const char* const set = "ATS_01_0.IFO";
    const char* const sound = "ATS_01_1.AOB";
    const char* const other = "ATS_02_0.IFO";
    const char* const players = "AUDIO_PP.IFO";
    const char* const stills = "AUDIO_SV.IFO";
    constexpr uint64_t CHAIN = 6184 + 290;   // of the second menu
    const Change changes[] = {
        { "mark", manager, 9 },
        { "last sector", manager, 15 },
        { "last sector of the IFO", manager, 31 },
        { "version", manager, 33 },
        { "volumes", manager, 39 },
        { "volume", manager, 41 },
        { "side", manager, 42 },
        { "start", manager, 47 },
        { "stills", manager, 51 },
        { "title sets", manager, 63 },
        { "last byte of the header", manager, 131 },
        { "menu VOB", manager, 195 },
        { "titles", manager, 199 },
        { "second titles", manager, 203 },
        { "video attributes", manager, 256 },
        { "title count", manager, 2049 },
        { "last byte of the titles", manager, 2051 },
        { "kind of the title", manager, 2052 },
        { "tracks of the title", manager, 2053 },
        { "time of the title", manager, 2059 },
        { "number of the title", manager, 2061 },
        { "sector of the title", manager, 2065 },
        { "behind the titles", manager, 3000 },
        { "second titles' tracks", manager, 4101 },
        { "languages", manager, 6145 },
        { "last byte of the menus", manager, 6151 },
        { "language", manager, 6152 },
        { "menus", manager, 6161 },
        { "last byte of the unit", manager, 6167 },
        { "kind of a menu", manager, 6168 },
        { "cells of a menu", manager, CHAIN + 3 },
        { "time of a menu", manager, CHAIN + 7 },
        { "sub-picture of a menu", manager, CHAIN + 28 },
        { "commands", manager, CHAIN + 229 },
        { "pre commands", manager, CHAIN + 237 },
        { "a command", manager, CHAIN + 250 },
        { "program map", manager, CHAIN + 260 },
        { "kind of a cell", manager, CHAIN + 262 },
        { "still time of a cell", manager, CHAIN + 264 },
        { "time of a cell", manager, CHAIN + 269 },
        { "first sector of a cell", manager, CHAIN + 273 },
        { "last unit of a cell", manager, CHAIN + 281 },
        { "last sector of a cell", manager, CHAIN + 285 },
        { "VOB of a cell", manager, CHAIN + 287 },
        { "number of a cell", manager, CHAIN + 289 },
        { "mark", set, 11 },
        { "last sector", set, 15 },
        { "last sector of the IFO", set, 31 },
        { "menus", set, 195 },
        { "first sector of the sound", set, 199 },
        { "sample sizes", set, 258 },
        { "sample rates", set, 259 },
        { "assignment", set, 260 },
        { "titles", set, 2049 },
        { "last byte", set, 2055 },
        { "kind of the title", set, 2056 },
        { "place of the title", set, 2063 },
        { "tracks", set, 2066 },
        { "cells", set, 2067 },
        { "time", set, 2071 },
        { "place of the tracks", set, 2075 },
        { "place of the sectors", set, 2077 },
        { "place of the stills", set, 2079 },
        { "kind of a track", set, 2100 },
        { "number of a track", set, 2104 },
        { "time stamp of a track", set, 2109 },
        { "time of a track", set, 2112 },
        { "rest of a track", set, 2119 },
        { "kind of sectors", set, 2120 },
        { "first sector of a track", set, 2139 },
        { "last sector of a track", set, 2143 },
        { "stills of a track", set, 2144 },
        { "place of a still", set, 2147 },
        { "end of a still", set, 2149 },
        { "still of a track", set, 2156 },
        { "second still of a track", set, 2169 },
        { "behind the table", set, 2500 },
        { "sample rates", other, 259 },
        { "last sector of a track", other, 2111 },
        { "mark", players, 0 },
        { "tracks", players, 13 },
        { "number of a track", players, 19 },
        { "time stamp", players, 70 + 5 },
        { "time", players, 70 + 9 },
        { "flag", players, 70 + 13 },
        { "kind", players, 70 + 14 },
        { "sizes", players, 70 + 15 },
        { "rates", players, 70 + 16 },
        { "assignment", players, 70 + 17 },
        { "middle", players, 70 + 30 },
        { "first sector", players, 70 + 41 },
        { "start sector", players, 70 + 45 },
        { "last sector", players, 70 + 49 },
        { "behind the tracks", players, 10000 },
        { "a later copy", players, 5 * 16384 + 30 },
        { "mark", stills, 10 },
        { "units", stills, 13 },
        { "first sector", stills, 19 },
        { "last sector", stills, 23 },
        { "palette", stills, 36 },
        { "stills", stills, 96 },
        { "first still", stills, 99 },
        { "start", stills, 891 },
        { "behind the starts", stills, 892 },
        { "pack header", sound, 2048 },
        { "clock", sound, 2048 + 4 },
        { "rate", sound, 2048 + 12 },
        { "system header", sound, 19 },
        { "packet", sound, 2048 + 17 },
        { "time stamp", sound, 2048 + 27 },
        { "sub-stream", sound, 2048 + 28 },
        { "counter", sound, 2048 + 29 },
        { "first access unit", sound, 2048 + 33 },
        { "down mix", sound, 2048 + 34 },
        { "sizes", sound, 2048 + 35 },
        { "rates", sound, 2048 + 36 },
        { "assignment", sound, 2048 + 38 },
        { "dynamic range", sound, 2048 + 39 },
        { "length of a short packet", sound, 2 * 2048 + 19 },
        { "still", "AUDIO_SV.VOB", 3 * 2048 + 17 },
        { "highlight of a still", "AUDIO_SV.VOB", 3 * 2048 + 43 },
        { "video of a still", "AUDIO_SV.VOB", 2048 + 17 },
        { "time stamp of a still", "AUDIO_SV.VOB", 2048 + 27 },
        { "end of a still", "AUDIO_SV.VOB", 2 * 2048 + 100 },
        { "sub-picture of a still", "AUDIO_SV.VOB", 4 * 2048 + 33 },
        { "menu pack", "AUDIO_TS.VOB", 3 * 2048 + 17 },
        { "sector of the PCI", "AUDIO_TS.VOB", 3 * 2048 + 48 },
        { "sector of the DSI", "AUDIO_TS.VOB", 3 * 2048 + 1038 },
        { "end of the unit", "AUDIO_TS.VOB", 3 * 2048 + 1042 },
        { "VOB number", "AUDIO_TS.VOB", 3 * 2048 + 1056 },
        { "buttons", "AUDIO_TS.VOB", 3 * 2048 + 159 },
        { "sub-picture pointer", "AUDIO_TS.VOB", 3 * 2048 + 1452 },
        { "sub-picture of a menu", "AUDIO_TS.VOB", 5 * 2048 + 33 },
    };
    AudioRun run;
    authorDisc(run);
    for (const Change& change : changes) {
        const Bytes whole = run.get(change.file);
        ASSERT_LT(change.at, whole.size()) << change.what;
        Bytes bytes = whole;
        bytes[change.at] ^= 0x10;
        run.put(change.file, bytes);
        std::string backup(change.file);
        if (backup.ends_with(".IFO") && backup != players) {   // the copies agree: the fault is in the field itself
            backup.replace(backup.size() - 3, 3, "BUP");
            run.put(backup, bytes);
        }
        EXPECT_NE("", describeFaults(readAudioDisc(run.folder.root / "target"))) << change.file << ": " << change.what;
        run.put(change.file, whole);
        if (fileExists(run.inTarget(backup))) run.put(backup, whole);
    }
    EXPECT_EQ("", describeFaults(readAudioDisc(run.folder.root / "target")));
}

TEST(AudioDiscReader, MissingAndForeignFiles)
{
    AudioRun run;
    authorDisc(run);
    for (const char* const name :
         { "AUDIO_TS.IFO", "AUDIO_TS.BUP", "AUDIO_TS.VOB", "AUDIO_PP.IFO", "AUDIO_SV.IFO", "AUDIO_SV.BUP",
           "AUDIO_SV.VOB", "ATS_01_0.IFO", "ATS_01_0.BUP", "ATS_01_1.AOB", "ATS_02_0.BUP", "ATS_02_1.AOB" }) {
        const Bytes whole = run.get(name);
        fs::remove(fs::path(run.inTarget(name)));
        EXPECT_NE("", describeFaults(readAudioDisc(run.folder.root / "target"))) << name;
        for (const uint64_t bytes : { uint64_t(0), uint64_t(100), uint64_t(2048), whole.size() - 1 }) {
            run.put(name,
                    Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(std::min(bytes, uint64_t(whole.size())))));
            EXPECT_NE("", describeFaults(readAudioDisc(run.folder.root / "target"))) << name << ", " << bytes;
        }
        Bytes longer = whole;
        longer.resize(whole.size() + 2048, 0);
        run.put(name, longer);
        EXPECT_NE("", describeFaults(readAudioDisc(run.folder.root / "target"))) << name << ", longer";
        run.put(name, whole);
    }
    EXPECT_EQ("", describeFaults(readAudioDisc(run.folder.root / "target")));
}
