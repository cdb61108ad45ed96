/* aob.h: the AOB multiplexer. It asks the host for the samples of each track and lays them into ATS_nn_1.AOB, the sound
 * of a DVD-Audio title set. ParseAudioDesc makes the tables of the disc afterwards, from a project whose `channel1`
 * keys name that file.
 *
 * Order of calls: aobCreateMuxer; aobStartMuxing, once; aobReleaseMuxer. Everything happens within these calls, on the
 * caller's thread; a handle belongs to one thread at a time. */
#ifndef ORVEN_AOB_H
#define ORVEN_AOB_H

#include <orven/types.h>

ORV_BEGIN_DECLS

typedef struct AobMuxer AobMuxer;

#define ORV_AOB_MORE 0 /* results of OrvSamples */
#define ORV_AOB_END 3

/* One track. The channels that a pack can carry, and the order in which OrvSamples is asked for them:
 *
 *   channelCount  assignment
 *   2             1           left, right
 *   4             3           left front, right front, left surround, right surround
 *   5             19          left front, right front, left surround, right surround, centre
 *   6             20          left front, right front, left surround, right surround, centre, low frequency
 *
 * each with 16 or 24 bits. With any of these counts, other assignments of 0 to 20 give a pack without samples. */
typedef struct AobTrackDesc {
    uint32_t channelCount;
    uint32_t assignment;
    uint32_t reserved1;  /* not looked at */
    uint32_t sampleSize; /* bits */
    uint32_t sampleRate; /* Hz: 44100, 48000, 88200, 96000, 176400 or 192000 */
    uint32_t reserved2;  /* not looked at */
} AobTrackDesc;

/** Gives the next samples of one channel of a track. For each pack the channels are asked in order: the first for as
 *  many samples as the pack has room for, each further one for as many as the one before gave.
 *  @param track        from 0
 *  @param buffer       gets little-endian samples of 2 or 3 bytes; it has room for sampleCount of them
 *  @param channel      from 0
 *  @param outCount     gets the samples given, not more than sampleCount. Fewer end the track with this pack
 *  @return ORV_AOB_MORE; ORV_AOB_END: nothing follows, the track ends with this pack; any other value fails the call
 *          that drives the multiplexer, which returns its low 32 bits */
typedef uint64_t (*OrvSamples)(uint64_t track, uint8_t* buffer, uint64_t sampleCount, uint64_t channel,
                               uint64_t* outCount, uint64_t user);

/** Makes a handle and ATS_nn_1.AOB, which is written over if it is there.
 *  @param path        the directory, with or without its trailing separator; null: C:\ on Windows, elsewhere the
 *                     current directory
 *  @param atsNumber   nn
 *  @param trackCount  1..99
 *  @param tracks      copied
 *  @param out         null after a failure
 *  @return 0; 0x84000C1C for a trackCount out of range; 0x84000057 for a null argument; a number of the platform */
ORV_API uint64_t aobCreateMuxer(const char* path, uint64_t atsNumber, uint64_t trackCount, const AobTrackDesc* tracks,
                                OrvSamples samples, uint64_t user, AobMuxer** out);
ORV_API uint64_t aobCreateMuxerW(const OrvWChar* path, uint64_t atsNumber, uint64_t trackCount,
                                 const AobTrackDesc* tracks, OrvSamples samples, uint64_t user, AobMuxer** out);

/** Lays all tracks into the AOB. Behind each, ATS_nn.nfo beside the AOB gets a section TRACKINFO_mm with its packs
 *  (TrackBlockSize) and its first time stamp in ticks of 90 kHz (TrackFirstCellPts), by which ParseAudioDesc knows it.
 *  After a failure the AOB stays as far as it was written.
 *  @return 0; 0x84001779 (6009) for a sample rate, 0x84001786 (6022) for an assignment, 0x84001781 (6017) for channels
 *          and bits that no pack can carry; 0x84001785 (6021) if the AOB can't be written; 0x84000C1E if the decoder
 *          would run dry; 1001 if a channel gave more samples than it was asked for; what samples returned; 0x84000057
 *          if handle is null; a number of the platform */
ORV_API uint64_t aobStartMuxing(AobMuxer* handle);

/** Closes the file and releases the handle. @return 0; 0x84000057 if handle is null */
ORV_API uint64_t aobReleaseMuxer(AobMuxer* handle);

ORV_END_DECLS

#endif
