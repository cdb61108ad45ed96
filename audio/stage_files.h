// stage_files.h: what the stages of a DVD-Audio run have in common: an IFO with its backup, and a sub-picture in a
// temporary file.
#pragma once

#include "base/files.h"
#include "project/audio_model.h"

#include <cstdint>

// An IFO and its backup.
struct IfoFiles {
    const char16_t* ifoFormat;   // with %s, and %.2d for a number
    const char16_t* backupFormat;
    uint64_t number;                // of a title set
    uint64_t pathTooLong;           // the code of an IFO that can't be created
    uint32_t ifoKind, backupKind;   // of progress
};

/** Reports a whole stage, or a part of it. @return 0 or ORV_CANCELED */
[[nodiscard]] uint64_t orvReportStage(const AudioDiscContext* context, uint32_t kind, uint64_t value, uint64_t index);

/** Writes an IFO by `write`, copies it over its backup, and reports both.
    @return 0; what `write` returns; files->pathTooLong; ORV_CANCELED */
[[nodiscard]] uint64_t orvWriteIfoAndBackup(AudioDiscContext* context, const char16_t* targetPath,
                                            const IfoFiles* files, void* from,
                                            uint64_t (*write)(void* from, const char16_t* path));

// An encoded sub-picture.
struct SubPictureFile {
    char16_t* path;   // owned; the file is removed with it
    OSFILE file;
    uint64_t bytes;
};

/** Encodes a bitmap that stands as it is.
    @return 0; ORV_TEMP_SUBPICTURE_NOT_OPENED; ORV_SUBPICTURE_TOO_LARGE above 52 KiB; the codes of the encoder */
[[nodiscard]] uint64_t orvOpenSubPicture(const AudioDiscContext* context, const char16_t* bitmap, SubPictureFile* out);
/** Closes and deletes it; harmless on one that was not made. */
void orvDropSubPicture(SubPictureFile* subPicture);

/** Logs a failure that has a path. @return code */
[[nodiscard]] uint64_t orvLogged(const AudioDiscContext* context, uint64_t code, const char16_t* text,
                                 const char16_t* path);
