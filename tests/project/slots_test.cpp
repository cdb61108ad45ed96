#include "project/slots.h"

#include "base/result.h"
#include "tests/project/project_file.h"

#include <functional>

namespace {

struct Value {
    explicit Value(std::u16string_view value) : text(value), cursor(text.c_str())
    {
        run.logFilePath = logPath.data();
    }

    std::u16string rest() const
    {
        return cursor;
    }
    testing::AssertionResult logged(const std::vector<LogEntry>& entries) const
    {
        return logHolds(logPath, entries);
    }

    TempDir dir;
    std::u16string logPath = dir / u"errors.log";
    std::u16string text;
    const char16_t* cursor;
    RunHead run = {};
};

constexpr Slot XSTART = { u"xstart", u"button" };

}   // namespace

TEST(Slots, Number)
{
    const std::u16string text = u"No integer token for <xstart> found in <button> in string: ";
    const struct {
        const char* what;
        std::u16string value;
        uint64_t result, number;
        std::u16string rest;
        std::vector<LogEntry> log;
    } cases[] = {
        { "number", u"12,5", 0, 12, u",5", {} },
        { "blanks", u"  \f12 ,5", 0, 12, u" ,5", {} },
        { "ten digits", u"9999999999", 0, 9999999999, u"", {} },
        { "a comma stands for 0 and is gone", u",5", 0, 0, u"5", {} },
        { "no number is not logged", u"12x,5", 0x840003EB, 77, u",5", {} },
        { "eleven digits are not logged", u"12345678901,5", 0x840003EB, 77, u",5", {} },
        { "end", u"", 0x840003EB, 77, u"", { { 0x840003EB, text } } },
        { "end at a TAB", u" \t" + FILLER, 0x840003EB, 77, FILLER, { { 0x840003EB, text + FILLER } } },
        { "opening bracket", u"(" + FILLER, 0x840003EB, 77, FILLER, { { 0x840003EB, text + FILLER } } },
        { "closing bracket", u")" + FILLER, 0x840003EB, 77, FILLER, { { 0x840003EB, text + FILLER } } },
        { "dot", u". " + FILLER, 0x840003EB, 77, u" " + FILLER, { { 0x840003EB, text + u" " + FILLER } } },
        { "colon", u":" + FILLER, 0x840003EB, 77, FILLER, { { 0x840003EB, text + FILLER } } },
        { "bad unit",
          u" \x01",
          0x840003E8,
          77,
          u"\x01",
          { { 0x840003E8, u"Unknown ASCII character in this string:  \x01" } } },
        { "bad unit in a number",
          u"1\x01",
          0x840003E9,
          77,
          u"\x01",
          { { 0x840003E9, u"Wrong ASCII character during parsing: 1\x01" } } },
    };
    for (const auto& c : cases) {
        Value value(c.value);
        uint64_t number = 77;
        EXPECT_EQ(orvReadNumber(&value.run, &value.cursor, XSTART, &number), c.result) << c.what;
        EXPECT_EQ(number, c.number) << c.what;
        EXPECT_EQ(value.rest(), c.rest) << c.what;
        EXPECT_TRUE(value.logged(c.log)) << c.what;
    }
}

TEST(Slots, NumberWithATextOfItsOwn)
{
    Value value(u"." + FILLER);
    uint64_t number = 77;
    EXPECT_EQ(orvReadNumberOr(&value.run, &value.cursor, u"No blink count in string: %s", &number), 0x840003EBu);
    EXPECT_EQ(number, 77u);
    EXPECT_TRUE(value.logged({ { 0x840003EB, u"No blink count in string: " + FILLER } }));
}

