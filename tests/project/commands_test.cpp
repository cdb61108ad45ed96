#include "project/commands.h"

#include "base/result.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <set>

namespace {

struct VmCase {
    const char* what;
    uint64_t number;
    uint8_t p1;
    uint64_t p2, p3, p4;
    const char* bytes;
};

// clang-format off
const VmCase CASES[] = {
    // what                                    no.   p1    p2       p3      p4       b0 b1 b2 b3 b4 b5 b6 b7
    { "NOP ignores its parameters",              0,    1,       2,      3,      4,  "00 00 00 00 00 00 00 00" },
    { "JumpSS root menu",                        1,    7,       1,      0,      0,  "30 06 00 01 07 83 00 00" },
    { "JumpSS root menu, title 2",               1,    7,       2,      0,      0,  "30 06 00 02 07 83 00 00" },
    { "JumpSS root menu, title stops at 2",      1,    7,       3,      0,      0,  "30 06 00 02 07 83 00 00" },
    { "JumpSS root menu, no low byte is taken",  1,  0xFF,  0x100,      9,      9,  "30 06 00 02 FF 83 00 00" },
    { "JumpVTS_PTT",                             2,    5,  0x1234,      0,      0,  "30 05 02 34 00 05 00 00" },
    { "JumpVTS_PTT, twelve bits of chapter",     2,    1,  0xFFFF,      0,      0,  "30 05 0F FF 00 01 00 00" },
    { "JumpSS title menu",                       3,    9,       9,      9,      9,  "30 06 00 00 00 42 00 00" },
    { "JumpTT",                                  4, 0xFE,       9,      9,      9,  "30 02 00 00 00 FE 00 00" },
    { "JumpVTS_TT",                              5,   99,       9,      9,      9,  "30 03 00 00 00 63 00 00" },
    { "LinkPGCN takes one byte",                10, 0xFF,       9,      9,      9,  "20 04 00 00 00 00 00 FF" },
    { "CallSS title menu",                      11,    4,       9,      9,      9,  "30 08 00 00 04 42 00 00" },
    { "LinkCN",                                 12,    9,      36,      0,      0,  "20 07 00 00 00 00 90 09" },
    { "LinkCN, highlight cut to a byte",        12,    9,      65,      0,      0,  "20 07 00 00 00 00 04 09" },
    { "CallSS menu of the title set",           13,    2,       7,      0,      0,  "30 08 00 00 02 87 00 00" },
    { "CallSS, four bits of menu",              13,    2,    0x13,      0,      0,  "30 08 00 00 02 83 00 00" },
    { "LinkTopCell",                            14,    9,       9,      9,      9,  "20 01 00 00 00 00 00 01" },
    { "LinkNextPGC",                            15,   36,       9,      9,      9,  "20 01 00 00 00 00 90 0A" },
    { "LinkNextPGC, highlight cut to a byte",   15,   65,       0,      0,      0,  "20 01 00 00 00 00 04 0A" },
    { "LinkPrevPGC",                            16,   36,       9,      9,      9,  "20 01 00 00 00 00 90 0B" },
    { "GPRM0 = SPRM8",                          20,    9,       9,      9,      9,  "61 00 00 00 00 88 00 00" },
    { "SetHL_BTN from register",                21, 0x12,       9,      9,      9,  "46 00 00 00 00 02 00 00" },
    { "SetHL_BTN",                              22,    3,       9,      9,      9,  "56 00 00 00 0C 00 00 00" },
    { "set register",                           23,    4,  0x1234,      9,      9,  "71 00 00 04 12 34 00 00" },
    { "set register 16 is register 0",          23,   16,       1,      0,      0,  "71 00 00 00 00 01 00 00" },
    { "set register, 16 bits of value",         23,   15, 0x5ABCD,      0,      0,  "71 00 00 0F AB CD 00 00" },
    { "goto compares 16 bits",                  24,    1,  0x1234,      5,      0,  "00 A1 00 01 12 34 00 05" },
    { "goto, register and line are cut",        24, 0x21, 0x51234,  0x105,      0,  "00 A1 00 01 12 34 00 05" },
    { "copy register",                          25,    2,    0x13,      9,      9,  "61 00 00 02 00 03 00 00" },
    { "break if not equal",                     26, 0x13,  0xFFFE,      9,      9,  "00 B2 00 03 FF FE 00 00" },
    { "LinkPGCN if equal",                      27,    1,  0x0102, 0x1234,      9,  "20 A4 00 01 01 02 12 34" },
    { "LinkPGCN if equal, 15 bits of chain",    27, 0x11,       2, 0xFFFF,      9,  "20 A4 00 01 00 02 7F FF" },
    { "get system register",                    28,    2,       1,      9,      9,  "61 00 00 02 00 81 00 00" },
    { "get system register, five bits",         28, 0x12,    0x28,      9,      9,  "61 00 00 02 00 88 00 00" },
    { "set register if equal",                  29, 0x11,  0x1122,   0x13, 0x3344,  "71 A0 01 03 33 44 11 22" },
    { "Break",                                  30,    9,       9,      9,      9,  "00 02 00 00 00 00 00 00" },
    { "SetSTN, LinkTopCell",                    32,    1,       2,      0,      9,  "51 01 00 81 00 00 08 01" },
    { "SetSTN, LinkTailPGC",                    32,    9,      36,      7,      9,  "51 01 00 81 00 00 90 0D" },
    { "JumpSS audio menu",                      33,    5,       1,      9,      9,  "30 06 00 01 05 85 00 00" },
    { "JumpSS audio menu, title stops at 2",    33,    5,       9,      9,      9,  "30 06 00 02 05 85 00 00" },
    { "jump to track",                         100, 0x13,    0x85,      9,      9,  "30 0A 00 03 00 05 00 00" },
    { "next display list entry",               101,    3,       9,      9,      9,  "20 01 00 00 00 00 0C 12" },
    { "previous display list entry",           102,    3,       9,      9,      9,  "20 01 00 00 00 00 0C 13" },
    { "display list entry",                    103,    3,    0x85,      9,      9,  "20 03 00 00 00 00 0C 05" },
    { "track",                                 104,    3,    0xFF,      9,      9,  "20 02 00 00 00 00 0C 7F" },
};

const struct { const char16_t* name; uint64_t number; } NAMES[] = {
    { u"BTN_ACTION_JUMP_VTSM",       1 }, { u"BTN_ACTION_JUMP_VTSPTT",     2 }, { u"BTN_ACTION_JUMP_VMGM",      3 },
    { u"BTN_ACTION_JUMP_TT",         4 }, { u"BTN_ACTION_LINKPGCN",       10 }, { u"BTN_ACTION_LINKCN",        12 },
    { u"BTN_ACTION_LINK_NEXT_PGC",  15 }, { u"BTN_ACTION_LINK_PREV_PGC",  16 }, { u"BTN_ACTION_SETAUDIO",      32 },
    { u"BTN_ACTION_JUMP_AMENU",     33 }, { u"BTN_ACTION_JUMP_TK",       100 }, { u"BTN_ACTION_LINK_NDLIST",  101 },
    { u"BTN_ACTION_LINK_PDLIST",   102 }, { u"BTN_ACTION_LINK_DLISTN",   103 }, { u"BTN_ACTION_LINK_TKN",     104 },
};
// clang-format on

const std::u16string_view NOT_COMMANDS[] = {
    u"",  u"btn_action_jump_vtsm", u"BTN_ACTION_JUMP_VTS", u"BTN_ACTION_JUMP_VTSMX", u"NOP", u"BTN_ACTION_LINKPGCN ",
    u"1",
};

uint64_t numberOf(std::u16string_view name)
{
    uint64_t number = 0xEE;
    EXPECT_EQ(orvCommandNumber(name.data(), name.size(), &number), 0u);
    return number;
}

}   // namespace

