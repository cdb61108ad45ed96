// files.h: files by numbered mode, temporary files and what is known of a path. posix/ and win32/ implement it, file
// for file. A result other than 0 is the platform's error number unless a line says something else.
#pragma once

#include <cstdint>

#include <orven/types.h>

//                               access      sharing             creation
enum OsFileMode : uint64_t {
    OS_READ = 1,          //     read        read                must exist
    OS_CREATE = 2,        //     write       write               always new
    OS_EXTEND = 3,        //     read/write  read, write         opened or created, kept
    OS_APPEND = 4,        //     write       write               opened or created, positioned at the end
    OS_FIX = 5,           //     read/write  read, write         must exist
    OS_CREATE_READ = 6,   //     read/write  read, write         always new
    OS_TEMPORARY = 7,     //     read/write  read, write, delete always new, a temporary file
};

enum OsSeekOrigin : uint64_t { OS_FROM_START = 0, OS_FROM_CURRENT = 1, OS_FROM_END = 2 };

inline constexpr uint64_t OS_DRIVE_UNKNOWN = 0, OS_DRIVE_FIXED = 3, OS_DRIVE_OPTICAL = 5;

/** Opens a file. A null path or out, or a mode outside 1..7, is OS_INVALID_ARGUMENT. A directory is refused, and on
    POSIX a pipe too, and in the modes 1 and 5 anything else that has no size to read. *file is 0 on failure. */
[[nodiscard]] uint64_t osOpenFile(const char16_t* path, uint64_t mode, OSFILE* file);
/** Closes and sets *file to 0; harmless on a null pointer and on 0. */
uint64_t osCloseFile(OSFILE* file);
/** Moves the file position; a place before the start fails and changes nothing. */
[[nodiscard]] uint64_t osSeekFile(OSFILE file, int64_t offset, uint64_t origin);
[[nodiscard]] uint64_t osTellFile(OSFILE file, uint64_t* position);
[[nodiscard]] uint64_t osFileSize(OSFILE file, uint64_t* size);
/** Reads exactly count bytes; fewer is OS_SHORT_READ. */
[[nodiscard]] uint64_t osReadFile(OSFILE file, void* buffer, uint64_t count);
/** Reads up to count bytes; *got is 0 at the end of the file, which is no failure. */
[[nodiscard]] uint64_t osReadFileSome(OSFILE file, void* buffer, uint64_t count, uint64_t* got);
[[nodiscard]] uint64_t osWriteFile(OSFILE file, const void* buffer, uint64_t count);
[[nodiscard]] uint64_t osCopyFile(const char16_t* from, const char16_t* to, bool failIfExists);
/** Deletes a file. Non-zero if it is gone: the platform call's own result, not a result code. */
uint64_t osDeleteFile(const char16_t* path);
/** Looks at a path without opening it: size in bytes (0 for a directory), times (creation, access, write; 100 ns since
    1601-01-01 UTC). Both may be null, which makes it a test for existence. On failure the outputs are 0. */
[[nodiscard]] uint64_t osGetFileInfo(const char16_t* path, uint64_t* size, uint64_t times[3]);
/** Makes an empty temporary file with a unique name that begins with prefix; *name is a string object (strings.h) that
    the caller owns. A null prefix is OS_INVALID_ARGUMENT, a null name does nothing. */
[[nodiscard]] uint64_t osGetTempFile(const char16_t* prefix, char16_t** name);
/** *path is a string object that the caller owns. */
[[nodiscard]] uint64_t osGetCurrentDirectory(char16_t** path);
/** Where files go of which nobody has said where: C:\ on Windows, elsewhere the current directory. */
[[nodiscard]] uint64_t osGetDefaultDirectory(char16_t** path);
/** Kind of the drive that holds a path. Windows: that of the path's drive letter, OS_DRIVE_UNKNOWN without one.
    Elsewhere OS_DRIVE_OPTICAL stands for a read-only file system, OS_DRIVE_FIXED for any other. */
[[nodiscard]] uint64_t osGetDriveType(const char16_t* path, uint64_t* type);
/** The separator that the library itself puts into paths: `\` on Windows, `/` elsewhere. */
[[nodiscard]] char16_t osPathSeparator();

/** The platform's text of an error number, or a zero count if it has none or it does not fit; terminator included in
    size, not in the count returned. */
[[nodiscard]] uint64_t osSystemText(uint64_t code, char16_t* buffer, uint64_t size);
