// Menu VOBs of a title set and of the manager, pack by pack: what the drivers lay into them and what their navigation
// packs then say.
#include "tests/run/menu_project.h"
#include "tests/support/disc_reader.h"
#include "tests/video/table_bytes.h"

namespace {

Bytes repeated(const std::string& hex, int count)
{
    Bytes bytes;
    for (int i = 0; i < count; i++) bytes += fromHex(hex);
    return bytes;
}

// The navigation pack of a still of one picture that is the first menu of its VOB. se is where its only picture ends,
// end where it is declared to end: twelve frames long. elapsed is 0 of the standard's clock.
Bytes stillNav(const char* se, const char* end, const char* elapsed, uint64_t sectors, const std::vector<Piece>& more)
{
    const std::string nowhere = toHex(repeated("3F FF FF FF", 19));
    std::vector<Piece> pieces = {
        { 0, "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8" },
        { 14, "00 00 01 BB 00 12 80 C4 E1 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02" },
        { 38, "00 00 01 BF 03 D4 00" },
        { 57, "00 00 46 50" },   // 18000
        { 61, end },
        { 65, se },
        { 69, elapsed },
        { 141, "00 01" },
        { 143, "00 00 46 50" },
        { 147, "FF FF FF FF FF FF FF FF" },
        { 1024, "00 00 01 BF 03 FA 01" },
        { 1042, toHex({ uint8_t(sectors - 1) }) },
        { 1046, toHex({ uint8_t(sectors - 1) }) },
        { 1055, "00 01" },
        { 1058, "01" },
        { 1059, elapsed },
        { 1075, "00 00 46 50" },
        { 1079, end },
        { 1265, "BF FF FF FF" },
        { 1269, nowhere },
        { 1345, "3F FF FF FF 3F FF FF FF" },
        { 1353, nowhere },
        { 1429, "BF FF FF FF" },
        { 1449, "7F FF FF FF" },
    };
    pieces.insert(pieces.end(), more.begin(), more.end());
    return layout(2048, pieces);
}

Bytes authored(const MenuDomain& domain, const std::vector<MenuSpec>& menus, const std::string& mode = "PAL")
{
    DiscRun run;
    EXPECT_EQ(0u, run.author(menuProject(run, discOf(domain, menus, mode))));
    EXPECT_FALSE(fileExists(run.log));
    expectSoundDisc(run);
    return run.get(domain.vob);
}

bool isNav(const Bytes& bytes, uint64_t at)
{
    return numberAt(bytes, at + 14, 4) == 0x1BB;
}

// All packs as expected; of navigation packs what the setup leaves of them, offsets 0 to 37 without the audio bound,
// and the same clock in the DSI.
void expectPacks(const Bytes& expected, const Bytes& vob, const std::string& what)
{
    ASSERT_EQ(expected.size(), vob.size()) << what;
    for (uint64_t at = 0; at < vob.size(); at += 2048) {
        const bool nav = isNav(expected, at);
        const uint64_t count = nav ? 38 : 2048;
        Bytes found = slice(vob, at, count);
        if (nav) found[23] = expected[at + 23];
        expectSameBytes(slice(expected, at, count), found, what + ", sector " + std::to_string(at / 2048));
    }
}

const char* firstVideo(const std::string& mode)
{
    return mode == "PAL" ? FIRST_VIDEO_PAL : FIRST_VIDEO_NTSC;
}

Bytes placeholder()
{
    return layout(2048, { { 0, "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8" },
                          { 14, "00 00 01 BB 00 12 80 C4 E1 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02" } });
}

}   // namespace

// ---- stills -------------------------------------------------------------------------------------------------------

