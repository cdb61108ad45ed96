// format_test.cpp: the formatter behind paths, section names and log entries.
#include "base/result.h"
#include "base/strings.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <string>

template <class... Args> static std::u16string formatted(const char16_t* format, const Args&... args)
{
    char16_t buffer[2000];
    const uint64_t length = osFormat(buffer, 2000, format, args...);
    EXPECT_EQ(osStrLength(buffer), length);
    return buffer;
}

TEST(Format, Texts)
{
    EXPECT_EQ(formatted(u"VIDEO_TS.IFO"), u"VIDEO_TS.IFO");
    EXPECT_EQ(formatted(u""), u"");
    EXPECT_EQ(formatted(u"100%%"), u"100%");
    EXPECT_EQ(formatted(u"%s%s", u"a", u"b"), u"ab");
    EXPECT_EQ(formatted(u"<%s>", static_cast<const char16_t*>(nullptr)), u"<>");
    EXPECT_EQ(formatted(u"<%5s>", u"ab"), u"<   ab>");
    EXPECT_EQ(formatted(u"<%-5s>", u"ab"), u"<ab   >");
    EXPECT_EQ(formatted(u"<%.2s>", u"abcd"), u"<ab>");
    EXPECT_EQ(formatted(u"<%4.1s>", u"abcd"), u"<   a>");
    EXPECT_EQ(formatted(u"%s", u"\u20AC %d %s"), u"\u20AC %d %s");   // an argument is no format
}

TEST(Format, Numbers)
{
    EXPECT_EQ(formatted(u"%sVTS_%.2d_0.IFO", u"X:\\", 7), u"X:\\VTS_07_0.IFO");
    EXPECT_EQ(formatted(u"VTS_%ld_MENU%ld", 12, uint64_t(3)), u"VTS_12_MENU3");
    EXPECT_EQ(formatted(u"VTS_%02ld", 5), u"VTS_05");
    EXPECT_EQ(formatted(u"VTS_%02ld", 100), u"VTS_100");
    EXPECT_EQ(formatted(u"%08lx", uint64_t(0x840003EB)), u"840003eb");
    EXPECT_EQ(formatted(u"%08lX", uint64_t(0xABC)), u"00000ABC");
    EXPECT_EQ(formatted(u"%x", uint64_t(0)), u"0");
    EXPECT_EQ(formatted(u"%d", -1), u"-1");
    EXPECT_EQ(formatted(u"%i", int64_t(-12)), u"-12");
    EXPECT_EQ(formatted(u"%u", -1), u"4294967295");
    EXPECT_EQ(formatted(u"%d", uint64_t(0x80000000)), u"-2147483648");
    EXPECT_EQ(formatted(u"%d", uint64_t(0x123456789)), u"591751049");   // the low 32 bits, 23456789
    EXPECT_EQ(formatted(u"%lx", uint64_t(0xFFFFFFFFFFFFFFFD)), u"fffffffd");
    EXPECT_EQ(formatted(u"<%5d>", -42), u"<  -42>");
    EXPECT_EQ(formatted(u"<%-5d>", -42), u"<-42  >");
    EXPECT_EQ(formatted(u"<%05d>", -42), u"<-0042>");
    EXPECT_EQ(formatted(u"<%-05d>", 42), u"<42   >");   // no zeros on the right
    EXPECT_EQ(formatted(u"<%.4d>", -42), u"<-0042>");
    EXPECT_EQ(formatted(u"<%6.4d>", 42), u"<  0042>");
    EXPECT_EQ(formatted(u"<%-6.4d>", 42), u"<0042  >");
}

TEST(Format, OddFormats)
{
    EXPECT_EQ(formatted(u"a%"), u"a");
    EXPECT_EQ(formatted(u"a%5"), u"a");
    EXPECT_EQ(formatted(u"%q%d", 5), u"q5");
    EXPECT_EQ(formatted(u"%s|%d|%s", u"only one"), u"only one|0|");
    char16_t buffer[4] = u"xxx";
    EXPECT_EQ(osFormat(buffer, 4, nullptr), 0u);
    EXPECT_EQ(buffer[0], 0);
}

TEST(Format, StopsAt1024Characters)
{
    const std::u16string longText(1500, u'x');
    EXPECT_EQ(formatted(u"%s", longText.c_str()), longText.substr(0, 1024));
    EXPECT_EQ(formatted(u"%s%d", longText.substr(0, 1023).c_str(), 77), longText.substr(0, 1023) + u"7");
    EXPECT_EQ(formatted(u"%s", longText.substr(0, 1024).c_str()), longText.substr(0, 1024));
    EXPECT_EQ(formatted(longText.c_str()), longText.substr(0, 1024));
    EXPECT_EQ(formatted(u"%1100d", 5), std::u16string(1023, u' ') + u"5");   // a width goes no further either
    EXPECT_EQ(formatted(u"%99999999999d", 5), std::u16string(1023, u' ') + u"5");
    EXPECT_EQ(formatted(u"%.99999999999d", 5), std::u16string(1023, u'0') + u"5");
}

TEST(Format, StopsAtTheBuffersEnd)
{
    char16_t buffer[8];
    for (uint64_t size = 1; size <= 6; size++) {
        std::fill(std::begin(buffer), std::end(buffer), u'#');
        const uint64_t length = osFormat(buffer, size, u"%s%d", u"ab", 12345);
        EXPECT_EQ(length, size - 1);
        EXPECT_EQ(std::u16string(buffer, 8),
                  std::u16string(u"ab12345").substr(0, size - 1) + u'\0' + std::u16string(8 - size, u'#'));
    }
    std::fill(std::begin(buffer), std::end(buffer), u'#');
    EXPECT_EQ(osFormat(buffer, 0, u"abc"), 0u);
    EXPECT_EQ(buffer[0], u'#');
    EXPECT_EQ(osFormat(nullptr, 5, u"abc"), 0u);
}

TEST(Format, IntoAStringObject)
{
    char16_t* text = nullptr;
    uint64_t length = 0;
    ASSERT_EQ(osStrFormat(&text, u"%sATS_%.2d.nfo", &length, u"d/", 3), 0u);
    EXPECT_EQ(std::u16string(text), u"d/ATS_03.nfo");
    EXPECT_EQ(length, 12u);
    EXPECT_EQ(osStrObjectLength(text), 12u);
    (void)osStrFree(&text);

    ASSERT_EQ(osStrFormat(&text, u"%s", nullptr, u""), 0u);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(osStrObjectLength(text), 0u);
    (void)osStrFree(&text);

    const std::u16string longText(3000, u'y');
    ASSERT_EQ(osStrFormat(&text, u"%s", &length, longText.c_str()), 0u);
    EXPECT_EQ(length, 1024u);
    EXPECT_EQ(std::u16string(text), longText.substr(0, 1024));
    (void)osStrFree(&text);
    EXPECT_EQ(osStrFormat(nullptr, u"x", &length), OS_INVALID_ARGUMENT);
}
