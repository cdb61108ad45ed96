// Bitmaps of menus that are not what they have to be, and buttons where there is nothing: results of whole runs.
#include "tests/run/menu_project.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

namespace fs = std::filesystem;

namespace {

constexpr uint64_t SHORT_READ = 0x88010102, INVALID = 0x84000057, NOT_FOUND = 2;
constexpr uint64_t TOO_LARGE = 0x840007DA, NOT_8BIT = 0x840007F1, NOT_32BIT = 0x840007F2, EMPTY_RECT = 0x840007F5;

Bytes blank(uint64_t height = 576)
{
    return bmpFile(ByteImage(height));
}

Bytes blank32(uint64_t height = 576)
{
    return bmpFile(AlphaImage(height));
}

// A bitmap with the little-endian number at an offset changed.
Bytes changed(Bytes bitmap, uint64_t at, uint64_t value, uint64_t width)
{
    for (uint64_t i = 0; i < width; i++) bitmap.at(at + i) = uint8_t(value >> (8 * i));
    return bitmap;
}

Bytes withWidth(uint64_t width)
{
    ByteImage image(576);
    image.width = width;
    image.pixels.resize(width * 576);
    return bmpFile(image);
}

// The whole run: nothing stays of the unit, nothing is logged, no table is written.
void expectResult(const MenuDomain& domain, uint64_t expected, const MenuSpec& menu, const std::string& what,
                  const std::string& missing = "")
{
    const TempFolder temporary;
    DiscRun run;
    const std::string project = menuProject(run, discOf(domain, { menu }));
    if (!missing.empty()) {
        EXPECT_TRUE(fs::remove(fs::path(assetPath(run, domain.section, missing)))) << what;
    }
    EXPECT_EQ(expected, run.author(project)) << domain.name << ", " << what;
    EXPECT_FALSE(fileExists(run.log)) << what;
    EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles()) << what;
    EXPECT_EQ(expected == 0, run.has("VIDEO_TS.IFO")) << what;
    EXPECT_EQ(expected == 0 || domain.manager, run.has("VTS_01_0.IFO")) << what;
    if (expected != 0) {
        EXPECT_EQ(Bytes(), run.get(domain.vob)) << what;
    }
}

MenuSpec paired(const Bytes& subPicture, const Bytes& letterbox)
{
    MenuSpec menu;
    menu.subPicture = subPicture;
    menu.letterbox = letterbox;
    return menu;
}

MenuSpec piped(const Bytes& map, const Bytes& alpha, const std::string& keys = "")
{
    MenuSpec menu;
    menu.subPicture = map;
    menu.subPicture32 = alpha;
    menu.keys = keys;
    return menu;
}

}   // namespace

TEST(MenuBitmapFaults, FinishedSubPicture)
{
    const Bytes good = blank();
    const uint64_t size = good.size();
    const struct {
        const char* what;
        Bytes bitmap;
        uint64_t result;
    } cases[] = {
        { "whole", good, 0 },
        { "empty", {}, SHORT_READ },
        { "one byte", slice(good, 0, 1), SHORT_READ },
        { "cut in the file header", slice(good, 0, 13), SHORT_READ },
        { "file header alone", slice(good, 0, 14), SHORT_READ },
        { "cut in the information header", slice(good, 0, 53), SHORT_READ },
        { "without pixels", slice(good, 0, 54), SHORT_READ },
        { "cut by a byte", slice(good, 0, size - 1), SHORT_READ },
        { "bytes behind the pixels", good + fromHex("01 02 03"), 0 },
        { "mark BA", changed(good, 1, 'A', 1), INVALID },
        { "mark MB", changed(good, 0, 0x424D, 2), INVALID },
        { "no mark, and cut", changed(slice(good, 0, 14), 0, 0, 2), INVALID },
        { "719 wide", withWidth(719), INVALID },
        { "721 wide", withWidth(721), INVALID },
        { "704 wide", withWidth(704), INVALID },
        { "width 0", changed(good, 18, 0, 4), INVALID },
        { "greatest width", changed(good, 18, 0xFFFFFFFF, 4), INVALID },
        { "width of another low half", changed(good, 18, 0x000102D0, 4), INVALID },
        { "for NTSC", blank(480), INVALID },
        { "575 lines", blank(575), INVALID },
        { "height 0", changed(good, 22, 0, 4), INVALID },
        { "top line first", bmpFile(ByteImage(576), { .topDown = true }), INVALID },
        { "old header", bmpFile(ByteImage(576), { .coreHeader = true }), 0 },
        { "old header, for NTSC", bmpFile(ByteImage(480), { .coreHeader = true }), INVALID },
        { "a palette", bmpFile(ByteImage(576), { .dataOffset = 1078 }), 0 },
        { "compressed, it says", changed(good, 30, 1, 4), 0 },
        { "one byte less than the picture", changed(good, 2, size - 1, 4), INVALID },
        { "no size", changed(good, 2, 0, 4), INVALID },
        { "size of the headers", changed(good, 2, 54, 4), INVALID },
        { "one byte more than the file", changed(good, 2, size + 1, 4), SHORT_READ },
        { "a megabyte more than the file", changed(good, 2, size + 0x100000, 4), SHORT_READ },
        { "pixels behind their place", changed(good, 10, 55, 4), INVALID },
        { "pixels behind the end", changed(good, 10, 0xFFFFFFF0, 4), INVALID },
        { "pixels behind the end, by both", changed(changed(good, 10, 0x1000000, 4), 2, 0x1000000 + size, 4),
          SHORT_READ },
        { "pixels that begin with the headers", changed(good, 10, 0, 4), 0 },
    };
    for (const auto& c : cases) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            MenuSpec menu;
            menu.subPicture = c.bitmap;
            expectResult(domain, c.result, menu, c.what);
            // The second of a pair is read like the first; the first one's unit goes with the run.
            expectResult(domain, c.result, paired(blank(), c.bitmap), std::string("letterbox: ") + c.what);
        }
    }
}

