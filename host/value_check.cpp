// value_check.cpp: the grammar of structured values, as far as it decides whether a value is refused.
#include "value_check.h"

#include "codes.h"

enum TokenKind { TOKEN_TEXT, TOKEN_COMMA, TOKEN_OPEN, TOKEN_CLOSE, TOKEN_END, TOKEN_DOT, TOKEN_COLON };

struct Token {
    TokenKind kind;
    std::u16string_view text;
};

struct Cursor {
    std::u16string_view value;
    size_t at = 0;
};

// Characters that the library takes of a value; a longer one is cut.
static constexpr size_t TEXT_ROOM = 4095, VERSION_ROOM = 31, FIRST_PLAY_ROOM = 63, CHAPTER_ROOM = 62, COLOR_ROOM = 31,
                        BUTTON_ROOM = 127, PLAY_TIME_ROOM = 31, BLINK_ROOM = 63;
static constexpr size_t NUMBER_DIGITS = 10;

static std::u16string rest(const Cursor& cursor)
{
    return std::u16string(cursor.value.substr(std::min(cursor.at, cursor.value.size())));
}

static bool isEnd(char16_t unit)
{
    return unit == 0 || unit == u'\t';
}

static bool isBad(char16_t unit)
{
    return unit < 0x20 && !isEnd(unit) && unit != u'\f';
}

static bool isSingle(char16_t unit)
{
    return unit == u'(' || unit == u')' || unit == u',' || unit == u'.' || unit == u':';
}

static TokenKind singleKind(char16_t unit)
{
    switch (unit) {
    case u'(': return TOKEN_OPEN;
    case u')': return TOKEN_CLOSE;
    case u',': return TOKEN_COMMA;
    case u'.': return TOKEN_DOT;
    default: return TOKEN_COLON;
    }
}

static char16_t unitAt(const Cursor& cursor)
{
    return cursor.at < cursor.value.size() ? cursor.value[cursor.at] : u'\0';
}

// In a text only the first comma, dot or colon counts, and blanks and brackets belong to it.
static Refusal nextToken(Cursor* cursor, bool isText, Token* token)
{
    const std::u16string whole = rest(*cursor);
    const auto isBlank = [&](char16_t unit) { return !isText && (unit == u' ' || unit == u'\f'); };
    while (isBlank(unitAt(*cursor))) cursor->at++;
    const char16_t first = unitAt(*cursor);
    *token = { TOKEN_END, {} };
    if (isEnd(first)) {
        if (cursor->at < cursor->value.size()) cursor->at++;
        return {};
    }
    if (isBad(first)) return { CODE_UNKNOWN_CHAR, u"Unknown ASCII character in this string: " + whole };
    const bool bracket = first == u'(' || first == u')';
    if (isSingle(first) && !(isText && bracket)) {
        cursor->at++;
        *token = { singleKind(first), {} };
        return {};
    }
    const size_t start = cursor->at;
    for (;; cursor->at++) {
        const char16_t unit = unitAt(*cursor);
        if (isEnd(unit) || isBlank(unit) || (!isText && isSingle(unit))) break;
        if (isBad(unit)) return { CODE_WRONG_CHAR, u"Wrong ASCII character during parsing: " + whole };
    }
    *token = { TOKEN_TEXT, cursor->value.substr(start, cursor->at - start) };
    return {};
}

static Refusal parseNumber(std::u16string_view text, uint64_t* number)
{
    *number = 0;
    if (text.size() > NUMBER_DIGITS) return { CODE_NUMBER_EXPECTED, {} };
    for (const char16_t unit : text) {
        if (unit < u'0' || unit > u'9') return { CODE_NUMBER_EXPECTED, {} };
        *number = *number * 10 + (unit - u'0');
    }
    return {};
}

// A comma stands for 0. missing is the text in front of the rest of the value.
static Refusal numberSlot(Cursor* cursor, std::u16string_view missing, uint64_t* number)
{
    Token token;
    *number = 0;
    if (Refusal refusal = nextToken(cursor, false, &token); refusal.code) return refusal;
    if (token.kind == TOKEN_COMMA) return {};
    if (token.kind == TOKEN_TEXT) return parseNumber(token.text, number);
    return { CODE_NUMBER_EXPECTED, std::u16string(missing) + rest(*cursor) };
}

