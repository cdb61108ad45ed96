// unfit_audio.cpp: a file, or a track, of a DVD-Audio project that explains why a run failed. Everything said here is
// looked up, in the order in which a run meets it: stills, title sets, the manager's menus.
#include "project_fault.h"

#include "codes.h"
#include "menu_bitmap.h"
#include "named_file.h"
#include "text.h"
#include "wave_file.h"

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

static constexpr uint64_t MAX_STILLS = 99, MAX_MENUS = 99, MAX_TRACKS = 100;

typedef const std::u16string& Name;

struct AudioSearch {
    const ProjectFile* file;
    const RunOutcome* outcome;
    ProjectFault* fault;
    uint64_t code = 0;   // of the fault
};

static bool found(AudioSearch* search, Name section, Name name, uint64_t code, const std::string& why)
{
    search->code = code;
    *search->fault = { findKey(*search->file, section, name), section, name, why };
    return true;
}

static const ProjectKey* keyOf(const AudioSearch* search, Name section, Name name)
{
    return findKey(*search->file, section, name);
}

static bool namesFile(const AudioSearch* search, Name section, Name name, fs::path* path)
{
    const ProjectKey* key = keyOf(search, section, name);
    return isFilled(key) && pathOf(*key, path);
}

static uint64_t countOf(const AudioSearch* search, Name section, Name name, uint64_t most)
{
    return std::min(integerOf(keyOf(search, section, name)), most);
}

// Sections of pictures, each with its background and sub-picture.
static std::vector<std::u16string> stillSections(const AudioSearch* search)
{
    std::vector<std::u16string> sections;
    const uint64_t stills = countOf(search, u"ASVS", u"stills", MAX_STILLS);
    for (uint64_t i = 1; i <= stills; i++) sections.push_back(stillSection(i));
    return sections;
}

static std::vector<std::u16string> menuSections(const AudioSearch* search)
{
    std::vector<std::u16string> sections;
    const uint64_t menus = countOf(search, u"AMG", u"menus", MAX_MENUS);
    for (uint64_t i = 1; i <= menus; i++) sections.push_back(numbered(u"AMG_MENU", i));
    return sections;
}

// ---- pictures -----------------------------------------------------------------------------------------------------

static bool unfitBackground(AudioSearch* search, const std::vector<std::u16string>& sections,
                            std::string (*test)(const fs::path& path))
{
    for (const std::u16string& section : sections) {
        fs::path path;
        if (!namesFile(search, section, u"background", &path)) continue;
        const std::string why = test(path);
        if (!why.empty()) return found(search, section, u"background", search->outcome->code, why);
    }
    return false;
}

static bool unfitBitmap(AudioSearch* search, const std::vector<std::u16string>& sections)
{
    const ProjectKey* mode = keyOf(search, u"COMMON", u"mode");
    const uint64_t lines = mode && sameName(mode->value, u"NTSC") ? NTSC_LINES : PAL_LINES;
    for (const std::u16string& section : sections) {
        fs::path path;
        if (!namesFile(search, section, u"subpicture", &path)) continue;
        const BitmapFault fault = checkBitmap(path, lines, ANY_DEPTH);
        if (fault.code) return found(search, section, u"subpicture", fault.code, fault.why);
    }
    return false;
}

static bool unwritable(AudioSearch* search, Name section, Name name, const std::string& file, const char* holds)
{
    if (!countOf(search, section, name, UINT64_MAX)) return false;
    const std::string why = notWritableWhy(search->outcome->target / file);
    return !why.empty() && found(search, section, name, search->outcome->code,
                                 file + " in the target folder holds " + holds + ": " + why);
}

// ---- tracks -------------------------------------------------------------------------------------------------------

static std::string notWaveWhy(const fs::path& path)
{
    constexpr size_t HEAD_BYTES = 16;
    std::ifstream in(path, std::ios::binary);
    char head[HEAD_BYTES] = {};
    in.read(head, HEAD_BYTES);
    const std::string_view start(head, HEAD_BYTES);
    if (!start.starts_with("RIFF") || !start.substr(8).starts_with("WAVE")) return "the file is no RIFF/WAVE file";
    if (start.substr(12) != "fmt ") return "the first chunk of the file is not its format";
    WaveSamples samples;
    in.clear();
    const FileFault fault = findWaveSamples(in, fileBytes(path), &samples);
    return fault ? "the file does not do: " + fault.why : "";
}

