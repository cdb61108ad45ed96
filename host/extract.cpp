// extract.cpp: the command `extract`: the tracks of a disc become WAVE files. A track is written into a folder of its
// own within the output folder, and its files take their names when it is whole.
#include "extract.h"

#include "cli.h"
#include "codes.h"
#include "extract_disc.h"
#include "interrupt.h"
#include "named_file.h"
#include "platform.h"
#include "progress.h"
#include "report.h"
#include "text.h"

#include <algorithm>

namespace fs = std::filesystem;

static constexpr uint64_t WAVE_HEADER_BYTES = 46;
static constexpr uint64_t STEPS = 1000;   // of the progress

struct ExtractRun {
    const ExtractOptions* options;
    DiscFolder disc = {};
    std::vector<ExtractTrack> tracks = {};   // of the disc
    std::vector<uint64_t> wanted = {};       // numbers of those to be extracted, from 1
    uint64_t refused = 0;                    // tracks that were asked for and can't be extracted
    uint64_t done = 0;                       // tracks
    fs::path folder = {};                    // where tracks are written until they are whole
    ExtractContext* context = nullptr;       // null once it is released
    std::vector<fs::path> made = {};
    ProgressDisplay display = {};
    uint64_t sectors = 0, sectorsBefore = 0;   // of all wanted tracks, of those that are over
    uint64_t number = 0;                       // of the track at hand
    uint64_t nextSector = 0;                   // behind the last that gave samples, from the track's first
    uint64_t step = STEPS + 1;                 // shown last
};

// ---- what there is to say -----------------------------------------------------------------------------------------

