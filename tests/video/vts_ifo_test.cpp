// VTS_nn_0.IFO, byte for byte: header, its tables in file order, and the time map.
#include "video/vts_ifo.h"

#include "base/result.h"
#include "tests/video/ifo_run.h"
#include "tests/video/table_bytes.h"

namespace {

Bytes writeIfo(TestRun& run, uint64_t number, uint64_t menuSectors, uint64_t titleSectors, const VobuRecord* menuList,
               const VobuRecord* titleList)
{
    const std::u16string path = run.folder / u"VTS.IFO";
    EXPECT_EQ(0u,
              orvWriteVtsIfo(run.context.get(), number, path.c_str(), menuSectors, titleSectors, menuList, titleList));
    EXPECT_FALSE(fileExists(run.logPath));
    return readFile(path);
}

// A title without menus.
Bytes titleIfo(TestRun& run, const std::vector<Vobu>& units, uint64_t titleSectors = 30)
{
    const VobuBlock title(units);
    return writeIfo(run, 1, 0, titleSectors, nullptr, title.list);
}

// Three units: a cell of two, 25 pictures, and a cell of one, 25 pictures.
const std::vector<Vobu> TWO_CELLS = {
    { .sector = 0, .lastSector = 9, .pictures = 12, .cell = 1, .firstPts = 28800 },
    { .sector = 10, .lastSector = 19, .pictures = 13, .cell = 1, .firstPts = 72000 },
    { .sector = 20, .lastSector = 29, .pictures = 25, .cell = 2, .firstPts = 118800 },
};

const std::vector<Vobu> ONE_UNIT = { { .lastSector = 9, .pictures = 25 } };

// The time map: the table behind the header field at 212, cut to its own last byte.
Bytes timeMap(const Bytes& ifo)
{
    const uint64_t at = numberAt(ifo, 212, 4) * 2048;
    return slice(ifo, at, numberAt(ifo, at + 4, 4) + 1);
}

// count units of this many pictures, ten sectors each, end to end from the time given.
std::vector<Vobu> evenUnits(uint64_t count, uint64_t pictures, uint64_t ticks, uint64_t from = 0)
{
    std::vector<Vobu> units;
    for (uint64_t i = 0; i < count; i++) {
        units.push_back({ .sector = 10 * i,
                          .lastSector = 10 * i + 9,
                          .pictures = pictures,
                          .firstPts = from + i * pictures * ticks });
    }
    return units;
}

}   // namespace

