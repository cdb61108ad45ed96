// mux_interrupt_test.cpp: `orven mux` under Ctrl-C, on a full disk, and with names that are not text. POSIX only.
#include "../process.h"

#include "tests/support/elementary.h"
#include "tests/support/files.h"

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

// `orven mux -o out.vob -v v.m2v`, after prepare has run in the new process. Standard output goes to the file "out".
pid_t startMux(const fs::path& folder, int err, const std::function<void()>& prepare)
{
    const std::string program = orvenProgram().string();
    const pid_t child = fork();
    if (child != 0) return child;
    if (chdir(folder.c_str()) != 0) _exit(127);
    dup2(open("out", O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    prepare();
    execl(program.c_str(), program.c_str(), "mux", "-o", "out.vob", "-v", "v.m2v", nullptr);
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

TEST(MuxProcess, CtrlCLeavesNoMovie)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(40)).bytes);
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const size_t filled = fill(ends[1]);
    const pid_t child = startMux(folder.root, ends[1], [] {});
    close(ends[1]);
    // What it says of its streams tells that it listens for signals by now.
    std::error_code error;
    for (int waited = 0; waited < PATIENCE_MS; waited++) {
        const uintmax_t said = fs::file_size(folder.root / "out", error);
        if (!error && said > 0) break;
        usleep(1000);
    }
    EXPECT_EQ(kill(child, SIGINT), 0);
    const std::string text = readAll(ends[0]).substr(filled);
    EXPECT_TRUE(text.ends_with("error: interrupted; out.vob is not made\n")) << text;
    EXPECT_EQ(text.find("100%"), text.npos) << text;
    EXPECT_EQ(exitCodeOf(child), 130);
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
}

TEST(MuxProcess, FullDiskLeavesNoMovie)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(40)).bytes);
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = startMux(folder.root, ends[1], [] {
        const rlimit limit = { 1 << 20, 1 << 20 };
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, SIG_IGN);
    });
    close(ends[1]);
    const std::string text = readAll(ends[0]);
    EXPECT_TRUE(text.ends_with("error: Error 4019: write file to destination failed (0x84000FB3)\n"
                               "  out.vob: the file can't be written\n  more: orven explain 4019\n"))
        << text;
    EXPECT_EQ(exitCodeOf(child), 1);
    EXPECT_FALSE(fs::exists(folder.root / "out.vob"));
}

// A file's name is any bytes on these systems. The library takes names as UTF-8 alone, and reads layer 2 by itself.
TEST(MuxProcess, NamesThatAreNotText)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(2)).bytes);
    writeFile(folder / u"a.mp2", layer2Frames(4, 20));
    writeFile(folder / u"a.ac3", ac3Frames(6, 20));
    fs::rename(folder.root / "a.mp2", folder.root / "\xFF.mp2");
    fs::rename(folder.root / "a.ac3", folder.root / "\xFF.ac3");
    const ProcessResult layer2 =
        runOrven({ "mux", "-q", "-o", "out.vob", "-v", "v.m2v", "-a", "\xFF.mp2" }, folder.root);
    EXPECT_EQ(layer2.exitCode, 1);
    EXPECT_NE(layer2.err.find("\n  \xEF\xBF\xBD.mp2: it is MPEG audio of layer 2, 64 kbit/s\n"), std::string::npos)
        << layer2.err;
    const ProcessResult ac3 = runOrven({ "mux", "-q", "-o", "\xFE.vob", "-v", "v.m2v", "-a", "\xFF.ac3" }, folder.root);
    EXPECT_EQ(ac3.exitCode, 0) << ac3.err;
    EXPECT_TRUE(fs::exists(folder.root / "\xFE.vob"));
}

}   // namespace
