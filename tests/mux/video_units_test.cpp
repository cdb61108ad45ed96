// The table of a video stream as the scheduler asks for it: sizes and times of pictures, the current one and the next.
#include "mux/ring.h"
#include "mux/unit_table.h"
#include "mux/video_units.h"
#include "tests/mux/handler_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t KINDS[] = { ORV_MUX_VIDEO_UNITS, ORV_MUX_VIDEO };

// Three pictures in two groups; all fields differ.
const std::vector<MuxUnit> TABLE = { { 0, 1, 1, 7200, 0, 3600 },
                                     { 100, 1, 3, 3600, 3600, 3610 },
                                     { 150, 2, 2, 14400, 7200, 10800 } };

std::string placeText(uint64_t result, const MuxUnitPlace& place)
{
    if (result) return "result " + std::to_string(result);
    return "unit " + std::to_string(int64_t(place.index)) + " at " + std::to_string(place.position) + ", group " +
           std::to_string(int64_t(place.group)) + ", type " + std::to_string(int64_t(place.codingType));
}

std::string currentText(const Handler& handler)
{
    MuxUnitPlace place = {};
    const uint64_t result = handler.stream->unitAt(handler.stream, &place);
    return placeText(result, place);
}

std::string nextText(const Handler& handler)
{
    MuxUnitPlace place = {};
    const uint64_t result = handler.stream->nextUnitAt(handler.stream, &place);
    return placeText(result, place);
}

TEST(VideoUnits, SizesAreDistances)
{
    for (const uint64_t kind : KINDS) {
        Handler handler(kind);
        setUnits(handler, TABLE);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 0), 100u);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 1), 50u);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 2), 0u);   // it may grow
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 3), 0u);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, NONE), 0u);
    }
}

// 30 bytes packed and 190 to come: 70 of the 220 are the last picture's.
TEST(VideoUnits, LastSizeIsWhatIsLeftAtTheEnd)
{
    for (const uint64_t kind : KINDS) {
        Handler handler(kind);
        setUnits(handler, TABLE);
        handler.stream->bytesPacked = 30;
        endRingAt(handler, 190);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 1), 50u);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 2), 70u);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 3), 0u);
        handler.stream->bytesPacked = 220;
        endRingAt(handler, 0);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 2), 70u);
    }
}

TEST(VideoUnits, EmptyTable)
{
    for (const uint64_t kind : KINDS) {
        const Handler handler(kind);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 0), 0u);
        EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 1), 0u);
        EXPECT_EQ(currentText(handler), "unit 0 at 0, group 0, type 0");
        EXPECT_EQ(orvUnitRecords(handler.stream), 0u);
    }
}

TEST(VideoUnits, TimesWithTheDelayOfVideo)
{
    for (const uint64_t kind : KINDS) {
        Handler handler(kind);
        setUnits(handler, TABLE);
        handler.handle->videoDelay = 5000;
        handler.handle->audioDelay = 777777;
        const auto times = [&](uint64_t unit) {
            uint64_t pts = 1, dts = 1;
            EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, unit, &pts, &dts), 0u);
            return std::vector<uint64_t>{ pts, dts };
        };
        EXPECT_EQ(times(0), (std::vector<uint64_t>{ 12200, 5000 }));
        EXPECT_EQ(times(1), (std::vector<uint64_t>{ 8600, 8600 }));
        EXPECT_EQ(times(2), (std::vector<uint64_t>{ 19400, 12200 }));
        EXPECT_EQ(times(3), (std::vector<uint64_t>{ 0, 0 }));
        EXPECT_EQ(times(NONE), (std::vector<uint64_t>{ 0, 0 }));
    }
}

TEST(VideoUnits, EitherTimeMayBeLeftOut)
{
    Handler handler(ORV_MUX_VIDEO);
    setUnits(handler, TABLE);
    handler.handle->videoDelay = 5000;
    uint64_t time = 1;
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 1, nullptr, &time), 0u);
    EXPECT_EQ(time, 8600u);
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 0, &time, nullptr), 0u);
    EXPECT_EQ(time, 12200u);
    EXPECT_EQ(handler.stream->unitTimes(handler.stream, handler.handle, 0, nullptr, nullptr), 0u);
}

struct CurrentCase {
    uint64_t packed;
    const char* current;
    const char* next;
};