/** How many of a track's `channel` keys the direct way opens. */
static uint64_t fileCount(const AudioSearch* search, Name section)
{
    const uint64_t channels = trackChannels(*search->file, section);
    if (channels != 2) return channels;
    const ProjectKey *first = keyOf(search, section, u"channel1"), *second = keyOf(search, section, u"channel2");
    const bool two = isFilled(second) && !(first && sameName(first->value, second->value));
    return two ? 2 : 1;
}

static bool unfitChannel(AudioSearch* search, Name section, Name name)
{
    fs::path path;
    const ProjectKey* key = keyOf(search, section, name);
    if (!isFilled(key)) return found(search, section, name, CODE_BASE_ARGUMENT, "each channel needs its file");
    if (!pathOf(*key, &path)) return false;
    if (const std::string why = notReadableWhy(path); !why.empty()) {
        return found(search, section, name, CODE_FILE_NOT_FOUND, why);
    }
    const std::string why = notWaveWhy(path);
    return !why.empty() && found(search, section, name, CODE_WRONG_WAVE, why);
}

static bool unfitFormat(AudioSearch* search, Name section)
{
    const uint64_t channels = trackChannels(*search->file, section);
    const std::u16string bits = u"samplesize";
    const bool many = channels == 2 || (channels >= 4 && channels <= 6);
    if (many && integerOf(keyOf(search, section, bits)) != 20) return false;
    const std::string why = "packs have 2, 4, 5 or 6 channels of 16 or 24 bits";
    if (many) return found(search, section, bits, CODE_20_BITS, why);
    const bool assigned = integerOf(keyOf(search, section, u"assign"));
    return found(search, section, assigned ? u"assign" : u"channels", CODE_20_BITS, why);
}

static bool unfitTrack(AudioSearch* search, Name section)
{
    const ProjectKey* first = keyOf(search, section, u"channel1");
    if (first && namesAob(*first)) {
        // Looked for under another name, and not as the list that it is.
        const uint64_t code = isUnreadableFile(search->outcome->code) ? CODE_FILE_NOT_FOUND : CODE_WRONG_WAVE;
        return found(search, section, u"channel1", code,
                     "the last track of the title set names a WAVE file, so that none may name an AOB");
    }
    for (uint64_t i = 1; i <= fileCount(search, section); i++) {
        if (unfitChannel(search, section, numbered(u"channel", i))) return true;
    }
    return unfitFormat(search, section);
}

/** The first fault of a title set that is laid from WAVE files. */
static bool unfitTitleSet(AudioSearch* search, uint64_t number)
{
    const uint64_t tracks = countOf(search, audioTitleSetSection(number), u"tracks", MAX_TRACKS);
    if (tracks == 0 || isFinishedTitleSet(*search->file, number)) return false;
    for (uint64_t i = 1; i <= tracks; i++) {
        if (unfitTrack(search, trackSection(number, i))) return true;
    }
    return false;
}

static bool unwritableAob(AudioSearch* search)
{
    for (const PlannedTitleSet& planned : plannedAudioTitleSets(*search->file)) {
        const std::u16string section = audioTitleSetSection(planned.number);
        if (isFinishedTitleSet(*search->file, planned.number)) continue;
        if (unwritable(search, section, u"tracks", utf8Of(section) + "_1.AOB", "these tracks")) return true;
    }
    return false;
}

// ---- the whole ----------------------------------------------------------------------------------------------------

/** The first file of all that does not do, whatever its code. */
static bool unfitInput(AudioSearch* search)
{
    if (unfitBitmap(search, stillSections(search))) return true;
    for (const PlannedTitleSet& planned : plannedAudioTitleSets(*search->file)) {
        if (unfitTitleSet(search, planned.number)) return true;
    }
    return unfitBitmap(search, menuSections(search));
}

static bool explainsInput(AudioSearch* search)
{
    if (!unfitInput(search)) return false;
    return search->code == CODE_FILE_NOT_FOUND ? isUnreadableFile(search->outcome->code)
                                               : search->code == search->outcome->code;
}

bool findUnfitAudioFile(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    AudioSearch search = { &file, &outcome, fault };
    switch (outcome.code) {
    case CODE_MENU_ASSET:
        return unfitBackground(&search, stillSections(&search), notReadableWhy) ||
               unfitBackground(&search, menuSections(&search), notReadableWhy);
    case CODE_NOT_MPEG: return unfitBackground(&search, menuSections(&search), notMpegWhy);
    case CODE_MANAGER_VOB:
        return unwritable(&search, u"ASVS", u"stills", "AUDIO_SV.VOB", "the stills") ||
               unwritable(&search, u"AMG", u"menus", "AUDIO_TS.VOB", "these menus");
    case CODE_NO_AOB: return unwritableAob(&search);
    default: return explainsInput(&search);
    }
}
