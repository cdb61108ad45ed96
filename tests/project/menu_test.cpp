#include "base/result.h"
#include "project/reader.h"
#include "tests/project/project_file.h"

#include <cstring>
#include <iterator>

namespace {

constexpr int64_t PAL = 1, NTSC = 2;
const std::string FILES = "background=bg.mpg\nsubpicture=sp.bmp\n";

// The menu of the section [M] with these lines. A title set holds it, which frees its paths.
struct Read {
    explicit Read(const std::string& lines, int64_t standard = PAL) : project("[M]\n" + lines)
    {
        result = orvReadMenu(&project.run, project.file, u"M", standard, &menu);
    }

    ProjectFile project;
    TitleSetPtr owner = makeTitleSet();
    MenuDesc& menu = owner->menus[0];
    uint64_t result;
};

std::string sets(const Read& read, int k)
{
    return toHex(read.menu.colorSets[k], 8);
}

}   // namespace

TEST(Menu, Defaults)
{
    const Read read(FILES);
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(textOf(read.menu.background), u"bg.mpg");
    EXPECT_EQ(textOf(read.menu.subPicture), u"sp.bmp");
    EXPECT_EQ(read.menu.spuLetterbox, nullptr);
    EXPECT_EQ(read.menu.subPicture32, nullptr);
    EXPECT_EQ(read.menu.spuLetterbox32, nullptr);
    EXPECT_EQ(read.menu.hasLetterbox, 0u);
    EXPECT_EQ(read.menu.hasSubPicture32, 0u);
    EXPECT_EQ(read.menu.audioButtonMark, 0u);
    EXPECT_EQ(read.menu.playFrames, 11u);
    EXPECT_EQ(read.menu.loopMode, 0u);
    EXPECT_EQ(read.menu.loopValue, 0u);
    EXPECT_EQ(read.menu.menuType, 0x80u);
    EXPECT_EQ(read.menu.blinkCount, 0u);
    EXPECT_EQ(read.menu.blinkDelay, 0u);
    EXPECT_EQ(read.menu.buttonCount, 0u);
    for (int k = 0; k < 3; k++) EXPECT_EQ(sets(read, k), "00 00 00 00 00 00 00 00");
    EXPECT_TRUE(read.project.logged({}));
}

