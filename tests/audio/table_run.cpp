#include "tests/audio/table_run.h"

static uint32_t noteCall(uint32_t total, uint32_t done, uint32_t kind, uint64_t user)
{
    TableRun* const run = reinterpret_cast<TableRun*>(uintptr_t(user));
    run->calls.push_back({ total, done, kind });
    return run->calls.size() == run->cancelAt ? 7 : 0;
}

static void fillTrack(AudioTrackDesc& to, const TableTrack& from)
{
    to.assign = from.assign;
    to.playTime = from.playTime;
    to.sampleSize1 = from.bits;
    to.sampleRate1 = from.rate;
    to.sampleSize2 = from.assign >= 2 ? from.bits : 0;
    to.sampleRate2 = from.assign >= 2 ? from.rate : 0;
    to.firstCellPts = from.firstPts;
    to.blockStart = from.blockStart;
    to.blockSize = from.blockSize;
}

TableRun::TableRun(int64_t standard, const std::vector<std::vector<TableTrack>>& titleSets)
{
    context->head.videoStandard = standard;
    context->head.frameTicks = standard == STANDARD_PAL ? 3600 : 3003;
    context->head.titleSetCount = titleSets.size();
    context->head.logFilePath = logPath.data();
    context->head.progressCallback = noteCall;
    context->head.progressUser = uint64_t(reinterpret_cast<uintptr_t>(this));
    for (const std::vector<TableTrack>& tracks : titleSets) {
        ownedSets.push_back(std::make_unique<AudioTitleSetDesc>());
        AudioTitleSetDesc& set = *ownedSets.back();
        context->audioTitleSets[ownedSets.size() - 1] = &set;
        set.trackCount = tracks.size();
        for (uint64_t i = 0; i < tracks.size(); i++) fillTrack(set.tracks[i], tracks[i]);
    }
}

void TableRun::setChannel(uint64_t titleSetNumber, uint64_t trackNumber, const std::u16string& path)
{
    ownedPaths.push_back(std::make_unique<std::u16string>(path));
    titleSet(titleSetNumber).tracks[trackNumber - 1].channelPaths[0] = ownedPaths.back()->data();
}

StillDesc& TableRun::addStill()
{
    ownedStills.push_back(std::make_unique<StillDesc>());
    context->asvs.stills[context->asvs.stillCount++] = ownedStills.back().get();
    return *ownedStills.back();
}
