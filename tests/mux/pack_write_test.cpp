// The writers of single packs, byte by byte.
#include "mux/pack_write.h"

#include "tests/mux/mux_rig.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

// A pack full of one byte, so that what a writer leaves alone shows.
constexpr uint8_t JUNK = 0xCC;

Bytes junkPack()
{
    return Bytes(PACK_BYTES, JUNK);
}

Bytes junkWith(uint64_t at, const Bytes& bytes)
{
    Bytes pack = junkPack();
    std::copy(bytes.begin(), bytes.end(), pack.begin() + std::ptrdiff_t(at));
    return pack;
}

struct HeaderCase {
    const char* what;
    uint64_t sector, rate;
    const char* bytes;
};

// Byte 4: 01, SCR 32..30, 1, SCR 29..28. Byte 5: 27..20. Byte 6: 19..15, 1, 14..13. Byte 7: 12..5.
// Byte 8: 4..0, 1, extension 8..7. Byte 9: extension 6..0, 1. Bytes 10 to 12: the rate, 22 bits, then 11.
// clang-format off
const HeaderCase HEADER_CASES[] = {
    // what                                       sector       rate   start code   clock              rate      stuffing
    { "SCR 0",                                         0,     25200, "00 00 01 BA  44 00 04 00 04 01  01 89 C3  F8" },
    { "SCR 146, extension 85",                         1,     25200, "00 00 01 BA  44 00 04 04 94 AB  01 89 C3  F8" },
    { "SCR 292, extension 171",                        2,     25200, "00 00 01 BA  44 00 04 09 25 57  01 89 C3  F8" },
    { "SCR 438, extension 257",                        3,     25200, "00 00 01 BA  44 00 04 0D B6 03  01 89 C3  F8" },
    { "SCR 1024",                                      7,     25200, "00 00 01 BA  44 00 04 20 04 01  01 89 C3  F8" },
    { "SCR 89965, extension 214: a second",          615,     25200, "00 00 01 BA  44 00 16 FB 6D AD  01 89 C3  F8" },
    { "SCR 687491364, extension 171",            4699648,     25200, "00 00 01 BA  46 8F A6 49 25 57  01 89 C3  F8" },
    { "SCR 2^31",                               14680064,     25200, "00 00 01 BA  54 00 04 00 04 01  01 89 C3  F8" },
    { "SCR 2^32 - 147, extension 214",          29360127,     25200, "00 00 01 BA  5F FF FF FB 6D AD  01 89 C3  F8" },
    { "SCR 2^32 + 146: bit 32 is lost",         29360129,     25200, "00 00 01 BA  44 00 04 04 94 AB  01 89 C3  F8" },
    { "SCR 18059964562: bits 33 and 34 as well", 123456789,   25200, "00 00 01 BA  47 47 55 84 94 AB  01 89 C3  F8" },
    { "SCR 628292358729, a sector of 33 bits", 4294967296,    25200, "00 00 01 BA  4C 92 4C 92 4C 55  01 89 C3  F8" },
    // Seconds are cut to a double before they are multiplied, and each product is cut by itself. Whole numbers would
    // give 27648 and 0, 31744 and 0, 103424 and 0.
    { "SCR 27647, extension 299",                    189,     25200, "00 00 01 BA  44 00 07 5F FE 57  01 89 C3  F8" },
    { "SCR 31743, extension 0",                      217,     25200, "00 00 01 BA  44 00 07 DF FC 01  01 89 C3  F8" },
    { "SCR 103424, extension 299",                   707,     25200, "00 00 01 BA  44 00 1C A0 06 57  01 89 C3  F8" },
    { "SCR 3686400, rate 1",                           1,         1, "00 00 01 BA  44 03 86 00 04 01  00 00 07  F8" },
    { "SCR 129023999, extension 0, rate 1",           35,         1, "00 00 01 BA  44 7B 0D FF FC 01  00 00 07  F8" },
    { "SCR 73, extension 218, rate 50000",             1,     50000, "00 00 01 BA  44 00 04 02 4D B5  03 0D 43  F8" },
    { "SCR 12902, extension 119, rate 50000",        175,     50000, "00 00 01 BA  44 00 05 93 34 EF  03 0D 43  F8" },
    { "SCR 0, extension 263, all bits of a rate",      1,  0x3FFFFF, "00 00 01 BA  44 00 04 00 06 0F  FF FF FF  F8" },
};
// clang-format on

}   // namespace

