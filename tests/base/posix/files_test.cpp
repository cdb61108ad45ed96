// files_test.cpp: what stands in a file's place on a POSIX system, and what descriptors owe the host.
#include "base/files.h"

#include "base/result.h"
#include "base/strings.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <pthread.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

static uint64_t openResult(const std::u16string& path, uint64_t mode)
{
    OSFILE file = 99;
    const uint64_t result = osOpenFile(path.c_str(), mode, &file);
    EXPECT_EQ(file == 0, result != 0);
    (void)osCloseFile(&file);
    return result;
}

TEST(FilesPosix, PipesAreRefusedAtOnce)
{
    const TempDir dir;
    ASSERT_EQ(mkfifo((dir.root / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(openResult(dir / u"pipe", OS_READ), uint64_t(ESPIPE));
    EXPECT_EQ(openResult(dir / u"pipe", OS_CREATE), uint64_t(ENXIO));   // nobody reads it
    EXPECT_EQ(openResult(dir / u"pipe", OS_EXTEND), uint64_t(ESPIPE));
    EXPECT_EQ(openResult(dir / u"pipe", OS_APPEND), uint64_t(ENXIO));
    EXPECT_EQ(openResult(dir / u"pipe", OS_FIX), uint64_t(ESPIPE));
    EXPECT_EQ(openResult(dir / u"pipe", OS_CREATE_READ), uint64_t(ESPIPE));

    const int reader = open((dir.root / "pipe").c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(openResult(dir / u"pipe", OS_CREATE), uint64_t(ESPIPE));
    EXPECT_EQ(openResult(dir / u"pipe", OS_APPEND), uint64_t(ESPIPE));
    writeFile(dir / u"file", "abc");
    EXPECT_EQ(osCopyFile((dir / u"file").c_str(), (dir / u"pipe").c_str(), false), uint64_t(ESPIPE));
    EXPECT_EQ(osCopyFile((dir / u"pipe").c_str(), (dir / u"new").c_str(), false), uint64_t(ESPIPE));
    EXPECT_FALSE(fileExists(dir / u"new"));
    (void)close(reader);
}

TEST(FilesPosix, Devices)
{
    EXPECT_EQ(openResult(u"/dev/null", OS_READ), uint64_t(ESPIPE));
    EXPECT_EQ(openResult(u"/dev/zero", OS_FIX), uint64_t(ESPIPE));
    EXPECT_EQ(openResult(u"/dev/null", OS_CREATE), 0u);

    OSFILE file = 0;
    ASSERT_EQ(osOpenFile(u"/dev/full", OS_CREATE, &file), 0u);
    EXPECT_EQ(osWriteFile(file, "abc", 3), uint64_t(ENOSPC));
    EXPECT_EQ(osCloseFile(&file), 0u);
    const TempDir dir;
    writeFile(dir / u"file", "abc");
    EXPECT_EQ(osCopyFile((dir / u"file").c_str(), u"/dev/full", false), uint64_t(ENOSPC));
}

TEST(FilesPosix, LinksToFolders)
{
    const TempDir dir;
    std::filesystem::create_directory_symlink(dir.root, dir.root / "link");
    for (uint64_t mode = 1; mode <= 7; mode++) EXPECT_EQ(openResult(dir / u"link", mode), uint64_t(EISDIR)) << mode;
    std::filesystem::create_symlink("loop", dir.root / "loop");
    EXPECT_EQ(openResult(dir / u"loop", OS_READ), uint64_t(ELOOP));
}

TEST(FilesPosix, NoFileTakesTheHostsStandardDescriptors)
{
    const TempDir dir;
    writeFile(dir / u"file", "abc");
    int kept[3];
    for (int i = 0; i < 3; i++) {
        kept[i] = fcntl(i, F_DUPFD_CLOEXEC, 10);
        (void)close(i);
    }
    OSFILE file = 0;
    const uint64_t result = osOpenFile((dir / u"file").c_str(), OS_READ, &file);
    const bool lowestIsFree = fcntl(0, F_GETFD) < 0;
    const int flags = fcntl(int(file), F_GETFD);
    char buffer[3] = {};
    const uint64_t readResult = osReadFile(file, buffer, 3);
    (void)osCloseFile(&file);
    OSFILE none = 0;
    uint64_t position = 0;
    const uint64_t zeroIsClosed = osTellFile(none, &position);
    for (int i = 0; i < 3; i++) {
        if (kept[i] < 0) continue;
        (void)dup2(kept[i], i);
        (void)close(kept[i]);
    }
    EXPECT_EQ(result, 0u);
    EXPECT_TRUE(lowestIsFree);
    EXPECT_EQ(flags, FD_CLOEXEC);
    EXPECT_EQ(readResult, 0u);
    EXPECT_EQ(std::string(buffer, 3), "abc");
    EXPECT_EQ(zeroIsClosed, uint64_t(EBADF));
}

TEST(FilesPosix, FilesAreNotHandedOnToOtherPrograms)
{
    const TempDir dir;
    for (const uint64_t mode : { OS_CREATE, OS_READ, OS_EXTEND, OS_APPEND, OS_FIX, OS_CREATE_READ, OS_TEMPORARY }) {
        OSFILE file = 0;
        ASSERT_EQ(osOpenFile((dir / u"file").c_str(), mode, &file), 0u);
        EXPECT_GE(file, 3u);
        EXPECT_EQ(fcntl(int(file), F_GETFD), FD_CLOEXEC) << mode;
        EXPECT_EQ(osCloseFile(&file), 0u);
    }
}

TEST(FilesPosix, ZeroIsNotTheStandardInput)
{
    char byte = 0;
    uint64_t size = 0;
    EXPECT_EQ(osReadFile(0, &byte, 1), uint64_t(EBADF));
    EXPECT_EQ(osFileSize(0, &size), uint64_t(EBADF));
    EXPECT_EQ(osReadFile(uint64_t(1) << 32, &byte, 1), uint64_t(EBADF));   // nor is what a cut would make of a number
}

TEST(FilesPosix, CopyOntoALinkToItself)
{
    const TempDir dir;
    writeFile(dir / u"file", "abc");
    std::filesystem::create_symlink(dir.root / "file", dir.root / "soft");
    std::filesystem::create_hard_link(dir.root / "file", dir.root / "hard");
    for (const char16_t* name : { u"soft", u"hard" }) {
        EXPECT_EQ(osCopyFile((dir / u"file").c_str(), (dir / name).c_str(), false), uint64_t(EINVAL));
        EXPECT_EQ(osCopyFile((dir / name).c_str(), (dir / u"file").c_str(), false), uint64_t(EINVAL));
        EXPECT_EQ(readFile(dir / u"file").size(), 3u);
    }
}

TEST(FilesPosix, CopyOverAFileThatIsOpen)
{
    const TempDir dir;
    writeFile(dir / u"file", "abc");
    writeFile(dir / u"copy", "abcdef");
    OSFILE file = 0;
    ASSERT_EQ(osOpenFile((dir / u"copy").c_str(), OS_READ, &file), 0u);
    EXPECT_EQ(osCopyFile((dir / u"file").c_str(), (dir / u"copy").c_str(), false), 0u);
    EXPECT_EQ(osCloseFile(&file), 0u);
    EXPECT_EQ(readFile(dir / u"copy"), Bytes({ 'a', 'b', 'c' }));
}

TEST(FilesPosix, PathsOutOfBounds)
{
    const TempDir dir;
    const std::u16string longPath = dir.prefix() + std::u16string(5000, u'x');
    uint64_t size = 0;
    EXPECT_EQ(openResult(longPath, OS_CREATE), uint64_t(ENAMETOOLONG));
    EXPECT_EQ(osGetFileInfo(longPath.c_str(), &size, nullptr), uint64_t(ENAMETOOLONG));
    EXPECT_EQ(osCopyFile(longPath.c_str(), u"x", false), uint64_t(ENAMETOOLONG));
    EXPECT_EQ(osCopyFile(u"x", longPath.c_str(), false), uint64_t(ENAMETOOLONG));
    EXPECT_EQ(osDeleteFile(longPath.c_str()), 0u);
    char16_t* name = nullptr;
    EXPECT_EQ(osGetTempFile(longPath.c_str(), &name), uint64_t(ENAMETOOLONG));
    EXPECT_EQ(name, nullptr);

    // Half a surrogate pair becomes U+FFFD, and the same name is found again.
    EXPECT_EQ(openResult(dir.prefix() + u"a" + std::u16string(1, char16_t(0xD800)), OS_CREATE), 0u);
    EXPECT_TRUE(fileExists(dir / u"a\uFFFD"));
    EXPECT_EQ(openResult(dir.prefix() + u"a" + std::u16string(1, char16_t(0xD800)), OS_READ), 0u);
}

TEST(FilesPosix, TemporaryFilesFollowTheEnvironment)
{
    const TempDir dir;
    const char* before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    (void)setenv("TMPDIR", dir.root.c_str(), 1);
    char16_t* name = nullptr;
    const uint64_t result = osGetTempFile(u"orven", &name);
    (void)setenv("TMPDIR", (dir.root / "none").c_str(), 1);
    char16_t* none = nullptr;
    const uint64_t failed = osGetTempFile(u"orven", &none);
    (void)setenv("TMPDIR", "", 1);
    char16_t* standard = nullptr;
    const uint64_t standardResult = osGetTempFile(u"orven", &standard);
    if (before) {
        (void)setenv("TMPDIR", kept.c_str(), 1);
    } else {
        (void)unsetenv("TMPDIR");
    }
    ASSERT_EQ(result, 0u);
    EXPECT_TRUE(std::u16string(name).starts_with(dir.prefix() + u"orven")) << toUtf8(name);
    EXPECT_TRUE(fileExists(name));
    (void)osStrFree(&name);
    EXPECT_EQ(failed, uint64_t(ENOENT));
    EXPECT_EQ(none, nullptr);
    ASSERT_EQ(standardResult, 0u);
    EXPECT_TRUE(std::u16string(standard).starts_with(u"/tmp/orven")) << toUtf8(standard);
    EXPECT_NE(osDeleteFile(standard), 0u);
    (void)osStrFree(&standard);
}

TEST(FilesPosix, ReadOnlyFileSystemsCountAsOptical)
{
    std::ifstream mounts("/proc/self/mounts");
    std::string device, folder, kind, options, rest, readOnly;
    while (readOnly.empty() && mounts >> device >> folder >> kind >> options && std::getline(mounts, rest)) {
        if (options == "ro" || options.starts_with("ro,")) readOnly = folder;
    }
    uint64_t type = 99;
    if (readOnly.empty() || osGetDriveType(toWide(readOnly).c_str(), &type)) {
        GTEST_SKIP() << "no read-only file system is mounted here";
    }
    EXPECT_EQ(type, OS_DRIVE_OPTICAL) << readOnly;
}

static void interrupted(int) {}

// A signal in the middle of a transfer costs nothing. Only a pipe waits, so its descriptor stands in for a file's.
TEST(FilesPosix, InterruptedAndPartialTransfers)
{
    struct sigaction action = {};
    action.sa_handler = interrupted;   // without SA_RESTART
    struct sigaction before = {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);

    Bytes sent(300000);
    for (uint64_t i = 0; i < sent.size(); i++) sent[i] = uint8_t(i * 13 + i / 256);
    const pthread_t reader = pthread_self();
    std::thread writer([&] {
        for (int i = 0; i < 20; i++) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            (void)pthread_kill(reader, SIGUSR1);
        }
        EXPECT_EQ(osWriteFile(OSFILE(ends[1]), sent.data(), sent.size()), 0u);   // more than a pipe holds
        (void)close(ends[1]);
    });
    Bytes got(sent.size());
    EXPECT_EQ(osReadFile(OSFILE(ends[0]), got.data(), got.size()), 0u);
    uint8_t more = 0;
    EXPECT_EQ(osReadFile(OSFILE(ends[0]), &more, 1), OS_SHORT_READ);
    writer.join();
    EXPECT_EQ(got, sent);
    (void)close(ends[0]);
    (void)sigaction(SIGUSR1, &before, nullptr);
}
