// nav_sync.h: the sync entries of a navigation pack: where the audio and the sub-pictures lie that belong to its unit.
#pragma once

#include "mux/nav_layout.h"
#include "video/vobu_record.h"

#include <cstdint>

// An audio pack of one stream, and the times for which it is the one to begin with.
struct AudioSpan {
    uint64_t vobId;
    uint64_t from, until;   // ticks; from <= t < until
    uint64_t sector;
};

// The audio packs of one stream in list order, and how far a walk over rising times has come.
struct AudioSync {
    AudioSpan* spans;   // a list, owned
    bool rising;        // VOB numbers, and times within a VOB, rise
    uint64_t at;
    uint64_t vobId, time;   // of the question before
};

// What the sync entries of a stream-pack list are made from; built once for all units.
struct SyncIndex {
    AudioSync audio[AUDIO_SYNC_ENTRIES];
    uint64_t audioCount;
    StreamPackRecord* subPictures;   // the list's sub-picture packs, owned
    uint64_t subPictureCount;
};

/** Builds the index; whatever the result, orvFreeSyncIndex releases it. Counts past the entries of a pack are cut. */
[[nodiscard]] uint64_t orvBuildSyncIndex(SyncIndex* index, const StreamPackRecord* streamPackList, uint64_t audioCount,
                                         uint64_t subPictureCount);
void orvFreeSyncIndex(SyncIndex* index);

/** The sync entries of a unit. */
void orvFillSync(SyncIndex* index, const VobuRecord* record, uint64_t ticksPerFrame, uint8_t* pack);
