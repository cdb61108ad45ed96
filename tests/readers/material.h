// material.h: real movies by a public encoder, and discs authored from them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

enum Standard { PAL, NTSC };

/** A program stream with moving picture and AC-3 sound, made once for all tests of the program. pattern chooses the
    picture: 0, 1 or 2. */
const std::filesystem::path& realMovie(Standard standard, int pattern, int seconds);

// One title set of a disc to be authored.
struct TitleSetPlan {
    int pattern = 0;
    int seconds = 8;
    std::string keys = {};   // further lines of its section, as "postcmd=next\n"
    // Bytes at which the movie is cut into several source files; VTS_nn_1.VOB, _2.VOB ...
    std::vector<uint64_t> cuts = {};
};

// An authored disc in a folder of its own, removed with the record.
struct Disc {
    Disc(Standard standard, const std::vector<TitleSetPlan>& titleSets, const std::string& moreSections = {});
    ~Disc();
    Disc(const Disc&) = delete;
    Disc& operator=(const Disc&) = delete;

    /** A file in VIDEO_TS. */
    std::filesystem::path file(const std::string& name) const;

    std::filesystem::path root;   // holds VIDEO_TS
    uint64_t result;              // of the run
};
