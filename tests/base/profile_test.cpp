// profile_test.cpp: INI files. These rules hold on every platform; posix/profile_test.cpp has what only one gives.
#include "base/profile.h"

#include "base/result.h"
#include "tests/base/profile_cases.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

static const ProfileCase CASES[] = {
    { "plain", "[a]\nk=v\n", u"v", 0 },
    { "case of names", "[A]\nK=Value\n", u"Value", 0 },
    { "blanks around everything", " \t[a] \t\n \tk\t = \tv w\t \n", u"v w", 0 },
    { "blanks within the section's brackets", "[ a\t]\nk=v\n", u"v", 0 },
    { "TAB within", "[a]\nk=v\tw\n", u"v\tw", 0 },
    { "double quotes", "[a]\nk= \" v \" \n", u" v ", 0 },
    { "single quotes", "[a]\nk=' v '\n", u" v ", 0 },
    { "one pair only", "[a]\nk=\"'v'\"\n", u"'v'", 0 },
    { "quotes in the middle", "[a]\nk=a\"b\"c\n", u"a\"b\"c", 0 },
    { "quote without an end", "[a]\nk=\"v\n", u"\"v", 0 },
    { "quote without a start", "[a]\nk=v\"\n", u"v\"", 0 },
    { "two kinds of quotes", "[a]\nk=\"v'\n", u"\"v'", 0 },
    { "a quote alone", "[a]\nk=\"\n", u"\"", 0 },
    { "quotes around a number", "[a]\nk=\"12\"\n", u"12", 12 },
    { "comment", "[a]\n;k=1\n \t;k=2\nk=3\n", u"3", 3 },
    { "no comment behind a value", "[a]\nk=3;4\n", u"3;4", 3 },
    { "= in a value", "[a]\nk==1=2\n", u"=1=2", 0 },
    { "blank in a key", "[a]\nk k=1\nk=2\n", u"2", 2 },
    { "first of two keys", "[a]\nk=1\nK=2\n", u"1", 1 },
    { "first of two sections", "[a]\nk=1\n[A]\nk=2\n", u"1", 1 },
    { "only the first of two sections", "[a]\nj=1\n[a]\nk=2\n", u"", 77 },
    { "other sections around", "[aa]\nk=1\n[a]\nk=2\n[]\nk=3\n", u"2", 2 },
    { "key in another section", "[a]\nj=1\n[b]\nk=2\n", u"", 77 },
    { "no such section", "[b]\nk=2\n", u"", 77 },
    { "key before the first section", "k=1\n[a]\nj=2\n", u"", 77 },
    { "text behind the bracket", "[a] k=5\nk=6\n", u"6", 6 },
    { "section without its bracket", "[a\nk=1\n", u"", 77 },
    { "such a line within a section", "[a]\n[b\nk=1\n", u"1", 1 },
    { "empty lines", "\n\r\n[a]\n\n \t\nk=1\n", u"1", 1 },
    { "CR LF", "[a]\r\nk=v\r\n", u"v", 0 },
    { "last line without an end", "[a]\r\nk=v", u"v", 0 },
    { "empty file", "", u"", 77 },
    { "a NUL ends a value", "[a]\nk=7\0008\nl=2\n"s, u"7", 7 },
    { "UTF-16", "\xFF\xFE[\0a\0]\0\r\0\n\0k\0=\0\xAC\x20\xE9\0\n\0"s, u"\u20AC\u00E9", 0 },
    { "UTF-16, last line without an end",
      "\xFF\xFE[\0a\0]\0\n\0k\0=\0"
      "1\0"s,
      u"1", 1 },
    { "UTF-8 with a mark", "\xEF\xBB\xBF[a]\nk=\xE2\x82\xAC\xC3\xA9\n", u"\u20AC\u00E9", 0 },
    { "digits, then text", "[a]\nk=12ab\n", u"12ab", 12 },
    { "digits, then a comma", "[a]\nk=5,6\n", u"5,6", 5 },
    { "text alone", "[a]\nk=ab\n", u"ab", 0 },
    { "leading zeros are decimal", "[a]\nk=010\n", u"010", 10 },
    { "largest number", "[a]\nk=4294967295\n", u"4294967295", 4294967295 },
    { "2^32", "[a]\nk=4294967296\n", u"4294967296", 0 },
    { "2^32 + 5", "[a]\nk=4294967301\n", u"4294967301", 5 },
    { "25 digits", "[a]\nk=9999999999999999999999999\n", u"9999999999999999999999999", 1241513983 },
};

