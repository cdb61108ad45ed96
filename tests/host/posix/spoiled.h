// spoiled.h: project files that chance has spoiled.
#pragma once

#include <random>
#include <string>

/** A text with one to three changes: a byte replaced, put in or taken out, or a line taken out. */
std::string spoiled(std::string text, std::mt19937& chance);
