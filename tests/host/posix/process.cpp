// process.cpp: runs the program on POSIX systems.
#include "../process.h"

#include "tests/support/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

std::filesystem::path orvenProgram()
{
    return ORVEN_PROGRAM;
}

static std::string textOf(const std::u16string& path)
{
    const Bytes bytes = readFile(path);
    return std::string(bytes.begin(), bytes.end());
}

ProcessResult runOrven(const std::vector<std::string>& arguments, const std::filesystem::path& folder)
{
    const TempDir outputs;
    const std::u16string out = outputs / u"out", err = outputs / u"err";
    const pid_t child = fork();
    if (child == 0) {
        const int flags = O_WRONLY | O_CREAT | O_TRUNC;
        dup2(open(std::filesystem::path(out).c_str(), flags, 0600), STDOUT_FILENO);
        dup2(open(std::filesystem::path(err).c_str(), flags, 0600), STDERR_FILENO);
        const std::string program = orvenProgram().string();
        std::vector<char*> argv = { const_cast<char*>(program.c_str()) };
        for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        if (chdir(folder.c_str()) == 0) execv(program.c_str(), argv.data());
        _exit(127);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return { WIFEXITED(status) ? WEXITSTATUS(status) : -1, textOf(out), textOf(err) };
}
