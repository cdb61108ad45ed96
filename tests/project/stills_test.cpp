#include "project/audio_reader.h"
#include "project/reader.h"
#include "tests/project/audio_project.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr int64_t PAL = 1, NTSC = 2;
const std::string STILL = "background=bg.mpg\n";
const std::string UP_TO_COMMAND = "1,2,3,4,5,6,7,8,1,";
const std::string TAIL(60, '~');   // behind a fault, so that the first half of a log entry shows the whole message
const std::u16string WIDE_TAIL(60, u'~');

// The stills of a project.
struct Read {
    explicit Read(const std::string& text, int64_t standard = PAL) : project(text)
    {
        result = orvReadStills(&project.run, project.file, standard, &stills);
    }

    ProjectFile project;
    AudioContextPtr owner = makeAudioContext(project);
    AsvsDesc& stills = owner->asvs;
    uint64_t result;
};

// Project text with one set of attributes of these lines, with one still of these lines.
std::string withAttributes(const std::string& lines)
{
    return "[ASVS]\nattributes=1\n[ASVU_ATTRIBUTE1]\n" + lines;
}

std::string withStill(const std::string& lines)
{
    return "[ASVS]\nstills=1\n[ASV01]\n" + lines;
}

typedef std::vector<uint64_t> Fields;

// mpegVersion, isPal, aspectRatio, displayMode, resolution, videoFlags
Fields fields(const StillAttributes& a)
{
    return { a.mpegVersion, a.isPal, a.aspectRatio, a.displayMode, a.resolution, a.videoFlags };
}

const Fields PAL_PRESETS = { 1, 1, 0, 3, 0, 3 }, NTSC_PRESETS = { 1, 0, 0, 3, 0, 3 }, UNTOUCHED = { 0, 0, 0, 0, 0, 0 };

std::string colorSet(const StillDesc& still, int k)
{
    return toHex(still.colorSets[k], 8);
}

void expectFaults(const std::vector<FaultCase>& cases)
{
    for (const FaultCase& c : cases) {
        const Read read(c.lines);
        EXPECT_EQ(read.result, c.result) << c.lines;
        EXPECT_TRUE(read.project.logged(c.log)) << c.lines;
    }
}

// One key of an attribute section: a value, the result and the field that it sets.
struct AttributeCase {
    std::string value;
    uint64_t result, field;
};

void expectAttribute(const std::string& key, uint64_t StillAttributes::*field, const std::vector<AttributeCase>& cases)
{
    for (const AttributeCase& c : cases) {
        for (const int64_t standard : { PAL, NTSC }) {
            const Read read(withAttributes(key + "=" + c.value + "\n"), standard);
            EXPECT_EQ(read.result, c.result) << key << "=" << c.value;
            EXPECT_TRUE(read.project.logged({})) << key << "=" << c.value;
            if (c.result) continue;
            EXPECT_EQ(read.stills.attributes[0].*field, c.field) << key << "=" << c.value;
        }
    }
}

}   // namespace

TEST(Stills, NoKeys)
{
    for (const int64_t standard : { PAL, NTSC }) {
        const Read read("[ASVS]\nx=1\n", standard);
        EXPECT_EQ(read.result, 0u);
        EXPECT_EQ(read.stills.attributeCount, 1u);
        EXPECT_EQ(fields(read.stills.attributes[0]), standard == PAL ? PAL_PRESETS : NTSC_PRESETS);
        for (int k = 1; k < 4; k++) EXPECT_EQ(fields(read.stills.attributes[k]), UNTOUCHED) << k;
        EXPECT_EQ(read.stills.stillCount, 0u);
        for (const StillDesc* still : read.stills.stills) EXPECT_EQ(still, nullptr);
        for (const uint32_t color : read.stills.colorTable) EXPECT_EQ(color & 0xFFFFFF, 0x808010u);   // black
        EXPECT_TRUE(read.project.logged({}));
    }
}

// Without the key the sections of attributes are not looked at.
TEST(Stills, NoAttributesLeaveThePresets)
{
    for (const char* key : { "", "attributes=0\n", "attributes=x\n" }) {
        const Read read("[ASVS]\n" + std::string(key) + "[ASVU_ATTRIBUTE1]\nmpegtype=x\nvideomode=x\n");
        EXPECT_EQ(read.result, 0u) << key;
        EXPECT_EQ(read.stills.attributeCount, 1u) << key;
        EXPECT_EQ(fields(read.stills.attributes[0]), PAL_PRESETS) << key;
    }
}

