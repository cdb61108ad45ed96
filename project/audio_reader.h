// audio_reader.h: the sections of a DVD-Audio project file, read into the model. The readers are laxer than those of
// DVD-Video: fixed buffers, integer keys, hardly any tokens. Every reader returns at the first fault, with its code.
#pragma once

#include "base/profile.h"
#include "project/audio_model.h"

#include <cstdint>

/** One menu page of the manager. @return 0; a code of the project file, among them ORV_WRONG_MENU_TYPE for any `type`
 */
[[nodiscard]] uint64_t orvReadAmgMenu(const RunHead* run, const OsProfile* file, const char16_t* section,
                                      MenuDesc* menu);
/** Sections ASVS, ASVU_ATTRIBUTEk and ASVnn. */
[[nodiscard]] uint64_t orvReadStills(const RunHead* run, const OsProfile* file, int64_t standard, AsvsDesc* asvs);
/** Sections ATS_nn and its TRACK_nn_mm. */
[[nodiscard]] uint64_t orvReadAudioTitleSet(const RunHead* run, const OsProfile* file, uint64_t number,
                                            AudioTitleSetDesc* titleSet);
/** Sets assignment, channels, sample sizes and rates of a track. The second group repeats the first.
    @return 0 or ORV_INVALID_ASSIGNMENT */
[[nodiscard]] uint64_t orvSetChannels(AudioTrackDesc* track, uint64_t assign);
void orvSetSampling(AudioTrackDesc* track, uint64_t sampleSize, uint64_t sampleRate);
