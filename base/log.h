// log.h: the run's error log, for the host's eyes. Logging never fails a run.
#pragma once

#include "base/strings.h"

#include <cstdint>

/** Appends one entry to the log: header, text, CR LF. Does nothing if the path is null or can't be opened.
    args are the %s of format. */
void orvLogErrorArgs(uint64_t code, const char16_t* logFilePath, const char16_t* format, const OsFormatArg* args,
                     uint64_t count);

template <class... Args>
void orvLogError(uint64_t code, const char16_t* logFilePath, const char16_t* format, const Args&... args)
{
    const OsFormatArg list[sizeof...(args) + 1] = { osArg(args)... };
    orvLogErrorArgs(code, logFilePath, format, list, sizeof...(args));
}
