// process.cpp: runs the program on Windows.
#include "../process.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace fs = std::filesystem;

fs::path orvenProgram()
{
    return fs::absolute(ORVEN_PROGRAM).make_preferred();
}

static std::string textOf(const std::u16string& path)
{
    const Bytes bytes = readFile(path);
    return std::string(bytes.begin(), bytes.end());
}

static HANDLE createOutput(const std::u16string& path)
{
    SECURITY_ATTRIBUTES inherited = { sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE };
    return CreateFileW(fs::path(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
}

// Arguments of the tests hold no quotes and end in no backslash, so quotes around each are enough.
static std::wstring commandLineOf(const std::vector<std::string>& arguments)
{
    std::wstring line = L"\"" + orvenProgram().wstring() + L"\"";
    for (const std::string& argument : arguments) {
        line += L" \"" + fs::path(std::u8string(argument.begin(), argument.end())).wstring() + L"\"";
    }
    return line;
}

// Wine under load refuses a process now and then, with an error of its own. Nothing has run then, so it is tried again.
static BOOL startProcess(std::wstring line, const fs::path& folder, STARTUPINFOW* start, PROCESS_INFORMATION* process)
{
    constexpr int TRIES = 5;
    constexpr DWORD PAUSE_MS = 200;
    for (int tries = 1;; tries++) {
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), start, process)) {
            return TRUE;
        }
        if (tries == TRIES || GetLastError() != ERROR_INTERNAL_ERROR) return FALSE;
        Sleep(PAUSE_MS);
    }
}

ProcessResult runOrven(const std::vector<std::string>& arguments, const fs::path& folder)
{
    const TempDir outputs;
    const std::u16string out = outputs / u"out", err = outputs / u"err";
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    start.hStdOutput = createOutput(out);
    start.hStdError = createOutput(err);
    PROCESS_INFORMATION process = {};
    DWORD exitCode = DWORD(-1);
    const BOOL started = startProcess(commandLineOf(arguments), folder, &start, &process);
    EXPECT_TRUE(started) << GetLastError();
    if (started) {
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &exitCode);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    CloseHandle(start.hStdOutput);
    CloseHandle(start.hStdError);
    return { int(exitCode), textOf(out), textOf(err) };
}
