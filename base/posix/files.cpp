// files.cpp: files through descriptors. Error numbers are errno's, passed through.
#include "base/files.h"

#include "base/posix/posix.h"
#include "base/result.h"
#include "base/strings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr uint64_t TRANSFER_BYTES = uint64_t(1) << 30;   // most bytes of one call; the system takes 2 GiB at most
constexpr uint64_t COPY_BYTES = 65536;
constexpr int FIRST_DESCRIPTOR = 3;   // 0 is "not open", and 1 and 2 are where a host's own output would go
constexpr mode_t NEW_FILE = 0666;

// O_NONBLOCK stays set: a pipe or a terminal in a file's place fails where it would wait. Plain files know no waiting.
constexpr int ALWAYS = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

struct ModeRow {
    int flags;
    bool needsSize;   // opened to be read: what has no size to read is refused
    bool atEnd;
};
// clang-format off
constexpr ModeRow MODES[] = {
    { O_RDONLY,                     true,  false },   // OS_READ
    { O_WRONLY | O_CREAT | O_TRUNC, false, false },   // OS_CREATE
    { O_RDWR   | O_CREAT,           false, false },   // OS_EXTEND
    { O_WRONLY | O_CREAT,           false, true  },   // OS_APPEND
    { O_RDWR,                       true,  false },   // OS_FIX
    { O_RDWR   | O_CREAT | O_TRUNC, false, false },   // OS_CREATE_READ
    { O_RDWR   | O_CREAT | O_TRUNC, false, false },   // OS_TEMPORARY
};
// clang-format on

uint64_t openDescriptor(const char* path, int flags, int* out)
{
    int fd = -1;
    do {
        fd = open(path, flags | ALWAYS, NEW_FILE);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0) return osLastError();
    if (fd < FIRST_DESCRIPTOR) {
        const int moved = fcntl(fd, F_DUPFD_CLOEXEC, FIRST_DESCRIPTOR);
        const uint64_t error = moved < 0 ? osLastError() : 0;
        (void)close(fd);
        if (error) return error;
        fd = moved;
    }
    *out = fd;
    return 0;
}

uint64_t checkKind(int fd, bool needsSize)
{
    struct stat info = {};
    if (fstat(fd, &info) != 0) return osLastError();
    if (S_ISDIR(info.st_mode)) return EISDIR;
    if (S_ISFIFO(info.st_mode)) return ESPIPE;
    if (needsSize && !S_ISREG(info.st_mode) && !S_ISBLK(info.st_mode)) return ESPIPE;
    return 0;
}

uint64_t closeDescriptor(int fd)
{
    // After EINTR the descriptor is gone as well; a second close could hit another thread's file.
    return close(fd) == 0 || errno == EINTR ? 0 : osLastError();
}

// 100 ns since 1601-01-01 UTC
uint64_t fileTime(const statx_timestamp& time)
{
    constexpr int64_t SECONDS_1601_TO_1970 = 11644473600;
    return uint64_t(time.tv_sec + SECONDS_1601_TO_1970) * 10000000 + time.tv_nsec / 100;
}

uint64_t copyBytes(OSFILE source, OSFILE target)
{
    uint8_t buffer[COPY_BYTES];
    for (;;) {
        uint64_t got = 0;
        if (uint64_t error = osReadFileSome(source, buffer, COPY_BYTES, &got)) return error;
        if (got == 0) return 0;
        if (uint64_t error = osWriteFile(target, buffer, got)) return error;
    }
}

// Empties the target only when it is known to be another file than the source.
uint64_t copyToTarget(OSFILE source, int target)
{
    if (uint64_t error = checkKind(target, false)) return error;
    struct stat from = {};
    struct stat to = {};
    if (fstat(osFd(source), &from) != 0 || fstat(target, &to) != 0) return osLastError();
    if (from.st_dev == to.st_dev && from.st_ino == to.st_ino) return EINVAL;
    if (S_ISREG(to.st_mode) && ftruncate(target, 0) != 0) return osLastError();
    return copyBytes(source, OSFILE(target));
}

}   // namespace

uint64_t osOpenFile(const char16_t* path, uint64_t mode, OSFILE* file)
{
    if (!file) return OS_INVALID_ARGUMENT;
    *file = 0;
    if (!path || mode < 1 || mode > std::size(MODES)) return OS_INVALID_ARGUMENT;
    const ModeRow& row = MODES[mode - 1];
    char native[OS_PATH_ROOM];
    if (uint64_t error = osNativePath(path, native)) return error;
    int fd = -1;
    if (uint64_t error = openDescriptor(native, row.flags, &fd)) return error;
    uint64_t error = checkKind(fd, row.needsSize);
    if (!error && row.atEnd && lseek(fd, 0, SEEK_END) < 0) error = osLastError();
    if (error) {
        (void)closeDescriptor(fd);
        return error;
    }
    *file = OSFILE(fd);
    return 0;
}

uint64_t osCloseFile(OSFILE* file)
{
    if (!file || *file == 0) return 0;
    const int fd = osFd(*file);
    *file = 0;
    return closeDescriptor(fd);
}

uint64_t osSeekFile(OSFILE file, int64_t offset, uint64_t origin)
{
    constexpr int ORIGINS[] = { SEEK_SET, SEEK_CUR, SEEK_END };
    if (origin >= std::size(ORIGINS)) return OS_INVALID_ARGUMENT;
    return lseek(osFd(file), offset, ORIGINS[origin]) < 0 ? osLastError() : 0;
}

uint64_t osTellFile(OSFILE file, uint64_t* position)
{
    if (!position) return OS_INVALID_ARGUMENT;
    *position = 0;
    const off_t at = lseek(osFd(file), 0, SEEK_CUR);
    if (at < 0) return osLastError();
    *position = uint64_t(at);
    return 0;
}

