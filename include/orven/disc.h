/* disc.h: work on a disc that is there already: cells of a multiplexed movie, and the sector numbers of its tables. */
#ifndef ORVEN_DISC_H
#define ORVEN_DISC_H

#include <orven/types.h>

ORV_BEGIN_DECLS

#define ORV_LAST_VOBU 0xFFFFFFFF /* nextVobu of the last navigation pack of a video sequence */

/** Renumbers the cell of a navigation pack by the chapters of a project: the host walks a VOB, hands over its
 *  navigation packs one by one, and writes those back that changed. No file is written.
 *
 *  The keys `chapters` and `chapter1` and up of section VTS_n are read, n without a leading zero; the number at the
 *  start of a `chapter` value is a position in ticks of the 90 kHz clock, 0 the position before it. The cell is one
 *  more than the chapters that lie at or before the pack's clock (nv_pck_scr). The project is read anew at each call.
 *  @param sector          2048 bytes, a navigation pack; changed in place
 *  @param titleSetNumber  n
 *  @param nextVobu        gets the last sector of the unit, counted from this pack: the next navigation pack is the
 *                         sector behind it; ORV_LAST_VOBU at the end of the sequence; may be null
 *  @param changed         gets 1 if the sector changed, else 0; may be null
 *  @return 0, also for a title set without chapters, which leaves sector, nextVobu and changed as they were;
 *          0x840007E0 (2016) for 255 chapters or more; 0x84000FAF (4015) for a sector that is no pack; 0x84002329
 *          (9001) for one that is no navigation pack; 0x84000057 for a null sector or path; 0x88010002 if memory is
 *          short; the platform's number where a narrow path can't be converted */
ORV_API uint64_t SetRawChapter(uint8_t* sector, const char* projectPath, uint64_t titleSetNumber, uint64_t* nextVobu,
                               uint64_t* changed);
ORV_API uint64_t SetRawChapterW(uint8_t* sector, const OrvWChar* projectPath, uint64_t titleSetNumber,
                                uint64_t* nextVobu, uint64_t* changed);

/** Brings the sector numbers of VIDEO_TS.IFO and of each VTS_nn_0.IFO into line with the sizes of the files beside
 *  them, and copies each IFO over its backup. Nothing else is judged or changed.
 *
 *  Two things to know: the manager's length counts its IFO twice and its backup, but not VIDEO_TS.VOB; and a title set
 *  of `skipvts` passes only if previousPath has a ninth title VOB, VTS_nn_9.VOB.
 *  @param projectPath   whose keys `skipvts` count; nothing else of it is read
 *  @param discPath      the directory; its trailing separator may be missing
 *  @param previousPath  where the title sets of `skipvts` lie, with its trailing separator. The wide form takes null
 *                       for these two where no title set is skipped
 *  @return 0; 0x840007D5 (2005) if VIDEO_TS.IFO can't be opened; 0x840007E9 (2025) if it can't be read or written;
 *          0x840007EA (2026) if its backup can't be written, as on Windows, where the backup is open meanwhile: all
 *          else is done then; 0x840007EB (2027) if a title set's IFO can't be read; 0x84000057 for a null argument;
 *          0x88010001 if a skipped title set's path is longer than 1023 characters; 0x88010002 if memory is short; the
 *          platform's number for other failures of a title set. Title sets before a failing one are fixed, the manager
 *          is not */
ORV_API uint64_t CheckDVDStructure(const char* projectPath, const char* discPath, const char* previousPath);
ORV_API uint64_t CheckDVDStructureW(const OrvWChar* projectPath, const OrvWChar* discPath,
                                    const OrvWChar* previousPath);

ORV_END_DECLS

#endif
