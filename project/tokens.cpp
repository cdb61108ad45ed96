// tokens.cpp: cuts the value of a key into tokens, for the slots of structured values and for string values.
#include "project/tokens.h"

#include "base/log.h"
#include "base/result.h"

namespace {

constexpr uint64_t MAX_DIGITS = 10;

enum class CharClass { End, Bad, Blank, Single, Other };

// Digits need no class of their own: a run of digits and letters is one text, and the number reader sorts it out.
CharClass classOf(char16_t unit)
{
    switch (unit) {
    case u'\0':
    case u'\t': return CharClass::End;
    case u'\f':
    case u' ': return CharClass::Blank;
    case u'(':
    case u')':
    case u',':
    case u'.':
    case u':': return CharClass::Single;
    default: return unit < u' ' ? CharClass::Bad : CharClass::Other;
    }
}

TokenKind singleKind(char16_t unit)
{
    switch (unit) {
    case u'(': return TOKEN_OPEN;
    case u')': return TOKEN_CLOSE;
    case u',': return TOKEN_COMMA;
    case u'.': return TOKEN_DOT;
    default: return TOKEN_COLON;
    }
}

// Class of the unit with which a token begins. Blanks and brackets may begin a string value; commas, dots and colons
// stand alone there too.
CharClass firstClass(char16_t unit, uint64_t mode)
{
    const CharClass charClass = classOf(unit);
    const bool plainInString = charClass == CharClass::Blank || unit == u'(' || unit == u')';
    return mode == STRING_MODE && plainInString ? CharClass::Other : charClass;
}

// Whether a text that has begun runs on over a unit of this class. Only a TAB, the terminator and bad units end a
// string.
bool runsOn(CharClass charClass, uint64_t mode)
{
    if (mode == STRING_MODE) return charClass != CharClass::End && charClass != CharClass::Bad;
    return charClass == CharClass::Other;
}

}   // namespace

uint64_t orvNextToken(const RunHead* run, const char16_t** cursor, uint64_t mode, Token* token)
{
    if (!token) return ORV_INVALID_ARGUMENT;
    *token = {};
    const char16_t* const start = *cursor;
    const char16_t*& at = *cursor;
    CharClass charClass = firstClass(*at, mode);
    while (charClass == CharClass::Blank) charClass = firstClass(*++at, mode);

    switch (charClass) {
    case CharClass::End:
        token->kind = TOKEN_END;
        if (*at) at++;
        return 0;
    case CharClass::Bad:
        orvLogError(ORV_UNKNOWN_CHAR, run->logFilePath, u"Unknown ASCII character in this string: %s", start);
        return ORV_UNKNOWN_CHAR;
    case CharClass::Single: token->kind = singleKind(*at++); return 0;
    default: break;
    }

    const char16_t* const text = at;
    do {
        charClass = classOf(*++at);
    } while (runsOn(charClass, mode));
    if (charClass == CharClass::Bad) {
        orvLogError(ORV_WRONG_CHAR_IN_NUMBER, run->logFilePath, u"Wrong ASCII character during parsing: %s", start);
        return ORV_WRONG_CHAR_IN_NUMBER;
    }
    token->kind = TOKEN_TEXT;
    token->text = text;
    token->length = uint64_t(at - text);
    return 0;
}

uint64_t orvParseNumber(const char16_t* text, uint64_t length, uint64_t* out)
{
    if (length > MAX_DIGITS) return ORV_NUMBER_EXPECTED;
    uint64_t number = 0;
    for (uint64_t i = 0; i < length; i++) {
        if (text[i] < u'0' || text[i] > u'9') return ORV_NUMBER_EXPECTED;
        number = number * 10 + uint64_t(text[i] - u'0');
    }
    *out = number;
    return 0;
}
