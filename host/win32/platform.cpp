// platform.cpp: the host's needs on Windows, where arguments, texts and paths are UTF-16.
#include "../platform.h"

#include "../cli.h"

#include <io.h>
#include <windows.h>

static constexpr uint64_t USUAL_COLUMNS = 80;

static std::string toUtf8(const wchar_t* text)
{
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(bytes > 0 ? size_t(bytes) : 1, '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), bytes, nullptr, nullptr);
    utf8.pop_back();   // the terminator
    return utf8;
}

uint64_t platformAuthor(const RunRequest& request)
{
    if (request.isAudio) {
        return ParseAudioDescW(request.project.c_str(), request.target.c_str(), nullptr, request.progress, request.user,
                               request.log.c_str());
    }
    return ParseDVDDescW(request.project.c_str(), request.target.c_str(), request.previous.c_str(), request.progress,
                         request.user, request.log.c_str());
}

uint64_t platformCreateAob(const AobRequest& request, AobMuxer** muxer)
{
    return aobCreateMuxerW(request.folder.c_str(), request.titleSet, request.trackCount, request.tracks,
                           request.samples, request.user, muxer);
}

uint64_t platformAddFileStream(MuxContext* handle, const std::filesystem::path& path, uint64_t flags,
                               MuxStream** stream)
{
    return AddFileStream(handle, path.c_str(), flags, stream);
}

uint64_t platformPreview(const std::filesystem::path& project, OrvMenuPreviewCall preview, uint64_t user,
                         const std::filesystem::path& log)
{
    return PreviewMenusW(project.c_str(), preview, user, log.empty() ? nullptr : log.c_str());
}

bool platformLibraryTakes(const std::filesystem::path&)
{
    return true;
}

uint64_t platformBeginScan(const std::filesystem::path& scanFile, uint64_t interval, const std::vector<uint64_t>& cells,
                           OrvUnit output, uint64_t user, NppScan** out)
{
    const uint64_t mode = interval ? uint64_t(ORV_NPP_CELLS_BY_INTERVAL) : ORV_NPP_CELLS_BY_LIST;
    const NppScanDescW desc = { {}, scanFile.c_str(), mode, interval, cells.data(), cells.size() };
    return nppBeginStreamScanW(&desc, output, user, out);
}

uint64_t platformSetChapter(uint8_t* sector, const std::filesystem::path& project, uint64_t titleSet,
                            uint64_t* nextVobu, uint64_t* changed)
{
    return SetRawChapterW(sector, project.c_str(), titleSet, nextVobu, changed);
}

uint64_t platformCheckStructure(const std::filesystem::path& project, const std::filesystem::path& disc,
                                const std::filesystem::path& previous)
{
    return CheckDVDStructureW(project.c_str(), disc.c_str(), previous.c_str());
}

uint64_t platformCreateExtract(const std::filesystem::path& disc, const std::filesystem::path& out,
                               ExtractContext** context)
{
    return d2wCreateContextW(disc.c_str(), out.c_str(), context);
}

std::string platformResultText(uint64_t code)
{
    wchar_t text[1024] = {};
    (void)ErrorToStringW(code, text, 1024);   // it has no failure to tell
    return toUtf8(text);
}

// A console takes UTF-16, whatever its code page; a file or a pipe gets UTF-8.
static void print(DWORD stream, const std::string& text)
{
    const HANDLE handle = GetStdHandle(stream);
    DWORD mode, written;
    if (!GetConsoleMode(handle, &mode)) {
        WriteFile(handle, text.data(), DWORD(text.size()), &written, nullptr);
        return;
    }
    std::wstring wide(text.size(), L'\0');
    const int units = MultiByteToWideChar(CP_UTF8, 0, text.data(), int(text.size()), wide.data(), int(wide.size()));
    WriteConsoleW(handle, wide.data(), DWORD(units), &written, nullptr);
}

void platformPrint(const std::string& text)
{
    print(STD_OUTPUT_HANDLE, text);
}

void platformPrintError(const std::string& text)
{
    print(STD_ERROR_HANDLE, text);
}

bool platformHasTerminal()
{
    DWORD mode;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode);
}

uint64_t platformTerminalColumns()
{
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info)) return USUAL_COLUMNS;
    return uint64_t(info.srWindow.Right - info.srWindow.Left + 1);
}

std::filesystem::path platformTemporaryFile()
{
    wchar_t folder[MAX_PATH + 1] = {}, name[MAX_PATH + 1] = {};
    if (!GetTempPathW(MAX_PATH + 1, folder) || !GetTempFileNameW(folder, L"orv", 0, name)) return {};
    return name;
}

int wmain(int count, wchar_t** arguments)
{
    std::vector<std::string> utf8;
    for (int i = 1; i < count; i++) utf8.push_back(toUtf8(arguments[i]));
    return runCommandLine(utf8);
}
