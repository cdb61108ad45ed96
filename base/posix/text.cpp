// text.cpp: narrow text (UTF-8), the system's error texts and its path separator.
#include "base/posix/posix.h"

#include "base/result.h"
#include "base/strings.h"

#include <algorithm>
#include <cstring>

char16_t osPathSeparator()
{
    return u'/';
}

uint64_t osNativePath(const char16_t* path, char* buffer)
{
    const uint64_t length = osStrLength(path);
    const uint64_t bytes = osWideToUtf8(path, length, buffer, OS_PATH_ROOM - 1);
    if (bytes >= OS_PATH_ROOM) return ENAMETOOLONG;
    buffer[bytes] = 0;
    std::replace(buffer, buffer + bytes, '\\', '/');
    return 0;
}

uint64_t osAnsiToWide(char16_t** out, const char* narrow, uint64_t* length)
{
    if (!out || !narrow) return OS_INVALID_ARGUMENT;
    const uint64_t bytes = std::strlen(narrow);
    const uint64_t units = osUtf8ToWide(narrow, bytes, nullptr, 0);
    char16_t* wide = nullptr;
    if (uint64_t error = osStrAlloc(units, nullptr, &wide)) return error;
    (void)osUtf8ToWide(narrow, bytes, wide, units);
    if (length) *length = units;
    *out = wide;
    return 0;
}

uint64_t osWideToAnsi(char* narrow, const char16_t* wide, uint64_t* length, uint64_t size)
{
    if (!narrow || !wide || size == 0) return OS_INVALID_ARGUMENT;
    const uint64_t bytes = osWideToUtf8(wide, osStrLength(wide), narrow, size - 1);
    narrow[std::min(bytes, size - 1)] = 0;
    if (bytes >= size) return ERANGE;
    if (length) *length = bytes;
    return 0;
}

uint64_t osSystemText(uint64_t code, char16_t* buffer, uint64_t size)
{
    if (!buffer || size == 0) return 0;
    buffer[0] = 0;
    // The description tells whether the number is known: strerror itself has a text for every number.
    if (code > INT_MAX || !strerrordesc_np(int(code))) return 0;
    char room[256];
    const char* text = strerror_r(int(code), room, sizeof(room));
    const uint64_t units = osUtf8ToWide(text, std::strlen(text), nullptr, 0);
    if (units >= size) return 0;
    (void)osUtf8ToWide(text, std::strlen(text), buffer, units);
    buffer[units] = 0;
    return units;
}
