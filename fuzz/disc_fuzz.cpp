#include "fuzz/disc_fuzz.h"

#include "base/memory.h"

#include <cstdlib>

DiscContext* makeFuzzContext(const TempDir& dir, const std::u16string& source)
{
    DiscContext* context = nullptr;
    if (orvAllocDiscContext((dir / u"log").c_str(), &context)) abort();
    context->head.videoStandard = 1;
    context->head.frameTicks = 3600;
    context->head.titleSetCount = 1;
    if (osAllocMem(sizeof(TitleSetDesc), &context->titleSets[0])) abort();
    TitleSetDesc* titleSet = context->titleSets[0];
    if (osStrDup(source.c_str(), &titleSet->sources[0])) abort();
    titleSet->titleAttributes.audioStreamCount = 2;
    titleSet->chapterCount = 2;
    titleSet->chapters[1].startFrame = 90000;
    return context;
}
