// Menus whose sub-pictures are made from a collision map and a picture with alpha: what reaches the navigation packs,
// the sub-pictures and the palettes of the chains.
#include "tests/run/menu_project.h"
#include "tests/support/sub_picture_decoder.h"
#include "tests/video/table_bytes.h"

namespace {

constexpr Rgba RED = { 255, 0, 0, 255 };
constexpr Rgba GREEN = { 0, 255, 0, 128 };

// Luminance, Cr and Cb of plain colours.
const char* const BLACK_ENTRY = "00 10 80 80";
const char* const RED_ENTRY = "00 51 F0 5B";
const char* const GREEN_ENTRY = "00 90 23 36";
const char* const BLUE_ENTRY = "00 28 6E F0";

// A menu in its VOB, and its table.
struct Authored {
    Bytes vob, ifo;
    uint64_t chain;   // offset of the first menu's chain in the IFO
};

Authored author(const MenuDomain& domain, const MenuSpec& menu)
{
    DiscRun run;
    Authored disc = {};
    EXPECT_EQ(0u, run.author(menuProject(run, discOf(domain, { menu }))));
    EXPECT_FALSE(fileExists(run.log));
    expectSoundDisc(run);
    disc.vob = run.get(domain.vob);
    disc.ifo = run.get(domain.ifo);
    const uint64_t table = numberAt(disc.ifo, domain.manager ? 200 : 208, 4) * 2048;
    disc.chain = table + 16 + numberAt(disc.ifo, table + 16 + 12, 4);
    return disc;
}

// Payload of all packs of a sub-stream; they lie in the first menu alone.
Bytes unitOf(const Bytes& vob, uint8_t subStreamId)
{
    Bytes unit;
    for (uint64_t at = 0; at < vob.size(); at += 2048) {
        if (numberAt(vob, at + 14, 4) != 0x1BD) continue;
        const uint64_t header = 23 + vob[at + 22];
        if (vob[at + header] != subStreamId) continue;
        unit += slice(vob, at + header + 1, numberAt(vob, at + 18, 2) + 20 - header - 1);
    }
    return unit;
}

// Codes of a picture: its boxes, one over the other, and nothing besides.
void expectPlane(const ByteImage& expected, const Bytes& unit)
{
    const DecodedSubPicture picture = decodeSubPicture(unit, 576);
    EXPECT_EQ(std::vector<std::string>(), picture.faults);
    for (uint64_t line = 2; line < 574; line++) {
        for (uint64_t x = 0; x < 720; x++) {
            ASSERT_EQ(int(expected.at(x, line)), int(picture.plane.at(x, line))) << x << ", " << line;
        }
    }
}

std::string button(uint64_t number, const std::string& rectangle)
{
    return "button" + std::to_string(number) + "=" + rectangle + ",1,1,1,1,3,BTN_ACTION_JUMP_TT(1,0,0)\n";
}

}   // namespace

// Three values, of which one is "transparent": each button gets the set of its own colour.
TEST(MenuColors, SetOfEachColor)
{
    ByteImage map(576), codes(576);
    AlphaImage picture(576);
    map.fill(100, 100, 100, 50, 1);
    picture.fill(100, 100, 100, 50, RED);
    codes.fill(100, 100, 100, 50, 3);   // alpha 255
    map.fill(100, 300, 100, 50, 2);
    picture.fill(100, 300, 100, 50, GREEN);
    codes.fill(100, 300, 100, 50, 2);   // 1 + (128 - 32) x 3 / 224
    const MenuSpec menu = { .subPicture = bmpFile(map),
                            .subPicture32 = bmpFile(picture),
                            .keys = "colorset1=0,1,2,3,4,5,6,7\nbuttons=2\n" + button(1, "90,211,90,161") +
                                    button(2, "90,211,290,361") };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Authored disc = author(domain, menu);
        // The words of selected buttons are made, those of activated ones stay.
        expectAt(disc.vob, 163, "11 10 FA 50 32 10 76 54 22 20 FA 50 00 00 00 00 33 30 FA 50 00 00 00 00",
                 "colour sets");
        // Of the picture's colours green comes first, from the bottom up: red is the second. x 100 to 200; the box is
        // 99 to 150, a line above the first one that is seen.
        expectAt(disc.vob, 187, "86 40 C8 06 30 96 01 01 01 01", "button 1: colour set 2");
        expectAt(disc.vob, 187 + 18, "46 40 C8 12 B1 5E 01 01 01 01", "button 2: set 1, 299 to 350");
        expectPlane(codes, unitOf(disc.vob, 0x20));
        expectAt(disc.ifo, disc.chain + 164,
                 std::string(BLACK_ENTRY) + GREEN_ENTRY + RED_ENTRY + BLACK_ENTRY + BLACK_ENTRY, "palette");
    }
}

