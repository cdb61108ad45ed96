// profile.h: INI files. On Windows the platform's profile functions answer every question; elsewhere the file is read
// once, when it is opened, and each question is one look-up. The rules are the same:
//
// [name] opens a section, key=value lines follow. Names are compared without regard to case. Spaces and TABs around
// names and values are dropped, then one pair of quotes (' or ") around the value; blanks inside the quotes stay. Lines
// that begin with ; are skipped. Of several sections or keys of one name the first counts. Text behind ] and keys
// before the first section are dropped. A file may be UTF-8, with or without a mark, or UTF-16LE with a mark.
#pragma once

#include <cstdint>

struct OsProfile;

/** Opens a project or information file; a file that can't be read behaves like an empty one. The caller closes it.
    A null path or out is OS_INVALID_ARGUMENT; no memory is OS_OUT_OF_MEMORY. */
[[nodiscard]] uint64_t osOpenProfile(const char16_t* path, OsProfile** out);
/** Harmless on a null profile. */
void osCloseProfile(OsProfile** profile);
/** The path that the profile was opened with; valid until it is closed. */
[[nodiscard]] const char16_t* osProfilePath(const OsProfile* profile);

/** An integer value: decimal digits from the start, modulo 2^32; no digits, as in -5, is 0; a missing key is absent. */
[[nodiscard]] uint32_t osProfileInt(const OsProfile* profile, const char16_t* section, const char16_t* key,
                                    uint32_t absent);
/** A value, cut without notice to size - 1 characters and terminated. @return characters; 0 if missing or empty */
uint64_t osProfileString(const OsProfile* profile, const char16_t* section, const char16_t* key, char16_t* buffer,
                         uint64_t size);
/** All section names, each terminated, and a further terminator. @return characters without the last terminator, or
    size - 2 if they do not all fit (the buffer then holds a cut list with two terminators) */
uint64_t osProfileSectionNames(const OsProfile* profile, char16_t* buffer, uint64_t size);

/** Whether the first section of a name has a line that is neither blank nor a comment, be it a key or not. */
[[nodiscard]] bool osProfileHasLines(const OsProfile* profile, const char16_t* section);

/** One integer value of the file at path, read afresh. A null out is OS_INVALID_ARGUMENT. */
[[nodiscard]] uint64_t osGetIniInt(const char16_t* path, const char16_t* section, const char16_t* key, uint32_t absent,
                                   uint64_t* out);
/** Sets one value in the file at path, which is made where missing: the key is replaced or added, nothing else of the
    file changes. */
[[nodiscard]] uint64_t osSetIniString(const char16_t* path, const char16_t* section, const char16_t* key,
                                      const char16_t* value);
