// scan.cpp: the command `scan`: the second pass over a multiplexed stream. The whole stream is looked at before
// anything is written.
#include "scan.h"

#include "cli.h"
#include "codes.h"
#include "interrupt.h"
#include "named_file.h"
#include "outputs.h"
#include "platform.h"
#include "progress.h"
#include "report.h"
#include "text.h"

#include <functional>

namespace fs = std::filesystem;

struct ScanRun {
    const ScanCommand* command = nullptr;
    MovieFile movie = {};
    StreamScan scan = {};
    ProgressDisplay display = {};
};

static int checkUsage(const ScanCommand& command)
{
    if (const std::string why = notReadableWhy(command.in); !why.empty())
        return refuse(printablePath(command.in) + ": " + why);
    std::vector<fs::path> inputs = { command.in };
    if (!command.scan.cellsFile.empty()) inputs.push_back(command.scan.cellsFile);
    const std::vector<Output> outputs = { { "the output", command.out }, { "the scan file", command.scan.scanFile } };
    if (const int refused = checkOutputs(outputs, inputs)) return refused;
    return checkScanFile(command.scan.scanFile);
}

// ---- reading the stream -------------------------------------------------------------------------------------------

// Takes whole packs, and behind the last of them what is left. False ends the reading.
typedef std::function<bool(const uint8_t* data, uint64_t bytes)> TakeBytes;

static void showProgress(ScanRun* run, const char* name, uint64_t done, uint64_t total)
{
    constexpr uint64_t STEPS = 1000;
    const uint64_t columns = run->display.mode == PROGRESS_BAR ? platformTerminalColumns() : 0;
    const uint32_t step = uint32_t(double(done) / double(total) * double(STEPS));
    const std::string text = progressWork(&run->display, name, uint32_t(STEPS), step, columns);
    if (!text.empty()) platformPrintError(text);
}

static int readStream(ScanRun* run, const char* name, const TakeBytes& take)
{
    constexpr uint64_t PIECE_SECTORS = 512;
    const uint64_t total = fileBytes(run->command->in);
    std::ifstream in(run->command->in, std::ios::binary);
    std::vector<uint8_t> piece;
    for (uint64_t done = 0; done < total; done += piece.size()) {
        if (isInterrupted()) {
            platformPrintError(progressEnd(&run->display));
            platformPrintError("error: interrupted; " + printablePath(run->command->out) + " is not made\n");
            return EXIT_INTERRUPTED;
        }
        piece.resize(std::min(PIECE_SECTORS * SECTOR_BYTES, total - done));
        const bool got = bool(in.read(reinterpret_cast<char*>(piece.data()), std::streamsize(piece.size())));
        if (!got) {
            platformPrintError(progressEnd(&run->display));
            return reportFault(run->command->in, { CODE_READ_FAILED, "the file can't be read" });
        }
        if (!take(piece.data(), piece.size())) break;
        showProgress(run, name, done + piece.size(), total);
    }
    platformPrintError(progressEnd(&run->display));
    return EXIT_DONE;
}

// ---- before anything is written -----------------------------------------------------------------------------------

static FileFault watchPacks(StreamWatch* watch, const uint8_t* data, uint64_t bytes)
{
    for (uint64_t at = 0; at + SECTOR_BYTES <= bytes; at += SECTOR_BYTES) {
        if (FileFault fault = watchPack(watch, data + at)) return fault;
    }
    return {};
}

static int checkStream(ScanRun* run)
{
    const fs::path& in = run->command->in;
    if (fileBytes(in) < SECTOR_BYTES)
        return reportFault(in, { 0, "it holds " + bytesText(fileBytes(in)) + ", less than one pack of 2048" });
    StreamWatch watch = { .cells = run->scan.watch.cells };
    FileFault fault;
    const int failed = readStream(run, "checking", [&](const uint8_t* data, uint64_t bytes) {
        fault = watchPacks(&watch, data, bytes);
        return !fault;
    });
    if (failed) return failed;
    if (!fault) fault = watchEnd(watch);
    if (!fault) fault = { 0, missingCells(watch) };
    return fault ? reportFault(in, fault) : EXIT_DONE;
}

// ---- the pass -----------------------------------------------------------------------------------------------------

static int passStream(ScanRun* run)
{
    const int failed = readStream(
        run, "scanning", [&](const uint8_t* data, uint64_t bytes) { return scanBytes(&run->scan, data, bytes); });
    if (failed) return failed;
    if (endScan(&run->scan)) return EXIT_DONE;
    return reportFault(run->scan.fault.path, run->scan.fault.fault);
}

static void printSuccess(const ScanRun& run)
{
    if (const uint64_t left = fileBytes(run.command->in) % SECTOR_BYTES) {
        platformPrintError("warning: " + printablePath(run.command->in) + " ends within a pack; its last " +
                           bytesText(left) + " are left out\n");
    }
    printScanWarnings(run.scan);
    if (run.command->quiet) return;
    platformPrint("movie written to " + printablePath(run.movie.path) + ", " +
                  bytesText(run.movie.sectors * SECTOR_BYTES) + "\n" + scanSummary(run.scan));
}

int runScan(const ScanCommand& command)
{
    watchForInterrupt();
    if (const int refused = checkUsage(command)) return refused;
    ScanRun run = {};
    run.command = &command;
    run.movie.path = command.out;
    run.scan.input = command.in;
    run.scan.scanFile = command.scan.scanFile;
    run.scan.movie = &run.movie;
    run.display.mode = command.quiet ? PROGRESS_NONE : platformHasTerminal() ? PROGRESS_BAR : PROGRESS_LINES;
    if (const int refused = readCellPlan(command.scan, &run.scan.watch.cells)) return refused;
    if (const int failed = checkStream(&run)) return failed;
    const int failed = passStream(&run);
    if (failed)
        dropScan(&run.scan);
    else
        printSuccess(run);
    return failed;
}
