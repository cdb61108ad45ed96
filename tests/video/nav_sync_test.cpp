// Sync entries of the navigation packs: where audio and sub-picture of a unit are found.
#include "tests/video/nav_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t AUDIO = 1433, SUBPICTURE = 1449;

// One unit at sector 4 that displays from 28800 on, with these packs.
NavSpec oneUnit(const std::vector<StreamPackRecord>& packs, uint64_t audioCount = 1)
{
    NavSpec given;
    given.audioCount = audioCount;
    given.vobus = unitRecords({ { .sector = 4, .firstPts = 36000, .temporalRef = 2 } });
    given.packs = packs;
    return given;
}

std::string audio(const std::vector<StreamPackRecord>& packs, uint64_t audioCount = 1)
{
    return setupTitle(oneUnit(packs, audioCount)).hexAt(4, AUDIO, 2 * audioCount);
}

// A pack at this sector that lasts over the display start, and the one that ends it.
std::vector<StreamPackRecord> packAt(int64_t sector)
{
    return { { uint64_t(sector), 28800, PACK_AC3, 0, 0, 1 }, { 5, 90000, PACK_UNKNOWN, 0, 0, 1 } };
}

// One unit at sector 100 of a menu.
std::string subPictures(const std::vector<StreamPackRecord>& packs, uint64_t count = 1)
{
    NavSpec given;
    given.subPictureCount = count;
    given.vobus = unitRecords({ { .sector = 100, .firstPts = 36000 } });
    given.menus = { MenuDesc{} };
    given.packs = packs;
    return setupMenu(given).words(100, SUBPICTURE, count);
}

}   // namespace

// ---- audio -------------------------------------------------------------------------------------------------------

TEST(NavSync, DistanceAndItsClamps)
{
    const struct {
        int64_t distance;
        const char* entry;
    } rows[] = {
        { 0, "00 00" },      { 1, "00 01" },      { 255, "00 FF" },    { 32767, "7F FF" }, { 32768, "7F FF" },
        { 70000, "7F FF" },  { -1, "80 01" },     { -4, "80 04" },     { -300, "81 2C" },  { -32767, "FF FF" },
        { -32766, "FF FE" }, { -32768, "FF FF" }, { -65537, "FF FF" },
    };
    for (const auto& row : rows) {
        EXPECT_EQ(audio(packAt(4 + row.distance)), row.entry) << row.distance;
    }
}

TEST(NavSync, PackThatLastsOverTheDisplayStart)
{
    // pts <= 28800 < pts of the next record.
    const auto between = [](uint64_t pts, uint64_t next) {
        return audio({ { 6, pts, PACK_AC3, 0, 0, 1 }, { 7, next, PACK_AC3, 0, 0, 1 } });
    };
    EXPECT_EQ(between(28800, 28801), "00 02");
    EXPECT_EQ(between(28801, 40000), "00 00");
    EXPECT_EQ(between(0, 28801), "00 02");
    EXPECT_EQ(between(0, 28800), "00 00");
    EXPECT_EQ(between(28800, 28800), "00 00");
    EXPECT_EQ(between(28800, 100), "00 00");
    EXPECT_EQ(between(0xFFFFFFFF80000000, 0xFFFFFFFFFFFFFFFF), "00 00");
    EXPECT_EQ(between(0, 0xFFFFFFFF80000000), "00 02");
}

TEST(NavSync, NextRecordMayBeOfAnyKindAndStream)
{
    const auto ended = [](const StreamPackRecord& next) { return audio({ { 6, 20000, PACK_AC3, 0, 0, 1 }, next }); };
    EXPECT_EQ(ended({ 7, 30000, PACK_SUBPICTURE, 3, 4, 1 }), "00 02");
    EXPECT_EQ(ended({ 7, 30000, PACK_UNKNOWN, 0, 0, 2 }), "00 02");
    EXPECT_EQ(ended({ 7, 30000, PACK_LPCM, 5, 0, 0 }), "00 02");
    EXPECT_EQ(ended({ 7, 0, PACK_AC3, 0, 0, 1 }), "00 00");   // a packet without PTS ends it at once
}

TEST(NavSync, FirstOfSeveralCounts)
{
    EXPECT_EQ(audio({ { 9, 28000, PACK_AC3, 0, 0, 1 },
                      { 5, 28801, PACK_AC3, 0, 0, 1 },
                      { 6, 28700, PACK_AC3, 0, 0, 1 },
                      { 7, 30000, PACK_AC3, 0, 0, 1 } }),
              "00 05");
}

TEST(NavSync, LastRecordIsNotLookedAt)
{
    EXPECT_EQ(audio({ { 5, 100, PACK_LPCM, 1, 0, 1 }, { 6, 28800, PACK_AC3, 0, 0, 1 } }), "00 00");
    EXPECT_EQ(audio({ { 6, 28800, PACK_AC3, 0, 0, 1 } }), "00 00");
    EXPECT_EQ(audio({}), "00 00");
}

TEST(NavSync, StreamsByIndexAndVob)
{
    const std::vector<StreamPackRecord> packs = {
        { 5, 28000, PACK_AC3, 0, 0, 2 },     { 6, 28900, PACK_AC3, 7, 0, 1 },  { 7, 28000, PACK_SUBPICTURE, 2, 4, 1 },
        { 8, 28800, PACK_UNKNOWN, 1, 0, 1 }, { 9, 28800, PACK_LPCM, 7, 0, 1 }, { 10, 28801, PACK_AC3, 0, 0, 1 },
        { 11, 28000, PACK_DTS, 3, 0, 1 },    { 12, 30000, PACK_AC3, 0, 0, 1 },
    };
    EXPECT_EQ(audio(packs, 8), "00 00 00 00 00 00 00 07 00 00 00 00 00 00 00 05");
}

