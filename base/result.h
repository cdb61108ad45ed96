// result.h: the result codes that every fallible function of the library returns, by name.
#pragma once

#include <cstdint>

// A result is 64 bits wide, its code the low 32. 0 is success.
inline constexpr uint64_t ORV_LIBRARY = 0x84000000;   // the library's codes: this plus the message's id

#define ORV_MESSAGE(id, name, text) inline constexpr uint64_t ORV_##name = ORV_LIBRARY + (id);
#include "base/messages.inc"
#undef ORV_MESSAGE

// Codes of the library that have no text.
inline constexpr uint64_t ORV_INVALID_ARGUMENT = ORV_LIBRARY + 87;           // a required pointer was null
inline constexpr uint64_t ORV_NOT_A_PACK = ORV_LIBRARY + 9002;               // a stream is not one of packs
inline constexpr uint64_t ORV_TOO_MANY_AUDIO_STREAMS = ORV_LIBRARY + 1035;   // `astreams` above 8
inline constexpr uint64_t ORV_TOO_MANY_TRACKS = ORV_LIBRARY + 3100;          // of an audio title set
inline constexpr uint64_t ORV_AOB_UNDERRUN = ORV_LIBRARY + 3102;             // the decoder wants more than it was given
inline constexpr uint64_t ORV_EXTRACT_VMG_NOT_READ = ORV_LIBRARY + 7012;
inline constexpr uint64_t ORV_EXTRACT_VTS_NOT_READ = ORV_LIBRARY + 7013;
inline constexpr uint64_t ORV_EXTRACT_NO_VMG = ORV_LIBRARY + 7014;      // no IFO of a manager
inline constexpr uint64_t ORV_EXTRACT_NO_VTS = ORV_LIBRARY + 7015;      // no IFO of a title set
inline constexpr uint64_t ORV_EXTRACT_NO_LPCM = ORV_LIBRARY + 7016;     // the title's sound is no LPCM
inline constexpr uint64_t ORV_EXTRACT_NO_SOURCE = ORV_LIBRARY + 7017;   // no reader has seen the context
inline constexpr uint64_t ORV_TITLE_SET_SKIPPED = ORV_LIBRARY + 1099;   // `skipvts`; never leaves the library

// A source or a menu VOB could not be written or read: the codes of "write failed" and "read failed".
inline constexpr uint64_t ORV_MOVIE_NOT_WRITTEN = ORV_WRITE_FAILED;
inline constexpr uint64_t ORV_MOVIE_NOT_READ = ORV_READ_FAILED;

// Meant: the one result that fills all 64 bits, -3. A movie's sources held no whole sector.
// Test: Source.NoWholeSector
inline constexpr uint64_t ORV_NOTHING_SCANNED = 0xFFFFFFFFFFFFFFFD;

// Codes of the base layer; they have no text.
inline constexpr uint64_t OS_INVALID_ARGUMENT = 0x88010001;
inline constexpr uint64_t OS_OUT_OF_MEMORY =
    0x88010002;   // for a string; a memory block fails with the platform's number
inline constexpr uint64_t OS_SHORT_READ = 0x88010102;
