#include "base/result.h"
#include "project/reader.h"
#include "tests/project/project_file.h"

namespace {

const std::u16string COMPLETE = u"10,20,30,40,1,2,3,4,5,BTN_ACTION_LINKCN(6,7,8)";

struct Read {
    explicit Read(const std::u16string& value)
    {
        run.logFilePath = logPath.data();
        result = orvReadButton(&run, value.c_str(), &button);
    }

    testing::AssertionResult logged(const std::vector<LogEntry>& entries) const
    {
        return logHolds(logPath, entries);
    }

    TempDir dir;
    std::u16string logPath = dir / u"errors.log";
    RunHead run = {};
    ButtonDesc button = {};
    uint64_t result;
};

}   // namespace

TEST(Button, Fields)
{
    const Read read(COMPLETE + u",1");
    EXPECT_EQ(read.result, 0u);
    const ButtonDesc& b = read.button;
    EXPECT_EQ(b.xStart, 10u);
    EXPECT_EQ(b.xEnd, 20u);
    EXPECT_EQ(b.yStart, 30u);
    EXPECT_EQ(b.yEnd, 40u);
    EXPECT_EQ(b.upLink, 1u);
    EXPECT_EQ(b.downLink, 2u);
    EXPECT_EQ(b.leftLink, 3u);
    EXPECT_EQ(b.rightLink, 4u);
    EXPECT_EQ(b.color, 5u);
    EXPECT_EQ(b.command, 12u);
    EXPECT_EQ(b.param1, 6u);
    EXPECT_EQ(b.param2, 7u);
    EXPECT_EQ(b.param3, 8u);
    EXPECT_EQ(b.autoAction, 1u);
    EXPECT_EQ(b.overlapButton, 0u);
    EXPECT_TRUE(read.logged({}));
}

TEST(Button, EndOfTheValue)
{
    const struct {
        std::u16string value;
        uint64_t result, autoAction;
        std::vector<LogEntry> log;
    } cases[] = {
        { u"1,2,3,4,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0)", 0, 0, {} },
        { COMPLETE + u" ", 0, 0, {} },
        { COMPLETE + u"\t,1", 0, 0, {} },
        { COMPLETE + u" and more, (anything)", 0, 0, {} },
        { COMPLETE + u").:", 0, 0, {} },
        { COMPLETE + u",0", 0, 0, {} },
        { COMPLETE + u" , 1 , 9", 0, 1, {} },
        { COMPLETE + u",,", 0, 0, {} },
        { COMPLETE + u",yes", 0x840003EB, 0, {} },
        { COMPLETE + u"," + u"(" + FILLER,
          0x840003EB,
          0,
          { { 0x840003EB, u"No integer token for <fAutoAction> found in <button> in string: " + FILLER } } },
        { COMPLETE + u",",
          0x840003EB,
          0,
          { { 0x840003EB, u"No integer token for <fAutoAction> found in <button> in string: " } } },
        { COMPLETE + u"\x01", 0x840003E8, 0, { { 0x840003E8, u"Unknown ASCII character in this string: \x01" } } },
        { COMPLETE + u" x\x01", 0x840003E9, 0, { { 0x840003E9, u"Wrong ASCII character during parsing:  x\x01" } } },
    };
    for (const auto& c : cases) {
        const Read read(c.value);
        EXPECT_EQ(read.result, c.result) << toUtf8(c.value);
        EXPECT_EQ(read.button.autoAction, c.autoAction) << toUtf8(c.value);
        EXPECT_TRUE(read.logged(c.log)) << toUtf8(c.value);
    }
}

TEST(Button, AutoActionWarning)
{
    const std::u16string warning = u"Wrong value for <fAutoAction>, expected 0 (FALSE) or 1 (TRUE) in string: ";
    const struct {
        std::u16string rest;
        uint64_t autoAction;
        std::u16string shown;
    } cases[] = {
        { u",7", 7, u"" },
        { u",2", 2, u"" },
        { u",9999999999 " + FILLER, 9999999999, u" " + FILLER },
    };
    for (const auto& c : cases) {
        const Read read(COMPLETE + c.rest);
        EXPECT_EQ(read.result, 0u) << toUtf8(c.rest);
        EXPECT_EQ(read.button.autoAction, c.autoAction) << toUtf8(c.rest);
        EXPECT_TRUE(read.logged({ { 0x840003EC, warning + c.shown } })) << toUtf8(c.rest);
    }
}

