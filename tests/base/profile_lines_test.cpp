// profile_lines_test.cpp: whether a section has a line. The rows that Windows' functions see otherwise say so.
#include "base/profile.h"

#include "tests/base/profile_cases.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

#ifdef _WIN32
constexpr bool WINDOWS = true;
#else
constexpr bool WINDOWS = false;
#endif

static bool hasLines(const std::string& text, const char16_t* section)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", text);
    OsProfile* profile = openProfile(dir / u"project.ini");
    const bool found = osProfileHasLines(profile, section);
    osCloseProfile(&profile);
    return found;
}

TEST(ProfileLines, Sections)
{
    const struct {
        const char* what;
        std::string text;
        bool found;
    } cases[] = {
        { "a key", "[a]\nk=1\n", true },
        { "a key without a value", "[a]\nk=\n", true },
        { "no key, but a line", "[a]\nk\n", true },
        { "a last line without an end", "[a]\nk=1", true },
        { "a line behind blank lines", "[a]\n\n \t\n\r\nk=1\n", true },
        { "a line behind a comment", "[a]\n;x\nk=1\n", true },
        { "a line with blanks around", "[a]\n \t k \t\n", true },
        { "case of the name", "[A]\nk=1\n", true },
        { "blanks around the section", " \t[a]\t\nk=1\n", true },
        { "text behind the bracket", "[a] x\nk=1\n", true },
        { "text behind the bracket alone", "[a] x\n", false },
        { "CR LF", "[a]\r\nk=1\r\n", true },
        { "UTF-16", "\xFF\xFE[\0a\0]\0\n\0k\0=\0\xAC\x20\n\0"s, true },
        { "empty section", "[a]\n", false },
        { "empty section at the end of the file", "[a]", false },
        { "empty lines", "[a]\n\n\r\n\n", false },
        { "blanks alone", "[a]\n \t \n\t\n", false },
        { "empty UTF-16 section", "\xFF\xFE[\0a\0]\0\n\0\n\0"s, false },
        { "lines of the next section", "[a]\n[b]\nk=1\n", false },
        { "lines of the section before", "[b]\nk=1\n[a]\n", false },
        { "lines before the first section", "k=1\n[a]\n", false },
        { "no such section", "[b]\nk=1\n", false },
        { "a longer name", "[ab]\nk=1\n", false },
        { "a shorter name", "[]\nk=1\n", false },
        { "empty file", "", false },
        { "first of two sections", "[a]\nk=1\n[a]\n", true },
        { "only the first of two sections", "[a]\n[A]\nk=1\n", false },
        { "a comment alone", "[a]\n;k=1\n \t;k=2\n", false },
        { "an empty comment", "[a]\n;\n", false },
        { "no comment", "[a]\n#k=1\n", true },
        { "a key without a name", "[a]\n=5\n", true },
        { "= alone", "[a]\n=\n", true },
        { "an open section line", "[a]\n[open\n", true },
        { "a closing bracket", "[a]\n]\n", true },
        { "quotes alone", "[a]\n\"\"\n", true },
        { "a control character", "[a]\n\x01\n", true },
        { "NUL before a key", "[a]\n\0k=1\n"s, true },
        { "UTF-16, a no-break space", "\xFF\xFE[\0a\0]\0\n\0\xA0\0\n\0"s, true },
        { "UTF-8 with a mark", "\xEF\xBB\xBF[a]\nk=1\n", true },
    };
    for (const auto& c : cases) EXPECT_EQ(hasLines(c.text, u"a"), c.found) << c.what;
    EXPECT_TRUE(hasLines("[a]\nk=1\n", u"A"));
    EXPECT_TRUE(hasLines("[ a ]\nk=1\n", u"a"));
    EXPECT_FALSE(hasLines("[a]\nk=1\n", u" a"));
}

// More characters are blanks to Windows; and a section of no name is what stands before the first one.
TEST(ProfileLines, WhereWindowsDiffers)
{
    for (const char* blank : { "\f", "\v", "\r\r", "\x1A" }) {
        EXPECT_EQ(hasLines("[a]\n" + std::string(blank) + "\n", u"a"), !WINDOWS) << int(blank[0]);
    }
    EXPECT_EQ(hasLines("[a]\n\0\n"s, u"a"), !WINDOWS);
    EXPECT_EQ(hasLines("[]\nk=1\n", u""), !WINDOWS);
    EXPECT_EQ(hasLines("k=1\n", u""), WINDOWS);
}

TEST(ProfileLines, ManyAndLongLines)
{
    std::string text = "[a]\n";
    for (int i = 0; i < 5000; i++) text += "key" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    EXPECT_TRUE(hasLines(text, u"a"));
    EXPECT_TRUE(hasLines("[a]\n" + std::string(100000, 'k') + "=1\n", u"a"));
}

TEST(ProfileLines, WhatCannotBeReadIsEmpty)
{
    const TempDir dir;
    for (const std::u16string& path : { dir / u"none.ini", dir.root.u16string() }) {
        OsProfile* profile = openProfile(path);
        EXPECT_FALSE(osProfileHasLines(profile, u"a"));
        osCloseProfile(&profile);
    }
    EXPECT_FALSE(fileExists(dir / u"none.ini"));
}

TEST(ProfileLines, NullArguments)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[a]\nk=1\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    EXPECT_FALSE(osProfileHasLines(profile, nullptr));
    EXPECT_FALSE(osProfileHasLines(nullptr, u"a"));
    osCloseProfile(&profile);
}
