// named_file.cpp: files that a project names, and why one can't be had.
#include "named_file.h"

#include "text.h"
#include "value_check.h"

#include <fstream>

namespace fs = std::filesystem;

std::u16string numbered(std::u16string_view name, uint64_t number)
{
    return std::u16string(name) + wideOf(std::to_string(number));
}

bool isFilled(const ProjectKey* key)
{
    return key && !key->value.empty();
}

bool pathOf(const ProjectKey& key, fs::path* path)
{
    std::u16string text;
    if (checkText(key.value, &text).code) return false;
    // A name that was not UTF-8 can't be looked up by what is left of it.
    if (text.empty() || text.find(u'\xFFFD') != text.npos) return false;
    if (fs::path::preferred_separator == '/') {
        for (char16_t& unit : text) {
            if (unit == u'\\') unit = u'/';   // the library takes both
        }
    }
    *path = fs::path(text);
    return true;
}

// What is no file, whether it is there or not.
static std::string noFileWhy(const fs::path& path)
{
    std::error_code error;
    if (fs::is_directory(path, error)) return "that is a folder";
    return fs::is_fifo(path, error) ? "that is a pipe, not a file" : "";   // opening it would wait
}

std::string notReadableWhy(const fs::path& path)
{
    if (std::string why = noFileWhy(path); !why.empty()) return why;
    std::error_code error;
    if (fs::exists(path, error)) {
        return std::ifstream(path, std::ios::binary) ? "" : "the file can't be opened for reading";
    }
    if (path.is_absolute()) return "there is no such file";
    return "there is no such file, seen from " + printablePath(fs::current_path(error));
}

std::string notWritableWhy(const fs::path& path)
{
    if (std::string why = noFileWhy(path); !why.empty()) return why;
    std::error_code error;
    if (!fs::exists(path, error)) return "";
    const std::ios::openmode inPlace = std::ios::binary | std::ios::in | std::ios::out;
    return std::fstream(path, inPlace) ? "" : "the file can't be opened for writing";
}

std::string notMpegWhy(const fs::path& path)
{
    if (std::string why = notReadableWhy(path); !why.empty()) return why;
    char head[4] = {};
    std::ifstream(path, std::ios::binary).read(head, sizeof head);
    const std::string_view start(head, sizeof head), sequence("\0\0\1\xB3", 4), pack("\0\0\1\xBA", 4);
    return start == sequence || start == pack ? "" : "the file begins neither with a sequence header nor with a pack";
}

uint64_t fileBytes(const fs::path& path)
{
    std::error_code error;
    const uint64_t bytes = fs::file_size(path, error);
    return error ? 0 : bytes;
}

std::string bytesText(uint64_t bytes)
{
    return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
}
