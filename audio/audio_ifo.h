// audio_ifo.h: writes the tables of a DVD-Audio disc from the model and the numbers that the stages before have left in
// it.
#pragma once

#include "project/audio_model.h"
#include "video/vobu_record.h"

#include <cstdint>

inline constexpr uint8_t AUDIO_VERSION = 0x12;

/** ATS_nn_0.IFO; its sectors go into the title set's record. @return 0; ORV_ATS_IFO_NOT_CREATED;
    ORV_ATS_IFO_NOT_WRITTEN; a number of the platform */
[[nodiscard]] uint64_t orvWriteAtsIfo(const AudioDiscContext* context, uint64_t atsNumber, const char16_t* path);
/** The tracks of a title as a block that the caller owns. */
[[nodiscard]] uint64_t orvBuildAtsTrackTable(const AudioDiscContext* context, const AudioTitleSetDesc* titleSet,
                                             uint8_t** block);

/** AUDIO_TS.IFO; twice its sectors go into the context.
    @param menuCells  the VOBU list of AUDIO_TS.VOB, record i for menu i; null without menus
    @return 0; ORV_VMG_IFO_NOT_OPENED; a number of the platform */
[[nodiscard]] uint64_t orvWriteAmgIfo(AudioDiscContext* context, const char16_t* path, uint64_t menuVobBytes,
                                      const VobuRecord* menuCells);
/** The menu table, the unit of a group of menus in it, and the program chain of one menu, which is appended to a unit.
    Blocks are the caller's. */
[[nodiscard]] uint64_t orvBuildAmgMenuTable(const AudioDiscContext* context, const VobuRecord* menuCells,
                                            uint8_t** block);
[[nodiscard]] uint64_t orvBuildAmgLanguageUnit(const AudioDiscContext* context, uint64_t group,
                                               const VobuRecord* menuCells, uint8_t** block);
[[nodiscard]] uint64_t orvBuildAmgMenuPgc(const AudioDiscContext* context, uint64_t menuIndex,
                                          const VobuRecord* menuCells, uint8_t** block);

/** AUDIO_PP.IFO. @return 0; ORV_SAMG_NOT_CREATED; ORV_SAMG_NOT_WRITTEN */
[[nodiscard]] uint64_t orvWriteAudioPp(const AudioDiscContext* context, const char16_t* path);

/** AUDIO_SV.IFO. @return 0; ORV_ASVS_IFO_NOT_CREATED; a number of the platform */
[[nodiscard]] uint64_t orvWriteAsvsIfo(const AudioDiscContext* context, const char16_t* path, uint64_t vobBytes);

/** 16 palette entries of 4 bytes: 0 and the three bytes of each colour, the lowest first. */
void orvPutPalette(uint8_t* to, const uint32_t colorTable[PALETTE_ENTRIES]);
/** Play time of all tracks, in ticks. */
[[nodiscard]] uint64_t orvTotalPlayTime(const AudioTitleSetDesc* titleSet);
/** Sample size and rate codes of a track, both groups in a byte. */
[[nodiscard]] uint8_t orvTrackSizeCodes(const AudioTrackDesc* track);
[[nodiscard]] uint8_t orvTrackRateCodes(const AudioTrackDesc* track);
