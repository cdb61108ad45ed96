// The tables that IFO files of title sets and of the manager share, byte for byte.
#include "video/ifo_tables.h"

#include "tests/video/table_bytes.h"

namespace {

Bytes cellTable(const std::vector<Vobu>& units)
{
    const VobuBlock block(units);
    uint8_t* table = nullptr;
    EXPECT_EQ(0u, orvBuildCellAddressTable(block.list, &table));
    return takeBlock(table);
}

Bytes vobuMap(const std::vector<Vobu>& units)
{
    const VobuBlock block(units);
    uint8_t* table = nullptr;
    EXPECT_EQ(0u, orvBuildVobuMap(block.list, &table));
    return takeBlock(table);
}

struct TableCase {
    const char* what;
    std::vector<Vobu> units;
    std::string hex;
};

// A block of ascending bytes, so that a shift or a loss shows.
uint8_t* ascending(uint64_t size, uint8_t first)
{
    Bytes bytes(size);
    for (uint64_t i = 0; i < size; i++) bytes[i] = uint8_t(first + i % 251);
    uint8_t* block = nullptr;
    EXPECT_EQ(0u, osAllocMemCopy(bytes.data(), 0, size, &block));
    return block;
}

}   // namespace

TEST(CellAddressTable, Entries)
{
    const TableCase cases[] = {
        { "one unit",
          { { .sector = 0, .lastSector = 9 } },
          "00 01 00 00 00 00 00 13  00 01 01 00 00 00 00 00 00 00 00 09" },
        { "one cell of three units",
          { { .sector = 0, .lastSector = 9 },
            { .sector = 10, .lastSector = 19 },
            { .sector = 20, .lastSector = 0x12345 } },
          "00 01 00 00 00 00 00 13  00 01 01 00 00 00 00 00 00 01 23 45" },
        { "two cells",
          { { .sector = 0, .lastSector = 9, .cell = 1 },
            { .sector = 10, .lastSector = 19, .cell = 1 },
            { .sector = 20, .lastSector = 29, .cell = 2 } },
          "00 01 00 00 00 00 00 1F  00 01 01 00 00 00 00 00 00 00 00 13  00 01 02 00 00 00 00 14 00 00 00 1D" },
        { "three VOBs of one cell each",
          { { .sector = 0, .lastSector = 4, .vob = 1 },
            { .sector = 5, .lastSector = 9, .vob = 2 },
            { .sector = 10, .lastSector = 14, .vob = 3 } },
          "00 03 00 00 00 00 00 2B  00 01 01 00 00 00 00 00 00 00 00 04"
          "00 02 01 00 00 00 00 05 00 00 00 09  00 03 01 00 00 00 00 0A 00 00 00 0E" },
        { "a VOB that begins within a cell number",
          { { .sector = 0, .lastSector = 4, .vob = 1, .cell = 1 },
            { .sector = 5, .lastSector = 9, .vob = 1, .cell = 2 },
            { .sector = 10, .lastSector = 14, .vob = 2, .cell = 2 },
            { .sector = 15, .lastSector = 19, .vob = 2, .cell = 3 } },
          "00 02 00 00 00 00 00 37  00 01 01 00 00 00 00 00 00 00 00 04  00 01 02 00 00 00 00 05 00 00 00 09"
          "00 02 02 00 00 00 00 0A 00 00 00 0E  00 02 03 00 00 00 00 0F 00 00 00 13" },
        { "a VOB number that comes again counts again",
          { { .sector = 0, .lastSector = 4, .vob = 1 },
            { .sector = 5, .lastSector = 9, .vob = 2 },
            { .sector = 10, .lastSector = 14, .vob = 1 } },
          "00 03 00 00 00 00 00 2B  00 01 01 00 00 00 00 00 00 00 00 04"
          "00 02 01 00 00 00 00 05 00 00 00 09  00 01 01 00 00 00 00 0A 00 00 00 0E" },
        // The running pair is VOB 1, cell 1 before the first record: another one at the start writes an entry for it,
        // which has no record in front and so ends in sector 0.
        { "first record in VOB 0",
          { { .sector = 0, .lastSector = 9, .vob = 0, .cell = 1 } },
          "00 02 00 00 00 00 00 1F  00 01 01 00 00 00 00 00 00 00 00 00  00 00 01 00 00 00 00 00 00 00 00 09" },
        { "first record in cell 2",
          { { .sector = 0, .lastSector = 9, .vob = 1, .cell = 2 } },
          "00 01 00 00 00 00 00 1F  00 01 01 00 00 00 00 00 00 00 00 00  00 01 02 00 00 00 00 00 00 00 00 09" },
        { "packs before the first navigation pack: a leading record of zeros but its last sector",
          { { .sector = 0, .lastSector = 2, .pictures = 0, .vob = 0, .cell = 0 },
            { .sector = 3, .lastSector = 12, .vob = 1, .cell = 1 },
            { .sector = 13, .lastSector = 20, .vob = 1, .cell = 1 } },
          "00 03 00 00 00 00 00 2B  00 01 01 00 00 00 00 00 00 00 00 00"
          "00 00 00 00 00 00 00 00 00 00 00 02  00 01 01 00 00 00 00 03 00 00 00 14" },
        { "a stream without navigation packs",
          { { .sector = 0, .lastSector = 19, .pictures = 0, .vob = 0, .cell = 0 } },
          "00 02 00 00 00 00 00 1F  00 01 01 00 00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00 00 00 00 13" },
        { "two bytes of VOB number, four of sectors",
          { { .sector = 0, .lastSector = 0xFFFF, .vob = 1 },
            { .sector = 0x10000, .lastSector = 0xFFFFFFFF, .vob = 0x1234, .cell = 0xFE } },
          "00 02 00 00 00 00 00 1F  00 01 01 00 00 00 00 00 00 00 FF FF  12 34 FE 00 00 01 00 00 FF FF FF FF" },
    };
    for (const TableCase& c : cases) EXPECT_EQ(toHex(fromHex(c.hex)), toHex(cellTable(c.units))) << c.what;
}

