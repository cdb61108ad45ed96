// log.h: the error log of a run, told by entries. A log holds the first half of every text alone, so tests say which
// whole text they mean and compare the bytes that it leaves.
#pragma once

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

struct LogEntry {
    uint64_t code;
    std::u16string text;   // whole, as it was before the log halved it
};

/** The bytes that an entry leaves in a log file: 18 of the header, as many of the text as it has characters (1024 at
    most), the line end. */
Bytes logEntryBytes(const LogEntry& entry);
Bytes logBytes(const std::vector<LogEntry>& entries);

// What a log file shows of an entry.
struct LoggedEntry {
    std::u16string header;   // its first nine characters
    std::u16string text;     // first half of the text; of a half character at the end its low byte
    uint64_t length;         // characters of the whole text

    bool operator==(const LoggedEntry&) const = default;
};

/** The entries of a log file. What does not end like an entry comes last, as an entry without a length. */
std::vector<LoggedEntry> decodeLog(const Bytes& log);

/** Whether the log at path holds exactly these entries. A log that is not there holds none. */
testing::AssertionResult logHolds(const std::u16string& path, const std::vector<LogEntry>& entries);
