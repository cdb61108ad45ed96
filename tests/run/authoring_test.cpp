// Whole runs from a project file to a disc folder.
#include "tests/run/disc_run.h"
#include "tests/video/table_bytes.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace {

std::vector<std::string> names(const Snapshot& snapshot)
{
    std::vector<std::string> list;
    for (const auto& [name, bytes] : snapshot) list.push_back(name);
    return list;
}

Bytes part(const Bytes& bytes, uint64_t from, uint64_t to)
{
    return Bytes(bytes.begin() + std::ptrdiff_t(from), bytes.begin() + std::ptrdiff_t(to));
}

}   // namespace

TEST(Authoring, SmallDiscByteForByte)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", smallMovie({ 5, 5 }).bytes);
    // The second unit's clock reads 12 frames, 43200 ticks: the second chapter begins there.
    ASSERT_EQ(0u,
              run.author(plainProject(run, 1) +
                         "audio=AC3\nchannel=6\nlanguage=en\nchapters=2\nchapter1=0\nchapter2=43200\npostcmd=loop\n"));
    EXPECT_FALSE(fileExists(run.log));

    std::string palette;
    for (int i = 0; i < 16; i++) palette += "00 10 80 80 ";
    const Bytes titleSet =
        layout(6 * 2048, {
                             { 0, "44 56 44 56 49 44 45 4F 2D 56 54 53" },
                             { 12, "00 00 00 15" },   // 2 x 6 + 10 - 1
                             { 28, "00 00 00 05" },
                             { 33, "11" },
                             { 128, "00 00 07 FF" },
                             { 196, "00 00 00 06 00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 03" },
                             { 224, "00 00 00 04 00 00 00 05" },
                             { 512, "53 00 00 01 00 05" },
                             { 2048, "00 01 00 00 00 00 00 13 00 00 00 0C 00 01 00 01 00 01 00 02" },
                             { 4096, "00 01 00 00 00 00 01 4D 81 00 00 00 00 00 00 10" },
                             { 4112 + 2, "02 02 00 00 00 64 00 02 00 00 80 00" },
                             { 4112 + 164, palette },
                             { 4112 + 228, "00 EC 01 04 01 06 01 36" },
                             { 4112 + 236, "00 01 00 01 00 00 00 17" },
                             { 4112 + 244, "71 00 00 03 00 01 00 00 30 03 00 00 00 01 00 00" },
                             { 4112 + 260, "01 02" },
                             { 4112 + 262, "02 00 00 00 00 00 00 52 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 04" },
                             { 4112 + 286, "08 00 00 00 00 00 00 52 00 00 00 05 00 00 00 00 00 00 00 05 00 00 00 09" },
                             { 4112 + 310, "00 01 00 01 00 01 00 02" },
                             { 6144, "00 01 00 00 00 00 00 0F 00 00 00 0C 05 00 00 00" },
                             { 8192, "00 01 00 00 00 00 00 1F" },
                             { 8200, "00 01 01 00 00 00 00 00 00 00 00 04 00 01 02 00 00 00 00 05 00 00 00 09" },
                             { 10240, "00 00 00 0B 00 00 00 00 00 00 00 05" },
                         });
    expectSameBytes(titleSet, run.get("VTS_01_0.IFO"), "VTS_01_0.IFO");

    const Bytes manager =
        layout(4 * 2048, {
                             { 0, "44 56 44 56 49 44 45 4F 2D 56 4D 47" },
                             { 12, "00 00 00 07" },
                             { 28, "00 00 00 03" },
                             { 33, "11" },
                             { 38, "00 01 00 01 01" },
                             { 62, "00 01" },
                             { 64, "4F 52 56 45 4E" },
                             { 128, "00 00 04 FB 00 00 04 00" },
                             { 192, "00 00 00 04 00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 03" },
                             { 1024 + 4, "00 00 00 40" },
                             { 1024 + 228, "00 EC" },
                             { 1024 + 236, "00 00 00 01 00 00 00 0F 30 02 00 00 00 01 00 00" },
                             { 2048, "00 01 00 00 00 00 00 13 0C 01 00 02 00 00 01 01 00 00 00 08" },
                             { 4096, "00 01 00 00 00 00 01 53 00 00 00 80 00 00 00 10" },
                             { 4112, "00 01 00 00 00 00 01 43 82 00 00 00 00 00 00 10" },
                             { 4128 + 4, "00 00 00 40 00 08 03 03" },
                             { 4128 + 164, palette },
                             { 4128 + 228, "00 EC" },
                             { 4128 + 236, "00 07 00 00 00 01 00 47 71 00 00 03 00 00 00 00 61 00 00 02 00 01 00 00" },
                             { 4128 + 260, "71 00 00 01 00 00 00 00 00 A1 00 02 00 01 00 07 56 00 00 00 04 00 00 00" },
                             { 4128 + 284, "00 02 00 00 00 00 00 00 30 02 00 00 00 01 00 00 30 02 00 00 00 01 00 00" },
                             { 6144, "00 01 00 00 00 00 03 13 00 00 00 0C 00 00 03 07 00 00 00 00" },
                             { 6164 + 256, "53 00 00 01 00 05" },
                         });
    expectSameBytes(manager, run.get("VIDEO_TS.IFO"), "VIDEO_TS.IFO");
    expectSameBytes(titleSet, run.get("VTS_01_0.BUP"), "VTS_01_0.BUP");
    expectSameBytes(manager, run.get("VIDEO_TS.BUP"), "VIDEO_TS.BUP");

    // The second navigation pack: place, display from 28800 + 43200, end of movie, first of its cell.
    const Bytes vob = run.get("VTS_01_1.VOB");
    expectAt(vob, 5 * 2048 + 23, "04", "audio bound 1");
    expectAt(vob, 5 * 2048 + 45, "00 00 00 05 00 00 00 00 00 00 00 00 00 01 19 40", "PCI");
    expectAt(vob, 5 * 2048 + 61, "00 01 C2 00 00 01 DE 20 00 00 00 40", "end of display, end of movie, elapsed time");
    expectAt(vob, 5 * 2048 + 1031, "00 00 A8 C0 00 00 00 05 00 00 00 04", "DSI");
    expectAt(vob, 5 * 2048 + 1055, "00 01 00 02", "VOB 1, cell 2");
    expectSoundDisc(run);
}

