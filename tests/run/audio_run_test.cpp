// ParseAudioDesc from end to end: what it leaves, in which order it works, its arguments, both of its forms.
#include "tests/run/audio_project.h"
#include "tests/video/table_bytes.h"

namespace fs = std::filesystem;

namespace {

typedef std::vector<std::string> Names;

// Everything that a disc can have.
AudioDisc richDisc(const std::string& mode = "PAL")
{
    AudioDisc disc = { .mode = mode };
    disc.titleSets = {
        { .tracks = { { .playTime = 8100000, .firstPts = 0, .packs = 300, .assign = 20, .bits = 24, .rate = 96000 },
                      { .playTime = 90001, .firstPts = 8100075, .packs = 7, .assign = 20, .bits = 24 } } },
        { .tracks = { {}, {}, {} } }
    };
    disc.menus = { { .keys = buttonKeys(3) }, { .units = 2, .moreBytes = 3000 }, { .stillBytes = 9000 } };
    disc.menuAttributes = { .wide = true, .resolution = 1 };
    disc.menuColors = { Color::RED, Color::BLACK, Color::WHITE };
    disc.stills = { { .keys = buttonKeys(2) }, { .bytes = 4000, .hasSubPicture = true, .keys = buttonKeys(36) } };
    disc.attributes = { {}, { .mpeg1 = true, .wide = true, .resolution = 3 } };
    disc.stillColors = { Color::GREEN, Color::BLUE };
    return disc;
}

const OrvWChar* wide(const std::u16string& text)
{
    return reinterpret_cast<const OrvWChar*>(text.c_str());
}

uint32_t countCall(uint32_t, uint32_t, uint32_t, uint64_t user)
{
    ++*reinterpret_cast<uint64_t*>(uintptr_t(user));
    return 0;
}

}   // namespace

TEST(AudioAuthoring, PlainDisc)
{
    AudioRun run;
    expectAudioDisc(run, {});
    EXPECT_EQ((Names{ "ATS_01.nfo", "ATS_01_0.BUP", "ATS_01_0.IFO", "AUDIO_PP.IFO", "AUDIO_TS.BUP", "AUDIO_TS.IFO" }),
              targetFiles(run));
    EXPECT_EQ(
        (std::vector<ProgressCall>{
            { 127, 113, 2 }, { 127, 114, 3 }, { 127, 124, 7 }, { 127, 125, 8 }, { 127, 126, 9 }, { 127, 127, 10 } }),
        run.calls);
    // A track of one pack, one second, 16 bits and 48 kHz, stereo: the numbers by hand
    const Bytes ats = run.get("ATS_01_0.IFO");
    expectAt(ats, 12, "00 00 00 04", "last sector");
    expectAt(ats, 256, "00 00 0F 0F 01", "attributes");
    expectAt(ats, 2080, "C0 10 00 00 01 00 00 00 00 00 00 01 5F 90", "track");
    expectAt(run.get("AUDIO_TS.IFO"), 2048, "00 01 00 11 81 01 00 00 00 01 5F 90 01 01 00 00 00 06", "titles");
    expectAt(run.get("AUDIO_TS.IFO"), 256, "53", "video attributes");
    expectAt(run.get("AUDIO_PP.IFO"), 18, "01 01 00 00 00 00 00 01 5F 90 00 00 00 00 C8 0F 0F 01", "track");
    expectAt(run.get("AUDIO_PP.IFO"), 56, "00 00 00 48 00 00 00 48 00 00 00 48", "its sectors");   // 6 + 64 + 2
}