TEST(PackWrite, ClockOfASector)
{
    for (const HeaderCase& row : HEADER_CASES) {
        SCOPED_TRACE(row.what);
        for (const uint8_t before : { uint8_t(0x00), uint8_t(0xFF) }) {
            Bytes pack(PACK_BYTES, before);
            orvPackHeaderAt(pack.data(), row.sector, row.rate);
            EXPECT_EQ(toHex(pack.data(), 14), toHex(fromHex(row.bytes)));
            EXPECT_EQ(part(pack, 14, PACK_BYTES), Bytes(PACK_BYTES - 14, before));
        }
    }
}

TEST(PackWrite, ClockOf32BitsIsThatOfSectorZero)
{
    Bytes first = junkPack();
    Bytes wrapped = junkPack();
    orvPackHeaderAt(first.data(), 0, MUX_RATE);
    orvPackHeaderAt(wrapped.data(), 29360128, MUX_RATE);   // 7 x 2^22 sectors are 2^32 ticks
    EXPECT_EQ(differences(wrapped, first), "");
    EXPECT_EQ(toHex(wrapped.data() + 4, 6), "44 00 04 00 04 01");
}

TEST(PackWrite, TheRateOfTheSystem)
{
    EXPECT_EQ(MUX_RATE, 25200u);
}

TEST(PackWrite, EverySectorOfAMenu)
{
    for (uint64_t sector = 0; sector < 189; sector++) {
        Bytes pack(PACK_BYTES, 0);
        orvPackHeaderAt(pack.data(), sector, MUX_RATE);
        EXPECT_EQ(toHex(pack.data(), 14), toHex(packHeader({ sector * 1024 / 7, sector * 307200 / 7 % 300 })))
            << sector;
    }
}

TEST(PackWrite, SystemHeader)
{
    // clang-format off
    const struct { uint64_t rate; const char* bytes; } rows[] = {
        { 25200,    "00 00 01 BB 00 12 80 C4 E1 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02" },
        { 1,        "00 00 01 BB 00 12 80 00 03 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02" },
        { 0x80,     "00 00 01 BB 00 12 80 01 01 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02" },
        { 0x8000,   "00 00 01 BB 00 12 81 00 01 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02" },
        { 0x3FFFFF, "00 00 01 BB 00 12 FF FF FF 00 E1 7F B9 E0 E8 B8 C0 20 BD E0 3A BF E0 02" },
    };
    // clang-format on
    for (const auto& row : rows) {
        Bytes pack = junkPack();
        orvSystemHeader(pack.data(), row.rate);
        EXPECT_EQ(differences(pack, junkWith(14, fromHex(row.bytes))), "") << row.rate;
    }
}

TEST(PackWrite, StillSystemHeader)
{
    // clang-format off
    const struct { uint64_t rate; const char* bytes; } rows[] = {
        { 25200,    "00 00 01 BB 00 0F 80 C4 E1 00 61 7F B9 E0 E8 BD E0 34 BF E0 01" },
        { 1,        "00 00 01 BB 00 0F 80 00 03 00 61 7F B9 E0 E8 BD E0 34 BF E0 01" },
        { 0x8080,   "00 00 01 BB 00 0F 81 01 01 00 61 7F B9 E0 E8 BD E0 34 BF E0 01" },
        { 0x3FFFFF, "00 00 01 BB 00 0F FF FF FF 00 61 7F B9 E0 E8 BD E0 34 BF E0 01" },
    };
    // clang-format on
    for (const auto& row : rows) {
        Bytes pack = junkPack();
        orvStillSystemHeader(pack.data(), row.rate);
        EXPECT_EQ(differences(pack, junkWith(14, fromHex(row.bytes))), "") << row.rate;
    }
}

