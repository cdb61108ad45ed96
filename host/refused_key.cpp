// refused_key.cpp: the first key of a project that the library refuses, in the order in which it reads.
#include "project_fault.h"

#include "codes.h"
#include "named_file.h"
#include "text.h"
#include "value_check.h"

static constexpr uint64_t MAX_TITLE_SETS = 99, MAX_MENUS = 99, MAX_CHAPTERS = 255, MAX_BUTTONS = 36, MAX_SOURCES = 32,
                          MAX_AUDIO_STREAMS = 8, MAX_COLOR_SETS = 3, MAX_COLORS = 16, MAX_CHANNELS = 6;

// Every reader below gives true at the first refused key, as the library stops there: `a || b` reads a, then b.
struct Search {
    const ProjectFile* file;
    uint64_t code;
    std::u16string logText;
    ProjectFault* fault;
};

typedef const std::u16string& Name;

static const ProjectKey* keyOf(const Search* search, Name section, Name name)
{
    return findKey(*search->file, section, name);
}

// A key without a value counts as missing.
static const ProjectKey* filledKey(const Search* search, Name section, Name name)
{
    const ProjectKey* key = keyOf(search, section, name);
    return key && !key->value.empty() ? key : nullptr;
}

static bool refuses(Search* search, Name section, Name name, const Refusal& refusal)
{
    if (!refusal.code) return false;
    search->code = refusal.code;
    search->logText = refusal.logText;
    *search->fault = { keyOf(search, section, name), section, name, {} };
    return true;
}

static bool refusesText(Search* search, Name section, Name name)
{
    std::u16string text;
    const ProjectKey* key = filledKey(search, section, name);
    return key && refuses(search, section, name, checkText(key->value, &text));
}

static bool refusesRequired(Search* search, Name section, Name name, uint64_t missing)
{
    if (!filledKey(search, section, name)) return refuses(search, section, name, { missing, {} });
    return refusesText(search, section, name);
}

static bool refusesStructure(Search* search, Name section, Name name, Refusal (*check)(std::u16string_view))
{
    const ProjectKey* key = filledKey(search, section, name);
    return key && refuses(search, section, name, check(key->value));
}

static bool refusesAbove(Search* search, Name section, Name name, uint64_t limit, uint64_t code)
{
    return integerOf(keyOf(search, section, name)) > limit && refuses(search, section, name, { code, {} });
}

static bool refusesInteger(Search* search, Name section, Name name, std::initializer_list<uint64_t> values,
                           uint64_t code)
{
    const uint64_t value = integerOf(keyOf(search, section, name));
    for (const uint64_t accepted : values) {
        if (value == accepted) return false;
    }
    return refuses(search, section, name, { code, {} });
}

enum LetterCase { ANY_CASE, EXACT };

static bool refusesWord(Search* search, Name section, Name name, std::initializer_list<const char16_t*> words,
                        LetterCase letters, const Refusal& unknown)
{
    const ProjectKey* key = filledKey(search, section, name);
    if (!key) return false;
    if (refusesText(search, section, name)) return true;
    std::u16string text;
    (void)checkText(key->value, &text);
    for (const char16_t* word : words) {
        if (letters == EXACT ? text == word : sameName(text, word)) return false;
    }
    return refuses(search, section, name, { unknown.code, unknown.logText.empty() ? u"" : unknown.logText + text });
}

static bool refusesCommon(Search* search)
{
    const std::u16string section = u"COMMON", version = u"version";
    if (!filledKey(search, section, version)) return refuses(search, section, version, { CODE_NO_VERSION, {} });
    return refusesStructure(search, section, version, checkVersion) ||
           refusesWord(search, section, u"mode", { u"PAL", u"NTSC" }, ANY_CASE, { CODE_VIDEO_MODE, {} });
}

static bool isNtsc(const Search* search)
{
    const ProjectKey* mode = filledKey(search, u"COMMON", u"mode");
    return mode && sameName(mode->value, u"NTSC");
}

