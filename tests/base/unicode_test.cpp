// unicode_test.cpp: UTF-8 and UTF-16, there and back, and what is neither.
#include "base/strings.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <string>

static std::string hexOf(const std::u16string& text)
{
    std::string hex;
    for (const char16_t unit : text) {
        const uint8_t bytes[2] = { uint8_t(unit >> 8), uint8_t(unit) };
        const std::string pair = toHex(bytes, 2);
        hex += (hex.empty() ? "" : " ") + pair.substr(0, 2) + pair.substr(3, 2);
    }
    return hex;
}

TEST(Unicode, Utf8ToWide)
{
    struct {
        const char *what, *bytes, *units;
    } const cases[] = {
        { "nothing", "", "" },
        { "ASCII", "41 7F 00 01", "0041 007F 0000 0001" },
        { "least of two bytes", "C2 80", "0080" },
        { "most of two bytes", "DF BF", "07FF" },
        { "least of three bytes", "E0 A0 80", "0800" },
        { "euro sign", "E2 82 AC", "20AC" },
        { "before the surrogates", "ED 9F BF", "D7FF" },
        { "behind the surrogates", "EE 80 80", "E000" },
        { "most of three bytes", "EF BF BF", "FFFF" },
        { "least pair", "F0 90 80 80", "D800 DC00" },
        { "a face", "F0 9F 98 80", "D83D DE00" },
        { "the last character", "F4 8F BF BF", "DBFF DFFF" },
        { "a byte that continues nothing", "80 41", "FFFD 0041" },
        { "bytes that begin nothing", "C0 C1 F5 FE FF", "FFFD FFFD FFFD FFFD FFFD" },
        { "overlong slash", "C0 AF", "FFFD FFFD" },
        { "overlong of three", "E0 80 AF", "FFFD FFFD FFFD" },
        { "overlong of four", "F0 80 80 AF", "FFFD FFFD FFFD FFFD" },
        { "half a surrogate pair", "ED A0 80", "FFFD FFFD FFFD" },
        { "past the last character", "F4 90 80 80", "FFFD FFFD FFFD FFFD" },
        { "two of three at the end", "E2 82", "FFFD" },
        { "one of three at the end", "E2", "FFFD" },
        { "two of three, then a letter", "E2 82 41", "FFFD 0041" },
        { "three of four, then a letter", "F0 9F 98 41", "FFFD 0041" },
        { "two of four, then a whole one", "F0 9F E2 82 AC", "FFFD 20AC" },
        { "one of two, then ASCII", "C3 28", "FFFD 0028" },
    };
    for (const auto& row : cases) {
        const Bytes bytes = fromHex(row.bytes);
        const char* source = reinterpret_cast<const char*>(bytes.data());
        std::u16string wide(osUtf8ToWide(source, bytes.size(), nullptr, 0), u'#');
        EXPECT_EQ(osUtf8ToWide(source, bytes.size(), wide.data(), wide.size()), wide.size());
        EXPECT_EQ(hexOf(wide), row.units) << row.what;
    }
}

TEST(Unicode, WideToUtf8)
{
    struct {
        const char* what;
        std::u16string units;
        const char* bytes;
    } const cases[] = {
        { "nothing", {}, "" },
        { "ASCII", { 0x41, 0x7F, 0 }, "41 7F 00" },
        { "two bytes", { 0x80, 0x7FF }, "C2 80 DF BF" },
        { "three bytes", { 0x800, 0x20AC, 0xD7FF, 0xE000, 0xFFFF }, "E0 A0 80 E2 82 AC ED 9F BF EE 80 80 EF BF BF" },
        { "pairs", { 0xD800, 0xDC00, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF }, "F0 90 80 80 F0 9F 98 80 F4 8F BF BF" },
        { "first half alone", { 0xD800 }, "EF BF BD" },
        { "first half, then a letter", { 0xD800, 0x41 }, "EF BF BD 41" },
        { "second half alone", { 0xDC00, 0x41 }, "EF BF BD 41" },
        { "halves in the wrong order", { 0xDC00, 0xD800 }, "EF BF BD EF BF BD" },
        { "two first halves, then a second", { 0xD83D, 0xD83D, 0xDE00 }, "EF BF BD F0 9F 98 80" },
    };
    for (const auto& row : cases) {
        std::string bytes(osWideToUtf8(row.units.data(), row.units.size(), nullptr, 0), '#');
        EXPECT_EQ(osWideToUtf8(row.units.data(), row.units.size(), bytes.data(), bytes.size()), bytes.size());
        EXPECT_EQ(toHex(Bytes(bytes.begin(), bytes.end())), row.bytes) << row.what;
    }
}

TEST(Unicode, EveryCharacterComesBack)
{
    for (uint32_t character = 0; character < 0x110000; character++) {
        if (character >= 0xD800 && character < 0xE000) continue;
        char16_t units[2] = { char16_t(character), 0 };
        const uint64_t count = character < 0x10000 ? 1 : 2;
        if (count == 2) {
            units[0] = char16_t(0xD800 + (character - 0x10000) / 0x400);
            units[1] = char16_t(0xDC00 + (character - 0x10000) % 0x400);
        }
        char bytes[4];
        const uint64_t length = osWideToUtf8(units, count, bytes, 4);
        ASSERT_EQ(length, character < 0x80 ? 1u : character < 0x800 ? 2u : character < 0x10000 ? 3u : 4u);
        char16_t back[2] = {};
        ASSERT_EQ(osUtf8ToWide(bytes, length, back, 2), count);
        ASSERT_EQ(back[0], units[0]) << character;
        ASSERT_EQ(back[1], units[1]) << character;
    }
}

TEST(Unicode, NoMoreThanTheRoomIsWritten)
{
    char16_t wide[4] = { u'#', u'#', u'#', u'#' };
    EXPECT_EQ(osUtf8ToWide("abcd", 4, wide, 2), 4u);
    EXPECT_EQ(std::u16string(wide, 4), u"ab##");
    char bytes[4] = { '#', '#', '#', '#' };
    EXPECT_EQ(osWideToUtf8(u"a\u20ACb", 3, bytes, 3), 5u);
    EXPECT_EQ(bytes[0], 'a');
    EXPECT_EQ(bytes[3], '#');
    EXPECT_EQ(osUtf8ToWide(nullptr, 0, nullptr, 0), 0u);
    EXPECT_EQ(osWideToUtf8(nullptr, 0, nullptr, 0), 0u);
}
