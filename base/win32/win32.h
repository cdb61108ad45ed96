// win32.h: what the files of this folder share.
#pragma once

#include <cstdint>

#include <windows.h>

static_assert(sizeof(wchar_t) == sizeof(char16_t));

/** The engine's text as the system takes it; both are UTF-16. */
[[nodiscard]] inline const wchar_t* osNative(const char16_t* text)
{
    return reinterpret_cast<const wchar_t*>(text);
}
[[nodiscard]] inline wchar_t* osNative(char16_t* text)
{
    return reinterpret_cast<wchar_t*>(text);
}

[[nodiscard]] inline uint64_t osLastError()
{
    return GetLastError();
}

/** A count as the system takes it: what goes beyond 32 bits is left out. */
[[nodiscard]] inline DWORD osCount(uint64_t count)
{
    return count > MAXDWORD ? MAXDWORD : DWORD(count);
}
