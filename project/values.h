// values.h: how the readers of this folder fetch the value of a key: as an integer, as a bounded text, as a string
// value, as a path or as one of a few words.
#pragma once

#include "base/profile.h"
#include "base/strings.h"
#include "project/model.h"

#include <cstdint>
#include <span>

// The section that a reader is at. A failure that is logged goes to the run's log.
struct Section {
    const RunHead* run;
    const OsProfile* file;
    const char16_t* name;
};

// Name of a section or key that bears numbers.
struct NumberedName {
    char16_t text[32];
};

template <class... Numbers>
[[nodiscard]] NumberedName orvNumberedName(const char16_t* pattern, const Numbers&... numbers)
{
    NumberedName name;
    (void)osFormat(name.text, sizeof name.text / sizeof name.text[0], pattern, numbers...);
    return name;
}

/** An integer; 0 if the key is missing or does not begin with a digit. */
[[nodiscard]] uint64_t orvReadInt(const Section& section, const char16_t* key);

/** A text, cut without notice to what the buffer holds with its terminator. @return characters; 0 if missing or empty
 */
template <uint64_t N>
[[nodiscard]] uint64_t orvReadBounded(const Section& section, const char16_t* key, char16_t (&buffer)[N])
{
    return osProfileString(section.file, section.name, key, buffer, N);
}

inline constexpr uint64_t STRING_VALUE_LIMIT = 4096;   // characters of a string value, terminator included

// A string value. It ends at its first TAB, and it does not begin with a comma, a dot or a colon.
struct StringValue {
    uint64_t length;   // 0: the key is missing or empty
    char16_t text[STRING_VALUE_LIMIT + 1];
};

/** @return 0, also for a missing key; ORV_STRING_EXPECTED, not logged; a code of orvNextToken */
[[nodiscard]] uint64_t orvReadString(const Section& section, const char16_t* key, StringValue* value);
/** A string value as a string object, the caller's; null if the key is missing. */
[[nodiscard]] uint64_t orvReadPath(const Section& section, const char16_t* key, char16_t** path);

struct Word {
    const char16_t* text;
    int64_t number;
};

// The words that a key knows.
struct WordSet {
    std::span<const Word> words;
    bool anyCase;           // false: letter for letter
    uint64_t unknownCode;   // for any other word; not logged
};

/** @return 0, or words.unknownCode */
[[nodiscard]] uint64_t orvFindWord(const WordSet& words, const char16_t* text, int64_t* number);
/** A string value that is one of some words. A missing key leaves *number. */
[[nodiscard]] uint64_t orvReadWord(const Section& section, const char16_t* key, const WordSet& words, int64_t* number);
