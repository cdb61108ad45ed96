// project_file.h: a project file with its line numbers, so that the host can show which line a failure is about. What
// a name finds is what the library finds: the first of several, without regard to case.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

struct ProjectKey {
    uint64_t line;         // from 1
    std::u16string text;   // the line as written, without the blanks around it
    std::u16string name;
    std::u16string value;   // without blanks and quotes around it
};

struct ProjectSection {
    uint64_t line;
    std::u16string name;
    std::vector<ProjectKey> keys;
};

typedef std::vector<ProjectSection> ProjectFile;

ProjectFile parseProject(std::string_view bytes);
/** An unreadable file is an empty project. */
ProjectFile readProject(const std::filesystem::path& path);

const ProjectSection* findSection(const ProjectFile& file, std::u16string_view section);
/** Null where section or key is missing. */
const ProjectKey* findKey(const ProjectFile& file, std::u16string_view section, std::u16string_view key);

/** An integer key: decimal digits from the start of the value, modulo 2^32; 0 for anything else. */
uint64_t integerOf(const ProjectKey* key);

/** Section of title set n: "VTS_n", or "VTS_nn" where the file has that. */
std::u16string titleSetSection(const ProjectFile& file, uint64_t number);

/** Whether a project is one of DVD-Audio: it has a section AMG, and no VMG, which would make it one of DVD-Video. */
bool isAudioProject(const ProjectFile& file);

// Sections of DVD-Audio: "ATS_01", "TRACK_01_02", "ASV03".
std::u16string audioTitleSetSection(uint64_t titleSet);
std::u16string trackSection(uint64_t titleSet, uint64_t track);
std::u16string stillSection(uint64_t still);

/** Channels of a track by its `assign` or else its `channels`; 0 where neither is a right one. */
uint64_t trackChannels(const ProjectFile& file, std::u16string_view section);

/** Whether a track's `channel1` names the finished AOB of its title set. */
bool namesAob(const ProjectKey& channel);
/** Whether the AOB of a title set is finished, as its last track says for all. */
bool isFinishedTitleSet(const ProjectFile& file, uint64_t titleSet);

// What the progress display wants to know about the title sets that a run writes, in order.
struct PlannedTitleSet {
    uint64_t number;
    bool hasMenus;
};

std::vector<PlannedTitleSet> plannedTitleSets(const ProjectFile& file);
std::vector<PlannedTitleSet> plannedAudioTitleSets(const ProjectFile& file);
bool managerHasMenus(const ProjectFile& file);

/** Sections of the menu pages of a title set, or of the manager (0), that a run makes, in order. */
std::vector<std::u16string> menuSections(const ProjectFile& file, uint64_t titleSet);
