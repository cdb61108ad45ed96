// audio_title_set.cpp: reads the section of an audio title set and those of its tracks.
#include "base/result.h"
#include "base/time_code.h"
#include "project/audio_reader.h"
#include "project/channel_assignment.h"
#include "project/values.h"

#include <algorithm>

namespace {

constexpr uint64_t SAMPLE_SIZES[] = { 16, 20, 24 };
constexpr uint64_t SAMPLE_RATES[] = { 44100, 48000, 88200, 96000, 176400, 192000 };

template <uint64_t N> bool isOneOf(const uint64_t (&values)[N], uint64_t value)
{
    return std::find(values, values + N, value) != values + N;
}

// Meant: four characters pass whatever they are, and nothing else does. Test: AudioTitleSet.FormatIsFourCharacters
uint64_t checkFormat(const Section& section)
{
    char16_t value[64];
    return orvReadBounded(section, u"format", value) == 4 ? 0 : ORV_WRONG_AUDIO_FORMAT;
}

uint64_t readChannels(const Section& section, AudioTrackDesc* track)
{
    // Meant: an `assign` of 0 is no `assign`; mono is asked for by `channels`. Test: AudioTitleSet.AssignOrChannels
    if (const uint64_t assign = orvReadInt(section, u"assign")) return orvSetChannels(track, assign);
    switch (orvReadInt(section, u"channels")) {
    case 1: return orvSetChannels(track, ASSIGN_MONO);
    case 2: return orvSetChannels(track, ASSIGN_STEREO);
    case 6: return orvSetChannels(track, ASSIGN_SIX);
    default: return ORV_WRONG_CHANNEL_COUNT;
    }
}

uint64_t readSampling(const Section& section, AudioTrackDesc* track)
{
    const uint64_t size = orvReadInt(section, u"samplesize"), rate = orvReadInt(section, u"samplerate");
    if (!isOneOf(SAMPLE_SIZES, size)) return ORV_WRONG_SAMPLE_SIZE;
    if (!isOneOf(SAMPLE_RATES, rate)) return ORV_WRONG_SAMPLE_RATE;
    orvSetSampling(track, size, rate);
    return 0;
}

uint64_t readPlayTime(const Section& section, AudioTrackDesc* track)
{
    track->trackFlag = 0;
    track->playTime = orvReadInt(section, u"playtime");
    if (track->playTime) return 0;
    if (track->endSample == 0) return ORV_NO_PLAY_TIME;
    const int64_t samples = int64_t(track->endSample) - int64_t(track->startSample);
    track->playTime = uint64_t(samples * int64_t(TICKS_PER_SECOND) / int64_t(track->sampleRate1));
    return 0;
}

bool endsInAob(const char16_t* path)
{
    constexpr uint64_t EXTENSION = 3;
    const uint64_t length = osStrLength(path);
    return length >= EXTENSION && osStrEqualNoCase(path + (length - EXTENSION), u"AOB");
}

/** The path of a finished AOB becomes that of the information file beside it. */
uint64_t nameInfoFile(char16_t** path, uint64_t titleSetNumber)
{
    const NumberedName name = orvNumberedName(u"ATS_%.2d.nfo", titleSetNumber);
    const uint64_t nameLength = osStrLength(name.text), separator = osLastSeparator(*path);
    const uint64_t directory = separator == osStrLength(*path) ? 0 : separator + 1;   // without one, all is the name
    char16_t* infoPath = nullptr;
    if (const uint64_t error = osStrAlloc(directory + nameLength, nullptr, &infoPath)) return error;
    std::copy_n(*path, directory, infoPath);
    std::copy_n(name.text, nameLength, infoPath + directory);
    osStrFree(path);
    *path = infoPath;
    return 0;
}

uint64_t readSources(const Section& section, uint64_t titleSetNumber, AudioTitleSetDesc* titleSet,
                     AudioTrackDesc* track)
{
    char16_t** const paths = track->channelPaths;
    for (uint64_t c = 0; c < track->channelCount; c++) {
        if (const uint64_t error = orvReadPath(section, orvNumberedName(u"channel%01ld", c + 1).text, &paths[c])) {
            return error;
        }
    }
    // Meant: each track writes it, so that the last one decides for all. Test: AudioTitleSet.LastTrackDecidesIsNfo
    titleSet->isNfo = endsInAob(paths[0]);
    if (titleSet->isNfo) {
        if (const uint64_t error = nameInfoFile(&paths[0], titleSetNumber)) return error;
    }
    track->multiFile =
        track->assign == ASSIGN_STEREO && osStrLength(paths[1]) > 0 && !osStrEqualNoCase(paths[0], paths[1]);
    return 0;
}

uint64_t readTrack(const Section& section, uint64_t titleSetNumber, AudioTitleSetDesc* titleSet, AudioTrackDesc* track)
{
    (void)orvReadBounded(section, u"title", track->title);
    track->startSample = orvReadInt(section, u"startsample");
    track->endSample = orvReadInt(section, u"endsample");
    if (const uint64_t error = checkFormat(section)) return error;
    if (const uint64_t error = readChannels(section, track)) return error;
    if (const uint64_t error = readSampling(section, track)) return error;
    if (const uint64_t error = readPlayTime(section, track)) return error;
    return readSources(section, titleSetNumber, titleSet, track);
}

}   // namespace

uint64_t orvSetChannels(AudioTrackDesc* track, uint64_t assign)
{
    if (assign >= CHANNEL_ASSIGNMENTS) return ORV_INVALID_ASSIGNMENT;
    track->assign = assign;
    track->channels1 = CHANNEL_GROUPS[assign].first;
    track->channels2 = CHANNEL_GROUPS[assign].second;
    track->channelCount = track->channels1 + track->channels2;
    return 0;
}

void orvSetSampling(AudioTrackDesc* track, uint64_t sampleSize, uint64_t sampleRate)
{
    const bool twoGroups = track->assign >= FIRST_ASSIGN_OF_TWO_GROUPS;
    track->sampleSize1 = sampleSize;
    track->sampleRate1 = sampleRate;
    track->sampleSize2 = twoGroups ? sampleSize : 0;
    track->sampleRate2 = twoGroups ? sampleRate : 0;
}

uint64_t orvReadAudioTitleSet(const RunHead* run, const OsProfile* file, uint64_t number, AudioTitleSetDesc* titleSet)
{
    const NumberedName name = orvNumberedName(u"ATS_%02ld", number);
    const Section section = { run, file, name.text };
    (void)orvReadBounded(section, u"album", titleSet->album);
    (void)orvReadBounded(section, u"artist", titleSet->artist);
    titleSet->trackCount = orvReadInt(section, u"tracks");
    if (titleSet->trackCount > MAX_AUDIO_TRACKS) return ORV_TOO_MANY_TRACKS;
    for (uint64_t i = 1; i <= titleSet->trackCount; i++) {
        const NumberedName track = orvNumberedName(u"TRACK_%02ld_%02ld", number, i);
        if (const uint64_t error = readTrack({ run, file, track.text }, number, titleSet, &titleSet->tracks[i - 1])) {
            return error;
        }
    }
    return 0;
}
