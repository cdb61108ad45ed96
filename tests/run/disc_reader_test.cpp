// The reader of authored discs sees what it is there to see: a sound disc, then one byte of it changed.
#include "tests/support/disc_reader.h"

#include "tests/run/disc_run.h"

#include <algorithm>

namespace {

// One title set of 40 units, 19.2 seconds, four cells, two audio streams.
void authorDisc(DiscRun& run)
{
    MovieSpec movie = { .vobus = vobus(40), .streams = { ac3Stream(), lpcmStream(1) } };
    run.put("VTS_01_1.VOB", makeMovie(movie).bytes);
    ASSERT_EQ(0u, run.author(plainProject(run, 1) + "audio=AC3\naudio2=PCM\nastreams=2\nchapters=4\nchapter2=432000\n"
                                                    "chapter3=950400\nchapter4=1684800\npostcmd=next\n"));
}

struct Change {
    const char* what;
    const char* file;
    uint64_t at;
};

}   // namespace

TEST(DiscReader, SoundDisc)
{
    DiscRun run;
    authorDisc(run);
    const DiscReport report = readDisc(run.folder.root / "target");
    EXPECT_EQ("", describeFaults(report));
    EXPECT_EQ(1u, report.titleSets);
    EXPECT_EQ(40u, report.navPacks);
    EXPECT_EQ(4u, report.cells);
    EXPECT_EQ(4u, report.chapters);
    EXPECT_EQ(3u, report.timeMapEntries);
    EXPECT_LT(0u, report.audioPointers);
    // 36 pairs of neighbours in a cell, told four times, and the search tables.
    EXPECT_LT(4u * 36, report.searchPointers);
}

// A unit has 15 packs. Unit 12 begins the second cell at sector 180; unit 20 lies within it, at sector 300.
TEST(DiscReader, EveryFieldCounts)
{
    constexpr uint64_t NAV = 300 * 2048;
    const char* const manager = "VIDEO_TS.IFO";
    const char* const set = "VTS_01_0.IFO";
    const char* const vob = "VTS_01_1.VOB";
    const Change changes[] = {
        { "mark", manager, 8 },
        { "last sector", manager, 15 },
        { "last sector of the IFO", manager, 31 },
        { "title sets", manager, 63 },
        { "last byte of the header", manager, 131 },
        { "start of the menus", manager, 195 },
        { "place of the titles", manager, 199 },
        { "place of the menus' chains", manager, 203 },
        { "place of the attributes", manager, 211 },
        { "first-play command table", manager, 1024 + 229 },
        { "first-play command counts", manager, 1024 + 239 },
        { "title count", manager, 2048 + 1 },
        { "last byte of the titles", manager, 2048 + 7 },
        { "chapters of a title", manager, 2048 + 11 },
        { "title set of a title", manager, 2048 + 14 },
        { "start sector", manager, 2048 + 19 },
        { "last byte of the menus' chains", manager, 4096 + 7 },
        { "last byte of the language unit", manager, 4112 + 7 },
        { "size of a command table", manager, 4128 + 243 },
        { "attribute entry", manager, 6144 + 11 },
        { "end of an attribute entry", manager, 6156 + 3 },
        { "copied attributes", manager, 6164 + 256 },
        { "mark", set, 3 },
        { "last sector", set, 15 },
        { "last sector of the IFO", set, 31 },
        { "start of the title", set, 199 },
        { "chapter table", set, 203 },
        { "chain table", set, 207 },
        { "time map", set, 215 },
        { "cell table", set, 227 },
        { "unit map", set, 231 },
        { "chapter", set, 2048 + 19 },
        { "last byte of the chapters", set, 2048 + 7 },
        { "programs", set, 4112 + 2 },
        { "cells", set, 4112 + 3 },
        { "play time", set, 4112 + 6 },
        { "place of the map", set, 4112 + 231 },
        { "place of the cells", set, 4112 + 233 },
        { "post commands", set, 4112 + 239 },
        { "program map", set, 4112 + 268 + 1 },
        { "first sector of a cell", set, 4112 + 272 + 24 + 11 },
        { "last unit of a cell", set, 4112 + 272 + 24 + 19 },
        { "last sector of a cell", set, 4112 + 272 + 24 + 23 },
        { "number of a cell", set, 4112 + 272 + 96 + 7 },
        { "time unit", set, 6144 + 12 },
        { "time", set, 6144 + 16 + 7 },
        { "VOB count", set, 8192 + 1 },
        { "cell of the address table", set, 8192 + 8 + 12 + 2 },
        { "its start", set, 8192 + 8 + 12 + 7 },
        { "its end", set, 8192 + 8 + 12 + 11 },
        { "unit of the map", set, 10240 + 4 + 4 * 20 + 3 },
        { "pack header", vob, 2048 },
        { "audio bound", vob, NAV + 23 },
        { "PCI sector", vob, NAV + 48 },
        { "display start", vob, NAV + 58 },
        { "display end", vob, NAV + 62 },
        { "elapsed time", vob, NAV + 71 },
        { "elapsed time of the DSI", vob, NAV + 1061 },
        { "clock", vob, NAV + 1034 },
        { "DSI sector", vob, NAV + 1038 },
        { "end of the unit", vob, NAV + 1042 },
        { "reference end", vob, NAV + 1045 },
        { "VOB number", vob, NAV + 1056 },
        { "cell number", vob, NAV + 1058 },
        { "next video unit", vob, NAV + 1268 },
        { "next unit", vob, NAV + 1348 },
        { "previous unit", vob, NAV + 1352 },
        { "previous video unit", vob, NAV + 1432 },
        { "nearest pointer forward", vob, NAV + 1344 },
        { "its top bits", vob, NAV + 1341 },
        { "farthest pointer forward", vob, NAV + 1272 },
        { "nearest pointer backward", vob, NAV + 1356 },
        { "a pointer 3 seconds back", vob, NAV + 1376 },
        { "farthest pointer backward", vob, NAV + 1428 },
        { "sync of audio 1", vob, NAV + 1434 },
        { "sync of audio 2", vob, NAV + 1436 },
        { "sync of a stream that is not there", vob, NAV + 1438 },
    };
    DiscRun run;
    authorDisc(run);
    for (const Change& change : changes) {
        const Bytes sound = run.get(change.file);
        Bytes changed = sound;
        ASSERT_LT(change.at, changed.size());
        changed[change.at] ^= 0x11;
        const bool isIfo = change.file != vob;
        const std::string backup = std::string(change.file).substr(0, 8) + ".BUP";
        run.put(change.file, changed);
        if (isIfo) run.put(backup, changed);
        EXPECT_NE("", describeFaults(readDisc(run.folder.root / "target"))) << change.file << ", " << change.what;
        run.put(change.file, sound);
        if (isIfo) run.put(backup, sound);
    }
    EXPECT_EQ("", describeFaults(readDisc(run.folder.root / "target")));
}

