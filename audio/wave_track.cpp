// wave_track.cpp: reads the WAVE files of a track into the packs of an AOB.

#include "audio/wave_track.h"

#include "audio/sample_units.h"
#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "project/audio_progress.h"
#include "project/channel_assignment.h"

#include <algorithm>
#include <cstring>

constexpr uint64_t STEREO_BYTES = 2048;    // of one pack's samples, both channels
constexpr uint64_t CHANNEL_BYTES = 1024;   // of one pack's samples, one channel

// The sources of one track: a stereo file, or a mono file for each channel.
struct WaveTrack {
    const AudioDiscContext* context;
    AudioTitleSetDesc* titleSet;
    AudioTrackDesc* track;
    uint64_t trackIndex, atsNumber;
    OSFILE files[MAX_CHANNELS];
    uint64_t fileCount;
    uint64_t frameBytes;   // bytes of one sample time in a file
};

// ---- opening
// ---------------------------------------------------------------------------------------------------------

/** Whether the next four bytes of a file are these. */
static bool nextIs(OSFILE file, const char* id)
{
    uint8_t bytes[4];
    return osReadFile(file, bytes, sizeof(bytes)) == 0 && std::memcmp(bytes, id, sizeof(bytes)) == 0;
}

static bool skipChunk(OSFILE file, uint32_t sizeBits)
{
    uint8_t size[4];
    if (osReadFile(file, size, sizeof(size))) return false;
    return osSeekFile(file, int64_t(orvGetLittle32(size) & sizeBits), OS_FROM_CURRENT) == 0;
}

/** Finds the samples: the file is positioned at the first of them. */
static uint64_t readWaveHeader(OSFILE file)
{
    constexpr uint32_t FORMAT_SIZE_BITS = 0x00FFFFFF;   // of its chunk's size the low three bytes count
    constexpr uint32_t ALL_BITS = 0xFFFFFFFF;
    constexpr uint64_t SIZE_BYTES = 4;
    constexpr uint64_t MOST_CHUNKS = 65536;   // a file of more is no sound, but an attempt at our patience
    if (!nextIs(file, "RIFF") || osSeekFile(file, SIZE_BYTES, OS_FROM_CURRENT)) return ORV_WRONG_WAVE;
    if (!nextIs(file, "WAVE") || !nextIs(file, "fmt ")) return ORV_WRONG_WAVE;
    if (!skipChunk(file, FORMAT_SIZE_BITS)) return ORV_WRONG_WAVE;
    for (uint64_t chunk = 0; chunk < MOST_CHUNKS; chunk++) {
        uint8_t id[4];
        if (osReadFile(file, id, sizeof(id))) return ORV_WRONG_WAVE;
        if (std::memcmp(id, "data", sizeof(id)) == 0) {
            return osSeekFile(file, SIZE_BYTES, OS_FROM_CURRENT) ? ORV_WRONG_WAVE : 0;
        }
        if (!skipChunk(file, ALL_BITS)) return ORV_WRONG_WAVE;
    }
    return ORV_WRONG_WAVE;
}

static uint64_t openSource(WaveTrack* wave, uint64_t index)
{
    AudioTrackDesc* track = wave->track;
    OSFILE* file = wave->files + index;
    if (uint64_t error = osOpenFile(track->channelPaths[index], OS_READ, file)) return error;
    if (uint64_t error = readWaveHeader(*file)) return error;
    if (uint64_t error = osFileSize(*file, &track->sourceSize)) return error;
    return osSeekFile(*file, int64_t(track->startSample * wave->frameBytes), OS_FROM_CURRENT);
}

static void closeSources(WaveTrack* wave)
{
    for (OSFILE& file : wave->files) (void)osCloseFile(&file);
}

static uint64_t openSources(WaveTrack* wave)
{
    const AudioTrackDesc* track = wave->track;
    const bool stereoFile = track->channelCount == 2 && track->multiFile != 1;
    wave->fileCount = stereoFile ? 1 : track->channelCount;
    wave->frameBytes = track->sampleSize1 / 8 * (stereoFile ? 2 : 1);
    for (uint64_t i = 0; i < wave->fileCount; i++) {
        if (uint64_t error = openSource(wave, i)) return error;
    }
    return 0;
}

// ---- reading
// ---------------------------------------------------------------------------------------------------------

