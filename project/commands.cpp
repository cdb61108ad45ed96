// commands.cpp: the instruction set of the disc's virtual machine as a table of bytes, for the readers, who know the
// instructions by name, and for the writers, who know them by number.
#include "project/commands.h"

#include "base/result.h"
#include "base/strings.h"

#include <algorithm>
#include <iterator>

namespace {

// Bytes of an instruction that are made of an operand. Below 0x100 stands the byte itself.
enum OperandByte : uint16_t {
    P1 = 0x100,   // p1 as it stands
    REG1,         // p1, bits 3..0: a general register
    BTN1,         // p1 as a highlighted button: the number in the upper six bits
    AUDIO1,       // p1, bits 2..0, under the flag that sets an audio stream
    MIN2,         // p2, at most 2
    HI4OF2,       // p2, bits 11..8
    HI2,          // p2, bits 15..8
    LO2,          // p2, bits 7..0
    REG2,         // p2, bits 3..0: a general register
    SYSREG2,      // p2, bits 4..0: a system register, under its flag
    MENU2,        // p2, bits 3..0: a menu of the title set, under its flag
    ITEM2,        // p2, bits 6..0: a track or an entry of the display list
    BTN2,         // p2 as a highlighted button
    REG3,         // p3, bits 3..0: a general register
    HI7OF3,       // p3, bits 14..8
    LO3,          // p3, bits 7..0
    LINK3,        // the link behind SetSTN: to the chain's tail if p3 is not 0, else to its top cell
    HI4,          // p4, bits 15..8
    LO4,          // p4, bits 7..0
};

constexpr uint8_t LINK_TOP_CELL = 0x01, LINK_TAIL_PGC = 0x0D;

struct VmCommand {
    uint64_t number;
    uint16_t bytes[VM_COMMAND_BYTES];   // in disc order
    const char16_t* keyword;            // of the project file; null for an instruction that only program chains use
};

// clang-format off
constexpr VmCommand VM_COMMANDS[] = {
    //                         b0    b1    b2      b3      b4    b5       b6      b7     keyword
    { VM_NOP,                { 0x00, 0x00, 0x00,   0x00,   0x00, 0x00,    0x00,   0x00  }, nullptr },
    // Meant: of titles the menu jumps know two, larger numbers are clamped. Test: Commands.Encode
    { VM_JUMP_VTSM,          { 0x30, 0x06, 0x00,   MIN2,   P1,   0x83,    0x00,   0x00  }, u"BTN_ACTION_JUMP_VTSM" },
    { VM_JUMP_VTSPTT,        { 0x30, 0x05, HI4OF2, LO2,    0x00, P1,      0x00,   0x00  }, u"BTN_ACTION_JUMP_VTSPTT" },
    { VM_JUMP_VMGM,          { 0x30, 0x06, 0x00,   0x00,   0x00, 0x42,    0x00,   0x00  }, u"BTN_ACTION_JUMP_VMGM" },
    { VM_JUMP_TT,            { 0x30, 0x02, 0x00,   0x00,   0x00, P1,      0x00,   0x00  }, u"BTN_ACTION_JUMP_TT" },
    { VM_JUMP_VTS_TT,        { 0x30, 0x03, 0x00,   0x00,   0x00, P1,      0x00,   0x00  }, nullptr },
    // Meant: one byte of a chain's number goes to the disc here, 15 bits in VM_LINK_PGCN_IF_EQUAL. Test: Commands.Encode
    { VM_LINK_PGCN,          { 0x20, 0x04, 0x00,   0x00,   0x00, 0x00,    0x00,   P1    }, u"BTN_ACTION_LINKPGCN" },
    { VM_CALL_VMGM,          { 0x30, 0x08, 0x00,   0x00,   P1,   0x42,    0x00,   0x00  }, nullptr },
    { VM_LINK_CN,            { 0x20, 0x07, 0x00,   0x00,   0x00, 0x00,    BTN2,   P1    }, u"BTN_ACTION_LINKCN" },
    { VM_CALL_VTSM,          { 0x30, 0x08, 0x00,   0x00,   P1,   MENU2,   0x00,   0x00  }, nullptr },
    { VM_LINK_TOP_CELL,      { 0x20, 0x01, 0x00,   0x00,   0x00, 0x00,    0x00,   0x01  }, nullptr },
    { VM_LINK_NEXT_PGC,      { 0x20, 0x01, 0x00,   0x00,   0x00, 0x00,    BTN1,   0x0A  }, u"BTN_ACTION_LINK_NEXT_PGC" },
    { VM_LINK_PREV_PGC,      { 0x20, 0x01, 0x00,   0x00,   0x00, 0x00,    BTN1,   0x0B  }, u"BTN_ACTION_LINK_PREV_PGC" },
    { VM_GET_HIGHLIGHT,      { 0x61, 0x00, 0x00,   0x00,   0x00, 0x88,    0x00,   0x00  }, nullptr },
    { VM_SET_HIGHLIGHT_REG,  { 0x46, 0x00, 0x00,   0x00,   0x00, REG1,    0x00,   0x00  }, nullptr },
    { VM_SET_HIGHLIGHT,      { 0x56, 0x00, 0x00,   0x00,   BTN1, 0x00,    0x00,   0x00  }, nullptr },
    { VM_SET_REG,            { 0x71, 0x00, 0x00,   REG1,   HI2,  LO2,     0x00,   0x00  }, nullptr },
    { VM_GOTO_IF_EQUAL,      { 0x00, 0xA1, 0x00,   REG1,   HI2,  LO2,     0x00,   LO3   }, nullptr },
    { VM_COPY_REG,           { 0x61, 0x00, 0x00,   REG1,   0x00, REG2,    0x00,   0x00  }, nullptr },
    { VM_BREAK_IF_NOT_EQUAL, { 0x00, 0xB2, 0x00,   REG1,   HI2,  LO2,     0x00,   0x00  }, nullptr },
    { VM_LINK_PGCN_IF_EQUAL, { 0x20, 0xA4, 0x00,   REG1,   HI2,  LO2,     HI7OF3, LO3   }, nullptr },
    { VM_GET_SYSTEM_REG,     { 0x61, 0x00, 0x00,   REG1,   0x00, SYSREG2, 0x00,   0x00  }, nullptr },
    { VM_SET_REG_IF_EQUAL,   { 0x71, 0xA0, REG1,   REG3,   HI4,  LO4,     HI2,    LO2   }, nullptr },
    { VM_BREAK,              { 0x00, 0x02, 0x00,   0x00,   0x00, 0x00,    0x00,   0x00  }, nullptr },
    { VM_MULTIPLY_REG,       { 0x75, 0x00, 0x00,   REG1,   HI2,  LO2,     0x00,   0x00  }, nullptr },
    { VM_SET_AUDIO,          { 0x51, 0x01, 0x00,   AUDIO1, 0x00, 0x00,    BTN2,   LINK3 }, u"BTN_ACTION_SETAUDIO" },
    { VM_JUMP_AMENU,         { 0x30, 0x06, 0x00,   MIN2,   P1,   0x85,    0x00,   0x00  }, u"BTN_ACTION_JUMP_AMENU" },
    { VM_JUMP_TK,            { 0x30, 0x0A, 0x00,   REG1,   0x00, ITEM2,   0x00,   0x00  }, u"BTN_ACTION_JUMP_TK" },
    { VM_LINK_NDLIST,        { 0x20, 0x01, 0x00,   0x00,   0x00, 0x00,    BTN1,   0x12  }, u"BTN_ACTION_LINK_NDLIST" },
    { VM_LINK_PDLIST,        { 0x20, 0x01, 0x00,   0x00,   0x00, 0x00,    BTN1,   0x13  }, u"BTN_ACTION_LINK_PDLIST" },
    { VM_LINK_DLISTN,        { 0x20, 0x03, 0x00,   0x00,   0x00, 0x00,    BTN1,   ITEM2 }, u"BTN_ACTION_LINK_DLISTN" },
    { VM_LINK_TKN,           { 0x20, 0x02, 0x00,   0x00,   0x00, 0x00,    BTN1,   ITEM2 }, u"BTN_ACTION_LINK_TKN" },
};
// clang-format on

constexpr bool ascending()
{
    for (uint64_t i = 1; i < std::size(VM_COMMANDS); i++) {
        if (VM_COMMANDS[i - 1].number >= VM_COMMANDS[i].number) return false;
    }
    return true;
}
static_assert(ascending());   // a number stands in the table once

uint8_t operandByte(uint16_t byte, uint8_t p1, uint64_t p2, uint64_t p3, uint64_t p4)
{
    switch (byte) {
    case P1: return p1;
    case REG1: return p1 & 0x0F;
    case BTN1: return uint8_t(p1 << 2);
    case AUDIO1: return 0x80 | (p1 & 0x07);
    case MIN2: return uint8_t(std::min<uint64_t>(p2, 2));
    case HI4OF2: return (p2 >> 8) & 0x0F;
    case HI2: return uint8_t(p2 >> 8);
    case LO2: return uint8_t(p2);
    case REG2: return p2 & 0x0F;
    case SYSREG2: return 0x80 | (p2 & 0x1F);
    case MENU2: return 0x80 | (p2 & 0x0F);
    case ITEM2: return p2 & 0x7F;
    case BTN2: return uint8_t(p2 << 2);
    case REG3: return p3 & 0x0F;
    case HI7OF3: return (p3 >> 8) & 0x7F;
    case LO3: return uint8_t(p3);
    case LINK3: return p3 ? LINK_TAIL_PGC : LINK_TOP_CELL;
    case HI4: return uint8_t(p4 >> 8);
    case LO4: return uint8_t(p4);
    default: return uint8_t(byte);
    }
}

}   // namespace

uint64_t orvCommandNumber(const char16_t* name, uint64_t length, uint64_t* number)
{
    if (!name || !number) return ORV_INVALID_ARGUMENT;
    *number = VM_NOP;
    for (const VmCommand& command : VM_COMMANDS) {
        if (!command.keyword || osStrLength(command.keyword) != length) continue;
        if (std::equal(name, name + length, command.keyword)) *number = command.number;
    }
    return 0;
}

uint64_t orvEncodeCommand(uint8_t* command, uint64_t commandNumber, uint8_t p1, uint64_t p2, uint64_t p3, uint64_t p4)
{
    for (const VmCommand& row : VM_COMMANDS) {
        if (row.number != commandNumber) continue;
        for (uint64_t i = 0; i < VM_COMMAND_BYTES; i++) command[i] = operandByte(row.bytes[i], p1, p2, p3, p4);
        // Meant: the multiplication is written and refused all the same; a button that stores the bytes regardless has
        // it on the disc. Test: Commands.MultiplicationIsWrittenAndRefused
        return commandNumber == VM_MULTIPLY_REG ? ORV_COMMAND_NOT_SUPPORTED : 0;
    }
    return ORV_COMMAND_NOT_SUPPORTED;
}
