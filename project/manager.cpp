// manager.cpp: reads the section VMG with all that hangs from it: first the title sets, then the manager's own menus.
#include "base/memory.h"
#include "base/result.h"
#include "project/reader.h"
#include "project/values.h"

namespace {

uint64_t readTitleSetInto(DiscContext* context, const OsProfile* file, uint64_t number, int64_t standard)
{
    TitleSetDesc* titleSet = nullptr;
    if (const uint64_t error = osAllocMem(sizeof(TitleSetDesc), &titleSet)) return error;
    const uint64_t result = orvReadTitleSet(&context->head, file, number, standard, titleSet);
    if (result) {
        orvFreeTitleSet(&titleSet);
        // A skipped title set is no fault: its slot stays null.
        return result == ORV_TITLE_SET_SKIPPED ? 0 : result;
    }
    context->titleSets[number - 1] = titleSet;
    return 0;
}

uint64_t readManagerMenus(const Section& section, int64_t standard, TitleSetDesc* vmg)
{
    const uint64_t count = orvReadInt(section, u"menus");
    if (count > MAX_MENUS) return ORV_MENUS_OUT_OF_RANGE;
    vmg->menuCount = 0;
    for (uint64_t m = 1; m <= count; m++) {
        const NumberedName name = orvNumberedName(u"VMG_MENU%ld", m);
        MenuDesc* const menu = &vmg->menus[vmg->menuCount++];
        if (const uint64_t error = orvReadMenu(section.run, section.file, name.text, standard, menu)) return error;
    }
    return 0;
}

}   // namespace

uint64_t orvReadManager(DiscContext* context, const OsProfile* file, int64_t standard, TitleSetDesc* vmg)
{
    const RunHead* const run = &context->head;
    const Section section = { run, file, u"VMG" };
    const uint64_t count = orvReadInt(section, u"titlesets");
    if (count == 0) return ORV_NO_TITLE_SETS;
    if (count > MAX_TITLE_SETS) return ORV_WRONG_TITLE_SET_COUNT;
    context->head.titleSetCount = count;
    for (uint64_t number = 1; number <= count; number++) {
        if (const uint64_t error = readTitleSetInto(context, file, number, standard)) return error;
    }
    if (const uint64_t error = orvReadAttributes(run, file, u"VMG_MENU", standard, &vmg->menuAttributes)) return error;
    return readManagerMenus(section, standard, vmg);
}
