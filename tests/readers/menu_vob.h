// menu_vob.h: the packs of an authored menu VOB, and its sub-pictures as a public decoder shows them.
#pragma once

#include "tests/readers/menu_pages.h"

// A pack of a menu VOB: what lies in it, and where.
struct MenuPack {
    uint32_t page = 0;       // number of the menu page: navigation packs whose clock is 0, counted
    uint32_t clock = 0;      // SCR, in ticks
    uint8_t stream = 0;      // 0xBB navigation, 0xE0 video, 0xBD private
    uint8_t subStream = 0;   // of a private stream
    uint64_t at = 0;         // first byte of the file
    uint64_t payload = 0;    // first byte of the payload behind a sub-stream number, from the file's start
    uint64_t bytes = 0;      // of the payload
};

/** All packs. Fails the running test if something is not a pack. */
std::vector<MenuPack> menuPacks(const std::vector<uint8_t>& vob);

/** What a decoder of sub-pictures shows of a page: pixel codes, lines from the top. stream is 0 for the wide form, 1
   for the letterbox form. Lines that the unit does not show are 0. */
ByteImage decodeSubPicture(const std::filesystem::path& vob, Standard standard, uint32_t page, int stream);
