// still_menu.cpp: lays a still menu into a menu VOB: one video pack, then the whole sub-picture, then the other video.

#include "base/bytes.h"
#include "base/result.h"
#include "mux/asset_drivers.h"
#include "mux/asset_packs.h"
#include "mux/nav_layout.h"
#include "mux/pack_layout.h"
#include "mux/pack_write.h"
#include "mux/start_codes.h"

uint64_t orvProbeAsset(OSFILE video)
{
    uint8_t head[4] = {};
    if (osReadFile(video, head, sizeof head)) return ASSET_UNKNOWN;
    switch (orvGet32(head)) {
    case orvStartCode(CODE_SEQUENCE): return ASSET_STILL;
    case orvStartCode(PACK_START): return ASSET_ANIMATED;
    default: return ASSET_UNKNOWN;
    }
}

// Meant: what the files say is not looked at in a still menu; a VOB that was cut is taken as it stands.
// Test: StillMenu.FailuresAreNotLookedAt

static void writePack(OSFILE output, AssetStream* stream, uint64_t sector, uint64_t pts, uint64_t dts)
{
    uint8_t pack[SECTOR_BYTES];
    (void)orvBuildAssetPack(pack, stream, sector, pts, dts);
    (void)osWriteFile(output, pack, SECTOR_BYTES);
}

static void writePlaceholder(OSFILE output)
{
    uint8_t pack[SECTOR_BYTES] = {};
    orvPackHeaderAt(pack, 0, MUX_RATE);
    orvSystemHeader(pack, MUX_RATE);
    orvPaddingPacket(pack + PCI_PACKET.at, SECTOR_BYTES - PCI_PACKET.at - PACKET_HEAD_BYTES);
    (void)osWriteFile(output, pack, SECTOR_BYTES);
}

/** Everything in front of the sub-picture. @return the video, of which one pack is written */
static AssetStream beginStill(OSFILE output, OSFILE video, uint64_t frameTicks)
{
    AssetStream stream = orvOpenAsset(video, STREAM_VIDEO, 0);
    writePlaceholder(output);
    writePack(output, &stream, 1, FIRST_PICTURE_PTS, FIRST_PICTURE_PTS - frameTicks);
    return stream;
}

static void endStill(OSFILE output, AssetStream* video, uint64_t sector)
{
    while (video->left > 0) writePack(output, video, sector++, 0, 0);
}

uint64_t orvMuxStillMenu(OSFILE output, OSFILE video, OSFILE subPicture, uint64_t frameTicks)
{
    AssetStream picture = beginStill(output, video, frameTicks);
    AssetStream overlay = orvOpenAsset(subPicture, STREAM_PRIVATE_1, MAIN_SUB_PICTURE);
    uint64_t sector = 2;
    writePack(output, &overlay, sector++, FIRST_PICTURE_PTS, 0);
    while (overlay.left > 0) writePack(output, &overlay, sector++, 0, 0);
    endStill(output, &picture, sector);
    return 0;
}

uint64_t orvMuxStillMenuPair(OSFILE output, OSFILE video, OSFILE subPicture, OSFILE letterbox, uint64_t frameTicks)
{
    AssetStream picture = beginStill(output, video, frameTicks);
    uint64_t sector = 3;
    (void)orvMuxSubPicturePacks(output, subPicture, FIRST_PICTURE_PTS, MAIN_SUB_PICTURE, &sector);
    (void)orvMuxSubPicturePacks(output, letterbox, FIRST_PICTURE_PTS, LETTERBOX_SUB_PICTURE, &sector);
    endStill(output, &picture, sector);
    return 0;
}

static uint64_t writeCheckedPack(OSFILE output, AssetStream* stream, uint64_t sector, uint64_t pts)
{
    uint8_t pack[SECTOR_BYTES];
    if (orvBuildAssetPack(pack, stream, sector, pts, 0)) return ORV_MENU_SUBPICTURE_NOT_READ;
    return osWriteFile(output, pack, SECTOR_BYTES) ? ORV_MENU_VOB_NOT_WRITTEN : 0;
}

uint64_t orvMuxSubPicturePacks(OSFILE output, OSFILE subPicture, uint64_t pts, uint8_t subStreamId, uint64_t* sector)
{
    AssetStream stream = orvOpenAsset(subPicture, STREAM_PRIVATE_1, subStreamId);
    // Meant: always sector number 2, so that the second sub-picture of a pair begins with the clock of the first.
    // Test: StillMenu.BothOfAPairBeginAtSectorTwo
    if (uint64_t error = writeCheckedPack(output, &stream, 2, pts)) return error;
    while (stream.left > 0) {
        if (uint64_t error = writeCheckedPack(output, &stream, (*sector)++, 0)) return error;
    }
    return 0;
}
