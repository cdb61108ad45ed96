// ifo_layout.h: headers and tables of the IFO files. Offsets from the start of each structure; values big-endian;
// sector fields count from the start of the IFO unless a line says something else.
#pragma once

#include "base/bytes.h"

#include <cstdint>

// clang-format off
// Header of VTS_nn_0.IFO, one sector.
//                                                  at  size  published name         unit or values
inline constexpr DiscField VTS_IDENTIFIER       = {   0,  12, "vts_identifier"     };
inline constexpr DiscField VTS_LAST_SECTOR      = {  12,   4, "vts_last_sector"    };  // of the title set
inline constexpr DiscField VTSI_LAST_SECTOR     = {  28,   4, "vtsi_last_sector"   };
inline constexpr DiscField VTS_VERSION          = {  33,   1, "version" };
inline constexpr DiscField VTS_CATEGORY         = {  34,   4, "vts_category"       };
inline constexpr DiscField VTSI_LAST_BYTE       = { 128,   4, "vtsi_last_byte"     };
inline constexpr DiscField VTSM_VOBS            = { 192,   4, "vtsm_vobs"          };  // from the title set's start
inline constexpr DiscField VTSTT_VOBS           = { 196,   4, "vtstt_vobs"         };  // from the title set's start
inline constexpr DiscField VTS_PTT_SRPT_AT      = { 200,   4, "vts_ptt_srpt"       };
inline constexpr DiscField VTS_PGCIT_AT         = { 204,   4, "vts_pgcit"          };
inline constexpr DiscField VTSM_PGCI_UT_AT      = { 208,   4, "vtsm_pgci_ut"       };
inline constexpr DiscField VTS_TMAPTI_AT        = { 212,   4, "vts_tmapt"          };
inline constexpr DiscField VTSM_C_ADT_AT        = { 216,   4, "vtsm_c_adt"         };
inline constexpr DiscField VTSM_VOBU_ADMAP_AT   = { 220,   4, "vtsm_vobu_admap"    };
inline constexpr DiscField VTS_C_ADT_AT         = { 224,   4, "vts_c_adt"          };
inline constexpr DiscField VTS_VOBU_ADMAP_AT    = { 228,   4, "vts_vobu_admap"     };
inline constexpr DiscField VTSM_VIDEO_ATTR      = { 256,   2, "vtsm_video_attr"    };
inline constexpr DiscField VTSM_AUDIO_STREAMS   = { 258,   2, "nr_of_vtsm_audio_streams" };
inline constexpr DiscField VTSM_AUDIO_ATTR      = { 260,  64, "vtsm_audio_attr"    };  // 8 bytes a stream
inline constexpr DiscField VTSM_SUBP_STREAMS    = { 340,   2, "nr_of_vtsm_subp_streams" };
inline constexpr DiscField VTSM_SUBP_ATTR       = { 342,   6, "vtsm_subp_attr"     };
inline constexpr DiscField VTS_VIDEO_ATTR       = { 512,   2, "vts_video_attr"     };
inline constexpr DiscField VTS_AUDIO_STREAMS    = { 514,   2, "nr_of_vts_audio_streams" };
inline constexpr DiscField VTS_AUDIO_ATTR       = { 516,  64, "vts_audio_attr"     };
inline constexpr DiscField VTS_SUBP_STREAMS     = { 596,   2, "nr_of_vts_subp_streams" };
inline constexpr DiscField VTS_FIELDS[] = {
    VTS_IDENTIFIER,     VTS_LAST_SECTOR,   VTSI_LAST_SECTOR, VTS_VERSION,     VTS_CATEGORY,      VTSI_LAST_BYTE,
    VTSM_VOBS,          VTSTT_VOBS,        VTS_PTT_SRPT_AT,  VTS_PGCIT_AT,    VTSM_PGCI_UT_AT,   VTS_TMAPTI_AT,
    VTSM_C_ADT_AT,      VTSM_VOBU_ADMAP_AT, VTS_C_ADT_AT,    VTS_VOBU_ADMAP_AT, VTSM_VIDEO_ATTR, VTSM_AUDIO_STREAMS,
    VTSM_AUDIO_ATTR,    VTSM_SUBP_STREAMS, VTSM_SUBP_ATTR,   VTS_VIDEO_ATTR,  VTS_AUDIO_STREAMS, VTS_AUDIO_ATTR,
    VTS_SUBP_STREAMS,
};