TEST(Authoring, NarrowAndWideGiveTheSameDisc)
{
    DiscRun wide, narrow;
    narrow.narrow = true;
    for (DiscRun* run : { &wide, &narrow }) {
        run->put("VTS_01_1.VOB", fourUnits().bytes);
        run->put("VTS_02_1.VOB", smallMovie({ 30 }).bytes);
        ASSERT_EQ(0u, run->author(plainProject(*run, 2)));
    }
    EXPECT_EQ(takeSnapshot(wide.folder.root / "target"), takeSnapshot(narrow.folder.root / "target"));
    expectSoundDisc(narrow);
}

TEST(Authoring, Ntsc)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", smallMovie({ 5, 5 }, 2).bytes);
    ASSERT_EQ(0u, run.author(plainProject(run, 1, "ntsc")));
    expectAt(run.get("VTS_01_0.IFO"), 512, "43 00", "video attributes");
    expectAt(run.get("VTS_01_0.IFO"), 4112 + 4, "00 00 00 E4", "24 frames");
    expectAt(run.get("VIDEO_TS.IFO"), 1028, "00 00 00 C0", "first-play chain");
    expectAt(run.get("VTS_01_1.VOB"), 5 * 2048 + 57, "00 00 FD 44", "28800 + 12 x 3003");
    expectSoundDisc(run);
}

TEST(Authoring, KeysReachTheTables)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    run.put("VTS_02_1.VOB", fourUnits().bytes);
    const std::string extra = "restricted=YES\nvideomode=16:9\nresolution=352x288\nbitrate=cbr\nmpegtype=mpeg1\n"
                              "audio=none\naudio2=layer2\nastreams=2\ncolortable1=255,0,0\npostcmd=next\n";
    ASSERT_EQ(0u, run.author("[FIRSTPLAY]\ncmd=BTN_ACTION_JUMP_VTSPTT(2,3,0)\n" + plainProject(run, 2, "PAL", extra)));
    const Bytes ifo = run.get("VTS_02_0.IFO");
    expectAt(ifo, 512, "1C 1C 00 01 E0 07", "attributes: the one entry that is counted is the first, an empty one");
    expectAt(ifo, 4112 + 8, "00 00 3F A4 80 00 00 00", "prohibited operations, audio control");
    expectAt(ifo, 4112 + 164, "00 51 F0 5B 00 10 80 80", "colours");
    expectAt(ifo, 4112 + 252, "71 00 00 01 00 03 00 00 30 08 00 00 01 42 00 00", "post commands: title set 3");
    expectAt(run.get("VIDEO_TS.IFO"), 1024 + 244, "30 05 00 03 00 02 00 00", "first play");
}

