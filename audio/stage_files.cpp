// stage_files.cpp: files that several stages of a DVD-Audio run make alike.

#include "audio/stage_files.h"

#include "base/log.h"
#include "base/result.h"
#include "base/strings.h"
#include "menu/sub_picture.h"
#include "project/audio_progress.h"

constexpr uint64_t LARGEST_SUB_PICTURE = 53248;

uint64_t orvReportStage(const AudioDiscContext* context, uint32_t kind, uint64_t value, uint64_t index)
{
    return orvReportAudioProgress(context, kind, value, index) ? ORV_CANCELED : 0;
}

static uint64_t writeBoth(const AudioDiscContext* context, const IfoFiles* files, const char16_t* ifoPath,
                          const char16_t* backupPath, void* from, uint64_t (*write)(void* from, const char16_t* path))
{
    if (uint64_t error = write(from, ifoPath)) return error;
    if (uint64_t error = orvReportStage(context, files->ifoKind, PROGRESS_ALL, files->number)) return error;
    // Meant: a backup that can't be written does not fail the run. Test: AudioTarget.BackupThatCannotBeWritten
    (void)osCopyFile(ifoPath, backupPath, false);
    return orvReportStage(context, files->backupKind, PROGRESS_ALL, files->number);
}

uint64_t orvWriteIfoAndBackup(AudioDiscContext* context, const char16_t* targetPath, const IfoFiles* files, void* from,
                              uint64_t (*write)(void* from, const char16_t* path))
{
    char16_t* ifoPath = nullptr;
    char16_t* backupPath = nullptr;
    uint64_t result = osFormPath(&ifoPath, files->ifoFormat, targetPath, files->number);
    if (!result) result = osFormPath(&backupPath, files->backupFormat, targetPath, files->number);
    if (result == OS_INVALID_ARGUMENT) result = files->pathTooLong;
    if (!result) result = writeBoth(context, files, ifoPath, backupPath, from, write);
    (void)osStrFree(&ifoPath);
    (void)osStrFree(&backupPath);
    return result;
}

uint64_t orvOpenSubPicture(const AudioDiscContext* context, const char16_t* bitmap, SubPictureFile* out)
{
    const int64_t standard = context->head.videoStandard;
    if (uint64_t error = orvEncodeSubPictureFile(standard, nullptr, 0, 0, bitmap, nullptr, &out->path)) return error;
    if (osOpenFile(out->path, OS_READ, &out->file)) return ORV_TEMP_SUBPICTURE_NOT_OPENED;
    if (uint64_t error = osFileSize(out->file, &out->bytes)) return error;
    return out->bytes > LARGEST_SUB_PICTURE ? ORV_SUBPICTURE_TOO_LARGE : 0;
}

void orvDropSubPicture(SubPictureFile* subPicture)
{
    (void)osCloseFile(&subPicture->file);
    if (subPicture->path) (void)osDeleteFile(subPicture->path);
    (void)osStrFree(&subPicture->path);
}

uint64_t orvLogged(const AudioDiscContext* context, uint64_t code, const char16_t* text, const char16_t* path)
{
    orvLogError(code, context->head.logFilePath, text, path);
    return code;
}
