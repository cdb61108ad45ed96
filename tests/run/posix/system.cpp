#include "tests/run/posix/system.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <fcntl.h>
#include <string_view>
#include <sys/resource.h>
#include <sys/statvfs.h>

SystemAnswers systemAnswers;

static bool isUnit(std::string_view path)
{
    return path.substr(path.rfind('/') + 1).starts_with("spu");
}

static bool isMeant(std::string_view path)   // takes no memory: tests count it
{
    if (systemAnswers.vanishingUnits || systemAnswers.unreadableUnits) return isUnit(path);
    return !systemAnswers.vanishing.empty() && path.ends_with(systemAnswers.vanishing);
}

extern "C" {

int __real_statvfs(const char* path, struct statvfs* info);
int __real_open(const char* path, int flags, ...);
int __wrap_statvfs(const char* path, struct statvfs* info);
int __wrap_open(const char* path, int flags, ...);

int __wrap_statvfs(const char* path, struct statvfs* info)
{
    const int result = __real_statvfs(path, info);
    if (result == 0 && systemAnswers.readOnlyMedia) info->f_flag |= ST_RDONLY;
    return result;
}

int __wrap_open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = va_arg(arguments, unsigned);   // the engine hands one always
    va_end(arguments);
    if (!(flags & O_CREAT) && isMeant(path)) {
        if (systemAnswers.opensBeforeIt == 0) {
            // A file whose first bytes are never mapped
            if (systemAnswers.unreadableUnits) return __real_open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
            errno = ENOENT;
            return -1;
        }
        systemAnswers.opensBeforeIt--;
    }
    return __real_open(path, flags, mode);
}
}

FileLimit::FileLimit(uint64_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN))
{
    rlimit limit = {};
    (void)getrlimit(RLIMIT_FSIZE, &limit);
    before = limit.rlim_cur;
    limit.rlim_cur = bytes;
    (void)setrlimit(RLIMIT_FSIZE, &limit);
}

FileLimit::~FileLimit()
{
    rlimit limit = {};
    (void)getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = before;
    (void)setrlimit(RLIMIT_FSIZE, &limit);
    (void)std::signal(SIGXFSZ, handler);
}
