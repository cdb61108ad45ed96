// table_run.h: the root of a DVD-Audio run with its title sets and tracks, made by a test in place of a project file,
// and what its host is told.
#pragma once

#include "base/time_code.h"
#include "project/audio_model.h"
#include "tests/support/files.h"
#include "tests/video/table_bytes.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

// A track, in the fields that tables look at.
struct TableTrack {
    uint64_t playTime = 0;     // ticks
    uint64_t firstPts = 0;     // ticks
    uint64_t blockStart = 0;   // packs
    uint64_t blockSize = 0;
    uint64_t assign = 1, bits = 16, rate = 48000;
};

// A call of the host's callback.
struct StageCall {
    uint32_t total, done, kind;
    bool operator==(const StageCall&) const = default;
};

inline void PrintTo(const StageCall& call, std::ostream* out)
{
    *out << "{ " << call.total << ", " << call.done << ", kind " << call.kind << " }";
}

struct TableRun {
    explicit TableRun(int64_t standard = STANDARD_PAL, const std::vector<std::vector<TableTrack>>& titleSets = { {} });
    TableRun(const TableRun&) = delete;
    TableRun& operator=(const TableRun&) = delete;

    AudioTitleSetDesc& titleSet(uint64_t number)
    {
        return *context->audioTitleSets[number - 1];
    }
    AudioTrackDesc& track(uint64_t number)   // of title set 1
    {
        return titleSet(1).tracks[number - 1];
    }
    /** Gives a track of a title set its first channel. */
    void setChannel(uint64_t titleSet, uint64_t track, const std::u16string& path);
    /** A still that the run owns, behind the others. */
    StillDesc& addStill();

    TempDir folder;   // target of the run
    std::u16string logPath = folder / u"run.log";
    std::unique_ptr<AudioDiscContext> context = std::make_unique<AudioDiscContext>();
    std::vector<std::unique_ptr<AudioTitleSetDesc>> ownedSets;
    std::vector<std::unique_ptr<StillDesc>> ownedStills;
    std::vector<std::unique_ptr<std::u16string>> ownedPaths;
    uint64_t cancelAt = 0;   // the call of this number, from 1, cancels
    std::vector<StageCall> calls;
};
