// running.h: the built program as a process that a test holds up, interrupts or sets limits to. POSIX only.
#pragma once

#include "../process.h"

#include <cstdint>
#include <functional>
#include <sys/types.h>

constexpr int PATIENCE_MS = 60000;   // for a machine under load; a healthy run needs milliseconds

/** What runs in the new process before the program does. */
typedef std::function<void()> Prepare;

constexpr size_t ANY_AMOUNT = SIZE_MAX;

// A started program, and the end of the pipe behind its standard error.
struct Running {
    pid_t child;
    int err;
    size_t filled;   // bytes of the pipe that are not the program's
};

struct Ended {
    int exitCode;   // -1 if a signal ended it
    std::string err;
};

/** Starts `orven` with arguments in UTF-8, in a folder, with the file err behind its standard error and out, which may
 *  be a name in that folder, behind its standard output. */
pid_t spawnOrven(
    const std::vector<std::string>& arguments, const std::filesystem::path& folder, int err,
    const Prepare& prepare = [] {}, const char* out = "/dev/null");

/** Starts `orven` with a pipe that takes so many bytes of its standard error: what would write more stands still until
 *  somebody reads. */
Running startOrven(
    const std::vector<std::string>& arguments, const std::filesystem::path& folder, size_t room,
    const Prepare& prepare = [] {}, const char* out = "/dev/null");

/** Reads what the program says, to the end, and waits for it. */
Ended finish(const Running& run);

/** Runs `orven` to the end. */
Ended runPrepared(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                  const Prepare& prepare);

/** Reads to the end. A terminal whose other side is gone gives an error, which is an end too. */
std::string readAll(int from);

/** Waits for a process. @return its status as waitpid gives it */
int statusOf(pid_t child);

/** As on a full disk: no file can be longer. */
Prepare limitFiles(uint64_t bytes);

/** In the new process: files refuse what their permissions refuse, also to root. */
void obeyPermissions();
