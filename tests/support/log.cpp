#include "tests/support/log.h"

#include <algorithm>
#include <cstdio>

static constexpr uint64_t HEADER_CHARACTERS = 18;
static constexpr uint64_t MAX_TEXT_CHARACTERS = 1024;
static const Bytes LINE_END = { 0x0D, 0x00, 0x0A, 0x00 };
static const Bytes HEADER_START = { 'E', 0, 'r', 0, 'r', 0, 'o', 0, 'r', 0, ':', 0, ' ', 0 };

// As many bytes as the text has characters: its first half in UTF-16LE.
static void appendHalf(Bytes* log, const std::u16string& text)
{
    const size_t end = log->size() + text.size();
    for (const char16_t unit : text.substr(0, text.size() / 2 + 1)) {
        log->push_back(uint8_t(unit & 0xFF));
        log->push_back(uint8_t(unit >> 8));
    }
    log->resize(end);
}

Bytes logEntryBytes(const LogEntry& entry)
{
    char header[HEADER_CHARACTERS + 1];
    std::snprintf(header, sizeof header, "Error: %08x - ", unsigned(entry.code & 0xFFFFFFFF));
    Bytes bytes;
    appendHalf(&bytes, toWide(header));
    appendHalf(&bytes, entry.text.substr(0, MAX_TEXT_CHARACTERS));
    bytes.insert(bytes.end(), LINE_END.begin(), LINE_END.end());
    return bytes;
}

Bytes logBytes(const std::vector<LogEntry>& entries)
{
    Bytes log;
    for (const LogEntry& entry : entries) {
        const Bytes bytes = logEntryBytes(entry);
        log.insert(log.end(), bytes.begin(), bytes.end());
    }
    return log;
}

static std::u16string wideOf(const Bytes& bytes)
{
    std::u16string text;
    for (size_t i = 0; i < bytes.size(); i += 2) {
        text += char16_t(bytes[i] | (i + 1 < bytes.size() ? bytes[i + 1] << 8 : 0));
    }
    return text;
}

// The line end that an entry's text stops at: behind it the log ends, or the next header begins.
static Bytes::const_iterator findLineEnd(Bytes::const_iterator from, Bytes::const_iterator end)
{
    for (auto at = from;; at++) {
        at = std::search(at, end, LINE_END.begin(), LINE_END.end());
        if (at == end) return end;
        const auto next = at + std::ptrdiff_t(LINE_END.size());
        if (next == end || std::search(next, end, HEADER_START.begin(), HEADER_START.end()) == next) return at;
    }
}

std::vector<LoggedEntry> decodeLog(const Bytes& log)
{
    std::vector<LoggedEntry> entries;
    auto at = log.begin();
    while (log.end() - at >= std::ptrdiff_t(HEADER_CHARACTERS)) {
        const auto text = at + std::ptrdiff_t(HEADER_CHARACTERS);
        const auto end = findLineEnd(text, log.end());
        if (end == log.end()) break;
        entries.push_back({ wideOf(Bytes(at, text)), wideOf(Bytes(text, end)), uint64_t(end - text) });
        at = end + std::ptrdiff_t(LINE_END.size());
    }
    if (at != log.end()) entries.push_back({ wideOf(Bytes(at, log.end())), u"", 0 });
    return entries;
}

static std::string describe(const Bytes& log)
{
    std::string text;
    for (const LoggedEntry& entry : decodeLog(log)) {
        text +=
            "  [" + toUtf8(entry.header) + "] [" + toUtf8(entry.text) + "] of " + std::to_string(entry.length) + "\n";
    }
    return text.empty() ? "  nothing\n" : text;
}

testing::AssertionResult logHolds(const std::u16string& path, const std::vector<LogEntry>& entries)
{
    const Bytes expected = logBytes(entries);
    const Bytes log = fileExists(path) ? readFile(path) : Bytes();
    if (log == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the log holds\n" << describe(log) << "should hold\n" << describe(expected);
}
