// vts_info.cpp: looks at the finished files of a title set, of this run or of an earlier one.

#include "base/bytes.h"
#include "base/files.h"
#include "base/log.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "video/ifo_layout.h"
#include "video/vmg_ifo.h"

#include <cstring>

constexpr uint64_t VOBS_OF_TITLE_SET = 10;   // VTS_nn_0.VOB to VTS_nn_9.VOB

/** Name of a file of a title set: in previousPath if it exists there, else in targetPath. A new string object. */
static uint64_t findFile(const char16_t* targetPath, const char16_t* previousPath, uint64_t titleSetNumber,
                         uint64_t digit, const char16_t* format, char16_t** path)
{
    *path = nullptr;
    if (previousPath && *previousPath) {
        // A name that would be too long is that of no file.
        const uint64_t formed = osFormPath(path, format, previousPath, titleSetNumber, digit);
        if (formed && formed != OS_INVALID_ARGUMENT) return formed;
        // Meant: the file's existence alone decides, also for a title set that this run has written.
        // Test: VmgIfoPrevious.OlderFilesOfATitleSetOfThisRunWin
        if (!formed && !osGetFileInfo(*path, nullptr, nullptr)) return 0;
        (void)osStrFree(path);
    }
    return osFormPath(path, format, targetPath, titleSetNumber, digit);
}

static uint64_t readImage(OSFILE file, uint64_t size, uint8_t** image)
{
    // A file of another kind, of whatever size, is known by its first bytes.
    uint8_t mark[IFO_MARK_BYTES];
    if (osReadFile(file, mark, IFO_MARK_BYTES) || memcmp(mark, VTS_MARK, IFO_MARK_BYTES) != 0) {
        return ORV_PREVIOUS_VTS_IFO_NOT_READ;
    }
    if (uint64_t error = osAllocMem(size, image)) return error;
    if (osSeekFile(file, 0, OS_FROM_START) || osReadFile(file, *image, size)) {
        (void)osFreeMem(image);
        return ORV_PREVIOUS_VTS_IFO_NOT_READ;
    }
    return 0;
}

static uint64_t logFailure(const DiscContext* context, const char16_t* text, const char16_t* path)
{
    orvLogError(ORV_PREVIOUS_VTS_IFO_NOT_OPENED, context->head.logFilePath, text, path);
    return ORV_PREVIOUS_VTS_IFO_NOT_OPENED;
}

static uint64_t readIfo(const DiscContext* context, const char16_t* path, uint8_t** image, uint64_t* sectors)
{
    OSFILE file = 0;
    if (osOpenFile(path, OS_READ, &file)) {
        return logFailure(context, u"Failed to open file for read in <orvReadVTSInfo>: %s", path);
    }
    uint64_t size = 0;
    uint64_t result = osFileSize(file, &size);
    if (result) {
        result = logFailure(context, u"Failed to get file size in <orvReadVTSInfo>: %s", path);
    } else {
        if (sectors) *sectors = size >> SECTOR_SHIFT;
        if (image) result = readImage(file, size, image);
    }
    (void)osCloseFile(&file);   // nothing was written
    return result;
}

/** Size of a VOB in whole sectors. One that can't be opened adds nothing: that is how the end of the series is found.
 */
static uint64_t vobSize(const char16_t* path)
{
    OSFILE file = 0;
    uint64_t size = 0;
    if (osOpenFile(path, OS_READ, &file)) return 0;
    if (osFileSize(file, &size)) size = 0;
    (void)osCloseFile(&file);   // nothing was written
    return size >> SECTOR_SHIFT;
}

uint64_t orvReadVTSInfo(const DiscContext* context, const char16_t* targetPath, uint64_t titleSetNumber,
                        uint8_t** ifoImage, uint64_t* ifoSectors, uint64_t* vobSectors, const char16_t* previousPath)
{
    char16_t* path = nullptr;
    if (ifoImage) *ifoImage = nullptr;
    if (uint64_t error = findFile(targetPath, previousPath, titleSetNumber, 0, u"%sVTS_%.2d_0.IFO", &path)) {
        return error;
    }
    const uint64_t result = readIfo(context, path, ifoImage, ifoSectors);
    (void)osStrFree(&path);
    if (result || !vobSectors) return result;

    *vobSectors = 0;
    for (uint64_t digit = 0; digit < VOBS_OF_TITLE_SET; digit++) {
        if (uint64_t error = findFile(targetPath, previousPath, titleSetNumber, digit, u"%sVTS_%.2d_%.1d.VOB", &path)) {
            if (ifoImage) (void)osFreeMem(ifoImage);
            return error;
        }
        *vobSectors += vobSize(path);
        (void)osStrFree(&path);
    }
    return 0;
}
