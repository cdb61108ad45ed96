// audio_project.h: projects of DVD-Audio: their text, and what there is to say of one before its run.
#pragma once

#include "project_file.h"
#include "source_track.h"

#include <filesystem>
#include <string>
#include <vector>

/** The sections of a title set whose tracks lie in a finished AOB. */
std::string audioTitleSetText(uint64_t number, const std::vector<SourceTrack>& tracks,
                              const std::filesystem::path& aob);

/** Whether the library takes a path from a project as it is. */
bool isProjectPath(const std::filesystem::path& path);

/** What a run of a project will not tell, a sentence each: tracks that it lays in part alone, sounds that are not
    there, title sets that players do not find. target is the folder of the disc. */
std::vector<std::string> audioWarnings(const ProjectFile& project, const std::filesystem::path& target);

/** A whole project of title set 1, as bytes that the readers of both platforms take. */
std::string audioProjectBytes(const std::vector<SourceTrack>& tracks, const std::filesystem::path& aob);