TEST(Profile, Values)
{
    for (const ProfileCase& row : CASES) expectProfileCase(row);
}

TEST(Profile, EmptyValues)
{
    for (const char* file : { "[a]\nk=\n", "[a]\nk= \t\n", "[a]\nk=\"\"\n", "[a]\nk=''\n", "[a]\nk=" }) {
        const TempDir dir;
        writeFile(dir / u"project.ini", file);
        OsProfile* profile = openProfile(dir / u"project.ini");
        char16_t buffer[4] = u"###";
        EXPECT_EQ(osProfileString(profile, u"a", u"k", buffer, 4), 0u) << file;
        EXPECT_EQ(buffer[0], 0);
        EXPECT_EQ(osProfileInt(profile, u"a", u"k", 0), 0u) << file;
        osCloseProfile(&profile);
    }
}

TEST(Profile, ValuesAreCut)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[a]\nk=abcdef\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    for (uint64_t size = 1; size <= 9; size++) {
        const std::u16string text = std::u16string(u"abcdef").substr(0, size - 1);
        char16_t buffer[10];
        std::fill(std::begin(buffer), std::end(buffer), u'#');
        EXPECT_EQ(osProfileString(profile, u"a", u"k", buffer, size), text.size()) << size;
        EXPECT_EQ(std::u16string(buffer), text);
        for (uint64_t i = size; i < 10; i++) EXPECT_EQ(buffer[i], u'#');
    }
    char16_t buffer[1] = { u'#' };
    EXPECT_EQ(osProfileString(profile, u"a", u"k", buffer, 0), 0u);
    EXPECT_EQ(buffer[0], u'#');
    osCloseProfile(&profile);
}

TEST(Profile, LongValues)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[a]\nk=" + std::string(5000, 'x') + "\nl=1\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    std::u16string buffer(4097, u'#');
    EXPECT_EQ(osProfileString(profile, u"a", u"k", buffer.data(), 4096), 4095u);
    EXPECT_EQ(buffer, std::u16string(4095, u'x') + u'\0' + u'#');
    EXPECT_EQ(osProfileInt(profile, u"a", u"l", 77), 1u);
    osCloseProfile(&profile);
}

TEST(Profile, SectionNames)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "x=1\n[ab]\nk=1\n[]\n[ cde ]\n[open\n;[no]\n[AB] rest\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    struct {
        uint64_t size, result;
        std::u16string buffer;
    } const cases[] = {
        { 20, 10, u"ab\0cde\0AB\0\0#########"s },
        { 12, 10, u"ab\0cde\0AB\0\0#"s },   // fits, with exactly size - 2 characters
        { 10, 8, u"ab\0cde\0A\0\0"s },
        { 9, 7, u"ab\0cde\0\0\0"s },
        { 8, 6, u"ab\0cde\0\0"s },
        { 7, 5, u"ab\0cd\0\0"s },
        { 6, 4, u"ab\0c\0\0"s },
        { 5, 3, u"ab\0\0\0"s },
        { 4, 2, u"ab\0\0"s },
        { 3, 1, u"a\0\0"s },
        { 2, 0, u"\0\0"s },
        { 1, 0, u"\0"s },
    };
    for (const auto& row : cases) {
        std::u16string buffer(row.size + 2, u'#');
        EXPECT_EQ(osProfileSectionNames(profile, buffer.data(), row.size), row.result) << row.size;
        const uint64_t written = row.size > 11 ? 11 : row.size;
        EXPECT_EQ(buffer.substr(0, written), row.buffer.substr(0, written)) << row.size;
        EXPECT_EQ(buffer.substr(row.size), u"##") << row.size;
    }
    EXPECT_EQ(osProfileSectionNames(profile, nullptr, 20), 0u);
    osCloseProfile(&profile);
}

