// named_file.h: files that a project names, and why one can't be had.
#pragma once

#include "project_file.h"

#include <filesystem>
#include <string>

/** A key's name with its number. */
std::u16string numbered(std::u16string_view name, uint64_t number);

/** Whether a key is there and has a value. */
bool isFilled(const ProjectKey* key);

/** The path that the library takes from a key. @return false if it can't be looked up */
bool pathOf(const ProjectKey& key, std::filesystem::path* path);

/** Why a file can't be opened for reading, or an empty text. */
std::string notReadableWhy(const std::filesystem::path& path);
/** Why a file that is there can't be written; empty also where there is none. */
std::string notWritableWhy(const std::filesystem::path& path);

/** Why a file is no background of a menu, or an empty text. */
std::string notMpegWhy(const std::filesystem::path& path);

uint64_t fileBytes(const std::filesystem::path& path);
std::string bytesText(uint64_t bytes);   // "3 bytes"