TEST(CellAddressTable, TwoHundredAndFiftyFiveCells)
{
    std::vector<Vobu> units;
    for (uint64_t i = 0; i < 255; i++) units.push_back({ .sector = 7 * i, .lastSector = 7 * i + 6, .cell = i + 1 });
    const Bytes table = cellTable(units);
    ASSERT_EQ(8u + 255 * 12, table.size());
    expectAt(table, 0, "00 01 00 00 00 00 0B FB", "header");   // 12 x 255 + 7 = 3067
    for (uint64_t i = 0; i < 255; i++) {
        EXPECT_EQ(0x00010000 + ((i + 1) << 8), numberAt(table, 8 + 12 * i, 4)) << i;
        EXPECT_EQ(7 * i, numberAt(table, 12 + 12 * i, 4)) << i;
        EXPECT_EQ(7 * i + 6, numberAt(table, 16 + 12 * i, 4)) << i;
    }
}

// A scan file may hold no record at all: then there is nothing that a closing entry could be made from.
TEST(CellAddressTable, NoRecords)
{
    EXPECT_EQ("00 01 00 00 00 00 00 07", toHex(cellTable({})));
}

TEST(VobuMap, Entries)
{
    const TableCase cases[] = {
        { "one unit", { { .sector = 0 } }, "00 00 00 07 00 00 00 00" },
        { "three units",
          { { .sector = 0 }, { .sector = 0x102 }, { .sector = 0x89ABCDEF } },
          "00 00 00 0F 00 00 00 00 00 00 01 02 89 AB CD EF" },
        { "every record of every VOB, the leading one too",
          { { .sector = 0, .vob = 0, .cell = 0 }, { .sector = 3 }, { .sector = 9, .vob = 2 } },
          "00 00 00 0F 00 00 00 00 00 00 00 03 00 00 00 09" },
        { "no record", {}, "00 00 00 03" },
    };
    for (const TableCase& c : cases) EXPECT_EQ(toHex(fromHex(c.hex)), toHex(vobuMap(c.units))) << c.what;
}

