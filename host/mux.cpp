// mux.cpp: the command `mux`: elementary streams become one program stream.
#include "mux.h"

#include "cli.h"
#include "codes.h"
#include "interrupt.h"
#include "mux_feed.h"
#include "named_file.h"
#include "outputs.h"
#include "platform.h"
#include "progress.h"
#include "report.h"
#include "text.h"

#include <cstdio>

namespace fs = std::filesystem;

static constexpr size_t MOST_SOUNDS = 8;

struct MuxRun {
    const MuxOptions* options = nullptr;
    std::vector<MuxSource> sources = {};
    MovieFile output = {};
    bool scans = false;   // what the multiplexer hands out goes through the scan
    StreamScan scan = {};
    ProgressDisplay display = {};
};

// ---- before the run -----------------------------------------------------------------------------------------------

static std::vector<fs::path> inputsOf(const MuxOptions& options)
{
    std::vector<fs::path> inputs = { options.video };
    inputs.insert(inputs.end(), options.sounds.begin(), options.sounds.end());
    return inputs;
}

static int checkScanUsage(const ScanOptions& scan)
{
    if (!scan.scanFile.empty()) return checkScanFile(scan.scanFile);
    if (scan.interval.empty() && scan.cellsFile.empty()) return EXIT_DONE;
    return refuse("--interval and --cells divide a stream for its scan file: name that by --scan-file");
}

static int checkUsage(const MuxOptions& options)
{
    if (options.pal && options.ntsc) return refuse("--pal and --ntsc exclude each other");
    if (options.sounds.size() > MOST_SOUNDS) return refuse("a movie has at most eight sound tracks");
    std::vector<fs::path> inputs = inputsOf(options);
    for (const fs::path& input : inputs) {
        if (const std::string why = notReadableWhy(input); !why.empty())
            return refuse(printablePath(input) + ": " + why);
    }
    if (!options.scan.cellsFile.empty()) inputs.push_back(options.scan.cellsFile);
    std::vector<Output> outputs = { { "the output", options.out } };
    if (!options.scan.scanFile.empty()) outputs.push_back({ "the scan file", options.scan.scanFile });
    if (const int refused = checkOutputs(outputs, inputs)) return refused;
    return checkScanUsage(options.scan);
}

static FileFault misplacedWhy(const MuxOptions& options, const MuxSource& source, bool video)
{
    const StreamFormat& format = source.format;
    if (video && format.kind != STREAM_VIDEO) return { 0, "it is no video but " + streamText(format) };
    if (!video && format.kind == STREAM_VIDEO)
        return { 0, "it is video, of which a movie has one: name it by --video" };
    if (options.pal && format.kind == STREAM_VIDEO && format.unitTicks != PAL_PICTURE_TICKS) {
        return { 0, "it is NTSC video, and --pal was asked for" };
    }
    if (options.ntsc && format.kind == STREAM_VIDEO && format.unitTicks != NTSC_PICTURE_TICKS) {
        return { 0, "it is PAL video, and --ntsc was asked for" };
    }
    return {};
}

static int openSources(MuxRun* run)
{
    for (const fs::path& path : inputsOf(*run->options)) {
        const bool video = run->sources.empty();
        MuxSource& source = run->sources.emplace_back();
        source.path = path;
        if (FileFault fault = openSource(&source)) return reportFault(path, fault);
        if (FileFault fault = misplacedWhy(*run->options, source, video)) return reportFault(path, fault);
    }
    return EXIT_DONE;
}

// ---- the run ------------------------------------------------------------------------------------------------------

static uint64_t onSectors(uint64_t user, const uint8_t* sectors, uint64_t bytes)
{
    MuxRun* run = reinterpret_cast<MuxRun*>(user);
    if (run->output.given || run->output.refused) return 0;
    const bool taken = run->scans ? scanBytes(&run->scan, sectors, bytes) : writeMovie(&run->output, sectors, bytes);
    return taken ? 0 : CODE_WRITE_FAILED;
}

static void showProgress(MuxRun* run)
{
    constexpr uint64_t STEPS = 1000;
    uint64_t total = 0, done = 0;
    for (const MuxSource& source : run->sources) {
        total += source.format.bytes;
        done += source.delivered;
    }
    const uint64_t columns = run->display.mode == PROGRESS_BAR ? platformTerminalColumns() : 0;
    const uint32_t step = total == 0 ? 0 : uint32_t(double(done) / double(total) * double(STEPS));
    const std::string text = progressWork(&run->display, "multiplexing", uint32_t(STEPS), step, columns);
    if (!text.empty()) platformPrintError(text);
}

// What concerns all streams together, and where in the movie.
static int reportMisfit(const MuxRun& run, uint64_t code)
{
    char second[32];
    std::snprintf(second, sizeof second, "%.1f", deliveredSeconds(run.sources[0]));
    return reportFault(run.output.path,
                       { code, "the streams do not fit together, near second " + std::string(second) });
}

