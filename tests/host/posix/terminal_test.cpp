// terminal_test.cpp: the program on a terminal and under Ctrl-C. POSIX only.
#include "../process.h"

#include "tests/support/files.h"
#include "tests/support/packs.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int PATIENCE_MS = 60000;   // for a machine under load; a healthy run needs milliseconds

// `orven author p.ini -t t`, with standard error given. TMPDIR is the folder's "tmp".
pid_t startAuthor(const fs::path& folder, int err)
{
    const std::string program = orvenProgram().string();
    const pid_t child = fork();
    if (child != 0) return child;
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    setenv("TMPDIR", (folder / "tmp").c_str(), 1);
    setenv("TERM", "xterm", 1);
    if (chdir(folder.c_str()) == 0) execl(program.c_str(), program.c_str(), "author", "p.ini", "-t", "t", nullptr);
    _exit(127);
}

// Reads to the end. A terminal whose other side is gone gives an error, which is an end too.
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

void writeProject(const TempDir& folder)
{
    fs::create_directory(folder.root / "tmp");
    writeFile(folder / u"p.ini",
              std::string_view("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\n[VTS_1]\nsource=movie.vob\n"));
}

// A run that stands still: the pipe behind its standard error is full, so it waits in its first report until the test
// reads. That the target folder is there tells that the program listens for signals by now.
struct StalledRun {
    StalledRun()
    {
        writeProject(folder);
        writeFile(folder / u"movie.vob", makeMovie({ .vobus = vobus(20) }).bytes);
        int ends[2] = { -1, -1 };
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        err = ends[0];
        filled = fill(ends[1]);
        child = startAuthor(folder.root, ends[1]);
        close(ends[1]);
        for (int waited = 0; waited < PATIENCE_MS && !fs::exists(folder.root / "t"); waited++) usleep(1000);
        EXPECT_TRUE(fs::exists(folder.root / "t"));
    }
    ~StalledRun()
    {
        close(err);
    }
    StalledRun(const StalledRun&) = delete;
    StalledRun& operator=(const StalledRun&) = delete;

    // Fills a pipe to the last byte, and leaves it as a program expects its standard error.
    static size_t fill(int pipe)
    {
        const int flags = fcntl(pipe, F_GETFL);
        fcntl(pipe, F_SETFL, flags | O_NONBLOCK);
        const std::string filler(4096, '.');
        size_t bytes = 0;
        for (size_t piece : { filler.size(), size_t(1) }) {
            while (write(pipe, filler.data(), piece) == ssize_t(piece)) bytes += piece;
        }
        fcntl(pipe, F_SETFL, flags);
        return bytes;
    }

    /** Lets the run go on to its end. @return what it wrote */
    std::string text() const
    {
        return readAll(err).substr(filled);
    }

    TempDir folder;
    int err;
    size_t filled;
    pid_t child;
};

TEST(Terminal, CtrlCIsExitCode130)
{
    const StalledRun run;
    EXPECT_EQ(kill(run.child, SIGINT), 0);
    const std::string text = run.text();
    EXPECT_TRUE(text.ends_with("error: Error 1034: canceled by user (0x8400040A)\n  the disc in t is not finished\n"))
        << text;
    EXPECT_EQ(text.find("tables"), text.npos) << text;   // it went no further
    const int status = statusOf(run.child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 130) << status;
    EXPECT_TRUE(fs::is_empty(run.folder.root / "tmp"));   // the temporary log is gone
}

