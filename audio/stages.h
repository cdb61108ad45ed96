// stages.h: the stages of a DVD-Audio run that make files. targetPath is put before file names as it stands.
#pragma once

#include "project/audio_model.h"

#include <cstdint>

/** Writes ATS_nn_1.AOB, or takes the numbers of a finished one from its information file; then ATS_nn_0.IFO and its
    backup. @return 0; ORV_WRONG_ATS_COUNT for a number outside 1..99; ORV_CANCELED; the codes of tracks and tables */
[[nodiscard]] uint64_t CreateAudioTitleSet(AudioDiscContext* context, uint64_t atsNumber, const char16_t* targetPath);
/** Writes AUDIO_SV.VOB, if the disc has stills, AUDIO_SV.IFO and its backup.
    @return 0; ORV_VOB_NOT_OPENED or ORV_MENU_VIDEO_NOT_OPENED, logged; ORV_TEMP_SUBPICTURE_NOT_OPENED;
            ORV_SUBPICTURE_TOO_LARGE; ORV_CANCELED; the codes of the encoder and of the stills */
[[nodiscard]] uint64_t CreateStillManager(AudioDiscContext* context, const char16_t* targetPath);
/** Writes AUDIO_TS.VOB, if the manager has menus, AUDIO_TS.IFO and its backup.
    @return as CreateStillManager; ORV_ASSET_NOT_MPEG, logged; the codes of the scan and of navigation packs */
[[nodiscard]] uint64_t CreateAudioManager(AudioDiscContext* context, const char16_t* targetPath);
/** Writes AUDIO_PP.IFO. */
[[nodiscard]] uint64_t orvCreateAudioPp(AudioDiscContext* context, const char16_t* targetPath);
