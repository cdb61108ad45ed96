// project_fault.cpp: the line of a project file that a failed run is about.
#include "project_fault.h"

#include "run_log.h"

bool findProjectFault(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault)
{
    uint64_t code;
    std::u16string logText;
    if (!findRefusedKey(file, &code, &logText, fault)) return findUnfitFile(file, outcome, fault);
    // The library stops at the first fault and logs it last. Anything else means that it has read otherwise than we.
    if (code != outcome.code) return false;
    return logText.empty() || (!outcome.log.empty() && outcome.log.back() == keptByLog(logText));
}
