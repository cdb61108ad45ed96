// extract_disc.h: the folder of a disc whose tracks are to be extracted: its files, and what a failure says of them.
#pragma once

#include "extract_tracks.h"

#include <filesystem>

struct DiscFolder {
    std::filesystem::path folder;   // AUDIO_TS or VIDEO_TS
    DiscKind kind = DISC_AUDIO;
    std::vector<std::filesystem::path> parts = {};   // files of the sound, in order
    std::vector<uint64_t> partBytes = {};
};

/** Finds the folder with the tables, which is disc itself or one within it. Without tables it is disc itself. */
DiscFolder findDisc(const std::filesystem::path& disc);

/** A file of the folder that stands in the way: a pipe, or the like, in the place of a file of the disc, or a part of
 * the sound that is missing in front of another. file names it. */
FileFault folderFault(const DiscFolder& disc, std::filesystem::path* file);

/** What it means that the disc can't be opened, and the file that it is about. tracks: those that were told before */
FileFault openFault(const DiscFolder& disc, uint64_t code, uint64_t tracks, std::filesystem::path* file);

/** The same of a track that can't be read. sector: the first that may be at fault */
FileFault readFault(const DiscFolder& disc, uint64_t code, const ExtractTrack& track, uint64_t number, uint64_t sector,
                    std::filesystem::path* file);

/** Sectors that the tracks name and the files have not. */
uint64_t missingSectors(const DiscFolder& disc, const std::vector<ExtractTrack>& tracks);