TEST(Menus, StillByteForByte)
{
    const struct {
        const char* mode;
        uint64_t height;
        const char *se, *end, *elapsed;
    } standards[] = {
        // 18000 + 3600, 18000 + 12 x 3600
        { "PAL", 576, "00 00 54 60", "00 00 EF 10", "00 00 00 40" },
        // 18000 + 3003, 18000 + 12 x 3003
        { "NTSC", 480, "00 00 52 0B", "00 00 D3 14", "00 00 00 C0" },
    };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        for (const auto& standard : standards) {
            const MenuSpec menu = { .subPicture = bmpFile(ByteImage(standard.height)),
                                    .keys = "colorset1=0,1,2,3,0,15,10,5\ncolorset3=4,5,6,7,8,9,10,11\nbuttons=1\n"
                                            "button1=96,335,192,227,1,2,3,4,1,BTN_ACTION_JUMP_TT(1,0,0)\n" };
            const Bytes vob = authored(domain, { menu }, standard.mode);
            Bytes expected = stillNav(standard.se, standard.end, standard.elapsed, 3,
                                      { { 155, "10 00 00 01 01" },
                                        { 163, "32 10 5A F0 32 10 5A F0" },
                                        { 179, "76 54 BA 98 76 54 BA 98" },
                                        // x 96 to 335, y 192 to 227; JumpTT 1
                                        { 187, "46 01 4F 0C 00 E3 01 02 03 04 30 02 00 00 00 01 00 00" } });
            expected += menuPack(1, firstVideo(standard.mode), 0, stillAsset());
            expected += menuPack(2, FIRST_SPU, 0x20, combUnit(standard.height, {}));
            expectSameBytes(expected, vob, std::string(domain.name) + " " + standard.mode);
        }
    }
}

// The second pack of a still, in bytes: its time stamps are 18000 and 14400, its clock is that of sector 1.
TEST(Menus, FirstVideoPackByteForByte)
{
    const Bytes vob = authored(MENU_DOMAINS[0], { {} });
    expectAt(vob, 2048,
             "00 00 01 BA 44 00 04 04 94 AB 01 89 C3 F8 00 00 01 E0 00 74 81 C1 0D 31 00 01 8C A1 11 00 01 70 81"
             "1E 60 E8 00 00 01 B3 2D 02 40 33 00 00 00 00 00 00 01 00 00 0F A5",
             "first video pack");
    // 100 of 2012 bytes: 1912 are left, a padding packet of 1906
    expectAt(vob, 2048 + 136, "00 00 01 BE 07 72 FF FF", "its padding");
}

// Video and sub-picture of sizes around those of packs. Up to seven bytes are filled up in the header of a packet, more
// in a packet of their own.
TEST(Menus, PacksOfAStill)
{
    const uint64_t videoSizes[] = { 100, 2004, 2005, 2011, 2012, 2013, 4029, 4030, 4036, 4037, 4038, 9000 };
    const uint64_t moreUnitBytes[] = { 0, 828, 830, 834, 836, 838, 2852, 2854, 2858, 2860, 2862, 5000 };
    static_assert(std::size(videoSizes) == std::size(moreUnitBytes));
    for (uint64_t i = 0; i < std::size(videoSizes); i++) {
        const MenuDomain& domain = MENU_DOMAINS[i % 2];
        const std::string mode = i % 4 < 2 ? "PAL" : "NTSC";
        const uint64_t height = mode == "PAL" ? 576 : 480;
        // An NTSC unit is 192 bytes smaller.
        const std::vector<Comb> combs = combsFor(moreUnitBytes[i] + (mode == "PAL" ? 0 : 192));
        const Bytes video = stillAsset(videoSizes[i]), unit = combUnit(height, combs);
        ASSERT_EQ(1180 + moreUnitBytes[i], unit.size());
        const Bytes vob =
            authored(domain, { { .background = video, .subPicture = bmpFile(combImage(height, combs)) } }, mode);
        uint64_t sector = 3;
        Bytes expected = placeholder() + menuPack(1, firstVideo(mode), 0, slice(video, 0, FIRST_VIDEO_BYTES));
        expected += spuPacks(unit, 0x20, sector);
        expected += laterVideoPacks(video, sector);
        expectPacks(expected, vob, "video of " + std::to_string(video.size()));
    }
}

