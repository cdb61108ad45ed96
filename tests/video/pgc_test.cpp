// The blocks of program chains: header, stream controls, palette, cell tables and the placing of the command table.
#include "video/pgc.h"

#include "base/time_code.h"
#include "tests/video/table_bytes.h"

#include <memory>

namespace {

constexpr uint64_t PGC_HEADER_BYTES = 236;

struct PgcInput {
    std::unique_ptr<TitleSetDesc> owner = std::make_unique<TitleSetDesc>();
    AttributeSet attributes = {};
    int64_t standard = STANDARD_PAL;
    uint64_t prohibited = 0;
    uint64_t cellMode = CELLS_OF_TITLE;
    Bytes commands = {};   // none: a null block
    uint64_t vob = 1;
};

Bytes buildFrom(const PgcInput& input, const VobuRecord* list)
{
    uint8_t* commands = nullptr;
    if (!input.commands.empty()) {
        EXPECT_EQ(0u, osAllocMemCopy(input.commands.data(), 0, input.commands.size(), &commands));
    }
    uint8_t* pgc = nullptr;
    EXPECT_EQ(0u, orvBuildPgc(input.owner->menus, &input.attributes, input.standard, input.prohibited, input.cellMode,
                              commands, input.vob, list, &pgc));
    return takeBlock(pgc);
}

Bytes build(const PgcInput& input, const std::vector<Vobu>& units)
{
    const VobuBlock block(units);
    return buildFrom(input, block.list);
}

// n cells of one unit of ten sectors and ten pictures each.
std::vector<Vobu> cells(uint64_t count)
{
    std::vector<Vobu> units;
    for (uint64_t i = 0; i < count; i++) {
        units.push_back({ .sector = 10 * i, .lastSector = 10 * i + 9, .pictures = 10, .cell = i + 1 });
    }
    return units;
}

}   // namespace

TEST(Pgc, OneCellWholeBlock)
{
    PgcInput input;
    input.prohibited = 0x00123456;
    const Bytes pgc = build(input, { { .sector = 0, .lastSector = 9, .pictures = 12 },
                                     { .sector = 10, .lastSector = 29, .pictures = 13 } });
    expectSameBytes(layout(266,
                           {
                               { 2, "01 01" },           // programs, cells
                               { 4, "00 00 01 40" },     // 25 frames at 25 per second
                               { 8, "00 12 34 56" },     // prohibited operations
                               { 228, "00 00" },         // no command table
                               { 230, "00 EC" },         // program map at 236
                               { 232, "00 EE" },         // cell playback at 238
                               { 234, "01 06" },         // cell position at 262
                               { 236, "01 00" },         // program 1 begins with cell 1; filled up to an even size
                               { 238, "02 00 00 00" },   // STC discontinuity, no still, no command
                               { 242, "00 00 01 40" },   // one second
                               { 246, "00 00 00 00" },   // first sector
                               { 250, "00 00 00 00" },   // no interleaved unit
                               { 254, "00 00 00 0A" },   // start of the last unit
                               { 258, "00 00 00 1D" },   // last sector
                               { 262, "00 01 00 01" },   // VOB 1, cell 1
                           }),
                    pgc, "chain of one cell");
}

