// slots.h: the slots that structured values are made of: numbers, separators, lists of numbers, commands. Each knows
// its name and its place, by which the log speaks of it: "No integer token for <xstart> found in <button> in string:
// ...". Of the value the log shows what stands behind the refused token.
#pragma once

#include "project/model.h"
#include "project/tokens.h"

#include <cstdint>
#include <span>

struct Slot {
    const char16_t* name;
    const char16_t* place;
};

/** A number slot: a number, or a comma that stands for 0 and is then gone.
    @return 0; ORV_NUMBER_EXPECTED, logged unless the text is no number; a code of orvNextToken */
[[nodiscard]] uint64_t orvReadNumber(const RunHead* run, const char16_t** cursor, const Slot& slot, uint64_t* number);
/** The same for a slot that has a log text of its own; the text's %s gets the rest of the value. */
[[nodiscard]] uint64_t orvReadNumberOr(const RunHead* run, const char16_t** cursor, const char16_t* missing,
                                       uint64_t* number);

/** A separator behind a slot, TOKEN_COMMA to TOKEN_CLOSE, TOKEN_DOT or TOKEN_COLON.
    @return 0; the code of that separator, logged; a code of orvNextToken */
[[nodiscard]] uint64_t orvReadSeparator(const RunHead* run, const char16_t** cursor, TokenKind kind, const Slot& slot);

struct NumberSlot {
    const char16_t* name;
    uint64_t* number;
};

/** Numbers with a comma between each two. */
[[nodiscard]] uint64_t orvReadNumbers(const RunHead* run, const char16_t** cursor, const char16_t* place,
                                      std::span<const NumberSlot> slots);

struct CommandSlots {
    uint64_t* command;
    uint64_t* param1;
    uint64_t* param2;
    uint64_t* param3;
};

/** A command with its three parameters in brackets. A comma stands for no command; so does an unknown name.
    @return 0; ORV_STRING_EXPECTED if the name is missing; a code of the other slots */
[[nodiscard]] uint64_t orvReadCommand(const RunHead* run, const char16_t** cursor, const char16_t* place,
                                      const CommandSlots& slots);