namespace {

struct PesCase {
    const char* what;
    uint8_t streamId, subStreamId;
    uint64_t pts, dts;
    const char* bytes;   // from offset 14 on
    uint64_t capacity, subHeaderSize;
};

// clang-format off
const PesCase PES_CASES[] = {
    { "video without times",        0xE0, 0x00, 0,     0,     "00 00 01 E0 07 EC 81 00 00", 2025, 0 },
    { "video with PTS",             0xE0, 0x00, 18000, 0,
      "00 00 01 E0 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A", 2017, 0 },
    { "video with both, PAL",       0xE0, 0x00, 18000, 14400,
      "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", 2012, 0 },
    { "video with both, NTSC",      0xE0, 0x00, 18000, 14997,
      "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 75 2B 1E 60 E8", 2012, 0 },
    { "a DTS alone takes the PTS with it", 0xE0, 0x00, 0, 1,
      "00 00 01 E0 07 EC 81 C1 0D 31 00 01 00 01 11 00 01 00 03 1E 60 E8", 2012, 0 },
    { "any stream id",              0x01, 0x00, 0,     0,     "00 00 01 01 07 EC 81 00 00", 2025, 0 },

    { "sub-picture without times",  0xBD, 0x20, 0,     0,     "00 00 01 BD 07 EC 81 00 00 20", 2024, 1 },
    { "sub-picture with PTS",       0xBD, 0x20, 18000, 0,
      "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A 20", 2016, 1 },
    { "sub-picture with both",      0xBD, 0x3F, 18000, 14400,
      "00 00 01 BD 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 3F", 2011, 1 },
    { "AC-3 without times",         0xBD, 0x80, 0,     0,     "00 00 01 BD 07 EC 81 00 00 80 00 00 00", 2021, 4 },
    { "AC-3 with PTS",              0xBD, 0x87, 18000, 0,
      "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A 87 00 00 00", 2013, 4 },
    { "AC-3 with both",             0xBD, 0x8F, 18000, 14400,
      "00 00 01 BD 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 8F 00 00 00", 2008, 4 },
    { "LPCM without times",         0xBD, 0xA0, 0,     0,
      "00 00 01 BD 07 EC 81 00 00 A0 00 00 00 00 00 00", 2018, 7 },
    { "LPCM with PTS",              0xBD, 0xA7, 18000, 0,
      "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A A7 00 00 00 00 00 00", 2010, 7 },
    { "LPCM with both",             0xBD, 0xAF, 18000, 14400,
      "00 00 01 BD 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 AF 00 00 00 00 00 00", 2005, 7 },
    { "a sub-stream id of video counts too", 0xE0, 0x20, 0, 0, "00 00 01 E0 07 EC 81 00 00 20", 2024, 1 },
};

// The five bytes of a time: lead, bits 31..30, 1; 29..22; 21..15, 1; 14..7; 6..0, 1. All but the lead of a PTS alone.
const struct { const char* what; uint64_t ticks; const char* bytes; } STAMP_CASES[] = {
    { "bit 0",                0x00000001,         "21 00 01 00 03" },
    { "bit 6",                0x00000040,         "21 00 01 00 81" },
    { "bit 7",                0x00000080,         "21 00 01 01 01" },
    { "bit 14",               0x00004000,         "21 00 01 80 01" },
    { "bit 15",               0x00008000,         "21 00 03 00 01" },
    { "bit 21",               0x00200000,         "21 00 81 00 01" },
    { "bit 22",               0x00400000,         "21 01 01 00 01" },
    { "bit 29",               0x20000000,         "21 80 01 00 01" },
    { "bit 30",               0x40000000,         "23 00 01 00 01" },
    { "bit 31",               0x80000000,         "25 00 01 00 01" },
    { "bit 32 is not stored", 0x100000000,        "21 00 01 00 01" },
    { "bit 33 neither",       0x200000000,        "21 00 01 00 01" },
    { "32 bits",              0xFFFFFFFF,         "27 FF FF FF FF" },
    { "a read time of 32 bits, extended", 0xFFFFFFFF80000001, "25 00 01 00 03" },
    { "all ones",             0xFFFFFFFFFFFFFFFF, "27 FF FF FF FF" },
};
// clang-format on

}   // namespace

TEST(PackWrite, PesHeaders)
{
    for (const PesCase& row : PES_CASES) {
        SCOPED_TRACE(row.what);
        Bytes pack = junkPack();
        uint64_t capacity = 99, subHeaderSize = 99;
        orvBuildPes(pack.data(), row.streamId, row.subStreamId, row.pts, row.dts, &capacity, &subHeaderSize);
        EXPECT_EQ(differences(pack, junkWith(14, fromHex(row.bytes))), "");
        EXPECT_EQ(capacity, row.capacity);
        EXPECT_EQ(subHeaderSize, row.subHeaderSize);
    }
}