TEST(Slots, Separators)
{
    const struct {
        TokenKind kind;
        const char16_t* unit;
        uint64_t code;
        std::u16string text;
    } cases[] = {
        { TOKEN_COMMA, u",", 0x840003ED, u"No comma found after <xstart> in <button> in string: " },
        { TOKEN_OPEN, u"(", 0x840003EE, u"No opening bracket found after <xstart> in <button> in string: " },
        { TOKEN_CLOSE, u")", 0x840003EF, u"No closing bracket found after <xstart> in <button> in string: " },
        { TOKEN_DOT, u".", 0x840003F0, u"No dot found after <xstart> in <button> in string: " },
        { TOKEN_COLON, u":", 0x84000405, u"No colon found after <xstart> in <button> in string: " },
    };
    for (const auto& expected : cases) {
        for (const auto& found : cases) {
            Value value(u" " + std::u16string(found.unit) + FILLER);
            const bool fits = &expected == &found;
            EXPECT_EQ(orvReadSeparator(&value.run, &value.cursor, expected.kind, XSTART), fits ? 0 : expected.code);
            EXPECT_EQ(value.rest(), FILLER);
            const std::vector<LogEntry> entry = { { expected.code, expected.text + FILLER } };
            EXPECT_TRUE(value.logged(fits ? std::vector<LogEntry>() : entry));
        }
        Value text(u"5 " + FILLER);
        EXPECT_EQ(orvReadSeparator(&text.run, &text.cursor, expected.kind, XSTART), expected.code);
        EXPECT_TRUE(text.logged({ { expected.code, expected.text + u" " + FILLER } }));
        Value end(u"");
        EXPECT_EQ(orvReadSeparator(&end.run, &end.cursor, expected.kind, XSTART), expected.code);
        EXPECT_TRUE(end.logged({ { expected.code, expected.text } }));
        Value tab(u"\t" + FILLER);
        EXPECT_EQ(orvReadSeparator(&tab.run, &tab.cursor, expected.kind, XSTART), expected.code);
        EXPECT_TRUE(tab.logged({ { expected.code, expected.text + FILLER } }));
        Value bad(u"\x02");
        EXPECT_EQ(orvReadSeparator(&bad.run, &bad.cursor, expected.kind, XSTART), 0x840003E8u);
        EXPECT_TRUE(bad.logged({ { 0x840003E8, u"Unknown ASCII character in this string: \x02" } }));
    }
}

TEST(Slots, CommaStandsForZero)
{
    const struct {
        std::u16string value;
        uint64_t result, a, b, c;
        std::u16string rest;
        std::vector<LogEntry> log;
    } cases[] = {
        { u"5,6,7", 0, 5, 6, 7, u"", {} },
        { u"5 , 6 , 7 , 8", 0, 5, 6, 7, u" , 8", {} },
        { u"5,,,7", 0, 5, 0, 7, u"", {} },
        { u",,,,,", 0, 0, 0, 0, u"", {} },
        { u"5,,7", 0x840003ED, 5, 0, 9, u"", { { 0x840003ED, u"No comma found after <b> in <place> in string: " } } },
        { u"5 6", 0x840003ED, 5, 9, 9, u"", { { 0x840003ED, u"No comma found after <a> in <place> in string: " } } },
        { u"5,6,",
          0x840003EB,
          5,
          6,
          9,
          u"",
          { { 0x840003EB, u"No integer token for <c> found in <place> in string: " } } },
        { u"5,x,7", 0x840003EB, 5, 9, 9, u",7", {} },
    };
    for (const auto& c : cases) {
        Value value(c.value);
        uint64_t numbers[] = { 9, 9, 9 };
        const NumberSlot slots[] = { { u"a", &numbers[0] }, { u"b", &numbers[1] }, { u"c", &numbers[2] } };
        EXPECT_EQ(orvReadNumbers(&value.run, &value.cursor, u"place", slots), c.result) << toUtf8(c.value);
        EXPECT_EQ(numbers[0], c.a) << toUtf8(c.value);
        EXPECT_EQ(numbers[1], c.b) << toUtf8(c.value);
        EXPECT_EQ(numbers[2], c.c) << toUtf8(c.value);
        EXPECT_EQ(value.rest(), c.rest) << toUtf8(c.value);
        EXPECT_TRUE(value.logged(c.log)) << toUtf8(c.value);
    }
}

