// pgc_layout.h: the program chain, a block of an IFO file. Offsets from the block's start; values big-endian.
#pragma once

#include "base/bytes.h"

#include <cstdint>

// clang-format off
//                                                 at  size  published name         unit or values
inline constexpr DiscField PGC_PROGRAMS        = {  2,   1, "nr_of_programs"     };
inline constexpr DiscField PGC_CELLS           = {  3,   1, "nr_of_cells"        };
inline constexpr DiscField PGC_PLAYBACK_TIME   = {  4,   4, "playback_time"      };  // DvdTimeCode
inline constexpr DiscField PGC_PROHIBITED_OPS  = {  8,   4, "prohibited_ops"     };
inline constexpr DiscField PGC_AUDIO_CONTROL   = { 12,  16, "audio_control"      };  // 8 entries of 2 bytes
inline constexpr DiscField PGC_SUBP_CONTROL    = { 28, 128, "subp_control"       };  // 32 entries of 4 bytes
inline constexpr DiscField PGC_NEXT            = {156,   2, "next_pgc_nr"        };
inline constexpr DiscField PGC_PREV            = {158,   2, "prev_pgc_nr"        };
inline constexpr DiscField PGC_GO_UP           = {160,   2, "goup_pgc_nr"        };
inline constexpr DiscField PGC_STILL_TIME      = {162,   1, "still_time"         };  // seconds
inline constexpr DiscField PGC_PLAYBACK_MODE   = {163,   1, "pg_playback_mode"   };
inline constexpr DiscField PGC_PALETTE         = {164,  64, "palette"            };  // 16 entries 0, Y, Cr, Cb
inline constexpr DiscField PGC_COMMANDS        = {228,   2, "command_tbl_offset" };  // 0: none, as the next three
inline constexpr DiscField PGC_PROGRAM_MAP     = {230,   2, "program_map_offset" };
inline constexpr DiscField PGC_CELL_PLAYBACK   = {232,   2, "cell_playback_offset" };
inline constexpr DiscField PGC_CELL_POSITION   = {234,   2, "cell_position_offset" };
inline constexpr DiscField PGC_FIELDS[] = {
    PGC_PROGRAMS,     PGC_CELLS,       PGC_PLAYBACK_TIME, PGC_PROHIBITED_OPS, PGC_AUDIO_CONTROL, PGC_SUBP_CONTROL,
    PGC_NEXT,         PGC_PREV,        PGC_GO_UP,         PGC_STILL_TIME,     PGC_PLAYBACK_MODE, PGC_PALETTE,
    PGC_COMMANDS,     PGC_PROGRAM_MAP, PGC_CELL_PLAYBACK, PGC_CELL_POSITION,
};
inline constexpr uint64_t PGC_BYTES = 236;   // the tables follow

// One entry of the cell playback table.
inline constexpr DiscField CELL_FLAGS          = {  0,   1, "cell_flags"         };  // 02 STC discontinuity, 08 seamless
inline constexpr DiscField CELL_STILL_TIME     = {  2,   1, "still_time"         };  // seconds, FF: until the viewer acts
inline constexpr DiscField CELL_COMMAND        = {  3,   1, "cell_cmd_nr"        };
inline constexpr DiscField CELL_TIME           = {  4,   4, "playback_time"      };  // DvdTimeCode
inline constexpr DiscField CELL_FIRST_SECTOR   = {  8,   4, "first_sector"       };
inline constexpr DiscField CELL_FIRST_ILVU_END = { 12,   4, "first_ilvu_end_sector" };
inline constexpr DiscField CELL_LAST_VOBU      = { 16,   4, "last_vobu_start_sector" };
inline constexpr DiscField CELL_LAST_SECTOR    = { 20,   4, "last_sector"        };
inline constexpr DiscField CELL_FIELDS[] = { CELL_FLAGS,        CELL_STILL_TIME,     CELL_COMMAND,   CELL_TIME,
                                             CELL_FIRST_SECTOR, CELL_FIRST_ILVU_END, CELL_LAST_VOBU, CELL_LAST_SECTOR };
inline constexpr uint64_t CELL_PLAYBACK_BYTES = 24;

// One entry of the cell position table.
inline constexpr DiscField POSITION_VOB_ID     = {  0,   2, "vob_id_nr"          };
inline constexpr DiscField POSITION_CELL       = {  3,   1, "cell_nr"            };
inline constexpr DiscField POSITION_FIELDS[] = { POSITION_VOB_ID, POSITION_CELL };
inline constexpr uint64_t CELL_POSITION_BYTES = 4;

// Head of the command table; the commands follow.
inline constexpr DiscField COMMANDS_PRE        = {  0,   2, "nr_of_pre"          };
inline constexpr DiscField COMMANDS_POST       = {  2,   2, "nr_of_post"         };
inline constexpr DiscField COMMANDS_CELL       = {  4,   2, "nr_of_cell"         };
inline constexpr DiscField COMMANDS_LAST_BYTE  = {  6,   2, "last_byte"          };
inline constexpr DiscField COMMANDS_FIELDS[] = { COMMANDS_PRE, COMMANDS_POST, COMMANDS_CELL, COMMANDS_LAST_BYTE };
inline constexpr uint64_t COMMANDS_HEADER_BYTES = 8;
// clang-format on

static_assert(orvFieldsFit(PGC_FIELDS, PGC_BYTES));
static_assert(orvFieldsFit(CELL_FIELDS, CELL_PLAYBACK_BYTES));
static_assert(orvFieldsFit(POSITION_FIELDS, CELL_POSITION_BYTES));
static_assert(orvFieldsFit(COMMANDS_FIELDS, COMMANDS_HEADER_BYTES));

inline constexpr uint64_t AUDIO_CONTROL_BYTES = 2;
inline constexpr uint64_t PALETTE_BYTES = 4;
inline constexpr uint8_t CONTROL_STREAM_EXISTS = 0x80;   // of audio and sub-picture control
