// Plan of a video stream's next pack: each row of it at its edges, for both kinds, and the cut at the ring's level.
#include "mux/ring.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t OPEN = NONE;   // the ring has not ended
constexpr uint64_t BOTH = 0;

// A picture of the table: where, in which group, of which type.
struct Unit {
    uint64_t at;
    uint32_t group, type;
};

struct PlanCase {
    const char* what;
    uint64_t kind;   // ORV_MUX_..., or BOTH
    std::vector<Unit> units;
    uint64_t packed;
    uint64_t level;
    const char* plan;
};

void check(const PlanCase* rows, uint64_t count)
{
    for (uint64_t i = 0; i < count; i++) {
        const PlanCase& row = rows[i];
        for (const uint64_t kind : { uint64_t(ORV_MUX_VIDEO_UNITS), uint64_t(ORV_MUX_VIDEO) }) {
            if (row.kind != BOTH && row.kind != kind) continue;
            Handler handler(kind);
            std::vector<MuxUnit> units;
            for (const Unit& unit : row.units) units.push_back({ unit.at, unit.group, unit.type, 0, 0, 0 });
            setUnits(handler, units);
            handler.stream->bytesPacked = row.packed;
            if (row.level != OPEN) endRingAt(handler, row.level);
            EXPECT_EQ(planText(handler), row.plan) << row.what << ", flag " << kind;
        }
    }
}

template <size_t COUNT> void check(const PlanCase (&rows)[COUNT])
{
    check(rows, COUNT);
}

constexpr uint32_t I = 1, P = 2, B = 3;
constexpr uint64_t CHUNKS = ORV_MUX_VIDEO_UNITS, SCAN = ORV_MUX_VIDEO;

// clang-format off