TEST(Slots, Command)
{
    const std::u16string f = FILLER;
    const struct {
        std::u16string value;
        uint64_t result, command, param1, param2, param3;
        std::vector<LogEntry> log;
    } cases[] = {
        { u"BTN_ACTION_LINKCN(1,2,3)rest", 0, 12, 1, 2, 3, {} },
        { u" BTN_ACTION_JUMP_TK ( 4 , 5 , 6 )", 0, 100, 4, 5, 6, {} },
        { u",(1,2,3)", 0, 0, 1, 2, 3, {} },
        { u"btn_action_linkcn(1,2,3)", 0, 0, 1, 2, 3, {} },
        { u"SOMETHING(1,2,3)", 0, 0, 1, 2, 3, {} },
        { u"BTN_ACTION_LINKCN(,,,,,)", 0, 12, 0, 0, 0, {} },
        { u"(1,2,3)" + f,
          0x840003EC,
          9,
          9,
          9,
          9,
          { { 0x840003EC, u"No integer token for <command> found in <place> in string: 1,2,3)" + f } } },
        { u"",
          0x840003EC,
          9,
          9,
          9,
          9,
          { { 0x840003EC, u"No integer token for <command> found in <place> in string: " } } },
        { u"BTN_ACTION_LINKCN,1" + f,
          0x840003EE,
          12,
          9,
          9,
          9,
          { { 0x840003EE, u"No opening bracket found after <command> in <place> in string: 1" + f } } },
        { u"BTN_ACTION_LINKCN()" + f,
          0x840003EB,
          12,
          9,
          9,
          9,
          { { 0x840003EB, u"No integer token for <param1> found in <place> in string: " + f } } },
        { u"BTN_ACTION_LINKCN(1)" + f,
          0x840003ED,
          12,
          1,
          9,
          9,
          { { 0x840003ED, u"No comma found after <param1> in <place> in string: " + f } } },
        { u"BTN_ACTION_LINKCN(1,)" + f,
          0x840003EB,
          12,
          1,
          9,
          9,
          { { 0x840003EB, u"No integer token for <param2> found in <place> in string: " + f } } },
        { u"BTN_ACTION_LINKCN(1,2)" + f,
          0x840003ED,
          12,
          1,
          2,
          9,
          { { 0x840003ED, u"No comma found after <param2> in <place> in string: " + f } } },
        { u"BTN_ACTION_LINKCN(1,2,)" + f,
          0x840003EB,
          12,
          1,
          2,
          9,
          { { 0x840003EB, u"No integer token for <param3> found in <place> in string: " + f } } },
        { u"BTN_ACTION_LINKCN(1,2,3,4)" + f,
          0x840003EF,
          12,
          1,
          2,
          3,
          { { 0x840003EF, u"No closing bracket found after <command> in <place> in string: 4)" + f } } },
        { u"BTN_ACTION_LINKCN(1,2,3",
          0x840003EF,
          12,
          1,
          2,
          3,
          { { 0x840003EF, u"No closing bracket found after <command> in <place> in string: " } } },
        { u"\x03", 0x840003E8, 9, 9, 9, 9, { { 0x840003E8, u"Unknown ASCII character in this string: \x03" } } },
    };
    for (const auto& c : cases) {
        Value value(c.value);
        uint64_t command = 9, param1 = 9, param2 = 9, param3 = 9;
        const CommandSlots slots = { &command, &param1, &param2, &param3 };
        EXPECT_EQ(orvReadCommand(&value.run, &value.cursor, u"place", slots), c.result) << toUtf8(c.value);
        EXPECT_EQ(command, c.command) << toUtf8(c.value);
        EXPECT_EQ(param1, c.param1) << toUtf8(c.value);
        EXPECT_EQ(param2, c.param2) << toUtf8(c.value);
        EXPECT_EQ(param3, c.param3) << toUtf8(c.value);
        EXPECT_TRUE(value.logged(c.log)) << toUtf8(c.value);
    }
}
