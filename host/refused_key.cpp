// refused_key.cpp: the first key of a project that the library refuses, in the order in which it reads.
#include "project_fault.h"

#include "codes.h"
#include "key_search.h"
#include "named_file.h"
#include "value_check.h"

static constexpr uint64_t MAX_TITLE_SETS = 99, MAX_MENUS = 99, MAX_CHAPTERS = 255, MAX_SOURCES = 32;

static bool refusesCommon(Search* search)
{
    const std::u16string section = u"COMMON", version = u"version";
    if (!filledKey(search, section, version)) return refuses(search, section, version, { CODE_NO_VERSION, {} });
    return refusesStructure(search, section, version, checkVersion) ||
           refusesWord(search, section, u"mode", { u"PAL", u"NTSC" }, ANY_CASE, { CODE_VIDEO_MODE, {} });
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
    if (refusesColorSets(search, section) || refusesButtons(search, section)) return true;
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
