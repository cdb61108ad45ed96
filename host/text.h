// text.h: texts between the encodings that meet in the host, and texts of others made fit for a terminal.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

/** Anything that is not valid becomes U+FFFD. */
std::u16string wideOf(std::string_view text);
std::string utf8Of(std::u16string_view text);

/** UTF-8 with a question mark in the place of each control character, so that a file's content can't steer a terminal.
 */
std::string printable(std::u16string_view text);

/** The same of a path, whatever bytes its name is made of. */
std::string printablePath(const std::filesystem::path& path);

/** Compares without regard to the case of Latin letters. */
bool sameName(std::u16string_view a, std::u16string_view b);

/** Breaks a text at its blanks into lines of at most so many characters; a longer word keeps a line of its own. */
std::string wrapped(const std::string& text, size_t columns);

/** "0x840003F4". */
std::string hexCode(uint64_t code);