TEST(MenuBitmapFaults, FileThatIsNotThere)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        MenuSpec pair = paired(blank(), blank());
        expectResult(domain, NOT_FOUND, {}, "single", ".bmp");
        expectResult(domain, NOT_FOUND, pair, "first of a pair", ".bmp");
        expectResult(domain, NOT_FOUND, pair, "second of a pair", "_l.bmp");
        expectResult(domain, NOT_FOUND, piped(blank(), blank32()), "map", ".bmp");
        expectResult(domain, NOT_FOUND, piped(blank(), blank32()), "alpha", "_32.bmp");
        pair.subPicture32 = blank32();
        pair.letterbox32 = blank32();
        expectResult(domain, NOT_FOUND, pair, "alpha of the letterbox form", "_l32.bmp");
        // Where buttons don't overlap the map of the letterbox form is not read.
        expectResult(domain, 0, pair, "map of the letterbox form", "_l.bmp");
    }
}

// The map is read first, and judged before the picture with alpha is read.
TEST(MenuBitmapFaults, Depths)
{
    const Bytes map = blank(), alpha = blank32(), cut = slice(blank(), 0, 54);
    const struct {
        const char* what;
        MenuSpec menu;
        uint64_t result;
    } cases[] = {
        { "as they have to be", piped(map, alpha), 0 },
        { "map of 32 bits", piped(alpha, alpha), NOT_8BIT },
        { "alpha of 8 bits", piped(map, map), NOT_32BIT },
        { "both the other way", piped(alpha, map), NOT_8BIT },
        { "a map that says 24 bits", piped(changed(alpha, 28, 24, 2), alpha), NOT_8BIT },
        { "alpha that says 24 bits", piped(map, changed(alpha, 28, 24, 2)), NOT_32BIT },
        { "map of 32 bits, alpha cut", piped(alpha, cut), NOT_8BIT },
        { "map cut", piped(cut, alpha), SHORT_READ },
        { "alpha cut", piped(map, slice(alpha, 0, alpha.size() - 1)), SHORT_READ },
        { "alpha for NTSC", piped(map, blank32(480)), INVALID },
        { "8 bits with a size of 32", piped(map, changed(map, 28, 32, 2)), INVALID },
    };
    for (const auto& c : cases) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            expectResult(domain, c.result, c.menu, c.what);
            MenuSpec pair = c.menu;
            pair.letterbox = map;
            pair.letterbox32 = alpha;
            expectResult(domain, c.result, pair, std::string("pair: ") + c.what);
        }
    }
    // The letterbox form of a pair
    for (const MenuDomain& domain : MENU_DOMAINS) {
        MenuSpec pair = piped(map, alpha);
        pair.letterbox = map;
        pair.letterbox32 = map;
        expectResult(domain, NOT_32BIT, pair, "letterbox alpha of 8 bits");
        pair.letterbox32 = Bytes();
        expectResult(domain, SHORT_READ, pair, "letterbox alpha empty");
    }
}

namespace {

std::string button(const std::string& rectangle, const std::string& color = "1")
{
    return "buttons=1\nbutton1=" + rectangle + ",1,1,1,1," + color + ",BTN_ACTION_JUMP_TT(1,0,0)\n";
}

// A picture of this many colours, transparent beside them, and a map in which button 1 owns all of them.
MenuSpec colored(uint64_t colors, const std::string& keys)
{
    ByteImage map(576);
    AlphaImage picture(576);
    for (uint64_t i = 0; i < colors; i++) {
        map.fill(100 + 20 * i, 100, 20, 20, 1);
        picture.fill(100 + 20 * i, 100, 20, 20, { 50, uint8_t(10 * i), 0, 200 });
    }
    return piped(bmpFile(map), bmpFile(picture), keys);
}

}   // namespace

