// terminal_test.cpp: the program on a terminal and under Ctrl-C. POSIX only.
#include "running.h"

#include "tests/support/files.h"
#include "tests/support/packs.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> AUTHOR = { "author", "p.ini", "-t", "t" };

// A terminal for the program's bar, and a place of this test's own for temporary files: TMPDIR is the folder's "tmp".
Prepare onTerminal(const TempDir& folder)
{
    return [temporary = folder.root / "tmp"] {
        setenv("TMPDIR", temporary.c_str(), 1);
        setenv("TERM", "xterm", 1);
    };
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
        run = startOrven(AUTHOR, folder.root, 0, onTerminal(folder));
        for (int waited = 0; waited < PATIENCE_MS && !fs::exists(folder.root / "t"); waited++) usleep(1000);
        EXPECT_TRUE(fs::exists(folder.root / "t"));
    }
    ~StalledRun()
    {
        close(run.err);
    }
    StalledRun(const StalledRun&) = delete;
    StalledRun& operator=(const StalledRun&) = delete;

    /** Lets the run go on to its end. @return what it wrote */
    std::string text() const
    {
        return readAll(run.err).substr(run.filled);
    }

    TempDir folder;
    Running run;
};

TEST(Terminal, CtrlCIsExitCode130)
{
    const StalledRun stalled;
    EXPECT_EQ(kill(stalled.run.child, SIGINT), 0);
    const std::string text = stalled.text();
    EXPECT_TRUE(text.ends_with("error: Error 1034: canceled by user (0x8400040A)\n  the disc in t is not finished\n"))
        << text;
    EXPECT_EQ(text.find("tables"), text.npos) << text;   // it went no further
    const int status = statusOf(stalled.run.child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 130) << status;
    EXPECT_TRUE(fs::is_empty(stalled.folder.root / "tmp"));   // the temporary log is gone
}

// The counterpart: without a signal the same run ends well.
TEST(Terminal, StalledRunGoesOn)
{
    const StalledRun stalled;
    const std::string text = stalled.text();
    EXPECT_TRUE(text.ends_with("100%  disc manager: backup\n")) << text;
    const int status = statusOf(stalled.run.child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

// A run that hangs on a dead drive never comes back to ask: the second Ctrl-C has to end it.
TEST(Terminal, SecondCtrlCEndsAtOnce)
{
    const StalledRun stalled;
    int status = 0;
    pid_t ended = 0;
    for (int tries = 0; tries < 500 && ended == 0; tries++) {   // two signals at once may count as one
        EXPECT_EQ(kill(stalled.run.child, SIGINT), 0);
        usleep(20000);
        ended = waitpid(stalled.run.child, &status, WNOHANG);
    }
    EXPECT_EQ(ended, stalled.run.child);
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
    const pid_t child = spawnOrven(AUTHOR, folder.root, terminal, onTerminal(folder));
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
    const Ended ended = runPrepared(AUTHOR, folder.root, onTerminal(folder));
    EXPECT_NE(ended.err.find("Error 1009"), std::string::npos);
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_TRUE(fs::is_empty(folder.root / "tmp"));
}

}   // namespace