// The first pack of the second sub-picture has the clock of the first pack of the first one.
TEST(Menus, PacksOfAStillPair)
{
    const struct {
        uint64_t video, more, moreLetterbox;
    } cases[] = { { 100, 0, 0 }, { 2013, 836, 838 }, { 9000, 5000, 3000 }, { 4030, 2858, 834 } };
    for (const auto& c : cases) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            const std::vector<Comb> first = combsFor(c.more), second = combsFor(c.moreLetterbox);
            const Bytes video = stillAsset(c.video);
            const Bytes vob = authored(domain, { { .background = video,
                                                   .subPicture = bmpFile(combImage(576, first)),
                                                   .letterbox = bmpFile(combImage(576, second)) } });
            uint64_t sector = 3;
            Bytes expected = placeholder() + menuPack(1, FIRST_VIDEO_PAL, 0, slice(video, 0, FIRST_VIDEO_BYTES));
            expected += spuPacks(combUnit(576, first), 0x20, sector);
            expected += spuPacks(combUnit(576, second), 0x21, sector);
            expected += laterVideoPacks(video, sector);
            expectPacks(expected, vob, std::string(domain.name) + ", video of " + std::to_string(c.video));
        }
    }
}

// ---- animated menus -----------------------------------------------------------------------------------------------

namespace {

// Time stamps of the first sub-picture pack, those of the unit's first video pack: 36000 and 43200 more a unit.
const char* const SPU_AT_UNIT[] = {
    "00 00 01 BD 07 EC 81 81 08 21 00 03 19 41 1E 60 3A",   // 36000
    "00 00 01 BD 07 EC 81 81 08 21 00 05 6A C1 1E 60 3A",   // 79200
    "00 00 01 BD 07 EC 81 81 08 21 00 07 BC 41 1E 60 3A",   // 122400
    "00 00 01 BD 07 EC 81 81 08 21 00 0B 0D C1 1E 60 3A",   // 165600
};

// Sub-pictures go behind the first video pack of unit at; packs behind them are later by 146 ticks for each sector
// number that they took.
Bytes expectedAnimated(const Movie& asset, uint64_t at, const Bytes& unit, const Bytes* letterbox)
{
    const uint64_t cut = (asset.vobus[at].sector + 2) * 2048;
    Bytes expected = slice(asset.bytes, 0, cut);
    uint64_t sector = 3;
    expected += spuPacks(unit, 0x20, sector, SPU_AT_UNIT[at]);
    if (letterbox) expected += spuPacks(*letterbox, 0x21, sector, SPU_AT_UNIT[at]);
    for (uint64_t from = cut; from < asset.bytes.size(); from += 2048) {
        expected += shiftedPack(slice(asset.bytes, from, 2048), (sector - 2) * 146);
    }
    return expected;
}

}   // namespace

TEST(Menus, PacksOfAnAnimatedMenu)
{
    const struct {
        const char* keys;
        uint64_t entry;   // unit at which the sub-picture enters
    } cases[] = {
        { "", 0 },
        { "loop=1\n", 0 },
        { "loop=1\ndelay=86400\n", 0 },
        { "loop=0\ndelay=1\n", 1 },
        { "delay=43200\n", 1 },
        { "delay=43201\n", 2 },
        { "loop=2\n", 1 },
        { "loop=86400\n", 2 },
        { "loop=86401\n", 3 },
        { "loop=129600\n", 3 },
    };
    const Movie asset = shortUnits(4);
    const std::vector<Comb> combs = combsFor(3000), more = combsFor(1500);
    const Bytes letterbox = combUnit(576, more);
    for (const auto& c : cases) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            for (const bool pair : { false, true }) {
                MenuSpec menu = { .background = asset.bytes,
                                  .subPicture = bmpFile(combImage(576, combs)),
                                  .keys = std::string("type=animated\n") + c.keys };
                if (pair) menu.letterbox = bmpFile(combImage(576, more));
                const Bytes expected =
                    expectedAnimated(asset, c.entry, combUnit(576, combs), pair ? &letterbox : nullptr);
                const Bytes vob = authored(domain, { menu });
                expectPacks(expected, vob, std::string(domain.name) + (pair ? " pair " : " ") + c.keys);
            }
        }
    }
}

