// What the tables say of a disc's menus, and what becomes of a menu VOB that a run is not to make.
#include "tests/run/menu_project.h"
#include "tests/video/table_bytes.h"

#include "base/memory.h"
#include "video/drivers.h"

namespace {

const char* const NO_COMMAND = "00 00 00 00 00 00 00 00";

std::vector<MenuSpec> twoMenus()
{
    return { { .keys = buttonKeys(3) },
             { .background = shortUnits(3).bytes,
               .letterbox = bmpFile(ByteImage(576)),
               .keys = "type=animated\nloop=1\nmenutype=audio\n" } };
}

}   // namespace

// A still of three sectors; an animated menu of three units, 36 pictures, with two sub-pictures: 8 sectors.
TEST(Menus, TablesOfATitleSet)
{
    DiscRun run;
    ASSERT_EQ(0u, run.author(menuProject(
                      run, { .titleSet = twoMenus(), .titleSetKeys = "videomode=16:9\naudio=AC3\nchannel=6\n" })));
    expectSoundDisc(run);
    EXPECT_EQ(11u * 2048, run.get("VTS_01_0.VOB").size());
    const Bytes ifo = run.get("VTS_01_0.IFO");
    ASSERT_EQ(9u * 2048, ifo.size());
    expectAt(ifo, 12, "00 00 00 30", "last sector: 2 x 9 + 11 + 20 - 1");
    expectAt(ifo, 192, "00 00 00 09 00 00 00 14", "start of the menus, of the title");
    expectAt(ifo, 200,
             "00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00 05 00 00 00 06 00 00 00 07 00 00 00 08",
             "tables");
    expectAt(ifo, 256, "5E 00 00 01 00 05 00 00 00 00 00 00", "16:9 PAL video, AC-3 of six channels");
    expectAt(ifo, 340, "00 01 00 00 00 00 00 00", "one sub-picture stream");

    const uint64_t units = 3 * 2048, first = units + 16 + 24;
    expectAt(ifo, units, "00 01 00 00", "language units");
    expectAt(ifo, units + 8, "00 00 00 A0 00 00 00 10", "a unit of root and audio menus");
    expectAt(ifo, units + 16, "00 02 00 00", "menus");
    expectAt(ifo, units + 24, "83 00 00 00 00 00 00 18", "root menu");
    expectAt(ifo, units + 32, "00 00 00 00", "the other one");
    // One cell, a picture that counts as twelve.
    expectAt(ifo, first, "00 00 01 01 00 00 00 52 00 08 03 00 80 00", "first chain");
    expectAt(ifo, first + 28, "80 00 00 00 00 00 00 00", "its sub-picture");
    // Eight commands; none for the cell of a still.
    expectAt(ifo, first + 228, "00 EC 01 34 01 36 01 4E", "places");
    expectAt(ifo, first + 236, "00 08 00 00 00 00 00 47", "command counts");
    expectAt(ifo, first + 308, "01 00", "program map");
    expectAt(ifo, first + 310, "02 00 FF 00 00 00 00 52 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02", "cell");
    expectAt(ifo, first + 334, "00 01 00 01", "position");

    const uint64_t second = units + 16 + numberAt(ifo, units + 36, 4);
    ASSERT_EQ(first + 338, second);
    expectAt(ifo, second, "00 00 01 01 00 00 01 51 00 08 03 00 80 00", "36 pictures");
    expectAt(ifo, second + 28, "80 00 01 00 00 00 00 00", "two sub-pictures");
    expectAt(ifo, second + 236, "00 05 00 00 00 01 00 37", "five commands and one of the cell");
    expectAt(ifo, second + 284, "20 07 00 00 00 00 00 01", "LinkCN 1");
    expectAt(ifo, second + 294, "02 00 00 01 00 00 01 51 00 00 00 03 00 00 00 00 00 00 00 09 00 00 00 0A", "cell");
    expectAt(ifo, second + 318, "00 02 00 01", "position");

    expectAt(ifo, 5 * 2048,
             "00 02 00 00 00 00 00 1F 00 01 01 00 00 00 00 00 00 00 00 02 00 02 01 00 00 00 00 03 00 00 00 0A",
             "cells");
    expectAt(ifo, 6 * 2048, "00 00 00 13 00 00 00 00 00 00 00 03 00 00 00 07 00 00 00 09", "units");
    expectAt(run.get("VTS_01_0.VOB"), 23, "04", "audio bound");
    const Bytes manager = run.get("VIDEO_TS.IFO");
    expectAt(manager, 1024 + 244, "30 06 00 01 01 83 00 00", "first play: the root menu of title set 1");
}