TEST(Pgc, ThreeCellsWholeBlock)
{
    PgcInput input;
    input.standard = STANDARD_NTSC;
    input.prohibited = 0xFEDCBA98;
    input.commands = fromHex("00 01 00 00 00 00 00 0F 71 00 00 03 00 01 00 00");
    const Bytes pgc = build(input, {
                                       { .sector = 0x100, .lastSector = 0x1FF, .pictures = 15, .cell = 1 },
                                       { .sector = 0x200, .lastSector = 0x2FF, .pictures = 15, .cell = 1 },
                                       { .sector = 0x300, .lastSector = 0x3FF, .pictures = 1, .cell = 2 },
                                       { .sector = 0x12345678, .lastSector = 0x12345699, .pictures = 18, .cell = 3 },
                                       { .sector = 0x1234569A, .lastSector = 0xFFFFFFFF, .pictures = 18, .cell = 3 },
                                   });
    expectSameBytes(layout(340,
                           {
                               { 2, "03 03" },
                               { 4, "00 00 02 C7" },   // 67 frames at 30 per second: 2 seconds and 7
                               { 8, "FE DC BA 98" },
                               { 228, "00 EC 00 FC 01 00 01 48" },   // 236, 252, 256, 328
                               { 236, "00 01 00 00 00 00 00 0F 71 00 00 03 00 01 00 00" },
                               { 252, "01 02 03 00" },
                               { 256, "02 00 00 00 00 00 01 C0 00 00 01 00 00 00 00 00 00 00 02 00 00 00 02 FF" },
                               { 280, "08 00 00 00 00 00 00 D2 00 00 03 00 00 00 00 00 00 00 03 00 00 00 03 FF" },
                               { 304, "08 00 00 00 00 00 01 C6 12 34 56 78 00 00 00 00 12 34 56 9A FF FF FF FF" },
                               { 328, "00 01 00 01 00 01 00 02 00 01 00 03" },
                           }),
                    pgc, "chain of three cells");
}

TEST(Pgc, PlaybackTime)
{
    const struct {
        const char* what;
        int64_t standard;
        uint64_t pictures;
        const char* time;
    } cases[] = {
        { "one picture counts as twelve frames, PAL", STANDARD_PAL, 1, "00 00 00 52" },
        { "one picture counts as twelve frames, NTSC", STANDARD_NTSC, 1, "00 00 00 D2" },
        { "two pictures are two frames", STANDARD_PAL, 2, "00 00 00 42" },
        { "a unit without pictures", STANDARD_PAL, 0, "00 00 00 40" },
        { "the last frame of a second", STANDARD_PAL, 24, "00 00 00 64" },
        { "the last frame of a second, NTSC", STANDARD_NTSC, 29, "00 00 00 E9" },
        { "an hour", STANDARD_PAL, 90000, "01 00 00 40" },
        { "01:59:59.24", STANDARD_PAL, 179999, "01 59 59 64" },
        { "an hour of nominal NTSC frames", STANDARD_NTSC, 108000, "01 00 00 C0" },
    };
    for (const auto& c : cases) {
        PgcInput input;
        input.standard = c.standard;
        const Bytes pgc = build(input, { { .lastSector = 5, .pictures = c.pictures } });
        expectAt(pgc, 4, c.time, std::string(c.what) + ", chain");
        expectAt(pgc, 242, c.time, std::string(c.what) + ", cell");
    }
}

// The sum of a chain is one only if one cell has the one picture; a cell's own count is raised by itself.
TEST(Pgc, OnePictureIsRaisedInTheCellAloneWhenTheChainHasMore)
{
    const Bytes pgc = build({}, { { .lastSector = 5, .pictures = 1, .cell = 1 },
                                  { .sector = 6, .lastSector = 9, .pictures = 1, .cell = 2 } });
    expectAt(pgc, 4, "00 00 00 42", "two pictures in the chain");
    expectAt(pgc, 242, "00 00 00 52", "first cell");
    expectAt(pgc, 266, "00 00 00 52", "second cell");
}

TEST(Pgc, AudioControl)
{
    const struct {
        const char* what;
        uint64_t count;
        AudioStreamDesc streams[3];
        const char* control;   // the first four entries
    } cases[] = {
        { "no stream", 0, {}, "00 00 00 00 00 00 00 00" },
        { "AC3", 1, { audioStream(AUDIO_AC3, 0xBD, 0x80) }, "80 00 00 00 00 00 00 00" },
        { "AC3, PCM, MPEG audio",
          3,
          { audioStream(AUDIO_AC3, 0xBD, 0x80), audioStream(AUDIO_PCM, 0xBD, 0xA1),
            audioStream(AUDIO_LAYER2, 0xC2, 0) },
          "80 00 81 00 82 00 00 00" },
        { "DTS and SDDS",
          2,
          { audioStream(AUDIO_DTS, 0xBD, 0x8F), audioStream(AUDIO_SDDS, 0xBD, 0x93) },
          "87 00 83 00 00 00 00 00" },
        { "entries are not packed: the one entry is the empty first one",
          1,
          { noAudioStream(), audioStream(AUDIO_AC3, 0xBD, 0x85) },
          "80 00 00 00 00 00 00 00" },
    };
    for (const auto& c : cases) {
        PgcInput input;
        input.attributes.audioStreamCount = c.count;
        for (uint64_t i = 0; i < 3; i++) input.attributes.audio[i] = c.streams[i];
        const Bytes pgc = build(input, cells(1));
        expectAt(pgc, 12, c.control, c.what);
        expectZeros(pgc, 20, 28, c.what);
    }
}

