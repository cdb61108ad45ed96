#include "base/result.h"
#include "project/reader.h"
#include "tests/project/project_file.h"

namespace {

typedef uint64_t (*ReadCommon)(const RunHead*, const OsProfile*, int64_t*);

struct VersionCase {
    std::string value;
    uint64_t result;
    std::vector<LogEntry> log;
};

const std::u16string NO_MAJOR = u"No integer token for <major version> found in <common> in string: ";
const std::u16string NO_DOT = u"No dot found after <major version> in <common> in string: ";
const std::u16string NO_MINOR = u"No integer token for <minor version> found in <common> in string: ";

std::string blanks(size_t count)
{
    return std::string(count, ' ');
}

const VersionCase VERSIONS[] = {
    { "1.0", 0, {} },
    { "1.42", 0, {} },
    { "1.7.3", 0, {} },
    { "1.0 and more, (anything)", 0, {} },
    { " 1 . 0", 0, {} },
    { "0000000001.0", 0, {} },
    { "1.,", 0, {} },   // a comma stands for the number 0
    { "2.0", 0x840003F2, {} },
    { ",.0", 0x840003F2, {} },
    { "0.9", 0x840003F2, {} },
    { "9999999999.0", 0x840003F2, {} },
    { "1", 0x840003F0, { { 0x840003F0, NO_DOT } } },
    { "1,0~~~~~~~~~~~~~~~~~~~~~~~~~~~~", 0x840003F0, { { 0x840003F0, NO_DOT + u"0~~~~~~~~~~~~~~~~~~~~~~~~~~~~" } } },
    { "1.", 0x840003EB, { { 0x840003EB, NO_MINOR } } },
    { "1.)~~~~~~~~~~~~~~~~~~~~~~~~~~~~", 0x840003EB, { { 0x840003EB, NO_MINOR + std::u16string(28, u'~') } } },
    { ".1.0~~~~~~~~~~~~~~~~~~~~~~~~~~~", 0x840003EB, { { 0x840003EB, NO_MAJOR + u"1.0" + std::u16string(27, u'~') } } },
    { "1.x", 0x840003EB, {} },
    { "x.1", 0x840003EB, {} },
    { "2.x", 0x840003EB, {} },   // the minor number is read before the major one is judged
    { "10000000000.0", 0x840003EB, {} },
    { "1" + blanks(28) + ".0", 0, {} },                                      // 31 characters
    { "1" + blanks(29) + ".0", 0x840003EB, { { 0x840003EB, NO_MINOR } } },   // the 32nd is cut off
    { "\x01", 0x840003E8, { { 0x840003E8, u"Unknown ASCII character in this string: \x01" } } },
    { "1\x02.0", 0x840003E9, { { 0x840003E9, u"Wrong ASCII character during parsing: 1\x02.0" } } },
};

uint64_t readStandard(ReadCommon read, const std::string& text, int64_t* standard)
{
    const ProjectFile project(text);
    return read(&project.run, project.file, standard);
}

}   // namespace

TEST(Common, Version)
{
    for (const VersionCase& c : VERSIONS) {
        const ProjectFile project("[COMMON]\nversion=" + c.value + "\n");
        int64_t standard = 77;
        EXPECT_EQ(orvReadCommon(&project.run, project.file, &standard), c.result) << c.value;
        EXPECT_EQ(standard, c.result ? 77 : 1) << c.value;
        EXPECT_TRUE(project.logged(c.log)) << c.value;
    }
}

TEST(Common, NoVersion)
{
    for (const std::string text : { "", "[OTHER]\nversion=1.0\n", "[COMMON]\nmode=PAL\n", "[COMMON]\nversion=\n" }) {
        const ProjectFile project(text);
        int64_t standard = 77;
        EXPECT_EQ(orvReadCommon(&project.run, project.file, &standard), 0x840003F1u) << text;
        EXPECT_EQ(orvReadAudioCommon(&project.run, project.file, &standard), 0x84001772u) << text;
        EXPECT_EQ(standard, 77) << text;
        EXPECT_TRUE(project.logged({})) << text;
    }
}

