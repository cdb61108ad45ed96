// extract_files_test.cpp: `orven extract` under Ctrl-C, on a full disk, among links and pipes, and with names that are
// not text. POSIX only.
#include "tests/host/extract_rig.h"

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int PATIENCE_MS = 60000;   // for a machine under load

const AudioTrackSpec SHORT = { .samples = 3000 }, LONG = { .samples = 60000 };

// ---- processes ----------------------------------------------------------------------------------------------------

// `orven extract disc -o out`, after prepare has run in the new process. What it prints goes nowhere.
pid_t startExtract(const fs::path& folder, int err, const std::function<void()>& prepare)
{
    const std::string program = orvenProgram().string();
    const pid_t child = fork();
    if (child != 0) return child;
    if (chdir(folder.c_str()) != 0) _exit(127);
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    prepare();
    execl(program.c_str(), program.c_str(), "extract", "disc", "-o", "out", "--force", nullptr);
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

/** Leaves room for so many bytes in a pipe, so that a program stands still when it has said more. */
size_t fillBut(int pipe, size_t room)
{
    const int size = fcntl(pipe, F_SETPIPE_SZ, 4096);
    const std::string filler(size_t(size) - room, '.');
    EXPECT_EQ(write(pipe, filler.data(), filler.size()), ssize_t(filler.size()));
    return filler.size();
}

void waitFor(const fs::path& file)
{
    for (int waited = 0; waited < PATIENCE_MS && !fs::exists(file); waited++) usleep(1000);
    EXPECT_TRUE(fs::exists(file));
}

// Room for three lines of progress: the first track of few sectors has two at most, so the run stands in the second.
TEST(ExtractProcess, CtrlCLeavesWholeTracksAlone)
{
    const TempDir folder;
    makeAudioDisc(folder.root / "disc" / "AUDIO_TS", { SHORT, LONG, SHORT });
    fs::create_directory(folder.root / "out");
    writeFile((folder.root / "out" / "track002_lrf.wav").u16string(), std::string_view("earlier"));
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const size_t filled = fillBut(ends[1], 80);
    const pid_t child = startExtract(folder.root, ends[1], [] {});
    close(ends[1]);
    waitFor(folder.root / "out" / "track001_lrf.wav");
    EXPECT_EQ(kill(child, SIGINT), 0);
    const std::string text = readAll(ends[0]).substr(filled);
    EXPECT_TRUE(text.ends_with("error: interrupted; track 2 is not made\nerror: 1 of 3 tracks is extracted\n")) << text;
    EXPECT_EQ(text.find("100%"), text.npos) << text;
    EXPECT_EQ(exitCodeOf(child), 130);
    EXPECT_EQ(namesIn(folder.root / "out"), (Names{ "track001_lrf.wav", "track002_lrf.wav" }));
    EXPECT_TRUE(discFile(folder.root / "out" / "track001_lrf.wav") == pairWave(SHORT, 0, 0, 1));
    EXPECT_EQ(discFile(folder.root / "out" / "track002_lrf.wav").size(), 7u);
}

// The counterpart: without a signal the same run ends well.
TEST(ExtractProcess, StalledRunGoesOn)
{
    const TempDir folder;
    makeAudioDisc(folder.root / "disc" / "AUDIO_TS", { SHORT, LONG, SHORT });
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    fillBut(ends[1], 80);
    const pid_t child = startExtract(folder.root, ends[1], [] {});
    close(ends[1]);
    waitFor(folder.root / "out" / "track001_lrf.wav");
    EXPECT_TRUE(readAll(ends[0]).ends_with("100%  extracting track 3\n"));
    EXPECT_EQ(exitCodeOf(child), 0);
    EXPECT_TRUE(discFile(folder.root / "out" / "track002_lrf.wav") == pairWave(LONG, 1, 0, 1));
}

// A file may have 20,000 bytes: the first track fits, the second does not, the third is not tried.
TEST(ExtractProcess, FullDiskLeavesWholeTracksAlone)
{
    const TempDir folder;
    makeAudioDisc(folder.root / "disc" / "AUDIO_TS", { SHORT, LONG, SHORT });
    int ends[2] = { -1, -1 };
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = startExtract(folder.root, ends[1], [] {
        const rlimit limit = { 20000, 20000 };
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, SIG_IGN);
    });
    close(ends[1]);
    const std::string text = readAll(ends[0]);
    EXPECT_TRUE(text.ends_with("error: File too large (system error 27)\n  out: track 2 can't be written\n"
                               "  more: orven explain 27\nerror: 1 of 3 tracks is extracted\n"))
        << text;
    EXPECT_EQ(exitCodeOf(child), 1);
    EXPECT_EQ(namesIn(folder.root / "out"), Names{ "track001_lrf.wav" });
}

// ---- links and pipes ----------------------------------------------------------------------------------------------

struct LinkedFolder {
    LinkedFolder()
    {
        makeAudioDisc(folder.root / "disc", { SHORT });
        writeFile(folder / u"precious", std::string_view("precious"));
        fs::create_directory(folder.root / "out");
    }
    ProcessResult extract() const
    {
        return runOrven({ "extract", "disc", "-o", "out", "--force", "-q" }, folder.root);
    }
    TempDir folder;
};

