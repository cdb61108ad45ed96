// key_search.h: what the searches for a refused key of both kinds of projects have in common.
#pragma once

#include "project_fault.h"
#include "value_check.h"

#include <initializer_list>

// Every reader below gives true at the first refused key, as the library stops there: `a || b` reads a, then b.
struct Search {
    const ProjectFile* file;
    uint64_t code;
    std::u16string logText;
    ProjectFault* fault;
};

typedef const std::u16string& Name;
enum LetterCase { ANY_CASE, EXACT };

const ProjectKey* keyOf(const Search* search, Name section, Name name);
/** A key without a value counts as missing. */
const ProjectKey* filledKey(const Search* search, Name section, Name name);

/** Notes a refusal with a code, passes over one without. */
bool refuses(Search* search, Name section, Name name, const Refusal& refusal);

// The kinds of values.
bool refusesText(Search* search, Name section, Name name);
bool refusesRequired(Search* search, Name section, Name name, uint64_t missing);
bool refusesStructure(Search* search, Name section, Name name, Refusal (*check)(std::u16string_view));
bool refusesAbove(Search* search, Name section, Name name, uint64_t limit, uint64_t code);
bool refusesInteger(Search* search, Name section, Name name, std::initializer_list<uint64_t> values, uint64_t code);
bool refusesWord(Search* search, Name section, Name name, std::initializer_list<const char16_t*> words,
                 LetterCase letters, const Refusal& unknown);

// The groups of keys that occur in several sections.
bool refusesAttributes(Search* search, Name section);
bool refusesColorTable(Search* search, Name section);
bool refusesColorSets(Search* search, Name section);
bool refusesButtons(Search* search, Name section);
