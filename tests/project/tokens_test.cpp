#include "project/tokens.h"

#include "base/result.h"
#include "tests/project/project_file.h"

#include <string>

namespace {

constexpr uint64_t STRUCTURED = TOKEN_COMMA;

// A value with the run that reads it and the log of that run.
struct Value {
    explicit Value(std::u16string_view value) : text(value), cursor(text.c_str())
    {
        run.logFilePath = logPath.data();
    }

    uint64_t next(uint64_t mode)
    {
        return orvNextToken(&run, &cursor, mode, &token);
    }
    uint64_t position() const
    {
        return uint64_t(cursor - text.c_str());
    }
    std::u16string tokenText() const
    {
        return std::u16string(token.text, token.length);
    }

    TempDir dir;
    std::u16string logPath = dir / u"errors.log";
    std::u16string text;
    const char16_t* cursor;
    RunHead run = {};
    Token token = {};
};

// The whole value as kinds, texts in brackets: "[12ab] , [7] end".
std::string tokensOf(std::u16string_view text, uint64_t mode)
{
    Value value(text);
    std::string tokens;
    for (;;) {
        if (value.next(mode)) return tokens + "fault";
        switch (value.token.kind) {
        case TOKEN_TEXT: tokens += "[" + toUtf8(value.tokenText()) + "] "; break;
        case TOKEN_COMMA: tokens += ", "; break;
        case TOKEN_OPEN: tokens += "( "; break;
        case TOKEN_CLOSE: tokens += ") "; break;
        case TOKEN_DOT: tokens += ". "; break;
        case TOKEN_COLON: tokens += ": "; break;
        case TOKEN_END: return tokens + "end";
        default: return tokens + "unknown kind";
        }
    }
}

const struct {
    const char16_t* value;
    const char* structured;
    const char* string;
} VALUES[] = {
    { u"", "end", "end" },
    { u"12ab", "[12ab] end", "[12ab] end" },
    { u"1.5", "[1] . [5] end", "[1.5] end" },
    { u"12 ab", "[12] [ab] end", "[12 ab] end" },
    { u"  12", "[12] end", "[  12] end" },
    { u"1\f2", "[1] [2] end", "[1\f2] end" },
    { u"\f,", ", end", "[\f,] end" },
    { u"NAME(1,2)", "[NAME] ( [1] , [2] ) end", "[NAME(1,2)] end" },
    { u"(a)", "( [a] ) end", "[(a)] end" },
    { u")", ") end", "[)] end" },
    { u" (", "( end", "[ (] end" },
    { u"00:01:02.03", "[00] : [01] : [02] . [03] end", "[00:01:02.03] end" },
    { u",a", ", [a] end", ", [a] end" },
    { u".a", ". [a] end", ". [a] end" },
    { u":a", ": [a] end", ": [a] end" },
    { u"a\tb", "[a] end", "[a] end" },
    { u"\tb", "end", "end" },
    { u"C:\\Filme\\\u00C4rger \u4E2D.vob", "[C] : [\\Filme\\\u00C4rger] [\u4E2D] . [vob] end",
      "[C:\\Filme\\\u00C4rger \u4E2D.vob] end" },
    { u"\x7F!\"#$%&'*+-/;<=>?@[]^_`{|}~", "[\x7F!\"#$%&'*+-/;<=>?@[]^_`{|}~] end",
      "[\x7F!\"#$%&'*+-/;<=>?@[]^_`{|}~] end" },
    { u"\x01", "fault", "fault" },
    { u"a\x1F", "fault", "fault" },
    { u"a,\x02", "[a] , fault", "fault" },
};

bool isBad(char16_t unit)
{
    return (unit >= 1 && unit <= 8) || unit == 10 || unit == 11 || (unit >= 13 && unit <= 31);
}

uint64_t singleKind(char16_t unit)
{
    const std::u16string_view singles = u",().:";
    const uint64_t kinds[] = { TOKEN_COMMA, TOKEN_OPEN, TOKEN_CLOSE, TOKEN_DOT, TOKEN_COLON };
    const size_t at = singles.find(unit);
    return at == singles.npos ? 0 : kinds[at];
}

}   // namespace

TEST(Tokens, Values)
{
    for (const auto& c : VALUES) {
        EXPECT_EQ(tokensOf(c.value, STRUCTURED), c.structured) << toUtf8(c.value);
        EXPECT_EQ(tokensOf(c.value, STRING_MODE), c.string) << toUtf8(c.value);
    }
}

TEST(Tokens, EveryModeButZeroIsStructured)
{
    for (const uint64_t mode : { uint64_t(1), uint64_t(TOKEN_OPEN), uint64_t(TOKEN_END), ~uint64_t(0) }) {
        EXPECT_EQ(tokensOf(u" a(1.2)", mode), "[a] ( [1] . [2] ) end");
    }
}

