// The menus of the audio manager: table, language unit, program chains.
#include "audio/audio_ifo.h"
#include "tests/audio/table_run.h"

namespace {

Bytes menuTable(TableRun& run, const VobuRecord* cells)
{
    uint8_t* block = nullptr;
    EXPECT_EQ(0u, orvBuildAmgMenuTable(run.context.get(), cells, &block));
    return takeBlock(block);
}

Bytes languageUnit(TableRun& run, uint64_t group, const VobuRecord* cells)
{
    uint8_t* block = nullptr;
    EXPECT_EQ(0u, orvBuildAmgLanguageUnit(run.context.get(), group, cells, &block));
    return takeBlock(block);
}

// A chain behind whatever the block holds.
Bytes chain(TableRun& run, uint64_t menuIndex, const VobuRecord* cells, const Bytes& before = {})
{
    uint8_t* block = nullptr;
    EXPECT_EQ(0u, osAllocMem(before.size(), &block));
    std::copy(before.begin(), before.end(), block);
    EXPECT_EQ(0u, orvBuildAmgMenuPgc(run.context.get(), menuIndex, cells, &block));
    return takeBlock(block);
}

// Menus without anything in them.
struct MenuRun : TableRun {
    explicit MenuRun(uint64_t menus, int64_t standard = STANDARD_PAL) : TableRun(standard, { { {} } })
    {
        context->amgMenuCount = menus;
    }
};

constexpr uint64_t CHAIN = 290;

}   // namespace

TEST(AmgMenus, OneMenuWholeTable)
{
    MenuRun run(1);
    const VobuBlock cells({ { .sector = 0, .lastSector = 2, .pictures = 1 } });
    expectSameBytes(
        layout(322,
               {
                   { 0, "00 01 00 00 00 00 01 41 65 6E 00 80 00 00 00 10" },
                   { 16, "00 01 00 00 00 00 01 31 82 00 00 00 00 00 00 10" },
                   { 32, "00 00 01 01 00 00 00 52" },
                   { 32 + 28, "80" },
                   { 32 + 228, "00 EC 01 04 01 06 01 1E 00 01 00 01 00 00 00 17" },
                   { 32 + 260, "01 00 02 00 FF 00 00 00 00 52 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02" },
                   { 32 + 286, "00 01 00 01" },
               }),
        menuTable(run, cells.list), "menu table");
}

TEST(AmgMenus, UnitsOfManyMenus)
{
    for (const uint64_t menus : { 1u, 2u, 3u, 50u, 99u }) {
        MenuRun run(menus);
        std::vector<Vobu> units;
        for (uint64_t i = 0; i < menus; i++)
            units.push_back({ .sector = 4 * i, .lastSector = 4 * i + 3, .vob = i + 1 });
        const VobuBlock cells(units);
        const Bytes table = menuTable(run, cells.list);
        EXPECT_EQ(24 + 298 * menus, table.size());
        EXPECT_EQ(table.size() - 1, numberAt(table, 4, 4));
        const Bytes unit = languageUnit(run, 0, cells.list);
        EXPECT_EQ(unit, slice(table, 16, table.size()));
        EXPECT_EQ(menus, numberAt(unit, 0, 2));
        EXPECT_EQ(0u, numberAt(unit, 2, 2));
        EXPECT_EQ(unit.size() - 1, numberAt(unit, 4, 4));
        for (uint64_t i = 0; i < menus; i++) {
            const uint64_t at = 8 + 8 * menus + CHAIN * i;
            EXPECT_EQ(0x82000000u, numberAt(unit, 8 + 8 * i, 4));
            EXPECT_EQ(at, numberAt(unit, 12 + 8 * i, 4));
            EXPECT_EQ(chain(run, i, cells.list), slice(unit, at, CHAIN)) << i;
            EXPECT_EQ(4 * i, numberAt(unit, at + 262 + 8, 4));
            EXPECT_EQ(4 * i + 3, numberAt(unit, at + 262 + 20, 4));
            EXPECT_EQ((i + 1) << 16 | 1, numberAt(unit, at + 286, 4));
        }
    }
}

