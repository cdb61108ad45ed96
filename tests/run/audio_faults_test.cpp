// Stills and menus of a DVD-Audio disc that can't be made: results, log, what is left. No unit of a sub-picture stays
// behind.
#include "tests/run/audio_project.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> NONE = {};

// The two stages with pictures, by what tells them apart.
struct PictureStage {
    const char* name;
    bool menu;
    const char* section;   // of the second picture
    const char* vob;
    const char16_t* notOpened;   // in the log
    std::vector<std::string> tables;
    uint32_t kind;   // of its calls
};
const PictureStage STAGES[] = {
    { "stills",
      false,
      "ASV02",
      "AUDIO_SV.VOB",
      u"Failed to open file in <CreateStillManager>: ",
      { "AUDIO_SV.IFO", "AUDIO_SV.BUP" },
      4 },
    { "menus",
      true,
      "AMG_MENU2",
      "AUDIO_TS.VOB",
      u"Failed to open file in <CreateAudioManager>: ",
      { "AUDIO_TS.IFO", "AUDIO_TS.BUP", "AUDIO_PP.IFO" },
      7 },
};

// A picture of either kind.
struct Picture {
    std::optional<Bytes> background = {}, subPicture = {};
    uint64_t moreBytes = 0;
    std::string keys = {};
};

// A run of three pictures, the second of which is something else.
struct FaultyPicture {
    explicit FaultyPicture(const PictureStage& whose) : stage(whose) {}

    AudioDisc disc(const Picture& picture, const std::string& mode = "PAL") const
    {
        AudioDisc disc = { .mode = mode };
        const AudioMenu menu = { .moreBytes = picture.moreBytes,
                                 .keys = picture.keys,
                                 .background = picture.background,
                                 .subPicture = picture.subPicture };
        const AudioStill still = { .hasSubPicture = true,
                                   .moreBytes = picture.moreBytes,
                                   .keys = picture.keys,
                                   .background = picture.background,
                                   .subPicture = picture.subPicture };
        if (stage.menu) disc.menus = { {}, menu, {} };
        if (!stage.menu) disc.stills = { { .hasSubPicture = true }, still, {} };
        return disc;
    }
    uint64_t author(const Picture& picture, const std::string& mode = "PAL")
    {
        return run.author(audioProject(run, disc(picture, mode)));
    }
    std::u16string path(const char* ending) const
    {
        return assetPath(run, stage.section, ending);
    }
    // The first picture is in the VOB; no table of the stage is written, nor what follows it.
    void expectStopped(uint64_t expected, uint64_t result, const std::string& what) const
    {
        EXPECT_EQ(expected, result) << stage.name << ", " << what;
        EXPECT_EQ(NONE, temporary.unitFiles()) << stage.name << ", " << what;
        for (const std::string& table : stage.tables) EXPECT_FALSE(run.has(table)) << table << ", " << what;
        EXPECT_EQ(stage.menu, run.has("ATS_01_0.IFO")) << what;
        // 1 + 1 + 1 sectors of a menu, one more of a still
        EXPECT_LE((stage.menu ? 3u : 4u) * 2048, run.get(stage.vob).size()) << what;
        EXPECT_EQ(stage.kind, run.calls.empty() ? 0 : run.calls.back().kind) << what;
        EXPECT_EQ(1u, std::count_if(run.calls.begin(), run.calls.end(),
                                    [&](const ProgressCall& call) { return call.kind == stage.kind; }))
            << what;
    }

    const PictureStage& stage;
    TempFolder temporary;
    AudioRun run;
};

}   // namespace

// ---- backgrounds ----------------------------------------------------------------------------------------------------

TEST(AudioFaults, BackgroundThatIsNotThere)
{
    for (const PictureStage& stage : STAGES) {
        for (const bool folder : { false, true }) {
            FaultyPicture faulty(stage);
            const std::string project = audioProject(faulty.run, faulty.disc({}));
            EXPECT_TRUE(fs::remove(fs::path(faulty.path(".mpg"))));
            if (folder) fs::create_directory(fs::path(faulty.path(".mpg")));
            faulty.expectStopped(0x840007EF, faulty.run.author(project), folder ? "folder" : "missing");
            EXPECT_TRUE(logHolds(faulty.run.log, { { 0x840007EF, stage.notOpened + faulty.path(".mpg") } }));
            EXPECT_EQ((stage.menu ? 3u : 4u) * 2048, faulty.run.get(stage.vob).size());
        }
    }
}