TEST(AudioAuthoring, RichDiscPal)
{
    AudioRun run;
    expectAudioDisc(run, richDisc());
    const Bytes manager = run.get("AUDIO_TS.IFO");
    // Menus of 3, 4 + 2 + 2 and 7 sectors: 1 + 1 + 1; 2 units of 2 and 3 sectors of sub-picture; 1 + 5 + 1
    expectAt(manager, 12, "00 00 00 18", "last sector");   // 17 + 2 x 4 - 1
    expectAt(manager, 48, "00 00 00 19", "stills");
    expectAt(manager, 256, "5F", "video attributes");
    expectAt(manager, 6192 + 164, "00 51 F0 5B 00 10 80 80 00 EB 80 80 00 10 80 80", "palette");
    // Stills of 3 and of 1 + 1 + 2 + 1 sectors
    const Bytes stills = run.get("AUDIO_SV.IFO");
    expectAt(stills, 20, "00 00 00 07", "last sector");
    expectAt(stills, 24, "53 03 1F 1B 00 00 00 00", "attributes");
    expectAt(stills, 32, "00 90 23 36 00 28 6E F0 00 10 80 80", "palette");
    expectAt(stills, 96, "02 00 00 01", "stills");
    expectAt(stills, 888, "00 00 00 03", "starts");
    expectAt(run.get("AUDIO_PP.IFO"), 56, "00 00 00 4A 00 00 00 4A 00 00 01 75", "sectors of track 1");   // 8 + 64 + 2
}

TEST(AudioAuthoring, RichDiscNtsc)
{
    AudioRun run;
    expectAudioDisc(run, richDisc("NTSC"));
    expectAt(run.get("AUDIO_TS.IFO"), 256, "4F", "video attributes");
    expectAt(run.get("AUDIO_TS.IFO"), 6192 + 4, "00 00 00 D2", "play time of a still");
    expectAt(run.get("AUDIO_SV.IFO"), 24, "43 03 0F 1B 00 00 00 00", "attributes");
}

// ---- forms and arguments --------------------------------------------------------------------------------------------

TEST(AudioAuthoring, NarrowForm)
{
    AudioRun run, narrow;
    narrow.narrow = true;
    expectAudioDisc(run, richDisc());
    expectAudioDisc(narrow, richDisc());
    EXPECT_EQ(run.calls, narrow.calls);
    EXPECT_EQ(takeSnapshot(run.folder.root / "target"), takeSnapshot(narrow.folder.root / "target"));
}