TEST(Common, Mode)
{
    const struct {
        std::string line;
        uint64_t result;
        int64_t standard;
    } cases[] = {
        { "", 0, 1 },
        { "mode=\n", 0, 1 },
        { "mode=PAL\n", 0, 1 },
        { "mode=pal\n", 0, 1 },
        { "mode=NTSC\n", 0, 2 },
        { "Mode = \"ntsc\"\n", 0, 2 },
        { "mode=NtSc\t, as in America\n", 0, 2 },
        { "mode=SECAM\n", 0x840003F3, 77 },
        { "mode=PAL B\n", 0x840003F3, 77 },
        { "mode=PA\n", 0x840003F3, 77 },
        { "mode=,x\n", 0x840003EC, 77 },
        { "mode=.PAL\n", 0x840003EC, 77 },
        { "mode=:\n", 0x840003EC, 77 },
        { "mode=\"\tPAL\"\n", 0x840003EC, 77 },
        { "mode=(PAL)\n", 0x840003F3, 77 },
    };
    for (const auto& c : cases) {
        const ProjectFile project("[Common]\nversion=1.0\nsoftware=" + std::string(200, '(') + "\n" + c.line);
        int64_t standard = 77;
        EXPECT_EQ(orvReadCommon(&project.run, project.file, &standard), c.result) << c.line;
        EXPECT_EQ(standard, c.standard) << c.line;
        EXPECT_TRUE(project.logged({})) << c.line;
    }
}

TEST(Common, BadUnitInMode)
{
    const ProjectFile project("[COMMON]\nversion=1.0\nmode=PA\x04L\n");
    int64_t standard = 77;
    EXPECT_EQ(orvReadCommon(&project.run, project.file, &standard), 0x840003E9u);
    EXPECT_TRUE(project.logged({ { 0x840003E9, u"Wrong ASCII character during parsing: PA\x04L" } }));
}

TEST(Common, AudioCodes)
{
    int64_t standard = 77;
    EXPECT_EQ(readStandard(orvReadAudioCommon, "[COMMON]\nversion=1.0\nmode=NTSC\n", &standard), 0u);
    EXPECT_EQ(standard, 2);
    EXPECT_EQ(readStandard(orvReadAudioCommon, "[COMMON]\nversion=1.0\n", &standard), 0u);
    EXPECT_EQ(standard, 1);
    EXPECT_EQ(readStandard(orvReadAudioCommon, "[COMMON]\nversion=2.0\n", &standard), 0x84001773u);
    EXPECT_EQ(readStandard(orvReadAudioCommon, "[COMMON]\nversion=1.0\nmode=SECAM\n", &standard), 0x84001774u);
    EXPECT_EQ(readStandard(orvReadAudioCommon, "[COMMON]\nversion=1.0\nmode=,\n", &standard), 0x840003ECu);
    EXPECT_EQ(readStandard(orvReadAudioCommon, "[COMMON]\nversion=1\n", &standard), 0x840003F0u);
    EXPECT_EQ(readStandard(orvReadAudioCommon, "[COMMON]\nversion=1.x\n", &standard), 0x840003EBu);
    const ProjectFile project("[COMMON]\nversion=1.\n");
    EXPECT_EQ(orvReadAudioCommon(&project.run, project.file, &standard), 0x840003EBu);
    EXPECT_TRUE(project.logged({ { 0x840003EB, NO_MINOR } }));
}

TEST(Common, NullLogPathChangesNoCode)
{
    ProjectFile project("[COMMON]\nversion=1\n");
    project.run.logFilePath = nullptr;
    int64_t standard = 77;
    EXPECT_EQ(orvReadCommon(&project.run, project.file, &standard), 0x840003F0u);
    EXPECT_FALSE(fileExists(project.logPath));
}