TEST(Profile, NoSections)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "k=1\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    char16_t buffer[4] = u"###";
    EXPECT_EQ(osProfileSectionNames(profile, buffer, 4), 0u);
    EXPECT_EQ(buffer[0], 0);
    osCloseProfile(&profile);
}

TEST(Profile, ManyKeysAreFound)
{
    const TempDir dir;
    std::string file;
    for (int section = 30; section > 0; section--) {
        file += "[VTS_" + std::to_string(section) + "]\r\n";
        for (int key = 1; key <= 200; key++) {
            file += "Chapter" + std::to_string(key) + " = " + std::to_string(section * 1000 + key) + "\r\n";
        }
    }
    writeFile(dir / u"project.ini", file);
    OsProfile* profile = openProfile(dir / u"project.ini");
    for (uint32_t section = 1; section <= 30; section++) {
        for (uint32_t key = 1; key <= 200; key += 7) {
            const std::u16string sectionName = toWide("vts_" + std::to_string(section));
            const std::u16string keyName = toWide("chapter" + std::to_string(key));
            EXPECT_EQ(osProfileInt(profile, sectionName.c_str(), keyName.c_str(), 0), section * 1000 + key);
        }
    }
    EXPECT_EQ(osProfileInt(profile, u"VTS_31", u"chapter1", 5), 5u);
    EXPECT_EQ(osProfileInt(profile, u"VTS_", u"chapter1", 5), 5u);
    EXPECT_EQ(osProfileInt(profile, u"VTS_1", u"chapter", 5), 5u);
    EXPECT_EQ(osProfileInt(profile, u"VTS_1", u"chapter201", 5), 5u);
    osCloseProfile(&profile);
}

TEST(Profile, WhatCannotBeReadIsEmpty)
{
    const TempDir dir;
    for (const std::u16string& path : { dir / u"none.ini", dir.root.u16string() }) {
        OsProfile* profile = openProfile(path);
        ASSERT_NE(profile, nullptr);
        EXPECT_EQ(std::u16string(osProfilePath(profile)), path);
        char16_t buffer[4] = u"###";
        EXPECT_EQ(osProfileString(profile, u"a", u"k", buffer, 4), 0u);
        EXPECT_EQ(buffer[0], 0);
        EXPECT_EQ(osProfileInt(profile, u"a", u"k", 77), 77u);
        EXPECT_EQ(osProfileSectionNames(profile, buffer, 4), 0u);
        osCloseProfile(&profile);
        uint64_t number = 0;
        EXPECT_EQ(osGetIniInt(path.c_str(), u"a", u"k", 77, &number), 0u);
        EXPECT_EQ(number, 77u);
    }
    EXPECT_FALSE(fileExists(dir / u"none.ini"));
}