TEST(VtsIfo, WithoutMenusWholeFile)
{
    TestRun run;
    AttributeSet& title = run.titleSet(1).titleAttributes;
    title.mpegVersion = 1;
    title.isPal = 1;
    title.aspectRatio = 3;
    title.bitrateMode = 1;
    title.audioStreamCount = 2;
    title.audio[0] = audioStream(AUDIO_AC3, 0xBD, 0x80, 6);
    title.audio[1] = audioStream(AUDIO_PCM, 0xBD, 0xA1, 2, 1, 1);
    title.colorTable[0] = 0x00808010;
    title.colorTable[15] = 0x005BF051;
    // What stands in the menus' attributes stays out of a file without menus.
    run.titleSet(1).menuAttributes = title;
    run.titleSet(1).skipMenu = 1;

    const Bytes expected =
        layout(6 * 2048, {
                             { 0, "44 56 44 56 49 44 45 4F 2D 56 54 53" },   // DVDVIDEO-VTS
                             { 12, "00 00 00 29" },                          // 2 x 6 + 0 + 30 - 1
                             { 28, "00 00 00 05" },
                             { 33, "11" },
                             { 34, "00 00 00 00" },
                             { 128, "00 00 07 FF" },
                             { 192, "00 00 00 00" },
                             { 196, "00 00 00 06" },
                             { 200, "00 00 00 01" },
                             { 204, "00 00 00 02" },
                             { 208, "00 00 00 00" },
                             { 212, "00 00 00 03" },
                             { 216, "00 00 00 00" },
                             { 220, "00 00 00 00" },
                             { 224, "00 00 00 04" },
                             { 228, "00 00 00 05" },
                             { 512, "5C 10" },
                             { 514, "00 02" },
                             { 516, "00 05 00 00 00 00 00 00  80 51 00 00 00 00 00 00" },
                             // VTS_PTT_SRPT
                             { 2048, "00 01 00 00 00 00 00 13 00 00 00 0C" },
                             { 2060, "00 01 00 01 00 01 00 02" },
                             // VTS_PGCIT
                             { 4096, "00 01 00 00 00 00 01 45 81 00 00 00 00 00 00 10" },
                             { 4112 + 2, "02 02 00 00 02 40 00 02 00 00" },
                             { 4112 + 12, "80 00 81 00" },
                             { 4112 + 164, "00 10 80 80" },
                             { 4112 + 224, "00 51 F0 5B" },
                             { 4112 + 228, "00 EC 00 FC 00 FE 01 2E" },
                             { 4112 + 236, "00 01 00 00 00 00 00 0F 71 00 00 03 00 01 00 00" },
                             { 4112 + 252, "01 02" },
                             { 4112 + 254, "02 00 00 00 00 00 01 40 00 00 00 00 00 00 00 00 00 00 00 0A 00 00 00 13" },
                             { 4112 + 278, "08 00 00 00 00 00 01 40 00 00 00 14 00 00 00 00 00 00 00 14 00 00 00 1D" },
                             { 4112 + 302, "00 01 00 01 00 01 00 02" },
                             // VTS_TMAPTI
                             { 6144, "00 01 00 00 00 00 00 0F 00 00 00 0C 05 00 00 00" },
                             // VTS_C_ADT
                             { 8192, "00 01 00 00 00 00 00 1F" },
                             { 8200, "00 01 01 00 00 00 00 00 00 00 00 13  00 01 02 00 00 00 00 14 00 00 00 1D" },
                             // VTS_VOBU_ADMAP
                             { 10240, "00 00 00 0F 00 00 00 00 00 00 00 0A 00 00 00 14" },
                         });
    expectSameBytes(expected, titleIfo(run, TWO_CELLS), "VTS_01_0.IFO");
}

