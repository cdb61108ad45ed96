// run_log.h: what a run has appended to its log: UTF-16LE entries of which the library writes the first half of each
// text.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/** Size of the log before a run; 0 if there is none. */
uint64_t logBytes(const std::filesystem::path& path);

/** The entries behind a position, oldest first. Texts stand as the log has them, cut to their first half. */
std::vector<std::u16string> readLog(const std::filesystem::path& path, uint64_t from);
std::vector<std::u16string> parseLog(std::string_view bytes);

/** What the log keeps of a whole text. */
std::u16string keptByLog(std::u16string_view text);
