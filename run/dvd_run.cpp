// dvd_run.cpp: the DVD-Video run, nothing but its order of work, and its exported entries.

#include "base/profile.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/wide.h"
#include "project/model.h"
#include "project/progress.h"
#include "project/reader.h"
#include "video/drivers.h"

#include <orven/authoring.h>

// What the host hands to a run.
struct DvdRun {
    const char16_t* projectPath;
    const char16_t* targetPath;
    const char16_t* previousPath;
    OrvProgress progress;
    uint64_t progressUser;
    const char16_t* logPath;
};

static uint64_t readProject(DiscContext* context, const OsProfile* file)
{
    const int64_t standard = context->head.videoStandard;
    if (uint64_t error = orvReadFirstPlay(context, file)) return error;
    if (uint64_t error = orvReadManager(context, file, standard, &context->vmg)) return error;
    orvPrepareUnits(context);
    return 0;
}

static uint64_t authorDisc(DiscContext* context, const DvdRun* run)
{
    for (uint64_t number = 1; number <= context->head.titleSetCount; number++) {
        if (uint64_t error = CreateVideoTitleSet(context, number, run->targetPath)) return error;
    }
    return CreateVideoManager(context, run->targetPath, run->previousPath);
}

/** The whole of a run; *context is null afterwards if it was released. */
static uint64_t runStages(DiscContext** context, const OsProfile* file, const DvdRun* run)
{
    int64_t standard = 0;
    if (uint64_t error = orvReadCommon(&(*context)->head, file, &standard)) return error;
    if (uint64_t error = orvSetStandard(&(*context)->head, standard)) {
        orvFreeDiscContext(context);
        return error;
    }
    if (uint64_t error = readProject(*context, file)) return error;
    if (uint64_t error = authorDisc(*context, run)) return error;
    orvFreeDiscContext(context);
    return 0;
}

static uint64_t runDvd(const DvdRun* run)
{
    if (!run->projectPath || !run->targetPath) return ORV_INVALID_ARGUMENT;
    DiscContext* context = nullptr;
    if (uint64_t error = orvAllocDiscContext(run->logPath, &context)) return error;
    context->head.progressCallback = run->progress;
    context->head.progressUser = run->progressUser;

    OsProfile* file = nullptr;
    uint64_t result = osOpenProfile(run->projectPath, &file);
    // A failed run keeps its model, there is no clean-up on that path: only a finished run, and one of no known
    // standard, release it.
    if (!result) result = runStages(&context, file, run);
    osCloseProfile(&file);
    return result;
}

extern "C" uint64_t ParseDVDDescW(const OrvWChar* projectPath, const OrvWChar* targetPath, const OrvWChar* previousPath,
                                  OrvProgress progress, uint64_t progressUser, const OrvWChar* logPath)
{
    const DvdRun run = { orvText(projectPath), orvText(targetPath), orvText(previousPath), progress,
                         progressUser,         orvText(logPath) };
    return runDvd(&run);
}

extern "C" uint64_t ParseDVDDesc(const char* projectPath, const char* targetPath, const char* previousPath,
                                 OrvProgress progress, uint64_t progressUser, const char* logPath)
{
    const char* const narrow[] = { projectPath, targetPath, previousPath, logPath };
    char16_t* wide[4] = {};
    uint64_t result = 0;
    for (uint64_t i = 0; i < 4 && !result; i++) {
        if (narrow[i]) result = osAnsiToWide(&wide[i], narrow[i], nullptr);
    }
    if (!result) {
        const DvdRun run = { wide[0], wide[1], wide[2], progress, progressUser, wide[3] };
        result = runDvd(&run);
    }
    for (char16_t*& text : wide) (void)osStrFree(&text);
    return result;
}