// Menus are probed; stills take any file for video.
TEST(AudioFaults, BackgroundOfNeitherForm)
{
    for (const char* const start : { "", "00", "00 00 01", "00 00 01 B5 00 00 00 00", "00 00 01 E0", "00 00 00 01 B3",
                                     "B3 01 00 00", "52 49 46 46 00 00" }) {
        FaultyPicture menu(STAGES[1]), still(STAGES[0]);
        menu.expectStopped(0x840007D8, menu.author({ .background = fromHex(start) }), start);
        EXPECT_TRUE(logHolds(menu.run.log, { { 0x840007D8, u"Video is not animated in <CreateAudioManager>, file: " +
                                                               menu.path(".mpg") } }))
            << start;
        EXPECT_EQ(0u, still.author({ .background = fromHex(start) })) << start;
        EXPECT_FALSE(fileExists(still.run.log)) << start;
        EXPECT_EQ((4u + 4 + 3) * 2048, still.run.get("AUDIO_SV.VOB").size()) << start;
    }
}

// The sub-picture comes first: a bad one is told although the background is missing too.
TEST(AudioFaults, SubPictureComesFirst)
{
    for (const PictureStage& stage : STAGES) {
        FaultyPicture faulty(stage);
        const std::string project =
            audioProject(faulty.run, faulty.disc({ .subPicture = fromHex("4D 42") + Bytes(100) }));
        EXPECT_TRUE(fs::remove(fs::path(faulty.path(".mpg"))));
        faulty.expectStopped(0x84000057, faulty.run.author(project), "no bitmap, no background");
        EXPECT_FALSE(fileExists(faulty.run.log));
    }
}

TEST(AudioFaults, AnimatedBackgroundThatIsTooShort)
{
    const Movie asset = shortUnits(2);
    for (const uint64_t bytes : { 4u, 2047u, 2048u, 4095u }) {
        FaultyPicture faulty(STAGES[1]);
        faulty.expectStopped(0x840007E6, faulty.author({ .background = slice(asset.bytes, 0, bytes) }),
                             std::to_string(bytes));
        EXPECT_FALSE(fileExists(faulty.run.log));
    }
}

// ---- sub-pictures ---------------------------------------------------------------------------------------------------

TEST(AudioFaults, BitmapsThatAreNone)
{
    const Bytes good = bmpFile(ByteImage(576));
    Bytes wide = good, tooSmall = good;
    wide[18] = 0xD1;   // 721
    tooSmall[3] = 0;   // a file that is smaller than its picture, as its header says
    const struct {
        const char* what;
        std::optional<Bytes> bytes;
        uint64_t result;
    } cases[] = {
        { "empty", Bytes(), 0x88010102 },
        { "cut in the first header", slice(good, 0, 13), 0x88010102 },
        { "cut in the second header", slice(good, 0, 53), 0x88010102 },
        { "cut in the pixels", slice(good, 0, good.size() - 1), 0x88010102 },
        { "another mark", fromHex("42 4E") + slice(good, 2, good.size()), 0x84000057 },
        { "too wide", wide, 0x84000057 },
        { "lines of the other standard", bmpFile(ByteImage(480)), 0x84000057 },
        { "upside down", bmpFile(ByteImage(576), { .topDown = true }), 0x84000057 },
        { "too small", tooSmall, 0x84000057 },
    };
    for (const PictureStage& stage : STAGES) {
        for (const auto& c : cases) {
            FaultyPicture faulty(stage);
            faulty.expectStopped(c.result, faulty.author({ .subPicture = c.bytes }), c.what);
            EXPECT_FALSE(fileExists(faulty.run.log)) << c.what;
        }
        FaultyPicture missing(stage);
        const std::string project = audioProject(missing.run, missing.disc({}));
        EXPECT_TRUE(fs::remove(fs::path(missing.path(".bmp"))));
        missing.expectStopped(2, missing.run.author(project), "missing");   // the number of both systems
        EXPECT_FALSE(fileExists(missing.run.log));
    }
}

