// audio_units.h: what the audio kinds have in common: units of equal length and the plan of a pack.
#pragma once

#include "mux/mux_types.h"

[[nodiscard]] uint64_t orvSetupLpcm(MuxStream* stream);
[[nodiscard]] uint64_t orvSetupMpegAudio(MuxStream* stream);
[[nodiscard]] uint64_t orvSetupAc3(MuxStream* stream);
[[nodiscard]] uint64_t orvSetupAc3Table(MuxStream* stream);

/** Writes what the audio kinds have in common into a stream: decoder model, buffer of the PES extension, operations of
    units of equal length. */
void orvSetupAudio(MuxStream* stream, uint64_t unitTicks);

// Room of an audio stream's packs, with the P-STD extension in the first.
struct AudioRoom {
    uint64_t first, later;
    uint64_t firstPadding, laterPadding;   // that whole units leave
};
/** Plan of a pack; unit by unit as the stream's unitAt says. */
[[nodiscard]] MuxPlan orvPlanAudio(const MuxStream* stream, const AudioRoom* room);

/** Whether a chunk begins with "END ". */
[[nodiscard]] bool orvIsEndMark(const uint8_t* chunk, uint64_t size);
/** Takes frame size and bit rate of AC-3 from a frame's byte 4; size 0 for a code that has none. @return false for
    another sampling rate than 48 kHz */
[[nodiscard]] bool orvReadAc3Size(MuxStream* stream, uint8_t sizeCode);
/** Checks the stream id of private stream 1. */
[[nodiscard]] uint64_t orvCheckPrivateId(const MuxStream* stream);