TEST(VtsIfo, WithMenusWholeFile)
{
    TestRun run(2, STANDARD_NTSC);
    TitleSetDesc& set = run.titleSet(2);
    set.menuCount = 2;
    set.menus[0].menuType = 0x80;
    set.menus[1].menuType = 0x08;
    set.menuAttributes.mpegVersion = 1;
    set.menuAttributes.aspectRatio = 3;
    set.menuAttributes.audioStreamCount = 1;
    set.menuAttributes.audio[0] = audioStream(AUDIO_LAYER2, 0xC0, 0);
    set.titleAttributes.mpegVersion = 1;
    set.titleAttributes.resolution = 2;
    set.restricted = 1;
    set.postCommand = POST_NEXT;

    const VobuBlock menuList({ { .sector = 0, .lastSector = 3, .pictures = 1, .vob = 1 },
                               { .sector = 4, .lastSector = 9, .pictures = 1, .vob = 2 } });
    const VobuBlock titleList({ { .sector = 0, .lastSector = 299, .pictures = 15, .firstPts = 0 } });
    const std::string laterMenu = "00 A1 00 04 00 00 00 05 46 00 00 00 00 04 00 00 71 00 00 04 00 00 00 00"
                                  "00 02 00 00 00 00 00 00 56 00 00 00 04 00 00 00";
    const std::string firstMenu = laterMenu + "00 B2 00 03 00 01 00 00 71 00 00 03 00 00 00 00 61 00 00 02 00 87 00 00";

    const Bytes expected = layout(
        9 * 2048,
        {
            { 0, "44 56 44 56 49 44 45 4F 2D 56 54 53" },
            { 12, "00 00 01 47" },   // 2 x 9 + 10 + 300 - 1
            { 28, "00 00 00 08" },
            { 33, "11" },
            { 128, "00 00 07 FF" },
            { 192, "00 00 00 09" },
            { 196, "00 00 00 13" },   // 9 + 10
            { 200, "00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 04" },
            { 216, "00 00 00 05 00 00 00 06 00 00 00 07 00 00 00 08" },
            { 256, "4E 00" },   // 16:9, letterbox alone
            { 258, "00 01" },
            { 260, "40 01" },
            { 340, "00 01" },
            { 512, "43 08" },
            // VTS_PTT_SRPT
            { 2048, "00 01 00 00 00 00 00 0F 00 00 00 0C 00 01 00 01" },
            // VTS_PGCIT: commands of 32 bytes, one cell: 236 + 32 + 2 + 24 + 4 = 298
            { 4096, "00 01 00 00 00 00 01 39 81 00 00 00 00 00 00 10" },
            { 4112 + 2, "01 01 00 00 00 D5 00 00 3F A4" },
            { 4112 + 228, "00 EC 01 0C 01 0E 01 26" },
            { 4112 + 236, "00 01 00 02 00 00 00 1F 71 00 00 03 00 01 00 00" },
            { 4112 + 252, "71 00 00 01 00 03 00 00 30 08 00 00 01 42 00 00" },
            { 4112 + 268, "01 00" },
            { 4112 + 270, "02 00 00 00 00 00 00 D5 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 2B" },
            { 4112 + 294, "00 01 00 01" },
            // VTSM_PGCI_UT: chains of 338 and 314 bytes
            { 6144, "00 01 00 00 00 00 02 B3 00 00 00 88 00 00 00 10" },
            { 6160, "00 02 00 00 00 00 02 A3" },
            { 6168, "83 00 00 00 00 00 00 18  00 00 00 00 00 00 01 6A" },
            { 6184 + 2, "01 01 00 00 00 D2 00 08 03 00 80 00" },
            { 6184 + 28, "80" },
            { 6184 + 228, "00 EC 01 34 01 36 01 4E" },
            { 6184 + 236, "00 08 00 00 00 00 00 47" + firstMenu },
            { 6184 + 308, "01 00" },
            { 6184 + 310, "02 00 FF 00 00 00 00 D2 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 03" },
            { 6184 + 334, "00 01 00 01" },
            { 6522 + 2, "01 01 00 00 00 D2 00 08 03 00 80 00" },
            { 6522 + 28, "80" },
            { 6522 + 228, "00 EC 01 1C 01 1E 01 36" },
            { 6522 + 236, "00 05 00 00 00 00 00 2F" + laterMenu },
            { 6522 + 284, "01 00" },
            { 6522 + 286, "02 00 FF 00 00 00 00 D2 00 00 00 04 00 00 00 00 00 00 00 04 00 00 00 09" },
            { 6522 + 310, "00 02 00 01" },
            // VTS_TMAPTI
            { 8192, "00 01 00 00 00 00 00 0F 00 00 00 0C 05 00 00 00" },
            // VTSM_C_ADT, VTSM_VOBU_ADMAP
            { 10240,
              "00 02 00 00 00 00 00 1F 00 01 01 00 00 00 00 00 00 00 00 03 00 02 01 00 00 00 00 04 00 00 00 09" },
            { 12288, "00 00 00 0B 00 00 00 00 00 00 00 04" },
            // VTS_C_ADT, VTS_VOBU_ADMAP
            { 14336, "00 01 00 00 00 00 00 13 00 01 01 00 00 00 00 00 00 00 01 2B" },
            { 16384, "00 00 00 07 00 00 00 00" },
        });
    expectSameBytes(expected, writeIfo(run, 2, 10, 300, menuList.list, titleList.list), "VTS_02_0.IFO");
}