// Every menu is of group 0.
TEST(AmgMenus, UnitOfAnotherGroup)
{
    MenuRun run(3);
    const VobuBlock cells({ {}, {}, {} });
    EXPECT_EQ("00 00 00 00 00 00 00 07", toHex(languageUnit(run, 1, cells.list)));
    EXPECT_EQ("00 00 00 00 00 00 00 07", toHex(languageUnit(run, 99, cells.list)));
}

// A chain is put behind what the block has; its offsets count from its own start.
TEST(AmgMenus, ChainIsAppended)
{
    MenuRun run(2);
    const VobuBlock cells({ { .sector = 1, .lastSector = 2 }, { .sector = 3, .lastSector = 9, .vob = 2 } });
    const Bytes before = { 1, 2, 3, 4, 5 };
    const Bytes both = chain(run, 1, cells.list, before);
    EXPECT_EQ(before, slice(both, 0, 5));
    EXPECT_EQ(chain(run, 1, cells.list), slice(both, 5, both.size()));
    EXPECT_EQ(CHAIN + 5, both.size());
}

TEST(AmgMenus, WholeChain)
{
    MenuRun run(3, STANDARD_NTSC);
    for (uint64_t i = 0; i < 16; i++) {
        run.context->amgAttributes.colorTable[i] =
            uint32_t(0xEE000000 | (0x30 + i) << 16 | (0x20 + i) << 8 | (0x10 + i));
    }
    const VobuBlock cells({ { .sector = 0, .lastSector = 0x20, .pictures = 15, .vob = 1 },
                            { .sector = 0x21, .lastSector = 0x01020304, .pictures = 29, .vob = 0x0102, .cell = 2 },
                            { .sector = 0x01020305, .lastSector = 0x01020306, .pictures = 31, .vob = 2, .cell = 1 } });
    // Menu 2: frames of VOB 2, sectors and numbers of record 2
    expectSameBytes(layout(CHAIN,
                           {
                               { 0, "00 00 01 01 00 00 01 C1" },
                               { 28, "80" },
                               { 164, "00 10 20 30 00 11 21 31 00 12 22 32 00 13 23 33 00 14 24 34 00 15 25 35" },
                               { 188, "00 16 26 36 00 17 27 37 00 18 28 38 00 19 29 39 00 1A 2A 3A 00 1B 2B 3B" },
                               { 212, "00 1C 2C 3C 00 1D 2D 3D 00 1E 2E 3E 00 1F 2F 3F" },
                               { 228, "00 EC 01 04 01 06 01 1E" },
                               { 236, "00 01 00 01 00 00 00 17" },
                               { 260, "01 00" },
                               { 262, "02 00 FF 00 00 00 01 C1 00 00 00 21 00 00 00 00 00 00 00 21 01 02 03 04" },
                               { 286, "01 02 00 02" },
                           }),
                    chain(run, 1, cells.list), "chain");
}

TEST(AmgMenus, PlayTimes)
{
    const struct {
        int64_t standard;
        std::vector<uint64_t> pictures;   // of the units of menu 1
        const char* time;
    } cases[] = {
        { STANDARD_PAL, { 1 }, "00 00 00 52" },   // one frame counts as twelve
        { STANDARD_NTSC, { 1 }, "00 00 00 D2" },
        { STANDARD_PAL, { 0 }, "00 00 00 40" },
        { STANDARD_NTSC, { 0 }, "00 00 00 C0" },
        { STANDARD_PAL, { 2 }, "00 00 00 42" },   // and two as two
        { STANDARD_PAL, { 1, 1 }, "00 00 00 42" },
        { STANDARD_PAL, { 1, 0 }, "00 00 00 52" },
        { STANDARD_PAL, { 9 }, "00 00 00 49" },
        { STANDARD_PAL, { 11 }, "00 00 00 51" },
        { STANDARD_PAL, { 12, 13 }, "00 00 01 40" },
        { STANDARD_NTSC, { 12, 13 }, "00 00 00 E5" },
        { STANDARD_NTSC, { 30 }, "00 00 01 C0" },
        { STANDARD_PAL, { 25 * 60 }, "00 01 00 40" },
        { STANDARD_PAL, { 25 * 3600 * 11, 25 * 61, 24 }, "11 01 01 64" },
    };
    for (const auto& c : cases) {
        MenuRun run(1, c.standard);
        std::vector<Vobu> units;
        for (const uint64_t pictures : c.pictures) units.push_back({ .pictures = pictures });
        units.push_back({ .pictures = 500, .vob = 2 });   // of nobody
        const VobuBlock cells(units);
        const Bytes bytes = chain(run, 0, cells.list);
        expectAt(bytes, 4, c.time, "play time of the chain");
        expectAt(bytes, 262 + 4, c.time, "play time of the cell");
    }
}