TEST(Menus, TablesOfTheManager)
{
    DiscRun run;
    ASSERT_EQ(0u, run.author(menuProject(run, { .manager = twoMenus() })));
    expectSoundDisc(run);
    EXPECT_FALSE(run.has("VTS_01_0.VOB"));
    EXPECT_EQ(11u * 2048, run.get("VIDEO_TS.VOB").size());
    const Bytes ifo = run.get("VIDEO_TS.IFO");
    ASSERT_EQ(6u * 2048, ifo.size());
    expectAt(ifo, 12, "00 00 00 16", "last sector: 2 x 6 + 11 - 1");
    expectAt(ifo, 192,
             "00 00 00 06 00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 03 00 00 00 00 00 00 00 04 00 00 00 05",
             "start of the menus, tables");
    expectAt(ifo, 256, "53 00 00 00", "4:3 PAL video without audio");
    expectAt(ifo, 340, "00 01", "one sub-picture stream");
    expectAt(ifo, 1024 + 244, "30 06 00 00 00 42 00 00", "first play: the title menu");
    expectAt(ifo, 2048 + 8, "0C 01 00 01 00 00 01 01 00 00 00 17", "the title set begins at 2 x 6 + 11");

    const uint64_t units = 2 * 2048, first = units + 16 + 24;
    expectAt(ifo, units + 8, "00 00 00 80 00 00 00 10", "a unit of title menus, whatever they are");
    expectAt(ifo, units + 24, "82 00 00 00 00 00 00 18 00 00 00 00", "title menu, and another");
    expectAt(ifo, first, "00 00 01 01 00 00 00 52 00 08 03 03 00 00", "first chain");
    expectAt(ifo, first + 236, "00 07 00 00 00 00 00 3F", "5 + 2 x 1 commands");
    const uint64_t second = units + 16 + numberAt(ifo, units + 36, 4);
    expectAt(ifo, second, "00 00 01 01 00 00 01 51 00 08 03 03 00 00", "second chain");
    expectAt(ifo, second + 28, "80 00 01 00", "two sub-pictures");
    expectAt(ifo, second + 236, "00 01 00 00 00 01 00 17 56 00 00 00 04 00 00 00 20 07 00 00 00 00 00 01", "commands");
    expectAt(ifo, 4 * 2048,
             "00 02 00 00 00 00 00 1F 00 01 01 00 00 00 00 00 00 00 00 02 00 02 01 00 00 00 00 03 00 00 00 0A",
             "cells");
    expectAt(ifo, 5 * 2048, "00 00 00 13 00 00 00 00 00 00 00 03 00 00 00 07 00 00 00 09", "units");
}

// Loop modes as chain and cells tell them: the still time and the command of each cell, and the cell command.
TEST(Menus, CellsOfLoopModes)
{
    const struct {
        const char* keys;
        uint64_t cells;
        const char *first, *last;   // still time and command number
        const char* command;
    } cases[] = {
        // Meant: a menu of many pictures has a cell command in any case; without a loop it is the last one again.
        { "", 1, "FF 00", "FF 00", "56 00 00 00 04 00 00 00" },
        { "loop=1\n", 1, "00 01", "00 01", "20 07 00 00 00 00 00 01" },
        { "loop=43200\n", 2, "00 00", "00 01", "20 07 00 00 00 00 00 02" },
        { "delay=43200\n", 1, "FF 01", "FF 01", "56 00 00 00 04 00 00 00" },
    };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        for (const auto& c : cases) {
            DiscRun run;
            const MenuSpec looping = { .background = shortUnits(4).bytes,
                                       .keys = std::string("type=animated\n") + c.keys };
            // The second menu of a domain has the plainer commands; it is split with the first.
            ASSERT_EQ(0u, run.author(menuProject(run, discOf(domain, { looping, looping }))));
            expectSoundDisc(run);
            const Bytes ifo = run.get(domain.ifo);
            const uint64_t unit = numberAt(ifo, domain.manager ? 200 : 208, 4) * 2048 + 16;
            const uint64_t chain = unit + numberAt(ifo, unit + 20, 4);
            expectAt(ifo, chain + 2, c.cells == 1 ? "01 01" : "02 02", c.keys);
            const uint64_t commands = chain + numberAt(ifo, chain + 228, 2),
                           cells = chain + numberAt(ifo, chain + 232, 2);
            expectAt(ifo, commands + 4, "00 01", "a cell command");
            expectAt(ifo, commands + numberAt(ifo, commands + 6, 2) - 7, c.command, c.keys);
            expectAt(ifo, cells + 2, c.first, std::string("first cell, ") + c.keys);
            expectAt(ifo, cells + 24 * (c.cells - 1) + 2, c.last, std::string("last cell, ") + c.keys);
        }
    }
}

// A domain without menus has no VOB, and one of an earlier run stays.
TEST(Menus, NoMenusNoVob)
{
    DiscRun run;
    run.put("VTS_01_0.VOB", fromHex("01"));
    run.put("VIDEO_TS.VOB", fromHex("02"));
    ASSERT_EQ(0u, run.author(menuProject(run, {})));
    EXPECT_EQ(fromHex("01"), run.get("VTS_01_0.VOB"));
    EXPECT_EQ(fromHex("02"), run.get("VIDEO_TS.VOB"));
    expectAt(run.get("VTS_01_0.IFO"), 192, "00 00 00 00 00 00 00 06", "no menus");
    expectAt(run.get("VIDEO_TS.IFO"), 216, NO_COMMAND, "no cells");
}

