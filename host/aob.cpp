// aob.cpp: the command `aob`: RIFF/WAVE files become ATS_nn_1.AOB, and what a project needs to name it.
#include "aob.h"

#include "audio_project.h"
#include "cli.h"
#include "codes.h"
#include "explain.h"
#include "interrupt.h"
#include "named_file.h"
#include "platform.h"
#include "progress.h"
#include "report.h"
#include "source_track.h"
#include "text.h"

#include <cstdio>

namespace fs = std::filesystem;

static constexpr uint64_t MOST_AOB_BYTES = 1 << 30;   // of a file on a disc

struct AobRun {
    const AobOptions* options;
    fs::path folder = {}, aob = {}, info = {};   // absolute
    std::vector<SourceTrack> tracks = {};
    SourceFeed feed = {};
    ProgressDisplay display = {};
    uint64_t step = UINT64_MAX;        // of progress, shown last
    std::vector<fs::path> made = {};   // by this run; what lies within a folder stands before it
};

// ---- failures -----------------------------------------------------------------------------------------------------

static int reportTrack(size_t number, const TrackFault& found)
{
    return reportFault(found.path, { found.fault.code, "track " + std::to_string(number) + ": " + found.fault.why });
}

/** Removes what a failed run has made: half a title set looks like a whole one. */
static void removeMade(AobRun* run)
{
    std::error_code error;
    run->feed.files.clear();
    for (const fs::path& path : run->made) fs::remove(path, error);
}

// ---- before the run -----------------------------------------------------------------------------------------------

static int checkInput(const AobRun& run, const fs::path& path)
{
    std::error_code error;
    if (const std::string why = notReadableWhy(path); !why.empty()) return refuse(printablePath(path) + ": " + why);
    for (const fs::path& out : { run.aob, run.info }) {
        if (fs::equivalent(path, out, error))
            return refuse("the output " + printablePath(out) + " is one of the inputs");
    }
    return EXIT_DONE;
}

static int checkTracks(AobRun* run)
{
    if (run->options->tracks.size() > MOST_AOB_TRACKS) {
        return refuse("a title set has at most 99 tracks, and these are " +
                      std::to_string(run->options->tracks.size()));
    }
    for (const std::string& joined : run->options->tracks) {
        SourceTrack& track = run->tracks.emplace_back();
        for (const fs::path& path : trackFiles(joined)) {
            if (const int refused = checkInput(*run, path)) return refused;
            track.files.push_back({ path });
        }
        if (isTrackFileCount(track.files.size())) continue;
        return refuse("track " + std::to_string(run->tracks.size()) + " joins " + std::to_string(track.files.size()) +
                      " files; a track has one, or a mono file for each of 2, 4, 5 or 6 channels");
    }
    return EXIT_DONE;
}

/** Only files are written over: a link could lead to one that the user has not named. */
static int checkOutput(const fs::path& path)
{
    std::error_code error;
    const fs::file_status there = fs::symlink_status(path, error);
    if (!fs::exists(there) || fs::is_regular_file(there)) return EXIT_DONE;
    return refuse("the output " + printablePath(path) + " is there and is no plain file");
}

static int checkProjectFile(const AobRun& run)
{
    std::error_code error;
    const fs::path& project = run.options->project;
    if (project.empty()) return EXIT_DONE;
    if (run.options->titleSet != 1) {
        return refuse("--project writes a project whose only title set is number 1; without it the lines are printed "
                      "that a project needs for another one");
    }
    if (fs::exists(fs::symlink_status(project, error))) {
        return refuse("the project " + printablePath(project) + " is there already; it is not written over");
    }
    const fs::path whole = fs::absolute(project).lexically_normal();
    if (whole == run.aob.lexically_normal() || whole == run.info.lexically_normal())
        return refuse("the project can't have the name of the sound");
    return EXIT_DONE;
}

