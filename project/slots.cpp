// slots.cpp: reads the slots of structured values, for all readers of this folder, and logs what they lack.
#include "project/slots.h"

#include "base/log.h"
#include "base/result.h"
#include "project/commands.h"

namespace {

constexpr const char16_t* NO_INTEGER = u"No integer token for <%s> found in <%s> in string: %s";

struct SeparatorKind {
    TokenKind kind;
    uint64_t missingCode;
    const char16_t* missing;   // arguments: name, place, rest of the value
};

constexpr SeparatorKind SEPARATORS[] = {
    { TOKEN_COMMA, ORV_COMMA_EXPECTED, u"No comma found after <%s> in <%s> in string: %s" },
    { TOKEN_OPEN, ORV_OPENING_BRACKET_EXPECTED, u"No opening bracket found after <%s> in <%s> in string: %s" },
    { TOKEN_CLOSE, ORV_CLOSING_BRACKET_EXPECTED, u"No closing bracket found after <%s> in <%s> in string: %s" },
    { TOKEN_DOT, ORV_DOT_EXPECTED, u"No dot found after <%s> in <%s> in string: %s" },
    { TOKEN_COLON, ORV_COLON_EXPECTED, u"No colon found after <%s> in <%s> in string: %s" },
};

// What is common to all number slots. refused tells that a token came that no number slot takes.
uint64_t takeNumber(const RunHead* run, const char16_t** cursor, uint64_t* number, bool* refused)
{
    *refused = false;
    Token token;
    if (const uint64_t error = orvNextToken(run, cursor, TOKEN_COMMA, &token)) return error;
    switch (token.kind) {
    // Meant: the comma of a number left out is gone, and its separator must still follow: 5,,,7 is 5, 0, 7.
    // Test: Slots.CommaStandsForZero
    case TOKEN_COMMA: *number = 0; return 0;
    case TOKEN_NUMBER: *number = token.value; return 0;
    case TOKEN_TEXT: return orvParseNumber(token.text, token.length, number);
    default: *refused = true; return ORV_NUMBER_EXPECTED;
    }
}

}   // namespace

uint64_t orvReadNumber(const RunHead* run, const char16_t** cursor, const Slot& slot, uint64_t* number)
{
    bool refused = false;
    const uint64_t result = takeNumber(run, cursor, number, &refused);
    if (refused) orvLogError(result, run->logFilePath, NO_INTEGER, slot.name, slot.place, *cursor);
    return result;
}

uint64_t orvReadNumberOr(const RunHead* run, const char16_t** cursor, const char16_t* missing, uint64_t* number)
{
    bool refused = false;
    const uint64_t result = takeNumber(run, cursor, number, &refused);
    if (refused) orvLogError(result, run->logFilePath, missing, *cursor);
    return result;
}

uint64_t orvReadSeparator(const RunHead* run, const char16_t** cursor, TokenKind kind, const Slot& slot)
{
    Token token;
    if (const uint64_t error = orvNextToken(run, cursor, kind, &token)) return error;
    if (token.kind == kind) return 0;
    for (const SeparatorKind& separator : SEPARATORS) {
        if (separator.kind != kind) continue;
        orvLogError(separator.missingCode, run->logFilePath, separator.missing, slot.name, slot.place, *cursor);
        return separator.missingCode;
    }
    return ORV_INVALID_ARGUMENT;
}

uint64_t orvReadNumbers(const RunHead* run, const char16_t** cursor, const char16_t* place,
                        std::span<const NumberSlot> slots)
{
    for (const NumberSlot& slot : slots) {
        const Slot named = { slot.name, place };
        if (const uint64_t error = orvReadNumber(run, cursor, named, slot.number)) return error;
        if (&slot == &slots.back()) return 0;
        if (const uint64_t error = orvReadSeparator(run, cursor, TOKEN_COMMA, named)) return error;
    }
    return 0;
}

uint64_t orvReadCommand(const RunHead* run, const char16_t** cursor, const char16_t* place, const CommandSlots& slots)
{
    const Slot command = { u"command", place };
    Token token;
    if (const uint64_t error = orvNextToken(run, cursor, TOKEN_COMMA, &token)) return error;
    if (token.kind != TOKEN_COMMA && token.kind != TOKEN_TEXT) {
        orvLogError(ORV_STRING_EXPECTED, run->logFilePath, NO_INTEGER, command.name, place, *cursor);
        return ORV_STRING_EXPECTED;
    }
    *slots.command = VM_NOP;
    if (token.kind == TOKEN_TEXT) {
        if (const uint64_t error = orvCommandNumber(token.text, token.length, slots.command)) return error;
    }
    if (const uint64_t error = orvReadSeparator(run, cursor, TOKEN_OPEN, command)) return error;
    const NumberSlot params[] = { { u"param1", slots.param1 },
                                  { u"param2", slots.param2 },
                                  { u"param3", slots.param3 } };
    if (const uint64_t error = orvReadNumbers(run, cursor, place, params)) return error;
    return orvReadSeparator(run, cursor, TOKEN_CLOSE, command);
}
