// stream_kinds.cpp: the kinds of stream and the flags that ask for them.

#include "mux/stream_kinds.h"

#include "mux/audio_units.h"
#include "mux/pack_layout.h"
#include "mux/video_units.h"
#include "project/model.h"

// clang-format off
constexpr MuxKind KINDS[] = {
    { KIND_VIDEO_UNITS, FAMILY_VIDEO,       STREAM_VIDEO,     0,                      orvSetupVideoUnits },
    { KIND_VIDEO,       FAMILY_VIDEO,       STREAM_VIDEO,     0,                      orvSetupVideoScan  },
    { KIND_LPCM,        FAMILY_AUDIO,       STREAM_PRIVATE_1, SUB_STREAM_LPCM,        orvSetupLpcm       },
    { KIND_MPEG_AUDIO,  FAMILY_AUDIO,       STREAM_AUDIO,     0,                      orvSetupMpegAudio  },
    { KIND_AC3,         FAMILY_AUDIO,       STREAM_PRIVATE_1, SUB_STREAM_AC3,         orvSetupAc3        },
    { KIND_AC3_TABLE,   FAMILY_AUDIO,       STREAM_PRIVATE_1, SUB_STREAM_AC3,         orvSetupAc3Table   },
    { KIND_SUB_PICTURE, FAMILY_SUB_PICTURE, STREAM_PRIVATE_1, SUB_STREAM_SUB_PICTURE, orvSetupSubPicture },
};

constexpr uint64_t WATERMARK = 0x20000, WATERMARK_AUDIO = 0x4000;

struct FlagRow {
    uint64_t flag, kind, watermark;   // watermark 0: the one before stays
};
// In the order in which they are looked at: each that is set takes the place of the kind before. Meant: the watermark
// of an audio flag stays when a later flag takes its kind. Test: Registry.FlagsOverwriteTheKindNotTheWatermark
constexpr FlagRow FLAGS[] = {
    { ORV_MUX_LPCM,        KIND_LPCM,        0               },
    { 0x20,                KIND_LPCM,        0               },
    { ORV_MUX_MPEG_AUDIO,  KIND_MPEG_AUDIO,  WATERMARK_AUDIO },
    { ORV_MUX_AC3,         KIND_AC3,         WATERMARK_AUDIO },
    { ORV_MUX_AC3_ANY,     KIND_AC3_TABLE,   WATERMARK_AUDIO },
    { ORV_MUX_SUBPICTURE,  KIND_SUB_PICTURE, 0               },
    { ORV_MUX_VIDEO_UNITS, KIND_VIDEO_UNITS, 0               },
    { ORV_MUX_VIDEO,       KIND_VIDEO,       0               },
};
// clang-format on

const MuxKind* orvMuxKind(uint64_t kind)
{
    for (const MuxKind& row : KINDS) {
        if (row.kind == kind) return &row;
    }
    return nullptr;
}

uint64_t orvKindOfFlags(uint64_t flags, uint64_t* watermark)
{
    uint64_t kind = 0;
    *watermark = WATERMARK;
    for (const FlagRow& row : FLAGS) {
        if (!(flags & row.flag)) continue;
        kind = row.kind;
        if (row.watermark) *watermark = row.watermark;
    }
    return kind;
}