TEST(FirstPlay, Command)
{
    const std::u16string tail(20, u'~');
    const std::string narrowTail(20, '~');
    const struct {
        std::string value;
        uint64_t result, command, param1, param2, param3;
        std::vector<LogEntry> log;
    } cases[] = {
        { "BTN_ACTION_JUMP_TT(1,2,3)", 0, 4, 1, 2, 3, {} },
        { "BTN_ACTION_JUMP_VMGM(0,0,0) anything", 0, 3, 0, 0, 0, {} },
        { "BTN_ACTION_JUMP_VMGM(,,,,,)", 0, 3, 0, 0, 0, {} },
        { "btn_action_jump_tt(1,2,3)", 0, 0, 1, 2, 3, {} },
        { ",(1,2,3)", 0, 0, 1, 2, 3, {} },
        { "(1,2,3)" + narrowTail,
          0x840003EC,
          0,
          0,
          0,
          0,
          { { 0x840003EC, u"No integer token for <command> found in <firstplay> in string: 1,2,3)" + tail } } },
        { "X,1,2,3)" + narrowTail,
          0x840003EE,
          0,
          0,
          0,
          0,
          { { 0x840003EE, u"No opening bracket found after <command> in <firstplay> in string: 1,2,3)" + tail } } },
        { "X()" + narrowTail,
          0x840003EB,
          0,
          0,
          0,
          0,
          { { 0x840003EB, u"No integer token for <param1> found in <firstplay> in string: " + tail } } },
        { "X(1)" + narrowTail,
          0x840003ED,
          0,
          1,
          0,
          0,
          { { 0x840003ED, u"No comma found after <param1> in <firstplay> in string: " + tail } } },
        { "X(1,:" + narrowTail,
          0x840003EB,
          0,
          1,
          0,
          0,
          { { 0x840003EB, u"No integer token for <param2> found in <firstplay> in string: " + tail } } },
        { "X(1,2)" + narrowTail,
          0x840003ED,
          0,
          1,
          2,
          0,
          { { 0x840003ED, u"No comma found after <param2> in <firstplay> in string: " + tail } } },
        { "X(1,2,)" + narrowTail,
          0x840003EB,
          0,
          1,
          2,
          0,
          { { 0x840003EB, u"No integer token for <param3> found in <firstplay> in string: " + tail } } },
        { "X(1,2,3," + narrowTail,
          0x840003EF,
          0,
          1,
          2,
          3,
          { { 0x840003EF, u"No closing bracket found after <command> in <firstplay> in string: " + tail } } },
        { "X(a,2,3)", 0x840003EB, 0, 0, 0, 0, {} },
        { "BTN_ACTION_JUMP_TT" + blanks(38) + "(1,2,3)", 0, 4, 1, 2, 3, {} },   // 63 characters
        { "BTN_ACTION_JUMP_TT" + blanks(39) + "(1,2,3)",
          0x840003EF,
          4,
          1,
          2,
          3,
          { { 0x840003EF, u"No closing bracket found after <command> in <firstplay> in string: " } } },
    };
    for (const auto& c : cases) {
        const ProjectFile project("[FIRSTPLAY]\ncmd=" + c.value + "\n");
        const ContextPtr context = makeContext(project);
        EXPECT_EQ(orvReadFirstPlay(context.get(), project.file), c.result) << c.value;
        EXPECT_EQ(context->firstPlayCommand, c.command) << c.value;
        EXPECT_EQ(context->firstPlayParam1, c.param1) << c.value;
        EXPECT_EQ(context->firstPlayParam2, c.param2) << c.value;
        EXPECT_EQ(context->firstPlayParam3, c.param3) << c.value;
        EXPECT_TRUE(project.logged(c.log)) << c.value;
    }
}

TEST(FirstPlay, MissingClearsTheCommand)
{
    for (const std::string text : { "", "[FIRSTPLAY]\ncmd=\n" }) {
        const ProjectFile project(text);
        const ContextPtr context = makeContext(project);
        context->firstPlayCommand = 4;
        context->firstPlayParam1 = context->firstPlayParam2 = context->firstPlayParam3 = 5;
        EXPECT_EQ(orvReadFirstPlay(context.get(), project.file), 0u) << text;
        EXPECT_EQ(context->firstPlayCommand, 0u) << text;
        EXPECT_EQ(context->firstPlayParam1 + context->firstPlayParam2 + context->firstPlayParam3, 0u) << text;
        EXPECT_TRUE(project.logged({})) << text;
    }
}
