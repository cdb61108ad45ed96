// audio_ifo_layout.h: headers and tables of the IFO files of DVD-Audio. Offsets from the start of each structure;
// values big-endian; bytes that no row names are 0.
#pragma once

#include "base/bytes.h"

#include <cstdint>

inline constexpr uint64_t IFO_TEXT_BYTES = 12;   // of the identifiers

// clang-format off
// Header of ATS_nn_0.IFO, one sector. Sectors count from the start of the title set.
//                                              at  size  name                     unit or values
inline constexpr DiscField ATS_IDENTIFIER     = {  0,  12, "ats_identifier"    };  // "DVDAUDIO-ATS"
inline constexpr DiscField ATS_LAST_SECTOR    = { 12,   4, "ats_last_sector"   };
inline constexpr DiscField ATSI_LAST_SECTOR   = { 28,   4, "atsi_last_sector"  };
inline constexpr DiscField ATS_VERSION        = { 33,   1, "version"           };
inline constexpr DiscField ATSI_LAST_BYTE     = {128,   4, "atsi_last_byte"    };
inline constexpr DiscField ATS_AOBS           = {196,   4, "ats_aobs"          };
inline constexpr DiscField ATS_PGCIT_AT       = {204,   4, "ats_pgcit"         };  // 1: behind the header
inline constexpr DiscField ATS_SIZE_CODES     = {258,   1, "quantization"      };  // group 1 in the high half
inline constexpr DiscField ATS_RATE_CODES     = {259,   1, "sampling frequency"};  // group 1 in the high half
inline constexpr DiscField ATS_ASSIGNMENT     = {260,   1, "channel assignment"};  // low five bits
inline constexpr DiscField ATS_FIELDS[] = { ATS_IDENTIFIER, ATS_LAST_SECTOR, ATSI_LAST_SECTOR, ATS_VERSION,
                                            ATSI_LAST_BYTE, ATS_AOBS,        ATS_PGCIT_AT,     ATS_SIZE_CODES,
                                            ATS_RATE_CODES, ATS_ASSIGNMENT };

// Head of the table of titles, and its one entry.
inline constexpr DiscField TITLES_COUNT       = {  0,   2, "nr_of_titles"      };
inline constexpr DiscField TITLES_LAST_BYTE   = {  4,   4, "last_byte"         };
inline constexpr DiscField TITLE_ENTRY_TYPE   = {  8,   4, "title category"    };
inline constexpr DiscField TITLE_ENTRY_AT     = { 12,   4, "title offset"      };  // bytes from the table's start
inline constexpr DiscField TITLES_FIELDS[] = { TITLES_COUNT, TITLES_LAST_BYTE, TITLE_ENTRY_TYPE, TITLE_ENTRY_AT };
inline constexpr uint64_t TITLES_HEAD_BYTES = 8, TITLES_ENTRY_BYTES = 8;

// A title: its tracks, their sectors and their stills. Offsets from its start.
inline constexpr DiscField TRACKS_PROGRAMS    = {  2,   1, "nr_of_programs"    };  // low seven bits
inline constexpr DiscField TRACKS_CELLS       = {  3,   1, "nr_of_cells"       };
inline constexpr DiscField TRACKS_TIME        = {  4,   4, "playback_time"     };  // ticks
inline constexpr DiscField TRACKS_RECORDS_AT  = { 10,   2, "track records"     };  // bytes
inline constexpr DiscField TRACKS_SECTORS_AT  = { 12,   2, "sector records"    };
inline constexpr DiscField TRACKS_STILLS_AT   = { 14,   2, "still records"     };  // 0: none
inline constexpr DiscField TRACKS_FIELDS[] = { TRACKS_PROGRAMS,   TRACKS_CELLS,      TRACKS_TIME,
                                               TRACKS_RECORDS_AT, TRACKS_SECTORS_AT, TRACKS_STILLS_AT };
inline constexpr uint64_t TRACKS_HEAD_BYTES = 16;

