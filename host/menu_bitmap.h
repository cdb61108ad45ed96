// menu_bitmap.h: what a run finds wrong with a menu's bitmap, by the bitmap's own header.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

inline constexpr uint64_t BITMAP_COLUMNS = 720, PAL_LINES = 576, NTSC_LINES = 480;
inline constexpr uint64_t ANY_DEPTH = 0, COLLISION_DEPTH = 8, ALPHA_DEPTH = 32;

struct BitmapFault {
    uint64_t code = 0;   // 0: the bitmap fits; CODE_FILE_NOT_FOUND: it can't be opened
    std::string why;
};

/** @param lines  of a picture of the project's standard
 *  @param bits   the depth that is asked for */
BitmapFault checkBitmap(const std::filesystem::path& path, uint64_t lines, uint64_t bits);

/** Pixels of a collision map, bottom line first; none unless it fits. */
std::vector<uint8_t> readCollisionMap(const std::filesystem::path& path, uint64_t lines);
