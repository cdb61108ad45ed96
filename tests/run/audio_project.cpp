// audio_project.cpp: the files of a disc and the project that names them.
#include "tests/run/audio_project.h"

#include "tests/support/elementary.h"
#include "tests/video/table_bytes.h"

#include <algorithm>

static std::string two(uint64_t number)
{
    return (number < 10 ? "0" : "") + std::to_string(number);
}

static std::string key(const std::string& name, uint64_t value)
{
    return name + "=" + std::to_string(value) + "\n";
}

std::string atsName(uint64_t number)
{
    return "ATS_" + two(number);
}

// ---- sound ----------------------------------------------------------------------------------------------------------

static std::string trackSection(const DiscRun& run, const AudioSet& set, uint64_t number, uint64_t i)
{
    const AudioTrack& track = set.tracks[i];
    std::string text = "[TRACK_" + two(number) + "_" + two(i + 1) + "]\nformat=LPCM\n";
    text += track.assign ? key("assign", track.assign) : key("channels", 1);
    text += key("samplesize", track.bits) + key("samplerate", track.rate) + key("playtime", track.playTime);
    if (set.sound != Sound::WAVES) return text + "channel1=" + run.text(atsName(number) + "_1.AOB") + "\n";
    const std::u16string path = run.folder / toWide("sound_" + two(number) + "_" + two(i + 1) + ".wav");
    writeFile(path, waveHeader({ .dataBytes = 400 }) + filler(400));
    return text + "endsample=99\nchannel1=" + toUtf8(path) + "\n";
}

static std::string titleSetSections(const DiscRun& run, const AudioSet& set, uint64_t number)
{
    std::string text = "[" + atsName(number) + "]\n" + key("tracks", set.tracks.size()) + set.keys, info;
    for (uint64_t i = 0; i < set.tracks.size(); i++) {
        text += trackSection(run, set, number, i);
        info += "[TRACKINFO_" + two(i + 1) + "]\n" + key("TrackBlockSize", set.tracks[i].packs) +
                key("TrackFirstCellPts", set.tracks[i].firstPts);
    }
    if (set.sound == Sound::FINISHED) writeFile(run.inTarget(atsName(number) + ".nfo"), info);
    return text;
}

// ---- pictures -------------------------------------------------------------------------------------------------------

static Bytes combBitmap(const AudioDisc& disc, uint64_t moreBytes)
{
    return bmpFile(combImage(disc.pal() ? 576 : 480, combsFor(moreBytes)));
}

static std::string attributeKeys(const AudioDisc& disc, const AudioAttributes& attributes)
{
    const char* const sizes[2][4] = { { "720x576", "704x576", "352x576", "352x288" },
                                      { "720x480", "704x480", "352x480", "352x240" } };
    return std::string("mpegtype=") + (attributes.mpeg1 ? "mpeg1" : "mpeg2") +
           "\nvideomode=" + (attributes.wide ? "16:9" : "4:3") +
           "\nresolution=" + sizes[disc.pal() ? 0 : 1][attributes.resolution] + "\n";
}

static std::string colorKeys(const std::vector<Color>& colors)
{
    const char* const values[] = { "0,0,0", "255,255,255", "255,0,0", "0,255,0", "0,0,255" };
    std::string text;
    for (uint64_t i = 0; i < colors.size(); i++) {
        text += "colortable" + std::to_string(i + 1) + "=" + values[size_t(colors[i])] + "\n";
    }
    return text;
}

static std::string menuSections(const DiscRun& run, const AudioDisc& disc)
{
    std::string text;
    for (uint64_t i = 0; i < disc.menus.size(); i++) {
        const AudioMenu& menu = disc.menus[i];
        MenuSpec files = { .background = menu.background ? *menu.background
                                         : menu.units    ? shortUnits(menu.units, disc.pal() ? 1 : 2).bytes
                                                         : stillAsset(menu.stillBytes),
                           .subPicture = menu.subPicture ? *menu.subPicture : combBitmap(disc, menu.moreBytes),
                           .keys = menu.keys };
        text += menuSection(run, "AMG_MENU" + std::to_string(i + 1), files);
    }
    return text;
}