TEST(Stills, Limits)
{
    std::string most = "[ASVS]\nstills=99\nattributes=4\n";
    for (int i = 1; i <= 99; i++) {
        most += (i < 10 ? "[ASV0" : "[ASV") + std::to_string(i) + "]\nbackground=" + std::to_string(i) + "\n";
    }
    const Read read(most);
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.stills.attributeCount, 4u);
    EXPECT_EQ(read.stills.stillCount, 99u);
    for (int i = 1; i <= 99; i++) {
        ASSERT_NE(read.stills.stills[i - 1], nullptr) << i;
        EXPECT_EQ(textOf(read.stills.stills[i - 1]->background), toWide(std::to_string(i)));
    }
    expectFaults({
        { "[ASVS]\nstills=100\n", 0x84001788, {} },
        { "[ASVS]\nstills=4294967295\n", 0x84001788, {} },
        { "[ASVS]\nattributes=5\n", 0x84001789, {} },
        { "[ASVS]\nattributes=4294967295\n", 0x84001789, {} },
        { "[ASVS]\nstills=4294967296\nattributes=4294967296\n", 0, {} },   // modulo 2^32
    });
}

TEST(Stills, EachAttributeSection)
{
    const Read read("[ASVS]\nattributes=4\n"
                    "[ASVU_ATTRIBUTE1]\nmpegtype=mpeg1\n"
                    "[ASVU_ATTRIBUTE2]\nvideomode=16:9\n"
                    "[ASVU_ATTRIBUTE02]\nmpegtype=mpeg1\n"   // no such form
                    "[ASVU_ATTRIBUTE4]\nmpegtype=MPEG1\nvideomode=16:9\nresolution=352x288\n",
                    NTSC);
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.stills.attributeCount, 4u);
    EXPECT_EQ(fields(read.stills.attributes[0]), Fields({ 0, 0, 0, 3, 0, 3 }));
    EXPECT_EQ(fields(read.stills.attributes[1]), Fields({ 1, 0, 3, 3, 0, 3 }));
    EXPECT_EQ(fields(read.stills.attributes[2]), NTSC_PRESETS);   // no section
    EXPECT_EQ(fields(read.stills.attributes[3]), Fields({ 0, 0, 3, 3, 3, 3 }));

    const Read two("[ASVS]\nattributes=2\n[ASVU_ATTRIBUTE3]\nmpegtype=x\n");
    EXPECT_EQ(two.result, 0u);
    EXPECT_EQ(two.stills.attributeCount, 2u);
    EXPECT_EQ(fields(two.stills.attributes[1]), PAL_PRESETS);
    EXPECT_EQ(fields(two.stills.attributes[2]), UNTOUCHED);
}

// No tokens here: what would be a fault of a string value is a wrong word like any other, and nothing is logged.
TEST(Stills, MpegType)
{
    expectAttribute("mpegtype", &StillAttributes::mpegVersion,
                    { { "", 0, 1 },
                      { "mpeg1", 0, 0 },
                      { "mpeg2", 0, 1 },
                      { "MPEG1", 0, 0 },
                      { "Mpeg2", 0, 1 },
                      { " 'mpeg1' ", 0, 0 },
                      { "mpeg", 0x840003FF, 0 },
                      { "mpeg12", 0x840003FF, 0 },
                      { "mpeg 1", 0x840003FF, 0 },
                      { ",mpeg1", 0x840003FF, 0 },
                      { "mpeg1\tx", 0x840003FF, 0 },
                      { "\"\tmpeg1\"", 0x840003FF, 0 },
                      { "mpeg1\x01", 0x840003FF, 0 },
                      { "\"mpeg1 \"", 0x840003FF, 0 },
                      { "mpeg1" + std::string(40, ' ') + "x", 0x840003FF, 0 } });
}

TEST(Stills, VideoMode)
{
    expectAttribute("videomode", &StillAttributes::aspectRatio,
                    { { "", 0, 0 },
                      { "4:3", 0, 0 },
                      { "16:9", 0, 3 },
                      { "\"16:9\"", 0, 3 },
                      { "16:9x", 0x840003F5, 0 },
                      { "16 : 9", 0x840003F5, 0 },
                      { "14:9", 0x840003F5, 0 },
                      { ":", 0x840003F5, 0 },
                      { "4:3\t", 0, 0 },   // a TAB at the end is a blank around the value
                      { "4:3\tx", 0x840003F5, 0 },
                      { "16:9\x02", 0x840003F5, 0 } });
}