static Refusal separator(Cursor* cursor, TokenKind kind, uint64_t code, std::u16string_view missing)
{
    Token token;
    if (Refusal refusal = nextToken(cursor, false, &token); refusal.code) return refusal;
    if (token.kind == kind) return {};
    return { code, std::u16string(missing) + rest(*cursor) };
}

struct Slot {
    const char16_t* name;
    TokenKind follows;   // TOKEN_END: nothing is asked for
};

static std::u16string placed(const char16_t* what, const char16_t* name, const char16_t* place, const char16_t* last)
{
    return std::u16string(what) + u"<" + name + last + place + u"> in string: ";
}

static Refusal slotSeparator(Cursor* cursor, const Slot& slot, const char16_t* place)
{
    const char16_t between[] = u"> in <";
    switch (slot.follows) {
    case TOKEN_COMMA:
        return separator(cursor, TOKEN_COMMA, CODE_COMMA_EXPECTED,
                         placed(u"No comma found after ", slot.name, place, between));
    case TOKEN_DOT:
        return separator(cursor, TOKEN_DOT, CODE_DOT_EXPECTED,
                         placed(u"No dot found after ", slot.name, place, between));
    case TOKEN_COLON:
        return separator(cursor, TOKEN_COLON, CODE_COLON_EXPECTED,
                         placed(u"No colon found after ", slot.name, place, between));
    case TOKEN_OPEN:
        return separator(cursor, TOKEN_OPEN, CODE_OPENING_EXPECTED,
                         placed(u"No opening bracket found after ", slot.name, place, between));
    case TOKEN_CLOSE:
        // The text names the command whose bracket is open.
        return separator(cursor, TOKEN_CLOSE, CODE_CLOSING_EXPECTED,
                         placed(u"No closing bracket found after ", u"command", place, between));
    default: return {};
    }
}

template <size_t COUNT>
static Refusal checkSlots(Cursor* cursor, const Slot (&slots)[COUNT], const char16_t* place, uint64_t (&numbers)[COUNT])
{
    for (size_t i = 0; i < COUNT; i++) {
        const std::u16string missing = placed(u"No integer token for ", slots[i].name, place, u"> found in <");
        if (Refusal refusal = numberSlot(cursor, missing, &numbers[i]); refusal.code) return refusal;
        if (Refusal refusal = slotSeparator(cursor, slots[i], place); refusal.code) return refusal;
    }
    return {};
}

// name(param1,param2,param3)
static Refusal checkCommand(Cursor* cursor, const char16_t* place)
{
    Token token;
    if (Refusal refusal = nextToken(cursor, false, &token); refusal.code) return refusal;
    if (token.kind != TOKEN_COMMA && token.kind != TOKEN_TEXT) {
        return { CODE_STRING_EXPECTED,
                 placed(u"No integer token for ", u"command", place, u"> found in <") + rest(*cursor) };
    }
    const Slot open = { u"command", TOKEN_OPEN };
    if (Refusal refusal = slotSeparator(cursor, open, place); refusal.code) return refusal;
    const Slot params[] = { { u"param1", TOKEN_COMMA }, { u"param2", TOKEN_COMMA }, { u"param3", TOKEN_CLOSE } };
    uint64_t numbers[3];
    return checkSlots(cursor, params, place, numbers);
}

// Whether a comma is next: what follows it is then read too. Faults of the token are passed over where told so.
static bool takesComma(Cursor* cursor)
{
    Token token;
    return nextToken(cursor, false, &token).code == 0 && token.kind == TOKEN_COMMA;
}

Refusal checkText(std::u16string_view value, std::u16string* text)
{
    Cursor cursor = { value.substr(0, TEXT_ROOM) };
    Token token;
    text->clear();
    if (Refusal refusal = nextToken(&cursor, true, &token); refusal.code) return refusal;
    if (token.kind != TOKEN_TEXT) return { CODE_STRING_EXPECTED, {} };
    *text = token.text;
    return {};
}

Refusal checkVersion(std::u16string_view value)
{
    Cursor cursor = { value.substr(0, VERSION_ROOM) };
    const Slot slots[] = { { u"major version", TOKEN_DOT }, { u"minor version", TOKEN_END } };
    uint64_t numbers[2];
    if (Refusal refusal = checkSlots(&cursor, slots, u"common", numbers); refusal.code) return refusal;
    return { numbers[0] == 1 ? 0 : CODE_WRONG_VERSION, {} };
}

