// values.cpp: fetches the values of keys from the project file, for all readers of this folder.
#include "project/values.h"

#include "base/result.h"
#include "project/tokens.h"

uint64_t orvReadInt(const Section& section, const char16_t* key)
{
    return osProfileInt(section.file, section.name, key, 0);
}

uint64_t orvReadString(const Section& section, const char16_t* key, StringValue* value)
{
    value->length = osProfileString(section.file, section.name, key, value->text, STRING_VALUE_LIMIT);
    if (!value->length) return 0;
    const char16_t* cursor = value->text;
    Token token;
    if (const uint64_t error = orvNextToken(section.run, &cursor, STRING_MODE, &token)) return error;
    if (token.kind != TOKEN_TEXT) return ORV_STRING_EXPECTED;
    value->length = token.length;   // in string mode a text begins where its value begins
    value->text[value->length] = u'\0';
    return 0;
}

uint64_t orvReadPath(const Section& section, const char16_t* key, char16_t** path)
{
    *path = nullptr;
    StringValue value;
    if (const uint64_t error = orvReadString(section, key, &value)) return error;
    if (!value.length) return 0;
    return osStrAlloc(value.length, value.text, path);
}

uint64_t orvFindWord(const WordSet& words, const char16_t* text, int64_t* number)
{
    const auto equal = words.anyCase ? osStrEqualNoCase : osStrEqual;
    for (const Word& word : words.words) {
        if (!equal(word.text, text)) continue;
        *number = word.number;
        return 0;
    }
    return words.unknownCode;
}

uint64_t orvReadWord(const Section& section, const char16_t* key, const WordSet& words, int64_t* number)
{
    StringValue value;
    if (const uint64_t error = orvReadString(section, key, &value)) return error;
    if (!value.length) return 0;
    return orvFindWord(words, value.text, number);
}
