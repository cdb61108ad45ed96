// nav_setup.h: fills the navigation packs of scanned program streams in place.
#pragma once

#include "project/model.h"
#include "video/movie_scan.h"
#include "video/vobu_record.h"

#include <cstdint>

/** Fills every navigation pack of a title's source files.
    @param progress  called before each unit if not null
    @return 0; ORV_MOVIE_NOT_READ or ORV_MOVIE_NOT_WRITTEN, logged; ORV_CANCELED; a platform's number */
[[nodiscard]] uint64_t orvSetupMovieA(const RunHead* run, int64_t videoStandard, uint64_t audioStreamCount,
                                      char16_t* const* sources, const VobuRecord* vobuList,
                                      const StreamPackRecord* streamPackList, PassProgress progress,
                                      uint64_t progressUser);

/** Fills every navigation pack of a menu VOB, with the highlight data of the menus.
    @param subPictureCount  1, or 2 for menus with a letterbox form
    @param menus            the menu of VOB n is entry n - 1; a VOB past menuCount is a menu without buttons
    @return 0; ORV_MOVIE_NOT_READ or ORV_MOVIE_NOT_WRITTEN, logged; a platform's number, as where the VOB can't be
            opened */
[[nodiscard]] uint64_t orvSetupMenu(const RunHead* run, uint64_t audioStreamCount, uint64_t subPictureCount,
                                    const MenuDesc* menus, uint64_t menuCount, int64_t videoStandard,
                                    const char16_t* path, const VobuRecord* vobuList,
                                    const StreamPackRecord* streamPackList);
