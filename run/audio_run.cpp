// audio_run.cpp: the DVD-Audio run, nothing but its order of work, and its exported entries.

#include "audio/stages.h"
#include "base/memory.h"
#include "base/profile.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/wide.h"
#include "project/audio_reader.h"
#include "project/reader.h"
#include "project/values.h"

#include <orven/authoring.h>

// What the host hands to a run.
struct AudioRun {
    const char16_t* projectPath;
    const char16_t* targetPath;
    OrvProgress progress;
    uint64_t progressUser;
    const char16_t* logPath;
};

static Section managerSection(const AudioDiscContext* context, const OsProfile* file)
{
    return { &context->head, file, u"AMG" };
}

static uint64_t readTitleSetCount(AudioDiscContext* context, const OsProfile* file)
{
    const uint64_t count = orvReadInt(managerSection(context, file), u"titlesets");
    if (count == 0) return ORV_NO_AUDIO_TITLE_SETS;
    if (count > MAX_TITLE_SETS) return ORV_WRONG_ATS_COUNT;
    context->head.titleSetCount = count;
    return 0;
}

static uint64_t makeStills(AudioDiscContext* context, const OsProfile* file, const char16_t* targetPath)
{
    context->hasAsvs = osProfileHasLines(file, u"ASVS");
    if (!context->hasAsvs) return 0;
    const RunHead* run = &context->head;
    if (uint64_t error = orvReadStills(run, file, run->videoStandard, &context->asvs)) return error;
    return CreateStillManager(context, targetPath);
}

static uint64_t readMenus(AudioDiscContext* context, const OsProfile* file)
{
    const RunHead* run = &context->head;
    AttributeSet* attributes = &context->amgAttributes;
    attributes->mpegVersion = 1;
    attributes->isPal = 1;
    attributes->aspectRatio = 0;
    if (uint64_t error = orvReadAttributes(run, file, u"AMG_MENU", run->videoStandard, attributes)) return error;
    const uint64_t count = orvReadInt(managerSection(context, file), u"menus");
    if (count > MAX_MENUS) return ORV_WRONG_AMG_MENU_COUNT;
    context->amgMenuCount = count;
    for (uint64_t i = 1; i <= count; i++) {
        const NumberedName name = orvNumberedName(u"AMG_MENU%ld", i);
        if (uint64_t error = orvReadAmgMenu(run, file, name.text, &context->amgMenus[i - 1])) return error;
    }
    return 0;
}

/** Reading and writing alternate: each title set is written before the next is read. */
static uint64_t makeTitleSets(AudioDiscContext* context, const OsProfile* file, const char16_t* targetPath)
{
    for (uint64_t number = 1; number <= context->head.titleSetCount; number++) {
        AudioTitleSetDesc** slot = &context->audioTitleSets[number - 1];
        if (uint64_t error = osAllocMem(sizeof(AudioTitleSetDesc), slot)) return error;
        if (uint64_t error = orvReadAudioTitleSet(&context->head, file, number, *slot)) return error;
        if (uint64_t error = CreateAudioTitleSet(context, number, targetPath)) return error;
    }
    return 0;
}

static uint64_t authorDisc(AudioDiscContext* context, const OsProfile* file, const char16_t* targetPath)
{
    if (uint64_t error = readTitleSetCount(context, file)) return error;
    if (uint64_t error = makeStills(context, file, targetPath)) return error;
    if (uint64_t error = readMenus(context, file)) return error;
    if (uint64_t error = makeTitleSets(context, file, targetPath)) return error;
    if (uint64_t error = CreateAudioManager(context, targetPath)) return error;
    return orvCreateAudioPp(context, targetPath);
}

static uint64_t readStandard(AudioDiscContext* context, const OsProfile* file)
{
    int64_t standard = 0;
    if (uint64_t error = orvReadAudioCommon(&context->head, file, &standard)) return error;
    return orvSetStandard(&context->head, standard) ? ORV_WRONG_AUDIO_VIDEO_MODE : 0;
}

static uint64_t runAudio(const AudioRun* run)
{
    if (!run->projectPath || !run->targetPath) return ORV_INVALID_ARGUMENT;
    AudioDiscContext* context = nullptr;
    if (uint64_t error = orvCreateAudioContext(run->logPath, run->progress, run->progressUser, &context)) return error;
    OsProfile* file = nullptr;
    uint64_t result = osOpenProfile(run->projectPath, &file);
    bool keepsModel = false;
    if (!result) result = readStandard(context, file);
    if (!result) {
        result = authorDisc(context, file, run->targetPath);
        keepsModel = result != 0;
    }
    osCloseProfile(&file);
    // A run that fails on its way keeps its model, there is no clean-up on that path.
    if (!keepsModel) orvFreeAudioContext(&context);
    return result;
}

extern "C" uint64_t ParseAudioDescW(const OrvWChar* projectPath, const OrvWChar* targetPath, const OrvWChar*,
                                    OrvProgress progress, uint64_t progressUser, const OrvWChar* logPath)
{
    const AudioRun run = { orvText(projectPath), orvText(targetPath), progress, progressUser, orvText(logPath) };
    return runAudio(&run);
}

extern "C" uint64_t ParseAudioDesc(const char* projectPath, const char* targetPath, const char*, OrvProgress progress,
                                   uint64_t progressUser, const char* logPath)
{
    const char* const narrow[] = { projectPath, targetPath, logPath };
    char16_t* wide[3] = {};
    uint64_t result = 0;
    for (uint64_t i = 0; i < 3 && !result; i++) {
        if (narrow[i]) result = osAnsiToWide(&wide[i], narrow[i], nullptr);
    }
    if (!result) {
        const AudioRun run = { wide[0], wide[1], progress, progressUser, wide[2] };
        result = runAudio(&run);
    }
    for (char16_t*& text : wide) (void)osStrFree(&text);
    return result;
}