TEST(PackWrite, TimeStamps)
{
    for (const auto& row : STAMP_CASES) {
        SCOPED_TRACE(row.what);
        Bytes stamp = fromHex(row.bytes);
        uint64_t capacity = 0, subHeaderSize = 0;
        Bytes pack = junkPack();
        orvBuildPes(pack.data(), 0xE0, 0, row.ticks, 0, &capacity, &subHeaderSize);
        EXPECT_EQ(toHex(pack.data() + 20, 3), "81 81 08");
        EXPECT_EQ(toHex(pack.data() + 23, 5), toHex(stamp));

        // The other clock is 0 in turn.
        pack = junkPack();
        orvBuildPes(pack.data(), 0xE0, 0, 0, row.ticks, &capacity, &subHeaderSize);
        EXPECT_EQ(toHex(pack.data() + 20, 8), "81 C1 0D 31 00 01 00 01");
        stamp[0] ^= 0x30;   // lead 2 becomes 1
        EXPECT_EQ(toHex(pack.data() + 28, 5), toHex(stamp));

        pack = junkPack();
        orvBuildPes(pack.data(), 0xE0, 0, row.ticks, 1, &capacity, &subHeaderSize);
        stamp[0] ^= 0x20;   // 3
        EXPECT_EQ(toHex(pack.data() + 23, 5), toHex(stamp));
        EXPECT_EQ(toHex(pack.data() + 28, 8), "11 00 01 00 03 1E 60 E8");
    }
}

TEST(PackWrite, VideoWithBothTimesHasItsPayloadAt36)
{
    Bytes pack(PACK_BYTES, 0);
    uint64_t capacity = 0, subHeaderSize = 99;
    orvBuildPes(pack.data(), 0xE0, 0, 18000, 14400, &capacity, &subHeaderSize);
    EXPECT_EQ(capacity, 2012u);
    uint8_t* payload = nullptr;
    orvPadPack(pack.data(), 2012, capacity, subHeaderSize, &payload);
    EXPECT_EQ(payload - pack.data(), 36);
}

// Every sub-stream id behind each of the three headers: the id where the payload would begin, then zeros.
TEST(PackWrite, SubStreamHeaders)
{
    const struct {
        uint64_t pts, dts, at;
    } headers[] = { { 0, 0, 23 }, { 18000, 0, 31 }, { 18000, 14400, 36 } };
    for (const auto& header : headers) {
        Bytes plain = junkPack();
        uint64_t capacity = 0, subHeaderSize = 99;
        orvBuildPes(plain.data(), 0xBD, 0, header.pts, header.dts, &capacity, &subHeaderSize);
        EXPECT_EQ(plain[header.at], JUNK);
        for (uint64_t id = 1; id < 256; id++) {
            const uint64_t size = id >= 0x20 && id <= 0x3F   ? 1
                                  : id >= 0x80 && id <= 0x8F ? 4
                                  : id >= 0xA0 && id <= 0xAF ? 7
                                                             : 0;
            Bytes expected = plain;
            expected[header.at] = uint8_t(id);
            for (uint64_t i = 1; i < size; i++) expected[header.at + i] = 0;
            Bytes pack = junkPack();
            orvBuildPes(pack.data(), 0xBD, uint8_t(id), header.pts, header.dts, &capacity, &subHeaderSize);
            EXPECT_EQ(differences(pack, expected), "") << id;
            EXPECT_EQ(capacity, PACK_BYTES - header.at - size) << id;
            EXPECT_EQ(subHeaderSize, size) << id;
        }
    }
}

TEST(PackWrite, UnknownSubStreamTakesNoRoom)
{
    for (const uint8_t id : fromHex("01 1F 40 7F 90 9F B0 FF")) {
        Bytes pack = junkPack();
        uint64_t capacity = 0, subHeaderSize = 99;
        orvBuildPes(pack.data(), 0xBD, id, 0, 0, &capacity, &subHeaderSize);
        EXPECT_EQ(differences(pack, junkWith(14, fromHex("00 00 01 BD 07 EC 81 00 00") + Bytes{ id })), "");
        EXPECT_EQ(capacity, 2025u);
        EXPECT_EQ(subHeaderSize, 0u);
        // So the payload takes the place of the id.
        uint8_t* payload = nullptr;
        orvPadPack(pack.data(), 2025, capacity, subHeaderSize, &payload);
        EXPECT_EQ(payload - pack.data(), 23);
    }
}

