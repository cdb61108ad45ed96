// audio_project.h: DVD-Audio discs told by records: the project that describes one, the files that it names, and a
// plain model of the tables and calls that a run of it has to make.
#pragma once

#include "tests/run/menu_project.h"

#include <optional>

// A run of ParseAudioDesc.
struct AudioRun : DiscRun {
    AudioRun()
    {
        audio = true;
    }
};

// ---- discs --------------------------------------------------------------------------------------------------------

struct AudioTrack {
    uint64_t playTime = 90000;   // ticks
    uint64_t firstPts = 0;       // of the information file: ticks
    uint64_t packs = 1;
    uint64_t assign = 1, bits = 16, rate = 48000;
};

enum class Sound {
    FINISHED,   // the tracks name ATS_nn_1.AOB, beside which lies ATS_nn.nfo
    UNKNOWN,    // the same without an information file
    WAVES,      // stereo files of 16 bits and 48 kHz, each of one pack; model: one track at most
};

struct AudioSet {
    std::vector<AudioTrack> tracks = { {} };
    Sound sound = Sound::FINISHED;
    std::string keys = {};   // more of ATS_nn
};

// Of a sub-picture: bytes of its unit above those of an empty one, even. See combsFor.
struct AudioMenu {
    uint64_t units = 0;          // animated, of so many units of two sectors and 12 pictures; 0: a still
    uint64_t stillBytes = 100;   // of a still's background
    uint64_t moreBytes = 0;
    std::string keys = {};
    std::optional<Bytes> background = {}, subPicture = {};   // files in place of these
};

struct AudioStill {
    uint64_t bytes = 100;   // of the background
    bool hasSubPicture = false;
    uint64_t moreBytes = 0;
    std::string keys = {};
    std::optional<Bytes> background = {}, subPicture = {};
};

struct AudioAttributes {
    bool mpeg1 = false, wide = false;
    uint64_t resolution = 0;   // 0: 720, 1: 704, 2: 352, 3: 352 at half height
};

enum class Color { BLACK, WHITE, RED, GREEN, BLUE };

struct AudioDisc {
    std::string mode = "PAL";
    std::vector<AudioSet> titleSets = { {} };
    std::vector<AudioMenu> menus = {};
    AudioAttributes menuAttributes = {};
    std::vector<Color> menuColors = {};   // from the first on; the others are missing, which is black
    bool asvs = false;                    // a section ASVS, which stills and attributes bring too
    std::vector<AudioStill> stills = {};
    std::vector<AudioAttributes> attributes = {};   // at most 4; none: the presets
    std::vector<Color> stillColors = {};

    bool pal() const
    {
        return mode == "PAL";
    }
    bool hasAsvs() const
    {
        return asvs || !stills.empty() || !attributes.empty() || !stillColors.empty();
    }
};

/** Writes all files of a disc into the run's folder, the information files into its target, and gives the project. */
std::string audioProject(const DiscRun& run, const AudioDisc& disc);

/** "ATS_01" and so on. */
std::string atsName(uint64_t number);
/** Names of all files that a run of the disc leaves, the information files that were there too, sorted. */
std::vector<std::string> audioFiles(const AudioDisc& disc);

// ---- the model ----------------------------------------------------------------------------------------------------

/** Every IFO and BUP of the disc by name, byte for byte. */
Snapshot audioTables(const AudioDisc& disc);
/** Sectors of AUDIO_TS.VOB and AUDIO_SV.VOB. */
uint64_t menuVobSectors(const AudioDisc& disc);
uint64_t stillVobSectors(const AudioDisc& disc);
/** Every call of the host's callback. */
std::vector<ProgressCall> audioCalls(const AudioDisc& disc);

/** Authors a disc and holds what the run has left and told against the model. */
void expectAudioDisc(AudioRun& run, const AudioDisc& disc);
/** What a run has left in its target, by name. */
std::vector<std::string> targetFiles(const DiscRun& run);