TEST(Commands, Encode)
{
    for (const VmCase& c : CASES) {
        Bytes bytes(8, 0xEE);
        EXPECT_EQ(orvEncodeCommand(bytes.data(), c.number, c.p1, c.p2, c.p3, c.p4), 0u) << c.what;
        EXPECT_EQ(toHex(bytes), c.bytes) << c.what;
    }
}

TEST(Commands, MultiplicationIsWrittenAndRefused)
{
    Bytes bytes(8, 0xEE);
    EXPECT_EQ(orvEncodeCommand(bytes.data(), 31, 0x12, 0x10400, 9, 9), 0x840007DDu);
    EXPECT_EQ(toHex(bytes), "75 00 00 02 04 00 00 00");
}

TEST(Commands, UnknownNumberLeavesTheBytes)
{
    std::set<uint64_t> unknown = { 105, 106, 255, 256, 0x100000001, 0xFFFFFFFFFFFFFFFF };
    for (uint64_t number = 6; number <= 9; number++) unknown.insert(number);
    for (uint64_t number = 17; number <= 19; number++) unknown.insert(number);
    for (uint64_t number = 34; number <= 99; number++) unknown.insert(number);
    for (const uint64_t number : unknown) {
        Bytes bytes(8, 0xEE);
        EXPECT_EQ(orvEncodeCommand(bytes.data(), number, 1, 2, 3, 4), 0x840007DDu) << number;
        EXPECT_EQ(toHex(bytes), "EE EE EE EE EE EE EE EE") << number;
    }
}

TEST(Commands, EveryKnownNumberIsTried)
{
    std::set<uint64_t> tried = { 31 };
    for (const VmCase& c : CASES) tried.insert(c.number);
    for (uint64_t number = 0; number <= 110; number++) {
        Bytes bytes(8);
        const bool known = orvEncodeCommand(bytes.data(), number, 0, 0, 0, 0) == 0 || number == 31;
        EXPECT_EQ(known, tried.contains(number)) << number;
    }
}

TEST(Commands, Names)
{
    for (const auto& c : NAMES) EXPECT_EQ(numberOf(c.name), c.number) << toUtf8(c.name);
    for (const std::u16string_view name : NOT_COMMANDS) EXPECT_EQ(numberOf(name), 0u) << toUtf8(name);
}

TEST(Commands, NameNeedsNoTerminator)
{
    EXPECT_EQ(numberOf(std::u16string_view(u"BTN_ACTION_LINKCN(1,2,0)", 17)), 12u);
    EXPECT_EQ(numberOf(std::u16string_view(u"BTN_ACTION_JUMP_VTSPTT", 19)), 0u);
}

TEST(Commands, NullArguments)
{
    uint64_t number = 7;
    EXPECT_EQ(orvCommandNumber(nullptr, 0, &number), 0x84000057u);
    EXPECT_EQ(orvCommandNumber(u"NOP", 3, nullptr), 0x84000057u);
}