TEST(Button, OldAutoActionIsCleared)
{
    RunHead run = {};
    ButtonDesc button = {};
    button.autoAction = 1;
    EXPECT_EQ(orvReadButton(&run, COMPLETE.c_str(), &button), 0u);
    EXPECT_EQ(button.autoAction, 0u);
}

// Each number in turn is missing, then each comma behind one, with the name that the log gives it.
TEST(Button, NumbersAndCommas)
{
    const std::u16string names[] = { u"xstart",   u"xend",     u"ystart",    u"yend", u"uplink",
                                     u"downlink", u"leftlink", u"rightlink", u"color" };
    std::u16string before;
    for (const std::u16string& name : names) {
        const Read number(before + u"." + FILLER);
        EXPECT_EQ(number.result, 0x840003EBu) << toUtf8(name);
        EXPECT_TRUE(number.logged(
            { { 0x840003EB, u"No integer token for <" + name + u"> found in <button> in string: " + FILLER } }));
        const Read comma(before + u"1:" + FILLER);
        EXPECT_EQ(comma.result, 0x840003EDu) << toUtf8(name);
        EXPECT_TRUE(
            comma.logged({ { 0x840003ED, u"No comma found after <" + name + u"> in <button> in string: " + FILLER } }));
        const Read letters(before + u"1a,");
        EXPECT_EQ(letters.result, 0x840003EBu) << toUtf8(name);
        EXPECT_TRUE(letters.logged({}));
        before += u"1,";
    }
}

TEST(Button, Command)
{
    const std::u16string numbers = u"1,2,3,4,5,6,7,8,9,";
    const struct {
        std::u16string value;
        uint64_t result, command;
        std::vector<LogEntry> log;
    } cases[] = {
        { u"BTN_ACTION_JUMP_VTSM(1,2,0)", 0, 1, {} },
        { u"btn_action_jump_vtsm(1,2,0)", 0, 0, {} },
        { u"NOTHING(0,0,0)", 0, 0, {} },
        { u",(0,0,0)", 0, 0, {} },
        { u")" + FILLER,
          0x840003EC,
          0,
          { { 0x840003EC, u"No integer token for <command> found in <button> in string: " + FILLER } } },
        { u"", 0x840003EC, 0, { { 0x840003EC, u"No integer token for <command> found in <button> in string: " } } },
        { u"X." + FILLER,
          0x840003EE,
          0,
          { { 0x840003EE, u"No opening bracket found after <command> in <button> in string: " + FILLER } } },
        { u"X(." + FILLER,
          0x840003EB,
          0,
          { { 0x840003EB, u"No integer token for <param1> found in <button> in string: " + FILLER } } },
        { u"X(1." + FILLER,
          0x840003ED,
          0,
          { { 0x840003ED, u"No comma found after <param1> in <button> in string: " + FILLER } } },
        { u"X(1,." + FILLER,
          0x840003EB,
          0,
          { { 0x840003EB, u"No integer token for <param2> found in <button> in string: " + FILLER } } },
        { u"X(1,2." + FILLER,
          0x840003ED,
          0,
          { { 0x840003ED, u"No comma found after <param2> in <button> in string: " + FILLER } } },
        { u"X(1,2,." + FILLER,
          0x840003EB,
          0,
          { { 0x840003EB, u"No integer token for <param3> found in <button> in string: " + FILLER } } },
        { u"X(1,2,3." + FILLER,
          0x840003EF,
          0,
          { { 0x840003EF, u"No closing bracket found after <command> in <button> in string: " + FILLER } } },
    };
    for (const auto& c : cases) {
        const Read read(numbers + c.value);
        EXPECT_EQ(read.result, c.result) << toUtf8(c.value);
        EXPECT_EQ(read.button.command, c.command) << toUtf8(c.value);
        EXPECT_TRUE(read.logged(c.log)) << toUtf8(c.value);
    }
}