// A pack that begins with a picture: room by the time stamps that it takes.
const PlanCase STARTS[] = {
    { "I at the start of the stream", BOTH,   { { 0, 1, I }, { 9000, 1, P } }, 0, OPEN,
      "payload 2012, padding 0, flags C1, unit 0" },
    { "P at the start of the stream", BOTH,   { { 0, 1, P }, { 9000, 1, P } }, 0, OPEN,
      "payload 2015, padding 0, flags C0, unit 0" },
    { "B at the start of the stream", BOTH,   { { 0, 1, B }, { 9000, 1, P } }, 0, OPEN,
      "payload 2020, padding 0, flags 80, unit 0" },
    { "I in the stream, in chunks",   CHUNKS, { { 0, 1, P }, { 5000, 2, I }, { 9000, 2, P } }, 5000, OPEN,
      "payload 2012, padding 0, flags C1, unit 1" },
    { "I in the stream, scanned",     SCAN,   { { 0, 1, P }, { 5000, 2, I }, { 9000, 2, P } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "P in the stream",              BOTH,   { { 0, 1, I }, { 5000, 1, P }, { 9000, 1, P } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "B in the stream",              BOTH,   { { 0, 1, I }, { 5000, 1, B }, { 9000, 1, P } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    { "type 0",                       BOTH,   { { 0, 1, I }, { 5000, 1, 0 }, { 9000, 1, P } }, 5000, OPEN,
      "payload 0, padding 0, flags 00, unit 1" },
    { "type 4",                       BOTH,   { { 0, 1, I }, { 5000, 1, 4 }, { 9000, 1, P } }, 5000, OPEN,
      "payload 0, padding 0, flags 00, unit 1" },
    { "type 7",                       BOTH,   { { 0, 1, 7 }, { 9000, 1, P } }, 0, OPEN,
      "payload 0, padding 0, flags 00, unit 0" },
    { "last of the table",            BOTH,   { { 0, 1, I }, { 5000, 1, P } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "only one",                     BOTH,   { { 0, 1, I } }, 0, OPEN,
      "payload 2012, padding 0, flags C1, unit 0" },
    { "none",                         BOTH,   {}, 0, OPEN,
      "payload 0, padding 0, flags 00, unit 0" },
    // Another picture of the group within the pack does not matter, nor what stands behind that.
    { "short I",                      BOTH,   { { 0, 1, I }, { 1, 1, P }, { 2, 2, I } }, 0, OPEN,
      "payload 2012, padding 0, flags C1, unit 0" },
    { "short P",                      BOTH,   { { 0, 1, I }, { 5000, 1, P }, { 5100, 1, B } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "short B",                      BOTH,   { { 0, 1, I }, { 5000, 1, B }, { 5100, 1, B } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
};

// The group ends inside such a pack: the pack ends with it.
const PlanCase STARTS_AND_ENDS[] = {
    { "I, at its last byte",      BOTH,   { { 0, 1, I }, { 2012, 2, I } }, 0, OPEN,
      "payload 2012, padding 0, flags C1, unit 0" },
    { "I, a byte before",         BOTH,   { { 0, 1, I }, { 2011, 2, I } }, 0, OPEN,
      "payload 2011, padding 1, flags C1, unit 0" },
    { "I of one byte",            BOTH,   { { 0, 1, I }, { 1, 2, I } }, 0, OPEN,
      "payload 1, padding 2011, flags C1, unit 0" },
    { "next group of no type",    BOTH,   { { 0, 1, I }, { 700, 2, 0 } }, 0, OPEN,
      "payload 700, padding 1312, flags C1, unit 0" },
    { "a later I, in chunks",     CHUNKS, { { 0, 1, I }, { 5000, 2, I }, { 7011, 3, I } }, 5000, OPEN,
      "payload 2011, padding 1, flags C1, unit 1" },
    { "a later I, 2012",          CHUNKS, { { 0, 1, I }, { 5000, 2, I }, { 7012, 3, I } }, 5000, OPEN,
      "payload 2012, padding 0, flags C1, unit 1" },
    { "a later I, scanned",       SCAN,   { { 0, 1, I }, { 5000, 2, I }, { 7014, 3, I } }, 5000, OPEN,
      "payload 2014, padding 1, flags C0, unit 1" },
    { "a later I, scanned, 2015", SCAN,   { { 0, 1, I }, { 5000, 2, I }, { 7015, 3, I } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "P, a byte before",         BOTH,   { { 0, 1, I }, { 5000, 1, P }, { 7014, 2, I } }, 5000, OPEN,
      "payload 2014, padding 1, flags C0, unit 1" },
    { "P, at its last byte",      BOTH,   { { 0, 1, I }, { 5000, 1, P }, { 7015, 2, I } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "B, a byte before",         BOTH,   { { 0, 1, I }, { 5000, 1, B }, { 7019, 2, I } }, 5000, OPEN,
      "payload 2019, padding 1, flags 80, unit 1" },
    { "B, at its last byte",      BOTH,   { { 0, 1, I }, { 5000, 1, B }, { 7020, 2, I } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    { "type 0 has no pack",       BOTH,   { { 0, 1, I }, { 5000, 1, 0 }, { 5100, 2, I } }, 5000, OPEN,
      "payload 0, padding 0, flags 00, unit 1" },
    { "the stream's end",         BOTH,   { { 0, 1, I }, { 5000, 1, P } }, 5000, 2014,
      "payload 2014, padding 1, flags C0, unit 1" },
    { "the end, exactly",         BOTH,   { { 0, 1, I }, { 5000, 1, P } }, 5000, 2015,
      "payload 2015, padding 0, flags C0, unit 1" },
};

// A pack within a picture that goes on behind it.
const PlanCase PLAIN[] = {
    { "far",                  BOTH, { { 0, 1, I }, { 90000, 1, P } }, 2012, OPEN,
      "payload 2025, padding 0, flags 00, unit 0" },
    { "to the last byte",     BOTH, { { 0, 1, I }, { 4037, 1, P } }, 2012, OPEN,
      "payload 2025, padding 0, flags 00, unit 0" },
    { "another group",        BOTH, { { 0, 1, I }, { 4037, 2, I } }, 2012, OPEN,
      "payload 2025, padding 0, flags 00, unit 0" },
    { "a type of no pack",    BOTH, { { 0, 1, I }, { 4037, 1, 0 } }, 2012, OPEN,
      "payload 2025, padding 0, flags 00, unit 0" },
    { "no next one",          BOTH, { { 0, 1, I }, { 1000, 1, P } }, 3000, OPEN,
      "payload 2025, padding 0, flags 00, unit 1" },
    { "no next one, at end",  BOTH, { { 0, 1, I }, { 1000, 1, P } }, 3000, 2025,
      "payload 2025, padding 0, flags 00, unit 1" },
    { "in front of unit 0",   BOTH, { { 90, 1, I }, { 9000, 1, P } }, 0, OPEN,
      "payload 2025, padding 0, flags 00, unit 0" },
    { "type 0 goes on",       BOTH, { { 0, 1, 0 }, { 9000, 1, P } }, 2012, OPEN,
      "payload 2025, padding 0, flags 00, unit 0" },
    { "no table",             BOTH, {}, 100, OPEN,
      "payload 2025, padding 0, flags 00, unit 0" },
};

// The next picture of the group begins in the pack: it carries that one's times, if it has room for them.
const PlanCase NEXT_IN_PACK[] = {
    { "I, next byte",         BOTH, { { 0, 1, I }, { 5001, 1, I } }, 5000, OPEN,
      "payload 2012, padding 0, flags C1, unit 1" },
    { "I, last place",        BOTH, { { 0, 1, I }, { 7011, 1, I } }, 5000, OPEN,
      "payload 2012, padding 0, flags C1, unit 1" },
    { "I, too late",          BOTH, { { 0, 1, I }, { 7012, 1, I } }, 5000, OPEN,
      "payload 2012, padding 13, flags 00, unit 0" },
    { "I, end of the pack",   BOTH, { { 0, 1, I }, { 7024, 1, I } }, 5000, OPEN,
      "payload 2024, padding 1, flags 00, unit 0" },
    { "P, next byte",         BOTH, { { 0, 1, I }, { 5001, 1, P } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "P, last place",        BOTH, { { 0, 1, I }, { 7014, 1, P } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "P, too late",          BOTH, { { 0, 1, I }, { 7015, 1, P } }, 5000, OPEN,
      "payload 2015, padding 10, flags 00, unit 0" },
    { "P, end of the pack",   BOTH, { { 0, 1, I }, { 7024, 1, P } }, 5000, OPEN,
      "payload 2024, padding 1, flags 00, unit 0" },
    { "B, next byte",         BOTH, { { 0, 1, I }, { 5001, 1, B } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    { "B, last place",        BOTH, { { 0, 1, I }, { 7019, 1, B } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    { "B, too late",          BOTH, { { 0, 1, I }, { 7020, 1, B } }, 5000, OPEN,
      "payload 2020, padding 5, flags 00, unit 0" },
    { "B, end of the pack",   BOTH, { { 0, 1, I }, { 7024, 1, B } }, 5000, OPEN,
      "payload 2024, padding 1, flags 00, unit 0" },
    { "a group behind a P",   BOTH, { { 0, 1, I }, { 5100, 1, P }, { 5200, 2, I } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
    { "a group behind an I",  BOTH, { { 0, 1, I }, { 5100, 1, I }, { 5200, 2, I } }, 5000, OPEN,
      "payload 2012, padding 0, flags C1, unit 1" },
    { "of another type now",  BOTH, { { 0, 1, 0 }, { 5100, 1, P } }, 5000, OPEN,
      "payload 2015, padding 0, flags C0, unit 1" },
};

// Another group begins in the pack: it ends there, and the rest is padding.
const PlanCase GROUP_ENDS[] = {
    { "I, next byte",         BOTH, { { 0, 1, I }, { 5001, 2, I } }, 5000, OPEN,
      "payload 1, padding 2024, flags 00, unit 0" },
    { "I, 2011",              BOTH, { { 0, 1, I }, { 7011, 2, I } }, 5000, OPEN,
      "payload 2011, padding 14, flags 00, unit 0" },
    { "I, 2024",              BOTH, { { 0, 1, I }, { 7024, 2, I } }, 5000, OPEN,
      "payload 2024, padding 1, flags 00, unit 0" },
    { "P",                    BOTH, { { 0, 1, I }, { 5500, 2, P } }, 5000, OPEN,
      "payload 500, padding 1525, flags 00, unit 0" },
    { "B",                    BOTH, { { 0, 1, I }, { 5500, 2, B } }, 5000, OPEN,
      "payload 500, padding 1525, flags 00, unit 0" },
    { "back to group 1",      BOTH, { { 0, 2, I }, { 5500, 1, I } }, 5000, OPEN,
      "payload 500, padding 1525, flags 00, unit 0" },
    { "the stream's end",     BOTH, { { 0, 1, I }, { 1000, 1, P } }, 5000, 2024,
      "payload 2024, padding 1, flags 00, unit 1" },
    { "its last byte",        BOTH, { { 0, 1, I }, { 1000, 1, P } }, 5000, 1,
      "payload 1, padding 2024, flags 00, unit 1" },
    { "nothing left",         BOTH, { { 0, 1, I }, { 1000, 1, P } }, 5000, 0,
      "payload 0, padding 2025, flags 00, unit 1" },
};

// A B picture begins in the pack, and behind it, still in the pack, its group ends.
const PlanCase B_ENDS_GROUP[] = {
    { "in chunks",            CHUNKS, { { 0, 1, I }, { 5100, 1, B }, { 5700, 2, I } }, 5000, OPEN,
      "payload 700, padding 1320, flags 80, unit 0" },
    { "scanned",              SCAN,   { { 0, 1, I }, { 5100, 1, B }, { 5700, 2, I } }, 5000, OPEN,
      "payload 700, padding 1320, flags 80, unit 1" },
    { "2019, in chunks",      CHUNKS, { { 0, 1, I }, { 5100, 1, B }, { 7019, 2, I } }, 5000, OPEN,
      "payload 2019, padding 1, flags 80, unit 0" },
    { "2019, scanned",        SCAN,   { { 0, 1, I }, { 5100, 1, B }, { 7019, 2, I } }, 5000, OPEN,
      "payload 2019, padding 1, flags 80, unit 1" },
    { "2020 fills the pack",  BOTH,   { { 0, 1, I }, { 5100, 1, B }, { 7020, 2, I } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    { "later",                BOTH,   { { 0, 1, I }, { 5100, 1, B }, { 9000, 2, I } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    { "two B, in chunks",     CHUNKS, { { 0, 1, I }, { 5100, 1, B }, { 5200, 1, B }, { 5300, 2, I } }, 5000, OPEN,
      "payload 300, padding 1720, flags 80, unit 0" },
    { "two B, scanned",       SCAN,   { { 0, 1, I }, { 5100, 1, B }, { 5200, 1, B }, { 5300, 2, I } }, 5000, OPEN,
      "payload 300, padding 1720, flags 80, unit 1" },
    { "B and P, in chunks",   CHUNKS, { { 0, 1, I }, { 5100, 1, B }, { 5200, 1, P }, { 5300, 2, I } }, 5000, OPEN,
      "payload 300, padding 1720, flags 80, unit 0" },
    { "no group behind",      BOTH,   { { 0, 1, I }, { 5100, 1, B }, { 5200, 1, B }, { 5300, 1, B } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    { "nothing behind",       BOTH,   { { 0, 1, I }, { 5100, 1, B } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    // The search stops at the first other group, also where that one lies behind the pack and a later one does not.
    { "first group decides",  BOTH,   { { 0, 1, I }, { 5100, 1, B }, { 9000, 2, I }, { 5300, 3, I } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
    { "far behind, in reach", CHUNKS, { { 0, 1, I }, { 3000, 1, B }, { 5100, 1, B }, { 5200, 1, B }, { 5300, 1, B },
                                        { 5400, 1, B }, { 5500, 1, B }, { 5600, 2, I } }, 5000, OPEN,
      "payload 600, padding 1420, flags 80, unit 1" },
    // A picture that only starts where the pack does has its own row, without that search.
    { "B at the start",       BOTH,   { { 0, 1, I }, { 5000, 1, B }, { 5100, 1, B }, { 5200, 2, I } }, 5000, OPEN,
      "payload 2020, padding 0, flags 80, unit 1" },
};

// The next unit is of no type that can be packed.
const PlanCase OTHER_TYPE[] = {
    { "in chunks",            CHUNKS, { { 0, 1, I }, { 5700, 1, 0 } }, 5000, OPEN,
      "payload 700, padding 0, flags 00, unit 1" },
    { "scanned",              SCAN,   { { 0, 1, I }, { 5700, 1, 0 } }, 5000, OPEN,
      "payload 700, padding 0, flags 00, unit 0" },
    { "type 4, in chunks",    CHUNKS, { { 0, 1, I }, { 5001, 1, 4 } }, 5000, OPEN,
      "payload 1, padding 0, flags 00, unit 1" },
    { "type 4, scanned",      SCAN,   { { 0, 1, I }, { 5001, 1, 4 } }, 5000, OPEN,
      "payload 1, padding 0, flags 00, unit 0" },
    { "2024, in chunks",      CHUNKS, { { 0, 1, I }, { 7024, 1, 7 } }, 5000, OPEN,
      "payload 2024, padding 0, flags 00, unit 1" },
    { "2024, scanned",        SCAN,   { { 0, 1, I }, { 7024, 1, 7 } }, 5000, OPEN,
      "payload 2024, padding 0, flags 00, unit 0" },
    { "another group",        CHUNKS, { { 0, 1, I }, { 5700, 2, 0 } }, 5000, OPEN,
      "payload 700, padding 0, flags 00, unit 1" },
    { "another, scanned",     SCAN,   { { 0, 1, I }, { 5700, 2, 0 } }, 5000, OPEN,
      "payload 700, padding 0, flags 00, unit 0" },
};

// Whatever the row, a pack takes no more than the ring has at the end.
const PlanCase LEVELS[] = {
    { "starts, exactly",      BOTH,   { { 0, 1, I }, { 9000, 1, P } }, 0, 2012,
      "payload 2012, padding 0, flags C1, unit 0" },
    { "starts, one short",    BOTH,   { { 0, 1, I }, { 9000, 1, P } }, 0, 2011,
      "payload 2011, padding 1, flags C1, unit 0" },
    { "starts, nothing left", BOTH,   { { 0, 1, I }, { 9000, 1, P } }, 0, 0,
      "payload 0, padding 2012, flags C1, unit 0" },
    { "group ends, cut",      BOTH,   { { 0, 1, I }, { 1000, 2, I } }, 0, 400,
      "payload 400, padding 1612, flags C1, unit 0" },   // 1012 of the plan, 600 more
    { "plain, exactly",       BOTH,   { { 0, 1, I }, { 9000, 1, P } }, 2012, 2025,
      "payload 2025, padding 0, flags 00, unit 0" },
    { "plain, one short",     BOTH,   { { 0, 1, I }, { 9000, 1, P } }, 2012, 2024,
      "payload 2024, padding 1, flags 00, unit 0" },
    { "next, cut behind it",  BOTH,   { { 0, 1, I }, { 5100, 1, P } }, 5000, 600,
      "payload 600, padding 1415, flags C0, unit 1" },
    { "next, cut before it",  BOTH,   { { 0, 1, I }, { 5100, 1, P } }, 5000, 60,
      "payload 60, padding 1955, flags C0, unit 1" },
    { "B, cut",               CHUNKS, { { 0, 1, I }, { 5100, 1, B }, { 5700, 2, I } }, 5000, 650,
      "payload 650, padding 1370, flags 80, unit 0" },
    { "B, cut, scanned",      SCAN,   { { 0, 1, I }, { 5100, 1, B }, { 5700, 2, I } }, 5000, 650,
      "payload 650, padding 1370, flags 80, unit 1" },
    { "end of group, cut",    BOTH,   { { 0, 1, I }, { 5500, 2, I } }, 5000, 100,
      "payload 100, padding 1925, flags 00, unit 0" },
    { "other type, cut",      CHUNKS, { { 0, 1, I }, { 5700, 1, 0 } }, 5000, 100,
      "payload 100, padding 600, flags 00, unit 1" },
    { "other type, scanned",  SCAN,   { { 0, 1, I }, { 5700, 1, 0 } }, 5000, 100,
      "payload 100, padding 600, flags 00, unit 0" },
    { "no table",             BOTH,   {}, 100, 300,
      "payload 300, padding 1725, flags 00, unit 0" },
};
// clang-format on

TEST(VideoPlan, PackThatBeginsWithAPicture)
{
    check(STARTS);
}

TEST(VideoPlan, GroupThatEndsInAPackOfItsPicture)
{
    check(STARTS_AND_ENDS);
}

TEST(VideoPlan, PackWithinAPicture)
{
    check(PLAIN);
}

TEST(VideoPlan, NextPictureBeginsInThePack)
{
    check(NEXT_IN_PACK);
}

TEST(VideoPlan, GroupThatEndsWithinAPack)
{
    check(GROUP_ENDS);
}

TEST(VideoPlan, GroupThatEndsBehindABPicture)
{
    check(B_ENDS_GROUP);
}

TEST(VideoPlan, UnitOfAnotherType)
{
    check(OTHER_TYPE);
}

TEST(VideoPlan, CutAtTheLevel)
{
    check(LEVELS);
}

// Chunks that begin at start codes have the P-STD extension at each intra picture, others once in the stream: unless
// the picture begins within a pack.
TEST(VideoPlan, ExtensionOnceOrAtEachIntraPicture)
{
    const PlanCase rows[] = {
        { "first", BOTH, { { 0, 1, I }, { 5000, 2, I } }, 0, OPEN, "payload 2012, padding 0, flags C1, unit 0" },
        { "later, in chunks",
          CHUNKS,
          { { 0, 1, I }, { 5000, 2, I } },
          5000,
          OPEN,
          "payload 2012, padding 0, flags C1, unit 1" },
        { "later, scanned",
          SCAN,
          { { 0, 1, I }, { 5000, 2, I } },
          5000,
          OPEN,
          "payload 2015, padding 0, flags C0, unit 1" },
        { "later, within a pack",
          BOTH,
          { { 0, 1, I }, { 5000, 1, I } },
          4999,
          OPEN,
          "payload 2012, padding 0, flags C1, unit 1" },
    };
    check(rows);
}

// A plan changes nothing: it is made twice for each pack.
TEST(VideoPlan, LeavesTheStreamAsItIs)
{
    Handler handler(ORV_MUX_VIDEO);
    setUnits(handler, { { 0, 1, I, 0, 0, 0 }, { 5100, 1, B, 0, 0, 0 }, { 5200, 2, I, 0, 0, 0 } });
    handler.stream->bytesPacked = 5000;
    endRingAt(handler, 150);
    const std::string first = planText(handler);
    EXPECT_EQ(planText(handler), first);
    EXPECT_EQ(handler.stream->bytesPacked, 5000u);
    EXPECT_EQ(handler.stream->ring->fill, 150u);
}

// A group header in front of the stream's first byte: the numbers wrap, and the plan stays within a pack.
TEST(VideoPlan, PositionsThatWrap)
{
    const PlanCase rows[] = {
        { "unit 0 begins before byte 0",
          BOTH,
          { { 0xFFFFFFFFFFFFFFFC, 1, I }, { 40, 1, P } },
          0,
          OPEN,
          "payload 2015, padding 0, flags C0, unit 1" },
        { "unit 1 lies nearly 2^64 ahead",
          BOTH,
          { { 0, 1, I }, { 0xFFFFFFFFFFFFFFFC, 1, P } },
          10,
          OPEN,
          "payload 2025, padding 0, flags 00, unit 0" },
    };
    check(rows);
}

}   // namespace