TEST(Pgc, AudioControlOfEightStreams)
{
    PgcInput input;
    input.attributes.audioStreamCount = 8;
    for (uint64_t i = 0; i < 8; i++) {
        input.attributes.audio[i] = audioStream(AUDIO_AC3, 0xBD, 0x80 + i);
    }
    expectAt(build(input, cells(1)), 12, "80 00 81 00 82 00 83 00 84 00 85 00 86 00 87 00 00 00", "eight streams");
}

TEST(Pgc, SubPictureControl)
{
    const struct {
        const char* what;
        uint64_t head, hasLetterbox;
        const char* control;
    } cases[] = {
        { "none", 0, 0, "00 00 00 00" },
        { "none, though the first menu has a letterbox form", 0, 1, "00 00 00 00" },
        { "stream 0 for all displays", 1, 0, "80 00 00 00" },
        { "stream 1 for letterbox", 1, 1, "80 00 01 00" },
    };
    for (const auto& c : cases) {
        PgcInput input;
        input.attributes.attributeHead = c.head;
        input.owner->menus[0].hasLetterbox = c.hasLetterbox;
        const Bytes pgc = build(input, cells(1));
        expectAt(pgc, 28, c.control, c.what);
        expectZeros(pgc, 32, 156, c.what);
    }
}

// The menu that a VOB number names decides, not the first one.
TEST(Pgc, LetterboxOfTheSecondMenu)
{
    PgcInput input;
    input.attributes.attributeHead = 1;
    input.owner->menus[1].hasLetterbox = 1;
    input.vob = 2;
    const std::vector<Vobu> units = { { .lastSector = 4 }, { .sector = 5, .lastSector = 9, .vob = 2 } };
    expectAt(build(input, units), 28, "80 00 01 00", "menu 2");
    input.vob = 1;
    expectAt(build(input, units), 28, "80 00 00 00", "menu 1");
}

TEST(Pgc, PaletteOfTheColourTable)
{
    PgcInput input;
    // Luminance, Cr, Cb from the lowest byte up; what the top byte holds has no meaning.
    input.attributes.colorTable[0] = 0x005BF051;    // red
    input.attributes.colorTable[1] = 0xFF362390;    // green
    input.attributes.colorTable[15] = 0x00F06E28;   // blue
    input.owner->menus[0].palette[0] = 0x00FFFFFF;
    const Bytes pgc = build(input, cells(1));
    expectAt(pgc, 164, "00 51 F0 5B 00 90 23 36 00 00 00 00", "entries 0 to 2");
    expectZeros(pgc, 172, 224, "entries 2 to 14");
    expectAt(pgc, 224, "00 28 6E F0", "entry 15");
}

TEST(Pgc, PaletteOfAMenuMadeFromItsAlphaBitmap)
{
    PgcInput input;
    input.owner->menus[0].hasSubPicture32 = 1;
    // Alpha, red, green, blue from the lowest byte up.
    input.owner->menus[0].palette[0] = 0x0000FFAA;    // red
    input.owner->menus[0].palette[1] = 0x00FF0000;    // green
    input.owner->menus[0].palette[2] = 0xFF000000;    // blue
    input.owner->menus[0].palette[15] = 0xFFFFFFFF;   // white
    input.attributes.colorTable[0] = 0x00112233;
    const Bytes pgc = build(input, cells(1));
    expectAt(pgc, 164, "00 51 F0 5B 00 90 23 36 00 28 6E F0", "red, green, blue");
    for (uint64_t i = 3; i < 15; i++) expectAt(pgc, 164 + 4 * i, "00 10 80 80", "entries left black");
    expectAt(pgc, 224, "00 EB 80 80", "white");
}

