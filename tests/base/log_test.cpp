// log_test.cpp: the bytes of the run's log.
#include "base/log.h"

#include "base/files.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

TEST(Log, TextsAreHalved)
{
    const TempDir dir;
    const std::u16string path = dir / u"run.log";
    orvLogError(0x840003EB, path.c_str(), u"No comma: %s", u"abc");
    // Of the header's 18 characters 18 bytes, "Error: 84"; of the text's 13 characters 13 bytes, "No com" and half an
    // m.
    EXPECT_EQ(toHex(readFile(path)), "45 00 72 00 72 00 6F 00 72 00 3A 00 20 00 38 00 34 00 "
                                     "4E 00 6F 00 20 00 63 00 6F 00 6D 00 6D "
                                     "0D 00 0A 00");
}

TEST(Log, EntriesAreAppended)
{
    const TempDir dir;
    const std::u16string path = dir / u"run.log";
    writeFile(path, "!");
    orvLogError(2, path.c_str(), u"ab");
    orvLogError(0xFFFFFFFFFFFFFFFD, path.c_str(), u"");
    orvLogError(0x1840007D3, path.c_str(), u"%s", u"\u20AC\u20AC");
    EXPECT_EQ(toHex(readFile(path)), "21 "
                                     "45 00 72 00 72 00 6F 00 72 00 3A 00 20 00 30 00 30 00 61 00 0D 00 0A 00 "
                                     "45 00 72 00 72 00 6F 00 72 00 3A 00 20 00 66 00 66 00 0D 00 0A 00 "
                                     "45 00 72 00 72 00 6F 00 72 00 3A 00 20 00 38 00 34 00 AC 20 0D 00 0A 00");
}

TEST(Log, LongTextsAreCutBeforeTheyAreHalved)
{
    const TempDir dir;
    const std::u16string path = dir / u"run.log";
    orvLogError(2, path.c_str(), u"%s", std::u16string(2000, u'x').c_str());
    const Bytes log = readFile(path);
    ASSERT_EQ(log.size(), 18u + 1024 + 4);
    EXPECT_EQ(toHex(log.data() + 18 + 1020, 8), "78 00 78 00 0D 00 0A 00");
}

TEST(Log, NeverFails)
{
    const TempDir dir;
    orvLogError(2, nullptr, u"text");
    orvLogError(2, u"", u"text");
    orvLogError(2, (dir / u"no folder/run.log").c_str(), u"text");
    orvLogError(2, dir.prefix().c_str(), u"text");
    EXPECT_TRUE(std::filesystem::is_empty(dir.root));
}