TEST(Profile, NullArguments)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[a]\nk=1\n");
    OsProfile* profile = nullptr;
    EXPECT_EQ(osOpenProfile(nullptr, &profile), OS_INVALID_ARGUMENT);
    EXPECT_EQ(profile, nullptr);
    EXPECT_EQ(osOpenProfile(u"x", nullptr), OS_INVALID_ARGUMENT);
    osCloseProfile(&profile);
    osCloseProfile(nullptr);

    profile = openProfile(dir / u"project.ini");
    char16_t buffer[8] = u"#######";
    EXPECT_EQ(osProfileString(profile, nullptr, u"k", buffer, 8), 0u);
    EXPECT_EQ(osProfileString(profile, u"a", nullptr, buffer, 8), 0u);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(osProfileString(profile, u"a", u"k", nullptr, 8), 0u);
    EXPECT_EQ(osProfileInt(profile, nullptr, u"k", 77), 77u);
    EXPECT_EQ(osProfileInt(profile, u"a", nullptr, 77), 77u);
    EXPECT_EQ(osProfileInt(nullptr, u"a", u"k", 77), 77u);
    EXPECT_EQ(osProfileString(nullptr, u"a", u"k", buffer, 8), 0u);
    EXPECT_EQ(osProfileSectionNames(nullptr, buffer, 8), 0u);
    osCloseProfile(&profile);

    uint64_t number = 0;
    EXPECT_EQ(osGetIniInt((dir / u"project.ini").c_str(), u"a", u"k", 77, nullptr), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osGetIniInt(nullptr, u"a", u"k", 77, &number), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osGetIniInt((dir / u"project.ini").c_str(), nullptr, u"k", 77, &number), 0u);
    EXPECT_EQ(number, 77u);
    EXPECT_EQ(osGetIniInt((dir / u"project.ini").c_str(), u"a", u"k", 77, &number), 0u);
    EXPECT_EQ(number, 1u);
}

static std::u16string valueIn(const std::u16string& path, const char16_t* section, const char16_t* key)
{
    OsProfile* profile = openProfile(path);
    char16_t buffer[100];
    const uint64_t length = osProfileString(profile, section, key, buffer, 100);
    osCloseProfile(&profile);
    return std::u16string(buffer, length);
}

TEST(ProfileWrite, KeysComeBack)
{
    const TempDir dir;
    const std::u16string path = dir / u"ATS_01.nfo";
    const auto set = [&](const char16_t* section, const char16_t* key, const char16_t* value) {
        EXPECT_EQ(osSetIniString(path.c_str(), section, key, value), 0u);
    };
    set(u"TRACKINFO_01", u"TrackBlockSize", u"1200");
    set(u"TRACKINFO_01", u"TrackFirstCellPts", u"585");
    set(u"TRACKINFO_02", u"TrackBlockSize", u"77");
    EXPECT_EQ(valueIn(path, u"TRACKINFO_01", u"TrackBlockSize"), u"1200");
    EXPECT_EQ(valueIn(path, u"TRACKINFO_01", u"TrackFirstCellPts"), u"585");
    EXPECT_EQ(valueIn(path, u"TRACKINFO_02", u"TrackBlockSize"), u"77");
    EXPECT_EQ(valueIn(path, u"TRACKINFO_02", u"TrackFirstCellPts"), u"");

    set(u"trackinfo_01", u"trackblocksize", u"5");
    set(u"TRACKINFO_01", u"Third", u"x y");
    EXPECT_EQ(valueIn(path, u"TRACKINFO_01", u"TrackBlockSize"), u"5");
    EXPECT_EQ(valueIn(path, u"TRACKINFO_01", u"TrackFirstCellPts"), u"585");
    EXPECT_EQ(valueIn(path, u"TRACKINFO_01", u"Third"), u"x y");
    EXPECT_EQ(valueIn(path, u"TRACKINFO_02", u"TrackBlockSize"), u"77");
}

TEST(ProfileWrite, Refusals)
{
    const TempDir dir;
    const std::u16string path = dir / u"file.nfo";
    writeFile(path, "[a]\r\nk=1\r\n");
    EXPECT_EQ(osSetIniString(nullptr, u"a", u"k", u"v"), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osSetIniString(path.c_str(), nullptr, u"k", u"v"), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osSetIniString(path.c_str(), u"a", nullptr, u"v"), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osSetIniString(path.c_str(), u"a", u"k", nullptr), OS_INVALID_ARGUMENT);
    const Bytes bytes = readFile(path);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "[a]\r\nk=1\r\n");
    EXPECT_NE(osSetIniString((dir / u"none/file.nfo").c_str(), u"a", u"k", u"v"), 0u);
    EXPECT_NE(osSetIniString(dir.root.u16string().c_str(), u"a", u"k", u"v"), 0u);
}
