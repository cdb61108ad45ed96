// AUDIO_SV.VOB, pack by pack, and what AUDIO_SV.IFO says of it.
#include "tests/run/audio_project.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

namespace {

// The first pack of a still: no highlight, or one with buttons of 18 bytes.
Bytes stillNav(bool highlight, const std::vector<std::string>& buttons = {})
{
    std::vector<Piece> pieces = {
        { 0, "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8" },
        { 14, "00 00 01 BB 00 0F 80 C4 E1 00 61 7F B9 E0 E8 BD E0 34 BF E0 01" },
        { 35, "00 00 01 BF 02 E9" },
        { 41, highlight ? "02 00 01" : "02 00 00" },
        { 44, "00 00 8C A0 FF FF FF FF FF FF FF FF" },
        { 786, "00 00 01 BE 04 E8" },
    };
    for (uint64_t i = 0; i < buttons.size(); i++) pieces.push_back({ 88 + 18 * i, buttons[i] });
    Bytes pack = layout(2048, pieces);
    std::fill(pack.begin() + 792, pack.end(), uint8_t(0xFF));
    return pack;
}

Bytes endSector()
{
    return fromHex("00 00 01 B9") + Bytes(2044, 0xFF);
}

// A whole still: sub-picture from sector 1 on, then the video.
Bytes stillPacks(const Bytes& nav, const Bytes& unit, const Bytes& video, bool pal = true)
{
    Bytes packs = nav;
    uint64_t sector = 1;
    for (uint64_t at = 0; at < unit.size();) {
        const uint64_t room = at ? LATER_SPU_BYTES : FIRST_SPU_BYTES;
        packs += menuPack(sector++, at ? LATER_SPU : FIRST_SPU, 0x20, slice(unit, at, room));
        at += room;
    }
    for (uint64_t at = 0; at < video.size();) {
        const uint64_t room = at ? LATER_VIDEO_BYTES : FIRST_VIDEO_BYTES;
        const char* const first = pal ? FIRST_VIDEO_PAL : FIRST_VIDEO_NTSC;
        packs += menuPack(sector++, at ? LATER_VIDEO : first, 0, slice(video, at, room));
        at += room;
    }
    return packs + endSector();
}

}   // namespace

TEST(AudioStills, WithAndWithoutSubPicture)
{
    for (const char* mode : { "PAL", "NTSC" }) {
        SCOPED_TRACE(mode);
        AudioRun run;
        const AudioDisc disc = { .mode = mode,
                                 .stills = { {},
                                             { .bytes = 2012, .hasSubPicture = true },
                                             { .bytes = 2013, .hasSubPicture = true, .moreBytes = 1200 },
                                             { .bytes = 6500, .hasSubPicture = true, .moreBytes = 5000 } } };
        expectAudioDisc(run, disc);
        const bool pal = disc.pal();
        const uint64_t height = pal ? 576 : 480;
        const Bytes expected = stillPacks(stillNav(false), {}, stillAsset(100), pal) +
                               stillPacks(stillNav(true), combUnit(height, {}), stillAsset(2012), pal) +
                               stillPacks(stillNav(true), combUnit(height, combsFor(1200)), stillAsset(2013), pal) +
                               stillPacks(stillNav(true), combUnit(height, combsFor(5000)), stillAsset(6500), pal);
        expectSameBytes(expected, run.get("AUDIO_SV.VOB"), "AUDIO_SV.VOB");
        // 3; 1 + 1 + 1 + 1; 1 + 2 + 2 + 1; 1 + 4 (NTSC 3) + 4 + 1
        expectAt(run.get("AUDIO_SV.IFO"), 888, "00 00 00 03 00 07 00 0D 00 00", "starts");
        expectAt(run.get("AUDIO_SV.IFO"), 20, pal ? "00 00 00 16" : "00 00 00 15", "last sector");
    }
}

// Buttons lie in the packet of the still, with a sub-picture or without; the highlight flag tells of the sub-picture.
TEST(AudioStills, Buttons)
{
    const std::string keys = "buttons=3\n"
                             "button1=16,64,40,100,3,2,3,2,1,BTN_ACTION_JUMP_TT(1,0,0)\n"
                             "button3=291,717,325,495,17,18,19,20,2,BTN_ACTION_LINKPGCN(7,0,0),1\n"
                             "colorset1=1,2,3,4,5,6,7,8\n";
    // 16: 01 0 0; 64: 40. 40: 02 8; 100: 64. 291: 12 3, 717: 2CD; 325: 14 5, 495: 1EF
    const std::vector<std::string> buttons = {
        "41 00 40 02 80 64 03 02 03 02 30 02 00 00 00 01 00 00",
        "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00",
        "92 32 CD 14 51 EF 11 12 13 14 20 04 00 00 00 00 00 07",
    };
    AudioRun run;
    expectAudioDisc(run, { .stills = { { .keys = keys }, { .hasSubPicture = true, .keys = keys } } });
    const Bytes expected = stillPacks(stillNav(false, buttons), {}, stillAsset(100)) +
                           stillPacks(stillNav(true, buttons), combUnit(576, {}), stillAsset(100));
    expectSameBytes(expected, run.get("AUDIO_SV.VOB"), "AUDIO_SV.VOB");
}

