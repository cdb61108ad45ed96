// project_fault.cpp: the line of a project file that a failed run is about.
#include "project_fault.h"

#include "run_log.h"

static bool agrees(const RunOutcome& outcome, uint64_t code, const std::u16string& logText)
{
    if (code != outcome.code) return false;
    return logText.empty() || (!outcome.log.empty() && outcome.log.back() == keptByLog(logText));
}

static bool findAudioFault(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    uint64_t code;
    std::u16string logText;
    if (findRefusedAudioKey(file, &code, &logText, fault) && agrees(outcome, code, logText)) return true;
    return findUnfitAudioFile(file, outcome, fault);
}

bool findProjectFault(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    uint64_t code;
    std::u16string logText;
    if (outcome.isAudio) return findAudioFault(file, outcome, fault);
    if (!findRefusedKey(file, &code, &logText, fault)) return findUnfitFile(file, outcome, fault);
    // The library stops at the first fault and logs it last. Anything else means that it has read otherwise than we.
    return agrees(outcome, code, logText);
}