// Each unit alone, and between two letters, in both modes.
TEST(Tokens, EveryUnit)
{
    Value value(u"abc");
    value.run.logFilePath = nullptr;
    for (uint32_t code = 1; code <= 0xFFFF; code++) {
        const char16_t unit = char16_t(code);
        const bool end = unit == u'\t', blank = unit == u' ' || unit == u'\f';
        for (const uint64_t mode : { STRING_MODE, STRUCTURED }) {
            const bool plain = mode == STRING_MODE && (blank || unit == u'(' || unit == u')');
            value.text = std::u16string(1, unit);
            value.cursor = value.text.c_str();
            const uint64_t first = value.next(mode);
            EXPECT_EQ(first, isBad(unit) ? ORV_UNKNOWN_CHAR : 0) << code;
            const uint64_t kind = isBad(unit)        ? 0
                                  : end              ? uint64_t(TOKEN_END)
                                  : plain            ? uint64_t(TOKEN_TEXT)
                                  : blank            ? uint64_t(TOKEN_END)
                                  : singleKind(unit) ? singleKind(unit)
                                                     : uint64_t(TOKEN_TEXT);
            EXPECT_EQ(value.token.kind, kind) << code << " mode " << mode;

            value.text = std::u16string(u"a") + unit + u"b";
            value.cursor = value.text.c_str();
            const uint64_t second = value.next(mode);
            EXPECT_EQ(second, isBad(unit) ? ORV_WRONG_CHAR_IN_NUMBER : 0) << code;
            const bool cut = end || (mode == STRUCTURED && (blank || singleKind(unit)));
            EXPECT_EQ(value.token.length, isBad(unit) ? 0u : cut ? 1u : 3u) << code << " mode " << mode;
        }
    }
}

TEST(Tokens, CursorStandsBehindTheToken)
{
    Value value(u"  ab,c\td");
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.position(), 4u);   // the comma ended the text and is still there
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.position(), 5u);
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.position(), 6u);   // and so is the TAB
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.token.kind, TOKEN_END);
    EXPECT_EQ(value.position(), 7u);
}

TEST(Tokens, CursorStaysAtTheTerminator)
{
    Value value(u"a");
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(value.next(STRUCTURED), 0u);
        EXPECT_EQ(value.token.kind, TOKEN_END);
        EXPECT_EQ(value.position(), 1u);
    }
}

TEST(Tokens, BadUnitIsLoggedFromTheStartOfTheCall)
{
    const std::u16string filler = FILLER;
    Value value(u"x,  \x01" + filler);
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.next(STRUCTURED), 0x840003E8u);
    EXPECT_EQ(value.position(), 4u);   // at the bad unit
    EXPECT_EQ(value.token.kind, 0u);
    EXPECT_EQ(value.token.length, 0u);
    EXPECT_TRUE(
        logHolds(value.logPath, { { 0x840003E8, u"Unknown ASCII character in this string:   \x01" + filler } }));
}

TEST(Tokens, BadUnitInATextIsLoggedFromTheStartOfTheCall)
{
    const std::u16string filler = FILLER;
    Value value(u"x, ab\x1F" + filler);
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.next(STRUCTURED), 0x840003E9u);
    EXPECT_EQ(value.position(), 5u);
    EXPECT_EQ(value.token.kind, 0u);
    EXPECT_EQ(value.token.text, nullptr);
    // A second call begins at the bad unit.
    EXPECT_EQ(value.next(STRUCTURED), 0x840003E8u);
    EXPECT_EQ(value.position(), 5u);
    EXPECT_TRUE(logHolds(value.logPath, { { 0x840003E9, u"Wrong ASCII character during parsing:  ab\x1F" + filler },
                                          { 0x840003E8, u"Unknown ASCII character in this string: \x1F" + filler } }));
}

TEST(Tokens, LoggedTextIsCutAt1024Characters)
{
    Value value(u"\x01" + std::u16string(2000, u'x'));
    EXPECT_EQ(value.next(STRING_MODE), 0x840003E8u);
    const Bytes log = readFile(value.logPath);
    EXPECT_EQ(log.size(), 18u + 1024u + 4u);
    EXPECT_TRUE(logHolds(value.logPath, { { 0x840003E8, u"Unknown ASCII character in this string: " + value.text } }));
}

TEST(Tokens, NullTokenIsRefused)
{
    Value value(u"a");
    EXPECT_EQ(orvNextToken(&value.run, &value.cursor, STRUCTURED, nullptr), 0x84000057u);
    EXPECT_EQ(value.position(), 0u);
}

TEST(Tokens, OldTokenIsCleared)
{
    Value value(u"");
    value.token = { TOKEN_TEXT, 5, 6, u"old" };
    EXPECT_EQ(value.next(STRUCTURED), 0u);
    EXPECT_EQ(value.token.value, 0u);
    EXPECT_EQ(value.token.length, 0u);
    EXPECT_EQ(value.token.text, nullptr);
}

TEST(Tokens, Numbers)
{
    const struct {
        std::u16string_view text;
        uint64_t result, number;
    } cases[] = {
        { u"", 0, 0 },
        { u"0", 0, 0 },
        { u"7", 0, 7 },
        { u"0000000012", 0, 12 },
        { u"4294967296", 0, 4294967296 },
        { u"9999999999", 0, 9999999999 },
        { u"00000000000", 0x840003EB, 99 },
        { u"12345678901", 0x840003EB, 99 },
        { u"12a", 0x840003EB, 99 },
        { u"a12", 0x840003EB, 99 },
        { u"-1", 0x840003EB, 99 },
        { u"+1", 0x840003EB, 99 },
        { u"0x1", 0x840003EB, 99 },
        { u"1/", 0x840003EB, 99 },
        { u"1;", 0x840003EB, 99 },
        { u"\uFF11", 0x840003EB, 99 },
    };
    for (const auto& c : cases) {
        uint64_t number = 99;
        EXPECT_EQ(orvParseNumber(c.text.data(), c.text.size(), &number), c.result) << toUtf8(c.text);
        EXPECT_EQ(number, c.number) << toUtf8(c.text);
    }
}

// A number that is cut out of a longer value ends where its length says.
TEST(Tokens, NumberNeedsNoTerminator)
{
    uint64_t number = 0;
    EXPECT_EQ(orvParseNumber(u"123456", 3, &number), 0u);
    EXPECT_EQ(number, 123u);
}
