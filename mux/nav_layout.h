// nav_layout.h: the navigation pack, one sector at the head of every video object unit. Offsets from the first byte of
// the pack; values big-endian. Bytes that no row names are 0, but for the pack header and the system header before
// byte 38.
#pragma once

#include "base/bytes.h"

#include <cstdint>

// clang-format off
//                                                at  size  published name           unit or values
inline constexpr DiscField NAV_AUDIO_BOUND    = {  23,   1, "audio_bound"          };  // of the system header; bits 7..2
inline constexpr DiscField PCI_PACKET         = {  38,   4, "packet_start_code"    };
inline constexpr DiscField PCI_LENGTH         = {  42,   2, "PES_packet_length"    };
inline constexpr DiscField PCI_SUB_STREAM     = {  44,   1, "sub_stream_id"        };
inline constexpr DiscField PCI_NV_PCK_LBN     = {  45,   4, "nv_pck_lbn"           };  // sectors
inline constexpr DiscField PCI_VOBU_CAT       = {  49,   2, "vobu_cat"             };
inline constexpr DiscField PCI_VOBU_UOP_CTL   = {  53,   4, "vobu_uop_ctl"         };
inline constexpr DiscField PCI_VOBU_S_PTM     = {  57,   4, "vobu_s_ptm"           };  // ticks
inline constexpr DiscField PCI_VOBU_E_PTM     = {  61,   4, "vobu_e_ptm"           };  // ticks
inline constexpr DiscField PCI_VOBU_SE_E_PTM  = {  65,   4, "vobu_se_e_ptm"        };  // ticks; 0 within a sequence
inline constexpr DiscField PCI_E_ELTM         = {  69,   4, "e_eltm"               };  // DvdTimeCode
inline constexpr DiscField PCI_HLI_SS         = { 141,   2, "hli_ss"               };  // 0 none, 1 new, 2 as before
inline constexpr DiscField PCI_HLI_S_PTM      = { 143,   4, "hli_s_ptm"            };  // ticks
inline constexpr DiscField PCI_HLI_E_PTM      = { 147,   4, "hli_e_ptm"            };  // ticks; all ones: no end
inline constexpr DiscField PCI_BTN_SE_E_PTM   = { 151,   4, "btn_se_e_ptm"         };  // ticks; all ones: no end
inline constexpr DiscField PCI_BTN_MD         = { 155,   2, "btn_md"               };  // button groups and display types
inline constexpr DiscField PCI_BTN_OFN        = { 157,   1, "btn_ofn"              };
inline constexpr DiscField PCI_BTN_NS         = { 158,   1, "btn_ns"               };  // buttons, 0..36
inline constexpr DiscField PCI_NSL_BTN_NS     = { 159,   1, "nsl_btn_ns"           };  // buttons selectable by number
inline constexpr DiscField PCI_FOSL_BTNN      = { 161,   1, "fosl_btnn"            };
inline constexpr DiscField PCI_FOAC_BTNN      = { 162,   1, "foac_btnn"            };
inline constexpr DiscField PCI_BTN_COLIT      = { 163,  24, "btn_colit"            };  // 3 colour sets of 8 bytes
inline constexpr DiscField PCI_BTNIT          = { 187, 648, "btnit"                };  // 36 BUTTON entries
inline constexpr DiscField DSI_PACKET         = {1024,   4, "packet_start_code"    };
inline constexpr DiscField DSI_LENGTH         = {1028,   2, "PES_packet_length"    };
inline constexpr DiscField DSI_SUB_STREAM     = {1030,   1, "sub_stream_id"        };
inline constexpr DiscField DSI_NV_PCK_SCR     = {1031,   4, "nv_pck_scr"           };  // ticks
inline constexpr DiscField DSI_NV_PCK_LBN     = {1035,   4, "nv_pck_lbn"           };  // sectors
inline constexpr DiscField DSI_VOBU_EA        = {1039,   4, "vobu_ea"              };  // sectors from this pack
inline constexpr DiscField DSI_VOBU_1STREF_EA = {1043,   4, "vobu_1stref_ea"       };  // sectors from this pack
inline constexpr DiscField DSI_VOBU_2NDREF_EA = {1047,   4, "vobu_2ndref_ea"       };
inline constexpr DiscField DSI_VOBU_3RDREF_EA = {1051,   4, "vobu_3rdref_ea"       };
inline constexpr DiscField DSI_VOBU_VOB_IDN   = {1055,   2, "vobu_vob_idn"         };
inline constexpr DiscField DSI_VOBU_C_IDN     = {1058,   1, "vobu_c_idn"           };
inline constexpr DiscField DSI_C_ELTM         = {1059,   4, "c_eltm"               };  // DvdTimeCode
inline constexpr DiscField DSI_VOB_V_S_S_PTM  = {1075,   4, "vob_v_s_s_ptm"        };  // ticks
inline constexpr DiscField DSI_VOB_V_E_E_PTM  = {1079,   4, "vob_v_e_e_ptm"        };  // ticks
inline constexpr DiscField DSI_NEXT_VIDEO     = {1265,   4, "next_video"           };  // a search pointer, as the next
inline constexpr DiscField DSI_FWDA           = {1269,  76, "fwda"                 };  // 19 search pointers, far end first
inline constexpr DiscField DSI_NEXT_VOBU      = {1345,   4, "next_vobu"            };
inline constexpr DiscField DSI_PREV_VOBU      = {1349,   4, "prev_vobu"            };
inline constexpr DiscField DSI_BWDA           = {1353,  76, "bwda"                 };  // 19 search pointers, near end first
inline constexpr DiscField DSI_PREV_VIDEO     = {1429,   4, "prev_video"           };
inline constexpr DiscField DSI_A_SYNCA        = {1433,  16, "a_synca"              };  // 8 audio sync entries of 2 bytes
inline constexpr DiscField DSI_SP_SYNCA       = {1449, 128, "sp_synca"             };  // 32 sub-picture entries of 4 bytes