TEST(Pgc, PaletteFollowsTheMenuOfItsVob)
{
    PgcInput input;
    input.owner->menus[1].hasSubPicture32 = 1;
    input.owner->menus[1].palette[0] = 0x0000FF00;
    input.attributes.colorTable[0] = 0x00362390;
    const std::vector<Vobu> units = { { .lastSector = 4 }, { .sector = 5, .lastSector = 9, .vob = 2 } };
    expectAt(build(input, units), 164, "00 90 23 36 00 00 00 00", "menu 1: colour table");
    input.vob = 2;
    expectAt(build(input, units), 164, "00 51 F0 5B 00 10 80 80", "menu 2: its own palette");
}

TEST(Pgc, CellModes)
{
    const struct {
        const char* what;
        uint64_t mode;
        const char* bytes[3];   // still time and cell command of three cells
    } cases[] = {
        { "0: a still behind each cell", 0, { "FF 00", "FF 00", "FF 00" } },
        { "1: each cell returns", 1, { "00 01", "00 01", "00 01" } },
        { "2: the last cell returns", 2, { "00 00", "00 00", "00 01" } },
        { "3: a title", 3, { "00 00", "00 00", "00 00" } },
        { "4: the last cell waits and returns", 4, { "00 00", "00 00", "FF 01" } },
        { "5: any other", 5, { "00 00", "00 00", "00 00" } },
        { "all ones: any other", ~uint64_t(0), { "00 00", "00 00", "00 00" } },
    };
    for (const auto& c : cases) {
        PgcInput input;
        input.cellMode = c.mode;
        const Bytes pgc = build(input, cells(3));
        for (uint64_t i = 0; i < 3; i++) {
            const uint64_t cell = 240 + 24 * i;   // behind the header and a map of four bytes
            expectAt(pgc, cell, i == 0 ? "02 00" : "08 00", std::string(c.what) + ", flags");
            expectAt(pgc, cell + 2, c.bytes[i], c.what);
        }
    }
}

// With one cell, first and last are the same.
TEST(Pgc, CellModesOfASingleCell)
{
    const char* const expected[] = { "02 00 FF 00", "02 00 00 01", "02 00 00 01", "02 00 00 00", "02 00 FF 01" };
    for (uint64_t mode = 0; mode < 5; mode++) {
        PgcInput input;
        input.cellMode = mode;
        expectAt(build(input, cells(1)), 238, expected[mode], "mode " + std::to_string(mode));
    }
}

TEST(Pgc, OnlyTheAskedVobCounts)
{
    PgcInput input;
    input.vob = 2;
    const Bytes pgc = build(input, { { .sector = 0, .lastSector = 9, .pictures = 25, .vob = 1, .cell = 1 },
                                     { .sector = 10, .lastSector = 19, .pictures = 25, .vob = 1, .cell = 2 },
                                     { .sector = 20, .lastSector = 29, .pictures = 3, .vob = 2, .cell = 1 },
                                     { .sector = 30, .lastSector = 44, .pictures = 4, .vob = 2, .cell = 1 },
                                     { .sector = 45, .lastSector = 49, .pictures = 25, .vob = 3, .cell = 1 } });
    EXPECT_EQ(266u, pgc.size());
    expectAt(pgc, 2, "01 01 00 00 00 47", "one cell of seven pictures");
    expectAt(pgc, 238, "02 00 00 00 00 00 00 47 00 00 00 14 00 00 00 00 00 00 00 1E 00 00 00 2C", "its cell");
    expectAt(pgc, 262, "00 02 00 01", "its place: VOB 2, cell 1");
}

TEST(Pgc, VobNumberTakesTwoBytes)
{
    PgcInput input;
    input.owner->menus[98].hasSubPicture32 = 1;
    input.vob = 99;
    expectAt(build(input, { { .lastSector = 5, .vob = 99 } }), 262, "00 63 00 01", "VOB 99");
}

