// explain_test.cpp: codes as people write them, and what is said of them.
#include "host/codes.h"
#include "host/explain.h"
#include "host/text.h"

#include <gtest/gtest.h>

namespace {

struct CodeCase {
    const char* text;
    uint64_t code;
    const char* shortForm;
};

TEST(Explain, ReadsCodes)
{
    const CodeCase cases[] = {
        { "1012", 0x840003F4, "1012" },
        { "0x840003F4", 0x840003F4, "1012" },
        { "0X840003f4", 0x840003F4, "1012" },
        { "2214593524", 0x840003F4, "1012" },
        { "9001", 0x84002329, "9001" },
        { "0", 0, "0" },
        { "2", 2, "2" },
        { "999", 999, "999" },
        { "10000", 10000, "10000" },
        { "0x84000057", 0x84000057, "0x84000057" },
        { "0x88010102", 0x88010102, "0x88010102" },
        { "-3", 0xFFFFFFFFFFFFFFFD, "0xFFFFFFFFFFFFFFFD" },
        { "18446744073709551613", 0xFFFFFFFFFFFFFFFD, "0xFFFFFFFFFFFFFFFD" },
    };
    for (const CodeCase& expected : cases) {
        SCOPED_TRACE(expected.text);
        uint64_t code = 1;
        EXPECT_TRUE(parseCode(expected.text, &code));
        EXPECT_EQ(code, expected.code);
        EXPECT_EQ(shortCode(code), expected.shortForm);
        uint64_t again = 1;
        EXPECT_TRUE(parseCode(expected.shortForm, &again));
        EXPECT_EQ(again, expected.code);
    }
}

TEST(Explain, RefusesWhatIsNoCode)
{
    for (const char* text :
         { "", "x", "0x", "0xG", "12a", " 12", "-", "--3", "1e3", "18446744073709551616", "0x10000000000000000" }) {
        uint64_t code;
        EXPECT_FALSE(parseCode(text, &code)) << text;
    }
}

TEST(Explain, ResultLine)
{
    EXPECT_EQ(resultLine(0, ""), "success");
    EXPECT_EQ(resultLine(0x840003F4, "Error 1012: no titlesets defined"),
              "Error 1012: no titlesets defined (0x840003F4)");
    EXPECT_EQ(resultLine(2, "No such file.\r\n"), "No such file. (system error 2)");
    EXPECT_EQ(resultLine(77777, ""), "a result without a text (system error 77777)");
    EXPECT_EQ(resultLine(CODE_NOTHING_SCANNED, "whatever"),
              "the sources of a title hold no whole sector of 2048 bytes (0xFFFFFFFFFFFFFFFD)");
}

// Every result of the library without a text of its own has one here.
TEST(Explain, ResultsWithoutAText)
{
    for (const uint64_t code :
         { 0x84000057, 0x8400040B, 0x8400044B, 0x84000C1C, 0x84000C1E, 0x88010001, 0x88010002, 0x88010102 }) {
        EXPECT_NE(ownText(code), "") << hexCode(code);
        EXPECT_NE(explanation(code), "") << hexCode(code);
    }
}

TEST(Explain, EveryResultOfTheReaderIsExplained)
{
    for (uint64_t id = 1000; id <= 1035; id++) {
        const bool unused = id == 1002 || id == 1021 || id == 1028;   // no run gives them
        EXPECT_EQ(explanation(libraryCode(id)) == "", unused) << id;
    }
}

TEST(Explain, EveryResultOfDvdAudioIsExplained)
{
    for (uint64_t id = 6001; id <= 6027; id++) {
        const std::string text = explanation(libraryCode(id));
        EXPECT_GT(text.size(), 30u) << id;
        EXPECT_NE(text, "A result of DVD-Audio authoring.") << id;
    }
}

TEST(Explain, RowsAscend)
{
    const uint64_t ids[] = {
#define EXPLAIN(id, text) id,
#include "host/explain_texts.inc"
#undef EXPLAIN
    };
    for (size_t i = 1; i < std::size(ids); i++) EXPECT_LT(ids[i - 1], ids[i]);
}

}   // namespace