// Frames count by VOB number; sectors and numbers are those of the record of the menu's own index, whatever VOB that
// is of. An animated menu of several units moves those of the menus behind it.
TEST(AmgMenus, RecordIForMenuI)
{
    MenuRun run(3);
    const VobuBlock cells({ { .sector = 0, .lastSector = 3, .pictures = 12, .vob = 1 },
                            { .sector = 4, .lastSector = 5, .pictures = 13, .vob = 1 },
                            { .sector = 6, .lastSector = 9, .pictures = 14, .vob = 1, .cell = 2 },
                            { .sector = 10, .lastSector = 12, .pictures = 1, .vob = 2 },
                            { .sector = 13, .lastSector = 15, .pictures = 2, .vob = 3 } });
    const struct {
        const char* time;
        const char* sectors;   // from the cell's byte 8
        const char* numbers;
    } menus[] = {
        { "00 00 01 54", "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 03", "00 01 00 01" },
        { "00 00 00 52", "00 00 00 04 00 00 00 00 00 00 00 04 00 00 00 05", "00 01 00 01" },
        { "00 00 00 42", "00 00 00 06 00 00 00 00 00 00 00 06 00 00 00 09", "00 01 00 02" },
    };
    for (uint64_t i = 0; i < 3; i++) {
        const Bytes bytes = chain(run, i, cells.list);
        expectAt(bytes, 4, menus[i].time, "play time");
        expectAt(bytes, 262 + 8, menus[i].sectors, "sectors");
        expectAt(bytes, 286, menus[i].numbers, "numbers");
    }
}

// More menus than records: nothing behind the list is read.
TEST(AmgMenus, MenuWithoutRecord)
{
    MenuRun run(3);
    const VobuBlock cells({ { .sector = 5, .lastSector = 8, .pictures = 2 } });
    const VobuBlock none(std::vector<Vobu>{});
    for (const VobuRecord* list :
         { static_cast<const VobuRecord*>(cells.list), static_cast<const VobuRecord*>(none.list),
           static_cast<const VobuRecord*>(nullptr) }) {
        const Bytes bytes = chain(run, 2, list);
        ASSERT_EQ(CHAIN, bytes.size());
        expectAt(bytes, 0, "00 00 01 01 00 00 00 40", "head");
        expectAt(bytes, 260, "01 00 02 00 FF 00 00 00 00 40", "cell");
        expectZeros(bytes, 262 + 8, CHAIN, "sectors and numbers");
    }
}

TEST(AmgMenus, OnlyALoopingMenuGoesOn)
{
    const struct {
        uint64_t loopMode;
        const char* still;
    } cases[] = { { LOOP_NONE, "FF" }, { LOOP_ALWAYS, "00" }, { LOOP_FROM, "FF" }, { LOOP_DELAY, "FF" } };
    for (const auto& c : cases) {
        MenuRun run(2);
        run.context->amgMenus[1].loopMode = c.loopMode;
        const VobuBlock cells({ {}, { .vob = 2 } });
        expectAt(chain(run, 0, cells.list), 262, "02 00 FF 00", "cell of the other menu");
        expectAt(chain(run, 1, cells.list), 262, std::string("02 00 ") + c.still + " 00", "cell");
    }
}

// What a menu has besides is not in its chain.
TEST(AmgMenus, ButtonsAndPlayFramesDoNotCount)
{
    MenuRun plain(1), rich(1);
    MenuDesc& menu = rich.context->amgMenus[0];
    menu.playFrames = 11;
    menu.buttonCount = 36;
    menu.menuType = 0x20;
    menu.audioButtonMark = 3;
    menu.palette[1] = 0x01020304;
    rich.context->amgAttributes.audioStreamCount = 2;
    const VobuBlock cells({ { .sector = 0, .pictures = 5 } });
    EXPECT_EQ(menuTable(plain, cells.list), menuTable(rich, cells.list));
}
