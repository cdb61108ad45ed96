// files.cpp: files through handles. Error numbers are GetLastError's, passed through.
#include "base/files.h"

#include "base/result.h"
#include "base/strings.h"
#include "base/win32/win32.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr uint64_t TRANSFER_BYTES = uint64_t(1) << 30;   // most bytes of one call
constexpr DWORD SHARE_ALL = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD SHARE_DATA = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr DWORD ACCESS_BOTH = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD PLAIN = FILE_ATTRIBUTE_NORMAL;
constexpr DWORD TEMPORARY = FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_TEMPORARY;

struct ModeRow {
    DWORD access, share, creation, attributes;
    bool atEnd;
};
// clang-format off
constexpr ModeRow MODES[] = {
    { GENERIC_READ,  FILE_SHARE_READ,  OPEN_EXISTING, PLAIN,     false },   // OS_READ
    { GENERIC_WRITE, FILE_SHARE_WRITE, CREATE_ALWAYS, PLAIN,     false },   // OS_CREATE
    { ACCESS_BOTH,   SHARE_DATA,       OPEN_ALWAYS,   PLAIN,     false },   // OS_EXTEND
    { GENERIC_WRITE, FILE_SHARE_WRITE, OPEN_ALWAYS,   PLAIN,     true  },   // OS_APPEND
    { ACCESS_BOTH,   SHARE_DATA,       OPEN_EXISTING, PLAIN,     false },   // OS_FIX
    { ACCESS_BOTH,   SHARE_DATA,       CREATE_ALWAYS, PLAIN,     false },   // OS_CREATE_READ
    { ACCESS_BOTH,   SHARE_ALL,        CREATE_ALWAYS, TEMPORARY, false },   // OS_TEMPORARY
};
// clang-format on

HANDLE handleOf(OSFILE file)
{
    return reinterpret_cast<HANDLE>(file);
}

uint64_t moveTo(HANDLE file, int64_t offset, DWORD origin)
{
    LARGE_INTEGER distance = {};
    distance.QuadPart = offset;
    return SetFilePointerEx(file, distance, nullptr, origin) ? 0 : osLastError();
}

