// strings_test.cpp: string objects, comparisons, path endings, narrow text.
#include "base/strings.h"

#include "base/result.h"
#include "tests/base/platform_numbers.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

static char16_t* objectOf(const char16_t* text)
{
    char16_t* object = nullptr;
    EXPECT_EQ(osStrDup(text, &object), 0u);
    return object;
}

TEST(Strings, Dup)
{
    char16_t buffer[] = u"X:\\menu.vob";
    char16_t* text = objectOf(buffer);
    buffer[0] = u'Y';
    EXPECT_EQ(std::u16string(text), u"X:\\menu.vob");
    EXPECT_EQ(osStrObjectLength(text), 11u);
    EXPECT_EQ(osStrFree(&text), 0u);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(osStrFree(&text), 0u);
    EXPECT_EQ(osStrFree(nullptr), OS_INVALID_ARGUMENT);

    EXPECT_EQ(osStrDup(u"x", nullptr), OS_INVALID_ARGUMENT);
    text = buffer;
    EXPECT_EQ(osStrDup(nullptr, &text), 0u);
    EXPECT_EQ(text, nullptr);

    text = objectOf(u"");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(osStrObjectLength(text), 0u);
    EXPECT_EQ(text[0], 0);
    (void)osStrFree(&text);
}

TEST(Strings, Alloc)
{
    char16_t* text = nullptr;
    ASSERT_EQ(osStrAlloc(4097, nullptr, &text), 0u);
    EXPECT_EQ(osStrObjectLength(text), 4097u);
    EXPECT_EQ(text[4097], 0);
    for (uint64_t i = 0; i < 4097; i++) text[i] = u'x';
    EXPECT_EQ(osStrLength(text), 4097u);
    (void)osStrFree(&text);

    ASSERT_EQ(osStrAlloc(3, u"abcdef", &text), 0u);
    EXPECT_EQ(std::u16string(text), u"abc");
    (void)osStrFree(&text);

    EXPECT_EQ(osStrAlloc(3, u"abc", nullptr), OS_INVALID_ARGUMENT);
    char16_t other = 0;
    text = &other;
    EXPECT_EQ(osStrAlloc(~uint64_t(0), nullptr, &text), OS_OUT_OF_MEMORY);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(osStrAlloc(~uint64_t(0) / 2, nullptr, &text), OS_OUT_OF_MEMORY);
}

TEST(Strings, Length)
{
    EXPECT_EQ(osStrLength(nullptr), 0u);
    EXPECT_EQ(osStrLength(u""), 0u);
    EXPECT_EQ(osStrLength(u"abc"), 3u);
    EXPECT_EQ(osStrObjectLength(nullptr), 0u);
}

TEST(Strings, Equal)
{
    EXPECT_TRUE(osStrEqual(u"PAL", u"PAL"));
    EXPECT_TRUE(osStrEqual(u"", u""));
    EXPECT_FALSE(osStrEqual(u"PAL", u"pal"));
    EXPECT_FALSE(osStrEqual(u"PAL", u"PALX"));
    EXPECT_FALSE(osStrEqual(u"PALX", u"PAL"));
    EXPECT_FALSE(osStrEqual(u"", u"P"));
    EXPECT_TRUE(osStrEqual(nullptr, nullptr));
    EXPECT_FALSE(osStrEqual(nullptr, u""));
    EXPECT_FALSE(osStrEqual(u"", nullptr));
}

TEST(Strings, EqualNoCase)
{
    EXPECT_TRUE(osStrEqualNoCase(u"PAL", u"pAl"));
    EXPECT_TRUE(osStrEqualNoCase(u"azAZ09_", u"AZaz09_"));
    EXPECT_FALSE(osStrEqualNoCase(u"PAL", u"pa"));
    EXPECT_FALSE(osStrEqualNoCase(u"pa", u"PAL"));
    EXPECT_FALSE(osStrEqualNoCase(u"@[`{", u"`{@["));       // the neighbours of the letters
    EXPECT_FALSE(osStrEqualNoCase(u"\u00C4", u"\u00E4"));   // letters beyond ASCII keep their case
    EXPECT_FALSE(osStrEqualNoCase(u"\u0130", u"i"));
    EXPECT_TRUE(osStrEqualNoCase(nullptr, nullptr));
    EXPECT_FALSE(osStrEqualNoCase(nullptr, u""));
}

