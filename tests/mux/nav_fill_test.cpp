// The navigation pack of a unit that the scheduler has closed.
#include "mux/nav_fill.h"

#include "tests/mux/mux_rig.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr uint8_t JUNK = 0xCC;

struct Unit {
    MuxStream video = {};
    MuxContext handle = {};

    Unit()
    {
        video.kind = KIND_VIDEO;
        video.unitTicks = 3600;
        handle.streams[0] = &video;
        handle.vobuSector = 0x00012345;
        handle.packCount = 0x00012345 + 0x0102;
        handle.vobuScr = 0x0A0B0C0D;
        handle.vobuPictures = 12;
        handle.vobuFirstUnit = 27;
        handle.vobuStartPts = 0x11223344;
        handle.refEnd[0] = 0x51;
        handle.refEnd[1] = 0x0152;
        handle.refEnd[2] = 0x010253;
    }
    Bytes fill(bool last) const
    {
        Bytes pack(PACK_BYTES, JUNK);
        orvFillNavPack(&handle, pack.data(), last);
        return pack;
    }
    std::string hexAt(uint64_t at, uint64_t count, bool last = false) const
    {
        return toHex(fill(last).data() + at, count);
    }
};

struct FieldCase {
    uint64_t at;
    const char* bytes;
};

// 12 pictures of 3600 ticks are 43200 = 0xA8C0; 27 pictures are a second and two frames.
const FieldCase FIELDS[] = {
    { 38, "00 00 01 BF 03 D4" },
    { 44, "00" },
    { 45, "00 01 23 45" },
    { 57, "11 22 33 44" },
    { 61, "11 22 DC 04" },
    { 65, "00 00 00 00" },
    { 69, "00 00 01 42" },
    { 142, "01 00 00 00 00 FF FF FF FF FF FF FF FF 10" },
    { 161, "01" },
    { 1024, "00 00 01 BF 03 FA" },
    { 1030, "01" },
    { 1031, "0A 0B 0C 0D" },
    { 1035, "00 01 23 45" },
    { 1039, "00 00 01 01" },
    { 1043, "00 00 00 51 00 00 01 52 00 01 02 53" },
    { 1055, "00 01" },
    { 1058, "01" },
    { 1059, "00 00 01 42" },
    { 1075, "00 00 00 00 00 00 00 00" },
    { 1265, "BF FF FF FF" },
    { 1269, "3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF" },   // 7
    { 1297, "3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF" },               // 13
    { 1321, "3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF" },               // 19
    { 1345, "3F FF FF FF" },
    { 1349, "3F FF FF FF" },
    { 1353, "3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF" },
    { 1381, "3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF" },
    { 1405, "3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF 3F FF FF FF" },
    { 1429, "BF FF FF FF" },
};

TEST(NavFill, WritesItsFieldsAndNoOthers)
{
    Bytes expected(PACK_BYTES, JUNK);
    for (const FieldCase& field : FIELDS) {
        const Bytes bytes = fromHex(field.bytes);
        std::copy(bytes.begin(), bytes.end(), expected.begin() + std::ptrdiff_t(field.at));
    }
    EXPECT_EQ(differences(Unit().fill(false), expected), "");
}

TEST(NavFill, LastUnitHasItsEndTwice)
{
    EXPECT_EQ(Unit().hexAt(57, 12, true), "11 22 33 44 11 22 DC 04 11 22 DC 04");
    EXPECT_EQ(Unit().hexAt(57, 12, false), "11 22 33 44 11 22 DC 04 00 00 00 00");
    // Nothing else differs.
    Bytes last = Unit().fill(true);
    std::fill(last.begin() + 65, last.begin() + 69, uint8_t(0));
    EXPECT_EQ(differences(last, Unit().fill(false)), "");
}

TEST(NavFill, EndCountsTheFramesOfTheVideo)
{
    Unit unit;
    unit.handle.vobuStartPts = 18000;                          // 0x4650
    EXPECT_EQ(unit.hexAt(57, 8), "00 00 46 50 00 00 EF 10");   // + 43200
    unit.video.unitTicks = 3003;
    EXPECT_EQ(unit.hexAt(57, 8), "00 00 46 50 00 00 D3 14");   // + 36036
    unit.handle.vobuPictures = 0;
    EXPECT_EQ(unit.hexAt(57, 8), "00 00 46 50 00 00 46 50");
}

TEST(NavFill, ValuesAreCutToTheirWidth)
{
    Unit unit;
    unit.handle.vobuStartPts = 0x1FFFFFFFF;
    unit.handle.vobuPictures = 1;
    unit.handle.vobuScr = 0x2000000AA;
    EXPECT_EQ(unit.hexAt(57, 8), "FF FF FF FF 00 00 0E 0F");
    EXPECT_EQ(unit.hexAt(1031, 4), "00 00 00 AA");
}

TEST(NavFill, ElapsedTimeCountsTwentyFive)
{
    struct Case {
        uint64_t unit;
        const char* bytes;
    };
    // clang-format off
    const Case cases[] = {
        { 0,       "00 00 00 40" },
        { 24,      "00 00 00 64" },   // 24 frames in decimal digits, 0x24, and the rate 0x40
        { 25,      "00 00 01 40" },
        { 30,      "00 00 01 45" },
        { 1499,    "00 00 59 64" },
        { 1500,    "00 01 00 40" },
        { 90000,   "01 00 00 40" },
        { 899999,  "09 59 59 64" },
        { 1080000, "12 00 00 40" },
    };
    // clang-format on
    for (const uint64_t ticks : { 3600u, 3003u }) {   // also for material of 30 a second
        Unit unit;
        unit.video.unitTicks = ticks;
        for (const Case& each : cases) {
            unit.handle.vobuFirstUnit = each.unit;
            EXPECT_EQ(unit.hexAt(69, 4), each.bytes) << each.unit;
            EXPECT_EQ(unit.hexAt(1059, 4), each.bytes) << each.unit;
        }
    }
}

TEST(NavFill, UnitOfItsNavigationPackAlone)
{
    Unit unit;
    unit.handle.packCount = unit.handle.vobuSector + 1;
    EXPECT_EQ(unit.hexAt(1039, 4), "00 00 00 00");
}

}   // namespace
