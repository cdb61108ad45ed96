// platform_numbers.h: error numbers that the platforms give for one and the same fault.
#pragma once

#include <cstdint>

inline constexpr uint64_t FILE_NOT_FOUND = 2;   // ENOENT and ERROR_FILE_NOT_FOUND
#ifdef _WIN32
inline constexpr uint64_t NO_MEMORY = 8;             // ERROR_NOT_ENOUGH_MEMORY
inline constexpr uint64_t BAD_FILE = 6;              // ERROR_INVALID_HANDLE
inline constexpr uint64_t FILE_EXISTS = 80;          // ERROR_FILE_EXISTS
inline constexpr uint64_t NEGATIVE_SEEK = 131;       // ERROR_NEGATIVE_SEEK
inline constexpr uint64_t NARROW_TOO_SHORT = 122;    // ERROR_INSUFFICIENT_BUFFER
inline constexpr uint64_t FOLDER_AS_FILE = 5;        // ERROR_ACCESS_DENIED
inline constexpr uint64_t COPIED_ONTO_ITSELF = 32;   // ERROR_SHARING_VIOLATION
inline constexpr char16_t SEPARATOR = u'\\';
#else
inline constexpr uint64_t NO_MEMORY = 12;            // ENOMEM
inline constexpr uint64_t BAD_FILE = 9;              // EBADF
inline constexpr uint64_t FILE_EXISTS = 17;          // EEXIST
inline constexpr uint64_t NEGATIVE_SEEK = 22;        // EINVAL
inline constexpr uint64_t NARROW_TOO_SHORT = 34;     // ERANGE
inline constexpr uint64_t FOLDER_AS_FILE = 21;       // EISDIR
inline constexpr uint64_t COPIED_ONTO_ITSELF = 22;   // EINVAL
inline constexpr char16_t SEPARATOR = u'/';
#endif
