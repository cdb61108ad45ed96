// mux.cpp: the command `mux`: elementary streams become one program stream.
#include "mux.h"

#include "cli.h"
#include "codes.h"
#include "explain.h"
#include "interrupt.h"
#include "mux_feed.h"
#include "named_file.h"
#include "platform.h"
#include "progress.h"
#include "report.h"
#include "text.h"

#include <cstdio>

namespace fs = std::filesystem;

static constexpr size_t MOST_SOUNDS = 8;
static constexpr uint64_t SECTOR_BYTES = 2048;

// What the multiplexer hands out.
struct MuxOutput {
    fs::path path;
    std::ofstream out = {};
    uint64_t sectors = 0;
    bool made = false;      // the file is of this run
    bool refused = false;   // it can't be written
    bool given = false;     // up: nothing more is wanted
};

struct MuxRun {
    const MuxOptions* options;
    std::vector<MuxSource> sources = {};
    MuxOutput output = {};
    ProgressDisplay display = {};
};

// ---- failures -----------------------------------------------------------------------------------------------------

static int reportFault(const fs::path& path, const StreamFault& fault)
{
    const std::string name = printablePath(path);
    if (fault.code) {
        platformPrintError("error: " + resultLine(fault.code, platformResultText(fault.code)) + "\n  " + name + ": " +
                           fault.why + "\n" + moreLine(fault.code));
    } else {
        platformPrintError("error: " + name + ": " + fault.why + "\n");
    }
    return EXIT_RUN_FAILED;
}

// ---- before the run -----------------------------------------------------------------------------------------------

static int checkInput(const fs::path& path, const fs::path& out)
{
    std::error_code error;
    if (const std::string why = notReadableWhy(path); !why.empty()) return refuse(printablePath(path) + ": " + why);
    if (fs::equivalent(path, out, error)) return refuse("the output " + printablePath(out) + " is one of the inputs");
    return EXIT_DONE;
}

static int checkUsage(const MuxOptions& options)
{
    std::error_code error;
    if (!options.scanFile.empty()) {
        return refuse("--scan-file is kept for the pass that completes the navigation data of a stream and writes a "
                      "scan file; this version has no such pass");
    }
    if (options.pal && options.ntsc) return refuse("--pal and --ntsc exclude each other");
    if (options.sounds.size() > MOST_SOUNDS) return refuse("a movie has at most eight sound tracks");
    if (const int refused = checkInput(options.video, options.out)) return refused;
    for (const fs::path& sound : options.sounds) {
        if (const int refused = checkInput(sound, options.out)) return refused;
    }
    // Only files are written over: a link could lead to one that the user has not named.
    const fs::file_status there = fs::symlink_status(options.out, error);
    if (fs::exists(there) && !fs::is_regular_file(there))
        return refuse("the output " + printablePath(options.out) + " is there and is no plain file");
    return EXIT_DONE;
}

static StreamFault misplacedWhy(const MuxOptions& options, const MuxSource& source, bool video)
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
    std::vector<fs::path> paths = { run->options->video };
    paths.insert(paths.end(), run->options->sounds.begin(), run->options->sounds.end());
    for (const fs::path& path : paths) {
        const bool video = run->sources.empty();
        MuxSource& source = run->sources.emplace_back();
        source.path = path;
        if (StreamFault fault = openSource(&source)) return reportFault(path, fault);
        if (StreamFault fault = misplacedWhy(*run->options, source, video)) return reportFault(path, fault);
    }
    return EXIT_DONE;
}

// ---- the run ------------------------------------------------------------------------------------------------------

// The file is made when there is something for it: a run that fails at its first bytes leaves an earlier one alone.
static void openOutput(MuxOutput* output)
{
    if (output->made) return;
    output->out.open(output->path, std::ios::binary | std::ios::trunc);
    output->made = output->out.is_open();
}

static uint64_t onSectors(uint64_t user, const uint8_t* sectors, uint64_t bytes)
{
    MuxOutput* output = reinterpret_cast<MuxOutput*>(user);
    if (output->given || output->refused) return 0;
    openOutput(output);
    output->out.write(reinterpret_cast<const char*>(sectors), std::streamsize(bytes));
    output->refused = output->out.fail();
    output->sectors += bytes / SECTOR_BYTES;
    return output->refused ? CODE_WRITE_FAILED : 0;
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

static int reportStop(MuxRun* run, const fs::path& path, const StreamFault& fault)
{
    platformPrintError(progressEnd(&run->display));
    if (fault.code == CODE_MUX_UNDERRUN || fault.code == CODE_MUX_OVERFLOW) return reportMisfit(*run, fault.code);
    if (run->output.refused) return reportFault(run->output.path, { CODE_WRITE_FAILED, "the file can't be written" });
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
        if (StreamFault fault = deliverNext(handle, &run->sources, source)) return reportStop(run, source->path, fault);
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
    MuxOutput& output = run->output;
    output.out.close();
    if (!output.made) return reportFault(output.path, { 0, "the streams are too short for a movie" });
    if (output.out.fail() || output.refused)
        return reportFault(output.path, { CODE_WRITE_FAILED, "the file can't be written" });
    return EXIT_DONE;
}

static int runMultiplexer(MuxRun* run)
{
    MuxContext* handle = nullptr;
    if (uint64_t error = InitMuxer(&handle, onSectors, reinterpret_cast<uint64_t>(&run->output)))
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

int runMux(const MuxOptions& options)
{
    watchForInterrupt();
    if (const int refused = checkUsage(options)) return refused;
    MuxRun run = { .options = &options };
    run.output.path = options.out;
    run.display.mode = options.quiet ? PROGRESS_NONE : platformHasTerminal() ? PROGRESS_BAR : PROGRESS_LINES;
    if (const int failed = openSources(&run)) return failed;
    if (!options.quiet) printStreams(run);
    const int failed = runMultiplexer(&run);
    if (failed) {
        // Half a movie looks like a whole one.
        std::error_code error;
        run.output.out.close();
        if (run.output.made) fs::remove(options.out, error);
        return failed;
    }
    printWarnings(run);
    if (!options.quiet)
        platformPrint("movie written to " + printablePath(options.out) + ", " +
                      bytesText(run.output.sectors * SECTOR_BYTES) + "\n");
    return EXIT_DONE;
}
