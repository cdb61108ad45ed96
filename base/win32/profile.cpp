// profile.cpp: INI files through the system's own reader. A profile is a path; each question opens the file anew.
#include "base/profile.h"

#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/win32/win32.h"

struct OsProfile {
    char16_t* path;   // string object, owned
};

uint64_t osOpenProfile(const char16_t* path, OsProfile** out)
{
    if (!out) return OS_INVALID_ARGUMENT;
    *out = nullptr;
    if (!path) return OS_INVALID_ARGUMENT;
    OsProfile* profile = nullptr;
    if (osAllocMem(sizeof(OsProfile), &profile)) return OS_OUT_OF_MEMORY;
    if (uint64_t error = osStrDup(path, &profile->path)) {
        (void)osFreeMem(&profile);
        return error;
    }
    *out = profile;
    return 0;
}

void osCloseProfile(OsProfile** profile)
{
    if (!profile || !*profile) return;
    (void)osStrFree(&(*profile)->path);
    (void)osFreeMem(profile);
}

const char16_t* osProfilePath(const OsProfile* profile)
{
    return profile ? profile->path : u"";
}

// The system takes a null section or key as the question for all names, and a null path as its own file.

uint32_t osProfileInt(const OsProfile* profile, const char16_t* section, const char16_t* key, uint32_t absent)
{
    if (!profile || !section || !key) return absent;
    return GetPrivateProfileIntW(osNative(section), osNative(key), INT(absent), osNative(profile->path));
}

uint64_t osProfileString(const OsProfile* profile, const char16_t* section, const char16_t* key, char16_t* buffer,
                         uint64_t size)
{
    if (!buffer || size == 0) return 0;
    buffer[0] = 0;
    if (!profile || !section || !key) return 0;
    return GetPrivateProfileStringW(osNative(section), osNative(key), L"", osNative(buffer), osCount(size),
                                    osNative(profile->path));
}

uint64_t osProfileSectionNames(const OsProfile* profile, char16_t* buffer, uint64_t size)
{
    if (!buffer || size == 0) return 0;
    buffer[0] = 0;
    if (!profile || size < 2) return 0;
    return GetPrivateProfileSectionNamesW(osNative(buffer), osCount(size), osNative(profile->path));
}

bool osProfileHasLines(const OsProfile* profile, const char16_t* section)
{
    if (!profile || !section) return false;
    wchar_t lines[4];   // of a text that does not fit, its beginning
    return GetPrivateProfileSectionW(osNative(section), lines, 4, osNative(profile->path)) != 0;
}

uint64_t osGetIniInt(const char16_t* path, const char16_t* section, const char16_t* key, uint32_t absent, uint64_t* out)
{
    if (!out) return OS_INVALID_ARGUMENT;
    *out = absent;
    if (!path) return OS_INVALID_ARGUMENT;
    if (!section || !key) return 0;
    *out = GetPrivateProfileIntW(osNative(section), osNative(key), INT(absent), osNative(path));
    return 0;
}
