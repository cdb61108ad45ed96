// commands.h: the vocabulary of navigation commands: name in the project file, number in the model, bytes on the disc.
#pragma once

#include <cstdint>

inline constexpr uint64_t VM_COMMAND_BYTES = 8;

// Numbers of the commands. Those with a project keyword bear its name.
// clang-format off
enum VmCommandNumber : uint64_t {
    VM_NOP                = 0,
    VM_JUMP_VTSM          = 1,     // JumpSS to a title set's root menu. p1 title set, p2 title (clamped to 2)
    VM_JUMP_VTSPTT        = 2,     // JumpVTS_PTT. p1 title, p2 chapter
    VM_JUMP_VMGM          = 3,     // JumpSS to the manager's title menu
    VM_JUMP_TT            = 4,     // JumpTT. p1 title
    VM_JUMP_VTS_TT        = 5,     // JumpVTS_TT. p1 title
    VM_LINK_PGCN          = 10,    // LinkPGCN. p1 program chain
    VM_CALL_VMGM          = 11,    // CallSS to the manager's title menu. p1 resume cell
    VM_LINK_CN            = 12,    // LinkCN. p1 cell, p2 highlight
    VM_CALL_VTSM          = 13,    // CallSS to a menu of the title set. p1 resume cell, p2 menu id
    VM_LINK_TOP_CELL      = 14,    // LinkTopCell
    VM_LINK_NEXT_PGC      = 15,    // LinkNextPGC. p1 highlight
    VM_LINK_PREV_PGC      = 16,    // LinkPrevPGC. p1 highlight
    VM_GET_HIGHLIGHT      = 20,    // GPRM0 = SPRM8
    VM_SET_HIGHLIGHT_REG  = 21,    // SetHL_BTN from a register. p1 register
    VM_SET_HIGHLIGHT      = 22,    // SetHL_BTN. p1 button
    VM_SET_REG            = 23,    // p1 register, p2 value
    VM_GOTO_IF_EQUAL      = 24,    // p1 register, p2 value, p3 line
    VM_COPY_REG           = 25,    // p1 register, p2 from register
    VM_BREAK_IF_NOT_EQUAL = 26,    // p1 register, p2 value
    VM_LINK_PGCN_IF_EQUAL = 27,    // p1 register, p2 value, p3 program chain
    VM_GET_SYSTEM_REG     = 28,    // p1 register, p2 system register
    VM_SET_REG_IF_EQUAL   = 29,    // p1 register, p2 value, p3 register, p4 value
    VM_BREAK              = 30,    // Break
    VM_MULTIPLY_REG       = 31,    // p1 register, p2 factor
    VM_SET_AUDIO          = 32,    // SetSTN. p1 stream, p2 highlight, p3 not 0: leave the chain by its tail
    VM_JUMP_AMENU         = 33,    // JumpSS to a title set's audio menu. p1 title set, p2 title (clamped to 2)
    VM_JUMP_TK            = 100,   // DVD-Audio: p1 group, p2 track
    VM_LINK_NDLIST        = 101,   // DVD-Audio: next display list entry. p1 highlight
    VM_LINK_PDLIST        = 102,   // DVD-Audio: previous display list entry. p1 highlight
    VM_LINK_DLISTN        = 103,   // DVD-Audio: p1 highlight, p2 display list entry
    VM_LINK_TKN           = 104,   // DVD-Audio: p1 highlight, p2 track
};
// clang-format on

/** Number of a command's project keyword, letter for letter; an unknown name gives 0 and is a success. name has length
    characters and needs no terminator. A null argument is ORV_INVALID_ARGUMENT. */
[[nodiscard]] uint64_t orvCommandNumber(const char16_t* name, uint64_t length, uint64_t* number);

/** Writes the eight bytes of a command in disc order.
    @return 0; ORV_COMMAND_NOT_SUPPORTED for an unknown number, which leaves the bytes, and for VM_MULTIPLY_REG, which
            writes them */
[[nodiscard]] uint64_t orvEncodeCommand(uint8_t* command, uint64_t commandNumber, uint8_t p1, uint64_t p2, uint64_t p3,
                                        uint64_t p4);
