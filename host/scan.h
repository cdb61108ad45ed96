// scan.h: the command `scan`: the second pass over a multiplexed stream.
#pragma once

#include "stream_scan.h"

struct ScanCommand {
    std::filesystem::path in, out;
    ScanOptions scan;
    bool quiet = false;
};

/** @return the program's exit code */
int runScan(const ScanCommand& command);