/** Bytes that may still be taken, of all channels. */
static uint64_t bytesLeft(const WaveTrack* wave)
{
    const AudioTrackDesc* track = wave->track;
    uint64_t position = 0;
    if (osTellFile(wave->files[0], &position)) return 0;
    // Meant: `endsample` is added to what the file has left, it does not limit it. Test: WaveTrack.BytesOfAShortFile
    const int64_t left = int64_t((track->endSample + 1) * wave->frameBytes + track->sourceSize - position);
    return left > 0 ? uint64_t(left) * wave->fileCount : 0;
}

/** Samples of a stereo file, each channel by itself. */
static void splitStereo(const uint8_t* both, uint64_t samples, uint64_t sampleBytes, uint8_t (*channels)[CHANNEL_BYTES])
{
    for (uint64_t i = 0; i < samples; i++) {
        for (uint64_t c = 0; c < 2; c++, both += sampleBytes) {
            osCopyMem(channels[c] + i * sampleBytes, both, sampleBytes);
        }
    }
}

/** Reads samples of all channels. What a file does not give any more stays 0. */
static void readChannels(const WaveTrack* wave, uint64_t samples, uint8_t (*channels)[CHANNEL_BYTES])
{
    const uint64_t bytes = samples * wave->frameBytes;
    uint64_t got = 0;
    if (wave->fileCount == 1) {
        uint8_t both[STEREO_BYTES] = {};
        (void)osReadFileSome(wave->files[0], both, bytes, &got);
        splitStereo(both, samples, wave->track->sampleSize1 / 8, channels);
        return;
    }
    for (uint64_t c = 0; c < wave->fileCount; c++) {
        (void)osReadFileSome(wave->files[c], channels[c], bytes, &got);
    }
}

static uint64_t fillFromWave(void* source, uint8_t* to, uint64_t room, AobFill* fill)
{
    const WaveTrack* wave = static_cast<WaveTrack*>(source);
    const AudioTrackDesc* track = wave->track;
    const uint64_t take = std::min(bytesLeft(wave), room);
    const uint64_t samples = take / (wave->frameBytes * wave->fileCount);
    uint8_t bytes[MAX_CHANNELS][CHANNEL_BYTES] = {};
    readChannels(wave, samples, bytes);
    const uint8_t* channels[MAX_CHANNELS];
    for (uint64_t c = 0; c < MAX_CHANNELS; c++) channels[c] = bytes[c];
    const uint64_t assign = track->channelCount == 2 ? ASSIGN_STEREO : track->assign;
    fill->bytes = orvPackSamples(assign, track->sampleSize1, channels, samples, to, room);
    // Meant: a source ends with its first pack, however long its file is; a whole track is made by the multiplexer for
    // hosts. Test: WaveTrack.EndsWithItsFirstPack
    fill->ended = true;
    return 0;
}

static uint64_t reportPack(void* source)
{
    const WaveTrack* wave = static_cast<WaveTrack*>(source);
    const uint64_t percent = PROGRESS_ALL * (wave->trackIndex + 1) / wave->titleSet->trackCount;
    return orvReportAudioProgress(wave->context, PROGRESS_AOB, percent, wave->atsNumber) ? ORV_CANCELED : 0;
}

static uint64_t waitForRoom(uint64_t clock, uint64_t decoded)
{
    // Meant: a decoder behind the clock gives a step that wraps and is cut to the largest signed number.
    // Test: WaveTrack.WaitsForTheDecoder
    return clock + CLOCK_PER_PACK + std::min(decoded * CLOCK_PER_TICK - clock, uint64_t(INT64_MAX));
}

uint64_t orvMuxWaveTrack(const AudioDiscContext* context, OSFILE aob, AudioTitleSetDesc* titleSet, uint64_t trackIndex,
                         uint64_t atsNumber, AobClock* clock)
{
    if (!aob) return ORV_WRONG_AOB_FILE;
    AudioTrackDesc* track = titleSet->tracks + trackIndex;
    WaveTrack wave = {};
    wave.context = context;
    wave.titleSet = titleSet;
    wave.track = track;
    wave.trackIndex = trackIndex;
    wave.atsNumber = atsNumber;
    uint64_t result = openSources(&wave);
    const AobSource source = { &wave, fillFromWave, reportPack, false, waitForRoom };
    if (!result) result = orvMuxAobPacks(&source, aob, track, clock);
    closeSources(&wave);
    return result;
}