static std::string counted(uint64_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

static fs::path tableOf(const ExtractRun& run)
{
    return run.disc.folder / (run.disc.kind == DISC_AUDIO ? "AUDIO_PP.IFO" : "VIDEO_TS.IFO");
}

static void printTracks(const ExtractRun& run)
{
    platformPrint(printablePath(run.disc.folder) + ": " + (run.disc.kind == DISC_AUDIO ? "DVD-Audio" : "DVD-Video") +
                  ", " + counted(run.tracks.size(), "track") + "\n");
    uint64_t number = 0;
    for (const ExtractTrack& track : run.tracks) {
        const FileFault fault = trackFault(run.disc.kind, track);
        number++;
        platformPrint("track " + std::to_string(number) + ": " + trackText(run.disc.kind, track) + "\n" +
                      (fault ? "  can't be extracted: " + fault.why + "\n" : ""));
    }
}

static void printMade(const ExtractRun& run)
{
    if (run.options->quiet) return;
    for (const fs::path& file : run.made) platformPrint(printablePath(file) + ", " + bytesText(fileBytes(file)) + "\n");
}

// ---- before the run -----------------------------------------------------------------------------------------------

static int checkUsage(const ExtractOptions& options)
{
    std::error_code error;
    const std::string disc = printablePath(options.disc), out = printablePath(options.out);
    if (!fs::exists(options.disc, error)) return refuse("there is no disc folder " + disc);
    if (!fs::is_directory(options.disc, error)) return refuse(disc + " is a file; the disc is a folder");
    if (fs::exists(options.out, error) && !fs::is_directory(options.out, error))
        return refuse(out + " is a file; the tracks need a folder");
    return EXIT_DONE;
}

/** A name within the output folder that nothing has yet. */
static fs::path freeName(const fs::path& out)
{
    std::error_code error;
    for (uint64_t number = 1;; number++) {
        const fs::path name = out / ("orven-extract-" + std::to_string(number));
        if (!fs::exists(fs::symlink_status(name, error))) return name;
    }
}

static void onTrack(const ExtractTrack* track, uint64_t, uint64_t user)
{
    reinterpret_cast<ExtractRun*>(user)->tracks.push_back(*track);
}

static int openDisc(ExtractRun* run)
{
    fs::path file;
    if (FileFault fault = folderFault(run->disc, &file)) return reportFault(file, fault);
    run->tracks.reserve(UINT8_MAX);   // more than a disc has: onTrack must not throw
    uint64_t code = platformCreateExtract(run->disc.folder, run->folder, &run->context);
    if (code) return reportFault(run->disc.folder, { code, "the library can't take the name of it or of the output" });
    code = d2wOpenDisc(run->context, nullptr, onTrack, reinterpret_cast<uint64_t>(run));
    if (!code) return EXIT_DONE;
    const FileFault fault = openFault(run->disc, code, run->tracks.size(), &file);
    return reportFault(file, fault);
}

/** Takes the tracks that were asked for and can be extracted, and says what is wrong with the others. */
static int chooseTracks(ExtractRun* run)
{
    const uint64_t one = run->options->track, count = run->tracks.size();
    if (count == 0) return reportFault(tableOf(*run), { 0, "the disc has no tracks" });
    if (one > count) {
        return reportFault(tableOf(*run), { CODE_EXTRACT_NO_TRACK, "there is no track " + std::to_string(one) +
                                                                       "; the disc has " + counted(count, "track") });
    }
    for (uint64_t number = one ? one : 1; number <= (one ? one : count); number++) {
        const ExtractTrack& track = run->tracks[number - 1];
        if (FileFault fault = trackFault(run->disc.kind, track)) {
            (void)reportFault(tableOf(*run), { fault.code, "track " + std::to_string(number) + ": " + fault.why });
            run->refused++;
            continue;
        }
        run->wanted.push_back(number);
        run->sectors += uint64_t(track.lastSector) - track.firstSector + 1;
    }
    return run->wanted.empty() ? EXIT_RUN_FAILED : EXIT_DONE;
}

static std::vector<std::string> namesOf(const ExtractRun& run, uint64_t number)
{
    return waveNames(run.tracks[number - 1], number, run.options->mono);
}

static std::string takenWhy(const fs::path& path, bool force)
{
    std::error_code error;
    const fs::file_status there = fs::symlink_status(path, error);
    if (!fs::exists(there)) return "";
    if (!fs::is_regular_file(there)) return " is there and is no plain file";
    return force ? "" : " is there already; --force replaces it";
}

static int checkOutputs(const ExtractRun& run)
{
    for (const uint64_t number : run.wanted) {
        for (const std::string& name : namesOf(run, number)) {
            const fs::path path = run.options->out / name;
            const std::string why = takenWhy(path, run.options->force);
            if (!why.empty()) return refuse(printablePath(path) + why);
        }
    }
    return EXIT_DONE;
}

// What is missing in front of a part shifts everything behind it, and nothing on the disc tells.
static void warnOfParts(const ExtractRun& run)
{
    const uint64_t missing = missingSectors(run.disc, run.tracks);
    if (missing == 0 || run.disc.parts.size() < 2) return;
    platformPrintError("warning: " + counted(missing, "sector") +
                       " of the sound are missing. If it is not the last file that is cut, tracks come out wrong\n");
}

// ---- a track ------------------------------------------------------------------------------------------------------

static void showProgress(ExtractRun* run, uint64_t done)
{
    const uint64_t step =
        uint64_t(double(run->sectorsBefore + done) / double(std::max<uint64_t>(run->sectors, 1)) * double(STEPS));
    if (step == run->step) return;
    run->step = step;
    const uint64_t columns = run->display.mode == PROGRESS_BAR ? platformTerminalColumns() : 0;
    const std::string name = "extracting track " + std::to_string(run->number);
    const std::string text = progressWork(&run->display, name, uint32_t(STEPS), uint32_t(step), columns);
    if (!text.empty()) platformPrintError(text);
}

// The library calls it, so nothing may be thrown: what can't be shown is not shown.
static void onProgress(uint64_t, uint64_t, uint64_t done, const char*, uint64_t user)
{
    ExtractRun* run = reinterpret_cast<ExtractRun*>(user);
    run->nextSector = done + 1;
    try {
        showProgress(run, done);
    } catch (const std::exception&) {
        run->display.mode = PROGRESS_NONE;
    }
    if (!run->context || !isInterrupted()) return;
    (void)d2wReleaseContext(run->context);   // ends the extraction
    run->context = nullptr;
}

/** Gives a whole track's files their names. A track that can't have all of them has none. */
static FileFault publish(ExtractRun* run, fs::path* file)
{
    const size_t before = run->made.size();
    for (const std::string& name : namesOf(*run, run->number)) {
        std::error_code error, ignored;
        *file = run->options->out / name;
        std::string why = takenWhy(*file, run->options->force);
        if (why.empty()) fs::rename(run->folder / name, *file, error);
        if (error) why = " can't be made: " + error.message();
        if (why.empty()) {
            run->made.push_back(*file);
            continue;
        }
        for (size_t i = before; i < run->made.size(); i++) fs::remove(run->made[i], ignored);
        run->made.resize(before);
        return { 0, "the file" + why };
    }
    return {};
}

/** Whether a track's files, the last that were made, hold nothing but their headers. */
static bool isEmpty(const ExtractRun& run, size_t before)
{
    return std::all_of(run.made.begin() + std::ptrdiff_t(before), run.made.end(),
                       [](const fs::path& file) { return fileBytes(file) <= WAVE_HEADER_BYTES; });
}

// A track that can't be read says nothing of the others; an output that can't be written does.
static bool isOfTheDisc(uint64_t code)
{
    return code == CODE_EXTRACT_UNREAD || code == CODE_EXTRACT_NO_PACK;
}

static FileFault trackFailure(const ExtractRun& run, uint64_t code, fs::path* file)
{
    const ExtractTrack& track = run.tracks[run.number - 1];
    if (isOfTheDisc(code))
        return readFault(run.disc, code, track, run.number, track.firstSector + run.nextSector, file);
    *file = run.options->out;
    return { code, "track " + std::to_string(run.number) + " can't be written" };
}

static int reportInterrupt(ExtractRun* run)
{
    platformPrintError(progressEnd(&run->display));
    platformPrintError("error: interrupted; track " + std::to_string(run->number) + " is not made\n");
    return EXIT_INTERRUPTED;
}

/** @return EXIT_DONE if the next track has its turn */
static int extractTrack(ExtractRun* run)
{
    run->nextSector = 0;
    run->step = STEPS + 1;
    const uint64_t code = d2wExtractTrack(run->context, run->number - 1, !run->options->mono, onProgress,
                                          reinterpret_cast<uint64_t>(run));
    if (!run->context) return reportInterrupt(run);
    fs::path file;
    const size_t before = run->made.size();
    if (FileFault fault = code ? trackFailure(*run, code, &file) : publish(run, &file)) {
        platformPrintError(progressEnd(&run->display));
        (void)reportFault(file, fault);
        return isOfTheDisc(code) ? EXIT_DONE : EXIT_RUN_FAILED;
    }
    run->done++;
    if (!isEmpty(*run, before)) return EXIT_DONE;
    platformPrintError(progressEnd(&run->display));
    platformPrintError("warning: track " + std::to_string(run->number) + " has no samples: its packs hold no LPCM\n");
    return EXIT_DONE;
}

static void dropFiles(const ExtractRun& run)
{
    std::error_code ignored;
    for (const std::string& name : namesOf(run, run.number)) fs::remove(run.folder / name, ignored);
}

static int extractTracks(ExtractRun* run)
{
    for (const uint64_t number : run->wanted) {
        const ExtractTrack& track = run->tracks[number - 1];
        run->number = number;
        if (isInterrupted()) return reportInterrupt(run);
        const int failed = extractTrack(run);
        dropFiles(*run);   // of a track that is not whole
        if (failed) return failed;
        run->sectorsBefore += uint64_t(track.lastSector) - track.firstSector + 1;
    }
    platformPrintError(progressEnd(&run->display));
    return EXIT_DONE;
}

// ---- the run ------------------------------------------------------------------------------------------------------

static int extractIntoFolder(ExtractRun* run)
{
    std::error_code error;
    if (const int failed = makeFolder(run->options->out)) return failed;
    if (!fs::create_directory(run->folder, error)) {
        const std::string why = error ? error.message() : "something has taken its name";
        return reportFault(run->folder, { 0, "the folder can't be made: " + why });
    }
    const int failed = extractTracks(run);
    fs::remove(run->folder, error);
    const uint64_t asked = run->wanted.size() + run->refused;
    if (run->done < asked && asked > 1) {
        platformPrintError("error: " + std::to_string(run->done) + " of " + counted(asked, "track") +
                           (run->done == 1 ? " is" : " are") + " extracted\n");
    }
    printMade(*run);
    return failed || run->done == asked ? failed : EXIT_RUN_FAILED;
}

static int extractDisc(ExtractRun* run)
{
    if (!run->options->quiet) printTracks(*run);
    if (const int failed = chooseTracks(run)) return failed;
    if (const int refused = checkOutputs(*run)) return refused;
    warnOfParts(*run);
    return extractIntoFolder(run);
}

int runExtract(const ExtractOptions& options)
{
    watchForInterrupt();
    if (const int refused = checkUsage(options)) return refused;
    ExtractRun run = { .options = &options };
    run.disc = findDisc(options.disc);
    run.folder = freeName(options.out);
    run.display.mode = options.quiet ? PROGRESS_NONE : platformHasTerminal() ? PROGRESS_BAR : PROGRESS_LINES;
    int failed = openDisc(&run);
    if (!failed) failed = extractDisc(&run);
    if (run.context) (void)d2wReleaseContext(run.context);
    return failed;
}