inline constexpr DiscField NAV_FIELDS[] = {
    NAV_AUDIO_BOUND,    PCI_PACKET,         PCI_LENGTH,        PCI_SUB_STREAM,     PCI_NV_PCK_LBN,    PCI_VOBU_CAT,
    PCI_VOBU_UOP_CTL,   PCI_VOBU_S_PTM,     PCI_VOBU_E_PTM,    PCI_VOBU_SE_E_PTM,  PCI_E_ELTM,        PCI_HLI_SS,
    PCI_HLI_S_PTM,      PCI_HLI_E_PTM,      PCI_BTN_SE_E_PTM,  PCI_BTN_MD,         PCI_BTN_OFN,       PCI_BTN_NS,
    PCI_NSL_BTN_NS,     PCI_FOSL_BTNN,      PCI_FOAC_BTNN,     PCI_BTN_COLIT,      PCI_BTNIT,         DSI_PACKET,
    DSI_LENGTH,         DSI_SUB_STREAM,     DSI_NV_PCK_SCR,    DSI_NV_PCK_LBN,     DSI_VOBU_EA,       DSI_VOBU_1STREF_EA,
    DSI_VOBU_2NDREF_EA, DSI_VOBU_3RDREF_EA, DSI_VOBU_VOB_IDN,  DSI_VOBU_C_IDN,     DSI_C_ELTM,        DSI_VOB_V_S_S_PTM,
    DSI_VOB_V_E_E_PTM,  DSI_NEXT_VIDEO,     DSI_FWDA,          DSI_NEXT_VOBU,      DSI_PREV_VOBU,     DSI_BWDA,
    DSI_PREV_VIDEO,     DSI_A_SYNCA,        DSI_SP_SYNCA,
};