static int checkUsage(AobRun* run)
{
    std::error_code error;
    const fs::path& target = run->options->target;
    if (fs::exists(target, error) && !fs::is_directory(target, error)) {
        return refuse("the target " + printablePath(target) + " is a file; the disc needs a folder");
    }
    if (!isProjectPath(run->folder)) {
        return refuse("the target " + printablePath(run->folder) + " has a name that a project can't hold");
    }
    if (const int refused = checkTracks(run)) return refused;
    for (const fs::path& out : { run->aob, run->info }) {
        if (const int refused = checkOutput(out)) return refused;
    }
    return checkProjectFile(*run);
}

static int readTracks(AobRun* run)
{
    for (size_t i = 0; i < run->tracks.size(); i++) {
        if (TrackFault found = readSourceTrack(&run->tracks[i])) return reportTrack(i + 1, found);
    }
    size_t number = 0;
    if (TrackFault found = checkTitleSet(run->tracks, &number)) return reportTrack(number, found);
    return EXIT_DONE;
}

// ---- the run ------------------------------------------------------------------------------------------------------

static void showProgress(AobRun* run)
{
    constexpr uint64_t STEPS = 1000;
    const uint64_t total = bytesOfTracks(run->tracks);
    const uint64_t step = uint64_t(double(run->feed.delivered) / double(total) * double(STEPS));
    if (step == run->step) return;
    run->step = step;
    const uint64_t columns = run->display.mode == PROGRESS_BAR ? platformTerminalColumns() : 0;
    const std::string text = progressWork(&run->display, "multiplexing", uint32_t(STEPS), uint32_t(step), columns);
    if (!text.empty()) platformPrintError(text);
}

static uint64_t onSamples(uint64_t track, uint8_t* buffer, uint64_t sampleCount, uint64_t channel, uint64_t* outCount,
                          uint64_t user)
{
    AobRun* run = reinterpret_cast<AobRun*>(user);
    if (isInterrupted()) return CODE_CANCELED;
    const uint64_t result = giveSamples(&run->feed, track, buffer, sampleCount, channel, outCount);
    if (channel == 0) showProgress(run);
    return result;
}

static int reportStop(AobRun* run, uint64_t code)
{
    platformPrintError(progressEnd(&run->display));
    if (code == CODE_CANCELED && isInterrupted()) {
        platformPrintError("error: interrupted; " + printablePath(run->aob) + " is not made\n");
        return EXIT_INTERRUPTED;
    }
    if (run->feed.fault) return reportTrack(run->feed.track + 1, run->feed.fault);
    // Of the system's own numbers only those come up that tell of the list of the tracks.
    if (isPlatformCode(code)) return reportFault(run->info, { code, "the file can't be written" });
    const bool disk = code == CODE_AOB_NOT_WRITTEN;
    return reportFault(run->aob, { code, disk ? "the file can't be written" : "the tracks can't be laid" });
}

/** Numbers of an earlier sound are void as soon as that is written over. */
static int dropOldInfo(AobRun* run)
{
    std::error_code error;
    fs::remove(run->info, error);
    if (!error) return EXIT_DONE;
    return reportFault(run->info, { 0, "the list of an earlier run can't be removed: " + error.message() });
}

static int layTracks(AobRun* run, AobMuxer* muxer)
{
    if (const int failed = dropOldInfo(run)) return failed;
    if (uint64_t error = aobStartMuxing(muxer)) return reportStop(run, error);
    platformPrintError(progressEnd(&run->display));
    return EXIT_DONE;
}

static int multiplex(AobRun* run)
{
    std::vector<AobTrackDesc> tracks;
    for (const SourceTrack& track : run->tracks) tracks.push_back(describeTrack(track));
    AobMuxer* muxer = nullptr;
    const AobRequest request = { run->folder, run->options->titleSet,         tracks.size(), tracks.data(),
                                 onSamples,   reinterpret_cast<uint64_t>(run) };
    if (uint64_t error = platformCreateAob(request, &muxer)) {
        return reportFault(run->aob, { error, "the file can't be made" });
    }
    run->made.insert(run->made.begin(), { run->aob, run->info });
    const int failed = layTracks(run, muxer);
    const uint64_t error = aobReleaseMuxer(muxer);
    if (failed || !error) return failed;
    return reportFault(run->aob, { error, "the file can't be closed" });
}