TEST(VtsIfo, MenuIdsAndExistence)
{
    const struct {
        const char* what;
        uint64_t menus;
        uint64_t types[4];
        uint64_t marks[4];
        const char* existence;
        const char* ids[4];
    } cases[] = {
        { "one root menu", 1, { 0x80 }, { 0 }, "80", { "83" } },
        { "one menu with audio buttons", 1, { 0x80 }, { 3 }, "A0", { "85" } },
        { "an audio menu by type alone", 1, { 0x20 }, { 0 }, "20", { "83" } },
        { "an audio menu by type and buttons", 1, { 0x20 }, { 3 }, "20", { "85" } },
        { "all kinds", 4, { 0x80, 0x40, 0x10, 0x08 }, { 0, 0, 0, 0 }, "D8", { "83", "00", "00", "00" } },
        { "a later menu with audio buttons", 3, { 0x80, 0x20, 0x80 }, { 0, 3, 0 }, "A0", { "83", "85", "00" } },
        { "every menu with audio buttons", 2, { 0x80, 0x80 }, { 3, 3 }, "A0", { "85", "85" } },
        { "a mark other than 3", 1, { 0x80 }, { 2 }, "80", { "83" } },
    };
    for (const auto& c : cases) {
        TestRun run;
        TitleSetDesc& set = run.titleSet(1);
        set.menuCount = c.menus;
        std::vector<Vobu> units;
        for (uint64_t i = 0; i < c.menus; i++) {
            set.menus[i].menuType = c.types[i];
            set.menus[i].audioButtonMark = c.marks[i];
            units.push_back({ .sector = 5 * i, .lastSector = 5 * i + 4, .pictures = 1, .vob = i + 1 });
        }
        const VobuBlock menuList(units), titleList(TWO_CELLS);
        const Bytes ifo = writeIfo(run, 1, 5 * c.menus, 30, menuList.list, titleList.list);
        const uint64_t at = numberAt(ifo, 208, 4) * 2048;
        expectAt(ifo, at, "00 01 00 00", c.what);
        expectAt(ifo, at + 8, std::string("00 00 00 ") + c.existence + " 00 00 00 10", c.what);
        EXPECT_EQ(c.menus, numberAt(ifo, at + 16, 2)) << c.what;
        for (uint64_t i = 0; i < c.menus; i++) {
            expectAt(ifo, at + 24 + 8 * i, std::string(c.ids[i]) + " 00 00 00", c.what);
            // Each offset counts from the unit and leads to the chain of that menu, whose cell is in VOB i + 1.
            const uint64_t pgc = at + 16 + numberAt(ifo, at + 28 + 8 * i, 4);
            expectAt(ifo, pgc + 2, "01 01", c.what);
            EXPECT_EQ(i + 1, numberAt(ifo, pgc + numberAt(ifo, pgc + 234, 2), 2)) << c.what;
        }
    }
}

// The audio post command and the repeated cell command pass through into the file.
TEST(VtsIfo, AnimatedAudioMenu)
{
    TestRun run;
    TitleSetDesc& set = run.titleSet(1);
    set.menuCount = 1;
    set.menus[0].menuType = 0x80;
    set.menus[0].audioButtonMark = 3;
    const VobuBlock menuList(ONE_UNIT), titleList(TWO_CELLS);
    const Bytes ifo = writeIfo(run, 1, 10, 30, menuList.list, titleList.list);
    const uint64_t pgc = numberAt(ifo, 208, 4) * 2048 + 16 + 16;
    expectAt(ifo, pgc + 236, "00 08 00 01 00 01 00 57", "counts");
    expectAt(ifo, pgc + 236 + 8 + 56, "61 00 00 02 00 87 00 00 61 00 00 02 00 87 00 00 30 06 00 00 00 42 00 00", "end");
}

// With no menu sectors neither the list nor the menus of the model are looked at.
TEST(VtsIfo, MenusWithoutSectors)
{
    TestRun run;
    const Bytes plain = titleIfo(run, TWO_CELLS);
    run.titleSet(1).menuCount = 2;
    run.titleSet(1).menuAttributes.mpegVersion = 1;
    run.titleSet(1).menuAttributes.audioStreamCount = 1;
    const VobuBlock menuList(ONE_UNIT), titleList(TWO_CELLS);
    expectSameBytes(plain, writeIfo(run, 1, 0, 30, menuList.list, titleList.list), "menus without sectors");
}