// A still menu can't loop, and what the background is decides, not the type that the project tells.
TEST(Menus, TypeDoesNotChooseTheDriver)
{
    const Movie asset = shortUnits(2);
    const Bytes animated = authored(MENU_DOMAINS[0], { { .background = asset.bytes, .keys = "loop=43200\n" } });
    expectPacks(expectedAnimated(asset, 0, combUnit(576, {}), nullptr), animated, "program stream");
    const Bytes still = authored(MENU_DOMAINS[0], { { .keys = "type=animated\n" } });
    expectPacks(placeholder() + menuPack(1, FIRST_VIDEO_PAL, 0, stillAsset()) +
                    menuPack(2, FIRST_SPU, 0x20, combUnit(576, {})),
                still, "elementary stream");
}

// A video pack without a time stamp gives the sub-picture none; its packet then holds as much as a later one.
TEST(Menus, AnimatedMenuWithoutTimeStamp)
{
    const Movie asset = animatedAsset({ .vobus = vobus(1, { .pictureBytes = { 100 }, .noPts = true }) + vobus(1) });
    const std::vector<Comb> combs = combsFor(843);   // 2023 bytes, and a byte to make them even: one full pack
    for (const MenuDomain& domain : MENU_DOMAINS) {
        DiscRun run;
        ASSERT_EQ(0u, run.author(menuProject(run, discOf(domain, { { .background = asset.bytes,
                                                                     .subPicture = bmpFile(combImage(576, combs)),
                                                                     .keys = "type=animated\n" } }))));
        uint64_t sector = 3;
        Bytes expected = slice(asset.bytes, 0, 4096) + spuPacks(combUnit(576, combs), 0x20, sector, LATER_SPU);
        for (uint64_t from = 4096; from < asset.bytes.size(); from += 2048) {
            expected += shiftedPack(slice(asset.bytes, from, 2048), 146);
        }
        expectPacks(expected, run.get(domain.vob), domain.name);
    }
}

// ---- several menus ------------------------------------------------------------------------------------------------

namespace {

struct Unit {
    uint64_t sector, vob, cell;
    std::string highlight;   // status of the highlight
    bool operator==(const Unit&) const = default;
};

void PrintTo(const Unit& unit, std::ostream* out)
{
    *out << "{ " << unit.sector << ", VOB " << unit.vob << ", cell " << unit.cell << ", " << unit.highlight << " }";
}

std::vector<Unit> unitsOf(const Bytes& vob)
{
    std::vector<Unit> units;
    for (uint64_t at = 0; at < vob.size(); at += 2048) {
        if (!isNav(vob, at)) continue;
        units.push_back({ numberAt(vob, at + 45, 4), numberAt(vob, at + 1055, 2), numberAt(vob, at + 1058, 1),
                          toHex(slice(vob, at + 141, 2)) });
    }
    return units;
}

MenuSpec animated(const Movie& movie, const std::string& keys = "")
{
    return { .background = movie.bytes, .keys = "type=animated\n" + keys };
}

MenuSpec pair(MenuSpec menu)
{
    menu.letterbox = bmpFile(ByteImage(576));
    return menu;
}

}   // namespace

