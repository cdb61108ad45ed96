// disc_reader.h: reads an authored DVD-Video folder by the published format alone, with code that shares nothing with
// the engine, and lists what does not agree: sizes, tables, navigation packs.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// What was found, and how much there was to look at: a check of nothing is no check.
struct DiscReport {
    std::vector<std::string> faults;   // "VTS_01_0.IFO: ...", one each; none for a sound disc
    uint64_t titleSets = 0;
    uint64_t navPacks = 0;
    uint64_t cells = 0;            // entries of all cell address tables
    uint64_t chapters = 0;         // of all titles
    uint64_t searchPointers = 0;   // pointers of navigation packs that lead somewhere
    uint64_t audioPointers = 0;    // the same of the audio sync entries
    uint64_t timeMapEntries = 0;
    uint64_t menus = 0;                // of all domains
    uint64_t buttons = 0;              // of all units with a highlight
    uint64_t subPictures = 0;          // units in menu VOBs, all of them decoded
    uint64_t subPicturePointers = 0;   // of menus' navigation packs, to where the sub-picture is
};

/** Reads the whole folder. Stops at a file that is missing or too short, and says so. */
DiscReport readDisc(const std::filesystem::path& folder);

/** The faults, a line each, at most twenty. */
std::string describeFaults(const DiscReport& report);
