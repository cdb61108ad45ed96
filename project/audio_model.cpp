// audio_model.cpp: makes and frees the root of a DVD-Audio run and what hangs from it.
#include "project/audio_model.h"

#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "project/reader.h"

namespace {

void freeTitleSet(AudioTitleSetDesc** titleSet)
{
    if (!*titleSet) return;
    for (AudioTrackDesc& track : (*titleSet)->tracks) {
        for (char16_t*& path : track.channelPaths) osStrFree(&path);
    }
    osFreeMem(titleSet);
}

}   // namespace

uint64_t orvCreateAudioContext(const char16_t* logFilePath, OrvProgress progress, uint64_t progressUser,
                               AudioDiscContext** out)
{
    if (osAllocMem(sizeof(AudioDiscContext), out)) return ORV_NO_AUDIO_CONTEXT;
    RunHead* const run = &(*out)->head;
    (void)orvSetStandard(run, STANDARD_PAL);   // a known standard
    run->progressCallback = progress;
    run->progressUser = progressUser;
    if (!osStrDup(logFilePath, &run->logFilePath)) return 0;
    osFreeMem(out);
    return ORV_NO_AUDIO_CONTEXT;
}

void orvFreeAudioContext(AudioDiscContext** context)
{
    if (!*context) return;
    osStrFree(&(*context)->head.logFilePath);
    for (MenuDesc& menu : (*context)->amgMenus) {
        osStrFree(&menu.subPicture);
        osStrFree(&menu.background);
    }
    for (AudioTitleSetDesc*& titleSet : (*context)->audioTitleSets) freeTitleSet(&titleSet);
    for (StillDesc*& still : (*context)->asvs.stills) orvFreeStill(&still);
    osFreeMem(context);
}

void orvFreeStill(StillDesc** still)
{
    if (!*still) return;
    osStrFree(&(*still)->subPicture);
    osStrFree(&(*still)->background);
    osFreeMem(still);
}