// Each menu's clock starts at 0, which gives it its own VOB number.
TEST(Menus, NumberedByTheirClocks)
{
    const struct {
        const char* what;
        std::vector<MenuSpec> menus;
        std::vector<Unit> units;
    } cases[] = {
        { "one still", { {} }, { { 0, 1, 1, "00 01" } } },
        { "two stills", { {}, {} }, { { 0, 1, 1, "00 01" }, { 3, 2, 1, "00 01" } } },
        { "still, pair, still",
          { {}, pair({}), { .background = stillAsset(2013) } },
          { { 0, 1, 1, "00 01" }, { 3, 2, 1, "00 01" }, { 7, 3, 1, "00 01" } } },
        { "animated, still, animated pair",
          { animated(shortUnits(3)), {}, pair(animated(shortUnits(2), "loop=1\n")) },
          { { 0, 1, 1, "00 01" },
            { 3, 1, 1, "00 02" },
            { 5, 1, 1, "00 02" },
            { 7, 2, 1, "00 01" },
            { 10, 3, 1, "00 01" },
            { 14, 3, 1, "00 02" } } },
    };
    for (const auto& c : cases) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            const Bytes vob = authored(domain, c.menus);
            EXPECT_EQ(c.units, unitsOf(vob)) << domain.name << ", " << c.what;
            for (const Unit& unit : unitsOf(vob)) {
                const bool first = unit.highlight == "00 01";
                EXPECT_EQ(first, toHex(slice(vob, unit.sector * 2048 + 4, 6)) == "44 00 04 00 04 01") << c.what;
            }
        }
    }
}

// The first menu's loop point splits every VOB of the file; the highlight stands from the first unit behind it on.
TEST(Menus, LoopOfTheFirstMenu)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        // Unit 1, of 43200, comes 146 later than it was: one sub-picture pack is in front of it.
        const Bytes split = authored(domain, { animated(shortUnits(3), "loop=43200\n"), animated(shortUnits(3)), {} });
        const std::vector<Unit> expected = {
            { 0, 1, 1, "00 00" },  { 2, 1, 2, "00 01" },  { 5, 1, 2, "00 02" },  { 7, 2, 1, "00 00" },
            { 10, 2, 2, "00 02" }, { 12, 2, 2, "00 02" }, { 14, 3, 1, "00 00" },
        };
        EXPECT_EQ(expected, unitsOf(split)) << domain.name;
        for (const uint64_t sector : { 0u, 7u, 14u })
            expectZeros(split, sector * 2048 + 143, sector * 2048 + 1024, "PCI");
        expectAt(split, 2 * 2048 + 143, "00 01 19 40 FF FF FF FF FF FF FF FF 10 00", "28800 + 43200");

        // A loop point of a later menu splits nothing.
        const Bytes whole = authored(domain, { animated(shortUnits(3)), animated(shortUnits(3), "loop=43200\n") });
        const std::vector<Unit> unsplit = {
            { 0, 1, 1, "00 01" }, { 3, 1, 1, "00 02" }, { 5, 1, 1, "00 02" },
            { 7, 2, 1, "00 01" }, { 9, 2, 1, "00 02" }, { 12, 2, 1, "00 02" },
        };
        EXPECT_EQ(unsplit, unitsOf(whole)) << domain.name;
        // A delay does not split either.
        const Bytes delayed = authored(domain, { animated(shortUnits(2), "delay=43200\n") });
        EXPECT_EQ((std::vector<Unit>{ { 0, 1, 1, "00 01" }, { 2, 1, 1, "00 02" } }), unitsOf(delayed)) << domain.name;
    }
}

// The clocks of the VOB count, not those of the asset: packs behind the sub-picture are later.
TEST(Menus, LoopPointIsSoughtInTheVob)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        // Unit 1 of the first menu is at 43200, that of the second behind one pack more.
        const Bytes vob = authored(domain, { animated(shortUnits(3), "loop=43201\n"), animated(shortUnits(3)) });
        const std::vector<Unit> expected = {
            { 0, 1, 1, "00 00" }, { 2, 1, 1, "00 00" },  { 4, 1, 2, "00 01" },
            { 7, 2, 1, "00 00" }, { 10, 2, 2, "00 02" }, { 12, 2, 2, "00 02" },
        };
        EXPECT_EQ(expected, unitsOf(vob)) << domain.name;
        expectAt(vob, 2 * 2048 + 1031, "00 00 A8 C0", "43200");
        expectAt(vob, 10 * 2048 + 1031, "00 00 A9 52", "43200 + 146");
        expectAt(vob, 12 * 2048 + 1031, "00 01 52 12", "86400 + 146");
    }
}

