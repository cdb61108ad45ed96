// text.cpp: narrow text (the ANSI code page), the system's error texts and its path separator.
#include "base/win32/win32.h"

#include "base/files.h"
#include "base/result.h"
#include "base/strings.h"

#include <climits>
#include <cstring>

namespace {

constexpr DWORD USER_LANGUAGE = 1024;

}

char16_t osPathSeparator()
{
    return u'\\';
}

uint64_t osAnsiToWide(char16_t** out, const char* narrow, uint64_t* length)
{
    if (!out || !narrow) return OS_INVALID_ARGUMENT;
    const uint64_t bytes = std::strlen(narrow);
    if (bytes >= INT_MAX) return ERROR_INVALID_PARAMETER;
    const int room = int(bytes) + 1;
    const int units = MultiByteToWideChar(CP_ACP, 0, narrow, room, nullptr, 0);   // terminator included
    if (units <= 0) return osLastError();
    char16_t* wide = nullptr;
    if (uint64_t error = osStrAlloc(uint64_t(units) - 1, nullptr, &wide)) return error;
    if (MultiByteToWideChar(CP_ACP, 0, narrow, room, osNative(wide), units) != units) {
        const uint64_t error = osLastError();
        (void)osStrFree(&wide);
        return error;
    }
    if (length) *length = uint64_t(units) - 1;
    *out = wide;
    return 0;
}

uint64_t osWideToAnsi(char* narrow, const char16_t* wide, uint64_t* length, uint64_t size)
{
    if (!narrow || !wide || size == 0) return OS_INVALID_ARGUMENT;
    const int room = size > INT_MAX ? INT_MAX : int(size);
    const int bytes = WideCharToMultiByte(CP_ACP, 0, osNative(wide), -1, narrow, room, nullptr, nullptr);
    if (bytes <= 0) {
        const uint64_t error = osLastError();
        narrow[size - 1] = 0;
        return error;
    }
    if (length) *length = uint64_t(bytes) - 1;
    return 0;
}

uint64_t osSystemText(uint64_t code, char16_t* buffer, uint64_t size)
{
    if (!buffer || size == 0) return 0;
    const DWORD units = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, osCount(code), USER_LANGUAGE,
                                       osNative(buffer), osCount(size), nullptr);
    buffer[units] = 0;
    return units;
}
