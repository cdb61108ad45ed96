// ini_file.h: an INI file's bytes, for the reader and for the writer of single keys.
#pragma once

#include "base/files.h"

#include <cstdint>
#include <string>

inline constexpr uint64_t OS_INI_LIMIT = uint64_t(256) << 20;   // bytes; no larger file is read

enum class IniEncoding { UTF_8, UTF_16 };

struct IniFile {
    std::string bytes;
    IniEncoding encoding;
    uint64_t markBytes;   // of the byte order mark in front
};

/** Reads the whole of a plain file; any other, and one that is too large, is refused. Throws where memory is short. */
[[nodiscard]] uint64_t osReadIni(OSFILE file, IniFile* ini);
/** The units of a UTF-16 file without its mark; half a unit at the end is left out. Throws where memory is short. */
[[nodiscard]] std::u16string osIniUnits(const IniFile& ini);