uint64_t osFileSize(OSFILE file, uint64_t* size)
{
    if (!size) return OS_INVALID_ARGUMENT;
    *size = 0;
    struct stat info = {};
    if (fstat(osFd(file), &info) != 0) return osLastError();
    if (!S_ISBLK(info.st_mode)) {
        *size = uint64_t(info.st_size);
        return 0;
    }
    // A drive's size is where its end is.
    const off_t at = lseek(osFd(file), 0, SEEK_CUR);
    const off_t end = lseek(osFd(file), 0, SEEK_END);
    if (at < 0 || end < 0 || lseek(osFd(file), at, SEEK_SET) < 0) return osLastError();
    *size = uint64_t(end);
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
        const ssize_t now = read(osFd(file), to, size_t(std::min(count - *got, TRANSFER_BYTES)));
        if (now < 0 && errno == EINTR) continue;
        if (now < 0) return osLastError();
        if (now == 0) break;
        *got += uint64_t(now);
    }
    return 0;
}

uint64_t osWriteFile(OSFILE file, const void* buffer, uint64_t count)
{
    for (uint64_t done = 0; done < count;) {
        const void* from = static_cast<const uint8_t*>(buffer) + done;
        const ssize_t now = write(osFd(file), from, size_t(std::min(count - done, TRANSFER_BYTES)));
        if (now < 0 && errno == EINTR) continue;
        if (now < 0) return osLastError();
        if (now == 0) return ENOSPC;   // a device that takes nothing and says nothing
        done += uint64_t(now);
    }
    return 0;
}

uint64_t osCopyFile(const char16_t* from, const char16_t* to, bool failIfExists)
{
    if (!from || !to) return OS_INVALID_ARGUMENT;
    char native[OS_PATH_ROOM];
    if (uint64_t error = osNativePath(to, native)) return error;
    OSFILE source = 0;
    if (uint64_t error = osOpenFile(from, OS_READ, &source)) return error;
    int target = -1;
    uint64_t result = openDescriptor(native, O_WRONLY | O_CREAT | (failIfExists ? O_EXCL : 0), &target);
    if (!result) {
        result = copyToTarget(source, target);
        const uint64_t closed = closeDescriptor(target);
        if (!result) result = closed;
    }
    (void)osCloseFile(&source);   // only read
    return result;
}

uint64_t osDeleteFile(const char16_t* path)
{
    char native[OS_PATH_ROOM];
    if (!path || osNativePath(path, native)) return 0;
    return unlink(native) == 0 ? 1 : 0;
}

uint64_t osGetFileInfo(const char16_t* path, uint64_t* size, uint64_t times[3])
{
    if (size) *size = 0;
    if (times) std::fill_n(times, 3, uint64_t(0));
    if (!path) return OS_INVALID_ARGUMENT;
    char native[OS_PATH_ROOM];
    if (uint64_t error = osNativePath(path, native)) return error;
    struct statx info = {};
    if (statx(AT_FDCWD, native, 0, STATX_BASIC_STATS | STATX_BTIME, &info) != 0) return osLastError();
    if (size) *size = S_ISDIR(info.stx_mode) ? 0 : info.stx_size;
    if (times) {
        times[0] = fileTime(info.stx_mask & STATX_BTIME ? info.stx_btime : info.stx_mtime);
        times[1] = fileTime(info.stx_atime);
        times[2] = fileTime(info.stx_mtime);
    }
    return 0;
}

uint64_t osGetTempFile(const char16_t* prefix, char16_t** name)
{
    if (!prefix) return OS_INVALID_ARGUMENT;
    if (!name) return 0;
    *name = nullptr;
    const char* folder = std::getenv("TMPDIR");
    if (!folder || !*folder) folder = "/tmp";
    char text[OS_PATH_ROOM];
    if (uint64_t error = osNativePath(prefix, text)) return error;
    char path[OS_PATH_ROOM];
    const int length = std::snprintf(path, sizeof(path), "%s/%sXXXXXX", folder, text);
    if (length < 0 || uint64_t(length) >= sizeof(path)) return ENAMETOOLONG;
    // The file is made only under a name that osOpenFile will find again.
    char16_t* wide = nullptr;
    if (uint64_t error = osAnsiToWide(&wide, path, nullptr)) return error;
    uint64_t result = osNativePath(wide, path);
    (void)osStrFree(&wide);
    if (result) return result;
    const int fd = mkostemp(path, O_CLOEXEC);
    if (fd < 0) return osLastError();
    (void)closeDescriptor(fd);
    result = osAnsiToWide(name, path, nullptr);
    if (result) (void)unlink(path);
    return result;
}

uint64_t osGetCurrentDirectory(char16_t** path)
{
    if (!path) return OS_INVALID_ARGUMENT;
    *path = nullptr;
    char native[OS_PATH_ROOM];
    if (!getcwd(native, sizeof(native))) return osLastError();
    return osAnsiToWide(path, native, nullptr);
}

uint64_t osGetDefaultDirectory(char16_t** path)
{
    return osGetCurrentDirectory(path);
}

uint64_t osGetDriveType(const char16_t* path, uint64_t* type)
{
    if (!path || !type) return OS_INVALID_ARGUMENT;
    *type = OS_DRIVE_UNKNOWN;
    char native[OS_PATH_ROOM];
    if (uint64_t error = osNativePath(path, native)) return error;
    struct statvfs info = {};
    if (statvfs(native, &info) != 0) return osLastError();
    *type = info.f_flag & ST_RDONLY ? OS_DRIVE_OPTICAL : OS_DRIVE_FIXED;
    return 0;
}
