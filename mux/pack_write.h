// pack_write.h: builds packs of menus and stills from a sector number, at a fixed rate. Each writer fills its part of a
// pack, one sector that the caller has cleared.
#pragma once

#include <cstdint>

inline constexpr uint64_t MUX_RATE = 25200;   // of every program stream of the system, in units of 50 bytes a second

/** Pack header: the SCR of this sector of a stream of even rate. rate is in units of 50 bytes a second and not 0.
    Sector 0 has SCR 0. */
void orvPackHeaderAt(uint8_t* pack, uint64_t sector, uint64_t rate);
/** Pack header with a given SCR: 90 kHz ticks, of which bit 32 is not stored, and the 27 MHz part. */
void orvPackHeader(uint8_t* pack, uint64_t scr, uint64_t extension, uint64_t rate);
/** System header of a navigation pack, 24 bytes behind the pack header. */
void orvSystemHeader(uint8_t* pack, uint64_t rate);
/** System header of a DVD-Audio still's navigation pack, 21 bytes behind the pack header. */
void orvStillSystemHeader(uint8_t* pack, uint64_t rate);

/** Header of the pack's PES packet, as of a full pack.
    @param streamId       MPEG stream id
    @param subStreamId    of private stream 1; 0 for a stream that has none
    @param pts, dts       90 kHz ticks, of which bit 32 is not stored. A dts takes the pts with it; both 0: neither
    @param capacity       gets the payload bytes that the pack has room for
    @param subHeaderSize  gets the size of the sub-stream header, which stands in front of the payload */
void orvBuildPes(uint8_t* pack, uint8_t streamId, uint8_t subStreamId, uint64_t pts, uint64_t dts, uint64_t* capacity,
                 uint64_t* subHeaderSize);

/** Fills a pack that has fewer bytes left to carry than it has room for: with stuffing in the PES header (up to 7
    bytes) or with a padding packet. The caller stores the bytes at *payload.
    @param have                      bytes left of the stream
    @param capacity, subHeaderSize  as orvBuildPes gave them */
void orvPadPack(uint8_t* pack, uint64_t have, uint64_t capacity, uint64_t subHeaderSize, uint8_t** payload);

// Lead of a time stamp: its upper four bits say which stamp it is.
inline constexpr uint8_t LEAD_PTS = 0x21, LEAD_PTS_OF_TWO = 0x31, LEAD_DTS = 0x11;
/** The five bytes of a PTS or DTS; bit 32 is not stored. */
void orvPutTimeStamp(uint8_t* to, uint8_t lead, uint64_t ticks);

/** A padding packet of 6 + length bytes; length is at most 65535. */
void orvPaddingPacket(uint8_t* where, uint64_t length);