TEST(VtsIfo, TablesOfMoreThanASector)
{
    TestRun run;
    std::vector<Vobu> units;
    for (uint64_t i = 0; i < 255; i++) {
        for (uint64_t j = 0; j < 3; j++) {
            const uint64_t n = 3 * i + j;
            units.push_back(
                { .sector = 4 * n, .lastSector = 4 * n + 3, .pictures = 12, .cell = i + 1, .firstPts = 43200 * n });
        }
    }
    const Bytes ifo = titleIfo(run, units, 3060);
    // PTT: 12 + 4 x 255 = 1032. PGCIT: 16 + 236 + 16 + 256 + 6120 + 1020 = 7664. Map: 765 units of 0.48 s are 367.2 s,
    // 73 entries: 16 + 292 = 308. Cell table: 8 + 3060 = 3068. Unit map: 4 + 3060 = 3064.
    EXPECT_EQ((1u + 1 + 4 + 1 + 2 + 2) * 2048, ifo.size());
    expectAt(ifo, 200, "00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 06", "tables 1 to 4");
    expectAt(ifo, 216, "00 00 00 00 00 00 00 00 00 00 00 07 00 00 00 09", "tables 5 to 8");
    expectAt(ifo, 28, "00 00 00 0A", "last sector of the file");
    expectAt(ifo, 196, "00 00 00 0B", "start of the title");
    expectAt(ifo, 12, "00 00 0C 09", "last sector of the title set");   // 22 + 3060 - 1
    expectAt(ifo, 2048, "00 01 00 00 00 00 04 07 00 00 00 0C 00 01 00 01", "VTS_PTT_SRPT");
    expectAt(ifo, 2048 + 12 + 4 * 254, "00 01 00 FF 00 00 00 00", "its last entry");
    expectAt(ifo, 4096, "00 01 00 00 00 00 1D EF 81", "VTS_PGCIT");
    expectAt(ifo, 6 * 2048, "00 01 00 00 00 00 01 33 00 00 00 0C 05 00 00 49", "VTS_TMAPTI");
    expectAt(ifo, 7 * 2048, "00 01 00 00 00 00 0B FB", "VTS_C_ADT");
    expectAt(ifo, 9 * 2048, "00 00 0B F7 00 00 00 00 00 00 00 04", "VTS_VOBU_ADMAP");
    expectAt(ifo, 9 * 2048 + 4 + 4 * 764, "00 00 0B F0 00 00 00 00", "its last entry");
    expectZeros(ifo, 9 * 2048 + 3064, 11 * 2048, "the end");
}

// Every cell of VOB 1 is a chapter; cells of other VOBs are in the address table alone.
TEST(VtsIfo, CellsOfSecondVobAreNoChapters)
{
    TestRun run;
    const Bytes ifo = titleIfo(run, { { .sector = 0, .lastSector = 9, .vob = 1, .cell = 1 },
                                      { .sector = 10, .lastSector = 19, .vob = 1, .cell = 2 },
                                      { .sector = 20, .lastSector = 29, .vob = 2, .cell = 2 } });
    expectAt(ifo, 2048, "00 01 00 00 00 00 00 13 00 00 00 0C 00 01 00 01 00 01 00 02 00 00 00 00", "VTS_PTT_SRPT");
    expectAt(ifo, 4112 + 2, "02 02", "cells of the chain");
    expectAt(ifo, 8192, "00 02 00 00 00 00 00 2B", "VTS_C_ADT");
    expectAt(ifo, 10240, "00 00 00 0F", "VTS_VOBU_ADMAP");
}

// A stream whose clock never reads 0 is VOB 0: the title has no cells and no chapters, and the file still stands.
TEST(VtsIfo, NoCellInVobOne)
{
    TestRun run;
    const Bytes ifo = titleIfo(run, { { .sector = 0, .lastSector = 29, .vob = 0, .cell = 1 } });
    ASSERT_EQ(6u * 2048, ifo.size());
    expectAt(ifo, 2048, "00 01 00 00 00 00 00 0B 00 00 00 0C 00 00 00 00", "VTS_PTT_SRPT");
    expectAt(ifo, 4096, "00 01 00 00 00 00 01 0B 81 00 00 00 00 00 00 10", "VTS_PGCIT");   // 16 + 236 + 16 - 1
    expectAt(ifo, 4112 + 2, "00 00 00 00 00 40", "no cells");
    expectAt(ifo, 4112 + 228, "00 EC 00 00 00 00 00 00", "commands alone");
}

// A scan file may hold no record.
TEST(VtsIfo, EmptyList)
{
    TestRun run;
    const Bytes ifo = titleIfo(run, {});
    ASSERT_EQ(6u * 2048, ifo.size());
    expectAt(ifo, 12, "00 00 00 29", "last sector");
    expectAt(ifo, 2048, "00 01 00 00 00 00 00 0B", "VTS_PTT_SRPT");
    expectAt(ifo, 6144, "00 01 00 00 00 00 00 0F 00 00 00 0C 05 00 00 00", "VTS_TMAPTI");
    expectAt(ifo, 10240, "00 00 00 03", "VTS_VOBU_ADMAP");
}

