/* types.h: the types that every exported family shares. Plain C, compiles alone, as C or C++. */
#ifndef ORVEN_TYPES_H
#define ORVEN_TYPES_H

#include <stdint.h>

/* One UTF-16 unit: wchar_t where the platform's wide character has 16 bits, char16_t elsewhere.
   Wide strings end in a zero unit. Narrow strings are in the ANSI code page on Windows, UTF-8 elsewhere. */
#ifdef _WIN32
#include <stddef.h>
typedef wchar_t OrvWChar;
#else
#ifndef __cplusplus
#include <uchar.h>
#endif
typedef char16_t OrvWChar;
#endif

/* A platform file: a HANDLE on Windows, a file descriptor elsewhere. 0 is "not open". */
typedef uint64_t OSFILE;

#ifdef __cplusplus
#define ORV_BEGIN_DECLS extern "C" {
#define ORV_END_DECLS }
#else
#define ORV_BEGIN_DECLS
#define ORV_END_DECLS
#endif

/** Receives a piece of a stream; the data live until it returns. @return 0 to go on, any other value is a failure */
typedef uint64_t (*OrvUnit)(const uint8_t* data, uint64_t bytes, uint64_t user);

/* ORVEN_BUILD is set while the library itself is built. */
#if defined(_WIN32) && !defined(ORVEN_BUILD)
#define ORV_API __declspec(dllimport)
#elif defined(_WIN32)
#define ORV_API
#else
#define ORV_API __attribute__((visibility("default")))
#endif

#endif
