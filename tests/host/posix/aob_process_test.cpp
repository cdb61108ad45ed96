// aob_process_test.cpp: `orven aob` under Ctrl-C, on a full disk, and with names that a project can't hold. POSIX only.
#include "../process.h"

#include "tests/support/files.h"
#include "tests/support/wave.h"

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int PATIENCE_MS = 60000;   // for a machine under load

// `orven aob -t a/b --project p.ini s.wav`, after prepare has run in the new process. Standard output goes to the file
// "out".
pid_t startAob(const fs::path& folder, int err, const std::function<void()>& prepare)
{
    const std::string program = orvenProgram().string();
    const pid_t child = fork();
    if (child != 0) return child;
    if (chdir(folder.c_str()) != 0) _exit(127);
    dup2(open("out", O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    prepare();
    execl(program.c_str(), program.c_str(), "aob", "-t", "a/b", "--project", "p.ini", "s.wav", nullptr);
    _exit(127);
}

int exitCodeOf(pid_t child)
{
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string readAll(int from)
{
    std::string text;
    char bytes[4096];
    for (ssize_t got = read(from, bytes, sizeof bytes); got > 0; got = read(from, bytes, sizeof bytes)) {
        text.append(bytes, size_t(got));
    }
    close(from);
    return text;
}

/** Fills a pipe, so that a program stands still in its first line on standard error until somebody reads. */
size_t fill(int pipe)
{
    const int flags = fcntl(pipe, F_GETFL);
    size_t bytes = 0;
    fcntl(pipe, F_SETFL, flags | O_NONBLOCK);
    while (write(pipe, ".", 1) == 1) bytes++;
    fcntl(pipe, F_SETFL, flags);
    return bytes;
}

void writeSound(const TempDir& folder)
{
    writeFile(folder / u"s.wav", waveFile(makeChannels(2, 16, 1000000, 1), 16, 48000));
}

TEST(AobProcess, CtrlCLeavesNothing)
{
    const TempDir folder;
    writeSound(folder);
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const size_t filled = fill(ends[1]);
    const pid_t child = startAob(folder.root, ends[1], [] {});
    close(ends[1]);
    // The first line on standard error belongs to the first pack: by now the files are there.
    const fs::path made = folder.root / "a" / "b" / "ATS_01_1.AOB";
    std::error_code error;
    for (int waited = 0; waited < PATIENCE_MS && !fs::exists(made, error); waited++) usleep(1000);
    EXPECT_TRUE(fs::exists(folder.root / "p.ini"));
    EXPECT_EQ(kill(child, SIGINT), 0);
    const std::string text = readAll(ends[0]).substr(filled);
    EXPECT_TRUE(text.ends_with("/a/b/ATS_01_1.AOB is not made\n")) << text;
    EXPECT_NE(text.find("error: interrupted; "), text.npos) << text;
    EXPECT_EQ(text.find("100%"), text.npos) << text;
    EXPECT_EQ(exitCodeOf(child), 130);
    EXPECT_FALSE(fs::exists(folder.root / "a"));
    EXPECT_FALSE(fs::exists(folder.root / "p.ini"));
    EXPECT_TRUE(fs::exists(folder.root / "s.wav"));
}

TEST(AobProcess, FullDiskLeavesNothing)
{
    const TempDir folder;
    writeSound(folder);
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = startAob(folder.root, ends[1], [] {
        const rlimit limit = { 1 << 20, 1 << 20 };
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, SIG_IGN);
    });
    close(ends[1]);
    const std::string text = readAll(ends[0]);
    EXPECT_NE(text.find("error: error 6021: cannot write into AOB file (0x84001785)\n  "), text.npos) << text;
    EXPECT_TRUE(text.ends_with("/a/b/ATS_01_1.AOB: the file can't be written\n  more: orven explain 6021\n")) << text;
    EXPECT_EQ(exitCodeOf(child), 1);
    EXPECT_FALSE(fs::exists(folder.root / "a"));
    EXPECT_FALSE(fs::exists(folder.root / "p.ini"));
}

// A folder that was there stays, with all that is not of this run.
TEST(AobProcess, FailureLeavesTheFolderOfTheUser)
{
    const TempDir folder;
    writeSound(folder);
    fs::create_directories(folder.root / "a" / "b");
    writeFile(folder / u"a/b/ATS_02_1.AOB", std::string_view("mine"));
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = startAob(folder.root, ends[1], [] {
        const rlimit limit = { 1 << 20, 1 << 20 };
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, SIG_IGN);
    });
    close(ends[1]);
    readAll(ends[0]);
    EXPECT_EQ(exitCodeOf(child), 1);
    EXPECT_EQ(readFile(folder / u"a/b/ATS_02_1.AOB").size(), 4u);
    EXPECT_FALSE(fs::exists(folder.root / "a" / "b" / "ATS_01_1.AOB"));
    EXPECT_FALSE(fs::exists(folder.root / "a" / "b" / "ATS_01.nfo"));
}

TEST(AobProcess, LinksAreNotFollowed)
{
    const TempDir folder;
    writeSound(folder);
    writeFile(folder / u"precious", std::string_view("mine"));
    fs::create_directories(folder.root / "t");
    fs::create_symlink("../precious", folder.root / "t" / "ATS_01.nfo");
    const ProcessResult result = runOrven({ "aob", "-t", "t", "s.wav" }, folder.root);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_TRUE(result.err.ends_with("ATS_01.nfo is there and is no plain file\n")) << result.err;
    fs::create_symlink("nowhere", folder.root / "p.ini");
    EXPECT_EQ(runOrven({ "aob", "-t", "u", "--project", "p.ini", "s.wav" }, folder.root).exitCode, 2);
    EXPECT_EQ(readFile(folder / u"precious").size(), 4u);
    EXPECT_FALSE(fs::exists(folder.root / "u"));
}

// The library takes a backslash for a separator, and names as UTF-8 alone: it would write elsewhere.
TEST(AobProcess, FoldersThatTheLibraryCannotName)
{
    const TempDir folder;
    writeSound(folder);
    for (const char* name : { "a\\b", "\xFF", "a\tb" }) {
        const ProcessResult result = runOrven({ "aob", "-t", name, "s.wav" }, folder.root);
        EXPECT_EQ(result.exitCode, 2) << name;
        EXPECT_TRUE(result.err.ends_with("has a name that a project can't hold\n")) << result.err;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.root), fs::directory_iterator()), 1);
    // A sound's own name may be any bytes.
    fs::rename(folder.root / "s.wav", folder.root / "\xFF.wav");
    const ProcessResult result = runOrven({ "aob", "-q", "-t", "t", "\xFF.wav" }, folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
}

}   // namespace
