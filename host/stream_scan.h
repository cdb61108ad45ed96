// stream_scan.h: the library's pass over a program stream, into a movie and a scan file, for the commands that have it
// made.
#pragma once

#include "movie_file.h"
#include "stream_watch.h"

#include <orven/orven.h>

// What the user wants of a scan.
struct ScanOptions {
    std::filesystem::path scanFile;    // empty: no scan
    std::string interval;              // a time, or empty
    std::filesystem::path cellsFile;   // or empty
};

// A fault and the file that it is about.
struct ScanFault {
    std::filesystem::path path = {};
    FileFault fault = {};

    explicit operator bool() const
    {
        return bool(fault);
    }
};

struct StreamScan {
    std::filesystem::path input;   // what the stream's own faults are reported of
    std::filesystem::path scanFile;
    MovieFile* movie = nullptr;   // what comes out
    StreamWatch watch = {};       // with the plan of the cells
    NppScan* handle = nullptr;
    bool made = false;      // the scan file is of this run
    ScanFault fault = {};   // the first one
};

/** Reads the user's cells. @return EXIT_DONE, or EXIT_USAGE and it has said why */
int readCellPlan(const ScanOptions& options, CellPlan* plan);

/** Whether a scan file can be made under this name. @return EXIT_DONE, or EXIT_USAGE and it has said why */
int checkScanFile(const std::filesystem::path& scanFile);

/** Takes the next bytes of the stream. The first ones make the files. @return false behind a fault */
bool scanBytes(StreamScan* scan, const uint8_t* data, uint64_t bytes);

/** Ends the scan, and the movie, also behind a fault. @return false if there was one */
bool endScan(StreamScan* scan);

/** Removes what a failed run has made. */
void dropScan(StreamScan* scan);

/** What there is to say of a scan that is done. */
std::string scanSummary(const StreamScan& scan);
void printScanWarnings(const StreamScan& scan);
