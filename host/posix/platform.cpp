// platform.cpp: the host's needs on POSIX systems, where arguments, texts and paths are UTF-8 as they stand.
#include "../platform.h"

#include "../cli.h"
#include "../text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

static constexpr uint64_t USUAL_COLUMNS = 80;

uint64_t platformAuthor(const RunRequest& request)
{
    if (request.isAudio) {
        return ParseAudioDesc(request.project.c_str(), request.target.c_str(), nullptr, request.progress, request.user,
                              request.log.c_str());
    }
    return ParseDVDDesc(request.project.c_str(), request.target.c_str(), request.previous.c_str(), request.progress,
                        request.user, request.log.c_str());
}

uint64_t platformCreateAob(const AobRequest& request, AobMuxer** muxer)
{
    return aobCreateMuxer(request.folder.c_str(), request.titleSet, request.trackCount, request.tracks, request.samples,
                          request.user, muxer);
}

uint64_t platformAddFileStream(MuxContext* handle, const std::filesystem::path& path, uint64_t flags,
                               MuxStream** stream)
{
    const std::u16string wide = wideOf(path.string());
    if (utf8Of(wide) != path.string()) return EILSEQ;   // the library takes text alone
    return AddFileStream(handle, wide.c_str(), flags, stream);
}

uint64_t platformPreview(const std::filesystem::path& project, OrvMenuPreviewCall preview, uint64_t user,
                         const std::filesystem::path& log)
{
    return PreviewMenus(project.c_str(), preview, user, log.empty() ? nullptr : log.c_str());
}

bool platformLibraryTakes(const std::filesystem::path& path)
{
    // It takes text alone, and a backslash as a separator.
    const std::string name = path.string();
    return utf8Of(wideOf(name)) == name && name.find('\\') == name.npos;
}

uint64_t platformBeginScan(const std::filesystem::path& scanFile, uint64_t interval, const std::vector<uint64_t>& cells,
                           OrvUnit output, uint64_t user, NppScan** out)
{
    const uint64_t mode = interval ? uint64_t(ORV_NPP_CELLS_BY_INTERVAL) : ORV_NPP_CELLS_BY_LIST;
    const NppScanDesc desc = { {}, scanFile.c_str(), mode, interval, cells.data(), cells.size() };
    return nppBeginStreamScan(&desc, output, user, out);
}

uint64_t platformSetChapter(uint8_t* sector, const std::filesystem::path& project, uint64_t titleSet,
                            uint64_t* nextVobu, uint64_t* changed)
{
    return SetRawChapter(sector, project.c_str(), titleSet, nextVobu, changed);
}

uint64_t platformCheckStructure(const std::filesystem::path& project, const std::filesystem::path& disc,
                                const std::filesystem::path& previous)
{
    return CheckDVDStructure(project.c_str(), disc.c_str(), previous.c_str());
}

uint64_t platformCreateExtract(const std::filesystem::path& disc, const std::filesystem::path& out,
                               ExtractContext** context)
{
    *context = nullptr;
    if (!platformLibraryTakes(disc) || !platformLibraryTakes(out)) return EILSEQ;
    return d2wCreateContext(disc.c_str(), out.c_str(), context);
}

std::string platformResultText(uint64_t code)
{
    char text[1024] = {};
    (void)ErrorToString(code, text, sizeof text);   // it has no failure to tell
    return text;
}

static void print(FILE* stream, const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

void platformPrint(const std::string& text)
{
    print(stdout, text);
}

void platformPrintError(const std::string& text)
{
    print(stderr, text);
}

bool platformHasTerminal()
{
    const char* kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) && kind && std::string_view(kind) != "dumb";
}

uint64_t platformTerminalColumns()
{
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col ? size.ws_col : USUAL_COLUMNS;
}

std::filesystem::path platformTemporaryFile()
{
    std::error_code error;
    std::string name = (std::filesystem::temp_directory_path(error) / "orven-XXXXXX").string();
    const int file = mkstemp(name.data());
    if (error || file < 0) return {};
    close(file);
    return name;
}

int main(int count, char** arguments)
{
    return runCommandLine({ arguments + (count ? 1 : 0), arguments + count });
}
