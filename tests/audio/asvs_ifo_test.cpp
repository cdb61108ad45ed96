// AUDIO_SV.IFO, byte for byte.
#include "audio/audio_ifo.h"
#include "tests/audio/table_run.h"
#include "tests/support/write_limit.h"

#include <cerrno>

namespace fs = std::filesystem;

namespace {

uint64_t write(TableRun& run, uint64_t vobBytes)
{
    return orvWriteAsvsIfo(run.context.get(), (run.folder / u"AUDIO_SV.IFO").c_str(), vobBytes);
}

Bytes written(TableRun& run, uint64_t vobBytes)
{
    EXPECT_EQ(0u, write(run, vobBytes));
    EXPECT_FALSE(fileExists(run.logPath));
    EXPECT_TRUE(run.calls.empty());
    const Bytes ifo = readFile(run.folder / u"AUDIO_SV.IFO");
    EXPECT_EQ(4096u, ifo.size());
    return ifo;
}

}   // namespace

TEST(AsvsIfo, WholeFile)
{
    TableRun run;
    AsvsDesc& asvs = run.context->asvs;
    asvs.attributeCount = 4;
    asvs.attributes[0] = { 1, 1, 0, 3, 0, 3 };
    asvs.attributes[1] = { 0, 0, 3, 3, 1, 3 };
    asvs.attributes[2] = { 1, 0, 3, 3, 2, 3 };
    asvs.attributes[3] = { 0, 1, 0, 3, 3, 3 };
    for (uint64_t i = 0; i < 16; i++) {
        asvs.colorTable[i] = uint32_t(0xEE000000 | (0x30 + i) << 16 | (0x20 + i) << 8 | (0x10 + i));
    }
    run.addStill().startSector = 0;
    run.addStill().startSector = 5;
    run.addStill().startSector = 0xABC;
    expectSameBytes(layout(4096,
                           {
                               { 0, "44 56 44 41 55 44 49 4F 41 53 56 53 00 01 00 12" },   // DVDAUDIOASVS
                               { 16, "00 00 00 02 00 00 0A C1" },                          // 0xAC2 - 1
                               { 24, "53 03 0F 0B 4F 13 13 1B" },
                               { 32, "00 10 20 30 00 11 21 31 00 12 22 32 00 13 23 33 00 14 24 34 00 15 25 35" },
                               { 56, "00 16 26 36 00 17 27 37 00 18 28 38 00 19 29 39 00 1A 2A 3A 00 1B 2B 3B" },
                               { 80, "00 1C 2C 3C 00 1D 2D 3D 00 1E 2E 3E 00 1F 2F 3F" },
                               { 96, "03 00 00 01 00 00 00 00" },
                               { 888, "00 00 00 05 0A BC" },
                           }),
                    written(run, 0xAC2 * 2048), "AUDIO_SV.IFO");
}

// All four records are written, whatever the count says.
TEST(AsvsIfo, FourAttributeRecords)
{
    for (uint64_t count = 0; count <= 4; count++) {
        TableRun run;
        AsvsDesc& asvs = run.context->asvs;
        asvs.attributeCount = count;
        expectAt(written(run, 2048), 24, "00 00 00 00 00 00 00 00", "attributes of nothing");
        for (uint64_t i = 0; i < 4; i++) asvs.attributes[i] = { 1, i % 2, i < 2 ? 0u : 3u, 3, i, 3 };
        expectAt(written(run, 2048), 24, "43 03 53 0B 4F 13 5F 1B", "attributes");
    }
}

