// Discs with menus of seeded random projects: held against a reader of the published format, and what their menus show
// against a small model of how pictures become sub-pictures. A failure prints its seed.
#include "tests/run/menu_model.h"
#include "tests/run/menu_project.h"
#include "tests/support/disc_reader.h"
#include "tests/support/environment.h"
#include "tests/support/sub_picture_decoder.h"
#include "tests/video/table_bytes.h"

#include <algorithm>
#include <random>

namespace {

constexpr uint64_t SEEDS = 48;

struct Dice {
    std::mt19937_64 engine;
    uint64_t upTo(uint64_t most)
    {
        return engine() % (most + 1);
    }
    uint64_t between(uint64_t least, uint64_t most)
    {
        return least + upTo(most - least);
    }
    bool oneIn(uint64_t n)
    {
        return engine() % n == 0;
    }
};

// A menu, and what it has to show.
struct RandomMenu {
    MenuSpec files;
    bool piped = false;
    MenuModel model;
    std::vector<ByteImage> codes;   // of the sub-picture, then of its letterbox form
    bool animated = false;
};

struct Totals {
    uint64_t menus = 0, piped = 0, overlaps = 0, manyColors = 0, fewColors = 0, pairs = 0, empty = 0, loops = 0;
    uint64_t buttons = 0, pixels = 0;
};

struct Box {
    uint64_t x, y, w, h;
};

// Lines 0 and 1 stay empty: units are shown from line 2 on, with one code for each line above.
Box randomBox(Dice& dice, uint64_t height)
{
    const Box box = { dice.upTo(690), dice.between(2, height - 40), dice.between(1, 29), dice.between(1, 37) };
    return { box.x, box.y, dice.oneIn(3) ? dice.between(1, 720 - box.x) : box.w, box.h };
}

ByteImage randomCodes(Dice& dice, uint64_t height)
{
    ByteImage image(height);
    for (uint64_t i = dice.upTo(30); i > 0; i--) {
        const Box box = randomBox(dice, height);
        image.fill(box.x, box.y, box.w, box.h, uint8_t(dice.upTo(dice.oneIn(8) ? 255 : 3)));
    }
    for (uint64_t i = dice.upTo(4); i > 0; i--) {
        const uint64_t line = dice.between(2, height - 3), width = dice.between(1, 720);
        for (uint64_t x = 0; x < width; x++) image.at(x, line) = uint8_t(dice.upTo(3));
    }
    return image;
}

std::string buttonKey(uint64_t number, const ModelButton& button)
{
    std::string text = "button" + std::to_string(number) + "=";
    for (const int64_t value : { button.xStart, button.xEnd, button.yStart, button.yEnd }) {
        text += std::to_string(value) + ",";
    }
    return text + "1,1,1,1," + std::to_string(button.color) + ",BTN_ACTION_JUMP_TT(1,0,0)\n";
}

Rgba randomColor(Dice& dice, const std::vector<Rgba>& colors)
{
    const uint8_t alphas[] = { 0, 31, 32, 106, 107, 181, 182, 255 };
    Rgba color = colors[dice.upTo(colors.size() - 1)];
    color.alpha = dice.oneIn(2) ? 255 : alphas[dice.upTo(7)];
    return color;
}

// Buttons with their areas, apart from one another or not, and rectangles around them, which may be wrong.
void drawButtons(Dice& dice, RandomMenu& menu, ByteImage& map, AlphaImage& picture, const std::vector<Rgba>& colors)
{
    const uint64_t height = picture.height, count = dice.upTo(8);
    const bool crossing = dice.oneIn(3), halved = dice.oneIn(4);
    const Rgba upper = randomColor(dice, colors);
    for (uint64_t i = 0; i < count; i++) {
        const uint64_t x = 20 + i % 4 * 170, y = 40 + i / 4 * 200;
        const uint64_t w = dice.between(4, 140), h = dice.between(4, 150);
        for (uint64_t strip = 0; strip < w; strip += 10) {
            const uint64_t owner = crossing && strip % 20 ? (i + 1) % count : i;
            map.fill(x + strip, y, std::min<uint64_t>(10, w - strip), h, uint8_t(owner + 1));
            picture.fill(x + strip, y, std::min<uint64_t>(10, w - strip), h, randomColor(dice, colors));
            // Two colours that are counted as often, one above the other: the box leaves the lowest line out.
            if (halved) picture.fill(x + strip, y, std::min<uint64_t>(10, w - strip), (h - 1) / 2, upper);
        }
        ModelButton button = { int64_t(x), int64_t(x + w), int64_t(y), int64_t(y + h), dice.upTo(5), 0 };
        button.xStart -= int64_t(dice.upTo(10));
        button.xEnd += int64_t(dice.upTo(crossing ? 200 : 9));
        button.yStart -= int64_t(dice.upTo(10));
        button.yEnd += int64_t(dice.upTo(20));
        button.xEnd = std::min<int64_t>(button.xEnd, 719);
        button.yEnd = std::min<int64_t>(button.yEnd, int64_t(height) - 1);
        if (dice.oneIn(10)) button.xEnd = button.xStart + 1;   // nothing lies in it
        menu.model.buttons.push_back(button);
    }
    for (uint64_t i = dice.upTo(4); i > 0; i--) {   // a picture beside the buttons
        const Box box = randomBox(dice, height);
        picture.fill(box.x, box.y, box.w, box.h, randomColor(dice, colors));
    }
}

AlphaImage letterboxPicture(Dice& dice, const std::vector<Rgba>& colors, uint64_t height)
{
    AlphaImage picture(height);
    for (uint64_t i = dice.between(1, 12); i > 0; i--) {
        const Box box = randomBox(dice, height);
        picture.fill(box.x, box.y, box.w, box.h, randomColor(dice, colors));
    }
    return picture;
}

void makePiped(Dice& dice, RandomMenu& menu, bool pair, uint64_t height)
{
    std::vector<Rgba> colors;
    for (uint64_t i = dice.between(1, 7); i > 0; i--) {
        colors.push_back({ uint8_t(dice.upTo(255)), uint8_t(dice.upTo(255)), uint8_t(dice.upTo(255)), 0 });
    }
    if (dice.oneIn(4)) colors.push_back({});   // black
    menu.piped = true;
    ByteImage map(height);
    AlphaImage picture(height);
    drawButtons(dice, menu, map, picture, colors);
    for (uint64_t i = 0; i < menu.model.buttons.size(); i++) menu.files.keys += buttonKey(i + 1, menu.model.buttons[i]);
    menu.files.subPicture = bmpFile(map);
    menu.files.subPicture32 = bmpFile(picture);
    menu.model.prepare(map, picture);
    menu.codes.push_back(menu.model.codes(map, picture));
    if (!pair) return;
    ByteImage letterboxMap(height);
    for (uint64_t i = 0; i < 10; i++) {
        const Box box = randomBox(dice, height);
        letterboxMap.fill(box.x, box.y, box.w, box.h, uint8_t(dice.upTo(menu.model.buttons.size() + 2)));
    }
    const AlphaImage letterbox = letterboxPicture(dice, colors, height);
    menu.files.letterbox = bmpFile(letterboxMap);
    menu.files.letterbox32 = bmpFile(letterbox);
    menu.codes.push_back(menu.model.codes(letterboxMap, letterbox));
}

void makeFinished(Dice& dice, RandomMenu& menu, bool pair, uint64_t height)
{
    for (uint64_t i = dice.upTo(36); i > 0; i--) {
        const int64_t x = int64_t(dice.upTo(600)), y = int64_t(dice.upTo(height - 100));
        menu.model.buttons.push_back({ x, x + int64_t(dice.upTo(119)), y, y + int64_t(dice.upTo(99)), dice.upTo(5) });
        menu.files.keys += buttonKey(menu.model.buttons.size(), menu.model.buttons.back());
    }
    for (uint64_t i = 0; i < (pair ? 2u : 1u); i++) {
        ByteImage codes = randomCodes(dice, height);
        (i ? menu.files.letterbox.emplace() : menu.files.subPicture) = bmpFile(codes);
        for (uint8_t& code : codes.pixels) code &= 3;
        menu.codes.push_back(codes);
    }
}

void makeBackground(Dice& dice, RandomMenu& menu, int64_t standard, bool sound)
{
    if (dice.oneIn(2)) {
        menu.files.background = stillAsset(dice.between(100, 9000));
        return;
    }
    menu.animated = true;
    MovieSpec movie = { .standard = standard };
    for (uint64_t i = dice.between(1, 9); i > 0; i--) {
        VobuSpec unit = { .pictures = dice.between(2, 18), .types = dice.oneIn(2) ? "IBBP" : "IP" };
        // A picture of less than 12 bytes at a unit's end would be seen in the next one.
        unit.pictureBytes = { dice.between(500, 4000), dice.between(12, 900) };
        unit.padding = dice.upTo(2);
        movie.vobus.push_back(unit);
    }
    if (sound) movie.streams = { ac3Stream() };
    const Movie asset = animatedAsset(movie);
    menu.files.background = asset.bytes;
    menu.files.keys += "type=animated\n";
    const uint64_t loop = asset.vobus[dice.upTo(asset.vobus.size() - 1)].scr;
    switch (dice.upTo(3)) {
    case 0: menu.files.keys += "loop=1\n"; break;
    case 1: menu.files.keys += loop > 1 ? "loop=" + std::to_string(loop) + "\n" : ""; break;
    case 2: menu.files.keys += "delay=" + std::to_string(loop) + "\n"; break;
    default: break;
    }
}

RandomMenu randomMenu(Dice& dice, bool pal, bool sound)
{
    const uint64_t height = pal ? 576 : 480;
    RandomMenu menu;
    const bool pair = dice.oneIn(3);
    makeBackground(dice, menu, pal ? 1 : 2, sound);
    if (dice.oneIn(3)) {
        makeFinished(dice, menu, pair, height);
    } else {
        makePiped(dice, menu, pair, height);
    }
    menu.files.keys += "buttons=" + std::to_string(menu.model.buttons.size()) + "\n";
    return menu;
}

// ---- what is on the disc ------------------------------------------------------------------------------------------

// A menu's VOB: its sub-pictures, and the first of its navigation packs with a highlight.
struct FoundMenu {
    Bytes units[2];
    Bytes nav;
};

std::vector<FoundMenu> findMenus(const Bytes& vob)
{
    std::vector<FoundMenu> menus;
    for (uint64_t at = 0; at < vob.size(); at += 2048) {
        if (numberAt(vob, at + 14, 4) == 0x1BB) {
            const uint64_t number = numberAt(vob, at + 1055, 2);
            if (number > menus.size()) menus.resize(number);
            if (menus.back().nav.empty() && numberAt(vob, at + 141, 2)) menus.back().nav = slice(vob, at, 2048);
        }
        if (numberAt(vob, at + 14, 4) != 0x1BD || menus.empty()) continue;
        const uint64_t id = at + 23 + vob[at + 22], end = at + 20 + numberAt(vob, at + 18, 2);
        if (vob[id] == 0x20 || vob[id] == 0x21) menus.back().units[vob[id] - 0x20] += slice(vob, id + 1, end - id - 1);
    }
    return menus;
}

uint64_t differentPixels(const ByteImage& expected, const ByteImage& shown)
{
    uint64_t count = 0;
    for (uint64_t line = 2; line < expected.height - 2; line++) {
        for (uint64_t x = 0; x < 720; x++) count += expected.at(x, line) != shown.at(x, line);
    }
    return count;
}

void expectButton(const Bytes& nav, uint64_t number, const ModelButton& button)
{
    const uint64_t entry = 187 + 18 * (number - 1);
    EXPECT_EQ(button.color & 3, nav[entry] >> 6u) << "colour of button " << number;
    EXPECT_EQ(button.xStart, int64_t(numberAt(nav, entry, 2) >> 4 & 0x3FF)) << "button " << number;
    EXPECT_EQ(button.xEnd, int64_t(numberAt(nav, entry + 1, 2) & 0x3FF)) << "button " << number;
    EXPECT_EQ(button.yStart, int64_t(numberAt(nav, entry + 3, 2) >> 4 & 0x3FF)) << "button " << number;
    EXPECT_EQ(button.yEnd, int64_t(numberAt(nav, entry + 4, 2) & 0x3FF)) << "button " << number;
}

void expectMenu(const FoundMenu& found, const RandomMenu& menu, uint64_t height, Totals& totals)
{
    for (uint64_t i = 0; i < menu.codes.size(); i++) {
        const DecodedSubPicture shown = decodeSubPicture(found.units[i], height);
        EXPECT_EQ(std::vector<std::string>(), shown.faults);
        EXPECT_EQ(0u, differentPixels(menu.codes[i], shown.plane)) << "sub-picture " << i;
        totals.pixels += uint64_t(std::count_if(menu.codes[i].pixels.begin(), menu.codes[i].pixels.end(),
                                                [](uint8_t code) { return code != 0; }));
    }
    EXPECT_EQ(menu.codes.size() == 1, found.units[1].empty());
    if (found.nav.empty()) return;   // before the loop point as a whole
    const uint64_t listed = std::min<uint64_t>(menu.model.buttons.size(), menu.codes.size() == 2 ? 18 : 36);
    EXPECT_EQ(menu.model.buttons.size(), found.nav[158]);
    for (uint64_t i = 0; i < listed; i++) expectButton(found.nav, i + 1, menu.model.buttons[i]);
    for (uint64_t i = 0; i < menu.model.sets.size(); i++) {
        EXPECT_EQ(menu.model.sets[i], toHex(slice(found.nav, 163 + 8 * i, 4))) << "set " << i + 1;
    }
    totals.buttons += listed;
}

void count(const RandomMenu& menu, Totals& totals)
{
    totals.menus++;
    totals.piped += menu.piped;
    totals.pairs += menu.codes.size() == 2;
    totals.overlaps += menu.model.overlap;
    totals.manyColors += menu.model.manyColors && !menu.model.overlap;
    totals.fewColors += menu.piped && !menu.model.manyColors && !menu.model.overlap;
    totals.loops += menu.files.keys.find("loop=") != std::string::npos;
}

void authorRandomDisc(uint64_t seed, Totals& totals)
{
    Dice dice = { std::mt19937_64(seed) };
    const TempFolder temporary;
    DiscRun run;
    const bool pal = dice.oneIn(2);
    std::vector<RandomMenu> menus[2];
    MenuDisc disc = { .mode = pal ? "PAL" : "NTSC" };
    bool fails = false;
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const bool sound = dice.oneIn(2);
        (domain.manager ? disc.managerKeys : disc.titleSetKeys) = sound ? "audio=AC3\n" : "";
        for (uint64_t i = dice.upTo(3); i > 0; i--) {
            RandomMenu menu = randomMenu(dice, pal, sound);
            // A button in whose rectangle nothing lies ends the run; most discs are without.
            while (menu.model.emptyButton && !dice.oneIn(3)) menu = randomMenu(dice, pal, sound);
            fails = fails || menu.model.emptyButton;
            (domain.manager ? disc.manager : disc.titleSet).push_back(menu.files);
            menus[domain.manager].push_back(menu);
        }
    }
    const std::string project = menuProject(run, disc);
    const uint64_t result = run.author(project);
    EXPECT_EQ(fails ? 0x840007F5u : 0u, result);
    EXPECT_FALSE(fileExists(run.log));
    EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles());
    totals.empty += fails;
    if (fails || result) return;

    const DiscReport report = readDisc(run.folder.root / "target");
    EXPECT_EQ("", describeFaults(report));
    EXPECT_EQ(menus[0].size() + menus[1].size(), report.menus);
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const std::vector<RandomMenu>& expected = menus[domain.manager];
        EXPECT_EQ(!expected.empty(), run.has(domain.vob));
        if (expected.empty() || !run.has(domain.vob)) continue;
        const std::vector<FoundMenu> found = findMenus(run.get(domain.vob));
        ASSERT_EQ(expected.size(), found.size());
        for (uint64_t i = 0; i < expected.size(); i++) {
            SCOPED_TRACE(std::string(domain.name) + ", menu " + std::to_string(i + 1));
            expectMenu(found[i], expected[i], pal ? 576 : 480, totals);
            count(expected[i], totals);
        }
    }

    // The second run, through the other form, makes the same.
    const Snapshot first = takeSnapshot(run.folder.root / "target");
    run.narrow = true;
    ASSERT_EQ(0u, run.author(project));
    EXPECT_EQ(first, takeSnapshot(run.folder.root / "target"));
}

}   // namespace

TEST(RandomMenu, ShowsWhatItsPicturesSay)
{
    Totals totals;
    for (uint64_t seed = 1; seed <= SEEDS; seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        authorRandomDisc(seed, totals);
        if (testing::Test::HasFailure()) break;
    }
    // The material has what is to be checked.
    EXPECT_LT(80u, totals.menus);
    EXPECT_LT(50u, totals.piped);
    EXPECT_LT(8u, totals.overlaps);
    EXPECT_LT(8u, totals.manyColors);
    EXPECT_LT(8u, totals.fewColors);
    EXPECT_LT(20u, totals.pairs);
    EXPECT_LT(10u, totals.loops);
    EXPECT_LT(0u, totals.empty);
    EXPECT_LT(300u, totals.buttons);
    EXPECT_LT(1000000u, totals.pixels);
}
