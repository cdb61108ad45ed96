// profile_write.cpp: sets one key of an INI file through the system's own writer.
#include "base/profile.h"

#include "base/result.h"
#include "base/win32/win32.h"

uint64_t osSetIniString(const char16_t* path, const char16_t* section, const char16_t* key, const char16_t* value)
{
    // A null key or value would delete.
    if (!path || !section || !key || !value) return OS_INVALID_ARGUMENT;
    const BOOL done = WritePrivateProfileStringW(osNative(section), osNative(key), osNative(value), osNative(path));
    return done ? 0 : osLastError();
}
