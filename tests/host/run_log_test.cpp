// run_log_test.cpp: entries of the library's log, which keeps the first half of each text.
#include "host/run_log.h"
#include "host/text.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace {

std::string bytesOf(std::string_view hex)
{
    const Bytes bytes = fromHex(hex);
    return std::string(bytes.begin(), bytes.end());
}

// "Error: 84", the kept half of "Error: 840003f8 - "
const std::string HEAD = "45 00 72 00 72 00 6F 00 72 00 3A 00 20 00 38 00 34 00 ";
const std::string END = "0D 00 0A 00 ";

TEST(RunLog, HalfTexts)
{
    // "abcdef" leaves "abc"; "abcde" leaves two characters and half of a third.
    const std::string log = bytesOf(HEAD + "61 00 62 00 63 00 " + END + HEAD + "61 00 62 00 63 " + END + HEAD + END);
    const std::vector<std::u16string> entries = parseLog(log);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0], u"abc");
    EXPECT_EQ(entries[1], u"ab");
    EXPECT_EQ(entries[2], u"");
    EXPECT_EQ(keptByLog(u"abcdef"), entries[0]);
    EXPECT_EQ(keptByLog(u"abcde"), entries[1]);
}

TEST(RunLog, ForeignBytesAreNoEntries)
{
    EXPECT_TRUE(parseLog("").empty());
    EXPECT_TRUE(parseLog(bytesOf(HEAD + "61 00")).empty());   // without an end
    EXPECT_TRUE(parseLog(bytesOf("41 00 42 00 " + END)).empty());
    EXPECT_TRUE(parseLog(bytesOf("45 00 72 00 72 00 6F 00 72 00 3A 00 20 00 " + END)).empty());   // head cut short
    EXPECT_EQ(parseLog(bytesOf("41 00 " + END + HEAD + "62 00 " + END)).size(), 1u);
}

TEST(RunLog, OnlyWhatThisRunAppended)
{
    const TempDir folder;
    const std::filesystem::path path(folder / u"run.log");
    EXPECT_EQ(logBytes(path), 0u);
    EXPECT_TRUE(readLog(path, 0).empty());
    const Bytes first = fromHex(HEAD + "61 00 " + END), second = fromHex(HEAD + "62 00 " + END);
    writeFile(path.u16string(), first);
    const uint64_t before = logBytes(path);
    EXPECT_EQ(before, 24u);
    Bytes both = first;
    both.insert(both.end(), second.begin(), second.end());
    writeFile(path.u16string(), both);
    ASSERT_EQ(readLog(path, before).size(), 1u);
    EXPECT_EQ(readLog(path, before)[0], u"b");
}

TEST(RunLog, TextStopsAtTheFormattersRoom)
{
    EXPECT_EQ(keptByLog(std::u16string(3000, u'x')).size(), 512u);
}

TEST(Text, ControlCharactersDoNotReachATerminal)
{
    EXPECT_EQ(printable(u"a\x1B[2Jb\x7F\u0085\u00E4"), "a?[2Jb??\xC3\xA4");
}

TEST(Text, LongTextsAreWrapped)
{
    EXPECT_EQ(wrapped("", 5), "");
    EXPECT_EQ(wrapped("ab cd", 5), "ab cd");
    EXPECT_EQ(wrapped("ab cd ef", 5), "ab cd\nef");
    EXPECT_EQ(wrapped("ab cde f", 5), "ab\ncde f");
    EXPECT_EQ(wrapped("abcdefgh ij", 5), "abcdefgh\nij");
}

TEST(Text, InvalidTextBecomesAMark)
{
    const std::u16string mark = u"\uFFFD";
    EXPECT_EQ(wideOf("a\xFF"), u"a" + mark);
    EXPECT_EQ(wideOf("\xC0\xAF"), mark + mark);              // a slash in two bytes
    EXPECT_EQ(wideOf("\xED\xA0\x80"), mark + mark + mark);   // half of a pair
    EXPECT_EQ(wideOf("\xE6\x97"), mark + mark);              // cut
    EXPECT_EQ(utf8Of(std::u16string(1, char16_t(0xD800))), "\xEF\xBF\xBD");
    EXPECT_EQ(utf8Of(wideOf("\xF0\x9F\x8E\xAC")), "\xF0\x9F\x8E\xAC");
}

}   // namespace