// A pointer that is empty although a unit of the cell holds its time: half a second on and half a second back.
TEST(DiscReader, MissingPointer)
{
    DiscRun run;
    authorDisc(run);
    const Bytes sound = run.get("VTS_01_1.VOB");
    for (const uint64_t at : { uint64_t(300 * 2048 + 1341), uint64_t(300 * 2048 + 1353) }) {
        Bytes changed = sound;
        const Bytes empty = fromHex("3F FF FF FF");
        ASSERT_NE(empty, Bytes(sound.begin() + std::ptrdiff_t(at), sound.begin() + std::ptrdiff_t(at + 4)));
        std::copy(empty.begin(), empty.end(), changed.begin() + std::ptrdiff_t(at));
        run.put("VTS_01_1.VOB", changed);
        EXPECT_NE("", describeFaults(readDisc(run.folder.root / "target"))) << at;
    }
}

TEST(DiscReader, Files)
{
    DiscRun run;
    authorDisc(run);
    const std::filesystem::path target = run.folder.root / "target";
    for (const char* name : { "VIDEO_TS.IFO", "VIDEO_TS.BUP", "VTS_01_0.IFO", "VTS_01_0.BUP", "VTS_01_1.VOB" }) {
        const Bytes sound = run.get(name);
        std::filesystem::remove(target / name);
        EXPECT_NE("", describeFaults(readDisc(target))) << name << " missing";
        run.put(name, Bytes(sound.begin(), sound.end() - 2048));
        EXPECT_NE("", describeFaults(readDisc(target))) << name << " a sector shorter";
        run.put(name, sound + Bytes(2048, 0));
        EXPECT_NE("", describeFaults(readDisc(target))) << name << " a sector longer";
        run.put(name, sound);
    }
    EXPECT_EQ("", describeFaults(readDisc(target)));
}