TEST(NavSync, EveryAudioKind)
{
    for (uint64_t kind = 0; kind < 24; kind++) {
        const std::string expected = kind >= 8 && kind <= 12 ? "00 02" : "00 00";
        EXPECT_EQ(audio({ { 6, 28800, kind, 0, 0, 1 }, { 7, 30000, PACK_AC3, 0, 0, 1 } }), expected) << kind;
    }
}

TEST(NavSync, EntriesOfStreamsThatTheTitleHasNot)
{
    const NavRun run = setupTitle(oneUnit(packAt(6), 1));
    EXPECT_EQ(run.hexAt(4, AUDIO, 144), "00 02 " + toHex(Bytes(142, 0)));
}

TEST(NavSync, DisplayStartBelowZeroWraps)
{
    // -3600 as an unsigned time: only a PTS near 2^64 lies before it.
    NavSpec given = oneUnit({ { 6, 0, PACK_AC3, 0, 0, 1 }, { 7, 50000, PACK_AC3, 0, 0, 1 } });
    given.vobus[0].firstPts = 3600;
    EXPECT_EQ(setupTitle(given).hexAt(4, AUDIO, 2), "00 00");
    given.packs = { { 6, 0xFFFFFFFFFFFFF000, PACK_AC3, 0, 0, 1 }, { 7, 0xFFFFFFFFFFFFFF00, PACK_AC3, 0, 0, 1 } };
    EXPECT_EQ(setupTitle(given).hexAt(4, AUDIO, 2), "00 02");
}

TEST(NavSync, MenusHaveAudioToo)
{
    NavSpec given = oneUnit(packAt(6), 2);
    given.menus = { MenuDesc{} };
    EXPECT_EQ(setupMenu(given).hexAt(4, AUDIO, 4), "00 02 00 00");
}

// ---- sub-pictures ------------------------------------------------------------------------------------------------

TEST(NavSync, TitleLeavesSubPicturesCleared)
{
    NavSpec given = oneUnit({ { 2, 100, PACK_SUBPICTURE, 0, 0, 1 }, { 3, 100, PACK_SUBPICTURE, 0, 0, 1 } });
    given.subPictureCount = 2;   // of no meaning to a title
    EXPECT_EQ(setupTitle(given).hexAt(4, SUBPICTURE, 128), toHex(Bytes(128, 0)));
}

TEST(NavSync, SubPictureOfTheSameOrAnEarlierUnit)
{
    EXPECT_EQ(subPictures({}), "7FFFFFFF");
    EXPECT_EQ(subPictures({ { 101, 0, PACK_SUBPICTURE, 0, 100, 1 } }), "7FFFFFFF");
    EXPECT_EQ(subPictures({ { 3, 0, PACK_SUBPICTURE, 0, 0, 1 } }), "80000064");
    EXPECT_EQ(subPictures({ { 3, 0, PACK_SUBPICTURE, 0, 0, 1 }, { 60, 0, PACK_SUBPICTURE, 0, 55, 1 } }), "8000002D");
    EXPECT_EQ(subPictures({ { 3, 0, PACK_SUBPICTURE, 0, 99, 1 } }), "80000001");
}

TEST(NavSync, WalkStopsBehindTheUnit)
{
    // The record at which the walk stops is looked at first.
    EXPECT_EQ(subPictures({ { 3, 0, PACK_SUBPICTURE, 0, 0, 1 }, { 120, 0, PACK_SUBPICTURE, 0, 110, 1 } }), "7FFFFFFF");
    // Another VOB's or stream's record stops it as well, and leaves the distance.
    EXPECT_EQ(subPictures({ { 3, 0, PACK_SUBPICTURE, 0, 0, 1 }, { 120, 0, PACK_SUBPICTURE, 0, 110, 2 } }), "80000064");
    EXPECT_EQ(subPictures({ { 3, 0, PACK_SUBPICTURE, 0, 0, 1 }, { 120, 0, PACK_SUBPICTURE, 1, 110, 1 } }), "80000064");
    EXPECT_EQ(subPictures({ { 120, 0, PACK_SUBPICTURE, 0, 110, 2 }, { 3, 0, PACK_SUBPICTURE, 0, 0, 1 } }), "7FFFFFFF");
    // Audio packs have no unit and stop nothing.
    EXPECT_EQ(subPictures({ { 120, 0, PACK_AC3, 0, 0, 1 }, { 3, 0, PACK_SUBPICTURE, 0, 90, 1 } }), "8000000A");
    // A unit that is not behind this one does not stop it.
    EXPECT_EQ(subPictures({ { 101, 0, PACK_SUBPICTURE, 0, 100, 1 }, { 3, 0, PACK_SUBPICTURE, 0, 90, 1 } }), "8000000A");
}

TEST(NavSync, SubPicturesByIndexVobAndKind)
{
    const std::vector<StreamPackRecord> packs = {
        { 1, 0, PACK_SUBPICTURE, 0, 90, 2 },   // another VOB
        { 2, 0, PACK_SUBPICTURE, 1, 80, 1 },
        { 3, 0, PACK_AC3, 2, 70, 1 },   // no sub-picture
        { 4, 0, PACK_SUBPICTURE, 31, 60, 1 },
    };
    EXPECT_EQ(subPictures(packs, 2), "7FFFFFFF 80000014");
    std::string all = "7FFFFFFF 80000014";
    for (int i = 2; i < 31; i++) all += " 7FFFFFFF";
    EXPECT_EQ(subPictures(packs, 32), all + " 80000028");
}