TEST(Authoring, SeveralTitleSetsOfSeveralSources)
{
    DiscRun run;
    const Bytes movie = fourUnits().bytes;
    std::string project = plainProject(run, 3, "PAL", "chapters=2\nchapter2=86400\n");
    for (uint64_t set = 1; set <= 3; set++) {
        const std::string stem = "VTS_0" + std::to_string(set) + "_";
        run.put(stem + "1.VOB", part(movie, 0, 2048 * 3 * set));
        run.put(stem + "2.VOB", part(movie, 2048 * 3 * set, 2048 * 16));
        run.put(stem + "3.VOB", part(movie, 2048 * 16, movie.size()));
        const std::string section = "[VTS_" + std::to_string(set) + "]\n";
        project.insert(project.find(section) + section.size(),
                       "source1=" + run.text(stem + "2.VOB") + "\nsource2=" + run.text(stem + "3.VOB") + "\n");
    }
    // The third file has no navigation pack of its own: nothing has to be found there.
    ASSERT_EQ(0u, run.author(project));
    expectSoundDisc(run);
    for (const char* ifo : { "VTS_01_0.IFO", "VTS_02_0.IFO", "VTS_03_0.IFO" }) {
        expectSameBytes(run.get("VTS_01_0.IFO"), run.get(ifo), ifo);
        expectAt(run.get(ifo), 12, "00 00 00 1F", "last sector: 12 + 20 - 1");
    }
    for (uint64_t set = 2; set <= 3; set++) {
        Bytes all;
        for (const char* vob : { "1.VOB", "2.VOB", "3.VOB" }) all += run.get("VTS_0" + std::to_string(set) + "_" + vob);
        EXPECT_EQ(run.get("VTS_01_1.VOB") + run.get("VTS_01_2.VOB") + run.get("VTS_01_3.VOB"), all) << set;
    }
}

// However a movie is cut into files, the disc is that of the whole file.
TEST(Authoring, SourcesSplitAtOddBytes)
{
    DiscRun whole;
    const Bytes movie = fourUnits().bytes;
    const std::string keys = "audio=AC3\nchapters=3\nchapter2=43200\nchapter3=86400\n";
    whole.put("VTS_01_1.VOB", movie);
    ASSERT_EQ(0u, whole.author(plainProject(whole, 1) + keys));
    const Bytes patched = whole.get("VTS_01_1.VOB");
    ASSERT_NE(movie, patched);

    const std::vector<std::vector<uint64_t>> cuts = {
        { 1 },                                       // the first navigation pack, behind its first byte
        { 2047 },                                    // before its last byte
        { 2049 },                                    // a video pack
        { 5 * 2048 + 1 },                            // the second navigation pack
        { 5 * 2048 + 1023 },                         // between its two packets
        { 15 * 2048 + 45 },                          // the last one, in a field
        { 5 * 2048 },                                // in front of one
        { 6 * 2048 + 777 },                          // in a pack that is not touched
        { 20 * 2048 - 1 },                           // before the last byte
        { 5 * 2048 + 1001, 10 * 2048 + 1001 },       // two navigation packs
        { 2048 + 1, 7 * 2048 + 3, 12 * 2048 + 5 },   // other packs
        { 1, 5 * 2048 - 1, 10 * 2048 + 2047, 15 * 2048 + 1 },
    };
    for (const std::vector<uint64_t>& at : cuts) {
        DiscRun run;
        std::string project = plainProject(run, 1) + keys, label;
        Bytes all;
        for (uint64_t i = 0; i <= at.size(); i++) {
            const std::string name = "VTS_01_" + std::to_string(i + 1) + ".VOB";
            run.put(name, part(movie, i ? at[i - 1] : 0, i < at.size() ? at[i] : movie.size()));
            if (i) project += "source" + std::to_string(i) + "=" + run.text(name) + "\n";
            if (i) label += std::to_string(at[i - 1]) + " ";
        }
        ASSERT_EQ(0u, run.author(project)) << label;
        for (uint64_t i = 0; i <= at.size(); i++) all += run.get("VTS_01_" + std::to_string(i + 1) + ".VOB");
        EXPECT_EQ(patched, all) << "movie cut at " << label;
        for (const std::string& name : WRITTEN)
            expectSameBytes(whole.get(name), run.get(name), name + " cut at " + label);
    }
}

// The manager cuts each file to whole sectors before it sums them up, so that a split in a pack costs a sector.
TEST(Authoring, SplitPackMovesTheNextTitleSet)
{
    DiscRun run;
    const Bytes movie = fourUnits().bytes;
    run.put("VTS_01_1.VOB", part(movie, 0, 5 * 2048 + 1));
    run.put("VTS_01_2.VOB", part(movie, 5 * 2048 + 1, movie.size()));
    run.put("VTS_02_1.VOB", movie);
    std::string project = plainProject(run, 2);
    project.insert(project.find("[VTS_2]"), "source1=" + run.text("VTS_01_2.VOB") + "\n");
    ASSERT_EQ(0u, run.author(project));
    expectAt(run.get("VTS_01_0.IFO"), 12, "00 00 00 1F", "last sector of the title set: 12 + 20 - 1");
    expectAt(run.get("VIDEO_TS.IFO"), 2048 + 16, "00 00 00 08", "start of title set 1");
    expectAt(run.get("VIDEO_TS.IFO"), 2048 + 28, "00 00 00 27", "start of title set 2: 8 + 12 + 19");
}

