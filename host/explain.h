// explain.h: what a result code means and where to look, for people.
#pragma once

#include <cstdint>
#include <string>

/** Reads a code as people write it: the number of a message (1012), or a whole result in hexadecimal or decimal.
 *  @return whether it is one */
bool parseCode(const std::string& text, uint64_t* code);

/** The host's own sentence for a result that has no text in the library; empty if there is none. */
std::string ownText(uint64_t code);

/** One line that names a result: its text, or the host's own, and the code. text is the library's. */
std::string resultLine(uint64_t code, const std::string& text);

/** Name of a code for `orven explain`: the message's number where there is one. */
std::string shortCode(uint64_t code);

/** A paragraph on a code, or an empty text. */
std::string explanation(uint64_t code);
