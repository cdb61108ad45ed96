// Navigation packs of random titles and menus, byte for byte against the plain writing of the rules (nav_rig.h), and
// what it costs to fill those of a long movie.
#include "base/time_code.h"
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>

namespace {

// How the units of a random list follow one another.
enum Shape { RISING, OVERLAPPING, HOLES, FALLING_BACK, BELOW_ZERO, STILL_CLOCKS, LATE_CLOCKS, SHAPES };
const char* const SHAPE_NAMES[] = { "rising",     "overlapping", "holes",     "falling back",
                                    "below zero", "equal times", "late times" };

struct Dice {
    std::mt19937_64 engine;

    explicit Dice(uint64_t seed) : engine(seed) {}
    uint64_t below(uint64_t n)
    {
        return engine() % n;
    }
    bool oneIn(uint64_t n)
    {
        return below(n) == 0;
    }
};

// Next display start behind a unit that begins at start and lasts length.
uint64_t nextStart(Dice& dice, Shape shape, uint64_t start, uint64_t length)
{
    switch (shape) {
    case OVERLAPPING: return start + dice.below(length + 1);
    case HOLES: return start + length + (dice.oneIn(3) ? dice.below(400000) : 0);
    case FALLING_BACK: return dice.oneIn(12) ? dice.below(start + 1) : start + length;
    case STILL_CLOCKS: return dice.oneIn(2) ? start : start + length;
    default: return start + length;
    }
}

std::vector<VobuRecord> randomUnits(Dice& dice, uint64_t count, uint64_t ticks, Shape shape, bool isMenu)
{
    std::vector<Unit> units;
    Unit unit = { .sector = dice.below(3) };
    unit.vobId = dice.oneIn(8) ? 0 : 1;
    const uint64_t cellLength = 1 + dice.below(count), vobLength = 1 + dice.below(count);
    uint64_t start = shape == BELOW_ZERO ? dice.below(3) * 1000 : dice.below(100000);
    // Where 32 bits change their sign, and where they end.
    if (shape == LATE_CLOCKS) start = (dice.oneIn(2) ? 0x80000000 : 0x100000000) - dice.below(count * 20 * ticks);
    for (uint64_t i = 0; i < count; i++) {
        if (i && dice.oneIn(cellLength)) unit.cellId = isMenu ? 1 + dice.below(3) : unit.cellId + 1;
        if (i && dice.oneIn(vobLength)) {
            unit.vobId++;
            unit.scr = 0;
            if (isMenu) unit.cellId = 1;
            if (isMenu || dice.oneIn(2)) start = dice.below(100000);
        }
        unit.pictureCount = dice.oneIn(10) ? dice.below(3) : 6 + dice.below(13);
        unit.temporalRef = dice.below(4);
        if (shape == BELOW_ZERO && dice.oneIn(3)) unit.temporalRef = dice.below(60);
        unit.firstPts = start + (shape == BELOW_ZERO ? 0 : unit.temporalRef * ticks);
        if (shape == LATE_CLOCKS) unit.firstPts = uint64_t(int64_t(int32_t(uint32_t(unit.firstPts))));
        uint64_t* const ends[] = { &unit.firstRefEnd, &unit.secondRefEnd, &unit.thirdRefEnd };
        for (uint64_t* end : ends) *end = dice.below(4);
        units.push_back(unit);
        start = nextStart(dice, shape, start, unit.pictureCount * ticks);
        unit.sector += 1 + dice.below(3);
        unit.scr += unit.pictureCount * ticks;
    }
    return unitRecords(units);
}

// Packs of up to three streams, whose times follow those of the units, mostly.
std::vector<StreamPackRecord> randomPacks(Dice& dice, const std::vector<VobuRecord>& units, uint64_t ticks)
{
    static const uint64_t kinds[] = { PACK_AC3,        PACK_AC3,        PACK_AC3, PACK_LPCM,
                                      PACK_SUBPICTURE, PACK_SUBPICTURE, PACK_DTS, PACK_UNKNOWN };
    std::vector<StreamPackRecord> packs;
    const uint64_t wildness = dice.below(3) * 10 + 2;   // one in so many has a time of its own
    for (const VobuRecord& unit : units) {
        const uint64_t display = unit.firstPts - unit.temporalRef * ticks;
        for (uint64_t n = dice.below(4), i = 0; i < n; i++) {
            StreamPackRecord pack = {};
            pack.sector = unit.sector + dice.below(3);
            pack.pts = display + i * unit.pictureCount * ticks / n;
            if (dice.oneIn(wildness)) pack.pts = dice.oneIn(2) ? 0 : dice.below(3000000);
            pack.kind = kinds[dice.below(std::size(kinds))];
            pack.streamIndex = dice.below(dice.oneIn(5) ? 4 : 2);
            pack.vobId = unit.vobId;
            if (pack.kind == PACK_SUBPICTURE) pack.vobuSector = unit.sector;
            if (dice.oneIn(300)) pack.sector += 40000;
            packs.push_back(pack);
        }
    }
    return packs;
}

MenuDesc randomMenu(Dice& dice)
{
    MenuDesc menu = {};
    menu.hasLetterbox = dice.below(2);
    menu.buttonCount = dice.below(37);
    for (auto& set : menu.colorSets) {
        for (uint8_t& byte : set) byte = uint8_t(dice.below(256));
    }
    for (uint64_t i = 0; i < menu.buttonCount; i++) {
        ButtonDesc& button = menu.buttons[i];
        button.xStart = dice.below(720);
        button.xEnd = dice.below(720);
        button.yStart = dice.below(576);
        button.yEnd = dice.below(576);
        button.autoAction = dice.below(2);
        button.color = dice.below(6);
        button.upLink = dice.below(37);
        button.downLink = dice.below(37);
        button.leftLink = dice.below(37);
        button.rightLink = dice.below(37);
        button.command = dice.oneIn(3) ? 7 : dice.oneIn(2) ? 10 : 0;   // none such, link, nothing
        button.param1 = dice.below(256);
    }
    return menu;
}

NavSpec randomSpec(uint64_t seed, uint64_t longest, bool isMenu)
{
    Dice dice(seed);
    NavSpec given;
    given.standard = dice.oneIn(2) ? STANDARD_PAL : STANDARD_NTSC;
    given.audioCount = dice.below(5);
    given.subPictureCount = dice.below(3);
    const uint64_t ticks = given.standard == STANDARD_PAL ? 3600 : 3003;
    given.vobus = randomUnits(dice, 1 + dice.below(longest), ticks, Shape(seed % SHAPES), isMenu);
    if (!dice.oneIn(10)) given.packs = randomPacks(dice, given.vobus, ticks);
    given.sectors = given.vobus.back().sector + 1 + dice.below(4);
    if (!isMenu) return given;
    for (uint64_t n = dice.below(given.vobus.back().vobId + 2); n > 0; n--) given.menus.push_back(randomMenu(dice));
    if (!given.menus.empty() && dice.oneIn(2)) {
        given.menus[0].loopMode = LOOP_FROM;
        given.menus[0].loopValue = dice.below(given.vobus.size() * 12 * ticks / 2);
        for (VobuRecord& unit : given.vobus) unit.cellId = unit.scr >= given.menus[0].loopValue ? 2 : 1;
    }
    return given;
}

// The first pack that is not what the rules make of it.
std::string wrongPacks(const NavSpec& given, const NavRun& run, bool isMenu)
{
    for (uint64_t i = 0; i < given.vobus.size(); i++) {
        const auto from = run.before.begin() + std::ptrdiff_t(given.vobus[i].sector * PACK_BYTES);
        const Bytes before(from, from + PACK_BYTES);
        const Bytes expected = isMenu ? referenceMenuPack(given, i, before) : referenceTitlePack(given, i, before);
        const std::string text = differences(run.packAt(given.vobus[i].sector), expected);
        if (!text.empty())
            return "unit " + std::to_string(i) + " of " + std::to_string(given.vobus.size()) + "\n" + text;
    }
    return {};
}

void compareRandom(uint64_t seed, uint64_t longest, bool isMenu)
{
    SCOPED_TRACE("seed " + std::to_string(seed) + ", " + SHAPE_NAMES[seed % SHAPES]);
    const NavSpec given = randomSpec(seed, longest, isMenu);
    const NavRun run = isMenu ? setupMenu(given) : setupTitle(given);
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(strayChanges(given, run), "");
    ASSERT_EQ(wrongPacks(given, run, isMenu), "");
}

}   // namespace