TEST(Strings, AddBackslash)
{
    const std::u16string end(1, SEPARATOR);
    struct {
        std::u16string path, after;
    } const cases[] = {
        { u"", u"" },
        { u"X:\\", u"X:\\" },
        { u"/", u"/" },
        { u"dir/", u"dir/" },
        { u"dir", u"dir" + end },
        { u"X:\\dir", u"X:\\dir" + end },
        { u"dir\\a.", u"dir\\a." + end },
    };
    for (const auto& row : cases) {
        char16_t* path = objectOf(row.path.c_str());
        EXPECT_EQ(osAddBackslash(&path), 0u);
        EXPECT_EQ(std::u16string(path), row.after) << toUtf8(row.path);
        EXPECT_EQ(osStrObjectLength(path), row.after.size());
        (void)osStrFree(&path);
    }
    char16_t* none = nullptr;
    EXPECT_EQ(osAddBackslash(&none), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osAddBackslash(nullptr), OS_INVALID_ARGUMENT);
}

TEST(Strings, LastSeparator)
{
    EXPECT_EQ(osLastSeparator(u"D:\\X\\ATS_03_1.AOB"), 4u);
    EXPECT_EQ(osLastSeparator(u"/a/b\\c"), 4u);
    EXPECT_EQ(osLastSeparator(u"\\a\\b/c"), 4u);
    EXPECT_EQ(osLastSeparator(u"/"), 0u);
    EXPECT_EQ(osLastSeparator(u"a/"), 1u);
    EXPECT_EQ(osLastSeparator(u"ATS_03_1.AOB"), 12u);
    EXPECT_EQ(osLastSeparator(u""), 0u);
    EXPECT_EQ(osLastSeparator(nullptr), 0u);
}

TEST(Strings, NarrowToWide)
{
    char16_t* wide = nullptr;
    uint64_t length = 99;
    ASSERT_EQ(osAnsiToWide(&wide, "C:\\disc\\", &length), 0u);
    EXPECT_EQ(std::u16string(wide), u"C:\\disc\\");
    EXPECT_EQ(length, 8u);
    EXPECT_EQ(osStrObjectLength(wide), 8u);
    (void)osStrFree(&wide);

    ASSERT_EQ(osAnsiToWide(&wide, "", &length), 0u);
    EXPECT_EQ(std::u16string(wide), u"");
    EXPECT_EQ(length, 0u);
    (void)osStrFree(&wide);
    ASSERT_EQ(osAnsiToWide(&wide, "abc", nullptr), 0u);
    EXPECT_EQ(std::u16string(wide), u"abc");

    char16_t* const before = wide;
    EXPECT_EQ(osAnsiToWide(&wide, nullptr, &length), OS_INVALID_ARGUMENT);
    EXPECT_EQ(wide, before);   // not written on failure
    EXPECT_EQ(osAnsiToWide(nullptr, "abc", &length), OS_INVALID_ARGUMENT);
    (void)osStrFree(&wide);
}

TEST(Strings, WideToNarrow)
{
    char narrow[8];
    uint64_t length = 99;
    std::memset(narrow, '#', sizeof(narrow));
    ASSERT_EQ(osWideToAnsi(narrow, u"abc", &length, 4), 0u);
    EXPECT_EQ(std::string(narrow, 8), std::string("abc\0####", 8));
    EXPECT_EQ(length, 3u);
    ASSERT_EQ(osWideToAnsi(narrow, u"", &length, 1), 0u);
    EXPECT_EQ(narrow[0], 0);
    EXPECT_EQ(length, 0u);
    ASSERT_EQ(osWideToAnsi(narrow, u"abcdefg", nullptr, 8), 0u);
    EXPECT_STREQ(narrow, "abcdefg");

    std::memset(narrow, '#', sizeof(narrow));
    EXPECT_EQ(osWideToAnsi(narrow, u"abcd", nullptr, 4), NARROW_TOO_SHORT);
    EXPECT_LT(strnlen(narrow, 4), 4u);               // terminated ...
    EXPECT_EQ(std::string(narrow + 4, 4), "####");   // ... and no byte behind the room touched
    EXPECT_EQ(osWideToAnsi(narrow, u"abc", nullptr, 0), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osWideToAnsi(nullptr, u"abc", nullptr, 4), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osWideToAnsi(narrow, nullptr, nullptr, 4), OS_INVALID_ARGUMENT);
}
