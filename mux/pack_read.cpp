// pack_read.cpp: reads and rewrites the clocks of a pack.

#include "mux/pack_read.h"

#include "mux/nav_layout.h"
#include "mux/pack_layout.h"

// The clocks of a pack are 33 bits wide. Meant: the top bit is neither read nor stored, so that a clock wraps after 13
// hours; times are carried as the low 32 bits, sign-extended. Test: PackRead.ScrIgnoresBit32AndMarkers
static uint64_t signExtend(uint32_t ticks)
{
    return uint64_t(int64_t(int32_t(ticks)));
}

uint64_t orvReadScr(const uint8_t* pack, uint64_t* extension)
{
    const uint8_t* b = pack + PACK_SCR.at;   // 01 + bits 32..30, 1, bits 29..15, 1, bits 14..0, 1, extension, 1
    const uint32_t scr = uint32_t(b[0] & 0x18) << 27 | uint32_t(b[0] & 0x03) << 28 | uint32_t(b[1]) << 20 |
                         uint32_t(b[2] & 0xF8) << 12 | uint32_t(b[2] & 0x03) << 13 | uint32_t(b[3]) << 5 |
                         uint32_t(b[4]) >> 3;
    if (extension) *extension = uint64_t(b[4] & 0x03) << 7 | uint64_t(b[5] >> 1);
    return signExtend(scr);
}

void orvSetScr(uint8_t* pack, uint64_t scr, uint64_t extension)
{
    uint8_t* b = pack + PACK_SCR.at;
    b[0] = uint8_t(0x44 | (scr >> 27 & 0x18) | (scr >> 28 & 0x03));
    b[1] = uint8_t(scr >> 20);
    b[2] = uint8_t((scr >> 12 & 0xF8) | 0x04 | (scr >> 13 & 0x03));
    b[3] = uint8_t(scr >> 5);
    b[4] = uint8_t((scr << 3 & 0xF8) | 0x04 | (extension >> 7 & 0x03));
    b[5] = uint8_t((extension << 1 & 0xFE) | 0x01);
}

uint64_t orvReadPts(const uint8_t* pack)
{
    if (!(pack[PACK_PES_FLAGS.at] & PES_HAS_PTS)) return 0;
    const uint8_t* b = pack + PACK_PES_PTS.at;   // lead + bits 32..30, 1, bits 29..15, 1, bits 14..0, 1
    return signExtend(uint32_t(b[0] & 0x06) << 29 | uint32_t(b[1]) << 22 | uint32_t(b[2] & 0xFE) << 14 |
                      uint32_t(b[3]) << 7 | uint32_t(b[4]) >> 1);
}

bool orvIsNavPack(const uint8_t* pack)
{
    return pack[PACK_PACKET_PREFIX.at] == START_CODE_PREFIX && pack[PACK_STREAM_ID.at] == STREAM_SYSTEM_HEADER &&
           pack[PCI_PACKET.at + 2] == START_CODE_PREFIX;
}
