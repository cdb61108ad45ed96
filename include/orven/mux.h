/* mux.h: the multiplexer. A host delivers elementary streams piece by piece and gets a DVD program stream, one video
 * object unit at a time.
 *
 * Order of calls: InitMuxer; AddStream or AddFileStream for each stream, the video stream first; MuxData, MuxDataEx or
 * MuxVideoSeq as data come, interleaved by their time; ExitMuxer. Everything happens within these calls, on the
 * caller's thread; a handle and its streams belong to one thread at a time. */
#ifndef ORVEN_MUX_H
#define ORVEN_MUX_H

#include <orven/types.h>

ORV_BEGIN_DECLS

typedef struct MuxContext MuxContext;
typedef struct MuxStream MuxStream; /* belongs to its handle; ExitMuxer releases it */

/** Receives whole packs of 2048 bytes: one video object unit a call, the last call with the rest. The data live until
 *  it returns.
 *  @return 0; any other value stops the call that drives the multiplexer, which returns it */
typedef uint64_t (*OrvMuxWrite)(uint64_t user, const uint8_t* sectors, uint64_t bytes);

/* Flags of AddStream: what a stream holds. One each; of several the last in this order counts. */
#define ORV_MUX_LPCM 0x10        /* LPCM from RIFF/WAVE: 48 or 96 kHz; mono or stereo of 16 or 24 bits, 5.1 of 16 */
#define ORV_MUX_MPEG_AUDIO 0x40  /* MPEG-1 layer 2, 48 kHz */
#define ORV_MUX_AC3 0x80         /* AC-3, 48 kHz, chunks of whole frames */
#define ORV_MUX_AC3_ANY 0x800    /* AC-3 in chunks of any kind, in either byte order */
#define ORV_MUX_SUBPICTURE 0x02  /* reserves a sub-picture stream; it can't be fed, and nothing is packed any more */
#define ORV_MUX_VIDEO_UNITS 0x08 /* MPEG video, each chunk begins at a start code; a sequence header opens a unit */
#define ORV_MUX_VIDEO 0x400      /* MPEG video in chunks of any kind; a GOP header opens a unit */

/* Flags of MuxData and MuxDataEx. */
#define ORV_MUX_WAVEFORMAT 0x10 /* the chunk is a WAVEFORMATEX, 18 bytes, in place of a RIFF header */
#define ORV_MUX_SEQUENCE 0x200  /* the chunk is a whole video sequence: MuxVideoSeq */

#define ORV_MUX_NO_TIME UINT64_MAX

/** Makes a handle. write may be null: the packs are dropped then. @return 0; 0x84000057 if out is null; a number of the
 * platform */
ORV_API uint64_t InitMuxer(MuxContext** out, OrvMuxWrite write, uint64_t user);

/** Registers a stream: one of video, eight of audio, 32 of sub-pictures.
 *  @param reserved  not looked at
 *  @param flags     ORV_MUX_...
 *  @param out       may be null
 *  @return 0; 0x84000BC1 (3009) if no flag says what the stream holds, or if a stream that is not video comes first and
 *          is looked for in the empty place of the video stream, where it stays registered; 0x84000BC3 (3011) and
 * 0x84000BC4 (3012) if there is no room for one more; 0x84000057 if handle is null; a number of the platform */
ORV_API uint64_t AddStream(MuxContext* handle, uint64_t reserved, uint64_t flags, MuxStream** out);

/** Registers a stream that MuxData feeds from a file by itself: MPEG audio or AC-3. A file of AC-3 whose bytes are
 *  exchanged in pairs is recognised. Without an out, or if the file can't be opened, the stream stays registered.
 *  @return 0; 0x84000057 if out is null; the results of AddStream; a number of the platform */
ORV_API uint64_t AddFileStream(MuxContext* handle, const OrvWChar* path, uint64_t flags, MuxStream** out);