TEST(VtsIfo, MoreStreams)
{
    TestRun run;
    AttributeSet& title = run.titleSet(1).titleAttributes;
    title.audioStreamCount = 1;
    title.audio[0] = noAudioStream();
    title.audio[1] = audioStream(AUDIO_AC3, 0xBD, 0x80);
    Bytes ifo = titleIfo(run, TWO_CELLS);
    expectAt(ifo, 514, "00 01 E0 07 00 00 00 00 00 00 00 00", "an entry is not packed");
    title.audioStreamCount = 8;
    for (uint64_t i = 0; i < 8; i++) title.audio[i] = audioStream(AUDIO_DTS, 0xBD, 0x88 + i, 6);
    ifo = titleIfo(run, TWO_CELLS);
    expectAt(ifo, 514, "00 08 C0 05 00 00 00 00 00 00", "eight streams");
    expectAt(ifo, 516 + 56, "C0 05 00 00 00 00 00 00 00 00 00 00", "the last of them");
    expectZeros(ifo, 580, 2048, "rest of the header");
}

// ---- time map -----------------------------------------------------------------------------------------------------

TEST(TimeMap, OneEntryEveryFiveSeconds)
{
    TestRun run;
    // Units of 43200 ticks: 450000 lies in unit 10, 900000 in unit 20, 1350000 in unit 31.
    EXPECT_EQ(toHex(fromHex("00 01 00 00 00 00 00 1B 00 00 00 0C 05 00 00 03 00 00 00 64 00 00 00 C8 00 00 01 36")),
              toHex(timeMap(titleIfo(run, evenUnits(40, 12, 3600)))));
}

TEST(TimeMap, Ntsc)
{
    TestRun run(1, STANDARD_NTSC);
    // Units of 45045 ticks: 450000 lies in unit 9, 900000 in unit 19, 1350000 in unit 29.
    EXPECT_EQ(toHex(fromHex("00 01 00 00 00 00 00 1B 00 00 00 0C 05 00 00 03 00 00 00 5A 00 00 00 BE 00 00 01 22")),
              toHex(timeMap(titleIfo(run, evenUnits(35, 15, 3003)))));
}