inline constexpr DiscField TRACK_FLAGS        = {  0,   1, "category"          };  // 0xC0: the first of its title
inline constexpr DiscField TRACK_CELLS        = {  1,   1, "cells"             };
inline constexpr DiscField TRACK_NUMBER       = {  4,   1, "track number"      };
inline constexpr DiscField TRACK_FIRST_PTS    = {  6,   4, "first_pts"         };  // ticks
inline constexpr DiscField TRACK_TIME         = { 10,   4, "playback_time"     };  // ticks
inline constexpr DiscField TRACK_FIELDS[] = { TRACK_FLAGS, TRACK_CELLS, TRACK_NUMBER, TRACK_FIRST_PTS, TRACK_TIME };
inline constexpr uint64_t TRACK_BYTES = 20;

inline constexpr DiscField SECTORS_TYPE       = {  0,   1, "type"              };
inline constexpr DiscField SECTORS_FIRST      = {  4,   4, "first_sector"      };  // from the AOB's start
inline constexpr DiscField SECTORS_LAST       = {  8,   4, "last_sector"       };
inline constexpr DiscField SECTORS_FIELDS[] = { SECTORS_TYPE, SECTORS_FIRST, SECTORS_LAST };
inline constexpr uint64_t SECTORS_BYTES = 12;

// A list of stills for each track, and the one still in it.
inline constexpr DiscField STILL_LIST_COUNT   = {  0,   1, "nr_of_stills"      };
inline constexpr DiscField STILL_LIST_FIRST   = {  2,   2, "first_byte"        };  // from the first list's start
inline constexpr DiscField STILL_LIST_LAST    = {  4,   2, "last_byte"         };
inline constexpr DiscField STILL_LIST_FIELDS[] = { STILL_LIST_COUNT, STILL_LIST_FIRST, STILL_LIST_LAST };
inline constexpr uint64_t STILL_LIST_BYTES = 6;
inline constexpr DiscField STILL_NUMBER       = {  0,   1, "still number"      };
inline constexpr DiscField STILL_NUMBER_AGAIN = {  3,   1, "still number"      };
inline constexpr DiscField STILL_FIELDS[] = { STILL_NUMBER, STILL_NUMBER_AGAIN };
inline constexpr uint64_t STILL_BYTES = 10;

// Header of AUDIO_TS.IFO, one sector.
inline constexpr DiscField AMG_IDENTIFIER     = {  0,  12, "amg_identifier"    };  // "DVDAUDIO-AMG"
inline constexpr DiscField AMG_LAST_SECTOR    = { 12,   4, "amg_last_sector"   };
inline constexpr DiscField AMGI_LAST_SECTOR   = { 28,   4, "amgi_last_sector"  };
inline constexpr DiscField AMG_VERSION        = { 33,   1, "version"           };
inline constexpr DiscField AMG_VOLUMES        = { 38,   2, "nr_of_volumes"     };
inline constexpr DiscField AMG_THIS_VOLUME    = { 40,   2, "this_volume_nr"    };
inline constexpr DiscField AMG_DISC_SIDE      = { 42,   1, "disc_side"         };
inline constexpr DiscField AMG_AUTOPLAY       = { 47,   1, "autoplay"          };
inline constexpr DiscField AMG_ASVS           = { 48,   4, "asvs"              };  // first sector of the stills; 0: none
inline constexpr DiscField AMG_TITLE_SETS     = { 63,   1, "nr_of_ats"         };
inline constexpr DiscField AMGI_LAST_BYTE     = {128,   4, "amgi_last_byte"    };
inline constexpr DiscField AMGM_VOBS          = {192,   4, "amgm_vobs"         };  // 0: none
inline constexpr DiscField AMG_TITLES_AT      = {196,   4, "att_srpt"          };  // sectors
inline constexpr DiscField AMG_AUDIO_TITLES_AT = {200,  4, "aott_srpt"         };
inline constexpr DiscField AMGM_PGCI_UT_AT    = {204,   4, "amgm_pgci_ut"      };  // 0: none
inline constexpr DiscField AMGM_VIDEO_ATTR    = {256,   1, "amgm_video_attr"   };
inline constexpr DiscField AMG_FIELDS[] = { AMG_IDENTIFIER, AMG_LAST_SECTOR, AMGI_LAST_SECTOR,    AMG_VERSION,
                                            AMG_VOLUMES,    AMG_THIS_VOLUME, AMG_DISC_SIDE,       AMG_AUTOPLAY,
                                            AMG_ASVS,       AMG_TITLE_SETS,  AMGI_LAST_BYTE,      AMGM_VOBS,
                                            AMG_TITLES_AT,  AMG_AUDIO_TITLES_AT, AMGM_PGCI_UT_AT, AMGM_VIDEO_ATTR };