TEST(NavRandom, ShortTitles)
{
    for (uint64_t seed = 1; seed <= 600 && !HasFatalFailure(); seed++) compareRandom(seed, 40, false);
}

TEST(NavRandom, MiddlingTitles)
{
    for (uint64_t seed = 1001; seed <= 1060 && !HasFatalFailure(); seed++) compareRandom(seed, 400, false);
}

TEST(NavRandom, ShortMenus)
{
    for (uint64_t seed = 2001; seed <= 2600 && !HasFatalFailure(); seed++) compareRandom(seed, 40, true);
}

TEST(NavRandom, MiddlingMenus)
{
    for (uint64_t seed = 3001; seed <= 3060 && !HasFatalFailure(); seed++) compareRandom(seed, 400, true);
}

TEST(NavRandom, LongTitles)
{
    // Every shape, in both standards by turns: 2000 units, packs of several streams.
    for (uint64_t seed = 4002; seed < 4002 + SHAPES && !HasFatalFailure(); seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", " + SHAPE_NAMES[seed % SHAPES]);
        Dice dice(seed);
        NavSpec given;
        given.standard = seed % 2 ? STANDARD_PAL : STANDARD_NTSC;
        given.audioCount = 2;
        const uint64_t ticks = given.standard == STANDARD_PAL ? 3600 : 3003;
        given.vobus = randomUnits(dice, 2000, ticks, Shape(seed % SHAPES), false);
        given.packs = randomPacks(dice, given.vobus, ticks);
        const NavRun run = setupTitle(given);
        EXPECT_EQ(run.result, 0u);
        ASSERT_EQ(wrongPacks(given, run, false), "");
    }
}

