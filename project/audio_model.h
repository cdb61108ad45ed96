// audio_model.h: what the project file of a DVD-Audio disc says, as records, and the numbers that the stages of a run
// hand on in them. Every record hangs from the run's root: a field that no key set is 0.
#pragma once

#include "project/model.h"

#include <cstdint>

inline constexpr uint64_t MAX_AUDIO_TRACKS = 100;   // of a title set
inline constexpr uint64_t MAX_STILLS = 99;
inline constexpr uint64_t MAX_STILL_ATTRIBUTES = 4;
inline constexpr uint64_t MAX_CHANNELS = 6;   // of a track
inline constexpr uint64_t AUDIO_TEXT = 128;   // characters of a title, with its terminator

struct AudioTrackDesc {
    uint64_t assign;                                // channel assignment, 0..20 (channel_assignment.h)
    uint64_t playTime;                              // 90 kHz ticks; signed where `endsample` lies before `startsample`
    uint64_t trackFlag;                             // 0
    uint64_t channelCount;                          // of both groups together
    uint64_t sampleSize1, sampleRate1, channels1;   // group 1: bits, Hz
    uint64_t sampleSize2, sampleRate2, channels2;   // group 2, as group 1; size and rate 0 for assignments below 2
    uint64_t startSample, endSample;
    uint64_t multiFile;   // 1: the two channels of a stereo track lie in two files
    char16_t title[AUDIO_TEXT];
    char16_t* channelPaths[MAX_CHANNELS];   // WAVE files; the first may be the .nfo file beside a finished AOB

    // Made with the AOB, or read from the .nfo file.
    uint64_t firstCellPts;   // 90 kHz ticks
    uint64_t blockStart;     // first pack, counted from the AOB's first
    uint64_t blockSize;      // packs
    uint64_t sourceSize;     // bytes of the WAVE file
};

struct AudioTitleSetDesc {
    char16_t album[AUDIO_TEXT];
    char16_t artist[AUDIO_TEXT];
    uint64_t isNfo;   // 1: the AOB is finished, as the last track says
    uint64_t trackCount;
    AudioTrackDesc tracks[MAX_AUDIO_TRACKS];
    uint64_t ifoSectors;   // of ATS_nn_0.IFO, once it is written
};

// Attributes of stills, as the table of the stills has them.
struct StillAttributes {
    uint64_t mpegVersion;   // 0: MPEG-1, 1: MPEG-2
    uint64_t isPal;
    uint64_t aspectRatio;   // 0: 4:3, 3: 16:9
    uint64_t displayMode;   // 3
    uint64_t resolution;    // 0: full size, 1: 704 wide, 2: 352 at full height, 3: 352 at half height
    uint64_t videoFlags;    // 3
};

struct AsvsDesc {
    uint64_t attributeCount;   // 1..4
    StillAttributes attributes[MAX_STILL_ATTRIBUTES];
    uint64_t stillCount;
    uint32_t colorTable[PALETTE_ENTRIES];   // orvRgbToYCrCb values
    StillDesc* stills[MAX_STILLS];
};

// Root of a DVD-Audio run.
struct AudioDiscContext {
    RunHead head;
    uint64_t hasAsvs;   // 1: section ASVS has a line
    uint64_t amgMenuCount;
    MenuDesc amgMenus[MAX_MENUS];   // the manager's menus
    AttributeSet amgAttributes;
    AsvsDesc asvs;
    AudioTitleSetDesc* audioTitleSets[MAX_TITLE_SETS];   // entry n - 1 is title set n
    uint64_t amgSectors;                                 // AUDIO_TS.IFO and its backup, once written
};

/** Allocates the root of a run, zero filled but for the standard, which is PAL, with a copy of the log's path (which
    may be null). @return 0 or ORV_NO_AUDIO_CONTEXT */
[[nodiscard]] uint64_t orvCreateAudioContext(const char16_t* logFilePath, OrvProgress progress, uint64_t progressUser,
                                             AudioDiscContext** out);
/** Frees a root and all that hangs from it; harmless on a null root. */
void orvFreeAudioContext(AudioDiscContext** context);
/** Frees one still and its paths; harmless on a null still. */
void orvFreeStill(StillDesc** still);
