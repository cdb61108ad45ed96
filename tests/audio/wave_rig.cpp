// wave_rig.cpp: context, title set and files of a direct track.
#include "tests/audio/wave_rig.h"

#include "audio/wave_track.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

struct Progress {
    std::vector<ProgressCall> calls;
    uint64_t cancelAt;
};

}   // namespace

static uint32_t note(uint32_t total, uint32_t done, uint32_t kind, uint64_t user)
{
    Progress* const progress = reinterpret_cast<Progress*>(user);
    progress->calls.push_back({ total, done, kind });
    return progress->calls.size() == progress->cancelAt ? 7 : 0;
}

uint64_t WaveRun::packs() const
{
    return aob.size() / PACK_BYTES;
}

std::string WaveRun::hexAt(uint64_t pack, uint64_t at, uint64_t count) const
{
    return packHex(aob, pack, at, count);
}

ModelWave waveOf(const ModelTrack& track, const Channels& channels, bool oneFile)
{
    ModelWave wave = { .track = track, .endSample = channels[0].size() - 1, .multiFile = oneFile ? 0u : 1u };
    if (oneFile) {
        wave.files.push_back(waveFile(channels, track.bits, track.rate));
    } else {
        for (const std::vector<int32_t>& channel : channels)
            wave.files.push_back(waveFile({ channel }, track.bits, track.rate));
    }
    return wave;
}

WaveRun runWaves(const std::vector<ModelWave>& tracks, const WaveOptions& options)
{
    const TempDir folder;
    Progress progress = { {}, options.cancelAt };
    const auto context = std::make_unique<AudioDiscContext>();
    context->head.titleSetCount = options.titleSets;
    context->head.progressCallback = options.noCallback ? nullptr : note;
    context->head.progressUser = reinterpret_cast<uint64_t>(&progress);
    const auto titleSet = std::make_unique<AudioTitleSetDesc>();
    titleSet->trackCount = tracks.size();

    std::vector<std::u16string> paths;
    paths.reserve(tracks.size() * MAX_CHANNELS);   // the records point into them
    for (size_t i = 0; i < tracks.size(); i++) {
        AudioTrackDesc& track = titleSet->tracks[i];
        const ModelTrack& format = tracks[i].track;
        track = trackRecord(format.channels, format.assignment, format.bits, format.rate);
        track.startSample = tracks[i].startSample;
        track.endSample = tracks[i].endSample;
        track.multiFile = tracks[i].multiFile;
        for (size_t file = 0; file < tracks[i].files.size(); file++) {
            paths.push_back(folder / toWide("t" + std::to_string(i) + "c" + std::to_string(file) + ".wav"));
            writeFile(paths.back(), tracks[i].files[file]);
            track.channelPaths[file] = paths.back().data();
        }
    }

    WaveRun run;
    AobClock clock = clockOf(options.clock);
    const std::u16string path = folder / u"ATS.AOB";
    OSFILE aob = 0;
    writeFile(path, "");
    if (!options.noFile) {
        EXPECT_EQ(osOpenFile(path.c_str(), options.readOnly ? OS_READ : OS_CREATE, &aob), 0u);
    }
    for (size_t i = 0; i < tracks.size() && !run.result; i++) {
        run.result = orvMuxWaveTrack(context.get(), aob, titleSet.get(), i, options.atsNumber, &clock);
        const AudioTrackDesc& track = titleSet->tracks[i];
        if (!run.result) run.tracks.push_back({ track.firstCellPts, track.blockSize, track.sourceSize });
    }
    run.clock = stateOf(clock);
    (void)osCloseFile(&aob);
    run.aob = readFile(path);
    run.progress = progress.calls;
    // All sources are closed again: Windows would refuse this otherwise.
    for (const std::u16string& source : paths) EXPECT_TRUE(std::filesystem::remove(source));
    return run;
}
