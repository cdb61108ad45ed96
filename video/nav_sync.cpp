// nav_sync.cpp: audio and sub-picture sync entries of navigation packs.

#include "video/nav_sync.h"

#include "base/bytes.h"
#include "base/memory.h"

constexpr uint16_t AUDIO_TOO_FAR_AHEAD = 0x7FFF;
constexpr uint16_t AUDIO_TOO_FAR_BACK = 0xFFFF;
constexpr uint16_t AUDIO_BACK = 0x8000;
constexpr uint16_t AUDIO_SECTORS = 0x7FFF;
constexpr uint16_t AUDIO_NOT_FOUND = 0;
constexpr uint32_t SUBPICTURE_BACK = 0x80000000;
constexpr uint32_t SUBPICTURE_SECTORS = 0x7FFFFFFF;
constexpr uint32_t SUBPICTURE_HERE = 0x7FFFFFFF;   // none before this unit

static bool isAudio(const StreamPackRecord* pack)
{
    return pack->kind >= PACK_LPCM && pack->kind <= PACK_SDDS;
}

static uint64_t addAudio(AudioSync* audio, const StreamPackRecord* pack)
{
    // Meant: a pack's time ends where that of the next pack of the list begins, of whatever kind and stream that is.
    // Test: NavSync.NextRecordMayBeOfAnyKindAndStream
    const AudioSpan span = { pack->vobId, pack->pts, pack[1].pts, pack->sector };
    if (span.from >= span.until) return 0;
    const uint64_t count = osListCount(audio->spans);
    if (count > 0) {
        const AudioSpan* before = audio->spans + (count - 1);
        if (span.vobId < before->vobId || (span.vobId == before->vobId && span.from < before->from)) {
            audio->rising = false;
        }
    }
    return osListAppend(&audio->spans, span);
}

uint64_t orvBuildSyncIndex(SyncIndex* index, const StreamPackRecord* streamPackList, uint64_t audioCount,
                           uint64_t subPictureCount)
{
    *index = {};
    index->audioCount = audioCount < AUDIO_SYNC_ENTRIES ? audioCount : AUDIO_SYNC_ENTRIES;
    index->subPictureCount = subPictureCount < SUBPICTURE_SYNC_ENTRIES ? subPictureCount : SUBPICTURE_SYNC_ENTRIES;
    for (uint64_t a = 0; a < index->audioCount; a++) {
        index->audio[a].rising = true;
        if (uint64_t error = osAllocMem(0, &index->audio[a].spans)) return error;
    }
    if (uint64_t error = osAllocMem(0, &index->subPictures)) return error;

    const uint64_t count = osListCount(streamPackList);
    for (uint64_t i = 0; i < count; i++) {
        const StreamPackRecord* pack = streamPackList + i;
        // Meant: the list's last entry is never looked at as audio. Test: NavSync.LastRecordIsNotLookedAt
        if (isAudio(pack) && pack->streamIndex < index->audioCount && i + 1 < count) {
            if (uint64_t error = addAudio(&index->audio[pack->streamIndex], pack)) return error;
        }
        if (pack->kind == PACK_SUBPICTURE && index->subPictureCount > 0) {
            if (uint64_t error = osListAppend(&index->subPictures, *pack)) return error;
        }
    }
    return 0;
}

void orvFreeSyncIndex(SyncIndex* index)
{
    for (AudioSync& audio : index->audio) (void)osFreeMem(&audio.spans);
    (void)osFreeMem(&index->subPictures);
}

/** First span of the VOB that holds the time, by a look at every span. */
static const AudioSpan* findSpanAnywhere(const AudioSync* audio, uint64_t vobId, uint64_t time)
{
    for (uint64_t i = 0; i < osListCount(audio->spans); i++) {
        const AudioSpan* span = audio->spans + i;
        if (span->vobId == vobId && span->from <= time && time < span->until) return span;
    }
    return nullptr;
}

/** The same; where times rise from call to call, all calls together pass over the spans once. */
static const AudioSpan* findSpan(AudioSync* audio, uint64_t vobId, uint64_t time)
{
    if (!audio->rising) return findSpanAnywhere(audio, vobId, time);
    const AudioSpan* spans = audio->spans;
    const uint64_t count = osListCount(spans);
    if (vobId < audio->vobId) audio->at = 0;
    if (vobId == audio->vobId && time < audio->time) {
        while (audio->at > 0 && spans[audio->at - 1].vobId == vobId) audio->at--;
    }
    audio->vobId = vobId;
    audio->time = time;
    // What ends before this time ends before all later ones too; and since the spans' starts rise, the first that is
    // left either holds the time or none does.
    while (audio->at < count &&
           (spans[audio->at].vobId < vobId || (spans[audio->at].vobId == vobId && spans[audio->at].until <= time))) {
        audio->at++;
    }
    if (audio->at == count || spans[audio->at].vobId != vobId || spans[audio->at].from > time) return nullptr;
    return spans + audio->at;
}

static uint16_t audioEntry(AudioSync* audio, const VobuRecord* record, uint64_t time)
{
    const AudioSpan* span = findSpan(audio, record->vobId, time);
    if (!span) return AUDIO_NOT_FOUND;
    const int64_t sectors = int64_t(span->sector - record->sector);
    if (sectors > AUDIO_SECTORS) return AUDIO_TOO_FAR_AHEAD;
    if (sectors < -int64_t(AUDIO_SECTORS)) return AUDIO_TOO_FAR_BACK;
    if (sectors >= 0) return uint16_t(sectors);
    return uint16_t(AUDIO_BACK | ((record->sector - span->sector) & AUDIO_SECTORS));
}

static uint32_t subPictureEntry(const SyncIndex* index, const VobuRecord* record, uint64_t stream)
{
    uint64_t unit = record->sector;   // that of the last pack found
    for (uint64_t i = 0; i < osListCount(index->subPictures); i++) {
        const StreamPackRecord* pack = index->subPictures + i;
        if (pack->vobId == record->vobId && pack->streamIndex == stream) unit = pack->vobuSector;
        if (pack->vobuSector > record->sector) break;
    }
    if (unit >= record->sector) return SUBPICTURE_HERE;
    return (uint32_t(record->sector - unit) & SUBPICTURE_SECTORS) | SUBPICTURE_BACK;
}

void orvFillSync(SyncIndex* index, const VobuRecord* record, uint64_t ticksPerFrame, uint8_t* pack)
{
    const uint64_t time = orvVobuStartPts(record, ticksPerFrame);
    for (uint64_t a = 0; a < index->audioCount; a++) {
        orvPut16(pack + DSI_A_SYNCA.at + a * AUDIO_SYNC_BYTES, audioEntry(&index->audio[a], record, time));
    }
    for (uint64_t s = 0; s < index->subPictureCount; s++) {
        orvPut32(pack + DSI_SP_SYNCA.at + s * SUBPICTURE_SYNC_BYTES, subPictureEntry(index, record, s));
    }
}
