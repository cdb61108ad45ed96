// movie_file.h: the program stream that a command writes. The file is made when there is something for it, so that a
// run that fails at its first bytes leaves an earlier one alone.
#pragma once

#include "elementary.h"

#include <filesystem>
#include <fstream>

struct MovieFile {
    std::filesystem::path path;
    std::ofstream out = {};
    uint64_t sectors = 0;
    bool made = false;      // the file is of this run
    bool refused = false;   // it can't be written
    bool given = false;     // up: nothing more is wanted
};

/** Makes the file unless that is done. @return false if it can't be */
bool openMovie(MovieFile* movie);

/** Puts whole sectors behind those that are there. @return false if they can't be written */
bool writeMovie(MovieFile* movie, const uint8_t* sectors, uint64_t bytes);

/** Ends the file. */
FileFault closeMovie(MovieFile* movie);

/** Removes what this run has made: half a movie looks like a whole one. */
void dropMovie(MovieFile* movie);

/** The fault of a movie that can't be written. */
FileFault movieFault();
