// scan_file.cpp: loads a stream scan file, which a host has made while it prepared a title's stream, in place of a
// scan.

#include "base/bytes.h"
#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "video/movie_scan.h"

static uint64_t readScanFile(OSFILE file, VobuRecord** list, uint64_t* sectors)
{
    uint64_t size = 0;
    if (uint64_t error = osFileSize(file, &size)) return error;
    uint8_t header[SCAN_FILE_HEADER] = {};
    if (size < SCAN_FILE_HEADER) return ORV_INVALID_ARGUMENT;
    if (uint64_t error = osReadFile(file, header, SCAN_FILE_HEADER)) return error;
    if (orvGetLittle32(header) != SCAN_FILE_MARK) return ORV_INVALID_ARGUMENT;

    const uint64_t records = (size - SCAN_FILE_HEADER) / sizeof(VobuRecord);   // an incomplete last one is dropped
    if (uint64_t error = osAllocMem(records * sizeof(VobuRecord), list)) return error;
    if (uint64_t error = osReadFile(file, *list, records * sizeof(VobuRecord))) {
        (void)osFreeMem(list);
        return error;
    }
    *sectors = orvGetLittle32(header + SCAN_FILE_PACKS);
    return 0;
}

uint64_t orvReadStreamScanFile(const char16_t* path, VobuRecord** list, uint64_t* sectors)
{
    *list = nullptr;
    OSFILE file = 0;
    if (uint64_t error = osOpenFile(path, OS_READ, &file)) return error;
    const uint64_t result = readScanFile(file, list, sectors);
    (void)osCloseFile(&file);   // nothing was written
    return result;
}