uint64_t joined(const FILETIME& time)
{
    return uint64_t(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

bool isLetter(char16_t unit)
{
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

}   // namespace

uint64_t osOpenFile(const char16_t* path, uint64_t mode, OSFILE* file)
{
    if (!file) return OS_INVALID_ARGUMENT;
    *file = 0;
    if (!path || mode < 1 || mode > std::size(MODES)) return OS_INVALID_ARGUMENT;
    const ModeRow& row = MODES[mode - 1];
    const HANDLE handle =
        CreateFileW(osNative(path), row.access, row.share, nullptr, row.creation, row.attributes, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return osLastError();
    if (row.atEnd) {
        if (uint64_t error = moveTo(handle, 0, FILE_END)) {
            (void)CloseHandle(handle);
            return error;
        }
    }
    *file = reinterpret_cast<OSFILE>(handle);
    return 0;
}

uint64_t osCloseFile(OSFILE* file)
{
    if (!file || *file == 0) return 0;
    const HANDLE handle = handleOf(*file);
    *file = 0;
    return CloseHandle(handle) ? 0 : osLastError();
}

uint64_t osSeekFile(OSFILE file, int64_t offset, uint64_t origin)
{
    constexpr DWORD ORIGINS[] = { FILE_BEGIN, FILE_CURRENT, FILE_END };
    if (origin >= std::size(ORIGINS)) return OS_INVALID_ARGUMENT;
    return moveTo(handleOf(file), offset, ORIGINS[origin]);
}

uint64_t osTellFile(OSFILE file, uint64_t* position)
{
    if (!position) return OS_INVALID_ARGUMENT;
    *position = 0;
    LARGE_INTEGER at = {};
    if (!SetFilePointerEx(handleOf(file), {}, &at, FILE_CURRENT)) return osLastError();
    *position = uint64_t(at.QuadPart);
    return 0;
}

uint64_t osFileSize(OSFILE file, uint64_t* size)
{
    if (!size) return OS_INVALID_ARGUMENT;
    *size = 0;
    LARGE_INTEGER bytes = {};
    if (!GetFileSizeEx(handleOf(file), &bytes)) return osLastError();
    *size = uint64_t(bytes.QuadPart);
    return 0;
}

uint64_t osReadFile(OSFILE file, void* buffer, uint64_t count)
{
    uint64_t got = 0;
    if (uint64_t error = osReadFileSome(file, buffer, count, &got)) return error;
    return got == count ? 0 : OS_SHORT_READ;
}

uint64_t osReadFileSome(OSFILE file, void* buffer, uint64_t count, uint64_t* got)
{
    if (!got) return OS_INVALID_ARGUMENT;
    *got = 0;
    while (*got < count) {
        void* to = static_cast<uint8_t*>(buffer) + *got;
        DWORD now = 0;
        if (!ReadFile(handleOf(file), to, DWORD(std::min(count - *got, TRANSFER_BYTES)), &now, nullptr)) {
            return osLastError();
        }
        if (now == 0) break;
        *got += now;
    }
    return 0;
}

uint64_t osWriteFile(OSFILE file, const void* buffer, uint64_t count)
{
    for (uint64_t done = 0; done < count;) {
        const void* from = static_cast<const uint8_t*>(buffer) + done;
        DWORD now = 0;
        if (!WriteFile(handleOf(file), from, DWORD(std::min(count - done, TRANSFER_BYTES)), &now, nullptr)) {
            return osLastError();
        }
        if (now == 0) return ERROR_DISK_FULL;   // a device that takes nothing and says nothing
        done += now;
    }
    return 0;
}

uint64_t osCopyFile(const char16_t* from, const char16_t* to, bool failIfExists)
{
    if (!from || !to) return OS_INVALID_ARGUMENT;
    return CopyFileW(osNative(from), osNative(to), failIfExists) ? 0 : osLastError();
}

uint64_t osDeleteFile(const char16_t* path)
{
    return path && DeleteFileW(osNative(path)) ? 1 : 0;
}

uint64_t osGetFileInfo(const char16_t* path, uint64_t* size, uint64_t times[3])
{
    if (size) *size = 0;
    if (times) std::fill_n(times, 3, uint64_t(0));
    if (!path) return OS_INVALID_ARGUMENT;
    WIN32_FILE_ATTRIBUTE_DATA info = {};
    if (!GetFileAttributesExW(osNative(path), GetFileExInfoStandard, &info)) return osLastError();
    const bool isFolder = info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
    if (size) *size = isFolder ? 0 : uint64_t(info.nFileSizeHigh) << 32 | info.nFileSizeLow;
    if (times) {
        times[0] = joined(info.ftCreationTime);
        times[1] = joined(info.ftLastAccessTime);
        times[2] = joined(info.ftLastWriteTime);
    }
    return 0;
}

uint64_t osGetTempFile(const char16_t* prefix, char16_t** name)
{
    if (!prefix) return OS_INVALID_ARGUMENT;
    if (!name) return 0;
    *name = nullptr;
    char16_t folder[MAX_PATH + 1];
    const DWORD length = GetTempPathW(DWORD(std::size(folder)), osNative(folder));
    if (length == 0) return osLastError();
    if (length >= std::size(folder)) return ERROR_BUFFER_OVERFLOW;
    char16_t path[MAX_PATH];
    if (GetTempFileNameW(osNative(folder), osNative(prefix), 0, osNative(path)) == 0) return osLastError();
    const uint64_t result = osStrDup(path, name);
    if (result) (void)DeleteFileW(osNative(path));
    return result;
}

uint64_t osGetCurrentDirectory(char16_t** path)
{
    if (!path) return OS_INVALID_ARGUMENT;
    *path = nullptr;
    const DWORD room = GetCurrentDirectoryW(0, nullptr);   // terminator included
    if (room == 0) return osLastError();
    char16_t* text = nullptr;
    if (uint64_t error = osStrAlloc(room, nullptr, &text)) return error;
    const DWORD length = GetCurrentDirectoryW(room, osNative(text));
    uint64_t result = length == 0 ? osLastError() : 0;
    if (!result && length >= room) result = ERROR_BUFFER_OVERFLOW;   // the folder was changed in between
    if (!result) result = osStrAlloc(length, text, path);
    (void)osStrFree(&text);
    return result;
}

uint64_t osGetDefaultDirectory(char16_t** path)
{
    return osStrDup(u"C:\\", path);
}

uint64_t osGetDriveType(const char16_t* path, uint64_t* type)
{
    if (!path || !type) return OS_INVALID_ARGUMENT;
    *type = OS_DRIVE_UNKNOWN;
    if (!isLetter(path[0]) || path[1] != u':') return 0;
    const char16_t root[] = { path[0], u':', u'\\', 0 };
    *type = GetDriveTypeW(osNative(root));
    return 0;
}