// Two buttons in one another's boxes: the code chooses the button, the lower one has the higher set.
TEST(MenuColors, Overlap)
{
    ByteImage map(576), codes(576);
    AlphaImage picture(576);
    for (uint64_t i = 0; i < 4; i++) {
        map.fill(100 + 20 * i, 100, 20, 50, uint8_t(1 + i % 2));
        codes.fill(100 + 20 * i, 100, 20, 50, uint8_t(2 - i % 2));
    }
    picture.fill(100, 100, 80, 50, RED);
    // Black is no part of a button here, nor is what is nearly transparent; but what belongs to none is left out.
    picture.fill(105, 110, 5, 5, { 0, 0, 0, 255 });
    codes.fill(105, 110, 5, 5, 0);
    picture.fill(125, 110, 5, 5, { 255, 0, 0, 31 });
    codes.fill(125, 110, 5, 5, 0);
    picture.fill(400, 400, 50, 50, RED);
    const MenuSpec menu = { .subPicture = bmpFile(map),
                            .subPicture32 = bmpFile(picture),
                            .keys = "buttons=2\n" + button(1, "90,260,90,161") + button(2, "90,260,90,161") };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Authored disc = author(domain, menu);
        expectAt(disc.vob, 163, "11 10 00 F0 00 00 00 00 22 20 0F 00 00 00 00 00 33 30 F0 00 00 00 00 00",
                 "colour sets");
        // Button 1: columns 100 to 159; button 2: 120 to 179.
        expectAt(disc.vob, 187, "86 40 A0 06 30 96 01 01 01 01", "button 1: colour set 2");
        expectAt(disc.vob, 187 + 18, "47 80 B4 06 30 96 01 01 01 01", "button 2: colour set 1");
        expectPlane(codes, unitOf(disc.vob, 0x20));
        // The census begins with transparent pixels; behind them, from the bottom up, red and black. All three of red,
        // the two others made equal to palette 1.
        expectAt(disc.ifo, disc.chain + 164, std::string(RED_ENTRY) + RED_ENTRY + RED_ENTRY + BLACK_ENTRY, "palette");
    }
}

// Four colours: the three that most pixels of the buttons have, with the alpha that most of their pixels have.
TEST(MenuColors, ThreeOfManyColors)
{
    ByteImage map(576), codes(576);
    AlphaImage picture(576);
    map.fill(100, 100, 100, 50, 1);
    picture.fill(100, 100, 40, 50, RED);
    picture.fill(140, 100, 30, 50, GREEN);
    picture.fill(170, 100, 20, 50, { 0, 0, 255, 0x40 });
    picture.fill(190, 100, 10, 50, { 255, 255, 0, 0xA0 });
    codes.fill(100, 100, 40, 50, 1);
    codes.fill(140, 100, 30, 50, 2);
    codes.fill(170, 100, 20, 50, 3);
    codes.fill(190, 100, 10, 50, 1);   // yellow is as far from red as from green
    // A colour outside the buttons counts for no palette, and it is mapped like the others.
    picture.fill(300, 400, 300, 100, { 0, 200, 10, 50 });
    codes.fill(300, 400, 300, 100, 2);
    const MenuSpec menu = { .subPicture = bmpFile(map),
                            .subPicture32 = bmpFile(picture),
                            .keys = "buttons=1\n" + button(1, "90,211,90,161") };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Authored disc = author(domain, menu);
        // Contrasts 4 of blue, 8 of green, F of red.
        expectAt(disc.vob, 163, "32 10 48 F0 00 00 00 00 32 10 48 F0 00 00 00 00 32 10 48 F0 00 00 00 00",
                 "colour sets");
        expectAt(disc.vob, 187, "46 40 C8 06 30 96 01 01 01 01", "button 1: colour set 1");
        expectPlane(codes, unitOf(disc.vob, 0x20));
        expectAt(disc.ifo, disc.chain + 164,
                 std::string(BLACK_ENTRY) + RED_ENTRY + GREEN_ENTRY + BLUE_ENTRY + BLACK_ENTRY, "palette");
    }
}

