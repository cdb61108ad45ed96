// strings.cpp: string objects and path endings, from UTF-16 texts, for every part of the library.
#include "base/strings.h"

#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"

#include <cstdlib>

namespace {

// Stands in front of a string object's text.
struct StringHeader {
    uint64_t length;   // characters, without the terminator
};

constexpr uint64_t LENGTH_LIMIT = uint64_t(1) << 40;   // characters; far past any text, far below an overflow

bool isSeparator(char16_t unit)
{
    return unit == u'\\' || unit == u'/';
}

char16_t fold(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? char16_t(unit + (u'a' - u'A')) : unit;
}

}   // namespace

uint64_t osStrAlloc(uint64_t length, const char16_t* source, char16_t** out)
{
    if (!out) return OS_INVALID_ARGUMENT;
    *out = nullptr;
    if (length > LENGTH_LIMIT) return OS_OUT_OF_MEMORY;
    void* memory = std::malloc(sizeof(StringHeader) + (length + 1) * sizeof(char16_t));
    if (!memory) return OS_OUT_OF_MEMORY;
    auto* header = static_cast<StringHeader*>(memory);
    header->length = length;
    auto* text = reinterpret_cast<char16_t*>(header + 1);
    text[0] = 0;   // an unfilled object reads as empty
    text[length] = 0;
    if (source) osCopyMem(text, source, length * sizeof(char16_t));
    *out = text;
    return 0;
}

uint64_t osStrDup(const char16_t* source, char16_t** out)
{
    if (!out) return OS_INVALID_ARGUMENT;
    *out = nullptr;
    return source ? osStrAlloc(osStrLength(source), source, out) : 0;
}

uint64_t osStrFree(char16_t** string)
{
    if (!string) return OS_INVALID_ARGUMENT;
    if (*string) std::free(reinterpret_cast<StringHeader*>(*string) - 1);
    *string = nullptr;
    return 0;
}

uint64_t osStrObjectLength(const char16_t* string)
{
    return string ? (reinterpret_cast<const StringHeader*>(string) - 1)->length : 0;
}

uint64_t osStrLength(const char16_t* text)
{
    uint64_t length = 0;
    while (text && text[length]) length++;
    return length;
}

bool osStrEqual(const char16_t* a, const char16_t* b)
{
    if (!a || !b) return a == b;
    while (*a && *a == *b) a++, b++;
    return *a == *b;
}

bool osStrEqualNoCase(const char16_t* a, const char16_t* b)
{
    // Meant: the letters A to Z alone are folded, so that one project gives one disc on every platform and in every
    // locale. Test: Strings.EqualNoCase
    if (!a || !b) return a == b;
    while (*a && fold(*a) == fold(*b)) a++, b++;
    return fold(*a) == fold(*b);
}

uint64_t osAddBackslash(char16_t** path)
{
    if (!path || !*path) return OS_INVALID_ARGUMENT;
    const uint64_t length = osStrLength(*path);
    if (length == 0 || isSeparator((*path)[length - 1])) return 0;
    char16_t* longer = nullptr;
    if (uint64_t error = osStrAlloc(length + 1, nullptr, &longer)) return error;
    osCopyMem(longer, *path, length * sizeof(char16_t));
    longer[length] = osPathSeparator();
    (void)osStrFree(path);
    *path = longer;
    return 0;
}

uint64_t osLastSeparator(const char16_t* path)
{
    const uint64_t length = osStrLength(path);
    for (uint64_t i = length; i > 0; i--) {
        if (isSeparator(path[i - 1])) return i - 1;
    }
    return length;
}

uint64_t osStrFormatArgs(char16_t** out, const char16_t* format, uint64_t* length, const OsFormatArg* args,
                         uint64_t count)
{
    if (!out) return OS_INVALID_ARGUMENT;
    char16_t text[OS_FORMAT_LIMIT + 1];
    const uint64_t got = osFormatArgs(text, OS_FORMAT_LIMIT + 1, format, args, count);
    if (length) *length = got;
    return osStrAlloc(got, text, out);
}

uint64_t osFormPathArgs(char16_t** out, const char16_t* format, const OsFormatArg* args, uint64_t count)
{
    uint64_t length = 0;
    if (uint64_t error = osStrFormatArgs(out, format, &length, args, count)) return error;
    if (length < OS_FORMAT_LIMIT) return 0;
    (void)osStrFree(out);
    return OS_INVALID_ARGUMENT;
}