// The list of audio titles, with its one title.
inline constexpr DiscField AUDIO_TITLES_COUNT = {  0,   2, "count"             };
inline constexpr DiscField AUDIO_TITLES_LAST  = {  2,   2, "last_byte"         };
inline constexpr DiscField AUDIO_TITLE_TYPE   = {  4,   1, "title type"        };
inline constexpr DiscField AUDIO_TITLE_TRACKS = {  5,   1, "nr_of_tracks"      };
inline constexpr DiscField AUDIO_TITLE_TIME   = {  8,   4, "playback_time"     };  // ticks
inline constexpr DiscField AUDIO_TITLE_SET    = { 12,   1, "ats_nr"            };
inline constexpr DiscField AUDIO_TITLE_IN_SET = { 13,   1, "title in the set"  };
inline constexpr DiscField AUDIO_TITLE_START  = { 14,   4, "ats_sector"        };
inline constexpr DiscField AUDIO_TITLES_FIELDS[] = { AUDIO_TITLES_COUNT, AUDIO_TITLES_LAST,  AUDIO_TITLE_TYPE,
                                                     AUDIO_TITLE_TRACKS, AUDIO_TITLE_TIME,   AUDIO_TITLE_SET,
                                                     AUDIO_TITLE_IN_SET, AUDIO_TITLE_START };
inline constexpr uint64_t AUDIO_TITLES_BYTES = 18;

// Head of the menu table and of its language unit; entries follow. The program chains have the layout of DVD-Video.
inline constexpr DiscField MENUS_COUNT        = {  0,   2, "count"             };
inline constexpr DiscField MENUS_LAST_BYTE    = {  4,   4, "last_byte"         };
inline constexpr DiscField MENUS_FIELDS[] = { MENUS_COUNT, MENUS_LAST_BYTE };
inline constexpr uint64_t MENUS_HEAD_BYTES = 8;
inline constexpr DiscField MENU_LANGUAGE      = {  0,   2, "lang_code"         };  // of the table
inline constexpr DiscField MENU_EXISTS        = {  3,   1, "exists"            };
inline constexpr DiscField MENU_PGC_TYPE      = {  0,   1, "pgc category"      };  // of the unit
inline constexpr DiscField MENU_ENTRY_AT      = {  4,   4, "offset"            };  // bytes from the start of table or unit
inline constexpr uint64_t MENU_ENTRY_BYTES = 8;

// AUDIO_PP.IFO: the table for players of sound alone, eight times over.
inline constexpr DiscField SAMG_IDENTIFIER    = {  0,  12, "samg_identifier"   };  // "DVDAUDIOSAPP"
inline constexpr DiscField SAMG_TRACKS        = { 12,   2, "nr_of_tracks"      };
inline constexpr DiscField SAMG_VERSION       = { 15,   1, "version"           };
inline constexpr DiscField SAMG_FIELDS[] = { SAMG_IDENTIFIER, SAMG_TRACKS, SAMG_VERSION };
inline constexpr uint64_t SAMG_HEAD_BYTES = 18;
inline constexpr uint64_t SAMG_BYTES = 16384, SAMG_COPIES = 8;

