// project_fault.h: the line of a project file that a failed run is about.
#pragma once

#include "project_file.h"

#include <filesystem>
#include <string>
#include <vector>

struct ProjectFault {
    const ProjectKey* key = nullptr;   // the line, within the project that was searched; null if a key is missing
    std::u16string section;
    std::u16string name;   // of the key
    std::string why;       // a sentence where the code alone does not tell it; else empty
};

// What a run has said, and where it worked.
struct RunOutcome {
    uint64_t code;
    std::vector<std::u16string> log;   // halved texts of the entries of this run
    std::filesystem::path target, previous;
    bool menusOnly = false;   // a preview, which opens the menus' bitmaps and nothing else
    bool isAudio = false;     // a run of DVD-Audio
};

/** Finds the first key, in the order of the run's reading, that the library refuses; or the first file named in the
 *  project that explains the code. Gives nothing unless it agrees with the code and with the log.
 *  @return whether *fault was filled */
bool findProjectFault(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault);
bool findProjectFault(ProjectFile&&, const RunOutcome&, ProjectFault*) = delete;

/** The reader's half of it: the first refused key. logText is the whole text that the library logs for it, or empty. */
bool findRefusedKey(const ProjectFile& file, uint64_t* code, std::u16string* logText, ProjectFault* fault);
bool findRefusedKey(ProjectFile&&, uint64_t*, std::u16string*, ProjectFault*) = delete;

/** The same of a DVD-Audio project. The library reads such a project while it writes the disc, so that a run may end
 *  before it comes to the key. */
bool findRefusedAudioKey(const ProjectFile& file, uint64_t* code, std::u16string* logText, ProjectFault* fault);
bool findRefusedAudioKey(ProjectFile&&, uint64_t*, std::u16string*, ProjectFault*) = delete;

/** The other half: what is well written but can't be had, such as a file that is missing. */
bool findUnfitFile(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault);
bool findUnfitFile(ProjectFile&&, const RunOutcome&, ProjectFault*) = delete;

/** The same of a DVD-Audio project. */
bool findUnfitAudioFile(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault);
bool findUnfitAudioFile(ProjectFile&&, const RunOutcome&, ProjectFault*) = delete;

/** Of that the menus' share: their bitmaps, movies and VOBs. */
bool findUnfitMenu(const ProjectFile& file, const RunOutcome& outcome, ProjectFault* fault);
bool findUnfitMenu(ProjectFile&&, const RunOutcome&, ProjectFault*) = delete;
