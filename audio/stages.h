// stages.h: the stages of a DVD-Audio run that make files. targetPath is put before file names as it stands.
#pragma once

#include "project/audio_model.h"

#include <cstdint>

/** Writes ATS_nn_1.AOB, or takes the numbers of a finished one from its information file; then ATS_nn_0.IFO and its
    backup. @return 0; ORV_WRONG_ATS_COUNT for a number outside 1..99; ORV_CANCELED; the codes of tracks and tables */
[[nodiscard]] uint64_t CreateAudioTitleSet(AudioDiscContext* context, uint64_t atsNumber, const char16_t* targetPath);
/** Writes AUDIO_SV.VOB, if the disc has stills, AUDIO_SV.IFO and its backup.
    @return 0; ORV_VOB_NOT_OPENED or ORV_MENU_VIDEO_NOT_OPENED, logged; ORV_TEMP_SUBPICTURE_NOT_OPENED;
            ORV_SUBPICTURE_TOO_LARGE; ORV_CANCELED; the codes of the encoder, of the stills and of orvWriteAsvsIfo */
[[nodiscard]] uint64_t CreateStillManager(AudioDiscContext* context, const char16_t* targetPath);
/** Writes AUDIO_TS.VOB, if the manager has menus, AUDIO_TS.IFO and its backup.
    @return as CreateStillManager, but for the codes of stills; ORV_ASSET_NOT_MPEG, logged; ORV_MENU_VOB_NOT_WRITTEN;
   the codes of the asset drivers, of the scan, of navigation packs and of orvWriteAmgIfo */
[[nodiscard]] uint64_t CreateAudioManager(AudioDiscContext* context, const char16_t* targetPath);
/** Writes AUDIO_PP.IFO. @return 0; ORV_CANCELED; the codes of orvWriteAudioPp */
[[nodiscard]] uint64_t orvCreateAudioPp(AudioDiscContext* context, const char16_t* targetPath);
