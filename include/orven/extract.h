/* extract.h: the way back from a disc to WAVE files: tracks of a DVD-Audio disc, or chapters of a DVD-Video title with
 * LPCM sound.
 *
 * Order of calls: d2wCreateContext; d2wOpenDisc; d2wExtractTrack for any of the tracks; d2wReleaseContext. Everything
 * happens within these calls, on the caller's thread; a context belongs to one thread at a time.
 *
 * d2wInitContext is the older way in, and is kept as hosts know it: it never reaches the tracks of a disc. */
#ifndef ORVEN_EXTRACT_H
#define ORVEN_EXTRACT_H

#include <orven/types.h>

ORV_BEGIN_DECLS

typedef struct ExtractContext ExtractContext;

/* One track. Sectors count from the start of the disc's first AOB or VOB. */
typedef struct ExtractTrack {
    uint32_t firstSector, lastSector;
    uint32_t playTime;                 /* ticks of 90 kHz */
    uint32_t assign;                   /* channel assignment; 1, 3, 19 and 20 can be extracted (aob.h) */
    uint32_t reserved;                 /* 0 */
    uint32_t sampleSize1, sampleSize2; /* bits of the two groups of channels; 16 and 24 can be extracted */
    uint32_t sampleRate1, sampleRate2; /* Hz; 0: unknown */
} ExtractTrack;

/** Told of each track that is found. The record lives until it returns. From within a call d2wReleaseContext ends
 *  d2wOpenDisc. @param index  from 0 */
typedef void (*OrvTrackInfo)(const ExtractTrack* track, uint64_t index, uint64_t user);

/** Progress of an extraction. The last call of a track has done equal to total. From within a call d2wReleaseContext
 *  ends the extraction.
 *  @param track  from 0
 *  @param text   what is being done, for people; lives until it returns */
typedef void (*OrvExtractProgress)(uint64_t track, uint64_t totalSectors, uint64_t doneSectors, const char* text,
                                   uint64_t user);
typedef void (*OrvExtractProgressW)(uint64_t track, uint64_t totalSectors, uint64_t doneSectors, const OrvWChar* text,
                                    uint64_t user);

/** Makes a context. Nothing is opened yet.
 *  @param sourcePath  the directory with the IFO files, with or without its trailing separator
 *  @param destPath    the directory that gets the WAVE files; null: the current directory
 *  @param out         null after a failure
 *  @return 0; 0x84001B5A (7002) for a null sourcePath; 0x84001B59 (7001) without memory; 0x84000057 for a null out; a
 *          number of the platform */
ORV_API uint64_t d2wCreateContext(const char* sourcePath, const char* destPath, ExtractContext** out);
ORV_API uint64_t d2wCreateContextW(const OrvWChar* sourcePath, const OrvWChar* destPath, ExtractContext** out);

/** Opens the disc: AUDIO_PP.IFO with ATS_01_1.AOB and up, else VIDEO_TS.IFO with VTS_01_0.IFO and its VOBs. Once for a
 *  context, in place of d2wInitContext. An addition of this library to its family of functions.
 *  @param outTrackCount  may be null
 *  @param info           may be null
 *  @return 0; 0x84001B5B (7003) if there is neither; 0x84001B5C (7004) if AUDIO_PP.IFO can't be read, 0x84001B5D (7005)
 *          if it is none or has more than 99 tracks; 0x84001B5E (7006) for a track that is packed losslessly, those
 *          before it being told; 0x84001B5F (7007) if no file with sound can be opened; 0x84001B64 to 0x84001B68 for
 *          the IFO files of DVD-Video, the last for sound that is not LPCM, 0x84001B66 for more than 99 chapters too;
 *          0x84000057 if context is null, or open already; a number of the platform. 0x8400040A (1034) if
 *          info has released the context, which is gone then. After another failure no disc is open, *outTrackCount is
 *          what was counted, and the context may be tried again */
ORV_API uint64_t d2wOpenDisc(ExtractContext* context, uint64_t* outTrackCount, OrvTrackInfo info, uint64_t user);

/** Looks for a disc in its own way: with AUDIO_PP.IFO alone it reads the tables of DVD-Video, with the two IFO files of
 *  DVD-Video alone those of DVD-Audio, and with all three nothing. So it never succeeds in reading a disc, which stays
 *  so; use d2wOpenDisc.
 *  @return 0 if it read nothing; 0x84001B5B (7003); 0x84001B5C (7004); 0x84001B64; 0x84000057 if context is null, or
 *          open by d2wOpenDisc */
ORV_API uint64_t d2wInitContext(ExtractContext* context, uint64_t* outTrackCount, OrvTrackInfo info, uint64_t user);

/** Extracts a track into trackNNN_*.wav, NNN from 001, which are written over if they are there: lf, rf, ls, rs, c and
 *  lfe for single channels, lrf, lrs, c and c_lfe for pairs. c, of five channels, is silent in its second channel then.
 *  A file that could not be completed begins with 46 zero bytes in place of its header.
 *  @param track        from 0
 *  @param stereoPairs  0: a file for each channel
 *  @param progress     may be null
 *  @return 0; 0x84001B62 (7010) for a track past the last; 0x84001B61 (7009) if a file can't be made; 0x84001B63 (7011)
 *          for a channel assignment that can't be extracted; 0x84001B5F (7007) and 0x84001B60 (7008) if a sector can't
 *          be read or is no pack; 0x84001B69 for a context that is not open; 0x8400040A (1034) if progress has released
 *          the context before the last call, 0 if in the last call: it is gone then; 0x84000057 for a null context; a
 * number of the platform */
ORV_API uint64_t d2wExtractTrack(ExtractContext* context, uint64_t track, uint64_t stereoPairs,
                                 OrvExtractProgress progress, uint64_t user);
ORV_API uint64_t d2wExtractTrackW(ExtractContext* context, uint64_t track, uint64_t stereoPairs,
                                  OrvExtractProgressW progress, uint64_t user);

/** Closes the disc and releases the context. Called from a callback, it lets d2wOpenDisc or d2wExtractTrack end, and
 *  the context goes when that call returns, whatever its result. @return 0; 0x84000057 if context is null */
ORV_API uint64_t d2wReleaseContext(ExtractContext* context);

ORV_END_DECLS

#endif