TEST(Menu, RequiredFiles)
{
    const struct {
        std::string lines;
        uint64_t result;
    } cases[] = {
        { "subpicture=sp.bmp\n", 0x840003F6 },
        { "background=\nsubpicture=sp.bmp\n", 0x840003F6 },
        { "background=bg.mpg\n", 0x840003F7 },
        { "background=bg.mpg\nsubpicture=\n", 0x840003F7 },
        { "", 0x840003F6 },
        { "background=,\nsubpicture=sp.bmp\n", 0x840003EC },
        { "background=bg.mpg\nsubpicture=.\\sp.bmp\n", 0x840003EC },
        { FILES + "spuletterbox=:x\n", 0x840003EC },
        { FILES + "subpicture32=,x\n", 0x840003EC },
        { FILES + "spuletterbox=a\nsubpicture32=b\nspuletterbox32=,x\n", 0x840003EC },
    };
    for (const auto& c : cases) {
        const Read read(c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        EXPECT_TRUE(read.project.logged({})) << c.lines;
    }
}

TEST(Menu, Paths)
{
    const std::string longest(4095, 'x');
    const struct {
        std::string value;
        std::u16string path;
    } cases[] = {
        { "C:\\My Films\\a, b (c).mpg", u"C:\\My Films\\a, b (c).mpg" },
        { "(a).mpg", u"(a).mpg" },
        { "\" a.mpg\"", u" a.mpg" },
        { "a.mpg\tbehind a TAB", u"a.mpg" },
        { "\xC3\x84rger/\xE4\xB8\xAD.mpg", u"\u00C4rger/\u4E2D.mpg" },
        { longest, toWide(longest) },
        { longest + "y", toWide(longest) },   // a string value is cut at 4095 characters
    };
    for (const auto& c : cases) {
        const Read read("background=" + c.value + "\nsubpicture=sp.bmp\n");
        EXPECT_EQ(read.result, 0u) << c.value;
        EXPECT_EQ(textOf(read.menu.background), c.path) << c.value;
    }
}

TEST(Menu, BadUnitInAPath)
{
    const Read read("background=a\x01.mpg\n");
    EXPECT_EQ(read.result, 0x840003E9u);
    EXPECT_TRUE(read.project.logged({ { 0x840003E9, u"Wrong ASCII character during parsing: a\x01.mpg" } }));
}

TEST(Menu, Letterbox)
{
    const struct {
        std::string lines;
        uint64_t hasLetterbox, hasSubPicture32;
        std::u16string letterbox, subPicture32, letterbox32;
    } cases[] = {
        { "spuletterbox=l\n", 1, 0, u"l", u"(null)", u"(null)" },
        { "subpicture32=s\n", 0, 1, u"(null)", u"s", u"(null)" },
        { "subpicture32=s\nspuletterbox32=,\n", 0, 1, u"(null)", u"s", u"(null)" },   // not fetched
        { "spuletterbox=l\nspuletterbox32=,\n", 1, 0, u"l", u"(null)", u"(null)" },   // not fetched
        { "spuletterbox=l\nsubpicture32=s\n", 1, 0, u"l", u"s", u"(null)" },
        { "spuletterbox=l\nsubpicture32=s\nspuletterbox32=\n", 1, 0, u"l", u"s", u"(null)" },
        { "spuletterbox=l\nsubpicture32=s\nspuletterbox32=t\n", 1, 1, u"l", u"s", u"t" },
        { "spuletterbox=\nsubpicture32=s\nspuletterbox32=t\n", 0, 1, u"(null)", u"s", u"(null)" },
    };
    for (const auto& c : cases) {
        const Read read(FILES + c.lines);
        EXPECT_EQ(read.result, 0u) << c.lines;
        EXPECT_EQ(read.menu.hasLetterbox, c.hasLetterbox) << c.lines;
        EXPECT_EQ(read.menu.hasSubPicture32, c.hasSubPicture32) << c.lines;
        EXPECT_EQ(textOf(read.menu.spuLetterbox), c.letterbox) << c.lines;
        EXPECT_EQ(textOf(read.menu.subPicture32), c.subPicture32) << c.lines;
        EXPECT_EQ(textOf(read.menu.spuLetterbox32), c.letterbox32) << c.lines;
    }
}

TEST(Menu, Loop)
{
    const struct {
        std::string lines;
        uint64_t result, loopMode, loopValue;
    } cases[] = {
        { "type=still\nloop=1\ndelay=5\n", 0, 0, 0 },
        { "loop=1\ndelay=5\n", 0, 0, 0 },
        { "type=\nloop=1\n", 0, 0, 0 },
        { "type=animated\n", 0, 0, 0 },
        { "type=animated\nloop=0\n", 0, 0, 0 },
        { "type=animated\nloop=0\ndelay=5\n", 0, 4, 5 },
        { "type=animated\ndelay=1\n", 0, 4, 1 },
        { "type=ANIMATED\nloop=1\ndelay=5\n", 0, 1, 0 },
        { "type=animated\nloop=2\ndelay=5\n", 0, 2, 2 },
        { "type=animated\nloop=4294967295\n", 0, 2, 4294967295 },
        { "type=STILL\n", 0, 0, 0 },
        { "type=moving\n", 0x840003FC, 0, 0 },
        { "type=,\n", 0x840003EC, 0, 0 },
    };
    for (const auto& c : cases) {
        const Read read(FILES + c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        EXPECT_EQ(read.menu.loopMode, c.loopMode) << c.lines;
        EXPECT_EQ(read.menu.loopValue, c.loopValue) << c.lines;
        EXPECT_TRUE(read.project.logged({})) << c.lines;
    }
}

TEST(Menu, MenuType)
{
    const struct {
        std::string value;
        uint64_t result, menuType;
    } cases[] = {
        { "", 0, 0x80 },          { "title", 0, 0x80 },           { "root", 0, 0x80 },
        { "subpic", 0, 0x40 },    { "audio", 0, 0x20 },           { "angle", 0, 0x10 },
        { "chapter", 0, 0x08 },   { "CHAPTER", 0, 0x08 },         { "Root", 0, 0x80 },
        { "ptt", 0x84000407, 0 }, { "root menu", 0x84000407, 0 }, { ":root", 0x840003EC, 0 },
    };
    for (const auto& c : cases) {
        const Read read(FILES + "menutype=" + c.value + "\n");
        EXPECT_EQ(read.result, c.result) << c.value;
        EXPECT_EQ(read.menu.menuType, c.menuType) << c.value;
        EXPECT_TRUE(read.project.logged({})) << c.value;
    }
}

TEST(Menu, ColorSets)
{
    // bg p e1 e2, then their contrasts: bytes e2e1, p bg, and so again, then all four once more.
    const Read read(FILES +
                    "colorset1=1,2,3,4,5,6,7,8\ncolorset2=17,2,3,4,5,6,7,8\ncolorset3=15,14,13,12,11,10,9,24 x\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(sets(read, 0), "43 21 87 65 43 21 87 65");
    EXPECT_EQ(sets(read, 1), "43 21 87 65 43 21 87 65");   // 17 keeps its low four bits
    EXPECT_EQ(sets(read, 2), "CD EF 89 AB CD EF 89 AB");
    const Read sparse(FILES + "colorset3=,,,,,,4,,,,,,,9\n");
    EXPECT_EQ(sparse.result, 0u);
    EXPECT_EQ(sets(sparse, 0), "00 00 00 00 00 00 00 00");
    EXPECT_EQ(sets(sparse, 2), "40 00 90 00 40 00 90 00");
}

// Each number in turn is missing, then each comma, with the name that the log gives it. The key keeps 31 characters.
TEST(Menu, ColorSetFaults)
{
    const std::u16string names[] = { u"color bg",        u"color p",        u"color e1",        u"color e2",
                                     u"transparency bg", u"transparency p", u"transparency e1", u"transparency e2" };
    std::string before;
    for (const std::u16string& name : names) {
        const std::string key = "colorset2=" + before;
        const std::string filler(30 - before.size(), '~');
        const Read number(FILES + key + "." + filler + "\n");
        EXPECT_EQ(number.result, 0x840003EBu) << toUtf8(name);
        EXPECT_TRUE(
            number.project.logged({ { 0x840003EB, u"No integer token for <" + name +
                                                      u"> found in <colorset> in string: " + toWide(filler) } }));
        if (name == names[7]) break;
        const std::string shorter(29 - before.size(), '~');
        const Read comma(FILES + key + "1:" + shorter + "\n");
        EXPECT_EQ(comma.result, 0x840003EDu) << toUtf8(name);
        EXPECT_TRUE(comma.project.logged(
            { { 0x840003ED, u"No comma found after <" + name + u"> in <colorset> in string: " + toWide(shorter) } }));
        const Read letter(FILES + key + "F,\n");
        EXPECT_EQ(letter.result, 0x840003EBu) << toUtf8(name);
        EXPECT_TRUE(letter.project.logged({}));
        before += "1,";
    }
}

TEST(Menu, ColorSetIsCutAt31Characters)
{
    const Read fits(FILES + "colorset1=1,2,3,4,5,6,7,               15\n");
    EXPECT_EQ(fits.result, 0u);
    EXPECT_EQ(sets(fits, 0), "43 21 F7 65 43 21 F7 65");
    const Read cut(FILES + "colorset1=1,2,3,4,5,6,7,                15\n");
    EXPECT_EQ(cut.result, 0u);
    EXPECT_EQ(sets(cut, 0), "43 21 17 65 43 21 17 65");
}

TEST(Menu, Buttons)
{
    const std::string b = "1,2,3,4,5,6,7,8,1,BTN_ACTION_LINKPGCN(9,0,0)\n";
    const struct {
        std::string lines;
        uint64_t result, count;
    } cases[] = {
        { "buttons=0\nbutton1=x\n", 0, 0 },
        { "buttons=1\nbutton1=" + b + "button2=x\n", 0, 1 },
        { "buttons=36\n", 0, 36 },
        { "buttons=37\n", 0x840003FB, 0 },
        { "buttons=4294967295\n", 0x840003FB, 0 },
        { "buttons=3\nbutton1=" + b + "button2=x\n", 0x840003EB, 2 },   // counted, then read
    };
    for (const auto& c : cases) {
        const Read read(FILES + c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        EXPECT_EQ(read.menu.buttonCount, c.count) << c.lines;
        EXPECT_TRUE(read.project.logged({})) << c.lines;
    }
    const Read last(FILES + "buttons=36\nbutton36=" + b);
    EXPECT_EQ(last.result, 0u);
    EXPECT_EQ(last.menu.buttons[35].param1, 9u);
    EXPECT_EQ(last.menu.buttons[34].param1, 0u);
}

TEST(Menu, MissingButtonCounts)
{
    const Read read(FILES + "buttons=2\nbutton2=1,2,3,4,5,6,7,8,1,BTN_ACTION_LINKPGCN(9,0,0)\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.menu.buttonCount, 2u);
    const ButtonDesc nothing = {};
    EXPECT_EQ(memcmp(&read.menu.buttons[0], &nothing, sizeof nothing), 0);
    EXPECT_EQ(read.menu.buttons[1].command, 10u);
    EXPECT_EQ(read.menu.buttons[1].param1, 9u);
}

TEST(Menu, ButtonIsCutAt127Characters)
{
    const std::string start = "1,2,3,4,5,6,7,8,1,BTN_ACTION_LINKPGCN(9,0,0)";
    const Read fits(FILES + "buttons=1\nbutton1=" + start + std::string(125 - start.size(), ' ') + ",1\n");
    EXPECT_EQ(fits.result, 0u);
    EXPECT_EQ(fits.menu.buttons[0].autoAction, 1u);
    const Read cut(FILES + "buttons=1\nbutton1=" + start + std::string(126 - start.size(), ' ') + ",1\n");
    EXPECT_EQ(cut.result, 0x840003EBu);
    EXPECT_TRUE(
        cut.project.logged({ { 0x840003EB, u"No integer token for <fAutoAction> found in <button> in string: " } }));
}

TEST(Menu, AudioButton)
{
    const struct {
        std::string lines;
        uint64_t param1, param2, param3;
    } cases[] = {
        { "button2=,,,,,,,,,,,,,,,,,,BTN_ACTION_SETAUDIO(2,0,0)\n", 1, 3, 1 },
        { "button2=,,,,,,,,,,,,,,,,,,BTN_ACTION_SETAUDIO(0,0,0)\n", 0, 3, 1 },
        { "button2=,,,,,,,,,,,,,,,,,,BTN_ACTION_SETAUDIO(1,2,0)\n", 0, 2, 1 },
        { "type=animated\nloop=1\nbutton2=,,,,,,,,,,,,,,,,,,BTN_ACTION_SETAUDIO(8,1,5)\n", 7, 1, 0 },
        { "type=animated\nloop=9\nbutton2=,,,,,,,,,,,,,,,,,,BTN_ACTION_SETAUDIO(8,1,5)\n", 7, 1, 0 },
        { "type=animated\ndelay=9\nbutton2=,,,,,,,,,,,,,,,,,,BTN_ACTION_SETAUDIO(8,1,5)\n", 7, 1, 0 },
        { "type=animated\nbutton2=,,,,,,,,,,,,,,,,,,BTN_ACTION_SETAUDIO(8,1,0)\n", 7, 1, 1 },
    };
    for (const auto& c : cases) {
        const Read read(FILES + "buttons=3\n" + c.lines);
        EXPECT_EQ(read.result, 0u) << c.lines;
        EXPECT_EQ(read.menu.audioButtonMark, 3u) << c.lines;
        EXPECT_EQ(read.menu.buttons[1].command, 32u) << c.lines;
        EXPECT_EQ(read.menu.buttons[1].param1, c.param1) << c.lines;
        EXPECT_EQ(read.menu.buttons[1].param2, c.param2) << c.lines;
        EXPECT_EQ(read.menu.buttons[1].param3, c.param3) << c.lines;
    }
    const Read other(FILES + "buttons=1\nbutton1=,,,,,,,,,,,,,,,,,,BTN_ACTION_JUMP_AMENU(2,0,0)\n");
    EXPECT_EQ(other.menu.audioButtonMark, 0u);
    EXPECT_EQ(other.menu.buttons[0].param1, 2u);
    EXPECT_EQ(other.menu.buttons[0].param2, 0u);
    EXPECT_EQ(other.menu.buttons[0].param3, 0u);
}

TEST(Menu, PlayTime)
{
    const std::u16string place = u"<playtime> in string: ";
    const std::u16string f(20, u'~');
    const std::string t(20, '~');
    const struct {
        std::string value;
        uint64_t result, pal, ntsc;
        std::vector<LogEntry> log;
    } cases[] = {
        { "00:00:10.05", 0, 255, 305, {} },
        { "", 0, 11, 11, {} },
        { "01:02:03.04", 0, 93079, 111694, {} },   // 3723 seconds
        { "0:0:0.0", 0, 0, 0, {} },
        { "0:0:1.99", 0, 124, 129, {} },   // frames beyond the rate add on
        { "0:90:0.0", 0, 135000, 162000, {} },
        { "1 : 0 : 0 . 1 rest", 0, 90001, 108001, {} },
        { ",:,:,.,", 0, 0, 0, {} },
        { "9999999999:0:0.0", 0, 899999999910000, 1079999999892000, {} },
        { "x:0:0.0", 0x840003EB, 11, 11, {} },
        { ".0:0:0.0" + t,
          0x840003EB,
          11,
          11,
          { { 0x840003EB, u"No integer token for <hour> found in " + place + u"0:0:0.0" + f } } },
        { "1.0:0.0" + t,
          0x84000405,
          11,
          11,
          { { 0x84000405, u"No colon found after <hour> in " + place + u"0:0.0" + f } } },
        { "1:." + t, 0x840003EB, 11, 11, { { 0x840003EB, u"No integer token for <minute> found in " + place + f } } },
        { "1:2,3.4" + t,
          0x84000405,
          11,
          11,
          { { 0x84000405, u"No colon found after <minute> in " + place + u"3.4" + f } } },
        { "1:2:(" + t, 0x840003EB, 11, 11, { { 0x840003EB, u"No integer token for <second> found in " + place + f } } },
        { "1:2:3:" + t, 0x840003F0, 11, 11, { { 0x840003F0, u"No dot found after <second> in " + place + f } } },
        { "1:2:3", 0x840003F0, 11, 11, { { 0x840003F0, u"No dot found after <second> in " + place } } },
        { "1:2:3.:" + t,
          0x840003EB,
          11,
          11,
          { { 0x840003EB, u"No integer token for <frame> found in " + place + f } } },
        { "1:2:3.", 0x840003EB, 11, 11, { { 0x840003EB, u"No integer token for <frame> found in " + place } } },
        { "0:0:0." + std::string(23, ' ') + "12", 0, 12, 12, {} },
        { "0:0:0." + std::string(23, ' ') + "123", 0, 12, 12, {} },   // the 32nd character is cut off
    };
    for (const auto& c : cases) {
        const Read pal(FILES + "playtime=" + c.value + "\n", PAL);
        EXPECT_EQ(pal.result, c.result) << c.value;
        EXPECT_EQ(pal.menu.playFrames, c.pal) << c.value;
        EXPECT_TRUE(pal.project.logged(c.log)) << c.value;
        const Read ntsc(FILES + "playtime=" + c.value + "\n", NTSC);
        EXPECT_EQ(ntsc.result, c.result) << c.value;
        EXPECT_EQ(ntsc.menu.playFrames, c.ntsc) << c.value;
    }
}

TEST(Menu, Blink)
{
    const std::u16string f(40, u'~');
    const std::string t(40, '~');
    const struct {
        std::string value;
        uint64_t result, count, delay;
        std::vector<LogEntry> log;
    } cases[] = {
        { "", 0, 0, 0, {} },
        { "5", 0, 5, 0, {} },
        { "16", 0, 16, 0, {} },
        { "17", 0, 16, 0, {} },
        { "20", 0, 16, 0, {} },
        { "9999999999", 0, 16, 0, {} },
        { "5,100", 0, 5, 100, {} },
        { "5,101", 0, 100, 101, {} },
        { "20,9999999999", 0, 100, 9999999999, {} },
        { "5,,", 0, 5, 0, {} },
        { ",,7", 0, 0, 7, {} },
        { "5 7", 0, 5, 0, {} },
        { "5.7", 0, 5, 0, {} },
        { "5\t,7", 0, 5, 0, {} },
        { "5 \x01", 0, 5, 0, { { 0x840003E8, u"Unknown ASCII character in this string:  \x01" } } },
        { "5 a\x01", 0, 5, 0, { { 0x840003E9, u"Wrong ASCII character during parsing:  a\x01" } } },
        { "fast", 0x840003EB, 0, 0, {} },
        { "5,slow", 0x840003EB, 5, 0, {} },
        { "." + t, 0x840003EB, 0, 0, { { 0x840003EB, u"No blink count in string: " + f } } },
        { "5,:" + t, 0x840003EB, 5, 0, { { 0x840003EB, u"No blink delay found in string: " + f } } },
        { "5,", 0x840003EB, 5, 0, { { 0x840003EB, u"No blink delay found in string: " } } },
        { "5," + std::string(59, ' ') + "12", 0, 5, 12, {} },
        { "5," + std::string(59, ' ') + "123", 0, 5, 12, {} },   // the 64th character is cut off
    };
    for (const auto& c : cases) {
        const Read read(FILES + "blink=" + c.value + "\n");
        EXPECT_EQ(read.result, c.result) << c.value;
        EXPECT_EQ(read.menu.blinkCount, c.count) << c.value;
        EXPECT_EQ(read.menu.blinkDelay, c.delay) << c.value;
        EXPECT_TRUE(read.project.logged(c.log)) << c.value;
    }
}

// Of several faults the one that is read first is told.
TEST(Menu, Order)
{
    const struct {
        std::string line;
        uint64_t result;
    } faults[] = {
        { "type=x\n", 0x840003FC },     { "menutype=x\n", 0x84000407 }, { "colorset1=x\n", 0x840003EB },
        { "buttons=37\n", 0x840003FB }, { "playtime=1\n", 0x84000405 }, { "blink=x\n", 0x840003EB },
    };
    std::string lines = FILES;
    for (size_t i = std::size(faults); i-- > 0;) {
        lines += faults[i].line;
        EXPECT_EQ(Read(lines).result, faults[i].result) << lines;
    }
    EXPECT_EQ(Read("background=,\ntype=x\n").result, 0x840003ECu);
}