// The VOB of an earlier run is replaced, however long it was.
TEST(Menus, EarlierVobIsReplaced)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        DiscRun run, fresh;
        run.put(domain.vob, Bytes(100 * 2048, 0xEE));
        for (DiscRun* const each : { &run, &fresh }) {
            ASSERT_EQ(0u, each->author(menuProject(*each, discOf(domain, { {} }))));
        }
        EXPECT_EQ(fresh.get(domain.vob), run.get(domain.vob)) << domain.name;
    }
}

// With `skipmenu` the menus are not read, and the file that may stand there is neither used nor touched.
TEST(Menus, SkipMenuTouchesNothing)
{
    const Bytes others[] = { fromHex("01"), Bytes(3 * 2048, 0xEE) };
    for (const Bytes& bytes : others) {
        DiscRun run;
        run.put("VTS_01_0.VOB", bytes);
        const std::string project =
            menuProject(run, { .titleSet = { { .background = fromHex("00") } }, .titleSetKeys = "skipmenu=1\n" });
        ASSERT_EQ(0u, run.author(project));
        EXPECT_EQ(bytes, run.get("VTS_01_0.VOB"));
        expectAt(run.get("VTS_01_0.IFO"), 192, "00 00 00 00 00 00 00 06", "no menus");
        EXPECT_FALSE(fileExists(run.log));
    }
    DiscRun run;
    ASSERT_EQ(0u, run.author(menuProject(run, { .titleSet = { {} }, .titleSetKeys = "skipmenu=1\n" })));
    EXPECT_FALSE(run.has("VTS_01_0.VOB"));
}

namespace {

// A title set whose model holds a menu and is told to skip it, as no project file gives it.
struct SkippingModel {
    explicit SkippingModel(const DiscRun& run)
    {
        EXPECT_EQ(0u, orvAllocDiscContext(run.log.c_str(), &context));
        context->head.videoStandard = 1;
        context->head.frameTicks = 3600;
        context->head.titleSetCount = 1;
        EXPECT_EQ(0u, osAllocMem(sizeof(TitleSetDesc), &context->titleSets[0]));
        titleSet = context->titleSets[0];
        EXPECT_EQ(0u, osStrDup(run.inTarget("VTS_01_1.VOB").c_str(), &titleSet->sources[0]));
        titleSet->menuAttributes.isPal = titleSet->titleAttributes.isPal = 1;
        titleSet->menuAttributes.mpegVersion = titleSet->titleAttributes.mpegVersion = 1;
        for (AttributeSet* const set : { &titleSet->menuAttributes, &titleSet->titleAttributes }) {
            for (uint32_t& color : set->colorTable) color = 0x808010;   // black
        }
        titleSet->menuCount = 1;
        titleSet->skipMenu = 1;
        titleSet->menus[0].menuType = 0x80;
        titleSet->menus[0].playFrames = 11;
    }
    ~SkippingModel()
    {
        orvFreeDiscContext(&context);
    }
    SkippingModel(const SkippingModel&) = delete;
    SkippingModel& operator=(const SkippingModel&) = delete;

    DiscContext* context = nullptr;
    TitleSetDesc* titleSet = nullptr;
};

}   // namespace

// The VOB of the earlier run is scanned for the tables and not written.
TEST(Menus, SkippedMenusInTheModelAreScanned)
{
    DiscRun run;
    ASSERT_EQ(0u, run.author(menuProject(run, { .titleSet = { {} } })));
    const Snapshot before = takeSnapshot(run.folder.root / "target");
    SkippingModel model(run);
    ASSERT_EQ(0u, CreateVideoTitleSet(model.context, 1, run.target.c_str()));
    EXPECT_EQ(before, takeSnapshot(run.folder.root / "target"));

    // Navigation packs that say something else are left as they are.
    Bytes vob = run.get("VTS_01_0.VOB");
    for (uint64_t i = 44; i < 1024; i++) vob[i] = 0x55;
    run.put("VTS_01_0.VOB", vob);
    ASSERT_EQ(0u, CreateVideoTitleSet(model.context, 1, run.target.c_str()));
    EXPECT_EQ(vob, run.get("VTS_01_0.VOB"));
    expectSameBytes(before.at("VTS_01_0.IFO"), run.get("VTS_01_0.IFO"), "IFO");
}

// Where there is none, an empty one is opened, in which nothing is found.
TEST(Menus, SkippedMenusInTheModelWithoutAVob)
{
    DiscRun run;
    run.put("VTS_01_1.VOB", fourUnits().bytes);
    SkippingModel model(run);
    EXPECT_EQ(0xFFFFFFFFFFFFFFFDu, CreateVideoTitleSet(model.context, 1, run.target.c_str()));
    EXPECT_EQ(Bytes(), run.get("VTS_01_0.VOB"));
    EXPECT_FALSE(run.has("VTS_01_0.IFO"));
}
