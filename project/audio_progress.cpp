// audio_progress.cpp: how far a DVD-Audio run has come, in units of its fixed plan.
#include "project/audio_progress.h"

namespace {

constexpr uint64_t TITLE_SET_UNITS = 102;
constexpr uint64_t OTHER_UNITS = 25;

// Meant: title set 1 begins at 12 whether there are stills or not. Test: AudioProgress.UnitsOfEachKind
uint64_t unitsDone(uint64_t titleSets, uint32_t kind, uint64_t value, uint64_t index)
{
    const uint64_t before = index * TITLE_SET_UNITS, titleSetsEnd = titleSets * TITLE_SET_UNITS;
    switch (kind) {
    case PROGRESS_AOB: return value - 90 + before;
    case PROGRESS_ATS_IFO: return before + 10 + value / PROGRESS_ALL;
    case PROGRESS_ATS_BACKUP: return before + 11 + value / PROGRESS_ALL;
    case PROGRESS_STILLS: return value / 10;
    case PROGRESS_ASVS_IFO: return value / PROGRESS_ALL + 10;
    case PROGRESS_ASVS_BACKUP: return value / PROGRESS_ALL + 11;
    case PROGRESS_AMG_MENUS: return value / 10 + 12 + titleSetsEnd;
    case PROGRESS_AMG_IFO: return value / PROGRESS_ALL + titleSetsEnd + 22;
    case PROGRESS_AMG_BACKUP: return value / PROGRESS_ALL + titleSetsEnd + 23;
    case PROGRESS_AUDIO_PP: return value / PROGRESS_ALL + titleSetsEnd + 24;
    default: return 0;
    }
}

}   // namespace

uint32_t orvReportAudioProgress(const AudioDiscContext* context, uint32_t kind, uint64_t value, uint64_t index)
{
    const RunHead& run = context->head;
    if (!run.progressCallback) return 0;
    const uint64_t total = run.titleSetCount * TITLE_SET_UNITS + OTHER_UNITS;
    const uint64_t done = unitsDone(run.titleSetCount, kind, value, index);
    return run.progressCallback(uint32_t(total), uint32_t(done), kind, run.progressUser);
}
