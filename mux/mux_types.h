// mux_types.h: the records of the multiplexer: handle, stream, ring, access unit. What a stream is and does is told by
// the function pointers that its kind's set-up writes into it.
#pragma once

#include "base/files.h"

#include <orven/mux.h>

#include <cstdint>

inline constexpr uint64_t NONE = ~uint64_t(0);   // no unit, no time

// Stream kinds, by number.
inline constexpr uint64_t KIND_VIDEO_UNITS = 2, KIND_VIDEO = 4, KIND_LPCM = 8, KIND_MPEG_AUDIO = 9, KIND_AC3 = 10,
                          KIND_AC3_TABLE = 13, KIND_SUB_PICTURE = 20;

inline constexpr uint64_t MUX_SLOTS = 41;   // video in slot 0, 8 audio and 32 sub-picture streams
inline constexpr uint64_t MUX_VIDEO_SLOTS = 1, MUX_AUDIO_SLOTS = 8, MUX_SUB_PICTURE_SLOTS = 32;
inline constexpr uint64_t MUX_BUFFER_SECTORS = 1024;   // the largest video object unit
inline constexpr uint64_t MUX_READ_BYTES = 16384;      // of one read of a file source
inline constexpr uint64_t MUX_REFERENCES = 3;          // reference pictures whose ends a navigation pack has

// Flags of a pack's PES header, also of the plan of a pack.
inline constexpr uint64_t PACK_HAS_PTS = 0x80, PACK_HAS_DTS = 0x40, PACK_HAS_EXTENSION = 0x01;

struct MuxRing {
    uint8_t* data;
    uint64_t capacity;
    uint64_t fill;         // bytes held
    uint64_t readIndex;    // of the oldest byte
    uint64_t writeIndex;   // of the next byte
    uint64_t ended;        // 1 once no more input will come
    uint64_t watermark;    // fill from which the scheduler may go on
};

// An access unit: a picture or an AC-3 frame. Times are 90 kHz ticks without the stream's delay.
struct MuxUnit {
    uint64_t position;     // input byte; of a picture that opens a group that of the header in front
    uint32_t group;        // from 1
    uint32_t codingType;   // 1 I, 2 P, 3 B; 0 for AC-3
    uint64_t pts, dts;
    uint64_t groupTime;   // at which the unit's group begins
};

struct MuxUnitPlace {
    uint64_t position, codingType, group, index;
};

// Plan of a stream's next pack.
struct MuxPlan {
    uint64_t payload;   // 0: the stream can't give one
    uint64_t padding;   // bytes of the pack that the payload leaves
    uint64_t flags;     // PACK_HAS_...
    uint64_t unit;      // whose times the pack carries
};

struct MuxStream {
    uint64_t kind;
    MuxRing* ring;
    uint64_t streamId, subStreamId;   // PES stream id; first payload byte within private stream 1, else 0
    uint64_t width, height;           // of the video
    MuxUnit* unitTable;               // a memory block; kinds 2, 4 and 13
    uint64_t lpcmFormat;              // 0: not known yet; 1..5
    uint64_t channels, sampleRate, sampleBits;
    uint64_t unitBytes;            // of an audio access unit
    uint64_t bitRate;              // kbit/s times 1024; nothing depends on it
    uint64_t unitTicks;            // length of an access unit
    uint64_t stdSize;              // buffer of the decoder model, bytes
    uint64_t stdFill;              // bytes in it
    uint64_t bytesPacked;          // bytes of the stream that are in packs
    uint64_t unitsDecoded;         // access units that the model has removed
    uint64_t stdScale, stdBound;   // P-STD buffer of the PES extension
    uint64_t headerSeen;           // 1: the handler has its parameters
    uint64_t groupCount;           // groups seen
    uint64_t unitCount;            // access units seen
    uint64_t seqPending;           // kind 4: a sequence header, and no GOP header since
    uint64_t groupPending;         // the next picture opens a group
    uint64_t groupStart;           // input position at which the pending group begins
    uint64_t bytesIn;              // bytes accepted into the ring
    uint64_t nextDecode;           // decode time of unit unitsDecoded, as of the last pass
    uint64_t vobuDecode;           // nextDecode at the last navigation pack
    uint64_t groupBase;            // picture number at the group's start; kind 9: bytes of an incomplete frame
    uint64_t intraBase;            // kind 4: picture number of the last intra picture, plus 1
    uint64_t gapUnits;             // units that gaps have taken so far
    uint64_t picturesSeen;         // parsed units, without those of gaps
    uint64_t gopBase;              // kind 4: picturesSeen plus 1 at the last GOP header
    uint64_t sourceMode;           // SOURCE_...
    OSFILE file;
    uint64_t byteSwapped;    // of a file source; kind 13: SWAP_UNKNOWN, 0 or 1
    uint64_t timeUsed;       // kinds 4 and 13: a start code of the last chunk has taken its time
    uint8_t* readScratch;    // MUX_READ_BYTES; kinds 9 and 10
    uint8_t lookBack[16];    // bytes kept from the end of the previous chunk
    uint64_t lookBackTime;   // time of the previous chunk
    uint64_t filePosition;   // next read of a file source

