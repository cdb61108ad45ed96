// still_stage.cpp: makes the stills of a DVD-Audio disc: AUDIO_SV.VOB and its table.

#include "audio/audio_ifo.h"
#include "audio/stage_files.h"
#include "audio/stages.h"
#include "base/bytes.h"
#include "base/result.h"
#include "base/strings.h"
#include "mux/asset_drivers.h"
#include "project/audio_progress.h"

static constexpr const char16_t* NOT_OPENED = u"Failed to open file in <CreateStillManager>: %s";

struct StillRun {
    AudioDiscContext* context;
    uint64_t vobBytes;
};

static uint64_t layStill(const StillRun* run, StillDesc* still, OSFILE vob, const SubPictureFile* subPicture)
{
    OSFILE video = 0;
    if (osOpenFile(still->background, OS_READ, &video)) {
        return orvLogged(run->context, ORV_MENU_VIDEO_NOT_OPENED, NOT_OPENED, still->background);
    }
    uint64_t bytes = 0;
    uint64_t result = osFileSize(vob, &bytes);
    still->startSector = bytes >> SECTOR_SHIFT;
    const uint64_t subPictureSectors = (subPicture->bytes + SECTOR_BYTES - 1) >> SECTOR_SHIFT;
    if (!result) {
        result =
            orvMuxStillPicture(still, vob, video, subPicture->file, subPictureSectors, run->context->head.frameTicks);
    }
    (void)osCloseFile(&video);
    return result;
}

static uint64_t appendStill(const StillRun* run, StillDesc* still, OSFILE vob)
{
    SubPictureFile subPicture = {};
    uint64_t result = 0;
    if (still->hasSubPicture) result = orvOpenSubPicture(run->context, still->subPicture, &subPicture);
    if (!result) result = layStill(run, still, vob, &subPicture);
    orvDropSubPicture(&subPicture);
    return result;
}

static uint64_t appendStills(const StillRun* run, OSFILE vob)
{
    const AsvsDesc* asvs = &run->context->asvs;
    for (uint64_t i = 0; i < asvs->stillCount; i++) {
        if (uint64_t error = appendStill(run, asvs->stills[i], vob)) return error;
        const uint64_t percent = PROGRESS_ALL * i / asvs->stillCount;
        if (uint64_t error = orvReportStage(run->context, PROGRESS_STILLS, percent, 0)) return error;
    }
    return 0;
}

static uint64_t writeVob(StillRun* run, const char16_t* path)
{
    OSFILE vob = 0;
    if (osOpenFile(path, OS_CREATE_READ, &vob)) {
        return orvLogged(run->context, ORV_VOB_NOT_OPENED, NOT_OPENED, path);
    }
    uint64_t result = appendStills(run, vob);
    if (!result) result = osFileSize(vob, &run->vobBytes);
    if (osCloseFile(&vob) && !result) result = ORV_ASVS_VOB_NOT_WRITTEN;
    return result;
}

static uint64_t makeVob(StillRun* run, const char16_t* targetPath)
{
    if (run->context->asvs.stillCount == 0) return 0;
    char16_t* path = nullptr;
    uint64_t result = osFormPath(&path, u"%sAUDIO_SV.VOB", targetPath);
    if (result == OS_INVALID_ARGUMENT) return orvLogged(run->context, ORV_VOB_NOT_OPENED, NOT_OPENED, targetPath);
    if (!result) result = writeVob(run, path);
    (void)osStrFree(&path);
    return result;
}

static uint64_t writeIfo(void* from, const char16_t* path)
{
    const StillRun* run = static_cast<StillRun*>(from);
    return orvWriteAsvsIfo(run->context, path, run->vobBytes);
}

uint64_t CreateStillManager(AudioDiscContext* context, const char16_t* targetPath)
{
    StillRun run = { context, 0 };
    if (uint64_t error = makeVob(&run, targetPath)) return error;
    if (uint64_t error = orvReportStage(context, PROGRESS_STILLS, PROGRESS_ALL, 0)) return error;
    const IfoFiles files = { u"%sAUDIO_SV.IFO",        u"%sAUDIO_SV.BUP", 0,
                             ORV_ASVS_IFO_NOT_CREATED, PROGRESS_ASVS_IFO, PROGRESS_ASVS_BACKUP };
    return orvWriteIfoAndBackup(context, targetPath, &files, &run, writeIfo);
}
