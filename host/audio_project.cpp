// audio_project.cpp: projects of DVD-Audio: their text.
#include "audio_project.h"

#include "text.h"

#include <algorithm>

namespace fs = std::filesystem;

static std::string twoDigits(uint64_t number)
{
    return (number < 10 ? "0" : "") + std::to_string(number);
}

static std::string utf8Path(const fs::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

std::string audioTitleSetName(uint64_t number)
{
    return "ATS_" + twoDigits(number);
}

static std::string line(const std::string& key, uint64_t value)
{
    return key + "=" + std::to_string(value) + "\n";
}

static std::string trackText(const SourceTrack& track, const fs::path& aob)
{
    const AobTrackDesc desc = describeTrack(track);
    return "format=LPCM\n" + line("assign", desc.assignment) + line("samplesize", desc.sampleSize) +
           line("samplerate", desc.sampleRate) + line("playtime", trackTicks(track)) + "channel1=" + utf8Path(aob) +
           "\n";
}

std::string audioTitleSetText(uint64_t number, const std::vector<SourceTrack>& tracks, const fs::path& aob)
{
    std::string text = "[" + audioTitleSetName(number) + "]\n" + line("tracks", tracks.size());
    for (size_t i = 0; i < tracks.size(); i++) {
        text += "\n[TRACK_" + twoDigits(number) + "_" + twoDigits(i + 1) + "]\n" + trackText(tracks[i], aob);
    }
    return text;
}

bool isProjectPath(const fs::path& path)
{
    const std::string text = utf8Path(path);
    const bool separates = fs::path::preferred_separator == '/' && text.find('\\') != text.npos;
    const bool control = std::any_of(text.begin(), text.end(), [](char unit) { return uint8_t(unit) < 0x20; });
    return !separates && !control && utf8Of(wideOf(text)) == text;
}

/** UTF-8 where that is plain ASCII, else UTF-16: a mark is what tells every reader that a text is no local one. */
static std::string encode(const std::string& text)
{
    const bool ascii = std::all_of(text.begin(), text.end(), [](char unit) { return uint8_t(unit) < 0x80; });
    if (ascii) return text;
    std::string bytes = "\xFF\xFE";
    for (const char16_t unit : wideOf(text)) {
        bytes += char(unit & 0xFF);
        bytes += char(unit >> 8);
    }
    return bytes;
}

std::string audioProjectBytes(const std::vector<SourceTrack>& tracks, const fs::path& aob)
{
    return encode("[COMMON]\nversion=1.0\nmode=PAL\n\n[AMG]\ntitlesets=1\n\n" + audioTitleSetText(1, tracks, aob));
}