static bool hasFormat(const Search* search, Name section, Name name)
{
    std::u16string format;
    const ProjectKey* key = filledKey(search, section, name);
    if (key) (void)checkText(key->value, &format);
    return key && !sameName(format, u"none");
}

static bool refusesAudioStream(Search* search, Name section, Name suffix)
{
    const std::u16string audio = u"audio" + suffix, channel = u"channel" + suffix, language = u"language" + suffix;
    if (refusesWord(search, section, audio, { u"none", u"AC3", u"layer2", u"PCM", u"DTS", u"SDDS" }, ANY_CASE,
                    { CODE_AUDIO_TYPE, {} })) {
        return true;
    }
    if (!hasFormat(search, section, audio)) return false;
    if (refusesAbove(search, section, channel, MAX_CHANNELS, CODE_AUDIO_CHANNELS) ||
        refusesInteger(search, section, u"samplerate" + suffix, { 0, 48, 96 }, CODE_AUDIO_RATE) ||
        refusesInteger(search, section, u"samplesize" + suffix, { 0, 16, 20, 24 }, CODE_AUDIO_SIZE) ||
        refusesText(search, section, language)) {
        return true;
    }
    std::u16string letters;
    const ProjectKey* key = filledKey(search, section, language);
    if (key) (void)checkText(key->value, &letters);
    return key && letters.size() != 2 && refuses(search, section, language, { CODE_LANGUAGE, {} });
}

static bool refusesResolution(Search* search, Name section)
{
    const Refusal unknown = { CODE_RESOLUTION, u"Unknown Resolution, found: " };
    if (isNtsc(search)) {
        return refusesWord(search, section, u"resolution", { u"720x480", u"704x480", u"352x480", u"352x240" }, EXACT,
                           unknown);
    }
    return refusesWord(search, section, u"resolution", { u"720x576", u"704x576", u"352x576", u"352x288" }, EXACT,
                       unknown);
}

static bool refusesAttributes(Search* search, Name section)
{
    if (refusesWord(search, section, u"videomode", { u"4:3", u"16:9" }, EXACT, { CODE_ASPECT, {} }) ||
        refusesResolution(search, section) ||
        refusesWord(search, section, u"bitrate", { u"vbr", u"cbr" }, ANY_CASE, { CODE_BITRATE, {} }) ||
        refusesWord(search, section, u"mpegtype", { u"mpeg1", u"mpeg2" }, ANY_CASE, { CODE_MPEG_TYPE, {} }) ||
        refusesAudioStream(search, section, u"") ||
        refusesAbove(search, section, u"astreams", MAX_AUDIO_STREAMS, CODE_AUDIO_STREAMS)) {
        return true;
    }
    const bool more = integerOf(keyOf(search, section, u"astreams")) >= 2;
    for (uint64_t i = 2; more && i <= MAX_AUDIO_STREAMS; i++) {
        if (refusesAudioStream(search, section, numbered(u"", i))) return true;
    }
    for (uint64_t i = 1; i <= MAX_COLORS; i++) {
        if (refusesStructure(search, section, numbered(u"colortable", i), checkColorTable)) return true;
    }
    return false;
}

static bool refusesMenuAssets(Search* search, Name section)
{
    if (refusesRequired(search, section, u"background", CODE_NO_BACKGROUND) ||
        refusesRequired(search, section, u"subpicture", CODE_NO_SUBPICTURE) ||
        refusesText(search, section, u"spuletterbox") || refusesText(search, section, u"subpicture32")) {
        return true;
    }
    const bool both = filledKey(search, section, u"spuletterbox") && filledKey(search, section, u"subpicture32");
    return both && refusesText(search, section, u"spuletterbox32");
}

