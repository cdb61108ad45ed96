// The clocks of a pack, bit by bit.
#include "mux/pack_read.h"
#include "tests/support/files.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace {

struct ScrCase {
    const char* what;
    const char* bytes;   // 4 to 9 of the pack header
    uint64_t scr, extension;
};

// Byte 4: 01, SCR 32..30, 1, SCR 29..28. Byte 5: 27..20. Byte 6: 19..15, 1, 14..13. Byte 7: 12..5.
// Byte 8: 4..0, 1, extension 8..7. Byte 9: extension 6..0, 1.
const ScrCase SCR_CASES[] = {
    { "0", "44 00 04 00 04 01", 0, 0 },
    { "bit 0", "44 00 04 00 0C 01", 1, 0 },
    { "bit 4", "44 00 04 00 84 01", 0x10, 0 },
    { "bit 5", "44 00 04 01 04 01", 0x20, 0 },
    { "bit 12", "44 00 04 80 04 01", 0x1000, 0 },
    { "bit 13", "44 00 05 00 04 01", 0x2000, 0 },
    { "bit 14", "44 00 06 00 04 01", 0x4000, 0 },
    { "bit 15", "44 00 0C 00 04 01", 0x8000, 0 },
    { "bit 19", "44 00 84 00 04 01", 0x80000, 0 },
    { "bit 20", "44 01 04 00 04 01", 0x100000, 0 },
    { "bit 27", "44 80 04 00 04 01", 0x8000000, 0 },
    { "bit 28", "45 00 04 00 04 01", 0x10000000, 0 },
    { "bit 29", "46 00 04 00 04 01", 0x20000000, 0 },
    { "bit 30", "4C 00 04 00 04 01", 0x40000000, 0 },
    { "bit 31 is the sign", "54 00 04 00 04 01", 0xFFFFFFFF80000000, 0 },
    { "largest positive", "4F FF FF FF FC 01", 0x7FFFFFFF, 0 },
    { "all ones", "5F FF FF FF FC 01", 0xFFFFFFFFFFFFFFFF, 0 },
    { "half a second", "44 00 0D 7F 94 01", 45042, 0 },
    { "extension bit 0", "44 00 04 00 04 03", 0, 1 },
    { "extension bit 6", "44 00 04 00 04 81", 0, 64 },
    { "extension bit 7", "44 00 04 00 05 01", 0, 128 },
    { "extension bit 8", "44 00 04 00 06 01", 0, 256 },
    { "extension 299", "5F FF FF FF FE 57", 0xFFFFFFFFFFFFFFFF, 299 },
};

Bytes packWith(uint64_t at, const char* hex, uint8_t rest)
{
    Bytes pack(PACK_BYTES, rest);
    const Bytes bytes = fromHex(hex);
    for (uint64_t i = 0; i < bytes.size(); i++) pack[at + i] = bytes[i];
    return pack;
}

struct PtsCase {
    const char* what;
    const char* bytes;   // 21 to 27 of the pack: flags, header data length, PTS
    uint64_t pts;
};

// Byte 23: lead, PTS 32..30, 1. Byte 24: 29..22. Byte 25: 21..15, 1. Byte 26: 14..7. Byte 27: 6..0, 1.
const PtsCase PTS_CASES[] = {
    { "36000", "80 05 21 00 03 19 41", 36000 },
    { "no PTS", "00 05 21 00 03 19 41", 0 },
    { "bit 6 of the flags alone is none", "40 05 21 00 03 19 41", 0 },
    { "PTS and DTS", "C0 0A 31 00 03 19 41", 36000 },
    { "other flags are not looked at", "BF 05 21 00 03 19 41", 36000 },
    { "header data length is not looked at", "80 00 21 00 03 19 41", 36000 },
    { "bit 0", "80 05 21 00 01 00 03", 1 },
    { "bit 6", "80 05 21 00 01 00 81", 0x40 },
    { "bit 7", "80 05 21 00 01 01 01", 0x80 },
    { "bit 14", "80 05 21 00 01 80 01", 0x4000 },
    { "bit 15", "80 05 21 00 03 00 01", 0x8000 },
    { "bit 21", "80 05 21 00 81 00 01", 0x200000 },
    { "bit 22", "80 05 21 01 01 00 01", 0x400000 },
    { "bit 29", "80 05 21 80 01 00 01", 0x20000000 },
    { "bit 30", "80 05 23 00 01 00 01", 0x40000000 },
    { "bit 31 is the sign", "80 05 25 00 01 00 01", 0xFFFFFFFF80000000 },
    { "bit 32 is ignored", "80 05 29 00 01 00 01", 0 },
    { "all ones", "80 05 2F FF FF FF FF", 0xFFFFFFFFFFFFFFFF },
    { "lead and markers are not looked at", "80 05 F4 00 02 00 02", 0xFFFFFFFF80008001 },
};

}   // namespace

TEST(PackRead, Scr)
{
    for (const ScrCase& row : SCR_CASES) {
        SCOPED_TRACE(row.what);
        const Bytes pack = packWith(4, row.bytes, 0xFF);
        uint64_t extension = 12345;
        EXPECT_EQ(orvReadScr(pack.data(), &extension), row.scr);
        EXPECT_EQ(extension, row.extension);
        EXPECT_EQ(orvReadScr(pack.data(), nullptr), row.scr);
    }
}

TEST(PackRead, ScrIgnoresBit32AndMarkers)
{
    EXPECT_EQ(orvReadScr(packWith(4, "64 00 04 00 04 01", 0xFF).data(), nullptr), 0u);
    EXPECT_EQ(orvReadScr(packWith(4, "40 00 00 00 00 00", 0xFF).data(), nullptr), 0u);
    EXPECT_EQ(orvReadScr(packWith(4, "DB FF FB FF F8 00", 0xFF).data(), nullptr), 0xFFFFFFFFFFFFFFFF);
}

TEST(PackRead, SetScrWritesBytes4To9Alone)
{
    for (const ScrCase& row : SCR_CASES) {
        SCOPED_TRACE(row.what);
        for (const uint8_t before : { uint8_t(0x00), uint8_t(0xFF) }) {
            Bytes pack(PACK_BYTES, before);
            orvSetScr(pack.data(), row.scr, row.extension);
            EXPECT_EQ(toHex(pack.data() + 4, 6), row.bytes);
            EXPECT_EQ(pack, packWith(4, row.bytes, before));
        }
    }
}

TEST(PackRead, SetScrDropsBit32)
{
    for (const uint64_t scr : { uint64_t(0x100000000), uint64_t(0x700000000) }) {
        Bytes pack(PACK_BYTES, 0);
        orvSetScr(pack.data(), scr, 0);
        EXPECT_EQ(toHex(pack.data() + 4, 6), "44 00 04 00 04 01");
    }
    Bytes pack(PACK_BYTES, 0);
    orvSetScr(pack.data(), 0x1FFFFFFFF, 299);
    EXPECT_EQ(toHex(pack.data() + 4, 6), "5F FF FF FF FE 57");
}

TEST(PackRead, Pts)
{
    for (const PtsCase& row : PTS_CASES) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(orvReadPts(packWith(21, row.bytes, 0xFF).data()), row.pts);
    }
}
