// title_set.cpp: reads the sections VTS_n and VTS_n_MENU with the menu pages beneath them into a title set's record.
#include "base/log.h"
#include "base/result.h"
#include "project/reader.h"
#include "project/slots.h"
#include "project/tokens.h"
#include "project/values.h"

namespace {

constexpr uint64_t SECTION_LIST_UNITS = 1024;

constexpr Word POST_COMMANDS[] = {
    { u"none", POST_NONE }, { u"title", POST_TITLE },       { u"root", POST_ROOT },   { u"loop", POST_LOOP },
    { u"next", POST_NEXT }, { u"previous", POST_PREVIOUS }, { u"first", POST_FIRST }, { u"last", POST_LAST },
};
constexpr WordSet POST_WORDS = { POST_COMMANDS, true, ORV_WRONG_POST_COMMAND };

// VTS_01 if the file has such a section, else VTS_1. Meant: a file whose list of sections outgrows the buffer is not
// searched, there only VTS_1 is found. Test: TitleSet.CutSectionList
NumberedName titleSetSection(const OsProfile* file, uint64_t number)
{
    const NumberedName oneDigit = orvNumberedName(u"VTS_%ld", number);
    const NumberedName twoDigits = orvNumberedName(u"VTS_%02ld", number);
    char16_t names[SECTION_LIST_UNITS];
    if (osProfileSectionNames(file, names, SECTION_LIST_UNITS) == SECTION_LIST_UNITS - 2) return oneDigit;
    for (const char16_t* name = names; *name; name += osStrLength(name) + 1) {
        if (osStrEqualNoCase(name, twoDigits.text)) return twoDigits;
    }
    return oneDigit;
}

// One `chapter` key. The position is read leniently, a value that can't be read is 0; menu page and button are not.
uint64_t readChapter(const Section& section, const char16_t* value, ChapterDesc* chapter)
{
    const char16_t* cursor = value;
    Token token;
    uint64_t position = 0;
    // Meant: whatever the first token is, a comma behind it makes the rest count. Test: TitleSet.Chapters
    (void)orvNextToken(section.run, &cursor, TOKEN_TEXT, &token);
    if (token.kind == TOKEN_NUMBER) position = token.value;
    if (token.kind == TOKEN_TEXT) (void)orvParseNumber(token.text, token.length, &position);   // a bad one leaves 0
    chapter->startFrame = int64_t(position);

    if (orvNextToken(section.run, &cursor, TOKEN_COMMA, &token) || token.kind != TOKEN_COMMA) return 0;
    uint64_t menuPage = 0, highlightButton = 0;
    const NumberSlot slots[] = { { u"MenuPage", &menuPage }, { u"HighlightButton", &highlightButton } };
    if (const uint64_t error = orvReadNumbers(section.run, &cursor, u"chapter", slots)) return error;
    chapter->menuPage = int64_t(menuPage);
    chapter->highlightButton = int64_t(highlightButton);
    return 0;
}

uint64_t readChapters(const Section& section, TitleSetDesc* titleSet)
{
    const uint64_t count = orvReadInt(section, u"chapters");
    if (count > MAX_CHAPTERS) return ORV_TOO_MANY_CHAPTERS;
    for (uint64_t i = 0; i < count; i++) {
        ChapterDesc* const chapter = &titleSet->chapters[i];
        *chapter = {};
        char16_t value[63];
        if (orvReadBounded(section, orvNumberedName(u"chapter%ld", i + 1).text, value)) {
            if (const uint64_t error = readChapter(section, value, chapter)) return error;
        }
        // Meant: a chapter without a position repeats the one before. Test: TitleSet.Chapters
        if (chapter->startFrame == 0 && i > 0) chapter->startFrame = titleSet->chapters[i - 1].startFrame;
    }
    titleSet->chapterCount = count;
    return 0;
}

// The title set's menus. Meant: their number stands in the section of the title set, not in that of its menus, and the
// menu sections have the one-digit name alone. Test: TitleSet.MenuSections
uint64_t readTitleSetMenus(const Section& section, uint64_t number, int64_t standard, TitleSetDesc* titleSet)
{
    const NumberedName menuSection = orvNumberedName(u"VTS_%ld_MENU", number);
    titleSet->skipMenu = orvReadInt({ section.run, section.file, menuSection.text }, u"skipmenu");
    if (titleSet->skipMenu) return 0;
    if (const uint64_t error =
            orvReadAttributes(section.run, section.file, menuSection.text, standard, &titleSet->menuAttributes)) {
        return error;
    }
    const uint64_t count = orvReadInt(section, u"menus");
    if (count > MAX_MENUS) return ORV_MENUS_OUT_OF_RANGE;
    titleSet->menuCount = 0;
    for (uint64_t m = 1; m <= count; m++) {
        const NumberedName name = orvNumberedName(u"VTS_%ld_MENU%ld", number, m);
        MenuDesc* const menu = &titleSet->menus[titleSet->menuCount++];
        if (const uint64_t error = orvReadMenu(section.run, section.file, name.text, standard, menu)) return error;
    }
    return 0;
}

uint64_t readSources(const Section& section, TitleSetDesc* titleSet)
{
    if (const uint64_t error = orvReadPath(section, u"source", &titleSet->sources[0])) return error;
    if (!titleSet->sources[0]) {
        orvLogError(ORV_MISSING_SOURCE, section.run->logFilePath,
                    u"Got 0 chars from inifile: %s section: %s valuename: %s", osProfilePath(section.file),
                    section.name, u"source");
        return ORV_MISSING_SOURCE;
    }
    for (uint64_t k = 1; k < MAX_SOURCES; k++) {
        const NumberedName key = orvNumberedName(u"source%1d", k);
        if (const uint64_t error = orvReadPath(section, key.text, &titleSet->sources[k])) return error;
    }
    return orvReadPath(section, u"streamscanfile", &titleSet->streamScanFile);
}

}   // namespace

uint64_t orvReadTitleSet(const RunHead* run, const OsProfile* file, uint64_t number, int64_t standard,
                         TitleSetDesc* titleSet)
{
    const NumberedName name = titleSetSection(file, number);
    const Section section = { run, file, name.text };
    if (orvReadInt(section, u"skipvts")) return ORV_TITLE_SET_SKIPPED;

    char16_t restricted[8];
    titleSet->restricted = orvReadBounded(section, u"restricted", restricted) && osStrEqualNoCase(restricted, u"yes");

    if (const uint64_t error = orvReadAttributes(run, file, name.text, standard, &titleSet->titleAttributes)) {
        return error;
    }
    if (const uint64_t error = readChapters(section, titleSet)) return error;
    int64_t postCommand = POST_NONE;
    if (const uint64_t error = orvReadWord(section, u"postcmd", POST_WORDS, &postCommand)) return error;
    titleSet->postCommand = uint64_t(postCommand);
    if (const uint64_t error = readTitleSetMenus(section, number, standard, titleSet)) return error;
    return readSources(section, titleSet);
}
