// pack_write.cpp: builds packs of menus and stills from a sector number.

#include "mux/pack_write.h"

#include "base/memory.h"
#include "mux/pack_layout.h"
#include "mux/pack_read.h"

constexpr uint8_t NO_STUFFING = 0xF8;

/** `00 00 01` and the id. */
static void putStartCode(uint8_t* to, uint8_t id)
{
    orvPut32(to, 0x00000100 | uint32_t(id));
}

void orvPackHeaderAt(uint8_t* pack, uint64_t sector, uint64_t rate)
{
    // Meant: doubles, in exactly this order; the truncations decide the last bit. Test: PackWrite.ClockOfASector
    const double packsPerSecond = double(rate) * 50.0 / double(SECTOR_BYTES);
    const double seconds = double(sector) / packsPerSecond;
    const uint64_t scr = uint64_t(seconds * 90000.0);
    const uint64_t extension = uint64_t(seconds * 27000000.0) % 300;
    orvPackHeader(pack, scr, extension, rate);
}

void orvPackHeader(uint8_t* pack, uint64_t scr, uint64_t extension, uint64_t rate)
{
    putStartCode(pack, PACK_START);
    orvSetScr(pack, scr, extension);
    uint8_t* to = pack + PACK_MUX_RATE.at;
    to[0] = uint8_t(rate >> 14);
    to[1] = uint8_t(rate >> 6);
    to[2] = uint8_t(rate << 2 | 0x03);
    orvPut(pack, PACK_STUFFING, NO_STUFFING);
}

// Behind the rate of a system header: audio_bound; video_bound with the two lock flags; and the buffers of the streams.
// clang-format off
constexpr uint8_t NAV_BOUNDS[] = {
    0x00, 0xE1, 0x7F,     // no audio bound, whatever the streams; both locks, one video stream
    0xB9, 0xE0, 0xE8,     // all video: 232 x 1024 bytes
    0xB8, 0xC0, 0x20,     // all audio: 32 x 128 bytes
    0xBD, 0xE0, 0x3A,     // private stream 1: 58 x 1024 bytes
    0xBF, 0xE0, 0x02,     // private stream 2: 2 x 1024 bytes
};
constexpr uint8_t STILL_BOUNDS[] = {
    0x00, 0x61, 0x7F,     // the video lock alone
    0xB9, 0xE0, 0xE8,
    0xBD, 0xE0, 0x34,     // 52 x 1024 bytes: the largest sub-picture
    0xBF, 0xE0, 0x01,
};
// clang-format on
constexpr uint64_t SYSTEM_HEADER_HEAD = 6, SYSTEM_HEADER_RATE = 3;   // start code and length; rate_bound

static void putSystemHeader(uint8_t* pack, uint64_t rate, const uint8_t* bounds, uint64_t boundBytes)
{
    uint8_t* to = pack + PACK_HEADER_BYTES;
    putStartCode(to, STREAM_SYSTEM_HEADER);
    orvPut16(to + 4, SYSTEM_HEADER_RATE + boundBytes);
    to[6] = uint8_t(rate >> 15 | 0x80);
    to[7] = uint8_t(rate >> 7);
    to[8] = uint8_t(rate << 1 | 0x01);
    osCopyMem(to + SYSTEM_HEADER_HEAD + SYSTEM_HEADER_RATE, bounds, boundBytes);
}

void orvSystemHeader(uint8_t* pack, uint64_t rate)
{
    putSystemHeader(pack, rate, NAV_BOUNDS, sizeof NAV_BOUNDS);
}

void orvStillSystemHeader(uint8_t* pack, uint64_t rate)
{
    putSystemHeader(pack, rate, STILL_BOUNDS, sizeof STILL_BOUNDS);
}

void orvPutTimeStamp(uint8_t* to, uint8_t lead, uint64_t ticks)
{
    to[0] = uint8_t((ticks >> 29 & 0x06) | lead);
    to[1] = uint8_t(ticks >> 22);
    to[2] = uint8_t(ticks >> 14 | 0x01);
    to[3] = uint8_t(ticks >> 7);
    to[4] = uint8_t(ticks << 1 | 0x01);
}

// P-STD extension behind the time stamps: the decoder's buffer for the stream.
constexpr uint64_t EXTENSION_BYTES = 3;
constexpr uint8_t VIDEO_BUFFER[EXTENSION_BYTES] = { 0x1E, 0x60, 0xE8 };         // 232 x 1024 bytes
constexpr uint8_t SUB_PICTURE_BUFFER[EXTENSION_BYTES] = { 0x1E, 0x60, 0x3A };   // 58 x 1024 bytes

