// run_log.cpp: what a run has appended to its log.
#include "run_log.h"

#include <fstream>
#include <iterator>

static constexpr std::string_view ENTRY_START("E\0r\0r\0o\0r\0:\0 \0", 14);
static constexpr std::string_view ENTRY_END("\r\0\n\0", 4);
static constexpr size_t HEAD_BYTES = 18;    // what the log keeps of "Error: 840003f4 - "
static constexpr size_t TEXT_ROOM = 1024;   // the library's formatter stops here

uint64_t logBytes(const std::filesystem::path& path)
{
    std::error_code error;
    const uintmax_t bytes = std::filesystem::file_size(path, error);
    return error ? 0 : bytes;
}

// Entries may end in half a character, so the ends are looked for byte by byte and that half is dropped.
std::vector<std::u16string> parseLog(std::string_view bytes)
{
    std::vector<std::u16string> entries;
    for (size_t end = bytes.find(ENTRY_END); end != bytes.npos; end = bytes.find(ENTRY_END)) {
        const std::string_view entry = bytes.substr(0, end);
        bytes.remove_prefix(end + ENTRY_END.size());
        if (!entry.starts_with(ENTRY_START) || entry.size() < HEAD_BYTES) continue;
        std::u16string text;
        for (size_t i = HEAD_BYTES; i + 1 < entry.size(); i += 2) {
            text += char16_t(uint8_t(entry[i]) | uint8_t(entry[i + 1]) << 8);
        }
        entries.push_back(text);
    }
    return entries;
}

std::vector<std::u16string> readLog(const std::filesystem::path& path, uint64_t from)
{
    std::ifstream in(path, std::ios::binary);
    in.seekg(std::streamoff(from));
    return parseLog(std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()));
}

std::u16string keptByLog(std::u16string_view text)
{
    return std::u16string(text.substr(0, std::min(text.size(), TEXT_ROOM) / 2));
}