TEST(VobuMap, MoreThanASector)
{
    std::vector<Vobu> units;
    for (uint64_t i = 0; i < 1000; i++) units.push_back({ .sector = 300 * i });
    const Bytes table = vobuMap(units);
    ASSERT_EQ(4004u, table.size());
    expectAt(table, 0, "00 00 0F A3", "last byte: 4003");
    for (uint64_t i = 0; i < 1000; i++) EXPECT_EQ(300 * i, numberAt(table, 4 + 4 * i, 4)) << i;
}

TEST(AppendTable, PaddedSizes)
{
    const struct {
        const char* what;
        uint64_t size;      // of the table; its last byte is one less
        uint64_t sectors;   // it comes out as
    } cases[] = {
        { "two bytes", 2, 1 },
        { "less than a sector", 100, 1 },
        { "one byte less than a sector", 2047, 1 },
        { "a sector", 2048, 1 },
        // Meant: the size is rounded from the last byte, not from the size.
        { "2048 n + 1 bytes lose the last one, n = 0", 1, 0 },
        { "2048 n + 1 bytes lose the last one, n = 1", 2049, 1 },
        { "one more", 2050, 2 },
        { "two sectors", 4096, 2 },
        { "2048 n + 1 bytes lose the last one, n = 2", 4097, 2 },
        { "one more", 4098, 3 },
        { "2048 n + 1 bytes lose the last one, n = 40", 81921, 40 },
    };
    for (const auto& c : cases) {
        uint8_t* ifo = ascending(2048, 7);
        uint8_t* table = ascending(c.size, 100);
        uint64_t sectors = 1;
        ASSERT_EQ(0u, orvAppendTable(&ifo, &table, c.size - 1, &sectors)) << c.what;
        EXPECT_EQ(1 + c.sectors, sectors) << c.what;
        const Bytes all = takeBlock(ifo);
        Bytes expected(2048 + 2048 * c.sectors, 0);
        for (uint64_t i = 0; i < 2048; i++) expected[i] = uint8_t(7 + i % 251);
        for (uint64_t i = 0; i < c.size && i < 2048 * c.sectors; i++) expected[2048 + i] = uint8_t(100 + i % 251);
        expectSameBytes(expected, all, c.what);
    }
}

TEST(AppendTable, OneBehindTheOther)
{
    uint8_t* ifo = ascending(2048, 7);
    uint64_t sectors = 1;
    for (const uint8_t first : { uint8_t(50), uint8_t(150) }) {
        uint8_t* table = ascending(3000, first);
        ASSERT_EQ(0u, orvAppendTable(&ifo, &table, 2999, &sectors));
    }
    EXPECT_EQ(5u, sectors);
    const Bytes all = takeBlock(ifo);
    ASSERT_EQ(5u * 2048, all.size());
    expectAt(all, 2048, "32 33 34", "first table");
    expectZeros(all, 2048 + 3000, 3 * 2048, "its padding");
    expectAt(all, 3 * 2048, "96 97 98", "second table");
    expectZeros(all, 3 * 2048 + 3000, 5 * 2048, "its padding");
}

