// title_set_stage.cpp: makes one audio title set: its AOB, unless that is finished, and its tables.

#include "audio/audio_ifo.h"
#include "audio/stage_files.h"
#include "audio/stages.h"
#include "audio/track_info.h"
#include "audio/wave_track.h"
#include "base/result.h"
#include "base/strings.h"
#include "project/audio_progress.h"

// A title set on its way to the disc.
struct TitleSetRun {
    AudioDiscContext* context;
    AudioTitleSetDesc* titleSet;
    uint64_t number;
};

/** Each track begins where the one before ends. */
static void layTracks(AudioTitleSetDesc* titleSet)
{
    uint64_t block = 0;
    for (uint64_t i = 0; i < titleSet->trackCount; i++) {
        titleSet->tracks[i].blockStart = block;
        block += titleSet->tracks[i].blockSize;
    }
}

static uint64_t muxTracks(const TitleSetRun* run, OSFILE aob)
{
    AobClock clock = {};
    for (uint64_t i = 0; i < run->titleSet->trackCount; i++) {
        if (uint64_t error = orvMuxWaveTrack(run->context, aob, run->titleSet, i, run->number, &clock)) return error;
    }
    return orvReportStage(run->context, PROGRESS_AOB, PROGRESS_ALL, run->number);
}

static uint64_t makeAob(const TitleSetRun* run, const char16_t* targetPath)
{
    char16_t* path = nullptr;
    OSFILE aob = 0;
    uint64_t result = osFormPath(&path, u"%sATS_%.2d_1.AOB", targetPath, run->number);
    // Meant: an AOB that can't be made is found by the first track. Test: AudioTarget.AobThatCannotBeMade
    if (!result) (void)osOpenFile(path, OS_CREATE, &aob);
    (void)osStrFree(&path);
    if (result == OS_OUT_OF_MEMORY) return result;
    result = muxTracks(run, aob);
    if (osCloseFile(&aob) && !result) result = ORV_AOB_NOT_WRITTEN;
    return result;
}

/** The information file stands in the place of each track's first source. */
static uint64_t readInfo(const TitleSetRun* run)
{
    for (uint64_t i = 0; i < run->titleSet->trackCount; i++) {
        AudioTrackDesc* track = run->titleSet->tracks + i;
        if (uint64_t error = orvReadTrackInfo(track->channelPaths[0], i + 1, track)) return error;
    }
    return 0;
}

static uint64_t writeIfo(void* from, const char16_t* path)
{
    const TitleSetRun* run = static_cast<TitleSetRun*>(from);
    return orvWriteAtsIfo(run->context, run->number, path);
}

uint64_t CreateAudioTitleSet(AudioDiscContext* context, uint64_t atsNumber, const char16_t* targetPath)
{
    if (atsNumber < 1 || atsNumber > MAX_TITLE_SETS) return ORV_WRONG_ATS_COUNT;
    TitleSetRun run = { context, context->audioTitleSets[atsNumber - 1], atsNumber };
    if (uint64_t error = run.titleSet->isNfo ? readInfo(&run) : makeAob(&run, targetPath)) return error;
    layTracks(run.titleSet);
    const IfoFiles files = { u"%sATS_%.2d_0.IFO",     u"%sATS_%.2d_0.BUP", atsNumber,
                             ORV_ATS_IFO_NOT_CREATED, PROGRESS_ATS_IFO,    PROGRESS_ATS_BACKUP };
    return orvWriteIfoAndBackup(context, targetPath, &files, &run, writeIfo);
}
