// format.cpp: the formatter behind paths, section names and log entries. It understands what the library's own formats
// use and never writes past the buffer.
#include "base/strings.h"

#include <algorithm>

namespace {

struct Output {
    char16_t* text;
    uint64_t room;   // characters, terminator not included
    uint64_t length;
};

struct Conversion {
    bool leftAligned;
    bool zeroFilled;
    uint64_t width;
    uint64_t precision;
    bool hasPrecision;
};

constexpr uint64_t DIGIT_ROOM = 10;   // digits of a 32-bit number

void put(Output& out, char16_t unit, uint64_t times = 1)
{
    times = std::min(times, out.room - out.length);
    for (uint64_t i = 0; i < times; i++) out.text[out.length++] = unit;
}

void putText(Output& out, const char16_t* text, uint64_t length)
{
    length = std::min(length, out.room - out.length);
    for (uint64_t i = 0; i < length; i++) out.text[out.length++] = text[i];
}

bool isDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

uint64_t readCount(const char16_t*& at)
{
    uint64_t count = 0;
    for (; isDigit(*at); at++) count = std::min<uint64_t>(count * 10 + uint64_t(*at - u'0'), OS_FORMAT_LIMIT);
    return count;
}

// Reads flags, width, precision and size; at then stands on the conversion's letter.
Conversion readConversion(const char16_t*& at)
{
    Conversion how = {};
    for (; *at == u'-' || *at == u'0'; at++) {
        if (*at == u'-') how.leftAligned = true;
        if (*at == u'0') how.zeroFilled = true;
    }
    how.width = readCount(at);
    if (*at == u'.') {
        at++;
        how.hasPrecision = true;
        how.precision = readCount(at);
    }
    if (*at == u'l') at++;
    return how;
}

void putString(Output& out, const Conversion& how, const char16_t* text)
{
    uint64_t length = osStrLength(text);
    if (how.hasPrecision) length = std::min(length, how.precision);
    const uint64_t fill = how.width > length ? how.width - length : 0;
    if (!how.leftAligned) put(out, how.zeroFilled ? u'0' : u' ', fill);
    putText(out, text, length);
    if (how.leftAligned) put(out, u' ', fill);
}

void putNumber(Output& out, const Conversion& how, char16_t letter, uint64_t argument)
{
    auto number = uint32_t(argument);
    const bool negative = (letter == u'd' || letter == u'i') && number > 0x7FFFFFFF;
    if (negative) number = uint32_t(0) - number;
    const uint32_t base = letter == u'x' || letter == u'X' ? 16 : 10;
    const char16_t* names = letter == u'X' ? u"0123456789ABCDEF" : u"0123456789abcdef";

    char16_t digits[DIGIT_ROOM];
    uint64_t first = DIGIT_ROOM;
    do {
        digits[--first] = names[number % base];
        number /= base;
    } while (number);

    const uint64_t count = DIGIT_ROOM - first;
    uint64_t zeros = how.hasPrecision && how.precision > count ? how.precision - count : 0;
    const uint64_t length = zeros + count + (negative ? 1 : 0);
    uint64_t fill = how.width > length ? how.width - length : 0;
    if (how.zeroFilled && !how.leftAligned) {
        zeros += fill;
        fill = 0;
    }
    if (!how.leftAligned) put(out, u' ', fill);
    if (negative) put(out, u'-');
    put(out, u'0', zeros);
    putText(out, digits + first, count);
    if (how.leftAligned) put(out, u' ', fill);
}

}   // namespace

uint64_t osFormatArgs(char16_t* buffer, uint64_t size, const char16_t* format, const OsFormatArg* args, uint64_t count)
{
    if (!buffer || size == 0) return 0;
    Output out = { buffer, std::min(size - 1, OS_FORMAT_LIMIT), 0 };
    uint64_t used = 0;
    for (const char16_t* at = format; at && *at && out.length < out.room; at++) {
        if (*at != u'%') {
            put(out, *at);
            continue;
        }
        at++;
        const Conversion how = readConversion(at);
        if (!*at) break;
        const bool isText = *at == u's';
        const bool isNumber = *at == u'd' || *at == u'i' || *at == u'u' || *at == u'x' || *at == u'X';
        if (!isText && !isNumber) {
            put(out, *at);   // %% and what is no conversion
            continue;
        }
        const OsFormatArg argument = used < count ? args[used] : OsFormatArg{};
        used++;
        if (isText) putString(out, how, argument.text);
        if (isNumber) putNumber(out, how, *at, argument.number);
    }
    out.text[out.length] = 0;
    return out.length;
}
