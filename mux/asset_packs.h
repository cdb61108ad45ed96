// asset_packs.h: an asset file on its way into a VOB, one pack after the other.
#pragma once

#include "base/files.h"

#include <cstdint>

inline constexpr uint64_t FIRST_PICTURE_PTS = 18000;   // 200 ms after the first pack, of still video and sub-pictures
inline constexpr uint8_t MAIN_SUB_PICTURE = 0x20, LETTERBOX_SUB_PICTURE = 0x21;   // sub-stream ids

struct AssetStream {
    OSFILE file;
    uint64_t left;   // bytes still to come
    uint8_t streamId;
    uint8_t subStreamId;   // 0: none
};

/** A file from its present position on, as many bytes as its whole size; none of one that is not open, whose first pack
    fails then. */
[[nodiscard]] AssetStream orvOpenAsset(OSFILE file, uint8_t streamId, uint8_t subStreamId);

/** Builds one pack at this sector number in a sector-sized buffer and reads its payload. pts and dts 0: no time stamps.
    A file that gives nothing more is over, whatever its size was.
    @return 0; the platform's number, or OS_SHORT_READ if the file ended before its size: the pack is whole but for its
            payload then */
uint64_t orvBuildAssetPack(uint8_t* pack, AssetStream* stream, uint64_t sector, uint64_t pts, uint64_t dts);
