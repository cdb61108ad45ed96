// Menus of the audio manager: AUDIO_TS.VOB and what AUDIO_TS.IFO says of it.
#include "tests/run/audio_project.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

namespace fs = std::filesystem;

namespace {

constexpr uint64_t UNIT = 6160;   // of the languages, in AUDIO_TS.IFO

uint64_t chainAt(const Bytes& ifo, uint64_t menu)   // from 1
{
    return UNIT + numberAt(ifo, UNIT + 8 * menu + 4, 4);
}

}   // namespace

// The packs behind the navigation pack: one of the video, the sub-picture, the rest of the video.
TEST(AudioMenus, StillPacks)
{
    for (const char* mode : { "PAL", "NTSC" }) {
        SCOPED_TRACE(mode);
        AudioRun run;
        const AudioDisc disc = { .mode = mode, .menus = { { .stillBytes = 9000, .moreBytes = 3000 }, {} } };
        expectAudioDisc(run, disc);
        const bool pal = disc.pal();
        const uint64_t height = pal ? 576 : 480;
        const Bytes vob = run.get("AUDIO_TS.VOB"), video = stillAsset(9000);
        uint64_t sector = 3;
        const char* const first = pal ? FIRST_VIDEO_PAL : FIRST_VIDEO_NTSC;
        Bytes expected = menuPack(1, first, 0, slice(video, 0, FIRST_VIDEO_BYTES));
        expected += spuPacks(combUnit(height, combsFor(3000)), 0x20, sector);
        expected += laterVideoPacks(video, sector);
        expectSameBytes(expected, slice(vob, 2048, expected.size()), "packs of menu 1");
        const uint64_t second = 2048 + expected.size();
        sector = 3;
        expected = menuPack(1, first, 0, stillAsset(100)) + spuPacks(combUnit(height, {}), 0x20, sector);
        expectSameBytes(expected, slice(vob, second + 2048, expected.size()), "packs of menu 2");
        EXPECT_EQ(second + 2048 + expected.size(), vob.size());
    }
}

// Navigation packs: VOB numbers, sectors, buttons; no streams of sound or of sub-pictures are told.
TEST(AudioMenus, NavigationPacks)
{
    AudioRun run;
    expectAudioDisc(
        run,
        { .menus = { { .keys = "colorset1=1,2,3,4,5,6,7,8\n" + buttonKeys(2) }, {}, { .keys = buttonKeys(36) } } });
    const Bytes vob = run.get("AUDIO_TS.VOB");
    const uint64_t buttons[] = { 2, 0, 36 };
    for (uint64_t i = 0; i < 3; i++) {
        const uint64_t at = 3 * i * 2048;
        expectAt(vob, at + 14, "00 00 01 BB 00 12 80 C4 E1 00 E1 7F", "system header");
        expectAt(vob, at + 38, "00 00 01 BF 03 D4 00", "PCI");
        EXPECT_EQ(3 * i, numberAt(vob, at + 45, 4));
        expectAt(vob, at + 57, "00 00 46 50 00 00 EF 10", "display");   // 18000, 12 frames
        EXPECT_EQ(buttons[i] * 0x101, numberAt(vob, at + 158, 2));
        expectAt(vob, at + 1024, "00 00 01 BF 03 FA 01 00 00 00 00", "DSI");
        EXPECT_EQ(3 * i, numberAt(vob, at + 1035, 4));
        EXPECT_EQ(2u, numberAt(vob, at + 1039, 4));
        EXPECT_EQ(i + 1, numberAt(vob, at + 1055, 2));
        EXPECT_EQ(1u, numberAt(vob, at + 1058, 1));
        expectZeros(vob, at + 1449, at + 2048, "pointers to sub-pictures");
    }
    // e2 and e1, p and bg, their contrasts; the same again for an activated button
    expectAt(vob, 163, "43 21 87 65 43 21 87 65 00 00", "colours of menu 1");
    // Button 1: x 16 to 64, y 40 to 100, all neighbours 2
    expectAt(vob, 187, "41 00 40 02 80 64 02 02 02 02 30 02 00 00 00 01 00 00", "button 1 of menu 1");
}

TEST(AudioMenus, AnimatedMenus)
{
    for (const char* mode : { "PAL", "NTSC" }) {
        SCOPED_TRACE(mode);
        AudioRun run;
        // Units of 1 + 1 + 1, 2 and 2 sectors; a still of three; units of three and two
        expectAudioDisc(run, { .mode = mode, .menus = { { .units = 3 }, {}, { .units = 2 } } });
        const bool pal = std::string(mode) == "PAL";
        const Bytes ifo = run.get("AUDIO_TS.IFO"), vob = run.get("AUDIO_TS.VOB");
        EXPECT_EQ(15u * 2048, vob.size());
        const struct {
            const char* pal;
            const char* ntsc;
            const char* sectors;
            const char* numbers;
        } menus[] = {
            // 36 frames; the first unit
            { "00 00 01 51", "00 00 01 C6", "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02", "00 01 00 01" },
            // one frame, told as twelve; the second unit, which is of menu 1 too
            { "00 00 00 52", "00 00 00 D2", "00 00 00 03 00 00 00 00 00 00 00 03 00 00 00 04", "00 01 00 01" },
            { "00 00 00 64", "00 00 00 E4", "00 00 00 05 00 00 00 00 00 00 00 05 00 00 00 06", "00 01 00 01" },
        };
        for (uint64_t i = 0; i < 3; i++) {
            const uint64_t at = chainAt(ifo, i + 1);
            expectAt(ifo, at + 4, pal ? menus[i].pal : menus[i].ntsc, "play time");
            expectAt(ifo, at + 262 + 8, menus[i].sectors, "sectors");
            expectAt(ifo, at + 286, menus[i].numbers, "numbers");
        }
        const uint64_t starts[] = { 0, 3, 5, 7, 10, 13 }, vobs[] = { 1, 1, 1, 2, 3, 3 };
        for (uint64_t i = 0; i < 6; i++) {
            EXPECT_EQ(starts[i], numberAt(vob, starts[i] * 2048 + 1035, 4));
            EXPECT_EQ(vobs[i], numberAt(vob, starts[i] * 2048 + 1055, 2));
        }
    }
}