static std::string stillSections(const DiscRun& run, const AudioDisc& disc)
{
    if (!disc.hasAsvs()) return "";
    std::string text = "[ASVS]\n" + key("stills", disc.stills.size()) + key("attributes", disc.attributes.size()) +
                       colorKeys(disc.stillColors);
    for (uint64_t i = 0; i < disc.attributes.size(); i++) {
        text += "[ASVU_ATTRIBUTE" + std::to_string(i + 1) + "]\n" + attributeKeys(disc, disc.attributes[i]);
    }
    for (uint64_t i = 0; i < disc.stills.size(); i++) {
        const AudioStill& still = disc.stills[i];
        const std::string section = "ASV" + two(i + 1);
        text += "[" + section + "]\nbackground=" + toUtf8(assetPath(run, section, ".mpg")) + "\n";
        writeFile(assetPath(run, section, ".mpg"), still.background ? *still.background : stillAsset(still.bytes));
        if (still.hasSubPicture) {
            text += "subpicture=" + toUtf8(assetPath(run, section, ".bmp")) + "\n";
            writeFile(assetPath(run, section, ".bmp"),
                      still.subPicture ? *still.subPicture : combBitmap(disc, still.moreBytes));
        }
        text += still.keys;
    }
    return text;
}

std::string audioProject(const DiscRun& run, const AudioDisc& disc)
{
    std::string text = "[COMMON]\nversion=1.0\nmode=" + disc.mode + "\n[AMG]\n" +
                       key("titlesets", disc.titleSets.size()) + key("menus", disc.menus.size()) + "[AMG_MENU]\n" +
                       attributeKeys(disc, disc.menuAttributes) + colorKeys(disc.menuColors);
    text += menuSections(run, disc) + stillSections(run, disc);
    for (uint64_t i = 0; i < disc.titleSets.size(); i++) text += titleSetSections(run, disc.titleSets[i], i + 1);
    return text;
}

std::vector<std::string> audioFiles(const AudioDisc& disc)
{
    std::vector<std::string> names = { "AUDIO_PP.IFO", "AUDIO_TS.BUP", "AUDIO_TS.IFO" };
    if (!disc.menus.empty()) names.push_back("AUDIO_TS.VOB");
    if (!disc.stills.empty()) names.push_back("AUDIO_SV.VOB");
    if (disc.hasAsvs()) names.insert(names.end(), { "AUDIO_SV.BUP", "AUDIO_SV.IFO" });
    for (uint64_t i = 1; i <= disc.titleSets.size(); i++) {
        const AudioSet& set = disc.titleSets[i - 1];
        names.insert(names.end(), { atsName(i) + "_0.BUP", atsName(i) + "_0.IFO" });
        if (set.sound == Sound::FINISHED) names.push_back(atsName(i) + ".nfo");
        if (set.sound == Sound::WAVES || set.tracks.empty()) names.push_back(atsName(i) + "_1.AOB");
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> targetFiles(const DiscRun& run)
{
    std::vector<std::string> names;
    for (const auto& [name, bytes] : takeSnapshot(run.folder.root / "target")) names.push_back(name);
    return names;
}

void expectAudioDisc(AudioRun& run, const AudioDisc& disc)
{
    ASSERT_EQ(0u, run.author(audioProject(run, disc)));
    EXPECT_FALSE(fileExists(run.log));
    EXPECT_EQ(audioFiles(disc), targetFiles(run));
    EXPECT_EQ(audioCalls(disc), run.calls);
    for (const auto& [name, bytes] : audioTables(disc)) expectSameBytes(bytes, run.get(name), name);
    const uint64_t menuVob = disc.menus.empty() ? 0 : run.get("AUDIO_TS.VOB").size();
    const uint64_t stillVob = disc.stills.empty() ? 0 : run.get("AUDIO_SV.VOB").size();
    EXPECT_EQ(menuVobSectors(disc) * 2048, menuVob);
    EXPECT_EQ(stillVobSectors(disc) * 2048, stillVob);
}
