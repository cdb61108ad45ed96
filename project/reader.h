// reader.h: the sections of a DVD-Video project file, read into the model. Every reader returns at the first fault,
// with the fault's code; what a structured value lacks, an unknown resolution and a missing source are logged as well.
#pragma once

#include "base/profile.h"
#include "project/model.h"

#include <cstdint>

/** Section COMMON: format version and video standard. */
[[nodiscard]] uint64_t orvReadCommon(const RunHead* run, const OsProfile* file, int64_t* standard);
/** The same section for a DVD-Audio run: no version, a wrong version and a wrong mode have codes of that run. */
[[nodiscard]] uint64_t orvReadAudioCommon(const RunHead* run, const OsProfile* file, int64_t* standard);
/** Takes a video standard into the head of a run, with its frame length. @return 0; ORV_WRONG_VIDEO_FORMAT for one that
    is neither PAL nor NTSC */
[[nodiscard]] uint64_t orvSetStandard(RunHead* head, int64_t standard);
/** Section FIRSTPLAY: the command with which a disc starts. */
[[nodiscard]] uint64_t orvReadFirstPlay(DiscContext* context, const OsProfile* file);
/** Section VMG with all title sets and the manager's menus. vmg is the manager's record in the context. */
[[nodiscard]] uint64_t orvReadManager(DiscContext* context, const OsProfile* file, int64_t standard, TitleSetDesc* vmg);
/** One title set. @return 0; ORV_TITLE_SET_SKIPPED; a code of the project file */
[[nodiscard]] uint64_t orvReadTitleSet(const RunHead* run, const OsProfile* file, uint64_t number, int64_t standard,
                                       TitleSetDesc* titleSet);
/** One menu page. */
[[nodiscard]] uint64_t orvReadMenu(const RunHead* run, const OsProfile* file, const char16_t* section, int64_t standard,
                                   MenuDesc* menu);
/** The value of a `button` key. */
[[nodiscard]] uint64_t orvReadButton(const RunHead* run, const char16_t* value, ButtonDesc* button);
/** The keys `buttons` and `button1` and up of a section. */
[[nodiscard]] uint64_t orvReadButtons(const RunHead* run, const OsProfile* file, const char16_t* section,
                                      ButtonDesc buttons[MAX_BUTTONS], uint64_t* buttonCount);
/** The keys `colorset1` to `colorset3` of a section. */
[[nodiscard]] uint64_t orvReadColorSets(const RunHead* run, const OsProfile* file, const char16_t* section,
                                        uint8_t colorSets[COLOR_SETS][COLOR_SET_BYTES]);
/** Video and audio attributes and colour table of a section. */
[[nodiscard]] uint64_t orvReadAttributes(const RunHead* run, const OsProfile* file, const char16_t* section,
                                         int64_t standard, AttributeSet* attributes);
/** The keys `colortable1` to `colortable16` of a section. */
[[nodiscard]] uint64_t orvReadColorTable(const RunHead* run, const OsProfile* file, const char16_t* section,
                                         uint32_t colorTable[PALETTE_ENTRIES]);
/** One audio stream of a section; suffix is null for the first. */
[[nodiscard]] uint64_t orvReadAudioStream(const RunHead* run, AttributeSet* attributes, AudioStreamDesc* stream,
                                          const OsProfile* file, const char16_t* section, const char16_t* suffix);