static bool refusesMenu(Search* search, Name section)
{
    if (refusesMenuAssets(search, section) ||
        refusesWord(search, section, u"type", { u"still", u"animated" }, ANY_CASE, { CODE_MENU_TYPE, {} }) ||
        refusesWord(search, section, u"menutype", { u"title", u"root", u"subpic", u"audio", u"angle", u"chapter" },
                    ANY_CASE, { CODE_MENU_EXISTENCE, {} })) {
        return true;
    }
    for (uint64_t i = 1; i <= MAX_COLOR_SETS; i++) {
        if (refusesStructure(search, section, numbered(u"colorset", i), checkColorSet)) return true;
    }
    if (refusesAbove(search, section, u"buttons", MAX_BUTTONS, CODE_BUTTONS)) return true;
    const uint64_t buttons = integerOf(keyOf(search, section, u"buttons"));
    for (uint64_t i = 1; i <= buttons; i++) {
        if (refusesStructure(search, section, numbered(u"button", i), checkButton)) return true;
    }
    return refusesStructure(search, section, u"playtime", checkMenuPlayTime) ||
           refusesStructure(search, section, u"blink", checkBlink);
}

// The pages are counted in one section and described in sections of another name.
static bool refusesMenus(Search* search, Name countSection, Name pageSection)
{
    if (refusesAbove(search, countSection, u"menus", MAX_MENUS, CODE_MENUS)) return true;
    const uint64_t menus = integerOf(keyOf(search, countSection, u"menus"));
    for (uint64_t i = 1; i <= menus; i++) {
        if (refusesMenu(search, numbered(pageSection, i))) return true;
    }
    return false;
}

static bool refusesChapters(Search* search, Name section)
{
    if (refusesAbove(search, section, u"chapters", MAX_CHAPTERS, CODE_CHAPTERS)) return true;
    const uint64_t chapters = integerOf(keyOf(search, section, u"chapters"));
    for (uint64_t i = 1; i <= chapters; i++) {
        if (refusesStructure(search, section, numbered(u"chapter", i), checkChapter)) return true;
    }
    return false;
}

static bool refusesTitleSet(Search* search, uint64_t number)
{
    const std::u16string section = titleSetSection(*search->file, number);
    const std::u16string menuSection = numbered(u"VTS_", number) + u"_MENU";
    if (integerOf(keyOf(search, section, u"skipvts"))) return false;
    if (refusesAttributes(search, section) || refusesChapters(search, section) ||
        refusesWord(search, section, u"postcmd",
                    { u"none", u"title", u"root", u"loop", u"next", u"previous", u"first", u"last" }, ANY_CASE,
                    { CODE_POST_COMMAND, {} })) {
        return true;
    }
    if (!integerOf(keyOf(search, menuSection, u"skipmenu")) &&
        (refusesAttributes(search, menuSection) || refusesMenus(search, section, menuSection))) {
        return true;
    }
    if (refusesRequired(search, section, u"source", CODE_NO_SOURCE)) return true;
    for (uint64_t i = 1; i < MAX_SOURCES; i++) {
        if (refusesText(search, section, numbered(u"source", i))) return true;
    }
    return refusesText(search, section, u"streamscanfile");
}

static bool refusesProject(Search* search)
{
    const std::u16string manager = u"VMG", titleSets = u"titlesets";
    if (refusesCommon(search) || refusesStructure(search, u"FIRSTPLAY", u"cmd", checkFirstPlay)) return true;
    const uint64_t count = integerOf(keyOf(search, manager, titleSets));
    if (count == 0) return refuses(search, manager, titleSets, { CODE_NO_TITLE_SETS, {} });
    if (refusesAbove(search, manager, titleSets, MAX_TITLE_SETS, CODE_TITLE_SETS)) return true;
    for (uint64_t number = 1; number <= count; number++) {
        if (refusesTitleSet(search, number)) return true;
    }
    return refusesAttributes(search, u"VMG_MENU") || refusesMenus(search, manager, u"VMG_MENU");
}

bool findRefusedKey(const ProjectFile& file, uint64_t* code, std::u16string* logText, ProjectFault* fault)
{
    Search search = { &file, 0, {}, fault };
    const bool refused = refusesProject(&search);
    *code = search.code;
    *logText = search.logText;
    return refused;
}