/** Delivers a chunk. It is taken whole or not at all. The four bytes `END ` at its start end a stream of LPCM or AC-3;
 *  a file source ends with its file.
 *  @param data  not null, also for a stream that has a file, which then gives the data
 *  @param used  may be null; gets the size of the chunk, also of one that is passed over or refused
 *  @param flags ORV_MUX_WAVEFORMAT, ORV_MUX_SEQUENCE or 0
 *  @return 0, also where the chunk is passed over: a RIFF header, what comes in front of the first GOP, data of another
 *          kind; 0x84000BBA (3002) for a sampling rate that a DVD has not; 0x84000BC1 (3009) for a sub-picture stream,
 * or a file of a kind that is not fed from files; 0x84000BBE (3006), 0x84000BC6 (3014), 0x84000BC7 (3015) for LPCM;
 * 0x84000BC0 (3008) if a picture or frame has to be decoded before all of it is in the stream; 0x84000BC5 (3013)
 * without a video stream; 0x84000BC9 (3017) if a stream holds more than 2 MiB or a unit grows past 1024 packs; what the
 * callback returned; 0x84000057 for a null argument; a number of the platform */
ORV_API uint64_t MuxData(MuxContext* handle, MuxStream* stream, const uint8_t* data, uint64_t size, uint64_t* used,
                         uint64_t flags);

/** Delivers a chunk with the time of the first picture or frame that begins in it, in ticks of 90 kHz from the start of
 *  the stream: holes in the stream are filled with it. ORV_MUX_NO_TIME if it is not known. The four bytes `END ` end an
 *  AC-3 stream of any chunks, which returns 0x84000C1B. @return as MuxData; a stream that has no use for a time is fed
 *  as by MuxData */
ORV_API uint64_t MuxDataEx(MuxContext* handle, MuxStream* stream, const uint8_t* data, uint64_t size, uint64_t flags,
                           uint64_t time);

/** Delivers one video sequence of one picture, from its header to its end code, which are its first and last four
 *  bytes. used may be null; it gets size. @return as MuxData; 0x84000BC1 (3009) for any other data */
ORV_API uint64_t MuxVideoSeq(MuxContext* handle, MuxStream* stream, const uint8_t* data, uint64_t size, uint64_t* used);

/** Packs what the streams still hold, hands it out and releases the handle and its streams. After a failure the handle
 *  stays. @return 0; 0x84000057 if handle is null; the failures of MuxData */
ORV_API uint64_t ExitMuxer(MuxContext* handle);

/* ---- replay --------------------------------------------------------------------------------------------------------
 * Four functions that read finished elementary files and call the host as a certain hardware of encoders does: video
 * in pieces that begin at start codes, audio in blocks, one a picture. The callbacks normally call MuxData. The files
 * are positioned at their start and stay the host's.
 * @return 0; 0x84000FB4 (4020) if a file can't be read; 0x84000057 for a block size of 0 or above 524288, or a null
 * callback; what a callback returned (muxEmulateLigos does not look at it) */
ORV_API uint64_t muxEmulateLigos(OSFILE video, OrvUnit videoUnit, uint64_t user);
/** With a WAVE file, whose first 44 bytes go out by themselves; `END ` ends the audio. */
ORV_API uint64_t muxEmulateLigosPCM(OSFILE video, OSFILE audio, OrvUnit videoUnit, OrvUnit audioUnit,
                                    uint64_t audioBlock, uint64_t user);
/** With MPEG audio. */
ORV_API uint64_t muxEmulateLigosLayer(OSFILE video, OSFILE audio, OrvUnit videoUnit, OrvUnit audioUnit,
                                      uint64_t audioBlock, uint64_t user);
/** audioUnit is called with null data and 0 bytes at each picture, for the host to deliver AC-3 of its own. */
ORV_API uint64_t muxEmulateLigosAC3(OSFILE video, OrvUnit videoUnit, OrvUnit audioUnit, uint64_t user);

ORV_END_DECLS

#endif