TEST(TimeMap, Rules)
{
    const struct {
        const char* what;
        std::vector<Vobu> units;
        const char* entries;   // count and entries
    } cases[] = {
        { "shorter than five seconds", evenUnits(10, 12, 3600), "00 00" },
        { "one unit alone has no entry, however long", { { .lastSector = 9, .pictures = 1000 } }, "00 00" },
        { "times count from the first unit", evenUnits(12, 12, 3600, 1000000), "00 01 00 00 00 64" },
        { "a unit that begins at the very time",
          { { .sector = 0, .pictures = 125 }, { .sector = 50, .pictures = 12, .firstPts = 450000 } },
          "00 01 00 00 00 32" },
        { "a unit that ends at the very time does not hold it",
          { { .sector = 0, .pictures = 113 },
            { .sector = 50, .pictures = 12, .firstPts = 406800 },
            { .sector = 60, .pictures = 12, .firstPts = 450000 } },
          "00 01 00 00 00 3C" },
        { "display start is before the first picture of the stream",
          { { .sector = 0, .pictures = 12, .firstPts = 7200, .temporalRef = 2 },
            // 457200 - 2 x 3600 = 450000
            { .sector = 50, .pictures = 12, .firstPts = 457200, .temporalRef = 2 } },
          "00 01 00 00 00 32" },
        { "a first display start below 0 wraps, and so do the times",
          { { .sector = 0, .pictures = 12, .firstPts = 0, .temporalRef = 2 },
            { .sector = 50, .pictures = 12, .firstPts = 432000 } },
          "00 01 00 00 00 32" },
        // One entry for a unit that spans two times; the next one then lies before every later unit.
        { "ends early behind a unit of more than five seconds",
          { { .sector = 0, .pictures = 100 },
            { .sector = 40, .pictures = 300, .firstPts = 360000 },
            { .sector = 90, .pictures = 12, .firstPts = 1440000 },
            { .sector = 95, .pictures = 300, .firstPts = 1483200 } },
          "00 01 00 00 00 28" },
        { "a long first unit hides every time",
          { { .sector = 0, .pictures = 126 }, { .sector = 40, .pictures = 300, .firstPts = 453600 } },
          "00 00" },
        { "a gap hides a time",
          { { .sector = 0, .pictures = 12 }, { .sector = 40, .pictures = 300, .firstPts = 450001 } },
          "00 00" },
        { "a unit without pictures holds no time",
          { { .sector = 0, .pictures = 125 },
            { .sector = 40, .pictures = 0, .firstPts = 450000 },
            { .sector = 50, .pictures = 1, .firstPts = 450000 } },
          "00 01 00 00 00 32" },
        { "the bit of a new cell",
          { { .sector = 0, .pictures = 125 },
            { .sector = 40, .pictures = 125, .cell = 2, .firstPts = 450000 },
            { .sector = 80, .pictures = 125, .cell = 2, .firstPts = 900000 },
            { .sector = 120, .pictures = 125, .cell = 3, .firstPts = 1350000 } },
          "00 03 80 00 00 28 00 00 00 50 80 00 00 78" },
        { "a cell that began between two entries marks the later one",
          { { .sector = 0, .pictures = 100 },
            { .sector = 30, .pictures = 25, .cell = 2, .firstPts = 360000 },
            { .sector = 40, .pictures = 25, .cell = 2, .firstPts = 450000 } },
          "00 01 80 00 00 28" },
        { "a cell that began and ended between two entries leaves no mark",
          { { .sector = 0, .pictures = 100 },
            { .sector = 30, .pictures = 25, .cell = 2, .firstPts = 360000 },
            { .sector = 40, .pictures = 25, .cell = 1, .firstPts = 450000 } },
          "00 01 00 00 00 28" },
        { "the first unit's cell is the running one",
          { { .sector = 0, .pictures = 125, .cell = 7 },
            { .sector = 40, .pictures = 125, .cell = 7, .firstPts = 450000 } },
          "00 01 00 00 00 28" },
        { "units of other VOBs count too",
          { { .sector = 0, .pictures = 125, .vob = 1 },
            { .sector = 40, .pictures = 125, .vob = 2, .firstPts = 450000 } },
          "00 01 00 00 00 28" },
    };
    for (const auto& c : cases) {
        TestRun run;
        const Bytes map = timeMap(titleIfo(run, c.units));
        expectAt(map, 0, "00 01 00 00", c.what);
        expectAt(map, 8, "00 00 00 0C 05 00", c.what);
        EXPECT_EQ(toHex(fromHex(c.entries)), toHex(slice(map, 14, map.size()))) << c.what;
        EXPECT_EQ(map.size() - 1, numberAt(map, 4, 4)) << c.what;
    }
}

// ---- files --------------------------------------------------------------------------------------------------------

TEST(VtsIfoFile, ReplacesWhatStoodThere)
{
    TestRun run;
    writeFile(run.folder / u"VTS.IFO", Bytes(100000, 0xEE));
    const Bytes ifo = titleIfo(run, TWO_CELLS);
    EXPECT_EQ(6u * 2048, ifo.size());
    expectZeros(ifo, 600, 2048, "header");
}

TEST(VtsIfoFile, CannotBeOpened)
{
    TestRun run;
    const VobuBlock list(TWO_CELLS);
    const std::u16string missing = run.folder / u"missing", folder = run.folder / u"folder";
    std::filesystem::create_directory(folder);
    EXPECT_EQ(0x840007DBu,
              orvWriteVtsIfo(run.context.get(), 1, (missing + u"/VTS_01_0.IFO").c_str(), 0, 30, nullptr, list.list));
    EXPECT_EQ(0x840007DBu, orvWriteVtsIfo(run.context.get(), 1, folder.c_str(), 0, 30, nullptr, list.list));
    EXPECT_EQ(0x840007DBu, ORV_VTS_IFO_NOT_OPENED);
    EXPECT_FALSE(fileExists(run.logPath));   // not logged
    EXPECT_FALSE(fileExists(missing));
}