static int reportStop(MuxRun* run, const fs::path& path, const FileFault& fault)
{
    platformPrintError(progressEnd(&run->display));
    if (run->scan.fault) return reportFault(run->scan.fault.path, run->scan.fault.fault);
    if (fault.code == CODE_MUX_UNDERRUN || fault.code == CODE_MUX_OVERFLOW) return reportMisfit(*run, fault.code);
    if (run->output.refused) return reportFault(run->output.path, movieFault());
    return reportFault(path, fault);
}

static int reportInterrupt(MuxRun* run)
{
    platformPrintError(progressEnd(&run->display));
    platformPrintError("error: interrupted; " + printablePath(run->output.path) + " is not made\n");
    return EXIT_INTERRUPTED;
}

static int feedAll(MuxContext* handle, MuxRun* run)
{
    while (MuxSource* source = nextSource(&run->sources)) {
        if (isInterrupted()) return reportInterrupt(run);
        if (FileFault fault = deliverNext(handle, &run->sources, source)) return reportStop(run, source->path, fault);
        showProgress(run);
    }
    for (const MuxSource& source : run->sources) {
        if (!source.ended) return reportStop(run, source.path, { CODE_MUX_UNDERRUN, "it is not taken any more" });
    }
    return EXIT_DONE;
}

static int multiplex(MuxContext* handle, MuxRun* run)
{
    for (MuxSource& source : run->sources) {
        if (uint64_t error = addSource(handle, &source))
            return reportStop(run, source.path, { error, "it is " + streamText(source.format) });
    }
    return feedAll(handle, run);
}

static int endOutput(MuxRun* run)
{
    const fs::path& path = run->output.path;
    if (!run->output.made) return reportFault(path, { 0, "the streams are too short for a movie" });
    if (run->scans) {
        return endScan(&run->scan) ? EXIT_DONE : reportFault(run->scan.fault.path, run->scan.fault.fault);
    }
    if (FileFault fault = closeMovie(&run->output)) return reportFault(path, fault);
    return EXIT_DONE;
}

static int runMultiplexer(MuxRun* run)
{
    MuxContext* handle = nullptr;
    if (uint64_t error = InitMuxer(&handle, onSectors, reinterpret_cast<uint64_t>(run)))
        return reportFault(run->output.path, { error, "the multiplexer can't begin" });
    const int failed = multiplex(handle, run);
    run->output.given = failed != EXIT_DONE;
    const uint64_t error = ExitMuxer(handle);
    if (failed) return failed;
    if (error) return reportStop(run, run->sources[0].path, { error, "the multiplexer can't end" });
    platformPrintError(progressEnd(&run->display));
    return endOutput(run);
}

// ---- what there is to say -----------------------------------------------------------------------------------------

static void printStreams(const MuxRun& run)
{
    uint64_t sound = 0;
    for (const MuxSource& source : run.sources) {
        const std::string role = sound == 0 ? "video" : "sound " + std::to_string(sound);
        sound++;
        platformPrint(role + ": " + printablePath(source.path) + ", " + streamText(source.format) + "\n");
    }
}

static void printWarnings(const MuxRun& run)
{
    for (const MuxSource& source : run.sources) {
        if (source.leftOver) {
            platformPrintError("warning: " + printablePath(source.path) + " ends within a frame; its last " +
                               bytesText(source.leftOver) + " are left out\n");
        }
    }
}

static void printSuccess(const MuxRun& run)
{
    printWarnings(run);
    if (run.scans) printScanWarnings(run.scan);
    if (run.options->quiet) return;
    platformPrint("movie written to " + printablePath(run.output.path) + ", " +
                  bytesText(run.output.sectors * SECTOR_BYTES) + "\n");
    if (run.scans) platformPrint(scanSummary(run.scan));
}

static int prepareScan(MuxRun* run)
{
    run->scans = !run->options->scan.scanFile.empty();
    run->scan.input = run->options->out;
    run->scan.scanFile = run->options->scan.scanFile;
    run->scan.movie = &run->output;
    return readCellPlan(run->options->scan, &run->scan.watch.cells);
}

int runMux(const MuxOptions& options)
{
    watchForInterrupt();
    if (const int refused = checkUsage(options)) return refused;
    MuxRun run = {};
    run.options = &options;
    run.output.path = options.out;
    run.display.mode = options.quiet ? PROGRESS_NONE : platformHasTerminal() ? PROGRESS_BAR : PROGRESS_LINES;
    if (const int refused = prepareScan(&run)) return refused;
    if (const int failed = openSources(&run)) return failed;
    if (!options.quiet) printStreams(run);
    const int failed = runMultiplexer(&run);
    if (failed)
        dropScan(&run.scan);
    else
        printSuccess(run);
    return failed;
}