namespace {

struct PadCase {
    const char* what;
    const char* before;   // from offset 14 on
    uint64_t have, capacity, subHeaderSize;
    const char* after;
    uint64_t payload;   // offset
    const char* tail;   // padding packet's header behind `have` bytes; empty: none
};

// clang-format off
const PadCase PAD_CASES[] = {
    { "full",             "00 00 01 E0 07 EC 81 00 00", 2025, 2025, 0, "00 00 01 E0 07 EC 81 00 00", 23, "" },
    { "more than full",   "00 00 01 E0 07 EC 81 00 00", 2026, 2025, 0, "00 00 01 E0 07 EC 81 00 00", 23, "" },
    { "far more",         "00 00 01 E0 07 EC 81 00 00", 0xFFFFFFFFFFFFFFFF, 2025, 0, "00 00 01 E0 07 EC 81 00 00", 23,
      "" },
    { "1 short",          "00 00 01 E0 07 EC 81 00 00", 2024, 2025, 0, "00 00 01 E0 07 EC 81 00 01 FF", 24, "" },
    { "7 short",          "00 00 01 E0 07 EC 81 00 00", 2018, 2025, 0,
      "00 00 01 E0 07 EC 81 00 07 FF FF FF FF FF FF FF", 30, "" },
    { "8 short",          "00 00 01 E0 07 EC 81 00 00", 2017, 2025, 0, "00 00 01 E0 07 E4 81 00 00", 23,
      "00 00 01 BE 00 02" },
    { "9 short",          "00 00 01 E0 07 EC 81 00 00", 2016, 2025, 0, "00 00 01 E0 07 E3 81 00 00", 23,
      "00 00 01 BE 00 03" },
    { "one byte",         "00 00 01 E0 07 EC 81 00 00", 1,    2025, 0, "00 00 01 E0 00 04 81 00 00", 23,
      "00 00 01 BE 07 E2" },
    { "nothing",          "00 00 01 E0 07 EC 81 00 00", 0,    2025, 0, "00 00 01 E0 00 03 81 00 00", 23,
      "00 00 01 BE 07 E3" },
    { "times, 7 short",   "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", 2005, 2012, 0,
      "00 00 01 E0 07 EC 81 C1 14 31 00 01 8C A1 11 00 01 70 81 1E 60 E8 FF FF FF FF FF FF FF", 43, "" },
    { "times, 8 short",   "00 00 01 E0 07 EC 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", 2004, 2012, 0,
      "00 00 01 E0 07 E4 81 C1 0D 31 00 01 8C A1 11 00 01 70 81 1E 60 E8", 36, "00 00 01 BE 00 02" },
    { "a sub-stream header of 1 byte moves, 1 short", "00 00 01 BD 07 EC 81 00 00 20", 2023, 2024, 1,
      "00 00 01 BD 07 EC 81 00 01 FF 20", 25, "" },
    { "of 1 byte, 7 short", "00 00 01 BD 07 EC 81 00 00 20", 2017, 2024, 1,
      "00 00 01 BD 07 EC 81 00 07 FF FF FF FF FF FF FF 20", 31, "" },
    { "of 1 byte, 8 short: it stays", "00 00 01 BD 07 EC 81 00 00 20", 2016, 2024, 1,
      "00 00 01 BD 07 E4 81 00 00 20", 24, "00 00 01 BE 00 02" },
    { "of 4 bytes, 3 short", "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A 80 01 02 03", 2010, 2013, 4,
      "00 00 01 BD 07 EC 81 81 0B 21 00 01 8C A1 1E 60 3A FF FF FF 80 01 02 03", 38, "" },
    { "of 4 bytes, 5 short", "00 00 01 BD 07 EC 81 81 08 21 00 01 8C A1 1E 60 3A 80 01 02 03", 2008, 2013, 4,
      "00 00 01 BD 07 EC 81 81 0D 21 00 01 8C A1 1E 60 3A FF FF FF FF FF 80 01 02 03", 40, "" },
    { "of 7 bytes, 1 short", "00 00 01 BD 07 EC 81 00 00 A0 01 02 03 04 05 06", 2017, 2018, 7,
      "00 00 01 BD 07 EC 81 00 01 FF A0 01 02 03 04 05 06", 31, "" },
    { "of 7 bytes, 7 short", "00 00 01 BD 07 EC 81 00 00 A0 01 02 03 04 05 06", 2011, 2018, 7,
      "00 00 01 BD 07 EC 81 00 07 FF FF FF FF FF FF FF A0 01 02 03 04 05 06", 37, "" },
    { "of 7 bytes, 8 short", "00 00 01 BD 07 EC 81 00 00 A0 01 02 03 04 05 06", 2010, 2018, 7,
      "00 00 01 BD 07 E4 81 00 00 A0 01 02 03 04 05 06", 30, "00 00 01 BE 00 02" },
    { "of 7 bytes, full",  "00 00 01 BD 07 EC 81 00 00 A0 01 02 03 04 05 06", 2018, 2018, 7,
      "00 00 01 BD 07 EC 81 00 00 A0 01 02 03 04 05 06", 30, "" },
};
// clang-format on

}   // namespace

