/* authoring.h: the authoring runs. One call reads a project file and writes a disc directory. */
#ifndef ORVEN_AUTHORING_H
#define ORVEN_AUTHORING_H

#include <orven/types.h>

ORV_BEGIN_DECLS

/** Progress of a run, called on the thread of the run between pieces of work.
 *  @param total  units of the whole run, the same at every call
 *  @param done   units done so far; the last call of a successful run has done equal to total
 *  @param kind   the stage. DVD-Video: 1 menus of a title set, 2 movie of a title set, 3 its IFO written, 4 its backup
 *                copied, 5 menus of the manager, 6 the manager's IFO written, 7 its backup copied. DVD-Audio: 1 sound
 *                of a title set, 2 its IFO written, 3 its backup copied, 4 stills, 5 their IFO written, 6 its backup
 *                copied, 7 menus of the manager, 8 the manager's IFO written, 9 its backup copied, 10 AUDIO_PP.IFO
 *  @param user   the run's progressUser, unchanged
 *  @return 0 to go on; any other value cancels the run, which then returns 0x8400040A */
typedef uint32_t (*OrvProgress)(uint32_t total, uint32_t done, uint32_t kind, uint64_t user);

/** Authors a DVD-Video directory: VIDEO_TS.IFO, VTS_nn_0.IFO and their .BUP copies, and for domains with menus
 *  VIDEO_TS.VOB and VTS_nn_0.VOB. While a menu is made, its sub-pictures lie in the folder for temporary files.
 *
 *  The VOBs of the titles are not made here. They are the project's `source` files, finished program streams, which
 *  lie as VTS_nn_1.VOB and so on in the target directory; the run fills their navigation packs in place.
 *
 *  @param projectPath    the project file
 *  @param targetPath     the directory that receives the files. It is put before file names as it stands, so it ends
 *                        in a path separator; the run makes no directory
 *  @param previousPath   null, empty, or the directory of an earlier run, with its trailing separator. The files of a
 *                        title set found there win over those in targetPath when the manager is written
 *  @param progress       may be null
 *  @param progressUser   handed to progress unchanged
 *  @param logPath        null, or a file to which syntax errors of the project and failures to open a file are
 *                        appended: UTF-16LE without a mark, one line an entry, each text cut to its first half
 *  @return 0; a code 0x840003E8 to 0x8400040B for a fault in the project; 0x840007D0 and up for a fault in
 *          authoring, among them 0x840007D8, 0x840007DA, 0x840007E6 to 0x840007E8 and 0x840007ED to 0x840007F5 for
 *          backgrounds, sub-pictures and buttons of menus; 0x84000FB3, 0x84000FB4 if a source can't be written or
 *          read; 0x8400040A if progress cancelled; 0xFFFFFFFFFFFFFFFD if a title's sources hold no whole sector;
 *          0x84000057 if projectPath or targetPath is null, or a bitmap is none or has another size than the picture;
 *          0x88010102 for a bitmap that is cut short; a number of the platform
 *
 *  A failed or cancelled run leaves the files that it has written, and keeps the memory of its project model: there
 *  is no clean-up on that path. */
ORV_API uint64_t ParseDVDDescW(const OrvWChar* projectPath, const OrvWChar* targetPath, const OrvWChar* previousPath,
                               OrvProgress progress, uint64_t progressUser, const OrvWChar* logPath);

/** The narrow form of ParseDVDDescW. */
ORV_API uint64_t ParseDVDDesc(const char* projectPath, const char* targetPath, const char* previousPath,
                              OrvProgress progress, uint64_t progressUser, const char* logPath);

/** Authors a DVD-Audio directory: ATS_nn_0.IFO, AUDIO_TS.IFO with their .BUP copies and AUDIO_PP.IFO; with menus
 *  AUDIO_TS.VOB; with a section ASVS AUDIO_SV.IFO and its copy, and AUDIO_SV.VOB if it has stills.
 *
 *  A title set whose tracks name a finished ATS_nn_1.AOB by `channel1` takes their numbers from the ATS_nn.nfo beside
 *  it, as aobStartMuxing leaves it (aob.h): that is the way to a whole disc. Tracks that name WAVE files are laid into
 *  ATS_nn_1.AOB with their first pack alone, which stays so. The last track of a title set decides which of the two it
 *  is, and a title set without tracks is of the second kind: an AOB that is there is written over then.
 *
 *  The arguments are those of ParseDVDDescW.
 *  @param reserved  not looked at; may be null
 *  @return 0; a code 0x840003E8 to 0x8400040B or 0x84001772 to 0x84001789 for a fault in the project; 0x84000C1C for
 *          more than 100 tracks; 0x84001771 without memory for the project; 0x840007D1, 0x840007D3, 0x840007D5,
 *          0x840007D8, 0x840007DA, 0x840007E6 to 0x840007E8, 0x840007ED to 0x840007F5, 0x8400177D to 0x8400178B for
 *          faults in authoring; 0x84000FB3, 0x84000FB4, 0xFFFFFFFFFFFFFFFD if AUDIO_TS.VOB can't be written, read, or
 *          holds nothing; 0x8400040A if progress cancelled; 0x84000057 if projectPath or targetPath is null, or a
 * bitmap is none; 0x88010102 for a bitmap that is cut short; 0x88010001 for a WAVE track without one of its `channel`
 *          keys; a number of the platform
 *
 *  A failed or cancelled run leaves the files that it has written, and keeps the memory of its project model. */
ORV_API uint64_t ParseAudioDescW(const OrvWChar* projectPath, const OrvWChar* targetPath, const OrvWChar* reserved,
                                 OrvProgress progress, uint64_t progressUser, const OrvWChar* logPath);

/** The narrow form of ParseAudioDescW. */
ORV_API uint64_t ParseAudioDesc(const char* projectPath, const char* targetPath, const char* reserved,
                                OrvProgress progress, uint64_t progressUser, const char* logPath);

ORV_END_DECLS

#endif
