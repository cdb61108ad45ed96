// text.cpp: texts between the encodings that meet in the host.
#include "text.h"

#include <cstdio>

static constexpr char32_t REPLACEMENT = 0xFFFD;

static void appendUtf16(std::u16string* text, char32_t unit)
{
    if (unit < 0x10000) {
        *text += char16_t(unit);
    } else {
        *text += char16_t(0xD800 + ((unit - 0x10000) >> 10));
        *text += char16_t(0xDC00 + ((unit - 0x10000) & 0x3FF));
    }
}

// Takes one character at *at. An invalid byte is one replacement character.
static char32_t takeUtf8(std::string_view text, size_t* at)
{
    const uint8_t lead = uint8_t(text[(*at)++]);
    if (lead < 0x80) return lead;
    const size_t more = lead >= 0xF0 && lead <= 0xF4  ? 3
                        : lead >= 0xE0 && lead < 0xF0 ? 2
                        : lead >= 0xC2 && lead < 0xE0 ? 1
                                                      : 0;
    if (more == 0 || text.size() - *at < more) return REPLACEMENT;
    char32_t unit = lead & (0x3Fu >> more);
    for (size_t i = 0; i < more; i++) {
        const uint8_t next = uint8_t(text[*at + i]);
        if ((next & 0xC0) != 0x80) return REPLACEMENT;
        unit = unit << 6 | (next & 0x3F);
    }
    const char32_t least = more == 3 ? 0x10000 : more == 2 ? 0x800 : 0x80;
    if (unit < least || unit > 0x10FFFF || (unit >= 0xD800 && unit < 0xE000)) return REPLACEMENT;
    *at += more;
    return unit;
}

std::u16string wideOf(std::string_view text)
{
    std::u16string wide;
    for (size_t at = 0; at < text.size();) appendUtf16(&wide, takeUtf8(text, &at));
    return wide;
}

static char32_t takeUtf16(std::u16string_view text, size_t* at)
{
    const char32_t unit = text[(*at)++];
    if (unit < 0xD800 || unit >= 0xE000) return unit;
    if (unit >= 0xDC00 || *at == text.size()) return REPLACEMENT;
    const char32_t low = text[*at];
    if (low < 0xDC00 || low >= 0xE000) return REPLACEMENT;
    ++*at;
    return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

static void appendUtf8(std::string* text, char32_t unit)
{
    if (unit < 0x80) {
        *text += char(unit);
        return;
    }
    const int more = unit >= 0x10000 ? 3 : unit >= 0x800 ? 2 : 1;
    const char32_t marks[] = { 0, 0xC0, 0xE0, 0xF0 };
    *text += char(marks[more] | unit >> (6 * more));
    for (int i = more - 1; i >= 0; i--) *text += char(0x80 | ((unit >> (6 * i)) & 0x3F));
}

std::string utf8Of(std::u16string_view text)
{
    std::string utf8;
    for (size_t at = 0; at < text.size();) appendUtf8(&utf8, takeUtf16(text, &at));
    return utf8;
}

std::string printable(std::u16string_view text)
{
    std::u16string clean(text);
    for (char16_t& unit : clean) {
        const bool control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
        if (control) unit = u'?';
    }
    return utf8Of(clean);
}

std::string printablePath(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return printable(wideOf(std::string(text.begin(), text.end())));
}

static char16_t lowerCase(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? char16_t(unit + 32) : unit;
}

bool sameName(std::u16string_view a, std::u16string_view b)
{
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); i++) {
        if (lowerCase(a[i]) != lowerCase(b[i])) return false;
    }
    return true;
}

std::string wrapped(const std::string& text, size_t columns)
{
    std::string lines = text;
    size_t start = 0, blank = lines.npos;
    for (size_t at = 0; at < lines.size(); at++) {
        if (lines[at] == ' ') blank = at;
        if (at - start < columns || blank == lines.npos) continue;
        lines[blank] = '\n';
        start = blank + 1;
        blank = lines.npos;
    }
    return lines;
}

std::string hexCode(uint64_t code)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(code));
    return text;
}