// Header of VIDEO_TS.IFO, one sector; the first-play chain stands in it.
inline constexpr DiscField VMG_IDENTIFIER       = {   0,  12, "vmg_identifier"     };
inline constexpr DiscField VMG_LAST_SECTOR      = {  12,   4, "vmg_last_sector"    };  // of the manager
inline constexpr DiscField VMGI_LAST_SECTOR     = {  28,   4, "vmgi_last_sector"   };
inline constexpr DiscField VMG_VERSION          = {  33,   1, "version" };
inline constexpr DiscField VMG_CATEGORY         = {  34,   4, "vmg_category"       };
inline constexpr DiscField VMG_VOLUMES          = {  38,   2, "vmg_nr_of_volumes"  };
inline constexpr DiscField VMG_THIS_VOLUME      = {  40,   2, "vmg_this_volume_nr" };
inline constexpr DiscField VMG_DISC_SIDE        = {  42,   1, "disc_side"          };
inline constexpr DiscField VMG_TITLE_SETS       = {  62,   2, "vmg_nr_of_title_sets" };
inline constexpr DiscField VMG_PROVIDER         = {  64,  32, "provider_identifier" };
inline constexpr DiscField VMGI_LAST_BYTE       = { 128,   4, "vmgi_last_byte"     };
inline constexpr DiscField VMG_FIRST_PLAY_AT    = { 132,   4, "first_play_pgc"     };  // bytes
inline constexpr DiscField VMGM_VOBS            = { 192,   4, "vmgm_vobs"          };
inline constexpr DiscField VMG_TT_SRPT_AT       = { 196,   4, "tt_srpt"            };
inline constexpr DiscField VMGM_PGCI_UT_AT      = { 200,   4, "vmgm_pgci_ut"       };
inline constexpr DiscField VMG_PTL_MAIT_AT      = { 204,   4, "ptl_mait"           };
inline constexpr DiscField VMG_VTS_ATRT_AT      = { 208,   4, "vts_atrt"           };
inline constexpr DiscField VMG_TXTDT_AT         = { 212,   4, "txtdt_mgi"          };
inline constexpr DiscField VMGM_C_ADT_AT        = { 216,   4, "vmgm_c_adt"         };
inline constexpr DiscField VMGM_VOBU_ADMAP_AT   = { 220,   4, "vmgm_vobu_admap"    };
inline constexpr DiscField VMGM_VIDEO_ATTR      = { 256,   2, "vmgm_video_attr"    };
inline constexpr DiscField VMGM_AUDIO_STREAMS   = { 258,   2, "nr_of_vmgm_audio_streams" };
inline constexpr DiscField VMGM_AUDIO_ATTR      = { 260,  64, "vmgm_audio_attr"    };
inline constexpr DiscField VMGM_SUBP_STREAMS    = { 340,   2, "nr_of_vmgm_subp_streams" };
inline constexpr DiscField VMG_FIRST_PLAY       = {1024, 252, "first_play_pgc"     };
inline constexpr DiscField VMG_FIELDS[] = {
    VMG_IDENTIFIER,  VMG_LAST_SECTOR, VMGI_LAST_SECTOR, VMG_VERSION,        VMG_CATEGORY,    VMG_VOLUMES,
    VMG_THIS_VOLUME, VMG_DISC_SIDE,   VMG_TITLE_SETS,   VMG_PROVIDER,       VMGI_LAST_BYTE,  VMG_FIRST_PLAY_AT,
    VMGM_VOBS,       VMG_TT_SRPT_AT,  VMGM_PGCI_UT_AT,  VMG_PTL_MAIT_AT,    VMG_VTS_ATRT_AT, VMG_TXTDT_AT,
    VMGM_C_ADT_AT,   VMGM_VOBU_ADMAP_AT, VMGM_VIDEO_ATTR, VMGM_AUDIO_STREAMS, VMGM_AUDIO_ATTR, VMGM_SUBP_STREAMS,
    VMG_FIRST_PLAY,
};

// Head that most tables have.
inline constexpr DiscField TABLE_COUNT          = {   0,   2, "count"              };
inline constexpr DiscField TABLE_LAST_BYTE      = {   4,   4, "last_byte"          };
inline constexpr DiscField TABLE_FIELDS[] = { TABLE_COUNT, TABLE_LAST_BYTE };
inline constexpr uint64_t TABLE_HEADER_BYTES = 8;

// Offset of the one title or time map of its table, behind the head.
inline constexpr DiscField TABLE_FIRST_OFFSET   = {   8,   4, "offset"             };
inline constexpr uint64_t TABLE_FIRST_BYTES = 12;

// One entry of VTS_PTT_SRPT.
inline constexpr DiscField PTT_PGC              = {   0,   2, "pgcn"               };
inline constexpr DiscField PTT_PROGRAM          = {   2,   2, "pgn"                };
inline constexpr DiscField PTT_FIELDS[] = { PTT_PGC, PTT_PROGRAM };
inline constexpr uint64_t PTT_BYTES = 4;

// One entry of a table of chains, and of a table of language units.
inline constexpr DiscField PGCI_ENTRY_ID        = {   0,   1, "entry_id"           };
inline constexpr DiscField PGCI_ENTRY_OFFSET    = {   4,   4, "pgc_start_byte"     };  // from the table's or unit's start
inline constexpr DiscField PGCI_ENTRY_FIELDS[] = { PGCI_ENTRY_ID, PGCI_ENTRY_OFFSET };
inline constexpr DiscField UNIT_LANGUAGE        = {   0,   2, "lang_code"          };
inline constexpr DiscField UNIT_EXISTS          = {   3,   1, "exists"             };
inline constexpr DiscField UNIT_OFFSET          = {   4,   4, "lang_start_byte"    };
inline constexpr DiscField UNIT_FIELDS[] = { UNIT_LANGUAGE, UNIT_EXISTS, UNIT_OFFSET };
inline constexpr uint64_t PGCI_ENTRY_BYTES = 8;

