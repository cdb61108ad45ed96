// extract_types.h: what an extraction knows of its disc, and the routines that read it.
#pragma once

#include "base/bytes.h"
#include "base/files.h"

#include <orven/extract.h>

#include <cstdint>

inline constexpr uint64_t MAX_EXTRACT_TRACKS = 99;
inline constexpr uint64_t MAX_EXTRACT_FILES = 9;   // parts of the sound: ATS_01_1.AOB to _9, or VTS_01_1.VOB to _9

enum ExtractSource : uint64_t { SOURCE_NONE = 0, SOURCE_AUDIO = 1, SOURCE_VIDEO = 2 };

struct ExtractContext {
    uint64_t sourceKind;    // ExtractSource
    char16_t* sourcePath;   // string objects, with their trailing separators
    char16_t* destPath;
    uint64_t trackCount;
    ExtractTrack tracks[MAX_EXTRACT_TRACKS + 1];   // the one behind the last is asked for too: all zero
    uint64_t fileCount;
    OSFILE files[MAX_EXTRACT_FILES];   // 0: not open
    uint64_t fileFirstSector[MAX_EXTRACT_FILES];
    // d2wOpenDisc: the files stay open, sectors are plain, packs and units are read to their last sample. Otherwise as
    // d2wInitContext does all this.
    bool opened;
    bool busy;              // within d2wOpenDisc or d2wExtractTrack
    bool released;          // from one of their callbacks: they end, and then the context goes
    OSFILE tableFiles[3];   // that d2wInitContext leaves open; closed with the context
};

/** Reads AUDIO_PP.IFO. @return 0; ORV_SAMG_NOT_READ; ORV_INVALID_SAMG; ORV_MLP_UNSUPPORTED */
[[nodiscard]] uint64_t orvReadAudioTables(ExtractContext* context, OSFILE file, OrvTrackInfo info, uint64_t user);
/** Reads VIDEO_TS.IFO and VTS_01_0.IFO. @return 0; ORV_EXTRACT_... */
[[nodiscard]] uint64_t orvReadVideoTables(ExtractContext* context, OSFILE vmgFile, OSFILE vtsFile, OrvTrackInfo info,
                                          uint64_t user);
/** Opens the parts of the sound and takes their sizes. They stay open if the context says so.
    @param format  of their paths: %s the directory, %.1d the number */
[[nodiscard]] uint64_t orvOpenExtractFiles(ExtractContext* context, const char16_t* format);

/** Reads one sector, SECTOR_BYTES into buffer, and finds its samples.
    @param data    points into buffer
    @param length  bytes of samples; 0: none
    @return 0; ORV_AOB_NOT_READ; ORV_WRONG_AOB_PACK */
[[nodiscard]] uint64_t orvReadExtractPack(const ExtractContext* context, uint64_t sector, uint8_t* buffer,
                                          const uint8_t** data, uint64_t* length);

/** Writes the header of a WAVE file, 46 bytes, over the start of an open file, by the file's size. */
[[nodiscard]] uint64_t orvWriteWaveHeader(const ExtractTrack* track, OSFILE file, bool stereoPairs);
inline constexpr uint64_t WAVE_HEADER_BYTES = 46;

// One WAVE file of a track: one channel, or a pair of them.
inline constexpr uint8_t NO_CHANNEL = 0xFF;   // silence
struct ExtractOutput {
    const char16_t* suffix;
    uint8_t channels[2];
};

// How a channel assignment is laid into files.
struct ExtractLayout {
    uint64_t assign;
    const char16_t* text;   // of the progress
    uint64_t pairCount, singleCount;
    ExtractOutput pairs[3], singles[6];
};

/** The layout of an assignment. *known is false, and the layout that of two channels, for one that can't be extracted.
 */
[[nodiscard]] const ExtractLayout* orvExtractLayout(uint64_t assign, bool* known);

/** Takes the samples of a pack apart and appends them to the files of a track. What is left of a pack behind its last
    whole unit is dropped; sample sizes other than 16 and 24, or that differ between the groups, give nothing. */
[[nodiscard]] uint64_t orvDeinterleave(const ExtractContext* context, const ExtractTrack* track,
                                       const ExtractOutput* outputs, const OSFILE* files, uint64_t count, bool pairs,
                                       const uint8_t* data, uint64_t length);
