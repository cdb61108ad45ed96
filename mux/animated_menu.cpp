// animated_menu.cpp: lays an animated menu into a menu VOB: its program stream with the sub-picture put in behind the
// first video pack at or behind the loop point.

#include "base/bytes.h"
#include "base/result.h"
#include "mux/asset_drivers.h"
#include "mux/asset_packs.h"
#include "mux/nav_layout.h"
#include "mux/pack_layout.h"
#include "mux/pack_read.h"

// Whole ticks that a pack lasts at the rate of the system's streams: 2048 bytes of 25200 x 50 a second.
constexpr uint64_t PACK_TICKS = 146;

constexpr uint64_t FIRST_FREE_SECTOR = 2;   // of a menu in front of its sub-picture: navigation and video pack are 0, 1

static uint64_t readPack(OSFILE video, uint8_t* pack)
{
    return osReadFile(video, pack, SECTOR_BYTES) ? ORV_MENU_VIDEO_NOT_READ : 0;
}

static uint64_t writePack(OSFILE output, const uint8_t* pack)
{
    return osWriteFile(output, pack, SECTOR_BYTES) ? ORV_MENU_VOB_NOT_WRITTEN : 0;
}

static uint64_t copyPack(OSFILE output, OSFILE video, uint8_t* pack)
{
    if (uint64_t error = readPack(video, pack)) return error;
    return writePack(output, pack);
}

/** Sectors of the units that begin in front of the loop point, found by the units' own lengths. */
static uint64_t countLeadingSectors(OSFILE video, uint64_t loopValue, uint64_t* sectors)
{
    uint8_t pack[SECTOR_BYTES];
    *sectors = 0;
    if (uint64_t error = readPack(video, pack)) return error;
    while (orvGet(pack, DSI_NV_PCK_SCR) < loopValue) {
        const uint64_t end = orvGet(pack, DSI_VOBU_EA);
        if (osSeekFile(video, int64_t(end * SECTOR_BYTES), OS_FROM_CURRENT)) return ORV_MENU_VIDEO_NOT_READ;
        *sectors += end + 1;
        if (uint64_t error = readPack(video, pack)) return error;
    }
    return 0;
}

/** Copies the part of the animation that stays without sub-picture. */
static uint64_t copyLeadingUnits(const MenuDesc* menu, OSFILE output, OSFILE video)
{
    if (menu->loopMode != LOOP_FROM && menu->loopMode != LOOP_DELAY) return 0;
    uint64_t sectors = 0;
    if (uint64_t error = countLeadingSectors(video, menu->loopValue, &sectors)) return error;
    if (osSeekFile(video, 0, OS_FROM_START)) return ORV_MENU_VIDEO_NOT_READ;
    uint8_t pack[SECTOR_BYTES];
    for (uint64_t i = 0; i < sectors; i++) {
        if (uint64_t error = copyPack(output, video, pack)) return error;
    }
    return 0;
}

/** Everything in front of the sub-picture. pts gets that of the video pack. */
static uint64_t beginAnimated(const MenuDesc* menu, OSFILE output, OSFILE video, uint64_t* pts)
{
    uint8_t pack[SECTOR_BYTES];
    if (uint64_t error = copyLeadingUnits(menu, output, video)) return error;
    if (uint64_t error = copyPack(output, video, pack)) return error;
    if (uint64_t error = copyPack(output, video, pack)) return error;
    *pts = orvReadPts(pack);
    return 0;
}

/** Whole packs of a video. */
static uint64_t countPacks(OSFILE video)
{
    uint64_t size = 0;
    return osFileSize(video, &size) ? 0 : size / SECTOR_BYTES;
}

/** The rest of the video, as far as it reached before anything was written: a VOB that is its own background would have
    no end. It comes later by the packs that were put in; sector is the next free one. */
static uint64_t endAnimated(OSFILE output, OSFILE video, uint64_t packCount, uint64_t sector)
{
    // Meant: the time stamps of the video stay, and so does the fraction of a tick by which the shift is short for each
    // pack. Test: AnimatedMenu.ShiftsTheClocksOfTheRest
    const uint64_t shift = (sector - FIRST_FREE_SECTOR) * PACK_TICKS;
    uint8_t pack[SECTOR_BYTES];
    uint64_t position = 0;
    if (osTellFile(video, &position)) return ORV_MENU_VIDEO_NOT_READ;
    for (uint64_t i = position / SECTOR_BYTES; i < packCount && !readPack(video, pack); i++) {
        uint64_t extension = 0;
        const uint64_t scr = orvReadScr(pack, &extension);
        orvSetScr(pack, scr + shift, extension);
        if (uint64_t error = writePack(output, pack)) return error;
    }
    return 0;   // an incomplete pack at the end is left out
}

uint64_t orvMuxAnimatedMenu(const MenuDesc* menu, OSFILE output, OSFILE video, OSFILE subPicture)
{
    const uint64_t packCount = countPacks(video);
    uint64_t pts = 0, sector = FIRST_FREE_SECTOR + 1;
    if (uint64_t error = beginAnimated(menu, output, video, &pts)) return error;
    if (uint64_t error = orvMuxSubPicturePacks(output, subPicture, pts, MAIN_SUB_PICTURE, &sector)) return error;
    return endAnimated(output, video, packCount, sector);
}

uint64_t orvMuxAnimatedMenuPair(const MenuDesc* menu, OSFILE output, OSFILE video, OSFILE subPicture, OSFILE letterbox)
{
    const uint64_t packCount = countPacks(video);
    uint64_t pts = 0, sector = FIRST_FREE_SECTOR + 1;
    if (uint64_t error = beginAnimated(menu, output, video, &pts)) return error;
    if (uint64_t error = orvMuxSubPicturePacks(output, subPicture, pts, MAIN_SUB_PICTURE, &sector)) return error;
    if (uint64_t error = orvMuxSubPicturePacks(output, letterbox, pts, LETTERBOX_SUB_PICTURE, &sector)) return error;
    return endAnimated(output, video, packCount, sector);
}