// 53248 bytes are the most; a unit has an even size. 1180 bytes in PAL and 988 in NTSC are those of an empty picture.
TEST(AudioFaults, SubPictureOf52KBytes)
{
    const struct {
        const char* mode;
        uint64_t more;   // bytes
        bool passes;
    } cases[] = {
        { "PAL", 52066, true },  { "PAL", 52068, true },  { "PAL", 52070, false },
        { "PAL", 56000, false }, { "NTSC", 52260, true }, { "NTSC", 52262, false },
    };
    for (const PictureStage& stage : STAGES) {
        for (const auto& c : cases) {
            FaultyPicture faulty(stage);
            const uint64_t result = faulty.author({ .moreBytes = c.more }, c.mode);
            const std::string what = c.mode + std::to_string(c.more);
            if (!c.passes) {
                faulty.expectStopped(0x840007DA, result, what);
                EXPECT_FALSE(fileExists(faulty.run.log)) << what;
                continue;
            }
            EXPECT_EQ(0u, result) << stage.name << what;
            const AudioDisc disc = faulty.disc({ .moreBytes = c.more }, c.mode);
            const uint64_t sectors = stage.menu ? menuVobSectors(disc) : stillVobSectors(disc);
            EXPECT_EQ(sectors * 2048, faulty.run.get(stage.vob).size()) << what;
            EXPECT_EQ(NONE, faulty.temporary.unitFiles());
        }
    }
}

TEST(AudioFaults, TemporaryFolderThatIsNotThere)
{
    for (const PictureStage& stage : STAGES) {
        AudioRun run;
        const std::string project = audioProject(run, FaultyPicture(stage).disc({}));
        const TempFolder missing((run.folder.root / "missing").u16string());
        EXPECT_EQ(0x840007EDu, run.author(project)) << stage.name;
        EXPECT_FALSE(fileExists(run.log));
        EXPECT_FALSE(fileExists(run.folder / u"missing"));
        EXPECT_EQ(0u, run.get(stage.vob).size());
    }
}

// A still without a sub-picture needs none.
TEST(AudioFaults, StillsNeedNoTemporaryFolder)
{
    AudioRun run;
    const std::string project = audioProject(run, { .stills = { {}, {} } });
    const TempFolder missing((run.folder.root / "missing").u16string());
    EXPECT_EQ(0u, run.author(project));
}

// ---- buttons --------------------------------------------------------------------------------------------------------

// An unknown name is no command, and a button without a key is one of zeros.
TEST(AudioFaults, CommandsThatAreNone)
{
    for (const PictureStage& stage : STAGES) {
        FaultyPicture unknown(stage);
        EXPECT_EQ(0u, unknown.author({ .keys = "buttons=1\nbutton1=0,10,0,10,1,1,1,1,1,NO_SUCH_COMMAND(1,2,3)\n" }));
        FaultyPicture none(stage);
        EXPECT_EQ(0u, none.author({ .keys = "buttons=2\n" }));
        EXPECT_FALSE(fileExists(none.run.log));
    }
}

TEST(AudioFaults, SyntaxOfAButtonIsLogged)
{
    const std::string value = "0,10,0,10,1,1,1,1,1,BTN_ACTION_JUMP_TT(1,0";
    for (const PictureStage& stage : STAGES) {
        AudioRun run;
        const AudioDisc disc = FaultyPicture(stage).disc({ .keys = "buttons=1\nbutton1=" + value + "\n" });
        EXPECT_EQ(0x840003EDu, run.author(audioProject(run, disc))) << stage.name;
        EXPECT_TRUE(logHolds(run.log, { { 0x840003ED, u"No comma found after <param2> in <button> in string: " } }));
        EXPECT_FALSE(run.has(stage.vob));   // all pictures are read before the first is made
        EXPECT_FALSE(run.has("ATS_01_0.IFO"));
    }
}

// ---- sound ----------------------------------------------------------------------------------------------------------

TEST(AudioFaults, WaveFiles)
{
    const struct {
        const char* what;
        std::optional<Bytes> bytes;
        uint64_t result;
    } cases[] = {
        { "missing", std::nullopt, 2 },
        { "no RIFF", Bytes(100, 0x11), 0x84001783 },
        { "empty", Bytes(), 0x84001783 },
    };
    for (const auto& c : cases) {
        AudioRun run;
        const std::string project = audioProject(run, { .titleSets = { { .sound = Sound::WAVES } } });
        EXPECT_TRUE(fs::remove(fs::path(run.folder / u"sound_01_01.wav")));
        if (c.bytes) writeFile(run.folder / u"sound_01_01.wav", *c.bytes);
        EXPECT_EQ(c.result, run.author(project)) << c.what;
        EXPECT_FALSE(fileExists(run.log)) << c.what;
        EXPECT_EQ(Bytes(), run.get("ATS_01_1.AOB")) << c.what;
        EXPECT_FALSE(run.has("ATS_01_0.IFO")) << c.what;
        EXPECT_TRUE(run.calls.empty()) << c.what;
    }
}
