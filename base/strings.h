// strings.h: text is UTF-16 in char16_t. A string object is a counted, zero-terminated text that its owner frees with
// osStrFree; wherever a function only reads, a plain zero-terminated buffer serves as well.
#pragma once

#include <cstdint>

inline constexpr uint64_t OS_FORMAT_LIMIT = 1024;   // characters that the formatter keeps; longer text is cut there

/** Copies a zero-terminated text into a new string object. A null out is OS_INVALID_ARGUMENT; a null source leaves
 *out null and is a success; no memory is OS_OUT_OF_MEMORY. */
[[nodiscard]] uint64_t osStrDup(const char16_t* source, char16_t** out);
/** A new string object of length characters and a terminator, filled from source (which holds at least that many), or
    undefined when source is null. */
[[nodiscard]] uint64_t osStrAlloc(uint64_t length, const char16_t* source, char16_t** out);
/** Frees a string object and nulls the pointer; harmless on a null string. A null argument is OS_INVALID_ARGUMENT. */
uint64_t osStrFree(char16_t** string);
/** Length of a string object in characters, from its prefix; 0 for null. */
[[nodiscard]] uint64_t osStrObjectLength(const char16_t* string);
/** Length of a zero-terminated text in characters; 0 for null. */
[[nodiscard]] uint64_t osStrLength(const char16_t* text);
/** Equality, case kept / the letters A to Z and a to z taken as equal. Null equals only null. */
[[nodiscard]] bool osStrEqual(const char16_t* a, const char16_t* b);
[[nodiscard]] bool osStrEqualNoCase(const char16_t* a, const char16_t* b);
/** Makes a non-empty path end in a separator: an object that does not is replaced by a new one, and the old one freed.
    A null argument or string is OS_INVALID_ARGUMENT. */
[[nodiscard]] uint64_t osAddBackslash(char16_t** path);
/** Index of the last separator of a path, or the path's length if it has none. `\` separates everywhere, `/` too. */
[[nodiscard]] uint64_t osLastSeparator(const char16_t* path);

/** Narrow text (ANSI code page on Windows, UTF-8 elsewhere, bad sequences as U+FFFD) into a new string object.
    length may be null and gets the characters without the terminator. On failure *out is not written. */
[[nodiscard]] uint64_t osAnsiToWide(char16_t** out, const char* narrow, uint64_t* length);
/** Wide text into a narrow buffer of size bytes, terminator included. length may be null and gets the bytes without the
    terminator. A text that does not fit is a failure; the buffer's content is then undefined but terminated. */
[[nodiscard]] uint64_t osWideToAnsi(char* narrow, const char16_t* wide, uint64_t* length, uint64_t size);

// UTF-8 and UTF-16, written once for both platforms. Bad input becomes U+FFFD. Each returns the units that the whole
// text takes, without a terminator, and writes no more than room of them; with a null destination it only counts.
[[nodiscard]] uint64_t osUtf8ToWide(const char* source, uint64_t bytes, char16_t* destination, uint64_t room);
[[nodiscard]] uint64_t osWideToUtf8(const char16_t* source, uint64_t units, char* destination, uint64_t room);

// One argument of the formatter, made by osArg.
struct OsFormatArg {
    const char16_t* text;   // for %s; null prints nothing
    uint64_t number;        // for %d, %i, %u, %x, %X; its low 32 bits count
};
inline OsFormatArg osArg(const char16_t* text)
{
    return { text, 0 };
}
inline OsFormatArg osArg(uint64_t number)
{
    return { nullptr, number };
}
inline OsFormatArg osArg(int64_t number)
{
    return { nullptr, uint64_t(number) };
}
inline OsFormatArg osArg(int number)
{
    return { nullptr, uint64_t(int64_t(number)) };
}

/** Formats into a buffer of size characters, terminator included. Understands %%, %s and the 32-bit %d %i %u %x %X with
    l, flags 0 and -, width and precision. The text is cut at OS_FORMAT_LIMIT and at the buffer's end.
    @return characters written without the terminator */
uint64_t osFormatArgs(char16_t* buffer, uint64_t size, const char16_t* format, const OsFormatArg* args, uint64_t count);

template <class... Args> uint64_t osFormat(char16_t* buffer, uint64_t size, const char16_t* format, const Args&... args)
{
    const OsFormatArg list[sizeof...(args) + 1] = { osArg(args)... };
    return osFormatArgs(buffer, size, format, list, sizeof...(args));
}

[[nodiscard]] uint64_t osFormPathArgs(char16_t** out, const char16_t* format, const OsFormatArg* args, uint64_t count);
[[nodiscard]] uint64_t osStrFormatArgs(char16_t** out, const char16_t* format, uint64_t* length,
                                       const OsFormatArg* args, uint64_t count);

/** Forms a path as a new string object. A path that the formatter had to cut would name another file: it is
    OS_INVALID_ARGUMENT, and *out is null. */
template <class... Args> [[nodiscard]] uint64_t osFormPath(char16_t** out, const char16_t* format, const Args&... args)
{
    const OsFormatArg list[sizeof...(args) + 1] = { osArg(args)... };
    return osFormPathArgs(out, format, list, sizeof...(args));
}

/** Formats into a new string object; length may be null. No memory is OS_OUT_OF_MEMORY; an empty text is no failure. */
template <class... Args>
[[nodiscard]] uint64_t osStrFormat(char16_t** out, const char16_t* format, uint64_t* length, const Args&... args)
{
    const OsFormatArg list[sizeof...(args) + 1] = { osArg(args)... };
    return osStrFormatArgs(out, format, length, list, sizeof...(args));
}
