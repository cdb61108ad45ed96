// profile_test.cpp: INI files as the library's own reader and writer treat them: the corners where Windows' functions
// give something else, and the bytes of a file in which one key is set.
#include "base/profile.h"

#include "base/result.h"
#include "base/strings.h"
#include "tests/base/profile_cases.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <sys/stat.h>

using namespace std::string_literals;

static const ProfileCase CASES[] = {
    { "UTF-8 without a mark", "[a]\nk=\xE2\x82\xAC\n", u"\u20AC", 0 },
    { "bytes that are no text",
      "[a]\nk=\xFF"
      "b\xE2\x82\n",
      u"\uFFFD"
      u"b\uFFFD",
      0 },
    { "negative", "[a]\nk=-5\n", u"-5", 0 },
    { "plus", "[a]\nk=+5\n", u"+5", 0 },
    { "hexadecimal", "[a]\nk=0x10\n", u"0x10", 0 },
    { "blank before digits, within quotes", "[a]\nk=\" 5\"\n", u" 5", 0 },
    { "empty is 0, not absent", "[a]\nk=\n", u"", 0 },
    { "up to the first bracket", "[a]b]\nk=1\n", u"1", 1 },
    { "an open section line is no key", "[a]\n[k=1\nk=2\n", u"2", 2 },
    { "a line without = is no key", "[a]\nk\nk=1\n", u"1", 1 },
    { "a key without a name", "[a]\n=5\nk=1\n", u"1", 1 },
    { "form feeds are no blanks", "[a]\nk=\fv\f\n", u"\fv\f", 0 },
    { "a CR within a line", "[a]\nk=v\rw\r\n", u"v\rw", 0 },
    { "a CR at the end of the file", "[a]\nk=v\r", u"v", 0 },
    { "half a unit at the end",
      "\xFF\xFE[\0a\0]\0\n\0k\0=\0"
      "1\0"
      "2"s,
      u"1", 1 },
    { "half a surrogate pair stays", "\xFF\xFE[\0a\0]\0\n\0k\0=\0\0\xD8\n\0"s, std::u16string(1, char16_t(0xD800)), 0 },
    { "a mark alone", "\xFF\xFE", u"", 77 },
    { "a UTF-8 mark alone", "\xEF\xBB\xBF", u"", 77 },
    { "other order of bytes", "\xFE\xFF\0[\0a\0]\0\n\0k\0=\0001"s, u"", 77 },
};

TEST(ProfilePosix, Values)
{
    for (const ProfileCase& row : CASES) expectProfileCase(row);
}

TEST(ProfilePosix, QuotesGoBeforeTheCut)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[a]\nk=\"abc\"\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    char16_t buffer[8];
    EXPECT_EQ(osProfileString(profile, u"a", u"k", buffer, 4), 3u);
    EXPECT_EQ(std::u16string(buffer), u"abc");
    EXPECT_EQ(osProfileString(profile, u"a", u"k", buffer, 3), 2u);
    EXPECT_EQ(std::u16string(buffer), u"ab");
    osCloseProfile(&profile);
}

TEST(ProfilePosix, SectionNamesFitToTheLastCharacter)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[ab]\n[cde]\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    char16_t buffer[9] = u"########";
    EXPECT_EQ(osProfileSectionNames(profile, buffer, 8), 7u);
    EXPECT_EQ(std::u16string(buffer, 8), u"ab\0cde\0\0"s);
    EXPECT_EQ(osProfileSectionNames(profile, buffer, 7), 5u);
    EXPECT_EQ(std::u16string(buffer, 7), u"ab\0cd\0\0"s);
    osCloseProfile(&profile);
}

TEST(ProfilePosix, FirstOfManySectionsAndKeys)
{
    const TempDir dir;
    std::string file;
    for (int section = 1; section <= 100; section++) {
        file += "[a]\n";
        for (int key = 1; key <= 100; key++) file += "k=" + std::to_string(section * 1000 + key) + "\n";
    }
    writeFile(dir / u"project.ini", file);
    OsProfile* profile = openProfile(dir / u"project.ini");
    EXPECT_EQ(osProfileInt(profile, u"a", u"k", 77), 1001u);
    osCloseProfile(&profile);
}

