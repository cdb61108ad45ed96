// stream_scan.cpp: the library's pass over a program stream, into a movie and a scan file.
#include "stream_scan.h"

#include "cli.h"
#include "codes.h"
#include "named_file.h"
#include "outputs.h"
#include "platform.h"
#include "report.h"
#include "text.h"

namespace fs = std::filesystem;

// ---- what the user wants ------------------------------------------------------------------------------------------

static int readCellsFile(const fs::path& path, CellPlan* plan)
{
    constexpr uint64_t MOST_BYTES = 1 << 20;
    const std::string name = printablePath(path);
    if (const std::string why = notReadableWhy(path); !why.empty()) return refuse(name + ": " + why);
    if (fileBytes(path) > MOST_BYTES) return refuse(name + ": that is no list of times");
    std::ifstream in(path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    uint64_t line = 0;
    const std::string why = parseCells(text, &plan->starts, &line);
    if (why.empty()) return EXIT_DONE;
    return refuse(name + (line ? ":" + std::to_string(line) : "") + ": " + why);
}

int readCellPlan(const ScanOptions& options, CellPlan* plan)
{
    if (!options.interval.empty() && !options.cellsFile.empty())
        return refuse("--interval and --cells exclude each other");
    if (!options.cellsFile.empty()) return readCellsFile(options.cellsFile, plan);
    if (options.interval.empty()) return EXIT_DONE;
    if (parseTime(options.interval, &plan->interval) && plan->interval) return EXIT_DONE;
    return refuse("--interval " + printable(wideOf(options.interval)) +
                  " is no length of time; write seconds (600, 0.5)");
}

int checkScanFile(const fs::path& scanFile)
{
    std::error_code error;
    const std::string name = "the scan file " + printablePath(scanFile);
    if (!platformLibraryTakes(scanFile)) return refuse(name + " has a name that the library does not take");
    if (const std::string why = notWritableWhy(scanFile); !why.empty()) return refuse(name + ": " + why);
    const fs::path folder = scanFile.parent_path();
    if (!folder.empty() && !fs::is_directory(folder, error)) return refuse(name + ": there is no such folder");
    return EXIT_DONE;
}

// ---- the pass -----------------------------------------------------------------------------------------------------

static bool fail(StreamScan* scan, const fs::path& path, const FileFault& fault)
{
    if (!scan->fault) scan->fault = { path, fault };
    return false;
}

// A failure that the library hears of would keep it from ending the scan, and so from closing its file.
static uint64_t onUnit(const uint8_t* data, uint64_t bytes, uint64_t user)
{
    StreamScan* scan = reinterpret_cast<StreamScan*>(user);
    if (!scan->fault && !writeMovie(scan->movie, data, bytes)) (void)fail(scan, scan->movie->path, movieFault());
    return 0;
}

static FileFault resultOf(const StreamScan& scan, uint64_t code)
{
    if (code == 0) return {};
    return { code, isPlatformCode(code) ? "the scan file can't be written"
                                        : "the scan goes no further, " + sectorsText(scan.watch.sectors) + " on" };
}

static bool checked(StreamScan* scan, uint64_t code)
{
    const FileFault fault = resultOf(*scan, code);
    if (!fault) return true;
    return fail(scan, isPlatformCode(code) ? scan->scanFile : scan->input, fault);
}

static bool beginScan(StreamScan* scan)
{
    std::error_code error;
    if (!openMovie(scan->movie)) return fail(scan, scan->movie->path, movieFault());
    // Two names that differ in case alone may be one file; that shows once it is there.
    if (fs::equivalent(scan->movie->path, scan->scanFile, error))
        return fail(scan, scan->scanFile, { 0, "the scan file is the output too" });
    const bool before = fs::exists(scan->scanFile, error);
    const uint64_t bytesBefore = fileBytes(scan->scanFile);
    const uint64_t code = platformBeginScan(scan->scanFile, scan->watch.cells.interval, cellList(scan->watch.cells),
                                            onUnit, reinterpret_cast<uint64_t>(scan), &scan->handle);
    scan->made =
        code == 0 || (!before && fs::exists(scan->scanFile, error)) || fileBytes(scan->scanFile) != bytesBefore;
    return checked(scan, code);
}

bool scanBytes(StreamScan* scan, const uint8_t* data, uint64_t bytes)
{
    if (scan->fault) return false;
    for (uint64_t at = 0; at + SECTOR_BYTES <= bytes; at += SECTOR_BYTES) {
        if (FileFault fault = watchPack(&scan->watch, data + at)) return fail(scan, scan->input, fault);
    }
    if (!scan->handle && !beginScan(scan)) return false;
    return checked(scan, nppScanBuffer(scan->handle, data, bytes)) && !scan->fault;
}

bool endScan(StreamScan* scan)
{
    if (scan->handle) (void)checked(scan, nppEndStreamScan(scan->handle));
    scan->handle = nullptr;
    if (scan->fault) return false;
    if (FileFault fault = closeMovie(scan->movie)) return fail(scan, scan->movie->path, fault);
    if (FileFault fault = watchEnd(scan->watch)) return fail(scan, scan->input, fault);
    if (FileFault fault = lossFault(scan->watch.sectors, scan->movie->sectors))
        return fail(scan, scan->movie->path, fault);
    return true;
}

void dropScan(StreamScan* scan)
{
    std::error_code error;
    (void)fail(scan, scan->input, { 0, "it is given up" });   // so that nothing more is written
    if (scan->handle) (void)endScan(scan);
    dropMovie(scan->movie);
    if (scan->made) fs::remove(scan->scanFile, error);
}

// ---- what there is to say -----------------------------------------------------------------------------------------

std::string scanSummary(const StreamScan& scan)
{
    const StreamWatch& watch = scan.watch;
    return "scan file written to " + printablePath(scan.scanFile) + ": " + sectorsText(watch.sectors) + ", " +
           std::to_string(watch.units) + (watch.units == 1 ? " unit, " : " units, ") + std::to_string(watch.cell) +
           (watch.cell == 1 ? " cell\n" : " cells\n");
}

void printScanWarnings(const StreamScan& scan)
{
    if (const std::string missing = missingCells(scan.watch); !missing.empty())
        platformPrintError("warning: " + printablePath(scan.input) + ": " + missing + "\n");
    if (countsWrongRate(scan.watch)) {
        platformPrintError(
            "warning: " + printablePath(scan.input) +
            ": the scan counts 25 pictures a second of a stream that has 29.97, so that the playing "
            "times in its scan file are at least a sixth too short; a project without `streamscanfile` has the "
            "right ones\n");
    }
}
