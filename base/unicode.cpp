// unicode.cpp: UTF-8 to UTF-16 and back, for paths, texts and project files. Whatever is no text becomes U+FFFD.
#include "base/strings.h"

namespace {

constexpr uint32_t REPLACEMENT = 0xFFFD;

bool isHighSurrogate(uint32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(uint32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// First bytes of sequences of two bytes and more, and the range of the second byte, which keeps out overlong forms,
// surrogates and what lies past U+10FFFF. Further bytes are 80 to BF.
struct Lead {
    uint8_t first, last;   // of the first byte
    uint8_t low, high;     // of the second byte
    uint8_t more;          // bytes behind the first
    uint8_t mask;          // of the first byte's own bits
};
// clang-format off
constexpr Lead LEADS[] = {
    { 0xC2, 0xDF, 0x80, 0xBF, 1, 0x1F },
    { 0xE0, 0xE0, 0xA0, 0xBF, 2, 0x0F },
    { 0xE1, 0xEC, 0x80, 0xBF, 2, 0x0F },
    { 0xED, 0xED, 0x80, 0x9F, 2, 0x0F },
    { 0xEE, 0xEF, 0x80, 0xBF, 2, 0x0F },
    { 0xF0, 0xF0, 0x90, 0xBF, 3, 0x07 },
    { 0xF1, 0xF3, 0x80, 0xBF, 3, 0x07 },
    { 0xF4, 0xF4, 0x80, 0x8F, 3, 0x07 },
};
// clang-format on

// Takes one character, or the longest beginning of one that breaks off, which is one U+FFFD.
uint32_t takeUtf8(const uint8_t*& at, const uint8_t* end)
{
    const uint8_t first = *at++;
    if (first < 0x80) return first;
    for (const Lead& lead : LEADS) {
        if (first < lead.first || first > lead.last) continue;
        uint32_t character = first & lead.mask;
        for (uint8_t i = 0; i < lead.more; i++) {
            const uint8_t low = i == 0 ? lead.low : uint8_t(0x80);
            const uint8_t high = i == 0 ? lead.high : uint8_t(0xBF);
            if (at == end || *at < low || *at > high) return REPLACEMENT;
            character = character << 6 | (*at++ & 0x3F);
        }
        return character;
    }
    return REPLACEMENT;
}

// Takes one character; half a surrogate pair is one U+FFFD.
uint32_t takeUtf16(const char16_t*& at, const char16_t* end)
{
    const uint32_t unit = *at++;
    if (isHighSurrogate(unit) && at != end && isLowSurrogate(*at)) {
        return 0x10000 + ((unit - 0xD800) << 10) + (uint32_t(*at++) - 0xDC00);
    }
    return isHighSurrogate(unit) || isLowSurrogate(unit) ? REPLACEMENT : unit;
}

template <class Unit> struct Output {
    Unit* text;
    uint64_t room;
    uint64_t length;   // of the whole text, written or not
};

template <class Unit> void put(Output<Unit>& out, uint32_t unit)
{
    if (out.text && out.length < out.room) out.text[out.length] = Unit(unit);
    out.length++;
}

}   // namespace

uint64_t osUtf8ToWide(const char* source, uint64_t bytes, char16_t* destination, uint64_t room)
{
    Output<char16_t> out = { destination, room, 0 };
    const auto* at = reinterpret_cast<const uint8_t*>(source);
    for (const uint8_t* end = at + bytes; at != end;) {
        const uint32_t character = takeUtf8(at, end);
        if (character < 0x10000) {
            put(out, character);
        } else {
            put(out, 0xD800 + ((character - 0x10000) >> 10));
            put(out, 0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    return out.length;
}

uint64_t osWideToUtf8(const char16_t* source, uint64_t units, char* destination, uint64_t room)
{
    Output<char> out = { destination, room, 0 };
    for (const char16_t *at = source, *end = source + units; at != end;) {
        const uint32_t character = takeUtf16(at, end);
        if (character < 0x80) {
            put(out, character);
            continue;
        }
        if (character < 0x800) {
            put(out, 0xC0 | character >> 6);
        } else if (character < 0x10000) {
            put(out, 0xE0 | character >> 12);
            put(out, 0x80 | (character >> 6 & 0x3F));
        } else {
            put(out, 0xF0 | character >> 18);
            put(out, 0x80 | (character >> 12 & 0x3F));
            put(out, 0x80 | (character >> 6 & 0x3F));
        }
        put(out, 0x80 | (character & 0x3F));
    }
    return out.length;
}