// Sizes of both standards pass in either, and what is no size is the full one.
TEST(Stills, ResolutionTakesAnything)
{
    expectAttribute("resolution", &StillAttributes::resolution,
                    { { "", 0, 0 },
                      { "720x576", 0, 0 },
                      { "720x480", 0, 0 },
                      { "704x576", 0, 1 },
                      { "704x480", 0, 1 },
                      { "352x576", 0, 2 },
                      { "352x480", 0, 2 },
                      { "352x288", 0, 3 },
                      { "352x240", 0, 3 },
                      { "704X576", 0, 1 },
                      { "352X240", 0, 3 },
                      { "704", 0, 0 },
                      { "704x5760", 0, 0 },
                      { ",x", 0, 0 },
                      { "352x288\x01", 0, 0 },
                      { "352 x 288", 0, 0 },
                      { "704x576\tx", 0, 0 },
                      { "huge", 0, 0 } });
}

TEST(Stills, ColorTable)
{
    // Y in the lowest byte, then Cr, then Cb.
    const Read read("[ASVS]\ncolortable1=255,0,0\ncolortable2=255,255,255\ncolortable16=,,,,7 x\ncolortable17=x\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.stills.colorTable[0] & 0xFFFFFF, 0x5BF051u);    // red: 81, 240, 91
    EXPECT_EQ(read.stills.colorTable[1] & 0xFFFFFF, 0x8080EBu);    // white: 235, 128, 128
    EXPECT_EQ(read.stills.colorTable[14] & 0xFFFFFF, 0x808010u);   // black: 16, 128, 128
    EXPECT_EQ(read.stills.colorTable[15] & 0xFFFFFF, 0x838010u);   // 0, 0, 7: 16, 128, 128 + trunc(3.07)

    // The same conversion as in the attributes of a menu.
    const ProjectFile menu("[AMG_MENU]\ncolortable1=1,2,3\ncolortable2=255,0,0\n");
    AttributeSet attributes = {};
    ASSERT_EQ(orvReadAttributes(&menu.run, menu.file, u"AMG_MENU", PAL, &attributes), 0u);
    const Read same("[ASVS]\ncolortable1=1,2,3\ncolortable2=255,0,0\n");
    EXPECT_EQ(memcmp(attributes.colorTable, same.stills.colorTable, sizeof attributes.colorTable), 0);
}

TEST(Stills, ColorTableFaults)
{
    const std::string shortTail(20, '~');
    const std::u16string wideShortTail(20, u'~');
    expectFaults({
        { "[ASVS]\ncolortable1=255\n",
          0x840003ED,
          { { 0x840003ED, u"No comma found after <red> in <colortable> in string: " } } },
        { "[ASVS]\ncolortable16=1,2:" + shortTail + "\n",
          0x840003ED,
          { { 0x840003ED, u"No comma found after <green> in <colortable> in string: " + wideShortTail } } },
        { "[ASVS]\ncolortable9=1,2,." + shortTail + "\n",
          0x840003EB,
          { { 0x840003EB, u"No integer token for <blue> found in <colortable> in string: " + wideShortTail } } },
        { "[ASVS]\ncolortable2=x\n", 0x840003EB, {} },
        { "[ASVS]\ncolortable2=1,2,255\ncolortable3=256,0,0\n", 0x840003F9, {} },
        { "[ASVS]\ncolortable3=0,256,0\n", 0x840003F9, {} },
        { "[ASVS]\ncolortable3=0,0,9999999999\n", 0x840003F9, {} },
        { "[ASVS]\ncolortable3=1\x01\n",
          0x840003E9,
          { { 0x840003E9, u"Wrong ASCII character during parsing: 1\x01" } } },
    });
}

TEST(Stills, StillDefaults)
{
    const Read read(withStill(STILL));
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.stills.stillCount, 1u);
    ASSERT_NE(read.stills.stills[0], nullptr);
    const StillDesc& still = *read.stills.stills[0];
    EXPECT_EQ(textOf(still.background), u"bg.mpg");
    EXPECT_EQ(still.subPicture, nullptr);
    EXPECT_EQ(still.hasSubPicture, 0u);
    EXPECT_EQ(still.startSector, 0u);
    EXPECT_EQ(still.buttonCount, 0u);
    for (int k = 0; k < 3; k++) EXPECT_EQ(colorSet(still, k), "00 00 00 00 00 00 00 00");
    EXPECT_EQ(read.stills.stills[1], nullptr);
    EXPECT_TRUE(read.project.logged({}));
}