// The letterbox form has a picture of its own, mapped with what the first one gave; its map is not asked for where the
// buttons don't overlap.
TEST(MenuColors, LetterboxPicture)
{
    ByteImage map(576), codes(576), letterboxCodes(576);
    AlphaImage picture(576), letterbox(576);
    map.fill(100, 100, 100, 50, 1);
    picture.fill(100, 100, 100, 50, RED);
    codes.fill(100, 100, 100, 50, 3);
    letterbox.fill(120, 140, 80, 40, { 9, 9, 9, 106 });
    letterboxCodes.fill(120, 140, 80, 40, 1);
    letterbox.fill(120, 150, 80, 10, { 0, 0, 0, 107 });
    letterboxCodes.fill(120, 150, 80, 10, 2);
    const MenuSpec menu = { .subPicture = bmpFile(map),
                            .letterbox = fromHex("00"),
                            .subPicture32 = bmpFile(picture),
                            .letterbox32 = bmpFile(letterbox),
                            .keys = "buttons=1\n" + button(1, "90,211,90,161") };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Authored disc = author(domain, menu);
        // One colour: all three sets alike.
        expectAt(disc.vob, 163, "11 10 FA 50 00 00 00 00 11 10 FA 50 00 00 00 00 11 10 FA 50 00 00 00 00",
                 "colour sets");
        expectPlane(codes, unitOf(disc.vob, 0x20));
        expectPlane(letterboxCodes, unitOf(disc.vob, 0x21));
        expectAt(disc.ifo, disc.chain + 28, "80 00 01 00", "streams 0 and 1");
    }
}

// Without a letterbox form of the picture the finished sub-pictures count, and the project's colours with them.
TEST(MenuColors, FinishedSubPicturesOfAPair)
{
    ByteImage finished(576), other(576);
    finished.fill(50, 60, 70, 80, 2);
    other.fill(150, 160, 70, 80, 1);
    const MenuSpec menu = { .subPicture = bmpFile(finished),
                            .letterbox = bmpFile(other),
                            .subPicture32 = fromHex("00"),
                            .keys = "colorset2=0,1,2,3,4,5,6,7\n" };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Authored disc = author(domain, menu);
        expectAt(disc.vob, 163, "00 00 00 00 00 00 00 00 32 10 76 54 32 10 76 54", "colour sets");
        expectPlane(finished, unitOf(disc.vob, 0x20));
        expectPlane(other, unitOf(disc.vob, 0x21));
    }
}

// A finished sub-picture holds pixel codes: their low two bits count.
TEST(MenuColors, CodesAboveThree)
{
    ByteImage finished(576), codes(576);
    for (uint64_t i = 0; i < 256; i++) {
        finished.fill(2 * i, 100, 2, 10, uint8_t(i));
        codes.fill(2 * i, 100, 2, 10, uint8_t(i & 3));
    }
    expectPlane(codes, unitOf(author(MENU_DOMAINS[0], { .subPicture = bmpFile(finished) }).vob, 0x20));
}