// Head of a time map.
inline constexpr DiscField TIME_MAP_UNIT        = {   0,   1, "tmu"                };  // seconds
inline constexpr DiscField TIME_MAP_ENTRIES     = {   2,   2, "nr_of_entries"      };
inline constexpr DiscField TIME_MAP_FIELDS[] = { TIME_MAP_UNIT, TIME_MAP_ENTRIES };
inline constexpr uint64_t TIME_MAP_HEADER_BYTES = 4;

// One entry of a cell address table.
inline constexpr DiscField ADT_VOB_ID           = {   0,   2, "vob_id"             };
inline constexpr DiscField ADT_CELL_ID          = {   2,   1, "cell_id"            };
inline constexpr DiscField ADT_START            = {   4,   4, "start_sector"       };
inline constexpr DiscField ADT_LAST             = {   8,   4, "last_sector"        };
inline constexpr DiscField ADT_FIELDS[] = { ADT_VOB_ID, ADT_CELL_ID, ADT_START, ADT_LAST };
inline constexpr uint64_t ADT_BYTES = 12;

// Head of a VOBU address map; the sectors of the units follow.
inline constexpr DiscField VOBU_MAP_LAST_BYTE   = {   0,   4, "last_byte"          };
inline constexpr uint64_t VOBU_MAP_HEADER_BYTES = 4;
inline constexpr uint64_t VOBU_MAP_ENTRY_BYTES = 4;

// One entry of TT_SRPT.
inline constexpr DiscField TITLE_TYPE           = {   0,   1, "pb_ty"              };
inline constexpr DiscField TITLE_ANGLES         = {   1,   1, "nr_of_angles"       };
inline constexpr DiscField TITLE_CHAPTERS       = {   2,   2, "nr_of_ptts"         };
inline constexpr DiscField TITLE_PARENTAL       = {   4,   2, "parental_id"        };
inline constexpr DiscField TITLE_SET            = {   6,   1, "title_set_nr"       };
inline constexpr DiscField TITLE_IN_SET         = {   7,   1, "vts_ttn"            };
inline constexpr DiscField TITLE_START          = {   8,   4, "title_set_sector"   };  // on the disc
inline constexpr DiscField TITLE_FIELDS[] = { TITLE_TYPE,     TITLE_ANGLES, TITLE_CHAPTERS, TITLE_PARENTAL,
                                              TITLE_SET,      TITLE_IN_SET, TITLE_START };
inline constexpr uint64_t TITLE_BYTES = 12;

// One entry of VTS_ATRT.
inline constexpr DiscField ATRT_LAST_BYTE       = {   0,   4, "last_byte"          };
inline constexpr DiscField ATRT_CATEGORY        = {   4,   4, "vts_cat"            };
inline constexpr DiscField ATRT_ATTRIBUTES      = {   8, 768, "vts_attributes"     };
inline constexpr DiscField ATRT_FIELDS[] = { ATRT_LAST_BYTE, ATRT_CATEGORY, ATRT_ATTRIBUTES };
inline constexpr uint64_t ATRT_BYTES = 776;
// clang-format on

static_assert(orvFieldsFit(VTS_FIELDS, SECTOR_BYTES));
static_assert(orvFieldsFit(VMG_FIELDS, SECTOR_BYTES));
static_assert(orvFieldsFit(TABLE_FIELDS, TABLE_HEADER_BYTES));
static_assert(orvFieldsFit(PTT_FIELDS, PTT_BYTES));
static_assert(orvFieldsFit(PGCI_ENTRY_FIELDS, PGCI_ENTRY_BYTES));
static_assert(orvFieldsFit(UNIT_FIELDS, PGCI_ENTRY_BYTES));
static_assert(orvFieldsFit(TIME_MAP_FIELDS, TIME_MAP_HEADER_BYTES));
static_assert(orvFieldsFit(ADT_FIELDS, ADT_BYTES));
static_assert(orvFieldsFit(TITLE_FIELDS, TITLE_BYTES));
static_assert(orvFieldsFit(ATRT_FIELDS, ATRT_BYTES));

inline constexpr uint8_t IFO_VERSION = 0x11;
inline constexpr char VTS_MARK[] = "DVDVIDEO-VTS";
inline constexpr char VMG_MARK[] = "DVDVIDEO-VMG";
inline constexpr uint64_t IFO_MARK_BYTES = 12;
inline constexpr uint64_t VIDEO_ATTR_BYTES = 2;
inline constexpr uint64_t AUDIO_ATTR_BYTES = 8;
inline constexpr uint64_t VTS_ATTRIBUTES_AT = 256;   // the part of a VTS header that VTS_ATRT copies
