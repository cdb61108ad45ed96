// tokens.h: how the value of a key is cut into tokens, and how a token is read as a number.
#pragma once

#include "project/model.h"

#include <cstdint>

enum TokenKind : uint64_t {
    TOKEN_TEXT = 1,
    TOKEN_NUMBER = 2,   // reserved: never produced, but every number slot accepts it
    TOKEN_COMMA = 3,
    TOKEN_OPEN = 4,
    TOKEN_CLOSE = 5,
    TOKEN_END = 6,   // NUL or TAB
    TOKEN_DOT = 7,
    TOKEN_COLON = 8,
};

// How orvNextToken reads. In a structured value callers pass the kind that they hope for; only its being non-zero
// counts.
inline constexpr uint64_t STRING_MODE = 0;

struct Token {
    uint64_t kind;
    uint64_t value;         // of TOKEN_NUMBER
    uint64_t length;        // characters of text
    const char16_t* text;   // of TOKEN_TEXT: points into the value that was read, not terminated
};

/** Takes the next token at *cursor and moves the cursor behind it; after a failure the cursor stands at the bad unit.
   An end token at a TAB moves behind it, one at the terminator stays there. Logs what it refuses.
    @return 0; ORV_UNKNOWN_CHAR, ORV_WRONG_CHAR_IN_NUMBER; ORV_INVALID_ARGUMENT if token is null */
[[nodiscard]] uint64_t orvNextToken(const RunHead* run, const char16_t** cursor, uint64_t mode, Token* token);

/** Up to ten decimal digits; no characters at all are 0. @return 0 or ORV_NUMBER_EXPECTED, not logged */
[[nodiscard]] uint64_t orvParseNumber(const char16_t* text, uint64_t length, uint64_t* out);
