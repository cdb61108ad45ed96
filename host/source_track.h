// source_track.h: a track of DVD-Audio on its way from RIFF/WAVE files: what they hold, and their samples channel by
// channel.
#pragma once

#include "wave_file.h"

#include <filesystem>
#include <fstream>
#include <orven/aob.h>
#include <string>
#include <string_view>
#include <vector>

inline constexpr size_t MOST_AOB_CHANNELS = 6, MOST_AOB_TRACKS = 99;

// One file of a track: a stereo file, a mono file that gives both channels, or a mono file for one channel.
struct SourceFile {
    std::filesystem::path path;
    WaveSamples wave = {};
};

struct SourceTrack {
    std::vector<SourceFile> files = {};
    // Filled by readSourceTrack.
    uint64_t channels = 0, bits = 0, rate = 0;   // on the disc
    uint64_t sourceSamples = 0;                  // of each channel, in the files
    uint64_t samples = 0;                        // the same on the disc
    std::vector<std::string> warnings = {};
};

// Why a track does not do; path is the file that it is about.
struct TrackFault {
    std::filesystem::path path = {};
    FileFault fault = {};

    explicit operator bool() const
    {
        return bool(fault);
    }
};

/** The files of a track as the user joins them, "L.wav+R.wav". A plus sign within a name is told by the files that are
    there. */
std::vector<std::filesystem::path> trackFiles(const std::string& joined);

/** Whether a track may have so many files. */
bool isTrackFileCount(size_t files);

/** Reads the headers of a track's files, of which only path is filled. */
TrackFault readSourceTrack(SourceTrack* track);

/** Whether tracks follow each other in one title set. number: of the first that does not. */
TrackFault checkTitleSet(const std::vector<SourceTrack>& tracks, size_t* number);

/** Length in 90 kHz ticks, rounded up. */
uint64_t trackTicks(const SourceTrack& track);

AobTrackDesc describeTrack(const SourceTrack& track);

/** "2 channels, 16 bits, 44100 Hz". */
std::string formatText(const SourceTrack& track);

// ---- samples ------------------------------------------------------------------------------------------------------

// The files of the track whose samples are asked for, and those of the pack at hand. Nothing else is in memory.
struct SourceFeed {
    const std::vector<SourceTrack>* tracks = nullptr;
    uint64_t track = UINT64_MAX;   // whose files are open
    std::vector<std::ifstream> files = {};
    std::vector<std::vector<uint8_t>> packs = {};   // of each file
    uint64_t given = 0;                             // samples of each channel, those of the pack at hand too
    uint64_t packSamples = 0;
    uint64_t delivered = 0;   // bytes of all tracks
    TrackFault fault = {};
};

/** An OrvSamples call. @return ORV_AOB_MORE, ORV_AOB_END, or a code; then feed->fault tells why */
uint64_t giveSamples(SourceFeed* feed, uint64_t track, uint8_t* buffer, uint64_t sampleCount, uint64_t channel,
                     uint64_t* outCount);

/** Bytes that the tracks give altogether. */
uint64_t bytesOfTracks(const std::vector<SourceTrack>& tracks);