// The counterpart: without a signal the same run ends well.
TEST(Terminal, StalledRunGoesOn)
{
    const StalledRun run;
    const std::string text = run.text();
    EXPECT_TRUE(text.ends_with("100%  disc manager: backup\n")) << text;
    const int status = statusOf(run.child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

// A run that hangs on a dead drive never comes back to ask: the second Ctrl-C has to end it.
TEST(Terminal, SecondCtrlCEndsAtOnce)
{
    const StalledRun run;
    int status = 0;
    pid_t ended = 0;
    for (int tries = 0; tries < 500 && ended == 0; tries++) {   // two signals at once may count as one
        EXPECT_EQ(kill(run.child, SIGINT), 0);
        usleep(20000);
        ended = waitpid(run.child, &status, WNOHANG);
    }
    EXPECT_EQ(ended, run.child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
}

// What stands on a terminal of this width: lines as they were drawn one over the other.
std::vector<std::string> drawnLines(const std::string& text)
{
    std::vector<std::string> lines = { "" };
    for (const char c : text) {
        if (c == '\r' || c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}

TEST(Terminal, BarFitsAndEnds)
{
    const TempDir folder;
    writeProject(folder);
    writeFile(folder / u"movie.vob", makeMovie({ .vobus = vobus(50) }).bytes);
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 && errno == ENODEV) GTEST_SKIP() << "a machine without pseudo terminals";
    ASSERT_GE(master, 0);
    ASSERT_EQ(grantpt(master) | unlockpt(master), 0);
    const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const winsize size = { 24, 60, 0, 0 };
    ASSERT_EQ(ioctl(terminal, TIOCSWINSZ, &size), 0);
    const pid_t child = startAuthor(folder.root, terminal);
    close(terminal);
    const std::string text = readAll(master);
    const int status = statusOf(child);
    close(master);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << text;

    const std::vector<std::string> lines = drawnLines(text);
    size_t drawn = 0;
    for (const std::string& line : lines) {
        EXPECT_LT(line.size(), 60u) << line;
        if (line.empty()) continue;
        drawn++;
        EXPECT_TRUE(line.starts_with("title set 1: ") || line.starts_with("disc manager: ")) << line;
    }
    EXPECT_GT(drawn, 5u);
    EXPECT_EQ(text.find('\x1B'), text.npos);
    EXPECT_TRUE(text.ends_with("disc manager: backup   [#############################] 100%\r\n")) << text;
}

// Opening a pipe would wait for somebody who writes into it.
TEST(Terminal, PipesDoNotStopTheProgram)
{
    const TempDir folder;
    writeProject(folder);
    ASSERT_EQ(mkfifo((folder.root / "movie.vob").c_str(), 0600), 0);
    const ProcessResult source = runOrven({ "author", "p.ini", "-t", "t" }, folder.root);
    EXPECT_EQ(source.exitCode, 1);
    EXPECT_NE(source.err.find("p.ini:6: source=movie.vob\n    that is a pipe, not a file\n"), std::string::npos)
        << source.err;
    const ProcessResult project = runOrven({ "author", "movie.vob", "-t", "t" }, folder.root);
    EXPECT_EQ(project.exitCode, 2);
    const ProcessResult log = runOrven({ "author", "p.ini", "-t", "t", "--log", "movie.vob" }, folder.root);
    EXPECT_EQ(log.exitCode, 2);
}

// A file's name is any bytes on these systems. The library takes names as UTF-8 alone, so it can't find this one.
TEST(Terminal, NamesThatAreNotText)
{
    const TempDir folder;
    const ProcessResult missing = runOrven({ "author", "\xFF.ini", "-t", "t" }, folder.root);
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.err, "error: there is no project file \xEF\xBF\xBD.ini\n");
}

TEST(Terminal, FailedRunLeavesNoTemporaryFile)
{
    const TempDir folder;
    fs::create_directory(folder.root / "tmp");
    writeFile(folder / u"p.ini", std::string_view("[COMMON]\n"));
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = startAuthor(folder.root, ends[1]);
    close(ends[1]);
    EXPECT_NE(readAll(ends[0]).find("Error 1009"), std::string::npos);
    close(ends[0]);
    const int status = statusOf(child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
    EXPECT_TRUE(fs::is_empty(folder.root / "tmp"));
}

}   // namespace