TEST(Stills, Files)
{
    const struct {
        std::string lines;
        std::u16string background, subPicture;
        uint64_t hasSubPicture;
    } cases[] = {
        { "background=a, (b).mpg\nsubpicture=c.bmp\n", u"a, (b).mpg", u"c.bmp", 1 },
        { "background=a\tb\nsubpicture=\n", u"a", u"(null)", 0 },
        { "background=\xC3\xA9\nsubpicture=\"\"\n", u"\u00E9", u"(null)", 0 },
        { "background=" + std::string(4096, 'x') + "\nsubpicture=s\tt\n", std::u16string(4095, u'x'), u"s", 1 },
    };
    for (const auto& c : cases) {
        const Read read(withStill(c.lines));
        EXPECT_EQ(read.result, 0u) << c.lines;
        ASSERT_NE(read.stills.stills[0], nullptr) << c.lines;
        EXPECT_EQ(textOf(read.stills.stills[0]->background), c.background) << c.lines;
        EXPECT_EQ(textOf(read.stills.stills[0]->subPicture), c.subPicture) << c.lines;
        EXPECT_EQ(read.stills.stills[0]->hasSubPicture, c.hasSubPicture) << c.lines;
    }
    expectFaults({
        { withStill(""), 0x840003F6, {} },
        { withStill("subpicture=a\n"), 0x840003F6, {} },
        { withStill("background=\n"), 0x840003F6, {} },
        { "[ASVS]\nstills=1\n[ASV1]\nbackground=a\n", 0x840003F6, {} },   // two digits
        { withStill("background=:a\n"), 0x840003EC, {} },
        { withStill(STILL + "subpicture=,\n"), 0x840003EC, {} },
        { withStill("background=a\x01" + TAIL + "\n"),
          0x840003E9,
          { { 0x840003E9, u"Wrong ASCII character during parsing: a\x01" + WIDE_TAIL } } },
        { withStill(STILL + "subpicture=\"\x01" + TAIL + "\"\n"),
          0x840003E8,
          { { 0x840003E8, u"Unknown ASCII character in this string: \x01" + WIDE_TAIL } } },
    });
}

TEST(Stills, ColorSetsAndButtons)
{
    const Read read(withStill(STILL + "colorset2=1,2,3,4,5,6,7,8\nbuttons=3\nbutton2=" + UP_TO_COMMAND +
                              "BTN_ACTION_SETAUDIO(2,0,0)\nbutton3=" + UP_TO_COMMAND +
                              "BTN_ACTION_LINK_NDLIST(1,2,3),1\n"));
    EXPECT_EQ(read.result, 0u);
    ASSERT_NE(read.stills.stills[0], nullptr);
    const StillDesc& still = *read.stills.stills[0];
    EXPECT_EQ(colorSet(still, 0), "00 00 00 00 00 00 00 00");
    EXPECT_EQ(colorSet(still, 1), "43 21 87 65 43 21 87 65");
    EXPECT_EQ(still.buttonCount, 3u);
    const ButtonDesc nothing = {};
    EXPECT_EQ(memcmp(&still.buttons[0], &nothing, sizeof nothing), 0);   // missing, and counted
    EXPECT_EQ(still.buttons[1].command, 32u);
    EXPECT_EQ(still.buttons[1].param1, 2u);   // as written
    EXPECT_EQ(still.buttons[1].param2, 0u);
    EXPECT_EQ(still.buttons[1].param3, 0u);
    EXPECT_EQ(still.buttons[2].command, 101u);
    EXPECT_EQ(still.buttons[2].param3, 3u);
    EXPECT_EQ(still.buttons[2].autoAction, 1u);
}

TEST(Stills, MostButtons)
{
    const Read read(withStill(STILL + "buttons=36\nbutton36=" + UP_TO_COMMAND + "X(1,2,9)\nbutton37=x\n"));
    EXPECT_EQ(read.result, 0u);
    ASSERT_NE(read.stills.stills[0], nullptr);
    EXPECT_EQ(read.stills.stills[0]->buttonCount, 36u);
    EXPECT_EQ(read.stills.stills[0]->buttons[35].param3, 9u);
}