TEST(Pgc, VobWithoutRecords)
{
    for (const int64_t standard : { STANDARD_PAL, STANDARD_NTSC }) {
        PgcInput input;
        input.standard = standard;
        const Bytes expected = layout(236, { { 4, standard == STANDARD_PAL ? "00 00 00 40" : "00 00 00 C0" } });
        expectSameBytes(expected, build(input, { { .lastSector = 9, .vob = 2 } }), "no record of VOB 1");
        expectSameBytes(expected, build(input, {}), "empty list");
        expectSameBytes(expected, buildFrom(input, nullptr), "no list");
    }
}

TEST(Pgc, CommandTableWithoutCells)
{
    PgcInput input;
    input.commands = fromHex("00 00 00 01 00 00 00 0F 30 08 00 00 01 42 00 00");
    const Bytes expected = layout(252, { { 4, "00 00 00 40" },
                                         { 228, "00 EC 00 00 00 00 00 00" },
                                         { 236, "00 00 00 01 00 00 00 0F 30 08 00 00 01 42 00 00" } });
    expectSameBytes(expected, buildFrom(input, nullptr), "commands alone");
}

// Two cells are counted, but none of them is number 2: its sectors and its time are 0.
TEST(Pgc, CellNumberThatNoRecordHas)
{
    const Bytes pgc = build({}, { { .sector = 0, .lastSector = 9, .pictures = 10, .cell = 1 },
                                  { .sector = 10, .lastSector = 19, .pictures = 10, .cell = 3 } });
    ASSERT_EQ(294u, pgc.size());
    expectAt(pgc, 2, "02 02 00 00 00 60", "two cells, twenty pictures");
    expectAt(pgc, 238, "02 00 00 00 00 00 00 50 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 09", "cell 1");
    expectAt(pgc, 262, "08 00 00 00 00 00 00 40 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00", "cell 2");
    expectAt(pgc, 286, "00 01 00 01 00 01 00 02", "cell position");
}

TEST(Pgc, MapIsFilledUpToAnEvenSize)
{
    const Bytes two = build({}, cells(2)), three = build({}, cells(3));
    expectAt(two, 230, "00 EC 00 EE 01 1E", "two cells: 236, 238, 286");
    expectAt(two, 236, "01 02", "two programs");
    EXPECT_EQ(236u + 2 + 48 + 8, two.size());
    expectAt(three, 230, "00 EC 00 F0 01 38", "three cells: 236, 240, 312");
    expectAt(three, 236, "01 02 03 00", "three programs");
    EXPECT_EQ(236u + 4 + 72 + 12, three.size());
}

TEST(Pgc, TwoHundredAndFiftyFiveCells)
{
    const Bytes pgc = build({}, cells(255));
    ASSERT_EQ(PGC_HEADER_BYTES + 256 + 24 * 255 + 4 * 255, pgc.size());
    expectAt(pgc, 2, "FF FF 00 01 42 40", "255 programs, 255 cells, 2550 pictures");
    expectAt(pgc, 228, "00 00 00 EC 01 EC 19 D4", "none, 236, 492, 6612");
    for (uint64_t i = 0; i < 255; i++) {
        EXPECT_EQ(i + 1, pgc[236 + i]);
        EXPECT_EQ(i == 0 ? 2u : 8u, pgc[492 + 24 * i]);
        EXPECT_EQ(10 * i, numberAt(pgc, 492 + 24 * i + 8, 4));
        EXPECT_EQ(10 * i + 9, numberAt(pgc, 492 + 24 * i + 20, 4));
        EXPECT_EQ(0x00010000 + i + 1, numberAt(pgc, 6612 + 4 * i, 4));
    }
    EXPECT_EQ(0, pgc[236 + 255]);
}

// Nothing stands before the two single bytes: they hold the low byte of the count, the tables hold all cells.
TEST(Pgc, TwoHundredAndFiftySixCells)
{
    const Bytes pgc = build({}, cells(256));
    ASSERT_EQ(PGC_HEADER_BYTES + 256 + 24 * 256 + 4 * 256, pgc.size());
    expectAt(pgc, 2, "00 00", "programs and cells");
    expectAt(pgc, 228, "00 00 00 EC 01 EC 19 EC", "none, 236, 492, 6636");
    expectAt(pgc, 6636 - 24 + 8, "00 00 09 F6", "first sector of the last cell: 2550");
}
