// error_rows.h: the errors of a document that describes a project file.
#pragma once

#include <string>

/** Each row like: | 1003 | 0x840003EB | "Error 1003: number expected" | ... | tells a code and its text as the library
    gives it, in ascending order. @return rows */
unsigned expectErrorRows(const std::string& text);