Refusal checkFirstPlay(std::u16string_view value)
{
    Cursor cursor = { value.substr(0, FIRST_PLAY_ROOM) };
    return checkCommand(&cursor, u"firstplay");
}

Refusal checkChapter(std::u16string_view value)
{
    Cursor cursor = { value.substr(0, CHAPTER_ROOM) };
    Token token;
    (void)nextToken(&cursor, false, &token);   // any first number is accepted
    if (!takesComma(&cursor)) return {};
    const Slot slots[] = { { u"MenuPage", TOKEN_COMMA }, { u"HighlightButton", TOKEN_END } };
    uint64_t numbers[2];
    return checkSlots(&cursor, slots, u"chapter", numbers);
}

Refusal checkColorSet(std::u16string_view value)
{
    Cursor cursor = { value.substr(0, COLOR_ROOM) };
    const Slot slots[] = { { u"color bg", TOKEN_COMMA },        { u"color p", TOKEN_COMMA },
                           { u"color e1", TOKEN_COMMA },        { u"color e2", TOKEN_COMMA },
                           { u"transparency bg", TOKEN_COMMA }, { u"transparency p", TOKEN_COMMA },
                           { u"transparency e1", TOKEN_COMMA }, { u"transparency e2", TOKEN_END } };
    uint64_t numbers[8];
    return checkSlots(&cursor, slots, u"colorset", numbers);
}

Refusal checkColorTable(std::u16string_view value)
{
    Cursor cursor = { value.substr(0, COLOR_ROOM) };
    const Slot slots[] = { { u"red", TOKEN_COMMA }, { u"green", TOKEN_COMMA }, { u"blue", TOKEN_END } };
    uint64_t numbers[3];
    if (Refusal refusal = checkSlots(&cursor, slots, u"colortable", numbers); refusal.code) return refusal;
    const bool fits = numbers[0] <= 255 && numbers[1] <= 255 && numbers[2] <= 255;
    return { fits ? 0 : CODE_COLOR, {} };
}

Refusal checkButton(std::u16string_view value)
{
    ButtonCorners corners;
    return checkButtonCorners(value, &corners);
}

Refusal checkButtonCorners(std::u16string_view value, ButtonCorners* corners)
{
    *corners = {};
    Cursor cursor = { value.substr(0, BUTTON_ROOM) };
    const Slot slots[] = { { u"xstart", TOKEN_COMMA },   { u"xend", TOKEN_COMMA },      { u"ystart", TOKEN_COMMA },
                           { u"yend", TOKEN_COMMA },     { u"uplink", TOKEN_COMMA },    { u"downlink", TOKEN_COMMA },
                           { u"leftlink", TOKEN_COMMA }, { u"rightlink", TOKEN_COMMA }, { u"color", TOKEN_COMMA } };
    uint64_t numbers[9];
    if (Refusal refusal = checkSlots(&cursor, slots, u"button", numbers); refusal.code) return refusal;
    if (Refusal refusal = checkCommand(&cursor, u"button"); refusal.code) return refusal;
    Token token;
    if (Refusal refusal = nextToken(&cursor, false, &token); refusal.code) return refusal;
    if (token.kind == TOKEN_COMMA) {
        const Slot last[] = { { u"fAutoAction", TOKEN_END } };
        uint64_t autoAction[1];
        if (Refusal refusal = checkSlots(&cursor, last, u"button", autoAction); refusal.code) return refusal;
    }
    *corners = { numbers[0], numbers[1], numbers[2], numbers[3] };
    return {};
}

Refusal checkMenuPlayTime(std::u16string_view value)
{
    Cursor cursor = { value.substr(0, PLAY_TIME_ROOM) };
    const Slot slots[] = {
        { u"hour", TOKEN_COLON }, { u"minute", TOKEN_COLON }, { u"second", TOKEN_DOT }, { u"frame", TOKEN_END }
    };
    uint64_t numbers[4];
    return checkSlots(&cursor, slots, u"playtime", numbers);
}

Refusal checkBlink(std::u16string_view value)
{
    Cursor cursor = { value.substr(0, BLINK_ROOM) };
    uint64_t number;
    if (Refusal refusal = numberSlot(&cursor, u"No blink count in string: ", &number); refusal.code) return refusal;
    if (!takesComma(&cursor)) return {};
    return numberSlot(&cursor, u"No blink delay found in string: ", &number);
}
