// system.cpp: the linker leads the program's calls of open and its like through the functions below (disc.cmake).
#include "tests/disc/posix/system.h"

#include <cstdarg>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

SystemCalls systemCalls;

static std::string nameOf(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

static std::string nameOf(int fd)
{
    char path[4096];
    const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), path, sizeof(path));
    return length < 0 ? "" : nameOf(std::string(path, size_t(length)));
}

static bool failsNow(const std::string& name, const std::string& failing)
{
    if (systemCalls.failingCall && ++systemCalls.calls == systemCalls.failingCall) {
        errno = EIO;
        return true;
    }
    if (failing.empty() || name != failing) return false;
    if (systemCalls.passes > 0) {
        systemCalls.passes--;
        return false;
    }
    if (systemCalls.failures == 0) return false;
    systemCalls.failures--;
    errno = systemCalls.error;
    return true;
}

extern "C" {
int __real_open(const char* path, int flags, ...);
ssize_t __real_read(int fd, void* buffer, size_t count);
ssize_t __real_write(int fd, const void* buffer, size_t count);
off_t __real_lseek(int fd, off_t offset, int origin);
int __real_fstat(int fd, struct stat* info);
int __wrap_open(const char* path, int flags, ...);
ssize_t __wrap_read(int fd, void* buffer, size_t count);
ssize_t __wrap_write(int fd, const void* buffer, size_t count);
off_t __wrap_lseek(int fd, off_t offset, int origin);
int __wrap_fstat(int fd, struct stat* info);

int __wrap_open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = va_arg(arguments, unsigned);   // the engine hands one always
    va_end(arguments);
    if (!systemCalls.watched) return __real_open(path, flags, mode);
    systemCalls.opened.push_back(((flags & O_ACCMODE) == O_RDONLY ? "r " : "w ") + nameOf(std::string(path)));
    return failsNow(nameOf(std::string(path)), systemCalls.failingOpen) ? -1 : __real_open(path, flags, mode);
}

ssize_t __wrap_read(int fd, void* buffer, size_t count)
{
    if (!systemCalls.watched) return __real_read(fd, buffer, count);
    return failsNow(nameOf(fd), systemCalls.failingRead) ? -1 : __real_read(fd, buffer, count);
}

ssize_t __wrap_write(int fd, const void* buffer, size_t count)
{
    if (!systemCalls.watched) return __real_write(fd, buffer, count);
    return failsNow(nameOf(fd), systemCalls.failingWrite) ? -1 : __real_write(fd, buffer, count);
}

off_t __wrap_lseek(int fd, off_t offset, int origin)
{
    return systemCalls.watched && failsNow({}, {}) ? -1 : __real_lseek(fd, offset, origin);
}

int __wrap_fstat(int fd, struct stat* info)
{
    return systemCalls.watched && failsNow({}, {}) ? -1 : __real_fstat(fd, info);
}
}