TEST(VideoAttributes, EveryField)
{
    const struct {
        const char* what;
        uint64_t mpegVersion, isPal, aspectRatio, bitrateMode, resolution;
        const char *title, *menu;
    } cases[] = {
        { "MPEG-2, PAL, 4:3", 1, 1, 0, 0, 0, "53 00", "53 00" },
        { "MPEG-2, NTSC, 4:3", 1, 0, 0, 0, 0, "43 00", "43 00" },
        { "MPEG-1, PAL, 4:3", 0, 1, 0, 0, 0, "13 00", "13 00" },
        { "MPEG-1, NTSC, 4:3", 0, 0, 0, 0, 0, "03 00", "03 00" },
        // Meant: a menu in 16:9 permits letterbox alone, a title both displays.
        { "MPEG-2, PAL, 16:9", 1, 1, 3, 0, 0, "5C 00", "5E 00" },
        { "MPEG-2, NTSC, 16:9", 1, 0, 3, 0, 0, "4C 00", "4E 00" },
        { "constant rate", 1, 1, 0, 1, 0, "53 10", "53 10" },
        { "704 wide", 1, 1, 0, 0, 1, "53 04", "53 04" },
        { "352 wide", 1, 1, 0, 0, 2, "53 08", "53 08" },
        { "352 wide, half height, constant rate", 0, 1, 0, 1, 3, "13 1C", "13 1C" },
    };
    for (const auto& c : cases) {
        AttributeSet attributes = {};
        attributes.mpegVersion = c.mpegVersion;
        attributes.isPal = c.isPal;
        attributes.aspectRatio = c.aspectRatio;
        attributes.bitrateMode = c.bitrateMode;
        attributes.resolution = c.resolution;
        Bytes title = fromHex("EE EE EE"), menu = fromHex("EE EE EE");
        orvPutVideoAttributes(title.data(), &attributes, false);
        orvPutVideoAttributes(menu.data(), &attributes, true);
        EXPECT_EQ(std::string(c.title) + " EE", toHex(title)) << c.what << ", title";
        EXPECT_EQ(std::string(c.menu) + " EE", toHex(menu)) << c.what << ", menu";
    }
}

TEST(AudioAttributes, EveryField)
{
    const struct {
        const char* what;
        AudioStreamDesc stream;
        const char* hex;
    } cases[] = {
        { "AC3, stereo", audioStream(AUDIO_AC3, 0xBD, 0x80), "00 01 00 00 00 00 00 00" },
        { "AC3, six channels", audioStream(AUDIO_AC3, 0xBD, 0x80, 6), "00 05 00 00 00 00 00 00" },
        { "MPEG audio, mono", audioStream(AUDIO_LAYER2, 0xC0, 0, 1), "40 00 00 00 00 00 00 00" },
        { "PCM, 20 bits", audioStream(AUDIO_PCM, 0xBD, 0xA0, 2, 1), "80 41 00 00 00 00 00 00" },
        { "PCM, 24 bits, 96 kHz", audioStream(AUDIO_PCM, 0xBD, 0xA0, 2, 2, 1), "80 91 00 00 00 00 00 00" },
        { "PCM, 16 bits, 96 kHz, three channels", audioStream(AUDIO_PCM, 0xBD, 0xA0, 3, 0, 1),
          "80 12 00 00 00 00 00 00" },
        { "DTS, five channels", audioStream(AUDIO_DTS, 0xBD, 0x88, 5), "C0 04 00 00 00 00 00 00" },
        { "SDDS", audioStream(AUDIO_SDDS, 0xBD, 0x90), "E0 01 00 00 00 00 00 00" },
        // Meant: entries are not packed, so that the one that is written may be an empty one.
        { "none", noAudioStream(), "E0 07 00 00 00 00 00 00" },
    };
    for (const auto& c : cases) {
        AttributeSet attributes = {};
        attributes.audioStreamCount = 1;
        attributes.audio[0] = c.stream;
        Bytes out(16, 0);
        orvPutAudioAttributes(out.data(), &attributes);
        expectAt(out, 0, c.hex, c.what);
        expectZeros(out, 8, 16, c.what);
    }
}

TEST(AudioAttributes, AsManyEntriesAsStreams)
{
    AttributeSet attributes = {};
    for (uint64_t i = 0; i < 8; i++) attributes.audio[i] = audioStream(AUDIO_AC3, 0xBD, 0x80 + i, 1 + i % 6);
    Bytes out(64, 0);
    orvPutAudioAttributes(out.data(), &attributes);
    expectZeros(out, 0, 64, "no stream");
    attributes.audioStreamCount = 3;
    orvPutAudioAttributes(out.data(), &attributes);
    expectAt(out, 0, "00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 00", "three streams");
    attributes.audioStreamCount = 8;
    orvPutAudioAttributes(out.data(), &attributes);
    expectAt(out, 40, "00 05 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00", "eight streams");
}