// Each field at its place in the two bytes
TEST(AsvsIfo, AttributeBits)
{
    const struct {
        StillAttributes attributes;
        const char* bytes;
    } cases[] = {
        { { 1, 0, 0, 0, 0, 0 }, "40 00" }, { { 0, 1, 0, 0, 0, 0 }, "10 00" }, { { 0, 0, 3, 0, 0, 0 }, "0C 00" },
        { { 0, 0, 0, 3, 0, 0 }, "03 00" }, { { 0, 0, 0, 2, 0, 0 }, "02 00" }, { { 0, 0, 0, 0, 3, 0 }, "00 18" },
        { { 0, 0, 0, 0, 1, 0 }, "00 08" }, { { 0, 0, 0, 0, 0, 7 }, "00 07" }, { { 1, 1, 3, 3, 3, 7 }, "5F 1F" },
    };
    for (const auto& c : cases) {
        for (uint64_t i = 0; i < 4; i++) {
            TableRun run;
            run.context->asvs.attributes[i] = c.attributes;
            const Bytes ifo = written(run, 2048);
            expectAt(ifo, 24 + 2 * i, c.bytes, "attributes");
            expectZeros(ifo, 24, 24 + 2 * i, "attributes before");
            expectZeros(ifo, 26 + 2 * i, 96, "attributes and palette behind");
        }
    }
}

TEST(AsvsIfo, StartSectorHasTwelveBits)
{
    const struct {
        uint64_t sector;
        const char* bytes;
    } cases[] = { { 0, "00 00" },    { 255, "00 FF" },  { 256, "01 00" },     { 4095, "0F FF" },
                  { 4096, "00 00" }, { 4097, "00 01" }, { 0x12345, "03 45" }, { 0xFFFFFFFF, "0F FF" } };
    TableRun run;
    for (const auto& c : cases) run.addStill().startSector = c.sector;
    const Bytes ifo = written(run, 0x20000 * 2048);
    for (uint64_t i = 0; i < std::size(cases); i++) expectAt(ifo, 888 + 2 * i, cases[i].bytes, "start sector");
    expectZeros(ifo, 888 + 2 * std::size(cases), 4096, "behind them");
    expectAt(ifo, 20, "00 01 FF FF", "last sector");
}

TEST(AsvsIfo, NinetyNineStills)
{
    TableRun run;
    for (uint64_t i = 0; i < 99; i++) run.addStill().startSector = 40 * i + 1;
    const Bytes ifo = written(run, 4000 * 2048);
    expectAt(ifo, 96, "63 00 00 01", "stills");
    for (uint64_t i = 0; i < 99; i++) EXPECT_EQ(40 * i + 1, numberAt(ifo, 888 + 2 * i, 2));
    expectZeros(ifo, 888 + 198, 4096, "behind them");
}

// No stills, no VOB: its last sector is the one before the first.
TEST(AsvsIfo, WithoutStills)
{
    TableRun run;
    run.context->asvs.attributeCount = 1;
    run.context->asvs.attributes[0] = { 1, 1, 0, 3, 0, 3 };
    expectSameBytes(layout(4096,
                           {
                               { 0, "44 56 44 41 55 44 49 4F 41 53 56 53 00 01 00 12" },
                               { 16, "00 00 00 02 FF FF FF FF" },
                               { 24, "53 03" },
                               { 98, "00 01" },
                           }),
                    written(run, 0), "AUDIO_SV.IFO");
}

TEST(AsvsIfo, OlderFileIsReplaced)
{
    TableRun run;
    const Bytes fresh = written(run, 2048);
    writeFile(run.folder / u"AUDIO_SV.IFO", Bytes(9000, 0xEE));
    EXPECT_EQ(fresh, written(run, 2048));
}

TEST(AsvsIfo, FileThatCannotBeCreated)
{
    TableRun run;
    fs::create_directory(fs::path(run.folder / u"AUDIO_SV.IFO"));
    EXPECT_EQ(0x8400178Bu, write(run, 2048));
    EXPECT_FALSE(fileExists(run.logPath));
}

#ifndef _WIN32
// The system's own code
TEST(AsvsIfo, FileThatCannotBeWritten)
{
    for (const uint64_t bytes : { 0u, 1u, 4095u }) {
        TableRun run;
        {
            const WriteLimit full(bytes);
            EXPECT_EQ(uint64_t(EFBIG), write(run, 2048)) << bytes;
        }
        const WriteLimit enough(4096);
        EXPECT_EQ(0u, write(run, 2048));
    }
}
#endif
