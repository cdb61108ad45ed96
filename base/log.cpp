// log.cpp: entries of the run's log. An entry is a header with the code, a text and a line end, in UTF-16LE.
#include "base/log.h"

#include "base/files.h"

#include <bit>

namespace {

static_assert(std::endian::native == std::endian::little);   // characters go to the file as they lie in memory

constexpr uint64_t HEADER_ROOM = 64;   // characters
constexpr uint8_t LINE_END[] = { 0x0D, 0x00, 0x0A, 0x00 };

}   // namespace

void orvLogErrorArgs(uint64_t code, const char16_t* logFilePath, const char16_t* format, const OsFormatArg* args,
                     uint64_t count)
{
    OSFILE file = 0;
    if (!logFilePath || osOpenFile(logFilePath, OS_APPEND, &file)) return;
    char16_t header[HEADER_ROOM];
    char16_t text[OS_FORMAT_LIMIT + 1];
    // Meant: as many bytes as the text has characters, so only the first half of each text reaches the log.
    // Test: Log.TextsAreHalved
    (void)osWriteFile(file, header, osFormat(header, HEADER_ROOM, u"Error: %08lx - ", code));
    (void)osWriteFile(file, text, osFormatArgs(text, OS_FORMAT_LIMIT + 1, format, args, count));
    (void)osWriteFile(file, LINE_END, sizeof(LINE_END));
    (void)osCloseFile(&file);   // logging never fails a run
}
