// refused_audio_key.cpp: the first key of a DVD-Audio project that the library refuses, in the order in which it reads.
#include "project_fault.h"

#include "codes.h"
#include "key_search.h"
#include "named_file.h"
#include "text.h"

static constexpr uint64_t MAX_TITLE_SETS = 99, MAX_MENUS = 99, MAX_STILLS = 99, MAX_STILL_ATTRIBUTES = 4,
                          MAX_TRACKS = 100, LAST_ASSIGNMENT = 20;
static constexpr size_t FORMAT_ROOM = 63, FORMAT_LENGTH = 4, WORD_ROOM = 31;

static bool refusesCommon(Search* search)
{
    const std::u16string section = u"COMMON", version = u"version";
    const ProjectKey* key = filledKey(search, section, version);
    if (!key) return refuses(search, section, version, { CODE_AUDIO_NO_VERSION, {} });
    Refusal refusal = checkVersion(key->value);
    if (refusal.code == CODE_WRONG_VERSION) refusal.code = CODE_AUDIO_VERSION;
    return refuses(search, section, version, refusal) ||
           refusesWord(search, section, u"mode", { u"PAL", u"NTSC" }, ANY_CASE, { CODE_AUDIO_MODE, {} });
}

static bool refusesTitleSetCount(Search* search)
{
    const std::u16string section = u"AMG", name = u"titlesets";
    if (!integerOf(keyOf(search, section, name))) {
        return refuses(search, section, name, { CODE_NO_AUDIO_TITLE_SETS, {} });
    }
    return refusesAbove(search, section, name, MAX_TITLE_SETS, CODE_AUDIO_TITLE_SETS);
}

// ---- stills -------------------------------------------------------------------------------------------------------

// These words are compared as they stand: no character in them is a wrong one.
static bool refusesBoundedWord(Search* search, Name section, Name name, std::initializer_list<const char16_t*> words,
                               uint64_t code)
{
    const ProjectKey* key = filledKey(search, section, name);
    if (!key) return false;
    const std::u16string_view value = std::u16string_view(key->value).substr(0, WORD_ROOM);
    for (const char16_t* word : words) {
        if (sameName(value, word)) return false;
    }
    return refuses(search, section, name, { code, {} });
}

static bool refusesStill(Search* search, Name section)
{
    return refusesRequired(search, section, u"background", CODE_NO_BACKGROUND) ||
           refusesText(search, section, u"subpicture") || refusesColorSets(search, section) ||
           refusesButtons(search, section);
}

static bool refusesStills(Search* search)
{
    const std::u16string section = u"ASVS";
    if (!findSection(*search->file, section)) return false;
    if (refusesAbove(search, section, u"stills", MAX_STILLS, CODE_STILLS) ||
        refusesAbove(search, section, u"attributes", MAX_STILL_ATTRIBUTES, CODE_STILL_ATTRIBUTES) ||
        refusesColorTable(search, section)) {
        return true;
    }
    const uint64_t sets = integerOf(keyOf(search, section, u"attributes"));
    for (uint64_t i = 1; i <= sets; i++) {
        const std::u16string set = numbered(u"ASVU_ATTRIBUTE", i);
        if (refusesBoundedWord(search, set, u"mpegtype", { u"mpeg1", u"mpeg2" }, CODE_MPEG_TYPE) ||
            refusesBoundedWord(search, set, u"videomode", { u"4:3", u"16:9" }, CODE_ASPECT)) {
            return true;
        }
    }
    const uint64_t stills = integerOf(keyOf(search, section, u"stills"));
    for (uint64_t i = 1; i <= stills; i++) {
        if (refusesStill(search, stillSection(i))) return true;
    }
    return false;
}

// ---- menus --------------------------------------------------------------------------------------------------------