// A background without a navigation pack gives no record: its menu has frames of nobody, and nothing is read behind the
// list.
TEST(AudioMenus, MenuWithoutNavigationPack)
{
    AudioRun run;
    const Bytes asset = videoPack(picture(500, 0, 1), { .clock = {}, .pts = 18000 }) + paddingPack() + paddingPack();
    ASSERT_EQ(0u, run.author(audioProject(run, { .menus = { { .background = asset }, {} } })));
    const Bytes ifo = run.get("AUDIO_TS.IFO");
    // Records: what lies before the first navigation pack, then the still, which is VOB 1.
    expectAt(ifo, chainAt(ifo, 1) + 4, "00 00 00 52", "play time of menu 1");
    expectAt(ifo, chainAt(ifo, 1) + 262 + 8, "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 03", "sectors of menu 1");
    expectAt(ifo, chainAt(ifo, 1) + 286, "00 00 00", "numbers of menu 1");
    expectAt(ifo, chainAt(ifo, 2) + 4, "00 00 00 40", "play time of menu 2");
    expectAt(ifo, chainAt(ifo, 2) + 262 + 8, "00 00 00 04 00 00 00 00 00 00 00 04 00 00 00 06", "sectors of menu 2");
    expectAt(ifo, chainAt(ifo, 2) + 286, "00 01 00 01", "numbers of menu 2");
}

// The table of seven menus ends 62 bytes behind a sector, which are not on the disc; that of eight is whole.
TEST(AudioMenus, SevenMenusAndEight)
{
    for (const uint64_t menus : { 6u, 7u, 8u }) {
        AudioRun run;
        expectAudioDisc(run, { .menus = std::vector<AudioMenu>(menus) });
        const Bytes ifo = run.get("AUDIO_TS.IFO");
        EXPECT_EQ(menus < 8 ? 4u * 2048 : 5u * 2048, ifo.size());
        EXPECT_EQ(23 + 298 * menus, numberAt(ifo, 6144 + 4, 4));
        // AUDIO_PP.IFO counts the sectors that there are, and none of the menus.
        EXPECT_EQ(2 * ifo.size() / 2048 + 64 + 2, numberAt(run.get("AUDIO_PP.IFO"), 56, 4));
    }
}

TEST(AudioMenus, NinetyNineMenus)
{
    const TempFolder temporary;
    AudioRun run;
    expectAudioDisc(run, { .menus = std::vector<AudioMenu>(99), .asvs = true });
    const Bytes ifo = run.get("AUDIO_TS.IFO");
    expectAt(ifo, 12, "00 00 01 4C", "last sector");   // 297 + 2 x 18 - 1
    expectAt(ifo, 48, "00 00 01 4D", "stills");
    expectAt(ifo, 6144, "00 01 00 00 00 00 73 55", "head of the menus");
    EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles());
}

TEST(AudioMenus, VideoAttributes)
{
    const struct {
        const char* mode;
        AudioAttributes attributes;
        const char* byte;
    } cases[] = {
        { "PAL", {}, "53" },
        { "NTSC", {}, "43" },
        { "PAL", { .mpeg1 = true }, "13" },
        { "NTSC", { .mpeg1 = true, .wide = true, .resolution = 3 }, "0F" },
        { "PAL", { .wide = true }, "5F" },
    };
    for (const auto& c : cases) {
        for (const bool menu : { false, true }) {   // they are there without a menu too
            AudioRun run;
            AudioDisc disc = { .mode = c.mode, .menuAttributes = c.attributes };
            if (menu) disc.menus = { {} };
            expectAudioDisc(run, disc);
            expectAt(run.get("AUDIO_TS.IFO"), 256, c.byte, "attributes");
        }
    }
}

// A project without a section AMG_MENU
TEST(AudioMenus, PresetAttributes)
{
    AudioRun run;
    std::string project = audioProject(run, {});
    const size_t from = project.find("[AMG_MENU]"), to = project.find("[ATS_01]");
    ASSERT_EQ(0u, run.author(project.erase(from, to - from)));
    expectAt(run.get("AUDIO_TS.IFO"), 256, "53", "attributes");
}

// Without menus nobody makes AUDIO_TS.VOB; one that lies there is left alone and does not count.
TEST(AudioMenus, NoMenus)
{
    AudioRun run;
    const Bytes old(5000, 0xEE);
    run.put("AUDIO_TS.VOB", old);
    ASSERT_EQ(0u, run.author(audioProject(run, {})));
    EXPECT_EQ(old, run.get("AUDIO_TS.VOB"));
    expectAt(run.get("AUDIO_TS.IFO"), 12, "00 00 00 05", "last sector");
    expectAt(run.get("AUDIO_TS.IFO"), 192, "00 00 00 00", "menus");
}

// Every audio menu is a still menu as far as its section says: the key that would tell is refused.
TEST(AudioMenus, TypeIsRefused)
{
    for (const char* type : { "still", "animated", "type" }) {
        AudioRun run;
        const AudioDisc disc = { .menus = { { .keys = std::string("type=") + type + "\n" } } };
        EXPECT_EQ(0x840003FCu, run.author(audioProject(run, disc))) << type;
        EXPECT_FALSE(fileExists(run.log));
        EXPECT_FALSE(run.has("AUDIO_TS.VOB"));
    }
}
