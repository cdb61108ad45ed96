// asset_drivers.h: lays finished menu and still assets into a VOB, pack by pack with fixed time stamps.
//
// Every driver appends to an open output file at its present position and reads its inputs from their present positions
// (sizes are those of whole files). Navigation packs are placeholders or copies; a later pass over the VOB fills them.
#pragma once

#include "base/files.h"
#include "project/model.h"

#include <cstdint>

// What a background video is, by its first four bytes.
inline constexpr uint64_t ASSET_STILL = 0;      // an elementary picture: a sequence header
inline constexpr uint64_t ASSET_ANIMATED = 1;   // a program stream: a pack header
inline constexpr uint64_t ASSET_UNKNOWN = ~uint64_t(0);

/** Reads four bytes at the present position; the caller seeks back. A file that can't be read is ASSET_UNKNOWN. */
[[nodiscard]] uint64_t orvProbeAsset(OSFILE video);

/** A still menu: a navigation pack, one pack of the video, the sub-picture, the rest of the video.
    Failures of the files are not looked at. @return 0 */
[[nodiscard]] uint64_t orvMuxStillMenu(OSFILE output, OSFILE video, OSFILE subPicture, uint64_t frameTicks);
/** The same with two sub-pictures, the letterbox form second. */
[[nodiscard]] uint64_t orvMuxStillMenuPair(OSFILE output, OSFILE video, OSFILE subPicture, OSFILE letterbox,
                                           uint64_t frameTicks);

/** Lays a whole sub-picture file into packs of private stream 1: the first with pts, at sector number 2; the others at
    *sector, which rises by one each.
    @return 0; ORV_MENU_SUBPICTURE_NOT_READ; ORV_MENU_VOB_NOT_WRITTEN */
[[nodiscard]] uint64_t orvMuxSubPicturePacks(OSFILE output, OSFILE subPicture, uint64_t pts, uint8_t subStreamId,
                                             uint64_t* sector);

/** An animated menu: the units of the video before its loop point, the first navigation and video pack at or behind
    it, the sub-picture, the rest of the video with later clocks.
    @return 0; ORV_MENU_VIDEO_NOT_READ; ORV_MENU_SUBPICTURE_NOT_READ; ORV_MENU_VOB_NOT_WRITTEN */
[[nodiscard]] uint64_t orvMuxAnimatedMenu(const MenuDesc* menu, OSFILE output, OSFILE video, OSFILE subPicture);
/** The same with two sub-pictures, the letterbox form second. */
[[nodiscard]] uint64_t orvMuxAnimatedMenuPair(const MenuDesc* menu, OSFILE output, OSFILE video, OSFILE subPicture,
                                              OSFILE letterbox);

/** A still of a DVD-Audio disc: its navigation pack, the sub-picture (0: none), the video, an end sector.
    subPictureSectors goes into the still's record.
    @return 0; ORV_ASVS_VOB_NOT_WRITTEN; the code of a button's command that can't be encoded; a platform's number where
            an asset can't be read */
[[nodiscard]] uint64_t orvMuxStillPicture(StillDesc* still, OSFILE output, OSFILE video, OSFILE subPicture,
                                          uint64_t subPictureSectors, uint64_t frameTicks);
/** The navigation packet of a still, behind the system header of its pack. The pack's block is left as it is if a
    button's command can't be encoded, whose code is returned. */
[[nodiscard]] uint64_t orvWriteStillNav(uint8_t* pack, const StillDesc* still);
