// pgc.h: program chains, the blocks of an IFO that tell a player what to play and what to do around it.
#pragma once

#include "project/model.h"
#include "video/vobu_record.h"

#include <cstdint>

// How the cells of a chain end: the loopMode of a menu, or CELLS_OF_TITLE.
inline constexpr uint64_t CELLS_OF_TITLE = 3;
// A title is VOB 1 of its list, whichever numbers later source files got.
inline constexpr uint64_t TITLE_VOB = 1;

/** Colour of a palette entry, 0..15, in a menu's chain: luminance in the low byte, then Cr and Cb. menu may be null. */
[[nodiscard]] uint32_t orvPaletteColor(const AttributeSet* attributes, const MenuDesc* menu, uint64_t entry);

/** Builds the chain of one VOB.
    @param menus         menus[vobId - 1] chooses the palette and the letterbox stream
    @param commandTable  a block that this function frees, or null
    @param result        receives a new block, the caller's */
[[nodiscard]] uint64_t orvBuildPgc(const MenuDesc* menus, const AttributeSet* attributes, int64_t videoStandard,
                                   uint64_t prohibitedOps, uint64_t cellMode, uint8_t* commandTable, uint64_t vobId,
                                   const VobuRecord* vobuList, uint8_t** result);

/** The chain of a title set's menu; menuIndex counts from 0. */
[[nodiscard]] uint64_t orvBuildMenuPgc(TitleSetDesc* titleSet, int64_t videoStandard, uint64_t menuIndex,
                                       const VobuRecord* vobuList, uint8_t** result);
/** The chain of a manager's menu. Without a VOBU list it has no cells. */
[[nodiscard]] uint64_t orvBuildManagerMenuPgc(TitleSetDesc* manager, int64_t videoStandard, uint64_t menuIndex,
                                              uint64_t titleSetCount, const VobuRecord* vobuList, uint8_t** result);
/** The chain of a title set's title. */
[[nodiscard]] uint64_t orvBuildTitlePgc(TitleSetDesc* titleSet, uint64_t titleSetNumber, int64_t videoStandard,
                                        const VobuRecord* vobuList, uint8_t** result);