TEST(ExtractFiles, LinksAreLeftAlone)
{
    const LinkedFolder linked;
    const fs::path wave = linked.folder.root / "out" / "track001_lrf.wav";
    for (const char* target : { "precious", "nowhere" }) {
        fs::create_symlink(linked.folder.root / target, wave);
        const ProcessResult result = linked.extract();
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.err, "error: out/track001_lrf.wav is there and is no plain file\n");
        EXPECT_TRUE(fs::is_symlink(wave));
        fs::remove(wave);
    }
    EXPECT_FALSE(fs::exists(linked.folder.root / "nowhere"));
    EXPECT_EQ(readFile(linked.folder / u"precious").size(), 8u);
}

// The other name of a file that is replaced keeps what it has.
TEST(ExtractFiles, HardLinksKeepTheirContent)
{
    const LinkedFolder linked;
    const fs::path wave = linked.folder.root / "out" / "track001_lrf.wav";
    fs::create_hard_link(linked.folder.root / "precious", wave);
    EXPECT_EQ(linked.extract().exitCode, 0);
    EXPECT_TRUE(discFile(wave) == pairWave(SHORT, 0, 0, 1));
    EXPECT_EQ(readFile(linked.folder / u"precious").size(), 8u);
}

// Opening a pipe would wait for somebody who writes into it.
TEST(ExtractFiles, PipesDoNotStopTheProgram)
{
    const LinkedFolder linked;
    for (const char* name : { "AUDIO_PP.IFO", "VIDEO_TS.IFO", "ATS_01_1.AOB", "ATS_01_9.AOB", "VTS_01_1.VOB" }) {
        SCOPED_TRACE(name);
        const fs::path file = linked.folder.root / "disc" / name, kept = linked.folder.root / "kept";
        if (fs::exists(file)) fs::rename(file, kept);
        ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
        const ProcessResult result = linked.extract();
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.err, "error: disc/" + std::string(name) + ": it is no plain file\n");
        fs::remove(file);
        if (fs::exists(kept)) fs::rename(kept, file);
    }
    const fs::path wave = linked.folder.root / "out" / "track001_lrf.wav";
    ASSERT_EQ(mkfifo(wave.c_str(), 0600), 0);
    EXPECT_EQ(linked.extract().exitCode, 2);
}

// The superuser may read everything, so the program runs as somebody else.
TEST(ExtractFiles, FilesThatCannotBeRead)
{
    const TempDir folder;
    makeAudioDisc(folder.root / "disc", { SHORT });
    const struct {
        const char* name;
        const char* code;
    } cases[] = { { "AUDIO_PP.IFO", "error + 7003" }, { "ATS_01_1.AOB", "error + 7007" }, { "ATS_01_2.AOB", "" } };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        const fs::path file = folder.root / "disc" / expected.name;
        if (!fs::exists(file)) writeFile(file.u16string(), std::string_view("x"));
        fs::permissions(file, fs::perms::none);
        int ends[2] = { -1, -1 };
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        const pid_t child = startExtract(folder.root, ends[1], [] {
            if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) _exit(127);
        });
        close(ends[1]);
        const std::string text = readAll(ends[0]);
        EXPECT_EQ(exitCodeOf(child), 1);
        EXPECT_TRUE(text.starts_with("error: " + std::string(expected.code))) << text;
        EXPECT_NE(text.find("\n  disc/" + std::string(expected.name) + ": the file can't be opened for reading\n"),
                  text.npos)
            << text;
        fs::permissions(file, fs::perms(0644));
    }
    EXPECT_FALSE(fs::exists(folder.root / "out"));
}

TEST(ExtractFiles, OutputFolderThatCannotBeMade)
{
    const LinkedFolder linked;
    const ProcessResult result = runOrven({ "extract", "disc", "-o", "precious/out", "-q" }, linked.folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "error: the folder precious/out can't be made: Not a directory\n");
}

// A file's name is any bytes on these systems. The library takes names as UTF-8 alone, and a backslash as a slash.
TEST(ExtractFiles, NamesThatAreNotText)
{
    const LinkedFolder linked;
    fs::create_directories(linked.folder.root / "a" / "b");
    fs::create_directory(linked.folder.root / "a\\b");
    fs::rename(linked.folder.root / "disc", linked.folder.root / "\xFF");
    const std::string why = ": the library can't take the name of it or of the output\n";
    const ProcessResult disc = runOrven({ "extract", "\xFF", "-o", "out", "-q" }, linked.folder.root);
    EXPECT_EQ(disc.exitCode, 1);
    EXPECT_NE(disc.err.find("\n  \xEF\xBF\xBD" + why), std::string::npos) << disc.err;
    fs::rename(linked.folder.root / "\xFF", linked.folder.root / "disc");
    for (const char* out : { "\xFE", "a\\b" }) {
        const ProcessResult result = runOrven({ "extract", "disc", "-o", out, "-q" }, linked.folder.root);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_NE(result.err.find("\n  disc" + why), std::string::npos) << result.err;
    }
    EXPECT_FALSE(fs::exists(linked.folder.root / "\xFE"));
    EXPECT_TRUE(fs::is_empty(linked.folder.root / "a" / "b"));
}

}   // namespace
