// posix.h: what the files of this folder share.
#pragma once

#include "base/files.h"

#include <cerrno>
#include <climits>
#include <cstdint>

inline constexpr uint64_t OS_PATH_ROOM = PATH_MAX;   // bytes of a path, terminator included

[[nodiscard]] inline uint64_t osLastError()
{
    return uint64_t(errno);
}

/** Descriptor of a file; -1, which every call refuses, for a file that is not open. */
[[nodiscard]] inline int osFd(OSFILE file)
{
    return file == 0 || file > INT_MAX ? -1 : int(file);
}

/** A path as the system takes it: UTF-8, `\` as `/`. buffer has OS_PATH_ROOM bytes. */
[[nodiscard]] uint64_t osNativePath(const char16_t* path, char* buffer);
