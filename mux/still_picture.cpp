// still_picture.cpp: lays one still of a DVD-Audio disc into the VOB of the stills.

#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "mux/asset_drivers.h"
#include "mux/asset_packs.h"
#include "mux/button_entry.h"
#include "mux/nav_layout.h"
#include "mux/pack_layout.h"
#include "mux/pack_write.h"

// Navigation packet of a still, behind the system header. Offsets from the first byte of the pack.
constexpr uint64_t STILL_NAV = 35;
constexpr uint64_t STILL_NAV_LENGTH = 745;
constexpr uint64_t STILL_NAV_BLOCK = STILL_NAV + PACKET_HEAD_BYTES;
constexpr uint64_t STILL_NAV_END = STILL_NAV_BLOCK + STILL_NAV_LENGTH;

// The part of the packet that is written. Offsets from its own start; the bytes that no row names are 0.
constexpr uint64_t BLOCK_BYTES = 695;
// clang-format off
constexpr DiscField BLOCK_SUB_STREAM = {  0,   1, "sub_stream_id"  };
constexpr DiscField BLOCK_HLI_SS     = {  2,   1, "hli_ss"         };   // 1: the still has a highlight
constexpr DiscField BLOCK_S_PTM      = {  3,   4, "hli_s_ptm"      };   // ticks
constexpr DiscField BLOCK_E_PTM      = {  7,   4, "hli_e_ptm"      };   // ticks; all ones: no end
constexpr DiscField BLOCK_SE_E_PTM   = { 11,   4, "btn_se_e_ptm"   };   // ticks; all ones: no end
constexpr DiscField BLOCK_BUTTONS    = { 47, 648, "btnit"          };   // 36 buttons
constexpr DiscField BLOCK_FIELDS[]   = { BLOCK_SUB_STREAM, BLOCK_HLI_SS, BLOCK_S_PTM, BLOCK_E_PTM, BLOCK_SE_E_PTM,
                                         BLOCK_BUTTONS };
// clang-format on
static_assert(orvFieldsFit(BLOCK_FIELDS, BLOCK_BYTES));
static_assert(BLOCK_BUTTONS.size == MAX_BUTTONS * BUTTON_BYTES);

constexpr uint8_t SUB_STREAM_STILL = 2;
constexpr uint64_t HIGHLIGHT_START = 36000;
constexpr uint64_t NEVER = 0xFFFFFFFF;

uint64_t orvWriteStillNav(uint8_t* pack, const StillDesc* still)
{
    orvPut32(pack + STILL_NAV, 0x00000100 | uint32_t(STREAM_PRIVATE_2));
    orvPut16(pack + STILL_NAV + 4, STILL_NAV_LENGTH);
    uint8_t block[BLOCK_BYTES] = {};
    orvPut(block, BLOCK_SUB_STREAM, SUB_STREAM_STILL);
    orvPut(block, BLOCK_HLI_SS, still->hasSubPicture != 0);
    orvPut(block, BLOCK_S_PTM, HIGHLIGHT_START);
    orvPut(block, BLOCK_E_PTM, NEVER);
    orvPut(block, BLOCK_SE_E_PTM, NEVER);
    for (uint64_t i = 0; i < still->buttonCount && i < MAX_BUTTONS; i++) {
        uint8_t* to = block + BLOCK_BUTTONS.at + i * BUTTON_BYTES;
        const ButtonDesc* button = still->buttons + i;
        if (uint64_t error = orvPutButton(to, button, 0, button->yStart, button->yEnd)) return error;
    }
    osCopyMem(pack + STILL_NAV_BLOCK, block, BLOCK_BYTES);
    return 0;
}

static uint64_t writeSector(OSFILE output, const uint8_t* sector)
{
    return osWriteFile(output, sector, SECTOR_BYTES) ? ORV_ASVS_VOB_NOT_WRITTEN : 0;
}

static uint64_t writeNav(OSFILE output, const StillDesc* still)
{
    uint8_t pack[SECTOR_BYTES] = {};
    orvPackHeaderAt(pack, 0, MUX_RATE);
    orvStillSystemHeader(pack, MUX_RATE);
    if (uint64_t error = orvWriteStillNav(pack, still)) return error;
    orvPaddingPacket(pack + STILL_NAV_END, SECTOR_BYTES - STILL_NAV_END - PACKET_HEAD_BYTES);
    return writeSector(output, pack);
}

/** All packs of an asset, the first with time stamps. */
static uint64_t writeAsset(OSFILE output, AssetStream stream, uint64_t* sector, uint64_t dts)
{
    uint8_t pack[SECTOR_BYTES];
    uint64_t pts = FIRST_PICTURE_PTS;
    do {
        if (uint64_t error = orvBuildAssetPack(pack, &stream, (*sector)++, pts, dts)) return error;
        if (uint64_t error = writeSector(output, pack)) return error;
        pts = dts = 0;
    } while (stream.left > 0);
    return 0;
}

static uint64_t writeEnd(OSFILE output)
{
    uint8_t sector[SECTOR_BYTES];
    osFillMem(sector, SECTOR_BYTES, 0xFF);
    orvPut32(sector, 0x00000100 | uint32_t(PROGRAM_END));
    return writeSector(output, sector);
}

uint64_t orvMuxStillPicture(StillDesc* still, OSFILE output, OSFILE video, OSFILE subPicture,
                            uint64_t subPictureSectors, uint64_t frameTicks)
{
    still->subPictureSectors = subPictureSectors;
    if (uint64_t error = writeNav(output, still)) return error;
    uint64_t sector = 1;
    if (subPicture) {
        const AssetStream overlay = orvOpenAsset(subPicture, STREAM_PRIVATE_1, MAIN_SUB_PICTURE);
        if (uint64_t error = writeAsset(output, overlay, &sector, 0)) return error;
    }
    const AssetStream picture = orvOpenAsset(video, STREAM_VIDEO, 0);
    if (uint64_t error = writeAsset(output, picture, &sector, FIRST_PICTURE_PTS - frameTicks)) return error;
    return writeEnd(output);
}
