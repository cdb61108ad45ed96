// vob_files.h: the files of one movie, as sectors that count from the first of them on.
#pragma once

#include "elementary.h"

#include <filesystem>
#include <fstream>
#include <vector>

struct VobFile {
    std::filesystem::path path;
    uint64_t first = 0;     // its first sector
    uint64_t sectors = 0;   // whole ones
    std::fstream stream = {};
};

struct VobFiles {
    std::vector<VobFile> files;
    uint64_t sectors = 0;
};

/** Looks at the sizes of files that continue each other. @return why they can't, or an empty text */
std::string measureVobs(const std::vector<std::filesystem::path>& paths, VobFiles* vobs);

/** Opens all of them, for writing too or not. @return false if one can't be */
bool openVobs(VobFiles* vobs, bool writing);
/** @return false if what was written can't be kept */
bool closeVobs(VobFiles* vobs);

bool readSector(VobFiles* vobs, uint64_t sector, uint8_t* bytes);
bool writeSector(VobFiles* vobs, uint64_t sector, const uint8_t* bytes);

/** "VTS_01_2.VOB, sector 12": a place for people, who count within a file. */
std::string placeText(const VobFiles& vobs, uint64_t sector);