static int makeTarget(AobRun* run)
{
    std::error_code error;
    for (fs::path path = run->folder.parent_path(); !path.empty() && !fs::exists(path, error);
         path = path.parent_path()) {
        run->made.push_back(path);
    }
    return makeFolder(run->folder.parent_path());
}

static int writeProject(AobRun* run)
{
    const fs::path& project = run->options->project;
    if (project.empty()) return EXIT_DONE;
    std::ofstream out(project, std::ios::binary);
    if (out) run->made.insert(run->made.begin(), project);
    out << audioProjectBytes(run->tracks, run->aob);
    out.close();
    return out ? EXIT_DONE : reportFault(project, { 0, "the file can't be written" });
}

static int makeTitleSet(AobRun* run)
{
    if (const int failed = makeTarget(run)) return failed;
    if (const int failed = writeProject(run)) return failed;
    return multiplex(run);
}

// ---- what there is to say -----------------------------------------------------------------------------------------

static std::string durationText(uint64_t ticks)
{
    constexpr uint64_t HUNDREDTH = TICKS_A_SECOND / 100;
    char text[32];
    const uint64_t hundredths = ticks / HUNDREDTH;
    std::snprintf(text, sizeof text, "%llu:%02llu.%02llu", static_cast<unsigned long long>(hundredths / 6000),
                  static_cast<unsigned long long>(hundredths / 100 % 60),
                  static_cast<unsigned long long>(hundredths % 100));
    return text;
}

static void printTracks(const AobRun& run)
{
    for (size_t i = 0; i < run.tracks.size(); i++) {
        const SourceTrack& track = run.tracks[i];
        std::string names;
        for (const SourceFile& file : track.files) names += (names.empty() ? "" : " + ") + printablePath(file.path);
        const bool mono = track.files.front().wave.format.channels == 1 && track.files.size() == 1;
        platformPrint("track " + std::to_string(i + 1) + ": " + names + ", " + formatText(track) + ", " +
                      durationText(trackTicks(track)) +
                      (mono ? "; the file is mono, both channels get the same samples" : "") + "\n");
    }
}

static void printWarnings(const AobRun& run)
{
    for (const SourceTrack& track : run.tracks) {
        for (const std::string& warning : track.warnings) platformPrintError("warning: " + warning + "\n");
    }
    if (fileBytes(run.aob) > MOST_AOB_BYTES) {
        platformPrintError("warning: " + printablePath(run.aob) +
                           " is larger than 1 GiB, the most that players expect of one file of a disc; divide the "
                           "tracks among several discs\n");
    }
}

static void printResult(const AobRun& run)
{
    const AobOptions& options = *run.options;
    platformPrint("sound written to " + printablePath(run.aob) + ", " + bytesText(fileBytes(run.aob)) + "\n");
    if (options.project.empty()) {
        platformPrint("a project names it by these sections:\n\n" +
                      audioTitleSetText(options.titleSet, run.tracks, run.aob));
    } else {
        platformPrint("project written to " + printablePath(options.project) + "\n");
    }
}

int runAob(const AobOptions& options)
{
    watchForInterrupt();
    AobRun run = { .options = &options };
    const std::string name = utf8Of(audioTitleSetSection(options.titleSet));
    if (options.target.empty()) return refuse("the target has no name");
    run.folder = fs::absolute(options.target).make_preferred() / "";
    run.aob = run.folder / (name + "_1.AOB");
    run.info = run.folder / (name + ".nfo");
    run.feed.tracks = &run.tracks;
    run.display.mode = options.quiet ? PROGRESS_NONE : platformHasTerminal() ? PROGRESS_BAR : PROGRESS_LINES;
    if (const int refused = checkUsage(&run)) return refused;
    if (const int failed = readTracks(&run)) return failed;
    if (!options.quiet) printTracks(run);
    if (const int failed = makeTitleSet(&run)) {
        removeMade(&run);
        return failed;
    }
    printWarnings(run);
    if (!options.quiet) printResult(run);
    return EXIT_DONE;
}
