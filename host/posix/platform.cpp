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
    return ParseDVDDesc(request.project.c_str(), request.target.c_str(), request.previous.c_str(), request.progress,
                        request.user, request.log.c_str());
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

// The library takes names as UTF-8 alone, and a \ as /.
static bool isTaken(const std::filesystem::path& path)
{
    return utf8Of(wideOf(path.string())) == path.string() && path.string().find('\\') == std::string::npos;
}

uint64_t platformCreateExtract(const std::filesystem::path& disc, const std::filesystem::path& out,
                               ExtractContext** context)
{
    *context = nullptr;
    if (!isTaken(disc) || !isTaken(out)) return EILSEQ;
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
