// key_search.cpp: what the searches for a refused key of both kinds of projects have in common.
#include "key_search.h"

#include "codes.h"
#include "named_file.h"
#include "text.h"

static constexpr uint64_t MAX_BUTTONS = 36, MAX_AUDIO_STREAMS = 8, MAX_COLOR_SETS = 3, MAX_COLORS = 16,
                          MAX_CHANNELS = 6;

const ProjectKey* keyOf(const Search* search, Name section, Name name)
{
    return findKey(*search->file, section, name);
}

const ProjectKey* filledKey(const Search* search, Name section, Name name)
{
    const ProjectKey* key = keyOf(search, section, name);
    return key && !key->value.empty() ? key : nullptr;
}

bool refuses(Search* search, Name section, Name name, const Refusal& refusal)
{
    if (!refusal.code) return false;
    search->code = refusal.code;
    search->logText = refusal.logText;
    *search->fault = { keyOf(search, section, name), section, name, {} };
    return true;
}

bool refusesText(Search* search, Name section, Name name)
{
    std::u16string text;
    const ProjectKey* key = filledKey(search, section, name);
    return key && refuses(search, section, name, checkText(key->value, &text));
}

bool refusesRequired(Search* search, Name section, Name name, uint64_t missing)
{
    if (!filledKey(search, section, name)) return refuses(search, section, name, { missing, {} });
    return refusesText(search, section, name);
}

bool refusesStructure(Search* search, Name section, Name name, Refusal (*check)(std::u16string_view))
{
    const ProjectKey* key = filledKey(search, section, name);
    return key && refuses(search, section, name, check(key->value));
}

bool refusesAbove(Search* search, Name section, Name name, uint64_t limit, uint64_t code)
{
    return integerOf(keyOf(search, section, name)) > limit && refuses(search, section, name, { code, {} });
}

bool refusesInteger(Search* search, Name section, Name name, std::initializer_list<uint64_t> values, uint64_t code)
{
    const uint64_t value = integerOf(keyOf(search, section, name));
    for (const uint64_t accepted : values) {
        if (value == accepted) return false;
    }
    return refuses(search, section, name, { code, {} });
}

bool refusesWord(Search* search, Name section, Name name, std::initializer_list<const char16_t*> words,
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

bool refusesColorTable(Search* search, Name section)
{
    for (uint64_t i = 1; i <= MAX_COLORS; i++) {
        if (refusesStructure(search, section, numbered(u"colortable", i), checkColorTable)) return true;
    }
    return false;
}

bool refusesAttributes(Search* search, Name section)
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
    return refusesColorTable(search, section);
}

bool refusesColorSets(Search* search, Name section)
{
    for (uint64_t i = 1; i <= MAX_COLOR_SETS; i++) {
        if (refusesStructure(search, section, numbered(u"colorset", i), checkColorSet)) return true;
    }
    return false;
}

bool refusesButtons(Search* search, Name section)
{
    if (refusesAbove(search, section, u"buttons", MAX_BUTTONS, CODE_BUTTONS)) return true;
    const uint64_t buttons = integerOf(keyOf(search, section, u"buttons"));
    for (uint64_t i = 1; i <= buttons; i++) {
        if (refusesStructure(search, section, numbered(u"button", i), checkButton)) return true;
    }
    return false;
}