    // Operations. All but planPack and unitBytesAt return a result code.
    MuxPlan (*planPack)(const MuxStream*);
    uint64_t (*unitBytesAt)(const MuxStream*, uint64_t unit);   // 0 if not known
    uint64_t (*unitAt)(const MuxStream*, MuxUnitPlace*);        // the unit that holds bytesPacked
    uint64_t (*unitTimes)(const MuxStream*, const MuxContext*, uint64_t unit, uint64_t* pts, uint64_t* dts);
    uint64_t (*nextUnitAt)(const MuxStream*, MuxUnitPlace*);   // the unit behind; video alone
    uint64_t (*parse)(MuxStream*, const uint8_t* chunk, uint64_t size);
    uint64_t (*parseTimed)(MuxStream*, const uint8_t* chunk, uint64_t size, uint64_t time);   // null: kinds 2, 8, 10

    // Units of the table by rising index and position: those behind which no other begins earlier. For the search of
    // the current one; a memory block.
    uint64_t* unitOrder;
    uint64_t orderCount;   // entries in use

    MuxStream* nextOwned;   // of all streams of the handle, those that another has replaced in its slot too
};

inline constexpr uint64_t SOURCE_MEMORY = 1, SOURCE_FILE = 2;   // MuxStream::sourceMode
inline constexpr uint64_t SWAP_UNKNOWN = NONE;                  // MuxStream::byteSwapped

struct MuxContext {
    uint64_t mode;   // 0
    uint64_t freeVideoSlots, freeAudioSlots, freeSubPictureSlots;
    uint64_t videoDelay, audioDelay;   // ticks added to all times of video and audio
    uint64_t streamCount;
    uint8_t* outBuffer;                // packs of the unit at hand, its navigation pack first
    uint64_t outPending;               // sectors in outBuffer
    uint64_t packCount;                // packs since the run began
    uint64_t vobuSector;               // packCount at the unit's navigation pack
    uint64_t vobuScr;                  // of that pack
    uint64_t vobuPictures;             // set when the unit is closed
    uint64_t vobuFirstUnit;            // access unit that was current when it was opened
    uint64_t vobuStartPts;             // that unit's group time, with the delay
    uint64_t refEnd[MUX_REFERENCES];   // sectors from the navigation pack
    OrvMuxWrite writeCallback;
    uint64_t writeUser;
    uint64_t started;   // 1 once the delays are set
    uint64_t sectorsWritten;
    uint64_t currentGroup;   // 0 before the first
    uint64_t refEndCount;
    uint64_t clock;            // CLOCK_UNITS a tick
    uint64_t navJustWritten;   // nothing reads it
    MuxStream* streams[MUX_SLOTS];

    MuxStream* owned;   // chain of all streams
};

// Results of the parsers that are no failures.
inline constexpr uint64_t RESULT_NO_DATA = 0x84000C1A;   // the chunk is a header, or precedes the first group
inline constexpr uint64_t RESULT_END = 0x84000C1B;       // the chunk begins with "END "
inline constexpr uint64_t RESULT_WARNING_BIT = 0x00100000;

[[nodiscard]] inline bool orvIsVideo(const MuxStream* stream)
{
    return stream->kind == KIND_VIDEO_UNITS || stream->kind == KIND_VIDEO;
}
