// nav_support.h: what the tests of the movie scan and of the navigation packs share: lists, a run's root, progress
// calls that are written down, log entries, and differences that speak.
#pragma once

#include "base/memory.h"
#include "project/model.h"
#include "tests/support/files.h"
#include "tests/support/packs.h"
#include "video/movie_scan.h"
#include "video/vobu_record.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// A list of the engine's, freed with its test.
template <class T> struct List {
    T* block = nullptr;

    List()
    {
        EXPECT_EQ(osAllocMem(0, &block), 0u);
    }
    explicit List(const std::vector<T>& records) : List()
    {
        EXPECT_EQ(osInsertMem(&block, OS_BLOCK_END, records.data(), records.size() * sizeof(T)), 0u);
    }
    ~List()
    {
        osFreeMem(&block);
    }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    std::vector<T> records() const
    {
        return std::vector<T>(block, block + osListCount(block));
    }
};

// Root of a run, and its log.
struct RunRoot {
    explicit RunRoot(int64_t standard, const std::u16string& log = {});

    std::u16string logPath;
    std::unique_ptr<DiscContext> context;
};

/** The record as one line: `0-14 scr 0 pts 36000 n 12 vob 1 cell 1 refs 1 6 9 tref 2`, and ` spare x` if that is not 0.
 */
std::string describe(const VobuRecord& record);
/** `sector 2 pts 36000 kind 10 index 0 vobu 0 vob 1`. */
std::string describe(const StreamPackRecord& record);

template <class T> std::vector<std::string> describeAll(const std::vector<T>& records)
{
    std::vector<std::string> lines;
    for (const T& record : records) lines.push_back(describe(record));
    return lines;
}

// Progress calls as they come; the one with number cancelAt, from 1, cancels.
struct ProgressLog {
    uint64_t cancelAt = 0;
    std::vector<std::pair<uint64_t, uint64_t>> calls = {};   // total, done
    const RunHead* run = nullptr;                            // of the last call
    std::u16string deleteAtFirst = {};                       // a file that the first call deletes

    uint64_t user()
    {
        return reinterpret_cast<uint64_t>(this);
    }
};
uint64_t recordProgress(const RunHead* run, uint64_t total, uint64_t done, uint64_t user);

// One pass over a stream.
struct Scan {
    uint64_t result;
    std::vector<VobuRecord> vobus;
    std::vector<StreamPackRecord> packs;
};

struct ScanSpec {
    int64_t standard = 1;
    const TitleSetDesc* titleSet = nullptr;
    uint64_t titleSetNumber = 0;
    bool wantPacks = true;
    std::vector<uint64_t> cuts = {};   // offsets at which the stream is cut into files
};

/** Writes the stream into files and scans them without progress. */
Scan scanBytes(const Bytes& bytes, const ScanSpec& given = {});
/** Scans what lies there. */
Scan scanSources(const RunRoot& run, const Sources& sources, const ScanSpec& given = {});

// Bytes at an offset of a pack, as hex text.
struct PackBytes {
    uint64_t at;
    const char* hex;
};

/** A pack of these bytes; bytes not named are 0, and bytes 0 to 37 but 23 those of the pack before. */
Bytes packOf(const Bytes& before, const std::vector<PackBytes>& named);
/** Each run of bytes that differ: `at 1039: 00 00 00 05, should be 00 00 00 06`; empty if none does. */
std::string differences(const uint8_t* actual, const Bytes& expected);