// Two or three colours have to be found in each button's rectangle; one colour, and more than three, need not.
TEST(MenuBitmapFaults, ButtonWithoutColor)
{
    const char* const rectangles[] = { "0,0,0,0",         "300,300,300,400", "300,400,300,300", "400,300,300,400",
                                       "300,301,300,400", "300,400,300,301", "300,400,300,400" };
    for (const char* const rectangle : rectangles) {
        for (uint64_t colors = 1; colors <= 4; colors++) {
            const bool fails = colors == 2 || colors == 3;
            const MenuDomain& domain = MENU_DOMAINS[colors % 2];
            expectResult(domain, fails ? EMPTY_RECT : 0, colored(colors, button(rectangle)), rectangle);
        }
    }
}

// Rectangles that leave the picture, and numbers as large as they get: whatever comes of it, the run ends.
TEST(MenuBitmapFaults, ButtonsOutsideThePicture)
{
    const char* const rectangles[] = {
        "700,900,500,700",           "0,4294967295,0,4294967295", "4294967294,4294967295,4294967294,4294967295",
        "4294967295,0,4294967295,0", "719,721,575,577",           "0,1,0,1",
        "0,720,4294967295,0",        "1000,2000,10,20",           "10,20,1000,2000",
        "0,4294967295,100,121",      "100,121,0,4294967295"
    };
    for (const char* const rectangle : rectangles) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            // Without alpha the rectangle goes to the disc as it is; with one colour, and with four, through the steps.
            MenuSpec plain;
            plain.keys = button(rectangle);
            expectResult(domain, 0, plain, rectangle);
            expectResult(domain, 0, colored(1, button(rectangle)), rectangle);
            expectResult(domain, 0, colored(4, button(rectangle)), rectangle);
        }
    }
}

// Where the rectangle is larger than the picture it shrinks to what is seen of the button all the same.
TEST(MenuBitmapFaults, ButtonLargerThanThePicture)
{
    DiscRun run;
    ASSERT_EQ(0u, run.author(menuProject(run, discOf(MENU_DOMAINS[0], { colored(1, button("0,5000,0,5000")) }))));
    // Columns 100 to 119, lines 100 to 119: x 100 to 120, y 99 to 120
    expectAt(run.get("VTS_01_0.VOB"), 187, "46 40 78 06 30 78", "button 1");
}

TEST(MenuBitmapFaults, ColorsAboveThree)
{
    const struct {
        const char* color;
        const char* hex;   // x 16 to 64
    } cases[] = { { "4", "01 00 40" }, { "5", "41 00 40" }, { "255", "C1 00 40" }, { "4294967294", "81 00 40" } };
    for (const auto& c : cases) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            DiscRun run;
            MenuSpec menu;
            menu.keys = button("16,64,40,100", c.color);
            ASSERT_EQ(0u, run.author(menuProject(run, discOf(domain, { menu })))) << c.color;
            expectAt(run.get(domain.vob), 187, c.hex, c.color);
        }
    }
}

// A field that outgrows the coder's room; one that does not, in a unit whose size two bytes can't tell.
TEST(MenuBitmapFaults, LargeSubPictures)
{
    std::vector<Comb> full, half;
    for (uint64_t line = 0; line < 576; line++) {
        full.push_back({ line, 226 });   // 288 lines of 228 bytes are 65664
        half.push_back({ line, 200 });
    }
    for (const MenuDomain& domain : MENU_DOMAINS) {
        MenuSpec menu;
        menu.subPicture = bmpFile(combImage(576, full));
        expectResult(domain, TOO_LARGE, menu, "a field of 65664 bytes");
        DiscRun run;
        menu.subPicture = bmpFile(combImage(576, half));
        ASSERT_EQ(0u, run.author(menuProject(run, discOf(domain, { menu }))));
        // 1180 + 576 x 200 = 116380 bytes: 2016, and 57 packs of 2024
        EXPECT_EQ((1 + 1 + 1 + 57) * 2048u, run.get(domain.vob).size());
    }
}

// A bitmap of fewer bits than a pixel code takes is too small for the codes that are read from it.
TEST(MenuBitmapFaults, FinishedSubPictureOfFewBits)
{
    for (const uint64_t bits : { 1u, 4u }) {
        // Rows as wide as their depth takes, padded to four bytes
        const uint64_t row = (720 * bits / 8 + 3) / 4 * 4;
        Bytes bitmap = slice(blank(), 0, 54) + Bytes(row * 576, 0);
        bitmap = changed(changed(bitmap, 28, bits, 2), 2, bitmap.size(), 4);
        for (const MenuDomain& domain : MENU_DOMAINS) {
            MenuSpec menu;
            menu.subPicture = bitmap;
            expectResult(domain, INVALID, menu, std::to_string(bits) + " bits");
        }
    }
}
