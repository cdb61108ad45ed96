// running.cpp: starts the built program, holds it up behind a full pipe, and waits for its end.
#include "running.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

pid_t spawnOrven(const std::vector<std::string>& arguments, const std::filesystem::path& folder, int err,
                 const Prepare& prepare, const char* out)
{
    const std::string program = orvenProgram().string();
    std::vector<char*> argv = { const_cast<char*>(program.c_str()) };
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    if (chdir(folder.c_str()) != 0) _exit(127);
    dup2(open(out, O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    prepare();
    execv(program.c_str(), argv.data());
    _exit(127);
}

/** Leaves room for so many bytes in a pipe. @return bytes that it holds now */
static size_t fillPipe(int pipe, size_t room)
{
    const int page = int(sysconf(_SC_PAGESIZE));
    EXPECT_EQ(fcntl(pipe, F_SETPIPE_SZ, page), page);
    const std::string filler(size_t(page) - room, '.');
    EXPECT_EQ(write(pipe, filler.data(), filler.size()), ssize_t(filler.size()));
    return filler.size();
}

Running startOrven(const std::vector<std::string>& arguments, const std::filesystem::path& folder, size_t room,
                   const Prepare& prepare, const char* out)
{
    int ends[2] = { -1, -1 };
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const size_t filled = room == ANY_AMOUNT ? 0 : fillPipe(ends[1], room);
    const pid_t child = spawnOrven(arguments, folder, ends[1], prepare, out);
    close(ends[1]);
    return { child, ends[0], filled };
}

Ended finish(const Running& run)
{
    const std::string text = readAll(run.err).substr(run.filled);
    close(run.err);
    const int status = statusOf(run.child);
    return { WIFEXITED(status) ? WEXITSTATUS(status) : -1, text };
}

Ended runPrepared(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                  const Prepare& prepare)
{
    return finish(startOrven(arguments, folder, ANY_AMOUNT, prepare));
}

std::string readAll(int from)
{
    std::string text;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(PATIENCE_MS);
    for (;;) {
        pollfd wait = { from, POLLIN, 0 };
        if (poll(&wait, 1, PATIENCE_MS) <= 0 || std::chrono::steady_clock::now() > end) break;
        char bytes[4096];
        const ssize_t got = read(from, bytes, sizeof bytes);
        if (got <= 0) break;
        text.append(bytes, size_t(got));
    }
    return text;
}

int statusOf(pid_t child)
{
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

Prepare limitFiles(uint64_t bytes)
{
    return [bytes] {
        const rlimit limit = { bytes, bytes };
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, SIG_IGN);
    };
}

void obeyPermissions()
{
    if (geteuid() != 0) return;
    // Another user might not even reach the program: it may lie in root's own folder.
    if (prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE) || prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH)) _exit(125);
}