// The third argument is not looked at, whatever it is.
TEST(AudioAuthoring, ReservedArgument)
{
    AudioRun plain;
    expectAudioDisc(plain, richDisc());
    const Snapshot expected = takeSnapshot(plain.folder.root / "target");
    for (const bool narrow : { false, true }) {
        for (const char16_t* reserved : { u"", u"nowhere", u"\\\\*?<>|\t", u"." }) {
            AudioRun run;
            run.narrow = narrow;
            run.nullPrevious = false;
            run.previous = reserved;
            expectAudioDisc(run, richDisc());
            EXPECT_EQ(expected, takeSnapshot(run.folder.root / "target"));
        }
    }
    AudioRun run;
    writeFile(run.project, audioProject(run, richDisc()));
    const std::string project = toUtf8(run.project), target = toUtf8(run.target);
    EXPECT_EQ(0u, ParseAudioDesc(project.c_str(), target.c_str(), nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(expected, takeSnapshot(run.folder.root / "target"));
}

TEST(AudioAuthoring, NullArguments)
{
    AudioRun run;
    writeFile(run.project, audioProject(run, {}));
    const Snapshot before = takeSnapshot(run.folder.root);
    const std::string project = toUtf8(run.project), target = toUtf8(run.target), log = toUtf8(run.log);
    uint64_t calls = 0;
    const uint64_t user = uint64_t(reinterpret_cast<uintptr_t>(&calls));
    EXPECT_EQ(0x84000057u, ParseAudioDescW(nullptr, wide(run.target), nullptr, countCall, user, wide(run.log)));
    EXPECT_EQ(0x84000057u, ParseAudioDescW(wide(run.project), nullptr, nullptr, countCall, user, wide(run.log)));
    EXPECT_EQ(0x84000057u, ParseAudioDescW(nullptr, nullptr, nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(0x84000057u, ParseAudioDesc(nullptr, target.c_str(), "", countCall, user, log.c_str()));
    EXPECT_EQ(0x84000057u, ParseAudioDesc(project.c_str(), nullptr, "", countCall, user, log.c_str()));
    EXPECT_EQ(0x84000057u, ParseAudioDesc(nullptr, nullptr, nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(0u, calls);
    EXPECT_EQ(before, takeSnapshot(run.folder.root));

    // Neither callback nor log is needed.
    EXPECT_EQ(0u, ParseAudioDescW(wide(run.project), wide(run.target), nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(audioFiles({}), targetFiles(run));
    EXPECT_EQ(0u, ParseAudioDesc(project.c_str(), target.c_str(), nullptr, countCall, user, nullptr));
    EXPECT_EQ(6u, calls);
    EXPECT_FALSE(fileExists(run.log));
}

// A failing run without a log, and one whose log can't be written, have the same result.
TEST(AudioAuthoring, LogThatCannotBeWritten)
{
    for (const bool null : { false, true }) {
        AudioRun run;
        const std::string project =
            audioProject(run, { .stills = { { .keys = "colorset1=x\n" } } });   // logged where a log can be
        run.nullLog = null;
        run.log = (run.folder.root / "missing" / "run.log").u16string();
        EXPECT_EQ(0x840003EBu, run.author(project));
        EXPECT_FALSE(fileExists(run.folder / u"missing"));
    }
}

TEST(AudioAuthoring, TargetIsAPrefix)
{
    AudioRun run;
    const AudioDisc disc = richDisc();
    const std::string project = audioProject(run, disc);
    run.target.pop_back();
    ASSERT_EQ(0u, run.author(project));
    for (const std::string& name : audioFiles(disc)) {
        if (name.ends_with(".nfo")) continue;
        EXPECT_TRUE(fileExists(run.folder / toWide("target" + name))) << name;
    }
    EXPECT_EQ((Names{ "ATS_01.nfo", "ATS_02.nfo" }), targetFiles(run));
}

TEST(AudioAuthoring, NamesBeyondAscii)
{
    AudioRun run;
    const std::u16string folder = run.folder / u"\u00DCbersicht \u0434\u0438\u0441\u043A";
    fs::create_directory(fs::path(folder));
    run.target = (fs::path(folder) / "").u16string();
    const AudioDisc disc = richDisc();
    // In a form that every system reads as it is: UTF-16 with its mark
    Bytes project = { 0xFF, 0xFE };
    for (const char16_t unit : toWide(audioProject(run, disc))) {
        project.push_back(uint8_t(unit));
        project.push_back(uint8_t(unit >> 8));
    }
    writeFile(run.project, project);
    ASSERT_EQ(0u, run.author());
    for (const std::string& name : audioFiles(disc)) EXPECT_TRUE(run.has(name)) << name;
    expectSameBytes(audioTables(disc)["ATS_01_0.IFO"], run.get("ATS_01_0.IFO"), "ATS_01_0.IFO");
}

// What an earlier run has left is written over.
TEST(AudioAuthoring, SecondRun)
{
    AudioRun run;
    expectAudioDisc(run, richDisc());
    const Snapshot first = takeSnapshot(run.folder.root / "target");
    for (const auto& [name, bytes] : first) {
        if (!name.ends_with(".nfo")) run.put(name, Bytes(bytes.size() + 5000, 0xEE));
    }
    expectAudioDisc(run, richDisc());
    EXPECT_EQ(first, takeSnapshot(run.folder.root / "target"));
}

// ---- the order of work ----------------------------------------------------------------------------------------------

// One title set is read and written before the next is read; stills are made before menus are read.
TEST(AudioAuthoring, ReadingAndWritingAlternate)
{
    const Names stills = { "AUDIO_SV.BUP", "AUDIO_SV.IFO", "AUDIO_SV.VOB" };
    const Names firstSet = { "ATS_01_0.BUP", "ATS_01_0.IFO" };
    const Names secondSet = { "ATS_02_0.BUP", "ATS_02_0.IFO" };
    const struct {
        const char* what;
        const char* from;   // in the project
        const char* to;
        uint64_t result;
        std::vector<Names> left;
        uint64_t calls;
    } cases[] = {
        { "version", "version=1.0", "version=2.0", 0x84001773, {}, 0 },
        { "no version", "version=1.0\n", "", 0x84001772, {}, 0 },
        { "mode", "mode=PAL", "mode=SECAM", 0x84001774, {}, 0 },
        { "no title sets", "titlesets=2", "titlesets=0", 0x84001775, {}, 0 },
        { "100 title sets", "titlesets=2", "titlesets=100", 0x84001776, {}, 0 },
        { "stills", "stills=2", "stills=100", 0x84001788, {}, 0 },
        { "attributes of stills", "attributes=2", "attributes=5", 0x84001789, {}, 0 },
        { "a still", "[ASV02]\nbackground=", "[ASV02]\nx=", 0x840003F6, {}, 0 },
        { "attributes of menus", "videomode=16:9\nresolution=704x576", "videomode=2:1", 0x840003F5, { stills }, 5 },
        { "100 menus", "menus=3", "menus=100", 0x84001787, { stills }, 5 },
        { "a menu", "[AMG_MENU3]\nbackground=", "[AMG_MENU3]\nx=", 0x840003F6, { stills }, 5 },
        { "type of a menu", "[AMG_MENU2]\n", "[AMG_MENU2]\ntype=still\n", 0x840003FC, { stills }, 5 },
        { "track", "[TRACK_01_02]\nformat=LPCM", "[TRACK_01_02]\nformat=PCM", 0x8400177B, { stills }, 5 },
        { "101 tracks", "[ATS_01]\ntracks=2", "[ATS_01]\ntracks=101", 0x84000C1C, { stills }, 5 },
        { "second title set", "[TRACK_02_03]\nformat", "[TRACK_02_03]\nx", 0x8400177B, { stills, firstSet }, 7 },
        { "its number", "[ATS_02]\ntracks=3", "[ATS_02]\ntracks=4", 0x8400177B, { stills, firstSet }, 7 },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        AudioRun run;
        std::string project = audioProject(run, richDisc());
        const size_t at = project.find(c.from);
        ASSERT_NE(std::string::npos, at);
        project.replace(at, std::string(c.from).size(), c.to);
        EXPECT_EQ(c.result, run.author(project));
        Names expected = { "ATS_01.nfo", "ATS_02.nfo" };
        for (const Names& names : c.left) expected.insert(expected.end(), names.begin(), names.end());
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(expected, targetFiles(run));
        EXPECT_EQ(c.calls, run.calls.size());
        EXPECT_FALSE(fileExists(run.log));   // none of these is logged
    }
    // A fault that no title set has: the manager's VOB
    AudioRun run;
    const std::string project = audioProject(run, richDisc());
    fs::remove(fs::path(assetPath(run, "AMG_MENU1", ".bmp")));
    EXPECT_NE(0u, run.author(project));
    for (const Names& names : { stills, firstSet, secondSet }) {
        for (const std::string& name : names) EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_FALSE(run.has("AUDIO_TS.IFO"));
    EXPECT_FALSE(run.has("AUDIO_PP.IFO"));
}

// No title sets: that is told before stills are looked at.
TEST(AudioAuthoring, StillsWithoutTitleSets)
{
    AudioRun run;
    EXPECT_EQ(0x84001775u, run.author(audioProject(run, { .titleSets = {}, .stills = { {} } })));
    EXPECT_EQ(Names(), targetFiles(run));
    EXPECT_EQ(0x84001775u, run.author("[COMMON]\nversion=1.0\n[ASVS]\nstills=100\n"));
}

TEST(AudioAuthoring, ProjectThatIsNotThere)
{
    AudioRun run;
    EXPECT_EQ(0x84001772u, run.author());
    EXPECT_EQ(Names(), targetFiles(run));
    EXPECT_EQ(0u, run.calls.size());
    EXPECT_EQ(0x84001772u, run.author(""));
}

// A section that says anything at all, be it no key, makes stills a part of the disc.
TEST(AudioAuthoring, SectionOfStills)
{
    const struct {
        const char* section;
        bool there;
    } cases[] = {
        { "", false },
        { "[ASVS]\n", false },
        { "[ASVS]\n[OTHER]\nstills=1\n", false },
        { "[ASVS]\nstills=0\n", true },
        { "[ASVS]\nattributes=0\n", true },
        { "[ASVS]\nsomething=else\n", true },
        { "[asvs]\nstills=\n", true },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.section);
        AudioRun run;
        const AudioDisc disc = { .asvs = c.there };
        const std::string project = audioProject(run, {});
        ASSERT_EQ(0u, run.author(project + c.section));
        EXPECT_EQ(audioFiles(disc), targetFiles(run));
        EXPECT_EQ(audioCalls(disc), run.calls);
        for (const auto& [name, bytes] : audioTables(disc)) expectSameBytes(bytes, run.get(name), name);
        expectAt(run.get("AUDIO_TS.IFO"), 48, c.there ? "00 00 00 06" : "00 00 00 00", "stills");
        expectAt(run.get("ATS_01_0.IFO"), 2064 + 14, c.there ? "00 30" : "00 00", "stills of the tracks");
    }
}

// ---- title sets -----------------------------------------------------------------------------------------------------

TEST(AudioAuthoring, NinetyNineTitleSets)
{
    AudioRun run;
    AudioDisc disc;
    disc.titleSets.clear();
    for (uint64_t i = 1; i <= 99; i++) {
        disc.titleSets.push_back({ .tracks = std::vector<AudioTrack>(1 + i % 3, AudioTrack{ .packs = i }) });
    }
    expectAudioDisc(run, disc);
    EXPECT_EQ((ProgressCall{ 10123, 10123, 10 }), run.calls.back());
}

TEST(AudioAuthoring, NoTracks)
{
    AudioRun run;
    expectAudioDisc(run, { .titleSets = { { .tracks = {} }, { .tracks = {} } }, .asvs = true });
    EXPECT_EQ(Bytes(), run.get("ATS_01_1.AOB"));
    expectAt(run.get("ATS_01_0.IFO"), 2064, "00 00 00 00 00 00 00 00 00 00 00 10 00 10 00 10", "tracks");
    expectAt(run.get("AUDIO_PP.IFO"), 12, "00 00 00 12 00 00 00 00", "head");
}

TEST(AudioAuthoring, OneHundredTracks)
{
    AudioRun run;
    AudioDisc disc = { .asvs = true };
    disc.titleSets[0].tracks.clear();
    for (uint64_t i = 1; i <= 100; i++)
        disc.titleSets[0].tracks.push_back({ .playTime = i, .firstPts = 7 * i, .packs = i });
    // The table of 16 + 16 + 4800 bytes takes three sectors.
    expectAudioDisc(run, disc);
    EXPECT_EQ(4u * 2048, run.get("ATS_01_0.IFO").size());
    expectAt(run.get("AUDIO_PP.IFO"), 56, "00 00 00 4A", "sector of track 1");   // 6 + 64 + 4
}

TEST(AudioAuthoring, Waves)
{
    AudioRun run;
    expectAudioDisc(run, { .titleSets = { { .sound = Sound::WAVES }, {}, { .sound = Sound::WAVES } } });
    EXPECT_EQ(2048u, run.get("ATS_01_1.AOB").size());
    EXPECT_EQ(2048u, run.get("ATS_03_1.AOB").size());
}

// An AOB without its information: no packs, no failure.
TEST(AudioAuthoring, MissingInformation)
{
    AudioRun run;
    expectAudioDisc(run, { .titleSets = { { .tracks = { {}, {} }, .sound = Sound::UNKNOWN } } });
    expectAt(run.get("ATS_01_0.IFO"), 12, "00 00 00 03", "last sector");
    expectAt(run.get("ATS_01_0.IFO"), 2120, "01 00 00 00 00 00 00 00 FF FF FF FF", "sectors of track 1");
    expectAt(run.get("AUDIO_PP.IFO"), 56, "00 00 00 48 00 00 00 48 00 00 00 47", "sectors of track 1");
}

// The last track decides whether a title set's sound is finished. Behind it a track that names a WAVE file has no
// information; a track that names an AOB is no WAVE file.
TEST(AudioAuthoring, TheLastTrackDecides)
{
    AudioRun run;
    std::string project = audioProject(run, { .titleSets = { { .tracks = { {}, { .firstPts = 77, .packs = 5 } } } } });
    const std::string aob = run.text("ATS_01_1.AOB"), wave = toUtf8(run.folder / u"sound.wav");
    writeFile(run.folder / u"sound.wav", Bytes(100, 0x11));
    const size_t first = project.find(aob), second = project.rfind(aob);
    ASSERT_LT(first, second);
    ASSERT_EQ(0u, run.author(std::string(project).replace(first, aob.size(), wave)));
    EXPECT_FALSE(run.has("ATS_01_1.AOB"));
    Bytes ifo = run.get("ATS_01_0.IFO");
    expectAt(ifo, 2120, "01 00 00 00 00 00 00 00 FF FF FF FF", "sectors of track 1");
    expectAt(ifo, 2132, "01 00 00 00 00 00 00 00 00 00 00 04", "sectors of track 2");

    AudioRun other;
    project = audioProject(other, { .titleSets = { { .tracks = { {}, { .firstPts = 77, .packs = 5 } } } } });
    const std::string otherAob = other.text("ATS_01_1.AOB");
    EXPECT_EQ(0x84001783u, other.author(project.replace(project.rfind(otherAob), otherAob.size(), wave)));
    EXPECT_TRUE(other.has("ATS_01_1.AOB"));   // opened, for the track that is none
    EXPECT_FALSE(other.has("ATS_01_0.IFO"));
}

// A title set whose first track has no channel at all is told by its last.
TEST(AudioAuthoring, TrackWithoutChannel)
{
    AudioRun run;
    const AudioDisc disc = { .titleSets = { { .tracks = { { .packs = 3 }, { .packs = 5 } } } } };
    std::string project = audioProject(run, disc);
    const std::string key = "channel1=" + run.text("ATS_01_1.AOB") + "\n";
    ASSERT_EQ(0u, run.author(project.erase(project.find(key), key.size())));
    expectAt(run.get("ATS_01_0.IFO"), 2120, "01 00 00 00 00 00 00 00 FF FF FF FF", "sectors of track 1");
    expectAt(run.get("ATS_01_0.IFO"), 2132, "01 00 00 00 00 00 00 00 00 00 00 04", "sectors of track 2");
}

// The information lies where the project says, not in the target.
TEST(AudioAuthoring, InformationElsewhere)
{
    AudioRun run;
    const AudioDisc disc = { .titleSets = { { .tracks = { { .packs = 3 } } } } };
    std::string project = audioProject(run, disc);
    const std::string aob = run.text("ATS_01_1.AOB");
    fs::create_directory(run.folder.root / "sound");
    fs::rename(fs::path(run.inTarget("ATS_01.nfo")), run.folder.root / "sound" / "ATS_01.nfo");
    project.replace(project.find(aob), aob.size(), toUtf8((run.folder.root / "sound" / "any name.aob").u16string()));
    ASSERT_EQ(0u, run.author(project));
    for (const auto& [name, bytes] : audioTables(disc)) expectSameBytes(bytes, run.get(name), name);
    EXPECT_FALSE(run.has("ATS_01.nfo"));
}

// Keys that no table has room for
TEST(AudioAuthoring, NamesAreNotOnTheDisc)
{
    AudioRun plain, named;
    expectAudioDisc(plain, { .titleSets = { {}, {} } });
    expectAudioDisc(named, { .titleSets = { { .keys = "album=An album\nartist=Somebody\nmenus=5\n" }, {} } });
    EXPECT_EQ(takeSnapshot(plain.folder.root / "target"), takeSnapshot(named.folder.root / "target"));
}