TEST(NavRandom, ScannedMovies)
{
    // The whole road: a stream is made, scanned with chapters, and its packs filled, in several files.
    for (uint64_t seed = 1; seed <= 12; seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        MovieSpec movieSpec = { .standard = seed % 2 ? STANDARD_PAL : STANDARD_NTSC,
                                .streams = { ac3Stream(0), dtsStream(1), subPictureStream(0) } };
        for (uint64_t i = 0; i < 150; i++) {
            VobuSpec unit = { .pictures = dice.oneIn(9) ? dice.below(4) : 10 + dice.below(6),
                              .pictureBytes = { 900, 200 } };
            if (unit.pictures == 0) unit.duration = 36000;
            unit.newVob = dice.oneIn(60);
            movieSpec.vobus.push_back(unit);
        }
        const Movie movie = makeMovie(movieSpec);
        const auto titleSet = std::make_unique<TitleSetDesc>();
        titleSet->chapterCount = 5;
        for (uint64_t i = 0; i < 5; i++) titleSet->chapters[i].startFrame = int64_t(i * 900000);

        NavSpec given;
        given.standard = movieSpec.standard;
        given.audioCount = 2;
        const ScanSpec scanSpec = { .standard = given.standard, .titleSet = titleSet.get(), .titleSetNumber = 1 };
        const Scan scan = scanBytes(movie.bytes, scanSpec);
        ASSERT_EQ(scan.result, 0u);
        EXPECT_EQ(describeAll(scan.packs), describeAll(movie.packs));
        given.vobus = scan.vobus;
        given.packs = scan.packs;
        given.sectors = movie.sectors();

        const TempDir folder;
        const RunRoot root(given.standard);
        Sources sources;
        writeSources(sources, folder, movie.bytes, { movie.bytes.size() / 3 + 5, movie.bytes.size() / 2 + 1 });
        const List<VobuRecord> vobus(given.vobus);
        const List<StreamPackRecord> packs(given.packs);
        EXPECT_EQ(
            orvSetupMovieA(&root.context->head, given.standard, 2, sources.slots, vobus.block, packs.block, nullptr, 0),
            0u);
        const NavRun run = { 0, movie.bytes, sources.read() };
        EXPECT_EQ(strayChanges(given, run), "");
        ASSERT_EQ(wrongPacks(given, run, false), "");
        // What was written changes nothing of what a scan finds.
        EXPECT_EQ(describeAll(scanSources(root, sources, scanSpec).vobus), describeAll(scan.vobus));
    }
}

// ---- cost --------------------------------------------------------------------------------------------------------

namespace {

// Units of two packs and half a second, each with an audio pack: seconds that filling them takes.
double secondsFor(uint64_t units, bool isMenu)
{
    std::vector<Unit> list;
    std::vector<StreamPackRecord> packs;
    for (uint64_t i = 0; i < units; i++) {
        list.push_back({ .sector = 2 * i, .scr = 43200 * i, .firstPts = 28800 + 43200 * i });
        packs.push_back({ 2 * i + 1, 28800 + 43200 * i, isMenu && i % 2 ? PACK_SUBPICTURE : PACK_AC3, 0,
                          isMenu && i % 2 ? 2 * i : 0, 1 });
    }
    NavSpec given;
    given.vobus = unitRecords(list);
    given.sectors = 2 * units;
    const TempDir folder;
    const RunRoot root(STANDARD_PAL);
    Sources sources;
    writeSources(sources, folder, Bytes(given.sectors * PACK_BYTES, 0));
    const List<VobuRecord> vobus(given.vobus);
    const List<StreamPackRecord> streamPacks(packs);
    const std::vector<MenuDesc> menus(1, MenuDesc{});
    const auto start = std::chrono::steady_clock::now();
    const uint64_t result = isMenu ? orvSetupMenu(&root.context->head, 2, 1, menus.data(), 1, STANDARD_PAL,
                                                  sources.slots[0], vobus.block, streamPacks.block)
                                   : orvSetupMovieA(&root.context->head, STANDARD_PAL, 2, sources.slots, vobus.block,
                                                    streamPacks.block, nullptr, 0);
    EXPECT_EQ(result, 0u);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}   // namespace

TEST(NavCost, GrowsLittleFasterThanTheMovie)
{
    // Four times the units: a walk over all of them for each of them would take sixteen times as long.
    for (const bool isMenu : { false, true }) {
        SCOPED_TRACE(isMenu ? "menu" : "title");
        double quarter = 1e9, whole = 1e9;
        for (int attempt = 0; attempt < 4; attempt++) {   // a busy machine gets more
            quarter = std::min(quarter, secondsFor(4000, isMenu));
            whole = std::min(whole, secondsFor(16000, isMenu));
            if (whole < 8 * quarter) break;
        }
        EXPECT_LT(whole, 8 * quarter) << quarter << " s for 4000 units, " << whole << " s for 16000";
        EXPECT_LT(whole, 60.0);
    }
}
