// aob_muxer.cpp: the AOB multiplexer for hosts: asks for samples channel by channel, and leaves beside the AOB the
// numbers that the tables of the disc need.

#include "audio/aob_packs.h"
#include "audio/sample_units.h"
#include "audio/track_info.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/wide.h"
#include "project/audio_reader.h"

#include <orven/aob.h>

constexpr uint64_t MAX_AOB_TRACKS = 99;
constexpr uint64_t CHANNEL_BYTES = 1024;   // the largest payload of a stereo pack is 2004
constexpr uint64_t TOO_MANY_SAMPLES = 1001;

struct AobMuxer {
    uint64_t trackCount;
    AobTrackDesc tracks[MAX_AOB_TRACKS];
    OrvSamples samples;
    uint64_t user;
    OSFILE aob;
    uint8_t channels[MAX_CHANNELS][CHANNEL_BYTES];   // samples of one pack
    char16_t* infoPath;                              // of the .nfo file
};

// ---- samples
// ---------------------------------------------------------------------------------------------------------

// The source of one track.
struct CallbackTrack {
    AobMuxer* muxer;
    uint64_t index;
    const AudioTrackDesc* track;
};

/** Asks for all channels of a pack. A channel that gives less than the one before sets the count for the pack. */
static uint64_t askChannels(const CallbackTrack* from, uint64_t* samples, bool* ended)
{
    AobMuxer* muxer = from->muxer;
    for (uint64_t channel = 0; channel < from->track->channelCount; channel++) {
        uint64_t given = 0;
        // Meant: the low 32 bits alone are the callback's result. Test: AobMuxer.AbortValueIsCutTo32Bits
        const uint64_t result =
            uint32_t(muxer->samples(from->index, muxer->channels[channel], *samples, channel, &given, muxer->user));
        if (result != ORV_AOB_MORE && result != ORV_AOB_END) return result;
        if (given > *samples) return TOO_MANY_SAMPLES;
        *samples = given;
        if (result == ORV_AOB_END) *ended = true;
    }
    return 0;
}

static uint64_t orvFillAobPayload(void* source, uint8_t* to, uint64_t room, AobFill* fill)
{
    const CallbackTrack* from = static_cast<CallbackTrack*>(source);
    const AudioTrackDesc* track = from->track;
    uint64_t samples = room / (track->sampleSize1 / 8 * track->channelCount);
    if (uint64_t error = askChannels(from, &samples, &fill->ended)) return error;
    const uint8_t* channels[MAX_CHANNELS];
    for (uint64_t channel = 0; channel < MAX_CHANNELS; channel++) channels[channel] = from->muxer->channels[channel];
    fill->bytes = orvPackSamples(track->assign, track->sampleSize1, channels, samples, to, room);
    return 0;
}

static uint64_t waitForRoom(uint64_t, uint64_t decoded)
{
    return decoded * CLOCK_PER_TICK + CLOCK_PER_PACK;
}

static uint64_t orvMuxAobTrack(AobMuxer* muxer, uint64_t trackIndex, AudioTrackDesc* track, AobClock* clock)
{
    CallbackTrack from = { muxer, trackIndex, track };
    const AobSource source = { &from, orvFillAobPayload, nullptr, true, waitForRoom };
    return orvMuxAobPacks(&source, muxer->aob, track, clock);
}

static uint64_t muxTrack(AobMuxer* muxer, uint64_t index, AobClock* clock)
{
    const AobTrackDesc* given = muxer->tracks + index;
    AudioTrackDesc track = {};
    if (uint64_t error = orvSetChannels(&track, given->assignment)) return error;
    track.channelCount = given->channelCount;   // the packs go by it, whatever the assignment says
    orvSetSampling(&track, given->sampleSize, given->sampleRate);
    if (uint64_t error = orvMuxAobTrack(muxer, index, &track, clock)) return error;
    return orvWriteTrackInfo(muxer->infoPath, index + 1, &track);
}

// ---- the exported calls
// ----------------------------------------------------------------------------------------------

/** The directory of an AOB as an object of its own, with its trailing separator. */
static uint64_t formDirectory(const char16_t* path, char16_t** directory)
{
    if (uint64_t error = path ? osStrDup(path, directory) : osGetDefaultDirectory(directory)) return error;
    return osAddBackslash(directory);
}

static uint64_t openFiles(AobMuxer* muxer, const char16_t* directory, uint64_t atsNumber)
{
    char16_t* aobPath = nullptr;
    uint64_t result = osFormPath(&muxer->infoPath, u"%sATS_%.2d.nfo", directory, atsNumber);
    if (!result) result = osFormPath(&aobPath, u"%sATS_%.2d_1.AOB", directory, atsNumber);
    if (!result) result = osOpenFile(aobPath, OS_CREATE, &muxer->aob);
    (void)osStrFree(&aobPath);
    return result;
}

static uint64_t createMuxer(const char16_t* path, uint64_t atsNumber, AobMuxer* muxer)
{
    char16_t* directory = nullptr;
    uint64_t result = formDirectory(path, &directory);
    if (!result) result = openFiles(muxer, directory, atsNumber);
    (void)osStrFree(&directory);
    return result;
}

extern "C" uint64_t aobCreateMuxerW(const OrvWChar* path, uint64_t atsNumber, uint64_t trackCount,
                                    const AobTrackDesc* tracks, OrvSamples samples, uint64_t user, AobMuxer** out)
{
    if (!out) return ORV_INVALID_ARGUMENT;
    *out = nullptr;
    if (trackCount < 1 || trackCount > MAX_AOB_TRACKS) return ORV_TOO_MANY_TRACKS;
    if (!tracks || !samples) return ORV_INVALID_ARGUMENT;
    AobMuxer* muxer = nullptr;
    if (uint64_t error = osAllocMem(sizeof(AobMuxer), &muxer)) return error;
    muxer->trackCount = trackCount;
    osCopyMem(muxer->tracks, tracks, trackCount * sizeof(AobTrackDesc));
    muxer->samples = samples;
    muxer->user = user;
    if (uint64_t error = createMuxer(orvText(path), atsNumber, muxer)) {
        (void)aobReleaseMuxer(muxer);
        return error;
    }
    *out = muxer;
    return 0;
}

extern "C" uint64_t aobCreateMuxer(const char* path, uint64_t atsNumber, uint64_t trackCount,
                                   const AobTrackDesc* tracks, OrvSamples samples, uint64_t user, AobMuxer** out)
{
    if (!out) return ORV_INVALID_ARGUMENT;
    *out = nullptr;
    char16_t* wide = nullptr;
    if (path) {
        if (uint64_t error = osAnsiToWide(&wide, path, nullptr)) return error;
    }
    const uint64_t result = aobCreateMuxerW(orvHostText(wide), atsNumber, trackCount, tracks, samples, user, out);
    (void)osStrFree(&wide);
    return result;
}

extern "C" uint64_t aobStartMuxing(AobMuxer* handle)
{
    if (!handle) return ORV_INVALID_ARGUMENT;
    AobClock clock = {};
    for (uint64_t index = 0; index < handle->trackCount; index++) {
        if (uint64_t error = muxTrack(handle, index, &clock)) return error;
    }
    return 0;
}

extern "C" uint64_t aobReleaseMuxer(AobMuxer* handle)
{
    if (!handle) return ORV_INVALID_ARGUMENT;
    (void)osStrFree(&handle->infoPath);
    (void)osCloseFile(&handle->aob);
    (void)osFreeMem(&handle);
    return 0;
}