// One entry of the button table, offsets from the entry's start. Coordinates lie across byte borders.
inline constexpr DiscField BUTTON_X           = {   0,   3, "x_start, x_end"       };  // colour set in bits 7..6
inline constexpr DiscField BUTTON_Y           = {   3,   3, "y_start, y_end"       };  // auto action in bits 7..6
inline constexpr DiscField BUTTON_UP          = {   6,   1, "up"                   };
inline constexpr DiscField BUTTON_DOWN        = {   7,   1, "down"                 };
inline constexpr DiscField BUTTON_LEFT        = {   8,   1, "left"                 };
inline constexpr DiscField BUTTON_RIGHT       = {   9,   1, "right"                };
inline constexpr DiscField BUTTON_COMMAND     = {  10,   8, "cmd"                  };
inline constexpr DiscField BUTTON_FIELDS[] = { BUTTON_X,    BUTTON_Y,     BUTTON_UP,     BUTTON_DOWN,
                                               BUTTON_LEFT, BUTTON_RIGHT, BUTTON_COMMAND };
// clang-format on
static_assert(orvFieldsFit(NAV_FIELDS, SECTOR_BYTES));

inline constexpr uint64_t BUTTON_BYTES = 18;
inline constexpr uint64_t BUTTON_GROUP = 18;   // buttons of one group where a menu has two
static_assert(orvFieldsFit(BUTTON_FIELDS, BUTTON_BYTES));
inline constexpr uint64_t BUTTON_ENTRIES = PCI_BTNIT.size / BUTTON_BYTES;
static_assert(BUTTON_ENTRIES == 2 * BUTTON_GROUP);

inline constexpr uint64_t NAV_HEADER_BYTES = 38;   // pack header and system header, which stay as they were multiplexed
inline constexpr uint32_t NAV_PACKET_START = 0x000001BF;
inline constexpr uint32_t PCI_PACKET_LENGTH = 0x03D4;   // 980
inline constexpr uint32_t DSI_PACKET_LENGTH = 0x03FA;   // 1018

// Search pointers lead to the neighbours of a unit, and to the units at nineteen distances of time. A pointer is a
// distance in sectors, and in its top bits what there is at the place.
inline constexpr uint64_t SEARCH_DISTANCES = 19;
inline constexpr uint64_t SEARCH_BYTES = 4;
// Steps of half a second to 7.5 s, then 10, 30, 60 and 120 s, in ticks.
inline constexpr uint64_t SEARCH_TICKS[SEARCH_DISTANCES] = { 45000,  90000,  135000,  180000,  225000,  270000, 315000,
                                                             360000, 405000, 450000,  495000,  540000,  585000, 630000,
                                                             675000, 900000, 2700000, 5400000, 10800000 };
inline constexpr uint32_t POINTER_DISTANCE = 0x3FFFFFFF;
inline constexpr uint32_t POINTER_VALID = 0x80000000;   // a unit with video
inline constexpr uint32_t POINTER_NONE = 0x3FFFFFFF;
// Meant: the neighbours with video say "none" with another top bit than the plain neighbours.
// Test: NavSearch.NothingLeavesTheCellOrTheVob
inline constexpr uint32_t POINTER_NONE_VIDEO = 0xBFFFFFFF;

/** Makes all search pointers of a navigation pack lead nowhere. */
inline void orvClearSearch(uint8_t* pack)
{
    for (uint64_t i = 0; i < SEARCH_DISTANCES; i++) {
        orvPut32(pack + DSI_FWDA.at + i * SEARCH_BYTES, POINTER_NONE);
        orvPut32(pack + DSI_BWDA.at + i * SEARCH_BYTES, POINTER_NONE);
    }
    orvPut(pack, DSI_NEXT_VIDEO, POINTER_NONE_VIDEO);
    orvPut(pack, DSI_NEXT_VOBU, POINTER_NONE);
    orvPut(pack, DSI_PREV_VOBU, POINTER_NONE);
    orvPut(pack, DSI_PREV_VIDEO, POINTER_NONE_VIDEO);
}

inline constexpr uint64_t AUDIO_SYNC_BYTES = 2;
inline constexpr uint64_t AUDIO_SYNC_ENTRIES = DSI_A_SYNCA.size / AUDIO_SYNC_BYTES;
inline constexpr uint64_t SUBPICTURE_SYNC_BYTES = 4;
inline constexpr uint64_t SUBPICTURE_SYNC_ENTRIES = DSI_SP_SYNCA.size / SUBPICTURE_SYNC_BYTES;
