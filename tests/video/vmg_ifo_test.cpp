// VIDEO_TS.IFO, byte for byte, from title set files that the tests make; and the reading back of those files.
#include "video/vmg_ifo.h"

#include "base/result.h"
#include "project/commands.h"
#include "tests/support/log.h"
#include "tests/support/packs.h"
#include "tests/video/ifo_run.h"
#include "tests/video/table_bytes.h"

namespace {

std::string two(uint64_t number)
{
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::u16string ifoName(uint64_t number)
{
    return toWide("VTS_" + two(number) + "_0.IFO");
}

std::u16string vobName(uint64_t number, uint64_t part)
{
    return toWide("VTS_" + two(number) + "_" + std::to_string(part) + ".VOB");
}

// An IFO as a title set leaves it, in what the manager reads: mark, category, attributes, cells.
Bytes titleSetIfo(uint64_t sectors, uint64_t cells, uint8_t attributes = 0, uint8_t category = 0)
{
    Bytes ifo(2048 * sectors, 0);
    const Bytes mark = fromHex("44 56 44 56 49 44 45 4F 2D 56 54 53");
    std::copy(mark.begin(), mark.end(), ifo.begin());
    ifo[34] = category;
    ifo[37] = uint8_t(category + 1);
    ifo[255] = 0xEE;    // the byte before the attributes,
    ifo[1024] = 0xEE;   // and the byte behind them
    for (uint64_t i = 0; i < 768; i++) ifo[256 + i] = uint8_t(attributes + i % 251);
    ifo[227] = uint8_t(sectors - 1);   // cell address table in the last sector
    const uint64_t last = 12 * cells + 7, at = 2048 * (sectors - 1);
    ifo[at + 6] = uint8_t(last >> 8);
    ifo[at + 7] = uint8_t(last);
    return ifo;
}

void putTitleSet(const TempDir& folder, uint64_t number, uint64_t ifoSectors, uint64_t cells,
                 const std::vector<uint64_t>& vobSectors)
{
    writeFile(folder / ifoName(number), titleSetIfo(ifoSectors, cells));
    for (uint64_t i = 0; i < vobSectors.size(); i++) {
        if (vobSectors[i]) writeFile(folder / vobName(number, i), Bytes(2048 * vobSectors[i], 0));
    }
}

uint64_t write(TestRun& run, uint64_t vobBytes = 0, const VobuRecord* list = nullptr,
               const char16_t* previous = nullptr)
{
    const std::u16string ifo = run.folder / u"VIDEO_TS.IFO";
    return orvWriteVmgIfo(run.context.get(), ifo.c_str(), run.folder.prefix().c_str(), previous, vobBytes, list);
}

Bytes written(TestRun& run, uint64_t vobBytes = 0, const VobuRecord* list = nullptr, const char16_t* previous = nullptr)
{
    EXPECT_EQ(0u, write(run, vobBytes, list, previous));
    EXPECT_FALSE(fileExists(run.logPath));
    return readFile(run.folder / u"VIDEO_TS.IFO");
}

// Start sectors of the titles, from the title search table.
std::vector<uint64_t> starts(const Bytes& ifo)
{
    const uint64_t at = numberAt(ifo, 196, 4) * 2048;
    std::vector<uint64_t> sectors;
    for (uint64_t i = 0; i < numberAt(ifo, at, 2); i++) sectors.push_back(numberAt(ifo, at + 16 + 12 * i, 4));
    return sectors;
}

}   // namespace

TEST(VmgIfo, WithoutMenusWholeFile)
{
    TestRun run(2);
    putTitleSet(run.folder, 1, 7, 3, { 4, 100 });
    writeFile(run.folder / ifoName(2), titleSetIfo(6, 1, 77, 0x81));
    writeFile(run.folder / vobName(2, 1), Bytes(2048 * 50, 0));
    // Attributes of menus that are not there stay out of the header; the chain has its stream control all the same.
    run.context->vmg.menuAttributes.mpegVersion = 1;
    run.context->vmg.menuAttributes.audioStreamCount = 2;

    Bytes expected =
        layout(4 * 2048, {
                             { 0, "44 56 44 56 49 44 45 4F 2D 56 4D 47" },   // DVDVIDEO-VMG
                             { 12, "00 00 00 07" },                          // 2 x 4 + 0 - 1
                             { 28, "00 00 00 03" },
                             { 33, "11" },
                             { 38, "00 01 00 01 01" },
                             { 62, "00 02" },
                             { 64, "4F 52 56 45 4E" },   // ORVEN
                             { 128, "00 00 04 FB 00 00 04 00" },
                             { 192, "00 00 00 04 00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 03 00 00 00 00" },
                             { 216, "00 00 00 00 00 00 00 00" },
                             // first-play chain
                             { 1024 + 4, "00 00 00 40" },
                             { 1024 + 228, "00 EC" },
                             { 1024 + 236, "00 00 00 01 00 00 00 0F 30 02 00 00 00 01 00 00" },
                             // TT_SRPT
                             { 2048, "00 02 00 00 00 00 00 1F" },
                             { 2056, "0C 01 00 03 00 00 01 01 00 00 00 08" },
                             { 2068, "0C 01 00 01 00 00 02 01 00 00 00 7E" },   // 8 + 2 x 7 + 104 = 126
                             // VMGM_PGCI_UT
                             { 4096, "00 01 00 00 00 00 01 63 00 00 00 80 00 00 00 10" },
                             { 4112, "00 01 00 00 00 00 01 53 82 00 00 00 00 00 00 10" },
                             { 4128 + 4, "00 00 00 40 00 08 03 03" },
                             { 4128 + 12, "80 00 80 00" },
                             { 4128 + 228, "00 EC" },
                             { 4128 + 236, "00 09 00 00 00 01 00 57" },
                             { 4128 + 244, "71 00 00 03 00 00 00 00 61 00 00 02 00 01 00 00 71 00 00 01 00 00 00 00" },
                             { 4128 + 268, "00 A1 00 02 00 01 00 08 00 A1 00 02 00 02 00 09 56 00 00 00 04 00 00 00" },
                             { 4128 + 292, "00 02 00 00 00 00 00 00 30 02 00 00 00 01 00 00 30 02 00 00 00 02 00 00" },
                             { 4128 + 316, "30 02 00 00 00 02 00 00" },
                             // VTS_ATRT: 8 + 2 x 4 + 2 x 776 = 1568
                             { 6144, "00 02 00 00 00 00 06 1F 00 00 00 10 00 00 03 18" },
                             { 6160, "00 00 03 07 00 00 00 01" },
                             { 6936, "00 00 03 07 81 00 00 82" },
                         });
    for (uint64_t i = 0; i < 768; i++) {
        expected[6168 + i] = uint8_t(i % 251);
        expected[6944 + i] = uint8_t(77 + i % 251);
    }
    const Bytes ifo = written(run);
    expectSameBytes(expected, ifo, "VIDEO_TS.IFO");
}

TEST(VmgIfo, WithMenusWholeFile)
{
    TestRun run(1, STANDARD_NTSC);
    putTitleSet(run.folder, 1, 9, 12, { 10, 20, 30 });
    TitleSetDesc& vmg = run.context->vmg;
    vmg.menuCount = 2;
    vmg.menus[0].menuType = 0x80;
    vmg.menus[1].menuType = 0x40;
    vmg.menus[1].audioButtonMark = 3;
    vmg.menuAttributes.mpegVersion = 1;
    vmg.menuAttributes.isPal = 0;
    vmg.menuAttributes.aspectRatio = 3;
    vmg.menuAttributes.audioStreamCount = 1;
    vmg.menuAttributes.audio[0] = audioStream(AUDIO_AC3, 0xBD, 0x80, 6);
    vmg.menuAttributes.colorTable[3] = 0x005BF051;
    const VobuBlock list({ { .sector = 0, .lastSector = 4, .pictures = 1, .vob = 1 },
                           { .sector = 5, .lastSector = 11, .pictures = 1, .vob = 2 } });

    Bytes expected = layout(
        6 * 2048,
        {
            { 0, "44 56 44 56 49 44 45 4F 2D 56 4D 47" },
            { 12, "00 00 00 17" },   // 2 x 6 + 12 - 1
            { 28, "00 00 00 05" },
            { 33, "11" },
            { 38, "00 01 00 01 01" },
            { 62, "00 01" },
            { 64, "4F 52 56 45 4E" },
            { 128, "00 00 04 FB 00 00 04 00" },
            { 192, "00 00 00 06 00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 03 00 00 00 00" },
            { 216, "00 00 00 04 00 00 00 05" },
            { 256, "4E 00 00 01 00 05" },
            { 340, "00 01" },
            { 1024 + 4, "00 00 00 C0" },
            { 1024 + 228, "00 EC" },
            { 1024 + 236, "00 00 00 01 00 00 00 0F 30 06 00 00 00 42 00 00" },
            { 2048, "00 01 00 00 00 00 00 13 0C 01 00 0C 00 00 01 01 00 00 00 18" },   // 2 x 6 + 12 = 24
            // VMGM_PGCI_UT: chains of 236 + 64 + 30 = 330 and 236 + 16 + 30 = 282 bytes
            { 4096, "00 01 00 00 00 00 02 8B 00 00 00 80 00 00 00 10" },
            { 4112, "00 02 00 00 00 00 02 7B 82 00 00 00 00 00 00 18 00 00 00 00 00 00 01 62" },
            { 4136 + 2, "01 01 00 00 00 D2 00 08 03 03 80 00" },
            { 4136 + 28, "80 00 00 00" },
            { 4136 + 176, "00 51 F0 5B" },
            { 4136 + 228, "00 EC 01 2C 01 2E 01 46" },
            { 4136 + 236, "00 07 00 00 00 00 00 3F 71 00 00 03 00 00 00 00 61 00 00 02 00 01 00 00" },
            { 4136 + 260, "71 00 00 01 00 00 00 00 00 A1 00 02 00 01 00 07 56 00 00 00 04 00 00 00" },
            { 4136 + 284, "00 02 00 00 00 00 00 00 30 02 00 00 00 01 00 00" },
            { 4136 + 300, "01 00 02 00 FF 00 00 00 00 D2 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 04" },
            { 4136 + 326, "00 01 00 01" },
            { 4466 + 2, "01 01 00 00 00 D2 00 08 03 03 80 00" },
            { 4466 + 28, "80 00 00 00" },
            { 4466 + 176, "00 51 F0 5B" },
            { 4466 + 228, "00 EC 00 FC 00 FE 01 16" },
            { 4466 + 236, "00 01 00 00 00 00 00 0F 56 00 00 00 04 00 00 00" },
            { 4466 + 252, "01 00 02 00 FF 00 00 00 00 D2 00 00 00 05 00 00 00 00 00 00 00 05 00 00 00 0B" },
            { 4466 + 278, "00 02 00 01" },
            { 6144, "00 01 00 00 00 00 03 13 00 00 00 0C 00 00 03 07 00 00 00 01" },   // 8 + 4 + 776 = 788
            // VMGM_C_ADT, VMGM_VOBU_ADMAP
            { 8192, "00 02 00 00 00 00 00 1F 00 01 01 00 00 00 00 00 00 00 00 04 00 02 01 00 00 00 00 05 00 00 00 0B" },
            { 10240, "00 00 00 0B 00 00 00 00 00 00 00 05" },
        });
    for (uint64_t i = 0; i < 768; i++) expected[6164 + i] = uint8_t(i % 251);
    expectSameBytes(expected, written(run, 12 * 2048, list.list), "VIDEO_TS.IFO");
}

TEST(VmgIfo, FirstPlay)
{
    const struct {
        const char* what;
        uint64_t command, p1, p2, p3;
        bool managerMenus, titleSetMenus, skipped;
        const char* bytes;
    } cases[] = {
        { "the project's command comes first", VM_JUMP_VTSM, 7, 3, 0, true, true, false, "30 06 00 02 07 83 00 00" },
        { "a title and a chapter", VM_JUMP_VTSPTT, 1, 0x123, 9, false, true, false, "30 05 01 23 00 01 00 00" },
        { "a title", VM_JUMP_TT, 2, 0, 0, false, false, false, "30 02 00 00 00 02 00 00" },
        { "a third parameter", VM_SET_AUDIO, 5, 2, 1, false, false, false, "51 01 00 85 00 00 08 0D" },
        { "else the manager's menu", 0, 0, 0, 0, true, true, false, "30 06 00 00 00 42 00 00" },
        { "parameters without a command are nothing", 0, 5, 6, 7, true, false, false, "30 06 00 00 00 42 00 00" },
        { "else the menu of title set 1", 0, 0, 0, 0, false, true, false, "30 06 00 01 01 83 00 00" },
        { "else title 1", 0, 0, 0, 0, false, false, false, "30 02 00 00 00 01 00 00" },
        { "a skipped title set 1 has no menus that are known", 0, 0, 0, 0, false, false, true,
          "30 02 00 00 00 01 00 00" },
        { "the menu of a skipped disc's manager", 0, 0, 0, 0, true, false, true, "30 06 00 00 00 42 00 00" },
    };
    for (const auto& c : cases) {
        TestRun run(2);
        putTitleSet(run.folder, 1, 6, 1, { 0, 10 });
        putTitleSet(run.folder, 2, 6, 1, { 0, 10 });
        run.context->firstPlayCommand = c.command;
        run.context->firstPlayParam1 = c.p1;
        run.context->firstPlayParam2 = c.p2;
        run.context->firstPlayParam3 = c.p3;
        run.titleSet(2).menuCount = 1;   // those of another title set do not matter
        if (c.titleSetMenus) run.titleSet(1).menuCount = 1;
        if (c.skipped) run.context->titleSets[0] = nullptr;
        if (c.managerMenus) run.context->vmg.menuCount = 1;
        const VobuBlock list(
            { { .sector = 0, .lastSector = 3, .pictures = 1 }, { .sector = 4, .lastSector = 7, .pictures = 1 } });
        const Bytes ifo = c.managerMenus ? written(run, 8 * 2048, list.list) : written(run);
        expectAt(ifo, 1024 + 236, std::string("00 00 00 01 00 00 00 0F ") + c.bytes, c.what);
        expectAt(ifo, 192, c.managerMenus ? "00 00 00 06" : "00 00 00 04", c.what);
    }
}

TEST(VmgIfo, StartSectors)
{
    TestRun run(5);
    for (uint64_t i = 1; i <= 5; i++) putTitleSet(run.folder, i, 5 + i, 1, { 0, 100 * i });
    const Bytes ifo = written(run);
    // Each is the one before, plus twice the IFO, plus the VOB. 2 x (1 + 1 + 1 + 2) = 10: five entries of attributes
    // are 8 + 5 x 780 = 3908 bytes.
    EXPECT_EQ((std::vector<uint64_t>{ 10, 10 + 112, 122 + 214, 336 + 316, 652 + 418 }), starts(ifo));
}

TEST(VmgIfo, StartSectorsCountEveryVob)
{
    TestRun run(2);
    putTitleSet(run.folder, 1, 6, 1, { 3, 10, 20, 0, 40, 0, 0, 0, 0, 90 });   // numbers 0 to 9, with gaps
    writeFile(run.folder / u"VTS_01_10.VOB", Bytes(2048, 0));
    putTitleSet(run.folder, 2, 6, 1, {});
    EXPECT_EQ((std::vector<uint64_t>{ 8, 8 + 12 + 163 }), starts(written(run)));
}

// Each file is cut to whole sectors before the sum.
TEST(VmgIfo, StartSectorsOfUnevenVobs)
{
    TestRun run(2);
    putTitleSet(run.folder, 1, 6, 1, {});
    for (uint64_t part = 1; part <= 3; part++) writeFile(run.folder / vobName(1, part), Bytes(2 * 2048 - 1, 0));
    putTitleSet(run.folder, 2, 6, 1, {});
    EXPECT_EQ((std::vector<uint64_t>{ 8, 8 + 12 + 3 }), starts(written(run)));
}

TEST(VmgIfo, ManagerVobShiftsTheTitleSets)
{
    TestRun run(1);
    putTitleSet(run.folder, 1, 6, 1, { 0, 10 });
    run.context->vmg.menuCount = 1;
    const VobuBlock list({ { .sector = 0, .lastSector = 999, .pictures = 1 }, { .sector = 1000, .lastSector = 1023 } });
    const Bytes ifo = written(run, 1024 * 2048, list.list);
    EXPECT_EQ((std::vector<uint64_t>{ 12 + 1024 }), starts(ifo));
    expectAt(ifo, 12, "00 00 04 0B", "last sector");   // 1036 - 1
}

TEST(VmgIfo, NinetyNineTitleSets)
{
    TestRun run(99);
    for (uint64_t i = 1; i <= 99; i++) putTitleSet(run.folder, i, 2, i, { 0, 1 });
    const Bytes ifo = written(run);
    // TT_SRPT: 8 + 99 x 12 = 1196. VMGM_PGCI_UT: 16 + 16 + 236 + 8 + 204 x 8 = 1908. VTS_ATRT: 8 + 99 x 780 = 77228.
    ASSERT_EQ((1u + 1 + 1 + 38) * 2048, ifo.size());
    expectAt(ifo, 12, "00 00 00 51", "last sector");
    expectAt(ifo, 28, "00 00 00 28", "last sector of the IFO");
    expectAt(ifo, 62, "00 63", "title sets");
    expectAt(ifo, 192, "00 00 00 29 00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 03 00 00 00 00", "parts");
    expectAt(ifo, 2048, "00 63 00 00 00 00 04 AB", "TT_SRPT");
    expectAt(ifo, 2048 + 8 + 98 * 12, "0C 01 00 63 00 00 63 01 00 00 02 3C 00 00", "title 99");   // 82 + 98 x 5 = 572
    expectAt(ifo, 4096, "00 01 00 00 00 00 07 73", "VMGM_PGCI_UT");
    expectAt(ifo, 6144, "00 63 00 00 00 01 2D AB 00 00 01 94 00 00 04 9C", "VTS_ATRT");
    for (uint64_t i = 0; i < 99; i++) {
        const uint64_t entry = numberAt(ifo, 6152 + 4 * i, 4);
        ASSERT_EQ(404 + 776 * i, entry);
        expectAt(ifo, 6144 + entry, "00 00 03 07 00 00 00 01 00 01 02", "entry of title set " + std::to_string(i + 1));
    }
}

TEST(VmgIfo, ChaptersComeFromTheCellAddressTable)
{
    TestRun run(3);
    putTitleSet(run.folder, 1, 9, 255, {});
    putTitleSet(run.folder, 2, 7, 1, {});
    // A last byte that belongs to no whole number of cells is cut.
    Bytes odd = titleSetIfo(6, 4);
    odd[5 * 2048 + 7] = uint8_t(12 * 4 + 7 + 11);
    writeFile(run.folder / ifoName(3), odd);
    const Bytes ifo = written(run);
    expectAt(ifo, 2048 + 10, "00 FF", "title 1");
    expectAt(ifo, 2048 + 22, "00 01", "title 2");
    expectAt(ifo, 2048 + 34, "00 04", "title 3");
}

TEST(VmgIfo, ManyMenus)
{
    TestRun run(1);
    putTitleSet(run.folder, 1, 6, 1, {});
    run.context->vmg.menuCount = 99;
    std::vector<Vobu> units;
    for (uint64_t i = 0; i < 99; i++) {
        units.push_back({ .sector = 4 * i, .lastSector = 4 * i + 3, .pictures = 1, .vob = i + 1 });
    }
    const VobuBlock list(units);
    const Bytes ifo = written(run, 396 * 2048, list.list);
    // Unit: 8 + 99 x 8 + 330 + 98 x 282 = 28766; table 28782, 15 sectors.
    expectAt(ifo, 4096, "00 01 00 00 00 00 70 6D 00 00 00 80 00 00 00 10", "VMGM_PGCI_UT");
    expectAt(ifo, 4112, "00 63 00 00 00 00 70 5D 82 00 00 00 00 00 03 20", "its unit");
    expectAt(ifo, 4112 + 8 + 98 * 8, "00 00 00 00 00 00 6F 44", "menu 99");   // 800 + 330 + 97 x 282 = 28484
    expectAt(ifo, 4112 + 28484 + 236 + 16, "01 00 02 00 FF 00 00 00 00 52 00 00 01 88", "its cell");
    expectAt(ifo, 208, "00 00 00 11", "VTS_ATRT follows at sector 17");
    expectAt(ifo, 216, "00 00 00 12 00 00 00 13", "address tables");
}

// ---- where title sets are found -----------------------------------------------------------------------------------

TEST(VmgIfoPrevious, IfoThereWins)
{
    TestRun run(2);
    const TempDir previous;
    putTitleSet(run.folder, 1, 6, 1, { 0, 10 });
    putTitleSet(run.folder, 2, 6, 2, { 0, 10 });
    writeFile(previous / ifoName(2), titleSetIfo(8, 5, 99));
    const Bytes ifo = written(run, 0, nullptr, previous.prefix().c_str());
    expectAt(ifo, 2056, "0C 01 00 01", "title 1 from the target");
    expectAt(ifo, 2068, "0C 01 00 05", "title 2 from the earlier run, though the target has one");
    expectAt(ifo, 6144 + 16 + 776 + 8, "63 64 65", "its attributes");
    EXPECT_EQ((std::vector<uint64_t>{ 8, 8 + 12 + 10 }), starts(ifo));
}

// A title set that this very run has written is read from the earlier run too.
TEST(VmgIfoPrevious, OlderFilesOfATitleSetOfThisRunWin)
{
    TestRun run(2);
    const TempDir previous;
    ASSERT_NE(nullptr, run.context->titleSets[0]);
    putTitleSet(run.folder, 1, 6, 1, { 0, 10 });
    putTitleSet(run.folder, 2, 6, 1, { 0, 10 });
    putTitleSet(previous, 1, 9, 4, { 0, 500 });
    const Bytes ifo = written(run, 0, nullptr, previous.prefix().c_str());
    expectAt(ifo, 2056, "0C 01 00 04", "title 1");
    EXPECT_EQ((std::vector<uint64_t>{ 8, 8 + 18 + 500 }), starts(ifo));
}

// Each file is looked for by itself: an IFO may come from one folder and a VOB from the other.
TEST(VmgIfoPrevious, IfoAndVobsAreFoundSeparately)
{
    TestRun run(3);
    const TempDir previous;
    putTitleSet(run.folder, 1, 6, 1, { 1, 10, 20 });
    writeFile(previous / vobName(1, 1), Bytes(2048 * 300, 0));   // VOB 1 there, IFO and VOBs 0 and 2 here
    writeFile(previous / ifoName(2), titleSetIfo(8, 2));         // IFO there, VOB here
    writeFile(run.folder / vobName(2, 1), Bytes(2048 * 40, 0));
    putTitleSet(run.folder, 3, 6, 1, {});
    const Bytes ifo = written(run, 0, nullptr, previous.prefix().c_str());
    EXPECT_EQ((std::vector<uint64_t>{ 10, 10 + 12 + 321, 343 + 16 + 40 }), starts(ifo));
}

TEST(VmgIfoPrevious, EmptyPathIsNone)
{
    TestRun run(1);
    putTitleSet(run.folder, 1, 6, 3, { 0, 10 });
    expectSameBytes(written(run), written(run, 0, nullptr, u""), "VIDEO_TS.IFO");
}

TEST(VmgIfoPrevious, MissingFolderIsNone)
{
    TestRun run(1);
    putTitleSet(run.folder, 1, 6, 3, { 0, 10 });
    const std::u16string missing = run.folder / u"missing/";
    expectSameBytes(written(run), written(run, 0, nullptr, missing.c_str()), "VIDEO_TS.IFO");
}

// ---- failures -----------------------------------------------------------------------------------------------------

TEST(VmgIfoFailure, TitleSetCount)
{
    TestRun run(1);
    putTitleSet(run.folder, 1, 6, 1, {});
    for (const uint64_t count : { uint64_t(0), uint64_t(100), uint64_t(0x100000001) }) {
        run.context->head.titleSetCount = count;
        EXPECT_EQ(0x840007D7u, write(run)) << count;
    }
    EXPECT_FALSE(fileExists(run.folder / u"VIDEO_TS.IFO"));   // tested before the file is made
}

TEST(VmgIfoFailure, OutputCannotBeOpened)
{
    TestRun run(1);
    putTitleSet(run.folder, 1, 6, 1, {});
    std::filesystem::create_directory(run.folder / u"VIDEO_TS.IFO");
    EXPECT_EQ(0x840007D5u, write(run));
    EXPECT_FALSE(fileExists(run.logPath));   // not logged
}

TEST(VmgIfoFailure, TitleSetMissing)
{
    TestRun run(3);
    putTitleSet(run.folder, 1, 6, 1, {});
    putTitleSet(run.folder, 3, 6, 1, {});
    EXPECT_EQ(0x840007E4u, write(run));
    EXPECT_EQ(0u, readFile(run.folder / u"VIDEO_TS.IFO").size());
    const std::u16string path = run.folder.prefix() + ifoName(2);
    EXPECT_TRUE(
        logHolds(run.logPath, { { 0x840007E4, u"Failed to open file for read in <orvReadVTSInfo>: " + path } }));
}

TEST(VmgIfoFailure, NoLogPathChangesNothing)
{
    TestRun run(1);
    run.context->head.logFilePath = nullptr;
    EXPECT_EQ(0x840007E4u, write(run));
}

TEST(VmgIfoFailure, BadImages)
{
    Bytes cut = titleSetIfo(6, 1), pointer = titleSetIfo(6, 1), far = pointer, edge = pointer, mark = pointer;
    cut.resize(5 * 2048);        // the cell address table stood in sector 5
    pointer[224] = 0xFF;         // a table at sector 0xFF000005
    far[224] = 0x80;             // with a byte offset that does not fit 32 bits
    edge.resize(5 * 2048 + 7);   // the table's last-byte field lacks its last byte
    mark[11] = 'T';
    const struct {
        const char* what;
        Bytes image;
    } cases[] = {
        { "empty", {} },
        { "one byte", { 'D' } },
        { "shorter than the mark", slice(titleSetIfo(6, 1), 0, 11) },
        { "the mark alone", slice(titleSetIfo(6, 1), 0, 12) },
        { "without the pointer", slice(titleSetIfo(6, 1), 0, 226) },
        { "without the last byte of the attributes", slice(titleSetIfo(6, 1), 0, 1023) },
        { "a manager's mark", fromHex("44 56 44 56 49 44 45 4F 2D 56 4D 47") + Bytes(12276, 0) },
        { "a wrong last letter", mark },
        { "table behind the end", cut },
        { "table far behind the end", pointer },
        { "table further than 32 bits", far },
        { "table's last byte cut", edge },
    };
    for (const auto& c : cases) {
        TestRun run(1);
        writeFile(run.folder / ifoName(1), c.image);
        EXPECT_EQ(0x840007E5u, write(run)) << c.what;
        EXPECT_EQ(0u, readFile(run.folder / u"VIDEO_TS.IFO").size()) << c.what;
        EXPECT_FALSE(fileExists(run.logPath)) << c.what;
    }
}

// ---- orvReadVTSInfo -----------------------------------------------------------------------------------------------

TEST(ReadVtsInfo, AllThreeResults)
{
    TestRun run(1);
    putTitleSet(run.folder, 42, 7, 9, { 5, 6, 7 });
    uint8_t* image = nullptr;
    uint64_t ifoSectors = 0, vobSectors = 0;
    ASSERT_EQ(0u, orvReadVTSInfo(run.context.get(), run.folder.prefix().c_str(), 42, &image, &ifoSectors, &vobSectors,
                                 nullptr));
    EXPECT_EQ(7u, ifoSectors);
    EXPECT_EQ(18u, vobSectors);
    expectSameBytes(titleSetIfo(7, 9), takeBlock(image), "image");
}

TEST(ReadVtsInfo, EachResultMayBeNull)
{
    TestRun run(1);
    putTitleSet(run.folder, 1, 7, 9, { 5, 6, 7 });
    const std::u16string prefix = run.folder.prefix();
    uint8_t* image = nullptr;
    uint64_t ifoSectors = 0, vobSectors = 0;
    EXPECT_EQ(0u, orvReadVTSInfo(run.context.get(), prefix.c_str(), 1, nullptr, nullptr, nullptr, u""));
    EXPECT_EQ(0u, orvReadVTSInfo(run.context.get(), prefix.c_str(), 1, &image, nullptr, nullptr, u""));
    EXPECT_EQ(7u * 2048, takeBlock(image).size());
    EXPECT_EQ(0u, orvReadVTSInfo(run.context.get(), prefix.c_str(), 1, nullptr, &ifoSectors, nullptr, u""));
    EXPECT_EQ(7u, ifoSectors);
    EXPECT_EQ(0u, orvReadVTSInfo(run.context.get(), prefix.c_str(), 1, nullptr, nullptr, &vobSectors, u""));
    EXPECT_EQ(18u, vobSectors);
}

// The mark is looked at only where the image is wanted.
TEST(ReadVtsInfo, WrongMark)
{
    TestRun run(1);
    writeFile(run.folder / ifoName(1), Bytes(4096, 0xEE));
    uint8_t* image = nullptr;
    uint64_t sectors = 0;
    const std::u16string prefix = run.folder.prefix();
    EXPECT_EQ(0x840007E5u, orvReadVTSInfo(run.context.get(), prefix.c_str(), 1, &image, &sectors, nullptr, nullptr));
    EXPECT_EQ(nullptr, image);
    EXPECT_EQ(0u, orvReadVTSInfo(run.context.get(), prefix.c_str(), 1, nullptr, &sectors, nullptr, nullptr));
    EXPECT_EQ(2u, sectors);
    EXPECT_FALSE(fileExists(run.logPath));
}

TEST(ReadVtsInfo, MissingIfoIsLoggedWithThePathInTheTarget)
{
    TestRun run(1);
    const TempDir previous;
    writeFile(run.folder / vobName(1, 1), Bytes(2048, 0));
    uint64_t vobSectors = 0;
    EXPECT_EQ(0x840007E4u, orvReadVTSInfo(run.context.get(), run.folder.prefix().c_str(), 1, nullptr, nullptr,
                                          &vobSectors, previous.prefix().c_str()));
    const std::u16string path = run.folder.prefix() + ifoName(1);
    EXPECT_TRUE(
        logHolds(run.logPath, { { 0x840007E4, u"Failed to open file for read in <orvReadVTSInfo>: " + path } }));
}