TEST(PackWrite, PadPack)
{
    for (const PadCase& row : PAD_CASES) {
        SCOPED_TRACE(row.what);
        Bytes expected = junkWith(14, fromHex(row.after));
        const Bytes tail = fromHex(row.tail);
        if (!tail.empty()) {
            std::fill(expected.begin() + std::ptrdiff_t(row.payload + row.have), expected.end(), uint8_t(0xFF));
            std::copy(tail.begin(), tail.end(), expected.begin() + std::ptrdiff_t(row.payload + row.have));
        }
        Bytes pack = junkWith(14, fromHex(row.before));
        uint8_t* payload = nullptr;
        orvPadPack(pack.data(), row.have, row.capacity, row.subHeaderSize, &payload);
        EXPECT_EQ(differences(pack, expected), "");
        EXPECT_EQ(uint64_t(payload - pack.data()), row.payload);
    }
}

// Whatever a pack has to carry, its packets fill it to the last byte.
TEST(PackWrite, PacksOfEverySize)
{
    const PacksSpec kinds[] = { { .streamId = 0xE0 },
                                { .streamId = 0xE0, .pts = 18000 },
                                { .streamId = 0xE0, .pts = 18000, .dts = 14997 },
                                { .streamId = 0xBD, .subStreamId = 0x21 },
                                { .streamId = 0xBD, .subStreamId = 0x20, .pts = 90000 } };
    for (const PacksSpec& kind : kinds) {
        const Bytes stream = assetBytes(PACK_BYTES, 1);
        for (uint64_t have = 0; have <= referenceRoom(kind); have++) {
            Bytes pack(PACK_BYTES, 0);
            uint64_t capacity = 0, subHeaderSize = 0;
            orvPackHeaderAt(pack.data(), 5, MUX_RATE);
            orvBuildPes(pack.data(), kind.streamId, kind.subStreamId.value_or(0), kind.pts, kind.dts, &capacity,
                        &subHeaderSize);
            uint8_t* payload = nullptr;
            orvPadPack(pack.data(), have, capacity, subHeaderSize, &payload);
            ASSERT_LE(uint64_t(payload - pack.data()) + have, PACK_BYTES);
            std::copy_n(stream.begin(), have, payload);
            ASSERT_EQ(differences(pack, referencePack(5, kind, part(stream, 0, have))), "") << have;
        }
    }
}

TEST(PackWrite, PaddingPacket)
{
    // clang-format off
    const struct { uint64_t length; const char* head; } rows[] = {
        { 0,     "00 00 01 BE 00 00" },
        { 1,     "00 00 01 BE 00 01" },
        { 2,     "00 00 01 BE 00 02" },
        { 255,   "00 00 01 BE 00 FF" },
        { 256,   "00 00 01 BE 01 00" },
        { 2004,  "00 00 01 BE 07 D4" },
        { 65535, "00 00 01 BE FF FF" },
    };
    // clang-format on
    for (const auto& row : rows) {
        Bytes bytes(row.length + 10, JUNK);
        orvPaddingPacket(bytes.data() + 2, row.length);
        const Bytes expected = Bytes(2, JUNK) + fromHex(row.head) + Bytes(row.length, 0xFF) + Bytes(2, JUNK);
        EXPECT_EQ(differences(bytes, expected), "") << row.length;
    }
}