const CurrentCase CURRENTS[] = {
    { 0, "unit 0 at 0, group 1, type 1", "unit 1 at 100, group 1, type 3" },
    { 99, "unit 0 at 0, group 1, type 1", "unit 1 at 100, group 1, type 3" },
    { 100, "unit 1 at 100, group 1, type 3", "unit 2 at 150, group 2, type 2" },
    { 149, "unit 1 at 100, group 1, type 3", "unit 2 at 150, group 2, type 2" },
    { 150, "unit 2 at 150, group 2, type 2", "unit -1 at 650, group -1, type -1" },
    { 100000, "unit 2 at 150, group 2, type 2", "unit -1 at 100500, group -1, type -1" },
};

// Behind the table the next unit begins where the ring ends.
TEST(VideoUnits, CurrentAndNext)
{
    for (const uint64_t kind : KINDS) {
        for (const CurrentCase& row : CURRENTS) {
            Handler handler(kind);
            setUnits(handler, TABLE);
            handler.stream->bytesPacked = row.packed;
            endRingAt(handler, 500);
            EXPECT_EQ(currentText(handler), row.current) << row.packed;
            EXPECT_EQ(nextText(handler), row.next) << row.packed;
        }
    }
}

TEST(VideoUnits, NextOfAnOpenRingIsFarAway)
{
    Handler handler(ORV_MUX_VIDEO);
    setUnits(handler, TABLE);
    handler.stream->bytesPacked = 200;
    EXPECT_EQ(nextText(handler), "unit -1 at 2147483847, group -1, type -1");   // 0x7FFFFFFF + 200
}

TEST(VideoUnits, FewerThanTwoUnits)
{
    Handler handler(ORV_MUX_VIDEO);
    setUnits(handler, { TABLE[2] });   // it begins at 150
    endRingAt(handler, 500);
    for (const uint64_t packed : std::vector<uint64_t>{ 0, 150, 9999 }) {
        handler.stream->bytesPacked = packed;
        EXPECT_EQ(currentText(handler), "unit 0 at 150, group 2, type 2");
    }
}

// The search goes back from the end: of pictures that share a place, as those of a hole do, it is the last.
TEST(VideoUnits, LastOfEqualPositions)
{
    Handler handler(ORV_MUX_VIDEO);
    setUnits(handler, { { 0, 1, 1, 0, 0, 0 }, { 40, 1, 2, 0, 0, 0 }, { 40, 1, 2, 0, 0, 0 }, { 80, 1, 2, 0, 0, 0 } });
    handler.stream->bytesPacked = 40;
    EXPECT_EQ(orvCurrentUnit(handler.stream), 2u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 1), 0u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 2), 40u);
}

// A table of dropped pictures runs back and forth; the search takes what it meets first.
TEST(VideoUnits, PositionsOutOfOrder)
{
    Handler handler(ORV_MUX_VIDEO);
    setUnits(handler, { { 0, 0, 1, 0, 0, 0 }, { 42, 0, 2, 0, 0, 0 }, { 0, 1, 1, 0, 0, 0 }, { 70, 1, 2, 0, 0, 0 } });
    handler.stream->bytesPacked = 41;
    EXPECT_EQ(orvCurrentUnit(handler.stream), 0u);   // the second unit lies ahead
    handler.stream->bytesPacked = 42;
    EXPECT_EQ(orvCurrentUnit(handler.stream), 2u);
    EXPECT_EQ(handler.stream->unitBytesAt(handler.stream, 1), uint64_t(-42));
}

TEST(VideoUnits, RecordsBehindTheTableAreZero)
{
    Handler handler(ORV_MUX_VIDEO);
    setUnits(handler, TABLE);
    EXPECT_EQ(orvUnitRecord(handler.stream, 1), TABLE[1]);
    EXPECT_EQ(orvUnitRecord(handler.stream, 3), MuxUnit{});
    EXPECT_EQ(orvUnitRecord(handler.stream, NONE), MuxUnit{});
    EXPECT_EQ(orvUnitRecords(handler.stream), 3u);
}

struct HeadCase {
    const char* bytes;
    uint64_t at, temporalReference;
    uint32_t codingType;
};

TEST(VideoUnits, PictureHead)
{
    const HeadCase rows[] = {
        { "00 00 01 00 80 88", 0, 0x202, 1 },
        { "A5 A5 00 00 01 00 00 53", 2, 1, 2 },
        { "00 00 01 00 01", 0, 4, 0 },
        { "00 00 01 00", 0, 0, 0 },
    };
    for (const HeadCase& row : rows) {
        const Bytes data = fromHex(row.bytes);
        const PictureHead head = orvReadPictureHead(data.data(), data.size(), row.at);
        EXPECT_EQ(head.temporalReference, row.temporalReference) << row.bytes;
        EXPECT_EQ(head.codingType, row.codingType) << row.bytes;
    }
}

}   // namespace