TEST(Stills, ButtonAndColorSetFaults)
{
    const std::string button = STILL + "buttons=1\nbutton1=";
    expectFaults({
        { withStill(STILL + "buttons=37\n"), 0x840003FB, {} },
        { withStill(STILL + "buttons=4294967295\n"), 0x840003FB, {} },
        { withStill(STILL + "colorset1=1,x\n"), 0x840003EB, {} },
        { withStill(STILL + "colorset3=1,2,3,4,5,6,7\n"),
          0x840003ED,
          { { 0x840003ED, u"No comma found after <transparency e1> in <colorset> in string: " } } },
        { withStill(button + "1,2,3,(" + TAIL + "\n"),
          0x840003EB,
          { { 0x840003EB, u"No integer token for <yend> found in <button> in string: " + WIDE_TAIL } } },
        { withStill(button + "1,2,3,4,5,6,7,8,1." + TAIL + "\n"),
          0x840003ED,
          { { 0x840003ED, u"No comma found after <color> in <button> in string: " + WIDE_TAIL } } },
        { withStill(button + UP_TO_COMMAND + "(1,2,3)" + TAIL + "\n"),
          0x840003EC,
          { { 0x840003EC, u"No integer token for <command> found in <button> in string: 1,2,3)" + WIDE_TAIL } } },
        { withStill(button + UP_TO_COMMAND + "X:" + TAIL + "\n"),
          0x840003EE,
          { { 0x840003EE, u"No opening bracket found after <command> in <button> in string: " + WIDE_TAIL } } },
        { withStill(button + UP_TO_COMMAND + "X(1,2,3:" + TAIL + "\n"),
          0x840003EF,
          { { 0x840003EF, u"No closing bracket found after <command> in <button> in string: " + WIDE_TAIL } } },
    });
}

// A still is kept once all of it is read; those before it stay, and all of them are freed with the root.
TEST(Stills, FaultInALaterStill)
{
    const Read read("[ASVS]\nstills=3\n[ASV01]\nbackground=a\nsubpicture=b\n[ASV02]\nbackground=c\nsubpicture=d\n"
                    "buttons=1\nbutton1=x\n[ASV03]\nbackground=e\n");
    EXPECT_EQ(read.result, 0x840003EBu);
    ASSERT_NE(read.stills.stills[0], nullptr);
    EXPECT_EQ(textOf(read.stills.stills[0]->subPicture), u"b");
    EXPECT_EQ(read.stills.stills[1], nullptr);
    EXPECT_EQ(read.stills.stills[2], nullptr);
}

// Of several faults the one that is read first is told.
TEST(Stills, Order)
{
    const std::string attributes = "attributes=2\n", sets = "[ASVU_ATTRIBUTE1]\n", second = "[ASVU_ATTRIBUTE2]\n";
    const struct {
        std::string text;
        uint64_t result;
    } cases[] = {
        { "[ASVS]\ncolortable1=x\nattributes=5\nstills=100\n", 0x84001788 },
        { "[ASVS]\ncolortable1=x\nattributes=5\nstills=1\n", 0x84001789 },
        { "[ASVS]\ncolortable2=x\ncolortable1=1\nstills=1\n" + attributes + sets + "mpegtype=x\n", 0x840003ED },
        { "[ASVS]\nstills=1\n" + attributes + sets + "videomode=x\nmpegtype=x\n", 0x840003FF },
        { "[ASVS]\nstills=1\n" + attributes + sets + "videomode=x\n" + second + "mpegtype=x\n", 0x840003F5 },
        { "[ASVS]\nstills=1\n" + attributes + second + "mpegtype=x\n[ASV01]\nsubpicture=,\n", 0x840003FF },
        { withStill("subpicture=,\ncolorset1=x\nbuttons=37\n"), 0x840003F6 },
        { withStill(STILL + "subpicture=,\ncolorset1=x\nbuttons=37\n"), 0x840003EC },
        { withStill(STILL + "buttons=37\ncolorset3=1\n"), 0x840003ED },
        { withStill(STILL + "buttons=1\nbutton1=1\ncolorset3=x\n"), 0x840003EB },
        { "[ASVS]\nstills=2\n[ASV02]\nbackground=,\n[ASV01]\nbackground=a\nbuttons=37\n", 0x840003FB },
    };
    for (const auto& c : cases) EXPECT_EQ(Read(c.text).result, c.result) << c.text;
}

TEST(Stills, SectionIsMissing)
{
    const Read read("[ASV01]\nbackground=a\n[ASVU_ATTRIBUTE1]\nmpegtype=x\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.stills.stillCount, 0u);
    EXPECT_EQ(read.stills.attributeCount, 1u);
}