constexpr uint8_t PES_PTS_EXTENSION = 0x81, PES_PTS_DTS_EXTENSION = 0xC1;

/** Flags and what follows them. @return bytes of header data */
static uint64_t putPesTimes(uint8_t* pack, uint64_t pts, uint64_t dts)
{
    uint8_t* to = pack + PES_DATA;
    if (dts != 0) {
        orvPut(pack, PACK_PES_FLAGS, PES_PTS_DTS_EXTENSION);
        orvPutTimeStamp(to, LEAD_PTS_OF_TWO, pts);
        orvPutTimeStamp(to + TIME_STAMP_BYTES, LEAD_DTS, dts);
        osCopyMem(to + 2 * TIME_STAMP_BYTES, VIDEO_BUFFER, EXTENSION_BYTES);
        return 2 * TIME_STAMP_BYTES + EXTENSION_BYTES;
    }
    if (pts != 0) {
        orvPut(pack, PACK_PES_FLAGS, PES_PTS_EXTENSION);
        orvPutTimeStamp(to, LEAD_PTS, pts);
        osCopyMem(to + TIME_STAMP_BYTES, SUB_PICTURE_BUFFER, EXTENSION_BYTES);
        return TIME_STAMP_BYTES + EXTENSION_BYTES;
    }
    orvPut(pack, PACK_PES_FLAGS, 0);
    return 0;
}

static uint64_t subHeaderBytes(uint8_t subStreamId)
{
    if (subStreamId >= SUB_STREAM_SUB_PICTURE && subStreamId <= SUB_STREAM_SUB_PICTURE + 0x1F) return 1;
    if (subStreamId >= SUB_STREAM_AC3 && subStreamId <= SUB_STREAM_AC3 + 0x0F) return 4;
    if (subStreamId >= SUB_STREAM_LPCM && subStreamId <= SUB_STREAM_LPCM + 0x0F) return 7;
    return 0;
}

void orvBuildPes(uint8_t* pack, uint8_t streamId, uint8_t subStreamId, uint64_t pts, uint64_t dts, uint64_t* capacity,
                 uint64_t* subHeaderSize)
{
    putStartCode(pack + PACK_HEADER_BYTES, streamId);
    orvPut(pack, PACK_PES_LENGTH, PES_FULL_LENGTH);
    pack[PACK_PES_FLAGS.at - 1] = PES_MARK;
    const uint64_t headerData = putPesTimes(pack, pts, dts);
    orvPut(pack, PACK_PES_HEADER, headerData);
    *capacity = SECTOR_BYTES - PES_DATA - headerData;
    *subHeaderSize = 0;
    if (subStreamId == 0) return;
    // Meant: an id of no known kind is stored, but takes no room: the payload overwrites it.
    // Test: PackWrite.UnknownSubStreamTakesNoRoom
    uint8_t* subHeader = pack + SECTOR_BYTES - *capacity;
    *subHeaderSize = subHeaderBytes(subStreamId);
    if (*subHeaderSize) osZeroMem(subHeader, *subHeaderSize);
    *subHeader = subStreamId;
    *capacity -= *subHeaderSize;
}

void orvPadPack(uint8_t* pack, uint64_t have, uint64_t capacity, uint64_t subHeaderSize, uint8_t** payload)
{
    const uint64_t headerData = orvGet(pack, PACK_PES_HEADER);
    *payload = pack + PES_DATA + headerData + subHeaderSize;
    if (have >= capacity) return;
    const uint64_t missing = capacity - have;
    if (missing < LEAST_PADDING_PACKET) {
        // Stuffing belongs to the PES header: it goes in front of the sub-stream header.
        uint8_t* subHeader = *payload - subHeaderSize;
        orvPut(pack, PACK_PES_HEADER, headerData + missing);
        osCopyMem(subHeader + missing, subHeader, subHeaderSize);
        osFillMem(subHeader, missing, 0xFF);
        *payload += missing;
        return;
    }
    orvPut(pack, PACK_PES_LENGTH, PES_FULL_LENGTH - missing);
    orvPaddingPacket(pack + SECTOR_BYTES - missing, missing - PACKET_HEAD_BYTES);
}

void orvPaddingPacket(uint8_t* where, uint64_t length)
{
    putStartCode(where, STREAM_PADDING);
    orvPut16(where + 4, length);
    osFillMem(where + PACKET_HEAD_BYTES, length, 0xFF);
}
