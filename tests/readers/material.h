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

/** An elementary stream of one I picture, as the background of a still menu. */
const std::filesystem::path& realStill(Standard standard, int pattern);

/** A program stream without sound, as the background of an animated menu. Its navigation packs hold what a menu with a
    loop point asks of them: the clock and the length of their units, which the encoder leaves at 0. */
const std::filesystem::path& realAnimation(Standard standard, int pattern, int seconds);

/** A new file with these bytes, for all tests of the program. */
std::filesystem::path shelve(const std::vector<uint8_t>& bytes);

/** Runs the encoder with these arguments; fails the running test if it fails. */
void runEncoder(const std::string& arguments);

std::vector<uint8_t> bytesOf(const std::filesystem::path& file);

// One title set of a disc to be authored.
struct TitleSetPlan {
    int pattern = 0;
    int seconds = 8;
    std::string keys = {};   // further lines of its section, as "postcmd=next\n"
    // Bytes at which the movie is cut into several source files; VTS_nn_1.VOB, _2.VOB ...
    std::vector<uint64_t> cuts = {};
    std::filesystem::path movie = {};   // this one, not a realMovie
    std::string audio = "AC3";          // of its first sound
};

// An authored disc in a folder of its own, removed with the record.
struct Disc {
    /** managerKeys are further lines of the section VMG. */
    Disc(Standard standard, const std::vector<TitleSetPlan>& titleSets, const std::string& moreSections = {},
         const std::string& managerKeys = {});
    ~Disc();
    Disc(const Disc&) = delete;
    Disc& operator=(const Disc&) = delete;

    /** A file in VIDEO_TS. */
    std::filesystem::path file(const std::string& name) const;

    std::filesystem::path root;   // holds VIDEO_TS
    uint64_t result;              // of the run
};