inline constexpr DiscField SAMG_TRACK_SET     = {  0,   1, "title set"         };
inline constexpr DiscField SAMG_TRACK_NUMBER  = {  1,   1, "track number"      };
inline constexpr DiscField SAMG_FIRST_PTS     = {  2,   4, "first_pts"         };  // ticks
inline constexpr DiscField SAMG_TIME          = {  6,   4, "playback_time"     };  // ticks
inline constexpr DiscField SAMG_FLAG          = { 10,   4, "track flag"        };
inline constexpr DiscField SAMG_ATTRIBUTES    = { 14,   1, "attributes"        };  // bit 4: packed losslessly
inline constexpr DiscField SAMG_SIZE_CODES    = { 15,   1, "quantization"      };  // group 1 in the high half
inline constexpr DiscField SAMG_RATE_CODES    = { 16,   1, "sampling frequency"};  // group 1 in the high half
inline constexpr DiscField SAMG_ASSIGNMENT    = { 17,   1, "channel assignment"};  // low five bits
inline constexpr DiscField SAMG_FIRST_SECTOR  = { 38,   4, "first_sector"      };  // on the disc
inline constexpr DiscField SAMG_START_SECTOR  = { 42,   4, "start_sector"      };
inline constexpr DiscField SAMG_LAST_SECTOR   = { 46,   4, "last_sector"       };
inline constexpr DiscField SAMG_TRACK_FIELDS[] = { SAMG_TRACK_SET,  SAMG_TRACK_NUMBER, SAMG_FIRST_PTS,
                                                   SAMG_TIME,       SAMG_FLAG,         SAMG_ATTRIBUTES,
                                                   SAMG_SIZE_CODES, SAMG_RATE_CODES,   SAMG_ASSIGNMENT,
                                                   SAMG_FIRST_SECTOR, SAMG_START_SECTOR, SAMG_LAST_SECTOR };
inline constexpr uint64_t SAMG_TRACK_BYTES = 52;

// AUDIO_SV.IFO, two sectors.
inline constexpr DiscField ASVS_IDENTIFIER    = {  0,  12, "asvs_identifier"   };  // "DVDAUDIOASVS"
inline constexpr DiscField ASVS_UNITS         = { 12,   2, "nr_of_asvus"       };
inline constexpr DiscField ASVS_VERSION       = { 15,   1, "version"           };
inline constexpr DiscField ASVS_VOB           = { 16,   4, "asvobs"            };  // first sector, from the IFO's start
inline constexpr DiscField ASVS_VOB_LAST      = { 20,   4, "asvobs_last"       };  // from the VOB's start
inline constexpr DiscField ASVS_ATTRIBUTES    = { 24,   8, "asvu_attr"         };  // 4 records
inline constexpr DiscField ASVS_PALETTE       = { 32,  64, "palette"           };  // 16 entries
inline constexpr DiscField ASVS_STILLS        = { 96,   1, "nr_of_stills"      };
inline constexpr DiscField ASVS_FIRST_STILL   = { 98,   2, "first_still"       };
inline constexpr DiscField ASVS_STILL_STARTS  = {888, 198, "still sectors"     };  // 99 words; the low 12 bits
inline constexpr DiscField ASVS_FIELDS[] = { ASVS_IDENTIFIER, ASVS_UNITS,   ASVS_VERSION, ASVS_VOB,         ASVS_VOB_LAST,
                                             ASVS_ATTRIBUTES, ASVS_PALETTE, ASVS_STILLS,  ASVS_FIRST_STILL, ASVS_STILL_STARTS };
inline constexpr uint64_t ASVS_BYTES = 2 * SECTOR_BYTES;
// clang-format on

static_assert(orvFieldsFit(ATS_FIELDS, SECTOR_BYTES));
static_assert(orvFieldsFit(TITLES_FIELDS, TITLES_HEAD_BYTES + TITLES_ENTRY_BYTES));
static_assert(orvFieldsFit(TRACKS_FIELDS, TRACKS_HEAD_BYTES));
static_assert(orvFieldsFit(TRACK_FIELDS, TRACK_BYTES));
static_assert(orvFieldsFit(SECTORS_FIELDS, SECTORS_BYTES));
static_assert(orvFieldsFit(STILL_LIST_FIELDS, STILL_LIST_BYTES));
static_assert(orvFieldsFit(STILL_FIELDS, STILL_BYTES));
static_assert(orvFieldsFit(AMG_FIELDS, SECTOR_BYTES));
static_assert(orvFieldsFit(AUDIO_TITLES_FIELDS, AUDIO_TITLES_BYTES));
static_assert(orvFieldsFit(MENUS_FIELDS, MENUS_HEAD_BYTES));
static_assert(orvFieldsFit(SAMG_FIELDS, SAMG_HEAD_BYTES));
static_assert(orvFieldsFit(SAMG_TRACK_FIELDS, SAMG_TRACK_BYTES));
static_assert(orvFieldsFit(ASVS_FIELDS, ASVS_BYTES));