TEST(ProfilePosix, CommentsAreNoKeys)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[a]\n;k=1\n ;[b]\nj=2\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    EXPECT_EQ(osProfileInt(profile, u"a", u";k", 77), 77u);
    EXPECT_EQ(osProfileInt(profile, u"a", u"j", 77), 2u);
    osCloseProfile(&profile);
}

TEST(ProfilePosix, NamesFoldAsciiAlone)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[\xC3\xA4]\n\xC3\xB6=1\n[z]\n[=2\n{=3\n@=4\n`=5\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    EXPECT_EQ(osProfileInt(profile, u"\u00E4", u"\u00F6", 77), 1u);
    EXPECT_EQ(osProfileInt(profile, u"\u00C4", u"\u00F6", 77), 77u);
    EXPECT_EQ(osProfileInt(profile, u"\u00E4", u"\u00D6", 77), 77u);
    EXPECT_EQ(osProfileInt(profile, u"Z", u"{", 77), 3u);
    EXPECT_EQ(osProfileInt(profile, u"Z", u"@", 77), 4u);
    EXPECT_EQ(osProfileInt(profile, u"Z", u"`", 77), 5u);
    osCloseProfile(&profile);
}

TEST(ProfilePosix, AFileIsReadWhenItIsOpened)
{
    const TempDir dir;
    writeFile(dir / u"project.ini", "[a]\nk=1\n");
    OsProfile* profile = openProfile(dir / u"project.ini");
    writeFile(dir / u"project.ini", "[a]\nk=2\n");
    EXPECT_EQ(osProfileInt(profile, u"a", u"k", 77), 1u);
    osCloseProfile(&profile);
}

TEST(ProfilePosix, OnlyPlainFilesOfALegalSizeAreRead)
{
    const TempDir dir;
    ASSERT_EQ(mkfifo((dir.root / "pipe").c_str(), 0600), 0);
    writeFile(dir / u"large", "[a]\nk=1\n");
    std::filesystem::resize_file(dir.root / "large", (uint64_t(256) << 20) + 1);
    for (const std::u16string& path : { dir / u"pipe", dir / u"large", u"/dev/zero"s, u"/dev/null"s }) {
        OsProfile* profile = openProfile(path);
        EXPECT_EQ(osProfileInt(profile, u"a", u"k", 77), 77u) << toUtf8(path);
        osCloseProfile(&profile);
    }
    EXPECT_EQ(osSetIniString((dir / u"pipe").c_str(), u"a", u"k", u"v"), uint64_t(ESPIPE));
    EXPECT_EQ(osSetIniString(u"/dev/null", u"a", u"k", u"v"), uint64_t(ESPIPE));
    EXPECT_EQ(osSetIniString((dir / u"large").c_str(), u"a", u"k", u"v"), uint64_t(EFBIG));
}

TEST(ProfilePosix, LinesWithoutEndAreNoQuadraticWork)
{
    const TempDir dir;
    std::string file = "[a]\n";
    for (int i = 0; i < 400000; i++) file += "k=1\n[b]\n=\n";
    writeFile(dir / u"project.ini", file);
    OsProfile* profile = openProfile(dir / u"project.ini");
    EXPECT_EQ(osProfileInt(profile, u"a", u"k", 77), 1u);
    EXPECT_EQ(osProfileInt(profile, u"b", u"k", 77), 1u);
    EXPECT_EQ(osProfileInt(profile, u"c", u"k", 77), 77u);
    osCloseProfile(&profile);
}

struct WriteCase {
    const char* what;
    std::string before, after;   // the file; key "k" of section "a" is set to "new"
};

static const WriteCase WRITE_CASES[] = {
    { "empty file", "", "[a]\r\nk=new\r\n" },
    { "replaced", "[a]\nk=old\nl=2\n", "[a]\nk=new\nl=2\n" },
    { "replaced by something shorter", "[a]\nk=something\n", "[a]\nk=new\n" },
    { "blanks and names stay", " [A] x\n\tK =  old one \t\r\n", " [A] x\n\tK =  new \t\r\n" },
    { "quotes are part of the value", "[a]\nk=\"old\"\n", "[a]\nk=new\n" },
    { "an empty value", "[a]\nk=\nl=\n", "[a]\nk=new\nl=\n" },
    { "a value that ends the file", "[a]\nk=old", "[a]\nk=new" },
    { "first of two keys", "[a]\nk=1\nk=2\n[a]\nk=3\n", "[a]\nk=new\nk=2\n[a]\nk=3\n" },
    { "comments and broken lines stay", ";x\n[a]\n;k=0\nk\n[k=\nk=1\n", ";x\n[a]\n;k=0\nk\n[k=\nk=new\n" },
    { "added to its section", "[a]\nj=1\n[b]\nk=2\n", "[a]\nj=1\nk=new\n[b]\nk=2\n" },
    { "added before blank lines", "[a]\nj=1\n\n \n[b]\nk=2\n", "[a]\nj=1\nk=new\n\n \n[b]\nk=2\n" },
    { "added to an empty section", "[a]\n[b]\nk=2\n", "[a]\nk=new\n[b]\nk=2\n" },
    { "added to the first of two sections", "[a]\n[b]\n[a]\nk=2\n", "[a]\nk=new\n[b]\n[a]\nk=2\n" },
    { "added behind a last line without an end", "[a]\r\nj=1", "[a]\r\nj=1\r\nk=new\r\n" },
    { "added behind a section without an end", "[a]", "[a]\r\nk=new\r\n" },
    { "a new section", "[b]\nk=2\n", "[b]\nk=2\n[a]\nk=new\n" },
    { "a new section behind a line without an end", "x=1\n[b]\nk=2", "x=1\n[b]\nk=2\n[a]\nk=new\n" },
    { "bytes that are no text stay", "[b]\nx=\xFF\xFE\xC3\n[a]\nk=\xE2\x82\n\xFF",
      "[b]\nx=\xFF\xFE\xC3\n[a]\nk=new\n\xFF" },
    { "mark of UTF-8", "\xEF\xBB\xBF[a]\nk=1\n", "\xEF\xBB\xBF[a]\nk=new\n" },
    { "UTF-16",
      "\xFF\xFE[\0a\0]\0\n\0k\0=\0"
      "1\0\n\0x\0"s,
      "\xFF\xFE[\0a\0]\0\n\0k\0=\0n\0e\0w\0\n\0x\0"s },
    { "UTF-16, added", "\xFF\xFE[\0a\0]\0\r\0\n\0"s, "\xFF\xFE[\0a\0]\0\r\0\n\0k\0=\0n\0e\0w\0\r\0\n\0"s },
    { "UTF-16, half a unit at the end",
      "\xFF\xFE[\0a\0]\0\n\0k\0=\0"
      "1\0\n"s,
      "\xFF\xFE[\0a\0]\0\n\0k\0=\0n\0e\0w\0\n"s },
};

TEST(ProfilePosix, SetChangesOneKeyAndNoOtherByte)
{
    for (const WriteCase& row : WRITE_CASES) {
        const TempDir dir;
        writeFile(dir / u"file", row.before);
        EXPECT_EQ(osSetIniString((dir / u"file").c_str(), u"a", u"k", u"new"), 0u) << row.what;
        EXPECT_EQ(toHex(readFile(dir / u"file")), toHex(Bytes(row.after.begin(), row.after.end()))) << row.what;
    }
}

TEST(ProfilePosix, SetMakesTheFile)
{
    const TempDir dir;
    EXPECT_EQ(osSetIniString((dir / u"file").c_str(), u"a\u20AC", u"k", u"\u00E9"), 0u);
    const Bytes bytes = readFile(dir / u"file");
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "[a\xE2\x82\xAC]\r\nk=\xC3\xA9\r\n");
}

TEST(ProfilePosix, SetTakesOneLineAlone)
{
    const TempDir dir;
    for (const char16_t* text : { u"x\ny=1", u"x\r", u"\n" }) {
        EXPECT_EQ(osSetIniString((dir / u"file").c_str(), text, u"k", u"v"), OS_INVALID_ARGUMENT);
        EXPECT_EQ(osSetIniString((dir / u"file").c_str(), u"a", text, u"v"), OS_INVALID_ARGUMENT);
        EXPECT_EQ(osSetIniString((dir / u"file").c_str(), u"a", u"k", text), OS_INVALID_ARGUMENT);
    }
    EXPECT_FALSE(fileExists(dir / u"file"));
}