static bool refusesMenu(Search* search, Name section)
{
    const std::u16string type = u"type";
    if (refusesRequired(search, section, u"background", CODE_NO_BACKGROUND) ||
        refusesRequired(search, section, u"subpicture", CODE_NO_SUBPICTURE) || refusesText(search, section, type)) {
        return true;
    }
    // A menu of a DVD-Audio disc has no type, a right one neither.
    std::u16string text;
    const ProjectKey* key = filledKey(search, section, type);
    if (key && !checkText(key->value, &text).code && !text.empty()) {
        return refuses(search, section, type, { CODE_MENU_TYPE, {} });
    }
    return refusesColorSets(search, section) || refusesButtons(search, section);
}

static bool refusesMenus(Search* search)
{
    if (refusesAttributes(search, u"AMG_MENU") || refusesAbove(search, u"AMG", u"menus", MAX_MENUS, CODE_AUDIO_MENUS)) {
        return true;
    }
    const uint64_t menus = integerOf(keyOf(search, u"AMG", u"menus"));
    for (uint64_t i = 1; i <= menus; i++) {
        if (refusesMenu(search, numbered(u"AMG_MENU", i))) return true;
    }
    return false;
}

// ---- title sets ---------------------------------------------------------------------------------------------------

static bool refusesFormat(Search* search, Name section)
{
    const ProjectKey* key = keyOf(search, section, u"format");
    const size_t length = key ? std::min(key->value.size(), FORMAT_ROOM) : 0;
    return length != FORMAT_LENGTH && refuses(search, section, u"format", { CODE_AUDIO_FORMAT, {} });
}

static bool refusesChannels(Search* search, Name section)
{
    if (integerOf(keyOf(search, section, u"assign"))) {
        return refusesAbove(search, section, u"assign", LAST_ASSIGNMENT, CODE_ASSIGNMENT);
    }
    return refusesInteger(search, section, u"channels", { 1, 2, 6 }, CODE_CHANNEL_COUNT);
}

static bool refusesTrack(Search* search, Name section)
{
    if (refusesFormat(search, section) || refusesChannels(search, section) ||
        refusesInteger(search, section, u"samplesize", { 16, 20, 24 }, CODE_SAMPLE_SIZE) ||
        refusesInteger(search, section, u"samplerate", { 44100, 48000, 88200, 96000, 176400, 192000 },
                       CODE_SAMPLE_RATE)) {
        return true;
    }
    if (!integerOf(keyOf(search, section, u"playtime")) && !integerOf(keyOf(search, section, u"endsample"))) {
        return refuses(search, section, u"playtime", { CODE_NO_PLAY_TIME, {} });
    }
    for (uint64_t i = 1; i <= trackChannels(*search->file, section); i++) {
        if (refusesText(search, section, numbered(u"channel", i))) return true;
    }
    return false;
}

static bool refusesTitleSet(Search* search, uint64_t number)
{
    const std::u16string section = audioTitleSetSection(number);
    if (refusesAbove(search, section, u"tracks", MAX_TRACKS, CODE_TOO_MANY_TRACKS)) return true;
    const uint64_t tracks = integerOf(keyOf(search, section, u"tracks"));
    for (uint64_t i = 1; i <= tracks; i++) {
        if (refusesTrack(search, trackSection(number, i))) return true;
    }
    return false;
}

static bool refusesProject(Search* search)
{
    if (refusesCommon(search) || refusesTitleSetCount(search) || refusesStills(search) || refusesMenus(search)) {
        return true;
    }
    const uint64_t count = integerOf(keyOf(search, u"AMG", u"titlesets"));
    for (uint64_t number = 1; number <= count; number++) {
        if (refusesTitleSet(search, number)) return true;
    }
    return false;
}

bool findRefusedAudioKey(const ProjectFile& file, uint64_t* code, std::u16string* logText, ProjectFault* fault)
{
    Search search = { &file, 0, {}, fault };
    const bool refused = refusesProject(&search);
    *code = search.code;
    *logText = search.logText;
    return refused;
}
