// pes_write.cpp: the PES header of a pack that the scheduler fills.

#include "mux/pes_write.h"

#include "base/memory.h"
#include "mux/lpcm.h"
#include "mux/pack_layout.h"
#include "mux/pack_write.h"

/** Time stamps and extension. @return their bytes */
static uint64_t putHeaderData(uint8_t* to, const MuxStream* stream, uint64_t flags, uint64_t pts, uint64_t dts)
{
    uint8_t* at = to;
    if (flags & PACK_HAS_PTS) {
        orvPutTimeStamp(at, flags & PACK_HAS_DTS ? LEAD_PTS_OF_TWO : LEAD_PTS, pts);
        at += TIME_STAMP_BYTES;
    }
    if (flags & PACK_HAS_DTS) {
        orvPutTimeStamp(at, LEAD_DTS, dts);
        at += TIME_STAMP_BYTES;
    }
    if (flags & PACK_HAS_EXTENSION) {
        constexpr uint8_t ONLY_STD_BUFFER = 0x1E,
                          STD_MARK = 0x40;   // flags of the extension; the buffer's two top bits
        *at++ = ONLY_STD_BUFFER;
        *at++ = uint8_t(STD_MARK | (stream->stdScale << 5 & 0x20) | (stream->stdBound >> 8 & 0x1F));
        *at++ = uint8_t(stream->stdBound);
    }
    return uint64_t(at - to);
}

/** Bytes from the stream's next byte to the next start of a unit. */
static uint64_t bytesToUnit(const MuxStream* stream)
{
    const uint64_t over = stream->bytesPacked % stream->unitBytes;
    return over ? stream->unitBytes - over : 0;
}

/** Units that begin in the next so many bytes of the stream. */
static uint64_t unitsBegun(const MuxStream* stream, uint64_t bytes)
{
    const uint64_t at = stream->bytesPacked, unit = stream->unitBytes;
    return (at + bytes) / unit - at / unit + (at % unit == 0 ? 1 : 0);
}

static uint64_t putLpcmHeader(uint8_t* to, const MuxStream* stream)
{
    constexpr uint64_t HEADER_BYTES = 7, FRAMES_OF_A_SECOND_PART = 20;
    constexpr uint8_t NOT_48_KHZ = 0x10, NOT_16_BITS = 0x80, DYNAMIC_RANGE = 0x80;
    if (stream->unitBytes == 0) return HEADER_BYTES;
    const uint64_t begun = (stream->bytesPacked + stream->unitBytes - 1) / stream->unitBytes;
    to[1] = uint8_t(unitsBegun(stream, orvLpcmCapacity(stream)));
    orvPut16(to + 2, bytesToUnit(stream) + 4);
    to[4] = uint8_t(begun % FRAMES_OF_A_SECOND_PART);
    to[5] = uint8_t(stream->channels - 1 + (stream->sampleRate != 48000 ? NOT_48_KHZ : 0) +
                    (stream->sampleBits != 16 ? NOT_16_BITS : 0));
    to[6] = DYNAMIC_RANGE;
    return HEADER_BYTES;
}

static uint64_t putAc3Header(uint8_t* to, const MuxStream* stream, uint64_t before)
{
    constexpr uint64_t HEADER_BYTES = 4;
    if (stream->unitBytes == 0) return HEADER_BYTES;
    to[1] = uint8_t(unitsBegun(stream, SECTOR_BYTES - HEADER_BYTES - before));
    orvPut16(to + 2, bytesToUnit(stream) + 1);
    return HEADER_BYTES;
}

/** Header of a stream within private stream 1. @return its bytes */
static uint64_t putSubHeader(uint8_t* pack, const MuxStream* stream, uint64_t at)
{
    if (stream->streamId != STREAM_PRIVATE_1) return 0;
    pack[at] = uint8_t(stream->subStreamId);
    switch (stream->kind) {
    case KIND_LPCM: return putLpcmHeader(pack + at, stream);
    case KIND_AC3:
    case KIND_AC3_TABLE: return putAc3Header(pack + at, stream, at);
    default: return 1;
    }
}

uint64_t orvWritePesHeader(uint8_t* pack, const MuxStream* stream, uint64_t flags, uint64_t pts, uint64_t dts,
                           uint64_t padding)
{
    const uint64_t stuffing = padding < LEAST_PADDING_PACKET ? padding : 0;
    orvPut32(pack + PACK_HEADER_BYTES, 0x00000100 | uint32_t(stream->streamId & 0xFF));
    orvPut(pack, PACK_PES_LENGTH, PES_FULL_LENGTH - (padding - stuffing));
    pack[PACK_PES_FLAGS.at - 1] = PES_MARK;
    orvPut(pack, PACK_PES_FLAGS, flags);
    const uint64_t headerData = putHeaderData(pack + PES_DATA, stream, flags, pts, dts);
    osFillMem(pack + PES_DATA + headerData, stuffing, 0xFF);
    orvPut(pack, PACK_PES_HEADER, headerData + stuffing);
    const uint64_t at = PES_DATA + headerData + stuffing;
    return at + putSubHeader(pack, stream, at);
}
