// movie_scan.h: reads finished program streams pack by pack into the lists that all later stages work from.
#pragma once

#include "project/model.h"
#include "video/vobu_record.h"

#include <cstdint>

// Progress of one pass over a movie. @return 0 to cancel, anything else to go on
typedef uint64_t (*PassProgress)(const RunHead* run, uint64_t total, uint64_t done, uint64_t user);

/** Sectors of all source files together: the sum of their sizes, divided by 2048. sources has MAX_SOURCES entries.
    A file that can't be opened is logged and ORV_MOVIE_NOT_READ. A null sectors does nothing. */
[[nodiscard]] uint64_t orvCountFilePacks(const RunHead* run, char16_t* const* sources, uint64_t* sectors);

/** Scans the source files, up to the first null entry, as one stream of packs; a pack may begin in one file and end in
    the next.
    @param titleSet        its chapters make the cells if titleSetNumber is not 0; null for a menu VOB
    @param vobuList        an empty list, grown by one record per navigation pack; stays the caller's
    @param streamPackList  the same for audio and sub-picture packs; null if not wanted
    @param progress        called at each navigation pack unless noProgress is set
    @return 0; ORV_MOVIE_NOT_READ, logged; ORV_CANCELED; ORV_NOTHING_SCANNED; a platform's number */
[[nodiscard]] uint64_t orvGetMovieInfo(const RunHead* run, const TitleSetDesc* titleSet, char16_t* const* sources,
                                       uint64_t titleSetNumber, VobuRecord** vobuList,
                                       StreamPackRecord** streamPackList, PassProgress progress, uint64_t progressUser,
                                       bool noProgress);

/** Loads a stream scan file: its records in a new list, the caller's, and the sectors of the scanned stream. An
    incomplete last record is dropped.
    @return 0; ORV_INVALID_ARGUMENT if the file is no scan file; a platform's number */
[[nodiscard]] uint64_t orvReadStreamScanFile(const char16_t* path, VobuRecord** list, uint64_t* sectors);