TEST(Authoring, SecondRunGivesTheSameBytes)
{
    DiscRun run;
    MovieSpec movie = { .vobus = vobus(20), .streams = { ac3Stream(), lpcmStream(1) } };
    run.put("VTS_01_1.VOB", makeMovie(movie).bytes);
    run.put("VTS_02_1.VOB", fourUnits().bytes);
    const std::string project =
        plainProject(run, 2, "PAL", "audio=AC3\naudio2=PCM\nastreams=2\nchapters=3\nchapter2=50000\nchapter3=100000\n");
    ASSERT_EQ(0u, run.author(project));
    const Snapshot first = takeSnapshot(run.folder.root);
    for (int again = 0; again < 2; again++) {
        ASSERT_EQ(0u, run.author(project));
        EXPECT_EQ(first, takeSnapshot(run.folder.root));
    }
    expectSoundDisc(run);
}

// A run over the files of an earlier, longer disc leaves nothing of them in the files that it writes.
TEST(Authoring, ReplacesLongerFiles)
{
    DiscRun clean, used;
    for (DiscRun* run : { &clean, &used }) run->put("VTS_01_1.VOB", fourUnits().bytes);
    for (const std::string& name : WRITTEN) used.put(name, Bytes(100000, 0xEE));
    ASSERT_EQ(0u, clean.author(plainProject(clean, 1)));
    ASSERT_EQ(0u, used.author(plainProject(used, 1)));
    EXPECT_EQ(takeSnapshot(clean.folder.root / "target"), takeSnapshot(used.folder.root / "target"));
}

// What a run writes: four files in the target, and the navigation packs of the sources. Sources may lie elsewhere.
TEST(Authoring, NothingElseIsWritten)
{
    DiscRun run;
    fs::create_directory(run.folder.root / "sources");
    fs::create_directory(run.folder.root / "earlier");
    const std::u16string source = (run.folder.root / "sources" / "movie.mpg").u16string();
    MovieSpec movie = { .vobus = vobus(8), .streams = { ac3Stream() } };
    writeFile(source, makeMovie(movie).bytes);
    run.put("VTS_01_0.VOB", fromHex("01 02 03"));   // of menus that this disc has not
    run.put("notes.txt", fromHex("4E"));
    run.previous = (run.folder.root / "earlier" / "").u16string();
    writeFile(run.project, "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nsource=" + toUtf8(source) +
                               "\n[VTS_1_MENU]\nskipmenu=1\n");
    const Snapshot before = takeSnapshot(run.folder.root);
    ASSERT_EQ(0u, run.author());
    Snapshot after = takeSnapshot(run.folder.root);
    for (const std::string& name : WRITTEN) EXPECT_EQ(1u, after.erase("target/" + name)) << name;
    EXPECT_EQ(names(before), names(after));
    for (const auto& [name, bytes] : before) {
        if (name == "sources/movie.mpg") {
            EXPECT_NE(bytes, after[name]) << "its navigation packs are to be filled";
            EXPECT_EQ(0u, changedOutsideNavPacks(bytes, after[name]));
        } else {
            EXPECT_EQ(bytes, after[name]) << name;
        }
    }
}

TEST(Authoring, NoLogPath)
{
    DiscRun run;
    run.nullLog = true;
    EXPECT_EQ(0x84000FB4u, run.author(plainProject(run, 1)));   // the result is that of a run with a log
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    EXPECT_EQ(0u, run.author());
    EXPECT_FALSE(fileExists(run.log));
}

TEST(Authoring, LogThatCannotBeOpened)
{
    DiscRun run;
    run.log = run.folder / u"missing/run.log";
    EXPECT_EQ(0x84000FB4u, run.author(plainProject(run, 1)));
    EXPECT_FALSE(fileExists(run.log));
}

TEST(Authoring, NullPaths)
{
    DiscRun run;
    writeFile(run.project, plainProject(run, 1));
    const auto* const some = reinterpret_cast<const OrvWChar*>(run.project.c_str());
    EXPECT_EQ(0x84000057u, ParseDVDDescW(nullptr, some, nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(0x84000057u, ParseDVDDescW(some, nullptr, nullptr, nullptr, 0, nullptr));
}