// Sub-picture streams of the last menu are those that all navigation packs tell.
TEST(Menus, LastMenuStandsForAll)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Bytes one = authored(domain, { pair({}), pair(animated(shortUnits(2))), {} });
        ASSERT_EQ(13u * 2048, one.size());
        for (const uint64_t sector : { 0u, 4u, 10u }) {
            expectAt(one, sector * 2048 + 1449, "7F FF FF FF 00 00 00 00", "one stream");
        }
        expectAt(one, 8 * 2048 + 1449, "80 00 00 04 00 00 00 00", "one stream, its pack four sectors before");
        const Bytes two = authored(domain, { {}, animated(shortUnits(2)), pair({}) });
        ASSERT_EQ(12u * 2048, two.size());
        for (const uint64_t sector : { 0u, 3u, 8u }) {
            expectAt(two, sector * 2048 + 1449, "7F FF FF FF 7F FF FF FF 00 00 00 00", "two streams");
        }
        expectAt(two, 6 * 2048 + 1449, "80 00 00 03 7F FF FF FF", "a second stream that is not there");
        // The highlight is each menu's own.
        expectAt(one, 155, "21 20", "pair");
        expectAt(one, 10 * 2048 + 155, "10 00", "no pair");
        expectAt(two, 155, "10 00", "no pair");
        expectAt(two, 8 * 2048 + 155, "21 20", "pair");
    }
}

// ---- the highlight ------------------------------------------------------------------------------------------------

// The letterbox group: y x 3 / 4 + 72, or + 60. Buttons past the 18th are left out of both groups.
TEST(Menus, LetterboxGroups)
{
    const struct {
        const char* mode;
        uint64_t height;
        const char *first, *last;   // entries 18 and 35
    } standards[] = {
        // y 40 to 100: 102 to 147; y 140 to 200: 177 to 222
        { "PAL", 576, "41 00 40 06 60 93 14 02 14 02 30 02 00 00 00 01 00 00",
          "D2 81 58 0B 10 DE 11 13 11 13 30 02 00 00 00 01 00 00" },
        // 90 to 135, 165 to 210
        { "NTSC", 480, "41 00 40 05 A0 87 14 02 14 02 30 02 00 00 00 01 00 00",
          "D2 81 58 0A 50 D2 11 13 11 13 30 02 00 00 00 01 00 00" },
    };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        for (const auto& standard : standards) {
            const Bytes picture = bmpFile(ByteImage(standard.height));
            const Bytes vob = authored(
                domain, { { .subPicture = picture, .letterbox = picture, .keys = buttonKeys(20) } }, standard.mode);
            expectAt(vob, 155, "21 20 00 14 14 00 00 00", standard.mode);
            // Button 1: x 16 to 64, colour set 1. Button 18: x 16 + 5 x 56 = 296 to 344, colour set 3.
            expectAt(vob, 187, "41 00 40 02 80 64 14 02 14 02 30 02 00 00 00 01 00 00", "button 1");
            expectAt(vob, 187 + 17 * 18, "D2 81 58 08 C0 C8 11 13 11 13 30 02 00 00 00 01 00 00", "button 18");
            expectAt(vob, 187 + 18 * 18, standard.first, "button 1, letterbox");
            expectAt(vob, 187 + 35 * 18, standard.last, "button 18, letterbox");
        }
    }
}

TEST(Menus, ThirtySixButtons)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Bytes vob = authored(domain, { { .keys = buttonKeys(36) } });
        expectAt(vob, 155, "10 00 00 24 24", "36 buttons in one group");
        // Button 36: x 16 + 11 x 56 = 632 to 680, y 240 to 300, colour set 3
        expectAt(vob, 187 + 35 * 18, "E7 82 A8 0F 01 2C 23 01 23 01 30 02 00 00 00 01 00 00", "button 36");
        expectZeros(vob, 187 + 36 * 18, 1024, "behind the buttons");
    }
}
