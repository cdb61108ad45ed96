// audio_project.cpp: projects of DVD-Audio: their text, and what there is to say of one before its run.
#include "audio_project.h"

#include "named_file.h"
#include "text.h"

#include <algorithm>

namespace fs = std::filesystem;

static std::string utf8Path(const fs::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
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
    std::string text = "[" + utf8Of(audioTitleSetSection(number)) + "]\n" + line("tracks", tracks.size());
    for (size_t i = 0; i < tracks.size(); i++) {
        text += "\n[" + utf8Of(trackSection(number, i + 1)) + "]\n" + trackText(tracks[i], aob);
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

// ---- before a run -------------------------------------------------------------------------------------------------

static std::string directWarning(uint64_t number, uint64_t tracks, const fs::path& target)
{
    std::error_code error;
    const std::string titleSet = "title set " + std::to_string(number);
    const std::string name = utf8Of(audioTitleSetSection(number)) + "_1.AOB";
    const std::string over =
        fs::exists(target / name, error) ? "; " + name + " in the target folder is written over" : "";
    if (tracks == 0) return titleSet + " has no tracks, and so no sound" + over;
    return titleSet +
           " names WAVE files: of each track only the first pack is laid, about a hundredth of a second. "
           "Make its sound with `orven aob`, and name the AOB" +
           over;
}

/** What is missing of a finished sound. */
static std::string finishedWarning(const ProjectFile& project, uint64_t number, const fs::path& target)
{
    std::error_code error;
    fs::path aob;
    const std::u16string section = audioTitleSetSection(number);
    const std::string name = utf8Of(section);
    const ProjectKey* key = findKey(project, trackSection(number, 1), u"channel1");
    if (!isFilled(key) || !namesAob(*key) || !pathOf(*key, &aob)) return "";
    const fs::path info = aob.parent_path() / (name + ".nfo");
    if (!fs::exists(info, error)) {
        return "there is no " + printablePath(info) +
               ", which `orven aob` leaves beside the sound: the tracks of "
               "title set " +
               std::to_string(number) + " will have no packs";
    }
    if (fs::exists(target / (name + "_1.AOB"), error)) return "";
    return "there is no " + name + "_1.AOB in the target folder, where the disc needs it";
}

std::vector<std::string> audioWarnings(const ProjectFile& project, const fs::path& target)
{
    std::vector<std::string> warnings;
    for (const PlannedTitleSet& planned : plannedAudioTitleSets(project)) {
        const uint64_t tracks = integerOf(findKey(project, audioTitleSetSection(planned.number), u"tracks"));
        const bool finished = isFinishedTitleSet(project, planned.number);
        const std::string warning =
            finished ? finishedWarning(project, planned.number, target) : directWarning(planned.number, tracks, target);
        if (!warning.empty()) warnings.push_back(warning);
    }
    if (integerOf(findKey(project, u"AMG", u"titlesets")) > 1) {
        warnings.push_back("the disc's tables list the tracks of title set 1 alone: players do not find the others");
    }
    return warnings;
}