TEST(AudioStills, ThirtySixButtons)
{
    AudioRun run;
    expectAudioDisc(run, { .stills = { { .hasSubPicture = true, .keys = buttonKeys(36) } } });
    const Bytes vob = run.get("AUDIO_SV.VOB");
    // The last one: x 632, y 240, colour 3
    expectAt(vob, 88 + 18 * 35, "E7 82 A8 0F 01 2C 23 01 23 01 30 02 00 00 00 01 00 00", "button 36");
    expectZeros(vob, 88 + 18 * 36, 786, "behind the buttons");
}

TEST(AudioStills, NinetyNineStills)
{
    const TempFolder temporary;
    AudioRun run;
    AudioDisc disc;
    for (uint64_t i = 0; i < 99; i++) {
        disc.stills.push_back({ .bytes = 100 + 777 * (i % 7), .hasSubPicture = i % 3 == 0, .moreBytes = 40 * i });
    }
    expectAudioDisc(run, disc);
    expectAt(run.get("AUDIO_SV.IFO"), 96, "63 00 00 01", "stills");
    EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles());
}

// A still of 4148 sectors: those behind it begin where twelve bits do not reach.
TEST(AudioStills, StartSectorBehindTwelveBits)
{
    AudioRun run;
    // 2012 + 4145 x 2025 bytes of video
    expectAudioDisc(run, { .stills = { { .bytes = 2012 + 4145 * 2025 }, {}, {} } });
    const Bytes ifo = run.get("AUDIO_SV.IFO");
    expectAt(ifo, 20, "00 00 10 39", "last sector");     // 4148 + 3 + 3 - 1 = 4153
    expectAt(ifo, 888, "00 00 00 34 00 37", "starts");   // 4148 - 4096
}

// Attributes: four records, the presets where a project says nothing.
TEST(AudioStills, Attributes)
{
    const struct {
        const char* mode;
        std::vector<AudioAttributes> attributes;
        const char* bytes;
    } cases[] = {
        { "PAL", {}, "53 03 00 00 00 00 00 00" },
        { "NTSC", {}, "43 03 00 00 00 00 00 00" },
        { "PAL", { { .mpeg1 = true } }, "13 03 00 00 00 00 00 00" },
        { "PAL", { {}, { .wide = true } }, "53 03 5F 03 00 00 00 00" },
        { "NTSC",
          { { .resolution = 1 }, { .resolution = 2 }, { .resolution = 3 }, { .mpeg1 = true, .wide = true } },
          "43 0B 43 13 43 1B 0F 03" },
    };
    for (const auto& c : cases) {
        AudioRun run;
        expectAudioDisc(run, { .mode = c.mode, .asvs = true, .stills = { {} }, .attributes = c.attributes });
        expectAt(run.get("AUDIO_SV.IFO"), 24, c.bytes, "attributes");
    }
}

// Without stills there is no VOB; one that lies there already is left alone.
TEST(AudioStills, NoStills)
{
    AudioRun run;
    const Bytes old(5000, 0xEE);
    run.put("AUDIO_SV.VOB", old);
    const AudioDisc disc = { .asvs = true };
    ASSERT_EQ(0u, run.author(audioProject(run, disc)));
    EXPECT_EQ(old, run.get("AUDIO_SV.VOB"));
    expectAt(run.get("AUDIO_SV.IFO"), 16, "00 00 00 02 FF FF FF FF", "VOB");
    expectZeros(run.get("AUDIO_SV.IFO"), 888, 4096, "stills");
    EXPECT_EQ(audioCalls(disc), run.calls);
}

// Two stills of one file: each run of the stage reads it from its start.
TEST(AudioStills, OneFileForTwo)
{
    AudioRun run;
    std::string project = audioProject(run, { .stills = { { .bytes = 5000 }, {} } });
    const std::string first = toUtf8(assetPath(run, "ASV01", ".mpg")), second = toUtf8(assetPath(run, "ASV02", ".mpg"));
    ASSERT_EQ(0u, run.author(project.replace(project.find(second), second.size(), first)));
    const Bytes still = stillPacks(stillNav(false), {}, stillAsset(5000));
    expectSameBytes(still + still, run.get("AUDIO_SV.VOB"), "AUDIO_SV.VOB");
}
