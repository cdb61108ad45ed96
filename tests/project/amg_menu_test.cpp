#include "project/audio_reader.h"
#include "tests/project/audio_project.h"

#include <cstring>
#include <iterator>

namespace {

const std::string FILES = "background=bg.mpg\nsubpicture=sp.bmp\n";
const std::string UP_TO_COMMAND = "1,2,3,4,5,6,7,8,1,";
const std::string TAIL(60, '~');   // behind a fault, so that the first half of a log entry shows the whole message
const std::u16string WIDE_TAIL(60, u'~');

// The manager's first menu, of the section [M] with these lines.
struct Read {
    explicit Read(const std::string& lines) : project("[M]\n" + lines)
    {
        menu.menuExtra = 5;
        result = orvReadAmgMenu(&project.run, project.file, u"M", &menu);
    }

    ProjectFile project;
    AudioContextPtr owner = makeAudioContext(project);
    MenuDesc& menu = owner->amgMenus[0];
    uint64_t result;
};

void expectFaults(const std::vector<FaultCase>& cases)
{
    for (const FaultCase& c : cases) {
        const Read read(c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        EXPECT_TRUE(read.project.logged(c.log)) << c.lines;
    }
}

std::string colorSet(const Read& read, int k)
{
    return toHex(read.menu.colorSets[k], 8);
}

}   // namespace

TEST(AmgMenu, Defaults)
{
    const Read read(FILES);
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(textOf(read.menu.background), u"bg.mpg");
    EXPECT_EQ(textOf(read.menu.subPicture), u"sp.bmp");
    EXPECT_EQ(read.menu.playFrames, 11u);
    for (const uint64_t number :
         { read.menu.menuExtra, read.menu.hasLetterbox, read.menu.hasSubPicture32, read.menu.audioButtonMark,
           read.menu.loopMode, read.menu.loopValue, read.menu.menuType, read.menu.blinkCount, read.menu.blinkDelay,
           read.menu.buttonCount }) {
        EXPECT_EQ(number, 0u);
    }
    for (int k = 0; k < 3; k++) EXPECT_EQ(colorSet(read, k), "00 00 00 00 00 00 00 00");
    EXPECT_TRUE(read.project.logged({}));
}

TEST(AmgMenu, RequiredFiles)
{
    expectFaults({
        { "", 0x840003F6, {} },
        { "subpicture=sp.bmp\n", 0x840003F6, {} },
        { "background=\nsubpicture=sp.bmp\n", 0x840003F6, {} },
        { "background=bg.mpg\n", 0x840003F7, {} },
        { "background=bg.mpg\nsubpicture=\"\"\n", 0x840003F7, {} },
        { "background=,x\nsubpicture=sp.bmp\n", 0x840003EC, {} },
        { "background=bg.mpg\nsubpicture=.\\sp.bmp\n", 0x840003EC, {} },
        { "background=bg.mpg\nsubpicture=:\n", 0x840003EC, {} },
        { "background=\"\tx\"\n", 0x840003EC, {} },   // an end token
        { "background=\"\x01"
          "b\"\n",
          0x840003E8,
          { { 0x840003E8, u"Unknown ASCII character in this string: \x01"
                          u"b" } } },
        { "background=b\x02" + TAIL + "\n",
          0x840003E9,
          { { 0x840003E9, u"Wrong ASCII character during parsing: b\x02" + WIDE_TAIL } } },
        { "background=bg.mpg\nsubpicture=b\x1F" + TAIL + "\n",
          0x840003E9,
          { { 0x840003E9, u"Wrong ASCII character during parsing: b\x1F" + WIDE_TAIL } } },
    });
}

TEST(AmgMenu, Paths)
{
    const Read read("background=C:\\My Music\\a, b (c).mpg\tbehind a TAB\nsubpicture=\" \xC3\x84.bmp\"\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(textOf(read.menu.background), u"C:\\My Music\\a, b (c).mpg");
    EXPECT_EQ(textOf(read.menu.subPicture), u" \u00C4.bmp");
}

// Every page is a still, and the key says so by not being there.
TEST(AmgMenu, AnyTypeIsWrong)
{
    expectFaults({
        { FILES + "type=\n", 0, {} },
        { FILES + "type=still\n", 0x840003FC, {} },
        { FILES + "type=STILL\n", 0x840003FC, {} },
        { FILES + "type=animated\n", 0x840003FC, {} },
        { FILES + "type=type\n", 0x840003FC, {} },
        { FILES + "type=x\n", 0x840003FC, {} },
        { FILES + "type=,\n", 0x840003EC, {} },
        { FILES + "type=\"\tstill\"\n", 0x840003EC, {} },
        { FILES + "type=still\x01" + TAIL + "\n",
          0x840003E9,
          { { 0x840003E9, u"Wrong ASCII character during parsing: still\x01" + WIDE_TAIL } } },
    });
}

// Keys of a DVD-Video menu that are not asked for here: no value of theirs is a fault.
TEST(AmgMenu, KeysOfVideoMenusHaveNoEffect)
{
    const Read read(FILES + "spuletterbox=,\nsubpicture32=,\nspuletterbox32=,\nloop=7\ndelay=7\nmenutype=x\n" +
                    "playtime=x\nblink=x\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.menu.spuLetterbox, nullptr);
    EXPECT_EQ(read.menu.subPicture32, nullptr);
    EXPECT_EQ(read.menu.spuLetterbox32, nullptr);
    EXPECT_EQ(read.menu.hasLetterbox, 0u);
    EXPECT_EQ(read.menu.hasSubPicture32, 0u);
    EXPECT_EQ(read.menu.loopMode, 0u);
    EXPECT_EQ(read.menu.loopValue, 0u);
    EXPECT_EQ(read.menu.menuType, 0u);
    EXPECT_EQ(read.menu.playFrames, 11u);
    EXPECT_EQ(read.menu.blinkCount, 0u);
    EXPECT_TRUE(read.project.logged({}));
}

TEST(AmgMenu, ColorSets)
{
    const Read read(FILES + "colorset1=1,2,3,4,5,6,7,8\ncolorset3=17,,,,,4,15,14,13,12 x\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(colorSet(read, 0), "43 21 87 65 43 21 87 65");
    EXPECT_EQ(colorSet(read, 1), "00 00 00 00 00 00 00 00");
    // 17, 0, 0, 4, of which 17 keeps its low four bits; contrasts 15, 14, 13, 12.
    EXPECT_EQ(colorSet(read, 2), "40 01 CD EF 40 01 CD EF");
}

TEST(AmgMenu, ColorSetFaults)
{
    const std::string shortTail(20, '~');
    const std::u16string wideShortTail(20, u'~');
    expectFaults({
        { FILES + "colorset1=1,:" + shortTail + "\n",
          0x840003EB,
          { { 0x840003EB, u"No integer token for <color p> found in <colorset> in string: " + wideShortTail } } },
        { FILES + "colorset2=1." + shortTail + "\n",
          0x840003ED,
          { { 0x840003ED, u"No comma found after <color bg> in <colorset> in string: " + wideShortTail } } },
        { FILES + "colorset3=1,2,3,4,5,6,7\n",
          0x840003ED,
          { { 0x840003ED, u"No comma found after <transparency e1> in <colorset> in string: " } } },
        { FILES + "colorset3=0x1\n", 0x840003EB, {} },
        { FILES + "colorset3=12345678901\n", 0x840003EB, {} },
        { FILES + "colorset1=1\x03\n", 0x840003E9, { { 0x840003E9, u"Wrong ASCII character during parsing: 1\x03" } } },
        { FILES + "colorset1=1,\x03\n",
          0x840003E8,
          { { 0x840003E8, u"Unknown ASCII character in this string: \x03" } } },
    });
}

TEST(AmgMenu, Buttons)
{
    const std::string button = UP_TO_COMMAND + "BTN_ACTION_JUMP_TK(9,0,0)\n";
    const struct {
        std::string lines;
        uint64_t result, count;
    } cases[] = {
        { "button1=x\n", 0, 0 },
        { "buttons=x\nbutton1=x\n", 0, 0 },
        { "buttons=1\nbutton1=" + button + "button2=x\n", 0, 1 },
        { "buttons=36\n", 0, 36 },
        { "buttons=37\n", 0x840003FB, 0 },
        { "buttons=4294967295\n", 0x840003FB, 0 },
        { "buttons=3\nbutton1=" + button + "button2=x\n", 0x840003EB, 2 },   // counted, then read
    };
    for (const auto& c : cases) {
        const Read read(FILES + c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        EXPECT_EQ(read.menu.buttonCount, c.count) << c.lines;
        EXPECT_TRUE(read.project.logged({})) << c.lines;
    }
    const Read last(FILES + "buttons=36\nbutton36=" + button);
    EXPECT_EQ(last.result, 0u);
    const ButtonDesc nothing = {};
    EXPECT_EQ(memcmp(&last.menu.buttons[34], &nothing, sizeof nothing), 0);
    EXPECT_EQ(last.menu.buttons[35].xStart, 1u);
    EXPECT_EQ(last.menu.buttons[35].xEnd, 2u);
    EXPECT_EQ(last.menu.buttons[35].yStart, 3u);
    EXPECT_EQ(last.menu.buttons[35].yEnd, 4u);
    EXPECT_EQ(last.menu.buttons[35].upLink, 5u);
    EXPECT_EQ(last.menu.buttons[35].downLink, 6u);
    EXPECT_EQ(last.menu.buttons[35].leftLink, 7u);
    EXPECT_EQ(last.menu.buttons[35].rightLink, 8u);
    EXPECT_EQ(last.menu.buttons[35].color, 1u);
    EXPECT_EQ(last.menu.buttons[35].command, 100u);
    EXPECT_EQ(last.menu.buttons[35].param1, 9u);
    EXPECT_EQ(last.menu.buttons[35].autoAction, 0u);
}

TEST(AmgMenu, ButtonFaults)
{
    const std::string key = FILES + "buttons=1\nbutton1=";
    expectFaults({
        { key + "1,:" + TAIL + "\n",
          0x840003EB,
          { { 0x840003EB, u"No integer token for <xend> found in <button> in string: " + WIDE_TAIL } } },
        { key + "1:" + TAIL + "\n",
          0x840003ED,
          { { 0x840003ED, u"No comma found after <xstart> in <button> in string: " + WIDE_TAIL } } },
        { key + UP_TO_COMMAND + ":" + TAIL + "\n",
          0x840003EC,
          { { 0x840003EC, u"No integer token for <command> found in <button> in string: " + WIDE_TAIL } } },
        { key + UP_TO_COMMAND + "X," + TAIL + "\n",
          0x840003EE,
          { { 0x840003EE, u"No opening bracket found after <command> in <button> in string: " + WIDE_TAIL } } },
        { key + UP_TO_COMMAND + "X(1,2,3," + TAIL + "\n",
          0x840003EF,
          { { 0x840003EF, u"No closing bracket found after <command> in <button> in string: " + WIDE_TAIL } } },
        { key + "1,\x01" + TAIL + "\n",
          0x840003E8,
          { { 0x840003E8, u"Unknown ASCII character in this string: \x01" + WIDE_TAIL } } },
        { key + "1,2\x01" + TAIL + "\n",
          0x840003E9,
          { { 0x840003E9, u"Wrong ASCII character during parsing: 2\x01" + WIDE_TAIL } } },
    });
}

// A logged warning; the page is read all the same.
TEST(AmgMenu, AutoActionBeyondOneIsLogged)
{
    const Read read(FILES + "buttons=1\nbutton1=" + UP_TO_COMMAND + "X(1,2,3),7." + TAIL + "\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.menu.buttons[0].autoAction, 7u);
    EXPECT_EQ(read.menu.buttons[0].command, 0u);   // an unknown name
    EXPECT_TRUE(read.project.logged(
        { { 0x840003EC, u"Wrong value for <fAutoAction>, expected 0 (FALSE) or 1 (TRUE) in string: ." + WIDE_TAIL } }));
}

// A sound track command of a video menu counts its streams from 1; here all parameters stay as written.
TEST(AmgMenu, AudioButtonStaysAsWritten)
{
    const Read read(FILES + "buttons=3\nbutton2=" + UP_TO_COMMAND + "BTN_ACTION_SETAUDIO(2,0,0)\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.menu.audioButtonMark, 0u);
    EXPECT_EQ(read.menu.buttons[1].command, 32u);
    EXPECT_EQ(read.menu.buttons[1].param1, 2u);
    EXPECT_EQ(read.menu.buttons[1].param2, 0u);
    EXPECT_EQ(read.menu.buttons[1].param3, 0u);
}

// Of several faults the one that is read first is told: behind each line, the faults of those before it.
TEST(AmgMenu, Order)
{
    const struct {
        std::string line;
        uint64_t result;
    } faults[] = {
        { "background=,\n", 0x840003EC }, { "subpicture=b\x01\n", 0x840003E9 }, { "type=still\n", 0x840003FC },
        { "colorset1=x\n", 0x840003EB },  { "colorset2=1\n", 0x840003ED },      { "buttons=37\n", 0x840003FB },
    };
    for (size_t i = 0; i < std::size(faults); i++) {
        std::string lines;
        if (i > 0) lines += "background=bg.mpg\n";
        if (i > 1) lines += "subpicture=sp.bmp\n";
        for (size_t j = std::size(faults); j-- > i;) lines += faults[j].line;
        EXPECT_EQ(Read(lines).result, faults[i].result) << lines;
    }
}

TEST(AmgMenu, MissingSection)
{
    const ProjectFile project("[AMG_MENU2]\n" + FILES);
    const AudioContextPtr context = makeAudioContext(project);
    EXPECT_EQ(orvReadAmgMenu(&project.run, project.file, u"AMG_MENU1", &context->amgMenus[0]), 0x840003F6u);
    EXPECT_EQ(orvReadAmgMenu(&project.run, project.file, u"AMG_MENU2", &context->amgMenus[1]), 0u);
    EXPECT_EQ(textOf(context->amgMenus[1].background), u"bg.mpg");
}
