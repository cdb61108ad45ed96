// model.cpp: makes and frees the root of a run and what hangs from it.
#include "project/model.h"

#include "base/memory.h"

namespace {

void freeMenus(MenuDesc menus[MAX_MENUS])
{
    for (uint64_t m = 0; m < MAX_MENUS; m++) {
        osStrFree(&menus[m].spuLetterbox32);
        osStrFree(&menus[m].subPicture32);
        osStrFree(&menus[m].spuLetterbox);
        osStrFree(&menus[m].subPicture);
        osStrFree(&menus[m].background);
    }
}

}   // namespace

uint64_t orvAllocDiscContext(const char16_t* logFilePath, DiscContext** out)
{
    if (const uint64_t error = osAllocMem(sizeof(DiscContext), out)) return error;
    const uint64_t result = osStrDup(logFilePath, &(*out)->head.logFilePath);
    if (result) osFreeMem(out);
    return result;
}

void orvFreeTitleSet(TitleSetDesc** titleSet)
{
    if (!*titleSet) return;
    freeMenus((*titleSet)->menus);
    for (char16_t*& source : (*titleSet)->sources) osStrFree(&source);
    osStrFree(&(*titleSet)->streamScanFile);
    osFreeMem(titleSet);
}

void orvFreeDiscContext(DiscContext** context)
{
    if (!*context) return;
    osStrFree(&(*context)->head.logFilePath);
    freeMenus((*context)->vmg.menus);
    for (TitleSetDesc*& titleSet : (*context)->titleSets) orvFreeTitleSet(&titleSet);
    osFreeMem(context);
}
